#include "model/CWidget.h"

#include "catalog/Database.h"

#include <QMetaProperty>

#include <cmath>

QString propertyName(int id)
{
    static const char* const names[PropertyIdCount] = {"name",      "type",        "gauge",
                                                       "length",    "junctionBox", "outputMode",
                                                       "inputMode", "location",    "dynaLineLength"};
    if (id < 0 || id >= PropertyIdCount)
        return QString();
    return QString::fromLatin1(names[id]);
}

namespace
{
bool g_loading = false;

// The mode names the mode rule answers with, held once so answers can refer to them.
enum class Mode { Undefined, Dynaline };
const QString& constant(Mode m)
{
    static const QString undefined = Modes::undefined();
    static const QString dynaline = Modes::dynaline();
    return m == Mode::Undefined ? undefined : dynaline;
}

int roundToInt(double v)
{
    if (!std::isfinite(v))
        return 0;
    return static_cast<int>(std::lround(std::clamp(v, -2.0e9, 2.0e9)));
}

QString lengthText(double v)
{
    return QString::number(v, 'g', 6) + QStringLiteral(" ft");
}

EditorRule comboOf(const QStringList& choices, const QString& current)
{
    EditorRule rule;
    rule.kind = EditorRule::Combo;
    rule.choices = choices;
    rule.currentIndex = choices.indexOf(current);
    return rule;
}

EditorRule spinOf(int value, int maximum)
{
    EditorRule rule;
    rule.kind = EditorRule::Spin;
    rule.minimum = 1;
    rule.maximum = maximum;
    rule.value = value;
    rule.suffix = QStringLiteral(" ft");
    return rule;
}

EditorRule readOnlyOf(const QString& text)
{
    EditorRule rule;
    rule.kind = EditorRule::ReadOnlyText;
    rule.text = text;
    return rule;
}
} // namespace

namespace ComponentLoading
{
bool active()
{
    return g_loading;
}
void setActive(bool on)
{
    g_loading = on;
}
} // namespace ComponentLoading

float conductorVolumeForGauge(const QString& gauge)
{
    // Box-fill allowance per conductor by wire gauge, in cubic inches.
    QString digits;
    for (const QChar c : gauge.trimmed()) {
        if (!c.isDigit())
            break;
        digits.append(c);
    }
    switch (digits.toInt()) {
    case 18:
        return 1.5f;
    case 16:
        return 1.75f;
    case 14:
        return 2.0f;
    case 12:
        return 2.25f;
    case 10:
        return 2.5f;
    case 8:
        return 3.0f;
    case 6:
        return 5.0f;
    default:
        return 2.25f;
    }
}

// =============================================================================================
// CWidget

CWidget::CWidget(const Database* db, VxItem* item, int itemType, int ordinal)
    : m_db(db), m_item(item), m_ordinal(ordinal), m_itemType(itemType)
{
}

CWidget::~CWidget()
{
    // Free the subtree leaf-first without recursing once per level: a run nests one level per fixture.
    QList<CWidget*> pending = m_children;
    m_children.clear();
    QList<CWidget*> order;
    while (!pending.isEmpty()) {
        CWidget* w = pending.takeLast();
        order.append(w);
        pending.append(w->m_children);
        w->m_children.clear();
    }
    for (auto it = order.crbegin(); it != order.crend(); ++it) {
        (*it)->m_parent = nullptr;
        delete *it;
    }
}

CWidget* CWidget::parentWidget() const
{
    return (m_parent && !m_parent->isInvisibleRoot()) ? m_parent : nullptr;
}

int CWidget::insertPosition(CWidget* child)
{
    if (child->itemType() == ItemFixture && m_itemType != ItemLeader)
        return 0;
    // The child's mode is judged as if it already hung here.
    CWidget* previousParent = child->m_parent;
    child->m_parent = this;
    const QString mode = child->effectiveMode();
    child->m_parent = previousParent;
    if (mode == Modes::feedwise())
        return m_children.size();
    for (int i = 0; i < m_children.size(); ++i)
        if (m_children.at(i)->effectiveMode() == Modes::feedwise())
            return i;
    return m_children.size();
}

int CWidget::insertChild(CWidget* child)
{
    const int row = insertPosition(child);
    insertChildAt(row, child);
    return row;
}

