#include "update/AutoUpdateTool.h"

#include "catalog/XmlDepth.h"

#include <QDebug>
#include <QDomDocument>
#include <QDomElement>
#include <QNetworkAccessManager>
#include <QNetworkProxy>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QUrl>

namespace VxCommonUtils
{

QString RlsVers::typeName(ReleaseType type)
{
    switch (type) {
    case Alpha:
        return QStringLiteral("Alpha");
    case Beta:
        return QStringLiteral("Beta");
    case Gold:
        return QStringLiteral("Gold");
    case Unknown:
        break;
    }
    return QStringLiteral("Unknown");
}

RlsVers::ReleaseType RlsVers::typeFromName(const QString& name)
{
    if (name == QLatin1String("Alpha"))
        return Alpha;
    if (name == QLatin1String("Beta"))
        return Beta;
    if (name == QLatin1String("Gold"))
        return Gold;
    return Unknown;
}

QString RlsVers::versionText() const
{
    return QStringLiteral("%1.%2.%3 build %4 - %5 %6")
        .arg(major)
        .arg(minor)
        .arg(revision)
        .arg(build)
        .arg(serverBuildNumber)
        .arg(typeName(type));
}

int RlsVers::compare(const RlsVers& a, const RlsVers& b)
{
    const uint left[] = {a.major, a.minor, a.revision, a.build, a.serverBuildNumber};
    const uint right[] = {b.major, b.minor, b.revision, b.build, b.serverBuildNumber};
    for (int i = 0; i < 5; ++i) {
        if (left[i] != right[i])
            return left[i] > right[i] ? 1 : -1;
    }
    return 0;
}

AutoUpdateTool::AutoUpdateTool(QObject* parent) : QObject(parent), m_manager(new QNetworkAccessManager(this))
{
    // Without an explicit choice Qt could pick up a proxy from the environment; only the
    // preferences decide whether one is used.
    m_manager->setProxy(QNetworkProxy(QNetworkProxy::NoProxy));
    connect(m_manager, &QNetworkAccessManager::finished, this, &AutoUpdateTool::replyFinished);
    m_busyTimer.setSingleShot(true);
    connect(&m_busyTimer, &QTimer::timeout, this, &AutoUpdateTool::checkBusy);
}

AutoUpdateTool::~AutoUpdateTool()
{
    // A reply still running must not call back into a half-destroyed tool.
    disconnect(m_manager, nullptr, this, nullptr);
    if (m_reply) {
        m_reply->abort();
        delete m_reply;
    }
}

void AutoUpdateTool::setProxy(const QString& host, quint16 port, const QString& user, const QString& password)
{
    m_manager->setProxy(QNetworkProxy(QNetworkProxy::HttpCachingProxy, host, port, user, password));
}

void AutoUpdateTool::clearProxy()
{
    m_manager->setProxy(QNetworkProxy(QNetworkProxy::NoProxy));
}

void AutoUpdateTool::getVersionInfo()
{
    if (m_busy) {
        qDebug().noquote() << QStringLiteral("AUT: getVersionInfo - already busy, returning");
        return;
    }
    m_busy = true;
    const QString address = QStringLiteral("http://%1%2").arg(m_host, m_path);
    qDebug().noquote() << QStringLiteral("AUT: requesting ") + address;
    m_replyTooLarge = false;
    m_reply = m_manager->get(QNetworkRequest(QUrl(address)));
    connect(m_reply, &QNetworkReply::downloadProgress, this, &AutoUpdateTool::watchReplySize);
    // A request refused on the spot has already finished and cleared busy; nothing to time.
    if (m_busy)
        m_busyTimer.start(m_timeoutMs);
}

void AutoUpdateTool::checkBusy()
{
    if (!m_busy)
        return;
    qDebug().noquote() << QStringLiteral("AUT: Busy Timer fired - emitting unable to retrieve file signal.");
    QNetworkReply* reply = m_reply;
    if (!reply)
        return;
    // The aborted reply finishes with an error, which replyFinished reports and which clears busy.
    if (reply->isRunning())
        reply->abort();
    reply->deleteLater();
}

void AutoUpdateTool::watchReplySize(qint64 received, qint64 total)
{
    // The announced length is known with the headers, the received one grows with every chunk.
    if (received <= MaxReplyBytes && total <= MaxReplyBytes)
        return;
    m_replyTooLarge = true;
    if (m_reply && m_reply->isRunning())
        m_reply->abort(); // finishes the reply with an error, which replyFinished reports
}

void AutoUpdateTool::replyFinished(QNetworkReply* reply)
{
    m_busy = false;
    m_busyTimer.stop();
    if (reply == m_reply)
        m_reply = nullptr;
    reply->deleteLater();

    if (m_replyTooLarge) {
        qDebug().noquote() << QStringLiteral("AUT:handleReply - reply refused: larger than %1 bytes")
                                  .arg(MaxReplyBytes);
        return;
    }
    if (reply->error() != QNetworkReply::NoError) {
        qDebug().noquote() << QStringLiteral("AUT:handleReply - got error message: ") + reply->errorString();
        return;
    }

    // One byte over the limit is enough to refuse the reply.
    parseVersionFile(reply->read(MaxReplyBytes + 1));
    qDebug().noquote() << QStringLiteral("AUT:handleReply - no errors, emitting fileDownloadSuccess");
    emit fileDownloadSuccess();
}

void AutoUpdateTool::parseVersionFile(const QByteArray& content)
{
    m_versions.clear();
    if (content.size() > MaxReplyBytes) {
        qDebug().noquote() << QStringLiteral("AUT: version file refused: larger than %1 bytes").arg(MaxReplyBytes);
        return;
    }
    if (XmlDepth::exceeds(content, MaxNestingDepth)) {
        qDebug().noquote() << QStringLiteral("AUT: version file refused: elements nested more than %1 levels deep")
                                  .arg(MaxNestingDepth);
        return;
    }
    QDomDocument document(QStringLiteral("mydocument"));
    if (!document.setContent(content))
        return;

    const QDomElement root = document.documentElement();
    if (root.tagName() == QLatin1String("Application")) {
        readApplication(root);
        return;
    }
    // Normally "Applications"; the root's name is not checked, only its "Application" children count.
    for (QDomElement app = root.firstChildElement(QStringLiteral("Application")); !app.isNull();
         app = app.nextSiblingElement(QStringLiteral("Application")))
        readApplication(app);
}

static uint readNumber(const QDomElement& release, const QString& tag)
{
    return release.firstChildElement(tag).text().trimmed().toUInt();
}

void AutoUpdateTool::readApplication(const QDomElement& application)
{
    const QString appName = application.attribute(QStringLiteral("name"));
    AppVers& app = m_versions[appName];
    app.name = appName;
    // The tag of the operating-system level varies between files; its "name" attribute identifies it.
    for (QDomElement osElement = application.firstChildElement(); !osElement.isNull();
         osElement = osElement.nextSiblingElement()) {
        const QString osName = osElement.attribute(QStringLiteral("name"));
        OSVers& os = app.osVersions[osName];
        os.name = osName;
        for (QDomElement release = osElement.firstChildElement(QStringLiteral("Release")); !release.isNull();
             release = release.nextSiblingElement(QStringLiteral("Release"))) {
            RlsVers rls;
            rls.type = RlsVers::typeFromName(release.attribute(QStringLiteral("type")));
            rls.major = readNumber(release, QStringLiteral("Major"));
            rls.minor = readNumber(release, QStringLiteral("Minor"));
            rls.revision = readNumber(release, QStringLiteral("Rev"));
            rls.build = readNumber(release, QStringLiteral("Build"));
            rls.serverBuildNumber = readNumber(release, QStringLiteral("ServerBuildNumber"));
            rls.url = release.firstChildElement(QStringLiteral("URL")).text().trimmed();
            os.releases.append(rls);
        }
    }
}

void AutoUpdateTool::checkForUpdate(const QString& appName, const RlsVers& ownVersion, const QString& osName)
{
    const auto app = m_versions.constFind(appName);
    if (app == m_versions.constEnd()) {
        qDebug().noquote() << QStringLiteral(
                                  "AUT::checkForUpdate() No version information for application named ") +
                                  appName;
        return;
    }
    const auto os = app->osVersions.constFind(osName);
    if (os == app->osVersions.constEnd() || os->releases.isEmpty()) {
        qDebug().noquote()
            << QStringLiteral(
                   "AUT::checkForUpdate() No version information for this release and/or OS type for ") +
                   appName;
        return;
    }

    // A file may list several releases (a beta beside the gold one); the newest of them counts.
    RlsVers latest = os->releases.first();
    for (const RlsVers& release : os->releases) {
        if (RlsVers::compare(release, latest) > 0)
            latest = release;
    }

    emit updateLatestVersion(appName, latest.major, latest.minor, latest.revision, latest.build);
    if (RlsVers::compare(latest, ownVersion) > 0)
        emit updateAvailable(latest.versionText(), latest.url);
    else
        emit noUpdateAvailable(ownVersion.versionText());
}

} // namespace VxCommonUtils
