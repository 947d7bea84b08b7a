#include "app/Runplan.h"

#include "app/AboutDialog.h"
#include "app/Autosave.h"
#include "app/BatchRunner.h"
#include "app/CommandLine.h"
#include "app/DocumentLifecycle.h"
#include "app/ExportRunner.h"
#include "app/GuiReporter.h"
#include "app/Prompter.h"
#include "app/ReportPdf.h"
#include "app/UnlaidTextLayout.h"
#include "app/WindowScopes.h"
#include "app/commands/CommandText.h"
#include "app/commands/EditHistory.h"
#include "calc/DesignReport.h"
#include "calc/Maximize.h"
#include "canvas/CFrame.h"
#include "catalog/Database.h"
#include "catalog/Version.h"
#include "model/CWidget.h"
#include "model/CWidgetModel.h"
#include "model/ConfigDocument.h"
#include "model/DocumentSnapshot.h"
#include "model/ProjectFile.h"
#include "model/view/CWidgetTableView.h"
#include "ui_Runplan.h"
#include "update/LoadingDialog.h"
#include "update/SettingsDlg.h"
#include "update/SettingsKeys.h"

#include <QApplication>
#include <QCloseEvent>
#include <QDate>
#include <QDebug>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QKeyEvent>
#include <QPixmap>
#include <QPrintDialog>
#include <QPrinter>
#include <QSaveFile>
#include <QScrollBar>
#include <QSettings>
#include <QStatusBar>
#include <QTextCursor>
#include <QTextDocument>
#include <QTimer>
#include <QUndoStack>

#include <cstdio>
#include <optional>

// The compiled-in pictures live in the static front-end library; referencing them here makes sure
// the linker keeps them wherever the window is used.
static void initRunplanResources()
{
    Q_INIT_RESOURCE(runplan);
}

namespace
{
Runplan* g_mainWindow = nullptr;

QFont boldFont()
{
    QFont bold = QApplication::font();
    bold.setWeight(QFont::Bold);
    return bold;
}

} // namespace

Runplan* Runplan::instance()
{
    return g_mainWindow;
}

Runplan::Runplan(QWidget* parent)
    : QMainWindow(parent), ui(new Ui::RunplanClass), m_defaultPrompter(new DialogPrompter),
      m_reporter(new GuiReporter(this)), m_lifecycle(new DocumentLifecycle(this)),
      m_batch(new BatchRunner(this))
{
    g_mainWindow = this;
    m_prompter = m_defaultPrompter.get();
    initRunplanResources();
    // Nothing is analysed until the window is complete; the Reset after the connections runs the
    // first analysis.
    auto hold = std::make_unique<AnalysisHold>(m_analysisSuspended);

    setUpForm();

    // The catalog: its first use loads it and reports its own faults. The canvas and the
    // property table are two views on the one configuration.
    m_db = Database::instance();
    m_doc = new ConfigDocument(m_db, this);
    m_exportRunner = new ExportRunner(this);
    m_history = new EditHistory(
        m_doc, this, [this](const DocumentSnapshot& state) { restoreState(state); }, this);
    m_autosave = new Autosave(
        m_doc, m_history, [this]() { return ProjectFile::toBytes(*m_doc, *this); },
        [this]() { return m_lifecycle->currentFile(); }, this);
    auto pause = std::make_unique<EditHistory::Pause>(m_history);
    ui->m_DL_Frame->setDocument(m_doc);
    ui->m_DL_Frame->confirmDelete = [this]() { return m_prompter->confirmDelete(this); };
    m_doc->model()->setHeaderDecoration(QPixmap(QStringLiteral(":/editicon.svg")));
    ui->tableView->setModel(m_doc->model());
    ui->tableView->setRootIndex(QModelIndex());
    if (m_db->isValid()) {
        statusMessage(tr("Database version %1").arg(m_db->version()));
        for (DLPowerSupply* supply : m_db->supplies())
            ui->m_DLSupply_Combo->addItem(supply->name, QVariant::fromValue(supply));
    }

    chooseInitialInputs();
    hold.reset();

    connectViews();

    resetCanvas();
    m_doc->setModified(false);
    setUpUndoActions();
    pause.reset();
    m_history->restart();

    setUpActionTips();

    // Title.
    m_lifecycle->setWindowTitleFor(QString());
    restoreWindowState();
}

// The form, its icon and bold labels, the Dynaline page alone, the version line.
void Runplan::setUpForm()
{
    ui->setupUi(this);
    setWindowIcon(QIcon(QStringLiteral(":/Runplan.ico")));

    // Bold labels; only the Dynaline page stays.
    const QFont bold = boldFont();
    ui->m_DL_Supply_Label->setFont(bold);
    ui->m_DL_Fixture_Label->setFont(bold);
    for (int page : {3, 2, 1}) {
        QWidget* removed = ui->tabWidget->widget(page);
        removed->setEnabled(false);
        ui->tabWidget->removeTab(page);
        removed->deleteLater();
    }
    ui->m_DLFixture_Combo->setFocus();

    // Version line.
    statusMessage(tr("Vorlux Runplan Version  %1.%2.%3 Build %4-%5")
                      .arg(RunplanVersion::Major)
                      .arg(RunplanVersion::Minor)
                      .arg(RunplanVersion::Revision)
                      .arg(RunplanVersion::BuildDate)
                      .arg(RunplanVersion::buildTag()),
                  passingLogColor());
}

