#include "MeshEdits.h"

#include <string>
#include <zelmar/zelmar.h>

namespace vexil {

void FlipPolygons(const std::vector<int>& polygons) {
    for (int p : polygons)
        if (ZELMAR_polygon_is_polygon(p) == 1) ZELMAR_polygon_flip_visible_side(p);
}

int DetachPolygons(const std::vector<int>& polygons, int group, std::vector<PolygonPlace>& moved) {
    moved.clear();
    bool any = false;
    for (int p : polygons)
        if (ZELMAR_polygon_is_polygon(p) == 1 && ZELMAR_polygon_get_group(p) != 0) any = true;
    if (!any || ZELMAR_group_is_group(group) != 1) return 0;
    const int g = ZELMAR_group_create("");
    ZELMAR_group_set_father_group(g, ZELMAR_group_get_father_group(group));
    double ref[3] = {0, 0, 0};
    ZELMAR_group_get_rotate_reference_point(group, ref);
    ZELMAR_group_set_rotate_reference_point(g, ref);
    ZELMAR_group_set_name(g, ("Group" + std::to_string(g)).c_str());
    moved = MovePolsToGroup(polygons, g);
    return g;
}

std::array<double, 3> GroupCentre(int group) {
    std::array<double, 3> c{0, 0, 0};
    ZELMAR_group_get_location(group, c.data());
    return c;
}

void MirrorGroup(int group, const std::array<double, 3>& factors, const std::array<double, 3>& centre) {
    const bool turnOver = factors[0] * factors[1] * factors[2] < 0;
    std::vector<int> pols;
    for (int p = ZELMAR_group_get_first_polygon(group); p != 0; p = ZELMAR_group_get_next_polygon(p))
        pols.push_back(p);
    for (int p : pols) {
        for (int pt = ZELMAR_polygon_get_first_point(p); pt != 0; pt = ZELMAR_point_get_next_point(pt)) {
            double xyz[3], n[3];
            ZELMAR_point_get_xyz(pt, xyz);
            ZELMAR_point_get_normal(pt, n);
            for (int k = 0; k < 3; ++k) {
                if (factors[size_t(k)] >= 0) continue;
                xyz[k] = centre[size_t(k)] - (xyz[k] - centre[size_t(k)]);
                n[k] = -n[k];
            }
            // Turning over negates the normals: hand it the negated reflection, so that the reflection stays.
            if (turnOver)
                for (double& v : n)
                    v = -v;
            ZELMAR_point_set_xyz(pt, xyz);
            ZELMAR_point_set_normal(pt, n);
        }
        if (turnOver) ZELMAR_polygon_flip_visible_side(p);
    }
}

GroupPlace PlaceOfGroup(int group) {
    return {group, ZELMAR_group_get_father_group(group), ZELMAR_group_get_next_sibling(group)};
}

void RestoreGroupPlace(const GroupPlace& place) {
    ZELMAR_group_set_father_group_before(place.group, place.father, place.next);
}

} // namespace vexil
