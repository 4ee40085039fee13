// A small open-addressing hash index from a key to a positive int32 (record index), used by
// SurfSimpli to find points by exact position and edges by their pair of ends. Insert keeps the
// first value of a key, as the documented scans find the first record.
#pragma once
#include <cstdint>
#include <vector>

#include "simplify/BigArray.h"

namespace simplify {

template <class Key, class Hash>
class FlatIndex {
public:
    void clear() {
        slots_.clear();
        used_ = 0;
    }
    void release() {
        BigVector<Slot>().swap(slots_);
        used_ = 0;
    }
    void reserve(std::size_t n) {
        std::size_t cap = 16;
        while (cap < n * 2) cap *= 2;
        if (cap > slots_.size()) rehash(cap);
    }
    std::size_t size() const { return used_; }
    // 0 when absent.
    std::int32_t find(const Key& k) const {
        if (slots_.empty()) return 0;
        const std::size_t mask = slots_.size() - 1;
        for (std::size_t i = Hash{}(k) & mask;; i = (i + 1) & mask) {
            const Slot& s = slots_[i];
            if (s.value == 0) return 0;
            if (s.key == k) return s.value;
        }
    }
    // Asks for the slot where a search for k starts (no effect on the contents).
    void prefetch(const Key& k) const {
        if (slots_.empty()) return;
        const Slot* s = &slots_[Hash{}(k) & (slots_.size() - 1)];
        __builtin_prefetch(s);
        __builtin_prefetch(reinterpret_cast<const char*>(s + 1) - 1);
    }
    // Inserts unless the key is present (then the first value stays).
    void emplace(const Key& k, std::int32_t value) {
        if ((used_ + 1) * 2 > slots_.size()) rehash(slots_.empty() ? 16 : slots_.size() * 2);
        const std::size_t mask = slots_.size() - 1;
        for (std::size_t i = Hash{}(k) & mask;; i = (i + 1) & mask) {
            Slot& s = slots_[i];
            if (s.value == 0) {
                s.key = k;
                s.value = value;
                ++used_;
                return;
            }
            if (s.key == k) return;
        }
    }
    std::size_t memoryBytes() const { return slots_.capacity() * sizeof(Slot); }

private:
    struct Slot {
        Key key{};
        std::int32_t value = 0;
    };
    void rehash(std::size_t cap) {
        BigVector<Slot> old;
        old.swap(slots_);
        slots_.assign(cap, Slot{});
        used_ = 0;
        for (const Slot& s : old)
            if (s.value != 0) emplace(s.key, s.value);
    }
    BigVector<Slot> slots_;
    std::size_t used_ = 0;
};

} // namespace simplify
