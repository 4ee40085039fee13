// Extraction as whole arrays (SurfSimpli::WholeExtraction, the default) must make the model that
// AddTriangle one triangle at a time and the renumbering make: every record, list and bucket
// entry, the host calls, and what runs from it (contractions, output, restarts from the copy).
#include "EngineMeshes.h"
#include "Harness.h"
#include "MeshMaker.h"

#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <limits>

using namespace simplify_test;

namespace {

std::string compareLists(const char* what, int i, const std::vector<std::int32_t>& a, const std::vector<std::int32_t>& b) {
    if (a == b) return {};
    std::ostringstream d;
    d << what << " " << i << " (" << a.size() << " against " << b.size() << " entries)\n";
    return d.str();
}

// Every record, list and bucket entry of the two models, bit for bit.
std::string compareModels(const simplify::SurfSimpli& a, const simplify::SurfSimpli& b) {
    std::ostringstream d;
    if (a.PointCount() != b.PointCount() || a.EdgeCount() != b.EdgeCount() || a.TriCount() != b.TriCount()) {
        d << "counts: points " << a.PointCount() << "/" << b.PointCount() << ", edges " << a.EdgeCount() << "/"
          << b.EdgeCount() << ", triangles " << a.TriCount() << "/" << b.TriCount() << "\n";
        return d.str();
    }
    if (a.TriTotal() != b.TriTotal() || a.TriCurrent() != b.TriCurrent()) d << "triangle totals\n";
    for (int k = 0; k < 3; ++k)
        if (!sameBits(a.OctantCentre()[k], b.OctantCentre()[k])) d << "octant centre\n";
    for (int i = 0; i <= a.PointCount() && d.tellp() < 2000; ++i) {
        const simplify::SimpPoint P = a.Point(i), Q = b.Point(i);
        bool same = P.Valid == Q.Valid && sameBits(P.VertBrightness, Q.VertBrightness);
        for (int k = 0; k < 3; ++k)
            same = same && sameBits(P.Coords[k], Q.Coords[k]) && sameBits(P.VertNormal[k], Q.VertNormal[k]);
        for (std::size_t k = 0; k < P.Q.size(); ++k) same = same && sameBits(P.Q[k], Q.Q[k]);
        if (!same) d << "point " << i << " fields\n";
        d << compareLists("point triangles", i, P.AssTris, Q.AssTris) << compareLists("point edges", i, P.AssEdges, Q.AssEdges);
    }
    for (int i = 0; i <= a.EdgeCount() && d.tellp() < 2000; ++i) {
        const simplify::SimpEdge E = a.Edge(i), F = b.Edge(i);
        bool same = E.Valid == F.Valid && E.IsBorder == F.IsBorder && E.PtA == F.PtA && E.PtB == F.PtB && sameBits(E.Cost, F.Cost);
        for (int k = 0; k < 3; ++k) same = same && sameBits(E.NewCoords[k], F.NewCoords[k]);
        if (!same) d << "edge " << i << " fields (" << E.PtA << "-" << E.PtB << " against " << F.PtA << "-" << F.PtB << ")\n";
        d << compareLists("edge triangles", i, E.AssTris, F.AssTris);
    }
    for (int i = 0; i <= a.TriCount() && d.tellp() < 2000; ++i) {
        const simplify::SimpTri T = a.Tri(i), U = b.Tri(i);
        bool same = T.Valid == U.Valid && T.BitmapHandle == U.BitmapHandle && sameBits(T.TriBrightness, U.TriBrightness);
        for (int k = 0; k < 3; ++k)
            same = same && T.Pts[k] == U.Pts[k] && T.Edges[k] == U.Edges[k] && T.TriColor[k] == U.TriColor[k] &&
                   sameBits(T.TexUV[k][0], U.TexUV[k][0]) && sameBits(T.TexUV[k][1], U.TexUV[k][1]);
        for (int k = 0; k < 4; ++k) same = same && sameBits(T.Plane[k], U.Plane[k]);
        if (!same) d << "triangle " << i << " fields\n";
    }
    for (int o = 0; o < 8; ++o) {
        const auto &x = a.OctantBucket(o), &y = b.OctantBucket(o);
        bool same = x.size() == y.size();
        for (std::size_t i = 0; same && i < x.size(); ++i)
            same = x[i].Point == y[i].Point && sameBits(x[i].Coords[0], y[i].Coords[0]) &&
                   sameBits(x[i].Coords[1], y[i].Coords[1]) && sameBits(x[i].Coords[2], y[i].Coords[2]);
        if (!same) d << "octant bucket " << o << "\n";
    }
    return d.str();
}

// Two models of one group, one read as whole arrays, one triangle by triangle.
struct Both {
    MemoryEngine eng;
    int group = 0;
    simplify::SurfSimpli whole{&eng}, single{&eng};
    Recorder wholeCalls, singleCalls;
    Both(const MeshData& mesh, bool renumber) {
        group = eng.addMesh(mesh);
        single.WholeExtraction = false;
        whole.RenumberRecords = single.RenumberRecords = renumber;
        whole.Load(group, &wholeCalls, &wholeCalls);
        single.Load(group, &singleCalls, &singleCalls);
    }
    // The same series of runs on both: contractions, output and host calls.
    std::string run(const std::vector<Step>& steps) {
        std::string diff;
        for (const Step& st : steps) {
            StepResult a = runStep(whole, eng, group, st, [](simplify::SurfSimpli&, const std::vector<int>&) {});
            StepResult b = runStep(single, eng, group, st, [](simplify::SurfSimpli&, const std::vector<int>&) {});
            diff += compareResults(a, b);
            diff += compareModels(whole, single);
        }
        return diff;
    }
};

void expectSameModel(const MeshData& mesh, const char* name, bool reduce = true) {
    for (const bool renumber : {true, false}) {
        SCOPED_TRACE(std::string(name) + (renumber ? ", renumbered" : ", in the design's order"));
        Both b(mesh, renumber);
        EXPECT_EQ(compareModels(b.whole, b.single), "");
        EXPECT_EQ(b.wholeCalls.events, b.singleCalls.events);
        EXPECT_EQ(b.whole.TriCount(), static_cast<int>(mesh.faces.size()));
        if (!reduce) continue;
        const int n = static_cast<int>(mesh.faces.size());
        Step half, quarter, restart;
        half.target = n / 2;
        quarter.target = n / 4;
        quarter.forceRestart = false; // goes on from the last run
        restart.target = n * 3 / 5;   // from the copy for restarting
        restart.texSeams = restart.colorBorders = true;
        EXPECT_EQ(b.run({half, quarter, restart}), "");
    }
}

MeshData withFaces(MeshData mesh, const std::vector<std::vector<int>>& faces) {
    for (const auto& f : faces) {
        MeshFace face;
        face.v = f;
        mesh.faces.push_back(face);
    }
    return mesh;
}

int addVertex(MeshData& mesh, double x, double y, double z) {
    MeshVertex v;
    v.xyz[0] = x;
    v.xyz[1] = y;
    v.xyz[2] = z;
    v.uv[0] = x * 0.5;
    v.uv[1] = z;
    v.brightness = 50 + static_cast<double>(mesh.vertices.size() % 7);
    v.normal[2] = 1;
    mesh.vertices.push_back(v);
    return static_cast<int>(mesh.vertices.size()) - 1;
}

TEST(WholeExtraction, ClosedAndOpenMeshesGiveTheModelOfOneByOne) {
    expectSameModel(makeCube(6, 0.1, 2), "cube");
    expectSameModel(makeSphere(12, 16), "sphere");
    expectSameModel(makeTorus(10, 8, 0.1, 3), "torus");
    expectSameModel(makeGrid(9, 7, 0.2, 5), "open grid");
    expectSameModel(makeSeamGrid(8, 6, 0.1, 4), "texture seam");
    expectSameModel(makeColorGrid(8, 6, 0.1, 4), "colour regions");
    expectSameModel(makeBitmapGrid(8, 6, 0.1, 4), "bitmaps");
    expectSameModel(concat(makeCube(3), makeSphere(6, 8)), "two parts");
}

// Shared and repeated corners: equal positions from distinct vertices, a triangle with a corner
// twice or three times (an edge from a point to itself, a triangle listed twice by a point), the
// same triangle twice and turned round, fins (an edge of three or more triangles).
TEST(WholeExtraction, RepeatedCornersAndNonManifoldTrianglesGiveTheModelOfOneByOne) {
    expectSameModel(makeDuplicates(6, 3), "copies and near copies");
    expectSameModel(makeNonManifold(4, 2), "fins and bow ties");
    MeshData m = makeGrid(5, 4, 0.1, 7);
    const int a = addVertex(m, 0.25, 0.25, 3), b = addVertex(m, 1.25, 0.5, 3), c = addVertex(m, 0.5, 1.5, 3);
    const int a2 = addVertex(m, 0.25, 0.25, 3); // a again, by another vertex
    m = withFaces(m, {{a, b, c}, {a, a, b}, {b, a2, a}, {c, c, c}, {a2, b, c}, {c, b, a}, {0, 1, 1}, {a, b, 0}, {0, a, b}});
    expectSameModel(m, "repeated corners");
}

// -0.0 and 0.0 are one position (the bucket scan compares them equal); the point keeps the
// coordinates of its first corner, and the octant is that of the comparison with the centre.
TEST(WholeExtraction, NegativeZeroIsOnePointWithZero) {
    MeshData m;
    const double z = 0.0, nz = -0.0;
    const int p0 = addVertex(m, nz, 0, 0), p1 = addVertex(m, 1, z, 0), p2 = addVertex(m, 0, 1, nz);
    const int q0 = addVertex(m, z, nz, z), q1 = addVertex(m, 1, nz, nz), q2 = addVertex(m, nz, 1, z);
    const int r = addVertex(m, 1, 1, 0.5), s = addVertex(m, nz, nz, 1);
    m = withFaces(m, {{p0, p1, p2}, {q1, r, q2}, {q0, q1, s}, {p2, s, q0}, {r, p1, s}, {q2, r, s}});
    expectSameModel(m, "-0.0");
    Both b(m, true);
    EXPECT_EQ(b.whole.PointCount(), 5); // (0,0,0), (1,0,0), (0,1,0), (1,1,0.5), (0,0,1)
    EXPECT_TRUE(std::signbit(b.whole.PointCoords(1)[0])); // the first corner's -0.0
}

// A NaN coordinate never compares equal: each such corner makes a point of its own. Infinite
// ones are positions like any other (and lie outside the box of the Morton order).
TEST(WholeExtraction, CornersThatAreNotFiniteGiveTheModelOfOneByOne) {
    const double nan = std::numeric_limits<double>::quiet_NaN(), inf = std::numeric_limits<double>::infinity();
    MeshData m = makeGrid(4, 4, 0.1, 9);
    const int n1 = addVertex(m, nan, 0, 0), n2 = addVertex(m, nan, 0, 0), i1 = addVertex(m, inf, 1, 0);
    const int i2 = addVertex(m, inf, 1, 0), i3 = addVertex(m, -inf, 2, inf), x = addVertex(m, 0, nan, 1);
    m = withFaces(m, {{n1, 0, 1}, {n2, 1, 0}, {i1, 2, 3}, {i2, 3, 2}, {i3, 4, 5}, {x, n1, i1}, {x, x, 6}});
    // the reduction of such a mesh may raise (Overflow); both ways raise alike
    expectSameModel(m, "NaN and infinite corners");
    Both b(m, true);
    EXPECT_EQ(b.whole.PointCount(), 25 + 6 + 2); // the grid's, one per NaN corner, one per infinite position
}

// Rings of fewer than three points read point handle 0 (zeros) for the missing corners; a larger
// ring gives its first three. A group of one triangle, and one without polygons.
TEST(WholeExtraction, ShortRingsSmallAndEmptyGroupsGiveTheModelOfOneByOne) {
    MeshData m = makeGrid(3, 3, 0.1, 11);
    m = withFaces(m, {{0, 1}, {2}, {3, 4, 5, 6}});
    expectSameModel(m, "short and long rings");
    expectSameModel(makeOneTriangle(), "one triangle", false);
    expectSameModel(makeQuad(), "one quad", false);
    expectSameModel(MeshData{}, "no polygons", false);
}

// A model that is not fresh is read one by one even with WholeExtraction: triangles of a
// second group read on top of a first (no Reset between) and a group read after contractions
// of another (Reduce resets first).
TEST(WholeExtraction, AModelThatIsNotFreshIsReadOneByOne) {
    MemoryEngine eng;
    const int g1 = eng.addMesh(makeCube(3, 0.1, 1)), g2 = eng.addMesh(makeTorus(8, 6, 0.1, 2));
    simplify::SurfSimpli whole(&eng), single(&eng);
    single.WholeExtraction = false;
    for (simplify::SurfSimpli* s : {&whole, &single}) {
        s->Load(g1);
        s->ExtractTriangles(g2);
    }
    EXPECT_EQ(compareModels(whole, single), "");
    EXPECT_EQ(whole.TriCount(), static_cast<int>(eng.group(g1).polygons.size() + eng.group(g2).polygons.size()));
    for (simplify::SurfSimpli* s : {&whole, &single}) {
        s->ForceRestart = true;
        s->Reduce(40, g1, false, nullptr, nullptr, false, false, false);
        s->ForceRestart = true;
        s->Reduce(60, g2, false, nullptr, nullptr, false, false, false);
    }
    EXPECT_EQ(compareModels(whole, single), "");
}

// The copy for restarting shares the points' brightness and normals with the model until they
// change. A Reset clears them, so the copy takes its own first: a triangle added after it then
// reads nothing past the cleared arrays (the sanitizer build sees the reads), and a restore gives
// back as many points as the copy was made of.
TEST(WholeExtraction, TheCopyForRestartingOutlivesAReset) {
    MemoryEngine eng;
    const int g = eng.addMesh(makeCube(3, 0.1, 1));
    simplify::SurfSimpli kept(&eng), fresh(&eng);
    kept.Load(g);
    fresh.Load(g);
    kept.Reset();
    const double a[9] = {0, 0, 0, 0, 0, 90, 0, 0, 1}, b[9] = {1, 0, 0, 1, 0, 90, 0, 0, 1}, c[9] = {0, 1, 0, 0, 1, 90, 0, 0, 1};
    const double plane[4] = {0, 0, -1, 0};
    const int color[3] = {1, 2, 3};
    kept.AddTriangle(a, b, c, plane, 0, 90, color);
    EXPECT_EQ(kept.PointCount(), 3);
    kept.RestoreGeomFromCopy();
    EXPECT_EQ(kept.PointCount(), fresh.PointCount());
}

// libzelmar3's batch read (its bulk operations) gives the model its single calls give: rings of
// every length, batches of 256 and a last short one, brightness, normals, colours, seams.
TEST(WholeExtraction, TheEnginesBulkReadsGiveWhatItsSingleCallsGive) {
    ZELMAR_engine_close();
    MeshData m = makeSeamGrid(16, 12, 0.3, 4); // 384 triangles
    for (std::size_t i = 0; i < m.vertices.size(); ++i) {
        m.vertices[i].brightness = 30.0 + static_cast<double>(i % 11);
        m.vertices[i].normal[i % 3] = 0.5 + static_cast<double>(i % 5);
    }
    m = withFaces(m, {{0, 1}, {2}, {3, 4, 5, 6}, {7, 8, 9, 10, 11}});
    const int g = toEngine(m);
    simplify::ZelmarSimplifyEngine bulk, single;
    single.BulkReads = false;
    simplify::SurfSimpli a(&bulk), b(&single);
    a.Load(g);
    b.Load(g);
    EXPECT_EQ(a.TriCount(), static_cast<int>(m.faces.size()));
    EXPECT_EQ(compareModels(a, b), "");
    ZELMAR_engine_close();
}

TEST(WholeExtraction, TheBunnyGivesTheModelOfOneByOne) {
    const char* bunny = "/usr/share/glmark2/models/bunny.obj";
    if (!std::filesystem::exists(bunny)) GTEST_SKIP() << "no bunny installed";
    const MeshData mesh = triangulateFans(loadObj(bunny));
    Both b(mesh, true);
    EXPECT_EQ(compareModels(b.whole, b.single), "");
    EXPECT_EQ(b.wholeCalls.events, b.singleCalls.events);
    // the model stays within its memory target with the scratch arrays of the extraction counted
    EXPECT_LE(b.whole.PeakMemoryBytes(), std::size_t{50} << 20);
    Step tenth;
    tenth.target = static_cast<int>(mesh.faces.size()) / 10;
    EXPECT_EQ(b.run({tenth}), "");
}

} // namespace
