// The allocator of the model's large arrays: alignment for huge pages, contents kept through
// growth, blocks reused while a model lives and given back when the last one goes.
#include "simplify/BigArray.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <numeric>
#include <vector>

namespace {

using simplify::BigVector;
using simplify::bigarray::Cache;
using simplify::bigarray::CacheUser;

bool onHugePage(const void* p) { return reinterpret_cast<std::uintptr_t>(p) % (std::size_t(2) << 20) == 0; }

TEST(BigArray, LargeBlocksAreAlignedAndKeepTheirContentsThroughGrowth) {
    BigVector<std::int32_t> v;
    for (std::int32_t i = 0; i < 3'000'000; ++i) v.push_back(i); // grows through small and large blocks
    EXPECT_TRUE(onHugePage(v.data()));
    std::int64_t sum = std::accumulate(v.begin(), v.end(), std::int64_t{0});
    EXPECT_EQ(sum, std::int64_t{3'000'000} * 2'999'999 / 2);
    BigVector<std::int32_t> copy = v;
    EXPECT_TRUE(onHugePage(copy.data()));
    EXPECT_EQ(copy, v);

    BigVector<double> small(100);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(small.data()) % alignof(double), 0u);
    struct alignas(64) Line {
        double x[8];
    };
    BigVector<Line> lines(10);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(lines.data()) % 64, 0u); // over-aligned records from operator new too
}

TEST(BigArray, LetGoBlocksAreReusedWhileAModelLivesAndGivenBackAfter) {
    const std::size_t bytes = std::size_t(5) << 20;
    {
        CacheUser model;
        BigVector<char> a(bytes, 'x');
        const char* at = a.data();
        BigVector<char>().swap(a); // let go: kept
        EXPECT_EQ(Cache::instance().keptBytes(), bytes);
        BigVector<char> b(bytes); // same size: the kept block
        EXPECT_EQ(b.data(), at);
        EXPECT_EQ(Cache::instance().keptBytes(), 0u);

        // at most 64 MiB kept, the oldest given back first
        std::vector<BigVector<char>> many;
        for (int i = 0; i < 20; ++i) many.emplace_back(std::size_t(8) << 20);
        const char* front = many.front().data();
        while (!many.empty()) many.pop_back(); // the front one is let go last: the newest kept
        EXPECT_EQ(Cache::instance().keptBytes(), std::size_t(64) << 20); // eight of twenty
        BigVector<char> again(std::size_t(8) << 20);
        EXPECT_EQ(again.data(), front); // the newest first; the oldest twelve went back
        Cache::instance().giveBack(); // as a model does once its copy for restarting is made
        EXPECT_EQ(Cache::instance().keptBytes(), 0u);
    }
    EXPECT_EQ(Cache::instance().keptBytes(), 0u); // the last model is gone
    BigVector<char> d(bytes); // without a model nothing is kept
    BigVector<char>().swap(d);
    EXPECT_EQ(Cache::instance().keptBytes(), 0u);
}

} // namespace
