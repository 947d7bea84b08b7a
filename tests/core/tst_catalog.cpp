// Catalog loader, records and per-voltage lookups, driven by the files in tests/data/catalog and
// by the shipped sample catalog.

#include "catalog/Database.h"
#include "catalog/Reporter.h"

#include "TestSupport.h"

#include <QCoreApplication>
#include <QDomDocument>
#include <QFile>
#include <QRegularExpression>
#include <QSet>
#include <QTemporaryDir>
#include <QtTest>

#include <cmath>
#include <unistd.h>

namespace
{

QString catalogFile(const QString& name)
{
    return testDataPath(QStringLiteral("catalog/") + name);
}

// "Error in database file <path>:\n<rest>"
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

// The message the loader must give for a file the XML parser refuses: the parser's own words,
// line and column, read back through the same parser from the file opened the same way.
QString parseErrorFor(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text))
        return QStringLiteral("<cannot open %1>").arg(path);
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

QString openErrorFor(const QString& path)
{
    QFile file(path);
    if (file.open(QIODevice::ReadOnly | QIODevice::Text))
        return QStringLiteral("<%1 opens>").arg(path);
    return QStringLiteral("Cannot read database file %1:\n%2.").arg(path, file.errorString());
}

bool allWarningsTitledRunplan(const RecordingReporter& rep)
{
    for (const auto& m : rep.messages)
        if (m.kind != Reporter::Kind::Warning || m.title != QLatin1String("Runplan"))
            return false;
    return true;
}

bool isEmptyCatalog(const Database& db)
{
    return db.supplies().isEmpty() && db.fixtures().isEmpty() && db.receivers().isEmpty() &&
           db.junctionBoxes().isEmpty() && db.branchWires().isEmpty() && db.locations().isEmpty() &&
           db.controllers().isEmpty() && db.outputModes().isEmpty();
}

template <typename List> QStringList namesOf(const List& records)
{
    QStringList out;
    for (const auto* r : records)
        out.append(r->name);
    return out;
}

bool writeFile(const QString& path, const QByteArray& bytes)
{
    QFile f(path);
    return f.open(QIODevice::WriteOnly) && f.write(bytes) == bytes.size();
}

// A fixture body that parses without a message.
const char* const PlainFixtureFields =
    "<MaxTemp>40</MaxTemp><Resistance>10</Resistance><ElectricalLength>1</ElectricalLength>"
    "<FudgeFactor>1</FudgeFactor><SafetyRequired>0</SafetyRequired><StartingVoltage>120</StartingVoltage>"
    "<MaxVoltageDrop>5</MaxVoltageDrop>";

const QList<int> StandardVoltages = {100, 120, 208, 220, 240, 277};

} // namespace

class TestCatalog : public QObject
{
    Q_OBJECT

private slots:
    // files that do not load
    void unreadableFiles();
    void unreadableWhenPermissionDenied();
    void notWellFormed_data();
    void notWellFormed();

    // files that load
    void onlyVersion();
    void anyRootAndNestedLists();
    void versionMustBeDirectChild();
    void versionMismatchKeepsFirst();
    void entities();
    void mapsAndBranchWires();
    void productNames();
    void technologyTypes();
    void technologyKeywords_data();
    void technologyKeywords();
    void validSuppliesAndReadingOrder();
    void missingRequiredFields();
    void cablesAndCustomWires();
    void edgeNumbers();
    void perVoltageTables();
    void receiversResolveJunctionBoxes();
    void fixtureReferenceElement();

    // generated hostile files
    void deepNesting();
    void largeCatalog();

    // lookups and capacity
    void nearestLookup_data();
    void nearestLookup();
    void floorLookup_data();
    void floorLookup();
    void maxFixtureCurrentAt();
    void junctionBoxCapacity_data();
    void junctionBoxCapacity();

    // the shipped catalog
    void sampleCatalogLoadsCleanly();
    void sampleCatalogProducts();
    void sampleCatalogFixtureData();
    void programCatalogBesideExecutable();
};

// ---------------------------------------------------------------------------------------------

void TestCatalog::unreadableFiles()
{
    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    const QStringList paths = {dir.filePath(QStringLiteral("absent.xml")), dir.path()};
    for (const QString& path : paths) {
        Database db;
        RecordingReporter rep;
        QVERIFY(!db.loadFile(path, &rep));
        QVERIFY(!db.isValid());
        QCOMPARE(db.path(), path);
        QCOMPARE(rep.texts(), QStringList{openErrorFor(path)});
        QVERIFY(allWarningsTitledRunplan(rep));
        QVERIFY(isEmptyCatalog(db));
        QVERIFY(db.version().isEmpty());
    }
}

void TestCatalog::unreadableWhenPermissionDenied()
{
    if (::geteuid() == 0)
        QSKIP("running as root: file permissions do not stop reading");
    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    const QString path = dir.filePath(QStringLiteral("locked.xml"));
    QVERIFY(QFile::copy(sampleCatalogPath(), path));
    QVERIFY(QFile::setPermissions(path, QFileDevice::Permissions()));
    Database db;
    RecordingReporter rep;
    QVERIFY(!db.loadFile(path, &rep));
    QVERIFY(!db.isValid());
    QCOMPARE(rep.texts(), QStringList{openErrorFor(path)});
    QVERIFY(rep.texts().first().contains(QLatin1String("ermission")));
    QVERIFY(isEmptyCatalog(db));
}

void TestCatalog::notWellFormed_data()
{
    QTest::addColumn<QString>("file");
    QTest::newRow("empty") << QStringLiteral("empty.xml");
    QTest::newRow("binary garbage") << QStringLiteral("garbage.bin");
    QTest::newRow("truncated") << QStringLiteral("truncated.xml");
    QTest::newRow("entity expansion bomb") << QStringLiteral("entity_bomb.xml");
}

void TestCatalog::notWellFormed()
{
    QFETCH(QString, file);
    const QString path = catalogFile(file);
    Database db;
    RecordingReporter rep;
    QVERIFY(!db.loadFile(path, &rep));
    QVERIFY(!db.isValid());
    QCOMPARE(rep.texts(), QStringList{parseErrorFor(path)});
    QVERIFY(allWarningsTitledRunplan(rep));
    // A refused file contributes nothing, not even the records before the damage.
    QVERIFY(isEmptyCatalog(db));
    QVERIFY(db.version().isEmpty());
}

// ---------------------------------------------------------------------------------------------

void TestCatalog::onlyVersion()
{
    Database db;
    RecordingReporter rep;
    QVERIFY(db.loadFile(catalogFile(QStringLiteral("only_version.xml")), &rep));
    QVERIFY(db.isValid());
    QCOMPARE(rep.texts(), QStringList());
    QCOMPARE(db.version(), QStringLiteral("empty-1"));
    QVERIFY(isEmptyCatalog(db));
    QVERIFY(db.firstBranchWire() == nullptr);
}

void TestCatalog::anyRootAndNestedLists()
{
    Database db;
    RecordingReporter rep;
    QVERIFY(db.loadFile(catalogFile(QStringLiteral("wrong_root.xml")), &rep));
    QCOMPARE(rep.texts(), QStringList());
    QCOMPARE(db.version(), QStringLiteral("html-1"));
    QCOMPARE(namesOf(db.supplies()), QStringList{QStringLiteral("Line Voltage")});
    QCOMPARE(namesOf(db.fixtures()), QStringList{QStringLiteral("Nested Fixture")});
    QCOMPARE(db.fixtures().first()->validSupplies.size(), 1);
    QVERIFY(db.fixtures().first()->validSupplies.first() == db.supplies().first());
}

void TestCatalog::versionMustBeDirectChild()
{
    const QString path = catalogFile(QStringLiteral("version_nested.xml"));
    Database db;
    RecordingReporter rep;
    QVERIFY(db.loadFile(path, &rep));
    QVERIFY(db.isValid());
    // %2 is the empty text, hence the two blanks.
    QCOMPARE(rep.texts(), QStringList{inFile(path, QStringLiteral("DBVersion  not found."))});
    QVERIFY(db.version().isEmpty());
    // Loading goes on after the version message.
    QCOMPARE(db.controllers().value(QStringLiteral("Studio")), 16);
}

void TestCatalog::versionMismatchKeepsFirst()
{
    Database db;
    RecordingReporter rep;
    QVERIFY(db.loadFile(catalogFile(QStringLiteral("maps.xml")), &rep));
    QCOMPARE(db.version(), QStringLiteral("maps-1"));
    rep.clear();

    // The same version again is no mismatch.
    QVERIFY(db.loadFile(catalogFile(QStringLiteral("maps.xml")), &rep));
    QVERIFY(!rep.texts().join(QLatin1Char('|')).contains(QLatin1String("DBVersion")));
    rep.clear();

    const QString second = catalogFile(QStringLiteral("only_version.xml"));
    QVERIFY(db.loadFile(second, &rep));
    QVERIFY(db.isValid());
    QCOMPARE(rep.texts(), QStringList{inFile(
                              second, QStringLiteral("DBVersion empty-1 does not match previous (maps-1)"))});
    QCOMPARE(db.version(), QStringLiteral("maps-1"));
    QCOMPARE(db.path(), second);
}

