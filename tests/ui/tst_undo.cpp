// Undo and redo in the main window: every kind of change goes back to the state a user would have
// made by hand (the saved bytes, the totals and the selection), and the recovery of a run that did
// not exit cleanly.

#include "TestSupport.h"
#include "app/Autosave.h"
#include "app/Prompter.h"
#include "app/Runplan.h"
#include "app/commands/EditHistory.h"
#include "catalog/Database.h"
#include "model/CWidget.h"
#include "model/CWidgetModel.h"
#include "model/ConfigDocument.h"
#include "model/DocumentSnapshot.h"
#include "model/ProjectFile.h"
#include "model/view/CWidgetTableView.h"

#include <QAction>
#include <QComboBox>
#include <QDialog>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSettings>
#include <QSpinBox>
#include <QTemporaryDir>
#include <QTest>
#include <QUndoStack>

#include <functional>

// Says yes to every question but counts them; recovery answers come from a queue.
class YesPrompter : public Prompter
{
public:
    QList<bool> recoverAnswers;
    QStringList recoverNames;
    QString saveAnswer;
    int questions = 0;

    QString getOpenFileName(QWidget*, const QString&, const QString&, const QString&) override { return {}; }
    QString getSaveFileName(QWidget*, const QString&, const QString&, const QString&) override
    {
        return saveAnswer;
    }
    bool askClearConfiguration(QWidget*) override { return ++questions > 0; }
    SaveChoice askSaveChanges(QWidget*, const QString&) override
    {
        ++questions;
        return SaveChoice::Discard;
    }
    bool askReplace(QWidget*, const QString&) override { return ++questions > 0; }
    bool confirmDelete(QWidget*) override { return ++questions > 0; }
    bool askReplaceNotReadWhole(QWidget*, const QString&) override { return ++questions > 0; }
    int execDialog(QDialog*) override { return QDialog::Rejected; }
    bool askRecover(QWidget*, const QString& name) override
    {
        recoverNames << name;
        return recoverAnswers.isEmpty() ? false : recoverAnswers.takeFirst();
    }
};

// What a user sees of one state: the project as saved, the totals and the selection.
struct Seen {
    QByteArray bytes;
    QString totals;
    QList<int> selection;
    bool operator==(const Seen& o) const
    {
        return bytes == o.bytes && totals == o.totals && selection == o.selection;
    }
};
QT_BEGIN_NAMESPACE
namespace QTest
{
template <> char* toString(const Seen& s)
{
    QStringList rows;
    for (int r : s.selection)
        rows << QString::number(r);
    return qstrdup(qPrintable(s.totals + QStringLiteral(" | selection ") + rows.join(u'/') +
                              QLatin1Char('\n') + QString::fromUtf8(s.bytes)));
}
} // namespace QTest
QT_END_NAMESPACE

class TestUndo : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void addAndDeleteUndoAndRedo_data();
    void addAndDeleteUndoAndRedo();
    void propertyEditsUndoAndRedo_data();
    void propertyEditsUndoAndRedo();
    void circuitInputsUndoAndRedo_data();
    void circuitInputsUndoAndRedo();
    void maximizeResetAndNewUndoAndRedo_data();
    void maximizeResetAndNewUndoAndRedo();
    void modifiedFlagFollowsTheSavedState();
    void crashedRunIsRecovered();

private:
    template <typename T> T* find(const char* name) const
    {
        T* w = m_window->findChild<T*>(QString::fromLatin1(name));
        if (!w)
            qFatal("no widget or action named %s", name);
        return w;
    }
    ConfigDocument* doc() const { return m_window->document(); }
    QUndoStack* stack() const { return m_window->history()->stack(); }
    Seen seen() const;
    // Runs space-separated steps as a user would.
    void run(const QString& steps);
    // Runs prefix, then command, and checks that the command is one step named text whose undo
    // and redo give back the two hand-made states.
    void checkUndoRedo(const QString& prefix, const std::function<void()>& command, const QString& text);
    void editProperty(int id, const QVariant& value)
    {
        doc()->model()->setData(doc()->model()->indexOf(doc()->current(), id), value);
    }
    void choose(const char* combo, const QString& text)
    {
        QComboBox* c = find<QComboBox>(combo);
        c->setCurrentIndex(c->findText(text));
    }

    QTemporaryDir m_data; // the per-user application-data folder of this test
    Runplan* m_window = nullptr;
    YesPrompter* m_prompter = nullptr;
};

void TestUndo::initTestCase()
{
    QVERIFY(m_data.isValid());
    qputenv("XDG_DATA_HOME", m_data.path().toUtf8());
    QCoreApplication::setOrganizationName(QStringLiteral("Vorlux"));
    QCoreApplication::setApplicationName(QStringLiteral("Runplan"));
    QVERIFY2(Database::instance()->isValid(), "the catalog beside the test must load");
}

void TestUndo::init()
{
    QSettings().clear();
    m_window = new Runplan;
    m_prompter = new YesPrompter;
    m_window->setPrompter(m_prompter);
}

void TestUndo::cleanup()
{
    doc()->setModified(false);
    delete m_window;
    delete m_prompter;
}

