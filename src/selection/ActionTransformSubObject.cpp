#include "ActionTransformSubObject.h"

#include "undo/ActionUndoRedo.h"
#include "SelectionModel.h"
#include "WeldedPoints.h"
#include "view/frmPicWins.h"

namespace vexil {

namespace {

std::vector<int> copySlots(const HandleArray& a) {
    return a.ToVector();
}

} // namespace

std::vector<PointSet> SelectedWeldSets() {
    std::vector<PointSet> sets;
    const HandleArray& indices = Sel().SelPolsWeldedPts;
    sets.reserve(size_t(indices.Count()));
    for (int i = 1; i <= indices.Count(); ++i) {
        const WeldedPoints* w = WeldTable().At(indices[i]);
        if (!w) continue;
        PointSet set;
        for (int j = 1; j <= w->Count(); ++j)
            set.push_back(w->Point(j));
        sets.push_back(std::move(set));
    }
    return sets;
}

std::vector<int> PointsOfSets(const std::vector<PointSet>& sets) {
    std::vector<int> out;
    for (const PointSet& s : sets)
        out.insert(out.end(), s.begin(), s.end());
    return out;
}

bool ExactRestore::Undo() {
    if (!m_has) return false;
    if (!m_hasAfter) {
        m_after = m_before.Again();
        m_hasAfter = true;
    }
    m_before.Restore();
    return true;
}

bool ExactRestore::Redo() {
    if (!m_hasAfter) return false;
    m_after.Restore();
    return true;
}

std::vector<int> SelectedTrackIndices() {
    const auto& sel = Sel().SelTrackPts;
    return std::vector<int>(sel.begin() + 1, sel.end());
}

namespace {

Vec3 minus(const Vec3& a, const Vec3& b) {
    return {a[0] - b[0], a[1] - b[1], a[2] - b[2]};
}
Vec3 negated(const Vec3& a) {
    return {-a[0], -a[1], -a[2]};
}

// After points of a group moved: the pivots of the selection, the group's cached geometry, the box.
void refreshGroup(int group, bool polygons) {
    SelectionModel* m = selectionModel();
    if (!m) return;
    if (polygons)
        m->ComputeSelPolsAvgCenter();
    else
        m->ComputeSelPtsAvgCenter();
    m->Host().RefreshGroup(group);
    if (frmPicWins* v = m->Views()) v->SelectionBox().Initialize(group);
}

void refreshTrack() {
    if (SelectionModel* m = selectionModel()) m->ComputeSelTrackPtsAvgCenter();
}

template <class Turn> void replay(const std::vector<RotationStep>& steps, bool backwards, Turn&& turn) {
    if (backwards) {
        for (auto it = steps.rbegin(); it != steps.rend(); ++it)
            turn(-it->amount, it->axis);
    } else {
        for (const RotationStep& s : steps)
            turn(s.amount, s.axis);
    }
}

void addStep(std::vector<RotationStep>& steps, const Vec3& amounts, int axis) {
    if (axis < 0 || axis > 2) return;
    steps.push_back({amounts[size_t(axis)], axis});
}

template <class T> std::unique_ptr<Action> make() {
    return std::make_unique<T>();
}

} // namespace

// ---- points ---------------------------------------------------------------------------------------------

void ActionMoveGrpPoints::SetMovedPtsToCurrSelPts() {
    m_points = copySlots(Sel().SelPts);
    m_group = Sel().CurrSelEntity;
    m_exact.SetBefore(PointsSnapshot(m_points));
}

void ActionMoveGrpPoints::Undo() {
    if (!m_exact.Undo()) {
        m_delta = minus(m_to, m_frm);
        MovePoints(m_points, negated(m_delta));
    }
    refreshGroup(m_group, false);
}

void ActionMoveGrpPoints::Redo() {
    if (!m_exact.Redo()) {
        m_delta = minus(m_to, m_frm);
        MovePoints(m_points, m_delta);
    }
    refreshGroup(m_group, false);
}

void ActionRotateGrpPoints::SetRotatedPtsToCurrSelPts() {
    m_points = copySlots(Sel().SelPts);
    m_pivot = Sel().SelPtsAvgCenter;
}

void ActionRotateGrpPoints::AddRotation(const Vec3& amounts, int axis) {
    addStep(m_steps, amounts, axis);
}

void ActionRotateGrpPoints::Undo() {
    if (!m_exact.Undo()) {
        replay(m_steps, true, [&](double a, int axis) { RotatePoints(m_points, m_pivot, a, axis); });
    }
    refreshGroup(m_group, false);
}

void ActionRotateGrpPoints::Redo() {
    if (!m_exact.Redo()) {
        replay(m_steps, false, [&](double a, int axis) { RotatePoints(m_points, m_pivot, a, axis); });
    }
    refreshGroup(m_group, false);
}

void ActionScaleGrpPoints::SetScaledPtsToCurrSelPts() {
    m_points = copySlots(Sel().SelPts);
    m_group = Sel().CurrSelEntity;
    m_pivot = Sel().SelPtsAvgCenter;
}

void ActionScaleGrpPoints::Undo() {
    if (!m_exact.Undo()) {
        ScalePoints(m_points, m_pivot, InverseFactors(m_factors));
    }
    refreshGroup(m_group, false);
}

void ActionScaleGrpPoints::Redo() {
    if (!m_exact.Redo()) {
        ScalePoints(m_points, m_pivot, m_factors);
    }
    refreshGroup(m_group, false);
}

// ---- polygons -------------------------------------------------------------------------------------------

void ActionMoveGrpPols::SetMovedWeldedPtsToCurrWeldedPts() {
    m_sets = SelectedWeldSets();
    m_group = Sel().CurrSelEntity;
    m_exact.SetBefore(PointsSnapshot(PointsOfSets(m_sets)));
}

void ActionMoveGrpPols::Undo() {
    if (!m_exact.Undo()) {
        m_delta = minus(m_to, m_frm);
        MoveWeldSets(m_sets, negated(m_delta));
    }
    refreshGroup(m_group, true);
}

void ActionMoveGrpPols::Redo() {
    if (!m_exact.Redo()) {
        m_delta = minus(m_to, m_frm);
        MoveWeldSets(m_sets, m_delta);
    }
    refreshGroup(m_group, true);
}

void ActionRotateGrpPols::SetRotatedWeldedPtsToCurrWeldedPts() {
    m_sets = SelectedWeldSets();
    m_pivot = Sel().SelPolsAvgCenter;
}

void ActionRotateGrpPols::AddRotation(const Vec3& amounts, int axis) {
    addStep(m_steps, amounts, axis);
}

void ActionRotateGrpPols::Undo() {
    if (!m_exact.Undo()) {
        replay(m_steps, true, [&](double a, int axis) { RotateWeldSets(m_sets, m_pivot, a, axis); });
    }
    refreshGroup(m_group, true);
}

void ActionRotateGrpPols::Redo() {
    if (!m_exact.Redo()) {
        replay(m_steps, false, [&](double a, int axis) { RotateWeldSets(m_sets, m_pivot, a, axis); });
    }
    refreshGroup(m_group, true);
}

void ActionScaleGrpPols::SetScaledWeldedPtsToCurrWeldedPts() {
    m_sets = SelectedWeldSets();
    m_group = Sel().CurrSelEntity;
    m_pivot = Sel().SelPolsAvgCenter;
}

void ActionScaleGrpPols::Undo() {
    if (!m_exact.Undo()) {
        ScaleWeldSets(m_sets, m_pivot, InverseFactors(m_factors));
    }
    refreshGroup(m_group, true);
}

void ActionScaleGrpPols::Redo() {
    if (!m_exact.Redo()) {
        ScaleWeldSets(m_sets, m_pivot, m_factors);
    }
    refreshGroup(m_group, true);
}

// ---- track points ---------------------------------------------------------------------------------------

void ActionMoveTrkPts::SetMovedTrkPtsToCurrSelTrkPts() {
    m_indices = SelectedTrackIndices();
    m_track = Sel().CurrSelEntity;
}

void ActionMoveTrkPts::Undo() {
    m_delta = minus(m_to, m_frm);
    MoveTrackPoints(m_track, m_indices, negated(m_delta));
    refreshTrack();
}

void ActionMoveTrkPts::Redo() {
    m_delta = minus(m_to, m_frm);
    MoveTrackPoints(m_track, m_indices, m_delta);
    refreshTrack();
}

void ActionRotateTrkPts::SetRotatedTrkPtsToCurrSelTrkPts() {
    m_indices = SelectedTrackIndices();
    m_track = Sel().CurrSelEntity;
    m_pivot = Sel().SelTrackPtsAvgCenter;
}

void ActionRotateTrkPts::AddRotation(const Vec3& amounts, int axis) {
    addStep(m_steps, amounts, axis);
}

void ActionRotateTrkPts::Undo() {
    replay(m_steps, true,
           [&](double a, int axis) { RotateTrackPoints(m_track, m_indices, m_pivot, a, axis); });
    refreshTrack();
}

void ActionRotateTrkPts::Redo() {
    replay(m_steps, false,
           [&](double a, int axis) { RotateTrackPoints(m_track, m_indices, m_pivot, a, axis); });
    refreshTrack();
}

void ActionScaleTrkPts::SetScaledTrkPtsToCurrSelPts() {
    m_indices = SelectedTrackIndices();
    m_track = Sel().CurrSelEntity;
    m_pivot = Sel().SelTrackPtsAvgCenter;
}

void ActionScaleTrkPts::Undo() {
    ScaleTrackPoints(m_track, m_indices, m_pivot, InverseFactors(m_factors));
    refreshTrack();
}

void ActionScaleTrkPts::Redo() {
    ScaleTrackPoints(m_track, m_indices, m_pivot, m_factors);
    refreshTrack();
}

void RegisterSubObjectActions() {
    RegisterActionClass(AT_ActionMoveGrpPoints, &make<ActionMoveGrpPoints>);
    RegisterActionClass(AT_ActionRotateGrpPoints, &make<ActionRotateGrpPoints>);
    RegisterActionClass(AT_ActionScaleGrpPoints, &make<ActionScaleGrpPoints>);
    RegisterActionClass(AT_ActionMoveGrpPols, &make<ActionMoveGrpPols>);
    RegisterActionClass(AT_ActionRotateGrpPols, &make<ActionRotateGrpPols>);
    RegisterActionClass(AT_ActionScaleGrpPols, &make<ActionScaleGrpPols>);
    RegisterActionClass(AT_ActionMoveTrkPts, &make<ActionMoveTrkPts>);
    RegisterActionClass(AT_ActionRotateTrkPts, &make<ActionRotateTrkPts>);
    RegisterActionClass(AT_ActionScaleTrkPts, &make<ActionScaleTrkPts>);
}

} // namespace vexil
