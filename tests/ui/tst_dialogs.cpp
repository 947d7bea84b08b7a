// The small windows: splash screen, about box, progress dialog and preferences.
#include "app/AboutDialog.h"
#include "app/SplashScreen.h"
#include "update/LoadingDialog.h"
#include "update/SettingsDlg.h"
#include "update/SettingsKeys.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QFrame>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QSpinBox>
#include <QtTest>

#include <functional>

namespace
{
// Near-white pixels in a band of an image: the caption's letters on the dark picture.
int whitePixels(const QImage& img, const QRect& band)
{
    const QRect inside = band & img.rect();
    int count = 0;
    for (int y = inside.top(); y <= inside.bottom(); ++y)
        for (int x = inside.left(); x <= inside.right(); ++x)
            count += qMin(qMin(qRed(img.pixel(x, y)), qGreen(img.pixel(x, y))), qBlue(img.pixel(x, y))) > 200;
    return count;
}

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
template <class Control> Control* control(const SettingsDlg& dlg, const char* name)
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

// What a dialog opened now shows: port, automatic check, proxy on, proxy frame enabled, interval,
// password.
QVariantList shown()
{
    const SettingsDlg dlg;
    return {control<QSpinBox>(dlg, "proxyPortSpinBox")->value(),
            control<QCheckBox>(dlg, "autoCheckForUpdatesCheckbox")->isChecked(),
            control<QCheckBox>(dlg, "proxyCheckBox")->isChecked(),
            control<QFrame>(dlg, "proxyFrame")->isEnabled(),
            control<QSpinBox>(dlg, "checkForUpdateEveryNDaysSpinBox")->value(),
            control<QLineEdit>(dlg, "passwordLineEdit")->text()};
}
} // namespace

class TestDialogs : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        Q_INIT_RESOURCE(runplan);
        QVERIFY(m_store.isValid());
        QCoreApplication::setOrganizationName(QStringLiteral("Vorlux"));
        QCoreApplication::setApplicationName(QStringLiteral("Runplan"));
        // A store of our own, so that clearing it cannot disturb other test programs.
        QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, m_store.path());
        QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, m_store.path());
        QVERIFY(QSettings().fileName().startsWith(m_store.path()));
    }
    void init() { QSettings().clear(); }

    void splashAndAboutBox();
    void loadingDialog();
    void okWritesEveryKeyCancelNone();
    void unreadableValuesTakeDefaults();
    void storeIsReadableByItsOwnerOnly();

private:
    QTemporaryDir m_store;
};

void TestDialogs::splashAndAboutBox()
{
    QCOMPARE(SplashScreen::versionLine(), QStringLiteral("Version: 3.17.0 20250205-2cbee83"));
    const QString holder = SplashScreen::holderLine();
    QVERIFY2(holder.startsWith(QChar(0x00A9)) &&
                 holder.contains(QString::number(QDate::currentDate().year())),
             qPrintable(holder));
    const QPixmap picture(QStringLiteral(":/splash.png"));
    QVERIFY(!picture.isNull());
    SplashScreen splash;
    QCOMPARE(splash.pixmap().size(), picture.size());
    splash.show();
    QVERIFY(QTest::qWaitForWindowExposed(&splash));

    // The two caption lines are drawn in white near the bottom edge, over a picture that has no
    // white there.
    const QImage shown = splash.grab().toImage();
    const QImage plain = picture.toImage();
    const int m = QFontMetrics(SplashScreen::captionFont()).height();
    for (const QRect& band : {QRect(0, shown.height() - 20, shown.width(), m),        // holder
                              QRect(0, shown.height() - 22 - m, shown.width(), m)}) { // version
        QCOMPARE(whitePixels(plain, band), 0);
        QVERIFY(whitePixels(shown, band) > 20);
    }

    splash.killSplash();
    QVERIFY(!splash.isVisible());

    // The about box: the same picture and captions.
    QWidget owner;
    AboutDialog about(&owner);
    QCOMPARE(about.versionLabel()->text() + about.holderLabel()->text(),
             SplashScreen::versionLine() + SplashScreen::holderLine());
    about.show();
    QVERIFY(QTest::qWaitForWindowExposed(&about));
    QCOMPARE(about.size(), picture.size());
    // The captions sit at the bottom, version above holder, inside the margins.
    QVERIFY(about.versionLabel()->geometry().bottom() < about.holderLabel()->geometry().top());
    QVERIFY(about.rect().contains(about.holderLabel()->geometry()));
    // A click anywhere closes it, on the picture or on a caption; it can be shown again.
    QTest::mouseClick(&about, Qt::LeftButton, {}, QPoint(10, 10));
    QVERIFY(!about.isVisible());
    about.show();
    QTest::mouseClick(about.holderLabel(), Qt::RightButton, {}, QPoint(2, 2));
    QVERIFY(!about.isVisible());
    // Other events go on as usual.
    about.show();
    QTest::keyClick(&about, Qt::Key_A);
    QVERIFY(about.isVisible());
}

