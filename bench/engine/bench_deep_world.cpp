// Deep hierarchies: a world whose groups form one chain (each the only child of the one
// before), with a triangle in every 16th group. The file is written as text by this program,
// so the first load needs nothing of the engine but the reader. Then: the load of the text,
// the walks of the C API over the whole chain, a first frame and a first pick (which build
// the render and pick caches of every group), the save and the load of each format, and a
// duplicate and a delete of the chain. Prints the median of several runs, wall and processor
// seconds.
//
//   bench_deep_world [--depth N] [--runs R] [--dir FOLDER] [--only .ext]
#include "../BenchClock.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <unistd.h>
#include <vector>
#include <zelmar/zelmar.h>

namespace {

struct Measure {
    std::vector<double> wall, cpu;
    double w0 = 0, c0 = 0;
    void start() { w0 = bench::wallMs(), c0 = bench::processCpuMs(); }
    void stop() {
        wall.push_back((bench::wallMs() - w0) / 1e3);
        cpu.push_back((bench::processCpuMs() - c0) / 1e3);
    }
    void print(const char* what) const {
        if (!wall.empty())
            std::printf("  %-32s %8.3f (%8.3f)\n", what, bench::median(wall), bench::median(cpu));
    }
};

void writeChain(const std::string& path, long depth) {
    std::ofstream o(path, std::ios::binary);
    o << "zelmar-world-text 1\nstyle 0\n";
    o << "group 0 father=-1 name=\"the_world\"\n";
    for (long i = 1; i < depth; ++i)
        o << "group " << i << " father=" << i - 1 << " name=\"g" << i << "\"\n";
    for (long i = 0; i < depth; i += 16)
        o << "polygon group=" << i << " style=0 name=\"t\" points=3 attrs=xyz\np " << i << " 0 0\np " << i
          << " 1 0\np " << i << " 0 1\n";
    o << "end\n";
}

[[noreturn]] void die(const char* what) {
    std::fprintf(stderr, "%s: %s\n", what, ZELMAR_engine_get_last_error());
    std::exit(1);
}

} // namespace

int main(int argc, char** argv) {
    long depth = 100000;
    int runs = 3;
    std::string dir = std::filesystem::temp_directory_path().string(), only;
    for (int i = 1; i + 1 < argc; i += 2) {
        if (!std::strcmp(argv[i], "--depth"))
            depth = std::atol(argv[i + 1]);
        else if (!std::strcmp(argv[i], "--runs"))
            runs = std::atoi(argv[i + 1]);
        else if (!std::strcmp(argv[i], "--dir"))
            dir = argv[i + 1];
        else if (!std::strcmp(argv[i], "--only"))
            only = argv[i + 1];
    }
    if (depth < 2 || runs <= 0) {
        std::fprintf(stderr, "usage: %s [--depth N] [--runs R] [--dir FOLDER] [--only .ext]\n", argv[0]);
        return 2;
    }
    const std::string base = dir + "/bench_deep_world_" + std::to_string(::getpid());
    const std::string source = base + "_source.wld";
    writeChain(source, depth);
    const long polygons = (depth + 15) / 16;

    const char* const exts[] = {".wld", ".zelmar", ".tolvane", ".3dzelmar"};
    Measure loadText, groupWalk, polygonWalk, render, pick, duplicate, remove, save[4], load[4];
    for (int r = 0; r < runs; ++r) {
        ZELMAR_engine_load_world(nullptr, nullptr, nullptr, 4);
        loadText.start();
        if (ZELMAR_engine_load_world(source.c_str(), "", "", 4) != 1) die("load");
        loadText.stop();
        const int root = ZELMAR_group_get_using_name("the_world");

        groupWalk.start();
        long groups = 0;
        for (int g = ZELMAR_group_get_first_included_group(root); g; g = ZELMAR_group_get_next_included_group(g))
            ++groups;
        groupWalk.stop();
        polygonWalk.start();
        long seen = 0;
        for (int p = ZELMAR_group_get_first_polygon(root); p; p = ZELMAR_group_get_next_polygon(p))
            ++seen;
        polygonWalk.stop();
        if (groups != depth - 1 || seen != polygons) {
            std::fprintf(stderr, "walks saw %ld groups and %ld polygons\n", groups, seen);
            return 1;
        }

        const int target = ZELMAR_target_create(320, 240);
        const int camera = ZELMAR_camera_create("look");
        const double eye[3] = {-10, 0.3, 0.3}; // along +x, at the root's triangle
        ZELMAR_camera_set_location(camera, eye);
        ZELMAR_camera_set_current(camera, target);
        render.start();
        if (ZELMAR_engine_render_on_bitmap(target, camera) != 1) die("render");
        render.stop();
        pick.start();
        const int hit = ZELMAR_engine_get_polygon_at_point_2D(160, 120);
        pick.stop();
        if (ZELMAR_polygon_get_group(hit) != root) die("pick");
        ZELMAR_target_destroy(target);

        for (int f = 0; f < 4; ++f) {
            if (!only.empty() && only != exts[f]) continue;
            const std::string path = base + exts[f];
            const int at = ZELMAR_group_get_using_name("the_world");
            save[f].start();
            if (ZELMAR_engine_save(path.c_str(), at, 0x1203) != 1) die("save");
            save[f].stop();
            ZELMAR_engine_load_world(nullptr, nullptr, nullptr, 4);
            load[f].start();
            if (ZELMAR_engine_load_world(path.c_str(), "", "", 4) != 1) die("load");
            load[f].stop();
            std::filesystem::remove(path);
        }

        const int again = ZELMAR_group_get_using_name("the_world");
        duplicate.start();
        const int copy = ZELMAR_group_duplicate_tree(again);
        duplicate.stop();
        if (!copy) die("duplicate");
        remove.start();
        ZELMAR_group_delete_members(copy);
        remove.stop();
    }
    std::filesystem::remove(source);

    std::printf("A chain of %ld groups (%ld triangles); median of %d runs; wall s (processor s)\n", depth,
                polygons, runs);
    loadText.print("load the written text");
    groupWalk.print("walk the included groups");
    polygonWalk.print("walk the polygons");
    render.print("first frame, 320 x 240");
    pick.print("first pick");
    for (int f = 0; f < 4; ++f) {
        save[f].print((std::string("save ") + exts[f]).c_str());
        load[f].print((std::string("load ") + exts[f]).c_str());
    }
    duplicate.print("duplicate the chain");
    remove.print("delete the copy");
    return 0;
}
