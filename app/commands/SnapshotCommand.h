#pragma once

#include "model/DocumentSnapshot.h"

#include <QUndoCommand>

class EditHistory;

// One edit of the configuration, kept as the states before and after it. The edit has already
// happened when the command is pushed, so its first redo does nothing; later undo and redo put
// the stored state back through the history.
class SnapshotCommand : public QUndoCommand
{
public:
    // mergeId: commands with the same id that follow each other become one (-1: never).
    SnapshotCommand(EditHistory* history, const QString& text, DocumentSnapshot before,
                    DocumentSnapshot after, int mergeId = -1);

    void undo() override;
    void redo() override;
    int id() const override { return m_mergeId; }
    bool mergeWith(const QUndoCommand* other) override;

    const DocumentSnapshot& before() const { return m_before; }
    const DocumentSnapshot& after() const { return m_after; }

private:
    EditHistory* m_history;
    DocumentSnapshot m_before;
    DocumentSnapshot m_after;
    int m_mergeId;
    bool m_applied = true;
};
