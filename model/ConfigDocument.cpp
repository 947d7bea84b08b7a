#include "model/ConfigDocument.h"

#include "catalog/Database.h"
#include "model/CWidget.h"
#include "model/CWidgetModel.h"

#include <QItemSelectionModel>

ConfigDocument::ConfigDocument(const Database* db, QObject* parent)
    : QObject(parent), m_db(db), m_model(new CWidgetModel(this)),
      m_selection(new QItemSelectionModel(m_model, this))
{
}

ConfigDocument::~ConfigDocument() = default;

CWidget* ConfigDocument::root() const
{
    return m_model->invisibleRoot()->child(0);
}

CWidget* ConfigDocument::current() const
{
    const QModelIndex idx = m_selection->currentIndex();
    return idx.isValid() ? m_model->widget(idx) : nullptr;
}

QModelIndex ConfigDocument::currentIndex() const
{
    return m_selection->currentIndex();
}

QModelIndex ConfigDocument::indexOf(const CWidget* w) const
{
    return m_model->indexOf(w);
}

void ConfigDocument::setCurrentIndex(const QModelIndex& index)
{
    m_selection->setCurrentIndex(index, QItemSelectionModel::ClearAndSelect);
    emit currentChanged(index);
}

void ConfigDocument::setCurrent(const CWidget* w)
{
    setCurrentIndex(indexOf(w));
}

void ConfigDocument::setModified(bool m)
{
    if (m_modified == m)
        return;
    m_modified = m;
    emit modifiedChanged(m);
}

QString ConfigDocument::lastLocation() const
{
    if (m_lastLocation.isEmpty() && m_db && !m_db->locations().isEmpty())
        return m_db->locations().firstKey();
    return m_lastLocation;
}

int ConfigDocument::count(int kind) const
{
    const CWidget* top = root();
    return top ? top->countInSubtree(kind) : 0;
}

void ConfigDocument::adopt(CWidget* w)
{
    // A subtree read from a file arrives whole: every component in it must report its edits.
    QList<CWidget*> pending{w};
    while (!pending.isEmpty()) {
        CWidget* c = pending.takeLast();
        connect(c, &CWidget::valueChanged, this, &ConfigDocument::onComponentValueChanged,
                Qt::UniqueConnection);
        if (auto* wire = qobject_cast<BranchWireWidget*>(c))
            connect(wire, &BranchWireWidget::locationChanged, this, &ConfigDocument::setLastLocation,
                    Qt::UniqueConnection);
        pending.append(c->children());
    }
}

void ConfigDocument::onComponentValueChanged()
{
    setModified(true);
    emit componentChanged();
}

QModelIndex ConfigDocument::insert(CWidget* w)
{
    if (!w)
        return QModelIndex();
    const QModelIndex idx = m_model->addComponent(w, currentIndex());
    if (!idx.isValid()) {
        delete w;
        return idx;
    }
    adopt(w);
    setCurrentIndex(idx);
    setModified(true);
    emit changed();
    return idx;
}

QModelIndex ConfigDocument::setRoot(CWidget* w)
{
    return insert(w);
}

bool ConfigDocument::removeCurrent()
{
    CWidget* w = current();
    if (!w)
        return false;
    CWidget* parent = w->parentWidget();
    if (parent) {
        m_model->removeComponent(indexOf(w));
        setCurrent(parent);
    } else {
        clear();
        emit currentChanged(QModelIndex());
    }
    setModified(true);
    emit changed();
    return true;
}

void ConfigDocument::clear()
{
    m_model->clear();
    m_selection->clear();
}

void ConfigDocument::reset()
{
    clear();
    emit currentChanged(QModelIndex());
    emit changed();
    setModified(true);
}

