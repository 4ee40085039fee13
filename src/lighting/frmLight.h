// frmLight, the Light panel of the light tab: every parameter of the current light, each control acting on
// the engine at once and ending with UpdateOnLightChange (a light relights the world only when activated).
// Panel edits push no action: they are property changes without an action class of their own.
#pragma once
#include <QWidget>
#include <array>

class QCheckBox;
class QComboBox;
class QListWidget;
class QPushButton;
class QRadioButton;

namespace vexil {

class LightController;
class Spinner;

class frmLight : public QWidget {
    Q_OBJECT
  public:
    frmLight(LightController& lights, QWidget* parent = nullptr);

    // The light the panel shows (0 for none).
    int Light() const { return m_light; }
    // Fills every control from the engine, under the guard flags.
    void frmLight_SetParameters(int light);
    // Location and direction only (after the gizmo or an undo moved the light).
    void ShowPlacement();
    // Shows no light.
    void Clear();

    // "Whole World" and the names of the groups of the world; shows the light's target.
    void cmbLightTraget_Populate();
    // The type bits that the list and the decay options make now.
    int TypeFromControls() const;

    // ---- handlers -----------------------------------------------------------------------------------
    // One spinner of three changed: only its coordinate is taken, the others stay as the engine has them
    // (the spinners show them rounded to the significant decimals).
    void spnLightLoc_Changed(int axis);
    void spnLightDir_Changed(int axis);
    void cmdLightColor_Click();
    void spnAmbient_Changed();
    void spnDiffuse_Changed();
    void spnSpecular_Changed();
    void spnShine_Changed();
    void spnDistanceReach_Changed();
    void chkLightOn_Click();
    void chkLightRaytracing_Click();
    void chkAutoUpdate_Click();
    void cmbLightTraget_Change();
    void opnLightTypeDefault_Click();
    void opnLightTypeCustom_Click();
    void lstLightType_Click();

    // ---- controls -----------------------------------------------------------------------------------
    std::array<Spinner*, 3> spnLightLoc{}, spnLightDir{};
    QPushButton* cmdLightColor = nullptr;
    Spinner *spnAmbient = nullptr, *spnDiffuse = nullptr, *spnSpecular = nullptr, *spnShine = nullptr,
            *spnDistanceReach = nullptr;
    QCheckBox *chkLightOn = nullptr, *chkLightRaytracing = nullptr, *chkAutoUpdate = nullptr;
    QComboBox* cmbLightTraget = nullptr;
    QRadioButton *opnLightTypeDefault = nullptr, *opnLightTypeCustom = nullptr;
    // Items 0, 1, 2: the lighting terms (bits 8, 16, 32); item 3: directional (bit 1).
    QListWidget* lstLightType = nullptr;
    QRadioButton *opnDecalLinearly = nullptr, *opnDecayAsSquare = nullptr;

  private:
    void build();
    // Runs a handler for the current light with the standard report; nothing while the panel is filled.
    void act(const char* name, void (frmLight::*handler)());
    void act(const char* name, void (frmLight::*handler)(int), int axis);
    void showColour(int r, int g, int b);
    void setSpinner(Spinner* s, double v);
    int current() const;

    LightController& m_lights;
    int m_light = 0;
    bool m_filling = false;   // the guard of the list and of every control while the panel is filled
    bool m_noAutoUpdate = false; // the second guard, of chkAutoUpdate_Click
};

} // namespace vexil
