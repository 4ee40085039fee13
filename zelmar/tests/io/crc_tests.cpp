// The chunk checksum must equal zlib's CRC-32 for every length, alignment and starting
// value: files written before and after the folded version have to read both ways.
#include "io/Crc32.h"

#include <gtest/gtest.h>
#include <random>
#include <vector>
#include <zlib.h>

TEST(Crc32, AgreesWithZlibAtEveryLengthAlignmentAndSeed) {
    std::mt19937 rng(7);
    std::vector<uint8_t> bytes(70000);
    for (uint8_t& b : bytes)
        b = static_cast<uint8_t>(rng());
    // Around the 16- and 64-byte steps of the fold, and long runs that loop many times.
    std::vector<size_t> lengths;
    for (size_t n = 0; n <= 260; ++n)
        lengths.push_back(n);
    for (size_t n : {1023, 1024, 1025, 4096 + 17, 65536, 69000})
        lengths.push_back(n);
    for (size_t offset = 0; offset < 17; ++offset)
        for (size_t n : lengths)
            for (uint32_t seed : {0u, 0xFFFFFFFFu, static_cast<uint32_t>(rng())}) {
                const uint8_t* p = bytes.data() + offset;
                ASSERT_EQ(zelmar::io::crc32(seed, p, n), static_cast<uint32_t>(crc32_z(seed, p, n)))
                    << "offset " << offset << " length " << n << " seed " << seed;
            }
}

TEST(Crc32, RunsInPiecesAsInOne) {
    std::vector<uint8_t> bytes(5000);
    for (size_t i = 0; i < bytes.size(); ++i)
        bytes[i] = static_cast<uint8_t>(i * 131 + (i >> 7));
    const uint32_t whole = zelmar::io::crc32(0, bytes.data(), bytes.size());
    for (size_t cut : {0, 15, 16, 63, 64, 65, 1000, 4999}) {
        uint32_t c = zelmar::io::crc32(0, bytes.data(), cut);
        c = zelmar::io::crc32(c, bytes.data() + cut, bytes.size() - cut);
        EXPECT_EQ(c, whole) << "cut at " << cut;
    }
    const uint8_t zero[64] = {};
    EXPECT_EQ(zelmar::io::crc32(0, zero, 0), 0u);
    EXPECT_EQ(zelmar::io::crc32(0, "123456789", 9), 0xCBF43926u); // the check value of this CRC
}
