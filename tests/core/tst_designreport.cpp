// The bill of materials and the design report's content, built from a small configuration of the
// round-number test catalog.
#include "TestSupport.h"

#include "calc/DesignReport.h"
#include "calc/Session.h"
#include "catalog/Database.h"
#include "catalog/Reporter.h"
#include "model/CWidget.h"
#include "model/ConfigDocument.h"

#include <QtTest>

class TestDesignReport : public QObject
{
    Q_OBJECT

private slots:
    void csvQuoting_data();
    void csvQuoting();
    void billOfMaterials();
    void reportContent();

private:
    // enabler -> branch (Above Ground) -> box -> {leader -> Plain -> jumper -> Plain, Count Limited,
    // branch (Plenum, 12.25 ft) -> box}.
    void buildPlan(Session& s, const Database& db, CWidget** lastPlain);
};

void TestDesignReport::buildPlan(Session& s, const Database& db, CWidget** lastPlain)
{
    s.header().fixture = QStringLiteral("Plain");
    s.reset();
    ConfigDocument& doc = s.document();
    DLFixture* plain = db.fixtureNamed(QStringLiteral("Plain"));
    CWidget* first = doc.addJunctionBox();
    QVERIFY(first);
    QVERIFY(doc.addLeader(plain));
    doc.addFixture(plain);
    doc.addJumper(plain);
    *lastPlain = doc.addFixture(plain);
    QVERIFY(*lastPlain);
    doc.setCurrent(first);
    QVERIFY(doc.addFixture(db.fixtureNamed(QStringLiteral("Count Limited"))));
    doc.setCurrent(first);
    CWidget* box = doc.addJunctionBox();
    QVERIFY(box);
    auto* wire = static_cast<BranchWireWidget*>(box->parentWidget());
    wire->setLocation(QStringLiteral("Plenum"));
    wire->setLength(12.25);
}

void TestDesignReport::csvQuoting_data()
{
    QTest::addColumn<QString>("field");
    QTest::addColumn<QString>("written");
    QTest::newRow("plain") << "Leader 5ft"
                           << "Leader 5ft";
    QTest::newRow("comma") << "Box, large"
                           << "\"Box, large\"";
    QTest::newRow("quote") << "12\" wire"
                           << "\"12\"\" wire\"";
    QTest::newRow("line break") << "a\nb"
                                << "\"a\nb\"";
    QTest::newRow("carriage return") << "a\rb"
                                     << "\"a\rb\"";
    QTest::newRow("empty") << ""
                           << "";
}

void TestDesignReport::csvQuoting()
{
    QFETCH(QString, field);
    QFETCH(QString, written);
    QCOMPARE(DesignReport::csvField(field), written);
}

void TestDesignReport::billOfMaterials()
{
    Database db;
    RecordingReporter messages;
    QVERIFY(db.loadFile(testDataPath(QStringLiteral("calc/analysis.xml")), &messages));
    Session s(db);
    CWidget* lastPlain = nullptr;
    buildPlan(s, db, &lastPlain);
    // Kinds in their order, items by first placement; the two branch wires differ by location.
    const QByteArray expected = "Kind,Catalog Name,Type,Gauge,Location,Quantity,Total Length (ft)\r\n"
                                "Enabler,Signal Feeder Pro,,,,1,\r\n"
                                "Fixture,Count Limited,,,,1,\r\n"
                                "Fixture,Plain,,,,2,\r\n"
                                "Leader,Plain,Leader 5ft,,,1,5\r\n"
                                "Jumper,Plain,Jumper 1ft,,,1,1\r\n"
                                "Branch Wire,BranchWire,,12,Above Ground,1,10\r\n"
                                "Branch Wire,BranchWire,,12,Plenum,1,12.3\r\n"
                                "Junction Box,Receiver Box,,,,2,\r\n";
    QCOMPARE(DesignReport::bomCsv(DesignReport::billOfMaterials(s.document().root())), expected);

    // Pieces of one item add up; a custom cable is listed by its gauge.
    ConfigDocument& doc = s.document();
    DLFixture* plain = db.fixtureNamed(QStringLiteral("Plain"));
    doc.setCurrent(lastPlain);
    doc.addJumper(plain);
    auto* custom = static_cast<CableWidget*>(doc.addJumper(plain));
    custom->setType(QStringLiteral("Custom Jumper"));
    custom->setGauge(QStringLiteral("18"));
    custom->setLength(7);
    const QList<DesignReport::BomRow> rows = DesignReport::billOfMaterials(doc.root());
    QStringList jumpers;
    for (const auto& row : rows)
        if (row.kind == QLatin1String("Jumper"))
            jumpers.append(DesignReport::bomCells(row).join(QLatin1Char('|')));
    QCOMPARE(jumpers, (QStringList{QStringLiteral("Jumper|Plain|Jumper 1ft|||2|2"),
                                   QStringLiteral("Jumper|Plain|Custom Jumper|18||1|7")}));
}

