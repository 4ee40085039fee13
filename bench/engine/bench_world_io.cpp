// World files at scale: a world of four-point polygons in groups built through the C API,
// walked from the root, then saved and loaded back in each format. Prints the median of
// several runs; each load is also given as a multiple of merely reading the same file's
// bytes in the same run.
//
//   bench_world_io [--polygons N] [--groups G] [--runs R] [--dir FOLDER]
#include "io/AtomicFile.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>
#include <sys/resource.h>
#include <unistd.h>
#include <vector>
#include <zelmar/zelmar.h>

namespace {

using Clock = std::chrono::steady_clock;

double since(Clock::time_point t) {
    return std::chrono::duration<double>(Clock::now() - t).count();
}

// Processor time of this process (user and system): on a shared machine wall time also
// counts the waits for a core, processor time does not.
double cpuNow() {
    rusage u;
    ::getrusage(RUSAGE_SELF, &u);
    return u.ru_utime.tv_sec + u.ru_stime.tv_sec + (u.ru_utime.tv_usec + u.ru_stime.tv_usec) * 1e-6;
}

struct Stopwatch {
    Clock::time_point wall = Clock::now();
    double cpu = cpuNow();
    double wallS() const { return since(wall); }
    double cpuS() const { return cpuNow() - cpu; }
};

double median(std::vector<double> v) {
    std::sort(v.begin(), v.end());
    return v.empty() ? 0 : v[v.size() / 2];
}

// Wall and processor seconds of one measure over the runs.
struct Measure {
    std::vector<double> wall, cpu;
    void add(const Stopwatch& t) {
        wall.push_back(t.wallS());
        cpu.push_back(t.cpuS());
    }
    double w() const { return median(wall); }
    double c() const { return median(cpu); }
};

struct FormatFigures {
    Measure save, read, load;
    std::vector<double> ratioWall, ratioCpu;
    uintmax_t bytes = 0;
};

int build(long polygons, int groups) {
    ZELMAR_engine_load_world(nullptr, nullptr, nullptr, 4);
    const int root = ZELMAR_group_create("the_world");
    std::vector<int> gs(static_cast<size_t>(groups));
    for (int g = 0; g < groups; ++g) {
        gs[g] = ZELMAR_group_create(("group" + std::to_string(g)).c_str());
        ZELMAR_group_set_father_group(gs[g], root);
    }
    for (long i = 0; i < polygons; ++i) {
        const int p = ZELMAR_polygon_create();
        const double x = static_cast<double>(i % 1000), y = static_cast<double>(i / 1000);
        const double quad[4][6] = {{x, y, 0, 0, 0, 100},
                                   {x + 1, y, 0, 1, 0, 100},
                                   {x + 1, y + 1, 0.5, 1, 1, 100},
                                   {x, y + 1, 0.5, 0, 1, 100}};
        for (const auto& v : quad)
            ZELMAR_polygon_add_point(p, v);
        ZELMAR_polygon_set_group(p, gs[static_cast<size_t>(i % groups)]);
        ZELMAR_engine_add_polygon(p);
    }
    return root;
}

long walk(int root) {
    long n = 0;
    for (int p = ZELMAR_group_get_first_polygon(root); p; p = ZELMAR_group_get_next_polygon(p))
        ++n;
    return n;
}

} // namespace

