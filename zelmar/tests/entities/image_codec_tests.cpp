// The image codec: what it keeps of a file, and how it refuses bad bytes.
#include "io/ImageCodec.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <thread>
#include <unistd.h>

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

// A JPEG whose scan names a component its frame does not have: stb refuses it without a
// reason of its own.
std::vector<uint8_t> jpegWithAStrayScanComponent() {
    Image img;
    img.width = img.height = 8;
    img.rgba.assign(8 * 8 * 4, 200);
    std::vector<uint8_t> bytes;
    std::string error;
    EXPECT_TRUE(encodeJpeg(img, 90, bytes, error)) << error;
    for (size_t i = 0; i + 5 < bytes.size(); ++i)
        if (bytes[i] == 0xFF && bytes[i + 1] == 0xDA) {
            bytes[i + 5] = 0x7F; // the first component selector of the scan
            return bytes;
        }
    ADD_FAILURE() << "no scan in the encoded JPEG";
    return bytes;
}

// An uncompressed 8-bit .bmp, width x height, with `colours` palette entries (grey levels)
// and every pixel naming `index`.
std::vector<uint8_t> bmp8(int width, int height, uint32_t colours, uint8_t index) {
    const uint32_t stride = (uint32_t(width) + 3) & ~3u, offset = 14 + 40 + colours * 4;
    std::vector<uint8_t> b(offset + stride * uint32_t(height), 0);
    auto put = [&](size_t at, uint32_t v, int n) {
        for (int k = 0; k < n; ++k)
            b[at + size_t(k)] = uint8_t(v >> (8 * k));
    };
    b[0] = 'B', b[1] = 'M';
    put(2, uint32_t(b.size()), 4);
    put(10, offset, 4);
    put(14, 40, 4);
    put(18, uint32_t(width), 4);
    put(22, uint32_t(height), 4);
    put(26, 1, 2);
    put(28, 8, 2);
    put(46, colours, 4);
    for (uint32_t c = 0; c < colours; ++c)
        put(54 + c * 4, c * 0x010101u, 3);
    for (int y = 0; y < height; ++y)
        std::fill_n(b.begin() + offset + y * stride, width, index);
    return b;
}

TEST(ImageCodec, ACorruptJpegWithoutAReasonFromTheDecoderGetsOne) {
    const std::vector<uint8_t> bad = jpegWithAStrayScanComponent();
    // On a fresh thread the decoder has never failed: it has no reason at all to give.
    std::string error;
    bool decoded = true;
    std::thread([&] {
        Image img;
        decoded = decodeMemory(bad.data(), bad.size(), img, error);
    }).join();
    EXPECT_FALSE(decoded);
    EXPECT_NE(error.find("cannot decode image"), std::string::npos) << error;
    // After another failure, that failure's reason is not given for this one.
    Image img;
    const uint8_t badBmp[] = {'B', 'M', 1, 2, 3};
    EXPECT_FALSE(decodeMemory(badBmp, sizeof badBmp, img, error));
    std::string second;
    EXPECT_FALSE(decodeMemory(bad.data(), bad.size(), img, second));
    EXPECT_NE(second, error);
    EXPECT_EQ(second.find("bmp"), std::string::npos) << second;
}

TEST(ImageCodec, SizesFromOnePixelToTheLimitDecodeOrAreRefusedClearly) {
    Image img;
    std::string error;
    std::vector<uint8_t> bytes = bmp8(1, 1, 2, 1);
    ASSERT_TRUE(decodeMemory(bytes.data(), bytes.size(), img, error)) << error;
    EXPECT_EQ(img.width * img.height, 1);
    EXPECT_EQ(img.indices, std::vector<uint8_t>{1});
    ASSERT_TRUE(encodeJpeg(img, 90, bytes, error));
    ASSERT_TRUE(decodeMemory(bytes.data(), bytes.size(), img, error)) << error;
    EXPECT_EQ(img.width * img.height, 1);
    bytes = bmp8(kMaxDimension, 1, 2, 0);
    ASSERT_TRUE(decodeMemory(bytes.data(), bytes.size(), img, error)) << error;
    EXPECT_EQ(img.width, kMaxDimension);

    // 16384 x 16384, whole (256 MiB of pixel indices), and as a JPEG header of that size.
    bytes = bmp8(kMaxDimension, kMaxDimension, 2, 0);
    EXPECT_FALSE(decodeMemory(bytes.data(), bytes.size(), img, error));
    EXPECT_NE(error.find("16384 x 16384"), std::string::npos) << error;
    bytes = {};
    ASSERT_TRUE(encodeJpeg(paletted3x2(), 90, bytes, error));
    for (size_t i = 0; i + 8 < bytes.size(); ++i)
        if (bytes[i] == 0xFF && bytes[i + 1] == 0xC0) { // the frame header: height, then width
            bytes[i + 5] = bytes[i + 7] = 0x40;
            bytes[i + 6] = bytes[i + 8] = 0x00;
            break;
        }
    EXPECT_FALSE(decodeMemory(bytes.data(), bytes.size(), img, error));
    EXPECT_NE(error.find("16384 x 16384"), std::string::npos) << error;
}

TEST(ImageCodec, APixelNamingAColourPastThePaletteIsRefused) {
    Image img;
    std::string error;
    std::vector<uint8_t> bytes = bmp8(4, 2, 16, 15);
    ASSERT_TRUE(decodeMemory(bytes.data(), bytes.size(), img, error)) << error;
    bytes = bmp8(4, 2, 16, 16);
    EXPECT_FALSE(decodeMemory(bytes.data(), bytes.size(), img, error));
    EXPECT_NE(error.find("colour 16 of a table of 16"), std::string::npos) << error;
    // A table that overlaps the header (pixels said to start inside it): no colours at all.
    bytes[10] = 40;
    EXPECT_FALSE(decodeMemory(bytes.data(), bytes.size(), img, error));
    EXPECT_FALSE(error.empty());
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
