// The handle arrays of the selection (SelPts, SelPols, SelPtsPols, SelPolsWeldedPts): 1-based, slot 0
// never used, a fixed capacity, duplicates allowed and order kept. Beside the array a count of each
// handle's occurrences answers "is it selected?" in constant time, so that adding to or inverting a
// selection of a quarter of a million points stays linear.
#pragma once
#include <cstddef>
#include <unordered_map>
#include <vector>

namespace vexil {

class HandleArray {
  public:
    // capacity: the size of the fixed array including slot 0 (1,048,576 holds 1,048,575 handles).
    explicit HandleArray(int capacity) : m_capacity(capacity) { m_items.push_back(0); }

    int Count() const { return static_cast<int>(m_items.size()) - 1; }
    int Capacity() const { return m_capacity; }
    // Slot i (1..Count); 0 outside.
    int At(int i) const { return i >= 1 && i <= Count() ? m_items[static_cast<std::size_t>(i)] : 0; }
    int operator[](int i) const { return At(i); }
    // Appends at Count + 1; past the capacity it raises error 9 (subscript out of range) and keeps
    // what was there.
    void Append(int handle);
    void Clear();
    // Replaces the contents by count handles read from data[1..count] (1-based source).
    void Assign1(const std::vector<int>& data, int count);
    // Replaces the contents by the handles of v (0-based source).
    void Assign(const std::vector<int>& v);
    bool Contains(int handle) const { return Occurrences(handle) > 0; }
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
    std::vector<int> m_items;              // slot 0 included
    std::unordered_map<int, int> m_counts; // handle -> occurrences
};

} // namespace vexil
