#pragma once

#include <QString>

class CWidget;

// The names of the undoable edits as the Edit menu shows them after "Undo" and "Redo".
namespace CommandText
{
QString add(int kind);               // "Add Fixture"
QString remove(const CWidget* w);    // "Delete Receiver"; "Delete" when nothing is selected
QString change(const QString& what); // "Change Length", "Change Line Voltage"
QString maximize();
QString reset();
QString newConfiguration();

// Spin boxes whose repeated changes are one step.
enum MergeId { CustomLineVoltage = 1, CustomMaxCircuitLoad = 2 };
} // namespace CommandText
