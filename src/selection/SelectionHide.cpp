// Hiding and showing entities: the engine's disabled flag with the "Invisible" tree image, the walks over
// fathers and children, and the commands of the View menu and the context menus.
#include "SelectionModel.h"

#include "base/VexilError.h"

#include "EntityKinds.h"
#include "document/WorkspaceTrees.h"
#include "view/frmPicWins.h"
#include "undo/ActionUndoRedo_Stack.h"
#include "EntityActions.h"

#include <QTreeWidgetItemIterator>
#include <zelmar/zelmar.h>

namespace vexil {

void SelectionModel::HideUnhideGroup(int group, bool hide) {
    if (trwGroupView* t = m_host.GroupTree()) {
        if (hide)
            t->GroupHide(group);
        else
            t->GroupUnhide(group);
    }
    ZELMAR_group_disable(group, hide ? 1 : 0);
}

void SelectionModel::HideUnhideCamera(int camera, bool hide) {
    if (KindOps(2).HideUnhide) KindOps(2).HideUnhide(camera, hide);
}

void SelectionModel::HideUnhideLight(int light, bool hide) {
    if (KindOps(4).HideUnhide) KindOps(4).HideUnhide(light, hide);
}

void SelectionModel::HideUnhideMultiple(const vexil::MultipleSelection& set, bool hide) {
    for (int g : set.Groups())
        HideUnhideGroup(g, hide);
    for (int c : set.Cams())
        HideUnhideCamera(c, hide);
    for (int l : set.Lights())
        HideUnhideLight(l, hide);
}

void SelectionModel::HideUnhideEntity(int kind, int handle, const vexil::MultipleSelection* set, bool hide) {
    switch (kind) {
    case 1:
        HideUnhideGroup(handle, hide);
        break;
    case 2:
        HideUnhideCamera(handle, hide);
        break;
    case 4:
        HideUnhideLight(handle, hide);
        break;
    case 6:
        if (set) HideUnhideMultiple(*set, hide);
        break;
    default:
        break;
    }
}

void SelectionModel::HideUnhideAllGroups(bool hide) {
    const int root = RootGrp();
    for (int g = ZELMAR_group_get_first_group(); g != 0; g = ZELMAR_group_get_next(g))
        if (ZELMAR_group_get_father_group(g) == root) HideUnhideGroup(g, hide);
}

void SelectionModel::HideUnhideAllCamera(bool hide) {
    for (int c = ZELMAR_camera_get_first_camera(); c != 0; c = ZELMAR_camera_get_next_camera(c))
        if (ZELMAR_camera_get_save_flag(c) == 1) HideUnhideCamera(c, hide);
}

void SelectionModel::HideUnhideAllLight(bool hide) {
    for (int l = ZELMAR_light_get_first_light(); l != 0; l = ZELMAR_light_get_next_light(l))
        if (ZELMAR_light_get_save_flag(l) == 1) HideUnhideLight(l, hide);
}

std::vector<int> SelectionModel::UnhideGroupParents(int group) {
    std::vector<int> hidden;
    const int root = RootGrp();
    for (int f = ZELMAR_group_get_father_group(group); f != 0 && f != root;
         f = ZELMAR_group_get_father_group(f))
        if (IsGrpHidden(f) || ZELMAR_group_is_disable(f) == 1) hidden.push_back(f);
    return hidden;
}

std::vector<int> SelectionModel::UnhideGroupChilds(int group) {
    std::vector<int> hidden;
    for (int g = ZELMAR_group_get_first_included_group(group); g != 0;
         g = ZELMAR_group_get_next_included_group(g))
        if (IsGrpHidden(g) || ZELMAR_group_is_disable(g) == 1) hidden.push_back(g);
    return hidden;
}

void SelectionModel::RestoreSelection(int kind, int handle, const vexil::MultipleSelection& set) {
    SelectionState& s = Sel();
    SetPrevSelEntityToCurrSelEntity();
    s.CurrSelEntityType = kind;
    s.CurrSelEntity = handle;
    s.MultiSel.CopyFrom(set);
    if (kind == 1)
        if (frmPicWins* v = Views()) v->SelectionBox().Initialize(handle);
    ThingsToDoOnSelectedEntityChange();
    if (kind == 6) {
        s.MultiSel.InitializeBndBoxes();
        ComputeSelObjsAvgCenter();
    }
}

void SelectionModel::ThingsToDoAfterHiding() {
    SelectionState& s = Sel();
    // What was hidden cannot stay selected: the rest of the selection stays.
    vexil::MultipleSelection rest;
    bool changed = false;
    if (s.CurrSelEntityType == 6) {
        for (int g : s.MultiSel.Groups()) {
            if (IsGroupVisible(g) && !IsGrpHidden(g))
                rest.AddGrpHandles(g);
            else
                changed = true;
        }
        for (int c : s.MultiSel.Cams()) {
            if (!IsCamHidden(c))
                rest.AddCamHandles(c);
            else
                changed = true;
        }
        for (int l : s.MultiSel.Lights()) {
            if (!IsLightHidden(l))
                rest.AddLightHandles(l);
            else
                changed = true;
        }
        for (int t : s.MultiSel.Tracks())
            rest.AddTrackHandles(t);
    } else if (s.CurrSelEntityType == 1 || s.CurrSelEntityType == 2 || s.CurrSelEntityType == 4) {
        changed = IsEntityHidden(s.CurrSelEntityType, s.CurrSelEntity) ||
                  (s.CurrSelEntityType == 1 && !IsGroupVisible(s.CurrSelEntity));
    }
    if (changed) {
        SetPrevSelEntityToCurrSelEntity();
        s.MultiSel.CopyFrom(rest);
        SettleCurrentEntity();
        ThingsToDoOnSelectedEntityChange();
    }
    ActionRef top = m_host.UndoStack().Retrive();
    if (top && top->ActionType == AT_ActionHide)
        if (auto* a = top->As<ActionHide>())
            a->SetEntitySelAfterHide(s.CurrSelEntityType, s.CurrSelEntity, s.MultiSel);
    m_host.UpdateStatusBar();
    if (frmPicWins* v = Views()) v->UpdateCameras();
}

void SelectionModel::ThingsToDoAfterUnhiding() {
    m_host.UpdateStatusBar();
    if (frmPicWins* v = Views()) v->UpdateCameras();
}

void SelectionModel::mnuHideSelected_Click() {
    propagate("Form1", "mnuHideSelected_Click", [&] {
        if (!m_host.WorldOpen()) return;
        SelectionState& s = Sel();
        const int type = s.CurrSelEntityType;
        if (type != 1 && type != 2 && type != 4 && type != 6) return;
        ActionRef env = ActionUndoRedo_Stack::MakeAction(AT_ActionHide);
        auto* a = env->As<ActionHide>();
        if (!a) return;
        a->SetEntityHidden(type, s.CurrSelEntity, &s.MultiSel);
        a->SetEntitySelBeforeHide(type, s.CurrSelEntity, s.MultiSel);
        a->SetEntitySelAfterHide(type, s.CurrSelEntity, s.MultiSel);
        m_host.UndoStack().Push(env);
        const vexil::MultipleSelection hidden = s.MultiSel;
        HideUnhideEntity(type, s.CurrSelEntity, &hidden, true);
        ThingsToDoAfterHiding();
    });
}

void SelectionModel::mnuHideUnSelected_Click() {
    propagate("Form1", "mnuHideUnSelected_Click", [&] {
        if (!m_host.WorldOpen()) return;
        SelectionState& s = Sel();
        ActionRef env = ActionUndoRedo_Stack::MakeAction(AT_ActionHide);
        auto* a = env->As<ActionHide>();
        if (!a) return;
        a->HidingUnselected();
        if (a->Hidden().set.TotalCount == 0) return;
        a->SetEntitySelBeforeHide(s.CurrSelEntityType, s.CurrSelEntity, s.MultiSel);
        a->SetEntitySelAfterHide(s.CurrSelEntityType, s.CurrSelEntity, s.MultiSel);
        m_host.UndoStack().Push(env);
        HideUnhideMultiple(a->Hidden().set, true);
        ThingsToDoAfterHiding();
    });
}

void SelectionModel::mnuUnhideAll_Click() {
    propagate("Form1", "mnuUnhideAll_Click", [&] {
        if (!m_host.WorldOpen()) return;
        SelectionState& s = Sel();
        ActionRef env = ActionUndoRedo_Stack::MakeAction(AT_ActionUnhide);
        auto* a = env->As<ActionUnhide>();
        if (!a) return;
        a->UnHidingAllObjects();
        if (a->Unhidden().set.TotalCount == 0) return;
        a->SetEntitySelBeforeUnhide(s.CurrSelEntityType, s.CurrSelEntity, s.MultiSel);
        m_host.UndoStack().Push(env);
        HideUnhideMultiple(a->Unhidden().set, false);
        ThingsToDoAfterUnhiding();
    });
}

void SelectionModel::mnuGroupMenuHide_Click() {
    if (Sel().CurrSelEntityType == 1) mnuHideSelected_Click();
}

void SelectionModel::mnuGroupMenuUnhide_Click() {
    SelectionState& s = Sel();
    if (!m_host.WorldOpen() || s.CurrSelEntityType != 1) return;
    const int g = s.CurrSelEntity;
    // A child cannot be shown under a hidden father: the fathers and the children come along.
    vexil::MultipleSelection set;
    if (IsGrpHidden(g) || ZELMAR_group_is_disable(g) == 1) set.AddGrpHandles(g);
    for (int f : UnhideGroupParents(g))
        set.AddGrpHandles(f);
    for (int c : UnhideGroupChilds(g))
        set.AddGrpHandles(c);
    if (set.TotalCount == 0) return;
    ActionRef env = ActionUndoRedo_Stack::MakeAction(AT_ActionUnhide);
    auto* a = env->As<ActionUnhide>();
    if (!a) return;
    if (set.TotalCount == 1)
        a->SetEntityUnHidden(1, g, nullptr);
    else
        a->SetEntityUnHidden(6, 0, &set);
    a->SetEntitySelBeforeUnhide(s.CurrSelEntityType, s.CurrSelEntity, s.MultiSel);
    m_host.UndoStack().Push(env);
    HideUnhideMultiple(set, false);
    ThingsToDoAfterUnhiding();
}

void SelectionModel::mnuUnhideCurrent_Click() {
    SelectionState& s = Sel();
    if (!m_host.WorldOpen()) return;
    if (s.CurrSelEntityType == 1) {
        mnuGroupMenuUnhide_Click();
        return;
    }
    if (s.CurrSelEntityType != 2 && s.CurrSelEntityType != 4) return;
    if (!IsEntityHidden(s.CurrSelEntityType, s.CurrSelEntity)) return;
    ActionRef env = ActionUndoRedo_Stack::MakeAction(AT_ActionUnhide);
    auto* a = env->As<ActionUnhide>();
    if (!a) return;
    a->SetEntityUnHidden(s.CurrSelEntityType, s.CurrSelEntity, nullptr);
    a->SetEntitySelBeforeUnhide(s.CurrSelEntityType, s.CurrSelEntity, s.MultiSel);
    m_host.UndoStack().Push(env);
    HideUnhideEntity(s.CurrSelEntityType, s.CurrSelEntity, nullptr, false);
    ThingsToDoAfterUnhiding();
}

void SelectionModel::hideOrShowAll(bool hide, bool lights) {
    if (!m_host.WorldOpen()) return;
    SelectionState& s = Sel();
    if (hide) {
        ActionRef env = ActionUndoRedo_Stack::MakeAction(AT_ActionHide);
        auto* a = env->As<ActionHide>();
        if (!a) return;
        if (lights)
            a->HidingAllLightsInScene();
        else
            a->HidingAllCamerasInScene();
        a->SetEntitySelBeforeHide(s.CurrSelEntityType, s.CurrSelEntity, s.MultiSel);
        m_host.UndoStack().Push(env);
        HideUnhideMultiple(a->Hidden().set, true);
        ThingsToDoAfterHiding();
    } else {
        ActionRef env = ActionUndoRedo_Stack::MakeAction(AT_ActionUnhide);
        auto* a = env->As<ActionUnhide>();
        if (!a) return;
        if (lights)
            a->UnHidingAllLightsInScene();
        else
            a->UnHidingAllCamerasInScene();
        a->SetEntitySelBeforeUnhide(s.CurrSelEntityType, s.CurrSelEntity, s.MultiSel);
        m_host.UndoStack().Push(env);
        HideUnhideMultiple(a->Unhidden().set, false);
        ThingsToDoAfterUnhiding();
    }
}

void SelectionModel::mnuLightMenuHideAll_Click(bool hide) {
    hideOrShowAll(hide, true);
}

void SelectionModel::mnuCamTrkBkMenuHideAll_Click(bool hide) {
    hideOrShowAll(hide, false);
}

} // namespace vexil