void TestDesignReport::reportContent()
{
    Database db;
    RecordingReporter messages;
    QVERIFY(db.loadFile(testDataPath(QStringLiteral("calc/analysis.xml")), &messages));
    Session s(db);
    CWidget* lastPlain = nullptr;
    buildPlan(s, db, &lastPlain);
    s.header().controller = QStringLiteral("Large");
    s.analyze();
    DesignReport::Source source;
    source.projectFile = QStringLiteral("/plans/site,b.rpproj");
    source.date = QDate(2026, 3, 4);
    const DesignReport::Content c =
        DesignReport::build(source, s.inputs(), s.result(), s.document().root(), db);

    QMap<QString, QString> header;
    for (const auto& field : c.header)
        header.insert(field.first, field.second);
    QCOMPARE(header.value(QStringLiteral("Project")), QStringLiteral("site,b.rpproj"));
    QCOMPARE(header.value(QStringLiteral("Date")), QStringLiteral("2026-03-04"));
    QCOMPARE(header.value(QStringLiteral("Enabler")), QStringLiteral("Signal Feeder Pro"));
    QCOMPARE(header.value(QStringLiteral("Fixture")), QStringLiteral("Plain"));
    QCOMPARE(header.value(QStringLiteral("Line voltage")), QStringLiteral("120 V"));
    QCOMPARE(header.value(QStringLiteral("Frequency")), QStringLiteral("60 Hz"));
    QCOMPARE(header.value(QStringLiteral("Circuit load")), QStringLiteral("15 A (derated to 12 A)"));
    QCOMPARE(header.value(QStringLiteral("Controller")), QStringLiteral("Large"));
    QCOMPARE(header.value(QStringLiteral("Catalog version")), QStringLiteral("calc-test-1"));
    QVERIFY(header.value(QStringLiteral("Program version")).startsWith(QStringLiteral("Runplan 3.17.0")));

    // Three runs below the 10 ft wire (24 W / 120 V x 0.02 ohm): the Count Limited fixture, the
    // chain (0.0625 + 0.001 + 0.125 + 24 / 120 x 0.05 + 0.004 V) and the empty box on the Plenum wire.
    QCOMPARE(c.runs.size(), 3);
    QCOMPARE(c.runs.at(1).cells, (QStringList{"2", "Fixture #3 (Plain)", "2", "24", "24", "0.25", "0.2025",
                                              "0.16875", "119.797", "PASS"}));
    QCOMPARE(c.runs.at(1).limits,
             QStringLiteral("Limits: fixture count at most 100 fixtures; run length at most "
                            "500 ft; voltage drop at most 50 V"));
    QCOMPARE(c.runs.at(2).cells.at(1), QStringLiteral("Junction Box #2 (Receiver Box)"));
    QVERIFY(c.pass);
    QCOMPARE(c.verdict, QStringLiteral("PASS"));
    QCOMPARE(c.totals.at(0), qMakePair(QStringLiteral("Total length"), QStringLiteral("40.25 ft")));
    // Inrush 3 x 0.5 + 2 A, leakage (3 x 10 + 100) uA.
    QVERIFY(c.totals.contains(qMakePair(QStringLiteral("Inrush current"), QStringLiteral("3.5 A"))));
    QVERIFY(c.totals.contains(qMakePair(QStringLiteral("Leakage current"), QStringLiteral("0.00013 A"))));
    QCOMPARE(c.bom.rows.size(), 8);

    // A failing run carries the check's own text.
    s.header().lineVoltage = QStringLiteral("277");
    DLFixture* drop = db.fixtureNamed(QStringLiteral("Drop Limited"));
    s.document().setCurrent(lastPlain);
    s.document().addFixture(drop);
    s.analyze();
    const DesignReport::Content failing =
        DesignReport::build(source, s.inputs(), s.result(), s.document().root(), db);
    QCOMPARE(failing.verdict, QStringLiteral("FAIL"));
    QCOMPARE(failing.runs.at(1).cells.last(), QStringLiteral("FAIL"));
    QCOMPARE(
        failing.runs.at(1).messages,
        QStringList{QStringLiteral("Total voltage drop exceeded the fixture type's maximum of 0.25 volts.")});
}

QTEST_GUILESS_MAIN(TestDesignReport)
#include "tst_designreport.moc"
