// Smoothing (Smooth, Clear All) over about 100,000 selected polygons of a rolling terrain whose quads share
// their corners: four polygons meet at most points. Prints the median of several runs, wall and processor
// time. Usage: smooth_bench [polygons] [runs]
#include "BenchClock.h"
#include "TerrainQuads.h"
#include "lighting/mdlSmoothLight.h"

#include <cstdio>
#include <cstdlib>
#include <vector>
#include <zelmar/zelmar.h>

int main(int argc, char** argv) {
    const long polygons = argc > 1 ? std::atol(argv[1]) : 100489; // 317 x 317
    const int runs = argc > 2 ? std::atoi(argv[2]) : 9;
    const int root = ZELMAR_group_create("the_world");
    const int g = ZELMAR_group_create("terrain");
    ZELMAR_group_set_father_group(g, root);
    bench::addTerrainQuads(g, polygons, 20000.0, bench::terrainColour);
    std::vector<int> selected;
    for (int p = ZELMAR_group_get_first_polygon(g); p != 0; p = ZELMAR_group_get_next_polygon(p))
        selected.push_back(p);
    std::printf("smooth_bench: %zu polygons selected\n", selected.size());

    std::vector<double> smoothWall, smoothCpu, clearWall, setsWall;
    int written = 0;
    for (int r = 0; r < runs; ++r) {
        double w = bench::wallMs(), c = bench::processCpuMs();
        written = vexil::SmoothLight(selected, 45);
        smoothWall.push_back(bench::wallMs() - w);
        smoothCpu.push_back(bench::processCpuMs() - c);
        w = bench::wallMs();
        vexil::SmoothClearAll(selected);
        clearWall.push_back(bench::wallMs() - w);
        w = bench::wallMs();
        const auto sets = vexil::BuildWeldSets(selected);
        setsWall.push_back(bench::wallMs() - w);
        if (sets.empty()) return 1;
    }
    std::printf("Smooth (45 degrees), %d normals: median %.1f ms wall, %.1f ms cpu (target < 300 ms)\n", written,
                bench::median(smoothWall), bench::median(smoothCpu));
    std::printf("  of which weld sets alone:     median %.1f ms wall\n", bench::median(setsWall));
    std::printf("Clear All:                       median %.1f ms wall\n", bench::median(clearWall));
    std::printf("peak resident: %ld kB\n", bench::peakResidentKb());
    return 0;
}
