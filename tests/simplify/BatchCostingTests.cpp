// Re-costing four edges at once (AVX2, or the same kernel on two-lane halves) against the
// one-by-one code: the same placement and cost bits on every edge, the same Overflow raised at
// the same edge with the same model left behind, and the same whole runs.
#include "Fnv.h"
#include "Harness.h"
#include "MeshMaker.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <filesystem>
#include <limits>
#include <random>
#include <sstream>
#include <string>

#if !defined(NDEBUG) || defined(__SANITIZE_ADDRESS__)
#define SIMPLIFY_SLOW_BUILD 1
#endif

using namespace simplify_test;
using simplify::SurfSimpli;
using Costing = SurfSimpli::Costing;

namespace {

std::vector<Costing> batchedPaths() {
    std::vector<Costing> p{Costing::Portable};
#if defined(__x86_64__)
    if (__builtin_cpu_supports("avx2")) p.push_back(Costing::Avx2);
#endif
    return p;
}

const char* name(Costing c) { return c == Costing::Avx2 ? "avx2" : c == Costing::Portable ? "portable" : "scalar"; }

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();

// A grid of points whose triangles carry planes chosen freely (they need not fit the corners):
// the planes make the quadrics, so each kind gives the edges it is named for.
enum class Planes {
    Ordinary,  // unit-sized normals and offsets
    Scaled,    // each plane scaled by 10^k, k from -170 to 150: products that overflow or vanish
    Flat,      // all (0, 0, 1, 0) on a flat grid: D is exactly 0 on every edge (the better end)
    Mixed,     // a few zero planes, a few huge ones, the rest ordinary
};
struct GridSpec {
    int n = 8;
    Planes planes = Planes::Ordinary;
    double coordScale = 1.0;      // 1e150 and more: differences and products that overflow
    bool collapsed = false;       // some triangles with two equal corners: edges from a point to itself
    bool nearCopies = false;      // some corners one ulp from their neighbour: edges of length ~0
    unsigned seed = 1;
};

struct Tri {
    double c[3][9];
    double plane[4];
};

std::vector<Tri> makeTris(const GridSpec& g) {
    std::mt19937_64 rng(g.seed);
    std::uniform_real_distribution<double> u(-1.0, 1.0);
    std::uniform_int_distribution<int> exp10(-170, 150), pick(0, 9);
    const bool flat = g.planes == Planes::Flat;
    std::vector<std::array<double, 3>> pos(static_cast<std::size_t>(g.n * g.n));
    for (int j = 0; j < g.n; ++j)
        for (int i = 0; i < g.n; ++i) {
            auto& p = pos[static_cast<std::size_t>(j * g.n + i)];
            p = {(i + 0.3 * u(rng)) * g.coordScale, (j + 0.3 * u(rng)) * g.coordScale, flat ? 0.0 : u(rng) * g.coordScale};
        }
    if (g.nearCopies)
        for (std::size_t k = 1; k < pos.size(); k += 7) pos[k] = {std::nextafter(pos[k - 1][0], kInf), pos[k - 1][1], pos[k - 1][2]};
    auto plane = [&](double* p) {
        p[0] = u(rng);
        p[1] = u(rng);
        p[2] = u(rng);
        p[3] = 4 * u(rng);
        double scale = 1.0;
        switch (g.planes) {
        case Planes::Ordinary: break;
        case Planes::Scaled: scale = std::pow(10.0, exp10(rng)); break;
        case Planes::Flat:
            p[0] = p[1] = p[3] = 0;
            p[2] = 1;
            break;
        case Planes::Mixed: {
            const int k = pick(rng);
            scale = k == 0 ? 0.0 : k == 1 ? 1e150 : 1.0;
            break;
        }
        }
        for (int k = 0; k < 4; ++k) p[k] *= scale;
    };
    auto corner = [&](double* c, int idx) {
        const auto& p = pos[static_cast<std::size_t>(idx)];
        const double v[9] = {p[0], p[1], p[2], 0, 0, 100, 0, 0, 1};
        std::copy(v, v + 9, c);
    };
    std::vector<Tri> tris;
    for (int j = 0; j + 1 < g.n; ++j)
        for (int i = 0; i + 1 < g.n; ++i) {
            const int a = j * g.n + i, b = a + 1, c = a + g.n, d = c + 1;
            for (const std::array<int, 3> t : {std::array<int, 3>{a, b, d}, std::array<int, 3>{a, d, c}}) {
                Tri tri;
                for (int k = 0; k < 3; ++k) corner(tri.c[k], t[static_cast<std::size_t>(k)]);
                if (g.collapsed && pick(rng) == 0) std::copy(tri.c[0], tri.c[0] + 9, tri.c[1]);
                plane(tri.plane);
                tris.push_back(tri);
            }
        }
    return tris;
}

void load(SurfSimpli& s, const std::vector<Tri>& tris, bool geomOnly) {
    const int color[3] = {1, 2, 3};
    for (const Tri& t : tris) s.AddTriangle(t.c[0], t.c[1], t.c[2], t.plane, 0, 100, color);
    s.SetOptions(false, geomOnly, false, false);
}

// Every edge's validity, placement and cost, bit for bit; "" when equal.
std::string compareEdges(const SurfSimpli& a, const SurfSimpli& b) {
    if (a.EdgeCount() != b.EdgeCount()) return "edge counts differ";
    for (int e = 1; e <= a.EdgeCount(); ++e) {
        const simplify::SimpEdge x = a.Edge(e), y = b.Edge(e);
        bool same = x.Valid == y.Valid && std::bit_cast<std::uint64_t>(x.Cost) == std::bit_cast<std::uint64_t>(y.Cost);
        for (int k = 0; k < 3; ++k)
            same = same && std::bit_cast<std::uint64_t>(x.NewCoords[k]) == std::bit_cast<std::uint64_t>(y.NewCoords[k]);
        if (!same) {
            std::ostringstream o;
            o.precision(17);
            o << "edge " << e << ": cost " << x.Cost << " / " << y.Cost << ", at (" << x.NewCoords[0] << ", " << x.NewCoords[1]
              << ", " << x.NewCoords[2] << ") / (" << y.NewCoords[0] << ", " << y.NewCoords[1] << ", " << y.NewCoords[2] << ")";
            return o.str();
        }
    }
    return "";
}

// Runs f on the model, answering the error number it raised (0: none).
template <class F> long raised(F f) {
    try {
        f();
    } catch (const vexil::VexilError& e) {
        return e.number;
    }
    return 0;
}

// The same steps on one model per path; after each, every batched model must equal the scalar one.
struct Models {
    std::vector<std::unique_ptr<SurfSimpli>> m; // [0] scalar
    std::vector<Costing> paths;
    Models(const std::vector<Tri>& tris, bool geomOnly) {
        paths.push_back(Costing::Scalar);
        for (Costing c : batchedPaths()) paths.push_back(c);
        for (Costing c : paths) {
            m.push_back(std::make_unique<SurfSimpli>());
            m.back()->CostingPath = c;
            load(*m.back(), tris, geomOnly);
        }
    }
    // Applies f to every model; the raises and the edges must agree. Answers the scalar raise.
    template <class F> long step(F f, const std::string& what) {
        std::vector<long> r;
        for (auto& s : m) r.push_back(raised([&] { f(*s); }));
        for (std::size_t i = 1; i < m.size(); ++i) {
            EXPECT_EQ(r[i], r[0]) << what << " on the " << name(paths[i]) << " path";
            EXPECT_EQ(compareEdges(*m[0], *m[i]), "") << what << " on the " << name(paths[i]) << " path";
        }
        return r[0];
    }
};

TEST(BatchCosting, SameBitsAsTheScalarCodeOnRandomAndAdversarialEdges) {
    std::vector<GridSpec> specs;
    unsigned seed = 1;
    for (Planes p : {Planes::Ordinary, Planes::Scaled, Planes::Flat, Planes::Mixed})
        for (double scale : {1.0, 1e-160, 1e150})
            for (int variant = 0; variant < 4; ++variant) {
                GridSpec g;
                g.planes = p;
                g.coordScale = scale;
                g.collapsed = variant & 1;
                g.nearCopies = variant & 2;
                g.n = 6 + variant;
                g.seed = seed++;
                specs.push_back(g);
            }
    int raisedRuns = 0, cleanRuns = 0;
    for (const GridSpec& g : specs)
        for (bool geomOnly : {false, true}) {
            const std::vector<Tri> tris = makeTris(g);
            Models ms(tris, geomOnly);
            const std::string what = "grid " + std::to_string(g.seed) + (geomOnly ? " geometry only" : "");
            ms.step([](SurfSimpli& s) { s.BuildAllQuadrics(); }, what + ", quadrics");
            const long r = ms.step([](SurfSimpli& s) { s.EvaluateAllEdges(); }, what + ", all edges");
            (r ? raisedRuns : cleanRuns) += 1;
            if (r) continue;
            // re-cost neighbourhoods after their points' quadrics changed: cleared, then built again
            for (int p = 1; p <= ms.m[0]->PointCount(); p += 3) {
                const std::string at = what + ", point " + std::to_string(p);
                ms.step([p](SurfSimpli& s) { s.ClearPointQuadric(p); }, at + " cleared");
                if (ms.step([p](SurfSimpli& s) { s.CollectAffected(p); s.EvaluateAffectedEdges(); }, at + " re-costed")) break;
                ms.step([p](SurfSimpli& s) { s.BuildPointQuadric(p); }, at + " built");
                if (ms.step([p](SurfSimpli& s) { s.CollectAffected(p); s.EvaluateAffectedEdges(); }, at + " re-costed again")) break;
            }
        }
    // the corpus must hold both kinds (huge planes and coordinates overflow, the others do not)
    EXPECT_GT(raisedRuns, 0);
    EXPECT_GT(cleanRuns, 0);
}

TEST(BatchCosting, TheFlatGridFallsBackToTheBetterEndOnEveryLane) {
    GridSpec g;
    g.planes = Planes::Flat;
    g.n = 9;
    for (bool geomOnly : {false, true}) {
        Models ms(makeTris(g), geomOnly);
        ms.step([](SurfSimpli& s) { s.BuildAllQuadrics(); }, "quadrics");
        ASSERT_EQ(ms.step([](SurfSimpli& s) { s.EvaluateAllEdges(); }, "all edges"), 0);
        // D = 0 (and a singular matrix) everywhere: each edge sits at its first end, at cost 0
        const SurfSimpli& s = *ms.m.back();
        for (int e = 1; e <= s.EdgeCount(); ++e) {
            const simplify::SimpEdge E = s.Edge(e);
            const double* a = s.PointCoords(E.PtA);
            EXPECT_EQ(E.Cost, 0.0);
            for (int k = 0; k < 3; ++k) EXPECT_EQ(E.NewCoords[k], a[k]) << "edge " << e;
        }
    }
}

// One triangle's corners given a quadric that is not finite (or so large that a cost overflows)
// after every edge was costed; re-costing the neighbourhood of each neighbour must raise Overflow
// at the same edge of the list (in the middle of a four as well as at its start) and leave the
// same edges: those before it costed, it as far as the scalar code got, those after it as they
// were (every other quadric changed, so a re-costing out of turn would show).
TEST(BatchCosting, AnOverflowRaisesAtTheSameEdgeAndLeavesTheSameModel) {
    struct Poison {
        const char* what;
        double plane[4];
        double coordScale;
        bool raisesGeomOnly; // the optimal placement may find a point where the cost is finite
    };
    const Poison poisons[] = {
        {"NaN plane", {kNaN, 0.5, 0.5, 1}, 1.0, true},
        {"infinite plane", {0.2, kInf, 0.1, 1}, 1.0, true},
        {"plane whose products overflow", {1e200, 1e200, 0.3, 1}, 1.0, true},
        // finite sums; on the segment between points 1e100 apart the cost is beyond range
        {"plane whose cost overflows", {1e100, 2e100, 1e100, 0}, 1e100, false},
    };
    for (const Poison& poison : poisons)
        for (bool geomOnly : {false, true}) {
            GridSpec g;
            g.n = 7;
            g.seed = 99;
            g.coordScale = poison.coordScale;
            std::vector<Tri> tris = makeTris(g);
            const std::size_t victim = tris.size() / 2; // a triangle inside the grid
            std::copy(poison.plane, poison.plane + 4, tris[victim].plane);
            Models ms(tris, geomOnly);
            const SurfSimpli& s0 = *ms.m[0];
            const simplify::SimpTri T = s0.Tri(static_cast<int>(victim) + 1);
            const std::string what = std::string(poison.what) + (geomOnly ? ", geometry only" : "");
            // the poisoned corners start from zero quadrics: every edge costs without a raise
            ms.step([](SurfSimpli& s) { s.BuildAllQuadrics(); }, what);
            ms.step([&](SurfSimpli& s) { for (int c : T.Pts) s.ClearPointQuadric(c); }, what);
            ASSERT_EQ(ms.step([](SurfSimpli& s) { s.EvaluateAllEdges(); }, what + ", all edges"), 0);
            // every quadric summed once more: the poisoned corners get the victim's plane, the
            // others twice what they had, so each re-costing changes what it stores
            ms.step([](SurfSimpli& s) { s.BuildAllQuadrics(); }, what + ", poisoned");
            auto poisoned = [&](int x) { return x == T.Pts[0] || x == T.Pts[1] || x == T.Pts[2]; };
            // the neighbourhood of every point: the first poisoned edge comes at another place in
            // each list, or nowhere
            std::vector<std::size_t> raisedAt;
            for (int q = 1; q <= s0.PointCount(); ++q) {
                const std::string at = what + ", around point " + std::to_string(q);
                const long r = ms.step([q](SurfSimpli& s) { s.CollectAffected(q); s.EvaluateAffectedEdges(); }, at);
                const std::vector<std::int32_t>& list = s0.AffectedEdges();
                std::size_t first = list.size();
                for (std::size_t i = 0; i < list.size() && first == list.size(); ++i) {
                    const simplify::SimpEdge E = s0.Edge(list[i]);
                    if (poisoned(E.PtA) || poisoned(E.PtB)) first = i;
                }
                if (first == list.size()) {
                    EXPECT_EQ(r, 0) << at;
                } else if (!geomOnly || poison.raisesGeomOnly) {
                    EXPECT_EQ(r, vexil::ErrOverflow) << at;
                    raisedAt.push_back(first);
                }
            }
            // the raise came at more than one place of a four
            bool notFirstOfFour = false;
            for (std::size_t i : raisedAt) notFirstOfFour = notFirstOfFour || i % 4 != 0;
            if (!geomOnly || poison.raisesGeomOnly) {
                EXPECT_TRUE(notFirstOfFour) << what;
            }
            // and the whole-list costing raises at the same edge too
            ms.step([](SurfSimpli& s) { s.EvaluateAllEdges(); }, what + ", all edges again");
        }
}

struct RunSums {
    std::uint64_t trace = 0, output = 0;
    std::size_t contractions = 0, triangles = 0;
    std::string raised; // an open part of the mesh may raise (border penalties): at the same contraction on every path
    bool operator==(const RunSums&) const = default;
};

RunSums runBunny(const MeshData& rings, Costing path, double keep, bool geomOnly) {
    MemoryEngine eng;
    const int g = eng.addMesh(rings);
    SurfSimpli s(&eng);
    s.CostingPath = path;
    s.ForceRestart = true;
    s.TraceContractions = true;
    const int total = static_cast<int>(rings.faces.size());
    RunSums r;
    int out = 0;
    try {
        out = s.Reduce(static_cast<int>(total * keep + 0.5), g, false, nullptr, nullptr, geomOnly, false, false);
    } catch (const std::exception& e) {
        r.raised = e.what();
    }
    Hash t, o;
    for (const std::int32_t e : s.ContractionTrace) t.add(static_cast<std::uint64_t>(e));
    if (out != 0) {
        for (int poly : eng.group(out).polygons)
            for (int pt : eng.polygon(poly).points) {
                const double* v = eng.point(pt).v;
                for (int k = 0; k < 5; ++k) o.add(v[k]);
            }
        r.triangles = eng.group(out).polygons.size();
    }
    r.trace = t.h;
    r.output = o.h;
    r.contractions = s.ContractionTrace.size();
    return r;
}

// The whole bunny on every path gives the hashes simplify_cli --checksum gives for it
// (bench/simplify/checksums.sh: the bunny to 10%, and to 10% geometry only).
TEST(BatchCosting, TheWholeBunnyGivesTheSameChecksumsOnEveryPath) {
    const char* path = "/usr/share/glmark2/models/bunny.obj";
    if (!std::filesystem::exists(path)) GTEST_SKIP() << "glmark2-data not installed";
    MeshData mesh = triangulateFans(loadObj(path));
#ifdef SIMPLIFY_SLOW_BUILD
    mesh = firstFaces(mesh, 20000);
#endif
    for (MeshFace& f : mesh.faces) std::reverse(f.v.begin(), f.v.end()); // as the command line gives them
    struct Case {
        bool geomOnly;
        RunSums expected;
    };
    const Case cases[] = {
        {false, {0x6cfaaf80d82d5753ULL, 0xab4f1ed39202af03ULL, 31350, 6966, ""}},
        {true, {0xdb2c7d5cbf9d8652ULL, 0x09d140040b415cd2ULL, 31350, 6966, ""}},
    };
    for (const Case& c : cases) {
        const RunSums scalar = runBunny(mesh, Costing::Scalar, 0.1, c.geomOnly);
#ifndef SIMPLIFY_SLOW_BUILD
        EXPECT_EQ(scalar, c.expected) << (c.geomOnly ? "geometry only" : "");
#endif
        for (Costing p : batchedPaths())
            EXPECT_EQ(runBunny(mesh, p, 0.1, c.geomOnly), scalar) << name(p) << (c.geomOnly ? ", geometry only" : "");
    }
}

} // namespace
