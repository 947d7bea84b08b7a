#include "app/BatchRunner.h"

#include "app/Autosave.h"
#include "app/CommandLine.h"
#include "app/WindowScopes.h"
#include "app/commands/EditHistory.h"
#include "ui_Runplan.h"

#include <QDebug>
#include <QTimer>

#include <cstdio>

bool BatchRunner::start(const CommandLineOptions& options)
{
    if (options.unattended) {
        // An unattended run has no history and nothing to recover.
        m_window->m_runningBatchCommands = true;
        m_window->holdDisplay();
        m_window->m_history->setEnabled(false);
        m_window->m_autosave->setEnabled(false);
    }
    if (options.maximizeAll) {
        m_allRequested = true;
        m_allFile = options.maximizeAllFile;
    }
    if (options.maximizeFixture) {
        m_fixtureRequested = true;
        m_fixtureFile = options.maximizeFixtureFile;
    }
    {
        EditHistory::Pause pause(m_window->m_history);
        applySelections(options);
    }
    m_window->m_history->restart();
    bool opened = true;
    if (!options.projectFile.isEmpty())
        opened = m_window->openProject(options.projectFile);
    QTimer::singleShot(0, m_window, &Runplan::runCommands);
    return opened;
}

void BatchRunner::applySelections(const CommandLineOptions& options)
{
    Ui::RunplanClass* ui = m_window->ui;
    for (const CommandLineOptions::Selection& s : options.selections) {
        InteractiveChangeOff off(m_window);
        QComboBox* combo = nullptr;
        Qt::MatchFlags match = Qt::MatchFixedString;
        switch (s.kind) {
        case CommandLineOptions::Selection::Fixture:
            combo = ui->m_DLFixture_Combo;
            match |= Qt::MatchCaseSensitive;
            break;
        case CommandLineOptions::Selection::PowerSupply:
            combo = ui->m_DLSupply_Combo;
            break;
        case CommandLineOptions::Selection::MaxCircuitLoad:
            combo = ui->m_DL_MaxLoad_Combo;
            break;
        }
        const int index = combo->findText(s.value, match);
        if (index >= 0)
            combo->setCurrentIndex(index);
    }
}

void BatchRunner::run()
{
    if (m_allRequested) {
        m_exportFile = m_allFile;
        m_window->on_actionMaximizeAll_triggered();
    } else if (m_fixtureRequested) {
        m_exportFile = m_fixtureFile;
        m_window->on_actionMaximizeFixture_triggered();
    } else {
        emit m_window->commandsDone();
    }
    qDebug() << "Command completed";
}

void BatchRunner::finish(int exitCode)
{
    std::fflush(stdout);
    std::fflush(stderr);
    emit m_window->batchFinished(exitCode);
}
