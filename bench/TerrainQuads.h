// The rolling terrain both the render and the viewport benchmarks draw: about `polygons` quads,
// `extent` units across, centred on the origin, added to `group` through the C operations.
// `fill(polygon, i, j)` gives cell (i, j) its fill.
#pragma once
#include <zelmar/zelmar.h>

#include <algorithm>
#include <cmath>

namespace bench {

template <class Fill> void addTerrainQuads(int group, long polygons, double extent, Fill fill) {
    const int n = std::max(1, static_cast<int>(std::lround(std::sqrt(double(polygons)))));
    const double step = extent / n;
    auto height = [&](int i, int j) {
        const double x = i * step, y = j * step;
        return extent * 0.06 * (std::sin(x * 6.0 / extent) + std::cos(y * 9.0 / extent));
    };
    for (int j = 0; j < n; ++j)
        for (int i = 0; i < n; ++i) {
            const int p = ZELMAR_polygon_create();
            const int ci[4] = {i, i + 1, i + 1, i}, cj[4] = {j, j, j + 1, j + 1};
            for (int k = 0; k < 4; ++k) {
                const double v[6] = {ci[k] * step - extent / 2, cj[k] * step - extent / 2, height(ci[k], cj[k]),
                                     ci[k] * 0.25, cj[k] * 0.25, 100};
                ZELMAR_polygon_add_point(p, v);
            }
            fill(p, i, j);
            ZELMAR_polygon_set_group(p, group);
            ZELMAR_engine_add_polygon(p);
        }
}

// The colour of cell (i, j) in the colour-filled terrain.
inline void terrainColour(int polygon, int i, int j) {
    ZELMAR_polygon_set_color_fill(polygon, 70 + (i * 7) % 120, 110 + (j * 5) % 100, 60 + ((i + j) * 3) % 80);
}

} // namespace bench
