#include "WeldedPoints.h"

#include "base/VexilError.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <zelmar/zelmar.h>

namespace vexil {

// ---- WeldedPoints -------------------------------------------------------------------------------

void WeldedPoints::reserve(int n) {
    if (n <= m_cap) return;
    int cap = m_cap;
    while (cap < n)
        cap *= 2;
    auto* heap = new Entry[static_cast<size_t>(cap)];
    std::memcpy(heap, data(), sizeof(Entry) * static_cast<size_t>(m_count));
    if (m_cap > Inline) delete[] m_heap;
    m_heap = heap;
    m_cap = cap;
}

void WeldedPoints::release() {
    if (m_cap > Inline) delete[] m_heap;
    m_cap = Inline;
    m_count = 0;
}

void WeldedPoints::assign(const WeldedPoints& o) {
    m_count = 0;
    m_cap = Inline;
    reserve(o.m_count);
    std::memcpy(data(), o.data(), sizeof(Entry) * static_cast<size_t>(o.m_count));
    m_count = o.m_count;
}

void WeldedPoints::take(WeldedPoints& o) {
    m_count = o.m_count;
    m_cap = o.m_cap;
    if (o.m_cap > Inline)
        m_heap = o.m_heap;
    else
        std::memcpy(m_inline, o.m_inline, sizeof m_inline);
    o.m_cap = Inline;
    o.m_count = 0;
}

void WeldedPoints::SetCount(int n) {
    if (n < 0) n = 0;
    reserve(n);
    for (int i = m_count; i < n; ++i)
        data()[i] = {0, 0};
    m_count = n;
}

void WeldedPoints::AddPt(int point, int polygon) {
    reserve(m_count + 1);
    data()[m_count++] = {point, polygon};
}

bool WeldedPoints::RemovePt(int point) {
    Entry* d = data();
    for (int i = 0; i < m_count; ++i)
        if (d[i].point == point) {
            std::memmove(d + i, d + i + 1, sizeof(Entry) * static_cast<size_t>(m_count - i - 1));
            --m_count;
            return true;
        }
    return false;
}

// ---- PointIndex ---------------------------------------------------------------------------------

void PointIndex::Set(int point, int value) {
    if (point <= 0) return;
    const size_t page = static_cast<size_t>(point) >> PageBits;
    if (page >= m_pages.size()) m_pages.resize(page + 1);
    if (!m_pages[page]) {
        if (value == 0) return;
        m_pages[page] = std::make_unique<int[]>(PageSize); // zeroed
    }
    m_pages[page][static_cast<size_t>(point) & (PageSize - 1)] = value;
}

// ---- the table ----------------------------------------------------------------------------------

namespace {
// Cells much larger than the weld tolerance: a lookup visits one cell, or two per axis near a border.
// Any monotonic map of locations to cells serves (filing and finding use the same one). A product, not a
// quotient, as it runs six times per point entered; and the borders sit off round numbers (a golden
// fraction of a cell away), so that points on a grid (0, 0.5, 10) lie inside one cell and their lookup
// visits one cell, not two per axis.
constexpr double CellsPerUnit = 1e4;
constexpr double BorderShift = 0.3819660112501051;
long long cellOf(double v) {
    const double c = std::floor(v * CellsPerUnit + BorderShift);
    if (!(c > -4e18)) return -(4LL << 60);
    if (!(c < 4e18)) return 4LL << 60;
    return static_cast<long long>(c);
}
bool sameLocation(const double a[3], const double b[3]) {
    return std::abs(a[0] - b[0]) < WeldTableT::Tolerance && std::abs(a[1] - b[1]) < WeldTableT::Tolerance &&
           std::abs(a[2] - b[2]) < WeldTableT::Tolerance;
}
} // namespace

uint64_t WeldTableT::KeyHash::operator()(const Key& k) const noexcept {
    uint64_t h = static_cast<uint64_t>(k.x) * 0x9E3779B97F4A7C15ull;
    h ^= (h >> 29) + static_cast<uint64_t>(k.y) * 0xC2B2AE3D27D4EB4Full;
    h ^= (h >> 32) + static_cast<uint64_t>(k.z) * 0x165667B19E3779F9ull;
    return h ^ (h >> 31);
}

// ---- the cells ----------------------------------------------------------------------------------

size_t WeldTableT::Cells::home(uint64_t hash) const {
    return static_cast<size_t>((hash * 0x9E3779B97F4A7C15ull) >> m_shift) & m_mask;
}

void WeldTableT::Cells::Prefetch(uint64_t hash) const {
    if (m_size != 0) __builtin_prefetch(&m_slots[home(hash)]);
}

int WeldTableT::Cells::HeadAtHome(const Key& k, uint64_t hash) const {
    if (m_size == 0) return -1;
    const Slot& s = m_slots[home(hash)];
    return s.head >= 0 && s.key == k ? s.head : -1;
}

int* WeldTableT::Cells::find(const Key& k, uint64_t hash) {
    if (m_size == 0) return nullptr;
    for (size_t i = home(hash);; i = (i + 1) & m_mask) {
        Slot& s = m_slots[i];
        if (s.head < 0) return nullptr;
        if (s.key == k) return &s.head;
    }
}

std::pair<int*, bool> WeldTableT::Cells::insert(const Key& k, int head, uint64_t hash) {
    if ((m_size + 1) * 10 > m_slots.size() * 7) rehash(m_slots.empty() ? 16 : m_slots.size() * 2);
    size_t i = home(hash);
    for (; m_slots[i].head >= 0; i = (i + 1) & m_mask)
        if (m_slots[i].key == k) return {&m_slots[i].head, false};
    m_slots[i].key = k;
    m_slots[i].head = head;
    ++m_size;
    return {&m_slots[i].head, true};
}

void WeldTableT::Cells::erase(const Key& k) {
    if (m_size == 0) return;
    size_t i = home(KeyHash()(k));
    for (;; i = (i + 1) & m_mask) {
        if (m_slots[i].head < 0) return;
        if (m_slots[i].key == k) break;
    }
    // Entries after the hole that could sit in it move back, so that no probe chain is broken.
    for (size_t j = (i + 1) & m_mask; m_slots[j].head >= 0; j = (j + 1) & m_mask) {
        const size_t h = home(KeyHash()(m_slots[j].key));
        if (((j - h) & m_mask) >= ((j - i) & m_mask)) {
            m_slots[i] = m_slots[j];
            i = j;
        }
    }
    m_slots[i].head = -1;
    --m_size;
}

void WeldTableT::Cells::clear() {
    if (m_size == 0) return;
    for (Slot& s : m_slots)
        s.head = -1;
    m_size = 0;
}

void WeldTableT::Cells::reserve(size_t n) {
    size_t cap = 16;
    while (cap * 7 / 10 < n)
        cap *= 2;
    if (cap > m_slots.size()) rehash(cap);
}

void WeldTableT::Cells::rehash(size_t cap) {
    std::vector<Slot> old(cap, Slot{Key{}, -1});
    std::swap(old, m_slots);
    m_mask = cap - 1;
    m_shift = 64;
    for (size_t c = cap; c > 1; c >>= 1)
        --m_shift;
    m_size = 0;
    for (const Slot& s : old)
        if (s.head >= 0) insert(s.key, s.head);
}

// ---- the table ----------------------------------------------------------------------------------

WeldTableT::Key WeldTableT::keyOf(const double p[3]) {
    return {cellOf(p[0]), cellOf(p[1]), cellOf(p[2])};
}

WeldedPoints* WeldTableT::At(int i) const {
    if (i < 1 || i > Count()) return nullptr;
    return const_cast<WeldedPoints*>(&m_recs[static_cast<size_t>(m_order[static_cast<size_t>(i - 1)])].set);
}

int WeldTableT::IndexOf(int point) const {
    const int id = m_idOfPoint.Get(point) - 1;
    return id < 0 ? 0 : m_recs[static_cast<size_t>(id)].slot + 1;
}

const std::array<double, 3>& WeldTableT::firstOf(Rec& r) {
    if (r.stale) {
        r.first = {0, 0, 0};
        ZELMAR_point_get_xyz(r.set.Point(1), r.first.data());
        r.stale = false;
    }
    return r.first;
}

WeldTableT::PointCells WeldTableT::cellsOf(const double p[3]) {
    PointCells c;
    for (int k = 0; k < 3; ++k) {
        c.lo[k] = cellOf(p[k] - Tolerance);
        c.hi[k] = cellOf(p[k] + Tolerance);
    }
    c.hash = KeyHash()(Key{c.lo[0], c.lo[1], c.lo[2]});
    return c;
}

int WeldTableT::findSet(const double p[3], const PointCells& c) {
    int best = -1, bestSlot = 0;
    for (int i = 0; i < 2; ++i) {
        if (i == 1 && c.hi[0] == c.lo[0]) break;
        for (int j = 0; j < 2; ++j) {
            if (j == 1 && c.hi[1] == c.lo[1]) break;
            for (int k = 0; k < 2; ++k) {
                if (k == 1 && c.hi[2] == c.lo[2]) break;
                const Key key{i ? c.hi[0] : c.lo[0], j ? c.hi[1] : c.lo[1], k ? c.hi[2] : c.lo[2]};
                const int* head = m_cells.find(key, i + j + k == 0 ? c.hash : KeyHash()(key));
                for (int id = head ? *head : -1; id >= 0; id = m_recs[static_cast<size_t>(id)].nextInCell) {
                    Rec& r = m_recs[static_cast<size_t>(id)];
                    if (best >= 0 && r.slot > bestSlot) continue;
                    if (sameLocation(firstOf(r).data(), p)) { // the earliest matching set wins
                        best = id;
                        bestSlot = r.slot;
                    }
                }
            }
        }
    }
    return best;
}

void WeldTableT::file(int id) {
    file(id, KeyHash()(m_recs[static_cast<size_t>(id)].key));
}

void WeldTableT::file(int id, uint64_t hash) {
    Rec& r = m_recs[static_cast<size_t>(id)];
    auto [head, made] = m_cells.insert(r.key, id, hash);
    r.nextInCell = made ? -1 : *head;
    *head = id;
}

void WeldTableT::unfile(int id) {
    Rec& r = m_recs[static_cast<size_t>(id)];
    int* head = m_cells.find(r.key);
    if (!head) return;
    if (*head == id) {
        if (r.nextInCell < 0)
            m_cells.erase(r.key);
        else
            *head = r.nextInCell;
        return;
    }
    for (int prev = *head; prev >= 0;) {
        Rec& p = m_recs[static_cast<size_t>(prev)];
        if (p.nextInCell == id) {
            p.nextInCell = r.nextInCell;
            return;
        }
        prev = p.nextInCell;
    }
}

void WeldTableT::enterPoints(const int* points, const int* owners, const double* xyz, size_t n) {
    // Every point's cells first, in one pass. Then, while a point is looked up, the cell of one some way
    // ahead is asked for, and for one nearer, whose cell has arrived by then, the first set filed there
    // (hints only: each lookup still sees every set entered before it, in order).
    m_pointCells.resize(n);
    for (size_t i = 0; i < n; ++i)
        m_pointCells[i] = cellsOf(xyz + 3 * i);
    constexpr size_t CellAhead = 12, SetAhead = 4;
    for (size_t i = 0; i < n; ++i) {
        if (i + CellAhead < n) m_cells.Prefetch(m_pointCells[i + CellAhead].hash);
        if (i + SetAhead < n) {
            const PointCells& a = m_pointCells[i + SetAhead];
            const int head = m_cells.HeadAtHome(Key{a.lo[0], a.lo[1], a.lo[2]}, a.hash);
            if (head >= 0) __builtin_prefetch(&m_recs[static_cast<size_t>(head)]);
        }
        const double* p = xyz + 3 * i;
        const PointCells& c = m_pointCells[i];
        const int found = findSet(p, c);
        if (found >= 0) {
            m_recs[static_cast<size_t>(found)].set.AddPt(points[i], owners[i]);
            m_idOfPoint.Set(points[i], found + 1);
            continue;
        }
        if (Count() >= Capacity)
            raiseError(ErrSubscript, "Too many sets of welded points: the table holds at most 1048576");
        int id;
        if (!m_free.empty()) {
            id = m_free.back();
            m_free.pop_back();
        } else {
            id = static_cast<int>(m_recs.size());
            m_recs.emplace_back();
        }
        Rec& r = m_recs[static_cast<size_t>(id)];
        r.set.AddPt(points[i], owners[i]);
        r.first = {p[0], p[1], p[2]};
        r.stale = false;
        // A point's own cell lies between those of its location less and plus the tolerance.
        const bool inOne = c.lo[0] == c.hi[0] && c.lo[1] == c.hi[1] && c.lo[2] == c.hi[2];
        r.key = inOne ? Key{c.lo[0], c.lo[1], c.lo[2]} : keyOf(p);
        r.slot = Count();
        m_order.push_back(id);
        file(id, inOne ? c.hash : KeyHash()(r.key));
        m_idOfPoint.Set(points[i], id + 1);
    }
}

void WeldTableT::EnterPolygon(int polygon) {
    EnterPolygons({polygon});
}

void WeldTableT::EnterPolygons(const std::vector<int>& polygons) {
    if (polygons.empty()) return;
    const int count = static_cast<int>(polygons.size());
    size_t n = static_cast<size_t>(ZELMAR_polygons_get_points(polygons.data(), count, nullptr, nullptr, nullptr, 0));
    m_points.resize(n);
    m_owners.resize(n);
    m_xyz.resize(3 * n);
    n = static_cast<size_t>(ZELMAR_polygons_get_points(polygons.data(), count, m_points.data(), m_owners.data(),
                                                       m_xyz.data(), static_cast<int>(n)));
    enterPoints(m_points.data(), m_owners.data(), m_xyz.data(), std::min(n, m_points.size()));
}

void WeldTableT::leavePoints(const std::vector<int>& polygons, std::vector<int>& emptied) {
    const int count = static_cast<int>(polygons.size());
    size_t n = static_cast<size_t>(ZELMAR_polygons_get_points(polygons.data(), count, nullptr, nullptr, nullptr, 0));
    m_points.resize(n);
    n = std::min(n, static_cast<size_t>(ZELMAR_polygons_get_points(polygons.data(), count, m_points.data(), nullptr,
                                                                   nullptr, static_cast<int>(n))));
    for (size_t i = 0; i < n; ++i) {
        const int pt = m_points[i];
        const int id = m_idOfPoint.Get(pt) - 1;
        if (id < 0) continue;
        m_idOfPoint.Set(pt, 0);
        Rec& r = m_recs[static_cast<size_t>(id)];
        const bool wasFirst = r.set.Point(1) == pt;
        r.set.RemovePt(pt);
        if (r.set.Count() == 0) {
            emptied.push_back(id); // unfiled by the caller, all together
        } else if (wasFirst) {
            r.stale = true; // compared by where its new first point is
        }
    }
}

void WeldTableT::dropAll(const std::vector<int>& emptied) {
    if (emptied.empty()) return;
    for (int id : emptied)
        m_recs[static_cast<size_t>(id)].slot = -1;
    size_t to = 0;
    for (size_t from = 0; from < m_order.size(); ++from) {
        const int id = m_order[from];
        Rec& r = m_recs[static_cast<size_t>(id)];
        if (r.slot < 0) continue;
        r.slot = static_cast<int>(to);
        m_order[to++] = id;
    }
    m_order.resize(to);
    for (int id : emptied) {
        m_recs[static_cast<size_t>(id)].set = WeldedPoints();
        m_free.push_back(id);
    }
}

void WeldTableT::LeavePolygon(int polygon) {
    LeavePolygons({polygon});
}

void WeldTableT::LeavePolygons(const std::vector<int>& polygons) {
    if (polygons.empty() || m_order.empty()) return;
    std::vector<int> emptied;
    leavePoints(polygons, emptied);
    // Many sets emptied (a whole group leaving): the survivors are filed anew, which is cheaper than taking
    // each emptied set out of its cell.
    if (emptied.size() * 4 >= m_order.size()) {
        m_cells.clear();
        for (int id : m_order)
            if (m_recs[static_cast<size_t>(id)].set.Count() > 0) file(id);
    } else {
        for (int id : emptied)
            unfile(id);
    }
    dropAll(emptied);
}

void WeldTableT::Rekey() {
    if (m_order.empty()) {
        m_cells.clear();
        return;
    }
    m_points.resize(m_order.size());
    for (size_t s = 0; s < m_order.size(); ++s)
        m_points[s] = m_recs[static_cast<size_t>(m_order[s])].set.Point(1);
    m_xyz.assign(3 * m_order.size(), 0.0);
    ZELMAR_points_get_values(m_points.data(), static_cast<int>(m_points.size()), 1, m_xyz.data());
    // Every live set is filed under its key. When few sets changed cell only those move (a lookup compares
    // the sets of a cell by slot, so their order within the cell does not matter); else all are filed anew.
    m_moved.clear();
    m_keys.resize(m_order.size());
    for (size_t s = 0; s < m_order.size(); ++s) {
        Rec& r = m_recs[static_cast<size_t>(m_order[s])];
        const double* p = &m_xyz[3 * s];
        r.first = {p[0], p[1], p[2]};
        r.stale = false;
        m_keys[s] = keyOf(p);
        if (!(m_keys[s] == r.key)) m_moved.push_back(static_cast<int>(s));
    }
    if (m_moved.size() * 4 <= m_order.size()) {
        for (int s : m_moved) {
            const int id = m_order[static_cast<size_t>(s)];
            unfile(id);
            m_recs[static_cast<size_t>(id)].key = m_keys[static_cast<size_t>(s)];
            file(id);
        }
        return;
    }
    // All filed anew, in slot order; the cells are hashed first so that the slot of a set some way ahead
    // is asked for while this one is filed.
    m_cells.clear();
    m_cells.reserve(m_order.size());
    m_hashes.resize(m_order.size());
    for (size_t s = 0; s < m_order.size(); ++s)
        m_hashes[s] = KeyHash()(m_keys[s]);
    constexpr size_t Ahead = 12;
    for (size_t s = 0; s < m_order.size(); ++s) {
        if (s + Ahead < m_order.size()) m_cells.Prefetch(m_hashes[s + Ahead]);
        const int id = m_order[s];
        m_recs[static_cast<size_t>(id)].key = m_keys[s];
        file(id, m_hashes[s]);
    }
}

void WeldTableT::EnterGroup(int group) {
    Rekey();
    const int n = ZELMAR_group_get_polygons(group, nullptr, 0);
    if (n <= 0) return;
    std::vector<int> pols(static_cast<size_t>(n));
    pols.resize(static_cast<size_t>(std::min(n, ZELMAR_group_get_polygons(group, pols.data(), n))));
    m_cells.reserve(m_order.size() + 4 * pols.size());
    EnterPolygons(pols);
}

void WeldTableT::Clear() {
    m_recs.clear();
    m_free.clear();
    m_order.clear();
    m_idOfPoint.Clear();
    m_cells.clear();
}

WeldTableT& WeldTable() {
    static WeldTableT table;
    return table;
}

} // namespace vexil
