// The engine crossing of the simplification output: each call forwards to the ZELMAR_* function of the same name.
#include "simplify/SimplifyEngine.h"

#include <zelmar/zelmar.h>

#include <algorithm>

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
int ZelmarSimplifyEngine::read_triangles(int& polygon, SimplifyTriangle* out, int max) {
    if (!BulkReads) return readTrianglesByCalls(*this, polygon, out, max);
    batch_.clear();
    for (; polygon != 0 && static_cast<int>(batch_.size()) < max; polygon = ZELMAR_group_get_next_polygon(polygon))
        batch_.push_back(polygon);
    const int n = static_cast<int>(batch_.size());
    if (n == 0) return 0;
    // the rings one after the other, each point with its polygon
    if (ring_.size() < static_cast<std::size_t>(4 * n)) {
        ring_.resize(static_cast<std::size_t>(4 * n));
        owners_.resize(ring_.size());
    }
    int total = ZELMAR_polygons_get_points(batch_.data(), n, ring_.data(), owners_.data(), nullptr, static_cast<int>(ring_.size()));
    if (total > static_cast<int>(ring_.size())) {
        ring_.resize(static_cast<std::size_t>(total));
        owners_.resize(ring_.size());
        total = ZELMAR_polygons_get_points(batch_.data(), n, ring_.data(), owners_.data(), nullptr, total);
    }
    // the first three points of each ring; handle 0 (zeros) where a ring is shorter, as the walk
    // of point_get_next_point gives
    corners_.assign(static_cast<std::size_t>(3 * n), 0);
    for (int j = 0, i = 0, k = 0; j < total; ++j) {
        while (i < n && owners_[static_cast<std::size_t>(j)] != batch_[static_cast<std::size_t>(i)]) {
            ++i;
            k = 0;
        }
        if (i == n) break;
        if (k < 3) corners_[static_cast<std::size_t>(3 * i + k)] = ring_[static_cast<std::size_t>(j)];
        ++k;
    }
    constexpr int kFields = 1 | 2 | 4, kPer = 8; // x y z u v nx ny nz
    values_.assign(static_cast<std::size_t>(3 * n * kPer), 0.0); // a dead handle's values stay zero
    ZELMAR_points_get_values(corners_.data(), 3 * n, kFields, values_.data());
    for (int i = 0; i < n; ++i) {
        SimplifyTriangle& r = out[i];
        const int pol = batch_[static_cast<std::size_t>(i)];
        r.bitmap = ZELMAR_polygon_get_bitmap_handle(pol);
        r.color[0] = r.color[1] = r.color[2] = 0;
        ZELMAR_polygon_get_color(pol, r.color);
        double brightness = 0;
        for (int k = 0; k < 3; ++k) {
            const std::size_t at = static_cast<std::size_t>(3 * i + k);
            const double* v = values_.data() + at * kPer;
            double* c = r.corners[k];
            c[0] = v[0];
            c[1] = v[1];
            c[2] = v[2];
            c[3] = v[3];
            c[4] = v[4];
            c[5] = brightness = ZELMAR_point_get_brightness(corners_[at]); // the third corner's is passed on
            c[6] = v[5];
            c[7] = v[6];
            c[8] = v[7];
        }
        r.brightness = brightness;
        r.plane[0] = r.plane[1] = r.plane[2] = r.plane[3] = 0;
        ZELMAR_polygon_get_plane(pol, r.plane);
    }
    return n;
}

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
