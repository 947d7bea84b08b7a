#include "TestSupport.h"

#include "catalog/Database.h"
#include "catalog/Reporter.h"
#include "model/CWidget.h"
#include "model/CWidgetModel.h"
#include "model/ConfigDocument.h"

#include <QPointer>
#include <QSignalSpy>
#include <QtTest>

namespace
{

const QString kBar = QStringLiteral("Stylebar Tunable Dynaline 4ft");
const QString kTrough = QStringLiteral("Linea Trough Model A Dynaline 6in (100v - 120v)");

QStringList names(const QList<int>& ids)
{
    QStringList out;
    for (int id : ids)
        out << propertyName(id);
    return out;
}

// What each child is, in order: fixtures by record, branch wires by location, others by kind.
QStringList describe(const CWidget* parent)
{
    QStringList out;
    for (const CWidget* c : parent->children()) {
        if (auto* b = qobject_cast<const BranchWireWidget*>(c))
            out << QStringLiteral("wire ") + b->location();
        else if (c->itemType() == ItemFixture)
            out << c->catalogItem()->name;
        else
            out << c->displayName();
    }
    return out;
}

} // namespace

class ComponentsTest : public QObject
{
    Q_OBJECT

private:
    Database m_db;
    DLPowerSupply* m_duo = nullptr;
    DLPowerSupply* m_feedFirst = nullptr;
    DLPowerSupply* m_line = nullptr;
    DLFixture* m_bar = nullptr;
    DLFixture* m_trough = nullptr;
    DLReceiver* m_receiver = nullptr;

    DLJunctionBox* box(const QString& name) const { return m_db.junctionBoxNamed(name); }

    BranchWireWidget* wire(const QString& inputMode, const QString& location, double length = 30.0,
                           const QString& gauge = QStringLiteral("14")) const
    {
        auto* w = new BranchWireWidget(&m_db, m_db.firstBranchWire());
        w->setInputMode(inputMode);
        w->setLocation(location);
        w->setLength(length);
        w->setGauge(gauge);
        return w;
    }

private slots:
    void initTestCase()
    {
        RecordingReporter quiet;
        QVERIFY(m_db.loadFile(testDataPath(QStringLiteral("project/catalog.xml")), &quiet));
        QVERIFY2(quiet.messages.isEmpty(), qPrintable(quiet.texts().join(QLatin1Char('\n'))));
        m_duo = m_db.supplyNamed(QStringLiteral("Enabler Duo"));
        m_feedFirst = m_db.supplyNamed(QStringLiteral("Enabler Feed First"));
        m_line = m_db.supplyNamed(QStringLiteral("Enabler Line"));
        m_bar = m_db.fixtureNamed(kBar);
        m_trough = m_db.fixtureNamed(kTrough);
        m_receiver = m_db.receivers().value(0);
        QVERIFY(m_duo && m_feedFirst && m_line && m_bar && m_trough && m_receiver);
        QCOMPARE(m_db.junctionBoxes().size(), 4);
    }

    // Each kind's properties (the columns it fills), the legacy property count and the name shown.
    void propertiesPerKind()
    {
        auto check = [](const CWidget& w, const QStringList& ids, int count, const QString& shown) {
            QCOMPARE(names(w.propertyIds()), ids);
            QCOMPARE(w.propertyCount(), count);
            QCOMPARE(w.displayName(), shown);
        };
        check(SupplyWidget(&m_db, m_duo), {"name", "outputMode", "dynaLineLength"}, 2, "Enabler Duo");
        LeaderWidget leader(&m_db, m_bar);
        check(leader, {"name", "type", "length"}, 3, "Leader");
        leader.setType(QStringLiteral("Custom Leader"));
        check(leader, {"name", "type", "gauge", "length"}, 4, "Leader");
        JumperWidget jumper(&m_db, m_bar);
        jumper.setType(QStringLiteral("custom jumper")); // the test is case-sensitive
        check(jumper, {"name", "type"}, 2, "Jumper");
        jumper.setType(QStringLiteral("My Custom Run"));
        check(jumper, {"name", "type", "gauge", "length"}, 4, "Jumper");
        check(FixtureWidget(&m_db, m_bar), {"name"}, 2, kBar);
        check(FixtureWidget(&m_db, nullptr), {"name"}, 2, QString());
        check(ReceiverWidget(&m_db, m_receiver), {"name", "dynaLineLength", "junctionBox"}, 2, "Receiver One");
        check(BranchWireWidget(&m_db, m_db.firstBranchWire()), {"name", "gauge", "length", "inputMode", "location"},
              2, "Branch Wire");
        JunctionBoxWidget junction(&m_db, box(QStringLiteral("Box Alpha")));
        check(junction, {"name", "outputMode", "type"}, 2, "Junction Box");
        QCOMPARE(junction.type(), QStringLiteral("Box Gamma")); // the catalog's first box, whatever the record
    }

