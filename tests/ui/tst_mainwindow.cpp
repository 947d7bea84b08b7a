// The main window driven as a user would: selectors, add buttons, document commands and exports,
// with every question answered through a scripted prompter.

#include "TestSupport.h"
#include "app/Prompter.h"
#include "app/Runplan.h"
#include "canvas/CFrame.h"
#include "calc/Session.h"
#include "model/ProjectFile.h"
#include "catalog/Database.h"
#include "model/CWidget.h"
#include "model/CWidgetModel.h"
#include "model/ConfigDocument.h"

#include <QAction>
#include <QComboBox>
#include <QDialog>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QProcess>
#include <QPushButton>
#include <QScrollBar>
#include <QSettings>
#include <QSpinBox>
#include <QTemporaryDir>
#include <QTest>
#include <QStatusBar>
#include <QTextBlock>
#include <QTextEdit>

#include <csignal>
#include <sys/resource.h>

// Answers from queues; a question with no answer left is recorded as unexpected.
class ScriptedPrompter : public Prompter
{
public:
    QStringList openAnswers;
    QStringList saveAnswers;
    QList<bool> clearAnswers;
    QList<SaveChoice> saveChangesAnswers;
    QList<bool> replaceAnswers;
    QList<bool> notReadWholeAnswers;
    QList<bool> deleteAnswers;

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
    bool askReplaceNotReadWhole(QWidget*, const QString& fileName) override
    {
        return take("notReadWhole", notReadWholeAnswers, {fileName});
    }
    bool confirmDelete(QWidget*) override { return take("delete", deleteAnswers); }
    int execDialog(QDialog*) override { return take("dialog", m_none) ? QDialog::Accepted : QDialog::Rejected; }
    QList<bool> recoverAnswers;
    bool askRecover(QWidget*, const QString& displayName) override
    {
        return take("recover", recoverAnswers, {displayName});
    }

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