void TestCatalog::entities()
{
    {
        Database db;
        RecordingReporter rep;
        QVERIFY(db.loadFile(catalogFile(QStringLiteral("entity_small.xml")), &rep));
        QCOMPARE(rep.texts(), QStringList());
        QCOMPARE(db.version(), QStringLiteral("entity-1"));
        QCOMPARE(db.controllers().keys(),
                 QStringList{QStringLiteral("Stylebar Tunable Dynaline Controller")});
    }
    {
        // An external entity is never fetched: the version comes out empty and nothing of the
        // referenced file shows up anywhere.
        const QString path = catalogFile(QStringLiteral("external_entity.xml"));
        Database db;
        RecordingReporter rep;
        QVERIFY(db.loadFile(path, &rep));
        QCOMPARE(rep.texts(), QStringList{inFile(path, QStringLiteral("DBVersion  not found."))});
        QCOMPARE(db.controllers().size(), 1);
        QVERIFY(!db.controllers().firstKey().contains(QLatin1String("root")));
        QCOMPARE(db.controllers().first(), 3);
    }
}

void TestCatalog::mapsAndBranchWires()
{
    Database db;
    RecordingReporter rep;
    QVERIFY(db.loadFile(catalogFile(QStringLiteral("maps.xml")), &rep));
    // The third branch wire has no Resistance; its ElectricalLength is then not read either.
    QCOMPARE(rep.texts(),
             QStringList{fieldMessage(QStringLiteral("Resistance"), QStringLiteral("BranchWire"))});

    const QMap<QString, int> controllers = {{QStringLiteral("Studio"), 9},
                                            {QStringLiteral("Broken"), 0},
                                            {QStringLiteral("Missing"), 0},
                                            {QStringLiteral("Overflow"), 0},
                                            {QStringLiteral("Second List"), 7}};
    QCOMPARE(db.controllers(), controllers);
    const QMap<QString, int> modes = {{QStringLiteral("Dynaline"), 3}, {QStringLiteral("Feedwise"), 0}};
    QCOMPARE(db.outputModes(), modes);
    const QMap<QString, double> locations = {{QStringLiteral("Above Ground"), 0.005},
                                             {QStringLiteral("Wet"), 0.0},
                                             {QStringLiteral("Plenum"), 0.003}};
    QCOMPARE(db.locations(), locations);

    QCOMPARE(db.branchWires().size(), 3);
    QVERIFY(db.firstBranchWire() == db.branchWires().first());
    for (const VxJumper* w : db.branchWires()) {
        QCOMPARE(w->name, QStringLiteral("BranchWire"));
        QCOMPARE(w->techType, int(VxTechNone));
        QCOMPARE(w->multiplier, 1.0);
    }
    const VxJumper* fixed = db.branchWires().at(0);
    QVERIFY(!fixed->hasCustomWires);
    QCOMPARE(fixed->resistance, 0.00253);
    QCOMPARE(fixed->electricalLength, 20.0);
    QCOMPARE(fixed->maxLeaderLength, 999.0);
    QCOMPARE(fixed->maxInARow, 3);
    QCOMPARE(fixed->standardGauge, QStringLiteral("14"));
    QVERIFY(fixed->defaultWire() == nullptr);

    const VxJumper* custom = db.branchWires().at(1);
    QVERIFY(custom->hasCustomWires);
    QCOMPARE(custom->defaultCustomLength, 35.0);
    QCOMPARE(namesOf(custom->customWires), QStringList{QStringLiteral("12")});
    QCOMPARE(custom->customWires.first()->resistance, 0.00159);
    QCOMPARE(custom->customWires.first()->maxLength, 175.0);
    QCOMPARE(custom->customWires.first()->techType, int(VxTechNone));
    QCOMPARE(custom->maxLeaderLength, 0.0);
    QVERIFY(custom->defaultWire() == custom->customWires.first());

    const VxJumper* broken = db.branchWires().at(2);
    QCOMPARE(broken->resistance, 0.0);
    QCOMPARE(broken->electricalLength, 0.0);
    QCOMPARE(broken->maxLeaderLength, 999.0);
}

void TestCatalog::productNames()
{
    const QString path = catalogFile(QStringLiteral("names.xml"));
    Database db;
    RecordingReporter rep;
    QVERIFY(db.loadFile(path, &rep));
    // A blank name is no name: the document drops whitespace-only text.
    const QStringList expected = {inFile(path, QStringLiteral("JunctionBox element with no Name")),
                                  inFile(path, QStringLiteral("JunctionBox element with no Name")),
                                  inFile(path, QStringLiteral("Receiver element with no Name")),
                                  inFile(path, QStringLiteral("Receiver element with no Name")),
                                  inFile(path, QStringLiteral("PowerSupply element with no Name")),
                                  inFile(path, QStringLiteral("Fixture element with no Name"))};
    QCOMPARE(rep.texts(), expected);
    QVERIFY(allWarningsTitledRunplan(rep));

    const QStringList boxes = {QStringLiteral("Box\tTab"), QStringLiteral("Twin"), QStringLiteral("Twin")};
    QCOMPARE(namesOf(db.junctionBoxes()), boxes);
    QCOMPARE(db.junctionBoxNamed(QStringLiteral("Twin"))->volume, 1.0f);
    QVERIFY(db.junctionBoxNamed(QStringLiteral("Box Tab")) == nullptr);
    QCOMPARE(namesOf(db.receivers()), QStringList{QStringLiteral("Rx\nSecond Line")});

    const QStringList supplies = {QStringLiteral("Feeder"), QStringLiteral("Feeder"),
                                  QStringLiteral("FEEDER")};
    QCOMPARE(namesOf(db.supplies()), supplies);
    QCOMPARE(db.supplyNamed(QStringLiteral("Feeder"))->maxNumFixtures, 4);
    QCOMPARE(db.supplyNamed(QStringLiteral("FEEDER"))->maxNumFixtures, 16);
    QVERIFY(db.supplyNamed(QStringLiteral("feeder")) == nullptr);

    const QString unicodeName = QStringLiteral("Lümière ✓ 光 Dynaline");
    const QStringList fixtures = {QStringLiteral("Bar\tOne"), QStringLiteral("Dup"), QStringLiteral("Dup"),
                                  unicodeName};
    QCOMPARE(namesOf(db.fixtures()), fixtures);
    QCOMPARE(db.fixtureNamed(QStringLiteral("Dup"))->family, 1);
    QCOMPARE(db.fixtures().at(2)->family, 2);
    QCOMPARE(db.fixtureNamed(unicodeName)->shortName, unicodeName); // empty ShortName keeps the name

    // The lower-case valid supply links to the first supply in catalog order, and only to it.
    const DLFixture* bar = db.fixtures().first();
    QCOMPARE(bar->validSupplies.size(), 1);
    QVERIFY(bar->validSupplies.first() == db.supplies().at(0));
    QCOMPARE(db.supplies().at(0)->fixtures.size(), 1);
    QVERIFY(db.supplies().at(1)->fixtures.isEmpty());
    QVERIFY(db.supplies().at(2)->fixtures.isEmpty());
}

void TestCatalog::technologyTypes()
{
    const QString path = catalogFile(QStringLiteral("types.xml"));
    Database db;
    RecordingReporter rep;
    QVERIFY(db.loadFile(path, &rep));
    // Junction boxes speak of a PowerSupply; that wording is kept on purpose.
    const QStringList expected = {
        inFile(path, QStringLiteral("PowerSupply Tintrail Box has unknown type")),
        inFile(path, QStringLiteral("PowerSupply Typeless Box has unknown type")),
        inFile(path, QStringLiteral("PowerSupply Pixel Supply has unknown type")),
        inFile(path, QStringLiteral("Fixture Ribbon Fixture has unknown type")),
        inFile(path, QStringLiteral("Fixture Padded Type Fixture has unknown type")),
        validSupplyMessage(QStringLiteral("Shouting Fixture"), QStringLiteral("PIXEL SUPPLY")),
        inFile(path, QStringLiteral("Fixture Typeless Fixture has unknown type")),
    };
    QCOMPARE(rep.texts(), expected);

    QCOMPARE(namesOf(db.junctionBoxes()), QStringList{QStringLiteral("Caps Box")});
    QCOMPARE(db.junctionBoxes().first()->techType, int(VxTechDynaline));
    QCOMPARE(db.junctionBoxes().first()->volume, 12.5f);
    QCOMPARE(db.junctionBoxes().first()->numPorts, 3);
    QCOMPARE(namesOf(db.receivers()), QStringList{QStringLiteral("Any Type Receiver")});
    QCOMPARE(namesOf(db.supplies()), QStringList{QStringLiteral("Mixed Case Supply")});
    QCOMPARE(db.supplies().first()->techType, int(VxTechDynaline));
    QCOMPARE(namesOf(db.fixtures()), QStringList{QStringLiteral("Shouting Fixture")});
    QCOMPARE(db.fixtures().first()->techType, int(VxTechDynaline));
    QCOMPARE(db.fixtures().first()->validSupplies.size(), 1);
    QVERIFY(db.fixtures().first()->validSupplies.first() == db.supplies().first());
}

