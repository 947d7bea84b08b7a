#pragma once

#include <QHash>
#include <QList>
#include <QPair>
#include <QSet>
#include <QString>
#include <QStringList>

class CWidget;
class ConfigDocument;
class Database;
class DLFixture;
class DLPowerSupply;
class HeaderChoices;

// The circuit inputs of one analysis, read from the main window's selectors.
struct CircuitInputs {
    double lineVoltage = 120.0;   // volts
    double maxCircuitLoad = 15.0; // amps
    int frequency = 60;           // Hz
    QString controller;
    const DLPowerSupply* enabler = nullptr;
    const DLFixture* selectedFixture = nullptr;

    double deratedLoad() const { return 0.8 * maxCircuitLoad; }
};

// Reads in-memory header choices the way the main window reads its selectors (headless use).
CircuitInputs inputsFromHeader(const HeaderChoices& header, const Database& db);

struct TooLongRun {
    const CWidget* end = nullptr;
    double length = 0.0;
};

// The figures of one run, from its end component up to the enabler.
struct RunFigures {
    const CWidget* end = nullptr;
    int fixtures = 0;
    double length = 0.0;      // ft
    double power = 0.0;       // W
    double current = 0.0;     // A
    double voltageDrop = 0.0; // V
    double resistance = 0.0;  // ohm
    int runVoltage = 0;       // the available voltage handed over at the enabler, truncated
    int maxFixtures = 0;      // the weighted maximum count; 0 when the count is not checked
    bool faulty = false;      // a per-run check failed
};

// Everything one analysis found: totals, the report texts and the components over their limits.
struct AnalysisResult {
    // Circuit totals
    double totalLength = 0.0;
    double totalPower = 0.0;
    double totalCurrent = 0.0;
    double totalVoltageDrop = 0.0;
    double totalResistance = 0.0;
    int fixtureCount = 0;
    int receiverCount = 0;
    double deratedLoad = 0.0;
    bool hasInrush = false;
    double totalInrush = 0.0;
    bool hasLeakage = false;
    double totalLeakage = 0.0; // amps

    // Run tables
    QList<TooLongRun> tooLong;
    QList<QPair<const CWidget*, double>> receiverLengths; // Feedwise receivers, in tree order
    QHash<const CWidget*, double> dynaLineLengths;        // the figure shown by supplies and receivers
    QList<RunFigures> runs;                               // one per end component, in leaf order

    // Feedwise branch wiring (display only)
    bool feedwiseEnabled = false; // the root supply is on the Feedwise side
    double feedwiseLength = 0.0;
    double feedwiseLoad = 0.0;
    QSet<const CWidget*> feedwiseOverLimit; // supplies and receivers whose Feedwise load figure is >= 1

    // Limit checks
    bool pass = true;
    QSet<const CWidget*> flagged;
    // What the canvas marks: the flagged components, the receivers over their Feedwise limit and,
    // unless the selected fixture is of family 1, the supplies over theirs.
    QSet<const CWidget*> errorMarks;
    QString circuitMessages; // each starts with a line break
    QStringList runMessages; // per-run texts longer than one character, runs in leaf order

    // Report texts
    QString derateLabel;  // "(derated to %1 amps)"
    QString fixtureLabel; // "Total Fixtures: %1"
    QString powerText;    // one decimal
    QString currentText;  // one decimal
    QString feedwiseText; // one decimal
    QString summaryLine;

    // The output-log lines in order: the red per-run texts, then the summary (red when failing).
    QList<QPair<QString, bool>> logLines() const;
};

// Analyses the tree under root (the enabler) against the inputs and the catalog.
AnalysisResult analyze(const CWidget* root, const CircuitInputs& inputs, const Database& db);

// Stores what painting and the property table read: pass flag, flagged components, length figures.
void applyResult(ConfigDocument& doc, const AnalysisResult& result);

// Number formats of the report.
QString formatNumber(double v); // general format, six significant digits
QString formatOneDecimal(double v);
