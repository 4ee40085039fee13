// The actions of the live modelling gestures: ActionExtrude (17), ActionBevel (18) and ActionCutPol (28).
// ActionExtrude and ActionCutPol own the ActionAddPols of the polygons the gesture made. The points the
// gesture moved are copied at the press and at the first undo, so undo and redo give the very same bits.
#pragma once
#include "ModellingActions.h"

#include <array>
#include <memory>
#include <vector>

namespace vexil {

class ActionExtrude : public Action {
  public:
    void SetMovedPolsArray(const std::vector<int>& polygons) { m_moved = polygons; }
    void SetAddedPolsArray(int group, const std::vector<int>& sides) { m_added.SetAddedPols(group, sides); }
    void SetInitialLoc(const std::array<double, 3>& l) { m_initial = l; }
    void SetFinalLoc(const std::array<double, 3>& l) { m_final = l; }
    // The moved points as they were before the press.
    void SetPointsBefore(PointsSnapshot before) { m_before = std::move(before); }
    const ActionAddPols& AddedPols() const { return m_added; }
    void Undo() override;
    void Redo() override;

  private:
    std::vector<int> m_moved;
    ActionAddPols m_added;
    std::array<double, 3> m_initial{}, m_final{};
    PointsSnapshot m_before, m_after;
    bool m_hasAfter = false;
};

class ActionBevel : public Action {
  public:
    void SetBevelAmount(double factor) { m_factor = factor; }
    double BevelAmount() const { return m_factor; }
    // The moved points (and the normals of the last extrude's sides) as they were before the press.
    void SetPointsBefore(PointsSnapshot before) { m_before = std::move(before); }
    void Undo() override;
    void Redo() override;

  private:
    double m_factor = 1.0;
    PointsSnapshot m_before, m_after;
    bool m_hasAfter = false;
};

class ActionCutPol : public Action {
  public:
    void SetDeletedPolsArray(std::vector<PolygonPlace> places) { m_deleted = std::move(places); }
    void SetAddedPolsArray(const std::vector<int>& halves, int group) { m_added.SetAddedPols(group, halves); }
    std::vector<int> DeletedPols() const { return PolygonsOf(m_deleted); }
    std::vector<int> AddedPols() const { return m_added.RetrieveAddedPols(); }
    ~ActionCutPol() override;
    void Undo() override;
    void Redo() override;

  private:
    std::vector<PolygonPlace> m_deleted;
    ActionAddPols m_added;
    bool m_undone = false;
};

void RegisterExtrudeActions();

} // namespace vexil
