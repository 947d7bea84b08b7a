// Timings of undo and redo as the history does them: a state is read back from its snapshot and
// analysed again. Two cases: a Maximize that added 200 fixtures, and the reset of a 2 000-component
// tree. Prints figures only; it never fails on time.
#include "BenchCatalog.h"
#include "app/Runplan.h"
#include "app/commands/EditHistory.h"
#include "calc/Session.h"
#include "catalog/Database.h"
#include "catalog/Reporter.h"
#include "model/CWidget.h"
#include "model/ConfigDocument.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <QUndoStack>

#include <algorithm>
#include <cstdio>
#include <functional>

namespace
{
void flushDeletes()
{
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

double millis(const std::function<void()>& f)
{
    QElapsedTimer timer;
    timer.start();
    f();
    flushDeletes(); // the replaced tree goes at the next turn of the event loop: its cost counts
    return static_cast<double>(timer.nsecsElapsed()) / 1e6;
}

double median(QList<double> v)
{
    std::sort(v.begin(), v.end());
    return v.isEmpty() ? 0.0 : v.at(v.size() / 2);
}

// Records one step with edit, then undoes and redoes it repeatedly.
void benchStep(Session& s, const char* what, const std::function<void()>& edit)
{
    EditHistory history(&s.document(), &s.header(), [&s](const DocumentSnapshot& state) {
        state.restore(s.document(), s.header(), nullptr);
        s.analyze();
    });
    history.restart();
    QElapsedTimer timer;
    timer.start();
    {
        EditHistory::Step step(&history, QStringLiteral("bench"));
        edit();
    }
    const double recordMs = static_cast<double>(timer.nsecsElapsed()) / 1e6;
    const int after = s.document().count(ItemAny);
    QList<double> undos;
    QList<double> redos;
    int before = 0;
    for (int i = 0; i < 9; ++i) {
        undos << millis([&]() { history.stack()->undo(); });
        before = s.document().count(ItemAny);
        redos << millis([&]() { history.stack()->redo(); });
    }
    std::printf("%-44s %5d -> %5d components: edit and record %8.2f ms, undo %7.2f ms, redo %7.2f ms\n", what,
                before, after, recordMs, median(undos), median(redos));
}

// Short runs below junction boxes until the tree holds n components.
void buildTree(ConfigDocument& doc, DLFixture* fixture, int n)
{
    QList<CWidget*> boxes{doc.addJunctionBox()};
    for (int next = 0; next < boxes.size() && doc.count(ItemAny) < n; ++next) {
        for (int run = 0; run < 3 && doc.count(ItemAny) < n; ++run) {
            doc.setCurrent(boxes.at(next));
            doc.addFixture(fixture);
            doc.addJumper(fixture);
            doc.addFixture(fixture);
        }
        for (int sub = 0; sub < 3 && doc.count(ItemAny) < n; ++sub) {
            doc.setCurrent(boxes.at(next));
            boxes.append(doc.addJunctionBox());
        }
    }
}
// The same reset in the main window (off screen): selectors, canvas, property table and output
// log are brought up to date as well. The window uses the catalog beside the program.
void benchWindowReset()
{
    Runplan window;
    window.resetWithFixture();
    buildTree(*window.document(), window.currentFixtureRecord(), 2000);
    window.DL_Update();
    window.history()->restart();
    const int before = window.document()->count(ItemAny);
    window.on_m_DL_Reset_Button_clicked();
    QUndoStack* stack = window.history()->stack();
    QList<double> undos;
    QList<double> redos;
    for (int i = 0; i < 5; ++i) {
        undos << millis([&]() { stack->undo(); });
        redos << millis([&]() { stack->redo(); });
    }
    std::printf("%-44s %5d -> %5d components: undo %7.2f ms, redo %7.2f ms\n", "Reset in the main window", before,
                window.document()->count(ItemAny), median(undos), median(redos));
    window.document()->setModified(false);
}
} // namespace

int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("bench_catalog.xml"));
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return 1;
    file.write(kMaximizeCatalog);
    file.close();
    Database maximizeDb;
    RecordingReporter messages;
    Database sample;
    if (!maximizeDb.loadFile(path, &messages) ||
        !sample.loadFile(QStringLiteral(RUNPLAN_SAMPLE_CATALOG), &messages)) {
        std::printf("a bench catalog did not load\n");
        return 1;
    }
    std::printf("undo history of %d steps\n", EditHistory::UndoLimit);
    {
        Session s(maximizeDb);
        s.resetWithFixture();
        benchStep(s, "Maximize from one fixture", [&s]() { s.maximize(); });
    }
    {
        Session s(sample);
        s.reset();
        buildTree(s.document(), s.selectedFixture(), 2000);
        s.analyze();
        benchStep(s, "Reset of a tree of short runs", [&s]() { s.reset(); });
    }
    benchWindowReset();
    return 0;
}
