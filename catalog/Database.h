#pragma once

#include "catalog/DLRecords.h"

#include <QMap>
#include <QObject>
#include <QString>
#include <QStringList>

class Reporter;

// The product catalog read from "vx_config_dl.xml". The program uses one instance for the life of
// the process (instance()); tests and tools build their own and call loadFile().
class Database : public QObject
{
    Q_OBJECT
public:
    explicit Database(QObject* parent = nullptr);
    ~Database() override;

    static constexpr const char* DefaultFileName = "vx_config_dl.xml";

    // The process-wide catalog; the first call loads DefaultFileName (see locate()).
    static Database* instance();

    bool isValid() const { return m_valid; }
    QString version() const { return m_version; }
    QString path() const { return m_path; }

    // Where the program's catalog fileName is read from: beside the executable, else in
    // ../share/runplan/ relative to it; when neither exists, the path beside the executable, so
    // the message for a missing catalog names the first place looked.
    static QString locate(const QString& fileName);
    // Loads fileName from where locate() finds it (the program's catalog).
    bool load(const QString& fileName, Reporter* reporter = nullptr);
    // Loads a file by its own path; messages go to the reporter (the global one when null).
    bool loadFile(const QString& path, Reporter* reporter = nullptr);
    // Loads catalog text already in memory; path only names it in messages.
    bool loadBytes(const QByteArray& bytes, const QString& path, Reporter* reporter = nullptr);

    const QList<VxJumper*>& branchWires() const { return m_branchWires; }
    const QMap<QString, double>& locations() const { return m_locations; }
    // The branch-wire location names in the catalog's file order, each once.
    const QStringList& locationNames() const { return m_locationNames; }
    const QList<DLPowerSupply*>& supplies() const { return m_supplies; }
    const QList<DLReceiver*>& receivers() const { return m_receivers; }
    const QList<DLFixture*>& fixtures() const { return m_fixtures; }
    const QList<DLJunctionBox*>& junctionBoxes() const { return m_junctionBoxes; }
    const QMap<QString, int>& controllers() const { return m_controllers; }
    const QMap<QString, int>& outputModes() const { return m_outputModes; }

    // Exact, case-sensitive lookups by name; the first listed record wins.
    DLPowerSupply* supplyNamed(const QString& name) const;
    DLFixture* fixtureNamed(const QString& name) const;
    DLReceiver* receiverNamed(const QString& name) const;
    DLJunctionBox* junctionBoxNamed(const QString& name) const;
    const VxJumper* firstBranchWire() const
    {
        return m_branchWires.isEmpty() ? nullptr : m_branchWires.first();
    }

    static int techTypeFromKeyword(const QString& keyword);

private:
    void clear();
    void readVersion(const QDomElement& root, Reporter* reporter);
    void readControllers(const QDomElement& root);
    void readBranchWires(const QDomElement& root, ParseContext& ctx);
    void readOutputModes(const QDomElement& root);
    // The element's name, or empty after reporting a missing name or (when typeKind is given) a type
    // other than Dynaline.
    QString acceptedName(const QDomElement& e, const QString& kind, const QString& typeKind,
                         Reporter* reporter) const;
    void readJunctionBoxes(const QDomElement& root, ParseContext& ctx);
    void readReceivers(const QDomElement& root, ParseContext& ctx);
    void readSupplies(const QDomElement& root, ParseContext& ctx);
    void readFixtures(const QDomElement& root, ParseContext& ctx);

    QString m_version;
    QList<VxJumper*> m_branchWires;
    QMap<QString, double> m_locations;
    QStringList m_locationNames;
    QList<DLPowerSupply*> m_supplies;
    QList<DLReceiver*> m_receivers;
    QList<DLFixture*> m_fixtures;
    QList<DLJunctionBox*> m_junctionBoxes;
    QMap<QString, int> m_controllers;
    QMap<QString, int> m_outputModes;
    QString m_path;
    bool m_valid = false;
    QList<VxFixture*> m_disabledFixtures; // dropped from the lists, kept alive for their supply links
};
