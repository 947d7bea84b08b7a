// The splash screen and the about box.
#include "app/AboutDialog.h"
#include "app/SplashScreen.h"

#include <QLabel>
#include <QtTest>

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

} // namespace

class TestSplashAbout : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase() { Q_INIT_RESOURCE(runplan); }
    void splashScreen();
    void aboutBox();
};

void TestSplashAbout::splashScreen()
{
    QCOMPARE(SplashScreen::versionLine(), QStringLiteral("Version: 3.17.0 20250205-2cbee83"));
    const QString holder = SplashScreen::holderLine();
    QVERIFY2(holder.startsWith(QChar(0x00A9)) && holder.contains(QString::number(QDate::currentDate().year())),
             qPrintable(holder));
    const QPixmap picture(QStringLiteral(":/splash.png"));
    QVERIFY(!picture.isNull());
    SplashScreen splash;
    QCOMPARE(splash.pixmap().size(), picture.size());
    QVERIFY(splash.windowFlags().testFlag(Qt::WindowStaysOnTopHint));
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
}

void TestSplashAbout::aboutBox()
{
    QWidget owner;
    AboutDialog about(&owner);
    const QSize pictureSize = QPixmap(QStringLiteral(":/splash.png")).size();
    QVERIFY(about.windowFlags().testFlag(Qt::FramelessWindowHint));
    QCOMPARE(about.versionLabel()->text() + about.holderLabel()->text(),
             SplashScreen::versionLine() + SplashScreen::holderLine());

    // A click anywhere closes it, on the picture or on a caption; it can be shown again.
    about.show();
    QVERIFY(QTest::qWaitForWindowExposed(&about));
    QCOMPARE(about.size(), pictureSize);
    // The captions sit at the bottom, version above holder, inside the margins.
    QVERIFY(about.versionLabel()->geometry().bottom() < about.holderLabel()->geometry().top());
    QVERIFY(about.rect().contains(about.holderLabel()->geometry()));
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

QTEST_MAIN(TestSplashAbout)
#include "tst_splashabout.moc"
