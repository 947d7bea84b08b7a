#pragma once

#include <QDomDocument>
#include <QDomElement>
#include <QList>
#include <QObject>
#include <QRect>
#include <QString>
#include <QStringList>
#include <QVariant>

class Database;
class VxItem;
class VxJumper;
class DLFixture;
class DLPowerSupply;
class DLReceiver;
class DLJunctionBox;

// Kind of a placed component, as stored in project files.
enum CWidgetItemType {
    ItemSupply = 0,
    ItemLeader = 1,
    ItemFixture = 2,
    ItemJumper = 3,
    ItemReceiver = 4,
    ItemBranchWire = 5,
    ItemJunctionBox = 6,
    ItemAny = 7, // "any kind" where a kind is asked for
    ItemInvisibleRoot = -1
};

// Property of a component: the property-table column and the project-file attribute.
enum PropertyId {
    PropName = 0,
    PropType = 1,
    PropGauge = 2,
    PropLength = 3,
    PropJunctionBox = 4,
    PropOutputMode = 5,
    PropInputMode = 6,
    PropLocation = 7,
    PropDynaLineLength = 8,
    PropertyIdCount = 9
};

// The attribute / property name of an id; empty above 8.
QString propertyName(int id);

namespace Modes
{
inline QString feedwise()
{
    return QStringLiteral("Feedwise");
}
inline QString dynaline()
{
    return QStringLiteral("Dynaline");
}
inline QString lineVoltage()
{
    return QStringLiteral("Line Voltage");
}
inline QString undefined()
{
    return QStringLiteral("UNDEFINED");
}
inline QString aboveGround()
{
    return QStringLiteral("Above Ground");
}
// The longest Feedwise branch wire, in feet, in a location: above ground or any other.
inline double feedwiseMaxLength(const QString& location)
{
    return location == aboveGround() ? 427.0 : 294.0;
}
} // namespace Modes

// What an editor for one property offers: the allowed choices or the spin-box limits.
// The property table turns it into a combo box, a spin box or a read-only line edit.
struct EditorRule {
    enum Kind { None, Combo, Spin, ReadOnlyText };
    Kind kind = None;
    QStringList choices;   // combo, in order
    int currentIndex = -1; // combo: the entry equal to the current value, -1 when none
    int value = 0;         // spin
    int minimum = 1;       // spin
    int maximum = 999;     // spin
    QString suffix;        // spin: " ft"
    QString text;          // read-only text
    // Debug-log lines the editor writes once when it is filled (entries left out, and why).
    QStringList debugLines;

    // A typed length within the limits: above the maximum is the maximum, below the minimum the
    // minimum; digits are never dropped.
    int clamped(int typed) const { return typed > maximum ? maximum : (typed < minimum ? minimum : typed); }
};



// Loading flag: set while a component element of a project file is read, so creation defaults
// from the catalog are not applied (the file supplies every value).
namespace ComponentLoading
{
bool active();
void setActive(bool on);
} // namespace ComponentLoading

// A placed component of a run. Owns its children (also its QObject children).
class CWidget : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString name READ name)

