// Catalog loader, records and per-voltage lookups, driven by the files in tests/data/catalog, by
// generated hostile documents and by the shipped sample catalog.

#include "catalog/DLRecords.h"
#include "catalog/Database.h"
#include "model/CWidget.h"
#include "model/ConfigDocument.h"
#include "catalog/Reporter.h"

#include "TestSupport.h"

#include <QDomDocument>
#include <QFile>
#include <QRegularExpression>
#include <QtTest>
#include <algorithm>
#include <climits>

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

QString fieldMessage(const char* field, const char* record)
{
    return QStringLiteral("Error parsing \"%1\" field for %2")
        .arg(QString::fromUtf8(field), QString::fromUtf8(record));
}

QString validSupplyMessage(const char* fixture, const char* upperSupply)
{
    return QStringLiteral("Error parsing \"Valid Supply\" item for fixture %1.\nSupply %2 not defined.")
        .arg(QString::fromUtf8(fixture), QString::fromUtf8(upperSupply));
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
        QTest::newRow("absent") << catalogFile("absent.xml");
        QTest::newRow("empty") << catalogFile("empty.xml");
        QTest::newRow("binary garbage") << catalogFile("garbage.bin");
        QTest::newRow("truncated") << catalogFile("truncated.xml");
        QTest::newRow("entity expansion bomb") << catalogFile("entity_bomb.xml");
    }

    void refusedFiles()
    {
        QFETCH(QString, path);
        Database db;
        RecordingReporter rep;
        QVERIFY(!db.loadFile(path, &rep));
        QCOMPARE(rep.texts(), QStringList{refusalFor(path)});
        QVERIFY(rep.messages.first().kind == Reporter::Kind::Warning);
        // A refused file contributes nothing, not even the records before the damage.
        QVERIFY(isEmptyCatalog(db));
    }

    void documentShapeAndVersion()
    {
        Loaded only("only_version.xml");
        QVERIFY(only.ok && only.db.isValid());
        QCOMPARE(only.rep.texts(), QStringList());
        QCOMPARE(only.db.version(), "empty-1");

        // The version is only read directly below the root; loading goes on without it.
        Loaded nested("version_nested.xml");
        QVERIFY(nested.ok && nested.db.isValid());
        QCOMPARE(nested.rep.texts(), QStringList{inFile(nested.path, "DBVersion  not found.")});
        QCOMPARE(nested.db.controllers().value("Studio"), 16);

        // An external entity is never fetched.
        Loaded external("external_entity.xml");
        QCOMPARE(external.db.controllers().size(), 1);
        QVERIFY(!external.db.controllers().firstKey().contains(QLatin1String("root")));

        // A second load keeps the first version.
        Loaded maps("maps.xml");
        maps.rep.clear();
        QVERIFY(maps.db.loadFile(only.path, &maps.rep));
        QCOMPARE(maps.rep.texts(),
                 QStringList{inFile(only.path, "DBVersion empty-1 does not match previous (maps-1)")});
        QCOMPARE(maps.db.version(), "maps-1");
    }

    void mapsAndBranchWires()
    {
        Loaded l("maps.xml");
        // The third branch wire has no Resistance; its ElectricalLength is then not read either.
        QCOMPARE(l.rep.texts(), QStringList{fieldMessage("Resistance", "BranchWire")});
        QCOMPARE(l.db.controllers().keys(),
                 QStringList({"Broken", "Missing", "Overflow", "Second List", "Studio"}));
        QCOMPARE(l.db.controllers().values(), (QList<int>{0, 0, 0, 7, 9}));
        QCOMPARE(l.db.locations().keys(), QStringList({"Above Ground", "Plenum", "Wet"}));
        QCOMPARE(l.db.locations().values(), (QList<double>{0.005, 0.003, 0.0}));
        // Offered in file order, each once; the first is where the first branch wire goes.
        QCOMPARE(l.db.locationNames(), QStringList({"Wet", "Above Ground", "Plenum"}));
        ConfigDocument doc(&l.db);
        QCOMPARE(doc.lastLocation(), "Wet");
        BranchWireWidget wire(&l.db, l.db.firstBranchWire());
        wire.setLocation(doc.lastLocation());
        QCOMPARE(wire.editorRule(PropLocation).choices, QStringList({"Wet", "Above Ground", "Plenum"}));

        // Milliohms become ohms; an absent MaxLeaderLength is 999 on a fixed cable.
        const VxJumper* fixed = l.db.firstBranchWire();
        QVERIFY(!fixed->hasCustomWires);
        QCOMPARE(fixed->resistance, 0.00253);
        QCOMPARE((QList<double>{fixed->electricalLength, fixed->maxLeaderLength, double(fixed->maxInARow)}),
                 (QList<double>{20, 999, 3}));
        const VxJumper* custom = l.db.branchWires().at(1);
        QCOMPARE(namesOf(custom->customWires), QStringList{"12"});
        QCOMPARE(custom->customWires.first()->resistance, 0.00159);
        QCOMPARE((QList<double>{custom->defaultCustomLength, custom->customWires.first()->maxLength,
                                custom->maxLeaderLength}),
                 (QList<double>{35, 175, 0}));
        QCOMPARE(l.db.branchWires().at(2)->electricalLength, 0.0);
    }

    void productNamesAndTypes()
    {
        Loaded n("names.xml");
        // A blank name is no name: the document drops whitespace-only text.
        const auto noName = [&](const char* kind) {
            return inFile(n.path, QString::fromUtf8(kind) + " element with no Name");
        };
        QCOMPARE(n.rep.texts(), (QStringList{noName("JunctionBox"), noName("JunctionBox"), noName("Receiver"),
                                             noName("Receiver"), noName("PowerSupply"), noName("Fixture")}));
        QCOMPARE(namesOf(n.db.junctionBoxes()), (QStringList{"Box\tTab", "Twin", "Twin"}));
        QCOMPARE(n.db.junctionBoxNamed("Twin")->volume, 1.0f); // the first listed wins
        // Lookups are exact: case matters.
        QVERIFY(n.db.supplyNamed("FEEDER")->maxNumFixtures == 16 && !n.db.supplyNamed("feeder"));
        const QString unicodeName = "Lümière ✓ 光 Dynaline";
        QCOMPARE(n.db.fixtureNamed(unicodeName)->shortName, unicodeName); // empty ShortName keeps the name
        // A lower-case valid supply links to the first supply in catalog order, and only to it.
        QCOMPARE(n.db.fixtures().first()->validSupplies, QList<VxPowerSupply*>{n.db.supplies().first()});
        QVERIFY(n.db.supplies().at(1)->fixtures.isEmpty() && n.db.supplies().at(2)->fixtures.isEmpty());

        // Only Dynaline products are taken; junction boxes speak of a PowerSupply on purpose.
        Loaded t("types.xml");
        const auto unknown = [&](const char* what) {
            return inFile(t.path, QString::fromUtf8(what) + " has unknown type");
        };
        QCOMPARE(t.rep.texts(),
                 (QStringList{unknown("PowerSupply Tintrail Box"), unknown("PowerSupply Typeless Box"),
                              unknown("PowerSupply Pixel Supply"), unknown("Fixture Ribbon Fixture"),
                              unknown("Fixture Padded Type Fixture"),
                              validSupplyMessage("Shouting Fixture", "PIXEL SUPPLY"),
                              unknown("Fixture Typeless Fixture")}));
        QCOMPARE(namesOf(t.db.supplies()), QStringList{"Mixed Case Supply"});
    }

    void suppliesAndValidSupplyLinks()
    {
        Loaded l("supplies.xml");
        QCOMPARE(l.rep.texts(),
                 (QStringList{
                     fieldMessage("Value", "Signal Feeder Pro"),
                     QStringLiteral(
                         "Error parsing Zero Supply\nMaxElectricalLength and MaxNumFixtures are both zero"),
                     validSupplyMessage("Lower Case Link", "GHOST SUPPLY"),
                     validSupplyMessage("Orphan", "NOBODY"), validSupplyMessage("Orphan", "NOBODY ELSE")}));
        const DLPowerSupply* sfp = l.db.supplies().at(0);
        const DLPowerSupply* rd = l.db.supplies().at(1);
        const DLPowerSupply* zero = l.db.supplies().at(2);
        QCOMPARE(sfp->outputModes, (QStringList{"Dynaline", "Feedwise", "Line Voltage"}));
        QCOMPARE((QList<double>{sfp->maxElectricalLengthPerRun, double(sfp->maxNumFixtures), sfp->power,
                                sfp->powerFactor}),
                 (QList<double>{220, 64, 14, 0.62}));
        // Exact voltage and frequency only; a later entry replaces an earlier one.
        QCOMPARE((QList<double>{
                     sfp->voltageAttribute(120, 50).leakage, sfp->voltageAttribute(120, 60).leakage,
                     sfp->voltageAttribute(277, 60).inrushCurrent,
                     sfp->voltageAttribute(277, 50).inrushCurrent, sfp->voltageAttribute(121, 60).leakage}),
                 (QList<double>{150, 190, 13.85, 0, 0}));
        // MaxNumFixtures alone is enough; both limits zero stops the read but keeps the supply.
        QCOMPARE(rd->defaultOutputMode(), QString());
        QVERIFY(zero->maxElectricalLengthPerRun == 100.0 && zero->outputModes.isEmpty() &&
                zero->power == 0.0);

        // Supplies are read before fixtures whatever the document order; every list is read.
        QCOMPARE(l.db.fixtures().at(2)->validSupplies,
                 (QList<VxPowerSupply*>{l.db.supplies().at(2), l.db.supplies().at(1)}));
        // The disabled fixture is out of the catalog but its supply still names it.
        QVERIFY(l.db.fixtureNamed("Retired") == nullptr);
        QCOMPARE(namesOf(sfp->fixtures), (QStringList{"Lower Case Link", "Retired"}));
        QCOMPARE(namesOf(rd->fixtures), (QStringList{"Lower Case Link", "Second List Fixture"}));
    }

    void missingRequiredFieldsAndCables()
    {
        Loaded l("missing_fields.xml");
        QCOMPARE(
            l.rep.texts(),
            (QStringList{
                fieldMessage("Power", "No Power Receiver"), fieldMessage("PowerFactor", "Empty Receiver"),
                fieldMessage("Resistance", "Empty Receiver"),
                fieldMessage("ElectricalLength", "Empty Receiver"), fieldMessage("Power", "Empty Receiver"),
                fieldMessage("MaxTemp", "No MaxTemp"), fieldMessage("Resistance", "No Resistance"),
                fieldMessage("ElectricalLength", "No ElectricalLength"),
                fieldMessage("FudgeFactor", "No FudgeFactor"),
                fieldMessage("StartingVoltage", "No StartingVoltage"),
                QStringLiteral(
                    "Error parsing Zero Drops\nMaxVoltageDrop, MinVoltage, and VoltageDropPercent are zero"),
                "Error in database file:\nJumper/Leader element with no Name",
                fieldMessage("Resistance", "No Resistance Leader"),
                fieldMessage("ElectricalLength", "No Length Leader"),
                "Error in database file:\nCustomWire element with no Name", fieldMessage("MaxLength", "16"),
                fieldMessage("Resistance", "18")}));
        // Every record is kept; fields after a failing one keep their construction values, except
        // Power and the voltage tables, which are read whatever the earlier fields said.
        QCOMPARE(l.db.receivers().size(), 2);
        QCOMPARE(l.db.fixtures().size(), 8);
        const DLFixture* noTemp = l.db.fixtureNamed("No MaxTemp");
        QCOMPARE((QList<double>{noTemp->resistance, noTemp->power, noTemp->powerByVoltage.value(120)}),
                 (QList<double>{0, 7, 7}));
        QVERIFY(noTemp->leaders.isEmpty());
        const auto fx = [&](const char* name) { return l.db.fixtureNamed(QString::fromUtf8(name)); };
        QCOMPARE((QList<double>{
                     fx("No ElectricalLength")->resistance, double(fx("No FudgeFactor")->safetyRequired),
                     double(fx("No StartingVoltage")->safetyRequired), fx("Zero Drops")->maxPower}),
                 (QList<double>{0.032, 0, 2, 0}));
        const DLFixture* one = fx("One Drop Limit Is Enough");
        QVERIFY(one->jumperRequired && one->maxFixtureLength == 200.0 && one->leaders.size() == 1);

        // A cable with custom wires ignores its own electrical fields; default indexes out of range
        // fall back to the first entry.
        const DLFixture* f = fx("Bad Cables");
        const VxJumper* both = f->leaders.at(1);
        QCOMPARE((QList<double>{both->resistance, both->maxLeaderLength, both->defaultCustomLength}),
                 (QList<double>{0, 0, 25}));
        QCOMPARE(both->customWires.at(1)->resistance, 0.01015);
        QVERIFY(both->defaultWire() == both->customWires.at(1));
        QVERIFY(f->defaultLeaderCable() == f->leaders.at(0) && f->defaultJumperCable() == f->jumpers.at(1));
    }

    void fieldConversions()
    {
        // Overflow, underflow, hexadecimal, decimal commas and non-finite numbers do not convert;
        // padding, a plus sign, exponents and a signed zero do. Integers take no fraction or exponent.
        Loaded l("numbers.xml");
        QCOMPARE(l.rep.texts(),
                 (QStringList{fieldMessage("PowerFactor", "Odd Receiver"),
                              fieldMessage("ElectricalLength", "Odd Receiver"),
                              fieldMessage("Power", "Odd Receiver"),
                              QStringLiteral("Error parsing Signed Zero Supply\nMaxElectricalLength and "
                                             "MaxNumFixtures are both zero"),
                              fieldMessage("MaxTemp", "Overflow"), fieldMessage("Resistance", "Not A Number"),
                              fieldMessage("Value", "Padded")}));
        QCOMPARE(l.db.junctionBoxNamed("Odd Box")->volume, 0.0f);
        QVERIFY(l.db.junctionBoxNamed("Padded Box")->volume == 30.25f &&
                l.db.junctionBoxNamed("Padded Box")->numPorts == 4);
        QCOMPARE(l.db.receivers().first()->resistance, 0.25); // a receiver's ohms are taken as given
        const DLFixture* f = l.db.fixtureNamed("Padded");
        QVERIFY(f && !f->disabled && f->isInline);
        QCOMPARE(
            (QList<double>{double(f->family), double(f->defaultLeader), double(f->safetyRequired),
                           f->powerFactor, f->maxTemp, f->electricalLength, f->maxVoltageDrop, f->minVoltage,
                           f->voltageDropPercent, f->maxPower, f->maxFixtureCurrent, f->maxFixtureLength}),
            (QList<double>{0, 1, 2, 0, 12, 4, 0, 0, 0.05, -1800, 15, 0}));
        QCOMPARE(f->validVoltages, QList<int>{120});
        QVERIFY(f->maxCountByVoltage.isEmpty() && f->powerByVoltage.isEmpty());
        QCOMPARE(f->maxFixtureCurrentAt(120), 0.0); // an empty table gives 0, not the record's own limit
    }

    void perVoltageTablesAndReceivers()
    {
        Loaded l("tables.xml");
        QCOMPARE(l.rep.texts(), QStringList{fieldMessage("Frequency", "Tintflare Dynaline gen4")});
        const DLFixture* f = l.db.fixtures().first();
        QCOMPARE(f->resistance, 0.018);
        // Every Voltage element is listed; only positive values are stored; later entries replace earlier.
        QCOMPARE(f->validVoltages, (QList<int>{120, 208, 277, 120}));
        QCOMPARE(f->powerFactorByVoltage, (QMap<int, double>{{120, 0.95}, {277, 0.9}}));
        QCOMPARE(f->powerByVoltage, (QMap<int, double>{{120, 25.0}, {277, 23.0}}));
        QCOMPARE(f->maxCountByVoltage, (QMap<int, int>{{120, 40}, {277, 60}}));
        QCOMPARE(f->maxCurrentByVoltage, (QMap<int, double>{{120, 15.0}, {277, 14.0}}));
        QCOMPARE(
            (QList<double>{f->frequencyAttribute(120, 50).leakage, f->frequencyAttribute(208, 60).leakage,
                           f->frequencyAttribute(220, 60).leakage, f->maxFixtureCurrentAt(0),
                           f->maxFixtureCurrentAt(208), f->maxFixtureCurrentAt(198)}),
            (QList<double>{67, 139, 0, 0, 14, 15})); // no nearest-voltage fallback for 220

        Loaded r("receivers.xml");
        QCOMPARE(r.rep.texts(), QStringList());
        const DLReceiver* rx = r.db.receiverNamed("Feedwise Receiver");
        QCOMPARE((QList<double>{rx->maxElectricalLength, rx->powerFactor, rx->resistance, rx->power}),
                 (QList<double>{300, 0.55, 0.045, 4.5}));
        // Unknown names and the correctly spelled element are ignored; every box of a repeated name
        // is taken; both lists are read; names match exactly.
        const QList<DLJunctionBox*>& boxes = r.db.junctionBoxes();
        QCOMPARE(rx->validJunctionBoxes,
                 (QList<DLJunctionBox*>{boxes.at(0), boxes.at(2), boxes.at(3), boxes.at(1)}));
        QVERIFY(r.db.receiverNamed("Case Receiver")->validJunctionBoxes.isEmpty());
    }

    void hostileGeneratedDocuments()
    {
        // 100 000 levels of nesting are refused before the document tree is built: not valid,
        // nothing taken, one message that points at the first element past the limit of 512 levels
        // (the root is level 1, so the 512th <n>, which ends at column 38 + 512 x 3).
        const int depth = 100000;
        const QByteArray deep =
            QByteArray("<Catalog><DBVersion>deep-1</DBVersion>") + QByteArray("<n>").repeated(depth) +
            "<FixtureList><Fixture><Name>Deep Fixture</Name><Type>dynaline</Type>" + PlainFixtureFields +
            "</Fixture></FixtureList>" + QByteArray("</n>").repeated(depth) + "</Catalog>\n";
        {
            Database db;
            RecordingReporter rep;
            QVERIFY(!db.loadBytes(deep, "deep.xml", &rep));
            QVERIFY(!db.isValid());
            QVERIFY(isEmptyCatalog(db));
            QCOMPARE(rep.texts(), QStringList{"Error parsing database file deep.xml:\nelements nested more "
                                              "than 512 levels deep\nLine 1 Column 1574"});
        }

        // Tens of megabytes of well-formed records: all of them are taken, in order, silently.
        const int fixtures = 10000;
        const QByteArray label = QByteArray("Stylebar Tunable Dynaline ").repeated(80);
        QByteArray bytes = "<Catalog><DBVersion>large-1</DBVersion><FixtureList>\n";
        for (int i = 0; i < fixtures; ++i)
            bytes += "<Fixture><Name>Fixture " + QByteArray::number(i) +
                     "</Name><Type>dynaline</Type><ShortName>" + label + "</ShortName>" + PlainFixtureFields +
                     "</Fixture>\n";
        bytes += "</FixtureList></Catalog>\n";
        QVERIFY(bytes.size() > 20 * 1000 * 1000);
        Database db;
        RecordingReporter rep;
        QVERIFY(db.loadBytes(bytes, "large.xml", &rep));
        QCOMPARE(rep.texts(), QStringList());
        QCOMPARE(db.fixtures().size(), fixtures);
        QCOMPARE(db.fixtures().last()->name, QStringLiteral("Fixture %1").arg(fixtures - 1));
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
        QTest::newRow("empty table") << QList<int>() << QList<double>() << 120 << 0.0 << 9.0;
        QTest::newRow("208: nearer 277, floor 120") << two << twoValues << 208 << 2.5 << 1.5;
        QTest::newRow("below all") << two << twoValues << 50 << 1.5 << 0.0;
        QTest::newRow("above all") << two << twoValues << 480 << 2.5 << 2.5;
        QTest::newRow("tie goes to the lower voltage")
            << QList<int>{100, 140} << QList<double>{1.0, 2.0} << 120 << 1.0 << 1.0;
        QTest::newRow("beyond the search bound")
            << QList<int>{20000} << QList<double>{4.0} << 120 << 0.0 << 0.0;
        QTest::newRow("just inside the bound")
            << QList<int>{10119} << QList<double>{4.0} << 120 << 4.0 << 0.0;
        QTest::newRow("exact zero entry is the nearest")
            << QList<int>{120, 130} << QList<double>{0.0, 3.0} << 120 << 0.0 << 0.0;
    }

    void voltageLookups()
    {
        QFETCH(QList<int>, volts);
        QFETCH(QList<double>, values);
        QFETCH(int, key);
        QMap<int, double> table;
        for (int i = 0; i < volts.size(); ++i)
            table.insert(volts.at(i), values.at(i));
        QTEST(VoltageLookup::nearest(table, key, 9.0), "nearest");
        QTEST(VoltageLookup::floor(table, key, 9.0), "floor");
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
        // Kind 2 also takes the 5.25 allowance; volume decides B: 25 / 6 -> 4.
        QTest::newRow("kind 2, thick conductor")
            << 30.25f << 8 << -1 << none << noCounts << 2 << 3.0f << 0.0f << 2 << 4;
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
        DLJunctionBox box("Box", VxTechDynaline);
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
        QCOMPARE(db.version(), "2025.02.2");
        // The CSV export walks the supplies' lists; the disabled fixture is linked nowhere.
        QCOMPARE(
            (QList<qsizetype>{db.supplies().size(), db.fixtures().size(), db.junctionBoxes().size(),
                              db.supplies().at(0)->fixtures.size(), db.supplies().at(2)->fixtures.size()}),
            (QList<qsizetype>{3, 13, 4, 12, 9}));
        // Unit conversions show in every record: milliohms to ohms, a fraction for the drop percent.
        for (const DLFixture* f : db.fixtures())
            QVERIFY2(f->resistance > 0 && f->resistance < 0.1 && f->voltageDropPercent > 0 &&
                         f->voltageDropPercent < 0.2 && f->validVoltages.contains(f->startingVoltage),
                     qPrintable(f->name));
    }

    void sampleCatalogFollowsItsRules()
    {
        // The shipped catalog checked as an engineer would, against its header's rules.
        Database db;
        QVERIFY(db.loadFile(sampleCatalogPath()));
        // Loop resistances: a cable is twice its copper conductor, a fixture at least its own
        // length of its leader's cable.
        const QMap<QString, double> copper{
            {"12", 1.59e-3}, {"14", 2.53e-3}, {"16", 4.02e-3}, {"18", 6.39e-3}};
        auto checkLoop = [&](const QString& gauge, double perFoot, const QString& what) {
            QVERIFY2(copper.contains(gauge) && qAbs(perFoot - 2 * copper.value(gauge)) < 1e-9,
                     qPrintable(what));
        };
        auto checkCable = [&](const VxJumper* cable, const QString& owner) {
            if (!cable->hasCustomWires)
                checkLoop(cable->standardGauge, cable->resistance, owner + " " + cable->name);
            for (const VxWire* w : cable->customWires)
                checkLoop(w->name, w->resistance, owner + " " + cable->name);
        };
        checkCable(db.branchWires().value(0), "branch wire");
        for (const DLFixture* f : db.fixtures()) {
            for (const VxJumper* c : f->leaders + f->jumpers)
                checkCable(c, f->name);
            const VxJumper* leader = f->leaders.value(f->defaultLeader);
            QVERIFY2(leader && !leader->hasCustomWires &&
                         f->resistance > f->electricalLength * leader->resistance,
                     qPrintable(f->name));
            QCOMPARE(f->safetyRequired, 0); // no wiring factor on top of a loop resistance

            // Each count is the largest that keeps every limit of the fixture and its enablers; the
            // gen4 breaker tables also keep the circuit's inrush below a B-curve instant trip.
            int enablerLimit = INT_MAX;
            for (const VxPowerSupply* s : f->validSupplies)
                enablerLimit = std::min(enablerLimit, static_cast<const DLPowerSupply*>(s)->maxNumFixtures);
            const bool breakerTables = f->name.endsWith("Dynaline gen4");
            for (int v : f->validVoltages) {
                const double watts = f->powerByVoltage.value(v);
                const double pf = f->powerFactorByVoltage.value(v);
                QVERIFY2(pf >= 0.5 && pf <= 0.95, qPrintable(f->name));
                const double amps = watts / (v * pf);
                auto fits = [&](int n, double rating) {
                    return n * amps <= 0.8 * rating + 1e-9 && n * watts <= f->maxPower + 1e-9 &&
                           leader->electricalLength + n * f->electricalLength <= f->maxFixtureLength + 1e-9 &&
                           n <= enablerLimit;
                };
                const int count = f->maxCountByVoltage.value(v);
                const QString where = QStringLiteral("%1 at %2 V: %3").arg(f->name).arg(v).arg(count);
                const double ownRating = f->maxCurrentByVoltage.value(v);
                QVERIFY2(fits(count, ownRating) && !fits(count + 1, ownRating), qPrintable(where));
                if (!breakerTables)
                    continue;
                double enablerInrush = 0.0;
                for (const VxPowerSupply* s : f->validSupplies)
                    if (s->name != "RD-5000")
                        enablerInrush = std::max(enablerInrush, s->voltageAttribute(v, 60).inrushCurrent);
                const double inrush = f->frequencyAttribute(v, 60).inrushCurrent;
                for (const auto& [rating, table] :
                     {std::pair{15.0, &f->maxCount15AByVoltage}, std::pair{20.0, &f->maxCount20AByVoltage}}) {
                    auto onBreaker = [&](int n) {
                        return n <= count && fits(n, rating) &&
                               n * inrush + enablerInrush <= 3 * rating + 1e-9;
                    };
                    const int n = table->value(v);
                    QVERIFY2(onBreaker(n) && !onBreaker(n + 1),
                             qPrintable(where + QStringLiteral(" on %1 A: %2").arg(rating).arg(n)));
                }
            }
        }
    }
};

QTEST_GUILESS_MAIN(TestCatalog)
#include "tst_catalog.moc"
