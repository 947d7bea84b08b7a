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
#include <QSignalSpy>
#include <QTemporaryDir>
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
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

bool writeFile(const QString& path, const QByteArray& bytes)
{
    QFile f(path);
    return f.open(QIODevice::WriteOnly) && f.write(bytes) == bytes.size();
}

// Item kinds of a tree in preorder, one digit each: "0562".
QString shape(const CWidget* w)
{
    if (!w)
        return QString();
    QString out = QString::number(w->itemType());
    for (const CWidget* c : w->children())
        out += shape(c);
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
    QByteArray out = "<Runplan><CFrame techType=\"1\">"
                     "<CWidget CWidgetItemType=\"0\" name=\"Enabler Duo\" outputMode=\"Dynaline\">";
    for (int i = 1; i < components; ++i)
        out += i % 2 ? "<CWidget CWidgetItemType=\"2\" name=\"Stylebar Tunable Dynaline 4ft\">"
                     : "<CWidget CWidgetItemType=\"3\" type=\"Jumper 2ft\" "
                       "fixtureName=\"Stylebar Tunable Dynaline 4ft\">";
    out += QByteArray("</CWidget>").repeated(components);
    return out + "</CFrame></Runplan>";
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
        doc.addSupply(m_duo)->setDynaLineLength(12.5);
        doc.addLeader(m_bar);
        doc.addFixture(m_bar);
        doc.addJumper(m_bar);
    }

    // Every kind of component, custom cables and a second enabler fed through a Feedwise wire.
    void buildEveryKind(ConfigDocument& doc)
    {
        doc.addSupply(m_duo)->setDynaLineLength(12.5);
        CWidget* jb0 = doc.addJunctionBox();
        QVERIFY(jb0 && doc.addLeader(m_bar) && doc.addFixture(m_bar) && doc.addJumper(m_bar)
                && doc.addFixture(m_bar));
        doc.setCurrent(jb0);
        CableWidget* l2 = asCable(doc.addLeader(m_trough));
        QVERIFY(l2);
        l2->setType(QStringLiteral("Custom Leader"));
        l2->setGauge(QStringLiteral("14"));
        l2->setLength(37.5);
        QVERIFY(doc.addFixture(m_trough));
        CableWidget* j2 = asCable(doc.addJumper(m_trough));
        QVERIFY(j2);
        j2->setType(QStringLiteral("Custom <&> \"q\""));
        j2->setLength(7.25);
        doc.setCurrent(jb0);
        QVERIFY(doc.addFixture(m_trough));
        doc.setCurrent(jb0);
        CWidget* s1 = doc.addSupply(m_duo);
        QVERIFY(s1);
        s1->setDynaLineLength(3.75);
        QVERIFY(doc.addLeader(m_bar) && doc.addFixture(m_bar));
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

    static void expectSaveError(const RecordingReporter& rec, const QString& path)
    {
        QCOMPARE(rec.messages.size(), 1);
        QCOMPARE(rec.messages[0].title, QStringLiteral("Save Error"));
        const QString prefix = QStringLiteral("Cannot open file %1:\n").arg(path);
        QVERIFY2(rec.messages[0].text.startsWith(prefix) && rec.messages[0].text.endsWith(QLatin1Char('.'))
                     && rec.messages[0].text.size() > prefix.size() + 1,
                 qPrintable(rec.messages[0].text));
        QCOMPARE(rec.statusLines, QStringList{QStringLiteral("Failed to save configuration: %1").arg(path)});
    }

private slots:
    void initTestCase()
    {
        RecordingReporter quiet;
        QVERIFY(m_db.loadFile(testDataPath(QStringLiteral("project/catalog.xml")), &quiet));
        QVERIFY(quiet.messages.isEmpty());
        m_duo = m_db.supplyNamed(QStringLiteral("Enabler Duo"));
        m_bar = m_db.fixtureNamed(kBar);
        m_trough = m_db.fixtureNamed(kTrough);
        QVERIFY(m_duo && m_bar && m_trough);
    }

    void names_data()
    {
        QTest::addColumn<bool>("extension");
        QTest::addColumn<QString>("in");
        QTest::addColumn<QString>("out");
        QTest::newRow("added") << true << "/x/plan" << "/x/plan.rpproj";
        QTest::newRow("kept") << true << "/x/plan.rpproj" << "/x/plan.rpproj";
        QTest::newRow("case-sensitive") << true << "/x/plan.RPPROJ" << "/x/plan.RPPROJ.rpproj";
        QTest::newRow("last suffix") << true << "/x/plan.rpproj.bak" << "/x/plan.rpproj.bak.rpproj";
        QTest::newRow("trough A") << false << "Linea Trough Model A Dynaline 6in" << kTrough;
        QTest::newRow("trough B") << false << "Linea Trough Model B Dynaline 6in"
                                  << "Linea Trough Model B Dynaline 6in (100v - 120v)";
        QTest::newRow("tunable 1ft") << false << "Glowbar Tunable Dynaline 1ft" << "Stylebar Tunable Dynaline 1ft";
        QTest::newRow("tint 1ft") << false << "Glowbar Tint (RGBA/RGBW) Dynaline 1ft"
                                  << "Stylebar Tint (RGBA/RGBW) Dynaline 1ft";
        QTest::newRow("tunable 4ft") << false << "Glowbar Tunable Dynaline 4ft" << kBar;
        QTest::newRow("tint 4ft") << false << "Glowbar Tint (RGBA/RGBW) Dynaline 4ft"
                                  << "Stylebar Tint (RGBA/RGBW) Dynaline 4ft";
        QTest::newRow("exact case") << false << "glowbar tunable dynaline 4ft" << "glowbar tunable dynaline 4ft";
        QTest::newRow("exact spaces") << false << "Glowbar Tunable Dynaline 4ft " << "Glowbar Tunable Dynaline 4ft ";
        QTest::newRow("new name") << false << kTrough << kTrough;
    }

    void names()
    {
        QFETCH(bool, extension);
        QFETCH(QString, in);
        QFETCH(QString, out);
        QCOMPARE(extension ? ProjectFile::withExtension(in) : ProjectFile::mapLegacyFixtureName(in), out);
    }

    void layoutOfASmallProject()
    {
        ConfigDocument doc(&m_db);
        buildSmall(doc);
        const HeaderValues header = sampleHeader();
        const QByteArray expected = readAll(testDataPath(QStringLiteral("project/small-layout.rpproj")));
        QVERIFY(!expected.isEmpty());
        QCOMPARE(ProjectFile::toBytes(doc, header), expected);

        // Saved under the added extension, reported, no longer modified; read back the same.
        QTemporaryDir dir;
        RecordingReporter rec;
        QString saved;
        QVERIFY(ProjectFile::save(dir.filePath(QStringLiteral("small")), doc, header, &rec, &saved));
        QCOMPARE(saved, dir.filePath(QStringLiteral("small.rpproj")));
        QCOMPARE(readAll(saved), expected);
        QCOMPARE(rec.statusLines, QStringList{QStringLiteral("Configuration saved")});
        QVERIFY(rec.messages.isEmpty() && !doc.isModified());
        ConfigDocument again(&m_db);
        HeaderValues header2;
        QVERIFY(ProjectFile::open(saved, again, header2, &rec));
        QCOMPARE(ProjectFile::toBytes(again, header2), expected);

        // A longer old file is replaced whole.
        QVERIFY(writeFile(saved, QByteArray(4096, 'x')));
        QVERIFY(ProjectFile::save(saved, doc, header, &rec));
        QCOMPARE(readAll(saved), expected);
    }

    void roundTripEveryKind()
    {
        ConfigDocument doc(&m_db);
        buildEveryKind(doc);
        if (QTest::currentTestFailed())
            return;
        for (int kind = ItemSupply; kind <= ItemJunctionBox; ++kind)
            QVERIFY2(doc.count(kind) > 0, qPrintable(QStringLiteral("no component of kind %1").arg(kind)));

        // Texts that need escaping, in the header (and a cable's type in buildEveryKind).
        HeaderValues header = sampleHeader();
        header.controller = QStringLiteral("A&B <\"x\"> 'y' ]]> tab\there\nnext\r\nline");
        header.fixture = QStringLiteral("Fixtüre ✓ ß");
        header.frequency = QStringLiteral("  50 Hz  ");

        const QByteArray first = ProjectFile::toBytes(doc, header);
        ConfigDocument copy(&m_db);
        HeaderValues header2;
        RecordingReporter rec;
        QVERIFY(ProjectFile::read(first, copy, header2, &rec));
        QVERIFY(rec.messages.isEmpty() && rec.statusLines.isEmpty());
        QCOMPARE(ProjectFile::toBytes(copy, header2), first);
        QCOMPARE(shape(copy.root()), shape(doc.root()));
        QCOMPARE(header2.controller, header.controller);
        QCOMPARE(header2.frequency, header.frequency);
        QVERIFY(!copy.isModified());

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

    // The custom values are read only next to "Other", with defaults when absent; the fixture
    // under its present name.
    void headerOnReading_data()
    {
        QTest::addColumn<QString>("attributes");
        QTest::addColumn<int>("voltage");
        QTest::addColumn<int>("load");
        QTest::newRow("defaults") << "LineVoltage=\"Other\" MaxCircuitLoad=\"Other\"" << 120 << 15;
        QTest::newRow("ignored") << "LineVoltage=\"120\" CustomLineVoltage=\"230\" MaxCircuitLoad=\"20\" "
                                    "CustomMaxCircuitLoad=\"30\"" << 999 << 999;
        QTest::newRow("read") << "LineVoltage=\"Other\" CustomLineVoltage=\"230\" MaxCircuitLoad=\"Other\" "
                                 "CustomMaxCircuitLoad=\"18\" CurrentFixtureName=\"Glowbar Tunable Dynaline 4ft\""
                              << 230 << 18;
    }

    void headerOnReading()
    {
        QFETCH(QString, attributes);
        QFETCH(int, voltage);
        QFETCH(int, load);
        HeaderValues in;
        in.customVoltage = 999;
        in.customLoad = 999;
        in.controller = QStringLiteral("Keep");
        ConfigDocument target(&m_db);
        QVERIFY(ProjectFile::read(project(QString(), attributes), target, in, nullptr));
        QCOMPARE(in.customVoltage, voltage);
        QCOMPARE(in.customLoad, load);
        QCOMPARE(in.controller, QStringLiteral("Keep")); // an empty controller selects nothing
        QCOMPARE(in.fixture, attributes.contains(QStringLiteral("Glowbar")) ? kBar : QString());
    }

    void readingRules()
    {
        // A fixed jumper is written without a length and comes back with the constructor's, not
        // its cable's.
        ConfigDocument doc(&m_db);
        buildSmall(doc);
        HeaderValues h;
        ProjectFile::read(ProjectFile::toBytes(doc, sampleHeader()), doc, h, nullptr);
        QCOMPARE(asCable(doc.root()->child(0)->child(0)->child(0))->length(), 1.0);

        // A supply read from a file never offers "Feedwise"; what the file leaves out stays
        // empty; the receiver record is the catalog's first; unknown attributes become string
        // properties; the name is not read.
        ProjectFile::read(
            project(QStringLiteral("<CWidget CWidgetItemType=\"0\" name=\"Enabler Feed First\">"
                                   "<CWidget CWidgetItemType=\"5\" name=\"Renamed\" inputMode=\"Feedwise\" colour=\"red\" length=\"12.25\">"
                                   "<CWidget CWidgetItemType=\"4\" name=\"Receiver Two\"/></CWidget>"
                                   "<CWidget CWidgetItemType=\"1\" fixtureName=\"Linea Trough Model A Dynaline 6in\"/>"
                                   "</CWidget>")),
            doc, h, nullptr);
        auto* supply = qobject_cast<SupplyWidget*>(doc.root());
        QVERIFY(supply);
        QCOMPARE(supply->outputMode(), QString());
        auto* wire = qobject_cast<BranchWireWidget*>(supply->child(1));
        QVERIFY(wire);
        QCOMPARE(wire->gauge() + wire->location(), QString());
        QCOMPARE(wire->name(), QStringLiteral("Branch Wire"));
        QCOMPARE(wire->property("colour"), QVariant(QStringLiteral("red")));
        QCOMPARE(wire->length(), 12.25);
        auto* receiver = qobject_cast<ReceiverWidget*>(wire->child(0));
        QVERIFY(receiver);
        QCOMPARE(receiver->junctionBox(), QString());
        QCOMPARE(receiver->catalogItem()->name, QStringLiteral("Receiver One"));
        auto* leader = asCable(supply->child(0));
        QCOMPARE(leader->fixtureRecord(), m_trough);
        QCOMPARE(leader->type(), QString());

        ProjectFile::read(project(QStringLiteral("<CWidget CWidgetItemType=\"0\" name=\"Enabler Feed First\"/>")), doc,
                          h, nullptr);
        QCOMPARE(doc.root()->editorSpec(PropOutputMode).choices,
                 QStringList({QStringLiteral("Line Voltage"), QStringLiteral("Dynaline")}));

        // Numbers that do not parse read as 0.
        QVERIFY(ProjectFile::open(testDataPath(QStringLiteral("project/non-numeric.rpproj")), doc, h, nullptr));
        QCOMPARE(h.customVoltage + h.customLoad, 0);
        QCOMPARE(doc.root()->dynaLineLength(), 0.0);
        for (CWidget* w = doc.root(); w; w = w->child(0))
            if (auto* c = asCable(w))
                QCOMPARE(c->length(), 0.0);
    }

    void childOrderOnReading()
    {
        // Under a junction box: each fixture to the front, Feedwise wires to the end, the rest in
        // file order. Under a leader fixtures keep their file order; an undecided wire below a
        // receiver takes "Dynaline" and so goes before the Feedwise one.
        auto fixture = [](const QString& name, const QString& inner = QString()) {
            return QStringLiteral("<CWidget CWidgetItemType=\"2\" name=\"%1\">%2</CWidget>").arg(name, inner);
        };
        auto wire = [](const char* mode, const char* location) {
            return QStringLiteral("<CWidget CWidgetItemType=\"5\" inputMode=\"%1\" location=\"%2\"/>")
                .arg(QLatin1String(mode), QLatin1String(location));
        };
        const QString receiver = QStringLiteral("<CWidget CWidgetItemType=\"4\">%1%2</CWidget>")
                                     .arg(wire("Feedwise", "F"), wire("UNDEFINED", "U"));
        const QString leader = QStringLiteral("<CWidget CWidgetItemType=\"1\" type=\"Leader 3ft\" "
                                              "fixtureName=\"%1\">%2%3</CWidget>")
                                   .arg(kBar, fixture(kBar), fixture(kTrough, receiver));
        const QString box = wire("Feedwise", "A") + fixture(kBar) + leader + wire("Dynaline", "B")
                            + fixture(kTrough) + wire("Feedwise", "C");
        ConfigDocument doc(&m_db);
        HeaderValues h;
        QVERIFY(ProjectFile::read(
            project(QStringLiteral("<CWidget CWidgetItemType=\"0\" name=\"Enabler Duo\" outputMode=\"Dynaline\">"
                                   "<CWidget CWidgetItemType=\"6\" type=\"Box Gamma\">%1</CWidget></CWidget>")
                        .arg(box)),
            doc, h, nullptr));
        QVERIFY(doc.root());
        QStringList order;
        for (const CWidget* c : doc.root()->child(0)->children()) {
            auto* b = qobject_cast<const BranchWireWidget*>(c);
            order << (b ? b->location() : QStringLiteral("%1:%2").arg(c->itemType()).arg(c->catalogItem()->name));
        }
        QCOMPARE(order, QStringList({"2:" + kTrough, "2:" + kBar, "1:" + kBar, "B", "A", "C"}));
        CWidget* onLeader = doc.root()->child(0)->child(2);
        QCOMPARE(onLeader->child(0)->catalogItem(), m_bar);
        QCOMPARE(onLeader->child(1)->catalogItem(), m_trough);
        auto* first = qobject_cast<BranchWireWidget*>(onLeader->child(1)->child(0)->child(0));
        QVERIFY(first);
        QCOMPARE(first->location(), QStringLiteral("U"));
        QCOMPARE(first->inputMode(), QStringLiteral("Dynaline"));
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
        QVERIFY(!ProjectFile::save(blocker + QStringLiteral("/plan"), doc, header, &rec));
        expectSaveError(rec, blocker + QStringLiteral("/plan.rpproj"));
        QCOMPARE(rec.messages[0].kind, Reporter::Kind::Warning);
        QCOMPARE(readAll(blocker), QByteArray("not a folder"));
        QVERIFY(doc.isModified());

        // The target is a folder.
        rec.clear();
        const QString folder = dir.filePath(QStringLiteral("taken.rpproj"));
        QVERIFY(QDir(dir.path()).mkdir(QStringLiteral("taken.rpproj")));
        QVERIFY(writeFile(folder + QStringLiteral("/inner.txt"), "inner"));
        QVERIFY(!ProjectFile::save(dir.filePath(QStringLiteral("taken")), doc, header, &rec));
        expectSaveError(rec, folder);
        QCOMPARE(readAll(folder + QStringLiteral("/inner.txt")), QByteArray("inner"));
        QVERIFY(doc.isModified());

#ifdef Q_OS_UNIX
        // A write that fails half-way (the file-size limit stands in for a full disk, and binds
        // every user): the old file and the folder stay as they were.
        rec.clear();
        const QString keep = dir.filePath(QStringLiteral("keep.rpproj"));
        const QByteArray old = "<!-- the previous project -->\n";
        QVERIFY(writeFile(keep, old));
        const QStringList before = QDir(dir.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot);
        ConfigDocument big(&m_db);
        buildEveryKind(big);
        QVERIFY(ProjectFile::toBytes(big, header).size() > 2048);
        struct rlimit saved {};
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
        QCOMPARE(rec.messages[0].text, QStringLiteral("Failed to save configuration file: %1").arg(keep));
        QCOMPARE(rec.statusLines, QStringList{QStringLiteral("Failed to save configuration: %1").arg(keep)});
        QCOMPARE(readAll(keep), old);
        QCOMPARE(QDir(dir.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot), before);
        QVERIFY(big.isModified());
#endif
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
            QCOMPARE(rec.statusLines, QStringList{QStringLiteral("Failed to open configuration %1").arg(path)});
            QCOMPARE(ProjectFile::toBytes(doc, header), before);
            QVERIFY(doc.isModified());
        }
    }

    // Each file opens without a message and replaces the configuration with what it could use:
    // the header's supply and frequency, and the component kinds in preorder.
    void malformedCorpus_data()
    {
        QTest::addColumn<QString>("file");
        QTest::addColumn<QString>("supply");
        QTest::addColumn<QString>("frequency");
        QTest::addColumn<QString>("kinds");
        QTest::newRow("not XML") << "not-xml.rpproj" << "" << "1" << "";
        QTest::newRow("empty") << "empty.rpproj" << "" << "1" << "";
        QTest::newRow("truncated") << "truncated.rpproj" << "Enabler Duo" << "60 Hz" << "0";
        QTest::newRow("wrong root") << "wrong-root.rpproj" << "" << "1" << "";
        QTest::newRow("no frame") << "no-cframe.rpproj" << "Enabler Duo" << "50 Hz" << "";
        QTest::newRow("two frames, the first") << "two-cframes.rpproj" << "Enabler Duo" << "60 Hz" << "02";
        QTest::newRow("unknown kinds drop subtrees") << "unknown-kinds.rpproj" << "Enabler Duo" << "60 Hz" << "0562";
        QTest::newRow("unknown supply") << "unknown-supply.rpproj" << "Retired Enabler" << "60 Hz" << "";
        QTest::newRow("non-numeric") << "non-numeric.rpproj" << "Enabler Duo" << "60 Hz" << "01232323";
        QTest::newRow("entity expansion") << "entity-expansion.rpproj" << "" << "1" << "";
        QTest::newRow("foreign nodes skipped") << "foreign-nodes.rpproj" << "Enabler Duo" << "60 Hz" << "05622";
        QTest::newRow("legacy names") << "legacy-names.rpproj" << "Enabler Duo" << "60 Hz" << "01232";
    }

    void malformedCorpus()
    {
        QFETCH(QString, file);
        QFETCH(QString, supply);
        QFETCH(QString, frequency);
        QFETCH(QString, kinds);

        ConfigDocument doc(&m_db);
        doc.setTechType(3);
        doc.addSupply(m_db.supplyNamed(QStringLiteral("Enabler Line")));
        HeaderValues header;
        header.supply = QStringLiteral("Enabler Line");
        RecordingReporter rec;
        QVERIFY(ProjectFile::open(testDataPath(QStringLiteral("project/") + file), doc, header, &rec));
        QVERIFY(rec.messages.isEmpty() && rec.statusLines.isEmpty());
        QCOMPARE(header.supply, supply);
        QCOMPARE(header.frequency, frequency);
        QCOMPARE(shape(doc.root()), kinds);
        QCOMPARE(doc.count(ItemAny), kinds.size());
        QCOMPARE(doc.model()->rowCount(), kinds.isEmpty() ? 0 : 1);
        QCOMPARE(doc.current(), doc.root());
        QCOMPARE(doc.techType(), 3); // not read from the file
        QVERIFY(!doc.isModified());
        QVERIFY(!ComponentLoading::active());

        // Whatever was read can be written and read again to the same bytes.
        const QByteArray bytes = ProjectFile::toBytes(doc, header);
        ConfigDocument copy(&m_db);
        copy.setTechType(3);
        HeaderValues header2;
        QVERIFY(ProjectFile::read(bytes, copy, header2, &rec));
        QCOMPARE(ProjectFile::toBytes(copy, header2), bytes);
    }

    void legacyNamesInAFile()
    {
        ConfigDocument doc(&m_db);
        HeaderValues header;
        QVERIFY(ProjectFile::open(testDataPath(QStringLiteral("project/legacy-names.rpproj")), doc, header, nullptr));
        QCOMPARE(header.fixture, kBar);
        auto* leader = asCable(doc.root()->child(0));
        QVERIFY(leader);
        QCOMPARE(leader->fixtureRecord(), m_bar);
        auto* jumper = asCable(leader->child(0)->child(0));
        QVERIFY(jumper);
        QCOMPARE(jumper->fixtureRecord(), m_trough);
        QCOMPARE(jumper->length(), 6.0);
        const QByteArray bytes = ProjectFile::toBytes(doc, header);
        QVERIFY(!bytes.contains("Glowbar"));
        QVERIFY(bytes.contains("fixtureName=\"" + kTrough.toUtf8() + "\""));
    }

    void hostileSizes()
    {
        QTemporaryDir dir;
        RecordingReporter rec;

        ConfigDocument doc(&m_db);
        HeaderValues header;
        // Nesting: at the limit the file opens; a run of 1000 comes back as saved.
        const int frameLevels = 2; // "Runplan" and "CFrame"
        const int deepest = ProjectFile::MaxNestingDepth - frameLevels;
        QVERIFY(ProjectFile::read(deepProject(deepest), doc, header, &rec));
        QCOMPARE(treeDepth(doc.root()), deepest);
        QVERIFY(rec.statusLines.isEmpty());
        QVERIFY(ProjectFile::read(deepProject(1000), doc, header, &rec));
        const QByteArray deepBytes = ProjectFile::toBytes(doc, header);
        ConfigDocument deepCopy(&m_db);
        QVERIFY(ProjectFile::read(deepBytes, deepCopy, header, &rec));
        QCOMPARE(treeDepth(deepCopy.root()), 1000);
        QCOMPARE(ProjectFile::toBytes(deepCopy, header), deepBytes);

        // One level deeper, or one child more than allowed (other elements do not count): refused
        // with a status line, and the open configuration stays as it was.
        ConfigDocument kept(&m_db);
        buildSmall(kept);
        kept.setModified(false);
        HeaderValues keptHeader = sampleHeader();
        const QByteArray keptBytes = ProjectFile::toBytes(kept, keptHeader);
        auto wide = [](int children) {
            const QString leader = QStringLiteral("<CWidget CWidgetItemType=\"1\" type=\"Leader 3ft\" "
                                                  "fixtureName=\"Stylebar Tunable Dynaline 4ft\"/>");
            return project(QStringLiteral("<CWidget CWidgetItemType=\"0\" name=\"Enabler Duo\">"
                                          "<CWidget CWidgetItemType=\"6\">%1%2</CWidget></CWidget>")
                               .arg(leader.repeated(children), QStringLiteral("<note/>").repeated(5000)));
        };
        ConfigDocument broad(&m_db);
        QVERIFY(ProjectFile::read(wide(ProjectFile::MaxChildren), broad, header, &rec));
        QCOMPARE(broad.count(ItemLeader), ProjectFile::MaxChildren);
        QVERIFY(rec.statusLines.isEmpty());
        const QList<QPair<QByteArray, QString>> refused{
            {deepProject(deepest + 1), QStringLiteral("nested more than 10000 levels")},
            {wide(ProjectFile::MaxChildren + 1), QStringLiteral("a component holds more than 1000 others")}};
        for (const auto& [bytes, reason] : refused) {
            rec.clear();
            const QString path = dir.filePath(QStringLiteral("refused.rpproj"));
            QVERIFY(writeFile(path, bytes));
            QVERIFY(!ProjectFile::open(path, kept, keptHeader, &rec));
            QVERIFY(rec.messages.isEmpty());
            QCOMPARE(rec.statusLines,
                     QStringList{QStringLiteral("Failed to open configuration %1: %2").arg(path, reason)});
            QCOMPARE(ProjectFile::toBytes(kept, keptHeader), keptBytes);
            QVERIFY(!kept.isModified());
        }

        // Far deeper, and not even components: refused before any tree is built; unclosed, so the
        // parser stops at the end of the data rather than at a closing tag.
        rec.clear();
        const QByteArray abyss =
            "<Runplan>" + QByteArray("<a>").repeated(1000000) + QByteArray("</a>").repeated(1000000) + "</Runplan>";
        QVERIFY(!ProjectFile::read(abyss, kept, keptHeader, &rec));
        QCOMPARE(rec.statusLines, QStringList{QStringLiteral("Failed to open configuration: nested more than 10000 levels")});
        QVERIFY(!ProjectFile::read(QByteArray("<a>").repeated(20000), kept, keptHeader, &rec));
        QCOMPARE(ProjectFile::toBytes(kept, keptHeader), keptBytes);
    }
};

QTEST_GUILESS_MAIN(ProjectFileTest)
#include "tst_projectfile.moc"
