#pragma once

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QSettings>
#include <QString>
#include <QVariant>

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

// A stored value that cannot be read as its type (a word where a number belongs, "maybe" for a
// yes or no) or that lies outside the range its control offers counts as absent: the default is
// used.
inline bool readBool(const QSettings& settings, const QString& key, bool fallback)
{
    const QVariant value = settings.value(key);
    if (value.typeId() == QMetaType::Bool)
        return value.toBool();
    const QString text = value.toString().trimmed().toLower();
    if (text == QLatin1String("true") || text == QLatin1String("1"))
        return true;
    if (text == QLatin1String("false") || text == QLatin1String("0"))
        return false;
    return fallback;
}
inline int readInt(const QSettings& settings, const QString& key, int fallback, int minimum, int maximum)
{
    bool ok = false;
    const int value = settings.value(key).toString().trimmed().toInt(&ok);
    return ok && value >= minimum && value <= maximum ? value : fallback;
}
constexpr int MaxProxyPort = 65535;
constexpr int MaxUpdateCheckIntervalDays = 365;

// Ends every write: the store is written out and its file made readable by its owner only, since
// it holds the proxy password as typed. Later rewrites keep that mode.
inline void finishWrite(QSettings& settings)
{
    settings.sync();
    if (QFile::exists(settings.fileName()))
        QFile::setPermissions(settings.fileName(), QFileDevice::ReadOwner | QFileDevice::WriteOwner);
}
inline void write(const QString& key, const QVariant& value)
{
    QSettings settings;
    settings.setValue(key, value);
    finishWrite(settings);
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
    write(windowGeometryKey(), geometry);
}

// The line colour key is shown when the key was never stored; only a stored value can hide it.
inline bool hasLineKeyActive()
{
    return QSettings().contains(lineKeyActiveKey());
}
inline bool lineKeyActive()
{
    return readBool(QSettings(), lineKeyActiveKey(), true);
}
inline void setLineKeyActive(bool active)
{
    write(lineKeyActiveKey(), active);
}

inline QString lastDirPath()
{
    return QSettings().value(lastDirPathKey(), defaultLastDirPath()).toString();
}
inline void setLastDirPath(const QString& dir)
{
    write(lastDirPathKey(), dir);
}

inline QString maximizeFixtureFile()
{
    return QSettings().value(maximizeFixtureFileKey(), defaultMaximizeFixtureFile()).toString();
}
inline void setMaximizeFixtureFile(const QString& path)
{
    write(maximizeFixtureFileKey(), path);
}

inline bool updateNeverCheck()
{
    return readBool(QSettings(), updateNeverCheckKey(), DefaultUpdateNeverCheck);
}
inline int updateCheckIntervalDays()
{
    return readInt(QSettings(), updateCheckIntervalDaysKey(), DefaultUpdateCheckIntervalDays, 0,
                   MaxUpdateCheckIntervalDays);
}
inline bool useProxy()
{
    return readBool(QSettings(), useProxyKey(), DefaultUseProxy);
}
inline QString proxyHost()
{
    return QSettings().value(proxyHostKey(), QString()).toString();
}
inline int proxyPort()
{
    return readInt(QSettings(), proxyPortKey(), DefaultProxyPort, 0, MaxProxyPort);
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
