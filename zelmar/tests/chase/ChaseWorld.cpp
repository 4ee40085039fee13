#include "ChaseWorld.h"

#include "scene/ChaseStep.h"

namespace chasetest {

void resetWorld() {
    ZELMAR_engine_load_world(nullptr, nullptr, nullptr, 4);
    zelmar::chase::resetClock();
}

namespace {
void face(int g, std::initializer_list<P3> ring) {
    const int p = ZELMAR_polygon_create();
    for (const P3& q : ring) {
        const double v[6] = {q[0], q[1], q[2], 0, 0, 100};
        ZELMAR_polygon_add_point(p, v);
    }
    ZELMAR_polygon_set_group(p, g);
    ZELMAR_engine_add_polygon(p);
}
} // namespace

int box(const char* name, P3 c, double h, int father) {
    const int g = ZELMAR_group_create(name);
    if (father) ZELMAR_group_set_father_group(g, father);
    const double x0 = c[0] - h, x1 = c[0] + h, y0 = c[1] - h, y1 = c[1] + h, z0 = c[2] - h, z1 = c[2] + h;
    face(g, {{x0, y0, z0}, {x0, y1, z0}, {x1, y1, z0}, {x1, y0, z0}});
    face(g, {{x0, y0, z1}, {x1, y0, z1}, {x1, y1, z1}, {x0, y1, z1}});
    face(g, {{x0, y0, z0}, {x1, y0, z0}, {x1, y0, z1}, {x0, y0, z1}});
    face(g, {{x0, y1, z0}, {x0, y1, z1}, {x1, y1, z1}, {x1, y1, z0}});
    face(g, {{x0, y0, z0}, {x0, y0, z1}, {x0, y1, z1}, {x0, y1, z0}});
    face(g, {{x1, y0, z0}, {x1, y1, z0}, {x1, y1, z1}, {x1, y0, z1}});
    return g;
}

int floor(const char* name, double z, double h) {
    const int g = ZELMAR_group_create(name);
    face(g, {{-h, -h, z}, {-h, h, z}, {h, h, z}, {h, -h, z}});
    return g;
}

int track(const char* name, std::initializer_list<P3> points, int cyclic) {
    std::vector<double> xyz;
    for (const P3& p : points)
        xyz.insert(xyz.end(), p.begin(), p.end());
    return ZELMAR_track_create(name, xyz.data(), static_cast<int>(points.size()), cyclic);
}

int cameraAt(const char* name, P3 at, P3 direction) {
    const int c = ZELMAR_camera_create(name);
    ZELMAR_camera_set_location(c, at.data());
    ZELMAR_camera_set_direction1(c, direction.data());
    return c;
}

P3 cameraLocation(int camera) {
    P3 p{};
    ZELMAR_camera_get_location(camera, p.data());
    return p;
}

P3 cameraDirection(int camera) {
    P3 p{};
    ZELMAR_camera_get_direction(camera, p.data());
    return p;
}

P3 groupLocation(int group) {
    P3 p{};
    ZELMAR_group_get_location(group, p.data());
    return p;
}

P3 groupAxisX(int group) {
    P3 x{}, y{}, z{};
    ZELMAR_group_calculate_axis_system(group, x.data(), y.data(), z.data());
    return x;
}

void steps(int n) {
    for (int i = 0; i < n; ++i)
        EXPECT_EQ(ZELMAR_engine_advance(ZELMAR_engine_get_time_step()), 1);
}

} // namespace chasetest
