#pragma once

#include "catalog/Records.h"

#include <QStringList>

// Records of the Dynaline (line-voltage power and data) technology.

class DLFixture : public VxFixture
{
    Q_OBJECT
public:
    DLFixture(const QString& name, int techType);
    ~DLFixture() override;
    bool parse(const QDomElement& element, ParseContext& ctx) override;

    const VxJumper* defaultLeaderCable() const; // out-of-range index: the first; none when empty
    const VxJumper* defaultJumperCable() const;
    const VxJumper* leaderNamed(const QString& name) const;
    const VxJumper* jumperNamed(const QString& name) const;

    double maxTemp = 0.0;
    double resistance = 0.0; // the whole fixture, ohms (file: milliohms)
    double electricalLength = 0.0;
    double power = 0.0;
    double maxPower = 0.0;
    double maxVoltageDrop = 0.0;
    double minVoltage = 0.0;
    double maxFixtureCurrent = 0.0;
    double maxFixtureLength = 0.0;
    double voltageDropPercent = 0.0; // a fraction: 0.05 is five percent
    double fudgeFactor = 0.0;
    int safetyRequired = 0; // the fixture's output mode, 1..4; anything else is a plain fixture
    bool jumperRequired = false;
    int startingVoltage = 120;
    QList<VxJumper*> leaders; // owned
    QList<VxJumper*> jumpers; // owned
};

class DLPowerSupply : public VxPowerSupply
{
    Q_OBJECT
public:
    DLPowerSupply(const QString& name, int techType);
    bool parse(const QDomElement& element, ParseContext& ctx) override;

    bool hasOutputMode(const QString& mode) const { return outputModes.contains(mode); }
    QString defaultOutputMode() const { return outputModes.isEmpty() ? QString() : outputModes.first(); }

    QStringList outputModes;
    double maxElectricalLength = 0.0;
    double maxElectricalLengthPerRun = 0.0;
    int maxNumFixtures = 0;
    double powerFactor = 0.0;
    double power = 0.0;
};

class DLJunctionBox;

class DLReceiver : public VxReceiver
{
    Q_OBJECT
public:
    DLReceiver(const QString& name, int techType);
    bool parse(const QDomElement& element, ParseContext& ctx) override;

    QList<DLJunctionBox*> validJunctionBoxes; // not owned
    double power = 0.0;
    double powerFactor = 0.0;
    double resistance = 0.0; // ohms, as given
    double electricalLength = 0.0;
};

class DLJunctionBox : public VxJunctionBox
{
    Q_OBJECT
public:
    DLJunctionBox(const QString& name, int techType);
};
