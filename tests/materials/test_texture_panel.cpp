// The Texture tab on its real widgets (offscreen): the tree built from the engine's lists, node clicks and the
// preview, the context menu's rules, New, Update and Delete with their messages and what they cascade to,
// bitmap files a world could not read, and bad files.
#include "MaterialsTestSupport.h"
#include "materials/TextureImages.h"
#include "materials/TexturePanel.h"

#include <QAction>
#include <QFile>
#include <QLabel>
#include <QMenu>
#include <QPushButton>
#include <QTimer>
#include <QTreeWidget>

using namespace vexil;
using namespace vexil::test;

namespace {

class TextureList : public MaterialsTest {
  protected:
    void SetUp() override {
        MaterialsTest::SetUp();
        panel = std::make_unique<TexturePanel>();
        panel->resize(300, 700);
        panel->show();
        QCoreApplication::processEvents();
    }
    void TearDown() override {
        panel.reset();
        MaterialsTest::TearDown();
    }
    QTreeWidgetItem* node(const QString& key) { return panel->Node(key); }
    QTreeWidgetItem* mapNode(int b) { return node(QStringLiteral("Map%1").arg(b)); }
    void click(QTreeWidgetItem* n) {
        panel->trwTextures->setCurrentItem(n);
        panel->trwTextures_NodeClick(n);
    }
    int loadFile(const char* name, unsigned (*pixel)(int, int) = checker, int w = 8, int h = 8) {
        writeBitmap(file(name), w, h, pixel);
        return ZELMAR_bitmap_load(file(name).toLocal8Bit().constData(), -1);
    }
    std::unique_ptr<TexturePanel> panel;
};

TEST_F(TextureList, TheTreeListsBitmapsAndAnimationsUnderTwoRootsByTheNarrowNameTest) {
    const int brick = loadFile("brick.bmp");
    const int lm1 = loadFile("LIGHTMAP_0001.bmp");
    const int lm2 = loadFile("wall_LIGHTMAP_7.bmp");
    const int anim = ZELMAR_animation_create("Flames");
    panel->trwTextures_Populate();
    ASSERT_EQ(panel->trwTextures->topLevelItemCount(), 2);
    QTreeWidgetItem* map = panel->trwTextures->topLevelItem(0);
    EXPECT_EQ(TexturePanel::NodeKey(map), QStringLiteral("MAP"));
    EXPECT_EQ(map->text(0), GetLocaleString(355));
    EXPECT_EQ(TexturePanel::NodeKey(panel->trwTextures->topLevelItem(1)), QStringLiteral("ANIMATION"));
    ASSERT_TRUE(mapNode(brick));
    EXPECT_EQ(mapNode(brick)->text(0), QStringLiteral("brick"));
    EXPECT_EQ(TexturePanel::NodeImage(mapNode(brick)), QStringLiteral("Texture"));
    EXPECT_TRUE(mapNode(lm1));
    EXPECT_FALSE(mapNode(lm2));
    ASSERT_TRUE(node(QStringLiteral("Animation%1").arg(anim)));
    EXPECT_EQ(node(QStringLiteral("Animation%1").arg(anim))->text(0), QStringLiteral("Flames"));
    // Expanding and collapsing a root only swaps its image.
    map->setExpanded(true);
    EXPECT_EQ(TexturePanel::NodeImage(map), QStringLiteral("FolderOpen"));
    map->setExpanded(false);
    EXPECT_EQ(TexturePanel::NodeImage(map), QStringLiteral("Folder"));
}

TEST_F(TextureList, ABitmapAddedTwiceKeepsOneNodeAndPngAndTgaLoadToo) {
    writeBitmap(file("brick.bmp"), 8, 8, checker);
    dialogs.fileAnswers = {file("brick.bmp"), file("brick.bmp")};
    panel->mnuTextureNew_Click();
    panel->mnuTextureNew_Click();
    EXPECT_EQ(node(QStringLiteral("MAP"))->childCount(), 1);
    EXPECT_TRUE(node(QStringLiteral("MAP"))->isExpanded());
    const int brick = ZELMAR_bitmap_get_handle(file("brick.bmp").toLocal8Bit().constData());
    EXPECT_EQ(panel->SelectedNode(), mapNode(brick));

    writeBitmap(file("leaf.png"), 4, 4, stripes);
    QFile::copy(QStringLiteral(ZELMAR_ENTITIES_DATA "/rle4x3.tga"), file("bark.tga"));
    EXPECT_NE(panel->AddTexture(file("leaf.png")), 0);
    const int bark = panel->AddTexture(file("bark.tga"));
    ASSERT_NE(bark, 0);
    EXPECT_EQ(node(QStringLiteral("MAP"))->childCount(), 3);
    EXPECT_EQ(panel->lblTextureDim->text().section(QLatin1Char('\n'), 0, 0), QStringLiteral("4 x 3"));
    EXPECT_TRUE(panel->lblTextureDim->text().contains(QStringLiteral("bark.tga")));
    // A file that cannot be used adds nothing, silently.
    QFile junk(file("junk.bmp"));
    ASSERT_TRUE(junk.open(QIODevice::WriteOnly));
    junk.write("BM this is not a bitmap");
    junk.close();
    EXPECT_EQ(panel->AddTexture(file("junk.bmp")), 0);
    EXPECT_EQ(node(QStringLiteral("MAP"))->childCount(), 3);
    EXPECT_EQ(dialogs.count(QStringLiteral("msgBox")), 0);
}

TEST_F(TextureList, NodeClicksPreviewAndEnableTheButtons) {
    const int big = loadFile("big.bmp", checker, 600, 300);
    const int small = loadFile("small.bmp", checker, 8, 8);
    panel->trwTextures_Populate();
    click(mapNode(big));
    EXPECT_TRUE(panel->cmdTextureApplyToSel[0]->isEnabled());
    EXPECT_TRUE(panel->cmdTextureUpdate->isEnabled());
    EXPECT_TRUE(panel->lblTextureDim->text().startsWith(QStringLiteral("600 x 300")));
    // Fitted into 90% of the frame, the aspect kept.
    const QRect r = panel->imgTexture->geometry();
    EXPECT_LE(r.width(), int(panel->picTexture->width() * 0.9) + 1);
    EXPECT_NEAR(double(r.width()) / r.height(), 2.0, 0.05);
    click(mapNode(small));
    EXPECT_EQ(panel->imgTexture->size(), QSize(8, 8)); // never enlarged
    click(node(QStringLiteral("MAP")));
    EXPECT_FALSE(panel->cmdTextureApplyToSel[1]->isEnabled());
    EXPECT_FALSE(panel->cmdTextureUpdate->isEnabled());
    EXPECT_TRUE(panel->lblTextureDim->text().isEmpty());

    // The file behind a bitmap gone: "File not found!", no picture, and the node marked.
    QFile::remove(file("small.bmp"));
    click(mapNode(small));
    EXPECT_EQ(dialogs.last("msgBox")->text, GetLocaleString(609));
    EXPECT_FALSE(panel->imgTexture->isVisible());
    EXPECT_EQ(TexturePanel::NodeImage(mapNode(small)), QStringLiteral("Texture Missing"));
    panel->trwTextures_Populate();
    EXPECT_EQ(TexturePanel::NodeImage(mapNode(small)), QStringLiteral("Texture Missing"));
    EXPECT_EQ(TexturePanel::NodeImage(mapNode(big)), QStringLiteral("Texture"));
    // A world unloaded leaves the two roots, empty.
    panel->trwTextures_Reset();
    EXPECT_EQ(panel->trwTextures->topLevelItemCount(), 2);
    EXPECT_EQ(node(QStringLiteral("MAP"))->childCount(), 0);
    EXPECT_FALSE(mapNode(big));
}

TEST_F(TextureList, PreviewPlacementKeepsTheAspectAndNeverEnlarges) {
    const PreviewPlace a = PlacePreview(200, 100, 1000, 1000);
    EXPECT_EQ(a.height, 90);
    EXPECT_EQ(a.width, 90);
    EXPECT_EQ(a.x, 55);
    const PreviewPlace b = PlacePreview(200, 100, 20, 10, 10);
    EXPECT_EQ(b.width, 20);
    EXPECT_EQ(b.y, 50);
    EXPECT_EQ(PlacePreview(0, 100, 10, 10).width, 0);
}

TEST_F(TextureList, TheAnimationPreviewAdvancesByFrameTimesAndStopsWhenItsNodeIsLeft) {
    const int a = loadFile("a.bmp"), b = loadFile("b.bmp", stripes);
    const int anim = ZELMAR_animation_create("Walk");
    ZELMAR_animation_add_bitmap(anim, 1, a);
    ZELMAR_animation_add_bitmap(anim, 1, b);
    ZELMAR_animation_set_frame_time(anim, 1, 0, 3);
    ZELMAR_animation_set_frame_time(anim, 1, 1, 7);
    panel->trwTextures_Populate();
    click(node(QStringLiteral("Animation%1").arg(anim)));
    EXPECT_TRUE(panel->tmrAnimPreview->isActive());
    EXPECT_EQ(panel->tmrAnimPreview->interval(), 30);
    EXPECT_TRUE(panel->cmdTextureApplyToSel[0]->isEnabled());
    panel->tmrAnimPreview_Timer();
    EXPECT_EQ(panel->PreviewFrame(), 1);
    EXPECT_EQ(panel->tmrAnimPreview->interval(), 70);
    panel->tmrAnimPreview_Timer();
    EXPECT_EQ(panel->PreviewFrame(), 0); // wrapped
    host.textureTab = false;
    panel->tmrAnimPreview_Timer();
    EXPECT_FALSE(panel->tmrAnimPreview->isActive());
}

TEST_F(TextureList, TheContextMenuFollowsTheNodeUnderTheMouse) {
    const int brick = loadFile("brick.bmp");
    const int anim = ZELMAR_animation_create("Walk");
    panel->trwTextures_Populate();
    panel->trwTextures->expandAll();
    QCoreApplication::processEvents();
    auto menuFor = [&](QTreeWidgetItem* n) {
        panel->trwTextures_MouseUp(panel->trwTextures->visualItemRect(n).center());
        panel->mnuTexture->hide();
        return std::array<bool, 4>{panel->mnuTextureNew->isEnabled(), panel->mnuTextureEdit->isEnabled(),
                                   panel->mnuTextureUpdate->isEnabled(), panel->mnuTextureDelete->isEnabled()};
    };
    EXPECT_EQ(menuFor(node(QStringLiteral("MAP"))), (std::array<bool, 4>{true, false, false, false}));
    EXPECT_EQ(menuFor(mapNode(brick)), (std::array<bool, 4>{false, false, true, true}));
    EXPECT_EQ(menuFor(node(QStringLiteral("Animation%1").arg(anim))), (std::array<bool, 4>{false, true, false, true}));
}

TEST_F(TextureList, DeletingABitmapAsksThenTakesItsBackgroundsAndFills) {
    const int brick = loadFile("brick.bmp");
    const int g = makeGroup("Walls", root);
    const std::vector<int> pols = addBox(g, {0, 0, 0}, 4);
    for (int p : pols) ZELMAR_polygon_set_bitmap_fill(p, brick);
    const int bg = ZELMAR_background_create("Sky", brick);
    panel->trwTextures_Populate();
    click(mapNode(brick));
    dialogs.msgAnswers = {vbNo};
    panel->mnuTextureDelete_Click();
    EXPECT_TRUE(ZELMAR_bitmap_is_bitmap(brick));
    EXPECT_TRUE(dialogs.last("msgBox")->text.startsWith(QStringLiteral("This will remove textures")));
    EXPECT_EQ(dialogs.last("msgBox")->buttons, MsgYesNoCancel);
    dialogs.msgAnswers = {vbYes};
    panel->mnuTextureDelete_Click();
    EXPECT_FALSE(ZELMAR_bitmap_is_bitmap(brick));
    EXPECT_EQ(ZELMAR_background_get_first_background(), 0);
    EXPECT_EQ(host.removedBackgrounds, std::vector<int>{bg});
    EXPECT_EQ(ZELMAR_polygon_get_bitmap_handle(pols[0]), 0);
    EXPECT_FALSE(mapNode(brick));
    EXPECT_EQ(TexturePanel::NodeImage(node(QStringLiteral("MAP"))), QStringLiteral("Folder"));
    EXPECT_EQ(pushes(), 0); // not undoable
}

TEST_F(TextureList, DeletingAnAnimationGivesItsPolygonsTheBlueColour) {
    const int a = loadFile("a.bmp");
    const int anim = ZELMAR_animation_create("Walk");
    ZELMAR_animation_add_bitmap(anim, 1, a);
    const int g = makeGroup("Sprite", root);
    const std::vector<int> pols = addBox(g, {0, 0, 0}, 4);
    ZELMAR_polygon_set_animation(pols[0], anim);
    panel->trwTextures_Populate();
    click(node(QStringLiteral("Animation%1").arg(anim)));
    panel->mnuTextureDelete_Click();
    EXPECT_EQ(dialogs.count(QStringLiteral("msgBox")), 0); // no question
    EXPECT_EQ(ZELMAR_animation_get_first_animation(), 0);
    int rgb[3];
    ZELMAR_polygon_get_color(pols[0], rgb);
    EXPECT_EQ((std::array<int, 3>{rgb[0], rgb[1], rgb[2]}), (std::array<int, 3>{100, 100, 255}));
    ZELMAR_polygon_get_color(pols[1], rgb);
    EXPECT_NE(rgb[2], 255); // polygons without the animation keep theirs
    EXPECT_FALSE(panel->tmrAnimPreview->isActive());
}

TEST_F(TextureList, UpdateReloadsFromDiskAndCarriesTheNewHandleEverywhere) {
    const int brick = loadFile("brick.bmp");
    const int g = makeGroup("Walls", root);
    const std::vector<int> pols = addBox(g, {0, 0, 0}, 4);
    for (int p : pols) ZELMAR_polygon_set_bitmap_fill(p, brick);
    const int bg = ZELMAR_background_create("Sky", brick);
    const int anim = ZELMAR_animation_create("Walk");
    const int other = loadFile("other.bmp", stripes);
    ZELMAR_animation_add_bitmap(anim, 2, other);
    ZELMAR_animation_add_bitmap(anim, 2, brick);
    ZELMAR_animation_set_frame_time(anim, 2, 1, 42);
    panel->trwTextures_Populate();
    click(mapNode(brick));
    writeBitmap(file("brick.bmp"), 16, 4, stripes); // changed on disk
    panel->cmdTextureUpdate_Click();
    const int fresh = ZELMAR_polygon_get_bitmap_handle(pols[3]);
    EXPECT_NE(fresh, brick);
    EXPECT_FALSE(ZELMAR_bitmap_is_bitmap(brick));
    EXPECT_EQ(ZELMAR_bitmap_get_width(fresh), 16);
    for (int p : pols) EXPECT_EQ(ZELMAR_polygon_get_bitmap_handle(p), fresh);
    EXPECT_EQ(ZELMAR_background_get_bitmap(bg), fresh);
    EXPECT_EQ(ZELMAR_animation_get_bitmap(anim, 2, 0), other);
    EXPECT_EQ(ZELMAR_animation_get_bitmap(anim, 2, 1), fresh);
    EXPECT_EQ(ZELMAR_animation_get_frame_time(anim, 2, 1), 42);
    EXPECT_FALSE(mapNode(brick));
    EXPECT_TRUE(mapNode(fresh));
    EXPECT_EQ(pushes(), 0);
}

TEST_F(TextureList, UpdateOfAMovedOrSpoiltFileLeavesTheWorldUnchanged) {
    const int brick = loadFile("brick.bmp");
    const int g = makeGroup("Walls", root);
    const std::vector<int> pols = addBox(g, {0, 0, 0}, 4);
    ZELMAR_polygon_set_bitmap_fill(pols[0], brick);
    panel->trwTextures_Populate();
    click(mapNode(brick));
    QFile::rename(file("brick.bmp"), file("moved.bmp"));
    panel->mnuTextureUpdate_Click();
    EXPECT_EQ(dialogs.last("msgBox")->text, GetLocaleString(359));
    EXPECT_TRUE(ZELMAR_bitmap_is_bitmap(brick));
    EXPECT_EQ(ZELMAR_polygon_get_bitmap_handle(pols[0]), brick);
    // Back, but cut short: a clear message, and still nothing lost.
    QFile::rename(file("moved.bmp"), file("brick.bmp"));
    QFile f(file("brick.bmp"));
    ASSERT_TRUE(f.open(QIODevice::ReadWrite));
    f.resize(60);
    f.close();
    panel->mnuTextureUpdate_Click();
    EXPECT_TRUE(dialogs.last("msgBox")->text.startsWith(GetLocaleString(574)));
    EXPECT_EQ(ZELMAR_polygon_get_bitmap_handle(pols[0]), brick);
    EXPECT_TRUE(mapNode(brick));
}

TEST_F(TextureList, BitmapFilesAWorldCouldNotReadAreListedWithAWarningMark) {
    const int brick = loadFile("brick.bmp");
    const int wood = loadFile("wood.bmp", stripes);
    const int g = makeGroup("Walls", root);
    const std::vector<int> pols = addBox(g, {0, 0, 0}, 4);
    ZELMAR_polygon_set_bitmap_fill(pols[0], brick);
    ZELMAR_polygon_set_bitmap_fill(pols[1], wood);
    const QString world = dir.path() + QStringLiteral("/w.wld");
    ASSERT_EQ(ZELMAR_engine_save(world.toLocal8Bit().constData(), root, 0x1203), 1) << ZELMAR_engine_get_last_error();
    QFile::remove(file("wood.bmp"));
    ASSERT_EQ(ZELMAR_engine_load_world(world.toLocal8Bit().constData(), "", host.folder.toLocal8Bit().constData(), 4), 1);
    panel->trwTextures_Populate();
    QTreeWidgetItem* missing = node(QStringLiteral("Missing0"));
    ASSERT_TRUE(missing);
    EXPECT_EQ(missing->text(0), QStringLiteral("wood"));
    EXPECT_EQ(TexturePanel::NodeImage(missing), QStringLiteral("Texture Missing"));
    EXPECT_FALSE(missing->toolTip(0).isEmpty());
    click(missing);
    EXPECT_FALSE(panel->cmdTextureApplyToSel[0]->isEnabled());
    EXPECT_TRUE(panel->lblTextureDim->text().contains(QStringLiteral("wood")));
    // Back on disk: Update lists it as a bitmap again.
    writeBitmap(file("wood.bmp"), 8, 8, stripes);
    panel->mnuTextureUpdate_Click();
    EXPECT_FALSE(node(QStringLiteral("Missing0")));
    EXPECT_NE(ZELMAR_bitmap_get_handle(file("wood.bmp").toLocal8Bit().constData()), 0);
}

TEST_F(TextureList, BitmapsOfOddSizesLoadOrAreRefusedWithoutHarm) {
    EXPECT_NE(panel->AddTexture(QString::fromStdString(writeBitmap(file("dot.bmp"), 1, 1, checker))), 0);
    // A header that claims 16,385 pixels a side, and a zero-size file.
    QFile huge(file("huge.bmp"));
    ASSERT_TRUE(huge.open(QIODevice::WriteOnly));
    QByteArray h(54, '\0');
    h[0] = 'B', h[1] = 'M', h[10] = 54, h[14] = 40;
    h[18] = char(0x01), h[19] = char(0x40), h[22] = 1, h[26] = 1, h[28] = 24;
    huge.write(h);
    huge.close();
    EXPECT_EQ(panel->AddTexture(file("huge.bmp")), 0);
    QFile(file("empty.jpg")).open(QIODevice::WriteOnly);
    EXPECT_EQ(panel->AddTexture(file("empty.jpg")), 0);
    EXPECT_EQ(node(QStringLiteral("MAP"))->childCount(), 1);
}

} // namespace
