#include "model/SafeFile.h"

#include <QFileInfo>
#include <QSaveFile>

namespace SafeFile
{

bool open(QSaveFile& file)
{
    const QFileInfo target(file.fileName());
    const QFileInfo folder(target.absolutePath());
    file.setDirectWriteFallback(folder.exists() && !folder.isWritable() && target.isFile() &&
                                target.isWritable());
    return file.open(QIODevice::WriteOnly | QIODevice::Text);
}

bool commit(QSaveFile& file)
{
    // commit() does not notice a buffered write that fails while it flushes (the disk filling up,
    // say), so everything is flushed and checked before the old file is replaced.
    if (file.flush() && file.error() == QFileDevice::NoError && file.commit())
        return true;
    file.cancelWriting();
    return false;
}

} // namespace SafeFile
