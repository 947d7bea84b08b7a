// Feeds raw bytes to the catalog loader: it must neither crash, hang nor leak.
#include "catalog/Database.h"
#include "catalog/Reporter.h"

#include <QCoreApplication>

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static int argc = 1;
    static char name[] = "fuzz_catalog";
    static char* argv[] = {name, nullptr};
    static QCoreApplication app(argc, argv);

    RecordingReporter reporter;
    Database db;
    db.loadBytes(QByteArray(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size)),
                 QStringLiteral("fuzz.xml"), &reporter);
    // Touch what the rest of the program reads, so broken links show up here.
    for (const DLFixture* f : db.fixtures())
        for (const VxPowerSupply* s : f->validSupplies)
            (void)s->name.size();
    for (const DLReceiver* r : db.receivers())
        for (const DLJunctionBox* b : r->validJunctionBoxes)
            (void)b->capacityA({}, 1, 2.25f, 0.0f);
    return 0;
}
