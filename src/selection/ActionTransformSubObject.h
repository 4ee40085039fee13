// The transforms of sub-objects: points (6, 7, 8) and polygons (10, 11, 12) of one group, and points of
// one track (39, 40, 41). Each keeps a private copy of what it moved, because the selection goes on
// changing after the action was recorded: an undo moves the recorded items and leaves the selection as it
// is (only its pivot is worked out again).
//
// Polygons are kept as the welded point sets of their points (copied out of the weld table at the time),
// so that corners shared with other polygons move together and a later rebuild of the table cannot send
// an undo to other points. Turns and scales happen about the pivot of the time, which a turn or a scale of
// the items about it leaves where it is.
//
// Undo and redo are exact: an action that was given the state of its points before the change (the move
// records it when it is made, at the press; a turn or a scale made after the drag is handed it with
// SetBefore) puts that copy back on undo, and the copy of the state after, taken at the first undo, on
// redo. Without a copy it runs the transform backwards.
#pragma once
#include "engine/PointsSnapshot.h"
#include "undo/Action.h"
#include "SubObjectTransforms.h"

#include <vector>

namespace vexil {

// One recorded turn: the degrees about one axis.
struct RotationStep {
    double amount = 0;
    int axis = 0;
};

// The copies of the points before and after a change.
class ExactRestore {
  public:
    void SetBefore(PointsSnapshot before) {
        m_before = std::move(before);
        m_has = true;
        m_hasAfter = false;
    }
    bool HasBefore() const { return m_has; }
    // Puts the state before back (taking the state after first); false when there is no copy.
    bool Undo();
    // Puts the state after back; false when there is none yet.
    bool Redo();

  private:
    PointsSnapshot m_before, m_after;
    bool m_has = false, m_hasAfter = false;
};

// The points that a transform of the current sub-object selection moves (point mode: SelPts; polygon
// mode: the members of the welded sets).
std::vector<int> PointsOfSets(const std::vector<PointSet>& sets);

// ---- points of a group ----------------------------------------------------------------------------------

class ActionMoveGrpPoints : public Action {
  public:
    // The selected points (SelPts) and the current group.
    void SetMovedPtsToCurrSelPts();
    void SetFrmLoc(const Vec3& l) { m_frm = l; }
    void SetToLoc(const Vec3& l) { m_to = l; }
    void Undo() override;
    void Redo() override;
    const std::vector<int>& Points() const { return m_points; }
    Vec3 FrmLoc() const { return m_frm; }
    Vec3 ToLoc() const { return m_to; }

    void SetBefore(PointsSnapshot before) { m_exact.SetBefore(std::move(before)); }

  private:
    std::vector<int> m_points;
    int m_group = 0;
    Vec3 m_frm{}, m_to{}, m_delta{};
    ExactRestore m_exact;
};

class ActionRotateGrpPoints : public Action {
  public:
    // The selected points and their pivot (SelPtsAvgCenter).
    void SetRotatedPtsToCurrSelPts();
    void SetRotatedPtsParentGrp(int group) { m_group = group; }
    // Records amounts[axis] degrees about axis.
    void AddRotation(const Vec3& amounts, int axis);
    void Undo() override;
    void Redo() override;
    const std::vector<RotationStep>& Steps() const { return m_steps; }

    void SetBefore(PointsSnapshot before) { m_exact.SetBefore(std::move(before)); }

  private:
    std::vector<int> m_points;
    int m_group = 0;
    Vec3 m_pivot{};
    std::vector<RotationStep> m_steps;
    ExactRestore m_exact;
};

class ActionScaleGrpPoints : public Action {
  public:
    void SetScaledPtsToCurrSelPts();
    void SetScaleChng(const Vec3& factors) { m_factors = factors; }
    void Undo() override;
    void Redo() override;
    Vec3 Factors() const { return m_factors; }

    void SetBefore(PointsSnapshot before) { m_exact.SetBefore(std::move(before)); }

