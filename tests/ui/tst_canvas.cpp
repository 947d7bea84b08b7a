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

// A pixel of (nearly) a colour near a point, or exactly at it.
#define NEAR_COLOUR(img, point, colour)                                                                      \
    QVERIFY2(colourNear(img, point, colour), qPrintable(describe(img, point)))
#define AT_COLOUR(img, point, colour)                                                                        \
    QVERIFY2(similar(img.pixel(point), colour), qPrintable(describe(img, point)))

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

    // Supply, Dynaline wire and junction box (returned); below the box a fixture, a leader and a
    // receiver on its Feedwise wire, in three columns.
    CWidget* buildBranches(Canvas& c, DLPowerSupply* supply)
    {
        c.doc.addSupply(supply);
        CWidget* box = c.doc.addJunctionBox();
        c.doc.addFixture(m_fixture);
        c.doc.setCurrent(box);
        c.doc.addLeader(m_fixture);
        c.doc.setCurrent(box);
        c.doc.addReceiver();
        return box;
    }

private slots:
    void initTestCase();
    void placement();
    void connectorColours();
    void boxLook();
    void mouseKeysAndZoom();
    void deletion();
    void scrollingAndLineKey();
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
        AT_COLOUR(img, QPoint(10, 20), QColor(64, 64, 64));
        for (int y = 0; y < img.height(); ++y)
            for (int x = 0; x < img.width(); ++x)
                if (x > 233 || y > 33 || x < 8)
                    QVERIFY2(img.pixel(x, y) == Background.rgb(), qPrintable(describe(img, {x, y})));
    }

    Canvas c(&m_db);
    c.doc.addSupply(m_feeder);
    CWidget* box = c.doc.addJunctionBox(); // a Dynaline branch wire, then the box
    CWidget* f1 = c.doc.addFixture(m_fixture);
    CWidget* f2 = c.doc.addFixture(m_fixture); // chained below the first
    c.doc.setCurrent(box);
    CWidget* leader = c.doc.addLeader(m_fixture);
    CWidget* f3 = c.doc.addFixture(m_fixture);
    c.doc.setCurrent(box);
    CWidget* receiver = c.doc.addReceiver();
    CWidget* onReceiver = c.doc.addFixture(m_fixture);
    QVERIFY(f1 && f2 && leader && f3 && receiver && onReceiver);

    // A chain stays in one column; a cable sits 240 to the right, centred on the gap it bridges.
    QCOMPARE(c.frame.itemRectOf(box->parentWidget()), QRect(250, 24, 100, 20));
    QCOMPARE(c.frame.itemRectOf(box), QRect(10, 38, 100, 20));
    QCOMPARE(c.frame.itemRectOf(f1), QRect(10, 66, 100, 20));
    QCOMPARE(c.frame.itemRectOf(f2), QRect(10, 94, 100, 20));
    // The second branch opens one column right of the first branch's last leaf.
    QCOMPARE(c.frame.itemRectOf(leader), QRect(660, 52, 100, 20));
    QCOMPARE(c.frame.itemRectOf(f3), QRect(420, 66, 100, 20));
    // The receiver's branch is the third column; its fixture is 8 higher than one below a box.
    QCOMPARE(c.frame.itemRectOf(receiver), QRect(830, 66, 100, 20));
    QCOMPARE(c.frame.itemRectOf(onReceiver), QRect(830, 86, 100, 20));

    // The boxes are drawn where they are placed: a border pixel, and nothing just outside it.
    const QImage img = c.render();
    const struct {
        QPoint border;
        QColor colour;
        QPoint outside;
    } borders[] = {
        {{10, 104}, QColor(0, 0, 128), {6, 104}}, {{420, 76}, QColor(0, 0, 128), {416, 76}},
        {{830, 76}, QColor(0, 64, 0), {826, 76}}, {{830, 96}, QColor(0, 0, 255), {826, 96}},
        {{10, 48}, QColor(143, 69, 0), {6, 48}},  {{350, 34}, QColor(143, 69, 0), {354, 34}},
    };
    for (const auto& b : borders) {
        AT_COLOUR(img, b.border, b.colour);
        AT_COLOUR(img, b.outside, Background);
    }
}

