// the preferences: the recent-files list and the toolbar bands' saved state.
#include "Form1Fixture.h"
#include "app/MostRecentUsedFiles.h"

#include <QAction>
#include <QMenu>
#include <QToolBar>

using namespace vexil;
using vexil::test::Form1Test;

namespace {
QString w(int i) { return QStringLiteral("/worlds/w%1.wld").arg(i); }
} // namespace

TEST_F(Form1Test, RecentFilesKeepEightNewestFirstAndIgnoreLetterCase) {
    start();
    MostRecentUsedFiles* mru = form->MruList();
    ASSERT_NE(mru, nullptr);
    EXPECT_EQ(mru->Count(), 0);
    for (int i = 1; i <= 9; ++i) form->AddMRUItem(w(i));
    ASSERT_EQ(mru->Count(), 8) << "the ninth file pushes out the oldest";
    EXPECT_EQ(mru->Item(0), w(9));
    EXPECT_EQ(mru->Item(7), w(2));
    EXPECT_FALSE(mru->Items().contains(w(1)));
    EXPECT_EQ(mru->Element(0)->text(), QStringLiteral("&1 ") + w(9));
    EXPECT_EQ(mru->Element(7)->text(), QStringLiteral("&8 ") + w(2));
    EXPECT_TRUE(mru->Element(7)->isVisible());
    EXPECT_TRUE(form->mnuFile->actions().contains(mru->Element(0)));

    form->AddMRUItem(w(4).toUpper());
    EXPECT_EQ(mru->Count(), 8) << "no duplicate";
    EXPECT_EQ(mru->Item(0), w(4)) << "the listed item moves to the top as it was written";
    EXPECT_EQ(mru->Item(1), w(9));

    form->RemoveMRUItem(0);
    EXPECT_EQ(mru->Count(), 7);
    EXPECT_EQ(mru->Item(0), w(9));
    EXPECT_FALSE(mru->Element(7)->isVisible()) << "the last element is hidden";

    // Class end: oldest first, then the end mark.
    delete form;
    form = nullptr;
    EXPECT_EQ(GetSetting(SecMRUFiles, QStringLiteral("0")), w(2));
    EXPECT_EQ(GetSetting(SecMRUFiles, QStringLiteral("6")), w(9));
    EXPECT_TRUE(SettingsStore::instance().contains(SecMRUFiles, QStringLiteral("7")));
    EXPECT_EQ(GetSetting(SecMRUFiles, QStringLiteral("7"), QStringLiteral("x")), QString());
    // Class start: the same list again.
    start();
    const QStringList expected{w(9), w(8), w(7), w(6), w(5), w(3), w(2)};
    EXPECT_EQ(form->MruList()->Items(), expected);
}

TEST_F(Form1Test, RecentFileItemOpensThroughTheDocument) {
    start();
    form->AddMRUItem(tempPath(QStringLiteral("gone.wld")));
    ScriptedDialogs dlg;
    form->MruList()->Element(0)->trigger();
    EXPECT_TRUE(dlg.last(QStringLiteral("msgBox"))->text.startsWith(QStringLiteral("Error Loading World")));
    EXPECT_EQ(form->MruList()->Count(), 0) << "a file that fails to load leaves the list";
}

TEST_F(Form1Test, CorruptToolbarStateGivesItsMessageAndTheResetBands) {
    SaveSetting(SecInterface, QStringLiteral("Coolbar1 Band0"), QStringLiteral("Toolbar13\n3\nTrue\n0\n900\n0"));
    SaveSetting(SecInterface, QStringLiteral("Coolbar1 Band1"), QStringLiteral("Toolbar12\nnot a number\nTrue\n0\n900\n1"));
    ScriptedDialogs dlg;
    start();
    ASSERT_EQ(dlg.count(QStringLiteral("msgBox")), 1);
    EXPECT_EQ(dlg.asked[0].text, QStringLiteral("Saved state of Toolbar is corrupt. Resetting Toolbar!"));
    EXPECT_EQ(form->BandOrder(), (std::vector<int>{0, 1, 2, 3, 4, 5, 6, 7}));
    for (QAction* a : form->mnuToolbarBand) EXPECT_TRUE(a->isChecked());
    for (QToolBar* t : form->Toolbar1) EXPECT_TRUE(t->isVisible());
}

