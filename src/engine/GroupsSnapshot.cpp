#include "GroupsSnapshot.h"

#include <algorithm>
#include <zelmar/zelmar.h>

namespace vexil {

bool GroupsSnapshot::Capture(const std::vector<int>& groups, std::size_t maxPoints) {
    m_roots.clear();
    m_groups.clear();
    auto add = [&](int g) {
        if (std::find(m_groups.begin(), m_groups.end(), g) == m_groups.end()) m_groups.push_back(g);
    };
    for (int g : groups) {
        if (g <= 0 || ZELMAR_group_is_group(g) != 1) continue;
        m_roots.push_back(g);
        add(g);
        for (int d = ZELMAR_group_get_first_included_group(g); d != 0; d = ZELMAR_group_get_next_included_group(d))
            add(d);
    }
    if (read(maxPoints)) return true;
    *this = GroupsSnapshot();
    return false;
}

bool GroupsSnapshot::read(std::size_t maxPoints) {
    m_placements.assign(m_groups.size() * PerGroup, 0.0);
    for (std::size_t i = 0; i < m_groups.size(); ++i)
        ZELMAR_group_get_placement(m_groups[i], m_placements.data() + i * PerGroup);
    std::vector<int> polygons, points;
    for (int root : m_roots) {
        if (ZELMAR_group_is_group(root) != 1) continue;
        polygons.resize(std::size_t(ZELMAR_group_get_polygons(root, nullptr, 0)));
        polygons.resize(std::size_t(ZELMAR_group_get_polygons(root, polygons.data(), int(polygons.size()))));
        const std::size_t at = points.size();
        const int n = ZELMAR_polygons_get_points(polygons.data(), int(polygons.size()), nullptr, nullptr, nullptr, 0);
        if (at + std::size_t(n) > maxPoints) return false;
        points.resize(at + std::size_t(n));
        ZELMAR_polygons_get_points(polygons.data(), int(polygons.size()), points.data() + at, nullptr, nullptr, n);
    }
    m_points.Capture(points); // a nested root's points come twice: kept once
    return true;
}

GroupsSnapshot GroupsSnapshot::Again() const {
    GroupsSnapshot s;
    s.m_roots = m_roots;
    s.m_groups = m_groups;
    s.read(SIZE_MAX);
    return s;
}

void GroupsSnapshot::Restore() const {
    m_points.Restore();
    for (std::size_t i = 0; i < m_groups.size(); ++i)
        if (ZELMAR_group_is_group(m_groups[i]) == 1)
            ZELMAR_group_set_placement(m_groups[i], m_placements.data() + i * PerGroup);
}

} // namespace vexil
