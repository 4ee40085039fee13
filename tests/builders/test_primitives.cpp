// The primitive builders: names, faces that look outward, normals, texture coordinates, the side limit.
#include "GeomTestSupport.h"
#include "frame/Dialogs.h"
#include "builders/CreateNewObject.h"
#include "builders/Primitives.h"

using namespace vexil;
using namespace vexil::test;

namespace {

class Primitives : public ::testing::Test {
  protected:
    void SetUp() override {
        ZELMAR_engine_close();
        root = ZELMAR_group_create("the_world");
    }
    void TearDown() override { ZELMAR_engine_close(); }

    // Every face's plane normal points away from `centre` (the face's own centre lies in front), and every
    // corner normal is unit and on the outer side of its face.
    void expectOutward(int group, const V3& centre, double tolerance = 1e-9) {
        const auto pols = polygonsOf(group);
        ASSERT_FALSE(pols.empty());
        for (int p : pols) {
            double plane[4];
            ZELMAR_polygon_get_plane(p, plane);
            V3 n{plane[0], plane[1], plane[2]}, c{};
            ZELMAR_polygon_get_center(p, c.data());
            ASSERT_NEAR(dot(n, n), 1.0, 1e-9) << nameOf(p) << " has no area";
            EXPECT_GT(dot(n, sub(c, centre)), tolerance) << nameOf(p) << " faces inward";
            for (int pt : pointsOf(p)) {
                V3 pn{};
                ZELMAR_point_get_normal(pt, pn.data());
                EXPECT_NEAR(dot(pn, pn), 1.0, 1e-9);
                EXPECT_GT(dot(pn, n), 0.0) << nameOf(p) << ": corner normal on the wrong side";
            }
        }
    }
    int root = 0;
};

TEST_F(Primitives, BoxIsNamedHasOutwardFacesAndTexturesSpanningEachFace) {
    const int box = CreateBox().Create(40, 60, 80, 2, 3, 4, {10, 20, 30}, root);
    ASSERT_NE(box, 0);
    EXPECT_EQ(nameOf(box), "Box01");
    EXPECT_EQ(ZELMAR_group_get_father_group(box), root);
    const auto pols = polygonsOf(box);
    ASSERT_EQ(pols.size(), size_t(2 * (2 * 3 + 2 * 4 + 3 * 4)));
    EXPECT_EQ(nameOf(pols.front()), "Box01_Face01");
    EXPECT_EQ(nameOf(pols.back()), "Box01_Face52");
    expectOutward(box, {10, 20, 30});

    double bb[6];
    ZELMAR_group_get_bounding_box(box, bb);
    const double want[6] = {-10, -10, -10, 30, 50, 70};
    for (int i = 0; i < 6; ++i)
        EXPECT_NEAR(bb[i], want[i], 1e-9);

    // Per face (polygons sharing a plane), u and v each run exactly from 0 to 1.
    struct Span {
        double lo[2] = {1e9, 1e9}, hi[2] = {-1e9, -1e9};
    };
    std::map<std::array<long, 4>, Span> faces;
    for (int p : pols) {
        double plane[4];
        ZELMAR_polygon_get_plane(p, plane);
        const std::array<long, 4> key{std::lround(plane[0]), std::lround(plane[1]), std::lround(plane[2]),
                                      std::lround(plane[3])};
        Span& s = faces[key];
        for (int pt : pointsOf(p)) {
            double uv[2];
            ZELMAR_point_get_bitmap_xy(pt, uv);
            for (int k = 0; k < 2; ++k) {
                s.lo[k] = std::min(s.lo[k], uv[k]);
                s.hi[k] = std::max(s.hi[k], uv[k]);
            }
        }
    }
    ASSERT_EQ(faces.size(), 6u);
    for (const auto& [key, s] : faces)
        for (int k = 0; k < 2; ++k) {
            EXPECT_NEAR(s.lo[k], 0.0, 1e-12);
            EXPECT_NEAR(s.hi[k], 1.0, 1e-12);
        }
}

TEST_F(Primitives, SecondBoxTakesTheNextFreeNameAndFacesFollowTheirGroup) {
    const int a = CreateBox().Create(10, 10, 10, 1, 1, 1, {0, 0, 0}, root);
    const int b = CreateBox().Create(10, 10, 10, 1, 1, 1, {0, 0, 0}, root);
    EXPECT_EQ(nameOf(a), "Box01");
    EXPECT_EQ(nameOf(b), "Box02");
    EXPECT_EQ(nameOf(polygonsOf(b)[3]), "Box02_Face04");
    // A gap left by a renamed group is filled first.
    ZELMAR_group_set_name(a, "Crate");
    EXPECT_EQ(nameOf(CreateBox().Create(10, 10, 10, 1, 1, 1, {0, 0, 0}, root)), "Box01");
    EXPECT_EQ(nameOf(CreatePlane().Create(10, 10, 1, 1, {0, 0, 0}, root)), "Plane01");
}

TEST_F(Primitives, PlaneFacesUpWithAGridOfCells) {
    const int plane = CreatePlane().Create(100, 50, 4, 2, {0, 0, 5}, root);
    const auto pols = polygonsOf(plane);
    ASSERT_EQ(pols.size(), 8u);
    for (int p : pols) {
        double pl[4];
        ZELMAR_polygon_get_plane(p, pl);
        EXPECT_NEAR(pl[2], 1.0, 1e-12);
        EXPECT_EQ(pointsOf(p).size(), 4u);
        EXPECT_NEAR(xyz(pointsOf(p)[0])[2], 5.0, 1e-12);
    }
    expectOutward(plane, {0, 0, 0});
}

TEST_F(Primitives, CylinderSidesCapsAndTheHundredSideLimit) {
    ScriptedDialogs dialogs;
    const int cyl = CreateCylinder().Create(30, 60, 12, 3, {0, 0, 0}, root);
    ASSERT_NE(cyl, 0);
    EXPECT_EQ(nameOf(cyl), "Cylinder01");
    const auto pols = polygonsOf(cyl);
    ASSERT_EQ(pols.size(), size_t(12 * 3 + 2));
    expectOutward(cyl, {0, 0, 0});
    // The caps are one polygon of 12 points each; their texture is the disc's plan.
    int caps = 0;
    for (int p : pols) {
        const auto pts = pointsOf(p);
        if (pts.size() != 12) continue;
        ++caps;
        for (int pt : pts) {
            double uv[2];
            ZELMAR_point_get_bitmap_xy(pt, uv);
            const double u = uv[0], v = uv[1];
            EXPECT_NEAR(u, xyz(pt)[0] / 60 + 0.5, 1e-12);
            EXPECT_NEAR(v, xyz(pt)[1] / 60 + 0.5, 1e-12);
        }
    }
    EXPECT_EQ(caps, 2);
    // Side corners: u by side over sides, v by segment over segments.
    double uv[2];
    ZELMAR_point_get_bitmap_xy(pointsOf(pols[0])[1], uv); // the upper-right corner, second in the ring
    const double u = uv[0], v = uv[1];
    EXPECT_NEAR(u, 1.0 / 12, 1e-12);
    EXPECT_NEAR(v, 1.0 / 3, 1e-12);

    EXPECT_NE(CreateCylinder().Create(30, 60, 100, 1, {0, 0, 0}, root), 0);
    EXPECT_EQ(dialogs.count("msgBox"), 0);
    const int before = groupCount();
    EXPECT_EQ(CreateCylinder().Create(30, 60, 101, 1, {0, 0, 0}, root), 0);
    EXPECT_EQ(groupCount(), before);
    ASSERT_EQ(dialogs.count("msgBox"), 1);
    EXPECT_EQ(dialogs.last("msgBox")->text,
              QStringLiteral("Only Cylinders with a max of 100 sides are supported."));
    EXPECT_EQ(CreateCone().Create(30, 10, 60, 101, 1, {0, 0, 0}, root), 0);
    EXPECT_EQ(dialogs.count("msgBox"), 2);
    EXPECT_EQ(dialogs.last("msgBox")->text,
              QStringLiteral("Only Cylinders with a max of 100 sides are supported."));
}

TEST_F(Primitives, ConeSlopeTiltsTheNormalsAndAZeroRadiusHasNoCap) {
    const int cone = CreateCone().Create(40, 0, 40, 8, 2, {5, 5, 5}, root);
    const auto pols = polygonsOf(cone);
    ASSERT_EQ(pols.size(), size_t(8 * 2 + 1)); // the bottom cap only
    expectOutward(cone, {5, 5, 5});
    // Slope 45 degrees: each side corner's normal rises at 45 degrees.
    V3 n{};
    ZELMAR_point_get_normal(pointsOf(pols[0])[0], n.data());
    EXPECT_NEAR(n[2], std::sqrt(0.5), 1e-9);
    // A truncated cone keeps both caps, the smaller one on top.
    const int frustum = CreateCone().Create(40, 20, 40, 8, 1, {0, 0, 0}, root);
    EXPECT_EQ(nameOf(frustum), "Cone02");
    EXPECT_EQ(polygonsOf(frustum).size(), size_t(8 + 2));
    expectOutward(frustum, {0, 0, 0});
}

TEST_F(Primitives, SpherePoleCellsHaveTwoCoincidingCorners) {
    const int n = 6;
    const int sphere = CreateSphere().Create(25, n, {1, 2, 3}, root);
    const auto pols = polygonsOf(sphere);
    ASSERT_EQ(pols.size(), size_t(2 * n * n));
    expectOutward(sphere, {1, 2, 3}, 1e-6);
    int poleCells = 0;
    for (int p : pols) {
        const auto pts = pointsOf(p);
        ASSERT_EQ(pts.size(), 4u);
        int coincide = 0;
        for (size_t i = 0; i < 4; ++i) {
            EXPECT_NEAR(std::sqrt(dot(sub(xyz(pts[i]), {1, 2, 3}), sub(xyz(pts[i]), {1, 2, 3}))), 25.0, 1e-9);
            if (xyz(pts[i]) == xyz(pts[(i + 1) % 4])) ++coincide;
        }
        if (coincide) {
            ++poleCells;
            EXPECT_EQ(coincide, 1);
        }
    }
    EXPECT_EQ(poleCells, 2 * 2 * n); // a full row at each pole
    // A row spans u from 0 to 1; the rows span v from 0 to 1.
    double uv[2];
    ZELMAR_point_get_bitmap_xy(pointsOf(pols[2 * n - 1])[1], uv);
    const double u = uv[0], v = uv[1];
    EXPECT_NEAR(u, 1.0, 1e-12);
    EXPECT_NEAR(v, 1.0 / n, 1e-12);
    ZELMAR_point_get_bitmap_xy(pointsOf(pols.back())[2], uv);
    EXPECT_NEAR(uv[1], 1.0, 1e-12);
}

TEST_F(Primitives, TorusCellsLookAwayFromTheTube) {
    const int ringSegs = 10, tubeSegs = 6;
    const double r1 = 50, r2 = 10;
    const int torus = CreateTorus().Create(r1, r2, ringSegs, tubeSegs, {0, 0, 0}, root);
    const auto pols = polygonsOf(torus);
    ASSERT_EQ(pols.size(), size_t(ringSegs * tubeSegs));
    for (int p : pols) {
        double plane[4];
        ZELMAR_polygon_get_plane(p, plane);
        V3 c{};
        ZELMAR_polygon_get_center(p, c.data());
        // The tube's centre line nearest the face.
        const double ring = std::hypot(c[0], c[1]);
        const V3 tube{c[0] * r1 / ring, c[1] * r1 / ring, 0};
        EXPECT_GT(dot({plane[0], plane[1], plane[2]}, sub(c, tube)), 0.0);
    }
}

TEST(CreateParamsCheck, RefusesWhatCannotBeBuilt) {
    CreateParams p = DefaultParams(PrimitiveKind::Box);
    EXPECT_TRUE(ValidateCreateParams(p).isEmpty());
    p.dim[2] = 0;
    EXPECT_EQ(ValidateCreateParams(p), QStringLiteral("Height must be greater than 0."));
    p = DefaultParams(PrimitiveKind::Sphere);
    p.segs[0] = 1;
    EXPECT_EQ(ValidateCreateParams(p), QStringLiteral("Segments must be at least 2."));
    p = DefaultParams(PrimitiveKind::Cone);
    p.dim[0] = 0;
    EXPECT_EQ(ValidateCreateParams(p), QStringLiteral("A cone needs a radius greater than 0."));
    p.dim[0] = -1;
    EXPECT_EQ(ValidateCreateParams(p), QStringLiteral("Radius1 must not be negative."));
    p = DefaultParams(PrimitiveKind::Cylinder);
    p.segs[0] = 101; // the builder says so itself
    EXPECT_TRUE(ValidateCreateParams(p).isEmpty());
    p.dim[1] = std::nan("");
    EXPECT_EQ(ValidateCreateParams(p), QStringLiteral("Height must be a number."));
    p = DefaultParams(PrimitiveKind::Box);
    p.segs = {1000, 1000, 1000};
    EXPECT_FALSE(ValidateCreateParams(p).isEmpty());
    // Only the values a kind reads are checked: a sphere ignores the second and third boxes.
    p = DefaultParams(PrimitiveKind::Sphere);
    p.dim[1] = p.dim[2] = -5;
    EXPECT_TRUE(ValidateCreateParams(p).isEmpty());
}

} // namespace