    void capacities()
    {
        SupplyWidget supply(&m_db, m_duo);
        QCOMPARE(supply.maxChildren(), 1);
        FixtureWidget fixture(&m_db, m_bar);
        QCOMPARE(fixture.maxChildren(), 1);
        fixture.setChildCapacity(3);
        QCOMPARE(fixture.maxChildren(), 3);
        for (DLJunctionBox* record : m_db.junctionBoxes()) {
            JunctionBoxWidget junction(&m_db, record);
            junction.setType(record->name);
            QCOMPARE(junction.maxChildren(), 6);
        }

        // A receiver holds what its junction box takes for the gauge of the wire above it.
        BranchWireWidget* above = wire(QStringLiteral("Feedwise"), QStringLiteral("Above Ground"));
        QScopedPointer<BranchWireWidget> guard(above);
        auto* receiver = new ReceiverWidget(&m_db, m_receiver);
        above->insertChild(receiver);
        QCOMPARE(receiver->junctionBox(), QStringLiteral("Box Alpha"));
        QCOMPARE(receiver->capacityA(), 2);
        QCOMPARE(receiver->capacityB(), 3);
        QCOMPARE(receiver->maxChildren(), 5);
        above->setGauge(QStringLiteral("16"));
        QCOMPARE(receiver->maxChildren(), 6);
        above->setGauge(QStringLiteral("12"));
        QCOMPARE(receiver->maxChildren(), 5);
        receiver->setJunctionBox(QStringLiteral("Box Delta"));
        QCOMPARE(receiver->maxChildren(), 12);
        receiver->setJunctionBox(QStringLiteral("No Box"));
        QCOMPARE(receiver->maxChildren(), 0);
        ReceiverWidget alone(&m_db, m_receiver);
        QCOMPARE(alone.maxChildren(), 5);

        // The model refuses an insertion once a parent is full, and leaves the component alone.
        CWidgetModel model;
        auto* box = new JunctionBoxWidget(&m_db, this->box(QStringLiteral("Box Gamma")));
        const QModelIndex boxIndex = model.addComponent(box);
        QVERIFY(boxIndex.isValid());
        for (int i = 0; i < 6; ++i)
            QVERIFY(model.addComponent(new FixtureWidget(&m_db, m_bar), boxIndex).isValid());
        FixtureWidget seventh(&m_db, m_trough);
        QVERIFY(!model.addComponent(&seventh, boxIndex).isValid());
        QCOMPARE(box->childCount(), 6);
        QCOMPARE(seventh.parent(), nullptr);
        const QModelIndex first = model.index(0, 0, boxIndex);
        QVERIFY(model.addComponent(new JumperWidget(&m_db, m_bar), first).isValid());
        JumperWidget second(&m_db, m_bar);
        QVERIFY(!model.addComponent(&second, first).isValid());
    }

