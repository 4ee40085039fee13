// The polygon panel, formTrnsClrPcr and formGrpProperties on their real widgets (offscreen): the filter list,
// the guards, one undo step per change, the four transparency refusals, a colour picked by a click on the
// bitmap, and the group dialog's validation, rename, diminution, filter and resize.
#include "MaterialsTestSupport.h"
#include "frame/Spinner.h"
#include "engine/EntityNaming.h"
#include "materials/BitmapFiles.h"
#include "materials/PolygonSurfacePanel.h"
#include "materials/formGrpProperties.h"
#include "materials/formTrnsClrPcr.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPushButton>
#include <QTest>

using namespace vexil;
using namespace vexil::test;

namespace {

class PolygonPanel : public MaterialsTest {
  protected:
    void SetUp() override {
        MaterialsTest::SetUp();
        panel = std::make_unique<PolygonSurfacePanel>();
        panel->show();
        pond = makeGroup("Pond", root);
        pols = addBox(pond, {0, 0, 0}, 4);
        fence = ZELMAR_bitmap_load(writeBitmap(file("fence.bmp"), 8, 8, checker).c_str(), -1);
        ASSERT_NE(fence, 0);
    }
    void TearDown() override {
        panel.reset();
        MaterialsTest::TearDown();
    }
    void selectPols(const std::vector<int>& p) {
        select(pond, p);
        panel->UpdateEditGeomTabBasedOnPolsSelected();
    }
    std::unique_ptr<PolygonSurfacePanel> panel;
    int pond = 0, fence = 0;
    std::vector<int> pols;
};

TEST_F(PolygonPanel, TheFilterListHasTheNineFiltersInOrderAndEachChoiceIsOneStep) {
    ASSERT_EQ(panel->cmbPolFilter->count(), 9);
    const char* texts[9] = {"Disable Blending", "Dark Filter",       "Opaque Filter", "Normal",  "Control",
                            "Bright Transparent", "Bright Translucent", "Light Source",  "Inverse"};
    for (int i = 0; i < 9; ++i) EXPECT_EQ(panel->cmbPolFilter->itemText(i), QString::fromLatin1(texts[i]));
    EXPECT_EQ(panel->cmbPolFilter->currentIndex(), 0);

    selectPols({pols[0], pols[1]});
    panel->cmbPolFilter->setCurrentIndex(3);
    panel->cmbPolFilter_Click();
    EXPECT_EQ(ZELMAR_polygon_get_translucent(pols[1]), 0x52);
    EXPECT_EQ(pushes(), 1);
    // The program filling the panel does not act.
    panel->cmbPolFilter->setProperty("Tag", QStringLiteral("Dissable Change"));
    panel->cmbPolFilter->setCurrentIndex(8);
    panel->cmbPolFilter_Click();
    EXPECT_EQ(ZELMAR_polygon_get_translucent(pols[1]), 0x52);
    panel->cmbPolFilter->setProperty("Tag", QString());
    // Undo shows the first polygon's value again.
    ASSERT_TRUE(undo());
    EXPECT_EQ(ZELMAR_polygon_get_translucent(pols[0]), 0);
    EXPECT_EQ(panel->cmbPolFilter->currentIndex(), 0);
    // Selecting a polygon with a filter shows it.
    ZELMAR_polygon_set_translucent(pols[2], 0x22);
    selectPols({pols[2]});
    EXPECT_EQ(panel->cmbPolFilter->currentText(), QStringLiteral("Light Source"));
    EXPECT_EQ(pushes(), 1);
}

TEST_F(PolygonPanel, RotatedAndDiminutionAreOneStepEachAndAnUnchangedSpinnerPushesNothing) {
    selectPols({pols[0], pols[1]});
    panel->chkPolRotated->click();
    EXPECT_EQ(ZELMAR_polygon_is_rotated(pols[1]), 1);
    EXPECT_EQ(pushes(), 1);
    ASSERT_TRUE(undo());
    EXPECT_EQ(ZELMAR_polygon_is_rotated(pols[1]), 0);
    EXPECT_FALSE(panel->chkPolRotated->isChecked());

    panel->spnLightDimu->SetValue(0); // as it is
    panel->spnLightDimu_MouseUp();
    EXPECT_EQ(pushes(), 1); // the undone step still sits on the redo side; nothing new
    panel->spnLightDimu->SetValue(35);
    panel->spnLightDimu_MouseUp();
    EXPECT_EQ(ZELMAR_polygon_get_light_diminution(pols[1]), 35);
    ASSERT_TRUE(undo());
    EXPECT_EQ(ZELMAR_polygon_get_light_diminution(pols[1]), 0);
    EXPECT_EQ(panel->spnLightDimu->Value(), 0);
}

TEST_F(PolygonPanel, TransparencyIsRefusedWithTheFourMessages) {
    auto tick = [&] {
        panel->chkEditPolTrans->setChecked(true);
        panel->chkEditPolTrans_Click();
        return dialogs.count(QStringLiteral("msgBox")) ? dialogs.last("msgBox")->text : QString();
    };
    selectPols({});
    EXPECT_EQ(tick(), GetLocaleString(372));
    EXPECT_FALSE(panel->chkEditPolTrans->isChecked());
    EXPECT_FALSE(panel->cmdPoltextureTransparentClr->isEnabled());
    const int anim = ZELMAR_animation_create("Ripples");
    ZELMAR_polygon_set_animation(pols[0], anim);
    selectPols({pols[0]});
    EXPECT_EQ(tick(), GetLocaleString(374));
    selectPols({pols[1]});
    EXPECT_EQ(tick(), GetLocaleString(373));
    selectPols({pols[1], pols[2]});
    EXPECT_EQ(tick(), GetLocaleString(375));
    const int asked = dialogs.count(QStringLiteral("msgBox"));
    ZELMAR_polygon_set_bitmap_fill(pols[3], fence);
    selectPols({pols[3]});
    tick();
    EXPECT_EQ(dialogs.count(QStringLiteral("msgBox")), asked);
    EXPECT_TRUE(panel->chkEditPolTrans->isChecked());
    EXPECT_TRUE(panel->cmdPoltextureTransparentClr->isEnabled());
}

TEST_F(PolygonPanel, AColourPickedOnTheBitmapBecomesTransparentForOnePolygonOrAllWithThatBitmap) {
    for (int p : pols) ZELMAR_polygon_set_bitmap_fill(p, fence);
    selectPols({pols[0]});
    // Click the first pixel (0x30A0E0, the checker's blue) and tick "all polygons with the same bitmap".
    dialogs.execAnswers.push_back([](QDialog& d) {
        auto& form = static_cast<formTrnsClrPcr&>(d);
        QWidget* picture = d.findChild<QWidget*>(QStringLiteral("picBitmap"));
        QTest::mouseClick(picture, Qt::LeftButton, {}, QPoint(1, 1));
        EXPECT_EQ(form.ChosenColour(), ColourValue(0x30, 0xA0, 0xE0));
        form.Check1->setChecked(true);
        form.cmdOk_Click();
        return int(QDialog::Accepted);
    });
    panel->chkEditPolTrans->setChecked(true);
    panel->chkEditPolTrans_Click();
    panel->cmdPoltextureTransparentClr_Click();
    const int clear = ZELMAR_polygon_get_bitmap_handle(pols[0]);
    EXPECT_NE(clear, fence);
    for (int p : pols) EXPECT_EQ(ZELMAR_polygon_get_bitmap_handle(p), clear);
    EXPECT_EQ(ZELMAR_bitmap_get_transparent_index(clear), ColourValue(0x30, 0xA0, 0xE0));
    EXPECT_EQ(pushes(), 1);
    ASSERT_TRUE(undo());
    for (int p : pols) EXPECT_EQ(ZELMAR_polygon_get_bitmap_handle(p), fence);
    // Cancel changes nothing.
    dialogs.execAnswers.push_back([](QDialog& d) {
        static_cast<formTrnsClrPcr&>(d).cmdCancel_Click();
        return int(QDialog::Rejected);
    });
    panel->cmdPoltextureTransparentClr_Click();
    EXPECT_EQ(ZELMAR_polygon_get_bitmap_handle(pols[0]), fence);
}

TEST_F(PolygonPanel, GroupColourGoesToTheSelectedPolygonsAtPolygonLevelElseToTheGroup) {
    selectPols({pols[0]});
    dialogs.colorAnswers = {QColor(10, 20, 30)};
    panel->cmdGrpClr_Click();
    int rgb[3];
    ZELMAR_polygon_get_color(pols[0], rgb);
    EXPECT_EQ(rgb[2], 30);
    ZELMAR_polygon_get_color(pols[1], rgb);
    EXPECT_NE(rgb[2], 30);
    host.polygonLevel = false;
    dialogs.colorAnswers = {QColor(1, 2, 3)};
    panel->cmdGrpClr_Click();
    ZELMAR_polygon_get_color(pols[5], rgb);
    EXPECT_EQ(rgb[0], 1);
    dialogs.colorAnswers = {std::nullopt}; // cancelled: nothing
    panel->cmdGrpClr_Click();
    EXPECT_EQ(pushes(), 2);
}

class GroupProperties : public PolygonPanel {};

TEST_F(GroupProperties, BadEntriesAreRefusedAndChangeNothing) {
    select(pond);
    formGrpProperties form(pond);
    EXPECT_EQ(form.windowTitle(), QStringLiteral("Group Properties."));
    for (const char* bad : {"abc", "-5", "101", ""}) {
        form.txtPolLightDimu->setText(QString::fromLatin1(bad));
        form.cmdApply_Click();
        EXPECT_EQ(dialogs.last("msgBox")->text, GetLocaleString(580)) << bad;
    }
    form.txtPolLightDimu->setText(QStringLiteral("20"));
    for (const char* bad : {"-2", "x", "0", "inf"}) {
        form.txtGrpDim[0]->setText(QString::fromLatin1(bad));
        form.cmdApply_Click();
        EXPECT_TRUE(dialogs.last("msgBox")->text.startsWith(GetLocaleString(579))) << bad;
    }
    EXPECT_EQ(ZELMAR_polygon_get_light_diminution(pols[0]), 0);
    EXPECT_EQ(pushes(), 0);
}

TEST_F(GroupProperties, ApplyRenamesSetsDiminutionFilterAndSizeAsUndoSteps) {
    select(pond);
    formGrpProperties form(pond);
    form.txtGrpName->setText(QStringLiteral("Lake"));
    form.txtPolLightDimu->setText(QStringLiteral("25"));
    form.cmbPolFilter->setCurrentIndex(1);
    form.txtGrpDim[0]->setText(QStringLiteral("8"));
    form.cmdApply_Click();
    EXPECT_EQ(QString::fromLocal8Bit(EntityName(pond).c_str()), QStringLiteral("Lake"));
    for (int p : pols) {
        EXPECT_EQ(ZELMAR_polygon_get_light_diminution(p), 25);
        EXPECT_EQ(ZELMAR_polygon_get_translucent(p), 0x31);
    }
    double dims[3];
    ZELMAR_group_get_dimensions(pond, dims);
    EXPECT_NEAR(dims[0], 8, 1e-9);
    EXPECT_NEAR(dims[1], 4, 1e-9);
    EXPECT_EQ(pushes(), 3); // diminution, filter, size (the host renames directly here)
    EXPECT_EQ(host.selectionChanges, 1);
    ASSERT_TRUE(undo());
    ASSERT_TRUE(undo());
    EXPECT_EQ(ZELMAR_polygon_get_translucent(pols[0]), 0);
    ZELMAR_group_get_dimensions(pond, dims);
    EXPECT_NEAR(dims[0], 4, 1e-9);
}

TEST_F(GroupProperties, AFlatAxisKeepsItsFactor) {
    const int sheet = makeGroup("Sheet", root);
    addQuad(sheet, {{{0, 0, 0}, {0, 3, 0}, {0, 3, 2}, {0, 0, 2}}}); // flat along x
    select(sheet);
    formGrpProperties form(sheet);
    EXPECT_EQ(form.txtGrpDim[0]->text(), QStringLiteral("0"));
    form.txtGrpDim[1]->setText(QStringLiteral("6"));
    form.cmdOk_Click();
    double dims[3];
    ZELMAR_group_get_dimensions(sheet, dims);
    EXPECT_EQ(dims[0], 0);
    EXPECT_NEAR(dims[1], 6, 1e-9);
    EXPECT_NEAR(dims[2], 2, 1e-9);
}

} // namespace