void TestCatalog::technologyKeywords_data()
{
    QTest::addColumn<QString>("keyword");
    QTest::addColumn<int>("type");
    QTest::newRow("dynaline") << QStringLiteral("dynaline") << int(VxTechDynaline);
    QTest::newRow("upper") << QStringLiteral("DYNALINE") << int(VxTechDynaline);
    QTest::newRow("tintrail") << QStringLiteral("TinTrail") << int(VxTechTintrail);
    QTest::newRow("pixelon") << QStringLiteral("pixelon") << int(VxTechPixelon);
    QTest::newRow("pxribbon") << QStringLiteral("PXRIBBON") << int(VxTechPxRibbon);
    QTest::newRow("empty") << QString() << int(VxTechNone);
    QTest::newRow("padded") << QStringLiteral(" dynaline") << int(VxTechNone);
    QTest::newRow("prefix") << QStringLiteral("dyna") << int(VxTechNone);
    QTest::newRow("longer") << QStringLiteral("dynaline2") << int(VxTechNone);
}

void TestCatalog::technologyKeywords()
{
    QFETCH(QString, keyword);
    QFETCH(int, type);
    QCOMPARE(Database::techTypeFromKeyword(keyword), type);
}

void TestCatalog::validSuppliesAndReadingOrder()
{
    const QString path = catalogFile(QStringLiteral("supplies.xml"));
    Database db;
    RecordingReporter rep;
    QVERIFY(db.loadFile(path, &rep));
    const QStringList expected = {
        fieldMessage(QStringLiteral("Value"), QStringLiteral("Signal Feeder Pro")),
        QStringLiteral("Error parsing Zero Supply\nMaxElectricalLength and MaxNumFixtures are both zero"),
        validSupplyMessage(QStringLiteral("Lower Case Link"), QStringLiteral("GHOST SUPPLY")),
        validSupplyMessage(QStringLiteral("Orphan"), QStringLiteral("NOBODY")),
        validSupplyMessage(QStringLiteral("Orphan"), QStringLiteral("NOBODY ELSE")),
    };
    QCOMPARE(rep.texts(), expected);

    const QStringList supplies = {QStringLiteral("Signal Feeder Pro"), QStringLiteral("RD-5000"),
                                  QStringLiteral("Zero Supply")};
    QCOMPARE(namesOf(db.supplies()), supplies);
    const DLPowerSupply* sfp = db.supplies().at(0);
    const DLPowerSupply* rd = db.supplies().at(1);
    const DLPowerSupply* zero = db.supplies().at(2);

    const QStringList modes = {QStringLiteral("Dynaline"), QStringLiteral("Feedwise"),
                               QStringLiteral("Line Voltage")};
    QCOMPARE(sfp->outputModes, modes);
    QCOMPARE(sfp->defaultOutputMode(), QStringLiteral("Dynaline"));
    QVERIFY(sfp->hasOutputMode(QStringLiteral("Feedwise")));
    QVERIFY(!sfp->hasOutputMode(QStringLiteral("feedwise")));
    QCOMPARE(sfp->maxElectricalLength, 600.0);
    QCOMPARE(sfp->maxElectricalLengthPerRun, 220.0);
    QCOMPARE(sfp->maxNumFixtures, 64);
    QCOMPARE(sfp->power, 14.0);
    QCOMPARE(sfp->powerFactor, 0.62);
    // Exact voltage and frequency only; a later entry replaces an earlier one.
    QCOMPARE(sfp->voltageAttributes.size(), 3);
    QCOMPARE(sfp->voltageAttribute(120, 50).inrushCurrent, 5.5);
    QCOMPARE(sfp->voltageAttribute(120, 50).leakage, 150.0);
    QCOMPARE(sfp->voltageAttribute(120, 60).inrushCurrent, 7.0);
    QCOMPARE(sfp->voltageAttribute(120, 60).leakage, 190.0);
    QCOMPARE(sfp->voltageAttribute(277, 60).inrushCurrent, 13.85);
    QCOMPARE(sfp->voltageAttribute(277, 50).inrushCurrent, 0.0);
    QCOMPARE(sfp->voltageAttribute(121, 60).leakage, 0.0);
    QCOMPARE(sfp->voltageAttribute(0, 60).inrushCurrent, 0.0);

    // MaxNumFixtures alone is enough.
    QCOMPARE(rd->maxNumFixtures, 12);
    QCOMPARE(rd->maxElectricalLength, 0.0);
    QVERIFY(rd->outputModes.isEmpty());
    QCOMPARE(rd->defaultOutputMode(), QString());

    // Both limits zero: the rest of the supply is not read, but the supply stays listed.
    QCOMPARE(zero->maxElectricalLengthPerRun, 100.0);
    QVERIFY(zero->outputModes.isEmpty());
    QCOMPARE(zero->power, 0.0);

    // Supplies are read before fixtures whatever the document order; both fixture lists are read.
    const QStringList fixtures = {QStringLiteral("Lower Case Link"), QStringLiteral("Orphan"),
                                  QStringLiteral("Second List Fixture")};
    QCOMPARE(namesOf(db.fixtures()), fixtures);
    const DLFixture* link = db.fixtures().at(0);
    QCOMPARE(link->validSupplies.size(), 2);
    QVERIFY(link->validSupplies.at(0) == sfp);
    QVERIFY(link->validSupplies.at(1) == rd);
    QVERIFY(db.fixtures().at(1)->validSupplies.isEmpty());
    const DLFixture* second = db.fixtures().at(2);
    QCOMPARE(second->validSupplies.size(), 2);
    QVERIFY(second->validSupplies.at(0) == zero);

    // The disabled fixture is out of the catalog but its supply still names it.
    QVERIFY(db.fixtureNamed(QStringLiteral("Retired")) == nullptr);
    QCOMPARE(namesOf(sfp->fixtures),
             (QStringList{QStringLiteral("Lower Case Link"), QStringLiteral("Retired")}));
    QVERIFY(sfp->fixtures.at(1)->disabled);
    QCOMPARE(namesOf(rd->fixtures),
             (QStringList{QStringLiteral("Lower Case Link"), QStringLiteral("Second List Fixture")}));
    QCOMPARE(namesOf(zero->fixtures), QStringList{QStringLiteral("Second List Fixture")});
}

