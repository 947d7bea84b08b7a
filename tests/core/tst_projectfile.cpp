#include "CatalogFixture.h"

#include "model/CWidgetModel.h"
#include "model/HeaderChoices.h"
#include "model/ProjectFile.h"

#include <QDir>
#include <QTemporaryDir>

#include <sys/wait.h>
#include <unistd.h>

namespace
{

const QString kBar = QStringLiteral("Stylebar Tunable Dynaline 4ft");
const QString kTrough = QStringLiteral("Linea Trough Model A Dynaline 6in (100v - 120v)");

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

// Runs f in a child process that writes as an ordinary user would (root may write into any
// folder); true when f returned true there.
template <typename F> bool asOrdinaryUser(F f)
{
    const pid_t pid = fork();
    if (pid == 0) {
        if (geteuid() == 0 && (setgid(65534) != 0 || setuid(65534) != 0))
            _exit(2);
        _exit(f() ? 0 : 1);
    }
    int status = 0;
    return pid > 0 && waitpid(pid, &status, 0) == pid && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

} // namespace

class TestProjectFile : public QObject
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
        h.customLoad = 17;
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

    // Every kind of component, custom cables, a second enabler on a Feedwise wire, and texts that
    // need escaping in the header and in a cable's type.
    void readEveryKind(ConfigDocument& doc, HeaderValues& header)
    {
        RecordingReporter rec;
        QVERIFY(ProjectFile::read(testDataBytes("project/every-kind.rpproj"), doc, header, &rec));
        QVERIFY(rec.messages.isEmpty() && rec.statusLines.isEmpty());
    }

private slots:
    void initTestCase()
    {
        RecordingReporter quiet;
        QVERIFY(m_db.loadFile(testDataPath(QStringLiteral("project/catalog.xml")), &quiet)
                && quiet.messages.isEmpty());
        m_duo = m_db.supplyNamed(QStringLiteral("Enabler Duo"));
        m_bar = m_db.fixtureNamed(kBar);
        m_trough = m_db.fixtureNamed(kTrough);
        QVERIFY(m_duo && m_bar && m_trough);
    }

    void names()
    {
        // Rows: "extension" or "legacy" (a fixture's old name), the name given, the name used.
        for (const QStringList& row : dataRows("project/names.tsv")) {
            const QString used = row.at(0) == "extension" ? ProjectFile::withExtension(row.at(1))
                                                          : ProjectFile::mapLegacyFixtureName(row.at(1));
            QCOMPARE(used, row.at(2));
        }
    }

    void layoutOfASmallProject()
    {
        ConfigDocument doc(&m_db);
        buildSmall(doc);
        const HeaderValues header = sampleHeader();
        const QByteArray expected = testDataBytes(QStringLiteral("project/small-layout.rpproj"));
        QCOMPARE(ProjectFile::toBytes(doc, header), expected);

        // Saved under the added extension over a longer old file, reported, no longer modified.
        QTemporaryDir dir;
        RecordingReporter rec;
        QString saved;
        QVERIFY(writeFileBytes(dir.filePath(QStringLiteral("small.rpproj")), QByteArray(4096, 'x')));
        QVERIFY(ProjectFile::save(dir.filePath(QStringLiteral("small")), doc, header, &rec, &saved));
        QCOMPARE(saved, dir.filePath(QStringLiteral("small.rpproj")));
        QCOMPARE(fileBytes(saved), expected);
        QCOMPARE(rec.statusLines, QStringList{QStringLiteral("Configuration saved")});
        QVERIFY(rec.messages.isEmpty() && !doc.isModified());
    }

    void everyKindReadsBackAndMarksEdits()
    {
        ConfigDocument copy(&m_db);
        HeaderValues header;
        readEveryKind(copy, header);
        QCOMPARE(ProjectFile::toBytes(copy, header), testDataBytes("project/every-kind.rpproj"));
        QVERIFY(!copy.isModified());

        // Every component read from a file reports its edits: the user is asked to save afterwards.
        QSignalSpy edited(&copy, &ConfigDocument::componentChanged);
        CWidget* deepest = copy.root();
        QVERIFY(deepest);
        while (deepest->childCount() > 0)
            deepest = deepest->child(deepest->childCount() - 1);
        const QModelIndex idx = copy.indexOf(deepest);
        const EditorRule types = deepest->editorRule(PropType);
        QVERIFY(types.choices.size() > 1);
        const QModelIndex cell = copy.model()->index(idx.row(), PropType, idx.parent());
        // The type it already has changes nothing; another one is an edit.
        QVERIFY(copy.model()->setData(cell, types.choices.at(types.currentIndex), Qt::EditRole));
        QCOMPARE(edited.count(), 0);
        QVERIFY(!copy.isModified());
        QVERIFY(copy.model()->setData(cell, types.choices.at(types.currentIndex == 0 ? 1 : 0), Qt::EditRole));
        QCOMPARE(edited.count(), 1);
        QVERIFY(copy.isModified());
    }

