#include "WorldGen.h"

#include "io/Schema.h"
#include "scene/BitmapStore.h"
#include <cfloat>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <limits>
#include <unordered_map>

using namespace zelmar;
using namespace zelmar::io;

namespace iotest {

double extremeDouble(std::mt19937_64& rng) {
    static const double special[] = {0.0,
                                     -0.0,
                                     1.0,
                                     -1.0,
                                     0.1,
                                     1.0 / 3.0,
                                     M_PI,
                                     1e-300,
                                     -1e300,
                                     DBL_MAX,
                                     -DBL_MAX,
                                     DBL_MIN,
                                     -DBL_MIN,
                                     std::numeric_limits<double>::denorm_min(),
                                     -std::numeric_limits<double>::denorm_min(),
                                     4.9406564584124654e-320,
                                     9007199254740993.0,
                                     123456.789,
                                     255.0,
                                     100.0};
    const int pick = static_cast<int>(rng() % 4);
    if (pick == 0) return special[rng() % (sizeof special / sizeof special[0])];
    if (pick == 1) return std::uniform_real_distribution<double>(-1000, 1000)(rng);
    uint64_t bits;
    do
        bits = rng();
    while (((bits >> 52) & 0x7FF) == 0x7FF);
    double v;
    std::memcpy(&v, &bits, 8);
    return v;
}

namespace {

std::string randomName(std::mt19937_64& rng) {
    std::string s(rng() % 24, ' ');
    for (char& c : s)
        c = static_cast<char>(rng() % 3 ? ' ' + rng() % 95 : rng() % 256); // mostly printable, any byte
    return s;
}

struct Gen {
    World& w;
    std::mt19937_64 rng;
    std::vector<Handle> groups, polygons, cameras, tracks, bitmaps, animations;

    Handle pick(const std::vector<Handle>& v) {
        return v.empty() || rng() % 5 == 0 ? 0 : v[rng() % v.size()];
    }

    Handle randomRef(Kind k) {
        switch (k) {
        case Kind::Group:
            return pick(groups);
        case Kind::Camera:
            return pick(cameras);
        case Kind::Track:
            return pick(tracks);
        case Kind::Bitmap:
            return pick(bitmaps);
        case Kind::Animation:
            return pick(animations);
        default:
            return rng() % 2 ? pick(groups) : pick(polygons);
        }
    }

    void randomize(const Fields& f) {
        for (const Field& x : f) {
            switch (x.type) {
            case FieldType::I32:
                for (unsigned k = 0; k < x.count; ++k)
                    static_cast<int32_t*>(x.ptr)[k] = static_cast<int32_t>(rng());
                break;
            case FieldType::I64:
                *static_cast<int64_t*>(x.ptr) = static_cast<int64_t>(rng());
                break;
            case FieldType::F64:
                for (unsigned k = 0; k < x.count; ++k)
                    static_cast<double*>(x.ptr)[k] = extremeDouble(rng);
                break;
            case FieldType::Bool:
                *static_cast<bool*>(x.ptr) = rng() % 2;
                break;
            case FieldType::Str:
                *static_cast<std::string*>(x.ptr) = randomName(rng);
                break;
            case FieldType::Ref:
                break; // once everything exists
            case FieldType::F64List: {
                auto& v = *static_cast<std::vector<double>*>(x.ptr);
                v.resize(3 * (rng() % 5));
                for (double& d : v)
                    d = extremeDouble(rng);
                break;
            }
            case FieldType::Frames: {
                auto& v = *static_cast<std::vector<Animation::Frame>*>(x.ptr);
                v.resize(rng() % 4);
                for (Animation::Frame& fr : v) {
                    fr.bitmap = pick(bitmaps);
                    fr.time = static_cast<int32_t>(rng() % 1000);
                    fr.transparentIndex = static_cast<int32_t>(rng() % 300) - 1;
                }
                break;
            }
            }
        }
    }

