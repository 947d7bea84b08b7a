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
// What loading said, word for word, against tests/data/catalog/messages/<name>.txt.
#define COMPARE_MESSAGES(loaded, name) COMPARE_GOLDEN((loaded).messageText(), "catalog/messages/" name ".txt")

bool isEmptyCatalog(const Database& db)
{
    return db.supplies().isEmpty() && db.fixtures().isEmpty() && db.receivers().isEmpty() &&
           db.junctionBoxes().isEmpty() && db.branchWires().isEmpty() && db.locations().isEmpty() &&
           db.controllers().isEmpty() && db.outputModes().isEmpty() && db.version().isEmpty();
}

template <typename List> QStringList namesOf(const List& records)
{
    QStringList out;
    for (const auto* r : records)
        out.append(r->name);
    return out;
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
    void refusedFiles()
    {
        QByteArray said;
        for (const char* name : {"absent.xml", "empty.xml", "garbage.bin", "truncated.xml", "entity_bomb.xml"}) {
            Loaded l(QString::fromUtf8(name));
            QVERIFY2(!l.loaded && l.loadMessages.messages.size() == 1, name);
            QVERIFY(l.loadMessages.messages.first().kind == Reporter::Kind::Warning);
            // A refused file contributes nothing, not even the records before the damage.
            QVERIFY2(isEmptyCatalog(l.db), name);
            said += l.messageText();
        }
        // Word for word: the file's error string, or the parser's words, line and column.
        COMPARE_GOLDEN(said, "catalog/messages/refused.txt");
    }

    void documentShapeAndVersion()
    {
        Loaded only("only_version.xml");
        QVERIFY(only.ready());
        QCOMPARE(only.db.version(), "empty-1");

        // The version is only read directly below the root; loading goes on without it.
        Loaded nested("version_nested.xml");
        QVERIFY(nested.loaded && nested.db.isValid());
        COMPARE_MESSAGES(nested, "version_nested");
        QCOMPARE(nested.db.controllers().value("Studio"), 16);

        // An external entity is never fetched.
        Loaded external("external_entity.xml");
        QCOMPARE(external.db.controllers().size(), 1);
        QVERIFY(!external.db.controllers().firstKey().contains(QLatin1String("root")));

        // A second load keeps the first version.
        Loaded maps("maps.xml");
        maps.loadMessages.clear();
        QVERIFY(maps.db.loadFile(only.path, &maps.loadMessages));
        QCOMPARE(maps.loadMessages.texts(),
                 QStringList{QStringLiteral("Error in database file %1:\nDBVersion empty-1 does not match "
                                            "previous (maps-1)").arg(only.path)});
        QCOMPARE(maps.db.version(), "maps-1");
    }

    void mapsAndBranchWires()
    {
        Loaded l("maps.xml");
        // The third branch wire has no Resistance; its ElectricalLength is then not read either.
        COMPARE_MESSAGES(l, "maps");
        QCOMPARE(l.db.controllers().keys(),
                 QStringList({"Broken", "Missing", "Overflow", "Second List", "Studio"}));
        QCOMPARE(l.db.controllers().values(), (QList<int>{0, 0, 0, 7, 9}));
        QCOMPARE(l.db.locations().keys(), QStringList({"Above Ground", "Plenum", "Wet"}));
        QCOMPARE(l.db.locations().values(), (QList<double>{0.005, 0.003, 0.0}));
        // Offered in file order, each once; the first is where the first branch wire goes.
        QCOMPARE(l.db.locationNames(), QStringList({"Wet", "Above Ground", "Plenum"}));
        ConfigDocument doc(&l.db);
        QCOMPARE(doc.lastLocation(), "Wet");
        BranchWireWidget wire(&l.db, l.db.firstBranchWire());
        wire.setLocation(doc.lastLocation());
        QCOMPARE(wire.editorRule(PropLocation).choices, QStringList({"Wet", "Above Ground", "Plenum"}));

        // Milliohms become ohms; an absent MaxLeaderLength is 999 on a fixed cable.
        const VxJumper* fixed = l.db.firstBranchWire();
        QVERIFY(!fixed->hasCustomWires);
        QCOMPARE(fixed->resistance, 0.00253);
        QCOMPARE((QList<double>{fixed->electricalLength, fixed->maxLeaderLength, double(fixed->maxInARow)}),
                 (QList<double>{20, 999, 3}));
        const VxJumper* custom = l.db.branchWires().at(1);
        QCOMPARE(namesOf(custom->customWires), QStringList{"12"});
        QCOMPARE(custom->customWires.first()->resistance, 0.00159);
        QCOMPARE((QList<double>{custom->defaultCustomLength, custom->customWires.first()->maxLength,
                                custom->maxLeaderLength}),
                 (QList<double>{35, 175, 0}));
        QCOMPARE(l.db.branchWires().at(2)->electricalLength, 0.0);
    }

    void productNamesAndTypes()
    {
        Loaded n("names.xml");
        // A blank name is no name: the document drops whitespace-only text.
        COMPARE_MESSAGES(n, "names");
        QCOMPARE(namesOf(n.db.junctionBoxes()), (QStringList{"Box\tTab", "Twin", "Twin"}));
        QCOMPARE(n.db.junctionBoxNamed("Twin")->volume, 1.0f); // the first listed wins
        // Lookups are exact: case matters.
        QVERIFY(n.db.supplyNamed("FEEDER")->maxNumFixtures == 16 && !n.db.supplyNamed("feeder"));
        const QString unicodeName = "Lümière ✓ 光 Dynaline";
        QCOMPARE(n.db.fixtureNamed(unicodeName)->shortName, unicodeName); // empty ShortName keeps the name
        // A lower-case valid supply links to the first supply in catalog order, and only to it.
        QCOMPARE(n.db.fixtures().first()->validSupplies, QList<VxPowerSupply*>{n.db.supplies().first()});
        QVERIFY(n.db.supplies().at(1)->fixtures.isEmpty() && n.db.supplies().at(2)->fixtures.isEmpty());

        // Only Dynaline products are taken; junction boxes speak of a PowerSupply on purpose.
        Loaded t("types.xml");
        COMPARE_MESSAGES(t, "types");
        QCOMPARE(namesOf(t.db.supplies()), QStringList{"Mixed Case Supply"});
    }

    void suppliesAndValidSupplyLinks()
    {
        Loaded l("supplies.xml");
        COMPARE_MESSAGES(l, "supplies");
        const DLPowerSupply* sfp = l.db.supplies().at(0);
        const DLPowerSupply* rd = l.db.supplies().at(1);
        const DLPowerSupply* zero = l.db.supplies().at(2);
        QCOMPARE(sfp->outputModes, (QStringList{"Dynaline", "Feedwise", "Line Voltage"}));
        QCOMPARE((QList<double>{sfp->maxElectricalLengthPerRun, double(sfp->maxNumFixtures), sfp->power,
                                sfp->powerFactor}),
                 (QList<double>{220, 64, 14, 0.62}));
        // Exact voltage and frequency only; a later entry replaces an earlier one.
        QCOMPARE((QList<double>{
                     sfp->voltageAttribute(120, 50).leakage, sfp->voltageAttribute(120, 60).leakage,
                     sfp->voltageAttribute(277, 60).inrushCurrent,
                     sfp->voltageAttribute(277, 50).inrushCurrent, sfp->voltageAttribute(121, 60).leakage}),
                 (QList<double>{150, 190, 13.85, 0, 0}));
        // MaxNumFixtures alone is enough; both limits zero stops the read but keeps the supply.
        QCOMPARE(rd->defaultOutputMode(), QString());
        QVERIFY(zero->maxElectricalLengthPerRun == 100.0 && zero->outputModes.isEmpty() &&
                zero->power == 0.0);

        // Supplies are read before fixtures whatever the document order; every list is read.
        QCOMPARE(l.db.fixtures().at(2)->validSupplies,
                 (QList<VxPowerSupply*>{l.db.supplies().at(2), l.db.supplies().at(1)}));
        // The disabled fixture is out of the catalog but its supply still names it.
        QVERIFY(l.db.fixtureNamed("Retired") == nullptr);
        QCOMPARE(namesOf(sfp->fixtures), (QStringList{"Lower Case Link", "Retired"}));
        QCOMPARE(namesOf(rd->fixtures), (QStringList{"Lower Case Link", "Second List Fixture"}));
    }

    void missingRequiredFieldsAndCables()
    {
        Loaded l("missing_fields.xml");
        COMPARE_MESSAGES(l, "missing_fields");
        // Every record is kept; fields after a failing one keep their construction values, except
        // Power and the voltage tables, which are read whatever the earlier fields said.
        QCOMPARE(l.db.receivers().size(), 2);
        QCOMPARE(l.db.fixtures().size(), 8);
        const DLFixture* noTemp = l.db.fixtureNamed("No MaxTemp");
        QCOMPARE((QList<double>{noTemp->resistance, noTemp->power, noTemp->powerByVoltage.value(120)}),
                 (QList<double>{0, 7, 7}));
        QVERIFY(noTemp->leaders.isEmpty());
        const auto fx = [&](const char* name) { return l.db.fixtureNamed(QString::fromUtf8(name)); };
        QCOMPARE((QList<double>{
                     fx("No ElectricalLength")->resistance, double(fx("No FudgeFactor")->safetyRequired),
                     double(fx("No StartingVoltage")->safetyRequired), fx("Zero Drops")->maxPower}),
                 (QList<double>{0.032, 0, 2, 0}));
        const DLFixture* one = fx("One Drop Limit Is Enough");
        QVERIFY(one->jumperRequired && one->maxFixtureLength == 200.0 && one->leaders.size() == 1);

        // A cable with custom wires ignores its own electrical fields; default indexes out of range
        // fall back to the first entry.
        const DLFixture* f = fx("Bad Cables");
        const VxJumper* both = f->leaders.at(1);
        QCOMPARE((QList<double>{both->resistance, both->maxLeaderLength, both->defaultCustomLength}),
                 (QList<double>{0, 0, 25}));
        QCOMPARE(both->customWires.at(1)->resistance, 0.01015);
        QVERIFY(both->defaultWire() == both->customWires.at(1));
        QVERIFY(f->defaultLeaderCable() == f->leaders.at(0) && f->defaultJumperCable() == f->jumpers.at(1));
    }

    void fieldConversions()
    {
        // Overflow, underflow, hexadecimal, decimal commas and non-finite numbers do not convert;
        // padding, a plus sign, exponents and a signed zero do. Integers take no fraction or exponent.
        Loaded l("numbers.xml");
        COMPARE_MESSAGES(l, "numbers");
        QCOMPARE(l.db.junctionBoxNamed("Odd Box")->volume, 0.0f);
        QVERIFY(l.db.junctionBoxNamed("Padded Box")->volume == 30.25f &&
                l.db.junctionBoxNamed("Padded Box")->numPorts == 4);
        QCOMPARE(l.db.receivers().first()->resistance, 0.25); // a receiver's ohms are taken as given
        const DLFixture* f = l.db.fixtureNamed("Padded");
        QVERIFY(f && !f->disabled && f->isInline);
        QCOMPARE(
            (QList<double>{double(f->family), double(f->defaultLeader), double(f->safetyRequired),
                           f->powerFactor, f->maxTemp, f->electricalLength, f->maxVoltageDrop, f->minVoltage,
                           f->voltageDropPercent, f->maxPower, f->maxFixtureCurrent, f->maxFixtureLength}),
            (QList<double>{0, 1, 2, 0, 12, 4, 0, 0, 0.05, -1800, 15, 0}));
        QCOMPARE(f->validVoltages, QList<int>{120});
        QVERIFY(f->maxCountByVoltage.isEmpty() && f->powerByVoltage.isEmpty());
        QCOMPARE(f->maxFixtureCurrentAt(120), 0.0); // an empty table gives 0, not the record's own limit
    }

    void perVoltageTablesAndReceivers()
    {
        Loaded l("tables.xml");
        COMPARE_MESSAGES(l, "tables");
        const DLFixture* f = l.db.fixtures().first();
        QCOMPARE(f->resistance, 0.018);
        // Every Voltage element is listed; only positive values are stored; later entries replace earlier.
        QCOMPARE(f->validVoltages, (QList<int>{120, 208, 277, 120}));
        QCOMPARE(f->powerFactorByVoltage, (QMap<int, double>{{120, 0.95}, {277, 0.9}}));
        QCOMPARE(f->powerByVoltage, (QMap<int, double>{{120, 25.0}, {277, 23.0}}));
        QCOMPARE(f->maxCountByVoltage, (QMap<int, int>{{120, 40}, {277, 60}}));
        QCOMPARE(f->maxCurrentByVoltage, (QMap<int, double>{{120, 15.0}, {277, 14.0}}));
        QCOMPARE(
            (QList<double>{f->frequencyAttribute(120, 50).leakage, f->frequencyAttribute(208, 60).leakage,
                           f->frequencyAttribute(220, 60).leakage, f->maxFixtureCurrentAt(0),
                           f->maxFixtureCurrentAt(208), f->maxFixtureCurrentAt(198)}),
            (QList<double>{67, 139, 0, 0, 14, 15})); // no nearest-voltage fallback for 220

        Loaded r("receivers.xml");
        QVERIFY(r.ready());
        const DLReceiver* rx = r.db.receiverNamed("Feedwise Receiver");
        QCOMPARE((QList<double>{rx->maxElectricalLength, rx->powerFactor, rx->resistance, rx->power}),
                 (QList<double>{300, 0.55, 0.045, 4.5}));
        // Unknown names and the correctly spelled element are ignored; every box of a repeated name
        // is taken; both lists are read; names match exactly.
        const QList<DLJunctionBox*>& boxes = r.db.junctionBoxes();
        QCOMPARE(rx->validJunctionBoxes,
                 (QList<DLJunctionBox*>{boxes.at(0), boxes.at(2), boxes.at(3), boxes.at(1)}));
        QVERIFY(r.db.receiverNamed("Case Receiver")->validJunctionBoxes.isEmpty());
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
        // Nearest and floor lookups with 9 as the default; ties go to the lower voltage, the nearest
        // search stops 10 000 V away, an exact zero entry is found.
        const QMap<int, double> two{{120, 1.5}, {277, 2.5}};
        const struct {
            QMap<int, double> table;
            int key;
            double nearest, floor;
        } rows[] = {{two, 0, 9, 9},          {{}, 120, 0, 9},          {two, 208, 2.5, 1.5},
                    {two, 50, 1.5, 0},       {two, 480, 2.5, 2.5},     {{{100, 1}, {140, 2}}, 120, 1, 1},
                    {{{20000, 4}}, 120, 0, 0}, {{{10119, 4}}, 120, 4, 0}, {{{120, 0}, {130, 3}}, 120, 0, 0}};
        for (const auto& r : rows) {
            QCOMPARE(VoltageLookup::nearest(r.table, r.key, 9.0), r.nearest);
            QCOMPARE(VoltageLookup::floor(r.table, r.key, 9.0), r.floor);
        }
    }

    void junctionBoxCapacity()
    {
        // Capacities A and B of a box for a conductor of the given kind and size with an extra
        // allowance; kind 2 also takes the 5.25 allowance. Entries count the largest once and every
        // entry's repeats; two ports may be reserved for one kind; a negative room truncates
        // towards zero.
        const struct {
            float volume;
            int ports, reservedKind; // -1: none reserved
            QList<BoxEntry> entries;
            int kind;
            float conductor, allowance;
            int capA, capB;
        } rows[] = {{30.25f, 8, -1, {}, 2, 3.0f, 0.0f, 2, 4},                         // B: 25 / 6
                    {30.25f, 6, -1, {{2.0f, 3}, {2.25f, 2}}, 3, 2.0f, 1.5f, 3, 4}, // 23.25; 6 - 2 ports
                    {42.0f, 6, 1, {}, 1, 2.0f, 0.0f, 4, 4},
                    {42.0f, 6, 2, {}, 1, 2.0f, 0.0f, 6, 6},
                    {0.0f, 2, -1, {{10.0f, 1}}, 1, 1.0f, 0.0f, -5, -7}};
        for (const auto& r : rows) {
            DLJunctionBox box("Box", VxTechDynaline);
            box.volume = r.volume;
            box.numPorts = r.ports;
            if (r.reservedKind >= 0)
                box.reservedPorts.insert(r.reservedKind, 2);
            QCOMPARE(box.capacityA(r.entries, r.kind, r.conductor, r.allowance), r.capA);
            QCOMPARE(box.capacityB(r.entries, r.kind, r.conductor, r.allowance), r.capB);
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
