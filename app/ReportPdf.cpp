#include "app/ReportPdf.h"

#include "canvas/CFrame.h"
#include "model/CWidget.h"
#include "model/ConfigDocument.h"

#include <QBuffer>
#include <QCoreApplication>
#include <QFontMetricsF>
#include <QPainter>
#include <QPdfWriter>

#include <algorithm>
#include <cmath>

namespace ReportPdf
{
namespace
{

QString tr(const char* text)
{
    return QCoreApplication::translate("ReportPdf", text);
}

constexpr double Margin = 40.0;         // pt around the page
constexpr double BandHeight = 18.0;     // pt for the page header and the page number
constexpr double MinDiagramScale = 0.5; // below this the boxes' text is too small to read
const QColor FailColour(190, 0, 0);
const QColor RuleColour(170, 170, 170);

QFont font(double points, bool bold = false)
{
    QFont f(QStringLiteral("DejaVu Sans"));
    f.setPointSizeF(points);
    f.setBold(bold);
    return f;
}

// One pass over the report: measures only (no painter) to count the pages, or paints. Both passes
// take the same decisions, so the page count of the first is the one the second prints.
class Pages
{
public:
    Pages(QPdfWriter& writer, QPainter* painter, const DesignReport::Content& content, int totalPages)
        : m_writer(writer), m_painter(painter), m_content(content), m_total(totalPages)
    {
        // The writer's resolution is 72 dpi, so a unit is a point.
        const QSizeF size = writer.pageLayout().fullRectPoints().size();
        m_body = QRectF(Margin, Margin + BandHeight, size.width() - 2 * Margin,
                        size.height() - 2 * Margin - 2 * BandHeight);
        m_y = m_body.top();
        decorate();
    }

    int page() const { return m_page; }
    const QRectF& body() const { return m_body; }
    QPainter* painter() const { return m_painter; }
    double y() const { return m_y; }
    void advance(double h) { m_y += h; }

    void newPage()
    {
        if (m_painter)
            m_writer.newPage();
        ++m_page;
        m_y = m_body.top();
        decorate();
    }
    void ensure(double h)
    {
        if (m_y + h > m_body.bottom() && m_y > m_body.top())
            newPage();
    }

    double textHeight(const QString& text, const QFont& f, double width) const
    {
        const QFontMetricsF fm(f, &m_writer);
        return fm.boundingRect(QRectF(0, 0, width, 1e6), Qt::TextWordWrap, text).height();
    }
    double textWidth(const QString& text, const QFont& f) const
    {
        const QFontMetricsF fm(f, &m_writer);
        return fm.horizontalAdvance(text);
    }

    // A wrapped paragraph at the left edge plus indent.
    void paragraph(const QString& text, const QFont& f, const QColor& colour = Qt::black, double indent = 0.0,
                   double after = 2.0)
    {
        const double width = m_body.width() - indent;
        const double h = textHeight(text, f, width);
        ensure(h);
        if (m_painter) {
            m_painter->setFont(f);
            m_painter->setPen(colour);
            m_painter->drawText(QRectF(m_body.left() + indent, m_y, width, h), Qt::TextWordWrap, text);
        }
        m_y += h + after;
    }

    void heading(const QString& text)
    {
        ensure(40.0); // keep a heading with what follows it
        m_y += 6.0;
        paragraph(text, font(12, true), Qt::black, 0.0, 4.0);
    }

private:
    void decorate()
    {
        if (!m_painter)
            return;
        const QRectF top(m_body.left(), Margin, m_body.width(), BandHeight - 4);
        m_painter->setFont(font(7.5));
        m_painter->setPen(Qt::darkGray);
        m_painter->drawText(top, Qt::AlignLeft | Qt::AlignVCenter, m_content.title);
        m_painter->drawText(top, Qt::AlignRight | Qt::AlignVCenter, m_content.header.value(0).second);
        m_painter->setPen(QPen(RuleColour, 0.5));
        m_painter->drawLine(QPointF(top.left(), top.bottom() + 2), QPointF(top.right(), top.bottom() + 2));
        const QRectF bottom(m_body.left(), m_body.bottom() + 4, m_body.width(), BandHeight - 4);
        m_painter->setPen(Qt::darkGray);
        m_painter->drawText(
            bottom, Qt::AlignHCenter | Qt::AlignVCenter,
            QCoreApplication::translate("ReportPdf", "Page %1 of %2").arg(m_page).arg(m_total));
    }

