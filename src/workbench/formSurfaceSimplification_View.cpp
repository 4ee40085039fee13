// formSurfaceSimplification: the view (Render), the camera and point selection on picBox, and the
// switch between accelerated and software rendering.
#include "formSurfaceSimplification.h"

#include "SurfSimView.h"
#include "frame/InputState.h"
#include "view/camera.h" // the dispatch's button numbers

#include <QCheckBox>
#include <QRadioButton>
#include <zelmar/zelmar.h>

namespace vexil {

void formSurfaceSimplification::Render() {
    if (m_unloaded || !m_activated || m_cam.CamHandle == 0) return;
    const int target = picBox->Target();
    if (target == 0) return;
    ZELMAR_engine_set_group_to_render(m_renderGroup);
    ZELMAR_camera_set_current(m_cam.CamHandle, target);
    if (!m_wireframe) {
        ZELMAR_engine_render(target, m_cam.CamHandle);
    } else {
        // The engine's wireframe switch is shared with the main window: on for this render only.
        const bool wasOn = ZELMAR_engine_toggle_wire_frame_flag() == 0;
        if (wasOn) ZELMAR_engine_toggle_wire_frame_flag();
        ZELMAR_engine_render_on_dc(target, m_cam.CamHandle);
        if (!wasOn) ZELMAR_engine_toggle_wire_frame_flag();
        ZELMAR_engine_copy_image_from_dc_to_screen();
    }
    picBox->Compose([this] {
        m_session->Model().DrawSelectedPts();
        drawDiagnostics();
    });
}

void formSurfaceSimplification::Command1_Click() {
    ZELMAR_engine_use_3D_accelerator_card(ZELMAR_engine_is_3D_accelerator_card_used() ? 0 : 1);
    Render();
}

void formSurfaceSimplification::picBox_MouseDown(int button, int x, int y) {
    if (!m_activated || m_unloaded) return;
    if (opnMoveCam->isChecked()) {
        m_camButton = button;
        m_cam.MouseDown(button, 0, x, y);
        return;
    }
    // The selection decides which points a run keeps: it waits while one is going.
    if (button != BtnLeft || m_busy) return;
    m_banding = true;
    m_bandStart = QPoint(x, y);
    picBox->SetRubberBand(m_bandStart, m_bandStart);
}

void formSurfaceSimplification::picBox_MouseMove(int button, int x, int y) {
    if (!m_activated || m_unloaded) return;
    if (m_banding) {
        picBox->SetRubberBand(m_bandStart, QPoint(x, y));
        return;
    }
    if (!opnMoveCam->isChecked() || !(button & (BtnLeft | BtnRight))) return;
    m_cam.MouseMove(button, 0, x, y);
    Render();
}

void formSurfaceSimplification::picBox_MouseUp(int button, int x, int y) {
    if (!m_banding || button != BtnLeft) return;
    m_banding = false;
    picBox->HideRubberBand();
    if (m_busy || m_unloaded) return;
    // CTRL adds, SHIFT removes, otherwise the rectangle replaces the selection.
    const simplify::SelectMode mode = keyDown(Qt::Key_Control) ? simplify::SelectMode::Add
                                      : keyDown(Qt::Key_Shift) ? simplify::SelectMode::Remove
                                                               : simplify::SelectMode::Replace;
    double eye[3] = {0, 0, 0};
    ZELMAR_camera_get_location(m_cam.CamHandle, eye);
    ZELMAR_camera_set_current(m_cam.CamHandle, picBox->Target());
    m_session->Model().SelectMultiplePoints(m_bandStart.x(), m_bandStart.y(), x, y, chkIgnoreBckFaced->isChecked(),
                                            mode, eye);
    Render();
}

} // namespace vexil
