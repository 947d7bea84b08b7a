#include "canvas/CFrame.h"

#include "calc/Analysis.h"
#include "calc/DesignReport.h"
#include "canvas/CFrameItemDelegate.h"
#include "model/CWidget.h"
#include "model/CWidgetModel.h"
#include "model/ConfigDocument.h"
#include "ui_lineKeyUI.h"

#include <QDebug>
#include <QHash>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QMenu>
#include <QMessageBox>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QPrinter>
#include <QScrollBar>
#include <QToolTip>
#include <QtMath>

namespace
{
// Placement: one column per leaf, cables beside the box they hang from.
constexpr int ColumnPitch = 410;
constexpr int CableIndent = 240;
constexpr int Margin = 10;
constexpr int RowGap = 8;
// The scroll extent uses a wider pitch so the labels of the last column stay reachable.
constexpr int ScrollPitch = 550;
constexpr int ScrollStep = 15;

const QColor FeedwiseConnector(255, 0, 0);
const QColor DynalineConnector(255, 128, 0);
const QColor LineVoltageConnector(140, 190, 232);
} // namespace

// Item rectangles of one walk over the tree, with the leaf figures the extents are made of.
struct CFrame::Layout {
    QHash<const CWidget*, QRect> rects;
    int leaves = 0;   // leaves up to and including the last one
    int maxLeafY = 0; // largest y of any leaf
};

CFrame::CFrame(QWidget* parent) : QAbstractItemView(parent), m_delegate(new CFrameItemDelegate(this))
{
    setItemDelegate(m_delegate);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    // The canvas moves only where it says so (insertion, deletion, zoom): a click that makes a
    // component current must not drag the view after it.
    setAutoScroll(false);

    m_lineKey = new QWidget(this);
    Ui::lineKeyUI keyForm;
    keyForm.setupUi(m_lineKey);
    placeLineKey();

    confirmDelete = [this]() {
        return QMessageBox::warning(this, tr("Delete multiple items"),
                                    tr("Do you want to delete this component and all the components "
                                       "attached to it?"),
                                    QMessageBox::Ok | QMessageBox::Cancel,
                                    QMessageBox::Cancel) == QMessageBox::Ok;
    };
}

CFrame::~CFrame() = default;

void CFrame::setDocument(ConfigDocument* doc)
{
    if (m_doc)
        disconnect(m_doc, nullptr, this, nullptr);
    m_doc = doc;
    if (!doc) {
        setModel(nullptr);
        viewport()->update();
        return;
    }
    setModel(doc->model());
    setSelectionModel(doc->selectionModel());

    connect(doc, &ConfigDocument::changed, this, [this]() {
        updateScrollRanges();
        scrollTo(m_doc->currentIndex());
        viewport()->update();
        emit frameChanged();
    });
    connect(doc, &ConfigDocument::componentChanged, this, &CFrame::updateFrame);
    connect(doc, &ConfigDocument::currentChanged, this, [this](const QModelIndex& index) {
        viewport()->update();
        emit selectionChanged(index);
    });
    connect(doc, &QObject::destroyed, this, [this]() { m_doc = nullptr; });

    updateScrollRanges();
    viewport()->update();
}

// ---------------------------------------------------------------------------------------------
// Layout

CFrame::Layout CFrame::computeLayout(bool scrolled) const
{
    Layout layout;
    const CWidget* top = m_doc ? m_doc->root() : nullptr;
    if (!top)
        return layout;
    const QPoint offset = scrolled ? QPoint(horizontalOffset(), verticalOffset()) : QPoint();

    // base: 10 plus the height and gap of every box above, the row a box would take.
    struct Walker {
        Layout& out;
        QPoint offset;
        void place(const CWidget* w, int base)
        {
            const QRect own = w->itemRect();
            int x = out.leaves * ColumnPitch + Margin - offset.x();
            int y = base - offset.y();
            if (w->isCable()) {
                x += CableIndent;
                y += -4 - own.height() / 2; // centred on the gap between its parent and its child
            }
            const CWidget* parent = w->parentWidget();
            if (w->itemType() == ItemFixture && parent && parent->itemType() == ItemReceiver)
                y -= RowGap; // mounted directly below the receiver
            out.rects.insert(w, QRect(x, y, own.width(), own.height()));

            if (w->childCount() == 0) {
                out.maxLeafY = qMax(out.maxLeafY, y);
                ++out.leaves;
                return;
            }
            const int childBase = w->isCable() ? base : base + own.height() + RowGap;
            for (const CWidget* c : w->children())
                place(c, childBase);
        }
    } walker{layout, offset};
    walker.place(top, Margin);
    return layout;
}

