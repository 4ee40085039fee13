// Hash maps and sets kept in one flat array (open addressing, linear probing, erase by shifting back the
// entries that follow), for the tables of the editing tools that hold one entry per point of a large group:
// no allocation per entry, and a lookup touches one or two cache lines. `Hash` answers 64 bits; the index is
// taken from the top bits of their product with a large odd constant, so sequential handles spread well.
#pragma once
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace vexil {

struct IntHash {
    uint64_t operator()(int64_t v) const noexcept { return static_cast<uint64_t>(v); }
};

template <class K, class V, class Hash = IntHash> class FlatHashMap {
  public:
    FlatHashMap() = default;
    explicit FlatHashMap(size_t expected) { reserve(expected); }

    size_t size() const { return m_size; }
    bool empty() const { return m_size == 0; }
    // Room for n entries without growing.
    void reserve(size_t n) {
        size_t cap = 16;
        while (cap * 7 / 10 < n)
            cap *= 2;
        if (cap > m_slots.size()) rehash(cap);
    }
    // Empties the map; its room stays.
    void clear() {
        if (m_size == 0) return;
        std::fill(m_used.begin(), m_used.end(), uint8_t(0));
        m_size = 0;
    }

    V* find(const K& k) {
        if (m_size == 0) return nullptr;
        for (size_t i = home(k);; i = (i + 1) & m_mask) {
            if (!m_used[i]) return nullptr;
            if (m_slots[i].first == k) return &m_slots[i].second;
        }
    }
    const V* find(const K& k) const { return const_cast<FlatHashMap*>(this)->find(k); }
    bool contains(const K& k) const { return find(k) != nullptr; }

    // The entry of k, made with `v` when there was none; second: whether it was made.
    std::pair<V*, bool> insert(const K& k, const V& v) {
        if ((m_size + 1) * 10 > m_slots.size() * 7) rehash(m_slots.empty() ? 16 : m_slots.size() * 2);
        size_t i = home(k);
        for (; m_used[i]; i = (i + 1) & m_mask)
            if (m_slots[i].first == k) return {&m_slots[i].second, false};
        m_used[i] = 1;
        m_slots[i].first = k;
        m_slots[i].second = v;
        ++m_size;
        return {&m_slots[i].second, true};
    }
    V& operator[](const K& k) { return *insert(k, V{}).first; }

    bool erase(const K& k) {
        if (m_size == 0) return false;
        size_t i = home(k);
        for (;; i = (i + 1) & m_mask) {
            if (!m_used[i]) return false;
            if (m_slots[i].first == k) break;
        }
        // Entries after the hole that could sit in it move back, so that no probe chain is broken.
        for (size_t j = (i + 1) & m_mask; m_used[j]; j = (j + 1) & m_mask) {
            const size_t h = home(m_slots[j].first);
            if (((j - h) & m_mask) >= ((j - i) & m_mask)) {
                m_slots[i] = std::move(m_slots[j]);
                i = j;
            }
        }
        m_used[i] = 0;
        --m_size;
        return true;
    }

    // Every entry, in no particular order.
    template <class F> void forEach(F&& f) const {
        for (size_t i = 0; i < m_slots.size(); ++i)
            if (m_used[i]) f(m_slots[i].first, m_slots[i].second);
    }

  private:
    size_t home(const K& k) const {
        return static_cast<size_t>((Hash()(k) * 0x9E3779B97F4A7C15ull) >> m_shift) & m_mask;
    }
    void rehash(size_t cap) {
        std::vector<std::pair<K, V>> old(cap);
        std::vector<uint8_t> oldUsed(cap, 0);
        std::swap(old, m_slots);
        std::swap(oldUsed, m_used);
        m_mask = cap - 1;
        m_shift = 64;
        for (size_t c = cap; c > 1; c >>= 1)
            --m_shift;
        m_size = 0;
        for (size_t i = 0; i < old.size(); ++i)
            if (oldUsed[i]) insert(old[i].first, old[i].second);
    }

    std::vector<std::pair<K, V>> m_slots;
    std::vector<uint8_t> m_used;
    size_t m_size = 0, m_mask = 0;
    unsigned m_shift = 64;
};

template <class K, class Hash = IntHash> class FlatHashSet {
  public:
    FlatHashSet() = default;
    explicit FlatHashSet(size_t expected) : m_map(expected) {}
    size_t size() const { return m_map.size(); }
    void reserve(size_t n) { m_map.reserve(n); }
    void clear() { m_map.clear(); }
    // True when k was not in the set yet.
    bool insert(const K& k) { return m_map.insert(k, 0).second; }
    bool contains(const K& k) const { return m_map.contains(k); }
    bool erase(const K& k) { return m_map.erase(k); }

  private:
    FlatHashMap<K, uint8_t, Hash> m_map;
};

} // namespace vexil
