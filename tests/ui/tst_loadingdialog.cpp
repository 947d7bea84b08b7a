#include "update/LoadingDialog.h"

#include <QProgressBar>
#include <QPushButton>
#include <QtTest>

class TestLoadingDialog : public QObject
{
    Q_OBJECT

private slots:
    void percentCancelAndPlace();
};

void TestLoadingDialog::percentCancelAndPlace()
{
    QWidget window;
    window.setGeometry(200, 150, 800, 600);
    window.show();
    LoadingDialog dlg;
    QVERIFY(dlg.isModal());
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
    QVERIFY2(offset.manhattanLength() <= 2, qPrintable(QStringLiteral("off by %1,%2").arg(offset.x()).arg(offset.y())));
    QTest::mouseClick(dlg.cancelButton(), Qt::LeftButton);
    QCOMPARE(rejected.count(), 1);
    QVERIFY(!dlg.isVisible());
    dlg.show();
    QVERIFY(QTest::qWaitForWindowExposed(&dlg));
    QTest::keyClick(&dlg, Qt::Key_Escape);
    QCOMPARE(rejected.count(), 2);
}

QTEST_MAIN(TestLoadingDialog)
#include "tst_loadingdialog.moc"
