// The main window's side of the workbench: open it on a group; the caller puts the group it hands back in
// the place of the original as one undoable step (ActionReplaceGrp, src/modelling EditGeometry::ReplaceGroup).
//
//   const int reduced = ShowSurfaceSimplification(group, mainWindow);   // modal
#pragma once

class QWidget;

namespace vexil {

// Opens formSurfaceSimplification modally on `group` (through the dialogs seam), then puts back
// the accelerated render as it was and the world as the thing to render. Answers the group the
// window handed over: a new group under the original's father, or 0 when there is none.
int ShowSurfaceSimplification(int group, QWidget* parent = nullptr);

} // namespace vexil
