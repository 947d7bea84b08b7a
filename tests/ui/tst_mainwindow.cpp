// The main window driven as a user would: selectors, add buttons, document commands and exports,
// with every question answered through a scripted prompter.

#include "TestSupport.h"
#include "app/Prompter.h"
#include "app/Runplan.h"
#include "calc/Session.h"
#include "catalog/Database.h"
#include "model/CWidget.h"
#include "model/ConfigDocument.h"

#include <QAction>
#include <QBuffer>
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
#include <QTextEdit>

// Answers from queues; a question with no answer left is recorded as unexpected.
class ScriptedPrompter : public Prompter
{
public:
    QStringList openAnswers;
    QStringList saveAnswers;
    QList<bool> clearAnswers;
    QList<SaveChoice> saveChangesAnswers;
    QList<bool> replaceAnswers;

    QStringList asked;    // the kind of every question, in order
    QStringList lastArgs; // the texts shown with the last one
    QStringList unexpected;

    QString getOpenFileName(QWidget*, const QString& caption, const QString& dir, const QString& filter) override
    {
        return take("open", openAnswers, {caption, dir, filter});
    }
    QString getSaveFileName(QWidget*, const QString& caption, const QString& proposed,
                            const QString& filter) override
    {
        return take("save", saveAnswers, {caption, proposed, filter});
    }
    bool askClearConfiguration(QWidget*) override { return take("clear", clearAnswers); }
    SaveChoice askSaveChanges(QWidget*, const QString& displayName) override
    {
        return take("saveChanges", saveChangesAnswers, {displayName}, SaveChoice::Cancel);
    }
    bool askReplace(QWidget*, const QString& filePath) override { return take("replace", replaceAnswers, {filePath}); }
    bool confirmDelete(QWidget*) override { return take("delete", m_none); }
    int execDialog(QDialog*) override { return take("dialog", m_none) ? QDialog::Accepted : QDialog::Rejected; }

private:
    template <typename T>
    T take(const char* what, QList<T>& queue, const QStringList& args = {}, T fallback = T())
    {
        asked << QString::fromLatin1(what);
        lastArgs = args;
        if (queue.isEmpty()) {
            unexpected << QString::fromLatin1(what);
            return fallback;
        }
        return queue.takeFirst();
    }
    QList<bool> m_none;
};

class TestMainWindow : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void addButtonsFollowTheSelection_data();
    void addButtonsFollowTheSelection();
    void enablerChangeAsksBeforeClearing();
    void fixtureChangeAsksWhenFamiliesDiffer();
    void customVoltageAndLoad();
    void saveAsNamesAndReplaces();
    void newAndOpenAskAboutUnsavedChanges();
    void maximizeAndExportMatchTheEngine();

private:
    // The window's widgets, found by their object names.
    template <typename T> T* find(const char* name) const
    {
        T* w = m_window->findChild<T*>(QString::fromLatin1(name));
        if (!w)
            qFatal("no widget or action named %s", name);
        return w;
    }
    void click(const char* button) { QTest::mouseClick(find<QPushButton>(button), Qt::LeftButton); }
    ConfigDocument* doc() const { return m_window->document(); }
    int comboIndex(const char* combo, const QString& text) const { return find<QComboBox>(combo)->findText(text); }
    QString fileText(const QString& path) const
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
    }

    Runplan* m_window = nullptr;
    ScriptedPrompter* m_prompter = nullptr;
    QTemporaryDir* m_dir = nullptr;
};

void TestMainWindow::initTestCase()
{
    QCoreApplication::setOrganizationName(QStringLiteral("Vorlux"));
    QCoreApplication::setApplicationName(QStringLiteral("Runplan"));
    QVERIFY2(Database::instance()->isValid(), "the catalog beside the test must load");
}

void TestMainWindow::init()
{
    QSettings().clear();
    m_dir = new QTemporaryDir;
    QVERIFY(m_dir->isValid());
    m_window = new Runplan;
    m_prompter = new ScriptedPrompter;
    m_window->setPrompter(m_prompter);
}

