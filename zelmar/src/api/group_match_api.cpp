// Groups: turning to match a polygon, extreme polygons, intersections, bitmap wrapping.
#include "api/CoreArgs.h"
#include "api/LastError.h"
#include "scene/GroupGeometry.h"
#include "scene/PolygonGeometry.h"
#include "scene/World.h"

#include <zelmar/zelmar.h>

#include <algorithm>
#include <cmath>

using namespace zelmar;
using namespace zelmar::api;

namespace {
template <class F> void forEachPolygon(const Group& root, F f) {
    for (const Group* g = &root; g; g = World::nextInSubtree(g, &root))
        for (Polygon* p = g->firstPolygon; p; p = p->nextInGroup)
            f(*p);
}

// The polygon whose centre lies farthest along (sign * axis row `axis`) of the group.
int extremePolygon(int group, int axis, double sign, const char* op) {
    const Group* g = groupArg(group, op);
    if (!g) return 0;
    const V3 dir = V3(g->axis[axis]) * sign;
    int best = 0;
    double bestD = 0;
    forEachPolygon(*g, [&](Polygon& p) {
        if (p.points.empty()) return;
        const double d = dot(ringCentre(p), dir);
        if (!best || d > bestD) {
            best = p.handle;
            bestD = d;
        }
    });
    return best;
}

// Box mapping: each polygon takes u, v from the two axes across its normal's largest
// component, scaled so that the group's box spans `repeat` times the bitmap.
void wrap(Polygon& p, const double lo[3], const double hi[3], int bitmap, double ru, double rv) {
    const V3 n = newellNormal(p);
    int drop = 2;
    if (std::fabs(n.x) >= std::fabs(n.y) && std::fabs(n.x) >= std::fabs(n.z))
        drop = 0;
    else if (std::fabs(n.y) >= std::fabs(n.z))
        drop = 1;
    const int a = drop == 0 ? 1 : 0, b = drop == 2 ? 1 : 2;
    for (PointData& d : p.points) {
        const double ea = hi[a] - lo[a], eb = hi[b] - lo[b];
        d.uv[0] = ea > 0 ? ru * (d.xyz[a] - lo[a]) / ea : 0;
        d.uv[1] = eb > 0 ? rv * (hi[b] - d.xyz[b]) / eb : 0;
    }
    p.fill.bitmap = bitmap;
    p.fill.animation = 0;
    world().changed(p);
}

bool wrapArgs(int bitmap, double ru, double rv, const char* op) {
    if (bitmap != 0 && !world().bitmap(bitmap)) {
        setLastError(std::string(op) + ": " + std::to_string(bitmap) + " is not a bitmap");
        return false;
    }
    return finite(ru, op) && finite(rv, op);
}

void wrapGroup(int group, int bitmap, double ru, double rv, const char* op) {
    Group* g = groupArg(group, op);
    if (!g || !wrapArgs(bitmap, ru, rv, op)) return;
    double box[6];
    groupBoundingBox(*g, box);
    forEachPolygon(*g, [&](Polygon& p) { wrap(p, box, box + 3, bitmap, ru, rv); });
}
} // namespace

extern "C" {

int ZELMAR_group_get_front_polygon(int group) {
    return extremePolygon(group, 0, 1, "group_get_front_polygon");
}
int ZELMAR_group_get_back_polygon(int group) {
    return extremePolygon(group, 0, -1, "group_get_back_polygon");
}
int ZELMAR_group_get_top_polygon(int group) {
    return extremePolygon(group, 2, 1, "group_get_top_polygon");
}
int ZELMAR_group_get_bottom_polygon(int group) {
    return extremePolygon(group, 2, -1, "group_get_bottom_polygon");
}

int ZELMAR_group_rotate_to_match_polygon(int group, int polygon, int target_polygon) {
    const char* op = "group_rotate_to_match_polygon";
    Group* g = groupArg(group, op);
    const Polygon* p = polygonArg(polygon, op);
    const Polygon* t = polygonArg(target_polygon, op);
    if (!g || !p || !t || !hasArea(*p) || !hasArea(*t)) return 0;
    const M3 r = rotationBetween(normalized(frontNormal(*p)), normalized(frontNormal(*t)));
    transformGroup(*g, r, groupReferencePoint(*g), {}, true);
    return 1;
}

int ZELMAR_group_rotate_around_line_to_match_polygon(int group, const double line_point[3],
                                                     const double line_direction[3], int polygon,
                                                     int target_polygon) {
    const char* op = "group_rotate_around_line_to_match_polygon";
    Group* g = groupArg(group, op);
    const Polygon* p = polygonArg(polygon, op);
    const Polygon* t = polygonArg(target_polygon, op);
    if (!g || !p || !t || !inArray(line_point, 3, op) || !inArray(line_direction, 3, op)) return 0;
    const V3 axis = normalized(V3(line_direction));
    // The normals seen along the line: the turn that brings one onto the other.
    const V3 a = normalized(frontNormal(*p) - axis * dot(frontNormal(*p), axis));
    const V3 b = normalized(frontNormal(*t) - axis * dot(frontNormal(*t), axis));
    if (length(axis) == 0 || length(a) == 0 || length(b) == 0) return 0;
    const double degrees = std::atan2(dot(cross(a, b), axis), dot(a, b)) * 180.0 / 3.14159265358979323846;
    transformGroup(*g, rotationAbout(axis, degrees), V3(line_point), {}, true);
    return 1;
}

int ZELMAR_group_count_intersections(int group_a, int group_b) {
    const char* op = "group_count_intersections";
    const Group* a = groupArg(group_a, op);
    const Group* b = groupArg(group_b, op);
    if (!a || !b) return 0;
    int count = 0;
    forEachPolygon(*a, [&](Polygon& p) {
        forEachPolygon(*b, [&](Polygon& q) {
            if (&p != &q && ZELMAR_polygon_check_intersection_with_another_polygon(p.handle, q.handle))
                ++count;
        });
    });
    return count;
}

void ZELMAR_group_wrap_a_bitmap(int group, int bitmap, double repeat_u, double repeat_v) {
    wrapGroup(group, bitmap, repeat_u, repeat_v, "group_wrap_a_bitmap");
}

void ZELMAR_group_wrap_a_bitmap_fixed(int group, int bitmap, double repeat_u, double repeat_v) {
    wrapGroup(group, bitmap, repeat_u, repeat_v, "group_wrap_a_bitmap_fixed");
}

void ZELMAR_polygon_wrap_a_bitmap_fixed(int polygon, int bitmap, double repeat_u, double repeat_v) {
    const char* op = "polygon_wrap_a_bitmap_fixed";
    Polygon* p = polygonArg(polygon, op);
    if (!p || p->points.empty() || !wrapArgs(bitmap, repeat_u, repeat_v, op)) return;
    double lo[3], hi[3];
    for (int i = 0; i < 3; ++i) {
        lo[i] = hi[i] = p->points[0].xyz[i];
        for (const PointData& d : p->points) {
            lo[i] = std::min(lo[i], d.xyz[i]);
            hi[i] = std::max(hi[i], d.xyz[i]);
        }
    }
    wrap(*p, lo, hi, bitmap, repeat_u, repeat_v);
}

} // extern "C"
