// Undo and redo in the main window: every kind of change goes back to the state a user would have
// made by hand (the saved bytes, the totals and the selection), and the recovery of a run that did
// not exit cleanly.

#include "WindowFixture.h"
#include "app/Autosave.h"
#include "app/commands/EditHistory.h"
#include "model/DocumentSnapshot.h"
#include "model/ProjectFile.h"
#include "model/view/CWidgetTableView.h"

#include <QLabel>
#include <QLineEdit>
#include <QSpinBox>
#include <QUndoStack>

class TestUndo : public QObject, WindowFixture
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init() { openWindow(true); }
    void cleanup() { closeWindow(); }

    void everyKindUndoAndRedo_data();
    void everyKindUndoAndRedo();
    void modifiedFlagAndMergedSteps();
    void crashedRunIsRecovered();

private:
    QUndoStack* stack() const { return m_window->history()->stack(); }
    // What a user sees of one state: the totals, the selection and the project as saved.
    QString seen() const;

    QTemporaryDir m_data; // the per-user application-data folder of this test
};

void TestUndo::initTestCase()
{
    QVERIFY(m_data.isValid());
    qputenv("XDG_DATA_HOME", m_data.path().toUtf8());
    QVERIFY2(Database::instance()->isValid(), "the catalog beside the test must load");
}

QString TestUndo::seen() const
{
    QStringList parts{find<QLabel>("m_DL_TotalFixtures_Label")->text(),
                      find<QLineEdit>("m_DL_TotalPowerWatts_Edit")->text(),
                      find<QLineEdit>("m_DL_TotalPowerAmps_Edit")->text(),
                      m_window->lastResult().pass ? "pass" : "fail", "| selection"};
    const CWidget* current = doc()->current();
    if (current) // "-" tells "the top-level component" from "nothing"
        parts << "-";
    for (int row : DocumentSnapshot::pathOf(current))
        parts << QString::number(row);
    return parts.join(' ') + '\n' + QString::fromUtf8(ProjectFile::toBytes(*doc(), *m_window));
}

void TestUndo::everyKindUndoAndRedo_data()
{
    QTest::addColumn<QString>("prefix");
    QTest::addColumn<QString>("command");
    for (const QString& line : dataLines("app/undo-steps.txt")) {
        const QStringList cells = line.split('|');
        QTest::newRow(qPrintable(cells.value(0).trimmed())) << cells.value(1) << cells.value(2);
    }
}

void TestUndo::everyKindUndoAndRedo()
{
    QFETCH(QString, prefix);
    QFETCH(QString, command);
    const QString text = QString::fromLatin1(QTest::currentDataTag());
    run(prefix);
    const QString before = seen();
    const int steps = stack()->count();
    run(command);
    const QString after = seen();
    QVERIFY(after != before);
    QCOMPARE(stack()->count(), steps + 1);
    QAction* undo = find<QAction>("actionUndo");
    QAction* redo = find<QAction>("actionRedo");
    QCOMPARE(undo->text(), "Undo " + text);
    QVERIFY(undo->isEnabled() && !redo->isEnabled());

    undo->trigger();
    QCOMPARE(seen(), before);
    QCOMPARE(redo->text(), "Redo " + text);
    redo->trigger();
    QCOMPARE(seen(), after);
    QCOMPARE(m_window->propertyTable()->shownComponent(), doc()->current());
    undo->trigger();
    QCOMPARE(seen(), before);
    QCOMPARE(m_window->propertyTable()->shownComponent(), doc()->current());
}

