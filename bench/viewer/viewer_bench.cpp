// Timed runs of the viewer, printing medians (a frame is one chase step and one 800 x 600
// render through the player, as vexil-viewer makes it):
//   viewer_bench [sample|dense|chase] [--frames N]
//   sample : the sample world, its first camera flying its track            (need >= 30 fps)
//   dense  : 100,000 terrain polygons and 20 chasing groups, seen from above (need >= 15 fps)
//   chase  : chase steps of 1,000 chasing entities (500 groups, 500 cameras), no render (need < 1 ms)
#include "BenchClock.h"
#include "Player.h"
#include "TerrainQuads.h"

#include <zelmar/zelmar.h>

#include <cmath>
#include <cstdio>
#include <filesystem>
#include <string>
#include <unistd.h>

using namespace vexil::viewer;

namespace {

std::string named(const char* prefix, int i) {
    std::string s(prefix);
    s += std::to_string(i);
    return s;
}

constexpr int kWidth = 800, kHeight = 600;

struct Figures {
    double wall, cpu, steps; // medians: a frame's wall and process cpu time, its chase steps' wall time
};

// n frames of `steps` chase steps and one render each.
Figures frames(Player& p, int n, int steps = 1) {
    std::vector<double> wall, cpu, stepped;
    for (int i = 0; i < n + 5; ++i) {
        const double w0 = bench::wallMs(), c0 = bench::processCpuMs();
        for (int k = 0; k < steps; ++k)
            p.step();
        const double w1 = bench::wallMs();
        p.render(kWidth, kHeight);
        if (i >= 5) { // the first frames build the caches
            wall.push_back(bench::wallMs() - w0);
            cpu.push_back(bench::processCpuMs() - c0);
            stepped.push_back(w1 - w0);
        }
    }
    return {bench::median(wall), bench::median(cpu), bench::median(stepped)};
}

void report(const char* what, Figures f, int n) {
    std::printf("%-8s %d frames at %dx%d: median %.2f ms wall (%.2f ms cpu; chase steps %.3f ms), %.1f frames per "
                "second\n",
                what, n, kWidth, kHeight, f.wall, f.cpu, f.steps, 1000.0 / f.wall);
}

void box(int group, double cx, double cy, double cz, double h, int parts) {
    // A box whose faces are cut into parts x parts quads.
    for (int axis = 0; axis < 3; ++axis)
        for (int side = -1; side <= 1; side += 2)
            for (int a = 0; a < parts; ++a)
                for (int b = 0; b < parts; ++b) {
                    const int poly = ZELMAR_polygon_create();
                    const double u0 = -h + 2 * h * a / parts, u1 = -h + 2 * h * (a + 1) / parts;
                    const double v0 = -h + 2 * h * b / parts, v1 = -h + 2 * h * (b + 1) / parts;
                    const double uv[4][2] = {{u0, v0}, {u1, v0}, {u1, v1}, {u0, v1}};
                    for (int k = 0; k < 4; ++k) {
                        double q[3];
                        q[axis] = side * h;
                        q[(axis + 1) % 3] = uv[k][0];
                        q[(axis + 2) % 3] = uv[k][1];
                        const double v[6] = {cx + q[0], cy + q[1], cz + q[2], 0, 0, 100};
                        ZELMAR_polygon_add_point(poly, v);
                    }
                    ZELMAR_polygon_set_color_fill(poly, 200, 60 + 40 * axis, 40);
                    ZELMAR_polygon_set_group(poly, group);
                    ZELMAR_engine_add_polygon(poly);
                }
}

int circleTrack(const char* name, double r, double z, int n) {
    std::vector<double> pts;
    for (int i = 0; i < n; ++i) {
        const double a = 2 * M_PI * i / n;
        pts.insert(pts.end(), {r * std::cos(a), r * std::sin(a), z});
    }
    const int t = ZELMAR_track_create(name, pts.data(), n, 1);
    ZELMAR_track_set_save_flag(t, 1);
    return t;
}

void sample(int n) {
    Player p;
    if (p.load(VIEWER_SAMPLE_WORLD).code != ExitOk) {
        std::printf("sample: cannot load %s\n", VIEWER_SAMPLE_WORLD);
        return;
    }
    const int cam = ZELMAR_camera_get_using_name("Camera01");
    ZELMAR_camera_set_chase_type(cam, 135);
    ZELMAR_camera_set_track(cam, "Track01");
    ZELMAR_camera_set_absolute_speed(cam, 300);
    // Walk to the track first (248 steps), then time frames spread over one lap of it (about
    // 1,070 steps): the views of a whole flight, the house, the trees and the sky.
    for (int i = 0; i < 248; ++i)
        p.step();
    report("sample", frames(p, n, std::max(1, 1070 / n)), n);
    // The scene cameras' own views as saved, which take in the whole world at once.
    Player still;
    if (still.load(VIEWER_SAMPLE_WORLD).code != ExitOk) return;
    for (int i = 0; i < still.cameraCount(); ++i) {
        still.selectCamera(i);
        std::string what = "  ";
        what += still.viewName();
        report(what.c_str(), frames(still, n), n);
    }
}

// The dense world is written to a file and played from it, as the viewer would.
void dense(int n) {
    ZELMAR_engine_load_world(nullptr, nullptr, nullptr, 4);
    const int root = ZELMAR_group_create("the_world");
    const int ground = ZELMAR_group_create("terrain");
    ZELMAR_group_set_father_group(ground, root);
    const double extent = 4000;
    bench::addTerrainQuads(ground, 99000, extent, bench::terrainColour);
    circleTrack("ring", 1200, 400, 24);
    for (int i = 0; i < 20; ++i) {
        const std::string name = named("mover", i);
        const int g = ZELMAR_group_create(name.c_str());
        ZELMAR_group_set_father_group(g, root);
        const double a = 2 * M_PI * i / 20;
        box(g, 1200 * std::cos(a), 1200 * std::sin(a), 400, 30, 2); // 24 polygons
        ZELMAR_group_set_dynamic(g);
        if (i < 12) { // around the ring, set down on the terrain
            ZELMAR_group_set_chase_type(g, 135);
            ZELMAR_group_set_track_name(g, "ring");
            ZELMAR_group_set_absolute_speed(g, 150 + 10 * i);
            if (i % 2 == 0) ZELMAR_group_set_falling_from_track(g, 30);
        } else if (i < 16) { // following the one ahead
            ZELMAR_group_set_chase_type(g, i % 2 ? 4 : 3);
            ZELMAR_group_set_name_to_chase(g, named("mover", i - 4).c_str());
            ZELMAR_group_set_chase_distance(g, 80);
            ZELMAR_group_set_chase_softness(g, 0.9);
        } else { // falling onto the terrain and bouncing
            ZELMAR_group_set_chase_type(g, 9);
            const double gravity[3] = {0, 0, -400};
            ZELMAR_group_set_physics_force(g, gravity);
            ZELMAR_group_set_physics_elasticity(g, 0.6);
            const double spin[3] = {0, 0, 45};
            ZELMAR_group_set_physics_rotation(g, spin);
        }
    }
    const int cam = ZELMAR_camera_create("Overview");
    const double at[3] = {-2600, -2600, 2200}, dir[3] = {1, 1, -0.9};
    ZELMAR_camera_set_values(cam, at, dir, 60, 1);
    ZELMAR_camera_set_save_flag(cam, 1);
    const std::string file = (std::filesystem::temp_directory_path() / (named("viewer_bench_dense_", ::getpid()) + ".zelmar")).string();
    if (!ZELMAR_engine_save(file.c_str(), root, 0x1203)) {
        std::printf("dense: cannot save %s: %s\n", file.c_str(), ZELMAR_engine_get_last_error());
        return;
    }
    Player p;
    if (p.load(file).code != ExitOk) return;
    std::printf("dense    %d polygons, %d groups chasing\n", ZELMAR_group_get_number_of_polygons(ZELMAR_group_get_using_name("the_world")), 20);
    report("dense", frames(p, n), n);
    std::filesystem::remove(file);
}

void chase(int n) {
    ZELMAR_engine_load_world(nullptr, nullptr, nullptr, 4);
    const int root = ZELMAR_group_create("the_world");
    const int floor = ZELMAR_group_create("floor");
    ZELMAR_group_set_father_group(floor, root);
    bench::addTerrainQuads(floor, 400, 6000, bench::terrainColour);
    circleTrack("ring", 2000, 300, 64);
    circleTrack("inner", 800, 200, 32);
    int groups = 0, cameras = 0;
    for (int i = 0; i < 500; ++i) {
        const std::string name = named("g", i);
        const int g = ZELMAR_group_create(name.c_str());
        ZELMAR_group_set_father_group(g, root);
        const double a = 2 * M_PI * i / 500;
        box(g, 2000 * std::cos(a), 2000 * std::sin(a), 300, 10, 1); // 6 polygons
        switch (i % 5) {
        case 0: case 1: // tracks
            ZELMAR_group_set_chase_type(g, i % 5 ? 136 : 135);
            ZELMAR_group_set_track_name(g, i % 2 ? "ring" : "inner");
            ZELMAR_group_set_absolute_speed(g, 100 + i);
            break;
        case 2: case 3: // chasing the group before
            ZELMAR_group_set_chase_type(g, i % 5 == 2 ? 3 : 4);
            ZELMAR_group_set_name_to_chase(g, named("g", i - 1).c_str());
            ZELMAR_group_set_chase_distance(g, 40);
            ZELMAR_group_set_chase_softness(g, 0.8);
            break;
        default: { // physics: thrown sideways under gravity, bouncing on the floor
            ZELMAR_group_set_chase_type(g, 9);
            const double gravity[3] = {0, 0, -300};
            ZELMAR_group_set_physics_force(g, gravity);
            ZELMAR_group_set_absolute_speed(g, 80);
            ZELMAR_group_set_physics_elasticity(g, 0.7);
        }
        }
        ++groups;
    }
    for (int i = 0; i < 500; ++i) {
        const std::string name = named("c", i);
        const int c = ZELMAR_camera_create(name.c_str());
        const double at[3] = {double(i), 0, 500};
        ZELMAR_camera_set_location(c, at);
        switch (i % 4) {
        case 0:
            ZELMAR_camera_set_chase_type(c, 135);
            ZELMAR_camera_set_track(c, "ring");
            ZELMAR_camera_set_absolute_speed(c, 200);
            break;
        case 1:
            ZELMAR_camera_set_chase_type(c, 4);
            ZELMAR_camera_set_name_to_chase(c, named("g", i).c_str());
            ZELMAR_camera_set_chase_distance(c, 100);
            ZELMAR_camera_set_chase_softness(c, 0.9);
            break;
        case 2:
            ZELMAR_camera_set_chase_type(c, 2);
            ZELMAR_camera_set_name_to_chase(c, named("c", i - 1).c_str());
            break;
        default: {
            ZELMAR_camera_set_chase_type(c, 9);
            const double gravity[3] = {0, 0, -300};
            ZELMAR_camera_set_force(c, gravity);
            ZELMAR_camera_set_elasticity(c, 0.8);
        }
        }
        ++cameras;
    }
    const double step = ZELMAR_engine_get_time_step();
    for (int i = 0; i < 10; ++i)
        ZELMAR_engine_advance(step);
    std::vector<double> wall, cpu;
    for (int i = 0; i < n; ++i) {
        const double w0 = bench::wallMs(), c0 = bench::threadCpuMs();
        ZELMAR_engine_advance(step);
        wall.push_back(bench::wallMs() - w0);
        cpu.push_back(bench::threadCpuMs() - c0);
    }
    std::printf("chase    %d entities (%d groups, %d cameras; 1/5 of the groups and 1/4 of the cameras physics): "
                "median %.3f ms wall (%.3f ms cpu) a step over %d steps\n",
                groups + cameras, groups, cameras, bench::median(wall), bench::median(cpu), n);
}

} // namespace

int main(int argc, char** argv) {
    std::string which = "all";
    int n = 100;
    for (int i = 1; i < argc; ++i) {
        const std::string a = argv[i];
        if (a == "--frames" && i + 1 < argc)
            n = std::max(1, std::atoi(argv[++i]));
        else
            which = a;
    }
    if (which == "all" || which == "sample") sample(n);
    if (which == "all" || which == "dense") dense(n);
    if (which == "all" || which == "chase") chase(n * 3);
    return 0;
}