public:
    CWidget(const Database* db, VxItem* item, int itemType, int ordinal = 0);
    ~CWidget() override;

    const Database* database() const { return m_db; }
    VxItem* catalogItem() const { return m_item; }
    int itemType() const { return m_itemType; }
    int ordinal() const { return m_ordinal; }
    void setOrdinal(int o) { m_ordinal = o; }

    bool isCable() const
    {
        return m_itemType == ItemLeader || m_itemType == ItemJumper || m_itemType == ItemBranchWire;
    }
    bool isInvisibleRoot() const { return m_itemType == ItemInvisibleRoot; }

    // Tree
    const QList<CWidget*>& children() const { return m_children; }
    int childCount() const { return m_children.size(); }
    CWidget* child(int row) const { return m_children.value(row); }
    int indexOfChild(const CWidget* c) const { return m_children.indexOf(const_cast<CWidget*>(c)); }
    // The parent component; null for a top-level component (whose parent is the model's invisible root).
    CWidget* parentWidget() const;
    // The tree parent including the invisible root.
    CWidget* treeParent() const { return m_parent; }
    // Where the child-order rule puts child under this parent (as if already attached).
    int insertPosition(CWidget* child);
    // Inserts by the child-order rule and takes ownership; returns the row.
    int insertChild(CWidget* child);
    void insertChildAt(int row, CWidget* child);
    // Detaches and returns the child at row (the caller owns it).
    CWidget* takeChild(int row);
    int
    countInSubtree(int kind) const; // components of a kind (ItemAny: all) in this subtree, itself included

    // Properties
    virtual QString name() const;
    virtual QString displayName() const;
    virtual QList<int> propertyIds() const;
    virtual EditorRule editorRule(int id) const;
    // Stores an edited value and emits valueChanged; returns false, emitting nothing, when the
    // value is the one already held (ids the kind does not show are ignored).
    virtual bool applyEditorValue(int id, const QVariant& value);
    QDomElement saveToXml(QDomDocument& doc) const;
    static bool isWidgetElement(const QDomElement& element);
    virtual int maxChildren() const;
    virtual int propertyCount() const;
    virtual QVariant cellData(int column, int role) const;
    virtual QRect itemRect() const;
    virtual QString effectiveMode() const;
    // The mode rule of this kind, one step down the tree: the effective mode when the parent
    // component is parent (null: none) and its mode is parentMode. effectiveMode() walks up
    // through it; the analysis walks down through it. The result refers to parentMode, to this
    // component or to a constant, so a walk down the tree copies no text.
    virtual const QString& modeUnder(const CWidget* parent, const QString& parentMode) const;
    // Likewise the location rule: the location text given this component's own mode and the
    // parent's location text (empty without a parent).
    virtual const QString& locationUnder(const QString& ownMode, const QString& parentLocation) const;
    // The mode-side location ("Feedwise", "Dynaline", "Line Voltage", ...) that rules, colours and
    // checks compare with: a supply's explicit location or output mode, a branch wire's mode, and
    // the parent's for everything else.
    virtual QString locationText() const;
    // The fixture record this component belongs to (leaders, jumpers) or is (fixtures).
    virtual const DLFixture* fixtureRecord() const { return nullptr; }

    // The Dynaline length figure of a supply or receiver, filled in by the analysis.
    double dynaLineLength() const { return m_dynaLineLength; }
    void setDynaLineLength(double v) { m_dynaLineLength = v; }

    bool hasAncestorOfType(int kind) const;
    CWidget* nearestAncestorOfType(int kind) const;

signals:
    void valueChanged();

public slots:
    void jumperChange();
    void jumperUpdate();

protected:
    void emitValueChanged() { emit valueChanged(); }
    QString propertyText(int id, int role) const;

    const Database* m_db = nullptr;
    VxItem* m_item = nullptr;
    int m_ordinal = 0;
    int m_itemType = ItemInvisibleRoot;
    double m_dynaLineLength = 0.0;

private:
    QList<CWidget*> m_children;
    CWidget* m_parent = nullptr;
};

class SupplyWidget : public CWidget
{
    Q_OBJECT
    Q_PROPERTY(QString outputMode READ outputMode WRITE setOutputMode)
    Q_PROPERTY(double dynaLineLength READ dynaLineLength WRITE setDynaLineLength)
public:
    SupplyWidget(const Database* db, DLPowerSupply* record, int ordinal = 0);
    DLPowerSupply* record() const;

    QString outputMode() const { return m_outputMode; }
    void setOutputMode(const QString& m) { m_outputMode = m; }
    // An enabler placed while another supply exists is on the Dynaline side; empty otherwise.
    QString explicitLocation() const { return m_location; }
    void setExplicitLocation(const QString& l) { m_location = l; }

    QList<int> propertyIds() const override;
    EditorRule editorRule(int id) const override;
    bool applyEditorValue(int id, const QVariant& value) override;
    QVariant cellData(int column, int role) const override;
    QRect itemRect() const override { return QRect(0, 0, 220, 20); }
    QString effectiveMode() const override { return m_outputMode; }
    const QString& modeUnder(const CWidget* parent, const QString& parentMode) const override;
    const QString& locationUnder(const QString& ownMode, const QString& parentLocation) const override;
    QString locationText() const override;

private:
    QString m_outputMode;
    QString m_location;
};

