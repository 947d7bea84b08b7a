#include "app/ExportRunner.h"

#include "calc/CsvExport.h"
#include "catalog/Reporter.h"
#include "model/SafeFile.h"
#include "update/LoadingDialog.h"

#include <QApplication>
#include <QDir>
#include <QPushButton>
#include <QSaveFile>

void runWithProgress(QWidget* parent, const std::function<void()>& work)
{
    auto* dialog = new LoadingDialog(parent);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->showCentredOn(QApplication::activeWindow());
    QCoreApplication::processEvents();
    work();
    dialog->close();
}

ExportRunner::ExportRunner(QWidget* window) : QObject(window), m_window(window) {}

bool ExportRunner::run(Kind kind, const QString& fileName, ExportHost& host, bool unattended,
                       Reporter* reporter)
{
    // Written through a temporary file: a failed export leaves an earlier file as it was, and a
    // cancelled one replaces it with the rows written so far.
    QSaveFile file(fileName);
    if (!SafeFile::open(file)) {
        if (unattended)
            reporter->message(
                Reporter::Kind::Critical, QStringLiteral("Runplan"),
                tr("cannot write %1: %2").arg(QDir::toNativeSeparators(fileName), file.errorString()));
        return false;
    }

    m_running = true;
    if (!unattended) {
        m_dialog = new LoadingDialog(m_window);
        connect(m_dialog->cancelButton(), &QPushButton::clicked, this, &ExportRunner::cancel);
        connect(m_dialog, &QDialog::rejected, this, &ExportRunner::cancel);
        m_dialog->showCentredOn(QApplication::activeWindow());
        QCoreApplication::processEvents();
    }
    if (kind == Kind::AllFixtures)
        CsvExport::exportAllFixtures(file, host);
    else
        CsvExport::exportCurrentFixture(file, host);
    const bool written = SafeFile::commit(file);
    m_running = false;
    if (m_dialog) {
        m_dialog->hide();
        m_dialog->deleteLater();
        m_dialog = nullptr;
    }
    if (unattended && !written)
        reporter->message(
            Reporter::Kind::Critical, QStringLiteral("Runplan"),
            tr("writing %1 failed: %2").arg(QDir::toNativeSeparators(fileName), file.errorString()));
    return written;
}

bool ExportRunner::progress(int percent)
{
    if (m_dialog) {
        m_dialog->setPercent(percent);
        QCoreApplication::processEvents();
    }
    return m_running;
}
