// The property table under the canvas: one row for the selected component, the columns of its
// properties, and editors built from the component's own rules.

#include "TestSupport.h"
#include "app/Runplan.h"
#include "catalog/Database.h"
#include "model/CWidget.h"
#include "model/CWidgetModel.h"
#include "model/ConfigDocument.h"
#include "model/view/CWidgetTableView.h"
#include "model/view/ComboBoxPropertyEditor.h"
#include "model/view/TableViewItemDelegate.h"

#include <QHeaderView>
#include <QLineEdit>
#include <QPixmap>
#include <QPushButton>
#include <QSettings>
#include <QSpinBox>
#include <QTest>
#include <QTextEdit>

class TestPropertyTable : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void columnsFollowTheSelectedComponent();
    void onlyTheSelectedRowShows();
    void headersAndTheNameColumn();
    void comboChoiceCommitsAtOnce();
    void lengthSpinTakesTheRulesLimits();
    void readOnlyLengthFigure();
    void customJumperGainsColumns();

private:
    CWidgetTableView* table() const { return m_window->propertyTable(); }
    ConfigDocument* doc() const { return m_window->document(); }
    CWidgetModel* model() const { return doc()->model(); }
    void click(const char* button)
    {
        QTest::mouseClick(m_window->findChild<QPushButton*>(button), Qt::LeftButton);
    }
    QList<int> visibleColumns() const
    {
        QList<int> shown;
        for (int c = 0; c < model()->columnCount(); ++c)
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
    void flushDeletes() { QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete); }
    int logLength() const { return m_window->findChild<QTextEdit*>("m_messageBox")->toPlainText().size(); }
    CWidget* addBranchWire()
    {
        // A junction box comes on its own branch wire; the wire stays when the box goes.
        click("m_DL_AddJunctionBox_Button");
        CWidget* box = doc()->current();
        CWidget* wire = box->parentWidget();
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

void TestPropertyTable::columnsFollowTheSelectedComponent()
{
    // The enabler: name, output mode and its line-voltage length.
    QCOMPARE(doc()->current()->itemType(), int(ItemSupply));
    QCOMPARE(visibleColumns(), (QList<int>{PropName, PropOutputMode, PropDynaLineLength}));

    click("m_DL_AddFixture_Button");
    QCOMPARE(visibleColumns(), QList<int>{PropName});

    m_window->on_m_DL_Reset_Button_clicked();
    CWidget* wire = addBranchWire();
    QCOMPARE(doc()->current(), wire);
    QCOMPARE(visibleColumns(), (QList<int>{PropName, PropGauge, PropLength, PropInputMode, PropLocation}));

    // Nothing selected, nothing shown.
    doc()->setCurrentIndex(QModelIndex());
    QCOMPARE(visibleColumns(), QList<int>());
    QCOMPARE(table()->shownComponent(), nullptr);
}

void TestPropertyTable::onlyTheSelectedRowShows()
{
    // A junction box with two fixtures: each shows alone.
    click("m_DL_AddJunctionBox_Button");
    CWidget* box = doc()->current();
    click("m_DL_AddFixture_Button");
    CWidget* first = doc()->current();
    doc()->setCurrent(box);
    click("m_DL_AddFixture_Button");
    CWidget* second = doc()->current();
    QCOMPARE(box->childCount(), 2);

    for (CWidget* shown : {first, second}) {
        doc()->setCurrent(shown);
        const int row = box->indexOfChild(shown);
        QCOMPARE(table()->rootIndex(), doc()->indexOf(box));
        QCOMPARE(table()->isRowHidden(row), false);
        QCOMPARE(table()->isRowHidden(1 - row), true);
        QCOMPARE(table()->shownComponent(), shown);
        QCOMPARE(table()
                     ->model()
                     ->data(table()->rootIndex().model()->index(row, 0, table()->rootIndex()))
                     .toString(),
                 shown->name());
    }
}

void TestPropertyTable::headersAndTheNameColumn()
{
    QVERIFY(!table()->horizontalHeader()->sectionsClickable());
    QVERIFY(!table()->verticalHeader()->sectionsClickable());
    QCOMPARE(model()->headerData(3, Qt::Horizontal).toString(), QStringLiteral("Length"));
    QVERIFY(!model()->headerData(0, Qt::Horizontal, Qt::DecorationRole).isValid());
    const QPixmap icon = model()->headerData(1, Qt::Horizontal, Qt::DecorationRole).value<QPixmap>();
    QVERIFY2(!icon.isNull(), "the edit icon comes from the program's resources");

    // The name cannot be edited.
    click("m_DL_AddFixture_Button");
    QVERIFY(openEditor(PropName) == nullptr);
    TableViewItemDelegate delegate;
    QVERIFY(delegate.createEditor(table()->viewport(), QStyleOptionViewItem(),
                                  doc()->currentIndex().siblingAtColumn(PropName)) == nullptr);
}

void TestPropertyTable::comboChoiceCommitsAtOnce()
{
    CWidget* wire = addBranchWire();
    auto* branch = static_cast<BranchWireWidget*>(wire);
    const EditorRule rule = wire->editorRule(PropLocation);
    QVERIFY2(rule.choices.size() > 1, "the catalog lists several locations");

    auto* combo = qobject_cast<ComboBoxPropertyEditor*>(openEditor(PropLocation));
    QVERIFY(combo);
    QStringList items;
    for (int i = 0; i < combo->count(); ++i)
        items << combo->itemText(i);
    QCOMPARE(items, rule.choices);
    QCOMPARE(combo->currentText(), branch->location());
    QVERIFY(doc()->isModified());
    doc()->setModified(false);

    // The entry already chosen changes nothing and keeps the editor open.
    combo->setCurrentIndex(combo->currentIndex());
    flushDeletes();
    QCOMPARE(editorWidget(), combo);

    // Another entry is stored at once, closes the editor and runs the analysis again.
    const QString before = branch->location();
    const int other = rule.currentIndex == 0 ? 1 : 0;
    const int logBefore = logLength();
    combo->setCurrentIndex(other);
    flushDeletes();
    QCOMPARE(branch->location(), rule.choices.at(other));
    QVERIFY(branch->location() != before);
    QVERIFY(editorWidget() == nullptr);
    QVERIFY(logLength() > logBefore);
    QVERIFY(doc()->isModified());
    // The next branch wire starts at the location chosen last.
    QCOMPARE(doc()->lastLocation(), rule.choices.at(other));
}

void TestPropertyTable::lengthSpinTakesTheRulesLimits()
{
    CWidget* wire = addBranchWire();
    auto* branch = static_cast<BranchWireWidget*>(wire);
    const EditorRule rule = wire->editorRule(PropLength);
    QCOMPARE(rule.kind, EditorRule::Spin);

    auto* spin = qobject_cast<QSpinBox*>(openEditor(PropLength));
    QVERIFY(spin);
    QCOMPARE(spin->suffix(), QStringLiteral(" ft"));
    QCOMPARE(spin->minimum(), rule.minimum);
    QCOMPARE(spin->maximum(), rule.maximum);
    QCOMPARE(spin->value(), qRound(branch->length()));

    // Typing past the limit is refused; a value past it is clamped before it reaches the wire.
    spin->setFocus();
    spin->selectAll();
    QTest::keyClicks(spin, QString::number(rule.maximum * 10));
    QVERIFY(spin->value() <= rule.maximum);
    spin->setValue(rule.maximum + 50);
    QCOMPARE(spin->value(), rule.maximum);
    // Return commits (the view hears of it through a queued call).
    QTest::keyClick(spin, Qt::Key_Return);
    QCoreApplication::processEvents();
    flushDeletes();
    QCOMPARE(branch->length(), double(rule.maximum));
    QVERIFY(editorWidget() == nullptr);
}

void TestPropertyTable::readOnlyLengthFigure()
{
    CWidget* supply = doc()->root();
    auto* line = qobject_cast<QLineEdit*>(openEditor(PropDynaLineLength));
    QVERIFY(line);
    QVERIFY(line->isReadOnly());
    QCOMPARE(line->text(), supply->editorRule(PropDynaLineLength).text);
    QVERIFY(line->text().endsWith(QStringLiteral(" ft")));
}

void TestPropertyTable::customJumperGainsColumns()
{
    click("m_DL_AddFixture_Button");
    click("m_DL_AddJumper_Button");
    CWidget* jumper = doc()->current();
    QCOMPARE(visibleColumns(), (QList<int>{PropName, PropType}));

    auto* combo = qobject_cast<ComboBoxPropertyEditor*>(openEditor(PropType));
    QVERIFY(combo);
    const int custom = combo->findText(QStringLiteral("Custom"), Qt::MatchContains);
    QVERIFY2(custom >= 0, "the fixture offers a custom jumper");
    combo->setCurrentIndex(custom);
    flushDeletes();
    QVERIFY(static_cast<CableWidget*>(jumper)->isCustom());
    QCOMPARE(visibleColumns(), (QList<int>{PropName, PropType, PropGauge, PropLength}));
}

QTEST_MAIN(TestPropertyTable)
#include "tst_propertytable.moc"
