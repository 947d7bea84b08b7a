#include "catalog/Records.h"

#include "catalog/FieldReader.h"
#include "catalog/Reporter.h"

#include <QCoreApplication>
#include <QDomNodeList>

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdlib>

using namespace FieldReader;

namespace
{
void readShortName(VxItem& item, const QDomElement& element)
{
    const QDomElement e = element.firstChildElement(QStringLiteral("ShortName"));
    if (!e.isNull() && !e.text().isEmpty())
        item.shortName = e.text();
}

// Every (volts, Hz) entry of one "Voltage" element's frequency attributes.
void readFrequencyAttributes(const VxItem& record, const QDomElement& voltageElement, int volts,
                             FrequencyTable& table, Reporter* reporter)
{
    const QDomNodeList lists = voltageElement.elementsByTagName(QStringLiteral("FrequencyAttributes"));
    for (int l = 0; l < lists.size(); ++l) {
        const QDomNodeList attrs =
            lists.at(l).toElement().elementsByTagName(QStringLiteral("FrequencyAttribute"));
        for (int a = 0; a < attrs.size(); ++a) {
            const QDomElement attr = attrs.at(a).toElement();
            int hertz = 0;
            if (!readInt(record, attr, QStringLiteral("Frequency"), hertz, true, reporter))
                continue;
            FrequencyAttribute value;
            readDouble(record, attr, QStringLiteral("InrushCurrent"), value.inrushCurrent, false, reporter);
            readDouble(record, attr, QStringLiteral("Leakage"), value.leakage, false, reporter);
            table.insert(qMakePair(volts, hertz), value);
        }
    }
}

// Calls f(element, volts) for every "Voltage" with a readable "Value" below every listTag element;
// a "Voltage" without one is skipped whole.
template <typename F>
void forEachVoltage(const VxItem& record, const QDomElement& element, const QString& listTag,
                    Reporter* reporter, F f)
{
    const QDomNodeList lists = element.elementsByTagName(listTag);
    for (int l = 0; l < lists.size(); ++l) {
        const QDomNodeList voltages = lists.at(l).toElement().elementsByTagName(QStringLiteral("Voltage"));
        for (int v = 0; v < voltages.size(); ++v) {
            const QDomElement ve = voltages.at(v).toElement();
            int volts = 0;
            if (readInt(record, ve, QStringLiteral("Value"), volts, true, reporter))
                f(ve, volts);
        }
    }
}

template <typename T> T nearestImpl(const QMap<int, T>& table, int key, T defaultValue)
{
    if (key == 0)
        return defaultValue;
    const auto exact = table.constFind(key);
    if (exact != table.constEnd() && exact.value() != T(0))
        return exact.value();
    if (table.isEmpty())
        return T(0);
    long long best = 10000;
    T value = T(0);
    bool found = false;
    for (auto it = table.constBegin(); it != table.constEnd(); ++it) {
        const long long distance = std::llabs(static_cast<long long>(it.key()) - key);
        if (distance < best) {
            best = distance;
            value = it.value();
            found = true;
        }
    }
    return found ? value : T(0);
}
} // namespace

// ---------------------------------------------------------------------------------------------

namespace VoltageLookup
{
double nearest(const QMap<int, double>& table, int key, double defaultValue)
{
    return nearestImpl(table, key, defaultValue);
}

int nearest(const QMap<int, int>& table, int key, int defaultValue)
{
    return nearestImpl(table, key, defaultValue);
}

double floor(const QMap<int, double>& table, int key, double defaultValue)
{
    if (key == 0 || table.isEmpty())
        return defaultValue;
    auto it = table.upperBound(key); // first voltage above the key
    if (it == table.constBegin())
        return 0.0;
    --it;
    return it.value();
}
} // namespace VoltageLookup

// ---------------------------------------------------------------------------------------------

VxItem::VxItem(const QString& name_, int techType_) : name(name_), shortName(name_), techType(techType_) {}

VxItem::~VxItem() = default;

bool VxItem::parse(const QDomElement& element, ParseContext& ctx)
{
    Q_UNUSED(element)
    Q_UNUSED(ctx)
    return true;
}

void VxItem::writeXml(QDomElement& parent, QDomDocument& doc) const
{
    Q_UNUSED(parent)
    Q_UNUSED(doc)
}

