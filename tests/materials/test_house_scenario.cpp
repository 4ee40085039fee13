// The done-when scenarios on the real main window with the sample world: a .jpg and a .bmp loaded from the
// Texture tab, one applied to the house's walls and the other to the roof, both planar-mapped, a colour made
// transparent on the fence's texture, a filter on the pond, then every step undone until the world saves back
// byte for byte; the texture map editor fitting a window's texture by a drag, a mirror and an undo; a
// five-direction sprite animation of a tree that turns with the camera.
//
// With VEXIL_MAT_SHOT=<folder> each scenario leaves pictures of the window there (run the test on an X server,
// e.g. xvfb-run with QT_QPA_PLATFORM=xcb, for screenshots under Xvfb).
#include "../app/Form1Fixture.h"
#include "frame/InputState.h"
#include "engine/EntityNaming.h"
#include "document/WorkspaceTrees.h"
#include "document/WorldDocument.h"
#include "materials/BitmapFiles.h"
#include "materials/PolygonSurfacePanel.h"
#include "materials/TextureMapPicture.h"
#include "materials/TexturePanel.h"
#include "materials/formAnimation.h"
#include "materials/frmTextureMapping.h"
#include "selection/SelectionState.h"
#include "view/camera.h"
#include "view/frmPicWins.h"
#include "view/picWindow.h"

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QFile>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPainter>
#include <QPushButton>
#include <QRadioButton>
#include <QTabWidget>
#include <QTreeWidget>
#include <zelmar/zelmar.h>

using namespace vexil;
using vexil::test::Form1Test;

namespace {

class HouseScenario : public Form1Test {
  protected:
    void SetUp() override {
        Form1Test::SetUp();
        start(QStringLiteral("\"" VEXIL_SOURCE_DATA "/samples/Sample.wld\""));
        ASSERT_TRUE(form->WorldOpen());
        root = form->Document()->RootGrp;
        form->resize(1400, 900);
        form->show();
        QCoreApplication::processEvents();
    }
    void shot(const char* name, QWidget* w = nullptr) {
        const QByteArray folder = qgetenv("VEXIL_MAT_SHOT");
        if (folder.isEmpty()) return;
        QCoreApplication::processEvents();
        (w ? w : form)->grab().save(QString::fromLocal8Bit(folder) + QLatin1Char('/') + QString::fromLatin1(name) + QStringLiteral(".png"));
    }
    void treeClick(const char* name) {
        QTreeWidgetItem* n = form->GroupTree->Node(QStringLiteral("Group%1").arg(GroupUsingName(name)));
        ASSERT_NE(n, nullptr) << name;
        form->GroupTree->trwGroupView_NodeClick(n);
    }
    // The Edit Group tab at texture level, every polygon of the current group selected.
    void selectAllPolygons() {
        form->tabWorkspace->setCurrentIndex(Form1::TabEditGroup);
        form->cmbObj->setCurrentIndex(form->cmbObj->findText(GetLocaleString(324)));
        form->mnuSelectAll_Click();
    }
    void textureTab() { form->tabWorkspace->setCurrentIndex(Form1::TabTexture); }
    // A click on the node of the texture list.
    void chooseTexture(const QString& key) {
        QTreeWidgetItem* n = form->frmTexture->Node(key);
        ASSERT_NE(n, nullptr) << key.toStdString();
        form->trwTextures->setCurrentItem(n);
        emit form->trwTextures->itemClicked(n, 0);
    }
    QByteArray saved(const QString& name) {
        const QString path = scratch.path() + QLatin1Char('/') + name + QStringLiteral(".zelmar");
        EXPECT_EQ(ZELMAR_engine_save(path.toLocal8Bit().constData(), root, 0x1201), 1) << ZELMAR_engine_get_last_error();
        QFile f(path);
        EXPECT_TRUE(f.open(QIODevice::ReadOnly));
        return f.readAll();
    }
    static std::string write(const QString& path, int w, int h, unsigned (*pixel)(int, int)) {
        std::vector<unsigned char> rgba(size_t(w) * size_t(h) * 4);
        for (int y = 0; y < h; ++y)
            for (int x = 0; x < w; ++x) {
                const unsigned c = pixel(x, y);
                unsigned char* o = &rgba[(size_t(y) * size_t(w) + size_t(x)) * 4];
                o[0] = (c >> 16) & 0xFF, o[1] = (c >> 8) & 0xFF, o[2] = c & 0xFF, o[3] = 255;
            }
        EXPECT_EQ(ZELMAR_utilities_save_bitmap(rgba.data(), w, h, path.toLocal8Bit().constData()), 1);
        return path.toStdString();
    }
    int groupPolygon(const char* group) { return ZELMAR_group_get_first_polygon(GroupUsingName(group)); }
    // The perspective view's camera looking at `at` from `eye`; answers the view's picture.
    QImage viewFrom(const std::array<double, 3>& eye, const std::array<double, 3>& at) {
        const int cam = form->frmPicWins->ViewCams(2).CamHandle;
        ZELMAR_camera_set_location(cam, eye.data());
        ZELMAR_camera_point_at(cam, at.data());
        form->UpdateCameras();
        QCoreApplication::processEvents();
        return form->frmPicWins->PicWindow(2)->grab().toImage();
    }

