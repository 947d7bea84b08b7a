#include "TestSupport.h"

#include "catalog/Database.h"
#include "catalog/Reporter.h"
#include "model/CWidget.h"
#include "model/CWidgetModel.h"
#include "model/ConfigDocument.h"
#include "model/HeaderChoices.h"
#include "model/ProjectFile.h"

#include <QDir>
#include <QDomDocument>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QSignalSpy>
#include <QtTest>

#ifdef Q_OS_UNIX
#include <csignal>
#include <sys/resource.h>
#endif

namespace
{

const QString kBar = QStringLiteral("Stylebar Tunable Dynaline 4ft");
const QString kTrough = QStringLiteral("Linea Trough Model A Dynaline 6in (100v - 120v)");

QByteArray readAll(const QString& path)
{
    QFile f(path);
    if (!f.open(QIODevice::ReadOnly))
        return QByteArray();
    return f.readAll();
}

bool writeFile(const QString& path, const QByteArray& bytes)
{
    QFile f(path);
    return f.open(QIODevice::WriteOnly) && f.write(bytes) == bytes.size();
}

QList<CWidget*> preorder(CWidget* root)
{
    QList<CWidget*> out;
    QList<CWidget*> pending;
    if (root)
        pending.append(root);
    while (!pending.isEmpty()) {
        CWidget* w = pending.takeLast();
        out.append(w);
        for (auto it = w->children().crbegin(); it != w->children().crend(); ++it)
            pending.append(*it);
    }
    return out;
}

// Kind and catalog name of each child, in order: "2:Stylebar ...", "5:", ...
QStringList childKinds(const CWidget* w)
{
    QStringList out;
    for (const CWidget* c : w->children())
        out << QStringLiteral("%1:%2")
                   .arg(c->itemType())
                   .arg(c->catalogItem() ? c->catalogItem()->name : QString());
    return out;
}

CableWidget* asCable(CWidget* w)
{
    return qobject_cast<CableWidget*>(w);
}

QByteArray project(const QString& widgets, const QString& headerAttributes = QString())
{
    const QString header = headerAttributes.isEmpty()
                               ? QStringLiteral("CurrentSupplyName=\"Enabler Duo\" LineVoltage=\"120\" "
                                                "MaxCircuitLoad=\"15\" Frequency=\"60 Hz\"")
                               : headerAttributes;
    return QStringLiteral("<!DOCTYPE RunplanConfigurationFile>\n<Runplan %1>\n<CFrame techType=\"1\">\n%2\n"
                          "</CFrame>\n</Runplan>\n")
        .arg(header, widgets)
        .toUtf8();
}

// A run nested to the given number of components: a supply, then fixture and jumper in turn.
QByteArray deepProject(int components)
{
    QByteArray out = "<!DOCTYPE RunplanConfigurationFile>\n<Runplan CurrentSupplyName=\"Enabler Duo\">\n"
                     "<CFrame techType=\"1\">\n<CWidget CWidgetItemType=\"0\" name=\"Enabler Duo\" "
                     "outputMode=\"Dynaline\">\n";
    for (int i = 1; i < components; ++i) {
        if (i % 2)
            out += "<CWidget CWidgetItemType=\"2\" name=\"Stylebar Tunable Dynaline 4ft\">\n";
        else
            out += "<CWidget CWidgetItemType=\"3\" type=\"Jumper 2ft\" fixtureName=\"Stylebar Tunable "
                   "Dynaline 4ft\">\n";
    }
    for (int i = 0; i < components; ++i)
        out += "</CWidget>\n";
    out += "</CFrame>\n</Runplan>\n";
    return out;
}

int treeDepth(const CWidget* root)
{
    int depth = 0;
    for (const CWidget* w = root; w; w = w->child(0))
        ++depth;
    return depth;
}

} // namespace

class ProjectFileTest : public QObject
{
    Q_OBJECT

private:
    Database m_db;
    DLPowerSupply* m_duo = nullptr;
    DLFixture* m_bar = nullptr;
    DLFixture* m_trough = nullptr;

    HeaderValues sampleHeader() const
    {
        HeaderValues h;
        h.supply = QStringLiteral("Enabler Duo");
        h.fixture = kBar;
        h.lineVoltage = QStringLiteral("Other");
        h.customVoltage = 208;
        h.maxCircuitLoad = QStringLiteral("15");
        h.customLoad = 17;
        h.frequency = QStringLiteral("60 Hz");
        h.controller = QStringLiteral("Small Controller");
        return h;
    }

    // Enabler, leader, fixture and fixed jumper.
    void buildSmall(ConfigDocument& doc)
    {
        CWidget* supply = doc.addSupply(m_duo);
        supply->setDynaLineLength(12.5);
        doc.addLeader(m_bar);
        doc.addFixture(m_bar);
        doc.addJumper(m_bar);
    }

    // A configuration holding every kind of component, custom cables and a second enabler fed
    // through a Feedwise branch wire.
    void buildEveryKind(ConfigDocument& doc)
    {
        CWidget* s0 = doc.addSupply(m_duo);
        QVERIFY(s0);
        s0->setDynaLineLength(12.5);
        CWidget* jb0 = doc.addJunctionBox();
        QVERIFY(jb0);

        QVERIFY(doc.addLeader(m_bar));
        QVERIFY(doc.addFixture(m_bar));
        QVERIFY(doc.addJumper(m_bar));
        QVERIFY(doc.addFixture(m_bar));

        doc.setCurrent(jb0);
        CableWidget* l2 = asCable(doc.addLeader(m_trough));
        QVERIFY(l2);
        l2->setType(QStringLiteral("Custom Leader"));
        l2->setGauge(QStringLiteral("14"));
        l2->setLength(37.5);
        QVERIFY(doc.addFixture(m_trough));
        CableWidget* j2 = asCable(doc.addJumper(m_trough));
        QVERIFY(j2);
        QCOMPARE(j2->type(), QStringLiteral("Custom Jumper"));
        j2->setLength(7.25);

        doc.setCurrent(jb0);
        QVERIFY(doc.addFixture(m_trough));

        doc.setCurrent(jb0);
        CWidget* s1 = doc.addSupply(m_duo);
        QVERIFY(s1);
        s1->setDynaLineLength(3.75);
        QVERIFY(doc.addLeader(m_bar));
        QVERIFY(doc.addFixture(m_bar));

        doc.setCurrent(jb0);
        CWidget* r1 = doc.addReceiver();
        QVERIFY(r1);
        r1->setDynaLineLength(33.25);
        auto* bw2 = qobject_cast<BranchWireWidget*>(r1->parentWidget());
        QVERIFY(bw2);
        bw2->setLocation(QStringLiteral("Underground"));
        bw2->setLength(123.456);
        QVERIFY(doc.addFixture(m_bar));
        doc.setCurrent(r1);
        QVERIFY(doc.addLeader(m_bar));
        doc.setCurrent(r1);
        QVERIFY(doc.addJunctionBox());
    }

private slots:
    void initTestCase()
    {
        RecordingReporter quiet;
        QVERIFY(m_db.loadFile(testDataPath(QStringLiteral("project/catalog.xml")), &quiet));
        QVERIFY2(quiet.messages.isEmpty(), qPrintable(quiet.texts().join(QLatin1Char('\n'))));
        m_duo = m_db.supplyNamed(QStringLiteral("Enabler Duo"));
        m_bar = m_db.fixtureNamed(kBar);
        m_trough = m_db.fixtureNamed(kTrough);
        QVERIFY(m_duo && m_bar && m_trough);
    }

