// ActionDelete (5) and ActionCreate (20): the entity (kind, handle, or the set for kind 6 with the fathers
// of its groups) that a command deleted or made. Deletion is deferred: the deleted entity stays in the
// engine, out of sight, and the action that remembers it destroys it in its destructor when it leaves the
// stack while the entity stands deleted. For ActionDelete that is "done"; for ActionCreate "undone".
#pragma once
#include "undo/Action.h"
#include "MultipleSelection.h"

#include <vector>

namespace vexil {

class EntityRecord {
  public:
    // Records kind and handle; a group's father, or for kind 6 a copy of the set and each group's father.
    void Set(int kind, int handle, const MultipleSelection* set);
    int Kind() const { return m_kind; }
    int Handle() const { return m_handle; }
    int Father() const { return m_father; }
    const MultipleSelection& EntitySet() const { return m_set; }
    const std::vector<int>& Fathers() const { return m_fathers; }

    void FakeDelete() const;
    // Back where it was; fatherOverride (not 0) puts a group under that father instead.
    void UnDelete(int fatherOverride = 0) const;
    void DeletePermanently() const;

  private:
    int m_kind = 0, m_handle = 0, m_father = 0, m_next = 0; // m_next: the group's next sibling
    MultipleSelection m_set;
    std::vector<int> m_fathers; // one per group of m_set
};

class ActionDelete : public Action {
  public:
    ~ActionDelete() override;
    void SetDeletedEntity(int kind, int handle, const MultipleSelection* set = nullptr) {
        m_entity.Set(kind, handle, set);
    }
    void Undo() override;
    void Redo() override;
    bool Undone() const { return m_undone; }
    const EntityRecord& Entity() const { return m_entity; }

  private:
    EntityRecord m_entity;
    bool m_undone = false;
};

class ActionCreate : public Action {
  public:
    ~ActionCreate() override;
    void SetCreatedEntity(int kind, int handle, const MultipleSelection* set = nullptr) {
        m_entity.Set(kind, handle, set);
    }
    void Undo() override;
    void Redo() override;
    bool Undone() const { return m_undone; }
    const EntityRecord& Entity() const { return m_entity; }

  private:
    EntityRecord m_entity;
    bool m_undone = false;
};

} // namespace vexil