bool VxItem::isRecordElement(const QDomElement& element) const
{
    Q_UNUSED(element)
    return false;
}

// ---------------------------------------------------------------------------------------------

VxWire::VxWire(const QString& name_, int techType_) : VxItem(name_, techType_) {}

bool VxWire::parse(const QDomElement& element, ParseContext& ctx)
{
    VxItem::parse(element, ctx);
    const bool r = readDouble(*this, element, QStringLiteral("Resistance"), resistance, true, ctx.reporter);
    if (r)
        resistance /= 1000.0;
    const bool l = readDouble(*this, element, QStringLiteral("MaxLength"), maxLength, true, ctx.reporter);
    return r && l;
}

// ---------------------------------------------------------------------------------------------

VxJumper::VxJumper(const QString& name_, int techType_) : VxItem(name_, techType_) {}

VxJumper::~VxJumper()
{
    qDeleteAll(customWires);
}

const VxWire* VxJumper::defaultWire() const
{
    if (customWires.isEmpty())
        return nullptr;
    if (defaultCustomWire >= 0 && defaultCustomWire < customWires.size())
        return customWires.at(defaultCustomWire);
    return customWires.first();
}

const VxWire* VxJumper::wireNamed(const QString& gauge) const
{
    for (const VxWire* w : customWires)
        if (w->name == gauge)
            return w;
    return nullptr;
}

bool VxJumper::parse(const QDomElement& element, ParseContext& ctx)
{
    VxItem::parse(element, ctx);
    const QDomNodeList lists = element.elementsByTagName(QStringLiteral("CustomWireList"));
    if (!lists.isEmpty()) {
        hasCustomWires = true;
        readInt(*this, element, QStringLiteral("DefaultCustomWire"), defaultCustomWire, false, ctx.reporter);
        readDouble(*this, element, QStringLiteral("DefaultCustomLength"), defaultCustomLength, false,
                   ctx.reporter);
        for (int l = 0; l < lists.size(); ++l) {
            const QDomNodeList wires =
                lists.at(l).toElement().elementsByTagName(QStringLiteral("CustomWire"));
            for (int w = 0; w < wires.size(); ++w) {
                const QDomElement we = wires.at(w).toElement();
                const QString wireName = childText(we, QStringLiteral("Name"));
                if (wireName.isEmpty()) {
                    if (ctx.reporter)
                        ctx.reporter->warning(QCoreApplication::translate(
                            "Database", "Error in database file:\nCustomWire element with no Name"));
                    continue;
                }
                auto* wire = new VxWire(wireName, VxTechNone);
                if (wire->parse(we, ctx))
                    customWires.append(wire);
                else
                    delete wire;
            }
        }
        return true;
    }

    bool ok = readDouble(*this, element, QStringLiteral("Resistance"), resistance, true, ctx.reporter);
    if (ok) {
        resistance /= 1000.0;
        ok = readDouble(*this, element, QStringLiteral("ElectricalLength"), electricalLength, true,
                        ctx.reporter);
    }
    if (!readDouble(*this, element, QStringLiteral("MaxLeaderLength"), maxLeaderLength, false, ctx.reporter))
        maxLeaderLength = 999.0;
    readInt(*this, element, QStringLiteral("MaxInARow"), maxInARow, false, ctx.reporter);
    const QDomElement gauge = element.firstChildElement(QStringLiteral("StandardGauge"));
    if (!gauge.isNull())
        standardGauge = gauge.text();
    return ok;
}

// ---------------------------------------------------------------------------------------------

VxFixture::VxFixture(const QString& name_, int techType_) : VxItem(name_, techType_) {}

bool VxFixture::parse(const QDomElement& element, ParseContext& ctx)
{
    VxItem::parse(element, ctx);
    readShortName(*this, element);
    readInt(*this, element, QStringLiteral("Family"), family, false, ctx.reporter);
    readInt(*this, element, QStringLiteral("DefaultJumper"), defaultJumper, false, ctx.reporter);
    readInt(*this, element, QStringLiteral("DefaultLeader"), defaultLeader, false, ctx.reporter);
    readBool(*this, element, QStringLiteral("Disable"), disabled, false, ctx.reporter);
    readBool(*this, element, QStringLiteral("Inline"), isInline, false, ctx.reporter);
    readDouble(*this, element, QStringLiteral("PowerFactor"), powerFactor, false, ctx.reporter);
    return true;
}

