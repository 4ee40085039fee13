#include "scene/Occluders.h"

#include "scene/PolygonGeometry.h"
#include "scene/Walks.h"
#include "scene/World.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace zelmar {

namespace {
bool rayBox(V3 o, V3 inv, double tmax, V3 lo, V3 hi) {
    double t0 = 0, t1 = tmax;
    for (int i = 0; i < 3; ++i) {
        double a = (lo[i] - o[i]) * inv[i], b = (hi[i] - o[i]) * inv[i];
        if (a > b) std::swap(a, b);
        t0 = std::max(t0, a);
        t1 = std::min(t1, b);
        if (t0 > t1) return false;
    }
    return true;
}

struct Cache {
    Occluders occluders;
    uint64_t generation = std::numeric_limits<uint64_t>::max();
};
Cache& cache() {
    static Cache c;
    return c;
}
} // namespace

void Occluders::build() {
    tris_.clear();
    nodes_.clear();
    // Group by group: asking per polygon whether an ancestor is disabled would walk up to the
    // root each time, quadratic in the depth. (The order of the triangles does not matter.)
    for (const Group* g : enabledGroups(nullptr))
        for (const Polygon* p = g->firstPolygon; p; p = p->nextInGroup) {
            if (p->disabled || p->points.size() < 3) continue;
            for (const auto& t : triangulate(*p)) {
                const V3 a = pos(p->points[t[0]]);
                tris_.push_back({a, pos(p->points[t[1]]) - a, pos(p->points[t[2]]) - a, p->handle});
            }
        }
    if (tris_.empty()) return;
    std::vector<V3> centres;
    centres.reserve(tris_.size());
    for (const Tri& t : tris_)
        centres.push_back(t.a + (t.e1 + t.e2) * (1.0 / 3.0));
    nodes_.reserve(2 * tris_.size() / 4 + 1);
    buildNode(0, static_cast<uint32_t>(tris_.size()), centres);
}

uint32_t Occluders::buildNode(uint32_t first, uint32_t count, std::vector<V3>& centres) {
    const uint32_t index = static_cast<uint32_t>(nodes_.size());
    nodes_.emplace_back();
    V3 lo = tris_[first].a, hi = lo, clo = centres[first], chi = clo;
    for (uint32_t i = first; i < first + count; ++i) {
        const Tri& t = tris_[i];
        for (const V3 q : {t.a, t.a + t.e1, t.a + t.e2})
            for (int k = 0; k < 3; ++k) {
                lo[k] = std::min(lo[k], q[k]);
                hi[k] = std::max(hi[k], q[k]);
            }
        for (int k = 0; k < 3; ++k) {
            clo[k] = std::min(clo[k], centres[i][k]);
            chi[k] = std::max(chi[k], centres[i][k]);
        }
    }
    nodes_[index].lo = lo;
    nodes_[index].hi = hi;
    if (count <= 4) {
        nodes_[index].first = first;
        nodes_[index].count = count;
        return index;
    }
    int axis = 0;
    for (int k = 1; k < 3; ++k)
        if (chi[k] - clo[k] > chi[axis] - clo[axis]) axis = k;
    // Median split, moving triangles and their centres together.
    std::vector<uint32_t> order(count);
    for (uint32_t i = 0; i < count; ++i)
        order[i] = first + i;
    const uint32_t half = count / 2;
    std::nth_element(order.begin(), order.begin() + half, order.end(),
                     [&](uint32_t a, uint32_t b) { return centres[a][axis] < centres[b][axis]; });
    std::vector<Tri> t(count);
    std::vector<V3> c(count);
    for (uint32_t i = 0; i < count; ++i) {
        t[i] = tris_[order[i]];
        c[i] = centres[order[i]];
    }
    std::copy(t.begin(), t.end(), tris_.begin() + first);
    std::copy(c.begin(), c.end(), centres.begin() + first);
    buildNode(first, half, centres);
    const uint32_t right = buildNode(first + half, count - half, centres);
    nodes_[index].right = right;
    return index;
}

bool Occluders::blocked(V3 from, V3 to, Handle ignore) const {
    if (nodes_.empty()) return false;
    const V3 d = to - from;
    const double len = length(d);
    if (len <= 0) return false;
    const V3 dir = d * (1.0 / len);
    const double inf = std::numeric_limits<double>::infinity();
    const V3 inv(dir.x != 0 ? 1 / dir.x : inf, dir.y != 0 ? 1 / dir.y : inf, dir.z != 0 ? 1 / dir.z : inf);
    const double eps = 1e-9 * std::max(1.0, len);
    uint32_t stack[128];
    int top = 0;
    stack[top++] = 0;
    while (top > 0) {
        const Node& n = nodes_[stack[--top]];
        if (!rayBox(from, inv, len, n.lo, n.hi)) continue;
        if (n.count) {
            for (uint32_t i = n.first; i < n.first + n.count; ++i) {
                const Tri& t = tris_[i];
                if (t.polygon == ignore) continue;
                // Moeller-Trumbore.
                const V3 pv = cross(dir, t.e2);
                const double det = dot(t.e1, pv);
                if (std::fabs(det) < 1e-300) continue;
                const double invDet = 1 / det;
                const V3 tv = from - t.a;
                const double u = dot(tv, pv) * invDet;
                if (u < 0 || u > 1) continue;
                const V3 qv = cross(tv, t.e1);
                const double v = dot(dir, qv) * invDet;
                if (v < 0 || u + v > 1) continue;
                const double dist = dot(t.e2, qv) * invDet;
                if (dist > eps && dist < len - eps) return true;
            }
            continue;
        }
        const uint32_t self = static_cast<uint32_t>(&n - nodes_.data());
        if (top + 2 > 128) return false; // deeper than any median split of 2^60 triangles
        stack[top++] = n.right;
        stack[top++] = self + 1;
    }
    return false;
}

Occluders& worldOccluders() {
    Cache& c = cache();
    if (c.generation != world().generation) {
        c.occluders.build();
        c.generation = world().generation;
    }
    return c.occluders;
}

void occludersStillValid() {
    cache().generation = world().generation;
}

} // namespace zelmar
