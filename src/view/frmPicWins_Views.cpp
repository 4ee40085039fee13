// frmPicWins: the standard views, the caption menu's commands and the framing of the selection.
#include "frmPicWins.h"

#include "picWindow.h"

#include <cmath>
#include <zelmar/zelmar.h>

namespace vexil {

namespace {

struct StandardView {
    int label;
    double theta, phi;
    bool perspective;
};

// The pi of this table is 3.14: the views are very slightly off axis, and a Phi of 3.14 (cosine near -1)
// is how the side views are reached.
const StandardView Views[7] = {
    {LblTop, 0, 3.14 / 2, false},
    {LblBottom, 0, -3.14 / 2, false},
    {LblLeft, 3.14 / 2, 3.14, false},
    {LblRight, -3.14 / 2, 3.14, false},
    {LblFront, 3.14, 3.14, false},
    {LblBack, 0, 3.14, false},
    {LblPerspective, 3.14 - 3.14 / 4, 3.14 - 3.14 / 6, true},
};

} // namespace

void frmPicWins::applyStandardView(int index, int view) {
    const StandardView& v = Views[view];
    camera& cam = *m_cams[index];
    const double ws = m_host.WorldSize();
    cam.Theta = v.theta;
    cam.Phi = v.phi;
    cam.Roll = 0;
    cam.SetLookAtOffset(0, 0);
    m_shownCam[index] = 0;
    if (v.perspective) {
        cam.Dist = ws * 2;
        ZELMAR_camera_set_zoom(cam.CamHandle, PerspectiveZoom);
        cam.Update();
        ZELMAR_camera_set_distance_from_eye(cam.CamHandle, ws / 100);
    } else {
        cam.Dist = ws * 100;
        ZELMAR_camera_set_zoom(cam.CamHandle, 1.0);
        cam.Update();
        ZELMAR_camera_set_distance_from_eye(cam.CamHandle, ws);
    }
    SetViewLabel(index, v.label);
}

void frmPicWins::ResetCameras() {
    const int views[4] = {ViewTop, ViewFront, ViewPerspective, ViewRight};
    for (int i = 0; i < 4; ++i) {
        m_cams[i]->LookAt = {0, 0, 0};
        applyStandardView(i, views[i]);
    }
    UpdateCameras();
}

void frmPicWins::ApplyViewCommand(int index, int view) {
    if (index < 0 || index > 3) return;
    if (view >= ViewTop && view <= ViewPerspective) {
        applyStandardView(index, view);
        if (m_host.WorldOpen()) UpdateCamerasSingle(index);
    } else if (view == ViewCamera) {
        const int cam = m_host.ChooseViewCamera();
        if (cam == 0 || !ZELMAR_camera_is_camera(cam)) return;
        m_shownCam[index] = cam;
        SetViewLabel(index, LblCamera);
        if (m_host.WorldOpen()) UpdateCamerasSingle(index);
    } else if (view == ViewMaxMin) {
        ToggleWindowMinMax();
    }
}

bool frmPicWins::aimAtSelection(camera& cam) {
    const int type = m_host.CurrSelEntityType(), ent = m_host.CurrSelEntity();
    double c[3] = {0, 0, 0};
    auto at = [&](const double p[3]) { cam.PointAtLoc({p[0], p[1], p[2]}); };
    switch (type) {
    case 1:
        if (m_host.CurrentSelectMode() == SelectMode::Point && m_host.SelPtsCount() > 0) {
            m_host.SelPtsAvgCenter(c);
            at(c);
        } else if (m_host.CurrentSelectMode() == SelectMode::Polygon && m_host.SelPolsCount() > 0) {
            m_host.SelPolsAvgCenter(c);
            at(c);
        } else {
            cam.PointAtGrpLoc(ent);
        }
        return true;
    case 6:
        m_host.SelObjsAvgCenter(c);
        at(c);
        return true;
    case 2:
        ZELMAR_camera_get_location(ent, c);
        at(c);
        return true;
    case 4:
        ZELMAR_light_get_location(ent, c);
        at(c);
        return true;
    case 3:
        if (m_host.TrackCenter(ent, c)) {
            at(c);
            return true;
        }
        return false;
    default:
        return false;
    }
}

bool frmPicWins::selectionBounds(double mn[3], double mx[3]) {
    if (m_host.GetSelObjsBoundingBx(mn, mx)) return true;
    const int type = m_host.CurrSelEntityType(), ent = m_host.CurrSelEntity();
    double c[3] = {0, 0, 0};
    switch (type) {
    case 1: {
        double box[6] = {0, 0, 0, 0, 0, 0};
        ZELMAR_group_get_bounding_box(ent, box);
        for (int i = 0; i < 3; ++i)
            mn[i] = box[i], mx[i] = box[i + 3];
        return true;
    }
    case 2:
    case 4: {
        // A camera or a light is framed as a small box around it.
        if (type == 2)
            ZELMAR_camera_get_location(ent, c);
        else
            ZELMAR_light_get_location(ent, c);
        const double r = m_host.WorldSize() / 50;
        for (int i = 0; i < 3; ++i)
            mn[i] = c[i] - r, mx[i] = c[i] + r;
        return true;
    }
    case 3: {
        const int n = ZELMAR_track_get_number_of_points(ent);
        if (n <= 0) return false;
        for (int k = 0; k < n; ++k) {
            double p[3] = {0, 0, 0};
            ZELMAR_track_get_point(ent, k, p);
            for (int i = 0; i < 3; ++i) {
                if (k == 0 || p[i] < mn[i]) mn[i] = p[i];
                if (k == 0 || p[i] > mx[i]) mx[i] = p[i];
            }
        }
        return true;
    }
    default:
        return false;
    }
}

void frmPicWins::ZoomExtentAll() {
    for (int i = 0; i < 4; ++i)
        ZoomExtentSingle(i);
}

void frmPicWins::ZoomExtentSingle(int index) {
    if (index < 0 || index > 3 || !m_host.WorldOpen()) return;
    if (m_labelId[index] == LblCamera) return;
    const int type = m_host.CurrSelEntityType(), ent = m_host.CurrSelEntity();
    if (type == 0) return;
    if (type == 1 && ZELMAR_group_get_number_of_polygons(ent) == 0) return;
    camera& cam = *m_cams[index];
    if (!aimAtSelection(cam)) return;
    double mn[3] = {0, 0, 0}, mx[3] = {0, 0, 0};
    if (selectionBounds(mn, mx)) {
        // The sphere around the box fills the width of the view.
        const double diameter =
            std::sqrt((mx[0] - mn[0]) * (mx[0] - mn[0]) + (mx[1] - mn[1]) * (mx[1] - mn[1]) +
                      (mx[2] - mn[2]) * (mx[2] - mn[2]));
        const double zoom = cam.Zoom();
        if (diameter > 0 && zoom > 0 && zoom < 180) {
            const double halfAngle = zoom / 2 * 3.14159265358979 / 180;
            cam.Dist = diameter / 2 / std::sin(halfAngle);
            if (cam.Dist < MinDist) cam.Dist = MinDist;
        }
    }
    cam.SetLookAtOffset(0, 0);
    cam.Update();
    cam.ReSetCamDistFrmEye();
    UpdateCamerasSingle(index);
}

void frmPicWins::CenterObjInView() {
    if (!m_host.WorldOpen()) return;
    if (m_labelId[ActiveWin] == LblCamera) return;
    camera& cam = *m_cams[ActiveWin];
    if (!aimAtSelection(cam)) return;
    cam.SetLookAtOffset(0, 0);
    cam.Update();
    UpdateCamerasSingle(ActiveWin);
}

double frmPicWins::GetSqrDistFrmCntrOfScreen(int index, const double point[3]) {
    if (index < 0 || index > 3) return -1;
    int r[2] = {0, 0};
    if (ZELMAR_engine_3D_point_to_2D(point, r) == -1) return -1;
    const double dx = r[0] - m_wins[index]->width() / 2.0, dy = r[1] - m_wins[index]->height() / 2.0;
    return dx * dx + dy * dy;
}

} // namespace vexil
