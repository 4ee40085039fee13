#include "io/Crc32.h"

#include <zlib.h>

#if defined(__x86_64__) && (defined(__GNUC__) || defined(__clang__))
#include <immintrin.h>
#define ZELMAR_CRC_FOLD 1
#endif

namespace zelmar::io {

namespace {

uint32_t crcBytes(uint32_t crc, const uint8_t* p, size_t n) {
    while (n) { // crc32_z takes a size_t, but keep each call well inside 32 bits for old zlibs
        const size_t step = n < (size_t(1) << 30) ? n : (size_t(1) << 30);
        crc = static_cast<uint32_t>(crc32_z(crc, p, step));
        p += step;
        n -= step;
    }
    return crc;
}

#ifdef ZELMAR_CRC_FOLD

// Folding by carry-less multiplication: four 128-bit lanes are each multiplied by x^(512+64)
// and x^512 mod P and added to the next 64 bytes; the lanes then fold into one, which a
// Barrett reduction brings down to 32 bits. The constants are those powers of x modulo the
// bit-reflected polynomial, and mu = floor(x^64 / P).
#define ZELMAR_FOLD_TARGET __attribute__((target("pclmul,sse4.1")))

ZELMAR_FOLD_TARGET inline __m128i load(const uint8_t* q) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(q));
}

// x times the two constants of k (low half by low, high by high), plus next.
ZELMAR_FOLD_TARGET inline __m128i fold(__m128i x, __m128i k, __m128i next) {
    return _mm_xor_si128(_mm_xor_si128(_mm_clmulepi64_si128(x, k, 0x00), _mm_clmulepi64_si128(x, k, 0x11)),
                         next);
}

ZELMAR_FOLD_TARGET uint32_t crcFold(uint32_t crc, const uint8_t*& p, size_t& n) {
    const __m128i k1k2 = _mm_set_epi64x(0x1c6e41596, 0x154442bd4);
    const __m128i k3k4 = _mm_set_epi64x(0x0ccaa009e, 0x1751997d0);
    const __m128i k5 = _mm_set_epi64x(0, 0x163cd6124);
    const __m128i poly = _mm_set_epi64x(0x1f7011641, 0x1db710641);
    const __m128i low32 = _mm_set_epi32(0, 0, 0, -1);
    __m128i x0 = _mm_xor_si128(load(p), _mm_cvtsi32_si128(static_cast<int>(crc)));
    __m128i x1 = load(p + 16), x2 = load(p + 32), x3 = load(p + 48);
    p += 64;
    n -= 64;
    while (n >= 64) {
        x0 = fold(x0, k1k2, load(p));
        x1 = fold(x1, k1k2, load(p + 16));
        x2 = fold(x2, k1k2, load(p + 32));
        x3 = fold(x3, k1k2, load(p + 48));
        p += 64;
        n -= 64;
    }
    __m128i x = fold(fold(fold(x0, k3k4, x1), k3k4, x2), k3k4, x3);
    while (n >= 16) {
        x = fold(x, k3k4, load(p));
        p += 16;
        n -= 16;
    }
    // 128 bits to 64, then to 32 + 32, then the reduction.
    x = _mm_xor_si128(_mm_clmulepi64_si128(x, k3k4, 0x10), _mm_srli_si128(x, 8));
    x = _mm_xor_si128(_mm_srli_si128(x, 4), _mm_clmulepi64_si128(_mm_and_si128(x, low32), k5, 0x00));
    __m128i t = _mm_clmulepi64_si128(_mm_and_si128(x, low32), poly, 0x10);
    t = _mm_clmulepi64_si128(_mm_and_si128(t, low32), poly, 0x00);
    return static_cast<uint32_t>(_mm_extract_epi32(_mm_xor_si128(t, x), 1));
}

bool canFold() {
    static const bool yes = __builtin_cpu_supports("pclmul") && __builtin_cpu_supports("sse4.1");
    return yes;
}

#endif

} // namespace

uint32_t crc32(uint32_t crc, const void* data, size_t size) {
    auto p = static_cast<const uint8_t*>(data);
#ifdef ZELMAR_CRC_FOLD
    if (size >= 64 && canFold()) crc = ~crcFold(~crc, p, size);
#endif
    return crcBytes(crc, p, size);
}

} // namespace zelmar::io