void TestMainWindow::cleanup()
{
    QVERIFY2(m_prompter->unexpected.isEmpty(), qPrintable(m_prompter->unexpected.join(", ")));
    doc()->setModified(false); // nothing left to save: closing must not ask
    delete m_window;
    delete m_prompter;
    delete m_dir;
}

void TestMainWindow::addButtonsFollowTheSelection_data()
{
    // Steps, run in order on a fresh window: add a "fixture", "jumper" or "box"; "receiver" as a
    // project would bring one (its button is hidden); select the "parent" or the "root"; "delete"
    // the current component; make the enabler "feedwise"; choose a family-1 fixture ("family1");
    // select "nothing"; read the receiver without a junction box ("nobox"), as an old project has
    // it; add "63receivers", the most a run holds, each below the one before. Buttons the row's
    // selection leaves in their earlier state are not compared.
    QTest::addColumn<QString>("steps");
    QTest::addColumn<QString>("leftAlone");
    QTest::addColumn<QString>("enabled");

    QTest::newRow("empty Dynaline enabler") << "root" << "jumper" << "fixture leader box maximize";
    QTest::newRow("enabler with a child") << "fixture root" << "jumper receiver" << "";
    QTest::newRow("fixture") << "fixture" << "receiver" << "fixture jumper maximize";
    QTest::newRow("jumper") << "fixture jumper" << "jumper receiver" << "fixture maximize";
    QTest::newRow("fixture with its jumper") << "fixture jumper parent" << "receiver" << "";
    QTest::newRow("Dynaline junction box") << "box" << "jumper" << "fixture leader box enabler maximize";
    QTest::newRow("Dynaline branch wire") << "box delete" << "jumper receiver" << "box maximize";
    QTest::newRow("Feedwise enabler") << "feedwise" << "jumper" << "fixture receiver box enabler maximize";
    QTest::newRow("Feedwise enabler, family 1") << "feedwise family1" << "jumper" << "receiver box enabler";
    QTest::newRow("Feedwise branch wire") << "feedwise box delete" << "jumper" << "receiver box enabler maximize";
    QTest::newRow("receiver") << "feedwise receiver" << "jumper" << "fixture leader receiver box maximize";
    QTest::newRow("Feedwise wire with a receiver") << "feedwise receiver parent" << "jumper receiver" << "";
    QTest::newRow("fixture on a receiver") << "feedwise receiver fixture" << "receiver" << "fixture jumper";
    QTest::newRow("receiver without a box") << "feedwise receiver nobox" << "jumper" << "";
    QTest::newRow("63rd receiver") << "feedwise 63receivers" << "jumper" << "fixture leader box maximize";
    QTest::newRow("nothing selected") << "fixture nothing" << "" << "";
}

void TestMainWindow::addButtonsFollowTheSelection()
{
    QFETCH(QString, steps);
    QFETCH(QString, leftAlone);
    QFETCH(QString, enabled);

    for (const QString& step : steps.split(' ')) {
        if (step == "fixture" || step == "jumper" || step == "box")
            click(step == "fixture" ? "m_DL_AddFixture_Button"
                                    : step == "jumper" ? "m_DL_AddJumper_Button" : "m_DL_AddJunctionBox_Button");
        else if (step == "receiver")
            m_window->on_m_DL_AddReceiver_Button_clicked();
        else if (step == "parent")
            doc()->setCurrent(doc()->current()->parentWidget());
        else if (step == "root")
            doc()->setCurrent(doc()->root());
        else if (step == "delete")
            m_window->DL_DeleteLast();
        else if (step == "nothing")
            doc()->setCurrentIndex(QModelIndex());
        else if (step == "nobox") {
            auto* receiver = qobject_cast<ReceiverWidget*>(doc()->current());
            QVERIFY(receiver);
            receiver->setJunctionBox(QString());
            doc()->setCurrent(doc()->root());
            doc()->setCurrent(receiver);
        } else if (step == "63receivers") {
            for (int i = 0; i < 63; ++i)
                m_window->on_m_DL_AddReceiver_Button_clicked();
            QCOMPARE(doc()->root()->countInSubtree(ItemReceiver), 63);
        }
        else if (step == "feedwise" || step == "family1") {
            if (step == "feedwise")
                doc()->root()->applyEditorValue(PropOutputMode, QStringLiteral("Feedwise"));
            else
                m_window->selectFixtureIndex(comboIndex("m_DLFixture_Combo", "Linea Inline Dynaline 1ft"));
            doc()->setCurrent(doc()->root());
        }
    }
    QStringList on;
    const std::pair<const char*, const char*> buttons[] = {
        {"fixture", "m_DL_AddFixture_Button"},   {"jumper", "m_DL_AddJumper_Button"},
        {"leader", "m_DL_AddLeader_Button"},     {"receiver", "m_DL_AddReceiver_Button"},
        {"box", "m_DL_AddJunctionBox_Button"},   {"enabler", "m_DL_AddSupply_Button"},
        {"maximize", "m_DL_Maximize_Button"}};
    for (const auto& [label, name] : buttons)
        if (find<QPushButton>(name)->isEnabled() && !leftAlone.split(' ').contains(QLatin1String(label)))
            on << label;
    QCOMPARE(on.join(' '), enabled);
}

