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
    QCOMPARE(dlg.percent(), 0);
    QCOMPARE(bar->text(), QStringLiteral("0%"));

    dlg.setPercent(42);
    QCOMPARE(dlg.percent(), 42);
    QCOMPARE(bar->text(), QStringLiteral("42%"));
    // Callers compute rows done / total rows; rounding may step outside the range.
    dlg.setPercent(140);
    QCOMPARE(bar->text(), QStringLiteral("100%"));
    dlg.setPercent(-3);
    QCOMPARE(bar->text(), QStringLiteral("0%"));

    dlg.setText(QStringLiteral("Maximizing..."));
    QCOMPARE(dlg.text(), QStringLiteral("Maximizing..."));
}

void TestLoadingDialog::cancelRejectsAndNotifies()
{
    LoadingDialog dlg;
    dlg.show();
    QVERIFY(QTest::qWaitForWindowExposed(&dlg));
    QVERIFY(dlg.cancelButton());
    QCOMPARE(dlg.cancelButton()->text(), QStringLiteral("Cancel"));

    QSignalSpy clicked(dlg.cancelButton(), &QPushButton::clicked);
    QSignalSpy rejected(&dlg, &QDialog::rejected);
    QTest::mouseClick(dlg.cancelButton(), Qt::LeftButton);
    QCOMPARE(clicked.count(), 1);
    QCOMPARE(rejected.count(), 1);
    QVERIFY(!dlg.isVisible());
    QCOMPARE(dlg.result(), int(QDialog::Rejected));

    // Escape cancels as well, which callers only see through rejected().
    dlg.show();
    QVERIFY(QTest::qWaitForWindowExposed(&dlg));
    QTest::keyClick(&dlg, Qt::Key_Escape);
    QCOMPARE(rejected.count(), 2);
    QCOMPARE(clicked.count(), 1);
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
