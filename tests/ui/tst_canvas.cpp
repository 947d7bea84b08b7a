// The canvas: placement, connectors and boxes checked on rendered pixels, mouse and keys,
// deletion, scrolling, the line key and printing.
#include "TestSupport.h"
#include "canvas/CFrame.h"
#include "canvas/CFrameItemDelegate.h"
#include "catalog/DLRecords.h"
#include "catalog/Database.h"
#include "catalog/Reporter.h"
#include "model/CWidget.h"
#include "model/ConfigDocument.h"

#include <QApplication>
#include <QFile>
#include <QLabel>
#include <QMenu>
#include <QPainter>
#include <QPrinter>
#include <QRegularExpression>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

namespace
{

const QColor Background(240, 240, 240);
const QColor Red(255, 0, 0);
const QColor Orange(255, 128, 0);
const QColor LightBlue(140, 190, 232);

bool similar(QRgb pixel, const QColor& c, int tolerance = 12)
{
    return qAbs(qRed(pixel) - c.red()) <= tolerance && qAbs(qGreen(pixel) - c.green()) <= tolerance &&
           qAbs(qBlue(pixel) - c.blue()) <= tolerance;
}

// Whether some pixel within radius of p has (nearly) the colour c: connectors are antialiased.
bool colourNear(const QImage& img, QPoint p, const QColor& c, int radius = 1)
{
    for (int dy = -radius; dy <= radius; ++dy)
        for (int dx = -radius; dx <= radius; ++dx) {
            const QPoint q = p + QPoint(dx, dy);
            if (img.valid(q) && similar(img.pixel(q), c))
                return true;
        }
    return false;
}

QString describe(const QImage& img, QPoint p)
{
    return QColor(img.pixel(p)).name() + QStringLiteral(" at %1,%2").arg(p.x()).arg(p.y());
}

// One configuration shown on a canvas.
struct Canvas {
    explicit Canvas(const Database* db, QSize size = QSize(1600, 500)) : doc(db)
    {
        frame.resize(size);
        frame.setDocument(&doc);
        frame.show();
    }
    // The paint pass into an image, without zoom.
    QImage render(QSize size = QSize(1600, 500))
    {
        QImage img(size, QImage::Format_ARGB32);
        img.fill(Background);
        QPainter painter(&img);
        painter.setRenderHint(QPainter::Antialiasing);
        frame.paintTree(painter);
        return img;
    }
    CFrameItemDelegate* delegate() const { return qobject_cast<CFrameItemDelegate*>(frame.itemDelegate()); }

    ConfigDocument doc;
    CFrame frame;
};

} // namespace

class TstCanvas : public QObject
{
    Q_OBJECT

    Database m_db;
    DLPowerSupply* m_feeder = nullptr;      // output mode "Dynaline"
    DLPowerSupply* m_lineVoltage = nullptr; // output mode "Line Voltage"
    DLFixture* m_fixture = nullptr;

private slots:
    void initTestCase();
    void placement();
    void connectorColours();
    void lineVoltageSeenLaterInPass();
    void boxLook();
    void labelsAndNumbering();
    void zoomAndMouse();
    void keys();
    void deletion();
    void slotsAndSignals();
    void scrollingAndLineKey();
    void lineKeyForm();
    void printing();
};

void TstCanvas::initTestCase()
{
    Q_INIT_RESOURCE(runplan);
    RecordingReporter reporter;
    QVERIFY(m_db.loadFile(sampleCatalogPath(), &reporter));
    m_feeder = m_db.supplyNamed(QStringLiteral("Signal Feeder Pro"));
    m_lineVoltage = m_db.supplyNamed(QStringLiteral("Line Voltage"));
    m_fixture = m_db.fixtureNamed(QStringLiteral("Stylebar Tunable Dynaline 1ft"));
    QVERIFY(m_feeder && m_lineVoltage && m_fixture);
}

