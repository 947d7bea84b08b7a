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

// Reads the arguments that follow the program path. Options are read while an argument contains
// a "-"; an option that takes a value consumes the next argument (given last, it does nothing,
// except that the two exports are still requested, with an empty file name). Unknown options are
// skipped. Of the arguments left after the options, the last one is the project file.
CommandLineOptions parseCommandLine(const QStringList& arguments);

// The text printed by "--help".
QString commandLineUsage();
// The text printed by "--version".
QString versionText();
