#include "model/ProjectFile.h"

#include "catalog/Database.h"
#include "catalog/Reporter.h"
#include "catalog/Version.h"
#include "model/CWidget.h"
#include "model/ConfigDocument.h"
#include "model/HeaderChoices.h"
#include "model/SafeFile.h"

#include <QCoreApplication>
#include <QDomNamedNodeMap>
#include <QFile>
#include <QMetaType>
#include <QSaveFile>
#include <QVariant>
#include <QXmlStreamReader>

#include <cmath>

namespace
{

QString tr(const char* text)
{
    return QCoreApplication::translate("ProjectFile", text);
}

const QString kExtension = QStringLiteral(".rpproj");
const QString kDocumentType = QStringLiteral("RunplanConfigurationFile");
const QString kRootTag = QStringLiteral("Runplan");
const QString kFrameTag = QStringLiteral("CFrame");
const QString kWidgetTag = QStringLiteral("CWidget");
const QString kItemTypeAttr = QStringLiteral("CWidgetItemType");
const QString kFixtureNameAttr = QStringLiteral("fixtureName");

// The header attributes in the order they are written.
const QStringList& headerAttributeOrder()
{
    static const QStringList order{
        QStringLiteral("fileVersion"),        QStringLiteral("appVersion"),
        QStringLiteral("CurrentFixtureName"), QStringLiteral("CurrentSupplyName"),
        QStringLiteral("LineVoltage"),        QStringLiteral("CustomLineVoltage"),
        QStringLiteral("MaxCircuitLoad"),     QStringLiteral("CustomMaxCircuitLoad"),
        QStringLiteral("Frequency"),          QStringLiteral("Controller")};
    return order;
}

// The property ids a kind writes, in order, for elements that have no component beside them.
QList<int> kindPropertyOrder(int kind)
{
    switch (kind) {
    case ItemSupply:
        return {PropName, PropOutputMode, PropDynaLineLength};
    case ItemLeader:
    case ItemJumper:
        return {PropName, PropType, PropGauge, PropLength};
    case ItemFixture:
        return {PropName};
    case ItemReceiver:
        return {PropName, PropDynaLineLength, PropJunctionBox};
    case ItemBranchWire:
        return {PropName, PropGauge, PropLength, PropInputMode, PropLocation};
    case ItemJunctionBox:
        return {PropName, PropOutputMode, PropType};
    default:
        return {};
    }
}

// QDomDocument keeps attributes in a hash, so its own output scrambles their order from run to
// run. The file is therefore written here, in QDom's text form (two-space indentation, QDom's
// attribute escaping) but with each element's attributes in the order they were meant to have.
QString escapeAttribute(const QString& value)
{
    QString out;
    out.reserve(value.size());
    for (qsizetype i = 0; i < value.size(); ++i) {
        const QChar c = value.at(i);
        switch (c.unicode()) {
        case u'<':
            out += QLatin1String("&lt;");
            break;
        case u'"':
            out += QLatin1String("&quot;");
            break;
        case u'&':
            out += QLatin1String("&amp;");
            break;
        case u'>':
            if (i >= 2 && value.at(i - 1) == u']' && value.at(i - 2) == u']')
                out += QLatin1String("&gt;");
            else
                out += c;
            break;
        case u'\r':
            out += QLatin1String("&#xd;");
            break;
        case u'\n':
            out += QLatin1String("&#xa;");
            break;
        case u'\t':
            out += QLatin1String("&#x9;");
            break;
        default:
            out += c;
        }
    }
    return out;
}

QStringList attributeOrder(const QDomElement& e, const CWidget* w)
{
    QStringList order;
    const QString tag = e.tagName();
    if (tag == kRootTag) {
        order = headerAttributeOrder();
    } else if (tag == kFrameTag) {
        order << QStringLiteral("techType");
    } else if (tag == kWidgetTag) {
        order << kItemTypeAttr;
        const QList<int> ids = w ? w->propertyIds() : kindPropertyOrder(e.attribute(kItemTypeAttr).toInt());
        for (int id : ids)
            order << propertyName(id);
        order << kFixtureNameAttr;
    }
    // Anything unforeseen follows in a fixed order, so equal trees still give equal bytes.
    const QDomNamedNodeMap attrs = e.attributes();
    QStringList rest;
    for (int i = 0; i < attrs.count(); ++i) {
        const QString name = attrs.item(i).nodeName();
        if (!order.contains(name))
            rest << name;
    }
    rest.sort();
    return order + rest;
}

void writeStartTag(QString& out, const QDomElement& e, const CWidget* w, int depth)
{
    out += QString(depth * 2, u' ');
    out += u'<';
    out += e.tagName();
    for (const QString& name : attributeOrder(e, w)) {
        if (!e.hasAttribute(name))
            continue;
        out += u' ';
        out += name;
        out += QLatin1String("=\"");
        out += escapeAttribute(e.attribute(name));
        out += u'"';
    }
}

// Iterative, so a deep run cannot exhaust the stack; each "CWidget" element is paired with its
// component to learn the attribute order.
QByteArray serialize(const QDomDocument& dom, const CWidget* root)
{
    QString out;
    const QString doctype = dom.doctype().name();
    if (!doctype.isEmpty())
        out += QLatin1String("<!DOCTYPE ") + doctype + QLatin1String(">\n");

    struct Step {
        QDomElement element;
        const CWidget* widget;
        int depth;
        bool closing;
    };
    QList<Step> pending;
    const QDomElement top = dom.documentElement();
    if (!top.isNull())
        pending.append({top, nullptr, 0, false});
    while (!pending.isEmpty()) {
        const Step step = pending.takeLast();
        if (step.closing) {
            out += QString(step.depth * 2, u' ') + QLatin1String("</") + step.element.tagName() +
                   QLatin1String(">\n");
            continue;
        }
        writeStartTag(out, step.element, step.widget, step.depth);
        QList<Step> children;
        int widgetRow = 0;
        for (QDomElement c = step.element.firstChildElement(); !c.isNull(); c = c.nextSiblingElement()) {
            const CWidget* w = nullptr;
            if (c.tagName() == kWidgetTag) {
                if (step.element.tagName() == kFrameTag)
                    w = widgetRow == 0 ? root : nullptr;
                else if (step.widget)
                    w = step.widget->child(widgetRow);
                ++widgetRow;
            }
            children.append({c, w, step.depth + 1, false});
        }
        if (children.isEmpty()) {
            out += QLatin1String("/>\n");
            continue;
        }
        out += QLatin1String(">\n");
        pending.append({step.element, step.widget, step.depth, true});
        for (auto it = children.crbegin(); it != children.crend(); ++it)
            pending.append(*it);
    }
    return out.toUtf8();
}

// Why a file is refused before it is parsed into a document.
enum class Refusal { None, TooDeep, TooWide, NotXml, NotProject };

struct Scan {
    Refusal refusal = Refusal::None;
    QString detail; // the parser's complaint, or the name of a foreign root element
    // Where a file that starts as a project stops being well-formed XML; empty when read whole.
    QString breaksOff;
};

QString parseProblem(const QXmlStreamReader& xml)
{
    QString text = xml.errorString();
    while (text.endsWith(u'.'))
        text.chop(1);
    // The complaint may quote the offending character, a NUL or another control among them.
    for (QChar& c : text)
        if (!c.isPrint())
            c = QChar::ReplacementCharacter;
    return QCoreApplication::translate("ProjectFile", "line %1, column %2: %3")
        .arg(QString::number(xml.lineNumber()), QString::number(xml.columnNumber()), text);
}

// QDomDocument frees its nodes recursively, so a file nested deep enough would overflow the stack
// before a single component is read; the stream reader keeps its own element stack. And placing a
// child by the child-order rule looks at its siblings, so a component with thousands of children
// takes time that grows with their square. The same pass learns whether the file is a project at
// all (well-formed up to a "Runplan" root element) and where it breaks off.
Scan prescan(const QByteArray& bytes)
{
    Scan scan;
    QXmlStreamReader xml(bytes);
    xml.setNamespaceProcessing(false); // as the document parser reads it
    QList<int> widgetChildren{0};      // per open element, how many "CWidget" elements it holds so far
    bool rootSeen = false;
    while (!xml.atEnd()) {
        switch (xml.readNext()) {
        case QXmlStreamReader::StartElement:
            if (!rootSeen && xml.name() != kRootTag) {
                scan.refusal = Refusal::NotProject;
                scan.detail = xml.name().toString();
                return scan;
            }
            rootSeen = true;
            if (widgetChildren.size() > ProjectFile::MaxNestingDepth) {
                scan.refusal = Refusal::TooDeep;
                return scan;
            }
            if (xml.name() == kWidgetTag && ++widgetChildren.last() > ProjectFile::MaxChildren) {
                scan.refusal = Refusal::TooWide;
                return scan;
            }
            widgetChildren.append(0);
            break;
        case QXmlStreamReader::EndElement:
            widgetChildren.removeLast();
            break;
        default:
            break;
        }
    }
    if (xml.hasError()) {
        if (rootSeen) {
            scan.breaksOff = parseProblem(xml);
        } else {
            scan.refusal = Refusal::NotXml;
            scan.detail = parseProblem(xml);
        }
    }
    return scan;
}

// Free functions name their context: lupdate cannot tell which one a bare tr() here belongs to.
QString refusalReason(const Scan& scan)
{
    switch (scan.refusal) {
    case Refusal::TooDeep:
        return QCoreApplication::translate("ProjectFile", "nested more than %1 levels")
            .arg(ProjectFile::MaxNestingDepth);
    case Refusal::TooWide:
        return QCoreApplication::translate("ProjectFile", "a component holds more than %1 others")
            .arg(ProjectFile::MaxChildren);
    case Refusal::NotXml:
        return QCoreApplication::translate("ProjectFile", "not well-formed XML (%1)").arg(scan.detail);
    case Refusal::NotProject:
        return QCoreApplication::translate("ProjectFile", "its root element is \"%1\", not \"Runplan\"")
            .arg(scan.detail);
    case Refusal::None:
        break;
    }
    return QString();
}

// The first "CWidget" element below e in document order (not e itself), or a null element.
QDomElement firstDescendantWidget(const QDomElement& e)
{
    QDomNode n = e.firstChild();
    while (!n.isNull()) {
        if (CWidget::isWidgetElement(n.toElement()))
            return n.toElement();
        if (n.hasChildNodes()) {
            n = n.firstChild();
            continue;
        }
        while (!n.isNull() && n != e && n.nextSibling().isNull())
            n = n.parentNode();
        if (n.isNull() || n == e)
            break;
        n = n.nextSibling();
    }
    return QDomElement();
}

// Sets one attribute on a component, converting the text by the type of the property it names.
void applyAttribute(CWidget* w, const QString& name, const QString& text)
{
    const QByteArray key = name.toUtf8();
    const QVariant current = w->property(key.constData());
    QVariant value;
    switch (current.metaType().id()) {
    case QMetaType::Bool:
        value = text.toInt() != 0;
        break;
    case QMetaType::Int:
    case QMetaType::Short:
    case QMetaType::Long:
        value = text.toInt();
        break;
    case QMetaType::UInt:
    case QMetaType::UShort:
    case QMetaType::ULong:
        value = text.toUInt();
        break;
    case QMetaType::LongLong:
        value = text.toLongLong();
        break;
    case QMetaType::ULongLong:
        value = text.toULongLong();
        break;
    case QMetaType::Double:
    case QMetaType::Float: {
        // "nan" and "inf" are no lengths; they read as a value that is not a number, 0.
        const double d = text.toDouble();
        value = std::isfinite(d) ? d : 0.0;
        break;
    }
    default:
        value = text;
        break;
    }
    if (current.isValid() && value.metaType() != current.metaType())
        value.convert(current.metaType());
    // Declared read-only properties refuse the value; unknown names become dynamic properties.
    w->setProperty(key.constData(), value);
}

// Reads one component element: creates it and sets its attributes; its children are left to the
// caller. Null when the element is null or names no kind or product of the catalog.
CWidget* beginComponent(const QDomElement& element, const Database* db)
{
    if (element.isNull())
        return nullptr;
    const int kind = element.attribute(kItemTypeAttr).toInt();
    const QString name = (kind == ItemLeader || kind == ItemJumper)
                             ? ProjectFile::mapLegacyFixtureName(element.attribute(kFixtureNameAttr))
                             : element.attribute(QStringLiteral("name"));
    CWidget* w = createComponent(db, kind, name, 0);
    if (!w)
        return nullptr;
    const QDomNamedNodeMap attrs = element.attributes();
    for (int i = 0; i < attrs.count(); ++i) {
        const QDomAttr attr = attrs.item(i).toAttr();
        if (attr.name() != kFixtureNameAttr)
            applyAttribute(w, attr.name(), attr.value());
    }
    return w;
}

} // namespace

