#include "TestSupport.h"
#include "update/AutoUpdateTool.h"
#include "update/UpdateChecker.h"

#include <QHostAddress>
#include <QSignalSpy>
#include <QTcpServer>
#include <QTcpSocket>
#include <QtTest>

#include <array>

using VxCommonUtils::AutoUpdateTool;

namespace
{
// Answers every GET with one canned response, or never answers at all.
class LoopbackHttpServer
{
public:
    LoopbackHttpServer()
    {
        m_server.listen(QHostAddress::LocalHost, 0);
        QObject::connect(&m_server, &QTcpServer::newConnection, &m_server, [this] {
            while (QTcpSocket* socket = m_server.nextPendingConnection())
                QObject::connect(socket, &QTcpSocket::readyRead, socket, [this, socket] { read(socket); });
        });
    }
    QString hostAndPort() const { return QStringLiteral("127.0.0.1:%1").arg(m_server.serverPort()); }
    void respondWith(int status, const QByteArray& body)
    {
        m_silent = false;
        m_status = status;
        m_body = body;
    }
    void stayQuiet() { m_silent = true; }
    QList<QByteArray> requestLines; // first line of every request

private:
    void read(QTcpSocket* socket)
    {
        QByteArray& pending = m_pending[socket];
        pending += socket->readAll();
        if (!pending.contains("\r\n\r\n"))
            return;
        requestLines.append(pending.left(pending.indexOf("\r\n")));
        pending.clear();
        if (m_silent)
            return;
        socket->write("HTTP/1.1 " + QByteArray::number(m_status) + (m_status == 200 ? " OK" : " Not Found") +
                      "\r\nContent-Type: text/xml\r\nContent-Length: " + QByteArray::number(m_body.size()) +
                      "\r\nConnection: close\r\n\r\n" + m_body);
        socket->disconnectFromHost();
    }
    QTcpServer m_server;
    QHash<QTcpSocket*, QByteArray> m_pending;
    bool m_silent = false;
    int m_status = 200;
    QByteArray m_body;
};

// Records every prompt as "title: text" and answers questions with a preset answer.
struct RecordingPrompter : UpdatePrompter {
    void information(const QString& title, const QString& text) override { prompts.append(title + ": " + text); }
    bool question(const QString& title, const QString& text) override
    {
        prompts.append(title + ": " + text);
        return answerYes;
    }
    QStringList prompts;
    bool answerYes = false;
};

const QString Page = QStringLiteral("https://downloads.vorlux.example/runplan");

QString releaseXml(uint major, uint minor, uint revision, uint build, uint serverBuild,
                   const QString& url = Page, const QString& type = QStringLiteral("Gold"))
{
    return QStringLiteral("<Release type=\"%1\"><Major>%2</Major><Minor>%3</Minor><Rev>%4</Rev>"
                          "<Build>%5</Build><ServerBuildNumber>%6</ServerBuildNumber><URL>%7</URL></Release>")
        .arg(type)
        .arg(major)
        .arg(minor)
        .arg(revision)
        .arg(build)
        .arg(serverBuild)
        .arg(url);
}

// A version file listing the given releases for one application on one operating system, after a
// newer release of another application.
QByteArray versionFile(const QString& releases, const QString& appName = QStringLiteral("RUNPLAN"),
                       const QString& osName = QStringLiteral("Windows"))
{
    return QStringLiteral("<?xml version=\"1.0\"?>\n<Applications>"
                          "<Application name=\"OTHERTOOL\"><OS name=\"Windows\">%4</OS></Application>"
                          "<Application name=\"%1\"><OS name=\"%2\">%3</OS></Application></Applications>")
        .arg(appName, osName, releases, releaseXml(9, 9, 9, 9, 9))
        .toUtf8();
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
    void downloadAddressMustBeWebUrl();

private:
    RecordingPrompter m_prompter;
    QList<QUrl> m_opened;
};

void TestUpdate::readsVersionFile_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("outcome");
    QTest::addColumn<QString>("log");

    const QString same = QStringLiteral("same 3.3.17 build 0 - 20250205 Gold");
    const QString noApp =
        QStringLiteral("AUT::checkForUpdate() No version information for application named RUNPLAN");
    const QByteArray gold = versionFile(releaseXml(3, 3, 17, 0, 20250205));

