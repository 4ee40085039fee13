#include "SelectionArrays.h"

#include "base/VexilError.h"

#include <algorithm>

namespace vexil {

// ---- OccurrenceTable ----------------------------------------------------------------------------

namespace {
// Engine handles come from a counter: handles made together lie close together, and the identity keeps
// their slots close together too (a scattering hash would cost a cache miss per lookup).
inline std::size_t hashOf(int h) {
    return static_cast<std::uint32_t>(h);
}
} // namespace

std::size_t OccurrenceTable::find(int handle) const {
    const std::size_t mask = m_slots.size() - 1;
    for (std::size_t i = hashOf(handle) & mask;; i = (i + 1) & mask)
        if (m_slots[i].handle == handle || m_slots[i].handle == 0) return i;
}

int OccurrenceTable::Get(int handle) const {
    if (m_slots.empty() || handle == 0) return 0;
    const Slot& s = m_slots[find(handle)];
    return s.handle == handle ? s.count : 0;
}

void OccurrenceTable::grow() {
    std::vector<Slot> old;
    old.swap(m_slots);
    m_slots.assign(std::max<std::size_t>(16, old.size() * 2), Slot{});
    m_filled = m_used = 0;
    for (const Slot& s : old)
        if (s.handle != 0 && s.count > 0) {
            Slot& t = m_slots[find(s.handle)];
            t = s;
            ++m_filled;
            ++m_used;
        }
}

int OccurrenceTable::Add(int handle, int delta) {
    if (handle == 0) return 0;
    if ((m_filled + 1) * 2 > m_slots.size()) grow();
    Slot& s = m_slots[find(handle)];
    if (s.handle == 0) {
        if (delta <= 0) return 0;
        s.handle = handle;
        ++m_filled;
        ++m_used;
    } else if (s.count == 0 && delta > 0) {
        ++m_used;
    }
    const int before = s.count;
    s.count = std::max(0, s.count + delta);
    if (before > 0 && s.count == 0) --m_used; // the slot stays taken so that probes pass over it
    return s.count;
}

void OccurrenceTable::Clear() {
    m_slots.clear();
    m_used = m_filled = 0;
}

// ---- HandleArray --------------------------------------------------------------------------------

void HandleArray::Append(int handle) {
    if (Count() + 1 >= m_capacity) raiseError(ErrSubscript, "Subscript out of range");
    m_items.push_back(handle);
    if (m_counted) m_counts.Add(handle, 1);
}

void HandleArray::Clear() {
    m_items.assign(1, 0);
    m_counts.Clear();
}

void HandleArray::Assign1(const std::vector<int>& data, int count) {
    Clear();
    Reserve(count);
    for (int i = 1; i <= count && i < static_cast<int>(data.size()); ++i)
        Append(data[static_cast<std::size_t>(i)]);
}

void HandleArray::Assign(const std::vector<int>& v) {
    Clear();
    Reserve(static_cast<int>(v.size()));
    for (int h : v)
        Append(h);
}

int HandleArray::Occurrences(int handle) const {
    if (m_counted) return m_counts.Get(handle);
    return static_cast<int>(std::count(m_items.begin() + 1, m_items.end(), handle));
}

bool HandleArray::RemoveFirst(int handle) {
    auto it = std::find(m_items.begin() + 1, m_items.end(), handle);
    if (it == m_items.end()) return false;
    m_items.erase(it);
    if (m_counted) m_counts.Add(handle, -1);
    return true;
}

void HandleArray::RemoveFirstOfEach(const std::vector<int>& hits) {
    // Removing the first occurrence of h k times removes its k earliest occurrences, whatever else is
    // removed in between: so count the removals per handle and drop the earliest ones in one sweep.
    OccurrenceTable toDrop;
    bool any = false;
    for (int h : hits)
        if (Contains(h)) {
            toDrop.Add(h, 1);
            any = true;
        }
    if (!any) return;
    std::size_t out = 1;
    for (std::size_t i = 1; i < m_items.size(); ++i) {
        const int h = m_items[i];
        if (toDrop.Get(h) > 0) {
            toDrop.Add(h, -1);
            if (m_counted) m_counts.Add(h, -1);
            continue;
        }
        m_items[out++] = h;
    }
    m_items.resize(out);
}

} // namespace vexil
