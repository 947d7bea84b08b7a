// Timings of the calculation engine: the analysis of long runs and of trees of short runs, Maximize
// of a 200-fixture run, and the all-fixtures export over the shipped catalog. Prints figures only;
// it never fails on time.
#include "BenchCatalog.h"
#include "BenchTrees.h"
#include "calc/Analysis.h"
#include "calc/CsvExport.h"
#include "calc/Session.h"
#include "catalog/Database.h"
#include "catalog/Reporter.h"
#include "model/CWidget.h"
#include "model/ConfigDocument.h"

#include <QBuffer>
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>
#include <functional>

namespace
{


void flushDeletes()
{
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

// Mean time of one call in microseconds, over batches until about 0.3 s have passed.
double microsPerCall(const std::function<void()>& f, int batch)
{
    f(); // warm up
    QElapsedTimer timer;
    qint64 calls = 0;
    timer.start();
    while (timer.nsecsElapsed() < 300000000LL) {
        for (int i = 0; i < batch; ++i)
            f();
        calls += batch;
    }
    return static_cast<double>(timer.nsecsElapsed()) / 1000.0 / static_cast<double>(calls);
}

// One run: the enabler, then fixture, jumper, fixture, ... until the canvas holds n components.
void buildLongRun(Session& s, int n)
{
    s.resetWithFixture();
    ConfigDocument& doc = s.document();
    DLFixture* fixture = s.selectedFixture();
    bool jumper = true;
    while (doc.count(ItemAny) < n) {
        if (jumper)
            doc.addJumper(fixture);
        else
            doc.addFixture(fixture);
        jumper = !jumper;
    }
}


void benchAnalysis(Session& s, const char* shape, int n)
{
    if (qstrcmp(shape, "long run") == 0)
        buildLongRun(s, n);
    else
        buildShortRuns(s, n);
    const CWidget* root = s.document().root();
    const CircuitInputs inputs = s.inputs();
    const int components = s.document().count(ItemAny);
    AnalysisResult last;
    const double bare = microsPerCall([&]() { last = analyze(root, inputs, s.database()); }, 50);
    const double session = microsPerCall([&]() { s.analyze(); }, 50);
    CircuitInputs totalsOnly = inputs;
    totalsOnly.componentFigures = false;
    const double withoutFigures = microsPerCall([&]() { last = analyze(root, totalsOnly, s.database()); }, 50);
    std::printf("analysis, %-15s %5d components, %4d runs: %8.1f us (with inputs and storing: %8.1f us; "
                "without the component figures: %8.1f us)\n",
                shape, components, static_cast<int>(last.runs.size()), bare, session, withoutFigures);
}

void benchMaximize()
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("bench_catalog.xml"));
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return;
    file.write(kMaximizeCatalog);
    file.close();
    Database db;
    RecordingReporter messages;
    if (!db.loadFile(path, &messages) || !messages.messages.isEmpty()) {
        std::printf("maximize: the bench catalog did not load\n");
        return;
    }
    Session s(db);
    int fixtures = 0;
    const double ms = microsPerCall(
                          [&]() {
                              s.reset();
                              s.maximize();
                              fixtures = s.fixtureCount();
                              flushDeletes();
                          },
                          1) /
                      1000.0;
    std::printf("maximize from an empty enabler to %d fixtures: %8.2f ms\n", fixtures, ms);
}

void benchExport(const Database& db, bool show)
{
    Session s(db);
    QByteArray csv;
    int rows = 0;
    const double ms = microsPerCall(
                          [&]() {
                              QBuffer buffer;
                              buffer.open(QIODevice::WriteOnly);
                              CsvExport::exportAllFixtures(buffer, s);
                              csv = buffer.data();
                              rows = static_cast<int>(csv.count('\n'));
                              flushDeletes();
                          },
                          1) /
                      1000.0;
    std::printf("all-fixtures export over the shipped catalog (%d lines, %d bytes): %8.2f ms\n", rows,
                static_cast<int>(csv.size()), ms);
    if (show)
        std::printf("%s", csv.constData());
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    RecordingReporter messages;
    Database db;
    if (!db.loadFile(QStringLiteral(RUNPLAN_SAMPLE_CATALOG), &messages) || db.supplies().isEmpty()) {
        std::printf("the shipped catalog did not load: %s\n", RUNPLAN_SAMPLE_CATALOG);
        return 1;
    }

    {
        Session s(db);
        for (int n : {100, 300, 1000}) {
            benchAnalysis(s, "long run", n);
            benchAnalysis(s, "short runs", n);
            flushDeletes();
        }
    }
    benchMaximize();
    benchExport(db, app.arguments().contains(QStringLiteral("--csv"))); // --csv also prints the table
    return 0;
}
