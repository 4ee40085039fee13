#include "BakeScenes.h"

#include "TerrainQuads.h"
#include <zelmar/zelmar.h>

#include <cmath>
#include <cstdio>
#include <fstream>
#include <sstream>

namespace bench {

namespace {

int quad(int group, const double (&p)[4][3]) {
    const int h = ZELMAR_polygon_create();
    for (const auto& c : p) {
        const double v[6] = {c[0], c[1], c[2], 0, 0, 100};
        ZELMAR_polygon_add_point(h, v);
    }
    ZELMAR_polygon_set_group(h, group);
    ZELMAR_engine_add_polygon(h);
    return h;
}

// A ground of n x n tiles, `size` across, centred on the origin at height 0, seen from above.
std::vector<int> ground(int group, int n, double size) {
    std::vector<int> out;
    const double step = size / n;
    for (int j = 0; j < n; ++j)
        for (int i = 0; i < n; ++i) {
            const double x = -size / 2 + i * step, y = -size / 2 + j * step;
            // Clockwise seen from above: the front faces up.
            out.push_back(quad(group, {{x, y, 0}, {x, y + step, 0}, {x + step, y + step, 0}, {x + step, y, 0}}));
        }
    return out;
}

void sun(double dx, double dy, double dz) {
    const double far[3] = {0, 0, 1000};
    const int l = ZELMAR_light_create("sun", far);
    const double dir[3] = {dx, dy, dz};
    ZELMAR_light_set_direction(l, dir);
    ZELMAR_light_set_type_of_light(l, 1 | 8 | 16);
    ZELMAR_light_set_ambient(l, 0.2);
    ZELMAR_light_set_diffuse(l, 0.8);
}

} // namespace

BakeScene bunnyOnGround(const std::string& objFile) {
    BakeScene s;
    std::ifstream in(objFile);
    if (!in) return s;
    std::vector<double> v;
    std::vector<int> faces;
    std::string line;
    while (std::getline(in, line)) {
        std::istringstream ls(line);
        std::string tag;
        ls >> tag;
        if (tag == "v") {
            double x, y, z;
            ls >> x >> y >> z;
            v.insert(v.end(), {x, y, z});
        } else if (tag == "f") {
            std::string corner;
            int count = 0, first = 0, prev = 0;
            while (ls >> corner) {
                const int idx = std::atoi(corner.c_str()) - 1; // "i", "i/t" or "i/t/n"
                if (count == 0) first = idx;
                if (count >= 2) faces.insert(faces.end(), {first, prev, idx});
                prev = idx;
                ++count;
            }
        }
    }
    // The model is y-up; stand it on the ground (z up), about 10 units tall.
    double lo[3] = {1e300, 1e300, 1e300}, hi[3] = {-1e300, -1e300, -1e300};
    for (size_t i = 0; i < v.size(); ++i) {
        lo[i % 3] = std::min(lo[i % 3], v[i]);
        hi[i % 3] = std::max(hi[i % 3], v[i]);
    }
    const double scale = 10.0 / (hi[1] - lo[1]);
    const int body = ZELMAR_group_create("bunny");
    for (size_t f = 0; f + 2 < faces.size(); f += 3) {
        const int h = ZELMAR_polygon_create();
        // Mesh files run counter-clockwise seen from the front: reversed here.
        for (int k = 2; k >= 0; --k) {
            const double* p = &v[static_cast<size_t>(faces[f + k]) * 3];
            const double pt[6] = {(p[0] - 0.5 * (lo[0] + hi[0])) * scale, -(p[2] - 0.5 * (lo[2] + hi[2])) * scale,
                                  (p[1] - lo[1]) * scale, 0, 0, 100};
            ZELMAR_polygon_add_point(h, pt);
        }
        ZELMAR_polygon_set_group(h, body);
        ZELMAR_engine_add_polygon(h);
        s.polygons.push_back(h);
    }
    const int floor = ZELMAR_group_create("ground");
    s.receivers = ground(floor, 16, 40);
    s.polygons.insert(s.polygons.begin(), s.receivers.begin(), s.receivers.end());
    sun(-0.5, 0.4, -0.6);
    s.name = "bunny on a ground plane";
    s.triangles = static_cast<long>(faces.size() / 3) + 2 * 256;
    s.samplingRate = 40.0 / 16 / 32; // 32 x 32 texels per ground tile
    s.maxSize = 32;
    s.minSize = 2;
    return s;
}

BakeScene boxesOnGround() {
    BakeScene s;
    const int floor = ZELMAR_group_create("ground");
    s.receivers = ground(floor, 100, 1000);
    s.polygons = s.receivers;
    const int town = ZELMAR_group_create("boxes");
    // 6,667 boxes on a jittered grid, 4 to 12 units wide and 5 to 40 tall.
    unsigned seed = 12345;
    auto rnd = [&] {
        seed = seed * 1664525u + 1013904223u;
        return (seed >> 8) / 16777216.0;
    };
    const int per = 82; // 82 x 82 cells, the first 6,667 used
    for (int k = 0; k < 6667; ++k) {
        const double cx = -480 + (k % per) * 960.0 / per + rnd() * 4, cy = -480 + (k / per) * 960.0 / per + rnd() * 4;
        const double w = 2 + rnd() * 4, d = 2 + rnd() * 4, h = 5 + rnd() * 35;
        const double x0 = cx - w, x1 = cx + w, y0 = cy - d, y1 = cy + d;
        const double faces[6][4][3] = {
            {{x0, y0, h}, {x0, y1, h}, {x1, y1, h}, {x1, y0, h}}, // top
            {{x0, y0, 0}, {x1, y0, 0}, {x1, y1, 0}, {x0, y1, 0}}, // bottom
            {{x0, y0, 0}, {x0, y0, h}, {x1, y0, h}, {x1, y0, 0}}, {{x1, y1, 0}, {x1, y1, h}, {x0, y1, h}, {x0, y1, 0}},
            {{x0, y1, 0}, {x0, y1, h}, {x0, y0, h}, {x0, y0, 0}}, {{x1, y0, 0}, {x1, y0, h}, {x1, y1, h}, {x1, y1, 0}}};
        for (const auto& f : faces)
            s.polygons.push_back(quad(town, f));
    }
    sun(-0.6, 0.3, -0.5);
    s.name = "100,000 triangles (boxes on a ground)";
    s.triangles = 2L * static_cast<long>(s.polygons.size());
    s.samplingRate = 1.25; // 8 x 8 texels per ground tile
    s.maxSize = 8;
    s.minSize = 2;
    return s;
}

BakeScene terrain() {
    BakeScene s;
    const int g = ZELMAR_group_create("terrain");
    const int n = 1000;
    std::vector<int> all;
    all.reserve(static_cast<size_t>(n) * n);
    addTerrainQuads(g, static_cast<long>(n) * n, 1000.0, [&](int p, int, int) { all.push_back(p); });
    for (int j = 450; j < 550; ++j)
        for (int i = 450; i < 550; ++i)
            s.receivers.push_back(all[static_cast<size_t>(j) * n + i]);
    s.polygons = s.receivers;
    sun(-0.8, 0.3, -0.25); // low: the hills shade each other
    s.name = "2,000,000-triangle terrain";
    s.triangles = 2L * n * n;
    s.samplingRate = 1.0 / 8; // 8 x 8 texels per quad
    s.maxSize = 8;
    s.minSize = 2;
    return s;
}

} // namespace bench
