// The materials' speed requirements, each the whole command as the user triggers it (offscreen widgets):
//   populate   the texture list with 2,000 bitmaps                                   (< 200 ms)
//   group      Apply to Group of a bitmap on a 100,000-polygon group, with its undo   (< 50 ms)
//   planar     planar mapping of 100,000 selected polygons, with its undo record      (< 100 ms)
//   update     Update of a bitmap used by 100,000 polygons                            (< 100 ms)
//   drag       one drag step of 10,000 selected coordinates in the texture map editor,
//              at 1024 x 768, moved and repainted to the screen                       (< 16 ms)
//   open       the texture map editor opened and first painted on 100,000 polygons   (< 300 ms)
//
//   materials_bench [--runs N] [--only NAME]
//
// Each figure is the median of N runs (default 5; the drag: of 50 steps). Wall and processor time are printed.
#include "materials/MaterialsActions.h"
#include "materials/MaterialsHost.h"
#include "materials/SurfaceCommands.h"
#include "materials/TextureMapPicture.h"
#include "materials/TexturePanel.h"
#include "materials/frmTextureMapping.h"
#include "frame/Dialogs.h"
#include "frame/InputState.h"
#include "selection/SelectionState.h"
#include "undo/ActionUndoRedo_Stack.h"

#include <QApplication>
#include <QDir>
#include <QTemporaryDir>
#include <QTreeWidget>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <functional>
#include <string>
#include <vector>
#include <zelmar/zelmar.h>
#include "../BenchClock.h"

using namespace vexil;

