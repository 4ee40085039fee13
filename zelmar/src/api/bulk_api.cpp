// Bulk operations: what the one-at-a-time getters and setters do, for many polygons or points in one call.
// An editor that moves tens of thousands of points per mouse step spends more in the calls than in the work.
#include "api/CoreArgs.h"
#include "scene/PolygonGeometry.h"
#include "scene/World.h"

#include <algorithm>
#include <cmath>
#include <zelmar/zelmar.h>

using namespace zelmar;
using namespace zelmar::api;

namespace {

constexpr int kXyz = 1, kUv = 2, kNormal = 4;

int valuesPerPoint(int fields) {
    return ((fields & kXyz) ? 3 : 0) + ((fields & kUv) ? 2 : 0) + ((fields & kNormal) ? 3 : 0);
}

bool finiteValues(const double* v, int n) {
    for (int i = 0; i < n; ++i)
        if (!std::isfinite(v[i])) return false;
    return true;
}

// The first three values of polygonPlane, without its D (a walk for the centre) and with the Newell normal
// made once: hasArea's test on it, then the same normalisation of the front normal.
void unitFrontNormal(const Polygon& p, double n[3]) {
    n[0] = n[1] = n[2] = 0;
    if (p.points.size() < 3) return;
    const double size = ringSize(p);
    const V3 newell = newellNormal(p);
    const double len = length(newell);
    if (!(std::isfinite(len) && size > 0 && len > 1e-12 * size * size)) return;
    normalized(newell * -1.0).store(n);
}

} // namespace

extern "C" {

int ZELMAR_group_get_polygons(int group, int* polygons, int max) {
    const Group* root = groupArg(group, "group_get_polygons");
    if (!root) return 0;
    int n = 0;
    for (const Group* g = root; g; g = World::nextInSubtree(g, root))
        for (const Handle h : g->order) {
            if (h == 0) continue;
            if (polygons && n < max) polygons[n] = h;
            ++n;
        }
    return n;
}

int ZELMAR_polygons_get_points(const int* polygons, int count, int* points, int* owners, double* xyz, int max) {
    if (!polygons || count <= 0) return 0;
    const World& w = world();
    int n = 0;
    for (int i = 0; i < count; ++i) {
        const Polygon* p = w.polygon(polygons[i]);
        if (!p) {
            polygonArg(polygons[i], "polygons_get_points"); // explains the failure
            continue;
        }
        for (const PointData& d : p->points) {
            if (n < max) {
                if (points) points[n] = d.handle;
                if (owners) owners[n] = p->handle;
                if (xyz)
                    for (int k = 0; k < 3; ++k)
                        xyz[3 * n + k] = d.xyz[k];
            }
            ++n;
        }
    }
    return n;
}

int ZELMAR_points_get_values(const int* points, int count, int fields, double* values) {
    if (!points || !values || count <= 0) return 0;
    const int per = valuesPerPoint(fields);
    const World& w = world();
    int done = 0;
    for (int i = 0; i < count; ++i) {
        const PointData* d = w.point(points[i]);
        if (!d) {
            pointArg(points[i], "points_get_values");
            continue;
        }
        double* v = values + static_cast<size_t>(i) * per;
        if (fields & kXyz) {
            v[0] = d->xyz[0], v[1] = d->xyz[1], v[2] = d->xyz[2];
            v += 3;
        }
        if (fields & kUv) {
            v[0] = d->uv[0], v[1] = d->uv[1];
            v += 2;
        }
        if (fields & kNormal) v[0] = d->normal[0], v[1] = d->normal[1], v[2] = d->normal[2];
        ++done;
    }
    return done;
}

int ZELMAR_points_set_values(const int* points, int count, int fields, const double* values) {
    if (!points || !values || count <= 0) return 0;
    const int per = valuesPerPoint(fields);
    World& w = world();
    int done = 0;
    Polygon* last = nullptr;
    for (int i = 0; i < count; ++i) {
        Polygon* owner = nullptr;
        PointData* d = w.point(points[i], &owner);
        if (!d) {
            pointArg(points[i], "points_set_values");
            continue;
        }
        const double* v = values + static_cast<size_t>(i) * per;
        if (!finiteValues(v, per)) {
            inArray(v, per, "points_set_values"); // explains the failure
            continue;
        }
        if (fields & kXyz) {
            d->xyz[0] = v[0], d->xyz[1] = v[1], d->xyz[2] = v[2];
            v += 3;
        }
        if (fields & kUv) {
            d->uv[0] = v[0], d->uv[1] = v[1];
            v += 2;
        }
        if (fields & kNormal) d->normal[0] = v[0], d->normal[1] = v[1], d->normal[2] = v[2];
        if (owner != last) w.changed(*owner); // a run of one polygon's points bumps it once
        last = owner;
        ++done;
    }
    return done;
}

int ZELMAR_point_runs_set_xyz(const int* points, const int* run_ends, int runs, const double* xyz) {
    if (!points || !run_ends || !xyz || runs <= 0) return 0;
    World& w = world();
    int done = 0, begin = 0;
    for (int r = 0; r < runs; ++r) {
        const int end = run_ends[r];
        const double* v = xyz + 3 * static_cast<size_t>(r);
        const bool ok = finiteValues(v, 3);
        if (!ok) inArray(v, 3, "point_runs_set_xyz");
        for (int i = begin; i < end; ++i) {
            Polygon* owner = nullptr;
            PointData* d = w.point(points[i], &owner);
            if (!d) {
                pointArg(points[i], "point_runs_set_xyz");
                continue;
            }
            if (!ok) continue;
            d->xyz[0] = v[0], d->xyz[1] = v[1], d->xyz[2] = v[2];
            w.changed(*owner);
            ++done;
        }
        begin = std::max(begin, end);
    }
    return done;
}

int ZELMAR_polygons_count_invalid(const int* polygons, int count) {
    if (!polygons || count <= 0) return 0;
    const World& w = world();
    int invalid = 0;
    for (int i = 0; i < count; ++i)
        if (const Polygon* p = w.polygon(polygons[i]); p && !isValidPolygon(*p)) ++invalid;
    return invalid;
}

int ZELMAR_polygons_get_centers(const int* polygons, int count, double* centers) {
    if (!polygons || !centers || count <= 0) return 0;
    const World& w = world();
    int done = 0;
    for (int i = 0; i < count; ++i) {
        const Polygon* p = w.polygon(polygons[i]);
        if (!p) {
            polygonArg(polygons[i], "polygons_get_centers");
            continue;
        }
        ringCentre(*p).store(centers + 3 * static_cast<size_t>(i));
        ++done;
    }
    return done;
}

int ZELMAR_polygons_set_plane_normals(const int* polygons, int count) {
    if (!polygons || count <= 0) return 0;
    World& w = world();
    int done = 0;
    for (int i = 0; i < count; ++i) {
        Polygon* p = w.polygon(polygons[i]);
        if (!p) {
            polygonArg(polygons[i], "polygons_set_plane_normals");
            continue;
        }
        double plane[3];
        unitFrontNormal(*p, plane);
        if (!finiteValues(plane, 3)) { // as point_set_normal refuses it
            inArray(plane, 3, "polygons_set_plane_normals");
            continue;
        }
        for (PointData& d : p->points)
            d.normal[0] = plane[0], d.normal[1] = plane[1], d.normal[2] = plane[2];
        w.changed(*p);
        ++done;
    }
    return done;
}

} // extern "C"
