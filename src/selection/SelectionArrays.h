// The handle arrays of the selection (SelPts, SelPols, SelPtsPols, SelPolsWeldedPts): 1-based, slot 0
// never used, a fixed capacity, duplicates allowed and order kept. Beside an array that is asked "is it
// selected?" an open-addressing table counts each handle's occurrences, so that adding to or inverting a
// selection of a quarter of a million points stays linear.
#pragma once
#include <cstddef>
#include <cstdint>
#include <vector>

namespace vexil {

// Handle -> count, open addressing with linear probing; handles are never 0, which marks an empty slot.
class OccurrenceTable {
  public:
    int Get(int handle) const;
    // Adds delta (which may be negative) and answers the new count; a count of 0 leaves the handle out.
    int Add(int handle, int delta);
    void Clear();
    std::size_t Size() const { return m_used; }

  private:
    struct Slot {
        int handle = 0;
        int count = 0;
    };
    std::size_t find(int handle) const;
    void grow();
    std::vector<Slot> m_slots;
    std::size_t m_used = 0, m_filled = 0; // live handles; slots ever taken (tombstones count 0)
};

class HandleArray {
  public:
    // capacity: the size of the fixed array including slot 0 (1,048,576 holds 1,048,575 handles).
    // counted: keep the occurrence table (arrays that are only read in order do without).
    explicit HandleArray(int capacity, bool counted = true) : m_capacity(capacity), m_counted(counted) {
        m_items.push_back(0);
    }

    int Count() const { return static_cast<int>(m_items.size()) - 1; }
    int Capacity() const { return m_capacity; }
    // Slot i (1..Count); 0 outside.
    int At(int i) const { return i >= 1 && i <= Count() ? m_items[static_cast<std::size_t>(i)] : 0; }
    int operator[](int i) const { return At(i); }
    // Appends at Count + 1; past the capacity it raises error 9 (subscript out of range) and keeps
    // what was there.
    void Append(int handle);
    void Clear();
    void Reserve(int n) { m_items.reserve(static_cast<std::size_t>(n) + 1); }
    // Replaces the contents by count handles read from data[1..count] (1-based source).
    void Assign1(const std::vector<int>& data, int count);
    // Replaces the contents by the handles of v (0-based source).
    void Assign(const std::vector<int>& v);
    bool Contains(int handle) const { return Occurrences(handle) > 0; }
    // Occurrences of the handle (a linear count for an array without the table).
    int Occurrences(int handle) const;
    // Removes the first occurrence and shifts the rest down; false when absent.
    bool RemoveFirst(int handle);
    // The same as calling RemoveFirst for each handle of hits in turn, in one pass.
    void RemoveFirstOfEach(const std::vector<int>& hits);
    // Slots 0..Count (slot 0 is 0): the layout the actions copy.
    const std::vector<int>& Slots() const { return m_items; }
    // Slots 1..Count as a plain list.
    std::vector<int> ToVector() const { return {m_items.begin() + 1, m_items.end()}; }

  private:
    int m_capacity;
    bool m_counted;
    std::vector<int> m_items; // slot 0 included
    OccurrenceTable m_counts;
};

} // namespace vexil
