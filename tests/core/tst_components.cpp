#include "CatalogFixture.h"

#include "model/CWidgetModel.h"


namespace
{

const QString kBar = QStringLiteral("Stylebar Tunable Dynaline 4ft");
const QString kTrough = QStringLiteral("Linea Trough Model A Dynaline 6in (100v - 120v)");

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

// An editor's choices with the current one starred.
QStringList marked(const EditorRule& editor)
{
    QStringList out = editor.choices;
    if (editor.currentIndex >= out.size())
        out << QStringLiteral("*?");
    else if (editor.currentIndex >= 0)
        out[editor.currentIndex].prepend(u'*');
    return out;
}

int maxLength(const CWidget& w)
{
    return w.editorRule(PropLength).maximum;
}

} // namespace

class TestComponents : public QObject
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
                           const QString& gauge = "14") const
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
        QVERIFY(m_db.loadFile(testDataPath("project/catalog.xml"), &quiet));
        QVERIFY2(quiet.messages.isEmpty(), qPrintable(quiet.texts().join(QLatin1Char('\n'))));
        m_duo = m_db.supplyNamed("Enabler Duo");
        m_feedFirst = m_db.supplyNamed("Enabler Feed First");
        m_line = m_db.supplyNamed("Enabler Line");
        m_bar = m_db.fixtureNamed(kBar);
        m_trough = m_db.fixtureNamed(kTrough);
        m_receiver = m_db.receivers().value(0);
        QVERIFY(m_duo && m_feedFirst && m_line && m_bar && m_trough && m_receiver);
    }

    void capacities()
    {
        QCOMPARE(SupplyWidget(&m_db, m_duo).maxChildren(), 1);
        QCOMPARE(FixtureWidget(&m_db, m_bar).maxChildren(), 1);
        for (DLJunctionBox* record : m_db.junctionBoxes()) {
            JunctionBoxWidget junction(&m_db, record);
            junction.setType(record->name);
            QCOMPARE(junction.maxChildren(), 6);
        }

        // A receiver holds what its junction box takes for the gauge of the wire above it.
        BranchWireWidget* above = wire("Feedwise", "Above Ground");
        QScopedPointer<BranchWireWidget> guard(above);
        auto* receiver = new ReceiverWidget(&m_db, m_receiver);
        above->insertChild(receiver);
        QCOMPARE(receiver->junctionBox(), "Box Alpha");
        QList<int> held{receiver->capacityA(), receiver->capacityB(), receiver->maxChildren()};
        above->setGauge("16");
        held << receiver->maxChildren();
        above->setGauge("12");
        held << receiver->maxChildren();
        receiver->setJunctionBox("Box Delta");
        held << receiver->maxChildren();
        receiver->setJunctionBox("No Box");
        held << receiver->maxChildren() << ReceiverWidget(&m_db, m_receiver).maxChildren(); // no wire: as 12 gauge
        QCOMPARE(held, (QList<int>{2, 3, 5, 6, 5, 12, 0, 5}));

        // The model refuses an insertion once a parent is full, and leaves the component alone.
        CWidgetModel model;
        auto* box = new JunctionBoxWidget(&m_db, this->box("Box Gamma"));
        const QModelIndex boxIndex = model.addComponent(box);
        QVERIFY(boxIndex.isValid());
        for (int i = 0; i < 6; ++i)
            QVERIFY(model.addComponent(new FixtureWidget(&m_db, m_bar), boxIndex).isValid());
        FixtureWidget seventh(&m_db, m_trough);
        QVERIFY(!model.addComponent(&seventh, boxIndex).isValid());
        QVERIFY(box->childCount() == 6 && !seventh.parent());
        // The invisible root takes one component.
        SupplyWidget another(&m_db, m_line);
        QVERIFY(!model.addComponent(&another).isValid());
    }

    void childOrder()
    {
        // Below anything but a leader: each fixture to the front, Feedwise branches to the end,
        // the rest in insertion order before the first Feedwise child.
        JunctionBoxWidget parent(&m_db, box("Box Gamma"));
        parent.insertChild(wire("Feedwise", "F1"));
        auto* leader = new LeaderWidget(&m_db, m_bar);
        QCOMPARE(parent.insertChild(leader), 0);
        parent.insertChild(new FixtureWidget(&m_db, m_bar));
        QCOMPARE(parent.insertChild(new FixtureWidget(&m_db, m_trough)), 0);
        parent.insertChild(wire("Dynaline", "D"));
        parent.insertChild(wire("Feedwise", "F2"));
        QCOMPARE(describe(&parent), QStringList({kTrough, kBar, "Leader", "wire D", "wire F1", "wire F2"}));

        // Below a leader fixtures keep their order.
        leader->insertChild(new FixtureWidget(&m_db, m_bar));
        leader->insertChild(wire("Feedwise", "F"));
        leader->insertChild(new FixtureWidget(&m_db, m_trough));
        QCOMPARE(describe(leader), QStringList({kBar, kTrough, "wire F"}));

        // The mode is judged as if the child already hung there: below a Feedwise supply an
        // undecided branch wire and a leader both count as Feedwise.
        SupplyWidget feedwise(&m_db, m_feedFirst);
        feedwise.insertChild(wire("Dynaline", "D"));
        feedwise.insertChild(wire("UNDEFINED", "U"));
        feedwise.insertChild(new LeaderWidget(&m_db, m_bar));
        feedwise.insertChild(wire("Dynaline", "D2"));
        QCOMPARE(describe(&feedwise), QStringList({"wire D", "wire D2", "wire U", "Leader"}));
        QCOMPARE(qobject_cast<BranchWireWidget*>(feedwise.child(2))->inputMode(), "Feedwise");

        // Below a receiver an undecided wire is Dynaline, so it stays before Feedwise ones.
        ReceiverWidget receiver(&m_db, m_receiver);
        receiver.insertChild(wire("Feedwise", "F"));
        receiver.insertChild(wire("UNDEFINED", "U"));
        QCOMPARE(describe(&receiver), QStringList({"wire U", "wire F"}));
    }

    void effectiveModes()
    {
        // Below a Feedwise supply a receiver is Feedwise; what hangs on it runs on Dynaline, except
        // a junction box, which inherits the receiver's mode.
        SupplyWidget feedwise(&m_db, m_feedFirst);
        auto* receiver = new ReceiverWidget(&m_db, m_receiver);
        feedwise.insertChild(receiver);
        auto* fixture = new FixtureWidget(&m_db, m_bar);
        auto* leader = new LeaderWidget(&m_db, m_bar);
        auto* box = new JunctionBoxWidget(&m_db, this->box("Box Beta"));
        auto* jumper = new JumperWidget(&m_db, m_bar);
        receiver->insertChild(fixture);
        receiver->insertChild(leader);
        receiver->insertChild(box);
        fixture->insertChild(jumper);
        QCOMPARE((QStringList{receiver->effectiveMode(), fixture->effectiveMode(), leader->effectiveMode(),
                              box->effectiveMode(), jumper->effectiveMode()}),
                 QStringList({"Feedwise", "Dynaline", "Dynaline", "Feedwise", "Dynaline"}));
        QCOMPARE(FixtureWidget(&m_db, m_bar).effectiveMode(), "UNDEFINED");

        // A branch wire's own mode wins; an undecided one takes its parent's and keeps it.
        auto* undecided = wire("UNDEFINED", "R");
        receiver->insertChildAt(receiver->childCount(), undecided);
        QCOMPARE(undecided->effectiveMode(), "Dynaline");
        receiver->takeChild(receiver->indexOfChild(undecided));
        feedwise.insertChildAt(0, undecided);
        QCOMPARE(undecided->effectiveMode(), "Dynaline"); // it stuck
        auto* explicitWire = wire("Feedwise", "E");
        receiver->insertChildAt(0, explicitWire);
        QCOMPARE(explicitWire->effectiveMode(), "Feedwise");

        // The mode-side location: a supply's explicit location before its output mode; a branch
        // wire's mode; everybody else the parent's.
        SupplyWidget nested(&m_db, m_duo);
        QStringList seen{nested.locationText()};
        nested.setOutputMode("Line Voltage");
        seen << nested.locationText();
        nested.setExplicitLocation("Dynaline");
        seen << nested.locationText() << nested.effectiveMode() << explicitWire->locationText()
             << fixture->locationText();
        QCOMPARE(seen, QStringList(
                           {"Dynaline", "Line Voltage", "Dynaline", "Line Voltage", "Feedwise", "Feedwise"}));
    }

    void editorChoices()
    {
        // Supply output modes: catalog order, "Feedwise" only for a supply placed by the user,
        // and only the present mode once a run hangs below it.
        SupplyWidget placed(&m_db, m_feedFirst, 0);
        QCOMPARE(marked(placed.editorRule(PropOutputMode)),
                 QStringList({"*Feedwise", "Line Voltage", "Dynaline"}));
        SupplyWidget fromFile(&m_db, m_feedFirst, 1);
        fromFile.setOutputMode("Dynaline");
        QCOMPARE(marked(fromFile.editorRule(PropOutputMode)), QStringList({"Line Voltage", "*Dynaline"}));
        fromFile.setOutputMode("Feedwise");
        QCOMPARE(fromFile.editorRule(PropOutputMode).currentIndex, -1);
        placed.insertChild(new FixtureWidget(&m_db, m_bar));
        QCOMPARE(marked(placed.editorRule(PropOutputMode)), QStringList{"*Feedwise"});
        QCOMPARE(SupplyWidget(&m_db, m_line).editorRule(PropOutputMode).choices, QStringList{"Line Voltage"});

        // Junction box: every box not reserved for receivers; the mode is the inherited one.
        SupplyWidget duo(&m_db, m_duo);
        auto* junction = new JunctionBoxWidget(&m_db, box("Box Beta"));
        duo.insertChild(junction);
        junction->setType("Box Alpha");
        QCOMPARE(marked(junction->editorRule(PropType)),
                 QStringList({"Box Gamma", "*Box Alpha", "Box Delta"}));

        // Receiver: boxes mountable on a receiver that can hold what hangs below it.
        BranchWireWidget* feed = wire("Feedwise", "Above Ground");
        QScopedPointer<BranchWireWidget> feedGuard(feed);
        auto* receiver = new ReceiverWidget(&m_db, m_receiver);
        feed->insertChild(receiver);
        // Each box left out is named once, for the editor to write to the debug log.
        const QString rejected = QStringLiteral("jbox too small or not compatible: ");
        EditorRule boxes = receiver->editorRule(PropJunctionBox);
        QCOMPARE(marked(boxes), QStringList({"*Box Alpha", "Box Delta"}));
        QCOMPARE(boxes.debugLines, QStringList({rejected + "Box Gamma", rejected + "Box Beta"}));
        for (int i = 0; i < 6; ++i)
            receiver->insertChildAt(0, new FixtureWidget(&m_db, m_bar));
        boxes = receiver->editorRule(PropJunctionBox);
        QCOMPARE(marked(boxes), QStringList{"Box Delta"});
        QCOMPARE(boxes.debugLines,
                 QStringList({rejected + "Box Gamma", rejected + "Box Beta", rejected + "Box Alpha"}));

        // Leader: the fixture's leader cables; gauges only for a custom cable, and only those
        // whose length limit allows the present length.
        LeaderWidget leader(&m_db, m_bar);
        QCOMPARE(marked(leader.editorRule(PropType)), QStringList({"*Leader 3ft", "Custom Leader"}));
        QCOMPARE((QList<int>{maxLength(leader), leader.editorRule(PropLength).value}), (QList<int>{3, 3}));
        leader.setType("Custom Leader");
        leader.setGauge("16");
        leader.setLength(10.0);
        QCOMPARE(marked(leader.editorRule(PropGauge)), QStringList({"14", "*16"}));
        leader.setLength(7.5);
        QCOMPARE(leader.editorRule(PropGauge).choices, QStringList({"14", "16", "18"}));
        const EditorRule spin = leader.editorRule(PropLength);
        QCOMPARE((QList<int>{spin.value, spin.minimum, spin.maximum}), (QList<int>{8, 1, 60}));
        leader.setGauge("14");
        QCOMPARE(maxLength(leader), 100);

        // Jumper: a custom cable's gauge limit, 175 where the limit is 0, and for a gauge the
        // cable does not list its widest wire's limit (never the editor's 999 or 0).
        JumperWidget jumper(&m_db, m_bar);
        QCOMPARE(jumper.editorRule(PropType).choices, QStringList({"Jumper 2ft", "Custom Jumper"}));
        jumper.setType("Custom Jumper");
        jumper.setLength(4.4);
        QList<int> limits;
        for (const char* gauge : {"16", "18", "10"}) {
            jumper.setGauge(gauge);
            limits << maxLength(jumper);
        }
        QCOMPARE(limits, (QList<int>{25, 175, 25}));
        QCOMPARE(jumper.editorRule(PropLength).value, 4);
        jumper.setLength(25.0); // a gauge is offered up to its limit included
        QCOMPARE(jumper.editorRule(PropGauge).choices, QStringList{"16"});

        // Branch wire lengths by mode, location and gauge.
        SupplyWidget host(&m_db, m_duo);
        BranchWireWidget* bw = wire("Feedwise", "Above Ground");
        host.insertChild(bw);
        limits = {maxLength(*bw)};
        bw->setLocation("Underground");
        limits << maxLength(*bw);
        bw->setInputMode("Dynaline");
        limits << maxLength(*bw);
        bw->setGauge("10");
        limits << maxLength(*bw);
        bw->setInputMode("Line Voltage");
        limits << maxLength(*bw);
        QCOMPARE(limits, (QList<int>{427, 294, 150, 175, 999}));
        bw->setGauge("14");
        QCOMPARE(bw->editorRule(PropGauge).choices, QStringList({"12", "14"}));
        bw->setLength(25.0);
        QCOMPARE(bw->editorRule(PropGauge).choices, QStringList({"12", "14", "16"}));
        QCOMPARE(marked(bw->editorRule(PropLocation)), QStringList({"Above Ground", "*Underground"}));
        // Input mode: the parent's mode, or below a receiver "Dynaline" (when the gauge allows
        // the length) and "Feedwise".
        bw->setInputMode("UNDEFINED");
        QCOMPARE(marked(bw->editorRule(PropInputMode)), QStringList{"*Dynaline"});
        auto* underReceiver = wire("Feedwise", "Above Ground", 30.0);
        receiver->insertChildAt(0, underReceiver);
        QCOMPARE(marked(underReceiver->editorRule(PropInputMode)), QStringList({"Dynaline", "*Feedwise"}));
        underReceiver->setGauge("16"); // 25 ft limit, 30 ft wire
        QCOMPARE(underReceiver->editorRule(PropInputMode).choices, QStringList{"Feedwise"});
        underReceiver->setLength(25.0);
        QCOMPARE(underReceiver->editorRule(PropInputMode).choices, QStringList({"Dynaline", "Feedwise"}));
    }

    void addDefaults()
    {
        // What each add button places, with which defaults, below what, and what it selects: two
        // scenarios in add-steps.txt, the trees they leave in add-defaults.txt (the selection
        // starred). Steps as in addButtonRule.
        QString out;
        for (const QString& steps : QString::fromUtf8(testDataBytes("project/add-steps.txt")).split('\n', Qt::SkipEmptyParts)) {
            ConfigDocument doc(&m_db);
            out += QStringLiteral("%1\nlast location %2\n").arg(steps, doc.lastLocation());
            runSteps(doc, steps);
            if (QTest::currentTestFailed())
                return;
            out += dump(doc, doc.root(), 0) + QStringLiteral("modified %1\n\n").arg(doc.isModified());
        }
        COMPARE_GOLDEN(out.toUtf8(), "project/add-defaults.txt");
    }

    void propertyEdits()
    {
        SupplyWidget host(&m_db, m_duo);
        BranchWireWidget* bw = wire("Feedwise", "Underground");
        host.insertChild(bw);
        QSignalSpy changes(bw, &CWidget::valueChanged);

        // Typed lengths are clamped to the limits (294 ft for Feedwise wire below ground), never
        // cut to their first digits.
        QList<double> stored;
        for (int typed : {300, 5000, 0, 120}) {
            bw->applyEditorValue(PropLength, typed);
            stored << bw->length();
        }
        QCOMPARE(stored, (QList<double>{294, 294, 1, 120}));
        QCOMPARE(changes.count(), 3); // 5000 left the 294 as it was
        // The value already held (an editor opened and left, the same entry chosen again)
        // changes nothing and announces nothing.
        QVERIFY(!bw->applyEditorValue(PropLength, 120));
        QVERIFY(!bw->applyEditorValue(PropLocation, "Underground"));
        QCOMPARE(changes.count(), 3);

        // A Type change takes the new type's defaults: a fixed jumper its 2 ft and no gauge, the
        // custom one its default wire and length, with its gauges offered.
        JumperWidget jumper(&m_db, m_bar);
        jumper.setLength(0.5);
        QStringList seen;
        for (const char* type : {"Custom Jumper", "Jumper 2ft"}) {
            QVERIFY(jumper.applyEditorValue(PropType, type));
            seen << QStringLiteral("%1|%2|%3").arg(jumper.type(), jumper.gauge()).arg(jumper.length());
        }
        QCOMPARE(seen, QStringList({"Custom Jumper|16|4", "Jumper 2ft||2"}));
        jumper.applyEditorValue(PropType, "Custom Jumper");
        QVERIFY(!jumper.editorRule(PropGauge).choices.isEmpty());

        // A custom leader whose gauge the cable does not list is limited by its widest wire
        // (100 ft), never 0, so Enter in its editor keeps 30 ft.
        LeaderWidget leader(&m_db, m_bar);
        leader.applyEditorValue(PropType, "Custom Leader");
        QCOMPARE((QStringList{leader.gauge(), QString::number(leader.length())}), QStringList({"16", "10"}));
        leader.setGauge("10");
        leader.setLength(30.0);
        QCOMPARE(maxLength(leader), 100);
        QVERIFY(!leader.applyEditorValue(PropLength, 30));
        QCOMPARE(leader.length(), 30.0);
    }

    void addButtonRule_data()
    {
        // Each row of add-buttons.tsv: the steps (see runSteps) on a fresh document with the Duo
        // enabler, the buttons enabled after them and the jumper button.
        QTest::addColumn<QStringList>("row");
        for (const QStringList& row : dataRows("project/add-buttons.tsv"))
            QTest::newRow(qPrintable(row.at(0))) << row;
    }

    void addButtonRule()
    {
        QFETCH(QStringList, row);
        ConfigDocument doc(&m_db);
        doc.addSupply(m_duo);
        const Additions a = doc.allowedAdditions(runSteps(doc, row.at(1)));
        QStringList on;
        const std::pair<const char*, bool> named[] = {{"fixture", a.fixture},     {"leader", a.leader},
                                                      {"receiver", a.receiver},   {"box", a.junctionBox},
                                                      {"enabler", a.enabler},     {"maximize", a.maximize}};
        for (const auto& [label, allowed] : named)
            if (allowed)
                on << label;
        QCOMPARE(on.join(' '), row.at(2));
        const QMap<QString, int> jumpers{{"same", Additions::JumperUnchanged},
                                         {"off", Additions::JumperOff},
                                         {"on", Additions::JumperOn}};
        QCOMPARE(int(a.jumper), jumpers.value(row.at(3), -1));
    }

    void addsNeedARootAndRecords()
    {
        // An empty canvas takes only an enabler: nothing else may become a root.
        ConfigDocument empty(&m_db);
        QVERIFY(!empty.addJunctionBox() && !empty.addReceiver() && !empty.addFixture(m_bar) &&
                !empty.addLeader(m_bar) && !empty.addJumper(m_bar));
        QCOMPARE(empty.count(ItemAny), 0);
        QVERIFY(!empty.isModified());
        QVERIFY(empty.addSupply(m_duo));
        // A second enabler needs a selection to hang below.
        empty.setCurrentIndex(QModelIndex());
        QVERIFY(!empty.addSupply(m_duo));
        QCOMPARE(empty.count(ItemAny), 1);

        // Without the catalog's records nothing is added, not even the branch wire before it.
        Database none;
        ConfigDocument bare(&none);
        bare.setRoot(new SupplyWidget(&m_db, m_duo));
        QVERIFY(!bare.addReceiver() && !bare.addJunctionBox());
        QVERIFY(!bare.addSupply(nullptr) && !bare.addFixture(nullptr));
        QCOMPARE(bare.count(ItemAny), 1);
    }

