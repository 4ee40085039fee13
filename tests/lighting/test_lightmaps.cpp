// The light-map dialog in the main window with the sample world: its messages, the bake with its progress
// and the abort between polygons, the markers hidden for the bake, and a world that still saves and loads.
#include "LightTestSupport.h"
#include "engine/EntityNaming.h"
#include "lighting/frmLightMapParameterInput.h"
#include "selection/SelectionModel.h"

#include <QAction>
#include <QCheckBox>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QSpinBox>

using namespace vexil;
using namespace vexil::test;

namespace {

const QString AbortQuestion = QStringLiteral("Lightmap creation has not completed. Do you wish to abort?");

int polygonsWithLightMaps(int root) {
    int n = 0;
    for (int p = ZELMAR_group_get_first_polygon(root); p != 0; p = ZELMAR_group_get_next_polygon(p))
        if (ZELMAR_polygon_get_second_bitmap(p) != 0) ++n;
    return n;
}

class LightMaps : public LightForm {
  protected:
    // Runs Create > Light Maps; `inside` gets the dialog while it is up (before and after Compute).
    void run(const std::function<void(frmLightMapParameterInput&)>& inside) {
        dlg.execAnswers.push_back([inside](QDialog& d) {
            auto& f = dynamic_cast<frmLightMapParameterInput&>(d);
            inside(f);
            return f.result();
        });
        form->mnuLightMaps->trigger();
    }
    // Small maps without shadows: the loop, not the engine, is under test.
    static void quick(frmLightMapParameterInput& f) {
        f.txtMaxSize->setText(QStringLiteral("4"));
        f.txtMinSize->setText(QStringLiteral("2"));
        f.txtSamplingRate->setText(QStringLiteral("500"));
        f.chkRaytracing->setChecked(false);
    }
    // Escape reaches the form between polygons, after polygon `at`.
    static void escapeAfter(frmLightMapParameterInput& f, int at) {
        f.AfterPolygon = [&f, at](int done, int) {
            if (done == at) QCoreApplication::postEvent(&f, new QKeyEvent(QEvent::KeyPress, Qt::Key_Escape, {}));
        };
    }
    int total() { return ZELMAR_group_get_number_of_polygons(root); }
    ScriptedDialogs dlg;
};

TEST_F(LightMaps, BadEntriesGiveTheirMessagesInTheDesignsOrder) {
    run([this](frmLightMapParameterInput& f) {
        EXPECT_EQ(f.windowTitle(), QStringLiteral("Light Map Parameters"));
        f.txtSamplingRate->setText(QStringLiteral("abc"));
        ASSERT_EQ(dlg.count(QStringLiteral("msgBox")), 1);
        EXPECT_EQ(dlg.last(QStringLiteral("msgBox"))->text, QStringLiteral("Sampling Rate has to be a number"));
        EXPECT_EQ(dlg.last(QStringLiteral("msgBox"))->icon, int(MsgInformation));
        f.txtSamplingRate->setText(QStringLiteral("0"));
        EXPECT_EQ(dlg.last(QStringLiteral("msgBox"))->text,
                  QStringLiteral("Sampling Rate has to be a positive number"));
        f.txtSamplingRate->setText(QStringLiteral("-3"));
        EXPECT_EQ(dlg.last(QStringLiteral("msgBox"))->text,
                  QStringLiteral("Sampling Rate has to be a positive number"));
        f.txtSamplingRate->setText(QStringLiteral("nan"));
        EXPECT_EQ(dlg.last(QStringLiteral("msgBox"))->text, QStringLiteral("Sampling Rate has to be a number"));
        f.txtSamplingRate->setText(QStringLiteral("12.5"));
        const int asked = dlg.count(QStringLiteral("msgBox"));
        f.txtMaxSize->setText(QStringLiteral("x"));
        EXPECT_EQ(dlg.last(QStringLiteral("msgBox"))->text, QStringLiteral("Max Map Size has to be a number"));
        f.txtMaxSize->setText(QStringLiteral("7.5"));
        EXPECT_EQ(dlg.last(QStringLiteral("msgBox"))->text, QStringLiteral("Max Map Size has to be an integer"));
        // A size of one or less passes: the design's third size test looks at the sampling rate.
        f.txtMaxSize->setText(QStringLiteral("0"));
        EXPECT_EQ(dlg.count(QStringLiteral("msgBox")), asked + 2);
        f.txtMinSize->setText(QStringLiteral(""));
        EXPECT_EQ(dlg.last(QStringLiteral("msgBox"))->text, QStringLiteral("Min Map Size has to be a number"));
        // Compute with a bad entry: the message again, and no bake.
        f.cmdCompute->click();
        EXPECT_EQ(dlg.last(QStringLiteral("msgBox"))->text, QStringLiteral("Min Map Size has to be a number"));
        EXPECT_FALSE(f.frmProgress->isVisibleTo(&f));
        EXPECT_EQ(f.Processed(), 0);
        // The up-down writes its value into the text; a valid text moves the up-down.
        f.txtMinSize->setText(QStringLiteral("3"));
        EXPECT_EQ(f.updwnMinSize->value(), 3);
        f.updwnMinSize->setValue(5);
        EXPECT_EQ(f.txtMinSize->text(), QStringLiteral("5"));
    });
    EXPECT_EQ(polygonsWithLightMaps(root), 0);
}

TEST_F(LightMaps, ASizeOutOfRangeBakesNothingAndAHugeOneIsReportedNotCrashed) {
    const int changes = stack().GetChangesSinceSave();
    run([](frmLightMapParameterInput& f) {
        quick(f);
        f.txtMaxSize->setText(QStringLiteral("0")); // passes the checks; the engine makes no map
        f.cmdCompute->click();
        EXPECT_EQ(f.Made(), 0);
    });
    EXPECT_EQ(polygonsWithLightMaps(root), 0);
    // Beyond 32 bits the size cannot be read: the common error report, and the world as it was.
    QString reported;
    setErrorPresenter([&](const QString& text) { reported = text; });
    run([](frmLightMapParameterInput& f) {
        quick(f);
        f.txtMaxSize->setText(QStringLiteral("1e12"));
        f.cmdCompute->click();
        EXPECT_FALSE(f.Computing());
    });
    EXPECT_TRUE(reported.contains(QStringLiteral("Overflow"))) << reported.toStdString();
    EXPECT_EQ(polygonsWithLightMaps(root), 0);
    for (int i = 1; i <= lights->Markers().TotalLightGrps(); ++i)
        EXPECT_EQ(ZELMAR_group_is_disable(lights->Markers().GetLightGrp_UsingIndex(i)), 0);
    // A bake pushes no action.
    EXPECT_EQ(stack().GetChangesSinceSave(), changes);
}

TEST_F(LightMaps, TheBakeHidesShownMarkersOnlyAndShowsProgress) {
    // Two lights of the sample world and one made here; the made one hidden.
    form->mnuOmnidirectional->trigger();
    const int hiddenLight = Sel().CurrSelEntity;
    form->mnuHideSelected->trigger();
    const int hiddenMarker = lights->Markers().GetLightGrp(hiddenLight);
    ASSERT_EQ(ZELMAR_group_is_disable(hiddenMarker), 1);
    std::vector<int> shown;
    for (int i = 1; i <= lights->Markers().TotalLightGrps(); ++i)
        if (lights->Markers().GetLightGrp_UsingIndex(i) != hiddenMarker)
            shown.push_back(lights->Markers().GetLightGrp_UsingIndex(i));
    ASSERT_EQ(shown.size(), 2u);
    int markersShownDuringBake = 0, firstTotalLabel = -1;
    run([&](frmLightMapParameterInput& f) {
        quick(f);
        f.AfterPolygon = [&](int done, int) {
            for (int g : shown)
                markersShownDuringBake += ZELMAR_group_is_disable(g) == 0;
            if (done == 1) {
                firstTotalLabel = f.lblTotalPolsCount->text().toInt();
                EXPECT_TRUE(f.frmProgress->isVisibleTo(&f));
                EXPECT_FALSE(f.frmParam->isVisibleTo(&f));
                EXPECT_FALSE(f.cmdCompute->isVisibleTo(&f));
                EXPECT_EQ(f.lblPolsProcessed->text(), QStringLiteral("Polygons already processed:"));
                EXPECT_EQ(f.lblTotalPols->text(), QStringLiteral("Total polygons to be processed:"));
            }
            EXPECT_EQ(f.ProgressBar1->value(), done);
            EXPECT_EQ(f.lblPolsProcessedCount->text().toInt(), done);
        };
        f.cmdCompute->click();
        EXPECT_EQ(f.result(), int(QDialog::Accepted));
    });
    EXPECT_EQ(firstTotalLabel, total());
    EXPECT_EQ(markersShownDuringBake, 0);
    for (int g : shown)
        EXPECT_EQ(ZELMAR_group_is_disable(g), 0);
    EXPECT_EQ(ZELMAR_group_is_disable(hiddenMarker), 1);
    EXPECT_EQ(polygonsWithLightMaps(root), total());
    EXPECT_EQ(dlg.count(QStringLiteral("msgBox")), 0);
}

TEST_F(LightMaps, EscapeAsksBetweenPolygonsAndNoGoesOn) {
    run([&](frmLightMapParameterInput& f) {
        quick(f);
        escapeAfter(f, 1);
        dlg.msgAnswers = {vbNo};
        f.cmdCompute->click();
        EXPECT_FALSE(f.Aborted());
        EXPECT_EQ(f.Processed(), total());
    });
    ASSERT_EQ(dlg.count(QStringLiteral("msgBox")), 1);
    EXPECT_EQ(dlg.last(QStringLiteral("msgBox"))->text, AbortQuestion);
    EXPECT_EQ(dlg.last(QStringLiteral("msgBox"))->buttons, int(MsgYesNo));
    EXPECT_EQ(polygonsWithLightMaps(root), total());
}

TEST_F(LightMaps, AbortAtTheFirstPolygonLeavesAWorldThatSavesAndLoads) {
    run([&](frmLightMapParameterInput& f) {
        quick(f);
        escapeAfter(f, 1);
        dlg.msgAnswers = {vbYes};
        f.cmdCompute->click();
        EXPECT_TRUE(f.Aborted());
        EXPECT_EQ(f.Processed(), 1);
        EXPECT_FALSE(f.Computing());
    });
    EXPECT_EQ(polygonsWithLightMaps(root), 1);
    for (int i = 1; i <= lights->Markers().TotalLightGrps(); ++i)
        EXPECT_EQ(ZELMAR_group_is_disable(lights->Markers().GetLightGrp_UsingIndex(i)), 0);
    const QString path = tempPath(QStringLiteral("aborted bake.wld"));
    dlg.fileAnswers = {path};
    form->mnuSaveAs_Click();
    form->mnuCloseFile_Click();
    dlg.fileAnswers = {path};
    form->mnuOpenFile_Click();
    ASSERT_TRUE(form->WorldOpen());
    root = form->Document()->RootGrp;
    EXPECT_EQ(polygonsWithLightMaps(root), 1);
}

TEST_F(LightMaps, AtTheLastPolygonAYesStopsBeforeItAndAfterItThereIsNothingToAsk) {
    run([&](frmLightMapParameterInput& f) {
        quick(f);
        escapeAfter(f, total() - 1);
        dlg.msgAnswers = {vbYes};
        f.cmdCompute->click();
        EXPECT_EQ(f.Processed(), total() - 1);
    });
    EXPECT_EQ(polygonsWithLightMaps(root), total() - 1);
    const int asked = dlg.count(QStringLiteral("msgBox"));
    run([&](frmLightMapParameterInput& f) {
        quick(f);
        escapeAfter(f, total());
        f.cmdCompute->click();
        EXPECT_EQ(f.Processed(), total());
        EXPECT_FALSE(f.Aborted());
    });
    EXPECT_EQ(dlg.count(QStringLiteral("msgBox")), asked);
    EXPECT_EQ(polygonsWithLightMaps(root), total());
}

TEST_F(LightMaps, TheCloseBoxDuringTheBakeAsksToo) {
    run([&](frmLightMapParameterInput& f) {
        quick(f);
        f.AfterPolygon = [&f](int done, int) {
            if (done == 3) f.close();
        };
        dlg.msgAnswers = {vbYes};
        f.cmdCompute->click();
        EXPECT_EQ(f.Processed(), 3);
    });
    EXPECT_EQ(dlg.last(QStringLiteral("msgBox"))->text, AbortQuestion);
}

TEST_F(LightMaps, AWorldWithoutPolygonsShowsTheProgressAndNothingElse) {
    // A new world (the template offer is declined) with one light.
    form->mnuNew_Click();
    ASSERT_TRUE(form->WorldOpen());
    root = form->Document()->RootGrp;
    form->mnuOmnidirectional->trigger();
    const int marker = lights->Markers().GetLightGrp(Sel().CurrSelEntity);
    run([&](frmLightMapParameterInput& f) {
        f.cmdCompute->click();
        EXPECT_TRUE(f.frmProgress->isVisibleTo(&f));
        EXPECT_EQ(f.Processed(), 0);
    });
    EXPECT_EQ(ZELMAR_group_is_disable(marker), 0);
    EXPECT_EQ(dlg.count(QStringLiteral("msgBox")), 0);
}

TEST_F(LightMaps, AWorldWithoutLightsBakesDarkMaps) {
    // Both lights of the sample world deleted: their markers stay hidden, the maps are made all the same.
    for (const char* name : {"Sun", "Lamp"}) {
        lights->Model().SelectEntityFromTree(4, LightUsingName(name));
        lights->Model().DeleteSelected();
    }
    run([](frmLightMapParameterInput& f) {
        quick(f);
        f.cmdCompute->click();
        EXPECT_FALSE(f.Aborted());
    });
    EXPECT_EQ(polygonsWithLightMaps(root), total());
    for (int i = 1; i <= lights->Markers().TotalLightGrps(); ++i)
        EXPECT_EQ(ZELMAR_group_is_disable(lights->Markers().GetLightGrp_UsingIndex(i)), 1);
    EXPECT_EQ(dlg.count(QStringLiteral("msgBox")), 0);
}

TEST_F(LightMaps, TheDefaultBakeOfTheSampleWorldAndRemoveLightMaps) {
    run([](frmLightMapParameterInput& f) { f.cmdCompute->click(); });
    EXPECT_EQ(polygonsWithLightMaps(root), total());
    // The group menu's Remove Light Maps: the current group's polygons lose them.
    const int house = GroupUsingName("House");
    lights->Model().SelectEntityFromTree(1, house);
    const int before = polygonsWithLightMaps(root);
    form->mnuGroupMenuRemoveLightMaps->trigger();
    EXPECT_EQ(polygonsWithLightMaps(house), 0);
    EXPECT_EQ(polygonsWithLightMaps(root), before - ZELMAR_group_get_number_of_polygons(house));
}

} // namespace
