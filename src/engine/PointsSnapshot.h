// What a set of points looks like at one moment (location, bitmap coordinates, normal), put back exactly
// later. Undo and redo of a geometry edit restore such copies instead of running the edit backwards, so
// that an undone world is bit for bit the world before (a turn by +a then -a is not).
#pragma once
#include <vector>

namespace vexil {

class PointsSnapshot {
  public:
    PointsSnapshot() = default;
    // Reads the points now; a point named twice is kept once, a dead handle is skipped.
    explicit PointsSnapshot(const std::vector<int>& points) { Capture(points); }
    void Capture(const std::vector<int>& points);
    // Reads the same points again (the state after an edit).
    PointsSnapshot Again() const;
    // Writes every point back; points that died since are skipped.
    void Restore() const;
    bool Empty() const { return m_points.empty(); }
    const std::vector<int>& Points() const { return m_points; }

  private:
    // Reads m_points' values, dropping the handles that are dead.
    void read();
    static constexpr int PerPoint = 8; // x y z u v nx ny nz
    std::vector<int> m_points;
    std::vector<double> m_values;
};

// The points of the polygons' rings, polygon by polygon in ring order.
std::vector<int> PointsOfPolygons(const std::vector<int>& polygons);
// Every point of every polygon in the group's subtree.
std::vector<int> PointsOfGroup(int group);

} // namespace vexil
