#pragma once

// Tables kept under tests/data: one row a line, fields separated by tabs, "#" lines and blank
// lines skipped. A table without rows fails the test that reads it.

#include "CatalogFixture.h"

inline QList<QStringList> dataRows(const QString& relative)
{
    QList<QStringList> rows;
    for (const QString& line : QString::fromUtf8(testDataBytes(relative)).split('\n', Qt::SkipEmptyParts))
        if (!line.startsWith('#'))
            rows << line.split('\t');
    if (rows.isEmpty())
        QTest::qFail(qPrintable("no rows in " + relative), __FILE__, __LINE__);
    return rows;
}