namespace {

class BenchHost : public MaterialsHost {
  public:
    ActionUndoRedo_Stack stack{"20"};
    QString folder;
    ActionUndoRedo_Stack* UndoStack() override { return &stack; }
    QString BitmapFolder() override { return folder; }
};

int g_runs = 5;

void report(const char* name, const char* what, std::vector<double> wall, std::vector<double> cpu, double limit) {
    const double w = bench::median(wall), c = bench::median(cpu);
    std::printf("%-9s %-62s median %8.2f ms wall, %8.2f ms cpu (limit %g ms)%s\n", name, what, w, c, limit,
                w < limit ? "" : "  OVER");
    std::fflush(stdout);
}

// Times `body` g_runs times, with `prepare` (not timed) before each run.
void measure(const char* name, const char* what, double limit, const std::function<void()>& prepare,
             const std::function<void()>& body) {
    std::vector<double> wall, cpu;
    for (int r = 0; r < g_runs; ++r) {
        prepare();
        const double w0 = bench::wallMs(), c0 = bench::processCpuMs();
        body();
        wall.push_back(bench::wallMs() - w0);
        cpu.push_back(bench::processCpuMs() - c0);
    }
    report(name, what, wall, cpu, limit);
}

std::string writeBmp(const QString& path, int w, int h, unsigned seed) {
    std::vector<unsigned char> rgba(size_t(w) * size_t(h) * 4);
    for (size_t i = 0; i < rgba.size(); ++i) rgba[i] = (i % 4 == 3) ? 255 : static_cast<unsigned char>(i * 7 + seed);
    const std::string file = path.toStdString();
    ZELMAR_utilities_save_bitmap(rgba.data(), w, h, file.c_str());
    return file;
}

// A root and one group of `quads` quads (a sheet in the plane z = 0), with bitmap coordinates of a grid.
int buildSheet(int quads, int& group) {
    ZELMAR_engine_close();
    Sel().Clear();
    const int root = ZELMAR_group_create("the_world");
    group = ZELMAR_group_create("Sheet");
    ZELMAR_group_set_father_group(group, root);
    const int n = int(std::ceil(std::sqrt(double(quads))));
    const double step = 500.0 / n;
    for (int q = 0; q < quads; ++q) {
        const int i = q % n, j = q / n;
        const int p = ZELMAR_polygon_create();
        const double x0 = i * step - 250, y0 = j * step - 250, e = step * 0.8;
        const double c[4][2] = {{x0, y0}, {x0 + e, y0}, {x0 + e, y0 + e}, {x0, y0 + e}};
        for (auto& k : c) {
            const double v[6] = {k[0], k[1], 0, (k[0] + 250) / 500, (k[1] + 250) / 500, 100};
            ZELMAR_polygon_add_point(p, v);
        }
        ZELMAR_polygon_set_group(p, group);
        ZELMAR_engine_add_polygon(p);
    }
    return root;
}

void selectAll(int group) {
    Sel().CurrSelEntityType = 1;
    Sel().CurrSelEntity = group;
    std::vector<int> pols;
    for (int p = ZELMAR_group_get_first_polygon(group); p; p = ZELMAR_group_get_next_polygon(p)) pols.push_back(p);
    Sel().SelPols.Assign(pols);
}

bool wanted(const char* only, const char* name) { return !only || std::strcmp(only, name) == 0; }

} // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    const char* only = nullptr;
    for (int i = 1; i < argc; ++i) {
        if (!std::strcmp(argv[i], "--runs") && i + 1 < argc) g_runs = std::max(1, std::atoi(argv[++i]));
        if (!std::strcmp(argv[i], "--only") && i + 1 < argc) only = argv[++i];
    }
    QTemporaryDir dir;
    BenchHost host;
    host.folder = dir.path();
    setMaterialsHost(&host);
    RegisterMaterialsActions();
    ScriptedDialogs dialogs; // Update asks nothing, but nothing may block
    FakeInputState keys;

    if (wanted(only, "populate")) {
        ZELMAR_engine_close();
        for (int i = 0; i < 2000; ++i)
            ZELMAR_bitmap_load(writeBmp(dir.path() + QStringLiteral("/b%1.bmp").arg(i), 8, 8, unsigned(i)).c_str(), -1);
        TexturePanel panel;
        measure("populate", "texture list with 2,000 bitmaps", 200, [] {}, [&] { panel.trwTextures_Populate(); });
    }

    int group = 0;
    const int bitmap = [&] {
        buildSheet(100000, group);
        return ZELMAR_bitmap_load(writeBmp(dir.path() + QStringLiteral("/wall.bmp"), 64, 64, 3).c_str(), -1);
    }();
    if (wanted(only, "group")) {
        Sel().CurrSelEntityType = 1;
        Sel().CurrSelEntity = group;
        measure("group", "Apply to Group on 100,000 polygons", 50, [&] { ZELMAR_group_set_color(group, 9, 9, 9); },
                [&] { ApplyFillToSelection(bitmap, false, true); });
    }
    if (wanted(only, "planar")) {
        selectAll(group);
        measure("planar", "planar mapping of 100,000 selected polygons", 100, [] {}, [&] { PlanarMapSelection(2); });
    }
    if (wanted(only, "update")) {
        ZELMAR_group_set_bitmap(group, bitmap);
        TexturePanel panel;
        int current = bitmap;
        measure(
            "update", "Update of a bitmap used by 100,000 polygons", 100,
            [&] {
                panel.trwTextures_Populate();
                panel.trwTextures->setCurrentItem(panel.Node(QStringLiteral("Map%1").arg(current)));
            },
            [&] {
                panel.mnuTextureUpdate_Click();
                current = ZELMAR_group_get_first_polygon(group) ? ZELMAR_polygon_get_bitmap_handle(ZELMAR_group_get_first_polygon(group)) : 0;
            });
    }
    if (wanted(only, "open")) {
        ZELMAR_group_set_bitmap(group, ZELMAR_bitmap_get_first_bitmap());
        Sel().CurrSelEntityType = 1;
        Sel().CurrSelEntity = group;
        Sel().SelPols.Clear();
        measure("open", "texture map editor opened on 100,000 polygons, first paint", 300, [] {}, [&] {
            frmTextureMapping editor;
            editor.resize(1024, 800);
            editor.show();
            QCoreApplication::processEvents();
            editor.PicMain->repaint();
        });
    }
    if (wanted(only, "drag")) {
        int small = 0;
        buildSheet(2500, small); // 10,000 coordinates
        const int wall = ZELMAR_bitmap_load(writeBmp(dir.path() + QStringLiteral("/wall2.bmp"), 256, 256, 5).c_str(), -1);
        ZELMAR_group_set_bitmap(small, wall);
        Sel().CurrSelEntityType = 1;
        Sel().CurrSelEntity = small;
        Sel().SelPols.Clear();
        frmTextureMapping editor;
        editor.show();
        editor.PicMain->setFixedSize(1024, 768);
        editor.adjustSize();
        QCoreApplication::processEvents();
        editor.SetSelPts_And_OwnerPols([&] {
            std::vector<PointOfPolygon> all;
            for (int p = ZELMAR_group_get_first_polygon(small); p; p = ZELMAR_group_get_next_polygon(p))
                for (int pt = ZELMAR_polygon_get_first_point(p); pt; pt = ZELMAR_point_get_next_point(pt)) all.push_back({pt, p});
            return all;
        }());
        editor.SetToolMode(frmTextureMapping::ToolMove);
        editor.OverSelection = true;
        keys.setCursorPos(QPoint(500, 400));
        editor.PicMain_MouseDown(Qt::LeftButton, QPoint(500, 400));
        std::vector<double> wall_, cpu;
        for (int s = 0; s < 50; ++s) {
            keys.setCursorPos(QPoint(500 + (s % 2 ? -3 : 3), 400));
            const double w0 = bench::wallMs(), c0 = bench::processCpuMs();
            editor.MonitorMouse(true, QPoint(500, 400));
            editor.PicMain->repaint();
            wall_.push_back(bench::wallMs() - w0);
            cpu.push_back(bench::processCpuMs() - c0);
        }
        editor.PicMain_MouseUp(Qt::LeftButton, QPoint(500, 400));
        std::printf("          (picture %d x %d, %zu coordinates selected)\n", editor.PicMain->width(),
                    editor.PicMain->height(), editor.SelPts.size());
        report("drag", "drag step of 10,000 selected coordinates at 1024 x 768", wall_, cpu, 16);
    }
    setMaterialsHost(nullptr);
    ZELMAR_engine_close();
    return 0;
}
