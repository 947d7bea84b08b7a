#include "app/OutputLog.h"

#include "app/UnlaidTextLayout.h"

#include <QScrollBar>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextEdit>

void OutputLog::append(const QString& text, const QColor& color)
{
    if (m_held)
        m_waiting.append({text, color});
    else
        write({{text, color}});
}

void OutputLog::clear()
{
    m_waiting.clear();
    m_edit->clear();
}

void OutputLog::hold()
{
    m_held = true;
    QTextDocument* log = m_edit->document();
    log->setUndoRedoEnabled(false);
    log->setDocumentLayout(new UnlaidTextLayout(log));
}

QTextEdit* OutputLog::edit()
{
    if (!m_waiting.isEmpty()) {
        const QList<QPair<QString, QColor>> lines = std::move(m_waiting);
        m_waiting.clear();
        write(lines);
    }
    return m_edit;
}

void OutputLog::write(const QList<QPair<QString, QColor>>& lines)
{
    // Coloured through a cursor of its own at the end: the log's cursor (the user's selection)
    // keeps its text and its colour. One edit block: the views hear of the lines once.
    QTextCursor end(m_edit->document());
    end.movePosition(QTextCursor::End);
    end.beginEditBlock();
    for (const auto& line : lines) {
        if (!m_edit->document()->isEmpty())
            end.insertBlock();
        QTextCharFormat format;
        format.setForeground(line.second);
        end.insertText(line.first, format);
    }
    end.endEditBlock();
    m_edit->verticalScrollBar()->setValue(m_edit->verticalScrollBar()->maximum());
}
