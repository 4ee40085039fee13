// Render-ready copies of the groups' own polygons: points packed in one array, rings
// triangulated, fills copied. One entry per group, rebuilt when the group's version or
// polygon count changes (every change of a polygon bumps its group's version and its own).
// A rebuild copies the packed data of polygons whose handle, version and point count are
// those packed last time, and packs only the others; when polygons were only removed and
// others added at the end of the group, the removed ones are retired where they are (handle
// 0, no points, no triangles, disabled: they draw and pick nothing) and the new ones
// appended. Rendering and picking both read it.
// Picks need only the shapes: they pack a group's geometry and leave its looks (point
// shades, texture coordinates, point normals) to the next frame.
#pragma once
#include "scene/Entities.h"
#include <cstdint>
#include <unordered_map>
#include <utility>
#include <vector>

namespace zelmar::render {

// What every drawn vertex needs; the rest, read only for bitmaps and lights, is kept apart
// in VertexExtra so that a frame of plain fills streams half the bytes.
struct PackedVertex {
    double xyz[3];
    float shade[3]; // rgb / 255 x point brightness / 100 x polygon brightness / 100
};

struct VertexExtra {
    float u, v, u2, v2;
    float normal[3]; // unit; the polygon's when the point has none
};

struct PackedPolygon {
    Handle handle = 0;
    uint32_t version = 0; // the polygon's when packed
    uint32_t firstVertex = 0, vertexCount = 0;
    uint32_t firstTri = 0, triCount = 0; // into GroupCache::tris, triples of local indices
    Handle bitmap = 0, animation = 0, secondBitmap = 0;
    int32_t animationFrame = 0;
    uint8_t color[3] = {255, 255, 255};
    uint8_t translucent = 0;
    bool bilinear = true;
    bool frontOnly = false;
    bool rotated = false; // turned about the vertical through its centre to face the camera when drawn
    bool disabled = false;
    double normal[3] = {0, 0, 0}; // unit front normal, zero when degenerate
    double box[6] = {0, 0, 0, 0, 0, 0};
};

struct GroupCache {
    uint32_t version = 0;
    int64_t ownPolygons = -1;
    bool looksPacked = false; // shades and extras written for this version
    // While !looksPacked: the polygons whose looks are missing (index into polys, the
    // polygon), or all of them. Valid while the group's version stays.
    bool allLooksPending = true;
    std::vector<std::pair<uint32_t, const Polygon*>> pendingLooks;
    std::vector<PackedVertex> verts;
    std::vector<VertexExtra> extras; // parallel to verts
    std::vector<PackedPolygon> polys; // the group's own in list order, retired ones among them
    uint32_t retired = 0;             // polygons of polys retired (handle 0)
    Handle newest = 0;                // the highest handle in polys
    std::vector<uint32_t> tris;
    double box[6] = {0, 0, 0, 0, 0, 0}; // of all points; empty when min > max
    uint64_t stamp = 0;                 // bumped on each rebuild of the geometry (pick caches follow it)
};

class SceneCache {
  public:
    // The group's packed data, rebuilt if stale.
    const GroupCache& get(const Group& g);
    // Brings the entries of these groups up to date, packing stale ones on `threads`
    // threads (a freshly loaded world packs in parallel).
    void update(const std::vector<const Group*>& groups, int threads);
    // As update, but a stale entry gets its geometry only (points' positions, polygons,
    // triangles, boxes; shades and extras are left for get or update to finish, which
    // then writes them in place: the geometry, and so the stamp, stays).
    void updateGeometry(const std::vector<const Group*>& groups, int threads);
    // The group's packed data with its geometry up to date (its looks may not be).
    const GroupCache& geometry(const Group& g);
    // Drops entries of groups that no longer exist.
    void prune();
    // Forgets one group's packing: the next read packs it whole. The entry stays where it is with a
    // new stamp, since the pick caches of a live group hold its address and check its stamp.
    void drop(Handle group) {
        auto it = groups_.find(group);
        if (it == groups_.end()) return;
        it->second = GroupCache();
        it->second.stamp = ++stamps_;
    }
    size_t size() const { return groups_.size(); }
    // The last stamp given: unchanged means no entry was repacked in between.
    uint64_t lastStamp() const { return stamps_; }

  private:
    std::unordered_map<Handle, GroupCache> groups_;
    uint64_t stamps_ = 0;
};

SceneCache& sceneCache();

void packGroup(const Group& g, GroupCache& out);
// The two halves of packGroup: the geometry, then the looks of the same polygons.
void packGeometry(const Group& g, GroupCache& out);
void packLooks(const Group& g, GroupCache& out);

} // namespace zelmar::render
