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
    bool componentFigures = true; // also work out the figures at every component

    double deratedLoad() const { return 0.8 * maxCircuitLoad; }
};

// Reads in-memory header choices the way the main window reads its selectors (headless use).
CircuitInputs inputsFromHeader(const HeaderChoices& header, const Database& db);

struct TooLongRun {
    const CWidget* end = nullptr;
    double length = 0.0;
};

// The limits a run is checked against, in the order of the per-run checks.
enum RunLimitKind {
    LimitFixtureCount,
    LimitLength,    // the fixture type's maximum length
    LimitRunLength, // the per-run length of the first receiver met, else of the enabler
    LimitVoltageDrop,
    LimitDropShare, // a fraction of the line voltage
    LimitPower,
    LimitCurrent,
    LimitMinimumVoltage,
    RunLimitKinds
};

// The limits of one run, gathered over its fixtures. A limit that no fixture of the run (nor its
// receiver or enabler) sets keeps its start value and is not marked in `applied`.
struct RunLimitValues {
    double maxLength = 100000.0;
    double maxVoltageDrop = 100.0;
    double maxShare = 100.0;
    double maxPower = 10000.0;
    double maxCurrent = 1000.0;
    double minVoltage = 0.0;
    double runLength = 0.0; // the per-run length limit
    int maxFixtures = 0;
    int outputMode = 0;
    unsigned applied = 0; // one bit per RunLimitKind that the run is checked against

    bool applies(RunLimitKind kind) const { return (applied & (1u << kind)) != 0; }
    // The limit as the check compares it (the share in volts at the given line voltage).
    double value(RunLimitKind kind, double lineVoltage) const;
};

// The translated name of a limit, for tooltips and the report ("voltage drop").
QString runLimitName(RunLimitKind kind);
// How the limit reads with its unit ("50 V", "0.1 of the line voltage").
QString runLimitText(RunLimitKind kind, const RunLimitValues& limits);

// How much of one limit a figure takes: 1 is at the limit, above 1 over it. For the minimum
// voltage it is the share of the margin between the line voltage and the minimum already dropped.
struct LimitUse {
    RunLimitKind kind = LimitLength;
    double figure = 0.0; // the component's figure that the limit is compared with
    double limit = 0.0;
    double use = 0.0;
};

// The figures at one placed component, from the worst run through it (the run with the largest
// voltage drop from the enabler to the component). The voltage at a component is the line voltage
// less the drop of every component from the enabler down to and including it, so at a run's end it
// is the line voltage less the run's whole voltage drop.
struct ComponentFigures {
    const CWidget* widget = nullptr;
    const CWidget* runEnd = nullptr; // end component of the worst run through it
    int runIndex = -1;               // that run's index in AnalysisResult::runs
    int runCount = 0;                // runs that pass the component
    double voltage = 0.0;            // V available at the component
    double drop = 0.0;               // V dropped from the enabler to it
    double dropPercent = 0.0;        // the drop in % of the line voltage
    double current = 0.0;            // A: the run's accumulated current at the component
    double power = 0.0;              // W: the run's power at and below the component
    double length = 0.0;             // ft: the run's length at and below the component
    int fixtures = 0;                // the run's fixtures at and below the component
    double minVoltage = 0.0;         // the run's minimum voltage, 0 when it has none
    int nearestCount = 0;
    LimitUse nearest[2]; // the limits the component is nearest to, nearest first
};

// What the walk keeps at a component: the worst run through it and that run's figures there.
struct ComponentRecord {
    const CWidget* widget = nullptr;
    int run = -1; // index into AnalysisResult::runs; -1 when no run passes the component
    int runCount = 0;
    int fixtures = 0;
    double drop = 0.0;    // from the enabler to and including the component
    double runDrop = 0.0; // the worst run's whole drop
    double current = 0.0;
    double power = 0.0;
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
    bool tooLong = false;     // longer than its per-run length limit
    RunLimitValues limits;
    QString messages; // the failed checks' texts, each starting with a line break
};
Q_DECLARE_TYPEINFO(RunFigures, Q_RELOCATABLE_TYPE);
Q_DECLARE_TYPEINFO(ComponentRecord, Q_PRIMITIVE_TYPE);

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
    double lineVoltage = 0.0;
    QList<ComponentRecord> componentRecords; // one per component, depth first (empty when not asked for)
    // The figures at every component a run passes, depth first, and at one component (null when
    // no run passes it). Worked out from the records on first use: painting asks, Maximize need not.
    const QList<ComponentFigures>& components() const;
    const ComponentFigures* figuresAt(const CWidget* w) const;

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

private:
    mutable bool m_componentsBuilt = false;
    mutable QList<ComponentFigures> m_components;
    mutable QHash<const CWidget*, qsizetype> m_componentIndex;
};

// Analyses the tree under root (the enabler) against the inputs and the catalog.
AnalysisResult analyze(const CWidget* root, const CircuitInputs& inputs, const Database& db);

// Stores what painting and the property table read: pass flag, flagged components, length figures.
void applyResult(ConfigDocument& doc, const AnalysisResult& result);

// Number formats of the report.
QString formatNumber(double v); // general format, six significant digits
QString formatOneDecimal(double v);