void TstCanvas::placement()
{
    {
        // A single supply sits at (10, 10) and has no connector.
        Canvas c(&m_db);
        CWidget* root = c.doc.addSupply(m_feeder);
        QCOMPARE(c.frame.itemRectOf(root), QRect(10, 10, 220, 20));
        const QImage img = c.render();
        QVERIFY2(similar(img.pixel(10, 20), QColor(64, 64, 64)), qPrintable(describe(img, {10, 20})));
        QVERIFY(similar(img.pixel(6, 20), Background));
        for (int y = 0; y < img.height(); ++y)
            for (int x = 0; x < img.width(); ++x)
                if (x > 233 || y > 33)
                    QVERIFY2(img.pixel(x, y) == Background.rgb(), qPrintable(describe(img, {x, y})));
    }

    Canvas c(&m_db);
    CWidget* root = c.doc.addSupply(m_feeder);
    CWidget* box = c.doc.addJunctionBox(); // a Dynaline branch wire, then the box
    CWidget* wire = box->parentWidget();
    CWidget* f1 = c.doc.addFixture(m_fixture);
    CWidget* f2 = c.doc.addFixture(m_fixture); // chained below the first
    c.doc.setCurrent(box);
    CWidget* leader = c.doc.addLeader(m_fixture);
    CWidget* f3 = c.doc.addFixture(m_fixture);
    c.doc.setCurrent(box);
    CWidget* receiver = c.doc.addReceiver();
    CWidget* onReceiver = c.doc.addFixture(m_fixture);
    QVERIFY(root && wire && f1 && f2 && leader && f3 && receiver && onReceiver);

    // A chain stays in one column; a cable sits 240 to the right, centred on the gap it bridges.
    QCOMPARE(c.frame.itemRectOf(wire), QRect(250, 24, 100, 20));
    QCOMPARE(c.frame.itemRectOf(box), QRect(10, 38, 100, 20));
    QCOMPARE(c.frame.itemRectOf(f1), QRect(10, 66, 100, 20));
    QCOMPARE(c.frame.itemRectOf(f2), QRect(10, 94, 100, 20));
    // The second branch opens one column right of the first branch's last leaf.
    QCOMPARE(c.frame.itemRectOf(leader), QRect(660, 52, 100, 20));
    QCOMPARE(c.frame.itemRectOf(f3), QRect(420, 66, 100, 20));
    // The receiver's branch is the third column; its fixture is 8 higher than one below a box.
    QCOMPARE(c.frame.itemRectOf(receiver), QRect(830, 66, 100, 20));
    QCOMPARE(c.frame.itemRectOf(onReceiver), QRect(830, 86, 100, 20));
    QCOMPARE(c.frame.itemRectOf(f2).y() - c.frame.itemRectOf(onReceiver).y(), 8);

    // The boxes are drawn where they are placed: their left border, and nothing just left of it.
    const QImage img = c.render();
    const struct {
        QPoint border;
        QColor colour;
        QPoint outside;
    } borders[] = {
        {{10, 76}, QColor(0, 0, 128), {6, 76}},     {{10, 104}, QColor(0, 0, 128), {6, 104}},
        {{420, 76}, QColor(0, 0, 128), {416, 76}},  {{830, 76}, QColor(0, 64, 0), {826, 76}},
        {{830, 96}, QColor(0, 0, 255), {826, 96}},  {{10, 48}, QColor(143, 69, 0), {6, 48}},
        {{350, 34}, QColor(143, 69, 0), {354, 34}},
    };
    for (const auto& b : borders) {
        QVERIFY2(similar(img.pixel(b.border), b.colour), qPrintable(describe(img, b.border)));
        QVERIFY2(similar(img.pixel(b.outside), Background), qPrintable(describe(img, b.outside)));
    }
}

void TstCanvas::connectorColours()
{
    // Supply, Dynaline wire, junction box; below the box a fixture, a leader and a receiver's
    // Feedwise wire, so the box's connectors to the leader and to that wire run side by side.
    auto build = [this](Canvas& c, DLPowerSupply* supply) {
        c.doc.addSupply(supply);
        CWidget* box = c.doc.addJunctionBox();
        QVERIFY(c.doc.addFixture(m_fixture));
        c.doc.setCurrent(box);
        QVERIFY(c.doc.addLeader(m_fixture));
        c.doc.setCurrent(box);
        CWidget* receiver = c.doc.addReceiver();
        QVERIFY(receiver);
        QCOMPARE(c.frame.itemRectOf(receiver), QRect(830, 66, 100, 20));
    };
    {
        Canvas c(&m_db);
        build(c, m_feeder);
        const QImage img = c.render();
        // Dynaline side: supply to its branch wire, branch wire back to the box.
        QVERIFY2(colourNear(img, {240, 28}, Orange), qPrintable(describe(img, {240, 28})));
        QVERIFY2(colourNear(img, {180, 42}, Orange), qPrintable(describe(img, {180, 42})));
        // Feedwise side: the receiver's wire down to the receiver.
        QVERIFY2(colourNear(img, {1000, 68}, Red), qPrintable(describe(img, {1000, 68})));
        // Along the box's centre line (48) the Feedwise line lies one above, the Dynaline one below.
        for (int y : {46, 47})
            QVERIFY2(similar(img.pixel(300, y), Red), qPrintable(describe(img, {300, y})));
        for (int y : {48, 49})
            QVERIFY2(similar(img.pixel(300, y), Orange), qPrintable(describe(img, {300, y})));
        for (int y : {45, 50})
            QVERIFY2(similar(img.pixel(300, y), Background), qPrintable(describe(img, {300, y})));
        QVERIFY(!colourNear(img, {240, 28}, LightBlue));
    }
    {
        // A run fed from the line-voltage side draws its non-Feedwise wiring light blue.
        Canvas c(&m_db);
        build(c, m_lineVoltage);
        QCOMPARE(c.doc.root()->locationText(), QStringLiteral("Line Voltage"));
        const QImage img = c.render();
        QVERIFY2(colourNear(img, {240, 28}, LightBlue), qPrintable(describe(img, {240, 28})));
        QVERIFY2(colourNear(img, {180, 42}, LightBlue), qPrintable(describe(img, {180, 42})));
        QVERIFY2(similar(img.pixel(300, 49), LightBlue), qPrintable(describe(img, {300, 49})));
        QVERIFY2(similar(img.pixel(300, 47), Red), qPrintable(describe(img, {300, 47})));
        QVERIFY2(colourNear(img, {1000, 68}, Red), qPrintable(describe(img, {1000, 68})));
        QVERIFY(!colourNear(img, {240, 28}, Orange));
    }
}

