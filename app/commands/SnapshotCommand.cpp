#include "app/commands/SnapshotCommand.h"

#include "app/commands/EditHistory.h"

#include <utility>

SnapshotCommand::SnapshotCommand(EditHistory* history, const QString& text, DocumentSnapshot before,
                                 DocumentSnapshot after, int mergeId)
    : QUndoCommand(text), m_history(history), m_before(std::move(before)), m_after(std::move(after)),
      m_mergeId(mergeId)
{
}

void SnapshotCommand::undo()
{
    m_history->restoreState(m_before);
    m_applied = false;
}

void SnapshotCommand::redo()
{
    if (m_applied)
        return; // pushed after the edit was made
    m_history->restoreState(m_after);
    m_applied = true;
}

bool SnapshotCommand::mergeWith(const QUndoCommand* other)
{
    if (other->id() != m_mergeId || m_mergeId < 0)
        return false;
    m_after = static_cast<const SnapshotCommand*>(other)->m_after;
    // A spin box turned back to where it started leaves nothing to undo.
    setObsolete(m_after.sameContent(m_before));
    return true;
}
