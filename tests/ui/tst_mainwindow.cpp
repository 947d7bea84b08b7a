// The main window driven as a user would: selectors, add buttons, document commands and exports,
// with every question answered through a scripted prompter.

#include "WindowFixture.h"
#include "canvas/CFrame.h"
#include "model/ProjectFile.h"

#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QProcess>
#include <QScrollBar>
#include <QSpinBox>
#include <QStatusBar>
#include <QTextBlock>
#include <QTextEdit>

static const QString projectFilter = QStringLiteral("Configuration Files (*.rpproj);;All Files (*.* *)");

class TestMainWindow : public QObject, WindowFixture
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init() { openWindow(); }
    void cleanup();

    void addButtonsFollowEveryChange();
    void selectorChangesAskBeforeClearing();
    void saveNewAndOpen();
    void maximizeAndEveryExport();
    void openingWhatIsNotAProject();
    void fieldsAndLogShowOnlyTheirOwn();
    void questionBoxes();
    void withoutACatalog();
};

void TestMainWindow::initTestCase()
{
    // withoutACatalog() runs a copy of this test where no catalog lies beside it.
    if (qEnvironmentVariableIsEmpty("RUNPLAN_TEST_NO_CATALOG"))
        QVERIFY2(Database::instance()->isValid(), "the catalog beside the test must load");
}

void TestMainWindow::cleanup()
{
    QVERIFY2(m_prompter->unexpected.isEmpty(), qPrintable(m_prompter->unexpected.join(", ")));
    closeWindow();
}

void TestMainWindow::addButtonsFollowEveryChange()
{
    // The buttons show the document's rule (tested in the core) for the selected component, also
    // after an edit of it, a load and a reset, not only when the selection changes.
    auto enabled = [this]() {
        QStringList on;
        for (const char* name : {"Fixture", "Jumper", "Leader", "Receiver", "JunctionBox", "Supply"})
            if (find<QPushButton>(QStringLiteral("m_DL_Add%1_Button").arg(name))->isEnabled())
                on << name;
        return on.join(' ') + (find<QPushButton>("m_DL_Maximize_Button")->isEnabled() ? " maximize" : "");
    };
    run("fixture");
    QCOMPARE(enabled(), QStringLiteral("Fixture Jumper maximize"));
    m_window->DL_DeleteLast();
    QCOMPARE(doc()->current(), doc()->root());
    QCOMPARE(enabled(), QStringLiteral("Fixture Jumper Leader JunctionBox maximize"));

    // The enabler's output mode edited in the table: a Feedwise enabler takes no leader.
    run("mode=Feedwise");
    QCOMPARE(enabled(), QStringLiteral("Fixture Jumper Receiver JunctionBox Supply maximize"));

    // A load that leaves the canvas empty leaves nothing to add to; Reset places an enabler again.
    HeaderValues header;
    ProjectFile::read("<Runplan><CFrame/></Runplan>", *doc(), header, nullptr);
    QVERIFY(!doc()->root());
    QCOMPARE(enabled(), QString());
    run("reset");
    QCOMPARE(enabled(), QStringLiteral("Fixture Leader JunctionBox maximize"));
}

