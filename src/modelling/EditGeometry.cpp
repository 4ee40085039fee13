#include "EditGeometry.h"

#include "ModellingActions.h"
#include "ModellingRefresh.h"
#include "PolygonNodes.h"
#include "SimplifyWorkbench.h"
#include "engine/EntityNaming.h"
#include "frame/Dialogs.h"
#include "frame/Locale.h"
#include "geometry/MeshEdits.h"
#include "geometry/PolygonPlaces.h"
#include "geometry/Weld.h"
#include "selection/ActionGrouping.h"
#include "selection/SelectionModel.h"
#include "undo/ActionUndoRedo_Stack.h"
#include "view/frmPicWins.h"

#include <QLocale>
#include <cmath>
#include <unordered_set>
#include <zelmar/zelmar.h>

namespace vexil {

namespace {

SimplifyWorkbench* g_workbench = nullptr;

void message(int id) {
    dialogs().msgBox(GetLocaleString(id), MsgOKOnly, MsgInformation);
}

ActionUndoRedo_Stack* stack() {
    SelectionModel* m = selectionModel();
    return m ? &m->Host().UndoStack() : nullptr;
}

bool groupIsCurrent() {
    return Sel().CurrSelEntityType == 1 && ZELMAR_group_is_group(Sel().CurrSelEntity) == 1;
}

} // namespace

SimplifyWorkbench* simplifyWorkbench() {
    return g_workbench;
}
void setSimplifyWorkbench(SimplifyWorkbench* workbench) {
    g_workbench = workbench;
}

void EditGeometry::EditModeChanged(bool editingGeometry) {
    FillWeldTable(editingGeometry && groupIsCurrent() ? Sel().CurrSelEntity : 0);
    if (SelectionModel* m = selectionModel()) {
        if (Sel().SelPols.Count() > 0) m->UpdateSelPolsRelatedPtsArray();
    }
}

void EditGeometry::cmdWeld_Click(const QString& thresholdText) {
    SelectionModel* m = selectionModel();
    if (!m || !groupIsCurrent()) return;
    const std::vector<int> points = Sel().SelPts.ToVector();
    if (points.empty()) {
        message(350);
        return;
    }
    bool ok = false;
    const double th = QLocale::c().toDouble(thresholdText.trimmed(), &ok);
    if (!ok || !std::isfinite(th)) {
        dialogs().msgBox(GetLocaleString(184) + QStringLiteral(": \"") + thresholdText +
                             QStringLiteral("\" is not a number."),
                         MsgOKOnly, MsgExclamation);
        return;
    }
    ActionRef env = ActionUndoRedo_Stack::MakeAction(AT_ActionWeldSelPts);
    auto* a = env->As<ActionWeldSelPts>();
    if (!a) return;
    a->SetSelPtsAndOldLocs(points);
    a->SetGroup(Sel().CurrSelEntity);
    switch (WeldPoints(points, th)) {
    case WeldResult::NoPointsWithin:
        message(392);
        return;
    case WeldResult::ThresholdTooSmall:
        message(393);
        return;
    case WeldResult::Welded:
        break;
    }
    a->SetNewLocs();
    stack()->Push(env);
    FillWeldTable(WeldTableGroup());
    RefreshAfterPointsMoved(Sel().CurrSelEntity);
    UpdateCameras();
}

void EditGeometry::cmdFlipPol_Click() {
    if (!groupIsCurrent()) return;
    const std::vector<int> pols = Sel().SelPols.ToVector();
    if (pols.empty()) {
        message(358);
        return;
    }
    ActionRef env = ActionUndoRedo_Stack::MakeAction(AT_ActionPolsFlip);
    auto* a = env->As<ActionPolsFlip>();
    if (!a) return;
    FlipPolygons(pols);
    a->SetPolsFlipped(pols);
    stack()->Push(env);
    UpdateCameras();
}

namespace {

void deletePolygons(const std::vector<int>& pols) {
    const int group = Sel().CurrSelEntity;
    ActionRef env = ActionUndoRedo_Stack::MakeAction(AT_ActionDeleteGrpPols);
    auto* a = env->As<ActionDeleteGrpPols>();
    if (!a) return;
    WeldTableLeave(pols);
    std::vector<PolygonPlace> places = FakeDeletePols(pols);
    if (places.empty()) return;
    RemovePolygonNodes(PolygonsOf(places));
    a->SetDeletedPols(std::move(places), group);
    stack()->Push(env);
    ClearSubSelection();
    if (SelectionModel* m = selectionModel()) {
        m->Host().SetSelPolName(QString());
        m->Host().RefreshGroup(group);
    }
    UpdateStatusBar();
    UpdateCameras();
}

} // namespace

void EditGeometry::cmdDeletePol_Click() {
    if (!groupIsCurrent()) return;
    const std::vector<int> pols = Sel().SelPols.ToVector();
    if (pols.empty()) {
        message(358);
        return;
    }
    deletePolygons(pols);
}

void EditGeometry::cmdEditPtDelete_Click() {
    if (!groupIsCurrent()) return;
    if (Sel().SelPts.Count() == 0) {
        message(350);
        return;
    }
    if (SelectionModel* m = selectionModel()) m->UpdateSelPtsPolArray();
    std::vector<int> owners;
    std::unordered_set<int> seen;
    for (int owner : Sel().SelPtsPols.ToVector())
        if (owner != 0 && seen.insert(owner).second) owners.push_back(owner);
    deletePolygons(owners);
}

void EditGeometry::cmdDetachPols_Click() {
    SelectionModel* m = selectionModel();
    if (!m || !groupIsCurrent()) return;
    const std::vector<int> pols = Sel().SelPols.ToVector();
    if (pols.empty()) {
        message(358);
        return;
    }
    const int old = Sel().CurrSelEntity;
    ActionRef env = ActionUndoRedo_Stack::MakeAction(AT_ActionDetachPols);
    auto* a = env->As<ActionDetachPols>();
    if (!a) return;
    std::vector<PolygonPlace> moved;
    WeldTableLeave(pols);
    const int g = DetachPolygons(pols, old, moved);
    if (g == 0) return;
    RemovePolygonNodes(PolygonsOf(moved));
    m->UnDeleteGroup(g, ZELMAR_group_get_father_group(g)); // its tree node
    a->SetOldGrp(old);
    a->SetNewGrp(g);
    a->SetDetachedPols(std::move(moved));
    stack()->Push(env);
    m->SetPrevSelEntityToCurrSelEntity();
    Sel().CurrSelEntityType = 1;
    Sel().CurrSelEntity = g;
    m->ThingsToDoOnSelectedEntityChange();
    UpdateStatusBar();
    UpdateCameras();
}

void EditGeometry::ReplaceGroup(int group, int replacement) {
    SelectionModel* m = selectionModel();
    if (!m) return;
    ZELMAR_group_set_name(replacement, GetNewGrpNameFrmGivenStr(EntityName(group)).c_str());
    ActionRef env = ActionUndoRedo_Stack::MakeAction(AT_ActionReplaceGrp);
    auto* a = env->As<ActionReplaceGrp>();
    if (!a) return;
    a->SetGrpThatWasReplaced(group);
    a->SetGrpReplacedWith(replacement);
    const int father = ZELMAR_group_get_father_group(group);
    const int next = ZELMAR_group_get_next_sibling(group);
    m->FakeDeleteGroup(group);
    m->UnDeleteGroup(replacement, father, next);
    stack()->Push(env);
    if (WeldTableGroup() == group) FillWeldTable(0);
    m->SetPrevSelEntityToCurrSelEntity();
    Sel().CurrSelEntityType = 1;
    Sel().CurrSelEntity = replacement;
    m->ThingsToDoOnSelectedEntityChange();
    UpdateStatusBar();
    UpdateCameras();
}

void EditGeometry::cmdTriangulate_Click() {
    if (!groupIsCurrent()) {
        message(382);
        return;
    }
    const int g = Sel().CurrSelEntity;
    const int copy = ZELMAR_group_create_copy_made_of_triangles(g, EntityName(g).c_str());
    if (copy == 0) return;
    const int before = ZELMAR_group_get_number_of_polygons(g);
    if (ZELMAR_group_get_number_of_polygons(copy) == 0 && before > 0) {
        ZELMAR_group_delete_members(copy);
        dialogs().msgBox(QStringLiteral("The group has no polygon with an area: there is nothing to triangulate."),
                         MsgOKOnly, MsgInformation);
        return;
    }
    ReplaceGroup(g, copy);
}

void EditGeometry::cmdReducePols_Click() {
    if (!groupIsCurrent()) {
        message(382);
        return;
    }
    SimplifyWorkbench* w = simplifyWorkbench();
    if (!w) {
        dialogs().msgBox(QStringLiteral("The simplification workbench is not available in this version yet: "
                                        "Reduce Polys cannot run."),
                         MsgOKOnly, MsgInformation);
        return;
    }
    const int g = Sel().CurrSelEntity;
    const int reduced = w->Simplify(g);
    if (reduced == 0 || ZELMAR_group_is_group(reduced) != 1) return;
    if (ZELMAR_group_get_father_group(reduced) != ZELMAR_group_get_father_group(g))
        ZELMAR_group_set_father_group(reduced, ZELMAR_group_get_father_group(g));
    ReplaceGroup(g, reduced);
}

} // namespace vexil
