#include "ObjectTools.h"

#include "ModellingActions.h"
#include "ModellingRefresh.h"
#include "geometry/MeshEdits.h"
#include "selection/ActionDeleteCreate.h"
#include "selection/ActionTransformEntity.h"
#include "selection/SelectionModel.h"
#include "undo/ActionUndoRedo_Stack.h"
#include "view/frmPicWins.h"

#include <cmath>
#include <zelmar/zelmar.h>

namespace vexil {

namespace {

ActionUndoRedo_Stack* stack() {
    SelectionModel* m = selectionModel();
    return m ? &m->Host().UndoStack() : nullptr;
}

bool live(int group) {
    return group != 0 && ZELMAR_group_is_group(group) == 1;
}

void makeCurrent(int type, int handle, const std::vector<int>& groups) {
    SelectionModel* m = selectionModel();
    if (!m) return;
    m->SetPrevSelEntityToCurrSelEntity();
    SelectionState& s = Sel();
    s.MultiSel.Reset();
    for (int g : groups)
        s.MultiSel.AddGrpHandles(g);
    s.CurrSelEntityType = type;
    s.CurrSelEntity = handle;
    m->ThingsToDoOnSelectedEntityChange();
    if (frmPicWins* v = m->Views())
        if (type == 1) v->SelectionBox().Initialize(handle);
}

// The points of a group before and after a deformer, as one ActionWeldSelPts.
template <class F> bool deform(int group, F&& change) {
    ActionUndoRedo_Stack* st = stack();
    if (!live(group) || !st) return false;
    ActionRef env = ActionUndoRedo_Stack::MakeAction(AT_ActionWeldSelPts);
    auto* a = env->As<ActionWeldSelPts>();
    if (!a) return false;
    a->SetSelPtsAndOldLocs(PointsOfGroup(group));
    a->SetGroup(group);
    if (!change()) return false;
    a->SetNewLocs();
    st->Push(env);
    FillWeldTable(WeldTableGroup());
    RefreshAfterPointsMoved(group);
    UpdateCameras();
    return true;
}

} // namespace

bool MirrorGroupCommand(int group, const std::array<double, 3>& factors, bool copy) {
    ActionUndoRedo_Stack* st = stack();
    if (!live(group) || !st) return false;
    if (factors[0] > 0 && factors[1] > 0 && factors[2] > 0) return false;
    ActionRef env = ActionUndoRedo_Stack::MakeAction(AT_ActionMirror);
    auto* a = env->As<ActionMirror>();
    if (!a) return false;
    const std::array<double, 3> centre = GroupCentre(group);
    if (copy) {
        const int c = ZELMAR_group_duplicate_tree(group);
        if (c == 0) return false;
        MirrorGroup(c, factors, centre);
        if (SelectionModel* m = selectionModel()) {
            m->FakeDeleteGroup(c); // out of sight for a moment: UnDeleteGroup gives it its tree node
            m->UnDeleteGroup(c, ZELMAR_group_get_father_group(group));
        }
        a->SetParameters(c, true, factors);
        st->Push(env);
        makeCurrent(1, c, {c});
    } else {
        a->SetParameters(group, false, factors);
        MirrorGroup(group, factors, centre);
        st->Push(env);
        FillWeldTable(WeldTableGroup());
        RefreshAfterPointsMoved(group);
    }
    UpdateStatusBar();
    UpdateCameras();
    return true;
}

bool DuplicateGroups(const std::vector<int>& groups, int count, const std::array<double, 3>& offset) {
    ActionUndoRedo_Stack* st = stack();
    SelectionModel* m = selectionModel();
    if (!st || !m || count < 1) return false;
    std::vector<int> copies;
    for (int g : groups) {
        if (!live(g)) continue;
        for (int i = 1; i <= count; ++i) {
            const int c = ZELMAR_group_duplicate_tree(g);
            if (c == 0) continue;
            const double d[3] = {offset[0] * i, offset[1] * i, offset[2] * i};
            if (d[0] != 0 || d[1] != 0 || d[2] != 0) ZELMAR_group_move(c, d, 0);
            m->FakeDeleteGroup(c);
            m->UnDeleteGroup(c, ZELMAR_group_get_father_group(g));
            copies.push_back(c);
        }
    }
    if (copies.empty()) return false;
    ActionRef env = ActionUndoRedo_Stack::MakeAction(AT_ActionCreate);
    auto* a = env->As<ActionCreate>();
    if (!a) return false;
    // One top-level copy is a created group; anything else a set whose members keep their fathers.
    const bool single = copies.size() == 1 && ZELMAR_group_get_father_group(copies[0]) == m->RootGrp();
    MultipleSelection set;
    for (int c : copies)
        set.AddGrpHandles(c);
    if (single)
        a->SetCreatedEntity(1, copies[0]);
    else
        a->SetCreatedEntity(6, 0, &set);
    st->Push(env);
    makeCurrent(single ? 1 : 6, single ? copies[0] : 0, copies);
    UpdateStatusBar();
    UpdateCameras();
    return true;
}

bool BendGroupCommand(int group, int along, int direction, double degrees) {
    return deform(group, [&] { return BendGroup(group, along, direction, degrees); });
}

bool DisplaceGroupCommand(int group, double strength, const DisplaceSampler& sample) {
    return deform(group, [&] { return DisplaceGroup(group, strength, sample) > 0; });
}

bool AlignGroups(const std::vector<int>& groups, int target, const std::array<int, 3>& mode) {
    ActionUndoRedo_Stack* st = stack();
    if (!st || !live(target) || (mode[0] == 0 && mode[1] == 0 && mode[2] == 0)) return false;
    std::vector<int> moving;
    for (int g : groups)
        if (live(g) && g != target) moving.push_back(g);
    if (moving.empty()) return false;
    double tb[6], tref[3];
    ZELMAR_group_get_bounding_box(target, tb);
    ZELMAR_group_get_rotate_reference_point(target, tref);
    ActionRef env = ActionUndoRedo_Stack::MakeAction(AT_ActionAlign);
    auto* a = env->As<ActionAlign>();
    if (!a) return false;
    MultipleSelection set;
    for (int g : moving)
        set.AddGrpHandles(g);
    if (moving.size() == 1)
        a->SetAlignedEntity(1, moving[0]);
    else
        a->SetAlignedEntity(6, 0, &set);
    bool changed = false;
    for (int g : moving) {
        double b[6], ref[3], d[3] = {0, 0, 0};
        ZELMAR_group_get_bounding_box(g, b);
        ZELMAR_group_get_rotate_reference_point(g, ref);
        for (int k = 0; k < 3; ++k) {
            switch (mode[size_t(k)]) {
            case 1: d[k] = tb[k] - b[k]; break;
            case 2: d[k] = (tb[k] + tb[k + 3]) / 2 - (b[k] + b[k + 3]) / 2; break;
            case 3: d[k] = tref[k] - ref[k]; break;
            case 4: d[k] = tb[k + 3] - b[k + 3]; break;
            default: break;
            }
        }
        if (d[0] == 0 && d[1] == 0 && d[2] == 0) continue;
        ZELMAR_group_move(g, d, 0);
        changed = true;
    }
    if (!changed) return false;
    a->SetLocationsAfter();
    st->Push(env);
    if (SelectionModel* m = selectionModel()) {
        if (frmPicWins* v = m->Views())
            if (Sel().CurrSelEntityType == 1) v->SelectionBox().Initialize(Sel().CurrSelEntity);
        Sel().MultiSel.InitializeBndBoxes();
    }
    UpdateCameras();
    return true;
}

} // namespace vexil