QRect CFrame::itemRectOf(const CWidget* w) const
{
    if (!w)
        return QRect();
    return computeLayout(true).rects.value(w);
}

int CFrame::numberOf(const CWidget* w, int kind) const
{
    const CWidget* top = m_doc ? m_doc->root() : nullptr;
    if (!w || !top)
        return -1;
    int counter = 0;
    int result = -1;
    QList<const CWidget*> pending{top};
    while (!pending.isEmpty() && result < 0) { // depth first, children in row order
        const CWidget* node = pending.takeLast();
        if (kind == ItemAny || node->itemType() == kind) {
            if (node == w)
                result = counter;
            ++counter;
        }
        for (auto it = node->children().crbegin(); it != node->children().crend(); ++it)
            pending.append(*it);
    }
    return result;
}

QSize CFrame::drawingExtent() const
{
    const Layout layout = computeLayout(false);
    return QSize((layout.leaves + 1) * ScrollPitch, layout.maxLeafY + 100);
}

void CFrame::updateScrollRanges()
{
    const Layout layout = computeLayout(false);
    const int width = qRound(layout.leaves * ScrollPitch * m_zoom);
    if (viewport()->width() < width) {
        horizontalScrollBar()->setRange(0, width);
        horizontalScrollBar()->setSingleStep(ScrollStep);
    } else {
        horizontalScrollBar()->setRange(0, 0);
    }
    const int height = layout.maxLeafY;
    if (viewport()->height() < height + 50) {
        verticalScrollBar()->setRange(0, height);
        verticalScrollBar()->setSingleStep(ScrollStep);
    } else {
        verticalScrollBar()->setRange(0, 0);
    }
    // A page is what the viewport shows, so PageUp/PageDown and the thumbs match the view.
    horizontalScrollBar()->setPageStep(qMax(1, viewport()->width()));
    verticalScrollBar()->setPageStep(qMax(1, viewport()->height()));
}

void CFrame::showTopLeft()
{
    horizontalScrollBar()->setValue(0);
    verticalScrollBar()->setValue(0);
    viewport()->update();
}

// ---------------------------------------------------------------------------------------------
// QAbstractItemView

QRect CFrame::visualRect(const QModelIndex& index) const
{
    if (!index.isValid() || !m_doc)
        return QRect();
    const QRect r = itemRectOf(m_doc->model()->widget(index));
    return QRect(qRound(r.x() * m_zoom), qRound(r.y() * m_zoom), qRound(r.width() * m_zoom),
                 qRound(r.height() * m_zoom));
}

QModelIndex CFrame::indexAt(const QPoint& point) const
{
    const CWidget* top = m_doc ? m_doc->root() : nullptr;
    if (!top || m_zoom <= 0.0)
        return QModelIndex();
    const QPointF canvasPoint = QPointF(point) / m_zoom;
    const Layout layout = computeLayout(true);
    QList<const CWidget*> pending{top};
    while (!pending.isEmpty()) {
        const CWidget* node = pending.takeLast();
        if (QRectF(layout.rects.value(node)).contains(canvasPoint))
            return m_doc->indexOf(node);
        for (auto it = node->children().crbegin(); it != node->children().crend(); ++it)
            pending.append(*it);
    }
    return QModelIndex();
}

void CFrame::scrollTo(const QModelIndex& index, ScrollHint hint)
{
    Q_UNUSED(hint)
    if (!index.isValid() || !m_doc)
        return;
    const QRect r = itemRectOf(m_doc->model()->widget(index));
    const int x = qRound(r.x() * m_zoom);
    const int y = qRound(r.y() * m_zoom);
    const int marginX = qRound(400 * m_zoom);
    const int marginY = qRound(100 * m_zoom);
    const int width = viewport()->width();
    const int height = viewport()->height();
    if (x + marginX > width || x < 0)
        horizontalScrollBar()->setValue(horizontalScrollBar()->value() + (x - width) + marginX);
    if (y + marginY > height || y < 0)
        verticalScrollBar()->setValue(verticalScrollBar()->value() + (y - height) + marginY);
}

