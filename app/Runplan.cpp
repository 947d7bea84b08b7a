#include "app/Runplan.h"

#include "app/AboutDialog.h"
#include "app/CommandLine.h"
#include "app/Prompter.h"
#include "calc/Maximize.h"
#include "canvas/CFrame.h"
#include "catalog/Database.h"
#include "catalog/Version.h"
#include "model/CWidget.h"
#include "model/CWidgetModel.h"
#include "model/ConfigDocument.h"
#include "model/ProjectFile.h"
#include "model/SafeFile.h"
#include "model/view/CWidgetTableView.h"
#include "ui_Runplan.h"
#include "update/LoadingDialog.h"
#include "update/SettingsDlg.h"
#include "update/SettingsKeys.h"

#include <QApplication>
#include <QCloseEvent>
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
#include <QTimer>

#include <cstdio>

// The compiled-in pictures live in the static front-end library; referencing them here makes sure
// the linker keeps them wherever the window is used.
static void initRunplanResources()
{
    Q_INIT_RESOURCE(runplan);
}

namespace
{
Runplan* g_mainWindow = nullptr;

// Switches the clear question off for a scope and restores the previous setting after.
class InteractiveChangeOff
{
public:
    explicit InteractiveChangeOff(Runplan* w) : m_window(w), m_previous(w->isInteractiveChange())
    {
        w->setInteractiveChange(false);
    }
    ~InteractiveChangeOff() { m_window->setInteractiveChange(m_previous); }
    InteractiveChangeOff(const InteractiveChangeOff&) = delete;
    InteractiveChangeOff& operator=(const InteractiveChangeOff&) = delete;

private:
    Runplan* m_window;
    bool m_previous;
};

// Holds the automatic analysis back for a scope.
class AnalysisHold
{
public:
    explicit AnalysisHold(int& counter) : m_counter(counter) { ++m_counter; }
    ~AnalysisHold() { --m_counter; }
    AnalysisHold(const AnalysisHold&) = delete;
    AnalysisHold& operator=(const AnalysisHold&) = delete;

private:
    int& m_counter;
};

QString projectFilter()
{
    return QObject::tr("Configuration Files (*.rpproj);;All Files (*.* *)");
}

int findExact(const QComboBox* combo, const QString& text)
{
    return combo->findText(text, Qt::MatchFixedString | Qt::MatchCaseSensitive);
}
} // namespace

// Routes the engine's words to this window: messages to the process-wide reporter (message boxes
// at the desktop, standard error when unattended), status lines to the status bar and log lines
// to the output log.
class Runplan::WindowReporter : public Reporter
{
public:
    explicit WindowReporter(Runplan* window) : m_window(window) {}
    void message(Kind kind, const QString& title, const QString& text) override
    {
        Reporter::global()->message(kind, title, text);
    }
    void status(const QString& text) override { m_window->showStatusLine(text); }
    void log(const QString& text, bool failing) override
    {
        m_window->statusMessage(text, failing ? failingLogColor() : passingLogColor());
    }

private:
    Runplan* m_window;
};

Runplan* Runplan::instance()
{
    return g_mainWindow;
}

