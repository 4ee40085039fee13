#include "SelectionArrays.h"

#include "app/VexilError.h"

namespace vexil {

void HandleArray::Append(int handle) {
    if (Count() + 1 >= m_capacity) raiseError(ErrSubscript, "Subscript out of range");
    m_items.push_back(handle);
    ++m_counts[handle];
}

void HandleArray::Clear() {
    m_items.assign(1, 0);
    m_counts.clear();
}

void HandleArray::Assign1(const std::vector<int>& data, int count) {
    Clear();
    for (int i = 1; i <= count && i < static_cast<int>(data.size()); ++i)
        Append(data[static_cast<size_t>(i)]);
}

void HandleArray::Assign(const std::vector<int>& v) {
    Clear();
    m_items.reserve(v.size() + 1);
    for (int h : v)
        Append(h);
}

int HandleArray::Occurrences(int handle) const {
    auto it = m_counts.find(handle);
    return it == m_counts.end() ? 0 : it->second;
}

bool HandleArray::RemoveFirst(int handle) {
    auto c = m_counts.find(handle);
    if (c == m_counts.end()) return false;
    for (size_t i = 1; i < m_items.size(); ++i)
        if (m_items[i] == handle) {
            m_items.erase(m_items.begin() + static_cast<std::ptrdiff_t>(i));
            break;
        }
    if (--c->second == 0) m_counts.erase(c);
    return true;
}

void HandleArray::RemoveFirstOfEach(const std::vector<int>& hits) {
    // Removing the first occurrence of h k times removes its k earliest occurrences, whatever else is
    // removed in between: so count the removals per handle and drop the earliest ones in one sweep.
    std::unordered_map<int, int> toDrop;
    for (int h : hits)
        if (Contains(h)) ++toDrop[h];
    if (toDrop.empty()) return;
    size_t out = 1;
    for (size_t i = 1; i < m_items.size(); ++i) {
        const int h = m_items[i];
        auto d = toDrop.find(h);
        if (d != toDrop.end() && d->second > 0) {
            --d->second;
            if (--m_counts[h] == 0) m_counts.erase(h);
            continue;
        }
        m_items[out++] = h;
    }
    m_items.resize(out);
}

} // namespace vexil