QModelIndex CFrame::moveCursor(CursorAction cursorAction, Qt::KeyboardModifiers modifiers)
{
    // No keyboard navigation between components.
    Q_UNUSED(cursorAction)
    Q_UNUSED(modifiers)
    return QModelIndex();
}

int CFrame::horizontalOffset() const
{
    return m_printing ? 0 : horizontalScrollBar()->value();
}

int CFrame::verticalOffset() const
{
    return m_printing ? 0 : verticalScrollBar()->value();
}

bool CFrame::isIndexHidden(const QModelIndex& index) const
{
    Q_UNUSED(index)
    return false;
}

void CFrame::setSelection(const QRect& rect, QItemSelectionModel::SelectionFlags command)
{
    // Selection is by click only (the current component); rubber bands select nothing.
    Q_UNUSED(rect)
    Q_UNUSED(command)
    qDebug("setSelection");
}

QRegion CFrame::visualRegionForSelection(const QItemSelection& selection) const
{
    Q_UNUSED(selection)
    return QRegion();
}

void CFrame::scrollContentsBy(int dx, int dy)
{
    // Positions are recomputed from the scroll values on every paint, in unzoomed units, so the
    // viewport cannot simply be shifted by the pixel difference.
    Q_UNUSED(dx)
    Q_UNUSED(dy)
    viewport()->update();
}

// ---------------------------------------------------------------------------------------------
// Painting

void CFrame::paintEvent(QPaintEvent* event)
{
    QPainter painter(viewport());
    painter.fillRect(viewport()->rect(), QColor(240, 240, 240));
    painter.scale(m_zoom, m_zoom);
    painter.setRenderHint(QPainter::Antialiasing);
    // Only what lies in the exposed area is drawn: a large plan is mostly off screen.
    m_paintArea = QRectF(event->rect()).adjusted(-1, -1, 1, 1);
    m_paintArea = QRectF(m_paintArea.topLeft() / m_zoom, m_paintArea.bottomRight() / m_zoom);
    paintTree(painter);
    m_paintArea = QRectF();
}

void CFrame::paintTree(QPainter& painter)
{
    m_delegate->resetCounters();
    m_lineVoltageSeen = false;
    const CWidget* top = m_doc ? m_doc->root() : nullptr;
    if (!top)
        return;
    // A run fed from the line-voltage side draws its wiring in the line-voltage colour from the start.
    if (top->itemType() == ItemSupply && top->locationText() == Modes::lineVoltage())
        m_lineVoltageSeen = true;
    const Layout layout = computeLayout(true);
    paintComponent(painter, top, layout);
}

void CFrame::paintComponent(QPainter& painter, const CWidget* w, const Layout& layout)
{
    m_delegate->countComponent(w);
    const QRect r = layout.rects.value(w);
    const QModelIndex index = m_doc->indexOf(w);

    QStyleOptionViewItem option;
    initViewItemOption(&option);
    option.rect = QRect(QPoint(0, 0), r.size());
    option.state.setFlag(QStyle::State_Selected, w == m_doc->current());

    if (inPaintArea(r)) {
        painter.save();
        painter.translate(r.topLeft());
        m_delegate->paint(&painter, option, index);
        painter.restore();
    }
    // The voltage sits in the gap under the box.
    if (m_showVoltages && inPaintArea(QRectF(r.left(), r.bottom() + 1, r.width(), 8)))
        paintVoltage(painter, w, r);

    for (const CWidget* c : w->children())
        paintComponent(painter, c, layout);
    if (const CWidget* parent = w->parentWidget())
        paintConnector(painter, parent, w, layout);
}

bool CFrame::inPaintArea(const QRectF& r) const
{
    return m_paintArea.isNull() || m_paintArea.intersects(r);
}

