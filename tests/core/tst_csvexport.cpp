// The maximum-count export, driven headless through Session over the export test catalog (its
// header comment lists what Maximize reaches for each fixture).
#include "CatalogFixture.h"

#include "calc/CsvExport.h"

#include <QBuffer>

namespace
{

// A session with the progress a dialog would show and its Cancel.
struct WatchedSession : Session {
    using Session::Session;
    QList<int> progressSeen;
    int cancelAfterRows = -1; // report a cancel after this many rows

    bool progress(int percent) override
    {
        progressSeen.append(percent);
        return !(cancelAfterRows >= 0 && progressSeen.size() >= cancelAfterRows);
    }
};

struct Harness : LoadedCatalog {
    WatchedSession s{db};

    Harness() : LoadedCatalog(QStringLiteral("calc/export.xml")) {}

    // What an export writes; complete tells whether it ran to the end.
    QByteArray written(bool (*exporter)(QIODevice&, ExportHost&), bool* complete = nullptr)
    {
        QBuffer buffer;
        buffer.open(QIODevice::WriteOnly);
        const bool done = exporter(buffer, s);
        if (complete)
            *complete = done;
        return buffer.data();
    }
    QByteArray exportAll(bool* complete = nullptr) { return written(CsvExport::exportAllFixtures, complete); }
    QByteArray exportCurrent(const QString& fixture)
    {
        s.selectFixture(db.fixtureNamed(fixture));
        return written(CsvExport::exportCurrentFixture);
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
    void lengths();
    void selectorState();
};

void TestCsvExport::allFixturesTable()
{
    Harness h;
    QVERIFY(h.ready());
    bool complete = false;
    const QByteArray written = h.exportAll(&complete);
    QVERIFY(complete);
    COMPARE_GOLDEN(written, "calc/export_all.csv");
    QCOMPARE(h.s.progressSeen, (QList<int>{25, 50, 75, 100}));
    // The export leaves the last fixture's enabler selected.
    QCOMPARE(h.s.header().supply, QStringLiteral("Line Voltage"));
}

void TestCsvExport::cancelStopsBeforeNextRow()
{
    Harness h;
    QVERIFY(h.ready());
    h.s.cancelAfterRows = 1;
    bool complete = true;
    const QByteArray written = h.exportAll(&complete);
    QVERIFY(!complete);
    QCOMPARE(written, QByteArray("Fixtures, 120v, 277v\nAlpha, 2 (8.5ft), 1 (4.3ft)\n"));
    QCOMPARE(h.s.progressSeen, QList<int>{25});

    // Cancelled after the last row of the first enabler: no section line follows.
    Harness h2;
    h2.s.cancelAfterRows = 2;
    QVERIFY(!h2.exportAll().contains("Line Voltage,"));
}

void TestCsvExport::currentFixtureTable()
{
    Harness h;
    QVERIFY(h.ready());
    h.s.selectEnabler(h.db.supplyNamed(QStringLiteral("Signal Feeder Pro")));
    QCOMPARE(h.exportCurrent(QStringLiteral("Beta, Wide")),
             QByteArray("Fixtures, 120v\nBeta Wide, 3 (7.5ft)\n\n"));
    // Progress counts against both enablers' rows.
    QCOMPARE(h.s.progressSeen, QList<int>{25});
    // The first voltage starts from a fresh canvas, the next goes on from the tree it left.
    QCOMPARE(h.exportCurrent(QStringLiteral("Alpha")),
             QByteArray("Fixtures, 120v, 277v\nAlpha, 2 (8.5ft), 1 (4.3ft)\n\n"));

    h.s.selectEnabler(h.db.supplyNamed(QStringLiteral("Line Voltage")));
    QCOMPARE(h.exportCurrent(QStringLiteral("Delta")), QByteArray("Fixtures\nDelta\n\n"));
    // A voltage the catalog lists twice is a column twice here (the all-fixtures table lists it once);
    // the second goes on from the first one's tree.
    QCOMPARE(h.exportCurrent(QStringLiteral("Gamma")), QByteArray("Fixtures, 277v, 277v\nGamma, 2 (20ft), 2 (20ft)\n\n"));
}

void TestCsvExport::lengths()
{
    // One decimal, halves away from zero, no trailing zero; huge lengths in exponent form.
    const QList<QPair<double, QString>> lengths{{152.54, "152.5"}, {4.25, "4.3"}, {0.25, "0.3"},
                                                {20.0, "20"},      {0.0, "0"},    {1234567.8, "1.23457e+06"}};
    for (const auto& [feet, text] : lengths)
        QCOMPARE(CsvExport::formatLength(feet), text);
}

void TestCsvExport::selectorState()
{
    // The selector state the session keeps and the window's combo boxes mirror: the lists an
    // enabler offers, the custom voltage kept across fixtures, and New's defaults (a voltage the
    // fixture offers stays, else its first; load and frequency go back; custom values stay).
    Harness h;
    QVERIFY(h.db.isValid());
    CircuitSelectors& state = h.s.header();
    h.s.selectEnabler(h.db.supplyNamed(QStringLiteral("Line Voltage")));
    QCOMPARE(state.fixtureNames(), (QStringList{"Gamma", "Delta"}));
    QVERIFY(state.controllerNames().isEmpty()); // no Feedwise output
    QCOMPARE(CircuitSelectors::voltageEntries(state.fixtureRecord()), (QStringList{"277", "277", "Other"}));
    QCOMPARE(state.lineVoltage, QStringLiteral("277"));
    state.lineVoltage = QStringLiteral("Other");
    state.customVoltage = 230;
    state.maxCircuitLoad = QStringLiteral("Other");
    state.frequency = QStringLiteral("50 Hz");
    h.s.selectFixture(h.db.fixtureNamed(QStringLiteral("Delta")));
    h.s.selectFixture(h.db.fixtureNamed(QStringLiteral("Gamma")));
    state.chooseDefaults();
    QCOMPARE(state.lineVoltage, QStringLiteral("Other"));
    QCOMPARE(state.inputs().lineVoltage, 230.0);
    state.lineVoltage = QStringLiteral("100");
    state.chooseDefaults();
    QCOMPARE(state.lineVoltage, QStringLiteral("277"));
    QCOMPARE(state.inputs().maxCircuitLoad, 15.0);
    QCOMPARE(state.inputs().frequency, 60);
    QCOMPARE(state.customVoltage, 230);
    state.chooseEnabler(nullptr);
    QVERIFY(state.supply.isEmpty() && state.fixture.isEmpty() && !state.enabler());
}

QTEST_GUILESS_MAIN(TestCsvExport)
#include "tst_csvexport.moc"
