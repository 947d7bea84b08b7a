#pragma once

#include "update/AutoUpdateTool.h"

#include <QObject>
#include <QString>
#include <QUrl>

#include <functional>

// Asks the user; the default shows message boxes without a parent window.
class UpdatePrompter
{
public:
    virtual ~UpdatePrompter() = default;
    virtual void information(const QString& title, const QString& text) = 0;
    // True when the user answers Yes.
    virtual bool question(const QString& title, const QString& text) = 0;
};

class MessageBoxPrompter : public UpdatePrompter
{
public:
    void information(const QString& title, const QString& text) override;
    bool question(const QString& title, const QString& text) override;
};

// What "Check Now" tells the checker about this program and where to look.
namespace UpdateIdentity
{
inline QString applicationName()
{
    return QStringLiteral("RUNPLAN");
}
inline QString versionFilePath()
{
    return QStringLiteral("/software/VxAppVersions.xml");
}
inline QString osName()
{
    return QStringLiteral("Windows");
}
// A reserved name that never resolves, until the vendor's server is known; RUNPLAN_UPDATE_HOST
// (host or host:port) points the check elsewhere.
inline QString defaultHost()
{
    return QStringLiteral("downloads.runplan.invalid");
}
QString serverHost();
// The version the server's releases are compared with: 3.3.17 build 0, server build 20250205.
VxCommonUtils::RlsVers ownVersion();
} // namespace UpdateIdentity

// Runs an update check with the tool and reports its outcome to the user.
class UpdateChecker : public QObject
{
    Q_OBJECT
public:
    using UrlOpener = std::function<bool(const QUrl&)>;

    explicit UpdateChecker(QObject* parent = nullptr);

    void setHost(const QString& host) { m_host = host; }
    void setPath(const QString& path) { m_path = path; }
    void setAppName(const QString& appName) { m_appName = appName; }
    QString appName() const { return m_appName; }
    void setOwnVersion(const VxCommonUtils::RlsVers& version) { m_ownVersion = version; }
    VxCommonUtils::RlsVers ownVersion() const { return m_ownVersion; }
    void setOsName(const QString& osName) { m_osName = osName; }
    void setShowMessages(bool show) { m_showMessages = show; }
    bool showMessages() const { return m_showMessages; }
    // Request time-out handed to the tool; the tool's own default when never set.
    void setTimeout(int milliseconds);

    // Configures the tool (an empty proxy host means a direct connection) and requests the version file.
    void start(const QString& proxyHost = QString(), quint16 proxyPort = 0,
               const QString& proxyUser = QString(), const QString& proxyPassword = QString());
    // Null until the first start.
    VxCommonUtils::AutoUpdateTool* tool() const { return m_tool; }

    // Process-wide replacements for the message boxes and the browser; null or empty restores them.
    static void setPrompter(UpdatePrompter* prompter);
    static void setUrlOpener(UrlOpener opener);
    // Only web addresses are handed to the desktop: the version file comes from the network.
    // Empty when the address may be opened, else why it is not, in the user's words.
    static QString downloadUrlRefusal(const QString& address);
    static bool isOpenableDownloadUrl(const QString& address) { return downloadUrlRefusal(address).isEmpty(); }

public slots:
    void handleXMLFileDownloadSuccess();
    void handleUnableToRetrieveFile();
    void handleUpdateAvailable(const QString& version, const QString& url);
    void handleNoUpdateAvailable(const QString& version);

private:
    QString m_host;
    QString m_path;
    QString m_appName;
    QString m_osName = UpdateIdentity::osName();
    VxCommonUtils::RlsVers m_ownVersion;
    bool m_showMessages = false;
    int m_timeoutMs = -1;
    VxCommonUtils::AutoUpdateTool* m_tool = nullptr;
};