    void childOrder()
    {
        // Below anything but a leader: each fixture to the front, Feedwise branches to the end,
        // the rest in insertion order before the first Feedwise child.
        JunctionBoxWidget parent(&m_db, box(QStringLiteral("Box Gamma")));
        parent.insertChild(wire(QStringLiteral("Feedwise"), QStringLiteral("F1")));
        auto* leader = new LeaderWidget(&m_db, m_bar);
        QCOMPARE(parent.insertChild(leader), 0);
        parent.insertChild(new FixtureWidget(&m_db, m_bar));
        QCOMPARE(parent.insertChild(new FixtureWidget(&m_db, m_trough)), 0);
        parent.insertChild(wire(QStringLiteral("Dynaline"), QStringLiteral("D")));
        parent.insertChild(wire(QStringLiteral("Feedwise"), QStringLiteral("F2")));
        QCOMPARE(describe(&parent),
                 QStringList({kTrough, kBar, QStringLiteral("Leader"), QStringLiteral("wire D"),
                              QStringLiteral("wire F1"), QStringLiteral("wire F2")}));
        QCOMPARE(leader->parent(), &parent);
        QCOMPARE(leader->parentWidget(), &parent);

        // Below a leader fixtures keep their order.
        leader->insertChild(new FixtureWidget(&m_db, m_bar));
        leader->insertChild(wire(QStringLiteral("Feedwise"), QStringLiteral("F")));
        leader->insertChild(new FixtureWidget(&m_db, m_trough));
        QCOMPARE(describe(leader), QStringList({kBar, kTrough, QStringLiteral("wire F")}));

        // The mode is judged as if the child already hung there: below a Feedwise supply an
        // undecided branch wire and a leader both count as Feedwise.
        SupplyWidget feedwise(&m_db, m_feedFirst);
        QCOMPARE(feedwise.outputMode(), QStringLiteral("Feedwise"));
        feedwise.insertChild(wire(QStringLiteral("Dynaline"), QStringLiteral("D")));
        feedwise.insertChild(wire(QStringLiteral("UNDEFINED"), QStringLiteral("U")));
        feedwise.insertChild(new LeaderWidget(&m_db, m_bar));
        feedwise.insertChild(wire(QStringLiteral("Dynaline"), QStringLiteral("D2")));
        QCOMPARE(describe(&feedwise), QStringList({QStringLiteral("wire D"), QStringLiteral("wire D2"),
                                                   QStringLiteral("wire U"), QStringLiteral("Leader")}));
        auto* undecided = qobject_cast<BranchWireWidget*>(feedwise.child(2));
        QCOMPARE(undecided->inputMode(), QStringLiteral("Feedwise"));

        // Below a receiver an undecided wire is Dynaline, so it stays before Feedwise ones.
        ReceiverWidget receiver(&m_db, m_receiver);
        receiver.insertChild(wire(QStringLiteral("Feedwise"), QStringLiteral("F")));
        receiver.insertChild(wire(QStringLiteral("UNDEFINED"), QStringLiteral("U")));
        QCOMPARE(describe(&receiver), QStringList({QStringLiteral("wire U"), QStringLiteral("wire F")}));

        // Taking a child out hands it back without a parent.
        CWidget* taken = receiver.takeChild(1);
        QScopedPointer<CWidget> takenGuard(taken);
        QVERIFY(taken && !taken->parent() && !taken->parentWidget());
        QCOMPARE(receiver.childCount(), 1);
        QCOMPARE(receiver.takeChild(5), nullptr);
    }

    void effectiveModes()
    {
        SupplyWidget feedwise(&m_db, m_feedFirst);
        auto* receiver = new ReceiverWidget(&m_db, m_receiver);
        feedwise.insertChild(receiver);
        QCOMPARE(receiver->effectiveMode(), QStringLiteral("Feedwise"));
        auto* fixture = new FixtureWidget(&m_db, m_bar);
        auto* leader = new LeaderWidget(&m_db, m_bar);
        auto* box = new JunctionBoxWidget(&m_db, this->box(QStringLiteral("Box Beta")));
        receiver->insertChild(fixture);
        receiver->insertChild(leader);
        receiver->insertChild(box);
        QCOMPARE(fixture->effectiveMode(), QStringLiteral("Dynaline"));
        QCOMPARE(leader->effectiveMode(), QStringLiteral("Dynaline"));
        QCOMPARE(box->effectiveMode(), QStringLiteral("Feedwise")); // inherited from the receiver
        QCOMPARE(box->property("outputMode").toString(), QStringLiteral("Feedwise"));
        auto* jumper = new JumperWidget(&m_db, m_bar);
        fixture->insertChild(jumper);
        QCOMPARE(jumper->effectiveMode(), QStringLiteral("Dynaline"));

        FixtureWidget alone(&m_db, m_bar);
        QCOMPARE(alone.effectiveMode(), QStringLiteral("UNDEFINED"));
        CWidgetModel model;
        auto* top = new FixtureWidget(&m_db, m_bar);
        model.addComponent(top);
        QCOMPARE(top->parentWidget(), nullptr); // the invisible root is no component
        QCOMPARE(top->effectiveMode(), QStringLiteral("UNDEFINED"));

        // A branch wire's own mode wins; an undecided one takes its parent's and keeps it.
        BranchWireWidget* loose = wire(QStringLiteral("UNDEFINED"), QStringLiteral("L"));
        QScopedPointer<BranchWireWidget> looseGuard(loose);
        QCOMPARE(loose->effectiveMode(), QStringLiteral("UNDEFINED"));
        QCOMPARE(loose->inputMode(), QStringLiteral("UNDEFINED"));
        auto* underReceiver = wire(QStringLiteral("UNDEFINED"), QStringLiteral("R"));
        receiver->insertChildAt(receiver->childCount(), underReceiver);
        QCOMPARE(underReceiver->effectiveMode(), QStringLiteral("Dynaline"));
        QCOMPARE(underReceiver->inputMode(), QStringLiteral("Dynaline"));
        receiver->takeChild(receiver->indexOfChild(underReceiver));
        feedwise.insertChildAt(0, underReceiver);
        QCOMPARE(underReceiver->effectiveMode(), QStringLiteral("Dynaline")); // it stuck
        auto* explicitWire = wire(QStringLiteral("Feedwise"), QStringLiteral("E"));
        receiver->insertChildAt(0, explicitWire);
        QCOMPARE(explicitWire->effectiveMode(), QStringLiteral("Feedwise"));

        // The mode-side location: a supply's explicit location before its output mode; a branch
        // wire's mode; everybody else the parent's.
        SupplyWidget nested(&m_db, m_duo);
        QCOMPARE(nested.locationText(), QStringLiteral("Dynaline"));
        nested.setOutputMode(QStringLiteral("Line Voltage"));
        QCOMPARE(nested.locationText(), QStringLiteral("Line Voltage"));
        nested.setExplicitLocation(QStringLiteral("Dynaline"));
        QCOMPARE(nested.locationText(), QStringLiteral("Dynaline"));
        QCOMPARE(nested.effectiveMode(), QStringLiteral("Line Voltage"));
        QCOMPARE(explicitWire->locationText(), QStringLiteral("Feedwise"));
        QCOMPARE(fixture->locationText(), QStringLiteral("Feedwise"));
    }

