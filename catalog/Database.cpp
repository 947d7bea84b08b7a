#include "catalog/Database.h"

#include "catalog/FieldReader.h"
#include "catalog/Reporter.h"
#include "catalog/XmlDepth.h"

#include <QCoreApplication>
#include <QDomDocument>
#include <QDir>
#include <QDomNodeList>
#include <QFile>
#include <QFileInfo>

using namespace FieldReader;

namespace
{
Database* s_instance = nullptr;

// Catalogs nest a handful of levels. Far deeper documents are refused before the DOM is built,
// since building and freeing such a tree recurses once per level.
constexpr int MaxNestingDepth = 512;

struct ParseProblem {
    QString message;
    qint64 line = 0;
    qint64 column = 0;
};

bool tooDeep(const QByteArray& bytes, ParseProblem& problem)
{
    if (!XmlDepth::exceeds(bytes, MaxNestingDepth, &problem.line, &problem.column))
        return false; // any other error is left to the document parser, which reports it
    problem.message =
        QCoreApplication::translate("Database", "elements nested more than %1 levels deep").arg(MaxNestingDepth);
    return true;
}
} // namespace

Database::Database(QObject* parent) : QObject(parent) {}

Database::~Database()
{
    clear();
    if (s_instance == this)
        s_instance = nullptr;
}

Database* Database::instance()
{
    if (!s_instance) {
        auto* db = new Database;
        db->load(QString::fromLatin1(DefaultFileName), Reporter::global());
        s_instance = db;
    }
    return s_instance;
}

void Database::clear()
{
    qDeleteAll(m_fixtures);
    qDeleteAll(m_disabledFixtures);
    qDeleteAll(m_supplies);
    qDeleteAll(m_receivers);
    qDeleteAll(m_junctionBoxes);
    qDeleteAll(m_branchWires);
    m_fixtures.clear();
    m_disabledFixtures.clear();
    m_supplies.clear();
    m_receivers.clear();
    m_junctionBoxes.clear();
    m_branchWires.clear();
    m_locations.clear();
    m_locationNames.clear();
    m_controllers.clear();
    m_outputModes.clear();
}

int Database::techTypeFromKeyword(const QString& keyword)
{
    const QString k = keyword.toLower();
    if (k == QLatin1String("dynaline"))
        return VxTechDynaline;
    if (k == QLatin1String("tintrail"))
        return VxTechTintrail;
    if (k == QLatin1String("pixelon"))
        return VxTechPixelon;
    if (k == QLatin1String("pxribbon"))
        return VxTechPxRibbon;
    return VxTechNone;
}

QString Database::locate(const QString& fileName)
{
    const QString dir = QCoreApplication::applicationDirPath();
    const QString beside = dir + QLatin1Char('/') + fileName;
    if (QFileInfo::exists(beside))
        return beside;
    // An installed program lives in <prefix>/bin with its data in <prefix>/share/runplan.
    const QString installed = QDir::cleanPath(dir + QStringLiteral("/../share/runplan/") + fileName);
    return QFileInfo::exists(installed) ? installed : beside;
}

bool Database::load(const QString& fileName, Reporter* reporter)
{
    return loadFile(locate(fileName), reporter);
}

bool Database::loadFile(const QString& path, Reporter* reporter)
{
    if (!reporter)
        reporter = Reporter::global();
    m_path = path;

    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text)) {
        reporter->warning(QCoreApplication::translate("Database", "Cannot read database file %1:\n%2.")
                              .arg(path, file.errorString()));
        m_valid = false;
        return false;
    }
    const QByteArray bytes = file.readAll();
    file.close();
    return loadBytes(bytes, path, reporter);
}

