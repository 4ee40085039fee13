#include "render/Renderer.h"
#include "render/Facing.h"

#include "render/Lighting.h"
#include "render/Raster.h"
#include "render/SceneCache.h"
#include "render/Settings.h"
#include "render/Texture.h"
#include "render/ThreadPool.h"
#include "scene/Current.h"
#include "scene/Walks.h"
#include "scene/World.h"
#include <algorithm>
#include <array>
#include <cfloat>
#include <cmath>
#include <cstring>
#include <unordered_map>

namespace zelmar::render {
namespace {

constexpr int kBinRows = 16;
constexpr double kGuard = 8192.0; // pixels beyond the target before a triangle is clipped

struct ClipVertex {
    double c[3]; // camera space: depth, left, up
    float u, v, u2, v2, r, g, b, f;
};

struct Chunk {
    std::vector<Tri> tris;
    std::vector<std::vector<uint32_t>> bins;
    std::vector<ClipVertex> cv;
    std::vector<ScreenVertex> sv;
    std::vector<uint8_t> codes;
    std::vector<ClipVertex> poly, tmp;
    std::vector<ScreenVertex> clipped;
};

struct Segment {
    const GroupCache* cache;
    uint32_t begin, end; // polygon range
    int lightSet;        // index into FrameData::lightSets, -1 = unlit
    bool inside;         // every point in front of the near plane and inside the guard band
};

struct FrameData {
    View view;
    int width = 0, height = 0;
    bool colorFill = false;
    bool fog = false;
    double fogIntensity = 0;
    std::unordered_map<Handle, const Texture*> bitmaps;
    // The frame showing now in each of the five view directions (an empty direction shows its
    // nearest neighbour's).
    std::unordered_map<Handle, std::array<const Texture*, Animation::kViewDirections>> animations;
    std::vector<ActiveLight> lights;
    std::vector<std::vector<const ActiveLight*>> lightSets;
    // Clip planes in camera space, k0*depth + k1*left + k2*up + k3 >= 0: [0] near, [1..4]
    // the guard band, [5..8] the target itself (for rejecting whole polygons).
    double planes[9][4];
    int planeCount = 9;
};

void makePlanes(FrameData& fd) {
    const View& v = fd.view;
    auto set = [&](int i, double a, double b, double c, double d) {
        fd.planes[i][0] = a, fd.planes[i][1] = b, fd.planes[i][2] = c, fd.planes[i][3] = d;
    };
    if (v.perspective) {
        const double f = v.focal;
        set(0, 1, 0, 0, -v.nearDepth);
        for (int k = 0; k < 2; ++k) {
            const double g = k == 0 ? kGuard : 0.0;
            const int o = k == 0 ? 1 : 5;
            set(o + 0, v.cx + g, -f, 0, 0);
            set(o + 1, v.width - v.cx + g, f, 0, 0);
            set(o + 2, v.cy + g, 0, -f, 0);
            set(o + 3, v.height - v.cy + g, 0, f, 0);
        }
    } else {
        const double s = v.scale;
        set(0, 0, 0, 0, 1); // no near plane
        for (int k = 0; k < 2; ++k) {
            const double g = k == 0 ? kGuard : 0.0;
            const int o = k == 0 ? 1 : 5;
            set(o + 0, 0, -s, 0, v.cx + g);
            set(o + 1, 0, s, 0, v.width - v.cx + g);
            set(o + 2, 0, 0, -s, v.cy + g);
            set(o + 3, 0, 0, s, v.height - v.cy + g);
        }
    }
}

inline double planeValue(const double* k, const double c[3]) {
    return k[0] * c[0] + k[1] * c[1] + k[2] * c[2] + k[3];
}

// Bit 0: behind the near plane; bits 1..4: outside that side of the target; bit 5: beyond
// the guard band on some side (the guard test is redone when clipping). The plane values
// are the ones planeValue gives, without the terms whose coefficient is zero: for finite
// coordinates that changes no sign. Anything else takes the general sums.
uint8_t clipCode(const FrameData& fd, const double c[3]) {
    const double(*k)[4] = fd.planes;
    double v[9];
    if (std::isfinite(c[0] + c[1] + c[2])) {
        if (fd.view.perspective) {
            v[0] = c[0] + k[0][3];
            for (int o = 1; o < 9; o += 4) {
                v[o + 0] = k[o + 0][0] * c[0] + k[o + 0][1] * c[1];
                v[o + 1] = k[o + 1][0] * c[0] + k[o + 1][1] * c[1];
                v[o + 2] = k[o + 2][0] * c[0] + k[o + 2][2] * c[2];
                v[o + 3] = k[o + 3][0] * c[0] + k[o + 3][2] * c[2];
            }
        } else {
            v[0] = k[0][3];
            for (int o = 1; o < 9; o += 4) {
                v[o + 0] = k[o + 0][1] * c[1] + k[o + 0][3];
                v[o + 1] = k[o + 1][1] * c[1] + k[o + 1][3];
                v[o + 2] = k[o + 2][2] * c[2] + k[o + 2][3];
                v[o + 3] = k[o + 3][2] * c[2] + k[o + 3][3];
            }
        }
    } else {
        for (int p = 0; p < 9; ++p)
            v[p] = planeValue(k[p], c);
    }
    const unsigned g1 = v[1] < 0, g2 = v[2] < 0, g3 = v[3] < 0, g4 = v[4] < 0;
    const unsigned code = (v[0] < 0) | (g1 | (v[5] < 0)) << 1 | (g2 | (v[6] < 0)) << 2 |
                          (g3 | (v[7] < 0)) << 3 | (g4 | (v[8] < 0)) << 4;
    const unsigned guard = g1 | g2 | g3 | g4;
    return static_cast<uint8_t>(code | guard << 5);
}

// View::toCamera, here so that it inlines into the per-vertex loop.
inline void toCamera(const View& view, const double world[3], double out[3]) {
    const double d[3] = {world[0] - view.eye[0], world[1] - view.eye[1], world[2] - view.eye[2]};
    for (int r = 0; r < 3; ++r)
        out[r] = d[0] * view.axis[r][0] + d[1] * view.axis[r][1] + d[2] * view.axis[r][2];
}

ScreenVertex toScreen(const FrameData& fd, const ClipVertex& cv) {
    ScreenVertex s;
    double sx, sy;
    const View& v = fd.view;
    if (v.perspective) { // View::toScreen, inlined
        const double k = v.focal / cv.c[0];
        sx = v.cx - cv.c[1] * k;
        sy = v.cy - cv.c[2] * k;
    } else {
        sx = v.cx - cv.c[1] * v.scale;
        sy = v.cy - cv.c[2] * v.scale;
    }
    s.sx = static_cast<float>(sx);
    s.sy = static_cast<float>(sy);
    float q;
    if (fd.view.perspective) {
        q = static_cast<float>(1.0 / cv.c[0]);
        s.a[kZ] = q;
    } else {
        q = 1.0f;
        s.a[kZ] = static_cast<float>(-cv.c[0]);
    }
    s.a[kQ] = q;
    s.a[kU] = cv.u * q;
    s.a[kV] = cv.v * q;
    s.a[kU2] = cv.u2 * q;
    s.a[kV2] = cv.v2 * q;
    s.a[kR] = cv.r;
    s.a[kG] = cv.g;
    s.a[kB] = cv.b;
    s.a[kF] = cv.f;
    return s;
}

ClipVertex lerp(const ClipVertex& a, const ClipVertex& b, double t) {
    ClipVertex o;
    for (int i = 0; i < 3; ++i)
        o.c[i] = a.c[i] + (b.c[i] - a.c[i]) * t;
    const float ft = static_cast<float>(t);
    o.u = a.u + (b.u - a.u) * ft;
    o.v = a.v + (b.v - a.v) * ft;
    o.u2 = a.u2 + (b.u2 - a.u2) * ft;
    o.v2 = a.v2 + (b.v2 - a.v2) * ft;
    o.r = a.r + (b.r - a.r) * ft;
    o.g = a.g + (b.g - a.g) * ft;
    o.b = a.b + (b.b - a.b) * ft;
    o.f = a.f + (b.f - a.f) * ft;
    return o;
}

void addTri(const FrameData& fd, Chunk& ch, const ScreenVertex& a, const ScreenVertex& b,
            const ScreenVertex& c, const Tri& proto) {
    // Set up in place: a triangle is a couple of hundred bytes and most are kept.
    Tri& t = ch.tris.emplace_back(proto);
    if (!setupTri(a, b, c, fd.width, fd.height, t)) {
        ch.tris.pop_back();
        return;
    }
    const uint32_t idx = static_cast<uint32_t>(ch.tris.size() - 1);
    for (int bin = t.minY / kBinRows; bin <= t.maxY / kBinRows; ++bin)
        ch.bins[bin].push_back(idx);
}

// Clips triangle (a, b, c) against the near plane and the guard band and draws the pieces.
void clipAndAdd(const FrameData& fd, Chunk& ch, const ClipVertex& a, const ClipVertex& b, const ClipVertex& c,
                const Tri& proto) {
    ch.poly.assign({a, b, c});
    for (int p = 0; p < 5 && !ch.poly.empty(); ++p) {
        const double* k = fd.planes[p];
        ch.tmp.clear();
        const size_t n = ch.poly.size();
        for (size_t i = 0; i < n; ++i) {
            const ClipVertex& s = ch.poly[i];
            const ClipVertex& e = ch.poly[(i + 1) % n];
            const double fs = planeValue(k, s.c), fe = planeValue(k, e.c);
            if (fs >= 0) ch.tmp.push_back(s);
            if ((fs >= 0) != (fe >= 0)) ch.tmp.push_back(lerp(s, e, fs / (fs - fe)));
        }
        std::swap(ch.poly, ch.tmp);
    }
    if (ch.poly.size() < 3) return;
    ch.clipped.clear();
    for (const ClipVertex& v : ch.poly)
        ch.clipped.push_back(toScreen(fd, v));
    for (size_t i = 1; i + 1 < ch.clipped.size(); ++i)
        addTri(fd, ch, ch.clipped[0], ch.clipped[i], ch.clipped[i + 1], proto);
}

// True when every point of the box is in front of the near plane and inside the guard band
// by a margin far above the rounding of any vertex's plane values: the plane values are
// affine in the point, so no vertex inside the box can test outside, and the group's
// vertices need no clip codes.
bool boxInsideGuard(const FrameData& fd, const double box[6]) {
    if (!(box[0] <= box[3] && box[1] <= box[4] && box[2] <= box[5])) return false; // empty
    double value[8][5], scale = 0;
    const View& v = fd.view;
    const double eye = std::fabs(v.eye[0]) + std::fabs(v.eye[1]) + std::fabs(v.eye[2]);
    for (int i = 0; i < 8; ++i) {
        const double p[3] = {box[i & 1 ? 3 : 0], box[i & 2 ? 4 : 1], box[i & 4 ? 5 : 2]};
        double c[3];
        toCamera(v, p, c);
        const double reach = eye + std::fabs(p[0]) + std::fabs(p[1]) + std::fabs(p[2]);
        for (int k = 0; k < 5; ++k) {
            const double* q = fd.planes[k];
            value[i][k] = planeValue(q, c);
            scale = std::max(scale,
                             (std::fabs(q[0]) + std::fabs(q[1]) + std::fabs(q[2])) * reach + std::fabs(q[3]));
        }
    }
    if (!std::isfinite(scale)) return false;
    for (int i = 0; i < 8; ++i)
        for (int k = 0; k < 5; ++k)
            if (!(value[i][k] > 1e-9 * scale)) return false;
    return true;
}

const Texture* lookup(const std::unordered_map<Handle, const Texture*>& m, Handle h) {
    if (!h) return nullptr;
    auto it = m.find(h);
    return it == m.end() ? nullptr : it->second;
}

// The view direction (0 front .. 4 back) from which the camera sees a polygon: the angle between its
// front normal and the way to the eye, in sectors of 45 degrees centred on 0, 45, 90, 135 and 180.
int viewDirection(const View& view, const PackedPolygon& pp) {
    const double* n = pp.normal;
    double to[3];
    if (view.perspective) {
        for (int i = 0; i < 3; ++i)
            to[i] = view.eye[i] - (pp.box[i] + pp.box[i + 3]) / 2;
    } else {
        for (int i = 0; i < 3; ++i)
            to[i] = -view.axis[0][i];
    }
    const double len = std::sqrt(to[0] * to[0] + to[1] * to[1] + to[2] * to[2]);
    const double nlen = std::sqrt(n[0] * n[0] + n[1] * n[1] + n[2] * n[2]);
    if (!(len > 0) || !(nlen > 0)) return 0;
    const double c = std::clamp((n[0] * to[0] + n[1] * to[1] + n[2] * to[2]) / (len * nlen), -1.0, 1.0);
    const double degrees = std::acos(c) * 180.0 / 3.14159265358979323846;
    return std::min(4, static_cast<int>((degrees + 22.5) / 45.0));
}

const Texture* animationTexture(const FrameData& fd, const PackedPolygon& pp) {
    auto it = fd.animations.find(pp.animation);
    return it == fd.animations.end() ? nullptr : it->second[static_cast<size_t>(viewDirection(fd.view, pp))];
}

void processPolygon(const FrameData& fd, Chunk& ch, const GroupCache& gc, const PackedPolygon& pp,
                    int lightSet, bool inside) {
    if (pp.disabled || pp.triCount == 0) return;
    const View& view = fd.view;
    const PackedVertex* pv = gc.verts.data() + pp.firstVertex;
    const FacingTurn card = facingTurn(view, pp); // a sprite card turns to the eye
    const bool turned = card.turned;
    if (turned) inside = false; // the card may reach out of its group's box
    if (pp.frontOnly && !turned) { // a turned card faces the eye
        const double* n = pp.normal;
        double facing;
        if (view.perspective)
            facing = n[0] * (view.eye[0] - pv[0].xyz[0]) + n[1] * (view.eye[1] - pv[0].xyz[1]) +
                     n[2] * (view.eye[2] - pv[0].xyz[2]);
        else
            facing = -(n[0] * view.axis[0][0] + n[1] * view.axis[0][1] + n[2] * view.axis[0][2]);
        if (!(facing > 0)) return;
    }
    const Texture* tex = nullptr;
    if (!fd.colorFill) {
        tex = pp.animation ? animationTexture(fd, pp) : nullptr;
        if (!tex) tex = lookup(fd.bitmaps, pp.bitmap);
    }
    const Texture* tex2 = lookup(fd.bitmaps, pp.secondBitmap);
    const uint32_t n = pp.vertexCount;
    if (ch.cv.size() < n) {
        ch.cv.resize(n);
        ch.codes.resize(n);
    }
    uint8_t all = 0xFF, any = 0;
    const std::vector<const ActiveLight*>* lights =
        lightSet >= 0 ? &fd.lightSets[static_cast<size_t>(lightSet)] : nullptr;
    const VertexExtra* pe = gc.extras.data() + pp.firstVertex;
    const bool extras = tex || tex2;
    for (uint32_t i = 0; i < n; ++i) {
        const PackedVertex& v = pv[i];
        ClipVertex& c = ch.cv[i];
        double at[3] = {v.xyz[0], v.xyz[1], v.xyz[2]};
        if (turned) card.point(v.xyz, at);
        toCamera(view, at, c.c);
        if (extras) {
            const VertexExtra& e = pe[i];
            c.u = e.u, c.v = e.v, c.u2 = e.u2, c.v2 = e.v2;
        } else {
            c.u = c.v = c.u2 = c.v2 = 0; // no pixel reads them
        }
        float shade[3] = {v.shade[0], v.shade[1], v.shade[2]};
        if (lights) {
            float l[3];
            double nd[3] = {pe[i].normal[0], pe[i].normal[1], pe[i].normal[2]};
            if (turned) {
                const double n0[3] = {nd[0], nd[1], nd[2]};
                card.direction(n0, nd);
            }
            lightVertex(*lights, at, nd, view.eye, l);
            for (int k = 0; k < 3; ++k)
                shade[k] *= l[k];
        }
        if (tex) {
            c.r = shade[0], c.g = shade[1], c.b = shade[2];
        } else {
            c.r = shade[0] * pp.color[0], c.g = shade[1] * pp.color[1], c.b = shade[2] * pp.color[2];
        }
        c.f =
            fd.fog ? static_cast<float>(std::min(1.0, std::max(0.0, fd.fogIntensity * c.c[0] / 10.0))) : 0.0f;
        if (inside) continue; // no clipping, and the screen bounds below reject
        const uint8_t code = clipCode(fd, c.c);
        ch.codes[i] = code;
        all &= code;
        any |= code;
    }
    if (inside) all = any = 0;
    if (all & 0x1F) return; // wholly behind the near plane or off one side of the target
    Tri proto; // the fill fields only: setupTri sets the rest, and zeroing it per polygon is not free
    proto.tex = tex;
    proto.tex2 = tex2;
    proto.flags = static_cast<uint8_t>((tex ? kTextured : 0) | (pp.bilinear ? kBilinear : 0) |
                                       (tex2 ? kLightMap : 0) | (fd.fog ? kFog : 0));
    switch (pp.translucent) {
    case 0x31:
    case 0x43:
    case 0x52:
    case 0x44:
    case 0x32:
    case 0x42:
    case 0x22:
    case 0x51:
        proto.blend = pp.translucent;
        break;
    default:
        proto.blend = 0;
        break;
    }
    const uint32_t* tri = gc.tris.data() + static_cast<size_t>(pp.firstTri) * 3;
    const bool needClip = (any & 0x21) != 0; // near plane or beyond the guard band
    if (!needClip) {
        if (ch.sv.size() < n) ch.sv.resize(n);
        float x0 = INFINITY, x1 = -INFINITY, y0 = INFINITY, y1 = -INFINITY;
        for (uint32_t i = 0; i < n; ++i) {
            const ScreenVertex& s = ch.sv[i] = toScreen(fd, ch.cv[i]);
            x0 = std::min(x0, s.sx), x1 = std::max(x1, s.sx);
            y0 = std::min(y0, s.sy), y1 = std::max(y1, s.sy);
        }
        // Wholly off one side of the target: setupTri would find no pixel centre in any of
        // its triangles (their snapped corners all lie at or beyond that edge).
        if (x1 < 0 || y1 < 0 || x0 > static_cast<float>(fd.width) || y0 > static_cast<float>(fd.height))
            return;
        // Between two rows or two columns of pixel centres (a polygon smaller than a pixel, common in a
        // dense mesh seen from afar): no triangle of it covers a centre either. A snapped corner lies
        // within 1/32 pixel of its vertex, so the test widens the bounds by 1/16.
        if (std::floor(static_cast<double>(x1) + 0.0625 - 0.5) < std::ceil(static_cast<double>(x0) - 0.0625 - 0.5) ||
            std::floor(static_cast<double>(y1) + 0.0625 - 0.5) < std::ceil(static_cast<double>(y0) - 0.0625 - 0.5))
            return;
        for (uint32_t t = 0; t < pp.triCount; ++t) {
            const uint32_t a = tri[3 * t], b = tri[3 * t + 1], c = tri[3 * t + 2];
            if (a >= n || b >= n || c >= n) continue;
            addTri(fd, ch, ch.sv[a], ch.sv[b], ch.sv[c], proto);
        }
    } else {
        for (uint32_t t = 0; t < pp.triCount; ++t) {
            const uint32_t a = tri[3 * t], b = tri[3 * t + 1], c = tri[3 * t + 2];
            if (a >= n || b >= n || c >= n) continue;
            if (ch.codes[a] & ch.codes[b] & ch.codes[c] & 0x1F) continue;
            clipAndAdd(fd, ch, ch.cv[a], ch.cv[b], ch.cv[c], proto);
        }
    }
}

// The frame of one direction's frames that the animation clock points at; null for none.
const Texture* animationFrame(const std::vector<Animation::Frame>& frames) {
    if (frames.empty()) return nullptr;
    int64_t total = 0;
    for (const auto& f : frames)
        total += std::max<int32_t>(f.time, 1) * 10;
    int64_t t = animationClockMs() % std::max<int64_t>(total, 1);
    for (const auto& f : frames) {
        const int64_t d = std::max<int32_t>(f.time, 1) * 10;
        if (t < d) return preparedTexture(f.bitmap, f.transparentIndex);
        t -= d;
    }
    return preparedTexture(frames.back().bitmap, frames.back().transparentIndex);
}

// Each direction's current frame; a direction without frames borrows from the nearest direction
// that has some (the one nearer the front on a tie). False when no direction has a frame.
bool animationFrames(const Animation& a, std::array<const Texture*, Animation::kViewDirections>& out) {
    constexpr int n = Animation::kViewDirections;
    std::array<const Texture*, n> own{};
    bool any = false;
    for (int d = 0; d < n; ++d) {
        own[static_cast<size_t>(d)] = animationFrame(a.frames[d]);
        any = any || own[static_cast<size_t>(d)];
    }
    if (!any) return false;
    for (int d = 0; d < n; ++d) {
        const Texture* t = nullptr;
        for (int step = 0; !t && step < n; ++step) {
            if (d - step >= 0) t = own[static_cast<size_t>(d - step)];
            if (!t && d + step < n) t = own[static_cast<size_t>(d + step)];
        }
        out[static_cast<size_t>(d)] = t;
    }
    return true;
}

void fillBackground(const Target& t, const FrameData& fd, int y0, int y1, const Texture* bg,
                    const Background* b, const std::vector<int>& srcX, uint32_t clearColor) {
    const float clearDepth = fd.view.perspective ? 0.0f : -FLT_MAX;
    for (int y = y0; y < y1; ++y) {
        uint32_t* row = const_cast<uint32_t*>(t.color.data()) + static_cast<size_t>(y) * t.width;
        float* zrow = const_cast<float*>(t.depth.data()) + static_cast<size_t>(y) * t.width;
        std::fill(zrow, zrow + t.width, clearDepth);
        if (!bg) {
            std::fill(row, row + t.width, clearColor);
            continue;
        }
        const int sy =
            std::min(bg->height - 1, static_cast<int>(static_cast<int64_t>(y) * bg->height / t.height));
        double intensity = 1.0 - (std::isfinite(b->intensityStep) ? b->intensityStep : 0.0) * y / t.height;
        const double floorI = std::isfinite(b->bottomIntensity) ? b->bottomIntensity : 0.0;
        intensity = std::clamp(std::max(intensity, floorI), 0.0, 1.0);
        const uint32_t k = static_cast<uint32_t>(intensity * 256.0);
        const uint32_t* src = bg->texels.data() + static_cast<size_t>(sy) * bg->width;
        for (int x = 0; x < t.width; ++x) {
            const uint32_t c = src[srcX[static_cast<size_t>(x)]];
            const uint32_t rb = (((c & 0x00FF00FFu) * k) >> 8) & 0x00FF00FFu;
            const uint32_t g = ((((c >> 8) & 0xFFu) * k) >> 8) & 0xFFu;
            row[x] = 0xFF000000u | rb | (g << 8);
        }
    }
}

void drawLine(Target& t, int x0, int y0, int x1, int y1, uint32_t color) {
    const int dx = std::abs(x1 - x0), sx = x0 < x1 ? 1 : -1;
    const int dy = -std::abs(y1 - y0), sy = y0 < y1 ? 1 : -1;
    int err = dx + dy;
    for (;;) {
        if (x0 >= 0 && y0 >= 0 && x0 < t.width && y0 < t.height)
            t.color[static_cast<size_t>(y0) * t.width + x0] = color;
        if (x0 == x1 && y0 == y1) break;
        const int e2 = 2 * err;
        if (e2 >= dy) err += dy, x0 += sx;
        if (e2 <= dx) err += dx, y0 += sy;
    }
}

void drawWireframe(Target& t, const FrameData& fd, const std::vector<Segment>& segs) {
    for (const Segment& s : segs)
        for (uint32_t i = s.begin; i < s.end; ++i) {
            const PackedPolygon& pp = s.cache->polys[i];
            if (pp.disabled) continue;
            uint32_t color = 0xFF000000u | pp.color[0] | (pp.color[1] << 8) | (pp.color[2] << 16);
            if (!fd.colorFill) {
                const Texture* tex = pp.animation ? animationTexture(fd, pp) : nullptr;
                if (!tex) tex = lookup(fd.bitmaps, pp.bitmap);
                if (tex) color = tex->mean;
            }
            const PackedVertex* pv = s.cache->verts.data() + pp.firstVertex;
            for (uint32_t k = 0; k < pp.vertexCount; ++k) {
                int a[2], b[2];
                if (projectEdge(fd.view, pv[k].xyz, pv[(k + 1) % pp.vertexCount].xyz, a, b) != 0)
                    drawLine(t, a[0], a[1], b[0], b[1], color);
            }
        }
}

std::vector<Chunk>& chunks() {
    static std::vector<Chunk> c;
    return c;
}

} // namespace

std::vector<const Group*> drawnGroups() {
    return enabledGroups(world().group(settings().groupToRender));
}

bool renderFrame(Target& target, const Camera& camera, bool clear, std::string& error) {
    FrameData fd;
    if (!makeView(camera, target.width, target.height, fd.view)) {
        error = "the camera has no usable location, axis system or zoom";
        return false;
    }
    const Settings& st = settings();
    fd.width = target.width;
    fd.height = target.height;
    fd.colorFill = st.colorFill;
    fd.fog = st.fogEnabled && st.fogIntensity > 0 && std::isfinite(st.fogIntensity);
    fd.fogIntensity = st.fogIntensity;
    makePlanes(fd);

    // Textures, resolved before the work spreads (the caches are not thread-safe).
    World& w = world();
    for (const Bitmap* b : w.list<Bitmap>())
        if (const Texture* t = preparedTexture(b->handle)) fd.bitmaps.emplace(b->handle, t);
    for (const Animation* a : w.list<Animation>()) {
        std::array<const Texture*, Animation::kViewDirections> frames{};
        if (animationFrames(*a, frames)) fd.animations.emplace(a->handle, frames);
    }

    fd.lights = gatherLights();
    SceneCache& cache = sceneCache();
    std::vector<Segment> segs;
    size_t total = 0;
    std::vector<const ActiveLight*> set;
    const LightReach reach(fd.lights);
    const std::vector<const Group*> groups = drawnGroups();
    cache.update(groups, workerCount());
    for (const Group* g : groups) {
        const GroupCache& gc = cache.get(*g);
        if (gc.polys.empty()) continue;
        int lightSet = -1;
        if (!fd.lights.empty()) {
            set.clear();
            for (size_t i = 0; i < fd.lights.size(); ++i)
                if (reach.reaches(i, *g)) set.push_back(&fd.lights[i]);
            if (!set.empty()) {
                auto it = std::find(fd.lightSets.begin(), fd.lightSets.end(), set);
                if (it == fd.lightSets.end()) {
                    fd.lightSets.push_back(set);
                    lightSet = static_cast<int>(fd.lightSets.size() - 1);
                } else {
                    lightSet = static_cast<int>(it - fd.lightSets.begin());
                }
            }
        }
        segs.push_back(
            {&gc, 0, static_cast<uint32_t>(gc.polys.size()), lightSet, boxInsideGuard(fd, gc.box)});
        total += gc.polys.size();
    }

    const int threads = workerCount();
    const int bins = (target.height + kBinRows - 1) / kBinRows;
    const Background* bgEntity = activeBackground();
    const Texture* bg = bgEntity ? preparedTexture(bgEntity->bitmap) : nullptr;
    std::vector<int> srcX;
    if (bg) {
        srcX.resize(static_cast<size_t>(target.width));
        for (int x = 0; x < target.width; ++x)
            srcX[static_cast<size_t>(x)] =
                std::min(bg->width - 1, static_cast<int>(static_cast<int64_t>(x) * bg->width / target.width));
    }
    const uint32_t clearColor =
        0xFF000000u | st.backgroundColor[0] | (st.backgroundColor[1] << 8) | (st.backgroundColor[2] << 16);
    if (!clear && !target.depthValid) clear = true;

    if (st.wireframe) {
        if (clear)
            parallelFor(threads, bins, [&](int b) {
                fillBackground(target, fd, b * kBinRows, std::min(target.height, (b + 1) * kBinRows), bg,
                               bgEntity, srcX, clearColor);
            });
        drawWireframe(target, fd, segs);
        target.rendered = true;
        target.depthValid = true;
        return true;
    }

    // Split the polygons into contiguous chunks; more chunks than threads for balance.
    const int chunkCount =
        total == 0 ? 0 : static_cast<int>(std::min<size_t>(total, static_cast<size_t>(threads) * 4));
    auto& chs = chunks();
    if (static_cast<int>(chs.size()) < chunkCount) chs.resize(static_cast<size_t>(chunkCount));
    std::vector<size_t> prefix(segs.size() + 1, 0); // polygons before each segment
    for (size_t i = 0; i < segs.size(); ++i)
        prefix[i + 1] = prefix[i] + (segs[i].end - segs[i].begin);
    parallelFor(threads, chunkCount, [&](int c) {
        Chunk& ch = chs[static_cast<size_t>(c)];
        ch.tris.clear();
        ch.bins.resize(static_cast<size_t>(bins));
        for (auto& b : ch.bins)
            b.clear();
        const size_t from = total * static_cast<size_t>(c) / static_cast<size_t>(chunkCount);
        const size_t to = total * static_cast<size_t>(c + 1) / static_cast<size_t>(chunkCount);
        size_t seg =
            static_cast<size_t>(std::upper_bound(prefix.begin(), prefix.end(), from) - prefix.begin()) - 1;
        for (size_t i = from; i < to; ++i) {
            while (i >= prefix[seg + 1])
                ++seg;
            const Segment& s = segs[seg];
            processPolygon(fd, ch, *s.cache, s.cache->polys[s.begin + (i - prefix[seg])], s.lightSet,
                           s.inside);
        }
    });

    FrameBuffer fb{target.color.data(), target.depth.data(), target.width,
                   0xFF000000u | st.fogColor[0] | (st.fogColor[1] << 8) | (st.fogColor[2] << 16)};
    parallelFor(threads, bins, [&](int b) {
        const int y0 = b * kBinRows, y1 = std::min(target.height, (b + 1) * kBinRows);
        if (clear) fillBackground(target, fd, y0, y1, bg, bgEntity, srcX, clearColor);
        for (int c = 0; c < chunkCount; ++c) {
            const Chunk& ch = chs[static_cast<size_t>(c)];
            for (uint32_t idx : ch.bins[static_cast<size_t>(b)])
                rasterTri(ch.tris[idx], fb, y0, y1);
        }
    });
    target.rendered = true;
    target.depthValid = true;
    return true;
}

} // namespace zelmar::render
