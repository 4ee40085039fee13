// Shared set-up of the viewport tests: an offscreen QApplication, a scripted input state, a small world
// built through the engine's C API, and a host window that embeds the viewports the way the main window
// does.
#pragma once
#include "../support/OffscreenApp.h"
#include "frame/InputState.h"
#include "frame/Settings.h"
#include "view/ViewportHost.h"
#include "view/camera.h"
#include "view/frmPicWins.h"
#include "view/picWindow.h"

#include <QApplication>
#include <QMouseEvent>
#include <QTemporaryDir>
#include <QWheelEvent>
#include <gtest/gtest.h>
#include <memory>
#include <vector>
#include <zelmar/zelmar.h>

namespace vexil::test {

inline QApplication& app() {
    return offscreenApp();
}

// A main window stand-in: records what the viewports ask and tell.
class TestHost : public ViewportHost {
  public:
    bool worldOpen = true;
    int rootGrp = 0;
    double worldSize = 400;
    int selType = 0, selEntity = 0;
    SelectMode mode = SelectMode::Entity;
    bool pluginStopsMouseUp = false;
    std::vector<QString> status3;
    int selectObjects = 0, selectPoints = 0, contextMenus = 0, multipleSelection = 0, gizmoMoves = 0;
    int gizmoDowns = 0, gizmoUps = 0, processEventsCalls = 0, plugInPaints = 0;
    std::function<void()> onProcessEvents;

    bool WorldOpen() override { return worldOpen; }
    int RootGrp() override { return rootGrp; }
    double WorldSize() override { return worldSize; }
    int CurrSelEntityType() override { return selType; }
    int CurrSelEntity() override { return selEntity; }
    SelectMode CurrentSelectMode() override { return mode; }
    void SetStatusPanel(int panel, const QString& text) override {
        if (panel == 3) status3.push_back(text);
    }
    void ProcessEvents() override {
        ++processEventsCalls;
        if (onProcessEvents) onProcessEvents();
        QCoreApplication::processEvents();
    }
    bool Plugin_MouseUp(int, int, int, int, int) override { return pluginStopsMouseUp; }
    void Plugin_Paint(int, QPainter&) override { ++plugInPaints; }
    void Gizmo_MouseDown(int, int, int, int) override { ++gizmoDowns; }
    void Gizmo_MouseUp(int, int, int, int) override { ++gizmoUps; }
    void Gizmo_MouseMoveRotateScale(int, int, int, int) override { ++gizmoMoves; }
    void MultipleSelection(int button, int, int) override {
        if (button == BtnLeft) ++multipleSelection;
    }
    void SelectMultipleObjects() override { ++selectObjects; }
    void SelectMultiplePoints() override { ++selectPoints; }
    void ShowContextMenu(int, int) override { ++contextMenus; }
};

// A world of one box (edge `size`, centred on `centre`) under a root group, polygons facing outwards.
struct TestWorld {
    int root = 0, box = 0;
    std::vector<int> faces;
    std::array<int, 4> cams{};

