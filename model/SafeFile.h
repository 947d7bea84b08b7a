#pragma once

class QSaveFile;

// Every file the program writes goes through a QSaveFile: the text goes to a temporary file beside
// the target, which replaces the target only once everything was written.
namespace SafeFile
{
// Opens the file for writing text. Where the folder refuses the temporary file but the target
// exists and may itself be written (a writable file in a read-only folder), the target is written
// in place, as a plain overwrite would; only then can a failed write not keep the old contents.
bool open(QSaveFile& file);
// Flushes and checks every write, then replaces the target. False (and the target as it was, or
// the temporary file removed) when anything failed.
bool commit(QSaveFile& file);
} // namespace SafeFile
