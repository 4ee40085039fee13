// the application entry: start-up, the splash, close and unload, resize, the tick loop; every menu item.
#include "Form1Fixture.h"
#include "document/WorldDocument.h"
#include "view/frmPicWins.h"

#include <QAction>
#include <QComboBox>
#include <QElapsedTimer>
#include <QMenu>
#include <QMenuBar>
#include <QTabWidget>

using namespace vexil;
using vexil::test::Form1Test;

TEST_F(Form1Test, EmptyStoreStartsWithTheDocumentedDefaults) {
    ScriptedDialogs dlg;
    start();
    ASSERT_TRUE(form->IsLoaded());
    EXPECT_TRUE(form->isVisible());
    // The first start fills the screen (the design's 6500 by 6500 twips made a window of 687 x 433 pixels on
    // a 1600 x 1000 screen, with its tabs clipped).
    EXPECT_TRUE(form->isMaximized());
    EXPECT_EQ(CurrentLCID(), 409);
    EXPECT_EQ(form->UndoStack().GetStackSize(), 20);
    EXPECT_EQ(form->GridDensity(), 40);
    EXPECT_EQ(Prefs().ShowSplashMode, 1);
    EXPECT_EQ(ReadShowTipsAtStartup(), 1);
    EXPECT_TRUE(form->ExpertMode);
    EXPECT_TRUE(form->mnuExpertMode->isChecked());
    EXPECT_TRUE(form->ToolbarsRestored);
    EXPECT_TRUE(form->ToolbarButton(QStringLiteral("Select"))->isChecked());
    EXPECT_TRUE(form->WorldOpen()) << "an empty command line opens a new world";
    EXPECT_EQ(form->Document()->WorldFileName, QStringLiteral("Untitled.wld"));
    EXPECT_EQ(dlg.count(QStringLiteral("exec")), 0) << "no template dialog at the first start";
    EXPECT_EQ(form->tabWorkspace->currentIndex(), int(Form1::TabModelGallery));
    EXPECT_EQ(form->cmbObj->currentText(), QStringLiteral("New Object"));
    EXPECT_TRUE(form->mnuSave->isEnabled());
    EXPECT_EQ(form->MouseStepFactor, 1.0);
    EXPECT_FALSE(form->StatusBar2->isVisible());
    EXPECT_FALSE(log().contains(QStringLiteral("Unexpected error"))) << log().toStdString();
    // Form_Load step 20: the inverted start-up flags.
    EXPECT_FALSE(form->GridDisplay(0));
    EXPECT_FALSE(form->GridSnap(3));
}

TEST_F(Form1Test, TheWindowStartsMaximisedOnceThenAsItWasLeft) {
    start();
    ASSERT_TRUE(form->isMaximized());
    form->Form_Unload();
    EXPECT_EQ(GetSetting(SecSettings, QStringLiteral("MainMaximized")), QStringLiteral("True"));
    // A window left at a normal size comes back there, never lower than the viewports' frame needs.
    SaveSetting(SecSettings, QStringLiteral("MainLeft"), QStringLiteral("300"));
    SaveSetting(SecSettings, QStringLiteral("MainTop"), QStringLiteral("450"));
    SaveSetting(SecSettings, QStringLiteral("MainWidth"), QStringLiteral("11000"));
    SaveSetting(SecSettings, QStringLiteral("MainHeight"), QStringLiteral("8600"));
    SaveSetting(SecSettings, QStringLiteral("MainMaximized"), QStringLiteral("False"));
    start();
    EXPECT_FALSE(form->isMaximized());
    EXPECT_NEAR(form->PixelsToTwipsX(form->width()), 11000, 15);
    EXPECT_NEAR(form->PixelsToTwipsY(form->height()), 8600, 15);
    form->resize(form->TwipsToPixelsX(12000), form->TwipsToPixelsY(9000));
    form->Form_Unload();
    EXPECT_EQ(GetSetting(SecSettings, QStringLiteral("MainMaximized")), QStringLiteral("False"));
    EXPECT_NEAR(GetSetting(SecSettings, QStringLiteral("MainWidth")).toDouble(), 12000, 15);
    // The viewports' frame keeps its 6400 twips: a smaller window grows to hold it.
    SaveSetting(SecSettings, QStringLiteral("MainHeight"), QStringLiteral("3000"));
    start();
    QCoreApplication::processEvents();
    EXPECT_GE(form->frmPicWins->height(), form->TwipsToPixelsY(6400) - 1);
    EXPECT_GT(form->PixelsToTwipsY(form->height()), 6400);
}

