#include "model/view/CWidgetTableView.h"

#include "model/CWidget.h"
#include "model/CWidgetModel.h"
#include "model/view/TableViewItemDelegate.h"

#include <QHeaderView>

CWidgetTableView::CWidgetTableView(QWidget* parent) : QTableView(parent)
{
    setItemDelegate(new TableViewItemDelegate(this));
    horizontalHeader()->setSectionsClickable(false);
    verticalHeader()->setSectionsClickable(false);
    setSelectionMode(QAbstractItemView::SingleSelection);
    connect(this, &QAbstractItemView::pressed, this, qOverload<const QModelIndex&>(&QAbstractItemView::edit));
}

void CWidgetTableView::setModel(QAbstractItemModel* model)
{
    QTableView::setModel(model);
    m_shown = QPersistentModelIndex();
    applyColumns();
}

const CWidget* CWidgetTableView::shownComponent() const
{
    return TableViewItemDelegate::componentAt(m_shown);
}

void CWidgetTableView::handleSelectionChanged(const QModelIndex& index)
{
    if (!model())
        return;
    const QModelIndex row = index.isValid() ? index.siblingAtColumn(0) : QModelIndex();
    // The table lists the siblings of the component; all but its own row are hidden.
    setRootIndex(row.parent());
    m_shown = row;
    applyColumns();
    applyRows();
    fitColumns();
    if (row.isValid())
        setCurrentIndex(row);
}

void CWidgetTableView::handleModelReset()
{
    if (!model())
        return;
    if (m_shown.isValid() && rootIndex() != m_shown.parent())
        setRootIndex(m_shown.parent());
    applyColumns();
    applyRows();
    fitColumns();
    viewport()->update();
}

void CWidgetTableView::resizeEvent(QResizeEvent* event)
{
    QTableView::resizeEvent(event);
    applyRows();
}

void CWidgetTableView::showEvent(QShowEvent* event)
{
    QTableView::showEvent(event);
    applyRows();
}

void CWidgetTableView::applyColumns()
{
    if (!model())
        return;
    const int columns = model()->columnCount(rootIndex());
    for (int c = 0; c < columns; ++c)
        setColumnHidden(c, true);
    const CWidget* component = shownComponent();
    if (!component)
        return;
    for (int id : component->propertyIds())
        if (id >= 0 && id < columns)
            setColumnHidden(id, false);
}

void CWidgetTableView::fitColumns()
{
    // Sized after the other rows are hidden, so the widths fit the one row shown.
    if (shownComponent())
        resizeColumnsToContents();
}

void CWidgetTableView::applyRows()
{
    if (!model())
        return;
    const int rows = model()->rowCount(rootIndex());
    const int shownRow = m_shown.isValid() ? m_shown.row() : -1;
    for (int r = 0; r < rows; ++r)
        setRowHidden(r, r != shownRow);
    if (shownRow < 0)
        return;
    // Only a laid-out table tells how tall its one row may be.
    if (isVisible()) {
        const int fill = height() - horizontalHeader()->height();
        if (fill > 0 && (m_rowHeight < 0 || fill < m_rowHeight))
            m_rowHeight = fill;
    }
    if (m_rowHeight > 0)
        setRowHeight(shownRow, m_rowHeight);
}
