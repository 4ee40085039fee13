#include "Weld.h"

#include <cmath>
#include <cstdint>
#include <unordered_map>
#include <unordered_set>
#include <zelmar/zelmar.h>

namespace vexil {

namespace {

struct CellKey {
    long long x, y, z;
    bool operator==(const CellKey&) const = default;
};
struct CellHash {
    size_t operator()(const CellKey& k) const noexcept {
        uint64_t h = static_cast<uint64_t>(k.x) * 0x9E3779B97F4A7C15ull;
        h ^= static_cast<uint64_t>(k.y) + 0x7F4A7C159E3779B9ull + (h << 6) + (h >> 2);
        h ^= static_cast<uint64_t>(k.z) + 0x94D049BB133111EBull + (h << 6) + (h >> 2);
        return static_cast<size_t>(h);
    }
};

} // namespace

bool WeldCell(double value, double threshold, long long& cell) {
    const double q = value / threshold;
    if (!std::isfinite(q)) return false;
    const double r = std::nearbyint(q); // the default rounding mode: half to even
    if (r > 2147483647.0 || r < -2147483648.0) return false;
    cell = static_cast<long long>(r);
    return true;
}

double RoundTo6(double v) {
    const double s = v * 1e6;
    if (!std::isfinite(s) || std::abs(s) > 4.5e15) return v; // no decimals left to round
    return std::nearbyint(s) / 1e6;
}

WeldResult WeldPoints(const std::vector<int>& points, double threshold, int* weldedCells) {
    if (weldedCells) *weldedCells = 0;
    const double th = std::abs(threshold);
    if (!(th > 0) || !std::isfinite(th)) return WeldResult::ThresholdTooSmall;
    struct Cell {
        std::vector<int> points;
        double sum[3] = {0, 0, 0};
    };
    std::vector<Cell> cells; // in the order the cells were first met
    std::unordered_map<CellKey, size_t, CellHash> index;
    std::unordered_set<int> seen;
    index.reserve(points.size());
    seen.reserve(points.size());
    for (int p : points) {
        if (p == 0 || !seen.insert(p).second || ZELMAR_point_is_point(p) != 1) continue;
        double xyz[3] = {0, 0, 0};
        ZELMAR_point_get_xyz(p, xyz);
        CellKey k{};
        if (!WeldCell(xyz[0], th, k.x) || !WeldCell(xyz[1], th, k.y) || !WeldCell(xyz[2], th, k.z))
            return WeldResult::ThresholdTooSmall;
        auto [it, fresh] = index.emplace(k, cells.size());
        if (fresh) cells.emplace_back();
        Cell& c = cells[it->second];
        c.points.push_back(p);
        for (int i = 0; i < 3; ++i)
            c.sum[i] += xyz[i];
    }
    int welded = 0;
    for (const Cell& c : cells)
        if (c.points.size() >= 2) ++welded;
    if (welded == 0) return WeldResult::NoPointsWithin;
    for (const Cell& c : cells) {
        if (c.points.size() < 2) continue;
        const double f = 1.0 / static_cast<double>(c.points.size());
        const double mean[3] = {RoundTo6(c.sum[0] * f), RoundTo6(c.sum[1] * f), RoundTo6(c.sum[2] * f)};
        for (int p : c.points)
            ZELMAR_point_set_xyz(p, mean);
    }
    if (weldedCells) *weldedCells = welded;
    return WeldResult::Welded;
}

} // namespace vexil
