#include "app/GuiReporter.h"

#include "app/Runplan.h"

#include <QApplication>
#include <QMessageBox>

void GuiReporter::message(Kind kind, const QString& title, const QString& text)
{
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

void GuiReporter::status(const QString& text)
{
    if (Runplan* window = Runplan::instance())
        window->showStatusLine(text);
}

void GuiReporter::log(const QString& text, bool failing)
{
    if (Runplan* window = Runplan::instance())
        window->statusMessage(text, failing ? Runplan::failingLogColor() : Runplan::passingLogColor());
}