    // The custom values are read only next to "Other", with defaults when absent; the fixture
    // under its present name.
    // The custom values are read only next to "Other", with defaults when absent; the fixture
    // under its present name. Rows: the header's attributes, the custom voltage and load read.
    void headerOnReading()
    {
        for (const QStringList& row : dataRows("project/header-reading.tsv")) {
            HeaderValues in;
            in.customVoltage = in.customLoad = 999;
            in.controller = QStringLiteral("Keep");
            ConfigDocument target(&m_db);
            QVERIFY(ProjectFile::read(project(QString(), row.at(0)), target, in, nullptr));
            QCOMPARE((QList<int>{in.customVoltage, in.customLoad}), (QList<int>{row.at(1).toInt(), row.at(2).toInt()}));
            QCOMPARE(in.controller, QStringLiteral("Keep")); // an empty controller selects nothing
            QCOMPARE(in.fixture, row.at(0).contains(QStringLiteral("Glowbar")) ? kBar : QString());
        }
    }

    void readingRules()
    {
        // A fixed jumper is written without a length and comes back with the constructor's.
        ConfigDocument doc(&m_db);
        buildSmall(doc);
        HeaderValues h;
        QVERIFY(ProjectFile::read(ProjectFile::toBytes(doc, sampleHeader()), doc, h, nullptr));
        const CWidget* fixture = doc.root() && doc.root()->child(0) ? doc.root()->child(0)->child(0) : nullptr;
        auto* jumper = qobject_cast<CableWidget*>(fixture ? fixture->child(0) : nullptr);
        QVERIFY(jumper);
        QCOMPARE(jumper->length(), 1.0);

        // A supply read from a file never offers "Feedwise", and takes no mode the file leaves out.
        QVERIFY(ProjectFile::read(
            project(QStringLiteral("<CWidget CWidgetItemType=\"0\" name=\"Enabler Feed First\"/>")), doc, h,
            nullptr));
        auto* supply = qobject_cast<SupplyWidget*>(doc.root());
        QVERIFY(supply);
        QCOMPARE(supply->editorRule(PropOutputMode).choices,
                 QStringList({QStringLiteral("Line Voltage"), QStringLiteral("Dynaline")}));
        QCOMPARE(supply->outputMode(), QString());
    }

    void childOrderOnReading()
    {
        // Under a junction box: fixtures to the front (each in turn), Feedwise wires to the end,
        // the rest in file order. Under a leader fixtures keep their order.
        ConfigDocument doc(&m_db);
        HeaderValues h;
        QVERIFY(ProjectFile::open(testDataPath("project/child-order.rpproj"), doc, h, nullptr));
        QVERIFY(doc.root() && doc.root()->child(0));
        QStringList order;
        for (const CWidget* c : doc.root()->child(0)->children()) {
            auto* b = qobject_cast<const BranchWireWidget*>(c);
            order << (b ? b->location() : QStringLiteral("%1:%2").arg(c->itemType()).arg(c->catalogItem()->name));
        }
        QCOMPARE(order, QStringList({"2:" + kTrough, "2:" + kBar, "1:" + kBar, "B", "A", "C"}));
        const CWidget* read = doc.root()->child(0)->child(2);
        QVERIFY(read && read->child(1));
        QCOMPARE(read->child(1)->catalogItem(), m_trough);
    }

