#include "CatalogFixture.h"
#include "update/AutoUpdateTool.h"
#include "update/UpdateChecker.h"

#include <QHostAddress>
#include <QTcpServer>
#include <QTcpSocket>

using VxCommonUtils::AutoUpdateTool;

namespace
{
// Records every prompt as "title: text" and answers questions with a preset answer.
struct RecordingPrompter : UpdatePrompter {
    void information(const QString& title, const QString& text) override { question(title, text); }
    bool question(const QString& title, const QString& text) override
    {
        prompts.append(title + ": " + text);
        return answerYes;
    }
    QStringList prompts;
    bool answerYes = false;
};

QStringList g_heard; // what a check reports and logs, line by line
void recordLog(QtMsgType type, const QMessageLogContext&, const QString& text)
{
    if (type == QtDebugMsg && text.startsWith(QLatin1String("AUT")))
        g_heard << text;
}
} // namespace

class TestUpdate : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        UpdateChecker::setPrompter(&m_prompter);
        m_prompter = RecordingPrompter();
        m_opened.clear();
        UpdateChecker::setUrlOpener([this](const QUrl& url) {
            m_opened.append(url);
            return true;
        });
    }
    void cleanup()
    {
        UpdateChecker::setPrompter(nullptr);
        UpdateChecker::setUrlOpener({});
    }

    void readsVersionFile_data();
    void readsVersionFile();
    void checkerOverHttp();

private:
    RecordingPrompter m_prompter;
    QList<QUrl> m_opened;
};

void TestUpdate::readsVersionFile_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("golden");
    // Each update/check/NAME.xml is read by this program, 3.3.17 build 0 - 20250205, and reports
    // what NAME.out holds.
    const QString check = QStringLiteral("update/check/");
    const QDir dir(testDataPath(check));
    for (const QString& name : dir.entryList({QStringLiteral("*.xml")}))
        QTest::newRow(qPrintable(name))
            << testDataBytes(check + name) << check + QFileInfo(name).baseName() + ".out";
    // Hostile replies too large to read (the files hold those nested too deep).
    QTest::newRow("40 000 levels in 280 KB")
        << QByteArray("<a>").repeated(40000) + QByteArray("</a>").repeated(40000) << check + "too-large.out";
    QTest::newRow("newer, but over 64 KiB")
        << testDataBytes(check + "newer-major.xml") + QByteArray(65536, ' ') << check + "too-large.out";
}

void TestUpdate::readsVersionFile()
{
    QFETCH(QByteArray, content);
    QFETCH(QString, golden);

    AutoUpdateTool tool;
    g_heard.clear();
    connect(&tool, &AutoUpdateTool::updateAvailable, &tool, [&](const QString& version, const QString& url) {
        g_heard << QStringLiteral("newer %1 | %2").arg(version, url);
    });
    connect(&tool, &AutoUpdateTool::noUpdateAvailable, &tool,
            [&](const QString& version) { g_heard << QStringLiteral("same ") + version; });
    const QtMessageHandler previous = qInstallMessageHandler(recordLog);
    tool.parseVersionFile(content);
    tool.checkForUpdate(QStringLiteral("RUNPLAN"), UpdateIdentity::ownVersion());
    qInstallMessageHandler(previous);
    QCOMPARE((g_heard.join('\n') + '\n').toUtf8(), testDataBytes(golden));
}

