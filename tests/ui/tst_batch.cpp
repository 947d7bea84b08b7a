// The program run from the command line as a separate process: unattended exports, their exit
// status, --help, --version and --report.

#include "TestSupport.h"
#include "app/CommandLine.h"
#include "app/Runplan.h"
#include "calc/Session.h"
#include "catalog/Database.h"
#include "catalog/Reporter.h"
#include "model/ProjectFile.h"

#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>
#include <QTextEdit>

#include <csignal>
#include <sys/resource.h>

namespace
{
struct Run {
    int exitCode = -1;
    bool crashed = false;
    QByteArray out;
    QByteArray err;
};
} // namespace

class TestBatch : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void parsesTheCommandLine();
    void helpAndVersion();
    void maximizeAllMatchesTheEngine();
    void selectionsChooseWhatIsExported();
    void exportGivenLastWritesDataCsv();
    void unwritableOutputFails();
    void invalidCatalogFails();
    void reportPrintsTheAnalysis();
    void nothingToDoEndsAtOnce();
    void qtOptionsAndDashedNames();
    void unattendedWindowKeepsItsOutputs();
    void designExports();

private:
    Run run(const QStringList& arguments, const QString& program = QString(), int waitMs = 240000,
            const QProcessEnvironment& env = QProcessEnvironment::systemEnvironment());
    QString programWithoutCatalog();
    QByteArray engineExport(bool all, const QString& enabler = QString(), const QString& fixture = QString());
    QByteArray readFile(const QString& path);

    Database m_db;
    QTemporaryDir* m_dir = nullptr;
};

void TestBatch::initTestCase()
{
    QVERIFY(m_db.loadFile(sampleCatalogPath()));
    QVERIFY(QFile::exists(binDirPath() + "/runplan"));
}

void TestBatch::init()
{
    // The program takes every argument with a "-" for an option: keep the paths handed to it
    // relative to a working folder whose own name has none.
    m_dir = new QTemporaryDir(QDir::tempPath() + "/rpbatchXXXXXX");
    QVERIFY(m_dir->isValid());
}

void TestBatch::cleanup()
{
    delete m_dir;
    m_dir = nullptr;
}

Run TestBatch::run(const QStringList& arguments, const QString& program, int waitMs,
                   const QProcessEnvironment& env)
{
    QProcess process;
    process.setWorkingDirectory(m_dir->path());
    process.setProcessEnvironment(env);
    process.start(program.isEmpty() ? binDirPath() + "/runplan" : program, arguments);
    Run result;
    if (!process.waitForStarted() || !process.waitForFinished(waitMs)) {
        process.kill();
        process.waitForFinished();
        result.crashed = true;
        return result;
    }
    result.crashed = process.exitStatus() != QProcess::NormalExit;
    result.exitCode = process.exitCode();
    result.out = process.readAllStandardOutput();
    result.err = process.readAllStandardError();
    return result;
}

QByteArray TestBatch::engineExport(bool all, const QString& enabler, const QString& fixture)
{
    Session session(m_db);
    if (!enabler.isEmpty())
        session.selectEnabler(m_db.supplyNamed(enabler));
    if (!fixture.isEmpty())
        session.selectFixture(m_db.fixtureNamed(fixture));
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly | QIODevice::Text);
    if (all)
        CsvExport::exportAllFixtures(buffer, session);
    else
        CsvExport::exportCurrentFixture(buffer, session);
    return buffer.data();
}

QByteArray TestBatch::readFile(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return QByteArray();
    return file.readAll();
}