void CWidget::insertChildAt(int row, CWidget* child)
{
    m_children.insert(row, child);
    child->m_parent = this;
    child->setParent(this);
}

CWidget* CWidget::takeChild(int row)
{
    if (row < 0 || row >= m_children.size())
        return nullptr;
    CWidget* child = m_children.takeAt(row);
    child->m_parent = nullptr;
    child->setParent(nullptr);
    return child;
}

int CWidget::countInSubtree(int kind) const
{
    int n = 0;
    QList<const CWidget*> pending{this};
    while (!pending.isEmpty()) {
        const CWidget* w = pending.takeLast();
        if (kind == ItemAny || w->m_itemType == kind)
            ++n;
        for (const CWidget* c : w->m_children)
            pending.append(c);
    }
    return n;
}

bool CWidget::hasAncestorOfType(int kind) const
{
    return nearestAncestorOfType(kind) != nullptr;
}

CWidget* CWidget::nearestAncestorOfType(int kind) const
{
    for (CWidget* p = parentWidget(); p; p = p->parentWidget())
        if (p->itemType() == kind)
            return p;
    return nullptr;
}

QString CWidget::name() const
{
    return displayName();
}

QString CWidget::displayName() const
{
    return m_item ? m_item->name : QString();
}

QList<int> CWidget::propertyIds() const
{
    return {PropName};
}

EditorRule CWidget::editorRule(int id) const
{
    Q_UNUSED(id)
    return EditorRule();
}

bool CWidget::applyEditorValue(int id, const QVariant& value)
{
    if (!propertyIds().contains(id))
        return false;
    const QByteArray prop = propertyName(id).toLatin1();
    const int index = metaObject()->indexOfProperty(prop.constData());
    if (index < 0)
        return false;
    const QMetaProperty mp = metaObject()->property(index);
    if (!mp.isWritable())
        return false;
    const QVariant before = property(prop.constData());
    QVariant stored;
    if (mp.metaType().id() == QMetaType::Double) {
        double v = value.toDouble();
        // A length never leaves the editor's limits, however it was typed.
        const EditorRule rule = editorRule(id);
        if (id == PropLength && rule.kind == EditorRule::Spin)
            v = rule.clamped(roundToInt(v));
        stored = v;
    } else {
        stored = value.toString();
    }
    if (stored == before)
        return false;
    setProperty(prop.constData(), stored);
    emit valueChanged();
    return true;
}

QDomElement CWidget::saveToXml(QDomDocument& doc) const
{
    QDomElement e = doc.createElement(QStringLiteral("CWidget"));
    e.setAttribute(QStringLiteral("CWidgetItemType"), m_itemType);
    for (int id : propertyIds()) {
        const QString attr = propertyName(id);
        const QVariant v = property(attr.toLatin1().constData());
        switch (v.metaType().id()) {
        case QMetaType::Int:
            e.setAttribute(attr, v.toInt());
            break;
        case QMetaType::QString:
            e.setAttribute(attr, v.toString());
            break;
        case QMetaType::Double:
            e.setAttribute(attr, v.toDouble());
            break;
        case QMetaType::Bool:
            e.setAttribute(attr, v.toBool() ? 1 : 0);
            break;
        default:
            break;
        }
    }
    const QVariant fixture = property("fixtureName");
    if (fixture.metaType().id() == QMetaType::QString && !fixture.toString().isEmpty())
        e.setAttribute(QStringLiteral("fixtureName"), fixture.toString());
    for (const CWidget* c : m_children)
        e.appendChild(c->saveToXml(doc));
    return e;
}

bool CWidget::isWidgetElement(const QDomElement& element)
{
    return !element.isNull() && element.tagName() == QLatin1String("CWidget");
}

int CWidget::maxChildren() const
{
    return 1;
}

int CWidget::propertyCount() const
{
    return 2;
}

QString CWidget::propertyText(int id, int role) const
{
    return cellData(id, role).toString();
}

