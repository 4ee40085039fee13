// simplify_cli: loads an OBJ or PLY mesh, reduces it to a target triangle count with SurfSimpli
// and writes the result; prints times and triangle counts.
//
//   simplify_cli INPUT [--target N | --keep FRACTION] [--geom-only] [--tex-seams] [--color-borders]
//                [--zero-error] [--lock P1,P2,...] [--reference] [--engine] [--out FILE]
//
// Without --engine the mesh goes through an in-memory engine and --out writes OBJ. With
// --engine it goes through libzelmar3: the mesh becomes a group, SurfSimpli reads it through
// the ZELMAR_* calls of the simplification output, and --out saves the output group as a world
// (ZELMAR_engine_save; .wld, .zelmar, ...). --reference runs the literal implementation.
#include "MemoryEngine.h"
#include "MeshData.h"
#include "base/VexilError.h"
#include "reference/RefSurfSimpli.h"
#include "simplify/SurfSimpli.h"

#include <zelmar/zelmar.h>

#include <chrono>
#include <ctime>
#include <cstdio>
#include <cstring>
#include <sstream>
#include <string>
#include "../BenchClock.h"

using namespace simplify_test;
using Clock = std::chrono::steady_clock;

namespace {
struct Printer final : simplify::SimplifyHost {
    void messageBox(const std::string& t) override { std::printf("message: %s\n", t.c_str()); }
    void yieldEvents() override {}
};

double ms(Clock::time_point a, Clock::time_point b) { return std::chrono::duration<double, std::milli>(b - a).count(); }



// Mesh into a zelmar group: one polygon per face, points with x, y, z, u, v, brightness and normal.
// Mesh files list a face's corners counter-clockwise seen from its front; an engine ring runs clockwise
// seen from its front, so the corners go in backwards.
int meshToEngine(const MeshData& m) {
    const int g = ZELMAR_group_create("mesh");
    for (const MeshFace& f : m.faces) {
        const int p = ZELMAR_polygon_create();
        for (auto it = f.v.rbegin(); it != f.v.rend(); ++it) {
            const MeshVertex& v = m.vertices[static_cast<std::size_t>(*it)];
            const double vx[6] = {v.xyz[0], v.xyz[1], v.xyz[2], v.uv[0], v.uv[1], v.brightness};
            const int pt = ZELMAR_polygon_add_point(p, vx);
            ZELMAR_point_set_normal(pt, v.normal);
        }
        ZELMAR_polygon_set_group(p, g);
        ZELMAR_engine_add_polygon(p);
        if (f.bitmap == 0) ZELMAR_polygon_set_color_fill(p, f.color[0], f.color[1], f.color[2]);
        ZELMAR_polygon_set_brightness(p, f.brightness);
    }
    return g;
}

MeshData groupToMesh(MemoryEngine& eng, int group) {
    MeshData m;
    for (int p : eng.group(group).polygons) {
        MeshFace f;
        for (int pt : eng.polygon(p).points) {
            MeshVertex v;
            for (int k = 0; k < 3; ++k) v.xyz[k] = eng.point(pt).v[k];
            v.uv[0] = eng.point(pt).v[3];
            v.uv[1] = eng.point(pt).v[4];
            f.v.push_back(static_cast<int>(m.vertices.size()));
            m.vertices.push_back(v);
        }
        m.faces.push_back(f);
    }
    return m;
}
} // namespace

