// The planar mapper: exact coordinates of a known quad for each option, the averaged normal with its
// exact-sum fallback and its ties, one range for both directions, the undo step it always pushes, and a world
// left as it was when all points sit on one spot. Golden pictures of a textured box after each option.
#include "../support/GoldenImages.h"
#include "MaterialsTestSupport.h"
#include "base/VexilError.h"
#include "materials/PlanarMapper.h"
#include "materials/SurfaceCommands.h"

#include <QImage>
#include <cmath>

using namespace vexil;
using namespace vexil::test;

namespace {

using UV = std::array<double, 2>;

class PlanarMapping : public MaterialsTest {
  protected:
    // A quad in the plane x = 3: (3,0,0), (3,4,0), (3,4,2), (3,0,2).
    int quadAtX3() {
        const int g = makeGroup("Quad", root);
        return addQuad(g, {{{3, 0, 0}, {3, 4, 0}, {3, 4, 2}, {3, 0, 2}}});
    }
    std::vector<UV> uvs(int polygon) {
        std::vector<UV> out;
        for (int p : pointsOf(polygon)) out.push_back(uvOf(p));
        return out;
    }
};

TEST_F(PlanarMapping, AKnownQuadGetsExactCoordinatesForEachOption) {
    const int q = quadAtX3();
    select(ZELMAR_polygon_get_group(q), {q});
    const std::vector<UV> expected[4] = {
        {{0, 0.5}, {1, 0.5}, {1, 0}, {0, 0}},   // X: u = y, v = -z; range 4 keeps the proportions
        {{0, 1}, {0, 1}, {0, 0}, {0, 0}},       // Y: u = x (one spot), v = -z; range 2
        {{0, 0}, {1, 0}, {1, 0}, {0, 0}},       // Z: u = y, v = x (one spot)
        {{0, 0}, {0, 1}, {0.5, 1}, {0.5, 0}},   // the average normal is X: u = z, v = y
    };
    for (int option = 0; option < 4; ++option) {
        SCOPED_TRACE(option);
        PlanarMapSelection(option);
        EXPECT_EQ(uvs(q), expected[option]);
    }
    EXPECT_EQ(pushes(), 4);
    // Each option is one undo step back to the one before.
    ASSERT_TRUE(undo());
    EXPECT_EQ(uvs(q), expected[2]);
    ASSERT_TRUE(redo());
    EXPECT_EQ(uvs(q), expected[3]);
}

TEST_F(PlanarMapping, AnAverageNormalWhoseComponentsSumToZeroFallsBackToTheFirstRow) {
    const int g = makeGroup("Tilted", root);
    // Normal (1,-1,0)/sqrt(2) up to its sign: the exact sum is 0.
    const int q = addQuad(g, {{{0, 0, 0}, {1, 1, 0}, {1, 1, 1}, {0, 0, 1}}});
    select(g, {q});
    const MappingAxes axes = PlanarMappingAxes(3, {q});
    EXPECT_EQ(axes.n, (std::array<double, 3>{1, 0, 0}));
    PlanarMapSelection(3);
    EXPECT_EQ(uvs(q), (std::vector<UV>{{0, 1}, {1, 1}, {1, 0}, {0, 0}}));
    // Two opposite faces average to the zero vector: the same row.
    const int back = addQuad(g, {{{0, 0, 1}, {1, 1, 1}, {1, 1, 0}, {0, 0, 0}}});
    EXPECT_EQ(PlanarMappingAxes(3, {q, back}).n, (std::array<double, 3>{1, 0, 0}));
}

TEST_F(PlanarMapping, TiesBetweenAxesGoToXThenY) {
    const int g = makeGroup("Diagonal", root);
    // Normal along (1,1,0): 45 degrees from X and from Y, so X wins: U is Z, V is Y.
    const int q = addQuad(g, {{{0, 0, 0}, {1, -1, 0}, {1, -1, 1}, {0, 0, 1}}});
    const MappingAxes a = PlanarMappingAxes(3, {q});
    EXPECT_EQ(a.u, (std::array<double, 3>{0, 0, 1}));
    EXPECT_NEAR(std::fabs(a.v[0]), 0.5, 1e-12); // Y projected on the plane
    EXPECT_NEAR(a.v[1], 0.5, 1e-12);
    // Normal along (0,1,1): Y and Z tie, Y wins: U is Z, V is X.
    const int r = addQuad(g, {{{0, 0, 0}, {1, 0, 0}, {1, 1, -1}, {0, 1, -1}}});
    const MappingAxes b = PlanarMappingAxes(3, {r});
    EXPECT_NEAR(b.v[0], 1, 1e-12);
    EXPECT_NEAR(b.u[2] * b.u[2] + b.u[1] * b.u[1], 0.5, 1e-12); // Z projected
}

TEST_F(PlanarMapping, NothingSelectedChangesNothingButIsStillAStep) {
    const int q = quadAtX3();
    select(ZELMAR_polygon_get_group(q));
    const std::vector<UV> before = uvs(q);
    PlanarMapSelection(0);
    EXPECT_EQ(uvs(q), before);
    EXPECT_EQ(pushes(), 1);
}

TEST_F(PlanarMapping, PointsOnOneSpotRaiseADivisionFailureAndLeaveTheWorldAsItWas) {
    const int g = makeGroup("Spot", root);
    const int q = addQuad(g, {{{1, 2, 3}, {1, 2, 3}, {1, 2, 3}, {1, 2, 3}}});
    const double uv[2] = {0.25, 0.75};
    for (int p : pointsOf(q)) ZELMAR_point_set_bitmap_xy(p, uv);
    select(g, {q});
    try {
        PlanarMapSelection(2);
        ADD_FAILURE() << "no failure raised";
    } catch (const VexilError& e) {
        EXPECT_EQ(e.number, ErrDivisionByZero);
        EXPECT_NE(e.source.find("PlanarMap"), std::string::npos);
    }
    for (int p : pointsOf(q)) EXPECT_EQ(uvOf(p), (UV{0.25, 0.75}));
    EXPECT_EQ(pushes(), 0);
}

// ---- golden pictures ----------------------------------------------------------------------------------------

constexpr int kTolerance = 6; // per channel, against the golden pictures

QImage render(int camera, int w = 96, int h = 72) {
    const int t = ZELMAR_target_create(w, h);
    QImage img(w, h, QImage::Format_RGBA8888);
    EXPECT_EQ(ZELMAR_engine_render(t, camera), 1) << ZELMAR_engine_get_last_error();
    ZELMAR_target_read_pixels(t, img.bits(), int(img.sizeInBytes()));
    ZELMAR_target_destroy(t);
    return img;
}

TEST_F(PlanarMapping, GoldenPicturesOfATexturedBoxAfterEachOption) {
    const int g = makeGroup("Box", root);
    const std::vector<int> box = addBox(g, {0, 0, 0}, 10);
    const int bitmap = ZELMAR_bitmap_load(writeBitmap(file("checker.bmp"), 16, 16, checker).c_str(), -1);
    ASSERT_NE(bitmap, 0);
    ZELMAR_group_set_bitmap(g, bitmap);
    const int cam = ZELMAR_camera_create("golden");
    const double eye[3] = {-16, -11, 9}, at[3] = {0, 0, 0};
    ZELMAR_camera_set_location(cam, eye);
    ZELMAR_camera_point_at(cam, at);
    ZELMAR_camera_set_zoom(cam, 60);
    select(g, box);
    const char* names[4] = {"box_mapped_x", "box_mapped_y", "box_mapped_z", "box_mapped_average"};
    // The averaged normal of a whole box is the zero vector (the fallback row): the average option maps the
    // three faces the camera sees, whose mean normal lies between three axes.
    std::vector<int> seen;
    for (int p : box) {
        double plane[4];
        ZELMAR_polygon_get_plane(p, plane);
        if (plane[0] * eye[0] + plane[1] * eye[1] + plane[2] * eye[2] + plane[3] > 0) seen.push_back(p);
    }
    ASSERT_EQ(seen.size(), 3u);
    for (int option = 0; option < 4; ++option) {
        SCOPED_TRACE(names[option]);
        if (option == 3) select(g, seen);
        PlanarMapSelection(option);
        EXPECT_EQ(compareGolden(QString::fromLatin1(names[option]), render(cam), kTolerance), 0);
    }
}

} // namespace
