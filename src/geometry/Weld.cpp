#include "Weld.h"

#include "base/FlatHashMap.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <zelmar/zelmar.h>

namespace vexil {

namespace {

// WeldCell keeps every cell number within 32 bits: small keys, twice as many to a cache line.
struct CellKey {
    int32_t x, y, z;
    bool operator==(const CellKey&) const = default;
};
struct CellHash {
    uint64_t operator()(const CellKey& k) const noexcept {
        uint64_t h = static_cast<uint64_t>(k.x) * 0x9E3779B97F4A7C15ull;
        h ^= static_cast<uint64_t>(k.y) + 0x7F4A7C159E3779B9ull + (h << 6) + (h >> 2);
        h ^= static_cast<uint64_t>(k.z) + 0x94D049BB133111EBull + (h << 6) + (h >> 2);
        return h ^ (h >> 29);
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
    // The live points, each once, in the order given; then their locations in one read.
    std::vector<int> live;
    live.reserve(points.size());
    int top = 0;
    for (int p : points)
        top = std::max(top, p);
    if (size_t(top) <= 64 * points.size() + 65536) {
        // Handles are dense: one bit per handle up to the largest, read in the order they come.
        std::vector<uint64_t> seen(size_t(top) / 64 + 1, 0);
        for (int p : points) {
            if (p <= 0) continue; // no point has such a handle
            uint64_t& w = seen[size_t(p) >> 6];
            const uint64_t bit = uint64_t(1) << (p & 63);
            if (w & bit) continue;
            w |= bit;
            if (ZELMAR_point_is_point(p) == 1) live.push_back(p);
        }
    } else {
        FlatHashSet<int> seen(points.size());
        for (int p : points)
            if (p != 0 && seen.insert(p) && ZELMAR_point_is_point(p) == 1) live.push_back(p);
    }
    const int n = static_cast<int>(live.size());
    std::vector<double> xyz(3 * live.size(), 0.0);
    if (n > 0) ZELMAR_points_get_values(live.data(), n, 1, xyz.data());
    // Cells in the order they were first met, each with its count and sum; cellOf[i]: the cell of point i.
    struct Cell {
        int count = 0;
        double sum[3] = {0, 0, 0};
    };
    std::vector<Cell> cells;
    std::vector<int> cellOf(live.size());
    // Room for a quarter as many cells as points (corners shared by four): it grows when fewer weld.
    FlatHashMap<CellKey, int, CellHash> index(live.size() / 4 + 16);
    for (int i = 0; i < n; ++i) {
        const double* p = &xyz[3 * size_t(i)];
        long long cx = 0, cy = 0, cz = 0;
        if (!WeldCell(p[0], th, cx) || !WeldCell(p[1], th, cy) || !WeldCell(p[2], th, cz))
            return WeldResult::ThresholdTooSmall;
        const CellKey k{static_cast<int32_t>(cx), static_cast<int32_t>(cy), static_cast<int32_t>(cz)};
        auto [c, fresh] = index.insert(k, static_cast<int>(cells.size()));
        if (fresh) cells.emplace_back();
        Cell& cell = cells[size_t(*c)];
        ++cell.count;
        for (int a = 0; a < 3; ++a)
            cell.sum[a] += p[a];
        cellOf[size_t(i)] = *c;
    }
    int welded = 0;
    for (const Cell& c : cells)
        if (c.count >= 2) ++welded;
    if (welded == 0) return WeldResult::NoPointsWithin;
    // The points of each welding cell as one run, the runs in the order of their cells, each point in order.
    std::vector<int> start(cells.size() + 1, 0);
    for (int i = 0; i < n; ++i)
        if (cells[size_t(cellOf[size_t(i)])].count >= 2) ++start[size_t(cellOf[size_t(i)]) + 1];
    for (size_t c = 0; c < cells.size(); ++c)
        start[c + 1] += start[c];
    std::vector<int> runPoints(size_t(start.back())), runEnds, fill(start.begin(), start.end() - 1);
    for (int i = 0; i < n; ++i) {
        const int c = cellOf[size_t(i)];
        if (cells[size_t(c)].count >= 2) runPoints[size_t(fill[size_t(c)]++)] = live[size_t(i)];
    }
    std::vector<double> means;
    runEnds.reserve(size_t(welded));
    means.reserve(3 * size_t(welded));
    for (size_t c = 0; c < cells.size(); ++c) {
        if (cells[c].count < 2) continue;
        const double f = 1.0 / static_cast<double>(cells[c].count);
        for (int a = 0; a < 3; ++a)
            means.push_back(RoundTo6(cells[c].sum[a] * f));
        runEnds.push_back(start[c + 1]);
    }
    ZELMAR_point_runs_set_xyz(runPoints.data(), runEnds.data(), welded, means.data());
    if (weldedCells) *weldedCells = welded;
    return WeldResult::Welded;
}

} // namespace vexil
