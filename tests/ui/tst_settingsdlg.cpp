#include "UpdateTestSupport.h"
#include "update/SettingsDlg.h"
#include "update/SettingsKeys.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QFrame>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSettings>
#include <QSpinBox>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QtTest>

namespace
{
const QStringList DialogKeys{
    QStringLiteral("update_never_check"), QStringLiteral("update_check_interval_days"),
    QStringLiteral("use_proxy"),          QStringLiteral("proxy_host"),
    QStringLiteral("proxy_port"),         QStringLiteral("proxy_user"),
    QStringLiteral("proxy_password")};

// The controls of one dialog, looked up by their object names.
struct Controls {
    explicit Controls(SettingsDlg& dlg)
        : proxyCheckBox(dlg.findChild<QCheckBox*>(QStringLiteral("proxyCheckBox"))),
          proxyFrame(dlg.findChild<QFrame*>(QStringLiteral("proxyFrame"))),
          proxyLineEdit(dlg.findChild<QLineEdit*>(QStringLiteral("proxyLineEdit"))),
          proxyPortSpinBox(dlg.findChild<QSpinBox*>(QStringLiteral("proxyPortSpinBox"))),
          usernameLineEdit(dlg.findChild<QLineEdit*>(QStringLiteral("usernameLineEdit"))),
          passwordLineEdit(dlg.findChild<QLineEdit*>(QStringLiteral("passwordLineEdit"))),
          autoCheck(dlg.findChild<QCheckBox*>(QStringLiteral("autoCheckForUpdatesCheckbox"))),
          checkNow(dlg.findChild<QPushButton*>(QStringLiteral("checkForUpdatesNowButton"))),
          interval(dlg.findChild<QSpinBox*>(QStringLiteral("checkForUpdateEveryNDaysSpinBox"))),
          buttonBox(dlg.findChild<QDialogButtonBox*>(QStringLiteral("buttonBox")))
    {
    }
    bool complete() const
    {
        return proxyCheckBox && proxyFrame && proxyLineEdit && proxyPortSpinBox && usernameLineEdit &&
               passwordLineEdit && autoCheck && checkNow && interval && buttonBox;
    }
    // Gives every control a value other than its first-run one.
    void changeAll() const
    {
        proxyCheckBox->click();
        proxyLineEdit->setText(QStringLiteral("proxy.vorlux.example"));
        proxyPortSpinBox->setValue(3128);
        usernameLineEdit->setText(QStringLiteral("planner"));
        passwordLineEdit->setText(QStringLiteral(" pa ss "));
        autoCheck->click();
        interval->setValue(0);
    }

    QCheckBox* proxyCheckBox;
    QFrame* proxyFrame;
    QLineEdit* proxyLineEdit;
    QSpinBox* proxyPortSpinBox;
    QLineEdit* usernameLineEdit;
    QLineEdit* passwordLineEdit;
    QCheckBox* autoCheck;
    QPushButton* checkNow;
    QSpinBox* interval;
    QDialogButtonBox* buttonBox;
};

QStringList storedDialogKeys()
{
    QSettings settings;
    QStringList present;
    for (const QString& key : DialogKeys) {
        if (settings.contains(key))
            present.append(key);
    }
    return present;
}

// Points the update check at a host for the dialogs made while alive.
class UpdateHostOverride
{
public:
    explicit UpdateHostOverride(const QString& host) : m_saved(qgetenv("RUNPLAN_UPDATE_HOST"))
    {
        qputenv("RUNPLAN_UPDATE_HOST", host.toUtf8());
    }
    ~UpdateHostOverride()
    {
        if (m_saved.isNull())
            qunsetenv("RUNPLAN_UPDATE_HOST");
        else
            qputenv("RUNPLAN_UPDATE_HOST", m_saved);
    }

private:
    QByteArray m_saved;
};
} // namespace

class TestSettingsDlg : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        QVERIFY(m_store.isValid());
        QCoreApplication::setOrganizationName(QStringLiteral("Vorlux"));
        QCoreApplication::setApplicationName(QStringLiteral("Runplan"));
        // A store of our own, so that clearing it cannot disturb other test programs.
        QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, m_store.path());
        QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, m_store.path());
        QVERIFY(QSettings().fileName().startsWith(m_store.path()));
    }
    void init()
    {
        QSettings().clear();
        UpdateChecker::setPrompter(&m_prompter);
        m_prompter = RecordingPrompter();
    }
    void cleanup() { UpdateChecker::setPrompter(nullptr); }

    void firstRunShowsDefaults();
    void showsStoredValues();
    void cancelWritesNothing();
    void okWritesEveryKey();
    void settingsKeyDefaults();
    void checkNowSendsOneRequestPerCheck();
    void checkNowUsesProxyAsTypedNotAsStored();

