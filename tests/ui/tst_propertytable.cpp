// The property table under the canvas: one row for the selected component, the columns of its
// properties, and editors built from the component's own rules.

#include "app/Runplan.h"
#include "catalog/Database.h"
#include "model/CWidget.h"
#include "model/CWidgetModel.h"
#include "model/ConfigDocument.h"
#include "model/view/CWidgetTableView.h"
#include "model/view/ComboBoxPropertyEditor.h"

#include <QFontMetrics>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QTextEdit>
#include <QtTest>

class TestPropertyTable : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void columnsAndRowFollowTheSelection();
    void editorsChangeOnlyWhatTheyMust();
    void rejectedBoxesLoggedOnce();

private:
    CWidgetTableView* table() const { return m_window->propertyTable(); }
    ConfigDocument* doc() const { return m_window->document(); }
    void click(const char* button)
    {
        QTest::mouseClick(m_window->findChild<QPushButton*>(button), Qt::LeftButton);
    }
    QList<int> visibleColumns() const
    {
        QList<int> shown;
        for (int c = 0; c < doc()->model()->columnCount(); ++c)
            if (!table()->isColumnHidden(c))
                shown << c;
        return shown;
    }
    // Opens the editor of one property of the current component as a press on its cell does.
    QWidget* openEditor(int column)
    {
        const QModelIndex index = doc()->currentIndex().siblingAtColumn(column);
        QTest::mousePress(table()->viewport(), Qt::LeftButton, {}, table()->visualRect(index).center());
        return editorWidget();
    }
    QWidget* editorWidget() const
    {
        const QList<QWidget*> editors =
            table()->viewport()->findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly);
        for (QWidget* w : editors)
            if (w->isVisible())
                return w;
        return nullptr;
    }
    void settle() // the view hears of a finished editor through a queued call
    {
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    int logLength() const { return m_window->findChild<QTextEdit*>("m_messageBox")->toPlainText().size(); }
    CWidget* addBranchWire()
    {
        // A junction box comes on its own branch wire; the wire stays when the box goes.
        click("m_DL_AddJunctionBox_Button");
        CWidget* wire = doc()->current()->parentWidget();
        m_window->DL_DeleteLast();
        return wire;
    }

    Runplan* m_window = nullptr;
};

void TestPropertyTable::initTestCase()
{
    QCoreApplication::setOrganizationName(QStringLiteral("Vorlux"));
    QCoreApplication::setApplicationName(QStringLiteral("Runplan"));
    QVERIFY(Database::instance()->isValid());
}

void TestPropertyTable::init()
{
    QSettings().clear();
    m_window = new Runplan;
    m_window->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_window));
}

void TestPropertyTable::cleanup()
{
    doc()->setModified(false);
    delete m_window;
    m_window = nullptr;
}

void TestPropertyTable::columnsAndRowFollowTheSelection()
{
    // The edit icon (from the program's resources) marks the editable columns only.
    QVERIFY(!doc()->model()->headerData(PropName, Qt::Horizontal, Qt::DecorationRole).isValid());
    QVERIFY(
        !doc()->model()->headerData(PropType, Qt::Horizontal, Qt::DecorationRole).value<QPixmap>().isNull());

    // A junction box holding a fixture and a leader: each shows alone, and the Name column fits
    // whichever is shown.
    click("m_DL_AddJunctionBox_Button");
    CWidget* box = doc()->current();
    click("m_DL_AddFixture_Button");
    CWidget* fixture = doc()->current();
    doc()->setCurrent(box);
    click("m_DL_AddLeader_Button");
    CWidget* leader = doc()->current();
    const QFontMetrics metrics(table()->font());
    const int longName = metrics.horizontalAdvance(fixture->name());
    QVERIFY(longName > 2 * metrics.horizontalAdvance(leader->name()));

    for (CWidget* shown : {fixture, leader, fixture}) {
        doc()->setCurrent(shown);
        const int row = box->indexOfChild(shown);
        QCOMPARE(table()->rootIndex(), doc()->indexOf(box));
        QVERIFY(!table()->isRowHidden(row) && table()->isRowHidden(1 - row));
        QCOMPARE(table()->shownComponent(), shown);
        QCOMPARE(table()->columnWidth(PropName) >= longName, shown == fixture);
    }

    // The enabler: name, output mode and its line-voltage length. A fixture: its name, not editable.
    m_window->on_m_DL_Reset_Button_clicked();
    QCOMPARE(visibleColumns(), (QList<int>{PropName, PropOutputMode, PropDynaLineLength}));
    click("m_DL_AddFixture_Button");
    QCOMPARE(visibleColumns(), QList<int>{PropName});
    QVERIFY(openEditor(PropName) == nullptr);

    // A jumper made custom gains its gauge and length.
    click("m_DL_AddJumper_Button");
    QCOMPARE(visibleColumns(), (QList<int>{PropName, PropType}));
    auto* combo = qobject_cast<ComboBoxPropertyEditor*>(openEditor(PropType));
    QVERIFY(combo);
    const int custom = combo->findText(QStringLiteral("Custom"), Qt::MatchContains);
    combo->setCurrentIndex(custom);
    settle();
    QCOMPARE(visibleColumns(), (QList<int>{PropName, PropType, PropGauge, PropLength}));

    m_window->on_m_DL_Reset_Button_clicked();
    addBranchWire();
    QCOMPARE(visibleColumns(), (QList<int>{PropName, PropGauge, PropLength, PropInputMode, PropLocation}));

    // Nothing selected, nothing shown.
    doc()->setCurrentIndex(QModelIndex());
    QCOMPARE(visibleColumns(), QList<int>());
    QCOMPARE(table()->shownComponent(), nullptr);
}

