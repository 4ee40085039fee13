// Shared set-up of the materials tests: an offscreen application, scripted dialogs and input, a host with its
// own undo stack and bitmap folder, and small worlds built through the engine's C API (boxes of quads, bitmap
// files written into a scratch folder).
#pragma once
#include "../support/OffscreenApp.h"
#include "frame/Dialogs.h"
#include "frame/InputState.h"
#include "frame/Locale.h"
#include "frame/Settings.h"
#include "materials/MaterialsActions.h"
#include "materials/MaterialsHost.h"
#include "selection/EntityActions.h"
#include "selection/SelectionState.h"
#include "undo/ActionUndoRedo_Stack.h"
#include "undo/UndoHost.h"

#include <QDir>
#include <QImage>
#include <QTemporaryDir>
#include <array>
#include <cstring>
#include <fstream>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>
#include <zelmar/zelmar.h>

namespace vexil::test {

// The main window as the materials see it: an undo stack, a bitmap folder, counters of what was asked.
class MatHost : public MaterialsHost {
  public:
    std::unique_ptr<ActionUndoRedo_Stack> stack = std::make_unique<ActionUndoRedo_Stack>("1000");
    QString folder;
    bool polygonLevel = true, textureTab = true;
    int cameraUpdates = 0, undos = 0, redos = 0, selectionChanges = 0;
    std::vector<int> removedBackgrounds;

    ActionUndoRedo_Stack* UndoStack() override { return stack.get(); }
    void UpdateCameras() override { ++cameraUpdates; }
    QString BitmapFolder() override { return folder; }
    bool TextureTabShowing() override { return textureTab; }
    bool PolygonEditLevel() override { return polygonLevel; }
    void RemoveBackgroundNode(int b) override { removedBackgrounds.push_back(b); }
    void MainUndo() override {
        ++undos;
        mnuUndo_Click(*stack, undoHost());
    }
    void MainRedo() override {
        ++redos;
        mnuRedo_Click(*stack, undoHost());
    }
    void SelectionChanged() override { ++selectionChanges; }
    QString RenameGroup(int group, const QString& name) override {
        ZELMAR_group_set_name(group, name.toLocal8Bit().constData());
        return name;
    }
};

// A quad of four points in ring order, front towards the clockwise side; `uv` per corner.
inline int addQuad(int group, const std::array<std::array<double, 3>, 4>& corners) {
    const int p = ZELMAR_polygon_create();
    for (const auto& c : corners) {
        const double v[6] = {c[0], c[1], c[2], 0, 0, 100};
        ZELMAR_polygon_add_point(p, v);
    }
    ZELMAR_polygon_set_group(p, group);
    ZELMAR_engine_add_polygon(p);
    return p;
}

// An axis-aligned box of six quads facing outwards, centred on c, edge `size`.
inline std::vector<int> addBox(int g, const std::array<double, 3>& c, double size) {
    const double h = size / 2;
    const double f[6][4][3] = {
        {{h, -h, -h}, {h, h, -h}, {h, h, h}, {h, -h, h}},     {{-h, h, -h}, {-h, -h, -h}, {-h, -h, h}, {-h, h, h}},
        {{h, h, -h}, {-h, h, -h}, {-h, h, h}, {h, h, h}},     {{-h, -h, -h}, {h, -h, -h}, {h, -h, h}, {-h, -h, h}},
        {{-h, -h, h}, {h, -h, h}, {h, h, h}, {-h, h, h}},     {{-h, h, -h}, {h, h, -h}, {h, -h, -h}, {-h, -h, -h}},
    };
    std::vector<int> pols;
    for (int k = 0; k < 6; ++k) {
        std::array<std::array<double, 3>, 4> ring;
        for (int v = 0; v < 4; ++v)
            for (int i = 0; i < 3; ++i) ring[size_t(v)][size_t(i)] = f[k][3 - v][i] + c[size_t(i)];
        const int p = addQuad(g, ring);
        ZELMAR_polygon_set_color_fill(p, 60 + 30 * k, 200 - 20 * k, 120);
        ZELMAR_polygon_set_orientation(p, 1);
        pols.push_back(p);
    }
    return pols;
}

inline int makeGroup(const char* name, int father) {
    const int g = ZELMAR_group_create(name);
    if (father) ZELMAR_group_set_father_group(g, father);
    return g;
}

// A bitmap file of w x h pixels with a colour per pixel (0xRRGGBB), by the extension's kind.
inline std::string writeBitmap(const QString& path, int w, int h, unsigned (*pixel)(int x, int y)) {
    std::vector<unsigned char> rgba(size_t(w) * size_t(h) * 4);
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) {
            const unsigned c = pixel(x, y);
            unsigned char* o = &rgba[(size_t(y) * size_t(w) + size_t(x)) * 4];
            o[0] = (c >> 16) & 0xFF, o[1] = (c >> 8) & 0xFF, o[2] = c & 0xFF, o[3] = 255;
        }
    const std::string file = path.toStdString();
    if (path.endsWith(QLatin1String(".png"))) {
        QImage img(rgba.data(), w, h, w * 4, QImage::Format_RGBA8888);
        EXPECT_TRUE(img.save(path, "PNG"));
    } else {
        EXPECT_EQ(ZELMAR_utilities_save_bitmap(rgba.data(), w, h, file.c_str()), 1) << ZELMAR_engine_get_last_error();
    }
    return file;
}

inline unsigned checker(int x, int y) { return ((x / 4 + y / 4) % 2) ? 0xE04030 : 0x30A0E0; }
inline unsigned stripes(int x, int) { return (x / 2) % 2 ? 0x20C040 : 0xF0F0F0; }

// The fixture: engine empty, a root group, dialogs and keys scripted, actions registered, a scratch folder.
class MaterialsTest : public ::testing::Test {
  protected:
    void SetUp() override {
        offscreenApp();
        ASSERT_TRUE(dir.isValid());
        SettingsStore::setLocation(dir.path());
        QDir(dir.path()).mkpath(QStringLiteral("bitmaps"));
        host.folder = dir.path() + QStringLiteral("/bitmaps");
        setMaterialsHost(&host);
        RegisterEntityActions();
        RegisterMaterialsActions();
        ZELMAR_engine_close();
        Sel().Clear();
        root = ZELMAR_group_create("the_world");
    }
    void TearDown() override {
        host.stack.reset();
        setMaterialsHost(nullptr);
        Sel().Clear();
        ZELMAR_engine_close();
    }
    QString file(const char* name) const { return host.folder + QLatin1Char('/') + QString::fromLatin1(name); }
    // Makes `group` current with these polygons selected.
    void select(int group, const std::vector<int>& polygons = {}) {
        Sel().CurrSelEntityType = 1;
        Sel().CurrSelEntity = group;
        Sel().SelPols.Assign(polygons);
    }
    int pushes() const { return host.stack->UBound(); }
    bool undo() { return mnuUndo_Click(*host.stack, undoHost()); }
    bool redo() { return mnuRedo_Click(*host.stack, undoHost()); }
    static std::array<double, 2> uvOf(int point) {
        std::array<double, 2> uv{};
        ZELMAR_point_get_bitmap_xy(point, uv.data());
        return uv;
    }
    static std::vector<int> pointsOf(int polygon) {
        std::vector<int> out;
        for (int p = ZELMAR_polygon_get_first_point(polygon); p; p = ZELMAR_point_get_next_point(p)) out.push_back(p);
        return out;
    }

    QTemporaryDir dir;
    ScriptedDialogs dialogs;
    FakeInputState keys;
    MatHost host;
    int root = 0;
};

} // namespace vexil::test
