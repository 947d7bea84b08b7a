#include "update/UpdateChecker.h"

#include <QDebug>
#include <QDesktopServices>
#include <QMessageBox>

using VxCommonUtils::AutoUpdateTool;
using VxCommonUtils::RlsVers;

void MessageBoxPrompter::information(const QString& title, const QString& text)
{
    QMessageBox::information(nullptr, title, text);
}

bool MessageBoxPrompter::question(const QString& title, const QString& text)
{
    return QMessageBox::question(nullptr, title, text, QMessageBox::Yes | QMessageBox::No) ==
           QMessageBox::Yes;
}

QString UpdateIdentity::serverHost()
{
    const QString overridden = qEnvironmentVariable("RUNPLAN_UPDATE_HOST").trimmed();
    return overridden.isEmpty() ? defaultHost() : overridden;
}

RlsVers UpdateIdentity::ownVersion()
{
    RlsVers own;
    own.type = RlsVers::Gold;
    own.major = 3;
    own.minor = 3;
    own.revision = 17;
    own.build = 0;
    own.serverBuildNumber = 20250205;
    return own;
}

namespace
{
UpdatePrompter*& installedPrompter()
{
    static UpdatePrompter* prompter = nullptr;
    return prompter;
}

UpdatePrompter& prompter()
{
    static MessageBoxPrompter messageBoxes;
    UpdatePrompter* installed = installedPrompter();
    return installed ? *installed : messageBoxes;
}

UpdateChecker::UrlOpener& installedUrlOpener()
{
    static UpdateChecker::UrlOpener opener;
    return opener;
}

bool openUrl(const QUrl& url)
{
    const UpdateChecker::UrlOpener& opener = installedUrlOpener();
    return opener ? opener(url) : QDesktopServices::openUrl(url);
}
} // namespace

void UpdateChecker::setPrompter(UpdatePrompter* prompter)
{
    installedPrompter() = prompter;
}

void UpdateChecker::setUrlOpener(UrlOpener opener)
{
    installedUrlOpener() = std::move(opener);
}

QString UpdateChecker::downloadUrlRefusal(const QString& address)
{
    const QUrl url(address, QUrl::StrictMode);
    const QString scheme = url.scheme().toLower();
    if (scheme != QLatin1String("http") && scheme != QLatin1String("https"))
        return tr("The download page was not opened: \"%1\" is not an http or https address.").arg(address);
    if (!url.isValid() || url.host().isEmpty())
        return tr("The download page was not opened: \"%1\" is not a valid web address.").arg(address);
    return QString();
}

UpdateChecker::UpdateChecker(QObject* parent) : QObject(parent) {}

void UpdateChecker::setTimeout(int milliseconds)
{
    m_timeoutMs = milliseconds;
    if (m_tool)
        m_tool->setTimeout(milliseconds);
}

void UpdateChecker::start(const QString& proxyHost, quint16 proxyPort, const QString& proxyUser,
                          const QString& proxyPassword)
{
    if (!m_tool) {
        m_tool = new AutoUpdateTool(this);
        if (m_timeoutMs >= 0)
            m_tool->setTimeout(m_timeoutMs);
        connect(m_tool, &AutoUpdateTool::fileDownloadSuccess, this,
                &UpdateChecker::handleXMLFileDownloadSuccess);
        connect(m_tool, &AutoUpdateTool::unableToRetrieveFile, this,
                &UpdateChecker::handleUnableToRetrieveFile);
        connect(m_tool, &AutoUpdateTool::updateAvailable, this, &UpdateChecker::handleUpdateAvailable);
        connect(m_tool, &AutoUpdateTool::noUpdateAvailable, this, &UpdateChecker::handleNoUpdateAvailable);
    }
    m_tool->setHost(m_host);
    m_tool->setPath(m_path);
    if (proxyHost.isEmpty())
        m_tool->clearProxy();
    else
        m_tool->setProxy(proxyHost, proxyPort, proxyUser, proxyPassword);
    m_tool->getVersionInfo();
}

void UpdateChecker::handleXMLFileDownloadSuccess()
{
    if (m_appName.isEmpty()) {
        qDebug().noquote() << QStringLiteral("Bug: No appname set");
        return;
    }
    m_tool->checkForUpdate(m_appName, m_ownVersion, m_osName);
}

void UpdateChecker::handleUnableToRetrieveFile()
{
    qDebug().noquote() << QStringLiteral("Update: Unable to retrieve XML file.");
    if (m_showMessages)
        prompter().information(tr("Update Error"), tr("Unable to retrieve update file."));
}

void UpdateChecker::handleUpdateAvailable(const QString& version, const QString& url)
{
    qDebug().noquote() << QStringLiteral("Update: Update available.");
    if (!m_showMessages)
        return;
    const bool goThere = prompter().question(tr("Update Available"),
                                             tr("A newer version (%1) of this application is "
                                                "available.\n\nWould you like to go to the download page?")
                                                 .arg(version));
    if (!goThere || url.isEmpty())
        return;
    const QString refusal = downloadUrlRefusal(url);
    if (!refusal.isEmpty()) {
        qDebug().noquote() << QStringLiteral("Update: Not opening download address: ") + url;
        prompter().information(tr("Runplan"), refusal);
        return;
    }
    openUrl(QUrl(url, QUrl::StrictMode));
}

void UpdateChecker::handleNoUpdateAvailable(const QString& version)
{
    qDebug().noquote() << QStringLiteral("Update: No update available. Have latest version.");
    if (m_showMessages)
        prompter().information(tr("No Update Available"),
                               tr("You have the latest version: v%1").arg(version));
}
