#include "update/SettingsDlg.h"

#include "ui_SettingsDlg.h"
#include "update/SettingsKeys.h"
#include "update/UpdateChecker.h"

#include <QDebug>
#include <QIcon>
#include <QSettings>

using namespace RunplanSettings;

SettingsDlg::SettingsDlg(QWidget* parent) : QDialog(parent), ui(new Ui::SettingsDlg)
{
    ui->setupUi(this);
    setWindowIcon(QIcon(QStringLiteral(":/Runplan.ico")));
    connect(this, &QDialog::finished, this, &SettingsDlg::handleFinished);
    loadSettings();
}

SettingsDlg::~SettingsDlg()
{
    delete ui;
}

void SettingsDlg::loadSettings()
{
    const bool neverCheck = updateNeverCheck();
    const int intervalDays = updateCheckIntervalDays();
    const bool proxyUsed = useProxy();
    const QString host = proxyHost();
    const int port = proxyPort();
    const QString user = proxyUser();
    const QString password = proxyPassword();

    ui->autoCheckForUpdatesCheckbox->setChecked(!neverCheck);
    ui->checkForUpdateEveryNDaysSpinBox->setValue(intervalDays);
    ui->proxyCheckBox->setChecked(proxyUsed);
    ui->proxyFrame->setEnabled(proxyUsed);
    ui->proxyLineEdit->setText(host);
    ui->proxyPortSpinBox->setValue(port);
    ui->usernameLineEdit->setText(user);
    ui->passwordLineEdit->setText(password);
}

void SettingsDlg::storeSettings()
{
    // Stored as they stand: a ticked proxy box with an empty host is the user's choice to keep.
    QSettings settings;
    settings.setValue(useProxyKey(), ui->proxyCheckBox->isChecked());
    settings.setValue(proxyHostKey(), ui->proxyLineEdit->text());
    settings.setValue(proxyPortKey(), ui->proxyPortSpinBox->value());
    settings.setValue(proxyUserKey(), ui->usernameLineEdit->text());
    settings.setValue(proxyPasswordKey(), ui->passwordLineEdit->text());
    settings.setValue(updateNeverCheckKey(), !ui->autoCheckForUpdatesCheckbox->isChecked());
    settings.setValue(updateCheckIntervalDaysKey(), ui->checkForUpdateEveryNDaysSpinBox->value());
    finishWrite(settings);
}

void SettingsDlg::handleFinished(int result)
{
    if (result == QDialog::Accepted) {
        qDebug().noquote() << QStringLiteral("Dialog accepted, writing settings changes.");
        storeSettings();
    } else {
        qDebug().noquote() << QStringLiteral("Dialog rejected, ignoring settings changes.");
    }
}

void SettingsDlg::on_checkForUpdatesNowButton_clicked()
{
    if (!m_updateChecker) {
        m_updateChecker = new UpdateChecker(this);
        m_updateChecker->setHost(UpdateIdentity::serverHost());
        m_updateChecker->setPath(UpdateIdentity::versionFilePath());
        m_updateChecker->setAppName(UpdateIdentity::applicationName());
        m_updateChecker->setOwnVersion(UpdateIdentity::ownVersion());
        m_updateChecker->setOsName(UpdateIdentity::osName());
    }
    m_updateChecker->setShowMessages(true);

    // The proxy as it stands in the controls, so a proxy can be tried before it is stored.
    const QString host = ui->proxyLineEdit->text();
    if (ui->proxyCheckBox->isChecked() && !host.isEmpty()) {
        m_updateChecker->start(host, static_cast<quint16>(ui->proxyPortSpinBox->value()),
                               ui->usernameLineEdit->text(), ui->passwordLineEdit->text());
    } else {
        m_updateChecker->start();
    }
}