void TstCanvas::lineVoltageSeenLaterInPass()
{
    // A second supply on the line-voltage side turns every connector painted after its own blue;
    // those painted before it keep the Dynaline colour.
    Canvas c(&m_db);
    c.doc.addSupply(m_feeder);
    CWidget* box = c.doc.addJunctionBox();
    CWidget* fixture = c.doc.addFixture(m_fixture); // painted first among the box's children
    c.doc.setCurrent(box);
    auto* second = qobject_cast<SupplyWidget*>(c.doc.addSupply(m_lineVoltage));
    QVERIFY(fixture && second);
    second->setExplicitLocation(QString());
    QCOMPARE(second->locationText(), QStringLiteral("Line Voltage"));
    QCOMPARE(c.frame.itemRectOf(second), QRect(420, 66, 220, 20));

    const QImage img = c.render();
    // Box to fixture: the bend right of the two boxes, painted before the second supply.
    QVERIFY2(colourNear(img, {129, 63}, Orange), qPrintable(describe(img, {129, 63})));
    // The second supply's own connector is red, and so is its Feedwise branch.
    QVERIFY2(colourNear(img, {650, 70}, Red), qPrintable(describe(img, {650, 70})));
    QVERIFY2(colourNear(img, {300, 47}, Red), qPrintable(describe(img, {300, 47})));
    // Wire to box and supply to wire are painted last, after the flag was set.
    QVERIFY2(colourNear(img, {180, 42}, LightBlue), qPrintable(describe(img, {180, 42})));
    QVERIFY2(colourNear(img, {240, 28}, LightBlue), qPrintable(describe(img, {240, 28})));

    // The flag does not carry over into the next pass.
    c.doc.setCurrent(second->parentWidget());
    QVERIFY(c.doc.removeCurrent());
    const QImage after = c.render();
    QVERIFY2(colourNear(after, {240, 28}, Orange), qPrintable(describe(after, {240, 28})));
}

void TstCanvas::boxLook()
{
    Canvas c(&m_db);
    CWidget* root = c.doc.addSupply(m_feeder);
    CWidget* box = c.doc.addJunctionBox();
    c.doc.setCurrent(box);
    CWidget* receiver = c.doc.addReceiver();
    CWidget* fixture = c.doc.addFixture(m_fixture); // (10, 86), current
    QCOMPARE(c.frame.itemRectOf(fixture), QRect(10, 86, 100, 20));

    // Error marks: supplies and receivers the analysis marked get a red dot; fixtures never do.
    c.doc.setErrorMarks({root, receiver, fixture});
    QImage img = c.render();
    QVERIFY2(similar(img.pixel(20, 20), Red), qPrintable(describe(img, {20, 20})));
    QVERIFY2(similar(img.pixel(20, 76), Red), qPrintable(describe(img, {20, 76})));
    QVERIFY2(!colourNear(img, {20, 96}, Red, 3), qPrintable(describe(img, {20, 96})));
    c.doc.setErrorMarks({});
    img = c.render();
    QVERIFY(!colourNear(img, {20, 20}, Red, 3));
    QVERIFY(!colourNear(img, {20, 76}, Red, 3));

    // The selected fixture is filled: light at the top, its fill colour from half its height down.
    QVERIFY2(similar(img.pixel(13, 101), QColor(220, 220, 255), 3), qPrintable(describe(img, {13, 101})));
    QVERIFY2(qRed(img.pixel(13, 89)) > 235, qPrintable(describe(img, {13, 89})));
    QVERIFY2(similar(img.pixel(10, 96), QColor(0, 0, 255)), qPrintable(describe(img, {10, 96})));
    // An unselected box is not filled.
    QVERIFY2(similar(img.pixel(13, 81), Background, 3), qPrintable(describe(img, {13, 81})));

    c.doc.setCurrent(receiver);
    img = c.render();
    QVERIFY2(similar(img.pixel(13, 101), Background, 3), qPrintable(describe(img, {13, 101})));
    QVERIFY2(similar(img.pixel(10, 96), QColor(0, 0, 128)), qPrintable(describe(img, {10, 96})));
    QVERIFY2(similar(img.pixel(10, 76), QColor(0, 128, 0)), qPrintable(describe(img, {10, 76})));

    // Font: a long label shrinks to fit its box, a short one stays at 8 points.
    const QString longLabel = QStringLiteral("1: Stylebar Tint (RGBA/RGBW) Dynaline 4ft");
    const QFont shrunk = CFrameItemDelegate::labelFont(QFont(), longLabel, QSizeF(100, 20), &img);
    QVERIFY(shrunk.pointSizeF() < 8.0);
    QVERIFY(QFontMetricsF(shrunk, &img).horizontalAdvance(longLabel) <= 100.0);
    QCOMPARE(CFrameItemDelegate::labelFont(QFont(), QStringLiteral("Junction Box"), QSizeF(100, 20), &img)
                 .pointSizeF(),
             8.0);
    QCOMPARE(CFrameItemDelegate::labelFont(QFont(), QStringLiteral("x"), QSizeF(400, 80), &img).pointSizeF(),
             8.0);
}

