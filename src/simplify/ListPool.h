// Many short growable lists of int32 in one array: the association lists of the simplification
// mesh (a point's triangles and edges, an edge's triangles) without one heap block per list.
// A list that outgrows its room moves to the end of the array with twice the room; the room it
// left is reclaimed when the dead room exceeds the live one. Copying the whole pool (the copy
// for restarting) is two flat copies.
//
// Pointers into the pool are invalidated by any push that grows a list: loops that push while
// reading a list of the same pool read by index.
#pragma once
#include <algorithm>
#include <cstdint>
#include <vector>

#include "simplify/BigArray.h"

namespace simplify {

class ListPool {
public:
    struct Head {
        std::uint32_t off = 0, size = 0, cap = 0;
    };

    void clear() {
        heads_.clear();
        data_.clear();
        dead_ = 0;
    }
    void reserve(std::size_t lists, std::size_t entries) {
        heads_.reserve(lists);
        data_.reserve(entries);
    }
    // A new empty list at the end; answers its index.
    std::size_t addList() {
        heads_.push_back(Head{});
        return heads_.size() - 1;
    }
    void resizeLists(std::size_t n) { heads_.resize(n); }
    // The room a list gets when its first entry comes (then twice as much each time it is full).
    void setFirstRoom(std::uint32_t n) { firstRoom_ = std::max<std::uint32_t>(1, n); }
    std::size_t lists() const { return heads_.size(); }

    std::uint32_t size(std::size_t list) const { return heads_[list].size; }
    const std::int32_t* begin(std::size_t list) const { return data_.data() + heads_[list].off; }
    const std::int32_t* end(std::size_t list) const { return begin(list) + heads_[list].size; }
    std::int32_t* begin(std::size_t list) { return data_.data() + heads_[list].off; }
    std::int32_t at(std::size_t list, std::size_t i) const { return data_[heads_[list].off + i]; }
    std::int32_t& at(std::size_t list, std::size_t i) { return data_[heads_[list].off + i]; }
    // Ask for a list's head, or (reading the head) its first entries, ahead of their use.
    void prefetchHead(std::size_t list) const { __builtin_prefetch(&heads_[list]); }
    void prefetchEntries(std::size_t list) const { __builtin_prefetch(data_.data() + heads_[list].off); }
    std::vector<std::int32_t> copy(std::size_t list) const { return {begin(list), end(list)}; }

    void push(std::size_t list, std::int32_t value) {
        if (heads_[list].size == heads_[list].cap) grow(list);
        Head& h = heads_[list];
        data_[h.off + h.size++] = value;
    }
    bool contains(std::size_t list, std::int32_t value) const {
        return std::find(begin(list), end(list), value) != end(list);
    }
    void addIfAbsent(std::size_t list, std::int32_t value) {
        if (!contains(list, value)) push(list, value);
    }
    // Keeps the first n entries.
    void truncate(std::size_t list, std::uint32_t n) { heads_[list].size = std::min(heads_[list].size, n); }
    // Keeps the entries for which keep(value) is true, in their order.
    template <class Keep> void filter(std::size_t list, Keep keep) {
        std::int32_t* p = begin(list);
        std::uint32_t w = 0;
        const std::uint32_t n = heads_[list].size;
        for (std::uint32_t r = 0; r < n; ++r)
            if (keep(p[r])) p[w++] = p[r];
        heads_[list].size = w;
    }
    void assign(std::size_t list, const std::vector<std::int32_t>& values) {
        heads_[list].size = 0;
        for (const std::int32_t v : values) push(list, v);
    }

    // Moves every list together, each with exactly its entries as room.
    void compact() {
        BigVector<std::int32_t> packed;
        std::size_t total = 0;
        for (const Head& h : heads_) total += h.size;
        packed.reserve(total);
        for (Head& h : heads_) {
            const std::uint32_t off = static_cast<std::uint32_t>(packed.size());
            packed.insert(packed.end(), data_.begin() + h.off, data_.begin() + h.off + h.size);
            h.off = off;
            h.cap = h.size;
        }
        data_.swap(packed);
        dead_ = 0;
    }

    // A packed pool whose list i holds the entries of this pool's list order[i], each mapped by f
    // (renumbering records and the indices in their lists at once).
    // Each list gets `slack` entries of room beyond its size.
    template <class F> ListPool reordered(const std::vector<std::int32_t>& order, F f, std::uint32_t slack = 0) const {
        ListPool r;
        std::size_t total = 0;
        for (const std::int32_t i : order) total += heads_[static_cast<std::size_t>(i)].size + slack;
        r.heads_.resize(order.size());
        r.data_.resize(total);
        std::uint32_t off = 0;
        for (std::size_t i = 0; i < order.size(); ++i) {
            const Head& h = heads_[static_cast<std::size_t>(order[i])];
            r.heads_[i] = Head{off, h.size, h.size + slack};
            const std::int32_t* from = data_.data() + h.off;
            std::int32_t* to = r.data_.data() + off;
            for (std::uint32_t k = 0; k < h.size; ++k) to[k] = f(from[k]);
            off += h.size + slack;
        }
        return r;
    }

    // Empties the pool and lays out `lists` lists one after the other as reordered does, list i
    // with room for size(i) + slack entries; fill() then writes them without moving any.
    template <class Size> void shape(std::size_t lists, Size size, std::uint32_t slack) {
        BigVector<Head>(lists).swap(heads_);
        std::uint32_t off = 0;
        for (std::size_t i = 0; i < lists; ++i) {
            const std::uint32_t n = size(i);
            heads_[i] = Head{off, 0, n + slack};
            off += n + slack;
        }
        BigVector<std::int32_t>(off).swap(data_);
        dead_ = 0;
    }
    // Appends to a list laid out by shape (its room is never exceeded).
    void fill(std::size_t list, std::int32_t value) {
        Head& h = heads_[list];
        data_[h.off + h.size++] = value;
    }

    std::size_t memoryBytes() const {
        return heads_.capacity() * sizeof(Head) + data_.capacity() * sizeof(std::int32_t);
    }

private:
    void grow(std::size_t list) {
        if (dead_ > 4096 && dead_ > data_.size() / 2) compact();
        Head& h = heads_[list];
        const std::uint32_t cap = std::max<std::uint32_t>(firstRoom_, h.cap * 2);
        const std::size_t off = data_.size();
        data_.resize(off + cap);
        std::copy(data_.begin() + h.off, data_.begin() + h.off + h.size, data_.begin() + static_cast<std::ptrdiff_t>(off));
        dead_ += h.cap;
        h.off = static_cast<std::uint32_t>(off);
        h.cap = cap;
    }

    BigVector<Head> heads_;
    BigVector<std::int32_t> data_;
    std::size_t dead_ = 0;
    std::uint32_t firstRoom_ = 4;
};

} // namespace simplify
