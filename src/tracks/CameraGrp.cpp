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
    if (dot(newell(corners), outward) < 0) std::reverse(corners.begin(), corners.end());
    const double len = std::sqrt(dot(outward, outward));
    const V3 normal = len > 0 ? V3{outward[0] / len, outward[1] / len, outward[2] / len} : V3{0, 0, 1};
    const int polygon = ZELMAR_polygon_create();
    const double rgb[3] = {0, 0, 255};
    for (auto it = corners.rbegin(); it != corners.rend(); ++it) {
        const double vertex[6] = {(*it)[0], (*it)[1], (*it)[2], 0.0, 0.0, 100.0};
        const int point = ZELMAR_polygon_add_point(polygon, vertex);
        ZELMAR_point_set_normal(point, normal.data());
        ZELMAR_point_set_rgb(point, rgb);
    }
    ZELMAR_polygon_set_color_fill(polygon, 0, 0, 255);
    ZELMAR_polygon_set_name(polygon, "CameraGrp_Face");
    ZELMAR_polygon_set_group(polygon, group);
    ZELMAR_engine_add_polygon(polygon);
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
    const int group = ZELMAR_group_create("CameraGrp");
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

int CameraGrp::indexOf(int camera) const {
    for (size_t i = 0; i < m_records.size(); ++i)
        if (m_records[i].camera == camera) return static_cast<int>(i);
    return -1;
}

void CameraGrp::Add(int camera) {
    if (camera == 0 || indexOf(camera) >= 0) return;
    Record r;
    r.camera = camera;
    r.marker = buildMarker();
    m_records.push_back(r);
    Align(camera);
    const double f = (m_worldSize ? m_worldSize() : 1000.0) * 0.1 / 320.4;
    ScaleGrp(camera, f);
}

void CameraGrp::Remove(int camera) {
    const int i = indexOf(camera);
    if (i < 0) return;
    ZELMAR_group_delete_members(m_records[size_t(i)].marker);
    m_records.erase(m_records.begin() + i);
}

void CameraGrp::RemoveAll() {
    for (const Record& r : m_records) {
        ZELMAR_group_delete_members(r.marker);
    }
    m_records.clear();
}

void CameraGrp::HideUnhide(int camera, bool hide) {
    const int i = indexOf(camera);
    if (i >= 0) ZELMAR_group_disable(m_records[size_t(i)].marker, hide ? 1 : 0);
}

bool CameraGrp::IsHidden(int camera) const {
    const int i = indexOf(camera);
    return i >= 0 && ZELMAR_group_is_disable(m_records[size_t(i)].marker) == 1;
}

int CameraGrp::GetCamHandle(int group) const {
    if (group == 0) return 0;
    for (const Record& r : m_records)
        if (r.marker == group) return r.camera;
    return 0;
}

int CameraGrp::GetCamGrp(int camera) const {
    const int i = indexOf(camera);
    return i < 0 ? 0 : m_records[size_t(i)].marker;
}

int CameraGrp::GetCamGrp_UsingIndex(int index) const {
    return index >= 1 && index <= TotalCamGrps() ? m_records[size_t(index - 1)].marker : 0;
}

int CameraGrp::GetCam_UsingIndex(int index) const {
    return index >= 1 && index <= TotalCamGrps() ? m_records[size_t(index - 1)].camera : 0;
}

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
    if (indexOf(camera) < 0) return;
    ZELMAR_camera_set_location1(camera, location.data());
    Align(camera);
}

void CameraGrp::SetDirection(int camera, const V3& direction) {
    if (indexOf(camera) < 0) return;
    ZELMAR_camera_set_direction1(camera, direction.data());
    Align(camera);
}

void CameraGrp::Move(int camera, const V3& offset) {
    if (indexOf(camera) < 0) return;
    double at[3];
    ZELMAR_camera_get_location1(camera, at);
    const V3 to{at[0] + offset[0], at[1] + offset[1], at[2] + offset[2]};
    SetLocation(camera, to);
}

void CameraGrp::Rotate(int camera, const V3& degrees) {
    if (indexOf(camera) < 0) return;
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
    const double halfFov = ZELMAR_camera_get_zoom(viewCamera) * M_PI / 360.0;
    double eye[3];
    ZELMAR_camera_get_location1(viewCamera, eye);
    const double denom = 51.0 - std::clamp(relativeSize, 1.0, 50.0);
    for (const Record& r : m_records) {
        double at[3], dims[3];
        ZELMAR_camera_get_location1(r.camera, at);
        ZELMAR_group_get_dimensions(r.marker, dims);
        if (!(dims[2] > 0)) continue;
        const double want = ZELMAR_math_get_distance(eye, at) * std::tan(halfFov) / denom * 0.8;
        ScaleGrp(r.camera, want / dims[2]);
    }
}

void CameraGrp::Refresh() {
    for (int c = ZELMAR_camera_get_first_camera(); c != 0; c = ZELMAR_camera_get_next_camera(c))
        if (ZELMAR_camera_get_save_flag(c) == 1) Add(c);
}

} // namespace vexil