void TstCanvas::labelsAndNumbering()
{
    Canvas c(&m_db);
    CWidget* root = c.doc.addSupply(m_feeder);
    CWidget* box = c.doc.addJunctionBox();
    CWidget* wire = box->parentWidget();
    CWidget* f1 = c.doc.addFixture(m_fixture);
    CWidget* jumper = c.doc.addJumper(m_fixture);
    CWidget* f2 = c.doc.addFixture(m_fixture);
    c.doc.setCurrent(box);
    auto* leader = qobject_cast<LeaderWidget*>(c.doc.addLeader(m_fixture));
    CWidget* f3 = c.doc.addFixture(m_fixture);
    c.doc.setCurrent(box);
    CWidget* receiver = c.doc.addReceiver();
    auto* feedwiseWire = qobject_cast<BranchWireWidget*>(receiver->parentWidget());
    CWidget* leaderOnReceiver = c.doc.addLeader(m_fixture);
    QVERIFY(f1 && jumper && f2 && leader && f3 && feedwiseWire && leaderOnReceiver);

    // Fixtures are numbered depth first, children in row order.
    QCOMPARE(c.frame.numberOf(f1, ItemFixture), 0);
    QCOMPARE(c.frame.numberOf(f2, ItemFixture), 1);
    QCOMPARE(c.frame.numberOf(f3, ItemFixture), 2);
    QCOMPARE(c.frame.numberOf(f3, ItemAny), 7); // root, wire, box, f1, jumper, f2, leader, f3
    QCOMPARE(c.frame.numberOf(f1, ItemReceiver), -1);

    CFrameItemDelegate* d = c.delegate();
    QVERIFY(d);
    d->resetCounters();
    d->countComponent(root);
    d->countComponent(receiver);
    const QString fixtureName = m_fixture->name;
    QCOMPARE(d->styleFor(f1, false).label, QStringLiteral("1: ") + fixtureName);
    QCOMPARE(d->styleFor(f3, false).label, QStringLiteral("3: ") + fixtureName);
    QCOMPARE(d->styleFor(root, false).label, QStringLiteral("1: Signal Feeder Pro"));
    QCOMPARE(d->styleFor(receiver, false).label, QStringLiteral("1: Feedwise Receiver + Junction Box"));
    QCOMPARE(d->styleFor(box, false).label, QStringLiteral("Junction Box"));
    QCOMPARE(d->styleFor(jumper, false).label, QStringLiteral("Jumper 1ft - 1 ft"));
    QCOMPARE(d->styleFor(leader, false).label, QStringLiteral("Leader 6ft - 6 ft"));
    leader->setType(QStringLiteral("Custom Leader"));
    leader->setLength(12.5);
    QCOMPARE(d->styleFor(leader, false).label, QStringLiteral("Custom - 12.5 ft"));
    feedwiseWire->setLength(35);
    QCOMPARE(d->styleFor(feedwiseWire, false).label, QStringLiteral("Branch Wire - 35 ft"));

    // The counters number supplies and receivers in paint order.
    d->countComponent(root);
    QCOMPARE(d->styleFor(root, false).label, QStringLiteral("2: Signal Feeder Pro"));
    c.render();
    QCOMPARE(d->supplyCount(), 1);
    QCOMPARE(d->receiverCount(), 1);

    // Colours by location: Dynaline and Feedwise boxes and cables; a leader on the Feedwise side
    // keeps the plain colours.
    QCOMPARE(d->styleFor(box, false).border, QColor(143, 69, 0));
    QCOMPARE(d->styleFor(box, true).fill, QColor(255, 242, 230));
    QCOMPARE(d->styleFor(wire, true).border, QColor(238, 115, 0));
    QCOMPARE(d->styleFor(feedwiseWire, false).border, QColor(166, 0, 0));
    QCOMPARE(d->styleFor(feedwiseWire, true).fill, QColor(255, 230, 230));
    QCOMPARE(d->styleFor(feedwiseWire, true).border, QColor(255, 0, 0));
    QCOMPARE(d->styleFor(leaderOnReceiver, false).border, QColor(64, 64, 64));
    QCOMPARE(d->styleFor(leaderOnReceiver, true).fill, QColor(220, 220, 220));
    QCOMPARE(d->styleFor(root, false).border, QColor(128, 128, 128));
    QCOMPARE(d->styleFor(f1, true).border, QColor(0, 0, 255));

    Canvas lv(&m_db);
    lv.doc.addSupply(m_lineVoltage);
    CWidget* lvBox = lv.doc.addJunctionBox();
    QCOMPARE(lv.delegate()->styleFor(lvBox, false).border, QColor(98, 134, 163));
    QCOMPARE(lv.delegate()->styleFor(lvBox, true).fill, QColor(238, 247, 255));
    lv.doc.setCurrent(lvBox);
    auto* lvReceiver = lv.doc.addReceiver();
    CWidget* feedwiseBox = lv.doc.addJunctionBox();
    QVERIFY(lvReceiver && feedwiseBox);
    QCOMPARE(lv.delegate()->styleFor(feedwiseBox, true).fill, QColor(255, 197, 197));
    QCOMPARE(lv.delegate()->styleFor(feedwiseBox, false).border, QColor(166, 0, 0));
}

