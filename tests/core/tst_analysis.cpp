// Run analysis and limit checks against a small catalog with round numbers. The expected figures
// are worked out by hand in the comments: a check fixture is 0.5 ohm and 4 ft; at 120 V it draws
// 12 W at power factor 0.8 (0.125 A), at 277 V 24 W at 0.9 (0.0962696 A). In a chain of n such
// fixtures the drop is 12/96 * 0.5 * n(n+1)/2 at 120 V and 24/249.3 * 0.5 * n(n+1)/2 at 277 V.
#include "CatalogFixture.h"

#include "calc/Analysis.h"

namespace
{

struct Harness : CatalogSession {
    Harness() : CatalogSession(QStringLiteral("calc/analysis.xml")) {}
    HeaderValues& header() { return session->header(); }
    DLPowerSupply* enabler() { return db.supplyNamed(QStringLiteral("Signal Feeder Pro")); }

    // A fresh canvas with n fixtures of one type chained below the enabler, analysed at volts.
    const AnalysisResult& chain(const QString& fixture, int n, int volts = 120)
    {
        header().fixture = fixture;
        header().lineVoltage = QString::number(volts);
        session->reset();
        add(fixture, n);
        return analyze();
    }
    void add(const QString& fixture, int n)
    {
        for (int i = 0; i < n; ++i)
            doc().addFixture(db.fixtureNamed(fixture));
    }
    const AnalysisResult& analyze()
    {
        session->analyze();
        return session->result();
    }
};

} // namespace

class TestAnalysis : public QObject
{
    Q_OBJECT

private slots:
    void checksFireAlone_data();
    void checksFireAlone();
    void summaryAndTotals();
    void lookupsFloorAndNearest();
    void outputModesCompound();
    void gen4BreakerTables_data();
    void gen4BreakerTables();
    void receiverAndFamilyChecks();
    void runLengthLimits();
    void cablesAndSharedComponents();
    void feedwiseWiringAndModes();
    void inputsFromHeaderChoices();
    void deepRunWithoutRecursion();
    void componentFiguresByHand();
    void componentFiguresLeaveOutputsUnchanged();
};

void TestAnalysis::checksFireAlone_data()
{
    QTest::addColumn<QStringList>("row"); // fixture, volts, passing, run message, circuit message
    for (const QString& line : dataLines(QStringLiteral("calc/checks.txt")))
        QTest::newRow(qPrintable(line.section('|', 0, 1))) << dataFields(line);
}

void TestAnalysis::checksFireAlone()
{
    QFETCH(QStringList, row);
    const QString fixture = row.value(0);
    const int volts = row.value(1).toInt();
    const int passing = row.value(2).toInt();
    const QString runMessage = row.value(3).isEmpty() ? QString() : '\n' + row.value(3);
    const QString circuitMessage = row.value(4).isEmpty() ? QString() : '\n' + row.value(4);

    Harness h;
    QVERIFY(h.ready());
    h.header().maxCircuitLoad = QStringLiteral("Other");
    h.header().customLoad = 1;

    const AnalysisResult& ok = h.chain(fixture, passing, volts);
    QVERIFY2(ok.pass, qPrintable(ok.summaryLine + ok.runMessages.join(QString())));
    QVERIFY(ok.runMessages.isEmpty());
    QCOMPARE(ok.circuitMessages, QString());

    const AnalysisResult& bad = h.chain(fixture, passing + 1, volts);
    QVERIFY(!bad.pass);
    QCOMPARE(bad.runMessages, runMessage.isEmpty() ? QStringList() : QStringList{runMessage});
    QCOMPARE(bad.circuitMessages, circuitMessage);
    QVERIFY(bad.summaryLine.contains(circuitMessage + QStringLiteral(" R = ")));
    QCOMPARE(bad.runs.size(), 1);
    QCOMPARE(bad.runs.first().faulty, !runMessage.isEmpty());
    // Per-run texts come first and red, then the summary, red as well.
    const auto lines = bad.logLines();
    QCOMPARE(lines.size(), bad.runMessages.size() + 1);
    QCOMPARE(lines.last(), qMakePair(bad.summaryLine, true));
}

