#include "canvas/CFrameItemDelegate.h"

#include "canvas/CFrame.h"
#include "catalog/Records.h"
#include "model/CWidget.h"
#include "model/ConfigDocument.h"

#include <QFontMetricsF>
#include <QLinearGradient>
#include <QPainter>

namespace
{

// Selected fill, selected border and unselected border of the boxes coloured by their location.
struct LocationColours {
    QColor fill;
    QColor border;
    QColor idleBorder;
};

bool locationColours(const QString& location, LocationColours* out)
{
    if (location == Modes::feedwise())
        *out = {QColor(255, 197, 197), QColor(255, 0, 0), QColor(166, 0, 0)};
    else if (location == Modes::dynaline())
        *out = {QColor(255, 242, 230), QColor(238, 115, 0), QColor(143, 69, 0)};
    else if (location == Modes::lineVoltage())
        *out = {QColor(238, 247, 255), QColor(136, 186, 227), QColor(98, 134, 163)};
    else
        return false;
    return true;
}

QString lengthText(double length)
{
    return QString::number(length, 'g');
}

} // namespace

CFrameItemDelegate::CFrameItemDelegate(CFrame* frame) : QItemDelegate(frame), m_frame(frame) {}

void CFrameItemDelegate::resetCounters()
{
    m_supplies = 0;
    m_receivers = 0;
}

void CFrameItemDelegate::countComponent(const CWidget* w)
{
    if (!w)
        return;
    if (w->itemType() == ItemSupply)
        ++m_supplies;
    else if (w->itemType() == ItemReceiver)
        ++m_receivers;
}

CFrameItemDelegate::BoxStyle CFrameItemDelegate::styleFor(const CWidget* w, bool selected) const
{
    BoxStyle style;
    if (!w)
        return style;
    const VxItem* record = w->catalogItem();
    const ConfigDocument* doc = m_frame ? m_frame->document() : nullptr;
    const bool marked = doc && doc->errorMarks().contains(w);

    auto setColours = [&](const QColor& fill, const QColor& border, const QColor& idleBorder) {
        if (selected) {
            style.fill = fill;
            style.border = border;
        } else {
            style.border = idleBorder;
        }
    };
    // Cables and junction boxes take the colours of the side of the run they are on.
    auto byLocation = [&](bool withFeedwise, const QColor& feedwiseFill) {
        const QString location = w->locationText();
        LocationColours c;
        if (!locationColours(location, &c))
            return;
        if (location == Modes::feedwise()) {
            if (!withFeedwise)
                return;
            c.fill = feedwiseFill;
        }
        setColours(c.fill, c.border, c.idleBorder);
    };

    switch (w->itemType()) {
    case ItemFixture:
        if (record) {
            const int number = m_frame ? m_frame->numberOf(w, ItemFixture) : 0;
            style.label = tr("%1: %2").arg(QString::number(number + 1), record->name);
            setColours(QColor(220, 220, 255), QColor(0, 0, 255), QColor(0, 0, 128));
        }
        break;
    case ItemSupply:
        if (record) {
            style.label = tr("%1: %2").arg(QString::number(m_supplies), record->name);
            setColours(QColor(220, 220, 220), QColor(64, 64, 64), QColor(128, 128, 128));
            style.errorMark = marked;
        }
        break;
    case ItemReceiver:
        if (record) {
            style.label = tr("%1: %2 + Junction Box").arg(QString::number(m_receivers), record->name);
            setColours(QColor(220, 255, 220), QColor(0, 128, 0), QColor(0, 64, 0));
            style.errorMark = marked;
        }
        break;
    case ItemJunctionBox:
        if (record) {
            style.label = w->displayName();
            byLocation(true, QColor(255, 197, 197));
        }
        break;
    case ItemLeader:
    case ItemJumper: {
        const auto* cable = static_cast<const CableWidget*>(w);
        const QString name = cable->isCustom() ? QStringLiteral("Custom") : cable->type();
        style.label = tr("%1 - %2 ft").arg(name, lengthText(cable->length()));
        byLocation(false, QColor());
        break;
    }
    case ItemBranchWire: {
        const auto* wire = static_cast<const BranchWireWidget*>(w);
        style.label = tr("Branch Wire - %2 ft").arg(lengthText(wire->length()));
        byLocation(true, QColor(255, 230, 230));
        break;
    }
    default:
        break;
    }
    return style;
}

QFont CFrameItemDelegate::labelFont(const QFont& base, const QString& label, const QSizeF& box,
                                    QPaintDevice* device)
{
    QFont font(base);
    font.setPointSizeF(8.0);
    if (label.isEmpty())
        return font;
    const QFontMetricsF metrics = device ? QFontMetricsF(font, device) : QFontMetricsF(font);
    const qreal advance = metrics.horizontalAdvance(label);
    const qreal height = metrics.height();
    if (advance <= 0.0 || height <= 0.0)
        return font;
    const qreal s = qMin(box.width() / advance, box.height() / height);
    if (0.9 * s < 1.0)
        font.setPointSizeF(font.pointSizeF() * 0.9 * s);
    return font;
}

void CFrameItemDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                               const QModelIndex& index) const
{
    const auto* w = static_cast<const CWidget*>(index.internalPointer());
    if (!painter || !w)
        return;
    const bool selected = option.state.testFlag(QStyle::State_Selected);
    const BoxStyle style = styleFor(w, selected);
    const QRectF box(option.rect);

    painter->save();
    QFont font = labelFont(painter->font(), style.label, box.size(), painter->device());
    painter->setPen(QPen(style.border, 2.0, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    if (selected) {
        QLinearGradient gradient(box.topLeft(), QPointF(box.left(), box.top() + box.height() / 2.0));
        gradient.setColorAt(0.0, QColor(250, 250, 250));
        gradient.setColorAt(1.0, style.fill);
        painter->setBrush(gradient);
        font.setWeight(QFont::Bold);
    } else {
        painter->setBrush(Qt::NoBrush);
    }
    painter->setFont(font);
    painter->drawRoundedRect(box, 4.0, 4.0);
    painter->drawText(box.translated(2.0, 2.0), Qt::AlignHCenter | Qt::AlignVCenter, style.label);

    if (style.errorMark) {
        painter->setPen(QPen(Qt::black, 2.0));
        painter->setBrush(Qt::red);
        painter->drawEllipse(QRectF(box.x() + 5.0, box.y() + box.height() / 2.0 - 5.0, 10.0, 10.0));
    }
    painter->restore();
}

QSize CFrameItemDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const
{
    Q_UNUSED(option)
    const auto* w = static_cast<const CWidget*>(index.internalPointer());
    return w ? w->itemRect().size() : QSize(220, 20);
}
