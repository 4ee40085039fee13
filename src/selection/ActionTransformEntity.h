// The transforms of whole entities: ActionMove (2), ActionRotate (3), ActionScale (4) and ActionAlign (37).
// Each keeps the entity (kind, handle, or a set for kind 6) and what undoes and redoes the change.
#pragma once
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

// Turns a set as one body about `centre`: each group about it, each camera and light on its own and
// swung about it. The gizmo and the undo of a set's turn both go through here, so undo gives the set back.
void RotateSetAbout(const MultipleSelection& set, const Loc3& centre, double degrees, int axis);

class ActionMove : public Action {
  public:
    void SetFrmLoc(const Loc3& l) { m_frm = l; }
    void SetToLoc(const Loc3& l) { m_to = l; }
    Loc3 FrmLoc() const { return m_frm; }
    Loc3 ToLoc() const { return m_to; }
    void SetMovedEntity(int kind, int handle, const MultipleSelection* set = nullptr) {
        m_e.Set(kind, handle, set);
    }
    void Undo() override { move(m_frm, m_to); }
    void Redo() override { move(m_to, m_frm); }

  private:
    // Puts the entity at `at` (kinds 1 to 4); kind 6 moves each member by at - from.
    void move(const Loc3& at, const Loc3& from);
    Loc3 m_frm{}, m_to{};
    TransformedEntity m_e;
};

class ActionRotate : public Action {
  public:
    // A set turns about the centre of the selection as it is now (the centre a turn leaves in place).
    void SetRotatedEntity(int kind, int handle, const MultipleSelection* set = nullptr);
    // One step of the drag: degrees about axis 0 (x), 1 (y) or 2 (z).
    void AddRotation(double amount, int axis) { m_steps.push_back({amount, axis}); }
    void Undo() override;
    void Redo() override;
    int Steps() const { return static_cast<int>(m_steps.size()); }

  private:
    void turn(double amount, int axis);
    struct Step {
        double amount;
        int axis;
    };
    std::vector<Step> m_steps;
    TransformedEntity m_e;
    Loc3 m_centre{0, 0, 0};
};

class ActionScale : public Action {
  public:
    void SetIniDim(const Loc3& d) { m_ini = d; }
    void SetFnlDim(const Loc3& d) { m_fnl = d; }
    // Also records each member's dimensions for a set.
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
};

class ActionAlign : public Action {
  public:
    // Records the entity and each member's location before the alignment.
    void SetAlignedEntity(int kind, int handle, const MultipleSelection* set = nullptr);
    // Records the locations after it.
    void SetLocationsAfter();
    void Undo() override { put(m_before); }
    void Redo() override { put(m_after); }

  private:
    std::vector<Loc3> read() const;
    void put(const std::vector<Loc3>& locs);
    std::vector<Loc3> m_before, m_after;
    TransformedEntity m_e;
};

} // namespace vexil