    // The perspective view close to the house.
    void lookAtHouse() {
        double c[3] = {0, 0, 0}, d[3] = {0, 0, 0};
        const int house = GroupUsingName("House");
        ZELMAR_group_get_location(house, c);
        ZELMAR_group_get_dimensions(house, d);
        const double r = std::max({d[0], d[1], d[2]});
        viewFrom({c[0] - 1.6 * r, c[1] - 1.2 * r, c[2] + 0.9 * r}, {c[0], c[1], c[2]});
    }

    QTemporaryDir scratch;
    ScriptedDialogs dlg;
    int root = 0;
};

unsigned bricks(int x, int y) { return ((y / 8) % 2 ? (x + 8) / 16 : x / 16) % 2 == 0 && y % 8 && x % 16 ? 0xB04028 : 0xD8D0C0; }
unsigned tiles(int x, int y) { return (x + y / 6 * 5) % 12 < 10 && y % 6 ? 0x802018 : 0x401008; }

TEST_F(HouseScenario, TexturesForWallsAndRoofMappedFenceTransparentPondFilteredAndAllUndone) {
    const QByteArray start = saved(QStringLiteral("start"));
    const int stepsBefore = form->UndoStack().UBound();
    const QString jpg = scratch.path() + QStringLiteral("/plaster.jpg"), bmp = scratch.path() + QStringLiteral("/tiles.bmp");
    write(jpg, 64, 64, bricks);
    write(bmp, 48, 48, tiles);

    // Load a .jpg and a .bmp from the Texture tab.
    textureTab();
    dlg.fileAnswers = {jpg, bmp};
    form->frmTexture->mnuTextureNew_Click();
    form->frmTexture->mnuTextureNew_Click();
    const int plaster = ZELMAR_bitmap_get_handle(jpg.toLocal8Bit().constData());
    const int roofTiles = ZELMAR_bitmap_get_handle(bmp.toLocal8Bit().constData());
    ASSERT_TRUE(plaster && roofTiles);
    ASSERT_TRUE(form->frmTexture->Node(QStringLiteral("Map%1").arg(plaster)));

    // The jpg to the walls, the bmp to the roof, each through "Apply to Group".
    treeClick("Walls");
    textureTab();
    chooseTexture(QStringLiteral("Map%1").arg(plaster));
    form->frmTexture->cmdTextureApplyToSel[1]->click();
    EXPECT_EQ(ZELMAR_polygon_get_bitmap_handle(groupPolygon("Walls")), plaster);
    treeClick("Roof");
    textureTab();
    chooseTexture(QStringLiteral("Map%1").arg(roofTiles));
    form->frmTexture->cmdTextureApplyToSel[1]->click();
    EXPECT_EQ(ZELMAR_polygon_get_bitmap_handle(groupPolygon("Roof")), roofTiles);

    // Planar-mapped: the walls with the X normal, the roof with the averaged normal.
    treeClick("Walls");
    selectAllPolygons();
    textureTab();
    form->frmTexture->opnNormal[0]->setChecked(true);
    form->frmTexture->cmdPlanarMap->click();
    treeClick("Roof");
    selectAllPolygons();
    textureTab();
    form->frmTexture->opnNormal[3]->setChecked(true);
    form->frmTexture->cmdPlanarMap->click();
    lookAtHouse();
    shot("house_textured");

    // A transparent colour on the fence's texture, for all its polygons with that bitmap.
    treeClick("Fence");
    selectAllPolygons();
    const int fencePolygon = Sel().SelPols.At(1);
    const int wood = ZELMAR_polygon_get_bitmap_handle(fencePolygon);
    ASSERT_NE(wood, 0);
    // The panel's checks want a single polygon: the first one.
    Sel().SelPols.Assign({fencePolygon});
    form->frmPolSurface->UpdateEditGeomTabBasedOnPolsSelected();
    form->frmPolSurface->chkEditPolTrans->setChecked(true);
    form->frmPolSurface->chkEditPolTrans_Click();
    ASSERT_TRUE(form->frmPolSurface->cmdPoltextureTransparentClr->isEnabled());
    dlg.execAnswers.push_back([this](QDialog& d) {
        shot("fence_transparent_picker", &d);
        d.findChild<QWidget*>(QStringLiteral("Check1"))->setProperty("checked", true);
        QWidget* picture = d.findChild<QWidget*>(QStringLiteral("picBitmap"));
        QMouseEvent press(QEvent::MouseButtonPress, QPointF(2, 2), QPointF(2, 2), Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(picture, &press);
        QMetaObject::invokeMethod(d.findChild<QPushButton*>(QStringLiteral("cmdOk")), "click");
        return int(QDialog::Accepted);
    });
    form->frmPolSurface->cmdPoltextureTransparentClr->click();
    const int clearWood = ZELMAR_polygon_get_bitmap_handle(fencePolygon);
    EXPECT_NE(clearWood, wood);
    EXPECT_NE(ZELMAR_bitmap_get_transparent_index(clearWood), -1);

    // A filter on the pond.
    treeClick("Pond");
    selectAllPolygons();
    form->cmbPolFilter->setCurrentIndex(3); // "Normal"
    form->frmPolSurface->cmbPolFilter_Click();
    EXPECT_EQ(ZELMAR_polygon_get_translucent(groupPolygon("Pond")), 0x52);
    shot("house_fence_pond");
    if (const QByteArray folder = qgetenv("VEXIL_MAT_SHOT"); !folder.isEmpty())
        ZELMAR_engine_save((folder + "/house_edited.wld").constData(), root, 0x1203);

    // Undo every step: the world is the one that was loaded, byte for byte.
    EXPECT_NE(saved(QStringLiteral("edited")), start);
    while (form->UndoStack().UBound() > stepsBefore && form->mnuUndo->isEnabled()) {
        const int top = form->UndoStack().GetStackTop();
        form->mnuUndo->trigger();
        if (form->UndoStack().GetStackTop() == top) break;
    }
    EXPECT_TRUE(saved(QStringLiteral("undone")) == start);
    EXPECT_EQ(ZELMAR_polygon_get_bitmap_handle(fencePolygon), wood);
    shot("house_undone");
}

TEST_F(HouseScenario, TheTextureMapEditorFitsAWindowsTextureByADragMirrorsItAndUndoes) {
    FakeInputState keys;
    // The windows get a bitmap and a planar map first.
    const QString file = scratch.path() + QStringLiteral("/glass.bmp");
    write(file, 64, 64, bricks);
    textureTab();
    const int glass = form->frmTexture->AddTexture(file);
    ASSERT_NE(glass, 0);
    treeClick("Windows");
    textureTab();
    chooseTexture(QStringLiteral("Map%1").arg(glass));
    form->frmTexture->cmdTextureApplyToSel[1]->click();
    selectAllPolygons();
    // One pane, mapped on its own plane (the averaged normal of one polygon is its own).
    Sel().SelPols.Assign({Sel().SelPols.At(1)});
    textureTab();
    form->frmTexture->opnNormal[3]->setChecked(true);
    form->frmTexture->cmdPlanarMap->click();

    form->frmTexture->cmdEditTexture->click();
    frmTextureMapping* editor = form->frmTexture->TextureMapping();
    ASSERT_NE(editor, nullptr);
    editor->resize(720, 600);
    editor->show();
    QCoreApplication::processEvents();
    EXPECT_EQ(editor->MapHandle(), glass);
    // "Selected Only": the pane alone is drawn and edited.
    editor->Button(QStringLiteral("Selected Only"))->trigger();

    // The first window polygon's points, by a rubber band around its coordinates.
    const int pane = Sel().SelPols.At(1);
    double lo[2] = {1e9, 1e9}, hi[2] = {-1e9, -1e9};
    std::vector<std::array<double, 2>> before;
    for (int p = ZELMAR_polygon_get_first_point(pane); p; p = ZELMAR_point_get_next_point(p)) {
        std::array<double, 2> uv{};
        ZELMAR_point_get_bitmap_xy(p, uv.data());
        before.push_back(uv);
        for (int k = 0; k < 2; ++k) lo[k] = std::min(lo[k], uv[size_t(k)]), hi[k] = std::max(hi[k], uv[size_t(k)]);
    }
    QWidget* pic = editor->PicMain;
    auto mouse = [&](QEvent::Type type, QPoint p, Qt::MouseButton b, Qt::MouseButtons held) {
        keys.setCursorPos(pic->mapToGlobal(p));
        QMouseEvent e(type, QPointF(p), QPointF(pic->mapToGlobal(p)), b, held, Qt::NoModifier);
        QCoreApplication::sendEvent(pic, &e);
    };
    const QPoint a = editor->ScreenOf(lo[0], lo[1]).toPoint() - QPoint(3, 3);
    const QPoint b = editor->ScreenOf(hi[0], hi[1]).toPoint() + QPoint(3, 3);
    mouse(QEvent::MouseButtonPress, a, Qt::LeftButton, Qt::LeftButton);
    mouse(QEvent::MouseMove, b, Qt::NoButton, Qt::LeftButton);
    mouse(QEvent::MouseButtonRelease, b, Qt::LeftButton, Qt::NoButton);
    ASSERT_EQ(editor->SelPtsOfSelPols.size(), 4u);
    // Fit the texture: drag the selection with the move tool.
    editor->SetToolMode(frmTextureMapping::ToolMove);
    const QPoint from = editor->ScreenOf(before[0][0], before[0][1]).toPoint();
    mouse(QEvent::MouseMove, from, Qt::NoButton, Qt::NoButton);
    mouse(QEvent::MouseButtonPress, from, Qt::LeftButton, Qt::LeftButton);
    for (int s = 1; s <= 5; ++s) mouse(QEvent::MouseMove, from + QPoint(8 * s, 5 * s), Qt::NoButton, Qt::LeftButton);
    mouse(QEvent::MouseButtonRelease, from + QPoint(40, 25), Qt::LeftButton, Qt::NoButton);
    std::array<double, 2> moved{};
    ZELMAR_point_get_bitmap_xy(ZELMAR_polygon_get_first_point(pane), moved.data());
    EXPECT_NE(moved, before[0]);
    shot("texture_editor_dragged", editor);
    // Mirror on X.
    keys.press(Qt::Key_X);
    editor->Mirror();
    keys.release(Qt::Key_X);
    shot("texture_editor_mirrored", editor);
    // Undo both: the coordinates are back.
    form->mnuUndo->trigger();
    form->mnuUndo->trigger();
    std::array<double, 2> back{};
    ZELMAR_point_get_bitmap_xy(ZELMAR_polygon_get_first_point(pane), back.data());
    EXPECT_EQ(back, before[0]);
    editor->PicMain->repaint();
    shot("texture_editor_undone", editor);
    editor->close();
}

// A tree seen from five sides: a trunk and a crown whose marks tell the side.
template <int D> unsigned treeFrame(int x, int y) {
    const int cx = 32, crownR = 22;
    const int dx = x - cx, dy = y - 26;
    if (dx * dx + dy * dy < crownR * crownR) {
        // The side's mark: D + 1 light dots across the crown.
        for (int k = 0; k <= D; ++k) {
            const int mx = cx - 4 * D + 8 * k, my = 26;
            if ((x - mx) * (x - mx) + (y - my) * (y - my) < 6) return 0xF0F080;
        }
        return 0x2E8B3A - unsigned(D) * 0x080000;
    }
    if (y >= 44 && y < 64 && std::abs(dx) < 4) return 0x6B4423;
    return 0xFF00FF; // the transparent colour
}

TEST_F(HouseScenario, AFiveDirectionTreeSpriteTurnsWithTheCamera) {
    unsigned (*frames[5])(int, int) = {treeFrame<0>, treeFrame<1>, treeFrame<2>, treeFrame<3>, treeFrame<4>};
    QStringList files;
    for (int d = 0; d < 5; ++d) {
        const QString f = scratch.path() + QStringLiteral("/tree_%1.bmp").arg(d);
        write(f, 64, 64, frames[d]);
        files << f;
    }
    // New under "ANIMATION": the dialog in new mode, one frame per direction, magenta transparent.
    textureTab();
    chooseTexture(QStringLiteral("ANIMATION"));
    dlg.execAnswers.push_back([&](QDialog& d) {
        auto& anim = static_cast<formAnimation&>(d);
        anim.txtAnimName->setText(QStringLiteral("Tree Sprite"));
        for (int k = 0; k < 5; ++k) {
            anim.trwAnim->setCurrentItem(anim.DirectionRoots[size_t(k)]);
            anim.InsertMap(files[k]);
            formAnimation::SetFrmTrnsIndxClr(anim.SelectedFrame(), ColourValue(255, 0, 255));
        }
        anim.trwAnim_NodeClick(anim.DirectionRoots[4]->child(0));
        shot("animation_dialog", &d);
        anim.cmdOk_Click();
        return anim.result();
    });
    form->frmTexture->mnuTextureNew_Click();
    const int sprite = ZELMAR_animation_get_handle("Tree Sprite");
    ASSERT_NE(sprite, 0);
    EXPECT_TRUE(form->frmTexture->Node(QStringLiteral("Animation%1").arg(sprite)));

    // A standing quad beside the house, facing +y, filled with it by "Apply to Group".
    const int g = ZELMAR_group_create("Sprite");
    ZELMAR_group_set_father_group(g, root);
    const int q = ZELMAR_polygon_create();
    const double v[4][6] = {{-30, 40, 0, 1, 1, 100}, {-30, 40, 30, 1, 0, 100}, {-60, 40, 30, 0, 0, 100}, {-60, 40, 0, 0, 1, 100}};
    for (const auto& p : v) ZELMAR_polygon_add_point(q, p);
    ZELMAR_polygon_set_group(q, g);
    ZELMAR_engine_add_polygon(q);
    form->GroupTree->trwGroupView_Populate();
    treeClick("Sprite");
    textureTab();
    chooseTexture(QStringLiteral("Animation%1").arg(sprite));
    form->frmTexture->cmdTextureApplyToSel[1]->click();
    ASSERT_EQ(ZELMAR_polygon_get_animation(q), sprite);

    double plane[4];
    ZELMAR_polygon_get_plane(q, plane);
    const std::array<double, 3> centre{-45, 40, 15};
    auto around = [&](double degrees) {
        const double a = degrees * 3.14159265358979 / 180;
        const double nx = plane[0] * std::cos(a) - plane[1] * std::sin(a), ny = plane[0] * std::sin(a) + plane[1] * std::cos(a);
        return std::array<double, 3>{centre[0] + 90 * nx, centre[1] + 90 * ny, 25};
    };
    const QImage front = viewFrom(around(5), centre);
    shot("tree_from_front", form->frmPicWins->PicWindow(2));
    const QImage backSided = viewFrom(around(140), centre);
    shot("tree_from_back_sided", form->frmPicWins->PicWindow(2));
    // Front shows one light dot on the crown, back sided four: count the dots' pixels.
    auto dots = [](const QImage& img) {
        int n = 0;
        for (int y = 0; y < img.height(); ++y)
            for (int x = 0; x < img.width(); ++x) {
                const QColor c = img.pixelColor(x, y);
                n += c.red() > 200 && c.green() > 200 && c.blue() > 90 && c.blue() < 170;
            }
        return n;
    };
    const int one = dots(front), four = dots(backSided);
    EXPECT_GT(one, 0);
    EXPECT_GT(four, 2 * one);
    // Magenta, the frames' transparent colour, does not show.
    int magenta = 0;
    for (int y = 0; y < front.height(); ++y)
        for (int x = 0; x < front.width(); ++x) magenta += front.pixel(x, y) == qRgb(255, 0, 255);
    EXPECT_EQ(magenta, 0);
}

} // namespace
