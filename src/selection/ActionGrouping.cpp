#include "ActionGrouping.h"

#include "engine/EntityNaming.h"
#include "SelectionModel.h"
#include "view/frmPicWins.h"

#include <zelmar/zelmar.h>

namespace vexil {

namespace {

// The group a grouping action names: its recorded handle while that still is a group of this name, else
// the group of that name.
int groupNamed(int handle, const std::string& name) {
    if (handle != 0 && ZELMAR_group_is_group(handle) == 1 && EntityName(handle) == name) return handle;
    return GroupUsingName(name);
}

std::vector<int> fathersOf(const std::vector<int>& groups) {
    std::vector<int> f;
    for (int g : groups)
        f.push_back(ZELMAR_group_get_father_group(g));
    return f;
}

} // namespace

// ---- ActionGroupTogather ------------------------------------------------------------------------

ActionGroupTogather::~ActionGroupTogather() {
    // Undone: the father made by the command is a corpse that nothing else can reach.
    if (m_undone && m_group != 0 && ZELMAR_group_get_father_group(m_group) == 0)
        DeleteGroupPermanently(m_group);
}

void ActionGroupTogather::SetChildGrpsToCurrGrpSelection() {
    SelectionModel* m = selectionModel();
    m_children = m ? m->SelectedGroups() : std::vector<int>{};
    m_oldFathers = fathersOf(m_children);
}

void ActionGroupTogather::Undo() {
    SelectionModel* m = selectionModel();
    if (!m) return;
    const int g = groupNamed(m_group, m_name);
    m->SetPrevSelEntityToCurrSelEntity();
    Sel().CurrSelEntityType = 1;
    Sel().CurrSelEntity = g;
    m->SelectedGrpUngroup();
    // Children that came from different fathers go back to their own.
    if (fathersOf(m_children) != m_oldFathers) m->ChangeFathers(m_children, m_oldFathers);
    m_undone = true;
}

void ActionGroupTogather::Redo() {
    SelectionModel* m = selectionModel();
    if (!m) return;
    SelectionState& s = Sel();
    m->SetPrevSelEntityToCurrSelEntity();
    s.CurrSelEntityType = 6;
    s.MultiSel.Reset();
    for (int c : m_children)
        s.MultiSel.AddGrpHandles(c);
    m_group = m->GroupSelectedUnderNewGrp(m_name, m_children, m_father);
    m_undone = false;
}

// ---- ActionUnGroup ------------------------------------------------------------------------------

ActionUnGroup::~ActionUnGroup() {
    // Done, and the container was taken away: it is a corpse now.
    if (!m_undone && m_removed && m_group != 0 && ZELMAR_group_get_father_group(m_group) == 0)
        DeleteGroupPermanently(m_group);
}

void ActionUnGroup::SetChildGrpsToCurrGrpSelection() {
    const SelectionState& s = Sel();
    m_children.clear();
    m_prevType = s.CurrSelEntityType;
    m_prevHandle = s.CurrSelEntity;
    if (s.CurrSelEntityType != 1) return;
    m_group = s.CurrSelEntity;
    m_groupFather = ZELMAR_group_get_father_group(m_group);
    for (int g = ZELMAR_group_get_first_included_group(m_group); g != 0;
         g = ZELMAR_group_get_next_included_group(g))
        if (ZELMAR_group_get_father_group(g) == m_group) m_children.push_back(g);
}

void ActionUnGroup::Undo() {
    SelectionModel* m = selectionModel();
    if (!m) return;
    SelectionState& s = Sel();
    m->SetPrevSelEntityToCurrSelEntity();
    s.CurrSelEntityType = m_prevType;
    s.CurrSelEntity = m_prevHandle;
    s.MultiSel.Reset();
    for (int c : m_children)
        s.MultiSel.AddGrpHandles(c);
    m_group = m->GroupSelectedUnderNewGrp(m_name, m_children, m_groupFather);
    m_undone = true;
}

void ActionUnGroup::Redo() {
    SelectionModel* m = selectionModel();
    if (!m) return;
    m->SetPrevSelEntityToCurrSelEntity();
    Sel().CurrSelEntityType = 1;
    Sel().CurrSelEntity = groupNamed(m_group, m_name);
    m->SelectedGrpUngroup();
    m_undone = false;
}

// ---- ActionChangeFatherGrp ----------------------------------------------------------------------

void ActionChangeFatherGrp::SetChildGrps(const std::vector<int>& children) {
    m_children = children;
    m_oldFathers = fathersOf(children);
}

void ActionChangeFatherGrp::Undo() {
    if (SelectionModel* m = selectionModel()) m->ChangeFathers(m_children, m_oldFathers);
}

void ActionChangeFatherGrp::Redo() {
    if (SelectionModel* m = selectionModel()) m->ChangeFathers(m_children, m_newFathers);
}

// ---- ActionReplaceGrp ---------------------------------------------------------------------------

ActionReplaceGrp::~ActionReplaceGrp() {
    // The group out of the world (the replaced one, or the replacement once undone) is a corpse only this
    // action could bring back.
    const int corpse = m_undone ? m_new : m_old;
    if (corpse != 0 && ZELMAR_group_get_father_group(corpse) == 0) DeleteGroupPermanently(corpse);
}

void ActionReplaceGrp::SetGrpThatWasReplaced(int group) {
    const SelectionState& s = Sel();
    m_old = group;
    m_father = ZELMAR_group_get_father_group(group);
    m_next = ZELMAR_group_get_next_sibling(group);
    m_selPols = s.SelPols.ToVector();
    m_selPts = s.SelPts.ToVector();
    m_selPtsPols = s.SelPtsPols.ToVector();
}

void ActionReplaceGrp::Undo() {
    SelectionModel* m = selectionModel();
    if (!m) return;
    m->FakeDeleteGroup(m_new);
    m->UnDeleteGroup(m_old, m_father, m_next);
    m_undone = true;
    SelectionState& s = Sel();
    s.CurrSelEntityType = 1;
    s.CurrSelEntity = m_old;
    if (frmPicWins* v = m->Views()) v->SelectionBox().Initialize(m_old);
    m->Host().UpdateStatusBar();
    s.SelPols.Assign(m_selPols);
    s.SelPts.Assign(m_selPts);
    s.SelPtsPols.Assign(m_selPtsPols);
}

void ActionReplaceGrp::Redo() {
    SelectionModel* m = selectionModel();
    if (!m) return;
    m->FakeDeleteGroup(m_old);
    m->UnDeleteGroup(m_new, m_father, m_next);
    m_undone = false;
    SelectionState& s = Sel();
    s.CurrSelEntityType = 1;
    s.CurrSelEntity = m_new;
    if (frmPicWins* v = m->Views()) v->SelectionBox().Initialize(m_new);
    m->Host().UpdateStatusBar();
    s.SelPols.Clear();
    s.SelPts.Clear();
    s.SelPtsPols.Clear();
}

} // namespace vexil
