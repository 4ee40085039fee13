// TransformGizmo: the undo records of a drag. A move is pushed at mouse-down and completed at mouse-up, so
// that a click on a handle leaves a move with equal ends on the stack; a turn or a scale is pushed at
// mouse-up, and only when it changed something.
#include "EntityKinds.h"
#include "SelectionModel.h"
#include "TransformGizmo.h"
#include "frmPicWins.h"
#include "undo/ActionTransformEntity.h"
#include "undo/ActionTransformSubObject.h"
#include "undo/ActionUndoRedo_Stack.h"

#include <zelmar/zelmar.h>

namespace vexil {

namespace {

Vec3 trackCentreOf(frmPicWins& v, int track) {
    double c[3];
    if (v.Host().TrackCenter(track, c)) return {c[0], c[1], c[2]};
    return TrackCentre(track);
}

Vec3 entityLocation(frmPicWins& v, int type, int handle) {
    Vec3 l{};
    switch (type) {
    case 1:
        ZELMAR_group_get_location(handle, l.data());
        return l;
    case 6:
        return Sel().SelObjsAvgCenter;
    case 3:
        return KindOps(3).GetLocation ? KindOps(3).GetLocation(handle) : trackCentreOf(v, handle);
    default:
        return KindOps(type).GetLocation ? KindOps(type).GetLocation(handle) : l;
    }
}

Vec3 entityDimensions(int type, int handle) {
    Vec3 d{};
    if (type == 1) {
        ZELMAR_group_get_dimensions(handle, d.data());
    } else if (type == 6) {
        double mn[3], mx[3];
        if (SelectionModel* m = selectionModel(); m && m->GetSelObjsBoundingBx(mn, mx))
            d = {mx[0] - mn[0], mx[1] - mn[1], mx[2] - mn[2]};
    } else if (type == 3) {
        Vec3 lo{1e308, 1e308, 1e308}, hi{-1e308, -1e308, -1e308};
        const int n = ZELMAR_track_get_number_of_points(handle);
        for (int i = 0; i < n; ++i) {
            Vec3 p{};
            ZELMAR_track_get_point(handle, i, p.data());
            for (size_t k = 0; k < 3; ++k) {
                lo[k] = std::min(lo[k], p[k]);
                hi[k] = std::max(hi[k], p[k]);
            }
        }
        if (n > 0) d = {hi[0] - lo[0], hi[1] - lo[1], hi[2] - lo[2]};
    }
    return d;
}

const MultipleSelection* setOf(int type) {
    return type == 6 ? &Sel().MultiSel : nullptr;
}

bool changed(const Vec3& factors) {
    return factors[0] != 1.0 || factors[1] != 1.0 || factors[2] != 1.0;
}

} // namespace

void TransformGizmo::BeginActions() {
    m_open.reset();
    m_openPushed = false;
    const SelectionState& s = Sel();
    const SelectMode mode = m_views.Host().CurrentSelectMode();
    const int tool = m_views.ToolMode();
    if (tool == ToolMove) {
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
                const Vec3 l = entityLocation(m_views, s.CurrSelEntityType, s.CurrSelEntity);
                a->SetFrmLoc(l);
                a->SetToLoc(l);
            }
            break;
        case SelectMode::TrackPointInsert:
            return;
        }
        if (!env || !env->Object()) return;
        m_open = env;
        m_stack.Push(env);
        m_openPushed = true;
        return;
    }
    if (tool == ToolScale && mode == SelectMode::Entity) {
        const int t = s.CurrSelEntityType;
        if (t != 1 && t != 3 && t != 6) return;
        ActionRef env = ActionUndoRedo_Stack::MakeAction(AT_ActionScale);
        auto* a = env->As<ActionScale>();
        if (!a) return;
        a->SetScaledEntity(t, s.CurrSelEntity, setOf(t));
        a->SetIniDim(entityDimensions(t, s.CurrSelEntity));
        m_open = env;
    }
}

