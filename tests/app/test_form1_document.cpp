// Form1 as the host of the world document and of the undo stack: the File and Edit items reach the
// document; the close box's "Yes" saves; Hold and Fetch from the keys; start-up with a missing language.
#include "Form1Fixture.h"
#include "frame/InputState.h"
#include "app/MostRecentUsedFiles.h"
#include "document/WorldDocument.h"

#include <QAction>
#include <QFileInfo>
#include <QComboBox>
#include <QLabel>
#include <QMenu>
#include <QTabWidget>

using namespace vexil;
using vexil::test::Form1Test;

TEST_F(Form1Test, PushedActionsEnableUndoAndMarkTheCaption) {
    start();
    EXPECT_FALSE(form->mnuUndo->isEnabled());
    makeDirty();
    EXPECT_TRUE(form->mnuUndo->isEnabled());
    EXPECT_TRUE(form->windowTitle().endsWith(QStringLiteral("*]"))) << form->windowTitle().toStdString();
    form->mnuUndo->trigger();
    EXPECT_TRUE(form->mnuRedo->isEnabled());
    EXPECT_FALSE(form->UndoStack().SaveRequired());
    EXPECT_TRUE(form->windowTitle().endsWith(QStringLiteral("Untitled.wld]")));
    form->mnuRedo->trigger();
    EXPECT_TRUE(form->UndoStack().SaveRequired());
}

TEST_F(Form1Test, CloseBoxYesSavesThroughSaveAsAndThenCloses) {
    start();
    makeDirty();
    ScriptedDialogs dlg;
    const QString path = tempPath(QStringLiteral("saved world.wld"));
    dlg.msgAnswers = {vbYes};
    dlg.fileAnswers = {path};
    EXPECT_TRUE(form->close());
    EXPECT_EQ(dlg.count(QStringLiteral("save")), 1) << "an untitled world asks for a name";
    EXPECT_TRUE(QFileInfo::exists(path));
    EXPECT_TRUE(form->ExitRequested);
    // The saved file is in the recent-files list of the next start.
    start();
    EXPECT_EQ(form->MruList()->Items().value(0), path);
}

TEST_F(Form1Test, HoldAndFetchFromTheKeys) {
    start();
    FakeInputState in;
    form->ViewHasFocus = true;
    auto key = [&](int k, std::initializer_list<int> held) {
        for (int m : held) in.press(m);
        in.press(k);
        form->Form_KeyDown(k, {});
        in.releaseAll();
    };
    makeDirty();
    key(Qt::Key_H, {Qt::Key_Control, Qt::Key_Alt});
    EXPECT_TRUE(QFileInfo::exists(AppPath(QStringLiteral("Hold.wld"))));
    EXPECT_FALSE(form->UndoStack().SaveRequired()) << "a hold counts as a save";
    ScriptedDialogs dlg;
    dlg.msgAnswers = {vbOK};
    key(Qt::Key_F, {Qt::Key_Control, Qt::Key_Alt});
    ASSERT_GE(dlg.count(QStringLiteral("msgBox")), 1);
    EXPECT_EQ(dlg.asked[0].text, QStringLiteral("Fetch - Please confirm."));
    EXPECT_TRUE(form->WorldOpen());
    EXPECT_EQ(form->Document()->WorldFileName, QStringLiteral("Untitled.wld"));
    EXPECT_FALSE(form->UndoStack().SaveRequired());
}

TEST_F(Form1Test, StartWithALanguageThatHasNoFileRunsInTheDefault) {
    SaveSetting(SecPrefrences, QStringLiteral("APP_LCID"), QStringLiteral("1036"));
    ScriptedDialogs dlg;
    start();
    EXPECT_EQ(dlg.count(QStringLiteral("msgBox")), 1);
    EXPECT_TRUE(dlg.asked[0].text.contains(QStringLiteral("Sat1036")));
    EXPECT_EQ(CurrentLCID(), 409);
    EXPECT_EQ(form->mnuFile->title(), QStringLiteral("&File"));
    EXPECT_EQ(GetSetting(SecPrefrences, QStringLiteral("APP_LCID")), QStringLiteral("1036")) << "the setting stays";
}

TEST_F(Form1Test, StoredPlacementAndTextSplashSetting) {
    SaveSetting(SecSettings, QStringLiteral("MainLeft"), QStringLiteral("3000"));
    SaveSetting(SecSettings, QStringLiteral("MainTop"), QStringLiteral("2000"));
    SaveSetting(SecSettings, QStringLiteral("MainWidth"), QStringLiteral("15000"));
    SaveSetting(SecSettings, QStringLiteral("MainHeight"), QStringLiteral("9000"));
    SaveSetting(SecPrefrences, QStringLiteral("ShowSplashScreen"), QStringLiteral("on"));
    start();
    EXPECT_EQ(Prefs().ShowSplashMode, 1) << "text counts as 1";
    EXPECT_NEAR(form->PixelsToTwipsX(form->pos().x()), 3000, 15);
    EXPECT_NEAR(form->PixelsToTwipsY(form->pos().y()), 2000, 15);
    EXPECT_NEAR(form->PixelsToTwipsX(form->width()), 15000, 15);
    EXPECT_NEAR(form->PixelsToTwipsY(form->height()), 9000, 15);
    EXPECT_LE(form->Picture1->width(), form->width() / 2); // the workspace takes at most half
}

TEST_F(Form1Test, DocumentHostReachesTheWindow) {
    start();
    form->SetStatusPanel(3, QStringLiteral("Saving........"));
    EXPECT_EQ(form->StatusPanel[3]->text(), QStringLiteral("Saving........"));
    form->SetBusyPointers(true);
    EXPECT_EQ(form->picWindow[2]->cursor().shape(), Qt::WaitCursor);
    form->SetBusyPointers(false);
    EXPECT_EQ(form->picWindow[2]->cursor().shape(), Qt::ArrowCursor);
    form->Set3DCardTogglePressed(true);
    EXPECT_TRUE(form->Is3DCardTogglePressed());
    form->SetCmbObjItems({GetLocaleString(322), GetLocaleString(323), GetLocaleString(324)}, 1);
    EXPECT_EQ(form->cmbObj->currentText(), QStringLiteral("Edit Geometry"));
    form->DisableAllTabs();
    form->EnableWorkspaceTab(Form1::TabLight);
    EXPECT_TRUE(form->tabWorkspace->widget(Form1::TabLight)->isEnabled());
    EXPECT_FALSE(form->tabWorkspace->widget(Form1::TabGroups)->isEnabled());
    form->SetAddWorldEnabled(false);
    EXPECT_FALSE(form->mnuAddWorld->isEnabled());
}
