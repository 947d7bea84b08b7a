#include "app/RecoveryStore.h"

#include "model/SafeFile.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QLockFile>
#include <QSaveFile>
#include <QStandardPaths>

#include <atomic>

namespace
{
const QString kPrefix = QStringLiteral("runplan-");
const QString kProjectSuffix = QStringLiteral(".rpproj");
const QString kOriginSuffix = QStringLiteral(".origin");
const QString kLockSuffix = QStringLiteral(".lock");
// A recovery file is the store's own output; anything much larger is not one.
constexpr qint64 MaxRecoveryBytes = 64LL * 1024 * 1024;

std::unique_ptr<QLockFile> lockFor(const QString& base)
{
    auto lock = std::make_unique<QLockFile>(base + kLockSuffix);
    // Only a dead owner makes a lock stale: a long-running window keeps its file.
    lock->setStaleLockTime(0);
    return lock;
}

QByteArray readLimited(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly) || file.size() > MaxRecoveryBytes)
        return QByteArray();
    return file.readAll();
}

// The same atomic write as a saved project: complete or not at all.
bool writeAtomically(const QString& path, const QByteArray& bytes)
{
    QSaveFile file(path);
    if (!SafeFile::open(file))
        return false;
    if (file.write(bytes) != bytes.size() || !SafeFile::commit(file)) {
        file.cancelWriting();
        return false;
    }
    return true;
}

void removeFiles(const QString& base)
{
    QFile::remove(base + kProjectSuffix);
    QFile::remove(base + kOriginSuffix);
}
} // namespace

RecoveryStore::RecoveryStore(const QString& folder) : m_folder(folder)
{
    static std::atomic<int> serial{0};
    m_base = QDir(folder).filePath(
        kPrefix + QStringLiteral("%1-%2").arg(QCoreApplication::applicationPid()).arg(++serial));
}

RecoveryStore::~RecoveryStore() = default;

QString RecoveryStore::defaultFolder()
{
    return QDir(QStandardPaths::writableLocation(QStandardPaths::AppDataLocation))
        .filePath(QStringLiteral("recovery"));
}

bool RecoveryStore::write(const QByteArray& project, const QString& originalPath)
{
    if (!m_lock) {
        if (!QDir().mkpath(m_folder))
            return false;
        auto lock = lockFor(m_base);
        if (!lock->tryLock(0))
            return false;
        m_lock = std::move(lock);
    }
    return writeAtomically(m_base + kOriginSuffix, originalPath.toUtf8()) && writeAtomically(filePath(), project);
}

void RecoveryStore::discard()
{
    if (!m_lock)
        return;
    removeFiles(m_base);
    m_lock.reset(); // unlocks and removes the lock file
}

bool RecoveryStore::claimOrphan(Orphan* out)
{
    finishClaim();
    const QDir dir(m_folder);
    const QStringList names =
        dir.entryList({kPrefix + QLatin1Char('*') + kProjectSuffix}, QDir::Files, QDir::Name);
    for (const QString& name : names) {
        const QString base = dir.filePath(name.chopped(kProjectSuffix.size()));
        if (base == m_base)
            continue;
        auto lock = lockFor(base);
        if (!lock->tryLock(0))
            continue; // its window is still running
        Orphan orphan;
        orphan.projectPath = base + kProjectSuffix;
        orphan.originalPath = QString::fromUtf8(readLimited(base + kOriginSuffix));
        orphan.project = readLimited(orphan.projectPath);
        if (orphan.project.isEmpty()) {
            removeFiles(base); // nothing to recover from
            continue;
        }
        m_claimedBase = base;
        m_claimLock = std::move(lock);
        *out = orphan;
        return true;
    }
    return false;
}

void RecoveryStore::finishClaim()
{
    if (!m_claimLock)
        return;
    removeFiles(m_claimedBase);
    m_claimLock.reset();
    m_claimedBase.clear();
}
