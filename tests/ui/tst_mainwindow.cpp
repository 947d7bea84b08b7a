// The main window driven as a user would: selectors, add buttons, document commands and exports,
// with every question answered through a scripted prompter.

#include "TestSupport.h"
#include "app/AboutDialog.h"
#include "app/Prompter.h"
#include "app/Runplan.h"
#include "calc/Session.h"
#include "canvas/CFrame.h"
#include "catalog/Database.h"
#include "model/CWidget.h"
#include "model/CWidgetModel.h"
#include "model/ConfigDocument.h"
#include "model/view/CWidgetTableView.h"
#include "update/SettingsDlg.h"

#include <QAction>
#include <QBuffer>
#include <QCloseEvent>
#include <QComboBox>
#include <QDialog>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSettings>
#include <QSignalSpy>
#include <QSpinBox>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QTest>
#include <QTextBlock>
#include <QTextCursor>
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
    QList<bool> deleteAnswers;
    int dialogResult = QDialog::Rejected;

    QStringList asked;
    QStringList unexpected;
    QString lastCaption, lastDirOrProposal, lastFilter, lastReplacePath, lastDisplayName;
    QStringList dialogsRun;

    QString getOpenFileName(QWidget*, const QString& caption, const QString& dir,
                            const QString& filter) override
    {
        asked << "open";
        lastCaption = caption;
        lastDirOrProposal = dir;
        lastFilter = filter;
        return take(openAnswers, "open", QString());
    }
    QString getSaveFileName(QWidget*, const QString& caption, const QString& proposed,
                            const QString& filter) override
    {
        asked << "save";
        lastCaption = caption;
        lastDirOrProposal = proposed;
        lastFilter = filter;
        return take(saveAnswers, "save", QString());
    }
    bool askClearConfiguration(QWidget*) override
    {
        asked << "clear";
        return take(clearAnswers, "clear", false);
    }
    SaveChoice askSaveChanges(QWidget*, const QString& displayName) override
    {
        asked << "saveChanges";
        lastDisplayName = displayName;
        return take(saveChangesAnswers, "saveChanges", SaveChoice::Cancel);
    }
    bool askReplace(QWidget*, const QString& filePath) override
    {
        asked << "replace";
        lastReplacePath = filePath;
        return take(replaceAnswers, "replace", false);
    }
    bool confirmDelete(QWidget*) override
    {
        asked << "delete";
        return take(deleteAnswers, "delete", false);
    }
    int execDialog(QDialog* dialog) override
    {
        dialogsRun << QString::fromLatin1(dialog->metaObject()->className());
        return dialogResult;
    }

private:
    template <typename T> T take(QList<T>& queue, const char* what, T fallback)
    {
        if (queue.isEmpty()) {
            unexpected << QString::fromLatin1(what);
            return fallback;
        }
        return queue.takeFirst();
    }
};

class TestMainWindow : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void startsWithItsDefaults();
    void addButtonsFollowTheSelection();
    void enablerChangeAsksBeforeClearing();
    void fixtureChangeAsksWhenFamiliesDiffer();
    void customVoltageAndLoad();
    void inputChangesRecalculate();
    void resultsColourTheTotalsAndLog();
    void deleteKeyAndEmptyCanvas();
    void zoomItemsSendFactors();
    void saveAsNamesAndReplaces();
    void newAndOpenAskAboutUnsavedChanges();
    void closeStoresWindowSettings();
    void maximizeMatchesTheEngine();
    void interactiveExportWritesChosenFile();
    void dialogsGoThroughThePrompter();
    void commandLineOpensTheProject();

private:
    // The window's widgets, found by their object names.
    template <typename T> T* find(const char* name) const
    {
        T* w = m_window->findChild<T*>(QString::fromLatin1(name));
        if (!w)
            qFatal("no widget or action named %s", name);
        return w;
    }
    ConfigDocument* doc() const { return m_window->document(); }
    CWidget* current() const { return doc()->current(); }
    void select(const CWidget* w) { doc()->setCurrent(w); }
    int supplyIndex(const QString& name) const { return find<QComboBox>("m_DLSupply_Combo")->findText(name); }
    int fixtureIndex(const QString& name) const
    {
        return find<QComboBox>("m_DLFixture_Combo")->findText(name);
    }
    QStringList logLines() const
    {
        return find<QTextEdit>("m_messageBox")->toPlainText().split(QLatin1Char('\n'));
    }
    QColor lastLogColor() const
    {
        QTextCursor cursor(find<QTextEdit>("m_messageBox")->document()->lastBlock());
        cursor.movePosition(QTextCursor::EndOfBlock);
        return cursor.charFormat().foreground().color();
    }
    QColor baseColor(const QWidget* w) const { return w->palette().color(QPalette::Active, QPalette::Base); }

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
    if (m_prompter)
        QVERIFY2(m_prompter->unexpected.isEmpty(), qPrintable(m_prompter->unexpected.join(", ")));
    // Nothing left to save: closing must not ask.
    doc()->setModified(false);
    delete m_window;
    m_window = nullptr;
    delete m_prompter;
    m_prompter = nullptr;
    delete m_dir;
    m_dir = nullptr;
}