    void extensionAndLegacyNames()
    {
        QCOMPARE(ProjectFile::withExtension(QStringLiteral("/x/plan")), QStringLiteral("/x/plan.rpproj"));
        QCOMPARE(ProjectFile::withExtension(QStringLiteral("/x/plan.rpproj")),
                 QStringLiteral("/x/plan.rpproj"));
        QCOMPARE(ProjectFile::withExtension(QStringLiteral("/x/plan.RPPROJ")),
                 QStringLiteral("/x/plan.RPPROJ.rpproj"));
        QCOMPARE(ProjectFile::withExtension(QStringLiteral("/x/plan.rpproj.bak")),
                 QStringLiteral("/x/plan.rpproj.bak.rpproj"));

        const QList<QPair<QString, QString>> table{
            {QStringLiteral("Linea Trough Model A Dynaline 6in"), kTrough},
            {QStringLiteral("Linea Trough Model B Dynaline 6in"),
             QStringLiteral("Linea Trough Model B Dynaline 6in (100v - 120v)")},
            {QStringLiteral("Glowbar Tunable Dynaline 1ft"), QStringLiteral("Stylebar Tunable Dynaline 1ft")},
            {QStringLiteral("Glowbar Tint (RGBA/RGBW) Dynaline 1ft"),
             QStringLiteral("Stylebar Tint (RGBA/RGBW) Dynaline 1ft")},
            {QStringLiteral("Glowbar Tunable Dynaline 4ft"), kBar},
            {QStringLiteral("Glowbar Tint (RGBA/RGBW) Dynaline 4ft"),
             QStringLiteral("Stylebar Tint (RGBA/RGBW) Dynaline 4ft")},
        };
        for (const auto& entry : table)
            QCOMPARE(ProjectFile::mapLegacyFixtureName(entry.first), entry.second);
        // Exact comparison only; new names and anything else pass unchanged.
        for (const QString& kept :
             {QStringLiteral("glowbar tunable dynaline 4ft"), QStringLiteral("Glowbar Tunable Dynaline 4ft "),
              kBar, kTrough, QString()})
            QCOMPARE(ProjectFile::mapLegacyFixtureName(kept), kept);
    }

    void layoutOfASmallProject()
    {
        ConfigDocument doc(&m_db);
        buildSmall(doc);
        const HeaderValues header = sampleHeader();
        const QByteArray expected = readAll(testDataPath(QStringLiteral("project/small-layout.rpproj")));
        QVERIFY(!expected.isEmpty());
        QCOMPARE(ProjectFile::toBytes(doc, header), expected);

        // The same document through a file, then read back and written again.
        QTemporaryDir dir;
        RecordingReporter rec;
        QString saved;
        QVERIFY(ProjectFile::save(dir.filePath(QStringLiteral("small")), doc, header, &rec, &saved));
        QCOMPARE(saved, dir.filePath(QStringLiteral("small.rpproj")));
        QCOMPARE(readAll(saved), expected);

        ConfigDocument again(&m_db);
        HeaderValues header2;
        QVERIFY(ProjectFile::open(saved, again, header2, &rec));
        QCOMPARE(ProjectFile::toBytes(again, header2), expected);
        QVERIFY(rec.messages.isEmpty());

        // The DOM form carries the same content.
        const QDomDocument dom = ProjectFile::buildDocument(doc, header);
        QCOMPARE(dom.doctype().name(), QStringLiteral("RunplanConfigurationFile"));
        const QDomElement root = dom.documentElement();
        QCOMPARE(root.tagName(), QStringLiteral("Runplan"));
        QCOMPARE(root.attribute(QStringLiteral("appVersion")),
                 QStringLiteral("3.17.0 Build 20250205-2cbee83"));
        QCOMPARE(root.firstChildElement(QStringLiteral("CFrame"))
                     .firstChildElement()
                     .attribute(QStringLiteral("name")),
                 QStringLiteral("Enabler Duo"));
    }

