// frmPicWins: when and in what order the viewports are painted, and how the overlays are composed.
#include "frmPicWins.h"

#include "picWindow.h"

#include <QPainter>
#include <chrono>
#include <zelmar/zelmar.h>

namespace vexil {

void frmPicWins::UpdateCameras() {
    m_deferred = 0;
    if (!m_host.WorldOpen()) return;
    // Windows of 75 twips or less in either direction are not worth a render.
    const double minTwips = 75;
    for (int i = 0; i < 4; ++i) {
        if (i == ActiveWin) continue;
        if (PixelsToTwips(m_wins[i]->width()) > minTwips && PixelsToTwips(m_wins[i]->height()) > minTwips)
            picWindow_Paint(i);
    }
    // The active window last, so that its camera stays current in the engine.
    picWindow_Paint(ActiveWin);
}

void frmPicWins::UpdateCamerasDeferred() {
    if (!m_host.WorldOpen()) return;
    picWindow_Paint(ActiveWin);
    m_deferred |= 0xFu & ~(1u << ActiveWin);
    if (m_deferredQueued) return;
    m_deferredQueued = true;
    QMetaObject::invokeMethod(this, [this] { paintDeferred(); }, Qt::QueuedConnection);
}

void frmPicWins::paintDeferred() {
    m_deferredQueued = false;
    const unsigned pending = m_deferred;
    m_deferred = 0;
    if (pending == 0 || !m_host.WorldOpen()) return;
    const double minTwips = 75;
    bool painted = false;
    for (int i = 0; i < 4; ++i)
        if (i != ActiveWin && (pending & (1u << i)) && PixelsToTwips(m_wins[i]->width()) > minTwips &&
            PixelsToTwips(m_wins[i]->height()) > minTwips) {
            picWindow_Paint(i);
            painted = true;
        }
    if (pending & (1u << ActiveWin)) { // the user made a waiting view the active one meanwhile
        picWindow_Paint(ActiveWin);
        return;
    }
    if (!painted) return;
    // As UpdateCameras leaves it: the active view's camera current, its markers scaled for it.
    picWindow* win = m_wins[ActiveWin];
    const int cam = m_shownCam[ActiveWin] ? m_shownCam[ActiveWin] : m_cams[ActiveWin]->CamHandle;
    ZELMAR_camera_set_current(cam, win->Target());
    m_host.ScaleSceneCameras(ActiveWin);
    m_host.ScaleSceneLights(ActiveWin);
}

void frmPicWins::UpdateCamerasSingle(int index) {
    if (index < 0 || index > 3) return;
    picWindow_Paint(index);
}

void frmPicWins::picWindow_Paint(int index) {
    if (index < 0 || index > 3) return;
    picWindow* win = m_wins[index];
    if (PaintLocked || !m_host.WorldOpen() || win->width() * win->height() == 0) return;
    const auto t0 = std::chrono::steady_clock::now();
    const int target = win->Target();
    const int cam = m_shownCam[index] ? m_shownCam[index] : m_cams[index]->CamHandle;
    ZELMAR_camera_set_current(cam, target);
    m_host.ScaleSceneCameras(index);
    m_host.ScaleSceneLights(index);
    const auto r0 = std::chrono::steady_clock::now();
    // Through a scene camera the world is seen as the player sees it: without the editor's markers.
    const bool sceneView = m_shownCam[index] != 0;
    if (sceneView) ZELMAR_engine_set_group_to_render(m_host.RootGrp());
    if (UseScreenDC)
        ZELMAR_engine_render(target, cam);
    else
        ZELMAR_engine_render_on_dc(target, cam);
    if (sceneView) ZELMAR_engine_set_group_to_render(0);
    LastRenderMs = std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - r0).count();
    ++m_paintCount[index];

    if (win->CopyFromTarget()) {
        QPainter p(&win->BackBuffer());
        Grid& grid = *m_grids[index];
        if (m_toolMode == ToolSelect || index == ActiveWin) {
            // The cell is worked out at every paint, so that snapping fits the view even while the grid is
            // hidden; lines and the mark are drawn only when it shows.
            if (grid.Draw(grid.GridVisible ? &p : nullptr) && grid.GridVisible) grid.DrawSnapMark(p);
        }
        DrawBDBoxOrWire(index, p);
        m_host.DrawGizmo(index, p);
        m_host.DrawPoints(index, p);
        m_host.DrawSelectedPts(index, p);
        m_host.DrawSelectedPols(index, p);
        m_host.DrawTrack(index, p);
        m_host.DrawSelectedTrackPts(index, p);
        m_host.DrawCustomTrk(index, p);
        m_host.Plugin_Paint(index, p);
    }
    if (!UseScreenDC) ZELMAR_engine_copy_image_from_dc_to_screen();
    win->update();

    picWindow* active = m_wins[ActiveWin];
    const int activeCam = m_shownCam[ActiveWin] ? m_shownCam[ActiveWin] : m_cams[ActiveWin]->CamHandle;
    ZELMAR_camera_set_current(activeCam, active->Target());
    LastPaintMs = std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - t0).count();
}

void frmPicWins::DrawBDBoxOrWire(int index, QPainter& p) {
    const int type = m_host.CurrSelEntityType();
    if (type == 6) {
        m_host.DrawMultiSelection(index, p, WireframeMode);
        return;
    }
    if (type != 1) return;
    const int group = m_host.CurrSelEntity();
    if (group == 0 || !ZELMAR_group_is_group(group) || m_host.CurrentEntityHidden()) return;
    if (WireframeMode) {
        m_wireframe.Draw(p, group, Pens().white1);
        return;
    }
    if (m_selectionBox.Group() != group) m_selectionBox.Initialize(group);
    m_selectionBox.Draw(p);
}

void frmPicWins::ToggleWireframe() {
    WireframeMode = !WireframeMode;
    if (!m_host.WorldOpen()) return;
    m_host.SetWireframePressed(WireframeMode);
    m_host.ProcessEvents();
    RedrawPending = true;
    UpdateCameras();
    RedrawPending = false;
}

void frmPicWins::Toggle3DCard() {
    UseScreenDC = m_host.Is3DCardTogglePressed();
    ZELMAR_engine_use_3D_accelerator_card(UseScreenDC ? 1 : 0);
    UpdateCameras();
}

void frmPicWins::ClearViewports() {
    for (picWindow* w : m_wins)
        w->ClearSurface();
}

} // namespace vexil