void TestMainWindow::startsWithItsDefaults()
{
    QCOMPARE(m_window->windowTitle(),
             QStringLiteral("Untitled.rpproj[*] - Runplan Release 3.17.0 [Build 20250205-2cbee83]"));
    QCOMPARE(m_window->size(), QSize(893, 782));
    QVERIFY(find<QAction>("actionLineColorKey")->isChecked());
    QVERIFY(!m_window->frame()->lineKey()->isHidden());
    QCOMPARE(find<QTabWidget>("tabWidget")->count(), 1);
    QCOMPARE(find<QTabWidget>("tabWidget")->tabText(0), QStringLiteral("Dynaline"));
    QVERIFY(find<QPushButton>("m_DL_AddReceiver_Button")->isHidden());

    const QStringList log = logLines();
    QCOMPARE(log.value(0), QStringLiteral("Vorlux Runplan Version  3.17.0 Build 20250205-2cbee83"));
    QCOMPARE(log.value(1), QStringLiteral("Database version %1").arg(Database::instance()->version()));
    QVERIFY2(log.size() > 2, "the first enabler is analysed at start");

    const Database* db = Database::instance();
    QCOMPARE(find<QComboBox>("m_DLSupply_Combo")->count(), db->supplies().size());
    QCOMPARE(find<QComboBox>("m_DLSupply_Combo")->currentText(), db->supplies().first()->name);
    QCOMPARE(find<QComboBox>("m_DLFixture_Combo")->count(), db->supplies().first()->fixtures.size());
    QCOMPARE(find<QComboBox>("m_DL_LineVoltage_Combo")->currentText(), QStringLiteral("120"));
    QCOMPARE(find<QComboBox>("m_DL_MaxLoad_Combo")->currentText(), QStringLiteral("15"));
    QVERIFY(find<QSpinBox>("m_DL_LineVoltage_Spin")->isHidden());
    QVERIFY(find<QSpinBox>("m_DL_MaxLoad_Spin")->isHidden());
    QCOMPARE(find<QComboBox>("m_zoomComboBox")->count(), 10);
    QCOMPARE(find<QComboBox>("m_zoomComboBox")->itemText(0), QStringLiteral("10%"));
    QCOMPARE(find<QComboBox>("m_zoomComboBox")->currentText(), QStringLiteral("100%"));

    // One enabler, current, and nothing to save yet.
    QCOMPARE(doc()->count(ItemAny), 1);
    QVERIFY(current() && current()->itemType() == ItemSupply);
    QVERIFY(!doc()->isModified());

    QCOMPARE(find<QAction>("actionSaveAs")->shortcut(), QKeySequence(QStringLiteral("Ctrl+A")));
    QCOMPARE(find<QAction>("actionOpen")->statusTip(),
             QStringLiteral("Open an exisiting configuration, checking for unsaved changes"));
    QCOMPARE(find<QAction>("actionSaveAs")->statusTip(),
             QStringLiteral("Save the current configuration to as a new filename"));
    QVERIFY(!find<QAction>("actionNew")->icon().isNull());
    QVERIFY(!find<QAction>("actionDelete")->icon().isNull());
    QVERIFY(!m_window->windowIcon().isNull());
}

