#include "CameraGrp.h"

#include <zelmar/zelmar.h>

#include <algorithm>
#include <cmath>

namespace vexil {

namespace {

using V3 = std::array<double, 3>;

double dot(const V3& a, const V3& b) { return a[0] * b[0] + a[1] * b[1] + a[2] * b[2]; }

// Newell's normal of a ring of corners (not normalised).
V3 newell(const std::vector<V3>& c) {
    V3 n{0, 0, 0};
    for (size_t i = 0; i < c.size(); ++i) {
        const V3& a = c[i];
        const V3& b = c[(i + 1) % c.size()];
        n[0] += (a[1] - b[1]) * (a[2] + b[2]);
        n[1] += (a[2] - b[2]) * (a[0] + b[0]);
        n[2] += (a[0] - b[0]) * (a[1] + b[1]);
    }
    return n;
}

// One blue face whose front looks along `outward`. The engine's front is the side from which a ring runs
// clockwise, so corners counter-clockwise seen from outside go into the ring backwards.
void addFace(int group, std::vector<V3> corners, const V3& outward) {
    if (dot(newell(corners), outward) > 0) std::reverse(corners.begin(), corners.end());
    const double len = std::sqrt(dot(outward, outward));
    const V3 normal = len > 0 ? V3{outward[0] / len, outward[1] / len, outward[2] / len} : V3{0, 0, 1};
    MarkerGroup::AddFace(group, "CameraGrp_Face", corners.data(), static_cast<int>(corners.size()), normal,
                         MarkerGroup::Rgb{0, 0, 255});
}

// An axis-aligned box as six faces (24 points).
void addBox(int group, const V3& lo, const V3& hi) {
    const V3 c{(lo[0] + hi[0]) / 2, (lo[1] + hi[1]) / 2, (lo[2] + hi[2]) / 2};
    for (int axis = 0; axis < 3; ++axis) {
        const int u = (axis + 1) % 3, v = (axis + 2) % 3;
        for (int side = 0; side < 2; ++side) {
            const double at = side ? hi[axis] : lo[axis];
            std::vector<V3> corners;
            for (auto [a, b] : {std::pair{0, 0}, {1, 0}, {1, 1}, {0, 1}}) {
                V3 p{};
                p[axis] = at;
                p[u] = a ? hi[u] : lo[u];
                p[v] = b ? hi[v] : lo[v];
                corners.push_back(p);
            }
            V3 out{0, 0, 0};
            out[axis] = at - c[axis];
            addFace(group, corners, out);
        }
    }
}

} // namespace

CameraGrp::CameraGrp(std::function<double()> worldSize) : m_worldSize(std::move(worldSize)) {}

CameraGrp::~CameraGrp() = default;

// The camera looks along +x of its axis system (y left, z up): a body, a lens widening forward, and a
// viewfinder fin on top; eleven faces of 45 points about 180 units long.
int CameraGrp::buildMarker() {
    const int group = MarkerGroup::NewMarker("CameraGrp");
    addBox(group, {-90, -35, -45}, {10, 35, 45}); // 6 faces, 24 points
    const double r0 = 20, r1 = 40, x0 = 10, x1 = 70;
    const V3 ring0[4] = {{x0, -r0, -r0}, {x0, r0, -r0}, {x0, r0, r0}, {x0, -r0, r0}};
    const V3 ring1[4] = {{x1, -r1, -r1}, {x1, r1, -r1}, {x1, r1, r1}, {x1, -r1, r1}};
    for (int i = 0; i < 4; ++i) { // 4 faces, 16 points
        const int j = (i + 1) % 4;
        const V3 mid{0, (ring1[i][1] + ring1[j][1]) / 2, (ring1[i][2] + ring1[j][2]) / 2};
        addFace(group, {ring0[i], ring0[j], ring1[j], ring1[i]}, mid);
    }
    addFace(group, {{-70, 0, 45}, {-20, 0, 45}, {-20, 0, 60}, {-45, 0, 75}, {-70, 0, 60}}, {0, 1, 0}); // 5 points
    return group;
}

void CameraGrp::Add(int camera) {
    if (camera == 0 || m_records.IndexOf(camera) >= 0) return;
    const int marker = buildMarker();
    m_records.Add(camera, marker);
    Align(camera);
    MarkerGroup::ScaleToWorld(marker, m_worldSize ? m_worldSize() : 1000.0);
}

void CameraGrp::Remove(int camera) { m_records.Remove(camera); }
void CameraGrp::RemoveAll() { m_records.RemoveAll(); }
void CameraGrp::HideUnhide(int camera, bool hide) { m_records.HideUnhide(camera, hide); }
bool CameraGrp::IsHidden(int camera) const { return m_records.IsHidden(camera); }
int CameraGrp::GetCamHandle(int group) const { return group ? m_records.EntityOf(group) : 0; }
int CameraGrp::GetCamGrp(int camera) const { return m_records.GroupOf(camera); }
int CameraGrp::GetCamGrp_UsingIndex(int index) const { return m_records.GroupAt(index); }
int CameraGrp::GetCam_UsingIndex(int index) const { return m_records.EntityAt(index); }

void CameraGrp::Align(int camera) {
    const int marker = GetCamGrp(camera);
    if (marker == 0) return;
    // The whole axis system, not only the direction: a camera's roll shows on its marker.
    double x[3], y[3], z[3], at[3];
    ZELMAR_camera_get_axis_system(camera, x, y, z);
    ZELMAR_group_rotate_to_match_axis_system(marker, x, y, z);
    ZELMAR_camera_get_location1(camera, at);
    ZELMAR_group_set_location(marker, at);
}

void CameraGrp::SetLocation(int camera, const V3& location) {
    if (m_records.IndexOf(camera) < 0) return;
    ZELMAR_camera_set_location1(camera, location.data());
    Align(camera);
}

void CameraGrp::SetDirection(int camera, const V3& direction) {
    if (m_records.IndexOf(camera) < 0) return;
    ZELMAR_camera_set_direction1(camera, direction.data());
    Align(camera);
}

void CameraGrp::Move(int camera, const V3& offset) {
    if (m_records.IndexOf(camera) < 0) return;
    double at[3];
    ZELMAR_camera_get_location1(camera, at);
    const V3 to{at[0] + offset[0], at[1] + offset[1], at[2] + offset[2]};
    SetLocation(camera, to);
}

void CameraGrp::Rotate(int camera, const V3& degrees) {
    if (m_records.IndexOf(camera) < 0) return;
    ZELMAR_camera_rotate_x(camera, degrees[0]);
    ZELMAR_camera_rotate_y(camera, degrees[1]);
    ZELMAR_camera_rotate_z(camera, degrees[2]);
    Align(camera);
}

void CameraGrp::ScaleGrp(int camera, double factor) {
    const int marker = GetCamGrp(camera);
    if (marker == 0 || !(factor > 0) || !std::isfinite(factor)) return;
    ZELMAR_group_scale(marker, 0, factor, factor, factor);
}

void CameraGrp::ScaleSceneCam(int viewCamera, double relativeSize) {
    if (viewCamera == 0) return;
    for (int i = 1; i <= m_records.Count(); ++i) {
        MarkerGroup::Vec at{};
        ZELMAR_camera_get_location1(m_records.EntityAt(i), at.data());
        MarkerGroup::ScaleForView(m_records.GroupAt(i), at, relativeSize);
    }
}

void CameraGrp::Refresh() {
    for (int c = ZELMAR_camera_get_first_camera(); c != 0; c = ZELMAR_camera_get_next_camera(c))
        if (ZELMAR_camera_get_save_flag(c) == 1) Add(c);
}

} // namespace vexil
