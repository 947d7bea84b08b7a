#pragma once

#include <QCoreApplication>
#include <QList>
#include <QString>

// The line-voltage list after a fixture change is the fixture's voltages in list order followed by
// the custom entry (customText, "Other"). Returns the entry to select: the custom entry
// (voltages.size()) when it was the previous choice, else the previous voltage where offered,
// else the fixture's starting voltage, else the first voltage; -1 when there is nothing to select.
// The main window and the headless session both rebuild their lists through it.
int voltageEntryAfterFixtureChange(const QList<int>& voltages, int startingVoltage, const QString& previous,
                                   const QString& customText);

// The header choices of a configuration: what the selectors of the main window show. Project files
// read and write them through this interface; the main window implements it over its combo boxes,
// and HeaderValues keeps them in memory for headless use.
class HeaderChoices
{
public:
    virtual ~HeaderChoices() = default;

    // The last entry of the voltage and load lists: a value typed into the spin box beside them.
    static QString otherEntry() { return QCoreApplication::translate("HeaderChoices", "Other"); }

    virtual QString supplyText() const = 0;
    virtual QString fixtureText() const = 0;
    virtual QString lineVoltageText() const = 0;
    virtual int customLineVoltage() const = 0;
    virtual QString maxCircuitLoadText() const = 0;
    virtual int customMaxCircuitLoad() const = 0;
    virtual QString frequencyText() const = 0;
    virtual QString controllerText() const = 0;

    // Each selects the entry whose text equals the value exactly; no match leaves no current entry.
    virtual void selectSupply(const QString& text) = 0;
    virtual void selectFixture(const QString& text) = 0;
    virtual void selectLineVoltage(const QString& text) = 0;
    virtual void setCustomLineVoltage(int volts) = 0;
    virtual void selectMaxCircuitLoad(const QString& text) = 0;
    virtual void setCustomMaxCircuitLoad(int amps) = 0;
    virtual void selectFrequency(const QString& text) = 0;
    virtual void selectController(const QString& text) = 0;
};

// In-memory header choices with the main window's defaults: 120 V, 15 A, 60 Hz.
class HeaderValues : public HeaderChoices
{
public:
    QString supply;
    QString fixture;
    QString lineVoltage = QStringLiteral("120");
    int customVoltage = 120;
    QString maxCircuitLoad = QStringLiteral("15");
    int customLoad = 15;
    QString frequency = QStringLiteral("60 Hz");
    QString controller;

    QString supplyText() const override { return supply; }
    QString fixtureText() const override { return fixture; }
    QString lineVoltageText() const override { return lineVoltage; }
    int customLineVoltage() const override { return customVoltage; }
    QString maxCircuitLoadText() const override { return maxCircuitLoad; }
    int customMaxCircuitLoad() const override { return customLoad; }
    QString frequencyText() const override { return frequency; }
    QString controllerText() const override { return controller; }

    void selectSupply(const QString& t) override { supply = t; }
    void selectFixture(const QString& t) override { fixture = t; }
    void selectLineVoltage(const QString& t) override { lineVoltage = t; }
    void setCustomLineVoltage(int v) override { customVoltage = v; }
    void selectMaxCircuitLoad(const QString& t) override { maxCircuitLoad = t; }
    void setCustomMaxCircuitLoad(int a) override { customLoad = a; }
    void selectFrequency(const QString& t) override { frequency = t; }
    void selectController(const QString& t) override { controller = t; }
};