    // This program is 3.3.17 build 0 - 20250205: each part of a release counts, in that order.
    const QList<QPair<std::array<uint, 5>, bool>> releases{
        {{4, 0, 0, 0, 0}, true},         {{3, 4, 0, 0, 1}, true},          {{3, 3, 18, 0, 0}, true},
        {{3, 3, 17, 1, 0}, true},        {{3, 3, 17, 0, 20250206}, true},  {{3, 3, 17, 0, 20250205}, false},
        {{3, 3, 16, 99, 99999999}, false}, {{3, 3, 17, 0, 20250204}, false}, {{3, 2, 99, 0, 0}, false},
        {{2, 99, 99, 99, 99999999}, false}};
    for (const auto& [v, newer] : releases) {
        const QString text =
            QStringLiteral("%1.%2.%3 build %4 - %5 Gold").arg(v[0]).arg(v[1]).arg(v[2]).arg(v[3]).arg(v[4]);
        QTest::newRow(qPrintable(text)) << versionFile(releaseXml(v[0], v[1], v[2], v[3], v[4]))
                                        << (newer ? QStringLiteral("newer %1 | %2").arg(text, Page) : same)
                                        << QString();
    }
    QTest::newRow("newest of several counts")
        << versionFile(releaseXml(3, 3, 16, 0, 0) +
                       releaseXml(3, 3, 18, 2, 7, QStringLiteral("http://b.example/"), QStringLiteral("Beta")) +
                       releaseXml(3, 3, 17, 0, 20250205))
        << QStringLiteral("newer 3.3.18 build 2 - 7 Beta | http://b.example/") << QString();
    QTest::newRow("application missing") << versionFile(releaseXml(4, 0, 0, 0, 0), QStringLiteral("runplan"))
                                         << QString() << noApp;
    QTest::newRow("operating system missing")
        << versionFile(releaseXml(4, 0, 0, 0, 0), QStringLiteral("RUNPLAN"), QStringLiteral("Linux")) << QString()
        << QStringLiteral(
               "AUT::checkForUpdate() No version information for this release and/or OS type for RUNPLAN");
    QTest::newRow("malformed") << gold.left(gold.size() - 20) << QString() << noApp;

    // Hostile replies: refused before a tree is built, whatever they would have said.
    auto seed = [](const char* name) {
        QFile file(testDataPath(QStringLiteral("update/") + QLatin1String(name)));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    };
    const QString tooDeep = QStringLiteral("AUT: version file refused: elements nested more than 32 levels deep");
    const QString tooLarge = QStringLiteral("AUT: version file refused: larger than 65536 bytes");
    QTest::newRow("nested inside a newer release") << seed("nested-in-release.xml") << QString() << tooDeep;
    QTest::newRow("20 000 levels in 60 KB") << seed("nested-20000-levels.xml") << QString() << tooDeep;
    QTest::newRow("40 000 levels in 280 KB") << QByteArray("<a>").repeated(40000) + QByteArray("</a>").repeated(40000)
                                             << QString() << tooLarge;
    QTest::newRow("newer, but over 64 KiB") << versionFile(releaseXml(4, 0, 0, 0, 0)) + QByteArray(65536, ' ')
                                            << QString() << tooLarge;
}

void TestUpdate::readsVersionFile()
{
    QFETCH(QByteArray, content);
    QFETCH(QString, outcome);
    QFETCH(QString, log);

    AutoUpdateTool tool;
    QStringList heard;
    connect(&tool, &AutoUpdateTool::updateAvailable, &tool, [&](const QString& version, const QString& url) {
        heard.append(QStringLiteral("newer %1 | %2").arg(version, url));
    });
    connect(&tool, &AutoUpdateTool::noUpdateAvailable, &tool,
            [&](const QString& version) { heard.append(QStringLiteral("same ") + version); });
    if (!log.isEmpty())
        QTest::ignoreMessage(QtDebugMsg, qPrintable(log));
    tool.parseVersionFile(content);
    tool.checkForUpdate(QStringLiteral("RUNPLAN"), UpdateIdentity::ownVersion());
    QCOMPARE(heard, outcome.isEmpty() ? QStringList() : QStringList{outcome});
}