QVariant CWidget::cellData(int column, int role) const
{
    const QString attr = propertyName(column);
    if (attr.isEmpty())
        return QVariant();
    const QVariant value = property(attr.toLatin1().constData());
    if (role == Qt::DisplayRole || role == Qt::ToolTipRole) {
        if (column == PropLength || column == PropDynaLineLength)
            return value.isValid() ? QVariant(value.toString() + QStringLiteral(" ft")) : value;
        if (column == PropGauge)
            return value.isValid() ? QVariant(value.toString() + QStringLiteral(" AWG")) : value;
    }
    return value;
}

QRect CWidget::itemRect() const
{
    return QRect(0, 0, 100, 20);
}

QString CWidget::effectiveMode() const
{
    const CWidget* p = parentWidget();
    return modeUnder(p, p ? p->effectiveMode() : Modes::undefined());
}

const QString& CWidget::modeUnder(const CWidget* parent, const QString& parentMode) const
{
    return parent ? parentMode : constant(Mode::Undefined);
}

const QString& CWidget::locationUnder(const QString& ownMode, const QString& parentLocation) const
{
    Q_UNUSED(ownMode)
    return parentLocation;
}

QString CWidget::locationText() const
{
    const CWidget* p = parentWidget();
    return locationUnder(QString(), p ? p->locationText() : QString());
}

void CWidget::jumperChange()
{
    emit valueChanged();
}

void CWidget::jumperUpdate()
{
    emit valueChanged();
}

// =============================================================================================
// SupplyWidget

SupplyWidget::SupplyWidget(const Database* db, DLPowerSupply* rec, int ordinal)
    : CWidget(db, rec, ItemSupply, ordinal)
{
    if (!ComponentLoading::active() && rec)
        m_outputMode = rec->defaultOutputMode();
}

DLPowerSupply* SupplyWidget::record() const
{
    return qobject_cast<DLPowerSupply*>(m_item);
}

QList<int> SupplyWidget::propertyIds() const
{
    return {PropName, PropOutputMode, PropDynaLineLength};
}

EditorRule SupplyWidget::editorRule(int id) const
{
    if (id == PropOutputMode) {
        const DLPowerSupply* rec = record();
        if (!rec)
            return comboOf({}, QString());
        const QString mode = effectiveMode();
        if (childCount() > 0) // the mode cannot change under a built run
            return comboOf({mode}, mode);
        QStringList choices;
        for (const QString& m : rec->outputModes)
            if (m != Modes::feedwise() || ordinal() <= 0)
                choices.append(m);
        return comboOf(choices, mode);
    }
    if (id == PropDynaLineLength)
        return readOnlyOf(lengthText(dynaLineLength()));
    return EditorRule();
}

bool SupplyWidget::applyEditorValue(int id, const QVariant& value)
{
    if (id == PropDynaLineLength)
        return false; // computed
    return CWidget::applyEditorValue(id, value);
}

QVariant SupplyWidget::cellData(int column, int role) const
{
    QVariant base = CWidget::cellData(column, role);
    if (role != Qt::ToolTipRole)
        return base;
    const QString mode = effectiveMode();
    QString text = base.toString() + QStringLiteral("\nMode: ") + mode;
    if (mode != Modes::feedwise())
        text += QStringLiteral("\nDL / Line Voltage Length: ") + QString::number(dynaLineLength(), 'g', 6) +
                QStringLiteral(" ft");
    return text;
}

const QString& SupplyWidget::modeUnder(const CWidget* parent, const QString& parentMode) const
{
    Q_UNUSED(parent)
    Q_UNUSED(parentMode)
    return m_outputMode;
}

const QString& SupplyWidget::locationUnder(const QString& ownMode, const QString& parentLocation) const
{
    Q_UNUSED(ownMode)
    Q_UNUSED(parentLocation)
    return m_location.isEmpty() ? m_outputMode : m_location;
}

QString SupplyWidget::locationText() const
{
    return locationUnder(m_outputMode, QString());
}

// =============================================================================================
// Leaders and jumpers

