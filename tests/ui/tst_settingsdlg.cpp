#include "update/SettingsDlg.h"
#include "update/SettingsKeys.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QFrame>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QtTest>

#include <functional>

namespace
{
// Every stored key as "key=value", in the order of the keys.
QStringList stored()
{
    QSettings settings;
    QStringList present;
    for (const QString& key : settings.allKeys())
        present.append(key + '=' + settings.value(key).toString());
    return present;
}

// One control of the dialog, by its object name.
template<class Control>
Control* control(const SettingsDlg& dlg, const char* name)
{
    return dlg.findChild<Control*>(QLatin1String(name));
}

// Gives every control a value other than its first-run one.
void changeAll(const SettingsDlg& dlg)
{
    control<QCheckBox>(dlg, "proxyCheckBox")->click();
    control<QLineEdit>(dlg, "proxyLineEdit")->setText(QStringLiteral("proxy.vorlux.example"));
    control<QSpinBox>(dlg, "proxyPortSpinBox")->setValue(3128);
    control<QLineEdit>(dlg, "usernameLineEdit")->setText(QStringLiteral("planner"));
    control<QLineEdit>(dlg, "passwordLineEdit")->setText(QStringLiteral(" pa ss "));
    control<QCheckBox>(dlg, "autoCheckForUpdatesCheckbox")->click();
    control<QSpinBox>(dlg, "checkForUpdateEveryNDaysSpinBox")->setValue(0);
}

void press(const SettingsDlg& dlg, QDialogButtonBox::StandardButton which)
{
    QTest::ignoreMessage(QtDebugMsg, which == QDialogButtonBox::Ok ? "Dialog accepted, writing settings changes."
                                                                   : "Dialog rejected, ignoring settings changes.");
    control<QDialogButtonBox>(dlg, "buttonBox")->button(which)->click();
}

// What a dialog opened now shows: port, automatic check, proxy on, proxy frame enabled, interval.
QVariantList shown()
{
    const SettingsDlg dlg;
    return {control<QSpinBox>(dlg, "proxyPortSpinBox")->value(),
            control<QCheckBox>(dlg, "autoCheckForUpdatesCheckbox")->isChecked(),
            control<QCheckBox>(dlg, "proxyCheckBox")->isChecked(), control<QFrame>(dlg, "proxyFrame")->isEnabled(),
            control<QSpinBox>(dlg, "checkForUpdateEveryNDaysSpinBox")->value()};
}
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

    void okWritesEveryKeyCancelNone();
    void unreadableValuesTakeDefaults();
    void storeIsReadableByItsOwnerOnly();

private:
    QTemporaryDir m_store;
};

void TestSettingsDlg::okWritesEveryKeyCancelNone()
{
    // On a first run nothing is stored and the proxy is off; Ok writes the untouched values too.
    QCOMPARE(shown(), (QVariantList{8080, true, false, false, 14}));
    QVERIFY(stored().isEmpty());
    {
        const SettingsDlg dlg;
        press(dlg, QDialogButtonBox::Ok);
        QCOMPARE(dlg.result(), int(QDialog::Accepted));
    }
    const QStringList firstRun({"proxy_host=", "proxy_password=", "proxy_port=8080", "proxy_user=",
                                "update_check_interval_days=14", "update_never_check=false", "use_proxy=false"});
    QCOMPARE(stored(), firstRun);
    {
        const SettingsDlg dlg;
        changeAll(dlg);
        press(dlg, QDialogButtonBox::Cancel);
        QCOMPARE(dlg.result(), int(QDialog::Rejected));
    }
    QCOMPARE(stored(), firstRun);
    {
        const SettingsDlg dlg;
        changeAll(dlg);
        press(dlg, QDialogButtonBox::Ok);
    }
    QCOMPARE(stored(), QStringList({"proxy_host=proxy.vorlux.example", "proxy_password= pa ss ", "proxy_port=3128",
                                    "proxy_user=planner", "update_check_interval_days=0", "update_never_check=true",
                                    "use_proxy=true"}));

    // Reopened, the dialog shows what was stored, the 0-day interval included.
    QCOMPARE(shown(), (QVariantList{3128, false, true, true, 0}));
    const SettingsDlg dlg;
    QCOMPARE(control<QLineEdit>(dlg, "passwordLineEdit")->text(), QStringLiteral(" pa ss "));
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
    QCOMPARE(shown(), (QVariantList{8080, true, false, false, 14}));
    // Readable values, as this program and hand editing write them, are taken.
    {
        QSettings settings;
        settings.setValue(QStringLiteral("proxy_port"), QStringLiteral(" 3128 "));
        settings.setValue(QStringLiteral("update_never_check"), QStringLiteral("TRUE"));
        settings.setValue(QStringLiteral("use_proxy"), 1);
    }
    QCOMPARE(shown(), (QVariantList{3128, false, true, true, 14}));
}

void TestSettingsDlg::storeIsReadableByItsOwnerOnly()
{
    // The store holds the proxy password: after every write only its owner may read it, also
    // when the file was readable by others before.
    const QString path = QSettings().fileName();
    const auto othersMay =
        QFileDevice::ReadGroup | QFileDevice::WriteGroup | QFileDevice::ReadOther | QFileDevice::WriteOther;
    const QList<std::function<void()>> writes{
        [] {
            const SettingsDlg dlg;
            control<QLineEdit>(dlg, "passwordLineEdit")->setText(QStringLiteral("secret"));
            press(dlg, QDialogButtonBox::Ok);
        },
        [] { RunplanSettings::setLastDirPath(QDir::tempPath()); },
        [] { RunplanSettings::setMaximizeFixtureFile(QStringLiteral("out.csv")); },
    };
    for (const auto& write : writes) {
        QSettings().setValue(QStringLiteral("rp_window_geometry"), QByteArray("x"));
        QSettings().sync();
        QVERIFY(QFile::setPermissions(path, QFileDevice::ReadOwner | QFileDevice::WriteOwner | othersMay));
        write();
        QVERIFY(QFile::exists(path));
        QCOMPARE(QFile::permissions(path) & othersMay, QFileDevice::Permissions());
        QVERIFY(QFile::permissions(path) & QFileDevice::ReadOwner);
    }
}

QTEST_MAIN(TestSettingsDlg)
#include "tst_settingsdlg.moc"
