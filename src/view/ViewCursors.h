// The viewports' mouse pointers and tool icons, drawn in code so that they scale with nothing but Qt.
// Keys: "Select", "Cross hair", "Pointer", "Pan", "Revolve", "Zoom", "Move Camera", "Roll Camera", "Move",
// "Rotate", "Scale". An unknown key gives the arrow.
#pragma once
#include <QCursor>
#include <QIcon>
#include <QString>

namespace vexil {

QCursor ViewCursor(const QString& key);
// The toolbar icon of a tool key ("Select" ... "Roll Camera", "Align").
QIcon ToolIcon(const QString& key);

} // namespace vexil
