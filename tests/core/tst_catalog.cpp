// Catalog loader, records and per-voltage lookups, driven by the files in tests/data/catalog, by
// generated hostile documents and by the shipped sample catalog.

#include "catalog/Database.h"
#include "catalog/Reporter.h"

#include "TestSupport.h"

#include <QCoreApplication>
#include <QDomDocument>
#include <QFile>
#include <QRegularExpression>
#include <QtTest>

namespace
{

QString catalogFile(const QString& name)
{
    return testDataPath(QStringLiteral("catalog/") + name);
}

QString inFile(const QString& path, const QString& rest)
{
    return QStringLiteral("Error in database file %1:\n").arg(path) + rest;
}

QString fieldMessage(const QString& field, const QString& record)
{
    return QStringLiteral("Error parsing \"%1\" field for %2").arg(field, record);
}

QString validSupplyMessage(const QString& fixture, const QString& upperSupply)
{
    return QStringLiteral("Error parsing \"Valid Supply\" item for fixture %1.\nSupply %2 not defined.")
        .arg(fixture, upperSupply);
}

// The message for a file that cannot be opened or that the XML parser refuses, built from the
// same sources the loader uses (the file's error string; the parser's words, line and column).
QString refusalFor(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text))
        return QStringLiteral("Cannot read database file %1:\n%2.").arg(path, file.errorString());
    QDomDocument doc;
    QString message;
    int line = 0;
    int column = 0;
    if (doc.setContent(file.readAll(), &message, &line, &column))
        return QStringLiteral("<%1 parses>").arg(path);
    return QStringLiteral("Error parsing database file %1:\n%2\nLine %3 Column %4")
        .arg(path, message)
        .arg(line)
        .arg(column);
}

bool isEmptyCatalog(const Database& db)
{
    return db.supplies().isEmpty() && db.fixtures().isEmpty() && db.receivers().isEmpty() &&
           db.junctionBoxes().isEmpty() && db.branchWires().isEmpty() && db.locations().isEmpty() &&
           db.controllers().isEmpty() && db.outputModes().isEmpty() && db.version().isEmpty();
}

template <typename List> QStringList namesOf(const List& records)
{
    QStringList out;
    for (const auto* r : records)
        out.append(r->name);
    return out;
}

// One catalog file loaded with a recording reporter.
struct Loaded {
    explicit Loaded(const char* file) : path(catalogFile(QString::fromUtf8(file)))
    {
        ok = db.loadFile(path, &rep);
    }
    QString path;
    Database db;
    RecordingReporter rep;
    bool ok = false;
};

const char* const PlainFixtureFields =
    "<MaxTemp>40</MaxTemp><Resistance>10</Resistance><ElectricalLength>1</ElectricalLength>"
    "<FudgeFactor>1</FudgeFactor><SafetyRequired>0</SafetyRequired><StartingVoltage>120</StartingVoltage>"
    "<MaxVoltageDrop>5</MaxVoltageDrop>";

} // namespace

class TestCatalog : public QObject
{
    Q_OBJECT

private slots:
    void refusedFiles_data()
    {
        QTest::addColumn<QString>("path");
        QTest::newRow("absent") << catalogFile(QStringLiteral("absent.xml"));
        QTest::newRow("directory") << testDataPath(QStringLiteral("catalog"));
        QTest::newRow("empty") << catalogFile(QStringLiteral("empty.xml"));
        QTest::newRow("binary garbage") << catalogFile(QStringLiteral("garbage.bin"));
        QTest::newRow("truncated") << catalogFile(QStringLiteral("truncated.xml"));
        QTest::newRow("entity expansion bomb") << catalogFile(QStringLiteral("entity_bomb.xml"));
    }

    void refusedFiles()
    {
        QFETCH(QString, path);
        Database db;
        RecordingReporter rep;
        QVERIFY(!db.loadFile(path, &rep));
        QVERIFY(!db.isValid());
        QCOMPARE(db.path(), path);
        QCOMPARE(rep.texts(), QStringList{refusalFor(path)});
        QVERIFY(rep.messages.first().kind == Reporter::Kind::Warning);
        QCOMPARE(rep.messages.first().title, QStringLiteral("Runplan"));
        // A refused file contributes nothing, not even the records before the damage.
        QVERIFY(isEmptyCatalog(db));
    }

