#include "scene/LightMap.h"

#include "scene/LightMapJob.h"
#include "scene/Occluders.h"
#include "scene/PolygonGeometry.h"
#include "scene/World.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace zelmar::lightmap {

namespace {
bool lights(const Light& l, const Polygon& p) {
    if (l.entityToLight == 0) return true;
    const Group* t = world().group(l.entityToLight);
    return !t || !t->father || (p.group && world().inSubtree(*p.group, *t)); // a dead target or the root: all
}

// Where texel (i, j) of the job's polygon lies.
V3 texelPoint(const Job& job, int i, int j) {
    const double fs = job.width > 1 ? static_cast<double>(i) / (job.width - 1) : 0.5;
    const double ft = job.height > 1 ? static_cast<double>(j) / (job.height - 1) : 0.5;
    return job.origin + job.u * (job.s0 + fs * (job.s1 - job.s0)) + job.v * (job.t0 + ft * (job.t1 - job.t0));
}

// Adds one light's contribution (1.0 = the light's full colour) to every texel. Shadow rays
// are gathered for the whole polygon and traced together.
void addLight(const Bake& bake, const Job& job, const LightSnap& l, Result& r, std::vector<double>& light) {
    struct Pending {
        size_t texel;
        double ambient, diffuse, atten;
    };
    thread_local std::vector<rays::ShadowRay> shadowRays;
    thread_local std::vector<Pending> pending;
    thread_local std::vector<uint8_t> blocked;
    shadowRays.clear();
    pending.clear();
    // Texel (i, j) lies at corner + i x along + j x across.
    const V3 corner = texelPoint(job, 0, 0);
    const V3 along = job.width > 1 ? job.u * ((job.s1 - job.s0) / (job.width - 1)) : V3{};
    const V3 across = job.height > 1 ? job.v * ((job.t1 - job.t0) / (job.height - 1)) : V3{};
    const size_t texels = static_cast<size_t>(job.width) * job.height;
    if (l.directional) {
        // The same direction and angle at every texel: only the shadow test differs, and the
        // rays leave from a grid, traced eight at a time. The same sums as below.
        double cosine = dot(job.n, l.toLight);
        if (job.twoSided) cosine = std::fabs(cosine);
        const double diffuse = l.diffuse * std::max(0.0, cosine);
        const double lit = l.ambient + diffuse, dark = l.ambient + 0.0;
        if (diffuse > 0 && l.shadows && bake.occluders) {
            rays::GridRays g;
            const V3 side = dot(job.n, l.toLight) >= 0 ? job.n : -job.n;
            (corner + side * job.offset).store(g.corner);
            along.store(g.along);
            across.store(g.across);
            l.toLight.store(g.dir);
            g.width = job.width;
            g.height = job.height;
            g.ignore = job.polygon;
            blocked.resize(texels);
            bake.occluders->occluded(g, blocked.data(), bake.record ? &r.recorded : nullptr);
            r.rays += texels;
            for (size_t t = 0; t < texels; ++t) {
                const double f = blocked[t] ? dark : lit;
                for (int c = 0; c < 3; ++c)
                    light[t * 3 + c] += l.color[c] * f;
            }
        } else {
            for (size_t t = 0; t < texels; ++t)
                for (int c = 0; c < 3; ++c)
                    light[t * 3 + c] += l.color[c] * lit;
        }
        return;
    }
    for (int j = 0; j < job.height; ++j)
        for (int i = 0; i < job.width; ++i) {
            const size_t texel = static_cast<size_t>(j) * job.width + i;
            const V3 q = corner + along * i + across * j;
            V3 toLight;
            double dist = 0;
            if (l.directional) {
                toLight = l.toLight;
            } else {
                const V3 d = l.location - q;
                dist = length(d);
                toLight = dist > 0 ? d * (1.0 / dist) : job.n;
            }
            double atten = 1;
            if (l.reach > 0) {
                const double f = std::max(0.0, 1 - dist / l.reach);
                atten = l.square ? f * f : f;
            }
            if (atten <= 0) continue;
            double cosine = dot(job.n, toLight);
            if (job.twoSided) cosine = std::fabs(cosine);
            const double diffuse = l.diffuse * std::max(0.0, cosine);
            if (diffuse > 0 && l.shadows && bake.occluders) {
                // Start just off the surface on the lit side, and let the ray pass through
                // the polygon's own triangles.
                const V3 side = dot(job.n, toLight) >= 0 ? job.n : -job.n;
                const V3 from = q + side * job.offset;
                double org[3], dir[3];
                from.store(org);
                if (l.directional) {
                    toLight.store(dir);
                    shadowRays.push_back(bake.occluders->makeRay(org, dir, 0, std::numeric_limits<double>::infinity(),
                                                                 job.polygon));
                } else {
                    (l.location - from).store(dir);
                    // Up to the light, not beyond.
                    shadowRays.push_back(bake.occluders->makeRay(org, dir, 0, 1 - 1e-6, job.polygon));
                }
                pending.push_back({texel, l.ambient, diffuse, atten});
                continue;
            }
            const double f = (l.ambient + diffuse) * atten;
            for (int c = 0; c < 3; ++c)
                light[texel * 3 + c] += l.color[c] * f;
        }
    if (pending.empty()) return;
    blocked.resize(pending.size());
    bake.occluders->occluded(shadowRays.data(), shadowRays.size(), blocked.data());
    r.rays += shadowRays.size();
    if (bake.record) r.recorded.insert(r.recorded.end(), shadowRays.begin(), shadowRays.end());
    for (size_t k = 0; k < pending.size(); ++k) {
        const Pending& p = pending[k];
        const double f = (p.ambient + (blocked[k] ? 0.0 : p.diffuse)) * p.atten;
        for (int c = 0; c < 3; ++c)
            light[p.texel * 3 + c] += l.color[c] * f;
    }
}

} // namespace