void TestCatalog::missingRequiredFields()
{
    const QString path = catalogFile(QStringLiteral("missing_fields.xml"));
    Database db;
    RecordingReporter rep;
    QVERIFY(db.loadFile(path, &rep));
    const QStringList expected = {
        fieldMessage(QStringLiteral("Power"), QStringLiteral("No Power Receiver")),
        fieldMessage(QStringLiteral("PowerFactor"), QStringLiteral("Empty Receiver")),
        fieldMessage(QStringLiteral("Resistance"), QStringLiteral("Empty Receiver")),
        fieldMessage(QStringLiteral("ElectricalLength"), QStringLiteral("Empty Receiver")),
        fieldMessage(QStringLiteral("Power"), QStringLiteral("Empty Receiver")),
        fieldMessage(QStringLiteral("MaxTemp"), QStringLiteral("No MaxTemp")),
        fieldMessage(QStringLiteral("Resistance"), QStringLiteral("No Resistance")),
        fieldMessage(QStringLiteral("ElectricalLength"), QStringLiteral("No ElectricalLength")),
        fieldMessage(QStringLiteral("FudgeFactor"), QStringLiteral("No FudgeFactor")),
        fieldMessage(QStringLiteral("StartingVoltage"), QStringLiteral("No StartingVoltage")),
        QStringLiteral(
            "Error parsing Zero Drops\nMaxVoltageDrop, MinVoltage, and VoltageDropPercent are zero"),
        QStringLiteral("Error in database file:\nJumper/Leader element with no Name"),
        fieldMessage(QStringLiteral("Resistance"), QStringLiteral("No Resistance Leader")),
        fieldMessage(QStringLiteral("ElectricalLength"), QStringLiteral("No Length Leader")),
        QStringLiteral("Error in database file:\nCustomWire element with no Name"),
        fieldMessage(QStringLiteral("MaxLength"), QStringLiteral("16")),
        fieldMessage(QStringLiteral("Resistance"), QStringLiteral("18")),
    };
    QCOMPARE(rep.texts(), expected);
    QVERIFY(allWarningsTitledRunplan(rep));

    // Every record is kept.
    QCOMPARE(namesOf(db.receivers()),
             (QStringList{QStringLiteral("No Power Receiver"), QStringLiteral("Empty Receiver")}));
    QCOMPARE(db.fixtures().size(), 8);

    const DLReceiver* noPower = db.receivers().at(0);
    QCOMPARE(noPower->power, 0.0);
    QCOMPARE(noPower->powerFactor, 0.5);
    QCOMPARE(noPower->resistance, 0.1);
    QCOMPARE(noPower->maxElectricalLength, 300.0);
    QCOMPARE(noPower->maxElectricalLengthPerRun, 150.0);
    QCOMPARE(db.receivers().at(1)->maxElectricalLength, 0.0);

    const DLFixture* noTemp = db.fixtureNamed(QStringLiteral("No MaxTemp"));
    QVERIFY(noTemp);
    QCOMPARE(noTemp->resistance, 0.0);
    QCOMPARE(noTemp->electricalLength, 0.0);
    QCOMPARE(noTemp->power, 7.0); // Power is read even after a failed MaxTemp
    QCOMPARE(noTemp->fudgeFactor, 0.0);
    QCOMPARE(noTemp->startingVoltage, 120);
    QCOMPARE(noTemp->maxVoltageDrop, 0.0);
    QVERIFY(noTemp->leaders.isEmpty());
    QCOMPARE(noTemp->validVoltages, QList<int>{120}); // voltages are read whatever parse said
    QCOMPARE(noTemp->powerByVoltage.value(120), 7.0);

    const DLFixture* noRes = db.fixtureNamed(QStringLiteral("No Resistance"));
    QCOMPARE(noRes->maxTemp, 40.0);
    QCOMPARE(noRes->electricalLength, 0.0);
    QCOMPARE(noRes->power, 8.0);

    const DLFixture* noLen = db.fixtureNamed(QStringLiteral("No ElectricalLength"));
    QCOMPARE(noLen->resistance, 0.032);
    QCOMPARE(noLen->electricalLength, 0.0);
    QCOMPARE(noLen->fudgeFactor, 0.0);

    const DLFixture* noFudge = db.fixtureNamed(QStringLiteral("No FudgeFactor"));
    QCOMPARE(noFudge->electricalLength, 4.0);
    QCOMPARE(noFudge->safetyRequired, 0);
    QCOMPARE(noFudge->startingVoltage, 120);

    const DLFixture* noStart = db.fixtureNamed(QStringLiteral("No StartingVoltage"));
    QCOMPARE(noStart->fudgeFactor, 1.05);
    QCOMPARE(noStart->safetyRequired, 2);
    QCOMPARE(noStart->startingVoltage, 120);
    QCOMPARE(noStart->maxVoltageDrop, 0.0);
    QCOMPARE(noStart->maxPower, 0.0);

    const DLFixture* zero = db.fixtureNamed(QStringLiteral("Zero Drops"));
    QVERIFY(zero->leaders.isEmpty());
    QVERIFY(zero->jumpers.isEmpty());
    QCOMPARE(zero->maxPower, 0.0);
    QVERIFY(zero->defaultLeaderCable() == nullptr);

    const DLFixture* one = db.fixtureNamed(QStringLiteral("One Drop Limit Is Enough"));
    QCOMPARE(one->minVoltage, 90.0);
    QCOMPARE(one->maxPower, 900.0);
    QCOMPARE(one->maxFixtureCurrent, 12.0);
    QCOMPARE(one->maxFixtureLength, 200.0);
    QVERIFY(one->jumperRequired);
    QCOMPARE(namesOf(one->leaders), QStringList{QStringLiteral("Leader 6ft")});
    QCOMPARE(one->leaders.first()->maxLeaderLength, 999.0);
}

void TestCatalog::cablesAndCustomWires()
{
    Database db;
    RecordingReporter rep;
    QVERIFY(db.loadFile(catalogFile(QStringLiteral("missing_fields.xml")), &rep));
    const DLFixture* f = db.fixtureNamed(QStringLiteral("Bad Cables"));
    QVERIFY(f);

    QCOMPARE(namesOf(f->leaders),
             (QStringList{QStringLiteral("Short Leader"), QStringLiteral("Both Kinds Leader")}));
    const VxJumper* shortLeader = f->leaders.at(0);
    QCOMPARE(shortLeader->techType, int(VxTechNone));
    QCOMPARE(shortLeader->resistance, 0.02); // 20 milliohms per foot
    QCOMPARE(shortLeader->electricalLength, 6.0);
    QCOMPARE(shortLeader->maxLeaderLength, 999.0);
    QCOMPARE(shortLeader->maxInARow, 2);
    QCOMPARE(shortLeader->standardGauge, QStringLiteral("14"));
    QVERIFY(!shortLeader->hasCustomWires);

    // A cable with custom wires ignores its own electrical fields.
    const VxJumper* both = f->leaders.at(1);
    QVERIFY(both->hasCustomWires);
    QCOMPARE(both->resistance, 0.0);
    QCOMPARE(both->electricalLength, 0.0);
    QCOMPARE(both->maxLeaderLength, 0.0);
    QCOMPARE(both->defaultCustomWire, 1);
    QCOMPARE(both->defaultCustomLength, 25.0);
    QCOMPARE(namesOf(both->customWires), (QStringList{QStringLiteral("14"), QStringLiteral("20")}));
    QCOMPARE(both->customWires.at(0)->resistance, 0.00253);
    QCOMPARE(both->customWires.at(0)->maxLength, 100.0);
    QCOMPARE(both->customWires.at(1)->resistance, 0.01015);
    QVERIFY(both->defaultWire() == both->customWires.at(1));
    QVERIFY(both->wireNamed(QStringLiteral("14")) == both->customWires.at(0));
    QVERIFY(both->wireNamed(QStringLiteral("16")) == nullptr);
    QVERIFY(both->wireNamed(QStringLiteral("14 AWG")) == nullptr);

    // Default indexes out of range fall back to the first entry.
    QVERIFY(f->defaultLeaderCable() == shortLeader);
    QCOMPARE(namesOf(f->jumpers),
             (QStringList{QStringLiteral("Jumper 1ft"), QStringLiteral("Custom Jumper")}));
    const VxJumper* custom = f->defaultJumperCable();
    QVERIFY(custom == f->jumpers.at(1));
    QCOMPARE(namesOf(custom->customWires), (QStringList{QStringLiteral("16"), QStringLiteral("18")}));
    QVERIFY(custom->defaultWire() == custom->customWires.first());
    QCOMPARE(custom->customWires.at(1)->maxLength, 0.0);
    QVERIFY(f->jumperNamed(QStringLiteral("Jumper 1ft")) == f->jumpers.at(0));
    QCOMPARE(f->jumperNamed(QStringLiteral("Jumper 1ft"))->maxLeaderLength, 1.0);
    QVERIFY(f->leaderNamed(QStringLiteral("Jumper 1ft")) == nullptr);
    QVERIFY(f->leaderNamed(QStringLiteral("No Length Leader")) == nullptr);
}

