// Catalog loader, records and per-voltage lookups, driven by the files in tests/data/catalog, by
// generated hostile documents and by the shipped sample catalog.

#include "CatalogFixture.h"

#include "catalog/DLRecords.h"
#include "model/CWidget.h"

#include <algorithm>
#include <climits>

namespace
{

// A file of tests/data/catalog loaded with a recording reporter.
struct Loaded : LoadedCatalog {
    explicit Loaded(const QString& file) : LoadedCatalog(QStringLiteral("catalog/") + file) {}
};

bool isEmptyCatalog(const Database& db)
{
    return db.supplies().isEmpty() && db.fixtures().isEmpty() && db.receivers().isEmpty() &&
           db.junctionBoxes().isEmpty() && db.branchWires().isEmpty() && db.locations().isEmpty() &&
           db.controllers().isEmpty() && db.outputModes().isEmpty() && db.version().isEmpty();
}

template <typename List> QString namesOf(const List& records)
{
    QStringList out;
    for (const auto* r : records)
        out.append(r ? r->name : QStringLiteral("-"));
    return out.join('|');
}

template <typename Map> QString mapText(const Map& map)
{
    QStringList out;
    for (auto it = map.begin(); it != map.end(); ++it)
        out << QStringLiteral("%1=%2").arg(it.key()).arg(it.value());
    return out.join(' ');
}

QString frequencies(const FrequencyTable& table)
{
    QStringList out;
    for (auto it = table.begin(); it != table.end(); ++it)
        out << QStringLiteral("%1V/%2Hz=%3/%4")
                   .arg(it.key().first).arg(it.key().second).arg(it->inrushCurrent).arg(it->leakage);
    return out.join(' ');
}

// Every field of every record, one record a line (cables and wires indented below their owner).
QString cables(const QList<VxJumper*>& list)
{
    QString out;
    for (const VxJumper* c : list) {
        out += QStringLiteral("  cable %1 gauge=%2 custom=%3 length=%4 maxLeader=%5 ohms=%6 inARow=%7 "
                              "defaultLength=%8 defaultWire=%9\n")
                   .arg(c->name, c->standardGauge).arg(c->hasCustomWires).arg(c->electricalLength)
                   .arg(c->maxLeaderLength).arg(c->resistance).arg(c->maxInARow).arg(c->defaultCustomLength)
                   .arg(c->defaultWire() ? c->defaultWire()->name : QStringLiteral("-"));
        for (const VxWire* w : c->customWires)
            out += QStringLiteral("    wire %1 ohms=%2 max=%3\n").arg(w->name).arg(w->resistance).arg(w->maxLength);
    }
    return out;
}

QString recordText(const Database& db)
{
    QString out = QStringLiteral("version %1\ncontrollers %2\nlocations %3\noffered %4\nmodes %5\n")
                      .arg(db.version(), mapText(db.controllers()), mapText(db.locations()),
                           db.locationNames().join('|'), mapText(db.outputModes()));
    for (const DLPowerSupply* s : db.supplies())
        out += QStringLiteral("supply %1 modes=%2 length=%3 perRun=%4 count=%5 pf=%6 power=%7 fixtures=%8 %9\n")
                   .arg(s->name, s->outputModes.join('|')).arg(s->maxElectricalLength)
                   .arg(s->maxElectricalLengthPerRun).arg(s->maxNumFixtures).arg(s->powerFactor).arg(s->power)
                   .arg(namesOf(s->fixtures), frequencies(s->voltageAttributes));
    for (const DLFixture* f : db.fixtures()) {
        QStringList volts;
        for (int v : f->validVoltages)
            volts << QString::number(v);
        out += QStringLiteral("fixture %1 short=%2 inline=%3 family=%4 pf=%5 supplies=%6 volts=%7 indexes=%8/%9\n")
                   .arg(f->name, f->shortName).arg(f->isInline).arg(f->family).arg(f->powerFactor)
                   .arg(namesOf(f->validSupplies), volts.join(' ')).arg(f->defaultLeader).arg(f->defaultJumper);
        out += QStringLiteral("  pfBy %1; countBy %2; 15A %3; 20A %4; currentBy %5; powerBy %6; %7\n")
                   .arg(mapText(f->powerFactorByVoltage), mapText(f->maxCountByVoltage),
                        mapText(f->maxCount15AByVoltage), mapText(f->maxCount20AByVoltage),
                        mapText(f->maxCurrentByVoltage), mapText(f->powerByVoltage),
                        frequencies(f->frequencyAttributes));
        out += QStringLiteral("  temp=%1 ohms=%2 length=%3 power=%4 maxPower=%5 maxDrop=%6 minV=%7 maxCurrent=%8 "
                              "maxLength=%9")
                   .arg(f->maxTemp).arg(f->resistance).arg(f->electricalLength).arg(f->power).arg(f->maxPower)
                   .arg(f->maxVoltageDrop).arg(f->minVoltage).arg(f->maxFixtureCurrent).arg(f->maxFixtureLength);
        out += QStringLiteral(" dropShare=%1 fudge=%2 mode=%3 jumperRequired=%4 startV=%5 leader=%6 jumper=%7\n")
                   .arg(f->voltageDropPercent).arg(f->fudgeFactor).arg(f->safetyRequired).arg(f->jumperRequired)
                   .arg(f->startingVoltage).arg(namesOf(QList<const VxJumper*>{f->defaultLeaderCable()}),
                                                namesOf(QList<const VxJumper*>{f->defaultJumperCable()}));
        out += cables(f->leaders) + cables(f->jumpers);
    }
    for (const DLReceiver* r : db.receivers())
        out += QStringLiteral("receiver %1 length=%2 perRun=%3 boxes=%4 power=%5 pf=%6 ohms=%7 eLength=%8\n")
                   .arg(r->name).arg(r->maxElectricalLength).arg(r->maxElectricalLengthPerRun)
                   .arg(namesOf(r->validJunctionBoxes)).arg(r->power).arg(r->powerFactor).arg(r->resistance)
                   .arg(r->electricalLength);
    for (const DLJunctionBox* b : db.junctionBoxes())
        out += QStringLiteral("box %1 volume=%2 ports=%3 receiverOnly=%4 mountable=%5 reserved=%6\n")
                   .arg(b->name).arg(b->volume).arg(b->numPorts).arg(b->receiverOnly).arg(b->receiverMountable)
                   .arg(mapText(b->reservedPorts));
    return out + QStringLiteral("branch wires\n") + cables(db.branchWires());
}

const char* const PlainFixtureFields =
    "<MaxTemp>40</MaxTemp><Resistance>10</Resistance><ElectricalLength>1</ElectricalLength>"
    "<FudgeFactor>1</FudgeFactor><SafetyRequired>0</SafetyRequired><StartingVoltage>120</StartingVoltage>"
    "<MaxVoltageDrop>5</MaxVoltageDrop>";

} // namespace

