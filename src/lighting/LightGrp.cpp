#include "LightGrp.h"

#include <cmath>
#include <zelmar/zelmar.h>

namespace vexil {

namespace {

using Vec = LightGrp::Vec;
const MarkerGroup::Rgb Yellow{255, 255, 0};

Vec lightLocation(int light) {
    Vec l{};
    ZELMAR_light_get_location(light, l.data());
    return l;
}

Vec lightDirection(int light) {
    Vec d{};
    ZELMAR_light_get_direction(light, d.data());
    return d;
}

Vec unit(Vec v) {
    const double n = std::sqrt(v[0] * v[0] + v[1] * v[1] + v[2] * v[2]);
    if (n > 0)
        for (double& c : v)
            c /= n;
    return v;
}

Vec faceNormal(const Vec& a, const Vec& b, const Vec& c) {
    const Vec u{b[0] - a[0], b[1] - a[1], b[2] - a[2]}, v{c[0] - a[0], c[1] - a[1], c[2] - a[2]};
    return unit({u[1] * v[2] - u[2] * v[1], u[2] * v[0] - u[0] * v[2], u[0] * v[1] - u[1] * v[0]});
}

// A face whose corners are listed counter-clockwise seen from outside: the engine's front is the side
// from which they run clockwise, so they go in backwards; the normal points outwards either way.
void face(int g, std::initializer_list<Vec> ccw) {
    std::vector<Vec> pts(ccw.begin(), ccw.end());
    const Vec n = faceNormal(pts[0], pts[1], pts[2]);
    std::vector<Vec> cw(pts.rbegin(), pts.rend());
    const int p = MarkerGroup::AddFace(g, LightGrp::FaceName, cw.data(), int(cw.size()), n, Yellow);
    ZELMAR_polygon_set_orientation(p, 0);
}

// (x, y, z) turned a quarter about +x k times: (x, y, z) -> (x, -z, y).
Vec quarter(Vec v, int k) {
    for (int i = 0; i < k; ++i)
        v = {v[0], -v[2], v[1]};
    return v;
}

// Turns a location about a pivot by degrees about x, then y, then z (the order of group_rotate).
Vec turnAbout(Vec p, const Vec& pivot, const Vec& deg) {
    for (int k = 0; k < 3; ++k)
        p[size_t(k)] -= pivot[size_t(k)];
    for (int axis = 0; axis < 3; ++axis) {
        const double a = deg[size_t(axis)] * 3.14159265358979323846 / 180.0;
        if (a == 0) continue;
        const double c = std::cos(a), s = std::sin(a);
        const int i = (axis + 1) % 3, j = (axis + 2) % 3;
        const double pi = p[size_t(i)], pj = p[size_t(j)];
        p[size_t(i)] = c * pi - s * pj;
        p[size_t(j)] = s * pi + c * pj;
    }
    for (int k = 0; k < 3; ++k)
        p[size_t(k)] += pivot[size_t(k)];
    return p;
}

} // namespace

int LightGrp::BuildOmniMarker() {
    // A closed double pyramid: eight triangles, 24 points.
    const int g = MarkerGroup::NewMarker(MarkerName);
    const double r = 50;
    for (int sx : {1, -1})
        for (int sy : {1, -1})
            for (int sz : {1, -1}) {
                const Vec a{sx * r, 0, 0}, b{0, sy * r, 0}, c{0, 0, sz * r};
                // Counter-clockwise from outside when the signs make an even permutation.
                if (sx * sy * sz > 0)
                    face(g, {a, b, c});
                else
                    face(g, {a, c, b});
            }
    return g;
}

int LightGrp::BuildDirectionalMarker() {
    // An arrow along +x, 100 units long and centred on the origin: a pyramid head of four triangles and a
    // square shaft of four faces that flare at the tail like fletching (eight polygons, 36 points).
    const int g = MarkerGroup::NewMarker(MarkerName);
    const double tip = 50, neck = 10, tail = -50, flare = -30, head = 25, shaft = 10, fletch = 20;
    for (int k = 0; k < 4; ++k) {
        // The side of +y turned k quarters about the axis.
        face(g, {quarter({tip, 0, 0}, k), quarter({neck, head, head}, k), quarter({neck, head, -head}, k)});
        face(g, {quarter({neck, shaft, -shaft}, k), quarter({neck, shaft, shaft}, k),
                 quarter({flare, shaft, shaft}, k), quarter({tail, shaft, fletch}, k),
                 quarter({tail, shaft, -fletch}, k), quarter({flare, shaft, -shaft}, k)});
    }
    return g;
}

int LightGrp::build(int kind) const {
    const int g = kind == 1 ? BuildDirectionalMarker() : BuildOmniMarker();
    MarkerGroup::ScaleToWorld(g, WorldSize ? WorldSize() : 1000.0);
    return g;
}

void LightGrp::align(int light) {
    const int g = GetLightGrp(light);
    if (g == 0) return;
    Vec x{}, y{}, z{};
    ZELMAR_group_calculate_axis_system(g, x.data(), y.data(), z.data());
    // The marker keeps its roll: its present y and z give the engine the rest of the axis system.
    const Vec d = lightDirection(light);
    ZELMAR_group_rotate_to_match_axis_system(g, d.data(), y.data(), z.data());
    const Vec l = lightLocation(light);
    ZELMAR_group_set_location(g, l.data());
}

void LightGrp::Add(int light, int kind) {
    m_markers.Add(light, build(kind));
    align(light);
}

void LightGrp::Remove(int light) {
    m_markers.Remove(light);
}

void LightGrp::RemoveAll() {
    m_markers.RemoveAll();
}

void LightGrp::HideUnhide(int light, bool hide) {
    m_markers.HideUnhide(light, hide);
}

void LightGrp::SetLocation(int light, const Vec& location) {
    const int g = GetLightGrp(light);
    if (g == 0) return;
    ZELMAR_light_set_location(light, location.data());
    const Vec l = lightLocation(light);
    ZELMAR_group_set_location(g, l.data());
}

void LightGrp::SetDirection(int light, const Vec& direction) {
    if (index(light) < 0) return;
    ZELMAR_light_set_direction(light, direction.data());
    align(light);
}

void LightGrp::Move(int light, const Vec& offset) {
    if (index(light) < 0) return;
    const Vec l = lightLocation(light);
    SetLocation(light, {l[0] + offset[0], l[1] + offset[1], l[2] + offset[2]});
}

void LightGrp::Rotate(int light, const Vec& degrees, const Vec* pivot) {
    const int g = GetLightGrp(light);
    if (g == 0) return;
    // The marker turns about its own location (its reference point follows it); a pivot swings the
    // location about it by the same turns.
    ZELMAR_group_rotate(g, degrees.data(), 0);
    Vec x{}, y{}, z{};
    ZELMAR_group_calculate_axis_system(g, x.data(), y.data(), z.data());
    ZELMAR_light_set_direction(light, x.data());
    if (pivot) SetLocation(light, turnAbout(lightLocation(light), *pivot, degrees));
}

void LightGrp::ScaleGrp(int light, double factor) {
    const int g = GetLightGrp(light);
    if (g != 0 && factor > 0) ZELMAR_group_scale(g, 0, factor, factor, factor);
}

void LightGrp::switchTo(int light, int kind) {
    const int old = GetLightGrp(light);
    if (old == 0) return;
    const bool hidden = ZELMAR_group_is_disable(old) == 1;
    ZELMAR_group_delete_members(old);
    m_markers.SetGroup(light, build(kind));
    SetDirection(light, lightDirection(light));
    SetLocation(light, lightLocation(light));
    if (hidden) HideUnhide(light, true);
}

void LightGrp::SwitchToDirectional(int light) {
    switchTo(light, 1);
}

void LightGrp::SwitchToOmni(int light) {
    switchTo(light, 0);
}

void LightGrp::ScaleSceneLights(double relativeSize) {
    for (int i = 1; i <= TotalLightGrps(); ++i)
        MarkerGroup::ScaleForView(GetLightGrp_UsingIndex(i), lightLocation(GetLight_UsingIndex(i)), relativeSize);
}

} // namespace vexil