void TestMainWindow::selectorChangesAskBeforeClearing()
{
    // An empty run changes fixture freely; the voltage list becomes the fixture's. Placed fixtures
    // of the same family stay.
    const QString troughB = QStringLiteral("Linea Trough Model B Dynaline 6in (100v - 120v)");
    QComboBox* volts = find<QComboBox>("m_DL_LineVoltage_Combo");
    run("m_DLFixture_Combo=Linea Trough Model A Dynaline 6in (100v - 120v)");
    QCOMPARE(volts->count(), 3);
    run("m_DL_LineVoltage_Combo=100, fixture, m_DLFixture_Combo=" + troughB);
    QVERIFY(m_prompter->asked.isEmpty());
    QCOMPARE(doc()->count(ItemFixture), 1);

    // Another family: No puts the fixture back and keeps the run; Yes clears it, and the chosen
    // voltage is kept where the new fixture offers it.
    m_prompter->answers << false << true;
    run("m_DLFixture_Combo=Stylebar Tunable Dynaline 1ft");
    QCOMPARE(find<QComboBox>("m_DLFixture_Combo")->currentText(), troughB);
    QCOMPARE(doc()->count(ItemFixture), 1);
    run("m_DLFixture_Combo=Stylebar Tunable Dynaline 1ft");
    QCOMPARE(m_prompter->asked, (QStringList{"clear", "clear"}));
    QCOMPARE(doc()->count(ItemAny), 1);
    QCOMPARE(volts->count(), 7);
    QCOMPARE(volts->currentData().toInt(), 100);

    // A voltage the new fixture lacks gives way to the fixture's starting voltage.
    run("m_DL_LineVoltage_Combo=277, m_DLFixture_Combo=Linea Trough Model A Dynaline 6in (100v - 120v)");
    QCOMPARE(volts->currentText(), QStringLiteral("120"));

    // A lone enabler is replaced without a question, and the fixture list becomes its own.
    run("m_DLSupply_Combo=Line Voltage");
    QCOMPARE(m_prompter->asked.size(), 2);
    QCOMPARE(doc()->root()->catalogItem()->name, QStringLiteral("Line Voltage"));
    QCOMPARE(find<QComboBox>("m_DLController_Combo")->count(), 0);

    // The enabler with a run built: No keeps everything as it was; Yes clears the run and starts
    // over.
    m_prompter->answers << false << true;
    run("fixture, m_DLSupply_Combo=Signal Feeder Pro");
    QCOMPARE(find<QComboBox>("m_DLSupply_Combo")->currentText(), QStringLiteral("Line Voltage"));
    QCOMPARE(doc()->count(ItemAny), 2);
    run("m_DLSupply_Combo=Signal Feeder Pro");
    QCOMPARE(m_prompter->asked.mid(2), (QStringList{"clear", "clear"}));
    QCOMPARE(doc()->count(ItemAny), 1);
    QCOMPARE(doc()->root()->catalogItem()->name, QStringLiteral("Signal Feeder Pro"));
    QVERIFY(find<QComboBox>("m_DLController_Combo")->count() > 0);

    // Changes made by the program itself never ask.
    run("fixture");
    m_window->selectEnabler(Database::instance()->supplyNamed(QStringLiteral("Line Voltage")));
    QCOMPARE(m_prompter->asked.size(), 4);
    QCOMPARE(doc()->count(ItemAny), 1);
}