class TestCatalog : public QObject
{
    Q_OBJECT

private slots:
    void recordsOfEachFile()
    {
        // Whether each file loaded, what loading said word for word (a refused file: the file's
        // error string or the parser's words, line and column) and every record it left, against
        // records/<file>.txt. A refused file contributes nothing, not even the records before the
        // damage. Among the rest: a version read only below the root, an external entity never
        // fetched, milliohms as ohms, a blank name as no name, only Dynaline products, supplies
        // read before fixtures whatever the order, a disabled fixture left out (its supply still
        // names it), fields after a failing one left as constructed (Power and the voltage tables
        // read all the same), numbers that do not convert, only positive per-voltage values, later
        // entries replacing earlier ones, out-of-range default indexes falling back to the first cable.
        for (const char* name : {"absent.xml", "empty.xml", "garbage.bin", "truncated.xml", "entity_bomb.xml",
                                 "only_version.xml", "version_nested.xml", "external_entity.xml", "maps.xml",
                                 "names.xml", "types.xml", "supplies.xml", "missing_fields.xml", "numbers.xml",
                                 "tables.xml", "receivers.xml"}) {
            Loaded l(QString::fromUtf8(name));
            int warnings = 0;
            for (const auto& m : l.loadMessages.messages)
                warnings += m.kind == Reporter::Kind::Warning;
            const QString head = QStringLiteral("loaded %1, valid %2, %3 warnings\n")
                                     .arg(l.loaded).arg(l.db.isValid()).arg(warnings);
            const QByteArray text = head.toUtf8() + l.messageText() + "----\n" + recordText(l.db).toUtf8();
            COMPARE_GOLDEN(text, "catalog/records/" + QFileInfo(name).baseName() + ".txt");
        }
    }

