#include "scene/Walks.h"

#include "scene/World.h"

namespace zelmar {

namespace {
class WalkTable {
  public:
    struct Record {
        Handle root = 0;
        Handle last = 0; // 0: free slot
        uint64_t used = 0;
    };

    void open(Handle root, Handle first) {
        if (!first) return;
        Record* slot = &records_[0];
        for (Record& r : records_) {
            if (r.last == 0) {
                slot = &r;
                break;
            }
            if (r.used < slot->used) slot = &r;
        }
        *slot = Record{root, first, ++clock_};
    }
    // The most recently used walk that answered `last`, or nullptr.
    Record* find(Handle last) {
        Record* best = nullptr;
        for (Record& r : records_)
            if (r.last == last && (!best || r.used > best->used)) best = &r;
        return best;
    }
    void advance(Record* r, Handle next) {
        if (!r) return;
        if (next) {
            r->last = next;
            r->used = ++clock_;
        } else {
            *r = Record{};
        }
    }
    void reset() {
        for (Record& r : records_)
            r = Record{};
    }

  private:
    Record records_[16];
    uint64_t clock_ = 0;
};

WalkTable& polygonWalks() {
    static WalkTable t;
    return t;
}
WalkTable& groupWalks() {
    static WalkTable t;
    return t;
}

// First polygon at or after group g in the pre-order of root's subtree.
const Polygon* firstFrom(const Group* g, const Group* root) {
    for (; g; g = World::nextInSubtree(g, root))
        if (g->firstPolygon) return g->firstPolygon;
    return nullptr;
}
} // namespace

Handle firstPolygonOfSubtree(const Group& root) {
    const Polygon* p = firstFrom(&root, &root);
    const Handle h = p ? p->handle : 0;
    polygonWalks().open(root.handle, h);
    return h;
}

Handle nextPolygonOfSubtree(const Polygon& current) {
    World& w = world();
    WalkTable& t = polygonWalks();
    WalkTable::Record* rec = t.find(current.handle);
    const Group* g = current.group;
    const Group* root = rec ? w.group(rec->root) : World::topOf(current.group);
    const Polygon* next = nullptr;
    // The depth test only when the walk leaves a group, so that a step stays O(1).
    if (g && root) {
        if (current.nextInGroup)
            next = current.nextInGroup;
        else if (w.inSubtree(*g, *root))
            next = firstFrom(World::nextInSubtree(g, root), root);
    }
    const Handle h = next ? next->handle : 0;
    if (rec)
        t.advance(rec, h);
    else if (h && root)
        t.open(root->handle, h);
    return h;
}

Handle firstIncludedGroup(const Group& root) {
    const Handle h = root.firstChild ? root.firstChild->handle : 0;
    groupWalks().open(root.handle, h);
    return h;
}

Handle nextIncludedGroup(const Group& current) {
    World& w = world();
    WalkTable& t = groupWalks();
    WalkTable::Record* rec = t.find(current.handle);
    const Group* root = rec ? w.group(rec->root) : World::topOf(const_cast<Group*>(&current));
    const Group* next = nullptr;
    if (root && w.inSubtree(current, *root)) next = World::nextInSubtree(&current, root);
    const Handle h = next ? next->handle : 0;
    if (rec)
        t.advance(rec, h);
    else if (h && root)
        t.open(root->handle, h);
    return h;
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
