#include "LightController.h"

#include "ActionChngFog.h"
#include "frmLight.h"
#include "base/VexilError.h"
#include "document/WorkspaceTrees.h"
#include "engine/EntityNaming.h"
#include "frame/Preferences.h"
#include "selection/ActionDeleteCreate.h"
#include "selection/SelectionModel.h"
#include "undo/ActionUndoRedo_Stack.h"
#include "view/camera.h"
#include "view/frmPicWins.h"

#include <zelmar/zelmar.h>

namespace vexil {

namespace {

LightController* g_controller = nullptr;

QString lightKey(int light) {
    return QStringLiteral("Light") + QString::number(light);
}

} // namespace

LightController* lightController() {
    return g_controller;
}

LightController::LightController(SelectionModel& model) : m_model(model) {
    RegisterLightingActions();
    m_markers.WorldSize = [this] { return WorldSize(); };
    m_previousOps = KindOps(4);
    installOps();
    g_controller = this;
}

LightController::~LightController() {
    KindOps(4) = m_previousOps;
    if (g_controller == this) g_controller = nullptr;
}

void LightController::installOps() {
    EntityKindOps& ops = KindOps(4);
    ops.FakeDelete = [this](int l) { FakeDeleteLight(l); };
    ops.UnDelete = [this](int l) { UnDeleteLight(l); };
    ops.DeletePermanently = [this](int l) { DeleteLightPermanently(l); };
    ops.HideUnhide = [this](int l, bool hide) { HideUnhideLight(l, hide); };
    ops.GetLocation = [](int l) {
        std::array<double, 3> at{};
        ZELMAR_light_get_location(l, at.data());
        return at;
    };
    ops.SetLocation = [this](int l, const std::array<double, 3>& at) {
        m_markers.SetLocation(l, at);
        RefreshPanelPlacement(l);
    };
    ops.Rotate = [this](int l, const std::array<double, 3>& degrees) {
        m_markers.Rotate(l, degrees);
        RefreshPanelPlacement(l);
    };
    ops.Marker = [this](int l) { return m_markers.GetLightGrp(l); };
}

// ---- the world ----------------------------------------------------------------------------------------

bool LightController::WorldOpen() {
    return m_model.Host().WorldOpen();
}

int LightController::RootGrp() {
    return m_model.RootGrp();
}

double LightController::WorldSize() {
    frmPicWins* v = m_model.Views();
    return v ? v->Host().WorldSize() : 1000.0;
}

void LightController::UpdateCameras() {
    if (frmPicWins* v = m_model.Views()) v->UpdateCameras();
}

int LightController::CurrentLight() const {
    const SelectionState& s = Sel();
    return s.CurrSelEntityType == 4 ? s.CurrSelEntity : 0;
}

// ---- the panel ------------------------------------------------------------------------------------------

void LightController::OpenPanel(int light) {
    if (!m_panel) return;
    m_panel->frmLight_SetParameters(light);
    if (ShowPanelFrame) ShowPanelFrame(true);
}

void LightController::HidePanel() {
    if (ShowPanelFrame) ShowPanelFrame(false);
}

void LightController::RefreshPanelPlacement(int light) {
    if (m_panel && m_panel->Light() == light) m_panel->ShowPlacement();
}

// ---- entities ---------------------------------------------------------------------------------------------

int LightController::CreateLight(int kind, const Vec& at) {
    return propagate("LightController", "CreateLight", [&] {
        if (!WorldOpen()) return 0;
        const std::string name = GetNewLightName();                            // 1
        const int light = ZELMAR_light_create(name.c_str(), at.data());        // 2
        if (light == 0) return 0;
        ZELMAR_light_set_save_flag(light, 1);
        if (kind == 1) ZELMAR_light_set_type_of_light(light, 59);              // 3
        m_markers.Add(light, kind == 1 ? 1 : 0);
        ZELMAR_light_set_entity_to_light(light, RootGrp());                    // 4
        if (trwLight* t = m_model.Host().LightTree())                          // 5
            t->AddNode(QStringLiteral("LIGHT"), lightKey(light), QString::fromLocal8Bit(name.c_str()),
                       QStringLiteral("Light"));
        Vec d{};
        ZELMAR_light_get_direction(light, d.data());
        m_markers.SetDirection(light, d);
        SelectionState& s = Sel();                                             // 6
        m_model.SetPrevSelEntityToCurrSelEntity();
        s.CurrSelEntityType = 4;
        s.CurrSelEntity = light;
        s.MultiSel.Reset();
        s.MultiSel.AddLightHandles(light);
        m_model.ThingsToDoOnSelectedEntityChange();
        UpdateCameras();
        ActionRef env = ActionUndoRedo_Stack::MakeAction(AT_ActionCreate);    // 7
        if (auto* a = env->As<ActionCreate>()) a->SetCreatedEntity(4, light);
        m_model.Host().UndoStack().Push(env);
        return light;
    });
}

int LightController::CreateLightInView(int kind) {
    Vec at{0, 0, 0};
    if (frmPicWins* v = m_model.Views()) {
        const Maths::Vector& look = v->ViewCams(v->ActiveWin).LookAt;
        if (look.size() >= 3) at = {look[0], look[1], look[2]};
    }
    return CreateLight(kind, at);
}

void LightController::FakeDeleteLight(int light) {
    m_markers.HideUnhide(light, true);
    ZELMAR_light_set_save_flag(light, 0);
    ZELMAR_light_disable(light, 1);
    if (trwLight* t = m_model.Host().LightTree()) t->RemoveNode(lightKey(light));
    if (m_panel && m_panel->Light() == light) m_panel->Clear();
}

void LightController::UnDeleteLight(int light) {
    m_markers.HideUnhide(light, false);
    ZELMAR_light_set_save_flag(light, 1);
    ZELMAR_light_disable(light, 0);
    if (trwLight* t = m_model.Host().LightTree()) {
        t->RemoveNode(lightKey(light));
        t->AddNode(QStringLiteral("LIGHT"), lightKey(light),
                   QString::fromLocal8Bit(EntityName(light).c_str()), QStringLiteral("Light"));
    }
}

void LightController::DeleteLight(int light) {
    ActionRef env = ActionUndoRedo_Stack::MakeAction(AT_ActionDelete);
    if (auto* a = env->As<ActionDelete>()) a->SetDeletedEntity(4, light);
    m_model.Host().UndoStack().Push(env);
    FakeDeleteLight(light);
}

void LightController::DeleteLightPermanently(int light) {
    m_markers.Remove(light);
    if (ZELMAR_light_is_light(light) == 1) ZELMAR_light_delete(light);
}

void LightController::HideUnhideLight(int light, bool hide) {
    m_markers.HideUnhide(light, hide);
    MarkHiddenInTree(4, light, hide);
}

// ---- menus ------------------------------------------------------------------------------------------------

void LightController::mnuLightMenuNew_Click() {
    CreateLightInView(0);
}

void LightController::mnuLightMenuDelete_Click() {
    if (!WorldOpen() || Sel().CurrSelEntityType != 4) return;
    // The Delete key's path: ActionDelete, the fake deletion, nothing current.
    m_model.DeleteSelected();
}

void LightController::mnuGroupMenuRemoveLight_Click() {
    const SelectionState& s = Sel();
    if (!WorldOpen() || s.CurrSelEntityType != 1) return;
    ZELMAR_group_remove_light(s.CurrSelEntity);
    UpdateCameras();
}

void LightController::mnuGroupMenuRemoveLightMaps_Click() {
    const SelectionState& s = Sel();
    if (!WorldOpen() || s.CurrSelEntityType != 1) return;
    for (int p = ZELMAR_group_get_first_polygon(s.CurrSelEntity); p != 0; p = ZELMAR_group_get_next_polygon(p))
        ZELMAR_polygon_set_second_bitmap(p, 0);
    UpdateCameras();
}

// ---- shared ------------------------------------------------------------------------------------------------

void LightController::RemoveLightFromAllGroups() {
    const int root = RootGrp();
    for (int g = ZELMAR_group_get_first_group(); g != 0; g = ZELMAR_group_get_next(g))
        if (ZELMAR_group_get_father_group(g) == root) ZELMAR_group_remove_light(g);
}

void LightController::UpdateOnLightChange() {
    if (const int light = CurrentLight()) ZELMAR_light_activate(light, 0);
    UpdateCameras();
}

// ---- markers -------------------------------------------------------------------------------------------------

void LightController::LoadMarkers() {
    for (int l = ZELMAR_light_get_first_light(); l != 0; l = ZELMAR_light_get_next_light(l))
        if (ZELMAR_light_get_save_flag(l) == 1 && m_markers.GetLightGrp(l) == 0)
            m_markers.Add(l, (ZELMAR_light_get_type_of_light(l) & 1) ? 1 : 0);
}

void LightController::ResetMarkers() {
    m_markers.RemoveAll();
    if (m_panel) m_panel->Clear();
    HidePanel();
}

void LightController::ScaleSceneLights(int /*index*/) {
    if (m_markers.TotalLightGrps() == 0) return;
    m_markers.ScaleSceneLights(Prefs().CamLightObjRelativeSize);
}

} // namespace vexil
