// The commands of point and polygon editing and the live steps of extrude and bevel on large groups, through
// the same code as the panel (offscreen viewports, the weld table filled as Edit Geometry does).
//
//   modelling_bench [--runs N] [--sizes 10000,100000,250000] [--steps 1000,10000,100000] [--world 100000]
//                   [--tables edit,gestures,live]
//
// Figures: medians of N runs (default 5; of N x 9 steps and N x 3 steps with the repaint for the live
// steps), wall ms (processor ms of the thread). The load average of the
// machine is printed before and after. The last table is a live extrude step on part of a larger world
// (the rolling terrain of bench/view, `--world` quads in one group) with the repaint of the active view at
// 800 x 600, set up as view_repaint_bench does.
#include "../BenchClock.h"
#include "../TerrainQuads.h"
#include "modelling/EditGeometry.h"
#include "modelling/ModellingActions.h"
#include "modelling/mdlCutPols.h"
#include "modelling/mdlExtrude.h"
#include "selection/SelectionModel.h"
#include "selection/WeldedPoints.h"
#include "undo/ActionUndoRedo_Stack.h"
#include "undo/UndoHost.h"
#include "view/frmPicWins.h"
#include "view/picWindow.h"

#include <QApplication>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <functional>
#include <string>
#include <vector>
#include <zelmar/zelmar.h>

using namespace vexil;

namespace {

class BenchHost : public ViewportHost, public SelectionHost {
  public:
    ActionUndoRedo_Stack stack{"50"};
    frmPicWins* views = nullptr;
    int root = 0;
    SelectMode mode = SelectMode::Polygon;
    bool WorldOpen() override { return true; }
    int RootGrp() override { return root; }
    double WorldSize() override { return 600.0; }
    SelectMode CurrentSelectMode() override { return mode; }
    int WorkspaceTab() override { return 1; }
    ActionUndoRedo_Stack& UndoStack() override { return stack; }
    frmPicWins* Views() override { return views; }
    int CurrSelEntityType() override { return Sel().CurrSelEntityType; }
    int CurrSelEntity() override { return Sel().CurrSelEntity; }
};

// Samples per run of a live step alone and of a step with the repaint.
constexpr int kStepsTimed = 9, kPaintsTimed = 3;

struct Timing {
    double wall = 0, cpu = 0;
};
template <class F> Timing timeMs(F&& f) {
    const double c0 = bench::threadCpuMs();
    const auto t0 = std::chrono::steady_clock::now();
    f();
    return {std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - t0).count(),
            bench::threadCpuMs() - c0};
}
const char* cell(const std::vector<Timing>& t) {
    static char buf[8][40];
    static int k = 0;
    k = (k + 1) % 8;
    std::vector<double> w, c;
    for (const Timing& x : t) {
        w.push_back(x.wall);
        c.push_back(x.cpu);
    }
    std::snprintf(buf[k], sizeof buf[k], "%.1f (%.1f)", bench::median(w), bench::median(c));
    return buf[k];
}

// A sheet of `quads` quads sharing their corners (so that their points weld), cols x rows, in z = 0, a
// `width` by `height` rectangle centred on the origin; facing +z.
int buildSheet(BenchHost& host, int quads, int cols, double width, double height) {
    ZELMAR_engine_close();
    host.root = ZELMAR_group_create("the_world");
    const int g = ZELMAR_group_create("Sheet");
    ZELMAR_group_set_father_group(g, host.root);
    const int rows = (quads + cols - 1) / cols;
    const double sx = width / cols, sy = height / rows;
    for (int q = 0; q < quads; ++q) {
        const int i = q % cols, j = q / cols;
        const double x0 = i * sx - width / 2, y0 = j * sy - height / 2;
        const double c[4][2] = {{x0, y0}, {x0, y0 + sy}, {x0 + sx, y0 + sy}, {x0 + sx, y0}};
        const int p = ZELMAR_polygon_create();
        for (auto& k : c) {
            const double v[6] = {k[0], k[1], 0, 0, 0, 100};
            ZELMAR_polygon_add_point(p, v);
        }
        ZELMAR_polygon_set_group(p, g);
        ZELMAR_engine_add_polygon(p);
    }
    for (int i = 0; i < 4; ++i)
        host.views->SetViewportCamera(i, ZELMAR_camera_create(("View" + std::to_string(i)).c_str()));
    return g;
}

std::vector<int> polygonsOf(int g) {
    std::vector<int> out;
    for (int p = ZELMAR_group_get_first_polygon(g); p; p = ZELMAR_group_get_next_polygon(p))
        out.push_back(p);
    return out;
}

void startEditing(BenchHost& host, int g, SelectMode mode) {
    host.stack.Reset();
    Sel().Clear();
    Sel().CurrSelEntityType = 1;
    Sel().CurrSelEntity = g;
    host.mode = mode;
    EditGeometry::EditModeChanged(true);
}

