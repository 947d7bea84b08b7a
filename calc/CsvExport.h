#pragma once

#include <QList>
#include <QString>

class QIODevice;
class Database;
class DLPowerSupply;
class VxFixture;

// What an export drives: the selectors, the canvas and Maximize. The main window implements it
// over its widgets; Session implements it headless.
class ExportHost
{
public:
    virtual ~ExportHost() = default;
    virtual const Database& database() const = 0;
    // Selector changes made with the automatic clear question switched off.
    virtual void selectEnabler(const DLPowerSupply* enabler) = 0;
    virtual void selectFixture(const VxFixture* fixture) = 0;
    // Selects the line-voltage entry whose text is the number; no match leaves it unchanged.
    virtual void selectLineVoltage(int volts) = 0;
    // Resets the canvas to the enabler with one fixture of the selected type, which is current.
    virtual void resetWithFixture() = 0;
    virtual void maximize() = 0;
    virtual int fixtureCount() const = 0;
    // The circuit total length of the last analysis.
    virtual double totalLength() const = 0;
    virtual const VxFixture* currentFixture() const = 0;
    // Reports progress after a row; false when the user cancelled.
    virtual bool progress(int percent) = 0;
};

namespace CsvExport {
// The two enablers whose fixtures the all-fixtures export lists, in order.
QString firstEnablerName();  // "Signal Feeder Pro"
QString secondEnablerName(); // "Line Voltage"

QList<int> allFixturesColumns(const Database& db);
QList<int> fixtureColumns(const VxFixture& fixture);
// The length as written in a cell: rounded half away from zero to one decimal.
QString formatLength(double feet);

// Write the table; false when cancelled part-way (rows written so far stay).
bool exportAllFixtures(QIODevice& out, ExportHost& host);
bool exportCurrentFixture(QIODevice& out, ExportHost& host);
} // namespace CsvExport
