#include "pick/Bvh.h"

#include <algorithm>
#include <cmath>

namespace zelmar::pick {
namespace {

constexpr uint32_t kLeafSize = 4;

struct BuildItem {
    double centre[3];
    double box[6];
    uint32_t tri;
};

void emptyBox(double b[6]) {
    b[0] = b[1] = b[2] = INFINITY;
    b[3] = b[4] = b[5] = -INFINITY;
}

void grow(double b[6], const double o[6]) {
    for (int k = 0; k < 3; ++k) {
        b[k] = std::min(b[k], o[k]);
        b[k + 3] = std::max(b[k + 3], o[k + 3]);
    }
}

} // namespace

Ray makeRay(const double origin[3], const double dir[3], double tMin, double tMax) {
    Ray r;
    for (int k = 0; k < 3; ++k) {
        r.origin[k] = origin[k];
        r.dir[k] = dir[k];
        r.inv[k] = 1.0 / dir[k]; // +-inf for a zero component is what the slab test wants
    }
    r.tMin = tMin;
    r.tMax = tMax;
    return r;
}

bool rayBox(const Ray& r, const double box[6], double& tEnter) {
    double t0 = r.tMin, t1 = r.tMax;
    for (int k = 0; k < 3; ++k) {
        double a = (box[k] - r.origin[k]) * r.inv[k];
        double b = (box[k + 3] - r.origin[k]) * r.inv[k];
        if (std::isnan(a) || std::isnan(b)) { // zero direction with the origin on a slab face
            if (r.origin[k] < box[k] || r.origin[k] > box[k + 3]) return false;
            continue;
        }
        if (a > b) std::swap(a, b);
        t0 = std::max(t0, a);
        t1 = std::min(t1, b);
        if (t0 > t1) return false;
    }
    tEnter = t0;
    return true;
}

void Bvh::build(const render::GroupCache& gc) {
    nodes_.clear();
    tris_.clear();
    std::vector<BuildItem> items;
    for (uint32_t p = 0; p < gc.polys.size(); ++p) {
        const render::PackedPolygon& pp = gc.polys[p];
        const uint32_t* t = gc.tris.data() + static_cast<size_t>(pp.firstTri) * 3;
        for (uint32_t i = 0; i < pp.triCount; ++i) {
            const uint32_t a = t[3 * i], b = t[3 * i + 1], c = t[3 * i + 2];
            if (a >= pp.vertexCount || b >= pp.vertexCount || c >= pp.vertexCount) continue;
            TriRef ref{pp.firstVertex + a, pp.firstVertex + b, pp.firstVertex + c, p};
            BuildItem it;
            emptyBox(it.box);
            for (uint32_t v : {ref.a, ref.b, ref.c}) {
                const double* x = gc.verts[v].xyz;
                const double pb[6] = {x[0], x[1], x[2], x[0], x[1], x[2]};
                grow(it.box, pb);
            }
            for (int k = 0; k < 3; ++k)
                it.centre[k] = 0.5 * (it.box[k] + it.box[k + 3]);
            it.tri = static_cast<uint32_t>(tris_.size());
            tris_.push_back(ref);
            items.push_back(it);
        }
    }
    if (items.empty()) return;
    nodes_.reserve(2 * items.size() / kLeafSize + 2);
    // Iterative top-down build, median split along the widest axis of the centres.
    struct Task {
        uint32_t node, begin, end;
    };
    std::vector<Task> stack;
    nodes_.push_back({});
    stack.push_back({0, 0, static_cast<uint32_t>(items.size())});
    while (!stack.empty()) {
        const Task tk = stack.back();
        stack.pop_back();
        Node& n = nodes_[tk.node];
        emptyBox(n.box);
        double cb[6];
        emptyBox(cb);
        for (uint32_t i = tk.begin; i < tk.end; ++i) {
            grow(n.box, items[i].box);
            const double* c = items[i].centre;
            const double pc[6] = {c[0], c[1], c[2], c[0], c[1], c[2]};
            grow(cb, pc);
        }
        const uint32_t count = tk.end - tk.begin;
        int axis = 0;
        for (int k = 1; k < 3; ++k)
            if (cb[k + 3] - cb[k] > cb[axis + 3] - cb[axis]) axis = k;
        if (count <= kLeafSize || !(cb[axis + 3] - cb[axis] > 0)) {
            n.first = tk.begin;
            n.count = count;
            n.right = 0;
            continue;
        }
        const uint32_t mid = tk.begin + count / 2;
        std::nth_element(
            items.begin() + tk.begin, items.begin() + mid, items.begin() + tk.end,
            [axis](const BuildItem& a, const BuildItem& b) { return a.centre[axis] < b.centre[axis]; });
        const uint32_t left = static_cast<uint32_t>(nodes_.size());
        nodes_.push_back({});
        nodes_.push_back({});
        Node& parent = nodes_[tk.node]; // the push_backs may have moved it
        parent.first = left;
        parent.count = 0;
        parent.right = left + 1;
        stack.push_back({left, tk.begin, mid});
        stack.push_back({left + 1, mid, tk.end});
    }
    // Leaves index items; put the triangles in item order.
    std::vector<TriRef> ordered(tris_.size());
    for (size_t i = 0; i < items.size(); ++i)
        ordered[i] = tris_[items[i].tri];
    tris_.swap(ordered);
}

bool Bvh::intersect(const render::GroupCache& gc, Ray& ray, Hit& hit) const {
    if (nodes_.empty()) return false;
    bool found = false;
    uint32_t stack[64];
    int sp = 0;
    stack[sp++] = 0;
    while (sp > 0) {
        const Node& n = nodes_[stack[--sp]];
        double tEnter;
        if (!rayBox(ray, n.box, tEnter)) continue;
        if (n.count == 0) {
            if (sp + 2 > 64) continue; // deeper than any median-split tree of 2^32 triangles
            stack[sp++] = n.right;
            stack[sp++] = n.first;
            continue;
        }
        for (uint32_t i = n.first; i < n.first + n.count; ++i) {
            const TriRef& t = tris_[i];
            const render::PackedPolygon& pp = gc.polys[t.polygon];
            if (pp.disabled) continue;
            const double* a = gc.verts[t.a].xyz;
            const double* b = gc.verts[t.b].xyz;
            const double* c = gc.verts[t.c].xyz;
            const double e1[3] = {b[0] - a[0], b[1] - a[1], b[2] - a[2]};
            const double e2[3] = {c[0] - a[0], c[1] - a[1], c[2] - a[2]};
            const double* d = ray.dir;
            const double p[3] = {d[1] * e2[2] - d[2] * e2[1], d[2] * e2[0] - d[0] * e2[2],
                                 d[0] * e2[1] - d[1] * e2[0]};
            const double det = e1[0] * p[0] + e1[1] * p[1] + e1[2] * p[2];
            if (det == 0 || !std::isfinite(det)) continue;
            if (pp.frontOnly) {
                const double facing = pp.normal[0] * d[0] + pp.normal[1] * d[1] + pp.normal[2] * d[2];
                if (facing >= 0) continue;
            }
            const double inv = 1.0 / det;
            const double s[3] = {ray.origin[0] - a[0], ray.origin[1] - a[1], ray.origin[2] - a[2]};
            const double u = (s[0] * p[0] + s[1] * p[1] + s[2] * p[2]) * inv;
            if (u < 0 || u > 1) continue;
            const double q[3] = {s[1] * e1[2] - s[2] * e1[1], s[2] * e1[0] - s[0] * e1[2],
                                 s[0] * e1[1] - s[1] * e1[0]};
            const double v = (d[0] * q[0] + d[1] * q[1] + d[2] * q[2]) * inv;
            if (v < 0 || u + v > 1) continue;
            const double tt = (e2[0] * q[0] + e2[1] * q[1] + e2[2] * q[2]) * inv;
            if (tt < ray.tMin || tt >= ray.tMax) continue;
            ray.tMax = tt;
            hit.t = tt;
            hit.polygon = t.polygon;
            found = true;
        }
    }
    return found;
}

} // namespace zelmar::pick
