// The main window's circuit selectors: its combo boxes mirror the selector state (CircuitSelectors),
// and their slots add the window's own part (the clear question, the undo steps, the analysis).
#include "app/Runplan.h"

#include "app/Prompter.h"
#include "app/WindowScopes.h"
#include "app/commands/CommandText.h"
#include "app/commands/EditHistory.h"
#include "calc/CircuitSelectors.h"
#include "catalog/Database.h"
#include "model/CWidget.h"
#include "model/ConfigDocument.h"
#include "ui_Runplan.h"

namespace
{
// Whether a fixture change must clear the configuration: fixtures of another family (or of
// family 0) cannot share the run, nor can a lone leader's.
bool fixtureChangeClears(const DLFixture* previous, const DLFixture* next, int fixtures, int leaders)
{
    const bool familiesDiffer = !previous || previous->family != next->family;
    if (fixtures > 0)
        return !previous || previous->family == 0 || familiesDiffer;
    return leaders == 1 && familiesDiffer;
}
} // namespace

void Runplan::on_m_DL_LineVoltage_Combo_currentIndexChanged(int index)
{
    EditHistory::Step step(m_history, CommandText::change(tr("Line Voltage")));
    m_selectors->selectLineVoltage(ui->m_DL_LineVoltage_Combo->itemText(index));
    ui->m_DL_LineVoltage_Spin->setVisible(m_selectors->lineVoltage == HeaderChoices::otherEntry());
    emitInputChanged();
}

void Runplan::on_m_DL_LineVoltage_Spin_valueChanged(int value)
{
    EditHistory::Step step(m_history, CommandText::change(tr("Line Voltage")),
                           CommandText::CustomLineVoltage);
    m_selectors->setCustomLineVoltage(value);
    emitInputChanged();
}

void Runplan::on_m_DL_MaxLoad_Combo_currentIndexChanged(int index)
{
    EditHistory::Step step(m_history, CommandText::change(tr("Max Circuit Load")));
    m_selectors->selectMaxCircuitLoad(ui->m_DL_MaxLoad_Combo->itemText(index));
    ui->m_DL_MaxLoad_Spin->setVisible(index >= 0 && index == ui->m_DL_MaxLoad_Combo->count() - 1);
    emitInputChanged();
}

void Runplan::on_m_DL_MaxLoad_Spin_valueChanged(int value)
{
    EditHistory::Step step(m_history, CommandText::change(tr("Max Circuit Load")),
                           CommandText::CustomMaxCircuitLoad);
    m_selectors->setCustomMaxCircuitLoad(value);
    emitInputChanged();
}

void Runplan::on_m_frequencyComboBox_currentIndexChanged(int index)
{
    EditHistory::Step step(m_history, CommandText::change(tr("Frequency")));
    m_selectors->selectFrequency(ui->m_frequencyComboBox->itemText(index));
    emitInputChanged();
}

void Runplan::on_m_DLController_Combo_currentIndexChanged(int index)
{
    EditHistory::Step step(m_history, CommandText::change(tr("Controller")));
    m_selectors->selectController(ui->m_DLController_Combo->itemText(index));
    emit paramChanged();
    DL_Update();
}

DLPowerSupply* Runplan::currentSupplyRecord() const
{
    return ui->m_DLSupply_Combo->currentData().value<DLPowerSupply*>();
}

DLFixture* Runplan::currentFixtureRecord() const
{
    return const_cast<DLFixture*>(m_selectors->fixtureRecordToAdd());
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
    return m_selectors->inputs();
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

void Runplan::mirrorInputs()
{
    selectLineVoltage(m_selectors->lineVoltage);
    setCustomLineVoltage(m_selectors->customVoltage);
    selectMaxCircuitLoad(m_selectors->maxCircuitLoad);
    setCustomMaxCircuitLoad(m_selectors->customLoad);
    selectFrequency(m_selectors->frequency);
}

void Runplan::chooseDefaultInputs()
{
    m_selectors->chooseDefaults();
    mirrorInputs();
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
        m_selectors->chooseEnabler(currentSupplyRecord());
        // The new fixture list announces its first entry: the fixture change follows from there.
        ui->m_DLFixture_Combo->clear();
        m_previousFixture = nullptr;
        m_previousFixtureIndex = -1;
        ui->m_DLFixture_Combo->addItems(m_selectors->fixtureNames());
        const QSignalBlocker block(ui->m_DLController_Combo);
        ui->m_DLController_Combo->clear();
        ui->m_DLController_Combo->addItems(m_selectors->controllerNames());
    }
    DL_Update();
}

void Runplan::on_m_DLFixture_Combo_currentIndexChanged(int index)
{
    QComboBox* combo = ui->m_DLFixture_Combo;
    if (combo->count() == 0)
        return;
    const DLFixture* fixture = chosenFixtureRecord();
    if (!fixture) {
        m_selectors->selectFixture(combo->itemText(index));
        Reporter::global()->warning(tr("Fixture combo mismatch (DL)!"));
        return;
    }

    EditHistory::Step step(m_history, CommandText::change(tr("Fixture")));
    {
        AnalysisHold hold(m_analysisSuspended);
        if (fixtureChangeClears(m_previousFixture, fixture, m_doc->count(ItemFixture), m_doc->count(ItemLeader))) {
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
        m_selectors->chooseFixture(fixture);
        mirrorVoltageList(fixture);
    }
    // The fixture and perhaps the voltage are inputs of the analysis.
    DL_Update();
}

void Runplan::mirrorVoltageList(const DLFixture* fixture)
{
    QComboBox* combo = ui->m_DL_LineVoltage_Combo;
    const QSignalBlocker block(combo);
    combo->clear();
    const QStringList entries = CircuitSelectors::voltageEntries(fixture);
    for (qsizetype i = 0; i < entries.size(); ++i)
        combo->addItem(entries.at(i), i < fixture->validVoltages.size() ? QVariant(fixture->validVoltages.at(i)) : QVariant());
    combo->setCurrentIndex(findExactText(combo, m_selectors->lineVoltage));
    ui->m_DL_LineVoltage_Spin->setVisible(m_selectors->lineVoltage == HeaderChoices::otherEntry());
}
