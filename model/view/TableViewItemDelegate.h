#pragma once

#include <QStyledItemDelegate>

class CWidget;

// Makes, fills and reads the property table's editors by asking the component of the row what
// the property may take (its EditorRule): a combo box of choices, a length spin box or a
// read-only text. The name column has no editor.
class TableViewItemDelegate : public QStyledItemDelegate
{
    Q_OBJECT
public:
    explicit TableViewItemDelegate(QObject* parent = nullptr);

    QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                          const QModelIndex& index) const override;
    void setEditorData(QWidget* editor, const QModelIndex& index) const override;
    void setModelData(QWidget* editor, QAbstractItemModel* model, const QModelIndex& index) const override;

    // The component shown by an index of the component model (null for anything else).
    static const CWidget* componentAt(const QModelIndex& index);

private:
    void commitAndClose(QWidget* editor);
};
