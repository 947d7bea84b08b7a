#include "app/DocumentLifecycle.h"

#include "app/Autosave.h"
#include "app/GuiReporter.h"
#include "app/Prompter.h"
#include "app/RecoveryStore.h"
#include "app/WindowScopes.h"
#include "app/commands/CommandText.h"
#include "app/commands/EditHistory.h"
#include "catalog/Version.h"
#include "model/ConfigDocument.h"
#include "model/ProjectFile.h"
#include "ui_Runplan.h"
#include "update/SettingsKeys.h"

#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QFileInfo>
#include <QStatusBar>

namespace
{
// The context lupdate files these texts under (they are said by DocumentLifecycle's members).
QString tr(const char* text)
{
    return QCoreApplication::translate("DocumentLifecycle", text);
}

QString projectFilter()
{
    return QCoreApplication::translate("DocumentLifecycle",
                                       "Configuration Files (*.rpproj);;All Files (*.* *)");
}
} // namespace

QString DocumentLifecycle::displayName() const
{
    return m_currentFile.isEmpty() ? tr("Untitled.rpproj") : QFileInfo(m_currentFile).fileName();
}

void DocumentLifecycle::setWindowTitleFor(const QString& path)
{
    const QString name = path.isEmpty() ? tr("Untitled.rpproj") : QFileInfo(path).fileName();
    // One pass, so that a "%1" in the file name stays as typed.
    m_window->setWindowTitle(
        tr("%1[*] - %2 Release %3.%4.%5 [Build %6-%7]")
            .arg(name, RunplanVersion::applicationName(), QString::number(RunplanVersion::Major),
                 QString::number(RunplanVersion::Minor), QString::number(RunplanVersion::Revision),
                 QString::number(RunplanVersion::BuildDate), RunplanVersion::buildTag()));
}

void DocumentLifecycle::setCurrentFile(const QString& path)
{
    m_currentFile = path;
    const QString shown = path.isEmpty() ? QString() : QFileInfo(path).fileName();
    m_window->ui->actionSave->setText(tr("&Save %1").arg(shown));
    m_window->ui->actionSaveAs->setText(tr("Save %1 &As...").arg(shown));
    setWindowTitleFor(path);
}

bool DocumentLifecycle::offerToSaveIfNeeded()
{
    if (m_window->m_runningBatchCommands || !m_window->m_doc->isModified())
        return false;
    switch (m_window->m_prompter->askSaveChanges(m_window, displayName())) {
    case Prompter::SaveChoice::Save:
        saveCurrent();
        // A save that was cancelled or failed leaves the changes unsaved: do not go on.
        return m_window->m_doc->isModified();
    case Prompter::SaveChoice::Discard:
        return false;
    case Prompter::SaveChoice::Cancel:
        return true;
    }
    return true;
}

void DocumentLifecycle::newConfiguration()
{
    if (offerToSaveIfNeeded())
        return;
    m_window->m_autosave->discard();
    // One step: Undo brings the previous configuration back as unsaved changes.
    EditHistory::Step step(m_window->m_history, CommandText::newConfiguration());
    Ui::RunplanClass* ui = m_window->ui;
    {
        InteractiveChangeOff off(m_window);
        if (ui->m_DLSupply_Combo->count() > 0)
            ui->m_DLSupply_Combo->setCurrentIndex(0);
        // A project read in part may have left selectors without an entry; New leaves none so.
        if (ui->m_DLFixture_Combo->currentIndex() < 0 && ui->m_DLFixture_Combo->count() > 0)
            ui->m_DLFixture_Combo->setCurrentIndex(0);
        if (ui->m_DLController_Combo->currentIndex() < 0 && ui->m_DLController_Combo->count() > 0)
            ui->m_DLController_Combo->setCurrentIndex(0);
    }
    m_window->chooseDefaultLineVoltage();
    if (ui->m_DL_LineVoltage_Combo->currentIndex() < 0 && ui->m_DL_LineVoltage_Combo->count() > 0)
        ui->m_DL_LineVoltage_Combo->setCurrentIndex(0);
    ui->m_DL_MaxLoad_Combo->setCurrentIndex(0);
    ui->m_frequencyComboBox->setCurrentIndex(ui->m_frequencyComboBox->findText(
        QStringLiteral("60 Hz"), Qt::MatchFixedString | Qt::MatchCaseSensitive));
    m_window->resetCanvas();
    m_window->m_doc->setModified(false);
    setCurrentFile(QString());
    m_notReadWholePath.clear();
    m_notReadWholeReason.clear();
    m_window->m_doc->setModified(false);
}