void TstCanvas::connectorColours()
{
    {
        Canvas c(&m_db);
        buildBranches(c, m_feeder);
        const QImage img = c.render();
        // Dynaline side: supply to its branch wire, branch wire back to the box.
        NEAR_COLOUR(img, QPoint(240, 28), Orange);
        NEAR_COLOUR(img, QPoint(180, 42), Orange);
        // Feedwise side: the receiver's wire down to the receiver.
        NEAR_COLOUR(img, QPoint(1000, 68), Red);
        // Along the box's centre line (48) the Feedwise line lies one above, the Dynaline one below.
        for (int y : {46, 47})
            AT_COLOUR(img, QPoint(300, y), Red);
        for (int y : {48, 49})
            AT_COLOUR(img, QPoint(300, y), Orange);
        for (int y : {45, 50})
            AT_COLOUR(img, QPoint(300, y), Background);
    }
    {
        // A run fed from the line-voltage side draws its non-Feedwise wiring light blue.
        Canvas c(&m_db);
        buildBranches(c, m_lineVoltage);
        const QImage img = c.render();
        NEAR_COLOUR(img, QPoint(240, 28), LightBlue);
        NEAR_COLOUR(img, QPoint(180, 42), LightBlue);
        AT_COLOUR(img, QPoint(300, 49), LightBlue);
        AT_COLOUR(img, QPoint(300, 47), Red);
        NEAR_COLOUR(img, QPoint(1000, 68), Red);
    }

    // A second supply on the line-voltage side turns every connector painted after its own blue;
    // those painted before it keep the Dynaline colour.
    Canvas c(&m_db);
    c.doc.addSupply(m_feeder);
    CWidget* box = c.doc.addJunctionBox();
    QVERIFY(c.doc.addFixture(m_fixture)); // painted first among the box's children
    c.doc.setCurrent(box);
    auto* second = qobject_cast<SupplyWidget*>(c.doc.addSupply(m_lineVoltage));
    QVERIFY(second);
    second->setExplicitLocation(QString());
    QCOMPARE(c.frame.itemRectOf(second), QRect(420, 66, 220, 20));
    const QImage img = c.render();
    NEAR_COLOUR(img, QPoint(129, 63), Orange); // the bend from the box to its fixture
    NEAR_COLOUR(img, QPoint(650, 70), Red);    // the supply's own connector
    AT_COLOUR(img, QPoint(300, 47), Red);      // its Feedwise branch
    NEAR_COLOUR(img, QPoint(180, 42), LightBlue);
    NEAR_COLOUR(img, QPoint(240, 28), LightBlue);
    // The flag does not carry over into the next pass.
    c.doc.setCurrent(second->parentWidget());
    QVERIFY(c.doc.removeCurrent());
    const QImage after = c.render();
    NEAR_COLOUR(after, QPoint(240, 28), Orange);
}

