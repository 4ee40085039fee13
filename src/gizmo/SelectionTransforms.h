// Moving, turning and scaling whatever the selection addresses in the current mode, and the undo records of
// such a change. The gizmo's drags and the typed transform panel both go through here, so that the two
// push the same actions and an undo replays exactly what was done.
//
// What is addressed: in point, polygon and track point mode the selected points, the welded point sets of
// the selected polygons, the selected track points; otherwise the current entity (a group, a camera, a
// light, a track) or, with type 6, every group, camera and light of MultiSel.
#pragma once
#include "selection/SelectionState.h"
#include "view/ViewportHost.h"
#include "selection/ActionTransformEntity.h"
#include "selection/ActionTransformSubObject.h"

#include <memory>

namespace vexil {

class ActionUndoRedo;
using ActionRef = std::shared_ptr<ActionUndoRedo>;

// Something to transform exists in this mode (the gizmo shows and reacts).
bool SelectionExists(ViewportHost& host, SelectMode mode);
// The pivot of the selection in this mode (the gizmo's place); false when there is none.
bool SelectionPivot(ViewportHost& host, SelectMode mode, Vec3& pivot);
// The centre a track turns and scales about: its location as the entity kinds give it, else the host's
// track centre, else the middle of the box of its points.
Vec3 TrackCentreOf(ViewportHost& host, int track);
// Where the selection stands, as the move actions record it: a group's location, the centre of a set,
// a camera's or light's location, a track's centre; the pivot of the sub-objects.
Vec3 SelectionLocation(ViewportHost& host, SelectMode mode);
// The size of the selection, as the scale actions record it: a group's dimensions (along its own axes),
// the box of a set or of a track; the box of the selected sub-objects.
Vec3 SelectionDimensions(ViewportHost& host, SelectMode mode);
// The axes of the current group (identity when the current entity is not a group): the rows x, y, z.
std::array<Vec3, 3> CurrentGroupAxes();

void MoveSelectionBy(ViewportHost& host, SelectMode mode, const Vec3& offset);
// Degrees about a world axis: a group about its rotate reference point, a set about its common centre,
// sub-objects about their pivot.
void RotateSelectionBy(ViewportHost& host, SelectMode mode, double degrees, int axis);
// Factors along the world axes (a single group along its own axes, as its dimensions are measured).
// False when nothing was scaled (cameras and lights have no size; a factor not above 0).
bool ScaleSelectionBy(ViewportHost& host, SelectMode mode, const Vec3& factors);
// After a change: the box of a group, the boxes and centre of a set, the pivot of sub-objects.
void RefreshAfterTransform(ViewportHost& host, SelectMode mode, class frmPicWins* views);

// ---- undo records ----------------------------------------------------------------------------------------
// A move action for the mode with its start recorded (ActionMove, ActionMoveGrpPoints, ActionMoveGrpPols,
// ActionMoveTrkPts); null in a mode that moves nothing. Not pushed.
ActionRef OpenMoveAction(ViewportHost& host, SelectMode mode);
// Records the end of the move.
void CloseMoveAction(const ActionRef& action, ViewportHost& host, SelectMode mode);
// A rotate action for the mode holding the given turns, in the order they were done; null when there is
// no turn. Not pushed.
ActionRef MakeRotateAction(SelectMode mode, const std::vector<RotationStep>& steps);
// An entity scale (ActionScale, groups, tracks and sets only) with its initial size recorded; null for
// sub-objects, whose scale is recorded whole when it ends.
ActionRef OpenScaleAction(ViewportHost& host, SelectMode mode);
// The scale action to push for a scale by `total` (factors of the whole change), or null when nothing
// changed. `open` is what OpenScaleAction gave.
ActionRef CloseScaleAction(const ActionRef& open, ViewportHost& host, SelectMode mode, const Vec3& total);
// What a turn or a scale is about to change, as it is now: in point and polygon mode the points it moves;
// for a turn in entity mode the groups or the track (an entity scale's action copies them when it is
// opened). Handed to the action after the change with GiveBefore, so that its undo puts back these exact
// values rather than turning or scaling back, which would leave rounding in the last bits.
struct TransformBefore {
    PointsSnapshot points;
    ExactEntity entity;
};
TransformBefore StateBefore(SelectMode mode, bool turn);
void GiveBefore(const ActionRef& action, const TransformBefore& before);

} // namespace vexil
