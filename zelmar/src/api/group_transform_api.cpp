// Groups: where they are, how big, and the transforms of a whole subtree.
#include "api/CoreArgs.h"
#include "scene/GroupGeometry.h"
#include "scene/PolygonGeometry.h"
#include "scene/World.h"

#include <zelmar/zelmar.h>

using namespace zelmar;
using namespace zelmar::api;

namespace {
Group* groupIn(int group, const double* v, int n, const char* op) {
    Group* g = groupArg(group, op);
    return g && inArray(v, n, op) ? g : nullptr;
}
Group* groupOut(int group, const void* out, const char* op) {
    Group* g = groupArg(group, op);
    return g && outArray(out, op) ? g : nullptr;
}
} // namespace

extern "C" {

void ZELMAR_group_get_location(int group, double location[3]) {
    if (const Group* g = groupOut(group, location, "group_get_location")) groupLocation(*g).store(location);
}

void ZELMAR_group_set_location(int group, const double location[3]) {
    Group* g = groupIn(group, location, 3, "group_set_location");
    // An empty group's location is its stored one, which moves the same way.
    if (g) moveGroup(*g, V3(location) - groupLocation(*g));
}

void ZELMAR_group_move(int group, const double offset[3], int space) {
    Group* g = groupIn(group, offset, 3, "group_move");
    if (!g) return;
    const V3 d(offset);
    moveGroup(*g, space == 1 ? axisMatrix(*g).transposed() * d : d);
}

void ZELMAR_group_move_to_match_point(int group, const double source[3], const double target[3]) {
    Group* g = groupIn(group, source, 3, "group_move_to_match_point");
    if (g && inArray(target, 3, "group_move_to_match_point")) moveGroup(*g, V3(target) - V3(source));
}

void ZELMAR_group_rotate(int group, const double degrees[3], int space) {
    if (Group* g = groupIn(group, degrees, 3, "group_rotate")) rotateGroup(*g, degrees, space);
}

void ZELMAR_group_rotate_around_line(int group, const double line_point[3], const double line_direction[3],
                                     double degrees) {
    Group* g = groupIn(group, line_point, 3, "group_rotate_around_line");
    if (!g || !inArray(line_direction, 3, "group_rotate_around_line") ||
        !finite(degrees, "group_rotate_around_line"))
        return;
    const V3 axis = normalized(V3(line_direction));
    if (length(axis) == 0) return;
    transformGroup(*g, rotationAbout(axis, degrees), V3(line_point), {}, true);
}

void ZELMAR_group_rotate_to_match_direction(int group, const double direction[3]) {
    Group* g = groupIn(group, direction, 3, "group_rotate_to_match_direction");
    if (!g) return;
    const V3 d = normalized(V3(direction));
    if (length(d) == 0) return;
    transformGroup(*g, rotationBetween(V3(g->axis[0]), d), groupReferencePoint(*g), {}, true);
}

void ZELMAR_group_rotate_to_match_axis_system(int group, const double x_axis[3], const double y_axis[3],
                                              const double z_axis[3]) {
    const char* op = "group_rotate_to_match_axis_system";
    Group* g = groupIn(group, x_axis, 3, op);
    if (!g || !inArray(y_axis, 3, op) || !inArray(z_axis, 3, op)) return;
    rotateGroupToAxes(*g, V3(x_axis), V3(y_axis), V3(z_axis));
}

void ZELMAR_group_rotate_using_matrix(int group, const double matrix[9]) {
    Group* g = groupIn(group, matrix, 9, "group_rotate_using_matrix");
    if (!g) return;
    M3 m;
    for (int i = 0; i < 9; ++i)
        m.m[i / 3][i % 3] = matrix[i];
    transformGroup(*g, m, groupReferencePoint(*g), {}, true);
}

void ZELMAR_group_transform_using_matrix4x4(int group, const double matrix[16]) {
    Group* g = groupIn(group, matrix, 16, "group_transform_using_matrix4x4");
    if (!g) return;
    M3 m;
    for (int r = 0; r < 3; ++r)
        for (int c = 0; c < 3; ++c)
            m.m[r][c] = matrix[r * 4 + c];
    transformGroup(*g, m, {}, V3(matrix[3], matrix[7], matrix[11]), true);
}

void ZELMAR_group_scale(int group, int space, double sx, double sy, double sz) {
    Group* g = groupArg(group, "group_scale");
    if (!g || !finite(sx, "group_scale") || !finite(sy, "group_scale") || !finite(sz, "group_scale")) return;
    scaleGroup(*g, space, V3(sx, sy, sz));
}

void ZELMAR_group_get_rotate_reference_point(int group, double point[3]) {
    if (const Group* g = groupOut(group, point, "group_get_rotate_reference_point"))
        groupReferencePoint(*g).store(point);
}

void ZELMAR_group_set_rotate_reference_point(int group, const double point[3]) {
    Group* g = groupIn(group, point, 3, "group_set_rotate_reference_point");
    if (!g) return;
    V3(point).store(g->referencePoint);
    g->referencePointSet = true;
    ++g->version;
    world().touch();
}

void ZELMAR_group_get_placement(int group, double values[16]) {
    const Group* g = groupOut(group, values, "group_get_placement");
    if (!g) return;
    for (int r = 0; r < 3; ++r)
        for (int c = 0; c < 3; ++c)
            values[r * 3 + c] = g->axis[r][c];
    for (int k = 0; k < 3; ++k) {
        values[9 + k] = g->referencePoint[k];
        values[13 + k] = g->emptyLocation[k];
    }
    values[12] = g->referencePointSet ? 1.0 : 0.0;
}

void ZELMAR_group_set_placement(int group, const double values[16]) {
    Group* g = groupIn(group, values, 16, "group_set_placement");
    if (!g) return;
    for (int r = 0; r < 3; ++r)
        for (int c = 0; c < 3; ++c)
            g->axis[r][c] = values[r * 3 + c];
    for (int k = 0; k < 3; ++k) {
        g->referencePoint[k] = values[9 + k];
        g->emptyLocation[k] = values[13 + k];
    }
    g->referencePointSet = values[12] != 0.0;
    ++g->version;
    world().touch();
}

void ZELMAR_group_get_bounding_box(int group, double box[6]) {
    if (const Group* g = groupOut(group, box, "group_get_bounding_box")) groupBoundingBox(*g, box);
}

void ZELMAR_group_get_dimensions(int group, double dimensions[3]) {
    if (const Group* g = groupOut(group, dimensions, "group_get_dimensions"))
        groupDimensions(*g).store(dimensions);
}

void ZELMAR_group_get_center_of_mass(int group, double center[3]) {
    if (const Group* g = groupOut(group, center, "group_get_center_of_mass"))
        groupCenterOfMass(*g).store(center);
}

void ZELMAR_group_calculate_axis_system(int group, double x_axis[3], double y_axis[3], double z_axis[3]) {
    const char* op = "group_calculate_axis_system";
    const Group* g = groupOut(group, x_axis, op);
    if (!g || !outArray(y_axis, op) || !outArray(z_axis, op)) return;
    V3(g->axis[0]).store(x_axis);
    V3(g->axis[1]).store(y_axis);
    V3(g->axis[2]).store(z_axis);
}

void ZELMAR_group_convert_point_to_world_space(int group, const double point[3], double result[3]) {
    const Group* g = groupIn(group, point, 3, "group_convert_point_to_world_space");
    if (g && outArray(result, "group_convert_point_to_world_space"))
        groupToWorld(*g, V3(point)).store(result);
}

void ZELMAR_group_convert_point_to_world_space_fast(int group, const double point[3], double result[3]) {
    const Group* g = groupIn(group, point, 3, "group_convert_point_to_world_space_fast");
    if (g && outArray(result, "group_convert_point_to_world_space_fast"))
        groupToWorld(*g, V3(point)).store(result);
}

void ZELMAR_group_convert_point_to_group_space(int group, const double point[3], double result[3]) {
    const Group* g = groupIn(group, point, 3, "group_convert_point_to_group_space");
    if (g && outArray(result, "group_convert_point_to_group_space"))
        worldToGroup(*g, V3(point)).store(result);
}

} // extern "C"
