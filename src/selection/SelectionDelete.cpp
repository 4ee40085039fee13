// Deleting entities: the fake deletion that takes an entity out of sight and out of the trees while an
// action keeps it, the revival that undo needs, and the Delete commands. Creation pushes its action here
// too, since it is the mirror of a deletion.
#include "SelectionModel.h"

#include "base/VexilError.h"

#include "EntityKinds.h"
#include "engine/EntityNaming.h"
#include "document/WorkspaceTrees.h"
#include "view/frmPicWins.h"
#include "undo/ActionUndoRedo_Stack.h"
#include "EntityActions.h"

#include <zelmar/zelmar.h>

namespace vexil {

namespace {

QString groupKey(int g) {
    return QStringLiteral("Group") + QString::number(g);
}

} // namespace

void SelectionModel::FakeDeleteGroup(int group) {
    ZELMAR_group_set_father_group(group, 0);
    ZELMAR_group_disable(group, 1);
    if (trwGroupView* t = m_host.GroupTree()) t->RemoveNode(groupKey(group));
}

void SelectionModel::UnDeleteGroup(int group, int father, int before) {
    ZELMAR_group_set_father_group_before(group, father, before);
    ZELMAR_group_disable(group, 0);
    trwGroupView* t = m_host.GroupTree();
    if (!t) return;
    t->RemoveNode(groupKey(group));
    const QString parentKey = father == RootGrp() ? QStringLiteral("WORLD") : groupKey(father);
    QTreeWidgetItem* n =
        t->AddNode(parentKey, groupKey(group), QString::fromLocal8Bit(EntityName(group).c_str()),
                   QStringLiteral("Group"));
    n->setFlags(n->flags() | Qt::ItemIsEditable);
    if (QTreeWidgetItem* b = before ? t->Node(groupKey(before)) : nullptr; b && b->parent() == n->parent()) {
        QTreeWidgetItem* parent = n->parent() ? n->parent() : t->invisibleRootItem();
        parent->removeChild(n);
        parent->insertChild(parent->indexOfChild(b), n);
    }
    t->trwGroupView_PopulateRecursive(group, groupKey(group));
}

void SelectionModel::DeleteGroup(int group) {
    ActionRef env = ActionUndoRedo_Stack::MakeAction(AT_ActionDelete);
    if (auto* a = env->As<ActionDelete>()) a->SetDeletedEntity(1, group);
    m_host.UndoStack().Push(env);
    FakeDeleteGroup(group);
}

void SelectionModel::FakeDeleteMultiple(const vexil::MultipleSelection& set) {
    for (int g : set.Groups())
        FakeDeleteGroup(g);
    for (int c : set.Cams())
        if (KindOps(2).FakeDelete) KindOps(2).FakeDelete(c);
    for (int l : set.Lights())
        if (KindOps(4).FakeDelete) KindOps(4).FakeDelete(l);
}

void SelectionModel::UnDeleteMultiple(const vexil::MultipleSelection& set, const std::vector<int>& fathers) {
    const std::vector<int>& groups = set.Groups();
    for (size_t i = 0; i < groups.size(); ++i)
        UnDeleteGroup(groups[i], i < fathers.size() ? fathers[i] : RootGrp());
    for (int c : set.Cams())
        if (KindOps(2).UnDelete) KindOps(2).UnDelete(c);
    for (int l : set.Lights())
        if (KindOps(4).UnDelete) KindOps(4).UnDelete(l);
}

void SelectionModel::DeleteMultiple() {
    // Only what can be revived is deleted: cameras and lights wait for their subsystems' deletion.
    vexil::MultipleSelection set;
    const vexil::MultipleSelection& m = Sel().MultiSel;
    for (int g : m.Groups())
        set.AddGrpHandles(g);
    if (KindOps(2).FakeDelete && KindOps(2).UnDelete)
        for (int c : m.Cams())
            set.AddCamHandles(c);
    if (KindOps(4).FakeDelete && KindOps(4).UnDelete)
        for (int l : m.Lights())
            set.AddLightHandles(l);
    if (set.TotalCount == 0) return;
    ActionRef env = ActionUndoRedo_Stack::MakeAction(AT_ActionDelete);
    if (auto* a = env->As<ActionDelete>()) a->SetDeletedEntity(6, 0, &set);
    m_host.UndoStack().Push(env);
    FakeDeleteMultiple(set);
}

void SelectionModel::mnuGroupMenuDelete_Click() {
    SelectionState& s = Sel();
    if (s.CurrSelEntityType != 1) return;
    s.SelPtsPols.Clear();
    s.SelPts.Clear();
    s.SelPols.Clear();
    DeleteGroup(s.CurrSelEntity);
    s.CurrSelEntityType = 0;
    s.PrevSelEntityType = 0;
    ThingsToDoOnSelectedEntityChange();
    m_host.ResetGroupsTabToNewObj();
    // Panel 3 gets the polygon count of the world that is left; the counts of panels 1 and 2 follow.
    m_host.SetStatusPanel(3, QString::number(ZELMAR_group_get_number_of_polygons(RootGrp())));
    m_host.UpdateStatusBar();
    if (frmPicWins* v = Views()) v->UpdateCameras();
}

void SelectionModel::DeleteSelected() {
    propagate("Form1", "DeleteSelected", [&] {
        if (!m_host.WorldOpen()) return;
        SelectionState& s = Sel();
        const int type = s.CurrSelEntityType;
        if (type == 1) {
            // Points and polygons of an open "Edit Geometry" are deleted by the geometry tools.
            const SelectMode mode = m_host.CurrentSelectMode();
            if (m_host.WorkspaceTab() == 1 && m_host.EditGeometryOpen() &&
                (mode == SelectMode::Point || mode == SelectMode::Polygon))
                return;
            mnuGroupMenuDelete_Click();
            return;
        }
        if (type == 6) {
            s.SelPtsPols.Clear();
            s.SelPts.Clear();
            s.SelPols.Clear();
            DeleteMultiple();
            s.CurrSelEntityType = 0;
            s.PrevSelEntityType = 0;
            s.MultiSel.Reset();
            ThingsToDoOnSelectedEntityChange();
            m_host.UpdateStatusBar();
            if (frmPicWins* v = Views()) v->UpdateCameras();
            return;
        }
        if (type >= 2 && type <= 5) {
            EntityKindOps& ops = KindOps(type);
            if (!ops.FakeDelete || !ops.UnDelete) return;
            ActionRef env = ActionUndoRedo_Stack::MakeAction(AT_ActionDelete);
            if (auto* a = env->As<ActionDelete>()) a->SetDeletedEntity(type, s.CurrSelEntity);
            m_host.UndoStack().Push(env);
            ops.FakeDelete(s.CurrSelEntity);
            SetPrevSelEntityToCurrSelEntity();
            s.CurrSelEntityType = 0;
            ThingsToDoOnSelectedEntityChange();
            if (frmPicWins* v = Views()) v->UpdateCameras();
        }
    });
}

void SelectionModel::SelectCreatedGroup(int group) {
    if (group == 0) return;
    SetPrevSelEntityToCurrSelEntity();
    setCurrent(1, group);
    ThingsToDoOnSelectedEntityChange();
    ActionRef env = ActionUndoRedo_Stack::MakeAction(AT_ActionCreate);
    if (auto* a = env->As<ActionCreate>()) a->SetCreatedEntity(1, group);
    m_host.UndoStack().Push(env);
    if (frmPicWins* v = Views()) {
        v->SelectionBox().Initialize(group);
        v->UpdateCameras();
    }
}

} // namespace vexil
