// The selection model in the main window: Form1 makes it with its shared objects and releases it with them.
#pragma once

namespace vexil {

class Form1;
class SelectionModel;

// Makes the model with Form1 as its host, installs it for the undo actions, and connects the menus, trees
// and context menus of selection, hiding, deleting and grouping.
void InstallSelection(Form1& form);
void ReleaseSelection();
// The installed model of the main window (null before InstallSelection).
SelectionModel* FormSelection();

} // namespace vexil
