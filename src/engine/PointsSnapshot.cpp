#include "PointsSnapshot.h"

#include <cstddef>
#include <unordered_set>
#include <zelmar/zelmar.h>

namespace vexil {

void PointsSnapshot::Capture(const std::vector<int>& points) {
    m_points.clear();
    m_values.clear();
    std::unordered_set<int> seen;
    seen.reserve(points.size());
    m_points.reserve(points.size());
    m_values.reserve(points.size() * PerPoint);
    for (int p : points) {
        if (p == 0 || !seen.insert(p).second) continue;
        if (ZELMAR_point_is_point(p) != 1) continue;
        double v[PerPoint] = {0, 0, 0, 0, 0, 0, 0, 0};
        ZELMAR_point_get_xyz(p, v);
        ZELMAR_point_get_bitmap_xy(p, v + 3);
        ZELMAR_point_get_normal(p, v + 5);
        m_points.push_back(p);
        m_values.insert(m_values.end(), v, v + PerPoint);
    }
}

PointsSnapshot PointsSnapshot::Again() const {
    PointsSnapshot s;
    s.Capture(m_points);
    return s;
}

void PointsSnapshot::Restore() const {
    for (std::size_t i = 0; i < m_points.size(); ++i) {
        const int p = m_points[i];
        if (ZELMAR_point_is_point(p) != 1) continue;
        const double* v = m_values.data() + i * PerPoint;
        ZELMAR_point_set_xyz(p, v);
        ZELMAR_point_set_bitmap_xy(p, v + 3);
        ZELMAR_point_set_normal(p, v + 5);
    }
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
