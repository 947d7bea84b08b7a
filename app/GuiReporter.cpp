#include "app/GuiReporter.h"

#include "app/Runplan.h"

#include <QApplication>
#include <QMessageBox>

void GuiReporter::message(Kind kind, const QString& title, const QString& text)
{
    if (Reporter::global() != this) {
        Reporter::global()->message(kind, title, text);
        return;
    }
    QWidget* parent = QApplication::activeWindow();
    switch (kind) {
    case Kind::Warning:
        QMessageBox::warning(parent, title, text);
        break;
    case Kind::Critical:
        QMessageBox::critical(parent, title, text);
        break;
    case Kind::Information:
        QMessageBox::information(parent, title, text);
        break;
    }
}

Runplan* GuiReporter::window() const
{
    return m_window ? m_window : Runplan::instance();
}

void GuiReporter::status(const QString& text)
{
    if (Runplan* w = window())
        w->showStatusLine(text);
}

void GuiReporter::log(const QString& text, bool failing)
{
    if (Runplan* w = window())
        w->statusMessage(text, failing ? Runplan::failingLogColor() : Runplan::passingLogColor());
}
