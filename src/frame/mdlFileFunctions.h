// File-name helpers, with "/" in place of "\" (docs/platform.md).
#pragma once
#include <QString>

namespace vexil::mdlFileFunctions {

// What stands behind the last "/"; the whole text when there is none.
QString GetFileName(const QString& path);
// The text before the last "/", without it; empty for a bare file name. "/x.wld" gives "" (the root,
// like "C:" for "C:\x.wld", has no closing separator).
QString GetFolder(const QString& path);
// Moves every file (not folders) of source to target + "/" + its name, replacing existing files and
// copying across file systems. A failed move sets the result to false; the walk goes on.
bool MoveFolderFiles(const QString& source, const QString& target);
// Moves one file, replacing the target (MoveFileExA with flags 1 or 3).
bool MoveFileReplace(const QString& from, const QString& to);

} // namespace vexil::mdlFileFunctions