Runplan::Runplan(QWidget* parent)
    : QMainWindow(parent), ui(new Ui::RunplanClass), m_defaultPrompter(new DialogPrompter),
      m_reporter(new WindowReporter(this))
{
    g_mainWindow = this;
    m_prompter = m_defaultPrompter.get();
    initRunplanResources();
    // Nothing is analysed until the window is complete; the Reset after the connections runs the
    // first analysis.
    auto hold = std::make_unique<AnalysisHold>(m_analysisSuspended);

    // Form and icon.
    ui->setupUi(this);
    setWindowIcon(QIcon(QStringLiteral(":/Runplan.ico")));

    // Bold labels; only the Dynaline page stays.
    QFont bold = QApplication::font();
    bold.setWeight(QFont::Bold);
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

    // The catalog: its first use loads it and reports its own faults. The canvas and the
    // property table are two views on the one configuration.
    m_db = Database::instance();
    m_doc = new ConfigDocument(m_db, this);
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

    // Initial choices. The result labels hold the form's placeholders until an analysis fills
    // them, which never happens without a catalog.
    ui->m_DL_DerateLoad_Label->clear();
    ui->m_DL_TotalFixtures_Label->clear();
    ui->m_DL_AddReceiver_Button->hide();
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
    hold.reset();

    // Connections.
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
    on_m_DL_Reset_Button_clicked();
    m_doc->setModified(false);

    // Tips, icons and the zoom list.
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

    // Title.
    setWindowTitleFor(QString());

    // Stored window state; the line key shows unless it was switched off.
    QSettings settings;
    if (settings.contains(RunplanSettings::windowGeometryKey()))
        restoreGeometry(settings.value(RunplanSettings::windowGeometryKey()).toByteArray());
    ui->actionLineColorKey->setChecked(settings.contains(RunplanSettings::lineKeyActiveKey())
                                           ? settings.value(RunplanSettings::lineKeyActiveKey()).toBool()
                                           : true);
    canvas->handleLineKeyToggled(ui->actionLineColorKey->isChecked());
}

Runplan::~Runplan()
{
    // The canvas and the table refer to the document: let them go first.
    ui->m_DL_Frame->setDocument(nullptr);
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
    m_exportRunning = false;
}

void Runplan::emitInputChanged()
{
    emit clearCalculations();
    emit paramChanged();
    DL_Update();
}

void Runplan::on_m_DL_LineVoltage_Combo_currentIndexChanged(int index)
{
    ui->m_DL_LineVoltage_Spin->setVisible(ui->m_DL_LineVoltage_Combo->itemText(index) == tr("Other"));
    emitInputChanged();
}

void Runplan::on_m_DL_LineVoltage_Spin_valueChanged(int value)
{
    Q_UNUSED(value)
    emitInputChanged();
}

void Runplan::on_m_DL_MaxLoad_Combo_currentIndexChanged(int index)
{
    ui->m_DL_MaxLoad_Spin->setVisible(index >= 0 && index == ui->m_DL_MaxLoad_Combo->count() - 1);
    emitInputChanged();
}

void Runplan::on_m_DL_MaxLoad_Spin_valueChanged(int value)
{
    Q_UNUSED(value)
    emitInputChanged();
}

void Runplan::on_m_frequencyComboBox_currentIndexChanged(int index)
{
    Q_UNUSED(index)
    emitInputChanged();
}

