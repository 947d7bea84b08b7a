// The maximum-count export, driven headless through Session over the export test catalog (its
// header comment lists what Maximize reaches for each fixture).
#include "CatalogFixture.h"

#include "calc/CsvExport.h"
#include "model/CWidget.h"

#include <QBuffer>

namespace
{

// The session as the export sees it, with the progress a dialog would show and its Cancel.
struct WatchedSession : ExportHost {
    Session& s;
    QList<int> progressSeen;
    int cancelAfterRows = -1; // report a cancel after this many rows

    explicit WatchedSession(Session& session) : s(session) {}
    const Database& database() const override { return s.database(); }
    void selectEnabler(const DLPowerSupply* e) override { s.selectEnabler(e); }
    void selectFixture(const VxFixture* f) override { s.selectFixture(f); }
    void selectLineVoltage(int volts) override { s.selectLineVoltage(volts); }
    void resetWithFixture() override { s.resetWithFixture(); }
    void maximize() override { s.maximize(); }
    int fixtureCount() const override { return s.fixtureCount(); }
    double totalLength() const override { return s.totalLength(); }
    const VxFixture* currentFixture() const override { return s.currentFixture(); }
    bool progress(int percent) override
    {
        progressSeen.append(percent);
        return !(cancelAfterRows >= 0 && progressSeen.size() >= cancelAfterRows);
    }
};

struct Harness : CatalogSession {
    WatchedSession host{*session};

    Harness() : CatalogSession(QStringLiteral("calc/export.xml")) {}

    QByteArray exportAll(bool* complete = nullptr)
    {
        QBuffer buffer;
        buffer.open(QIODevice::WriteOnly);
        const bool done = CsvExport::exportAllFixtures(buffer, host);
        if (complete)
            *complete = done;
        return buffer.data();
    }
    QByteArray exportCurrent(const QString& fixture)
    {
        session->selectFixture(db.fixtureNamed(fixture));
        QBuffer buffer;
        buffer.open(QIODevice::WriteOnly);
        CsvExport::exportCurrentFixture(buffer, host);
        return buffer.data();
    }
};

} // namespace

class TestCsvExport : public QObject
{
    Q_OBJECT

private slots:
    void allFixturesTable();
    void cancelStopsBeforeNextRow();
    void currentFixtureTable();
    void lengthsAndColumns();
    void sessionSelections();
};

void TestCsvExport::allFixturesTable()
{
    Harness h;
    QVERIFY(h.ready());
    bool complete = false;
    const QByteArray written = h.exportAll(&complete);
    QVERIFY(complete);
    COMPARE_GOLDEN(written, "calc/export_all.csv");
    QCOMPARE(h.host.progressSeen, (QList<int>{25, 50, 75, 100}));
    // The export leaves the last fixture's enabler selected.
    QCOMPARE(h.session->header().supply, QStringLiteral("Line Voltage"));
}

void TestCsvExport::cancelStopsBeforeNextRow()
{
    Harness h;
    QVERIFY(h.ready());
    h.host.cancelAfterRows = 1;
    bool complete = true;
    const QByteArray written = h.exportAll(&complete);
    QVERIFY(!complete);
    QCOMPARE(written, QByteArray("Fixtures, 120v, 277v\nAlpha, 2 (8.5ft), 1 (4.3ft)\n"));
    QCOMPARE(h.host.progressSeen, QList<int>{25});

    // Cancelled after the last row of the first enabler: no section line follows.
    Harness h2;
    h2.host.cancelAfterRows = 2;
    QVERIFY(!h2.exportAll().contains("Line Voltage,"));
}

