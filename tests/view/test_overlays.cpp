// Overlays drawn over a black picture through a fixed camera, compared with small golden images.
// VEXIL_UPDATE_GOLDEN=1 rewrites the images (inspect them before committing).
#include "../support/GoldenImages.h"
#include "ViewTestSupport.h"
#include "view/Overlays.h"

#include <QDir>
#include <QPainter>
#include <cstdlib>
#include <memory>

using namespace vexil;
using namespace vexil::test;

namespace {

// Four real viewports over the test world's box, shown in a window of the given size.
template <class Host> struct ShownViews {
    QApplication& application = app(); // before any widget member
    QTemporaryDir settings;
    FakeInputState fake;
    TestWorld w;
    Host host;
    QWidget top;
    std::unique_ptr<frmPicWins> views;
    ShownViews(int width, int height) {
        SettingsStore::setLocation(settings.path());
        w.build(200);
        host.rootGrp = w.root;
        top.setGeometry(50, 50, width, height);
        views = std::make_unique<frmPicWins>(host, &top);
        views->setGeometry(0, 0, width, height);
        for (int i = 0; i < 4; ++i)
            views->SetViewportCamera(i, w.cams[i]);
        top.show();
        QCoreApplication::processEvents();
    }
    ~ShownViews() {
        views.reset();
        ZELMAR_engine_close();
    }
};

} // namespace

namespace {

constexpr int kTolerance = 8; // per channel, against the golden pictures

class Overlays : public ::testing::Test {
  protected:
    void SetUp() override {
        app();
        world.build(200);
        target = ZELMAR_target_create(96, 72);
        cam = world.cams[0];
        // Looking at the box from a corner, up towards +z.
        const double loc[3] = {500, -400, 350};
        const double at[3] = {0, 0, 0};
        ZELMAR_camera_set_location(cam, loc);
        ZELMAR_camera_point_at(cam, at);
        ZELMAR_camera_set_zoom(cam, 60);
        ZELMAR_camera_set_distance_from_eye(cam, 1);
        ZELMAR_camera_set_current(cam, target);
        image = QImage(96, 72, QImage::Format_RGB32);
        image.fill(Qt::black);
    }
    void TearDown() override {
        ZELMAR_target_destroy(target);
        ZELMAR_engine_close();
    }
    TestWorld world;
    int target = 0, cam = 0;
    QImage image;
};

TEST_F(Overlays, BoundingBoxOfAGroup) {
    BoundingBox box;
    box.Initialize(world.box);
    EXPECT_EQ(box.Group(), world.box);
    EXPECT_DOUBLE_EQ(box.Corners()[0][0], -100);
    EXPECT_DOUBLE_EQ(box.Corners()[7][2], 100);
    {
        QPainter p(&image);
        box.Draw(p);
    }
    EXPECT_EQ(compareGolden("view_bounding_box", image, kTolerance), 0);
}

TEST_F(Overlays, WireframeLeavesOutBackFacesAndDisabledPolygons) {
    Wireframe wf;
    int drawn = 0;
    {
        QPainter p(&image);
        drawn = wf.Draw(p, world.box, Pens().white1);
    }
    // From (+x, -y, +z) the faces +x, -y and +z face the camera.
    EXPECT_EQ(drawn, 3);
    EXPECT_EQ(compareGolden("view_wireframe", image, kTolerance), 0);

    ZELMAR_polygon_disable(world.faces[0]);
    QImage other(96, 72, QImage::Format_RGB32);
    other.fill(Qt::black);
    QPainter p(&other);
    EXPECT_EQ(wf.Draw(p, world.box, Pens().white1), 2);
}

TEST_F(Overlays, EdgesAndPointMarksOutsideTheViewDrawNothing) {
    QPainter p(&image);
    const double behind1[3] = {900, -800, 700}, behind2[3] = {1000, -900, 800};
    EXPECT_FALSE(DrawEdge3D(p, behind1, behind2));
    EXPECT_FALSE(DrawPointMark(p, behind1, 3));
    const double a[3] = {-100, -100, 100}, b[3] = {100, 100, 100};
    p.setPen(Pens().red1);
    EXPECT_TRUE(DrawEdge3D(p, a, b));
    p.setPen(Pens().green1);
    EXPECT_TRUE(DrawPointMark(p, b, 3));
    p.end();
    EXPECT_EQ(compareGolden("view_edge_and_mark", image, kTolerance), 0);
}

TEST_F(Overlays, BoxAndWireOnTopOfTheEngineImageInAViewport) {
    // In a viewport the box follows the current group and the wireframe replaces it when switched on.
    ZELMAR_target_destroy(target);
    target = 0;
    ZELMAR_engine_close();

    ShownViews<TestHost> shown(192, 160);
    TestWorld& w = shown.w;
    TestHost& host = shown.host;
    frmPicWins& views = *shown.views;
    host.selType = 1;
    host.selEntity = w.box;
    views.ResetCameras();
    views.ActiveWin = 2;
    host.plugInPaints = 0;
    views.UpdateCamerasSingle(2);
    const QImage box = views.PicWindow(2)->BackBuffer().copy();
    EXPECT_EQ(views.SelectionBox().Group(), w.box);
    views.WireframeMode = true;
    views.UpdateCamerasSingle(2);
    const QImage wire = views.PicWindow(2)->BackBuffer().copy();
    EXPECT_FALSE(box == wire);
    host.selType = 0;
    views.UpdateCamerasSingle(2);
    const QImage plain = views.PicWindow(2)->BackBuffer().copy();
    auto whites = [](const QImage& img) {
        const QImage c = img.convertToFormat(QImage::Format_RGB32);
        int n = 0;
        for (int y = 0; y < c.height(); ++y)
            for (int x = 0; x < c.width(); ++x)
                if (c.pixel(x, y) == qRgb(255, 255, 255)) ++n;
        return n;
    };
    EXPECT_GT(whites(box), 40);
    EXPECT_GT(whites(wire), 40);
    EXPECT_EQ(whites(plain), 0);
    EXPECT_EQ(host.plugInPaints, 3); // the last hook of every paint
}

} // namespace

