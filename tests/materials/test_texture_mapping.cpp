// The texture map editor on its real window (offscreen), driven with mouse events and scripted keys: rubber
// bands that select, add and remove; moves undone bit for bit; mirror about the selection's centre; zoom
// extent; the bitmap list; a group without bitmap and a bitmap deleted while the editor is open.
#include "MaterialsTestSupport.h"
#include "materials/TextureMapPicture.h"
#include "materials/TexturePanel.h"
#include "materials/frmTextureMapping.h"

#include <QAction>
#include <QComboBox>
#include <QMouseEvent>
#include <QRadioButton>
#include <QTreeWidget>
#include <cmath>

using namespace vexil;
using namespace vexil::test;

namespace {

using UV = std::array<double, 2>;

class TextureMapEditor : public MaterialsTest {
  protected:
    void SetUp() override {
        MaterialsTest::SetUp();
        house = makeGroup("House", root);
        // Two quads side by side; bitmap coordinates set by hand.
        left = addQuad(house, {{{0, 0, 0}, {0, 1, 0}, {0, 1, 1}, {0, 0, 1}}});
        right = addQuad(house, {{{0, 1, 0}, {0, 2, 0}, {0, 2, 1}, {0, 1, 1}}});
        setUv(left, {{{0.1, 0.1}, {0.4, 0.1}, {0.4, 0.4}, {0.1, 0.4}}});
        setUv(right, {{{0.6, 0.5}, {0.9, 0.5}, {0.9, 0.8}, {0.6, 0.8}}});
        wall = ZELMAR_bitmap_load(writeBitmap(file("wall.bmp"), 200, 100, checker).c_str(), -1);
        ASSERT_NE(wall, 0);
        ZELMAR_group_set_bitmap(house, wall);
        select(house);
        open();
    }
    void TearDown() override {
        delete editor.data();
        MaterialsTest::TearDown();
    }
    void open() {
        delete editor.data();
        editor = new frmTextureMapping;
        editor->resize(700, 500);
        editor->show();
        QCoreApplication::processEvents();
    }
    static void setUv(int polygon, const std::array<UV, 4>& uv) {
        int i = 0;
        for (int p = ZELMAR_polygon_get_first_point(polygon); p; p = ZELMAR_point_get_next_point(p))
            ZELMAR_point_set_bitmap_xy(p, uv[size_t(i++)].data());
    }
    std::vector<UV> uvs(int polygon) {
        std::vector<UV> out;
        for (int p : pointsOf(polygon)) out.push_back(uvOf(p));
        return out;
    }
    QPoint at(double u, double v) { return editor->ScreenOf(u, v).toPoint(); }
    QWidget* pic() { return editor->PicMain; }
    void mouse(QEvent::Type type, QPoint p, Qt::MouseButton b, Qt::MouseButtons held) {
        keys.setCursorPos(pic()->mapToGlobal(p));
        QMouseEvent e(type, QPointF(p), QPointF(pic()->mapToGlobal(p)), b, held, Qt::NoModifier);
        QCoreApplication::sendEvent(pic(), &e);
    }
    void band(QPoint from, QPoint to) {
        mouse(QEvent::MouseButtonPress, from, Qt::LeftButton, Qt::LeftButton);
        mouse(QEvent::MouseMove, (from + to) / 2, Qt::NoButton, Qt::LeftButton);
        mouse(QEvent::MouseMove, to, Qt::NoButton, Qt::LeftButton);
        mouse(QEvent::MouseButtonRelease, to, Qt::LeftButton, Qt::NoButton);
    }
    // A drag with the current tool from a selected point, in `steps` moves.
    void drag(QPoint from, QPoint to, int steps = 4) {
        mouse(QEvent::MouseMove, from, Qt::NoButton, Qt::NoButton); // over the selection
        mouse(QEvent::MouseButtonPress, from, Qt::LeftButton, Qt::LeftButton);
        for (int s = 1; s <= steps; ++s)
            mouse(QEvent::MouseMove, from + (to - from) * s / steps, Qt::NoButton, Qt::LeftButton);
        mouse(QEvent::MouseButtonRelease, to, Qt::LeftButton, Qt::NoButton);
    }
    std::vector<int> selectedPoints() const {
        std::vector<int> out;
        for (const PointOfPolygon& p : editor->SelPts) out.push_back(p.point);
        return out;
    }

