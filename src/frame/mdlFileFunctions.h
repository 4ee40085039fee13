// File-name helpers and the moves of a careful save, with "/" in place of "\" (docs/platform.md). The one
// set of these helpers: the world document uses them too.
#pragma once
#include <QString>
#include <QStringList>

namespace vexil::mdlFileFunctions {

// What stands behind the last "/"; the whole text when there is none.
QString GetFileName(const QString& path);
// The text before the last "/", without it; empty for a bare file name. "/x.wld" gives "" (the root,
// like "C:" for "C:\x.wld", has no closing separator).
QString GetFolder(const QString& path);
// Moves every file (not folders) of source to target + "/" + its name, replacing existing files and
// copying across file systems. A failed move sets the result to false; the walk goes on. `failed`, when
// given, receives the source path of each file that could not be moved.
bool MoveFolderFiles(const QString& source, const QString& target, QStringList* failed = nullptr);
// Moves one file, replacing the target (MoveFileExA with flags 1 or 3), so that the target is at every
// moment either the old file or the whole new one: the new file is flushed to the disk, then renamed over
// the target in one step; across file systems it is first copied (and flushed) beside the target under a
// temporary name. The target is never deleted first, so a move that fails leaves it as it was.
bool MoveFileReplace(const QString& from, const QString& to);

} // namespace vexil::mdlFileFunctions
