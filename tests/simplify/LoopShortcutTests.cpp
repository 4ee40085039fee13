// Shortcuts of the contraction loop that the checksums and the corpus against the reference do
// not reach on their own: the 4-lane quadric sums against the plain ones (the machine that runs
// the tests takes the wide path), the refusal cache with heap refills under seams, colours,
// bitmaps and locked points, and a contraction made outside the loop, where the planes of the
// flip test must not be taken.
#include "Harness.h"
#include "MeshMaker.h"

#include <gtest/gtest.h>

#include <filesystem>

using namespace simplify_test;

namespace {

// Two production models on the same mesh, set up differently, through the same steps.
struct ProdPair {
    MemoryEngine e1, e2;
    int g1 = 0, g2 = 0;
    simplify::SurfSimpli a, b;
    explicit ProdPair(const MeshData& mesh) : a(&e1), b(&e2) {
        g1 = e1.addMesh(mesh);
        g2 = e2.addMesh(mesh);
    }
    std::string step(const Step& st, StepResult* out = nullptr) {
        auto sel = [](simplify::SurfSimpli& s, const std::vector<int>& p) {
            s.SetSelectedPts(std::vector<std::int32_t>(p.begin(), p.end()));
        };
        StepResult x = runStep(a, e1, g1, st, sel), y = runStep(b, e2, g2, st, sel);
        for (auto [r, s] : {std::pair{&x, &a}, std::pair{&y, &b}}) {
            r->triCurrent = s->TriCurrent();
            r->minEdge = s->MinEdge();
            r->minCost = s->MinCost();
        }
        if (out) *out = x;
        std::string d = compareResults(x, y);
        if (d.empty()) d = samePoints();
        return d;
    }
    // Positions and quadrics of the valid points, bit for bit.
    std::string samePoints() const {
        if (a.PointCount() != b.PointCount()) return "point counts differ\n";
        for (int i = 1; i <= a.PointCount(); ++i) {
            if (a.PointValid(i) != b.PointValid(i)) return "validity of point " + std::to_string(i) + " differs\n";
            if (!a.PointValid(i)) continue;
            const simplify::SimpPoint p = a.Point(i), q = b.Point(i);
            for (int k = 0; k < 3; ++k)
                if (!sameBits(p.Coords[k], q.Coords[k])) return "position of point " + std::to_string(i) + " differs\n";
            for (std::size_t k = 0; k < p.Q.size(); ++k)
                if (!sameBits(p.Q[k], q.Q[k])) return "quadric of point " + std::to_string(i) + " differs\n";
        }
        return "";
    }
};

struct Case {
    std::string name;
    MeshData mesh;
    Step st;
};

// Meshes large enough for the heap to hold only part of the edges (its limit, refills) and with
// every kind of border, each with the options that make those borders count.
std::vector<Case> largeCases() {
    std::vector<Case> c;
    Step seams;
    seams.texSeams = true;
    seams.setSelected = true;
    seams.lock = true;
    seams.selected = {3, 40, 400, 1200};
    c.push_back({"seams", makeSeamGrid(60, 50, 0.4, 11), seams});
    Step colours;
    colours.colorBorders = true;
    c.push_back({"colours", makeColorGrid(55, 55, 0.5, 13), colours});
    Step plain;
    c.push_back({"bitmaps", makeBitmapGrid(55, 50, 0.4, 17), plain});
    Step geom;
    geom.geomOnly = true;
    geom.setSelected = true;
    geom.selected = {7, 77, 777};
    c.push_back({"torus_geometry_only_selected", makeTorus(70, 40, 0.2, 5), geom});
    c.push_back({"nonmanifold", makeNonManifold(30, 19), plain});
    return c;
}

// A restart to half, then on by continued runs to a tenth and to nothing, then a zero-error run
// from the copy.
void runSeries(ProdPair& run, const Case& c) {
    const int total = static_cast<int>(c.mesh.faces.size());
    Step st = c.st;
    st.forceRestart = true;
    st.target = total / 2;
    StepResult r;
    ASSERT_EQ(run.step(st, &r), "") << "to half";
    EXPECT_GT(r.trace.size(), static_cast<std::size_t>(total / 8));
    st.forceRestart = false;
    for (int target : {total / 10, 0}) {
        st.target = target;
        ASSERT_EQ(run.step(st), "") << "to " << target;
    }
    st.forceRestart = true;
    st.zeroError = true;
    st.target = 0;
    ASSERT_EQ(run.step(st), "") << "zero error";
}

TEST(LoopShortcuts, WideAndPlainQuadricSumsGiveTheSameBits) {
    for (const Case& c : largeCases()) {
        SCOPED_TRACE(c.name);
        ProdPair run(c.mesh);
        run.b.WideSums = false;
        runSeries(run, c);
    }
}

TEST(LoopShortcuts, RefusalCacheWithHeapRefillsAndBorders) {
    for (const Case& c : largeCases()) {
        SCOPED_TRACE(c.name);
        ProdPair run(c.mesh);
        run.b.CacheRefusals = false;
        runSeries(run, c);
        EXPECT_GT(run.a.HeapFills, 1) << "the heap held every edge: the limit was not exercised";
        EXPECT_LT(run.a.CandidateCount, run.b.CandidateCount) << "no refusal was parked";
        EXPECT_EQ(run.a.CachedRefusals, 0); // a parked edge never comes up in the heap
    }
}

// The whole bunny with plain sums against the default (wide where the processor has them).
TEST(LoopShortcuts, WholeBunnyPlainSums) {
    const char* path = "/usr/share/glmark2/models/bunny.obj";
    if (!std::filesystem::exists(path)) GTEST_SKIP() << "glmark2-data not installed";
    const MeshData mesh = loadObj(path);
    ProdPair run(mesh);
    run.b.WideSums = false;
    Step st;
    st.target = static_cast<int>(mesh.faces.size()) / 10;
    ASSERT_EQ(run.step(st), "");
}

// ContractEdge called by itself (not by the loop right after its selection) computes its
// planes from the positions: here after a run whose last selection was then placed elsewhere by
// hand, so the flip test's planes of that edge no longer fit; it agrees with the reference.
TEST(LoopShortcuts, ContractionOutsideTheLoopComputesItsPlanes) {
    for (const MeshData& mesh : {makeCube(4, 0.3, 7), makeSeamGrid(8, 7, 0.4, 11), makeTorus(10, 8, 0.1, 5)}) {
        PairRun run(mesh);
        const int total = static_cast<int>(mesh.faces.size());
        Step st;
        st.texSeams = true;
        st.target = total * 3 / 4;
        for (int i = 0; i < 4; ++i) {
            ASSERT_EQ(run.step(st), "") << "run " << i;
            const int edge = run.prod.MinEdge();
            ASSERT_EQ(edge, run.ref.MinEdge);
            ASSERT_GT(edge, 0);
            if (i % 2 == 1) { // moved: a placement at an end, as the fallback makes it
                run.prod.PlaceAtBetterEnd(edge);
                run.ref.PlaceAtBetterEnd(edge);
            }
            EXPECT_EQ(run.prod.ContractEdge(), run.ref.ContractEdge());
            ASSERT_EQ(compareModels(run.prod, run.ref), "") << "contraction by hand " << i;
            st.forceRestart = false;
            st.target -= 6;
        }
    }
}

} // namespace
