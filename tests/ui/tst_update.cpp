#include "UpdateTestSupport.h"
#include "update/AutoUpdateTool.h"
#include "update/UpdateChecker.h"

#include <QSignalSpy>
#include <QtTest>

using VxCommonUtils::AutoUpdateTool;
using VxCommonUtils::RlsVers;

namespace
{
const QString BusyTimerLine =
    QStringLiteral("AUT: Busy Timer fired - emitting unable to retrieve file signal.");
const QString ErrorLinePrefix = QStringLiteral("AUT:handleReply - got error message: ");
const QString SuccessLine = QStringLiteral("AUT:handleReply - no errors, emitting fileDownloadSuccess");
const QString NoAppLine =
    QStringLiteral("AUT::checkForUpdate() No version information for application named RUNPLAN");
const QString NoOsLine = QStringLiteral(
    "AUT::checkForUpdate() No version information for this release and/or OS type for RUNPLAN");
const QString OwnVersionText = QStringLiteral("3.3.17 build 0 - 20250205 Gold");

// Every signal of a tool, in the order it was emitted, with its arguments.
struct SignalRecorder {
    QStringList log;

    void attach(AutoUpdateTool* tool)
    {
        QObject::connect(tool, &AutoUpdateTool::fileDownloadSuccess, tool,
                         [this] { log.append(QStringLiteral("fileDownloadSuccess")); });
        QObject::connect(tool, &AutoUpdateTool::unableToRetrieveFile, tool,
                         [this] { log.append(QStringLiteral("unableToRetrieveFile")); });
        QObject::connect(tool, &AutoUpdateTool::updateLatestVersion, tool,
                         [this](const QString& app, uint major, uint minor, uint rev, uint build) {
                             log.append(QStringLiteral("updateLatestVersion %1 %2.%3.%4.%5")
                                            .arg(app)
                                            .arg(major)
                                            .arg(minor)
                                            .arg(rev)
                                            .arg(build));
                         });
        QObject::connect(tool, &AutoUpdateTool::updateAvailable, tool,
                         [this](const QString& version, const QString& url) {
                             log.append(QStringLiteral("updateAvailable %1 | %2").arg(version, url));
                         });
        QObject::connect(tool, &AutoUpdateTool::noUpdateAvailable, tool, [this](const QString& version) {
            log.append(QStringLiteral("noUpdateAvailable ") + version);
        });
    }
};
} // namespace

class TestUpdate : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        LogCapture::clear();
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

    void comparesReleaseFieldByField_data();
    void comparesReleaseFieldByField();
    void readsVersionFile_data();
    void readsVersionFile();
    void newDownloadReplacesParsedTree();
    void httpErrorEndsSilently();
    void unansweredRequestIsAbortedAfterTimeout();
    void secondRequestWhileBusyIsRefused();
    void checkerPromptsAndOpensDownloadPage();
    void downloadAddressMustBeWebUrl_data();
    void downloadAddressMustBeWebUrl();

private:
    RecordingPrompter m_prompter;
    QList<QUrl> m_opened;
};

void TestUpdate::comparesReleaseFieldByField_data()
{
    QTest::addColumn<QString>("release");
    QTest::addColumn<QString>("latest");
    QTest::addColumn<QString>("outcome");

    const QString url = QStringLiteral("https://downloads.vorlux.example/runplan");
    auto newer = [&](const QString& text) {
        return QStringLiteral("updateAvailable %1 | %2").arg(text, url);
    };
    const QString same = QStringLiteral("noUpdateAvailable ") + OwnVersionText;

    QTest::newRow("major newer") << releaseXml(4, 0, 0, 0, 0) << "4.0.0.0" << newer("4.0.0 build 0 - 0 Gold");
    QTest::newRow("minor newer, any server build")
        << releaseXml(3, 4, 0, 0, 1) << "3.4.0.0" << newer("3.4.0 build 0 - 1 Gold");
    QTest::newRow("revision newer") << releaseXml(3, 3, 18, 0, 0) << "3.3.18.0"
                                    << newer("3.3.18 build 0 - 0 Gold");
    QTest::newRow("build newer") << releaseXml(3, 3, 17, 1, 0) << "3.3.17.1"
                                 << newer("3.3.17 build 1 - 0 Gold");
    QTest::newRow("server build newer")
        << releaseXml(3, 3, 17, 0, 20250206) << "3.3.17.0" << newer("3.3.17 build 0 - 20250206 Gold");
    QTest::newRow("equal") << releaseXml(3, 3, 17, 0, 20250205) << "3.3.17.0" << same;
    QTest::newRow("older revision, higher build")
        << releaseXml(3, 3, 16, 99, 99999999) << "3.3.16.99" << same;
    QTest::newRow("older server build") << releaseXml(3, 3, 17, 0, 20250204) << "3.3.17.0" << same;
    QTest::newRow("older minor, higher revision") << releaseXml(3, 2, 99, 0, 0) << "3.2.99.0" << same;
    QTest::newRow("older major, higher minor") << releaseXml(2, 99, 99, 99, 99999999) << "2.99.99.99" << same;
    QTest::newRow("beta release newer") << releaseXml(3, 3, 17, 2, 0, url, QStringLiteral("Beta"))
                                        << "3.3.17.2" << newer("3.3.17 build 2 - 0 Beta");
}

