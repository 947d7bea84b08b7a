#pragma once

#include "calc/Analysis.h"
#include "calc/CsvExport.h"
#include "model/ConfigDocument.h"
#include "model/HeaderChoices.h"

class Reporter;

// A configuration with its header choices and last analysis, without any widget: what the main
// window does, for tests, benchmarks and batch tools.
class Session : public ExportHost
{
public:
    explicit Session(const Database& db, Reporter* reporter = nullptr);

    ConfigDocument& document() { return m_doc; }
    HeaderValues& header() { return m_header; }
    const AnalysisResult& result() const { return m_result; }

    CircuitInputs inputs() const;
    // Runs the analysis, stores it into the document, writes its output-log lines to the reporter
    // (when there is one) and returns its pass flag.
    bool analyze();
    // Clears the canvas and places the selected enabler (the Reset button).
    void reset();
    DLFixture* selectedFixture() const;

    // ExportHost
    const Database& database() const override { return m_db; }
    void selectEnabler(const DLPowerSupply* enabler) override;
    void selectFixture(const VxFixture* fixture) override;
    void selectLineVoltage(int volts) override;
    void resetWithFixture() override;
    // Analyses first, so that Maximize starts from the pass flag of the present tree.
    void maximize() override;
    int fixtureCount() const override;
    double totalLength() const override { return m_result.totalLength; }
    const VxFixture* currentFixture() const override;
    // Nobody watches a headless export, so nobody cancels it.
    bool progress(int percent) override;

private:
    // The selector changes themselves, also used while constructing.
    void chooseEnabler(const DLPowerSupply* enabler);
    void chooseFixture(const VxFixture* fixture);
    void chooseLineVoltage(int volts);

    const Database& m_db;
    Reporter* m_reporter;
    ConfigDocument m_doc;
    HeaderValues m_header;
    AnalysisResult m_result;
};