void TstCanvas::zoomAndMouse()
{
    Canvas c(&m_db, QSize(900, 500));
    c.doc.addSupply(m_feeder);
    CWidget* box = c.doc.addJunctionBox();
    CWidget* second = c.doc.addSupply(m_feeder); // below the box, at (10, 66, 220, 20)
    QVERIFY(second);
    QVERIFY(c.frame.itemRectOf(second).contains(200, 80));
    c.frame.show();
    QVERIFY(QTest::qWaitForWindowExposed(&c.frame));

    QSignalSpy clicked(&c.frame, &CFrame::clicked);
    QSignalSpy activated(&c.frame, &CFrame::activated);
    QSignalSpy selection(&c.frame, qOverload<const QModelIndex&>(&CFrame::selectionChanged));
    QSignalSpy deleteAsked(&c.frame, &CFrame::deleteCurrentCWidget);

    // At zoom 1 the point (100, 40) is on the junction box.
    c.doc.setCurrent(second);
    selection.clear();
    QTest::mouseClick(c.frame.viewport(), Qt::LeftButton, {}, QPoint(100, 40));
    QCOMPARE(c.doc.current(), box);
    QCOMPARE(selection.count(), 1);

    // At half size the same point is (200, 80) on the canvas: the second supply.
    c.frame.handleZoomChanged(0.5);
    QCOMPARE(c.frame.zoom(), 0.5);
    clicked.clear();
    activated.clear();
    selection.clear();
    QTest::mouseClick(c.frame.viewport(), Qt::LeftButton, {}, QPoint(100, 40));
    QCOMPARE(c.doc.current(), second);
    QCOMPARE(clicked.count(), 1);
    QCOMPARE(activated.count(), 1);
    QCOMPARE(selection.count(), 1);
    QCOMPARE(selection.at(0).at(0).value<QModelIndex>(), c.doc.indexOf(second));
    QCOMPARE(c.frame.indexAt(c.frame.visualRect(c.doc.indexOf(box)).center()), c.doc.indexOf(box));

    // The paint pass is scaled: the root's left border is at half its canvas position.
    QImage shown = c.frame.viewport()->grab().toImage();
    QVERIFY2(qGray(shown.pixel(5, 10)) < 215, qPrintable(describe(shown, {5, 10})));
    QVERIFY2(qGray(shown.pixel(60, 10)) < 215, qPrintable(describe(shown, {60, 10})));
    QVERIFY2(similar(shown.pixel(10, 20), Background, 3), qPrintable(describe(shown, {10, 20})));

    // A click on empty canvas changes nothing, and a right click there shows no menu.
    c.frame.handleZoomChanged(1.0);
    clicked.clear();
    selection.clear();
    QTest::mouseClick(c.frame.viewport(), Qt::LeftButton, {}, QPoint(700, 300));
    QTest::mouseClick(c.frame.viewport(), Qt::RightButton, {}, QPoint(700, 300));
    QCOMPARE(QApplication::activePopupWidget(), nullptr);
    QCOMPARE(c.doc.current(), second);
    QCOMPARE(clicked.count(), 0);
    QCOMPARE(selection.count(), 0);

    // A right click on a component selects it and offers "Delete", which asks for the deletion.
    QTest::mouseClick(c.frame.viewport(), Qt::RightButton, {}, QPoint(50, 45));
    QCOMPARE(c.doc.current(), box);
    auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
    QVERIFY(menu);
    QCOMPARE(menu->actions().size(), 1);
    QCOMPARE(menu->actions().first()->text(), QStringLiteral("Delete"));
    QCOMPARE(deleteAsked.count(), 0);
    menu->actions().first()->trigger();
    menu->close();
    QCOMPARE(deleteAsked.count(), 1);
    QCOMPARE(c.doc.count(ItemAny), 5); // the canvas only asks; the main window deletes
}