private:
    // Runs the steps on doc; returns the fixture chosen for the add buttons. Steps: add a
    // "fixture", "jumper" or "leader" (":trough" for the other fixture), a "box", a "receiver" or
    // an "enabler" (":feedfirst"); select the "parent", the "root", the component "at:0.1" (child
    // indexes from the root) or "nothing"; "delete" the current component; make the enabler
    // "feedwise"; "type=", "length=" or "location=" edit the current component ('_' for a space).
    // "family1": the chosen fixture has family 1. "nobox": the receiver names no junction box,
    // as an old project may; "63receivers": the most a run holds, each below the one before.
    const DLFixture* runSteps(ConfigDocument& doc, const QString& steps)
    {
        static DLFixture familyOne(QStringLiteral("One"), 1);
        familyOne.family = 1;
        const DLFixture* chosen = m_bar;
        const QMap<QString, int> edits{{"type", PropType}, {"length", PropLength}, {"location", PropLocation}};
        for (const QString& step : steps.split(' ', Qt::SkipEmptyParts)) {
            const QString name = step.section(QRegularExpression("[:=]"), 0, 0);
            const QString arg = step.section(QRegularExpression("[:=]"), 1).replace('_', ' ');
            DLFixture* fixture = arg == "trough" ? m_trough : m_bar;
            bool ok = true;
            if (name == "fixture")
                ok = doc.addFixture(fixture);
            else if (name == "jumper")
                ok = doc.addJumper(fixture);
            else if (name == "leader")
                ok = doc.addLeader(fixture);
            else if (name == "box")
                ok = doc.addJunctionBox();
            else if (name == "receiver")
                ok = doc.addReceiver();
            else if (name == "enabler")
                ok = doc.addSupply(arg == "feedfirst" ? m_feedFirst : m_duo);
            else if (name == "parent")
                doc.setCurrent(doc.current()->parentWidget());
            else if (name == "root")
                doc.setCurrent(doc.root());
            else if (name == "at") {
                const CWidget* w = doc.root();
                for (const QString& index : arg.split('.'))
                    w = w->child(index.toInt());
                doc.setCurrent(w);
            } else if (name == "delete")
                ok = doc.removeCurrent();
            else if (name == "nothing")
                doc.setCurrentIndex(QModelIndex());
            else if (name == "feedwise")
                ok = doc.root()->applyEditorValue(PropOutputMode, "Feedwise");
            else if (edits.contains(name))
                ok = doc.current()->applyEditorValue(edits.value(name), arg);
            else if (name == "family1")
                chosen = &familyOne;
            else if (name == "nobox")
                qobject_cast<ReceiverWidget*>(doc.current())->setJunctionBox(QString());
            else if (name == "63receivers")
                for (int i = 0; i < 63 && ok; ++i)
                    ok = doc.addReceiver();
            if (!QTest::qVerify(ok, qPrintable(step), "", __FILE__, __LINE__))
                break;
        }
        return chosen;
    }

    // The tree below w, one component a line: its kind, record and properties, a branch
    // wire's spare count, an enabler's explicit location, a cable's resistance per foot.
    static QString dump(const ConfigDocument& doc, const CWidget* w, int depth)
    {
        QString line = QString(depth * 2, ' ') + (w == doc.current() ? "*" : "") + w->displayName();
        const QMetaObject* meta = w->metaObject();
        if (w->catalogItem() && w->catalogItem()->name != w->displayName())
            line += " record=" + w->catalogItem()->name;
        for (int i = QObject::staticMetaObject.propertyCount() + 1; i < meta->propertyCount(); ++i)
            line += QStringLiteral(" %1=%2").arg(meta->property(i).name(), meta->property(i).read(w).toString());
        if (auto* b = qobject_cast<const BranchWireWidget*>(w))
            line += QStringLiteral(" spare=%1").arg(b->spare());
        if (auto* s = qobject_cast<const SupplyWidget*>(w))
            line += QStringLiteral(" explicitLocation=%1").arg(s->explicitLocation());
        if (auto* c = qobject_cast<const CableWidget*>(w))
            line += QStringLiteral(" ohmsPerFoot=%1").arg(c->resistancePerFoot());
        line += '\n';
        for (const CWidget* c : w->children())
            line += dump(doc, c, depth + 1);
        return line;
    }
};

QTEST_GUILESS_MAIN(TestComponents)
#include "tst_components.moc"
