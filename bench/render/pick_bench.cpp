// Picking on a world of 1,000,000 quads in 1,000 groups: a click pick, and bringing the
// pick structure up to date after one group of 1,000 polygons moved.
//   pick_bench [--polygons N] [--clicks K] [--updates U] [--dump FILE]
// --dump writes every click's answer (after the clicks and again after the updates) in hex,
// so that two builds can be compared answer for answer.
#include "BenchScene.h"

#include "pick/Picker.h"
#include "render/SceneCache.h"
#include "scene/World.h"
#include <zelmar/zelmar.h>

#include <algorithm>
#include <cmath>
#include <ctime>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

using namespace zelmar;

namespace {
// Processor time of this thread: what a pick costs whatever else the shared machine runs.
double cpuMs() {
    timespec t{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
    return t.tv_sec * 1e3 + t.tv_nsec / 1e6;
}
} // namespace

int main(int argc, char** argv) {
    int polygons = 1000000, clicks = 200, updates = 9;
    const char* dumpPath = nullptr;
    for (int i = 1; i + 1 < argc; i += 2) {
        const std::string a = argv[i];
        if (a == "--polygons")
            polygons = std::atoi(argv[i + 1]);
        else if (a == "--clicks")
            clicks = std::max(1, std::atoi(argv[i + 1]));
        else if (a == "--updates")
            updates = std::max(1, std::atoi(argv[i + 1]));
        else if (a == "--dump")
            dumpPath = argv[i + 1];
    }
    World& w = world();
    Group* root = w.createGroup("the_world");
    std::vector<Group*> groups;
    const int side = static_cast<int>(std::ceil(std::sqrt(polygons)));
    // A terrain-like sheet of quads, 1,000 per group, gently waved so the BVH is 3D.
    for (int k = 0; k < polygons; ++k) {
        if (k % 1000 == 0) {
            groups.push_back(w.createGroup("part"));
            w.setFather(*groups.back(), root);
        }
        const int i = k % side, j = k / side;
        Polygon* p = w.createPolygon();
        const double xs[4] = {0, 1, 1, 0}, ys[4] = {0, 0, 1, 1};
        for (int c = 0; c < 4; ++c) {
            PointData d;
            d.xyz[0] = i + xs[c];
            d.xyz[1] = j + ys[c];
            d.xyz[2] = std::sin((i + xs[c]) * 0.05) * std::cos((j + ys[c]) * 0.05) * 5;
            w.addPoint(*p, d);
        }
        w.setPolygonGroup(*p, groups.back());
    }
    Camera* c = w.createCamera("view");
    // High above the middle, looking down at an angle: forward, left, up rows.
    c->location[0] = side * 0.5, c->location[1] = -side * 0.2, c->location[2] = side * 0.6;
    const double f[3] = {0, 0.6, -0.8}, l[3] = {-1, 0, 0}, u[3] = {0, 0.8, 0.6};
    for (int k = 0; k < 3; ++k)
        c->axis[0][k] = f[k], c->axis[1][k] = l[k], c->axis[2][k] = u[k];
    c->zoom = 60;
    const int target = ZELMAR_target_create(1280, 720);
    ZELMAR_camera_set_current(c->handle, target);

    double t0 = bench::nowMs();
    pick::refreshAll();
    const double firstBuild = bench::nowMs() - t0;

    // Clicks are timed in batches: the thread's processor clock is a system call costing about
    // as much as a pick, so one pair per batch; the wall clock (cheap) also times each click
    // alone, for the percentiles and the slowest one.
    constexpr int kBatch = 20;
    std::vector<double> pickTimes, batchWall, batchCpu;
    int hits = 0, slowX = 0, slowY = 0, slowHit = 0;
    double slowest = -1;
    for (int first = 0; first < clicks; first += kBatch) {
        const int last = std::min(clicks, first + kBatch);
        const double w0 = bench::nowMs(), c0 = cpuMs();
        for (int k = first; k < last; ++k) {
            const int x = (k * 7919) % 1280, y = (k * 104729) % 720;
            double r[3];
            int g = 0, p = 0;
            t0 = bench::nowMs();
            const int hit = ZELMAR_engine_2D_point_to_3D(x, y, r, &g, &p) == 1;
            pickTimes.push_back(bench::nowMs() - t0);
            hits += hit;
            if (pickTimes.back() > slowest) slowest = pickTimes.back(), slowX = x, slowY = y, slowHit = hit;
        }
        batchCpu.push_back((cpuMs() - c0) / (last - first));
        batchWall.push_back((bench::nowMs() - w0) / (last - first));
    }

    FILE* dump = dumpPath ? std::fopen(dumpPath, "w") : nullptr;
    const auto dumpClicks = [&] {
        for (int k = 0; dump && k < clicks; ++k) {
            const int x = (k * 7919) % 1280, y = (k * 104729) % 720;
            double r[3] = {0, 0, 0};
            int g = 0, p = 0;
            const int status = ZELMAR_engine_2D_point_to_3D(x, y, r, &g, &p);
            std::fprintf(dump, "%d %d %d %d %d %a %a %a\n", x, y, status, g, p, r[0], r[1], r[2]);
        }
    };
    dumpClicks();

    std::vector<double> rebuild, rebuildCpu, looks;
    for (int rep = 0; rep < updates; ++rep) {
        Group* g = groups[static_cast<size_t>(rep * 37) % groups.size()];
        for (Polygon* p = g->firstPolygon; p; p = p->nextInGroup) {
            for (PointData& d : p->points)
                d.xyz[2] += 0.5;
            ++p->version;
        }
        ++g->version;
        w.touch();
        t0 = bench::nowMs();
        const double c0 = cpuMs();
        pick::refreshAll();
        rebuildCpu.push_back(cpuMs() - c0);
        rebuild.push_back(bench::nowMs() - t0);
        // What the next frame adds for the moved group: the looks a pick leaves unpacked.
        t0 = bench::nowMs();
        render::sceneCache().update({g}, 1);
        looks.push_back(bench::nowMs() - t0);
    }
    dumpClicks();
    if (dump) std::fclose(dump);
    std::printf("polygons %d in %zu groups\n", polygons, groups.size());
    std::printf("first build of all pick structures: %.1f ms\n", firstBuild);
    std::vector<double> sorted = pickTimes;
    std::sort(sorted.begin(), sorted.end());
    std::printf("click pick (%d of %d clicks hit), per click in batches of %d, median over the batches: "
                "wall %.4f ms, processor time of the thread %.4f ms\n",
                hits, clicks, kBatch, bench::median(batchWall), bench::median(batchCpu));
    std::printf("click pick, each click alone (wall): median %.4f ms, 95th percentile %.4f ms, max %.3f ms\n",
                bench::median(pickTimes), sorted[sorted.size() * 95 / 100], sorted.back());
    std::vector<double> again;
    for (int k = 0; k < 5; ++k) {
        double r[3];
        t0 = bench::nowMs();
        ZELMAR_engine_2D_point_to_3D(slowX, slowY, r, nullptr, nullptr);
        again.push_back(bench::nowMs() - t0);
    }
    std::printf("slowest click at (%d, %d), %s; the same pixel again: median %.3f ms\n", slowX, slowY,
                slowHit ? "a hit" : "empty space", bench::median(again));
    std::printf("update after moving one group of 1,000 polygons: median %.3f ms (processor time %.3f ms)\n",
                bench::median(rebuild), bench::median(rebuildCpu));
    std::printf("the moved group's looks, packed by the next frame: median %.3f ms\n", bench::median(looks));
    ZELMAR_target_destroy(target);
    return 0;
}
