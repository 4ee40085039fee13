// Lights in the main window with the sample world: made from the Create menu, shown by their markers,
// deleted and hidden through the selection model, moved and turned by the gizmo, edited in the Light panel,
// each undoable step undone and redone through the Edit menu.
#include "LightTestSupport.h"
#include "engine/EntityNaming.h"
#include "frame/Spinner.h"
#include "gizmo/frmTransformParameters.h"
#include "selection/SelectionModel.h"

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QFileInfo>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QRadioButton>
#include <QTabWidget>
#include <cmath>

using namespace vexil;
using namespace vexil::test;

namespace {

class Lights : public LightForm {};

TEST_F(Lights, TheCreateMenuMakesALightWithItsMarkerNodePanelAndOneUndoStep) {
    const int changes = stack().GetChangesSinceSave();
    form->mnuOmnidirectional->trigger();
    const int l = Sel().CurrSelEntity;
    ASSERT_EQ(Sel().CurrSelEntityType, 4);
    EXPECT_EQ(EntityName(l), "Light01");
    EXPECT_EQ(ZELMAR_light_get_save_flag(l), 1);
    EXPECT_EQ(ZELMAR_light_get_type_of_light(l), 58);
    EXPECT_EQ(ZELMAR_light_get_entity_to_light(l), root);
    ASSERT_NE(lightNode(l), nullptr);
    EXPECT_EQ(lightNode(l)->text(0), QStringLiteral("Light01"));
    EXPECT_EQ(stack().GetChangesSinceSave(), changes + 1);
    EXPECT_EQ(stack().Retrive()->ActionType, AT_ActionCreate);
    EXPECT_EQ(form->tabWorkspace->currentIndex(), int(Form1::TabLight));
    EXPECT_TRUE(panel().isVisibleTo(form));
    EXPECT_EQ(panel().Light(), l);

    // The marker: a fatherless group of eight polygons at the light, which picking gives back as the light.
    const int marker = lights->Markers().GetLightGrp(l);
    ASSERT_NE(marker, 0);
    EXPECT_EQ(ZELMAR_group_get_father_group(marker), 0);
    EXPECT_EQ(ZELMAR_group_get_number_of_polygons(marker), 8);
    EXPECT_EQ(EntityName(marker), "LightGrp");
    for (size_t k = 0; k < 3; ++k)
        EXPECT_NEAR(groupLocation(marker)[k], lightLocation(l)[k], 1e-6);
    EXPECT_EQ(lights->Markers().GetLightHandle(marker), l);

    // A directional light: type 59, an arrow of eight polygons along its direction.
    form->mnuDirectional->trigger();
    const int d = Sel().CurrSelEntity;
    EXPECT_EQ(EntityName(d), "Light02");
    EXPECT_EQ(ZELMAR_light_get_type_of_light(d), 59);
    const int arrow = lights->Markers().GetLightGrp(d);
    EXPECT_EQ(ZELMAR_group_get_number_of_polygons(arrow), 8);
    V3 x{}, y{}, z{};
    ZELMAR_group_calculate_axis_system(arrow, x.data(), y.data(), z.data());
    const V3 dir = lightDirection(d);
    for (size_t k = 0; k < 3; ++k)
        EXPECT_NEAR(x[k], dir[k], 1e-9);

    // Undo takes the light out of sight and of the tree; redo brings the same handle and marker back.
    form->mnuUndo->trigger();
    EXPECT_EQ(ZELMAR_light_get_save_flag(d), 0);
    EXPECT_EQ(ZELMAR_light_is_disabled(d), 1);
    EXPECT_EQ(ZELMAR_group_is_disable(arrow), 1);
    EXPECT_EQ(lightNode(d), nullptr);
    form->mnuRedo->trigger();
    EXPECT_EQ(ZELMAR_light_get_save_flag(d), 1);
    EXPECT_EQ(ZELMAR_group_is_disable(arrow), 0);
    EXPECT_EQ(lights->Markers().GetLightGrp(d), arrow);
    EXPECT_NE(lightNode(d), nullptr);
}

TEST_F(Lights, DeleteThenUndoKeepsHandleMarkerAndSaveFlag) {
    form->mnuOmnidirectional->trigger();
    const int l = Sel().CurrSelEntity;
    const int marker = lights->Markers().GetLightGrp(l);
    FakeInputState& in = *fake;
    form->ViewHasFocus = true;
    in.press(Qt::Key_Delete);
    form->Form_KeyDown(Qt::Key_Delete, {});
    in.releaseAll();
    EXPECT_EQ(stack().Retrive()->ActionType, AT_ActionDelete);
    EXPECT_EQ(Sel().CurrSelEntityType, 0);
    EXPECT_EQ(ZELMAR_light_get_save_flag(l), 0);
    EXPECT_EQ(ZELMAR_light_is_disabled(l), 1);
    EXPECT_EQ(ZELMAR_group_is_disable(marker), 1);
    EXPECT_EQ(lightNode(l), nullptr);
    EXPECT_FALSE(panel().isVisibleTo(form));

    form->mnuUndo->trigger();
    EXPECT_EQ(ZELMAR_light_is_light(l), 1);
    EXPECT_EQ(ZELMAR_light_get_save_flag(l), 1);
    EXPECT_EQ(ZELMAR_light_is_disabled(l), 0);
    EXPECT_EQ(lights->Markers().GetLightGrp(l), marker);
    EXPECT_EQ(ZELMAR_group_is_disable(marker), 0);
    EXPECT_NE(lightNode(l), nullptr);
    EXPECT_EQ(Sel().CurrSelEntityType, 4);
    EXPECT_EQ(Sel().CurrSelEntity, l);

    // Redo deletes again; the light menu's Delete does the same as the key.
    form->mnuRedo->trigger();
    EXPECT_EQ(ZELMAR_light_get_save_flag(l), 0);
    form->mnuUndo->trigger();
    form->mnuLightMenuDelete->trigger();
    EXPECT_EQ(ZELMAR_light_get_save_flag(l), 0);
    EXPECT_EQ(stack().Retrive()->ActionType, AT_ActionDelete);
}

TEST_F(Lights, APermanentDeleteFreesTheFirstNumberAndTheMarker) {
    form->mnuOmnidirectional->trigger();
    const int first = Sel().CurrSelEntity;
    const int marker = lights->Markers().GetLightGrp(first);
    form->mnuOmnidirectional->trigger();
    EXPECT_EQ(EntityName(Sel().CurrSelEntity), "Light02");
    // Delete the first; the step that holds it leaves the stack, which deletes it for good.
    form->LightTree->setCurrentItem(lightNode(first));
    lights->Model().trwLight_NodeClick(lightNode(first));
    form->mnuLightMenuDelete->trigger();
    EXPECT_EQ(ZELMAR_light_is_light(first), 1);
    stack().Reset();
    EXPECT_EQ(ZELMAR_light_is_light(first), 0);
    EXPECT_EQ(ZELMAR_group_is_group(marker), 0);
    EXPECT_EQ(lights->Markers().GetLightGrp(first), 0);
    form->mnuOmnidirectional->trigger();
    EXPECT_EQ(EntityName(Sel().CurrSelEntity), "Light01");
    // A creation undone and then dropped by a new step is destroyed at once.
    const int third = Sel().CurrSelEntity;
    form->mnuUndo->trigger();
    form->mnuOmnidirectional->trigger();
    EXPECT_EQ(ZELMAR_light_is_light(third), 0);
}

TEST_F(Lights, HidingGoesThroughTheMarkerAndAHiddenLightStaysHiddenWhenItBecomesDirectional) {
    form->mnuOmnidirectional->trigger();
    const int l = Sel().CurrSelEntity;
    SelectionModel& model = lights->Model();
    form->mnuHideSelected->trigger();
    EXPECT_TRUE(model.IsLightHidden(l));
    EXPECT_EQ(ZELMAR_group_is_disable(lights->Markers().GetLightGrp(l)), 1);
    // Hiding does not switch the light off.
    EXPECT_EQ(ZELMAR_light_is_disabled(l), 0);
    form->mnuUndo->trigger();
    EXPECT_FALSE(model.IsLightHidden(l));
    EXPECT_EQ(ZELMAR_group_is_disable(lights->Markers().GetLightGrp(l)), 0);
    form->mnuRedo->trigger();
    ASSERT_TRUE(model.IsLightHidden(l));

    // The panel of the hidden light: Custom, then the directional item.
    model.SelectEntityFromTree(4, l);
    ASSERT_EQ(panel().Light(), l);
    panel().opnLightTypeCustom->click();
    panel().lstLightType->item(3)->setSelected(true);
    const int arrow = lights->Markers().GetLightGrp(l);
    EXPECT_EQ(ZELMAR_light_get_type_of_light(l) & 1, 1);
    EXPECT_EQ(ZELMAR_group_get_number_of_polygons(arrow), 8);
    EXPECT_EQ(ZELMAR_group_is_disable(arrow), 1);
    // Show All of the light menu shows it again, as one step.
    form->mnuLightMenuShowAll->trigger();
    EXPECT_EQ(ZELMAR_group_is_disable(arrow), 0);
    EXPECT_FALSE(model.IsLightHidden(l));
    form->mnuUndo->trigger();
    EXPECT_EQ(ZELMAR_group_is_disable(arrow), 1);
}

TEST_F(Lights, ThePanelActsOnTheEngineAtOnceAndShowsTheNormalisedDirection) {
    ScriptedDialogs dlg;
    form->mnuOmnidirectional->trigger();
    const int l = Sel().CurrSelEntity;
    frmLight& p = panel();

    // Each spinner acts alone: (0, 0, -1) with z typed as -3 is not unit length; the engine keeps it
    // normalised and the spinners show what it kept.
    ASSERT_NEAR(lightDirection(l)[2], -1, 1e-12);
    p.spnLightDir[2]->SetValue(-3);
    EXPECT_NEAR(lightDirection(l)[2], -1, 1e-12);
    EXPECT_NEAR(p.spnLightDir[2]->Value(), -1, 1e-12);
    p.spnLightDir[1]->SetValue(1);
    const V3 d = lightDirection(l);
    EXPECT_NEAR(d[1], std::sqrt(0.5), 1e-12);
    EXPECT_NEAR(d[2], -std::sqrt(0.5), 1e-12);
    // Shown to the significant decimals of the preferences.
    EXPECT_NEAR(p.spnLightDir[1]->Value(), 0.71, 1e-9);
    EXPECT_NEAR(p.spnLightDir[2]->Value(), -0.71, 1e-9);
    // (0, 0, 0) is no direction: the engine keeps the last one and the spinners show it.
    p.spnLightDir[1]->SetValue(0);
    p.spnLightDir[2]->SetValue(0);
    EXPECT_NEAR(lightDirection(l)[2], -1, 1e-12);
    EXPECT_NEAR(p.spnLightDir[2]->Value(), -1, 1e-12);
    p.spnLightDir[2]->SetValue(0);
    EXPECT_NEAR(lightDirection(l)[2], -1, 1e-12);
    EXPECT_NEAR(p.spnLightDir[2]->Value(), -1, 1e-12);
    // The marker's arrow axis follows.
    V3 x{}, y{}, z{};
    ZELMAR_group_calculate_axis_system(lights->Markers().GetLightGrp(l), x.data(), y.data(), z.data());
    EXPECT_NEAR(x[2], -1, 1e-9);

    p.spnLightLoc[2]->SetValue(321);
    EXPECT_DOUBLE_EQ(lightLocation(l)[2], 321);
    EXPECT_NEAR(groupLocation(lights->Markers().GetLightGrp(l))[2], 321, 1e-6);

    dlg.colorAnswers = {QColor(250, 120, 10), std::nullopt};
    p.cmdLightColor->click();
    V3 rgb{};
    ZELMAR_light_get_color(l, rgb.data());
    EXPECT_EQ(rgb, (V3{250, 120, 10}));
    p.cmdLightColor->click(); // cancelled: nothing changes
    ZELMAR_light_get_color(l, rgb.data());
    EXPECT_EQ(rgb, (V3{250, 120, 10}));

    p.spnAmbient->SetValue(0.25);
    p.spnDiffuse->SetValue(0.75);
    p.spnSpecular->SetValue(0.2);
    p.spnShine->SetValue(30);
    p.spnDistanceReach->SetValue(5000);
    EXPECT_DOUBLE_EQ(ZELMAR_light_get_ambient(l), 0.25);
    EXPECT_DOUBLE_EQ(ZELMAR_light_get_diffuse(l), 0.75);
    EXPECT_DOUBLE_EQ(ZELMAR_light_get_specular(l), 0.2);
    EXPECT_DOUBLE_EQ(ZELMAR_light_get_specular_shining(l), 30);
    EXPECT_DOUBLE_EQ(ZELMAR_light_get_distance_reach(l), 5000);
    p.chkLightOn->click();
    EXPECT_EQ(ZELMAR_light_is_disabled(l), 1);
    p.chkLightOn->click();
    EXPECT_EQ(ZELMAR_light_is_disabled(l), 0);
    p.chkLightRaytracing->click();
    EXPECT_EQ(ZELMAR_light_is_ray_tracing(l), 1);
    p.chkAutoUpdate->click();
    EXPECT_EQ(ZELMAR_light_is_activated_before_render(l), 1);
    // Square decay with the custom list: the bits follow.
    p.opnLightTypeCustom->click();
    p.opnDecayAsSquare->click();
    EXPECT_EQ(ZELMAR_light_get_type_of_light(l), 8 + 16 + 32 + 4);
    p.lstLightType->item(2)->setSelected(false);
    EXPECT_EQ(ZELMAR_light_get_type_of_light(l), 8 + 16 + 4);
    p.opnLightTypeDefault->click();
    EXPECT_EQ(ZELMAR_light_get_type_of_light(l), 58);
    EXPECT_FALSE(p.lstLightType->isEnabled());
    // Panel edits are not undo steps: the stack holds only the creation.
    EXPECT_EQ(stack().Retrive()->ActionType, AT_ActionCreate);
    EXPECT_EQ(dlg.count(QStringLiteral("msgBox")), 0);

    // The panel shows the engine's values when the light is chosen again.
    lights->Model().SelectEntityFromTree(1, GroupUsingName("House"));
    EXPECT_FALSE(p.isVisibleTo(form));
    lights->Model().SelectEntityFromTree(4, l);
    EXPECT_TRUE(p.isVisibleTo(form));
    EXPECT_DOUBLE_EQ(p.spnAmbient->Value(), 0.25);
    EXPECT_DOUBLE_EQ(p.spnLightLoc[2]->Value(), 321);
    EXPECT_TRUE(p.chkLightRaytracing->isChecked());
    EXPECT_TRUE(p.opnLightTypeDefault->isChecked());
}

TEST_F(Lights, TheTargetListFollowsTheGroupsAndADeletedTargetShowsTheWholeWorld) {
    form->mnuOmnidirectional->trigger();
    const int l = Sel().CurrSelEntity;
    frmLight& p = panel();
    EXPECT_EQ(p.cmbLightTraget->itemText(0), QStringLiteral("Whole World"));
    EXPECT_EQ(p.cmbLightTraget->currentIndex(), 0);
    EXPECT_GE(p.cmbLightTraget->findText(QStringLiteral("House")), 1);
    EXPECT_EQ(p.cmbLightTraget->findText(QStringLiteral("LightGrp")), -1);
    EXPECT_EQ(p.cmbLightTraget->findText(QStringLiteral("the_world")), -1);
    const int house = GroupUsingName("House");
    p.cmbLightTraget->setCurrentIndex(p.cmbLightTraget->findText(QStringLiteral("House")));
    p.cmbLightTraget_Change();
    EXPECT_EQ(ZELMAR_light_get_entity_to_light(l), house);

    // The target goes: the panel shows the whole world; rendering, saving and loading still work.
    lights->Model().SelectEntityFromTree(1, house);
    lights->Model().DeleteSelected();
    lights->Model().SelectEntityFromTree(4, l);
    EXPECT_EQ(p.cmbLightTraget->currentText(), QStringLiteral("Whole World"));
    stack().Reset(); // House is destroyed for good
    EXPECT_EQ(ZELMAR_group_is_group(house), 0);
    lights->Model().SelectEntityFromTree(1, GroupUsingName("Tower"));
    lights->Model().SelectEntityFromTree(4, l);
    EXPECT_EQ(p.cmbLightTraget->currentText(), QStringLiteral("Whole World"));
    ZELMAR_light_activate(l, 0);
    form->UpdateCameras();
    ScriptedDialogs dlg;
    const QString path = tempPath(QStringLiteral("target gone.wld"));
    dlg.fileAnswers = {path};
    form->mnuSaveAs_Click();
    form->mnuCloseFile_Click();
    dlg.fileAnswers = {path};
    form->mnuOpenFile_Click();
    ASSERT_TRUE(form->WorldOpen());
    const int loaded = LightUsingName("Light01");
    ASSERT_NE(loaded, 0);
    EXPECT_NE(lights->Markers().GetLightGrp(loaded), 0);
}

TEST_F(Lights, TheGizmoMovesAndTurnsALightThroughItsMarkerAndUndoPutsItBack) {
    form->mnuDirectional->trigger();
    const int l = Sel().CurrSelEntity;
    const int marker = lights->Markers().GetLightGrp(l);
    const V3 l0 = lightLocation(l);
    form->ToolbarButton(QStringLiteral("Move"))->trigger();
    ASSERT_TRUE(dragHandle(0, 0, 60));
    const V3 l1 = lightLocation(l);
    EXPECT_GT(l1[0] - l0[0], 1.0);
    EXPECT_DOUBLE_EQ(l1[1], l0[1]);
    for (size_t k = 0; k < 3; ++k)
        EXPECT_NEAR(groupLocation(marker)[k], l1[k], 1e-6);
    EXPECT_EQ(stack().Retrive()->ActionType, AT_ActionMove);
    // The panel shows where the drag left the light.
    EXPECT_NEAR(panel().spnLightLoc[0]->Value(), l1[0], 0.01);
    form->mnuUndo->trigger();
    for (size_t k = 0; k < 3; ++k) {
        EXPECT_NEAR(lightLocation(l)[k], l0[k], 1e-9);
        EXPECT_NEAR(groupLocation(marker)[k], l0[k], 1e-6);
    }
    form->mnuRedo->trigger();
    EXPECT_NEAR(lightLocation(l)[0], l1[0], 1e-9);

    // Turning about y (the Y handle of the top view) lifts the direction out of the ground plane.
    form->ToolbarButton(QStringLiteral("Rotate"))->trigger();
    ZELMAR_light_set_direction(l, V3{1, 0, 0}.data());
    lights->Markers().SetDirection(l, {1, 0, 0});
    ASSERT_TRUE(dragHandle(0, 1, 40));
    const V3 d1 = lightDirection(l);
    EXPECT_GT(std::fabs(d1[2]), 0.05);
    EXPECT_EQ(stack().Retrive()->ActionType, AT_ActionRotate);
    V3 x{}, y{}, z{};
    ZELMAR_group_calculate_axis_system(marker, x.data(), y.data(), z.data());
    for (size_t k = 0; k < 3; ++k)
        EXPECT_NEAR(x[k], d1[k], 1e-9);
    form->mnuUndo->trigger();
    const V3 d0 = lightDirection(l);
    EXPECT_NEAR(d0[0], 1, 1e-9);
    EXPECT_NEAR(d0[2], 0, 1e-9);
}

TEST_F(Lights, TheTypedTransformPanelMovesALightWithItsMarker) {
    form->mnuOmnidirectional->trigger();
    const int l = Sel().CurrSelEntity;
    const V3 l0 = lightLocation(l);
    form->ShowTransformParameters(0);
    frmTransformParameters* typed = FormTransformParameters();
    ASSERT_NE(typed, nullptr);
    typed->txtValue[0]->setText(QStringLiteral("0"));
    typed->txtValue[1]->setText(QStringLiteral("0"));
    typed->txtValue[2]->setText(QStringLiteral("40"));
    typed->cmdApply->click();
    EXPECT_NEAR(lightLocation(l)[2], l0[2] + 40, 1e-9);
    EXPECT_NEAR(groupLocation(lights->Markers().GetLightGrp(l))[2], l0[2] + 40, 1e-6);
    form->mnuUndo->trigger();
    EXPECT_NEAR(lightLocation(l)[2], l0[2], 1e-9);
    EXPECT_NEAR(groupLocation(lights->Markers().GetLightGrp(l))[2], l0[2], 1e-6);
}

TEST_F(Lights, ALoadedWorldGetsAMarkerForEachLightAndACloseTakesThemAway) {
    EXPECT_EQ(lights->Markers().TotalLightGrps(), 2); // "Sun" and "Lamp" of the sample world
    EXPECT_NE(lights->Markers().GetLightGrp(LightUsingName("Sun")), 0);
    form->mnuOmnidirectional->trigger();
    form->mnuDirectional->trigger();
    ScriptedDialogs dlg;
    const QString path = tempPath(QStringLiteral("two lights.wld"));
    dlg.fileAnswers = {path};
    form->mnuSaveAs_Click();
    form->mnuCloseFile_Click();
    EXPECT_EQ(lights->Markers().TotalLightGrps(), 0);
    dlg.fileAnswers = {path};
    form->mnuOpenFile_Click();
    ASSERT_TRUE(form->WorldOpen());
    // The sample world's own two lights, and the two made here.
    ASSERT_EQ(lights->Markers().TotalLightGrps(), 4);
    const int omni = LightUsingName("Light01"), dir = LightUsingName("Light02");
    EXPECT_EQ(ZELMAR_group_get_number_of_polygons(lights->Markers().GetLightGrp(omni)), 8);
    EXPECT_NE(lightNode(omni), nullptr);
    EXPECT_NE(lightNode(dir), nullptr);
    // The markers never reach the saved world or the group tree.
    EXPECT_EQ(ZELMAR_group_get_using_name("LightGrp"), lights->Markers().GetLightGrp_UsingIndex(1));
    EXPECT_EQ(form->GroupTree->Keys().filter(QStringLiteral("Group%1").arg(lights->Markers().GetLightGrp(omni))).size(),
              0);
}

} // namespace
