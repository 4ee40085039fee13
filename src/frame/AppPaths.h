// The application folder (docs/platform.md): $VEXIL_HOME if set, else the folder of the
// executable. Logs, "Hold.wld", "Models", "Templates", "plugins", "Locale Resources",
// "Viewer Mode" live in it.
#pragma once
#include <QString>

namespace vexil {

// Folder without a trailing "/".
QString AppFolder();
// AppFolder() + "/" + relative.
QString AppPath(const QString& relative);
// Test support: overrides the folder for this process (empty: back to the rule).
void setAppFolderForTests(const QString& folder);

} // namespace vexil
