// The actions of the Group menu: ActionGroupTogather (15), ActionUnGroup (16), ActionChangeFatherGrp (14),
// and ActionReplaceGrp (22) for commands that put one group in the place of another.
//
// The grouping actions name the father group by its name, as a redo may have to make it again; they also
// keep its handle, so that the very group comes back while it lives (a fake-deleted father is kept as a
// corpse by the action and destroyed with it).
#pragma once
#include "undo/Action.h"

#include <string>
#include <vector>

namespace vexil {

class ActionGroupTogather : public Action {
  public:
    ~ActionGroupTogather() override;
    // The groups of the current selection, with the father each has now.
    void SetChildGrpsToCurrGrpSelection();
    void SetNewFatherName(const std::string& name) { m_name = name; }
    // The group that the command made, and the father it hangs under.
    void SetNewFather(int group, int father) {
        m_group = group;
        m_father = father;
    }
    void Undo() override;
    void Redo() override;
    const std::vector<int>& Children() const { return m_children; }
    const std::string& NewFatherName() const { return m_name; }
    int NewFather() const { return m_group; }
    bool Undone() const { return m_undone; }

  private:
    std::vector<int> m_children, m_oldFathers;
    std::string m_name;
    int m_group = 0, m_father = 0;
    bool m_undone = false;
};

class ActionUnGroup : public Action {
  public:
    ~ActionUnGroup() override;
    // The child groups of the current group, and the group itself with its father.
    void SetChildGrpsToCurrGrpSelection();
    void SetOldFatherName(const std::string& name) { m_name = name; }
    // Whether the ungrouped group was an empty container that the command took away.
    void SetOldFatherRemoved(bool removed) { m_removed = removed; }
    void Undo() override;
    void Redo() override;
    const std::vector<int>& Children() const { return m_children; }
    int OldFather() const { return m_group; }
    bool Undone() const { return m_undone; }

  private:
    std::vector<int> m_children;
    std::string m_name;
    int m_group = 0, m_groupFather = 0;
    int m_prevType = 0, m_prevHandle = 0;
    bool m_removed = false;
    bool m_undone = false;
};

class ActionChangeFatherGrp : public Action {
  public:
    // The children, and their fathers now (the old fathers).
    void SetChildGrps(const std::vector<int>& children);
    // The fathers they go to.
    void SetParentGrps(const std::vector<int>& newFathers) { m_newFathers = newFathers; }
    void Undo() override;
    void Redo() override;
    const std::vector<int>& Children() const { return m_children; }
    const std::vector<int>& OldFathers() const { return m_oldFathers; }
    const std::vector<int>& NewFathers() const { return m_newFathers; }

  private:
    std::vector<int> m_children, m_oldFathers, m_newFathers;
};

class ActionReplaceGrp : public Action {
  public:
    ~ActionReplaceGrp() override;
    // The group replaced, its father, its place among the father's children and the three sub-object
    // selections of the time. Undo puts it back in that place.
    void SetGrpThatWasReplaced(int group);
    void SetGrpReplacedWith(int group) { m_new = group; }
    void Undo() override;
    void Redo() override;

  private:
    int m_old = 0, m_new = 0, m_father = 0, m_next = 0;
    std::vector<int> m_selPols, m_selPts, m_selPtsPols;
    bool m_undone = false;
};

} // namespace vexil