Bake makeBake(const LightMapParams& params, bool record) {
    Bake b;
    b.params = params;
    b.record = record;
    bool shadows = false;
    for (const Light* l : world().list<Light>()) {
        shadows = shadows || params.rayTracing || l->rayTracing;
        if (l->disabled) continue;
        LightSnap s;
        s.directional = (l->type & 1) != 0;
        s.location = V3(l->location);
        s.toLight = -normalized(V3(l->direction));
        for (int c = 0; c < 3; ++c)
            s.color[c] = l->color[c] / 255.0;
        s.ambient = (l->type & 8) ? l->ambient : 0;
        s.diffuse = (l->type & 16) ? l->diffuse : 0;
        if (l->distanceReach > 0 && !s.directional && (l->type & 6)) {
            s.reach = l->distanceReach;
            s.square = (l->type & 4) != 0;
        }
        s.shadows = params.rayTracing || l->rayTracing;
        b.lights.push_back(s);
        const Group* t = world().group(l->entityToLight);
        b.targeted = b.targeted || (t && t->father);
    }
    if (shadows) b.occluders = &worldOccluders();
    return b;
}

void prepare(const Bake& bake, const Polygon& p, Job& job) {
    job.polygon = p.handle;
    job.valid = hasArea(p);
    if (!job.valid) return;
    const LightMapParams& params = bake.params;
    // A frame in the polygon's plane: U along the first edge, V across it.
    job.n = normalized(frontNormal(p));
    job.origin = pos(p.points[0]);
    V3 u = V3{};
    for (size_t i = 1; i < p.points.size() && length(u) == 0; ++i)
        u = normalized(pos(p.points[i]) - job.origin);
    job.u = u;
    job.v = cross(u, job.n);
    job.s0 = job.s1 = job.t0 = job.t1 = 0;
    for (const PointData& d : p.points) {
        const V3 r = pos(d) - job.origin;
        job.s0 = std::min(job.s0, dot(r, job.u));
        job.s1 = std::max(job.s1, dot(r, job.u));
        job.t0 = std::min(job.t0, dot(r, job.v));
        job.t1 = std::max(job.t1, dot(r, job.v));
    }
    const int minSize = std::min(params.minSize, params.maxSize);
    auto sizeFor = [&](double extent) {
        const double texels = std::ceil(extent / params.samplingRate);
        return static_cast<int>(
            std::clamp(texels, static_cast<double>(minSize), static_cast<double>(params.maxSize)));
    };
    job.width = sizeFor(job.s1 - job.s0);
    job.height = sizeFor(job.t1 - job.t0);
    job.twoSided = p.orientation == 0;
    // Off the surface by more than the kernel's single precision blurs it.
    const double size = std::max(ringSize(p), 1e-9);
    job.offset = std::max(1e-6 * size, bake.occluders ? 1e-5 * bake.occluders->extent() : 0.0);
    if (!bake.targeted) return;
    uint32_t index = 0;
    for (const Light* l : world().list<Light>()) {
        if (l->disabled) continue;
        if (lights(*l, p)) job.lights.push_back(index);
        ++index;
    }
}