void CFrame::paintConnector(QPainter& painter, const CWidget* parent, const CWidget* child,
                            const Layout& layout)
{
    const int kind = child->itemType();
    if (kind == ItemSupply && child->locationText() == Modes::lineVoltage())
        m_lineVoltageSeen = true;

    const bool feedwiseSide = kind == ItemReceiver ||
                              (kind == ItemBranchWire && child->locationText() == Modes::feedwise()) ||
                              (kind == ItemJunctionBox && parent->locationText() == Modes::feedwise());
    QColor colour;
    if (kind == ItemSupply || feedwiseSide)
        colour = FeedwiseConnector;
    else
        colour = m_lineVoltageSeen ? LineVoltageConnector : DynalineConnector;
    // Feedwise lines run just above the centre lines and the others just below, so parallel
    // lines of the two kinds stay apart.
    const qreal shift = feedwiseSide ? -1.0 : 1.0;

    const QRectF p(layout.rects.value(parent));
    const QRectF n(layout.rects.value(child));
    const qreal pCentre = p.center().y() + shift;
    const qreal nCentre = n.center().y() + shift;
    const qreal pRight = p.x() + p.width();
    const qreal nRight = n.x() + n.width();
    const bool parentIsBox = !parent->isCable();
    const bool childIsBox = !child->isCable();
    const bool firstChild = parent->indexOfChild(child) == 0;
    // A connector stays within its two boxes widened by its bends (at most twice the difference
    // of their right edges plus 80 to either side).
    const qreal reach = 2.0 * qAbs(pRight - nRight) + 80.0;
    if (!inPaintArea(p.united(n).adjusted(-reach, -2.0, reach, 2.0)))
        return;

    painter.save();
    painter.setPen(QPen(colour, 2.0, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(Qt::NoBrush);
    if (parentIsBox && childIsBox) {
        if (!(kind == ItemFixture && parent->itemType() == ItemReceiver)) {
            // Out of the parent's right edge, round a bend just right of the wider of the two boxes,
            // and back into the child's right edge: the arc at the wider box is 40 wide, the one at
            // the narrower box reaches the same bend.
            const qreal r = qAbs(pRight - nRight);
            const qreal height = nCentre - pCentre;
            const qreal topWidth = pRight >= nRight ? 40.0 : 2.0 * r + 40.0;
            const qreal bottomWidth = nRight > pRight ? 40.0 : 2.0 * r + 40.0;
            painter.drawArc(QRectF(pRight - topWidth / 2.0, pCentre, topWidth, height), 90 * 16, -90 * 16);
            painter.drawArc(QRectF(nRight - bottomWidth / 2.0, pCentre, bottomWidth, height), 270 * 16,
                            90 * 16);
        }
    } else if (parentIsBox && (kind == ItemLeader || kind == ItemBranchWire) && !firstChild) {
        // A later branch: along the parent's centre line, then down into the cable's left edge.
        const qreal bendX = n.x() - 40.0;
        painter.drawLine(QPointF(pRight, pCentre), QPointF(bendX, pCentre));
        painter.drawArc(QRectF(n.x() - 80.0, pCentre, 80.0, 2.0 * (nCentre - pCentre)), 90 * 16, -90 * 16);
    } else if (parentIsBox) {
        painter.drawLine(QPointF(pRight, pCentre), QPointF(n.x(), nCentre));
    } else {
        painter.drawLine(QPointF(p.x(), pCentre), QPointF(nRight, nCentre));
    }
    painter.restore();
}

// Small text in the gap under a box: green, amber within 10 % of the run's minimum voltage, red
// below it.
void CFrame::paintVoltage(QPainter& painter, const CWidget* w, const QRect& box)
{
    const ComponentFigures* f = m_analysis ? m_analysis->figuresAt(w) : nullptr;
    if (!f || w->isCable())
        return;
    QColor colour(0, 140, 0);
    switch (DesignReport::voltageMargin(*f)) {
    case DesignReport::Margin::Below:
        colour = QColor(210, 0, 0);
        break;
    case DesignReport::Margin::Near:
        colour = QColor(215, 130, 0);
        break;
    default:
        break;
    }
    painter.save();
    QFont font = painter.font();
    font.setPixelSize(7);
    painter.setFont(font);
    painter.setPen(colour);
    painter.drawText(QRect(box.left(), box.bottom() + 1, box.width(), 8), Qt::AlignRight | Qt::AlignVCenter,
                     tr("%1 V").arg(formatNumber(f->voltage)));
    painter.restore();
}

// The component's own tooltip, followed by the figures of the last analysis at it.
bool CFrame::showFiguresToolTip(QHelpEvent* event)
{
    const QModelIndex index = indexAt(event->pos());
    const CWidget* w = index.isValid() && m_doc ? m_doc->model()->widget(index) : nullptr;
    const ComponentFigures* f = w && m_analysis ? m_analysis->figuresAt(w) : nullptr;
    if (!f)
        return false;
    QString text = index.data(Qt::ToolTipRole).toString();
    if (!text.isEmpty())
        text += QStringLiteral("\n\n");
    text += DesignReport::figuresText(*f, m_doc->root());
    QToolTip::showText(event->globalPos(), text, viewport(), visualRect(index));
    return true;
}

void CFrame::setShowVoltages(bool on)
{
    m_showVoltages = on;
    viewport()->update();
}

// ---------------------------------------------------------------------------------------------
// Printing

void CFrame::print(QPrinter* printer)
{
    if (!printer)
        return;
    m_printing = true;
    m_delegate->resetCounters();

    const QRectF page = printer->pageRect(QPrinter::DevicePixel);
    const QSize extent = drawingExtent();
    m_lastPrintScale = qMin(page.width() / extent.width(), page.height() / extent.height());

    QPainter painter;
    if (painter.begin(printer)) {
        painter.fillRect(painter.viewport(), QColor(255, 255, 255));
        painter.scale(m_lastPrintScale, m_lastPrintScale);
        painter.setRenderHint(QPainter::Antialiasing);
        paintTree(painter);
        painter.end();
    }
    m_printing = false;
}

// ---------------------------------------------------------------------------------------------
// Input

void CFrame::mousePressEvent(QMouseEvent* event)
{
    const QModelIndex index = indexAt(event->position().toPoint());
    if (!index.isValid() || !m_doc)
        return;
    viewport()->update();
    emit clicked(index);
    emit activated(index);
    m_doc->setCurrentIndex(index);
    event->accept();

    if (event->button() == Qt::RightButton) {
        auto* menu = new QMenu(this);
        menu->setAttribute(Qt::WA_DeleteOnClose);
        QAction* remove = menu->addAction(tr("Delete"));
        connect(remove, &QAction::triggered, this, &CFrame::deleteCurrentCWidget);
        menu->popup(event->globalPosition().toPoint());
    }
}

void CFrame::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Delete) {
        emit deleteCurrentCWidget();
        event->accept();
        return;
    }
    QAbstractItemView::keyPressEvent(event);
}