TEST_F(Form1Test, SplashHoldsTheMainWindowBackForItsMinimumAndLingers) {
    formSplash::MinimumTimeMs() = 300;
    formSplash::LingerMs() = 150;
    QElapsedTimer t;
    t.start();
    start();
    EXPECT_GE(t.elapsed(), 450);
    EXPECT_TRUE(form->IsLoaded());
    EXPECT_TRUE(QApplication::topLevelWidgets().size() > 0);
    for (QWidget* w : QApplication::topLevelWidgets()) {
        if (w->objectName() == QLatin1String("formSplash")) {
            EXPECT_FALSE(w->isVisible());
        }
    }
    // Without the splash the window comes at once.
    delete form;
    form = nullptr;
    SaveSetting(SecPrefrences, QStringLiteral("ShowSplashScreen"), QStringLiteral("0"));
    start();
    EXPECT_EQ(Prefs().ShowSplashMode, 0);
    EXPECT_TRUE(form->isVisible());
    for (QWidget* w : QApplication::topLevelWidgets())
        EXPECT_FALSE(w->objectName() == QLatin1String("formSplash") && w->isVisible());
}

TEST_F(Form1Test, CloseBoxWithUnsavedChangesAndCancelLeavesEverythingAsItWas) {
    start();
    makeDirty();
    ScriptedDialogs dlg;
    dlg.msgAnswers = {vbCancel};
    EXPECT_FALSE(form->close());
    ASSERT_EQ(dlg.count(QStringLiteral("msgBox")), 1);
    EXPECT_EQ(dlg.asked[0].text, QStringLiteral("Save changes?"));
    EXPECT_EQ(dlg.asked[0].buttons, MsgYesNoCancel);
    EXPECT_EQ(dlg.asked[0].icon, MsgQuestion);
    EXPECT_TRUE(form->isVisible());
    EXPECT_TRUE(form->WorldOpen());
    EXPECT_TRUE(form->UndoStack().SaveRequired());
    EXPECT_FALSE(form->ExitRequested);
    EXPECT_TRUE(GetSetting(SecSettings, QStringLiteral("MainLeft")).isEmpty()) << "nothing unloaded";
}

TEST_F(Form1Test, CloseBoxWithNoUnloadsAndSavesThePlacement) {
    start();
    makeDirty();
    form->move(form->TwipsToPixelsX(2000), form->TwipsToPixelsY(1500));
    form->resize(form->TwipsToPixelsX(12000), form->TwipsToPixelsY(9000));
    ScriptedDialogs dlg;
    dlg.msgAnswers = {vbNo};
    EXPECT_TRUE(form->close());
    EXPECT_TRUE(form->ExitRequested);
    EXPECT_FALSE(form->isVisible());
    EXPECT_FALSE(form->WorldOpen());
    EXPECT_NEAR(GetSetting(SecSettings, QStringLiteral("MainWidth")).toDouble(), 12000, 15);
    EXPECT_NEAR(GetSetting(SecSettings, QStringLiteral("MainHeight")).toDouble(), 9000, 15);
    EXPECT_NEAR(GetSetting(SecSettings, QStringLiteral("MainLeft")).toDouble(), 2000, 15);
}

TEST_F(Form1Test, FileExitAndFileCloseNeverAskToSave) {
    start();
    makeDirty();
    ScriptedDialogs dlg;
    form->mnuCloseFile->trigger();
    EXPECT_FALSE(form->WorldOpen());
    EXPECT_FALSE(form->mnuSave->isEnabled());
    EXPECT_EQ(dlg.count(QStringLiteral("msgBox")), 0);
    start();
    makeDirty();
    form->mnuExit->trigger();
    EXPECT_EQ(dlg.count(QStringLiteral("msgBox")), 0);
    EXPECT_TRUE(form->ExitRequested);
    EXPECT_FALSE(form->isVisible());
}

TEST_F(Form1Test, AfterTerminatingOnErrorTheCloseBoxDoesNotAsk) {
    start();
    makeDirty();
    ScriptedDialogs dlg;
    TerminatingOnError() = true;
    EXPECT_TRUE(form->close());
    EXPECT_EQ(dlg.count(QStringLiteral("msgBox")), 0);
}

TEST_F(Form1Test, NarrowWindowSnapsBackToTheMinimumWidth) {
    start();
    form->resize(200, form->height());
    EXPECT_EQ(form->width(), form->TwipsToPixelsX(10300));
    form->resize(form->TwipsToPixelsX(14000), form->height());
    EXPECT_EQ(form->width(), form->TwipsToPixelsX(14000));
    form->mnuWorkspace->trigger();
    EXPECT_FALSE(form->Picture1->isVisible());
    form->mnuWorkspace->trigger();
    EXPECT_TRUE(form->Picture1->isVisible());
}

TEST_F(Form1Test, TickLoopRunsUntilExitIsRequested) {
    start();
    EXPECT_EQ(TickLoop(*form, 5), 5);
    form->ExitRequested = true;
    EXPECT_EQ(TickLoop(*form), 0);
}