bool Database::loadBytes(const QByteArray& bytes, const QString& path, Reporter* reporter)
{
    if (!reporter)
        reporter = Reporter::global();
    m_path = path;

    ParseProblem problem;
    QDomDocument doc;
    QString domMessage;
    int line = 0;
    int column = 0;
    bool parsed = false;
    if (!tooDeep(bytes, problem)) {
        parsed = doc.setContent(bytes, &domMessage, &line, &column);
        problem = {domMessage, line, column};
    }
    if (!parsed) {
        reporter->warning(
            QCoreApplication::translate("Database", "Error parsing database file %1:\n%2\nLine %3 Column %4")
                .arg(path, problem.message)
                .arg(problem.line)
                .arg(problem.column));
        m_valid = false;
        return false;
    }

    ParseContext ctx;
    ctx.reporter = reporter;
    ctx.catalog = this;
    const QDomElement root = doc.documentElement();
    readVersion(root, reporter);
    readControllers(root);
    readBranchWires(root, ctx);
    readOutputModes(root);
    readJunctionBoxes(root, ctx);
    readReceivers(root, ctx);
    readSupplies(root, ctx);
    readFixtures(root, ctx);
    m_valid = true;
    return true;
}

void Database::readVersion(const QDomElement& root, Reporter* reporter)
{
    const QString text = root.firstChildElement(QStringLiteral("DBVersion")).text();
    if (text.isEmpty()) {
        reporter->warning(
            QCoreApplication::translate("Database", "Error in database file %1:\nDBVersion %2 not found.")
                .arg(m_path, text));
        return;
    }
    if (!m_version.isEmpty() && m_version != text) {
        reporter->warning(
            QCoreApplication::translate(
                "Database", "Error in database file %1:\nDBVersion %2 does not match previous (%3)")
                .arg(m_path, text, m_version));
        return;
    }
    m_version = text;
}

namespace
{
// Calls f(entry) for every itemTag element below every listTag element of root.
template <typename F>
void forEachListed(const QDomElement& root, const QString& listTag, const QString& itemTag, F f)
{
    const QDomNodeList lists = root.elementsByTagName(listTag);
    for (int l = 0; l < lists.size(); ++l) {
        const QDomNodeList items = lists.at(l).toElement().elementsByTagName(itemTag);
        for (int i = 0; i < items.size(); ++i)
            f(items.at(i).toElement());
    }
}

int intOrZero(const QDomElement& e, const QString& child)
{
    int v = 0;
    return toInt(childText(e, child), v) ? v : 0;
}

double doubleOrZero(const QDomElement& e, const QString& child)
{
    double v = 0.0;
    return toDouble(childText(e, child), v) ? v : 0.0;
}
} // namespace

void Database::readControllers(const QDomElement& root)
{
    forEachListed(root, QStringLiteral("ControllerList"), QStringLiteral("Controller"),
                  [this](const QDomElement& e) {
                      m_controllers.insert(childText(e, QStringLiteral("Name")),
                                           intOrZero(e, QStringLiteral("MaxReceiverCount")));
                  });
}

void Database::readOutputModes(const QDomElement& root)
{
    forEachListed(root, QStringLiteral("SupplyOutputModeList"), QStringLiteral("SupplyOutputMode"),
                  [this](const QDomElement& e) {
                      m_outputModes.insert(childText(e, QStringLiteral("Name")),
                                           intOrZero(e, QStringLiteral("WireCount")));
                  });
}

void Database::readBranchWires(const QDomElement& root, ParseContext& ctx)
{
    const QDomNodeList wires = root.elementsByTagName(QStringLiteral("BranchWire"));
    for (int w = 0; w < wires.size(); ++w) {
        const QDomElement we = wires.at(w).toElement();
        auto* wire = new VxJumper(QStringLiteral("BranchWire"), VxTechNone);
        wire->parse(we, ctx);
        m_branchWires.append(wire);
        forEachListed(we, QStringLiteral("Locations"), QStringLiteral("Location"),
                      [this](const QDomElement& e) {
                          const QString name = childText(e, QStringLiteral("Name"));
                          if (!m_locations.contains(name))
                              m_locationNames.append(name);
                          m_locations.insert(name,
                                             doubleOrZero(e, QStringLiteral("SignalDegradationPerFoot")));
                      });
    }
}

