#pragma once

#include <QString>

// The program's release identity, shown in the title, the about box, the splash and saved projects.
namespace RunplanVersion
{
constexpr int Major = 3;
constexpr int Minor = 17;
constexpr int Revision = 0;
constexpr int BuildDate = 20250205;
inline QString buildTag()
{
    return QStringLiteral("2cbee83");
}
inline QString applicationName()
{
    return QStringLiteral("Runplan");
}
// "3.17.0"
inline QString number()
{
    return QStringLiteral("%1.%2.%3").arg(Major).arg(Minor).arg(Revision);
}
} // namespace RunplanVersion