void TestMainWindow::enablerChangeAsksBeforeClearing()
{
    QComboBox* supplies = find<QComboBox>("m_DLSupply_Combo");
    const int sfp = supplies->findText(QStringLiteral("Signal Feeder Pro"));
    const int lv = supplies->findText(QStringLiteral("Line Voltage"));
    QVERIFY(sfp >= 0 && lv >= 0 && sfp != lv);

    // A lone enabler is replaced without a question, and the fixture list becomes its own.
    supplies->setCurrentIndex(lv);
    QVERIFY(m_prompter->asked.isEmpty());
    QCOMPARE(doc()->root()->catalogItem()->name, QStringLiteral("Line Voltage"));
    const DLPowerSupply* lvRecord = Database::instance()->supplyNamed(QStringLiteral("Line Voltage"));
    QCOMPARE(find<QComboBox>("m_DLFixture_Combo")->count(), lvRecord->fixtures.size());
    QCOMPARE(find<QComboBox>("m_DLController_Combo")->count(), 0);

    // With a run built, No keeps everything as it was.
    click("m_DL_AddFixture_Button");
    m_prompter->clearAnswers << false;
    supplies->setCurrentIndex(sfp);
    QCOMPARE(m_prompter->asked, QStringList{"clear"});
    QCOMPARE(supplies->currentIndex(), lv);
    QCOMPARE(doc()->count(ItemAny), 2);
    QCOMPARE(doc()->root()->catalogItem()->name, QStringLiteral("Line Voltage"));

    // Yes clears the run and starts over from the new enabler.
    m_prompter->clearAnswers << true;
    supplies->setCurrentIndex(sfp);
    QCOMPARE(m_prompter->asked.size(), 2);
    QCOMPARE(doc()->count(ItemAny), 1);
    QCOMPARE(doc()->root()->catalogItem()->name, QStringLiteral("Signal Feeder Pro"));
    QCOMPARE(find<QComboBox>("m_DLController_Combo")->count(), Database::instance()->controllers().size());

    // Changes made by the program itself never ask.
    click("m_DL_AddFixture_Button");
    m_window->selectEnabler(lvRecord);
    QCOMPARE(m_prompter->asked.size(), 2);
    QCOMPARE(doc()->count(ItemAny), 1);
}