    void roundTripEveryKind()
    {
        ConfigDocument doc(&m_db);
        buildEveryKind(doc);
        if (QTest::currentTestFailed())
            return;
        for (int kind = ItemSupply; kind <= ItemJunctionBox; ++kind)
            QVERIFY2(doc.count(kind) > 0, qPrintable(QStringLiteral("no component of kind %1").arg(kind)));
        QVERIFY(doc.count(ItemSupply) == 2);

        const HeaderValues header = sampleHeader();
        const QByteArray first = ProjectFile::toBytes(doc, header);

        ConfigDocument copy(&m_db);
        HeaderValues header2;
        RecordingReporter rec;
        QVERIFY(ProjectFile::read(first, copy, header2, &rec));
        QVERIFY(rec.messages.isEmpty() && rec.statusLines.isEmpty());
        QCOMPARE(ProjectFile::toBytes(copy, header2), first);
        for (int kind = ItemSupply; kind <= ItemJunctionBox; ++kind)
            QCOMPARE(copy.count(kind), doc.count(kind));
        QVERIFY(!copy.isModified());

        // Values that travel through the file.
        const QList<CWidget*> all = preorder(copy.root());
        QCOMPARE(all.size(), preorder(doc.root()).size());
        bool sawCustomLeader = false, sawWire = false, sawReceiver = false;
        for (CWidget* w : all) {
            if (auto* c = asCable(w); c && c->itemType() == ItemLeader && c->fixtureRecord() == m_trough) {
                sawCustomLeader = true;
                QCOMPARE(c->type(), QStringLiteral("Custom Leader"));
                QCOMPARE(c->gauge(), QStringLiteral("14"));
                QCOMPARE(c->length(), 37.5);
            }
            if (auto* b = qobject_cast<BranchWireWidget*>(w);
                b && b->location() == QStringLiteral("Underground")) {
                sawWire = true;
                QCOMPARE(b->length(), 123.456);
                QCOMPARE(b->inputMode(), QStringLiteral("Feedwise"));
            }
            if (auto* r = qobject_cast<ReceiverWidget*>(w)) {
                sawReceiver = true;
                QCOMPARE(r->dynaLineLength(), 33.25);
                QCOMPARE(r->junctionBox(), QStringLiteral("Box Alpha"));
                QCOMPARE(childKinds(r).value(0), QStringLiteral("2:") + kBar);
                QCOMPARE(r->children().last()->effectiveMode(), QStringLiteral("Feedwise"));
            }
        }
        QVERIFY(sawCustomLeader && sawWire && sawReceiver);

        // Through a file as well: the bytes on disk are the bytes of the document.
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("every.rpproj"));
        QVERIFY(ProjectFile::save(path, copy, header2, &rec));
        QCOMPARE(readAll(path), first);
    }

    // Every component read from a file reports its edits: the user is asked to save afterwards.
    void editsAfterReadingMarkModified()
    {
        ConfigDocument doc(&m_db);
        buildEveryKind(doc);
        if (QTest::currentTestFailed())
            return;
        ConfigDocument copy(&m_db);
        HeaderValues header;
        RecordingReporter rec;
        QVERIFY(ProjectFile::read(ProjectFile::toBytes(doc, sampleHeader()), copy, header, &rec));
        QVERIFY(!copy.isModified());
        QSignalSpy edited(&copy, &ConfigDocument::componentChanged);
        CWidget* deepest = copy.root();
        while (deepest->childCount() > 0)
            deepest = deepest->child(deepest->childCount() - 1);
        QVERIFY(deepest != copy.root());
        const QModelIndex idx = copy.indexOf(deepest);
        const int column = deepest->propertyIds().contains(PropType) ? PropType : PropName;
        QVERIFY(copy.model()->setData(copy.model()->index(idx.row(), column, idx.parent()),
                                      deepest->cellData(column, Qt::EditRole), Qt::EditRole));
        QCOMPARE(edited.count(), 1);
        QVERIFY(copy.isModified());
    }

    void textsSurviveEscaping()
    {
        ConfigDocument doc(&m_db);
        buildSmall(doc);
        HeaderValues header = sampleHeader();
        header.controller = QStringLiteral("A&B <\"x\"> 'y' ]]> tab\there\nnext\r\nline");
        header.fixture = QStringLiteral("Fixtüre ✓ ß");
        header.frequency = QStringLiteral("  50 Hz  ");
        auto* jumper = asCable(doc.root()->child(0)->child(0)->child(0));
        QVERIFY(jumper);
        jumper->setType(QStringLiteral("Custom <&> \"q\""));
        jumper->setGauge(QStringLiteral("1\t6"));

        const QByteArray bytes = ProjectFile::toBytes(doc, header);
        QDomDocument check;
        QVERIFY(check.setContent(bytes));

        ConfigDocument copy(&m_db);
        HeaderValues back;
        QVERIFY(ProjectFile::read(bytes, copy, back, nullptr));
        QCOMPARE(back.controller, header.controller);
        QCOMPARE(back.fixture, header.fixture);
        QCOMPARE(back.frequency, header.frequency);
        auto* again = asCable(copy.root()->child(0)->child(0)->child(0));
        QVERIFY(again);
        QCOMPARE(again->type(), jumper->type());
        QCOMPARE(again->gauge(), jumper->gauge());
        QCOMPARE(ProjectFile::toBytes(copy, back), bytes);
    }

    void headerChoices()
    {
        ConfigDocument doc(&m_db);
        doc.addSupply(m_duo);
        auto rootOf = [&](const HeaderValues& h) {
            QDomDocument dom;
            dom.setContent(ProjectFile::toBytes(doc, h));
            return dom.documentElement();
        };

        HeaderValues h = sampleHeader();
        h.lineVoltage = QStringLiteral("277");
        h.maxCircuitLoad = QStringLiteral("20");
        QDomElement r = rootOf(h);
        QVERIFY(!r.hasAttribute(QStringLiteral("CustomLineVoltage")));
        QVERIFY(!r.hasAttribute(QStringLiteral("CustomMaxCircuitLoad")));
        QCOMPARE(r.attribute(QStringLiteral("LineVoltage")), QStringLiteral("277"));

        h.maxCircuitLoad = QStringLiteral("Other");
        h.customLoad = 17;
        r = rootOf(h);
        QVERIFY(!r.hasAttribute(QStringLiteral("CustomLineVoltage")));
        QCOMPARE(r.attribute(QStringLiteral("CustomMaxCircuitLoad")), QStringLiteral("17"));

        h.lineVoltage = QStringLiteral("other"); // the comparison is exact
        r = rootOf(h);
        QVERIFY(!r.hasAttribute(QStringLiteral("CustomLineVoltage")));

        // Reading: the custom values only with "Other", their defaults when absent.
        auto readHeader = [&](const QString& attrs) {
            HeaderValues in;
            in.customVoltage = 999;
            in.customLoad = 999;
            in.controller = QStringLiteral("Keep");
            in.frequency = QStringLiteral("Keep");
            ConfigDocument target(&m_db);
            ProjectFile::read(project(QString(), attrs), target, in, nullptr);
            return in;
        };
        HeaderValues in = readHeader(QStringLiteral("LineVoltage=\"Other\" MaxCircuitLoad=\"Other\""));
        QCOMPARE(in.lineVoltage, QStringLiteral("Other"));
        QCOMPARE(in.customVoltage, 120);
        QCOMPARE(in.customLoad, 15);
        QCOMPARE(in.frequency, QStringLiteral("1"));
        QCOMPARE(in.controller, QStringLiteral("Keep")); // an empty controller selects nothing
        QCOMPARE(in.supply, QString());

        in = readHeader(
            QStringLiteral("LineVoltage=\"120\" CustomLineVoltage=\"230\" MaxCircuitLoad=\"20\" "
                           "CustomMaxCircuitLoad=\"30\" Frequency=\"50 Hz\" Controller=\"Small Controller\" "
                           "CurrentFixtureName=\"Glowbar Tunable Dynaline 4ft\""));
        QCOMPARE(in.customVoltage, 999);
        QCOMPARE(in.customLoad, 999);
        QCOMPARE(in.maxCircuitLoad, QStringLiteral("20"));
        QCOMPARE(in.frequency, QStringLiteral("50 Hz"));
        QCOMPARE(in.controller, QStringLiteral("Small Controller"));
        QCOMPARE(in.fixture, kBar);

        in = readHeader(
            QStringLiteral("LineVoltage=\"Other\" CustomLineVoltage=\"230\" MaxCircuitLoad=\"Other\" "
                           "CustomMaxCircuitLoad=\"18\""));
        QCOMPARE(in.customVoltage, 230);
        QCOMPARE(in.customLoad, 18);
    }

    void readingRules()
    {
        // A fixed jumper carries neither gauge nor length; it comes back with the constructor's
        // values, not with its cable's.
        ConfigDocument doc(&m_db);
        buildSmall(doc);
        auto* jumper = asCable(doc.root()->child(0)->child(0)->child(0));
        QVERIFY(jumper && !jumper->isCustom());
        QCOMPARE(jumper->length(), 2.0); // placed: the fixed cable's length
        const QByteArray bytes = ProjectFile::toBytes(doc, sampleHeader());
        QDomDocument dom;
        dom.setContent(bytes);
        const QDomElement jumperElement =
            dom.elementsByTagName(QStringLiteral("CWidget")).item(3).toElement();
        QCOMPARE(jumperElement.attribute(QStringLiteral("CWidgetItemType")), QStringLiteral("3"));
        QVERIFY(!jumperElement.hasAttribute(QStringLiteral("gauge")));
        QVERIFY(!jumperElement.hasAttribute(QStringLiteral("length")));
        QCOMPARE(jumperElement.attribute(QStringLiteral("fixtureName")), kBar);

        ConfigDocument copy(&m_db);
        HeaderValues h;
        ProjectFile::read(bytes, copy, h, nullptr);
        auto* reread = asCable(copy.root()->child(0)->child(0)->child(0));
        QVERIFY(reread);
        QCOMPARE(reread->type(), QStringLiteral("Jumper 2ft"));
        QCOMPARE(reread->length(), 1.0);
        QCOMPARE(reread->gauge(), QString());
        auto* leader = asCable(copy.root()->child(0));
        QCOMPARE(leader->length(), 3.0);
        QCOMPARE(leader->gauge(), QString());

        // A supply read from a file never offers "Feedwise"; the same supply placed anew does.
        QCOMPARE(copy.root()->ordinal(), 1);
        ConfigDocument fresh(&m_db);
        CWidget* placed = fresh.addSupply(m_db.supplyNamed(QStringLiteral("Enabler Feed First")));
        QCOMPARE(placed->ordinal(), 0);
        QCOMPARE(placed->editorSpec(PropOutputMode).choices,
                 QStringList({QStringLiteral("Feedwise"), QStringLiteral("Line Voltage"),
                              QStringLiteral("Dynaline")}));
        ConfigDocument loaded(&m_db);
        ProjectFile::read(
            project(QStringLiteral(
                "<CWidget CWidgetItemType=\"0\" name=\"Enabler Feed First\" outputMode=\"Dynaline\"/>")),
            loaded, h, nullptr);
        QVERIFY(loaded.root());
        QCOMPARE(loaded.root()->ordinal(), 1);
        const EditorSpec spec = loaded.root()->editorSpec(PropOutputMode);
        QCOMPARE(spec.choices, QStringList({QStringLiteral("Line Voltage"), QStringLiteral("Dynaline")}));
        QCOMPARE(spec.currentIndex, 1);

        // While reading, creation defaults stay off: what the file leaves out stays empty.
        ProjectFile::read(
            project(QStringLiteral(
                "<CWidget CWidgetItemType=\"0\" name=\"Enabler Duo\">"
                "<CWidget CWidgetItemType=\"5\" name=\"Branch Wire\" inputMode=\"Feedwise\">"
                "<CWidget CWidgetItemType=\"4\" name=\"Receiver Two\"/></CWidget>"
                "<CWidget CWidgetItemType=\"1\" fixtureName=\"Linea Trough Model A Dynaline 6in\"/>"
                "</CWidget>")),
            loaded, h, nullptr);
        auto* supply = qobject_cast<SupplyWidget*>(loaded.root());
        QVERIFY(supply);
        QCOMPARE(supply->outputMode(), QString());
        auto* wire = qobject_cast<BranchWireWidget*>(supply->child(1));
        QVERIFY(wire);
        QCOMPARE(wire->gauge(), QString());
        QCOMPARE(wire->length(), 20.0);
        QCOMPARE(wire->location(), QString());
        auto* receiver = qobject_cast<ReceiverWidget*>(wire->child(0));
        QVERIFY(receiver);
        QCOMPARE(receiver->junctionBox(), QString());
        // The receiver record is always the catalog's first; a file's "name" does not change it.
        QCOMPARE(receiver->catalogItem()->name, QStringLiteral("Receiver One"));
        auto* legacyLeader = asCable(supply->child(0));
        QVERIFY(legacyLeader);
        QCOMPARE(legacyLeader->fixtureRecord(), m_trough);
        QCOMPARE(legacyLeader->type(), QString());
        QCOMPARE(legacyLeader->length(), 20.0);
        QVERIFY(!ComponentLoading::active());

        // Attributes: unknown names become string properties, read-only ones are ignored,
        // numbers that do not parse read as 0.
        ProjectFile::read(project(QStringLiteral(
                              "<CWidget CWidgetItemType=\"0\" name=\"Enabler Duo\" outputMode=\"Dynaline\">"
                              "<CWidget CWidgetItemType=\"5\" name=\"Renamed\" colour=\"red\" "
                              "length=\"12.25\" gauge=\"16\" "
                              "inputMode=\"Dynaline\" location=\"Underground\" junctionBox=\"Box Alpha\" "
                              "dynaLineLength=\"5\"/>"
                              "</CWidget>")),
                          loaded, h, nullptr);
        wire = qobject_cast<BranchWireWidget*>(loaded.root()->child(0));
        QVERIFY(wire);
        QCOMPARE(wire->name(), QStringLiteral("Branch Wire"));
        QCOMPARE(wire->property("colour"), QVariant(QStringLiteral("red")));
        QCOMPARE(wire->property("junctionBox"), QVariant(QStringLiteral("Box Alpha")));
        QCOMPARE(wire->property("dynaLineLength"), QVariant(QStringLiteral("5")));
        QCOMPARE(wire->property("CWidgetItemType"), QVariant(QStringLiteral("5")));
        QCOMPARE(wire->length(), 12.25);
        QCOMPARE(wire->gauge(), QStringLiteral("16"));
        QCOMPARE(wire->location(), QStringLiteral("Underground"));
        QCOMPARE(wire->wireRecord(), m_db.firstBranchWire());

        RecordingReporter rec;
        QVERIFY(
            ProjectFile::open(testDataPath(QStringLiteral("project/non-numeric.rpproj")), loaded, h, &rec));
        QVERIFY(rec.messages.isEmpty());
        QCOMPARE(h.customVoltage, 0);
        QCOMPARE(h.customLoad, 0);
        QVERIFY(loaded.root());
        QCOMPARE(loaded.root()->itemType(), int(ItemSupply)); // "zero" reads as kind 0
        QCOMPARE(loaded.root()->dynaLineLength(), 0.0);
        QCOMPARE(loaded.techType(), 1);
        const QList<CWidget*> chain = preorder(loaded.root());
        QCOMPARE(chain.size(), 8);
        for (CWidget* w : chain) {
            if (auto* c = asCable(w)) {
                QCOMPARE(c->length(), 0.0);
                QVERIFY(c->isCustom());
            }
        }
    }

    void childOrderOnReading()
    {
        // Under a junction box: fixtures to the front (each new one first), Feedwise branches to
        // the end, the rest in file order between them.
        ConfigDocument doc(&m_db);
        HeaderValues h;
        ProjectFile::read(
            project(QStringLiteral(
                "<CWidget CWidgetItemType=\"0\" name=\"Enabler Duo\" outputMode=\"Dynaline\">"
                "<CWidget CWidgetItemType=\"6\" type=\"Box Gamma\">"
                "<CWidget CWidgetItemType=\"5\" inputMode=\"Feedwise\" location=\"A\"/>"
                "<CWidget CWidgetItemType=\"2\" name=\"Stylebar Tunable Dynaline 4ft\"/>"
                "<CWidget CWidgetItemType=\"1\" type=\"Leader 3ft\" fixtureName=\"Stylebar Tunable Dynaline "
                "4ft\"/>"
                "<CWidget CWidgetItemType=\"5\" inputMode=\"Dynaline\" location=\"B\"/>"
                "<CWidget CWidgetItemType=\"2\" name=\"Linea Trough Model A Dynaline 6in (100v - 120v)\"/>"
                "<CWidget CWidgetItemType=\"5\" inputMode=\"Feedwise\" location=\"C\"/>"
                "</CWidget></CWidget>")),
            doc, h, nullptr);
        QVERIFY(doc.root());
        CWidget* box = doc.root()->child(0);
        QVERIFY(box);
        QStringList order;
        for (const CWidget* c : box->children()) {
            if (auto* b = qobject_cast<const BranchWireWidget*>(c))
                order << b->location();
            else
                order << QStringLiteral("%1:%2").arg(c->itemType()).arg(c->catalogItem()->name);
        }
        QCOMPARE(order, QStringList({QStringLiteral("2:") + kTrough, QStringLiteral("2:") + kBar,
                                     QStringLiteral("1:") + kBar, QStringLiteral("B"), QStringLiteral("A"),
                                     QStringLiteral("C")}));

        // Under a leader fixtures keep their file order; an undefined branch wire below a receiver
        // takes "Dynaline" (so it goes before the Feedwise one) and keeps it.
        ProjectFile::read(
            project(QStringLiteral(
                "<CWidget CWidgetItemType=\"0\" name=\"Enabler Duo\" outputMode=\"Dynaline\">"
                "<CWidget CWidgetItemType=\"1\" type=\"Leader 3ft\" fixtureName=\"Stylebar Tunable Dynaline "
                "4ft\">"
                "<CWidget CWidgetItemType=\"2\" name=\"Stylebar Tunable Dynaline 4ft\"/>"
                "<CWidget CWidgetItemType=\"2\" name=\"Linea Trough Model A Dynaline 6in (100v - 120v)\">"
                "<CWidget CWidgetItemType=\"4\">"
                "<CWidget CWidgetItemType=\"5\" inputMode=\"Feedwise\" location=\"F\"/>"
                "<CWidget CWidgetItemType=\"5\" inputMode=\"UNDEFINED\" location=\"U\"/>"
                "</CWidget></CWidget></CWidget></CWidget>")),
            doc, h, nullptr);
        CWidget* leader = doc.root()->child(0);
        QCOMPARE(childKinds(leader),
                 QStringList({QStringLiteral("2:") + kBar, QStringLiteral("2:") + kTrough}));
        CWidget* receiver = leader->child(1)->child(0);
        QVERIFY(receiver && receiver->itemType() == ItemReceiver);
        auto* first = qobject_cast<BranchWireWidget*>(receiver->child(0));
        QVERIFY(first);
        QCOMPARE(first->location(), QStringLiteral("U"));
        QCOMPARE(first->inputMode(), QStringLiteral("Dynaline"));
    }

    void framesAndDroppedSubtrees()
    {
        ConfigDocument doc(&m_db);
        doc.setTechType(3);
        HeaderValues h;
        RecordingReporter rec;

        QVERIFY(ProjectFile::open(testDataPath(QStringLiteral("project/two-cframes.rpproj")), doc, h, &rec));
        QVERIFY(doc.root());
        QCOMPARE(doc.root()->catalogItem()->name, QStringLiteral("Enabler Duo"));
        QCOMPARE(doc.count(ItemAny), 2);
        QCOMPARE(doc.techType(), 3); // not read back from the file
        QCOMPARE(doc.model()->rowCount(), 1);
        QCOMPARE(doc.current(), doc.root());

        // Unknown kinds and names drop their subtrees; their siblings stay.
        QVERIFY(
            ProjectFile::open(testDataPath(QStringLiteral("project/unknown-kinds.rpproj")), doc, h, &rec));
        QCOMPARE(doc.count(ItemAny), 4);
        CWidget* box = doc.root()->child(0)->child(0);
        QVERIFY(box && box->itemType() == ItemJunctionBox);
        QCOMPARE(childKinds(box), QStringList({QStringLiteral("2:") + kBar}));
        QCOMPARE(box->child(0)->childCount(), 0);

        QVERIFY(
            ProjectFile::open(testDataPath(QStringLiteral("project/unknown-supply.rpproj")), doc, h, &rec));
        QCOMPARE(doc.root(), nullptr);
        QCOMPARE(doc.model()->rowCount(), 0);
        QCOMPARE(h.supply, QStringLiteral("Retired Enabler"));

        // Text, comments, instructions and foreign elements among the components are skipped.
        QVERIFY(
            ProjectFile::open(testDataPath(QStringLiteral("project/foreign-nodes.rpproj")), doc, h, &rec));
        QCOMPARE(doc.count(ItemAny), 5);
        QCOMPARE(doc.root()->child(0)->child(0)->childCount(), 2);

        // No frame at all: the header is applied, the canvas is emptied and the error is kept
        // from the user.
        QVERIFY(ProjectFile::open(testDataPath(QStringLiteral("project/small-layout.rpproj")), doc, h, &rec));
        QVERIFY(doc.root());
        QVERIFY(ProjectFile::open(testDataPath(QStringLiteral("project/no-cframe.rpproj")), doc, h, &rec));
        QCOMPARE(doc.root(), nullptr);
        QCOMPARE(h.customVoltage, 230);
        QCOMPARE(h.maxCircuitLoad, QStringLiteral("20"));
        QCOMPARE(h.frequency, QStringLiteral("50 Hz"));
        QVERIFY(!doc.isModified());
        QVERIFY(rec.messages.isEmpty() && rec.statusLines.isEmpty());

        QDomDocument dom;
        dom.setContent(readAll(testDataPath(QStringLiteral("project/no-cframe.rpproj"))));
        QString error;
        QVERIFY(!ProjectFile::loadFrame(dom.documentElement(), doc, &error));
        QCOMPARE(error, QStringLiteral("Found 0 CFrame elements"));
        QVERIFY(doc.isModified()); // clearing the frame is a change until the caller says otherwise
        error.clear();
        QVERIFY(!ProjectFile::loadFrame(QDomElement(), doc, &error));
        QCOMPARE(error, QStringLiteral("Found 0 CFrame elements"));

        // A frame without a component is an empty canvas, and that is no error.
        dom.setContent(project(QString()));
        error.clear();
        QVERIFY(ProjectFile::loadFrame(dom.documentElement(), doc, &error));
        QVERIFY(error.isEmpty());
        QCOMPARE(doc.root(), nullptr);
    }

    void loadingFlag()
    {
        CWidget* out = reinterpret_cast<CWidget*>(this);
        ComponentLoading::setActive(true);
        QVERIFY(ProjectFile::readComponent(QDomElement(), &m_db, &out));
        QCOMPARE(out, nullptr);
        QVERIFY(!ComponentLoading::active());

        QDomDocument dom;
        dom.setContent(
            QByteArrayLiteral("<CWidget CWidgetItemType=\"2\" name=\"Nothing Like It\">"
                              "<CWidget CWidgetItemType=\"2\" name=\"Stylebar Tunable Dynaline 4ft\"/>"
                              "</CWidget>"));
        ComponentLoading::setActive(true);
        QVERIFY(ProjectFile::readComponent(dom.documentElement(), &m_db, &out));
        QCOMPARE(out, nullptr);
        QVERIFY(!ComponentLoading::active());

        // A receiver read without a junction box keeps it empty, one made outside reading gets the
        // catalog's default: the flag is on while the element is read and off afterwards.
        dom.setContent(
            QByteArrayLiteral("<CWidget CWidgetItemType=\"4\"><CWidget CWidgetItemType=\"4\"/></CWidget>"));
        QVERIFY(ProjectFile::readComponent(dom.documentElement(), &m_db, &out));
        QVERIFY(out);
        QCOMPARE(out->property("junctionBox").toString(), QString());
        QCOMPARE(out->child(0)->property("junctionBox").toString(), QString());
        QVERIFY(!ComponentLoading::active());
        ReceiverWidget outside(&m_db, m_db.receivers().first());
        QCOMPARE(outside.junctionBox(), QStringLiteral("Box Alpha"));
        delete out;
    }

    void saveReportsAndFlags()
    {
        QTemporaryDir dir;
        ConfigDocument doc(&m_db);
        buildSmall(doc);
        QVERIFY(doc.isModified());
        const HeaderValues header = sampleHeader();
        RecordingReporter rec;

        QString saved;
        QVERIFY(ProjectFile::save(dir.filePath(QStringLiteral("plan")), doc, header, &rec, &saved));
        QCOMPARE(saved, dir.filePath(QStringLiteral("plan.rpproj")));
        QCOMPARE(rec.statusLines, QStringList{QStringLiteral("Configuration saved")});
        QVERIFY(rec.messages.isEmpty());
        QVERIFY(!doc.isModified());

        // Replacing a file with different content; an upper-case extension is not ours.
        QVERIFY(writeFile(saved, "older and longer content than the project itself would ever be"));
        QVERIFY(ProjectFile::save(saved, doc, header, &rec, &saved));
        QCOMPARE(saved, dir.filePath(QStringLiteral("plan.rpproj")));
        QCOMPARE(readAll(saved), ProjectFile::toBytes(doc, header));
        QVERIFY(ProjectFile::save(dir.filePath(QStringLiteral("plan.RPPROJ")), doc, header, &rec, &saved));
        QCOMPARE(saved, dir.filePath(QStringLiteral("plan.RPPROJ.rpproj")));
        QCOMPARE(QDir(dir.path()).entryList(QDir::Files, QDir::Name),
                 QStringList({QStringLiteral("plan.RPPROJ.rpproj"), QStringLiteral("plan.rpproj")}));
    }

    void failedSavesKeepTheOldFile()
    {
        QTemporaryDir dir;
        ConfigDocument doc(&m_db);
        buildSmall(doc);
        const HeaderValues header = sampleHeader();
        RecordingReporter rec;

        // The parent of the target is a regular file.
        const QString blocker = dir.filePath(QStringLiteral("blocker"));
        QVERIFY(writeFile(blocker, "not a folder"));
        const QString inside = blocker + QStringLiteral("/plan.rpproj");
        QVERIFY(!ProjectFile::save(blocker + QStringLiteral("/plan"), doc, header, &rec));
        QCOMPARE(rec.messages.size(), 1);
        QCOMPARE(rec.messages[0].kind, Reporter::Kind::Warning);
        QCOMPARE(rec.messages[0].title, QStringLiteral("Save Error"));
        QVERIFY2(rec.messages[0].text.startsWith(QStringLiteral("Cannot open file %1:\n").arg(inside)),
                 qPrintable(rec.messages[0].text));
        QVERIFY(rec.messages[0].text.endsWith(QLatin1Char('.')));
        QVERIFY(rec.messages[0].text.size() > QStringLiteral("Cannot open file %1:\n.").arg(inside).size());
        QCOMPARE(rec.statusLines,
                 QStringList{QStringLiteral("Failed to save configuration: %1").arg(inside)});
        QCOMPARE(readAll(blocker), QByteArray("not a folder"));
        QVERIFY(doc.isModified());

        // The target is a folder.
        rec.clear();
        const QString folder = dir.filePath(QStringLiteral("taken.rpproj"));
        QVERIFY(QDir(dir.path()).mkdir(QStringLiteral("taken.rpproj")));
        QVERIFY(writeFile(folder + QStringLiteral("/inner.txt"), "inner"));
        QVERIFY(!ProjectFile::save(dir.filePath(QStringLiteral("taken")), doc, header, &rec));
        QCOMPARE(rec.messages.size(), 1);
        QCOMPARE(rec.messages[0].title, QStringLiteral("Save Error"));
        QVERIFY(rec.messages[0].text.startsWith(QStringLiteral("Cannot open file %1:\n").arg(folder)));
        QCOMPARE(rec.statusLines,
                 QStringList{QStringLiteral("Failed to save configuration: %1").arg(folder)});
        QVERIFY(QFileInfo(folder).isDir());
        QCOMPARE(readAll(folder + QStringLiteral("/inner.txt")), QByteArray("inner"));
        QVERIFY(doc.isModified());

#ifdef Q_OS_UNIX
        // A write that fails half-way (the file-size limit stands in for a full disk, and binds
        // every user).
        rec.clear();
        const QString keep = dir.filePath(QStringLiteral("keep.rpproj"));
        const QByteArray old = "<!-- the previous project -->\n";
        QVERIFY(writeFile(keep, old));
        const QStringList before = QDir(dir.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot);
        ConfigDocument big(&m_db);
        buildEveryKind(big);
        QVERIFY(ProjectFile::toBytes(big, header).size() > 2048);

        struct rlimit saved {
        };
        QCOMPARE(getrlimit(RLIMIT_FSIZE, &saved), 0);
        const auto previousHandler = std::signal(SIGXFSZ, SIG_IGN);
        struct rlimit small = saved;
        small.rlim_cur = 512;
        QCOMPARE(setrlimit(RLIMIT_FSIZE, &small), 0);
        const bool ok = ProjectFile::save(keep, big, header, &rec);
        setrlimit(RLIMIT_FSIZE, &saved);
        std::signal(SIGXFSZ, previousHandler);

        QVERIFY(!ok);
        QCOMPARE(rec.messages.size(), 1);
        QCOMPARE(rec.messages[0].kind, Reporter::Kind::Critical);
        QCOMPARE(rec.messages[0].title, QStringLiteral("Save Error"));
        QCOMPARE(rec.messages[0].text, QStringLiteral("Failed to save configuration file: %1").arg(keep));
        QCOMPARE(rec.statusLines, QStringList{QStringLiteral("Failed to save configuration: %1").arg(keep)});
        QCOMPARE(readAll(keep), old);
        QCOMPARE(QDir(dir.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot), before);
        QVERIFY(big.isModified());
#endif
    }

    void failedSavesInReadOnlyPlaces()
    {
        QTemporaryDir dir;
        ConfigDocument doc(&m_db);
        buildSmall(doc);
        const HeaderValues header = sampleHeader();
        RecordingReporter rec;

        const QString sub = dir.filePath(QStringLiteral("locked"));
        QVERIFY(QDir(dir.path()).mkdir(QStringLiteral("locked")));
        const QString inLocked = sub + QStringLiteral("/plan.rpproj");
        QVERIFY(writeFile(inLocked, "previous"));
        const QString lockedFile = dir.filePath(QStringLiteral("readonly.rpproj"));
        QVERIFY(writeFile(lockedFile, "read only"));
        QVERIFY(QFile::setPermissions(sub, QFile::ReadOwner | QFile::ExeOwner));
        QVERIFY(QFile::setPermissions(lockedFile, QFile::ReadOwner));
        auto unlock = qScopeGuard([&] {
            QFile::setPermissions(sub, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
            QFile::setPermissions(lockedFile, QFile::ReadOwner | QFile::WriteOwner);
        });
        QFile probe(sub + QStringLiteral("/probe"));
        if (probe.open(QIODevice::WriteOnly)) {
            probe.close();
            probe.remove();
            QSKIP("permission bits do not stop this user from writing");
        }

        QVERIFY(!ProjectFile::save(inLocked, doc, header, &rec));
        QCOMPARE(rec.messages.size(), 1);
        QCOMPARE(rec.messages[0].title, QStringLiteral("Save Error"));
        QVERIFY(rec.messages[0].text.startsWith(QStringLiteral("Cannot open file %1:\n").arg(inLocked)));
        QCOMPARE(rec.statusLines,
                 QStringList{QStringLiteral("Failed to save configuration: %1").arg(inLocked)});
        QCOMPARE(readAll(inLocked), QByteArray("previous"));

        rec.clear();
        QVERIFY(!ProjectFile::save(lockedFile, doc, header, &rec));
        QCOMPARE(rec.messages.size(), 1);
        QCOMPARE(rec.messages[0].kind, Reporter::Kind::Warning);
        QCOMPARE(readAll(lockedFile), QByteArray("read only"));
        QVERIFY(doc.isModified());
    }

    void openFailureChangesNothing()
    {
        ConfigDocument doc(&m_db);
        buildSmall(doc);
        HeaderValues header = sampleHeader();
        const QByteArray before = ProjectFile::toBytes(doc, header);
        RecordingReporter rec;
        QTemporaryDir dir;

        for (const QString& path : {dir.filePath(QStringLiteral("missing.rpproj")), dir.path()}) {
            rec.clear();
            QVERIFY(!ProjectFile::open(path, doc, header, &rec));
            QCOMPARE(rec.messages.size(), 1);
            QCOMPARE(rec.messages[0].kind, Reporter::Kind::Warning);
            QCOMPARE(rec.messages[0].title, QStringLiteral("Open Error"));
            QVERIFY2(rec.messages[0].text.startsWith(QStringLiteral("Cannot read file %1:\n").arg(path)),
                     qPrintable(rec.messages[0].text));
            QVERIFY(rec.messages[0].text.endsWith(QLatin1Char('.')));
            QCOMPARE(rec.statusLines,
                     QStringList{QStringLiteral("Failed to open configuration %1").arg(path)});
            QCOMPARE(ProjectFile::toBytes(doc, header), before);
            QVERIFY(doc.isModified());
        }
    }

    void malformedCorpus_data()
    {
        QTest::addColumn<QString>("file");
        QTest::addColumn<QString>("supply");
        QTest::addColumn<QString>("frequency");
        QTest::addColumn<int>("components");

        QTest::newRow("not XML") << "not-xml.rpproj"
                                 << ""
                                 << "1" << 0;
        QTest::newRow("empty") << "empty.rpproj"
                               << ""
                               << "1" << 0;
        QTest::newRow("truncated") << "truncated.rpproj"
                                   << "Enabler Duo"
                                   << "60 Hz" << 1;
        QTest::newRow("wrong root") << "wrong-root.rpproj"
                                    << ""
                                    << "1" << 0;
        QTest::newRow("no frame") << "no-cframe.rpproj"
                                  << "Enabler Duo"
                                  << "50 Hz" << 0;
        QTest::newRow("two frames") << "two-cframes.rpproj"
                                    << "Enabler Duo"
                                    << "60 Hz" << 2;
        QTest::newRow("unknown kinds") << "unknown-kinds.rpproj"
                                       << "Enabler Duo"
                                       << "60 Hz" << 4;
        QTest::newRow("unknown supply") << "unknown-supply.rpproj"
                                        << "Retired Enabler"
                                        << "60 Hz" << 0;
        QTest::newRow("non-numeric") << "non-numeric.rpproj"
                                     << "Enabler Duo"
                                     << "60 Hz" << 8;
        QTest::newRow("entity expansion") << "entity-expansion.rpproj"
                                          << ""
                                          << "1" << 0;
        QTest::newRow("foreign nodes") << "foreign-nodes.rpproj"
                                       << "Enabler Duo"
                                       << "60 Hz" << 5;
        QTest::newRow("legacy names") << "legacy-names.rpproj"
                                      << "Enabler Duo"
                                      << "60 Hz" << 5;
    }

    void malformedCorpus()
    {
        QFETCH(QString, file);
        QFETCH(QString, supply);
        QFETCH(QString, frequency);
        QFETCH(int, components);

        // Start from a different configuration: each file replaces it without a message.
        ConfigDocument doc(&m_db);
        doc.addSupply(m_db.supplyNamed(QStringLiteral("Enabler Line")));
        HeaderValues header;
        header.supply = QStringLiteral("Enabler Line");
        RecordingReporter rec;

        QVERIFY(ProjectFile::open(testDataPath(QStringLiteral("project/") + file), doc, header, &rec));
        QVERIFY(rec.messages.isEmpty());
        QVERIFY(rec.statusLines.isEmpty());
        QCOMPARE(header.supply, supply);
        QCOMPARE(header.frequency, frequency);
        QCOMPARE(doc.count(ItemAny), components);
        QCOMPARE(doc.model()->rowCount(), components > 0 ? 1 : 0);
        QVERIFY(!doc.isModified());
        QVERIFY(!ComponentLoading::active());
        if (components > 0)
            QCOMPARE(doc.root()->itemType(), int(ItemSupply));

        // Whatever was read can be written and read again to the same tree.
        const QByteArray bytes = ProjectFile::toBytes(doc, header);
        ConfigDocument copy(&m_db);
        HeaderValues header2;
        QVERIFY(ProjectFile::read(bytes, copy, header2, &rec));
        QCOMPARE(ProjectFile::toBytes(copy, header2), bytes);
    }

    void legacyNamesInAFile()
    {
        ConfigDocument doc(&m_db);
        HeaderValues header;
        QVERIFY(ProjectFile::open(testDataPath(QStringLiteral("project/legacy-names.rpproj")), doc, header,
                                  nullptr));
        QCOMPARE(header.fixture, kBar);
        auto* leader = asCable(doc.root()->child(0));
        QVERIFY(leader);
        QCOMPARE(leader->fixtureRecord(), m_bar);
        QCOMPARE(leader->fixtureName(), kBar);
        auto* jumper = asCable(leader->child(0)->child(0));
        QVERIFY(jumper);
        QCOMPARE(jumper->fixtureRecord(), m_trough);
        QCOMPARE(jumper->gauge(), QStringLiteral("16"));
        QCOMPARE(jumper->length(), 6.0);
        // Saved again under the present names.
        const QByteArray bytes = ProjectFile::toBytes(doc, header);
        QVERIFY(!bytes.contains("Glowbar"));
        QVERIFY(bytes.contains("fixtureName=\"" + kTrough.toUtf8() + "\""));
    }

    void hostileSizes()
    {
        QTemporaryDir dir;
        RecordingReporter rec;

        // Megabytes in single attributes.
        const QString huge(8 * 1024 * 1024, QLatin1Char('x'));
        const QByteArray bigFile =
            project(QStringLiteral(
                        "<CWidget CWidgetItemType=\"0\" name=\"Enabler Duo\" outputMode=\"%1\" junk=\"%1\">"
                        "<CWidget CWidgetItemType=\"3\" type=\"%1Custom\" gauge=\"%1\" length=\"%2\" "
                        "fixtureName=\"Stylebar Tunable Dynaline 4ft\"/></CWidget>")
                        .arg(huge, QString(100000, QLatin1Char('9'))),
                    QStringLiteral("CurrentSupplyName=\"%1\" Frequency=\"60 Hz\"").arg(huge));
        const QString bigPath = dir.filePath(QStringLiteral("big.rpproj"));
        QVERIFY(writeFile(bigPath, bigFile));
        ConfigDocument doc(&m_db);
        HeaderValues header;
        QVERIFY(ProjectFile::open(bigPath, doc, header, &rec));
        QCOMPARE(header.supply.size(), huge.size());
        QVERIFY(doc.root());
        QCOMPARE(doc.root()->property("outputMode").toString().size(), huge.size());
        QCOMPARE(doc.root()->property("junk").toString().size(), huge.size());
        auto* jumper = asCable(doc.root()->child(0));
        QVERIFY(jumper && jumper->isCustom());
        QVERIFY(std::isfinite(jumper->length()));
        QVERIFY(jumper->propertyIds().contains(PropLength));
        jumper->editorSpec(PropLength); // must not trip over the length
        QVERIFY(rec.messages.isEmpty());

        // Nesting: at the limit the file opens; one level deeper it is refused and nothing
        // changes.
        const int frameLevels = 2; // "Runplan" and "CFrame"
        const QByteArray atLimit = deepProject(ProjectFile::MaxNestingDepth - frameLevels);
        const QString atLimitPath = dir.filePath(QStringLiteral("deep.rpproj"));
        QVERIFY(writeFile(atLimitPath, atLimit));
        QVERIFY(ProjectFile::open(atLimitPath, doc, header, &rec));
        QCOMPARE(doc.count(ItemAny), ProjectFile::MaxNestingDepth - frameLevels);
        QCOMPARE(treeDepth(doc.root()), ProjectFile::MaxNestingDepth - frameLevels);
        QVERIFY(rec.statusLines.isEmpty());
        // Written with its indentation such a run is hundreds of megabytes; a shallower one shows
        // that deep runs come back as they were saved.
        QVERIFY(ProjectFile::read(deepProject(1000), doc, header, &rec));
        const QByteArray deepBytes = ProjectFile::toBytes(doc, header);
        ConfigDocument deepCopy(&m_db);
        HeaderValues deepHeader;
        QVERIFY(ProjectFile::read(deepBytes, deepCopy, deepHeader, &rec));
        QCOMPARE(treeDepth(deepCopy.root()), 1000);
        QCOMPARE(ProjectFile::toBytes(deepCopy, deepHeader), deepBytes);

        ConfigDocument kept(&m_db);
        buildSmall(kept);
        kept.setModified(false);
        HeaderValues keptHeader = sampleHeader();
        const QByteArray keptBytes = ProjectFile::toBytes(kept, keptHeader);
        const QString tooDeepPath = dir.filePath(QStringLiteral("too-deep.rpproj"));
        QVERIFY(writeFile(tooDeepPath, deepProject(ProjectFile::MaxNestingDepth - frameLevels + 1)));
        QVERIFY(!ProjectFile::open(tooDeepPath, kept, keptHeader, &rec));
        QVERIFY(rec.messages.isEmpty());
        QCOMPARE(rec.statusLines,
                 QStringList{QStringLiteral("Failed to open configuration %1: nested more than 10000 levels")
                                 .arg(tooDeepPath)});
        QCOMPARE(ProjectFile::toBytes(kept, keptHeader), keptBytes);
        QVERIFY(!kept.isModified());

        // As many components below one as the limit allows open; one more is refused. Other
        // elements do not count.
        auto wide = [](int children) {
            const QString leader = QStringLiteral("<CWidget CWidgetItemType=\"1\" type=\"Leader 3ft\" "
                                                  "fixtureName=\"Stylebar Tunable Dynaline 4ft\"/>");
            return project(QStringLiteral("<CWidget CWidgetItemType=\"0\" name=\"Enabler Duo\">"
                                          "<CWidget CWidgetItemType=\"6\">%1%2</CWidget></CWidget>")
                               .arg(leader.repeated(children), QStringLiteral("<note/>").repeated(5000)));
        };
        rec.clear();
        ConfigDocument broad(&m_db);
        QVERIFY(ProjectFile::read(wide(ProjectFile::MaxChildren), broad, header, &rec));
        QCOMPARE(broad.count(ItemLeader), ProjectFile::MaxChildren);
        QVERIFY(rec.statusLines.isEmpty());
        const QString widePath = dir.filePath(QStringLiteral("wide.rpproj"));
        QVERIFY(writeFile(widePath, wide(ProjectFile::MaxChildren + 1)));
        QVERIFY(!ProjectFile::open(widePath, kept, keptHeader, &rec));
        QVERIFY(rec.messages.isEmpty());
        QCOMPARE(rec.statusLines,
                 QStringList{QStringLiteral(
                                 "Failed to open configuration %1: a component holds more than 1000 others")
                                 .arg(widePath)});
        QCOMPARE(ProjectFile::toBytes(kept, keptHeader), keptBytes);

        // Far deeper, and not even components: refused before any tree is built.
        rec.clear();
        QByteArray abyss = "<Runplan>";
        abyss += QByteArray("<a>").repeated(1000000);
        abyss += QByteArray("</a>").repeated(1000000);
        abyss += "</Runplan>";
        QVERIFY(!ProjectFile::read(abyss, kept, keptHeader, &rec));
        QCOMPARE(rec.statusLines,
                 QStringList{QStringLiteral("Failed to open configuration: nested more than 10000 levels")});
        QCOMPARE(ProjectFile::toBytes(kept, keptHeader), keptBytes);
        // Unclosed, so the parser stops at the end of the data rather than at a closing tag.
        QVERIFY(!ProjectFile::read(QByteArray("<a>").repeated(20000), kept, keptHeader, &rec));
        QCOMPARE(ProjectFile::toBytes(kept, keptHeader), keptBytes);
    }
};

QTEST_GUILESS_MAIN(ProjectFileTest)
#include "tst_projectfile.moc"
