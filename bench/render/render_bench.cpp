// Frame time of the engine's rasteriser against Mesa's llvmpipe on the same grid of
// textured, Gouraud-shaded, depth-tested, fogged triangles filling 1280 x 720.
//   render_bench [--threads N] [--sizes 10000,100000,1000000] [--frames K] [--png DIR]
// Both renderers use N threads (LP_NUM_THREADS for llvmpipe). Frames alternate between
// the two so that machine load affects both alike; medians are reported.
#include "BenchScene.h"
#include "GlReference.h"

#include "render/PngWriter.h"
#include "render/Target.h"
#include <zelmar/zelmar.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <sstream>
#include <string>
#include <vector>

int main(int argc, char** argv) {
    int threads = 1, frames = 9;
    std::vector<int> sizes = {10000, 100000, 1000000};
    std::string pngDir;
    for (int i = 1; i < argc; ++i) {
        const std::string a = argv[i];
        if (a == "--threads" && i + 1 < argc) {
            threads = std::atoi(argv[++i]);
        } else if (a == "--frames" && i + 1 < argc) {
            frames = std::max(1, std::atoi(argv[++i]));
        } else if (a == "--png" && i + 1 < argc) {
            pngDir = argv[++i];
        } else if (a == "--sizes" && i + 1 < argc) {
            sizes.clear();
            std::stringstream ss(argv[++i]);
            std::string s;
            while (std::getline(ss, s, ','))
                sizes.push_back(std::atoi(s.c_str()));
        } else {
            std::fprintf(stderr, "usage: %s [--threads N] [--sizes a,b,c] [--frames K] [--png DIR]\n",
                         argv[0]);
            return 2;
        }
    }
    threads = std::max(1, threads);
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