    void addButtonsFollowEveryChange();
    void enablerChangeAsksBeforeClearing();
    void fixtureChangeAsksWhenFamiliesDiffer();
    void customVoltageAndLoad();
    void saveAsNamesAndReplaces();
    void newAndOpenAskAboutUnsavedChanges();
    void openedProjectShowsTopLeft();
    void maximizeAndExportMatchTheEngine();
    void openingWhatIsNotAProject();
    void failedExportKeepsTheOldFile();
    void fieldsAndLogShowOnlyTheirOwn();
    void questionBoxes();
    void withoutACatalog();
    void designExportsAndShowVoltages();

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
    // withoutACatalog() runs a copy of this test where no catalog lies beside it.
    if (qEnvironmentVariableIsEmpty("RUNPLAN_TEST_NO_CATALOG"))
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

void TestMainWindow::addButtonsFollowEveryChange()
{
    // The buttons show the document's rule (tested in the core) for the selected component, also
    // after an edit of it, a load and a reset, not only when the selection changes.
    auto enabled = [this]() {
        QStringList on;
        const std::pair<const char*, const char*> buttons[] = {
            {"fixture", "m_DL_AddFixture_Button"}, {"jumper", "m_DL_AddJumper_Button"},
            {"leader", "m_DL_AddLeader_Button"},   {"receiver", "m_DL_AddReceiver_Button"},
            {"box", "m_DL_AddJunctionBox_Button"}, {"enabler", "m_DL_AddSupply_Button"},
            {"maximize", "m_DL_Maximize_Button"}};
        for (const auto& [label, name] : buttons)
            if (find<QPushButton>(name)->isEnabled())
                on << label;
        return on.join(' ');
    };
    click("m_DL_AddFixture_Button");
    QCOMPARE(enabled(), QStringLiteral("fixture jumper maximize"));
    m_window->DL_DeleteLast();
    QCOMPARE(doc()->current(), doc()->root());
    QCOMPARE(enabled(), QStringLiteral("fixture jumper leader box maximize"));

    // The enabler's output mode edited in the table: a Feedwise enabler takes no leader.
    const QModelIndex mode = doc()->currentIndex().siblingAtColumn(PropOutputMode);
    QVERIFY(doc()->model()->setData(mode, QStringLiteral("Feedwise")));
    QCOMPARE(enabled(), QStringLiteral("fixture jumper receiver box enabler maximize"));

    // A load that leaves the canvas empty leaves nothing to add to; Reset places an enabler again.
    HeaderValues header;
    ProjectFile::read("<Runplan><CFrame/></Runplan>", *doc(), header, nullptr);
    QVERIFY(!doc()->root());
    QCOMPARE(enabled(), QString());
    m_window->on_m_DL_Reset_Button_clicked();
    QCOMPARE(enabled(), QStringLiteral("fixture leader box maximize"));
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
    QVERIFY(find<QComboBox>("m_DLController_Combo")->count() > 0);

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
}

void TestMainWindow::openedProjectShowsTopLeft()
{
    // A canvas narrower than the enabler plus the scroll-into-view margin, as before the window
    // is first shown (a project named on the command line), and scrolled away from the origin.
    const QString saved = m_dir->filePath("one.rpproj");
    QVERIFY(m_window->saveProject(saved));
    CFrame* canvas = m_window->frame();
    canvas->resize(380, 300);
    QVERIFY(canvas->horizontalScrollBar()->maximum() > 0);
    canvas->horizontalScrollBar()->setValue(200);
    QVERIFY(m_window->openProject(saved));
    QCOMPARE(canvas->horizontalScrollBar()->value(), 0);
    QCOMPARE(canvas->verticalScrollBar()->value(), 0);
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

    // The export writes the checked-in table of the starting fixture (as the unattended run does)
    // to the file chosen, which is proposed next time.
    const QString chosen = m_dir->filePath("fixture.csv");
    m_prompter->saveAnswers << chosen << QString();
    find<QAction>("actionMaximizeFixture")->trigger();
    QCOMPARE(m_prompter->lastArgs, (QStringList{"Select file", "data.csv", "CSV File (*.csv);; All Files (*.*)"}));
    QCOMPARE(fileText(chosen), fileText(testDataPath("app/batch-first.csv")));
    find<QAction>("actionMaximizeAll")->trigger();
    QCOMPARE(m_prompter->lastArgs.value(1), chosen);
    QCOMPARE(QSettings().value("maximize_fixture_file").toString(), QString());
}

void TestMainWindow::openingWhatIsNotAProject()
{
    // A name with a placeholder in it stays as typed in the title.
    click("m_DL_AddFixture_Button");
    click("m_DL_AddJumper_Button");
    click("m_DL_AddFixture_Button");
    const QString saved = m_dir->filePath("stage%1.rpproj");
    QVERIFY(m_window->saveProject(saved));
    const QString title = m_window->windowTitle();
    QVERIFY2(title.startsWith("stage%1.rpproj[*] - Runplan Release 3.17.0 [Build 20250205-2cbee83]"), qPrintable(title));
    const char* const selectors[] = {"m_DLSupply_Combo", "m_DLFixture_Combo", "m_DL_LineVoltage_Combo",
                                     "m_DL_MaxLoad_Combo", "m_frequencyComboBox", "m_DLController_Combo"};
    auto choices = [&]() {
        QStringList out;
        for (const char* name : selectors)
            out << QString::number(find<QComboBox>(name)->currentIndex());
        return out;
    };
    const QStringList before = choices();

    // Not a project: refused with an "Open Error"; nothing in the window changes, so Save cannot
    // write over the file.
    const QString text = m_dir->filePath("notes.rpproj");
    QFile notes(text);
    QVERIFY(notes.open(QIODevice::WriteOnly) && notes.write("shopping list\n") > 0);
    notes.close();
    RecordingReporter messages;
    ScopedGlobalReporter scope(&messages);
    m_prompter->openAnswers << text;
    find<QAction>("actionOpen")->trigger();
    QCOMPARE(messages.messages.size(), 1);
    QCOMPARE(messages.messages.at(0).title, QStringLiteral("Open Error"));
    QCOMPARE(m_window->windowTitle(), title);
    QCOMPARE(m_window->currentFilePath(), saved);
    QCOMPARE(choices(), before);
    QCOMPARE(doc()->count(ItemFixture), 2);
    QVERIFY(m_window->statusBar()->currentMessage().startsWith("Failed to open configuration " + text));

    // A project that breaks off opens as far as it goes, the failure line goes, and the first
    // Save over it asks: No keeps the file, Yes replaces it, and later Saves ask no more.
    const QString part = m_dir->filePath("part.rpproj");
    const QByteArray whole = fileText(saved).toUtf8();
    const QByteArray cut = whole.left(whole.indexOf("<CWidget CWidgetItemType=\"3\""));
    QFile partFile(part);
    QVERIFY(partFile.open(QIODevice::WriteOnly) && partFile.write(cut) == cut.size());
    partFile.close();
    m_prompter->openAnswers << part;
    find<QAction>("actionOpen")->trigger();
    QCOMPARE(messages.messages.size(), 1);
    QCOMPARE(m_window->currentFilePath(), part);
    QCOMPARE(doc()->count(ItemFixture), 1);
    QCOMPARE(m_window->statusBar()->currentMessage(), QString());
    m_prompter->notReadWholeAnswers << false << true;
    find<QAction>("actionSave")->trigger();
    QCOMPARE(m_prompter->asked.last(), QStringLiteral("notReadWhole"));
    QCOMPARE(m_prompter->lastArgs, QStringList{"part.rpproj"});
    QCOMPARE(fileText(part).toUtf8(), cut);
    find<QAction>("actionSave")->trigger();
    QVERIFY(fileText(part).endsWith("</Runplan>\n"));
    const int asked = m_prompter->asked.size();
    find<QAction>("actionSave")->trigger();
    QCOMPARE(m_prompter->asked.size(), asked);

    // New after a project that matched no selector entry leaves every selector with one.
    QVERIFY(partFile.open(QIODevice::WriteOnly | QIODevice::Truncate));
    partFile.write("<Runplan CurrentSupplyName=\"Gone\" Frequency=\"1\" LineVoltage=\"7\"><CFrame><CWidget");
    partFile.close();
    m_prompter->openAnswers << part;
    find<QAction>("actionOpen")->trigger();
    QVERIFY(!m_window->notReadWholeReason().isEmpty());
    QCOMPARE(find<QComboBox>("m_frequencyComboBox")->currentIndex(), -1);
    find<QAction>("actionNew")->trigger();
    for (const char* name : selectors) {
        const QComboBox* combo = find<QComboBox>(name);
        QVERIFY2(combo->count() == 0 || combo->currentIndex() >= 0, name);
    }
    QCOMPARE(find<QComboBox>("m_frequencyComboBox")->currentText(), QStringLiteral("60 Hz"));
    QVERIFY(m_window->notReadWholeReason().isEmpty());
}

void TestMainWindow::failedExportKeepsTheOldFile()
{
    // The write stops part-way (the file-size limit binds root too and stands in for a full
    // disk): the earlier export stays byte for byte and no temporary file is left.
    const QString csv = m_dir->filePath("fixture.csv");
    QFile old(csv);
    QVERIFY(old.open(QIODevice::WriteOnly) && old.write("old,table\n") == 10);
    old.close();
    struct rlimit saved {};
    QCOMPARE(getrlimit(RLIMIT_FSIZE, &saved), 0);
    const struct rlimit small{16, saved.rlim_max};
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    m_prompter->saveAnswers << csv;
    QCOMPARE(setrlimit(RLIMIT_FSIZE, &small), 0);
    find<QAction>("actionMaximizeFixture")->trigger();
    setrlimit(RLIMIT_FSIZE, &saved);
    std::signal(SIGXFSZ, handler);
    QCOMPARE(fileText(csv), QStringLiteral("old,table\n"));
    QCOMPARE(QDir(m_dir->path()).entryList(QDir::Files), QStringList{"fixture.csv"});

    // Without the limit the same export replaces it.
    m_prompter->saveAnswers << csv;
    find<QAction>("actionMaximizeFixture")->trigger();
    QVERIFY(fileText(csv).startsWith("Fixtures, "));
}

void TestMainWindow::fieldsAndLogShowOnlyTheirOwn()
{
    // A Feedwise run 500 ft long, then its enabler deleted: the disabled field keeps no length.
    QLineEdit* feedwise = find<QLineEdit>("m_DL_Total_PLC_Length_Edit");
    doc()->root()->applyEditorValue(PropOutputMode, QStringLiteral("Feedwise"));
    doc()->setCurrent(doc()->root());
    click("m_DL_AddJunctionBox_Button");
    auto* wire = qobject_cast<BranchWireWidget*>(doc()->root()->child(0));
    QVERIFY(wire);
    wire->setLength(500.0);
    m_window->DL_Update();
    QVERIFY(feedwise->isEnabled());
    QCOMPARE(feedwise->text(), QStringLiteral("500.0"));
    // A load of exactly 1 (294 ft where the location is not in the catalog) is over: red.
    wire->setLocation(QStringLiteral("Tunnel"));
    wire->setLength(294.0);
    m_window->DL_Update();
    QCOMPARE(feedwise->palette().color(QPalette::Base), Runplan::failingFieldColor());
    doc()->setCurrent(doc()->root());
    m_prompter->deleteAnswers << true;
    m_window->DL_DeleteLast();
    QCOMPARE(doc()->count(ItemAny), 1);
    QVERIFY(!feedwise->isEnabled());
    QCOMPARE(feedwise->text(), QString());
    QCOMPARE(feedwise->palette().color(QPalette::Base), Runplan::clearedFieldColor());

    // A line appended in red leaves the user's selection in the log as it was.
    QTextEdit* log = find<QTextEdit>("m_messageBox");
    QTextCursor selection(log->document());
    selection.movePosition(QTextCursor::EndOfBlock, QTextCursor::KeepAnchor);
    log->setTextCursor(selection);
    const QString selected = log->textCursor().selectedText();
    m_window->statusMessage(QStringLiteral("over <b>limit</b>"), Runplan::failingLogColor());
    QCOMPARE(log->textCursor().selectedText(), selected);
    auto colour = [](const QTextBlock& block) { return block.begin().fragment().charFormat().foreground().color(); };
    QCOMPARE(colour(log->document()->firstBlock()), Runplan::passingLogColor());
    QCOMPARE(log->document()->lastBlock().text(), QStringLiteral("over <b>limit</b>"));
    QCOMPARE(colour(log->document()->lastBlock()), Runplan::failingLogColor());
}

// The boxes themselves, handed to a dialog runner that answers with the default button.
class DefaultAnswer : public DialogPrompter
{
public:
    QStringList seen;
    int execDialog(QDialog* dialog) override
    {
        auto* box = qobject_cast<QMessageBox*>(dialog);
        if (!box)
            return QDialog::Rejected;
        seen << box->windowTitle() << box->text() << box->defaultButton()->text();
        const int answer = box->standardButton(box->defaultButton());
        box->defaultButton()->click();
        return answer;
    }
};

void TestMainWindow::questionBoxes()
{
    DefaultAnswer prompter;
    QVERIFY(!prompter.askReplace(m_window, m_dir->filePath("plan.rpproj")));
    QVERIFY(!prompter.askReplaceNotReadWhole(m_window, QStringLiteral("stage%1.rpproj")));
    QCOMPARE(prompter.seen, (QStringList{"Runplan", "\"plan.rpproj\" already exists. Do you want to replace it?",
                                         "Cancel", "Runplan",
                                         "stage%1.rpproj was not read completely. Replace it with the "
                                         "configuration as shown?",
                                         "&No"}));
}

void TestMainWindow::withoutACatalog()
{
    // In the copy: no catalog, so no analysis ever fills the result labels.
    if (!qEnvironmentVariableIsEmpty("RUNPLAN_TEST_NO_CATALOG")) {
        QVERIFY(!Database::instance()->isValid());
        QCOMPARE(find<QLabel>("m_DL_DerateLoad_Label")->text(), QString());
        QCOMPARE(find<QLabel>("m_DL_TotalFixtures_Label")->text(), QString());
        return;
    }
    const QString copy = m_dir->filePath("tst_mainwindow");
    QVERIFY(QFile::copy(QCoreApplication::applicationFilePath(), copy));
    QProcess child;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert("RUNPLAN_TEST_NO_CATALOG", "1");
    child.setProcessEnvironment(env);
    child.start(copy, {"withoutACatalog"});
    QVERIFY(child.waitForFinished(120000));
    QVERIFY2(child.exitStatus() == QProcess::NormalExit && child.exitCode() == 0,
             child.readAllStandardOutput().constData());
}

// File › "Export Report..." and "Export Bill of Materials..." write what the user names; View ›
// "Show Voltages" is off until chosen, and then remembered.
void TestMainWindow::designExportsAndShowVoltages()
{
    auto* show = find<QAction>("actionShowVoltages");
    auto* canvas = find<CFrame>("m_DL_Frame");
    QVERIFY(show->isCheckable() && !show->isChecked());
    QVERIFY(!canvas->showsVoltages());
    show->trigger();
    QVERIFY(canvas->showsVoltages());
    {
        Runplan again;
        QVERIFY(again.findChild<QAction*>(QStringLiteral("actionShowVoltages"))->isChecked());
        QVERIFY(again.findChild<CFrame*>(QStringLiteral("m_DL_Frame"))->showsVoltages());
    }
    show->trigger();
    QVERIFY(!QSettings().value(QStringLiteral("rplan_show_voltages")).toBool());

    const QString csv = m_dir->filePath(QStringLiteral("parts.csv"));
    const QString pdf = m_dir->filePath(QStringLiteral("plan.pdf"));
    m_prompter->saveAnswers = {csv, pdf, QString()};
    find<QAction>("actionExportBillOfMaterials")->trigger();
    QVERIFY(m_prompter->lastArgs.value(1).endsWith(QStringLiteral("untitled.csv")));
    QVERIFY(fileText(csv).startsWith(QStringLiteral("Kind,Catalog Name,")));
    find<QAction>("actionExportReport")->trigger();
    QFile report(pdf);
    QVERIFY(report.open(QIODevice::ReadOnly));
    QVERIFY(report.read(5) == "%PDF-");
    find<QAction>("actionExportReport")->trigger(); // cancelled: nothing written
    QCOMPARE(m_prompter->asked, (QStringList{"save", "save", "save"}));
}

QTEST_MAIN(TestMainWindow)
#include "tst_mainwindow.moc"
