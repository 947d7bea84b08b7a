// The main window's selectors as the header choices of project files: read from the selector
// state, chosen through the combo boxes (whose slots keep the state).
#include "app/Runplan.h"

#include "app/WindowScopes.h"
#include "calc/CircuitSelectors.h"
#include "ui_Runplan.h"

QString Runplan::supplyText() const
{
    return m_selectors->supply;
}

QString Runplan::fixtureText() const
{
    return m_selectors->fixture;
}

QString Runplan::lineVoltageText() const
{
    return m_selectors->lineVoltage;
}

int Runplan::customLineVoltage() const
{
    return m_selectors->customVoltage;
}

QString Runplan::maxCircuitLoadText() const
{
    return m_selectors->maxCircuitLoad;
}

int Runplan::customMaxCircuitLoad() const
{
    return m_selectors->customLoad;
}

QString Runplan::frequencyText() const
{
    return m_selectors->frequency;
}

QString Runplan::controllerText() const
{
    return m_selectors->controller;
}

void Runplan::selectSupply(const QString& text)
{
    ui->m_DLSupply_Combo->setCurrentIndex(findExactText(ui->m_DLSupply_Combo, text));
}

void Runplan::selectFixture(const QString& text)
{
    ui->m_DLFixture_Combo->setCurrentIndex(findExactText(ui->m_DLFixture_Combo, text));
}

void Runplan::selectLineVoltage(const QString& text)
{
    ui->m_DL_LineVoltage_Combo->setCurrentIndex(findExactText(ui->m_DL_LineVoltage_Combo, text));
}

void Runplan::setCustomLineVoltage(int volts)
{
    ui->m_DL_LineVoltage_Spin->setValue(volts);
}

void Runplan::selectMaxCircuitLoad(const QString& text)
{
    ui->m_DL_MaxLoad_Combo->setCurrentIndex(findExactText(ui->m_DL_MaxLoad_Combo, text));
}

void Runplan::setCustomMaxCircuitLoad(int amps)
{
    ui->m_DL_MaxLoad_Spin->setValue(amps);
}

void Runplan::selectFrequency(const QString& text)
{
    ui->m_frequencyComboBox->setCurrentIndex(findExactText(ui->m_frequencyComboBox, text));
}

void Runplan::selectController(const QString& text)
{
    ui->m_DLController_Combo->setCurrentIndex(findExactText(ui->m_DLController_Combo, text));
}
