// The fog dialog in the main window: live colour and intensity, one undo step for the whole time it is
// open, Cancel putting the opening values back.
#include "LightTestSupport.h"
#include "lighting/ActionChngFog.h"
#include "lighting/formAtmsEffect.h"

#include <QAction>
#include <QLabel>
#include <QPushButton>
#include <QKeyEvent>
#include <QSpinBox>
#include <cmath>

using namespace vexil;
using namespace vexil::test;

namespace {

class Fog : public LightForm {
  protected:
    void open(const std::function<void(formAtmsEffect&)>& inside) {
        dlg.execAnswers.push_back([inside](QDialog& d) {
            auto& f = dynamic_cast<formAtmsEffect&>(d);
            inside(f);
            return f.result();
        });
        form->ShowAtmosphereForm();
    }
    static void wheel(formAtmsEffect& f, int steps) {
        f.updwnIntensity->setValue(steps);
        f.updwnIntensity_MouseUp();
    }
    ScriptedDialogs dlg;
};

TEST_F(Fog, ColourAndIntensityAreOneStepThatUndoesBothTogether) {
    const FogValues before = ReadFog();
    const int changes = stack().GetChangesSinceSave();
    open([&](formAtmsEffect& f) {
        EXPECT_EQ(f.windowTitle(), QStringLiteral("Set Fog Parameters."));
        EXPECT_EQ(f.cmdColor->text(), QStringLiteral("Color"));
        dlg.colorAnswers = {QColor(10, 20, 30)};
        f.cmdColor->click();
        EXPECT_EQ(ZELMAR_engine_get_atmospheric_effect(), 10 + 20 * 256 + 30 * 65536);
        wheel(f, 5);
        EXPECT_NEAR(ZELMAR_engine_get_atmospheric_effect_intensity(), before.intensity + 5 * 0.0006, 1e-12);
        EXPECT_EQ(f.updwnIntensity->value(), 0);
        // Shift doubles the step.
        fake->press(Qt::Key_Shift);
        wheel(f, 1);
        fake->releaseAll();
        EXPECT_NEAR(ZELMAR_engine_get_atmospheric_effect_intensity(), before.intensity + 7 * 0.0006, 1e-12);
        EXPECT_EQ(stack().GetChangesSinceSave(), changes); // nothing pushed while open
        f.cmdOK->click();
    });
    EXPECT_EQ(stack().GetChangesSinceSave(), changes + 1);
    ASSERT_EQ(stack().Retrive()->ActionType, AT_ActionChngFog);
    const FogValues after = ReadFog();
    form->mnuUndo->trigger();
    EXPECT_EQ(ReadFog(), before);
    form->mnuRedo->trigger();
    EXPECT_EQ(ReadFog(), after);
}

TEST_F(Fog, IntensityNeverGoesBelowZeroAndACancelledColourChangesNothing) {
    ZELMAR_engine_set_atmospheric_effect(1, 2, 3);
    ZELMAR_engine_set_atmospheric_effect_intensity(0.001);
    open([&](formAtmsEffect& f) {
        wheel(f, -100);
        EXPECT_EQ(ZELMAR_engine_get_atmospheric_effect_intensity(), 0.0);
        wheel(f, -1);
        EXPECT_EQ(ZELMAR_engine_get_atmospheric_effect_intensity(), 0.0);
        dlg.colorAnswers = {std::nullopt};
        f.cmdColor->click();
        EXPECT_EQ(ZELMAR_engine_get_atmospheric_effect(), 1 + 2 * 256 + 3 * 65536);
        f.close(); // the close box ends the step as OK does
    });
    EXPECT_EQ(stack().Retrive()->ActionType, AT_ActionChngFog);
    EXPECT_EQ(dlg.count(QStringLiteral("msgBox")), 0);
    // A world that brings no number as its intensity: the dialog starts again from none.
    ZELMAR_engine_set_atmospheric_effect_intensity(std::nan(""));
    open([&](formAtmsEffect& f) {
        wheel(f, 2);
        EXPECT_NEAR(ZELMAR_engine_get_atmospheric_effect_intensity(), 2 * 0.0006, 1e-12);
        f.cmdOK->click();
    });
}

TEST_F(Fog, CancelPutsTheOpeningValuesBackAndPushesNothingWhileClosingUnchangedStillPushes) {
    const FogValues before = ReadFog();
    const int changes = stack().GetChangesSinceSave();
    open([&](formAtmsEffect& f) {
        dlg.colorAnswers = {QColor(200, 0, 0)};
        f.cmdColor->click();
        wheel(f, 20);
        f.cmdCancel->click();
    });
    EXPECT_EQ(ReadFog(), before);
    EXPECT_EQ(stack().GetChangesSinceSave(), changes);
    open([&](formAtmsEffect& f) { f.cmdOK->click(); });
    EXPECT_EQ(stack().GetChangesSinceSave(), changes + 1);
    // Escape closes the form, which ends its step too.
    open([&](formAtmsEffect& f) {
        wheel(f, 1);
        QKeyEvent esc(QEvent::KeyPress, Qt::Key_Escape, {});
        QApplication::sendEvent(&f, &esc);
    });
    EXPECT_EQ(stack().GetChangesSinceSave(), changes + 2);
    // With no world open the form does nothing.
    form->mnuCloseFile_Click();
    open([&](formAtmsEffect& f) { EXPECT_FALSE(f.isEnabled()); });
    EXPECT_EQ(dlg.count(QStringLiteral("msgBox")), 0);
}

} // namespace