    QPointer<frmTextureMapping> editor;
    int house = 0, left = 0, right = 0, wall = 0;
};

TEST_F(TextureMapEditor, OpensOnTheCurrentGroupsBitmapFittedToTheBox) {
    EXPECT_EQ(editor->windowTitle(), QStringLiteral("Texture Map Editor."));
    ASSERT_EQ(editor->cmbTextures->count(), 1);
    EXPECT_EQ(editor->cmbTextures->currentText(), QStringLiteral("wall"));
    EXPECT_EQ(editor->MapWidth, 200);
    EXPECT_EQ(editor->MapAspect, 2.0);
    const QSize box = pic()->size();
    // The box is narrower (relative to its height) than the map: width fixes the picture.
    if (double(box.width()) / box.height() > 2.0) EXPECT_EQ(editor->ImgHeight, box.height());
    else EXPECT_EQ(editor->ImgWidth, box.width());
    EXPECT_NEAR(editor->InitialZoom, double(editor->ImgWidth) / 200, 0.5 / 200);
    EXPECT_EQ(editor->ImgLeft, box.width() / 2 - editor->ImgWidth / 2);
    // The back buffer shows the polygons in white over the bitmap.
    const QImage& buffer = editor->BackBuffer();
    ASSERT_EQ(buffer.size(), box);
    const QPoint corner = at(0.1, 0.1);
    EXPECT_EQ(buffer.pixel(corner + QPoint(2, 0)), qRgb(255, 255, 255));
}

TEST_F(TextureMapEditor, ARubberBandSelectsCtrlAddsShiftRemovesEachOneUndoStep) {
    band(at(0.05, 0.05), at(0.45, 0.45)); // the left quad's four points
    EXPECT_EQ(selectedPoints(), pointsOf(left));
    keys.press(Qt::Key_Control);
    band(at(0.55, 0.45), at(0.95, 0.6)); // adds the right quad's top two
    keys.release(Qt::Key_Control);
    ASSERT_EQ(editor->SelPts.size(), 6u);
    keys.press(Qt::Key_Shift);
    band(at(0.05, 0.05), at(0.45, 0.2)); // removes the left quad's top two
    keys.release(Qt::Key_Shift);
    const std::vector<int> l = pointsOf(left), r = pointsOf(right);
    EXPECT_EQ(selectedPoints(), (std::vector<int>{l[2], l[3], r[0], r[1]}));
    EXPECT_EQ(pushes(), 3);
    ASSERT_TRUE(undo());
    EXPECT_EQ(editor->SelPts.size(), 6u);
    ASSERT_TRUE(undo());
    EXPECT_EQ(selectedPoints(), l);
    ASSERT_TRUE(redo());
    EXPECT_EQ(editor->SelPts.size(), 6u);
    // A click on empty space clears the selection (a fresh band of nothing).
    band(at(0.5, 0.95), at(0.5, 0.95));
    EXPECT_TRUE(editor->SelPts.empty());
}

TEST_F(TextureMapEditor, MovingThenUndoingRestoresTheCoordinatesBitForBit) {
    const std::vector<UV> before = uvs(left), other = uvs(right);
    band(at(0.05, 0.05), at(0.45, 0.45));
    editor->SetToolMode(frmTextureMapping::ToolMove);
    const QPoint from = at(0.4, 0.4);
    drag(from, from + QPoint(37, -23));
    const std::vector<UV> moved = uvs(left);
    EXPECT_NEAR(moved[0][0] - before[0][0], 37.0 / editor->ImgWidth, 1e-12);
    EXPECT_NEAR(moved[0][1] - before[0][1], -23.0 / editor->ImgHeight, 1e-12);
    EXPECT_EQ(uvs(right), other);
    const int steps = pushes();
    ASSERT_TRUE(undo());
    const std::vector<UV> back = uvs(left);
    ASSERT_EQ(back.size(), before.size());
    EXPECT_EQ(std::memcmp(back.data(), before.data(), back.size() * sizeof(UV)), 0);
    ASSERT_TRUE(redo());
    EXPECT_EQ(uvs(left), moved);
    EXPECT_EQ(pushes(), steps);
    // Holding "Y" keeps u; holding "1" keeps v.
    keys.press(Qt::Key_Y);
    drag(at(moved[0][0], moved[0][1]), at(moved[0][0], moved[0][1]) + QPoint(20, 10));
    keys.release(Qt::Key_Y);
    EXPECT_EQ(uvs(left)[0][0], moved[0][0]);
    EXPECT_NE(uvs(left)[0][1], moved[0][1]);
}

TEST_F(TextureMapEditor, ScaleNeverFlipsAndRotateTurnsAboutTheAnchor) {
    band(at(0.05, 0.05), at(0.45, 0.45));
    editor->SetToolMode(frmTextureMapping::ToolScale);
    const std::vector<UV> before = uvs(left);
    const QPoint anchor = at(0.1, 0.1);
    drag(anchor, anchor + QPoint(0, -400), 1); // one step: factor |1 - 2| = 1
    std::vector<UV> after = uvs(left);
    for (size_t i = 0; i < after.size(); ++i) {
        EXPECT_NEAR(after[i][0], before[i][0], 1e-9);
        EXPECT_NEAR(after[i][1], before[i][1], 1e-9);
    }
    editor->SetToolMode(frmTextureMapping::ToolRotate);
    drag(at(0.1, 0.1), at(0.1, 0.1) + QPoint(0, 90), 1); // 90 degrees about the anchor (0.1, 0.1)
    after = uvs(left);
    double pu = 0, pv = 0;
    editor->UvOf(at(0.1, 0.1).x(), at(0.1, 0.1).y(), pu, pv);
    for (size_t i = 0; i < after.size(); ++i) {
        const double du = before[i][0] - pu, dv = before[i][1] - pv;
        EXPECT_NEAR(after[i][0], pu - dv, 1e-9);
        EXPECT_NEAR(after[i][1], pv + du, 1e-9);
    }
}

TEST_F(TextureMapEditor, MirrorOnXAboutTheBoundingBoxCentreGivesExactCoordinates) {
    band(at(0.05, 0.05), at(0.95, 0.85)); // all eight points: u from 0.1 to 0.9, centre 0.5
    editor->Mirror();
    EXPECT_EQ(pushes(), 1); // the selection only: no key held, no mirror
    keys.press(Qt::Key_X);
    editor->Mirror();
    keys.release(Qt::Key_X);
    // The centre as the design computes it: min + (max - min) / 2.
    const double c = 0.1 + (0.9 - 0.1) / 2;
    auto m = [c](double u) { return c - (u - c); };
    EXPECT_EQ(uvs(left), (std::vector<UV>{{m(0.1), 0.1}, {m(0.4), 0.1}, {m(0.4), 0.4}, {m(0.1), 0.4}}));
    EXPECT_EQ(uvs(right), (std::vector<UV>{{m(0.6), 0.5}, {m(0.9), 0.5}, {m(0.9), 0.8}, {m(0.6), 0.8}}));
    EXPECT_EQ(pushes(), 2);
    keys.press(Qt::Key_2);
    editor->Mirror(); // "2" is "Y": v about 0.45
    keys.release(Qt::Key_2);
    const double cv = 0.1 + (0.8 - 0.1) / 2;
    EXPECT_EQ(uvs(left)[0][1], cv - (0.1 - cv));
    ASSERT_TRUE(undo());
    ASSERT_TRUE(undo());
    EXPECT_EQ(uvs(left), (std::vector<UV>{{0.1, 0.1}, {0.4, 0.1}, {0.4, 0.4}, {0.1, 0.4}}));
}

TEST_F(TextureMapEditor, ZoomExtentFitsTheSelectionWithTheDesignsZoomAndPans) {
    band(at(0.55, 0.45), at(0.95, 0.85)); // the right quad: u 0.6..0.9, v 0.5..0.8
    editor->ZoomExtent();
    const double boxW = pic()->width(), boxH = pic()->height();
    const double bw = 0.9 - 0.6, bh = 0.8 - 0.5;
    double zoom = bw / bh * 2.0 > boxW / boxH ? boxW / (bw * 200 * editor->InitialZoom)
                                               : boxH / (bh * 100 * editor->InitialZoom);
    zoom *= 0.9;
    EXPECT_DOUBLE_EQ(editor->Zoom, zoom);
    EXPECT_EQ(editor->PanX, int(std::nearbyint((1 - (0.6 + 0.9)) / 2 * zoom * editor->InitialZoom * 200)));
    EXPECT_EQ(editor->PanY, int(std::nearbyint((1 - (0.5 + 0.8)) / 2 * zoom * editor->InitialZoom * 100)));
    EXPECT_DOUBLE_EQ(editor->PanX1, editor->PanX / zoom);
    // The selection's centre is now near the box's centre.
    const QPointF c = editor->ScreenOf(0.75, 0.65);
    EXPECT_NEAR(c.x(), boxW / 2, 2);
    EXPECT_NEAR(c.y(), boxH / 2, 2);
    // One point: a box of size 0 leaves the zoom alone.
    band(at(0.6, 0.5) - QPoint(2, 2), at(0.6, 0.5) + QPoint(2, 2));
    ASSERT_EQ(editor->SelPts.size(), 1u);
    editor->ZoomExtent();
    EXPECT_DOUBLE_EQ(editor->Zoom, zoom);
}

TEST_F(TextureMapEditor, ZoomAndPanSurviveEachOtherAndTheZoomIsFloored) {
    editor->SetToolMode(frmTextureMapping::ToolPan);
    mouse(QEvent::MouseButtonPress, QPoint(100, 100), Qt::LeftButton, Qt::LeftButton);
    mouse(QEvent::MouseMove, QPoint(130, 90), Qt::NoButton, Qt::LeftButton);
    mouse(QEvent::MouseButtonRelease, QPoint(130, 90), Qt::LeftButton, Qt::NoButton);
    EXPECT_EQ(editor->PanX, 30);
    EXPECT_EQ(editor->PanY, -10);
    editor->SetToolMode(frmTextureMapping::ToolZoom);
    mouse(QEvent::MouseButtonPress, QPoint(100, 100), Qt::LeftButton, Qt::LeftButton);
    mouse(QEvent::MouseMove, QPoint(100, 200), Qt::NoButton, Qt::LeftButton); // down: in
    EXPECT_NEAR(editor->Zoom, 1.6, 1e-12);
    EXPECT_EQ(editor->PanX, 48); // the zoom-free pan, zoomed
    mouse(QEvent::MouseMove, QPoint(100, -5000), Qt::NoButton, Qt::LeftButton);
    mouse(QEvent::MouseButtonRelease, QPoint(100, -5000), Qt::LeftButton, Qt::NoButton);
    EXPECT_NEAR(editor->Zoom * editor->InitialZoom, 0.01, 1e-12);
    EXPECT_EQ(pushes(), 0);
}

TEST_F(TextureMapEditor, KeysChooseToolsAndReachTheMainUndo) {
    editor->Form_KeyDown(Qt::Key_Z, {}, false);
    EXPECT_EQ(editor->ToolMode, frmTextureMapping::ToolZoom);
    EXPECT_TRUE(editor->Button(QStringLiteral("zoom"))->isChecked());
    editor->Form_KeyDown(Qt::Key_P, {}, false);
    EXPECT_EQ(editor->ToolMode, frmTextureMapping::ToolPan);
    editor->Form_KeyDown(Qt::Key_Exclam, Qt::ShiftModifier, false); // Shift+1
    EXPECT_EQ(editor->ToolMode, frmTextureMapping::ToolMove);
    EXPECT_EQ(editor->PicMain->property("pointer").toString(), QStringLiteral("Pointer"));
    editor->Form_KeyDown(Qt::Key_S, {}, false);
    EXPECT_EQ(editor->ToolMode, frmTextureMapping::ToolSelect);
    editor->Form_KeyDown(Qt::Key_Z, Qt::ControlModifier, false);
    editor->Form_KeyDown(Qt::Key_Z, Qt::ControlModifier, true); // held: acts once
    editor->Form_KeyDown(Qt::Key_A, Qt::ControlModifier, false);
    EXPECT_EQ(host.undos, 1);
    EXPECT_EQ(host.redos, 1);
}

TEST_F(TextureMapEditor, AGroupWithoutBitmapSaysSoAndAGoneBitmapIsNoHarm) {
    const int bare = makeGroup("Bare", root);
    const int q = addQuad(bare, {{{0, 0, 0}, {0, 1, 0}, {0, 1, 1}, {0, 0, 1}}});
    select(bare, {q});
    editor->Redraw(); // the current group changed: the list follows
    EXPECT_EQ(editor->cmbTextures->count(), 0);
    EXPECT_FALSE(editor->cmbTextures->placeholderText().isEmpty());
    EXPECT_EQ(editor->MapHandle(), 0);
    band(QPoint(0, 0), QPoint(pic()->width() - 1, pic()->height() - 1));
    EXPECT_EQ(editor->SelPts.size(), 4u); // still usable on a default square
    select(house);
    editor->Redraw();
    ASSERT_EQ(editor->MapHandle(), wall);
    // The texture list deletes the bitmap while the editor is open.
    TexturePanel panel;
    panel.trwTextures_Populate();
    panel.trwTextures->setCurrentItem(panel.Node(QStringLiteral("Map%1").arg(wall)));
    dialogs.msgAnswers = {vbYes};
    panel.mnuTextureDelete_Click();
    EXPECT_FALSE(ZELMAR_bitmap_is_bitmap(wall));
    editor->Redraw();
    EXPECT_EQ(editor->MapHandle(), 0);
    editor->ZoomExtent();
    editor->SetToolMode(frmTextureMapping::ToolMove);
    band(QPoint(0, 0), QPoint(pic()->width() - 1, pic()->height() - 1));
}

TEST_F(TextureMapEditor, ThePlanarMapperAndUndoRefreshTheOpenEditor) {
    band(at(0.05, 0.05), at(0.45, 0.45));
    ASSERT_FALSE(editor->SelPts.empty());
    select(house, {left});
    TexturePanel panel;
    panel.opnNormal[0]->setChecked(true);
    panel.cmdPlanarMap_Click();
    EXPECT_TRUE(editor->SelPts.empty()); // ResetSelections
    EXPECT_EQ(uvs(left)[1], (UV{1, 1}));
    ASSERT_TRUE(undo());
    EXPECT_EQ(uvs(left)[1], (UV{0.4, 0.1}));
}

} // namespace
