// Maximize over the hand-computed test catalog: a check fixture draws 12 W at 120 V and 24 W at
// 277 V and is 4 ft long; "Power Limited" allows 30 W in a run.
#include "CatalogFixture.h"

#include "calc/Maximize.h"

namespace
{

struct Harness : CatalogSession {
    explicit Harness(const QString& fixture) : CatalogSession(QStringLiteral("calc/analysis.xml"), fixture) {}
    DLFixture* fixture() { return session->selectedFixture(); }
    int count(int kind) { return doc().count(kind); }
    int maximize()
    {
        session->analyze();
        log.clear();
        return ::maximize(
            doc(), fixture(), [this]() { return session->analyze(); }, &log);
    }
    QStringList countLines() const { return log.logLines.filter(QStringLiteral("Fixture Count is now: ")); }
};

} // namespace

class TestMaximize : public QObject
{
    Q_OBJECT

private slots:
    void addsUntilFailureThenBacksOff();
    void reducesFailingConfigurationToOneFixture();
    void fullComponentIsLeftAlone();
    void spreadsOverReceiver();
    void feedwiseStartAndTrailingJumper();
};

void TestMaximize::addsUntilFailureThenBacksOff()
{
    Harness h(QStringLiteral("Power Limited"));
    QVERIFY(h.ready());
    // 120 V: 24 W passes, the third fixture (36 W) fails and is taken away again.
    QCOMPARE(h.maximize(), 3);
    QCOMPARE(h.count(ItemFixture), 2);
    QVERIFY(h.doc().passFlag());
    QCOMPARE(h.countLines(), (QStringList{QStringLiteral("Fixture Count is now: 1"),
                                          QStringLiteral("Fixture Count is now: 2"),
                                          QStringLiteral("Fixture Count is now: 3")}));
    // The removed fixture's parent is current: going on from there at 277 V (48 W) fails at once
    // and backs off to one fixture.
    QCOMPARE(h.doc().current()->itemType(), ItemFixture);
    h.session->header().lineVoltage = QStringLiteral("277");
    QCOMPARE(h.maximize(), 0);
    QCOMPARE(h.count(ItemFixture), 1);
    QVERIFY(h.doc().passFlag());
    QCOMPARE(h.session->result().totalLength, 4.0);
}

void TestMaximize::reducesFailingConfigurationToOneFixture()
{
    Harness h(QStringLiteral("Power Limited"));
    QVERIFY(h.ready());
    h.fixture()->maxPower = 5; // even one fixture is over
    for (int i = 0; i < 3; ++i)
        h.doc().addFixture(h.fixture());
    QCOMPARE(h.maximize(), 0);
    QCOMPARE(h.count(ItemFixture), 1);
    QVERIFY(!h.doc().passFlag());

    // Backing off from a junction box takes its last output first.
    h.session->reset();
    CWidget* box = h.doc().addJunctionBox();
    h.doc().addFixture(h.fixture());
    const CWidget* first = h.doc().current();
    h.doc().setCurrent(box);
    h.doc().addFixture(h.fixture()); // goes to the front
    h.doc().setCurrent(box);
    QCOMPARE(box->children().last(), first);
    h.maximize();
    QCOMPARE(box->childCount(), 1);
    QVERIFY(box->children().first() != first);
}

void TestMaximize::fullComponentIsLeftAlone()
{
    Harness h(QStringLiteral("Plain"));
    QVERIFY(h.ready());
    // Not even a failing run is backed off from there.
    CWidget* fixture = h.doc().addFixture(h.fixture());
    h.doc().addJumper(h.fixture());
    h.doc().addFixture(h.fixture());
    h.fixture()->maxPower = 5;
    h.doc().setCurrent(fixture); // its one output holds the jumper
    QCOMPARE(h.maximize(), 0);
    QCOMPARE(h.count(ItemAny), 4);
    QVERIFY(!h.doc().passFlag());
    QVERIFY(h.log.logLines.filter(QStringLiteral("Fixture Count")).isEmpty());

    h.session->reset();
    CWidget* leader = h.doc().addLeader(h.fixture());
    h.doc().addFixture(h.fixture());
    h.doc().setCurrent(leader);
    QCOMPARE(h.maximize(), 0);
    QCOMPARE(h.count(ItemAny), 3);
}

