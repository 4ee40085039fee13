// The main window (offscreen): a box made from the create panel, edited through the Edit Geometry panel,
// the gizmo in polygon and point mode, the views' point marks, Align as a tool of the views.
#include "MainWindowFixture.h"
#include "app/Form1.h"
#include "app/mdlSubMain.h"
#include "builders/CreatePanel.h"
#include "frame/InputState.h"
#include "gizmo/TransformGizmo.h"
#include "gizmo/ViewGizmos.h"
#include "app/Form1_Gizmo.h"
#include "app/Form1_Selection.h"
#include "modelling/frmEditGeom.h"
#include "engine/EntityNaming.h"
#include "document/WorkspaceTrees.h"
#include "frame/Dialogs.h"
#include "frame/Locale.h"
#include "selection/SelectionModel.h"
#include "selection/SelectionState.h"
#include "selection/WeldedPoints.h"
#include "undo/ActionUndoRedo_Stack.h"
#include "view/frmPicWins.h"
#include "view/picWindow.h"

#include <QAction>
#include <QComboBox>
#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPushButton>
#include <QTabWidget>
#include <QTest>
#include <QToolBar>
#include <cmath>
#include <zelmar/zelmar.h>

using namespace vexil;

namespace {

class Form1Modelling : public vexil::test::MainWindowTest {
  protected:
    // Opens Edit Geometry with "Point" or "Polygon".
    void editGeometry(int stringId) {
        form->tabWorkspace->setCurrentIndex(Form1::TabEditGroup);
        form->cmbObj->setCurrentIndex(form->cmbObj->findText(GetLocaleString(323)));
        form->cmbObjEditGeom->setCurrentIndex(form->cmbObjEditGeom->findText(GetLocaleString(stringId)));
    }
    QPoint pixel(int i, const double p[3]) {
        ZELMAR_camera_set_current(form->frmPicWins->ViewCams(i).CamHandle, win(i)->Target());
        int r[2] = {0, 0};
        ZELMAR_engine_3D_point_to_2D(p, r);
        return {r[0], r[1]};
    }
    // Drags the X handle of view i's gizmo by `pixels` along it.
    void dragXHandle(int i, int pixels) {
        TransformGizmo& g = FormGizmos()->Gizmo(i);
        ASSERT_TRUE(g.Place());
        const QPointF c(g.Center2D[0], g.Center2D[1]), tip(g.TipX[0], g.TipX[1]);
        const QPointF dir = (tip - c) / std::hypot(tip.x() - c.x(), tip.y() - c.y());
        const QPoint from = (c + (tip - c) * 0.6).toPoint();
        drag(i, from, from + (dir * pixels).toPoint(), 5);
    }
    int changes() { return form->UndoStack().GetChangesSinceSave(); }
    // A press on spinner `index`, the values, a release: as the user pulls the arrows.
    void mdlExtrudeDrag(int index, std::initializer_list<double> values) {
        ExtBvlSpinner* s = form->EditGeomPanel->spnExtBvl[size_t(index)];
        emit s->MouseDown();
        for (double v : values)
            s->SetValue(v);
        emit s->MouseUp();
    }

};

// Found by trying the editor: opening Edit Geometry left the weld table empty, so the polygon-mode gizmo
// moved nothing and still pushed an empty move.
TEST_F(Form1Modelling, OpeningEditGeometryFillsTheWeldTableAndThePolygonGizmoMoves) {
    const int box = createBox();
    ASSERT_NE(0, box);
    editGeometry(329);
    EXPECT_EQ(8, WeldTable().Count()); // the eight corners of the box
    form->mnuSelectAll_Click();
    ASSERT_EQ(6, Sel().SelPols.Count());
    double before[6], after[6];
    ZELMAR_group_get_bounding_box(box, before);
    form->ToolbarButton(QStringLiteral("Move"))->trigger();
    const int c0 = changes();
    dragXHandle(0, 40);
    ZELMAR_group_get_bounding_box(box, after);
    EXPECT_GT(after[0] - before[0], 1.0);
    EXPECT_EQ(c0 + 1, changes());
    EXPECT_EQ(AT_ActionMoveGrpPols, form->UndoStack().Retrive()->ActionType);
    // Leaving Edit Geometry empties the table.
    form->cmbObj->setCurrentIndex(0);
    EXPECT_EQ(0, WeldTable().Count());
}

TEST_F(Form1Modelling, PointModeDrawsEveryPointAndADragReportsBentPolygons) {
    const int box = createBox();
    editGeometry(325);
    form->frmPicWins->UpdateCameras();
    const int pt = ZELMAR_polygon_get_first_point(ZELMAR_group_get_first_polygon(box));
    double xyz[3];
    ZELMAR_point_get_xyz(pt, xyz);
    const QPoint p = pixel(3, xyz); // the perspective view shows every corner apart
    const QImage& img = win(3)->BackBuffer();
    bool blue = false;
    for (int dx = -2; dx <= 2; ++dx)
        for (int dy = -2; dy <= 2; ++dy)
            if (img.valid(p.x() + dx, p.y() + dy) && img.pixelColor(p.x() + dx, p.y() + dy) == QColor(0, 0, 255))
                blue = true;
    EXPECT_TRUE(blue) << "no point mark at " << p.x() << "," << p.y();

    // One corner pulled out of its polygons' planes: the status bar says so during the drag.
    std::vector<int> corner;
    for (int q = ZELMAR_group_get_first_polygon(box); q; q = ZELMAR_group_get_next_polygon(q))
        for (int c = ZELMAR_polygon_get_first_point(q); c; c = ZELMAR_point_get_next_point(c)) {
            double at[3];
            ZELMAR_point_get_xyz(c, at);
            if (at[0] == xyz[0] && at[1] == xyz[1] && at[2] == xyz[2]) corner.push_back(c);
        }
    ASSERT_EQ(3u, corner.size());
    Sel().SelPts.Assign(corner);
    FormSelection()->UpdateSelPtsPolArray();
    FormSelection()->ComputeSelPtsAvgCenter();
    form->ToolbarButton(QStringLiteral("Move"))->trigger();
    double moved[3];
    dragXHandle(3, 40);
    ZELMAR_point_get_xyz(pt, moved);
    EXPECT_GT(std::abs(moved[0] - xyz[0]) + std::abs(moved[1] - xyz[1]) + std::abs(moved[2] - xyz[2]), 1.0);
    EXPECT_TRUE(form->StatusPanel[3]->text().contains(QStringLiteral("not flat"))) << form->StatusPanel[3]->text().toStdString();
}

TEST_F(Form1Modelling, ThePanelDeletesAndUndoRefreshesTheCounts) {
    const int box = createBox();
    editGeometry(329);
    EXPECT_TRUE(form->EditGeomPanel->frmEditPol->isVisibleTo(form->EditGeomPanel));
    EXPECT_FALSE(form->EditGeomPanel->frmEditPt->isVisibleTo(form->EditGeomPanel));
    form->mnuSelectAll_Click();
    QTest::mouseClick(form->EditGeomPanel->cmdDeletePol, Qt::LeftButton);
    EXPECT_EQ(0, ZELMAR_group_get_number_of_polygons(box));
    EXPECT_EQ(QStringLiteral("0"), form->StatusPanel[2]->text());
    form->mnuUndo->trigger();
    EXPECT_EQ(6, ZELMAR_group_get_number_of_polygons(box));
    EXPECT_EQ(QStringLiteral("6"), form->StatusPanel[2]->text());
}

// Found by reading the dispatch: the views' Align slot was never pressed, so Align never received a click.
TEST_F(Form1Modelling, AlignIsAToolOfTheViewsAndMovesTheSelectionToTheTarget) {
    const int a = createBox();
    const int b = createBox();
    ASSERT_NE(a, b);
    const double off[3] = {300, 0, 0};
    ZELMAR_group_move(b, off, 0);
    form->frmPicWins->UpdateCameras();
    // a is current; the Align button, then a click on b in the top view.
    form->tabWorkspace->setCurrentIndex(Form1::TabGroups);
    form->SelectEntityFromTree(1, a);
    ASSERT_EQ(a, Sel().CurrSelEntity);
    ScriptedDialogs dlg;
    dlg.execAnswers.push_back([](QDialog&) { return int(QDialog::Accepted); });
    form->ToolbarButton(QStringLiteral("Align"))->trigger();
    EXPECT_EQ(ToolAlign, form->frmPicWins->ToolMode());
    double bl[3];
    ZELMAR_group_get_location(b, bl);
    const int c0 = changes();
    click(0, pixel(0, bl));
    EXPECT_EQ(1, dlg.count(QStringLiteral("exec")));
    double al[3];
    ZELMAR_group_get_location(a, al);
    for (int k = 0; k < 3; ++k)
        EXPECT_NEAR(bl[k], al[k], 1e-9);
    EXPECT_EQ(c0 + 1, changes());
    EXPECT_EQ(AT_ActionAlign, form->UndoStack().Retrive()->ActionType);
    EXPECT_EQ(ToolSelect, form->frmPicWins->ToolMode());
}

} // namespace

