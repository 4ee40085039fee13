#include "render/Raster.h"

#include <algorithm>
#include <cmath>

namespace zelmar::render {
namespace {

inline int64_t floorDiv(int64_t a, int64_t b) { // b > 0
    int64_t q = a / b;
    if ((a % b) != 0 && (a < 0)) --q;
    return q;
}

inline int64_t ceilDiv(int64_t a, int64_t b) { // b > 0
    return -floorDiv(-a, b);
}

// std::lround(double(s) * 16) without the library call: halves away from zero. Below 2^28
// the sum of a float times 16 and one half needs at most 53 bits, so it is exact and its
// truncation is the rounding.
inline int64_t roundTimes16(float s) {
    const double v = static_cast<double>(s) * 16.0;
    if (!(std::fabs(v) < 268435456.0)) return static_cast<int64_t>(std::lround(v));
    return static_cast<int64_t>(v + std::copysign(0.5, v));
}

// Spans of triangles at most this many pixels wide are found by testing each pixel centre,
// which is cheaper than solving the edges for x.
constexpr int kNarrow = 8;

// Float to int with the value held to +-limit (NaN gives 0), so that no conversion
// overflows whatever the scene's numbers.
inline int32_t toInt(float v, float limit) {
    if (!(v > -limit)) return v != v ? 0 : static_cast<int32_t>(-limit);
    if (!(v < limit)) return static_cast<int32_t>(limit);
    return static_cast<int32_t>(v);
}

inline uint32_t clamp255(int v) {
    return static_cast<uint32_t>(v < 0 ? 0 : (v > 255 ? 255 : v));
}

inline uint32_t sampleNearest(const Texture& t, float u, float v) {
    float fu = u * t.width, fv = v * t.height;
    fu = std::clamp(fu, -1e9f, 1e9f);
    fv = std::clamp(fv, -1e9f, 1e9f);
    const int x = wrapIndex(static_cast<int>(std::floor(fu)), t.width, t.pow2, t.wmask);
    const int y = wrapIndex(static_cast<int>(std::floor(fv)), t.height, t.pow2, t.hmask);
    return t.texels[static_cast<size_t>(y) * t.width + x];
}

// Bilinear with 8-bit weights; channels are blended two at a time in 0x00FF00FF lanes.
inline uint32_t sampleBilinear(const Texture& t, float u, float v) {
    float fu = u * t.width - 0.5f, fv = v * t.height - 0.5f;
    fu = std::clamp(fu, -1e9f, 1e9f);
    fv = std::clamp(fv, -1e9f, 1e9f);
    const float flu = std::floor(fu), flv = std::floor(fv);
    const int ix = static_cast<int>(flu), iy = static_cast<int>(flv);
    const uint32_t wx = static_cast<uint32_t>((fu - flu) * 256.0f),
                   wy = static_cast<uint32_t>((fv - flv) * 256.0f);
    const int x0 = wrapIndex(ix, t.width, t.pow2, t.wmask), x1 = wrapIndex(ix + 1, t.width, t.pow2, t.wmask);
    const int y0 = wrapIndex(iy, t.height, t.pow2, t.hmask),
              y1 = wrapIndex(iy + 1, t.height, t.pow2, t.hmask);
    const uint32_t* r0 = t.texels.data() + static_cast<size_t>(y0) * t.width;
    const uint32_t* r1 = t.texels.data() + static_cast<size_t>(y1) * t.width;
    const uint32_t c00 = r0[x0], c10 = r0[x1], c01 = r1[x0], c11 = r1[x1];
    const uint32_t w11 = (wx * wy) >> 8, w10 = wx - w11, w01 = wy - w11, w00 = 256 - wx - wy + w11;
    const uint32_t m = 0x00FF00FFu;
    uint32_t rb = ((c00 & m) * w00 + (c10 & m) * w10 + (c01 & m) * w01 + (c11 & m) * w11) >> 8;
    uint32_t ga =
        (((c00 >> 8) & m) * w00 + ((c10 >> 8) & m) * w10 + ((c01 >> 8) & m) * w01 + ((c11 >> 8) & m) * w11) >>
        8;
    return (rb & m) | ((ga & m) << 8);
}

inline uint32_t sample(const Texture& t, float u, float v, bool bilinear) {
    return bilinear ? sampleBilinear(t, u, v) : sampleNearest(t, u, v);
}

// The pixels of row y inside the triangle: [xl, xr], false when none.
inline bool rowSpan(const Tri& t, int y, int64_t& xl, int64_t& xr) {
    const int64_t py = 16 * static_cast<int64_t>(y) + 8;
    xl = t.minX;
    xr = t.maxX;
    for (int i = 0; i < 3; ++i) {
        const int64_t a = t.ea[i];
        const int64_t k = a * 8 + t.eb[i] * py + t.ec[i];
        // x from a double division (much cheaper than a 64-bit integer one), then made
        // exact with the integer edge function.
        if (a > 0) {
            const int64_t a16 = 16 * a;
            int64_t x = static_cast<int64_t>(std::ceil(static_cast<double>(-k) / static_cast<double>(a16)));
            while (a16 * x + k < 0)
                ++x;
            while (a16 * (x - 1) + k >= 0)
                --x;
            xl = std::max(xl, x);
        } else if (a < 0) {
            const int64_t a16 = -16 * a;
            int64_t x = static_cast<int64_t>(std::floor(static_cast<double>(k) / static_cast<double>(a16)));
            while (k - a16 * x < 0)
                --x;
            while (k - a16 * (x + 1) >= 0)
                ++x;
            xr = std::min(xr, x);
        } else if (k < 0) {
            return false;
        }
    }
    return xl <= xr;
}

// rowSpan for a triangle at most kNarrow pixels wide: the same pixels, each centre tested
// against the three edge functions.
[[gnu::always_inline]] inline bool rowSpanNarrow(const Tri& t, int y, int64_t& xl, int64_t& xr) {
    const int64_t py = 16 * static_cast<int64_t>(y) + 8, px = 16 * static_cast<int64_t>(t.minX) + 8;
    int64_t e[3], step[3];
    for (int i = 0; i < 3; ++i) {
        e[i] = t.ea[i] * px + t.eb[i] * py + t.ec[i];
        step[i] = 16 * static_cast<int64_t>(t.ea[i]);
    }
    int64_t x = t.minX;
    for (; x <= t.maxX; ++x) {
        if ((e[0] | e[1] | e[2]) >= 0) break;
        for (int i = 0; i < 3; ++i)
            e[i] += step[i];
    }
    if (x > t.maxX) return false;
    xl = x;
    // The covered pixels of a row are contiguous.
    for (++x; x <= t.maxX; ++x) {
        for (int i = 0; i < 3; ++i)
            e[i] += step[i];
        if ((e[0] | e[1] | e[2]) < 0) break;
    }
    xr = x - 1;
    return true;
}

[[gnu::always_inline]] inline bool span(const Tri& t, int y, int64_t& xl, int64_t& xr) {
    return t.maxX - t.minX < kNarrow ? rowSpanNarrow(t, y, xl, xr) : rowSpan(t, y, xl, xr);
}

// Textured spans on power-of-two bitmaps: the perspective divide is made every kStep
// pixels (anchored at the span's start, so independent of bands) and texture coordinates,
// shade and fog are stepped in fixed point in between.
constexpr int kStep = 16;

template <bool Translucent, bool Bilinear, bool Fog, bool Keyed>
void rasterRowsPow2(const Tri& t, const FrameBuffer& fb, int y0, int y1) {
    const Texture& tex = *t.tex;
    constexpr bool bilinear = Bilinear, fog = Fog, keyed = Keyed;
    const uint32_t* texels = tex.texels.data();
    const int shiftW = __builtin_ctz(static_cast<unsigned>(tex.width));
    const uint32_t wmask = tex.wmask, hmask = tex.hmask;
    const float tw = static_cast<float>(tex.width) * 65536.0f, th = static_cast<float>(tex.height) * 65536.0f;
    const double twd = tex.width, thd = tex.height;
    const int fr = fb.fogColor & 0xFF, fg = (fb.fogColor >> 8) & 0xFF, fbl = (fb.fogColor >> 16) & 0xFF;
    const uint32_t half = bilinear ? 32768u : 0u;
    for (int y = y0; y < y1; ++y) {
        int64_t xl, xr;
        if (!span(t, y, xl, xr)) continue;
        const float ox = static_cast<float>(xl) + 0.5f - t.x0, oy = static_cast<float>(y) + 0.5f - t.y0;
        float z = t.a0[kZ] + t.dx[kZ] * ox + t.dy[kZ] * oy;
        float q = t.a0[kQ] + t.dx[kQ] * ox + t.dy[kQ] * oy;
        float uq = t.a0[kU] + t.dx[kU] * ox + t.dy[kU] * oy;
        float vq = t.a0[kV] + t.dx[kV] * ox + t.dy[kV] * oy;
        float sr = t.a0[kR] + t.dx[kR] * ox + t.dy[kR] * oy;
        float sg = t.a0[kG] + t.dx[kG] * ox + t.dy[kG] * oy;
        float sb = t.a0[kB] + t.dx[kB] * ox + t.dy[kB] * oy;
        float sf = t.a0[kF] + t.dx[kF] * ox + t.dy[kF] * oy;
        uint32_t* crow = fb.color + static_cast<size_t>(y) * fb.width;
        float* zrow = fb.depth + static_cast<size_t>(y) * fb.width;
        // Texture coordinate at the block start, reduced into one bitmap period so that
        // the 16.16 fixed point never overflows.
        auto fixedCoord = [](double c, double size) {
            c -= std::floor(c / size) * size;
            return static_cast<uint32_t>(static_cast<int64_t>(c * 65536.0));
        };
        float w = 1.0f / q;
        double u0 = static_cast<double>(uq * w), v0 = static_cast<double>(vq * w);
        for (int64_t bx = xl; bx <= xr; bx += kStep) {
            const int n = static_cast<int>(std::min<int64_t>(kStep, xr - bx + 1));
            const float q1 = q + t.dx[kQ] * n, uq1 = uq + t.dx[kU] * n, vq1 = vq + t.dx[kV] * n;
            const float w1 = 1.0f / q1;
            const double u1 = static_cast<double>(uq1 * w1), v1 = static_cast<double>(vq1 * w1);
            const double ut0 = std::clamp(u0 * twd, -1e9, 1e9), vt0 = std::clamp(v0 * thd, -1e9, 1e9);
            uint32_t fu = fixedCoord(ut0, twd) - half, fv = fixedCoord(vt0, thd) - half;
            const int32_t du = static_cast<int32_t>(std::clamp((u1 - u0) * tw / n, -2e9, 2e9));
            const int32_t dv = static_cast<int32_t>(std::clamp((v1 - v0) * th / n, -2e9, 2e9));
            int32_t ir = toInt(std::max(sr, 0.0f) * 65536.0f, 1e8f);
            int32_t ig = toInt(std::max(sg, 0.0f) * 65536.0f, 1e8f);
            int32_t ib = toInt(std::max(sb, 0.0f) * 65536.0f, 1e8f);
            const int32_t dr = toInt(t.dx[kR] * 65536.0f, 1e8f), dg = toInt(t.dx[kG] * 65536.0f, 1e8f),
                          db = toInt(t.dx[kB] * 65536.0f, 1e8f);
            int32_t iff = toInt(std::clamp(sf, 0.0f, 1.0f) * 65536.0f, 1e8f);
            const int32_t df = toInt(t.dx[kF] * 65536.0f, 1e8f);
            for (int i = 0; i < n; ++i) {
                const int64_t x = bx + i;
                if (z > zrow[x]) {
                    uint32_t c;
                    const uint32_t tx = (fu >> 16) & wmask, ty = (fv >> 16) & hmask;
                    if constexpr (bilinear) {
                        const uint32_t tx1 = (tx + 1) & wmask, ty1 = (ty + 1) & hmask;
                        const uint32_t wx = (fu >> 8) & 0xFF, wy = (fv >> 8) & 0xFF;
                        const uint32_t* r0 = texels + (static_cast<size_t>(ty) << shiftW);
                        const uint32_t* r1 = texels + (static_cast<size_t>(ty1) << shiftW);
                        const uint32_t c00 = r0[tx], c10 = r0[tx1], c01 = r1[tx], c11 = r1[tx1];
                        const uint32_t w11 = (wx * wy) >> 8, w10 = wx - w11, w01 = wy - w11,
                                       w00 = 256 - wx - wy + w11;
                        const uint32_t m = 0x00FF00FFu;
                        const uint32_t rb =
                            ((c00 & m) * w00 + (c10 & m) * w10 + (c01 & m) * w01 + (c11 & m) * w11) >> 8;
                        const uint32_t ga = (((c00 >> 8) & m) * w00 + ((c10 >> 8) & m) * w10 +
                                             ((c01 >> 8) & m) * w01 + ((c11 >> 8) & m) * w11) >>
                                            8;
                        c = (rb & m) | ((ga & m) << 8);
                    } else {
                        c = texels[(static_cast<size_t>(ty) << shiftW) + tx];
                    }
                    bool draw = true;
                    if constexpr (keyed) {
                        const uint32_t a = c >> 24;
                        if (a < 128) {
                            draw = false;
                        } else if (a < 255) {
                            const uint32_t k = (255u << 16) / a;
                            c = std::min(255u, ((c & 0xFF) * k) >> 16) |
                                std::min(255u, (((c >> 8) & 0xFF) * k) >> 16) << 8 |
                                std::min(255u, (((c >> 16) & 0xFF) * k) >> 16) << 16;
                        }
                    }
                    if (draw) {
                        int r =
                            static_cast<int>(((c & 0xFF) * static_cast<uint32_t>(std::max(ir, 0) >> 8)) >> 8);
                        int g = static_cast<int>(
                            (((c >> 8) & 0xFF) * static_cast<uint32_t>(std::max(ig, 0) >> 8)) >> 8);
                        int b = static_cast<int>(
                            (((c >> 16) & 0xFF) * static_cast<uint32_t>(std::max(ib, 0) >> 8)) >> 8);
                        r = std::min(r, 255), g = std::min(g, 255), b = std::min(b, 255);
                        if constexpr (fog) {
                            const int f = std::clamp(iff, 0, 65536) >> 8;
                            r += ((fr - r) * f) >> 8;
                            g += ((fg - g) * f) >> 8;
                            b += ((fbl - b) * f) >> 8;
                        }
                        const uint32_t src = 0xFF000000u | static_cast<uint32_t>(r) |
                                             static_cast<uint32_t>(g) << 8 | static_cast<uint32_t>(b) << 16;
                        if constexpr (Translucent) {
                            crow[x] = blendPixel(t.blend, src, crow[x]);
                        } else {
                            crow[x] = src;
                            zrow[x] = z;
                        }
                    }
                }
                z += t.dx[kZ];
                fu += static_cast<uint32_t>(du);
                fv += static_cast<uint32_t>(dv);
                ir += dr, ig += dg, ib += db, iff += df;
            }
            q = q1, uq = uq1, vq = vq1;
            u0 = u1, v0 = v1;
            sr += t.dx[kR] * n, sg += t.dx[kG] * n, sb += t.dx[kB] * n, sf += t.dx[kF] * n;
        }
    }
}

template <bool Textured, bool Translucent>
void rasterRows(const Tri& t, const FrameBuffer& fb, int y0, int y1) {
    const bool bilinear = t.flags & kBilinear;
    const bool lightMap = (t.flags & kLightMap) && t.tex2;
    const bool fog = t.flags & kFog;
    const bool keyed = Textured && t.tex->transparent;
    const uint32_t fr = fb.fogColor & 0xFF, fg = (fb.fogColor >> 8) & 0xFF, fbl = (fb.fogColor >> 16) & 0xFF;
    for (int y = y0; y < y1; ++y) {
        int64_t xl, xr;
        if (!span(t, y, xl, xr)) continue;
        float v[kAttrs];
        const float ox = static_cast<float>(xl) + 0.5f - t.x0, oy = static_cast<float>(y) + 0.5f - t.y0;
        for (int k = 0; k < kAttrs; ++k)
            v[k] = t.a0[k] + t.dx[k] * ox + t.dy[k] * oy;
        uint32_t* crow = fb.color + static_cast<size_t>(y) * fb.width;
        float* zrow = fb.depth + static_cast<size_t>(y) * fb.width;
        for (int64_t x = xl; x <= xr; ++x) {
            if (v[kZ] > zrow[x]) {
                uint32_t r, g, b;
                bool draw = true;
                if constexpr (Textured) {
                    const float w = 1.0f / v[kQ];
                    uint32_t c = sample(*t.tex, v[kU] * w, v[kV] * w, bilinear);
                    if (keyed) {
                        const uint32_t a = c >> 24;
                        if (a < 128) {
                            draw = false;
                        } else if (a < 255) {
                            const uint32_t k = (255u << 16) / a; // undo the weight of clear texels
                            c = std::min(255u, ((c & 0xFF) * k) >> 16) |
                                std::min(255u, (((c >> 8) & 0xFF) * k) >> 16) << 8 |
                                std::min(255u, (((c >> 16) & 0xFF) * k) >> 16) << 16;
                        }
                    }
                    const int sr = toInt(v[kR] * 256.0f, 1e6f), sg = toInt(v[kG] * 256.0f, 1e6f),
                              sb = toInt(v[kB] * 256.0f, 1e6f);
                    r = clamp255(
                        static_cast<int>(((c & 0xFF) * static_cast<uint32_t>(std::max(sr, 0))) >> 8));
                    g = clamp255(
                        static_cast<int>((((c >> 8) & 0xFF) * static_cast<uint32_t>(std::max(sg, 0))) >> 8));
                    b = clamp255(
                        static_cast<int>((((c >> 16) & 0xFF) * static_cast<uint32_t>(std::max(sb, 0))) >> 8));
                } else {
                    r = clamp255(toInt(v[kR] + 0.5f, 1e6f));
                    g = clamp255(toInt(v[kG] + 0.5f, 1e6f));
                    b = clamp255(toInt(v[kB] + 0.5f, 1e6f));
                }
                if (draw) {
                    if (lightMap) {
                        const float w = 1.0f / v[kQ];
                        const uint32_t l = sample(*t.tex2, v[kU2] * w, v[kV2] * w, bilinear);
                        r = std::min(255u, (r * (l & 0xFF)) >> 7);
                        g = std::min(255u, (g * ((l >> 8) & 0xFF)) >> 7);
                        b = std::min(255u, (b * ((l >> 16) & 0xFF)) >> 7);
                    }
                    if (fog) {
                        const int f = toInt(std::clamp(v[kF], 0.0f, 1.0f) * 256.0f, 256.0f);
                        r = static_cast<uint32_t>(static_cast<int>(r) +
                                                  ((static_cast<int>(fr) - static_cast<int>(r)) * f >> 8));
                        g = static_cast<uint32_t>(static_cast<int>(g) +
                                                  ((static_cast<int>(fg) - static_cast<int>(g)) * f >> 8));
                        b = static_cast<uint32_t>(static_cast<int>(b) +
                                                  ((static_cast<int>(fbl) - static_cast<int>(b)) * f >> 8));
                    }
                    const uint32_t src = 0xFF000000u | r | (g << 8) | (b << 16);
                    if constexpr (Translucent) {
                        crow[x] = blendPixel(t.blend, src, crow[x]);
                    } else {
                        crow[x] = src;
                        zrow[x] = v[kZ];
                    }
                }
            }
            for (int k = 0; k < kAttrs; ++k)
                v[k] += t.dx[k];
        }
    }
}

// rasterRows<false, false> without a light map: only depth, shade and fog are stepped,
// with the same float operations, so the pixels are the same.
template <bool Fog> void rasterFlat(const Tri& t, const FrameBuffer& fb, int y0, int y1) {
    const uint32_t fr = fb.fogColor & 0xFF, fg = (fb.fogColor >> 8) & 0xFF, fbl = (fb.fogColor >> 16) & 0xFF;
    for (int y = y0; y < y1; ++y) {
        int64_t xl, xr;
        if (!span(t, y, xl, xr)) continue;
        const float ox = static_cast<float>(xl) + 0.5f - t.x0, oy = static_cast<float>(y) + 0.5f - t.y0;
        float z = t.a0[kZ] + t.dx[kZ] * ox + t.dy[kZ] * oy;
        float sr = t.a0[kR] + t.dx[kR] * ox + t.dy[kR] * oy;
        float sg = t.a0[kG] + t.dx[kG] * ox + t.dy[kG] * oy;
        float sb = t.a0[kB] + t.dx[kB] * ox + t.dy[kB] * oy;
        float sf = Fog ? t.a0[kF] + t.dx[kF] * ox + t.dy[kF] * oy : 0.0f;
        uint32_t* crow = fb.color + static_cast<size_t>(y) * fb.width;
        float* zrow = fb.depth + static_cast<size_t>(y) * fb.width;
        for (int64_t x = xl; x <= xr; ++x) {
            if (z > zrow[x]) {
                uint32_t r = clamp255(toInt(sr + 0.5f, 1e6f));
                uint32_t g = clamp255(toInt(sg + 0.5f, 1e6f));
                uint32_t b = clamp255(toInt(sb + 0.5f, 1e6f));
                if constexpr (Fog) {
                    const int f = toInt(std::clamp(sf, 0.0f, 1.0f) * 256.0f, 256.0f);
                    r = static_cast<uint32_t>(static_cast<int>(r) +
                                              ((static_cast<int>(fr) - static_cast<int>(r)) * f >> 8));
                    g = static_cast<uint32_t>(static_cast<int>(g) +
                                              ((static_cast<int>(fg) - static_cast<int>(g)) * f >> 8));
                    b = static_cast<uint32_t>(static_cast<int>(b) +
                                              ((static_cast<int>(fbl) - static_cast<int>(b)) * f >> 8));
                }
                crow[x] = 0xFF000000u | r | (g << 8) | (b << 16);
                zrow[x] = z;
            }
            z += t.dx[kZ];
            sr += t.dx[kR], sg += t.dx[kG], sb += t.dx[kB];
            if constexpr (Fog) sf += t.dx[kF];
        }
    }
}

} // namespace

uint32_t blendPixel(uint8_t filter, uint32_t src, uint32_t dst) {
    uint32_t out = 0xFF000000u;
    for (int sh = 0; sh < 24; sh += 8) {
        const int s = static_cast<int>((src >> sh) & 0xFF), d = static_cast<int>((dst >> sh) & 0xFF);
        int r;
        switch (filter) {
        case 0x31:
            r = s * d / 255;
            break;
        case 0x43:
            r = (3 * s + d) / 4;
            break;
        case 0x52:
            r = (s + d) / 2;
            break;
        case 0x44:
            r = (s + 3 * d) / 4;
            break;
        case 0x32:
            r = std::min(255, s + d);
            break;
        case 0x42:
            r = std::min(255, s / 2 + d);
            break;
        case 0x22:
            r = 255 - (255 - s) * (255 - d) / 255;
            break;
        case 0x51:
            r = d * (255 - s) / 255;
            break;
        default:
            r = s;
            break;
        }
        out |= static_cast<uint32_t>(r) << sh;
    }
    return out;
}

bool setupTri(const ScreenVertex& a, const ScreenVertex& b, const ScreenVertex& c, int width, int height,
              Tri& t) {
    const ScreenVertex* v[3] = {&a, &b, &c};
    int64_t X[3], Y[3];
    for (int i = 0; i < 3; ++i) {
        X[i] = roundTimes16(v[i]->sx);
        Y[i] = roundTimes16(v[i]->sy);
    }
    int64_t area = (X[1] - X[0]) * (Y[2] - Y[0]) - (Y[1] - Y[0]) * (X[2] - X[0]);
    if (area == 0) return false;
    if (area < 0) {
        std::swap(v[1], v[2]);
        std::swap(X[1], X[2]);
        std::swap(Y[1], Y[2]);
        area = -area;
    }
    const int64_t minXf = std::min({X[0], X[1], X[2]}), maxXf = std::max({X[0], X[1], X[2]});
    const int64_t minYf = std::min({Y[0], Y[1], Y[2]}), maxYf = std::max({Y[0], Y[1], Y[2]});
    // Pixels whose centre (16x + 8) can lie inside.
    t.minX = static_cast<int32_t>(std::max<int64_t>(0, ceilDiv(minXf - 8, 16)));
    t.maxX = static_cast<int32_t>(std::min<int64_t>(width - 1, floorDiv(maxXf - 8, 16)));
    t.minY = static_cast<int32_t>(std::max<int64_t>(0, ceilDiv(minYf - 8, 16)));
    t.maxY = static_cast<int32_t>(std::min<int64_t>(height - 1, floorDiv(maxYf - 8, 16)));
    if (t.minX > t.maxX || t.minY > t.maxY) return false;
    for (int i = 0; i < 3; ++i) {
        const int j = (i + 1) % 3;
        const int64_t A = Y[i] - Y[j], B = X[j] - X[i];
        const bool topLeft = A > 0 || (A == 0 && B > 0);
        t.ea[i] = static_cast<int32_t>(A);
        t.eb[i] = static_cast<int32_t>(B);
        t.ec[i] = -(A * X[i] + B * Y[i]) - (topLeft ? 0 : 1);
    }
    // Most triangles of a dense mesh are a pixel or two across and many cover no pixel
    // centre at all: find those before the costly planes.
    const int w = t.maxX - t.minX + 1, h = t.maxY - t.minY + 1;
    if (w <= 4 && h <= 4) {
        // A centre is inside when no edge function is negative, so the AND of the ORs of
        // the three is negative exactly when no centre is inside; no branch on the data.
        const int64_t px = 16 * static_cast<int64_t>(t.minX) + 8;
        int64_t none = -1;
        for (int j = 0; j < h; ++j) {
            const int64_t py = 16 * static_cast<int64_t>(t.minY + j) + 8;
            int64_t e0 = t.ea[0] * px + t.eb[0] * py + t.ec[0];
            int64_t e1 = t.ea[1] * px + t.eb[1] * py + t.ec[1];
            int64_t e2 = t.ea[2] * px + t.eb[2] * py + t.ec[2];
            for (int i = 0; i < w; ++i) {
                none &= e0 | e1 | e2;
                e0 += 16 * static_cast<int64_t>(t.ea[0]);
                e1 += 16 * static_cast<int64_t>(t.ea[1]);
                e2 += 16 * static_cast<int64_t>(t.ea[2]);
            }
        }
        if (none < 0) return false;
    }
    // Attribute planes from the snapped positions, for the attributes the pixels read
    // (the rest are left at zero).
    const double x0 = X[0] / 16.0, y0 = Y[0] / 16.0;
    const double d1x = X[1] / 16.0 - x0, d1y = Y[1] / 16.0 - y0;
    const double d2x = X[2] / 16.0 - x0, d2y = Y[2] / 16.0 - y0;
    const double det = d1x * d2y - d2x * d1y;
    t.x0 = static_cast<float>(x0);
    t.y0 = static_cast<float>(y0);
    const bool textured = (t.flags & kTextured) && t.tex;
    const bool lightMap = (t.flags & kLightMap) && t.tex2;
    uint32_t used = 1u << kZ | 1u << kR | 1u << kG | 1u << kB;
    if (textured || lightMap) used |= 1u << kQ;
    if (textured) used |= 1u << kU | 1u << kV;
    if (lightMap) used |= 1u << kU2 | 1u << kV2;
    if (t.flags & kFog) used |= 1u << kF;
    // Both slopes of an attribute in one two-lane division: each lane rounds exactly as
    // the scalar expression would.
    typedef double Pair __attribute__((vector_size(16)));
    const Pair cross1 = {d2y, d1x}, cross2 = {d1y, d2x}, dets = {det, det};
    for (int k = 0; k < kAttrs; ++k) {
        t.a0[k] = v[0]->a[k];
        t.dx[k] = t.dy[k] = 0.0f;
        if (!(used & (1u << k))) continue;
        const double a0 = v[0]->a[k];
        const double da1 = v[1]->a[k] - a0, da2 = v[2]->a[k] - a0;
        if (da1 == 0 && da2 == 0) continue; // flat: the slopes are zero
        const Pair first = {da1, da2}, second = {da2, da1};
        const Pair slope = (first * cross1 - second * cross2) / dets;
        t.dx[k] = static_cast<float>(slope[0]);
        t.dy[k] = static_cast<float>(slope[1]);
    }
    return true;
}

void rasterTri(const Tri& t, const FrameBuffer& fb, int y0, int y1) {
    y0 = std::max(y0, t.minY);
    y1 = std::min(y1, t.maxY + 1);
    if (y0 >= y1) return;
    const bool textured = (t.flags & kTextured) && t.tex;
    const bool translucent = t.blend != 0;
    if (textured && t.tex->pow2 && !((t.flags & kLightMap) && t.tex2) && t.tex->width <= 65536) {
        using Fn = void (*)(const Tri&, const FrameBuffer&, int, int);
        static constexpr Fn table[16] = {
            rasterRowsPow2<false, false, false, false>, rasterRowsPow2<false, false, false, true>,
            rasterRowsPow2<false, false, true, false>,  rasterRowsPow2<false, false, true, true>,
            rasterRowsPow2<false, true, false, false>,  rasterRowsPow2<false, true, false, true>,
            rasterRowsPow2<false, true, true, false>,   rasterRowsPow2<false, true, true, true>,
            rasterRowsPow2<true, false, false, false>,  rasterRowsPow2<true, false, false, true>,
            rasterRowsPow2<true, false, true, false>,   rasterRowsPow2<true, false, true, true>,
            rasterRowsPow2<true, true, false, false>,   rasterRowsPow2<true, true, false, true>,
            rasterRowsPow2<true, true, true, false>,    rasterRowsPow2<true, true, true, true>};
        const int index = (translucent ? 8 : 0) | ((t.flags & kBilinear) ? 4 : 0) |
                          ((t.flags & kFog) ? 2 : 0) | (t.tex->transparent ? 1 : 0);
        table[index](t, fb, y0, y1);
    } else if (textured) {
        if (translucent)
            rasterRows<true, true>(t, fb, y0, y1);
        else
            rasterRows<true, false>(t, fb, y0, y1);
    } else if (translucent) {
        rasterRows<false, true>(t, fb, y0, y1);
    } else if ((t.flags & kLightMap) && t.tex2) {
        rasterRows<false, false>(t, fb, y0, y1);
    } else if (t.flags & kFog) {
        rasterFlat<true>(t, fb, y0, y1);
    } else {
        rasterFlat<false>(t, fb, y0, y1);
    }
}

} // namespace zelmar::render
