// the application entry: the key table of Form_KeyDown, with its "down" and "pressed" tests.
#include "Form1Fixture.h"

#include <QLabel>
#include "frame/InputState.h"

#include <QAction>
#include <QTest>
#include <QToolBar>

using namespace vexil;
using vexil::test::Form1Test;

class KeysTest : public Form1Test {
protected:
    void SetUp() override {
        Form1Test::SetUp();
        start();
        form->ViewHasFocus = true;
    }
    // Holds the modifiers and the key, runs Form_KeyDown, releases them again.
    void key(int k, std::initializer_list<int> held = {}) {
        for (int m : held) in.press(m);
        in.press(k);
        form->Form_KeyDown(k & ~0x20000000, {});
        in.releaseAll();
    }
    FakeInputState in;
};

TEST_F(KeysTest, ToolModeKeys) {
    key(Qt::Key_1, {Qt::Key_Shift});
    EXPECT_EQ(form->ToolMode, 1);
    key(Qt::Key_3, {Qt::Key_Shift});
    EXPECT_EQ(form->ToolMode, 3);
    key(Qt::Key_M);
    EXPECT_EQ(form->ToolMode, 7);
    key(Qt::Key_Z);
    EXPECT_EQ(form->ToolMode, 6);
    key(Qt::Key_R);
    EXPECT_EQ(form->ToolMode, 5);
    key(Qt::Key_P);
    EXPECT_EQ(form->ToolMode, 4);
    key(Qt::Key_S);
    EXPECT_EQ(form->ToolMode, 0);
    key(Qt::Key_2, {Qt::Key_Shift});
    EXPECT_EQ(form->ToolMode, 2);
    key(Qt::Key_Z, {Qt::Key_Control});
    EXPECT_EQ(form->ToolMode, 2) << "a row held \"none\" wants no modifier";
    key(Qt::Key_Z, {Qt::Key_Shift});
    EXPECT_EQ(form->ToolMode, 2) << "the Shift+Z branch does nothing";
}

TEST_F(KeysTest, PressedMeansNotReportedSinceThePreviousPoll) {
    key(VkAdd);
    EXPECT_EQ(form->MouseStepFactor, 2.0);
    // Held down, already reported: no second doubling (auto-repeat).
    in.press(VkAdd);
    form->Form_KeyDown(Qt::Key_Plus, Qt::KeypadModifier);
    form->Form_KeyDown(Qt::Key_Plus, Qt::KeypadModifier);
    in.releaseAll();
    EXPECT_EQ(form->MouseStepFactor, 4.0);
    key(VkSubtract);
    key(VkSubtract);
    key(VkSubtract);
    EXPECT_EQ(form->MouseStepFactor, 0.5);
    // "Down" rows act on every repetition.
    in.press(Qt::Key_M);
    form->ToolMode = 0;
    form->Form_KeyDown(Qt::Key_M, {});
    form->ToolMode = 0;
    form->Form_KeyDown(Qt::Key_M, {});
    EXPECT_EQ(form->ToolMode, 7);
}

TEST_F(KeysTest, BackspaceGridAndTheToolbarButtons) {
    key(Qt::Key_Backspace);
    key(Qt::Key_Backspace);
    EXPECT_EQ(form->BackspaceValue, -2.0);
    const bool grid = form->GridDisplay(form->ActiveWin);
    key(Qt::Key_G);
    EXPECT_NE(form->GridDisplay(form->ActiveWin), grid);
    QAction* card = form->ToolbarButton(QStringLiteral("3D Card Toggle"));
    EXPECT_FALSE(card->isChecked());
    key(Qt::Key_V, {Qt::Key_Control, Qt::Key_Alt});
    EXPECT_TRUE(card->isChecked());
    key(Qt::Key_V, {Qt::Key_Control, Qt::Key_Alt});
    EXPECT_FALSE(card->isChecked());
    // Alt+L runs the align command, which asks for the target in the status bar.
    key(Qt::Key_L, {Qt::Key_Alt});
    EXPECT_EQ(form->StatusPanel[3]->text(), GetLocaleString(419));
}

TEST_F(KeysTest, WithoutViewFocusOnlyTheFirstRulesAct) {
    form->ViewHasFocus = false;
    key(Qt::Key_M);
    key(VkAdd);
    EXPECT_EQ(form->ToolMode, 0);
    EXPECT_EQ(form->MouseStepFactor, 1.0);
    QAction* cut = form->tlbrCut->actions().value(0);
    cut->setChecked(true);
    key(Qt::Key_Q);
    EXPECT_FALSE(cut->isChecked()) << "every key releases the cut button";
}

TEST_F(KeysTest, TheIKeyStoresTheMousePositionInTheActiveViewport) {
    form->ActiveWin = 1;
    const QPoint origin = form->picWindow[1]->mapToGlobal(QPoint(0, 0));
    in.setCursorPos(origin + QPoint(17, 23));
    key(Qt::Key_I);
    EXPECT_TRUE(form->KeyIHeld);
    EXPECT_EQ(form->IKeyMousePos, QPoint(17, 23));
    in.setCursorPos(origin + QPoint(40, 40));
    key(Qt::Key_I);
    EXPECT_EQ(form->IKeyMousePos, QPoint(17, 23)) << "held: not again";
    form->Form_KeyUp(Qt::Key_I, {});
    EXPECT_FALSE(form->KeyIHeld);
    key(Qt::Key_I);
    EXPECT_TRUE(form->KeyIHeld);
    key(Qt::Key_X);
    EXPECT_FALSE(form->KeyIHeld) << "any other key clears it";
}

TEST_F(KeysTest, EscapeAfterTheCutButtonResetsThePointerPath) {
    QAction* cut = form->tlbrCut->actions().value(0);
    cut->setChecked(true);
    key(Qt::Key_Escape);
    EXPECT_FALSE(cut->isChecked());
}

// The real path: key events from the toolkit, the production input state, the form's key preview.
class RealKeysTest : public Form1Test {};

TEST_F(RealKeysTest, KeyEventsOnAViewportReachTheTable) {
    start();
    form->ViewHasFocus = true;
    QTest::keyClick(form->picWindow[0], Qt::Key_M);
    EXPECT_EQ(form->ToolMode, 7);
    QTest::keyClick(form->picWindow[0], Qt::Key_R);
    EXPECT_EQ(form->ToolMode, 5);
    QTest::keyClick(form->picWindow[2], Qt::Key_Plus, Qt::KeypadModifier);
    EXPECT_EQ(form->MouseStepFactor, 2.0);
    QTest::keyClick(form->picWindow[2], Qt::Key_Plus, Qt::KeypadModifier);
    EXPECT_EQ(form->MouseStepFactor, 4.0);
    QTest::keyClick(form->picWindow[0], Qt::Key_Exclam, Qt::ShiftModifier);
    EXPECT_EQ(form->ToolMode, 1) << "Shift+1 as the toolkit reports it";
    QTest::keyClick(form->picWindow[0], Qt::Key_V, Qt::ControlModifier | Qt::AltModifier);
    EXPECT_TRUE(form->ToolbarButton(QStringLiteral("3D Card Toggle"))->isChecked());
}