void TestDialogs::loadingDialog()
{
    QWidget window;
    window.setGeometry(200, 150, 800, 600);
    window.show();
    LoadingDialog dlg;
    // Callers compute rows done / total rows; rounding may step outside the range.
    auto* bar = dlg.findChild<QProgressBar*>();
    QStringList shown{bar->text()};
    for (int percent : {42, 140, -3}) {
        dlg.setPercent(percent);
        shown << bar->text();
    }
    QCOMPARE(shown, QStringList({"0%", "42%", "100%", "0%"}));

    // Shown centred on the window; the button and Escape cancel, which callers see through rejected().
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    QSignalSpy rejected(&dlg, &QDialog::rejected);
    dlg.showCentredOn(&window);
    QVERIFY(QTest::qWaitForWindowExposed(&dlg));
    const QPoint offset = dlg.frameGeometry().center() - window.frameGeometry().center();
    QVERIFY2(offset.manhattanLength() <= 2,
             qPrintable(QStringLiteral("off by %1,%2").arg(offset.x()).arg(offset.y())));
    QTest::mouseClick(dlg.cancelButton(), Qt::LeftButton);
    QCOMPARE(rejected.count(), 1);
    QVERIFY(!dlg.isVisible());
    dlg.show();
    QVERIFY(QTest::qWaitForWindowExposed(&dlg));
    QTest::keyClick(&dlg, Qt::Key_Escape);
    QCOMPARE(rejected.count(), 2);
}

void TestDialogs::okWritesEveryKeyCancelNone()
{
    // On a first run nothing is stored and the proxy is off; Ok writes the untouched values too.
    QCOMPARE(shown(), (QVariantList{8080, true, false, false, 14, ""}));
    QVERIFY(stored().isEmpty());
    {
        const SettingsDlg dlg;
        control<QDialogButtonBox>(dlg, "buttonBox")->button(QDialogButtonBox::Ok)->click();
        QCOMPARE(dlg.result(), int(QDialog::Accepted));
    }
    const QStringList firstRun({"proxy_host=", "proxy_password=", "proxy_port=8080",
                                "proxy_user=", "update_check_interval_days=14", "update_never_check=false",
                                "use_proxy=false"});
    QCOMPARE(stored(), firstRun);
    {
        const SettingsDlg dlg;
        changeAll(dlg);
        control<QDialogButtonBox>(dlg, "buttonBox")->button(QDialogButtonBox::Cancel)->click();
        QCOMPARE(dlg.result(), int(QDialog::Rejected));
    }
    QCOMPARE(stored(), firstRun);
    {
        const SettingsDlg dlg;
        changeAll(dlg);
        control<QDialogButtonBox>(dlg, "buttonBox")->button(QDialogButtonBox::Ok)->click();
    }
    QCOMPARE(stored(), QStringList({"proxy_host=proxy.vorlux.example", "proxy_password= pa ss ",
                                    "proxy_port=3128", "proxy_user=planner", "update_check_interval_days=0",
                                    "update_never_check=true", "use_proxy=true"}));

    // Reopened, the dialog shows what was stored, the 0-day interval included.
    QCOMPARE(shown(), (QVariantList{3128, false, true, true, 0, " pa ss "}));
}

void TestDialogs::unreadableValuesTakeDefaults()
{
    {
        QSettings settings;
        settings.setValue(QStringLiteral("proxy_port"), QStringLiteral("abc"));
        settings.setValue(QStringLiteral("update_never_check"), QStringLiteral("maybe"));
        settings.setValue(QStringLiteral("use_proxy"), QStringLiteral("yes"));
        settings.setValue(QStringLiteral("update_check_interval_days"), 400); // beyond the control's 365
    }
    QCOMPARE(shown(), (QVariantList{8080, true, false, false, 14, ""}));
    // Readable values, as this program and hand editing write them, are taken.
    {
        QSettings settings;
        settings.setValue(QStringLiteral("proxy_port"), QStringLiteral(" 3128 "));
        settings.setValue(QStringLiteral("update_never_check"), QStringLiteral("TRUE"));
        settings.setValue(QStringLiteral("use_proxy"), 1);
    }
    QCOMPARE(shown(), (QVariantList{3128, false, true, true, 14, ""}));
}

void TestDialogs::storeIsReadableByItsOwnerOnly()
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
            control<QDialogButtonBox>(dlg, "buttonBox")->button(QDialogButtonBox::Ok)->click();
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

QTEST_MAIN(TestDialogs)
#include "tst_dialogs.moc"
