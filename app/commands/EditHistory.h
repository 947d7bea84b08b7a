#pragma once

#include "model/DocumentSnapshot.h"

#include <QObject>
#include <functional>

class ConfigDocument;
class HeaderChoices;
class QUndoStack;

// The undo history of one configuration. Every change the user makes runs inside a Step; when the
// outermost step ends, the state before and after it become one command on the stack (nothing
// when the change left the content as it was). Changes made while paused or while a state is
// being put back are not recorded. The stack's clean state is the saved one: putting back the
// saved state clears the modified flag, any other sets it.
class EditHistory : public QObject
{
    Q_OBJECT
public:
    // Steps kept. A snapshot of a 2 000-component tree is some 30 KB compressed and consecutive
    // steps share their common state, so a full history stays within a few megabytes however
    // large the configuration.
    static constexpr int UndoLimit = 100;

    // Puts a state back into the document and header choices and brings the rest of the
    // program up to date (the window: analysis, totals, property table).
    using Restorer = std::function<void(const DocumentSnapshot&)>;

    EditHistory(ConfigDocument* doc, HeaderChoices* header, Restorer restorer, QObject* parent = nullptr);
    ~EditHistory() override;

    QUndoStack* stack() const { return m_stack; }

    // An unattended run keeps no history: while disabled nothing is recorded.
    void setEnabled(bool on) { m_enabled = on; }
    bool isEnabled() const { return m_enabled; }

    // Forgets every step; the present state is the start and counts as saved (New, Open).
    void restart();
    // As restart, but the present state has never been saved (a recovered configuration).
    void restartUnsaved();
    // Takes the present state as the start of the next step without recording what led to it
    // (the exports drive the configuration but are no edit).
    void rebase();
    // The present state was saved.
    void markSaved();

    // Called by the commands.
    void restoreState(const DocumentSnapshot& state);

    // Groups everything done in its scope into one step named text.
    class Step
    {
    public:
        Step(EditHistory* history, const QString& text, int mergeId = -1);
        ~Step();
        Step(const Step&) = delete;
        Step& operator=(const Step&) = delete;

    private:
        EditHistory* m_history;
        QString m_text;
        int m_mergeId;
    };

    // Nothing in its scope is recorded (opening a project, building the window).
    class Pause
    {
    public:
        explicit Pause(EditHistory* history) : m_history(history) { ++m_history->m_paused; }
        ~Pause() { --m_history->m_paused; }
        Pause(const Pause&) = delete;
        Pause& operator=(const Pause&) = delete;

    private:
        EditHistory* m_history;
    };

signals:
    // A step was added to the stack (merges included).
    void stepRecorded();

private:
    bool recording() const { return m_enabled && m_paused == 0 && !m_restoring; }
    void beginStep();
    void endStep(const QString& text, int mergeId);

    ConfigDocument* m_doc;
    HeaderChoices* m_header;
    Restorer m_restorer;
    QUndoStack* m_stack;
    DocumentSnapshot m_base; // the state the next step starts from
    QList<int> m_stepStartPath;
    bool m_stepStartHasCurrent = false;
    int m_depth = 0;
    int m_paused = 0;
    bool m_enabled = true;
    bool m_restoring = false;
    bool m_flagPending = false;
};