void TestCsvExport::currentFixtureTable()
{
    Harness h;
    QVERIFY(h.ready());
    h.session->selectEnabler(h.db.supplyNamed(QStringLiteral("Signal Feeder Pro")));
    QCOMPARE(h.exportCurrent(QStringLiteral("Beta, Wide")),
             QByteArray("Fixtures, 120v\nBeta Wide, 3 (7.5ft)\n\n"));
    // Progress counts against both enablers' rows.
    QCOMPARE(h.host.progressSeen, QList<int>{25});
    // The first voltage starts from a fresh canvas, the next goes on from the tree it left.
    QCOMPARE(h.exportCurrent(QStringLiteral("Alpha")),
             QByteArray("Fixtures, 120v, 277v\nAlpha, 2 (8.5ft), 1 (4.3ft)\n\n"));

    h.session->selectEnabler(h.db.supplyNamed(QStringLiteral("Line Voltage")));
    QCOMPARE(h.exportCurrent(QStringLiteral("Delta")), QByteArray("Fixtures\nDelta\n\n"));
    // A voltage the catalog lists twice is a column twice here (the all-fixtures table lists it once);
    // the second goes on from the first one's tree.
    QCOMPARE(h.exportCurrent(QStringLiteral("Gamma")), QByteArray("Fixtures, 277v, 277v\nGamma, 2 (20ft), 2 (20ft)\n\n"));
}

void TestCsvExport::lengthsAndColumns()
{
    // One decimal, halves away from zero, no trailing zero; huge lengths in exponent form.
    const QList<QPair<double, QString>> lengths{{152.54, "152.5"}, {4.25, "4.3"}, {0.25, "0.3"},
                                                {20.0, "20"},      {0.0, "0"},    {1234567.8, "1.23457e+06"}};
    for (const auto& [feet, text] : lengths)
        QCOMPARE(CsvExport::formatLength(feet), text);

    Harness h;
    QVERIFY(h.ready());
    QCOMPARE(CsvExport::allFixturesColumns(h.db), (QList<int>{120, 277}));
    QCOMPARE(CsvExport::fixtureColumns(*h.db.fixtureNamed(QStringLiteral("Alpha"))), (QList<int>{120, 277}));
    QVERIFY(CsvExport::fixtureColumns(*h.db.fixtureNamed(QStringLiteral("Delta"))).isEmpty());
}

void TestCsvExport::sessionSelections()
{
    Harness h;
    QVERIFY(h.ready());
    Session& s = *h.session;
    // Constructed like the main window: first enabler, its first fixture, 120 V, a placed enabler.
    QCOMPARE(s.header().supply, QStringLiteral("Signal Feeder Pro"));
    QCOMPARE(s.header().fixture, QStringLiteral("Alpha"));
    QCOMPARE(s.header().lineVoltage, QStringLiteral("120"));
    QCOMPARE(s.document().root()->catalogItem()->name, QStringLiteral("Signal Feeder Pro"));

    // A voltage the fixture does not list is refused; one it lists re-runs the analysis.
    s.resetWithFixture();
    s.selectLineVoltage(208);
    QCOMPARE(s.header().lineVoltage, QStringLiteral("120"));
    s.selectLineVoltage(277);
    QCOMPARE(s.header().lineVoltage, QStringLiteral("277"));
    QCOMPARE(s.result().totalPower, 24.0);

    // A fixture keeps the voltage where it lists it, else takes its starting voltage.
    s.selectFixture(h.db.fixtureNamed(QStringLiteral("Beta, Wide")));
    QCOMPARE(s.header().lineVoltage, QStringLiteral("120"));
    s.header().lineVoltage = QStringLiteral("277");
    s.selectFixture(h.db.fixtureNamed(QStringLiteral("Alpha")));
    QCOMPARE(s.header().lineVoltage, QStringLiteral("277"));

    // An enabler change resets the canvas to that enabler alone, with its first fixture selected.
    s.maximize();
    QVERIFY(s.fixtureCount() > 0);
    s.selectEnabler(h.db.supplyNamed(QStringLiteral("Line Voltage")));
    QCOMPARE(s.header().fixture, QStringLiteral("Gamma"));
    QCOMPARE(s.header().lineVoltage, QStringLiteral("277"));
    QCOMPARE(s.document().count(ItemAny), 1);
    QCOMPARE(s.document().root()->catalogItem()->name, QStringLiteral("Line Voltage"));
    QCOMPARE(s.currentFixture(), h.db.fixtureNamed(QStringLiteral("Gamma")));

    // A custom voltage stays chosen across fixture changes, as in the window.
    s.header().lineVoltage = QStringLiteral("Other");
    s.selectFixture(h.db.fixtureNamed(QStringLiteral("Beta, Wide")));
    QCOMPARE(s.header().lineVoltage, QStringLiteral("Other"));
}

QTEST_GUILESS_MAIN(TestCsvExport)
#include "tst_csvexport.moc"
