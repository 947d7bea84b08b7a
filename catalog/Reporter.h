#pragma once

#include <QList>
#include <QString>
#include <QStringList>

// How the engine speaks to the user. The desktop front end turns messages into message boxes,
// status lines into the status bar and log lines into the output log; unattended runs write
// them to standard error; tests record them.
class Reporter
{
public:
    enum class Kind { Warning, Critical, Information };

    virtual ~Reporter() = default;

    // A modal message with an OK button (catalog and file errors). Title is usually "Runplan".
    virtual void message(Kind kind, const QString& title, const QString& text) = 0;
    // A line for the status bar, shown without time-out.
    virtual void status(const QString& text);
    // A line for the output log; failing lines are drawn in red.
    virtual void log(const QString& text, bool failing = false);

    void warning(const QString& text) { message(Kind::Warning, QStringLiteral("Runplan"), text); }

    // The reporter used where no caller hands one in (the catalog singleton). Never null.
    static Reporter* global();
    static void setGlobal(Reporter* reporter);
};

// Writes every message to standard error; the default, and the unattended ("-nw") reporter.
class StderrReporter : public Reporter
{
public:
    void message(Kind kind, const QString& title, const QString& text) override;
};

// Keeps everything it is told; used by tests and by the plain-text report of a saved plan.
class RecordingReporter : public Reporter
{
public:
    struct Message {
        Kind kind;
        QString title;
        QString text;
    };
    QList<Message> messages;
    QStringList statusLines;
    QStringList logLines;
    QList<bool> logFailing;

    void message(Kind kind, const QString& title, const QString& text) override
    {
        messages.append({kind, title, text});
    }
    void status(const QString& text) override { statusLines.append(text); }
    void log(const QString& text, bool failing = false) override
    {
        logLines.append(text);
        logFailing.append(failing);
    }
    QStringList texts() const
    {
        QStringList out;
        for (const auto& m : messages)
            out.append(m.text);
        return out;
    }
    void clear()
    {
        messages.clear();
        statusLines.clear();
        logLines.clear();
        logFailing.clear();
    }
};

// Makes a reporter the global one for the life of a scope.
class ScopedGlobalReporter
{
public:
    explicit ScopedGlobalReporter(Reporter* r) : m_previous(Reporter::global()) { Reporter::setGlobal(r); }
    ~ScopedGlobalReporter() { Reporter::setGlobal(m_previous); }
    ScopedGlobalReporter(const ScopedGlobalReporter&) = delete;
    ScopedGlobalReporter& operator=(const ScopedGlobalReporter&) = delete;

private:
    Reporter* m_previous;
};
