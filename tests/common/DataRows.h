#pragma once

// Tables kept under tests/data: one row a line, fields separated by tabs, "#" lines and blank
// lines skipped.

#include "CatalogFixture.h"

inline QList<QStringList> dataRows(const QString& relative)
{
    QList<QStringList> rows;
    for (const QString& line : QString::fromUtf8(testDataBytes(relative)).split('\n', Qt::SkipEmptyParts))
        if (!line.startsWith('#'))
            rows << line.split('\t');
    return rows;
}