void TestCatalog::edgeNumbers()
{
    const QString path = catalogFile(QStringLiteral("numbers.xml"));
    Database db;
    RecordingReporter rep;
    QVERIFY(db.loadFile(path, &rep));
    // Overflow, underflow, hexadecimal, decimal commas and non-finite numbers do not convert;
    // padding, a plus sign and a signed zero do.
    const QStringList expected = {
        fieldMessage(QStringLiteral("PowerFactor"), QStringLiteral("Odd Receiver")),
        fieldMessage(QStringLiteral("ElectricalLength"), QStringLiteral("Odd Receiver")),
        fieldMessage(QStringLiteral("Power"), QStringLiteral("Odd Receiver")),
        QStringLiteral(
            "Error parsing Signed Zero Supply\nMaxElectricalLength and MaxNumFixtures are both zero"),
        fieldMessage(QStringLiteral("MaxTemp"), QStringLiteral("Overflow")),
        fieldMessage(QStringLiteral("Resistance"), QStringLiteral("Not A Number")),
        fieldMessage(QStringLiteral("Value"), QStringLiteral("Padded")),
    };
    QCOMPARE(rep.texts(), expected);

    const DLJunctionBox* odd = db.junctionBoxNamed(QStringLiteral("Odd Box"));
    QCOMPARE(odd->volume, 0.0f);
    QCOMPARE(odd->numPorts, 0);
    QVERIFY(!odd->receiverOnly);
    QVERIFY(odd->receiverMountable);
    const DLJunctionBox* over = db.junctionBoxNamed(QStringLiteral("Float Overflow Box"));
    QCOMPARE(over->volume, 0.0f);
    QCOMPARE(over->numPorts, 0);
    const DLJunctionBox* padded = db.junctionBoxNamed(QStringLiteral("Padded Box"));
    QCOMPARE(padded->volume, 30.25f);
    QCOMPARE(padded->numPorts, 4);
    QVERIFY(padded->receiverOnly);

    const DLReceiver* rx = db.receivers().first();
    QCOMPARE(rx->maxElectricalLength, 0.0);
    QCOMPARE(rx->maxElectricalLengthPerRun, 0.0);
    QCOMPARE(rx->resistance, 0.25); // ohms as given, not divided
    QCOMPARE(rx->powerFactor, 0.0);

    QCOMPARE(namesOf(db.supplies()),
             (QStringList{QStringLiteral("Signed Zero Supply"), QStringLiteral("Padded Supply")}));
    const DLPowerSupply* ps = db.supplies().at(1);
    QCOMPARE(ps->maxElectricalLength, 600.0);
    QCOMPARE(ps->maxNumFixtures, 0);
    QCOMPARE(ps->power, 0.0);
    QCOMPARE(ps->powerFactor, 0.62);

    const DLFixture* overflow = db.fixtureNamed(QStringLiteral("Overflow"));
    QCOMPARE(overflow->maxTemp, 0.0);
    QCOMPARE(overflow->resistance, 0.0);
    QCOMPARE(overflow->power, 5.0);
    const DLFixture* nan = db.fixtureNamed(QStringLiteral("Not A Number"));
    QCOMPARE(nan->maxTemp, 40.0);
    QVERIFY(std::isfinite(nan->resistance));
    QCOMPARE(nan->resistance, 0.0);
    QCOMPARE(nan->electricalLength, 0.0);

    const DLFixture* f = db.fixtureNamed(QStringLiteral("Padded"));
    QVERIFY(f);
    QVERIFY(!f->disabled);
    QCOMPARE(f->family, 0);
    QCOMPARE(f->defaultJumper, 0);
    QCOMPARE(f->defaultLeader, 1);
    QVERIFY(f->isInline);
    QCOMPARE(f->powerFactor, 0.0);
    QCOMPARE(f->maxTemp, 12.0);
    QCOMPARE(f->resistance, 0.0);
    QCOMPARE(f->electricalLength, 4.0);
    QCOMPARE(f->power, 0.0);
    QCOMPARE(f->fudgeFactor, 1.0);
    QCOMPARE(f->safetyRequired, 2);
    QCOMPARE(f->startingVoltage, 277);
    QCOMPARE(f->maxVoltageDrop, 0.0);
    QCOMPARE(f->minVoltage, 0.0);
    QCOMPARE(f->voltageDropPercent, 0.05);
    QCOMPARE(f->maxPower, -1800.0);
    QCOMPARE(f->maxFixtureCurrent, 15.0);
    QCOMPARE(f->maxFixtureLength, 0.0);
    QCOMPARE(f->validVoltages, QList<int>{120});
    QCOMPARE(f->powerFactorByVoltage.value(120), 0.9);
    QVERIFY(f->maxCountByVoltage.isEmpty());
    QVERIFY(f->maxCount15AByVoltage.isEmpty());
    QVERIFY(f->maxCurrentByVoltage.isEmpty());
    QVERIFY(f->powerByVoltage.isEmpty());
}

void TestCatalog::perVoltageTables()
{
    Database db;
    RecordingReporter rep;
    QVERIFY(db.loadFile(catalogFile(QStringLiteral("tables.xml")), &rep));
    QCOMPARE(rep.texts(), QStringList{fieldMessage(QStringLiteral("Frequency"),
                                                   QStringLiteral("Tintflare Dynaline gen4"))});
    const DLFixture* f = db.fixtureNamed(QStringLiteral("Tintflare Dynaline gen4"));
    QVERIFY(f);
    QCOMPARE(f->family, 4);
    QCOMPARE(f->shortName, QStringLiteral("Tintflare g4"));
    QCOMPARE(f->powerFactor, 0.95);
    QCOMPARE(f->resistance, 0.018);

    // Every Voltage element is listed, repeats included.
    QCOMPARE(f->validVoltages, (QList<int>{120, 208, 277, 120}));
    const QMap<int, double> pf = {{120, 0.95}, {277, 0.9}};
    QCOMPARE(f->powerFactorByVoltage, pf);
    const QMap<int, double> power = {{120, 25.0}, {277, 23.0}};
    QCOMPARE(f->powerByVoltage, power);
    const QMap<int, int> count = {{120, 40}, {277, 60}};
    QCOMPARE(f->maxCountByVoltage, count);
    const QMap<int, int> count15 = {{120, 28}, {277, 54}};
    QCOMPARE(f->maxCount15AByVoltage, count15);
    const QMap<int, int> count20 = {{120, 36}, {277, 60}};
    QCOMPARE(f->maxCount20AByVoltage, count20);
    const QMap<int, double> current = {{120, 15.0}, {277, 14.0}};
    QCOMPARE(f->maxCurrentByVoltage, current);

    QCOMPARE(f->frequencyAttributes.size(), 4);
    QCOMPARE(f->frequencyAttribute(120, 50).inrushCurrent, 1.2);
    QCOMPARE(f->frequencyAttribute(120, 50).leakage, 67.0);
    QCOMPARE(f->frequencyAttribute(120, 60).inrushCurrent, 1.3);
    QCOMPARE(f->frequencyAttribute(120, 60).leakage, 82.0);
    QCOMPARE(f->frequencyAttribute(208, 60).inrushCurrent, 0.0);
    QCOMPARE(f->frequencyAttribute(208, 60).leakage, 139.0);
    QCOMPARE(f->frequencyAttribute(277, 60).inrushCurrent, 2.8);
    QCOMPARE(f->frequencyAttribute(277, 50).leakage, 0.0);
    QCOMPARE(f->frequencyAttribute(220, 60).inrushCurrent, 0.0); // no nearest-voltage fallback here
    QCOMPARE(f->frequencyAttribute(120, 0).inrushCurrent, 0.0);
}

void TestCatalog::receiversResolveJunctionBoxes()
{
    Database db;
    RecordingReporter rep;
    QVERIFY(db.loadFile(catalogFile(QStringLiteral("receivers.xml")), &rep));
    QCOMPARE(rep.texts(), QStringList());
    QCOMPARE(db.junctionBoxes().size(), 4);
    const DLReceiver* rx = db.receiverNamed(QStringLiteral("Feedwise Receiver"));
    QVERIFY(rx);
    QCOMPARE(rx->shortName, QStringLiteral("FW Rcvr"));
    QCOMPARE(rx->maxElectricalLength, 300.0);
    QCOMPARE(rx->maxElectricalLengthPerRun, 150.0);
    QCOMPARE(rx->power, 4.5);
    QCOMPARE(rx->powerFactor, 0.55);
    QCOMPARE(rx->resistance, 0.045);
    QCOMPARE(rx->electricalLength, 1.0);
    // Unknown names and the correctly spelled element are ignored; every box of a repeated name
    // is taken; both lists are read.
    const QList<DLJunctionBox*> expected = {db.junctionBoxes().at(0), db.junctionBoxes().at(2),
                                            db.junctionBoxes().at(3), db.junctionBoxes().at(1)};
    QCOMPARE(rx->validJunctionBoxes, expected);

    const DLReceiver* caseRx = db.receiverNamed(QStringLiteral("Case Receiver"));
    QVERIFY(caseRx->validJunctionBoxes.isEmpty()); // names match exactly
    QCOMPARE(caseRx->resistance, 2.0);
    QCOMPARE(caseRx->shortName, caseRx->name);

    const DLJunctionBox* square = db.junctionBoxes().at(0);
    QCOMPARE(square->shortName, QStringLiteral("4in Sq"));
    QCOMPARE(square->volume, 30.25f);
    QCOMPARE(square->numPorts, 4);
    QVERIFY(square->receiverMountable);
    QVERIFY(!square->receiverOnly);
    QVERIFY(db.junctionBoxes().at(3)->receiverOnly);
    QVERIFY(!db.junctionBoxes().at(3)->receiverMountable);
}

