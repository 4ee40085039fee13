#include "Cut.h"

#include "maths/Maths.h"

#include <algorithm>
#include <cmath>
#include <zelmar/zelmar.h>

namespace vexil {

namespace {

// Handles, then values x y z u v, then the points.
void readRings(const int* polygons, int count, std::vector<CutPoint>& out, std::vector<int>* owners) {
    static thread_local std::vector<int> points;
    static thread_local std::vector<double> values;
    out.clear();
    if (count <= 0) return;
    int n = ZELMAR_polygons_get_points(polygons, count, nullptr, nullptr, nullptr, 0);
    if (n <= 0) return;
    points.resize(size_t(n));
    if (owners) owners->resize(size_t(n));
    n = std::min(n, ZELMAR_polygons_get_points(polygons, count, points.data(), owners ? owners->data() : nullptr,
                                               nullptr, n));
    values.assign(5 * size_t(n), 0.0);
    ZELMAR_points_get_values(points.data(), n, 3, values.data());
    out.resize(size_t(n));
    for (size_t i = 0; i < size_t(n); ++i) {
        const double* v = &values[5 * i];
        out[i].xyz[0] = v[0], out[i].xyz[1] = v[1], out[i].xyz[2] = v[2];
        out[i].uv[0] = v[3], out[i].uv[1] = v[4];
    }
    if (owners) owners->resize(size_t(n));
}

} // namespace

void ReadCutRings(const std::vector<int>& polygons, std::vector<CutPoint>& points, std::vector<size_t>& starts) {
    std::vector<int> owners;
    readRings(polygons.data(), static_cast<int>(polygons.size()), points, &owners);
    // Dead polygons give no points: each ring is the run of its owner (a polygon listed m times in a row
    // gives one run of m rings).
    starts.assign(polygons.size() + 1, 0);
    size_t k = 0;
    for (size_t i = 0; i < polygons.size();) {
        size_t m = 1;
        while (i + m < polygons.size() && polygons[i + m] == polygons[i])
            ++m;
        size_t end = k;
        while (end < owners.size() && owners[end] == polygons[i])
            ++end;
        const size_t ring = (end - k) / m;
        for (size_t j = 0; j < m; ++j, ++i, k += ring)
            starts[i] = k;
        k = end;
    }
    starts[polygons.size()] = k;
}

int FindCutCrossingsOnRing(const CutPoint* ring, size_t n, const CutLine& line, const EdgeToScreen& toScreen,
                           std::vector<CutPoint>& list, int& first, int& second) {
    list.clear();
    first = second = 0;
    int result = 0;
    for (size_t i = 0; i < n; ++i) {
        const CutPoint& a = ring[i];
        list.push_back(a);
        const CutPoint& b = ring[i + 1 < n ? i + 1 : 0];
        double s[2], e[2];
        if (!toScreen || !toScreen(a.xyz, b.xyz, s, e)) continue;
        // Parallel lines leave the crossing unset: they do not meet.
        double cx = NAN, cy = NAN;
        if (!Maths::SegmentsMeet2D(line.x1, line.y1, line.x2, line.y2, s[0], s[1], e[0], e[1], cx, cy)) continue;
        if (std::isnan(cx) || std::isnan(cy)) continue;
        const double l3 = std::sqrt((b.xyz[0] - a.xyz[0]) * (b.xyz[0] - a.xyz[0]) +
                                    (b.xyz[1] - a.xyz[1]) * (b.xyz[1] - a.xyz[1]) +
                                    (b.xyz[2] - a.xyz[2]) * (b.xyz[2] - a.xyz[2]));
        const double l2 = std::hypot(e[0] - s[0], e[1] - s[1]);
        if (!(l2 > 0) || !(l3 > 0)) continue; // an edge of no length on screen or in space cuts nothing
        double t = std::hypot(cx - s[0], cy - s[1]) * l3 / l2;
        // Within rounding of an end, the crossing is that end (the next edge meets it at its start).
        if (t <= 1e-9 * l3) t = 0;
        const int count = static_cast<int>(list.size());
        if (t == 0) {
            if (result == 0) {
                first = count;
                result = 1;
            } else {
                second = count;
                result = 2;
            }
            continue;
        }
        if (t >= l3 * (1 - 1e-9)) continue; // at q itself: q serves when its own edge is looked at
        CutPoint c;
        for (int k = 0; k < 3; ++k)
            c.xyz[k] = a.xyz[k] + t * (b.xyz[k] - a.xyz[k]) / l3;
        for (int k = 0; k < 2; ++k)
            c.uv[k] = a.uv[k] + t * (b.uv[k] - a.uv[k]) / l3;
        list.push_back(c);
        if (result == 0) {
            first = count + 1;
            result = 1;
        } else {
            second = count + 1;
            result = 2;
        }
    }
    return result;
}

bool CutHalvesBatch::Add(int polygon, const std::vector<CutPoint>& list, int first, int second) {
    const int n = static_cast<int>(list.size());
    if (first < 1 || second <= first || second > n) return false;
    const int one = first + (n - second + 1), two = second - first + 1;
    if (one < 3 || two < 3) return false; // a line along an edge: no cut
    auto vertex = [this](const CutPoint& c) {
        m_vertices.insert(m_vertices.end(), {c.xyz[0], c.xyz[1], c.xyz[2], c.uv[0], c.uv[1], 100.0});
    };
    for (int i = 1; i <= first; ++i)
        vertex(list[size_t(i - 1)]);
    for (int i = second; i <= n; ++i)
        vertex(list[size_t(i - 1)]);
    for (int i = first; i <= second; ++i)
        vertex(list[size_t(i - 1)]);
    m_polygons.push_back(polygon);
    m_sizes.push_back(one);
    m_sizes.push_back(two);
    return true;
}

void CutHalvesBatch::Reserve(size_t polygons, size_t points) {
    m_polygons.reserve(polygons);
    m_sizes.reserve(2 * polygons);
    // Each ring point lands in one half; the two crossings in both, twice each at most.
    m_vertices.reserve(6 * (points + 4 * polygons));
}

std::vector<CutHalves> CutHalvesBatch::Make(int group) {
    std::vector<int> made(m_sizes.size(), 0);
    if (!m_sizes.empty())
        ZELMAR_polygons_create(group, m_sizes.data(), static_cast<int>(m_sizes.size()), m_vertices.data(), "Cut_Poly",
                               made.data());
    std::vector<CutHalves> out(m_polygons.size());
    for (size_t i = 0; i < m_polygons.size(); ++i) {
        const int polygon = m_polygons[i];
        const int animation = ZELMAR_polygon_get_animation(polygon);
        const int bitmap = ZELMAR_polygon_get_bitmap_handle(polygon);
        int rgb[3] = {255, 255, 255};
        ZELMAR_polygon_get_color(polygon, rgb);
        out[i] = {made[2 * i], made[2 * i + 1]};
        for (const int h : {out[i].first, out[i].second}) {
            if (h == 0) continue;
            if (animation != 0)
                ZELMAR_polygon_set_animation(h, animation);
            else if (bitmap != 0)
                ZELMAR_polygon_set_bitmap_fill(h, bitmap);
            else
                ZELMAR_polygon_set_color_fill(h, rgb[0], rgb[1], rgb[2]);
        }
    }
    m_polygons.clear();
    m_sizes.clear();
    m_vertices.clear();
    return out;
}

} // namespace vexil
