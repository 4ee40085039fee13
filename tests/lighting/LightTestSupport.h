// Shared set-up of the lighting tests on the main window (offscreen): the program started with the sample
// world, a scripted input state, mouse helpers on the real viewports, and the light controller.
#pragma once
#include "MainWindowFixture.h"
#include "app/Form1.h"
#include "app/Form1_Gizmo.h"
#include "app/Form1_Lighting.h"
#include "app/mdlSubMain.h"
#include "document/WorkspaceTrees.h"
#include "document/WorldDocument.h"
#include "frame/InputState.h"
#include "gizmo/ViewGizmos.h"
#include "lighting/LightController.h"
#include "lighting/frmLight.h"
#include "selection/SelectionState.h"
#include "undo/ActionUndoRedo_Stack.h"
#include "view/frmPicWins.h"
#include "view/picWindow.h"

#include <QMouseEvent>
#include <array>
#include <memory>
#include <zelmar/zelmar.h>

namespace vexil::test {

using V3 = std::array<double, 3>;

inline V3 lightLocation(int l) {
    V3 v{};
    ZELMAR_light_get_location(l, v.data());
    return v;
}
inline V3 lightDirection(int l) {
    V3 v{};
    ZELMAR_light_get_direction(l, v.data());
    return v;
}
inline V3 groupLocation(int g) {
    V3 v{};
    ZELMAR_group_get_location(g, v.data());
    return v;
}

class LightForm : public MainWindowTest {
  protected:
    QString CommandLine() override { return QStringLiteral("\"" VEXIL_SOURCE_DATA "/samples/Sample.wld\""); }
    QSize WindowSize() override { return {1200, 850}; }
    void SetUp() override {
        MainWindowTest::SetUp();
        ASSERT_TRUE(form->WorldOpen());
        lights = FormLighting();
        ASSERT_NE(lights, nullptr);
        root = form->Document()->RootGrp;
    }
    // Drags the gizmo of view i along its handle (0 x, 1 y, 2 z) by `pixels` towards the tip.
    bool dragHandle(int i, int axis, int pixels) {
        TransformGizmo& g = FormGizmos()->Gizmo(i);
        if (!g.Place()) return false;
        const auto& t = axis == 0 ? g.TipX : axis == 1 ? g.TipY : g.TipZ;
        const QPointF c(g.Center2D[0], g.Center2D[1]), tip(t[0], t[1]);
        const double len = std::hypot(tip.x() - c.x(), tip.y() - c.y());
        if (len < 4) return false;
        const QPointF dir = (tip - c) / len;
        const QPoint from = (c + (tip - c) * 0.6).toPoint();
        drag(i, from, from + (dir * pixels).toPoint(), 5);
        return true;
    }
    QTreeWidgetItem* lightNode(int l) { return form->LightTree->Node(QStringLiteral("Light%1").arg(l)); }
    frmLight& panel() { return *lights->Panel(); }
    ActionUndoRedo_Stack& stack() { return form->UndoStack(); }
    // A screenshot of the window for the documentation, when VEXIL_LIGHT_SHOTS names a folder.
    void shot(const char* name) {
        const QString dir = qEnvironmentVariable("VEXIL_LIGHT_SHOTS");
        if (dir.isEmpty()) return;
        form->UpdateCameras();
        QCoreApplication::processEvents();
        form->grab().save(dir + QLatin1Char('/') + QLatin1String(name) + QStringLiteral(".png"));
    }

    LightController* lights = nullptr;
    int root = 0;
};

} // namespace vexil::test
