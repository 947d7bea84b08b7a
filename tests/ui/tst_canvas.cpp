// The canvas: placement, connectors and boxes checked on rendered pixels, mouse and keys,
// deletion, the line key and printing.
#include "CatalogFixture.h"
#include "calc/Analysis.h"
#include "canvas/CFrame.h"
#include "catalog/DLRecords.h"
#include "model/CWidgetModel.h"

#include <QPainter>
#include <QPrinter>
#include <QScrollBar>
#include <QToolTip>

namespace
{
const QColor Background(240, 240, 240);
const QColor Red(255, 0, 0);
const QColor Orange(255, 128, 0);
const QColor LightBlue(140, 190, 232);

// Whether some pixel within radius of p has the colour c, each channel within tolerance:
// connectors are antialiased at their edges.
bool hasColour(const QImage& img, QPoint p, const QColor& c, int radius = 0, int tolerance = 0)
{
    for (int dy = -radius; dy <= radius; ++dy)
        for (int dx = -radius; dx <= radius; ++dx) {
            const QColor found =
                img.valid(p + QPoint(dx, dy)) ? img.pixelColor(p + QPoint(dx, dy)) : QColor();
            if (qAbs(found.red() - c.red()) <= tolerance && qAbs(found.green() - c.green()) <= tolerance &&
                qAbs(found.blue() - c.blue()) <= tolerance)
                return true;
        }
    return false;
}

QString describe(const QImage& img, QPoint p)
{
    return img.pixelColor(p).name() + QStringLiteral(" at %1,%2").arg(p.x()).arg(p.y());
}

// A pixel of exactly that colour at the point, or of nearly that colour next to it.
#define AT_COLOUR(img, point, colour)                                                                        \
    QVERIFY2(hasColour(img, point, colour), qPrintable(describe(img, point)))
#define NEAR_COLOUR(img, point, colour)                                                                      \
    QVERIFY2(hasColour(img, point, colour, 1, 12), qPrintable(describe(img, point)))

// One configuration shown on a canvas.
struct Canvas {
    explicit Canvas(const Database* db, QSize size = QSize(1600, 500)) : doc(db)
    {
        frame.resize(size);
        frame.setDocument(&doc);
        frame.show();
    }
    // The whole tree painted into an image at the view's scroll position, without zoom.
    QImage render(QSize size = QSize(1600, 500))
    {
        QImage img(size, QImage::Format_RGB32);
        img.fill(Background);
        QPainter painter(&img);
        painter.setRenderHint(QPainter::Antialiasing);
        frame.paintTree(painter);
        return img;
    }
    // Supply, branch wire, junction box; below the box two fixtures, a leader with a fixture and
    // a receiver with a fixture (current). Returns them in that order.
    QList<CWidget*> branches(DLPowerSupply* supply, DLFixture* fixture)
    {
        QList<CWidget*> tree{doc.addSupply(supply)};
        CWidget* box = doc.addJunctionBox();
        tree << box->parentWidget() << box << doc.addFixture(fixture) << doc.addFixture(fixture);
        doc.setCurrent(box);
        tree << doc.addLeader(fixture) << doc.addFixture(fixture);
        doc.setCurrent(box);
        tree << doc.addReceiver() << doc.addFixture(fixture);
        return tree;
    }
    // Under a junction box four branches of a leader and three fixtures: wider and taller than
    // a 700 x 160 view. Returns each branch's first fixture (columns 10, 420, 830, 1240).
    QList<CWidget*> fourBranches(DLFixture* fixture)
    {
        CWidget* box = doc.addJunctionBox();
        QList<CWidget*> firsts;
        for (int branch = 0; branch < 4; ++branch) {
            doc.setCurrent(box);
            doc.addLeader(fixture);
            firsts << doc.addFixture(fixture);
            doc.addFixture(fixture);
            doc.addFixture(fixture);
        }
        return firsts;
    }
    ConfigDocument doc;
    CFrame frame;
};
} // namespace

class TestCanvas : public QObject
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
    void mouseKeysAndDeletion();
    void scrolling();
    void printing();
    void voltageOverlayAndTooltip();
};