    void lookupsAndSecondLoads()
    {
        // The first branch wire goes to the first location, and locations are offered in file order.
        Loaded maps("maps.xml");
        ConfigDocument doc(&maps.db);
        QCOMPARE(doc.lastLocation(), "Wet");
        BranchWireWidget wire(&maps.db, maps.db.firstBranchWire());
        wire.setLocation(doc.lastLocation());
        QCOMPARE(wire.editorRule(PropLocation).choices, QStringList({"Wet", "Above Ground", "Plenum"}));
        // A second load keeps the first version.
        maps.loadMessages.clear();
        const QString only = testDataPath("catalog/only_version.xml");
        QVERIFY(maps.db.loadFile(only, &maps.loadMessages));
        QCOMPARE(maps.loadMessages.texts(), QStringList{"Error in database file " + only +
                                                        ":\nDBVersion empty-1 does not match previous (maps-1)"});
        QCOMPARE(maps.db.version(), "maps-1");

        // Names match exactly, and of two records of one name the first wins.
        Loaded n("names.xml");
        QCOMPARE(n.db.junctionBoxNamed("Twin")->volume, 1.0f);
        QVERIFY(n.db.supplyNamed("FEEDER")->maxNumFixtures == 16 && !n.db.supplyNamed("feeder"));

        // Per-voltage figures: exact voltage and frequency or nothing (no nearest voltage); the
        // current limit at the highest voltage not above; an empty table gives 0, not the record's own limit.
        Loaded l("supplies.xml");
        const DLPowerSupply* sfp = l.db.supplies().at(0);
        QCOMPARE((QList<double>{
                     sfp->voltageAttribute(120, 50).leakage, sfp->voltageAttribute(120, 60).leakage,
                     sfp->voltageAttribute(277, 60).inrushCurrent,
                     sfp->voltageAttribute(277, 50).inrushCurrent, sfp->voltageAttribute(121, 60).leakage}),
                 (QList<double>{150, 190, 13.85, 0, 0}));
        Loaded t("tables.xml");
        const DLFixture* f = t.db.fixtures().first();
        QCOMPARE(
            (QList<double>{f->frequencyAttribute(120, 50).leakage, f->frequencyAttribute(208, 60).leakage,
                           f->frequencyAttribute(220, 60).leakage, f->maxFixtureCurrentAt(0),
                           f->maxFixtureCurrentAt(208), f->maxFixtureCurrentAt(198)}),
            (QList<double>{67, 139, 0, 0, 14, 15}));
        Loaded numbers("numbers.xml");
        QCOMPARE(numbers.db.fixtureNamed("Padded")->maxFixtureCurrentAt(120), 0.0);
    }

