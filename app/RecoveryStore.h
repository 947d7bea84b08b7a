#pragma once

#include <QByteArray>
#include <QString>
#include <memory>

class QLockFile;

// Autosaved copies of unsaved configurations in the per-user application-data folder. Each window
// of each process writes its own file, named by process and window, and holds a lock on it while
// the file exists; a file whose lock nobody holds was left by a run that did not exit cleanly.
class RecoveryStore
{
public:
    explicit RecoveryStore(const QString& folder = defaultFolder());
    ~RecoveryStore();
    RecoveryStore(const RecoveryStore&) = delete;
    RecoveryStore& operator=(const RecoveryStore&) = delete;

    static QString defaultFolder();
    QString filePath() const { return m_base + QStringLiteral(".rpproj"); }

    // Writes this window's recovery file atomically, with the path the configuration was opened
    // from or saved to (empty when untitled). False when it could not be written.
    bool write(const QByteArray& project, const QString& originalPath);
    // Deletes this window's recovery file and lets its lock go.
    void discard();

    // A file left by a run that ended without cleaning up, locked for this window while it is
    // being dealt with.
    struct Orphan {
        QString projectPath;
        QString originalPath;
        QByteArray project;
    };
    // Claims the next such file; false when there is none.
    bool claimOrphan(Orphan* out);
    // Deletes the claimed file (recovered or discarded) and lets its lock go.
    void finishClaim();

private:
    QString m_folder;
    QString m_base; // this window's files without their extension
    std::unique_ptr<QLockFile> m_lock;
    QString m_claimedBase;
    std::unique_ptr<QLockFile> m_claimLock;
};
