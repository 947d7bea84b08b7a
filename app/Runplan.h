#pragma once

#include "calc/Analysis.h"
#include "calc/CsvExport.h"
#include "catalog/Reporter.h"
#include "model/HeaderChoices.h"

#include <QColor>
#include <QMainWindow>
#include <QModelIndex>
#include <QPointer>
#include <QTextCursor>
#include <memory>

namespace Ui
{
class RunplanClass;
}
class AboutDialog;
class BatchRunner;
class DocumentLifecycle;
class Autosave;
class EditHistory;
class GuiReporter;
class ExportRunner;
struct DocumentSnapshot;
class CFrame;
class ConfigDocument;
class CWidgetTableView;
class Database;
class DLFixture;
class DLPowerSupply;
class LoadingDialog;
class Prompter;
class QCloseEvent;
class QComboBox;
class QKeyEvent;
class QLineEdit;
class QPushButton;
class QSpinBox;
class QTextEdit;
struct CommandLineOptions;

// The program's document window: the circuit selectors, the add buttons, the canvas with the
// property table of the selected component, the totals and the output log. It owns one
// configuration (a ConfigDocument shown by the canvas), runs the analysis after every change and
// writes its results; its selectors are the header choices of project files and what the CSV
// exports drive.
class Runplan : public QMainWindow, public HeaderChoices, public ExportHost
{
    Q_OBJECT
public:
    explicit Runplan(QWidget* parent = nullptr);
    ~Runplan() override;

    // The one main window of the process (null before it exists and after it is gone).
    static Runplan* instance();

    static QColor passingLogColor() { return QColor(0, 0, 0); }
    static QColor failingLogColor() { return QColor(255, 0, 0); }
    static QColor passingFieldColor() { return QColor(192, 255, 192); }
    static QColor failingFieldColor() { return QColor(255, 128, 128); }
    static QColor clearedFieldColor() { return QColor(192, 192, 192); }

    ConfigDocument* document() const { return m_doc; }
    CFrame* frame() const;
    CWidgetTableView* propertyTable() const;
    const Database* catalog() const { return m_db; }

    // Questions and file dialogs; the window keeps a default that shows real dialogs. Not owned.
    void setPrompter(Prompter* prompter);
    Prompter* prompter() const { return m_prompter; }

    // When set, enabler and fixture changes ask before they clear the configuration.
    bool isInteractiveChange() const { return m_interactiveChange; }
    void setInteractiveChange(bool on) { m_interactiveChange = on; }
    bool isRunningBatchCommands() const { return m_runningBatchCommands; }
    void setRunningBatchCommands(bool on) { m_runningBatchCommands = on; }
    bool isExportRunning() const;

    // The command-line step: applies the options in order through the selectors, opens the
    // project file given last and queues runCommands(). False when that project could not be read.
    bool processCommandLine(const CommandLineOptions& options);

    // The undo history of the configuration and the autosave of its unsaved changes.
    EditHistory* history() const { return m_history; }
    Autosave* autosave() const { return m_autosave; }
    // Interactive start-up: offers the unsaved changes a run that did not exit cleanly left
    // behind. True when they were recovered.
    bool offerRecovery();

    // Document commands
    QString currentFilePath() const;
    QString displayName() const;
    void setCurrentFile(const QString& path);
    // Asks to save unsaved changes; true when the user cancelled.
    bool offerToSaveIfNeeded();
    bool openProject(const QString& path);
    // Asks first when the path is that of a project read only in part; false when not saved.
    bool saveProject(const QString& path);
    // Where and why the project last opened broke off; empty when it was read whole.
    QString notReadWholeReason() const;

    // Selectors
    DLPowerSupply* currentSupplyRecord() const;
    // The fixture the add buttons use: of the chosen enabler's fixtures, the last whose name is
    // the fixture selector's text, else the enabler's first.
    DLFixture* currentFixtureRecord() const;
    // The enabler's fixture at the fixture selector's index (what was chosen there).
    DLFixture* chosenFixtureRecord() const;
    CircuitInputs circuitInputs() const;
    // Selects by position / by record, with the clear question suspended; nothing happens when
    // out of range or already current.
    void selectFixtureIndex(int index);
    void selectSupplyRecord(const DLPowerSupply* record);

    const AnalysisResult& lastResult() const { return m_lastResult; }

    // The design report (PDF) and the bill of materials (CSV) of the configuration as analysed
    // last, each written through a temporary file. False with the reason in error.
    bool writeReport(const QString& path, QString* error);
    bool writeBillOfMaterials(const QString& path, QString* error);
    double zoomFactor() const { return m_zoomFactor; }
    void showStatusLine(const QString& text);

    // Reset button (it has no widget of its own in the form): see resetCanvas().
    void on_m_DL_Reset_Button_clicked();
    void on_m_DL_Delete_Button_clicked();

    // HeaderChoices
    QString supplyText() const override;
    QString fixtureText() const override;
    QString lineVoltageText() const override;
    int customLineVoltage() const override;
    QString maxCircuitLoadText() const override;
    int customMaxCircuitLoad() const override;
    QString frequencyText() const override;
    QString controllerText() const override;
    void selectSupply(const QString& text) override;
    void selectFixture(const QString& text) override;
    void selectLineVoltage(const QString& text) override;
    void setCustomLineVoltage(int volts) override;
    void selectMaxCircuitLoad(const QString& text) override;
    void setCustomMaxCircuitLoad(int amps) override;
    void selectFrequency(const QString& text) override;
    void selectController(const QString& text) override;

