#include "FreeFly.h"

#include <zelmar/zelmar.h>

#include <algorithm>

namespace vexil::viewer {

void FreeFly::setHeld(Move m, bool held) {
    if (m >= 0 && m < MoveCount) m_held[m] = held;
}

bool FreeFly::moving() const {
    for (int m = Ahead; m <= Down; ++m)
        if (m_held[m]) return true;
    return false;
}

void FreeFly::releaseAll() {
    for (bool& h : m_held)
        h = false;
}

void FreeFly::fly(int camera, double seconds) const {
    if (!moving() || !(seconds > 0)) return;
    const double d = m_speed * seconds * (m_held[Fast] ? kFastFactor : 1.0);
    const auto axis = [&](Move plus, Move minus) { return (m_held[plus] ? d : 0.0) - (m_held[minus] ? d : 0.0); };
    const double inCamera[3] = {axis(Ahead, Back), axis(Left, Right), 0};
    ZELMAR_camera_move(camera, inCamera, 1);
    const double vertical[3] = {0, 0, axis(Up, Down)};
    ZELMAR_camera_move(camera, vertical, 0);
}

void FreeFly::look(int camera, double dx, double dy) {
    if (dx != 0) ZELMAR_camera_modify_head_angle(camera, -dx * kDegreesPerPixel);
    if (dy != 0) {
        const double tilt = std::clamp(ZELMAR_camera_get_tilt(camera) - dy * kDegreesPerPixel, -kMaxTilt, kMaxTilt);
        ZELMAR_camera_set_tilt(camera, tilt);
    }
}

} // namespace vexil::viewer
