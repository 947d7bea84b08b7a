#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

class CWidget;
class ConfigDocument;
class HeaderChoices;
class Reporter;

// One state of a configuration as the user left it: its project-file bytes (tree and header
// choices, kept compressed), the values a project file leaves out, the current component and the
// last branch-wire location. Putting a snapshot back reads the bytes as opening a project does and
// then sets the values the file left out, so the tree is the one the user had, not the one a
// reopened file would give (a fixed jumper's length, a later enabler's location, a branch wire's
// spare count, a fixture's child capacity).
struct DocumentSnapshot {
    // What a project file does not keep of a component; one per component in tree order.
    struct Unsaved {
        double length = 0.0;
        QString gauge;
        QString location;
        int count = 0; // a branch wire's spare conductors, a fixture's child capacity
        bool operator==(const Unsaved& o) const
        {
            return length == o.length && gauge == o.gauge && location == o.location && count == o.count;
        }
    };

    QByteArray project; // compressed project-file bytes
    QList<Unsaved> unsaved;
    QList<int> currentPath; // rows from the top-level component down to the current one
    bool hasCurrent = false;
    QString lastLocation;

    static DocumentSnapshot capture(const ConfigDocument& doc, const HeaderChoices& header);
    // The rows leading to w (empty for the top-level component).
    static QList<int> pathOf(const CWidget* w);

    // Same tree and header choices (the selection is not part of the content).
    bool sameContent(const DocumentSnapshot& other) const
    {
        return project == other.project && unsaved == other.unsaved;
    }
    QByteArray projectBytes() const;

    // Reads the state back into doc and header; the document comes back unmodified.
    void restore(ConfigDocument& doc, HeaderChoices& header, Reporter* reporter) const;
};
