// Bitmaps through the engine's operations: load, find, transparency, palette, unload,
// save and the image utilities, with files written into a scratch folder.
#include "api/LastError.h"
#include "io/ImageCodec.h"
#include "scene/World.h"

#include <gtest/gtest.h>
#include <zelmar/zelmar.h>

#include <filesystem>
#include <fstream>
#include <string>

namespace fs = std::filesystem;

namespace {

std::string data(const char* name) {
    return std::string(ENTITIES_DATA_DIR) + "/" + name;
}

class BitmapTest : public ::testing::Test {
  protected:
    void SetUp() override {
        zelmar::world().clear();
        dir = fs::temp_directory_path() / ("zelmar_bitmaps_" + std::to_string(::getpid()) + "_" +
                                           ::testing::UnitTest::GetInstance()->current_test_info()->name());
        fs::create_directories(dir);
    }
    void TearDown() override { fs::remove_all(dir); }

    // A 4 x 2 paletted image: index = x, palette black, red, green, blue.
    std::string writePaletted(const char* name) {
        zelmar::image::Image img;
        img.width = 4;
        img.height = 2;
        img.palette = {0, 0, 0, 255, 0, 0, 0, 255, 0, 0, 0, 255};
        for (int y = 0; y < 2; ++y)
            for (int x = 0; x < 4; ++x) {
                img.indices.push_back(uint8_t(x));
                const uint8_t* c = &img.palette[size_t(x) * 3];
                img.rgba.insert(img.rgba.end(), {c[0], c[1], c[2], 255});
            }
        const std::string path = (dir / name).string();
        std::string error;
        EXPECT_TRUE(zelmar::image::encodeFile(img, path, error)) << error;
        return path;
    }
    std::string writeTrueColour(const char* name) {
        zelmar::image::Image img;
        img.width = 3;
        img.height = 1;
        img.rgba = {10, 20, 30, 255, 40, 50, 60, 255, 10, 20, 30, 255};
        const std::string path = (dir / name).string();
        std::string error;
        EXPECT_TRUE(zelmar::image::encodeFile(img, path, error)) << error;
        return path;
    }
    const unsigned char* pixels(int b) { return ZELMAR_bitmap_get_memory(b); }

