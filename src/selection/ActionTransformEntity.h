// The transforms of whole entities: ActionMove (2), ActionRotate (3), ActionScale (4) and ActionAlign (37).
// Each keeps the entity (kind, handle, or a set for kind 6) and what undoes and redoes the change.
//
// Undo and redo of groups and tracks are exact: the action holds a copy of their points and placements from
// before the change (taken when the action is opened, or handed over with SetBefore) and puts it back, and a
// copy of the state after, taken at the first undo, on redo; transforming backwards would leave rounding in
// the last bits. Cameras and lights are put at stored locations, which is exact, and turned back. Groups of
// more than a million points are transformed backwards too: their copies would cost too much memory.
#pragma once
#include "engine/GroupsSnapshot.h"
#include "undo/Action.h"
#include "MultipleSelection.h"

#include <array>
#include <vector>

namespace vexil {

using Loc3 = std::array<double, 3>;

// Kind, handle and, for kind 6, a copy of the set.
struct TransformedEntity {
    int kind = 0, handle = 0;
    MultipleSelection set;
    void Set(int k, int h, const MultipleSelection* s);
};

// The groups (kind 1, the groups of a set) or the track (kind 3) of a transform, before and after it.
class ExactEntity {
  public:
    // The state before, read now; holds nothing for cameras and lights, or for groups over the limit.
    void Capture(const TransformedEntity& e);
    bool Has() const { return m_has; }
    // Puts the state before back (reading the state after first); false when there is no copy.
    bool Undo();
    // Puts the state after back; false when there is none yet.
    bool Redo();

  private:
    struct State {
        GroupsSnapshot groups;
        std::vector<double> track; // x y z per point
    };
    State read() const;
    void put(const State& s) const;
    std::vector<int> m_groups;
    int m_track = 0;
    State m_before, m_after;
    bool m_has = false, m_hasAfter = false;
};

// Turns a set as one body about `centre`: each group about it, each camera and light on its own and
// swung about it. The gizmo and the undo of a set's turn both go through here, so undo gives the set back.
// `groups` false turns only the cameras and lights (the groups were put back from a copy).
void RotateSetAbout(const MultipleSelection& set, const Loc3& centre, double degrees, int axis, bool groups = true);

class ActionMove : public Action {
  public:
    void SetFrmLoc(const Loc3& l) { m_frm = l; }
    void SetToLoc(const Loc3& l) { m_to = l; }
    Loc3 FrmLoc() const { return m_frm; }
    Loc3 ToLoc() const { return m_to; }
    // Before the move: also copies the groups or track it will move.
    void SetMovedEntity(int kind, int handle, const MultipleSelection* set = nullptr) {
        m_e.Set(kind, handle, set);
        m_exact.Capture(m_e);
    }
    void Undo() override { move(m_frm, m_to, m_exact.Undo()); }
    void Redo() override { move(m_to, m_frm, m_exact.Redo()); }

  private:
    // Puts the entity at `at` (kinds 1 to 4); kind 6 moves each member by at - from. `put`: the groups and
    // the track are already where they belong.
    void move(const Loc3& at, const Loc3& from, bool put);
    Loc3 m_frm{}, m_to{};
    TransformedEntity m_e;
    ExactEntity m_exact;
};

class ActionRotate : public Action {
  public:
    // A set turns about the centre of the selection as it is now (the centre a turn leaves in place).
    void SetRotatedEntity(int kind, int handle, const MultipleSelection* set = nullptr);
    // One step of the drag: degrees about axis 0 (x), 1 (y) or 2 (z).
    void AddRotation(double amount, int axis) { m_steps.push_back({amount, axis}); }
    // The groups as they were before the turn (ExactEntity::Capture at the press).
    void SetBefore(ExactEntity before) { m_exact = std::move(before); }
    void Undo() override;
    void Redo() override;
    int Steps() const { return static_cast<int>(m_steps.size()); }

  private:
    // `groups`: false when the groups were put back from a copy (cameras and lights still turn).
    void turn(double amount, int axis, bool groups);
    struct Step {
        double amount;
        int axis;
    };
    std::vector<Step> m_steps;
    TransformedEntity m_e;
    Loc3 m_centre{0, 0, 0};
    ExactEntity m_exact;
};

class ActionScale : public Action {
  public:
    void SetIniDim(const Loc3& d) { m_ini = d; }
    void SetFnlDim(const Loc3& d) { m_fnl = d; }
    // Before the scale: also records each member's dimensions for a set, and copies what it will scale.
    void SetScaledEntity(int kind, int handle, const MultipleSelection* set = nullptr);
    void Undo() override;
    void Redo() override;

  private:
    // Factors final / initial (1 where the initial size is 0).
    Loc3 factors() const;
    void scaleSet(const Loc3& f);
    void apply(const Loc3& dims, const Loc3& f);
    Loc3 m_ini{}, m_fnl{};
    std::vector<Loc3> m_memberDims;
    TransformedEntity m_e;
    ExactEntity m_exact;
};

class ActionAlign : public Action {
  public:
    // Records the entity and each member's location before the alignment.
    void SetAlignedEntity(int kind, int handle, const MultipleSelection* set = nullptr);
    // Records the locations after it.
    void SetLocationsAfter();
    void Undo() override;
    void Redo() override;

  private:
    std::vector<Loc3> read() const;
    void put(const std::vector<Loc3>& locs);
    std::vector<Loc3> m_before, m_after;
    TransformedEntity m_e;
    ExactEntity m_exact;
};

} // namespace vexil
