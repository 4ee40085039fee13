// the simplification output through the real engine (libzelmar3): the group is read with the ZELMAR_* polygon and
// point calls, a triangulated copy made by ZELMAR_group_create_copy_made_of_triangles, and the
// output written back as a new group. The same mesh through the in-memory engine gives the same
// model (but for the planes, which each engine computes its own way).
#include "Harness.h"
#include "MeshMaker.h"

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

    // The mesh as an engine group.
    static int toEngine(const MeshData& m) {
        const int g = ZELMAR_group_create("source");
        for (const MeshFace& f : m.faces) {
            const int p = ZELMAR_polygon_create();
            for (int vi : f.v) {
                const MeshVertex& v = m.vertices[static_cast<std::size_t>(vi)];
                const double vx[6] = {v.xyz[0], v.xyz[1], v.xyz[2], v.uv[0], v.uv[1], v.brightness};
                const int pt = ZELMAR_polygon_add_point(p, vx);
                ZELMAR_point_set_normal(pt, v.normal);
            }
            ZELMAR_polygon_set_group(p, g);
            ZELMAR_engine_add_polygon(p);
            ZELMAR_polygon_set_color_fill(p, f.color[0], f.color[1], f.color[2]);
            ZELMAR_polygon_set_brightness(p, f.brightness);
        }
        return g;
    }
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

} // namespace
