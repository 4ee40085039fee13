// ActionChngTextureCoords (24): bitmap coordinates of points changed by the planar mapper or by a gesture of
// the texture map editor. It keeps the points with their polygons and each point's (u, v) before and after;
// Undo and Redo write one of the two sets back and let the texture map editor redraw.
#pragma once
#include "PolygonLists.h"
#include "undo/Action.h"

#include <array>
#include <vector>

namespace vexil {

class ActionChngTextureCoords : public Action {
  public:
    // Every point of the selected polygons.
    void SetPtsChangedToCurrSel();
    // The points given (with the polygons that own them).
    void SetPtsChangedToGiven(std::vector<PointOfPolygon> points);
    void ExtractIniCoordsLoc() { read(m_initial); }
    void ExtractFnlCoordsLoc() { read(m_final); }
    // The final coordinates when the caller knows them already (one per point, in order).
    void SetFnlCoords(std::vector<std::array<double, 2>> uvs) { m_final = std::move(uvs); }
    void Undo() override { write(m_initial); }
    void Redo() override { write(m_final); }
    const std::vector<PointOfPolygon>& Points() const { return m_points; }
    const std::vector<std::array<double, 2>>& Initial() const { return m_initial; }
    const std::vector<std::array<double, 2>>& Final() const { return m_final; }
    // True when some point's final coordinates differ from its initial ones.
    bool Changed() const { return m_initial != m_final; }

  private:
    void read(std::vector<std::array<double, 2>>& into) const;
    void write(const std::vector<std::array<double, 2>>& from) const;
    std::vector<PointOfPolygon> m_points;
    std::vector<std::array<double, 2>> m_initial, m_final;
};

} // namespace vexil
