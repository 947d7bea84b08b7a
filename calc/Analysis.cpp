#include "calc/Analysis.h"

#include "catalog/Database.h"
#include "model/CWidget.h"
#include "model/ConfigDocument.h"
#include "model/HeaderChoices.h"

#include <QCoreApplication>

#include <algorithm>
#include <climits>
#include <cmath>
#include <utility>
#include <vector>

namespace
{

const QLatin1String kFeedwise("Feedwise");

// Truncation towards zero that stays defined for any double.
int truncToInt(double v)
{
    if (std::isnan(v))
        return 0;
    if (v >= 2147483647.0)
        return INT_MAX;
    if (v <= -2147483648.0)
        return INT_MIN;
    return static_cast<int>(v);
}

// The two gen4 fixtures whose maximum count follows the circuit's breaker rating.
bool usesBreakerTables(const QString& fixtureName)
{
    return fixtureName == QLatin1String("Tintflare Dynaline gen4") ||
           fixtureName == QLatin1String("Linea Flare Dynaline gen4");
}

// A fixture record met in the tree, with what the analysis looks up for it only once.
struct FixtureType {
    const DLFixture* record = nullptr;
    double power = 0.0;      // per-voltage power at the line voltage (floor lookup)
    double maxCurrent = 0.0; // per-voltage maximum current, MaxFixtureCurrent where that is 0
    bool breakerTables = false;
    // Lookups of the last key asked: runs ask the same voltage again and again.
    int powerFactorKey = INT_MIN;
    double powerFactor = 0.0;
    int countKey = INT_MIN;
    int maxCount = 0;
    int runCount = 0; // fixtures of this type in the run being walked
};

// A component of the tree in depth-first order, with its run-independent contribution.
struct Node {
    const CWidget* widget = nullptr;
    int parent = -1;
    int kind = -1;
    int childCount = 0;
    int number = 0; // 1-based among the components of its kind, depth first
    int type = -1;  // index into the fixture types
    double length = 0.0;
    double resistance = 0.0;
    double power = 0.0;
    double powerFactor = 1.0;
    const QString* mode = nullptr;     // the effective output mode, by the component's own rule
    const QString* location = nullptr; // the location text, likewise (both held by the tree)
    bool modeFeedwise = false;         // the effective output mode is "Feedwise"
    bool locationFeedwise = false;     // the location text is "Feedwise"
};

// Narrows the run's limits by one fixture type of the run.
void narrowLimits(RunLimitValues& limits, const FixtureType& t)
{
    const DLFixture* r = t.record;
    if (r->maxFixtureLength != 0.0) {
        limits.maxLength = std::min(limits.maxLength, r->maxFixtureLength);
        limits.applied |= 1u << LimitLength;
    }
    limits.maxVoltageDrop = std::min(limits.maxVoltageDrop, r->maxVoltageDrop);
    limits.applied |= 1u << LimitVoltageDrop;
    if (r->voltageDropPercent != 0.0) {
        limits.maxShare = std::min(limits.maxShare, r->voltageDropPercent);
        limits.applied |= 1u << LimitDropShare;
    }
    if (r->maxPower != 0.0) {
        limits.maxPower = std::min(limits.maxPower, r->maxPower);
        limits.applied |= 1u << LimitPower;
    }
    if (t.maxCurrent != 0.0) {
        limits.maxCurrent = std::min(limits.maxCurrent, t.maxCurrent);
        limits.applied |= 1u << LimitCurrent;
    }
    if (r->minVoltage != 0.0) {
        limits.minVoltage = std::max(limits.minVoltage, r->minVoltage);
        limits.applied |= 1u << LimitMinimumVoltage;
    }
    limits.outputMode = std::max(limits.outputMode, r->safetyRequired);
}

// What a component hands the run: its available voltage and wiring factor (the output-mode table
// for fixtures), its own power, power factor and fudge factor.
struct Contribution {
    double available = 0.0;
    double k = 1.0;
    double fudge = 1.0;
    double power = 0.0;
    double powerFactor = 1.0;
};

// One walk from an end component up to the enabler: the accumulators carried up the run.
struct RunWalk {
    double voltage = 0.0; // available voltage carried up the run
    double drop = 0.0;
    double length = 0.0;
    double current = 0.0;
    double resistance = 0.0;
    double power = 0.0;
    int fixtures = 0;
    int limitReceiver = -1; // the first receiver met
    int last = -1;          // the component the walk ended at
    RunLimitValues limits;
};

// The run's accumulators at one component of the walk, for the figures at that component.
struct PathStep {
    int node = 0;
    double dropBelow = 0.0; // the drop of the components below it
    double power = 0.0;
    double current = 0.0;
    double length = 0.0;
    int fixtures = 0;
};

class Analyzer
{
public:
    Analyzer(const CircuitInputs& inputs, const Database& db, AnalysisResult& result)
        : m_in(inputs), m_db(db), m_r(result), m_lineKey(truncToInt(inputs.lineVoltage))
    {
    }

