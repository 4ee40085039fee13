// What the workbench's benchmark and demonstration share: a mesh file or a world's group as an
// engine group, and the points of a group's outline seen from the window's camera.
#pragma once
#include "MeshData.h"
#include "simplify/SurfSimpli.h"

#include <QString>
#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <string>
#include <vector>
#include <zelmar/zelmar.h>

namespace workbench_bench {

// One polygon per face, turned to the engine's clockwise fronts, with normals.
inline int meshToGroup(const simplify_test::MeshData& m, const char* name, int father) {
    const int g = ZELMAR_group_create(name);
    ZELMAR_group_set_father_group(g, father);
    for (const simplify_test::MeshFace& f : m.faces) {
        const int p = ZELMAR_polygon_create();
        for (auto it = f.v.rbegin(); it != f.v.rend(); ++it) {
            const simplify_test::MeshVertex& v = m.vertices[static_cast<std::size_t>(*it)];
            const double vx[6] = {v.xyz[0], v.xyz[1], v.xyz[2], v.uv[0], v.uv[1], v.brightness};
            const int pt = ZELMAR_polygon_add_point(p, vx);
            ZELMAR_point_set_normal(pt, v.normal);
        }
        ZELMAR_polygon_set_group(p, g);
        ZELMAR_engine_add_polygon(p);
        ZELMAR_polygon_set_color_fill(p, 200, 190, 170);
        ZELMAR_polygon_set_orientation(p, 1);
    }
    return g;
}

// A mesh made with y up turned to this world's z up (a quarter turn about x), with normals from
// its faces and a light from above baked into the brightness of the points, so that a plain mesh
// shows its shape in a world without lights.
inline void standUpAndShade(simplify_test::MeshData& m) {
    for (simplify_test::MeshVertex& v : m.vertices) {
        const double y = v.xyz[1], z = v.xyz[2];
        v.xyz[1] = -z;
        v.xyz[2] = y;
        for (double& n : v.normal) n = 0;
    }
    for (const simplify_test::MeshFace& f : m.faces) {
        if (f.v.size() < 3) continue;
        const double* a = m.vertices[static_cast<std::size_t>(f.v[0])].xyz;
        const double* b = m.vertices[static_cast<std::size_t>(f.v[1])].xyz;
        const double* c = m.vertices[static_cast<std::size_t>(f.v[2])].xyz;
        const double u[3] = {b[0] - a[0], b[1] - a[1], b[2] - a[2]}, w[3] = {c[0] - a[0], c[1] - a[1], c[2] - a[2]};
        const double n[3] = {u[1] * w[2] - u[2] * w[1], u[2] * w[0] - u[0] * w[2], u[0] * w[1] - u[1] * w[0]};
        for (const int i : f.v)
            for (int k = 0; k < 3; ++k) m.vertices[static_cast<std::size_t>(i)].normal[k] += n[k];
    }
    const double light[3] = {0.45, 0.55, 0.70};
    for (simplify_test::MeshVertex& v : m.vertices) {
        const double len = std::sqrt(v.normal[0] * v.normal[0] + v.normal[1] * v.normal[1] + v.normal[2] * v.normal[2]);
        if (len > 0)
            for (double& n : v.normal) n /= len;
        const double lit = v.normal[0] * light[0] + v.normal[1] * light[1] + v.normal[2] * light[2];
        v.brightness = 35 + 75 * std::max(0.0, lit);
    }
}

// The points of the model on its outline as seen from `eye`: points with triangles that face the
// eye and triangles that face away (planes point to the front).
inline std::vector<std::int32_t> outlinePoints(const simplify::SurfSimpli& model, const double eye[3]) {
    std::vector<std::int32_t> points;
    for (int p = 1; p <= model.PointCount(); ++p) {
        if (!model.PointValid(p)) continue;
        bool front = false, back = false;
        for (const int t : model.Point(p).AssTris) {
            const simplify::SimpTri tri = model.Tri(t);
            if (!tri.Valid) continue;
            const double side = tri.Plane[0] * eye[0] + tri.Plane[1] * eye[1] + tri.Plane[2] * eye[2] + tri.Plane[3];
            (side >= 0 ? front : back) = true;
        }
        if (front && back) points.push_back(p);
    }
    return points;
}

} // namespace workbench_bench