// Leaders and jumpers: a cable that belongs to a fixture.
class CableWidget : public CWidget
{
    Q_OBJECT
    Q_PROPERTY(QString type READ type WRITE setType)
    Q_PROPERTY(QString gauge READ gauge WRITE setGauge)
    Q_PROPERTY(double length READ length WRITE setLength)
    Q_PROPERTY(QString fixtureName READ fixtureName)
public:
    CableWidget(const Database* db, DLFixture* fixture, int itemType, double defaultLength,
                const CableWidget* handed);

    QString type() const { return m_type; }
    void setType(const QString& t);
    QString gauge() const { return m_gauge; }
    void setGauge(const QString& g) { m_gauge = g; }
    double length() const { return m_length; }
    void setLength(double l);
    QString fixtureName() const;
    bool isCustom() const { return m_type.contains(QLatin1String("Custom")); }

    const DLFixture* fixtureRecord() const override;
    // The cable record among the fixture's leaders (leader) or jumpers (jumper) named by type.
    const VxJumper* cableRecord() const;
    const QList<VxJumper*>* cableList() const;
    // Resistance per foot: the custom wire's for a custom cable (by gauge, else the default wire).
    double resistancePerFoot() const;

    EditorRule editorRule(int id) const override;
    // A Type change applies the new type's defaults as creation does.
    bool applyEditorValue(int id, const QVariant& value) override;
    // The length limit of a custom cable for a gauge: that wire's maximum when the cable lists the
    // gauge with a limit, else the largest maximum among its wires (0 when none has one).
    static int customLengthLimit(const VxJumper* cable, const QString& gauge);

protected:
    // Takes cable's defaults: a fixed cable its own length and no gauge; a custom one keeps gauge
    // and length when the gauge is one of its wires and the length fits, else its default wire and
    // default custom length.
    void applyCableDefaults(const VxJumper* cable, bool keepFitting);

    QString m_type;
    QString m_gauge;
    double m_length = 0.0;
};

class LeaderWidget : public CableWidget
{
    Q_OBJECT
public:
    LeaderWidget(const Database* db, DLFixture* fixture, const CableWidget* handed = nullptr);
    QString displayName() const override { return QStringLiteral("Leader"); }
    QList<int> propertyIds() const override;
    int propertyCount() const override { return propertyIds().size(); }
    const QString& modeUnder(const CWidget* parent, const QString& parentMode) const override;
};

class JumperWidget : public CableWidget
{
    Q_OBJECT
public:
    JumperWidget(const Database* db, DLFixture* fixture, const CableWidget* handed = nullptr);
    QString displayName() const override { return QStringLiteral("Jumper"); }
    QList<int> propertyIds() const override;
    int propertyCount() const override { return isCustom() ? 4 : 2; }
    QRect itemRect() const override { return QRect(0, 0, 150, 20); }
};

class FixtureWidget : public CWidget
{
    Q_OBJECT
public:
    FixtureWidget(const Database* db, DLFixture* record, int ordinal = 0);
    DLFixture* record() const;
    const DLFixture* fixtureRecord() const override;
    int childCapacity() const { return m_capacity; }
    void setChildCapacity(int c) { m_capacity = c; }

    QList<int> propertyIds() const override;
    int maxChildren() const override { return m_capacity; }
    QVariant cellData(int column, int role) const override;
    const QString& modeUnder(const CWidget* parent, const QString& parentMode) const override;

private:
    int m_capacity = 1;
};

class ReceiverWidget : public CWidget
{
    Q_OBJECT
    Q_PROPERTY(QString junctionBox READ junctionBox WRITE setJunctionBox)
    Q_PROPERTY(double dynaLineLength READ dynaLineLength WRITE setDynaLineLength)
public:
    ReceiverWidget(const Database* db, DLReceiver* record, int ordinal = 0);
    DLReceiver* record() const;
    QString junctionBox() const { return m_junctionBox; }
    void setJunctionBox(const QString& jb) { m_junctionBox = jb; }
    const DLJunctionBox* junctionBoxRecord() const;