    void editorChoices()
    {
        // Supply output modes: catalog order, "Feedwise" only for a supply placed by the user,
        // and only the present mode once a run hangs below it.
        SupplyWidget placed(&m_db, m_feedFirst, 0);
        EditorSpec spec = placed.editorSpec(PropOutputMode);
        QCOMPARE(spec.kind, EditorSpec::Combo);
        QCOMPARE(spec.choices, QStringList({"Feedwise", "Line Voltage", "Dynaline"}));
        QCOMPARE(spec.currentIndex, 0);
        SupplyWidget fromFile(&m_db, m_feedFirst, 1);
        fromFile.setOutputMode(QStringLiteral("Dynaline"));
        spec = fromFile.editorSpec(PropOutputMode);
        QCOMPARE(spec.choices, QStringList({"Line Voltage", "Dynaline"}));
        QCOMPARE(spec.currentIndex, 1);
        fromFile.setOutputMode(QStringLiteral("Feedwise"));
        QCOMPARE(fromFile.editorSpec(PropOutputMode).currentIndex, -1);
        placed.insertChild(new FixtureWidget(&m_db, m_bar));
        spec = placed.editorSpec(PropOutputMode);
        QCOMPARE(spec.choices, QStringList{"Feedwise"});
        QCOMPARE(spec.currentIndex, 0);
        QCOMPARE(SupplyWidget(&m_db, m_line).editorSpec(PropOutputMode).choices, QStringList{"Line Voltage"});
        QCOMPARE(SupplyWidget(&m_db, nullptr).editorSpec(PropOutputMode).choices, QStringList());

        placed.setDynaLineLength(12.5);
        spec = placed.editorSpec(PropDynaLineLength);
        QCOMPARE(spec.kind, EditorSpec::ReadOnlyText);
        QCOMPARE(spec.text, QStringLiteral("12.5 ft"));
        placed.setDynaLineLength(1234567.0);
        QCOMPARE(placed.editorSpec(PropDynaLineLength).text, QStringLiteral("1.23457e+06 ft"));

        // Junction box: every box not reserved for receivers; the mode is the inherited one.
        SupplyWidget duo(&m_db, m_duo);
        auto* junction = new JunctionBoxWidget(&m_db, box(QStringLiteral("Box Beta")));
        duo.insertChild(junction);
        junction->setType(QStringLiteral("Box Alpha"));
        spec = junction->editorSpec(PropType);
        QCOMPARE(spec.choices, QStringList({"Box Gamma", "Box Alpha", "Box Delta"}));
        QCOMPARE(spec.currentIndex, 1);
        spec = junction->editorSpec(PropOutputMode);
        QCOMPARE(spec.choices, QStringList{"Dynaline"});
        QCOMPARE(spec.currentIndex, 0);

        // Receiver: boxes mountable on a receiver that can hold what hangs below it.
        BranchWireWidget* feed = wire(QStringLiteral("Feedwise"), QStringLiteral("Above Ground"));
        QScopedPointer<BranchWireWidget> feedGuard(feed);
        auto* receiver = new ReceiverWidget(&m_db, m_receiver);
        feed->insertChild(receiver);
        QTest::ignoreMessage(QtDebugMsg, "jbox too small or not compatible: Box Gamma");
        QTest::ignoreMessage(QtDebugMsg, "jbox too small or not compatible: Box Beta");
        spec = receiver->editorSpec(PropJunctionBox);
        QCOMPARE(spec.choices, QStringList({"Box Alpha", "Box Delta"}));
        QCOMPARE(spec.currentIndex, 0);
        for (int i = 0; i < 6; ++i)
            receiver->insertChildAt(0, new FixtureWidget(&m_db, m_bar));
        QTest::ignoreMessage(QtDebugMsg, "jbox too small or not compatible: Box Gamma");
        QTest::ignoreMessage(QtDebugMsg, "jbox too small or not compatible: Box Beta");
        QTest::ignoreMessage(QtDebugMsg, "jbox too small or not compatible: Box Alpha");
        spec = receiver->editorSpec(PropJunctionBox);
        QCOMPARE(spec.choices, QStringList{"Box Delta"});
        QCOMPARE(spec.currentIndex, -1);
        QCOMPARE(receiver->editorSpec(PropDynaLineLength).kind, EditorSpec::ReadOnlyText);

        // Leader: the fixture's leader cables; gauges only for a custom cable, and only those
        // whose length limit allows the present length.
        LeaderWidget leader(&m_db, m_bar);
        spec = leader.editorSpec(PropType);
        QCOMPARE(spec.choices, QStringList({"Leader 3ft", "Custom Leader"}));
        QCOMPARE(spec.currentIndex, 0);
        leader.setGauge(QStringLiteral("16"));
        QCOMPARE(leader.editorSpec(PropGauge).choices, QStringList{"16"});
        spec = leader.editorSpec(PropLength);
        QCOMPARE(spec.kind, EditorSpec::Spin);
        QCOMPARE(spec.maximum, 3);
        QCOMPARE(spec.value, 3);
        leader.setType(QStringLiteral("Custom Leader"));
        leader.setLength(10.0);
        spec = leader.editorSpec(PropGauge);
        QCOMPARE(spec.choices, QStringList({"14", "16"}));
        QCOMPARE(spec.currentIndex, 1);
        leader.setLength(7.5);
        QCOMPARE(leader.editorSpec(PropGauge).choices, QStringList({"14", "16", "18"}));
        spec = leader.editorSpec(PropLength);
        QCOMPARE(spec.value, 8);
        QCOMPARE(spec.maximum, 60);
        QCOMPARE(spec.minimum, 1);
        QCOMPARE(spec.suffix, QStringLiteral(" ft"));
        leader.setGauge(QStringLiteral("14"));
        QCOMPARE(leader.editorSpec(PropLength).maximum, 100);

        // Jumper: a custom cable's gauge limit, 175 where the limit is 0, the editor's own 999
        // for a gauge the cable does not list.
        JumperWidget jumper(&m_db, m_bar);
        QCOMPARE(jumper.editorSpec(PropType).choices, QStringList({"Jumper 2ft", "Custom Jumper"}));
        jumper.setType(QStringLiteral("Custom Jumper"));
        jumper.setGauge(QStringLiteral("16"));
        jumper.setLength(4.4);
        spec = jumper.editorSpec(PropLength);
        QCOMPARE(spec.value, 4);
        QCOMPARE(spec.maximum, 25);
        jumper.setGauge(QStringLiteral("18"));
        QCOMPARE(jumper.editorSpec(PropLength).maximum, 175);
        jumper.setGauge(QStringLiteral("10"));
        QCOMPARE(jumper.editorSpec(PropLength).maximum, 999);
        jumper.setLength(20.0);
        QCOMPARE(jumper.editorSpec(PropGauge).choices, QStringList{"16"});

        // Branch wire lengths by mode and location.
        SupplyWidget host(&m_db, m_duo);
        BranchWireWidget* bw = wire(QStringLiteral("Feedwise"), QStringLiteral("Above Ground"));
        host.insertChild(bw);
        QCOMPARE(bw->editorSpec(PropLength).maximum, 427);
        bw->setLocation(QStringLiteral("Underground"));
        QCOMPARE(bw->editorSpec(PropLength).maximum, 294);
        bw->setInputMode(QStringLiteral("Dynaline"));
        QCOMPARE(bw->editorSpec(PropLength).maximum, 150);
        bw->setGauge(QStringLiteral("10"));
        QCOMPARE(bw->editorSpec(PropLength).maximum, 175);
        bw->setInputMode(QStringLiteral("Line Voltage"));
        QCOMPARE(bw->editorSpec(PropLength).maximum, 999);
        QCOMPARE(bw->editorSpec(PropLength).value, 30);
        bw->setGauge(QStringLiteral("14"));
        QCOMPARE(bw->editorSpec(PropGauge).choices, QStringList({"12", "14"}));
        bw->setLength(20.0);
        QCOMPARE(bw->editorSpec(PropGauge).choices, QStringList({"12", "14", "16"}));
        spec = bw->editorSpec(PropLocation);
        QCOMPARE(spec.choices, QStringList({"Above Ground", "Underground"}));
        QCOMPARE(spec.currentIndex, 1);
        // Input mode: the parent's mode, or below a receiver "Dynaline" (when the gauge allows
        // the length) and "Feedwise".
        bw->setInputMode(QStringLiteral("UNDEFINED"));
        spec = bw->editorSpec(PropInputMode);
        QCOMPARE(spec.choices, QStringList{"Dynaline"});
        QCOMPARE(spec.currentIndex, 0);
        auto* underReceiver = wire(QStringLiteral("Feedwise"), QStringLiteral("Above Ground"), 30.0);
        receiver->insertChildAt(0, underReceiver);
        spec = underReceiver->editorSpec(PropInputMode);
        QCOMPARE(spec.choices, QStringList({"Dynaline", "Feedwise"}));
        QCOMPARE(spec.currentIndex, 1);
        underReceiver->setGauge(QStringLiteral("16")); // 25 ft limit, 30 ft wire
        QCOMPARE(underReceiver->editorSpec(PropInputMode).choices, QStringList{"Feedwise"});

        // Nothing to choose on a fixture or a name.
        QCOMPARE(FixtureWidget(&m_db, m_bar).editorSpec(PropType).kind, EditorSpec::None);
        QCOMPARE(leader.editorSpec(PropName).kind, EditorSpec::None);
    }

