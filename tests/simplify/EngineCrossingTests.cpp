// the simplification output through the real engine (libzelmar3): the group is read with the ZELMAR_* polygon and
// point calls, a triangulated copy made by ZELMAR_group_create_copy_made_of_triangles, and the
// output written back as a new group. The same mesh through the in-memory engine gives the same
// model and, as the in-memory engine computes planes and centres with libzelmar3's arithmetic,
// the same contractions and bit-identical output on the corpus. The engine's reducing
// operations run the simplifier once it is installed as their reducer.
#include "EngineMeshes.h"
#include "Harness.h"
#include "MeshMaker.h"
#include "simplify/EngineReducer.h"

#include <zelmar/zelmar.h>

#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>

using namespace simplify_test;

namespace {

class EngineCrossing : public ::testing::Test {
protected:
    void SetUp() override { ZELMAR_engine_close(); }
    void TearDown() override { ZELMAR_engine_close(); }

    static bool engineIsReal() { return ZELMAR_group_create("probe") != 0; }

};

TEST_F(EngineCrossing, ExtractionReadsWhatTheInMemoryEngineGives) {
    if (!engineIsReal()) GTEST_SKIP() << "engine operations are not real yet";
    const MeshData mesh = makeSeamGrid(4, 3, 0.3, 5);
    const int g = toEngine(mesh);
    simplify::SurfSimpli viaEngine; // libzelmar3
    viaEngine.ForceRestart = true;
    viaEngine.Reduce(1000, g, false, nullptr, nullptr, false, false, false);
    MemoryEngine mem;
    simplify::SurfSimpli viaMemory(&mem);
    viaMemory.ForceRestart = true;
    viaMemory.Reduce(1000, mem.addMesh(mesh), false, nullptr, nullptr, false, false, false);
    ASSERT_EQ(viaEngine.TriCount(), static_cast<int>(mesh.faces.size()));
    ASSERT_EQ(viaEngine.PointCount(), viaMemory.PointCount());
    ASSERT_EQ(viaEngine.EdgeCount(), viaMemory.EdgeCount());
    for (int k = 0; k < 3; ++k) EXPECT_DOUBLE_EQ(viaEngine.OctantCentre()[k], viaMemory.OctantCentre()[k]);
    for (int t = 1; t <= viaEngine.TriCount(); ++t) {
        const simplify::SimpTri &a = viaEngine.Tri(t), &b = viaMemory.Tri(t);
        for (int k = 0; k < 3; ++k) {
            EXPECT_EQ(a.Pts[k], b.Pts[k]);
            EXPECT_EQ(a.TexUV[k][0], b.TexUV[k][0]);
            EXPECT_EQ(a.TexUV[k][1], b.TexUV[k][1]);
            EXPECT_EQ(a.TriColor[k], b.TriColor[k]);
        }
        EXPECT_EQ(a.TriBrightness, b.TriBrightness); // the third corner's
        EXPECT_NEAR(std::fabs(a.Plane[2]), std::fabs(b.Plane[2]), 1e-9);
    }
    for (int p = 1; p <= viaEngine.PointCount(); ++p) {
        EXPECT_EQ(viaEngine.Point(p).VertBrightness, viaMemory.Point(p).VertBrightness);
        for (int k = 0; k < 3; ++k) EXPECT_EQ(viaEngine.Point(p).Coords[k], viaMemory.Point(p).Coords[k]);
    }
}

// The simplifier's flip test turns PlaneFromPoints over to compare it with the engine's planes: a ring
// that runs counter-clockwise about +z must have its engine plane pointing down, or every contraction
// of a group read from the engine would look like a flip (the next test reduces one).
TEST_F(EngineCrossing, EnginePlanesPointOppositeToPlaneFromPoints) {
    if (!engineIsReal()) GTEST_SKIP() << "engine operations are not real yet";
    const int g = ZELMAR_group_create("orientation");
    const int p = ZELMAR_polygon_create();
    const double a[6] = {0, 0, 0, 0, 0, 100}, b[6] = {1, 0, 0, 0, 0, 100}, c[6] = {0, 1, 0, 0, 0, 100};
    ZELMAR_polygon_add_point(p, a);
    ZELMAR_polygon_add_point(p, b);
    ZELMAR_polygon_add_point(p, c);
    ZELMAR_polygon_set_group(p, g);
    double plane[4] = {0, 0, 0, 0};
    ZELMAR_polygon_get_plane(p, plane);
    EXPECT_DOUBLE_EQ(plane[2], -1.0);
}

TEST_F(EngineCrossing, ReduceWritesANewGroupOfTheValidTriangles) {
    if (!engineIsReal()) GTEST_SKIP() << "engine operations are not real yet";
    const MeshData mesh = makeColorGrid(6, 6, 0.4, 3);
    const int g = toEngine(mesh);
    double location[3];
    ZELMAR_group_get_location(g, location);
    simplify::SurfSimpli s;
    s.ForceRestart = true;
    const int out = s.Reduce(30, g, false, nullptr, nullptr, false, false, true);
    ASSERT_NE(out, 0);
    EXPECT_EQ(s.TriCurrent(), 30);
    EXPECT_STREQ(ZELMAR_group_get_name(out), "Simplified_version");
    EXPECT_EQ(ZELMAR_group_get_number_of_polygons(out), s.TriCurrent());
    double ref[3];
    ZELMAR_group_get_rotate_reference_point(out, ref);
    for (int k = 0; k < 3; ++k) EXPECT_DOUBLE_EQ(ref[k], location[k]);
    // every output polygon: three points from the model, the colour of its triangle
    double c1[9], c2[9], c3[9], brightness;
    int bitmap, color[3];
    bool more = s.GetFirstTriangle(c1, c2, c3, bitmap, brightness, color);
    for (int p = ZELMAR_group_get_first_polygon(out); p != 0; p = ZELMAR_group_get_next_polygon(p)) {
        ASSERT_TRUE(more);
        int n = 0;
        for (int pt = ZELMAR_polygon_get_first_point(p); pt != 0; pt = ZELMAR_point_get_next_point(pt)) ++n;
        EXPECT_EQ(n, 3);
        double xyz[3];
        ZELMAR_point_get_xyz(ZELMAR_polygon_get_first_point(p), xyz);
        EXPECT_EQ(xyz[0], c1[0]);
        EXPECT_EQ(xyz[2], c1[2]);
        int rgb[3];
        ZELMAR_polygon_get_color(p, rgb);
        EXPECT_EQ(rgb[0], color[0]);
        EXPECT_EQ(ZELMAR_polygon_get_brightness(p), std::nearbyint(brightness));
        more = s.GetNextTriangle(c1, c2, c3, bitmap, brightness, color);
    }
    EXPECT_FALSE(more);
    // a continued run writes another new group
    const int out2 = s.Reduce(20, g, false, nullptr, nullptr, false, false, true);
    EXPECT_NE(out2, out);
    EXPECT_EQ(ZELMAR_group_get_number_of_polygons(out2), s.TriCurrent());
    EXPECT_LE(s.TriCurrent(), 20); // a contraction inside the mesh takes two triangles at once
    EXPECT_GE(s.TriCurrent(), 19);
}

TEST_F(EngineCrossing, TriangulatedCopyThenReduceAndAFourPointPolygonsFirstThree) {
    if (!engineIsReal()) GTEST_SKIP() << "engine operations are not real yet";
    // quads: read directly, each gives its first three points only
    MeshData quads;
    for (int j = 0; j <= 3; ++j)
        for (int i = 0; i <= 3; ++i) {
            MeshVertex v;
            v.xyz[0] = i;
            v.xyz[1] = j;
            v.xyz[2] = 0.1 * ((i * 7 + j * 3) % 5);
            quads.vertices.push_back(v);
        }
    for (int j = 0; j < 3; ++j)
        for (int i = 0; i < 3; ++i) {
            MeshFace f;
            f.v = {j * 4 + i, j * 4 + i + 1, (j + 1) * 4 + i + 1, (j + 1) * 4 + i};
            quads.faces.push_back(f);
        }
    const int g = toEngine(quads);
    simplify::SurfSimpli direct;
    direct.ForceRestart = true;
    direct.Reduce(1000, g, false, nullptr, nullptr, false, false, false);
    EXPECT_EQ(direct.TriCount(), 9);
    EXPECT_EQ(direct.PointCount(), 15); // the fourth corner of the last quad is never read
    // the workbench's way: a triangulated copy first
    const int tri = ZELMAR_group_create_copy_made_of_triangles(g, "triangulated");
    ASSERT_NE(tri, 0);
    ASSERT_EQ(ZELMAR_group_get_number_of_polygons(tri), 18);
    simplify::SurfSimpli s;
    s.ForceRestart = true;
    const int out = s.Reduce(9, tri, false, nullptr, nullptr, false, false, false);
    EXPECT_EQ(s.TriTotal(), 18);
    EXPECT_EQ(ZELMAR_group_get_number_of_polygons(out), s.TriCurrent());
    EXPECT_LE(s.TriCurrent(), 9);
}

TEST_F(EngineCrossing, EmptyGroupAndSavedOutput) {
    if (!engineIsReal()) GTEST_SKIP() << "engine operations are not real yet";
    const int empty = ZELMAR_group_create("empty");
    simplify::SurfSimpli s;
    s.ForceRestart = true;
    const int out = s.Reduce(0, empty, false, nullptr, nullptr, false, false, false);
    EXPECT_EQ(ZELMAR_group_get_number_of_polygons(out), 0);
    EXPECT_EQ(s.GetFirstValidTri(), 0);
    // the output of a real reduction saves as a world and loads back
    const int g = toEngine(makeSphere(6, 8));
    simplify::SurfSimpli r;
    r.ForceRestart = true;
    const int reduced = r.Reduce(40, g, false, nullptr, nullptr, false, false, false);
    const std::string file = (std::filesystem::temp_directory_path() / "simplify_engine_test.wld").string();
    if (ZELMAR_engine_save(file.c_str(), reduced, 0x0001) != 1) GTEST_SKIP() << ZELMAR_engine_get_last_error();
    ZELMAR_engine_close();
    ASSERT_EQ(ZELMAR_engine_load_world(file.c_str(), "", "", 4), 1) << ZELMAR_engine_get_last_error();
    int polygons = 0;
    for (int p = ZELMAR_polygon_get_first_polygon(); p != 0; p = ZELMAR_polygon_get_next(p)) ++polygons;
    EXPECT_EQ(polygons, r.TriCurrent());
    std::filesystem::remove(file);
}



// One simplifier, two crossings: the same rings through libzelmar3 and through the in-memory
// engine give the same extraction (planes and centre to the bit), the same contractions and
// the same output, over the corpus, option sets, continued runs and a restart.
TEST_F(EngineCrossing, TheEngineAndTheInMemoryPathAgreeOnTheCorpus) {
    if (!engineIsReal()) GTEST_SKIP() << "engine operations are not real yet";
    std::vector<MeshData> corpus = {makeCube(3, 0.3, 7),   makeGrid(7, 6, 0.5, 3),        makeSphere(6, 8),
                                    makeTorus(8, 6, 0.1, 5), makeSeamGrid(6, 5, 0.4, 11), makeColorGrid(6, 6, 0.4, 13),
                                    makeNonManifold(5, 19), makeDuplicates(6, 23)};
    const char* regr = "/usr/share/assimp/models/OBJ/regr01.obj"; // open: the two paths once differed here
    if (std::filesystem::exists(regr)) corpus.push_back(triangulateFans(loadMesh(regr)));
    for (MeshData& mesh : corpus) {
        SCOPED_TRACE(mesh.name);
        for (MeshFace& f : mesh.faces) f.bitmap = 0; // toEngine makes no bitmaps
        ZELMAR_engine_close();
        const int g = toEngine(mesh);
        MemoryEngine mem;
        const int mg = mem.addMesh(mesh);
        for (int combo : {0, 2, 1 | 8, 4}) {
            SCOPED_TRACE(combo);
            simplify::SurfSimpli viaEngine, viaMemory(&mem);
            for (simplify::SurfSimpli* s : {&viaEngine, &viaMemory}) {
                s->TraceContractions = true;
                if (combo & 4) s->SetSelectedPts({2, 9});
            }
            const int total = static_cast<int>(mesh.faces.size());
            for (const int target : {total / 2, total / 10, total / 3}) { // deeper, then a restart
                for (simplify::SurfSimpli* s : {&viaEngine, &viaMemory}) s->ForceRestart = target == total / 2;
                std::vector<OutputTri> a, b;
                bool threwA = false, threwB = false;
                try {
                    a = readEngineOutput(viaEngine.Reduce(target, g, combo & 1, nullptr, nullptr, combo & 2, combo & 4, combo & 8));
                } catch (const vexil::VexilError&) {
                    threwA = true;
                }
                try {
                    b = readOutput(mem, viaMemory.Reduce(target, mg, combo & 1, nullptr, nullptr, combo & 2, combo & 4, combo & 8));
                } catch (const vexil::VexilError&) {
                    threwB = true;
                }
                ASSERT_EQ(threwA, threwB);
                ASSERT_EQ(viaEngine.ContractionTrace, viaMemory.ContractionTrace) << "target " << target;
                StepResult x, y;
                x.output = a;
                y.output = b;
                const std::string diff = compareResults(x, y);
                ASSERT_EQ(diff, "") << "target " << target;
                if (threwA) break;
            }
            for (int k = 0; k < 3; ++k) EXPECT_EQ(viaEngine.OctantCentre()[k], viaMemory.OctantCentre()[k]);
        }
    }
}

// The reducing operations of the engine: nothing without a reducer; with the simplifier
// installed, a reduced copy, a reduction in place group by group, and the zero-error pass over
// the world.
TEST_F(EngineCrossing, ReducingOperationsRunTheInstalledSimplifier) {
    if (!engineIsReal()) GTEST_SKIP() << "engine operations are not real yet";
    ZELMAR_engine_set_reducer(nullptr, nullptr);
    const int sphere = toEngine(makeSphere(8, 10)); // 160 triangles
    const int total = ZELMAR_group_get_number_of_polygons(sphere);
    EXPECT_EQ(ZELMAR_group_create_reduced_copy(sphere, "half", 50.0), 0);
    EXPECT_NE(std::string(ZELMAR_engine_get_last_error()).find("no reducer"), std::string::npos);
    EXPECT_EQ(ZELMAR_group_reduce_polygons_count(sphere, 50.0), 0);
    EXPECT_EQ(ZELMAR_engine_reduce_polygons_count(), 0);
    EXPECT_EQ(ZELMAR_group_get_number_of_polygons(sphere), total);

    simplify::InstallEngineReducer();
    const int father = ZELMAR_group_create("father");
    ZELMAR_group_set_father_group(sphere, father);
    const int copy = ZELMAR_group_create_reduced_copy(sphere, "half", 50.0);
    ASSERT_NE(copy, 0) << ZELMAR_engine_get_last_error();
    EXPECT_STREQ(ZELMAR_group_get_name(copy), "half");
    EXPECT_EQ(ZELMAR_group_get_father_group(copy), father);
    const int kept = ZELMAR_group_get_number_of_polygons(copy);
    EXPECT_LE(kept, total / 2);
    EXPECT_GE(kept, total / 2 - 1);
    EXPECT_EQ(ZELMAR_group_get_number_of_polygons(sphere), total); // the source stays
    // the same triangles as the simplifier gives on a triangulated copy
    simplify::SurfSimpli s;
    s.ForceRestart = true;
    const int tri = ZELMAR_group_create_copy_made_of_triangles(sphere, "t");
    const std::vector<OutputTri> direct = readEngineOutput(s.Reduce(total / 2, tri, false, nullptr, nullptr, false, false, false));
    StepResult x, y;
    x.output = readEngineOutput(copy);
    y.output = direct;
    EXPECT_EQ(compareResults(x, y), "");
    // bad arguments change nothing
    EXPECT_EQ(ZELMAR_group_create_reduced_copy(sphere, "x", 101.0), 0);
    EXPECT_EQ(ZELMAR_group_create_reduced_copy(sphere, "x", std::nan("")), 0);
    EXPECT_EQ(ZELMAR_group_create_reduced_copy(sphere, nullptr, 10.0), 0);
    EXPECT_EQ(ZELMAR_group_reduce_polygons_count(123456789, 10.0), 0);
    EXPECT_EQ(ZELMAR_group_reduce_polygons_count(sphere, -1.0), 0);

    // in place, each group of the subtree on its own polygons; the handle stays
    const int child = toEngine(makeTorus(8, 6, 0.1, 5)); // 96 triangles
    ZELMAR_group_set_father_group(child, sphere);
    ASSERT_EQ(ZELMAR_group_reduce_polygons_count(sphere, 75.0), 1) << ZELMAR_engine_get_last_error();
    EXPECT_TRUE(ZELMAR_group_is_group(sphere));
    int own = 0;
    for (int p = ZELMAR_group_get_first_polygon(sphere); p != 0; p = ZELMAR_group_get_next_polygon(p))
        if (ZELMAR_polygon_get_group(p) == sphere) ++own;
    EXPECT_LE(own, total / 4);
    EXPECT_GE(own, total / 4 - 1);
    EXPECT_LE(ZELMAR_group_get_number_of_polygons(child), 24);
    EXPECT_GE(ZELMAR_group_get_number_of_polygons(child), 23);

    // the zero-error pass over the world: a flat grid loses its inner points, nothing else moves
    ZELMAR_engine_close();
    simplify::InstallEngineReducer();
    const int flat = toEngine(makeGrid(6, 6)); // 72 triangles on z = 0
    const int removed = ZELMAR_engine_reduce_polygons_count();
    EXPECT_GT(removed, 0) << ZELMAR_engine_get_last_error();
    EXPECT_EQ(ZELMAR_group_get_number_of_polygons(flat), 72 - removed);
    for (int p = ZELMAR_group_get_first_polygon(flat); p != 0; p = ZELMAR_group_get_next_polygon(p))
        for (int pt = ZELMAR_polygon_get_first_point(p); pt != 0; pt = ZELMAR_point_get_next_point(pt)) {
            double xyz[3];
            ZELMAR_point_get_xyz(pt, xyz);
            EXPECT_EQ(xyz[2], 0.0);
        }
    // a failure of the simplifier (an open part of the bunny whose border penalty divides by
    // zero on the way to 10%) leaves the group as it was
    const char* bunny = "/usr/share/glmark2/models/bunny.obj";
    if (std::filesystem::exists(bunny)) {
        ZELMAR_engine_close();
        simplify::InstallEngineReducer();
        const int open = toEngine(firstFaces(loadObj(bunny), 2500));
        EXPECT_EQ(ZELMAR_group_reduce_polygons_count(open, 90.0), 0);
        EXPECT_NE(std::string(ZELMAR_engine_get_last_error()).find("the reduction failed"), std::string::npos);
        EXPECT_EQ(ZELMAR_group_get_number_of_polygons(open), 2500);
        EXPECT_EQ(ZELMAR_group_create_reduced_copy(open, "x", 90.0), 0);
        int groups = 0;
        for (int g = ZELMAR_group_get_first_group(); g != 0; g = ZELMAR_group_get_next(g)) ++groups;
        EXPECT_EQ(groups, 1); // nothing left behind
    }
    ZELMAR_engine_set_reducer(nullptr, nullptr);
}

} // namespace
