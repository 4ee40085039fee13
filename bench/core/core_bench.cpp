// Building 1,000,000 four-point polygons in 1,000 groups through the C API, walking them all
// from the root, and the questions that look at every point (box, dimensions).
// Run: build-*/bench/core/core_bench --benchmark_repetitions=5 --benchmark_report_aggregates_only=true
#include <benchmark/benchmark.h>
#include <zelmar/zelmar.h>

namespace {
constexpr int kGroups = 1000, kPerGroup = 1000;

int buildWorld() {
    const int root = ZELMAR_group_create("the_world");
    for (int g = 0; g < kGroups; ++g) {
        const int grp = ZELMAR_group_create("g");
        ZELMAR_group_set_father_group(grp, root);
        for (int i = 0; i < kPerGroup; ++i) {
            const int p = ZELMAR_polygon_create();
            const double x = i, y = g;
            const double v[4][6] = {{x, y, 0, 0, 0, 100},
                                    {x + 1, y, 0, 1, 0, 100},
                                    {x + 1, y + 1, 0, 1, 1, 100},
                                    {x, y + 1, 0, 0, 1, 100}};
            for (const auto& vv : v)
                ZELMAR_polygon_add_point(p, vv);
            ZELMAR_polygon_set_group(p, grp);
            ZELMAR_engine_add_polygon(p);
        }
    }
    return root;
}

void BM_BuildMillionPolygons(benchmark::State& state) {
    for (auto _ : state) {
        benchmark::DoNotOptimize(buildWorld());
        state.PauseTiming();
        ZELMAR_engine_close();
        state.ResumeTiming();
    }
}
BENCHMARK(BM_BuildMillionPolygons)->Unit(benchmark::kMillisecond)->Iterations(1);

void BM_WalkMillionPolygonsFromRoot(benchmark::State& state) {
    ZELMAR_engine_close();
    const int root = buildWorld();
    for (auto _ : state) {
        long n = 0;
        for (int p = ZELMAR_group_get_first_polygon(root); p; p = ZELMAR_group_get_next_polygon(p))
            ++n;
        benchmark::DoNotOptimize(n);
    }
    ZELMAR_engine_close();
}
BENCHMARK(BM_WalkMillionPolygonsFromRoot)->Unit(benchmark::kMillisecond);

void BM_BoundingBoxOfMillionPolygons(benchmark::State& state) {
    ZELMAR_engine_close();
    const int root = buildWorld();
    const double step[3] = {0, 0, 1};
    for (auto _ : state) {
        ZELMAR_group_move(root, step, 0); // invalidates the cached box
        double box[6];
        ZELMAR_group_get_bounding_box(root, box);
        benchmark::DoNotOptimize(box[0]);
    }
    ZELMAR_engine_close();
}
BENCHMARK(BM_BoundingBoxOfMillionPolygons)->Unit(benchmark::kMillisecond);
} // namespace

BENCHMARK_MAIN();
