// simplify_cli: loads an OBJ or PLY mesh, reduces it to a target triangle count with SurfSimpli
// and writes the result; prints times and triangle counts.
//
//   simplify_cli INPUT [--target N | --keep FRACTION] [--geom-only] [--tex-seams] [--color-borders]
//                [--zero-error] [--lock P1,P2,...] [--subdivide N] [--reference] [--engine] [--checksum]
//                [--out FILE]
//   simplify_cli --help
//
// Without --engine the mesh goes through an in-memory engine and --out writes OBJ. With
// --engine it goes through libzelmar3: the mesh becomes a group, SurfSimpli reads it through
// the ZELMAR_* calls of the simplification output, and --out saves the output group as a world
// (ZELMAR_engine_save; .wld, .zelmar, ...). --reference runs the literal implementation.
// --checksum prints hashes of the contraction sequence and of the output's bits (to compare
// builds and implementations on meshes too large for the tests). Exit codes: 0 done, 1 the
// input could not be read (one line on stderr naming the file and why) or the reduction
// failed, 2 bad command line (the reason and the usage on stderr).
#include "Fnv.h"
#include "MemoryEngine.h"
#include "MeshData.h"
#include "MeshMaker.h"
#include "base/VexilError.h"
#include "reference/RefSurfSimpli.h"
#include "simplify/SurfSimpli.h"

#include <zelmar/zelmar.h>

#include <algorithm>
#include <bit>
#include <chrono>
#include <cstdint>
#include <stdexcept>
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

const char* const kUsage =
    "usage: simplify_cli INPUT [options]\n"
    "Reduces the triangles of an OBJ or PLY mesh by quadric-error edge contraction.\n"
    "  --target N          triangles wanted\n"
    "  --keep FRACTION     triangles wanted as a fraction of the input (default 0.5)\n"
    "  --geom-only         geometry alone: no texture work, points go to the solved optimum\n"
    "  --tex-seams         protect texture seams\n"
    "  --color-borders     protect borders between colours\n"
    "  --zero-error        stop when the next contraction would cost more than 0.00\n"
    "  --lock P1,P2,...    lock these model points (1-based)\n"
    "  --subdivide N       split every triangle into 4, N times, before reducing\n"
    "  --reference         run the literal reference implementation (slow)\n"
    "  --engine            go through libzelmar3; --out then saves a world\n"
    "  --checksum          print hashes of the contraction sequence and of the output\n"
    "  --out FILE          write the result (OBJ, or a world with --engine)\n"
    "  --help              this text\n";

double ms(Clock::time_point a, Clock::time_point b) { return std::chrono::duration<double, std::milli>(b - a).count(); }



// Mesh files list a face's corners counter-clockwise seen from its front; an engine ring runs
// clockwise seen from its front. Both engines get the faces turned this way, so that the two
// paths read the same rings (and, as the in-memory engine computes planes as libzelmar3 does,
// the same bits).
MeshData asEngineRings(MeshData m) {
    for (MeshFace& f : m.faces) std::reverse(f.v.begin(), f.v.end());
    return m;
}