void TestAnalysis::summaryAndTotals()
{
    Harness h;
    QVERIFY(h.ready());

    // Three fixtures at 120 V: 36 W, 3 x 0.125 A, drop 0.0625 + 0.125 + 0.1875, R 3 x 0.5.
    // Inrush 3 x 0.5 + 2 A; leakage (3 x 10 + 100) microamps.
    const AnalysisResult& r120 = h.chain(QStringLiteral("Plain"), 3);
    QCOMPARE(r120.summaryLine, QStringLiteral("Length = 12 Power = 36 Current = 0.375 VDrop = 0.375"
                                              "\nTotal Inrush Current = 3.5 amps"
                                              "\nTotal Current Leakage = 0.00013 amps R = 1.5"));
    QCOMPARE(r120.powerText, QStringLiteral("36.0"));
    QCOMPARE(r120.currentText, QStringLiteral("0.4"));
    QCOMPARE(r120.derateLabel, QStringLiteral("(derated to 12 amps)"));
    QCOMPARE(r120.fixtureLabel, QStringLiteral("Total Fixtures: 3"));
    QCOMPARE(r120.logLines(), (QList<QPair<QString, bool>>{{r120.summaryLine, false}}));
    QVERIFY(r120.pass);
    QVERIFY(h.doc().passFlag());

    // 277 V: 72 W, 3 x 24 / 249.3 A; the drop is the same figure times R / 2 * 2. Inrush 3 x 1 + 4.
    const AnalysisResult& r277 = h.chain(QStringLiteral("Plain"), 3, 277);
    QCOMPARE(r277.summaryLine, QStringLiteral("Length = 12 Power = 72 Current = 0.288809 VDrop = 0.288809"
                                              "\nTotal Inrush Current = 7 amps"
                                              "\nTotal Current Leakage = 0.00026 amps R = 1.5"));

    // 50 Hz: the fixture has no figures for it, so neither line is written.
    h.header().frequency = QStringLiteral("50 Hz");
    QCOMPARE(h.analyze().summaryLine,
             QStringLiteral("Length = 12 Power = 72 Current = 0.288809 VDrop = 0.288809 R = 1.5"));
    h.header().frequency = QStringLiteral("60 Hz");

    // "Other" at 0 V: default power (10 W), no drop and no current, as the formulas are guarded.
    h.header().lineVoltage = QStringLiteral("Other");
    h.header().customVoltage = 0;
    QCOMPARE(h.analyze().summaryLine, QStringLiteral("Length = 12 Power = 30 Current = 0 VDrop = 0 R = 1.5"));
    QVERIFY(h.session->result().pass);

    // The enabler alone: no fixtures, no inrush or leakage.
    const AnalysisResult& empty = h.chain(QStringLiteral("Plain"), 0);
    QCOMPARE(empty.summaryLine, QStringLiteral("Length = 0 Power = 0 Current = 0 VDrop = 0 R = 0"));
    QCOMPARE(empty.fixtureLabel, QStringLiteral("Total Fixtures: 0"));
    QCOMPARE(formatNumber(1234567.0), QStringLiteral("1.23457e+06"));
}

void TestAnalysis::lookupsFloorAndNearest()
{
    Harness h;
    QVERIFY(h.ready());
    // 240 V: the power comes from the 120 V entry (greatest not above), the power factor and the
    // maximum count from the nearer 277 V entry: 2 x 12 W at 0.9 -> 24 W, 2 x 12 / 216 A.
    const AnalysisResult& r = h.chain(QStringLiteral("Plain"), 2, 240);
    QCOMPARE(r.totalPower, 24.0);
    QCOMPARE(formatNumber(r.totalCurrent), QStringLiteral("0.111111"));
    QCOMPARE(r.runs.first().maxFixtures, 200);
    QCOMPARE(r.runs.first().runVoltage, 240);
    // 100 V lies below every power entry: no power at all; the nearest count entry is 120 V's.
    const AnalysisResult& low = h.chain(QStringLiteral("Plain"), 2, 100);
    QCOMPARE(low.totalPower, 0.0);
    QCOMPARE(low.totalVoltageDrop, 0.0);
    QCOMPARE(low.totalResistance, 0.0); // resistance counts only where power flows
    QCOMPARE(low.runs.first().maxFixtures, 100);
}

