// .png and .tga bitmaps beside .bmp and .jpg: files written by another program decode to the
// same pixels, our own encodings read back exactly, bad bytes are refused with a reason; and
// the bitmap files a world names but cannot read stay known until the world closes.
#include "io/ImageCodec.h"
#include "scene/World.h"

#include <gtest/gtest.h>
#include <zelmar/zelmar.h>

#include <filesystem>
#include <fstream>
#include <string>

namespace fs = std::filesystem;
using namespace zelmar::image;

namespace {

std::string data(const char* name) {
    return std::string(ENTITIES_DATA_DIR) + "/" + name;
}

std::vector<uint8_t> bytesOf(const std::string& path) {
    std::vector<uint8_t> out;
    std::string error;
    EXPECT_TRUE(readFile(path, out, error)) << error;
    return out;
}

// The 4 x 3 picture of the data files: red, with blue at (1,1) and green at (3,2).
void expectTheFourByThree(const Image& img) {
    ASSERT_EQ(img.width, 4);
    ASSERT_EQ(img.height, 3);
    auto at = [&](int x, int y) {
        const uint8_t* p = &img.rgba[(size_t(y) * 4 + size_t(x)) * 4];
        return std::array<int, 4>{p[0], p[1], p[2], p[3]};
    };
    EXPECT_EQ(at(0, 0), (std::array<int, 4>{255, 0, 0, 255}));
    EXPECT_EQ(at(1, 1), (std::array<int, 4>{0, 0, 255, 255}));
    EXPECT_EQ(at(3, 2), (std::array<int, 4>{0, 255, 0, 255}));
    EXPECT_EQ(at(3, 0), (std::array<int, 4>{255, 0, 0, 255}));
}

TEST(PngTga, FilesOfAnotherProgramDecodeToTheirPixels) {
    for (const char* name : {"rgb4x3.png", "pal4x3.png", "rgb4x3.tga", "rle4x3.tga"}) {
        SCOPED_TRACE(name);
        Image img;
        std::string error;
        ASSERT_TRUE(decodeFile(data(name), img, error)) << error;
        expectTheFourByThree(img);
        EXPECT_FALSE(img.paletted()); // only a .bmp keeps its palette
    }
    const std::vector<uint8_t> png = bytesOf(data("rgb4x3.png"));
    EXPECT_EQ(sniff(png.data(), png.size()), Format::Png);
    const std::vector<uint8_t> tga = bytesOf(data("rle4x3.tga"));
    EXPECT_EQ(sniff(tga.data(), tga.size()), Format::Tga);
    EXPECT_EQ(formatForPath("a/B.PNG"), Format::Png);
    EXPECT_EQ(formatForPath("x.tga"), Format::Tga);
}

TEST(PngTga, OwnEncodingsReadBackExactly) {
    Image img;
    img.width = 3;
    img.height = 2;
    img.rgba = {1, 2, 3, 255, 250, 128, 7, 255, 0, 0, 0, 255, 9, 99, 199, 255, 255, 255, 255, 255, 40, 50, 60, 255};
    for (const char* ext : {".png", ".tga"}) {
        SCOPED_TRACE(ext);
        const std::string path = (fs::temp_directory_path() / ("zelmar_pngtga_" + std::to_string(::getpid()) + ext)).string();
        std::string error;
        ASSERT_TRUE(encodeFile(img, path, error)) << error;
        Image back;
        ASSERT_TRUE(decodeFile(path, back, error)) << error;
        EXPECT_EQ(back.width, 3);
        EXPECT_EQ(back.rgba, img.rgba);
        fs::remove(path);
    }
}

TEST(PngTga, CutOrGarbledFilesAreRefusedWithAReason) {
    std::vector<uint8_t> png = bytesOf(data("rgb4x3.png"));
    Image img;
    std::string error;
    // Cut inside the pixel data, and only the signature: no crash, a reason.
    for (size_t keep : {png.size() / 2, size_t(8), size_t(20)}) {
        EXPECT_FALSE(decodeMemory(png.data(), keep, img, error)) << keep;
        EXPECT_FALSE(error.empty());
    }
    // A header that claims a huge picture.
    std::vector<uint8_t> big = png;
    big[16] = 0x7F, big[17] = 0xFF, big[18] = 0xFF, big[19] = 0xFF; // width
    EXPECT_FALSE(decodeMemory(big.data(), big.size(), img, error));
    // A .tga header that makes no sense is not taken for one.
    std::vector<uint8_t> tga = bytesOf(data("rgb4x3.tga"));
    tga[2] = 7; // no such image type
    EXPECT_EQ(sniff(tga.data(), tga.size()), Format::Unknown);
    EXPECT_FALSE(decodeMemory(tga.data(), tga.size(), img, error));
    EXPECT_NE(error.find(".png"), std::string::npos); // the message names the kinds it reads
    tga = bytesOf(data("rgb4x3.tga"));
    tga.resize(30); // pixel rows cut short
    EXPECT_FALSE(decodeMemory(tga.data(), tga.size(), img, error));
}

class MissingBitmaps : public ::testing::Test {
  protected:
    void SetUp() override {
        ZELMAR_engine_close();
        dir = fs::temp_directory_path() / ("zelmar_missing_" + std::to_string(::getpid()));
        fs::create_directories(dir / "bitmaps");
    }
    void TearDown() override {
        ZELMAR_engine_close();
        fs::remove_all(dir);
    }
    fs::path dir;
};

TEST_F(MissingBitmaps, AWorldWhoseBitmapFileIsGoneNamesItUntilClosed) {
    // A world with two textured polygons, saved with its bitmap files.
    const int root = ZELMAR_group_create("the_world");
    int bitmaps[2];
    const char* files[2] = {"rgb4x3.png", "rle4x3.tga"};
    for (int i = 0; i < 2; ++i) {
        fs::copy_file(data(files[i]), dir / files[i]);
        bitmaps[i] = ZELMAR_bitmap_load((dir / files[i]).c_str(), -1);
        ASSERT_NE(bitmaps[i], 0) << ZELMAR_engine_get_last_error();
        EXPECT_EQ(std::string(ZELMAR_bitmap_get_file(bitmaps[i])), (dir / files[i]).string());
        const int p = ZELMAR_polygon_create();
        for (int k = 0; k < 3; ++k) {
            const double v[6] = {double(k == 1), double(k == 2), 0, 0, 0, 100};
            ZELMAR_polygon_add_point(p, v);
        }
        ZELMAR_polygon_set_bitmap_fill(p, bitmaps[i]);
        ZELMAR_polygon_set_group(p, root);
        ZELMAR_engine_add_polygon(p);
    }
    const std::string world = (dir / "w.wld").string();
    ASSERT_EQ(ZELMAR_engine_save(world.c_str(), root, 0x1203), 1) << ZELMAR_engine_get_last_error();
    EXPECT_TRUE(fs::exists(dir / "bitmaps" / "rgb4x3.png")); // copied under its own kind

    fs::remove(dir / "bitmaps" / "rle4x3.tga");
    ZELMAR_engine_close();
    EXPECT_EQ(ZELMAR_bitmap_get_number_of_missing(), 0);
    ASSERT_NE(ZELMAR_engine_load_world(world.c_str(), "", (dir / "bitmaps").c_str(), 4), -1);
    ASSERT_EQ(ZELMAR_bitmap_get_number_of_missing(), 1);
    EXPECT_EQ(std::string(ZELMAR_bitmap_get_missing_file(0)), "rle4x3.tga");
    EXPECT_NE(std::string(ZELMAR_bitmap_get_missing_reason(0)).find("not found"), std::string::npos);
    EXPECT_EQ(std::string(ZELMAR_bitmap_get_missing_file(1)), "");
    EXPECT_EQ(std::string(ZELMAR_bitmap_get_missing_file(-1)), "");
    EXPECT_NE(ZELMAR_bitmap_get_handle("rgb4x3"), 0);
    ZELMAR_engine_close();
    EXPECT_EQ(ZELMAR_bitmap_get_number_of_missing(), 0);
    EXPECT_EQ(std::string(ZELMAR_bitmap_get_file(bitmaps[0])), ""); // a dead handle
}

} // namespace
