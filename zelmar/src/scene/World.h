// The one world the engine holds: owns every entity and maps handles to them.
// Handles come from a monotonic counter and are never reused, so a stale handle
// can never name a newer entity; lookups are O(1) through a slot vector.
#pragma once
#include "scene/Entities.h"
#include <cstddef>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace zelmar {

class World : private RingStore {
  public:
    World();
    ~World();
    World(const World&) = delete;
    World& operator=(const World&) = delete;

    // Lookups: nullptr when the handle is not a live entity of that kind. Safe for any integer.
    Kind kindOf(Handle h) const;
    Group* group(Handle h) const { return get<Group>(h, Kind::Group); }
    Polygon* polygon(Handle h) const { return get<Polygon>(h, Kind::Polygon); }
    Camera* camera(Handle h) const { return get<Camera>(h, Kind::Camera); }
    Light* light(Handle h) const { return get<Light>(h, Kind::Light); }
    Track* track(Handle h) const { return get<Track>(h, Kind::Track); }
    Background* background(Handle h) const { return get<Background>(h, Kind::Background); }
    Bitmap* bitmap(Handle h) const { return get<Bitmap>(h, Kind::Bitmap); }
    Animation* animation(Handle h) const { return get<Animation>(h, Kind::Animation); }
    // A point: its polygon and index in the ring, or nullptr.
    PointData* point(Handle h, Polygon** owner = nullptr, uint32_t* index = nullptr) const;

    // Creation: the new entity is live and has a fresh handle.
    Group* createGroup(const std::string& name);
    Polygon* createPolygon();
    PointData& addPoint(Polygon& p, const PointData& data, bool atHead = false);
    void deletePoint(Polygon& p, uint32_t index);
    // Replaces the ring: entries whose handle is a point of p keep it (and their place in the
    // handle table), entries with handle 0 get fresh handles, p's points left out die.
    void replaceRing(Polygon& p, const std::vector<PointData>& ring);
    Camera* createCamera(const std::string& name);
    Light* createLight(const std::string& name);
    Track* createTrack(const std::string& name);
    Background* createBackground(const std::string& name);
    Bitmap* createBitmap(const std::string& name);
    Animation* createAnimation(const std::string& name);

    // Bulk creation, for loaders that know every count before creating anything. Handles
    // come in the same order as one by one; nothing is notified until endBulk().
    void reserveHandles(size_t more);
    // Room for `polygons` polygons, with ringsOfSize[k] rings of k points (k up to
    // kPooledRing; longer rings take the heap). A helper thread maps the pages in while the
    // caller goes on creating, until endBulk().
    static constexpr size_t kPooledRing = 8;
    void reservePolygons(size_t polygons, const size_t (&ringsOfSize)[kPooledRing + 1]);
    // A polygon with `style`'s stored values (not its handle, links, ring or name), its ring
    // reserved for `points` points, in no group yet.
    Polygon* createPolygonFrom(const Polygon& style, uint32_t points);
    // Appends n copies of `init` to the ring, each with a fresh handle; the first of them.
    PointData* appendPoints(Polygon& p, uint32_t n, const PointData& init);
    void appendToGroup(Polygon& p, Group& g); // p must be in no group
    void endBulk();

    // Destruction: the handle dies; the kinds with children take them along.
    void destroyGroupTree(Group& g); // group, child groups, their polygons and points
    void destroyPolygon(Polygon& p);
    void destroyCamera(Camera& c);
    void destroyLight(Light& l);
    void destroyTrack(Track& t);
    void destroyBackground(Background& b);
    void destroyBitmap(Bitmap& b);
    // Many at once, in one pass over the list (destroyBitmap costs a pass each).
    void destroyBitmaps(const std::vector<Bitmap*>& doomed);
    void destroyAnimation(Animation& a);
    void clear(); // empties the world; handles keep counting

    // Hierarchy.
    bool setFather(Group& g, Group* father);                 // false (and no change) if it would make a cycle
    bool isIncludedIn(const Group& a, const Group& b) const; // a strictly below b
    bool inSubtree(const Group& g, const Group& root) const { return &g == &root || isIncludedIn(g, root); }
    static Group* topOf(Group* g); // the fatherless ancestor (g itself if fatherless)
    void setPolygonGroup(Polygon& p, Group* g);
    // Puts each polygon into g in front of its partner (an own polygon of g; anything else
    // appends), in the order given; one pass over g's order table for the whole list.
    void insertPolygons(Group& g, const std::vector<std::pair<Polygon*, Polygon*>>& polygonAndBefore);
    // setFather, in front of the sibling `before` (a child of father; anything else appends).
    bool setFatherBefore(Group& g, Group* father, Group* before);
    void reverseRing(Polygon& p); // ring order reversed, the first point stays first
    // A polygon's geometry or fill changed: its version, its group's version and the generation move on.
    void changed(Polygon& p) {
        ++p.version;
        if (p.group) ++p.group->version;
        touch();
    }
    static Group* nextInSubtree(const Group* g, const Group* root); // pre-order, nullptr at the end

    // Ordered walks (creation order).
    Group* firstGroup() const { return groupsHead_; }
    Polygon* firstPolygon() const { return polygonsHead_; }

    template <class T> const std::vector<T*>& list() const;
    // The entity after x in its kind's list, or nullptr: O(1).
    template <class T> T* nextOf(const T& x) const {
        const auto& v = list<T>();
        return x.listPos + 1 < v.size() ? v[x.listPos + 1] : nullptr;
    }
    size_t groupCount() const { return groupCount_; }
    size_t polygonCount() const { return polygonCount_; }
    size_t polygonBlocks() const; // memory blocks held for polygons and their rings
    bool empty() const;