void TestMainWindow::addButtonsFollowTheSelection()
{
    auto enabled = [this]() {
        QStringList on;
        const QList<QPair<QString, QPushButton*>> buttons{
            {"fixture", find<QPushButton>("m_DL_AddFixture_Button")},
            {"jumper", find<QPushButton>("m_DL_AddJumper_Button")},
            {"leader", find<QPushButton>("m_DL_AddLeader_Button")},
            {"receiver", find<QPushButton>("m_DL_AddReceiver_Button")},
            {"box", find<QPushButton>("m_DL_AddJunctionBox_Button")},
            {"enabler", find<QPushButton>("m_DL_AddSupply_Button")},
            {"maximize", find<QPushButton>("m_DL_Maximize_Button")}};
        for (const auto& b : buttons)
            if (b.second->isEnabled())
                on << b.first;
        return on.join(' ');
    };

    // An enabler on the Dynaline side without anything attached.
    CWidget* supply = doc()->root();
    QCOMPARE(supply->locationText(), QStringLiteral("Dynaline"));
    select(supply);
    // The jumper button is not part of the supply's rows: it keeps its earlier state.
    QCOMPARE(enabled().remove("jumper").simplified(), QStringLiteral("fixture leader box maximize"));

    // A fixture: room for one child.
    QTest::mouseClick(find<QPushButton>("m_DL_AddFixture_Button"), Qt::LeftButton);
    CWidget* fixture = current();
    QCOMPARE(fixture->itemType(), int(ItemFixture));
    QCOMPARE(enabled(), QStringLiteral("fixture jumper maximize"));

    // An enabler with a child offers nothing of the first group.
    select(supply);
    QVERIFY(!find<QPushButton>("m_DL_AddFixture_Button")->isEnabled());
    QVERIFY(!find<QPushButton>("m_DL_AddLeader_Button")->isEnabled());
    QVERIFY(!find<QPushButton>("m_DL_Maximize_Button")->isEnabled());

    // A jumper at the end of the run, then its fixture, now full.
    select(fixture);
    QTest::mouseClick(find<QPushButton>("m_DL_AddJumper_Button"), Qt::LeftButton);
    CWidget* jumper = current();
    QCOMPARE(jumper->itemType(), int(ItemJumper));
    QCOMPARE(enabled().remove("jumper").simplified(), QStringLiteral("fixture maximize"));
    select(fixture);
    QCOMPARE(enabled(), QString());

    // A junction box on the Dynaline side: fixtures, leaders, enablers and more boxes.
    m_window->on_m_DL_Reset_Button_clicked();
    QTest::mouseClick(find<QPushButton>("m_DL_AddJunctionBox_Button"), Qt::LeftButton);
    CWidget* box = current();
    QCOMPARE(box->itemType(), int(ItemJunctionBox));
    QCOMPARE(enabled().remove("jumper").simplified(), QStringLiteral("fixture leader box enabler maximize"));

    // Its branch wire, left without the box: boxes and Maximize only on the Dynaline side.
    CWidget* wire = box->parentWidget();
    QCOMPARE(wire->itemType(), int(ItemBranchWire));
    select(box);
    m_window->DL_DeleteLast();
    QCOMPARE(current(), wire);
    QCOMPARE(enabled().remove("jumper").simplified(), QStringLiteral("box maximize"));
    select(wire->parentWidget());
    QVERIFY(!find<QPushButton>("m_DL_AddFixture_Button")->isEnabled()); // the supply has a child now

    // A Feedwise enabler: receivers and further enablers; Maximize and fixtures unless family 1.
    m_window->on_m_DL_Reset_Button_clicked();
    supply = doc()->root();
    supply->applyEditorValue(PropOutputMode, QStringLiteral("Feedwise"));
    select(supply);
    QCOMPARE(supply->locationText(), QStringLiteral("Feedwise"));
    QCOMPARE(enabled().remove("jumper").simplified(),
             QStringLiteral("fixture receiver box enabler maximize"));
    m_window->selectFixtureIndex(fixtureIndex(QStringLiteral("Linea Inline Dynaline 1ft"))); // family 1
    select(supply);
    QCOMPARE(enabled().remove("jumper").simplified(), QStringLiteral("receiver box enabler"));

    // A receiver placed there (the hidden button, as a project would bring it).
    m_window->selectFixtureIndex(0);
    select(supply);
    m_window->on_m_DL_AddReceiver_Button_clicked();
    CWidget* receiver = current();
    QCOMPARE(receiver->itemType(), int(ItemReceiver));
    const auto* r = static_cast<const ReceiverWidget*>(receiver);
    QString expected;
    if (r->canTakeFixtures())
        expected += "fixture leader ";
    if (r->canTakeJunctionBox())
        expected += "receiver box ";
    if (r->canTakeFixtures())
        expected += "maximize";
    QCOMPARE(enabled().remove("jumper").simplified(), expected.simplified());
    QVERIFY2(r->canTakeFixtures(), "the catalog's receiver takes fixtures");

    // The Feedwise branch wire above the receiver has a child: no Maximize.
    select(receiver->parentWidget());
    QVERIFY(!find<QPushButton>("m_DL_Maximize_Button")->isEnabled());

    // Nothing selected.
    doc()->setCurrentIndex(QModelIndex());
    QCOMPARE(enabled(), QString());
}

void TestMainWindow::enablerChangeAsksBeforeClearing()
{
    const int sfp = supplyIndex(QStringLiteral("Signal Feeder Pro"));
    const int lv = supplyIndex(QStringLiteral("Line Voltage"));
    QVERIFY(sfp >= 0 && lv >= 0 && sfp != lv);
    QVERIFY(find<QComboBox>("m_DLController_Combo")->count() > 0); // the first enabler can feed receivers

    // A lone enabler is replaced without a question.
    find<QComboBox>("m_DLSupply_Combo")->setCurrentIndex(lv);
    QVERIFY(m_prompter->asked.isEmpty());
    QCOMPARE(doc()->root()->catalogItem()->name, QStringLiteral("Line Voltage"));
    QCOMPARE(find<QComboBox>("m_DLController_Combo")->count(), 0);
    const DLPowerSupply* lvRecord = Database::instance()->supplyNamed(QStringLiteral("Line Voltage"));
    QCOMPARE(find<QComboBox>("m_DLFixture_Combo")->count(), lvRecord->fixtures.size());
    QCOMPARE(find<QComboBox>("m_DLFixture_Combo")->itemText(lvRecord->fixtures.size() - 1),
             lvRecord->fixtures.last()->name);

    // With a run built, No keeps everything as it was.
    QTest::mouseClick(find<QPushButton>("m_DL_AddFixture_Button"), Qt::LeftButton);
    QCOMPARE(doc()->count(ItemAny), 2);
    m_prompter->clearAnswers << false;
    find<QComboBox>("m_DLSupply_Combo")->setCurrentIndex(sfp);
    QCOMPARE(m_prompter->asked, QStringList{"clear"});
    QCOMPARE(find<QComboBox>("m_DLSupply_Combo")->currentIndex(), lv);
    QCOMPARE(doc()->count(ItemAny), 2);
    QCOMPARE(doc()->root()->catalogItem()->name, QStringLiteral("Line Voltage"));

    // Yes clears the run and starts over from the new enabler.
    m_prompter->clearAnswers << true;
    find<QComboBox>("m_DLSupply_Combo")->setCurrentIndex(sfp);
    QCOMPARE(m_prompter->asked.size(), 2);
    QCOMPARE(doc()->count(ItemAny), 1);
    QCOMPARE(doc()->root()->catalogItem()->name, QStringLiteral("Signal Feeder Pro"));
    QCOMPARE(find<QComboBox>("m_DLController_Combo")->count(), Database::instance()->controllers().size());

    // Changes made by the program itself never ask.
    QTest::mouseClick(find<QPushButton>("m_DL_AddFixture_Button"), Qt::LeftButton);
    m_window->selectEnabler(lvRecord);
    QCOMPARE(m_prompter->asked.size(), 2);
    QCOMPARE(doc()->count(ItemAny), 1);
    QVERIFY(m_window->isInteractiveChange());
}