    void documentShapeAndVersion()
    {
        Loaded only("only_version.xml");
        QVERIFY(only.ok && only.db.isValid());
        QCOMPARE(only.rep.texts(), QStringList());
        QCOMPARE(only.db.version(), QStringLiteral("empty-1"));
        QVERIFY(only.db.firstBranchWire() == nullptr);

        // Any root name; product lists are found at any depth; the version only directly below the root.
        Loaded html("wrong_root.xml");
        QCOMPARE(html.rep.texts(), QStringList());
        QCOMPARE(html.db.version(), QStringLiteral("html-1"));
        QCOMPARE(namesOf(html.db.supplies()), QStringList{QStringLiteral("Line Voltage")});
        QCOMPARE(namesOf(html.db.fixtures()), QStringList{QStringLiteral("Nested Fixture")});
        QCOMPARE(html.db.fixtures().first()->validSupplies,
                 QList<VxPowerSupply*>{html.db.supplies().first()});

        Loaded nested("version_nested.xml");
        QVERIFY(nested.ok && nested.db.isValid());
        QCOMPARE(nested.rep.texts(),
                 QStringList{inFile(nested.path, QStringLiteral("DBVersion  not found."))});
        QVERIFY(nested.db.version().isEmpty());
        QCOMPARE(nested.db.controllers().value(QStringLiteral("Studio")), 16); // loading goes on

        // An external entity is never fetched.
        Loaded external("external_entity.xml");
        QCOMPARE(external.rep.texts(),
                 QStringList{inFile(external.path, QStringLiteral("DBVersion  not found."))});
        QCOMPARE(external.db.controllers().size(), 1);
        QVERIFY(!external.db.controllers().firstKey().contains(QLatin1String("root")));

        // A second load keeps the first version; the same version again is no mismatch.
        Loaded maps("maps.xml");
        maps.rep.clear();
        QVERIFY(maps.db.loadFile(maps.path, &maps.rep));
        QVERIFY(!maps.rep.texts().join(QLatin1Char('|')).contains(QLatin1String("DBVersion")));
        maps.rep.clear();
        QVERIFY(maps.db.loadFile(only.path, &maps.rep));
        QCOMPARE(maps.rep.texts(),
                 QStringList{inFile(only.path,
                                    QStringLiteral("DBVersion empty-1 does not match previous (maps-1)"))});
        QCOMPARE(maps.db.version(), QStringLiteral("maps-1"));
        QCOMPARE(maps.db.path(), only.path);
    }

    void mapsAndBranchWires()
    {
        Loaded l("maps.xml");
        // The third branch wire has no Resistance; its ElectricalLength is then not read either.
        QCOMPARE(l.rep.texts(),
                 QStringList{fieldMessage(QStringLiteral("Resistance"), QStringLiteral("BranchWire"))});
        const QMap<QString, int> controllers = {{QStringLiteral("Studio"), 9},
                                                {QStringLiteral("Broken"), 0},
                                                {QStringLiteral("Missing"), 0},
                                                {QStringLiteral("Overflow"), 0},
                                                {QStringLiteral("Second List"), 7}};
        QCOMPARE(l.db.controllers(), controllers);
        const QMap<QString, int> modes = {{QStringLiteral("Dynaline"), 3}, {QStringLiteral("Feedwise"), 0}};
        QCOMPARE(l.db.outputModes(), modes);
        const QMap<QString, double> locations = {{QStringLiteral("Above Ground"), 0.005},
                                                 {QStringLiteral("Wet"), 0.0},
                                                 {QStringLiteral("Plenum"), 0.003}};
        QCOMPARE(l.db.locations(), locations);

        QCOMPARE(l.db.branchWires().size(), 3);
        const VxJumper* fixed = l.db.firstBranchWire();
        QVERIFY(fixed == l.db.branchWires().first() && !fixed->hasCustomWires && !fixed->defaultWire());
        QCOMPARE(fixed->resistance, 0.00253);
        QCOMPARE((QList<double>{fixed->electricalLength, fixed->maxLeaderLength, double(fixed->maxInARow)}),
                 (QList<double>{20, 999, 3}));
        QCOMPARE(fixed->standardGauge, QStringLiteral("14"));
        const VxJumper* custom = l.db.branchWires().at(1);
        QVERIFY(custom->hasCustomWires);
        QCOMPARE(custom->defaultCustomLength, 35.0);
        QCOMPARE(namesOf(custom->customWires), QStringList{QStringLiteral("12")});
        QCOMPARE(custom->customWires.first()->resistance, 0.00159);
        QCOMPARE((QList<double>{custom->customWires.first()->maxLength, custom->maxLeaderLength}),
                 (QList<double>{175, 0}));
        QCOMPARE(l.db.branchWires().at(2)->electricalLength, 0.0);
    }