// The circuit inputs a new window starts with.
void Runplan::chooseInitialInputs()
{
    // The result labels hold the form's placeholders until an analysis fills them, which never
    // happens without a catalog.
    ui->m_DL_DerateLoad_Label->clear();
    ui->m_DL_TotalFixtures_Label->clear();
    ui->m_DL_AddReceiver_Button->hide();
    const QFont bold = boldFont();
    ui->m_DL_TotalPower_Label->setFont(bold);
    ui->m_DL_TotalFixtures_Label->setFont(bold);
    chooseDefaultLineVoltage();
    ui->m_DL_LineVoltage_Spin->hide();
    {
        const QSignalBlocker block(ui->m_DL_MaxLoad_Combo);
        ui->m_DL_MaxLoad_Combo->setCurrentIndex(0);
    }
    ui->m_DL_MaxLoad_Spin->hide();
    ui->m_DL_TotalPowerWatts_Edit->setAutoFillBackground(true);
    ui->m_DL_TotalPowerAmps_Edit->setAutoFillBackground(true);
}

// The canvas, the property table, the actions and the undo history, wired to the window.
void Runplan::connectViews()
{
    CFrame* canvas = ui->m_DL_Frame;
    connect(canvas, &CFrame::frameChanged, this, &Runplan::DL_Update);
    connect(this, &Runplan::paramChanged, canvas, &CFrame::handleParamChanged);
    connect(this, &Runplan::clearCalculations, this, &Runplan::handleClearCalculations);
    connect(canvas, &CFrame::selectionChanged, ui->tableView, &CWidgetTableView::handleSelectionChanged);
    connect(canvas, &CFrame::selectionChanged, this, &Runplan::handleSelectionChanged);
    connect(m_doc->model(), &QAbstractItemModel::layoutChanged, ui->tableView,
            &CWidgetTableView::handleModelReset);
    connect(m_doc->model(), &QAbstractItemModel::layoutChanged, this, &Runplan::DL_Update);
    // The add buttons follow every change of the tree or of the selected component, not only a
    // new selection: an edited output mode changes what may hang below. A load that leaves the
    // canvas empty announces only the model's reset.
    const auto refreshAddButtons = [this]() { updateAddButtons(m_doc->currentIndex()); };
    connect(m_doc, &ConfigDocument::changed, this, refreshAddButtons);
    connect(m_doc, &ConfigDocument::componentChanged, this, refreshAddButtons);
    connect(m_doc->model(), &QAbstractItemModel::modelReset, this, [this, refreshAddButtons]() {
        if (!m_doc->root())
            refreshAddButtons();
    });
    connect(canvas, &CFrame::deleteCurrentCWidget, this, &Runplan::DL_DeleteLast);
    connect(ui->actionDelete, &QAction::triggered, this, &Runplan::DL_DeleteLast);
    connect(ui->actionNew, &QAction::triggered, this, &Runplan::handleNewAction);
    connect(ui->actionOpen, &QAction::triggered, this, &Runplan::handleOpenAction);
    connect(ui->actionSave, &QAction::triggered, this, &Runplan::handleSaveAction);
    connect(ui->actionSaveAs, &QAction::triggered, this, &Runplan::handleSaveAsAction);
    connect(ui->actionMaximize, &QAction::triggered, this, &Runplan::on_m_DL_Maximize_Button_clicked);
    connect(ui->actionPrint, &QAction::triggered, this, &Runplan::handlePrintAction);
    connect(ui->actionExit, &QAction::triggered, this, &QWidget::close);
    connect(ui->m_zoomComboBox, &QComboBox::currentIndexChanged, this, &Runplan::handleZoomLevelChanged);
    connect(this, &Runplan::zoomLevelChanged, canvas, &CFrame::handleZoomChanged);
    connect(ui->m_clearLogButton, &QPushButton::clicked, ui->m_messageBox, &QTextEdit::clear);
    connect(ui->actionLineColorKey, &QAction::toggled, canvas, &CFrame::handleLineKeyToggled);
    connect(ui->actionExportReport, &QAction::triggered, this, &Runplan::handleExportReport);
    connect(ui->actionExportBillOfMaterials, &QAction::triggered, this,
            &Runplan::handleExportBillOfMaterials);
    connect(ui->actionShowVoltages, &QAction::toggled, this, &Runplan::handleShowVoltages);
    canvas->setAnalysis(&m_lastResult);
    connect(m_doc->model(), &CWidgetModel::propertyEdited, this, [this](int column) {
        // The edit is already stored: the step records it.
        EditHistory::Step step(
            m_history, CommandText::change(m_doc->model()->headerData(column, Qt::Horizontal).toString()));
    });
}

