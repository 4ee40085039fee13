// An in-memory stand-in for the engine calls of the simplification output, so that the simplification can be run
// on arrays of triangles without libzelmar3. Groups hold polygons, polygons hold rings of points;
// handles are plain counters. Planes and the centre of mass are computed with the arithmetic of
// libzelmar3 (a polygon's front is the side from which its ring runs clockwise), so the same
// rings give the simplification the same bits through either engine. Output groups are
// recorded for comparison.
#pragma once
#include "BlockArray.h"
#include "MeshData.h"
#include "simplify/SimplifyEngine.h"

#include <map>
#include <vector>

namespace simplify_test {

struct MemPoint {
    double v[6] = {0, 0, 0, 0, 0, 100}; // x, y, z, u, v, brightness
    double normal[3] = {0, 0, 0};
};

struct MemPolygon {
    int group = 0;
    RingIds points; // point handles
    int bitmap = 0;
    int color[3] = {255, 255, 255};
    double brightness = 100;
    bool added = false;
    double plane[4] = {0, 0, 0, 0};
    bool planeSet = false; // true: plane given, not computed
};

struct MemGroup {
    std::string name;
    std::vector<int> polygons;
    double location[3] = {0, 0, 0};
    double reference[3] = {0, 0, 0};
};

class MemoryEngine final : public simplify::SimplifyEngine {
public:
    // Makes a group of the mesh's faces (all their points, in ring order); answers its handle.
    int addMesh(const MeshData& mesh, const char* name = "mesh");
    // A new group of the triangles cut from the group's polygons as
    // ZELMAR_group_create_copy_made_of_triangles cuts them: a ring without area (the test of
    // planeOf) gives none, a triangle stays as it is, a larger ring is fanned from its first point
    // (libzelmar3 cuts concave rings otherwise; the tests' rings are triangles). Answers its handle.
    int triangulatedCopy(int group, const char* name);
    // Computes the plane of a polygon as libzelmar3 does.
    static void planeOf(const MemPolygon& p, const BlockArray<MemPoint>& pts, double plane[4]);

    const MemGroup& group(int g) const { return groups_.at(g); }
    std::size_t groupCount() const { return groups_.size(); }
    void setLocation(int g, const double loc[3]) {
        for (int k = 0; k < 3; ++k) groups_[g].location[k] = loc[k];
    }
    const MemPolygon& polygon(int p) const { return polys_.at(static_cast<std::size_t>(p)); }
    const MemPoint& point(int p) const { return points_.at(static_cast<std::size_t>(p)); }
    MemPolygon& polygonRef(int p) { return polys_.at(static_cast<std::size_t>(p)); }
    MemPoint& pointRef(int p) { return points_.at(static_cast<std::size_t>(p)); }
    long calls = 0;

    int group_get_number_of_polygons(int group) override;
    void group_get_center_of_mass(int group, double out[3]) override;
    int group_get_first_polygon(int group) override;
    int group_get_next_polygon(int polygon) override;
    int polygon_get_bitmap_handle(int polygon) override;
    void polygon_get_color(int polygon, int rgb[3]) override;
    double polygon_get_brightness(int polygon) override;
    int polygon_get_first_point(int polygon) override;
    int point_get_next_point(int point) override;
    void point_get_bitmap_xy(int point, double uv[2]) override;
    double point_get_brightness(int point) override;
    void point_get_normal(int point, double normal[3]) override;
    void point_get_xyz(int point, double xyz[3]) override;
    void polygon_get_plane(int polygon, double plane[4]) override;
    // The same calls, inlined (the class is final): the same values, without a dispatch each.
    int read_triangles(int& polygon, simplify::SimplifyTriangle* out, int max) override;
    int group_create(const char* name) override;
    void group_get_location(int group, double location[3]) override;
    void group_set_rotate_reference_point(int group, const double point[3]) override;
    int polygon_create() override;
    void polygon_set_group(int polygon, int group) override;
    int polygon_add_point(int polygon, const double vertex[6]) override;
    int engine_add_polygon(int polygon) override;
    void polygon_set_color_fill(int polygon, int red, int green, int blue) override;
    void polygon_set_brightness(int polygon, double value) override;
    void polygon_set_bitmap_fill(int polygon, int bitmap) override;
    void reserve_output(int polygons, int points) override;

private:
    std::map<int, MemGroup> groups_;
    // slot 0 of each is the dead handle 0
    BlockArray<MemPolygon> polys_ = withDeadHandle<MemPolygon>();
    BlockArray<MemPoint> points_ = withDeadHandle<MemPoint>();
    BlockArray<int> pointOwner_ = withDeadHandle<int>();
    BlockArray<int> pointIndexInRing_ = withDeadHandle<int>();
    BlockArray<int> polyIndexInGroup_ = withDeadHandle<int>();
    template <class T> static BlockArray<T> withDeadHandle() {
        BlockArray<T> a;
        a.emplace_back() = T{};
        return a;
    }
    int nextGroup_ = 1;
};

} // namespace simplify_test