void TestAnalysis::outputModesCompound()
{
    Harness h;
    QVERIFY(h.ready());
    DLFixture* mode = h.db.fixtureNamed(QStringLiteral("Mode Test")); // 1 ohm, 11 W at power factor 1
    struct Case {
        int mode;
        int voltage1, voltage2; // run voltage with one and with two fixtures
        double drop1, drop2;
    };
    // Each fixture takes the voltage handed up from the one below: two mode-1 fixtures give
    // 120 - 10 = 110, then 110 - 0.22 - 10 = 99.78.
    const Case cases[] = {
        {0, 120, 120, 11.0 / 120, 11.0 / 120 + 22.0 / 120},
        {1, 110, 99, 0.22, 0.22 + 22.0 / 99.78 * 2.2},
        {2, 108, 97, 22.0 / 108, 22.0 / 108 + 44.0 / ((108 - 22.0 / 108) * 0.9)},
        {3, 110, 100, 11.0 / 110 * 1.414213562373095, 0.1414213562373095 + 22.0 / 100 * 1.414213562373095},
        {4, 108, 97, 22.0 / 108, 22.0 / 108 + 44.0 / ((108 - 22.0 / 108) * 0.9)},
        {7, 120, 120, 11.0 / 120, 11.0 / 120 + 22.0 / 120},
    };
    for (const Case& c : cases) {
        mode->safetyRequired = c.mode;
        const RunFigures one = h.chain(mode->name, 1).runs.first();
        QCOMPARE(one.runVoltage, c.voltage1);
        QCOMPARE(one.voltageDrop, c.drop1);
        const RunFigures two = h.chain(mode->name, 2).runs.first();
        QCOMPARE(two.runVoltage, c.voltage2);
        QCOMPARE(two.voltageDrop, c.drop2);
    }
    mode->safetyRequired = 0;
    mode->fudgeFactor = 2.0;
    QCOMPARE(h.chain(mode->name, 1).totalVoltageDrop, 22.0 / 120);
    // The minimum of 110 V against the line voltage in mode 4, against the run voltage (108) in mode 2.
    QVERIFY(h.chain(QStringLiteral("Min Voltage Mode 4"), 1).pass);
    QCOMPARE(h.chain(QStringLiteral("Min Voltage Mode 2"), 1).runMessages,
             QStringList{QStringLiteral("\nVoltage dropped below the fixture type's minimum of 110 volts.")});
}

void TestAnalysis::gen4BreakerTables_data()
{
    QTest::addColumn<QStringList>("row"); // enabler, load, volts, fixtures, maximum
    for (const QString& line : dataLines(QStringLiteral("calc/gen4-breakers.txt")))
        QTest::newRow(qPrintable(line)) << dataFields(line);
}

void TestAnalysis::gen4BreakerTables()
{
    QFETCH(QStringList, row);
    const int fixtures = row.value(3).toInt();
    const int maximum = row.value(4).toInt();

    Harness h;
    QVERIFY(h.ready());
    h.header().supply = row.value(0);
    h.header().maxCircuitLoad = row.value(1).section(' ', 0, 0);
    h.header().customLoad = row.value(1).section(' ', 1).toInt();
    const AnalysisResult& r = h.chain(QStringLiteral("Tintflare Dynaline gen4"), fixtures, row.value(2).toInt());
    QCOMPARE(r.runs.first().maxFixtures, maximum);
    const bool over = maximum >= 1 && fixtures > maximum;
    QCOMPARE(r.pass, !over);
    if (over)
        QCOMPARE(
            r.runMessages.first(),
            QStringLiteral("\nFixture count in current run (%1) exceeded the fixture type's maximum (%2).")
                .arg(fixtures)
                .arg(maximum));
    // A type without a maximum switches the count check off for the whole run, whatever the
    // maximum of the other types in it.
    if (maximum == 0) {
        h.add(QStringLiteral("Count Limited"), 4);
        const AnalysisResult& mixed = h.analyze();
        QCOMPARE(mixed.runs.first().maxFixtures, 0);
        QVERIFY(mixed.runMessages.isEmpty());
    }
}

