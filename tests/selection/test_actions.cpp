// Deleting, creating and hiding entities, and how their actions leave the stack: the deferred deletion
// ends in the destructor of the action that holds the corpse.
#include "SelTestSupport.h"
#include "gizmo/SelectionTransforms.h"

#include <cmath>


using namespace vexil;
using namespace vexil::test;

namespace {

constexpr int Right = 3;

class EntityActions : public SelFixture {
  protected:
    // The Delete key of the main window's key table.
    void pressDelete() { host.DeleteSelected(); }
    bool alive(int g) { return ZELMAR_group_is_group(g) == 1; }
    bool fakeDeleted(int g) {
        return alive(g) && ZELMAR_group_get_father_group(g) == 0 && ZELMAR_group_is_disable(g) == 1 &&
               !inGroupTree(g);
    }
    QString image(int g) {
        return WorkspaceTree::NodeImage(host.groupTree->Node(QStringLiteral("Group%1").arg(g)));
    }
};

TEST_F(EntityActions, DeleteUndoRedoUndoLeavesTheGroupAlive) {
    click(Right, pixelOf(Right, {-250, 0, 0}));
    ASSERT_EQ(sel().CurrSelEntity, world.a);
    pressDelete();
    EXPECT_TRUE(fakeDeleted(world.a));
    EXPECT_EQ(sel().CurrSelEntityType, 0);
    EXPECT_FALSE(host.nameEnabled);
    undo();
    EXPECT_EQ(ZELMAR_group_get_father_group(world.a), world.root);
    EXPECT_EQ(ZELMAR_group_is_disable(world.a), 0);
    EXPECT_TRUE(inGroupTree(world.a));
    EXPECT_EQ(sel().CurrSelEntityType, 1);
    EXPECT_EQ(sel().CurrSelEntity, world.a);
    redo();
    EXPECT_TRUE(fakeDeleted(world.a));
    EXPECT_EQ(sel().CurrSelEntityType, 0);
    undo();
    host.stack->Reset(); // every action leaves: the undone deletion destroys nothing
    EXPECT_TRUE(alive(world.a));
    EXPECT_EQ(ZELMAR_group_get_father_group(world.a), world.root);
    // A pick finds it again.
    click(Right, pixelOf(Right, {-250, 0, 0}));
    EXPECT_EQ(sel().CurrSelEntity, world.a);
}

TEST_F(EntityActions, ADeletedChildComesBackUnderItsOwnFather) {
    model->SelectEntityFromTree(1, world.c);
    model->DeleteSelected();
    EXPECT_TRUE(fakeDeleted(world.c));
    undo();
    EXPECT_EQ(ZELMAR_group_get_father_group(world.c), world.b);
    QTreeWidgetItem* n = host.groupTree->Node(QStringLiteral("Group%1").arg(world.c));
    ASSERT_NE(n, nullptr);
    EXPECT_EQ(WorkspaceTree::NodeKey(n->parent()), QStringLiteral("Group%1").arg(world.b));
}

TEST_F(EntityActions, CreateUndoThenANewActionDestroysTheCreatedGroupAtOnce) {
    const int e = makeGroup("BoxE", world.root);
    addBox(e, {0, 0, -250}, 60);
    doc->PopulateTrees();
    model->SelectCreatedGroup(e);
    EXPECT_EQ(sel().CurrSelEntity, e);
    undo();
    EXPECT_TRUE(fakeDeleted(e));
    EXPECT_EQ(sel().CurrSelEntityType, 0);
    redo();
    EXPECT_EQ(ZELMAR_group_get_father_group(e), world.root);
    EXPECT_EQ(sel().CurrSelEntity, e);
    undo();
    ASSERT_TRUE(alive(e));
    click(Right, pixelOf(Right, {-250, 0, 0})); // a new action drops the redo side
    EXPECT_FALSE(alive(e));
}

TEST_F(EntityActions, HideThenUndoRestoresTheStateAndTheSelection) {
    click(Right, pixelOf(Right, {250, 0, 0}));
    ASSERT_EQ(sel().CurrSelEntity, world.b);
    model->mnuHideSelected_Click();
    EXPECT_EQ(ZELMAR_group_is_disable(world.b), 1);
    EXPECT_EQ(image(world.b), QStringLiteral("Group Invisible"));
    EXPECT_TRUE(model->IsGrpHidden(world.b));
    EXPECT_EQ(sel().CurrSelEntityType, 0); // what is hidden is no longer selected
    undo();
    EXPECT_EQ(ZELMAR_group_is_disable(world.b), 0);
    EXPECT_EQ(image(world.b), QStringLiteral("Group"));
    EXPECT_EQ(sel().CurrSelEntityType, 1);
    EXPECT_EQ(sel().CurrSelEntity, world.b);
    redo();
    EXPECT_EQ(ZELMAR_group_is_disable(world.b), 1);
    EXPECT_EQ(sel().CurrSelEntityType, 0);
}

TEST_F(EntityActions, HideUnselectedKeepsTheSelectionAndItsFathersAndUnhideAllShowsEverything) {
    model->SelectEntityFromTree(1, world.c);
    model->mnuHideUnSelected_Click();
    EXPECT_EQ(ZELMAR_group_is_disable(world.a), 1);
    EXPECT_EQ(ZELMAR_group_is_disable(world.b), 0); // C's father stays
    EXPECT_TRUE(model->IsLightHidden(world.light));
    EXPECT_EQ(sel().CurrSelEntity, world.c);
    model->mnuUnhideAll_Click();
    EXPECT_EQ(ZELMAR_group_is_disable(world.a), 0);
    EXPECT_FALSE(model->IsLightHidden(world.light));
    undo();
    EXPECT_EQ(ZELMAR_group_is_disable(world.a), 1);
    EXPECT_TRUE(model->IsLightHidden(world.light));
    undo();
    EXPECT_EQ(ZELMAR_group_is_disable(world.a), 0);
}

TEST_F(EntityActions, UnhidingAChildShowsItsHiddenFatherToo) {
    model->SelectEntityFromTree(1, world.b);
    model->mnuHideSelected_Click();
    model->SelectEntityFromTree(1, world.c);
    EXPECT_FALSE(IsGroupVisible(world.c));
    EXPECT_TRUE(model->mnuGroupMenu_HideObsoleteItems().unhide);
    model->mnuGroupMenuUnhide_Click();
    EXPECT_TRUE(IsGroupVisible(world.c));
    EXPECT_EQ(image(world.b), QStringLiteral("Group"));
    undo();
    EXPECT_FALSE(IsGroupVisible(world.c));
}

class SmallStack : public EntityActions {
  protected:
    std::string maxUndo() override { return "20"; }
};

TEST_F(SmallStack, TheTwentyFirstPushDestroysADeletedGroupInTheEngine) {
    model->SelectEntityFromTree(1, world.a);
    host.stack->Reset();
    model->DeleteSelected();
    ASSERT_TRUE(fakeDeleted(world.a));
    for (int i = 0; i < 19; ++i)
        host.stack->Push(ActionUndoRedo_Stack::MakeAction(AT_ActionRenameEntity));
    EXPECT_TRUE(alive(world.a));
    host.stack->Push(ActionUndoRedo_Stack::MakeAction(AT_ActionRenameEntity));
    EXPECT_FALSE(alive(world.a));
    for (int p : world.aPols)
        EXPECT_EQ(ZELMAR_polygon_is_polygon(p), 0);
}

TEST_F(EntityActions, DeletingSeveralTakesTheGroupsAndBringsThemBackUnderTheirFathers) {
    withKey(Qt::Key_Control, [&] {
        click(Right, pixelOf(Right, {-250, 0, 0}));
        click(Right, pixelOf(Right, {250, 0, 0}));
    });
    ASSERT_EQ(sel().CurrSelEntityType, 6);
    pressDelete();
    EXPECT_TRUE(fakeDeleted(world.a));
    EXPECT_TRUE(fakeDeleted(world.b));
    EXPECT_EQ(sel().CurrSelEntityType, 0);
    undo();
    EXPECT_EQ(ZELMAR_group_get_father_group(world.a), world.root);
    EXPECT_EQ(ZELMAR_group_get_father_group(world.b), world.root);
    EXPECT_EQ(ZELMAR_group_get_father_group(world.c), world.b); // the child came along in the tree
    EXPECT_TRUE(inGroupTree(world.c));
    EXPECT_EQ(sel().CurrSelEntityType, 6);
}

TEST_F(EntityActions, MoveAndRotateUndoPutTheGroupBack) {
    double before[3], after[3];
    ZELMAR_group_get_location(world.a, before);
    auto env = ActionUndoRedo_Stack::MakeAction(AT_ActionMove);
    auto* mv = env->As<ActionMove>();
    mv->SetMovedEntity(1, world.a);
    mv->SetFrmLoc({before[0], before[1], before[2]});
    const double to[3] = {before[0] + 10, before[1], before[2] - 5};
    ZELMAR_group_set_location(world.a, to);
    mv->SetToLoc({to[0], to[1], to[2]});
    host.stack->Push(env);
    undo();
    ZELMAR_group_get_location(world.a, after);
    EXPECT_NEAR(after[0], before[0], 1e-9);
    EXPECT_NEAR(after[2], before[2], 1e-9);
    redo();
    ZELMAR_group_get_location(world.a, after);
    EXPECT_NEAR(after[0], to[0], 1e-9);

    const int pt = ZELMAR_polygon_get_first_point(world.aPols[0]);
    double p0[3], p1[3];
    ZELMAR_point_get_xyz(pt, p0);
    auto renv = ActionUndoRedo_Stack::MakeAction(AT_ActionRotate);
    auto* rot = renv->As<ActionRotate>();
    rot->SetRotatedEntity(1, world.a);
    const double z30[3] = {0, 0, 30}, x45[3] = {45, 0, 0};
    ZELMAR_group_rotate(world.a, z30, 0);
    rot->AddRotation(30, 2);
    ZELMAR_group_rotate(world.a, x45, 0);
    rot->AddRotation(45, 0);
    host.stack->Push(renv);
    undo();
    ZELMAR_point_get_xyz(pt, p1);
    for (int k = 0; k < 3; ++k)
        EXPECT_NEAR(p1[k], p0[k], 1e-6);
}

// A set turns as one body about its centre; undo must turn it back about the same centre, not each
// member about its own point.
TEST_F(EntityActions, UndoOfASetsTurnPutsEveryMemberBack) {
    withKey(Qt::Key_Control, [&] {
        click(Right, pixelOf(Right, {-250, 0, 0}));
        click(Right, pixelOf(Right, {250, 0, 0}));
    });
    ASSERT_EQ(sel().CurrSelEntityType, 6);
    const int pa = ZELMAR_polygon_get_first_point(world.aPols[0]);
    double a0[3], b0[3], a1[3], b1[3];
    ZELMAR_point_get_xyz(pa, a0);
    ZELMAR_group_get_location(world.b, b0);
    RotateSelectionBy(host, SelectMode::Entity, 30, 2);
    RotateSelectionBy(host, SelectMode::Entity, -50, 0);
    ZELMAR_group_get_location(world.b, b1);
    EXPECT_GT(std::fabs(b1[1] - b0[1]), 1.0); // swung about the centre between the two
    host.stack->Push(MakeRotateAction(SelectMode::Entity, {{30, 2}, {-50, 0}}));
    undo();
    ZELMAR_point_get_xyz(pa, a1);
    ZELMAR_group_get_location(world.b, b1);
    for (int k = 0; k < 3; ++k) {
        EXPECT_NEAR(a1[k], a0[k], 1e-6);
        EXPECT_NEAR(b1[k], b0[k], 1e-6);
    }
    redo();
    undo();
    ZELMAR_group_get_location(world.b, b1);
    for (int k = 0; k < 3; ++k) EXPECT_NEAR(b1[k], b0[k], 1e-6);
}

TEST_F(EntityActions, ScaleUndoGivesBackTheDimensionsOfAGroupAndOfATrack) {
    double d0[3], d1[3];
    ZELMAR_group_get_dimensions(world.a, d0);
    auto env = ActionUndoRedo_Stack::MakeAction(AT_ActionScale);
    auto* sc = env->As<ActionScale>();
    sc->SetScaledEntity(1, world.a);
    sc->SetIniDim({d0[0], d0[1], d0[2]});
    ZELMAR_group_scale(world.a, 0, 2, 1, 0.5);
    ZELMAR_group_get_dimensions(world.a, d1);
    sc->SetFnlDim({d1[0], d1[1], d1[2]});
    host.stack->Push(env);
    undo();
    double d[3];
    ZELMAR_group_get_dimensions(world.a, d);
    for (int k = 0; k < 3; ++k)
        EXPECT_NEAR(d[k], d0[k], 1e-6);
    redo();
    ZELMAR_group_get_dimensions(world.a, d);
    for (int k = 0; k < 3; ++k)
        EXPECT_NEAR(d[k], d1[k], 1e-6);

    const double pts[6] = {0, 0, 0, 100, 0, 0};
    const int track = ZELMAR_track_create("Track01", pts, 2, 0);
    auto tenv = ActionUndoRedo_Stack::MakeAction(AT_ActionScale);
    auto* ts = tenv->As<ActionScale>();
    ts->SetScaledEntity(3, track);
    ts->SetIniDim({100, 0, 0});
    ts->SetFnlDim({300, 0, 0});
    host.stack->Push(tenv);
    ts->Redo(); // the caller's scale: three times the size about the centre
    undo();
    double p[3];
    ZELMAR_track_get_point(track, 1, p);
    EXPECT_NEAR(p[0], 100, 1e-9);
    redo();
    ZELMAR_track_get_point(track, 1, p);
    EXPECT_NEAR(p[0], 200, 1e-9);
}

} // namespace