    QPdfWriter& m_writer;
    QPainter* m_painter;
    const DesignReport::Content& m_content;
    int m_total;
    int m_page = 1;
    QRectF m_body;
    double m_y = 0.0;
};

// Label and value pairs in two columns.
void fields(Pages& p, const QList<QPair<QString, QString>>& pairs)
{
    const QFont label = font(9, true);
    const QFont value = font(9);
    double labelWidth = 0.0;
    for (const auto& pair : pairs)
        labelWidth = std::max(labelWidth, p.textWidth(pair.first, label));
    labelWidth += 12.0;
    for (const auto& pair : pairs) {
        const double width = p.body().width() - labelWidth;
        const double h =
            std::max(p.textHeight(pair.second, value, width), p.textHeight(pair.first, label, labelWidth));
        p.ensure(h);
        if (QPainter* painter = p.painter()) {
            painter->setPen(Qt::black);
            painter->setFont(label);
            painter->drawText(QRectF(p.body().left(), p.y(), labelWidth, h), Qt::AlignLeft, pair.first);
            painter->setFont(value);
            painter->drawText(QRectF(p.body().left() + labelWidth, p.y(), width, h), Qt::TextWordWrap,
                              pair.second);
        }
        p.advance(h + 2.0);
    }
}

// Column widths: the natural widths; when they do not fit, the widest are capped at one width
// so narrow (numeric) columns keep theirs and only long texts wrap.
QList<double> columnWidths(const Pages& p, const QStringList& columns, const QList<QStringList>& rows,
                           const QFont& head, const QFont& cell)
{
    QList<double> widths;
    for (qsizetype c = 0; c < columns.size(); ++c) {
        double w = 0.0;
        for (const QString& word : columns.at(c).split(QLatin1Char(' ')))
            w = std::max(w, p.textWidth(word, head)); // titles may wrap between words
        for (const QStringList& row : rows)
            w = std::max(w, p.textWidth(row.value(c), cell));
        widths.append(w + 8.0);
    }
    const double available = p.body().width();
    const auto total = [&](double cap) {
        double sum = 0.0;
        for (double w : widths)
            sum += std::min(w, cap);
        return sum;
    };
    if (total(1e9) <= available)
        return widths;
    double low = 0.0;
    double high = available;
    for (int i = 0; i < 50; ++i) {
        const double mid = (low + high) / 2.0;
        (total(mid) <= available ? low : high) = mid;
    }
    for (double& w : widths)
        w = std::min(w, low);
    return widths;
}

double rowHeight(const Pages& p, const QStringList& cells, const QList<double>& widths, const QFont& f)
{
    double h = 0.0;
    for (qsizetype c = 0; c < widths.size(); ++c)
        h = std::max(h, p.textHeight(cells.value(c), f, widths.at(c) - 4.0));
    return h + 4.0;
}

void tableRow(Pages& p, const QStringList& cells, const QList<double>& widths, const QFont& f, double h,
              const QColor& colour, bool rule)
{
    if (QPainter* painter = p.painter()) {
        painter->setFont(f);
        painter->setPen(colour);
        double x = p.body().left();
        for (qsizetype c = 0; c < widths.size(); ++c) {
            painter->drawText(QRectF(x + 2.0, p.y() + 2.0, widths.at(c) - 4.0, h - 4.0), Qt::TextWordWrap,
                              cells.value(c));
            x += widths.at(c);
        }
        if (rule) {
            painter->setPen(QPen(RuleColour, 0.5));
            painter->drawLine(QPointF(p.body().left(), p.y() + h), QPointF(p.body().right(), p.y() + h));
        }
    }
    p.advance(h);
}

// The column titles again at the top of every page the table runs onto.
void table(Pages& p, const QStringList& columns, const QList<QStringList>& rows,
           const QList<QStringList>& notes, const QList<bool>& failing)
{
    const QFont head = font(7.5, true);
    const QFont cell = font(7.5);
    const QFont note = font(7);
    const QList<double> widths = columnWidths(p, columns, rows, head, cell);
    const double headHeight = rowHeight(p, columns, widths, head);
    p.ensure(headHeight * 2);
    int headPage = p.page();
    tableRow(p, columns, widths, head, headHeight, Qt::black, true);
    for (qsizetype r = 0; r < rows.size(); ++r) {
        const double h = rowHeight(p, rows.at(r), widths, cell);
        double notesHeight = 0.0;
        const QStringList lines = notes.value(r);
        for (const QString& line : lines)
            notesHeight += p.textHeight(line, note, p.body().width() - 16.0) + 1.0;
        p.ensure(h + notesHeight);
        if (p.page() != headPage) {
            headPage = p.page();
            tableRow(p, columns, widths, head, headHeight, Qt::black, true);
        }
        const bool fail = failing.value(r, false);
        tableRow(p, rows.at(r), widths, cell, h, fail ? FailColour : Qt::black, lines.isEmpty());
        for (qsizetype i = 0; i < lines.size(); ++i)
            p.paragraph(lines.at(i), note, i == 0 ? Qt::darkGray : FailColour, 16.0, 1.0);
        if (!lines.isEmpty() && p.painter()) {
            p.painter()->setPen(QPen(RuleColour, 0.5));
            p.painter()->drawLine(QPointF(p.body().left(), p.y()), QPointF(p.body().right(), p.y()));
        }
    }
    p.advance(6.0);
}

// The run diagram at the page width, never above natural size nor below a readable scale; what
// does not fit is cut into page-sized tiles, left to right, then top to bottom.
// What the canvas painter draws: every box, with room right of it for the connectors' bends and
// below it for the voltage.
QRectF drawingBounds(const CFrame& canvas, const CWidget* root)
{
    QRectF bounds;
    QList<const CWidget*> pending;
    if (root)
        pending.append(root);
    while (!pending.isEmpty()) {
        const CWidget* w = pending.takeLast();
        bounds |= QRectF(canvas.itemRectOf(w)).adjusted(-4.0, -4.0, 44.0, 12.0);
        for (const CWidget* c : w->children())
            pending.append(c);
    }
    return bounds;
}

void diagram(Pages& p, CFrame& canvas)
{
    const QRectF bounds = drawingBounds(canvas, canvas.document() ? canvas.document()->root() : nullptr);
    if (bounds.isEmpty())
        return;
    const QSizeF extent(bounds.right(), bounds.bottom()); // from the canvas origin
    const double captionHeight = 16.0;
    const QRectF area(p.body().left(), p.body().top() + captionHeight, p.body().width(),
                      p.body().height() - captionHeight);
    const double scale = std::clamp(area.width() / extent.width(), MinDiagramScale, 1.0);
    const int across = std::max(1, static_cast<int>(std::ceil(extent.width() * scale / area.width() - 1e-9)));
    const int down = std::max(1, static_cast<int>(std::ceil(extent.height() * scale / area.height() - 1e-9)));
    const int tiles = across * down;
    for (int t = 0; t < tiles; ++t) {
        p.newPage();
        const QString caption =
            tiles == 1 ? tr("Run diagram") : tr("Run diagram, part %1 of %2").arg(t + 1).arg(tiles);
        p.paragraph(caption, font(12, true));
        if (QPainter* painter = p.painter()) {
            const int column = t % across;
            const int row = t / across;
            painter->save();
            painter->setClipRect(area);
            painter->translate(area.left() - column * area.width(), area.top() - row * area.height());
            painter->scale(scale, scale);
            painter->setRenderHint(QPainter::Antialiasing);
            canvas.paintTree(*painter);
            painter->restore();
        }
    }
}

void layout(Pages& p, const DesignReport::Content& c, CFrame& canvas)
{
    p.paragraph(c.title, font(16, true), Qt::black, 0.0, 8.0);
    fields(p, c.header);
    p.advance(6.0);
    p.paragraph(tr("Result: %1").arg(c.verdict), font(12, true), c.pass ? QColor(0, 120, 0) : FailColour);

    p.heading(tr("Circuit totals"));
    fields(p, c.totals);
    for (const QString& message : c.circuitMessages)
        p.paragraph(message, font(9), FailColour);

    diagram(p, canvas);

    p.newPage();
    p.paragraph(tr("Runs"), font(12, true), Qt::black, 0.0, 4.0);
    QList<QStringList> rows;
    QList<QStringList> notes;
    QList<bool> failing;
    for (const DesignReport::RunRow& run : c.runs) {
        rows.append(run.cells);
        notes.append(QStringList{run.limits} + run.messages);
        failing.append(!run.pass);
    }
    table(p, c.runColumns, rows, notes, failing);

    p.heading(tr("Bill of materials"));
    table(p, c.bom.columns, c.bom.rows, {}, {});
}

} // namespace

QPageSize pageSizeFor(const QLocale& locale)
{
    switch (locale.territory()) {
    case QLocale::UnitedStates:
    case QLocale::Canada:
    case QLocale::Mexico:
    case QLocale::Chile:
    case QLocale::Colombia:
    case QLocale::CostaRica:
    case QLocale::Guatemala:
    case QLocale::Philippines:
    case QLocale::PuertoRico:
    case QLocale::Venezuela:
        return QPageSize(QPageSize::Letter);
    default:
        return QPageSize(QPageSize::A4);
    }
}

QByteArray render(const DesignReport::Content& content, ConfigDocument* doc, const AnalysisResult* result,
                  const QPageSize& pageSize, int* pageCount)
{
    // A canvas of its own: unscrolled, showing the voltages, whatever the window's canvas shows.
    CFrame canvas;
    canvas.setDocument(doc);
    canvas.setAnalysis(result);
    canvas.setShowVoltages(true);

    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    QPdfWriter writer(&buffer);
    writer.setResolution(72);
    writer.setPageSize(pageSize);
    writer.setPageMargins(QMarginsF(0, 0, 0, 0));
    writer.setTitle(content.title);
    writer.setCreator(QStringLiteral("Runplan"));

    Pages measure(writer, nullptr, content, 0);
    layout(measure, content, canvas);
    const int pages = measure.page();

    QPainter painter(&writer);
    Pages paint(writer, &painter, content, pages);
    layout(paint, content, canvas);
    painter.end();
    canvas.setDocument(nullptr);
    if (pageCount)
        *pageCount = paint.page();
    return bytes;
}

} // namespace ReportPdf