void TestMainWindow::fixtureChangeAsksWhenFamiliesDiffer()
{
    QComboBox* fixtures = find<QComboBox>("m_DLFixture_Combo");
    QComboBox* volts = find<QComboBox>("m_DL_LineVoltage_Combo");
    const int troughA =
        fixtureIndex(QStringLiteral("Linea Trough Model A Dynaline 6in (100v - 120v)")); // family 2
    const int troughB =
        fixtureIndex(QStringLiteral("Linea Trough Model B Dynaline 6in (100v - 120v)")); // family 2
    const int tunable = fixtureIndex(QStringLiteral("Stylebar Tunable Dynaline 1ft"));   // family 3
    QVERIFY(troughA >= 0 && troughB >= 0 && tunable >= 0);

    // An empty run changes fixture freely; the voltage list becomes the fixture's.
    fixtures->setCurrentIndex(troughA);
    QVERIFY(m_prompter->asked.isEmpty());
    QStringList items;
    for (int i = 0; i < volts->count(); ++i)
        items << volts->itemText(i);
    QCOMPARE(items, (QStringList{"100", "120", "Other"}));
    QCOMPARE(volts->currentText(), QStringLiteral("120"));
    volts->setCurrentIndex(volts->findText("100"));

    // Placed fixtures of the same family stay.
    QTest::mouseClick(find<QPushButton>("m_DL_AddFixture_Button"), Qt::LeftButton);
    fixtures->setCurrentIndex(troughB);
    QVERIFY(m_prompter->asked.isEmpty());
    QCOMPARE(doc()->count(ItemFixture), 1);

    // Another family: No puts the fixture back and keeps the run.
    m_prompter->clearAnswers << false;
    fixtures->setCurrentIndex(tunable);
    QCOMPARE(m_prompter->asked, QStringList{"clear"});
    QCOMPARE(fixtures->currentIndex(), troughB);
    QCOMPARE(doc()->count(ItemFixture), 1);
    QCOMPARE(volts->currentText(), QStringLiteral("100"));

    // Yes clears it; the chosen voltage is kept where the new fixture offers it.
    m_prompter->clearAnswers << true;
    fixtures->setCurrentIndex(tunable);
    QCOMPARE(m_prompter->asked.size(), 2);
    QCOMPARE(doc()->count(ItemAny), 1);
    QCOMPARE(volts->count(), 7);
    QCOMPARE(volts->currentText(), QStringLiteral("100"));
    QCOMPARE(volts->currentData().toInt(), 100);

    // A voltage the new fixture lacks gives way to the fixture's starting voltage.
    volts->setCurrentIndex(volts->findText("277"));
    find<QComboBox>("m_DLSupply_Combo")->setCurrentIndex(supplyIndex(QStringLiteral("Line Voltage")));
    fixtures->setCurrentIndex(
        fixtureIndex(QStringLiteral("Linea Trough Model A Dynaline 6in (100v - 120v)")));
    QCOMPARE(volts->currentText(), QStringLiteral("120"));
    fixtures->setCurrentIndex(fixtureIndex(QStringLiteral("Linea Cove Dynaline 4ft (208v - 277v)")));
    QCOMPARE(volts->currentText(), QStringLiteral("277"));

    // "Other" survives a change of fixture.
    volts->setCurrentIndex(volts->count() - 1);
    QVERIFY(!find<QSpinBox>("m_DL_LineVoltage_Spin")->isHidden());
    fixtures->setCurrentIndex(fixtureIndex(QStringLiteral("Linea Cove Dynaline 2ft")));
    QCOMPARE(volts->currentText(), QStringLiteral("Other"));
    QVERIFY(!find<QSpinBox>("m_DL_LineVoltage_Spin")->isHidden());
}

void TestMainWindow::customVoltageAndLoad()
{
    QComboBox* volts = find<QComboBox>("m_DL_LineVoltage_Combo");
    QSpinBox* voltSpin = find<QSpinBox>("m_DL_LineVoltage_Spin");
    QCOMPARE(voltSpin->minimum(), 100);
    QCOMPARE(voltSpin->maximum(), 277);

    volts->setCurrentIndex(volts->findText(QStringLiteral("Other")));
    QVERIFY(!voltSpin->isHidden());
    voltSpin->setValue(230);
    QCOMPARE(m_window->circuitInputs().lineVoltage, 230.0);
    QCOMPARE(m_window->lineVoltageText(), QStringLiteral("Other"));
    QCOMPARE(m_window->customLineVoltage(), 230);
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

    find<QComboBox>("m_frequencyComboBox")->setCurrentIndex(0);
    QCOMPARE(m_window->circuitInputs().frequency, 50);
    find<QComboBox>("m_frequencyComboBox")->setCurrentIndex(1);
    QCOMPARE(m_window->circuitInputs().frequency, 60);
}

