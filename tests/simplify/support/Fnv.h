// FNV-1a over 64-bit words: the hashes simplify_cli --checksum prints, and the tests compare.
#pragma once
#include <bit>
#include <cstdint>

namespace simplify_test {

struct Hash {
    std::uint64_t h = 1469598103934665603ULL;
    void add(std::uint64_t v) {
        for (int i = 0; i < 8; ++i) {
            h ^= (v >> (i * 8)) & 0xff;
            h *= 1099511628211ULL;
        }
    }
    void add(double d) { add(std::bit_cast<std::uint64_t>(d)); }
};

} // namespace simplify_test
