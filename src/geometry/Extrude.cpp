#include "Extrude.h"

#include "maths/Maths.h"

#include <cmath>
#include <cstdint>
#include <unordered_map>
#include <zelmar/zelmar.h>

namespace vexil {

namespace {

constexpr double Tol = 1e-09;

Vec3d loc(int point) {
    Vec3d p{};
    ZELMAR_point_get_xyz(point, p.data());
    return p;
}

bool same(const Vec3d& a, const Vec3d& b) {
    return std::abs(a[0] - b[0]) < Tol && std::abs(a[1] - b[1]) < Tol && std::abs(a[2] - b[2]) < Tol;
}

// Cells of 1e-6: an edge's candidates sit in the cells of its ends, or in a neighbour near a border.
struct Cell {
    long long x, y, z;
    bool operator==(const Cell&) const = default;
};
struct CellHash {
    size_t operator()(const Cell& c) const noexcept {
        uint64_t h = static_cast<uint64_t>(c.x) * 0x9E3779B97F4A7C15ull;
        h ^= static_cast<uint64_t>(c.y) * 0xC2B2AE3D27D4EB4Full + (h >> 7);
        h ^= static_cast<uint64_t>(c.z) * 0x165667B19E3779F9ull + (h >> 11);
        return static_cast<size_t>(h);
    }
};
constexpr double CellSize = 1e-6;
long long cellOf(double v) {
    const double c = std::floor(v / CellSize);
    if (!(c > -4e18)) return -(4LL << 60);
    if (!(c < 4e18)) return 4LL << 60;
    return static_cast<long long>(c);
}

} // namespace

bool SamePointLocation(int a, int b) {
    return same(loc(a), loc(b));
}

std::vector<PointEdge> CollectBoundaryEdges(const std::vector<int>& polygons) {
    struct Listed {
        PointEdge edge;
        Vec3d a, b;
        bool live;
    };
    std::vector<Listed> list;
    std::unordered_map<Cell, std::vector<size_t>, CellHash> byStart; // cell of an edge's first end -> edges
    auto cellsNear = [](const Vec3d& p, auto&& visit) {
        long long xs[2] = {cellOf(p[0] - Tol), cellOf(p[0] + Tol)};
        long long ys[2] = {cellOf(p[1] - Tol), cellOf(p[1] + Tol)};
        long long zs[2] = {cellOf(p[2] - Tol), cellOf(p[2] + Tol)};
        for (int i = 0; i < 2; ++i) {
            if (i == 1 && xs[1] == xs[0]) break;
            for (int j = 0; j < 2; ++j) {
                if (j == 1 && ys[1] == ys[0]) break;
                for (int k = 0; k < 2; ++k) {
                    if (k == 1 && zs[1] == zs[0]) break;
                    visit(Cell{xs[i], ys[j], zs[k]});
                }
            }
        }
    };
    // CancelSharedEdge: the first live listed edge that joins the same two locations.
    auto cancelShared = [&](const Vec3d& p, const Vec3d& q) -> bool {
        size_t best = SIZE_MAX;
        auto look = [&](const Vec3d& start, const Vec3d& end, bool reversed) {
            cellsNear(start, [&](const Cell& c) {
                const auto it = byStart.find(c);
                if (it == byStart.end()) return;
                for (size_t i : it->second) {
                    const Listed& l = list[i];
                    if (!l.live || i >= best) continue;
                    if (reversed ? (same(l.a, start) && same(l.b, end)) : (same(l.a, start) && same(l.b, end)))
                        best = i;
                }
            });
        };
        look(p, q, false); // same direction
        look(q, p, true);  // the other way round
        if (best == SIZE_MAX) return false;
        list[best].live = false;
        return true;
    };
    for (int pol : polygons) {
        const int first = ZELMAR_polygon_get_first_point(pol);
        for (int p = first; p != 0; p = ZELMAR_point_get_next_point(p)) {
            int q = ZELMAR_point_get_next_point(p);
            if (q == 0) q = first;
            if (q == p) continue;
            const Vec3d a = loc(p), b = loc(q);
            if (cancelShared(a, b)) continue;
            Cell c{cellOf(a[0]), cellOf(a[1]), cellOf(a[2])};
            byStart[c].push_back(list.size());
            list.push_back({{p, q}, a, b, true});
        }
    }
    std::vector<PointEdge> out;
    for (const Listed& l : list)
        if (l.live) out.push_back(l.edge);
    return out;
}

Vec3d AveragedNormal(const std::vector<int>& polygons) {
    Vec3d n{0, 0, 0};
    if (polygons.empty()) return n;
    for (int p : polygons) {
        double plane[4] = {0, 0, 0, 0};
        ZELMAR_polygon_get_plane(p, plane);
        for (int k = 0; k < 3; ++k)
            n[size_t(k)] += plane[k];
    }
    const double f = 1.0 / static_cast<double>(polygons.size());
    for (double& v : n)
        v *= f;
    return n;
}

bool IsZeroNormal(const Vec3d& n) {
    return std::abs(n[0]) + std::abs(n[1]) + std::abs(n[2]) == 0.0;
}

ExtrudeFill FillOf(int polygon) {
    ExtrudeFill f;
    f.bitmap = ZELMAR_polygon_get_bitmap_handle(polygon);
    ZELMAR_polygon_get_color(polygon, f.rgb);
    return f;
}

std::vector<int> MakeExtrudeSides(const std::vector<int>& polygons, const std::vector<PointEdge>& boundary,
                                  int group, const Vec3d& centre, const Vec3d& seed, const ExtrudeFill& fill) {
    std::vector<int> sides;
    sides.reserve(boundary.size());
    Maths::Vector A(3), B(3), B2(3), N(4), D(3);
    for (const PointEdge& e : boundary) {
        const int side = ZELMAR_polygon_create();
        ZELMAR_polygon_set_group(side, group);
        const Vec3d a = loc(e.first), b = loc(e.second);
        for (int k = 0; k < 3; ++k) {
            A[size_t(k)] = a[size_t(k)];
            B[size_t(k)] = b[size_t(k)];
            B2[size_t(k)] = b[size_t(k)] + seed[size_t(k)];
            D[size_t(k)] = a[size_t(k)] - centre[size_t(k)];
        }
        Maths::PlaneFromPoints(A, B, B2, N);
        double normal[3] = {N[0], N[1], N[2]};
        if (Maths::angleBetVectors(N, D) > 90.0)
            for (double& v : normal)
                v = -v;
        const double corners[4][5] = {
            {a[0], a[1], a[2], 0, 1},
            {b[0], b[1], b[2], 1, 1},
            {b[0] + seed[0], b[1] + seed[1], b[2] + seed[2], 1, 0},
            {a[0] + seed[0], a[1] + seed[1], a[2] + seed[2], 0, 0},
        };
        for (const auto& c : corners) {
            const double vertex[6] = {c[0], c[1], c[2], c[3], c[4], 100.0};
            const int pt = ZELMAR_polygon_add_point(side, vertex);
            ZELMAR_point_set_normal(pt, normal);
        }
        ZELMAR_engine_add_polygon(side);
        ZELMAR_polygon_set_name(side, "Extruded Pol");
        sides.push_back(side);
        if (fill.bitmap != 0)
            ZELMAR_polygon_set_bitmap_fill(side, fill.bitmap);
        else
            ZELMAR_polygon_set_color_fill(side, fill.rgb[0], fill.rgb[1], fill.rgb[2]);
    }
    for (int pol : polygons)
        for (int pt = ZELMAR_polygon_get_first_point(pol); pt != 0; pt = ZELMAR_point_get_next_point(pt)) {
            Vec3d p = loc(pt);
            for (int k = 0; k < 3; ++k)
                p[size_t(k)] += seed[size_t(k)];
            ZELMAR_point_set_xyz(pt, p.data());
        }
    return sides;
}

void MoveWeldSetsBy(const std::vector<WeldSet>& sets, const Vec3d& delta) {
    for (const WeldSet& s : sets) {
        if (s.empty()) continue;
        Vec3d p = loc(s.front());
        for (int k = 0; k < 3; ++k)
            p[size_t(k)] += delta[size_t(k)];
        for (int pt : s)
            ZELMAR_point_set_xyz(pt, p.data());
    }
}

void ScaleWeldSetsAbout(const std::vector<WeldSet>& sets, const Vec3d& centre, double f) {
    for (const WeldSet& s : sets) {
        if (s.empty()) continue;
        const Vec3d p = loc(s.front());
        Vec3d to{};
        for (size_t k = 0; k < 3; ++k)
            to[k] = centre[k] + f * (p[k] - centre[k]);
        for (int pt : s)
            ZELMAR_point_set_xyz(pt, to.data());
    }
}

void SetPlaneNormals(const std::vector<int>& polygons) {
    if (!polygons.empty()) ZELMAR_polygons_set_plane_normals(polygons.data(), static_cast<int>(polygons.size()));
}

} // namespace vexil