namespace ProjectFile
{

QString withExtension(const QString& path)
{
    return path.endsWith(kExtension) ? path : path + kExtension;
}

QString mapLegacyFixtureName(const QString& name)
{
    static const char* const table[][2] = {
        {QT_TRANSLATE_NOOP("ProjectFile", "Linea Trough Model A Dynaline 6in"),
         QT_TRANSLATE_NOOP("ProjectFile", "Linea Trough Model A Dynaline 6in (100v - 120v)")},
        {QT_TRANSLATE_NOOP("ProjectFile", "Linea Trough Model B Dynaline 6in"),
         QT_TRANSLATE_NOOP("ProjectFile", "Linea Trough Model B Dynaline 6in (100v - 120v)")},
        {QT_TRANSLATE_NOOP("ProjectFile", "Glowbar Tunable Dynaline 1ft"),
         QT_TRANSLATE_NOOP("ProjectFile", "Stylebar Tunable Dynaline 1ft")},
        {QT_TRANSLATE_NOOP("ProjectFile", "Glowbar Tint (RGBA/RGBW) Dynaline 1ft"),
         QT_TRANSLATE_NOOP("ProjectFile", "Stylebar Tint (RGBA/RGBW) Dynaline 1ft")},
        {QT_TRANSLATE_NOOP("ProjectFile", "Glowbar Tunable Dynaline 4ft"),
         QT_TRANSLATE_NOOP("ProjectFile", "Stylebar Tunable Dynaline 4ft")},
        {QT_TRANSLATE_NOOP("ProjectFile", "Glowbar Tint (RGBA/RGBW) Dynaline 4ft"),
         QT_TRANSLATE_NOOP("ProjectFile", "Stylebar Tint (RGBA/RGBW) Dynaline 4ft")},
    };
    for (const auto& entry : table)
        if (name == tr(entry[0]))
            return tr(entry[1]);
    return name;
}

QDomElement saveFrame(QDomDocument& dom, const ConfigDocument& doc)
{
    QDomElement frame = dom.createElement(kFrameTag);
    frame.setAttribute(QStringLiteral("techType"), doc.techType());
    if (const CWidget* root = doc.root())
        frame.appendChild(root->saveToXml(dom));
    return frame;
}

QDomDocument buildDocument(const ConfigDocument& doc, const HeaderChoices& header)
{
    QDomDocument dom(kDocumentType);
    QDomElement root = dom.createElement(kRootTag);
    root.setAttribute(QStringLiteral("fileVersion"), QStringLiteral("3.8.1"));
    root.setAttribute(QStringLiteral("appVersion"), QStringLiteral("%1.%2.%3 Build %4-%5")
                                                        .arg(RunplanVersion::Major)
                                                        .arg(RunplanVersion::Minor)
                                                        .arg(RunplanVersion::Revision)
                                                        .arg(RunplanVersion::BuildDate)
                                                        .arg(RunplanVersion::buildTag()));
    root.setAttribute(QStringLiteral("CurrentFixtureName"), header.fixtureText());
    root.setAttribute(QStringLiteral("CurrentSupplyName"), header.supplyText());
    const QString other = HeaderChoices::otherEntry();
    root.setAttribute(QStringLiteral("LineVoltage"), header.lineVoltageText());
    if (header.lineVoltageText() == other)
        root.setAttribute(QStringLiteral("CustomLineVoltage"), header.customLineVoltage());
    root.setAttribute(QStringLiteral("MaxCircuitLoad"), header.maxCircuitLoadText());
    if (header.maxCircuitLoadText() == other)
        root.setAttribute(QStringLiteral("CustomMaxCircuitLoad"), header.customMaxCircuitLoad());
    root.setAttribute(QStringLiteral("Frequency"), header.frequencyText());
    root.setAttribute(QStringLiteral("Controller"), header.controllerText());
    root.appendChild(saveFrame(dom, doc));
    dom.appendChild(root);
    return dom;
}

QByteArray toBytes(const ConfigDocument& doc, const HeaderChoices& header)
{
    return serialize(buildDocument(doc, header), doc.root());
}

bool save(const QString& path, ConfigDocument& doc, const HeaderChoices& header, Reporter* reporter,
          QString* savedPath)
{
    if (!reporter)
        reporter = Reporter::global();
    const QString fullPath = withExtension(path);
    const QString failedStatus = tr("Failed to save configuration: %1").arg(fullPath);

    // The path is used as given: the working folder is not changed around the save, since that
    // would do nothing for an absolute path and would misdirect a relative one.
    QSaveFile file(fullPath);
    if (!SafeFile::open(file)) {
        reporter->message(Reporter::Kind::Warning, tr("Save Error"),
                          tr("Cannot open file %1:\n%2.").arg(fullPath, file.errorString()));
        reporter->status(failedStatus);
        return false;
    }
    const QByteArray bytes = toBytes(doc, header);
    if (file.write(bytes) != bytes.size() || !SafeFile::commit(file)) {
        file.cancelWriting();
        reporter->message(Reporter::Kind::Critical, tr("Save Error"),
                          tr("Failed to save configuration file: %1").arg(fullPath));
        reporter->status(failedStatus);
        return false;
    }
    reporter->status(tr("Configuration saved"));
    doc.setModified(false);
    if (savedPath)
        *savedPath = fullPath;
    return true;
}

namespace
{
bool readImpl(const QByteArray& bytes, const QString& source, ConfigDocument& doc, HeaderChoices& header,
              Reporter* reporter, QString* notReadWhole)
{
    if (notReadWhole)
        notReadWhole->clear();
    const Scan scan = prescan(bytes);
    if (scan.refusal != Refusal::None) {
        const QString reason = refusalReason(scan);
        const QString shown = source.isEmpty() ? tr("The project") : source;
        reporter->message(Reporter::Kind::Warning, tr("Open Error"),
                          tr("Cannot open %1 as a project:\n%2.").arg(shown, reason));
        reporter->status(source.isEmpty() ? tr("Failed to open configuration: %1").arg(reason)
                                          : tr("Failed to open configuration %1: %2").arg(source, reason));
        return false;
    }
    if (notReadWhole)
        *notReadWhole = scan.breaksOff;

    // A project that breaks off is not reported here: whatever was parsed is used, and what is
    // missing reads as its default. The caller learns where it broke off.
    QDomDocument dom(kDocumentType);
    dom.setContent(bytes);
    const QDomElement root = dom.firstChildElement(kRootTag);

    header.selectSupply(root.attribute(QStringLiteral("CurrentSupplyName")));
    header.selectFixture(mapLegacyFixtureName(root.attribute(QStringLiteral("CurrentFixtureName"))));
    const QString other = HeaderChoices::otherEntry();
    const QString lineVoltage = root.attribute(QStringLiteral("LineVoltage"));
    header.selectLineVoltage(lineVoltage);
    if (lineVoltage == other)
        header.setCustomLineVoltage(
            root.attribute(QStringLiteral("CustomLineVoltage"), QStringLiteral("120")).toInt());
    const QString load = root.attribute(QStringLiteral("MaxCircuitLoad"));
    header.selectMaxCircuitLoad(load);
    if (load == other)
        header.setCustomMaxCircuitLoad(
            root.attribute(QStringLiteral("CustomMaxCircuitLoad"), QStringLiteral("15")).toInt());
    header.selectFrequency(root.attribute(QStringLiteral("Frequency"), QStringLiteral("1")));
    const QString controller = root.attribute(QStringLiteral("Controller"));
    if (!controller.isEmpty())
        header.selectController(controller);

    // The frame's own error text is not shown to the user.
    QString error;
    loadFrame(root, doc, &error);
    doc.setModified(false);
    return true;
}
} // namespace

bool open(const QString& path, ConfigDocument& doc, HeaderChoices& header, Reporter* reporter,
          QString* notReadWhole)
{
    if (!reporter)
        reporter = Reporter::global();
    QFile file(path);
    QByteArray bytes;
    bool readable = file.open(QIODevice::ReadOnly | QIODevice::Text);
    if (readable) {
        bytes = file.readAll();
        readable = file.error() == QFileDevice::NoError;
    }
    if (!readable) {
        reporter->message(Reporter::Kind::Warning, tr("Open Error"),
                          tr("Cannot read file %1:\n%2.").arg(path, file.errorString()));
        reporter->status(tr("Failed to open configuration %1").arg(path));
        return false;
    }
    file.close();
    return readImpl(bytes, path, doc, header, reporter, notReadWhole);
}

bool read(const QByteArray& bytes, ConfigDocument& doc, HeaderChoices& header, Reporter* reporter,
          const QString& sourceName, QString* notReadWhole)
{
    return readImpl(bytes, sourceName, doc, header, reporter ? reporter : Reporter::global(), notReadWhole);
}

bool loadFrame(const QDomElement& element, ConfigDocument& doc, QString* error)
{
    // Emptied without announcing a change: the analysis should run once, on what was read.
    doc.clear();
    doc.setModified(true);

    const QDomNodeList frames = element.elementsByTagName(kFrameTag);
    if (frames.isEmpty()) {
        if (error)
            *error = tr("Found %1 CFrame elements").arg(frames.count());
        return false;
    }
    // Further frames are ignored.
    const QDomNode node = frames.item(0);
    if (node.isNull()) {
        if (error)
            *error = tr("Found NULL CFrame node");
        return false;
    }
    const QDomElement frame = node.toElement();
    if (frame.isNull()) {
        if (error)
            *error = tr("Found NULL CFrame element");
        return false;
    }
    // techType is not read back: the document keeps its own technology.

    const QDomElement first = frame.firstChildElement(kWidgetTag);
    if (first.isNull())
        return true;
    if (CWidget* root = readComponent(first, doc.database()))
        doc.setRoot(root);
    return true;
}

CWidget* readComponent(const QDomElement& element, const Database* db)
{
    // Depth-first with an explicit stack rather than recursion: the main thread's stack is small on
    // some platforms and a run nests one level per fixture. Each child is attached once its own
    // subtree is complete, so the child-order rule sees the same tree as a recursive reader would.
    struct Level {
        CWidget* widget;
        QDomNode next; // the next sibling node to read as a child
    };
    ComponentLoading::setActive(true);
    CWidget* top = beginComponent(element, db);
    if (!top) {
        ComponentLoading::setActive(false);
        return nullptr;
    }
    QList<Level> stack;
    stack.append({top, firstDescendantWidget(element)});
    CWidget* result = nullptr;
    while (!stack.isEmpty()) {
        Level& level = stack.last();
        if (level.next.isNull()) {
            CWidget* done = level.widget;
            stack.removeLast();
            ComponentLoading::setActive(false);
            if (stack.isEmpty())
                result = done;
            else
                stack.last().widget->insertChild(done);
            continue;
        }
        const QDomNode node = level.next;
        level.next = node.nextSibling();
        // Only component elements are children; text, comments and foreign elements are skipped.
        const QDomElement childElement = node.toElement();
        if (!CWidget::isWidgetElement(childElement))
            continue;
        ComponentLoading::setActive(true);
        CWidget* child = beginComponent(childElement, db);
        if (!child) {
            ComponentLoading::setActive(false); // unknown kind or product: its subtree is dropped
            continue;
        }
        stack.append({child, firstDescendantWidget(childElement)});
    }
    return result;
}

} // namespace ProjectFile
