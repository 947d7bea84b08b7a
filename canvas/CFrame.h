#pragma once

#include <QAbstractItemView>
#include <QMap>
#include <functional>

class CWidget;
class ConfigDocument;
struct AnalysisResult;
class QPrinter;
class QPainter;
class QHelpEvent;

// The canvas: draws one configuration as a tree of boxes joined by connectors, and is the view
// through which the user selects and deletes components. A view over a ConfigDocument.
class CFrame : public QAbstractItemView
{
    Q_OBJECT
public:
    explicit CFrame(QWidget* parent = nullptr);
    ~CFrame() override;

    // Shows the document: its model and selection model become the view's.
    void setDocument(ConfigDocument* doc);
    ConfigDocument* document() const { return m_doc; }

    double zoom() const { return m_zoom; }
    bool isPrinting() const { return m_printing; }
    QWidget* lineKey() const { return m_lineKey; }

    // Unscaled item rectangle of a component (before zoom, after scrolling).
    QRect itemRectOf(const CWidget* w) const;
    // Number of a component among those of its kind (ItemAny: all), depth first, from 0.
    int numberOf(const CWidget* w, int kind) const;

    // Scrolls back to the drawing's top-left corner (a configuration just opened).
    void showTopLeft();

    // Deletes the current component with its subtree, asking first when it has children.
    void deleteCurrent();
    // Answers the "Delete multiple items" question; tests replace it. Default: a message box.
    std::function<bool()> confirmDelete;

    // Paints the whole tree scaled to one page of the printer.
    void print(QPrinter* printer);
    // Size of the drawing that print() fits onto the page, unscaled.
    QSize drawingExtent() const;
    // The scale the last print() used.
    double lastPrintScale() const { return m_lastPrintScale; }
    // Paints the tree with the canvas painter into any device (printing, tests).
    void paintTree(QPainter& painter);

    // The analysis whose figures the tooltips and the voltage overlay show; null for none. It
    // must outlive the canvas or be replaced first.
    void setAnalysis(const AnalysisResult* result) { m_analysis = result; }
    bool showsVoltages() const { return m_showVoltages; }

    // QAbstractItemView
    QRect visualRect(const QModelIndex& index) const override;
    void scrollTo(const QModelIndex& index, ScrollHint hint = EnsureVisible) override;
    QModelIndex indexAt(const QPoint& point) const override;

signals:
    void frameChanged();
    void selectionChanged(const QModelIndex& index);
    void deleteCurrentCWidget();

public slots:
    void updateFrame();
    void resetFrame();
    void handleParamChanged();
    void handleLastLocation(const QString& location);
    void handleZoomChanged(double value);
    void handleLineKeyToggled(bool checked);
    // Writes the available voltage under each box, coloured by its margin to the minimum.
    void setShowVoltages(bool on);

protected:
    QModelIndex moveCursor(CursorAction cursorAction, Qt::KeyboardModifiers modifiers) override;
    int horizontalOffset() const override;
    int verticalOffset() const override;
    bool isIndexHidden(const QModelIndex& index) const override;
    void setSelection(const QRect& rect, QItemSelectionModel::SelectionFlags command) override;
    QRegion visualRegionForSelection(const QItemSelection& selection) const override;
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    bool viewportEvent(QEvent* event) override;
    void scrollContentsBy(int dx, int dy) override;

private:
    struct Layout;
    Layout computeLayout(bool scrolled) const;
    void paintComponent(QPainter& painter, const CWidget* w, const Layout& layout);
    void paintConnector(QPainter& painter, const CWidget* parent, const CWidget* child, const Layout& layout);
    void paintVoltage(QPainter& painter, const CWidget* w, const QRect& box);
    bool showFiguresToolTip(QHelpEvent* event);
    // True when an unscaled rectangle meets the area being painted (always outside paint events).
    bool inPaintArea(const QRectF& r) const;
    void placeLineKey();
    void updateScrollRanges();

    ConfigDocument* m_doc = nullptr;
    double m_zoom = 1.0;
    bool m_printing = false;
    bool m_lineVoltageSeen = false;
    double m_lastPrintScale = 0.0;
    const AnalysisResult* m_analysis = nullptr;
    bool m_showVoltages = false;
    QRectF m_paintArea; // unscaled area of the paint event under way; null: everything
    QWidget* m_lineKey = nullptr;
    class CFrameItemDelegate* m_delegate = nullptr;
};
