// For pictures of lighting (docs/lighting.md): VEXIL_DEMO_LIGHTING=lamp|bake|smooth|fog|undo plays the
// steps of a user up to that one once the window runs with a world open: a lamp added beside the house,
// moved as the gizmo moves it and coloured; the sun switched to update itself; light maps baked; the tower
// smoothed; fog set through its dialog; the last step undone.
#include "Form1.h"
#include "Form1_Lighting.h"
#include "engine/EntityNaming.h"
#include "library/formTip.h"
#include "lighting/LightController.h"
#include "lighting/formAtmsEffect.h"
#include "lighting/frmLight.h"
#include "lighting/frmLightMapParameterInput.h"
#include "lighting/mdlSmoothLight.h"
#include "selection/ActionTransformEntity.h"
#include "selection/EntityKinds.h"
#include "selection/SelectionModel.h"
#include "undo/ActionUndoRedo_Stack.h"
#include "view/camera.h"
#include "view/frmPicWins.h"

#include <QAction>
#include <QCheckBox>
#include <QPushButton>
#include <QSpinBox>
#include <QTimer>
#include <zelmar/zelmar.h>

namespace vexil {

void DemoLighting(Form1& f) {
    const QString upTo = qEnvironmentVariable("VEXIL_DEMO_LIGHTING").toLower();
    static const QStringList steps = {QStringLiteral("lamp"), QStringLiteral("bake"), QStringLiteral("smooth"),
                                      QStringLiteral("fog"), QStringLiteral("undo")};
    const int last = std::max(0, int(steps.indexOf(upTo)));
    QTimer::singleShot(400, &f, [&f, last] {
        LightController* lights = FormLighting();
        if (!f.WorldOpen() || !lights) return;
        if (f.TipForm) f.TipForm->close();
        f.resize(1560, 960);
        SelectionModel& model = lights->Model();
        // The lamp, beside the house and above it, moved there as a gizmo drag moves it.
        double box[6] = {0, 0, 0, 0, 0, 0};
        ZELMAR_group_get_bounding_box(GroupUsingName("House"), box);
        f.mnuOmnidirectional->trigger();
        const int lamp = Sel().CurrSelEntity;
        const std::array<double, 3> from = KindOps(4).GetLocation(lamp);
        const std::array<double, 3> to{box[3] + 120, (box[1] + box[4]) / 2, box[5] + 40};
        ActionRef move = ActionUndoRedo_Stack::MakeAction(AT_ActionMove);
        if (auto* a = move->As<ActionMove>()) {
            a->SetMovedEntity(4, lamp);
            a->SetFrmLoc(from);
            f.UndoStack().Push(move);
            KindOps(4).SetLocation(lamp, to);
            a->SetToLoc(to);
        }
        const double warm[3] = {255, 170, 90};
        ZELMAR_light_set_color(lamp, warm);
        ZELMAR_light_set_distance_reach(lamp, 1500);
        lights->OpenPanel(lamp);
        lights->UpdateOnLightChange();
        // The sun relights the world at each render; the sample's own lamp, which lights everything at full
        // strength, is switched off so that shadows show.
        if (const int sun = LightUsingName("Sun")) {
            model.SelectEntityFromTree(4, sun);
            if (frmLight* p = lights->Panel()) p->chkAutoUpdate->click();
        }
        if (const int old = LightUsingName("Lamp")) {
            model.SelectEntityFromTree(4, old);
            if (frmLight* p = lights->Panel()) p->chkLightOn->click();
        }
        model.SelectEntityFromTree(4, lamp);
        if (last >= 1) {
            frmLightMapParameterInput bake(*lights, &f);
            bake.show();
            bake.cmdCompute->click();
        }
        if (last >= 2) {
            const int tower = GroupUsingName("Tower");
            model.SelectEntityFromTree(1, tower);
            std::vector<int> pols;
            for (int p = ZELMAR_group_get_first_polygon(tower); p != 0; p = ZELMAR_group_get_next_polygon(p))
                pols.push_back(p);
            SmoothLight(pols, 60);
            f.tabWorkspace->setCurrentIndex(Form1::TabEditGroup);
        }
        if (last >= 3) {
            formAtmsEffect fog(f.UndoStack(), true, [&f] { f.UpdateCameras(); }, &f);
            ZELMAR_engine_set_atmospheric_effect(190, 200, 215);
            fog.updwnIntensity->setValue(2);
            fog.updwnIntensity_MouseUp();
            fog.accept();
        }
        if (last >= 4) f.mnuUndo->trigger();
        // The perspective view alone, framed on the house and the tower.
        f.ActiveWin = 2;
        f.ToggleWindowMinMax();
        if (vexil::frmPicWins* v = f.frmPicWins) {
            camera& cam = v->ViewCams(2);
            const double c[3] = {(box[0] + box[3]) / 2, (box[1] + box[4]) / 2, (box[2] + box[5]) / 2};
            cam.PointAtLoc({c[0], c[1], c[2]});
            cam.Dist = 3.2 * (box[3] - box[0] + box[5] - box[2]);
            cam.Update();
            cam.ReSetCamDistFrmEye();
        }
        f.UpdateCameras();
    });
}

} // namespace vexil
