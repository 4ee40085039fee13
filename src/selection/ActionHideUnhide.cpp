#include "ActionHideUnhide.h"

#include "frame/Dialogs.h"
#include "document/WorkspaceTrees.h"
#include "SelectionModel.h"

#include <QTreeWidgetItemIterator>
#include <zelmar/zelmar.h>

namespace vexil {

namespace {

bool setHiddenEntity(SelectionRecord& r, int kind, int handle, const MultipleSelection* set) {
    if (kind == 6 && !set) {
        dialogs().msgBox(QStringLiteral("MultipleObjs cannot be nothing!"));
        return false;
    }
    r.kind = kind;
    r.handle = handle;
    if (set)
        r.set.CopyFrom(*set);
    else
        r.set.Reset();
    return true;
}

void apply(const SelectionRecord& r, bool hide) {
    if (SelectionModel* m = selectionModel()) m->HideUnhideEntity(r.kind, r.handle, &r.set, hide);
}

void restore(const SelectionRecord& r) {
    if (SelectionModel* m = selectionModel()) m->RestoreSelection(r.kind, r.handle, r.set);
}

void allCameras(MultipleSelection& set, bool hidden) {
    SelectionModel* m = selectionModel();
    for (int c = ZELMAR_camera_get_first_camera(); c != 0; c = ZELMAR_camera_get_next_camera(c))
        if (ZELMAR_camera_get_save_flag(c) == 1 && m && m->IsCamHidden(c) == hidden) set.AddCamHandles(c);
}

void allLights(MultipleSelection& set, bool hidden) {
    SelectionModel* m = selectionModel();
    for (int l = ZELMAR_light_get_first_light(); l != 0; l = ZELMAR_light_get_next_light(l))
        if (ZELMAR_light_get_save_flag(l) == 1 && m && m->IsLightHidden(l) == hidden) set.AddLightHandles(l);
}

} // namespace

// ---- ActionHide ---------------------------------------------------------------------------------

void ActionHide::SetEntityHidden(int kind, int handle, const MultipleSelection* set) {
    setHiddenEntity(m_hidden, kind, handle, set);
}

void ActionHide::HidingAllLightsInScene() {
    m_hidden = SelectionRecord();
    m_hidden.kind = 6;
    allLights(m_hidden.set, false);
}

void ActionHide::HidingAllCamerasInScene() {
    m_hidden = SelectionRecord();
    m_hidden.kind = 6;
    allCameras(m_hidden.set, false);
}

void ActionHide::HidingUnselected() {
    m_hidden = SelectionRecord();
    m_hidden.kind = 6;
    SelectionModel* m = selectionModel();
    if (!m) return;
    const SelectionState& s = Sel();
    MultipleSelection selected;
    if (s.CurrSelEntityType == 6)
        selected.CopyFrom(s.MultiSel);
    else if (s.CurrSelEntityType == 1)
        selected.AddGrpHandles(s.CurrSelEntity);
    else if (s.CurrSelEntityType == 2)
        selected.AddCamHandles(s.CurrSelEntity);
    else if (s.CurrSelEntityType == 4)
        selected.AddLightHandles(s.CurrSelEntity);
    MultipleSelection& set = m_hidden.set;
    for (int c = ZELMAR_camera_get_first_camera(); c != 0; c = ZELMAR_camera_get_next_camera(c))
        if (ZELMAR_camera_get_save_flag(c) == 1 && !m->IsCamHidden(c) && !selected.HasCam(c))
            set.AddCamHandles(c);
    for (int l = ZELMAR_light_get_first_light(); l != 0; l = ZELMAR_light_get_next_light(l))
        if (ZELMAR_light_get_save_flag(l) == 1 && !m->IsLightHidden(l) && !selected.HasLight(l))
            set.AddLightHandles(l);
    const int root = m->RootGrp();
    for (int g = ZELMAR_group_get_first_group(); g != 0; g = ZELMAR_group_get_next(g))
        if (ZELMAR_group_get_father_group(g) == root && !m->IsGrpHidden(g) && !selected.HasGrp(g))
            set.AddGrpHandles(g);
    // A selected child keeps its fathers visible.
    for (int g : selected.Groups())
        for (int f = g; f != 0 && f != root; f = ZELMAR_group_get_father_group(f))
            set.RemoveGrp(f);
}

void ActionHide::Undo() {
    apply(m_hidden, false);
    restore(m_before);
    if (m_hidden.kind == 6)
        if (SelectionModel* m = selectionModel()) m->ComputeSelObjsAvgCenter();
}

void ActionHide::Redo() {
    apply(m_hidden, true);
    restore(m_after);
}

// ---- ActionUnhide -------------------------------------------------------------------------------

void ActionUnhide::SetEntityUnHidden(int kind, int handle, const MultipleSelection* set) {
    setHiddenEntity(m_unhidden, kind, handle, set);
}

void ActionUnhide::UnHidingAllLightsInScene() {
    m_unhidden = SelectionRecord();
    m_unhidden.kind = 6;
    allLights(m_unhidden.set, true);
}

void ActionUnhide::UnHidingAllCamerasInScene() {
    m_unhidden = SelectionRecord();
    m_unhidden.kind = 6;
    allCameras(m_unhidden.set, true);
}

void ActionUnhide::UnHidingAllObjects() {
    m_unhidden = SelectionRecord();
    m_unhidden.kind = 6;
    SelectionModel* m = selectionModel();
    if (!m) return;
    if (trwGroupView* tree = m->Host().GroupTree())
        for (QTreeWidgetItemIterator it(tree); *it; ++it)
            if (WorkspaceTree::NodeImage(*it) == QLatin1String("Group Invisible"))
                m_unhidden.set.AddGrpHandles(WorkspaceTree::NodeKey(*it).mid(5).toInt());
    allCameras(m_unhidden.set, true);
    allLights(m_unhidden.set, true);
}

void ActionUnhide::Undo() {
    restore(m_before);
    apply(m_unhidden, true);
}

void ActionUnhide::Redo() {
    apply(m_unhidden, false);
}

} // namespace vexil
