#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

class CWidget;
class ConfigDocument;
class HeaderChoices;
class Reporter;

// One state of a configuration as the user left it: its project-file bytes (tree and header
// choices, kept compressed), the current component and the last branch-wire location. Putting a
// snapshot back reads the bytes as opening a project does, so what comes back is what a save of
// the state would have written.
struct DocumentSnapshot {
    QByteArray project;     // compressed project-file bytes
    QList<int> currentPath; // rows from the top-level component down to the current one
    bool hasCurrent = false;
    QString lastLocation;

    static DocumentSnapshot capture(const ConfigDocument& doc, const HeaderChoices& header);
    // The rows leading to w (empty for the top-level component).
    static QList<int> pathOf(const CWidget* w);

    // Same tree and header choices (the selection is not part of the content).
    bool sameContent(const DocumentSnapshot& other) const { return project == other.project; }
    QByteArray projectBytes() const;

    // Reads the state back into doc and header; the document comes back unmodified.
    void restore(ConfigDocument& doc, HeaderChoices& header, Reporter* reporter) const;
};
