// Coincident points of the group under edit. Points of neighbouring polygons that share a location are
// kept in one WeldedPoints set so that tools move touching corners together. The table is one per
// program (WeldTable, WeldTableCount), 1-based, with a fixed capacity.
//
// Sets are found by where their first point is now, not where it was when the set began: points move
// (gizmo drags, typed transforms, undo and redo) without telling the table, so every entry re-files the
// sets whose first point has left its cell before it looks anything up.
#pragma once
#include <array>
#include <cstddef>
#include <memory>
#include <unordered_map>
#include <vector>

namespace vexil {

class WeldedPoints {
  public:
    int Count() const { return static_cast<int>(m_points.size()); }
    // Shrinks or grows the set (new entries are 0).
    void SetCount(int n);
    void AddPt(int point, int polygon);
    // The i-th handle, from 1; 0 outside.
    int Point(int i) const;
    // Removes the first occurrence; false when the point is not in the set.
    bool RemovePt(int point);
    // The polygon that the i-th handle belongs to, from 1; 0 outside.
    int CorrsPol(int i) const;

  private:
    std::vector<int> m_points, m_polygons;
};

class WeldTableT {
  public:
    static constexpr int Capacity = 1048576;
    // Two points weld when every coordinate differs by less than this.
    static constexpr double Tolerance = 1e-09;

    int Count() const { return static_cast<int>(m_sets.size()); }
    // Set i, from 1; nullptr outside.
    WeldedPoints* At(int i) const;
    // The index (from 1) of the set that holds `point`, 0 for none.
    int IndexOf(int point) const;
    // Entering a polygon: each of its points joins the first set whose first point lies at its location,
    // or starts a new set. Raises VexilError 9 when the table is full.
    void EnterPolygon(int polygon);
    // Leaving a polygon: each of its points leaves its set; an emptied set is dropped and later sets shift
    // down one slot.
    void LeavePolygon(int polygon);
    // Several polygons at once (one re-filing for all of them).
    void EnterPolygons(const std::vector<int>& polygons);
    // Every polygon of the group's subtree, in walk order.
    void EnterGroup(int group);
    void Clear();

  private:
    struct Key {
        long long x, y, z;
        bool operator==(const Key&) const = default;
    };
    struct KeyHash {
        size_t operator()(const Key& k) const noexcept;
    };
    struct Rec {
        WeldedPoints set;
        int slot = 0; // index in the table, from 1
        Key key{};    // the cell the set is filed under: that of its first point's location at the last re-filing
    };
    static Key keyOf(const double p[3]);
    Rec* findSet(const double p[3]) const;
    void enter(int polygon);
    void file(Rec* r, const Key& k);
    void unfile(Rec* r);
    // Files every set under the cell of its first point's current location.
    void refile();
    void drop(Rec* r);

    std::vector<std::unique_ptr<Rec>> m_sets; // slot i - 1 holds set i
    std::unordered_map<int, Rec*> m_setOfPoint;
    std::unordered_map<Key, std::vector<Rec*>, KeyHash> m_cells;
};

WeldTableT& WeldTable();

} // namespace vexil