void TestCatalog::fixtureReferenceElement()
{
    Database db;
    RecordingReporter rep;
    QVERIFY(db.loadFile(catalogFile(QStringLiteral("tables.xml")), &rep));
    const DLFixture* f = db.fixtures().first();
    QDomDocument doc;
    QDomElement parent = doc.createElement(QStringLiteral("Parent"));
    doc.appendChild(parent);
    f->writeXml(parent, doc);
    const QDomElement e = parent.firstChildElement();
    QCOMPARE(e.tagName(), QStringLiteral("VxFixture"));
    QCOMPARE(e.attribute(QStringLiteral("VxFixtureName")), f->name);
    QCOMPARE(e.attribute(QStringLiteral("VxFixtureTecthType")), QStringLiteral("1"));
    QCOMPARE(e.attribute(QStringLiteral("VxFixtureFamily")), QStringLiteral("4"));
    // The leader index travels as "DefaultAttribute".
    QCOMPARE(e.attribute(QStringLiteral("VxFixtureDefaultAttribute")), QStringLiteral("1"));
    QCOMPARE(e.attribute(QStringLiteral("VxFixtureDefaultJumper")), QStringLiteral("2"));
    QCOMPARE(e.attributes().size(), 5);
    QVERIFY(f->isRecordElement(e));
    QVERIFY(!f->isRecordElement(doc.createElement(QStringLiteral("vxfixture"))));
    QVERIFY(!f->isRecordElement(QDomElement()));
}

// ---------------------------------------------------------------------------------------------

void TestCatalog::deepNesting()
{
    // 100 000 levels of nesting with a fixture at the bottom. Whether the loader takes such a
    // document or refuses it, it must neither crash nor end half-loaded.
    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    const QString path = dir.filePath(QStringLiteral("deep.xml"));
    const int depth = 100000;
    QByteArray bytes = "<Catalog><DBVersion>deep-1</DBVersion>";
    bytes.reserve(depth * 8 + 1024);
    for (int i = 0; i < depth; ++i)
        bytes += "<n>";
    bytes += "<FixtureList><Fixture><Name>Deep Fixture</Name><Type>dynaline</Type>";
    bytes += PlainFixtureFields;
    bytes += "</Fixture></FixtureList>";
    for (int i = 0; i < depth; ++i)
        bytes += "</n>";
    bytes += "</Catalog>\n";
    QVERIFY(writeFile(path, bytes));

    Database db;
    RecordingReporter rep;
    const bool ok = db.loadFile(path, &rep);
    QCOMPARE(ok, db.isValid());
    if (ok) {
        QCOMPARE(rep.texts(), QStringList());
        QCOMPARE(db.version(), QStringLiteral("deep-1"));
        QCOMPARE(namesOf(db.fixtures()), QStringList{QStringLiteral("Deep Fixture")});
    } else {
        QCOMPARE(rep.messages.size(), 1);
        const QString text = rep.messages.first().text;
        QVERIFY2(text.startsWith(QStringLiteral("Error parsing database file %1:\n").arg(path)),
                 qPrintable(text));
        QVERIFY2(QRegularExpression(QStringLiteral("\nLine \\d+ Column \\d+$")).match(text).hasMatch(),
                 qPrintable(text));
        QVERIFY(isEmptyCatalog(db));
        QVERIFY(db.version().isEmpty());
    }
}

void TestCatalog::largeCatalog()
{
    // Tens of megabytes of well-formed records: all of them are taken, in order, silently.
    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    const QString path = dir.filePath(QStringLiteral("large.xml"));
    const int fixtures = 10000;
    const QList<int> volts = {120, 277};
    QByteArray voltages = "<ValidVoltages>";
    for (int v : volts) {
        voltages +=
            QByteArray("<Voltage><Value>") + QByteArray::number(v) +
            "</Value><VoltagePowerFactor>0.93</VoltagePowerFactor><VoltagePower>24</VoltagePower>"
            "<VoltageMaxFixtureCount>40</VoltageMaxFixtureCount><FrequencyAttributes><FrequencyAttribute>"
            "<Frequency>60</Frequency><InrushCurrent>0.9</InrushCurrent><Leakage>90</Leakage>"
            "</FrequencyAttribute></FrequencyAttributes></Voltage>";
    }
    voltages += "</ValidVoltages>";
    const QByteArray label = QByteArray("Stylebar Tunable Dynaline ").repeated(64);
    QByteArray bytes =
        "<?xml version=\"1.0\"?>\n<Catalog><DBVersion>large-1</DBVersion><PowerSupplyList>"
        "<PowerSupply><Name>Signal Feeder Pro</Name><Type>dynaline</Type><MaxNumFixtures>64</MaxNumFixtures>"
        "</PowerSupply></PowerSupplyList>\n<FixtureList>\n";
    bytes.reserve(fixtures * (voltages.size() + label.size() + 400) + 1024);
    for (int i = 0; i < fixtures; ++i) {
        bytes +=
            QByteArray("<Fixture><Name>Fixture ") + QByteArray::number(i) + "</Name><Type>dynaline</Type>";
        bytes += "<ShortName>" + label + "</ShortName>";
        bytes += PlainFixtureFields;
        bytes += "<ValidSupplyList><Supply>Signal Feeder Pro</Supply></ValidSupplyList>";
        bytes += voltages;
        bytes += "</Fixture>\n";
    }
    bytes += "</FixtureList></Catalog>\n";
    QVERIFY(bytes.size() > 20 * 1000 * 1000);
    QVERIFY(writeFile(path, bytes));
    bytes.clear();

    Database db;
    RecordingReporter rep;
    QVERIFY(db.loadFile(path, &rep));
    QCOMPARE(rep.texts(), QStringList());
    QCOMPARE(db.fixtures().size(), fixtures);
    QCOMPARE(db.fixtures().first()->name, QStringLiteral("Fixture 0"));
    QCOMPARE(db.fixtures().last()->name, QStringLiteral("Fixture %1").arg(fixtures - 1));
    QCOMPARE(db.fixtures().last()->shortName, QString::fromLatin1(label));
    QCOMPARE(db.fixtures().last()->validVoltages, volts);
    QCOMPARE(db.fixtures().last()->frequencyAttributes.size(), volts.size());
    QCOMPARE(db.supplies().first()->fixtures.size(), fixtures);
}

// ---------------------------------------------------------------------------------------------

void TestCatalog::nearestLookup_data()
{
    QTest::addColumn<QList<int>>("volts");
    QTest::addColumn<QList<double>>("values");
    QTest::addColumn<int>("key");
    QTest::addColumn<double>("expected");

    const QList<int> two = {120, 277};
    const QList<double> twoValues = {1.5, 2.5};
    QTest::newRow("key 0 gives the default") << two << twoValues << 0 << 9.0;
    QTest::newRow("key 0 on an empty table") << QList<int>() << QList<double>() << 0 << 9.0;
    QTest::newRow("exact") << two << twoValues << 277 << 2.5;
    QTest::newRow("208 is nearer 277") << two << twoValues << 208 << 2.5;
    QTest::newRow("198 is nearer 120") << two << twoValues << 198 << 1.5;
    QTest::newRow("199 is nearer 277") << two << twoValues << 199 << 2.5;
    QTest::newRow("below all") << two << twoValues << 50 << 1.5;
    QTest::newRow("above all") << two << twoValues << 480 << 2.5;
    QTest::newRow("negative key") << two << twoValues << -5 << 1.5;
    QTest::newRow("tie goes to the lower voltage")
        << QList<int>{100, 140} << QList<double>{1.0, 2.0} << 120 << 1.0;
    QTest::newRow("empty table") << QList<int>() << QList<double>() << 120 << 0.0;
    QTest::newRow("beyond the search bound") << QList<int>{20000} << QList<double>{4.0} << 120 << 0.0;
    QTest::newRow("just inside the bound") << QList<int>{10119} << QList<double>{4.0} << 120 << 4.0;
    QTest::newRow("exact zero entry is the nearest")
        << QList<int>{120, 130} << QList<double>{0.0, 3.0} << 120 << 0.0;
    QTest::newRow("between, nearer the upper")
        << QList<int>{120, 130} << QList<double>{0.0, 3.0} << 126 << 3.0;
}

void TestCatalog::nearestLookup()
{
    QFETCH(QList<int>, volts);
    QFETCH(QList<double>, values);
    QFETCH(int, key);
    QFETCH(double, expected);
    QMap<int, double> table;
    QMap<int, int> intTable;
    for (int i = 0; i < volts.size(); ++i) {
        table.insert(volts.at(i), values.at(i));
        intTable.insert(volts.at(i), int(values.at(i) * 10));
    }
    QCOMPARE(VoltageLookup::nearest(table, key, 9.0), expected);
    QCOMPARE(VoltageLookup::nearest(intTable, key, 90), int(expected * 10));
}

void TestCatalog::floorLookup_data()
{
    QTest::addColumn<QList<int>>("volts");
    QTest::addColumn<int>("key");
    QTest::addColumn<double>("expected");
    // values are the voltage / 10, so the answer names the entry taken
    const QList<int> table = {100, 120, 277};
    QTest::newRow("key 0 gives the default") << table << 0 << -1.0;
    QTest::newRow("empty table gives the default") << QList<int>() << 120 << -1.0;
    QTest::newRow("every entry above") << table << 99 << 0.0;
    QTest::newRow("exact") << table << 120 << 12.0;
    QTest::newRow("between takes the lower") << table << 276 << 12.0;
    QTest::newRow("not the nearest") << table << 208 << 12.0;
    QTest::newRow("above all") << table << 480 << 27.7;
}

