#include "model/DocumentSnapshot.h"

#include "model/CWidget.h"
#include "model/ConfigDocument.h"
#include "model/ProjectFile.h"

namespace
{
// Fast zlib level: project text shrinks about tenfold even so, and the history keeps one
// snapshot per step.
constexpr int CompressionLevel = 1;
} // namespace

DocumentSnapshot DocumentSnapshot::capture(const ConfigDocument& doc, const HeaderChoices& header)
{
    DocumentSnapshot s;
    s.project = qCompress(ProjectFile::toBytes(doc, header), CompressionLevel);
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
