#include "calc/Analysis.h"

#include "catalog/Database.h"
#include "model/CWidget.h"
#include "model/ConfigDocument.h"
#include "model/HeaderChoices.h"

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
    bool modeFeedwise = false;     // the effective output mode is "Feedwise"
    bool locationFeedwise = false; // the location text is "Feedwise"
};

struct RunLimits {
    double maxLength = 100000.0;
    double maxVoltageDrop = 100.0;
    double maxShare = 100.0;
    double maxPower = 10000.0;
    double maxCurrent = 1000.0;
    double minVoltage = 0.0;
    int outputMode = 0;

    void narrow(const FixtureType& t)
    {
        const DLFixture* r = t.record;
        if (r->maxFixtureLength != 0.0)
            maxLength = std::min(maxLength, r->maxFixtureLength);
        maxVoltageDrop = std::min(maxVoltageDrop, r->maxVoltageDrop);
        if (r->voltageDropPercent != 0.0)
            maxShare = std::min(maxShare, r->voltageDropPercent);
        if (r->maxPower != 0.0)
            maxPower = std::min(maxPower, r->maxPower);
        if (t.maxCurrent != 0.0)
            maxCurrent = std::min(maxCurrent, t.maxCurrent);
        if (r->minVoltage != 0.0)
            minVoltage = std::max(minVoltage, r->minVoltage);
        outputMode = std::max(outputMode, r->safetyRequired);
    }
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

void Analyzer::walkRun(int leaf)
{
    const double lineVoltage = m_in.lineVoltage;
    double voltage = lineVoltage; // available voltage carried up the run
    double drop = 0.0;
    double length = 0.0;
    double current = 0.0;
    double resistance = 0.0;
    double power = 0.0;
    int fixtures = 0;
    int limitReceiver = -1;
    int last = leaf;
    RunLimits limits;
    m_touched.clear();

    for (int i = leaf; i >= 0;) {
        const Node& n = m_nodes[static_cast<size_t>(i)];
        double available = voltage;
        double k = 1.0;
        double fudge = 1.0;
        double ownPower = n.power;
        double powerFactor = n.powerFactor;

        if (n.kind == ItemFixture) {
            ++fixtures;
            if (n.type >= 0) {
                FixtureType& t = m_types[static_cast<size_t>(n.type)];
                const DLFixture* rec = t.record;
                switch (rec->safetyRequired) {
                case 1:
                    available = voltage - drop - 10.0;
                    k = 2.2;
                    break;
                case 2:
                case 4:
                    available = (voltage - drop) * 0.9;
                    k = 2.0;
                    break;
                case 3:
                    available = voltage - 10.0;
                    k = 1.414213562373095;
                    break;
                default:
                    break;
                }
                const int key = truncToInt(available);
                if (key != t.powerFactorKey) {
                    const double pf =
                        VoltageLookup::nearest(rec->powerFactorByVoltage, key, rec->powerFactor);
                    t.powerFactorKey = key;
                    t.powerFactor = pf == 0.0 ? rec->powerFactor : pf;
                }
                powerFactor = t.powerFactor;
                fudge = rec->fudgeFactor;
                ownPower = t.power;
                limits.narrow(t);
                if (t.runCount++ == 0)
                    m_touched.push_back(n.type);
            }
        } else if (n.kind == ItemReceiver && limitReceiver < 0) {
            limitReceiver = i;
        }

        length += n.length;
        power += ownPower;
        const bool powered = available > 0.0 && powerFactor > 0.0;
        if (powered)
            drop += power / (available * powerFactor) * k * n.resistance * fudge;
        if (power != 0.0)
            resistance += n.resistance;
        double term = 0.0;
        if (ownPower != 0.0 && powered) {
            term = ownPower / available / powerFactor;
            current += term;
        }
        voltage = available;

        // Circuit totals take every component once, from the first run that reaches it; supplies
        // below the root are added separately.
        if (!m_counted[static_cast<size_t>(i)]) {
            m_counted[static_cast<size_t>(i)] = 1;
            m_r.totalLength += n.length;
            if (n.kind != ItemSupply) {
                m_r.totalPower += ownPower;
                m_r.totalCurrent += term;
            }
        }

        last = i;
        const bool onBranchWire =
            n.parent >= 0 && m_nodes[static_cast<size_t>(n.parent)].kind == ItemBranchWire;
        if (n.kind == ItemSupply && !onBranchWire)
            break;
        i = n.parent;
    }

    RunFigures run;
    run.end = m_nodes[static_cast<size_t>(leaf)].widget;
    run.fixtures = fixtures;
    run.length = length;
    run.power = power;
    run.current = current;
    run.voltageDrop = drop;
    run.resistance = resistance;
    run.runVoltage = truncToInt(voltage);
    run.maxFixtures = weightedMaximum(fixtures, run.runVoltage);
    for (int index : m_touched)
        m_types[static_cast<size_t>(index)].runCount = 0;

    m_r.totalVoltageDrop = std::max(m_r.totalVoltageDrop, drop);
    m_r.totalResistance = std::max(m_r.totalResistance, resistance);

    // The run's length limit: the first receiver met, else the enabler.
    const CWidget* limitHolder = nullptr;
    bool hasLimit = false;
    double limit = 0.0;
    if (limitReceiver >= 0) {
        const Node& rn = m_nodes[static_cast<size_t>(limitReceiver)];
        limitHolder = rn.widget;
        if (const DLReceiver* rec = static_cast<const ReceiverWidget*>(rn.widget)->record()) {
            limit = rec->maxElectricalLengthPerRun;
            hasLimit = true;
        }
    } else if (m_enablerRecord) {
        limitHolder = m_nodes[static_cast<size_t>(last)].widget;
        limit = m_enablerRecord->maxElectricalLengthPerRun;
        hasLimit = true;
    }
    if (hasLimit && length > limit && m_selectedFamily != 1) {
        m_r.tooLong.append({run.end, length});
        m_tooLongEnds.push_back(leaf);
        m_r.flagged.insert(limitHolder);
    }

    QString text;
    if (run.maxFixtures >= 1 && fixtures > run.maxFixtures)
        text +=
            QStringLiteral("\nFixture count in current run (%1) exceeded the fixture type's maximum (%2).")
                .arg(fixtures)
                .arg(run.maxFixtures);
    if (length > limits.maxLength)
        text += QStringLiteral("\nTotal length exceeds the fixture type's maximum of %1 ft.")
                    .arg(formatNumber(limits.maxLength));
    if (limits.maxVoltageDrop > 0.0 && drop > limits.maxVoltageDrop)
        text += QStringLiteral("\nTotal voltage drop exceeded the fixture type's maximum of %1 volts.")
                    .arg(formatNumber(limits.maxVoltageDrop));
    // The share is a fraction of the line voltage.
    if (limits.maxShare > 0.0 && limits.maxShare < 100.0 && drop > lineVoltage * limits.maxShare)
        text += QStringLiteral("\nVoltage dropped exceeded the fixture type's maximum percentage of %1.")
                    .arg(formatNumber(limits.maxShare));
    if (power > limits.maxPower)
        text += QStringLiteral("\nTotal power exceeded the fixture type's maximum of %1 watts.")
                    .arg(formatNumber(limits.maxPower));
    if (current > limits.maxCurrent)
        text += QStringLiteral("\nTotal current exceeded  the fixture type's maximum of %1 amps.")
                    .arg(formatNumber(limits.maxCurrent));
    if (limits.minVoltage != 0.0) {
        const double reference = limits.outputMode == 4 ? lineVoltage : static_cast<double>(run.runVoltage);
        if (limits.minVoltage > reference - drop)
            text += QStringLiteral("\nVoltage dropped below the fixture type's minimum of %1 volts.")
                        .arg(formatNumber(limits.minVoltage));
    }
    if (!text.isEmpty()) {
        run.faulty = true;
        m_r.pass = false;
    }
    if (text.size() > 1)
        m_r.runMessages.append(text);
    m_r.runs.append(run);
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
                load = n.length / (location == Modes::aboveGround() ? 427.0 : 294.0);
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
        m_messages += QStringLiteral("\nTotal current of %1 amps exceeded the maximum load of %2.")
                          .arg(formatNumber(m_r.totalCurrent), formatNumber(derated));

    if (enabler && enabler->hasOutputMode(kFeedwise)) {
        const int maximum = m_db.controllers().value(m_in.controller, 0);
        if (m_r.receiverCount > maximum)
            m_messages += QStringLiteral("\nReceiver count (%1) exceeded this controller's maximum (%2).")
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
                    QStringLiteral(
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
                        QStringLiteral("\nDynaline length from Feedwise Receiver #%1 = %2")
                            .arg(m_nodes[static_cast<size_t>(m_feedwiseReceivers[static_cast<size_t>(e)])]
                                     .number)
                            .arg(formatNumber(length));
            }
        }
        for (qsizetype e = 0; e < m_r.tooLong.size(); ++e) {
            const Node& end = m_nodes[static_cast<size_t>(m_tooLongEnds[static_cast<size_t>(e)])];
            m_messages +=
                QStringLiteral("\nDynaline run ending at %1 #%2 is too long (%3 ft).")
                    .arg(end.kind == ItemFixture ? QStringLiteral("fixture") : QStringLiteral("jumper"))
                    .arg(end.number)
                    .arg(formatNumber(m_r.tooLong.at(e).length));
        }
        if (m_r.totalLength > enabler->maxElectricalLength)
            m_messages += QStringLiteral("\nTotal Dynaline length of %1 exceeds total limit of %2.")
                              .arg(formatNumber(m_r.totalLength), formatNumber(enabler->maxElectricalLength));
    }

