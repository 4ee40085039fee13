// Shared set-up of the gizmo tests: the real viewports and selection model over a world of primitives,
// driven with mouse events as a user drives them; a scripted input state holds keys and the cursor.
#pragma once
#include "../support/OffscreenApp.h"
#include "frame/InputState.h"
#include "frame/Preferences.h"
#include "frame/Settings.h"
#include "builders/Primitives.h"
#include "undo/ActionUndoRedo_Stack.h"
#include "undo/UndoHost.h"
#include "selection/SelectionModel.h"
#include "gizmo/ViewGizmos.h"
#include "selection/WeldedPoints.h"
#include "view/frmPicWins.h"
#include "view/picWindow.h"

#include <QApplication>
#include <QMouseEvent>
#include <QTemporaryDir>
#include <cmath>
#include <gtest/gtest.h>
#include <memory>
#include <vector>
#include <zelmar/zelmar.h>

namespace vexil::test {

inline QApplication& gizmoApp() {
    return offscreenApp();
}

// The main window's part: hosts of the viewports and of the selection, the gizmos, one undo stack.
class GizmoHost : public ViewportHost, public SelectionHost {
  public:
    ActionUndoRedo_Stack stack;
    frmPicWins* views = nullptr;
    ViewGizmos* gizmos = nullptr;
    SelectionModel* model = nullptr;
    int root = 0;
    SelectMode mode = SelectMode::Entity;
    int tab = 1;
    std::vector<QString> status3;

    bool WorldOpen() override { return true; }
    int RootGrp() override { return root; }
    double WorldSize() override { return 400; }
    SelectMode CurrentSelectMode() override { return mode; }
    // ViewportHost
    int CurrSelEntityType() override { return Sel().CurrSelEntityType; }
    int CurrSelEntity() override { return Sel().CurrSelEntity; }
    int SelPtsCount() override { return Sel().SelPts.Count(); }
    int SelPolsCount() override { return Sel().SelPols.Count(); }
    void SetStatusPanel(int panel, const QString& text) override {
        if (panel == 3) status3.push_back(text);
    }
    void DrawGizmo(int index, QPainter& p) override {
        if (gizmos) gizmos->DrawGizmo(index, p);
    }
    void Gizmo_MouseDown(int index, int button, int x, int y) override {
        gizmos->MouseDown(index, button, x, y);
    }
    void Gizmo_MouseUp(int index, int button, int x, int y) override { gizmos->MouseUp(index, button, x, y); }
    void Gizmo_MouseMoveRotateScale(int index, int button, int x, int y) override {
        gizmos->MouseMoveRotateScale(index, button, x, y);
    }
    void UpdateTransformGizmo(int button, int x, int y) override {
        gizmos->UpdateTransformGizmo(button, x, y);
    }
    void MultipleSelection(int button, int x, int y) override { model->MultipleSelection(button, x, y); }
    void SelectMultipleObjects() override { model->SelectEntitiesAtMouseUp(); }
    void SelectMultiplePols() override { model->SelectMultiplePols(); }
    void SelectMultiplePoints() override { model->SelectMultiplePoints(); }
    // SelectionHost
    ActionUndoRedo_Stack& UndoStack() override { return stack; }
    int WorkspaceTab() override { return tab; }
    frmPicWins* Views() override { return views; }
};

class GizmoFixture : public ::testing::Test {
  protected:
    void SetUp() override {
        gizmoApp();
        ASSERT_TRUE(m_settings.isValid());
        SettingsStore::setLocation(m_settings.path());
        Prefs() = Preferences{};
        fake = std::make_unique<FakeInputState>();
        ZELMAR_engine_close();
        Sel().Clear();
        WeldTable().Clear();
        host.root = ZELMAR_group_create("the_world");
        box = CreateBox().Create(100, 100, 100, 1, 1, 1, {0, 0, 0}, host.root);
        for (int i = 0; i < 4; ++i)
            cams[i] = ZELMAR_camera_create(("View" + std::to_string(i)).c_str());
        top = std::make_unique<QWidget>();
        top->setGeometry(50, 50, 640, 480);
        host.views = views = new frmPicWins(host, top.get());
        views->setGeometry(0, 0, 640, 480);
        for (int i = 0; i < 4; ++i)
            views->SetViewportCamera(i, cams[i]);
        model = std::make_unique<SelectionModel>(host);
        host.model = model.get();
        setSelectionModel(model.get());
        gizmos = std::make_unique<ViewGizmos>(*views, host.stack);
        host.gizmos = gizmos.get();
        top->show();
        QCoreApplication::processEvents();
        views->ResetCameras();
    }
    void TearDown() override {
        host.gizmos = nullptr;
        gizmos.reset();
        setSelectionModel(nullptr);
        host.stack.Reset();
        model.reset();
        top.reset();
        fake.reset();
        Sel().Clear();
        WeldTable().Clear();
        ZELMAR_engine_close();
    }