void TestCanvas::initTestCase()
{
    Q_INIT_RESOURCE(runplan);
    RecordingReporter reporter;
    QVERIFY(m_db.loadFile(sampleCatalogPath(), &reporter));
    m_feeder = m_db.supplyNamed(QStringLiteral("Signal Feeder Pro"));
    m_lineVoltage = m_db.supplyNamed(QStringLiteral("Line Voltage"));
    m_fixture = m_db.fixtureNamed(QStringLiteral("Stylebar Tunable Dynaline 1ft"));
    QVERIFY(m_feeder && m_lineVoltage && m_fixture);
}

void TestCanvas::placement()
{
    {
        // A single supply sits at (10, 10) and has no connector.
        Canvas c(&m_db);
        QCOMPARE(c.frame.itemRectOf(c.doc.addSupply(m_feeder)), QRect(10, 10, 220, 20));
        const QImage img = c.render();
        AT_COLOUR(img, QPoint(10, 20), QColor(64, 64, 64));
        for (int y = 0; y < img.height(); ++y)
            for (int x = 0; x < img.width(); ++x)
                if (x > 233 || y > 33 || x < 8)
                    QVERIFY2(img.pixel(x, y) == Background.rgb(), qPrintable(describe(img, {x, y})));
    }

    // A chain stays in one column; a cable sits 240 to the right, centred on the gap it bridges.
    // The second branch opens one column right of the first branch's last leaf, the receiver's
    // branch is the third column, and a fixture on a receiver is 8 higher than one below a box.
    Canvas c(&m_db);
    const QList<CWidget*> tree = c.branches(m_feeder, m_fixture);
    const QList<QRect> rects{{250, 24, 100, 20}, {10, 38, 100, 20},  {10, 66, 100, 20},  {10, 94, 100, 20},
                             {660, 52, 100, 20}, {420, 66, 100, 20}, {830, 66, 100, 20}, {830, 86, 100, 20}};
    for (int i = 0; i < rects.size(); ++i)
        QCOMPARE(c.frame.itemRectOf(tree.at(i + 1)), rects.at(i));

    // The boxes are drawn where they are placed: a border pixel, and nothing just outside it.
    QImage img = c.render();
    AT_COLOUR(img, QPoint(10, 104), QColor(0, 0, 128));
    AT_COLOUR(img, QPoint(6, 104), Background);
    AT_COLOUR(img, QPoint(350, 34), QColor(143, 69, 0));
    AT_COLOUR(img, QPoint(354, 34), Background);
    AT_COLOUR(img, QPoint(830, 76), QColor(0, 64, 0));
    AT_COLOUR(img, QPoint(826, 76), Background);
    // The selected box (the fixture on the receiver) is filled, light at the top and in its fill
    // colour from half its height; the receiver is not filled.
    AT_COLOUR(img, QPoint(833, 101), QColor(220, 220, 255));
    QVERIFY2(qRed(img.pixel(833, 89)) > 235, qPrintable(describe(img, {833, 89})));
    AT_COLOUR(img, QPoint(830, 96), QColor(0, 0, 255));
    AT_COLOUR(img, QPoint(833, 81), Background);
    QVERIFY(!hasColour(img, {20, 20}, Red, 3, 12));

    // Error marks: supplies and receivers the analysis marked get a red dot; fixtures never do.
    c.doc.setErrorMarks({tree.first(), tree.at(7), tree.at(8)});
    img = c.render();
    AT_COLOUR(img, QPoint(20, 20), Red);
    AT_COLOUR(img, QPoint(840, 76), Red);
    QVERIFY(!hasColour(img, {840, 96}, Red, 3, 12));
}