    if (!m_messages.isEmpty())
        m_r.pass = false;
    m_r.circuitMessages = m_messages;
}

void Analyzer::report()
{
    m_r.derateLabel = QStringLiteral("(derated to %1 amps)").arg(formatNumber(m_r.deratedLoad));
    m_r.fixtureLabel = QStringLiteral("Total Fixtures: %1").arg(m_r.fixtureCount);
    m_r.powerText = formatOneDecimal(m_r.totalPower);
    m_r.currentText = formatOneDecimal(m_r.totalCurrent);
    m_r.feedwiseText = formatOneDecimal(m_r.feedwiseLength);

    const QString inrush =
        m_r.hasInrush ? QStringLiteral("\nTotal Inrush Current = %1 amps").arg(formatNumber(m_r.totalInrush))
                      : QString();
    const QString leakage =
        m_r.hasLeakage
            ? QStringLiteral("\nTotal Current Leakage = %1 amps").arg(formatNumber(m_r.totalLeakage))
            : QString();
    // One pass over the placeholders, so no substituted text is read as a placeholder again.
    m_r.summaryLine = QStringLiteral("Length = %1 Power = %2 Current = %3 VDrop = %4%5%6%7 R = %8")
                          .arg(formatNumber(m_r.totalLength), formatNumber(m_r.totalPower),
                               formatNumber(m_r.totalCurrent), formatNumber(m_r.totalVoltageDrop), inrush,
                               leakage, m_r.circuitMessages, formatNumber(m_r.totalResistance));
}

