// Coincident points of the group under edit. Points of neighbouring polygons that share a location are
// kept in one WeldedPoints set so that tools move touching corners together. The table is one per
// program (WeldTable, WeldTableCount), 1-based, with a fixed capacity.
#pragma once
#include "base/FlatHashMap.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

namespace vexil {

class WeldedPoints {
  public:
    WeldedPoints() = default;
    WeldedPoints(const WeldedPoints& o) { assign(o); }
    WeldedPoints(WeldedPoints&& o) noexcept { take(o); }
    WeldedPoints& operator=(const WeldedPoints& o) {
        if (this != &o) {
            release();
            assign(o);
        }
        return *this;
    }
    WeldedPoints& operator=(WeldedPoints&& o) noexcept {
        if (this != &o) {
            release();
            take(o);
        }
        return *this;
    }
    ~WeldedPoints() { release(); }

    int Count() const { return m_count; }
    // Shrinks or grows the set (new entries are 0).
    void SetCount(int n);
    void AddPt(int point, int polygon);
    // The i-th handle, from 1; 0 outside.
    int Point(int i) const { return i >= 1 && i <= m_count ? data()[i - 1].point : 0; }
    // Removes the first occurrence; false when the point is not in the set.
    bool RemovePt(int point);
    // The polygon that the i-th handle belongs to, from 1; 0 outside.
    int CorrsPol(int i) const { return i >= 1 && i <= m_count ? data()[i - 1].polygon : 0; }

  private:
    // Most sets hold one to four points (a corner shared by up to four polygons): those live inside the set.
    struct Entry {
        int point, polygon;
    };
    static constexpr int Inline = 4;
    Entry* data() { return m_cap > Inline ? m_heap : m_inline; }
    const Entry* data() const { return m_cap > Inline ? m_heap : m_inline; }
    void reserve(int n);
    void release();
    void assign(const WeldedPoints& o);
    void take(WeldedPoints& o);

    int m_count = 0, m_cap = Inline;
    union {
        Entry m_inline[Inline];
        Entry* m_heap;
    };
};

// Point handle -> value (0: none), in pages of 4096 handles made on demand: the points of a group are
// handed out together, so their entries sit side by side and a walk over them reads memory in order.
class PointIndex {
  public:
    int Get(int point) const {
        const size_t page = static_cast<size_t>(point) >> PageBits;
        if (point <= 0 || page >= m_pages.size() || !m_pages[page]) return 0;
        return m_pages[page][static_cast<size_t>(point) & (PageSize - 1)];
    }
    void Set(int point, int value);
    void Clear() { m_pages.clear(); }

  private:
    static constexpr int PageBits = 12;
    static constexpr size_t PageSize = size_t(1) << PageBits;
    std::vector<std::unique_ptr<int[]>> m_pages;
};

class WeldTableT {
  public:
    static constexpr int Capacity = 1048576;
    // Two points weld when every coordinate differs by less than this.
    static constexpr double Tolerance = 1e-09;

    int Count() const { return static_cast<int>(m_order.size()); }
    // Set i, from 1; nullptr outside. Valid until the table changes.
    WeldedPoints* At(int i) const;
    // The index (from 1) of the set that holds `point`, 0 for none.
    int IndexOf(int point) const;
    // Entering a polygon: each of its points joins the first set whose first point lies at its location,
    // or starts a new set. Raises VexilError 9 when the table is full.
    void EnterPolygon(int polygon);
    // The same for many polygons in turn, reading their points from the engine in one call.
    void EnterPolygons(const std::vector<int>& polygons);
    // Leaving a polygon: each of its points leaves its set; an emptied set is dropped and later sets shift
    // down one slot.
    void LeavePolygon(int polygon);
    // The same for many polygons, with one pass over the table for the emptied sets.
    void LeavePolygons(const std::vector<int>& polygons);
    // Every polygon of the group's subtree, in walk order (after a Rekey).
    void EnterGroup(int group);
    // Files every set again under the location its first point has now. Points move under the table (the
    // gizmo, undo, extrude): call it before entering polygons after such moves, so that a polygon entered at
    // a set's new location joins it.
    void Rekey();
    void Clear();

  private:
    struct Key {
        long long x, y, z;
        bool operator==(const Key&) const = default;
    };
    struct KeyHash {
        uint64_t operator()(const Key& k) const noexcept;
    };
    // One set and what finding it needs. Records are kept by a stable id; the slot (the set's number - 1)
    // changes when an earlier set is dropped.
    struct Rec {
        // What a lookup reads first, side by side.
        std::array<double, 3> first{}; // where the first point is, as last read
        int slot = -1;                 // -1: the record is free
        int nextInCell = -1;           // the next record filed under the same cell
        bool stale = false;            // the first point left: `first` is read again when needed
        Key key{};                     // cell of the location the set began at (or had at the last Rekey)
        WeldedPoints set;
    };
    static Key keyOf(const double p[3]);
    // The cells a lookup of a point visits (those of its location less and plus the tolerance, per axis)
    // and the hash of the first of them, which is the point's own cell but near a border.
    struct PointCells {
        long long lo[3], hi[3];
        uint64_t hash;
    };
    static PointCells cellsOf(const double p[3]);
    // The earliest set whose first point lies at p, -1 for none.
    int findSet(const double p[3], const PointCells& c);
    void enterPoints(const int* points, const int* owners, const double* xyz, size_t n);
    // The points of the polygons leave their sets; the emptied sets are unfiled and their ids answered.
    void leavePoints(const std::vector<int>& polygons, std::vector<int>& emptied);
    void file(int id);
    void file(int id, uint64_t hash); // hash: of the record's key
    void unfile(int id);
    // Drops the emptied records from the order in one pass and renumbers the rest.
    void dropAll(const std::vector<int>& emptied);
    const std::array<double, 3>& firstOf(Rec& r);

    std::vector<Rec> m_recs;  // by id
    std::vector<int> m_free;  // ids of free records
    std::vector<int> m_order; // slot -> id
    PointIndex m_idOfPoint;   // point -> id + 1
    // Cell -> the first record filed there: open addressing in one array (key and head side by side, head
    // -1 for an empty slot), so that a lookup reads one cache line, and a walk over many points can ask for
    // the lines of the points ahead (Prefetch) while it works on the present one.
    class Cells {
      public:
        int* find(const Key& k) { return find(k, KeyHash()(k)); }
        int* find(const Key& k, uint64_t hash);
        std::pair<int*, bool> insert(const Key& k, int head) { return insert(k, head, KeyHash()(k)); }
        std::pair<int*, bool> insert(const Key& k, int head, uint64_t hash);
        void erase(const Key& k);
        void clear();
        void reserve(size_t n);
        void Prefetch(const Key& k) const { Prefetch(KeyHash()(k)); }
        void Prefetch(uint64_t hash) const;
        // The first record filed under k when k sits in its home slot (-1 otherwise): a hint for
        // prefetching, no lookup.
        int HeadAtHome(const Key& k, uint64_t hash) const;

      private:
        struct Slot {
            Key key;
            int head;
        };
        size_t home(uint64_t hash) const;
        void rehash(size_t cap);
        std::vector<Slot> m_slots;
        size_t m_size = 0, m_mask = 0;
        unsigned m_shift = 64;
    };
    Cells m_cells;
    // Scratch of the bulk reads.
    std::vector<int> m_points, m_owners, m_moved;
    std::vector<double> m_xyz;
    std::vector<PointCells> m_pointCells;
    std::vector<Key> m_keys;
    std::vector<uint64_t> m_hashes;
};

WeldTableT& WeldTable();

} // namespace vexil
