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
    const CutLine line{double(CutStartX), double(CutStartY), double(CutEndX), double(CutEndY)};
    const int group = Sel().CurrSelEntity;
    // Every ring in a few reads and every edge projected in one call; the crossings then ask the answers
    // in ring order.
    const std::vector<int> pols = Sel().SelPols.ToVector();
    std::vector<CutPoint> rings;
    std::vector<size_t> starts;
    ReadCutRings(pols, rings, starts);
    std::vector<double> ends(6 * rings.size());
    for (size_t i = 0; i + 1 < starts.size(); ++i)
        for (size_t j = starts[i]; j < starts[i + 1]; ++j) {
            const CutPoint& a = rings[j];
            const CutPoint& b = rings[j + 1 < starts[i + 1] ? j + 1 : starts[i]];
            std::copy(a.xyz, a.xyz + 3, &ends[6 * j]);
            std::copy(b.xyz, b.xyz + 3, &ends[6 * j + 3]);
        }
    std::vector<int> screen(4 * rings.size(), 0), shown(rings.size(), 0);
    if (!rings.empty())
        ZELMAR_engine_3D_edges_to_2D(ends.data(), static_cast<int>(rings.size()), screen.data(), shown.data());
    size_t edge = 0;
    const EdgeToScreen toScreen = [&](const double*, const double*, double s[2], double e[2]) {
        const size_t j = edge++;
        if (j >= shown.size() || shown[j] != 1) return false;
        s[0] = screen[4 * j];
        s[1] = screen[4 * j + 1];
        e[0] = screen[4 * j + 2];
        e[1] = screen[4 * j + 3];
        return true;
    };
    std::vector<CutPoint> list;
    CutHalvesBatch halves;
    halves.Reserve(pols.size(), rings.size());
    std::vector<int> cut;
    cut.reserve(pols.size());
    for (size_t i = 0; i < pols.size(); ++i) {
        edge = starts[i];
        int first = 0, second = 0;
        if (FindCutCrossingsOnRing(rings.data() + starts[i], starts[i + 1] - starts[i], line, toScreen, list, first,
                                   second) != 2)
            continue;
        if (halves.Add(pols[i], list, first, second)) cut.push_back(pols[i]);
    }
    const std::vector<CutHalves> made = halves.Make(group);
    for (size_t i = 0; i < made.size(); ++i) {
        if (made[i].first == 0 || made[i].second == 0) { // refused by the engine: no half of it stays
            for (const int h : {made[i].first, made[i].second})
                if (h) ZELMAR_polygon_delete(h);
            continue;
        }
        CutAddedPols.push_back(made[i].first);
        CutAddedPols.push_back(made[i].second);
        CutDeletedPols.push_back(cut[i]);
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
    // The cut is drawn in the active view at once; the other three follow at the next turn of the event
    // loop, which is when the user could see them anyway.
    if (v)
        v->UpdateCamerasDeferred();
    else
        UpdateCameras();
}

} // namespace vexil
