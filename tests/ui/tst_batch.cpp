// The program run from the command line as a separate process: unattended exports, their exit
// status, --help, --version and --report.

#include "TestSupport.h"
#include "app/CommandLine.h"
#include "app/Runplan.h"
#include "catalog/Database.h"

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
    void exportsMatchTheGoldenFiles();
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
    QByteArray readFile(const QString& path);

    QTemporaryDir* m_dir = nullptr;
};

void TestBatch::initTestCase()
{
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

// Each export byte for byte as checked in under tests/data/app: all fixtures; one fixture chosen by
// the enabler's name in any case and the fixture's exactly; a fixture name in the wrong case, which
// matches nothing, so the enabler's first fixture (Line Voltage's first is also the starting one); an
// export given last, which writes data.csv.
void TestBatch::exportsMatchTheGoldenFiles()
{
    const QString cove = QStringLiteral("Linea Cove Dynaline 4ft (208v - 277v)");
    const struct {
        QStringList arguments;
        const char* written;
        const char* golden;
    } exports[] = {
        {{"-nw", "--maximize-all", "all.csv"}, "all.csv", "batch-all.csv"},
        {{"-nw", "-ps", "line voltage", "-f", cove, "--maximize-fixture", "cove.csv"}, "cove.csv", "batch-cove.csv"},
        {{"-nw", "-ps", "Line Voltage", "-f", cove.toLower(), "--maximize-fixture", "first.csv"}, "first.csv",
         "batch-first.csv"},
        {{"-nw", "--maximize-fixture"}, "data.csv", "batch-first.csv"}};
    for (const auto& e : exports) {
        const Run r = run(e.arguments);
        QVERIFY(!r.crashed);
        QCOMPARE(r.exitCode, 0);
        const QByteArray golden = readFile(testDataPath(QStringLiteral("app/") + e.golden));
        QVERIFY2(!golden.isEmpty() && readFile(m_dir->filePath(e.written)) == golden, e.golden);
    }
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
    // The analysis log as checked in; the sample passes (0) and the overloaded copy fails (2).
    for (const auto& [name, status] : {std::pair{"sample", 0}, std::pair{"overload", 2}}) {
        const QString project = QStringLiteral("%1.rpproj").arg(QLatin1String(name));
        QVERIFY(QFile::copy(testDataPath("app/" + project), m_dir->filePath(project)));
        const Run r = run({"-nw", "--report", project});
        QCOMPARE(r.exitCode, status);
        QCOMPARE(r.out, readFile(testDataPath(QStringLiteral("app/%1.report.txt").arg(QLatin1String(name)))));
    }
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
    // The unattended log is written out when asked for; what it then holds is the shown one's.
    const QTextEdit* logs[2] = {shown.outputLog(), unattended.outputLog()};
    QCOMPARE(logs[1], unattended.findChild<QTextEdit*>("m_messageBox"));
    QVERIFY(logs[0]->document()->blockCount() > 10);
    QCOMPARE(logs[1]->toHtml(), logs[0]->toHtml());
}

// The design report and the bill of materials of a saved plan, beside the --report lines.
void TestBatch::designExports()
{
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
