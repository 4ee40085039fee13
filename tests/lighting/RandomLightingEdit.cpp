#include "RandomLightingEdit.h"

#include "app/Form1.h"
#include "app/Form1_Lighting.h"
#include "engine/EntityNaming.h"
#include "lighting/LightController.h"
#include "lighting/formAtmsEffect.h"
#include "selection/ActionTransformEntity.h"
#include "selection/EntityKinds.h"
#include "selection/SelectionModel.h"
#include "undo/ActionUndoRedo_Stack.h"

#include <QAction>
#include <QSpinBox>
#include <vector>
#include <zelmar/zelmar.h>

namespace vexil {

namespace {

std::vector<int> liveLights(LightController& lights) {
    std::vector<int> all;
    for (int i = 1; i <= lights.Markers().TotalLightGrps(); ++i) {
        const int l = lights.Markers().GetLight_UsingIndex(i);
        if (ZELMAR_light_get_save_flag(l) == 1) all.push_back(l);
    }
    return all;
}

} // namespace

std::string ApplyRandomLightingEdit(Form1& form, std::mt19937& rng, bool turns) {
    LightController* lights = FormLighting();
    if (!lights) return {};
    SelectionModel& model = lights->Model();
    auto pick = [&](int n) { return std::uniform_int_distribution<int>(0, n - 1)(rng); };
    const int kind = pick(turns ? 8 : 7);
    if (kind == 0) {
        form.mnuOmnidirectional->trigger();
        return "create omni";
    }
    if (kind == 1) {
        form.mnuDirectional->trigger();
        return "create directional";
    }
    if (kind == 2) {
        formAtmsEffect fog(form.UndoStack(), true, [&form] { form.UpdateCameras(); });
        ZELMAR_engine_set_atmospheric_effect(pick(256), pick(256), pick(256));
        fog.updwnIntensity->setValue(1 + pick(20));
        fog.updwnIntensity_MouseUp();
        fog.accept();
        return "fog";
    }
    const std::vector<int> all = liveLights(*lights);
    if (all.empty()) return {};
    const int l = all[size_t(pick(int(all.size())))];
    const std::string name = EntityName(l);
    model.SelectEntityFromTree(4, l);
    switch (kind) {
    case 3:
        model.DeleteSelected();
        return "delete " + name;
    case 4:
        if (model.IsLightHidden(l)) {
            model.mnuUnhideCurrent_Click();
            return "show " + name;
        }
        model.mnuHideSelected_Click();
        return "hide " + name;
    case 5: {
        // As a gizmo drag: the action is pushed at the press, the light moved, the end recorded.
        const std::array<double, 3> from = KindOps(4).GetLocation(l);
        std::array<double, 3> to = from;
        to[size_t(pick(3))] += std::uniform_real_distribution<double>(-300, 300)(rng);
        ActionRef env = ActionUndoRedo_Stack::MakeAction(AT_ActionMove);
        auto* a = env->As<ActionMove>();
        a->SetMovedEntity(4, l);
        a->SetFrmLoc(from);
        a->SetToLoc(from);
        form.UndoStack().Push(env);
        KindOps(4).SetLocation(l, to);
        a->SetToLoc(KindOps(4).GetLocation(l));
        return "move " + name;
    }
    case 6:
        return "select " + name;
    default: {
        const int axis = pick(3);
        const double degrees = std::uniform_real_distribution<double>(-90, 90)(rng);
        std::array<double, 3> turn{0, 0, 0};
        turn[size_t(axis)] = degrees;
        KindOps(4).Rotate(l, turn);
        ActionRef env = ActionUndoRedo_Stack::MakeAction(AT_ActionRotate);
        auto* a = env->As<ActionRotate>();
        a->SetRotatedEntity(4, l);
        a->AddRotation(degrees, axis);
        form.UndoStack().Push(env);
        return "turn " + name;
    }
    }
}

} // namespace vexil
