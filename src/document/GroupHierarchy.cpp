#include "GroupHierarchy.h"

#include <algorithm>
#include <zelmar/zelmar.h>

namespace vexil {

GroupHierarchy::GroupHierarchy() {
    for (int g = ZELMAR_group_get_first_group(); g != 0; g = ZELMAR_group_get_next(g)) {
        const int father = ZELMAR_group_get_father_group(g);
        if (father != 0 && father != g) m_children[father].push_back(g);
        ++m_count;
    }
}

const std::vector<int>& GroupHierarchy::Children(int group) const {
    static const std::vector<int> none;
    const auto it = m_children.find(group);
    return it == m_children.end() ? none : it->second;
}

std::vector<int> GroupHierarchy::Below(int group) const {
    std::vector<int> out, stack;
    const std::vector<int>& top = Children(group);
    stack.assign(top.rbegin(), top.rend());
    while (!stack.empty()) {
        const int g = stack.back();
        stack.pop_back();
        out.push_back(g);
        // The engine refuses cycles; the bound only keeps a broken hierarchy from looping.
        if (out.size() > m_count) break;
        const std::vector<int>& kids = Children(g);
        stack.insert(stack.end(), kids.rbegin(), kids.rend());
    }
    return out;
}

} // namespace vexil
