// The image codec: what it keeps of a file, and how it refuses bad bytes.
#include "io/ImageCodec.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

using namespace zelmar::image;

namespace {

std::string data(const char* name) {
    return std::string(ENTITIES_DATA_DIR) + "/" + name;
}

Image paletted3x2() {
    Image img;
    img.width = 3;
    img.height = 2;
    img.palette = {255, 0, 0, 0, 255, 0, 0, 0, 255, 255, 0, 0}; // entry 3 repeats entry 0
    img.indices = {0, 1, 2, 2, 1, 3};
    for (uint8_t i : img.indices) {
        const uint8_t* c = &img.palette[i * 3];
        img.rgba.insert(img.rgba.end(), {c[0], c[1], c[2], 255});
    }
    return img;
}

TEST(ImageCodec, FilesWrittenByOthersDecodeWithTheirPalettes) {
    Image img;
    std::string error;
    ASSERT_TRUE(decodeFile(data("pal4.bmp"), img, error)) << error;
    EXPECT_EQ(img.width, 4);
    EXPECT_EQ(img.height, 3);
    ASSERT_TRUE(img.paletted());
    EXPECT_EQ(img.paletteSize(), 16);
    EXPECT_EQ(img.indices[0], 0); // red background
    EXPECT_EQ(img.rgba[0], 255);
    EXPECT_EQ(img.indices[1 * 4 + 1], 2); // the blue point at (1,1)
    EXPECT_EQ(img.rgba[(1 * 4 + 1) * 4 + 2], 255);

    ASSERT_TRUE(decodeFile(data("pal8.bmp"), img, error)) << error;
    EXPECT_TRUE(img.paletted());
    EXPECT_EQ(img.paletteSize(), 256);

    ASSERT_TRUE(decodeFile(data("rgb24.bmp"), img, error)) << error;
    EXPECT_FALSE(img.paletted());
    EXPECT_EQ(img.width, 5);
    ASSERT_TRUE(decodeFile(data("photo.jpg"), img, error)) << error;
    EXPECT_EQ(img.width, 8);
    EXPECT_FALSE(img.paletted());
    EXPECT_EQ(img.rgba[3], 255);
}

TEST(ImageCodec, PalettedBmpRoundTripKeepsIndicesAndPalette) {
    const Image img = paletted3x2();
    std::vector<uint8_t> bytes;
    std::string error;
    ASSERT_TRUE(encodeBmp(img, bytes, error)) << error;
    EXPECT_EQ(bytes[28], 8); // 8 bits per pixel
    Image back;
    ASSERT_TRUE(decodeMemory(bytes.data(), bytes.size(), back, error)) << error;
    EXPECT_EQ(back.palette, img.palette);
    EXPECT_EQ(back.rgba, img.rgba);
    // The repeated colour comes back as its first entry.
    EXPECT_EQ(back.indices, (std::vector<uint8_t>{0, 1, 2, 2, 1, 0}));
}

TEST(ImageCodec, TrueColourBmpIsExactAndJpegIsClose) {
    Image img;
    img.width = 16;
    img.height = 16;
    for (int i = 0; i < 256; ++i)
        img.rgba.insert(img.rgba.end(), {uint8_t(i), 128, uint8_t(255 - i), 255});
    std::vector<uint8_t> bytes;
    std::string error;
    ASSERT_TRUE(encodeBmp(img, bytes, error));
    EXPECT_EQ(bytes[28], 24);
    Image back;
    ASSERT_TRUE(decodeMemory(bytes.data(), bytes.size(), back, error));
    EXPECT_EQ(back.rgba, img.rgba);
    ASSERT_TRUE(encodeJpeg(img, 95, bytes, error));
    EXPECT_EQ(sniff(bytes.data(), bytes.size()), Format::Jpeg);
    ASSERT_TRUE(decodeMemory(bytes.data(), bytes.size(), back, error));
    ASSERT_EQ(back.rgba.size(), img.rgba.size());
    int worst = 0;
    for (size_t i = 0; i < img.rgba.size(); ++i)
        worst = std::max(worst, std::abs(back.rgba[i] - img.rgba[i]));
    EXPECT_LT(worst, 24);
}

TEST(ImageCodec, BadBytesAndFilesGiveReasons) {
    Image img;
    std::string error;
    EXPECT_FALSE(decodeMemory(nullptr, 0, img, error));
    EXPECT_FALSE(error.empty());
    const uint8_t text[] = "hello, not an image";
    EXPECT_FALSE(decodeMemory(text, sizeof text, img, error));
    EXPECT_NE(error.find(".bmp, .jpg"), std::string::npos);
    // A real header cut short.
    std::vector<uint8_t> bytes;
    ASSERT_TRUE(encodeBmp(paletted3x2(), bytes, error));
    bytes.resize(40);
    error.clear();
    EXPECT_FALSE(decodeMemory(bytes.data(), bytes.size(), img, error));
    EXPECT_FALSE(error.empty());
    // A header that claims an absurd size.
    ASSERT_TRUE(encodeBmp(paletted3x2(), bytes, error));
    bytes[18] = 0xFF, bytes[19] = 0xFF, bytes[20] = 0xFF, bytes[21] = 0x00;
    EXPECT_FALSE(decodeMemory(bytes.data(), bytes.size(), img, error));
    // Run-length compressed bitmaps are named as such.
    EXPECT_FALSE(decodeFile(data("rle8.bmp"), img, error));
    EXPECT_NE(error.find("run-length"), std::string::npos) << error;
    EXPECT_FALSE(decodeFile("/nonexistent/folder/x.bmp", img, error));
    EXPECT_NE(error.find("not found"), std::string::npos);
}

TEST(ImageCodec, EncodeFileChoosesByExtensionAndLeavesNoScratch) {
    const auto dir = std::filesystem::temp_directory_path() / ("zelmar_codec_" + std::to_string(::getpid()));
    std::filesystem::create_directories(dir);
    std::string error;
    const Image img = paletted3x2();
    ASSERT_TRUE(encodeFile(img, (dir / "a.BMP").string(), error)) << error;
    ASSERT_TRUE(encodeFile(img, (dir / "a.jpeg").string(), error)) << error;
    EXPECT_FALSE(encodeFile(img, (dir / "a.gif").string(), error));
    EXPECT_NE(error.find("only .bmp, .jpg"), std::string::npos);
    EXPECT_FALSE(encodeFile(img, (dir / "missing" / "a.bmp").string(), error));
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir), {}), 2);
    Image empty;
    EXPECT_FALSE(encodeFile(empty, (dir / "b.bmp").string(), error));
    std::filesystem::remove_all(dir);
}

TEST(ImageCodec, ResampleBlendsColoursButNotIndices) {
    Image img;
    img.width = 2;
    img.height = 1;
    img.rgba = {0, 0, 0, 255, 200, 100, 50, 255};
    const Image wide = resample(img, 4, 1);
    ASSERT_EQ(wide.rgba.size(), 16u);
    EXPECT_EQ(wide.rgba[0], 0);
    EXPECT_EQ(wide.rgba[4], 50); // a quarter of the way
    EXPECT_EQ(wide.rgba[12], 200);
    const Image small = resample(paletted3x2(), 6, 4);
    ASSERT_TRUE(small.paletted());
    EXPECT_EQ(small.indices[0], 0);
    EXPECT_EQ(small.indices[5], 2);
    EXPECT_TRUE(resample(img, 0, 3).rgba.empty());
}

} // namespace
