// Frame time of the engine's rasteriser against Mesa's llvmpipe on the same grid of
// textured, Gouraud-shaded, depth-tested, fogged triangles filling 1280 x 720.
//   render_bench [--threads N] [--sizes 10000,100000,1000000] [--frames K] [--png DIR]
// Both renderers use N threads (LP_NUM_THREADS for llvmpipe). Frames alternate between
// the two so that machine load affects both alike; medians are reported.
//
//   render_bench --scene terrain [--size 800x600] [--colour-fill] [--threads N] [--sizes ...]
//                [--frames K] [--png DIR]
// The editor's viewport repaint without the editor (the scene of bench/view): a terrain of
// quads seen by the perspective view revolving one step per frame, then by the top view
// panning. Reports the median render of each (wall clock) and the least CPU time of all
// threads over the frames (which a loaded machine inflates least) and a checksum of all frames' pixels, so
// that a change to the renderer can be shown to leave every picture as it was.
#include "BenchScene.h"
#include "GlReference.h"
#include "TerrainScene.h"

#include "render/PngWriter.h"
#include "render/Target.h"
#include <zelmar/zelmar.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <sstream>
#include <string>
#include <vector>

namespace {

double processCpuMs() {
    timespec t{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &t);
    return t.tv_sec * 1e3 + t.tv_nsec / 1e6;
}

// FNV-1a over the target's pixels, folded into a running value.
uint64_t hashPixels(int target, uint64_t h) {
    const unsigned char* p = ZELMAR_target_get_pixels(target);
    const size_t n =
        static_cast<size_t>(ZELMAR_target_get_width(target)) * ZELMAR_target_get_height(target) * 4;
    for (size_t i = 0; i < n; ++i)
        h = (h ^ p[i]) * 1099511628211ull;
    return h;
}

int runTerrain(int threads, int frames, const std::vector<int>& sizes, int width, int height, bool colourFill,
               const std::string& pngDir) {
    ZELMAR_engine_set_render_threads(threads);
    std::printf("terrain at %dx%d, %s, threads %d, %d frames, median ms\n", width, height,
                colourFill ? "colour fills" : "textured", threads, frames);
    std::printf("%10s %12s %8s %12s %8s  %s\n", "polygons", "perspective", "cpu", "top view", "cpu",
                "checksum");
    const double extent = 1000;
    for (int n : sizes) {
        bench::buildTerrain(n, extent, colourFill);
        const int target = ZELMAR_target_create(width, height);
        uint64_t hash = 14695981039346656037ull;
        auto measure = [&](bench::TerrainCamera& cam, auto step, const char* name, double& cpuLeast) {
            std::vector<double> ms, cpu;
            for (int f = -3; f < frames; ++f) { // three warm-up frames, as in the view benchmark
                step(cam);
                cam.update();
                ZELMAR_camera_set_current(cam.handle, target);
                const double c0 = processCpuMs(), t0 = bench::nowMs();
                ZELMAR_engine_render_on_dc(target, cam.handle);
                const double t = bench::nowMs() - t0, c = processCpuMs() - c0;
                hash = hashPixels(target, hash);
                if (f >= 0) ms.push_back(t), cpu.push_back(c);
            }
            cpuLeast = *std::min_element(cpu.begin(), cpu.end());
            if (!pngDir.empty())
                ZELMAR_utilities_save_bitmap24(
                    target, (pngDir + "/terrain" + std::to_string(n) + "_" + name + ".png").c_str());
            return bench::median(ms);
        };
        bench::TerrainCamera persp = bench::perspectiveView(extent);
        double cp = 0, ct = 0;
        const double mp = measure(
            persp, [](bench::TerrainCamera& c) { c.theta -= 0.01; }, "perspective", cp);
        bench::TerrainCamera top = bench::topView(extent);
        const double mt = measure(
            top, [](bench::TerrainCamera& c) { c.offsetH += 0.5; }, "top", ct);
        std::printf("%10d %12.2f %8.2f %12.2f %8.2f  %016llx\n", n, mp, cp, mt, ct,
                    static_cast<unsigned long long>(hash));
        std::fflush(stdout);
        ZELMAR_target_destroy(target);
    }
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    int threads = 1, frames = 9;
    std::vector<int> sizes = {10000, 100000, 1000000};
    std::string pngDir, scene = "grid";
    int width = 800, height = 600;
    bool colourFill = false, framesGiven = false;
    for (int i = 1; i < argc; ++i) {
        const std::string a = argv[i];
        if (a == "--scene" && i + 1 < argc) {
            scene = argv[++i];
        } else if (a == "--size" && i + 1 < argc) {
            if (std::sscanf(argv[++i], "%dx%d", &width, &height) != 2 || width < 1 || height < 1) return 2;
        } else if (a == "--colour-fill") {
            colourFill = true;
        } else if (a == "--threads" && i + 1 < argc) {
            threads = std::atoi(argv[++i]);
        } else if (a == "--frames" && i + 1 < argc) {
            frames = std::max(1, std::atoi(argv[++i]));
            framesGiven = true;
        } else if (a == "--png" && i + 1 < argc) {
            pngDir = argv[++i];
        } else if (a == "--sizes" && i + 1 < argc) {
            sizes.clear();
            std::stringstream ss(argv[++i]);
            std::string s;
            while (std::getline(ss, s, ','))
                sizes.push_back(std::atoi(s.c_str()));
        } else {
            std::fprintf(stderr,
                         "usage: %s [--scene grid|terrain] [--size WxH] [--colour-fill] [--threads N] "
                         "[--sizes a,b,c] [--frames K] [--png DIR]\n",
                         argv[0]);
            return 2;
        }
    }
    threads = std::max(1, threads);
    if (scene == "terrain")
        return runTerrain(threads, framesGiven ? frames : 15, sizes, width, height, colourFill, pngDir);
    if (scene != "grid") return 2;
    setenv("LP_NUM_THREADS", std::to_string(threads).c_str(), 1);
    ZELMAR_engine_set_render_threads(threads);

    bench::GlReference gl;
    std::string error;
    const bool haveGl = gl.init(error);
    if (!haveGl) std::fprintf(stderr, "llvmpipe reference unavailable: %s\n", error.c_str());
    std::printf("threads %d, %d frames each, %s\n", threads, frames,
                haveGl ? gl.renderer().c_str() : "no GL");
    std::printf("%10s %12s %12s %8s\n", "triangles", "zelmar ms", "llvmpipe ms", "ratio");
    const int target = ZELMAR_target_create(bench::kWidth, bench::kHeight);
    for (int n : sizes) {
        const bench::Grid grid = bench::makeGrid(n);
        const int camera = bench::buildEngineScene(grid);
        if (haveGl) gl.upload(grid);
        for (int w = 0; w < 2; ++w) { // warm caches (packing, triangulation, textures)
            ZELMAR_engine_render(target, camera);
            if (haveGl) gl.drawFrame();
        }
        std::vector<double> ours, theirs;
        for (int f = 0; f < frames; ++f) {
            double t0 = bench::nowMs();
            ZELMAR_engine_render(target, camera);
            ours.push_back(bench::nowMs() - t0);
            if (haveGl) {
                t0 = bench::nowMs();
                gl.drawFrame();
                theirs.push_back(bench::nowMs() - t0);
            }
        }
        const double mo = bench::median(ours), mt = bench::median(theirs);
        std::printf("%10zu %12.2f %12.2f %8.2f\n", grid.triangles.size() / 3, mo, mt, haveGl ? mo / mt : 0.0);
        std::fflush(stdout);
        if (!pngDir.empty()) {
            const std::string base = pngDir + "/grid" + std::to_string(n);
            ZELMAR_utilities_save_bitmap24(target, (base + "_zelmar.png").c_str());
            if (haveGl) {
                const std::vector<uint8_t> px = gl.readRgba();
                zelmar::render::writePng(base + "_llvmpipe.png", px.data(), bench::kWidth, bench::kHeight,
                                         false, error);
            }
        }
    }
    ZELMAR_target_destroy(target);
    return 0;
}
