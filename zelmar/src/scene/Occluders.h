// The triangles that can cast shadows on a light map: every polygon that a render would
// draw (owned by a group, enabled, in no disabled group), in a bounding volume hierarchy.
// Built on demand and kept while the world's geometry is unchanged.
#pragma once
#include "scene/Entities.h"
#include "scene/Vec.h"
#include <vector>

namespace zelmar {

class Occluders {
  public:
    // True if the open segment from `from` to `to` passes through a triangle of a polygon
    // other than `ignore`.
    bool blocked(V3 from, V3 to, Handle ignore) const;
    size_t triangleCount() const { return tris_.size(); }
    void build();

  private:
    struct Tri {
        V3 a, e1, e2;
        Handle polygon;
    };
    struct Node {
        V3 lo, hi;
        uint32_t first = 0, count = 0; // leaf: triangles [first, first + count)
        uint32_t right = 0;            // inner: left child is the next node
    };
    uint32_t buildNode(uint32_t first, uint32_t count, std::vector<V3>& centres);
    std::vector<Tri> tris_;
    std::vector<Node> nodes_;
};

// The world's occluders, rebuilt when the geometry changed since the last call; the caller
// tells after its own non-geometric change that the set is still right.
Occluders& worldOccluders();
void occludersStillValid();

} // namespace zelmar