void TestAnalysis::receiverAndFamilyChecks()
{
    Harness h;
    QVERIFY(h.ready());

    // Two receivers: enabler -> branch -> receiver -> branch -> box -> branch -> receiver.
    h.header().controller = QStringLiteral("Small");
    h.feedwiseReceiver();
    QVERIFY(h.analyze().pass); // one receiver: the controller's maximum itself
    h.doc().addJunctionBox();
    h.doc().addReceiver();
    QCOMPARE(h.analyze().circuitMessages,
             QStringLiteral("\nReceiver count (2) exceeded this controller's maximum (1)."));
    h.header().controller = QStringLiteral("Unknown");
    QCOMPARE(h.analyze().circuitMessages,
             QStringLiteral("\nReceiver count (2) exceeded this controller's maximum (0)."));
    h.header().controller = QStringLiteral("Large");
    QVERIFY(h.analyze().pass);
    // An enabler that cannot feed receivers has no controller limit.
    h.header().controller = QStringLiteral("Small");
    h.header().supply = QStringLiteral("Line Voltage");
    QVERIFY(h.analyze().circuitMessages.isEmpty());
    h.header().supply = QStringLiteral("Signal Feeder Pro");

    // Family 1: the fixtures below the Feedwise enabler against its own maximum of 3, at both voltages.
    h.header().controller = QStringLiteral("Large");
    h.header().fixture = QStringLiteral("Family One");
    for (const QString& volts : {QStringLiteral("120"), QStringLiteral("277")}) {
        h.header().lineVoltage = volts;
        h.feedwiseReceiver();
        h.add(QStringLiteral("Family One"), 3);
        QVERIFY(h.analyze().pass);
        h.add(QStringLiteral("Family One"), 1);
        QCOMPARE(h.analyze().circuitMessages,
                 QStringLiteral(
                     "\nDynaline run ending at fixture 4 exceeds its enabler's maximum fixture count."));
    }

    // Dynaline length from the receiver: 25 fixtures are 100 ft, the first receiver's maximum.
    h.header().fixture = QStringLiteral("Plain");
    h.header().lineVoltage = QStringLiteral("120");
    h.db.receiverNamed(QStringLiteral("Rx"))->maxElectricalLengthPerRun = 1000; // the run limit stays out
    const CWidget* receiver = h.feedwiseReceiver();
    h.add(QStringLiteral("Plain"), 25);
    QVERIFY(h.analyze().pass);
    h.add(QStringLiteral("Plain"), 1);
    const AnalysisResult& r = h.analyze();
    QCOMPARE(r.circuitMessages, QStringLiteral("\nDynaline length from Feedwise Receiver #1 = 104"));
    QCOMPARE(r.receiverLengths, (QList<QPair<const CWidget*, double>>{{receiver, 104.0}}));
    // The enabler's figure also counts the 10 ft branch wire above the receiver.
    QCOMPARE(r.dynaLineLengths.value(receiver), 104.0);
    QCOMPARE(r.dynaLineLengths.value(h.root()), 114.0);
    QCOMPARE(receiver->dynaLineLength(), 104.0);
}

void TestAnalysis::runLengthLimits()
{
    Harness h;
    QVERIFY(h.ready());
    DLPowerSupply* enabler = h.enabler();

    // The enabler's per-run limit: 3 fixtures are 12 ft.
    enabler->maxElectricalLengthPerRun = 12;
    QVERIFY(h.chain(QStringLiteral("Plain"), 3).pass);
    enabler->maxElectricalLengthPerRun = 11.5;
    const AnalysisResult& r = h.chain(QStringLiteral("Plain"), 3);
    QCOMPARE(r.circuitMessages, QStringLiteral("\nDynaline run ending at fixture #3 is too long (12 ft)."));
    QCOMPARE(r.flagged, (QSet<const CWidget*>{h.root()}));
    QVERIFY(h.doc().errorMarks().contains(h.root()));

    // A run ending at a jumper: 4 ft of fixture and 1 ft of jumper.
    enabler->maxElectricalLengthPerRun = 4.5;
    h.chain(QStringLiteral("Plain"), 1);
    h.doc().addJumper(h.db.fixtureNamed(QStringLiteral("Plain")));
    QCOMPARE(h.analyze().circuitMessages,
             QStringLiteral("\nDynaline run ending at jumper #1 is too long (5 ft)."));

    // The selected fixture's family decides the table, the placed fixture's family the report.
    h.header().fixture = QStringLiteral("Family One");
    QVERIFY(h.analyze().pass);
    QVERIFY(h.session->result().tooLong.isEmpty());
    h.header().fixture = QStringLiteral("Plain");

    // Without a total limit the too-long runs are not reported, though still marked.
    enabler->maxElectricalLength = 0;
    QVERIFY(h.analyze().pass);
    QCOMPARE(h.session->result().flagged.size(), 1);
    enabler->maxElectricalLength = 40;

    // The total: 10 fixtures are 40 ft, 11 are over.
    enabler->maxElectricalLengthPerRun = 500;
    QVERIFY(h.chain(QStringLiteral("Plain"), 10).pass);
    QCOMPARE(h.chain(QStringLiteral("Plain"), 11).circuitMessages,
             QStringLiteral("\nTotal Dynaline length of 44 exceeds total limit of 40."));
    enabler->maxElectricalLength = 1000;

    // Below a receiver its own per-run limit (50 ft) holds for the whole run, branch wire included.
    CWidget* receiver = h.feedwiseReceiver();
    h.add(QStringLiteral("Plain"), 10); // 10 + 40 ft
    QVERIFY(h.analyze().pass);
    h.add(QStringLiteral("Plain"), 1);
    const AnalysisResult& rr = h.analyze();
    QCOMPARE(rr.circuitMessages, QStringLiteral("\nDynaline run ending at fixture #11 is too long (54 ft)."));
    QCOMPARE(rr.flagged, (QSet<const CWidget*>{receiver}));
}

