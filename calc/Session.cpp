#include "calc/Session.h"

#include "calc/Maximize.h"
#include "catalog/Database.h"
#include "catalog/Reporter.h"
#include "model/CWidget.h"
#include "model/CWidgetModel.h"

Session::Session(const Database& db, Reporter* reporter)
    : m_db(db), m_reporter(reporter), m_doc(&db), m_header(db)
{
    // Start as the main window does: the first enabler, its first fixture, 120 V where offered.
    if (!db.supplies().isEmpty()) {
        Session::selectEnabler(db.supplies().first());
        Session::selectLineVoltage(CircuitSelectors::DefaultLineVoltage);
    }
}

CircuitInputs Session::inputs() const
{
    return m_header.inputs();
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
    return const_cast<DLFixture*>(m_header.fixtureRecord());
}

void Session::selectEnabler(const DLPowerSupply* enabler)
{
    if (!enabler)
        return;
    m_header.chooseEnabler(enabler);
    reset();
}

void Session::selectFixture(const VxFixture* fixture)
{
    m_header.chooseFixture(fixture);
}

void Session::selectLineVoltage(int volts)
{
    if (m_header.chooseLineVoltage(volts) && m_doc.root())
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
