// The actions of point and polygon editing: ActionDeleteGrpPols (13), ActionAddPols (no number: it lives
// inside ActionExtrude and ActionCutPol), ActionDetachPols (42), ActionWeldSelPts (44), ActionPolsFlip (36)
// and ActionMirror (43). Each keeps its own copy of the handles it works on; deleted polygons are only taken
// out (their places kept) and die with the action that holds them in the deleted state.
#pragma once
#include "engine/PointsSnapshot.h"
#include "geometry/MeshEdits.h"
#include "geometry/PolygonPlaces.h"
#include "undo/Action.h"

#include <array>
#include <vector>

namespace vexil {

class ActionDeleteGrpPols : public Action {
  public:
    ~ActionDeleteGrpPols() override;
    // The polygons as FakeDeletePols took them out, and the group they were deleted from.
    void SetDeletedPols(std::vector<PolygonPlace> places, int group);
    std::vector<int> RetrieveDeletedPols() const { return m_polygons; }
    void Undo() override;
    void Redo() override;
    bool Undone() const { return m_undone; }

  private:
    std::vector<PolygonPlace> m_places;
    std::vector<int> m_polygons;
    int m_group = 0;
    bool m_undone = false; // true: the polygons are alive
};

class ActionAddPols : public Action {
  public:
    ~ActionAddPols() override;
    void SetAddedPols(int group, const std::vector<int>& polygons);
    std::vector<int> RetrieveAddedPols() const { return m_polygons; }
    int Group() const { return m_group; }
    void Undo() override;
    void Redo() override;
    bool Undone() const { return m_undone; }

  private:
    std::vector<int> m_polygons;
    std::vector<PolygonPlace> m_places;
    int m_group = 0;
    bool m_undone = false;
};

class ActionDetachPols : public Action {
  public:
    ~ActionDetachPols() override;
    // The polygons as DetachPolygons moved them.
    void SetDetachedPols(std::vector<PolygonPlace> moved) { m_places = std::move(moved); }
    void SetOldGrp(int group) { m_old = group; }
    void SetNewGrp(int group);
    int NewGrp() const { return m_new; }
    void Undo() override;
    void Redo() override;

  private:
    std::vector<PolygonPlace> m_places;
    int m_old = 0, m_new = 0, m_father = 0;
    bool m_undone = false;
};

class ActionWeldSelPts : public Action {
  public:
    void SetSelPtsAndOldLocs(const std::vector<int>& points) { m_old.Capture(points); }
    void SetNewLocs() { m_new = m_old.Again(); }
    void SetGroup(int group) { m_group = group; }
    void Undo() override;
    void Redo() override;

  private:
    PointsSnapshot m_old, m_new;
    int m_group = 0;
};

class ActionPolsFlip : public Action {
  public:
    void SetPolsFlipped(const std::vector<int>& polygons) { m_polygons = polygons; }
    void Undo() override { apply(); }
    void Redo() override { apply(); }

  private:
    void apply();
    std::vector<int> m_polygons;
};

class ActionMirror : public Action {
  public:
    ~ActionMirror() override;
    // group: the group mirrored in place, or the copy made. factors: +1 or -1 per axis. Call before the
    // mirror for a change in place (the points are copied), after it for a copy.
    void SetParameters(int group, bool copy, const std::array<double, 3>& factors);
    void Undo() override;
    void Redo() override;

  private:
    int m_group = 0, m_father = 0;
    bool m_copy = false, m_undone = false;
    std::array<double, 3> m_factors{1, 1, 1};
    PointsSnapshot m_before, m_after;
    std::vector<int> m_polygons;
    bool m_hasAfter = false;
};

// Lets SetActionObjects make the numbered classes of point, polygon and shape editing.
void RegisterModellingActions();
// RegisterModellingActions and the actions of the gestures (ActionExtrude, ActionBevel, ActionCutPol).
void InstallModellingActions();

} // namespace vexil