// Status tips, icons and the zoom list.
void Runplan::setUpActionTips()
{
    ui->actionNew->setStatusTip(tr("Create a new configuration"));
    ui->actionOpen->setStatusTip(tr("Open an exisiting configuration, checking for unsaved changes"));
    ui->actionSave->setStatusTip(tr("Save the current configuration"));
    ui->actionSaveAs->setStatusTip(tr("Save the current configuration to as a new filename"));
    ui->actionDelete->setStatusTip(tr("Delete the selected component and its children"));
    ui->actionMaximize->setStatusTip(
        tr("Add the maximum number of fixtures starting from the selected component"));
    ui->actionMaximizeAll->setStatusTip(
        tr("Output maximum number of each fixture for each voltage it supports to a csv file"));
    ui->actionMaximizeFixture->setStatusTip(
        tr("Output maximum number specified fixture for each voltage it supports to a csv file"));
    ui->actionPrint->setStatusTip(tr("Print..."));
    ui->actionExit->setStatusTip(tr("Quit the application, checking for unsaved changes"));
    ui->actionNew->setIcon(QIcon(QStringLiteral(":/newicon.svg")));
    ui->actionOpen->setIcon(QIcon(QStringLiteral(":/openicon.svg")));
    ui->actionSave->setIcon(QIcon(QStringLiteral(":/saveicon.svg")));
    ui->actionDelete->setIcon(QIcon(QStringLiteral(":/images/deleteicon.svg")));
    ui->actionPrint->setIcon(QIcon(QStringLiteral(":/printericon.svg")));
    for (int percent = 10; percent <= 100; percent += 10)
        ui->m_zoomComboBox->addItem(QString::number(percent) + QLatin1Char('%'));
    ui->m_zoomComboBox->setCurrentIndex(ui->m_zoomComboBox->count() - 1);
}

// Stored window state; the line key shows unless it was switched off.
void Runplan::restoreWindowState()
{
    QSettings settings;
    if (settings.contains(RunplanSettings::windowGeometryKey()))
        restoreGeometry(settings.value(RunplanSettings::windowGeometryKey()).toByteArray());
    ui->actionLineColorKey->setChecked(RunplanSettings::lineKeyActive());
    ui->m_DL_Frame->handleLineKeyToggled(ui->actionLineColorKey->isChecked());
    {
        const QSignalBlocker quiet(ui->actionShowVoltages);
        ui->actionShowVoltages->setChecked(
            settings.value(RunplanSettings::showVoltagesKey(), false).toBool());
    }
    ui->m_DL_Frame->setShowVoltages(ui->actionShowVoltages->isChecked());
}

Runplan::~Runplan()
{
    // Reaching here is a clean exit: nothing is left to recover.
    m_autosave->discard();
    if (!m_heldLogEdit.isNull())
        m_heldLogEdit.endEditBlock();
    // The canvas and the table refer to the document: let them go first.
    ui->m_DL_Frame->setDocument(nullptr);
    ui->m_DL_Frame->setAnalysis(nullptr);
    ui->tableView->setModel(nullptr);
    delete ui;
    if (g_mainWindow == this)
        g_mainWindow = nullptr;
}

CFrame* Runplan::frame() const
{
    return ui->m_DL_Frame;
}

CWidgetTableView* Runplan::propertyTable() const
{
    return ui->tableView;
}

void Runplan::setPrompter(Prompter* prompter)
{
    m_prompter = prompter ? prompter : m_defaultPrompter.get();
}

// =============================================================================================
// Slots of general use

void Runplan::show()
{
    if (!m_runningBatchCommands)
        QMainWindow::show();
}

void Runplan::statusMessage(const QString& text)
{
    statusMessage(text, passingLogColor());
}

void Runplan::statusMessage(const QString& text, const QColor& color)
{
    // Coloured through a cursor of its own at the end: the log's cursor (the user's selection)
    // keeps its text and its colour.
    QTextEdit* log = ui->m_messageBox;
    QTextCursor end(log->document());
    end.movePosition(QTextCursor::End);
    if (!log->document()->isEmpty())
        end.insertBlock();
    QTextCharFormat format;
    format.setForeground(color);
    end.insertText(text, format);
    log->verticalScrollBar()->setValue(log->verticalScrollBar()->maximum());
}

void Runplan::showStatusLine(const QString& text)
{
    statusBar()->showMessage(text);
}

void Runplan::on_tabWidget_currentChanged(int index)
{
    Q_UNUSED(index)
}

void Runplan::handleZoomLevelChanged(int index)
{
    m_zoomFactor = (index + 1) * 0.1;
    emit zoomLevelChanged(m_zoomFactor);
}