void TestMainWindow::saveNewAndOpen()
{
    // Save As a bare name: it gets the extension, and the window and its actions take its name.
    const QString plan = m_dir->filePath(QStringLiteral("plan"));
    QComboBox* volts = find<QComboBox>("m_DL_LineVoltage_Combo");
    run("m_DL_LineVoltage_Combo=100, fixture, jumper, fixture");
    m_prompter->answers << plan;
    trigger("actionSaveAs");
    QCOMPARE(m_prompter->lastArgs, (QStringList{"Save Configuration",
                                                QDir(QDir::homePath()).filePath("Untitled.rpproj"), projectFilter}));
    QVERIFY(!doc()->isModified());
    QCOMPARE(m_window->currentFilePath(), plan + ".rpproj");
    QVERIFY(m_window->windowTitle().startsWith(QStringLiteral("plan.rpproj[*] - Runplan Release 3.17.0")));
    QCOMPARE(find<QAction>("actionSave")->text(), QStringLiteral("&Save plan.rpproj"));
    QCOMPARE(find<QAction>("actionSaveAs")->text(), QStringLiteral("Save plan.rpproj &As..."));
    QCOMPARE(QSettings().value("lastDirPath").toString(), m_dir->path());
    const QByteArray saved = fileBytes(plan + ".rpproj");

    // Unchanged: New asks nothing and starts over; Open brings the run and its header back.
    trigger("actionNew");
    QCOMPARE(m_prompter->asked, QStringList{"save"});
    QCOMPARE(doc()->count(ItemAny), 1);
    QCOMPARE(volts->currentText(), QStringLiteral("120"));
    QVERIFY(m_window->windowTitle().startsWith("Untitled.rpproj[*] - "));
    QCOMPARE(find<QAction>("actionSave")->text(), QStringLiteral("&Save "));
    m_prompter->answers << plan + ".rpproj";
    trigger("actionOpen");
    QCOMPARE(m_prompter->lastArgs, (QStringList{"Open Configuration", m_dir->path(), projectFilter}));
    QCOMPARE(doc()->count(ItemFixture), 2);
    QCOMPARE(volts->currentText(), QStringLiteral("100"));
    QCOMPARE(m_window->currentFilePath(), plan + ".rpproj");
    QVERIFY(!doc()->isModified());

    // Changed: Cancel stops New; Discard lets it go on.
    run("m_DL_LineVoltage_Combo=120");
    m_prompter->answers << int(Prompter::SaveChoice::Cancel) << int(Prompter::SaveChoice::Discard);
    trigger("actionNew");
    QCOMPARE(m_prompter->lastArgs, QStringList{"plan.rpproj"});
    QCOMPARE(doc()->count(ItemFixture), 2);
    trigger("actionNew");
    QCOMPARE(doc()->count(ItemAny), 1);

    // Save first: the bare name over the saved file asks; No brings the file dialog back and
    // cancelling that writes nothing and opens nothing. Yes replaces it, then Open goes on (here
    // cancelled).
    run("fixture");
    m_prompter->answers << int(Prompter::SaveChoice::Save) << plan << false << QString()
                        << int(Prompter::SaveChoice::Save) << plan << true << QString();
    trigger("actionOpen");
    QCOMPARE(m_prompter->asked.mid(4), (QStringList{"saveChanges", "save", "replace", "save"}));
    QCOMPARE(fileBytes(plan + ".rpproj"), saved);
    QVERIFY(doc()->isModified());
    trigger("actionOpen");
    QCOMPARE(m_prompter->asked.mid(8), (QStringList{"saveChanges", "save", "replace", "open"}));
    QVERIFY(fileBytes(plan + ".rpproj") != saved);
    QVERIFY(!doc()->isModified());
    QCOMPARE(doc()->count(ItemFixture), 1);

    // A name with another case of the extension still gets its own.
    m_prompter->answers << m_dir->filePath("other.RPPROJ");
    trigger("actionSaveAs");
    QCOMPARE(find<QAction>("actionSave")->text(), QStringLiteral("&Save other.RPPROJ.rpproj"));
}

