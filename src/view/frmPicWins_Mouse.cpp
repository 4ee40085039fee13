// frmPicWins: the mouse dispatch. Everything that makes a mouse event special (cut, align, custom track,
// plug-ins, gizmo) is tested in a fixed order in front of the tool; the middle button always navigates.
#include "frmPicWins.h"

#include "frame/InputState.h"
#include "picWindow.h"

#include <vector>
#include <zelmar/zelmar.h>

namespace vexil {

int GetTopMostFatherGrp(int group) {
    int last = 0;
    // A cycle is refused by the engine; the bound only protects against a broken one.
    for (int g = ZELMAR_group_get_father_group(group), n = 0; g != 0 && n < 1000000;
         g = ZELMAR_group_get_father_group(g), ++n)
        last = g;
    return last;
}

bool IsGroupVisible(int group) {
    for (int g = group, n = 0; g != 0 && n < 1000000; g = ZELMAR_group_get_father_group(g), ++n)
        if (ZELMAR_group_is_disable(g) == 1) return false;
    return true;
}

void frmPicWins::picWindow_MouseDown(int index, int button, int shift, int x, int y) {
    if (index < 0 || index > 3 || m_host.Terminating()) return;
    LastDownX = static_cast<float>(x);
    LastDownY = static_cast<float>(y);
    ActiveWin = index;
    ViewHasFocus = true;
    SetWindowFocus();
    // Any click stops a spinning view, whichever window it lands in.
    for (auto& c : m_cams)
        c->AutoRevolving = 0;
    if (m_host.CutStateActive()) {
        if (button == BtnLeft) m_host.Cut_MouseDown(x, y);
        return;
    }
    if (!m_host.WorldOpen()) return;
    ZELMAR_camera_set_current(m_cams[index]->CamHandle, m_wins[index]->Target());
    m_cams[index]->MouseDown(button, shift, x, y);
    m_host.Gizmo_MouseDown(index, button, x, y);
}

void frmPicWins::showGroupNameUnderMouse(int x, int y) {
    double hit[3] = {0, 0, 0};
    int group = 0, polygon = 0;
    if (ZELMAR_engine_2D_point_to_3D(x, y, hit, &group, &polygon) != 1 || group == 0) return;
    if (GetTopMostFatherGrp(group) != m_host.RootGrp() || m_host.RootGrp() == 0) return;
    if (!IsGroupVisible(group)) return;
    m_host.SetStatusPanel(3, QString::fromUtf8(ZELMAR_group_get_name(group)));
}

void frmPicWins::picWindow_MouseMove(int index, int button, int shift, int x, int y) {
    if (index < 0 || index > 3 || m_host.Terminating()) return;
    if (!m_host.WorldOpen()) return;
    // Only the window that had the last press or the focus reacts: a drag stays in its viewport.
    if (index != ActiveWin) return;

    if (button == 0) showGroupNameUnderMouse(x, y);
    Maths::Vector coords(3, 0.0);
    Grid& grid = *m_grids[index];
    grid.Snap(x, y, coords);

    // The grid's mark must follow the mouse: the view is redrawn once for this move, unless a step below
    // redraws it anyway (navigation, the rubber band).
    const bool redraw = !(m_toolMode == ToolSelect && !grid.GridVisible && !grid.GridSnapOn);
    const unsigned before = m_paintCount[index];
    const std::shared_ptr<bool> alive = m_alive;
    mouseMoveByTool(index, button, shift, x, y);
    if (redraw && *alive && m_paintCount[index] == before) UpdateCamerasSingle(index);
}

void frmPicWins::mouseMoveByTool(int index, int button, int shift, int x, int y) {
    if (m_host.Plugin_MouseMove(index, button, shift, x, y)) return;
    if (m_host.CutStateActive()) {
        if (button == BtnLeft) m_host.Cut_MouseMove(x, y);
        return;
    }
    if (AlignPressed() && button == BtnLeft) {
        m_host.AlignObjects_MouseMove(button, x, y);
        return;
    }
    const bool navigates = m_toolMode >= ToolPan && m_toolMode <= ToolRollCamera;
    switch (m_toolMode) {
    case ToolSelect:
        if (m_host.CurrentSelectMode() == SelectMode::TrackPointInsert && button == BtnLeft)
            m_host.MonitorInsertTrackPoint(x, y);
        else
            m_host.MultipleSelection(button, x, y);
        break;
    case ToolMove:
    case ToolRotate:
    case ToolScale:
        m_host.Gizmo_MouseMoveRotateScale(index, button, x, y);
        break;
    default:
        if (navigates) picWindow_MouseMove_PanRevolveZoomCammoveCamroll(index, button, shift, x, y);
        break;
    }
    // The middle button always navigates, and so does a held I key (a pan without a button, in any tool).
    if ((button == BtnMiddle || keyDown(Qt::Key_I)) && !navigates)
        picWindow_MouseMove_PanRevolveZoomCammoveCamroll(index, button, shift, x, y);
}

void frmPicWins::picWindow_MouseMove_PanRevolveZoomCammoveCamroll(int index, int button, int shift, int x,
                                                                  int y) {
    m_host.UpdateTransformGizmo(button, x, y);
    if (!(button == BtnLeft || button == BtnMiddle || keyDown(Qt::Key_I))) return;
    camera& cam = *m_cams[index];
    cam.MouseMove(button, shift, x, y);
    cam.Update();
    if ((m_toolMode == ToolMoveCamera || m_toolMode == ToolRollCamera) && m_labelId[index] == LblPerspective)
        SetViewLabel(index, LblUser);
    if (m_labelId[index] == LblCamera) {
        // The view no longer shows the named camera once it is navigated.
        m_shownCam[index] = 0;
        SetViewLabel(index, LblUser);
    }
    UpdateCamerasSingle(index);
}

void frmPicWins::picWindow_MouseUp(int index, int button, int shift, int x, int y) {
    if (index < 0 || index > 3 || m_host.Terminating()) return;
    LastUpX = static_cast<float>(x);
    LastUpY = static_cast<float>(y);
    if (m_host.Plugin_MouseUp(index, button, shift, x, y)) return;
    if (m_host.CutStateActive()) {
        if (button == BtnLeft) m_host.Cut_MouseUp(x, y);
        return;
    }
    if (!m_host.WorldOpen()) return;
    if (AlignPressed()) {
        m_host.AlignObjects_MouseUp(button, x, y);
        return;
    }
    m_host.Gizmo_MouseUp(index, button, x, y);
    if (m_host.CreateTrackUp()) {
        m_host.CreateCustomTrack(button, x, y);
        return;
    }
    const std::shared_ptr<bool> alive = m_alive;
    const int tool = m_toolMode;
    if (((tool == ToolSelect || tool == ToolMove || tool == ToolScale) && button == BtnMiddle) ||
        (tool == ToolRevolve && (button == BtnLeft || button == BtnMiddle))) {
        // A flick sets the view spinning until the next click or Escape.
        m_cams[index]->AutoRevolve();
        if (!*alive) return;
    }
    if (m_host.IgnoreMouseUp()) return;
    if (m_toolMode != ToolSelect) return;

    switch (m_host.CurrentSelectMode()) {
    case SelectMode::Point:
        if (button == BtnLeft) {
            m_host.SelectMultiplePoints();
            UpdateCameras();
        }
        return;
    case SelectMode::Polygon:
        if (button == BtnLeft) {
            m_host.SelectMultiplePols();
            UpdateCameras();
            m_host.RefreshTextureMapping();
        }
        return;
    case SelectMode::TrackPoint:
        if (button == BtnLeft) {
            m_host.SelectMultipleTrackPts();
            UpdateCameras();
        }
        return;
    case SelectMode::TrackPointInsert:
        if (button == BtnLeft) {
            m_host.InsertTrackPt();
            UpdateCameras();
        }
        return;
    case SelectMode::Entity:
        if (button == BtnLeft || button == BtnRight) {
            m_host.SelectMultipleObjects();
            if (button == BtnRight) m_host.ShowContextMenu(x, y);
        }
        return;
    }
}

} // namespace vexil