    void run(const CWidget* root);

private:
    void collect(const CWidget* root);
    int typeOf(const CWidget* fixture);
    int maxCountAt(FixtureType& t, int runVoltage) const;
    void walkRun(int leaf);
    Contribution fixtureContribution(const Node& n, RunWalk& w);
    double addToRun(RunWalk& w, const Node& n, const Contribution& c);
    void countOnce(int i, const Node& n, double ownPower, double term);
    bool endsRun(const Node& n) const;
    void runLengthRule(int leaf, const RunWalk& w, RunFigures& run);
    void fixtureCountRule(RunFigures& run) const;
    void lengthRule(RunFigures& run) const;
    void voltageDropRule(RunFigures& run) const;
    void dropShareRule(RunFigures& run) const;
    void powerRule(RunFigures& run) const;
    void currentRule(RunFigures& run) const;
    void minimumVoltageRule(RunFigures& run) const;
    void checkRun(RunFigures& run);
    void recordFigures(const RunWalk& w, int runIndex);
    int weightedMaximum(int fixtures, int runVoltage);
    void subtreeFigures();
    void circuitChecks();
    void report();

    const CircuitInputs& m_in;
    const Database& m_db;
    AnalysisResult& m_r;
    const int m_lineKey;

    std::vector<Node> m_nodes;
    std::vector<FixtureType> m_types;
    std::vector<char> m_counted;
    std::vector<int> m_touched;
    std::vector<PathStep> m_path;         // the run being walked, for the component figures
    ComponentRecord* m_records = nullptr; // the worst run through each component so far
    std::vector<int> m_tooLongEnds;       // node of each too-long run's end
    std::vector<int> m_feedwiseReceivers; // node of each entry of the receiver lengths
    const VxItem* m_lastFixtureItem = nullptr;
    int m_lastType = -1;
    int m_firstFixture = -1; // first fixture with a record, depth first
    const DLPowerSupply* m_enablerRecord = nullptr;
    // What the root's mode rule is given: no parent, no mode, no location.
    const QString m_undefined = Modes::undefined();
    const QString m_noLocation;
    const QString m_feedwise = Modes::feedwise();
    int m_selectedFamily = 0;
    QString m_messages;
};

int Analyzer::typeOf(const CWidget* fixture)
{
    const VxItem* item = fixture->catalogItem();
    if (item == m_lastFixtureItem)
        return m_lastType;
    int index = -1;
    for (size_t i = 0; i < m_types.size(); ++i) {
        if (m_types[i].record == item) {
            index = static_cast<int>(i);
            break;
        }
    }
    if (index < 0) {
        if (const auto* rec = qobject_cast<const DLFixture*>(item)) {
            FixtureType t;
            t.record = rec;
            t.power = VoltageLookup::floor(rec->powerByVoltage, m_lineKey, rec->power);
            t.maxCurrent = rec->maxFixtureCurrentAt(m_lineKey);
            if (t.maxCurrent == 0.0)
                t.maxCurrent = rec->maxFixtureCurrent;
            t.breakerTables = usesBreakerTables(rec->name) &&
                              !(m_in.enabler && m_in.enabler->name == QLatin1String("RD-5000"));
            m_types.push_back(t);
            index = static_cast<int>(m_types.size()) - 1;
        }
    }
    m_lastFixtureItem = item;
    m_lastType = index;
    return index;
}

void Analyzer::collect(const CWidget* root)
{
    int kindCounters[ItemJunctionBox + 1] = {};
    std::vector<std::pair<const CWidget*, int>> pending;
    pending.emplace_back(root, -1);
    // Depth first without recursion: a run nests one level per fixture.
    while (!pending.empty()) {
        const auto [w, parent] = pending.back();
        pending.pop_back();

        Node n;
        n.widget = w;
        n.parent = parent;
        n.kind = w->itemType();
        n.childCount = w->childCount();
        if (n.kind >= 0 && n.kind <= ItemJunctionBox)
            n.number = ++kindCounters[n.kind];
        const Node* p = parent >= 0 ? &m_nodes[static_cast<size_t>(parent)] : nullptr;
        // The components' own mode and location rules, one step down from the parent's.
        n.mode = &w->modeUnder(p ? p->widget : nullptr, p ? *p->mode : m_undefined);
        n.location = &w->locationUnder(*n.mode, p ? *p->location : m_noLocation);
        n.modeFeedwise = *n.mode == m_feedwise;
        n.locationFeedwise = *n.location == m_feedwise;

        switch (n.kind) {
        case ItemSupply: {
            const auto* s = static_cast<const SupplyWidget*>(w);
            const DLPowerSupply* rec = s->record();
            // A Feedwise-capable supply fed by a Feedwise branch draws its own power from the run.
            if (rec && p && p->kind == ItemBranchWire && p->locationFeedwise &&
                rec->hasOutputMode(kFeedwise)) {
                n.power = rec->power;
                n.powerFactor = rec->powerFactor;
            }
            break;
        }
        case ItemFixture:
            n.type = typeOf(w);
            if (n.type >= 0) {
                const DLFixture* rec = m_types[static_cast<size_t>(n.type)].record;
                n.length = rec->electricalLength;
                n.resistance = rec->resistance;
                if (m_firstFixture < 0)
                    m_firstFixture = static_cast<int>(m_nodes.size());
            }
            break;
        case ItemLeader:
        case ItemJumper: {
            const auto* c = static_cast<const CableWidget*>(w);
            n.length = c->length();
            n.resistance = c->resistancePerFoot() * n.length;
            break;
        }
        case ItemBranchWire: {
            const auto* b = static_cast<const BranchWireWidget*>(w);
            n.length = b->length();
            n.resistance = b->resistancePerFoot() * n.length;
            break;
        }
        case ItemReceiver:
            if (const auto* rec = static_cast<const ReceiverWidget*>(w)->record()) {
                n.power = rec->power;
                n.powerFactor = rec->powerFactor;
                n.resistance = rec->resistance;
            }
            break;
        default:
            break;
        }
        m_nodes.push_back(n);

        const int self = static_cast<int>(m_nodes.size()) - 1;
        const QList<CWidget*>& children = w->children();
        for (auto it = children.crbegin(); it != children.crend(); ++it)
            pending.emplace_back(*it, self);
    }
}

int Analyzer::maxCountAt(FixtureType& t, int runVoltage) const
{
    if (t.countKey == runVoltage)
        return t.maxCount;
    const DLFixture* r = t.record;
    int value = 0;
    if (t.breakerTables) {
        const int rating = truncToInt(m_in.maxCircuitLoad);
        if (rating == 15)
            value = VoltageLookup::nearest(r->maxCount15AByVoltage, runVoltage, 0);
        else if (rating == 20)
            value = VoltageLookup::nearest(r->maxCount20AByVoltage, runVoltage, 0);
    } else {
        value = VoltageLookup::nearest(r->maxCountByVoltage, runVoltage, 0);
    }
    t.countKey = runVoltage;
    t.maxCount = value;
    return value;
}

// The run's maximum count: the fixture types' maxima weighted by their share of the run, in
// single precision as the catalog's counts were worked out. 0 when any type has no maximum.
int Analyzer::weightedMaximum(int fixtures, int runVoltage)
{
    if (m_touched.empty() || fixtures <= 0)
        return 0;
    std::vector<std::pair<int, int>> groups; // maximum, fixtures having it
    groups.reserve(m_touched.size());
    bool usable = true;
    for (int index : m_touched) {
        FixtureType& t = m_types[static_cast<size_t>(index)];
        const int maximum = maxCountAt(t, runVoltage);
        if (maximum < 1)
            usable = false;
        auto it = std::find_if(groups.begin(), groups.end(),
                               [maximum](const auto& g) { return g.first == maximum; });
        if (it == groups.end())
            groups.emplace_back(maximum, t.runCount);
        else
            it->second += t.runCount;
    }
    if (!usable)
        return 0;
    std::sort(groups.begin(), groups.end());
    float sum = 0.0f;
    for (const auto& g : groups)
        sum += static_cast<float>(g.first) * static_cast<float>(g.second) / static_cast<float>(fixtures);
    return truncToInt(static_cast<double>(sum));
}

// The fixture row of the output-mode table: the available voltage and wiring factor its mode
// selects, and the power factor looked up at that voltage.
Contribution Analyzer::fixtureContribution(const Node& n, RunWalk& w)
{
    Contribution c;
    c.available = w.voltage;
    c.power = n.power;
    c.powerFactor = n.powerFactor;
    ++w.fixtures;
    if (n.type < 0)
        return c;
    FixtureType& t = m_types[static_cast<size_t>(n.type)];
    const DLFixture* rec = t.record;
    switch (rec->safetyRequired) {
    case 1:
        c.available = w.voltage - w.drop - 10.0;
        c.k = 2.2;
        break;
    case 2:
    case 4:
        c.available = (w.voltage - w.drop) * 0.9;
        c.k = 2.0;
        break;
    case 3:
        c.available = w.voltage - 10.0;
        c.k = 1.414213562373095;
        break;
    default:
        break;
    }
    const int key = truncToInt(c.available);
    if (key != t.powerFactorKey) {
        const double pf = VoltageLookup::nearest(rec->powerFactorByVoltage, key, rec->powerFactor);
        t.powerFactorKey = key;
        t.powerFactor = pf == 0.0 ? rec->powerFactor : pf;
    }
    c.powerFactor = t.powerFactor;
    c.fudge = rec->fudgeFactor;
    c.power = t.power;
    narrowLimits(w.limits, t);
    if (t.runCount++ == 0)
        m_touched.push_back(n.type);
    return c;
}

// Adds a component's contribution to the run: power first, then the drop over its resistance at
// the power carried so far, then its own current. Returns its own current term.
double Analyzer::addToRun(RunWalk& w, const Node& n, const Contribution& c)
{
    w.length += n.length;
    w.power += c.power;
    const bool powered = c.available > 0.0 && c.powerFactor > 0.0;
    if (powered)
        w.drop += w.power / (c.available * c.powerFactor) * c.k * n.resistance * c.fudge;
    if (w.power != 0.0)
        w.resistance += n.resistance;
    double term = 0.0;
    if (c.power != 0.0 && powered) {
        term = c.power / c.available / c.powerFactor;
        w.current += term;
    }
    w.voltage = c.available;
    return term;
}

// Circuit totals take every component once, from the first run that reaches it; supplies below the
// root are added separately.
void Analyzer::countOnce(int i, const Node& n, double ownPower, double term)
{
    if (m_counted[static_cast<size_t>(i)])
        return;
    m_counted[static_cast<size_t>(i)] = 1;
    m_r.totalLength += n.length;
    if (n.kind != ItemSupply) {
        m_r.totalPower += ownPower;
        m_r.totalCurrent += term;
    }
}

// A run ends at the first supply that does not hang on a branch wire (the enabler).
bool Analyzer::endsRun(const Node& n) const
{
    const bool onBranchWire = n.parent >= 0 && m_nodes[static_cast<size_t>(n.parent)].kind == ItemBranchWire;
    return n.kind == ItemSupply && !onBranchWire;
}

// The run's length limit: the first receiver met, else the enabler. A run longer than it enters the
// too-long table and flags the limit's holder, unless the selected fixture is of family 1.
void Analyzer::runLengthRule(int leaf, const RunWalk& w, RunFigures& run)
{
    const CWidget* limitHolder = nullptr;
    bool hasLimit = false;
    double limit = 0.0;
    if (w.limitReceiver >= 0) {
        const Node& rn = m_nodes[static_cast<size_t>(w.limitReceiver)];
        limitHolder = rn.widget;
        if (const DLReceiver* rec = static_cast<const ReceiverWidget*>(rn.widget)->record()) {
            limit = rec->maxElectricalLengthPerRun;
            hasLimit = true;
        }
    } else if (m_enablerRecord) {
        limitHolder = m_nodes[static_cast<size_t>(w.last)].widget;
        limit = m_enablerRecord->maxElectricalLengthPerRun;
        hasLimit = true;
    }
    if (!hasLimit || m_selectedFamily == 1)
        return;
    run.limits.runLength = limit;
    run.limits.applied |= 1u << LimitRunLength;
    if (w.length > limit) {
        run.tooLong = true;
        m_r.tooLong.append({run.end, w.length});
        m_tooLongEnds.push_back(leaf);
        m_r.flagged.insert(limitHolder);
    }
}

void Analyzer::fixtureCountRule(RunFigures& run) const
{
    if (run.maxFixtures >= 1 && run.fixtures > run.maxFixtures)
        run.messages +=
            QCoreApplication::translate(
                "Analysis", "\nFixture count in current run (%1) exceeded the fixture type's maximum (%2).")
                .arg(run.fixtures)
                .arg(run.maxFixtures);
}

void Analyzer::lengthRule(RunFigures& run) const
{
    if (run.length > run.limits.maxLength)
        run.messages += QCoreApplication::translate(
                            "Analysis", "\nTotal length exceeds the fixture type's maximum of %1 ft.")
                            .arg(formatNumber(run.limits.maxLength));
}

// A maximum drop of 0 switches the check off.
void Analyzer::voltageDropRule(RunFigures& run) const
{
    if (run.limits.maxVoltageDrop > 0.0 && run.voltageDrop > run.limits.maxVoltageDrop)
        run.messages +=
            QCoreApplication::translate(
                "Analysis", "\nTotal voltage drop exceeded the fixture type's maximum of %1 volts.")
                .arg(formatNumber(run.limits.maxVoltageDrop));
}

// The share is a fraction of the line voltage.
void Analyzer::dropShareRule(RunFigures& run) const
{
    const double share = run.limits.maxShare;
    if (share > 0.0 && share < 100.0 && run.voltageDrop > m_in.lineVoltage * share)
        run.messages +=
            QCoreApplication::translate(
                "Analysis", "\nVoltage dropped exceeded the fixture type's maximum percentage of %1.")
                .arg(formatNumber(share));
}

void Analyzer::powerRule(RunFigures& run) const
{
    if (run.power > run.limits.maxPower)
        run.messages += QCoreApplication::translate(
                            "Analysis", "\nTotal power exceeded the fixture type's maximum of %1 watts.")
                            .arg(formatNumber(run.limits.maxPower));
}

void Analyzer::currentRule(RunFigures& run) const
{
    if (run.current > run.limits.maxCurrent)
        run.messages += QCoreApplication::translate(
                            "Analysis", "\nTotal current exceeded  the fixture type's maximum of %1 amps.")
                            .arg(formatNumber(run.limits.maxCurrent));
}

// Measured from the line voltage when the run's output mode is 4, else from the run voltage.
void Analyzer::minimumVoltageRule(RunFigures& run) const
{
    if (run.limits.minVoltage == 0.0)
        return;
    const double reference =
        run.limits.outputMode == 4 ? m_in.lineVoltage : static_cast<double>(run.runVoltage);
    if (run.limits.minVoltage > reference - run.voltageDrop)
        run.messages += QCoreApplication::translate(
                            "Analysis", "\nVoltage dropped below the fixture type's minimum of %1 volts.")
                            .arg(formatNumber(run.limits.minVoltage));
}

// The per-run checks in their report order; each appends its text to the run's when it fails.
void Analyzer::checkRun(RunFigures& run)
{
    fixtureCountRule(run);
    lengthRule(run);
    voltageDropRule(run);
    dropShareRule(run);
    powerRule(run);
    currentRule(run);
    minimumVoltageRule(run);
    if (!run.messages.isEmpty()) {
        run.faulty = true;
        m_r.pass = false;
    }
    if (run.messages.size() > 1)
        m_r.runMessages.append(run.messages);
}

// Keeps, for every component of the run just walked, this run's figures there when its drop from
// the enabler to the component is the largest so far; between equal drops (the enabler, a box
// before its first cable) the run with the larger whole drop is the worse.
void Analyzer::recordFigures(const RunWalk& w, int runIndex)
{
    for (const PathStep& step : m_path) {
        ComponentRecord& f = m_records[step.node];
        ++f.runCount;
        const double drop = w.drop - step.dropBelow;
        if (f.run < 0 || drop > f.drop || (drop == f.drop && w.drop > f.runDrop)) {
            f.run = runIndex;
            f.drop = drop;
            f.runDrop = w.drop;
            f.current = step.current;
            f.power = step.power;
            f.length = step.length;
            f.fixtures = step.fixtures;
        }
    }
}

void Analyzer::walkRun(int leaf)
{
    RunWalk w;
    w.voltage = m_in.lineVoltage;
    w.last = leaf;
    m_touched.clear();
    m_path.clear();

    for (int i = leaf; i >= 0;) {
        const Node& n = m_nodes[static_cast<size_t>(i)];
        Contribution c;
        if (n.kind == ItemFixture) {
            c = fixtureContribution(n, w);
        } else {
            c.available = w.voltage;
            c.power = n.power;
            c.powerFactor = n.powerFactor;
            if (n.kind == ItemReceiver && w.limitReceiver < 0)
                w.limitReceiver = i;
        }
        const double dropBelow = w.drop;
        countOnce(i, n, c.power, addToRun(w, n, c));
        if (m_in.componentFigures)
            m_path.push_back({i, dropBelow, w.power, w.current, w.length, w.fixtures});
        w.last = i;
        if (endsRun(n))
            break;
        i = n.parent;
    }

    RunFigures run;
    run.end = m_nodes[static_cast<size_t>(leaf)].widget;
    run.fixtures = w.fixtures;
    run.length = w.length;
    run.power = w.power;
    run.current = w.current;
    run.voltageDrop = w.drop;
    run.resistance = w.resistance;
    run.runVoltage = truncToInt(w.voltage);
    run.maxFixtures = weightedMaximum(w.fixtures, run.runVoltage);
    for (int index : m_touched)
        m_types[static_cast<size_t>(index)].runCount = 0;
    run.limits = w.limits;
    run.limits.maxFixtures = run.maxFixtures;
    if (run.maxFixtures >= 1)
        run.limits.applied |= 1u << LimitFixtureCount;
    if (!(run.limits.maxVoltageDrop > 0.0))
        run.limits.applied &= ~(1u << LimitVoltageDrop);
    if (!(run.limits.maxShare > 0.0 && run.limits.maxShare < 100.0))
        run.limits.applied &= ~(1u << LimitDropShare);

    m_r.totalVoltageDrop = std::max(m_r.totalVoltageDrop, w.drop);
    m_r.totalResistance = std::max(m_r.totalResistance, w.resistance);

    runLengthRule(leaf, w, run);
    checkRun(run);
    if (m_in.componentFigures)
        recordFigures(w, static_cast<int>(m_r.runs.size()));
    m_r.runs.append(std::move(run));
}

// The limits one run applies, each with its factor: a figure times the factor is the share of
// the limit it takes. For the minimum voltage the share is of the margin between the line voltage
// and the minimum: the drop down to the component against the drop that would reach the minimum.
struct AppliedLimits {
    int count = 0;
    RunLimitKind kind[RunLimitKinds];
    double limit[RunLimitKinds];
    double factor[RunLimitKinds];
};

AppliedLimits appliedLimits(const RunLimitValues& limits, double lineVoltage)
{
    AppliedLimits a;
    for (int k = 0; k < RunLimitKinds; ++k) {
        const auto kind = static_cast<RunLimitKind>(k);
        if (!limits.applies(kind))
            continue;
        const double limit = limits.value(kind, lineVoltage);
        a.kind[a.count] = kind;
        a.limit[a.count] = limit;
        const double scale = kind == LimitMinimumVoltage ? lineVoltage - limit : limit;
        a.factor[a.count] = scale > 0.0 ? 1.0 / scale : HUGE_VAL;
        ++a.count;
    }
    return a;
}

// The component's figure that a limit is compared with.
double figureFor(RunLimitKind kind, const ComponentFigures& c)
{
    switch (kind) {
    case LimitFixtureCount:
        return c.fixtures;
    case LimitLength:
    case LimitRunLength:
        return c.length;
    case LimitVoltageDrop:
    case LimitDropShare:
        return c.drop;
    case LimitPower:
        return c.power;
    case LimitCurrent:
        return c.current;
    default:
        return c.voltage;
    }
}

// Lengths and Feedwise figures of every subtree, children before parents.
void Analyzer::subtreeFigures()
{
    const size_t count = m_nodes.size();
    std::vector<double> lengths(count);
    std::vector<double> loads(count, 0.0);
    const QMap<QString, double>& locations = m_db.locations();
    for (size_t i = 0; i < count; ++i) {
        const Node& n = m_nodes[i];
        lengths[i] = n.length;
        if (n.kind == ItemBranchWire && n.modeFeedwise) {
            const auto* b = static_cast<const BranchWireWidget*>(n.widget);
            const QString location = b->location();
            const auto found = locations.constFind(location);
            double load;
            if (found != locations.constEnd())
                load = n.length * found.value();
            else
                load = n.length / Modes::feedwiseMaxLength(location);
            loads[i] = load;
            m_r.feedwiseLength += n.length;
            m_r.feedwiseLoad += load;
        }
    }
    for (size_t i = count; i-- > 1;) {
        const auto parent = static_cast<size_t>(m_nodes[i].parent);
        lengths[parent] += lengths[i];
        loads[parent] += loads[i];
    }
    for (size_t i = 0; i < count; ++i) {
        const Node& n = m_nodes[i];
        if (n.kind != ItemSupply && n.kind != ItemReceiver)
            continue;
        const double below = lengths[i] - n.length;
        m_r.dynaLineLengths.insert(n.widget, below);
        if (n.kind == ItemReceiver && n.locationFeedwise) {
            m_r.receiverLengths.append({n.widget, below});
            m_feedwiseReceivers.push_back(static_cast<int>(i));
        }
        if (loads[i] >= 1.0) {
            m_r.feedwiseOverLimit.insert(n.widget);
            if (n.kind == ItemReceiver || m_selectedFamily != 1)
                m_r.errorMarks.insert(n.widget);
        }
    }
}

void Analyzer::circuitChecks()
{
    const double derated = m_in.deratedLoad();
    const DLPowerSupply* enabler = m_in.enabler;

    if (m_r.totalCurrent > derated)
        m_messages += QCoreApplication::translate(
                          "Analysis", "\nTotal current of %1 amps exceeded the maximum load of %2.")
                          .arg(formatNumber(m_r.totalCurrent), formatNumber(derated));

    if (enabler && enabler->hasOutputMode(kFeedwise)) {
        const int maximum = m_db.controllers().value(m_in.controller, 0);
        if (m_r.receiverCount > maximum)
            m_messages += QCoreApplication::translate(
                              "Analysis", "\nReceiver count (%1) exceeded this controller's maximum (%2).")
                              .arg(m_r.receiverCount)
                              .arg(maximum);
    }

    int family = 0;
    if (m_firstFixture >= 0)
        family =
            m_types[static_cast<size_t>(m_nodes[static_cast<size_t>(m_firstFixture)].type)].record->family;
    else if (m_in.selectedFixture)
        family = m_in.selectedFixture->family;

    if (family == 1) {
        // Fixtures below each Feedwise-side supply against that supply's own maximum.
        const size_t count = m_nodes.size();
        std::vector<int> size(count, 1);
        for (size_t i = count; i-- > 1;)
            size[static_cast<size_t>(m_nodes[i].parent)] += size[i];
        std::vector<int> fixturesBefore(count + 1, 0);
        for (size_t i = 0; i < count; ++i)
            fixturesBefore[i + 1] = fixturesBefore[i] + (m_nodes[i].kind == ItemFixture ? 1 : 0);
        for (size_t i = 0; i < count; ++i) {
            const Node& n = m_nodes[i];
            if (n.kind != ItemSupply || !n.locationFeedwise || n.childCount == 0)
                continue;
            const DLPowerSupply* rec = static_cast<const SupplyWidget*>(n.widget)->record();
            if (!rec)
                continue;
            const size_t end = i + static_cast<size_t>(size[i]);
            const int below = fixturesBefore[end] - fixturesBefore[i];
            if (below > rec->maxNumFixtures)
                m_messages +=
                    QCoreApplication::translate(
                        "Analysis",
                        "\nDynaline run ending at fixture %1 exceeds its enabler's maximum fixture count.")
                        .arg(fixturesBefore[end]);
        }
    } else if (enabler && enabler->maxElectricalLength != 0.0) {
        if (m_r.receiverCount > 0 && !m_db.receivers().isEmpty()) {
            const double maximum = m_db.receivers().first()->maxElectricalLength;
            for (qsizetype e = 0; e < m_r.receiverLengths.size(); ++e) {
                const double length = m_r.receiverLengths.at(e).second;
                if (length > maximum)
                    m_messages +=
                        QCoreApplication::translate("Analysis",
                                                    "\nDynaline length from Feedwise Receiver #%1 = %2")
                            .arg(m_nodes[static_cast<size_t>(m_feedwiseReceivers[static_cast<size_t>(e)])]
                                     .number)
                            .arg(formatNumber(length));
            }
        }
        for (qsizetype e = 0; e < m_r.tooLong.size(); ++e) {
            const Node& end = m_nodes[static_cast<size_t>(m_tooLongEnds[static_cast<size_t>(e)])];
            m_messages +=
                QCoreApplication::translate("Analysis",
                                            "\nDynaline run ending at %1 #%2 is too long (%3 ft).")
                    .arg(end.kind == ItemFixture ? QCoreApplication::translate("Analysis", "fixture")
                                                 : QCoreApplication::translate("Analysis", "jumper"))
                    .arg(end.number)
                    .arg(formatNumber(m_r.tooLong.at(e).length));
        }
        if (m_r.totalLength > enabler->maxElectricalLength)
            m_messages += QCoreApplication::translate(
                              "Analysis", "\nTotal Dynaline length of %1 exceeds total limit of %2.")
                              .arg(formatNumber(m_r.totalLength), formatNumber(enabler->maxElectricalLength));
    }

    if (!m_messages.isEmpty())
        m_r.pass = false;
    m_r.circuitMessages = m_messages;
}

void Analyzer::report()
{
    m_r.derateLabel =
        QCoreApplication::translate("Analysis", "(derated to %1 amps)").arg(formatNumber(m_r.deratedLoad));
    m_r.fixtureLabel = QCoreApplication::translate("Analysis", "Total Fixtures: %1").arg(m_r.fixtureCount);
    m_r.powerText = formatOneDecimal(m_r.totalPower);
    m_r.currentText = formatOneDecimal(m_r.totalCurrent);
    m_r.feedwiseText = formatOneDecimal(m_r.feedwiseLength);

    const QString inrush = m_r.hasInrush
                               ? QCoreApplication::translate("Analysis", "\nTotal Inrush Current = %1 amps")
                                     .arg(formatNumber(m_r.totalInrush))
                               : QString();
    const QString leakage = m_r.hasLeakage
                                ? QCoreApplication::translate("Analysis", "\nTotal Current Leakage = %1 amps")
                                      .arg(formatNumber(m_r.totalLeakage))
                                : QString();
    // One pass over the placeholders, so no substituted text is read as a placeholder again.
    m_r.summaryLine =
        QCoreApplication::translate("Analysis", "Length = %1 Power = %2 Current = %3 VDrop = %4%5%6%7 R = %8")
            .arg(formatNumber(m_r.totalLength), formatNumber(m_r.totalPower), formatNumber(m_r.totalCurrent),
                 formatNumber(m_r.totalVoltageDrop), inrush, leakage, m_r.circuitMessages,
                 formatNumber(m_r.totalResistance));
}

void Analyzer::run(const CWidget* root)
{
    m_r.deratedLoad = m_in.deratedLoad();
    m_r.lineVoltage = m_in.lineVoltage;
    m_selectedFamily = m_in.selectedFixture ? m_in.selectedFixture->family : 0;
    m_enablerRecord = m_in.enabler;
    if (!m_enablerRecord && root && root->itemType() == ItemSupply)
        m_enablerRecord = static_cast<const SupplyWidget*>(root)->record();

    if (root) {
        collect(root);
        m_counted.assign(m_nodes.size(), 0);
        if (m_in.componentFigures) {
            m_r.componentRecords.resize(static_cast<qsizetype>(m_nodes.size()));
            m_records = m_r.componentRecords.data();
            for (size_t i = 0; i < m_nodes.size(); ++i)
                m_records[i].widget = m_nodes[i].widget;
        }
        for (const Node& n : m_nodes) {
            if (n.kind == ItemFixture)
                ++m_r.fixtureCount;
            else if (n.kind == ItemReceiver)
                ++m_r.receiverCount;
        }
        m_r.feedwiseEnabled = m_nodes.front().kind == ItemSupply && m_nodes.front().locationFeedwise;

        qsizetype leaves = 0;
        for (const Node& n : m_nodes)
            leaves += n.childCount == 0 ? 1 : 0;
        m_r.runs.reserve(leaves);
        if (m_in.componentFigures)
            m_path.reserve(m_nodes.size());
        for (size_t i = 0; i < m_nodes.size(); ++i)
            if (m_nodes[i].childCount == 0)
                walkRun(static_cast<int>(i));

        // Supplies below the root draw their own power from the circuit.
        for (size_t i = 1; i < m_nodes.size(); ++i) {
            const Node& n = m_nodes[i];
            if (n.kind != ItemSupply)
                continue;
            const DLPowerSupply* rec = static_cast<const SupplyWidget*>(n.widget)->record();
            if (!rec)
                continue;
            m_r.totalPower += rec->power;
            if (rec->power != 0.0 && m_in.lineVoltage > 0.0 && rec->powerFactor > 0.0)
                m_r.totalCurrent += rec->power / m_in.lineVoltage / rec->powerFactor;
        }

        subtreeFigures();

        const int n = m_r.fixtureCount;
        if (n > 0 && m_firstFixture >= 0 && m_in.enabler) {
            const DLFixture* first =
                m_types[static_cast<size_t>(m_nodes[static_cast<size_t>(m_firstFixture)].type)].record;
            const FrequencyAttribute f = first->frequencyAttribute(m_lineKey, m_in.frequency);
            const FrequencyAttribute s = m_in.enabler->voltageAttribute(m_lineKey, m_in.frequency);
            if (f.inrushCurrent > 0.0 && s.inrushCurrent > 0.0) {
                m_r.hasInrush = true;
                m_r.totalInrush = n * f.inrushCurrent + s.inrushCurrent;
            }
            if (f.leakage > 0.0 && s.leakage > 0.0) {
                m_r.hasLeakage = true;
                m_r.totalLeakage = (n * f.leakage + s.leakage) / 1000000.0; // the catalog holds microamps
            }
        }
    }

    circuitChecks();
    m_r.errorMarks.unite(m_r.flagged);
    report();
}

// The figures at every component a run passed, with the limits of its worst run it is nearest to.
QList<ComponentFigures> figuresFromRecords(const AnalysisResult& r)
{
    const double line = r.lineVoltage;
    std::vector<AppliedLimits> applied;
    applied.reserve(static_cast<size_t>(r.runs.size()));
    for (const RunFigures& run : r.runs)
        applied.push_back(appliedLimits(run.limits, line));
    QList<ComponentFigures> components;
    components.reserve(r.componentRecords.size());
    for (const ComponentRecord& f : r.componentRecords) {
        if (f.run < 0)
            continue;
        const RunFigures& run = r.runs.at(f.run);
        ComponentFigures& c = components.emplaceBack();
        c.widget = f.widget;
        c.runEnd = run.end;
        c.runIndex = f.run;
        c.runCount = f.runCount;
        c.drop = f.drop;
        c.voltage = line - f.drop;
        c.dropPercent = line != 0.0 ? f.drop / line * 100.0 : 0.0;
        c.current = f.current;
        c.power = f.power;
        c.length = f.length;
        c.fixtures = f.fixtures;
        if (run.limits.applies(LimitMinimumVoltage))
            c.minVoltage = run.limits.minVoltage;
        const AppliedLimits& a = applied[static_cast<size_t>(f.run)];
        for (int j = 0; j < a.count; ++j) {
            LimitUse use;
            use.kind = a.kind[j];
            use.limit = a.limit[j];
            use.figure = figureFor(use.kind, c);
            use.use = (use.kind == LimitMinimumVoltage ? c.drop : use.figure) * a.factor[j];
            // Keep the two largest uses, the earlier limit first on a tie.
            if (c.nearestCount < 2)
                c.nearest[c.nearestCount++] = use;
            else if (use.use > c.nearest[1].use)
                c.nearest[1] = use;
            if (c.nearestCount == 2 && c.nearest[1].use > c.nearest[0].use)
                std::swap(c.nearest[0], c.nearest[1]);
        }
    }
    return components;
}

} // namespace

