// Form1: the commands that belong to later issues. Each body here is a placeholder that does nothing
// (or the least that keeps the frame coherent). Whoever implements one moves its body to the folder of
// its subsystem (a further translation unit of Form1, see Form1.h) and deletes it here.
#include "Form1.h"

#include "frame/Locale.h"
#include "frame/Preferences.h"
#include "Form1_Gizmo.h"
#include "Form1_Lighting.h"
#include "Form1_Materials.h"
#include "Form1_Selection.h"
#include "Form1_Tracks.h"
#include "modelling/ModellingActions.h"

#include <QLabel>

namespace vexil {



// the model gallery: model gallery (src/library).
void Form1::trwModel_InitialSetup() {}

// the plugin host: plug-ins (src/plugins).
void Form1::LoadPlugins() {}
void Form1::UnloadPlugins() {}
void Form1::PluginsKeyDown(int, Qt::KeyboardModifiers) {}

// Form_Load 14, 17, 18 and Form_Unload 6 to 8: the shared objects of camera navigation to selection model, 5.1, 9.1, 10.1
// (MultiSel, PrevMultiSel, LightMarkers, CameraMarkers, the six makers, LineDrawer, WireframeDrawer, the
// four TransformGizmo, SelectionBox, the four camera, the four Grid). Created and released in the
// documented orders by their owners.
void Form1::CreateSharedObjects() {
    m_gridDensity = ReadGridDensity();
    InstallSelection(*this);
    InstallTracks(*this);
    InstallLighting(*this);
    InstallGizmos(*this);
    InstallModellingActions();
    InstallWorkbench(*this);
    InstallMaterials(*this);
}
void Form1::ReleaseSharedObjects() {
    ReleaseMaterials();
    ReleaseWorkbench();
    ReleaseGizmos();
    ReleaseTracks();
    ReleaseLighting();
    ReleaseSelection();
}

} // namespace vexil
