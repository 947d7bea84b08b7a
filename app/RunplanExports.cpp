// The main window as the host of the CSV exports: the selectors they drive, the configuration
// they build, and the runs of the two exports from the menu or the command line.
#include "app/Runplan.h"

#include "app/BatchRunner.h"
#include "app/ExportRunner.h"
#include "app/GuiReporter.h"
#include "app/Prompter.h"
#include "app/WindowScopes.h"
#include "app/commands/EditHistory.h"
#include "catalog/Database.h"
#include "model/CWidget.h"
#include "model/ConfigDocument.h"
#include "update/SettingsKeys.h"

#include <QDir>

#include "ui_Runplan.h"
#include <optional>

const Database& Runplan::database() const
{
    return *m_db;
}

void Runplan::selectEnabler(const DLPowerSupply* enabler)
{
    selectSupplyRecord(enabler);
}

void Runplan::selectFixture(const VxFixture* fixture)
{
    const DLPowerSupply* supply = currentSupplyRecord();
    if (!supply || !fixture)
        return;
    selectFixtureIndex(supply->fixtures.indexOf(const_cast<VxFixture*>(fixture)));
}

void Runplan::selectLineVoltage(int volts)
{
    const int index = findExactText(ui->m_DL_LineVoltage_Combo, QString::number(volts));
    if (index >= 0)
        ui->m_DL_LineVoltage_Combo->setCurrentIndex(index);
}

void Runplan::resetWithFixture()
{
    InteractiveChangeOff off(this);
    resetCanvas();
    on_m_DL_AddFixture_Button_clicked();
}

void Runplan::maximize()
{
    // Maximize reads the pass flag of the configuration as it stands now.
    runAnalysis();
    DL_Maximize();
}

int Runplan::fixtureCount() const
{
    return m_doc->count(ItemFixture);
}

double Runplan::totalLength() const
{
    return m_lastResult.totalLength;
}

const VxFixture* Runplan::currentFixture() const
{
    return currentFixtureRecord();
}

bool Runplan::isExportRunning() const
{
    return m_exportRunner->isRunning();
}

bool Runplan::progress(int percent)
{
    return m_exportRunner->progress(percent);
}

void Runplan::on_actionMaximizeAll_triggered()
{
    runExport(true);
}

void Runplan::on_actionMaximizeFixture_triggered()
{
    runExport(false);
}

void Runplan::runExport(bool all)
{
    // An export drives the configuration but is no edit: the history goes on from what it leaves.
    std::optional<EditHistory::Pause> pause(m_history);
    struct Rebase {
        EditHistory* history;
        std::optional<EditHistory::Pause>& pause;
        ~Rebase()
        {
            pause.reset();
            history->rebase();
        }
    } rebase{m_history, pause};
    const QString fileName = exportFileName();
    if (fileName.isEmpty())
        return;
    const auto kind = all ? ExportRunner::Kind::AllFixtures : ExportRunner::Kind::CurrentFixture;
    const bool written = m_exportRunner->run(kind, fileName, *this, m_runningBatchCommands, m_reporter.get());
    if (m_runningBatchCommands)
        finishBatch(written ? 0 : 1);
}

QString Runplan::exportFileName()
{
    if (!m_runningBatchCommands) {
        const QString chosen =
            m_prompter->getSaveFileName(this, tr("Select file"), RunplanSettings::maximizeFixtureFile(),
                                        tr("CSV File (*.csv);; All Files (*.*)"));
        RunplanSettings::setMaximizeFixtureFile(chosen);
        return chosen;
    }
    if (!m_db->isValid()) {
        m_reporter->message(Reporter::Kind::Critical, QStringLiteral("Runplan"),
                            tr("the catalog %1 is not valid; nothing was exported.")
                                .arg(QDir::toNativeSeparators(m_db->path())));
        finishBatch(1);
        return QString();
    }
    const QString given = m_batch->exportFile();
    return given.isEmpty() ? RunplanSettings::defaultMaximizeFixtureFile() : given;
}

void Runplan::finishBatch(int exitCode)
{
    m_batch->finish(exitCode);
}
