// Entity selection by click, band, tree and list, on the real viewports: what becomes current, what is
// pushed, and what the panels are told.
#include "SelTestSupport.h"

#include <QDialog>
#include <QListWidget>

using namespace vexil;
using namespace vexil::test;

namespace {

constexpr int Right = 3, Persp = 2;

class EntitySelection : public SelFixture {
  protected:
    QPoint at(int i, double x, double y, double z) { return pixelOf(i, {x, y, z}); }
    QPoint aPix() { return at(Right, -250, 0, 0); }
    QPoint bPix() { return at(Right, 250, 0, 0); }
    QPoint cPix() { return at(Right, 250, 0, 150); }
    QPoint lightPix() { return at(Right, 0, 0, 250); }
    QPoint emptyPix() { return {20, 400}; }
};

TEST_F(EntitySelection, AnEmptyClickGivesNothingAndClosesThePanelOfThePreviousKind) {
    click(Right, lightPix());
    ASSERT_EQ(sel().CurrSelEntityType, 4);
    EXPECT_EQ(sel().CurrSelEntity, world.light);
    ASSERT_EQ(host.openedPanels.size(), 1u);
    EXPECT_EQ(host.openedPanels[0], std::make_pair(4, world.light));
    click(Right, emptyPix());
    EXPECT_EQ(sel().CurrSelEntityType, 0);
    EXPECT_EQ(sel().MultiSel.TotalCount, 0);
    ASSERT_FALSE(host.closedPanels.empty());
    EXPECT_EQ(host.closedPanels.back(), std::make_pair(4, 0));
    EXPECT_FALSE(host.nameEnabled);
    EXPECT_TRUE(host.nameText.isEmpty());
    EXPECT_GT(host.lightFrameHidden, 0);
    EXPECT_EQ(pushes(), 2);
    // A second empty click changes nothing and pushes nothing.
    click(Right, emptyPix());
    EXPECT_EQ(pushes(), 2);
}

TEST_F(EntitySelection, AClickOnAChildGroupSelectsItsTopLevelGroup) {
    click(Right, cPix());
    EXPECT_EQ(sel().CurrSelEntityType, 1);
    EXPECT_EQ(sel().CurrSelEntity, world.b);
    EXPECT_EQ(host.nameText, QStringLiteral("BoxB"));
    EXPECT_EQ(WorkspaceTree::NodeKey(host.groupTree->currentItem()), QStringLiteral("Group%1").arg(world.b));
    EXPECT_EQ(views->SelectionBox().Group(), world.b);
    ASSERT_EQ(sel().MultiSel.GrpCount, 1);
    EXPECT_EQ(sel().MultiSel.GetGrp(1), world.b);
}

TEST_F(EntitySelection, ShiftOnEmptySpacePushesNothingForEntities) {
    click(Right, aPix());
    ASSERT_EQ(sel().CurrSelEntity, world.a);
    ASSERT_EQ(pushes(), 1);
    withKey(Qt::Key_Shift, [&] { click(Right, emptyPix()); });
    EXPECT_EQ(sel().CurrSelEntityType, 1);
    EXPECT_EQ(sel().CurrSelEntity, world.a);
    EXPECT_EQ(pushes(), 1);
    // Shift on the group itself takes it away.
    withKey(Qt::Key_Shift, [&] { click(Right, aPix()); });
    EXPECT_EQ(sel().CurrSelEntityType, 0);
    EXPECT_EQ(pushes(), 2);
}

TEST_F(EntitySelection, CtrlAddsAndASecondGroupMakesSeveral) {
    click(Right, aPix());
    withKey(Qt::Key_Control, [&] { click(Right, bPix()); });
    EXPECT_EQ(sel().CurrSelEntityType, 6);
    EXPECT_EQ(sel().MultiSel.Groups(), (std::vector<int>{world.a, world.b}));
    EXPECT_EQ(host.nameText, GetLocaleString(348));
    withKey(Qt::Key_Control, [&] { click(Right, lightPix()); });
    EXPECT_EQ(sel().MultiSel.LightCount, 1);
    EXPECT_EQ(sel().MultiSel.TotalCount, 3);
    // The pivot: rotate reference points of the groups and the light's location, over three.
    double ra[3], rb[3];
    ZELMAR_group_get_rotate_reference_point(world.a, ra);
    ZELMAR_group_get_rotate_reference_point(world.b, rb);
    EXPECT_NEAR(sel().SelObjsAvgCenter[0], (ra[0] + rb[0] + 0) / 3, 1e-9);
    EXPECT_NEAR(sel().SelObjsAvgCenter[2], (ra[2] + rb[2] + 250) / 3, 1e-9);
    withKey(Qt::Key_Shift, [&] { click(Right, bPix()); });
    withKey(Qt::Key_Shift, [&] { click(Right, lightPix()); });
    EXPECT_EQ(sel().CurrSelEntityType, 1);
    EXPECT_EQ(sel().CurrSelEntity, world.a);
}

TEST_F(EntitySelection, CtrlWithATrackCurrentStartsTheSetAfresh) {
    click(Right, aPix());
    const double pts[6] = {0, 0, 0, 10, 0, 0};
    const int track = ZELMAR_track_create("Track01", pts, 2, 0);
    Sel().CurrSelEntityType = 3;
    Sel().CurrSelEntity = track;
    withKey(Qt::Key_Control, [&] { click(Right, bPix()); });
    EXPECT_EQ(sel().CurrSelEntityType, 1);
    EXPECT_EQ(sel().CurrSelEntity, world.b);
    EXPECT_EQ(sel().MultiSel.TotalCount, 1);
}

TEST_F(EntitySelection, APlainBandInPerspectiveTakesAGroupOnlyPartlyInside) {
    // A rectangle from the middle of B's picture to the lower right: some of B's points are in it, some not.
    const QPoint from = pixelOf(Persp, {250, 0, 0});
    const QPoint to(win(Persp)->width() - 5, win(Persp)->height() - 5);
    int inside = 0, outside = 0;
    for (int p : world.bPols)
        for (int pt = ZELMAR_polygon_get_first_point(p); pt; pt = ZELMAR_point_get_next_point(pt)) {
            double xyz[3];
            ZELMAR_point_get_xyz(pt, xyz);
            const QPoint q = pixelOf(Persp, {xyz[0], xyz[1], xyz[2]});
            (QRect(from, to).contains(q) ? inside : outside)++;
        }
    ASSERT_GT(inside, 0);
    ASSERT_GT(outside, 0);
    band(Persp, from, to);
    EXPECT_EQ(sel().CurrSelEntityType, 1);
    EXPECT_EQ(sel().CurrSelEntity, world.b);
    EXPECT_EQ(pushes(), 1);
}

TEST_F(EntitySelection, ABandOverGroupsAndALightGivesSeveral) {
    band(Right, {30, 30}, {win(Right)->width() - 30, 300});
    EXPECT_EQ(sel().CurrSelEntityType, 6);
    EXPECT_EQ(sel().MultiSel.Groups(), (std::vector<int>{world.a, world.b})); // the child lifts to B
    EXPECT_EQ(sel().MultiSel.Lights(), (std::vector<int>{world.light}));
    EXPECT_EQ(sel().ObjNearestType, 1);
    // Undo goes back to nothing; redo to the three.
    undo();
    EXPECT_EQ(sel().CurrSelEntityType, 0);
    redo();
    EXPECT_EQ(sel().CurrSelEntityType, 6);
    EXPECT_EQ(sel().MultiSel.TotalCount, 3);
}

TEST_F(EntitySelection, ABandThatTouchesACameraMarkerSelectsTheCamera) {
    const int cam = ZELMAR_camera_create("Camera01");
    ZELMAR_camera_set_save_flag(cam, 1);
    const int marker = ZELMAR_group_create("");
    addBox(marker, {-150, 0, 250}, 20);
    host.camMarkers[marker] = cam;
    const QPoint p = pixelOf(Right, {-150, 0, 250});
    band(Right, p - QPoint(6, 6), p + QPoint(6, 6));
    EXPECT_EQ(sel().CurrSelEntityType, 2);
    EXPECT_EQ(sel().CurrSelEntity, cam);
    EXPECT_EQ(sel().ClickedEntityType, 0); // a band leaves the clicked entity alone
    click(Right, p);
    EXPECT_EQ(sel().ClickedCamGrp, marker);
    EXPECT_EQ(sel().CurrSelEntity, cam);
}

TEST_F(EntitySelection, CtrlAndShiftTogetherAddAndAimTheViewAtASingleGroup) {
    camera& cam = views->ViewCams(Right);
    const double before[3] = {cam.LookAt[0], cam.LookAt[1], cam.LookAt[2]};
    fake->press(Qt::Key_Control);
    fake->press(Qt::Key_Shift);
    click(Right, pixelOf(Right, {250, 0, 0}));
    fake->releaseAll();
    EXPECT_EQ(sel().CurrSelEntity, world.b); // Ctrl's add applies
    double loc[3];
    ZELMAR_group_get_location(world.b, loc);
    EXPECT_GT(std::abs(cam.LookAt[0] - before[0]) + std::abs(cam.LookAt[2] - before[2]), 1.0);
    EXPECT_NEAR(cam.LookAt[0], loc[0], 1e-6);
}

TEST_F(EntitySelection, AHiddenGroupIsLeftOutOfBandsAndSelectAll) {
    click(Right, aPix());
    model->mnuHideSelected_Click();
    ASSERT_EQ(ZELMAR_group_is_disable(world.a), 1);
    band(Right, {30, 30}, {win(Right)->width() - 30, 300});
    EXPECT_EQ(sel().MultiSel.Groups(), (std::vector<int>{world.b}));
    model->mnuSelectAll_Click();
    EXPECT_EQ(sel().MultiSel.Groups(), (std::vector<int>{world.b}));
    EXPECT_EQ(sel().MultiSel.Lights(), (std::vector<int>{world.light}));
    EXPECT_EQ(sel().MultiSel.CamCount, 0); // the views' cameras are not saved with the world
}

TEST_F(EntitySelection, InvertTakesEverythingThatWasNotSelected) {
    click(Right, aPix());
    const int before = pushes();
    model->mnuSelectInvert_Click();
    EXPECT_EQ(sel().CurrSelEntityType, 6);
    EXPECT_EQ(sel().MultiSel.Groups(), (std::vector<int>{world.b}));
    EXPECT_EQ(sel().MultiSel.Lights(), (std::vector<int>{world.light}));
    EXPECT_EQ(pushes(), before + 1);
    model->mnuSelectInvert_Click();
    EXPECT_EQ(sel().CurrSelEntityType, 1);
    EXPECT_EQ(sel().CurrSelEntity, world.a);
}

TEST_F(EntitySelection, TheRubberBandIsYellowGreenWithCtrlAndRedWithShift) {
    auto bandColour = [&](int key) {
        if (key) fake->press(key);
        mouse(Right, QEvent::MouseButtonPress, {40, 330}, Qt::LeftButton, Qt::LeftButton);
        mouse(Right, QEvent::MouseMove, {140, 420}, Qt::NoButton, Qt::LeftButton);
        const QImage img = win(Right)->BackBuffer();
        QColor found;
        for (int y = 330; y <= 420 && !found.isValid(); ++y) {
            const QColor c = img.pixelColor(40, y);
            if (c == QColor(255, 255, 0) || c == QColor(0, 255, 0) || c == QColor(255, 0, 0)) found = c;
        }
        mouse(Right, QEvent::MouseButtonRelease, {140, 420}, Qt::LeftButton, Qt::NoButton);
        if (key) fake->release(key);
        return found;
    };
    EXPECT_EQ(bandColour(0), QColor(255, 255, 0));
    EXPECT_EQ(bandColour(Qt::Key_Control), QColor(0, 255, 0));
    EXPECT_EQ(bandColour(Qt::Key_Shift), QColor(255, 0, 0));
}

TEST_F(EntitySelection, ARightClickSelectsAndOpensTheMenuOfTheKind) {
    click(Right, bPix(), Qt::RightButton);
    EXPECT_EQ(sel().CurrSelEntity, world.b);
    EXPECT_EQ(host.menus, (std::vector<int>{1}));
    click(Right, lightPix(), Qt::RightButton);
    EXPECT_EQ(host.menus, (std::vector<int>{1, 4}));
    click(Right, emptyPix(), Qt::RightButton);
    EXPECT_EQ(host.menus.size(), 2u);
}

TEST_F(EntitySelection, ATreeClickSelectsEvenAChildAndPushesOnlyOnChange) {
    QTreeWidgetItem* n = host.groupTree->Node(QStringLiteral("Group%1").arg(world.c));
    ASSERT_NE(n, nullptr);
    host.groupTree->scrollToItem(n);
    const QRect r = host.groupTree->visualItemRect(n);
    const QPoint p = r.center();
    QMouseEvent press(QEvent::MouseButtonPress, QPointF(p),
                      host.groupTree->viewport()->mapToGlobal(QPointF(p)), Qt::LeftButton, Qt::LeftButton,
                      Qt::NoModifier);
    QMouseEvent rel(QEvent::MouseButtonRelease, QPointF(p),
                    host.groupTree->viewport()->mapToGlobal(QPointF(p)), Qt::LeftButton, Qt::NoButton,
                    Qt::NoModifier);
    QApplication::sendEvent(host.groupTree->viewport(), &press);
    QApplication::sendEvent(host.groupTree->viewport(), &rel);
    EXPECT_EQ(sel().CurrSelEntityType, 1);
    EXPECT_EQ(sel().CurrSelEntity, world.c);
    EXPECT_EQ(pushes(), 1);
    model->SelectEntityFromTree(1, world.c);
    EXPECT_EQ(pushes(), 1);
    undo();
    EXPECT_EQ(sel().CurrSelEntityType, 0);
}

TEST_F(EntitySelection, TheSelectionListSelectsTheChosenItemsAndCancelChangesNothing) {
    dlg->execAnswers.push_back([](QDialog& d) {
        auto* list = d.findChild<QListWidget*>(QStringLiteral("lstSelection"));
        // Cameras, then lights, then groups.
        EXPECT_EQ(list->count(), 3);
        EXPECT_EQ(list->item(0)->text(), QStringLiteral("Light01"));
        list->item(0)->setSelected(true);
        list->item(2)->setSelected(true);
        return int(QDialog::Accepted);
    });
    model->ShowSelectionWindow();
    EXPECT_EQ(sel().CurrSelEntityType, 6);
    EXPECT_EQ(sel().MultiSel.Groups(), (std::vector<int>{world.b}));
    EXPECT_EQ(sel().MultiSel.Lights(), (std::vector<int>{world.light}));
    EXPECT_EQ(pushes(), 1);
    dlg->execAnswers.push_back([](QDialog&) { return int(QDialog::Rejected); });
    model->ShowSelectionWindow();
    EXPECT_EQ(sel().CurrSelEntityType, 6);
    EXPECT_EQ(pushes(), 1);
    // Nothing chosen: nothing selected.
    dlg->execAnswers.push_back([](QDialog& d) {
        d.findChild<QListWidget*>(QStringLiteral("lstSelection"))->clearSelection();
        return int(QDialog::Accepted);
    });
    model->ShowSelectionWindow();
    EXPECT_EQ(sel().CurrSelEntityType, 0);
}

} // namespace