void TestAnalysis::cablesAndSharedComponents()
{
    Harness h;
    QVERIFY(h.ready());
    DLFixture* plain = h.db.fixtureNamed(QStringLiteral("Plain"));

    // Enabler -> leader -> fixture. The default leader is the fixed 5 ft one (0.01 ohm/ft).
    h.chain(plain->name, 0);
    auto* leader = static_cast<LeaderWidget*>(h.doc().addLeader(plain));
    h.doc().addFixture(plain);
    QCOMPARE(leader->type(), QStringLiteral("Leader 5ft"));
    const AnalysisResult& fixed = h.analyze();
    QCOMPARE(fixed.totalLength, 9.0);
    QCOMPARE(fixed.totalResistance, 0.5 + 0.05);
    QCOMPARE(fixed.totalVoltageDrop, 0.0625 + 12.0 / 120 * 0.05);
    // Cut to length, it takes the resistance of the chosen wire: 16 AWG 0.004, 14 AWG 0.003 ohm/ft.
    leader->setType(QStringLiteral("Custom Leader"));
    leader->setLength(20);
    leader->setGauge(QStringLiteral("16"));
    QCOMPARE(h.analyze().totalResistance, 0.5 + 0.08);
    leader->setGauge(QStringLiteral("14"));
    QCOMPARE(h.analyze().totalResistance, 0.5 + 0.06);
    leader->setGauge(QStringLiteral("none")); // unknown: the cable's default wire, 16 AWG
    QCOMPARE(h.analyze().totalResistance, 0.5 + 0.08);
    QCOMPARE(h.session->result().totalLength, 24.0);

    // Two runs share the 10 ft branch wire (12 AWG, 0.02 ohm) and the junction box:
    // enabler -> branch -> box -> {fixture -> fixture, fixture}.
    h.session->reset();
    const CWidget* box = h.doc().addJunctionBox();
    h.doc().addFixture(plain);
    h.doc().addFixture(plain);
    h.doc().setCurrent(box);
    h.doc().addFixture(plain);
    const AnalysisResult& r = h.analyze();
    QCOMPARE(r.runs.size(), 2);
    QCOMPARE(r.runs.at(0).length + r.runs.at(1).length, 14.0 + 18.0);
    QCOMPARE(r.totalLength, 22.0);
    QCOMPARE(r.totalPower, 36.0);
    QCOMPARE(r.totalCurrent, 0.375);
    // The larger run: 0.0625 + 0.125 in the fixtures, 24 W / 120 V x 0.02 ohm in the branch wire.
    QCOMPARE(r.totalVoltageDrop, 0.1875 + 0.004);
    QCOMPARE(r.totalResistance, 1.02);
    QCOMPARE(r.dynaLineLengths.value(h.root()), 22.0);
}