void TestCanvas::connectorColours()
{
    for (const auto& [supply, wiring] : {std::pair{m_feeder, Orange}, std::pair{m_lineVoltage, LightBlue}}) {
        Canvas c(&m_db);
        c.branches(supply, m_fixture);
        const QImage img = c.render();
        // Supply to its branch wire, branch wire back to the box; the receiver's wire is Feedwise.
        NEAR_COLOUR(img, QPoint(240, 28), wiring);
        NEAR_COLOUR(img, QPoint(180, 42), wiring);
        NEAR_COLOUR(img, QPoint(1000, 68), Red);
        // Along the box's centre line (48) the Feedwise line lies one above, the other one below.
        AT_COLOUR(img, QPoint(300, 47), Red);
        AT_COLOUR(img, QPoint(300, 49), wiring);
        for (int y : {45, 50})
            AT_COLOUR(img, QPoint(300, y), Background);
    }

    // A second supply on the line-voltage side turns every connector painted after its own blue;
    // those painted before it keep the Dynaline colour, and the next pass starts afresh.
    Canvas c(&m_db);
    c.doc.addSupply(m_feeder);
    CWidget* box = c.doc.addJunctionBox();
    QVERIFY(c.doc.addFixture(m_fixture)); // painted first among the box's children
    c.doc.setCurrent(box);
    auto* second = qobject_cast<SupplyWidget*>(c.doc.addSupply(m_lineVoltage));
    QVERIFY(second);
    second->setExplicitLocation(QString());
    const QImage img = c.render();
    NEAR_COLOUR(img, QPoint(129, 63), Orange); // the bend from the box to its fixture
    AT_COLOUR(img, QPoint(300, 47), Red);      // the second supply's Feedwise branch
    NEAR_COLOUR(img, QPoint(240, 28), LightBlue);
    c.doc.setCurrent(second->parentWidget());
    QVERIFY(c.doc.removeCurrent());
    NEAR_COLOUR(c.render(), QPoint(240, 28), Orange);

    // On a Feedwise enabler the wire and the junction box on it are Feedwise: red, no orange at all.
    Canvas feedwise(&m_db);
    QVERIFY(feedwise.doc.addSupply(m_feeder)->applyEditorValue(PropOutputMode, QStringLiteral("Feedwise")));
    QVERIFY(feedwise.doc.addJunctionBox());
    const QImage all = feedwise.render();
    const QPoint centre = all.rect().center(); // a radius reaching every pixel
    QVERIFY(hasColour(all, centre, Red, all.width()) && !hasColour(all, centre, Orange, all.width()));
}

void TestCanvas::mouseKeysAndDeletion()
{
    Canvas c(&m_db, QSize(900, 500));
    const QList<CWidget*> tree = c.branches(m_feeder, m_fixture);
    CWidget* box = tree.at(2);
    CWidget* f1 = tree.at(3); // (10, 66, 100, 20), f2 below it
    QVERIFY(QTest::qWaitForWindowExposed(&c.frame));
    QSignalSpy selection(&c.frame, qOverload<const QModelIndex&>(&CFrame::selectionChanged));
    QSignalSpy frameChanged(&c.frame, &CFrame::frameChanged);

    // At zoom 1 the point (50, 40) is on the junction box; at half size it is (100, 80) on the
    // canvas: the first fixture. The paint pass is scaled too.
    c.frame.showTopLeft();
    QTest::mouseClick(c.frame.viewport(), Qt::LeftButton, {}, QPoint(50, 40));
    QCOMPARE(c.doc.current(), box);
    c.frame.handleZoomChanged(0.5);
    QTest::mouseClick(c.frame.viewport(), Qt::LeftButton, {}, QPoint(50, 40));
    QCOMPARE(c.doc.current(), f1);
    const QImage shown = c.frame.viewport()->grab().toImage();
    QVERIFY2(qGray(shown.pixel(5, 10)) < 215, qPrintable(describe(shown, {5, 10})));
    AT_COLOUR(shown, QPoint(10, 20), Background);

    // Arrow keys never move the selection; Delete asks the main window to delete.
    QSignalSpy deleteAsked(&c.frame, &CFrame::deleteCurrentCWidget);
    selection.clear();
    for (Qt::Key key : {Qt::Key_Up, Qt::Key_Down, Qt::Key_Left, Qt::Key_Right, Qt::Key_Home, Qt::Key_End})
        QTest::keyClick(&c.frame, key);
    QTest::keyClick(&c.frame, Qt::Key_Delete);
    QCOMPARE(deleteAsked.count(), 1);
    QCOMPARE(c.doc.count(ItemAny), 10);

    // Deleting a subtree asks first. Cancel: nothing changes and nothing is announced.
    int asked = 0;
    bool answer = false;
    c.frame.confirmDelete = [&]() {
        ++asked;
        return answer;
    };
    c.doc.setModified(false);
    c.frame.deleteCurrent();
    QCOMPARE(asked, 1);
    QCOMPARE(c.doc.count(ItemFixture), 4);
    QCOMPARE(c.doc.current(), f1);
    QVERIFY(!c.doc.isModified());
    QCOMPARE(frameChanged.count() + selection.count(), 0);

    // OK: the subtree goes and its parent is selected.
    answer = true;
    c.frame.deleteCurrent();
    QCOMPARE(c.doc.count(ItemFixture), 2);
    QVERIFY(c.doc.isModified());
    QCOMPARE(frameChanged.count(), 1);
    QCOMPARE(selection.last().at(0).value<QModelIndex>(), c.doc.indexOf(box));

    // A leaf is deleted without a question.
    QVERIFY(c.doc.addFixture(m_fixture));
    c.frame.deleteCurrent();
    QCOMPARE(asked, 2);
    QCOMPARE(c.doc.count(ItemFixture), 2);
    QCOMPARE(c.doc.current(), box);
}

