#include "PointsSnapshot.h"

#include "base/FlatHashMap.h"

#include <cstddef>
#include <zelmar/zelmar.h>

namespace vexil {

void PointsSnapshot::Capture(const std::vector<int>& points) {
    m_points.clear();
    m_values.clear();
    FlatHashSet<int> seen(points.size());
    m_points.reserve(points.size());
    for (int p : points) {
        if (p == 0 || !seen.insert(p)) continue;
        if (ZELMAR_point_is_point(p) != 1) continue;
        m_points.push_back(p);
    }
    m_values.assign(m_points.size() * PerPoint, 0.0);
    if (!m_points.empty())
        ZELMAR_points_get_values(m_points.data(), static_cast<int>(m_points.size()), 7, m_values.data());
}

PointsSnapshot PointsSnapshot::Again() const {
    PointsSnapshot s;
    s.Capture(m_points);
    return s;
}

void PointsSnapshot::Restore() const {
    // Points that died since are left out (and ask the engine nothing more).
    std::vector<int> live;
    std::vector<double> values;
    live.reserve(m_points.size());
    values.reserve(m_values.size());
    for (std::size_t i = 0; i < m_points.size(); ++i) {
        if (ZELMAR_point_is_point(m_points[i]) != 1) continue;
        live.push_back(m_points[i]);
        values.insert(values.end(), m_values.begin() + std::ptrdiff_t(i * PerPoint),
                      m_values.begin() + std::ptrdiff_t((i + 1) * PerPoint));
    }
    if (!live.empty()) ZELMAR_points_set_values(live.data(), static_cast<int>(live.size()), 7, values.data());
}

std::vector<int> PointsOfPolygons(const std::vector<int>& polygons) {
    std::vector<int> out;
    out.reserve(polygons.size() * 4);
    for (int pol : polygons)
        for (int pt = ZELMAR_polygon_get_first_point(pol); pt != 0; pt = ZELMAR_point_get_next_point(pt))
            out.push_back(pt);
    return out;
}

std::vector<int> PointsOfGroup(int group) {
    std::vector<int> pols;
    for (int p = ZELMAR_group_get_first_polygon(group); p != 0; p = ZELMAR_group_get_next_polygon(p))
        pols.push_back(p);
    return PointsOfPolygons(pols);
}

} // namespace vexil
