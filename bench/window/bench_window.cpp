// Timings of the desktop front end, offscreen: the window's whole response to one edit of a
// 2 000-component plan and where that time goes, and how long the update check takes to dispose
// of hostile version-file replies. Prints figures only; it never fails on time.
#include "app/Runplan.h"
#include "../BenchTrees.h"
#include "calc/Session.h"
#include "canvas/CFrame.h"
#include "catalog/Database.h"
#include "catalog/Reporter.h"
#include "model/CWidget.h"
#include "model/ConfigDocument.h"
#include "model/ProjectFile.h"
#include "model/view/CWidgetTableView.h"
#include "update/AutoUpdateTool.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QHostAddress>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QTextEdit>

#include <cstdio>
#include <functional>

namespace
{

void quiet(QtMsgType type, const QMessageLogContext&, const QString& text)
{
    if (type != QtDebugMsg)
        std::fprintf(stderr, "%s\n", qPrintable(text));
}

// Mean time of one call in milliseconds, over at least `calls` calls and about 0.5 s.
double msPerCall(const std::function<void()>& f, int calls)
{
    f(); // warm up
    QElapsedTimer timer;
    timer.start();
    int done = 0;
    while (done < calls || timer.elapsed() < 500) {
        f();
        ++done;
    }
    return static_cast<double>(timer.nsecsElapsed()) / 1e6 / done;
}


const CWidget* lastLeaf(const CWidget* w)
{
    while (w && w->childCount() > 0)
        w = w->child(w->childCount() - 1);
    return w;
}

void benchEdit(int components)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("plan.rpproj"));
    {
        Session session(*Database::instance());
        buildShortRuns(session, components);
        RecordingReporter quiet;
        if (!ProjectFile::save(path, session.document(), session.header(), &quiet)) {
            std::printf("edit: the plan could not be saved\n");
            return;
        }
    }
    Runplan window;
    window.resize(1400, 900);
    window.show();
    if (!window.openProject(path)) {
        std::printf("edit: the plan did not open\n");
        return;
    }
    QCoreApplication::processEvents();
    ConfigDocument* doc = window.document();
    doc->setCurrent(lastLeaf(doc->root()));
    QCoreApplication::processEvents();
    const int count = doc->count(ItemAny);

    // One edit is adding a fixture at the selected end, or deleting it again, with everything the
    // window does until the screen shows it.
    const double edit = msPerCall(
                            [&]() {
                                window.on_m_DL_AddFixture_Button_clicked();
                                QCoreApplication::processEvents();
                                window.DL_DeleteLast();
                                QCoreApplication::processEvents();
                            },
                            10) /
                        2.0;
    const CircuitInputs inputs = window.circuitInputs();
    const double analysis = msPerCall([&]() { (void)analyze(doc->root(), inputs, *window.catalog()); }, 10);
    CFrame* canvas = window.frame();
    const double paint = msPerCall(
        [&]() {
            canvas->updateFrame();
            canvas->viewport()->repaint();
        },
        10);
    QTextEdit* log = window.findChild<QTextEdit*>(QStringLiteral("m_messageBox"));
    const auto lines = window.lastResult().logLines();
    const double logging = msPerCall(
        [&]() {
            for (const auto& line : lines)
                window.statusMessage(line.first);
            log->viewport()->repaint();
        },
        10);
    CWidgetTableView* table = window.propertyTable();
    const double properties = msPerCall(
        [&]() {
            table->handleModelReset();
            table->viewport()->repaint();
        },
        10);
    std::printf("edit of a %d-component plan, whole window response: %8.2f ms (target 16)\n", count, edit);
    std::printf("  analysis                     %8.2f ms\n", analysis);
    std::printf("  canvas layout and paint      %8.2f ms\n", paint);
    std::printf("  log append (%d lines), paint %8.2f ms\n", static_cast<int>(lines.size()), logging);
    std::printf("  property table and paint     %8.2f ms\n", properties);
    std::printf("  rest (totals, buttons, model signals, window paint) %8.2f ms\n",
                edit - analysis - paint - logging - properties);
}

// Serves every GET with one fixed body.
class FixedReplyServer : public QTcpServer
{
public:
    QByteArray body;
    FixedReplyServer()
    {
        listen(QHostAddress::LocalHost, 0);
        connect(this, &QTcpServer::newConnection, this, [this]() {
            while (QTcpSocket* socket = nextPendingConnection()) {
                connect(socket, &QTcpSocket::readyRead, socket, [this, socket]() {
                    if (!socket->readAll().contains("\r\n\r\n"))
                        return;
                    socket->write("HTTP/1.1 200 OK\r\nContent-Type: text/xml\r\nContent-Length: " +
                                  QByteArray::number(body.size()) + "\r\nConnection: close\r\n\r\n" + body);
                    socket->disconnectFromHost();
                });
                connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
            }
        });
    }
};

void benchHostileReplies()
{
    const QByteArray real = "<?xml version=\"1.0\"?><Applications><Application name=\"RUNPLAN\"><OS name=\"Windows\">"
                            "<Release type=\"Gold\"><Major>3</Major><Minor>3</Minor><Rev>17</Rev><Build>0</Build>"
                            "<ServerBuildNumber>20250205</ServerBuildNumber><URL>https://x.invalid/</URL></Release>"
                            "</OS></Application></Applications>";
    const struct {
        const char* name;
        QByteArray body;
    } cases[] = {
        {"real-sized file", real},
        {"60 KB nested 20 000 deep", QByteArray("<a>").repeated(20000)},
        {"280 KB nested 40 000 deep", QByteArray("<a>").repeated(40000) + QByteArray("</a>").repeated(40000)},
        {"1.4 MB nested 200 000 deep", QByteArray("<a>").repeated(200000) + QByteArray("</a>").repeated(200000)},
        {"20 MB of text", real + QByteArray(20 << 20, ' ')},
    };
    FixedReplyServer server;
    VxCommonUtils::AutoUpdateTool tool;
    tool.setHost(QStringLiteral("127.0.0.1:%1").arg(server.serverPort()));
    tool.setPath(QStringLiteral("/software/VxAppVersions.xml"));
    for (const auto& c : cases) {
        server.body = c.body;
        const double ms = msPerCall(
            [&]() {
                tool.getVersionInfo();
                while (tool.isBusy())
                    QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
            },
            3);
        std::printf("update check, reply %-28s %8.2f ms from request to outcome\n", c.name, ms);
    }
}

} // namespace

int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    qInstallMessageHandler(quiet);
    RecordingReporter messages;
    Reporter::setGlobal(&messages);
    if (!Database::instance()->isValid()) {
        std::printf("the catalog beside the program did not load\n");
        return 1;
    }
    benchEdit(2000);
    benchHostileReplies();
    Reporter::setGlobal(nullptr);
    return 0;
}