void TestUpdate::checkerOverHttp()
{
    // A server on this machine that answers every GET with one canned response, or, while
    // silent, never answers at all.
    QTcpServer server;
    QVERIFY(server.listen(QHostAddress::LocalHost, 0));
    QList<QByteArray> requestLines; // first line of every request
    int status = 200;
    bool silent = false;
    QByteArray body;
    connect(&server, &QTcpServer::newConnection, &server, [&] {
        while (QTcpSocket* socket = server.nextPendingConnection())
            connect(socket, &QTcpSocket::readyRead, socket, [&, socket] {
                const QByteArray request = socket->peek(socket->bytesAvailable());
                if (!request.contains("\r\n\r\n"))
                    return; // the rest of the request is still on its way
                requestLines.append(request.left(request.indexOf("\r\n")));
                socket->readAll();
                if (silent)
                    return;
                socket->write(
                    "HTTP/1.1 " + QByteArray::number(status) + (status == 200 ? " OK" : " Not Found") +
                    "\r\nContent-Type: text/xml\r\nContent-Length: " + QByteArray::number(body.size()) +
                    "\r\nConnection: close\r\n\r\n" + body);
                socket->disconnectFromHost();
            });
    });
    UpdateChecker checker;
    checker.setHost(QStringLiteral("127.0.0.1:%1").arg(server.serverPort()));
    checker.setPath(UpdateIdentity::versionFilePath());
    checker.setAppName(UpdateIdentity::applicationName());
    checker.setOwnVersion(UpdateIdentity::ownVersion());
    checker.setShowMessages(true);
    checker.setTimeout(150);

    // Newer, and the user says Yes: the download page opens. Two quick presses send one request.
    body = testDataBytes("update/check/newer-minor.xml");
    m_prompter.answerYes = true;
    checker.start();
    checker.start();
    QTRY_COMPARE_WITH_TIMEOUT(m_prompter.prompts.size(), 1, 5000);
    QCOMPARE(m_prompter.prompts.last(),
             QStringLiteral("Update Available: A newer version (3.4.0 build 0 - 1 Gold) of this "
                            "application is available.\n\nWould you like to go to the download page?"));
    QCOMPARE(m_opened, QList<QUrl>{QUrl("https://downloads.vorlux.example/runplan/3.4")});
    QTest::qWait(50);
    QCOMPARE(requestLines, QList<QByteArray>{"GET /software/VxAppVersions.xml HTTP/1.1"});

    // Same version.
    body = testDataBytes("update/check/same-version.xml");
    checker.start();
    QTRY_COMPARE_WITH_TIMEOUT(m_prompter.prompts.size(), 2, 5000);
    QCOMPARE(
        m_prompter.prompts.last(),
        QStringLiteral("No Update Available: You have the latest version: v3.3.17 build 0 - 20250205 Gold"));

    // An HTTP error, an unanswered request and a reply far larger than any version file (refused
    // while it downloads) all end silently, without a download.
    QSignalSpy downloads(checker.tool(), &AutoUpdateTool::fileDownloadSuccess);
    const QByteArray newer = testDataBytes("update/check/newer-major.xml");
    const QString failed = QStringLiteral("^AUT:handleReply - got error message: ");
    const struct {
        int status;
        bool silent;
        QByteArray body;
        QStringList logged; // patterns
    } failures[] = {
        {404, false, newer, {failed}},
        {200, true, newer, {"^AUT: Busy Timer fired - emitting unable to retrieve file signal.$", failed}},
        {200,
         false,
         newer + QByteArray(4 << 20, ' '),
         {"^AUT:handleReply - reply refused: larger than 65536 bytes$"}}};
    for (const auto& failure : failures) {
        status = failure.status;
        silent = failure.silent;
        body = failure.body;
        for (const QString& pattern : failure.logged)
            QTest::ignoreMessage(QtDebugMsg, QRegularExpression(pattern));
        checker.start();
        QTRY_VERIFY_WITH_TIMEOUT(!checker.tool()->isBusy(), 5000);
    }
    QCOMPARE(requestLines.size(), 5);
    QCOMPARE(downloads.count(), 0);
    QCOMPARE(m_prompter.prompts.size(), 2);

    // The page a newer version names. Each line of the file: an address and why it is refused,
    // nothing when it is opened. A refused address is not opened and the user is told why.
    const QString lines = QString::fromUtf8(testDataBytes("update/download-addresses.tsv"));
    QCOMPARE(lines.count('\n'), 9);
    for (const QString& line : lines.split('\n', Qt::SkipEmptyParts)) {
        const QString address = line.section('\t', 0, 0);
        const QString refusal = line.section('\t', 1);
        m_prompter.prompts.clear();
        m_opened.clear();
        checker.handleUpdateAvailable(QStringLiteral("4.0.0 build 0 - 0 Gold"), address);
        const QStringList refused{
            QStringLiteral("Runplan: The download page was not opened: \"%1\" %2").arg(address, refusal)};
        QCOMPARE(m_prompter.prompts.mid(1), refusal.isEmpty() ? QStringList() : refused);
        QCOMPARE(m_opened, refusal.isEmpty() ? QList<QUrl>{QUrl(address)} : QList<QUrl>());
    }
}

QTEST_MAIN(TestUpdate)
#include "tst_update.moc"