void TestMainWindow::maximizeAndEveryExport()
{
    // The largest run from the starting fixture: 64 at 120 V, as in the checked-in table. The
    // totals are green while the run passes and red with one fixture more.
    run("fixture, maximize");
    QCOMPARE(find<QLabel>("m_DL_TotalFixtures_Label")->text(), QStringLiteral("Total Fixtures: 64"));
    QLineEdit* watts = find<QLineEdit>("m_DL_TotalPowerWatts_Edit");
    QCOMPARE(watts->palette().color(QPalette::Base), Runplan::passingFieldColor());
    run("fixture");
    QCOMPARE(watts->palette().color(QPalette::Base), Runplan::failingFieldColor());
    m_window->DL_DeleteLast();

    // An export whose write stops part-way keeps the earlier file byte for byte and leaves no
    // temporary file; the same export then writes the checked-in table of the starting fixture (as
    // the unattended run does) to the file chosen, which is proposed next time.
    const QString chosen = m_dir->filePath("fixture.csv");
    QVERIFY(writeFileBytes(chosen, "old,table\n"));
    m_prompter->answers << chosen << chosen << QString();
    QVERIFY(withFileSizeLimit(16, [this] { trigger("actionMaximizeFixture"); }));
    QCOMPARE(m_prompter->lastArgs, (QStringList{"Select file", "data.csv", "CSV File (*.csv);; All Files (*.*)"}));
    QCOMPARE(fileBytes(chosen), QByteArray("old,table\n"));
    QCOMPARE(QDir(m_dir->path()).entryList(QDir::Files), QStringList{"fixture.csv"});
    trigger("actionMaximizeFixture");
    QCOMPARE(fileBytes(chosen), testDataBytes("app/batch-first.csv"));
    trigger("actionMaximizeAll");
    QCOMPARE(m_prompter->lastArgs.value(1), chosen);
    QCOMPARE(QSettings().value("maximize_fixture_file").toString(), QString());

    // File › "Export Bill of Materials..." and "Export Report..." write what the user names, one
    // question each (the last one cancelled: nothing written).
    const QString csv = m_dir->filePath(QStringLiteral("parts.csv"));
    const QString pdf = m_dir->filePath(QStringLiteral("plan.pdf"));
    m_prompter->answers << csv << pdf << QString();
    trigger("actionExportBillOfMaterials");
    QVERIFY(m_prompter->lastArgs.value(1).endsWith(QStringLiteral("untitled.csv")));
    QVERIFY(fileBytes(csv).startsWith("Kind,Catalog Name,"));
    trigger("actionExportReport");
    QVERIFY(fileBytes(pdf).startsWith("%PDF-"));
    trigger("actionExportReport");
    QCOMPARE(m_prompter->asked, QStringList(6, "save"));

    // View › "Show Voltages" is off until chosen, and then remembered.
    auto* show = find<QAction>("actionShowVoltages");
    QVERIFY(show->isCheckable() && !show->isChecked() && !m_window->frame()->showsVoltages());
    show->trigger();
    QVERIFY(m_window->frame()->showsVoltages());
    {
        Runplan again;
        QVERIFY(again.findChild<QAction*>(QStringLiteral("actionShowVoltages"))->isChecked());
        QVERIFY(again.frame()->showsVoltages());
    }
    show->trigger();
    QVERIFY(!QSettings().value(QStringLiteral("rplan_show_voltages")).toBool());
}

