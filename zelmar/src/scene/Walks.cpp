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
        uint64_t tree = 0;  // World::treeGeneration() when `last` was answered
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
        *slot = Record{root, 0, 0, 0, ++clock_, 0, world().treeGeneration()};
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
        r->tree = world().treeGeneration();
    }
    // What the walk answered last is still in its root's subtree if no group has moved
    // since; else the caller checks (a walk up to the root).
    static bool stillInside(const Record* r) { return r && r->tree == world().treeGeneration(); }
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
// `inside`: g is known to be in root's subtree.
Handle stepFrom(WalkTable& t, WalkTable::Record* r, const Group* g, uint32_t index, const Group* root,
                bool inside) {
    const World& w = world();
    Handle h = 0;
    const Group* where = g;
    uint32_t at = liveFrom(*g, index + 1);
    if (at < g->order.size())
        h = g->order[at];
    else if (root && (inside || w.inSubtree(*g, *root)))
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
            return stepFrom(t, r, g, r->index, w.group(r->root), WalkTable::stillInside(r));
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
    return stepFrom(t, r, g, current.orderIndex, root, false);
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
    if (root && (WalkTable::stillInside(r) || w.inSubtree(current, *root)))
        next = World::nextInSubtree(&current, root);
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

const Group* nextAfterSubtree(const Group* g, const Group* root) {
    for (const Group* n = g; n && n != root; n = n->father)
        if (n->nextSibling) return n->nextSibling;
    return nullptr;
}

namespace {
// Root's subtree in pre-order without the disabled groups and all below them (each climb
// after a skipped or finished subtree goes over edges never climbed again: linear).
template <class F> void forEachEnabled(const Group* root, F f) {
    for (const Group* g = root; g;) {
        if (g->disabled) {
            g = nextAfterSubtree(g, root);
            continue;
        }
        f(g);
        g = World::nextInSubtree(g, root);
    }
}
} // namespace

std::vector<const Group*> enabledGroups(const Group* root) {
    std::vector<const Group*> out;
    if (root) {
        for (const Group* a = root->father; a; a = a->father)
            if (a->disabled) return out;
        forEachEnabled(root, [&](const Group* g) { out.push_back(g); });
        return out;
    }
    // Every tree in pre-order marks its enabled groups; they are then taken in creation order.
    static uint64_t passes = 0;
    const uint64_t pass = ++passes;
    const World& w = world();
    size_t n = 0;
    for (const Group* g = w.firstGroup(); g; g = g->nextInWorld)
        if (!g->father) forEachEnabled(g, [&](const Group* x) { x->enabledPass = pass, ++n; });
    out.reserve(n);
    for (const Group* g = w.firstGroup(); g; g = g->nextInWorld)
        if (g->enabledPass == pass) out.push_back(g);
    return out;
}

void resetWalks() {
    polygonWalks().reset();
    groupWalks().reset();
}

} // namespace zelmar