void TestCatalog::floorLookup()
{
    QFETCH(QList<int>, volts);
    QFETCH(int, key);
    QFETCH(double, expected);
    QMap<int, double> table;
    for (int v : volts)
        table.insert(v, v / 10.0);
    QCOMPARE(VoltageLookup::floor(table, key, -1.0), expected);
}

void TestCatalog::maxFixtureCurrentAt()
{
    DLFixture f(QStringLiteral("Probe"), VxTechDynaline);
    f.maxFixtureCurrent = 11.0;
    QCOMPARE(f.maxFixtureCurrentAt(120), 0.0); // empty table: 0, not the record's own limit
    f.maxCurrentByVoltage = {{120, 15.0}, {277, 14.0}};
    QCOMPARE(f.maxFixtureCurrentAt(0), 0.0);
    QCOMPARE(f.maxFixtureCurrentAt(120), 15.0);
    QCOMPARE(f.maxFixtureCurrentAt(277), 14.0);
    QCOMPARE(f.maxFixtureCurrentAt(208), 14.0);
    QCOMPARE(f.maxFixtureCurrentAt(198), 15.0);
    QCOMPARE(f.maxFixtureCurrentAt(100), 15.0);
    QCOMPARE(f.maxFixtureCurrentAt(480), 14.0);
    QCOMPARE(f.maxFixtureCurrentAt(-120), 15.0);
}

void TestCatalog::junctionBoxCapacity_data()
{
    QTest::addColumn<float>("volume");
    QTest::addColumn<int>("ports");
    QTest::addColumn<int>("reservedKind");
    QTest::addColumn<int>("reservedCount");
    QTest::addColumn<QList<float>>("entryVolumes");
    QTest::addColumn<QList<int>>("entryCounts");
    QTest::addColumn<int>("kind");
    QTest::addColumn<float>("conductor");
    QTest::addColumn<float>("allowance");
    QTest::addColumn<int>("portsLeft");
    QTest::addColumn<float>("volumeLeft");
    QTest::addColumn<int>("capA");
    QTest::addColumn<int>("capB");

    // 30.25 - 5.25 = 25; A: 25 / 6 -> 4, B: 25 / 4 -> 6, both capped by 4 ports.
    QTest::newRow("empty box, receiver kind") << 30.25f << 4 << -1 << 0 << QList<float>() << QList<int>() << 1
                                              << 2.0f << 0.0f << 4 << 25.0f << 4 << 4;
    // Kind 2 also takes the 5.25 allowance; volume decides B: 25 / 6 -> 4.
    QTest::newRow("kind 2, thick conductor") << 30.25f << 8 << -1 << 0 << QList<float>() << QList<int>() << 2
                                             << 3.0f << 0.0f << 8 << 25.0f << 2 << 4;
    // Any other kind keeps the full volume: 30.25 / 4.5 -> 6, 30.25 / 3 -> 10.
    QTest::newRow("kind 0 keeps the allowance") << 30.25f << 8 << -1 << 0 << QList<float>() << QList<int>()
                                                << 0 << 1.5f << 0.0f << 8 << 30.25f << 6 << 8;
    // Largest entry once, every entry's repeats, plus the extra allowance:
    // 30.25 - 2.25 - (2 * 2.0 + 1 * 2.25) + 1.5 = 23.25; ports 6 - 2 entries.
    QTest::newRow("entries and allowance") << 30.25f << 6 << -1 << 0 << QList<float>{2.0f, 2.25f}
                                           << QList<int>{3, 2} << 3 << 2.0f << 1.5f << 4 << 23.25f << 3 << 4;
    // Reserved ports count only for their own kind.
    QTest::newRow("reserved for this kind") << 42.0f << 6 << 1 << 2 << QList<float>() << QList<int>() << 1
                                            << 2.0f << 0.0f << 4 << 36.75f << 4 << 4;
    QTest::newRow("reserved for another kind") << 42.0f << 6 << 2 << 2 << QList<float>() << QList<int>() << 1
                                               << 2.0f << 0.0f << 6 << 36.75f << 6 << 6;
    // Full: a negative room is truncated towards zero, then the smaller of the two wins.
    QTest::newRow("overfull") << 0.0f << 2 << -1 << 0 << QList<float>{10.0f} << QList<int>{1} << 1 << 1.0f
                              << 0.0f << 1 << -15.25f << -5 << -7;
    QTest::newRow("slightly short") << 5.0f << 3 << -1 << 0 << QList<float>() << QList<int>() << 1 << 2.0f
                                    << 0.0f << 3 << -0.25f << 0 << 0;
}

void TestCatalog::junctionBoxCapacity()
{
    QFETCH(float, volume);
    QFETCH(int, ports);
    QFETCH(int, reservedKind);
    QFETCH(int, reservedCount);
    QFETCH(QList<float>, entryVolumes);
    QFETCH(QList<int>, entryCounts);
    QFETCH(int, kind);
    QFETCH(float, conductor);
    QFETCH(float, allowance);
    QFETCH(int, portsLeft);
    QFETCH(float, volumeLeft);
    QFETCH(int, capA);
    QFETCH(int, capB);

    DLJunctionBox box(QStringLiteral("Box"), VxTechDynaline);
    box.volume = volume;
    box.numPorts = ports;
    if (reservedKind >= 0)
        box.reservedPorts.insert(reservedKind, reservedCount);
    QList<BoxEntry> entries;
    for (int i = 0; i < entryVolumes.size(); ++i)
        entries.append(BoxEntry{entryVolumes.at(i), entryCounts.at(i)});

    QCOMPARE(box.portsLeft(entries, kind), portsLeft);
    QCOMPARE(box.volumeLeft(entries, kind, allowance), volumeLeft);
    QCOMPARE(box.capacityA(entries, kind, conductor, allowance), capA);
    QCOMPARE(box.capacityB(entries, kind, conductor, allowance), capB);
}

// ---------------------------------------------------------------------------------------------

void TestCatalog::sampleCatalogLoadsCleanly()
{
    Database db;
    RecordingReporter rep;
    QVERIFY(db.loadFile(sampleCatalogPath(), &rep));
    QVERIFY(db.isValid());
    QCOMPARE(rep.texts(), QStringList());
    QCOMPARE(db.version(), QStringLiteral("2025.02.1"));

    const QStringList supplies = {QStringLiteral("Signal Feeder Pro"), QStringLiteral("Line Voltage"),
                                  QStringLiteral("RD-5000")};
    QCOMPARE(namesOf(db.supplies()), supplies);
    QCOMPARE(db.fixtures().size(), 13);
    QCOMPARE(db.receivers().size(), 2);
    QCOMPARE(db.junctionBoxes().size(), 4);
    QCOMPARE(db.controllers().size(), 3);
    QCOMPARE(db.outputModes().keys(), (QStringList{QStringLiteral("Dynaline"), QStringLiteral("Feedwise"),
                                                   QStringLiteral("Line Voltage")}));
    QCOMPARE(db.locations().size(), 4);
    QCOMPARE(db.branchWires().size(), 1);
    // The CSV export walks these two enablers' lists.
    QCOMPARE(db.supplies().at(0)->fixtures.size(), 12);
    QCOMPARE(db.supplies().at(1)->fixtures.size(), 10);
    QCOMPARE(db.supplies().at(2)->fixtures.size(), 9);
}

