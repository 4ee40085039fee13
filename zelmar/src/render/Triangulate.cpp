#include "render/Triangulate.h"

#include <cmath>

namespace zelmar::render {

void newellNormal(const double* xyz, size_t stride, size_t count, double n[3]) {
    // The same sums in the same order as over (i, (i + 1) % count), without the division per point.
    double n0 = 0, n1 = 0, n2 = 0;
    for (size_t i = 0; i < count; ++i) {
        const double* a = xyz + i * stride;
        const double* b = i + 1 < count ? a + stride : xyz;
        n0 += (a[1] - b[1]) * (a[2] + b[2]);
        n1 += (a[2] - b[2]) * (a[0] + b[0]);
        n2 += (a[0] - b[0]) * (a[1] + b[1]);
    }
    n[0] = n0, n[1] = n1, n[2] = n2;
}

namespace {

double cross2(double ax, double ay, double bx, double by) {
    return ax * by - ay * bx;
}

// Point p inside or on triangle abc (counter-clockwise).
bool inTriangle(const double* a, const double* b, const double* c, const double* p) {
    return cross2(b[0] - a[0], b[1] - a[1], p[0] - a[0], p[1] - a[1]) >= 0 &&
           cross2(c[0] - b[0], c[1] - b[1], p[0] - b[0], p[1] - b[1]) >= 0 &&
           cross2(a[0] - c[0], a[1] - c[1], p[0] - c[0], p[1] - c[1]) >= 0;
}

void fan(size_t count, std::vector<uint32_t>& out) {
    for (size_t i = 1; i + 1 < count; ++i) {
        out.push_back(0);
        out.push_back(static_cast<uint32_t>(i));
        out.push_back(static_cast<uint32_t>(i + 1));
    }
}

} // namespace

void triangulate(const double* xyz, size_t stride, size_t count, std::vector<uint32_t>& out) {
    if (count < 3) return;
    if (count == 3) {
        fan(3, out);
        return;
    }
    double n[3];
    newellNormal(xyz, stride, count, n);
    // Project onto the plane of the two axes other than the normal's largest, keeping the
    // ring counter-clockwise.
    int drop = 2;
    if (std::fabs(n[0]) >= std::fabs(n[1]) && std::fabs(n[0]) >= std::fabs(n[2]))
        drop = 0;
    else if (std::fabs(n[1]) >= std::fabs(n[2]))
        drop = 1;
    const int ax = (drop + 1) % 3, ay = (drop + 2) % 3;
    const bool flip = n[drop] < 0;
    // Most rings are small: their projection stays on the stack (a scene packs a hundred thousand of them).
    constexpr size_t kSmall = 16;
    double small[2 * kSmall];
    std::vector<double> large;
    double* p = small;
    if (count > kSmall) {
        large.resize(count * 2);
        p = large.data();
    }
    for (size_t i = 0; i < count; ++i) {
        p[2 * i] = xyz[i * stride + ax];
        p[2 * i + 1] = flip ? -xyz[i * stride + ay] : xyz[i * stride + ay];
    }
    // Convex: every corner turns left.
    bool convex = true;
    for (size_t i = 0, j = 1, k = 2; i < count && convex; ++i) {
        const double* a = &p[2 * i];
        const double* b = &p[2 * j];
        const double* c = &p[2 * k];
        if (cross2(b[0] - a[0], b[1] - a[1], c[0] - b[0], c[1] - b[1]) < 0) convex = false;
        j = j + 1 == count ? 0 : j + 1;
        k = k + 1 == count ? 0 : k + 1;
    }
    if (convex) {
        fan(count, out);
        return;
    }
    std::vector<uint32_t> ring(count);
    for (size_t i = 0; i < count; ++i)
        ring[i] = static_cast<uint32_t>(i);
    const size_t start = out.size();
    size_t guard = count * count + 8;
    while (ring.size() > 3 && guard-- > 0) {
        bool cut = false;
        const size_t m = ring.size();
        for (size_t i = 0; i < m; ++i) {
            const uint32_t ia = ring[(i + m - 1) % m], ib = ring[i], ic = ring[(i + 1) % m];
            const double *a = &p[2 * ia], *b = &p[2 * ib], *c = &p[2 * ic];
            if (cross2(b[0] - a[0], b[1] - a[1], c[0] - b[0], c[1] - b[1]) <= 0) continue; // reflex or flat
            bool empty = true;
            for (size_t j = 0; j < m && empty; ++j) {
                const uint32_t q = ring[j];
                if (q == ia || q == ib || q == ic) continue;
                const double* pq = &p[2 * q];
                if ((pq[0] == a[0] && pq[1] == a[1]) || (pq[0] == b[0] && pq[1] == b[1]) ||
                    (pq[0] == c[0] && pq[1] == c[1]))
                    continue;
                if (inTriangle(a, b, c, pq)) empty = false;
            }
            if (!empty) continue;
            out.push_back(ia);
            out.push_back(ib);
            out.push_back(ic);
            ring.erase(ring.begin() + static_cast<long>(i));
            cut = true;
            break;
        }
        if (!cut) {
            // Collinear runs or a self-crossing ring: drop a flat corner if there is one,
            // else give up and fan what the ring was.
            bool dropped = false;
            for (size_t i = 0; i < m && !dropped; ++i) {
                const double* a = &p[2 * ring[(i + m - 1) % m]];
                const double* b = &p[2 * ring[i]];
                const double* c = &p[2 * ring[(i + 1) % m]];
                if (cross2(b[0] - a[0], b[1] - a[1], c[0] - b[0], c[1] - b[1]) == 0) {
                    ring.erase(ring.begin() + static_cast<long>(i));
                    dropped = true;
                }
            }
            if (!dropped) {
                out.resize(start);
                fan(count, out);
                return;
            }
        }
    }
    if (ring.size() == 3) {
        out.push_back(ring[0]);
        out.push_back(ring[1]);
        out.push_back(ring[2]);
    }
}

} // namespace zelmar::render