void TstCanvas::keys()
{
    Canvas c(&m_db);
    c.doc.addSupply(m_feeder);
    CWidget* box = c.doc.addJunctionBox();
    CWidget* f1 = c.doc.addFixture(m_fixture);
    c.doc.setCurrent(box);
    c.doc.addFixture(m_fixture);
    c.doc.setCurrent(f1);
    c.frame.show();
    QSignalSpy deleteAsked(&c.frame, &CFrame::deleteCurrentCWidget);
    QSignalSpy selection(&c.frame, qOverload<const QModelIndex&>(&CFrame::selectionChanged));

    for (Qt::Key key : {Qt::Key_Up, Qt::Key_Down, Qt::Key_Left, Qt::Key_Right, Qt::Key_Home, Qt::Key_End}) {
        QTest::keyClick(&c.frame, key);
        QCOMPARE(c.doc.current(), f1);
    }
    QCOMPARE(selection.count(), 0);
    QCOMPARE(deleteAsked.count(), 0);

    QTest::keyClick(&c.frame, Qt::Key_Delete);
    QCOMPARE(deleteAsked.count(), 1);
    QCOMPARE(c.doc.count(ItemFixture), 2);
}

void TstCanvas::deletion()
{
    Canvas c(&m_db);
    CWidget* root = c.doc.addSupply(m_feeder);
    CWidget* box = c.doc.addJunctionBox();
    CWidget* f1 = c.doc.addFixture(m_fixture);
    c.doc.addFixture(m_fixture); // below f1
    int asked = 0;
    bool answer = false;
    c.frame.confirmDelete = [&]() {
        ++asked;
        return answer;
    };
    QSignalSpy frameChanged(&c.frame, &CFrame::frameChanged);
    QSignalSpy selection(&c.frame, qOverload<const QModelIndex&>(&CFrame::selectionChanged));

    // Cancel: nothing changes and nothing is announced.
    c.doc.setCurrent(f1);
    c.doc.setModified(false);
    selection.clear();
    c.frame.deleteCurrent();
    QCOMPARE(asked, 1);
    QCOMPARE(c.doc.count(ItemFixture), 2);
    QCOMPARE(c.doc.current(), f1);
    QVERIFY(!c.doc.isModified());
    QCOMPARE(frameChanged.count(), 0);
    QCOMPARE(selection.count(), 0);

    // OK: the subtree goes and its parent is selected.
    answer = true;
    c.frame.deleteCurrent();
    QCOMPARE(asked, 2);
    QCOMPARE(c.doc.count(ItemFixture), 0);
    QCOMPARE(c.doc.current(), box);
    QVERIFY(c.doc.isModified());
    QVERIFY(frameChanged.count() >= 1);
    QCOMPARE(selection.last().at(0).value<QModelIndex>(), c.doc.indexOf(box));

    // A leaf is deleted without a question.
    CWidget* leaf = c.doc.addFixture(m_fixture);
    QVERIFY(leaf);
    c.doc.setModified(false);
    frameChanged.clear();
    c.frame.deleteCurrent();
    QCOMPARE(asked, 2);
    QCOMPARE(c.doc.count(ItemFixture), 0);
    QCOMPARE(c.doc.current(), box);
    QVERIFY(c.doc.isModified());
    QCOMPARE(frameChanged.count(), 1);

    // The top-level component empties the canvas.
    c.doc.setCurrent(root);
    selection.clear();
    c.frame.deleteCurrent();
    QCOMPARE(asked, 3);
    QCOMPARE(c.doc.root(), nullptr);
    QVERIFY(!c.doc.current());
    QVERIFY(!selection.isEmpty());
    QVERIFY(!selection.last().at(0).value<QModelIndex>().isValid());
    const QImage img = c.render();
    QCOMPARE(img.pixel(10, 20), Background.rgb());
}

