#include "ActionDeleteCreate.h"

#include "EntityKinds.h"
#include "SelectionModel.h"
#include "view/frmPicWins.h"

#include <zelmar/zelmar.h>

namespace vexil {

namespace {

// The selection after a deletion: nothing current.
void deselect() {
    SelectionModel* m = selectionModel();
    if (!m) return;
    m->SetPrevSelEntityToCurrSelEntity();
    Sel().CurrSelEntityType = 0;
    m->ThingsToDoOnSelectedEntityChange();
}

// The selection after a revival: the entity (or the set) is current.
void select(const EntityRecord& e) {
    SelectionModel* m = selectionModel();
    SelectionState& s = Sel();
    if (m) m->SetPrevSelEntityToCurrSelEntity();
    s.MultiSel.CopyFrom(e.EntitySet());
    s.CurrSelEntityType = e.Kind();
    s.CurrSelEntity = e.Handle();
    if (m) {
        if (e.Kind() == 1)
            if (frmPicWins* v = m->Views()) v->SelectionBox().Initialize(e.Handle());
        m->ThingsToDoOnSelectedEntityChange();
    }
}

} // namespace

void EntityRecord::Set(int kind, int handle, const MultipleSelection* set) {
    m_kind = kind;
    m_handle = handle;
    m_father = kind == 1 ? ZELMAR_group_get_father_group(handle) : 0;
    m_next = kind == 1 ? ZELMAR_group_get_next_sibling(handle) : 0;
    m_set.Reset();
    m_fathers.clear();
    if (kind == 6 && set) {
        m_set.CopyFrom(*set);
        for (int g : m_set.Groups())
            m_fathers.push_back(ZELMAR_group_get_father_group(g));
    }
}

void EntityRecord::FakeDelete() const {
    SelectionModel* m = selectionModel();
    switch (m_kind) {
    case 1:
        if (m) m->FakeDeleteGroup(m_handle);
        break;
    case 6:
        if (m) m->FakeDeleteMultiple(m_set);
        break;
    default:
        if (KindOps(m_kind).FakeDelete) KindOps(m_kind).FakeDelete(m_handle);
        break;
    }
}

void EntityRecord::UnDelete(int fatherOverride) const {
    SelectionModel* m = selectionModel();
    switch (m_kind) {
    case 1:
        if (m) m->UnDeleteGroup(m_handle, fatherOverride ? fatherOverride : m_father, fatherOverride ? 0 : m_next);
        break;
    case 6:
        if (m) m->UnDeleteMultiple(m_set, m_fathers);
        break;
    default:
        if (KindOps(m_kind).UnDelete) KindOps(m_kind).UnDelete(m_handle);
        break;
    }
}

void EntityRecord::DeletePermanently() const {
    switch (m_kind) {
    case 1:
        DeleteGroupPermanently(m_handle);
        break;
    case 6:
        for (int g : m_set.Groups())
            DeleteGroupPermanently(g);
        for (int c : m_set.Cams())
            if (KindOps(2).DeletePermanently) KindOps(2).DeletePermanently(c);
        for (int l : m_set.Lights())
            if (KindOps(4).DeletePermanently) KindOps(4).DeletePermanently(l);
        break;
    default:
        if (KindOps(m_kind).DeletePermanently) KindOps(m_kind).DeletePermanently(m_handle);
        break;
    }
}

// ---- ActionDelete -------------------------------------------------------------------------------

ActionDelete::~ActionDelete() {
    if (!m_undone) m_entity.DeletePermanently();
}

void ActionDelete::Undo() {
    m_entity.UnDelete();
    select(m_entity);
    m_undone = true;
}

void ActionDelete::Redo() {
    m_entity.FakeDelete();
    deselect();
    m_undone = false;
}

// ---- ActionCreate -------------------------------------------------------------------------------

ActionCreate::~ActionCreate() {
    if (m_undone) m_entity.DeletePermanently();
}

void ActionCreate::Undo() {
    m_entity.FakeDelete();
    const SelectionState& s = Sel();
    const bool current = s.CurrSelEntityType == m_entity.Kind() &&
                         (m_entity.Kind() == 6 || s.CurrSelEntity == m_entity.Handle());
    if (current) deselect();
    m_undone = true;
}

void ActionCreate::Redo() {
    // A created group goes back under the root; the members of a set under their stored fathers.
    SelectionModel* m = selectionModel();
    m_entity.UnDelete(m_entity.Kind() == 1 && m ? m->RootGrp() : 0);
    select(m_entity);
    m_undone = false;
}

} // namespace vexil
