#include "app/commands/EditHistory.h"

#include "app/commands/SnapshotCommand.h"
#include "model/CWidget.h"
#include "model/ConfigDocument.h"

#include <QUndoStack>

EditHistory::EditHistory(ConfigDocument* doc, HeaderChoices* header, Restorer restorer, QObject* parent)
    : QObject(parent), m_doc(doc), m_header(header), m_restorer(std::move(restorer)),
      m_stack(new QUndoStack(this))
{
    m_stack->setUndoLimit(UndoLimit);
    // The stack moves its index only after a command's undo or redo has put a state back: the
    // modified flag follows then.
    connect(m_stack, &QUndoStack::indexChanged, this, [this]() {
        if (m_flagPending)
            m_doc->setModified(!m_stack->isClean());
        m_flagPending = false;
    });
}

EditHistory::~EditHistory() = default;

void EditHistory::restart()
{
    m_stack->clear();
    m_base = DocumentSnapshot::capture(*m_doc, *m_header);
}

void EditHistory::restartUnsaved()
{
    restart();
    m_stack->resetClean();
}

void EditHistory::rebase()
{
    m_base = DocumentSnapshot::capture(*m_doc, *m_header);
}

void EditHistory::markSaved()
{
    m_stack->setClean();
}

void EditHistory::restoreState(const DocumentSnapshot& state)
{
    m_restoring = true;
    m_restorer(state);
    m_restoring = false;
    m_base = state;
    m_flagPending = true;
}

EditHistory::Step::Step(EditHistory* history, const QString& text, int mergeId)
    : m_history(history), m_text(text), m_mergeId(mergeId)
{
    if (m_history->m_depth++ == 0)
        m_history->beginStep();
}

EditHistory::Step::~Step()
{
    if (--m_history->m_depth == 0)
        m_history->endStep(m_text, m_mergeId);
}

void EditHistory::beginStep()
{
    const CWidget* current = m_doc->current();
    m_stepStartHasCurrent = current != nullptr;
    m_stepStartPath = DocumentSnapshot::pathOf(current);
}

void EditHistory::endStep(const QString& text, int mergeId)
{
    if (!recording())
        return;
    DocumentSnapshot before = m_base;
    before.hasCurrent = m_stepStartHasCurrent;
    before.currentPath = m_stepStartPath;
    DocumentSnapshot after = DocumentSnapshot::capture(*m_doc, *m_header);
    if (after.sameContent(before))
        return;
    m_base = after;
    const bool saved = !m_doc->isModified();
    m_stack->push(new SnapshotCommand(this, text, std::move(before), std::move(after), mergeId));
    // A change the document itself counts as nothing to save (resetting a lone run, New) leaves
    // a state that needs no save either when reached again by undo or redo.
    if (saved)
        m_stack->setClean();
    emit stepRecorded();
}
