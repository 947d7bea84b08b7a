#pragma once

#include <QDomElement>
#include <QList>
#include <QMap>
#include <QObject>
#include <QPair>
#include <QString>

class Reporter;
class Database;

// Technology of a catalog record, as stored in the database's "Type" element.
enum VxTechType {
    VxTechNone = 0,
    VxTechDynaline = 1,
    VxTechTintrail = 2,
    VxTechPixelon = 3,
    VxTechPxRibbon = 4
};

// What a record's parse needs besides its element: where to report, and the catalog being loaded
// (a receiver resolves its junction-box names against it).
struct ParseContext {
    Reporter* reporter = nullptr;
    const Database* catalog = nullptr;
};

// Inrush current (A) and leakage (as given in the file, microamps) at one voltage and frequency.
struct FrequencyAttribute {
    double inrushCurrent = 0.0;
    double leakage = 0.0;
};
using FrequencyTable = QMap<QPair<int, int>, FrequencyAttribute>; // (volts, Hz) -> values

// Base of every catalog record.
class VxItem : public QObject
{
    Q_OBJECT
public:
    VxItem(const QString& name, int techType);
    ~VxItem() override;

    virtual bool parse(const QDomElement& element, ParseContext& ctx);
    virtual void writeXml(QDomElement& parent, QDomDocument& doc) const;
    virtual bool isRecordElement(const QDomElement& element) const;

    QString name;
    QString shortName;
    int techType = VxTechNone;
    bool disabled = false;
};

// One choice of a cable cut to length: a gauge with its resistance and length limit.
class VxWire : public VxItem
{
    Q_OBJECT
public:
    VxWire(const QString& name, int techType);
    bool parse(const QDomElement& element, ParseContext& ctx) override;

    double resistance = 0.0; // ohms per foot
    double maxLength = 0.0;  // feet
};

// A leader, jumper or branch-wire cable.
class VxJumper : public VxItem
{
    Q_OBJECT
public:
    VxJumper(const QString& name, int techType);
    ~VxJumper() override;
    bool parse(const QDomElement& element, ParseContext& ctx) override;

    // The custom wire at the default index, or the first one when the index is out of range.
    const VxWire* defaultWire() const;
    const VxWire* wireNamed(const QString& gauge) const;

    QString standardGauge;
    bool hasCustomWires = false;
    double electricalLength = 0.0; // feet
    double maxLeaderLength = 0.0;  // feet
    double resistance = 0.0;       // ohms per foot
    int maxInARow = 0;
    int defaultCustomWire = 0;
    double defaultCustomLength = 0.0;
    QList<VxWire*> customWires; // owned
    double multiplier = 1.0;
};

// Per-voltage lookups shared by the fixture tables.
namespace VoltageLookup
{
// Nearest entry: key 0 gives the default; else the exact non-zero entry; else the nearest voltage
// (a strictly smaller distance from a bound of 10000 wins, so the lower voltage wins a tie); else 0.
double nearest(const QMap<int, double>& table, int key, double defaultValue);
int nearest(const QMap<int, int>& table, int key, int defaultValue);
// Greatest voltage not above the key; 0 when every entry lies above; the default when the key is 0
// or the table is empty.
double floor(const QMap<int, double>& table, int key, double defaultValue);
} // namespace VoltageLookup

class VxPowerSupply;

class VxFixture : public VxItem
{
    Q_OBJECT
public:
    VxFixture(const QString& name, int techType);
    bool parse(const QDomElement& element, ParseContext& ctx) override;
    void writeXml(QDomElement& parent, QDomDocument& doc) const override;
    bool isRecordElement(const QDomElement& element) const override;

    // Reads "ValidSupplyList" against the supplies already in the catalog (two-way link).
    void readValidSupplies(const QDomElement& element, const QList<VxPowerSupply*>& supplies,
                           ParseContext& ctx);
    // Reads "ValidVoltages" into the per-voltage tables.
    void readValidVoltages(const QDomElement& element, ParseContext& ctx);

    // Maximum fixture current for a line voltage: 0 for 0 V, the exact non-zero entry, else the nearest.
    double maxFixtureCurrentAt(int volts) const;
    FrequencyAttribute frequencyAttribute(int volts, int hertz) const; // exact match, else zeros

    bool isInline = false;
    int family = 0;
    int defaultLeader = 0;
    int defaultJumper = 0;
    double powerFactor = 0.0;
    QList<VxPowerSupply*> validSupplies; // not owned
    QList<int> validVoltages;
    QMap<int, double> powerFactorByVoltage;
    QMap<int, int> maxCountByVoltage;
    QMap<int, int> maxCount15AByVoltage;
    QMap<int, int> maxCount20AByVoltage;
    QMap<int, double> maxCurrentByVoltage;
    QMap<int, double> powerByVoltage;
    FrequencyTable frequencyAttributes;
};

class VxPowerSupply : public VxItem
{
    Q_OBJECT
public:
    VxPowerSupply(const QString& name, int techType);
    FrequencyAttribute voltageAttribute(int volts, int hertz) const; // exact match, else zeros
    void readVoltageAttributes(const QDomElement& element, ParseContext& ctx);

    QList<VxFixture*> fixtures; // not owned; fixtures that name this supply
    FrequencyTable voltageAttributes;
};

class VxReceiver : public VxItem
{
    Q_OBJECT
public:
    VxReceiver(const QString& name, int techType);
    bool parse(const QDomElement& element, ParseContext& ctx) override;

    double maxElectricalLength = 0.0;
    double maxElectricalLengthPerRun = 0.0;
};

// One conductor entry already in a box: its volume and how many of them.
struct BoxEntry {
    float volume = 0.0f;
    int count = 0;
};

class VxJunctionBox : public VxItem
{
    Q_OBJECT
public:
    VxJunctionBox(const QString& name, int techType);
    bool parse(const QDomElement& element, ParseContext& ctx) override;

    int portsLeft(const QList<BoxEntry>& entries, int kindCode) const;
    float volumeLeft(const QList<BoxEntry>& entries, int kindCode, float allowance) const;
    // How many three-conductor (A) and two-conductor (B) connections still fit.
    int capacityA(const QList<BoxEntry>& entries, int kindCode, float conductorVolume, float allowance) const;
    int capacityB(const QList<BoxEntry>& entries, int kindCode, float conductorVolume, float allowance) const;

    float volume = 0.0f;
    int numPorts = 0;
    bool receiverOnly = false;
    bool receiverMountable = false;
    QMap<int, int> reservedPorts;
};