namespace {

// Records the paint hooks in the order the viewport calls them, with the camera current at each call.
class OrderHost : public TestHost {
  public:
    std::vector<std::string> calls;
    std::vector<int> currentCams;
    void note(const char* what) {
        calls.emplace_back(what);
        currentCams.push_back(ZELMAR_camera_get_current());
    }
    void ScaleSceneCameras(int) override { note("ScaleSceneCameras"); }
    void ScaleSceneLights(int) override { note("ScaleSceneLights"); }
    void DrawGizmo(int, QPainter&) override { note("DrawGizmo"); }
    void DrawPoints(int, QPainter&) override { note("DrawPoints"); }
    void DrawSelectedPts(int, QPainter&) override { note("DrawSelectedPts"); }
    void DrawSelectedPols(int, QPainter&) override { note("DrawSelectedPols"); }
    void DrawTrack(int, QPainter&) override { note("DrawTrack"); }
    void DrawSelectedTrackPts(int, QPainter&) override { note("DrawSelectedTrackPts"); }
    void DrawCustomTrk(int, QPainter&) override { note("DrawCustomTrk"); }
    void Plugin_Paint(int, QPainter&) override { note("Plugin_Paint"); }
};

TEST(OverlayOrder, HooksRunInTheirOrderWithTheViewsCameraCurrent) {
    ShownViews<OrderHost> shown(320, 240);
    TestWorld& w = shown.w;
    OrderHost& host = shown.host;
    frmPicWins& views = *shown.views;
    views.ActiveWin = 0;
    host.calls.clear();
    host.currentCams.clear();
    views.UpdateCamerasSingle(3);
    const std::vector<std::string> want = {"ScaleSceneCameras", "ScaleSceneLights",     "DrawGizmo",
                                           "DrawPoints",        "DrawSelectedPts",      "DrawSelectedPols",
                                           "DrawTrack",         "DrawSelectedTrackPts", "DrawCustomTrk",
                                           "Plugin_Paint"};
    EXPECT_EQ(host.calls, want);
    for (int c : host.currentCams)
        EXPECT_EQ(c, w.cams[3]);
    // Afterwards the active window's camera is current again.
    EXPECT_EQ(ZELMAR_camera_get_current(), w.cams[0]);
}

// A view that grows is rendered again at its new size once the layout has settled, rather than showing
// the old picture with black beside it.
TEST(ViewResize, AGrownViewIsRenderedAtItsNewSize) {
    ShownViews<TestHost> shown(160, 120);
    QWidget& top = shown.top;
    frmPicWins& views = *shown.views;
    views.UpdateCamerasSingle(2);
    picWindow* win = views.PicWindow(2);
    const unsigned before = views.PaintCount(2);
    top.resize(400, 300);
    views.setGeometry(0, 0, 400, 300);
    for (int i = 0; i < 3; ++i)
        QCoreApplication::processEvents();
    EXPECT_EQ(win->BackBuffer().size(), win->size());
    EXPECT_EQ(views.PaintCount(2), before + 1); // one render for the resizes of one layout pass
}

} // namespace
