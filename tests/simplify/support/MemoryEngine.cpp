#include "MemoryEngine.h"

#include <algorithm>
#include <cmath>

namespace simplify_test {

int MemoryEngine::addMesh(const MeshData& mesh, const char* name) {
    const int g = group_create(name);
    for (const MeshFace& f : mesh.faces) {
        const int p = polygon_create();
        for (int vi : f.v) {
            const MeshVertex& mv = mesh.vertices.at(static_cast<std::size_t>(vi));
            const double v[6] = {mv.xyz[0], mv.xyz[1], mv.xyz[2], mv.uv[0], mv.uv[1], mv.brightness};
            const int pt = polygon_add_point(p, v);
            for (int k = 0; k < 3; ++k) points_[static_cast<std::size_t>(pt)].normal[k] = mv.normal[k];
        }
        polygon_set_group(p, g);
        engine_add_polygon(p);
        MemPolygon& P = polys_[static_cast<std::size_t>(p)];
        P.bitmap = f.bitmap;
        for (int k = 0; k < 3; ++k) P.color[k] = f.color[k];
        P.brightness = f.brightness;
    }
    return g;
}

namespace {
// The Newell normal of a ring and whether the ring has an area, as libzelmar3 decides it: a
// normal of finite length above 1e-12 times the square of the ring's largest extent.
bool newellWithArea(const MemPolygon& p, const BlockArray<MemPoint>& pts, double& nx, double& ny, double& nz) {
    nx = ny = nz = 0;
    const std::size_t k = p.points.size();
    if (k < 3) return false;
    auto at = [&](std::size_t i) { return pts[static_cast<std::size_t>(p.points[i])].v; };
    for (std::size_t i = 0; i < k; ++i) {
        const double* a = at(i);
        const double* b = at((i + 1) % k);
        nx += (a[1] - b[1]) * (a[2] + b[2]);
        ny += (a[2] - b[2]) * (a[0] + b[0]);
        nz += (a[0] - b[0]) * (a[1] + b[1]);
    }
    double lo[3] = {at(0)[0], at(0)[1], at(0)[2]}, hi[3] = {lo[0], lo[1], lo[2]};
    for (std::size_t i = 0; i < k; ++i)
        for (int c = 0; c < 3; ++c) {
            lo[c] = std::min(lo[c], at(i)[c]);
            hi[c] = std::max(hi[c], at(i)[c]);
        }
    const double size = std::max({hi[0] - lo[0], hi[1] - lo[1], hi[2] - lo[2]});
    const double len = std::sqrt(nx * nx + ny * ny + nz * nz);
    return std::isfinite(len) && size > 0 && len > 1e-12 * size * size;
}
} // namespace

int MemoryEngine::triangulatedCopy(int group, const char* name) {
    const int out = group_create(name);
    const std::vector<int> sources = groups_.at(group).polygons;
    for (const int s : sources) {
        double nx, ny, nz;
        if (!newellWithArea(polys_[static_cast<std::size_t>(s)], points_, nx, ny, nz)) continue;
        const MemPolygon source = polys_[static_cast<std::size_t>(s)];
        for (std::size_t i = 1; i + 1 < source.points.size(); ++i) {
            const int t = polygon_create();
            for (const std::size_t c : {std::size_t{0}, i, i + 1}) {
                const MemPoint corner = points_[static_cast<std::size_t>(source.points[c])];
                const int pt = polygon_add_point(t, corner.v);
                for (int k = 0; k < 3; ++k) points_[static_cast<std::size_t>(pt)].normal[k] = corner.normal[k];
            }
            polygon_set_group(t, out);
            engine_add_polygon(t);
            MemPolygon& T = polys_[static_cast<std::size_t>(t)];
            T.bitmap = source.bitmap;
            for (int k = 0; k < 3; ++k) T.color[k] = source.color[k];
            T.brightness = source.brightness;
        }
    }
    return out;
}

// The plane as libzelmar3 computes it, operation for operation: the Newell normal of the ring
// turned over (the front is the side from which the ring runs clockwise), times the reciprocal
// of its length, and D from the mean of the ring's points; all zero for a ring without area.
// A mesh therefore reaches the simplification with the same bits through either engine.
void MemoryEngine::planeOf(const MemPolygon& p, const BlockArray<MemPoint>& pts, double plane[4]) {
    plane[0] = plane[1] = plane[2] = plane[3] = 0;
    double nx, ny, nz;
    if (!newellWithArea(p, pts, nx, ny, nz)) return;
    const std::size_t k = p.points.size();
    auto at = [&](std::size_t i) { return pts[static_cast<std::size_t>(p.points[i])].v; };
    const double fx = nx * -1.0, fy = ny * -1.0, fz = nz * -1.0;
    const double l = std::sqrt(fx * fx + fy * fy + fz * fz);
    double n[3] = {0, 0, 0};
    if (l > 0 && std::isfinite(l)) {
        const double r = 1.0 / l;
        n[0] = fx * r;
        n[1] = fy * r;
        n[2] = fz * r;
    }
    double c[3] = {0, 0, 0};
    for (std::size_t i = 0; i < k; ++i)
        for (int j = 0; j < 3; ++j) c[j] = c[j] + at(i)[j];
    const double inv = 1.0 / static_cast<double>(k);
    for (double& x : c) x = x * inv;
    plane[0] = n[0];
    plane[1] = n[1];
    plane[2] = n[2];
    plane[3] = -(n[0] * c[0] + n[1] * c[1] + n[2] * c[2]);
}

int MemoryEngine::group_get_number_of_polygons(int group) {
    ++calls;
    auto it = groups_.find(group);
    return it == groups_.end() ? 0 : static_cast<int>(it->second.polygons.size());
}

void MemoryEngine::group_get_center_of_mass(int group, double out[3]) {
    ++calls;
    out[0] = out[1] = out[2] = 0;
    auto it = groups_.find(group);
    if (it == groups_.end()) return;
    double s[3] = {0, 0, 0};
    long n = 0;
    for (int p : it->second.polygons)
        for (int pt : polys_[static_cast<std::size_t>(p)].points) {
            for (int k = 0; k < 3; ++k) s[k] += points_[static_cast<std::size_t>(pt)].v[k];
            ++n;
        }
    if (n == 0) {
        for (int k = 0; k < 3; ++k) out[k] = it->second.location[k];
        return;
    }
    const double inv = 1.0 / static_cast<double>(n); // as libzelmar3: the sum times the reciprocal
    for (int k = 0; k < 3; ++k) out[k] = s[k] * inv;
}

int MemoryEngine::group_get_first_polygon(int group) {
    ++calls;
    auto it = groups_.find(group);
    if (it == groups_.end() || it->second.polygons.empty()) return 0;
    return it->second.polygons.front();
}

int MemoryEngine::group_get_next_polygon(int polygon) {
    ++calls;
    if (polygon <= 0 || static_cast<std::size_t>(polygon) >= polys_.size()) return 0;
    const int g = polys_[static_cast<std::size_t>(polygon)].group;
    auto it = groups_.find(g);
    if (it == groups_.end()) return 0;
    const std::size_t i = static_cast<std::size_t>(polyIndexInGroup_[static_cast<std::size_t>(polygon)]) + 1;
    return i < it->second.polygons.size() ? it->second.polygons[i] : 0;
}

int MemoryEngine::polygon_get_bitmap_handle(int polygon) { ++calls; return polys_.at(static_cast<std::size_t>(polygon)).bitmap; }

void MemoryEngine::polygon_get_color(int polygon, int rgb[3]) {
    ++calls;
    for (int k = 0; k < 3; ++k) rgb[k] = polys_.at(static_cast<std::size_t>(polygon)).color[k];
}

double MemoryEngine::polygon_get_brightness(int polygon) { ++calls; return polys_.at(static_cast<std::size_t>(polygon)).brightness; }

int MemoryEngine::polygon_get_first_point(int polygon) {
    ++calls;
    const MemPolygon& p = polys_.at(static_cast<std::size_t>(polygon));
    return p.points.empty() ? 0 : p.points.front();
}

int MemoryEngine::point_get_next_point(int point) {
    ++calls;
    if (point <= 0 || static_cast<std::size_t>(point) >= points_.size()) return 0;
    const MemPolygon& p = polys_[static_cast<std::size_t>(pointOwner_[static_cast<std::size_t>(point)])];
    const std::size_t i = static_cast<std::size_t>(pointIndexInRing_[static_cast<std::size_t>(point)]) + 1;
    return i < p.points.size() ? p.points[i] : 0;
}

// Point 0 answers zeros, as the engine does for a dead handle.
void MemoryEngine::point_get_bitmap_xy(int point, double uv[2]) {
    ++calls;
    const MemPoint& p = points_.at(static_cast<std::size_t>(point));
    uv[0] = p.v[3];
    uv[1] = p.v[4];
}
double MemoryEngine::point_get_brightness(int point) { ++calls; return point == 0 ? 0.0 : points_.at(static_cast<std::size_t>(point)).v[5]; }
void MemoryEngine::point_get_normal(int point, double normal[3]) {
    ++calls;
    for (int k = 0; k < 3; ++k) normal[k] = points_.at(static_cast<std::size_t>(point)).normal[k];
}
void MemoryEngine::point_get_xyz(int point, double xyz[3]) {
    ++calls;
    for (int k = 0; k < 3; ++k) xyz[k] = points_.at(static_cast<std::size_t>(point)).v[k];
}

void MemoryEngine::polygon_get_plane(int polygon, double plane[4]) {
    ++calls;
    const MemPolygon& p = polys_.at(static_cast<std::size_t>(polygon));
    if (p.planeSet) {
        for (int k = 0; k < 4; ++k) plane[k] = p.plane[k];
        return;
    }
    planeOf(p, points_, plane);
}

// The values of the single calls (readTrianglesByCalls), read from the arrays directly: a ring's
// corners are its first three points, and point handle 0 (zeros, brightness 0) past its end.
int MemoryEngine::read_triangles(int& polygon, simplify::SimplifyTriangle* out, int max) {
    int n = 0;
    const MemGroup* walked = nullptr;
    int walkedId = 0;
    for (; polygon != 0 && n < max; ++n) {
        calls += 20; // the single calls this stands for
        const MemPolygon& P = polys_.at(static_cast<std::size_t>(polygon));
        simplify::SimplifyTriangle& r = out[n];
        r.bitmap = P.bitmap;
        for (int k = 0; k < 3; ++k) r.color[k] = P.color[k];
        for (std::size_t k = 0; k < 3; ++k) {
            const int pt = k < P.points.size() ? P.points[k] : 0;
            const MemPoint& m = points_[static_cast<std::size_t>(pt)];
            double* c = r.corners[k];
            for (int i = 0; i < 5; ++i) c[i] = m.v[i];
            c[5] = pt == 0 ? 0.0 : m.v[5];
            for (int i = 0; i < 3; ++i) c[6 + i] = m.normal[i];
        }
        r.brightness = r.corners[2][5];
        if (P.planeSet)
            for (int k = 0; k < 4; ++k) r.plane[k] = P.plane[k];
        else
            planeOf(P, points_, r.plane);
        // group_get_next_polygon
        if (!walked || walkedId != P.group) {
            auto it = groups_.find(P.group);
            walked = it == groups_.end() ? nullptr : &it->second;
            walkedId = P.group;
        }
        if (!walked) {
            polygon = 0;
        } else {
            const std::size_t i = static_cast<std::size_t>(polyIndexInGroup_[static_cast<std::size_t>(polygon)]) + 1;
            polygon = i < walked->polygons.size() ? walked->polygons[i] : 0;
        }
    }
    return n;
}

int MemoryEngine::group_create(const char* name) {
    ++calls;
    const int g = nextGroup_++;
    groups_[g].name = name ? name : "";
    return g;
}

void MemoryEngine::group_get_location(int group, double location[3]) {
    ++calls;
    auto it = groups_.find(group);
    for (int k = 0; k < 3; ++k) location[k] = it == groups_.end() ? 0.0 : it->second.location[k];
}

void MemoryEngine::group_set_rotate_reference_point(int group, const double point[3]) {
    ++calls;
    for (int k = 0; k < 3; ++k) groups_[group].reference[k] = point[k];
}

int MemoryEngine::polygon_create() {
    ++calls;
    polys_.emplace_back();
    polyIndexInGroup_.push_back(-1);
    return static_cast<int>(polys_.size()) - 1;
}

void MemoryEngine::polygon_set_group(int polygon, int group) {
    ++calls;
    MemPolygon& p = polys_.at(static_cast<std::size_t>(polygon));
    p.group = group;
    auto& list = groups_[group].polygons;
    polyIndexInGroup_[static_cast<std::size_t>(polygon)] = static_cast<int>(list.size());
    list.push_back(polygon);
}

int MemoryEngine::polygon_add_point(int polygon, const double vertex[6]) {
    ++calls;
    MemPoint pt;
    for (int k = 0; k < 6; ++k) pt.v[k] = vertex[k];
    points_.push_back(pt);
    const int h = static_cast<int>(points_.size()) - 1;
    MemPolygon& p = polys_.at(static_cast<std::size_t>(polygon));
    pointOwner_.push_back(polygon);
    pointIndexInRing_.push_back(static_cast<int>(p.points.size()));
    p.points.push_back(h);
    return h;
}

int MemoryEngine::engine_add_polygon(int polygon) {
    ++calls;
    polys_.at(static_cast<std::size_t>(polygon)).added = true;
    return 1;
}

void MemoryEngine::polygon_set_color_fill(int polygon, int red, int green, int blue) {
    ++calls;
    MemPolygon& p = polys_.at(static_cast<std::size_t>(polygon));
    p.color[0] = red;
    p.color[1] = green;
    p.color[2] = blue;
    p.bitmap = 0;
}

void MemoryEngine::polygon_set_brightness(int polygon, double value) { ++calls; polys_.at(static_cast<std::size_t>(polygon)).brightness = value; }

void MemoryEngine::polygon_set_bitmap_fill(int polygon, int bitmap) { ++calls; polys_.at(static_cast<std::size_t>(polygon)).bitmap = bitmap; }

// Nothing to make room for: the arrays grow in blocks that never move.
void MemoryEngine::reserve_output(int, int) {}

} // namespace simplify_test
