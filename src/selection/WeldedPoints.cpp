#include "WeldedPoints.h"

#include "base/VexilError.h"

#include <algorithm>
#include <cmath>
#include <zelmar/zelmar.h>

namespace vexil {

void WeldedPoints::SetCount(int n) {
    if (n < 0) n = 0;
    m_points.resize(n, 0);
    m_polygons.resize(n, 0);
}

void WeldedPoints::AddPt(int point, int polygon) {
    m_points.push_back(point);
    m_polygons.push_back(polygon);
}

int WeldedPoints::Point(int i) const {
    return i >= 1 && i <= Count() ? m_points[i - 1] : 0;
}

int WeldedPoints::CorrsPol(int i) const {
    return i >= 1 && i <= Count() ? m_polygons[i - 1] : 0;
}

bool WeldedPoints::RemovePt(int point) {
    const auto it = std::find(m_points.begin(), m_points.end(), point);
    if (it == m_points.end()) return false;
    const auto i = it - m_points.begin();
    m_points.erase(it);
    m_polygons.erase(m_polygons.begin() + i);
    return true;
}

namespace {
// Cells much larger than the weld tolerance: a lookup visits one cell, or two per axis near a border.
constexpr double CellSize = 1e-4;
long long cellOf(double v) {
    const double c = std::floor(v / CellSize);
    if (!(c > -4e18)) return -(4LL << 60);
    if (!(c < 4e18)) return 4LL << 60;
    return static_cast<long long>(c);
}
bool sameLocation(const double a[3], const double b[3]) {
    return std::abs(a[0] - b[0]) < WeldTableT::Tolerance && std::abs(a[1] - b[1]) < WeldTableT::Tolerance &&
           std::abs(a[2] - b[2]) < WeldTableT::Tolerance;
}
} // namespace

size_t WeldTableT::KeyHash::operator()(const Key& k) const noexcept {
    size_t h = std::hash<long long>()(k.x);
    h = h * 1000003u ^ std::hash<long long>()(k.y);
    h = h * 1000003u ^ std::hash<long long>()(k.z);
    return h;
}

WeldTableT::Key WeldTableT::keyOf(const double p[3]) {
    return {cellOf(p[0]), cellOf(p[1]), cellOf(p[2])};
}

WeldedPoints* WeldTableT::At(int i) const {
    return i >= 1 && i <= Count() ? &m_sets[i - 1]->set : nullptr;
}

int WeldTableT::IndexOf(int point) const {
    const auto it = m_setOfPoint.find(point);
    return it == m_setOfPoint.end() ? 0 : it->second->slot;
}

WeldTableT::Rec* WeldTableT::findSet(const double p[3]) const {
    long long xs[2] = {cellOf(p[0] - Tolerance), cellOf(p[0] + Tolerance)};
    long long ys[2] = {cellOf(p[1] - Tolerance), cellOf(p[1] + Tolerance)};
    long long zs[2] = {cellOf(p[2] - Tolerance), cellOf(p[2] + Tolerance)};
    Rec* best = nullptr;
    for (int i = 0; i < 2; ++i) {
        if (i == 1 && xs[1] == xs[0]) break;
        for (int j = 0; j < 2; ++j) {
            if (j == 1 && ys[1] == ys[0]) break;
            for (int k = 0; k < 2; ++k) {
                if (k == 1 && zs[1] == zs[0]) break;
                const auto it = m_cells.find(Key{xs[i], ys[j], zs[k]});
                if (it == m_cells.end()) continue;
                for (Rec* r : it->second) {
                    if (best && r->slot > best->slot) continue;
                    double first[3] = {0, 0, 0};
                    ZELMAR_point_get_xyz(r->set.Point(1), first);
                    if (sameLocation(first, p)) best = r; // the earliest matching set wins
                }
            }
        }
    }
    return best;
}

void WeldTableT::file(Rec* r, const Key& k) {
    r->key = k;
    m_cells[k].push_back(r);
}

void WeldTableT::unfile(Rec* r) {
    auto cell = m_cells.find(r->key);
    if (cell == m_cells.end()) return;
    auto& v = cell->second;
    v.erase(std::remove(v.begin(), v.end(), r), v.end());
    if (v.empty()) m_cells.erase(cell);
}

void WeldTableT::refile() {
    for (const auto& r : m_sets) {
        double first[3] = {0, 0, 0};
        ZELMAR_point_get_xyz(r->set.Point(1), first);
        const Key k = keyOf(first);
        if (k == r->key) continue;
        unfile(r.get());
        file(r.get(), k);
    }
}

void WeldTableT::enter(int polygon) {
    for (int pt = ZELMAR_polygon_get_first_point(polygon); pt != 0; pt = ZELMAR_point_get_next_point(pt)) {
        double xyz[3] = {0, 0, 0};
        ZELMAR_point_get_xyz(pt, xyz);
        if (Rec* r = findSet(xyz)) {
            r->set.AddPt(pt, polygon);
            m_setOfPoint[pt] = r;
            continue;
        }
        if (Count() >= Capacity)
            raiseError(ErrSubscript, "Too many sets of welded points: the table holds at most 1048576");
        auto rec = std::make_unique<Rec>();
        rec->set.AddPt(pt, polygon);
        rec->slot = Count() + 1;
        file(rec.get(), keyOf(xyz));
        m_setOfPoint[pt] = rec.get();
        m_sets.push_back(std::move(rec));
    }
}

void WeldTableT::EnterPolygon(int polygon) {
    refile();
    enter(polygon);
}

void WeldTableT::EnterPolygons(const std::vector<int>& polygons) {
    refile();
    for (int p : polygons)
        enter(p);
}

void WeldTableT::drop(Rec* r) {
    unfile(r);
    const int slot = r->slot;
    m_sets.erase(m_sets.begin() + (slot - 1));
    for (int i = slot - 1; i < Count(); ++i)
        m_sets[i]->slot = i + 1;
}

void WeldTableT::LeavePolygon(int polygon) {
    for (int pt = ZELMAR_polygon_get_first_point(polygon); pt != 0; pt = ZELMAR_point_get_next_point(pt)) {
        const auto it = m_setOfPoint.find(pt);
        if (it == m_setOfPoint.end()) continue;
        Rec* r = it->second;
        m_setOfPoint.erase(it);
        r->set.RemovePt(pt);
        if (r->set.Count() == 0) drop(r);
    }
}

void WeldTableT::EnterGroup(int group) {
    refile();
    for (int pol = ZELMAR_group_get_first_polygon(group); pol != 0; pol = ZELMAR_group_get_next_polygon(pol))
        enter(pol);
}

void WeldTableT::Clear() {
    m_sets.clear();
    m_setOfPoint.clear();
    m_cells.clear();
}

WeldTableT& WeldTable() {
    static WeldTableT table;
    return table;
}

} // namespace vexil
