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
    if (m_lastLocation.isEmpty() && m_db && !m_db->locationNames().isEmpty())
        return m_db->locationNames().first();
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

Additions ConfigDocument::allowedAdditions(const DLFixture* chosen) const
{
    Additions a;
    const CWidget* w = current();
    if (!w || w->isInvisibleRoot()) {
        a.jumper = Additions::JumperOff;
        return a;
    }
    const bool roomForReceiver = count(ItemReceiver) < MaxReceiversPerRun;
    const bool familyOne = chosen && chosen->family == 1;
    const bool hasChildren = w->childCount() > 0;
    const bool underReceiver = w->hasAncestorOfType(ItemReceiver);
    const QString feedwise = Modes::feedwise();

    switch (w->itemType()) {
    case ItemSupply:
        if (hasChildren)
            break;
        if (w->locationText() != feedwise) {
            a.maximize = a.fixture = a.leader = a.junctionBox = true;
        } else {
            a.maximize = !familyOne;
            a.receiver = roomForReceiver;
            a.fixture = !familyOne;
            a.enabler = true;
            a.junctionBox = true;
        }
        break;
    case ItemLeader:
    case ItemJumper:
        if (hasChildren)
            break;
        a.fixture = !(underReceiver && familyOne);
        a.maximize = true;
        break;
    case ItemFixture: {
        const bool room = w->childCount() < w->maxChildren();
        a.fixture = room;
        a.jumper = room ? Additions::JumperOn : Additions::JumperOff;
        const CWidget* parent = w->parentWidget();
        a.maximize = !hasChildren && !(parent && parent->itemType() == ItemReceiver);
        break;
    }
    case ItemReceiver: {
        const auto* r = static_cast<const ReceiverWidget*>(w);
        const bool takesBox = r->canTakeJunctionBox();
        const bool takesFixtures = r->canTakeFixtures() && !familyOne;
        a.junctionBox = takesBox;
        a.receiver = roomForReceiver && takesBox;
        a.fixture = a.leader = a.maximize = takesFixtures;
        break;
    }
    case ItemBranchWire:
        if (hasChildren)
            break;
        a.junctionBox = true;
        if (w->locationText() == feedwise) {
            a.enabler = true;
            a.receiver = roomForReceiver;
        }
        a.maximize = true;
        break;
    case ItemJunctionBox: {
        const auto* j = static_cast<const JunctionBoxWidget*>(w);
        const CWidget* parent = w->parentWidget();
        const bool parentFeedwise = parent && parent->locationText() == feedwise;
        const bool feedsSupply = j->canFeedSupply();
        const bool feedsFixtures = j->canFeedFixtures();
        a.receiver = parentFeedwise && roomForReceiver && feedsSupply;
        a.fixture = a.maximize = a.leader = !parentFeedwise && feedsFixtures && !(underReceiver && familyOne);
        a.enabler = feedsSupply;
        a.junctionBox = feedsSupply || feedsFixtures;
        break;
    }
    default:
        a.jumper = Additions::JumperOff;
        break;
    }
    return a;
}

CWidget* ConfigDocument::addBranchWire(int spare, const QString& inputMode)
{
    // A new branch wire always takes the catalog's default name and gauge.
    if (!m_db || !m_db->firstBranchWire())
        return nullptr;
    auto* wire = new BranchWireWidget(m_db, m_db->firstBranchWire());
    wire->setSpare(spare);
    wire->setLocation(lastLocation());
    if (!inputMode.isEmpty())
        wire->setInputMode(inputMode);
    return insert(wire).isValid() ? wire : nullptr;
}

CWidget* ConfigDocument::addSupply(DLPowerSupply* record)
{
    const CWidget* cur = current();
    // A further enabler hangs below the selection; without one it would be a second root.
    if (!record || (root() && !cur))
        return nullptr;
    const bool hadSupply = count(ItemSupply) > 0;
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
    if (!record || !current())
        return nullptr;
    auto* fixture = new FixtureWidget(m_db, record, 0);
    return insert(fixture).isValid() ? fixture : nullptr;
}

CWidget* ConfigDocument::addLeader(DLFixture* fixture)
{
    if (!fixture || !current())
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
    if (!fixture || !current())
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
    DLReceiver* rec = (m_db && !m_db->receivers().isEmpty()) ? m_db->receivers().first() : nullptr;
    if (!cur || !rec)
        return nullptr;
    if (cur->itemType() != ItemBranchWire) {
        if (!addBranchWire(3, Modes::feedwise()))
            return nullptr;
    }
    auto* receiver = new ReceiverWidget(m_db, rec, 0);
    return insert(receiver).isValid() ? receiver : nullptr;
}

CWidget* ConfigDocument::addJunctionBox()
{
    const CWidget* cur = current();
    if (!cur || !m_db)
        return nullptr;
    const bool onReceiver = cur->itemType() == ItemReceiver;
    DLJunctionBox* rec = nullptr;
    for (DLJunctionBox* box : m_db->junctionBoxes()) {
        if (box->receiverOnly == onReceiver) {
            rec = box;
            break;
        }
    }
    if (!rec)
        return nullptr;
    if (cur->itemType() != ItemBranchWire) {
        const QString mode = onReceiver ? Modes::feedwise() : cur->locationText();
        if (!addBranchWire(4, mode))
            return nullptr;
    }
    auto* box = new JunctionBoxWidget(m_db, rec);
    return insert(box).isValid() ? box : nullptr;
}
