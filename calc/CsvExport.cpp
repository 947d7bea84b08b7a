#include "calc/CsvExport.h"

#include "catalog/Database.h"

#include <QIODevice>
#include <QTextStream>

#include <algorithm>
#include <cmath>

namespace
{

QList<int> sortedUnique(QList<int> volts)
{
    std::sort(volts.begin(), volts.end());
    volts.erase(std::unique(volts.begin(), volts.end()), volts.end());
    return volts;
}

QList<VxFixture*> fixturesOf(const Database& db, const QString& enablerName)
{
    const DLPowerSupply* enabler = db.supplyNamed(enablerName);
    return enabler ? enabler->fixtures : QList<VxFixture*>();
}

// Writes one table through a text stream, row by row, reporting progress after each row.
class TableWriter
{
public:
    TableWriter(QIODevice& out, ExportHost& host, QList<int> columns, int totalRows)
        : m_stream(&out), m_host(host), m_columns(std::move(columns)), m_totalRows(totalRows)
    {
    }

    void header()
    {
        m_stream << "Fixtures";
        for (int volts : std::as_const(m_columns))
            m_stream << ", " << volts << "v";
        m_stream << "\n";
        m_stream.flush();
    }

    // The row of one fixture; false when the user cancelled after it.
    bool row(const VxFixture* fixture)
    {
        QString name = fixture->name;
        m_stream << name.remove(QLatin1Char(','));
        m_host.selectFixture(fixture);
        bool first = true;
        for (int volts : std::as_const(m_columns)) {
            if (!fixture->validVoltages.contains(volts)) {
                m_stream << ", N/A";
                continue;
            }
            m_host.selectLineVoltage(volts);
            // Each fixture starts afresh; its further voltages go on from the tree the last one left.
            if (first)
                m_host.resetWithFixture();
            first = false;
            m_host.maximize();
            m_stream << ", " << m_host.fixtureCount() << " (" << CsvExport::formatLength(m_host.totalLength())
                     << "ft)";
        }
        m_stream << "\n";
        m_stream.flush();
        ++m_rowsDone;
        // Whole percent, truncated; worked in integers so that 29 of 100 rows reads 29.
        const int percent = m_totalRows > 0 ? static_cast<int>(qint64(m_rowsDone) * 100 / m_totalRows) : 100;
        return m_host.progress(percent);
    }

    // The line between the two enablers' rows.
    void sectionLine()
    {
        m_stream << "Line Voltage,";
        for (qsizetype i = 0; i < m_columns.size(); ++i)
            m_stream << ",";
        m_stream << "\n";
    }

    void finish()
    {
        m_stream << "\n";
        m_stream.flush();
    }

private:
    QTextStream m_stream;
    ExportHost& m_host;
    QList<int> m_columns;
    int m_totalRows;
    int m_rowsDone = 0;
};

int totalRows(const Database& db)
{
    return static_cast<int>(fixturesOf(db, CsvExport::firstEnablerName()).size() +
                            fixturesOf(db, CsvExport::secondEnablerName()).size());
}

} // namespace

namespace CsvExport
{

QString firstEnablerName()
{
    return QStringLiteral("Signal Feeder Pro");
}

QString secondEnablerName()
{
    return QStringLiteral("Line Voltage");
}

QList<int> allFixturesColumns(const Database& db)
{
    QList<int> volts;
    for (const QString& enabler : {firstEnablerName(), secondEnablerName()})
        for (const VxFixture* f : fixturesOf(db, enabler))
            volts.append(f->validVoltages);
    return sortedUnique(volts);
}

QList<int> fixtureColumns(const VxFixture& fixture)
{
    QList<int> volts = fixture.validVoltages;
    std::sort(volts.begin(), volts.end());
    return volts;
}

QString formatLength(double feet)
{
    const double rounded = std::round(feet * 10.0) / 10.0; // halves away from zero
    QString text;
    QTextStream(&text) << rounded;
    return text;
}

bool exportAllFixtures(QIODevice& out, ExportHost& host)
{
    const Database& db = host.database();
    TableWriter writer(out, host, allFixturesColumns(db), totalRows(db));
    writer.header();
    const QString enablers[] = {firstEnablerName(), secondEnablerName()};
    for (int e = 0; e < 2; ++e) {
        if (e == 1)
            writer.sectionLine();
        const DLPowerSupply* enabler = db.supplyNamed(enablers[e]);
        if (!enabler)
            continue;
        host.selectEnabler(enabler);
        for (const VxFixture* fixture : enabler->fixtures)
            if (!writer.row(fixture))
                return false;
    }
    writer.finish();
    return true;
}

bool exportCurrentFixture(QIODevice& out, ExportHost& host)
{
    const VxFixture* fixture = host.currentFixture();
    if (!fixture)
        return false;
    TableWriter writer(out, host, fixtureColumns(*fixture), totalRows(host.database()));
    writer.header();
    if (!writer.row(fixture))
        return false;
    writer.finish();
    return true;
}

} // namespace CsvExport