void TestAnalysis::feedwiseWiringAndModes()
{
    Harness h;
    QVERIFY(h.ready());
    h.db.receiverNamed(QStringLiteral("Rx"))->maxElectricalLengthPerRun = 1000; // the run limit stays out
    CWidget* receiver = h.feedwiseReceiver();
    auto* wire = static_cast<BranchWireWidget*>(receiver->parentWidget());
    QCOMPARE(wire->location(), QStringLiteral("Above Ground")); // 0.005 per foot

    wire->setLength(199);
    AnalysisResult r = h.analyze();
    QVERIFY(r.feedwiseEnabled);
    QCOMPARE(r.feedwiseText, QStringLiteral("199.0"));
    QVERIFY(r.feedwiseLoad < 1.0);
    QVERIFY(r.feedwiseOverLimit.isEmpty());
    wire->setLength(201); // load 1.005: the enabler above the wire is over, the receiver below is not
    r = h.analyze();
    QCOMPARE(r.feedwiseOverLimit, (QSet<const CWidget*>{h.root()}));
    QVERIFY(h.doc().errorMarks().contains(h.root()));
    QVERIFY(r.pass);                                   // display only
    h.header().fixture = QStringLiteral("Family One"); // no supply mark for family 1
    QVERIFY(!h.analyze().errorMarks.contains(h.root()));
    h.header().fixture = QStringLiteral("Plain");
    wire->setLocation(QStringLiteral("Tunnel")); // not in the catalog: 294 ft is the limit
    wire->setLength(290);
    QVERIFY(h.analyze().feedwiseOverLimit.isEmpty());
    wire->setLength(294); // a load of 1 is over
    QCOMPARE(h.analyze().feedwiseOverLimit.size(), 1);

    // A mixed tree: receivers and branch wires in either mode agree with the components' own rules.
    wire->setLocation(QStringLiteral("Plenum"));
    wire->setLength(30);
    h.doc().setCurrent(receiver);
    h.doc().addJunctionBox(); // Feedwise branch, box
    const CWidget* second = h.doc().addReceiver(); // Feedwise branch, receiver
    h.doc().addJunctionBox();                      // Feedwise branch, box
    // Branch wires left undefined take Dynaline below a receiver and below its fixture.
    h.doc().setCurrent(receiver);
    h.doc().insert(createComponent(&h.db, ItemBranchWire, QString(), 0));
    h.doc().setCurrent(receiver);
    h.doc().addFixture(h.db.fixtureNamed(QStringLiteral("Plain")));
    h.doc().insert(createComponent(&h.db, ItemBranchWire, QString(), 0));
    r = h.analyze();
    QCOMPARE(r.feedwiseLength, 30.0 + 3 * 10.0);
    QCOMPARE(r.receiverLengths.size(), 2);
    QCOMPARE(r.receiverLengths.at(0).first, receiver);
    QCOMPARE(r.receiverLengths.at(1).first, second);
    // Plenum: 30 x 0.01; the Above Ground branches 3 x 10 x 0.005.
    QCOMPARE(r.feedwiseLoad, 0.3 + 0.15);
}

void TestAnalysis::inputsFromHeaderChoices()
{
    Harness h;
    QVERIFY(h.ready());
    HeaderValues header;
    header.supply = QStringLiteral("Line Voltage");
    header.fixture = QStringLiteral("No Such Fixture");
    header.lineVoltage = QStringLiteral("Other");
    header.customVoltage = 230;
    header.maxCircuitLoad = QStringLiteral("Other");
    header.customLoad = 25;
    header.frequency = QStringLiteral("50 Hz");
    header.controller = QStringLiteral("Small");
    CircuitInputs in = inputsFromHeader(header, h.db);
    QCOMPARE(in.lineVoltage, 230.0);
    QCOMPARE(in.maxCircuitLoad, 25.0);
    QCOMPARE(in.deratedLoad(), 20.0);
    QCOMPARE(in.frequency, 50);
    QCOMPARE(in.controller, QStringLiteral("Small"));
    QCOMPARE(in.enabler, h.db.supplyNamed(QStringLiteral("Line Voltage")));
    QCOMPARE(in.selectedFixture, h.db.fixtureNamed(QStringLiteral("Plain"))); // the first listed
    header.fixture = QStringLiteral("Power Limited");
    header.lineVoltage = QStringLiteral("277");
    header.maxCircuitLoad = QStringLiteral("20");
    in = inputsFromHeader(header, h.db);
    QCOMPARE(in.selectedFixture, h.db.fixtureNamed(QStringLiteral("Power Limited")));
    QCOMPARE(in.lineVoltage, 277.0);
    QCOMPARE(in.maxCircuitLoad, 20.0);
    header.supply = QStringLiteral("Unknown");
    QVERIFY(!inputsFromHeader(header, h.db).enabler);
}