    void productNamesAndTypes()
    {
        Loaded n("names.xml");
        // A blank name is no name: the document drops whitespace-only text.
        const auto noName = [&](const char* kind) {
            return inFile(n.path, QString::fromUtf8(kind) + QStringLiteral(" element with no Name"));
        };
        QCOMPARE(n.rep.texts(), (QStringList{noName("JunctionBox"), noName("JunctionBox"), noName("Receiver"),
                                             noName("Receiver"), noName("PowerSupply"), noName("Fixture")}));
        QCOMPARE(namesOf(n.db.junctionBoxes()),
                 (QStringList{QStringLiteral("Box\tTab"), QStringLiteral("Twin"), QStringLiteral("Twin")}));
        QCOMPARE(n.db.junctionBoxNamed(QStringLiteral("Twin"))->volume, 1.0f); // the first listed wins
        QCOMPARE(namesOf(n.db.receivers()), QStringList{QStringLiteral("Rx\nSecond Line")});
        QCOMPARE(namesOf(n.db.supplies()),
                 (QStringList{QStringLiteral("Feeder"), QStringLiteral("Feeder"), QStringLiteral("FEEDER")}));
        QCOMPARE(n.db.supplyNamed(QStringLiteral("Feeder"))->maxNumFixtures, 4);
        QCOMPARE(n.db.supplyNamed(QStringLiteral("FEEDER"))->maxNumFixtures, 16);
        QVERIFY(n.db.supplyNamed(QStringLiteral("feeder")) == nullptr);
        const QString unicodeName = QStringLiteral("Lümière ✓ 光 Dynaline");
        QCOMPARE(namesOf(n.db.fixtures()), (QStringList{QStringLiteral("Bar\tOne"), QStringLiteral("Dup"),
                                                        QStringLiteral("Dup"), unicodeName}));
        QCOMPARE(n.db.fixtureNamed(QStringLiteral("Dup"))->family, 1);
        QCOMPARE(n.db.fixtureNamed(unicodeName)->shortName, unicodeName); // empty ShortName keeps the name
        // A lower-case valid supply links to the first supply in catalog order, and only to it.
        QCOMPARE(n.db.fixtures().first()->validSupplies, QList<VxPowerSupply*>{n.db.supplies().first()});
        QVERIFY(n.db.supplies().at(1)->fixtures.isEmpty() && n.db.supplies().at(2)->fixtures.isEmpty());

        // Only Dynaline products are taken; junction boxes speak of a PowerSupply on purpose.
        Loaded t("types.xml");
        QCOMPARE(t.rep.texts(),
                 (QStringList{
                     inFile(t.path, QStringLiteral("PowerSupply Tintrail Box has unknown type")),
                     inFile(t.path, QStringLiteral("PowerSupply Typeless Box has unknown type")),
                     inFile(t.path, QStringLiteral("PowerSupply Pixel Supply has unknown type")),
                     inFile(t.path, QStringLiteral("Fixture Ribbon Fixture has unknown type")),
                     inFile(t.path, QStringLiteral("Fixture Padded Type Fixture has unknown type")),
                     validSupplyMessage(QStringLiteral("Shouting Fixture"), QStringLiteral("PIXEL SUPPLY")),
                     inFile(t.path, QStringLiteral("Fixture Typeless Fixture has unknown type"))}));
        QCOMPARE(namesOf(t.db.junctionBoxes()), QStringList{QStringLiteral("Caps Box")});
        QCOMPARE(t.db.junctionBoxes().first()->techType, int(VxTechDynaline));
        QCOMPARE(namesOf(t.db.receivers()), QStringList{QStringLiteral("Any Type Receiver")});
        QCOMPARE(namesOf(t.db.supplies()), QStringList{QStringLiteral("Mixed Case Supply")});
        QCOMPARE(t.db.fixtures().first()->validSupplies, QList<VxPowerSupply*>{t.db.supplies().first()});
    }

    void suppliesAndValidSupplyLinks()
    {
        Loaded l("supplies.xml");
        QCOMPARE(l.rep.texts(),
                 (QStringList{
                     fieldMessage(QStringLiteral("Value"), QStringLiteral("Signal Feeder Pro")),
                     QStringLiteral(
                         "Error parsing Zero Supply\nMaxElectricalLength and MaxNumFixtures are both zero"),
                     validSupplyMessage(QStringLiteral("Lower Case Link"), QStringLiteral("GHOST SUPPLY")),
                     validSupplyMessage(QStringLiteral("Orphan"), QStringLiteral("NOBODY")),
                     validSupplyMessage(QStringLiteral("Orphan"), QStringLiteral("NOBODY ELSE"))}));
        QCOMPARE(namesOf(l.db.supplies()),
                 (QStringList{QStringLiteral("Signal Feeder Pro"), QStringLiteral("RD-5000"),
                              QStringLiteral("Zero Supply")}));
        const DLPowerSupply* sfp = l.db.supplies().at(0);
        const DLPowerSupply* rd = l.db.supplies().at(1);
        const DLPowerSupply* zero = l.db.supplies().at(2);
        QCOMPARE(sfp->outputModes, (QStringList{QStringLiteral("Dynaline"), QStringLiteral("Feedwise"),
                                                QStringLiteral("Line Voltage")}));
        QCOMPARE(sfp->defaultOutputMode(), QStringLiteral("Dynaline"));
        QVERIFY(sfp->hasOutputMode(QStringLiteral("Feedwise")) &&
                !sfp->hasOutputMode(QStringLiteral("feedwise")));
        QCOMPARE((QList<double>{sfp->maxElectricalLengthPerRun, double(sfp->maxNumFixtures), sfp->power,
                                sfp->powerFactor}),
                 (QList<double>{220, 64, 14, 0.62}));
        // Exact voltage and frequency only; a later entry replaces an earlier one.
        QCOMPARE(sfp->voltageAttributes.size(), 3);
        QCOMPARE((QList<double>{
                     sfp->voltageAttribute(120, 50).leakage, sfp->voltageAttribute(120, 60).inrushCurrent,
                     sfp->voltageAttribute(120, 60).leakage, sfp->voltageAttribute(277, 60).inrushCurrent,
                     sfp->voltageAttribute(277, 50).inrushCurrent, sfp->voltageAttribute(121, 60).leakage}),
                 (QList<double>{150, 7, 190, 13.85, 0, 0}));
        // MaxNumFixtures alone is enough; both limits zero stops the read but keeps the supply.
        QCOMPARE(rd->defaultOutputMode(), QString());
        QVERIFY(zero->maxElectricalLengthPerRun == 100.0 && zero->outputModes.isEmpty() &&
                zero->power == 0.0);

        // Supplies are read before fixtures whatever the document order; every list is read.
        QCOMPARE(namesOf(l.db.fixtures()),
                 (QStringList{QStringLiteral("Lower Case Link"), QStringLiteral("Orphan"),
                              QStringLiteral("Second List Fixture")}));
        QCOMPARE(l.db.fixtures().at(0)->validSupplies,
                 (QList<VxPowerSupply*>{l.db.supplies().at(0), l.db.supplies().at(1)}));
        QCOMPARE(l.db.fixtures().at(2)->validSupplies,
                 (QList<VxPowerSupply*>{l.db.supplies().at(2), l.db.supplies().at(1)}));
        // The disabled fixture is out of the catalog but its supply still names it.
        QVERIFY(l.db.fixtureNamed(QStringLiteral("Retired")) == nullptr);
        QCOMPARE(namesOf(sfp->fixtures),
                 (QStringList{QStringLiteral("Lower Case Link"), QStringLiteral("Retired")}));
        QVERIFY(sfp->fixtures.at(1)->disabled);
        QCOMPARE(namesOf(rd->fixtures),
                 (QStringList{QStringLiteral("Lower Case Link"), QStringLiteral("Second List Fixture")}));
    }

