#include "mdlCutPols.h"

#include "ExtrudeActions.h"
#include "ModellingRefresh.h"
#include "PolygonNodes.h"
#include "selection/SelectionModel.h"
#include "undo/ActionUndoRedo_Stack.h"
#include "view/frmPicWins.h"
#include "view/picWindow.h"

#include <QPainter>
#include <zelmar/zelmar.h>

namespace vexil {

namespace {

frmPicWins* views() {
    SelectionModel* m = selectionModel();
    return m ? m->Views() : nullptr;
}

} // namespace

mdlCutPols& mdlCutPols::Instance() {
    static mdlCutPols m;
    return m;
}

void mdlCutPols::CutMouseDown(int x, int y) {
    CutInProgress = true;
    CutStartX = x;
    CutStartY = y;
    if (frmPicWins* v = views()) v->SetMousePointer(QStringLiteral("CutPol1"));
}

void mdlCutPols::CutMouseMove(int x, int y) {
    if (!CutInProgress) return;
    frmPicWins* v = views();
    if (!v) return;
    const int i = v->ActiveWin;
    v->UpdateCamerasSingle(i); // the picture without the last line
    picWindow* w = v->PicWindow(i);
    QImage& back = w->BackBuffer();
    if (back.isNull()) return;
    {
        QPainter p(&back);
        p.setPen(QPen(QColor(255, 0, 0)));
        p.drawLine(CutStartX, CutStartY, x, y);
    }
    w->update();
}

void mdlCutPols::CutSelectedPols() {
    frmPicWins* v = views();
    if (!v) return;
    const int i = v->ActiveWin;
    // The active view's camera and size answer the projections.
    ZELMAR_camera_set_current(v->ViewCams(i).CamHandle, v->PicWindow(i)->Target());
    const EdgeToScreen toScreen = [](const double a[3], const double b[3], double s[2], double e[2]) {
        int r1[2] = {0, 0}, r2[2] = {0, 0};
        if (ZELMAR_engine_3D_edge_to_2D(a, b, r1, r2) != 1) return false;
        s[0] = r1[0];
        s[1] = r1[1];
        e[0] = r2[0];
        e[1] = r2[1];
        return true;
    };
    const CutLine line{double(CutStartX), double(CutStartY), double(CutEndX), double(CutEndY)};
    const int group = Sel().CurrSelEntity;
    std::vector<CutPoint> list;
    for (int pol : Sel().SelPols.ToVector()) {
        int first = 0, second = 0;
        if (FindCutCrossings(pol, line, toScreen, list, first, second) != 2) continue;
        const CutHalves h = BuildCutPols(pol, group, list, first, second);
        if (h.first == 0) continue;
        CutAddedPols.push_back(h.first);
        CutAddedPols.push_back(h.second);
        CutDeletedPols.push_back(pol);
    }
}

void mdlCutPols::CutMouseUp(int x, int y) {
    SelectionModel* m = selectionModel();
    ActionRef env = ActionUndoRedo_Stack::MakeAction(AT_ActionCutPol);
    CutInProgress = false;
    CutEndX = x;
    CutEndY = y;
    frmPicWins* v = views();
    if (v) v->SetMousePointer(QStringLiteral("CutPol2"));
    CutAddedPols.clear();
    CutDeletedPols.clear();
    if (Sel().CurrSelEntityType == 1) CutSelectedPols();
    if (CutDeletedPols.empty() || !m) {
        if (v) v->UpdateCamerasSingle(v->ActiveWin); // the rubber line goes
        return;
    }
    const int group = Sel().CurrSelEntity;
    WeldTableLeave(CutDeletedPols);
    std::vector<PolygonPlace> places = FakeDeletePols(CutDeletedPols);
    RemovePolygonNodes(CutDeletedPols);
    AddPolygonNodes(group, CutAddedPols);
    WeldTableEnter(CutAddedPols);
    SelectPolygons(CutAddedPols);
    if (v) v->SetMousePointer(QStringLiteral("Pointer")); // UpdateCameras below repaints the active view too
    UpdateStatusBar();
    if (auto* a = env->As<ActionCutPol>()) {
        a->SetDeletedPolsArray(std::move(places));
        a->SetAddedPolsArray(CutAddedPols, group);
        m->Host().UndoStack().Push(env);
    }
    UpdateCameras();
}

} // namespace vexil