Seen TestUndo::seen() const
{
    const AnalysisResult& r = m_window->lastResult();
    const QString totals = find<QLabel>("m_DL_TotalFixtures_Label")->text() + QLatin1Char(' ') +
                           find<QLineEdit>("m_DL_TotalPowerWatts_Edit")->text() + QLatin1Char(' ') +
                           find<QLineEdit>("m_DL_TotalPowerAmps_Edit")->text() + (r.pass ? " pass" : " fail");
    const CWidget* current = doc()->current();
    QList<int> selection = DocumentSnapshot::pathOf(current);
    if (current)
        selection.prepend(-1); // tells "the top-level component" from "nothing"
    return {ProjectFile::toBytes(*doc(), *m_window), totals, selection};
}

void TestUndo::run(const QString& steps)
{
    static const QHash<QString, const char*> buttons{
        {"fixture", "m_DL_AddFixture_Button"}, {"jumper", "m_DL_AddJumper_Button"},
        {"leader", "m_DL_AddLeader_Button"},   {"box", "m_DL_AddJunctionBox_Button"},
        {"enabler", "m_DL_AddSupply_Button"},  {"maximize", "m_DL_Maximize_Button"}};
    for (const QString& step : steps.split(' ', Qt::SkipEmptyParts)) {
        if (buttons.contains(step))
            QTest::mouseClick(find<QPushButton>(buttons.value(step)), Qt::LeftButton);
        else if (step == "reset") // no button of its own
            m_window->on_m_DL_Reset_Button_clicked();
        else if (step == "receiver") // its button is hidden
            m_window->on_m_DL_AddReceiver_Button_clicked();
        else if (step == "root")
            doc()->setCurrent(doc()->root());
        else if (step == "parent")
            doc()->setCurrent(doc()->current()->parentWidget());
        else if (step == "delete")
            QTest::keyClick(m_window, Qt::Key_Delete);
        else if (step == "feedwise")
            editProperty(PropOutputMode, QStringLiteral("Feedwise"));
        else if (step == "new")
            find<QAction>("actionNew")->trigger();
        else if (step.startsWith("volts="))
            choose("m_DL_LineVoltage_Combo", step.mid(6));
        else
            QFAIL(qPrintable("unknown step " + step));
    }
}

