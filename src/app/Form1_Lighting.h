// The lighting subsystem in the main window: Form1 makes the light controller with its shared objects
// (after the selection model), places the Light panel under the light tree and the smoothing panel in the
// Edit Group tab, and connects the Light menus.
#pragma once

class QMenu;

namespace vexil {

class Form1;
class LightController;

void InstallLighting(Form1& form);
void ReleaseLighting();
// The main window's light controller (null before InstallLighting).
LightController* FormLighting();
// mnuLightMenu_HideObsoleteItems: on the root New, Show All and Hide All; on a light Delete with Hide or
// Unhide.
void LightMenuHideObsoleteItems(Form1& form, bool root, bool hidden);

} // namespace vexil
