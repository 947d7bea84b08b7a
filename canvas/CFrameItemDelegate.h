#pragma once

#include <QColor>
#include <QItemDelegate>
#include <QString>

class CFrame;
class CWidget;

// Paints one component box of the canvas: outline, label, selection gradient and error mark.
// It also numbers the supplies and receivers in the order a paint pass meets them.
class CFrameItemDelegate : public QItemDelegate
{
    Q_OBJECT
public:
    explicit CFrameItemDelegate(CFrame* frame);

    // Look of one box before it is drawn.
    struct BoxStyle {
        QColor border{64, 64, 64};
        QColor fill{220, 220, 220};
        QString label;
        bool errorMark = false;
    };

    void resetCounters();
    // Counts a supply or a receiver about to be painted (other kinds are ignored).
    void countComponent(const CWidget* w);
    int supplyCount() const { return m_supplies; }
    int receiverCount() const { return m_receivers; }

    // Colours, label and error mark of a component with the present counters.
    BoxStyle styleFor(const CWidget* w, bool selected) const;
    // The label font: the base font at 8 points, shrunk (never grown) so that the label fits the box.
    static QFont labelFont(const QFont& base, const QString& label, const QSizeF& box, QPaintDevice* device);

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;

private:
    CFrame* m_frame;
    int m_supplies = 0;
    int m_receivers = 0;
};