CableWidget::CableWidget(const Database* db, DLFixture* fixture, int itemType, double defaultLength,
                         const CableWidget* handed)
    : CWidget(db, fixture, itemType, 0), m_length(defaultLength)
{
    if (ComponentLoading::active() || !fixture)
        return;
    // A handed cable gives its type, gauge and length; a leader only where its new fixture lists
    // that type, since otherwise it would name a cable with no record (and no resistance) behind it.
    if (handed) {
        m_type = handed->m_type;
        if (itemType != ItemLeader || cableRecord()) {
            m_gauge = handed->m_gauge;
            m_length = handed->m_length;
            return;
        }
        m_type.clear();
    }
    const VxJumper* cable =
        itemType == ItemLeader ? fixture->defaultLeaderCable() : fixture->defaultJumperCable();
    if (!cable)
        return;
    m_type = cable->name;
    applyCableDefaults(cable, false);
}

void CableWidget::applyCableDefaults(const VxJumper* cable, bool keepFitting)
{
    if (!cable->hasCustomWires) {
        m_gauge.clear();
        m_length = cable->electricalLength;
        return;
    }
    if (keepFitting) {
        const VxWire* w = cable->wireNamed(m_gauge);
        if (w && w->maxLength >= m_length)
            return;
    }
    const VxWire* w = cable->defaultWire();
    m_gauge = w ? w->name : QString();
    m_length = cable->defaultCustomLength;
}

void CableWidget::setType(const QString& t)
{
    m_type = t;
}

void CableWidget::setLength(double l)
{
    m_length = l;
}

int CableWidget::customLengthLimit(const VxJumper* cable, const QString& gauge)
{
    if (!cable)
        return 0;
    if (const VxWire* w = cable->wireNamed(gauge))
        if (w->maxLength > 0.0)
            return roundToInt(w->maxLength);
    double largest = 0.0;
    for (const VxWire* w : cable->customWires)
        largest = std::max(largest, w->maxLength);
    return roundToInt(largest);
}

QString CableWidget::fixtureName() const
{
    return m_item ? m_item->name : QString();
}

const DLFixture* CableWidget::fixtureRecord() const
{
    return qobject_cast<const DLFixture*>(m_item);
}

const QList<VxJumper*>* CableWidget::cableList() const
{
    const DLFixture* f = fixtureRecord();
    if (!f)
        return nullptr;
    return itemType() == ItemLeader ? &f->leaders : &f->jumpers;
}

const VxJumper* CableWidget::cableRecord() const
{
    const QList<VxJumper*>* list = cableList();
    if (!list)
        return nullptr;
    for (const VxJumper* c : *list)
        if (c->name == m_type)
            return c;
    return nullptr;
}

double CableWidget::resistancePerFoot() const
{
    const VxJumper* cable = cableRecord();
    if (!cable)
        return 0.0;
    if (isCustom()) {
        const VxWire* wire = cable->wireNamed(m_gauge);
        if (!wire)
            wire = cable->defaultWire();
        return wire ? wire->resistance : 0.0;
    }
    return cable->resistance;
}

EditorRule CableWidget::editorRule(int id) const
{
    const VxJumper* cable = cableRecord();
    switch (id) {
    case PropType: {
        QStringList names;
        if (const QList<VxJumper*>* list = cableList())
            for (const VxJumper* c : *list)
                names.append(c->name);
        return comboOf(names, m_type);
    }
    case PropGauge: {
        if (!cable || !cable->hasCustomWires)
            return comboOf({m_gauge}, m_gauge);
        QStringList gauges;
        for (const VxWire* w : cable->customWires)
            if (w->maxLength >= m_length)
                gauges.append(w->name);
        return comboOf(gauges, m_gauge);
    }
    case PropLength: {
        if (itemType() == ItemLeader) {
            int maximum = 999;
            if (cable) {
                maximum = roundToInt(cable->maxLeaderLength);
                // A custom leader's limit comes from its wires and is never 0.
                if (cable->hasCustomWires) {
                    const int wires = customLengthLimit(cable, m_gauge);
                    if (wires > 0)
                        maximum = wires;
                }
            }
            return spinOf(roundToInt(m_length), maximum);
        }
        EditorRule rule = spinOf(0, 999);
        if (!cable || !cable->hasCustomWires)
            return rule; // a fixed jumper's length is not edited
        rule.value = roundToInt(m_length);
        if (const VxWire* w = cable->wireNamed(m_gauge)) {
            const int maximum = roundToInt(w->maxLength);
            rule.maximum = maximum == 0 ? 175 : maximum;
        } else if (const int wires = customLengthLimit(cable, m_gauge); wires > 0) {
            rule.maximum = wires; // a gauge the cable does not list: its widest limit
        }
        return rule;
    }
    default:
        return EditorRule();
    }
}

