// TransformGizmo: the undo records of a drag. A move is made at mouse-down and pushed at mouse-up when the
// selection moved; a turn or a scale is pushed at mouse-up, and only when it changed something. Sub-object
// turns and scales, and entity turns, get what they change as it was at the press, so that their undo is exact.
#include "selection/SelectionModel.h"
#include "SelectionTransforms.h"
#include "TransformGizmo.h"
#include "view/frmPicWins.h"
#include "undo/ActionUndoRedo_Stack.h"
#include "selection/ActionTransformEntity.h"
#include "selection/ActionTransformSubObject.h"

namespace vexil {

namespace {

bool moved(const ActionRef& env) {
    if (auto* a = env->As<ActionMoveGrpPoints>()) return a->FrmLoc() != a->ToLoc();
    if (auto* a = env->As<ActionMoveGrpPols>()) return a->FrmLoc() != a->ToLoc();
    if (auto* a = env->As<ActionMoveTrkPts>()) return a->FrmLoc() != a->ToLoc();
    if (auto* a = env->As<ActionMove>()) return a->FrmLoc() != a->ToLoc();
    return true;
}

} // namespace

void TransformGizmo::BeginActions() {
    m_open.reset();
    m_before = TransformBefore();
    ViewportHost& host = m_views.Host();
    const SelectMode mode = host.CurrentSelectMode();
    switch (m_views.ToolMode()) {
    case ToolMove:
        m_open = OpenMoveAction(host, mode);
        break;
    case ToolRotate:
        m_before = StateBefore(mode, true);
        break;
    case ToolScale:
        m_open = OpenScaleAction(host, mode);
        m_before = StateBefore(mode, false);
        break;
    default:
        break;
    }
}

void TransformGizmo::EndActions() {
    ViewportHost& host = m_views.Host();
    const SelectMode mode = host.CurrentSelectMode();
    switch (m_views.ToolMode()) {
    case ToolMove:
        CloseMoveAction(m_open, host, mode);
        // A click on a handle that moved nothing leaves nothing to undo.
        if (m_open && moved(m_open)) m_stack.Push(m_open);
        break;
    case ToolRotate: {
        if (ActiveAxis < AxisX || ActiveAxis > AxisZ) return;
        const ActionRef env = MakeRotateAction(mode, {{TotalRotation[size_t(ActiveAxis)], ActiveAxis}});
        if (!env) return;
        GiveBefore(env, m_before);
        m_stack.Push(env);
        if (mode == SelectMode::Point)
            if (SelectionModel* m = selectionModel()) m->ComputeSelPtsAvgCenter();
        break;
    }
    case ToolScale: {
        const Vec3& total = mode == SelectMode::TrackPoint ? TotalTrackScale : TotalScale;
        if (const ActionRef env = CloseScaleAction(m_open, host, mode, total)) {
            GiveBefore(env, m_before);
            m_stack.Push(env);
        }
        break;
    }
    default:
        break;
    }
}

} // namespace vexil
