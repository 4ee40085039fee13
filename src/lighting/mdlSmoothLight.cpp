#include "mdlSmoothLight.h"

#include "maths/Maths.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <zelmar/zelmar.h>

namespace vexil {

namespace {

using Normal = std::array<double, 3>;

struct Gathered {
    double x, y, z;
    int point, polygon, slot; // slot: the polygon's index in the list
    int order;                // the order the point was met in
};

// The angle in degrees between two normals, as the maths library's angleBetVectors computes it (the same
// steps, without its arrays, since a smoothing compares millions of pairs). Both are non-zero.
double angleDegrees(const Normal& a, const Normal& b) {
    const double la = std::sqrt(a[0] * a[0] + a[1] * a[1] + a[2] * a[2]);
    const double lb = std::sqrt(b[0] * b[0] + b[1] * b[1] + b[2] * b[2]);
    const double c = (a[0] * b[0] + a[1] * b[1] + a[2] * b[2]) / (la * lb);
    if (c == 0.0) return 90.0;
    double s2 = 1.0 - c * c;
    if (s2 < 0.0) s2 = 0.0;
    return Maths::AngleFromXY(c, std::sqrt(s2)) * 180.0 / Maths::Pi;
}

bool degenerate(const Normal& n) {
    return n[0] == 0 && n[1] == 0 && n[2] == 0;
}

// Every point of the polygons with its location, in walk order.
std::vector<Gathered> gather(const std::vector<int>& polygons) {
    std::vector<Gathered> all;
    all.reserve(polygons.size() * 4);
    int order = 0;
    for (size_t i = 0; i < polygons.size(); ++i) {
        const int pol = polygons[i];
        for (int pt = ZELMAR_polygon_get_first_point(pol); pt != 0; pt = ZELMAR_point_get_next_point(pt)) {
            double xyz[3] = {0, 0, 0};
            ZELMAR_point_get_xyz(pt, xyz);
            all.push_back({xyz[0], xyz[1], xyz[2], pt, pol, int(i), order++});
        }
    }
    return all;
}

// The bits of a coordinate, with -0 read as 0 so that the two zeros weld as == says they are equal.
uint64_t bitsOf(double v) {
    if (v == 0) v = 0;
    uint64_t b;
    std::memcpy(&b, &v, sizeof b);
    return b;
}

uint64_t mix(uint64_t h) {
    h ^= h >> 33;
    h *= 0xff51afd7ed558ccdULL;
    h ^= h >> 33;
    h *= 0xc4ceb93fe53a87d5ULL;
    h ^= h >> 33;
    return h;
}

// Orders the gathered points by weld set: the sets in the order their first point was met, the points of
// a set in the order they were met. Answers the ranges [begin, end) of the sets in the reordered array.
// One pass over an open-addressing table of locations; a point with a NaN coordinate is a set of its own.
std::vector<std::pair<size_t, size_t>> groupByLocation(std::vector<Gathered>& all) {
    const size_t n = all.size();
    size_t cap = 16;
    while (cap < 2 * n)
        cap <<= 1;
    std::vector<int> table(cap, -1); // set number, -1 empty
    std::vector<size_t> firstOfSet;  // the entry that began each set
    std::vector<int> setOf(n);
    for (size_t i = 0; i < n; ++i) {
        const Gathered& g = all[i];
        if (std::isnan(g.x) || std::isnan(g.y) || std::isnan(g.z)) {
            setOf[i] = int(firstOfSet.size());
            firstOfSet.push_back(i);
            continue;
        }
        const uint64_t bx = bitsOf(g.x), by = bitsOf(g.y), bz = bitsOf(g.z);
        size_t slot = size_t(mix(bx ^ mix(by ^ mix(bz)))) & (cap - 1);
        for (;;) {
            const int s = table[slot];
            if (s < 0) {
                table[slot] = int(firstOfSet.size());
                setOf[i] = table[slot];
                firstOfSet.push_back(i);
                break;
            }
            const Gathered& f = all[firstOfSet[size_t(s)]];
            if (f.x == g.x && f.y == g.y && f.z == g.z) {
                setOf[i] = s;
                break;
            }
            slot = (slot + 1) & (cap - 1);
        }
    }
    // A stable counting sort by set.
    const size_t sets = firstOfSet.size();
    std::vector<size_t> start(sets + 1, 0);
    for (size_t i = 0; i < n; ++i)
        ++start[size_t(setOf[i]) + 1];
    for (size_t s = 0; s < sets; ++s)
        start[s + 1] += start[s];
    std::vector<Gathered> ordered(n);
    std::vector<size_t> next(start.begin(), start.end() - 1);
    for (size_t i = 0; i < n; ++i)
        ordered[next[size_t(setOf[i])]++] = all[i];
    all.swap(ordered);
    std::vector<std::pair<size_t, size_t>> ranges(sets);
    for (size_t s = 0; s < sets; ++s)
        ranges[s] = {start[s], start[s + 1]};
    return ranges;
}

std::vector<Normal> planeNormals(const std::vector<int>& polygons) {
    std::vector<Normal> normals(polygons.size());
    for (size_t i = 0; i < polygons.size(); ++i) {
        double plane[4] = {0, 0, 0, 0};
        ZELMAR_polygon_get_plane(polygons[i], plane);
        normals[i] = {plane[0], plane[1], plane[2]};
    }
    return normals;
}

} // namespace

std::vector<std::vector<WeldSetEntry>> BuildWeldSets(const std::vector<int>& polygons) {
    std::vector<Gathered> all = gather(polygons);
    std::vector<std::vector<WeldSetEntry>> sets;
    for (const auto& [b, e] : groupByLocation(all)) {
        std::vector<WeldSetEntry>& set = sets.emplace_back();
        for (size_t k = b; k < e; ++k)
            set.push_back({all[k].point, all[k].polygon});
    }
    return sets;
}

int SmoothLight(const std::vector<int>& polygons, double thresholdDegrees) {
    if (polygons.empty()) return 0;
    const double threshold = std::clamp(std::isnan(thresholdDegrees) ? 0.0 : thresholdDegrees, 0.0, 180.0);
    const std::vector<Normal> normals = planeNormals(polygons);
    std::vector<Gathered> all = gather(polygons);
    int written = 0;
    for (const auto& [b, e] : groupByLocation(all)) {
        for (size_t p = b; p < e; ++p) {
            const Normal& own = normals[size_t(all[p].slot)];
            if (degenerate(own)) continue;
            Normal sum = own;
            // Each neighbour is compared with P's own normal, never with the running sum: the result for
            // a point depends only on the polygons at its spot.
            for (size_t q = b; q < e; ++q) {
                if (q == p) continue;
                const Normal& other = normals[size_t(all[q].slot)];
                if (degenerate(other) || angleDegrees(own, other) > threshold) continue;
                for (int k = 0; k < 3; ++k)
                    sum[size_t(k)] += other[size_t(k)];
            }
            const double len = std::sqrt(sum[0] * sum[0] + sum[1] * sum[1] + sum[2] * sum[2]);
            // Opposite faces at one spot can cancel: the point keeps its polygon's normal.
            const Normal unit = len > 0 && std::isfinite(len) ? Normal{sum[0] / len, sum[1] / len, sum[2] / len} : own;
            ZELMAR_point_set_normal(all[p].point, unit.data());
            ++written;
        }
    }
    return written;
}

int SmoothClearAll(const std::vector<int>& polygons) {
    int written = 0;
    for (int pol : polygons) {
        double plane[4] = {0, 0, 0, 0};
        ZELMAR_polygon_get_plane(pol, plane);
        for (int pt = ZELMAR_polygon_get_first_point(pol); pt != 0; pt = ZELMAR_point_get_next_point(pt)) {
            ZELMAR_point_set_normal(pt, plane);
            ++written;
        }
    }
    return written;
}

double StepSmoothThreshold(double threshold, int updownValue, bool shift, bool alt) {
    if (updownValue == 0) return threshold;
    double step = updownValue;
    if (shift)
        step *= 2;
    else if (alt)
        step /= 2;
    return std::clamp(threshold + step, 0.0, 180.0);
}

} // namespace vexil