    void missingRequiredFieldsAndCables()
    {
        Loaded l("missing_fields.xml");
        const auto field = [](const char* f, const char* r) {
            return fieldMessage(QString::fromUtf8(f), QString::fromUtf8(r));
        };
        QCOMPARE(
            l.rep.texts(),
            (QStringList{
                field("Power", "No Power Receiver"), field("PowerFactor", "Empty Receiver"),
                field("Resistance", "Empty Receiver"), field("ElectricalLength", "Empty Receiver"),
                field("Power", "Empty Receiver"), field("MaxTemp", "No MaxTemp"),
                field("Resistance", "No Resistance"), field("ElectricalLength", "No ElectricalLength"),
                field("FudgeFactor", "No FudgeFactor"), field("StartingVoltage", "No StartingVoltage"),
                QStringLiteral(
                    "Error parsing Zero Drops\nMaxVoltageDrop, MinVoltage, and VoltageDropPercent are zero"),
                QStringLiteral("Error in database file:\nJumper/Leader element with no Name"),
                field("Resistance", "No Resistance Leader"), field("ElectricalLength", "No Length Leader"),
                QStringLiteral("Error in database file:\nCustomWire element with no Name"),
                field("MaxLength", "16"), field("Resistance", "18")}));
        // Every record is kept; fields after a failing one keep their construction values.
        QCOMPARE(l.db.receivers().size(), 2);
        QCOMPARE(l.db.fixtures().size(), 8);
        QCOMPARE(l.db.receivers().at(0)->maxElectricalLengthPerRun, 150.0);
        const DLFixture* noTemp = l.db.fixtureNamed(QStringLiteral("No MaxTemp"));
        QCOMPARE(noTemp->resistance, 0.0);
        QCOMPARE(noTemp->power, 7.0); // Power is read even after a failed MaxTemp
        QCOMPARE(noTemp->startingVoltage, 120);
        QVERIFY(noTemp->leaders.isEmpty());
        QCOMPARE(noTemp->powerByVoltage.value(120), 7.0); // voltages are read whatever parse said
        const auto fx = [&](const char* name) { return l.db.fixtureNamed(QString::fromUtf8(name)); };
        QCOMPARE((QList<double>{fx("No ElectricalLength")->resistance,
                                double(fx("No FudgeFactor")->safetyRequired),
                                double(fx("No StartingVoltage")->safetyRequired),
                                fx("No StartingVoltage")->maxVoltageDrop, fx("Zero Drops")->maxPower,
                                double(fx("Zero Drops")->leaders.size())}),
                 (QList<double>{0.032, 0, 2, 0, 0, 0}));
        const DLFixture* one = l.db.fixtureNamed(QStringLiteral("One Drop Limit Is Enough"));
        QCOMPARE(one->maxFixtureLength, 200.0);
        QVERIFY(one->jumperRequired);
        QCOMPARE(namesOf(one->leaders), QStringList{QStringLiteral("Leader 6ft")});

        const DLFixture* f = l.db.fixtureNamed(QStringLiteral("Bad Cables"));
        QCOMPARE(namesOf(f->leaders),
                 (QStringList{QStringLiteral("Short Leader"), QStringLiteral("Both Kinds Leader")}));
        const VxJumper* shortLeader = f->leaders.at(0);
        QCOMPARE((QList<double>{shortLeader->resistance, shortLeader->electricalLength,
                                double(shortLeader->maxInARow)}),
                 (QList<double>{0.02, 6, 2}));
        // A cable with custom wires ignores its own electrical fields.
        const VxJumper* both = f->leaders.at(1);
        QCOMPARE((QList<double>{both->resistance, both->maxLeaderLength, both->defaultCustomLength}),
                 (QList<double>{0, 0, 25}));
        QCOMPARE(namesOf(both->customWires), (QStringList{QStringLiteral("14"), QStringLiteral("20")}));
        QCOMPARE(both->customWires.at(1)->resistance, 0.01015);
        QVERIFY(both->defaultWire() == both->customWires.at(1));
        QVERIFY(both->wireNamed(QStringLiteral("14")) == both->customWires.at(0));
        QVERIFY(both->wireNamed(QStringLiteral("14 AWG")) == nullptr);
        // Default indexes out of range fall back to the first entry.
        QVERIFY(f->defaultLeaderCable() == shortLeader);
        const VxJumper* custom = f->defaultJumperCable();
        QVERIFY(custom == f->jumpers.at(1));
        QCOMPARE(namesOf(custom->customWires), (QStringList{QStringLiteral("16"), QStringLiteral("18")}));
        QVERIFY(custom->defaultWire() == custom->customWires.first());
        QCOMPARE(f->jumperNamed(QStringLiteral("Jumper 1ft"))->maxLeaderLength, 1.0);
        QVERIFY(f->leaderNamed(QStringLiteral("Jumper 1ft")) == nullptr);
    }