    void failedSavesKeepTheOldFile()
    {
        // The parent of the target is a file, the target is a folder, or the write stops half-way
        // (the file-size limit binds root too and stands in for a full disk): the folder stays as it was.
        QTemporaryDir dir;
        const QString keep = dir.filePath(QStringLiteral("keep.rpproj"));
        QVERIFY(writeFileBytes(dir.filePath(QStringLiteral("blocker")), "old") && writeFileBytes(keep, "old"));
        QVERIFY(QDir(dir.path()).mkdir(QStringLiteral("taken.rpproj")));
        ConfigDocument doc(&m_db);
        HeaderValues everyKind;
        readEveryKind(doc, everyKind);
        doc.setModified(true);
        for (const char* name : {"blocker/plan", "taken", "keep"}) {
            const QString path = dir.filePath(QLatin1String(name) + QStringLiteral(".rpproj"));
            RecordingReporter rec;
            bool ok = true;
            const auto save = [&] { ok = ProjectFile::save(dir.filePath(QLatin1String(name)), doc, sampleHeader(), &rec); };
            if (path == keep)
                QVERIFY(withFileSizeLimit(512, save));
            else
                save();
            QVERIFY(!ok && doc.isModified());
            const QString text = rec.messages.value(0).text;
            const QString expected = path == keep ? "Failed to save configuration file: " + keep
                                                  : "Cannot open file " + path + ":\n";
            QVERIFY2(rec.messages.size() == 1 && text.startsWith(expected), qPrintable(text));
            QCOMPARE(rec.statusLines, QStringList{QStringLiteral("Failed to save configuration: %1").arg(path)});
            QCOMPARE(fileBytes(dir.filePath(QStringLiteral("blocker"))) + fileBytes(keep), QByteArray("oldold"));
            QCOMPARE(QDir(dir.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
                     QStringList({"blocker", "keep.rpproj", "taken.rpproj"}));
        }

        // In a folder that may not be written, a project file that may is overwritten in place; a
        // new file cannot be made there.
        QTemporaryDir locked;
        const QString plan = locked.filePath(QStringLiteral("plan.rpproj"));
        QVERIFY(writeFileBytes(plan, QByteArray(4096, 'x')));
        QVERIFY(QFile::setPermissions(plan, QFile::permissions(plan) | QFileDevice::WriteOther) &&
                QFile::setPermissions(locked.path(), QFileDevice::ReadOwner | QFileDevice::ExeOwner |
                                                         QFileDevice::ReadOther | QFileDevice::ExeOther));
        const HeaderValues header = sampleHeader();
        QVERIFY(asOrdinaryUser([&] {
            RecordingReporter rec;
            return ProjectFile::save(plan, doc, header, &rec) && rec.messages.isEmpty();
        }));
        QCOMPARE(fileBytes(plan), ProjectFile::toBytes(doc, header));
        QVERIFY(asOrdinaryUser([&] {
            RecordingReporter rec;
            return !ProjectFile::save(locked.filePath(QStringLiteral("new")), doc, header, &rec) &&
                   rec.messages.value(0).text.startsWith(QStringLiteral("Cannot open file "));
        }));
        QCOMPARE(QDir(locked.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
                 QStringList{QStringLiteral("plan.rpproj")});
        QFile::setPermissions(locked.path(), QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
    }

    // Each file of malformed.tsv opens without a message and replaces the configuration with what
    // it could use: the header's supply and frequency, and the component kinds in preorder. Only
    // the truncated one says it was not read whole, and where.
    void malformedCorpus_data()
    {
        QTest::addColumn<QStringList>("row");
        for (const QStringList& row : dataRows("project/malformed.tsv"))
            QTest::newRow(qPrintable(row.at(0))) << row;
    }

    void malformedCorpus()
    {
        QFETCH(QStringList, row);
        const QString kinds = row.value(3);
        ConfigDocument doc(&m_db);
        doc.setTechType(3);
        doc.addSupply(m_db.supplyNamed(QStringLiteral("Enabler Line")));
        HeaderValues header;
        header.supply = QStringLiteral("Enabler Line");
        RecordingReporter rec;
        QString notReadWhole = QStringLiteral("stale");
        QVERIFY(ProjectFile::open(testDataPath("project/" + row.at(0)), doc, header, &rec, &notReadWhole));
        QVERIFY(rec.messages.isEmpty() && rec.statusLines.isEmpty());
        QCOMPARE(notReadWhole, row.value(4));
        QCOMPARE(header.supply, row.at(1));
        QCOMPARE(header.frequency, row.at(2));
        QCOMPARE(shape(doc.root()), kinds);
        QCOMPARE(doc.count(ItemAny), kinds.size());
        QCOMPARE(doc.current(), doc.root());
        QCOMPARE(doc.techType(), 3); // not read from the file
        QVERIFY(!doc.isModified());
        QVERIFY(!ComponentLoading::active());
        // That what was read writes and reads back to the same bytes is checked for every file
        // here by the fuzz-regression replay.
    }

    void refusedFiles()
    {
        // At the limits ("Runplan" and "CFrame" are levels, other elements not children) a file opens;
        // past them, or nested deep in anything, it is refused and the open configuration stays. So
        // is anything that is not a project: not well-formed XML up to its first element, or
        // another root element.
        const int deepest = ProjectFile::MaxNestingDepth - 2;
        auto wide = [](int children) {
            const QString leader = QStringLiteral("<CWidget CWidgetItemType=\"1\" fixtureName=\"%1\"/>").arg(kBar);
            return project(QStringLiteral("<CWidget CWidgetItemType=\"0\" name=\"Enabler Duo\"><CWidget "
                                          "CWidgetItemType=\"6\">%1%2</CWidget></CWidget>")
                               .arg(leader.repeated(children), QStringLiteral("<note/>").repeated(5000)));
        };
        ConfigDocument doc(&m_db);
        HeaderValues header;
        RecordingReporter rec;
        QVERIFY(ProjectFile::read(deepProject(deepest), doc, header, &rec));
        QCOMPARE(shape(doc.root()).size(), deepest);
        QVERIFY(ProjectFile::read(wide(ProjectFile::MaxChildren), doc, header, &rec));
        QCOMPARE(doc.count(ItemLeader), ProjectFile::MaxChildren);
        const QByteArray kept = ProjectFile::toBytes(doc, header);
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("refused.rpproj"));
        const QByteArray corpus = testDataPath(QStringLiteral("project/")).toUtf8();
        for (const auto& [bytes, reason] : QList<QPair<QByteArray, QString>>{
                 {deepProject(deepest + 1), "nested more than 10000 levels"},
                 {"<Runplan>" + QByteArray("<a>").repeated(1000000), "nested more than 10000 levels"},
                 {wide(ProjectFile::MaxChildren + 1), "a component holds more than 1000 others"},
                 {corpus + "not-xml.rpproj", "not well-formed XML (line 1, column 1: Start tag expected)"},
                 {corpus + "empty.rpproj", "not well-formed XML (line 1, column 0: Premature end of document)"},
                 {corpus + "wrong-root.rpproj", "its root element is \"Project\", not \"Runplan\""},
                 {corpus + "entity-expansion.rpproj", "not well-formed XML (line 12, column "},
                 {"<Runplan a=\"1\" a=\"2\"><CFrame/></Runplan>", "not well-formed XML (line 1, column "},
                 {"<Runplan CurrentSupplyName=\"\xff\xfe\"><CFrame/></Runplan>", "not well-formed XML (line 1, column "},
                 {QByteArray("<Runplan\0 CurrentSupplyName=\"x\"/>", 33), "not well-formed XML (line 1, column "}}) {
            rec.clear();
            const bool inCorpus = bytes.startsWith(corpus);
            const QString file = inCorpus ? QString::fromUtf8(bytes) : path;
            QVERIFY((inCorpus || writeFileBytes(path, bytes)) && !ProjectFile::open(file, doc, header, &rec));
            QVERIFY(!doc.isModified());
            QCOMPARE(rec.messages.size(), 1);
            QCOMPARE(rec.messages.at(0).title, QStringLiteral("Open Error"));
            const QString expected = "Cannot open " + file + " as a project:\n" + reason;
            QVERIFY2(rec.messages.at(0).text.startsWith(expected), qPrintable(rec.messages.at(0).text));
            QVERIFY2(rec.statusLines.size() == 1 &&
                         rec.statusLines.at(0).startsWith("Failed to open configuration " + file + ": " + reason),
                     qPrintable(rec.statusLines.join('|')));
            QCOMPARE(ProjectFile::toBytes(doc, header), kept);
        }
        // Broken off inside the tree: read as far as it goes, and said so.
        QString notReadWhole;
        const QByteArray whole = ProjectFile::toBytes(doc, header);
        QVERIFY(ProjectFile::read(whole.left(whole.indexOf("</CWidget>")) + "<CWidget a=\"1\" a=\"2\"/>", doc, header, &rec,
                                  QString(), &notReadWhole));
        QVERIFY2(notReadWhole.contains(QStringLiteral("redefined")), qPrintable(notReadWhole));
        QCOMPARE(doc.count(ItemLeader), ProjectFile::MaxChildren);
    }
};

QTEST_GUILESS_MAIN(TestProjectFile)
#include "tst_projectfile.moc"