void TestCanvas::scrolling()
{
    Canvas c(&m_db, QSize(700, 160));
    c.doc.addSupply(m_feeder);
    QVERIFY(QTest::qWaitForWindowExposed(&c.frame));
    QWidget* key = c.frame.lineKey();
    QVERIFY(key->isVisible());
    QCOMPARE(key->geometry().bottomRight(), QPoint(699, 159));
    const QList<CWidget*> columns = c.fourBranches(m_fixture);
    QCoreApplication::processEvents();
    QScrollBar* hbar = c.frame.horizontalScrollBar();
    QScrollBar* vbar = c.frame.verticalScrollBar();
    QVERIFY2(hbar->value() > 0, "an insertion scrolls the new component into view");
    // Once the run outgrows the view, the line key sits in the corner left by the two bars.
    QVERIFY(hbar->isVisible() && vbar->isVisible());
    QCOMPARE(key->geometry().bottomRight(), QPoint(vbar->mapTo(&c.frame, QPoint(0, 0)).x() - 1,
                                                   hbar->mapTo(&c.frame, QPoint(0, 0)).y() - 1));

    // A click selects without moving the view, near the right edge too.
    c.frame.showTopLeft();
    for (CWidget* clicked : {columns[0], columns[1]}) {
        QTest::mouseClick(c.frame.viewport(), Qt::LeftButton, {}, c.frame.itemRectOf(clicked).center());
        QCOMPARE(c.doc.current(), clicked);
    }
    QCOMPARE(hbar->value(), 0);
    QCOMPARE(vbar->value(), 0);

    // A page is the viewport, also after a resize: paging moves the view by what it shows.
    for (QSize size : {QSize(900, 150), QSize(650, 140)}) {
        c.frame.resize(size);
        QCoreApplication::processEvents();
        QCOMPARE(hbar->pageStep(), c.frame.viewport()->width());
        QCOMPARE(vbar->pageStep(), c.frame.viewport()->height());
    }
    hbar->triggerAction(QAbstractSlider::SliderPageStepAdd);
    QCOMPARE(hbar->value(), c.frame.viewport()->width());

    // A paint event draws only what meets the viewport: the screen must show exactly what the
    // whole tree painted at the same scroll position shows, boxes and connectors cut by the
    // viewport's edges included.
    for (const QPoint scroll : {QPoint(0, 0), QPoint(470, 60), QPoint(1200, 120)}) {
        hbar->setValue(scroll.x());
        vbar->setValue(scroll.y());
        QWidget* viewport = c.frame.viewport();
        const QImage shown = viewport->grab().toImage().convertToFormat(QImage::Format_RGB32);
        QVERIFY(shown != QImage(viewport->size(), QImage::Format_RGB32));
        QCOMPARE(shown, c.render(viewport->size()));
    }
}

