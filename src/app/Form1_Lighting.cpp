// Form1: the Light tab's panel, the smoothing panel, the Light menus, light maps and the fog dialog.
#include "Form1_Lighting.h"
#include "Form1_Tracks.h"
#include "tracks/TracksController.h"

#include "Form1.h"
#include "Form1_Selection.h"
#include "frame/Dialogs.h"
#include "frame/ErrLog.h"
#include "lighting/formAtmsEffect.h"
#include "lighting/frmLight.h"
#include "lighting/frmLightMapParameterInput.h"
#include "lighting/frmSmoothLight.h"
#include "lighting/LightController.h"
#include "document/WorkspaceTrees.h"

#include <QAction>
#include <QMenu>
#include <QScrollArea>
#include <QTabWidget>
#include <QVBoxLayout>
#include <memory>

namespace vexil {

namespace {

std::unique_ptr<LightController> g_lights;

void on(QAction* a, const char* name, std::function<void()> body) {
    if (!a) return;
    QObject::connect(a, &QAction::triggered, a, [name, body] {
        handleEvent("Form1", name, [&] {
            if (g_lights) body();
        });
    });
}

} // namespace

LightController* FormLighting() {
    return g_lights.get();
}

void DemoLighting(Form1& f); // Form1_LightingDemo.cpp

void InstallLighting(Form1& f) {
    if (!FormSelection()) return;
    g_lights = std::make_unique<LightController>(*FormSelection());

    // The Light panel under the light tree, in a frame with its own scroll bar, shown for a current light.
    if (QWidget* page = f.LightTree ? f.LightTree->parentWidget() : nullptr) {
        auto* scroll = new QScrollArea(page);
        scroll->setObjectName(QStringLiteral("frmLightScroll"));
        scroll->setFrameShape(QFrame::NoFrame);
        scroll->setWidgetResizable(true);
        auto* panel = new frmLight(*g_lights, scroll);
        scroll->setWidget(panel);
        scroll->hide();
        page->layout()->addWidget(scroll);
        g_lights->SetPanel(panel);
        g_lights->ShowPanelFrame = [scroll](bool show) { scroll->setVisible(show); };
    }
    // The smoothing panel with the other tools of the Edit Group tab.
    if (QWidget* edit = f.findChild<QWidget*>(QStringLiteral("frmEditGroup")))
        if (auto* l = qobject_cast<QVBoxLayout*>(edit->layout())) l->insertWidget(l->count() - 1, new frmSmoothLight(edit));

    auto create = [&f](int kind) {
        g_lights->CreateLightInView(kind);
        f.tabWorkspace->setCurrentIndex(Form1::TabLight);
    };
    on(f.mnuOmnidirectional, "mnuOmnidirectional_Click", [create] { create(0); });
    on(f.mnuDirectional, "mnuDirectional_Click", [create] { create(1); });
    on(f.mnuLightMenuNew, "mnuLightMenuNew_Click", [] { g_lights->mnuLightMenuNew_Click(); });
    on(f.mnuLightMenuDelete, "mnuLightMenuDelete_Click", [] { g_lights->mnuLightMenuDelete_Click(); });
    on(f.mnuGroupMenuRemoveLight, "mnuGroupMenuRemoveLight_Click", [] { g_lights->mnuGroupMenuRemoveLight_Click(); });
    on(f.mnuGroupMenuRemoveLightMaps, "mnuGroupMenuRemoveLightMaps_Click",
       [] { g_lights->mnuGroupMenuRemoveLightMaps_Click(); });
    on(f.mnuLightMaps, "mnuLightMaps_Click", [&f] { f.CreateLightMaps(); });
    if (qEnvironmentVariableIsSet("VEXIL_DEMO_LIGHTING")) DemoLighting(f);
}

void ReleaseLighting() {
    g_lights.reset();
}

void LightMenuHideObsoleteItems(Form1& f, bool root, bool hidden) {
    f.mnuLightMenuNew->setVisible(root);
    f.mnuLightMenuShowAll->setVisible(root);
    f.mnuLightMenuHideAll->setVisible(root);
    f.mnuLightMenuDelete->setVisible(!root);
    f.mnuLightMenuHide->setVisible(!root && !hidden);
    f.mnuLightMenuUnhide->setVisible(!root && hidden);
}

// ---- Form1 ------------------------------------------------------------------------------------------------

void Form1::CreateLightMaps() {
    if (g_lights) vexil::CreateLightMaps(*g_lights, this);
}

void Form1::ShowAtmosphereForm() {
    formAtmsEffect form(UndoStack(), WorldOpen(), [this] { UpdateCameras(); }, this);
    dialogs().exec(form);
}

void Form1::ScaleSceneLights(int index) {
    if (g_lights) g_lights->ScaleSceneLights(index);
}

void Form1::RefreshMarkers() {
    if (g_lights) g_lights->LoadMarkers();
    if (FormTracks()) FormTracks()->RefreshMarkers();
}

} // namespace vexil