int main(int argc, char** argv) {
    long polygons = 1000000;
    int groups = 1000, runs = 3;
    std::string dir = std::filesystem::temp_directory_path().string(), only, keep, loadOnly;
    for (int i = 1; i + 1 < argc; i += 2) {
        if (!std::strcmp(argv[i], "--polygons"))
            polygons = std::atol(argv[i + 1]);
        else if (!std::strcmp(argv[i], "--groups"))
            groups = std::atoi(argv[i + 1]);
        else if (!std::strcmp(argv[i], "--runs"))
            runs = std::atoi(argv[i + 1]);
        else if (!std::strcmp(argv[i], "--dir"))
            dir = argv[i + 1];
        else if (!std::strcmp(argv[i], "--only"))
            only = argv[i + 1];
        else if (!std::strcmp(argv[i], "--keep"))
            keep = argv[i + 1];
        else if (!std::strcmp(argv[i], "--load"))
            loadOnly = argv[i + 1];
    }
    if (polygons <= 0 || groups <= 0 || runs <= 0) {
        std::fprintf(stderr,
                     "usage: %s [--polygons N] [--groups G] [--runs R] [--dir FOLDER] [--only .ext] [--keep "
                     "PATH] [--load FILE]\n",
                     argv[0]);
        return 2;
    }
    if (!loadOnly.empty()) { // profile the reader alone: load a kept file `runs` times
        Measure m;
        for (int r = 0; r < runs; ++r) {
            ZELMAR_engine_load_world(nullptr, nullptr, nullptr, 4);
            Stopwatch t;
            if (ZELMAR_engine_load_world(loadOnly.c_str(), "", "", 4) != 1) {
                std::fprintf(stderr, "load failed: %s\n", ZELMAR_engine_get_last_error());
                return 1;
            }
            m.add(t);
        }
        std::printf("load %s: %.3f (%.3f)\n", loadOnly.c_str(), m.w(), m.c());
        return 0;
    }
    const std::string base = dir + "/bench_world_io_" + std::to_string(::getpid());
    const char* const exts[] = {".wld", ".zelmar", ".tolvane", ".3dzelmar"};
    Measure buildM, walkM, clearM;
    std::vector<double> cycleWall, cycleCpu;
    FormatFigures figures[4];

    for (int r = 0; r < runs; ++r) {
        Stopwatch t;
        int root = build(polygons, groups);
        buildM.add(t);
        t = Stopwatch();
        const long seen = walk(root);
        walkM.add(t);
        if (seen != polygons) {
            std::fprintf(stderr, "walk saw %ld polygons of %ld\n", seen, polygons);
            return 1;
        }
        double cw = buildM.wall.back(), cc = buildM.cpu.back();
        for (int f = 0; f < 4; ++f) {
            if (!only.empty() && only != exts[f]) continue;
            FormatFigures& F = figures[f];
            const std::string path = base + exts[f];
            t = Stopwatch();
            if (ZELMAR_engine_save(path.c_str(), root, 0x1203) != 1) {
                std::fprintf(stderr, "save failed: %s\n", ZELMAR_engine_get_last_error());
                return 1;
            }
            F.save.add(t);
            F.bytes = std::filesystem::file_size(path);

            std::vector<uint8_t> bytes;
            std::string error;
            t = Stopwatch();
            zelmar::io::readWholeFile(path, bytes, error);
            F.read.add(t);
            bytes = {};

            // Emptying the engine is timed apart: the load figure is the reader and the build.
            t = Stopwatch();
            ZELMAR_engine_load_world(nullptr, nullptr, nullptr, 4);
            clearM.add(t);
            t = Stopwatch();
            if (ZELMAR_engine_load_world(path.c_str(), "", "", 4) != 1) {
                std::fprintf(stderr, "load failed: %s\n", ZELMAR_engine_get_last_error());
                return 1;
            }
            F.load.add(t);
            F.ratioWall.push_back(F.load.wall.back() / F.read.wall.back());
            F.ratioCpu.push_back(F.load.cpu.back() / std::max(F.read.cpu.back(), 1e-3));
            root = ZELMAR_group_get_using_name("the_world");
            if (walk(root) != polygons) {
                std::fprintf(stderr, "%s: the loaded world is not whole\n", exts[f]);
                return 1;
            }
            if (f == 1) {
                cw += F.save.wall.back() + F.load.wall.back();
                cc += F.save.cpu.back() + F.load.cpu.back();
            }
            if (!keep.empty())
                std::filesystem::copy_file(path, keep + exts[f],
                                           std::filesystem::copy_options::overwrite_existing);
            std::filesystem::remove(path);
        }
        cycleWall.push_back(cw);
        cycleCpu.push_back(cc);
    }

    std::printf("World of %ld four-point polygons in %d groups; median of %d runs; wall s (processor s)\n",
                polygons, groups, runs);
    std::printf("  build through the C API   %7.3f (%7.3f)\n", buildM.w(), buildM.c());
    std::printf("  walk from the root        %7.3f (%7.3f)\n", walkM.w(), walkM.c());
    std::printf("  empty the engine          %7.3f (%7.3f)\n", clearM.w(), clearM.c());
    std::printf("\n  %-10s %8s %17s %17s %17s %15s\n", "format", "MB", "save", "read bytes", "load",
                "load/read");
    for (int f = 0; f < 4; ++f) {
        const FormatFigures& F = figures[f];
        if (F.load.wall.empty()) continue;
        std::printf("  %-10s %8.1f %7.3f (%7.3f) %7.3f (%7.3f) %7.3f (%7.3f) %6.2f (%6.2f)\n", exts[f],
                    F.bytes / 1e6, F.save.w(), F.save.c(), F.read.w(), F.read.c(), F.load.w(), F.load.c(),
                    median(F.ratioWall), median(F.ratioCpu));
    }
    if (only.empty() || only == ".zelmar")
        std::printf("\n  build + save + load (.zelmar) %7.3f (%7.3f)\n", median(cycleWall), median(cycleCpu));
    return 0;
}