    picWindow* win(int i) { return views->PicWindow(i); }
    TransformGizmo& gizmo(int i) { return gizmos->Gizmo(i); }
    QPoint global(int i, QPoint p) { return win(i)->mapToGlobal(p); }

    // Mouse events on a picture window; the input seam's cursor and left button follow them.
    void mouse(int i, QEvent::Type type, QPoint p, Qt::MouseButton b, Qt::MouseButtons held,
               Qt::KeyboardModifiers m = Qt::NoModifier) {
        fake->setCursorPos(global(i, p));
        QMouseEvent e(type, QPointF(p), QPointF(global(i, p)), b, held, m);
        QApplication::sendEvent(win(i), &e);
    }
    void press(int i, QPoint p, Qt::KeyboardModifiers m = Qt::NoModifier) {
        fake->press(VkLButton);
        mouse(i, QEvent::MouseButtonPress, p, Qt::LeftButton, Qt::LeftButton, m);
    }
    void hover(int i, QPoint p, Qt::KeyboardModifiers m = Qt::NoModifier) {
        mouse(i, QEvent::MouseMove, p, Qt::NoButton, Qt::NoButton, m);
    }
    void moveHeld(int i, QPoint p, Qt::KeyboardModifiers m = Qt::NoModifier) {
        mouse(i, QEvent::MouseMove, p, Qt::NoButton, Qt::LeftButton, m);
    }
    void release(int i, QPoint p, Qt::KeyboardModifiers m = Qt::NoModifier) {
        mouse(i, QEvent::MouseButtonRelease, p, Qt::LeftButton, Qt::NoButton, m);
        fake->release(VkLButton);
    }
    // Hover, press, `steps` moves to `to`, release there.
    void drag(int i, QPoint from, QPoint to, int steps = 4, Qt::KeyboardModifiers m = Qt::NoModifier) {
        hover(i, from, m);
        press(i, from, m);
        for (int s = 1; s <= steps; ++s)
            moveHeld(i, from + (to - from) * s / steps, m);
        release(i, to, m);
    }
    void click(int i, QPoint p) {
        hover(i, p);
        press(i, p);
        release(i, p);
    }

    // The gizmo of view i placed as it is now; the pixel a share `t` along the handle of `axis`.
    QPoint onHandle(int i, int axis, double t = 0.6) {
        EXPECT_TRUE(gizmo(i).Place());
        const auto& c = gizmo(i).Center2D;
        const auto& tip = axis == 0 ? gizmo(i).TipX : axis == 1 ? gizmo(i).TipY : gizmo(i).TipZ;
        return QPoint(int(std::lround(c[0] + t * (tip[0] - c[0]))),
                      int(std::lround(c[1] + t * (tip[1] - c[1]))));
    }
    // The screen direction of a handle, unit length.
    QPointF handleDir(int i, int axis) {
        gizmo(i).Place();
        const auto& c = gizmo(i).Center2D;
        const auto& tip = axis == 0 ? gizmo(i).TipX : axis == 1 ? gizmo(i).TipY : gizmo(i).TipZ;
        const QPointF d(tip[0] - c[0], tip[1] - c[1]);
        const double len = std::hypot(d.x(), d.y());
        return len > 0 ? d / len : QPointF();
    }
    // The centre of view i's picture.
    QPoint middle(int i) { return QPoint(win(i)->width() / 2, win(i)->height() / 2); }

    std::array<double, 3> location(int group) {
        std::array<double, 3> l{};
        ZELMAR_group_get_location(group, l.data());
        return l;
    }
    std::array<double, 3> dimensions(int group) {
        std::array<double, 3> d{};
        ZELMAR_group_get_dimensions(group, d.data());
        return d;
    }
    // Selects the box by a click in the middle of the top view with the select tool.
    void selectBoxByClick() {
        views->SetToolMode(ToolSelect);
        click(0, middle(0));
        ASSERT_EQ(Sel().CurrSelEntityType, 1);
        ASSERT_EQ(Sel().CurrSelEntity, box);
    }
    bool undo() { return mnuUndo_Click(host.stack, undoHost()); }
    bool redo() { return mnuRedo_Click(host.stack, undoHost()); }

    QTemporaryDir m_settings;
    std::unique_ptr<FakeInputState> fake;
    GizmoHost host;
    std::unique_ptr<QWidget> top;
    frmPicWins* views = nullptr;
    std::unique_ptr<SelectionModel> model;
    std::unique_ptr<ViewGizmos> gizmos;
    int box = 0;
    std::array<int, 4> cams{};
};

} // namespace vexil::test
