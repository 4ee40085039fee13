// Meshes into and out of libzelmar3, for the tests that run the simplifier through the engine.
#pragma once
#include "Harness.h"
#include "MeshData.h"

#include <zelmar/zelmar.h>

#include <cstddef>
#include <vector>

namespace simplify_test {

// The mesh as an engine group.
inline int toEngine(const MeshData& m) {
    const int g = ZELMAR_group_create("source");
    for (const MeshFace& f : m.faces) {
        const int p = ZELMAR_polygon_create();
        for (int vi : f.v) {
            const MeshVertex& v = m.vertices[static_cast<std::size_t>(vi)];
            const double vx[6] = {v.xyz[0], v.xyz[1], v.xyz[2], v.uv[0], v.uv[1], v.brightness};
            const int pt = ZELMAR_polygon_add_point(p, vx);
            ZELMAR_point_set_normal(pt, v.normal);
        }
        ZELMAR_polygon_set_group(p, g);
        ZELMAR_engine_add_polygon(p);
        ZELMAR_polygon_set_color_fill(p, f.color[0], f.color[1], f.color[2]);
        ZELMAR_polygon_set_brightness(p, f.brightness);
    }
    return g;
}

// The output group as the engine holds it, in the form readOutput gives for the in-memory one.
inline std::vector<OutputTri> readEngineOutput(int group) {
    std::vector<OutputTri> out;
    for (int p = ZELMAR_group_get_first_polygon(group); p != 0; p = ZELMAR_group_get_next_polygon(p)) {
        OutputTri t;
        for (int pt = ZELMAR_polygon_get_first_point(p); pt != 0; pt = ZELMAR_point_get_next_point(pt)) {
            double xyz[3], uv[2];
            ZELMAR_point_get_xyz(pt, xyz);
            ZELMAR_point_get_bitmap_xy(pt, uv);
            for (double v : xyz) t.values.push_back(v);
            for (double v : uv) t.values.push_back(v);
            t.values.push_back(ZELMAR_point_get_brightness(pt));
        }
        t.bitmap = ZELMAR_polygon_get_bitmap_handle(p);
        ZELMAR_polygon_get_color(p, t.color);
        t.brightness = ZELMAR_polygon_get_brightness(p);
        out.push_back(t);
    }
    return out;
}

} // namespace simplify_test
