// ActionSelect (type 1): the entity selection before and after a change (kind, handle and, for kind 6, the
// set), and the point and polygon selections of the two entities when there were any. Undo and Redo set the
// selection and run the change notice; the embedded sub-object selections follow.
#pragma once
#include "undo/Action.h"
#include "ActionSubSelect.h"
#include "MultipleSelection.h"

#include <memory>

namespace vexil {

class ActionSelect : public Action {
  public:
    // The previous selection of the model (PrevSelEntityType, PrevSelEntity, PrevMultiSel and the previous
    // entity's sub-object selections).
    void SetOldSelToPrevSel();
    // The current selection.
    void SetNewSelToCurrSel();
    void Undo() override;
    void Redo() override;

    int OldType() const { return m_oldType; }
    int OldHandle() const { return m_oldHandle; }
    int NewType() const { return m_newType; }
    int NewHandle() const { return m_newHandle; }
    const MultipleSelection& OldSet() const { return m_oldSet; }
    const MultipleSelection& NewSet() const { return m_newSet; }
    bool HasSubSelections() const { return m_pts || m_pols; }

  private:
    void apply(int type, int handle, const MultipleSelection& set);
    int m_oldType = 0, m_oldHandle = 0, m_newType = 0, m_newHandle = 0;
    MultipleSelection m_oldSet, m_newSet;
    std::unique_ptr<ActionSelectPts> m_pts;
    std::unique_ptr<ActionSelectPols> m_pols;
};

} // namespace vexil