    // Conductor volume of the branch wire above (2.25 when the parent is not a branch wire).
    float conductorVolume() const;
    int capacityA() const;           // junction boxes it can take
    int capacityB() const;           // fixtures and leaders it can take
    bool canTakeJunctionBox() const; // test A
    bool canTakeFixtures() const;    // test B
    // Whether the box could hold this receiver's present outputs.
    bool fits(const DLJunctionBox* box) const;

    QList<int> propertyIds() const override;
    EditorRule editorRule(int id) const override;
    bool applyEditorValue(int id, const QVariant& value) override;
    int maxChildren() const override { return capacityA() + capacityB(); }
    QVariant cellData(int column, int role) const override;

private:
    QString m_junctionBox;
};

class BranchWireWidget : public CWidget
{
    Q_OBJECT
    Q_PROPERTY(QString gauge READ gauge WRITE setGauge)
    Q_PROPERTY(double length READ length WRITE setLength)
    Q_PROPERTY(QString inputMode READ inputMode WRITE setInputMode)
    Q_PROPERTY(QString location READ location WRITE setLocation)
public:
    BranchWireWidget(const Database* db, const VxJumper* wire);
    const VxJumper* wireRecord() const { return m_wire; }

    QString gauge() const { return m_gauge; }
    void setGauge(const QString& g) { m_gauge = g; }
    double length() const { return m_length; }
    void setLength(double l) { m_length = l; }
    QString inputMode() const { return m_inputMode; }
    void setInputMode(const QString& m) { m_inputMode = m; }
    // Physical installation location ("Above Ground", ...).
    QString location() const { return m_location; }
    void setLocation(const QString& l) { m_location = l; }
    int spare() const { return m_spare; }
    void setSpare(int s) { m_spare = s; }
    double resistancePerFoot() const;
    // Whether a gauge's length limit allows the wire's present length.
    bool gaugeCompatible(const QString& gauge) const;

    QString displayName() const override { return QStringLiteral("Branch Wire"); }
    QList<int> propertyIds() const override;
    EditorRule editorRule(int id) const override;
    bool applyEditorValue(int id, const QVariant& value) override;
    QString effectiveMode() const override;
    const QString& modeUnder(const CWidget* parent, const QString& parentMode) const override;
    const QString& locationUnder(const QString& ownMode, const QString& parentLocation) const override;
    QString locationText() const override { return effectiveMode(); }

signals:
    void locationChanged(const QString& location);

private:
    const VxJumper* m_wire = nullptr;
    QString m_gauge;
    double m_length = 20.0;
    mutable QString m_inputMode;
    QString m_location;
    int m_spare = 4;
};

class JunctionBoxWidget : public CWidget
{
    Q_OBJECT
    Q_PROPERTY(QString outputMode READ outputMode)
    Q_PROPERTY(QString type READ type WRITE setType)
public:
    JunctionBoxWidget(const Database* db, DLJunctionBox* record);
    DLJunctionBox* record() const;
    QString type() const { return m_type; }
    void setType(const QString& t) { m_type = t; }
    QString outputMode() const { return effectiveMode(); }
    bool canFeedSupply() const { return childCount() < 6; }   // test S
    bool canFeedFixtures() const { return childCount() < 6; } // test X

    QString displayName() const override { return QStringLiteral("Junction Box"); }
    QList<int> propertyIds() const override;
    EditorRule editorRule(int id) const override;
    bool applyEditorValue(int id, const QVariant& value) override;
    int maxChildren() const override { return 6; }

private:
    QString m_type;
};

// Conductor volume (cubic inches) of a wire gauge; 2.25 when the gauge is unknown.
float conductorVolumeForGauge(const QString& gauge);

// The factory: a component of a kind made from the catalog, or null (unknown kind or name).
CWidget* createComponent(const Database* db, int kind, const QString& name, int index);
