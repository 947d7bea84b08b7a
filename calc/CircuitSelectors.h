#pragma once

#include "calc/Analysis.h"
#include "model/HeaderChoices.h"

#include <QStringList>

class Database;
class DLFixture;
class DLPowerSupply;
class VxFixture;

// The circuit selectors' state: the enabler, fixture, line voltage, load, frequency and controller
// chosen, the lists a choice offers and the circuit inputs they make. The headless session keeps
// one; the main window keeps one too and mirrors it into its combo boxes.
class CircuitSelectors : public HeaderValues
{
public:
    explicit CircuitSelectors(const Database& db) : m_db(db) {}

    // The chosen enabler (by name), and its fixtures and controllers as the lists show them.
    const DLPowerSupply* enabler() const;
    QStringList fixtureNames() const;
    QStringList controllerNames() const;
    // The line-voltage list of a fixture: its voltages in list order, then the custom entry.
    static QStringList voltageEntries(const VxFixture* fixture);

    // A new enabler: its first fixture (with the voltage that follows) and its first controller;
    // none leaves no enabler, fixture or controller chosen.
    void chooseEnabler(const DLPowerSupply* enabler);
    // A new fixture; the voltage list becomes the fixture's and the voltage choice follows it: the
    // custom entry stays, else the previous voltage where offered, else the fixture's own.
    void chooseFixture(const VxFixture* fixture);
    // A voltage of the chosen fixture; false when it is not offered or already chosen.
    bool chooseLineVoltage(int volts);
    void chooseDefaultLineVoltage() { chooseLineVoltage(DefaultLineVoltage); }
    // New: the default voltage (else the first the fixture offers, when none of its own is
    // chosen), load and frequency; the custom values stay.
    void chooseDefaults();

    // The fixture the analysis uses: of the enabler's fixtures, the first named as chosen, else
    // the enabler's first.
    const DLFixture* fixtureRecord() const;
    // The fixture the add buttons use: the same, but the last of the fixtures so named.
    const DLFixture* fixtureRecordToAdd() const;
    // Every analysis asks for them, mostly for the same choices: the last ones are kept.
    CircuitInputs inputs() const;

private:
    const Database& m_db;
    mutable HeaderValues m_inputsChoices;
    mutable CircuitInputs m_inputs;
    mutable bool m_hasInputs = false;
};