void Runplan::handleProgressDialogClosed()
{
    m_exportRunner->cancel();
}

void Runplan::emitInputChanged()
{
    emit clearCalculations();
    emit paramChanged();
    DL_Update();
}

void Runplan::on_m_DL_LineVoltage_Combo_currentIndexChanged(int index)
{
    EditHistory::Step step(m_history, CommandText::change(tr("Line Voltage")));
    ui->m_DL_LineVoltage_Spin->setVisible(ui->m_DL_LineVoltage_Combo->itemText(index) ==
                                          HeaderChoices::otherEntry());
    emitInputChanged();
}

void Runplan::on_m_DL_LineVoltage_Spin_valueChanged(int value)
{
    EditHistory::Step step(m_history, CommandText::change(tr("Line Voltage")),
                           CommandText::CustomLineVoltage);
    Q_UNUSED(value)
    emitInputChanged();
}

void Runplan::on_m_DL_MaxLoad_Combo_currentIndexChanged(int index)
{
    EditHistory::Step step(m_history, CommandText::change(tr("Max Circuit Load")));
    ui->m_DL_MaxLoad_Spin->setVisible(index >= 0 && index == ui->m_DL_MaxLoad_Combo->count() - 1);
    emitInputChanged();
}

void Runplan::on_m_DL_MaxLoad_Spin_valueChanged(int value)
{
    EditHistory::Step step(m_history, CommandText::change(tr("Max Circuit Load")),
                           CommandText::CustomMaxCircuitLoad);
    Q_UNUSED(value)
    emitInputChanged();
}

void Runplan::on_m_frequencyComboBox_currentIndexChanged(int index)
{
    EditHistory::Step step(m_history, CommandText::change(tr("Frequency")));
    Q_UNUSED(index)
    emitInputChanged();
}

void Runplan::on_m_DLController_Combo_currentIndexChanged(int index)
{
    EditHistory::Step step(m_history, CommandText::change(tr("Controller")));
    Q_UNUSED(index)
    emit paramChanged();
    DL_Update();
}

// =============================================================================================
// Selectors

DLPowerSupply* Runplan::currentSupplyRecord() const
{
    return ui->m_DLSupply_Combo->currentData().value<DLPowerSupply*>();
}

DLFixture* Runplan::currentFixtureRecord() const
{
    const DLPowerSupply* supply = currentSupplyRecord();
    if (!supply || supply->fixtures.isEmpty())
        return nullptr;
    const QString wanted = ui->m_DLFixture_Combo->currentText();
    VxFixture* found = nullptr;
    for (VxFixture* f : supply->fixtures)
        if (f->name == wanted)
            found = f;
    return qobject_cast<DLFixture*>(found ? found : supply->fixtures.first());
}

DLFixture* Runplan::chosenFixtureRecord() const
{
    const DLPowerSupply* supply = currentSupplyRecord();
    const int index = ui->m_DLFixture_Combo->currentIndex();
    if (!supply || index < 0 || index >= supply->fixtures.size())
        return nullptr;
    return qobject_cast<DLFixture*>(supply->fixtures.at(index));
}

CircuitInputs Runplan::circuitInputs() const
{
    CircuitInputs in;
    const QString volts = ui->m_DL_LineVoltage_Combo->currentText();
    in.lineVoltage =
        volts == HeaderChoices::otherEntry() ? ui->m_DL_LineVoltage_Spin->value() : volts.toDouble();
    const int load = ui->m_DL_MaxLoad_Combo->currentIndex();
    in.maxCircuitLoad = (load >= 0 && load == ui->m_DL_MaxLoad_Combo->count() - 1)
                            ? ui->m_DL_MaxLoad_Spin->value()
                            : ui->m_DL_MaxLoad_Combo->currentText().toDouble();
    in.frequency = ui->m_frequencyComboBox->currentIndex() == 0 ? 50 : 60;
    in.controller = ui->m_DLController_Combo->currentText();
    const DLPowerSupply* supply = currentSupplyRecord();
    in.enabler = supply;
    if (supply && !supply->fixtures.isEmpty()) {
        const QString wanted = ui->m_DLFixture_Combo->currentText();
        for (const VxFixture* f : supply->fixtures) {
            if (f->name == wanted) {
                in.selectedFixture = qobject_cast<const DLFixture*>(f);
                break;
            }
        }
        if (!in.selectedFixture)
            in.selectedFixture = qobject_cast<const DLFixture*>(supply->fixtures.first());
    }
    return in;
}

void Runplan::selectFixtureIndex(int index)
{
    QComboBox* combo = ui->m_DLFixture_Combo;
    if (index < 0 || index >= combo->count() || index == combo->currentIndex())
        return;
    InteractiveChangeOff off(this);
    combo->setCurrentIndex(index);
}

