// The main window's side of the workbench: open it on a group, and put the group it hands back in
// the place of the original as one undoable step (ActionReplaceGrp).
//
//   const int reduced = ShowSurfaceSimplification(group, mainWindow);   // modal
//   if (reduced != 0) ReplaceGroupWithReduced(*selectionModel, group, reduced);
#pragma once

class QWidget;

namespace vexil {

class SelectionModel;

// Opens formSurfaceSimplification modally on `group` (through the dialogs seam), then puts back
// the accelerated render as it was and the world as the thing to render. Answers the group the
// window handed over: a new group under the original's father, or 0 when there is none.
int ShowSurfaceSimplification(int group, QWidget* parent = nullptr);

// Names `reduced` from the old group's name (GetNewGrpNameFrmGivenStr), pushes one
// ActionReplaceGrp that holds both, takes the old group out (fake delete: undo brings it back with
// its handle), puts the new one in its place in the group tree and makes it the current entity.
void ReplaceGroupWithReduced(SelectionModel& model, int group, int reduced);

} // namespace vexil
