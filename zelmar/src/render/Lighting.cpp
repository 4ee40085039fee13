#include "render/Lighting.h"

#include "scene/World.h"
#include <algorithm>
#include <cmath>
#include <unordered_map>

namespace zelmar::render {
namespace {

std::unordered_map<Handle, Light>& snapshots() {
    static std::unordered_map<Handle, Light> s;
    return s;
}

double dot(const double a[3], const double b[3]) {
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

bool finite3(const double a[3]) {
    return std::isfinite(a[0]) && std::isfinite(a[1]) && std::isfinite(a[2]);
}

} // namespace

std::vector<ActiveLight> gatherLights() {
    std::vector<ActiveLight> out;
    auto& snaps = snapshots();
    for (const Light* l : world().list<Light>()) {
        if (l->disabled) continue;
        const Light* src = nullptr;
        if (l->activateBeforeRender) {
            src = l;
        } else if (l->activated) {
            if (l->activatedVersion == l->version) {
                snaps[l->handle] = *l;
                src = l;
            } else {
                auto it = snaps.find(l->handle);
                src = (it != snaps.end() && it->second.version == l->activatedVersion) ? &it->second : l;
            }
        }
        if (!src || !finite3(src->location) || !finite3(src->direction)) continue;
        ActiveLight a;
        for (int i = 0; i < 3; ++i) {
            a.location[i] = src->location[i];
            a.color[i] = static_cast<float>(std::clamp(src->color[i], 0.0, 255.0) / 255.0);
        }
        const double len = std::sqrt(dot(src->direction, src->direction));
        for (int i = 0; i < 3; ++i)
            a.towards[i] = len > 0 ? src->direction[i] / len : (i == 2 ? -1.0 : 0.0);
        a.ambient = std::isfinite(src->ambient) ? src->ambient : 0;
        a.diffuse = std::isfinite(src->diffuse) ? src->diffuse : 0;
        a.specular = std::isfinite(src->specular) ? src->specular : 0;
        a.shining = std::isfinite(src->specularShining) ? std::max(0.0, src->specularShining) : 0;
        a.reach = std::isfinite(src->distanceReach) ? src->distanceReach : 0;
        a.type = src->type;
        a.target = world().group(src->entityToLight) ? src->entityToLight : 0;
        out.push_back(a);
    }
    return out;
}

LightReach::LightReach(const std::vector<ActiveLight>& lights) : lights_(lights), subtree_(lights.size()) {
    for (size_t i = 0; i < lights.size(); ++i)
        if (const Group* t = world().group(lights[i].target))
            for (const Group* g = t; g; g = World::nextInSubtree(g, t))
                subtree_[i].insert(g);
}

bool LightReach::reaches(size_t light, const Group& g) const {
    return lights_[light].target == 0 || subtree_[light].count(&g) != 0;
}

void lightVertex(const std::vector<const ActiveLight*>& lights, const double p[3], const double nIn[3],
                 const double eye[3], float out[3]) {
    double sum[3] = {0, 0, 0};
    double view[3] = {eye[0] - p[0], eye[1] - p[1], eye[2] - p[2]};
    const double vl = std::sqrt(dot(view, view));
    if (vl > 0)
        for (double& c : view)
            c /= vl;
    double n[3] = {nIn[0], nIn[1], nIn[2]};
    if (dot(n, view) < 0)
        for (double& c : n)
            c = -c;
    for (const ActiveLight* l : lights) {
        double toLight[3];
        double att = 1.0;
        if (l->type & 1) {
            for (int i = 0; i < 3; ++i)
                toLight[i] = -l->towards[i];
        } else {
            for (int i = 0; i < 3; ++i)
                toLight[i] = l->location[i] - p[i];
            const double d = std::sqrt(dot(toLight, toLight));
            if (d > 0)
                for (double& c : toLight)
                    c /= d;
            if (l->reach > 0 && (l->type & 6)) {
                const double k = std::max(0.0, 1.0 - d / l->reach);
                att = (l->type & 4) ? k * k : k;
            }
        }
        double term = 0;
        if (l->type & 8) term += l->ambient;
        const double ndl = dot(n, toLight);
        if ((l->type & 16) && ndl > 0) term += l->diffuse * ndl;
        if ((l->type & 32) && ndl > 0 && l->shining > 0) {
            double r[3];
            for (int i = 0; i < 3; ++i)
                r[i] = 2 * ndl * n[i] - toLight[i];
            const double rv = dot(r, view);
            if (rv > 0) term += l->specular * std::pow(rv, l->shining);
        }
        term *= att;
        for (int i = 0; i < 3; ++i)
            sum[i] += l->color[i] * term;
    }
    for (int i = 0; i < 3; ++i)
        out[i] = static_cast<float>(std::min(sum[i], 4.0));
}

} // namespace zelmar::render
