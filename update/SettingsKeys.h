#pragma once

#include <QByteArray>
#include <QDir>
#include <QSettings>
#include <QString>

// Every key of the per-user settings store and its default. Each accessor opens its own short-lived
// QSettings: nothing is cached, so a value written elsewhere is seen at the next read.
namespace RunplanSettings
{

inline QString windowGeometryKey()
{
    return QStringLiteral("rp_window_geometry");
}
inline QString lineKeyActiveKey()
{
    return QStringLiteral("rplan_line_key_active");
}
// Off unless stored: the canvas then paints as it always has.
inline QString showVoltagesKey()
{
    return QStringLiteral("rplan_show_voltages");
}
inline QString lastDirPathKey()
{
    return QStringLiteral("lastDirPath");
}
inline QString maximizeFixtureFileKey()
{
    return QStringLiteral("maximize_fixture_file");
}
// Defined beside maximize_fixture_file but read by nobody: both exports share the fixture key.
inline QString maximizeAllFileKey()
{
    return QStringLiteral("maximize_all_file");
}
inline QString updateNeverCheckKey()
{
    return QStringLiteral("update_never_check");
}
inline QString updateCheckIntervalDaysKey()
{
    return QStringLiteral("update_check_interval_days");
}
inline QString useProxyKey()
{
    return QStringLiteral("use_proxy");
}
inline QString proxyHostKey()
{
    return QStringLiteral("proxy_host");
}
inline QString proxyPortKey()
{
    return QStringLiteral("proxy_port");
}
inline QString proxyUserKey()
{
    return QStringLiteral("proxy_user");
}
inline QString proxyPasswordKey()
{
    return QStringLiteral("proxy_password");
}

constexpr bool DefaultUpdateNeverCheck = false;
constexpr int DefaultUpdateCheckIntervalDays = 14;
constexpr bool DefaultUseProxy = false;
constexpr int DefaultProxyPort = 8080;
inline QString defaultMaximizeFixtureFile()
{
    return QStringLiteral("data.csv");
}
inline QString defaultLastDirPath()
{
    return QDir::homePath();
}

// Window geometry: empty when never stored, and then the window keeps its own size.
inline bool hasWindowGeometry()
{
    return QSettings().contains(windowGeometryKey());
}
inline QByteArray windowGeometry()
{
    return QSettings().value(windowGeometryKey()).toByteArray();
}
inline void setWindowGeometry(const QByteArray& geometry)
{
    QSettings().setValue(windowGeometryKey(), geometry);
}

// The line colour key is shown when the key was never stored; only a stored value can hide it.
inline bool hasLineKeyActive()
{
    return QSettings().contains(lineKeyActiveKey());
}
inline bool lineKeyActive()
{
    QSettings settings;
    return settings.contains(lineKeyActiveKey()) ? settings.value(lineKeyActiveKey()).toBool() : true;
}
inline void setLineKeyActive(bool active)
{
    QSettings().setValue(lineKeyActiveKey(), active);
}

inline QString lastDirPath()
{
    return QSettings().value(lastDirPathKey(), defaultLastDirPath()).toString();
}
inline void setLastDirPath(const QString& dir)
{
    QSettings().setValue(lastDirPathKey(), dir);
}

inline QString maximizeFixtureFile()
{
    return QSettings().value(maximizeFixtureFileKey(), defaultMaximizeFixtureFile()).toString();
}
inline void setMaximizeFixtureFile(const QString& path)
{
    QSettings().setValue(maximizeFixtureFileKey(), path);
}

inline bool updateNeverCheck()
{
    return QSettings().value(updateNeverCheckKey(), DefaultUpdateNeverCheck).toBool();
}
inline int updateCheckIntervalDays()
{
    return QSettings().value(updateCheckIntervalDaysKey(), DefaultUpdateCheckIntervalDays).toInt();
}
inline bool useProxy()
{
    return QSettings().value(useProxyKey(), DefaultUseProxy).toBool();
}
inline QString proxyHost()
{
    return QSettings().value(proxyHostKey(), QString()).toString();
}
inline int proxyPort()
{
    return QSettings().value(proxyPortKey(), DefaultProxyPort).toInt();
}
inline QString proxyUser()
{
    return QSettings().value(proxyUserKey(), QString()).toString();
}
inline QString proxyPassword()
{
    return QSettings().value(proxyPasswordKey(), QString()).toString();
}

} // namespace RunplanSettings
