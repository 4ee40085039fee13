// The icons of the toolbar buttons: SVG files of an icon set shipped in "icons" beside the program
// (data/icons, with its licence), drawn with QtSvg at every size a toolbar asks for:
//
//   QIcon icon = vexil::ButtonIcon(QStringLiteral("Move"));   // null when the button has no icon file
#pragma once
#include <QIcon>
#include <QString>

namespace vexil {

// The file name (without ".svg") of the icon of a toolbar button, by the button's key ("New", "Move", ...);
// empty for a key that has none.
QString ButtonIconName(const QString& buttonKey);
// The icon of a button, from application folder + "/icons/<name>.svg"; a null icon when the key has no icon
// or its file is missing or unreadable (the caller then draws its own).
QIcon ButtonIcon(const QString& buttonKey);

} // namespace vexil