    void fieldConversions()
    {
        // Overflow, underflow, hexadecimal, decimal commas and non-finite numbers do not convert;
        // padding, a plus sign, exponents and a signed zero do. Integers take no fraction or exponent.
        Loaded l("numbers.xml");
        QCOMPARE(
            l.rep.texts(),
            (QStringList{
                fieldMessage(QStringLiteral("PowerFactor"), QStringLiteral("Odd Receiver")),
                fieldMessage(QStringLiteral("ElectricalLength"), QStringLiteral("Odd Receiver")),
                fieldMessage(QStringLiteral("Power"), QStringLiteral("Odd Receiver")),
                QStringLiteral(
                    "Error parsing Signed Zero Supply\nMaxElectricalLength and MaxNumFixtures are both zero"),
                fieldMessage(QStringLiteral("MaxTemp"), QStringLiteral("Overflow")),
                fieldMessage(QStringLiteral("Resistance"), QStringLiteral("Not A Number")),
                fieldMessage(QStringLiteral("Value"), QStringLiteral("Padded"))}));
        const DLJunctionBox* odd = l.db.junctionBoxNamed(QStringLiteral("Odd Box"));
        QVERIFY(odd->volume == 0.0f && odd->numPorts == 0 && !odd->receiverOnly && odd->receiverMountable);
        const DLJunctionBox* over = l.db.junctionBoxNamed(QStringLiteral("Float Overflow Box"));
        QVERIFY(over->volume == 0.0f && over->numPorts == 0);
        const DLJunctionBox* padded = l.db.junctionBoxNamed(QStringLiteral("Padded Box"));
        QVERIFY(padded->volume == 30.25f && padded->numPorts == 4 && padded->receiverOnly);
        const DLReceiver* rx = l.db.receivers().first();
        QCOMPARE(rx->maxElectricalLengthPerRun, 0.0);
        QCOMPARE(rx->resistance, 0.25); // ohms as given, not divided
        const DLPowerSupply* ps = l.db.supplyNamed(QStringLiteral("Padded Supply"));
        QCOMPARE(
            (QList<double>{ps->maxElectricalLength, double(ps->maxNumFixtures), ps->power, ps->powerFactor}),
            (QList<double>{600, 0, 0, 0.62}));
        QCOMPARE(l.db.fixtureNamed(QStringLiteral("Overflow"))->power, 5.0);
        QCOMPARE(l.db.fixtureNamed(QStringLiteral("Not A Number"))->resistance, 0.0);

        const DLFixture* f = l.db.fixtureNamed(QStringLiteral("Padded"));
        QVERIFY(f && !f->disabled && f->isInline);
        QCOMPARE(
            (QList<double>{double(f->family), double(f->defaultLeader), double(f->safetyRequired),
                           f->powerFactor, f->maxTemp, f->electricalLength, f->maxVoltageDrop, f->minVoltage,
                           f->voltageDropPercent, f->maxPower, f->maxFixtureCurrent, f->maxFixtureLength}),
            (QList<double>{0, 1, 2, 0, 12, 4, 0, 0, 0.05, -1800, 15, 0}));
        QCOMPARE(f->validVoltages, QList<int>{120});
        QCOMPARE(f->powerFactorByVoltage.value(120), 0.9);
        QVERIFY(f->maxCountByVoltage.isEmpty() && f->maxCount15AByVoltage.isEmpty());
        QVERIFY(f->maxCurrentByVoltage.isEmpty() && f->powerByVoltage.isEmpty());
        QCOMPARE(f->maxFixtureCurrentAt(120), 0.0); // an empty table gives 0, not the record's own limit
    }