    void itemModel()
    {
        CWidgetModel model;
        QCOMPARE(model.columnCount(), 9);
        const QStringList headers{"Name",       "Type",         "Gauge",
                                  "Length",     "Junction Box", "Output Mode",
                                  "Input Mode", "Location",     "DL / Line Voltage Length"};
        for (int c = 0; c < 9; ++c) {
            QCOMPARE(model.headerData(c, Qt::Horizontal, Qt::DisplayRole).toString(), headers[c]);
            QCOMPARE(model.headerData(c, Qt::Horizontal, Qt::EditRole).toString(), headers[c]);
        }
        QCOMPARE(model.headerData(0, Qt::Vertical, Qt::DisplayRole).toString(),
                 QStringLiteral("Selected Component"));
        model.setHeaderDecoration(QVariant(QStringLiteral("icon")));
        QVERIFY(!model.headerData(0, Qt::Horizontal, Qt::DecorationRole).isValid());
        for (int c = 1; c < 9; ++c)
            QCOMPARE(model.headerData(c, Qt::Horizontal, Qt::DecorationRole),
                     QVariant(QStringLiteral("icon")));

        auto* supply = new SupplyWidget(&m_db, m_duo);
        const QModelIndex top = model.addComponent(supply);
        QCOMPARE(model.rowCount(), 1);
        QCOMPARE(model.widget(top), supply);
        auto* bw = wire(QStringLiteral("Dynaline"), QStringLiteral("Above Ground"));
        const QModelIndex wireIndex = model.addComponent(bw, top);
        auto* box = new JunctionBoxWidget(&m_db, this->box(QStringLiteral("Box Gamma")));
        const QModelIndex boxIndex = model.addComponent(box, wireIndex);
        model.addComponent(new LeaderWidget(&m_db, m_bar), boxIndex);
        model.addComponent(new FixtureWidget(&m_db, m_trough), boxIndex);
        QCOMPARE(model.rowCount(boxIndex), 2);
        const QModelIndex fixtureIndex = model.index(0, 3, boxIndex);
        QCOMPARE(model.widget(fixtureIndex)->itemType(), int(ItemFixture));
        QCOMPARE(fixtureIndex.column(), 3);
        QCOMPARE(model.parent(fixtureIndex), model.index(0, 0, wireIndex));
        QCOMPARE(model.parent(top), QModelIndex());
        QVERIFY(!model.index(2, 0, boxIndex).isValid());
        QVERIFY(!model.index(0, 9, boxIndex).isValid());
        QCOMPARE(model.indexOf(box), boxIndex);

        const QModelIndex lengthCell = model.index(0, PropLength, top);
        QCOMPARE(model.data(lengthCell, Qt::DisplayRole).toString(), QStringLiteral("30 ft"));
        QCOMPARE(model.data(lengthCell, Qt::EditRole), QVariant(30.0));
        QCOMPARE(model.data(lengthCell, Qt::ToolTipRole).toString(), QStringLiteral("30 ft"));
        QVERIFY(!model.data(lengthCell, Qt::DecorationRole).isValid());
        QVERIFY(!model.data(lengthCell, Qt::StatusTipRole).isValid());
        QVERIFY(!model.data(QModelIndex(), Qt::DisplayRole).isValid());

        QSignalSpy layout(&model, &QAbstractItemModel::layoutChanged);
        QVERIFY(!model.setData(lengthCell, QVariant(40), Qt::DisplayRole));
        QVERIFY(!model.setData(QModelIndex(), QVariant(40), Qt::EditRole));
        QCOMPARE(layout.count(), 0);
        QVERIFY(model.setData(lengthCell, QVariant(40), Qt::EditRole));
        QCOMPARE(bw->length(), 40.0);
        QCOMPARE(layout.count(), 1);

        // The invisible root takes one component.
        SupplyWidget another(&m_db, m_line);
        QVERIFY(!model.addComponent(&another).isValid());

        QVERIFY(model.removeComponent(boxIndex));
        QCOMPARE(bw->childCount(), 0);
        QVERIFY(!model.removeComponent(QModelIndex()));
        QPointer<CWidget> watched(supply);
        model.clear();
        QCOMPARE(model.rowCount(), 0);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(watched.isNull());
    }

