#include "update/SettingsDlg.h"
#include "update/SettingsKeys.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QDir>
#include <QFile>
#include <QFrame>
#include <QLineEdit>
#include <QPushButton>
#include <QSettings>
#include <QSpinBox>
#include <QTemporaryDir>
#include <QtTest>

#include <functional>

namespace
{
const QStringList DialogKeys{
    QStringLiteral("update_never_check"), QStringLiteral("update_check_interval_days"),
    QStringLiteral("use_proxy"),          QStringLiteral("proxy_host"),
    QStringLiteral("proxy_port"),         QStringLiteral("proxy_user"),
    QStringLiteral("proxy_password")};

// Every stored dialog key as "key=value".
QStringList stored()
{
    QSettings settings;
    QStringList present;
    for (const QString& key : DialogKeys) {
        if (settings.contains(key))
            present.append(key + '=' + settings.value(key).toString());
    }
    return present;
}

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
          interval(dlg.findChild<QSpinBox*>(QStringLiteral("checkForUpdateEveryNDaysSpinBox"))),
          buttonBox(dlg.findChild<QDialogButtonBox*>(QStringLiteral("buttonBox")))
    {
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
    void press(QDialogButtonBox::StandardButton which) const
    {
        QTest::ignoreMessage(QtDebugMsg, which == QDialogButtonBox::Ok
                                             ? "Dialog accepted, writing settings changes."
                                             : "Dialog rejected, ignoring settings changes.");
        buttonBox->button(which)->click();
    }

    QCheckBox* proxyCheckBox;
    QFrame* proxyFrame;
    QLineEdit* proxyLineEdit;
    QSpinBox* proxyPortSpinBox;
    QLineEdit* usernameLineEdit;
    QLineEdit* passwordLineEdit;
    QCheckBox* autoCheck;
    QSpinBox* interval;
    QDialogButtonBox* buttonBox;
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
    void init() { QSettings().clear(); }

    void cancelWritesNothing();
    void okWritesEveryKey();
    void unreadableValuesTakeDefaults();
    void storeIsReadableByItsOwnerOnly();

private:
    QTemporaryDir m_store;
};

void TestSettingsDlg::cancelWritesNothing()
{
    QSettings().setValue(QStringLiteral("proxy_host"), QStringLiteral("kept.vorlux.example"));
    {
        SettingsDlg dlg;
        Controls c(dlg);
        c.changeAll();
        c.press(QDialogButtonBox::Cancel);
        QCOMPARE(dlg.result(), int(QDialog::Rejected));
    }
    QCOMPARE(stored(), QStringList{QStringLiteral("proxy_host=kept.vorlux.example")});
}

void TestSettingsDlg::okWritesEveryKey()
{
    // On a first run nothing is stored and the proxy is off; Ok writes the untouched values too.
    {
        SettingsDlg dlg;
        Controls c(dlg);
        QVERIFY(!c.proxyFrame->isEnabled());
        QVERIFY(stored().isEmpty());
        c.press(QDialogButtonBox::Ok);
        QCOMPARE(dlg.result(), int(QDialog::Accepted));
    }
    QCOMPARE(stored(),
             QStringList({"update_never_check=false", "update_check_interval_days=14", "use_proxy=false",
                          "proxy_host=", "proxy_port=8080", "proxy_user=", "proxy_password="}));
    {
        SettingsDlg dlg;
        Controls c(dlg);
        c.changeAll();
        c.press(QDialogButtonBox::Ok);
    }
    const QStringList changed({"update_never_check=true", "update_check_interval_days=0", "use_proxy=true",
                               "proxy_host=proxy.vorlux.example", "proxy_port=3128", "proxy_user=planner",
                               "proxy_password= pa ss "});
    QCOMPARE(stored(), changed);

    // Reopened, the dialog shows what was stored, the 0-day interval included.
    SettingsDlg dlg;
    Controls c(dlg);
    QCOMPARE(c.interval->value(), 0);
    QVERIFY(!c.autoCheck->isChecked());
    QVERIFY(c.proxyFrame->isEnabled());
    QCOMPARE(c.passwordLineEdit->text(), QStringLiteral(" pa ss "));
}

void TestSettingsDlg::unreadableValuesTakeDefaults()
{
    {
        QSettings settings;
        settings.setValue(QStringLiteral("proxy_port"), QStringLiteral("abc"));
        settings.setValue(QStringLiteral("update_never_check"), QStringLiteral("maybe"));
        settings.setValue(QStringLiteral("use_proxy"), QStringLiteral("yes"));
        settings.setValue(QStringLiteral("update_check_interval_days"), 400); // beyond the control's 365
    }
    {
        SettingsDlg dlg;
        Controls c(dlg);
        QCOMPARE(c.proxyPortSpinBox->value(), 8080);
        QVERIFY(c.autoCheck->isChecked());
        QVERIFY(!c.proxyCheckBox->isChecked());
        QVERIFY(!c.proxyFrame->isEnabled());
        QCOMPARE(c.interval->value(), 14);
    }
    // Readable values, as this program and hand editing write them, are taken.
    {
        QSettings settings;
        settings.setValue(QStringLiteral("proxy_port"), QStringLiteral(" 3128 "));
        settings.setValue(QStringLiteral("update_never_check"), QStringLiteral("TRUE"));
        settings.setValue(QStringLiteral("use_proxy"), 1);
    }
    SettingsDlg dlg;
    Controls c(dlg);
    QCOMPARE(c.proxyPortSpinBox->value(), 3128);
    QVERIFY(!c.autoCheck->isChecked());
    QVERIFY(c.proxyCheckBox->isChecked());
}

void TestSettingsDlg::storeIsReadableByItsOwnerOnly()
{
    // The store holds the proxy password: after every write only its owner may read it, also
    // when the file was readable by others before.
    const QString path = QSettings().fileName();
    const auto othersMay =
        QFileDevice::ReadGroup | QFileDevice::WriteGroup | QFileDevice::ReadOther | QFileDevice::WriteOther;
    const auto shared =
        QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ReadGroup | QFileDevice::ReadOther;
    const QList<std::function<void()>> writes{
        [] {
            SettingsDlg dlg;
            Controls c(dlg);
            c.passwordLineEdit->setText(QStringLiteral("secret"));
            c.press(QDialogButtonBox::Ok);
        },
        [] { RunplanSettings::setLastDirPath(QDir::tempPath()); },
        [] { RunplanSettings::setMaximizeFixtureFile(QStringLiteral("out.csv")); },
    };
    for (const auto& write : writes) {
        QSettings().setValue(QStringLiteral("rp_window_geometry"), QByteArray("x"));
        QSettings().sync();
        QVERIFY(QFile::setPermissions(path, shared));
        write();
        QVERIFY(QFile::exists(path));
        QCOMPARE(QFile::permissions(path) & othersMay, QFileDevice::Permissions());
        QVERIFY(QFile::permissions(path) & QFileDevice::ReadOwner);
    }
}

QTEST_MAIN(TestSettingsDlg)
#include "tst_settingsdlg.moc"
