// What whole groups look like at one moment: every point of their subtrees and the placement of each group
// in them (axes, rotate reference point, the location of an empty group). Undo of a move, turn or scale of
// groups puts such a copy back instead of transforming backwards, which would leave rounding in the last bits.
#pragma once
#include "PointsSnapshot.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace vexil {

class GroupsSnapshot {
  public:
    GroupsSnapshot() = default;
    // Reads the groups and their descendants now; dead handles and repeats are skipped. False, holding
    // nothing, when their points are more than `maxPoints` (a copy costs 72 bytes a point).
    bool Capture(const std::vector<int>& groups, std::size_t maxPoints = SIZE_MAX);
    // Reads the same groups again (the state after an edit).
    GroupsSnapshot Again() const;
    // Writes every group and point back; those that died since are skipped.
    void Restore() const;
    bool Empty() const { return m_groups.empty(); }

  private:
    bool read(std::size_t maxPoints);
    static constexpr int PerGroup = 16;
    std::vector<int> m_roots;  // the live groups given
    std::vector<int> m_groups; // those and their descendants, each once
    std::vector<double> m_placements;
    PointsSnapshot m_points;
};

} // namespace vexil
