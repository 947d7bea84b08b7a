#pragma once

#include <QAbstractItemModel>

class CWidget;

// The item model over one configuration's component tree, shared by the canvas (as a tree) and the
// property table (one row, one column per property id). An index's internal pointer is its CWidget.
class CWidgetModel : public QAbstractItemModel
{
    Q_OBJECT
public:
    explicit CWidgetModel(QObject* parent = nullptr);
    ~CWidgetModel() override;

    QModelIndex index(int row, int column, const QModelIndex& parent = QModelIndex()) const override;
    QModelIndex parent(const QModelIndex& index) const override;
    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    int columnCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role = Qt::EditRole) override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

    CWidget* invisibleRoot() const { return m_root; }
    CWidget* widget(const QModelIndex& index) const; // the invisible root for an invalid index
    QModelIndex indexOf(const CWidget* w, int column = 0) const;

    // Inserts w below the parent's component by the child-order rule. Refused (invalid index, w not
    // taken) when the parent already holds as many children as it may.
    QModelIndex addComponent(CWidget* w, const QModelIndex& parent = QModelIndex());
    // Removes the component at index with its subtree and deletes it. False for an invalid index.
    bool removeComponent(const QModelIndex& index);
    // Removes everything; removed components are deleted later.
    void clear();

    // The decoration of the header sections other than the name (the property table's edit icon).
    // The model itself lives without a GUI, so the front end hands the picture in.
    void setHeaderDecoration(const QVariant& decoration) { m_headerDecoration = decoration; }

signals:
    // An edit through setData (the property table) was stored; column is its property id.
    void propertyEdited(int column);

private:
    CWidget* m_root;
    QVariant m_headerDecoration;
};
