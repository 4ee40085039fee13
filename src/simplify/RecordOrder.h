// The records' own order (SurfSimpliOrder.cpp, SurfSimpliExtract.cpp): points along a Morton
// curve through their positions, edges by their lower end, triangles by their lowest corner.
#pragma once
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <memory>
#include <vector>

namespace simplify::order {

// Spreads the low 21 bits of v to every third bit.
inline std::uint64_t spread3(std::uint64_t v) {
    struct Table {
        std::uint64_t of[256];
        constexpr Table() : of{} {
            for (unsigned i = 0; i < 256; ++i)
                for (unsigned b = 0; b < 8; ++b)
                    if (i >> b & 1u) of[i] |= std::uint64_t{1} << (3 * b);
        }
    };
    static constexpr Table t;
    return t.of[v & 0xff] | t.of[(v >> 8) & 0xff] << 24 | t.of[(v >> 16) & 0x1f] << 48;
}

// Records 1 .. records - 1 grouped by a key from 0 to keys - 1, in their present order within a
// key: answers the old record number of each new one (slot 0 stays 0).
// With `inverse`, also the new record of each old one.
template <class Key>
std::vector<std::int32_t> countingOrder(std::size_t records, std::size_t keys, Key key, std::vector<std::int32_t>* inverse = nullptr) {
    std::vector<std::int32_t> start(keys + 1, 0);
    const std::unique_ptr<std::int32_t[]> keyOf = std::make_unique_for_overwrite<std::int32_t[]>(records);
    for (std::size_t i = 1; i < records; ++i) {
        const auto k = static_cast<std::size_t>(key(i));
        keyOf[i] = static_cast<std::int32_t>(k);
        ++start[k + 1];
    }
    for (std::size_t k = 0; k < keys; ++k) start[k + 1] += start[k];
    std::vector<std::int32_t> order(records, 0);
    if (inverse) inverse->assign(records, 0);
    for (std::size_t i = 1; i < records; ++i) {
        const std::int32_t at = 1 + start[static_cast<std::size_t>(keyOf[i])]++;
        order[static_cast<std::size_t>(at)] = static_cast<std::int32_t>(i);
        if (inverse) (*inverse)[i] = at;
    }
    return order;
}

inline std::vector<std::int32_t> inverse(const std::vector<std::int32_t>& order) {
    std::vector<std::int32_t> of(order.size(), 0);
    for (std::size_t i = 0; i < order.size(); ++i) of[static_cast<std::size_t>(order[i])] = static_cast<std::int32_t>(i);
    return of;
}

// Points 1 .. points - 1 (xyz(p) their positions) along a Morton curve through the box of the
// finite ones, ties in index order (as sorting the pairs (key, index) gives them): answers the
// old point of each new one (slot 0 stays 0). The keys are sorted a byte at a time, stably.
template <class Xyz> std::vector<std::int32_t> mortonOrder(std::size_t points, Xyz xyz) {
    double lo[3] = {0, 0, 0}, hi[3] = {0, 0, 0};
    bool any = false;
    for (std::size_t p = 1; p < points; ++p) {
        const double* c = xyz(p);
        if (!std::isfinite(c[0]) || !std::isfinite(c[1]) || !std::isfinite(c[2])) continue;
        for (int k = 0; k < 3; ++k) {
            lo[k] = any ? std::min(lo[k], c[k]) : c[k];
            hi[k] = any ? std::max(hi[k], c[k]) : c[k];
        }
        any = true;
    }
    struct Keyed {
        std::uint64_t key;
        std::int32_t point;
    };
    const std::size_t n = points > 0 ? points - 1 : 0;
    std::unique_ptr<Keyed[]> a = std::make_unique_for_overwrite<Keyed[]>(n), b = std::make_unique_for_overwrite<Keyed[]>(n);
    std::uint64_t all = 0, common = ~std::uint64_t{0};
    for (std::size_t p = 1; p < points; ++p) {
        const double* c = xyz(p);
        std::uint64_t key = 0;
        for (int k = 0; k < 3; ++k) {
            const double extent = hi[k] - lo[k];
            double f = extent > 0 && std::isfinite(c[k]) ? (c[k] - lo[k]) / extent : 0.0;
            f = std::clamp(f, 0.0, 1.0);
            key |= spread3(static_cast<std::uint64_t>(f * 2097151.0)) << k;
        }
        a[p - 1] = Keyed{key, static_cast<std::int32_t>(p)};
        all |= key;
        common &= key;
    }
    const std::uint64_t varies = n > 0 ? all & ~common : 0; // bits not equal in every key
    // 11 bits at a time, every digit's counts in one pass; a digit every key shares is passed over
    constexpr int kBits = 11, kDigits = 6;
    constexpr std::uint64_t kMask = (1u << kBits) - 1;
    std::vector<std::uint32_t> counts(static_cast<std::size_t>(kDigits) << kBits, 0);
    for (std::size_t i = 0; i < n; ++i)
        for (int d = 0; d < kDigits; ++d) ++counts[(static_cast<std::size_t>(d) << kBits) + ((a[i].key >> (d * kBits)) & kMask)];
    for (int d = 0; d < kDigits; ++d) {
        const int shift = d * kBits;
        if (((varies >> shift) & kMask) == 0) continue; // order unchanged
        std::uint32_t* start = counts.data() + (static_cast<std::size_t>(d) << kBits);
        std::uint32_t sum = 0;
        for (std::size_t v = 0; v <= kMask; ++v) {
            const std::uint32_t c = start[v];
            start[v] = sum;
            sum += c;
        }
        for (std::size_t i = 0; i < n; ++i) b[start[(a[i].key >> shift) & kMask]++] = a[i];
        a.swap(b);
    }
    std::vector<std::int32_t> order(points, 0);
    for (std::size_t i = 0; i < n; ++i) order[i + 1] = a[i].point;
    return order;
}

} // namespace simplify::order
