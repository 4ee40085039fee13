// Edits that keep places: the order of a group's own polygons and of a father's children, so that an
// editor's undo can put a polygon or a group back exactly where it was; joining two polygons along a shared
// edge and splitting one along a line.
#include "api/CoreArgs.h"
#include "api/LastError.h"
#include "scene/PolygonGeometry.h"
#include "scene/World.h"

#include <zelmar/zelmar.h>

#include <cmath>
#include <vector>

using namespace zelmar;
using namespace zelmar::api;

namespace {

bool samePlace(const PointData& a, const PointData& b) {
    return std::abs(a.xyz[0] - b.xyz[0]) < 1e-9 && std::abs(a.xyz[1] - b.xyz[1]) < 1e-9 &&
           std::abs(a.xyz[2] - b.xyz[2]) < 1e-9;
}

// A point a fraction t of the way from a to b, every attribute interpolated; no handle.
PointData between(const PointData& a, const PointData& b, double t) {
    PointData d;
    auto mix = [t](double x, double y) { return x + (y - x) * t; };
    for (int i = 0; i < 3; ++i) {
        d.xyz[i] = mix(a.xyz[i], b.xyz[i]);
        d.rgb[i] = mix(a.rgb[i], b.rgb[i]);
        d.normal[i] = mix(a.normal[i], b.normal[i]);
    }
    for (int i = 0; i < 2; ++i) {
        d.uv[i] = mix(a.uv[i], b.uv[i]);
        d.uv2[i] = mix(a.uv2[i], b.uv2[i]);
    }
    d.brightness = mix(a.brightness, b.brightness);
    d.handle = 0;
    return d;
}

} // namespace

