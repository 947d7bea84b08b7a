// Feeds raw bytes to the version-file parser and the comparison that follows a download.
#include "update/AutoUpdateTool.h"

#include <QCoreApplication>

#include <cstddef>
#include <cstdint>

static void quiet(QtMsgType, const QMessageLogContext&, const QString&) {}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static int argc = 1;
    static char name[] = "fuzz_version";
    static char* argv[] = {name, nullptr};
    static QCoreApplication app(argc, argv);
    static const auto previous = qInstallMessageHandler(quiet);
    (void)previous;

    VxCommonUtils::AutoUpdateTool tool;
    tool.parseVersionFile(QByteArray(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size)));
    VxCommonUtils::RlsVers own;
    own.major = 3;
    own.minor = 3;
    own.revision = 17;
    own.serverBuildNumber = 20250205;
    tool.checkForUpdate(QStringLiteral("RUNPLAN"), own);
    for (const auto& app : tool.versions())
        for (const auto& os : app.osVersions)
            for (const auto& release : os.releases)
                (void)release.versionText();
    return 0;
}