CWidget* ConfigDocument::addBranchWire(int spare, const QString& inputMode)
{
    // A new branch wire always takes the catalog's default name and gauge.
    auto* wire = new BranchWireWidget(m_db, m_db ? m_db->firstBranchWire() : nullptr);
    wire->setSpare(spare);
    wire->setLocation(lastLocation());
    if (!inputMode.isEmpty())
        wire->setInputMode(inputMode);
    return insert(wire).isValid() ? wire : nullptr;
}

CWidget* ConfigDocument::addSupply(DLPowerSupply* record)
{
    if (!record)
        return nullptr;
    const bool hadSupply = count(ItemSupply) > 0;
    const CWidget* cur = current();
    if (hadSupply && (!cur || cur->itemType() != ItemBranchWire)) {
        if (!addBranchWire(3, Modes::feedwise()))
            return nullptr;
    }
    auto* supply = new SupplyWidget(m_db, record, 0);
    if (hadSupply)
        supply->setExplicitLocation(Modes::dynaline());
    return insert(supply).isValid() ? supply : nullptr;
}

CWidget* ConfigDocument::addFixture(DLFixture* record)
{
    if (!record)
        return nullptr;
    auto* fixture = new FixtureWidget(m_db, record, 0);
    return insert(fixture).isValid() ? fixture : nullptr;
}

CWidget* ConfigDocument::addLeader(DLFixture* fixture)
{
    if (!fixture)
        return nullptr;
    // A new leader copies the last leader below the selection, else the last on the canvas.
    const CableWidget* handed = nullptr;
    if (const CWidget* cur = current()) {
        for (const CWidget* c : cur->children())
            if (c->itemType() == ItemLeader)
                handed = static_cast<const CableWidget*>(c);
    }
    if (!handed && root()) {
        QList<const CWidget*> pending{root()};
        while (!pending.isEmpty()) { // depth-first, children in row order
            const CWidget* w = pending.takeLast();
            if (w->itemType() == ItemLeader)
                handed = static_cast<const CableWidget*>(w);
            for (auto it = w->children().crbegin(); it != w->children().crend(); ++it)
                pending.append(*it);
        }
    }
    auto* leader = new LeaderWidget(m_db, fixture, handed);
    return insert(leader).isValid() ? leader : nullptr;
}

CWidget* ConfigDocument::addJumper(DLFixture* fixture)
{
    if (!fixture)
        return nullptr;
    const CableWidget* handed = nullptr;
    for (const CWidget* w = current(); w; w = w->parentWidget()) {
        if (w->itemType() == ItemJumper) {
            handed = static_cast<const CableWidget*>(w);
            break;
        }
    }
    auto* jumper = new JumperWidget(m_db, fixture, handed);
    return insert(jumper).isValid() ? jumper : nullptr;
}

CWidget* ConfigDocument::addReceiver()
{
    const CWidget* cur = current();
    if (!cur || cur->itemType() != ItemBranchWire) {
        if (!addBranchWire(3, Modes::feedwise()))
            return nullptr;
    }
    DLReceiver* rec = (m_db && !m_db->receivers().isEmpty()) ? m_db->receivers().first() : nullptr;
    auto* receiver = new ReceiverWidget(m_db, rec, 0);
    return insert(receiver).isValid() ? receiver : nullptr;
}

CWidget* ConfigDocument::addJunctionBox()
{
    const CWidget* cur = current();
    const bool onReceiver = cur && cur->itemType() == ItemReceiver;
    if (!cur || cur->itemType() != ItemBranchWire) {
        const QString mode = onReceiver ? Modes::feedwise() : (cur ? cur->locationText() : QString());
        if (!addBranchWire(4, mode))
            return nullptr;
    }
    DLJunctionBox* rec = nullptr;
    if (m_db) {
        for (DLJunctionBox* box : m_db->junctionBoxes()) {
            if (box->receiverOnly == onReceiver) {
                rec = box;
                break;
            }
        }
    }
    auto* box = new JunctionBoxWidget(m_db, rec);
    return insert(box).isValid() ? box : nullptr;
}
