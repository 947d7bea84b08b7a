#pragma once

#include <QColor>
#include <QList>
#include <QPair>
#include <QString>

class QTextEdit;

// The window's output log: coloured lines appended to a read-only text edit. A held log (a window
// that is never shown) keeps its lines in a plain list and writes them into the text edit only
// when someone asks for it, so an unattended run does no text-document work per line.
class OutputLog
{
public:
    explicit OutputLog(QTextEdit* edit) : m_edit(edit) {}

    void append(const QString& text, const QColor& color);
    void clear();
    // From now on lines wait in the list; the text edit keeps its text and colours exactly but
    // lays none of it out and keeps no undo history.
    void hold();
    // The text edit with every line appended so far.
    QTextEdit* edit();

private:
    void write(const QList<QPair<QString, QColor>>& lines);

    QTextEdit* m_edit;
    bool m_held = false;
    QList<QPair<QString, QColor>> m_waiting;
};