void TestBatch::parsesTheCommandLine()
{
    CommandLineOptions o =
        parseCommandLine({"-nw", "--fixture", "F", "-ps", "P", "-ml", "20", "--maximize-fixture", "out.csv",
                          "--unknown-option", "first.rpproj", "second.rpproj"});
    QVERIFY(o.unattended);
    QVERIFY(o.maximizeFixture && !o.maximizeAll);
    QCOMPARE(o.maximizeFixtureFile, QStringLiteral("out.csv"));
    QCOMPARE(o.selections.size(), 3);
    QCOMPARE(o.selections.at(0).kind, CommandLineOptions::Selection::Fixture);
    QCOMPARE(o.selections.at(0).value, QStringLiteral("F"));
    QCOMPARE(o.selections.at(1).kind, CommandLineOptions::Selection::PowerSupply);
    QCOMPARE(o.selections.at(2).value, QStringLiteral("20"));
    QCOMPARE(o.projectFile, QStringLiteral("second.rpproj"));

    // Options stop at the first argument without a "-"; an export given last still counts, a
    // selection given last does not.
    o = parseCommandLine({"plan.rpproj", "-nw"});
    QVERIFY(!o.unattended);
    QCOMPARE(o.projectFile, QStringLiteral("-nw"));
    o = parseCommandLine({"-nw", "-f"});
    QVERIFY(o.selections.isEmpty());
    QVERIFY(o.projectFile.isEmpty());
    o = parseCommandLine({"-nw", "--maximize-all"});
    QVERIFY(o.maximizeAll);
    QVERIFY(o.maximizeAllFile.isEmpty());
    // Names are compared exactly.
    o = parseCommandLine({"-NW", "--Maximize-all", "x"});
    QVERIFY(!o.unattended && !o.maximizeAll);
    QCOMPARE(o.projectFile, QStringLiteral("x"));

    // "--report" takes its project whatever it holds; "--" ends the options and the argument
    // after it is the project.
    o = parseCommandLine({"-nw", "--report", "my-plan.rpproj"});
    QVERIFY(o.unattended && o.report);
    QCOMPARE(o.projectFile, QStringLiteral("my-plan.rpproj"));
    o = parseCommandLine({"--", "my-plan.rpproj"});
    QVERIFY(!o.unattended);
    QCOMPARE(o.projectFile, QStringLiteral("my-plan.rpproj"));
    o = parseCommandLine({"-f", "F", "--", "-nw"});
    QVERIFY(!o.unattended);
    QCOMPARE(o.selections.size(), 1);
    QCOMPARE(o.projectFile, QStringLiteral("-nw"));
}

void TestBatch::helpAndVersion()
{
    Run r = run({"--help"});
    QVERIFY(!r.crashed);
    QCOMPARE(r.exitCode, 0);
    QVERIFY(r.out.startsWith("Usage: runplan"));
    QVERIFY(r.out.contains("--maximize-all"));
    QVERIFY(r.out.contains("--report FILE"));
    QVERIFY(r.out.contains("--export-report FILE"));
    QVERIFY(r.out.contains("--export-bom FILE"));
    QVERIFY(r.out.contains("\n  --  "));

    r = run({"--version"});
    QCOMPARE(r.exitCode, 0);
    QCOMPARE(r.out, QByteArray("Runplan 3.17.0 (build 20250205-2cbee83)\n"));
}

void TestBatch::maximizeAllMatchesTheEngine()
{
    const Run r = run({"-nw", "--maximize-all", "all.csv"});
    QVERIFY(!r.crashed);
    QCOMPARE(r.exitCode, 0);
    const QByteArray written = readFile(m_dir->filePath("all.csv"));
    QVERIFY(written.startsWith("Fixtures, "));
    QVERIFY(written.contains("\nLine Voltage,"));
    QCOMPARE(written, engineExport(true));
}

void TestBatch::selectionsChooseWhatIsExported()
{
    const QString cove = QStringLiteral("Linea Cove Dynaline 4ft (208v - 277v)");
    // The enabler's name in any case; the fixture's exactly.
    const Run r = run({"-nw", "-ps", "line voltage", "-f", cove, "--maximize-fixture", "cove.csv"});
    QCOMPARE(r.exitCode, 0);
    const QByteArray written = readFile(m_dir->filePath("cove.csv"));
    QVERIFY(written.startsWith("Fixtures, 208v, 220v, 240v, 277v\n" + cove.toUtf8()));
    QCOMPARE(written, engineExport(false, QStringLiteral("Line Voltage"), cove));

    // A fixture name in the wrong case matches nothing: the enabler's first fixture is exported.
    const Run other =
        run({"-nw", "-ps", "Line Voltage", "-f", cove.toLower(), "--maximize-fixture", "first.csv"});
    QCOMPARE(other.exitCode, 0);
    QCOMPARE(readFile(m_dir->filePath("first.csv")), engineExport(false, QStringLiteral("Line Voltage")));
}

void TestBatch::exportGivenLastWritesDataCsv()
{
    const Run r = run({"-nw", "--maximize-fixture"});
    QCOMPARE(r.exitCode, 0);
    QCOMPARE(readFile(m_dir->filePath("data.csv")), engineExport(false));
}

