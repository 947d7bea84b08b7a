#include "catalog/DLRecords.h"

#include "catalog/Database.h"
#include "catalog/FieldReader.h"
#include "catalog/Reporter.h"

#include <QCoreApplication>
#include <QDomNodeList>

using namespace FieldReader;

namespace
{
// A "Leader" or "Jumper" element of a fixture; null when it has no name or does not parse.
VxJumper* readCable(const QDomElement& element, ParseContext& ctx)
{
    const QString name = childText(element, QStringLiteral("Name"));
    if (name.isEmpty()) {
        if (ctx.reporter)
            ctx.reporter->warning(QCoreApplication::translate(
                "Database", "Error in database file:\nJumper/Leader element with no Name"));
        return nullptr;
    }
    auto* cable = new VxJumper(name, VxTechNone);
    if (!cable->parse(element, ctx)) {
        delete cable;
        return nullptr;
    }
    return cable;
}

void readCables(const QDomElement& element, const QString& listTag, const QString& itemTag,
                QList<VxJumper*>& out, ParseContext& ctx)
{
    const QDomNodeList lists = element.elementsByTagName(listTag);
    for (int l = 0; l < lists.size(); ++l) {
        const QDomNodeList items = lists.at(l).toElement().elementsByTagName(itemTag);
        for (int i = 0; i < items.size(); ++i)
            if (VxJumper* cable = readCable(items.at(i).toElement(), ctx))
                out.append(cable);
    }
}

const VxJumper* pickDefault(const QList<VxJumper*>& cables, int index)
{
    if (cables.isEmpty())
        return nullptr;
    return (index >= 0 && index < cables.size()) ? cables.at(index) : cables.first();
}

const VxJumper* findNamed(const QList<VxJumper*>& cables, const QString& name)
{
    for (const VxJumper* c : cables)
        if (c->name == name)
            return c;
    return nullptr;
}
} // namespace

DLFixture::DLFixture(const QString& name_, int techType_) : VxFixture(name_, techType_) {}

DLFixture::~DLFixture()
{
    qDeleteAll(leaders);
    qDeleteAll(jumpers);
}

const VxJumper* DLFixture::defaultLeaderCable() const
{
    return pickDefault(leaders, defaultLeader);
}

const VxJumper* DLFixture::defaultJumperCable() const
{
    return pickDefault(jumpers, defaultJumper);
}

const VxJumper* DLFixture::leaderNamed(const QString& n) const
{
    return findNamed(leaders, n);
}

const VxJumper* DLFixture::jumperNamed(const QString& n) const
{
    return findNamed(jumpers, n);
}

bool DLFixture::parse(const QDomElement& element, ParseContext& ctx)
{
    VxFixture::parse(element, ctx);
    Reporter* rep = ctx.reporter;

    bool ok = readDouble(*this, element, QStringLiteral("MaxTemp"), maxTemp, true, rep);
    if (ok) {
        ok = readDouble(*this, element, QStringLiteral("Resistance"), resistance, true, rep);
        if (ok)
            resistance /= 1000.0;
    }
    if (ok)
        ok = readDouble(*this, element, QStringLiteral("ElectricalLength"), electricalLength, true, rep);
    readDouble(*this, element, QStringLiteral("Power"), power, false, rep);
    if (!ok)
        return false;

    if (!readDouble(*this, element, QStringLiteral("FudgeFactor"), fudgeFactor, true, rep) ||
        !readInt(*this, element, QStringLiteral("SafetyRequired"), safetyRequired, true, rep) ||
        !readInt(*this, element, QStringLiteral("StartingVoltage"), startingVoltage, true, rep))
        return false;

    readDouble(*this, element, QStringLiteral("MaxVoltageDrop"), maxVoltageDrop, false, rep);
    readDouble(*this, element, QStringLiteral("MinVoltage"), minVoltage, false, rep);
    readDouble(*this, element, QStringLiteral("VoltageDropPercent"), voltageDropPercent, false, rep);
    if (maxVoltageDrop == 0.0 && minVoltage == 0.0 && voltageDropPercent == 0.0) {
        if (rep)
            rep->warning(QCoreApplication::translate(
                             "Database",
                             "Error parsing %1\nMaxVoltageDrop, MinVoltage, and VoltageDropPercent are zero")
                             .arg(name));
        return false;
    }

    readDouble(*this, element, QStringLiteral("MaxPower"), maxPower, false, rep);
    readDouble(*this, element, QStringLiteral("MaxFixtureCurrent"), maxFixtureCurrent, false, rep);
    readDouble(*this, element, QStringLiteral("MaxFixtureLength"), maxFixtureLength, false, rep);
    readBool(*this, element, QStringLiteral("JumperRequired"), jumperRequired, false, rep);

    readCables(element, QStringLiteral("LeaderList"), QStringLiteral("Leader"), leaders, ctx);
    readCables(element, QStringLiteral("JumperList"), QStringLiteral("Jumper"), jumpers, ctx);
    return true;
}

