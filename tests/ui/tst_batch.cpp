// The program run from the command line as a separate process: unattended exports, their exit
// status, --help, --version and --report.

#include "WindowFixture.h"
#include "app/CommandLine.h"

#include <QBuffer>
#include <QDir>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTextEdit>

struct Run {
    int exitCode = -1; // also when the program crashed or did not end in time
    QByteArray out;
    QByteArray err;
};

class TestBatch : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QVERIFY(QFile::exists(binDirPath() + "/runplan")); }
    void init();
    void cleanup() { m_dir.reset(); }

    void parsesTheCommandLine();
    void runsAsTabled();
    void exportsMatchTheGoldenFiles();
    void unwritableOutputFails();
    void withoutCatalogOrDisplay();
    void unattendedWindowKeepsItsOutputs();
    void designExports();

private:
    Run run(const QStringList& arguments, const QString& program = QString(), int waitMs = 240000,
            const QProcessEnvironment& env = QProcessEnvironment::systemEnvironment());
    QByteArray readFile(const QString& name) { return fileBytes(m_dir->filePath(name)); }

    std::unique_ptr<QTemporaryDir> m_dir;
};

void TestBatch::init()
{
    // The program takes every argument with a "-" for an option: keep the paths handed to it
    // relative to a working folder whose own name has none.
    // The checked-in projects lie in it.
    m_dir = std::make_unique<QTemporaryDir>(QDir::tempPath() + "/rpbatchXXXXXX");
    QVERIFY(m_dir->isValid());
    for (const QString& name : QDir(testDataPath("app")).entryList({"*.rpproj"}))
        QVERIFY(QFile::copy(testDataPath("app/" + name), m_dir->filePath(name)));
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
        return result;
    }
    if (process.exitStatus() == QProcess::NormalExit)
        result.exitCode = process.exitCode();
    result.out = process.readAllStandardOutput();
    result.err = process.readAllStandardError();
    return result;
}

// The rows of tests/data/app/command-lines.txt: the arguments and what was read from them.
void TestBatch::parsesTheCommandLine()
{
    static const char* const kinds[] = {"Fixture", "PowerSupply", "MaxCircuitLoad"};
    for (const QString& line : dataLines("app/command-lines.txt")) {
        const CommandLineOptions o = parseCommandLine(line.section('|', 0, 0).split(' ', Qt::SkipEmptyParts));
        QStringList read;
        if (o.unattended)
            read << "nw";
        if (o.report)
            read << "report";
        if (o.maximizeAll)
            read << "all(" + o.maximizeAllFile + ")";
        if (o.maximizeFixture)
            read << "fixture(" + o.maximizeFixtureFile + ")";
        for (const CommandLineOptions::Selection& selection : o.selections)
            read << QStringLiteral("%1=%2").arg(QLatin1String(kinds[selection.kind]), selection.value);
        if (!o.projectFile.isEmpty())
            read << "project=" + o.projectFile;
        QCOMPARE(read.join(' '), line.section('|', 1).trimmed());
    }
}

// The rows of tests/data/app/runs.txt: each run ends with its status, says what it should on
// standard error, prints its golden output and leaves the working folder as it was.
void TestBatch::runsAsTabled()
{
    const QStringList files = QDir(m_dir->path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot);
    for (const QString& line : dataLines("app/runs.txt")) {
        const QStringList cells = line.split('|');
        const Run r = run(cells.value(0).split(' ', Qt::SkipEmptyParts), QString(), 60000);
        const QByteArray err = cells.value(2).trimmed().replace("\\n", "\n").toUtf8();
        QVERIFY2(r.exitCode == cells.value(1).toInt() && r.err.contains(err), qPrintable(line + '\n' + r.err));
        if (cells.value(3).trimmed() == "-")
            QVERIFY2(r.out.isEmpty(), qPrintable(line));
        else if (!cells.value(3).trimmed().isEmpty())
            COMPARE_GOLDEN(r.out, "app/" + cells.value(3).trimmed());
        QCOMPARE(QDir(m_dir->path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot), files);
    }
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
        QCOMPARE(run(e.arguments).exitCode, 0);
        COMPARE_GOLDEN(readFile(e.written), QStringLiteral("app/") + e.golden);
    }
}

void TestBatch::unwritableOutputFails()
{
    // A write that stops part-way (a file-size limit the program inherits stands in for a full
    // disk): status 1, the file named, nothing left behind.
    Run r;
    QVERIFY(withFileSizeLimit(16, [&] { r = run({"-nw", "--maximize-all", "full.csv"}); }));
    QCOMPARE(r.exitCode, 1);
    QVERIFY2(r.err.contains("full.csv"), r.err.constData());
    QVERIFY(!QFile::exists(m_dir->filePath("full.csv")));
}

