#pragma once

#include <QString>

// Paths the test executables are built with.
inline QString testDataPath(const QString& relative)
{
    return QStringLiteral(RUNPLAN_TEST_DATA "/") + relative;
}
inline QString sampleCatalogPath()
{
    return QStringLiteral(RUNPLAN_SAMPLE_CATALOG);
}
inline QString binDirPath()
{
    return QStringLiteral(RUNPLAN_BIN_DIR);
}