namespace {

using vexil::test::AppEnv;

// The scenarios a user runs, end to end; VEXIL_MODELLING_SHOT=dir saves a picture of the window after each.
class DoneWhen : public Form1Modelling {
  protected:
    void shot(const char* name) {
        const QByteArray dir = qgetenv("VEXIL_MODELLING_SHOT");
        if (dir.isEmpty()) return;
        form->frmPicWins->UpdateCameras();
        QCoreApplication::processEvents();
        form->grab().save(QString::fromLocal8Bit(dir) + QLatin1Char('/') + QLatin1String(name) + QStringLiteral(".png"));
    }
    void selectPolygons(const std::vector<int>& pols) {
        Sel().SelPols.Assign(pols);
        FormSelection()->UpdateSelPolsRelatedPtsArray();
        FormSelection()->ComputeSelPolsAvgCenter();
        FormSelection()->Host().UpdateEditGeomTabBasedOnPolsSelected();
    }
    std::vector<int> polygonsOf(int g) {
        std::vector<int> out;
        for (int p = ZELMAR_group_get_first_polygon(g); p; p = ZELMAR_group_get_next_polygon(p))
            out.push_back(p);
        return out;
    }
    QStringList treeKeys() { return form->GroupTree->Keys(); }
};

TEST_F(DoneWhen, TheHouseIsEditedAndEveryStepUndoesAndRedoes) {
    delete form;
    form = StartApplication(QStringLiteral("\"" VEXIL_SOURCE_DATA "/samples/Sample.wld\""));
    ASSERT_TRUE(form && form->WorldOpen());
    form->resize(1280, 900);
    QCoreApplication::processEvents();
    const int walls = ZELMAR_group_get_using_name("Walls");
    ASSERT_NE(0, walls);
    const QStringList keys0 = treeKeys();
    const int base = changes();
    form->SelectEntityFromTree(1, walls);
    editGeometry(329);
    std::vector<int> pols = polygonsOf(walls);
    ASSERT_GE(pols.size(), 4u);
    selectPolygons({pols[0], pols[1]});
    QTest::mouseClick(form->EditGeomPanel->cmdDetachPols, Qt::LeftButton); // 1
    const int detached = Sel().CurrSelEntity;
    EXPECT_NE(walls, detached);
    EXPECT_NE(nullptr, form->GroupTree->Node(QStringLiteral("Group%1").arg(detached)));
    editGeometry(329);
    selectPolygons(polygonsOf(detached));
    QTest::mouseClick(form->EditGeomPanel->cmdFlipPol, Qt::LeftButton); // 2
    form->SelectEntityFromTree(1, walls);
    editGeometry(329);
    pols = polygonsOf(walls);
    selectPolygons({pols[0]});
    QTest::mouseClick(form->EditGeomPanel->cmdDeletePol, Qt::LeftButton); // 3
    EXPECT_EQ(QString::number(ZELMAR_group_get_number_of_polygons(walls)), form->StatusPanel[2]->text());
    editGeometry(325);
    form->mnuSelectAll_Click();
    form->EditGeomPanel->txtWeldTh->setText(QStringLiteral("0.5"));
    QTest::mouseClick(form->EditGeomPanel->cmdWeld, Qt::LeftButton); // 4 (or "No points within")
    editGeometry(329);
    QTest::mouseClick(form->EditGeomPanel->cmdTriangulate, Qt::LeftButton); // 5
    const int tri = Sel().CurrSelEntity;
    EXPECT_NE(walls, tri);
    ScriptedDialogs dlg;
    dlg.execAnswers.push_back([](QDialog& d) {
        d.findChild<QComboBox*>()->setCurrentIndex(0); // X
        return int(QDialog::Accepted);
    });
    form->MirrorObjects(); // 6
    dlg.execAnswers.push_back([](QDialog&) { return int(QDialog::Accepted); });
    form->DuplicatGrp(); // 7
    EXPECT_GE(changes() - base, 7);
    shot("house_edited");
    const int pushed = changes() - base;
    for (int i = 0; i < pushed; ++i)
        form->mnuUndo->trigger();
    EXPECT_EQ(keys0, treeKeys());
    for (int i = 0; i < pushed; ++i)
        form->mnuRedo->trigger();
    EXPECT_NE(keys0, treeKeys());
    shot("house_redone");
}

TEST_F(DoneWhen, ABoxBecomesAHouseWithARoofAndACutWall) {
    const int box = createBox();
    editGeometry(329);
    // The top face: the polygon whose centre is highest.
    int top = 0;
    double best = -1e300;
    for (int p : polygonsOf(box)) {
        double c[3];
        ZELMAR_polygon_get_center(p, c);
        if (c[2] > best) {
            best = c[2];
            top = p;
        }
    }
    selectPolygons({top});
    const int base = changes();
    mdlExtrudeDrag(0, {20, 40});
    mdlExtrudeDrag(0, {15, 30});
    mdlExtrudeDrag(1, {0.8, 0.3});
    EXPECT_EQ(base + 3, changes());
    // Cut a wall: the front face (lowest y centre), along a line across it in the front view.
    int front = 0;
    double low = 1e300;
    for (int p : polygonsOf(box)) {
        double c[3];
        ZELMAR_polygon_get_center(p, c);
        if (c[1] < low && EntityName(p) != "Extruded Pol") {
            low = c[1];
            front = p;
        }
    }
    selectPolygons({front});
    double fc[3];
    ZELMAR_polygon_get_center(front, fc);
    form->frmPicWins->ActiveWin = 3;
    const double l[3] = {fc[0] - 200, fc[1], fc[2] + 5}, r[3] = {fc[0] + 200, fc[1], fc[2] - 5};
    const QPoint a = pixel(3, l), b = pixel(3, r);
    form->EditGeomPanel->tlbrCut->actions().value(0)->setChecked(true);
    ASSERT_TRUE(form->CutStateActive());
    drag(3, a, b, 4);
    EXPECT_EQ(base + 4, changes());
    EXPECT_EQ(2, Sel().SelPols.Count());
    form->EditGeomPanel->tlbrCut->actions().value(0)->setChecked(false);
    form->ZoomExtentAll();
    shot("box_house");
    for (int i = 0; i < 4; ++i)
        form->mnuUndo->trigger();
    EXPECT_EQ(6, ZELMAR_group_get_number_of_polygons(box));
    for (int i = 0; i < 4; ++i)
        form->mnuRedo->trigger();
    EXPECT_GT(ZELMAR_group_get_number_of_polygons(box), 10);
}

} // namespace