void VxFixture::writeXml(QDomElement& parent, QDomDocument& doc) const
{
    QDomElement e = doc.createElement(QStringLiteral("VxFixture"));
    e.setAttribute(QStringLiteral("VxFixtureName"), name);
    e.setAttribute(QStringLiteral("VxFixtureTecthType"), techType);
    e.setAttribute(QStringLiteral("VxFixtureFamily"), family);
    // The leader index travels under the "DefaultAttribute" name; files written so read back so.
    e.setAttribute(QStringLiteral("VxFixtureDefaultAttribute"), defaultLeader);
    e.setAttribute(QStringLiteral("VxFixtureDefaultJumper"), defaultJumper);
    parent.appendChild(e);
}

bool VxFixture::isRecordElement(const QDomElement& element) const
{
    return element.tagName() == QLatin1String("VxFixture");
}

void VxFixture::readValidSupplies(const QDomElement& element, const QList<VxPowerSupply*>& supplies,
                                  ParseContext& ctx)
{
    if (techType != VxTechDynaline)
        return;
    const QDomNodeList lists = element.elementsByTagName(QStringLiteral("ValidSupplyList"));
    for (int l = 0; l < lists.size(); ++l) {
        const QDomNodeList entries = lists.at(l).toElement().elementsByTagName(QStringLiteral("Supply"));
        for (int s = 0; s < entries.size(); ++s) {
            const QString wanted = entries.at(s).toElement().text().toUpper();
            VxPowerSupply* match = nullptr;
            for (VxPowerSupply* supply : supplies) {
                if (supply->name.toUpper() == wanted) {
                    match = supply;
                    break;
                }
            }
            if (!match) {
                if (ctx.reporter)
                    ctx.reporter->warning(
                        QCoreApplication::translate(
                            "Database",
                            "Error parsing \"Valid Supply\" item for fixture %1.\nSupply %2 not defined.")
                            .arg(name, wanted));
                continue;
            }
            validSupplies.append(match);
            match->fixtures.append(this);
        }
    }
}

void VxFixture::readValidVoltages(const QDomElement& element, ParseContext& ctx)
{
    forEachVoltage(
        *this, element, QStringLiteral("ValidVoltages"), ctx.reporter, [&](const QDomElement& ve, int volts) {
            validVoltages.append(volts);
            double d = 0.0;
            int i = 0;
            if (readDouble(*this, ve, QStringLiteral("VoltagePowerFactor"), d, false, ctx.reporter) && d > 0)
                powerFactorByVoltage.insert(volts, d);
            if (readInt(*this, ve, QStringLiteral("VoltageMaxFixtureCount"), i, false, ctx.reporter) && i > 0)
                maxCountByVoltage.insert(volts, i);
            if (readInt(*this, ve, QStringLiteral("Voltage15AmpMaxFixtureCount"), i, false, ctx.reporter) &&
                i > 0)
                maxCount15AByVoltage.insert(volts, i);
            if (readInt(*this, ve, QStringLiteral("Voltage20AmpMaxFixtureCount"), i, false, ctx.reporter) &&
                i > 0)
                maxCount20AByVoltage.insert(volts, i);
            if (readDouble(*this, ve, QStringLiteral("VoltageMaxFixtureCurrent"), d, false, ctx.reporter) &&
                d > 0)
                maxCurrentByVoltage.insert(volts, d);
            if (readDouble(*this, ve, QStringLiteral("VoltagePower"), d, false, ctx.reporter) && d > 0)
                powerByVoltage.insert(volts, d);
            readFrequencyAttributes(*this, ve, volts, frequencyAttributes, ctx.reporter);
        });
}

double VxFixture::maxFixtureCurrentAt(int volts) const
{
    if (volts == 0)
        return 0.0;
    return nearestImpl(maxCurrentByVoltage, volts, 0.0);
}

FrequencyAttribute VxFixture::frequencyAttribute(int volts, int hertz) const
{
    return frequencyAttributes.value(qMakePair(volts, hertz));
}

// ---------------------------------------------------------------------------------------------

