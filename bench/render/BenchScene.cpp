#include "BenchScene.h"

#include "render/Settings.h"
#include "scene/World.h"
#include <zelmar/zelmar.h>

#include <algorithm>
#include <chrono>
#include <cmath>

namespace bench {

Grid makeGrid(int triangles) {
    Grid g;
    const double quads = triangles / 2.0;
    g.cols = std::max(1, static_cast<int>(std::lround(std::sqrt(quads * kWidth / kHeight))));
    g.rows = std::max(1, static_cast<int>(std::lround(quads / g.cols)));
    const double tanH = std::tan(kZoom * 0.5 * 3.14159265358979323846 / 180.0);
    const double tanV = tanH * kHeight / kWidth;
    auto vertex = [&](int i, int j) {
        // Row j from the bottom of the view (near) to the top (far).
        const double fy = static_cast<double>(j) / g.rows, fx = static_cast<double>(i) / g.cols;
        const double depth = 6.0 + 30.0 * fy;
        GridVertex v;
        v.xyz[0] = depth;
        v.xyz[1] = (0.5 - fx) * 2.0 * tanH * depth * 1.001;
        v.xyz[2] = (fy - 0.5) * 2.0 * tanV * depth * 1.001;
        v.u = static_cast<float>(fx * 8.0);
        v.v = static_cast<float>(fy * 4.5);
        v.rgb[0] = static_cast<uint8_t>(128 + 127 * std::sin(i * 0.05));
        v.rgb[1] = static_cast<uint8_t>(128 + 127 * std::cos(j * 0.07));
        v.rgb[2] = 200;
        return v;
    };
    g.triangles.reserve(static_cast<size_t>(g.cols) * g.rows * 6);
    for (int j = 0; j < g.rows; ++j)
        for (int i = 0; i < g.cols; ++i) {
            const GridVertex a = vertex(i, j), b = vertex(i + 1, j), c = vertex(i + 1, j + 1),
                             d = vertex(i, j + 1);
            for (const GridVertex& v : {a, b, c, a, c, d})
                g.triangles.push_back(v);
        }
    return g;
}

std::vector<uint8_t> textureRgba() {
    std::vector<uint8_t> t(256 * 256 * 4);
    for (int y = 0; y < 256; ++y)
        for (int x = 0; x < 256; ++x) {
            uint8_t* p = &t[(static_cast<size_t>(y) * 256 + x) * 4];
            const bool check = ((x / 32) + (y / 32)) % 2;
            p[0] = static_cast<uint8_t>(check ? 230 : 40 + x / 2);
            p[1] = static_cast<uint8_t>(check ? 200 : 60 + y / 3);
            p[2] = static_cast<uint8_t>(check ? 120 : 180);
            p[3] = 255;
        }
    return t;
}

int buildEngineScene(const Grid& g) {
    using namespace zelmar;
    World& w = world();
    w.clear();
    Bitmap* bmp = w.createBitmap("bench texture");
    bmp->width = bmp->height = 256;
    bmp->rgba = textureRgba();
    Group* root = w.createGroup("the_world");
    Group* group = nullptr;
    const size_t tris = g.triangles.size() / 3;
    for (size_t t = 0; t < tris; ++t) {
        if (t % 1000 == 0) {
            group = w.createGroup("part");
            w.setFather(*group, root);
        }
        Polygon* p = w.createPolygon();
        p->points.reserve(3);
        for (int k = 0; k < 3; ++k) {
            const GridVertex& v = g.triangles[t * 3 + k];
            PointData d;
            for (int i = 0; i < 3; ++i)
                d.xyz[i] = v.xyz[i], d.rgb[i] = v.rgb[i];
            d.uv[0] = v.u, d.uv[1] = v.v;
            w.addPoint(*p, d);
        }
        p->fill.bitmap = bmp->handle;
        w.setPolygonGroup(*p, group);
    }
    Camera* c = w.createCamera("bench");
    c->zoom = kZoom;
    c->distanceFromEye = kNear;
    // The engine's fog is linear in depth, full at depth 10 / intensity: the same as GL's
    // linear fog from 0 to kFogEnd.
    ZELMAR_engine_set_atmospheric_effect(90, 100, 120);
    ZELMAR_engine_set_atmospheric_effect_intensity(10.0 / kFogEnd);
    return c->handle;
}

double nowMs() {
    using namespace std::chrono;
    return duration<double, std::milli>(steady_clock::now().time_since_epoch()).count();
}

double median(std::vector<double> v) {
    if (v.empty()) return 0;
    std::sort(v.begin(), v.end());
    return v[v.size() / 2];
}

} // namespace bench
