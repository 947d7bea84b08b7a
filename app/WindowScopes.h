#pragma once

#include "app/Runplan.h"

#include <QComboBox>

// Switches the main window's clear question off for a scope and restores the previous setting after.
class InteractiveChangeOff
{
public:
    explicit InteractiveChangeOff(Runplan* w) : m_window(w), m_previous(w->isInteractiveChange())
    {
        w->setInteractiveChange(false);
    }
    ~InteractiveChangeOff() { m_window->setInteractiveChange(m_previous); }
    InteractiveChangeOff(const InteractiveChangeOff&) = delete;
    InteractiveChangeOff& operator=(const InteractiveChangeOff&) = delete;

private:
    Runplan* m_window;
    bool m_previous;
};

// Holds the automatic analysis back for a scope.
class AnalysisHold
{
public:
    explicit AnalysisHold(int& counter) : m_counter(counter) { ++m_counter; }
    ~AnalysisHold() { --m_counter; }
    AnalysisHold(const AnalysisHold&) = delete;
    AnalysisHold& operator=(const AnalysisHold&) = delete;

private:
    int& m_counter;
};

// The entry whose text is exactly text (case included), or -1.
inline int findExactText(const QComboBox* combo, const QString& text)
{
    return combo->findText(text, Qt::MatchFixedString | Qt::MatchCaseSensitive);
}
