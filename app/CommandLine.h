#pragma once

#include <QList>
#include <QString>
#include <QStringList>

// The program's command line: batch options, then at most one project file (the last argument).
struct CommandLineOptions {
    // A selector choice, applied in the order given.
    struct Selection {
        enum Kind { Fixture, PowerSupply, MaxCircuitLoad };
        Kind kind;
        QString value;
    };

    bool unattended = false; // "-nw"
    bool maximizeAll = false;
    QString maximizeAllFile;
    bool maximizeFixture = false;
    QString maximizeFixtureFile;
    QList<Selection> selections;
    QString projectFile; // empty when none was given

    // Extras of this build: answered before any window exists.
    bool help = false;
    bool version = false;
    bool report = false;
    QString exportReportFile; // "--export-report FILE": the design report (PDF) of the project
    QString exportBomFile;    // "--export-bom FILE": its bill of materials (CSV)

    bool requestsExport() const { return maximizeAll || maximizeFixture; }
    bool requestsDesignExport() const { return !exportReportFile.isEmpty() || !exportBomFile.isEmpty(); }
};

// Reads the arguments that follow the program path, after Qt has taken its own options out of
// them. Options are read while an argument contains a "-"; an option that takes a value consumes
// the next argument whatever it holds (given last, it does nothing, except that the two exports
// are still requested, with an empty file name). Unknown options are skipped; a bare "--" ends
// the options. The project file is the one "--report" names, else the last argument left.
CommandLineOptions parseCommandLine(const QStringList& arguments);

// The text printed by "--help".
QString commandLineUsage();
// The text printed by "--version".
QString versionText();
