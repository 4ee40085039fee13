// The engine crossing of the simplification output: each call forwards to the ZELMAR_* function of the same name.
#include "simplify/SimplifyEngine.h"

#include <zelmar/zelmar.h>

namespace simplify {

int ZelmarSimplifyEngine::group_get_number_of_polygons(int group) { return ZELMAR_group_get_number_of_polygons(group); }
void ZelmarSimplifyEngine::group_get_center_of_mass(int group, double out[3]) { ZELMAR_group_get_center_of_mass(group, out); }
int ZelmarSimplifyEngine::group_get_first_polygon(int group) { return ZELMAR_group_get_first_polygon(group); }
int ZelmarSimplifyEngine::group_get_next_polygon(int polygon) { return ZELMAR_group_get_next_polygon(polygon); }
int ZelmarSimplifyEngine::polygon_get_bitmap_handle(int polygon) { return ZELMAR_polygon_get_bitmap_handle(polygon); }
void ZelmarSimplifyEngine::polygon_get_color(int polygon, int rgb[3]) { ZELMAR_polygon_get_color(polygon, rgb); }
double ZelmarSimplifyEngine::polygon_get_brightness(int polygon) { return ZELMAR_polygon_get_brightness(polygon); }
int ZelmarSimplifyEngine::polygon_get_first_point(int polygon) { return ZELMAR_polygon_get_first_point(polygon); }
int ZelmarSimplifyEngine::point_get_next_point(int point) { return ZELMAR_point_get_next_point(point); }
void ZelmarSimplifyEngine::point_get_bitmap_xy(int point, double uv[2]) { ZELMAR_point_get_bitmap_xy(point, uv); }
double ZelmarSimplifyEngine::point_get_brightness(int point) { return ZELMAR_point_get_brightness(point); }
void ZelmarSimplifyEngine::point_get_normal(int point, double normal[3]) { ZELMAR_point_get_normal(point, normal); }
void ZelmarSimplifyEngine::point_get_xyz(int point, double xyz[3]) { ZELMAR_point_get_xyz(point, xyz); }
void ZelmarSimplifyEngine::polygon_get_plane(int polygon, double plane[4]) { ZELMAR_polygon_get_plane(polygon, plane); }
int ZelmarSimplifyEngine::group_create(const char* name) { return ZELMAR_group_create(name); }
void ZelmarSimplifyEngine::group_get_location(int group, double location[3]) { ZELMAR_group_get_location(group, location); }
void ZelmarSimplifyEngine::group_set_rotate_reference_point(int group, const double point[3]) {
    ZELMAR_group_set_rotate_reference_point(group, point);
}
int ZelmarSimplifyEngine::polygon_create() { return ZELMAR_polygon_create(); }
void ZelmarSimplifyEngine::polygon_set_group(int polygon, int group) { ZELMAR_polygon_set_group(polygon, group); }
int ZelmarSimplifyEngine::polygon_add_point(int polygon, const double vertex[6]) {
    return ZELMAR_polygon_add_point(polygon, vertex);
}
int ZelmarSimplifyEngine::engine_add_polygon(int polygon) { return ZELMAR_engine_add_polygon(polygon); }
void ZelmarSimplifyEngine::polygon_set_color_fill(int polygon, int red, int green, int blue) {
    ZELMAR_polygon_set_color_fill(polygon, red, green, blue);
}
void ZelmarSimplifyEngine::polygon_set_brightness(int polygon, double value) { ZELMAR_polygon_set_brightness(polygon, value); }
void ZelmarSimplifyEngine::polygon_set_bitmap_fill(int polygon, int bitmap) { ZELMAR_polygon_set_bitmap_fill(polygon, bitmap); }

} // namespace simplify