void TstCanvas::slotsAndSignals()
{
    Canvas c(&m_db);
    QSignalSpy frameChanged(&c.frame, &CFrame::frameChanged);
    QSignalSpy selection(&c.frame, qOverload<const QModelIndex&>(&CFrame::selectionChanged));
    CWidget* root = c.doc.addSupply(m_feeder);
    QCOMPARE(frameChanged.count(), 1);
    QCOMPARE(selection.count(), 1);
    QCOMPARE(selection.at(0).at(0).value<QModelIndex>(), c.doc.indexOf(root));

    c.doc.setModified(false);
    c.frame.handleParamChanged();
    QVERIFY(c.doc.isModified());

    c.frame.handleLastLocation(QStringLiteral("Plenum"));
    QCOMPARE(c.doc.lastLocation(), QStringLiteral("Plenum"));

    // An edited value repaints without a change of the tree.
    frameChanged.clear();
    CWidget* box = c.doc.addJunctionBox();
    auto* wire = qobject_cast<BranchWireWidget*>(box->parentWidget());
    frameChanged.clear();
    wire->applyEditorValue(PropLength, 40);
    QCOMPARE(frameChanged.count(), 0);

    c.doc.setModified(false);
    c.frame.resetFrame();
    QCOMPARE(c.doc.root(), nullptr);
    QCOMPARE(frameChanged.count(), 1);
    QVERIFY(c.doc.isModified());
}

void TstCanvas::scrollingAndLineKey()
{
    Canvas c(&m_db, QSize(600, 400));
    c.doc.addSupply(m_feeder);
    c.frame.show();
    QVERIFY(QTest::qWaitForWindowExposed(&c.frame));
    QCoreApplication::processEvents();
    QWidget* key = c.frame.lineKey();
    QVERIFY(key->isVisible());
    QCOMPARE(key->parentWidget(), &c.frame);
    QVERIFY(!c.frame.horizontalScrollBar()->isVisible());
    QVERIFY(!c.frame.verticalScrollBar()->isVisible());
    QCOMPARE(key->geometry().bottomRight(), QPoint(599, 399));
    QCOMPARE(c.frame.horizontalScrollBar()->maximum(), 0);

    // Five fixtures below a junction box, then a leader (placed after them) with a chain of
    // fourteen fixtures: six columns, the last one deep.
    CWidget* box = c.doc.addJunctionBox();
    for (int i = 0; i < 5; ++i) {
        c.doc.setCurrent(box);
        QVERIFY(c.doc.addFixture(m_fixture));
    }
    c.doc.setCurrent(box);
    QVERIFY(c.doc.addLeader(m_fixture));
    for (int i = 0; i < 14; ++i)
        QVERIFY(c.doc.addFixture(m_fixture));
    QCOMPARE(c.frame.itemRectOf(c.doc.current())
                 .translated(c.frame.horizontalScrollBar()->value(), c.frame.verticalScrollBar()->value()),
             QRect(2060, 430, 100, 20));
    QCoreApplication::processEvents();
    // Six leaves of 550, and the deepest fixture at 66 + 13 * 28.
    QCOMPARE(c.frame.horizontalScrollBar()->maximum(), 3300);
    QCOMPARE(c.frame.verticalScrollBar()->maximum(), 430);
    QCOMPARE(c.frame.horizontalScrollBar()->singleStep(), 15);
    QVERIFY(c.frame.horizontalScrollBar()->isVisible());
    QVERIFY(c.frame.verticalScrollBar()->isVisible());
    // The key sits in the corner left by the two bars, touching neither.
    const QScrollBar* vbar = c.frame.verticalScrollBar();
    const QScrollBar* hbar = c.frame.horizontalScrollBar();
    const QRect vbarRect(vbar->mapTo(&c.frame, QPoint(0, 0)), vbar->size());
    const QRect hbarRect(hbar->mapTo(&c.frame, QPoint(0, 0)), hbar->size());
    QVERIFY(vbarRect.right() >= 598 && hbarRect.bottom() >= 398);
    QCOMPARE(key->geometry().bottomRight(), QPoint(vbarRect.left() - 1, hbarRect.top() - 1));
    QVERIFY(!key->geometry().intersects(vbarRect));
    QVERIFY(!key->geometry().intersects(hbarRect));

    // The last fixture went into the rightmost column, deepest row, and was scrolled into view.
    const QRect shown = c.frame.visualRect(c.doc.currentIndex());
    QVERIFY2(c.frame.viewport()->rect().contains(shown.topLeft()),
             qPrintable(QStringLiteral("%1,%2").arg(shown.x()).arg(shown.y())));
    QVERIFY(c.frame.horizontalScrollBar()->value() > 0);
    QVERIFY(c.frame.verticalScrollBar()->value() > 0);

    // The horizontal extent follows the zoom.
    c.frame.handleZoomChanged(0.5);
    QCOMPARE(c.frame.horizontalScrollBar()->maximum(), 1650);
    QCOMPARE(c.frame.verticalScrollBar()->maximum(), 430);

    c.frame.handleLineKeyToggled(false);
    QVERIFY(!key->isVisible());
    c.frame.handleLineKeyToggled(true);
    QVERIFY(key->isVisible());
}