void compute(const Bake& bake, const Job& job, Result& out) {
    const int width = job.width, height = job.height;
    // Texel centres sit on the polygon's box with the outer texels on its edges, so that
    // the second uv of the corners meet texel centres and filtering never wraps around.
    thread_local std::vector<double> light, soft; // scratch, kept between polygons
    light.assign(static_cast<size_t>(width) * height * 3, 0.0);
    // Light by light, in the world's order, so that each texel sums them in that order.
    if (bake.targeted)
        for (const uint32_t index : job.lights)
            addLight(bake, job, bake.lights[index], out, light);
    else
        for (const LightSnap& l : bake.lights)
            addLight(bake, job, l, out, light);
    if (bake.params.mode == 2) {
        soft.resize(light.size());
        for (int j = 0; j < height; ++j)
            for (int i = 0; i < width; ++i)
                for (int c = 0; c < 3; ++c) {
                    double sum = 0;
                    int count = 0;
                    for (int dj = -1; dj <= 1; ++dj)
                        for (int di = -1; di <= 1; ++di) {
                            const int x = i + di, y = j + dj;
                            if (x < 0 || y < 0 || x >= width || y >= height) continue;
                            sum += light[(static_cast<size_t>(y) * width + x) * 3 + c];
                            ++count;
                        }
                    soft[(static_cast<size_t>(j) * width + i) * 3 + c] = sum / count;
                }
        light.swap(soft);
    }
    out.rgba.resize(static_cast<size_t>(width) * height * 4);
    for (size_t k = 0; k < static_cast<size_t>(width) * height; ++k) {
        for (int c = 0; c < 3; ++c)
            out.rgba[k * 4 + c] = static_cast<uint8_t>(std::min(std::floor(128.0 * light[k * 3 + c] + 0.5), 255.0));
        out.rgba[k * 4 + 3] = 255;
    }
}

BitmapUses& BitmapUses::forBake() {
    static BitmapUses u;
    if (u.generation_ != world().generation) u.count();
    return u;
}

void BitmapUses::stillValid() {
    forBake().generation_ = world().generation;
}

void BitmapUses::count() {
    uses_.clear();
    for (const Polygon* q = world().firstPolygon(); q; q = q->nextInWorld) {
        if (q->fill.secondBitmap) ++uses_[q->fill.secondBitmap];
        if (q->fill.bitmap && q->fill.bitmap != q->fill.secondBitmap) ++uses_[q->fill.bitmap];
    }
    generation_ = world().generation;
}

bool BitmapUses::usedElsewhere(Handle bitmap, const Polygon& p) const {
    const auto it = uses_.find(bitmap);
    if (it == uses_.end()) return true; // not counted: keep it
    const int own = (p.fill.secondBitmap == bitmap || p.fill.bitmap == bitmap) ? 1 : 0;
    return it->second - own > 0 || p.fill.bitmap == bitmap;
}

void BitmapUses::replaced(Handle old, Handle now, const Polygon& p) {
    if (auto it = uses_.find(old); it != uses_.end() && p.fill.bitmap != old && --it->second <= 0) uses_.erase(it);
    uses_[now] = 1;
}

Handle apply(Polygon& p, const Job& job, Result&& r, BitmapUses& uses, std::vector<Bitmap*>& doomed) {
    World& w = world();
    // Replace this polygon's earlier light map, if it made one and nothing else uses it.
    const std::string name = "lightmap_" + std::to_string(p.handle);
    const Handle old = p.fill.secondBitmap;
    if (Bitmap* b = w.bitmap(old); b && b->name == name && b->path.empty() && !uses.usedElsewhere(old, p))
        doomed.push_back(b);
    Bitmap* b = w.createBitmap(name);
    b->width = job.width;
    b->height = job.height;
    b->rgba = std::move(r.rgba);
    b->version = 1;
    for (PointData& d : p.points) {
        const V3 rel = pos(d) - job.origin;
        const double fs = job.s1 > job.s0 ? (dot(rel, job.u) - job.s0) / (job.s1 - job.s0) : 0.5;
        const double ft = job.t1 > job.t0 ? (dot(rel, job.v) - job.t0) / (job.t1 - job.t0) : 0.5;
        d.uv2[0] = (0.5 + fs * (job.width - 1)) / job.width;
        d.uv2[1] = (0.5 + ft * (job.height - 1)) / job.height;
    }
    uses.replaced(old, b->handle, p);
    p.fill.secondBitmap = b->handle;
    w.changed(p);
    return b->handle;
}

} // namespace zelmar::lightmap

namespace zelmar {

std::string checkLightMapParams(const LightMapParams& p) {
    if (!std::isfinite(p.samplingRate) || p.samplingRate <= 0)
        return "the sampling rate must be a positive number";
    if (p.maxSize < 1 || p.maxSize > 4096) return "the maximum size must lie between 1 and 4096";
    if (p.minSize < 1) return "the minimum size must be at least 1";
    if (p.mode != 1 && p.mode != 2) return "the mode must be 1 or 2";
    return {};
}

} // namespace zelmar