VxPowerSupply::VxPowerSupply(const QString& name_, int techType_) : VxItem(name_, techType_) {}

FrequencyAttribute VxPowerSupply::voltageAttribute(int volts, int hertz) const
{
    return voltageAttributes.value(qMakePair(volts, hertz));
}

void VxPowerSupply::readVoltageAttributes(const QDomElement& element, ParseContext& ctx)
{
    forEachVoltage(*this, element, QStringLiteral("VoltageAttributes"), ctx.reporter,
                   [&](const QDomElement& ve, int volts) {
                       readFrequencyAttributes(*this, ve, volts, voltageAttributes, ctx.reporter);
                   });
}

// ---------------------------------------------------------------------------------------------

VxReceiver::VxReceiver(const QString& name_, int techType_) : VxItem(name_, techType_) {}

bool VxReceiver::parse(const QDomElement& element, ParseContext& ctx)
{
    VxItem::parse(element, ctx);
    readShortName(*this, element);
    // Converted without a check: a bad value becomes 0.
    double d = 0.0;
    maxElectricalLength = toDouble(childText(element, QStringLiteral("MaxElectricalLength")), d) ? d : 0.0;
    d = 0.0;
    maxElectricalLengthPerRun =
        toDouble(childText(element, QStringLiteral("MaxElectricalLengthPerRun")), d) ? d : 0.0;
    return true;
}

// ---------------------------------------------------------------------------------------------

VxJunctionBox::VxJunctionBox(const QString& name_, int techType_) : VxItem(name_, techType_) {}

bool VxJunctionBox::parse(const QDomElement& element, ParseContext& ctx)
{
    VxItem::parse(element, ctx);
    readShortName(*this, element);
    double d = 0.0;
    volume = toDouble(childText(element, QStringLiteral("Volume")), d) && std::fabs(d) < 3.0e38
                 ? static_cast<float>(d)
                 : 0.0f;
    int i = 0;
    numPorts = toInt(childText(element, QStringLiteral("NumPorts")), i) ? i : 0;
    readBool(*this, element, QStringLiteral("ReceiverOnly"), receiverOnly, false, ctx.reporter);
    readBool(*this, element, QStringLiteral("ReceiverMountable"), receiverMountable, false, ctx.reporter);
    return true;
}

int VxJunctionBox::portsLeft(const QList<BoxEntry>& entries, int kindCode) const
{
    const long long left =
        static_cast<long long>(numPorts) - entries.size() - reservedPorts.value(kindCode, 0);
    return static_cast<int>(std::clamp<long long>(left, INT_MIN, INT_MAX));
}

float VxJunctionBox::volumeLeft(const QList<BoxEntry>& entries, int kindCode, float allowance) const
{
    float largest = 0.0f;
    float repeated = 0.0f;
    for (const BoxEntry& e : entries) {
        largest = std::max(largest, e.volume);
        repeated += static_cast<float>(e.count - 1) * e.volume;
    }
    const float reserve = (kindCode == 1 || kindCode == 2) ? 5.25f : 0.0f;
    return volume - largest - repeated - reserve + allowance;
}

namespace
{
int truncToInt(double v)
{
    if (!std::isfinite(v))
        return v > 0 ? INT_MAX : INT_MIN;
    return static_cast<int>(std::clamp(std::trunc(v), double(INT_MIN), double(INT_MAX)));
}

int capacity(const VxJunctionBox& box, const QList<BoxEntry>& entries, int kindCode, float conductorVolume,
             float allowance, int conductors)
{
    const int ports = box.portsLeft(entries, kindCode);
    if (conductorVolume <= 0.0f)
        return ports;
    const double byVolume =
        double(box.volumeLeft(entries, kindCode, allowance)) / (conductors * double(conductorVolume));
    return std::min(ports, truncToInt(byVolume));
}
} // namespace

int VxJunctionBox::capacityA(const QList<BoxEntry>& entries, int kindCode, float conductorVolume,
                             float allowance) const
{
    return capacity(*this, entries, kindCode, conductorVolume, allowance, 3);
}

int VxJunctionBox::capacityB(const QList<BoxEntry>& entries, int kindCode, float conductorVolume,
                             float allowance) const
{
    return capacity(*this, entries, kindCode, conductorVolume, allowance, 2);
}