void TestBatch::unwritableOutputFails()
{
    const QString blocked = QStringLiteral("nofolder/out.csv");
    const Run r = run({"-nw", "--maximize-all", blocked});
    QVERIFY(!r.crashed);
    QVERIFY(r.exitCode != 0);
    QVERIFY2(r.err.contains("cannot write") && r.err.contains("out.csv"), r.err.constData());
    QVERIFY(!QFile::exists(m_dir->filePath(blocked)));

    // A write that stops part-way (a file-size limit the program inherits stands in for a full disk).
    struct rlimit saved {};
    QCOMPARE(getrlimit(RLIMIT_FSIZE, &saved), 0);
    const struct rlimit small{16, saved.rlim_max};
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    QCOMPARE(setrlimit(RLIMIT_FSIZE, &small), 0);
    const Run full = run({"-nw", "--maximize-all", "full.csv"});
    setrlimit(RLIMIT_FSIZE, &saved);
    std::signal(SIGXFSZ, handler);
    QCOMPARE(full.exitCode, 1);
    QVERIFY2(full.err.contains("full.csv"), full.err.constData());
    QVERIFY(!QFile::exists(m_dir->filePath("full.csv")));
}

// A copy of the program in the working folder, where no catalog lies beside it.
QString TestBatch::programWithoutCatalog()
{
    const QString program = m_dir->filePath("runplan");
    if (!QFile::exists(program) && QFile::copy(binDirPath() + "/runplan", program))
        QFile::setPermissions(program, QFile::permissions(program) | QFileDevice::ExeOwner);
    return program;
}

void TestBatch::invalidCatalogFails()
{
    // A copy of the program beside a broken catalog.
    const QString program = programWithoutCatalog();
    QFile catalog(m_dir->filePath("vx_config_dl.xml"));
    QVERIFY(catalog.open(QIODevice::WriteOnly));
    catalog.write("<not a catalog");
    catalog.close();

    const Run r = run({"-nw", "--maximize-all", "all.csv"}, program);
    QVERIFY(!r.crashed);
    QVERIFY(r.exitCode != 0);
    QVERIFY2(r.err.contains("catalog") && r.err.contains("not valid"), r.err.constData());
    QVERIFY(!QFile::exists(m_dir->filePath("all.csv")));

    QVERIFY(QFile::copy(testDataPath("app/sample.rpproj"), m_dir->filePath("sample.rpproj")));
    const Run report = run({"-nw", "--report", "sample.rpproj"}, program);
    QCOMPARE(report.exitCode, 1);

    // With nothing to export the run still says the catalog was unusable, in the loader's words.
    const Run bare = run({"-nw"}, program);
    QVERIFY(!bare.crashed);
    QCOMPARE(bare.exitCode, 1);
    QVERIFY2(bare.err.contains("Error parsing database file"), bare.err.constData());
}

void TestBatch::reportPrintsTheAnalysis()
{
    for (const QString& name : {QStringLiteral("sample.rpproj"), QStringLiteral("overload.rpproj")}) {
        QVERIFY(QFile::copy(testDataPath("app/" + name), m_dir->filePath(name)));

        // What the engine makes of the same project.
        Session session(m_db);
        RecordingReporter quiet;
        QVERIFY(ProjectFile::open(testDataPath("app/" + name), session.document(), session.header(), &quiet));
        session.analyze();
        QString expected;
        for (const auto& line : session.result().logLines())
            expected += line.first + QLatin1Char('\n');

        const Run r = run({"-nw", "--report", name});
        QVERIFY(!r.crashed);
        QCOMPARE(QString::fromUtf8(r.out), expected);
        QCOMPARE(r.exitCode, session.result().pass ? 0 : 2);
        QVERIFY(r.out.contains("Length = "));
    }
    // The sample passes and the overloaded copy fails.
    QCOMPARE(run({"-nw", "--report", "sample.rpproj"}).exitCode, 0);
    QCOMPARE(run({"-nw", "--report", "overload.rpproj"}).exitCode, 2);

    const Run missing = run({"-nw", "--report", "missing.rpproj"});
    QCOMPARE(missing.exitCode, 1);
    QVERIFY(missing.err.contains("Open Error"));
    QVERIFY(missing.out.isEmpty());
    // Whatever was not read whole is no report: the reason goes to stderr and the status is 1.
    const QByteArray sample = readFile(testDataPath("app/sample.rpproj"));
    const QByteArray deep = "<Runplan>" + QByteArray("<a>").repeated(20000);
    for (const auto& [bytes, reason] : QList<QPair<QByteArray, QByteArray>>{
             {sample.left(sample.size() / 2), "was not read completely: it breaks off at line "},
             {"\xff\xfe<Runplan/>", "not well-formed XML"},
             {QByteArray("<Runplan>\0</Runplan>", 20), "breaks off at line 1, column 10: "},
             {"<Runplan a=\"1\" a=\"1\"><CFrame/></Runplan>", "not well-formed XML"},
             {"<Plan/>", "its root element is \"Plan\""},
             {deep, "nested more than 10000 levels"}}) {
        QFile broken(m_dir->filePath("broken.rpproj"));
        QVERIFY(broken.open(QIODevice::WriteOnly | QIODevice::Truncate) && broken.write(bytes) == bytes.size());
        broken.close();
        const Run r = run({"-nw", "--report", "broken.rpproj"});
        QCOMPARE(r.exitCode, 1);
        QVERIFY2(r.err.contains("broken.rpproj") && r.err.contains(reason), r.err.constData());
        QVERIFY(r.out.isEmpty());
    }
    // Only an unattended run reports.
    QCOMPARE(run({"--report", "sample.rpproj"}).exitCode, 1);
    QCOMPARE(run({"-nw", "--report"}).exitCode, 1);
}