void TestMainWindow::inputChangesRecalculate()
{
    QTest::mouseClick(find<QPushButton>("m_DL_AddFixture_Button"), Qt::LeftButton);
    QStringList order;
    connect(m_window, &Runplan::clearCalculations, this, [&]() { order << "clear"; });
    QColor colourAtParam;
    QString textAtParam = QStringLiteral("unset");
    connect(m_window, &Runplan::paramChanged, this, [&]() {
        order << "param";
        colourAtParam = baseColor(find<QLineEdit>("m_DL_TotalPowerWatts_Edit"));
        textAtParam = find<QLineEdit>("m_DL_TotalPowerWatts_Edit")->text();
    });

    const int before = logLines().size();
    find<QComboBox>("m_DL_LineVoltage_Combo")
        ->setCurrentIndex(find<QComboBox>("m_DL_LineVoltage_Combo")->findText("100"));
    QCOMPARE(order, (QStringList{"clear", "param"}));
    // The results are greyed before the canvas hears of the change.
    QCOMPARE(colourAtParam, Runplan::clearedFieldColor());
    QCOMPARE(textAtParam, QString());
    QVERIFY2(logLines().size() > before, "a new voltage is analysed at once");
    QVERIFY(!find<QLineEdit>("m_DL_TotalPowerWatts_Edit")->text().isEmpty());
    QVERIFY(doc()->isModified());

    // The controller only counts as a changed input.
    order.clear();
    const int afterVoltage = logLines().size();
    find<QComboBox>("m_DLController_Combo")->setCurrentIndex(1);
    QCOMPARE(order, QStringList{"param"});
    QVERIFY(logLines().size() > afterVoltage);

    // The summary reflects what the selectors say.
    const AnalysisResult expected = analyze(doc()->root(), m_window->circuitInputs(), *Database::instance());
    QCOMPARE(logLines().last(), expected.summaryLine.split('\n').last());
    QCOMPARE(find<QLineEdit>("m_DL_TotalPowerWatts_Edit")->text(), expected.powerText);
    QCOMPARE(find<QLineEdit>("m_DL_TotalPowerAmps_Edit")->text(), expected.currentText);
    QCOMPARE(find<QLabel>("m_DL_TotalFixtures_Label")->text(), QStringLiteral("Total Fixtures: 1"));
}

void TestMainWindow::resultsColourTheTotalsAndLog()
{
    // 40 W fixtures: three of them draw about an ampere at 120 V.
    QComboBox* fixtures = find<QComboBox>("m_DLFixture_Combo");
    fixtures->setCurrentIndex(fixtures->findText(QStringLiteral("Stylebar Tint (RGBA/RGBW) Dynaline 4ft")));
    for (int i = 0; i < 3; ++i) {
        QTest::mouseClick(find<QPushButton>("m_DL_AddFixture_Button"), Qt::LeftButton);
        QTest::mouseClick(find<QPushButton>("m_DL_AddJumper_Button"), Qt::LeftButton);
    }
    QVERIFY(m_window->lastResult().pass);
    QCOMPARE(baseColor(find<QLineEdit>("m_DL_TotalPowerWatts_Edit")), Runplan::passingFieldColor());
    QCOMPARE(baseColor(find<QLineEdit>("m_DL_TotalPowerAmps_Edit")), Runplan::passingFieldColor());
    QCOMPARE(lastLogColor(), Runplan::passingLogColor());
    QCOMPARE(find<QLabel>("m_DL_TotalFixtures_Label")->text(), QStringLiteral("Total Fixtures: 3"));
    // A Dynaline enabler has no Feedwise wiring to measure.
    QVERIFY(!find<QLineEdit>("m_DL_Total_PLC_Length_Edit")->isEnabled());

    // A one-ampere circuit (0.8 A derated) is too small for them.
    QComboBox* load = find<QComboBox>("m_DL_MaxLoad_Combo");
    find<QSpinBox>("m_DL_MaxLoad_Spin")->setValue(1);
    load->setCurrentIndex(load->count() - 1);
    QVERIFY(!m_window->lastResult().pass);
    QVERIFY(!doc()->passFlag());
    QCOMPARE(baseColor(find<QLineEdit>("m_DL_TotalPowerWatts_Edit")), Runplan::failingFieldColor());
    QCOMPARE(lastLogColor(), Runplan::failingLogColor());
    QVERIFY(find<QTextEdit>("m_messageBox")->toPlainText().contains("exceeded the maximum load of 0.8."));

    // "Clear" empties the log.
    QTest::mouseClick(find<QPushButton>("m_clearLogButton"), Qt::LeftButton);
    QVERIFY(find<QTextEdit>("m_messageBox")->toPlainText().isEmpty());

    // A Feedwise enabler shows its Feedwise length.
    load->setCurrentIndex(0);
    m_window->on_m_DL_Reset_Button_clicked();
    doc()->root()->applyEditorValue(PropOutputMode, QStringLiteral("Feedwise"));
    m_window->on_m_DL_AddReceiver_Button_clicked();
    QVERIFY(find<QLineEdit>("m_DL_Total_PLC_Length_Edit")->isEnabled());
    QCOMPARE(find<QLineEdit>("m_DL_Total_PLC_Length_Edit")->text(), m_window->lastResult().feedwiseText);
    QVERIFY(!find<QLineEdit>("m_DL_Total_PLC_Length_Edit")->text().isEmpty());
}