    void perVoltageTablesAndReceivers()
    {
        Loaded l("tables.xml");
        QCOMPARE(l.rep.texts(), QStringList{fieldMessage(QStringLiteral("Frequency"),
                                                         QStringLiteral("Tintflare Dynaline gen4"))});
        const DLFixture* f = l.db.fixtures().first();
        QCOMPARE(f->shortName, QStringLiteral("Tintflare g4"));
        QCOMPARE(f->resistance, 0.018);
        // Every Voltage element is listed; only positive values are stored; later entries replace earlier.
        QCOMPARE(f->validVoltages, (QList<int>{120, 208, 277, 120}));
        QCOMPARE(f->powerFactorByVoltage, (QMap<int, double>{{120, 0.95}, {277, 0.9}}));
        QCOMPARE(f->powerByVoltage, (QMap<int, double>{{120, 25.0}, {277, 23.0}}));
        QCOMPARE(f->maxCountByVoltage, (QMap<int, int>{{120, 40}, {277, 60}}));
        QCOMPARE(f->maxCount15AByVoltage, (QMap<int, int>{{120, 28}, {277, 54}}));
        QCOMPARE(f->maxCount20AByVoltage, (QMap<int, int>{{120, 36}, {277, 60}}));
        QCOMPARE(f->maxCurrentByVoltage, (QMap<int, double>{{120, 15.0}, {277, 14.0}}));
        QCOMPARE(f->frequencyAttributes.size(), 4);
        QCOMPARE((QList<double>{
                     f->frequencyAttribute(120, 50).leakage, f->frequencyAttribute(120, 60).inrushCurrent,
                     f->frequencyAttribute(208, 60).inrushCurrent, f->frequencyAttribute(208, 60).leakage,
                     f->frequencyAttribute(220, 60).leakage, f->maxFixtureCurrentAt(0),
                     f->maxFixtureCurrentAt(208), f->maxFixtureCurrentAt(198)}),
                 (QList<double>{67, 1.3, 0, 139, 0, 0, 14, 15})); // no nearest-voltage fallback for 220

        // The reference element a saved plan stores; the leader index travels as "DefaultAttribute".
        QDomDocument doc;
        QDomElement parent = doc.createElement(QStringLiteral("Parent"));
        f->writeXml(parent, doc);
        const QDomElement e = parent.firstChildElement();
        QVERIFY(f->isRecordElement(e) && !f->isRecordElement(doc.createElement(QStringLiteral("vxfixture"))));
        QCOMPARE(e.attributes().size(), 5);
        QCOMPARE(e.attribute(QStringLiteral("VxFixtureName")), f->name);
        QCOMPARE(e.attribute(QStringLiteral("VxFixtureTecthType")), QStringLiteral("1"));
        QCOMPARE(e.attribute(QStringLiteral("VxFixtureFamily")), QStringLiteral("4"));
        QCOMPARE(e.attribute(QStringLiteral("VxFixtureDefaultAttribute")), QStringLiteral("1"));
        QCOMPARE(e.attribute(QStringLiteral("VxFixtureDefaultJumper")), QStringLiteral("2"));

        Loaded r("receivers.xml");
        QCOMPARE(r.rep.texts(), QStringList());
        const DLReceiver* rx = r.db.receiverNamed(QStringLiteral("Feedwise Receiver"));
        QCOMPARE(rx->shortName, QStringLiteral("FW Rcvr"));
        QCOMPARE((QList<double>{rx->maxElectricalLength, rx->powerFactor, rx->resistance, rx->power}),
                 (QList<double>{300, 0.55, 0.045, 4.5}));
        // Unknown names and the correctly spelled element are ignored; every box of a repeated name
        // is taken; both lists are read; names match exactly.
        const QList<DLJunctionBox*>& boxes = r.db.junctionBoxes();
        QCOMPARE(rx->validJunctionBoxes,
                 (QList<DLJunctionBox*>{boxes.at(0), boxes.at(2), boxes.at(3), boxes.at(1)}));
        QVERIFY(r.db.receiverNamed(QStringLiteral("Case Receiver"))->validJunctionBoxes.isEmpty());
        QCOMPARE(boxes.at(0)->shortName, QStringLiteral("4in Sq"));
        QVERIFY(boxes.at(0)->receiverMountable && !boxes.at(0)->receiverOnly);
        QVERIFY(boxes.at(3)->receiverOnly && !boxes.at(3)->receiverMountable);
    }

    void hostileGeneratedDocuments()
    {
        // 100 000 levels of nesting: taken whole or refused whole, never a crash or a half load.
        const int depth = 100000;
        QByteArray deep =
            QByteArray("<Catalog><DBVersion>deep-1</DBVersion>") + QByteArray("<n>").repeated(depth) +
            "<FixtureList><Fixture><Name>Deep Fixture</Name><Type>dynaline</Type>" + PlainFixtureFields +
            "</Fixture></FixtureList>" + QByteArray("</n>").repeated(depth) + "</Catalog>\n";
        {
            Database db;
            RecordingReporter rep;
            const QString path = QStringLiteral("deep.xml");
            const bool ok = db.loadBytes(deep, path, &rep);
            QCOMPARE(ok, db.isValid());
            if (ok) {
                QCOMPARE(rep.texts(), QStringList());
                QCOMPARE(namesOf(db.fixtures()), QStringList{QStringLiteral("Deep Fixture")});
            } else {
                QCOMPARE(rep.messages.size(), 1);
                const QString text = rep.messages.first().text;
                QVERIFY2(QRegularExpression(
                             QStringLiteral(
                                 "^Error parsing database file deep\\.xml:\n.+\nLine \\d+ Column \\d+$"))
                             .match(text)
                             .hasMatch(),
                         qPrintable(text));
                QVERIFY(isEmptyCatalog(db));
            }
        }

        // Tens of megabytes of well-formed records: all of them are taken, in order, silently.
        const int fixtures = 10000;
        const QByteArray voltage =
            "</Value><VoltagePower>24</VoltagePower><FrequencyAttributes><FrequencyAttribute>"
            "<Frequency>60</Frequency><Leakage>90</Leakage></FrequencyAttribute></FrequencyAttributes></"
            "Voltage>";
        const QByteArray label = QByteArray("Stylebar Tunable Dynaline ").repeated(64);
        QByteArray bytes = "<Catalog><DBVersion>large-1</"
                           "DBVersion><PowerSupplyList><PowerSupply><Name>Signal Feeder Pro</Name>"
                           "<Type>dynaline</Type><MaxNumFixtures>64</MaxNumFixtures></PowerSupply></"
                           "PowerSupplyList><FixtureList>\n";
        for (int i = 0; i < fixtures; ++i)
            bytes += "<Fixture><Name>Fixture " + QByteArray::number(i) +
                     "</Name><Type>dynaline</Type><ShortName>" + label + "</ShortName>" + PlainFixtureFields +
                     "<ValidSupplyList><Supply>Signal Feeder Pro</Supply></ValidSupplyList>"
                     "<ValidVoltages><Voltage><Value>120" +
                     voltage + "<Voltage><Value>277" + voltage + "</ValidVoltages></Fixture>\n";
        bytes += "</FixtureList></Catalog>\n";
        QVERIFY(bytes.size() > 20 * 1000 * 1000);
        Database db;
        RecordingReporter rep;
        QVERIFY(db.loadBytes(bytes, QStringLiteral("large.xml"), &rep));
        QCOMPARE(rep.texts(), QStringList());
        QCOMPARE(db.fixtures().size(), fixtures);
        QCOMPARE(db.fixtures().last()->name, QStringLiteral("Fixture %1").arg(fixtures - 1));
        QCOMPARE(db.fixtures().last()->shortName, QString::fromLatin1(label));
        QCOMPARE(db.fixtures().last()->frequencyAttributes.size(), 2);
        QCOMPARE(db.supplies().first()->fixtures.size(), fixtures);
    }