void DocumentLifecycle::chooseAndOpen()
{
    if (offerToSaveIfNeeded())
        return;
    const QString path = m_window->m_prompter->getOpenFileName(
        m_window, tr("Open Configuration"), RunplanSettings::lastDirPath(), projectFilter());
    if (path.isEmpty())
        return;
    RunplanSettings::setLastDirPath(QFileInfo(path).absolutePath());
    open(path);
}

bool DocumentLifecycle::open(const QString& path)
{
    bool opened = false;
    QString notReadWhole;
    {
        EditHistory::Pause pause(m_window->m_history);
        AnalysisHold hold(m_window->m_analysisSuspended);
        InteractiveChangeOff off(m_window);
        QApplication::setOverrideCursor(Qt::WaitCursor);
        opened =
            ProjectFile::open(path, *m_window->m_doc, *m_window, m_window->m_reporter.get(), &notReadWhole);
        QApplication::restoreOverrideCursor();
    }
    if (opened) {
        m_window->ui->m_DL_Frame->showTopLeft();
        // A failure reported for an earlier file no longer describes what is shown.
        m_window->statusBar()->clearMessage();
        m_notReadWholePath = notReadWhole.isEmpty() ? QString() : QFileInfo(path).absoluteFilePath();
        m_notReadWholeReason = notReadWhole;
        setCurrentFile(path);
        m_window->m_doc->setModified(false);
        m_window->m_history->restart();
        m_window->m_autosave->discard();
        m_window->runAnalysis();
    }
    return opened;
}

bool DocumentLifecycle::save(const QString& path)
{
    // A file read only in part is replaced only when the user says so.
    const QString target = QFileInfo(ProjectFile::withExtension(path)).absoluteFilePath();
    const bool overPartlyRead = !m_notReadWholePath.isEmpty() && target == m_notReadWholePath;
    if (overPartlyRead &&
        !m_window->m_prompter->askReplaceNotReadWhole(m_window, QFileInfo(target).fileName()))
        return false;
    QString saved;
    QApplication::setOverrideCursor(Qt::WaitCursor);
    const bool ok = ProjectFile::save(path, *m_window->m_doc, *m_window, m_window->m_reporter.get(), &saved);
    QApplication::restoreOverrideCursor();
    if (ok) {
        if (overPartlyRead) {
            m_notReadWholePath.clear();
            m_notReadWholeReason.clear();
        }
        setCurrentFile(saved);
        m_window->m_history->markSaved();
        m_window->m_autosave->discard();
    }
    return ok;
}

void DocumentLifecycle::saveCurrent()
{
    if (!m_currentFile.isEmpty())
        save(m_currentFile);
    else
        saveAs();
}

void DocumentLifecycle::saveAs()
{
    const QString proposed = QDir(RunplanSettings::lastDirPath()).filePath(tr("Untitled.rpproj"));
    const QString extension = QStringLiteral(".rpproj");
    for (;;) {
        QString name = m_window->m_prompter->getSaveFileName(m_window, tr("Save Configuration"), proposed,
                                                             projectFilter());
        if (name.isEmpty())
            return;
        if (!name.endsWith(extension)) {
            // The file dialog checked the name it was given, not this one.
            name += extension;
            if (QFileInfo::exists(name) && !m_window->m_prompter->askReplace(m_window, name))
                continue;
        }
        RunplanSettings::setLastDirPath(QFileInfo(name).absolutePath());
        save(name);
        return;
    }
}

bool DocumentLifecycle::offerRecovery()
{
    RecoveryStore::Orphan orphan;
    while (m_window->m_autosave->store().claimOrphan(&orphan)) {
        const QString name =
            orphan.originalPath.isEmpty() ? tr("Untitled.rpproj") : QFileInfo(orphan.originalPath).fileName();
        if (!m_window->m_prompter->askRecover(m_window, name)) {
            m_window->m_autosave->store().finishClaim();
            continue;
        }
        bool read = false;
        {
            EditHistory::Pause pause(m_window->m_history);
            AnalysisHold hold(m_window->m_analysisSuspended);
            InteractiveChangeOff off(m_window);
            read = ProjectFile::read(orphan.project, *m_window->m_doc, *m_window, m_window->m_reporter.get(),
                                     orphan.projectPath);
        }
        if (!read) {
            m_window->m_autosave->store().finishClaim();
            continue;
        }
        setCurrentFile(orphan.originalPath);
        m_window->m_doc->setModified(true);
        m_window->m_history->restartUnsaved();
        m_window->runAnalysis();
        // The changes are this window's now: its own recovery file takes them over.
        m_window->m_autosave->writeNow();
        m_window->m_autosave->store().finishClaim();
        return true;
    }
    return false;
}
