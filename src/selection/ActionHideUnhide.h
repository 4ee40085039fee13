// ActionHide (29) and ActionUnhide (30): what was hidden or shown (kind, handle, or a set for kind 6) and
// the selection around the change. A hidden entity is disabled in the engine and shows the "Invisible"
// image in its tree.
#pragma once
#include "undo/Action.h"
#include "MultipleSelection.h"

namespace vexil {

struct SelectionRecord {
    int kind = 0, handle = 0;
    MultipleSelection set;
    void Set(int k, int h, const MultipleSelection& s) {
        kind = k;
        handle = h;
        set.CopyFrom(s);
    }
};

class ActionHide : public Action {
  public:
    // Kind 6 with no set shows "MultipleObjs cannot be nothing!" and records nothing.
    void SetEntityHidden(int kind, int handle, const MultipleSelection* set);
    void SetEntitySelBeforeHide(int kind, int handle, const MultipleSelection& set) {
        m_before.Set(kind, handle, set);
    }
    void SetEntitySelAfterHide(int kind, int handle, const MultipleSelection& set) {
        m_after.Set(kind, handle, set);
    }
    // Kind 6 sets of: every visible light; every visible camera; every visible camera, light and top-level
    // group that is not selected, less the selected groups and their fathers up to the root.
    void HidingAllLightsInScene();
    void HidingAllCamerasInScene();
    void HidingUnselected();
    void Undo() override;
    void Redo() override;
    const SelectionRecord& Hidden() const { return m_hidden; }

  private:
    SelectionRecord m_hidden, m_before, m_after;
};

class ActionUnhide : public Action {
  public:
    void SetEntityUnHidden(int kind, int handle, const MultipleSelection* set);
    void SetEntitySelBeforeUnhide(int kind, int handle, const MultipleSelection& set) {
        m_before.Set(kind, handle, set);
    }
    // Kind 6 sets of every hidden light; camera; group, camera and light.
    void UnHidingAllLightsInScene();
    void UnHidingAllCamerasInScene();
    void UnHidingAllObjects();
    void Undo() override;
    void Redo() override;
    const SelectionRecord& Unhidden() const { return m_unhidden; }

  private:
    SelectionRecord m_unhidden, m_before;
};

} // namespace vexil
