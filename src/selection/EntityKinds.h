// The operations that undo actions and entity commands need for each kind of entity other than groups
// (cameras, tracks, lights, backgrounds). Groups are handled by the selection model itself; each other
// kind's subsystem installs what it knows (markers, panels) over the engine-only defaults:
//
//   KindOps(EntityLight).FakeDelete = [](int light) { ... };
#pragma once
#include <array>
#include <functional>

namespace vexil {

struct EntityKindOps {
    // Out of sight and out of the trees, kept in the engine.
    std::function<void(int)> FakeDelete;
    // Back in sight and in the trees.
    std::function<void(int)> UnDelete;
    // Destroyed in the engine (only an action's destructor calls it). Default: the engine's delete.
    std::function<void(int)> DeletePermanently;
    // The marker and the tree node's image ("Cam Invisible", "Light Invisible"). Default: the image.
    std::function<void(int, bool)> HideUnhide;
    // Location in world space. Default: the engine's location of cameras and lights.
    std::function<std::array<double, 3>(int)> GetLocation;
    std::function<void(int, const std::array<double, 3>&)> SetLocation;
    // Turns by degrees about x, then y, then z. Default: the engine's camera turns.
    std::function<void(int, const std::array<double, 3>&)> Rotate;
    // The marker group that draws the entity (MarkerGroup.h), 0 for none. Default: none.
    std::function<int(int)> Marker;
};

// kind 2 to 5; any other kind answers an empty set of operations.
EntityKindOps& KindOps(int kind);
// Back to the engine-only operations of a kind (a subsystem that installed its own goes away).
void ResetKindOps(int kind);

} // namespace vexil