void TestCatalog::sampleCatalogProducts()
{
    Database db;
    RecordingReporter rep;
    QVERIFY(db.loadFile(sampleCatalogPath(), &rep));

    const DLPowerSupply* sfp = db.supplyNamed(QStringLiteral("Signal Feeder Pro"));
    const DLPowerSupply* lv = db.supplyNamed(QStringLiteral("Line Voltage"));
    QVERIFY(sfp && lv && db.supplyNamed(QStringLiteral("RD-5000")));
    QCOMPARE(sfp->outputModes, (QStringList{QStringLiteral("Dynaline"), QStringLiteral("Feedwise")}));
    QCOMPARE(lv->defaultOutputMode(), QStringLiteral("Line Voltage"));
    for (const DLPowerSupply* s : db.supplies()) {
        QVERIFY2(s->maxElectricalLength > 0 && s->maxElectricalLengthPerRun > 0, qPrintable(s->name));
        QVERIFY2(s->maxElectricalLengthPerRun <= s->maxElectricalLength, qPrintable(s->name));
        QVERIFY2(s->maxNumFixtures > 0 && s->power > 0, qPrintable(s->name));
        QVERIFY2(s->powerFactor > 0 && s->powerFactor <= 1.0, qPrintable(s->name));
        for (const QString& mode : s->outputModes)
            QVERIFY2(db.outputModes().contains(mode), qPrintable(mode));
        for (int v : StandardVoltages)
            for (int hz : {50, 60}) {
                QVERIFY2(s->voltageAttribute(v, hz).inrushCurrent > 0, qPrintable(s->name));
                QVERIFY2(s->voltageAttribute(v, hz).leakage > 0, qPrintable(s->name));
            }
    }

    const VxJumper* wire = db.firstBranchWire();
    QVERIFY(wire && wire->hasCustomWires);
    QCOMPARE(namesOf(wire->customWires), (QStringList{QStringLiteral("12"), QStringLiteral("14"),
                                                      QStringLiteral("16"), QStringLiteral("18")}));
    QVERIFY(wire->defaultWire());
    QVERIFY(wire->defaultCustomLength > 0);
    // Thinner wire, more resistance (about 1.6 to 6.4 milliohms per foot).
    for (int i = 0; i < wire->customWires.size(); ++i) {
        QVERIFY(wire->customWires.at(i)->resistance > 0.001 && wire->customWires.at(i)->resistance < 0.007);
        if (i > 0)
            QVERIFY(wire->customWires.at(i)->resistance > wire->customWires.at(i - 1)->resistance);
    }
    QVERIFY(db.locations().contains(QStringLiteral("Above Ground")));
    QVERIFY(qAbs(db.locations().value(QStringLiteral("Above Ground")) - 1.0 / 427) < 1e-6);

    bool mountable = false;
    bool receiverOnly = false;
    for (const DLJunctionBox* b : db.junctionBoxes()) {
        QVERIFY2(b->volume > 0 && b->numPorts > 0, qPrintable(b->name));
        mountable = mountable || b->receiverMountable;
        receiverOnly = receiverOnly || b->receiverOnly;
    }
    QVERIFY(mountable && receiverOnly);

    for (const DLReceiver* r : db.receivers()) {
        QVERIFY2(r->power > 0 && r->powerFactor > 0 && r->powerFactor <= 1.0, qPrintable(r->name));
        QVERIFY2(r->resistance > 0 && r->electricalLength > 0, qPrintable(r->name));
        QVERIFY2(r->maxElectricalLength > 0 && r->maxElectricalLengthPerRun > 0, qPrintable(r->name));
        QVERIFY2(!r->validJunctionBoxes.isEmpty(), qPrintable(r->name));
        for (const DLJunctionBox* b : r->validJunctionBoxes) {
            QVERIFY(b->receiverMountable);
            // A receiver in any of its boxes, fed by the default branch-wire gauge, can take
            // both another box and a fixture.
            QVERIFY(b->capacityA({}, 1, 2.0f, 0.0f) >= 1);
            QVERIFY(b->capacityB({}, 1, 2.0f, 0.0f) >= 1);
        }
    }
    for (int maxReceivers : db.controllers())
        QVERIFY(maxReceivers > 0);
}

void TestCatalog::sampleCatalogFixtureData()
{
    Database db;
    RecordingReporter rep;
    QVERIFY(db.loadFile(sampleCatalogPath(), &rep));

    const QStringList required = {
        QStringLiteral("Linea Trough Model A Dynaline 6in (100v - 120v)"),
        QStringLiteral("Linea Trough Model B Dynaline 6in (100v - 120v)"),
        QStringLiteral("Stylebar Tunable Dynaline 1ft"),
        QStringLiteral("Stylebar Tint (RGBA/RGBW) Dynaline 1ft"),
        QStringLiteral("Stylebar Tunable Dynaline 4ft"),
        QStringLiteral("Stylebar Tint (RGBA/RGBW) Dynaline 4ft"),
        QStringLiteral("Tintflare Dynaline gen4"),
        QStringLiteral("Linea Flare Dynaline gen4"),
    };
    for (const QString& name : required)
        QVERIFY2(db.fixtureNamed(name), qPrintable(name));
    for (const QString& name : required.mid(0, 2))
        QCOMPARE(db.fixtureNamed(name)->validVoltages, (QList<int>{100, 120}));
    for (const QString& name : required.mid(6, 2)) {
        const DLFixture* g4 = db.fixtureNamed(name);
        for (int v : g4->validVoltages) {
            QVERIFY2(g4->maxCount15AByVoltage.value(v) > 0, qPrintable(name));
            QVERIFY2(g4->maxCount20AByVoltage.value(v) >= g4->maxCount15AByVoltage.value(v),
                     qPrintable(name));
        }
    }

    int pulse = 0;
    int familyOne = 0;
    QSet<QString> names;
    for (DLFixture* f : db.fixtures()) {
        const QByteArray nameBytes = f->name.toUtf8();
        const char* n = nameBytes.constData();
        QVERIFY2(!names.contains(f->name), n);
        names.insert(f->name);
        if (f->name.contains(QLatin1String("Pulse")))
            ++pulse;
        if (f->family == 1)
            ++familyOne;
        QVERIFY2(!f->disabled && f->techType == VxTechDynaline, n);
        QVERIFY2(f->maxTemp > 0 && f->electricalLength > 0, n);
        QVERIFY2(f->resistance > 0 && f->resistance < 0.1, n); // whole fixture, a few tens of milliohms
        QVERIFY2(qAbs(f->fudgeFactor - 1.0) <= 0.1, n);
        QVERIFY2(f->maxVoltageDrop > 0 || f->minVoltage > 0 || f->voltageDropPercent > 0, n);
        QVERIFY2(f->voltageDropPercent > 0 && f->voltageDropPercent < 0.2, n); // a fraction, not percent
        QVERIFY2(f->maxPower > 0 && f->maxFixtureCurrent > 0 && f->maxFixtureLength > 0, n);
        QVERIFY2(f->validVoltages.contains(f->startingVoltage), n);
        QVERIFY2(!f->validSupplies.isEmpty(), n);
        for (const VxPowerSupply* s : f->validSupplies)
            QVERIFY2(s->fixtures.contains(f), n);
        QVERIFY2(f->defaultLeaderCable() && f->defaultJumperCable(), n);
        bool customLeader = false;
        for (const VxJumper* c : f->leaders)
            customLeader = customLeader || (c->hasCustomWires && !c->customWires.isEmpty());
        bool customJumper = false;
        for (const VxJumper* c : f->jumpers)
            customJumper = customJumper || (c->hasCustomWires && !c->customWires.isEmpty());
        QVERIFY2(customLeader && customJumper, n);
        QVERIFY2(!f->validVoltages.isEmpty(), n);
        for (int v : f->validVoltages) {
            QVERIFY2(StandardVoltages.contains(v), n);
            const double pf = f->powerFactorByVoltage.value(v);
            QVERIFY2(pf >= 0.85 && pf <= 0.99, n);
            QVERIFY2(f->powerByVoltage.value(v) > 0, n);
            QVERIFY2(f->maxCountByVoltage.value(v) >= 10 && f->maxCountByVoltage.value(v) <= 60, n);
            QVERIFY2(f->maxCurrentByVoltage.value(v) > 0, n);
            for (int hz : {50, 60}) {
                const FrequencyAttribute a = f->frequencyAttribute(v, hz);
                QVERIFY2(a.inrushCurrent > 0 && a.leakage > 0, n);
            }
        }
    }
    QVERIFY(pulse >= 1);
    QVERIFY(familyOne <= 1);
    // Every link from a supply leads to a listed fixture: the disabled one is linked nowhere.
    for (const DLPowerSupply* s : db.supplies())
        for (const VxFixture* f : s->fixtures)
            QVERIFY2(db.fixtures().contains(f), qPrintable(f->name));
}

void TestCatalog::programCatalogBesideExecutable()
{
    const QString expectedPath = QCoreApplication::applicationDirPath() + QStringLiteral("/vx_config_dl.xml");
    if (!QFile::exists(expectedPath))
        QSKIP("no catalog beside the test executable");
    Database db;
    RecordingReporter rep;
    QVERIFY(db.load(QString::fromLatin1(Database::DefaultFileName), &rep));
    QCOMPARE(db.path(), expectedPath);
    QCOMPARE(rep.texts(), QStringList());
    QCOMPARE(db.fixtures().size(), 13);

    RecordingReporter global;
    ScopedGlobalReporter scope(&global);
    Database* first = Database::instance();
    QVERIFY(first);
    QVERIFY(Database::instance() == first);
    QVERIFY(first->isValid());
    QCOMPARE(first->path(), expectedPath);
    QCOMPARE(global.texts(), QStringList());
}

QTEST_GUILESS_MAIN(TestCatalog)
#include "tst_catalog.moc"
