#include "SelectionTransforms.h"

#include "selection/EntityKinds.h"
#include "selection/SelectionModel.h"
#include "view/frmPicWins.h"
#include "selection/ActionTransformEntity.h"
#include "undo/ActionUndoRedo_Stack.h"

#include <algorithm>
#include <zelmar/zelmar.h>

namespace vexil {

namespace {

std::vector<int> allTrackIndices(int track) {
    std::vector<int> all;
    const int n = ZELMAR_track_get_number_of_points(track);
    for (int i = 0; i < n; ++i)
        all.push_back(i);
    return all;
}

Vec3 plus(const Vec3& a, const Vec3& b) {
    return {a[0] + b[0], a[1] + b[1], a[2] + b[2]};
}

struct Box {
    Vec3 lo{1e308, 1e308, 1e308}, hi{-1e308, -1e308, -1e308};
    bool any = false;
    void add(const Vec3& p) {
        any = true;
        for (size_t k = 0; k < 3; ++k) {
            lo[k] = std::min(lo[k], p[k]);
            hi[k] = std::max(hi[k], p[k]);
        }
    }
    Vec3 size() const { return any ? Vec3{hi[0] - lo[0], hi[1] - lo[1], hi[2] - lo[2]} : Vec3{0, 0, 0}; }
};

Vec3 pointAt(int point) {
    Vec3 p{};
    ZELMAR_point_get_xyz(point, p.data());
    return p;
}

Vec3 trackPoint(int track, int i) {
    Vec3 p{};
    ZELMAR_track_get_point(track, i, p.data());
    return p;
}

void shiftEntity(int kind, int handle, const Vec3& d) {
    EntityKindOps& ops = KindOps(kind);
    if (ops.GetLocation && ops.SetLocation) ops.SetLocation(handle, plus(ops.GetLocation(handle), d));
}

const MultipleSelection* setOf(int type) {
    return type == 6 ? &Sel().MultiSel : nullptr;
}

bool changed(const Vec3& f) {
    return f[0] != 1.0 || f[1] != 1.0 || f[2] != 1.0;
}

} // namespace

bool SelectionExists(ViewportHost& host, SelectMode mode) {
    if (host.EditTextureMode()) return false;
    const SelectionState& s = Sel();
    switch (mode) {
    case SelectMode::Point:
        return s.SelPts.Count() > 0;
    case SelectMode::Polygon:
        return s.SelPols.Count() > 0;
    case SelectMode::TrackPoint:
        return s.SelTrackPtsCount() > 0;
    case SelectMode::TrackPointInsert:
        return false;
    case SelectMode::Entity:
        break;
    }
    const int t = s.CurrSelEntityType;
    return (t >= 0 && t <= 4) || t == 6;
}

Vec3 TrackCentreOf(ViewportHost& host, int track) {
    // The location the entity actions use, so that a turn or scale about it is undone about it too.
    if (KindOps(3).GetLocation) return KindOps(3).GetLocation(track);
    double c[3];
    if (host.TrackCenter(track, c)) return {c[0], c[1], c[2]};
    return TrackCentre(track);
}

bool SelectionPivot(ViewportHost& host, SelectMode mode, Vec3& pivot) {
    if (!SelectionExists(host, mode)) return false;
    const SelectionState& s = Sel();
    switch (mode) {
    case SelectMode::Point:
        pivot = s.SelPtsAvgCenter;
        return true;
    case SelectMode::Polygon:
        pivot = s.SelPolsAvgCenter;
        return true;
    case SelectMode::TrackPoint:
        pivot = s.SelTrackPtsAvgCenter;
        return true;
    case SelectMode::TrackPointInsert:
        return false;
    case SelectMode::Entity:
        break;
    }
    const int h = s.CurrSelEntity;
    switch (s.CurrSelEntityType) {
    case 1:
        if (ZELMAR_group_is_group(h) != 1) return false;
        ZELMAR_group_get_rotate_reference_point(h, pivot.data());
        return true;
    case 6:
        pivot = s.SelObjsAvgCenter;
        return s.MultiSel.TotalCount > 0;
    case 2:
    case 4:
        if (host.CurrentEntityHidden() || !KindOps(s.CurrSelEntityType).GetLocation) return false;
        pivot = KindOps(s.CurrSelEntityType).GetLocation(h);
        return true;
    case 3:
        if (ZELMAR_track_get_number_of_points(h) <= 0) return false;
        pivot = TrackCentreOf(host, h);
        return true;
    default:
        return false;
    }
}

Vec3 SelectionLocation(ViewportHost& host, SelectMode mode) {
    const SelectionState& s = Sel();
    switch (mode) {
    case SelectMode::Point:
        return s.SelPtsAvgCenter;
    case SelectMode::Polygon:
        return s.SelPolsAvgCenter;
    case SelectMode::TrackPoint:
        return s.SelTrackPtsAvgCenter;
    default:
        break;
    }
    const int type = s.CurrSelEntityType, h = s.CurrSelEntity;
    Vec3 l{};
    switch (type) {
    case 1:
        ZELMAR_group_get_location(h, l.data());
        return l;
    case 6:
        return s.SelObjsAvgCenter;
    case 3:
        return KindOps(3).GetLocation ? KindOps(3).GetLocation(h) : TrackCentreOf(host, h);
    default:
        return KindOps(type).GetLocation ? KindOps(type).GetLocation(h) : l;
    }
}

Vec3 SelectionDimensions(ViewportHost& /*host*/, SelectMode mode) {
    const SelectionState& s = Sel();
    Box box;
    switch (mode) {
    case SelectMode::Point:
        for (int p : s.SelPts.ToVector())
            box.add(pointAt(p));
        return box.size();
    case SelectMode::Polygon:
        for (const PointSet& set : SelectedWeldSets())
            if (!set.empty()) box.add(pointAt(set.front()));
        return box.size();
    case SelectMode::TrackPoint:
        for (int i : SelectedTrackIndices())
            box.add(trackPoint(s.CurrSelEntity, i));
        return box.size();
    default:
        break;
    }
    Vec3 d{};
    switch (s.CurrSelEntityType) {
    case 1:
        ZELMAR_group_get_dimensions(s.CurrSelEntity, d.data());
        return d;
    case 6: {
        double mn[3], mx[3];
        if (SelectionModel* m = selectionModel(); m && m->GetSelObjsBoundingBx(mn, mx))
            d = {mx[0] - mn[0], mx[1] - mn[1], mx[2] - mn[2]};
        return d;
    }
    case 3:
        for (int i : allTrackIndices(s.CurrSelEntity))
            box.add(trackPoint(s.CurrSelEntity, i));
        return box.size();
    default:
        return d;
    }
}

std::array<Vec3, 3> CurrentGroupAxes() {
    std::array<Vec3, 3> axes{Vec3{1, 0, 0}, Vec3{0, 1, 0}, Vec3{0, 0, 1}};
    const SelectionState& s = Sel();
    if (s.CurrSelEntityType == 1 && ZELMAR_group_is_group(s.CurrSelEntity) == 1)
        ZELMAR_group_calculate_axis_system(s.CurrSelEntity, axes[0].data(), axes[1].data(), axes[2].data());
    return axes;
}

// ---- the transforms --------------------------------------------------------------------------------------

void MoveSelectionBy(ViewportHost& /*host*/, SelectMode mode, const Vec3& d) {
    SelectionState& s = Sel();
    SelectionModel* m = selectionModel();
    switch (mode) {
    case SelectMode::Point:
        MovePoints(s.SelPts.ToVector(), d);
        if (m) m->ComputeSelPtsAvgCenter();
        return;
    case SelectMode::Polygon:
        MoveWeldSets(SelectedWeldSets(), d);
        if (m) m->ComputeSelPolsAvgCenter();
        return;
    case SelectMode::TrackPoint:
        MoveTrackPoints(s.CurrSelEntity, SelectedTrackIndices(), d);
        if (m) m->ComputeSelTrackPtsAvgCenter();
        return;
    case SelectMode::TrackPointInsert:
        return;
    case SelectMode::Entity:
        break;
    }
    switch (s.CurrSelEntityType) {
    case 1:
        ZELMAR_group_move(s.CurrSelEntity, d.data(), 0);
        break;
    case 6:
        for (int g : s.MultiSel.Groups())
            ZELMAR_group_move(g, d.data(), 0);
        for (int c : s.MultiSel.Cams())
            shiftEntity(2, c, d);
        for (int l : s.MultiSel.Lights())
            shiftEntity(4, l, d);
        break;
    case 2:
    case 4:
        shiftEntity(s.CurrSelEntityType, s.CurrSelEntity, d);
        break;
    case 3:
        MoveTrackPoints(s.CurrSelEntity, allTrackIndices(s.CurrSelEntity), d);
        break;
    default:
        break;
    }
}

void RotateSelectionBy(ViewportHost& host, SelectMode mode, double degrees, int axis) {
    if (axis < 0 || axis > 2 || degrees == 0) return;
    SelectionState& s = Sel();
    Vec3 turn{0, 0, 0};
    turn[size_t(axis)] = degrees;
    switch (mode) {
    case SelectMode::Point:
        RotatePoints(s.SelPts.ToVector(), s.SelPtsAvgCenter, degrees, axis);
        return;
    case SelectMode::Polygon:
        RotateWeldSets(SelectedWeldSets(), s.SelPolsAvgCenter, degrees, axis);
        return;
    case SelectMode::TrackPoint:
        RotateTrackPoints(s.CurrSelEntity, SelectedTrackIndices(), s.SelTrackPtsAvgCenter, degrees, axis);
        return;
    case SelectMode::TrackPointInsert:
        return;
    case SelectMode::Entity:
        break;
    }
    switch (s.CurrSelEntityType) {
    case 1:
        ZELMAR_group_rotate(s.CurrSelEntity, turn.data(), 0);
        break;
    case 6:
        // Every member swings about the common centre.
        RotateSetAbout(s.MultiSel, s.SelObjsAvgCenter, degrees, axis);
        break;
    case 2:
    case 4:
        if (KindOps(s.CurrSelEntityType).Rotate) KindOps(s.CurrSelEntityType).Rotate(s.CurrSelEntity, turn);
        break;
    case 3: {
        const int t = s.CurrSelEntity;
        RotateTrackPoints(t, allTrackIndices(t), TrackCentreOf(host, t), degrees, axis);
        break;
    }
    default:
        break;
    }
}

bool ScaleSelectionBy(ViewportHost& host, SelectMode mode, const Vec3& f) {
    for (double v : f)
        if (!(v > 0)) return false;
    SelectionState& s = Sel();
    switch (mode) {
    case SelectMode::Point:
        ScalePoints(s.SelPts.ToVector(), s.SelPtsAvgCenter, f);
        return true;
    case SelectMode::Polygon:
        ScaleWeldSets(SelectedWeldSets(), s.SelPolsAvgCenter, f);
        return true;
    case SelectMode::TrackPoint:
        ScaleTrackPoints(s.CurrSelEntity, SelectedTrackIndices(), s.SelTrackPtsAvgCenter, f);
        return true;
    case SelectMode::TrackPointInsert:
        return false;
    case SelectMode::Entity:
        break;
    }
    switch (s.CurrSelEntityType) {
    case 1:
        ZELMAR_group_scale(s.CurrSelEntity, 1, f[0], f[1], f[2]);
        return true;
    case 6: {
        // Each group grows about its own reference point, and its location is pulled towards (or pushed
        // from) the centre of the set by the same factor: the set scales as one.
        const Vec3 c = s.SelObjsAvgCenter;
        for (int g : s.MultiSel.Groups()) {
            ZELMAR_group_scale(g, 0, f[0], f[1], f[2]);
            Vec3 l{};
            ZELMAR_group_get_location(g, l.data());
            for (size_t k = 0; k < 3; ++k)
                l[k] = l[k] - (1.0 - f[k]) * (l[k] - c[k]);
            ZELMAR_group_set_location(g, l.data());
        }
        return true;
    }
    case 3: {
        const int t = s.CurrSelEntity;
        ScaleTrackPoints(t, allTrackIndices(t), TrackCentreOf(host, t), f);
        return true;
    }
    default:
        return false;
    }
}

void RefreshAfterTransform(ViewportHost& /*host*/, SelectMode mode, frmPicWins* views) {
    if (mode == SelectMode::Point || mode == SelectMode::Polygon) {
        // Sub-object pivots were worked out as they moved; the polygons they bent are looked at.
        if (SelectionModel* m = selectionModel()) m->ValidateChangedPolygons();
        return;
    }
    if (mode != SelectMode::Entity) return;
    const SelectionState& s = Sel();
    if (s.CurrSelEntityType == 1 && views) views->SelectionBox().Initialize(s.CurrSelEntity);
    if (s.CurrSelEntityType == 6) {
        Sel().MultiSel.InitializeBndBoxes();
        if (SelectionModel* m = selectionModel()) m->ComputeSelObjsAvgCenter();
    }
}

// ---- undo records ----------------------------------------------------------------------------------------

ActionRef OpenMoveAction(ViewportHost& host, SelectMode mode) {
    const SelectionState& s = Sel();
    ActionRef env;
    switch (mode) {
    case SelectMode::Point:
        env = ActionUndoRedo_Stack::MakeAction(AT_ActionMoveGrpPoints);
        if (auto* a = env->As<ActionMoveGrpPoints>()) {
            a->SetMovedPtsToCurrSelPts();
            a->SetFrmLoc(s.SelPtsAvgCenter);
        }
        break;
    case SelectMode::Polygon:
        env = ActionUndoRedo_Stack::MakeAction(AT_ActionMoveGrpPols);
        if (auto* a = env->As<ActionMoveGrpPols>()) {
            a->SetMovedWeldedPtsToCurrWeldedPts();
            a->SetFrmLoc(s.SelPolsAvgCenter);
        }
        break;
    case SelectMode::TrackPoint:
        env = ActionUndoRedo_Stack::MakeAction(AT_ActionMoveTrkPts);
        if (auto* a = env->As<ActionMoveTrkPts>()) {
            a->SetMovedTrkPtsToCurrSelTrkPts();
            a->SetFrmLoc(s.SelTrackPtsAvgCenter);
        }
        break;
    case SelectMode::Entity:
        env = ActionUndoRedo_Stack::MakeAction(AT_ActionMove);
        if (auto* a = env->As<ActionMove>()) {
            a->SetMovedEntity(s.CurrSelEntityType, s.CurrSelEntity, setOf(s.CurrSelEntityType));
            const Vec3 l = SelectionLocation(host, mode);
            a->SetFrmLoc(l);
            a->SetToLoc(l);
        }
        break;
    case SelectMode::TrackPointInsert:
        return nullptr;
    }
    return env && env->Object() ? env : nullptr;
}

void CloseMoveAction(const ActionRef& env, ViewportHost& host, SelectMode mode) {
    if (!env) return;
    const Vec3 to = SelectionLocation(host, mode);
    if (auto* a = env->As<ActionMoveGrpPoints>()) a->SetToLoc(to);
    if (auto* a = env->As<ActionMoveGrpPols>()) a->SetToLoc(to);
    if (auto* a = env->As<ActionMoveTrkPts>()) a->SetToLoc(to);
    if (auto* a = env->As<ActionMove>()) a->SetToLoc(to);
}

ActionRef MakeRotateAction(SelectMode mode, const std::vector<RotationStep>& steps) {
    std::vector<RotationStep> turns;
    for (const RotationStep& st : steps)
        if (st.amount != 0 && st.axis >= 0 && st.axis <= 2) turns.push_back(st);
    if (turns.empty()) return nullptr;
    const SelectionState& s = Sel();
    auto amounts = [](const RotationStep& st) {
        Vec3 v{0, 0, 0};
        v[size_t(st.axis)] = st.amount;
        return v;
    };
    ActionRef env;
    switch (mode) {
    case SelectMode::Point:
        env = ActionUndoRedo_Stack::MakeAction(AT_ActionRotateGrpPoints);
        if (auto* a = env->As<ActionRotateGrpPoints>()) {
            a->SetRotatedPtsToCurrSelPts();
            a->SetRotatedPtsParentGrp(s.CurrSelEntity);
            for (const RotationStep& st : turns)
                a->AddRotation(amounts(st), st.axis);
        }
        break;
    case SelectMode::Polygon:
        env = ActionUndoRedo_Stack::MakeAction(AT_ActionRotateGrpPols);
        if (auto* a = env->As<ActionRotateGrpPols>()) {
            a->SetRotatedWeldedPtsToCurrWeldedPts();
            a->SetRotatedPolsParentGrp(s.CurrSelEntity);
            for (const RotationStep& st : turns)
                a->AddRotation(amounts(st), st.axis);
        }
        break;
    case SelectMode::TrackPoint:
        env = ActionUndoRedo_Stack::MakeAction(AT_ActionRotateTrkPts);
        if (auto* a = env->As<ActionRotateTrkPts>()) {
            a->SetRotatedTrkPtsToCurrSelTrkPts();
            for (const RotationStep& st : turns)
                a->AddRotation(amounts(st), st.axis);
        }
        break;
    case SelectMode::Entity:
        env = ActionUndoRedo_Stack::MakeAction(AT_ActionRotate);
        if (auto* a = env->As<ActionRotate>()) {
            a->SetRotatedEntity(s.CurrSelEntityType, s.CurrSelEntity, setOf(s.CurrSelEntityType));
            for (const RotationStep& st : turns)
                a->AddRotation(st.amount, st.axis);
        }
        break;
    case SelectMode::TrackPointInsert:
        return nullptr;
    }
    return env && env->Object() ? env : nullptr;
}

ActionRef OpenScaleAction(ViewportHost& host, SelectMode mode) {
    if (mode != SelectMode::Entity) return nullptr;
    const SelectionState& s = Sel();
    const int t = s.CurrSelEntityType;
    if (t != 1 && t != 3 && t != 6) return nullptr;
    ActionRef env = ActionUndoRedo_Stack::MakeAction(AT_ActionScale);
    auto* a = env->As<ActionScale>();
    if (!a) return nullptr;
    a->SetScaledEntity(t, s.CurrSelEntity, setOf(t));
    a->SetIniDim(SelectionDimensions(host, mode));
    return env;
}

ActionRef CloseScaleAction(const ActionRef& open, ViewportHost& host, SelectMode mode, const Vec3& total) {
    if (!changed(total)) return nullptr;
    ActionRef env;
    switch (mode) {
    case SelectMode::Point:
        env = ActionUndoRedo_Stack::MakeAction(AT_ActionScaleGrpPoints);
        if (auto* a = env->As<ActionScaleGrpPoints>()) {
            a->SetScaledPtsToCurrSelPts();
            a->SetScaleChng(total);
        }
        break;
    case SelectMode::Polygon:
        env = ActionUndoRedo_Stack::MakeAction(AT_ActionScaleGrpPols);
        if (auto* a = env->As<ActionScaleGrpPols>()) {
            a->SetScaledWeldedPtsToCurrWeldedPts();
            a->SetScaleChng(total);
        }
        break;
    case SelectMode::TrackPoint:
        env = ActionUndoRedo_Stack::MakeAction(AT_ActionScaleTrkPts);
        if (auto* a = env->As<ActionScaleTrkPts>()) {
            a->SetScaledTrkPtsToCurrSelPts();
            a->SetScaleChng(total);
        }
        break;
    case SelectMode::Entity:
        if (!open) return nullptr;
        if (auto* a = open->As<ActionScale>()) a->SetFnlDim(SelectionDimensions(host, mode));
        env = open;
        break;
    case SelectMode::TrackPointInsert:
        return nullptr;
    }
    return env && env->Object() ? env : nullptr;
}

TransformBefore StateBefore(SelectMode mode, bool turn) {
    TransformBefore before;
    if (mode == SelectMode::Point) before.points.Capture(Sel().SelPts.ToVector());
    if (mode == SelectMode::Polygon) before.points.Capture(PointsOfSets(SelectedWeldSets()));
    if (mode == SelectMode::Entity && turn) {
        const SelectionState& s = Sel();
        TransformedEntity e;
        e.Set(s.CurrSelEntityType, s.CurrSelEntity, setOf(s.CurrSelEntityType));
        before.entity.Capture(e);
    }
    return before;
}

void GiveBefore(const ActionRef& env, const TransformBefore& before) {
    if (!env) return;
    if (auto* a = env->As<ActionRotate>(); a && before.entity.Has()) a->SetBefore(before.entity);
    if (before.points.Empty()) return;
    if (auto* a = env->As<ActionRotateGrpPoints>()) a->SetBefore(before.points);
    if (auto* a = env->As<ActionRotateGrpPols>()) a->SetBefore(before.points);
    if (auto* a = env->As<ActionScaleGrpPoints>()) a->SetBefore(before.points);
    if (auto* a = env->As<ActionScaleGrpPols>()) a->SetBefore(before.points);
}

} // namespace vexil