private:
    QTemporaryDir m_store;
    RecordingPrompter m_prompter;
};

void TestSettingsDlg::firstRunShowsDefaults()
{
    SettingsDlg dlg;
    Controls c(dlg);
    QVERIFY(c.complete());
    QCOMPARE(dlg.windowTitle(), QStringLiteral("Preferences"));
    auto* tabs = dlg.findChild<QTabWidget*>();
    QVERIFY(tabs);
    QCOMPARE(tabs->count(), 2);
    QCOMPARE(tabs->tabText(0), QStringLiteral("HTTP Proxy"));
    QCOMPARE(tabs->tabText(1), QStringLiteral("Updates"));
    QVERIFY(tabs->widget(0)->isAncestorOf(c.proxyFrame));
    QVERIFY(c.proxyFrame->isAncestorOf(c.passwordLineEdit));
    QVERIFY(tabs->widget(1)->isAncestorOf(c.interval));

    QCOMPARE(c.proxyCheckBox->text(), QStringLiteral("Use a proxy to access the internet"));
    QCOMPARE(c.autoCheck->text(), QStringLiteral("Automatically check for updates"));
    QCOMPARE(c.checkNow->text(), QStringLiteral("Check Now"));
    QStringList labels;
    for (const QLabel* label : dlg.findChildren<QLabel*>())
        labels.append(label->text());
    for (const char* text : {"HTTP Proxy:", "Username:", "Password:", "Check every", "days"})
        QVERIFY2(labels.contains(QLatin1String(text)), text);
    QVERIFY(c.buttonBox->button(QDialogButtonBox::Ok));
    QVERIFY(c.buttonBox->button(QDialogButtonBox::Cancel));

    QCOMPARE(c.proxyPortSpinBox->minimum(), 0);
    QCOMPARE(c.proxyPortSpinBox->maximum(), 65535);
    QCOMPARE(c.interval->minimum(), 0);
    QCOMPARE(c.interval->maximum(), 365);

    QVERIFY(c.autoCheck->isChecked());
    QCOMPARE(c.interval->value(), 14);
    QVERIFY(!c.proxyCheckBox->isChecked());
    QVERIFY(!c.proxyFrame->isEnabled());
    QCOMPARE(c.proxyPortSpinBox->value(), 8080);
    QVERIFY(c.proxyLineEdit->text().isEmpty());
    QVERIFY(c.usernameLineEdit->text().isEmpty());
    QVERIFY(c.passwordLineEdit->text().isEmpty());

    // Opening the dialog reads only.
    QVERIFY(storedDialogKeys().isEmpty());

    c.proxyCheckBox->click();
    QVERIFY(c.proxyLineEdit->isEnabled());
    c.proxyCheckBox->click();
    QVERIFY(!c.passwordLineEdit->isEnabled());
}

void TestSettingsDlg::showsStoredValues()
{
    {
        QSettings settings;
        settings.setValue(QStringLiteral("update_never_check"), true);
        settings.setValue(QStringLiteral("update_check_interval_days"), 30);
        settings.setValue(QStringLiteral("use_proxy"), true);
        settings.setValue(QStringLiteral("proxy_host"), QStringLiteral("10.1.2.3"));
        settings.setValue(QStringLiteral("proxy_port"), 3128);
        settings.setValue(QStringLiteral("proxy_user"), QStringLiteral("site"));
        settings.setValue(QStringLiteral("proxy_password"), QStringLiteral("s3cret"));
    }
    SettingsDlg dlg;
    Controls c(dlg);
    QVERIFY(!c.autoCheck->isChecked());
    QCOMPARE(c.interval->value(), 30);
    QVERIFY(c.proxyCheckBox->isChecked());
    QVERIFY(c.proxyFrame->isEnabled());
    QCOMPARE(c.proxyLineEdit->text(), QStringLiteral("10.1.2.3"));
    QCOMPARE(c.proxyPortSpinBox->value(), 3128);
    QCOMPARE(c.usernameLineEdit->text(), QStringLiteral("site"));
    QCOMPARE(c.passwordLineEdit->text(), QStringLiteral("s3cret"));
}