    void voltageLookups_data()
    {
        QTest::addColumn<QList<int>>("volts");
        QTest::addColumn<QList<double>>("values");
        QTest::addColumn<int>("key");
        QTest::addColumn<double>("nearest");
        QTest::addColumn<double>("floor");
        const QList<int> two = {120, 277};
        const QList<double> twoValues = {1.5, 2.5};
        QTest::newRow("key 0 gives the default") << two << twoValues << 0 << 9.0 << 9.0;
        QTest::newRow("key 0, empty table") << QList<int>() << QList<double>() << 0 << 9.0 << 9.0;
        QTest::newRow("empty table") << QList<int>() << QList<double>() << 120 << 0.0 << 9.0;
        QTest::newRow("exact") << two << twoValues << 277 << 2.5 << 2.5;
        QTest::newRow("208: nearer 277, floor 120") << two << twoValues << 208 << 2.5 << 1.5;
        QTest::newRow("198 is nearer 120") << two << twoValues << 198 << 1.5 << 1.5;
        QTest::newRow("199 is nearer 277") << two << twoValues << 199 << 2.5 << 1.5;
        QTest::newRow("below all") << two << twoValues << 50 << 1.5 << 0.0;
        QTest::newRow("above all") << two << twoValues << 480 << 2.5 << 2.5;
        QTest::newRow("negative key") << two << twoValues << -5 << 1.5 << 0.0;
        QTest::newRow("tie goes to the lower voltage")
            << QList<int>{100, 140} << QList<double>{1.0, 2.0} << 120 << 1.0 << 1.0;
        QTest::newRow("beyond the search bound")
            << QList<int>{20000} << QList<double>{4.0} << 120 << 0.0 << 0.0;
        QTest::newRow("just inside the bound")
            << QList<int>{10119} << QList<double>{4.0} << 120 << 4.0 << 0.0;
        QTest::newRow("exact zero entry is the nearest")
            << QList<int>{120, 130} << QList<double>{0.0, 3.0} << 120 << 0.0 << 0.0;
        QTest::newRow("between, nearer the upper")
            << QList<int>{120, 130} << QList<double>{0.0, 3.0} << 126 << 3.0 << 0.0;
    }

    void voltageLookups()
    {
        QFETCH(QList<int>, volts);
        QFETCH(QList<double>, values);
        QFETCH(int, key);
        QFETCH(double, nearest);
        QFETCH(double, floor);
        QMap<int, double> table;
        QMap<int, int> intTable;
        for (int i = 0; i < volts.size(); ++i) {
            table.insert(volts.at(i), values.at(i));
            intTable.insert(volts.at(i), int(values.at(i) * 10));
        }
        QCOMPARE(VoltageLookup::nearest(table, key, 9.0), nearest);
        QCOMPARE(VoltageLookup::nearest(intTable, key, 90), int(nearest * 10));
        QCOMPARE(VoltageLookup::floor(table, key, 9.0), floor);
    }

    void junctionBoxCapacity_data()
    {
        QTest::addColumn<float>("volume");
        QTest::addColumn<int>("ports");
        QTest::addColumn<int>("reservedKind"); // two ports reserved for this kind; -1 for none
        QTest::addColumn<QList<float>>("entryVolumes");
        QTest::addColumn<QList<int>>("entryCounts");
        QTest::addColumn<int>("kind");
        QTest::addColumn<float>("conductor");
        QTest::addColumn<float>("allowance");
        QTest::addColumn<int>("capA");
        QTest::addColumn<int>("capB");
        const QList<float> none;
        const QList<int> noCounts;
        // 30.25 - 5.25 = 25; A: 25 / 6 -> 4, B: 25 / 4 -> 6, both capped by 4 ports.
        QTest::newRow("empty box, receiver kind")
            << 30.25f << 4 << -1 << none << noCounts << 1 << 2.0f << 0.0f << 4 << 4;
        // Kind 2 also takes the 5.25 allowance; volume decides B: 25 / 6 -> 4.
        QTest::newRow("kind 2, thick conductor")
            << 30.25f << 8 << -1 << none << noCounts << 2 << 3.0f << 0.0f << 2 << 4;
        QTest::newRow("kind 0 keeps the allowance")
            << 30.25f << 8 << -1 << none << noCounts << 0 << 1.5f << 0.0f << 6 << 8;
        // Largest entry once, every entry's repeats, plus the extra allowance:
        // 30.25 - 2.25 - (2 * 2.0 + 1 * 2.25) + 1.5 = 23.25; ports 6 - 2 entries.
        QTest::newRow("entries and allowance") << 30.25f << 6 << -1 << QList<float>{2.0f, 2.25f}
                                               << QList<int>{3, 2} << 3 << 2.0f << 1.5f << 3 << 4;
        QTest::newRow("reserved for this kind")
            << 42.0f << 6 << 1 << none << noCounts << 1 << 2.0f << 0.0f << 4 << 4;
        QTest::newRow("reserved for another kind")
            << 42.0f << 6 << 2 << none << noCounts << 1 << 2.0f << 0.0f << 6 << 6;
        // A negative room is truncated towards zero, then the smaller of the two wins.
        QTest::newRow("overfull") << 0.0f << 2 << -1 << QList<float>{10.0f} << QList<int>{1} << 1 << 1.0f
                                  << 0.0f << -5 << -7;
        QTest::newRow("slightly short") << 5.0f << 3 << -1 << none << noCounts << 1 << 2.0f << 0.0f << 0 << 0;
    }

