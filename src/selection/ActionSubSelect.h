// The sub-object selection actions: points (21), polygons (19) and track points (38) of the current group
// or track, and texture coordinates (26) of the texture map editor. Each keeps private copies of the old and
// the new array, because the selection goes on changing after the action was recorded; Undo puts the old
// array back with its pivot, Redo the new one.
#pragma once
#include "undo/Action.h"

#include <functional>
#include <vector>

namespace vexil {

// One 1-based array with its count: items 1..count of the source are copied.
struct SelArrayCopy {
    std::vector<int> items{0};
    int count = 0;
    void Set(const std::vector<int>& source, int n);
};

class ActionSelectPts : public Action {
  public:
    void SetOldSelPts(const std::vector<int>& selPts, int count) { m_old.Set(selPts, count); }
    void SetNewSelPts(const std::vector<int>& selPts, int count) { m_new.Set(selPts, count); }
    void Undo() override { apply(m_old); }
    void Redo() override { apply(m_new); }
    const SelArrayCopy& Old() const { return m_old; }
    const SelArrayCopy& New() const { return m_new; }

  private:
    static void apply(const SelArrayCopy& a);
    SelArrayCopy m_old, m_new;
};

class ActionSelectPols : public Action {
  public:
    void SetOldSelPols(const std::vector<int>& selPols, int count) { m_old.Set(selPols, count); }
    void SetNewSelPols(const std::vector<int>& selPols, int count) { m_new.Set(selPols, count); }
    void Undo() override { apply(m_old); }
    void Redo() override { apply(m_new); }
    const SelArrayCopy& Old() const { return m_old; }
    const SelArrayCopy& New() const { return m_new; }

  private:
    static void apply(const SelArrayCopy& a);
    SelArrayCopy m_old, m_new;
};

class ActionSelectTrkPts : public Action {
  public:
    void SetOldSelTrkPts(const std::vector<int>& selTrackPts, int count) { m_old.Set(selTrackPts, count); }
    void SetNewSelTrkPts(const std::vector<int>& selTrackPts, int count) { m_new.Set(selTrackPts, count); }
    void Undo() override { apply(m_old); }
    void Redo() override { apply(m_new); }

  private:
    static void apply(const SelArrayCopy& a);
    SelArrayCopy m_old, m_new;
};

// The texture map editor's selected coordinates. The editor installs Apply, which takes the array (items
// 1..count) and shows it.
class ActionSelectCoords : public Action {
  public:
    static std::function<void(const std::vector<int>&, int)>& Apply();
    void SetOldSelCoords(const std::vector<int>& sel, int count) { m_old.Set(sel, count); }
    void SetNewSelCoords(const std::vector<int>& sel, int count) { m_new.Set(sel, count); }
    void Undo() override {
        if (Apply()) Apply()(m_old.items, m_old.count);
    }
    void Redo() override {
        if (Apply()) Apply()(m_new.items, m_new.count);
    }

  private:
    SelArrayCopy m_old, m_new;
};

} // namespace vexil
