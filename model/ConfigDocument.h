#pragma once

#include <QList>
#include <QModelIndex>
#include <QObject>
#include <QSet>
#include <QString>

class CWidget;
class CWidgetModel;
class Database;
class DLFixture;
class DLPowerSupply;
class QItemSelectionModel;

// The additions the current component allows: the enabled state of each add button and of
// Maximize. The jumper's state is named only where the rule sets it; elsewhere the Jumper button
// keeps the state it had.
struct Additions {
    enum Jumper { JumperUnchanged, JumperOff, JumperOn };
    bool fixture = false;
    bool leader = false;
    bool receiver = false;
    bool junctionBox = false;
    bool enabler = false;
    bool maximize = false;
    Jumper jumper = JumperUnchanged;

    bool operator==(const Additions& o) const
    {
        return fixture == o.fixture && leader == o.leader && receiver == o.receiver &&
               junctionBox == o.junctionBox && enabler == o.enabler && maximize == o.maximize &&
               jumper == o.jumper;
    }
};

// One configuration without any widget: the component tree (through its item model), the current
// component, the modified flag, the technology type and the last branch-wire location, with the
// insertions and deletions the canvas performs and the add flows of the main window's buttons.
// The canvas is a view over it; Maximize, the exports and the tests work on it directly.
class ConfigDocument : public QObject
{
    Q_OBJECT
public:
    explicit ConfigDocument(const Database* db, QObject* parent = nullptr);
    ~ConfigDocument() override;

    const Database* database() const { return m_db; }
    CWidgetModel* model() const { return m_model; }
    QItemSelectionModel* selectionModel() const { return m_selection; }

    CWidget* root() const; // the top-level component, null when the canvas is empty
    CWidget* current() const;
    QModelIndex currentIndex() const;
    QModelIndex indexOf(const CWidget* w) const;
    void setCurrentIndex(const QModelIndex& index); // emits currentChanged
    void setCurrent(const CWidget* w);

    int techType() const { return m_techType; }
    void setTechType(int t) { m_techType = t; }
    bool isModified() const { return m_modified; }
    void setModified(bool m);
    // The location most recently chosen on a branch wire; the catalog's first location until then.
    QString lastLocation() const;
    void setLastLocation(const QString& location) { m_lastLocation = location; }

    // Counts over the whole tree.
    int count(int kind) const;

    // Inserts w under the current component (the invisible root when none) by the child-order rule.
    // On success w becomes current and the tree is marked changed. When refused, w is deleted and
    // the index is invalid.
    QModelIndex insert(CWidget* w);
    // Makes w the tree's root component (project reading): inserted like insert().
    QModelIndex setRoot(CWidget* w);
    // Removes the current component with its subtree; its parent becomes current. A top-level
    // component resets the canvas. False when there is no current component.
    bool removeCurrent();
    // Empties the tree and the selection (no change signal).
    void clear();
    // Empties the tree, announces the change and marks the configuration modified.
    void reset();

    // Receivers one run may hold.
    static constexpr int MaxReceiversPerRun = 63;

    // What may be added below the current component, with chosen the fixture the fixture
    // selector names (its family 1 keeps fixtures off some places). The window maps it onto its
    // buttons after every change of the selection, the tree or a component.
    Additions allowedAdditions(const DLFixture* chosen) const;

    // The add buttons. Each returns the last component inserted, or null when it was refused:
    // everything but an enabler needs a selected component to hang below, and every component
    // needs its catalog record.
    CWidget* addSupply(DLPowerSupply* record);
    CWidget* addFixture(DLFixture* record);
    CWidget* addLeader(DLFixture* fixture);
    CWidget* addJumper(DLFixture* fixture);
    CWidget* addReceiver();
    CWidget* addJunctionBox();

    // Results of the last analysis that painting and Maximize read.
    bool passFlag() const { return m_pass; }
    void setPassFlag(bool pass) { m_pass = pass; }
    const QSet<const CWidget*>& flagged() const { return m_flagged; }
    void setFlagged(const QSet<const CWidget*>& f) { m_flagged = f; }
    // Components the canvas marks as over a limit: the flagged ones and the supplies and receivers
    // whose Feedwise wiring exceeds its length.
    const QSet<const CWidget*>& errorMarks() const { return m_errorMarks; }
    void setErrorMarks(const QSet<const CWidget*>& m) { m_errorMarks = m; }

signals:
    // The tree changed (insertion, deletion, reset): the analysis must run again.
    void changed();
    // A component's value was edited: repaint.
    void componentChanged();
    void currentChanged(const QModelIndex& index);
    void modifiedChanged(bool modified);

private slots:
    void onComponentValueChanged();

private:
    CWidget* addBranchWire(int spare, const QString& inputMode);
    void adopt(CWidget* w);

    const Database* m_db;
    CWidgetModel* m_model;
    QItemSelectionModel* m_selection;
    int m_techType = 1;
    bool m_modified = false;
    QString m_lastLocation;
    bool m_pass = true;
    QSet<const CWidget*> m_flagged;
    QSet<const CWidget*> m_errorMarks;
};