void TestSettingsDlg::cancelWritesNothing()
{
    {
        SettingsDlg dlg;
        Controls c(dlg);
        c.changeAll();
        QTest::ignoreMessage(QtDebugMsg, "Dialog rejected, ignoring settings changes.");
        c.buttonBox->button(QDialogButtonBox::Cancel)->click();
        QCOMPARE(dlg.result(), int(QDialog::Rejected));
    }
    QCOMPARE(storedDialogKeys(), QStringList());

    // Stored values survive a cancelled edit too.
    QSettings().setValue(QStringLiteral("proxy_host"), QStringLiteral("kept.vorlux.example"));
    QSettings().setValue(QStringLiteral("update_check_interval_days"), 7);
    {
        SettingsDlg dlg;
        Controls c(dlg);
        c.changeAll();
        QTest::ignoreMessage(QtDebugMsg, "Dialog rejected, ignoring settings changes.");
        dlg.reject();
    }
    QCOMPARE(storedDialogKeys(),
             (QStringList{QStringLiteral("update_check_interval_days"), QStringLiteral("proxy_host")}));
    QCOMPARE(QSettings().value(QStringLiteral("proxy_host")).toString(),
             QStringLiteral("kept.vorlux.example"));
    QCOMPARE(QSettings().value(QStringLiteral("update_check_interval_days")).toInt(), 7);
}

void TestSettingsDlg::okWritesEveryKey()
{
    // Untouched first-run values are written as well.
    {
        SettingsDlg dlg;
        QTest::ignoreMessage(QtDebugMsg, "Dialog accepted, writing settings changes.");
        Controls(dlg).buttonBox->button(QDialogButtonBox::Ok)->click();
        QCOMPARE(dlg.result(), int(QDialog::Accepted));
    }
    QCOMPARE(storedDialogKeys(), DialogKeys);
    {
        QSettings settings;
        QCOMPARE(settings.value(QStringLiteral("update_never_check")).toBool(), false);
        QCOMPARE(settings.value(QStringLiteral("update_check_interval_days")).toInt(), 14);
        QCOMPARE(settings.value(QStringLiteral("use_proxy")).toBool(), false);
        QCOMPARE(settings.value(QStringLiteral("proxy_port")).toInt(), 8080);
    }

    {
        SettingsDlg dlg;
        Controls c(dlg);
        c.changeAll();
        QTest::ignoreMessage(QtDebugMsg, "Dialog accepted, writing settings changes.");
        dlg.accept();
    }
    {
        QSettings settings;
        QCOMPARE(settings.value(QStringLiteral("update_never_check")).toBool(), true);
        QCOMPARE(settings.value(QStringLiteral("update_check_interval_days")).toInt(), 0);
        QCOMPARE(settings.value(QStringLiteral("use_proxy")).toBool(), true);
        QCOMPARE(settings.value(QStringLiteral("proxy_host")).toString(),
                 QStringLiteral("proxy.vorlux.example"));
        QCOMPARE(settings.value(QStringLiteral("proxy_port")).toInt(), 3128);
        QCOMPARE(settings.value(QStringLiteral("proxy_user")).toString(), QStringLiteral("planner"));
        QCOMPARE(settings.value(QStringLiteral("proxy_password")).toString(), QStringLiteral(" pa ss "));
    }

    // Reopened, the dialog shows what was stored, the 0-day interval included; a ticked proxy box with
    // an empty host is kept as typed.
    {
        SettingsDlg dlg;
        Controls c(dlg);
        QCOMPARE(c.interval->value(), 0);
        QVERIFY(!c.autoCheck->isChecked());
        QVERIFY(c.proxyFrame->isEnabled());
        c.proxyLineEdit->clear();
        QTest::ignoreMessage(QtDebugMsg, "Dialog accepted, writing settings changes.");
        dlg.accept();
    }
    QCOMPARE(QSettings().value(QStringLiteral("use_proxy")).toBool(), true);
    QCOMPARE(QSettings().value(QStringLiteral("proxy_host")).toString(), QString());
}