// Mesh into a zelmar group: one polygon per face, points with x, y, z, u, v, brightness and normal.
int meshToEngine(const MeshData& m) {
    const int g = ZELMAR_group_create("mesh");
    for (const MeshFace& f : m.faces) {
        const int p = ZELMAR_polygon_create();
        for (auto it = f.v.begin(); it != f.v.end(); ++it) {
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

MeshData engineGroupToMesh(int group) {
    MeshData m;
    for (int p = ZELMAR_group_get_first_polygon(group); p != 0; p = ZELMAR_group_get_next_polygon(p)) {
        MeshFace f;
        for (int pt = ZELMAR_polygon_get_first_point(p); pt != 0; pt = ZELMAR_point_get_next_point(pt)) {
            MeshVertex v;
            ZELMAR_point_get_xyz(pt, v.xyz);
            ZELMAR_point_get_bitmap_xy(pt, v.uv);
            f.v.push_back(static_cast<int>(m.vertices.size()));
            m.vertices.push_back(v);
        }
        m.faces.push_back(f);
    }
    return m;
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

static int run(int argc, char** argv) {
    std::string input, out;
    long target = -1;
    double keep = 0.5;
    int subdivisions = 0;
    bool geomOnly = false, seams = false, colors = false, zero = false, reference = false, engine = false,
         checksum = false;
    std::vector<std::int32_t> lock;
    try {
        for (int i = 1; i < argc; ++i) {
            const std::string a = argv[i];
            auto next = [&]() -> std::string {
                if (i + 1 >= argc) throw std::invalid_argument(a + " needs a value");
                return argv[++i];
            };
            auto number = [&](const std::string& text, auto parse) {
                std::size_t used = 0;
                decltype(parse(text, &used)) value{};
                try {
                    value = parse(text, &used);
                } catch (const std::exception&) {
                    used = 0;
                }
                if (used == 0 || used != text.size()) throw std::invalid_argument("not a number: " + text);
                return value;
            };
            auto toLong = [](const std::string& t, std::size_t* n) { return std::stol(t, n); };
            auto toDouble = [](const std::string& t, std::size_t* n) { return std::stod(t, n); };
            if (a == "--help" || a == "-h") {
                std::fputs(kUsage, stdout);
                return 0;
            } else if (a == "--target") target = number(next(), toLong);
            else if (a == "--keep") keep = number(next(), toDouble);
            else if (a == "--subdivide") subdivisions = static_cast<int>(number(next(), toLong));
            else if (a == "--geom-only") geomOnly = true;
            else if (a == "--tex-seams") seams = true;
            else if (a == "--color-borders") colors = true;
            else if (a == "--zero-error") zero = true;
            else if (a == "--reference") reference = true;
            else if (a == "--engine") engine = true;
            else if (a == "--checksum") checksum = true;
            else if (a == "--out") out = next();
            else if (a == "--lock") {
                std::stringstream ss(next());
                std::string item;
                while (std::getline(ss, item, ',')) {
                    const long p = number(item, toLong);
                    if (p < 1 || p > 2147483647L) throw std::invalid_argument("--lock wants model points from 1: " + item);
                    lock.push_back(static_cast<std::int32_t>(p));
                }
            } else if (!a.empty() && a[0] == '-') throw std::invalid_argument("unknown option " + a);
            else if (input.empty()) input = a;
            else throw std::invalid_argument("more than one input: " + input + " and " + a);
        }
        if (input.empty()) throw std::invalid_argument("no input file");
        if (target < -1 || target > 2147483647L) throw std::invalid_argument("--target wants a count from 0");
        if (!(keep >= 0 && keep <= 1)) throw std::invalid_argument("--keep wants a fraction from 0 to 1");
        if (subdivisions < 0 || subdivisions > 6) throw std::invalid_argument("--subdivide wants 0 to 6");
        if (reference && engine) throw std::invalid_argument("--reference runs on the in-memory engine only");
    } catch (const std::exception& e) {
        std::fprintf(stderr, "simplify_cli: %s\n%s", e.what(), kUsage);
        return 2;
    }
    MeshData mesh;
    const auto t0 = Clock::now();
    try {
        mesh = triangulateFans(loadMesh(input));
        if (subdivisions > 0) mesh = subdivide(mesh, subdivisions);
    } catch (const std::exception& e) {
        std::fprintf(stderr, "simplify_cli: cannot read %s: %s\n", input.c_str(), e.what());
        return 1;
    }
    if (mesh.faces.empty()) {
        std::fprintf(stderr, "simplify_cli: %s: the file holds no triangles\n", input.c_str());
        return 1;
    }
    const auto t1 = Clock::now();
    const int total = static_cast<int>(mesh.faces.size());
    mesh = asEngineRings(std::move(mesh));
    if (target < 0) target = static_cast<long>(total * keep + 0.5);
    // model points are welded vertices: never more of them than the file's vertices
    for (const std::int32_t p : lock)
        if (static_cast<std::size_t>(p) > mesh.vertices.size()) {
            std::fprintf(stderr, "simplify_cli: --lock %d: %s has %zu vertices\n%s", p, input.c_str(), mesh.vertices.size(), kUsage);
            return 2;
        }
    std::printf("input: %s, %d triangles, %zu vertices (read in %.1f ms)\n", input.c_str(), total, mesh.vertices.size(),
                ms(t0, t1));
    Printer host;
    std::vector<std::int32_t> trace;
    MeshData result;
    try {
        if (engine) {
            const int g = meshToEngine(mesh);
            std::printf("engine group %d holds %d polygons\n", g, ZELMAR_group_get_number_of_polygons(g));
            simplify::SurfSimpli s; // libzelmar3
            s.SetHost(&host);
            s.ZeroErrorMode = zero;
            s.ForceRestart = true;
            s.SetSelectedPts(lock);
            s.TraceContractions = checksum;
            const auto a = Clock::now();
            const double ca = bench::processCpuMs();
            const int outGroup = s.Reduce(static_cast<int>(target), g, seams, nullptr, nullptr, geomOnly, !lock.empty(), colors);
            const auto b = Clock::now();
            const double cb = bench::processCpuMs();
            std::printf("production via engine: %d -> %d triangles in %.1f ms (cpu %.1f ms; output group %d, %d polygons)\n",
                        total, s.TriCurrent(), ms(a, b), cb - ca, outGroup, ZELMAR_group_get_number_of_polygons(outGroup));
            trace = s.ContractionTrace;
            if (checksum) result = engineGroupToMesh(outGroup);
            if (!out.empty()) {
                if (ZELMAR_engine_save(out.c_str(), outGroup, 0x0001) != 1) { // kSaveGroups
                    std::fprintf(stderr, "simplify_cli: cannot save %s: %s\n", out.c_str(), ZELMAR_engine_get_last_error());
                    return 1;
                }
                std::printf("saved %s\n", out.c_str());
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
                s.TraceContractions = checksum;
                outGroup = s.Reduce(static_cast<int>(target), g, seams, nullptr, nullptr, geomOnly, !lock.empty(), colors);
                current = s.TriCurrent;
                trace = s.ContractionTrace;
            } else {
                simplify::SurfSimpli s(&eng);
                s.SetHost(&host);
                s.ZeroErrorMode = zero;
                s.ForceRestart = true;
                s.SetSelectedPts(lock);
                s.TraceContractions = checksum;
                outGroup = s.Reduce(static_cast<int>(target), g, seams, nullptr, nullptr, geomOnly, !lock.empty(), colors);
                current = s.TriCurrent();
                trace = s.ContractionTrace;
                std::printf("selections %lld, candidates tested %lld\n", s.SelectionCount, s.CandidateCount);
            }
            const auto b = Clock::now();
            const double cb = bench::processCpuMs();
            std::printf("%s: %d -> %d triangles in %.1f ms (cpu %.1f ms), peak resident %ld kB\n",
                        reference ? "reference" : "production", total, current, ms(a, b), cb - ca, bench::peakResidentKb());
            result = groupToMesh(eng, outGroup);
            if (!out.empty()) {
                saveObj(asEngineRings(result), out); // counter-clockwise again for the file
                std::printf("wrote %s\n", out.c_str());
            }
        }
    } catch (const vexil::VexilError& e) {
        std::fprintf(stderr, "simplify_cli: %s: the reduction failed: %s (error %ld in %s)\n", input.c_str(),
                     e.description.c_str(), e.number, e.source.c_str());
        return 1;
    } catch (const std::exception& e) {
        std::fprintf(stderr, "simplify_cli: %s: %s\n", input.c_str(), e.what());
        return 1;
    }
    if (checksum) {
        Hash t, o;
        for (const std::int32_t e : trace) t.add(static_cast<std::uint64_t>(e));
        for (const MeshFace& f : result.faces)
            for (const int v : f.v) {
                const MeshVertex& mv = result.vertices[static_cast<std::size_t>(v)];
                for (const double d : mv.xyz) o.add(d);
                for (const double d : mv.uv) o.add(d);
            }
        std::printf("checksum: %zu contractions, trace %016llx, output %zu triangles %016llx\n", trace.size(),
                    static_cast<unsigned long long>(t.h), result.faces.size(), static_cast<unsigned long long>(o.h));
    }
    return 0;
}

int main(int argc, char** argv) {
    // whatever escapes (memory running out while subdividing, say) is a message, not an abort
    try {
        return run(argc, argv);
    } catch (const std::exception& e) {
        std::fprintf(stderr, "simplify_cli: %s\n", e.what());
    } catch (...) {
        std::fprintf(stderr, "simplify_cli: unexpected failure\n");
    }
    return 1;
}
