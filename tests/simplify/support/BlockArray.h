// Storage for the in-memory engine: elements in fixed blocks that never move, so growing copies
// nothing (as libzelmar3's pools, which never move a polygon to make room for more), and a
// polygon's ring of point handles held inline up to a quad.
#pragma once
#include <cstddef>
#include <memory>
#include <stdexcept>
#include <vector>

namespace simplify_test {

template <class T> class BlockArray {
public:
    std::size_t size() const { return size_; }
    T& operator[](std::size_t i) { return blocks_[i >> kShift][i & kMask]; }
    const T& operator[](std::size_t i) const { return blocks_[i >> kShift][i & kMask]; }
    T& at(std::size_t i) {
        if (i >= size_) throw std::out_of_range("BlockArray");
        return (*this)[i];
    }
    const T& at(std::size_t i) const {
        if (i >= size_) throw std::out_of_range("BlockArray");
        return (*this)[i];
    }
    T& push_back(const T& v) { return (emplace_back() = v); }
    T& emplace_back() {
        if ((size_ >> kShift) == blocks_.size()) blocks_.push_back(std::make_unique<T[]>(kBlock));
        return (*this)[size_++];
    }

private:
    static constexpr std::size_t kShift = 13, kBlock = std::size_t(1) << kShift, kMask = kBlock - 1;
    std::vector<std::unique_ptr<T[]>> blocks_;
    std::size_t size_ = 0;
};

// Point handles of a ring: inline up to four, on the heap beyond.
class RingIds {
public:
    RingIds() = default;
    RingIds(const RingIds& o) { *this = o; }
    RingIds& operator=(const RingIds& o) {
        if (this == &o) return *this;
        n_ = 0;
        spill_.clear();
        for (int h : o) push_back(h);
        return *this;
    }
    std::size_t size() const { return n_; }
    bool empty() const { return n_ == 0; }
    const int* begin() const { return data(); }
    const int* end() const { return data() + n_; }
    int operator[](std::size_t i) const { return data()[i]; }
    int front() const { return data()[0]; }
    void push_back(int h) {
        if (n_ < kInline) {
            inline_[n_++] = h;
            return;
        }
        if (n_ == kInline) spill_.assign(inline_, inline_ + kInline);
        spill_.push_back(h);
        ++n_;
    }

private:
    static constexpr std::size_t kInline = 4;
    const int* data() const { return n_ <= kInline ? inline_ : spill_.data(); }
    std::size_t n_ = 0;
    int inline_[kInline] = {0, 0, 0, 0};
    std::vector<int> spill_;
};

} // namespace simplify_test