void TestCanvas::printing()
{
    QTemporaryDir dir;
    const auto pagesPrinted = [&dir](Canvas& c, QPrinter& printer) {
        printer.setOutputFormat(QPrinter::PdfFormat);
        printer.setOutputFileName(dir.filePath(QStringLiteral("canvas.pdf")));
        c.frame.print(&printer);
        return fileBytes(printer.outputFileName()).count("/Type /Page\n");
    };

    // A wide run is scaled down to one page, keeping its proportions.
    Canvas c(&m_db);
    c.doc.addSupply(m_feeder);
    c.fourBranches(m_fixture);
    QCOMPARE(c.frame.drawingExtent(), QSize(5 * 550, 122 + 100));
    QPrinter printer(QPrinter::ScreenResolution);
    QCOMPARE(pagesPrinted(c, printer), 1);
    const QRectF page = printer.pageRect(QPrinter::DevicePixel);
    const QSizeF printed = QSizeF(c.frame.drawingExtent()) * c.frame.lastPrintScale();
    QVERIFY(printed.width() <= page.width() + 1e-6 && printed.height() <= page.height() + 1e-6);
    QVERIFY(qFuzzyCompare(printed.width(), page.width()) || qFuzzyCompare(printed.height(), page.height()));

    // A single supply on a wide page is scaled up to the page width.
    Canvas single(&m_db);
    single.doc.addSupply(m_feeder);
    QPrinter big(QPrinter::ScreenResolution);
    big.setPageSize(QPageSize(QPageSize::A3));
    big.setPageOrientation(QPageLayout::Landscape);
    QCOMPARE(pagesPrinted(single, big), 1);
    QVERIFY(qFuzzyCompare(1100 * single.frame.lastPrintScale(), big.pageRect(QPrinter::DevicePixel).width()));
}

// Off, the figures change nothing in the painting; on, the voltage under each box takes the colour
// of its margin to the run's minimum. The tooltip adds the figures to the component's own text.
void TestCanvas::voltageOverlayAndTooltip()
{
    Canvas c(&m_db);
    c.doc.addSupply(m_feeder);
    CWidget* fixture = c.doc.addFixture(m_fixture);
    CircuitInputs in;
    in.enabler = m_feeder;
    in.selectedFixture = m_fixture;
    AnalysisResult result = analyze(c.doc.root(), in, m_db);
    const QImage plain = c.render();
    c.frame.setAnalysis(&result);
    QCOMPARE(c.render(), plain);

    // The fixture's text sits in the gap under its box, right-aligned.
    const QRect box = c.frame.itemRectOf(fixture);
    // Which of green, amber and red the (antialiased) text pixels there lean to.
    const auto textColours = [&](const QImage& img) {
        QSet<QString> colours;
        for (int y = box.bottom() + 1; y <= box.bottom() + 8; ++y)
            for (int x = box.right() - 40; x <= box.right(); ++x) {
                const QColor p = img.pixelColor(x, y);
                const int hue = (p.hue() + 30) % 360;     // red about 30, amber 66, green 150
                if (p.hsvSaturation() > 150 && hue < 210) // not the selected box's blue
                    colours.insert(hue > 110 ? "green" : hue > 50 ? "amber" : "red");
            }
        return colours;
    };
    const ComponentFigures* figures = result.figuresAt(fixture);
    QVERIFY(figures && figures->minVoltage > 0.0 && figures->voltage > figures->minVoltage * 1.1);
    c.frame.setShowVoltages(true);
    auto& atFixture = *const_cast<ComponentFigures*>(figures);
    for (const auto& [minimum, colour] : {std::pair{atFixture.minVoltage, "green"},
                                          {atFixture.voltage / 1.05, "amber"},
                                          {atFixture.voltage + 1.0, "red"}}) {
        atFixture.minVoltage = minimum;
        QCOMPARE(textColours(c.render()), QSet<QString>{colour});
    }
    c.frame.setShowVoltages(false);
    QCOMPARE(c.render(), plain);

    const QString own = c.doc.model()->data(c.doc.indexOf(fixture), Qt::ToolTipRole).toString();
    const QPoint at = box.center();
    QHelpEvent help(QEvent::ToolTip, at, c.frame.viewport()->mapToGlobal(at));
    QApplication::sendEvent(c.frame.viewport(), &help);
    const QString tip = QToolTip::text();
    QVERIFY2(tip.startsWith(own + QStringLiteral("\n\nVoltage: ")), qPrintable(tip));
    QVERIFY(tip.contains(QStringLiteral("Drop from the enabler: ")));
}

QTEST_MAIN(TestCanvas)
#include "tst_canvas.moc"
