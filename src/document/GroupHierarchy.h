// The group hierarchy read from the engine in one walk, so that filling a tree or collecting a subtree is
// linear in the number of groups whatever the depth (a walk up the fathers of every group is not).
#pragma once
#include <cstddef>
#include <unordered_map>
#include <vector>

namespace vexil {

class GroupHierarchy {
  public:
    // Reads every group's father once, in the engine's group order.
    GroupHierarchy();
    // The groups whose father is `group`, in engine order (empty for none).
    const std::vector<int>& Children(int group) const;
    // Every group below `group` (not `group` itself), fathers before their children, without recursion.
    std::vector<int> Below(int group) const;

  private:
    std::unordered_map<int, std::vector<int>> m_children;
    size_t m_count = 0;
};

} // namespace vexil
