#include "PointsSnapshot.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <zelmar/zelmar.h>

namespace vexil {

void PointsSnapshot::Capture(const std::vector<int>& points) {
    m_points.clear();
    m_values.clear();
    // A point named twice is kept once: one bit per handle (handles are small and dense).
    int top = 0;
    for (int p : points)
        top = std::max(top, p);
    std::vector<uint64_t> seen(std::size_t(top) / 64 + 1, 0);
    m_points.reserve(points.size());
    for (int p : points) {
        if (p <= 0) continue;
        uint64_t& word = seen[std::size_t(p) / 64];
        const uint64_t bit = uint64_t(1) << (p % 64);
        if (word & bit) continue;
        word |= bit;
        m_points.push_back(p);
    }
    read();
}

void PointsSnapshot::read() {
    m_values.assign(m_points.size() * PerPoint, 0.0);
    if (m_points.empty()) return;
    const int n = static_cast<int>(m_points.size());
    // The bulk read skips dead handles; only when it met one are they sorted out one by one.
    if (ZELMAR_points_get_values(m_points.data(), n, 7, m_values.data()) == n) return;
    std::vector<int> live;
    live.reserve(m_points.size());
    for (int p : m_points)
        if (ZELMAR_point_is_point(p) == 1) live.push_back(p);
    m_points = std::move(live);
    m_values.assign(m_points.size() * PerPoint, 0.0);
    if (!m_points.empty())
        ZELMAR_points_get_values(m_points.data(), static_cast<int>(m_points.size()), 7, m_values.data());
}

PointsSnapshot PointsSnapshot::Again() const {
    PointsSnapshot s;
    s.m_points = m_points; // already without repeats
    s.read();
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
