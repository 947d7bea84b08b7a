#include "calc/CircuitSelectors.h"

#include "catalog/Database.h"
#include "model/CWidget.h"

const DLPowerSupply* CircuitSelectors::enabler() const
{
    return m_db.supplyNamed(supply);
}

QStringList CircuitSelectors::fixtureNames() const
{
    QStringList names;
    if (const DLPowerSupply* chosen = enabler())
        for (const VxFixture* f : chosen->fixtures)
            names.append(f->name);
    return names;
}

QStringList CircuitSelectors::controllerNames() const
{
    // Only an enabler that can feed receivers offers the controllers.
    const DLPowerSupply* chosen = enabler();
    return chosen && chosen->hasOutputMode(Modes::feedwise()) ? m_db.controllers().keys() : QStringList();
}

QStringList CircuitSelectors::voltageEntries(const VxFixture* fixture)
{
    QStringList entries;
    for (int volts : fixture->validVoltages)
        entries.append(QString::number(volts));
    // A custom voltage stays possible with every fixture.
    entries.append(otherEntry());
    return entries;
}

void CircuitSelectors::chooseEnabler(const DLPowerSupply* chosen)
{
    supply = chosen ? chosen->name : QString();
    if (!chosen) {
        fixture.clear();
        controller.clear();
        return;
    }
    controller = controllerNames().value(0);
    if (!chosen->fixtures.isEmpty())
        chooseFixture(chosen->fixtures.first());
    else
        fixture.clear();
}

void CircuitSelectors::chooseFixture(const VxFixture* chosen)
{
    if (!chosen)
        return;
    fixture = chosen->name;
    const QList<int>& volts = chosen->validVoltages;
    const auto* dl = qobject_cast<const DLFixture*>(chosen);
    const int entry =
        voltageEntryAfterFixtureChange(volts, dl ? dl->startingVoltage : 0, lineVoltage, otherEntry());
    if (entry < 0)
        lineVoltage.clear();
    else
        lineVoltage = entry < volts.size() ? QString::number(volts.at(entry)) : otherEntry();
}

bool CircuitSelectors::chooseLineVoltage(int volts)
{
    const DLFixture* chosen = fixtureRecord();
    const QString text = QString::number(volts);
    if (!chosen || !chosen->validVoltages.contains(volts) || text == lineVoltage)
        return false;
    lineVoltage = text;
    return true;
}

void CircuitSelectors::chooseDefaults()
{
    chooseDefaultLineVoltage();
    if (const DLFixture* chosen = fixtureRecord()) {
        const QStringList entries = voltageEntries(chosen);
        if (!entries.contains(lineVoltage))
            lineVoltage = entries.first();
    }
    const HeaderValues defaults;
    maxCircuitLoad = defaults.maxCircuitLoad;
    frequency = defaults.frequency;
}

const DLFixture* CircuitSelectors::fixtureRecord() const
{
    return inputs().selectedFixture;
}

const DLFixture* CircuitSelectors::fixtureRecordToAdd() const
{
    const DLPowerSupply* chosen = enabler();
    if (!chosen || chosen->fixtures.isEmpty())
        return nullptr;
    const VxFixture* found = nullptr;
    for (const VxFixture* f : chosen->fixtures)
        if (f->name == fixture)
            found = f;
    return qobject_cast<const DLFixture*>(found ? found : chosen->fixtures.first());
}

namespace
{
bool sameChoices(const HeaderValues& a, const HeaderValues& b)
{
    return a.supply == b.supply && a.fixture == b.fixture && a.lineVoltage == b.lineVoltage &&
           a.customVoltage == b.customVoltage && a.maxCircuitLoad == b.maxCircuitLoad &&
           a.customLoad == b.customLoad && a.frequency == b.frequency && a.controller == b.controller;
}
} // namespace

CircuitInputs CircuitSelectors::inputs() const
{
    if (!m_hasInputs || !sameChoices(*this, m_inputsChoices)) {
        m_inputs = inputsFromHeader(*this, m_db);
        m_inputsChoices = *this;
        m_hasInputs = true;
    }
    return m_inputs;
}