void TestPropertyTable::editorsChangeOnlyWhatTheyMust()
{
    // A mode the list does not offer (a file's enabler offers no "Feedwise") survives an editor
    // opened and left.
    auto* supply = static_cast<SupplyWidget*>(doc()->root());
    supply->setOrdinal(1);
    supply->setOutputMode(QStringLiteral("Feedwise"));
    auto* modes = qobject_cast<ComboBoxPropertyEditor*>(openEditor(PropOutputMode));
    QVERIFY(modes && modes->currentIndex() < 0);
    // The enabler's line-voltage length is a figure to read, not to edit.
    auto* line = qobject_cast<QLineEdit*>(openEditor(PropDynaLineLength));
    QVERIFY(line && line->isReadOnly());
    QCOMPARE(line->text(), QString::number(supply->dynaLineLength(), 'g', 6) + QStringLiteral(" ft"));
    settle();
    QCOMPARE(supply->outputMode(), QStringLiteral("Feedwise"));
    supply->setOrdinal(0);

    auto* branch = static_cast<BranchWireWidget*>(addBranchWire());
    const double length = branch->length();
    doc()->setModified(false);
    const int logBefore = logLength();

    // A length editor left with its value, and a location editor left by pressing elsewhere.
    auto* spin = qobject_cast<QSpinBox*>(openEditor(PropLength));
    QVERIFY(spin);
    spin->setFocus();
    QTest::keyClick(spin, Qt::Key_Return);
    settle();
    QVERIFY(qobject_cast<ComboBoxPropertyEditor*>(openEditor(PropLocation)));
    QVERIFY(qobject_cast<QSpinBox*>(openEditor(PropLength)));
    settle();
    // The catalog's locations in its file order, the first one chosen for a first wire; choosing
    // it again changes nothing and keeps the editor open.
    auto* combo = qobject_cast<ComboBoxPropertyEditor*>(openEditor(PropLocation));
    QVERIFY(combo);
    const QStringList locations = Database::instance()->locationNames();
    QStringList items;
    for (int i = 0; i < combo->count(); ++i)
        items << combo->itemText(i);
    QCOMPARE(items, locations);
    QCOMPARE(combo->currentText(), locations.first());
    combo->setCurrentIndex(combo->currentIndex());
    settle();
    QCOMPARE(editorWidget(), combo);
    QCOMPARE(branch->length(), length);
    QVERIFY(!doc()->isModified());
    QCOMPARE(logLength(), logBefore); // no analysis ran

    // Another entry is stored at once, closes the editor and runs the analysis again; the next
    // branch wire starts at the location chosen last.
    combo->setCurrentIndex(1);
    settle();
    QCOMPARE(branch->location(), locations.at(1));
    QVERIFY(editorWidget() == nullptr);
    QVERIFY(logLength() > logBefore);
    QVERIFY(doc()->isModified());
    QCOMPARE(doc()->lastLocation(), locations.at(1));

    // Typed lengths are clamped: a Feedwise branch wire away from "Above Ground" takes 1 to 294 ft.
    QCOMPARE(branch->locationText(), QStringLiteral("Feedwise"));
    branch->applyEditorValue(PropLocation, QStringLiteral("Plenum"));
    QList<double> stored;
    for (const char* typed : {"300", "5000", "0", "120"}) {
        auto* spin = qobject_cast<QSpinBox*>(openEditor(PropLength));
        QVERIFY(spin);
        QCOMPARE(spin->suffix(), QStringLiteral(" ft"));
        spin->setFocus();
        spin->selectAll();
        QTest::keyClicks(spin, QString::fromLatin1(typed));
        QTest::keyClick(spin, Qt::Key_Return);
        settle();
        QVERIFY(editorWidget() == nullptr);
        stored << branch->length();
    }
    QCOMPARE(stored, (QList<double>{294, 294, 1, 120}));
}

namespace
{
QStringList g_debugLines;
void recordDebug(QtMsgType type, const QMessageLogContext&, const QString& text)
{
    if (type == QtDebugMsg && text.startsWith(QLatin1String("jbox ")))
        g_debugLines << text;
}
} // namespace

void TestPropertyTable::rejectedBoxesLoggedOnce()
{
    QVERIFY(doc()->addReceiver());
    g_debugLines.clear();
    const QtMessageHandler previous = qInstallMessageHandler(recordDebug);
    QWidget* editor = openEditor(PropJunctionBox);
    qInstallMessageHandler(previous);
    QVERIFY(qobject_cast<ComboBoxPropertyEditor*>(editor));
    QVERIFY2(!g_debugLines.isEmpty(), "the catalog has boxes a receiver cannot carry");
    QCOMPARE(QSet<QString>(g_debugLines.begin(), g_debugLines.end()).size(), g_debugLines.size());
}

QTEST_MAIN(TestPropertyTable)
#include "tst_propertytable.moc"
