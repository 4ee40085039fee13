#include "ActionSelect.h"

#include "SelectionModel.h"
#include "view/frmPicWins.h"

namespace vexil {

void ActionSelect::SetOldSelToPrevSel() {
    const SelectionState& s = Sel();
    m_oldType = s.PrevSelEntityType;
    m_oldHandle = s.PrevSelEntity;
    m_oldSet.CopyFrom(s.PrevMultiSel);
    SelectionModel* m = selectionModel();
    if (!m) return;
    const std::vector<int>& pts = m->PrevSelPts();
    const std::vector<int>& pols = m->PrevSelPols();
    if (pts.size() > 1) {
        m_pts = std::make_unique<ActionSelectPts>();
        m_pts->SetOldSelPts(pts, static_cast<int>(pts.size()) - 1);
    }
    if (pols.size() > 1) {
        m_pols = std::make_unique<ActionSelectPols>();
        m_pols->SetOldSelPols(pols, static_cast<int>(pols.size()) - 1);
    }
}

void ActionSelect::SetNewSelToCurrSel() {
    const SelectionState& s = Sel();
    m_newType = s.CurrSelEntityType;
    m_newHandle = s.CurrSelEntity;
    m_newSet.CopyFrom(s.MultiSel);
    if (s.SelPts.Count() > 0 && !m_pts) m_pts = std::make_unique<ActionSelectPts>();
    if (s.SelPols.Count() > 0 && !m_pols) m_pols = std::make_unique<ActionSelectPols>();
    if (m_pts) m_pts->SetNewSelPts(s.SelPts.Slots(), s.SelPts.Count());
    if (m_pols) m_pols->SetNewSelPols(s.SelPols.Slots(), s.SelPols.Count());
}

void ActionSelect::apply(int type, int handle, const MultipleSelection& set) {
    SelectionState& s = Sel();
    SelectionModel* m = selectionModel();
    // The change notice compares with the previous selection: what stands now becomes the previous.
    if (m) m->SetPrevSelEntityToCurrSelEntity();
    s.CurrSelEntityType = type;
    s.CurrSelEntity = handle;
    if (type == 6) s.MultiSel.CopyFrom(set);
    if (!m) return;
    if (type == 1)
        if (frmPicWins* v = m->Views()) v->SelectionBox().Initialize(handle);
    m->ThingsToDoOnSelectedEntityChange();
    if (type == 6) {
        s.MultiSel.InitializeBndBoxes();
        m->ComputeSelObjsAvgCenter();
    }
}

void ActionSelect::Undo() {
    apply(m_oldType, m_oldHandle, m_oldSet);
    if (m_pols) m_pols->Undo();
    if (m_pts) m_pts->Undo();
}

void ActionSelect::Redo() {
    apply(m_newType, m_newHandle, m_newSet);
    if (m_pols) m_pols->Redo();
    if (m_pts) m_pts->Redo();
}

} // namespace vexil