CircuitInputs inputsFromHeader(const HeaderChoices& header, const Database& db)
{
    CircuitInputs in;
    const QString volts = header.lineVoltageText();
    in.lineVoltage = volts == HeaderChoices::otherEntry() ? header.customLineVoltage() : volts.toDouble();
    const QString load = header.maxCircuitLoadText();
    in.maxCircuitLoad = load == HeaderChoices::otherEntry() ? header.customMaxCircuitLoad() : load.toDouble();
    in.frequency = header.frequencyText() == QLatin1String("50 Hz") ? 50 : 60;
    in.controller = header.controllerText();
    in.enabler = db.supplyNamed(header.supplyText());
    if (in.enabler) {
        const QString wanted = header.fixtureText();
        for (const VxFixture* f : in.enabler->fixtures) {
            if (f->name == wanted) {
                in.selectedFixture = qobject_cast<const DLFixture*>(f);
                break;
            }
        }
        if (!in.selectedFixture && !in.enabler->fixtures.isEmpty())
            in.selectedFixture = qobject_cast<const DLFixture*>(in.enabler->fixtures.first());
    }
    return in;
}

QList<QPair<QString, bool>> AnalysisResult::logLines() const
{
    QList<QPair<QString, bool>> lines;
    lines.reserve(runMessages.size() + 1);
    for (const QString& text : runMessages)
        lines.append({text, true});
    lines.append({summaryLine, !pass});
    return lines;
}

