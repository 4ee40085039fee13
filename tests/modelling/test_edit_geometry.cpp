// The commands of the Edit Geometry panel: their messages, their rules and their undo.
#include "undo_property/UndoPropertyFixture.h"

#include "geometry/Weld.h"
#include "modelling/ModellingActions.h"
#include "modelling/SimplifyWorkbench.h"

namespace vexil::test {
namespace {

class EditGeometryTest : public UndoPropertyFixture {
  protected:
    std::array<double, 3> at(int pt) {
        std::array<double, 3> p{};
        ZELMAR_point_get_xyz(pt, p.data());
        return p;
    }
    int point(int polygon, int index) {
        int pt = ZELMAR_polygon_get_first_point(polygon);
        for (int i = 0; i < index; ++i)
            pt = ZELMAR_point_get_next_point(pt);
        return pt;
    }
};

TEST(WeldRule, CellsAreHalfToEvenAndFixedAtTheOrigin) {
    long long c = 0;
    ASSERT_TRUE(WeldCell(2.5, 1.0, c));
    EXPECT_EQ(2, c); // half to even
    ASSERT_TRUE(WeldCell(3.5, 1.0, c));
    EXPECT_EQ(4, c);
    ASSERT_TRUE(WeldCell(-2.5, 1.0, c));
    EXPECT_EQ(-2, c);
    EXPECT_FALSE(WeldCell(1.0, 1e-300, c)); // the cell number overflows
    EXPECT_FALSE(WeldCell(1.0, 0.0, c));
    EXPECT_EQ(0.123457, RoundTo6(0.1234567));
}

TEST_F(EditGeometryTest, WeldTakesTheAbsoluteThresholdAndMovesACellToItsMean) {
    Edit(grid, SelectMode::Point);
    // Three corners near (20, 20, -120): the shared corner of four quads, three of its copies nudged.
    std::vector<int> pts;
    for (int p : PolygonsOf(grid))
        for (int pt = ZELMAR_polygon_get_first_point(p); pt; pt = ZELMAR_point_get_next_point(pt))
            if (at(pt) == std::array<double, 3>{-20, -20, -120}) pts.push_back(pt);
    ASSERT_EQ(4u, pts.size());
    const double n1[3] = {-20.2, -20, -120}, n2[3] = {-20, -19.4, -120};
    ZELMAR_point_set_xyz(pts[0], n1);
    ZELMAR_point_set_xyz(pts[1], n2);
    SelectPoints({pts[0], pts[1], pts[2]});
    const QByteArray before = Saved();
    const int changes = Changes();
    EditGeometry::cmdWeld_Click(QStringLiteral("-1.5"));
    ASSERT_EQ(changes + 1, Changes());
    const double mx = RoundTo6((-20.2 - 20 - 20) / 3), my = RoundTo6((-20 - 19.4 - 20) / 3);
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ((std::array<double, 3>{mx, my, -120}), at(pts[size_t(i)]));
    EXPECT_EQ((std::array<double, 3>{-20, -20, -120}), at(pts[3])); // not selected
    undo();
    EXPECT_TRUE(Saved() == before);
}

TEST_F(EditGeometryTest, WeldRefusalsSayWhyAndPushNothing) {
    Edit(grid, SelectMode::Point);
    const int changes = Changes();
    EditGeometry::cmdWeld_Click(QStringLiteral("1"));
    EXPECT_EQ(GetLocaleString(350), dlg->last("msgBox")->text); // no points
    SelectPoints({point(PolygonsOf(grid)[0], 0), point(PolygonsOf(grid)[8], 2)});
    const QByteArray before = Saved();
    const int afterSelect = Changes();
    EditGeometry::cmdWeld_Click(QStringLiteral("0.5"));
    EXPECT_EQ(QStringLiteral("No points within weld threshold."), dlg->last("msgBox")->text);
    EditGeometry::cmdWeld_Click(QStringLiteral("0"));
    EXPECT_EQ(QStringLiteral("Threshold too small."), dlg->last("msgBox")->text);
    EditGeometry::cmdWeld_Click(QStringLiteral("1e-300"));
    EXPECT_EQ(QStringLiteral("Threshold too small."), dlg->last("msgBox")->text);
    EditGeometry::cmdWeld_Click(QStringLiteral("abc"));
    EXPECT_TRUE(dlg->last("msgBox")->text.contains(QStringLiteral("\"abc\" is not a number")));
    EditGeometry::cmdWeld_Click(QStringLiteral("1e999"));
    EXPECT_TRUE(dlg->last("msgBox")->text.contains(QStringLiteral("is not a number")));
    EXPECT_EQ(afterSelect, Changes());
    EXPECT_GT(afterSelect, changes);
    EXPECT_TRUE(Saved() == before);
}

TEST_F(EditGeometryTest, DeletingEveryPolygonLeavesAnEmptyGroupAndUndoPutsThemBackInOrder) {
    Edit(grid, SelectMode::Polygon);
    const std::vector<int> pols = PolygonsOf(grid);
    SelectPolygons({pols[4], pols[0], pols[8], pols[1], pols[2], pols[3], pols[5], pols[6], pols[7]});
    const QByteArray before = Saved();
    EditGeometry::cmdDeletePol_Click();
    EXPECT_TRUE(ZELMAR_group_is_group(grid));
    EXPECT_EQ(0, ZELMAR_group_get_number_of_polygons(grid));
    EXPECT_EQ(0, Sel().SelPols.Count());
    undo();
    EXPECT_EQ(pols, PolygonsOf(grid));
    EXPECT_EQ(9, Sel().SelPols.Count()); // they are the selection again
    EXPECT_TRUE(Saved() == before);
    redo();
    EXPECT_EQ(0, ZELMAR_group_get_number_of_polygons(grid));
    // The action leaves the stack while the polygons stand deleted: they die with it.
    host.stack->Reset();
    for (int p : pols)
        EXPECT_EQ(0, ZELMAR_polygon_is_polygon(p));
}

TEST_F(EditGeometryTest, AnUndoneDeletionDroppedFromTheStackLeavesThePolygonsAlive) {
    Edit(grid, SelectMode::Polygon);
    const std::vector<int> pols = PolygonsOf(grid);
    SelectPolygons({pols[0], pols[1]});
    EditGeometry::cmdDeletePol_Click();
    undo();
    host.stack->Reset();
    EXPECT_EQ(1, ZELMAR_polygon_is_polygon(pols[0]));
    EXPECT_EQ(grid, ZELMAR_polygon_get_group(pols[1]));
}

TEST_F(EditGeometryTest, DetachMakesAGroupUnderTheSameFatherAndItsUndoLeavesACorpse) {
    Edit(world.c, SelectMode::Polygon); // C is a child of B
    double ref[3] = {1, 2, 3};
    ZELMAR_group_set_rotate_reference_point(world.c, ref);
    SelectPolygons({world.cPols[0], world.cPols[2]});
    EditGeometry::cmdDetachPols_Click();
    const int g = Sel().CurrSelEntity;
    ASSERT_NE(world.c, g);
    EXPECT_EQ(world.b, ZELMAR_group_get_father_group(g));
    EXPECT_EQ("Group" + std::to_string(g), EntityName(g));
    double r[3];
    ZELMAR_group_get_rotate_reference_point(g, r);
    EXPECT_EQ(2.0, r[1]);
    EXPECT_EQ(2, ZELMAR_group_get_number_of_polygons(g));
    EXPECT_TRUE(inGroupTree(g));
    undo();
    EXPECT_EQ(world.c, Sel().CurrSelEntity);
    EXPECT_EQ(world.cPols, PolygonsOf(world.c));
    EXPECT_EQ(1, ZELMAR_group_is_group(g)); // a corpse held by the action
    EXPECT_EQ(0, ZELMAR_group_get_father_group(g));
    EXPECT_FALSE(inGroupTree(g));
    host.stack->Reset();
    EXPECT_EQ(0, ZELMAR_group_is_group(g));
}

TEST_F(EditGeometryTest, FlipTurnsOverAndTriangulateReplacesTheGroupInItsPlace) {
    Edit(world.a, SelectMode::Polygon);
    SelectPolygons({world.aPols[0]});
    double before[4], after[4];
    ZELMAR_polygon_get_plane(world.aPols[0], before);
    EditGeometry::cmdFlipPol_Click();
    ZELMAR_polygon_get_plane(world.aPols[0], after);
    EXPECT_DOUBLE_EQ(-before[0], after[0]);
    const QByteArray saved = Saved();
    EditGeometry::cmdTriangulate_Click();
    const int t = Sel().CurrSelEntity;
    ASSERT_NE(world.a, t);
    EXPECT_EQ(12, ZELMAR_group_get_number_of_polygons(t));
    EXPECT_EQ(world.b, ZELMAR_group_get_next_sibling(t)); // in A's place, before B
    undo();
    EXPECT_EQ(world.a, Sel().CurrSelEntity);
    EXPECT_TRUE(Saved() == saved);
    // The replacement, out of the world once undone, goes with the action; so does the replaced group of a
    // triangulation that stays done.
    host.stack->Reset();
    EXPECT_EQ(0, ZELMAR_group_is_group(t));
    EXPECT_EQ(1, ZELMAR_group_is_group(world.a));
    Edit(world.a, SelectMode::Polygon);
    EditGeometry::cmdTriangulate_Click();
    host.stack->Reset();
    EXPECT_EQ(0, ZELMAR_group_is_group(world.a));
}

TEST_F(EditGeometryTest, ReduceWithoutAWorkbenchSaysSoAndHandsOverToOne) {
    Edit(world.a, SelectMode::Polygon);
    const int changes = Changes();
    EditGeometry::cmdReducePols_Click();
    EXPECT_TRUE(dlg->last("msgBox")->text.contains(QStringLiteral("not available")));
    EXPECT_EQ(changes, Changes());
    struct Stub : SimplifyWorkbench {
        int asked = 0, answer = 0;
        int Simplify(int group) override {
            asked = group;
            return answer;
        }
    } stub;
    setSimplifyWorkbench(&stub);
    EditGeometry::cmdReducePols_Click(); // the workbench made nothing
    EXPECT_EQ(world.a, stub.asked);
    EXPECT_EQ(changes, Changes());
    stub.answer = ZELMAR_group_create_copy_made_of_triangles(world.a, "reduced");
    EditGeometry::cmdReducePols_Click();
    EXPECT_EQ(stub.answer, Sel().CurrSelEntity);
    EXPECT_EQ(changes + 1, Changes());
    undo();
    EXPECT_EQ(world.root, ZELMAR_group_get_father_group(world.a)); // the old group was only taken out
    setSimplifyWorkbench(nullptr);
}

TEST_F(EditGeometryTest, EmptySelectionsGiveTheirMessages) {
    Edit(world.a, SelectMode::Polygon);
    for (auto cmd : {&EditGeometry::cmdFlipPol_Click, &EditGeometry::cmdDeletePol_Click,
                     &EditGeometry::cmdDetachPols_Click}) {
        cmd();
        EXPECT_EQ(GetLocaleString(358), dlg->last("msgBox")->text);
    }
    model->SelectEntityFromTree(1, 0);
    Sel().CurrSelEntityType = 0;
    EditGeometry::cmdTriangulate_Click();
    EXPECT_EQ(GetLocaleString(382), dlg->last("msgBox")->text);
}

} // namespace
} // namespace vexil::test