    void build(double size = 200, const double centre[3] = nullptr) {
        ZELMAR_engine_close();
        root = ZELMAR_group_create("Root");
        box = ZELMAR_group_create("Box");
        ZELMAR_group_set_father_group(box, root);
        const double c0[3] = {0, 0, 0};
        const double* c = centre ? centre : c0;
        const double h = size / 2;
        // Each face: four corners counter-clockwise seen from outside, put in backwards (fronts run clockwise).
        const double f[6][4][3] = {
            {{h, -h, -h}, {h, h, -h}, {h, h, h}, {h, -h, h}},     // +x
            {{-h, h, -h}, {-h, -h, -h}, {-h, -h, h}, {-h, h, h}}, // -x
            {{h, h, -h}, {-h, h, -h}, {-h, h, h}, {h, h, h}},     // +y
            {{-h, -h, -h}, {h, -h, -h}, {h, -h, h}, {-h, -h, h}}, // -y
            {{-h, -h, h}, {h, -h, h}, {h, h, h}, {-h, h, h}},     // +z
            {{-h, h, -h}, {h, h, -h}, {h, -h, -h}, {-h, -h, -h}}, // -z
        };
        const int colours[6][3] = {{200, 60, 60},  {60, 200, 60},  {60, 60, 200},
                                   {200, 200, 60}, {60, 200, 200}, {200, 60, 200}};
        faces.clear();
        for (int k = 0; k < 6; ++k) {
            const int p = ZELMAR_polygon_create();
            for (int v = 3; v >= 0; --v) {
                const double vert[6] = {f[k][v][0] + c[0], f[k][v][1] + c[1], f[k][v][2] + c[2], 0, 0, 100};
                ZELMAR_polygon_add_point(p, vert);
            }
            ZELMAR_polygon_set_color_fill(p, colours[k][0], colours[k][1], colours[k][2]);
            ZELMAR_polygon_set_orientation(p, 1);
            ZELMAR_polygon_set_group(p, box);
            ZELMAR_engine_add_polygon(p);
            faces.push_back(p);
        }
        for (int i = 0; i < 4; ++i)
            cams[i] = ZELMAR_camera_create(("View" + std::to_string(i)).c_str());
    }
};

// The viewports in a 640 x 480 top-level window at (50, 50), with a world open and the standard views.
class ViewFixture : public ::testing::Test {
  protected:
    void SetUp() override {
        app();
        ASSERT_TRUE(m_settings.isValid());
        SettingsStore::setLocation(m_settings.path());
        fake = std::make_unique<FakeInputState>();
        world.build();
        host.rootGrp = world.root;
        top = std::make_unique<QWidget>();
        top->setGeometry(50, 50, 640, 480);
        views = new frmPicWins(host, top.get());
        views->setGeometry(0, 0, 640, 480);
        for (int i = 0; i < 4; ++i)
            views->SetViewportCamera(i, world.cams[i]);
        top->show();
        QCoreApplication::processEvents();
        views->ResetCameras();
    }
    void TearDown() override {
        top.reset();
        fake.reset();
        ZELMAR_engine_close();
    }

    picWindow* win(int i) { return views->PicWindow(i); }
    QPoint global(int i, QPoint p) { return win(i)->mapToGlobal(p); }

    // Real mouse events on a picture window; the cursor of the input seam follows them.
    void mouse(int i, QEvent::Type type, QPoint p, Qt::MouseButton b, Qt::MouseButtons held,
               Qt::KeyboardModifiers m = Qt::NoModifier) {
        fake->setCursorPos(global(i, p));
        QMouseEvent e(type, QPointF(p), QPointF(global(i, p)), b, held, m);
        QApplication::sendEvent(win(i), &e);
    }
    void press(int i, QPoint p, Qt::MouseButton b, Qt::KeyboardModifiers m = Qt::NoModifier) {
        mouse(i, QEvent::MouseButtonPress, p, b, b, m);
    }
    void move(int i, QPoint p, Qt::MouseButtons held, Qt::KeyboardModifiers m = Qt::NoModifier) {
        mouse(i, QEvent::MouseMove, p, Qt::NoButton, held, m);
    }
    void release(int i, QPoint p, Qt::MouseButton b, Qt::KeyboardModifiers m = Qt::NoModifier) {
        mouse(i, QEvent::MouseButtonRelease, p, b, Qt::NoButton, m);
    }
    // A drag in `steps` moves; the release happens where the last move was, so no flick is left.
    void drag(int i, QPoint from, QPoint to, Qt::MouseButton b, int steps = 4,
              Qt::KeyboardModifiers m = Qt::NoModifier) {
        press(i, from, b, m);
        for (int s = 1; s <= steps; ++s)
            move(i, from + (to - from) * s / steps, b, m);
        release(i, to, b, m);
    }
    QTemporaryDir m_settings;
    std::unique_ptr<FakeInputState> fake;
    TestWorld world;
    TestHost host;
    std::unique_ptr<QWidget> top;
    frmPicWins* views = nullptr;
};

} // namespace vexil::test
