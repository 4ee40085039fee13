// Polygons: creation, the ring of points, geometry questions and transforms.
#include "api/CoreArgs.h"
#include "api/LastError.h"
#include "scene/GroupGeometry.h"
#include "scene/PolygonGeometry.h"
#include "scene/TreeOps.h"
#include "scene/World.h"

#include <zelmar/zelmar.h>

#include <algorithm>
#include <cmath>

using namespace zelmar;
using namespace zelmar::api;

namespace {
PointData vertexOf(const double v[6]) {
    PointData d;
    for (int i = 0; i < 3; ++i)
        d.xyz[i] = v[i];
    d.uv[0] = v[3];
    d.uv[1] = v[4];
    d.brightness = v[5];
    return d;
}

Polygon* polygonIn(int polygon, const double* v, int n, const char* op) {
    Polygon* p = polygonArg(polygon, op);
    return p && inArray(v, n, op) ? p : nullptr;
}

int addVertex(int polygon, const double vertex[6], bool atHead, const char* op) {
    Polygon* p = polygonIn(polygon, vertex, 6, op);
    if (!p) return 0;
    World& w = world();
    const Handle h = w.addPoint(*p, vertexOf(vertex), atHead).handle;
    if (p->group) ++p->group->version;
    return h;
}

// Point of the ring nearest to (or farthest from) a location.
int extremePoint(int polygon, const double location[3], bool nearest, const char* op) {
    const Polygon* p = polygonIn(polygon, location, 3, op);
    if (!p || p->points.empty()) return 0;
    const V3 q(location);
    const PointData* best = &p->points[0];
    double bestD = length(pos(*best) - q);
    for (const PointData& d : p->points) {
        const double dist = length(pos(d) - q);
        if (nearest ? dist < bestD : dist > bestD) {
            best = &d;
            bestD = dist;
        }
    }
    return best->handle;
}
} // namespace

