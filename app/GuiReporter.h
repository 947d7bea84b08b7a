#pragma once

#include "catalog/Reporter.h"

class Runplan;

// How the engine speaks at the desktop: status lines go to a main window's status bar and log
// lines to its output log. Messages become message boxes over the active window when this is the
// process's reporter; a window's own reporter hands them to the process's reporter (message boxes
// at the desktop, standard error when unattended).
class GuiReporter : public Reporter
{
public:
    // window: where status and log lines go; null for the process's main window.
    explicit GuiReporter(Runplan* window = nullptr) : m_window(window) {}

    void message(Kind kind, const QString& title, const QString& text) override;
    void status(const QString& text) override;
    void log(const QString& text, bool failing = false) override;

private:
    Runplan* window() const;

    Runplan* m_window;
};
