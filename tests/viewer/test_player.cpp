// The player without a window: loading (good, missing, corrupt, camera-less worlds), camera
// switching, pause, free flight, the frame rate and the command line.
#include "ChaseWorldFile.h"
#include "CommandLine.h"
#include "FrameRate.h"
#include "Player.h"

#include <gtest/gtest.h>
#include <zelmar/zelmar.h>

#include <cmath>
#include <filesystem>
#include <fstream>

using namespace vexil::viewer;
namespace fs = std::filesystem;

namespace {

struct TempFolder {
    fs::path path;
    TempFolder() {
        path = fs::temp_directory_path() / ("vexil_viewer_" + std::to_string(::getpid()) + "_" +
                                            ::testing::UnitTest::GetInstance()->current_test_info()->name());
        fs::create_directories(path);
    }
    ~TempFolder() { fs::remove_all(path); }
};

std::array<double, 3> location(int camera) {
    std::array<double, 3> p{};
    ZELMAR_camera_get_location(camera, p.data());
    return p;
}

TEST(Player, LoadsTheSampleLooksThroughItsFirstCameraAndSwitches) {
    Player p;
    const LoadResult r = p.load(VIEWER_SAMPLE_WORLD);
    ASSERT_EQ(r.code, ExitOk) << r.message;
    EXPECT_EQ(p.cameraCount(), 2);
    EXPECT_EQ(p.activeIndex(), 0);
    EXPECT_EQ(p.viewName(), "Camera01");
    p.nextCamera();
    EXPECT_EQ(p.viewName(), "Camera02");
    p.nextCamera();
    EXPECT_EQ(p.viewName(), "Free camera");
    p.nextCamera();
    EXPECT_EQ(p.activeIndex(), 0);
    p.selectCamera(7); // there is no eighth camera
    EXPECT_EQ(p.activeIndex(), 0);
    p.selectCamera(1);
    EXPECT_EQ(p.viewName(), "Camera02");
    ASSERT_TRUE(p.render(80, 60));
    EXPECT_EQ(p.width(), 80);
    EXPECT_NE(p.pixels(), nullptr);
}

TEST(Player, MissingAndCorruptFilesAreRefusedWithTheirCodeAndAReason) {
    TempFolder tmp;
    Player p;
    LoadResult r = p.load((tmp.path / "absent.wld").string());
    EXPECT_EQ(r.code, ExitMissingFile);
    EXPECT_NE(r.message.find("absent.wld"), std::string::npos);
    EXPECT_EQ(p.load(tmp.path.string()).code, ExitMissingFile); // a folder
    EXPECT_EQ(p.load("").code, ExitMissingFile);
    // The sample cut in half, and bytes that are no world at all.
    std::ifstream in(VIEWER_SAMPLE_WORLD, std::ios::binary);
    const std::string whole((std::istreambuf_iterator<char>(in)), {});
    const fs::path cut = tmp.path / "cut.wld", junk = tmp.path / "junk.zelmar";
    std::ofstream(cut, std::ios::binary) << whole.substr(0, whole.size() / 2);
    std::ofstream(junk, std::ios::binary) << "\x89ZLW\r\n\x1a\n and then nothing that makes sense";
    for (const fs::path& bad : {cut, junk}) {
        r = p.load(bad.string());
        EXPECT_EQ(r.code, ExitBadWorld) << bad;
        EXPECT_NE(r.message.find(bad.filename().string()), std::string::npos) << r.message;
        EXPECT_EQ(ZELMAR_engine_is_engine_empty(), 1);
        EXPECT_EQ(p.cameraCount(), 0);
        EXPECT_FALSE(p.render(8, 8)); // nothing to look through, and no crash either
    }
}

TEST(Player, AWorldWithoutCamerasIsFramedByTheFreeCamera) {
    TempFolder tmp;
    ZELMAR_engine_load_world(nullptr, nullptr, nullptr, 4);
    const int root = ZELMAR_group_create("the_world");
    const int poly = ZELMAR_polygon_create();
    for (auto q : {std::array<double, 3>{1000, 1000, 0}, {1200, 1000, 0}, {1200, 1200, 0}}) {
        const double v[6] = {q[0], q[1], q[2], 0, 0, 100};
        ZELMAR_polygon_add_point(poly, v);
    }
    ZELMAR_polygon_set_group(poly, root);
    const std::string file = (tmp.path / "bare.wld").string();
    ASSERT_EQ(ZELMAR_engine_save(file.c_str(), root, 0x1203), 1);
    Player p;
    ASSERT_EQ(p.load(file).code, ExitOk);
    EXPECT_EQ(p.cameraCount(), 0);
    EXPECT_EQ(p.activeIndex(), -1);
    EXPECT_EQ(p.viewName(), "Free camera");
    ASSERT_TRUE(p.render(64, 48));
    const double centre[3] = {1133, 1066, 0};
    int px[2];
    EXPECT_EQ(ZELMAR_engine_3D_point_to_2D(centre, px), 0); // in view
    p.nextCamera();                                        // nothing else to switch to
    EXPECT_EQ(p.activeIndex(), -1);
}

TEST(Player, PauseStopsTheChaseRulesButNotTheFlight) {
    TempFolder tmp;
    const std::string world = viewertest::writeChaseWorld(tmp.path.string());
    ASSERT_FALSE(world.empty());
    Player p;
    ASSERT_EQ(p.load(world).code, ExitOk);
    const int cam = p.viewCamera();
    // Half a second is 30 steps of 5 units from (0, -900, 320) towards the track's first point
    // (850, 0, 260): 150 / |(850, 900, -60)| = 150 / 1239.3950... of the way.
    EXPECT_EQ(p.advance(0.5), 30);
    const double f = 150 / std::sqrt(850.0 * 850 + 900 * 900 + 60 * 60);
    auto at = location(cam);
    EXPECT_NEAR(at[0], 850 * f, 1e-6);
    EXPECT_NEAR(at[1], -900 + 900 * f, 1e-6);
    EXPECT_NEAR(at[2], 320 - 60 * f, 1e-6);
    p.setPaused(true);
    EXPECT_EQ(p.advance(0.5), 0);
    EXPECT_EQ(location(cam), at);
    // Flying takes over the view where it is and moves at a quarter of the world's size a second.
    p.takeOverView();
    const int free = p.viewCamera();
    EXPECT_NE(free, cam);
    EXPECT_EQ(location(free), at);
    double dir[3];
    ZELMAR_camera_get_direction(free, dir);
    p.fly().setHeld(FreeFly::Ahead, true);
    p.advance(0.5);
    const double d = p.worldSize() / 4 * 0.5;
    const auto flown = location(free);
    for (int i = 0; i < 3; ++i)
        EXPECT_NEAR(flown[i], at[i] + dir[i] * d, 1e-6);
    EXPECT_EQ(location(cam), at); // the scene camera stayed, paused
    p.fly().setHeld(FreeFly::Ahead, false);
    p.fly().setHeld(FreeFly::Up, true);
    p.fly().setHeld(FreeFly::Fast, true);
    p.advance(0.25);
    EXPECT_NEAR(location(free)[2], flown[2] + p.worldSize() / 4 * 0.25 * FreeFly::kFastFactor, 1e-6);
}

TEST(FreeFlyLook, TheMouseTurnsHeadAndTiltAndTheTiltStopsShortOfVertical) {
    ZELMAR_engine_load_world(nullptr, nullptr, nullptr, 4);
    const int cam = ZELMAR_camera_create("c");
    FreeFly::look(cam, -100, 0); // left: the head turns counter-clockwise
    EXPECT_NEAR(ZELMAR_camera_get_head_angle(cam), 20, 1e-9);
    FreeFly::look(cam, 0, -50); // up
    EXPECT_NEAR(ZELMAR_camera_get_tilt(cam), 10, 1e-9);
    FreeFly::look(cam, 0, -10000);
    EXPECT_NEAR(ZELMAR_camera_get_tilt(cam), FreeFly::kMaxTilt, 1e-9);
    EXPECT_NEAR(ZELMAR_camera_get_head_angle(cam), 20, 1e-6);
}

TEST(FrameRate, CountsTheFramesOfTheLastSecond) {
    FrameRate r;
    EXPECT_EQ(r.perSecond(), 0);
    for (int i = 0; i <= 10; ++i)
        r.frame(i * 0.1);
    EXPECT_NEAR(r.perSecond(), 10, 1e-9);
    for (int i = 1; i <= 40; ++i)
        r.frame(1.0 + i * 0.025); // speeds up to 40 a second
    EXPECT_NEAR(r.perSecond(), 40, 1.5);
}

TEST(CommandLine, OptionsAndMistakes) {
    Options o;
    std::string error;
    ASSERT_TRUE(parseCommandLine({"--frames", "12", "--out", "f.png", "--size", "320x200", "--camera", "2", "w.wld"}, o, error))
        << error;
    EXPECT_EQ(o.frames, 12);
    EXPECT_EQ(o.out, "f.png");
    EXPECT_EQ(o.width, 320);
    EXPECT_EQ(o.height, 200);
    EXPECT_EQ(o.camera, 2);
    EXPECT_EQ(o.world, "w.wld");
    for (const std::vector<std::string>& bad :
         {std::vector<std::string>{}, {"--frames", "ten", "w"}, {"--size", "0x5", "w"}, {"--size", "12", "w"},
          {"--bogus", "w"}, {"a.wld", "b.wld"}, {"--out", "f.png", "w"}, {"w", "--frames"}}) {
        Options x;
        error.clear();
        EXPECT_FALSE(parseCommandLine(bad, x, error));
        EXPECT_FALSE(error.empty());
    }
}

} // namespace