void TestUpdate::comparesReleaseFieldByField()
{
    QFETCH(QString, release);
    QFETCH(QString, latest);
    QFETCH(QString, outcome);

    LoopbackHttpServer server;
    QVERIFY(server.isListening());
    server.respondWith(200, versionFile(release));

    SignalRecorder recorder;
    AutoUpdateTool tool;
    recorder.attach(&tool);
    connect(&tool, &AutoUpdateTool::fileDownloadSuccess, &tool,
            [&tool] { tool.checkForUpdate(QStringLiteral("RUNPLAN"), UpdateIdentity::ownVersion()); });
    tool.setHost(server.hostAndPort());
    tool.setPath(QStringLiteral("/software/VxAppVersions.xml"));
    {
        LogCapture capture;
        tool.getVersionInfo();
        QVERIFY(tool.isBusy());
        QTRY_VERIFY_WITH_TIMEOUT(!tool.isBusy(), 5000);
    }

    QCOMPARE(server.requestLines(), QList<QByteArray>{"GET /software/VxAppVersions.xml HTTP/1.1"});
    const QStringList expected{QStringLiteral("fileDownloadSuccess"),
                               QStringLiteral("updateLatestVersion RUNPLAN ") + latest, outcome};
    QCOMPARE(recorder.log, expected);
    const QStringList lines = LogCapture::lines();
    QCOMPARE(
        lines.value(0),
        QStringLiteral("AUT: requesting http://%1/software/VxAppVersions.xml").arg(server.hostAndPort()));
    QVERIFY(lines.contains(SuccessLine));
}

void TestUpdate::readsVersionFile_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QStringList>("expectedSignals");
    QTest::addColumn<QString>("expectedLog");

    const QString gold = releaseXml(3, 3, 17, 0, 20250205);
    const QStringList none;
    const QStringList noUpdate{QStringLiteral("updateLatestVersion RUNPLAN 3.3.17.0"),
                               QStringLiteral("noUpdateAvailable ") + OwnVersionText};

    QTest::newRow("application missing")
        << versionFile(gold, QStringLiteral("RUNPLANNER")) << none << NoAppLine;
    QTest::newRow("application name is case-sensitive")
        << versionFile(gold, QStringLiteral("runplan")) << none << NoAppLine;
    QTest::newRow("operating system missing")
        << versionFile(gold, QStringLiteral("RUNPLAN"), QStringLiteral("Linux")) << none << NoOsLine;
    QTest::newRow("operating system without releases") << versionFile(QString()) << none << NoOsLine;
    QTest::newRow("malformed XML") << QByteArray(
                                          "<Applications><Application name=\"RUNPLAN\"><OS name=\"Windows\">")
                                   << none << NoAppLine;
    QTest::newRow("empty body") << QByteArray() << none << NoAppLine;

    QTest::newRow("single application as root")
        << QStringLiteral(
               "<Application name=\"RUNPLAN\"><Platform name=\"Windows\">%1</Platform></Application>")
               .arg(releaseXml(3, 3, 18, 0, 1))
               .toUtf8()
        << QStringList{QStringLiteral("updateLatestVersion RUNPLAN 3.3.18.0"),
                       QStringLiteral("updateAvailable 3.3.18 build 0 - 1 Gold | "
                                      "https://downloads.vorlux.example/runplan")}
        << QString();
    QTest::newRow("other root name, other children ignored")
        << QStringLiteral("<Products><Notice>maintenance</Notice><Application name=\"RUNPLAN\">"
                          "<OS name=\"Windows\"><Note/>%1</OS></Application></Products>")
               .arg(gold)
               .toUtf8()
        << noUpdate << QString();
    QTest::newRow("newest of several releases counts")
        << versionFile(releaseXml(3, 3, 16, 0, 0) +
                       releaseXml(3, 3, 18, 2, 7, QStringLiteral("http://beta.vorlux.example/"),
                                  QStringLiteral("Beta")) +
                       releaseXml(3, 3, 17, 0, 20250205))
        << QStringList{QStringLiteral("updateLatestVersion RUNPLAN 3.3.18.2"),
                       QStringLiteral(
                           "updateAvailable 3.3.18 build 2 - 7 Beta | http://beta.vorlux.example/")}
        << QString();
    QTest::newRow("unknown release type, padded numbers")
        << versionFile(
               QStringLiteral("<Release type=\"Nightly\"><Major> 3 </Major><Minor>\n3\n</Minor><Rev>17</Rev>"
                              "<Build>5</Build><ServerBuildNumber>x</ServerBuildNumber>"
                              "<URL> https://n.vorlux.example/ </URL></Release>"))
        << QStringList{QStringLiteral("updateLatestVersion RUNPLAN 3.3.17.5"),
                       QStringLiteral(
                           "updateAvailable 3.3.17 build 5 - 0 Unknown | https://n.vorlux.example/")}
        << QString();
}