void Runplan::on_m_DLController_Combo_currentIndexChanged(int index)
{
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
    in.lineVoltage = volts == tr("Other") ? ui->m_DL_LineVoltage_Spin->value() : volts.toDouble();
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
    const int index = findExact(ui->m_DL_LineVoltage_Combo, QStringLiteral("120"));
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
    {
        AnalysisHold hold(m_analysisSuspended);
        InteractiveChangeOff off(this);
        // The root is always the chosen enabler.
        on_m_DL_Reset_Button_clicked();

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
            on_m_DL_Reset_Button_clicked();
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
    const QString other = tr("Other");
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
    m_doc->addFixture(currentFixtureRecord());
}

void Runplan::on_m_DL_AddJumper_Button_clicked()
{
    m_doc->addJumper(currentFixtureRecord());
}

void Runplan::on_m_DL_AddReceiver_Button_clicked()
{
    m_doc->addReceiver();
}

void Runplan::on_m_DL_AddJunctionBox_Button_clicked()
{
    m_doc->addJunctionBox();
}

void Runplan::on_m_DL_AddLeader_Button_clicked()
{
    m_doc->addLeader(currentFixtureRecord());
}

void Runplan::on_m_DL_AddSupply_Button_clicked()
{
    m_doc->addSupply(currentSupplyRecord());
}

void Runplan::on_m_DL_Reset_Button_clicked()
{
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

    for (const auto& line : result.logLines())
        statusMessage(line.first, line.second ? failingLogColor() : passingLogColor());

    m_lastResult = std::move(result);
    ui->m_DL_Frame->updateFrame();
    ui->tableView->handleModelReset();
}

void Runplan::setFieldColor(QLineEdit* edit, const QColor& color)
{
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
    auto* dialog = new LoadingDialog(this);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->showCentredOn(QApplication::activeWindow());
    QCoreApplication::processEvents();
    runAnalysis();
    dialog->close();
}

void Runplan::DL_Maximize()
{
    // Maximize analyses after each of its own changes; the changes must not start one more each.
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
    auto* dialog = new LoadingDialog(this);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->showCentredOn(QApplication::activeWindow());
    QCoreApplication::processEvents();
    DL_Maximize();
    dialog->close();
}

// =============================================================================================
// Exports

const Database& Runplan::database() const
{
    return *m_db;
}

void Runplan::selectEnabler(const DLPowerSupply* enabler)
{
    selectSupplyRecord(enabler);
}

void Runplan::selectFixture(const VxFixture* fixture)
{
    const DLPowerSupply* supply = currentSupplyRecord();
    if (!supply || !fixture)
        return;
    selectFixtureIndex(supply->fixtures.indexOf(const_cast<VxFixture*>(fixture)));
}

void Runplan::selectLineVoltage(int volts)
{
    const int index = findExact(ui->m_DL_LineVoltage_Combo, QString::number(volts));
    if (index >= 0)
        ui->m_DL_LineVoltage_Combo->setCurrentIndex(index);
}

void Runplan::resetWithFixture()
{
    InteractiveChangeOff off(this);
    on_m_DL_Reset_Button_clicked();
    on_m_DL_AddFixture_Button_clicked();
}

void Runplan::maximize()
{
    // Maximize reads the pass flag of the configuration as it stands now.
    runAnalysis();
    DL_Maximize();
}

int Runplan::fixtureCount() const
{
    return m_doc->count(ItemFixture);
}

double Runplan::totalLength() const
{
    return m_lastResult.totalLength;
}

const VxFixture* Runplan::currentFixture() const
{
    return currentFixtureRecord();
}

bool Runplan::progress(int percent)
{
    if (m_progressDialog) {
        m_progressDialog->setPercent(percent);
        QCoreApplication::processEvents();
    }
    return m_exportRunning;
}

void Runplan::on_actionMaximizeAll_triggered()
{
    runExport(true);
}

void Runplan::on_actionMaximizeFixture_triggered()
{
    runExport(false);
}

void Runplan::runExport(bool all)
{
    QString fileName = m_exportFileName;
    if (m_runningBatchCommands) {
        if (fileName.isEmpty())
            fileName = RunplanSettings::defaultMaximizeFixtureFile();
        if (!m_db->isValid()) {
            std::fprintf(stderr, "%s\n",
                         qPrintable(tr("Runplan: the catalog %1 is not valid; nothing was exported.")
                                        .arg(QDir::toNativeSeparators(m_db->path()))));
            finishBatch(1);
            return;
        }
    } else {
        fileName =
            m_prompter->getSaveFileName(this, tr("Select file"), RunplanSettings::maximizeFixtureFile(),
                                        tr("CSV File (*.csv);; All Files (*.*)"));
        RunplanSettings::setMaximizeFixtureFile(fileName);
        qDebug() << fileName;
        if (fileName.isEmpty())
            return;
    }

    // Written through a temporary file: a failed export leaves an earlier file as it was, and a
    // cancelled one replaces it with the rows written so far.
    QSaveFile file(fileName);
    if (!SafeFile::open(file)) {
        if (m_runningBatchCommands) {
            std::fprintf(stderr, "%s\n",
                         qPrintable(tr("Runplan: cannot write %1: %2")
                                        .arg(QDir::toNativeSeparators(fileName), file.errorString())));
            finishBatch(1);
        }
        return;
    }

    m_exportRunning = true;
    if (!m_runningBatchCommands) {
        m_progressDialog = new LoadingDialog(this);
        connect(m_progressDialog->cancelButton(), &QPushButton::clicked, this,
                &Runplan::handleProgressDialogClosed);
        connect(m_progressDialog, &QDialog::rejected, this, &Runplan::handleProgressDialogClosed);
        m_progressDialog->showCentredOn(QApplication::activeWindow());
        QCoreApplication::processEvents();
    }

    if (all)
        CsvExport::exportAllFixtures(file, *this);
    else
        CsvExport::exportCurrentFixture(file, *this);
    const bool written = SafeFile::commit(file);
    m_exportRunning = false;

    if (m_progressDialog) {
        m_progressDialog->hide();
        m_progressDialog->deleteLater();
        m_progressDialog = nullptr;
    }
    if (m_runningBatchCommands) {
        if (!written)
            std::fprintf(stderr, "%s\n",
                         qPrintable(tr("Runplan: writing %1 failed: %2")
                                        .arg(QDir::toNativeSeparators(fileName), file.errorString())));
        finishBatch(written ? 0 : 1);
    }
}

void Runplan::finishBatch(int exitCode)
{
    std::fflush(stdout);
    std::fflush(stderr);
    emit batchFinished(exitCode);
}

// =============================================================================================
// Command line

bool Runplan::processCommandLine(const QStringList& arguments)
{
    return processCommandLine(parseCommandLine(arguments.mid(1)));
}

bool Runplan::processCommandLine(const CommandLineOptions& options)
{
    if (options.unattended)
        m_runningBatchCommands = true;
    if (options.maximizeAll) {
        m_maximizeAllRequested = true;
        m_maximizeAllFileName = options.maximizeAllFile;
    }
    if (options.maximizeFixture) {
        m_maximizeFixtureRequested = true;
        m_maximizeFixtureFileName = options.maximizeFixtureFile;
    }
    for (const CommandLineOptions::Selection& s : options.selections) {
        InteractiveChangeOff off(this);
        switch (s.kind) {
        case CommandLineOptions::Selection::Fixture: {
            const int index = findExact(ui->m_DLFixture_Combo, s.value);
            if (index >= 0)
                ui->m_DLFixture_Combo->setCurrentIndex(index);
            break;
        }
        case CommandLineOptions::Selection::PowerSupply: {
            const int index = ui->m_DLSupply_Combo->findText(s.value, Qt::MatchFixedString);
            if (index >= 0)
                ui->m_DLSupply_Combo->setCurrentIndex(index);
            break;
        }
        case CommandLineOptions::Selection::MaxCircuitLoad: {
            const int index = ui->m_DL_MaxLoad_Combo->findText(s.value, Qt::MatchFixedString);
            if (index >= 0)
                ui->m_DL_MaxLoad_Combo->setCurrentIndex(index);
            break;
        }
        }
    }
    bool opened = true;
    if (!options.projectFile.isEmpty())
        opened = openProject(options.projectFile);
    QTimer::singleShot(0, this, &Runplan::runCommands);
    return opened;
}

void Runplan::runCommands()
{
    if (m_maximizeAllRequested) {
        m_exportFileName = m_maximizeAllFileName;
        on_actionMaximizeAll_triggered();
    } else if (m_maximizeFixtureRequested) {
        m_exportFileName = m_maximizeFixtureFileName;
        on_actionMaximizeFixture_triggered();
    } else {
        emit commandsDone();
    }
    qDebug() << "Command completed";
}

// =============================================================================================
// Document commands

QString Runplan::displayName() const
{
    return m_currentFile.isEmpty() ? tr("Untitled.rpproj") : QFileInfo(m_currentFile).fileName();
}

void Runplan::setWindowTitleFor(const QString& path)
{
    const QString name = path.isEmpty() ? tr("Untitled.rpproj") : QFileInfo(path).fileName();
    // One pass, so that a "%1" in the file name stays as typed.
    setWindowTitle(tr("%1[*] - %2 Release %3.%4.%5 [Build %6-%7]")
                       .arg(name, RunplanVersion::applicationName(), QString::number(RunplanVersion::Major),
                            QString::number(RunplanVersion::Minor), QString::number(RunplanVersion::Revision),
                            QString::number(RunplanVersion::BuildDate), RunplanVersion::buildTag()));
}

void Runplan::setCurrentFile(const QString& path)
{
    m_currentFile = path;
    const QString shown = path.isEmpty() ? QString() : QFileInfo(path).fileName();
    ui->actionSave->setText(tr("&Save %1").arg(shown));
    ui->actionSaveAs->setText(tr("Save %1 &As...").arg(shown));
    setWindowTitleFor(path);
}

bool Runplan::offerToSaveIfNeeded()
{
    if (m_runningBatchCommands || !m_doc->isModified())
        return false;
    switch (m_prompter->askSaveChanges(this, displayName())) {
    case Prompter::SaveChoice::Save:
        handleSaveAction();
        // A save that was cancelled or failed leaves the changes unsaved: do not go on.
        return m_doc->isModified();
    case Prompter::SaveChoice::Discard:
        return false;
    case Prompter::SaveChoice::Cancel:
        return true;
    }
    return true;
}

void Runplan::handleNewAction()
{
    if (offerToSaveIfNeeded())
        return;
    {
        InteractiveChangeOff off(this);
        if (ui->m_DLSupply_Combo->count() > 0)
            ui->m_DLSupply_Combo->setCurrentIndex(0);
    }
    {
        // A project read in part may have left selectors without an entry; New leaves none so.
        InteractiveChangeOff off(this);
        if (ui->m_DLFixture_Combo->currentIndex() < 0 && ui->m_DLFixture_Combo->count() > 0)
            ui->m_DLFixture_Combo->setCurrentIndex(0);
        if (ui->m_DLController_Combo->currentIndex() < 0 && ui->m_DLController_Combo->count() > 0)
            ui->m_DLController_Combo->setCurrentIndex(0);
    }
    chooseDefaultLineVoltage();
    if (ui->m_DL_LineVoltage_Combo->currentIndex() < 0 && ui->m_DL_LineVoltage_Combo->count() > 0)
        ui->m_DL_LineVoltage_Combo->setCurrentIndex(0);
    ui->m_DL_MaxLoad_Combo->setCurrentIndex(0);
    ui->m_frequencyComboBox->setCurrentIndex(findExact(ui->m_frequencyComboBox, QStringLiteral("60 Hz")));
    on_m_DL_Reset_Button_clicked();
    m_doc->setModified(false);
    setCurrentFile(QString());
    m_notReadWholePath.clear();
    m_notReadWholeReason.clear();
    m_doc->setModified(false);
}

void Runplan::handleOpenAction()
{
    if (offerToSaveIfNeeded())
        return;
    const QString path = m_prompter->getOpenFileName(this, tr("Open Configuration"),
                                                     RunplanSettings::lastDirPath(), projectFilter());
    if (path.isEmpty())
        return;
    RunplanSettings::setLastDirPath(QFileInfo(path).absolutePath());
    openProject(path);
}

bool Runplan::openProject(const QString& path)
{
    bool opened = false;
    QString notReadWhole;
    {
        AnalysisHold hold(m_analysisSuspended);
        InteractiveChangeOff off(this);
        QApplication::setOverrideCursor(Qt::WaitCursor);
        opened = ProjectFile::open(path, *m_doc, *this, m_reporter.get(), &notReadWhole);
        QApplication::restoreOverrideCursor();
    }
    if (opened) {
        ui->m_DL_Frame->showTopLeft();
        // A failure reported for an earlier file no longer describes what is shown.
        statusBar()->clearMessage();
        m_notReadWholePath = notReadWhole.isEmpty() ? QString() : QFileInfo(path).absoluteFilePath();
        m_notReadWholeReason = notReadWhole;
        setCurrentFile(path);
        m_doc->setModified(false);
        runAnalysis();
    }
    return opened;
}

bool Runplan::saveProject(const QString& path)
{
    // A file read only in part is replaced only when the user says so.
    const QString target = QFileInfo(ProjectFile::withExtension(path)).absoluteFilePath();
    const bool overPartlyRead = !m_notReadWholePath.isEmpty() && target == m_notReadWholePath;
    if (overPartlyRead && !m_prompter->askReplaceNotReadWhole(this, QFileInfo(target).fileName()))
        return false;
    QString saved;
    QApplication::setOverrideCursor(Qt::WaitCursor);
    const bool ok = ProjectFile::save(path, *m_doc, *this, m_reporter.get(), &saved);
    QApplication::restoreOverrideCursor();
    if (ok) {
        if (overPartlyRead) {
            m_notReadWholePath.clear();
            m_notReadWholeReason.clear();
        }
        setCurrentFile(saved);
    }
    return ok;
}

void Runplan::handleSaveAction()
{
    if (!m_currentFile.isEmpty())
        saveProject(m_currentFile);
    else
        handleSaveAsAction();
}

void Runplan::handleSaveAsAction()
{
    const QString proposed = QDir(RunplanSettings::lastDirPath()).filePath(tr("Untitled.rpproj"));
    const QString extension = QStringLiteral(".rpproj");
    for (;;) {
        QString name = m_prompter->getSaveFileName(this, tr("Save Configuration"), proposed, projectFilter());
        if (name.isEmpty())
            return;
        if (!name.endsWith(extension)) {
            // The file dialog checked the name it was given, not this one.
            name += extension;
            if (QFileInfo::exists(name) && !m_prompter->askReplace(this, name))
                continue;
        }
        RunplanSettings::setLastDirPath(QFileInfo(name).absolutePath());
        saveProject(name);
        return;
    }
}

void Runplan::handlePrintAction()
{
    QPrinter printer(QPrinter::ScreenResolution);
    QPrintDialog dialog(&printer, this);
    if (m_prompter->execDialog(&dialog) != QDialog::Accepted)
        return;
    ui->m_DL_Frame->print(&printer);
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
// HeaderChoices

QString Runplan::supplyText() const
{
    return ui->m_DLSupply_Combo->currentText();
}

QString Runplan::fixtureText() const
{
    return ui->m_DLFixture_Combo->currentText();
}

QString Runplan::lineVoltageText() const
{
    return ui->m_DL_LineVoltage_Combo->currentText();
}

int Runplan::customLineVoltage() const
{
    return ui->m_DL_LineVoltage_Spin->value();
}

QString Runplan::maxCircuitLoadText() const
{
    return ui->m_DL_MaxLoad_Combo->currentText();
}

int Runplan::customMaxCircuitLoad() const
{
    return ui->m_DL_MaxLoad_Spin->value();
}

QString Runplan::frequencyText() const
{
    return ui->m_frequencyComboBox->currentText();
}

QString Runplan::controllerText() const
{
    return ui->m_DLController_Combo->currentText();
}

void Runplan::selectSupply(const QString& text)
{
    ui->m_DLSupply_Combo->setCurrentIndex(findExact(ui->m_DLSupply_Combo, text));
}

void Runplan::selectFixture(const QString& text)
{
    ui->m_DLFixture_Combo->setCurrentIndex(findExact(ui->m_DLFixture_Combo, text));
}

void Runplan::selectLineVoltage(const QString& text)
{
    ui->m_DL_LineVoltage_Combo->setCurrentIndex(findExact(ui->m_DL_LineVoltage_Combo, text));
}

void Runplan::setCustomLineVoltage(int volts)
{
    ui->m_DL_LineVoltage_Spin->setValue(volts);
}

void Runplan::selectMaxCircuitLoad(const QString& text)
{
    ui->m_DL_MaxLoad_Combo->setCurrentIndex(findExact(ui->m_DL_MaxLoad_Combo, text));
}

void Runplan::setCustomMaxCircuitLoad(int amps)
{
    ui->m_DL_MaxLoad_Spin->setValue(amps);
}

void Runplan::selectFrequency(const QString& text)
{
    ui->m_frequencyComboBox->setCurrentIndex(findExact(ui->m_frequencyComboBox, text));
}

void Runplan::selectController(const QString& text)
{
    ui->m_DLController_Combo->setCurrentIndex(findExact(ui->m_DLController_Combo, text));
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
    settings.sync();
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