void TestUndo::modifiedFlagAndMergedSteps()
{
    run("fixture, jumper");
    QVERIFY(m_window->saveProject(m_dir->filePath("saved.rpproj")));
    QVERIFY(!doc()->isModified());

    // Undo back to the saved state clears the flag; redo away from it sets it.
    run("fixture");
    QVERIFY(doc()->isModified());
    stack()->undo();
    QVERIFY(!doc()->isModified());
    stack()->redo();
    QVERIFY(doc()->isModified());
    stack()->undo();

    // "Other" shows a spin box whose value is used, also after a change of fixture; a listed
    // value hides it again. Repeated changes of one spin box are one step, undone at once; a spin
    // box turned back to where it started leaves no step; the other spin box makes its own.
    QSpinBox* volts = find<QSpinBox>("m_DL_LineVoltage_Spin");
    QSpinBox* amps = find<QSpinBox>("m_DL_MaxLoad_Spin");
    QVERIFY(volts->isHidden() && amps->isHidden());
    run("m_DL_LineVoltage_Combo=Other, m_DL_MaxLoad_Combo=Other, m_DLFixture_Combo=Linea Cove Dynaline 2ft");
    QVERIFY(!volts->isHidden() && !amps->isHidden());
    const int steps = stack()->count();
    const QString other = seen();
    const int start = volts->value();
    volts->setValue(200);
    volts->setValue(start);
    QCOMPARE(stack()->count(), steps);
    for (int value : {200, 210, 230})
        volts->setValue(value);
    QCOMPARE(stack()->count(), steps + 1);
    amps->setValue(25);
    QCOMPARE(stack()->count(), steps + 2);
    QCOMPARE(m_window->circuitInputs().lineVoltage, 230.0);
    QCOMPARE(m_window->circuitInputs().maxCircuitLoad, 25.0);
    QCOMPARE(find<QLabel>("m_DL_DerateLoad_Label")->text(), QStringLiteral("(derated to 20 amps)"));
    stack()->undo();
    stack()->undo();
    QCOMPARE(seen(), other);
    run("m_DL_LineVoltage_Combo=100, m_DL_MaxLoad_Combo=20");
    QVERIFY(volts->isHidden() && amps->isHidden());
    QCOMPARE(m_window->circuitInputs().lineVoltage, 100.0);
    QCOMPARE(m_window->circuitInputs().maxCircuitLoad, 20.0);
    QCOMPARE(find<QLabel>("m_DL_DerateLoad_Label")->text(), QStringLiteral("(derated to 16 amps)"));

    // The exports drive the configuration without adding to the history.
    m_prompter->answers << m_dir->filePath("max.csv");
    const int before = stack()->count();
    trigger("actionMaximizeFixture");
    QVERIFY(QFile::exists(m_dir->filePath("max.csv")));
    QCOMPARE(stack()->count(), before);

    // New leaves nothing to save, also when reached again by redo.
    run("new");
    QVERIFY(!doc()->isModified());
    stack()->undo();
    stack()->redo();
    QVERIFY(!doc()->isModified());
}

void TestUndo::crashedRunIsRecovered()
{
    // A run with unsaved changes writes its recovery file; a second window does not take the
    // file of a window that is still running. (No fixed jumper: reading a file gives those the
    // constructor's length, so a recovered one would differ as a reopened one does.)
    run("m_DL_LineVoltage_Combo=100, leader, fixture");
    const QString crashed = seen().section('|', 0, 0) + seen().section('\n', 1);
    m_window->autosave()->writeNow();
    const QString written = m_window->autosave()->store().filePath();
    QVERIFY(QFile::exists(written));
    {
        Runplan other;
        other.setPrompter(m_prompter);
        QVERIFY(!other.offerRecovery());
        QVERIFY(!m_prompter->asked.contains("recover"));
    }

    // What a crash leaves: the files without a living owner. A clean exit removes its own.
    const QString left = QFileInfo(written).dir().filePath("runplan-0-1");
    QVERIFY(QFile::copy(written, left + ".rpproj"));
    QVERIFY(QFile::copy(QString(written).replace(".rpproj", ".origin"), left + ".origin"));
    cleanup();
    QVERIFY(!QFile::exists(written));
    init();
    QVERIFY(seen() != crashed);

    // Discard keeps the fresh configuration and the file is gone; Recover restores the tree.
    QVERIFY(QFile::copy(left + ".rpproj", left + "-2.rpproj"));
    m_prompter->answers << false << true;
    QVERIFY(m_window->offerRecovery());
    QCOMPARE(m_prompter->asked, (QStringList{"recover", "recover"}));
    QCOMPARE(m_prompter->lastArgs, QStringList{"Untitled.rpproj"});
    QCOMPARE(seen().section('|', 0, 0) + seen().section('\n', 1), crashed);
    QVERIFY(doc()->isModified());
    QVERIFY(!QFile::exists(left + ".rpproj") && !QFile::exists(left + "-2.rpproj"));
}

QTEST_MAIN(TestUndo)
#include "tst_undo.moc"