    // Names are how entities are found again after a load.
    Group* groupByName(const std::string& name) const;

    // Bumped on any change of geometry, fills or the tree; render and pick caches compare against it.
    uint64_t generation = 0;
    void touch() { ++generation; }
    // Bumped only when a group changes father or dies: what is below what still holds while
    // it stays (the subtree walks rely on it to skip their membership checks).
    uint64_t treeGeneration() const { return treeGeneration_; }
    // Steps taken from groups up to their fathers by the membership tests: counted so that
    // tests can hold loads and walks to work linear in the number of groups, whatever the depth.
    uint64_t upwardSteps() const { return upwardSteps_; }

  private:
    // Places of one size carved from 2 MiB blocks aligned on their size, so the block of a
    // place is its address masked: one system allocation (and, with transparent huge pages,
    // one page fault) per block instead of per entity. Freed places are reused first; an
    // empty block goes back to the system, but for one spare against create/delete churn.
    class Pool {
      public:
        explicit Pool(size_t placeBytes);
        ~Pool();
        Pool(const Pool&) = delete;
        Pool& operator=(const Pool&) = delete;
        void* take();
        void give(void* place);
        void trim(); // returns the spare block and reserved blocks not yet used
        size_t blocks() const { return blocks_; }
        // Blocks for `places` more places, mapped at once and used before any new one; the
        // region they span, for the caller to have its pages mapped in.
        std::pair<char*, size_t> reserve(size_t places);

      private:
        struct Block;
        void trimFresh();
        char* fresh_ = nullptr; // reserved blocks not yet used: [fresh_, freshEnd_)
        char* freshEnd_ = nullptr;
        void open(Block* b);
        void close(Block* b);
        size_t place_, header_, perBlock_;
        Block* open_ = nullptr; // blocks with a free place
        Block* spare_ = nullptr;
        size_t blocks_ = 0;
    };
    // Vectors that can grow to tens of megabytes (the handle table) take huge-page memory.
    template <class T> struct BigAllocator {
        using value_type = T;
        BigAllocator() = default;
        template <class U> BigAllocator(const BigAllocator<U>&) {}
        T* allocate(size_t n) { return static_cast<T*>(bigAllocate(n * sizeof(T))); }
        void deallocate(T* p, size_t n) { bigFree(p, n * sizeof(T)); }
        template <class U> bool operator==(const BigAllocator<U>&) const { return true; }
    };
    // Rings of up to kPooledRing points come from pools, longer ones from the heap.
    void* takeRing(size_t bytes) override;
    void giveRing(void* p, size_t bytes) override;
    Pool* ringPool(size_t bytes);
    Ring newRing(uint32_t capacity);
    static void* bigAllocate(size_t bytes);
    static void bigFree(void* p, size_t bytes);

    struct Slot {
        void* ptr = nullptr;
        uint32_t index = 0; // points: index in the polygon ring
        Kind kind = Kind::None;
    };
    template <class T> T* get(Handle h, Kind k) const {
        if (h <= 0 || static_cast<size_t>(h) >= slots_.size()) return nullptr;
        const Slot& s = slots_[h];
        return s.kind == k ? static_cast<T*>(s.ptr) : nullptr;
    }
    Handle issue(Kind k, void* ptr, uint32_t index = 0);
    void retire(Handle h);
    void unlinkFromFather(Group& g);
    void reindexPoints(Polygon& p, uint32_t from);
    void compactOrder(Group& g);
    void linkPolygon(Polygon& p);

    std::vector<Slot, BigAllocator<Slot>> slots_;
    Pool polygonPool_{sizeof(Polygon)};
    std::unique_ptr<Pool> ringPools_[kPooledRing]; // by points - 1
    std::thread mapper_;                           // maps reserved pages in during a bulk creation
    void waitForMapper();
    Group* groupsHead_ = nullptr;
    Group* groupsTail_ = nullptr;
    Polygon* polygonsHead_ = nullptr;
    Polygon* polygonsTail_ = nullptr;
    size_t groupCount_ = 0, polygonCount_ = 0;
    uint64_t treeGeneration_ = 0;
    mutable uint64_t upwardSteps_ = 0;

    // Small families: vectors of owned pointers in creation order.
    std::vector<Camera*> camerasV_;
    std::vector<Light*> lights_;
    std::vector<Track*> tracks_;
    std::vector<Background*> backgrounds_;
    std::vector<Bitmap*> bitmaps_;
    std::vector<Animation*> animations_;

    template <class T> void eraseFrom(std::vector<T*>& v, T* x);
};

template <> inline const std::vector<Camera*>& World::list<Camera>() const {
    return camerasV_;
}
template <> inline const std::vector<Light*>& World::list<Light>() const {
    return lights_;
}
template <> inline const std::vector<Track*>& World::list<Track>() const {
    return tracks_;
}
template <> inline const std::vector<Background*>& World::list<Background>() const {
    return backgrounds_;
}
template <> inline const std::vector<Bitmap*>& World::list<Bitmap>() const {
    return bitmaps_;
}
template <> inline const std::vector<Animation*>& World::list<Animation>() const {
    return animations_;
}

// The engine's single world (the C API is process-wide).
World& world();

} // namespace zelmar
