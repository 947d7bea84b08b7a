#pragma once

#include <QString>

struct CommandLineOptions;
class Runplan;

// The command line's part of a run: applies its selector choices, opens its project, remembers
// which export it asked for and runs that export once the window is up. An unattended run ends
// when its export does, with the export's status.
class BatchRunner
{
public:
    explicit BatchRunner(Runplan* window) : m_window(window) {}

    // False when the project given could not be read.
    bool start(const CommandLineOptions& options);
    // Runs the requested export, or announces that there is nothing to do.
    void run();
    // The file the running export writes when unattended (empty: the default).
    QString exportFile() const { return m_exportFile; }
    // Ends an unattended run with this status.
    void finish(int exitCode);

private:
    void applySelections(const CommandLineOptions& options);

    Runplan* m_window;
    bool m_allRequested = false;
    bool m_fixtureRequested = false;
    QString m_allFile;
    QString m_fixtureFile;
    QString m_exportFile;
};