void TestSettingsDlg::settingsKeyDefaults()
{
    using namespace RunplanSettings;
    QVERIFY(windowGeometry().isEmpty());
    QCOMPARE(lastDirPath(), QDir::homePath());
    QCOMPARE(maximizeFixtureFile(), QStringLiteral("data.csv"));
    // The line colour key shows until a stored value hides it.
    QVERIFY(lineKeyActive());
    setLineKeyActive(false);
    QVERIFY(!lineKeyActive());
    QCOMPARE(QSettings().value(QStringLiteral("rplan_line_key_active")).toBool(), false);
    // A cancelled file dialog stores an empty name, which is then what is proposed.
    setMaximizeFixtureFile(QString());
    QCOMPARE(maximizeFixtureFile(), QString());
}

void TestSettingsDlg::checkNowSendsOneRequestPerCheck()
{
    LoopbackHttpServer server;
    server.respondWith(200, versionFile(releaseXml(3, 3, 17, 0, 20250205)));
    UpdateHostOverride host(server.hostAndPort());

    SettingsDlg dlg;
    Controls c(dlg);
    QVERIFY(!dlg.updateChecker());
    c.checkNow->click();
    c.checkNow->click();
    QTRY_COMPARE_WITH_TIMEOUT(m_prompter.prompts.size(), 1, 5000);
    QCOMPARE(m_prompter.prompts.first().title, QStringLiteral("No Update Available"));
    QCOMPARE(m_prompter.prompts.first().text,
             QStringLiteral("You have the latest version: v3.3.17 build 0 - 20250205 Gold"));
    QTest::qWait(50);
    QCOMPARE(server.requestLines(), QList<QByteArray>{"GET /software/VxAppVersions.xml HTTP/1.1"});
    QCOMPARE(m_prompter.prompts.size(), 1);

    // A later press checks again with the same checker.
    UpdateChecker* checker = dlg.updateChecker();
    QVERIFY(checker);
    server.respondWith(200, versionFile(releaseXml(3, 3, 17, 0, 20250206)));
    c.checkNow->click();
    QTRY_COMPARE_WITH_TIMEOUT(m_prompter.prompts.size(), 2, 5000);
    QCOMPARE(m_prompter.prompts.last().title, QStringLiteral("Update Available"));
    QCOMPARE(server.requestCount(), 2);
    QCOMPARE(dlg.updateChecker(), checker);
}

void TestSettingsDlg::checkNowUsesProxyAsTypedNotAsStored()
{
    LoopbackHttpServer proxy;
    proxy.respondWith(200, versionFile(releaseXml(3, 3, 17, 0, 20250205)));
    {
        UpdateHostOverride host(QStringLiteral("updates.runplan.invalid"));
        SettingsDlg dlg;
        Controls c(dlg);
        c.proxyCheckBox->click();
        c.proxyLineEdit->setText(QStringLiteral("127.0.0.1"));
        c.proxyPortSpinBox->setValue(proxy.port());
        c.usernameLineEdit->setText(QStringLiteral("planner"));
        c.checkNow->click();
        QTRY_COMPARE_WITH_TIMEOUT(m_prompter.prompts.size(), 1, 5000);
        QCOMPARE(proxy.requestLines(),
                 QList<QByteArray>{"GET http://updates.runplan.invalid/software/VxAppVersions.xml HTTP/1.1"});
    }
    QVERIFY(storedDialogKeys().isEmpty());

    // A proxy filled in but not ticked, or ticked without a host, is not used.
    LoopbackHttpServer server;
    server.respondWith(200, versionFile(releaseXml(3, 3, 17, 0, 20250205)));
    UpdateHostOverride host(server.hostAndPort());
    SettingsDlg dlg;
    Controls c(dlg);
    c.proxyLineEdit->setText(QStringLiteral("127.0.0.1"));
    c.proxyPortSpinBox->setValue(proxy.port());
    c.checkNow->click();
    QTRY_COMPARE_WITH_TIMEOUT(server.requestCount(), 1, 5000);
    QTRY_COMPARE_WITH_TIMEOUT(m_prompter.prompts.size(), 2, 5000);

    c.proxyCheckBox->click();
    c.proxyLineEdit->clear();
    c.checkNow->click();
    QTRY_COMPARE_WITH_TIMEOUT(m_prompter.prompts.size(), 3, 5000);
    QCOMPARE(server.requestCount(), 2);
    QCOMPARE(proxy.requestCount(), 1);
}

QTEST_MAIN(TestSettingsDlg)
#include "tst_settingsdlg.moc"
