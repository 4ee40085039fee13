#include "render/SceneCache.h"

#include "render/ThreadPool.h"
#include "render/Triangulate.h"
#include "scene/World.h"
#include <algorithm>
#include <cmath>

namespace zelmar::render {

SceneCache& sceneCache() {
    static SceneCache c;
    return c;
}

const GroupCache& SceneCache::get(const Group& g) {
    GroupCache& c = groups_[g.handle];
    if (c.version != g.version || c.ownPolygons != g.ownPolygons) {
        packGroup(g, c);
        c.stamp = ++stamps_;
    } else if (!c.looksPacked) {
        packLooks(g, c);
    }
    return c;
}

const GroupCache& SceneCache::geometry(const Group& g) {
    GroupCache& c = groups_[g.handle];
    if (c.version != g.version || c.ownPolygons != g.ownPolygons) {
        packGeometry(g, c);
        c.stamp = ++stamps_;
    }
    return c;
}

void SceneCache::update(const std::vector<const Group*>& groups, int threads) {
    std::vector<std::pair<const Group*, GroupCache*>> stale, looks;
    for (const Group* g : groups) {
        GroupCache& c = groups_[g->handle]; // inserted here, never while packing
        if (c.version != g->version || c.ownPolygons != g->ownPolygons)
            stale.emplace_back(g, &c);
        else if (!c.looksPacked)
            looks.emplace_back(g, &c);
    }
    const size_t whole = stale.size(); // packed whole; the rest finish their looks
    stale.insert(stale.end(), looks.begin(), looks.end());
    parallelFor(threads, static_cast<int>(stale.size()), [&](int i) {
        const auto& [g, c] = stale[static_cast<size_t>(i)];
        if (static_cast<size_t>(i) < whole)
            packGroup(*g, *c);
        else
            packLooks(*g, *c);
    });
    for (size_t i = 0; i < whole; ++i)
        stale[i].second->stamp = ++stamps_;
}

void SceneCache::updateGeometry(const std::vector<const Group*>& groups, int threads) {
    std::vector<std::pair<const Group*, GroupCache*>> stale;
    for (const Group* g : groups) {
        GroupCache& c = groups_[g->handle];
        if (c.version != g->version || c.ownPolygons != g->ownPolygons) stale.emplace_back(g, &c);
    }
    parallelFor(threads, static_cast<int>(stale.size()), [&](int i) {
        packGeometry(*stale[static_cast<size_t>(i)].first, *stale[static_cast<size_t>(i)].second);
    });
    for (auto& [g, c] : stale)
        c->stamp = ++stamps_;
}

void SceneCache::prune() {
    World& w = world();
    for (auto it = groups_.begin(); it != groups_.end();)
        it = w.group(it->first) ? std::next(it) : groups_.erase(it);
}

namespace {

uint8_t byteOf(int32_t v) {
    return static_cast<uint8_t>(std::clamp(v, 0, 255));
}

float finiteOr0(double v) {
    return std::isfinite(v) ? static_cast<float>(v) : 0.0f;
}

} // namespace

void packGroup(const Group& g, GroupCache& c) {
    packGeometry(g, c);
    packLooks(g, c);
}

void packGeometry(const Group& g, GroupCache& c) {
    c.version = g.version;
    c.ownPolygons = g.ownPolygons;
    c.looksPacked = false;
    c.verts.clear();
    c.extras.clear();
    c.polys.clear();
    c.tris.clear();
    c.box[0] = c.box[1] = c.box[2] = INFINITY;
    c.box[3] = c.box[4] = c.box[5] = -INFINITY;
    std::vector<double> ring;
    for (const Polygon* p = g.firstPolygon; p; p = p->nextInGroup) {
        const size_t n = p->points.size();
        if (n < 3) continue;
        bool finite = true;
        for (const PointData& d : p->points)
            finite = finite && std::isfinite(d.xyz[0]) && std::isfinite(d.xyz[1]) && std::isfinite(d.xyz[2]);
        if (!finite) continue; // such a polygon cannot be drawn or hit
        PackedPolygon& pp = c.polys.emplace_back(); // filled in place: a copy of it stalls on its piecewise stores
        pp.handle = p->handle;
        pp.firstVertex = static_cast<uint32_t>(c.verts.size());
        pp.vertexCount = static_cast<uint32_t>(n);
        const Fill& f = p->fill;
        pp.bitmap = f.bitmap;
        pp.animation = f.animation;
        pp.animationFrame = f.animationFrame;
        pp.secondBitmap = f.secondBitmap;
        for (int i = 0; i < 3; ++i)
            pp.color[i] = byteOf(f.color[i]);
        pp.translucent = static_cast<uint8_t>(f.translucent & 0xFF);
        pp.bilinear = f.bilinear != 0;
        pp.frontOnly = p->orientation != 0;
        pp.disabled = p->disabled;

        ring.resize(n * 3);
        for (size_t i = 0; i < n; ++i)
            for (int k = 0; k < 3; ++k)
                ring[i * 3 + k] = p->points[i].xyz[k];
        double nrm[3];
        newellNormal(ring.data(), 3, n, nrm);
        const double len = std::sqrt(nrm[0] * nrm[0] + nrm[1] * nrm[1] + nrm[2] * nrm[2]);
        // The front is the side from which the ring runs clockwise: the Newell normal turned over.
        if (len > 0 && std::isfinite(len))
            for (int k = 0; k < 3; ++k)
                pp.normal[k] = -nrm[k] / len;
        pp.box[0] = pp.box[1] = pp.box[2] = INFINITY;
        pp.box[3] = pp.box[4] = pp.box[5] = -INFINITY;
        for (const PointData& d : p->points) {
            PackedVertex v;
            for (int k = 0; k < 3; ++k) {
                v.xyz[k] = d.xyz[k];
                v.shade[k] = 0; // packLooks
                pp.box[k] = std::min(pp.box[k], d.xyz[k]);
                pp.box[k + 3] = std::max(pp.box[k + 3], d.xyz[k]);
            }
            c.verts.push_back(v);
        }
        for (int k = 0; k < 3; ++k) {
            c.box[k] = std::min(c.box[k], pp.box[k]);
            c.box[k + 3] = std::max(c.box[k + 3], pp.box[k + 3]);
        }
        pp.firstTri = static_cast<uint32_t>(c.tris.size() / 3);
        triangulate(ring.data(), 3, n, c.tris);
        pp.triCount = static_cast<uint32_t>(c.tris.size() / 3) - pp.firstTri;
    }
}

void packLooks(const Group& g, GroupCache& c) {
    c.extras.resize(c.verts.size());
    size_t k = 0;
    // The packed polygons are the group's own in list order, less those packGeometry passed.
    for (const Polygon* p = g.firstPolygon; p && k < c.polys.size(); p = p->nextInGroup) {
        const PackedPolygon& pp = c.polys[k];
        if (p->handle != pp.handle || p->points.size() != pp.vertexCount) continue;
        ++k;
        const double polyBright = std::isfinite(p->fill.brightness) ? p->fill.brightness / 100.0 : 1.0;
        PackedVertex* v = c.verts.data() + pp.firstVertex;
        VertexExtra* e = c.extras.data() + pp.firstVertex;
        for (const PointData& d : p->points) {
            e->u = finiteOr0(d.uv[0]);
            e->v = finiteOr0(d.uv[1]);
            e->u2 = finiteOr0(d.uv2[0]);
            e->v2 = finiteOr0(d.uv2[1]);
            const double b = (std::isfinite(d.brightness) ? d.brightness / 100.0 : 1.0) * polyBright;
            for (int i = 0; i < 3; ++i)
                v->shade[i] = std::clamp(finiteOr0(d.rgb[i] / 255.0 * b), 0.0f, 64.0f);
            const double n2 = d.normal[0] * d.normal[0] + d.normal[1] * d.normal[1] + d.normal[2] * d.normal[2];
            const double nl = n2 == 0 ? 0.0 : std::sqrt(n2); // most points have no normal of their own
            for (int i = 0; i < 3; ++i)
                e->normal[i] = (nl > 1e-12 && std::isfinite(nl)) ? static_cast<float>(d.normal[i] / nl)
                                                                 : static_cast<float>(pp.normal[i]);
            ++v;
            ++e;
        }
    }
    c.looksPacked = true;
}

} // namespace zelmar::render