void Runplan::selectSupplyRecord(const DLPowerSupply* record)
{
    QComboBox* combo = ui->m_DLSupply_Combo;
    int index = -1;
    for (int i = 0; i < combo->count() && index < 0; ++i)
        if (combo->itemData(i).value<DLPowerSupply*>() == record)
            index = i;
    if (index < 0 || index == combo->currentIndex())
        return;
    InteractiveChangeOff off(this);
    combo->setCurrentIndex(index);
}

void Runplan::chooseDefaultLineVoltage()
{
    // "120" where the list offers it; otherwise what the list rebuild chose stays.
    const int index = findExactText(ui->m_DL_LineVoltage_Combo, QStringLiteral("120"));
    if (index >= 0)
        ui->m_DL_LineVoltage_Combo->setCurrentIndex(index);
}

void Runplan::on_m_DLSupply_Combo_currentIndexChanged(int index)
{
    if (m_interactiveChange && index == m_previousSupplyIndex)
        return;
    if (m_interactiveChange && m_doc->count(ItemAny) > 1 && !m_prompter->askClearConfiguration(this)) {
        const QSignalBlocker block(ui->m_DLSupply_Combo);
        ui->m_DLSupply_Combo->setCurrentIndex(m_previousSupplyIndex);
        return;
    }
    m_previousSupplyIndex = index;
    EditHistory::Step step(m_history, CommandText::change(tr("Enabler")));
    {
        AnalysisHold hold(m_analysisSuspended);
        InteractiveChangeOff off(this);
        // The root is always the chosen enabler.
        resetCanvas();

        const DLPowerSupply* supply = currentSupplyRecord();
        ui->m_DLFixture_Combo->clear();
        m_previousFixture = nullptr;
        m_previousFixtureIndex = -1;
        if (supply) {
            for (const VxFixture* f : supply->fixtures)
                ui->m_DLFixture_Combo->addItem(f->name);
        }
        const QSignalBlocker block(ui->m_DLController_Combo);
        ui->m_DLController_Combo->clear();
        if (supply && supply->hasOutputMode(Modes::feedwise()))
            ui->m_DLController_Combo->addItems(m_db->controllers().keys());
    }
    DL_Update();
}

void Runplan::on_m_DLFixture_Combo_currentIndexChanged(int index)
{
    QComboBox* combo = ui->m_DLFixture_Combo;
    if (combo->count() == 0)
        return;
    const DLPowerSupply* supply = currentSupplyRecord();
    const DLFixture* fixture = (supply && index >= 0 && index < supply->fixtures.size())
                                   ? qobject_cast<const DLFixture*>(supply->fixtures.at(index))
                                   : nullptr;
    if (!fixture) {
        Reporter::global()->warning(tr("Fixture combo mismatch (DL)!"));
        return;
    }

    EditHistory::Step step(m_history, CommandText::change(tr("Fixture")));
    const int fixtures = m_doc->count(ItemFixture);
    const int leaders = m_doc->count(ItemLeader);
    const bool familiesDiffer = !m_previousFixture || m_previousFixture->family != fixture->family;
    bool mustClear = false;
    if (fixtures > 0)
        mustClear = !m_previousFixture || m_previousFixture->family == 0 || familiesDiffer;
    else if (leaders == 1)
        mustClear = familiesDiffer;

    {
        AnalysisHold hold(m_analysisSuspended);
        if (mustClear) {
            if (m_interactiveChange && !m_prompter->askClearConfiguration(this)) {
                const QSignalBlocker block(combo);
                combo->setCurrentIndex(m_previousFixtureIndex);
                updateAddButtons(m_doc->currentIndex());
                return;
            }
            resetCanvas();
        }
        updateAddButtons(m_doc->currentIndex());
        m_previousFixture = fixture;
        m_previousFixtureIndex = index;
        rebuildVoltageList(fixture);
    }
    // The fixture and perhaps the voltage are inputs of the analysis.
    DL_Update();
}

void Runplan::rebuildVoltageList(const DLFixture* fixture)
{
    QComboBox* combo = ui->m_DL_LineVoltage_Combo;
    const QSignalBlocker block(combo);
    const QString other = HeaderChoices::otherEntry();
    const QString previous = combo->currentText();
    combo->clear();
    for (int volts : fixture->validVoltages)
        combo->addItem(QString::number(volts), volts);
    // A custom voltage stays possible with every fixture.
    combo->addItem(other);
    combo->setCurrentIndex(
        voltageEntryAfterFixtureChange(fixture->validVoltages, fixture->startingVoltage, previous, other));
    ui->m_DL_LineVoltage_Spin->setVisible(combo->currentText() == other);
}

// =============================================================================================
// Add buttons

void Runplan::on_m_DL_AddFixture_Button_clicked()
{
    EditHistory::Step step(m_history, CommandText::add(ItemFixture));
    m_doc->addFixture(currentFixtureRecord());
}

void Runplan::on_m_DL_AddJumper_Button_clicked()
{
    EditHistory::Step step(m_history, CommandText::add(ItemJumper));
    m_doc->addJumper(currentFixtureRecord());
}