void TestUpdate::checkerOverHttp()
{
    LoopbackHttpServer server;
    UpdateChecker checker;
    checker.setHost(server.hostAndPort());
    checker.setPath(UpdateIdentity::versionFilePath());
    checker.setAppName(UpdateIdentity::applicationName());
    checker.setOwnVersion(UpdateIdentity::ownVersion());
    checker.setShowMessages(true);
    checker.setTimeout(150);

    // Newer, and the user says Yes: the download page opens. Two quick presses send one request.
    const QString page = Page + QStringLiteral("/3.4");
    server.respondWith(200, versionFile(releaseXml(3, 4, 0, 0, 20250301, page)));
    m_prompter.answerYes = true;
    QTest::ignoreMessage(QtDebugMsg, "AUT: getVersionInfo - already busy, returning");
    checker.start();
    checker.start();
    QTRY_COMPARE_WITH_TIMEOUT(m_prompter.prompts.size(), 1, 5000);
    QCOMPARE(m_prompter.prompts.last(),
             QStringLiteral("Update Available: A newer version (3.4.0 build 0 - 20250301 Gold) of this "
                            "application is available.\n\nWould you like to go to the download page?"));
    QCOMPARE(m_opened, QList<QUrl>{QUrl(page)});
    QTest::qWait(50);
    QCOMPARE(server.requestLines, QList<QByteArray>{"GET /software/VxAppVersions.xml HTTP/1.1"});

    // Same version.
    server.respondWith(200, versionFile(releaseXml(3, 3, 17, 0, 20250205, page)));
    checker.start();
    QTRY_COMPARE_WITH_TIMEOUT(m_prompter.prompts.size(), 2, 5000);
    QCOMPARE(m_prompter.prompts.last(),
             QStringLiteral("No Update Available: You have the latest version: v3.3.17 build 0 - 20250205 Gold"));

    // An HTTP error and an unanswered request both end silently, without a download.
    QSignalSpy downloads(checker.tool(), &AutoUpdateTool::fileDownloadSuccess);
    server.respondWith(404, versionFile(releaseXml(4, 0, 0, 0, 0)));
    QTest::ignoreMessage(QtDebugMsg, QRegularExpression(QStringLiteral("^AUT:handleReply - got error message: ")));
    checker.start();
    QTRY_COMPARE_WITH_TIMEOUT(server.requestLines.size(), 3, 5000);
    QTRY_VERIFY_WITH_TIMEOUT(!checker.tool()->isBusy(), 5000);

    server.stayQuiet();
    QTest::ignoreMessage(QtDebugMsg, "AUT: Busy Timer fired - emitting unable to retrieve file signal.");
    QTest::ignoreMessage(QtDebugMsg, QRegularExpression(QStringLiteral("^AUT:handleReply - got error message: ")));
    checker.start();
    QTRY_VERIFY_WITH_TIMEOUT(!checker.tool()->isBusy(), 2000);
    QCOMPARE(server.requestLines.size(), 4);
    QCOMPARE(downloads.count(), 0);
    QCOMPARE(m_prompter.prompts.size(), 2);

    // A reply far larger than any version file is refused while it downloads.
    server.respondWith(200, versionFile(releaseXml(4, 0, 0, 0, 0)) + QByteArray(4 << 20, ' '));
    QTest::ignoreMessage(QtDebugMsg, "AUT:handleReply - reply refused: larger than 65536 bytes");
    checker.start();
    QTRY_VERIFY_WITH_TIMEOUT(!checker.tool()->isBusy(), 5000);
    QCOMPARE(downloads.count(), 0);
    QCOMPARE(m_prompter.prompts.size(), 2);
}

void TestUpdate::downloadAddressMustBeWebUrl()
{
    // Empty refusal: the address is opened. A refused address is not opened and the user is told why.
    const QString notWeb = QStringLiteral("is not an http or https address.");
    const QString malformed = QStringLiteral("is not a valid web address.");
    const QList<QPair<QString, QString>> addresses{
        {"http://downloads.vorlux.example/runplan.exe", {}},
        {"HTTPS://downloads.vorlux.example/", {}},
        {"file:///C:/Windows/System32/calc.exe", notWeb},
        {"\\\\server\\share\\setup.exe", notWeb},
        {"ftp://downloads.vorlux.example/runplan.zip", notWeb},
        {"javascript:alert(1)", notWeb},
        {"downloads.vorlux.example/runplan", notWeb},
        {"http:///runplan", malformed},
        {"https://downloads vorlux.example/", malformed}};
    UpdateChecker checker;
    checker.setShowMessages(true);
    m_prompter.answerYes = true;
    for (const auto& [address, refusal] : addresses) {
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
