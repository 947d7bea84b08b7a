#include "app/commands/CommandText.h"

#include "model/CWidget.h"

#include <QCoreApplication>

namespace
{
QString tr(const char* text)
{
    return QCoreApplication::translate("CommandText", text);
}

// Named context: lupdate cannot place a bare tr() in a free function.
QString kindName(int kind)
{
    switch (kind) {
    case ItemSupply:
        return QCoreApplication::translate("CommandText", "Enabler");
    case ItemLeader:
        return QCoreApplication::translate("CommandText", "Leader");
    case ItemFixture:
        return QCoreApplication::translate("CommandText", "Fixture");
    case ItemJumper:
        return QCoreApplication::translate("CommandText", "Jumper");
    case ItemReceiver:
        return QCoreApplication::translate("CommandText", "Receiver");
    case ItemBranchWire:
        return QCoreApplication::translate("CommandText", "Branch Wire");
    case ItemJunctionBox:
        return QCoreApplication::translate("CommandText", "Junction Box");
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
