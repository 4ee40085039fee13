// Point selection on one large group in the Top view of the real viewports (offscreen): a band over every
// point, select all, and invert after select all, for groups of 10,000, 100,000 and 250,000 points.
//
//   sel_bench [--runs N] [--sizes 10000,100000,250000]
//
// Each figure is the median of N runs (default 5) of the whole command as the user triggers it: the scan,
// the polygon array of the points, the pivot and the undo record with its push.
#include "undo/ActionUndoRedo_Stack.h"
#include "selection/SelectionModel.h"
#include "view/frmPicWins.h"
#include "view/picWindow.h"

#include <QApplication>
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

using namespace vexil;

namespace {

class BenchHost : public ViewportHost, public SelectionHost {
  public:
    ActionUndoRedo_Stack stack;
    frmPicWins* views = nullptr;
    int root = 0;
    bool WorldOpen() override { return true; }
    int RootGrp() override { return root; }
    double WorldSize() override { return 600.0; }
    SelectMode CurrentSelectMode() override { return SelectMode::Point; }
    int WorkspaceTab() override { return 1; }
    ActionUndoRedo_Stack& UndoStack() override { return stack; }
    frmPicWins* Views() override { return views; }
    int CurrSelEntityType() override { return Sel().CurrSelEntityType; }
    int CurrSelEntity() override { return Sel().CurrSelEntity; }
};

// A flat sheet of quads with `points` points (four per quad), 500 units across, in the plane z = 0.
int buildSheet(BenchHost& host, int points) {
    ZELMAR_engine_close();
    host.root = ZELMAR_group_create("the_world");
    const int g = ZELMAR_group_create("Sheet");
    ZELMAR_group_set_father_group(g, host.root);
    const int quads = points / 4;
    const int n = static_cast<int>(std::ceil(std::sqrt(double(quads))));
    const double step = 500.0 / n;
    for (int q = 0; q < quads; ++q) {
        const int i = q % n, j = q / n;
        const int p = ZELMAR_polygon_create();
        const double x0 = i * step - 250, y0 = j * step - 250, e = step * 0.8;
        const double c[4][2] = {{x0, y0}, {x0 + e, y0}, {x0 + e, y0 + e}, {x0, y0 + e}};
        for (auto& k : c) {
            const double v[6] = {k[0], k[1], 0, 0, 0, 100};
            ZELMAR_polygon_add_point(p, v);
        }
        ZELMAR_polygon_set_group(p, g);
        ZELMAR_engine_add_polygon(p);
    }
    for (int i = 0; i < 4; ++i) {
        const int cam = ZELMAR_camera_create(("View" + std::to_string(i)).c_str());
        host.views->SetViewportCamera(i, cam);
    }
    return g;
}


// Wall and processor time of one call, in milliseconds.
struct Timing {
    double wall = 0, cpu = 0;
};

template <class F> Timing timeMs(F&& f) {
    const double c0 = bench::threadCpuMs();
    const auto t0 = std::chrono::steady_clock::now();
    f();
    Timing t;
    t.wall = std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - t0).count();
    t.cpu = bench::threadCpuMs() - c0;
    return t;
}

double median(std::vector<Timing> v, double Timing::*field) {
    std::vector<double> x;
    for (const Timing& t : v)
        x.push_back(t.*field);
    std::sort(x.begin(), x.end());
    return x[x.size() / 2];
}

} // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    int runs = 5;
    std::vector<int> sizes = {10000, 100000, 250000};
    for (int i = 1; i < argc; ++i) {
        if (!std::strcmp(argv[i], "--runs") && i + 1 < argc) runs = std::max(1, std::atoi(argv[++i]));
        if (!std::strcmp(argv[i], "--sizes") && i + 1 < argc) {
            sizes.clear();
            for (const char* s = argv[++i]; *s;) {
                sizes.push_back(std::atoi(s));
                while (*s && *s != ',')
                    ++s;
                if (*s == ',') ++s;
            }
        }
    }
    QApplication app(argc, argv);
    std::printf("medians of %d runs, wall ms (processor ms of the thread)\n", runs);
    std::printf("%8s %8s %18s %18s %18s\n", "points", "in band", "band", "select all", "invert");
    for (int points : sizes) {
        BenchHost host;
        QWidget top;
        top.setGeometry(0, 0, 1280, 960);
        frmPicWins views(host, &top);
        views.setGeometry(0, 0, 1280, 960);
        host.views = &views;
        SelectionModel model(host);
        setSelectionModel(&model);
        const int g = buildSheet(host, points);
        top.show();
        QCoreApplication::processEvents();
        views.ResetCameras();
        views.SetToolMode(ToolSelect);
        views.ActiveWin = 0; // Top
        Sel().Clear();
        Sel().CurrSelEntityType = 1;
        Sel().CurrSelEntity = g;
        picWindow* w = views.PicWindow(0);
        views.LastDownX = 0;
        views.LastDownY = 0;
        views.LastUpX = static_cast<float>(w->width() - 1);
        views.LastUpY = static_cast<float>(w->height() - 1);

        std::vector<Timing> band, all, invert;
        int taken = 0;
        for (int r = 0; r < runs; ++r) {
            host.stack.Reset();
            Sel().SelPts.Clear();
            band.push_back(timeMs([&] { model.SelectMultiplePoints(); }));
            taken = Sel().SelPts.Count();
            all.push_back(timeMs([&] { model.mnuSelectAll_Click(); }));
            invert.push_back(timeMs([&] { model.mnuSelectInvert_Click(); }));
            if (Sel().SelPts.Count() != 0)
                std::printf("invert after select all left %d points\n", Sel().SelPts.Count());
        }
        auto cell = [](const std::vector<Timing>& t) {
            static char buf[4][32];
            static int k = 0;
            k = (k + 1) % 4;
            std::snprintf(buf[k], sizeof buf[k], "%.1f (%.1f)", median(t, &Timing::wall),
                          median(t, &Timing::cpu));
            return buf[k];
        };
        std::printf("%8d %8d %18s %18s %18s\n", points, taken, cell(band), cell(all), cell(invert));
        host.stack.Reset();
        setSelectionModel(nullptr);
        Sel().Clear();
        ZELMAR_engine_close();
    }
    return 0;
}
