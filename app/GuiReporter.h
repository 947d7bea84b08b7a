#pragma once

#include "catalog/Reporter.h"

// How the engine speaks to a person at the desktop: messages become message boxes over the active
// window, status lines go to the main window's status bar and log lines to its output log.
class GuiReporter : public Reporter
{
public:
    void message(Kind kind, const QString& title, const QString& text) override;
    void status(const QString& text) override;
    void log(const QString& text, bool failing = false) override;
};