    void hostileGeneratedDocuments()
    {
        // 100 000 levels of nesting are refused before the document tree is built: not valid,
        // nothing taken, one message that points at the first element past the limit of 512 levels
        // (the root is level 1, so the 512th <n>, which ends at column 38 + 512 x 3).
        const int depth = 100000;
        const QByteArray deep =
            QByteArray("<Catalog><DBVersion>deep-1</DBVersion>") + QByteArray("<n>").repeated(depth) +
            "<FixtureList><Fixture><Name>Deep Fixture</Name><Type>dynaline</Type>" + PlainFixtureFields +
            "</Fixture></FixtureList>" + QByteArray("</n>").repeated(depth) + "</Catalog>\n";
        {
            Database db;
            RecordingReporter rep;
            QVERIFY(!db.loadBytes(deep, "deep.xml", &rep));
            QVERIFY(!db.isValid());
            QVERIFY(isEmptyCatalog(db));
            QCOMPARE(rep.texts(), QStringList{"Error parsing database file deep.xml:\nelements nested more "
                                              "than 512 levels deep\nLine 1 Column 1574"});
        }

        // Tens of megabytes of well-formed records: all of them are taken, in order, silently.
        const int fixtures = 10000;
        const QByteArray label = QByteArray("Stylebar Tunable Dynaline ").repeated(80);
        QByteArray bytes = "<Catalog><DBVersion>large-1</DBVersion><FixtureList>\n";
        for (int i = 0; i < fixtures; ++i)
            bytes += "<Fixture><Name>Fixture " + QByteArray::number(i) +
                     "</Name><Type>dynaline</Type><ShortName>" + label + "</ShortName>" + PlainFixtureFields +
                     "</Fixture>\n";
        bytes += "</FixtureList></Catalog>\n";
        QVERIFY(bytes.size() > 20 * 1000 * 1000);
        Database db;
        RecordingReporter rep;
        QVERIFY(db.loadBytes(bytes, "large.xml", &rep));
        QCOMPARE(rep.texts(), QStringList());
        QCOMPARE(db.fixtures().size(), fixtures);
        QCOMPARE(db.fixtures().last()->name, QStringLiteral("Fixture %1").arg(fixtures - 1));
    }

    void voltageLookups()
    {
        // Rows of voltage-lookups.tsv: a table (volts=value), a key, the nearest and the floor
        // lookups with 9 as the default.
        for (const QStringList& row : dataRows("catalog/voltage-lookups.tsv")) {
            QMap<int, double> table;
            for (const QString& entry : row.at(0).split(' ', Qt::SkipEmptyParts))
                table.insert(entry.section('=', 0, 0).toInt(), entry.section('=', 1).toDouble());
            QCOMPARE(VoltageLookup::nearest(table, row.at(1).toInt(), 9.0), row.at(2).toDouble());
            QCOMPARE(VoltageLookup::floor(table, row.at(1).toInt(), 9.0), row.at(3).toDouble());
        }
    }

    void junctionBoxCapacity()
    {
        // Rows of box-capacity.tsv: a box's volume and ports, the kind two ports are reserved for,
        // the entries already in it (volume x count), a conductor's kind, volume and allowance,
        // and capacities A and B.
        for (const QStringList& row : dataRows("catalog/box-capacity.tsv")) {
            DLJunctionBox box("Box", VxTechDynaline);
            box.volume = row.at(0).toFloat();
            box.numPorts = row.at(1).toInt();
            if (row.at(2) != "-")
                box.reservedPorts.insert(row.at(2).toInt(), 2);
            QList<BoxEntry> entries;
            for (const QString& entry : row.at(3).split(' ', Qt::SkipEmptyParts))
                entries << BoxEntry{entry.section('x', 0, 0).toFloat(), entry.section('x', 1).toInt()};
            const int kind = row.at(4).toInt();
            const float conductor = row.at(5).toFloat();
            const float allowance = row.at(6).toFloat();
            QCOMPARE(box.capacityA(entries, kind, conductor, allowance), row.at(7).toInt());
            QCOMPARE(box.capacityB(entries, kind, conductor, allowance), row.at(8).toInt());
        }
    }