void TestBatch::withoutCatalogOrDisplay()
{
    // A copy of the program with no catalog beside it, Qt's own options first: the run is still
    // unattended, so it ends with a message on standard error instead of a message box nobody can
    // answer (more such runs in runs.txt).
    const QString program = m_dir->filePath("runplan");
    QVERIFY(QFile::copy(binDirPath() + "/runplan", program));
    const int hangMs = 60000;
    Run r = run({"-platform", "offscreen", "-nw", "--maximize-all", "x.csv"}, program, hangMs);
    QCOMPARE(r.exitCode, 1);
    QVERIFY2(r.err.contains("Cannot read database file"), r.err.constData());

    // Beside a broken catalog every unattended run ends with status 1; with nothing to export it
    // still says why, in the loader's words. Nothing is written.
    QVERIFY(writeFileBytes(m_dir->filePath("vx_config_dl.xml"), "<not a catalog"));
    for (const auto& [arguments, reason] : QList<QPair<QStringList, QByteArray>>{
             {{"-nw", "--maximize-all", "all.csv"}, "is not valid; nothing was exported"},
             {{"-nw", "--report", "sample.rpproj"}, "is not valid; no report"},
             {{"-nw"}, "Error parsing database file"}}) {
        r = run(arguments, program);
        QCOMPARE(r.exitCode, 1);
        QVERIFY2(r.err.contains(reason), r.err.constData());
    }
    QVERIFY(!QFile::exists(m_dir->filePath("all.csv")) && !QFile::exists(m_dir->filePath("x.csv")));

    // Without any display a run that wants the window ends with a message.
    QProcessEnvironment noDisplay = QProcessEnvironment::systemEnvironment();
    for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"})
        noDisplay.remove(QString::fromLatin1(name));
    r = run({}, QString(), hangMs, noDisplay);
    QCOMPARE(r.exitCode, 1);
    QVERIFY2(r.err.contains("no display"), r.err.constData());
}

void TestBatch::unattendedWindowKeepsItsOutputs()
{
    // An unattended window keeps no display up to date; what it logs, analyses and exports is
    // what a shown window does.
    QVERIFY(Database::instance()->isValid());
    CommandLineOptions options;
    options.selections = {{CommandLineOptions::Selection::PowerSupply, QStringLiteral("Line Voltage")},
                          {CommandLineOptions::Selection::Fixture, "Linea Cove Dynaline 4ft (208v - 277v)"}};
    Runplan shown;
    shown.processCommandLine(options);
    options.unattended = true;
    Runplan unattended;
    unattended.processCommandLine(options);
    QVERIFY(unattended.isRunningBatchCommands());

    auto exported = [](Runplan& window) {
        QByteArray csv;
        QBuffer buffer(&csv);
        buffer.open(QIODevice::WriteOnly | QIODevice::Text);
        CsvExport::exportCurrentFixture(buffer, window);
        return csv;
    };
    shown.maximize();
    unattended.maximize();
    QVERIFY(unattended.fixtureCount() > 1);
    QCOMPARE(unattended.fixtureCount(), shown.fixtureCount());
    QCOMPARE(unattended.lastResult().logLines(), shown.lastResult().logLines());
    const QByteArray csv = exported(shown);
    QCOMPARE(exported(unattended), csv);
    QVERIFY(csv.contains("Linea Cove"));
    // The unattended log is written out when asked for; what it then holds is the shown one's.
    const QTextEdit* logs[2] = {shown.outputLog(), unattended.outputLog()};
    QCOMPARE(logs[1], unattended.findChild<QTextEdit*>("m_messageBox"));
    QVERIFY(logs[0]->document()->blockCount() > 10);
    QCOMPARE(logs[1]->toHtml(), logs[0]->toHtml());
}

// The design report and the bill of materials of a saved plan, beside the --report lines.
void TestBatch::designExports()
{
    Run r =
        run({"-nw", "--export-report", "out.pdf", "--export-bom", "bom.csv", "--report", "sample.rpproj"});
    QCOMPARE(r.exitCode, 0);
    QVERIFY(r.out.startsWith("Length = "));
    QVERIFY(readFile("out.pdf").startsWith("%PDF-"));
    COMPARE_GOLDEN(readFile("bom.csv"), "app/sample.bom.csv");

    // A failing plan still gets its files, with status 2 (failures to write: runs.txt).
    r = run({"-nw", "--export-bom", "over.csv", "overload.rpproj"});
    QCOMPARE(r.exitCode, 2);
    QVERIFY(r.out.isEmpty());
    QVERIFY(QFile::exists(m_dir->filePath("over.csv")));

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
