#include "model/CWidgetModel.h"

#include "model/CWidget.h"

CWidgetModel::CWidgetModel(QObject* parent)
    : QAbstractItemModel(parent), m_root(new CWidget(nullptr, nullptr, ItemInvisibleRoot))
{
}

CWidgetModel::~CWidgetModel()
{
    delete m_root;
}

CWidget* CWidgetModel::widget(const QModelIndex& index) const
{
    if (!index.isValid())
        return m_root;
    return static_cast<CWidget*>(index.internalPointer());
}

QModelIndex CWidgetModel::indexOf(const CWidget* w, int column) const
{
    if (!w || w == m_root || !w->treeParent())
        return QModelIndex();
    const int row = w->treeParent()->indexOfChild(w);
    if (row < 0)
        return QModelIndex();
    return createIndex(row, column, const_cast<CWidget*>(w));
}

QModelIndex CWidgetModel::index(int row, int column, const QModelIndex& parent) const
{
    const CWidget* p = widget(parent);
    if (!p || row < 0 || row >= p->childCount() || column < 0 || column >= PropertyIdCount)
        return QModelIndex();
    return createIndex(row, column, p->child(row));
}

QModelIndex CWidgetModel::parent(const QModelIndex& index) const
{
    if (!index.isValid())
        return QModelIndex();
    const CWidget* w = widget(index);
    CWidget* p = w->treeParent();
    if (!p || p == m_root || p->isInvisibleRoot())
        return QModelIndex();
    return indexOf(p, 0);
}

int CWidgetModel::rowCount(const QModelIndex& parent) const
{
    const CWidget* p = widget(parent);
    return p ? p->childCount() : 0;
}

int CWidgetModel::columnCount(const QModelIndex& parent) const
{
    Q_UNUSED(parent)
    return PropertyIdCount;
}

QVariant CWidgetModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid())
        return QVariant();
    if (role == Qt::DisplayRole || role == Qt::EditRole || role == Qt::ToolTipRole)
        return widget(index)->cellData(index.column(), role);
    return QVariant();
}

bool CWidgetModel::setData(const QModelIndex& index, const QVariant& value, int role)
{
    if (role != Qt::EditRole || !index.isValid())
        return false;
    // An editor left as it was (or the same entry chosen again) changes nothing, so nothing is
    // announced: no analysis runs, the configuration stays unmodified and no undo step is made.
    if (widget(index)->applyEditorValue(index.column(), value)) {
        emit layoutChanged();
        emit propertyEdited(index.column());
    }
    return true;
}

QVariant CWidgetModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    static const char* const headers[PropertyIdCount] = {
        QT_TR_NOOP("Name"),       QT_TR_NOOP("Type"),         QT_TR_NOOP("Gauge"),
        QT_TR_NOOP("Length"),     QT_TR_NOOP("Junction Box"), QT_TR_NOOP("Output Mode"),
        QT_TR_NOOP("Input Mode"), QT_TR_NOOP("Location"),     QT_TR_NOOP("DL / Line Voltage Length")};
    if (orientation == Qt::Horizontal) {
        if ((role == Qt::DisplayRole || role == Qt::EditRole) && section >= 0 && section < PropertyIdCount)
            return tr(headers[section]);
        if (role == Qt::DecorationRole && section > 0 && section < PropertyIdCount)
            return m_headerDecoration;
    } else if (role == Qt::DisplayRole) {
        return tr("Selected Component");
    }
    return QAbstractItemModel::headerData(section, orientation, role);
}

Qt::ItemFlags CWidgetModel::flags(const QModelIndex& index) const
{
    if (!index.isValid())
        return Qt::NoItemFlags;
    return Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsEditable;
}

QModelIndex CWidgetModel::addComponent(CWidget* w, const QModelIndex& parent)
{
    CWidget* p = widget(parent);
    if (!w || !p || p->childCount() >= p->maxChildren())
        return QModelIndex();
    beginResetModel();
    p->insertChild(w);
    endResetModel();
    return indexOf(w);
}

bool CWidgetModel::removeComponent(const QModelIndex& index)
{
    if (!index.isValid())
        return false;
    CWidget* w = widget(index);
    CWidget* p = w->treeParent();
    if (!p)
        return false;
    beginResetModel();
    p->takeChild(p->indexOfChild(w));
    endResetModel();
    delete w;
    return true;
}

void CWidgetModel::clear()
{
    beginResetModel();
    QList<CWidget*> removed;
    while (m_root->childCount() > 0)
        removed.append(m_root->takeChild(0));
    endResetModel();
    for (CWidget* w : removed)
        w->deleteLater();
}
