#include "calc/Session.h"

#include "calc/Maximize.h"
#include "catalog/Database.h"
#include "catalog/Reporter.h"
#include "model/CWidget.h"
#include "model/CWidgetModel.h"

Session::Session(const Database& db, Reporter* reporter) : m_db(db), m_reporter(reporter), m_doc(&db)
{
    // Start as the main window does: the first enabler, its first fixture, 120 V where offered.
    if (!db.supplies().isEmpty()) {
        chooseEnabler(db.supplies().first());
        chooseLineVoltage(120);
    }
}

CircuitInputs Session::inputs() const
{
    return inputsFromHeader(m_header, m_db);
}

bool Session::analyze()
{
    m_result = ::analyze(m_doc.root(), inputs(), m_db);
    applyResult(m_doc, m_result);
    if (m_reporter)
        for (const auto& line : m_result.logLines())
            m_reporter->log(line.first, line.second);
    return m_result.pass;
}

void Session::reset()
{
    const int topLevel = m_doc.model()->rowCount();
    m_doc.reset();
    if (DLPowerSupply* enabler = m_db.supplyNamed(m_header.supply))
        m_doc.addSupply(enabler);
    // Resetting a single run is not a change worth saving.
    if (topLevel == 1)
        m_doc.setModified(false);
    analyze();
}

DLFixture* Session::selectedFixture() const
{
    return const_cast<DLFixture*>(inputs().selectedFixture);
}

void Session::selectEnabler(const DLPowerSupply* enabler)
{
    chooseEnabler(enabler);
}

void Session::selectFixture(const VxFixture* fixture)
{
    chooseFixture(fixture);
}

void Session::selectLineVoltage(int volts)
{
    chooseLineVoltage(volts);
}

void Session::chooseEnabler(const DLPowerSupply* enabler)
{
    if (!enabler)
        return;
    m_header.supply = enabler->name;
    // Only an enabler that can feed receivers offers the controllers; the list shows the first.
    m_header.controller = enabler->hasOutputMode(Modes::feedwise()) && !m_db.controllers().isEmpty()
                              ? m_db.controllers().firstKey()
                              : QString();
    if (!enabler->fixtures.isEmpty())
        chooseFixture(enabler->fixtures.first());
    else
        m_header.fixture.clear();
    reset();
}

void Session::chooseFixture(const VxFixture* fixture)
{
    if (!fixture)
        return;
    m_header.fixture = fixture->name;

    // The voltage list becomes the fixture's voltages and the custom entry, as in the window.
    const QList<int>& volts = fixture->validVoltages;
    const auto* dl = qobject_cast<const DLFixture*>(fixture);
    const QString custom = QStringLiteral("Other");
    const int entry = voltageEntryAfterFixtureChange(volts, dl ? dl->startingVoltage : 0,
                                                     m_header.lineVoltage, custom);
    if (entry < 0)
        m_header.lineVoltage.clear();
    else
        m_header.lineVoltage = entry < volts.size() ? QString::number(volts.at(entry)) : custom;
}

void Session::chooseLineVoltage(int volts)
{
    const DLFixture* fixture = selectedFixture();
    if (!fixture || !fixture->validVoltages.contains(volts))
        return;
    const QString text = QString::number(volts);
    if (text == m_header.lineVoltage)
        return;
    m_header.lineVoltage = text;
    if (m_doc.root())
        analyze();
}

void Session::resetWithFixture()
{
    reset();
    if (DLFixture* fixture = selectedFixture())
        m_doc.addFixture(fixture);
    analyze();
}

void Session::maximize()
{
    analyze(); // Maximize starts from the pass flag of an up-to-date analysis
    ::maximize(
        m_doc, selectedFixture(), [this]() { return analyze(); }, m_reporter);
}

int Session::fixtureCount() const
{
    return m_doc.count(ItemFixture);
}

const VxFixture* Session::currentFixture() const
{
    return selectedFixture();
}

bool Session::progress(int percent)
{
    Q_UNUSED(percent)
    return true;
}
