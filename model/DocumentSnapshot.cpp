#include "model/DocumentSnapshot.h"

#include "model/CWidget.h"
#include "model/ConfigDocument.h"
#include "model/ProjectFile.h"

namespace
{
// The tree in pre-order (the order of the file's elements).
template <typename W, typename F> void forEachInOrder(W* root, F f)
{
    QList<W*> pending;
    if (root)
        pending.append(root);
    while (!pending.isEmpty()) {
        W* w = pending.takeLast();
        f(w);
        for (auto it = w->children().crbegin(); it != w->children().crend(); ++it)
            pending.append(*it);
    }
}

DocumentSnapshot::Unsaved unsavedOf(const CWidget* w)
{
    DocumentSnapshot::Unsaved u;
    if (const auto* cable = qobject_cast<const CableWidget*>(w)) {
        u.length = cable->length();
        u.gauge = cable->gauge();
    } else if (const auto* supply = qobject_cast<const SupplyWidget*>(w)) {
        u.location = supply->explicitLocation();
    } else if (const auto* wire = qobject_cast<const BranchWireWidget*>(w)) {
        u.count = wire->spare();
    } else if (const auto* fixture = qobject_cast<const FixtureWidget*>(w)) {
        u.count = fixture->childCapacity();
    }
    return u;
}

void applyUnsaved(CWidget* w, const DocumentSnapshot::Unsaved& u)
{
    if (auto* cable = qobject_cast<CableWidget*>(w)) {
        cable->setLength(u.length);
        cable->setGauge(u.gauge);
    } else if (auto* supply = qobject_cast<SupplyWidget*>(w)) {
        supply->setExplicitLocation(u.location);
    } else if (auto* wire = qobject_cast<BranchWireWidget*>(w)) {
        wire->setSpare(u.count);
    } else if (auto* fixture = qobject_cast<FixtureWidget*>(w)) {
        fixture->setChildCapacity(u.count);
    }
}

// Fast zlib level: project text shrinks about tenfold even so, and the history keeps one
// snapshot per step.
constexpr int CompressionLevel = 1;
} // namespace

DocumentSnapshot DocumentSnapshot::capture(const ConfigDocument& doc, const HeaderChoices& header)
{
    DocumentSnapshot s;
    s.project = qCompress(ProjectFile::toBytes(doc, header), CompressionLevel);
    forEachInOrder<const CWidget>(doc.root(), [&s](const CWidget* w) { s.unsaved.append(unsavedOf(w)); });
    const CWidget* current = doc.current();
    s.hasCurrent = current != nullptr;
    if (current)
        s.currentPath = pathOf(current);
    s.lastLocation = doc.lastLocation();
    return s;
}

QList<int> DocumentSnapshot::pathOf(const CWidget* w)
{
    QList<int> path;
    for (; w && w->parentWidget(); w = w->parentWidget())
        path.prepend(w->parentWidget()->indexOfChild(w));
    return path;
}

QByteArray DocumentSnapshot::projectBytes() const
{
    return qUncompress(project);
}

void DocumentSnapshot::restore(ConfigDocument& doc, HeaderChoices& header, Reporter* reporter) const
{
    ProjectFile::read(projectBytes(), doc, header, reporter);
    QList<CWidget*> inOrder;
    forEachInOrder<CWidget>(doc.root(), [&inOrder](CWidget* w) { inOrder.append(w); });
    if (inOrder.size() == unsaved.size()) {
        for (qsizetype i = 0; i < inOrder.size(); ++i)
            applyUnsaved(inOrder.at(i), unsaved.at(i));
    }
    doc.setLastLocation(lastLocation);
    CWidget* w = hasCurrent ? doc.root() : nullptr;
    for (int row : currentPath) {
        if (!w)
            break;
        w = w->child(row);
    }
    doc.setCurrent(w);
    doc.setModified(false);
}
