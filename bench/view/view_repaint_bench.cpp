// The cost of one interactive repaint of the active viewport (engine render plus overlays) at 800 x 600,
// as during a camera drag, for worlds of 10,000, 100,000 and 1,000,000 polygons.
//
//   view_repaint_bench [--frames N] [--sizes 10000,100000,1000000]
//   view_repaint_bench --show [polygons | world file]   the four views in a window (for screenshots)
//
// Reported per world: the median of the engine render alone, of the whole repaint (render, copy into the
// back buffer, overlays, blit to the widget), and the overlays' share of the render.
#include "frame/InputState.h"
#include "view/ViewportHost.h"
#include "view/frmPicWins.h"
#include "view/picWindow.h"

#include <QApplication>
#include <QPainter>
#include <QTemporaryDir>
#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <string>
#include <vector>
#include <zelmar/zelmar.h>
#include "../BenchClock.h"
#include "../TerrainQuads.h"

using namespace vexil;

namespace {

class BenchHost : public ViewportHost {
  public:
    int root = 0, group = 0;
    double size = 1000;
    bool WorldOpen() override { return true; }
    int RootGrp() override { return root; }
    double WorldSize() override { return size; }
    int CurrSelEntityType() override { return group ? 1 : 0; }
    int CurrSelEntity() override { return group; }
};

// A rolling terrain of about `polygons` quads, `extent` units across, under one group below the root.
int buildTerrain(BenchHost& host, long polygons, double extent) {
    host.root = ZELMAR_group_create("Root");
    const int g = ZELMAR_group_create("Terrain");
    ZELMAR_group_set_father_group(g, host.root);
    bench::addTerrainQuads(g, polygons, extent, bench::terrainColour);
    host.size = extent;
    return g;
}

void addBoxes(BenchHost& host) {
    // A few boxes standing on the terrain, so the views have something to frame.
    const double s = host.size / 10;
    const double centres[3][3] = {
        {-host.size / 4, -host.size / 5, s}, {host.size / 5, 0, s}, {0, host.size / 4, s}};
    for (int b = 0; b < 3; ++b) {
        const int g = ZELMAR_group_create(("Box" + std::to_string(b + 1)).c_str());
        ZELMAR_group_set_father_group(g, host.root);
        const double* c = centres[b];
        const double h = s / 2;
        const double f[6][4][3] = {
            {{h, -h, -h}, {h, h, -h}, {h, h, h}, {h, -h, h}},
            {{-h, h, -h}, {-h, -h, -h}, {-h, -h, h}, {-h, h, h}},
            {{h, h, -h}, {-h, h, -h}, {-h, h, h}, {h, h, h}},
            {{-h, -h, -h}, {h, -h, -h}, {h, -h, h}, {-h, -h, h}},
            {{-h, -h, h}, {h, -h, h}, {h, h, h}, {-h, h, h}},
            {{-h, h, -h}, {h, h, -h}, {h, -h, -h}, {-h, -h, -h}},
        };
        for (int k = 0; k < 6; ++k) {
            const int p = ZELMAR_polygon_create();
            for (int v = 0; v < 4; ++v) {
                const double vert[6] = {f[k][v][0] + c[0], f[k][v][1] + c[1], f[k][v][2] + c[2], 0, 0, 100};
                ZELMAR_polygon_add_point(p, vert);
            }
            ZELMAR_polygon_set_color_fill(p, 220 - k * 25, 80 + b * 60, 60 + k * 30);
            ZELMAR_polygon_set_orientation(p, 1);
            ZELMAR_polygon_set_group(p, g);
            ZELMAR_engine_add_polygon(p);
        }
    }
}



struct Setup {
    BenchHost host;
    QWidget top;
    frmPicWins* views = nullptr;
    std::array<int, 4> cams{};
    explicit Setup(int w, int h) {
        views = new frmPicWins(host, &top);
        for (int i = 0; i < 4; ++i) {
            cams[i] = ZELMAR_camera_create(("View" + std::to_string(i)).c_str());
            views->SetViewportCamera(i, cams[i]);
        }
        top.resize(w, h);
        views->setGeometry(0, 0, w, h);
    }
};

int runBench(int frames, const std::vector<long>& sizes) {
    std::printf("view repaint at 800x600, camera drag (revolve) in the perspective view; %d frames, median\n",
                frames);
    std::printf("%10s | %-36s | %-36s\n", "", "perspective view, revolve", "top view with grid, pan");
    std::printf("%10s | %8s %8s %8s %7s | %8s %8s %8s %7s\n", "polygons", "render", "overlay", "repaint",
                "share", "render", "overlay", "repaint", "share");
    for (long n : sizes) {
        ZELMAR_engine_close();
        Setup s(800, 640);
        s.host.group = buildTerrain(s.host, n, 1000);
        s.top.show();
        QCoreApplication::processEvents();
        s.views->ResetCameras();
        // The perspective window fills the frame at 800 x 600.
        s.views->ActiveWin = 2;
        s.views->ToggleWindowMinMax();
        picWindow* w = s.views->PicWindow(2);
        const int extraW = s.views->width() - w->width(), extraH = s.views->height() - w->height();
        s.views->setGeometry(0, 0, 800 + extraW, 600 + extraH);
        s.top.resize(800 + extraW, 600 + extraH);
        QCoreApplication::processEvents();
        s.views->picWinsResize();
        if (w->width() != 800 || w->height() != 600) {
            std::fprintf(stderr, "window is %dx%d, not 800x600\n", w->width(), w->height());
            return 1;
        }
        camera& cam = s.views->ViewCams(2);
        // One revolve step per frame. The render is timed (wall clock) inside picWindow_Paint. The overlay
        // work of the same frame (copy into the back buffer, grid, box, blit to the widget) is then redone
        // and timed in CPU time of this thread, which a loaded machine does not inflate.
        auto measure = [&](auto step, std::vector<double>& render, std::vector<double>& paintWall,
                           std::vector<double>& overlayCpu) {
            for (int f = -3; f < frames; ++f) {
                step();
                s.views->picWindow_Paint(2);
                w->repaint();
                if (f < 0) continue;
                render.push_back(s.views->LastRenderMs);
                paintWall.push_back(s.views->LastPaintMs - s.views->LastRenderMs);
                const double c0 = bench::threadCpuMs();
                w->CopyFromTarget();
                {
                    QPainter p(&w->BackBuffer());
                    Grid& g = s.views->ViewGrids(2);
                    if (g.Draw(g.GridVisible ? &p : nullptr) && g.GridVisible) g.DrawSnapMark(p);
                    s.views->SelectionBox().Draw(p);
                }
                w->repaint();
                overlayCpu.push_back(bench::threadCpuMs() - c0);
            }
        };
        std::vector<double> render, wall, cpu, tRender, tWall, tCpu;
        measure(
            [&] {
                cam.Theta -= 0.01;
                cam.Update();
            },
            render, wall, cpu);
        // The same window as a top view with the grid showing, panned a little each frame.
        s.views->ApplyViewCommand(2, ViewTop);
        s.views->ViewGrids(2).GridVisible = true;
        camera& c = s.views->ViewCams(2);
        measure(
            [&] {
                c.LookAtOffsetH += 0.5;
                c.Update();
            },
            tRender, tWall, tCpu);
        if (std::getenv("VIEW_BENCH_DETAIL")) {
            // Where the overlay time goes, in CPU milliseconds of this thread.
            std::vector<double> copy, grid, box, blit;
            for (int k = 0; k < 200; ++k) {
                const double t0 = bench::threadCpuMs();
                w->CopyFromTarget();
                const double t1 = bench::threadCpuMs();
                {
                    QPainter p(&w->BackBuffer());
                    s.views->ViewGrids(2).Draw(&p);
                    const double t2 = bench::threadCpuMs();
                    s.views->SelectionBox().Draw(p);
                    box.push_back(bench::threadCpuMs() - t2);
                    grid.push_back(t2 - t1);
                }
                const double t3 = bench::threadCpuMs();
                w->repaint();
                blit.push_back(bench::threadCpuMs() - t3);
                copy.push_back(t1 - t0);
            }
            auto low = [](const std::vector<double>& v) { return *std::min_element(v.begin(), v.end()); };
            std::printf(
                "           top view, median (least) of 200: copy %.3f (%.3f)  grid %.3f (%.3f)  box %.3f "
                "(%.3f)  blit %.3f (%.3f) ms\n",
                bench::median(copy), low(copy), bench::median(grid), low(grid), bench::median(box), low(box), bench::median(blit),
                low(blit));
        }
        const double r = bench::median(render), o = bench::median(cpu), tr = bench::median(tRender), to = bench::median(tCpu);
        std::printf("%10ld | %8.2f %8.2f %8.2f %6.1f%% | %8.2f %8.2f %8.2f %6.1f%%\n", n, r, o, r + o,
                    100 * o / r, tr, to, tr + to, 100 * to / tr);
        std::fflush(stdout);
    }
    return 0;
}

// A world file: its root is "the_world"; the first group below it is the current group.
bool loadWorld(BenchHost& host, const char* file) {
    if (ZELMAR_engine_load_world(file, "", "", 4) != 1) {
        std::fprintf(stderr, "%s: %s\n", file, ZELMAR_engine_get_last_error());
        return false;
    }
    host.root = ZELMAR_group_get_using_name("the_world");
    double box[6] = {0, 0, 0, 0, 0, 0};
    ZELMAR_group_get_bounding_box(host.root, box);
    host.size = std::max({box[3] - box[0], box[4] - box[1], box[5] - box[2], 1.0});
    for (int g = ZELMAR_group_get_first_group(); g; g = ZELMAR_group_get_next(g))
        if (ZELMAR_group_get_father_group(g) == host.root) {
            host.group = g;
            break;
        }
    return true;
}

int runShow(long polygons, const char* world) {
    static Setup s(1280, 900);
    if (world) {
        if (!loadWorld(s.host, world)) return 1;
        // The view cameras are made after the load, which replaces every entity.
        for (int i = 0; i < 4; ++i)
            s.views->SetViewportCamera(i, ZELMAR_camera_create(("View" + std::to_string(i)).c_str()));
    } else {
        s.host.group = buildTerrain(s.host, polygons, 1000);
        addBoxes(s.host);
    }
    s.top.setWindowTitle(QStringLiteral("Viewports"));
    s.top.move(20, 20);
    s.top.show();
    QCoreApplication::processEvents();
    s.views->ResetCameras();
    for (int i = 0; i < 4; ++i)
        s.views->ViewGrids(i).GridVisible = true;
    s.views->ActiveWin = 2;
    s.views->picWindow_GotFocus(2);
    s.views->UpdateCameras();
    return QApplication::exec();
}

} // namespace

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    QTemporaryDir settings;
    qputenv("VEXIL_SETTINGS_DIR", settings.path().toUtf8());
    int frames = 15;
    std::vector<long> sizes = {10000, 100000, 1000000};
    for (int i = 1; i < argc; ++i) {
        if (!std::strcmp(argv[i], "--show")) {
            const bool file = i + 1 < argc && !QString::fromLocal8Bit(argv[i + 1]).at(0).isDigit();
            return runShow(!file && i + 1 < argc ? std::atol(argv[i + 1]) : 20000,
                           file ? argv[i + 1] : nullptr);
        }
        if (!std::strcmp(argv[i], "--frames") && i + 1 < argc) frames = std::atoi(argv[++i]);
        if (!std::strcmp(argv[i], "--sizes") && i + 1 < argc) {
            sizes.clear();
            for (const QString& part : QString::fromLatin1(argv[++i]).split(','))
                sizes.push_back(part.toLong());
        }
    }
    return runBench(frames, sizes);
}