void TestMainWindow::deleteKeyAndEmptyCanvas()
{
    QTest::mouseClick(find<QPushButton>("m_DL_AddFixture_Button"), Qt::LeftButton);
    QTest::mouseClick(find<QPushButton>("m_DL_AddJumper_Button"), Qt::LeftButton);
    CWidget* jumper = current();
    CWidget* fixture = jumper->parentWidget();

    // The Delete key works wherever the focus is; a leaf goes without a question.
    find<QComboBox>("m_frequencyComboBox")->setFocus();
    QKeyEvent press(QEvent::KeyPress, Qt::Key_Delete, Qt::NoModifier);
    QApplication::sendEvent(m_window, &press);
    QCOMPARE(doc()->count(ItemJumper), 0);
    QCOMPARE(current(), fixture);
    QVERIFY(m_prompter->asked.isEmpty());

    // A component with others attached asks; No keeps it.
    QTest::mouseClick(find<QPushButton>("m_DL_AddJumper_Button"), Qt::LeftButton);
    select(fixture);
    m_prompter->deleteAnswers << false;
    find<QAction>("actionDelete")->trigger();
    QCOMPARE(m_prompter->asked, QStringList{"delete"});
    QCOMPARE(doc()->count(ItemAny), 3);

    // Deleting the enabler itself leaves a fresh enabler behind.
    select(doc()->root());
    m_prompter->deleteAnswers << true;
    m_window->DL_DeleteLast();
    QCOMPARE(doc()->count(ItemAny), 1);
    QCOMPARE(doc()->root()->itemType(), int(ItemSupply));
}

void TestMainWindow::zoomItemsSendFactors()
{
    QSignalSpy spy(m_window, &Runplan::zoomLevelChanged);
    find<QComboBox>("m_zoomComboBox")->setCurrentIndex(0);
    find<QComboBox>("m_zoomComboBox")->setCurrentIndex(4);
    find<QComboBox>("m_zoomComboBox")->setCurrentIndex(9);
    QCOMPARE(spy.size(), 3);
    QCOMPARE(spy.at(0).at(0).toDouble(), 0.1);
    QCOMPARE(spy.at(1).at(0).toDouble(), 0.5);
    QCOMPARE(spy.at(2).at(0).toDouble(), 1.0);
    QCOMPARE(m_window->frame()->zoom(), 1.0);
    find<QComboBox>("m_zoomComboBox")->setCurrentIndex(1);
    QCOMPARE(m_window->frame()->zoom(), 0.2);
}

void TestMainWindow::saveAsNamesAndReplaces()
{
    QTest::mouseClick(find<QPushButton>("m_DL_AddFixture_Button"), Qt::LeftButton);
    const QString plan = m_dir->filePath(QStringLiteral("plan"));

    // A bare name gets the extension.
    m_prompter->saveAnswers << plan;
    find<QAction>("actionSaveAs")->trigger();
    QCOMPARE(m_prompter->lastCaption, QStringLiteral("Save Configuration"));
    QCOMPARE(m_prompter->lastFilter, QStringLiteral("Configuration Files (*.rpproj);;All Files (*.* *)"));
    QCOMPARE(m_prompter->lastDirOrProposal, QDir(QDir::homePath()).filePath("Untitled.rpproj"));
    QVERIFY(QFile::exists(plan + ".rpproj"));
    QVERIFY(!doc()->isModified());
    QCOMPARE(m_window->currentFilePath(), plan + ".rpproj");
    QVERIFY(m_window->windowTitle().startsWith(QStringLiteral("plan.rpproj[*] - Runplan Release 3.17.0")));
    QCOMPARE(find<QAction>("actionSave")->text(), QStringLiteral("&Save plan.rpproj"));
    QCOMPARE(find<QAction>("actionSaveAs")->text(), QStringLiteral("Save plan.rpproj &As..."));
    QCOMPARE(QSettings().value("lastDirPath").toString(), m_dir->path());

    // The same bare name again: the replace question; Cancel brings the file dialog back, and
    // cancelling that writes nothing.
    QFile::remove(plan + ".rpproj");
    QFile marker(plan + ".rpproj");
    QVERIFY(marker.open(QIODevice::WriteOnly));
    marker.write("keep");
    marker.close();
    QTest::mouseClick(find<QPushButton>("m_DL_AddJumper_Button"), Qt::LeftButton);
    m_prompter->saveAnswers << plan << QString();
    m_prompter->replaceAnswers << false;
    find<QAction>("actionSaveAs")->trigger();
    QCOMPARE(m_prompter->asked.mid(1), (QStringList{"save", "replace", "save"}));
    QCOMPARE(m_prompter->lastReplacePath, plan + ".rpproj");
    QVERIFY(marker.open(QIODevice::ReadOnly));
    QCOMPARE(marker.readAll(), QByteArray("keep"));
    marker.close();
    QVERIFY(doc()->isModified());
    QCOMPARE(QSettings().value("lastDirPath").toString(), m_dir->path());

    // Replace overwrites it.
    m_prompter->saveAnswers << plan;
    m_prompter->replaceAnswers << true;
    find<QAction>("actionSaveAs")->trigger();
    QVERIFY(marker.open(QIODevice::ReadOnly));
    QVERIFY(marker.readAll().contains("RunplanConfigurationFile"));
    marker.close();
    QVERIFY(!doc()->isModified());

    // The extension test is case-sensitive.
    m_prompter->saveAnswers << m_dir->filePath("other.RPPROJ");
    find<QAction>("actionSaveAs")->trigger();
    QVERIFY(QFile::exists(m_dir->filePath("other.RPPROJ.rpproj")));
    QCOMPARE(find<QAction>("actionSave")->text(), QStringLiteral("&Save other.RPPROJ.rpproj"));

    // Save writes to the current file without asking.
    const int asked = m_prompter->asked.size();
    QTest::mouseClick(find<QPushButton>("m_DL_AddFixture_Button"), Qt::LeftButton);
    QVERIFY(doc()->isModified());
    find<QAction>("actionSave")->trigger();
    QCOMPARE(m_prompter->asked.size(), asked);
    QVERIFY(!doc()->isModified());
}