extern "C" {

int ZELMAR_polygon_create(void) {
    return world().createPolygon()->handle;
}

int ZELMAR_polygons_create(int group, const int* ring_sizes, int rings, const double* vertices, const char* name,
                           int* polygons) {
    const char* op = "polygons_create";
    if (rings <= 0) return 0;
    if (!ring_sizes || !vertices || !outArray(polygons, op)) {
        if (!ring_sizes || !vertices) setLastError(std::string(op) + ": no rings given");
        return 0;
    }
    Group* g = nullptr;
    if (group != 0 && !(g = groupArg(group, op))) return 0;
    World& w = world();
    int made = 0;
    const double* v = vertices;
    for (int i = 0; i < rings; ++i) {
        const int n = std::max(ring_sizes[i], 0);
        const double* ring = v;
        v += size_t(n) * 6;
        polygons[i] = 0;
        if (n < 3 || !inArray(ring, 6 * n, op)) {
            if (n < 3) setLastError(std::string(op) + ": ring " + std::to_string(i) + " has fewer than three vertices");
            continue;
        }
        Polygon* p = w.createPolygon();
        w.setPolygonGroup(*p, g);
        for (int k = 0; k < n; ++k)
            w.addPoint(*p, vertexOf(ring + 6 * k), false);
        p->addedToWorld = true;
        if (name) p->name = name;
        w.changed(*p);
        polygons[i] = p->handle;
        ++made;
    }
    return made;
}

int ZELMAR_polygon_is_polygon(int handle) {
    return world().polygon(handle) ? 1 : 0;
}

int ZELMAR_engine_add_polygon(int polygon) {
    Polygon* p = polygonArg(polygon, "engine_add_polygon");
    if (!p) return 0;
    p->addedToWorld = true;
    world().changed(*p);
    return 1;
}

int ZELMAR_polygon_add_point(int polygon, const double vertex[6]) {
    return addVertex(polygon, vertex, false, "polygon_add_point");
}

int ZELMAR_polygon_add_point_to_head(int polygon, const double vertex[6]) {
    return addVertex(polygon, vertex, true, "polygon_add_point_to_head");
}

int ZELMAR_polygon_delete_point(int polygon, int point) {
    Polygon* p = polygonArg(polygon, "polygon_delete_point");
    if (!p) return 0;
    Polygon* owner = nullptr;
    uint32_t index = 0;
    if (!pointArg(point, "polygon_delete_point", &owner, &index)) return 0;
    if (owner != p) {
        setLastError("polygon_delete_point: point " + std::to_string(point) + " is not in polygon " +
                     std::to_string(polygon));
        return 0;
    }
    world().deletePoint(*p, index);
    if (p->group) ++p->group->version;
    return 1;
}

int ZELMAR_polygon_get_first_point(int polygon) {
    const Polygon* p = polygonArg(polygon, "polygon_get_first_point");
    return p && !p->points.empty() ? p->points[0].handle : 0;
}

int ZELMAR_polygon_get_num_of_points(int polygon) {
    const Polygon* p = polygonArg(polygon, "polygon_get_num_of_points");
    return p ? static_cast<int>(p->points.size()) : 0;
}

int ZELMAR_polygon_get_closest_point(int polygon, const double location[3]) {
    return extremePoint(polygon, location, true, "polygon_get_closest_point");
}

int ZELMAR_polygon_get_furthest_point(int polygon, const double location[3]) {
    return extremePoint(polygon, location, false, "polygon_get_furthest_point");
}

void ZELMAR_polygon_set_group(int polygon, int group) {
    Polygon* p = polygonArg(polygon, "polygon_set_group");
    if (!p) return;
    Group* g = nullptr;
    if (group != 0 && !(g = groupArg(group, "polygon_set_group"))) return;
    world().setPolygonGroup(*p, g);
    world().changed(*p);
}

int ZELMAR_polygon_get_group(int polygon) {
    const Polygon* p = polygonArg(polygon, "polygon_get_group");
    return p && p->group ? p->group->handle : 0;
}

int ZELMAR_polygon_is_in_group(int polygon, int group) {
    const World& w = world();
    const Polygon* p = w.polygon(polygon);
    const Group* g = w.group(group);
    return p && g && p->group && w.inSubtree(*p->group, *g) ? 1 : 0;
}

int ZELMAR_polygon_get_first_polygon(void) {
    const Polygon* p = world().firstPolygon();
    return p ? p->handle : 0;
}

int ZELMAR_polygon_get_next(int polygon) {
    const Polygon* p = polygonArg(polygon, "polygon_get_next");
    return p && p->nextInWorld ? p->nextInWorld->handle : 0;
}

int ZELMAR_polygon_get_handle_using_name(const char* name) {
    if (!textArg(name, "polygon_get_handle_using_name")) return 0;
    for (const Polygon* p = world().firstPolygon(); p; p = p->nextInWorld)
        if (p->name == name) return p->handle;
    return 0;
}

int ZELMAR_polygon_get_handle_using_id_num(int id_num) {
    int n = 0;
    for (const Polygon* p = world().firstPolygon(); p && id_num > 0; p = p->nextInWorld)
        if (++n == id_num) return p->handle;
    return 0;
}

void ZELMAR_polygon_delete(int polygon) {
    if (Polygon* p = polygonArg(polygon, "polygon_delete")) world().destroyPolygon(*p);
}

int ZELMAR_polygon_duplicate(int polygon) {
    const Polygon* p = polygonArg(polygon, "polygon_duplicate");
    return p ? copyPolygon(*p, p->group)->handle : 0;
}

void ZELMAR_polygon_flip_visible_side(int polygon) {
    Polygon* p = polygonArg(polygon, "polygon_flip_visible_side");
    if (!p) return;
    for (PointData& d : p->points)
        for (double& c : d.normal)
            c = -c;
    world().reverseRing(*p);
    world().changed(*p);
}

// Geometry questions.
void ZELMAR_polygon_get_plane(int polygon, double plane[4]) {
    const Polygon* p = polygonArg(polygon, "polygon_get_plane");
    if (p && outArray(plane, "polygon_get_plane")) polygonPlane(*p, plane);
}

int ZELMAR_polygon_is_valid(int polygon) {
    const Polygon* p = polygonArg(polygon, "polygon_is_valid");
    return p && isValidPolygon(*p) ? 1 : 0;
}

int ZELMAR_polygon_are_all_points_on_one_plane(int polygon) {
    const Polygon* p = polygonArg(polygon, "polygon_are_all_points_on_one_plane");
    return p && allPointsOnPlane(*p) ? 1 : 0;
}

int ZELMAR_polygon_is_convex(int polygon) {
    const Polygon* p = polygonArg(polygon, "polygon_is_convex");
    return p && isConvexPolygon(*p) ? 1 : 0;
}

void ZELMAR_polygon_get_center(int polygon, double center[3]) {
    const Polygon* p = polygonArg(polygon, "polygon_get_center");
    if (p && outArray(center, "polygon_get_center")) ringCentre(*p).store(center);
}

void ZELMAR_polygon_get_location(int polygon, double location[3]) {
    const Polygon* p = polygonArg(polygon, "polygon_get_location");
    if (p && outArray(location, "polygon_get_location")) ringCentre(*p).store(location);
}

int ZELMAR_polygon_is_point_inside_polygon(int polygon, const double point[3]) {
    const Polygon* p = polygonIn(polygon, point, 3, "polygon_is_point_inside_polygon");
    return p && pointInside(*p, V3(point)) ? 1 : 0;
}

int ZELMAR_polygon_is_point_inside_polygon_concave(int polygon, const double point[3]) {
    const Polygon* p = polygonIn(polygon, point, 3, "polygon_is_point_inside_polygon_concave");
    return p && pointInside(*p, V3(point)) ? 1 : 0;
}

int ZELMAR_polygon_check_intersection_with_line_segment(int polygon, const double start[3],
                                                        const double end[3], double intersection[3]) {
    const char* op = "polygon_check_intersection_with_line_segment";
    const Polygon* p = polygonIn(polygon, start, 3, op);
    if (!p || !inArray(end, 3, op) || !hasArea(*p)) return 0;
    double plane[4];
    polygonPlane(*p, plane);
    const V3 a(start), b(end), n(plane);
    const double da = dot(n, a) + plane[3], db = dot(n, b) + plane[3];
    if ((da > 0 && db > 0) || (da < 0 && db < 0) || da == db) return 0;
    const V3 hit = a + (b - a) * (da / (da - db));
    if (!pointInside(*p, hit)) return 0;
    if (intersection) hit.store(intersection);
    return 1;
}

int ZELMAR_polygon_check_intersection_with_another_polygon(int polygon, int other_polygon) {
    const char* op = "polygon_check_intersection_with_another_polygon";
    const Polygon* p = polygonArg(polygon, op);
    const Polygon* q = polygonArg(other_polygon, op);
    if (!p || !q) return 0;
    // Two polygons meet when an edge of one passes through the other.
    auto edgesCross = [](const Polygon& a, const Polygon& b) {
        const size_t k = a.points.size();
        for (size_t i = 0; i < k; ++i) {
            double hit[3];
            if (ZELMAR_polygon_check_intersection_with_line_segment(b.handle, a.points[i].xyz,
                                                                    a.points[(i + 1) % k].xyz, hit))
                return true;
        }
        return false;
    };
    return edgesCross(*p, *q) || edgesCross(*q, *p) ? 1 : 0;
}

int ZELMAR_polygon_count_redundant_points(int polygon) {
    const Polygon* p = polygonArg(polygon, "polygon_count_redundant_points");
    return p ? static_cast<int>(redundantPoints(*p).size()) : 0;
}

int ZELMAR_polygon_remove_redundant_points(int polygon) {
    Polygon* p = polygonArg(polygon, "polygon_remove_redundant_points");
    if (!p) return 0;
    std::vector<uint32_t> gone = redundantPoints(*p);
    // Never below a triangle.
    while (!gone.empty() && p->points.size() - gone.size() < 3)
        gone.pop_back();
    for (auto it = gone.rbegin(); it != gone.rend(); ++it)
        world().deletePoint(*p, *it);
    if (!gone.empty()) world().changed(*p);
    return static_cast<int>(gone.size());
}

// Transforms.
void ZELMAR_polygon_move(int polygon, const double offset[3]) {
    Polygon* p = polygonIn(polygon, offset, 3, "polygon_move");
    if (!p) return;
    transformPolygon(*p, M3{}, {}, V3(offset));
    world().changed(*p);
}

void ZELMAR_polygon_set_location(int polygon, const double location[3]) {
    Polygon* p = polygonIn(polygon, location, 3, "polygon_set_location");
    if (!p) return;
    transformPolygon(*p, M3{}, {}, V3(location) - ringCentre(*p));
    world().changed(*p);
}

void ZELMAR_polygon_move_to_match_point(int polygon, const double source[3], const double target[3]) {
    Polygon* p = polygonIn(polygon, source, 3, "polygon_move_to_match_point");
    if (!p || !inArray(target, 3, "polygon_move_to_match_point")) return;
    transformPolygon(*p, M3{}, {}, V3(target) - V3(source));
    world().changed(*p);
}

void ZELMAR_polygon_rotate(int polygon, const double degrees[3]) {
    Polygon* p = polygonIn(polygon, degrees, 3, "polygon_rotate");
    if (!p) return;
    transformPolygon(*p, rotationXYZ(degrees), ringCentre(*p), {});
    world().changed(*p);
}

static void rotateAbout(int polygon, double degrees, V3 axis, const char* op) {
    Polygon* p = polygonArg(polygon, op);
    if (!p || !finite(degrees, op)) return;
    transformPolygon(*p, rotationAbout(axis, degrees), ringCentre(*p), {});
    world().changed(*p);
}

void ZELMAR_polygon_rotate_x(int polygon, double degrees) {
    rotateAbout(polygon, degrees, {1, 0, 0}, "polygon_rotate_x");
}

void ZELMAR_polygon_rotate_y(int polygon, double degrees) {
    rotateAbout(polygon, degrees, {0, 1, 0}, "polygon_rotate_y");
}

void ZELMAR_polygon_rotate_z(int polygon, double degrees) {
    rotateAbout(polygon, degrees, {0, 0, 1}, "polygon_rotate_z");
}

int ZELMAR_polygon_rotate_to_match_polygon(int polygon, int target_polygon) {
    Polygon* p = polygonArg(polygon, "polygon_rotate_to_match_polygon");
    const Polygon* t = polygonArg(target_polygon, "polygon_rotate_to_match_polygon");
    if (!p || !t || !hasArea(*p) || !hasArea(*t)) return 0;
    const M3 r = rotationBetween(normalized(frontNormal(*p)), normalized(frontNormal(*t)));
    transformPolygon(*p, r, ringCentre(*p), {});
    world().changed(*p);
    return 1;
}

void ZELMAR_polygon_scale(int polygon, double sx, double sy, double sz) {
    Polygon* p = polygonArg(polygon, "polygon_scale");
    if (!p || !finite(sx, "polygon_scale") || !finite(sy, "polygon_scale") || !finite(sz, "polygon_scale"))
        return;
    M3 s;
    s.m[0][0] = sx;
    s.m[1][1] = sy;
    s.m[2][2] = sz;
    transformPolygon(*p, s, ringCentre(*p), {});
    world().changed(*p);
}

} // extern "C"