void TestUpdate::readsVersionFile()
{
    QFETCH(QByteArray, content);
    QFETCH(QStringList, expectedSignals);
    QFETCH(QString, expectedLog);

    SignalRecorder recorder;
    AutoUpdateTool tool;
    recorder.attach(&tool);
    tool.parseVersionFile(content);
    {
        LogCapture capture;
        tool.checkForUpdate(QStringLiteral("RUNPLAN"), UpdateIdentity::ownVersion());
    }
    QCOMPARE(recorder.log, expectedSignals);
    QCOMPARE(LogCapture::lines(), expectedLog.isEmpty() ? QStringList() : QStringList{expectedLog});
}

void TestUpdate::newDownloadReplacesParsedTree()
{
    AutoUpdateTool tool;
    tool.parseVersionFile(versionFile(releaseXml(3, 3, 18, 0, 0)));
    QCOMPARE(tool.versions().keys(), (QStringList{QStringLiteral("OTHERTOOL"), QStringLiteral("RUNPLAN")}));
    const auto& windows = tool.versions().value(QStringLiteral("RUNPLAN")).osVersions;
    QCOMPARE(windows.keys(), QStringList{QStringLiteral("Windows")});
    QCOMPARE(windows.first().releases.size(), 1);
    QCOMPARE(windows.first().releases.first().revision, 18u);

    // The tree survives a check, but a later unreadable file leaves nothing of the old one.
    tool.checkForUpdate(QStringLiteral("RUNPLAN"), UpdateIdentity::ownVersion());
    QCOMPARE(tool.versions().size(), 2);
    tool.parseVersionFile("not xml");
    QVERIFY(tool.versions().isEmpty());
}

void TestUpdate::httpErrorEndsSilently()
{
    LoopbackHttpServer server;
    server.respondWith(404, "<html>gone</html>");

    SignalRecorder recorder;
    UpdateChecker checker;
    checker.setHost(server.hostAndPort());
    checker.setPath(UpdateIdentity::versionFilePath());
    checker.setAppName(UpdateIdentity::applicationName());
    checker.setOwnVersion(UpdateIdentity::ownVersion());
    checker.setShowMessages(true);
    LogCapture capture;
    checker.start();
    recorder.attach(checker.tool());
    QTRY_VERIFY_WITH_TIMEOUT(!checker.tool()->isBusy(), 5000);

    QCOMPARE(server.requestCount(), 1);
    QVERIFY(LogCapture::indexStartingWith(ErrorLinePrefix) >= 0);
    QCOMPARE(LogCapture::indexOf(SuccessLine), -1);
    QCOMPARE(recorder.log, QStringList());
    QCOMPARE(m_prompter.prompts.size(), 0);
}

