#pragma once

#include "calc/Analysis.h"

#include <QByteArray>
#include <QDate>
#include <QList>
#include <QPair>
#include <QString>
#include <QStringList>

class CWidget;
class Database;

// The designer's deliverables built from a configuration and its analysis, without any widget:
// the bill of materials (also written as CSV) and the content of the design report, which the
// desktop front end lays out as a PDF.
namespace DesignReport
{

// One line of the bill of materials: the placed components of one catalog item.
struct BomRow {
    QString kind;     // "Enabler", "Fixture", "Leader", ...
    QString name;     // the catalog name (for leaders and jumpers: the fixture they belong to)
    QString type;     // leaders and jumpers: the cable type
    QString gauge;    // custom cables and branch wires
    QString location; // branch wires: where they are installed
    int quantity = 0;
    bool hasLength = false; // cables and branch wires
    double length = 0.0;    // ft, all pieces together
};

// One row per catalog item in the order kinds are listed (enablers and supplies, fixtures,
// leaders, jumpers, branch wires, receivers, junction boxes), items in depth-first order of their
// first placement. Branch wires are split by location.
QList<BomRow> billOfMaterials(const CWidget* root);
QStringList bomColumns();
QStringList bomCells(const BomRow& row);
// RFC 4180: a header row, every line ended by CR LF, fields holding a comma, quote or line break
// quoted with their quotes doubled; UTF-8.
QByteArray bomCsv(const QList<BomRow>& rows);
QString csvField(const QString& text);

// A table of the report: column titles and rows of cell texts.
struct Table {
    QStringList columns;
    QList<QStringList> rows;
};

// One run of the run table, with the lines printed under it.
struct RunRow {
    QStringList cells;
    QString limits;       // the limits that apply, as one line
    QStringList messages; // the failed checks' texts
    bool pass = true;
};

struct Content {
    QString title;
    QList<QPair<QString, QString>> header; // label, value
    bool pass = true;
    QString verdict; // "PASS" or "FAIL"
    QStringList runColumns;
    QList<RunRow> runs;
    QList<QPair<QString, QString>> totals; // label, value
    QStringList circuitMessages;           // the circuit checks' texts, one per line
    Table bom;
};

// What the report's header names beside the analysis inputs.
struct Source {
    QString projectFile; // its file name is shown; empty: an unsaved configuration
    QDate date;
};

// A component as the report names it: "Fixture #2 (Plain)", numbered depth first among its kind.
QString componentLabel(const CWidget* w, const CWidget* root);

// The figures at a component as its canvas tooltip shows them, one per line.
QString figuresText(const ComponentFigures& figures, const CWidget* root);

// The overlay colour class of a component's voltage against its run's minimum voltage.
enum class Margin { Good, Near, Below };
Margin voltageMargin(const ComponentFigures& figures); // Near: within 10 % above the minimum

Content build(const Source& source, const CircuitInputs& inputs, const AnalysisResult& result,
              const CWidget* root, const Database& db);

// Writes bytes through a temporary file that replaces path only once complete. False with the
// reason in error when it cannot.
bool writeFile(const QString& path, const QByteArray& bytes, QString* error);

} // namespace DesignReport