bool CableWidget::applyEditorValue(int id, const QVariant& value)
{
    if (id != PropType)
        return CWidget::applyEditorValue(id, value);
    const QString type = value.toString();
    if (!propertyIds().contains(id) || type == m_type)
        return false;
    m_type = type;
    // The new type's defaults, as at creation, so the cable analyses as it will read back.
    if (const VxJumper* cable = cableRecord())
        applyCableDefaults(cable, true);
    emit valueChanged();
    return true;
}

LeaderWidget::LeaderWidget(const Database* db, DLFixture* fixture, const CableWidget* handed)
    : CableWidget(db, fixture, ItemLeader, 20.0, handed)
{
}

QList<int> LeaderWidget::propertyIds() const
{
    if (isCustom())
        return {PropName, PropType, PropGauge, PropLength};
    return {PropName, PropType, PropLength};
}

const QString& LeaderWidget::modeUnder(const CWidget* parent, const QString& parentMode) const
{
    if (parent && parent->itemType() == ItemReceiver)
        return constant(Mode::Dynaline);
    return CWidget::modeUnder(parent, parentMode);
}

JumperWidget::JumperWidget(const Database* db, DLFixture* fixture, const CableWidget* handed)
    : CableWidget(db, fixture, ItemJumper, 1.0, handed)
{
}

QList<int> JumperWidget::propertyIds() const
{
    if (isCustom())
        return {PropName, PropType, PropGauge, PropLength};
    return {PropName, PropType};
}

// =============================================================================================
// FixtureWidget

FixtureWidget::FixtureWidget(const Database* db, DLFixture* rec, int ordinal)
    : CWidget(db, rec, ItemFixture, ordinal)
{
}

DLFixture* FixtureWidget::record() const
{
    return qobject_cast<DLFixture*>(m_item);
}

const DLFixture* FixtureWidget::fixtureRecord() const
{
    return record();
}

QList<int> FixtureWidget::propertyIds() const
{
    return {PropName};
}

QVariant FixtureWidget::cellData(int column, int role) const
{
    QVariant base = CWidget::cellData(column, role);
    const CWidget* p = parentWidget();
    if (role == Qt::ToolTipRole && p && p->itemType() == ItemReceiver)
        return base.toString() + QStringLiteral(" mounted on Feedwise Receiver");
    return base;
}

const QString& FixtureWidget::modeUnder(const CWidget* parent, const QString& parentMode) const
{
    if (parent && parent->itemType() == ItemReceiver)
        return constant(Mode::Dynaline);
    return CWidget::modeUnder(parent, parentMode);
}

// =============================================================================================
// ReceiverWidget

ReceiverWidget::ReceiverWidget(const Database* db, DLReceiver* rec, int ordinal)
    : CWidget(db, rec, ItemReceiver, ordinal)
{
    if (ComponentLoading::active() || !db)
        return;
    for (const DLJunctionBox* box : db->junctionBoxes()) {
        if (box->receiverMountable) {
            m_junctionBox = box->name;
            break;
        }
    }
}

DLReceiver* ReceiverWidget::record() const
{
    return qobject_cast<DLReceiver*>(m_item);
}

const DLJunctionBox* ReceiverWidget::junctionBoxRecord() const
{
    return m_db ? m_db->junctionBoxNamed(m_junctionBox) : nullptr;
}

float ReceiverWidget::conductorVolume() const
{
    const auto* wire = qobject_cast<const BranchWireWidget*>(parentWidget());
    return wire ? conductorVolumeForGauge(wire->gauge()) : 2.25f;
}

int ReceiverWidget::capacityA() const
{
    const DLJunctionBox* box = junctionBoxRecord();
    return box ? std::max(0, box->capacityA({}, 1, conductorVolume(), 0.0f)) : 0;
}

int ReceiverWidget::capacityB() const
{
    const DLJunctionBox* box = junctionBoxRecord();
    return box ? std::max(0, box->capacityB({}, 1, conductorVolume(), 0.0f)) : 0;
}