    void addButtons()
    {
        ConfigDocument doc(&m_db);
        QSignalSpy changed(&doc, &ConfigDocument::changed);
        QCOMPARE(doc.lastLocation(), QStringLiteral("Above Ground"));

        // Enabler: the record's first output mode, placed by the user.
        auto* supply = qobject_cast<SupplyWidget*>(doc.addSupply(m_feedFirst));
        QVERIFY(supply);
        QCOMPARE(supply->outputMode(), QStringLiteral("Feedwise"));
        QCOMPARE(supply->ordinal(), 0);
        QCOMPARE(supply->explicitLocation(), QString());
        QCOMPARE(doc.current(), supply);
        QVERIFY(doc.isModified());
        QCOMPARE(changed.count(), 1);

        // Receiver below a supply: a Feedwise branch wire (spare 3) at the last location first.
        auto* receiver = qobject_cast<ReceiverWidget*>(doc.addReceiver());
        QVERIFY(receiver);
        auto* feed = qobject_cast<BranchWireWidget*>(receiver->parentWidget());
        QVERIFY(feed);
        QCOMPARE(feed->parentWidget(), supply);
        QCOMPARE(feed->inputMode(), QStringLiteral("Feedwise"));
        QCOMPARE(feed->spare(), 3);
        QCOMPARE(feed->location(), QStringLiteral("Above Ground"));
        QCOMPARE(feed->gauge(), QStringLiteral("14"));
        QCOMPARE(receiver->catalogItem(), m_receiver);
        QCOMPARE(receiver->junctionBox(), QStringLiteral("Box Alpha"));
        QCOMPARE(receiver->ordinal(), 0);
        QCOMPARE(doc.current(), receiver);

        // Junction box on a receiver: a Feedwise wire (spare 4) and the receiver-only box.
        auto* onReceiver = qobject_cast<JunctionBoxWidget*>(doc.addJunctionBox());
        QVERIFY(onReceiver);
        auto* boxWire = qobject_cast<BranchWireWidget*>(onReceiver->parentWidget());
        QVERIFY(boxWire);
        QCOMPARE(boxWire->parentWidget(), receiver);
        QCOMPARE(boxWire->inputMode(), QStringLiteral("Feedwise"));
        QCOMPARE(boxWire->spare(), 4);
        QCOMPARE(onReceiver->catalogItem()->name, QStringLiteral("Box Beta"));
        QCOMPARE(onReceiver->type(), QStringLiteral("Box Gamma"));

        // Fixture and leader on the receiver: the fixture in front, the Feedwise wire last.
        doc.setCurrent(receiver);
        QVERIFY(doc.addLeader(m_trough));
        doc.setCurrent(receiver);
        QVERIFY(doc.addFixture(m_bar));
        QCOMPARE(describe(receiver),
                 QStringList({kBar, QStringLiteral("Leader"), QStringLiteral("wire Above Ground")}));

        // Cable defaults from the fixture: fixed cables take their electrical length, custom
        // ones their default wire and custom length.
        auto* trough = asLeader(receiver->child(1));
        QVERIFY(trough);
        QCOMPARE(trough->type(), QStringLiteral("Custom Leader"));
        QCOMPARE(trough->gauge(), QStringLiteral("14"));
        QCOMPARE(trough->length(), 12.0);
        doc.setCurrent(receiver->child(0));
        auto* fixedJumper = qobject_cast<JumperWidget*>(doc.addJumper(m_bar));
        QVERIFY(fixedJumper);
        QCOMPARE(fixedJumper->type(), QStringLiteral("Jumper 2ft"));
        QCOMPARE(fixedJumper->length(), 2.0);
        QCOMPARE(fixedJumper->gauge(), QString());
        // A fixture can take only one component; a refused addition changes nothing.
        doc.setCurrent(receiver->child(0));
        const int before = doc.count(ItemAny);
        QCOMPARE(doc.addJumper(m_bar), nullptr);
        QCOMPARE(receiver->child(0)->childCount(), 1);
        QCOMPARE(doc.count(ItemAny), before);
        QCOMPARE(doc.current(), receiver->child(0));

        // A jumper below a jumper copies it; a new leader copies the last leader.
        doc.setCurrent(fixedJumper);
        QVERIFY(doc.addFixture(m_trough));
        auto* custom = qobject_cast<JumperWidget*>(doc.addJumper(m_trough));
        QVERIFY(custom);
        QCOMPARE(custom->type(), QStringLiteral("Jumper 2ft")); // handed down, not the trough's default
        QCOMPARE(custom->length(), 2.0);
        QCOMPARE(custom->fixtureRecord(), m_trough);
        JumperWidget troughDefault(&m_db, m_trough);
        QCOMPARE(troughDefault.type(), QStringLiteral("Custom Jumper"));
        QCOMPARE(troughDefault.gauge(), QStringLiteral("18"));
        QCOMPARE(troughDefault.length(), 5.0);

        // Junction box elsewhere: the wire takes the selection's location, the box the first
        // record not reserved for receivers.
        ConfigDocument dyn(&m_db);
        CWidget* duo = dyn.addSupply(m_duo);
        auto* plainBox = qobject_cast<JunctionBoxWidget*>(dyn.addJunctionBox());
        QVERIFY(plainBox);
        auto* plainWire = qobject_cast<BranchWireWidget*>(plainBox->parentWidget());
        QCOMPARE(plainWire->inputMode(), QStringLiteral("Dynaline"));
        QCOMPARE(plainBox->catalogItem()->name, QStringLiteral("Box Gamma"));
        QCOMPARE(plainBox->effectiveMode(), QStringLiteral("Dynaline"));
        auto* first = asLeader(dyn.addLeader(m_bar));
        QVERIFY(first);
        first->setLength(2.5);
        dyn.setCurrent(plainBox);
        auto* second = asLeader(dyn.addLeader(m_trough));
        QVERIFY(second);
        QCOMPARE(second->type(), QStringLiteral("Leader 3ft"));
        QCOMPARE(second->length(), 2.5);

        // A second enabler hangs below a Feedwise wire and sits on the Dynaline side; below a
        // selected branch wire no second wire is made.
        dyn.setCurrent(plainBox);
        const int wiresBefore = dyn.count(ItemBranchWire);
        auto* nested = qobject_cast<SupplyWidget*>(dyn.addSupply(m_duo));
        QVERIFY(nested);
        QCOMPARE(dyn.count(ItemBranchWire), wiresBefore + 1);
        auto* nestedWire = qobject_cast<BranchWireWidget*>(nested->parentWidget());
        QCOMPARE(nestedWire->inputMode(), QStringLiteral("Feedwise"));
        QCOMPARE(nestedWire->spare(), 3);
        QCOMPARE(nested->explicitLocation(), QStringLiteral("Dynaline"));
        QCOMPARE(nested->locationText(), QStringLiteral("Dynaline"));
        QCOMPARE(plainBox->children().last(), nestedWire);
        nestedWire->applyEditorValue(PropLocation, QStringLiteral("Underground"));
        QCOMPARE(dyn.lastLocation(), QStringLiteral("Underground"));
        dyn.setCurrent(plainBox);
        auto* laterReceiver = dyn.addReceiver();
        QVERIFY(laterReceiver);
        QCOMPARE(qobject_cast<BranchWireWidget*>(laterReceiver->parentWidget())->location(),
                 QStringLiteral("Underground"));
        QCOMPARE(dyn.count(ItemSupply), 2);
        QCOMPARE(duo->childCount(), 1);

        // Removing the selection makes its parent current.
        dyn.setCurrent(nested);
        QVERIFY(dyn.removeCurrent());
        QCOMPARE(dyn.current(), nestedWire);
        QCOMPARE(dyn.count(ItemSupply), 1);
    }

private:
    static LeaderWidget* asLeader(CWidget* w) { return qobject_cast<LeaderWidget*>(w); }
};

QTEST_GUILESS_MAIN(ComponentsTest)
#include "tst_components.moc"