void TestUpdate::unansweredRequestIsAbortedAfterTimeout()
{
    LoopbackHttpServer server;
    server.stayQuiet();

    SignalRecorder recorder;
    UpdateChecker checker;
    checker.setHost(server.hostAndPort());
    checker.setPath(UpdateIdentity::versionFilePath());
    checker.setAppName(UpdateIdentity::applicationName());
    checker.setOwnVersion(UpdateIdentity::ownVersion());
    checker.setShowMessages(true);
    checker.setTimeout(150);
    LogCapture capture;
    checker.start();
    recorder.attach(checker.tool());
    QTRY_VERIFY_WITH_TIMEOUT(!checker.tool()->isBusy(), 5000);

    QCOMPARE(server.requestCount(), 1);
    const int timerLine = LogCapture::indexOf(BusyTimerLine);
    QVERIFY2(timerLine >= 0, qPrintable(LogCapture::lines().join('\n')));
    QVERIFY(LogCapture::indexStartingWith(ErrorLinePrefix) > timerLine);
    QCOMPARE(recorder.log, QStringList());
    QCOMPARE(m_prompter.prompts.size(), 0);

    // The tool is free again: the next press reaches a server that answers.
    server.respondWith(200, versionFile(releaseXml(3, 3, 17, 0, 20250206)));
    LogCapture::clear();
    checker.start();
    QTRY_COMPARE_WITH_TIMEOUT(m_prompter.prompts.size(), 1, 5000);
    QCOMPARE(m_prompter.prompts.first().title, QStringLiteral("Update Available"));
    QCOMPARE(LogCapture::indexOf(BusyTimerLine), -1);

    // Going away with a request under way must neither crash nor report anything.
    server.stayQuiet();
    auto* waiting = new AutoUpdateTool;
    waiting->setHost(server.hostAndPort());
    waiting->getVersionInfo();
    QTRY_COMPARE_WITH_TIMEOUT(server.requestCount(), 3, 5000);
    delete waiting;
    QTest::qWait(20);
}

void TestUpdate::secondRequestWhileBusyIsRefused()
{
    LoopbackHttpServer server;
    server.respondWith(200, versionFile(releaseXml(3, 3, 17, 0, 20250205)));

    AutoUpdateTool tool;
    QSignalSpy downloads(&tool, &AutoUpdateTool::fileDownloadSuccess);
    tool.setHost(server.hostAndPort());
    tool.setPath(UpdateIdentity::versionFilePath());
    LogCapture capture;
    tool.getVersionInfo();
    tool.getVersionInfo();
    QCOMPARE(LogCapture::lines().count(QStringLiteral("AUT: getVersionInfo - already busy, returning")), 1);
    QTRY_COMPARE_WITH_TIMEOUT(downloads.count(), 1, 5000);
    QTest::qWait(50);
    QCOMPARE(downloads.count(), 1);
    QCOMPARE(server.requestCount(), 1);

    // Idle again once the reply is in.
    tool.getVersionInfo();
    QTRY_COMPARE_WITH_TIMEOUT(downloads.count(), 2, 5000);
    QCOMPARE(server.requestCount(), 2);
    QCOMPARE(LogCapture::lines().count(QStringLiteral("AUT: getVersionInfo - already busy, returning")), 1);

    // A time-out check while idle does nothing.
    LogCapture::clear();
    tool.checkBusy();
    QVERIFY(LogCapture::lines().isEmpty());
}