void TestMainWindow::newAndOpenAskAboutUnsavedChanges()
{
    // A saved run of two fixtures at 100 V.
    QComboBox* volts = find<QComboBox>("m_DL_LineVoltage_Combo");
    volts->setCurrentIndex(volts->findText("100"));
    QTest::mouseClick(find<QPushButton>("m_DL_AddFixture_Button"), Qt::LeftButton);
    QTest::mouseClick(find<QPushButton>("m_DL_AddJumper_Button"), Qt::LeftButton);
    QTest::mouseClick(find<QPushButton>("m_DL_AddFixture_Button"), Qt::LeftButton);
    const QString saved = m_dir->filePath("two.rpproj");
    QVERIFY(m_window->saveProject(saved));

    // Unchanged: New asks nothing and starts over.
    find<QAction>("actionNew")->trigger();
    QVERIFY(m_prompter->asked.isEmpty());
    QCOMPARE(doc()->count(ItemAny), 1);
    QCOMPARE(volts->currentText(), QStringLiteral("120"));
    QCOMPARE(m_window->currentFilePath(), QString());
    QVERIFY(m_window->windowTitle().startsWith("Untitled.rpproj[*] - "));
    QCOMPARE(find<QAction>("actionSave")->text(), QStringLiteral("&Save "));

    // Open brings the run and its header back.
    m_prompter->openAnswers << saved;
    find<QAction>("actionOpen")->trigger();
    QCOMPARE(m_prompter->lastCaption, QStringLiteral("Open Configuration"));
    QCOMPARE(m_prompter->lastFilter, QStringLiteral("Configuration Files (*.rpproj);;All Files (*.* *)"));
    QCOMPARE(doc()->count(ItemFixture), 2);
    QCOMPARE(volts->currentText(), QStringLiteral("100"));
    QCOMPARE(m_window->currentFilePath(), saved);
    QVERIFY(!doc()->isModified());
    QCOMPARE(m_window->lastResult().fixtureCount, 2);
    QCOMPARE(find<QLabel>("m_DL_TotalFixtures_Label")->text(), QStringLiteral("Total Fixtures: 2"));

    // Changed: Cancel stops New; Discard lets it go on.
    volts->setCurrentIndex(volts->findText("120"));
    QVERIFY(doc()->isModified());
    m_prompter->saveChangesAnswers << Prompter::SaveChoice::Cancel;
    find<QAction>("actionNew")->trigger();
    QCOMPARE(m_prompter->lastDisplayName, QStringLiteral("two.rpproj"));
    QCOMPARE(doc()->count(ItemFixture), 2);
    m_prompter->saveChangesAnswers << Prompter::SaveChoice::Discard;
    find<QAction>("actionNew")->trigger();
    QCOMPARE(doc()->count(ItemAny), 1);

    // Save writes the changes first, then Open goes on; a cancelled file dialog opens nothing.
    QTest::mouseClick(find<QPushButton>("m_DL_AddFixture_Button"), Qt::LeftButton);
    const QString third = m_dir->filePath("three");
    m_prompter->saveChangesAnswers << Prompter::SaveChoice::Save;
    m_prompter->saveAnswers << third;
    m_prompter->openAnswers << QString();
    find<QAction>("actionOpen")->trigger();
    QVERIFY(QFile::exists(third + ".rpproj"));
    QCOMPARE(m_window->currentFilePath(), third + ".rpproj");
    QCOMPARE(doc()->count(ItemFixture), 1);

    // An unreadable file changes nothing.
    m_prompter->openAnswers << m_dir->filePath("missing.rpproj");
    RecordingReporter messages;
    ScopedGlobalReporter scope(&messages);
    find<QAction>("actionOpen")->trigger();
    QCOMPARE(messages.messages.size(), 1);
    QCOMPARE(messages.messages.first().title, QStringLiteral("Open Error"));
    QCOMPARE(m_window->currentFilePath(), third + ".rpproj");
    QCOMPARE(doc()->count(ItemFixture), 1);
}

void TestMainWindow::closeStoresWindowSettings()
{
    QTest::mouseClick(find<QPushButton>("m_DL_AddFixture_Button"), Qt::LeftButton);
    find<QAction>("actionLineColorKey")->setChecked(false);
    QVERIFY(m_window->frame()->lineKey()->isHidden());

    m_prompter->saveChangesAnswers << Prompter::SaveChoice::Cancel;
    QCloseEvent refused;
    QApplication::sendEvent(m_window, &refused);
    QVERIFY(!refused.isAccepted());
    QVERIFY(!QSettings().contains("rp_window_geometry"));

    m_prompter->saveChangesAnswers << Prompter::SaveChoice::Discard;
    QCloseEvent accepted;
    QApplication::sendEvent(m_window, &accepted);
    QVERIFY(accepted.isAccepted());
    QVERIFY(QSettings().contains("rp_window_geometry"));
    QCOMPARE(QSettings().value("rplan_line_key_active").toBool(), false);

    // The next window opens with the key hidden and the stored geometry.
    m_window->resize(700, 600);
    QSettings().setValue("rp_window_geometry", m_window->saveGeometry());
    Runplan second;
    second.setPrompter(m_prompter);
    QVERIFY(!second.findChild<QAction*>("actionLineColorKey")->isChecked());
    QCOMPARE(second.size(), QSize(700, 600));
}

