#include "update/LoadingDialog.h"

#include <QProgressBar>
#include <QPushButton>
#include <QSignalSpy>
#include <QtTest>

class TestLoadingDialog : public QObject
{
    Q_OBJECT

private slots:
    void showsPercentage();
    void cancelRejectsAndNotifies();
    void centresOnWindow();
};

void TestLoadingDialog::showsPercentage()
{
    LoadingDialog dlg;
    QVERIFY(dlg.isModal());
    auto* bar = dlg.findChild<QProgressBar*>();
    QVERIFY(bar);
    // Callers compute rows done / total rows; rounding may step outside the range.
    QStringList shown{bar->text()};
    for (int percent : {42, 140, -3}) {
        dlg.setPercent(percent);
        shown << bar->text();
    }
    QCOMPARE(shown, QStringList({"0%", "42%", "100%", "0%"}));
}

void TestLoadingDialog::cancelRejectsAndNotifies()
{
    LoadingDialog dlg;
    dlg.show();
    QVERIFY(QTest::qWaitForWindowExposed(&dlg));
    QSignalSpy rejected(&dlg, &QDialog::rejected);
    QTest::mouseClick(dlg.cancelButton(), Qt::LeftButton);
    QCOMPARE(rejected.count(), 1);
    QVERIFY(!dlg.isVisible());

    // Escape cancels as well, which callers only see through rejected().
    dlg.show();
    QVERIFY(QTest::qWaitForWindowExposed(&dlg));
    QTest::keyClick(&dlg, Qt::Key_Escape);
    QCOMPARE(rejected.count(), 2);
}

void TestLoadingDialog::centresOnWindow()
{
    QWidget window;
    window.setGeometry(200, 150, 800, 600);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));

    LoadingDialog dlg;
    dlg.showCentredOn(&window);
    QVERIFY(QTest::qWaitForWindowExposed(&dlg));
    const QPoint offset = dlg.frameGeometry().center() - window.frameGeometry().center();
    QVERIFY2(offset.manhattanLength() <= 2,
             qPrintable(QStringLiteral("off by %1,%2").arg(offset.x()).arg(offset.y())));
}

QTEST_MAIN(TestLoadingDialog)
#include "tst_loadingdialog.moc"