TEST_F(Form1Test, ToolbarBandsSaveAndRestoreInTheirValueFormat) {
    start();
    form->mnuToolbarBand[3]->trigger(); // hide band 3
    EXPECT_FALSE(form->Toolbar1[3]->isVisible());
    form->SaveToolbars();
    const QStringList band3 = GetSetting(SecInterface, QStringLiteral("Coolbar1 Band3")).split(QLatin1Char('\n'));
    ASSERT_EQ(band3.size(), 6);
    EXPECT_EQ(band3[0], QStringLiteral("Toolbar13"));
    EXPECT_EQ(band3[1], QStringLiteral("3"));
    EXPECT_EQ(band3[2], QStringLiteral("False"));
    EXPECT_EQ(band3[3], QStringLiteral("0"));
    EXPECT_GT(band3[4].toInt(), 0) << "the width in twips";
    EXPECT_EQ(band3[5], QStringLiteral("3"));
    EXPECT_EQ(GetSetting(SecInterface, QStringLiteral("Coolbar1 Band4")).split(QLatin1Char('\n')).value(3), QStringLiteral("-1"))
        << "band 4 begins a row";
    EXPECT_TRUE(SettingsStore::instance().contains(SecInterface, QStringLiteral("Coolbar1 Band8")));
    EXPECT_TRUE(GetSetting(SecInterface, QStringLiteral("Coolbar1 Band8")).isEmpty());

    // A saved order comes back at the next start.
    QString b0 = GetSetting(SecInterface, QStringLiteral("Coolbar1 Band0"));
    QString b1 = GetSetting(SecInterface, QStringLiteral("Coolbar1 Band1"));
    SaveSetting(SecInterface, QStringLiteral("Coolbar1 Band0"), b1);
    SaveSetting(SecInterface, QStringLiteral("Coolbar1 Band1"), b0);
    ScriptedDialogs dlg;
    start();
    EXPECT_EQ(dlg.count(QStringLiteral("msgBox")), 0);
    EXPECT_EQ(form->BandOrder(), (std::vector<int>{1, 0, 2, 3, 4, 5, 6, 7}));
    EXPECT_FALSE(form->mnuToolbarBand[3]->isChecked());
    EXPECT_FALSE(form->Toolbar1[3]->isVisible());
    // Reset: bands 0 to 7 in order, all shown.
    form->mnuResetToolbar->trigger();
    EXPECT_EQ(form->BandOrder(), (std::vector<int>{0, 1, 2, 3, 4, 5, 6, 7}));
    EXPECT_TRUE(form->Toolbar1[3]->isVisible());
    EXPECT_TRUE(form->mnuToolbarBand[3]->isChecked());
}

TEST_F(Form1Test, ToolbarTipsComeFromTheTableByBand) {
    start();
    EXPECT_EQ(form->ToolbarButton(QStringLiteral("New"))->toolTip(), QStringLiteral("New"));
    EXPECT_EQ(form->ToolbarButton(QStringLiteral("Select"))->toolTip(), QStringLiteral("Select"));
    EXPECT_EQ(form->ToolbarButton(QStringLiteral("Roll Camera"))->toolTip(), QStringLiteral("Roll Camera"));
    EXPECT_EQ(form->ToolbarButton(QStringLiteral("3D Card Toggle"))->toolTip(), QStringLiteral("3D Card Toggle"));
    EXPECT_TRUE(form->Toolbar1[7]->actions().contains(form->ToolbarButton(QStringLiteral("3D Card Toggle"))));
    EXPECT_TRUE(form->Toolbar1[2]->actions().contains(form->ToolbarButton(QStringLiteral("Select"))));
    form->ToolbarButton(QStringLiteral("Rotate"))->trigger();
    EXPECT_EQ(form->ToolMode, 2);
}