AnalysisResult analyze(const CWidget* root, const CircuitInputs& inputs, const Database& db)
{
    AnalysisResult result;
    Analyzer(inputs, db, result).run(root);
    return result;
}

void applyResult(ConfigDocument& doc, const AnalysisResult& result)
{
    doc.setPassFlag(result.pass);
    doc.setFlagged(result.flagged);
    doc.setErrorMarks(result.errorMarks);
    // The figures belong to the document's own components, which it lets us update.
    for (auto it = result.dynaLineLengths.cbegin(); it != result.dynaLineLengths.cend(); ++it)
        const_cast<CWidget*>(it.key())->setDynaLineLength(it.value());
}

double RunLimitValues::value(RunLimitKind kind, double lineVoltage) const
{
    switch (kind) {
    case LimitFixtureCount:
        return maxFixtures;
    case LimitLength:
        return maxLength;
    case LimitRunLength:
        return runLength;
    case LimitVoltageDrop:
        return maxVoltageDrop;
    case LimitDropShare:
        return lineVoltage * maxShare;
    case LimitPower:
        return maxPower;
    case LimitCurrent:
        return maxCurrent;
    case LimitMinimumVoltage:
        return minVoltage;
    default:
        return 0.0;
    }
}

QString runLimitName(RunLimitKind kind)
{
    switch (kind) {
    case LimitFixtureCount:
        return QCoreApplication::translate("Analysis", "fixture count");
    case LimitLength:
        return QCoreApplication::translate("Analysis", "fixture type's length");
    case LimitRunLength:
        return QCoreApplication::translate("Analysis", "run length");
    case LimitVoltageDrop:
        return QCoreApplication::translate("Analysis", "voltage drop");
    case LimitDropShare:
        return QCoreApplication::translate("Analysis", "voltage drop share");
    case LimitPower:
        return QCoreApplication::translate("Analysis", "power");
    case LimitCurrent:
        return QCoreApplication::translate("Analysis", "current");
    case LimitMinimumVoltage:
        return QCoreApplication::translate("Analysis", "minimum voltage");
    default:
        return QString();
    }
}