void TestUpdate::checkerPromptsAndOpensDownloadPage()
{
    LoopbackHttpServer server;
    const QString page = QStringLiteral("https://downloads.vorlux.example/runplan/3.4");
    server.respondWith(200, versionFile(releaseXml(3, 4, 0, 0, 20250301, page)));

    UpdateChecker checker;
    checker.setHost(server.hostAndPort());
    checker.setPath(UpdateIdentity::versionFilePath());
    checker.setAppName(UpdateIdentity::applicationName());
    checker.setOwnVersion(UpdateIdentity::ownVersion());
    LogCapture capture;

    // Not asked for messages: the outcome is only logged.
    checker.start();
    QTRY_VERIFY_WITH_TIMEOUT(LogCapture::lines().contains(QStringLiteral("Update: Update available.")), 5000);
    QCOMPARE(m_prompter.prompts.size(), 0);
    QVERIFY(m_opened.isEmpty());

    // Asked, and the user says Yes: the download page opens.
    checker.setShowMessages(true);
    m_prompter.answerYes = true;
    checker.start();
    QTRY_COMPARE_WITH_TIMEOUT(m_prompter.prompts.size(), 1, 5000);
    QCOMPARE(m_prompter.prompts.first().kind, QStringLiteral("question"));
    QCOMPARE(m_prompter.prompts.first().title, QStringLiteral("Update Available"));
    QCOMPARE(
        m_prompter.prompts.first().text,
        QStringLiteral("A newer version (3.4.0 build 0 - 20250301 Gold) of this application is available.\n\n"
                       "Would you like to go to the download page?"));
    QCOMPARE(m_opened, QList<QUrl>{QUrl(page)});

    // No: nothing opens. Yes without an address: nothing to open.
    m_prompter.answerYes = false;
    checker.handleUpdateAvailable(QStringLiteral("3.4.0 build 0 - 20250301 Gold"), page);
    m_prompter.answerYes = true;
    checker.handleUpdateAvailable(QStringLiteral("3.4.0 build 0 - 20250301 Gold"), QString());
    QCOMPARE(m_prompter.prompts.size(), 3);
    QCOMPARE(m_opened.size(), 1);

    // Same version on the server.
    server.respondWith(200, versionFile(releaseXml(3, 3, 17, 0, 20250205, page)));
    checker.start();
    QTRY_COMPARE_WITH_TIMEOUT(m_prompter.prompts.size(), 4, 5000);
    QCOMPARE(m_prompter.prompts.last().kind, QStringLiteral("information"));
    QCOMPARE(m_prompter.prompts.last().title, QStringLiteral("No Update Available"));
    QCOMPARE(m_prompter.prompts.last().text,
             QStringLiteral("You have the latest version: v3.3.17 build 0 - 20250205 Gold"));
    QVERIFY(
        LogCapture::lines().contains(QStringLiteral("Update: No update available. Have latest version.")));

    // Not emitted by the tool's own paths, but a listener must still hear about it.
    emit checker.tool()->unableToRetrieveFile();
    QCOMPARE(m_prompter.prompts.size(), 5);
    QCOMPARE(m_prompter.prompts.last().title, QStringLiteral("Update Error"));
    QCOMPARE(m_prompter.prompts.last().text, QStringLiteral("Unable to retrieve update file."));
    QVERIFY(LogCapture::lines().contains(QStringLiteral("Update: Unable to retrieve XML file.")));

    // Without an application name there is nothing to look up.
    checker.setAppName(QString());
    LogCapture::clear();
    checker.start();
    QTRY_VERIFY_WITH_TIMEOUT(LogCapture::lines().contains(SuccessLine), 5000);
    QVERIFY(LogCapture::lines().contains(QStringLiteral("Bug: No appname set")));
    QCOMPARE(m_prompter.prompts.size(), 5);
}

void TestUpdate::downloadAddressMustBeWebUrl_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<bool>("opened");

    QTest::newRow("http") << "http://downloads.vorlux.example/runplan.exe" << true;
    QTest::newRow("https") << "https://downloads.vorlux.example/runplan" << true;
    QTest::newRow("upper-case scheme") << "HTTPS://downloads.vorlux.example/" << true;
    QTest::newRow("file") << "file:///C:/Windows/System32/calc.exe" << false;
    QTest::newRow("unc path") << "\\\\server\\share\\setup.exe" << false;
    QTest::newRow("ftp") << "ftp://downloads.vorlux.example/runplan.zip" << false;
    QTest::newRow("javascript") << "javascript:alert(1)" << false;
    QTest::newRow("mailto") << "mailto:sales@vorlux.example" << false;
    QTest::newRow("no scheme") << "downloads.vorlux.example/runplan" << false;
    QTest::newRow("no host") << "http:///runplan" << false;
}

void TestUpdate::downloadAddressMustBeWebUrl()
{
    QFETCH(QString, address);
    QFETCH(bool, opened);

    UpdateChecker checker;
    checker.setShowMessages(true);
    m_prompter.answerYes = true;
    LogCapture capture;
    checker.handleUpdateAvailable(QStringLiteral("4.0.0 build 0 - 0 Gold"), address);

    QCOMPARE(m_prompter.prompts.size(), 1);
    QCOMPARE(m_opened.size(), opened ? 1 : 0);
    if (opened)
        QCOMPARE(m_opened.first(), QUrl(address));
    const QStringList updateLines =
        LogCapture::lines().filter(QRegularExpression(QStringLiteral("^Update: ")));
    QCOMPARE(updateLines.size(), opened ? 1 : 2);
    if (!opened)
        QVERIFY(updateLines.last().contains(address));
}

QTEST_MAIN(TestUpdate)
#include "tst_update.moc"
