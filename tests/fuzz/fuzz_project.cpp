// Feeds raw bytes to the project reader over the shipped catalog, then saves what was read.
#include "catalog/Database.h"
#include "catalog/Reporter.h"
#include "model/ConfigDocument.h"
#include "model/HeaderChoices.h"
#include "model/ProjectFile.h"

#include <QCoreApplication>

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static int argc = 1;
    static char name[] = "fuzz_project";
    static char* argv[] = {name, nullptr};
    static QCoreApplication app(argc, argv);
    static RecordingReporter catalogReporter;
    static Database db;
    static const bool loaded = db.loadFile(QStringLiteral(RUNPLAN_SAMPLE_CATALOG), &catalogReporter);
    (void)loaded;

    RecordingReporter reporter;
    ConfigDocument doc(&db);
    HeaderValues header;
    ProjectFile::read(QByteArray(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size)), doc,
                      header, &reporter);
    (void)ProjectFile::toBytes(doc, header);
    doc.clear();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    return 0;
}
