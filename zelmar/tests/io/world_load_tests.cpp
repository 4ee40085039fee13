// What a load does with files that are not what they seem: bitmaps that cannot be read, and
// world paths that are no regular files (named pipes, folders, devices).
#include "ImageFaults.h"
#include "WorldGen.h"
#include "io/ImageCodec.h"
#include "scene/World.h"

#include <chrono>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <functional>
#include <future>
#include <optional>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>
#include <zelmar/zelmar.h>

using namespace zelmar;
using iotest::TempDir;
namespace fs = std::filesystem;

namespace {

void writeFile(const std::string& path, const std::vector<uint8_t>& bytes) {
    std::ofstream(path, std::ios::binary).write(reinterpret_cast<const char*>(bytes.data()),
                                                std::streamsize(bytes.size()));
}

// Polygon i of "the_world" is filled with bitmap i (colour 10, 20, 30 under it).
void writeWorld(const std::string& path, const std::vector<std::string>& bitmaps) {
    std::ofstream o(path, std::ios::binary);
    o << "zelmar-world-text 1\n";
    for (size_t i = 0; i < bitmaps.size(); ++i)
        o << "bitmap " << i << " file=\"" << bitmaps[i] << "\" name=\"b" << i << "\"\n";
    o << "group 0 father=-1 name=\"the_world\"\n";
    for (size_t i = 0; i < bitmaps.size(); ++i)
        o << "style " << i << " color=10,20,30 bitmap=bitmap:" << i << "\n";
    for (size_t i = 0; i < bitmaps.size(); ++i)
        o << "polygon group=0 style=" << i << " name=\"p" << i << "\" points=3 attrs=xyz\np 0 0 0\np 1 0 0\np 0 1 0\n";
    o << "end\n";
}

TEST(WorldLoad, UnreadableBitmapsLeaveTheirPolygonsColourFilledAndAreNamed) {
    TempDir dir;
    fs::create_directories(dir / "bitmaps");
    const auto at = [&](const std::string& f) { return dir / ("bitmaps/" + f); };
    const std::vector<uint8_t> bmp = iotest::smallImage(false), jpg = iotest::smallImage(true);
    // The damaged JPEG comes first: the decoder has no earlier failure whose reason it could give.
    writeFile(at("damaged.jpg"), iotest::damagedJpeg());
    writeFile(at("corrupt.bmp"), {'B', 'M', 0xDE, 0xAD, 0xBE, 0xEF});
    writeFile(at("truncated.bmp"), std::vector<uint8_t>(bmp.begin(), bmp.begin() + long(bmp.size() / 2)));
    writeFile(at("truncated.jpg"), std::vector<uint8_t>(jpg.begin(), jpg.begin() + 20));
    writeFile(at("empty.bmp"), {});
    writeFile(at("empty.jpg"), {});
    writeFile(at("picture.png"), {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n', 0, 0, 0, 13});
    // A 2 x 1 true-colour .tga whose second pixel is cut off.
    writeFile(at("picture.tga"), {0, 0, 2, 0, 0, 0, 0, 0, 0, 0, 0, 0, 2, 0, 1, 0, 24, 0, 1, 2, 3});
    writeFile(at("palette.bmp"), iotest::bmpIndexPastPalette());
    writeFile(at("huge.jpg"), iotest::hugeJpegHeader());
    ASSERT_EQ(::mkfifo(at("pipe.bmp").c_str(), 0644), 0);
    fs::create_directories(at("folder.bmp"));
    writeFile(at("good.bmp"), bmp);
    const std::vector<std::string> bad = {"damaged.jpg", "corrupt.bmp", "truncated.bmp", "truncated.jpg",
                                          "empty.bmp",   "empty.jpg",   "picture.png",   "picture.tga",
                                          "palette.bmp", "huge.jpg",    "pipe.bmp",      "folder.bmp",  "missing.bmp"};
    std::vector<std::string> all = bad;
    all.push_back("good.bmp");
    writeWorld(dir / "w.wld", all);

    // On a thread of its own, whose decoder has never failed before.
    int loaded = 0;
    std::string error;
    std::thread([&] {
        loaded = ZELMAR_engine_load_world((dir / "w.wld").c_str(), "", "", 4);
        error = ZELMAR_engine_get_last_error();
    }).join();
    ASSERT_EQ(loaded, 1) << error;
    for (const std::string& f : bad)
        EXPECT_NE(error.find("\"" + f + "\""), std::string::npos) << f << " not named in: " << error;
    EXPECT_EQ(error.find("good.bmp"), std::string::npos) << error;
    EXPECT_NE(error.find("named pipe"), std::string::npos) << error;

    const int root = ZELMAR_group_get_using_name("the_world");
    size_t i = 0;
    for (int p = ZELMAR_group_get_first_polygon(root); p; p = ZELMAR_group_get_next_polygon(p), ++i) {
        SCOPED_TRACE(i < bad.size() ? bad[i] : "good.bmp");
        int rgb[3] = {};
        ZELMAR_polygon_get_color(p, rgb);
        EXPECT_EQ(rgb[0], 10);
        EXPECT_EQ(rgb[2], 30);
        EXPECT_EQ(ZELMAR_polygon_get_bitmap_handle(p) != 0, i == bad.size());
    }
    EXPECT_EQ(i, all.size());
    EXPECT_EQ(world().list<Bitmap>().size(), 1u);
    ZELMAR_engine_load_world(nullptr, nullptr, nullptr, 4);
}

// Runs the call on a thread and answers its result, or nullopt if it has not returned within
// a minute; then a writer is let in on `fifo` so that a reader stuck on it wakes up.
std::optional<int> returnsWithoutAWriter(const std::function<int()>& call, const std::string& fifo) {
    auto result = std::async(std::launch::async, call);
    if (result.wait_for(std::chrono::seconds(60)) == std::future_status::ready) return result.get();
    const int fd = ::open(fifo.c_str(), O_WRONLY | O_NONBLOCK);
    if (fd >= 0) ::close(fd);
    result.wait();
    return std::nullopt;
}

TEST(WorldLoad, FifoIsRefusedNotWaitedOn) {
    TempDir dir;
    const std::string fifo = dir / "world.wld";
    ASSERT_EQ(::mkfifo(fifo.c_str(), 0644), 0);
    fs::create_symlink(fifo, dir / "link.zelmar");
    for (const std::string& path : {fifo, dir / "link.zelmar"}) {
        SCOPED_TRACE(path);
        const auto load = returnsWithoutAWriter(
            [&] { return ZELMAR_engine_load_world(path.c_str(), "", "", 4); }, fifo);
        ASSERT_TRUE(load.has_value()) << "the load waited for a writer";
        EXPECT_EQ(*load, -1);
        const std::string error = ZELMAR_engine_get_last_error();
        EXPECT_NE(error.find("named pipe"), std::string::npos) << error;
        EXPECT_EQ(ZELMAR_engine_is_engine_empty(), 1);

        const int keep = ZELMAR_group_create("kept");
        const auto add = returnsWithoutAWriter(
            [&] { return ZELMAR_engine_add_world(path.c_str(), "", "", nullptr); }, fifo);
        ASSERT_TRUE(add.has_value()) << "the add waited for a writer";
        EXPECT_EQ(*add, 0);
        EXPECT_NE(std::string(ZELMAR_engine_get_last_error()).find("named pipe"), std::string::npos);
        EXPECT_EQ(ZELMAR_group_is_group(keep), 1);
        ZELMAR_engine_load_world(nullptr, nullptr, nullptr, 4);
    }
}

TEST(WorldLoad, FoldersAndDevicesAreRefusedByWhatTheyAre) {
    TempDir dir;
    fs::create_directories(dir / "folder.wld");
    const std::pair<std::string, const char*> cases[] = {
        {dir / "folder.wld", "folder"}, {"/dev/null", "device"}, {"/dev/zero", "device"}};
    for (const auto& [path, what] : cases) {
        SCOPED_TRACE(path);
        EXPECT_EQ(ZELMAR_engine_load_world(path.c_str(), "", "", 4), -1);
        EXPECT_NE(std::string(ZELMAR_engine_get_last_error()).find(what), std::string::npos)
            << ZELMAR_engine_get_last_error();
        EXPECT_EQ(ZELMAR_engine_add_world(path.c_str(), "", "", nullptr), 0);
        EXPECT_NE(std::string(ZELMAR_engine_get_last_error()).find(what), std::string::npos);
    }
}

} // namespace