void TestAnalysis::deepRunWithoutRecursion()
{
    Harness h;
    QVERIFY(h.ready());
    h.db.fixtureNamed(QStringLiteral("Plain"))->maxVoltageDrop = 0; // keep the report short
    const AnalysisResult& r = h.chain(QStringLiteral("Plain"), 5000);
    QCOMPARE(r.fixtureCount, 5000);
    QCOMPARE(r.runs.size(), 1);
}

QTEST_GUILESS_MAIN(TestAnalysis)
#include "tst_analysis.moc"

// Voltage at each component = 120 V less the drops from the enabler down to and including it.
// Drops by hand: a Plain fixture carrying P watts drops P / 96 * 0.5 V, a cable of R ohm P / 120 * R,
// the receiver (0.1 ohm, power factor 0.5, 5 W of its own) P / 60 * 0.1.
void TestAnalysis::componentFiguresByHand()
{
    Harness h;
    QVERIFY(h.ready());
    DLFixture* plain = h.db.fixtureNamed(QStringLiteral("Plain"));
    struct Expected {
        const CWidget* w;
        double voltage;
        double current;
        double power;
        int runCount;
    };
    const auto check = [&](const QList<Expected>& expected) {
        const AnalysisResult& r = h.analyze();
        QCOMPARE(r.components().size(), expected.size());
        for (const Expected& e : expected) {
            const ComponentFigures* f = r.figuresAt(e.w);
            QVERIFY2(f, qPrintable(e.w->name()));
            QVERIFY2(std::abs(f->voltage - e.voltage) < 1e-9,
                     qPrintable(QString::number(f->voltage, 'g', 12)));
            QVERIFY(std::abs(f->drop - (120.0 - e.voltage)) < 1e-9);
            QVERIFY(std::abs(f->dropPercent - (120.0 - e.voltage) / 1.2) < 1e-9);
            QVERIFY2(std::abs(f->current - e.current) < 1e-12, qPrintable(e.w->name()));
            QCOMPARE(f->power, e.power);
            QCOMPARE(f->runCount, e.runCount);
        }
    };

    // Chain: enabler -> leader (0.05 ohm) -> F1 -> jumper (0.01 ohm) -> F2.
    h.chain(plain->name, 0);
    const CWidget* leader = h.doc().addLeader(plain);
    const CWidget* f1 = h.doc().addFixture(plain);
    const CWidget* jumper = h.doc().addJumper(plain);
    const CWidget* f2 = h.doc().addFixture(plain);
    const double afterLeader = 120.0 - 24.0 / 120 * 0.05;
    const double afterF1 = afterLeader - 24.0 / 96 * 0.5;
    const double afterJumper = afterF1 - 12.0 / 120 * 0.01;
    check({{h.root(), 120.0, 0.25, 24, 1},
           {leader, afterLeader, 0.25, 24, 1},
           {f1, afterF1, 0.25, 24, 1},
           {jumper, afterJumper, 0.125, 12, 1},
           {f2, afterJumper - 12.0 / 96 * 0.5, 0.125, 12, 1}});
    // At the run's end the voltage is the line voltage less the run's drop.
    QCOMPARE(h.session->result().figuresAt(f2)->drop, h.session->result().runs.at(0).voltageDrop);

    // Branched: enabler -> branch wire (0.02 ohm) -> box -> {F1 -> F2, F3}. The shared wire and box
    // take the figures of the worse run, the one through F1 and F2.
    h.session->reset();
    const CWidget* box = h.doc().addJunctionBox();
    const CWidget* wire = box->parentWidget();
    f1 = h.doc().addFixture(plain);
    f2 = h.doc().addFixture(plain);
    h.doc().setCurrent(box);
    const CWidget* f3 = h.doc().addFixture(plain);
    const double atBox = 120.0 - 24.0 / 120 * 0.02;
    check({{h.root(), 120.0, 0.25, 24, 2},
           {wire, atBox, 0.25, 24, 2},
           {box, atBox, 0.25, 24, 2},
           {f1, atBox - 24.0 / 96 * 0.5, 0.25, 24, 1},
           {f2, atBox - 24.0 / 96 * 0.5 - 12.0 / 96 * 0.5, 0.125, 12, 1},
           {f3, 120.0 - 12.0 / 120 * 0.02 - 12.0 / 96 * 0.5, 0.125, 12, 1}});
    const ComponentFigures* shared = h.session->result().figuresAt(box);
    QCOMPARE(shared->runEnd, f2);
    // Nearest limits at the wire, which carries the whole run: the enabler's 500 ft per run (18 ft),
    // then the count of 100 (2 fixtures); the 50 V drop limit is further away.
    const ComponentFigures* end = h.session->result().figuresAt(wire);
    QCOMPARE(end->nearestCount, 2);
    QCOMPARE(end->nearest[0].kind, LimitRunLength);
    QCOMPARE(end->nearest[0].use, 18.0 / 500);
    QCOMPARE(end->nearest[1].kind, LimitFixtureCount);
    QCOMPARE(end->nearest[1].use, 2.0 / 100);

    // Feedwise: enabler -> Feedwise branch wire (10 ft, 0.02 ohm) -> receiver -> F1 -> F2. The
    // receiver is passed like any component of the run.
    const CWidget* receiver = h.feedwiseReceiver();
    wire = receiver->parentWidget();
    f1 = h.doc().addFixture(plain);
    f2 = h.doc().addFixture(plain);
    const double atWire = 120.0 - 29.0 / 120 * 0.02;
    const double atReceiver = atWire - 29.0 / 60 * 0.1;
    const double receiverCurrent = 0.25 + 5.0 / 120 / 0.5;
    check({{h.root(), 120.0, receiverCurrent, 29, 1},
           {wire, atWire, receiverCurrent, 29, 1},
           {receiver, atReceiver, receiverCurrent, 29, 1},
           {f1, atReceiver - 24.0 / 96 * 0.5, 0.25, 24, 1},
           {f2, atReceiver - 24.0 / 96 * 0.5 - 12.0 / 96 * 0.5, 0.125, 12, 1}});
}