void TestMainWindow::fixtureChangeAsksWhenFamiliesDiffer()
{
    QComboBox* fixtures = find<QComboBox>("m_DLFixture_Combo");
    QComboBox* volts = find<QComboBox>("m_DL_LineVoltage_Combo");
    const int troughA = comboIndex("m_DLFixture_Combo", "Linea Trough Model A Dynaline 6in (100v - 120v)");
    const int troughB = comboIndex("m_DLFixture_Combo", "Linea Trough Model B Dynaline 6in (100v - 120v)");
    const int tunable = comboIndex("m_DLFixture_Combo", "Stylebar Tunable Dynaline 1ft"); // another family
    QVERIFY(troughA >= 0 && troughB >= 0 && tunable >= 0);

    // An empty run changes fixture freely; the voltage list becomes the fixture's.
    fixtures->setCurrentIndex(troughA);
    QVERIFY(m_prompter->asked.isEmpty());
    QCOMPARE(volts->count(), 3);
    volts->setCurrentIndex(volts->findText("100"));

    // Placed fixtures of the same family stay.
    click("m_DL_AddFixture_Button");
    fixtures->setCurrentIndex(troughB);
    QVERIFY(m_prompter->asked.isEmpty());
    QCOMPARE(doc()->count(ItemFixture), 1);

    // Another family: No puts the fixture back and keeps the run.
    m_prompter->clearAnswers << false;
    fixtures->setCurrentIndex(tunable);
    QCOMPARE(m_prompter->asked, QStringList{"clear"});
    QCOMPARE(fixtures->currentIndex(), troughB);
    QCOMPARE(doc()->count(ItemFixture), 1);

    // Yes clears it; the chosen voltage is kept where the new fixture offers it.
    m_prompter->clearAnswers << true;
    fixtures->setCurrentIndex(tunable);
    QCOMPARE(m_prompter->asked.size(), 2);
    QCOMPARE(doc()->count(ItemAny), 1);
    QCOMPARE(volts->count(), 7);
    QCOMPARE(volts->currentData().toInt(), 100);

    // A voltage the new fixture lacks gives way to the fixture's starting voltage.
    volts->setCurrentIndex(volts->findText("277"));
    fixtures->setCurrentIndex(troughA);
    QCOMPARE(volts->currentText(), QStringLiteral("120"));
}

void TestMainWindow::customVoltageAndLoad()
{
    // "Other" shows a spin box whose value is used; a listed value hides it again.
    QComboBox* volts = find<QComboBox>("m_DL_LineVoltage_Combo");
    QSpinBox* voltSpin = find<QSpinBox>("m_DL_LineVoltage_Spin");
    QVERIFY(voltSpin->isHidden());
    volts->setCurrentIndex(volts->findText(QStringLiteral("Other")));
    QVERIFY(!voltSpin->isHidden());
    voltSpin->setValue(230);
    QCOMPARE(m_window->circuitInputs().lineVoltage, 230.0);
    QCOMPARE(m_window->customLineVoltage(), 230);

    // "Other" survives a change of fixture.
    find<QComboBox>("m_DLFixture_Combo")->setCurrentIndex(comboIndex("m_DLFixture_Combo", "Linea Cove Dynaline 2ft"));
    QCOMPARE(volts->currentText(), QStringLiteral("Other"));
    QVERIFY(!voltSpin->isHidden());
    volts->setCurrentIndex(volts->findText(QStringLiteral("100")));
    QVERIFY(voltSpin->isHidden());
    QCOMPARE(m_window->circuitInputs().lineVoltage, 100.0);

    QComboBox* load = find<QComboBox>("m_DL_MaxLoad_Combo");
    QSpinBox* loadSpin = find<QSpinBox>("m_DL_MaxLoad_Spin");
    load->setCurrentIndex(load->count() - 1);
    QVERIFY(!loadSpin->isHidden());
    loadSpin->setValue(25);
    QCOMPARE(m_window->circuitInputs().maxCircuitLoad, 25.0);
    QCOMPARE(find<QLabel>("m_DL_DerateLoad_Label")->text(), QStringLiteral("(derated to 20 amps)"));
    load->setCurrentIndex(load->findText(QStringLiteral("20")));
    QVERIFY(loadSpin->isHidden());
    QCOMPARE(m_window->circuitInputs().maxCircuitLoad, 20.0);
    QCOMPARE(find<QLabel>("m_DL_DerateLoad_Label")->text(), QStringLiteral("(derated to 16 amps)"));
}

