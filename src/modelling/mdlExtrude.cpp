#include "mdlExtrude.h"

#include "ExtrudeActions.h"
#include "ModellingRefresh.h"
#include "PolygonNodes.h"
#include "frame/Dialogs.h"
#include "frame/Locale.h"
#include "selection/ActionTransformSubObject.h"
#include "selection/SelectionModel.h"
#include "selection/WeldedPoints.h"
#include "undo/ActionUndoRedo_Stack.h"
#include "view/frmPicWins.h"

#include <zelmar/zelmar.h>

namespace vexil {

namespace {

std::vector<int> selectedPols() {
    return Sel().SelPols.ToVector();
}

Vec3d polsCentre() {
    return Sel().SelPolsAvgCenter;
}

// Each welded set of the selection, straight from the table (a live step copies nothing).
template <class F> void eachSelectedSet(F&& f) {
    const HandleArray& idx = Sel().SelPolsWeldedPts;
    const WeldTableT& table = WeldTable();
    for (int i = 1; i <= idx.Count(); ++i) {
        const WeldedPoints* w = table.At(idx[i]);
        if (!w || w->Count() == 0) continue;
        Vec3d p{};
        ZELMAR_point_get_xyz(w->Point(1), p.data());
        const Vec3d to = f(p);
        for (int j = 1; j <= w->Count(); ++j)
            ZELMAR_point_set_xyz(w->Point(j), to.data());
    }
}

} // namespace

mdlExtrude& mdlExtrude::Instance() {
    static mdlExtrude m;
    return m;
}

void mdlExtrude::updwnExtBvl_MouseDown(int index) {
    SelectionModel* m = selectionModel();
    IgnoreExtBvlChange = false;
    m_pressed = true;
    m_group = Sel().CurrSelEntity;
    if (index == 0) {
        if (SetStep) SetStep(0, 1.0);
        if (m) m->ComputeSelPolsAvgCenter();
        ExtrudeInitialLoc = polsCentre();
        m_before.Capture(PointsOfPolygons(selectedPols()));
        ExtrudedPols.clear();
        ExtrudeBegin();
        if (m) m->UpdateSelPolsRelatedPtsArray();
    } else {
        BevelReset();
        if (SetStep) SetStep(1, 0.01);
        std::vector<int> pts = PointsOfSets(SelectedWeldSets());
        const std::vector<int> sides = PointsOfPolygons(ExtrudedPols);
        pts.insert(pts.end(), sides.begin(), sides.end());
        m_before.Capture(pts);
    }
}

void mdlExtrude::ExtrudeBegin() {
    const std::vector<int> pols = selectedPols();
    if (pols.empty()) return;
    ExtrudeOffset = {0, 0, 0};
    BoundaryEdges = CollectBoundaryEdges(pols);
    const ExtrudeFill fill = FillOf(pols.front());
    ExtrudeNormal = AveragedNormal(pols);
    ExtrudeNormalCopy = ExtrudeNormal;
    if (IsZeroNormal(ExtrudeNormal)) {
        dialogs().msgBox(GetLocaleString(613), MsgOKOnly, MsgInformation);
        return;
    }
    for (size_t k = 0; k < 3; ++k)
        ExtrudeSeedOffset[k] = ExtrudeNormal[k] * ExtrudeSeedFactor;
    ExtrudedPols = MakeExtrudeSides(pols, BoundaryEdges, m_group, polsCentre(), ExtrudeSeedOffset, fill);
    AddPolygonNodes(m_group, ExtrudedPols);
    UpdateStatusBar();
    WeldTableLeave(pols);
    WeldTableEnter(pols);
    WeldTableEnter(ExtrudedPols);
}

void mdlExtrude::ExtrudeChange(double amount) {
    if (Sel().SelPols.Count() == 0 || IsZeroNormal(ExtrudeNormal)) return;
    Vec3d delta{};
    for (size_t k = 0; k < 3; ++k)
        delta[k] = ExtrudeNormal[k] * amount - ExtrudeOffset[k];
    eachSelectedSet([&](const Vec3d& p) { return Vec3d{p[0] + delta[0], p[1] + delta[1], p[2] + delta[2]}; });
    for (size_t k = 0; k < 3; ++k)
        ExtrudeOffset[k] += delta[k];
}

void mdlExtrude::BevelChange(double value) {
    if (BevelFactor == 0) BevelFactor = 1.0;
    const double f = value / BevelFactor;
    if (SelectionModel* m = selectionModel()) m->ComputeSelPolsAvgCenter();
    const Vec3d c = polsCentre();
    eachSelectedSet([&](const Vec3d& p) {
        return Vec3d{c[0] + f * (p[0] - c[0]), c[1] + f * (p[1] - c[1]), c[2] + f * (p[2] - c[2])};
    });
    SetPlaneNormals(ExtrudedPols);
    BevelFactor *= f;
}

void mdlExtrude::afterStep() {
    SelectionModel* m = selectionModel();
    if (!m) return;
    m->ValidateChangedPolygons();
    m->ComputeSelPolsAvgCenter();
    if (frmPicWins* v = m->Views()) {
        if (ZELMAR_group_is_group(m_group) == 1) v->SelectionBox().Initialize(m_group);
        v->UpdateCameras(); // all four views follow the drag
    }
}

void mdlExtrude::updwnExtBvl_Change(int index, double value) {
    if (IgnoreExtBvlChange || value == 0) return;
    if (index == 0)
        ExtrudeChange(value);
    else
        BevelChange(value);
    afterStep();
}

void mdlExtrude::updwnExtBvl_MouseUp(int index, double /*value*/) {
    if (!m_pressed) return;
    m_pressed = false;
    IgnoreExtBvlChange = true;
    SelectionModel* m = selectionModel();
    if (index == 0) {
        ExtrudeFinalLoc = polsCentre();
        if (m && Sel().SelPols.Count() > 0) {
            ActionRef env = ActionUndoRedo_Stack::MakeAction(AT_ActionExtrude);
            if (auto* a = env->As<ActionExtrude>()) {
                a->SetMovedPolsArray(selectedPols());
                a->SetAddedPolsArray(m_group, ExtrudedPols);
                a->SetInitialLoc(ExtrudeInitialLoc);
                a->SetFinalLoc(ExtrudeFinalLoc);
                a->SetPointsBefore(m_before);
                m->Host().UndoStack().Push(env);
            }
        }
        if (SetValue) SetValue(0, 0.0);
    } else {
        // The value applied is the product of the steps taken; back at 1 the points go back exactly.
        if (BevelFactor == 1.0) m_before.Restore();
        if (m && BevelFactor != 1.0) {
            ActionRef env = ActionUndoRedo_Stack::MakeAction(AT_ActionBevel);
            if (auto* a = env->As<ActionBevel>()) {
                a->SetBevelAmount(BevelFactor);
                a->SetPointsBefore(m_before);
                m->Host().UndoStack().Push(env);
            }
        }
        if (SetValue) SetValue(1, 1.0);
        BevelReset();
    }
    m_before = PointsSnapshot();
    UpdateCameras();
}

} // namespace vexil