void selectPolygons(const std::vector<int>& pols) {
    Sel().SelPols.Assign(pols);
    selectionModel()->UpdateSelPolsRelatedPtsArray();
    selectionModel()->ComputeSelPolsAvgCenter();
}

std::string loadAverage() {
    char buf[64] = {0};
    if (FILE* f = std::fopen("/proc/loadavg", "r")) {
        if (!std::fgets(buf, sizeof buf, f)) buf[0] = 0;
        std::fclose(f);
    }
    std::string s(buf);
    while (!s.empty() && s.back() == '\n')
        s.pop_back();
    return s;
}

std::vector<int> parseList(const char* s) {
    std::vector<int> v;
    while (*s) {
        v.push_back(std::atoi(s));
        while (*s && *s != ',')
            ++s;
        if (*s == ',') ++s;
    }
    return v;
}

} // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    int runs = 5, worldSize = 100000;
    std::string tables = "edit,gestures,live";
    std::vector<int> sizes = {10000, 100000, 250000}, steps = {1000, 10000, 100000};
    for (int i = 1; i < argc; ++i) {
        if (!std::strcmp(argv[i], "--runs") && i + 1 < argc) runs = std::max(1, std::atoi(argv[++i]));
        if (!std::strcmp(argv[i], "--sizes") && i + 1 < argc) sizes = parseList(argv[++i]);
        if (!std::strcmp(argv[i], "--steps") && i + 1 < argc) steps = parseList(argv[++i]);
        if (!std::strcmp(argv[i], "--world") && i + 1 < argc) worldSize = std::max(1, std::atoi(argv[++i]));
        if (!std::strcmp(argv[i], "--tables") && i + 1 < argc) tables = argv[++i];
    }
    QApplication app(argc, argv);
    BenchHost host;
    QWidget top;
    top.setGeometry(0, 0, 1280, 960);
    frmPicWins views(host, &top);
    views.setGeometry(0, 0, 1280, 960);
    host.views = &views;
    SelectionModel model(host);
    setSelectionModel(&model);
    InstallModellingActions();
    top.show();
    QCoreApplication::processEvents();

    std::printf("medians of %d runs, wall ms (processor ms of the thread); load average %s\n\n", runs,
                loadAverage().c_str());
    std::printf("%8s %18s %18s %18s %18s %18s\n", "size", "weld all points", "delete all pols", "its undo",
                "triangulate", "detach all pols");
    if (tables.find("edit") == std::string::npos) sizes.clear();
    for (int n : sizes) {
        std::vector<Timing> weld, del, undel, tri, det;
        for (int r = 0; r < runs; ++r) {
            // Weld: n points, a quarter of as many quads; the corners of neighbours coincide after a nudge.
            int g = buildSheet(host, n / 4, int(std::sqrt(n / 4.0)) + 1, 500, 500);
            views.ResetCameras();
            startEditing(host, g, SelectMode::Point);
            std::vector<int> pts;
            for (int p : polygonsOf(g))
                for (int pt = ZELMAR_polygon_get_first_point(p); pt; pt = ZELMAR_point_get_next_point(pt))
                    pts.push_back(pt);
            Sel().SelPts.Assign(pts);
            weld.push_back(timeMs([] { EditGeometry::cmdWeld_Click(QStringLiteral("0.001")); }));
            // Delete, undo, triangulate, detach: n quads.
            g = buildSheet(host, n, int(std::sqrt(double(n))) + 1, 500, 500);
            startEditing(host, g, SelectMode::Polygon);
            selectPolygons(polygonsOf(g));
            del.push_back(timeMs([] { EditGeometry::cmdDeletePol_Click(); }));
            undel.push_back(timeMs([&] { mnuUndo_Click(host.stack, undoHost()); }));
            tri.push_back(timeMs([] { EditGeometry::cmdTriangulate_Click(); }));
            mnuUndo_Click(host.stack, undoHost());
            startEditing(host, g, SelectMode::Polygon);
            selectPolygons(polygonsOf(g));
            det.push_back(timeMs([] { EditGeometry::cmdDetachPols_Click(); }));
            host.stack.Reset();
        }
        std::printf("%8d %18s %18s %18s %18s %18s\n", n, cell(weld), cell(del), cell(undel), cell(tri), cell(det));
    }

    std::printf("\n%8s %18s %18s %18s %18s %18s\n", "selected", "extrude press", "extrude step", "bevel step", "cut",
                "then other views");
    for (int s : tables.find("gestures") == std::string::npos ? std::vector<int>{} : steps) {
        std::vector<Timing> press, step, bevel, cut, later;
        for (int r = 0; r < runs; ++r) {
            // A strip of s quads in one row, seen whole from the top: the cut runs along it.
            const int g = buildSheet(host, s, s, 1000, 20);
            views.ResetCameras();
            views.ActiveWin = 0;
            views.ZoomExtentSingle(0);
            startEditing(host, g, SelectMode::Polygon);
            selectPolygons(polygonsOf(g));
            mdlExtrude& x = mdlExtrude::Instance();
            press.push_back(timeMs([&] { x.updwnExtBvl_MouseDown(0); }));
            double v = 0;
            // The live step without the repaint: what updwnExtBvl_Change does before UpdateCameras. The
            // first step of a gesture is not timed (it lays out the gesture's sets), the next ones are: each
            // is one sample, as a single step is too short to time alone on a shared machine.
            x.LiveStep(0, v += 3);
            for (int k = 0; k < kStepsTimed; ++k)
                step.push_back(timeMs([&] { x.LiveStep(0, v += 3); }));
            x.updwnExtBvl_MouseUp(0, v);
            x.updwnExtBvl_MouseDown(1);
            double f = 0.95;
            x.LiveStep(1, f);
            for (int k = 0; k < kStepsTimed; ++k)
                bevel.push_back(timeMs([&] { x.LiveStep(1, f -= 0.01); }));
            x.updwnExtBvl_MouseUp(1, f);
            // Cut the top faces along the middle of the strip.
            selectPolygons(Sel().SelPols.ToVector());
            const double a[3] = {-600, 0, v}, b[3] = {600, 0, v};
            ZELMAR_camera_set_current(views.ViewCams(0).CamHandle, views.PicWindow(0)->Target());
            int pa[2], pb[2];
            ZELMAR_engine_3D_point_to_2D(a, pa);
            ZELMAR_engine_3D_point_to_2D(b, pb);
            mdlCutPols& c = mdlCutPols::Instance();
            c.CutMouseDown(pa[0], pa[1]);
            cut.push_back(timeMs([&] { c.CutMouseUp(pb[0], pb[1]); }));
            // The views the cut leaves to the next turn of the event loop.
            later.push_back(timeMs([] { QCoreApplication::processEvents(); }));
            host.stack.Reset();
        }
        std::printf("%8d %18s %18s %18s %18s %18s   (%d halves)\n", s, cell(press), cell(step), cell(bevel), cell(cut),
                    cell(later), int(mdlCutPols::Instance().CutAddedPols.size()));
    }

    // A live extrude step on part of a larger world, then the repaint of the active (perspective) view at
    // 800 x 600: the selected quads are the first rows of the terrain.
    std::printf("\nworld of %d quads in one group, the active view at 800 x 600\n", worldSize);
    std::printf("%8s %18s %18s\n", "selected", "extrude step", "step + repaint");
    for (int s : steps) {
        if (s > worldSize || tables.find("live") == std::string::npos) continue;
        std::vector<Timing> step, paint;
        for (int r = 0; r < runs; ++r) {
            ZELMAR_engine_close();
            host.root = ZELMAR_group_create("the_world");
            const int g = ZELMAR_group_create("Terrain");
            ZELMAR_group_set_father_group(g, host.root);
            bench::addTerrainQuads(g, worldSize, 1000, bench::terrainColour);
            for (int i = 0; i < 4; ++i)
                views.SetViewportCamera(i, ZELMAR_camera_create(("View" + std::to_string(i)).c_str()));
            views.ResetCameras();
            views.ActiveWin = 2;
            if (!views.WindowMaximised()) views.ToggleWindowMinMax();
            picWindow* w = views.PicWindow(2);
            const int extraW = views.width() - w->width(), extraH = views.height() - w->height();
            views.setGeometry(0, 0, 800 + extraW, 600 + extraH);
            top.resize(800 + extraW, 600 + extraH);
            QCoreApplication::processEvents();
            views.picWinsResize();
            startEditing(host, g, SelectMode::Polygon);
            std::vector<int> pols = polygonsOf(g);
            pols.resize(size_t(s));
            selectPolygons(pols);
            mdlExtrude& x = mdlExtrude::Instance();
            x.updwnExtBvl_MouseDown(0);
            views.UpdateCamerasSingle(2);
            double v = 0;
            x.LiveStep(0, v += 3);
            views.UpdateCamerasSingle(2);
            for (int k = 0; k < kStepsTimed; ++k) {
                step.push_back(timeMs([&] { x.LiveStep(0, v += 3); }));
                views.UpdateCamerasSingle(2);
            }
            for (int k = 0; k < kPaintsTimed; ++k)
                paint.push_back(timeMs([&] {
                    x.LiveStep(0, v += 3);
                    views.UpdateCamerasSingle(2);
                }));
            x.updwnExtBvl_MouseUp(0, v);
            host.stack.Reset();
        }
        std::printf("%8d %18s %18s\n", s, cell(step), cell(paint));
    }
    std::printf("\nload average %s\n", loadAverage().c_str());
    setSelectionModel(nullptr);
    WeldTable().Clear();
    Sel().Clear();
    ZELMAR_engine_close();
    return 0;
}