    void sampleCatalogFollowsItsRules()
    {
        // The shipped catalog checked as an engineer would, against its header's rules.
        Database db;
        RecordingReporter rep;
        QVERIFY(db.loadFile(sampleCatalogPath(), &rep) && rep.messages.isEmpty());
        QCOMPARE(db.version(), "2025.02.2");
        // The CSV export walks the supplies' lists; the disabled fixture is linked nowhere.
        QCOMPARE(
            (QList<qsizetype>{db.supplies().size(), db.fixtures().size(), db.junctionBoxes().size(),
                              db.supplies().at(0)->fixtures.size(), db.supplies().at(2)->fixtures.size()}),
            (QList<qsizetype>{3, 13, 4, 12, 9}));
        // Loop resistances: a cable is twice its copper conductor, a fixture at least its own
        // length of its leader's cable.
        const QMap<QString, double> copper{
            {"12", 1.59e-3}, {"14", 2.53e-3}, {"16", 4.02e-3}, {"18", 6.39e-3}};
        auto checkLoop = [&](const QString& gauge, double perFoot, const QString& what) {
            QVERIFY2(copper.contains(gauge) && qAbs(perFoot - 2 * copper.value(gauge)) < 1e-9,
                     qPrintable(what));
        };
        auto checkCable = [&](const VxJumper* cable, const QString& owner) {
            if (!cable->hasCustomWires)
                checkLoop(cable->standardGauge, cable->resistance, owner + " " + cable->name);
            for (const VxWire* w : cable->customWires)
                checkLoop(w->name, w->resistance, owner + " " + cable->name);
        };
        checkCable(db.branchWires().value(0), "branch wire");
        for (const DLFixture* f : db.fixtures()) {
            for (const VxJumper* c : f->leaders + f->jumpers)
                checkCable(c, f->name);
            const VxJumper* leader = f->leaders.value(f->defaultLeader);
            QVERIFY2(leader && !leader->hasCustomWires &&
                         f->resistance > f->electricalLength * leader->resistance,
                     qPrintable(f->name));
            QCOMPARE(f->safetyRequired, 0); // no wiring factor on top of a loop resistance
            // The drop percent is read as a fraction.
            QVERIFY2(f->voltageDropPercent > 0 && f->voltageDropPercent < 0.2 &&
                         f->validVoltages.contains(f->startingVoltage),
                     qPrintable(f->name));

            // Each count is the largest that keeps every limit of the fixture and its enablers; the
            // gen4 breaker tables also keep the circuit's inrush below a B-curve instant trip.
            int enablerLimit = INT_MAX;
            for (const VxPowerSupply* s : f->validSupplies)
                enablerLimit = std::min(enablerLimit, static_cast<const DLPowerSupply*>(s)->maxNumFixtures);
            const bool breakerTables = f->name.endsWith("Dynaline gen4");
            for (int v : f->validVoltages) {
                const double watts = f->powerByVoltage.value(v);
                const double pf = f->powerFactorByVoltage.value(v);
                QVERIFY2(pf >= 0.5 && pf <= 0.95, qPrintable(f->name));
                const double amps = watts / (v * pf);
                auto fits = [&](int n, double rating) {
                    return n * amps <= 0.8 * rating + 1e-9 && n * watts <= f->maxPower + 1e-9 &&
                           leader->electricalLength + n * f->electricalLength <= f->maxFixtureLength + 1e-9 &&
                           n <= enablerLimit;
                };
                const int count = f->maxCountByVoltage.value(v);
                const QString where = QStringLiteral("%1 at %2 V: %3").arg(f->name).arg(v).arg(count);
                const double ownRating = f->maxCurrentByVoltage.value(v);
                QVERIFY2(fits(count, ownRating) && !fits(count + 1, ownRating), qPrintable(where));
                if (!breakerTables)
                    continue;
                double enablerInrush = 0.0;
                for (const VxPowerSupply* s : f->validSupplies)
                    if (s->name != "RD-5000")
                        enablerInrush = std::max(enablerInrush, s->voltageAttribute(v, 60).inrushCurrent);
                const double inrush = f->frequencyAttribute(v, 60).inrushCurrent;
                for (const auto& [rating, table] :
                     {std::pair{15.0, &f->maxCount15AByVoltage}, std::pair{20.0, &f->maxCount20AByVoltage}}) {
                    auto onBreaker = [&](int n) {
                        return n <= count && fits(n, rating) &&
                               n * inrush + enablerInrush <= 3 * rating + 1e-9;
                    };
                    const int n = table->value(v);
                    QVERIFY2(onBreaker(n) && !onBreaker(n + 1),
                             qPrintable(where + QStringLiteral(" on %1 A: %2").arg(rating).arg(n)));
                }
            }
        }
    }
};

QTEST_GUILESS_MAIN(TestCatalog)
#include "tst_catalog.moc"
