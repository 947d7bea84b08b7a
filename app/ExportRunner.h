#pragma once

#include <QObject>
#include <QPointer>
#include <functional>

class ExportHost;
class LoadingDialog;
class QWidget;
class Reporter;

// Shows the "please wait" window centred on the active window while work runs on the GUI thread.
void runWithProgress(QWidget* parent, const std::function<void()>& work);

// Runs one of the two CSV exports into a file: a progress window with Cancel at the desktop,
// none when unattended. Failures go to the reporter when unattended (a person at the desktop
// chose the file and sees that nothing was written).
class ExportRunner : public QObject
{
    Q_OBJECT
public:
    enum class Kind { AllFixtures, CurrentFixture };

    explicit ExportRunner(QWidget* window);

    // True when the file was written completely.
    bool run(Kind kind, const QString& fileName, ExportHost& host, bool unattended, Reporter* reporter);
    bool isRunning() const { return m_running; }
    // The export's progress: updates the window; false once the user cancelled.
    bool progress(int percent);
    // Stops the running export at its next progress report.
    void cancel() { m_running = false; }

private:
    QWidget* m_window;
    QPointer<LoadingDialog> m_dialog;
    bool m_running = false;
};
