// The viewer's window driven as a user does, offscreen: Tab and number keys switch cameras,
// Space pauses, W and the mouse fly the free camera, F hides the text, Esc closes.
#include "ChaseWorldFile.h"
#include "ViewerWindow.h"

#include <gtest/gtest.h>
#include <zelmar/zelmar.h>

#include <QApplication>
#include <QTemporaryDir>
#include <QTest>

#include <array>

using namespace vexil::viewer;

namespace {

QApplication& app() {
    static int argc = 1;
    static char name[] = "viewer_window";
    static char* argv[] = {name, nullptr};
    static QApplication* a = [] {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        return new QApplication(argc, argv);
    }();
    return *a;
}

std::array<double, 3> location(int camera) {
    std::array<double, 3> p{};
    ZELMAR_camera_get_location(camera, p.data());
    return p;
}

struct Shown {
    QApplication& a = app();
    QTemporaryDir tmp;
    Player player;
    std::unique_ptr<ViewerWindow> window;
    Shown() {
        const std::string world = viewertest::writeChaseWorld(tmp.path().toStdString());
        EXPECT_EQ(player.load(world).code, ExitOk);
        window = std::make_unique<ViewerWindow>(player);
        window->resize(160, 120);
        window->show();
        window->activateWindow();
        window->setFocus();
        QCoreApplication::processEvents();
    }
};

TEST(Window, KeysSwitchCamerasAndPause) {
    Shown s;
    ViewerWindow& w = *s.window;
    EXPECT_EQ(s.player.viewName(), "Camera01");
    QTest::keyClick(&w, Qt::Key_Tab);
    EXPECT_EQ(s.player.viewName(), "Camera02");
    QTest::keyClick(&w, Qt::Key_Tab);
    EXPECT_EQ(s.player.activeIndex(), -1);
    QTest::keyClick(&w, Qt::Key_1);
    EXPECT_EQ(s.player.viewName(), "Camera01");
    QTest::keyClick(&w, Qt::Key_9); // no ninth camera
    EXPECT_EQ(s.player.viewName(), "Camera01");
    QTest::keyClick(&w, Qt::Key_Space);
    EXPECT_TRUE(s.player.paused());
    const auto before = location(s.player.viewCamera());
    for (int i = 0; i < 5; ++i)
        w.tick();
    EXPECT_EQ(location(s.player.viewCamera()), before);
    QTest::keyClick(&w, Qt::Key_Space);
    EXPECT_FALSE(s.player.paused());
    QTest::keyClick(&w, Qt::Key_F);
    EXPECT_FALSE(w.overlayShown());
    QTest::keyClick(&w, Qt::Key_Escape);
    EXPECT_FALSE(w.isVisible());
}

TEST(Window, PlayingMovesTheChasingCameraAndCountsFrames) {
    Shown s;
    ViewerWindow& w = *s.window;
    const int cam = s.player.viewCamera();
    const auto before = location(cam);
    // Play until at least a few steps of real time have passed (each tick renders a frame).
    QElapsedTimer t;
    t.start();
    while (t.elapsed() < 200)
        w.tick();
    EXPECT_NE(location(cam), before);
    EXPECT_GT(w.framesPerSecond(), 0);
    EXPECT_EQ(s.player.width(), 160);
}

TEST(Window, WAndTheMouseFlyTheFreeCameraFromTheView) {
    Shown s;
    ViewerWindow& w = *s.window;
    const int scene = s.player.viewCamera();
    QTest::keyClick(&w, Qt::Key_Space); // the scene camera stays put while we fly
    const auto start = location(scene);
    QTest::keyPress(&w, Qt::Key_W);
    EXPECT_EQ(s.player.activeIndex(), -1);
    const int free = s.player.viewCamera();
    EXPECT_EQ(location(free), start);
    QElapsedTimer t;
    t.start();
    w.tick();
    while (t.elapsed() < 50)
        w.tick();
    QTest::keyRelease(&w, Qt::Key_W);
    const auto flown = location(free);
    EXPECT_NE(flown, start);
    EXPECT_EQ(location(scene), start);
    const double head = ZELMAR_camera_get_head_angle(free);
    QTest::mousePress(&w, Qt::LeftButton, {}, QPoint(80, 60));
    QMouseEvent move(QEvent::MouseMove, QPointF(30, 60), QPointF(30, 60), Qt::NoButton, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(&w, &move);
    QTest::mouseRelease(&w, Qt::LeftButton, {}, QPoint(30, 60));
    EXPECT_NEAR(ZELMAR_camera_get_head_angle(free), head + 50 * FreeFly::kDegreesPerPixel, 1e-6);
    // Losing the focus lets go of the keys.
    QTest::keyPress(&w, Qt::Key_D);
    QFocusEvent out(QEvent::FocusOut);
    QCoreApplication::sendEvent(&w, &out);
    EXPECT_FALSE(s.player.fly().moving());
}

} // namespace
