#include "CameraSurfSim.h"

#include "view/camera.h" // the dispatch's button numbers

#include <algorithm>
#include <cmath>
#include <zelmar/zelmar.h>

namespace vexil {

namespace {
// Straight above or below, the up axis would be undefined.
constexpr double MaxElevation = 1.55;
} // namespace

void CameraSurfSim::Initialize(double minDist, double dist, double maxDist) {
    MinDist = minDist;
    MaxDist = std::max(maxDist, minDist);
    Dist = std::clamp(dist, MinDist, MaxDist);
}

Maths::Vector CameraSurfSim::Location() const {
    return m_location;
}

void CameraSurfSim::Update() {
    const double d = Dist * Unit;
    const double r = std::cos(Phi) * d;
    const double loc[3] = {LookAt[0] + std::cos(Theta) * r, LookAt[1] + std::sin(Theta) * r,
                           LookAt[2] + std::sin(Phi) * d};
    // x looks at the point, y is left, z up (y = z x x).
    const double x[3] = {-std::cos(Phi) * std::cos(Theta), -std::cos(Phi) * std::sin(Theta), -std::sin(Phi)};
    const double z[3] = {-std::sin(Phi) * std::cos(Theta), -std::sin(Phi) * std::sin(Theta), std::cos(Phi)};
    const double y[3] = {z[1] * x[2] - z[2] * x[1], z[2] * x[0] - z[0] * x[2], z[0] * x[1] - z[1] * x[0]};
    if (CamHandle == 0) return;
    ZELMAR_camera_set_axis_system(CamHandle, x, y, z);
    ZELMAR_camera_set_location(CamHandle, loc);
    const double h[3] = {0, LookAtOffsetH * Unit, 0};
    ZELMAR_camera_move(CamHandle, h, 1);
    const double v[3] = {0, 0, LookAtOffsetV * Unit};
    ZELMAR_camera_move(CamHandle, v, 1);
    double now[3] = {loc[0], loc[1], loc[2]};
    ZELMAR_camera_get_location(CamHandle, now);
    m_location = {now[0], now[1], now[2]};
}

void CameraSurfSim::ReSetCamDistFrmEye() {
    if (CamHandle == 0) return;
    const double zoom = ZELMAR_camera_get_zoom(CamHandle);
    if (zoom <= 0) return;
    ZELMAR_camera_set_distance_from_eye(CamHandle, Dist * Unit * 0.5 / zoom);
}

void CameraSurfSim::MouseDown(int, int, double x, double y) {
    LastX = x;
    LastY = y;
}

void CameraSurfSim::MouseMove(int button, int, double x, double y) {
    const double dx = x - LastX, dy = y - LastY;
    LastX = x;
    LastY = y;
    if (button & BtnLeft) {
        Theta -= dx * 0.01;
        Phi = std::clamp(Phi + dy * 0.01, -MaxElevation, MaxElevation);
        if (Theta >= TwoPi) Theta -= TwoPi;
        if (Theta < 0) Theta += TwoPi;
    } else if (button & BtnRight) {
        // A drag of the view's height covers about the starting distance at sensitivity 1.
        Dist = std::clamp(Dist + dy * 0.1 * ZoomSensitivity, MinDist, MaxDist);
        ReSetCamDistFrmEye();
    } else {
        return;
    }
    Update();
}

void CameraSurfSim::PointAtGrp(int group) {
    double p[3] = {LookAt[0], LookAt[1], LookAt[2]};
    ZELMAR_group_get_rotate_reference_point(group, p);
    LookAt = {p[0], p[1], p[2]};
}

void CameraSurfSim::PointAtGrpLoc(int group) {
    double p[3] = {LookAt[0], LookAt[1], LookAt[2]};
    ZELMAR_group_get_location(group, p);
    LookAt = {p[0], p[1], p[2]};
}

void CameraSurfSim::PointAtLoc(const Maths::Vector& location) {
    LookAt = {location[0], location[1], location[2]};
}

void CameraSurfSim::SetLookAtOffset(double v, double h) {
    LookAtOffsetV = v;
    LookAtOffsetH = h;
}

void CameraSurfSim::FrameGroup(int group) {
    double box[6] = {0, 0, 0, 0, 0, 0};
    ZELMAR_group_get_bounding_box(group, box);
    LookAt = {(box[0] + box[3]) / 2, (box[1] + box[4]) / 2, (box[2] + box[5]) / 2};
    const double dx = box[3] - box[0], dy = box[4] - box[1], dz = box[5] - box[2];
    const double radius = std::sqrt(dx * dx + dy * dy + dz * dz) / 2;
    Unit = (std::isfinite(radius) && radius > 1e-9) ? radius / 15 : 1.0;
}

} // namespace vexil