int main(int argc, char** argv) {
    if (argc < 2) {
        std::fprintf(stderr, "usage: %s INPUT [--target N | --keep FRACTION] [--geom-only] [--tex-seams] "
                             "[--color-borders] [--zero-error] [--lock P1,P2] [--reference] [--engine] [--out FILE]\n",
                     argv[0]);
        return 2;
    }
    std::string input = argv[1], out;
    long target = -1;
    double keep = 0.5;
    bool geomOnly = false, seams = false, colors = false, zero = false, reference = false, engine = false;
    std::vector<std::int32_t> lock;
    for (int i = 2; i < argc; ++i) {
        const std::string a = argv[i];
        auto next = [&]() -> std::string { return i + 1 < argc ? argv[++i] : ""; };
        if (a == "--target") target = std::stol(next());
        else if (a == "--keep") keep = std::stod(next());
        else if (a == "--geom-only") geomOnly = true;
        else if (a == "--tex-seams") seams = true;
        else if (a == "--color-borders") colors = true;
        else if (a == "--zero-error") zero = true;
        else if (a == "--reference") reference = true;
        else if (a == "--engine") engine = true;
        else if (a == "--out") out = next();
        else if (a == "--lock") {
            std::stringstream ss(next());
            std::string item;
            while (std::getline(ss, item, ',')) lock.push_back(std::stoi(item));
        } else {
            std::fprintf(stderr, "unknown option %s\n", a.c_str());
            return 2;
        }
    }
    const auto t0 = Clock::now();
    MeshData mesh = triangulateFans(loadMesh(input));
    const auto t1 = Clock::now();
    const int total = static_cast<int>(mesh.faces.size());
    if (target < 0) target = static_cast<long>(total * keep + 0.5);
    std::printf("input: %s, %d triangles, %zu vertices (read in %.1f ms)\n", input.c_str(), total, mesh.vertices.size(),
                ms(t0, t1));
    Printer host;
    try {
        if (engine) {
            if (reference) {
                std::fprintf(stderr, "--reference runs on the in-memory engine only\n");
                return 2;
            }
            const int g = meshToEngine(mesh);
            std::printf("engine group %d holds %d polygons\n", g, ZELMAR_group_get_number_of_polygons(g));
            simplify::SurfSimpli s; // libzelmar3
            s.SetHost(&host);
            s.ZeroErrorMode = zero;
            s.ForceRestart = true;
            s.SetSelectedPts(lock);
            const auto a = Clock::now();
            const int outGroup = s.Reduce(static_cast<int>(target), g, seams, nullptr, nullptr, geomOnly, !lock.empty(), colors);
            const auto b = Clock::now();
            std::printf("production via engine: %d -> %d triangles in %.1f ms (output group %d, %d polygons)\n", total,
                        s.TriCurrent(), ms(a, b), outGroup, ZELMAR_group_get_number_of_polygons(outGroup));
            if (!out.empty()) {
                const int r = ZELMAR_engine_save(out.c_str(), outGroup, 0x0001); // kSaveGroups
                std::printf("ZELMAR_engine_save(%s) answered %d%s%s\n", out.c_str(), r, r ? "" : ": ",
                            r ? "" : ZELMAR_engine_get_last_error());
            }
        } else {
            MemoryEngine eng;
            const int g = eng.addMesh(mesh);
            int outGroup = 0, current = 0;
            const auto a = Clock::now();
            const double ca = bench::processCpuMs();
            if (reference) {
                simplify_ref::RefSurfSimpli s(&eng);
                s.SetHost(&host);
                s.ZeroErrorMode = zero ? simplify_ref::vbTrue : simplify_ref::vbFalse;
                s.ForceRestart = simplify_ref::vbTrue;
                s.SelectedPts = lock;
                outGroup = s.Reduce(static_cast<int>(target), g, seams, nullptr, nullptr, geomOnly, !lock.empty(), colors);
                current = s.TriCurrent;
            } else {
                simplify::SurfSimpli s(&eng);
                s.SetHost(&host);
                s.ZeroErrorMode = zero;
                s.ForceRestart = true;
                s.SetSelectedPts(lock);
                outGroup = s.Reduce(static_cast<int>(target), g, seams, nullptr, nullptr, geomOnly, !lock.empty(), colors);
                current = s.TriCurrent();
                std::printf("selections %lld, candidates tested %lld\n", s.SelectionCount, s.CandidateCount);
            }
            const auto b = Clock::now();
            const double cb = bench::processCpuMs();
            std::printf("%s: %d -> %d triangles in %.1f ms (cpu %.1f ms), peak resident %ld kB\n",
                        reference ? "reference" : "production", total, current, ms(a, b), cb - ca, bench::peakResidentKb());
            if (!out.empty()) {
                saveObj(groupToMesh(eng, outGroup), out);
                std::printf("wrote %s\n", out.c_str());
            }
        }
    } catch (const vexil::VexilError& e) {
        std::printf("Reduce raised %ld: %s\n%s\n", e.number, e.description.c_str(), e.source.c_str());
        return 1;
    }
    return 0;
}