// The figures ride along the walk: with them on or off every total, message and run is the same.
void TestAnalysis::componentFiguresLeaveOutputsUnchanged()
{
    Harness h;
    QVERIFY(h.ready());
    DLFixture* plain = h.db.fixtureNamed(QStringLiteral("Plain"));
    const auto compare = [&]() {
        CircuitInputs in = h.session->inputs();
        const AnalysisResult on = analyze(h.doc().root(), in, h.db);
        in.componentFigures = false;
        const AnalysisResult off = analyze(h.doc().root(), in, h.db);
        QVERIFY(!on.components().isEmpty());
        QVERIFY(off.components().isEmpty());
        QCOMPARE(on.logLines(), off.logLines());
        QCOMPARE(on.runMessages, off.runMessages);
        QCOMPARE(on.flagged, off.flagged);
        QCOMPARE(on.errorMarks, off.errorMarks);
        QCOMPARE(on.runs.size(), off.runs.size());
        for (qsizetype i = 0; i < on.runs.size(); ++i)
            QCOMPARE(on.runs.at(i).voltageDrop, off.runs.at(i).voltageDrop);
        QCOMPARE(on.totalCurrent, off.totalCurrent);
        QCOMPARE(on.totalPower, off.totalPower);
    };
    // Failing runs of each check fixture, a branched tree and a Feedwise tree.
    for (const char* fixture : {"Drop Limited", "Share Limited", "Count Limited", "Length Limited"}) {
        h.chain(QString::fromLatin1(fixture), 6);
        compare();
    }
    h.session->reset();
    const CWidget* box = h.doc().addJunctionBox();
    h.add(plain->name, 3);
    h.doc().setCurrent(box);
    h.add(plain->name, 2);
    compare();
    CWidget* receiver = h.feedwiseReceiver();
    h.add(plain->name, 4);
    h.doc().setCurrent(receiver);
    h.doc().addJunctionBox();
    h.add(plain->name, 2);
    compare();
}
