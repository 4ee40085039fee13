// What the workbench window adds to a run: the same reductions of a mesh through the window
// (progress, status, the yield that lets events through, the output shown and rendered) and
// through a bare SimplifySession, both on the engine (libzelmar3). Medians of --runs, CPU of the
// process and wall time, in ms.
//
//   workbench_bench [--mesh /usr/share/glmark2/models/bunny.obj] [--runs 5] [--yield-ms 15]
//
// Steps per run: open (the triangulated copy and the model, no contraction), a click at 50%, a
// second click at 90% (it goes on from the first), a third at 70% (it starts again from the copy).
#include "BenchClock.h"
#include "WorkbenchBenchSupport.h"
#include "frame/Locale.h"
#include "workbench/formSurfaceSimplification.h"

#include <QApplication>
#include <QLabel>
#include <QPushButton>
#include <cstdio>
#include <functional>
#include <map>

using namespace vexil;

namespace {

struct Timing {
    std::vector<double> cpu, wall;
    void add(const std::function<void()>& f) {
        const double c0 = bench::processCpuMs(), w0 = bench::wallMs();
        f();
        cpu.push_back(bench::processCpuMs() - c0);
        wall.push_back(bench::wallMs() - w0);
    }
};

} // namespace

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    std::string mesh = "/usr/share/glmark2/models/bunny.obj";
    int runs = 5, yieldMs = 15;
    for (int i = 1; i < argc; ++i) {
        const std::string a = argv[i];
        if (a == "--mesh" && i + 1 < argc) mesh = argv[++i];
        else if (a == "--runs" && i + 1 < argc) runs = std::atoi(argv[++i]);
        else if (a == "--yield-ms" && i + 1 < argc) yieldMs = std::atoi(argv[++i]);
        else {
            std::fprintf(stderr, "usage: workbench_bench [--mesh FILE] [--runs N] [--yield-ms MS]\n");
            return 2;
        }
    }
    SetAppLCID(409);
    simplify_test::MeshData data;
    try {
        data = simplify_test::loadMesh(mesh);
    } catch (const std::exception& e) {
        std::fprintf(stderr, "%s\n", e.what());
        return 1;
    }
    const int root = ZELMAR_group_create("the_world");
    const int source = workbench_bench::meshToGroup(data, "Mesh", root);
    std::map<std::string, Timing> t;
    long long yields = 0;
    int tris50 = 0, tris10 = 0, tris30 = 0;
    for (int r = 0; r < runs; ++r) {
        {
            formSurfaceSimplification* form = nullptr;
            t["window: open"].add([&] {
                form = new formSurfaceSimplification(source);
                form->YieldIntervalMs = yieldMs;
                form->show();
                while (!form->Activated()) QCoreApplication::processEvents();
            });
            auto click = [&](double pct) {
                form->SetReduction(pct);
                form->cmdSimplify->click();
                return form->lblSimp->text().toInt();
            };
            t["window: 50%"].add([&] { tris50 = click(50); });
            yields += form->Yields();
            t["window: then 90% (goes on)"].add([&] { tris10 = click(90); });
            t["window: then 70% (from the copy)"].add([&] { tris30 = click(70); });
            form->close();
            delete form;
        }
        {
            const int copy = ZELMAR_group_create_copy_made_of_triangles(source, "copy");
            simplify::SimplifySession s;
            t["session: open"].add([&] { s.Open(copy); });
            int out = 0;
            auto run = [&](double pct) {
                if (out) ZELMAR_group_delete_members(out);
                out = s.Run(s.TargetForReduction(pct), {}).outputGroup;
            };
            t["session: 50%"].add([&] { run(50); });
            t["session: then 90% (goes on)"].add([&] { run(90); });
            t["session: then 70% (from the copy)"].add([&] { run(70); });
            ZELMAR_group_delete_members(out);
            ZELMAR_group_delete_members(copy);
        }
    }
    std::printf("%s, %zu faces; results %d / %d / %d triangles; %lld yields in the 50%% runs (every %d ms)\n",
                mesh.c_str(), data.faces.size(), tris50, tris10, tris30, yields / runs, yieldMs);
    std::printf("%-36s %10s %10s\n", "step (median of runs)", "cpu ms", "wall ms");
    for (const char* k : {"session: open", "window: open", "session: 50%", "window: 50%", "session: then 90% (goes on)",
                          "window: then 90% (goes on)", "session: then 70% (from the copy)",
                          "window: then 70% (from the copy)"})
        std::printf("%-36s %10.1f %10.1f\n", k, bench::median(t[k].cpu), bench::median(t[k].wall));
    std::printf("peak resident %ld kB\n", bench::peakResidentKb());
    return 0;
}
