// formAnimation on its real widgets (offscreen): the five directions, frames inserted with times and
// transparent colours, "Apply to all" across directions, the refusals, and an animation made in new mode that
// keeps its frames, times, transparent colours and directions through a save and a load in every world format.
#include "MaterialsTestSupport.h"
#include "engine/EntityNaming.h"
#include "materials/BitmapFiles.h"
#include "materials/TexturePanel.h"
#include "materials/formAnimation.h"
#include "materials/formTrnsClrPcr.h"

#include <QCheckBox>
#include <QFile>
#include <QLineEdit>
#include <QMimeData>
#include <QPushButton>
#include <QTest>
#include <QTreeWidget>
#include <QUrl>

using namespace vexil;
using namespace vexil::test;

namespace {

unsigned red(int, int) { return 0xE03030; }
unsigned green(int x, int y) { return (x + y) % 2 ? 0x20C040 : 0xFFFFFF; }
unsigned blue(int, int y) { return y < 2 ? 0x000000 : 0x3070E0; }

class AnimationDialog : public MaterialsTest {
  protected:
    void SetUp() override {
        MaterialsTest::SetUp();
        using Pixel = unsigned (*)(int, int);
        const std::pair<const char*, Pixel> files[3] = {{"front.bmp", red}, {"side.bmp", green}, {"back.bmp", blue}};
        for (const auto& [name, f] : files) paths.push_back(QString::fromStdString(writeBitmap(file(name), 4, 4, f)));
    }
    QTreeWidgetItem* dirRoot(formAnimation& form, int direction) { return form.DirectionRoots[size_t(direction - 1)]; }
    // Inserts a frame under a direction with a time and, optionally, a transparent colour.
    void insert(formAnimation& form, int direction, const QString& path, int time, long colour = kButtonFace) {
        form.trwAnim->setCurrentItem(dirRoot(form, direction));
        ASSERT_TRUE(form.InsertMap(path));
        form.txtFrmTime->setText(QString::number(time));
        form.txtFrmTime_Validate();
        if (colour != kButtonFace) formAnimation::SetFrmTrnsIndxClr(form.SelectedFrame(), colour);
    }
    std::vector<QString> paths;
};

TEST_F(AnimationDialog, OpensWithTheFiveDirectionsAndANewName) {
    ZELMAR_animation_create("Animation01");
    formAnimation form(0, 0);
    EXPECT_EQ(form.windowTitle(), QStringLiteral("Animation 2D."));
    EXPECT_EQ(form.txtAnimName->text(), QStringLiteral("Animation02"));
    ASSERT_EQ(form.trwAnim->topLevelItemCount(), 5);
    const char* keys[5] = {"FRONT", "FRONT SIDED", "SIDE", "BACK SIDED", "BACK"};
    for (int d = 0; d < 5; ++d)
        EXPECT_EQ(form.trwAnim->topLevelItem(d)->data(0, formAnimation::KeyRole).toString(), QString::fromLatin1(keys[d]));
    EXPECT_EQ(form.trwAnim->currentItem(), dirRoot(form, 1));
    EXPECT_FALSE(form.txtFrmTime->isEnabled()); // a direction is selected, not a frame
}

TEST_F(AnimationDialog, FramesGoLastUnderADirectionOrNextToTheSelectedFrame) {
    formAnimation form(0, 0);
    insert(form, 1, paths[0], 5);
    insert(form, 1, paths[2], 6);
    form.trwAnim->setCurrentItem(dirRoot(form, 1)->child(0));
    ASSERT_TRUE(form.InsertMap(paths[1]));
    ASSERT_EQ(dirRoot(form, 1)->childCount(), 3);
    EXPECT_EQ(dirRoot(form, 1)->child(1)->text(0), QStringLiteral("side.bmp"));
    const QString tag = dirRoot(form, 1)->child(1)->data(0, formAnimation::TagRole).toString();
    EXPECT_EQ(formAnimation::ExtractFrmMapName(tag), paths[1]);
    EXPECT_EQ(formAnimation::ExtractTime(tag), formAnimation::kDefaultFrameTime);
    EXPECT_EQ(formAnimation::ExtractTrnsIndxClr(tag), kButtonFace);
    form.cmdRemove_Click();
    EXPECT_EQ(dirRoot(form, 1)->childCount(), 2);
    // Keys stay unique even for one file twice.
    insert(form, 2, paths[0], 5);
    EXPECT_NE(dirRoot(form, 2)->child(0)->data(0, formAnimation::KeyRole), dirRoot(form, 1)->child(0)->data(0, formAnimation::KeyRole));
}

TEST_F(AnimationDialog, ApplyToAllReachesFramesInAllFiveDirections) {
    formAnimation form(0, 0);
    for (int d = 1; d <= 5; ++d) insert(form, d, paths[size_t(d % 3)], d);
    form.trwAnim->setCurrentItem(dirRoot(form, 3)->child(0));
    form.cmdApplyFrmTimeAll_Click();
    formAnimation::SetFrmTrnsIndxClr(dirRoot(form, 3)->child(0), ColourValue(255, 255, 255));
    form.cmdApplyTransClrToAll_Click();
    for (int d = 1; d <= 5; ++d) {
        const QString tag = dirRoot(form, d)->child(0)->data(0, formAnimation::TagRole).toString();
        EXPECT_EQ(formAnimation::ExtractTime(tag), 3);
        EXPECT_EQ(formAnimation::ExtractTrnsIndxClr(tag), ColourValue(255, 255, 255));
    }
}

TEST_F(AnimationDialog, BadFilesAndBadTimesAreRefusedWithTheirMessages) {
    formAnimation form(0, 0);
    QFile junk(file("junk.bmp"));
    ASSERT_TRUE(junk.open(QIODevice::WriteOnly));
    junk.write("not a bitmap at all");
    junk.close();
    EXPECT_FALSE(form.InsertMap(file("junk.bmp")));
    EXPECT_EQ(dialogs.last("msgBox")->text, QStringLiteral("Unsupported bitmap."));
    EXPECT_FALSE(form.InsertMap(QString())); // an empty path stops quietly
    insert(form, 1, paths[0], 7);
    for (const char* bad : {"0", "-3", "abc", ""}) {
        form.txtFrmTime->setText(QString::fromLatin1(bad));
        form.txtFrmTime_Validate();
        EXPECT_TRUE(dialogs.last("msgBox")->text.startsWith(GetLocaleString(579))) << bad;
        EXPECT_EQ(form.txtFrmTime->text(), QStringLiteral("7"));
    }
    // A frame whose file went before Ok: "Failed Loading Bitmap." and no animation is made.
    insert(form, 2, paths[1], 4);
    const QString side = paths[1];
    ZELMAR_engine_close(); // the bitmaps loaded for the check go with the engine's world
    root = ZELMAR_group_create("the_world");
    QFile::remove(side);
    form.cmdOk_Click();
    EXPECT_EQ(dialogs.last("msgBox")->text.section(QLatin1Char('\n'), 0, 0), QStringLiteral("Failed Loading Bitmap."));
    EXPECT_EQ(ZELMAR_animation_get_first_animation(), 0);
    EXPECT_EQ(form.result(), 0); // still open
}

TEST_F(AnimationDialog, FilesDroppedOnTheTreeGoInWhereTheyLand) {
    formAnimation form(0, 0);
    form.show();
    form.trwAnim->expandAll();
    QCoreApplication::processEvents();
    const QPoint at = form.trwAnim->visualItemRect(dirRoot(form, 4)).center();
    form.trwAnim_OLEDragDrop({QUrl::fromLocalFile(paths[0]), QUrl::fromLocalFile(paths[1])}, at);
    ASSERT_EQ(dirRoot(form, 4)->childCount(), 2);
    EXPECT_EQ(dirRoot(form, 4)->child(1)->text(0), QStringLiteral("side.bmp"));
}

TEST_F(AnimationDialog, ANewAnimationKeepsFramesTimesColoursAndDirectionsThroughEveryWorldFormat) {
    TexturePanel textures;
    {
        formAnimation form(0, 0);
        form.txtAnimName->setText(QStringLiteral("Tree"));
        insert(form, 1, paths[0], 12);
        insert(form, 1, paths[1], 8, ColourValue(255, 255, 255));
        insert(form, 3, paths[1], 20);
        insert(form, 5, paths[2], 30, ColourValue(0, 0, 0));
        // "Direction 2 and 4 empty" is legal.
        form.cmdOk_Click();
        EXPECT_EQ(form.result(), int(QDialog::Accepted));
    }
    const int tree = ZELMAR_animation_get_handle("Tree");
    ASSERT_NE(tree, 0);
    EXPECT_TRUE(textures.Node(QStringLiteral("Animation%1").arg(tree)));
    // Something saved uses it, so that it is written with the world.
    const int g = makeGroup("Sprite", root);
    const int q = addQuad(g, {{{0, 0, 0}, {0, 1, 0}, {0, 1, 1}, {0, 0, 1}}});
    ZELMAR_polygon_set_animation(q, tree);

    struct Frame {
        int direction, time, colour[3];
        QString file;
        bool operator==(const Frame& o) const {
            return direction == o.direction && time == o.time && file == o.file && colour[0] == o.colour[0] &&
                   colour[1] == o.colour[1] && colour[2] == o.colour[2];
        }
    };
    auto framesOf = [](int a) {
        std::vector<Frame> out;
        for (int d = 1; d <= 5; ++d)
            for (int f = 0; f < ZELMAR_animation_get_number_of_frames(a, d); ++f) {
                const int b = ZELMAR_animation_get_bitmap(a, d, f);
                Frame fr{d, ZELMAR_animation_get_frame_time(a, d, f), {-1, -1, -1}, BitmapName(b)};
                const int index = ZELMAR_animation_get_frame_transparent_index(a, d, f);
                if (index != -1) ZELMAR_bitmap_index_to_rgb(b, index, fr.colour);
                out.push_back(fr);
            }
        return out;
    };
    const std::vector<Frame> made = framesOf(tree);
    ASSERT_EQ(made.size(), 4u);
    EXPECT_EQ(made[1].time, 8);
    EXPECT_EQ(made[1].colour[0], 255);
    EXPECT_EQ(made[3].direction, 5);
    EXPECT_EQ(made[3].colour[2], 0);

    for (const char* ext : {".wld", ".zelmar", ".tolvane", ".3dzelmar"}) {
        SCOPED_TRACE(ext);
        const QString world = dir.path() + QStringLiteral("/trees") + QString::fromLatin1(ext);
        ASSERT_EQ(ZELMAR_engine_save(world.toLocal8Bit().constData(), root, 0x1203), 1) << ZELMAR_engine_get_last_error();
        ASSERT_EQ(ZELMAR_engine_load_world(world.toLocal8Bit().constData(), "", "", 4), 1) << ZELMAR_engine_get_last_error();
        const int loaded = ZELMAR_animation_get_handle("Tree");
        ASSERT_NE(loaded, 0);
        EXPECT_EQ(framesOf(loaded), made);
        root = ZELMAR_group_get_first_group();
    }
}

TEST_F(AnimationDialog, EditingShowsTheFramesAndCancelLeavesTheAnimationAsItWas) {
    const int a = ZELMAR_bitmap_load(paths[0].toLocal8Bit().constData(), -1);
    const int b = ZELMAR_bitmap_load(paths[2].toLocal8Bit().constData(), 0); // black transparent
    const int anim = ZELMAR_animation_create("Walk");
    ZELMAR_animation_add_bitmap(anim, 2, a);
    ZELMAR_animation_add_bitmap(anim, 4, b);
    ZELMAR_animation_set_frame_time(anim, 4, 0, 33);
    {
        formAnimation form(1, anim);
        EXPECT_EQ(form.txtAnimName->text(), QStringLiteral("Walk"));
        ASSERT_EQ(dirRoot(form, 2)->childCount(), 1);
        ASSERT_EQ(dirRoot(form, 4)->childCount(), 1);
        const QString tag = dirRoot(form, 4)->child(0)->data(0, formAnimation::TagRole).toString();
        EXPECT_EQ(formAnimation::ExtractTime(tag), 33);
        EXPECT_EQ(formAnimation::ExtractTrnsIndxClr(tag), ColourValue(0, 0, 0));
        form.trwAnim->setCurrentItem(dirRoot(form, 4)->child(0));
        form.cmdRemove_Click();
        form.cmdCancel_Click();
    }
    EXPECT_EQ(ZELMAR_animation_get_number_of_frames(anim, 4), 1);
    {
        formAnimation form(1, anim);
        form.txtAnimName->setText(QStringLiteral("Run"));
        form.trwAnim->setCurrentItem(dirRoot(form, 2)->child(0));
        form.cmdRemove_Click();
        form.cmdOk_Click();
    }
    EXPECT_EQ(ZELMAR_animation_get_number_of_frames(anim, 2), 0);
    EXPECT_EQ(ZELMAR_animation_get_number_of_frames(anim, 4), 1);
    EXPECT_EQ(ZELMAR_animation_get_frame_time(anim, 4, 0), 33);
    EXPECT_EQ(ZELMAR_animation_get_frame_transparent_index(anim, 4, 0), 0);
    EXPECT_EQ(QString::fromLocal8Bit(EntityName(anim).c_str()), QStringLiteral("Run"));
}

TEST_F(AnimationDialog, TheColourButtonPicksAFramesTransparentColourOnItsBitmap) {
    formAnimation form(0, 0);
    insert(form, 1, paths[2], 5);
    dialogs.execAnswers.push_back([](QDialog& d) {
        auto& picker = static_cast<formTrnsClrPcr&>(d);
        EXPECT_FALSE(picker.Check1->isVisibleTo(&d)); // mode 1: no "all polygons"
        picker.PickPixel(0, 0);                        // the black top rows
        picker.cmdOk_Click();
        return int(QDialog::Accepted);
    });
    form.chkTransparent->setChecked(true);
    form.chkTransparent_Click();
    form.cmdColor_Click();
    EXPECT_EQ(formAnimation::ExtractTrnsIndxClr(form.SelectedFrame()->data(0, formAnimation::TagRole).toString()),
              ColourValue(0, 0, 0));
    form.chkTransparent->setChecked(false);
    form.chkTransparent_Click();
    EXPECT_EQ(formAnimation::ExtractTrnsIndxClr(form.SelectedFrame()->data(0, formAnimation::TagRole).toString()), kButtonFace);
}

} // namespace