void TestMainWindow::maximizeMatchesTheEngine()
{
    // The window and a headless session agree on the largest run from one fixture.
    Session session(*Database::instance());
    session.resetWithFixture();
    session.maximize();

    QTest::mouseClick(find<QPushButton>("m_DL_AddFixture_Button"), Qt::LeftButton);
    QTest::mouseClick(find<QPushButton>("m_DL_Maximize_Button"), Qt::LeftButton);
    QVERIFY(doc()->count(ItemFixture) > 1);
    QCOMPARE(doc()->count(ItemFixture), session.fixtureCount());
    QCOMPARE(m_window->lastResult().totalLength, session.totalLength());
    QVERIFY(doc()->passFlag());
    QVERIFY(find<QTextEdit>("m_messageBox")
                ->toPlainText()
                .contains(QStringLiteral("Fixture Count is now: %1").arg(session.fixtureCount())));
    QCOMPARE(find<QLabel>("m_DL_TotalFixtures_Label")->text(),
             QStringLiteral("Total Fixtures: %1").arg(session.fixtureCount()));
}

void TestMainWindow::interactiveExportWritesChosenFile()
{
    const Database& db = *Database::instance();
    const QString chosen = m_dir->filePath("fixture.csv");
    m_prompter->saveAnswers << chosen;
    find<QAction>("actionMaximizeFixture")->trigger();
    QCOMPARE(m_prompter->lastCaption, QStringLiteral("Select file"));
    QCOMPARE(m_prompter->lastFilter, QStringLiteral("CSV File (*.csv);; All Files (*.*)"));
    QCOMPARE(m_prompter->lastDirOrProposal, QStringLiteral("data.csv"));
    QCOMPARE(QSettings().value("maximize_fixture_file").toString(), chosen);
    QVERIFY(!m_window->isExportRunning());
    QVERIFY(m_window->isInteractiveChange());

    QFile written(chosen);
    QVERIFY(written.open(QIODevice::ReadOnly));
    Session session(db);
    QBuffer expected;
    expected.open(QIODevice::WriteOnly);
    QVERIFY(CsvExport::exportCurrentFixture(expected, session));
    QCOMPARE(written.readAll(), expected.data());

    // The remembered name is proposed next time; cancelling stores the empty answer.
    m_prompter->saveAnswers << QString();
    find<QAction>("actionMaximizeAll")->trigger();
    QCOMPARE(m_prompter->lastDirOrProposal, chosen);
    QCOMPARE(QSettings().value("maximize_fixture_file").toString(), QString());
}

void TestMainWindow::dialogsGoThroughThePrompter()
{
    find<QAction>("actionPreferences")->trigger();
    QCOMPARE(m_prompter->dialogsRun, QStringList{"SettingsDlg"});
    find<QAction>("actionPrint")->trigger();
    QCOMPARE(m_prompter->dialogsRun.size(), 2);
    QVERIFY(m_prompter->dialogsRun.last().contains("PrintDialog"));

    // The about box is made once and shown without blocking.
    find<QAction>("actionAbout")->trigger();
    AboutDialog* about = m_window->findChild<AboutDialog*>();
    QVERIFY(about && about->isVisible());
    about->hide();
    find<QAction>("actionAbout")->trigger();
    QCOMPARE(m_window->findChildren<AboutDialog*>().size(), 1);
    QVERIFY(about->isVisible());
}

void TestMainWindow::commandLineOpensTheProject()
{
    // Every argument with a "-" is an option, so the project goes by a plain relative name.
    QVERIFY(QFile::copy(testDataPath("app/sample.rpproj"), m_dir->filePath("sample.rpproj")));
    const QString previous = QDir::currentPath();
    QDir::setCurrent(m_dir->path());
    QSignalSpy done(m_window, &Runplan::commandsDone);
    const bool opened = m_window->processCommandLine(QStringList{"runplan", "-ml", "20", "sample.rpproj"});
    QDir::setCurrent(previous);
    QVERIFY(opened);
    QVERIFY(!m_window->isRunningBatchCommands());
    QCOMPARE(m_window->currentFilePath(), QStringLiteral("sample.rpproj"));
    QVERIFY(m_window->windowTitle().startsWith("sample.rpproj[*] - "));
    QCOMPARE(doc()->count(ItemFixture), 6);
    // The project's own load wins over the option given before it.
    QCOMPARE(find<QComboBox>("m_DL_MaxLoad_Combo")->currentText(), QStringLiteral("15"));
    QVERIFY(!doc()->isModified());
    // The commands run once the event loop does; with nothing requested that is the end.
    QCOMPARE(done.size(), 0);
    QCoreApplication::processEvents();
    QCOMPARE(done.size(), 1);
}

QTEST_MAIN(TestMainWindow)
#include "tst_mainwindow.moc"
