// The Group menu: group the selection under a new group, ungroup, attach to a group, detach, remove from
// a group, ungroup everything below the selection; and which of these the selection allows.
#include "SelectionModel.h"

#include "base/VexilError.h"

#include "frame/Dialogs.h"
#include "frame/Locale.h"
#include "engine/EntityNaming.h"
#include "document/WorkspaceTrees.h"
#include "view/frmPicWins.h"
#include "undo/ActionUndoRedo_Stack.h"
#include "EntityActions.h"

#include <algorithm>
#include <zelmar/zelmar.h>

namespace vexil {

namespace {

QString groupKey(int g) {
    return QStringLiteral("Group") + QString::number(g);
}

std::vector<int> childGroupsOf(int group) {
    std::vector<int> children;
    for (int g = ZELMAR_group_get_first_included_group(group); g != 0;
         g = ZELMAR_group_get_next_included_group(g))
        if (ZELMAR_group_get_father_group(g) == group) children.push_back(g);
    return children;
}

} // namespace

std::vector<int> SelectionModel::SelectedGroups() {
    const SelectionState& s = Sel();
    if (s.CurrSelEntityType == 1 && s.CurrSelEntity != 0) return {s.CurrSelEntity};
    if (s.CurrSelEntityType == 6) return s.MultiSel.Groups();
    return {};
}

void SelectionModel::ChangeFathers(const std::vector<int>& children, const std::vector<int>& fathers) {
    trwGroupView* t = m_host.GroupTree();
    const int root = RootGrp();
    for (size_t i = 0; i < children.size() && i < fathers.size(); ++i) {
        const int c = children[i], f = fathers[i];
        ZELMAR_group_set_father_group(c, f);
        if (ZELMAR_group_get_father_group(c) != f || !t) continue; // the engine refused a cycle
        const bool hidden = IsGrpHidden(c);
        t->RemoveNode(groupKey(c));
        const QString parentKey = f == root ? QStringLiteral("WORLD") : groupKey(f);
        QTreeWidgetItem* n = t->AddNode(parentKey, groupKey(c), QString::fromLocal8Bit(EntityName(c).c_str()),
                                        QStringLiteral("Group"));
        n->setFlags(n->flags() | Qt::ItemIsEditable);
        t->trwGroupView_PopulateRecursive(c, groupKey(c));
        if (hidden || ZELMAR_group_is_disable(c) == 1) t->GroupHide(c);
    }
    // The current node may have been made again.
    const SelectionState& s = Sel();
    if (s.CurrSelEntityType == 1) treeViewHighlightNode(1, s.CurrSelEntity, true);
}

void SelectionModel::selectAfterGrouping(int type, const std::vector<int>& groups) {
    SelectionState& s = Sel();
    SetPrevSelEntityToCurrSelEntity();
    s.MultiSel.Reset();
    for (int g : groups)
        s.MultiSel.AddGrpHandles(g);
    if (type == 1 && !groups.empty())
        setCurrent(1, groups.front());
    else
        SettleCurrentEntity();
    ThingsToDoOnSelectedEntityChange();
    if (s.CurrSelEntityType == 6) {
        s.MultiSel.InitializeBndBoxes();
        ComputeSelObjsAvgCenter();
    }
}

int SelectionModel::GroupSelectedUnderNewGrp(const std::string& name, const std::vector<int>& children,
                                             int father) {
    if (father == 0) father = RootGrp();
    int g = GroupUsingName(name);
    if (g != 0 && ZELMAR_group_get_father_group(g) == 0 && g != RootGrp()) {
        UnDeleteGroup(g, father); // a corpse kept by an action comes back
    } else if (g == 0) {
        g = ZELMAR_group_create(name.c_str());
        UnDeleteGroup(g, father);
    }
    ChangeFathers(children, std::vector<int>(children.size(), g));
    selectAfterGrouping(1, {g});
    if (frmPicWins* v = Views()) v->UpdateCameras();
    return g;
}

std::vector<int> SelectionModel::SelectedGrpUngroup() {
    SelectionState& s = Sel();
    if (s.CurrSelEntityType != 1 || s.CurrSelEntity == 0) return {};
    const int g = s.CurrSelEntity;
    const std::vector<int> children = childGroupsOf(g);
    int father = ZELMAR_group_get_father_group(g);
    if (father == 0) father = RootGrp();
    ChangeFathers(children, std::vector<int>(children.size(), father));
    // A container left without polygons has no reason to stay.
    if (ZELMAR_group_get_number_of_polygons(g) == 0) FakeDeleteGroup(g);
    selectAfterGrouping(6, children);
    if (frmPicWins* v = Views()) v->UpdateCameras();
    return children;
}

void SelectionModel::mnuGroupTogether_Click() {
    propagate("Form1", "mnuGroupTogether_Click", [&] {
        if (!m_host.WorldOpen()) return;
        const std::vector<int> groups = SelectedGroups();
        if (groups.empty()) return;
        const QString typed =
            dialogs().inputBox(GetLocaleString(377), QString(),
                               QString::fromLocal8Bit(GetNewGrpNameFrmGivenStr("Group").c_str()));
        if (typed.trimmed().isEmpty()) return;
        const std::string name = GetNewGrpNameFrmGivenStr(typed.trimmed().toLocal8Bit().toStdString());
        // The new group hangs where the selected groups hang, or under the root when they differ.
        int father = ZELMAR_group_get_father_group(groups.front());
        for (int g : groups)
            if (ZELMAR_group_get_father_group(g) != father) father = RootGrp();
        ActionRef env = ActionUndoRedo_Stack::MakeAction(AT_ActionGroupTogather);
        auto* a = env->As<ActionGroupTogather>();
        if (!a) return;
        a->SetChildGrpsToCurrGrpSelection();
        a->SetNewFatherName(name);
        const int g = GroupSelectedUnderNewGrp(name, groups, father);
        a->SetNewFather(g, father);
        m_host.UndoStack().Push(env);
    });
}

void SelectionModel::mnuUngroup_Click() {
    propagate("Form1", "mnuUngroup_Click", [&] {
        SelectionState& s = Sel();
        if (!m_host.WorldOpen() || s.CurrSelEntityType != 1) return;
        const int g = s.CurrSelEntity;
        if (childGroupsOf(g).empty()) return;
        ActionRef env = ActionUndoRedo_Stack::MakeAction(AT_ActionUnGroup);
        auto* a = env->As<ActionUnGroup>();
        if (!a) return;
        a->SetChildGrpsToCurrGrpSelection();
        a->SetOldFatherName(EntityName(g));
        SelectedGrpUngroup();
        a->SetOldFatherRemoved(ZELMAR_group_get_father_group(g) == 0);
        m_host.UndoStack().Push(env);
    });
}

void SelectionModel::mnuAttach_Click() {
    propagate("Form1", "mnuAttach_Click", [&] {
        if (!m_host.WorldOpen()) return;
        const std::vector<int> groups = SelectedGroups();
        if (groups.empty()) return;
        const int target = ChooseGroupToAttach();
        if (target == 0) return;
        // No group goes under itself or under one of its own descendants.
        for (int g : groups)
            if (g == target || ZELMAR_group_is_groupA_included_in_groupB(target, g) == 1) return;
        ActionRef env = ActionUndoRedo_Stack::MakeAction(AT_ActionChangeFatherGrp);
        auto* a = env->As<ActionChangeFatherGrp>();
        if (!a) return;
        a->SetChildGrps(groups);
        a->SetParentGrps(std::vector<int>(groups.size(), target));
        m_host.UndoStack().Push(env);
        ChangeFathers(groups, std::vector<int>(groups.size(), target));
        if (frmPicWins* v = Views()) v->UpdateCameras();
    });
}

void SelectionModel::mnuDetach_Click() {
    SelectionState& s = Sel();
    if (!m_host.WorldOpen() || s.CurrSelEntityType != 1) return;
    const int g = s.CurrSelEntity, f = ZELMAR_group_get_father_group(g);
    if (f == 0 || f == RootGrp()) return;
    ActionRef env = ActionUndoRedo_Stack::MakeAction(AT_ActionChangeFatherGrp);
    auto* a = env->As<ActionChangeFatherGrp>();
    if (!a) return;
    a->SetChildGrps({g});
    a->SetParentGrps({RootGrp()});
    m_host.UndoStack().Push(env);
    ChangeFathers({g}, {RootGrp()});
    if (frmPicWins* v = Views()) v->UpdateCameras();
}

void SelectionModel::mnuGroupMenuRemoveFromGroup_Click() {
    SelectionState& s = Sel();
    if (!m_host.WorldOpen() || s.CurrSelEntityType != 1) return;
    const int g = s.CurrSelEntity, f = ZELMAR_group_get_father_group(g);
    if (f == 0 || f == RootGrp()) return;
    // One level up: the group leaves its father for its father's father.
    const int up = ZELMAR_group_get_father_group(f);
    if (up == 0) return;
    ActionRef env = ActionUndoRedo_Stack::MakeAction(AT_ActionChangeFatherGrp);
    auto* a = env->As<ActionChangeFatherGrp>();
    if (!a) return;
    a->SetChildGrps({g});
    a->SetParentGrps({up});
    m_host.UndoStack().Push(env);
    ChangeFathers({g}, {up});
    if (frmPicWins* v = Views()) v->UpdateCameras();
}

void SelectionModel::mnuUngroupAll_Click() {
    propagate("Form1", "mnuUngroupAll_Click", [&] {
        if (!m_host.WorldOpen()) return;
        const std::vector<int> groups = SelectedGroups();
        std::vector<int> descendants;
        for (int top : groups)
            for (int g = ZELMAR_group_get_first_included_group(top); g != 0;
                 g = ZELMAR_group_get_next_included_group(g))
                descendants.push_back(g);
        if (descendants.empty()) return;
        if (dialogs().msgBox(GetLocaleString(361), MsgYesNoCancel, MsgQuestion) != vbYes) return;
        m_host.UndoStack().Reset();
        const int root = RootGrp();
        ChangeFathers(descendants, std::vector<int>(descendants.size(), root));
        // Containers left empty go for good: there is no undo to bring them back.
        std::vector<int> freed;
        for (int g : groups) {
            if (ZELMAR_group_get_number_of_polygons(g) == 0) {
                FakeDeleteGroup(g);
                DeleteGroupPermanently(g);
            } else {
                freed.push_back(g);
            }
        }
        for (int g : descendants) {
            if (ZELMAR_group_get_number_of_polygons(g) == 0) {
                FakeDeleteGroup(g);
                DeleteGroupPermanently(g);
            } else {
                freed.push_back(g);
            }
        }
        Sel().PrevSelEntityType = 0;
        selectAfterGrouping(6, freed);
        if (frmPicWins* v = Views()) v->UpdateCameras();
    });
}

// ---- menus --------------------------------------------------------------------------------------

void SelectionModel::mnuGroup_ShowOnlyRelavant() {
    const SelectionState& s = Sel();
    const std::vector<int> groups = SelectedGroups();
    const bool one = s.CurrSelEntityType == 1 && s.CurrSelEntity != 0;
    const int father = one ? ZELMAR_group_get_father_group(s.CurrSelEntity) : 0;
    bool nested = false;
    for (int g : groups)
        if (ZELMAR_group_get_first_included_group(g) != 0) nested = true;
    m_host.SetGroupMenuEnabled(!groups.empty(), one && !childGroupsOf(s.CurrSelEntity).empty(),
                               !groups.empty(), one && father != 0 && father != RootGrp(), nested,
                               s.CurrSelEntityType != 0);
}

SelectionModel::GroupMenuItems SelectionModel::mnuGroupMenu_HideObsoleteItems() {
    GroupMenuItems items;
    const SelectionState& s = Sel();
    if (s.CurrSelEntityType != 1) return items;
    const int g = s.CurrSelEntity, father = ZELMAR_group_get_father_group(g);
    items.removeFromGroup = father != 0 && father != RootGrp() && ZELMAR_group_get_father_group(father) != 0;
    items.ungroup = !childGroupsOf(g).empty();
    items.hide = !IsGrpHidden(g);
    items.unhide = !items.hide || !UnhideGroupParents(g).empty() || !UnhideGroupChilds(g).empty();
    items.del = true;
    return items;
}

} // namespace vexil