extern "C" {

int ZELMAR_polygon_get_next_in_group(int polygon) {
    const Polygon* p = polygonArg(polygon, "polygon_get_next_in_group");
    return p && p->nextInGroup ? p->nextInGroup->handle : 0;
}

int ZELMAR_group_insert_polygons(int group, const int* polygons, const int* before, int count) {
    Group* g = groupArg(group, "group_insert_polygons");
    if (!g || !polygons || count < 0) return 0;
    World& w = world();
    std::vector<std::pair<Polygon*, Polygon*>> list;
    list.reserve(static_cast<size_t>(count));
    for (int i = 0; i < count; ++i) {
        Polygon* p = w.polygon(polygons[i]);
        if (!p) continue;
        list.emplace_back(p, before ? w.polygon(before[i]) : nullptr);
    }
    w.insertPolygons(*g, list);
    for (const auto& [p, b] : list)
        w.changed(*p);
    return static_cast<int>(list.size());
}

int ZELMAR_group_get_next_sibling(int group) {
    const Group* g = groupArg(group, "group_get_next_sibling");
    return g && g->nextSibling ? g->nextSibling->handle : 0;
}

int ZELMAR_group_set_father_group_before(int group, int father, int before) {
    Group* g = groupArg(group, "group_set_father_group_before");
    if (!g) return 0;
    World& w = world();
    Group* f = nullptr;
    if (father != 0 && !(f = groupArg(father, "group_set_father_group_before"))) return 0;
    if (!w.setFatherBefore(*g, f, w.group(before))) {
        setLastError("group_set_father_group_before: " + std::to_string(father) + " is " +
                     std::to_string(group) + " or lies below it");
        return 0;
    }
    return 1;
}

int ZELMAR_polygon_join(int polygon, int other_polygon) {
    Polygon* p = polygonArg(polygon, "polygon_join");
    Polygon* q = polygonArg(other_polygon, "polygon_join");
    if (!p || !q || p == q) return 0;
    const size_t n = p->points.size(), m = q->points.size();
    if (n < 3 || m < 3) return 0;
    // An edge (i, i+1) of p that q runs the other way as (j, j+1): q's other points go in between.
    for (size_t i = 0; i < n; ++i) {
        const PointData& a = p->points[i];
        const PointData& b = p->points[(i + 1) % n];
        for (size_t j = 0; j < m; ++j) {
            if (!samePlace(q->points[j], b) || !samePlace(q->points[(j + 1) % m], a)) continue;
            std::vector<PointData> ring;
            ring.reserve(n + m - 2);
            for (size_t k = 0; k <= i; ++k)
                ring.push_back(p->points[k]);
            for (size_t k = 2; k < m; ++k) {
                PointData d = q->points[(j + k) % m];
                d.handle = 0;
                ring.push_back(d);
            }
            for (size_t k = i + 1; k < n; ++k)
                ring.push_back(p->points[k]);
            World& w = world();
            w.replaceRing(*p, ring);
            w.destroyPolygon(*q);
            return 1;
        }
    }
    setLastError("polygon_join: the polygons share no edge");
    return 0;
}

int ZELMAR_polygon_split(int polygon, const double line_point[3], const double line_direction[3]) {
    Polygon* p = polygonArg(polygon, "polygon_split");
    if (!p || !inArray(line_point, 3, "polygon_split") || !inArray(line_direction, 3, "polygon_split")) return 0;
    if (!hasArea(*p)) return 0;
    // The cutting plane holds the line and the polygon's normal.
    const V3 n = frontNormal(*p), dir(line_direction), at(line_point);
    V3 cut = cross(dir, n);
    const double len = length(cut);
    if (len < 1e-12) return 0;
    cut = cut * (1.0 / len);
    const size_t count = p->points.size();
    const double eps = 1e-9 * std::max(1.0, ringSize(*p));
    std::vector<double> side(count);
    for (size_t i = 0; i < count; ++i) {
        const double d = dot(cut, pos(p->points[i]) - at);
        side[i] = std::abs(d) <= eps ? 0.0 : d;
    }
    // Walk the ring once: the crossings (a point on the line, or an edge whose ends lie on either side).
    struct Crossing {
        size_t after; // the crossing lies after point `after` (on it when onPoint)
        bool onPoint;
        PointData data;
    };
    std::vector<Crossing> crossings;
    for (size_t i = 0; i < count; ++i) {
        const size_t j = (i + 1) % count;
        if (side[i] == 0.0) {
            crossings.push_back({i, true, p->points[i]});
        } else if (side[j] != 0.0 && (side[i] > 0) != (side[j] > 0)) {
            const double t = side[i] / (side[i] - side[j]);
            crossings.push_back({i, false, between(p->points[i], p->points[j], t)});
        }
    }
    if (crossings.size() != 2) return 0; // missed, touched, or a concave ring cut more than once
    const Crossing& c1 = crossings[0];
    const Crossing& c2 = crossings[1];
    // Two rings: c1, the points after it up to c2, c2; and c2, the points after it round to c1, c1.
    auto arc = [&](const Crossing& from, const Crossing& to, bool keepHandles) {
        std::vector<PointData> ring;
        PointData a = from.data;
        if (!keepHandles || !from.onPoint) a.handle = 0;
        ring.push_back(a);
        for (size_t k = (from.after + 1) % count;; k = (k + 1) % count) {
            if (to.onPoint && k == to.after) break;
            PointData d = p->points[k];
            if (!keepHandles) d.handle = 0;
            ring.push_back(d);
            if (!to.onPoint && k == to.after) break;
        }
        PointData b = to.data;
        if (!keepHandles || !to.onPoint) b.handle = 0;
        ring.push_back(b);
        return ring;
    };
    const std::vector<PointData> first = arc(c2, c1, true), second = arc(c1, c2, false);
    if (first.size() < 3 || second.size() < 3) return 0; // the line runs along an edge
    World& w = world();
    Polygon* q = w.createPolygonFrom(*p, 0);
    q->name = p->name;
    q->addedToWorld = p->addedToWorld;
    w.replaceRing(*q, second);
    if (p->group) w.setPolygonGroup(*q, p->group);
    w.replaceRing(*p, first);
    return q->handle;
}

} // extern "C"