QString Database::acceptedName(const QDomElement& e, const QString& kind, const QString& typeKind,
                               Reporter* reporter) const
{
    const QString name = childText(e, QStringLiteral("Name"));
    if (name.isEmpty()) {
        reporter->warning(
            QCoreApplication::translate("Database", "Error in database file %1:\n%2 element with no Name")
                .arg(m_path, kind));
        return QString();
    }
    if (!typeKind.isEmpty() && techTypeFromKeyword(childText(e, QStringLiteral("Type"))) != VxTechDynaline) {
        reporter->warning(
            QCoreApplication::translate("Database", "Error in database file %1:\n%2 %3 has unknown type")
                .arg(m_path, typeKind, name));
        return QString();
    }
    return name;
}

void Database::readJunctionBoxes(const QDomElement& root, ParseContext& ctx)
{
    forEachListed(
        root, QStringLiteral("JunctionBoxList"), QStringLiteral("JunctionBox"), [&](const QDomElement& e) {
            // Junction boxes share the supplies' wording for an unknown type.
            const QString name =
                acceptedName(e, QStringLiteral("JunctionBox"), QStringLiteral("PowerSupply"), ctx.reporter);
            if (name.isEmpty())
                return;
            auto* box = new DLJunctionBox(name, VxTechDynaline);
            box->parse(e, ctx);
            m_junctionBoxes.append(box);
        });
}

void Database::readReceivers(const QDomElement& root, ParseContext& ctx)
{
    forEachListed(
        root, QStringLiteral("ReceiverList"), QStringLiteral("Receiver"), [&](const QDomElement& e) {
            const QString name = acceptedName(e, QStringLiteral("Receiver"), QString(), ctx.reporter);
            if (name.isEmpty())
                return;
            auto* receiver = new DLReceiver(name, VxTechDynaline);
            receiver->parse(e, ctx);
            m_receivers.append(receiver);
        });
}

void Database::readSupplies(const QDomElement& root, ParseContext& ctx)
{
    forEachListed(
        root, QStringLiteral("PowerSupplyList"), QStringLiteral("PowerSupply"), [&](const QDomElement& e) {
            const QString name =
                acceptedName(e, QStringLiteral("PowerSupply"), QStringLiteral("PowerSupply"), ctx.reporter);
            if (name.isEmpty())
                return;
            auto* supply = new DLPowerSupply(name, VxTechDynaline);
            supply->parse(e, ctx);
            m_supplies.append(supply);
        });
}

void Database::readFixtures(const QDomElement& root, ParseContext& ctx)
{
    const QList<VxPowerSupply*> supplies(m_supplies.cbegin(), m_supplies.cend());
    forEachListed(root, QStringLiteral("FixtureList"), QStringLiteral("Fixture"), [&](const QDomElement& e) {
        const QString name =
            acceptedName(e, QStringLiteral("Fixture"), QStringLiteral("Fixture"), ctx.reporter);
        if (name.isEmpty())
            return;
        auto* fixture = new DLFixture(name, VxTechDynaline);
        fixture->parse(e, ctx);
        fixture->readValidSupplies(e, supplies, ctx);
        fixture->readValidVoltages(e, ctx);
        if (fixture->disabled)
            m_disabledFixtures.append(fixture); // still linked from the supplies that name it
        else
            m_fixtures.append(fixture);
    });
}

DLPowerSupply* Database::supplyNamed(const QString& name) const
{
    for (DLPowerSupply* s : m_supplies)
        if (s->name == name)
            return s;
    return nullptr;
}

DLFixture* Database::fixtureNamed(const QString& name) const
{
    for (DLFixture* f : m_fixtures)
        if (f->name == name)
            return f;
    return nullptr;
}

DLReceiver* Database::receiverNamed(const QString& name) const
{
    for (DLReceiver* r : m_receivers)
        if (r->name == name)
            return r;
    return nullptr;
}

DLJunctionBox* Database::junctionBoxNamed(const QString& name) const
{
    for (DLJunctionBox* b : m_junctionBoxes)
        if (b->name == name)
            return b;
    return nullptr;
}