  private:
    std::vector<int> m_points;
    int m_group = 0;
    Vec3 m_pivot{}, m_factors{1, 1, 1};
    ExactRestore m_exact;
};

// ---- polygons of a group (their welded point sets) ------------------------------------------------------

class ActionMoveGrpPols : public Action {
  public:
    // The welded sets of the selected polygons (SelPolsWeldedPts) and the current group.
    void SetMovedWeldedPtsToCurrWeldedPts();
    void SetFrmLoc(const Vec3& l) { m_frm = l; }
    void SetToLoc(const Vec3& l) { m_to = l; }
    Vec3 FrmLoc() const { return m_frm; }
    Vec3 ToLoc() const { return m_to; }
    void Undo() override;
    void Redo() override;
    const std::vector<PointSet>& Sets() const { return m_sets; }

    void SetBefore(PointsSnapshot before) { m_exact.SetBefore(std::move(before)); }

  private:
    std::vector<PointSet> m_sets;
    int m_group = 0;
    Vec3 m_frm{}, m_to{}, m_delta{};
    ExactRestore m_exact;
};

class ActionRotateGrpPols : public Action {
  public:
    // The welded sets and their pivot (SelPolsAvgCenter).
    void SetRotatedWeldedPtsToCurrWeldedPts();
    void SetRotatedPolsParentGrp(int group) { m_group = group; }
    void AddRotation(const Vec3& amounts, int axis);
    void Undo() override;
    void Redo() override;

    void SetBefore(PointsSnapshot before) { m_exact.SetBefore(std::move(before)); }

  private:
    std::vector<PointSet> m_sets;
    int m_group = 0;
    Vec3 m_pivot{};
    std::vector<RotationStep> m_steps;
    ExactRestore m_exact;
};

class ActionScaleGrpPols : public Action {
  public:
    void SetScaledWeldedPtsToCurrWeldedPts();
    void SetScaleChng(const Vec3& factors) { m_factors = factors; }
    void Undo() override;
    void Redo() override;

    void SetBefore(PointsSnapshot before) { m_exact.SetBefore(std::move(before)); }

  private:
    std::vector<PointSet> m_sets;
    int m_group = 0;
    Vec3 m_pivot{}, m_factors{1, 1, 1};
    ExactRestore m_exact;
};

// ---- points of a track ----------------------------------------------------------------------------------

class ActionMoveTrkPts : public Action {
  public:
    // The selected track point indices (SelTrackPts) and the current track.
    void SetMovedTrkPtsToCurrSelTrkPts();
    void SetFrmLoc(const Vec3& l) { m_frm = l; }
    void SetToLoc(const Vec3& l) { m_to = l; }
    Vec3 FrmLoc() const { return m_frm; }
    Vec3 ToLoc() const { return m_to; }
    void Undo() override;
    void Redo() override;

  private:
    std::vector<int> m_indices;
    int m_track = 0;
    Vec3 m_frm{}, m_to{}, m_delta{};
};

class ActionRotateTrkPts : public Action {
  public:
    // The indices and their pivot (SelTrackPtsAvgCenter).
    void SetRotatedTrkPtsToCurrSelTrkPts();
    void AddRotation(const Vec3& amounts, int axis);
    void Undo() override;
    void Redo() override;

  private:
    std::vector<int> m_indices;
    int m_track = 0;
    Vec3 m_pivot{};
    std::vector<RotationStep> m_steps;
};

class ActionScaleTrkPts : public Action {
  public:
    void SetScaledTrkPtsToCurrSelPts();
    void SetScaleChng(const Vec3& factors) { m_factors = factors; }
    void Undo() override;
    void Redo() override;

  private:
    std::vector<int> m_indices;
    int m_track = 0;
    Vec3 m_pivot{}, m_factors{1, 1, 1};
};

// The welded point sets of the selected polygons (SelPolsWeldedPts), copied out of the weld table.
std::vector<PointSet> SelectedWeldSets();
// The selected track point indices (SelTrackPts, slots 1 on).
std::vector<int> SelectedTrackIndices();

// Lets SetActionObjects make these nine classes. Calling it again changes nothing.
void RegisterSubObjectActions();

} // namespace vexil
