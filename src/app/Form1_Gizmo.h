// The transform gizmos and the typed transform panel in the main window: Form1 makes them with its shared
// objects and releases them with them.
#pragma once

namespace vexil {

class Form1;
class ViewGizmos;
class frmTransformParameters;

// Makes the four gizmos over Form1's viewports and undo stack; a right click (or a double click) on the
// Move, Rotate or Scale tool button opens the typed transform panel for that tool.
void InstallGizmos(Form1& form);
void ReleaseGizmos();
// The installed gizmos and panel (null before InstallGizmos; the panel until first shown).
ViewGizmos* FormGizmos();
frmTransformParameters* FormTransformParameters();

} // namespace vexil
