#pragma once

#include "calc/DesignReport.h"

#include <QByteArray>
#include <QLocale>
#include <QPageSize>

class ConfigDocument;
struct AnalysisResult;

// Lays the design report out as a PDF: the summary page, the run diagram drawn by the canvas
// painter (with the voltage at each box), the run table and the bill of materials, with a page
// header and "Page n of m" on every page.
namespace ReportPdf
{
// Letter where it is the usual paper (the Americas that use it, the Philippines), A4 elsewhere.
QPageSize pageSizeFor(const QLocale& locale);

// The PDF bytes; pageCount receives the number of pages.
QByteArray render(const DesignReport::Content& content, ConfigDocument* doc, const AnalysisResult* result,
                  const QPageSize& pageSize, int* pageCount = nullptr);
} // namespace ReportPdf
