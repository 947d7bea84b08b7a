// The main window's selectors as the header choices of project files.
#include "app/Runplan.h"

#include "app/WindowScopes.h"
#include "ui_Runplan.h"

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