void TransformGizmo::EndActions() {
    SelectionState& s = Sel();
    SelectionModel* m = selectionModel();
    const SelectMode mode = m_views.Host().CurrentSelectMode();
    const int tool = m_views.ToolMode();
    if (tool == ToolMove) {
        if (!m_open) return;
        if (auto* a = m_open->As<ActionMoveGrpPoints>()) a->SetToLoc(s.SelPtsAvgCenter);
        if (auto* a = m_open->As<ActionMoveGrpPols>()) a->SetToLoc(s.SelPolsAvgCenter);
        if (auto* a = m_open->As<ActionMoveTrkPts>()) a->SetToLoc(s.SelTrackPtsAvgCenter);
        if (auto* a = m_open->As<ActionMove>())
            a->SetToLoc(entityLocation(m_views, s.CurrSelEntityType, s.CurrSelEntity));
        return;
    }
    if (tool == ToolRotate) {
        if (ActiveAxis < AxisX || ActiveAxis > AxisZ || TotalRotation[size_t(ActiveAxis)] == 0) return;
        ActionRef env;
        switch (mode) {
        case SelectMode::Point:
            env = ActionUndoRedo_Stack::MakeAction(AT_ActionRotateGrpPoints);
            if (auto* a = env->As<ActionRotateGrpPoints>()) {
                a->SetRotatedPtsToCurrSelPts();
                a->SetRotatedPtsParentGrp(s.CurrSelEntity);
                a->AddRotation(TotalRotation, ActiveAxis);
            }
            break;
        case SelectMode::Polygon:
            env = ActionUndoRedo_Stack::MakeAction(AT_ActionRotateGrpPols);
            if (auto* a = env->As<ActionRotateGrpPols>()) {
                a->SetRotatedWeldedPtsToCurrWeldedPts();
                a->SetRotatedPolsParentGrp(s.CurrSelEntity);
                a->AddRotation(TotalRotation, ActiveAxis);
            }
            break;
        case SelectMode::TrackPoint:
            env = ActionUndoRedo_Stack::MakeAction(AT_ActionRotateTrkPts);
            if (auto* a = env->As<ActionRotateTrkPts>()) {
                a->SetRotatedTrkPtsToCurrSelTrkPts();
                a->AddRotation(TotalRotation, ActiveAxis);
            }
            break;
        case SelectMode::Entity:
            env = ActionUndoRedo_Stack::MakeAction(AT_ActionRotate);
            if (auto* a = env->As<ActionRotate>()) {
                a->SetRotatedEntity(s.CurrSelEntityType, s.CurrSelEntity, setOf(s.CurrSelEntityType));
                a->AddRotation(TotalRotation[size_t(ActiveAxis)], ActiveAxis);
            }
            break;
        case SelectMode::TrackPointInsert:
            return;
        }
        if (!env || !env->Object()) return;
        m_stack.Push(env);
        if (mode == SelectMode::Point && m) m->ComputeSelPtsAvgCenter();
        return;
    }
    if (tool == ToolScale) {
        ActionRef env;
        switch (mode) {
        case SelectMode::Point:
            if (!changed(TotalScale)) return;
            env = ActionUndoRedo_Stack::MakeAction(AT_ActionScaleGrpPoints);
            if (auto* a = env->As<ActionScaleGrpPoints>()) {
                a->SetScaledPtsToCurrSelPts();
                a->SetScaleChng(TotalScale);
            }
            break;
        case SelectMode::Polygon:
            if (!changed(TotalScale)) return;
            env = ActionUndoRedo_Stack::MakeAction(AT_ActionScaleGrpPols);
            if (auto* a = env->As<ActionScaleGrpPols>()) {
                a->SetScaledWeldedPtsToCurrWeldedPts();
                a->SetScaleChng(TotalScale);
            }
            break;
        case SelectMode::TrackPoint:
            if (!changed(TotalTrackScale)) return;
            env = ActionUndoRedo_Stack::MakeAction(AT_ActionScaleTrkPts);
            if (auto* a = env->As<ActionScaleTrkPts>()) {
                a->SetScaledTrkPtsToCurrSelPts();
                a->SetScaleChng(TotalTrackScale);
            }
            break;
        case SelectMode::Entity:
            if (!m_open || !changed(TotalScale)) return;
            if (auto* a = m_open->As<ActionScale>())
                a->SetFnlDim(entityDimensions(s.CurrSelEntityType, s.CurrSelEntity));
            env = m_open;
            break;
        case SelectMode::TrackPointInsert:
            return;
        }
        if (!env || !env->Object()) return;
        m_stack.Push(env);
    }
}

} // namespace vexil