void Analyzer::run(const CWidget* root)
{
    m_r.deratedLoad = m_in.deratedLoad();
    m_selectedFamily = m_in.selectedFixture ? m_in.selectedFixture->family : 0;
    m_enablerRecord = m_in.enabler;
    if (!m_enablerRecord && root && root->itemType() == ItemSupply)
        m_enablerRecord = static_cast<const SupplyWidget*>(root)->record();

    if (root) {
        collect(root);
        m_counted.assign(m_nodes.size(), 0);
        for (const Node& n : m_nodes) {
            if (n.kind == ItemFixture)
                ++m_r.fixtureCount;
            else if (n.kind == ItemReceiver)
                ++m_r.receiverCount;
        }
        m_r.feedwiseEnabled = m_nodes.front().kind == ItemSupply && m_nodes.front().locationFeedwise;

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

} // namespace

CircuitInputs inputsFromHeader(const HeaderChoices& header, const Database& db)
{
    CircuitInputs in;
    const QString volts = header.lineVoltageText();
    in.lineVoltage = volts == QLatin1String("Other") ? header.customLineVoltage() : volts.toDouble();
    const QString load = header.maxCircuitLoadText();
    in.maxCircuitLoad = load == QLatin1String("Other") ? header.customMaxCircuitLoad() : load.toDouble();
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

QString formatNumber(double v)
{
    return QString::number(v, 'g', 6);
}

QString formatOneDecimal(double v)
{
    return QString::number(v, 'f', 1);
}
