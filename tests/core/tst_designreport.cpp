// The bill of materials and the design report's content, built from a small configuration of the
// round-number test catalog.
#include "CatalogFixture.h"

#include "calc/DesignReport.h"

namespace
{

// The report's content as text, one line for each header field, run (with its lines below it),
// total and circuit message; the program version, which moves with every release, is left out.
QByteArray contentText(const DesignReport::Content& c)
{
    QStringList lines{c.title, c.verdict};
    for (const auto& field : c.header)
        if (field.first != QLatin1String("Program version"))
            lines << field.first + QStringLiteral(": ") + field.second;
    lines << c.runColumns.join(QLatin1Char('|'));
    for (const auto& run : c.runs)
        lines << run.cells.join(QLatin1Char('|')) << run.limits << run.messages;
    for (const auto& total : c.totals)
        lines << total.first + QStringLiteral(": ") + total.second;
    lines << c.circuitMessages;
    return (lines.join(QLatin1Char('\n')) + QLatin1Char('\n')).toUtf8();
}

} // namespace

class TestDesignReport : public QObject
{
    Q_OBJECT

private slots:
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

void TestDesignReport::csvQuoting()
{
    const QList<QPair<QString, QString>> fields{{"Leader 5ft", "Leader 5ft"}, {"Box, large", "\"Box, large\""},
                                                {"12\" wire", "\"12\"\" wire\""}, {"a\nb", "\"a\nb\""},
                                                {"a\rb", "\"a\rb\""}, {"", ""}};
    for (const auto& [field, written] : fields)
        QCOMPARE(DesignReport::csvField(field), written);
}

void TestDesignReport::billOfMaterials()
{
    CatalogSession f(QStringLiteral("calc/analysis.xml"));
    QVERIFY(f.ready());
    Session& s = *f.session;
    const Database& db = f.db;
    CWidget* lastPlain = nullptr;
    buildPlan(s, db, &lastPlain);
    // Kinds in their order, items by first placement; the two branch wires differ by location.
    COMPARE_GOLDEN(DesignReport::bomCsv(DesignReport::billOfMaterials(s.document().root())), "calc/bom.csv");

    // Pieces of one item add up; a custom cable is listed by its gauge.
    ConfigDocument& doc = s.document();
    DLFixture* plain = db.fixtureNamed(QStringLiteral("Plain"));
    doc.setCurrent(lastPlain);
    doc.addJumper(plain);
    auto* custom = static_cast<CableWidget*>(doc.addJumper(plain));
    custom->setType(QStringLiteral("Custom Jumper"));
    custom->setGauge(QStringLiteral("18"));
    custom->setLength(7);
    COMPARE_GOLDEN(DesignReport::bomCsv(DesignReport::billOfMaterials(doc.root())), "calc/bom_pieces.csv");
}

void TestDesignReport::reportContent()
{
    CatalogSession f(QStringLiteral("calc/analysis.xml"));
    QVERIFY(f.ready());
    Session& s = *f.session;
    Database& db = f.db;
    CWidget* lastPlain = nullptr;
    buildPlan(s, db, &lastPlain);
    s.header().controller = QStringLiteral("Large");
    s.analyze();
    DesignReport::Source source;
    source.projectFile = QStringLiteral("/plans/site,b.rpproj");
    source.date = QDate(2026, 3, 4);
    const DesignReport::Content c =
        DesignReport::build(source, s.inputs(), s.result(), s.document().root(), db);

    QVERIFY(std::any_of(c.header.begin(), c.header.end(), [](const auto& field) {
        return field.first == QLatin1String("Program version") && field.second.startsWith("Runplan 3.17.0");
    }));
    // Three runs below the 10 ft wire (24 W / 120 V x 0.02 ohm): the Count Limited fixture, the
    // chain (0.0625 + 0.001 + 0.125 + 24 / 120 x 0.05 + 0.004 V) and the empty box on the Plenum wire.
    // Inrush 3 x 0.5 + 2 A, leakage (3 x 10 + 100) uA.
    QVERIFY(c.pass);
    COMPARE_GOLDEN(contentText(c), "calc/report_pass.txt");
    QCOMPARE(c.bom.rows.size(), 8);

    // A failing run carries the check's own text.
    s.header().lineVoltage = QStringLiteral("277");
    DLFixture* drop = db.fixtureNamed(QStringLiteral("Drop Limited"));
    s.document().setCurrent(lastPlain);
    s.document().addFixture(drop);
    s.analyze();
    const DesignReport::Content failing =
        DesignReport::build(source, s.inputs(), s.result(), s.document().root(), db);
    QVERIFY(!failing.pass && !failing.runs.at(1).pass);
    COMPARE_GOLDEN(contentText(failing), "calc/report_fail.txt");
}

QTEST_GUILESS_MAIN(TestDesignReport)
#include "tst_designreport.moc"