void TestMainWindow::openingWhatIsNotAProject()
{
    // A name with a placeholder in it stays as typed in the title.
    run("fixture, jumper, fixture");
    const QString saved = m_dir->filePath("stage%1.rpproj");
    QVERIFY(m_window->saveProject(saved));
    const QString title = m_window->windowTitle();
    QVERIFY2(title.startsWith("stage%1.rpproj[*] - Runplan Release 3.17.0 [Build 20250205-2cbee83]"), qPrintable(title));
    const QByteArray before = ProjectFile::toBytes(*doc(), *m_window); // the run and every selector

    // Not a project: refused with an "Open Error"; nothing in the window changes, so Save cannot
    // write over the file.
    const QString text = m_dir->filePath("notes.rpproj");
    QVERIFY(writeFileBytes(text, "shopping list\n"));
    RecordingReporter messages;
    ScopedGlobalReporter scope(&messages);
    m_prompter->answers << text;
    trigger("actionOpen");
    QCOMPARE(messages.messages.size(), 1);
    QCOMPARE(messages.messages.at(0).title, QStringLiteral("Open Error"));
    QCOMPARE(m_window->windowTitle(), title);
    QCOMPARE(m_window->currentFilePath(), saved);
    QCOMPARE(ProjectFile::toBytes(*doc(), *m_window), before);
    QVERIFY(m_window->statusBar()->currentMessage().startsWith("Failed to open configuration " + text));

    // A project that breaks off opens as far as it goes, the failure line goes, and the first
    // Save over it asks: No keeps the file, Yes replaces it, and later Saves ask no more. It shows
    // its top-left corner also on a canvas narrower than the enabler plus the scroll-into-view
    // margin (as before the window is first shown), scrolled away from the origin.
    const QString part = m_dir->filePath("part.rpproj");
    const QByteArray whole = fileBytes(saved);
    const QByteArray cut = whole.left(whole.indexOf("<CWidget CWidgetItemType=\"3\""));
    QVERIFY(writeFileBytes(part, cut));
    m_prompter->answers << part;
    m_window->frame()->resize(380, 300);
    m_window->frame()->horizontalScrollBar()->setValue(200);
    QCOMPARE(m_window->frame()->horizontalScrollBar()->value(), 200);
    trigger("actionOpen");
    QCOMPARE(m_window->frame()->horizontalScrollBar()->value(), 0);
    QCOMPARE(m_window->frame()->verticalScrollBar()->value(), 0);
    QCOMPARE(messages.messages.size(), 1);
    QCOMPARE(m_window->currentFilePath(), part);
    QCOMPARE(doc()->count(ItemFixture), 1);
    QCOMPARE(m_window->statusBar()->currentMessage(), QString());
    m_prompter->answers << false << true;
    trigger("actionSave");
    QCOMPARE(m_prompter->asked.last(), QStringLiteral("notReadWhole"));
    QCOMPARE(m_prompter->lastArgs, QStringList{"part.rpproj"});
    QCOMPARE(fileBytes(part), cut);
    trigger("actionSave");
    QVERIFY(fileBytes(part).endsWith("</Runplan>\n"));
    const int asked = m_prompter->asked.size();
    trigger("actionSave");
    QCOMPARE(m_prompter->asked.size(), asked);

    // New after a project that matched no selector entry leaves every selector with one.
    QVERIFY(writeFileBytes(part, "<Runplan CurrentSupplyName=\"Gone\" Frequency=\"1\" LineVoltage=\"7\"><CFrame><CWidget"));
    m_prompter->answers << part;
    trigger("actionOpen");
    QVERIFY(!m_window->notReadWholeReason().isEmpty());
    QCOMPARE(find<QComboBox>("m_frequencyComboBox")->currentIndex(), -1);
    trigger("actionNew");
    for (const char* name : {"m_DLSupply_Combo", "m_DLFixture_Combo", "m_DL_LineVoltage_Combo",
                             "m_DL_MaxLoad_Combo", "m_frequencyComboBox", "m_DLController_Combo"}) {
        const QComboBox* combo = find<QComboBox>(name);
        QVERIFY2(combo->count() == 0 || combo->currentIndex() >= 0, name);
    }
    QCOMPARE(find<QComboBox>("m_frequencyComboBox")->currentText(), QStringLiteral("60 Hz"));
    QVERIFY(m_window->notReadWholeReason().isEmpty());
}

void TestMainWindow::fieldsAndLogShowOnlyTheirOwn()
{
    // A Feedwise run 500 ft long, then its enabler deleted: the disabled field keeps no length.
    QLineEdit* feedwise = find<QLineEdit>("m_DL_Total_PLC_Length_Edit");
    run("mode=Feedwise, box");
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
    m_prompter->answers << true;
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
        seen << box->windowTitle() << box->text() << box->defaultButton()->text();
        box->defaultButton()->click();
        return box->standardButton(box->defaultButton());
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
    qputenv("RUNPLAN_TEST_NO_CATALOG", "1"); // for the child: this process has its catalog loaded
    child.start(copy, {"withoutACatalog"});
    qunsetenv("RUNPLAN_TEST_NO_CATALOG");
    QVERIFY(child.waitForFinished(120000));
    QVERIFY2(child.exitStatus() == QProcess::NormalExit && child.exitCode() == 0,
             child.readAllStandardOutput().constData());
}

QTEST_MAIN(TestMainWindow)
#include "tst_mainwindow.moc"