void TestMainWindow::saveAsNamesAndReplaces()
{
    const QString filter = QStringLiteral("Configuration Files (*.rpproj);;All Files (*.* *)");
    click("m_DL_AddFixture_Button");
    const QString plan = m_dir->filePath(QStringLiteral("plan"));

    // A bare name gets the extension; the window and its actions take the file's name.
    m_prompter->saveAnswers << plan;
    find<QAction>("actionSaveAs")->trigger();
    QCOMPARE(m_prompter->lastArgs, (QStringList{"Save Configuration",
                                                QDir(QDir::homePath()).filePath("Untitled.rpproj"), filter}));
    QVERIFY(!doc()->isModified());
    QCOMPARE(m_window->currentFilePath(), plan + ".rpproj");
    QVERIFY(m_window->windowTitle().startsWith(QStringLiteral("plan.rpproj[*] - Runplan Release 3.17.0")));
    QCOMPARE(find<QAction>("actionSave")->text(), QStringLiteral("&Save plan.rpproj"));
    QCOMPARE(find<QAction>("actionSaveAs")->text(), QStringLiteral("Save plan.rpproj &As..."));
    QCOMPARE(QSettings().value("lastDirPath").toString(), m_dir->path());

    // The same bare name over another file: the replace question; Cancel brings the file dialog
    // back, and cancelling that writes nothing.
    QFile marker(plan + ".rpproj");
    QVERIFY(marker.open(QIODevice::WriteOnly | QIODevice::Truncate));
    marker.write("keep");
    marker.close();
    click("m_DL_AddJumper_Button");
    m_prompter->saveAnswers << plan << QString();
    m_prompter->replaceAnswers << false;
    find<QAction>("actionSaveAs")->trigger();
    QCOMPARE(m_prompter->asked.mid(1), (QStringList{"save", "replace", "save"}));
    QCOMPARE(fileText(plan + ".rpproj"), QStringLiteral("keep"));
    QVERIFY(doc()->isModified());

    // Replace overwrites it; a name with another case of the extension still gets its own.
    m_prompter->saveAnswers << plan << m_dir->filePath("other.RPPROJ");
    m_prompter->replaceAnswers << true;
    find<QAction>("actionSaveAs")->trigger();
    QVERIFY(fileText(plan + ".rpproj").contains("RunplanConfigurationFile"));
    QVERIFY(!doc()->isModified());
    find<QAction>("actionSaveAs")->trigger();
    QCOMPARE(find<QAction>("actionSave")->text(), QStringLiteral("&Save other.RPPROJ.rpproj"));

    // Save writes to the current file without asking.
    const int asked = m_prompter->asked.size();
    click("m_DL_AddFixture_Button");
    find<QAction>("actionSave")->trigger();
    QCOMPARE(m_prompter->asked.size(), asked);
    QVERIFY(!doc()->isModified());
}

