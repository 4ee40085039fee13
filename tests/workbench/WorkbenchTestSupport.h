// Shared set-up of the workbench tests: an offscreen application, scripted dialogs and keys, worlds
// built through the engine's C API and the builders, and helpers that drive the real window.
#pragma once
#include "../support/OffscreenApp.h"
#include "MeshData.h"
#include "builders/CreateNewObject.h"
#include "frame/Dialogs.h"
#include "frame/InputState.h"
#include "frame/Locale.h"
#include "workbench/SurfSimView.h"
#include "workbench/formSurfaceSimplification.h"

#include <QApplication>
#include <QCheckBox>
#include <QGroupBox>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QElapsedTimer>
#include <QKeyEvent>
#include <QMouseEvent>
#include <algorithm>
#include <array>
#include <gtest/gtest.h>
#include <memory>
#include <vector>
#include <zelmar/zelmar.h>

namespace vexil::test {

// Lets events run until the condition holds (or 10 s pass); answers the condition.
template <class C> bool waitUntil(C cond, int ms = 10000) {
    QElapsedTimer t;
    t.start();
    while (!cond()) {
        if (t.elapsed() > ms) return false;
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
    }
    return true;
}

// A box of segmented faces with a lid: a thin segmented box resting on it, as a child group.
inline int makeBoxWithLid(int father, int segs = 4) {
    CreateParams body;
    body.kind = PrimitiveKind::Box;
    body.dim = {100, 100, 60};
    body.segs = {segs, segs, segs};
    const int g = CreatePrimitive(body, {0, 0, 0}, father);
    CreateParams lid = body;
    lid.dim = {110, 110, 8};
    lid.segs = {segs, segs, 1};
    CreatePrimitive(lid, {0, 0, 34}, g);
    return g;
}

// A mesh into a group: one polygon per face (turned to the engine's clockwise fronts), points with
// x, y, z, u, v, brightness and normal.
inline int meshToGroup(const simplify_test::MeshData& m, const char* name, int father) {
    const int g = ZELMAR_group_create(name);
    ZELMAR_group_set_father_group(g, father);
    for (const simplify_test::MeshFace& f : m.faces) {
        const int p = ZELMAR_polygon_create();
        for (auto it = f.v.rbegin(); it != f.v.rend(); ++it) {
            const simplify_test::MeshVertex& v = m.vertices[static_cast<std::size_t>(*it)];
            const double vx[6] = {v.xyz[0], v.xyz[1], v.xyz[2], v.uv[0], v.uv[1], v.brightness};
            const int pt = ZELMAR_polygon_add_point(p, vx);
            ZELMAR_point_set_normal(pt, v.normal);
        }
        ZELMAR_polygon_set_group(p, g);
        ZELMAR_engine_add_polygon(p);
        ZELMAR_polygon_set_color_fill(p, f.color[0], f.color[1], f.color[2]);
    }
    return g;
}

// The triangles of a group as sorted corner positions (for comparing two outputs).
inline std::vector<std::array<double, 9>> trianglesOf(int group) {
    std::vector<std::array<double, 9>> tris;
    for (int p = ZELMAR_group_get_first_polygon(group); p != 0; p = ZELMAR_group_get_next_polygon(p)) {
        std::array<double, 9> t{};
        int k = 0;
        for (int pt = ZELMAR_polygon_get_first_point(p); pt != 0 && k < 3; pt = ZELMAR_point_get_next_point(pt), ++k)
            ZELMAR_point_get_xyz(pt, &t[static_cast<std::size_t>(k * 3)]);
        tris.push_back(t);
    }
    std::sort(tris.begin(), tris.end());
    return tris;
}

// A fresh engine world with a root, and the window's helpers.
class WorkbenchTest : public ::testing::Test {
protected:
    void SetUp() override {
        offscreenApp();
        ResetLocaleForTests();
        SetAppLCID(409);
        ZELMAR_engine_close();
        root = ZELMAR_group_create("the_world");
        SurfSimpOutputGroup() = 0;
    }
    void TearDown() override {
        form.reset();
        ZELMAR_engine_close();
    }
    // The window on a group, shown and activated.
    formSurfaceSimplification& open(int group) {
        form = std::make_unique<formSurfaceSimplification>(group);
        form->show();
        EXPECT_TRUE(waitUntil([&] { return form->Activated(); }));
        return *form;
    }
    void keyPress(int key, const QString& text = QString(), Qt::KeyboardModifiers mods = Qt::NoModifier) {
        QKeyEvent press(QEvent::KeyPress, key, mods, text);
        QApplication::sendEvent(form.get(), &press);
        QKeyEvent release(QEvent::KeyRelease, key, mods, text);
        QApplication::sendEvent(form.get(), &release);
    }
    void mouse(QEvent::Type t, QPoint p, Qt::MouseButton b, Qt::MouseButtons held) {
        QWidget* w = form->picBox;
        QMouseEvent e(t, QPointF(p), QPointF(w->mapToGlobal(p)), b, held, Qt::NoModifier);
        QApplication::sendEvent(w, &e);
    }
    // A drag on the view with the button b, from a to b in a few steps.
    void drag(QPoint from, QPoint to, Qt::MouseButton b = Qt::LeftButton) {
        mouse(QEvent::MouseButtonPress, from, b, b);
        for (int s = 1; s <= 4; ++s) mouse(QEvent::MouseMove, from + (to - from) * s / 4, Qt::NoButton, b);
        mouse(QEvent::MouseButtonRelease, to, b, Qt::NoButton);
    }
    // Sets the percentage and runs.
    void simplifyAt(double percent) {
        form->SetReduction(percent);
        form->cmdSimplify->click();
    }

    int root = 0;
    ScriptedDialogs dlg;
    FakeInputState keys;
    std::unique_ptr<formSurfaceSimplification> form;
};

} // namespace vexil::test
