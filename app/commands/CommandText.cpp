#include "app/commands/CommandText.h"

#include "model/CWidget.h"

#include <QCoreApplication>

namespace
{
QString tr(const char* text)
{
    return QCoreApplication::translate("CommandText", text);
}

QString kindName(int kind)
{
    switch (kind) {
    case ItemSupply:
        return tr("Enabler");
    case ItemLeader:
        return tr("Leader");
    case ItemFixture:
        return tr("Fixture");
    case ItemJumper:
        return tr("Jumper");
    case ItemReceiver:
        return tr("Receiver");
    case ItemBranchWire:
        return tr("Branch Wire");
    case ItemJunctionBox:
        return tr("Junction Box");
    default:
        return QString();
    }
}
} // namespace

namespace CommandText
{
QString add(int kind)
{
    return tr("Add %1").arg(kindName(kind));
}

QString remove(const CWidget* w)
{
    return w ? tr("Delete %1").arg(kindName(w->itemType())) : tr("Delete");
}

QString change(const QString& what)
{
    return tr("Change %1").arg(what);
}

QString maximize()
{
    return tr("Maximize");
}

QString reset()
{
    return tr("Reset");
}

QString newConfiguration()
{
    return tr("New");
}
} // namespace CommandText