void Runplan::on_m_DL_AddReceiver_Button_clicked()
{
    EditHistory::Step step(m_history, CommandText::add(ItemReceiver));
    m_doc->addReceiver();
}

void Runplan::on_m_DL_AddJunctionBox_Button_clicked()
{
    EditHistory::Step step(m_history, CommandText::add(ItemJunctionBox));
    m_doc->addJunctionBox();
}

void Runplan::on_m_DL_AddLeader_Button_clicked()
{
    EditHistory::Step step(m_history, CommandText::add(ItemLeader));
    m_doc->addLeader(currentFixtureRecord());
}

void Runplan::on_m_DL_AddSupply_Button_clicked()
{
    EditHistory::Step step(m_history, CommandText::add(ItemSupply));
    m_doc->addSupply(currentSupplyRecord());
}

void Runplan::on_m_DL_Reset_Button_clicked()
{
    resetCanvas();
}

void Runplan::resetCanvas()
{
    EditHistory::Step step(m_history, CommandText::reset());
    const int topLevel = m_doc->model()->rowCount();
    m_doc->clear();
    on_m_DL_AddSupply_Button_clicked();
    // Resetting a single run is not a change worth saving.
    if (topLevel == 1)
        m_doc->setModified(false);
}

void Runplan::on_m_DL_Delete_Button_clicked()
{
    DL_DeleteLast();
}

void Runplan::DL_DeleteLast()
{
    EditHistory::Step step(m_history, CommandText::remove(m_doc->current()));
    ui->m_DL_Frame->deleteCurrent();
    // The canvas is never left empty.
    if (!m_doc->root())
        on_m_DL_AddSupply_Button_clicked();
}

void Runplan::handleSelectionChanged(const QModelIndex& index)
{
    updateAddButtons(index);
    setFocus();
}

void Runplan::updateAddButtons(const QModelIndex& index)
{
    // The document's rule for the selected component (the one the canvas announced).
    Q_UNUSED(index)
    const Additions allowed = m_doc->allowedAdditions(chosenFixtureRecord());
    ui->m_DL_AddFixture_Button->setEnabled(allowed.fixture);
    ui->m_DL_AddLeader_Button->setEnabled(allowed.leader);
    ui->m_DL_AddReceiver_Button->setEnabled(allowed.receiver);
    ui->m_DL_AddJunctionBox_Button->setEnabled(allowed.junctionBox);
    ui->m_DL_AddSupply_Button->setEnabled(allowed.enabler);
    ui->m_DL_Maximize_Button->setEnabled(allowed.maximize);
    if (allowed.jumper != Additions::JumperUnchanged)
        ui->m_DL_AddJumper_Button->setEnabled(allowed.jumper == Additions::JumperOn);
}

// =============================================================================================
// Analysis

void Runplan::DL_Update()
{
    if (m_analysisSuspended > 0)
        return;
    runAnalysis();
}

void Runplan::runAnalysis()
{
    AnalysisResult result = analyze(m_doc->root(), circuitInputs(), *m_db);
    applyResult(*m_doc, result);
    if (m_displayHeld) {
        // Unattended: the log still gets its lines; the totals and the canvas are never seen.
        logResult(result);
        m_lastResult = std::move(result);
        return;
    }

    ui->m_DL_DerateLoad_Label->setText(result.derateLabel);
    ui->m_DL_TotalFixtures_Label->setText(result.fixtureLabel);
    ui->m_DL_TotalPowerWatts_Edit->setText(result.powerText);
    ui->m_DL_TotalPowerAmps_Edit->setText(result.currentText);
    const QColor totals = result.pass ? passingFieldColor() : failingFieldColor();
    setFieldColor(ui->m_DL_TotalPowerWatts_Edit, totals);
    setFieldColor(ui->m_DL_TotalPowerAmps_Edit, totals);

    ui->m_DL_Total_PLC_Length_Edit->setEnabled(result.feedwiseEnabled);
    ui->feedwiseLengthLabel->setEnabled(result.feedwiseEnabled);
    ui->DLftLabel->setEnabled(result.feedwiseEnabled);
    if (result.feedwiseEnabled) {
        ui->m_DL_Total_PLC_Length_Edit->setText(result.feedwiseText);
        setFieldColor(ui->m_DL_Total_PLC_Length_Edit,
                      result.feedwiseLoad < 1.0 ? passingFieldColor() : failingFieldColor());
    } else {
        // No Feedwise run: the field shows no length of an earlier one.
        ui->m_DL_Total_PLC_Length_Edit->clear();
        setFieldColor(ui->m_DL_Total_PLC_Length_Edit, clearedFieldColor());
    }

    logResult(result);
    m_lastResult = std::move(result);
    ui->m_DL_Frame->updateFrame();
    ui->tableView->handleModelReset();
}

void Runplan::logResult(const AnalysisResult& result)
{
    for (const auto& line : result.logLines())
        statusMessage(line.first, line.second ? failingLogColor() : passingLogColor());
}