void TestMainWindow::newAndOpenAskAboutUnsavedChanges()
{
    // A saved run of two fixtures at 100 V.
    QComboBox* volts = find<QComboBox>("m_DL_LineVoltage_Combo");
    volts->setCurrentIndex(volts->findText("100"));
    click("m_DL_AddFixture_Button");
    click("m_DL_AddJumper_Button");
    click("m_DL_AddFixture_Button");
    const QString saved = m_dir->filePath("two.rpproj");
    QVERIFY(m_window->saveProject(saved));

    // Unchanged: New asks nothing and starts over.
    find<QAction>("actionNew")->trigger();
    QVERIFY(m_prompter->asked.isEmpty());
    QCOMPARE(doc()->count(ItemAny), 1);
    QCOMPARE(volts->currentText(), QStringLiteral("120"));
    QVERIFY(m_window->windowTitle().startsWith("Untitled.rpproj[*] - "));
    QCOMPARE(find<QAction>("actionSave")->text(), QStringLiteral("&Save "));

    // Open brings the run and its header back.
    m_prompter->openAnswers << saved;
    find<QAction>("actionOpen")->trigger();
    QCOMPARE(m_prompter->lastArgs.value(0), QStringLiteral("Open Configuration"));
    QCOMPARE(m_prompter->lastArgs.value(2), QStringLiteral("Configuration Files (*.rpproj);;All Files (*.* *)"));
    QCOMPARE(doc()->count(ItemFixture), 2);
    QCOMPARE(volts->currentText(), QStringLiteral("100"));
    QCOMPARE(m_window->currentFilePath(), saved);
    QVERIFY(!doc()->isModified());
    QCOMPARE(find<QLabel>("m_DL_TotalFixtures_Label")->text(), QStringLiteral("Total Fixtures: 2"));

    // Changed: Cancel stops New; Discard lets it go on.
    volts->setCurrentIndex(volts->findText("120"));
    m_prompter->saveChangesAnswers << Prompter::SaveChoice::Cancel << Prompter::SaveChoice::Discard;
    find<QAction>("actionNew")->trigger();
    QCOMPARE(m_prompter->lastArgs, QStringList{"two.rpproj"});
    QCOMPARE(doc()->count(ItemFixture), 2);
    find<QAction>("actionNew")->trigger();
    QCOMPARE(doc()->count(ItemAny), 1);

    // Save writes the changes first, then Open goes on; a cancelled file dialog opens nothing.
    click("m_DL_AddFixture_Button");
    const QString third = m_dir->filePath("three");
    m_prompter->saveChangesAnswers << Prompter::SaveChoice::Save;
    m_prompter->saveAnswers << third;
    m_prompter->openAnswers << QString();
    find<QAction>("actionOpen")->trigger();
    QCOMPARE(m_prompter->asked.mid(m_prompter->asked.size() - 3), (QStringList{"saveChanges", "save", "open"}));
    QVERIFY(QFile::exists(third + ".rpproj"));
    QCOMPARE(m_window->currentFilePath(), third + ".rpproj");
    QCOMPARE(doc()->count(ItemFixture), 1);

    // An unreadable file changes nothing.
    m_prompter->openAnswers << m_dir->filePath("missing.rpproj");
    RecordingReporter messages;
    ScopedGlobalReporter scope(&messages);
    find<QAction>("actionOpen")->trigger();
    QCOMPARE(messages.messages.size(), 1);
    QCOMPARE(m_window->currentFilePath(), third + ".rpproj");
    QCOMPARE(doc()->count(ItemFixture), 1);
}

void TestMainWindow::maximizeAndExportMatchTheEngine()
{
    // The window and a headless session agree on the largest run from one fixture.
    Session session(*Database::instance());
    session.resetWithFixture();
    session.maximize();
    click("m_DL_AddFixture_Button");
    click("m_DL_Maximize_Button");
    QVERIFY(session.fixtureCount() > 1);
    QCOMPARE(doc()->count(ItemFixture), session.fixtureCount());
    QCOMPARE(m_window->lastResult().totalLength, session.totalLength());
    QVERIFY(doc()->passFlag());
    QCOMPARE(find<QLabel>("m_DL_TotalFixtures_Label")->text(),
             QStringLiteral("Total Fixtures: %1").arg(session.fixtureCount()));
    // The totals are green while the run passes and red with one fixture more.
    QLineEdit* watts = find<QLineEdit>("m_DL_TotalPowerWatts_Edit");
    QCOMPARE(watts->palette().color(QPalette::Base), Runplan::passingFieldColor());
    click("m_DL_AddFixture_Button");
    QVERIFY(!doc()->passFlag());
    QCOMPARE(watts->palette().color(QPalette::Base), Runplan::failingFieldColor());
    m_window->DL_DeleteLast();

    // The export writes what the engine writes, to the file chosen, which is proposed next time.
    const QString chosen = m_dir->filePath("fixture.csv");
    m_prompter->saveAnswers << chosen << QString();
    find<QAction>("actionMaximizeFixture")->trigger();
    QCOMPARE(m_prompter->lastArgs, (QStringList{"Select file", "data.csv", "CSV File (*.csv);; All Files (*.*)"}));
    QBuffer expected;
    expected.open(QIODevice::WriteOnly);
    Session fresh(*Database::instance());
    QVERIFY(CsvExport::exportCurrentFixture(expected, fresh));
    QCOMPARE(fileText(chosen).toUtf8(), expected.data());
    find<QAction>("actionMaximizeAll")->trigger();
    QCOMPARE(m_prompter->lastArgs.value(1), chosen);
    QCOMPARE(QSettings().value("maximize_fixture_file").toString(), QString());
}

QTEST_MAIN(TestMainWindow)
#include "tst_mainwindow.moc"