void TstCanvas::lineKeyForm()
{
    CFrame frame;
    QWidget* key = frame.lineKey();
    QVERIFY(key);
    QCOMPARE(key->objectName(), QStringLiteral("lineKeyUI"));
    QCOMPARE(key->windowTitle(), QStringLiteral("Form"));
    QCOMPARE(key->size(), QSize(171, 61));
    QCOMPARE(key->sizePolicy().horizontalPolicy(), QSizePolicy::Fixed);
    QCOMPARE(key->sizePolicy().verticalPolicy(), QSizePolicy::Fixed);
    QVERIFY(key->autoFillBackground());
    const auto* title = key->findChild<QLabel*>(QStringLiteral("label_4"));
    QVERIFY(title);
    QCOMPARE(title->text(), QStringLiteral("Line Color Key"));
    QCOMPARE(key->findChild<QLabel*>(QStringLiteral("label"))->text(), QStringLiteral("Dynaline"));
    QCOMPARE(key->findChild<QLabel*>(QStringLiteral("label_3"))->text(), QStringLiteral("Line Voltage"));
    const auto* dl = key->findChild<QFrame*>(QStringLiteral("lineDL"));
    const auto* lv = key->findChild<QFrame*>(QStringLiteral("lineLV"));
    QVERIFY(dl && lv);
    QCOMPARE(dl->frameShape(), QFrame::HLine);
    QCOMPARE(dl->styleSheet(), QStringLiteral("QFrame#lineDL\n{\n\tcolor: rgb(255, 170, 0);\n}"));
    QCOMPARE(lv->styleSheet(), QStringLiteral("QFrame#lineLV\n{\n\tcolor: rgb(140,190,232);\n}"));
    QCOMPARE(key->findChild<QFrame*>(QStringLiteral("frame"))->geometry(), QRect(0, 0, 171, 61));

    // The swatches show their colours.
    key->show();
    const QImage img = key->grab().toImage();
    const QPoint dlMiddle = dl->mapTo(key, dl->rect().center());
    const QPoint lvMiddle = lv->mapTo(key, lv->rect().center());
    QVERIFY2(colourNear(img, dlMiddle, QColor(255, 170, 0)), qPrintable(describe(img, dlMiddle)));
    QVERIFY2(colourNear(img, lvMiddle, LightBlue), qPrintable(describe(img, lvMiddle)));
}

void TstCanvas::printing()
{
    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    auto pageCount = [](const QString& path) {
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly))
            return -1;
        return int(QString::fromLatin1(file.readAll())
                       .count(QRegularExpression(QStringLiteral("/Type\\s*/Page\\b"))));
    };

    // A wide run is scaled down to one page, keeping its proportions.
    Canvas c(&m_db, QSize(600, 400));
    c.doc.addSupply(m_feeder);
    CWidget* box = c.doc.addJunctionBox();
    for (int i = 0; i < 6; ++i) {
        c.doc.setCurrent(box);
        QVERIFY(c.doc.addFixture(m_fixture));
    }
    QCOMPARE(c.frame.drawingExtent(), QSize(7 * 550, 66 + 100));
    c.frame.horizontalScrollBar()->setValue(400);

    QPrinter printer(QPrinter::ScreenResolution);
    printer.setOutputFormat(QPrinter::PdfFormat);
    const QString wide = dir.filePath(QStringLiteral("wide.pdf"));
    printer.setOutputFileName(wide);
    c.frame.print(&printer);
    QVERIFY(!c.frame.isPrinting());
    QCOMPARE(c.frame.horizontalScrollBar()->value(), 400);
    const QRectF page = printer.pageRect(QPrinter::DevicePixel);
    const double scale = c.frame.lastPrintScale();
    const QSizeF printed = QSizeF(c.frame.drawingExtent()) * scale;
    QVERIFY(scale > 0.0 && scale < 1.0);
    QVERIFY(printed.width() <= page.width() + 1e-6 && printed.height() <= page.height() + 1e-6);
    QVERIFY(qFuzzyCompare(printed.width(), page.width()) || qFuzzyCompare(printed.height(), page.height()));
    QCOMPARE(pageCount(wide), 1);

    // A single supply on a wide page is scaled up.
    Canvas single(&m_db);
    single.doc.addSupply(m_feeder);
    QCOMPARE(single.frame.drawingExtent(), QSize(1100, 110));
    QPrinter big(QPrinter::ScreenResolution);
    big.setOutputFormat(QPrinter::PdfFormat);
    big.setPageSize(QPageSize(QPageSize::A3));
    big.setPageOrientation(QPageLayout::Landscape);
    const QString one = dir.filePath(QStringLiteral("single.pdf"));
    big.setOutputFileName(one);
    single.frame.print(&big);
    const QRectF bigPage = big.pageRect(QPrinter::DevicePixel);
    QVERIFY(single.frame.lastPrintScale() > 1.0);
    QVERIFY(qFuzzyCompare(1100 * single.frame.lastPrintScale(), bigPage.width()));
    QCOMPARE(pageCount(one), 1);
}

QTEST_MAIN(TstCanvas)
#include "tst_canvas.moc"