void Runplan::setFieldColor(QLineEdit* edit, const QColor& color)
{
    // Every analysis sets the colours again, mostly to what they are: a new palette is dear.
    if (edit->palette().color(QPalette::Active, QPalette::Base) == color &&
        edit->palette().color(QPalette::Inactive, QPalette::Base) == color &&
        edit->palette().color(QPalette::Disabled, QPalette::Base) == color)
        return;
    QPalette palette = edit->palette();
    palette.setColor(QPalette::All, QPalette::Base, color);
    edit->setPalette(palette);
}

void Runplan::handleClearCalculations()
{
    setFieldColor(ui->m_DL_TotalPowerWatts_Edit, clearedFieldColor());
    setFieldColor(ui->m_DL_TotalPowerAmps_Edit, clearedFieldColor());
    setFieldColor(ui->m_DL_Total_PLC_Length_Edit, clearedFieldColor());
    ui->m_DL_TotalPowerWatts_Edit->clear();
    ui->m_DL_TotalPowerAmps_Edit->clear();
    if (!ui->m_DL_Total_PLC_Length_Edit->isHidden())
        ui->m_DL_Total_PLC_Length_Edit->clear();
}

void Runplan::on_m_DL_Calculate_Configuration_clicked()
{
    runWithProgress(this, [this]() { runAnalysis(); });
}

void Runplan::DL_Maximize()
{
    // Maximize analyses after each of its own changes; the changes must not start one more each.
    EditHistory::Step step(m_history, CommandText::maximize());
    AnalysisHold hold(m_analysisSuspended);
    ::maximize(
        *m_doc, currentFixtureRecord(),
        [this]() {
            runAnalysis();
            return m_doc->passFlag();
        },
        m_reporter.get());
}

void Runplan::on_m_DL_Maximize_Button_clicked()
{
    runWithProgress(this, [this]() { DL_Maximize(); });
}

// =============================================================================================
// Undo and recovery

void Runplan::setUpUndoActions()
{
    QUndoStack* stack = m_history->stack();
    QAction* undo = stack->createUndoAction(this);
    QAction* redo = stack->createRedoAction(this);
    undo->setObjectName(QStringLiteral("actionUndo"));
    redo->setObjectName(QStringLiteral("actionRedo"));
    undo->setShortcut(QKeySequence::Undo);
    redo->setShortcut(QKeySequence::Redo);
    undo->setIcon(QIcon(QStringLiteral(":/undoicon.svg")));
    redo->setIcon(QIcon(QStringLiteral(":/redoicon.svg")));
    undo->setStatusTip(tr("Undo the last change to the configuration"));
    redo->setStatusTip(tr("Redo the change undone last"));
    QAction* firstEdit = ui->menuEdit->actions().value(0);
    ui->menuEdit->insertActions(firstEdit, {undo, redo});
    ui->menuEdit->insertSeparator(firstEdit);
    ui->mainToolBar->insertActions(ui->actionDelete, {undo, redo});
}

void Runplan::restoreState(const DocumentSnapshot& state)
{
    {
        AnalysisHold hold(m_analysisSuspended);
        InteractiveChangeOff off(this);
        state.restore(*m_doc, *this, m_reporter.get());
    }
    runAnalysis();
    updateAddButtons(m_doc->currentIndex());
}

// =============================================================================================
// Command line

bool Runplan::processCommandLine(const CommandLineOptions& options)
{
    return m_batch->start(options);
}

void Runplan::holdDisplay()
{
    // The canvas and the property table are left without the configuration, the totals are no
    // longer refreshed (runAnalysis), and the output log keeps its text, colours included,
    // without laying out a line of it or keeping its edits for undo. What the canvas passed on
    // from the document now comes straight from it.
    m_displayHeld = true;
    ui->tableView->setModel(nullptr);
    ui->m_DL_Frame->setDocument(nullptr);
    connect(m_doc, &ConfigDocument::changed, this, &Runplan::DL_Update);
    connect(m_doc, &ConfigDocument::currentChanged, this, &Runplan::handleSelectionChanged);
    connect(this, &Runplan::paramChanged, m_doc, [this]() { m_doc->setModified(true); });
    QTextDocument* log = ui->m_messageBox->document();
    log->setUndoRedoEnabled(false);
    log->setDocumentLayout(new UnlaidTextLayout(log));
    // One edit block for the whole run: every line goes in as it comes, but the log's views and
    // signals hear of them once, at the end.
    m_heldLogEdit = QTextCursor(log);
    m_heldLogEdit.beginEditBlock();
}

void Runplan::runCommands()
{
    m_batch->run();
}

// =============================================================================================
// Document commands (the work is the document lifecycle's)

QString Runplan::currentFilePath() const
{
    return m_lifecycle->currentFile();
}

QString Runplan::displayName() const
{
    return m_lifecycle->displayName();
}

