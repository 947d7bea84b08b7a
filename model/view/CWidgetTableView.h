#pragma once

#include <QPersistentModelIndex>
#include <QTableView>

class CWidget;

// The property table: a second view on the component model that shows one row, the selected
// component's, with only the columns of the properties that component has. A press on a cell
// opens its editor at once.
class CWidgetTableView : public QTableView
{
    Q_OBJECT
public:
    explicit CWidgetTableView(QWidget* parent = nullptr);

    void setModel(QAbstractItemModel* model) override;

    // The component whose row is shown (null when none).
    const CWidget* shownComponent() const;

public slots:
    // Shows the row of index's component.
    void handleSelectionChanged(const QModelIndex& index);
    // The model changed: recompute the columns and the row of the shown component.
    void handleModelReset();

protected:
    // The one row fills the table once the table has its real size.
    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    void applyColumns();
    void applyRows();
    void fitColumns();

    QPersistentModelIndex m_shown;
    int m_rowHeight = -1; // the smallest height seen that fills the table with its one row
};