void TestMaximize::spreadsOverReceiver()
{
    // The receiver takes three outputs (two of them for fixtures) on its 12 AWG branch; every
    // output holds at most one component, so a spread family fills them one each.
    for (const QString& name :
         {QStringLiteral("Flare Spot"), QStringLiteral("spot fLaRe"), QStringLiteral("PULSE x")}) {
        Harness h(QStringLiteral("Flare Spot"));
        QVERIFY(h.ready());
        h.fixture()->name = name;
        h.session->header().fixture = name;
        h.root()->setOutputMode(Modes::feedwise());
        h.maximize(); // from the enabler: a receiver first, then its fixtures
        const CWidget* receiver = h.root()->child(0)->child(0);
        QCOMPARE(receiver->itemType(), ItemReceiver);
        QCOMPARE(receiver->childCount(), receiver->maxChildren());
        QCOMPARE(h.count(ItemFixture), receiver->maxChildren());
        QVERIFY(h.doc().passFlag());
    }

    // A length limit of 20 ft leaves room for the 10 ft branch and two fixtures; the nested rounds
    // back off in turn and leave both.
    Harness h(QStringLiteral("Flare Spot"));
    QVERIFY(h.ready());
    h.db.supplyNamed(QStringLiteral("Signal Feeder Pro"))->maxElectricalLength = 20;
    h.root()->setOutputMode(Modes::feedwise());
    h.maximize();
    const CWidget* receiver = h.root()->child(0)->child(0);
    QCOMPARE(receiver->childCount(), 2);
    QCOMPARE(h.count(ItemFixture), 2);
    QVERIFY(h.doc().passFlag());

    // Any other family chains its fixtures from the receiver until the receiver's 50 ft run is
    // full: 10 ft of branch and ten fixtures.
    Harness plain(QStringLiteral("Plain"));
    QVERIFY(plain.ready());
    plain.root()->setOutputMode(Modes::feedwise());
    plain.maximize();
    const CWidget* chainStart = plain.root()->child(0)->child(0);
    QCOMPARE(chainStart->childCount(), 1);
    QCOMPARE(plain.count(ItemFixture), 10);
    QCOMPARE(plain.count(ItemReceiver), 1);
}

void TestMaximize::feedwiseStartAndTrailingJumper()
{
    // From an empty Feedwise branch only a receiver is added, no second branch.
    Harness h(QStringLiteral("Power Limited"));
    QVERIFY(h.ready());
    CWidget* receiver = h.feedwiseReceiver();
    CWidget* wire = receiver->parentWidget();
    h.doc().removeCurrent();
    QCOMPARE(h.doc().current(), wire);
    h.maximize();
    QCOMPARE(h.count(ItemBranchWire), 1);
    QCOMPARE(wire->childCount(), 1);
    QCOMPARE(wire->child(0)->itemType(), ItemReceiver);
    QCOMPARE(h.count(ItemFixture), 2);

    // Started from a jumper whose first new fixture fails, the run ends at the fixture above it.
    Harness j(QStringLiteral("Power Limited"));
    QVERIFY(j.ready());
    j.fixture()->maxPower = 15;
    const CWidget* first = j.doc().addFixture(j.fixture());
    j.doc().addJumper(j.fixture());
    QCOMPARE(j.maximize(), 1);
    QCOMPARE(j.count(ItemJumper), 0);
    QCOMPARE(j.count(ItemFixture), 1);
    QCOMPARE(j.doc().current(), first);
    QVERIFY(j.doc().passFlag());

    // Even when nothing passes, the bare jumper goes.
    j.fixture()->maxPower = 5;
    j.doc().addJumper(j.fixture());
    j.maximize();
    QCOMPARE(j.count(ItemJumper), 0);
    QCOMPARE(j.count(ItemFixture), 1);
}

QTEST_GUILESS_MAIN(TestMaximize)
#include "tst_maximize.moc"
