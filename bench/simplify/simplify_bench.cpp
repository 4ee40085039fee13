// simplify_bench: the figures of docs/performance.md, "Simplification".
//
//   simplify_bench [--mesh FILE] [--subdivide N] [--keep 0.5,0.1] [--targets N,M] [--runs N] [--mode prod|ref]
//                  [--faces N] [--plain] [--no-renumber] [--session] [--engine]
//
// prod: the production SurfSimpli, N runs per target in this process (a fresh object each run),
//       median wall and CPU time of Reduce (extraction, restart copy, loop and output included),
//       split by phase from the status texts; the peak resident memory of the process.
// ref:  the literal reference, one run per target, on the first --faces faces of the mesh.
// --subdivide splits every triangle into four, N times (the scaling figures);
// --session opens one SimplifySession and runs the targets one after the other, as the workbench
// does on each click (a deeper target goes on from the last run); CPU time of each run.
// --targets gives triangle counts instead of fractions; --plain runs the production without its
// refusal cache (its candidate count is then that of the reference's scans); --no-renumber keeps
// the records in the order extraction makes them.
// Every run goes through the in-memory engine, so the engine's own cost is not measured; with
// --engine the production reads and writes through libzelmar3 instead, as the editor does (each
// run reads a fresh copy of the mesh, and its output group is deleted after it, untimed).
#include "EngineMeshes.h"
#include "MemoryEngine.h"
#include "MeshData.h"
#include "MeshMaker.h"
#include "reference/RefSurfSimpli.h"
#include "simplify/SimplifySession.h"
#include "simplify/SurfSimpli.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <sstream>
#include <string>
#include <vector>
#include "../BenchClock.h"

using namespace simplify_test;

namespace {

// Time stamps (CPU) of the status texts: extraction, loop, output.
struct PhaseClock final : simplify::SimplifyStatus {
    double extract = 0, loop = 0, output = 0, end = 0;
    // Other texts (one or two a contraction) cost a comparison only: reading the process's
    // clock is a system call.
    void setText(const std::string& t) override {
        if (t == "Extracting Triangles") extract = bench::processCpuMs();
        else if (t == "Simplyfing") loop = bench::processCpuMs();
        else if (t == "Building Output") output = bench::processCpuMs();
        else if (t.empty()) end = bench::processCpuMs();
    }
};
struct Quiet final : simplify::SimplifyHost {
    void messageBox(const std::string& t) override { std::printf("  (message: %s)\n", t.c_str()); }
    void yieldEvents() override {}
};
} // namespace