void TestBatch::nothingToDoEndsAtOnce()
{
    const Run r = run({"-nw"});
    QVERIFY(!r.crashed);
    QCOMPARE(r.exitCode, 0);
    QVERIFY(r.err.contains("Command completed"));
    QVERIFY(QDir(m_dir->path()).entryList(QDir::Files).isEmpty());
}

void TestBatch::qtOptionsAndDashedNames()
{
    // Qt's own options first: the run is still unattended, so a missing catalog or project ends
    // it with a message on standard error instead of a message box nobody can answer.
    const int hangMs = 60000;
    Run r = run({"-platform", "offscreen", "-nw", "--maximize-all", "x.csv"}, programWithoutCatalog(), hangMs);
    QVERIFY(!r.crashed);
    QCOMPARE(r.exitCode, 1);
    QVERIFY2(r.err.contains("Cannot read database file"), r.err.constData());
    r = run({"-platform", "offscreen", "-nw", "--report", "missing.rpproj"}, QString(), hangMs);
    QVERIFY(!r.crashed);
    QCOMPARE(r.exitCode, 1);
    QVERIFY2(r.err.contains("Open Error"), r.err.constData());

    // A project whose name holds a "-" is analysed.
    QVERIFY(QFile::copy(testDataPath("app/sample.rpproj"), m_dir->filePath("my-plan.rpproj")));
    r = run({"-nw", "--report", "my-plan.rpproj"});
    QCOMPARE(r.exitCode, 0);
    QVERIFY(r.out.contains("Length = "));

    // Without any display a run that wants the window ends with a message.
    QProcessEnvironment noDisplay = QProcessEnvironment::systemEnvironment();
    for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"})
        noDisplay.remove(QString::fromLatin1(name));
    r = run({}, QString(), hangMs, noDisplay);
    QVERIFY(!r.crashed);
    QCOMPARE(r.exitCode, 1);
    QVERIFY2(r.err.contains("no display"), r.err.constData());
}

void TestBatch::unattendedWindowKeepsItsOutputs()
{
    // An unattended window keeps no display up to date; what it logs, analyses and exports is
    // what a shown window does.
    QVERIFY(Database::instance()->isValid());
    CommandLineOptions options;
    options.selections.append({CommandLineOptions::Selection::PowerSupply, QStringLiteral("Line Voltage")});
    options.selections.append({CommandLineOptions::Selection::Fixture,
                               QStringLiteral("Linea Cove Dynaline 4ft (208v - 277v)")});
    Runplan shown;
    shown.processCommandLine(options);
    options.unattended = true;
    Runplan unattended;
    unattended.processCommandLine(options);
    QVERIFY(unattended.isRunningBatchCommands());

    QByteArray csv[2];
    Runplan* windows[2] = {&shown, &unattended};
    for (int i = 0; i < 2; ++i) {
        windows[i]->maximize();
        QBuffer buffer(&csv[i]);
        buffer.open(QIODevice::WriteOnly | QIODevice::Text);
        CsvExport::exportCurrentFixture(buffer, *windows[i]);
    }
    QVERIFY(unattended.fixtureCount() > 1);
    QCOMPARE(unattended.fixtureCount(), shown.fixtureCount());
    QCOMPARE(unattended.lastResult().logLines(), shown.lastResult().logLines());
    QCOMPARE(csv[1], csv[0]);
    QVERIFY(csv[0].contains("Linea Cove"));
    const QTextEdit* logs[2] = {shown.findChild<QTextEdit*>("m_messageBox"),
                                unattended.findChild<QTextEdit*>("m_messageBox")};
    QVERIFY(logs[0]->document()->blockCount() > 10);
    QCOMPARE(logs[1]->toHtml(), logs[0]->toHtml());
}

