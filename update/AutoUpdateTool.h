#pragma once

#include <QList>
#include <QMap>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QTimer>

class QDomElement;
class QNetworkAccessManager;
class QNetworkReply;

namespace VxCommonUtils
{

// One release of an application for one operating system, as the vendor's version file lists it.
struct RlsVers {
    enum ReleaseType { Alpha, Beta, Gold, Unknown };

    ReleaseType type = Unknown;
    uint major = 0;
    uint minor = 0;
    uint revision = 0;
    uint build = 0;
    uint serverBuildNumber = 0;
    QString url;

    static QString typeName(ReleaseType type);
    static ReleaseType typeFromName(const QString& name);
    // "3.3.17 build 0 - 20250205 Gold"
    QString versionText() const;
    // Field by field in the order major, minor, revision, build, server build number; the first field
    // that differs decides. Negative when a is older than b, 0 when equal, positive when newer.
    static int compare(const RlsVers& a, const RlsVers& b);
};

struct OSVers {
    QString name;
    QList<RlsVers> releases;
};

struct AppVers {
    QString name;
    QMap<QString, OSVers> osVersions;
};

// Fetches the vendor's version file over HTTP and compares the newest listed release with ours.
class AutoUpdateTool : public QObject
{
    Q_OBJECT
public:
    static constexpr int DefaultTimeoutMs = 10000;
    // The vendor's version file is a few kilobytes: a reply larger than 64 KiB is refused while it
    // downloads, and never held whole.
    static constexpr qint64 MaxReplyBytes = 64 * 1024;
    // The file nests five levels (Applications, Application, operating system, Release, field);
    // a deeper document is refused before it is parsed.
    static constexpr int MaxNestingDepth = 32;

    explicit AutoUpdateTool(QObject* parent = nullptr);
    ~AutoUpdateTool() override;

    void setHost(const QString& host) { m_host = host; }
    QString host() const { return m_host; }
    void setPath(const QString& path) { m_path = path; }
    QString path() const { return m_path; }
    // How long a request may take before it is aborted.
    void setTimeout(int milliseconds) { m_timeoutMs = milliseconds; }
    int timeout() const { return m_timeoutMs; }

    void setProxy(const QString& host, quint16 port, const QString& user, const QString& password);
    void clearProxy();
    QNetworkAccessManager* networkAccessManager() const { return m_manager; }

    // Sends the request unless one is already under way.
    void getVersionInfo();
    bool isBusy() const { return m_busy; }

    // Emits updateLatestVersion and then updateAvailable or noUpdateAvailable, or logs why it cannot.
    void checkForUpdate(const QString& appName, const RlsVers& ownVersion,
                        const QString& osName = QStringLiteral("Windows"));

    // The tree parsed from the last downloaded file, keyed by application name.
    const QMap<QString, AppVers>& versions() const { return m_versions; }
    // Replaces the tree with the one read from an XML document; an unparsable one, or one over
    // the size or nesting limits above, leaves it empty.
    void parseVersionFile(const QByteArray& content);

signals:
    void fileDownloadSuccess();
    void unableToRetrieveFile();
    void updateAvailable(const QString& version, const QString& url);
    void noUpdateAvailable(const QString& version);
    void updateLatestVersion(const QString& appName, uint latestMajor, uint latestMinor, uint latestRev,
                             uint latestBuild);

public slots:
    void replyFinished(QNetworkReply* reply);
    void checkBusy();

private:
    void readApplication(const QDomElement& application);
    void watchReplySize(qint64 received, qint64 total);

    QString m_host;
    QString m_path;
    QNetworkAccessManager* m_manager = nullptr;
    QPointer<QNetworkReply> m_reply;
    QTimer m_busyTimer;
    int m_timeoutMs = DefaultTimeoutMs;
    bool m_busy = false;
    bool m_replyTooLarge = false;
    QMap<QString, AppVers> m_versions;
};

} // namespace VxCommonUtils