void CFrame::deleteCurrent()
{
    if (!m_doc)
        return;
    const CWidget* current = m_doc->current();
    if (current && current->childCount() > 0) {
        if (!confirmDelete || !confirmDelete())
            return;
    }
    if (!m_doc->removeCurrent()) {
        // Nothing was selected: the canvas is still refreshed and the analysis runs again.
        viewport()->update();
        updateScrollRanges();
        emit frameChanged();
        m_doc->setModified(true);
    }
}

// ---------------------------------------------------------------------------------------------
// Geometry

void CFrame::resizeEvent(QResizeEvent* event)
{
    QAbstractItemView::resizeEvent(event);
    placeLineKey();
    updateScrollRanges();
}

bool CFrame::viewportEvent(QEvent* event)
{
    // The viewport shrinks when a scroll bar appears: keep the key clear of it.
    if (event->type() == QEvent::Resize)
        placeLineKey();
    if (event->type() == QEvent::ToolTip && showFiguresToolTip(static_cast<QHelpEvent*>(event)))
        return true;
    return QAbstractItemView::viewportEvent(event);
}

void CFrame::placeLineKey()
{
    if (!m_lineKey)
        return;
    // The canvas's corner, or the inner edge of a visible scroll bar (which sits inside the
    // frame's border, so its edge is more than just its width from the corner).
    int right = width();
    int bottom = height();
    if (verticalScrollBar()->isVisibleTo(this))
        right = verticalScrollBar()->mapTo(this, QPoint(0, 0)).x();
    if (horizontalScrollBar()->isVisibleTo(this))
        bottom = horizontalScrollBar()->mapTo(this, QPoint(0, 0)).y();
    m_lineKey->move(right - m_lineKey->width(), bottom - m_lineKey->height());
    m_lineKey->raise();
}

// ---------------------------------------------------------------------------------------------
// Slots

void CFrame::updateFrame()
{
    viewport()->update();
    updateScrollRanges();
}

void CFrame::resetFrame()
{
    if (m_doc)
        m_doc->reset();
}

void CFrame::handleParamChanged()
{
    if (m_doc)
        m_doc->setModified(true);
}

void CFrame::handleLastLocation(const QString& location)
{
    if (m_doc)
        m_doc->setLastLocation(location);
}

void CFrame::handleZoomChanged(double value)
{
    if (value <= 0.0)
        return;
    m_zoom = value;
    updateScrollRanges();
    if (m_doc)
        scrollTo(m_doc->currentIndex());
    viewport()->update();
}

void CFrame::handleLineKeyToggled(bool checked)
{
    m_lineKey->setVisible(checked);
}