    void refs(const Fields& f) {
        for (const Field& x : f)
            if (x.type == FieldType::Ref) *static_cast<Handle*>(x.ptr) = randomRef(x.refKind);
    }

    Bitmap* bitmap(int i) {
        Bitmap* b = w.createBitmap("tex" + std::to_string(i) + (i % 2 ? " odd'\"name" : ""));
        b->width = 3 + i;
        b->height = 2 + i;
        const size_t n = size_t(b->width) * b->height;
        b->rgba.resize(n * 4);
        if (i % 2 == 0) { // paletted: 256 distinct colours
            b->palette.resize(256 * 3);
            for (int c = 0; c < 256; ++c) {
                b->palette[c * 3] = static_cast<uint8_t>(c);
                b->palette[c * 3 + 1] = static_cast<uint8_t>(255 - c);
                b->palette[c * 3 + 2] = static_cast<uint8_t>(c * 7);
            }
            b->indices.resize(n);
            for (size_t k = 0; k < n; ++k) {
                const uint8_t idx = static_cast<uint8_t>(rng());
                b->indices[k] = idx;
                std::memcpy(&b->rgba[k * 4], &b->palette[idx * 3], 3);
                b->rgba[k * 4 + 3] = 255;
            }
            bitmaps::applyTransparency(*b, b->indices[0]);
        } else {
            for (size_t k = 0; k < n * 4; ++k)
                b->rgba[k] = k % 4 == 3 ? 255 : static_cast<uint8_t>(rng());
            bitmaps::applyTransparency(*b, b->rgba[0] + 256 * b->rgba[1] + 65536 * b->rgba[2]);
        }
        b->version = 5; // pixels made here, not read from a file
        return b;
    }
};

} // namespace

Group* makeRandomWorld(World& w, uint64_t seed, const GenSize& size) {
    Gen g{w, std::mt19937_64(seed), {}, {}, {}, {}, {}, {}};
    for (int i = 0; i < size.bitmaps; ++i)
        g.bitmaps.push_back(g.bitmap(i)->handle);
    for (int i = 0; i < size.animations; ++i) {
        Animation* a = w.createAnimation("");
        Fields f;
        animationFields(*a, f);
        g.randomize(f);
        a->saveFlag = 1;
        g.animations.push_back(a->handle);
    }
    Group* root = w.createGroup("the_world");
    std::vector<Group*> all{root};
    g.groups.push_back(root->handle);
    for (int i = 0; i < size.groups; ++i) {
        Group* x = w.createGroup("");
        Fields f;
        groupFields(*x, f);
        g.randomize(f);
        if (x->name == "the_world") x->name += "2";
        w.setFather(*x, all[g.rng() % all.size()]);
        all.push_back(x);
        g.groups.push_back(x->handle);
    }
    // A few shared looks, so that styles are shared as well as unique.
    std::vector<Polygon> looks(4);
    for (Polygon& p : looks) {
        Fields f;
        styleFields(p, f);
        g.randomize(f);
        g.refs(f);
    }
    const auto& attrs = pointAttrs();
    for (int i = 0; i < size.polygons; ++i) {
        Polygon* p = w.createPolygon();
        Fields f;
        styleFields(*p, f);
        if (g.rng() % 3) {
            Fields from;
            styleFields(looks[g.rng() % looks.size()], from);
            copyFields(from, f);
        } else {
            g.randomize(f);
            g.refs(f);
        }
        if (i < size.bitmaps) p->fill.bitmap = g.bitmaps[i]; // every bitmap in use
        if (i < size.animations) p->fill.animation = g.animations[i];
        p->name = randomName(g.rng);
        const uint32_t present = static_cast<uint32_t>(g.rng());
        const int n = 3 + static_cast<int>(g.rng() % 4);
        for (int k = 0; k < n; ++k) {
            PointData d;
            for (size_t a = 0; a < attrs.size(); ++a)
                if (a == 0 || (present & (1u << a)))
                    for (unsigned c = 0; c < attrs[a].count; ++c)
                        reinterpret_cast<double*>(reinterpret_cast<char*>(&d) + attrs[a].offset)[c] =
                            extremeDouble(g.rng);
            w.addPoint(*p, d);
        }
        w.setPolygonGroup(*p, all[g.rng() % all.size()]);
        p->addedToWorld = true;
        g.polygons.push_back(p->handle);
    }
    std::vector<Camera*> cams;
    for (int i = 0; i < size.cameras; ++i) {
        Camera* c = w.createCamera("");
        Fields f;
        cameraFields(*c, f);
        g.randomize(f);
        c->saveFlag = 1;
        cams.push_back(c);
        g.cameras.push_back(c->handle);
    }
    std::vector<Light*> lights;
    for (int i = 0; i < size.lights; ++i) {
        Light* l = w.createLight("");
        Fields f;
        lightFields(*l, f);
        g.randomize(f);
        l->saveFlag = 1;
        lights.push_back(l);
    }
    for (int i = 0; i < size.tracks; ++i) {
        Track* t = w.createTrack("");
        Fields f;
        trackFields(*t, f);
        g.randomize(f);
        t->saveFlag = 1;
        g.tracks.push_back(t->handle);
    }
    for (int i = 0; i < size.backgrounds; ++i) {
        Background* b = w.createBackground("");
        Fields f;
        backgroundFields(*b, f);
        g.randomize(f);
        g.refs(f);
        b->saveFlag = 1;
    }
    for (Camera* c : cams) {
        Fields f;
        cameraFields(*c, f);
        g.refs(f);
    }
    for (Light* l : lights) {
        Fields f;
        lightFields(*l, f);
        g.refs(f);
    }
    return root;
}

namespace {

using Ordinals = std::unordered_map<Handle, std::pair<int, uint32_t>>;

Ordinals ordinals(World& w, Group* root) {
    Ordinals o;
    uint32_t gi = 0, pi = 0;
    for (Group* g = root; g; g = World::nextInSubtree(g, root)) {
        o[g->handle] = {int(Kind::Group), gi++};
        for (Polygon* p = g->firstPolygon; p; p = p->nextInGroup)
            o[p->handle] = {int(Kind::Polygon), pi++};
    }
    auto number = [&](const auto& list, Kind k) {
        for (uint32_t i = 0; i < list.size(); ++i)
            o[list[i]->handle] = {int(k), i};
    };
    number(w.list<Camera>(), Kind::Camera);
    number(w.list<Light>(), Kind::Light);
    number(w.list<Track>(), Kind::Track);
    number(w.list<Background>(), Kind::Background);
    number(w.list<Bitmap>(), Kind::Bitmap);
    number(w.list<Animation>(), Kind::Animation);
    return o;
}

struct RefContext {
    Ordinals a, b;
};

bool sameRef(Handle x, Handle y, void* ctx) {
    auto* c = static_cast<RefContext*>(ctx);
    auto i = c->a.find(x);
    auto j = c->b.find(y);
    const bool hasX = x != 0 && i != c->a.end();
    const bool hasY = y != 0 && j != c->b.end();
    if (!hasX || !hasY) return hasX == hasY;
    return i->second == j->second;
}

template <class T, class Fn>
::testing::AssertionResult sameList(const std::vector<T*>& a, const std::vector<T*>& b, Fn fieldsOf,
                                    const char* what, RefContext& ctx) {
    if (a.size() != b.size())
        return ::testing::AssertionFailure() << what << " count " << a.size() << " vs " << b.size();
    for (size_t i = 0; i < a.size(); ++i) {
        Fields fa, fb;
        fieldsOf(*a[i], fa);
        fieldsOf(*b[i], fb);
        const char* bad = nullptr;
        if (!equalFields(fa, fb, sameRef, &ctx, &bad))
            return ::testing::AssertionFailure() << what << " " << i << " differs in " << bad;
    }
    return ::testing::AssertionSuccess();
}

} // namespace

::testing::AssertionResult sameWorlds(World& a, World& b) {
    Group* ra = a.groupByName("the_world");
    Group* rb = b.groupByName("the_world");
    if (!ra || !rb) return ::testing::AssertionFailure() << "no root group";
    RefContext ctx{ordinals(a, ra), ordinals(b, rb)};
    std::vector<Group*> ga, gb;
    for (Group* g = ra; g; g = World::nextInSubtree(g, ra))
        ga.push_back(g);
    for (Group* g = rb; g; g = World::nextInSubtree(g, rb))
        gb.push_back(g);
    if (auto r = sameList(ga, gb, groupFields, "group", ctx); !r) return r;
    std::vector<Polygon*> pa, pb;
    for (size_t i = 0; i < ga.size(); ++i) {
        const Handle fa = ga[i]->father && i ? ga[i]->father->handle : 0;
        const Handle fb = gb[i]->father && i ? gb[i]->father->handle : 0;
        if (!sameRef(fa, fb, &ctx)) return ::testing::AssertionFailure() << "father of group " << i;
        for (Polygon* p = ga[i]->firstPolygon; p; p = p->nextInGroup)
            pa.push_back(p);
        for (Polygon* p = gb[i]->firstPolygon; p; p = p->nextInGroup)
            pb.push_back(p);
    }
    if (auto r = sameList(pa, pb, styleFields, "polygon", ctx); !r) return r;
    for (size_t i = 0; i < pa.size(); ++i) {
        if (pa[i]->name != pb[i]->name) return ::testing::AssertionFailure() << "name of polygon " << i;
        if (pa[i]->points.size() != pb[i]->points.size())
            return ::testing::AssertionFailure() << "points of polygon " << i;
        for (size_t k = 0; k < pa[i]->points.size(); ++k) {
            Fields fa, fb;
            pointFields(pa[i]->points[k], fa);
            pointFields(pb[i]->points[k], fb);
            const char* bad = nullptr;
            if (!equalFields(fa, fb, sameRef, &ctx, &bad))
                return ::testing::AssertionFailure()
                       << "polygon " << i << " point " << k << " differs in " << bad;
        }
    }
    if (auto r = sameList(a.list<Camera>(), b.list<Camera>(), cameraFields, "camera", ctx); !r) return r;
    if (auto r = sameList(a.list<Light>(), b.list<Light>(), lightFields, "light", ctx); !r) return r;
    if (auto r = sameList(a.list<Track>(), b.list<Track>(), trackFields, "track", ctx); !r) return r;
    if (auto r = sameList(a.list<Background>(), b.list<Background>(), backgroundFields, "background", ctx);
        !r)
        return r;
    if (auto r = sameList(a.list<Animation>(), b.list<Animation>(), animationFields, "animation", ctx); !r)
        return r;
    if (auto r = sameList(a.list<Bitmap>(), b.list<Bitmap>(), bitmapFields, "bitmap", ctx); !r) return r;
    for (size_t i = 0; i < a.list<Bitmap>().size(); ++i) {
        const Bitmap& x = *a.list<Bitmap>()[i];
        const Bitmap& y = *b.list<Bitmap>()[i];
        if (x.width != y.width || x.height != y.height || x.rgba != y.rgba || x.indices != y.indices ||
            x.palette != y.palette)
            return ::testing::AssertionFailure() << "pixels of bitmap " << i;
    }
    return ::testing::AssertionSuccess();
}

TempDir::TempDir() {
    char buf[] = "/tmp/zelmar-io-XXXXXX";
    path = ::mkdtemp(buf);
}

TempDir::~TempDir() {
    std::error_code ec;
    std::filesystem::permissions(path, std::filesystem::perms::owner_all, std::filesystem::perm_options::add,
                                 ec);
    std::filesystem::remove_all(path, ec);
}

std::vector<uint8_t> fileBytes(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return std::vector<uint8_t>(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

} // namespace iotest
