#pragma once

#include <QDomDocument>
#include <QDomElement>
#include <QString>

class CWidget;
class ConfigDocument;
class Database;
class HeaderChoices;
class Reporter;

// Reading and writing ".rpproj" project files.
namespace ProjectFile
{
constexpr int MaxNestingDepth = 10000; // a run nests one level per fixture; deeper files are refused
constexpr int MaxChildren = 1000;      // components directly below one; a box takes six, more are refused

// The path with ".rpproj" appended unless it already ends so (case-sensitive).
QString withExtension(const QString& path);
// Maps an old fixture name to its present one; other names come back unchanged.
QString mapLegacyFixtureName(const QString& name);

// Builds the whole document: the "Runplan" root with the header attributes and the "CFrame".
QDomDocument buildDocument(const ConfigDocument& doc, const HeaderChoices& header);
QByteArray toBytes(const ConfigDocument& doc, const HeaderChoices& header);

// Writes the project atomically: a failed save leaves any previous file as it was (except where
// only the file itself may be written, not its folder: see SafeFile). Reports
// "Save Error" messages and status lines through the reporter; on success the status line is
// "Configuration saved" and the document's modified flag is cleared. savedPath receives the path
// with its extension.
bool save(const QString& path, ConfigDocument& doc, const HeaderChoices& header, Reporter* reporter,
          QString* savedPath = nullptr);

// Reads a project into the header choices and the document. False when the file cannot be read,
// is not a project (not well-formed XML up to its first element, or a root element other than
// "Runplan") or is refused as nested too deeply or too wide: an "Open Error" message and a status
// line say why, and nothing changes. A project that breaks off later is read as far as it parses
// and the result is true; notReadWhole then receives where and why it broke off (it is emptied
// for a file read whole).
bool open(const QString& path, ConfigDocument& doc, HeaderChoices& header, Reporter* reporter,
          QString* notReadWhole = nullptr);
// Reads from bytes already in memory (the same rules as open); sourceName names them in messages.
bool read(const QByteArray& bytes, ConfigDocument& doc, HeaderChoices& header, Reporter* reporter,
          const QString& sourceName = QString(), QString* notReadWhole = nullptr);

QDomElement saveFrame(QDomDocument& dom, const ConfigDocument& doc);
bool loadFrame(const QDomElement& element, ConfigDocument& doc, QString* error);
// Reads a component element with its subtree; null when the element names no kind or product of
// the catalog.
CWidget* readComponent(const QDomElement& element, const Database* db);
} // namespace ProjectFile