// ---------------------------------------------------------------------------------------------

DLPowerSupply::DLPowerSupply(const QString& name_, int techType_) : VxPowerSupply(name_, techType_) {}

bool DLPowerSupply::parse(const QDomElement& element, ParseContext& ctx)
{
    VxPowerSupply::parse(element, ctx);
    Reporter* rep = ctx.reporter;
    readDouble(*this, element, QStringLiteral("MaxElectricalLength"), maxElectricalLength, false, rep);
    readDouble(*this, element, QStringLiteral("MaxElectricalLengthPerRun"), maxElectricalLengthPerRun, false,
               rep);
    readInt(*this, element, QStringLiteral("MaxNumFixtures"), maxNumFixtures, false, rep);
    if (maxElectricalLength == 0.0 && maxNumFixtures == 0) {
        if (rep)
            rep->warning(
                QCoreApplication::translate(
                    "Database", "Error parsing %1\nMaxElectricalLength and MaxNumFixtures are both zero")
                    .arg(name));
        return false;
    }

    const QDomNodeList lists = element.elementsByTagName(QStringLiteral("OutputModes"));
    for (int l = 0; l < lists.size(); ++l) {
        const QDomNodeList modes = lists.at(l).toElement().elementsByTagName(QStringLiteral("OutputMode"));
        for (int m = 0; m < modes.size(); ++m)
            outputModes.append(modes.at(m).toElement().text());
    }
    readDouble(*this, element, QStringLiteral("Power"), power, false, rep);
    readDouble(*this, element, QStringLiteral("PowerFactor"), powerFactor, false, rep);
    readVoltageAttributes(element, ctx);
    return true;
}

// ---------------------------------------------------------------------------------------------

DLReceiver::DLReceiver(const QString& name_, int techType_) : VxReceiver(name_, techType_) {}

bool DLReceiver::parse(const QDomElement& element, ParseContext& ctx)
{
    VxReceiver::parse(element, ctx);
    Reporter* rep = ctx.reporter;
    readDouble(*this, element, QStringLiteral("PowerFactor"), powerFactor, true, rep);
    readDouble(*this, element, QStringLiteral("Resistance"), resistance, true, rep);
    readDouble(*this, element, QStringLiteral("ElectricalLength"), electricalLength, true, rep);
    readDouble(*this, element, QStringLiteral("Power"), power, true, rep);

    // Junction-box names resolve against the catalog being loaded: its boxes are read before receivers.
    if (!ctx.catalog)
        return true;
    const QDomNodeList lists = element.elementsByTagName(QStringLiteral("ValidJunctionBoxList"));
    for (int l = 0; l < lists.size(); ++l) {
        const QDomNodeList names =
            lists.at(l).toElement().elementsByTagName(QStringLiteral("JuncionBoxName"));
        for (int n = 0; n < names.size(); ++n) {
            const QString boxName = names.at(n).toElement().text();
            for (DLJunctionBox* box : ctx.catalog->junctionBoxes())
                if (box->name == boxName)
                    validJunctionBoxes.append(box);
        }
    }
    return true;
}

// ---------------------------------------------------------------------------------------------

DLJunctionBox::DLJunctionBox(const QString& name_, int techType_) : VxJunctionBox(name_, techType_) {}