void TstCanvas::boxLook()
{
    Canvas c(&m_db);
    CWidget* root = c.doc.addSupply(m_feeder);
    CWidget* box = c.doc.addJunctionBox();
    c.doc.setCurrent(box);
    CWidget* receiver = c.doc.addReceiver();
    CWidget* fixture = c.doc.addFixture(m_fixture); // current
    QCOMPARE(c.frame.itemRectOf(fixture), QRect(10, 86, 100, 20));

    // Error marks: supplies and receivers the analysis marked get a red dot; fixtures never do.
    c.doc.setErrorMarks({root, receiver, fixture});
    QImage img = c.render();
    AT_COLOUR(img, QPoint(20, 20), Red);
    AT_COLOUR(img, QPoint(20, 76), Red);
    QVERIFY(!colourNear(img, {20, 96}, Red, 3));
    c.doc.setErrorMarks({});
    img = c.render();
    QVERIFY(!colourNear(img, {20, 20}, Red, 3));

    // The selected box is filled, light at the top and in its fill colour from half its height.
    AT_COLOUR(img, QPoint(13, 101), QColor(220, 220, 255));
    QVERIFY2(qRed(img.pixel(13, 89)) > 235, qPrintable(describe(img, {13, 89})));
    AT_COLOUR(img, QPoint(10, 96), QColor(0, 0, 255));
    AT_COLOUR(img, QPoint(13, 81), Background); // the receiver is not filled
    c.doc.setCurrent(receiver);
    img = c.render();
    AT_COLOUR(img, QPoint(13, 101), Background);
    AT_COLOUR(img, QPoint(10, 96), QColor(0, 0, 128));
    AT_COLOUR(img, QPoint(13, 81), QColor(220, 255, 220));

    // Labels and numbering: supplies and receivers count in paint order, fixtures depth first.
    auto* leader = static_cast<CableWidget*>(c.doc.addLeader(m_fixture));
    c.doc.setCurrent(box);
    CWidget* first = c.doc.addFixture(m_fixture);
    QCOMPARE(c.frame.numberOf(first, ItemFixture), 0);
    QCOMPARE(c.frame.numberOf(fixture, ItemFixture), 1);
    QCOMPARE(c.frame.numberOf(receiver, ItemAny), 5); // root, wire, box, first, wire, receiver
    CFrameItemDelegate* d = c.delegate();
    c.render();
    QCOMPARE(d->styleFor(fixture, false).label, QStringLiteral("2: ") + m_fixture->name);
    QCOMPARE(d->styleFor(root, false).label, QStringLiteral("1: Signal Feeder Pro"));
    QCOMPARE(d->styleFor(receiver, false).label, QStringLiteral("1: Feedwise Receiver + Junction Box"));
    QCOMPARE(d->styleFor(leader, false).label, QStringLiteral("Leader 6ft - 6 ft"));
    leader->setType(QStringLiteral("Custom Leader"));
    leader->setLength(12.5);
    QCOMPARE(d->styleFor(leader, false).label, QStringLiteral("Custom - 12.5 ft"));
    QCOMPARE(d->styleFor(receiver->parentWidget(), false).label, QStringLiteral("Branch Wire - 20 ft"));
    // Location colours: a Feedwise branch wire, and a leader on the Feedwise side that keeps the
    // plain colours.
    QCOMPARE(d->styleFor(receiver->parentWidget(), true).fill, QColor(255, 230, 230));
    QCOMPARE(d->styleFor(receiver->parentWidget(), false).border, QColor(166, 0, 0));
    QCOMPARE(d->styleFor(leader, false).border, QColor(64, 64, 64));

    // Font: a long label shrinks to fit its box, a short one stays at 8 points.
    const QString longLabel = QStringLiteral("1: Stylebar Tint (RGBA/RGBW) Dynaline 4ft");
    const QFont shrunk = CFrameItemDelegate::labelFont(QFont(), longLabel, QSizeF(100, 20), &img);
    QVERIFY(shrunk.pointSizeF() < 8.0);
    QVERIFY(QFontMetricsF(shrunk, &img).horizontalAdvance(longLabel) <= 100.0);
    QCOMPARE(CFrameItemDelegate::labelFont(QFont(), QStringLiteral("x"), QSizeF(400, 80), &img).pointSizeF(),
             8.0);
}