bool ReceiverWidget::canTakeJunctionBox() const
{
    int boxes = 0;
    for (const CWidget* c : children())
        if (c->itemType() == ItemJunctionBox)
            ++boxes;
    return boxes < capacityA();
}

bool ReceiverWidget::canTakeFixtures() const
{
    int outputs = 0;
    for (const CWidget* c : children())
        if (c->itemType() == ItemFixture || c->itemType() == ItemLeader)
            ++outputs;
    return outputs < capacityB();
}

bool ReceiverWidget::fits(const DLJunctionBox* box) const
{
    if (!box)
        return false;
    const float volume = conductorVolume();
    const long long room =
        static_cast<long long>(box->capacityA({}, 1, volume, 0.0f)) + box->capacityB({}, 1, volume, 0.0f);
    return childCount() <= room;
}

QList<int> ReceiverWidget::propertyIds() const
{
    return {PropName, PropDynaLineLength, PropJunctionBox};
}

EditorRule ReceiverWidget::editorRule(int id) const
{
    if (id == PropJunctionBox) {
        EditorRule rule;
        QStringList choices;
        if (m_db) {
            for (const DLJunctionBox* box : m_db->junctionBoxes()) {
                if (box->receiverMountable && (childCount() == 0 || fits(box)))
                    choices.append(box->name);
                else
                    rule.debugLines.append(QStringLiteral("jbox too small or not compatible: ") + box->name);
            }
        }
        const QStringList notes = rule.debugLines;
        rule = comboOf(choices, m_junctionBox);
        rule.debugLines = notes;
        return rule;
    }
    if (id == PropDynaLineLength)
        return readOnlyOf(lengthText(dynaLineLength()));
    return EditorRule();
}

bool ReceiverWidget::applyEditorValue(int id, const QVariant& value)
{
    if (id == PropDynaLineLength)
        return false; // computed
    return CWidget::applyEditorValue(id, value);
}

QVariant ReceiverWidget::cellData(int column, int role) const
{
    QVariant base = CWidget::cellData(column, role);
    if (role != Qt::ToolTipRole)
        return base;
    return base.toString() + QStringLiteral("\nFixture Run Length: ") +
           QString::number(dynaLineLength(), 'g', 6) + QStringLiteral(" ft");
}

// =============================================================================================
// BranchWireWidget

BranchWireWidget::BranchWireWidget(const Database* db, const VxJumper* wire)
    : CWidget(db, const_cast<VxJumper*>(wire), ItemBranchWire, 0), m_wire(wire),
      m_inputMode(Modes::undefined())
{
    if (ComponentLoading::active() || !wire)
        return;
    if (const VxWire* w = wire->defaultWire())
        m_gauge = w->name;
    m_length = wire->defaultCustomLength > 0.0 ? wire->defaultCustomLength : 20.0;
}

double BranchWireWidget::resistancePerFoot() const
{
    if (!m_wire)
        return 0.0;
    if (m_wire->hasCustomWires) {
        const VxWire* w = m_wire->wireNamed(m_gauge);
        if (!w)
            w = m_wire->defaultWire();
        return w ? w->resistance : 0.0;
    }
    return m_wire->resistance;
}

bool BranchWireWidget::gaugeCompatible(const QString& g) const
{
    const VxWire* w = m_wire ? m_wire->wireNamed(g) : nullptr;
    return w && w->maxLength >= m_length;
}

QList<int> BranchWireWidget::propertyIds() const
{
    return {PropName, PropGauge, PropLength, PropInputMode, PropLocation};
}

QString BranchWireWidget::effectiveMode() const
{
    if (m_inputMode != Modes::undefined())
        return m_inputMode;
    const CWidget* p = parentWidget();
    if (!p)
        return Modes::undefined();
    // Resolved once from the parent, then kept.
    m_inputMode = modeUnder(p, p->effectiveMode());
    return m_inputMode;
}

const QString& BranchWireWidget::modeUnder(const CWidget* parent, const QString& parentMode) const
{
    if (m_inputMode != constant(Mode::Undefined))
        return m_inputMode;
    if (!parent)
        return constant(Mode::Undefined);
    return parent->itemType() == ItemReceiver ? constant(Mode::Dynaline) : parentMode;
}

const QString& BranchWireWidget::locationUnder(const QString& ownMode, const QString& parentLocation) const
{
    Q_UNUSED(parentLocation)
    return ownMode;
}