TEST_F(Form1Test, CommandLineOfAFileThatCannotLoadReportsAndGoesOnWithoutAWorld) {
    ScriptedDialogs dlg;
    start(QStringLiteral("\"") + tempPath(QStringLiteral("no such folder/world.wld")) + QStringLiteral("\""));
    EXPECT_TRUE(form->IsLoaded());
    EXPECT_FALSE(form->WorldOpen());
    ASSERT_GE(dlg.count(QStringLiteral("msgBox")), 1);
    EXPECT_TRUE(dlg.last(QStringLiteral("msgBox"))->text.startsWith(QStringLiteral("Error Loading World")));
    EXPECT_TRUE(dlg.last(QStringLiteral("msgBox"))->text.contains(QStringLiteral("world.wld")));
    EXPECT_FALSE(form->tabWorkspace->isEnabled());
}

TEST_F(Form1Test, EveryMenuItemExistsWithItsCaption) {
    start();
    const char* names[] = {
        "mnuFile", "mnuNew", "mnuOpenFile", "mnuAddWorld", "mnuCloseFile", "mnuSave", "mnuSaveAs", "mnuImport",
        "mnuExport", "mnuExit", "mnuEdit", "mnuUndo", "mnuRedo", "mnuSelectAll", "mnuSelectInvert", "mnuHold",
        "mnuFetch", "mnuPreference", "mnuView", "mnuToolbar", "mnuToolbarBands", "mnuStatusBar", "mnuWorkspace",
        "mnuHideSelected", "mnuHideUnSelected", "mnuUnhideAll", "mnuRedrawAllViews", "mnuResetViews",
        "mnuResetToolbar", "mnuViewerMode", "mnuExpertMode", "mnuGrp", "mnuGroupTogether", "mnuUngroup", "mnuAttach",
        "mnuDetach", "mnuUngroupAll", "mnuGrpDelete", "mnuGrpProperties", "mnuCreate", "mnuStandardGroups",
        "mnuPlane", "mnuBox", "mnuSphere", "mnuCylinder", "mnuCone", "mnuTorus", "mnuCamera", "mnuLight",
        "mnuOmnidirectional", "mnuDirectional", "mnuTrack", "mnuCircular", "mnuCustom", "mnuLightMaps", "mnuHelp",
        "mnuReference", "mnuTutorial", "mnuTipOfTheDay", "mnuAbout", "mnuWinView", "mnuWinViewTop",
        "mnuWinViewBottom", "mnuWinViewLeft", "mnuWinViewRight", "mnuWinViewFront", "mnuWinViewBack",
        "mnuWinViewPerspective", "mnuWinViewCam", "mnuWinWiewMaxMin", "mnuGroupMenu", "mnuGroupMenuRemoveFromGroup",
        "mnuGroupMenuUngroup", "mnuGroupMenuRemoveLight", "mnuGroupMenuRemoveLightMaps", "mnuGroupMenuDelete",
        "mnuGroupMenuHide", "mnuGroupMenuUnhide", "mnuGroupMenuProperties", "mnuLightMenu", "mnuLightMenuNew",
        "mnuLightMenuDelete", "mnuLightMenuHide", "mnuLightMenuUnhide", "mnuLightMenuHideAll", "mnuLightMenuShowAll",
        "mnuCamTrkBkMenu", "mnuCamTrkBkMenuNew", "mnuCamTrkBkMenuDelete", "mnuCamTrkBkMenuSaveCurrent",
        "mnuCamTrkBkMenuHide", "mnuCamTrkBkMenuUnhide", "mnuCamTrkBkMenuHideAll", "mnuCamTrkBkMenuShowAll",
        "mnuTexture", "mnuTextureNew", "mnuTextureEdit", "mnuTextureUpdate", "mnuTextureDelete", "mnuModelGallery",
        "mnuModelGalleryAdd", "mnuModelGalleryAddFolder", "mnuModelGalleryDeleteFolder", "mnuModelGalleryRemove",
        "mnuBend"};
    for (const char* n : names) {
        QAction* a = nullptr;
        for (QAction* x : form->findChildren<QAction*>(QString::fromLatin1(n))) a = x;
        ASSERT_NE(a, nullptr) << n;
        EXPECT_FALSE(a->text().isEmpty()) << n;
    }
    EXPECT_EQ(form->mnuNew->text(), QStringLiteral("&New"));
    EXPECT_EQ(form->mnuWinWiewMaxMin->text(), QStringLiteral("&Max/Min"));
    // The popup menus never show in the menu bar.
    for (QMenu* popup : form->PopupMenus())
        EXPECT_FALSE(form->menuBar()->actions().contains(popup->menuAction())) << popup->objectName().toStdString();
    EXPECT_EQ(form->menuBar()->actions().size(), 6);
}

TEST_F(Form1Test, MaxUndoRedoZeroOrTextGivesTwenty) {
    for (const auto& [stored, depth] : std::vector<std::pair<QString, int>>{
             {QStringLiteral("0"), 20}, {QStringLiteral("lots"), 20}, {QStringLiteral("35"), 35}}) {
        SaveSetting(SecPrefrences, QStringLiteral("MaxUndoRedo"), stored);
        start();
        EXPECT_EQ(form->UndoStack().GetStackSize(), depth) << stored.toStdString();
    }
}
