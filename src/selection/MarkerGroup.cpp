#include "MarkerGroup.h"

#include <cmath>
#include <zelmar/zelmar.h>

namespace vexil {

void MarkerGroup::reindex() {
    m_byEntity.clear();
    m_byGroup.clear();
    for (size_t i = 0; i < m_records.size(); ++i) {
        m_byEntity[m_records[i].entity] = static_cast<int>(i);
        m_byGroup[m_records[i].group] = static_cast<int>(i);
    }
}

void MarkerGroup::Add(int entity, int group) {
    if (IndexOf(entity) > 0) {
        SetGroup(entity, group);
        return;
    }
    m_records.push_back({entity, group});
    m_byEntity[entity] = static_cast<int>(m_records.size()) - 1;
    m_byGroup[group] = static_cast<int>(m_records.size()) - 1;
}

void MarkerGroup::Remove(int entity) {
    const int i = IndexOf(entity);
    if (i < 0) return;
    const int g = m_records[size_t(i - 1)].group;
    if (ZELMAR_group_is_group(g) == 1) ZELMAR_group_delete_members(g);
    m_records.erase(m_records.begin() + (i - 1));
    reindex();
}

void MarkerGroup::RemoveAll() {
    for (const Record& r : m_records)
        if (ZELMAR_group_is_group(r.group) == 1) ZELMAR_group_delete_members(r.group);
    Forget();
}

void MarkerGroup::Forget() {
    m_records.clear();
    m_byEntity.clear();
    m_byGroup.clear();
}

void MarkerGroup::SetGroup(int entity, int group) {
    const int i = IndexOf(entity);
    if (i < 0) return;
    m_byGroup.erase(m_records[size_t(i - 1)].group);
    m_records[size_t(i - 1)].group = group;
    m_byGroup[group] = i - 1;
}

int MarkerGroup::IndexOf(int entity) const {
    const auto it = m_byEntity.find(entity);
    return it == m_byEntity.end() ? -1 : it->second + 1;
}

int MarkerGroup::EntityAt(int i) const {
    return i >= 1 && i <= Count() ? m_records[size_t(i - 1)].entity : 0;
}

int MarkerGroup::GroupAt(int i) const {
    return i >= 1 && i <= Count() ? m_records[size_t(i - 1)].group : 0;
}

int MarkerGroup::EntityOf(int group) const {
    const auto it = m_byGroup.find(group);
    return it == m_byGroup.end() || group == 0 ? 0 : m_records[size_t(it->second)].entity;
}

int MarkerGroup::GroupOf(int entity) const {
    const int i = IndexOf(entity);
    return i < 0 ? 0 : m_records[size_t(i - 1)].group;
}

void MarkerGroup::HideUnhide(int entity, bool hide) {
    const int g = GroupOf(entity);
    if (g != 0) ZELMAR_group_disable(g, hide ? 1 : 0);
}

bool MarkerGroup::IsHidden(int entity) const {
    const int g = GroupOf(entity);
    return g != 0 && ZELMAR_group_is_disable(g) == 1;
}

int MarkerGroup::NewMarker(const char* name) {
    return ZELMAR_group_create(name);
}

int MarkerGroup::AddFace(int group, const char* name, const Vec* corners, int count, const Vec& normal,
                         Rgb colour) {
    const int p = ZELMAR_polygon_create();
    const double rgb[3] = {double(colour.r), double(colour.g), double(colour.b)};
    for (int i = 0; i < count; ++i) {
        const double v[6] = {corners[i][0], corners[i][1], corners[i][2], 0, 0, 100};
        const int pt = ZELMAR_polygon_add_point(p, v);
        ZELMAR_point_set_rgb(pt, rgb);
        ZELMAR_point_set_normal(pt, normal.data());
    }
    ZELMAR_polygon_set_name(p, name);
    ZELMAR_polygon_set_color_fill(p, colour.r, colour.g, colour.b);
    ZELMAR_polygon_set_group(p, group);
    ZELMAR_engine_add_polygon(p);
    return p;
}

void MarkerGroup::ScaleToWorld(int group, double worldSize) {
    const double f = worldSize * 0.1 / 320.4;
    if (f > 0 && std::isfinite(f)) ZELMAR_group_scale(group, 0, f, f, f);
}

void MarkerGroup::ScaleForView(int group, const Vec& at, double relativeSize) {
    const int cam = ZELMAR_camera_get_current();
    if (cam == 0 || ZELMAR_group_is_group(group) != 1) return;
    double eye[3] = {0, 0, 0};
    ZELMAR_camera_get_location(cam, eye);
    const double fov = ZELMAR_camera_get_zoom(cam);
    const double dist = ZELMAR_math_get_distance(eye, at.data());
    const double divisor = 51.0 - relativeSize;
    if (divisor == 0) return;
    const double want = dist * std::tan(fov / 2.0 * 3.14159265358979 / 180.0) / divisor * 0.8;
    double dims[3] = {0, 0, 0};
    ZELMAR_group_get_dimensions(group, dims);
    if (!(dims[2] > 0) || !(want > 0)) return;
    const double f = want / dims[2];
    // A factor this close to 1 changes nothing on screen; skipping it keeps a still view's markers (and
    // their cached render data) untouched.
    if (!std::isfinite(f) || std::fabs(f - 1.0) < 1e-9) return;
    ZELMAR_group_scale(group, 0, f, f, f);
}

} // namespace vexil
