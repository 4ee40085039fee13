#include "scene/LightMap.h"

#include "scene/Occluders.h"
#include "scene/PolygonGeometry.h"
#include "scene/World.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace zelmar {

namespace {
bool lights(const Light& l, const Polygon& p) {
    if (l.disabled) return false;
    if (l.entityToLight == 0) return true;
    const Group* t = world().group(l.entityToLight);
    return !t || !t->father || (p.group && world().inSubtree(*p.group, *t)); // a dead target or the root: all
}

// Light per channel (1.0 = the light's full colour) reaching point q of a surface with
// unit normal n.
void lightAt(const Polygon& p, V3 q, V3 n, bool twoSided, bool rayTracing, double out[3]) {
    out[0] = out[1] = out[2] = 0;
    const double size = std::max(ringSize(p), 1e-9);
    for (const Light* l : world().list<Light>()) {
        if (!lights(*l, p)) continue;
        V3 toLight;
        double dist = 0;
        if (l->type & 1) {
            toLight = -normalized(V3(l->direction));
            dist = std::numeric_limits<double>::infinity();
        } else {
            const V3 d = V3(l->location) - q;
            dist = length(d);
            toLight = dist > 0 ? d * (1.0 / dist) : n;
        }
        double atten = 1;
        if (l->distanceReach > 0 && !(l->type & 1) && (l->type & 6)) {
            const double f = std::max(0.0, 1 - dist / l->distanceReach);
            atten = (l->type & 4) ? f * f : f;
        }
        if (atten <= 0) continue;
        const double ambient = (l->type & 8) ? l->ambient : 0;
        double cosine = dot(n, toLight);
        if (twoSided) cosine = std::fabs(cosine);
        double diffuse = (l->type & 16) ? l->diffuse * std::max(0.0, cosine) : 0;
        if (diffuse > 0 && (rayTracing || l->rayTracing)) {
            // Start just off the surface on the lit side, so the polygon does not shadow itself.
            const V3 side = dot(n, toLight) >= 0 ? n : -n;
            const V3 from = q + side * (1e-6 * size);
            const V3 to =
                std::isfinite(dist) ? V3(l->location) : from + toLight * (1e6 * std::max(size, 1.0));
            if (worldOccluders().blocked(from, to, p.handle)) diffuse = 0;
        }
        const double f = (ambient + diffuse) * atten;
        for (int c = 0; c < 3; ++c)
            out[c] += l->color[c] / 255.0 * f;
    }
}
} // namespace

std::string checkLightMapParams(const LightMapParams& p) {
    if (!std::isfinite(p.samplingRate) || p.samplingRate <= 0)
        return "the sampling rate must be a positive number";
    if (p.maxSize < 1 || p.maxSize > 4096) return "the maximum size must lie between 1 and 4096";
    if (p.minSize < 1) return "the minimum size must be at least 1";
    if (p.mode != 1 && p.mode != 2) return "the mode must be 1 or 2";
    return {};
}

Handle createLightMap(Polygon& p, const LightMapParams& params) {
    if (!hasArea(p)) return 0;
    World& w = world();
    bool shadows = params.rayTracing;
    for (const Light* l : w.list<Light>())
        shadows = shadows || l->rayTracing;
    if (shadows) worldOccluders(); // brought up to date before this call changes anything
    // A frame in the polygon's plane: U along the first edge, V across it.
    const V3 n = normalized(frontNormal(p));
    const V3 origin = pos(p.points[0]);
    V3 u = V3{};
    for (size_t i = 1; i < p.points.size() && length(u) == 0; ++i)
        u = normalized(pos(p.points[i]) - origin);
    const V3 v = cross(u, n);
    double s0 = 0, s1 = 0, t0 = 0, t1 = 0;
    for (const PointData& d : p.points) {
        const V3 r = pos(d) - origin;
        s0 = std::min(s0, dot(r, u));
        s1 = std::max(s1, dot(r, u));
        t0 = std::min(t0, dot(r, v));
        t1 = std::max(t1, dot(r, v));
    }
    const int minSize = std::min(params.minSize, params.maxSize);
    auto sizeFor = [&](double extent) {
        const double texels = std::ceil(extent / params.samplingRate);
        return static_cast<int>(
            std::clamp(texels, static_cast<double>(minSize), static_cast<double>(params.maxSize)));
    };
    const int width = sizeFor(s1 - s0), height = sizeFor(t1 - t0);

    // Texel centres sit on the polygon's box with the outer texels on its edges, so that
    // the second uv of the corners meet texel centres and filtering never wraps around.
    std::vector<double> light(static_cast<size_t>(width) * height * 3);
    const bool twoSided = p.orientation == 0;
    for (int j = 0; j < height; ++j)
        for (int i = 0; i < width; ++i) {
            const double fs = width > 1 ? static_cast<double>(i) / (width - 1) : 0.5;
            const double ft = height > 1 ? static_cast<double>(j) / (height - 1) : 0.5;
            const V3 q = origin + u * (s0 + fs * (s1 - s0)) + v * (t0 + ft * (t1 - t0));
            lightAt(p, q, n, twoSided, params.rayTracing, &light[(static_cast<size_t>(j) * width + i) * 3]);
        }
    if (params.mode == 2) {
        std::vector<double> soft(light.size());
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

    // Replace this polygon's earlier light map, if it made one and nothing else uses it.
    const std::string name = "lightmap_" + std::to_string(p.handle);
    if (Bitmap* old = w.bitmap(p.fill.secondBitmap); old && old->name == name && old->path.empty()) {
        bool shared = false;
        for (const Polygon* q = w.firstPolygon(); q && !shared; q = q->nextInWorld)
            shared = q != &p && (q->fill.secondBitmap == old->handle || q->fill.bitmap == old->handle);
        if (!shared) w.destroyBitmap(*old);
    }
    Bitmap* b = w.createBitmap(name);
    b->width = width;
    b->height = height;
    b->rgba.resize(static_cast<size_t>(width) * height * 4);
    for (size_t k = 0; k < static_cast<size_t>(width) * height; ++k) {
        for (int c = 0; c < 3; ++c)
            b->rgba[k * 4 + c] =
                static_cast<uint8_t>(std::clamp(std::lround(128.0 * light[k * 3 + c]), 0L, 255L));
        b->rgba[k * 4 + 3] = 255;
    }
    b->version = 1;

    for (PointData& d : p.points) {
        const V3 r = pos(d) - origin;
        const double fs = s1 > s0 ? (dot(r, u) - s0) / (s1 - s0) : 0.5;
        const double ft = t1 > t0 ? (dot(r, v) - t0) / (t1 - t0) : 0.5;
        d.uv2[0] = (0.5 + fs * (width - 1)) / width;
        d.uv2[1] = (0.5 + ft * (height - 1)) / height;
    }
    p.fill.secondBitmap = b->handle;
    w.changed(p);
    // A light map changes no geometry: the shadow casters built for this call stay right
    // for the next polygon of the same bake.
    if (shadows) occludersStillValid();
    return b->handle;
}

} // namespace zelmar