void TstCanvas::mouseKeysAndZoom()
{
    Canvas c(&m_db, QSize(900, 500));
    c.doc.addSupply(m_feeder);
    CWidget* box = c.doc.addJunctionBox();
    CWidget* second = c.doc.addSupply(m_feeder); // below the box, at (10, 66, 220, 20)
    QVERIFY(second);
    QVERIFY(QTest::qWaitForWindowExposed(&c.frame));
    QSignalSpy clicked(&c.frame, &CFrame::clicked);
    QSignalSpy selection(&c.frame, qOverload<const QModelIndex&>(&CFrame::selectionChanged));
    QSignalSpy deleteAsked(&c.frame, &CFrame::deleteCurrentCWidget);

    // At zoom 1 the point (100, 40) is on the junction box; at half size it is (200, 80) on the
    // canvas: the second supply.
    QTest::mouseClick(c.frame.viewport(), Qt::LeftButton, {}, QPoint(100, 40));
    QCOMPARE(c.doc.current(), box);
    c.frame.handleZoomChanged(0.5);
    clicked.clear();
    selection.clear();
    QTest::mouseClick(c.frame.viewport(), Qt::LeftButton, {}, QPoint(100, 40));
    QCOMPARE(c.doc.current(), second);
    QCOMPARE(clicked.count(), 1);
    QCOMPARE(selection.count(), 1);
    QCOMPARE(selection.at(0).at(0).value<QModelIndex>(), c.doc.indexOf(second));
    // The paint pass is scaled too: the root's border at half its canvas position.
    const QImage shown = c.frame.viewport()->grab().toImage();
    QVERIFY2(qGray(shown.pixel(5, 10)) < 215, qPrintable(describe(shown, {5, 10})));
    AT_COLOUR(shown, QPoint(10, 20), Background);

    // Empty canvas: a click changes nothing, a right click shows no menu.
    c.frame.handleZoomChanged(1.0);
    selection.clear();
    QTest::mouseClick(c.frame.viewport(), Qt::LeftButton, {}, QPoint(700, 300));
    QTest::mouseClick(c.frame.viewport(), Qt::RightButton, {}, QPoint(700, 300));
    QCOMPARE(QApplication::activePopupWidget(), nullptr);
    QCOMPARE(c.doc.current(), second);
    QCOMPARE(selection.count(), 0);

    // A right click on a component selects it and offers "Delete", which asks for the deletion.
    QTest::mouseClick(c.frame.viewport(), Qt::RightButton, {}, QPoint(50, 45));
    QCOMPARE(c.doc.current(), box);
    auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
    QVERIFY(menu);
    QCOMPARE(menu->actions().size(), 1);
    QCOMPARE(menu->actions().first()->text(), QStringLiteral("Delete"));
    menu->actions().first()->trigger();
    menu->close();
    QCOMPARE(deleteAsked.count(), 1);
    QCOMPARE(c.doc.count(ItemAny), 5); // the canvas only asks; the main window deletes

    // Arrow keys never move the selection; Delete asks for the deletion.
    selection.clear();
    for (Qt::Key key : {Qt::Key_Up, Qt::Key_Down, Qt::Key_Left, Qt::Key_Right, Qt::Key_Home, Qt::Key_End})
        QTest::keyClick(&c.frame, key);
    QCOMPARE(c.doc.current(), box);
    QCOMPARE(selection.count(), 0);
    QTest::keyClick(&c.frame, Qt::Key_Delete);
    QCOMPARE(deleteAsked.count(), 2);
    QCOMPARE(c.doc.count(ItemAny), 5);
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
    QCOMPARE(frameChanged.count(), 1);
    QCOMPARE(selection.last().at(0).value<QModelIndex>(), c.doc.indexOf(box));

    // A leaf is deleted without a question.
    QVERIFY(c.doc.addFixture(m_fixture));
    c.frame.deleteCurrent();
    QCOMPARE(asked, 2);
    QCOMPARE(c.doc.count(ItemFixture), 0);
    QCOMPARE(c.doc.current(), box);

    // The top-level component empties the canvas.
    c.doc.setCurrent(root);
    c.frame.deleteCurrent();
    QCOMPARE(asked, 3);
    QCOMPARE(c.doc.root(), nullptr);
    QVERIFY(!selection.last().at(0).value<QModelIndex>().isValid());
    QCOMPARE(c.render().pixel(10, 20), Background.rgb());
}

