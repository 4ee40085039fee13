// Form1: the commands that belong to later issues. Each body here is a placeholder that does nothing
// (or the least that keeps the frame coherent). Whoever implements one moves its body to the folder of
// its subsystem (a further translation unit of Form1, see Form1.h) and deletes it here.
#include "Form1.h"

#include "Locale.h"
#include "Preferences.h"
#include "view/Form1_Selection.h"

#include <QLabel>

namespace vexil {

// Part 3.1 / 3.2: viewports and their cameras (src/view).
void Form1::ZoomExtentAll() {
    for (int i = 0; i < 4; ++i) ZoomExtentSingle(i);
}
void Form1::ZoomExtentSingle(int) {}
void Form1::Toggle3DCard() {}
void Form1::ToggleWireframe() {}
void Form1::ToggleWindowMinMax() {}
void Form1::UpdateCamerasSingle(int index) { picWindow_Paint(index); }
void Form1::picWindow_Paint(int index) {
    if (index >= 0 && index < 4) picWindow[size_t(index)]->update();
}
void Form1::PointViewCameraAt(int, int, int) {}
// ScrollCheck steps 2 to 5: z = ZELMAR_camera_get_zoom of the active camera; d = eye distance +
// s * WorldSize * MouseStepFactor * (shift ? 30.0 : 3.0) / z, at least 1e-05; camera.Update,
// camera.ReSetCamDistFrmEye, picWindow_Paint(ActiveWin).
void Form1::WheelZoom(int, bool) {}
void Form1::mnuResetViews_Click() {
    static const int labelIds[4] = {129, 127, 335, 128};
    for (int i = 0; i < 4; ++i) {
        lblPicView[size_t(i)]->setProperty("stringId", labelIds[i]);
        lblPicView[size_t(i)]->setText(GetLocaleString(labelIds[i]));
    }
    UpdateCameras();
}

// Part 3.3: tool modes and pointers (src/view).
void Form1::SetToolMode(int mode) { ToolMode = mode; }
void Form1::picWinSetMousePtr(const QString&) {}
void Form1::CenterObjInView() {}

// Part 3.5: the grids (src/view).
void Form1::ToggleGridVisibility(int index) {
    if (index >= 0 && index < 4) GridDisplay[size_t(index)] = !GridDisplay[size_t(index)];
}
void Form1::SetGridDensity(double density) { m_gridDensity = density; }
double Form1::GridDensity() const { return m_gridDensity; }

// Part 5 and the deformers (src/geometry).
void Form1::MirrorObjects() {}
void Form1::DuplicatGrp() {}
void Form1::AlignObjects() {}
void Form1::DisplaceGrp() {}
void Form1::cmbObj_Change() {}
void Form1::cmbObjEditGeom_Change() {}
void Form1::ReleaseWeldList() {}

// Part 9.4: atmosphere (src/lighting).
void Form1::ShowAtmosphereForm() {}

// Part 10.2: custom tracks (src/tracks).
bool Form1::IsLayingCustomTrack() { return false; }
void Form1::ResetCustomTrk() {}

// Part 11.1: model gallery (src/library).
void Form1::trwModel_InitialSetup() {}

// Part 12.1: plug-ins (src/plugins).
void Form1::LoadPlugins() {}
void Form1::UnloadPlugins() {}
void Form1::PluginsKeyDown(int, Qt::KeyboardModifiers) {}

// Form_Load 14, 17, 18 and Form_Unload 6 to 8: the shared objects of Parts 3.2 to 3.6, 5.1, 9.1, 10.1
// (MultiSel, PrevMultiSel, LightMarkers, CameraMarkers, the six makers, LineDrawer, WireframeDrawer, the
// four TransformGizmo, SelectionBox, the four camera, the four Grid). Created and released in the
// specified orders by their owners.
void Form1::CreateSharedObjects() {
    m_gridDensity = ReadGridDensity();
    InstallSelection(*this);
}
void Form1::ReleaseSharedObjects() { ReleaseSelection(); }

} // namespace vexil