int main(int argc, char** argv) {
    std::string path = "/usr/share/glmark2/models/bunny.obj", mode = "prod";
    std::vector<double> keeps = {0.5, 0.1};
    int runs = 5;
    std::size_t faces = 0;
    int subdivisions = 0;
    bool plain = false, session = false, renumber = true, viaEngine = false;
    std::vector<int> targets;
    for (int i = 1; i < argc; ++i) {
        const std::string a = argv[i];
        auto next = [&]() -> std::string { return i + 1 < argc ? argv[++i] : ""; };
        if (a == "--mesh") path = next();
        else if (a == "--mode") mode = next();
        else if (a == "--runs") runs = std::stoi(next());
        else if (a == "--faces") faces = static_cast<std::size_t>(std::stol(next()));
        else if (a == "--plain") plain = true;
        else if (a == "--session") session = true;
        else if (a == "--engine") viaEngine = true;
        else if (a == "--no-renumber") renumber = false;
        else if (a == "--subdivide") subdivisions = std::stoi(next());
        else if (a == "--targets") {
            std::stringstream ss(next());
            std::string item;
            while (std::getline(ss, item, ',')) targets.push_back(std::stoi(item));
        } else if (a == "--keep") {
            keeps.clear();
            std::stringstream ss(next());
            std::string item;
            while (std::getline(ss, item, ',')) keeps.push_back(std::stod(item));
        }
    }
    MeshData mesh = triangulateFans(loadMesh(path));
    if (faces) mesh = firstFaces(mesh, faces);
    if (subdivisions > 0) mesh = subdivide(mesh, subdivisions);
    std::printf("peak resident memory after loading the mesh: %ld kB\n", bench::peakResidentKb());
    const int total = static_cast<int>(mesh.faces.size());
    std::printf("mesh %s: %d triangles; mode %s\n", path.c_str(), total, mode.c_str());
    Quiet host;
    if (!targets.empty()) {
        keeps.clear();
        for (int t : targets) keeps.push_back(static_cast<double>(t) / total);
    }
    if (session) {
        MemoryEngine eng;
        const int g = eng.addMesh(mesh);
        simplify::SimplifySession ses(&eng);
        double c0 = bench::processCpuMs();
        ses.Open(g, &host);
        std::printf("session: open %.1f ms cpu\n", bench::processCpuMs() - c0);
        for (const double keep : keeps) {
            const int target = static_cast<int>(total * keep + 0.5);
            c0 = bench::processCpuMs();
            const simplify::SimplifyResult r = ses.Run(target, {}, &host);
            std::printf("session: keep %.2f -> %d triangles, %s, %.1f ms cpu\n", keep, r.triangles,
                        r.continued ? "went on from the last run" : "from the copy", bench::processCpuMs() - c0);
        }
        std::printf("  model at most %.1f MB\n", ses.Model().PeakMemoryBytes() / 1048576.0);
        return 0;
    }
    for (const double keep : keeps) {
        const int target = static_cast<int>(total * keep + 0.5);
        if (mode == "ref") {
            MemoryEngine eng;
            const int g = eng.addMesh(mesh);
            simplify_ref::RefSurfSimpli s(&eng);
            s.SetHost(&host);
            s.ForceRestart = simplify_ref::vbTrue;
            PhaseClock phases;
            const double w0 = bench::wallMs(), c0 = bench::processCpuMs();
            try {
                s.Reduce(target, g, false, nullptr, &phases, false, false, false);
            } catch (const std::exception& e) {
                std::printf("  reference raised: %s\n", e.what());
            }
            const double w1 = bench::wallMs(), c1 = bench::processCpuMs();
            std::printf("reference keep %.2f: %d -> %d triangles, wall %.1f ms, cpu %.1f ms (extract+copy %.1f, loop %.1f, "
                        "output %.1f)\n",
                        keep, total, s.TriCurrent, w1 - w0, c1 - c0, phases.loop - phases.extract,
                        phases.output - phases.loop, phases.end - phases.output);
            continue;
        }
        std::vector<double> wall, cpu, ex, lp, out;
        int result = 0;
        long long selections = 0, candidates = 0, cached = 0, fills = 0;
        std::size_t modelBytes = 0, peakBytes = 0;
        for (int r = 0; r < runs; ++r) {
            MemoryEngine eng;
            const int g = viaEngine ? toEngine(mesh) : eng.addMesh(mesh);
            simplify::SurfSimpli s(viaEngine ? nullptr : &eng);
            s.SetHost(&host);
            s.ForceRestart = true;
            s.CacheRefusals = !plain;
            s.RenumberRecords = renumber;
            PhaseClock phases;
            const double w0 = bench::wallMs(), c0 = bench::processCpuMs();
            int outGroup = 0;
            try {
                outGroup = s.Reduce(target, g, false, nullptr, &phases, false, false, false);
            } catch (const std::exception& e) {
                std::printf("  production raised: %s\n", e.what());
            }
            const double w1 = bench::wallMs(), c1 = bench::processCpuMs();
            if (viaEngine) {
                ZELMAR_group_delete_members(outGroup);
                ZELMAR_group_delete_members(g);
            }
            wall.push_back(w1 - w0);
            cpu.push_back(c1 - c0);
            ex.push_back(phases.loop - phases.extract);
            lp.push_back(phases.output - phases.loop);
            out.push_back(phases.end - phases.output);
            result = s.TriCurrent();
            selections = s.SelectionCount;
            candidates = s.CandidateCount;
            cached = s.CachedRefusals;
            fills = s.HeapFills;
            modelBytes = s.MemoryBytes();
            peakBytes = s.PeakMemoryBytes();
        }
        std::printf("production%s%s keep %.2f: %d -> %d triangles, median of %d: wall %.1f ms, cpu %.1f ms "
                    "(extract+copy %.1f, loop %.1f, output %.1f); %lld selections, %lld candidates, %lld refusals "
                    "from the cache, %lld heap fills\n",
                    plain ? " (no refusal cache)" : "", viaEngine ? " via libzelmar3" : "", keep, total, result, runs, bench::median(wall), bench::median(cpu), bench::median(ex), bench::median(lp), bench::median(out), selections,
                    candidates, cached, fills);
        // the least CPU of the runs: on a shared machine the run least disturbed by others
        std::printf("  fastest run: cpu %.1f ms (extract+copy %.1f, loop %.1f)\n", *std::min_element(cpu.begin(), cpu.end()),
                    *std::min_element(ex.begin(), ex.end()), *std::min_element(lp.begin(), lp.end()));
        std::printf("  model held by SurfSimpli after the run (arrays, lists, copy, indexes, heap): %.1f MB, at most %.1f MB\n",
                    modelBytes / 1048576.0, peakBytes / 1048576.0);
    }
    std::printf("peak resident memory of this process: %ld kB\n", bench::peakResidentKb());
    return 0;
}