void TstCanvas::scrollingAndLineKey()
{
    Canvas c(&m_db, QSize(600, 400));
    c.doc.addSupply(m_feeder);
    QVERIFY(QTest::qWaitForWindowExposed(&c.frame));
    QWidget* key = c.frame.lineKey();
    QVERIFY(key->isVisible());
    QVERIFY(!c.frame.horizontalScrollBar()->isVisible());
    QCOMPARE(key->geometry().bottomRight(), QPoint(599, 399));

    // The key's swatches show the two wiring colours.
    const QImage swatches = key->grab().toImage();
    for (const auto& [name, colour] :
         {std::pair{"lineDL", QColor(255, 170, 0)}, std::pair{"lineLV", LightBlue}}) {
        const auto* line = key->findChild<QFrame*>(QLatin1String(name));
        QVERIFY(line);
        NEAR_COLOUR(swatches, line->mapTo(key, line->rect().center()), colour);
    }

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
    QScrollBar* hbar = c.frame.horizontalScrollBar();
    QScrollBar* vbar = c.frame.verticalScrollBar();
    QCOMPARE(c.frame.itemRectOf(c.doc.current()).translated(hbar->value(), vbar->value()),
             QRect(2060, 430, 100, 20));
    QCoreApplication::processEvents();
    // Six leaves of 550, and the deepest leaf at 430.
    QCOMPARE(hbar->maximum(), 3300);
    QCOMPARE(vbar->maximum(), 430);
    // The last fixture was scrolled into view.
    QVERIFY(hbar->value() > 0 && vbar->value() > 0);
    QVERIFY(c.frame.viewport()->rect().contains(c.frame.visualRect(c.doc.currentIndex()).topLeft()));

    // The key sits in the corner left by the two bars, touching neither.
    QVERIFY(hbar->isVisible() && vbar->isVisible());
    const QRect vbarRect(vbar->mapTo(&c.frame, QPoint(0, 0)), vbar->size());
    const QRect hbarRect(hbar->mapTo(&c.frame, QPoint(0, 0)), hbar->size());
    QVERIFY(vbarRect.right() >= 598 && hbarRect.bottom() >= 398);
    QCOMPARE(key->geometry().bottomRight(), QPoint(vbarRect.left() - 1, hbarRect.top() - 1));

    // The horizontal extent follows the zoom.
    c.frame.handleZoomChanged(0.5);
    QCOMPARE(hbar->maximum(), 1650);
    QCOMPARE(vbar->maximum(), 430);

    c.frame.handleLineKeyToggled(false);
    QVERIFY(!key->isVisible());
    c.frame.handleLineKeyToggled(true);
    QVERIFY(key->isVisible());
}

void TstCanvas::printing()
{
    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    auto pages = [](const QString& path) {
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly))
            return -1;
        return int(QString::fromLatin1(file.readAll())
                       .count(QRegularExpression(QStringLiteral("/Type\\s*/Page\\b"))));
    };
    auto pdfPrinter = [&dir](QPrinter& printer, const QString& name) {
        printer.setOutputFormat(QPrinter::PdfFormat);
        printer.setOutputFileName(dir.filePath(name));
        return printer.outputFileName();
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
    QPrinter printer(QPrinter::ScreenResolution);
    const QString wide = pdfPrinter(printer, QStringLiteral("wide.pdf"));
    c.frame.print(&printer);
    QVERIFY(!c.frame.isPrinting());
    const QRectF page = printer.pageRect(QPrinter::DevicePixel);
    const double scale = c.frame.lastPrintScale();
    const QSizeF printed = QSizeF(c.frame.drawingExtent()) * scale;
    QVERIFY(scale > 0.0 && scale < 1.0);
    QVERIFY(printed.width() <= page.width() + 1e-6 && printed.height() <= page.height() + 1e-6);
    QVERIFY(qFuzzyCompare(printed.width(), page.width()) || qFuzzyCompare(printed.height(), page.height()));
    QCOMPARE(pages(wide), 1);

    // A single supply on a wide page is scaled up to the page width.
    Canvas single(&m_db);
    single.doc.addSupply(m_feeder);
    QPrinter big(QPrinter::ScreenResolution);
    big.setPageSize(QPageSize(QPageSize::A3));
    big.setPageOrientation(QPageLayout::Landscape);
    const QString one = pdfPrinter(big, QStringLiteral("single.pdf"));
    single.frame.print(&big);
    QVERIFY(single.frame.lastPrintScale() > 1.0);
    QVERIFY(qFuzzyCompare(1100 * single.frame.lastPrintScale(), big.pageRect(QPrinter::DevicePixel).width()));
    QCOMPARE(pages(one), 1);
}

QTEST_MAIN(TstCanvas)
#include "tst_canvas.moc"