EditorRule BranchWireWidget::editorRule(int id) const
{
    switch (id) {
    case PropGauge: {
        QStringList gauges;
        if (m_wire)
            for (const VxWire* w : m_wire->customWires)
                if (w->maxLength >= m_length)
                    gauges.append(w->name);
        return comboOf(gauges, m_gauge);
    }
    case PropLength: {
        const QString mode = effectiveMode();
        int maximum = 999;
        if (mode == Modes::feedwise()) {
            maximum = static_cast<int>(Modes::feedwiseMaxLength(m_location));
        } else if (mode == Modes::dynaline()) {
            const VxWire* w = m_wire ? m_wire->wireNamed(m_gauge) : nullptr;
            maximum = w ? roundToInt(w->maxLength) : 175;
        }
        return spinOf(roundToInt(m_length), maximum);
    }
    case PropInputMode: {
        const CWidget* p = parentWidget();
        QStringList choices;
        if (p && p->itemType() == ItemReceiver) {
            if (gaugeCompatible(m_gauge))
                choices.append(Modes::dynaline());
            choices.append(Modes::feedwise());
        } else if (p) {
            choices.append(p->effectiveMode());
        }
        return comboOf(choices, effectiveMode());
    }
    case PropLocation:
        return comboOf(m_db ? m_db->locationNames() : QStringList(), m_location);
    default:
        return EditorRule();
    }
}

bool BranchWireWidget::applyEditorValue(int id, const QVariant& value)
{
    if (!CWidget::applyEditorValue(id, value))
        return false;
    if (id == PropLocation)
        emit locationChanged(m_location);
    return true;
}

// =============================================================================================
// JunctionBoxWidget

JunctionBoxWidget::JunctionBoxWidget(const Database* db, DLJunctionBox* rec)
    : CWidget(db, rec, ItemJunctionBox, 0)
{
    if (!ComponentLoading::active() && db && !db->junctionBoxes().isEmpty())
        m_type = db->junctionBoxes().first()->name;
}

DLJunctionBox* JunctionBoxWidget::record() const
{
    return qobject_cast<DLJunctionBox*>(m_item);
}

QList<int> JunctionBoxWidget::propertyIds() const
{
    return {PropName, PropOutputMode, PropType};
}

EditorRule JunctionBoxWidget::editorRule(int id) const
{
    if (id == PropType) {
        QStringList choices;
        if (m_db)
            for (const DLJunctionBox* box : m_db->junctionBoxes())
                if (!box->receiverOnly)
                    choices.append(box->name);
        return comboOf(choices, m_type);
    }
    if (id == PropOutputMode) {
        const QString mode = effectiveMode();
        return comboOf({mode}, mode);
    }
    return EditorRule();
}

bool JunctionBoxWidget::applyEditorValue(int id, const QVariant& value)
{
    if (id == PropOutputMode)
        return false; // inherited from the parent
    return CWidget::applyEditorValue(id, value);
}

// =============================================================================================
// Factory

CWidget* createComponent(const Database* db, int kind, const QString& name, int index)
{
    if (!db)
        return nullptr;
    switch (kind) {
    case ItemSupply: {
        DLPowerSupply* rec = db->supplyNamed(name);
        return rec ? new SupplyWidget(db, rec, index + 1) : nullptr;
    }
    case ItemLeader:
    case ItemFixture:
    case ItemJumper: {
        DLFixture* rec = db->fixtureNamed(name);
        if (!rec)
            return nullptr;
        if (kind == ItemFixture)
            return new FixtureWidget(db, rec, index + 1);
        if (kind == ItemLeader)
            return new LeaderWidget(db, rec);
        return new JumperWidget(db, rec);
    }
    case ItemReceiver:
        return new ReceiverWidget(db, db->receivers().isEmpty() ? nullptr : db->receivers().first(),
                                  index + 1);
    case ItemBranchWire:
        return new BranchWireWidget(db, db->firstBranchWire());
    case ItemJunctionBox:
        return new JunctionBoxWidget(db,
                                     db->junctionBoxes().isEmpty() ? nullptr : db->junctionBoxes().first());
    default:
        return nullptr;
    }
}