    // ExportHost
    const Database& database() const override;
    void selectEnabler(const DLPowerSupply* enabler) override;
    void selectFixture(const VxFixture* fixture) override;
    void selectLineVoltage(int volts) override;
    void resetWithFixture() override;
    void maximize() override;
    int fixtureCount() const override;
    double totalLength() const override;
    const VxFixture* currentFixture() const override;
    bool progress(int percent) override;

private slots:
    void handleExportReport();
    void handleExportBillOfMaterials();
    void handleShowVoltages(bool on);

signals:
    void zoomLevelChanged(double factor);
    void paramChanged();
    void commandsDone();
    void clearCalculations();
    // An unattended export is over; the process should end with this status.
    void batchFinished(int exitCode);

public slots:
    void show();
    void runCommands();
    void statusMessage(const QString& text);
    void statusMessage(const QString& text, const QColor& color);
    void DL_Update();
    void DL_DeleteLast();
    void DL_Maximize();
    void handleSaveAsAction();
    void handleSaveAction();
    void handleOpenAction();
    void handleNewAction();
    void handlePrintAction();
    void handleProgressDialogClosed();
    void handleClearCalculations();
    void handleZoomLevelChanged(int index);
    void handleSelectionChanged(const QModelIndex& index);
    void on_tabWidget_currentChanged(int index);
    void on_actionAbout_triggered();
    void on_actionPreferences_triggered();
    void on_m_DLFixture_Combo_currentIndexChanged(int index);
    void on_m_DLSupply_Combo_currentIndexChanged(int index);
    void on_m_DL_LineVoltage_Combo_currentIndexChanged(int index);
    void on_m_DL_LineVoltage_Spin_valueChanged(int value);
    void on_m_DL_MaxLoad_Combo_currentIndexChanged(int index);
    void on_m_DL_MaxLoad_Spin_valueChanged(int value);
    void on_m_DL_AddFixture_Button_clicked();
    void on_m_DL_AddJumper_Button_clicked();
    void on_m_DL_AddReceiver_Button_clicked();
    void on_m_DL_AddJunctionBox_Button_clicked();
    void on_m_DL_AddLeader_Button_clicked();
    void on_m_DL_AddSupply_Button_clicked();
    void on_actionMaximizeAll_triggered();
    void on_actionMaximizeFixture_triggered();
    void on_m_DL_Maximize_Button_clicked();
    void on_m_frequencyComboBox_currentIndexChanged(int index);
    void on_m_DLController_Combo_currentIndexChanged(int index);
    void on_m_DL_Calculate_Configuration_clicked();

protected:
    void closeEvent(QCloseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    friend class BatchRunner;
    friend class DocumentLifecycle;
    // Runs the analysis now, whatever suspends the automatic one.
    void runAnalysis();
    // A new enabler, the selected one, on an empty canvas (the Reset button, enabler and fixture
    // changes that clear, New, the exports' fresh start).
    void resetCanvas();
    void logResult(const AnalysisResult& result);
    void rebuildVoltageList(const DLFixture* fixture);
    void updateAddButtons(const QModelIndex& index);
    void setFieldColor(QLineEdit* edit, const QColor& color);
    void emitInputChanged();
    void chooseDefaultLineVoltage();
    // The two CSV exports; all: every fixture of the two listed enablers, else the chosen one.
    void runExport(bool all);
    // The file an export writes: asked for at the desktop, the command line's (or the default)
    // when unattended; empty to export nothing.
    QString exportFileName();
    void finishBatch(int exitCode);
    // Puts a state of the undo history back and analyses it as any change.
    void restoreState(const DocumentSnapshot& state);
    void setUpUndoActions();
    // Construction steps.
    void setUpForm();
    void chooseInitialInputs();
    void connectViews();
    void setUpActionTips();
    void restoreWindowState();
    // Unattended: the window is never shown, so its display is no longer kept up.
    void holdDisplay();

    Ui::RunplanClass* ui;
    const Database* m_db = nullptr;
    ConfigDocument* m_doc = nullptr;
    EditHistory* m_history = nullptr;
    Autosave* m_autosave = nullptr;
    std::unique_ptr<Prompter> m_defaultPrompter;
    Prompter* m_prompter = nullptr;
    std::unique_ptr<GuiReporter> m_reporter;
    std::unique_ptr<DocumentLifecycle> m_lifecycle;
    std::unique_ptr<BatchRunner> m_batch;
    QPointer<AboutDialog> m_aboutDialog;
    ExportRunner* m_exportRunner = nullptr;

    bool m_interactiveChange = true;
    bool m_runningBatchCommands = false;
    bool m_displayHeld = false;
    QTextCursor m_heldLogEdit;
    double m_zoomFactor = 1.0;
    AnalysisResult m_lastResult;

    int m_previousSupplyIndex = -1;
    const DLFixture* m_previousFixture = nullptr;
    int m_previousFixtureIndex = -1;
    // While above zero, changes do not start the analysis on their own (construction, opening
    // a project, list rebuilds, Maximize, which runs it itself).
    int m_analysisSuspended = 0;
};