    void junctionBoxCapacity()
    {
        QFETCH(float, volume);
        QFETCH(int, ports);
        QFETCH(int, reservedKind);
        QFETCH(QList<float>, entryVolumes);
        QFETCH(QList<int>, entryCounts);
        QFETCH(int, kind);
        QFETCH(float, conductor);
        QFETCH(float, allowance);
        DLJunctionBox box(QStringLiteral("Box"), VxTechDynaline);
        box.volume = volume;
        box.numPorts = ports;
        if (reservedKind >= 0)
            box.reservedPorts.insert(reservedKind, 2);
        QList<BoxEntry> entries;
        for (int i = 0; i < entryVolumes.size(); ++i)
            entries.append(BoxEntry{entryVolumes.at(i), entryCounts.at(i)});
        QTEST(box.capacityA(entries, kind, conductor, allowance), "capA");
        QTEST(box.capacityB(entries, kind, conductor, allowance), "capB");
    }

    void sampleCatalog()
    {
        Database db;
        RecordingReporter rep;
        QVERIFY(db.loadFile(sampleCatalogPath(), &rep));
        QCOMPARE(rep.texts(), QStringList());
        QCOMPARE(db.version(), QStringLiteral("2025.02.1"));
        QCOMPARE(namesOf(db.supplies()),
                 (QStringList{QStringLiteral("Signal Feeder Pro"), QStringLiteral("Line Voltage"),
                              QStringLiteral("RD-5000")}));
        // The CSV export walks the supplies' lists; the disabled fixture is linked nowhere.
        QCOMPARE((QList<qsizetype>{db.fixtures().size(), db.receivers().size(), db.junctionBoxes().size(),
                                   db.controllers().size(), db.outputModes().size(), db.locations().size(),
                                   db.supplies().at(0)->fixtures.size(), db.supplies().at(1)->fixtures.size(),
                                   db.supplies().at(2)->fixtures.size()}),
                 (QList<qsizetype>{13, 2, 4, 3, 3, 4, 12, 10, 9}));
        QCOMPARE(namesOf(db.firstBranchWire()->customWires),
                 (QStringList{QStringLiteral("12"), QStringLiteral("14"), QStringLiteral("16"),
                              QStringLiteral("18")}));
        for (const DLPowerSupply* s : db.supplies())
            for (const VxFixture* f : s->fixtures)
                QVERIFY2(db.fixtures().contains(f), qPrintable(f->name));
        for (const char* name : {"Linea Trough Model A Dynaline 6in (100v - 120v)",
                                 "Stylebar Tunable Dynaline 4ft", "Stylebar Tint (RGBA/RGBW) Dynaline 1ft",
                                 "Tintflare Dynaline gen4", "Linea Flare Dynaline gen4"})
            QVERIFY2(db.fixtureNamed(QString::fromUtf8(name)), name);
        // Unit conversions show in every record: milliohms to ohms, a fraction for the drop percent.
        for (const DLFixture* f : db.fixtures()) {
            const QByteArray n = f->name.toUtf8();
            QVERIFY2(f->resistance > 0 && f->resistance < 0.1, n.constData());
            QVERIFY2(f->voltageDropPercent > 0 && f->voltageDropPercent < 0.2, n.constData());
            QVERIFY2(f->validVoltages.contains(f->startingVoltage), n.constData());
            QVERIFY2(f->defaultLeaderCable() && f->defaultJumperCable(), n.constData());
            for (const VxPowerSupply* s : f->validSupplies)
                QVERIFY2(s->fixtures.contains(f), n.constData());
            for (int v : f->validVoltages)
                QVERIFY2(f->powerByVoltage.value(v) > 0 && f->frequencyAttribute(v, 60).leakage > 0,
                         n.constData());
        }
        for (const DLReceiver* r : db.receivers())
            for (const DLJunctionBox* b : r->validJunctionBoxes)
                QVERIFY2(b->receiverMountable && b->capacityA({}, 1, 2.0f, 0.0f) >= 1, qPrintable(b->name));
    }

    void programCatalogBesideExecutable()
    {
        const QString expectedPath =
            QCoreApplication::applicationDirPath() + QStringLiteral("/vx_config_dl.xml");
        if (!QFile::exists(expectedPath))
            QSKIP("no catalog beside the test executable");
        Database db;
        RecordingReporter rep;
        QVERIFY(db.load(QString::fromLatin1(Database::DefaultFileName), &rep));
        QCOMPARE(db.path(), expectedPath);
        QCOMPARE(rep.texts(), QStringList());

        RecordingReporter global;
        ScopedGlobalReporter scope(&global);
        Database* first = Database::instance();
        QVERIFY(first && first->isValid() && Database::instance() == first);
        QCOMPARE(first->path(), expectedPath);
        QCOMPARE(global.texts(), QStringList());
    }
};

QTEST_GUILESS_MAIN(TestCatalog)
#include "tst_catalog.moc"
