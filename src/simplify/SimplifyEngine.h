// The engine operations that the simplification output uses, as one small interface, so that the mesh algorithm
// can be run and checked without the engine (tests feed arrays of triangles through an
// in-memory implementation). ZelmarSimplifyEngine forwards each call to the ZELMAR_* function
// of the same name; it is what SurfSimpli uses when it is given no engine.
#pragma once
#include <vector>

namespace simplify {

// One polygon of a group as the simplification reads it: three corners of x, y, z, u, v,
// brightness and normal, the plane, bitmap, polygon brightness (the third corner's) and colour.
struct SimplifyTriangle {
    double corners[3][9];
    double plane[4];
    int bitmap;
    double brightness;
    int color[3];
};

class SimplifyEngine {
public:
    virtual ~SimplifyEngine() = default;
    // reading a group
    virtual int group_get_number_of_polygons(int group) = 0;
    virtual void group_get_center_of_mass(int group, double out[3]) = 0;
    virtual int group_get_first_polygon(int group) = 0;
    virtual int group_get_next_polygon(int polygon) = 0;
    virtual int polygon_get_bitmap_handle(int polygon) = 0;
    virtual void polygon_get_color(int polygon, int rgb[3]) = 0;
    virtual double polygon_get_brightness(int polygon) = 0;
    virtual int polygon_get_first_point(int polygon) = 0;
    virtual int point_get_next_point(int point) = 0;
    virtual void point_get_bitmap_xy(int point, double uv[2]) = 0;
    virtual double point_get_brightness(int point) = 0;
    virtual void point_get_normal(int point, double normal[3]) = 0;
    virtual void point_get_xyz(int point, double xyz[3]) = 0;
    virtual void polygon_get_plane(int polygon, double plane[4]) = 0;
    // Reads up to `max` polygons of a group's walk, starting at `polygon`, into `out`; answers how
    // many were read and leaves `polygon` at the next one (0 at the end of the walk). The default
    // makes the calls above, in the order the simplification has always made them; an engine may
    // answer the same values with fewer calls.
    virtual int read_triangles(int& polygon, SimplifyTriangle* out, int max);
    // writing the output group
    virtual int group_create(const char* name) = 0;
    virtual void group_get_location(int group, double location[3]) = 0;
    virtual void group_set_rotate_reference_point(int group, const double point[3]) = 0;
    virtual int polygon_create() = 0;
    virtual void polygon_set_group(int polygon, int group) = 0;
    // vertex: x, y, z, u, v, brightness (the engine reads six doubles)
    virtual int polygon_add_point(int polygon, const double vertex[6]) = 0;
    virtual int engine_add_polygon(int polygon) = 0;
    virtual void polygon_set_color_fill(int polygon, int red, int green, int blue) = 0;
    virtual void polygon_set_brightness(int polygon, double value) = 0;
    virtual void polygon_set_bitmap_fill(int polygon, int bitmap) = 0;
    // Before the output is written: how many polygons and points will be made. A hint for an
    // engine that can make room at once; libzelmar3 has no such call, so the default does nothing.
    virtual void reserve_output(int polygons, int points) {
        (void)polygons;
        (void)points;
    }
};

// The walk of read_triangles through the single calls, in the order the simplification has
// always made them. An engine class that is final calls it on itself to have the calls inlined.
template <class Engine> int readTrianglesByCalls(Engine& e, int& polygon, SimplifyTriangle* out, int max) {
    int n = 0;
    for (; polygon != 0 && n < max; polygon = e.group_get_next_polygon(polygon), ++n) {
        SimplifyTriangle& r = out[n];
        const int pol = polygon;
        r.bitmap = e.polygon_get_bitmap_handle(pol);
        r.color[0] = r.color[1] = r.color[2] = 0;
        e.polygon_get_color(pol, r.color);
        double brightness = e.polygon_get_brightness(pol);
        int pt = e.polygon_get_first_point(pol);
        for (int k = 0; k < 3; ++k) {
            if (k > 0) pt = e.point_get_next_point(pt);
            double* c = r.corners[k];
            double uv[2] = {0, 0}, normal[3] = {0, 0, 0}, xyz[3] = {0, 0, 0};
            e.point_get_bitmap_xy(pt, uv);
            brightness = e.point_get_brightness(pt); // the third corner's is the one passed on
            e.point_get_normal(pt, normal);
            e.point_get_xyz(pt, xyz);
            c[0] = xyz[0];
            c[1] = xyz[1];
            c[2] = xyz[2];
            c[3] = uv[0];
            c[4] = uv[1];
            c[5] = brightness;
            c[6] = normal[0];
            c[7] = normal[1];
            c[8] = normal[2];
        }
        r.brightness = brightness;
        r.plane[0] = r.plane[1] = r.plane[2] = r.plane[3] = 0;
        e.polygon_get_plane(pol, r.plane);
    }
    return n;
}

inline int SimplifyEngine::read_triangles(int& polygon, SimplifyTriangle* out, int max) {
    return readTrianglesByCalls(*this, polygon, out, max);
}

// Forwards to libzelmar3.
class ZelmarSimplifyEngine final : public SimplifyEngine {
public:
    // Reads a batch's rings and its points' locations, bitmap coordinates and normals with the
    // engine's bulk operations (two calls instead of eleven a triangle); false: the single calls.
    // Both give the same values (the tests compare them).
    bool BulkReads = true;
    int read_triangles(int& polygon, SimplifyTriangle* out, int max) override;
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

private:
    std::vector<int> batch_, ring_, owners_, corners_;
    std::vector<double> values_;
};

} // namespace simplify