void TestUndo::checkUndoRedo(const QString& prefix, const std::function<void()>& command, const QString& text)
{
    run(prefix);
    const Seen before = seen();
    const int steps = stack()->count();
    command();
    const Seen after = seen();
    QVERIFY(!(after == before));
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

void TestUndo::addAndDeleteUndoAndRedo_data()
{
    QTest::addColumn<QString>("prefix");
    QTest::addColumn<QString>("command");
    QTest::addColumn<QString>("text");
    QTest::newRow("fixture") << ""
                             << "fixture"
                             << "Add Fixture";
    QTest::newRow("jumper") << "fixture"
                            << "jumper"
                            << "Add Jumper";
    QTest::newRow("leader") << ""
                            << "leader"
                            << "Add Leader";
    QTest::newRow("junction box") << ""
                                  << "box"
                                  << "Add Junction Box";
    QTest::newRow("receiver") << "feedwise"
                              << "receiver"
                              << "Add Receiver";
    QTest::newRow("enabler") << "feedwise root"
                             << "enabler"
                             << "Add Enabler";
    QTest::newRow("delete a subtree") << "fixture jumper fixture jumper fixture parent parent parent"
                                      << "delete"
                                      << "Delete Jumper";
    QTest::newRow("delete the last") << "fixture jumper fixture"
                                     << "delete"
                                     << "Delete Fixture";
    QTest::newRow("delete the enabler") << "fixture root"
                                        << "delete"
                                        << "Delete Enabler";
}

void TestUndo::addAndDeleteUndoAndRedo()
{
    QFETCH(QString, prefix);
    QFETCH(QString, command);
    QFETCH(QString, text);
    checkUndoRedo(
        prefix, [&]() { run(command); }, text);
}

void TestUndo::propertyEditsUndoAndRedo_data()
{
    QTest::addColumn<QString>("prefix");
    QTest::addColumn<int>("property");
    QTest::addColumn<QString>("value");
    QTest::addColumn<QString>("text");
    QTest::newRow("output mode") << "root" << int(PropOutputMode) << "Feedwise"
                                 << "Change Output Mode";
    QTest::newRow("leader type") << "leader" << int(PropType) << "Custom Leader"
                                 << "Change Type";
    QTest::newRow("location") << "box parent" << int(PropLocation) << "Plenum"
                              << "Change Location";
}

void TestUndo::propertyEditsUndoAndRedo()
{
    QFETCH(QString, prefix);
    QFETCH(int, property);
    QFETCH(QString, value);
    QFETCH(QString, text);
    checkUndoRedo(
        prefix, [&]() { editProperty(property, value); }, text);
}

void TestUndo::circuitInputsUndoAndRedo_data()
{
    QTest::addColumn<QString>("combo");
    QTest::addColumn<QString>("choice");
    QTest::addColumn<QString>("text");
    QTest::newRow("line voltage") << "m_DL_LineVoltage_Combo"
                                  << "100"
                                  << "Change Line Voltage";
    QTest::newRow("load") << "m_DL_MaxLoad_Combo"
                          << "20"
                          << "Change Max Circuit Load";
    QTest::newRow("frequency") << "m_frequencyComboBox"
                               << "50 Hz"
                               << "Change Frequency";
    QTest::newRow("enabler clears") << "m_DLSupply_Combo"
                                    << "RD-5000"
                                    << "Change Enabler";
    QTest::newRow("fixture clears") << "m_DLFixture_Combo"
                                    << "Linea Inline Dynaline 1ft"
                                    << "Change Fixture";
}

void TestUndo::circuitInputsUndoAndRedo()
{
    QFETCH(QString, combo);
    QFETCH(QString, choice);
    QFETCH(QString, text);
    checkUndoRedo(
        "fixture jumper fixture", [&]() { choose(qPrintable(combo), choice); }, text);
}

void TestUndo::maximizeResetAndNewUndoAndRedo_data()
{
    QTest::addColumn<QString>("prefix");
    QTest::addColumn<QString>("command");
    QTest::addColumn<QString>("text");
    QTest::newRow("maximize") << "volts=100 fixture"
                              << "maximize"
                              << "Maximize";
    QTest::newRow("reset") << "volts=100 fixture jumper fixture"
                           << "reset"
                           << "Reset";
    QTest::newRow("new") << "volts=100 fixture jumper fixture"
                         << "new"
                         << "New";
}

void TestUndo::maximizeResetAndNewUndoAndRedo()
{
    QFETCH(QString, prefix);
    QFETCH(QString, command);
    QFETCH(QString, text);
    checkUndoRedo(
        prefix, [&]() { run(command); }, text);
}

void TestUndo::modifiedFlagFollowsTheSavedState()
{
    QTemporaryDir dir;
    run("fixture jumper");
    QVERIFY(m_window->saveProject(dir.filePath("saved.rpproj")));
    QVERIFY(!doc()->isModified());

    // Undo back to the saved state clears the flag; redo away from it sets it.
    run("fixture");
    QVERIFY(doc()->isModified());
    stack()->undo();
    QVERIFY(!doc()->isModified());
    stack()->redo();
    QVERIFY(doc()->isModified());

    // Repeated changes of a spin box are one step, undone at once.
    stack()->undo();
    choose("m_DL_LineVoltage_Combo", "Other");
    const int steps = stack()->count();
    const Seen other = seen();
    QSpinBox* spin = find<QSpinBox>("m_DL_LineVoltage_Spin");
    for (int volts : {200, 210, 220})
        spin->setValue(volts);
    QCOMPARE(stack()->count(), steps + 1);
    stack()->undo();
    QCOMPARE(seen(), other);

    // The exports drive the configuration without adding to the history.
    m_prompter->saveAnswer = dir.filePath("max.csv");
    const int before = stack()->count();
    find<QAction>("actionMaximizeFixture")->trigger();
    QVERIFY(QFile::exists(dir.filePath("max.csv")));
    QCOMPARE(stack()->count(), before);
}

void TestUndo::crashedRunIsRecovered()
{
    // A run with unsaved changes writes its recovery file; a second window does not take the
    // file of a window that is still running. (No fixed jumper: reading a file gives those the
    // constructor's length, so a recovered one would differ as a reopened one does.)
    run("volts=100 leader fixture");
    const Seen crashed = seen();
    m_window->autosave()->writeNow();
    const QString written = m_window->autosave()->store().filePath();
    QVERIFY(QFile::exists(written));
    {
        Runplan other;
        other.setPrompter(m_prompter);
        QVERIFY(!other.offerRecovery());
        QVERIFY(m_prompter->recoverNames.isEmpty());
    }

    // What a crash leaves: the files without a living owner. A clean exit removes its own.
    const QString left = QFileInfo(written).dir().filePath("runplan-0-1");
    QVERIFY(QFile::copy(written, left + ".rpproj"));
    QVERIFY(QFile::copy(QString(written).replace(".rpproj", ".origin"), left + ".origin"));
    cleanup();
    QVERIFY(!QFile::exists(written));
    init();
    QVERIFY(!(seen() == crashed));

    // Discard keeps the fresh configuration and the file is gone; Recover restores the tree.
    QVERIFY(QFile::copy(left + ".rpproj", left + "-2.rpproj"));
    m_prompter->recoverAnswers << false << true;
    QVERIFY(m_window->offerRecovery());
    QCOMPARE(m_prompter->recoverNames, (QStringList{"Untitled.rpproj", "Untitled.rpproj"}));
    QCOMPARE(seen().bytes, crashed.bytes);
    QCOMPARE(seen().totals, crashed.totals);
    QVERIFY(doc()->isModified());
    QVERIFY(!QFile::exists(left + ".rpproj") && !QFile::exists(left + "-2.rpproj"));
}

QTEST_MAIN(TestUndo)
#include "tst_undo.moc"