QString runLimitText(RunLimitKind kind, const RunLimitValues& limits)
{
    switch (kind) {
    case LimitFixtureCount:
        return QCoreApplication::translate("Analysis", "at most %1 fixtures").arg(limits.maxFixtures);
    case LimitLength:
        return QCoreApplication::translate("Analysis", "at most %1 ft").arg(formatNumber(limits.maxLength));
    case LimitRunLength:
        return QCoreApplication::translate("Analysis", "at most %1 ft").arg(formatNumber(limits.runLength));
    case LimitVoltageDrop:
        return QCoreApplication::translate("Analysis", "at most %1 V")
            .arg(formatNumber(limits.maxVoltageDrop));
    case LimitDropShare:
        return QCoreApplication::translate("Analysis", "at most %1 of the line voltage")
            .arg(formatNumber(limits.maxShare));
    case LimitPower:
        return QCoreApplication::translate("Analysis", "at most %1 W").arg(formatNumber(limits.maxPower));
    case LimitCurrent:
        return QCoreApplication::translate("Analysis", "at most %1 A").arg(formatNumber(limits.maxCurrent));
    case LimitMinimumVoltage:
        return QCoreApplication::translate("Analysis", "at least %1 V").arg(formatNumber(limits.minVoltage));
    default:
        return QString();
    }
}

const QList<ComponentFigures>& AnalysisResult::components() const
{
    if (!m_componentsBuilt) {
        m_components = figuresFromRecords(*this);
        m_componentIndex.clear();
        m_componentIndex.reserve(m_components.size());
        for (qsizetype i = 0; i < m_components.size(); ++i)
            m_componentIndex.insert(m_components.at(i).widget, i);
        m_componentsBuilt = true;
    }
    return m_components;
}

const ComponentFigures* AnalysisResult::figuresAt(const CWidget* w) const
{
    const QList<ComponentFigures>& all = components();
    const auto found = m_componentIndex.constFind(w);
    return found == m_componentIndex.constEnd() ? nullptr : &all.at(found.value());
}

QString formatNumber(double v)
{
    return QString::number(v, 'g', 6);
}

QString formatOneDecimal(double v)
{
    return QString::number(v, 'f', 1);
}
