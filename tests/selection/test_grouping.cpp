// The Group menu: grouping, ungrouping, attaching, detaching and ungrouping everything, each one undo step.
#include "SelTestSupport.h"

#include <QDialog>
#include <QListWidget>

using namespace vexil;
using namespace vexil::test;

namespace {

constexpr int Right = 3;

class Grouping : public SelFixture {
  protected:
    void selectAandB() {
        withKey(Qt::Key_Control, [&] {
            click(Right, pixelOf(Right, {-250, 0, 0}));
            click(Right, pixelOf(Right, {250, 0, 0}));
        });
        ASSERT_EQ(sel().CurrSelEntityType, 6);
    }
    int father(int g) { return ZELMAR_group_get_father_group(g); }
    QString treeFatherKey(int g) {
        QTreeWidgetItem* n = host.groupTree->Node(QStringLiteral("Group%1").arg(g));
        return n && n->parent() ? WorkspaceTree::NodeKey(n->parent()) : QString();
    }
    QString key(int g) { return QStringLiteral("Group%1").arg(g); }
};

TEST_F(Grouping, GroupTogetherIsOneStepAndRedoBringsBackTheSameGroup) {
    selectAandB();
    const int before = pushes();
    dlg->inputAnswers.push_back(QStringLiteral("Pair"));
    model->mnuGroupTogether_Click();
    const int g = GroupUsingName("Pair");
    ASSERT_NE(g, 0);
    EXPECT_EQ(father(g), world.root);
    EXPECT_EQ(father(world.a), g);
    EXPECT_EQ(father(world.b), g);
    EXPECT_EQ(father(world.c), world.b);
    EXPECT_EQ(treeFatherKey(world.a), key(g));
    EXPECT_EQ(treeFatherKey(g), QStringLiteral("WORLD"));
    EXPECT_EQ(sel().CurrSelEntityType, 1);
    EXPECT_EQ(sel().CurrSelEntity, g);
    EXPECT_EQ(pushes(), before + 1);
    // A click on A now selects the new group, which is current already: nothing to push.
    click(Right, pixelOf(Right, {-250, 0, 0}));
    EXPECT_EQ(sel().CurrSelEntity, g);
    EXPECT_EQ(pushes(), before + 1);
    undo();
    EXPECT_EQ(father(world.a), world.root);
    EXPECT_EQ(father(world.b), world.root);
    EXPECT_EQ(father(g), 0);
    EXPECT_FALSE(inGroupTree(g));
    EXPECT_EQ(sel().CurrSelEntityType, 6);
    redo();
    EXPECT_EQ(GroupUsingName("Pair"), g);
    EXPECT_EQ(father(world.a), g);
    undo();
    host.stack->Push(ActionUndoRedo_Stack::MakeAction(AT_ActionRenameEntity));
    EXPECT_EQ(ZELMAR_group_is_group(g), 0); // the corpse left with its action
    EXPECT_EQ(ZELMAR_group_is_group(world.a), 1);
}

TEST_F(Grouping, CancellingTheNameGroupsNothing) {
    selectAandB();
    const int before = pushes();
    dlg->inputAnswers.push_back(QString());
    model->mnuGroupTogether_Click();
    EXPECT_EQ(father(world.a), world.root);
    EXPECT_EQ(pushes(), before);
}

TEST_F(Grouping, UngroupFreesTheChildrenAndKeepsAFatherWithPolygons) {
    model->SelectEntityFromTree(1, world.b);
    model->mnuUngroup_Click();
    EXPECT_EQ(father(world.c), world.root);
    EXPECT_EQ(father(world.b), world.root); // it has polygons of its own
    EXPECT_EQ(treeFatherKey(world.c), QStringLiteral("WORLD"));
    EXPECT_EQ(sel().CurrSelEntity, world.c);
    undo();
    EXPECT_EQ(father(world.c), world.b);
    EXPECT_EQ(treeFatherKey(world.c), key(world.b));
    redo();
    EXPECT_EQ(father(world.c), world.root);
    host.stack->Reset();
    EXPECT_EQ(ZELMAR_group_is_group(world.b), 1);
}

TEST_F(Grouping, UngroupingAnEmptyContainerTakesItAwayUntilUndo) {
    selectAandB();
    dlg->inputAnswers.push_back(QStringLiteral("Pair"));
    model->mnuGroupTogether_Click();
    const int g = GroupUsingName("Pair");
    model->mnuUngroup_Click();
    EXPECT_EQ(father(g), 0);
    EXPECT_EQ(sel().CurrSelEntityType, 6);
    undo();
    EXPECT_EQ(father(g), world.root);
    EXPECT_EQ(father(world.a), g);
    redo();
    host.stack->Reset();
    EXPECT_EQ(ZELMAR_group_is_group(g), 0);
    EXPECT_EQ(father(world.b), world.root);
}

TEST_F(Grouping, AttachPutsTheSelectionUnderTheChosenGroup) {
    model->SelectEntityFromTree(1, world.a);
    dlg->execAnswers.push_back([](QDialog& d) {
        auto* list = d.findChild<QListWidget*>(QStringLiteral("lstSelection"));
        for (int i = 0; i < list->count(); ++i)
            if (list->item(i)->text() == QStringLiteral("BoxC")) list->item(i)->setSelected(true);
        return int(QDialog::Accepted);
    });
    model->mnuAttach_Click();
    EXPECT_EQ(father(world.a), world.c);
    EXPECT_EQ(treeFatherKey(world.a), key(world.c));
    undo();
    EXPECT_EQ(father(world.a), world.root);
    // Under itself or one of its own children: refused.
    model->SelectEntityFromTree(1, world.b);
    const int before = pushes();
    dlg->execAnswers.push_back([](QDialog& d) {
        auto* list = d.findChild<QListWidget*>(QStringLiteral("lstSelection"));
        for (int i = 0; i < list->count(); ++i)
            if (list->item(i)->text() == QStringLiteral("BoxC")) list->item(i)->setSelected(true);
        return int(QDialog::Accepted);
    });
    model->mnuAttach_Click();
    EXPECT_EQ(father(world.b), world.root);
    EXPECT_EQ(pushes(), before);
}

TEST_F(Grouping, DetachAndRemoveFromGroupMoveAChildUp) {
    const int d = makeGroup("BoxD", world.c);
    addBox(d, {250, 0, 150}, 10);
    doc->PopulateTrees();
    model->SelectEntityFromTree(1, d);
    EXPECT_TRUE(model->mnuGroupMenu_HideObsoleteItems().removeFromGroup);
    model->mnuGroupMenuRemoveFromGroup_Click();
    EXPECT_EQ(father(d), world.b); // one level up
    model->mnuDetach_Click();
    EXPECT_EQ(father(d), world.root); // to the top
    undo();
    EXPECT_EQ(father(d), world.b);
    undo();
    EXPECT_EQ(father(d), world.c);
}

TEST_F(Grouping, UngroupAllAsksFirstAndClearsTheStack) {
    const int d = makeGroup("BoxD", world.c);
    addBox(d, {250, 0, 150}, 10);
    doc->PopulateTrees();
    model->SelectEntityFromTree(1, world.b);
    dlg->msgAnswers.push_back(vbNo);
    model->mnuUngroupAll_Click();
    EXPECT_EQ(father(d), world.c);
    EXPECT_EQ(pushes(), 1);
    dlg->msgAnswers.push_back(vbYes);
    model->mnuUngroupAll_Click();
    EXPECT_EQ(dlg->last("msgBox")->text, GetLocaleString(361));
    EXPECT_EQ(father(world.c), world.root);
    EXPECT_EQ(father(d), world.root);
    EXPECT_EQ(pushes(), 0);
    EXPECT_EQ(sel().CurrSelEntityType, 6);
    EXPECT_EQ(sel().MultiSel.Groups(), (std::vector<int>{world.b, world.c, d}));
}

TEST_F(Grouping, TheGroupMenuFollowsTheSelection) {
    model->SelectEntityFromTree(1, world.a);
    auto items = model->mnuGroupMenu_HideObsoleteItems();
    EXPECT_FALSE(items.ungroup);
    EXPECT_FALSE(items.removeFromGroup);
    EXPECT_TRUE(items.hide);
    model->SelectEntityFromTree(1, world.b);
    EXPECT_TRUE(model->mnuGroupMenu_HideObsoleteItems().ungroup);
}

} // namespace
