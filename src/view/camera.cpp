#include "camera.h"

#include "frame/InputState.h"

#include <chrono>
#include <cmath>
#include <thread>
#include <zelmar/zelmar.h>

namespace vexil {

namespace {
void sleepMs(int ms) {
    std::this_thread::sleep_for(std::chrono::milliseconds(ms));
}
} // namespace

camera::camera(CameraContext& ctx) : m_ctx(ctx), m_alive(std::make_shared<bool>(true)) {}

camera::~camera() {
    AutoRevolving = 0;
    *m_alive = false;
}

double camera::Zoom() const {
    return ZELMAR_camera_get_zoom(CamHandle);
}

void camera::Initialize(double dist, double theta, double phi) {
    Dist = dist;
    Theta = theta;
    Phi = phi;
}

void camera::Update() {
    const double r = std::cos(Phi) * Dist;
    Location = {std::cos(Theta) * r, std::sin(Theta) * r, std::sin(Phi) * Dist};

    double ax[3] = {1, 0, 0}, ay[3] = {0, 1, 0}, az[3] = {0, 0, 1};
    ZELMAR_camera_get_axis_system(CamHandle, ax, ay, az);

    Maths::Vector forward(3), up{0, 0, 1}, third(3), second(3);
    Maths::VectorScale(Location, -1.0, forward);
    if (Maths::VectorLength(forward) > 0) {
        Maths::VectorNormalize(forward, forward);
        // The camera's up is world up with its forward part removed; straight down or up it keeps
        // the engine's previous up axis.
        const Maths::Plane plane{Location[0], Location[1], Location[2], 0.0};
        Maths::ProjectPointOnPlane(up, plane, third);
        if (Maths::VectorLength(third) > 1e-12)
            Maths::VectorNormalize(third, third);
        else
            third = {az[0], az[1], az[2]};
        Maths::VectorCross(third, forward, second);
        Direction = forward;
        m_axisY0 = second;
        m_axisZ0 = third;
        const double x[3] = {forward[0], forward[1], forward[2]};
        const double y[3] = {second[0], second[1], second[2]};
        const double z[3] = {third[0], third[1], third[2]};
        ZELMAR_camera_set_axis_system(CamHandle, x, y, z);
    }

    Maths::VectorAdd(Location, LookAt, Location);
    const double loc[3] = {Location[0], Location[1], Location[2]};
    ZELMAR_camera_set_location(CamHandle, loc);
    ApplyLookAtOffset();
    ZELMAR_camera_rotate_x_radians(CamHandle, Roll);
}

void camera::ApplyLookAtOffset() {
    const double h[3] = {0, LookAtOffsetH, 0};
    ZELMAR_camera_move(CamHandle, h, 1);
    const double v[3] = {0, 0, LookAtOffsetV};
    ZELMAR_camera_move(CamHandle, v, 1);
}

void camera::ReSetCamDistFrmEye() {
    const double zoom = Zoom();
    if (zoom <= 0) return; // no engine camera
    ZELMAR_camera_set_distance_from_eye(CamHandle, Dist * 0.5 / zoom);
}

void camera::MouseDown(int /*button*/, int /*shift*/, double x, double y) {
    const QPoint c = inputState().cursorPos();
    LastX = c.x();
    LastY = c.y();
    AutoRevolving = 0;
    // A pan keeps the point under the cursor under it: the point that the press hit, if any.
    m_panPointValid = false;
    double hit[3] = {0, 0, 0};
    int group = 0, polygon = 0;
    if (CamHandle != 0 && ZELMAR_camera_get_current() == CamHandle &&
        ZELMAR_engine_2D_point_to_3D(static_cast<int>(x), static_cast<int>(y), hit, &group, &polygon) == 1 &&
        polygon != 0) {
        m_panPoint = {hit[0], hit[1], hit[2]};
        m_panPointValid = true;
    }
}

void camera::MouseMove(int button, int shift, double x, double y) {
    const QSize screen = m_ctx.ScreenSize();
    const int W = screen.width(), H = screen.height();
    QPoint c = inputState().cursorPos();
    // The pause limits the event rate; it is part of how navigation feels.
    sleepMs(10);
    x = c.x();
    y = c.y();

    bool wrapped = false;
    int nx = c.x(), ny = c.y();
    if (nx >= W - 10) {
        nx = 11;
        wrapped = true;
    } else if (nx <= 10) {
        nx = W - 11;
        wrapped = true;
    }
    if (ny >= H - 10) {
        ny = 11;
        wrapped = true;
    } else if (ny <= 10) {
        ny = H - 11;
        wrapped = true;
    }
    if (wrapped) {
        LastX = nx;
        LastY = ny;
        inputState().setCursorPos(QPoint(nx, ny));
        return;
    }

    const double zoom = Zoom();
    auto dolly = [&] {
        if (zoom == 0) return;
        Dist += (y - LastY) * m_ctx.CamMoveFactor() * m_ctx.WorldSize() / (zoom * 10);
        if (Dist < MinDist) Dist = MinDist;
        ReSetCamDistFrmEye();
    };
    auto revolve = [&] {
        Theta -= (x - LastX) * 0.01;
        Phi -= (y - LastY) * 0.01;
    };

    if (button == BtnLeft) {
        switch (m_ctx.ToolMode()) {
        case 4:
            Pan(x, y);
            break;
        case 5:
            revolve();
            break;
        case 6: {
            const double z2 = zoom + (y - LastY) * zoom / 400;
            if (z2 > MinZoom && z2 < MaxZoom) ZELMAR_camera_set_zoom(CamHandle, z2);
            break;
        }
        case 7:
            dolly();
            break;
        case 8:
            Roll += (y - LastY) / 80;
            break;
        default:
            break;
        }
    }
    // I held pans whatever the tool, also with no button at all (the key starts a pan by itself).
    if ((button == BtnLeft || button == 0) && keyDown(Qt::Key_I)) Pan(x, y);
    if (button == BtnMiddle) {
        if (shift & ShiftMask)
            Pan(x, y);
        else if (keyDown(Qt::Key_Alt))
            dolly();
        else
            revolve();
    }

    if (Theta >= TwoPi)
        Theta -= TwoPi;
    else if (Theta <= -TwoPi)
        Theta += TwoPi;
    if (Phi >= TwoPi)
        Phi -= TwoPi;
    else if (Phi <= -TwoPi)
        Phi += TwoPi;
    if (Theta < 0) Theta += TwoPi;
    if (Phi < 0) Phi += TwoPi;
    if (Roll > 1.57) Roll = 1.57;
    if (Roll < -1.57) Roll = -1.57;
    LastX = x;
    LastY = y;
}

double camera::WorldPerPixelAt(const double point[3]) const {
    // Zoom is the horizontal field of view: at depth d along the viewing direction the picture is
    // 2 d tan(zoom / 2) wide and spans the window's width in pixels.
    int width = m_ctx.ActiveWindowWidth();
    if (width < 1) width = 1;
    double loc[3] = {0, 0, 0}, ax[3] = {1, 0, 0}, ay[3] = {0, 1, 0}, az[3] = {0, 0, 1};
    ZELMAR_camera_get_location(CamHandle, loc);
    ZELMAR_camera_get_axis_system(CamHandle, ax, ay, az);
    double depth = 0;
    for (int i = 0; i < 3; ++i)
        depth += (point[i] - loc[i]) * ax[i];
    if (!(depth > 0)) depth = Dist; // behind the eye: the look-at point's depth
    const double halfAngle = Zoom() * 3.14159265358979323846 / 360.0;
    return 2.0 * depth * std::tan(halfAngle) / width;
}

void camera::Pan(double x, double y) {
    // The point under the cursor stays under it: the point the press hit, or else the reference point
    // (the current group's rotate reference point, or the look-at point; the look-at point with Shift).
    // The camera moves along its left axis as the cursor goes right, and along its up axis as the cursor
    // goes down, by the world size of the pixels at that point's depth.
    double ref[3] = {LookAt[0], LookAt[1], LookAt[2]};
    const bool shift = keyDown(Qt::Key_Shift);
    if (m_panPointValid) {
        for (int i = 0; i < 3; ++i)
            ref[i] = m_panPoint[i];
    } else if (!shift && m_ctx.CurrSelEntityType() == 1) {
        ZELMAR_group_get_rotate_reference_point(m_ctx.CurrSelEntity(), ref);
    }
    const double unit = WorldPerPixelAt(ref);
    double ax[3] = {1, 0, 0}, ay[3] = {0, 1, 0}, az[3] = {0, 0, 1};
    ZELMAR_camera_get_axis_system(CamHandle, ax, ay, az);
    double move[3];
    for (int i = 0; i < 3; ++i)
        move[i] = (ay[i] * (x - LastX) + az[i] * (y - LastY)) * unit;
    if (!shift) {
        // The look-at point stays put and the view slides: the offsets are taken along the camera's axes
        // before its roll.
        LookAtOffsetH += move[0] * m_axisY0[0] + move[1] * m_axisY0[1] + move[2] * m_axisY0[2];
        LookAtOffsetV += move[0] * m_axisZ0[0] + move[1] * m_axisZ0[1] + move[2] * m_axisZ0[2];
    } else {
        for (int i = 0; i < 3; ++i)
            LookAt[i] += move[i];
    }
    Update();
}

void camera::PointAtGrp(int group) {
    double p[3] = {LookAt[0], LookAt[1], LookAt[2]};
    ZELMAR_group_get_rotate_reference_point(group, p);
    LookAt = {p[0], p[1], p[2]};
}

void camera::PointAtGrpLoc(int group) {
    double p[3] = {LookAt[0], LookAt[1], LookAt[2]};
    ZELMAR_group_get_location(group, p);
    LookAt = {p[0], p[1], p[2]};
}

void camera::PointAtLoc(const Maths::Vector& location) {
    LookAt = {location[0], location[1], location[2]};
}

void camera::SetLookAtOffset(double v, double h) {
    LookAtOffsetV = v;
    LookAtOffsetH = h;
}

void camera::ToggleProjection() {
    const double zoom = Zoom();
    if (zoom > 1.0) {
        SavedZoom = zoom;
        Dist = Dist * zoom;
        ZELMAR_camera_set_zoom(CamHandle, 1.0);
    } else {
        Dist = zoom * Dist / SavedZoom;
        ZELMAR_camera_set_zoom(CamHandle, SavedZoom);
    }
    Update();
    ReSetCamDistFrmEye();
    m_ctx.RedrawActiveView();
}

void camera::AutoRevolve() {
    const QPoint c = inputState().cursorPos();
    const double dx = (c.x() - LastX) * 0.01;
    const double dy = (c.y() - LastY) * 0.01;
    if (std::abs(dx) == 0 && std::abs(dy) == 0) return;
    AutoRevolving = 1;
    const std::shared_ptr<bool> alive = m_alive;
    while (AutoRevolving == 1) {
        Theta -= dx;
        Phi -= dy;
        Update();
        m_ctx.RedrawActiveView();
        sleepMs(10);
        m_ctx.ProcessEvents();
        if (!*alive) return;
        if (keyDown(Qt::Key_Escape)) AutoRevolving = 0;
    }
}

void camera::StopAutoRevolve() {
    AutoRevolving = 0;
    m_ctx.ProcessEvents();
}

} // namespace vexil