// The design report and the bill of materials of a saved plan, beside the --report lines.
void TestBatch::designExports()
{
    const CommandLineOptions o = parseCommandLine(
        {"-nw", "--export-report", "a.pdf", "--export-bom", "b.csv", "--report", "p.rpproj"});
    QCOMPARE(o.exportReportFile, QStringLiteral("a.pdf"));
    QCOMPARE(o.exportBomFile, QStringLiteral("b.csv"));
    QVERIFY(o.report);
    QCOMPARE(o.projectFile, QStringLiteral("p.rpproj"));

    for (const char* name : {"sample.rpproj", "overload.rpproj"})
        QVERIFY(QFile::copy(testDataPath(QStringLiteral("app/") + name), m_dir->filePath(name)));
    Run r =
        run({"-nw", "--export-report", "out.pdf", "--export-bom", "bom.csv", "--report", "sample.rpproj"});
    QVERIFY(!r.crashed);
    QCOMPARE(r.exitCode, 0);
    QVERIFY(r.out.startsWith("Length = "));
    const QByteArray pdf = readFile(m_dir->filePath("out.pdf"));
    QVERIFY(pdf.startsWith("%PDF-"));
    const QByteArray bom = readFile(m_dir->filePath("bom.csv"));
    QVERIFY(bom.startsWith("Kind,Catalog Name,Type,Gauge,Location,Quantity,Total Length (ft)\r\n"
                           "Enabler,Signal Feeder Pro,,,,1,\r\n"));
    QVERIFY(bom.contains("\r\nFixture,Stylebar Tunable Dynaline 4ft,,,,6,\r\n"));

    // A failing plan still gets its files, with status 2; a file that cannot be written gives 1,
    // the reason, and nothing in its place.
    r = run({"-nw", "--export-bom", "over.csv", "overload.rpproj"});
    QCOMPARE(r.exitCode, 2);
    QVERIFY(r.out.isEmpty());
    QVERIFY(QFile::exists(m_dir->filePath("over.csv")));
    r = run({"-nw", "--export-report", "missing/out.pdf", "sample.rpproj"});
    QCOMPARE(r.exitCode, 1);
    QVERIFY(r.err.contains("cannot write the report missing/out.pdf"));
    QVERIFY(!QFile::exists(m_dir->filePath("missing/out.pdf")));
    QCOMPARE(run({"-nw", "--export-bom", "x.csv", "absent.rpproj"}).exitCode, 1);
    QVERIFY(!QFile::exists(m_dir->filePath("x.csv")));

    // As a reader sees it: a summary page, the run diagram, the run table with the bill of materials.
    const QString pdftotext = QStandardPaths::findExecutable(QStringLiteral("pdftotext"));
    if (pdftotext.isEmpty())
        QSKIP("pdftotext (poppler-utils) is not installed");
    QProcess text;
    text.start(pdftotext, {"-layout", m_dir->filePath("out.pdf"), "-"});
    QVERIFY(text.waitForFinished(60000));
    const QString pages = QString::fromUtf8(text.readAllStandardOutput());
    QCOMPARE(pages.count(QLatin1Char('\f')), 3);
    for (const char* expected :
         {"Runplan Design Report", "sample.rpproj", "Enabler", "Signal Feeder Pro", "Line voltage", "120 V",
          "60 Hz", "15 A (derated to 12 A)", "Catalog version", "Runplan 3.17.0", "Result: PASS",
          "Inrush current", "Run diagram", "Runs", "Bill of materials", "Page 1 of 3", "Page 3 of 3"})
        QVERIFY2(pages.contains(QLatin1String(expected)), expected);
}

QTEST_MAIN(TestBatch)
#include "tst_batch.moc"
