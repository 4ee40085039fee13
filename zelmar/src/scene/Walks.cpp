#include "scene/Walks.h"

#include "scene/World.h"

namespace zelmar {

namespace {
// Open walks: root, the handle answered last, and where that handle sits (group and index in
// the group's order array), so that a step reads one array instead of the polygon itself.
class WalkTable {
  public:
    struct Record {
        Handle root = 0;
        Handle last = 0; // 0: free slot
        Handle group = 0;
        uint32_t index = 0;
        uint64_t used = 0;
        uint64_t steps = 0; // "next" calls answered
    };

    // A free slot; else, when two or more walks have not taken a step yet (a "first" used
    // only to look, as in an emptiness test), the latest of them, so that a run of such
    // looks reuses one slot and an outer walk that has just begun survives it; else the
    // least recently used walk (most likely one left unfinished).
    Record* open(Handle root) {
        Record* free = nullptr;
        Record* latestProbe = nullptr;
        Record* oldest = nullptr;
        int probes = 0;
        for (Record& r : records_) {
            if (r.last == 0) {
                free = &r;
                break;
            }
            if (r.steps == 0) {
                ++probes;
                if (!latestProbe || r.used > latestProbe->used) latestProbe = &r;
            } else if (!oldest || r.used < oldest->used) {
                oldest = &r;
            }
        }
        Record* slot = free ? free : (probes >= 2 || !oldest ? latestProbe : oldest);
        *slot = Record{root, 0, 0, 0, ++clock_, 0};
        recent_ = static_cast<size_t>(slot - records_);
        return slot;
    }
    // The most recently used walk that answered `last`, or nullptr.
    Record* find(Handle last) {
        if (last && records_[recent_].last == last) return &records_[recent_]; // the usual loop
        Record* best = nullptr;
        for (Record& r : records_)
            if (r.last == last && last && (!best || r.used > best->used)) best = &r;
        if (best) recent_ = static_cast<size_t>(best - records_);
        return best;
    }
    void touch(Record* r) {
        r->used = ++clock_;
        ++r->steps;
    }
    void close(Record* r) { *r = Record{}; }
    void reset() {
        for (Record& r : records_)
            r = Record{};
    }

  private:
    Record records_[32];
    uint64_t clock_ = 0;
    size_t recent_ = 0;
};

WalkTable& polygonWalks() {
    static WalkTable t;
    return t;
}
WalkTable& groupWalks() {
    static WalkTable t;
    return t;
}

// The first live entry of g's order at or after i; order.size() if none.
uint32_t liveFrom(const Group& g, uint32_t i) {
    const uint32_t n = static_cast<uint32_t>(g.order.size());
    while (i < n && g.order[i] == 0)
        ++i;
    return i;
}

// From group g (included) on in root's pre-order: the first polygon; fills group and index.
Handle firstFrom(const Group* g, const Group* root, const Group*& where, uint32_t& index) {
    for (; g; g = World::nextInSubtree(g, root)) {
        if (g->ownPolygons == 0) continue;
        const uint32_t i = liveFrom(*g, 0);
        if (i < g->order.size()) {
            where = g;
            index = i;
            return g->order[i];
        }
    }
    return 0;
}

// The answer of one step from (g, index) in root's subtree, recorded in r (closed at the end).
Handle stepFrom(WalkTable& t, WalkTable::Record* r, const Group* g, uint32_t index, const Group* root) {
    const World& w = world();
    Handle h = 0;
    const Group* where = g;
    uint32_t at = liveFrom(*g, index + 1);
    if (at < g->order.size())
        h = g->order[at];
    else if (root && w.inSubtree(*g, *root))
        h = firstFrom(World::nextInSubtree(g, root), root, where, at);
    if (!h) {
        if (r) t.close(r);
        return 0;
    }
    if (!r) r = t.open(root->handle);
    r->last = h;
    r->group = where->handle;
    r->index = at;
    t.touch(r);
    return h;
}
} // namespace

Handle firstPolygonOfSubtree(const Group& root) {
    const Group* where = nullptr;
    uint32_t index = 0;
    const Handle h = firstFrom(&root, &root, where, index);
    if (h) {
        WalkTable& t = polygonWalks();
        WalkTable::Record* r = t.open(root.handle);
        r->last = h;
        r->group = where->handle;
        r->index = index;
    }
    return h;
}

Handle nextPolygonOfSubtree(Handle h) {
    const World& w = world();
    WalkTable& t = polygonWalks();
    WalkTable::Record* r = t.find(h);
    if (r) {
        const Group* g = w.group(r->group);
        // Where the walk left it still holds it: no need to look at the polygon itself.
        if (g && r->index < g->order.size() && g->order[r->index] == h)
            return stepFrom(t, r, g, r->index, w.group(r->root));
    }
    const Polygon* p = w.polygon(h);
    if (!p) {
        if (r) t.close(r);
        return 0;
    }
    const Polygon& current = *p;
    // Moved, compacted, or not from an open walk: start from the polygon's own place.
    const Group* g = current.group;
    if (!g) {
        if (r) t.close(r);
        return 0;
    }
    const Group* root = r ? w.group(r->root) : World::topOf(current.group);
    if (!root) {
        t.close(r);
        return 0;
    }
    return stepFrom(t, r, g, current.orderIndex, root);
}

Handle firstIncludedGroup(const Group& root) {
    const Handle h = root.firstChild ? root.firstChild->handle : 0;
    if (h) {
        WalkTable& t = groupWalks();
        t.open(root.handle)->last = h;
    }
    return h;
}

Handle nextIncludedGroup(const Group& current) {
    World& w = world();
    WalkTable& t = groupWalks();
    WalkTable::Record* r = t.find(current.handle);
    const Group* root = r ? w.group(r->root) : World::topOf(const_cast<Group*>(&current));
    const Group* next = nullptr;
    if (root && w.inSubtree(current, *root)) next = World::nextInSubtree(&current, root);
    if (!next) {
        if (r) t.close(r);
        return 0;
    }
    if (!r) r = t.open(root->handle);
    r->last = next->handle;
    t.touch(r);
    return next->handle;
}

int64_t countPolygonsOfSubtree(const Group& root) {
    int64_t n = 0;
    for (const Group* g = &root; g; g = World::nextInSubtree(g, &root))
        n += g->ownPolygons;
    return n;
}

void resetWalks() {
    polygonWalks().reset();
    groupWalks().reset();
}

} // namespace zelmar