void Runplan::setCurrentFile(const QString& path)
{
    m_lifecycle->setCurrentFile(path);
}

bool Runplan::offerToSaveIfNeeded()
{
    return m_lifecycle->offerToSaveIfNeeded();
}

void Runplan::handleNewAction()
{
    m_lifecycle->newConfiguration();
}

void Runplan::handleOpenAction()
{
    m_lifecycle->chooseAndOpen();
}

bool Runplan::openProject(const QString& path)
{
    return m_lifecycle->open(path);
}

QString Runplan::notReadWholeReason() const
{
    return m_lifecycle->notReadWholeReason();
}

bool Runplan::saveProject(const QString& path)
{
    return m_lifecycle->save(path);
}

void Runplan::handleSaveAction()
{
    m_lifecycle->saveCurrent();
}

void Runplan::handleSaveAsAction()
{
    m_lifecycle->saveAs();
}

bool Runplan::offerRecovery()
{
    return m_lifecycle->offerRecovery();
}

void Runplan::handlePrintAction()
{
    QPrinter printer(QPrinter::ScreenResolution);
    QPrintDialog dialog(&printer, this);
    if (m_prompter->execDialog(&dialog) != QDialog::Accepted)
        return;
    ui->m_DL_Frame->print(&printer);
}

// ---------------------------------------------------------------------------------------------
// Design report and bill of materials

bool Runplan::writeReport(const QString& path, QString* error)
{
    DesignReport::Source source;
    source.projectFile = currentFilePath();
    source.date = QDate::currentDate();
    const CircuitInputs inputs = circuitInputs();
    const DesignReport::Content content =
        DesignReport::build(source, inputs, m_lastResult, m_doc->root(), *m_db);
    const QByteArray pdf =
        ReportPdf::render(content, m_doc, &m_lastResult, ReportPdf::pageSizeFor(QLocale()));
    return DesignReport::writeFile(path, pdf, error);
}

bool Runplan::writeBillOfMaterials(const QString& path, QString* error)
{
    return DesignReport::writeFile(path, DesignReport::bomCsv(DesignReport::billOfMaterials(m_doc->root())),
                                   error);
}

// The proposed name: the project's, with the new suffix, beside it.
static QString proposedExportName(const QString& projectFile, const QString& suffix)
{
    if (projectFile.isEmpty())
        return QDir(RunplanSettings::lastDirPath()).filePath(QStringLiteral("untitled.") + suffix);
    const QFileInfo info(projectFile);
    return info.dir().filePath(info.completeBaseName() + QLatin1Char('.') + suffix);
}

void Runplan::handleExportReport()
{
    const QString path = m_prompter->getSaveFileName(
        this, tr("Export Report"), proposedExportName(currentFilePath(), QStringLiteral("pdf")),
        tr("PDF files (*.pdf)"));
    if (path.isEmpty())
        return;
    QString error;
    if (writeReport(path, &error))
        showStatusLine(tr("Report written to %1").arg(path));
    else
        Reporter::global()->message(Reporter::Kind::Critical, tr("Export Error"),
                                    tr("Cannot write %1:\n%2").arg(path, error));
}

void Runplan::handleExportBillOfMaterials()
{
    const QString path = m_prompter->getSaveFileName(
        this, tr("Export Bill of Materials"), proposedExportName(currentFilePath(), QStringLiteral("csv")),
        tr("CSV files (*.csv)"));
    if (path.isEmpty())
        return;
    QString error;
    if (writeBillOfMaterials(path, &error))
        showStatusLine(tr("Bill of materials written to %1").arg(path));
    else
        Reporter::global()->message(Reporter::Kind::Critical, tr("Export Error"),
                                    tr("Cannot write %1:\n%2").arg(path, error));
}

void Runplan::handleShowVoltages(bool on)
{
    QSettings().setValue(RunplanSettings::showVoltagesKey(), on);
    ui->m_DL_Frame->setShowVoltages(on);
}

void Runplan::on_actionAbout_triggered()
{
    if (!m_aboutDialog)
        m_aboutDialog = new AboutDialog(this);
    m_aboutDialog->show();
    m_aboutDialog->activateWindow();
}

void Runplan::on_actionPreferences_triggered()
{
    SettingsDlg dialog;
    m_prompter->execDialog(&dialog);
}

// =============================================================================================
// Window events

void Runplan::closeEvent(QCloseEvent* event)
{
    if (offerToSaveIfNeeded()) {
        event->ignore();
        return;
    }
    QSettings settings;
    settings.setValue(RunplanSettings::windowGeometryKey(), saveGeometry());
    settings.setValue(RunplanSettings::lineKeyActiveKey(), ui->actionLineColorKey->isChecked());
    RunplanSettings::finishWrite(settings);
    m_autosave->discard();
    event->accept();
}

void Runplan::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Delete) {
        DL_DeleteLast();
        event->accept();
        return;
    }
    QMainWindow::keyPressEvent(event);
}
