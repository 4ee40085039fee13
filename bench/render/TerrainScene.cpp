#include "TerrainScene.h"

#include "../TerrainQuads.h"
#include "BenchScene.h"
#include "scene/World.h"
#include <zelmar/zelmar.h>

#include <algorithm>
#include <cmath>

namespace bench {

void TerrainCamera::update() const {
    // Orbit about the origin at `dist`; forward towards the origin, up is world up with
    // the forward part removed, left completes the frame.
    const double r = std::cos(phi) * dist;
    const double loc[3] = {std::cos(theta) * r, std::sin(theta) * r, std::sin(phi) * dist};
    double ax[3], ay[3], az[3];
    ZELMAR_camera_get_axis_system(handle, ax, ay, az);
    const double len = std::sqrt(loc[0] * loc[0] + loc[1] * loc[1] + loc[2] * loc[2]);
    if (len > 0) {
        const double f[3] = {-loc[0] / len, -loc[1] / len, -loc[2] / len};
        const double k = loc[2] / (len * len);
        double up[3] = {-k * loc[0], -k * loc[1], 1 - k * loc[2]};
        const double ul = std::sqrt(up[0] * up[0] + up[1] * up[1] + up[2] * up[2]);
        if (ul > 1e-12)
            for (double& c : up)
                c /= ul;
        else
            std::copy(az, az + 3, up);
        const double left[3] = {up[1] * f[2] - up[2] * f[1], up[2] * f[0] - up[0] * f[2],
                                up[0] * f[1] - up[1] * f[0]};
        ZELMAR_camera_set_axis_system(handle, f, left, up);
    }
    ZELMAR_camera_set_location(handle, loc);
    const double h[3] = {0, offsetH, 0}, v[3] = {0, 0, 0};
    ZELMAR_camera_move(handle, h, 1);
    ZELMAR_camera_move(handle, v, 1);
    ZELMAR_camera_rotate_x_radians(handle, 0);
}

void buildTerrain(long polygons, double extent, bool colourFill) {
    ZELMAR_engine_close();
    int bitmap = 0;
    if (!colourFill) {
        zelmar::Bitmap* bmp = zelmar::world().createBitmap("bench texture");
        bmp->width = bmp->height = 256;
        bmp->rgba = textureRgba();
        bitmap = bmp->handle;
    }
    const int root = ZELMAR_group_create("Root");
    const int g = ZELMAR_group_create("Terrain");
    ZELMAR_group_set_father_group(g, root);
    addTerrainQuads(g, polygons, extent, [&](int p, int i, int j) {
        if (colourFill)
            terrainColour(p, i, j);
        else
            ZELMAR_polygon_set_bitmap_fill(p, bitmap);
    });
}

namespace {

TerrainCamera standardView(double theta, double phi, double dist, double zoom, double near) {
    TerrainCamera c;
    c.handle = ZELMAR_camera_create("bench view");
    c.theta = theta, c.phi = phi, c.dist = dist;
    ZELMAR_camera_set_zoom(c.handle, zoom);
    c.update();
    ZELMAR_camera_set_distance_from_eye(c.handle, near);
    return c;
}

} // namespace

// The editor's table of views uses 3.14 for pi: the views sit very slightly off axis.
TerrainCamera perspectiveView(double extent) {
    return standardView(3.14 - 3.14 / 4, 3.14 - 3.14 / 6, extent * 2, 60.0, extent / 100);
}

TerrainCamera topView(double extent) {
    return standardView(0, 3.14 / 2, extent * 100, 1.0, extent);
}

} // namespace bench
