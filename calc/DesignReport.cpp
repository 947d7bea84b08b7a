#include "calc/DesignReport.h"

#include "calc/CsvExport.h"
#include "catalog/Database.h"
#include "catalog/Version.h"
#include "model/CWidget.h"
#include "model/SafeFile.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QSaveFile>

#include <utility>
#include <vector>

namespace DesignReport
{
namespace
{

QString tr(const char* text)
{
    return QCoreApplication::translate("DesignReport", text);
}

QString kindName(int kind, bool root)
{
    switch (kind) {
    case ItemSupply:
        return root ? tr("Enabler") : tr("Supply");
    case ItemLeader:
        return tr("Leader");
    case ItemFixture:
        return tr("Fixture");
    case ItemJumper:
        return tr("Jumper");
    case ItemReceiver:
        return tr("Receiver");
    case ItemBranchWire:
        return tr("Branch Wire");
    case ItemJunctionBox:
        return tr("Junction Box");
    default:
        return tr("Component");
    }
}

// The order of the kinds in the bill of materials.
int kindRank(int kind)
{
    static const int order[] = {ItemSupply,   ItemFixture,    ItemLeader,     ItemJumper,
                                ItemReceiver, ItemBranchWire, ItemJunctionBox};
    for (int i = 0; i < 7; ++i)
        if (order[i] == kind)
            return i;
    return 7;
}

// Depth first, without recursion: a run nests one level per fixture.
template <typename Visit> void depthFirst(const CWidget* root, Visit visit)
{
    std::vector<const CWidget*> pending;
    if (root)
        pending.push_back(root);
    while (!pending.empty()) {
        const CWidget* w = pending.back();
        pending.pop_back();
        visit(w);
        const QList<CWidget*>& children = w->children();
        for (auto it = children.crbegin(); it != children.crend(); ++it)
            pending.push_back(*it);
    }
}

// The name of the component's catalog record, else what the canvas shows for it.
QString catalogName(const CWidget* w)
{
    const VxItem* item = w->catalogItem();
    return item && !item->name.isEmpty() ? item->name : w->displayName();
}

} // namespace

QList<BomRow> billOfMaterials(const CWidget* root)
{
    struct Entry {
        int rank;
        BomRow row;
    };
    QList<Entry> entries;
    depthFirst(root, [&](const CWidget* w) {
        const int kind = w->itemType();
        BomRow row;
        row.kind = kindName(kind, w == root);
        row.name = catalogName(w);
        double length = 0.0;
        if (kind == ItemLeader || kind == ItemJumper) {
            const auto* c = static_cast<const CableWidget*>(w);
            row.name = c->fixtureName();
            row.type = c->type();
            if (c->isCustom())
                row.gauge = c->gauge();
            row.hasLength = true;
            length = c->length();
        } else if (kind == ItemBranchWire) {
            const auto* b = static_cast<const BranchWireWidget*>(w);
            row.gauge = b->gauge();
            row.location = b->location();
            row.hasLength = true;
            length = b->length();
        }
        for (Entry& e : entries) {
            const BomRow& r = e.row;
            if (r.kind == row.kind && r.name == row.name && r.type == row.type && r.gauge == row.gauge &&
                r.location == row.location) {
                ++e.row.quantity;
                e.row.length += length;
                return;
            }
        }
        row.quantity = 1;
        row.length = length;
        entries.append({kindRank(kind), row});
    });
    std::stable_sort(entries.begin(), entries.end(),
                     [](const Entry& a, const Entry& b) { return a.rank < b.rank; });
    QList<BomRow> rows;
    rows.reserve(entries.size());
    for (const Entry& e : entries)
        rows.append(e.row);
    return rows;
}

QStringList bomColumns()
{
    return {tr("Kind"),     tr("Catalog Name"),     tr("Type"), tr("Gauge"), tr("Location"),
            tr("Quantity"), tr("Total Length (ft)")};
}

QStringList bomCells(const BomRow& row)
{
    return {row.kind,
            row.name,
            row.type,
            row.gauge,
            row.location,
            QString::number(row.quantity),
            row.hasLength ? CsvExport::formatLength(row.length) : QString()};
}

QString csvField(const QString& text)
{
    if (!text.contains(QLatin1Char(',')) && !text.contains(QLatin1Char('"')) &&
        !text.contains(QLatin1Char('\n')) && !text.contains(QLatin1Char('\r')))
        return text;
    QString quoted = text;
    quoted.replace(QLatin1String("\""), QLatin1String("\"\""));
    return QLatin1Char('"') + quoted + QLatin1Char('"');
}

QByteArray bomCsv(const QList<BomRow>& rows)
{
    const auto line = [](const QStringList& cells) {
        QStringList fields;
        fields.reserve(cells.size());
        for (const QString& c : cells)
            fields.append(csvField(c));
        return fields.join(QLatin1Char(',')) + QLatin1String("\r\n");
    };
    QString text = line(bomColumns());
    for (const BomRow& row : rows)
        text += line(bomCells(row));
    return text.toUtf8();
}

QString componentLabel(const CWidget* w, const CWidget* root)
{
    if (!w)
        return QString();
    int number = 0;
    bool found = false;
    depthFirst(root, [&](const CWidget* c) {
        if (found || c->itemType() != w->itemType())
            return;
        ++number;
        found = c == w;
    });
    const QString name = catalogName(w);
    QString label = tr("%1 #%2").arg(kindName(w->itemType(), w == root)).arg(number);
    if (!name.isEmpty() && name != kindName(w->itemType(), false))
        label += QStringLiteral(" (%1)").arg(name);
    return label;
}

QString figuresText(const ComponentFigures& f, const CWidget* root)
{
    QStringList lines;
    QString voltage = tr("Voltage: %1 V").arg(formatNumber(f.voltage));
    if (f.minVoltage > 0.0)
        voltage += tr(" (minimum %1 V)").arg(formatNumber(f.minVoltage));
    lines.append(voltage);
    lines.append(tr("Drop from the enabler: %1 V (%2 % of the line voltage)")
                     .arg(formatNumber(f.drop), formatNumber(f.dropPercent)));
    lines.append(tr("Current: %1 A").arg(formatNumber(f.current)));
    lines.append(tr("Power at and below: %1 W").arg(formatNumber(f.power)));
    QStringList nearest;
    for (int i = 0; i < f.nearestCount; ++i) {
        const LimitUse& use = f.nearest[i];
        if (use.kind == LimitMinimumVoltage)
            nearest.append(
                tr("%1 %2 V (%3 % of the margin above it used)")
                    .arg(runLimitName(use.kind), formatNumber(use.limit), formatNumber(use.use * 100.0)));
        else
            nearest.append(tr("%1 %2 of %3 (%4 % used)")
                               .arg(runLimitName(use.kind), formatNumber(use.figure), formatNumber(use.limit),
                                    formatNumber(use.use * 100.0)));
    }
    if (!nearest.isEmpty())
        lines.append(tr("Nearest limits: %1").arg(nearest.join(QStringLiteral(", "))));
    if (f.runCount > 1)
        lines.append(tr("Worst of the %1 runs through it: the run ending at %2")
                         .arg(f.runCount)
                         .arg(componentLabel(f.runEnd, root)));
    else
        lines.append(tr("Run ending at %1").arg(componentLabel(f.runEnd, root)));
    return lines.join(QLatin1Char('\n'));
}

Margin voltageMargin(const ComponentFigures& f)
{
    if (f.minVoltage <= 0.0)
        return Margin::Good;
    if (f.voltage < f.minVoltage)
        return Margin::Below;
    return f.voltage < f.minVoltage * 1.1 ? Margin::Near : Margin::Good;
}

Content build(const Source& source, const CircuitInputs& inputs, const AnalysisResult& result,
              const CWidget* root, const Database& db)
{
    Content c;
    c.title = tr("Runplan Design Report");
    const QString project =
        source.projectFile.isEmpty() ? tr("(not saved)") : QFileInfo(source.projectFile).fileName();
    c.header = {
        {tr("Project"), project},
        {tr("Date"), source.date.toString(Qt::ISODate)},
        {tr("Enabler"), inputs.enabler ? inputs.enabler->name : QString()},
        {tr("Fixture"), inputs.selectedFixture ? inputs.selectedFixture->name : QString()},
        {tr("Line voltage"), tr("%1 V").arg(formatNumber(inputs.lineVoltage))},
        {tr("Frequency"), tr("%1 Hz").arg(inputs.frequency)},
        {tr("Circuit load"),
         tr("%1 A (derated to %2 A)")
             .arg(formatNumber(inputs.maxCircuitLoad), formatNumber(inputs.deratedLoad()))},
        {tr("Controller"), inputs.controller},
        {tr("Catalog version"), db.version()},
        {tr("Program version"), QStringLiteral("%1 %2 (%3-%4)")
                                    .arg(RunplanVersion::applicationName(), RunplanVersion::number())
                                    .arg(RunplanVersion::BuildDate)
                                    .arg(RunplanVersion::buildTag())},
    };
    c.pass = result.pass;
    c.verdict = result.pass ? tr("PASS") : tr("FAIL");

    c.runColumns = {tr("Run"),         tr("End"),      tr("Fixtures"), tr("Length (ft)"), tr("Power (W)"),
                    tr("Current (A)"), tr("Drop (V)"), tr("Drop (%)"), tr("At end (V)"),  tr("Result")};
    const double line = inputs.lineVoltage;
    for (qsizetype i = 0; i < result.runs.size(); ++i) {
        const RunFigures& run = result.runs.at(i);
        RunRow row;
        row.pass = !run.faulty && !run.tooLong;
        row.cells = {QString::number(i + 1),
                     componentLabel(run.end, root),
                     QString::number(run.fixtures),
                     formatNumber(run.length),
                     formatNumber(run.power),
                     formatNumber(run.current),
                     formatNumber(run.voltageDrop),
                     formatNumber(line != 0.0 ? run.voltageDrop / line * 100.0 : 0.0),
                     formatNumber(line - run.voltageDrop),
                     row.pass ? tr("PASS") : tr("FAIL")};
        QStringList limits;
        for (int k = 0; k < RunLimitKinds; ++k) {
            const auto kind = static_cast<RunLimitKind>(k);
            if (run.limits.applies(kind))
                limits.append(runLimitName(kind) + QLatin1Char(' ') + runLimitText(kind, run.limits));
        }
        row.limits =
            limits.isEmpty() ? tr("Limits: none") : tr("Limits: %1").arg(limits.join(QStringLiteral("; ")));
        row.messages = run.messages.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
        if (run.tooLong)
            row.messages.append(
                tr("Longer than its run length limit of %1 ft.").arg(formatNumber(run.limits.runLength)));
        c.runs.append(row);
    }

    c.totals = {
        {tr("Total length"), tr("%1 ft").arg(formatNumber(result.totalLength))},
        {tr("Total power"), tr("%1 W").arg(formatNumber(result.totalPower))},
        {tr("Total current"), tr("%1 A of %2 A derated load")
                                  .arg(formatNumber(result.totalCurrent), formatNumber(result.deratedLoad))},
        {tr("Largest voltage drop"), tr("%1 V").arg(formatNumber(result.totalVoltageDrop))},
        {tr("Largest run resistance"), tr("%1 ohm").arg(formatNumber(result.totalResistance))},
        {tr("Fixtures"), QString::number(result.fixtureCount)},
        {tr("Receivers"), QString::number(result.receiverCount)},
        {tr("Inrush current"),
         result.hasInrush ? tr("%1 A").arg(formatNumber(result.totalInrush)) : tr("not given")},
        {tr("Leakage current"),
         result.hasLeakage ? tr("%1 A").arg(formatNumber(result.totalLeakage)) : tr("not given")},
    };
    if (result.feedwiseEnabled)
        c.totals.append({tr("Feedwise length"), tr("%1 ft").arg(result.feedwiseText)});
    c.circuitMessages = result.circuitMessages.split(QLatin1Char('\n'), Qt::SkipEmptyParts);

    c.bom.columns = bomColumns();
    for (const BomRow& row : billOfMaterials(root))
        c.bom.rows.append(bomCells(row));
    return c;
}

bool writeFile(const QString& path, const QByteArray& bytes, QString* error)
{
    // Opened as binary: PDF bytes and CSV line ends must reach the file as they are.
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly)) {
        if (error)
            *error = file.errorString();
        return false;
    }
    if (file.write(bytes) != bytes.size() || !SafeFile::commit(file)) {
        if (error)
            *error = file.errorString();
        file.cancelWriting();
        return false;
    }
    return true;
}

} // namespace DesignReport
