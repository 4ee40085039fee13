// Cameras, tracks, chase rules and backgrounds in the main window with the sample world, driven through the
// menus, the tree's popup items, the panels and the viewports, each undone through the Edit menu.
#include "../app/Form1Fixture.h"
#include "app/Form1_Tracks.h"
#include "document/WorkspaceTrees.h"
#include "document/WorldDocument.h"
#include "engine/EntityNaming.h"
#include "frame/Spinner.h"
#include "selection/SelectionState.h"
#include "tracks/BackgroundPanel.h"
#include "tracks/CameraPanel.h"
#include "tracks/TracksController.h"
#include "tracks/formCamChaseParams.h"
#include "tracks/formCreateTrack.h"
#include "view/frmPicWins.h"

#include <QAction>
#include <QCheckBox>
#include <QLabel>
#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QTest>
#include <QToolBar>
#include <zelmar/zelmar.h>

#include <cmath>

using namespace vexil;
using vexil::test::Form1Test;

namespace {

class Tracks : public Form1Test {
  protected:
    void SetUp() override {
        Form1Test::SetUp();
        start(QStringLiteral("\"" VEXIL_SOURCE_DATA "/samples/Sample.wld\""));
        ASSERT_TRUE(form->WorldOpen());
        ASSERT_NE(FormTracks(), nullptr);
        tracks = FormTracks();
        form->resize(1200, 800);
        form->show();
        QCoreApplication::processEvents();
    }
    void TearDown() override {
        const QByteArray shot = qgetenv("VEXIL_TRACKS_SHOT");
        if (!shot.isEmpty() && form) form->grab().save(QString::fromLocal8Bit(shot));
        Form1Test::TearDown();
    }
    QTreeWidgetItem* node(const QString& key) { return form->CamTrackBkTree->Node(key); }
    // A mouse press and release in the active view, as the dispatch receives them.
    void click(int button, int x, int y) {
        frmPicWins* v = form->frmPicWins;
        v->picWindow_MouseDown(v->ActiveWin, button, 0, x, y);
        v->picWindow_MouseUp(v->ActiveWin, button, 0, x, y);
    }
    static std::array<double, 3> camLocation(int c) {
        std::array<double, 3> a{};
        ZELMAR_camera_get_location1(c, a.data());
        return a;
    }
    ScriptedDialogs dialogs;
    TracksController* tracks = nullptr;
};

TEST_F(Tracks, TheSampleWorldsCamerasGetMarkersThatPickTheirCameras) {
    const int cam = CameraUsingName("Camera01");
    ASSERT_NE(cam, 0);
    const int marker = tracks->Markers().GetCamGrp(cam);
    ASSERT_NE(marker, 0);
    EXPECT_EQ(tracks->Markers().GetCamHandle(marker), cam);
    EXPECT_EQ(ZELMAR_group_get_father_group(marker), 0);  // never saved, never in the group tree
    EXPECT_EQ(ZELMAR_group_get_number_of_polygons(marker), 11);
    int points = 0;
    for (int p = ZELMAR_group_get_first_polygon(marker); p; p = ZELMAR_group_get_next_polygon(p))
        points += ZELMAR_polygon_get_num_of_points(p);
    EXPECT_EQ(points, 45);
    // The viewport cameras of the document have no marker.
    EXPECT_EQ(tracks->Markers().TotalCamGrps(), 2);
}

TEST_F(Tracks, ANewCameraDeletedAndUndoneKeepsHandleNameAndMarker) {
    form->mnuCamera->trigger();
    const int cam = Sel().CurrSelEntity;
    ASSERT_EQ(Sel().CurrSelEntityType, 2);
    EXPECT_EQ(EntityName(cam), "Camera03");
    EXPECT_EQ(ZELMAR_camera_get_save_flag(cam), 1);
    EXPECT_EQ(form->tabWorkspace->currentIndex(), int(Form1::TabCamTrackBk));
    const int marker = tracks->Markers().GetCamGrp(cam);
    ASSERT_NE(marker, 0);
    ASSERT_NE(node(QStringLiteral("Camera%1").arg(cam)), nullptr);

    // Delete from the tree's popup menu.
    form->CamTrackBkTree->setCurrentItem(node(QStringLiteral("Camera%1").arg(cam)));
    form->mnuCamTrkBkMenuDelete->trigger();
    EXPECT_EQ(ZELMAR_camera_get_save_flag(cam), 0);
    EXPECT_EQ(ZELMAR_group_is_disable(marker), 1);
    EXPECT_EQ(node(QStringLiteral("Camera%1").arg(cam)), nullptr);
    EXPECT_EQ(Sel().CurrSelEntityType, 0);

    form->mnuUndo->trigger();
    EXPECT_TRUE(ZELMAR_camera_is_camera(cam));
    EXPECT_EQ(EntityName(cam), "Camera03");
    EXPECT_EQ(tracks->Markers().GetCamGrp(cam), marker);
    EXPECT_EQ(ZELMAR_group_is_disable(marker), 0);
    EXPECT_EQ(ZELMAR_camera_get_save_flag(cam), 1);
    EXPECT_NE(node(QStringLiteral("Camera%1").arg(cam)), nullptr);

    // Undo of the creation, then a new push drops the redo side: the camera and its marker go for good.
    form->mnuUndo->trigger();
    EXPECT_EQ(ZELMAR_camera_get_save_flag(cam), 0);
    form->mnuCamera->trigger();
    EXPECT_FALSE(ZELMAR_camera_is_camera(cam));
    EXPECT_EQ(tracks->Markers().GetCamHandle(marker), 0);
    form->mnuCamera->trigger();
    EXPECT_EQ(EntityName(Sel().CurrSelEntity), "Camera03");  // the first free number again
}

TEST_F(Tracks, SaveCurrentCopiesTheViewAndKeepsTheChase) {
    form->mnuCamera->trigger();
    const int cam = Sel().CurrSelEntity;
    ZELMAR_camera_set_chase_type(cam, 3);
    ZELMAR_camera_set_name_to_chase(cam, "Camera02");
    frmPicWins* v = form->frmPicWins;
    const int view = v->ViewCams(v->ActiveWin).CamHandle;
    form->mnuCamTrkBkMenuSaveCurrent->trigger();
    EXPECT_EQ(camLocation(cam), camLocation(view));
    EXPECT_DOUBLE_EQ(ZELMAR_camera_get_zoom(cam), ZELMAR_camera_get_zoom(view));
    EXPECT_EQ(ZELMAR_camera_get_chase_type(cam), 3);
    EXPECT_EQ(tracks->Markers().GetCamHandle(tracks->Markers().GetCamGrp(cam)), cam);
    double at[3];
    ZELMAR_group_get_location(tracks->Markers().GetCamGrp(cam), at);
    EXPECT_NEAR(at[0], camLocation(view)[0], 1e-6);
    // The panel shows the new placement.
    EXPECT_DOUBLE_EQ(tracks->CamPanel().spnCamLoc[0]->Value(), std::round(camLocation(view)[0] * 100) / 100);
}

TEST_F(Tracks, PanelLocationAppliesOnLeavingTheBoxAndDirectionShowsTheEnginesUnitVector) {
    form->mnuCamera->trigger();
    const int cam = Sel().CurrSelEntity;
    CameraPanel& panel = tracks->CamPanel();
    panel.spnCamLoc[0]->SetValue(123);
    EXPECT_NE(camLocation(cam)[0], 123.0);  // typing alone sends nothing
    emit panel.spnCamLoc[0]->editingFinished();
    EXPECT_EQ(camLocation(cam)[0], 123.0);
    double at[3];
    ZELMAR_group_get_location(tracks->Markers().GetCamGrp(cam), at);
    EXPECT_NEAR(at[0], 123.0, 1e-9);

    panel.spnCamDir[0]->SetValue(0);
    panel.spnCamDir[1]->SetValue(3);
    panel.spnCamDir[2]->SetValue(0);
    emit panel.spnCamDir[1]->editingFinished();
    EXPECT_NEAR(panel.spnCamDir[1]->Value(), 1.0, 1e-9);
    // A zero direction is refused: the boxes show the camera's own again.
    for (Spinner* s : panel.spnCamDir) s->SetValue(0);
    emit panel.spnCamDir[0]->editingFinished();
    EXPECT_NEAR(panel.spnCamDir[1]->Value(), 1.0, 1e-9);
}

TEST_F(Tracks, ACircularTrackIsCyclicAtATenthOfTheWorldAndUndoable) {
    dialogs.execAnswers.push_back([](QDialog& d) {
        auto& f = static_cast<formCreateTrack&>(d);
        f.updwnNumOfPts->setValue(8);
        f.cmdOk_Click();
        return int(QDialog::Accepted);
    });
    form->mnuCircular->trigger();
    const int track = Sel().CurrSelEntity;
    ASSERT_EQ(Sel().CurrSelEntityType, 3);
    EXPECT_EQ(EntityName(track), "Track02");
    EXPECT_EQ(ZELMAR_track_get_number_of_points(track), 8);
    EXPECT_EQ(ZELMAR_track_is_cyclic(track), 1);
    double p[3];
    ZELMAR_track_get_point(track, 2, p);
    const double r = form->Document()->WorldSize / 10.0;
    EXPECT_NEAR(p[0], 0.0, 1e-9);
    EXPECT_NEAR(p[1], r, 1e-9);
    form->mnuUndo->trigger();
    EXPECT_EQ(ZELMAR_track_get_save_flag(track), 0);
    EXPECT_EQ(node(QStringLiteral("Track%1").arg(track)), nullptr);
    form->mnuRedo->trigger();
    EXPECT_EQ(ZELMAR_track_get_save_flag(track), 1);
    EXPECT_NE(node(QStringLiteral("Track%1").arg(track)), nullptr);
}

TEST_F(Tracks, ACustomTrackOfOnePointCreatesNothingAndEndsLaying) {
    form->mnuCustom->trigger();
    ASSERT_TRUE(form->IsLayingCustomTrack());
    const int before = ZELMAR_track_get_first_track();
    click(1, 5, 5);
    dialogs.msgAnswers.push_back(vbOK);
    click(2, 5, 5);
    EXPECT_FALSE(form->IsLayingCustomTrack());
    EXPECT_EQ(dialogs.last("msgBox")->text, QStringLiteral("We need to have atleast 2 points. No track has been created."));
    int count = 0;
    for (int t = before; t; t = ZELMAR_track_get_next(t)) ++count;
    EXPECT_EQ(count, 1);  // the sample's own
}

TEST_F(Tracks, ClicksInEmptySpaceLayPointsOnTheGridPlane) {
    form->mnuCustom->trigger();
    click(1, 3, 3);  // a corner of the sky: no polygon below
    click(1, 8, 3);
    EXPECT_EQ(form->StatusPanel[3]->text(), GetLocaleString(380));
    ASSERT_EQ(tracks->Tracks().CustomTrackPoints().size(), 6u);
    dialogs.msgAnswers.push_back(vbNo);
    click(2, 8, 3);
    EXPECT_EQ(dialogs.last("msgBox")->text, QStringLiteral("Should the track be cyclic?"));
    const int track = Sel().CurrSelEntity;
    ASSERT_EQ(Sel().CurrSelEntityType, 3);
    EXPECT_EQ(ZELMAR_track_is_cyclic(track), 0);
    EXPECT_EQ(ZELMAR_track_get_number_of_points(track), 2);
    EXPECT_FALSE(form->IsLayingCustomTrack());
}

TEST_F(Tracks, InsertingOnTheClosingSegmentAppendsAndNoToTheWarningChangesNothing) {
    const int track = TrackUsingName("Track01");
    ASSERT_NE(track, 0);
    form->CamTrackBkTree->setCurrentItem(node(QStringLiteral("Track%1").arg(track)));
    form->CamTrackBkTree->itemClicked(node(QStringLiteral("Track%1").arg(track)), 0);
    ASSERT_EQ(Sel().CurrSelEntity, track);
    const int n = ZELMAR_track_get_number_of_points(track);
    // Hover the middle of the closing segment (last point to point 0) in the active view.
    frmPicWins* v = form->frmPicWins;
    ZELMAR_camera_set_current(v->ViewCams(v->ActiveWin).CamHandle, v->PicWindow(v->ActiveWin)->Target());
    double a[3], b[3], mid[3];
    ZELMAR_track_get_point(track, n - 1, a);
    ZELMAR_track_get_point(track, 0, b);
    for (int k = 0; k < 3; ++k) mid[k] = (a[k] + b[k]) / 2;
    int s[2];
    ASSERT_EQ(ZELMAR_engine_3D_point_to_2D(mid, s), 0);
    TrackTools& tools = tracks->Tracks();
    tools.MonitorInsertTrackPoint(s[0], s[1]);
    ASSERT_TRUE(tools.InsertPointAvailable());

    form->mnuCamera->trigger();  // something on the undo stack
    Sel().CurrSelEntityType = 3;
    Sel().CurrSelEntity = track;
    const int depth = form->UndoStack().UBound();
    dialogs.msgAnswers.push_back(vbNo);
    tools.InsertTrackPt();
    EXPECT_EQ(dialogs.last("msgBox")->text, GetLocaleString(361));
    EXPECT_EQ(ZELMAR_track_get_number_of_points(track), n);
    EXPECT_EQ(form->UndoStack().UBound(), depth);

    dialogs.msgAnswers.push_back(vbYes);
    tools.InsertTrackPt();
    ASSERT_EQ(ZELMAR_track_get_number_of_points(track), n + 1);
    EXPECT_EQ(form->UndoStack().UBound(), 0);
    double last[3];
    ZELMAR_track_get_point(track, n, last);
    EXPECT_NEAR(std::hypot(last[0] - mid[0], last[1] - mid[1]), 0.0, form->Document()->WorldSize / 50);
    double first[3];
    ZELMAR_track_get_point(track, 0, first);
    EXPECT_EQ(first[0], b[0]);
}

TEST_F(Tracks, DeletingSelectedPointsKeepsTheOthersInOrder) {
    const int track = TrackUsingName("Track01");
    Sel().CurrSelEntityType = 3;
    Sel().CurrSelEntity = track;
    const int n = ZELMAR_track_get_number_of_points(track);
    double p2[3], p4[3];
    ZELMAR_track_get_point(track, 2, p2);
    ZELMAR_track_get_point(track, 4, p4);
    Sel().SelTrackPts = {0, 1, 3};
    form->UndoStack().Reset();
    tracks->Tracks().cmdTrkPtDelete_Click();
    ASSERT_EQ(ZELMAR_track_get_number_of_points(track), n - 2);
    double q[3];
    ZELMAR_track_get_point(track, 1, q);
    EXPECT_EQ(q[0], p2[0]);
    ZELMAR_track_get_point(track, 2, q);
    EXPECT_EQ(q[0], p4[0]);
    EXPECT_EQ(Sel().SelTrackPtsCount(), 0);
}

TEST_F(Tracks, TheChaseDialogSendsOnlyOnApplyAndKeepsTheChasedNameForPhysics) {
    const int cam = CameraUsingName("Camera01");
    ZELMAR_camera_set_name_to_chase(cam, "Camera02");
    ZELMAR_camera_set_chase_type(cam, 3);
    formCamChaseParams f(ChaseTarget{2, cam}, {});
    EXPECT_EQ(f.cmbChaseType->currentIndex(), 2);
    EXPECT_EQ(f.cmbCamChaseCamOrObj->currentText(), QStringLiteral("Camera02"));
    EXPECT_EQ(f.cmbCamChaseCamOrObj->findText(QStringLiteral("Camera01")), -1);  // never its own target
    EXPECT_FALSE(f.cmdApply->isEnabled());
    f.cmbChaseType->setCurrentIndex(6);
    EXPECT_TRUE(f.cmdApply->isEnabled());
    EXPECT_EQ(ZELMAR_camera_get_chase_type(cam), 3);  // nothing sent yet
    f.SetFieldText(f.ForceDir[0], QStringLiteral("0"));
    f.SetFieldText(f.ForceDir[1], QStringLiteral("0"));
    f.SetFieldText(f.ForceDir[2], QStringLiteral("0"));
    f.SetFieldText(f.ForceMag, QStringLiteral("5"));
    f.SetFieldText(f.Friction, QStringLiteral("abc"));  // not a number: ignored
    f.cmdApply_Click();
    EXPECT_EQ(ZELMAR_camera_get_chase_type(cam), 9);
    char name[64] = {0};
    ZELMAR_entity_get_name_to_chase(cam, name, sizeof name);
    EXPECT_STREQ(name, "Camera02");
    formCamChaseParams again(ChaseTarget{2, cam}, {});
    EXPECT_EQ(again.ForceMag.txt->text(), QStringLiteral("0"));
    // The up-downs are wheels: friction stops at 0.
    again.Friction.updwn->stepBy(-1);
    EXPECT_EQ(again.Friction.txt->text(), QStringLiteral("0"));
    EXPECT_EQ(again.Friction.updwn->value(), 0);
    again.Elasticity.updwn->stepBy(1);
    EXPECT_EQ(again.Elasticity.txt->text(), QStringLiteral("0.01"));
}

TEST_F(Tracks, AGroupFollowsATrackAndFallsFromIt) {
    const int house = GroupUsingName("House");
    formCamChaseParams f(ChaseTarget{1, house}, {});
    f.cmbChaseType->setCurrentIndex(4);
    f.cmbTrackToChase->setCurrentIndex(f.cmbTrackToChase->findText(QStringLiteral("Track01")));
    f.SetFieldText(f.TrkSpeed, QStringLiteral("12"));
    f.chkTrkFall->setChecked(true);
    f.cmdOk_Click();
    EXPECT_EQ(ZELMAR_group_get_chase_type(house), 135);
    EXPECT_EQ(ZELMAR_group_get_track_handle(house), TrackUsingName("Track01"));
    EXPECT_EQ(ZELMAR_group_get_absolute_speed(house), 12.0);
    double params[2] = {0, 0}, dims[3];
    ZELMAR_group_get_falling_from_track_params(house, params);
    ZELMAR_group_get_dimensions(house, dims);
    EXPECT_EQ(params[0], 1.0);
    EXPECT_DOUBLE_EQ(params[1], dims[2] / 2);
}

TEST_F(Tracks, ABackgroundIsCreatedWithItsDefaultsAndItsBoxesStoreOnlyOnEnter) {
    dialogs.fileAnswers.push_back(QString());
    EXPECT_EQ(tracks->CreateNewBackground(), 0);  // cancelled: nothing
    dialogs.fileAnswers.push_back(QStringLiteral(VEXIL_SOURCE_DATA "/samples/bitmaps/sky.jpg"));
    const int b = tracks->CreateNewBackground();
    ASSERT_NE(b, 0);
    EXPECT_EQ(EntityName(b), "Background02");
    EXPECT_EQ(ZELMAR_background_get_bottom(b), -5500.0);
    EXPECT_EQ(ZELMAR_background_get_distance(b), 30000.0);
    EXPECT_EQ(ZELMAR_background_get_intensity_step(b), 0.3);
    ASSERT_EQ(Sel().CurrSelEntityType, 5);
    BackgroundPanel& panel = tracks->BkgPanel();
    EXPECT_EQ(panel.Background(), b);
    QLineEdit* dist = panel.txt[BackgroundPanel::Dist];
    dist->setFocus();
    QTest::keyClicks(dist, QStringLiteral("1"));
    EXPECT_TRUE(panel.Marked(BackgroundPanel::Dist));
    panel.txtBkg_LostFocus(BackgroundPanel::Dist);
    EXPECT_EQ(dist->text(), QStringLiteral("30000"));
    dist->setText(QStringLiteral("25000"));
    QTest::keyClick(dist, Qt::Key_Return);
    EXPECT_EQ(ZELMAR_background_get_distance(b), 25000.0);
    EXPECT_FALSE(panel.Marked(BackgroundPanel::Dist));

    // Delete and undo.
    form->DeleteSelected();
    EXPECT_EQ(node(QStringLiteral("Background%1").arg(b)), nullptr);
    form->mnuUndo->trigger();
    EXPECT_NE(node(QStringLiteral("Background%1").arg(b)), nullptr);
    EXPECT_EQ(ZELMAR_background_get_distance(b), 25000.0);
}

TEST_F(Tracks, CamerasAndTracksSurviveASaveAndALoad) {
    form->mnuCamera->trigger();
    const QString path = tempPath(QStringLiteral("cams.wld"));
    form->Document()->ZelmarEngineSave(path, form->Document()->RootGrp, 0x1203);
    ASSERT_TRUE(form->Document()->LoadWorld(path));
    const int cam = CameraUsingName("Camera03");
    ASSERT_NE(cam, 0);
    EXPECT_NE(tracks->Markers().GetCamGrp(cam), 0);
    EXPECT_EQ(tracks->Markers().TotalCamGrps(), 3);
    EXPECT_NE(node(QStringLiteral("Camera%1").arg(cam)), nullptr);
}

TEST_F(Tracks, TheCameraViewLooksThroughTheCurrentSceneCamera) {
    const int cam = CameraUsingName("Camera02");
    form->CamTrackBkTree->itemClicked(node(QStringLiteral("Camera%1").arg(cam)), 0);
    ASSERT_EQ(Sel().CurrSelEntity, cam);
    form->frmPicWins->ApplyViewCommand(1, ViewCamera);
    EXPECT_EQ(form->frmPicWins->ShownCamera(1), cam);
    EXPECT_EQ(dialogs.count("exec"), 0);  // no list to choose from
}

} // namespace