    fs::path dir;
};

TEST_F(BitmapTest, LoadsPalettedBmpWithItsTransparentIndex) {
    const std::string path = writePaletted("brick.bmp");
    const int b = ZELMAR_bitmap_load(path.c_str(), 2);
    ASSERT_NE(b, 0) << zelmar::lastError();
    EXPECT_EQ(ZELMAR_bitmap_get_width(b), 4);
    EXPECT_EQ(ZELMAR_bitmap_get_height(b), 2);
    EXPECT_STREQ(ZELMAR_bitmap_get_name(b), "brick");
    EXPECT_EQ(ZELMAR_bitmap_get_palette_size(b), 4);
    EXPECT_EQ(ZELMAR_bitmap_get_transparent_index(b), 2);
    int rgb[3];
    EXPECT_EQ(ZELMAR_bitmap_get_transparent_rgb(b, rgb), 1);
    EXPECT_EQ(rgb[1], 255);
    // Only pixels of index 2 (x = 2) are see-through.
    EXPECT_EQ(pixels(b)[2 * 4 + 3], 0);
    EXPECT_EQ(pixels(b)[1 * 4 + 3], 255);
    EXPECT_EQ(pixels(b)[6 * 4 + 3], 0);
    unsigned char pal[768];
    EXPECT_EQ(ZELMAR_bitmap_get_palette(b, pal), 4);
    EXPECT_EQ(pal[3 * 3 + 2], 255);
}

TEST_F(BitmapTest, SameFileAndIndexIsOneBitmapAnotherIndexIsAnother) {
    const std::string path = writePaletted("wall.bmp");
    const int opaque = ZELMAR_bitmap_load(path.c_str(), -1);
    EXPECT_EQ(ZELMAR_bitmap_load(path.c_str(), -1), opaque);
    const std::string roundabout = (dir / "." / "wall.bmp").string();
    EXPECT_EQ(ZELMAR_bitmap_load(roundabout.c_str(), -1), opaque);
    const int seeThrough = ZELMAR_bitmap_load(path.c_str(), 0);
    EXPECT_NE(seeThrough, opaque);
    EXPECT_EQ(ZELMAR_bitmap_get_transparent_index(opaque), -1);
    EXPECT_EQ(ZELMAR_bitmap_get_first_bitmap(), opaque);
    EXPECT_EQ(ZELMAR_bitmap_get_next(opaque), seeThrough);
    EXPECT_EQ(ZELMAR_bitmap_get_next(seeThrough), 0);
    // Found by name and by path.
    EXPECT_EQ(ZELMAR_bitmap_get_handle("wall"), opaque);
    EXPECT_EQ(ZELMAR_bitmap_get_handle(path.c_str()), opaque);
    EXPECT_EQ(ZELMAR_bitmap_get_handle("wall.bmp"), 0);
    EXPECT_EQ(ZELMAR_bitmap_get_handle(nullptr), 0);
}

TEST_F(BitmapTest, TrueColourIndicesArePackedColours) {
    const std::string path = writeTrueColour("glass.bmp");
    const int probe = ZELMAR_bitmap_load(path.c_str(), -1);
    ASSERT_NE(probe, 0);
    EXPECT_EQ(ZELMAR_bitmap_get_palette_size(probe), 0);
    const int index = ZELMAR_bitmap_rgb_color_to_index(probe, 10, 20, 30);
    EXPECT_EQ(index, 10 + 20 * 256 + 30 * 65536);
    int rgb[3];
    ASSERT_EQ(ZELMAR_bitmap_index_to_rgb(probe, index, rgb), 1);
    EXPECT_EQ(rgb[2], 30);
    const int b = ZELMAR_bitmap_load(path.c_str(), index);
    ASSERT_NE(b, 0);
    EXPECT_EQ(pixels(b)[3], 0);
    EXPECT_EQ(pixels(b)[7], 255);
    EXPECT_EQ(pixels(b)[11], 0);
    EXPECT_EQ(ZELMAR_bitmap_load(path.c_str(), 0x1000000), 0); // not a colour
}

TEST_F(BitmapTest, ColourToIndexFindsTheNearestPaletteEntry) {
    const int b = ZELMAR_bitmap_load(writePaletted("p.bmp").c_str(), -1);
    EXPECT_EQ(ZELMAR_bitmap_rgb_color_to_index(b, 0, 255, 0), 2);
    EXPECT_EQ(ZELMAR_bitmap_rgb_color_to_index(b, 200, 30, 20), 1);
    int rgb[3];
    EXPECT_EQ(ZELMAR_bitmap_index_to_rgb(b, 4, rgb), 0);
    EXPECT_EQ(ZELMAR_bitmap_index_to_rgb(b, -1, rgb), 0);
    EXPECT_EQ(ZELMAR_bitmap_load(writePaletted("q.bmp").c_str(), 4), 0); // outside the palette
    EXPECT_NE(zelmar::lastError().find("palette"), std::string::npos);
}

TEST_F(BitmapTest, CommittedFilesLoad) {
    for (const char* name : {"pal4.bmp", "pal8.bmp", "rgb24.bmp", "photo.jpg"}) {
        const int b = ZELMAR_bitmap_load(data(name).c_str(), -1);
        EXPECT_NE(b, 0) << name << ": " << zelmar::lastError();
    }
    EXPECT_EQ(ZELMAR_bitmap_get_palette_size(ZELMAR_bitmap_get_handle("pal8")), 256);
    EXPECT_EQ(ZELMAR_bitmap_get_palette_size(ZELMAR_bitmap_get_handle("photo")), 0);
}

TEST_F(BitmapTest, MissingAndCorruptFilesGiveZeroAndAReason) {
    zelmar::clearLastError();
    EXPECT_EQ(ZELMAR_bitmap_load((dir / "none.bmp").string().c_str(), -1), 0);
    EXPECT_NE(zelmar::lastError().find("not found"), std::string::npos);

    const std::string bad = (dir / "bad.jpg").string();
    std::ofstream(bad) << "this is no picture";
    zelmar::clearLastError();
    EXPECT_EQ(ZELMAR_bitmap_load(bad.c_str(), -1), 0);
    EXPECT_NE(zelmar::lastError().find("bad.jpg"), std::string::npos);

    // A real jpeg cut in half.
    std::vector<uint8_t> bytes;
    std::string error;
    ASSERT_TRUE(zelmar::image::readFile(data("photo.jpg"), bytes, error));
    const std::string cut = (dir / "cut.jpg").string();
    std::ofstream(cut, std::ios::binary).write(reinterpret_cast<const char*>(bytes.data()), 20);
    EXPECT_EQ(ZELMAR_bitmap_load(cut.c_str(), -1), 0);
    EXPECT_EQ(ZELMAR_bitmap_load(dir.string().c_str(), -1), 0); // a folder
    EXPECT_EQ(ZELMAR_bitmap_load("", -1), 0);
    EXPECT_EQ(ZELMAR_bitmap_load(nullptr, -1), 0);
    EXPECT_EQ(ZELMAR_bitmap_get_first_bitmap(), 0);
}

TEST_F(BitmapTest, UnloadTakesTheBitmapFromItsPolygons) {
    const int b = ZELMAR_bitmap_load(writePaletted("u.bmp").c_str(), -1);
    zelmar::Polygon* p = zelmar::world().createPolygon();
    zelmar::Polygon* q = zelmar::world().createPolygon();
    p->fill.bitmap = b;
    q->fill.secondBitmap = b;
    EXPECT_EQ(ZELMAR_bitmap_get_number_of_polygons_using_bitmap(b), 2);
    ZELMAR_bitmap_unload(b);
    EXPECT_EQ(ZELMAR_bitmap_is_bitmap(b), 0);
    EXPECT_EQ(p->fill.bitmap, 0);
    EXPECT_EQ(q->fill.secondBitmap, 0);
    EXPECT_EQ(ZELMAR_bitmap_get_number_of_polygons_using_bitmap(b), 0);
    EXPECT_EQ(ZELMAR_bitmap_get_width(b), 0);
    EXPECT_EQ(ZELMAR_bitmap_get_memory(b), nullptr);
    // Loading again gives a new handle.
    EXPECT_NE(ZELMAR_bitmap_load((dir / "u.bmp").string().c_str(), -1), b);
}

TEST_F(BitmapTest, SaveKeepsPaletteAndResampleKeepsHandle) {
    const int b = ZELMAR_bitmap_load(writePaletted("s.bmp").c_str(), 1);
    const std::string out = (dir / "copy.bmp").string();
    ASSERT_EQ(ZELMAR_bitmap_save(b, out.c_str()), 1) << zelmar::lastError();
    const int copy = ZELMAR_bitmap_load(out.c_str(), 1);
    EXPECT_EQ(ZELMAR_bitmap_get_palette_size(copy), 4);
    EXPECT_EQ(std::vector<uint8_t>(pixels(copy), pixels(copy) + 32),
              std::vector<uint8_t>(pixels(b), pixels(b) + 32));
    EXPECT_EQ(ZELMAR_bitmap_save(b, (dir / "copy.jpg").string().c_str()), 1);
    EXPECT_EQ(ZELMAR_bitmap_save(b, (dir / "copy.gif").string().c_str()), 0);

    ASSERT_EQ(ZELMAR_bitmap_resample(b, 8, 4), 1);
    EXPECT_EQ(ZELMAR_bitmap_get_width(b), 8);
    EXPECT_EQ(ZELMAR_bitmap_get_height(b), 4);
    EXPECT_EQ(pixels(b)[2 * 4 + 3], 0); // source x = 1 is still see-through
    EXPECT_EQ(ZELMAR_bitmap_resample(b, 0, 4), 0);

    ZELMAR_bitmap_set_palette_color(b, 3, 9, 8, 7);
    EXPECT_EQ(pixels(b)[7 * 4], 9);
}

TEST_F(BitmapTest, UtilitiesConvertAndReadFiles) {
    const std::string bmp = writeTrueColour("c.bmp");
    const std::string jpg = (dir / "c.jpg").string();
    const std::string back = (dir / "back.bmp").string();
    EXPECT_EQ(ZELMAR_utilities_bmp2jpg(bmp.c_str(), jpg.c_str(), 90), 1);
    EXPECT_EQ(ZELMAR_utilities_jpg2bmp(jpg.c_str(), back.c_str()), 1);
    EXPECT_EQ(ZELMAR_utilities_jpg2bmp(jpg.c_str(), jpg.c_str()), -1); // not a .bmp name
    EXPECT_EQ(ZELMAR_utilities_bmp2jpg((dir / "none.bmp").string().c_str(), jpg.c_str(), 90), -1);

    const int size = ZELMAR_utilities_file_to_memory(bmp.c_str(), nullptr, 0);
    EXPECT_EQ(size, int(fs::file_size(bmp)));
    std::vector<unsigned char> buffer(2);
    EXPECT_EQ(ZELMAR_utilities_file_to_memory(bmp.c_str(), buffer.data(), 2), size);
    EXPECT_EQ(buffer[0], 'B');
    EXPECT_EQ(ZELMAR_utilities_file_to_memory((dir / "none").string().c_str(), nullptr, 0), -1);

    const unsigned char px[8] = {1, 2, 3, 255, 4, 5, 6, 255};
    EXPECT_EQ(ZELMAR_utilities_save_bitmap(px, 2, 1, (dir / "px.bmp").string().c_str()), 1);
    EXPECT_EQ(ZELMAR_utilities_save_bitmap(px, 0, 1, (dir / "px.bmp").string().c_str()), -1);
    int wh[2];
    unsigned char loaded[8];
    EXPECT_EQ(ZELMAR_utilities_load_bitmap_from_file((dir / "px.bmp").string().c_str(), loaded, 8, wh), 1);
    EXPECT_EQ(wh[0], 2);
    EXPECT_EQ(loaded[4], 4);

    EXPECT_EQ(ZELMAR_utilities_rgb16_to_rgb24(0xFFFF), 0xFFFFFF);
    EXPECT_EQ(ZELMAR_utilities_rgb16_to_rgb24(0xF800), 0x0000FF); // pure red lands in the low byte
}

TEST_F(BitmapTest, StaleAndStrangeHandlesAreHarmless) {
    int rgb[3] = {5, 5, 5};
    unsigned char pal[768];
    for (int h : {0, -7, 4242424, INT32_MAX}) {
        EXPECT_EQ(ZELMAR_bitmap_is_bitmap(h), 0);
        EXPECT_EQ(ZELMAR_bitmap_get_width(h), 0);
        EXPECT_EQ(ZELMAR_bitmap_get_transparent_index(h), -1);
        EXPECT_EQ(ZELMAR_bitmap_get_transparent_rgb(h, rgb), 0);
        EXPECT_EQ(ZELMAR_bitmap_get_palette(h, pal), 0);
        EXPECT_EQ(ZELMAR_bitmap_save(h, "x.bmp"), 0);
        ZELMAR_bitmap_unload(h);
        ZELMAR_bitmap_set_palette_color(h, 0, 1, 2, 3);
    }
    EXPECT_EQ(rgb[0], 5);
}

} // namespace
