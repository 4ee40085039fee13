// The preferences dialog and the grid: what the dialog shows is what is stored and in force, and the
// grid's buttons and the tick loop leave the grids as the user set them. Each test is named for the fault
// found by using the editor.
#include "Form1Fixture.h"
#include "app/frmPrefrences.h"
#include "app/mdlSubMain.h"
#include "frame/Spinner.h"
#include "view/frmPicWins.h"

#include <QAction>
#include <QCheckBox>
#include <QListWidget>
#include <QPushButton>
#include <QScrollBar>
#include <QSpinBox>
#include <QTabWidget>

using namespace vexil;
using vexil::test::Form1Test;

namespace {

// Opens Edit > Preference and lets `inside` work on the dialog, then closes it with OK.
void withPreferences(Form1* form, ScriptedDialogs& dlg, const std::function<void(frmPrefrences&)>& inside) {
    dlg.execAnswers.push_back([inside](QDialog& d) {
        auto& p = dynamic_cast<frmPrefrences&>(d);
        inside(p);
        p.cmdOk->click();
        return p.result();
    });
    form->mnuPreference->trigger();
}

} // namespace

// The dialog showed the stack's size, which changes only at the next start: reopened, it showed the old
// depth again and OK wrote the old value back.
TEST_F(Form1Test, AnUndoDepthChangedTodayIsStillShownAndKeptWhenTheDialogIsReopened) {
    start();
    ScriptedDialogs dlg;
    withPreferences(form, dlg, [](frmPrefrences& p) { p.UpDown1[0]->setValue(35); });
    EXPECT_EQ(GetSetting(SecPrefrences, QStringLiteral("MaxUndoRedo")), QStringLiteral("35"));
    EXPECT_EQ(form->UndoStack().GetStackSize(), 20) << "in force from the next start";
    int shown = 0;
    const int messagesBefore = dlg.count(QStringLiteral("msgBox"));
    withPreferences(form, dlg, [&](frmPrefrences& p) { shown = p.UpDown1[0]->value(); });
    EXPECT_EQ(shown, 35);
    EXPECT_EQ(GetSetting(SecPrefrences, QStringLiteral("MaxUndoRedo")), QStringLiteral("35"));
    EXPECT_EQ(dlg.count(QStringLiteral("msgBox")), messagesBefore) << "nothing changed: no restart notice";
    start();
    EXPECT_EQ(form->UndoStack().GetStackSize(), 35);
}

// A stored 1 means "off at start" (Form_Load step 20), and the boxes showed it ticked.
TEST_F(Form1Test, TheGridAndSnapBoxesShowWhetherGridAndSnapAreOnAtStart) {
    start();
    ASSERT_FALSE(form->GridDisplay(0));
    ScriptedDialogs dlg;
    bool grid = true, snap = true;
    withPreferences(form, dlg, [&](frmPrefrences& p) {
        grid = p.chkGrid->isChecked();
        snap = p.chkGridSnap->isChecked();
        p.chkGrid->setChecked(true); // the grid on at start, snap still off
    });
    EXPECT_FALSE(grid);
    EXPECT_FALSE(snap);
    EXPECT_EQ(GetSetting(SecPrefrences, QStringLiteral("StartUpGrid")), QStringLiteral("0"));
    EXPECT_EQ(GetSetting(SecPrefrences, QStringLiteral("StartUpGridSnap")), QStringLiteral("1"));
    start();
    EXPECT_TRUE(form->GridDisplay(0));
    EXPECT_TRUE(form->GridDisplay(3));
    EXPECT_FALSE(form->GridSnap(0));
    withPreferences(form, dlg, [&](frmPrefrences& p) { grid = p.chkGrid->isChecked(); });
    EXPECT_TRUE(grid);
}

// Text stored as the grid density silently became 40.
TEST_F(Form1Test, AGridDensityThatIsNotANumberIsReportedAndTheGridKeepsItsDensity) {
    SaveSetting(SecPrefrences, QStringLiteral("GridDensity"), QStringLiteral("fine"));
    ScriptedDialogs dlg;
    start();
    ASSERT_NE(dlg.last(QStringLiteral("msgBox")), nullptr);
    EXPECT_TRUE(dlg.last(QStringLiteral("msgBox"))->text.contains(QStringLiteral("\"fine\"")));
    EXPECT_TRUE(log().contains(QStringLiteral("GridDensity")));
    EXPECT_EQ(form->GridDensity(), 40);
    EXPECT_EQ(form->frmPicWins->ViewGrids(2).Density, 40);
    QString problem;
    EXPECT_EQ(ReadGridDensity(25, &problem), 25) << "the density in force stays";
    EXPECT_FALSE(problem.isEmpty());
    SaveSetting(SecPrefrences, QStringLiteral("GridDensity"), QStringLiteral("60"));
    EXPECT_EQ(ReadGridDensity(25), 60);
}

// The lists of the General tab were cut off after two or three items.
TEST_F(Form1Test, ThePreferencesListsShowEveryItemWithoutScrolling) {
    start();
    ScriptedDialogs dlg;
    withPreferences(form, dlg, [](frmPrefrences& p) {
        p.show();
        p.tabOptions->setCurrentIndex(0);
        QCoreApplication::processEvents();
        for (QListWidget* list : {p.lstErrLogBeep, p.lstSaveFlags}) {
            SCOPED_TRACE(list->objectName().toStdString());
            const QRect last = list->visualItemRect(list->item(list->count() - 1));
            EXPECT_LE(last.bottom(), list->viewport()->height());
            for (int r = 0; r < list->count(); ++r)
                EXPECT_LE(list->sizeHintForColumn(0), list->viewport()->width());
        }
        p.hide();
    });
}

// The Grid button flipped the grid without repainting the viewport.
TEST_F(Form1Test, TheGridButtonShowsTheGridAtOnce) {
    start();
    form->ActiveWin = 1;
    const unsigned before = form->frmPicWins->PaintCount(1);
    QAction* grid = form->ToolbarButton(QStringLiteral("Grid"));
    grid->trigger();
    EXPECT_TRUE(form->GridDisplay(1));
    EXPECT_TRUE(grid->isChecked());
    EXPECT_GT(form->frmPicWins->PaintCount(1), before) << "repainted";
    QAction* snap = form->ToolbarButton(QStringLiteral("Grid Snap"));
    snap->trigger();
    EXPECT_TRUE(form->GridSnap(1));
    EXPECT_FALSE(form->GridSnap(0));
}

// Every pass of the tick loop copied Form1's grid flags into the four grids: work that only a change
// needs, and it undid a change the viewports made themselves.
TEST_F(Form1Test, TheTickLoopLeavesTheGridsAlone) {
    start();
    Grid& g = form->frmPicWins->ViewGrids(2);
    g.GridSnapOn = true;
    g.Density = 7;
    TickLoop(*form, 5);
    EXPECT_TRUE(g.GridSnapOn);
    EXPECT_EQ(g.Density, 7);
    EXPECT_TRUE(form->GridSnap(2));
}
