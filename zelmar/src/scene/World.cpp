#include "scene/World.h"
#include "scene/BitmapStore.h"
#include <algorithm>
#include <cstdint>
#include <new>
#include <sys/mman.h>
#include <utility>

#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/asan_interface.h>
#define ZELMAR_POISON(p, n) ASAN_POISON_MEMORY_REGION(p, n)
#define ZELMAR_UNPOISON(p, n) ASAN_UNPOISON_MEMORY_REGION(p, n)
#else
#define ZELMAR_POISON(p, n) ((void)(p), (void)(n))
#define ZELMAR_UNPOISON(p, n) ((void)(p), (void)(n))
#endif

namespace zelmar {

namespace {

constexpr size_t kBlockBytes = size_t(2) << 20; // a huge page
constexpr size_t kBigBytes = size_t(4) << 20;   // from here on, vectors take huge pages

// `bytes` (a multiple of kBlockBytes) aligned on kBlockBytes, marked for huge pages.
void* mapAligned(size_t bytes) {
    void* raw =
        ::mmap(nullptr, bytes + kBlockBytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (raw == MAP_FAILED) throw std::bad_alloc();
    const uintptr_t a = reinterpret_cast<uintptr_t>(raw);
    const uintptr_t at = (a + kBlockBytes - 1) & ~(kBlockBytes - 1);
    if (at > a) ::munmap(raw, at - a);
    if (const size_t tail = a + kBlockBytes - at) ::munmap(reinterpret_cast<void*>(at + bytes), tail);
#ifdef MADV_HUGEPAGE
    ::madvise(reinterpret_cast<void*>(at), bytes, MADV_HUGEPAGE);
#endif
    return reinterpret_cast<void*>(at);
}

size_t roundToBlocks(size_t bytes) {
    return (bytes + kBlockBytes - 1) & ~(kBlockBytes - 1);
}

} // namespace

void* World::bigAllocate(size_t bytes) {
    if (bytes < kBigBytes) return ::operator new(bytes);
    return mapAligned(roundToBlocks(bytes));
}

void World::bigFree(void* p, size_t bytes) {
    if (bytes < kBigBytes)
        ::operator delete(p);
    else
        ::munmap(p, roundToBlocks(bytes));
}

struct World::Pool::Block {
    Block* prev = nullptr; // the list of blocks with a free place
    Block* next = nullptr;
    void* freed = nullptr; // given-back places, linked through their first bytes
    size_t live = 0, bumped = 0;
    bool isOpen = false;
};

World::Pool::Pool(size_t placeBytes)
    : place_((std::max(placeBytes, sizeof(void*)) + alignof(std::max_align_t) - 1) &
             ~(alignof(std::max_align_t) - 1)),
      header_((sizeof(Block) + alignof(std::max_align_t) - 1) & ~(alignof(std::max_align_t) - 1)),
      perBlock_((kBlockBytes - header_) / place_) {}

World::Pool::~Pool() {
    trim(); // blocks still in use would be a leak of their owner's, not ours to free
}

void World::Pool::open(Block* b) {
    b->isOpen = true;
    b->prev = nullptr;
    b->next = open_;
    if (open_) open_->prev = b;
    open_ = b;
}

void World::Pool::close(Block* b) {
    b->isOpen = false;
    (b->prev ? b->prev->next : open_) = b->next;
    if (b->next) b->next->prev = b->prev;
    b->prev = b->next = nullptr;
}

std::pair<char*, size_t> World::Pool::reserve(size_t places) {
    const size_t n = (places + perBlock_ - 1) / perBlock_;
    if (n == 0) return {nullptr, 0};
    trimFresh();
    fresh_ = static_cast<char*>(mapAligned(n * kBlockBytes));
    freshEnd_ = fresh_ + n * kBlockBytes;
    blocks_ += n;
    return {fresh_, n * kBlockBytes};
}

void World::Pool::trimFresh() {
    if (fresh_ == freshEnd_) return;
    ::munmap(fresh_, static_cast<size_t>(freshEnd_ - fresh_));
    blocks_ -= static_cast<size_t>(freshEnd_ - fresh_) / kBlockBytes;
    fresh_ = freshEnd_ = nullptr;
}

void* World::Pool::take() {
    Block* b = open_;
    if (!b) {
        if (spare_) {
            b = std::exchange(spare_, nullptr);
        } else if (fresh_ != freshEnd_) { // its header is written only now: the mapper may be behind
            b = new (fresh_) Block();
            fresh_ += kBlockBytes;
            ZELMAR_POISON(reinterpret_cast<char*>(b) + header_, kBlockBytes - header_);
        } else {
            b = new (mapAligned(kBlockBytes)) Block();
            ++blocks_;
            ZELMAR_POISON(reinterpret_cast<char*>(b) + header_, kBlockBytes - header_);
        }
        open(b);
    }
    void* p;
    if (b->freed) {
        p = b->freed;
        ZELMAR_UNPOISON(p, place_);
        b->freed = *static_cast<void**>(p);
    } else {
        p = reinterpret_cast<char*>(b) + header_ + b->bumped++ * place_;
        ZELMAR_UNPOISON(p, place_);
    }
    if (++b->live == perBlock_) close(b);
    return p;
}

void World::Pool::give(void* place) {
    auto* b = reinterpret_cast<Block*>(reinterpret_cast<uintptr_t>(place) & ~(kBlockBytes - 1));
    if (b->live-- == perBlock_) open(b);
    if (b->live == 0) { // every place free: the block is kept as the spare or unmapped
        close(b);
        if (spare_) trim();
        *b = Block();
        ZELMAR_POISON(reinterpret_cast<char*>(b) + header_, kBlockBytes - header_);
        spare_ = b;
        return;
    }
    *static_cast<void**>(place) = b->freed;
    b->freed = place;
    ZELMAR_POISON(place, place_);
}

void World::Pool::trim() {
    trimFresh();
    if (!spare_) return;
    ZELMAR_UNPOISON(spare_, kBlockBytes);
    ::munmap(spare_, kBlockBytes);
    spare_ = nullptr;
    --blocks_;
}

World& world() {
    static World w;
    return w;
}

World::World() {
    for (size_t i = 0; i < kPooledRing; ++i)
        ringPools_[i] = std::make_unique<Pool>((i + 1) * sizeof(PointData));
    slots_.reserve(1024);
    slots_.emplace_back();
} // handle 0 is never issued

World::~World() {
    clear();
}

Kind World::kindOf(Handle h) const {
    if (h <= 0 || static_cast<size_t>(h) >= slots_.size()) return Kind::None;
    return slots_[h].kind;
}

Handle World::issue(Kind k, void* ptr, uint32_t index) {
    if (slots_.size() >= static_cast<size_t>(INT32_MAX)) return 0; // handle space exhausted
    slots_.push_back(Slot{ptr, index, k});
    return static_cast<Handle>(slots_.size() - 1);
}

void World::retire(Handle h) {
    if (h > 0 && static_cast<size_t>(h) < slots_.size()) slots_[h] = Slot{};
}

PointData* World::point(Handle h, Polygon** owner, uint32_t* index) const {
    if (h <= 0 || static_cast<size_t>(h) >= slots_.size()) return nullptr;
    const Slot& s = slots_[h];
    if (s.kind != Kind::Point) return nullptr;
    auto* p = static_cast<Polygon*>(s.ptr);
    if (owner) *owner = p;
    if (index) *index = s.index;
    return &p->points[s.index];
}

template <class T> void World::eraseFrom(std::vector<T*>& v, T* x) {
    const uint32_t pos = x->listPos;
    v.erase(v.begin() + pos);
    for (uint32_t i = pos; i < v.size(); ++i)
        v[i]->listPos = i;
}

namespace {
template <class T> T* makeNamed(std::vector<T*>& list, const std::string& name) {
    T* x = new T();
    x->name = name;
    x->listPos = static_cast<uint32_t>(list.size());
    list.push_back(x);
    return x;
}
} // namespace

Group* World::createGroup(const std::string& name) {
    auto* g = new Group();
    g->name = name;
    g->handle = issue(Kind::Group, g);
    g->prevInWorld = groupsTail_;
    (groupsTail_ ? groupsTail_->nextInWorld : groupsHead_) = g;
    groupsTail_ = g;
    ++groupCount_;
    touch();
    return g;
}

World::Pool* World::ringPool(size_t bytes) {
    const size_t n = bytes / sizeof(PointData);
    return bytes % sizeof(PointData) == 0 && n >= 1 && n <= kPooledRing ? ringPools_[n - 1].get() : nullptr;
}

void* World::takeRing(size_t bytes) {
    Pool* pool = ringPool(bytes);
    return pool ? pool->take() : ::operator new(bytes);
}

void World::giveRing(void* p, size_t bytes) {
    if (Pool* pool = ringPool(bytes))
        pool->give(p);
    else
        ::operator delete(p);
}

size_t World::polygonBlocks() const {
    size_t n = polygonPool_.blocks();
    for (const auto& pool : ringPools_)
        n += pool->blocks();
    return n;
}

Ring World::newRing(uint32_t capacity) {
    Ring r{RingAllocator<PointData>(this)};
    r.reserve(capacity);
    return r;
}

void World::linkPolygon(Polygon& p) {
    p.handle = issue(Kind::Polygon, &p);
    p.prevInWorld = polygonsTail_;
    (polygonsTail_ ? polygonsTail_->nextInWorld : polygonsHead_) = &p;
    polygonsTail_ = &p;
    ++polygonCount_;
}

Polygon* World::createPolygon() {
    auto* p = new (polygonPool_.take()) Polygon();
    p->points = newRing(4); // the common quad needs no further allocation
    linkPolygon(*p);
    touch();
    return p;
}

void World::reserveHandles(size_t more) {
    slots_.reserve(std::min(slots_.size() + more, static_cast<size_t>(INT32_MAX)));
}

Polygon* World::createPolygonFrom(const Polygon& style, uint32_t points) {
    auto* p = new (polygonPool_.take()) Polygon(style);
    p->group = nullptr;
    p->prevInGroup = p->nextInGroup = p->prevInWorld = p->nextInWorld = nullptr;
    p->points = newRing(points);
    p->name.clear();
    p->addedToWorld = false;
    p->orderIndex = 0;
    p->version = 0;
    linkPolygon(*p);
    return p;
}

PointData* World::appendPoints(Polygon& p, uint32_t n, const PointData& init) {
    const auto first = static_cast<uint32_t>(p.points.size());
    p.points.resize(first + n, init);
    for (uint32_t i = first; i < first + n; ++i)
        p.points[i].handle = issue(Kind::Point, &p, i);
    p.version += n; // as n addPoint calls would
    return p.points.data() + first;
}

void World::reservePolygons(size_t polygons, const size_t (&ringsOfSize)[kPooledRing + 1]) {
    waitForMapper();
    std::vector<std::pair<char*, size_t>> regions;
    // The handle table's reserved tail fills along with the rest.
    const uintptr_t used = reinterpret_cast<uintptr_t>(slots_.data() + slots_.size()) & ~uintptr_t(4095);
    const uintptr_t end = reinterpret_cast<uintptr_t>(slots_.data() + slots_.capacity());
    if (slots_.capacity() * sizeof(Slot) >= kBigBytes && end > used)
        regions.emplace_back(reinterpret_cast<char*>(used), end - used);
    regions.push_back(polygonPool_.reserve(polygons));
    for (size_t k = 1; k <= kPooledRing; ++k)
        regions.push_back(ringPools_[k - 1]->reserve(ringsOfSize[k]));
#ifdef MADV_POPULATE_WRITE
    size_t total = 0;
    for (const auto& r : regions)
        total += r.second;
    if (total < (size_t(64) << 20)) return; // not worth a thread
    // Zeroing fresh pages is a good part of creating entities in bulk; another core can do it
    // ahead of the creation. The regions fill at the same pace, so they are mapped in step.
    mapper_ = std::thread([regions] {
        constexpr size_t kSteps = 256;
        for (size_t i = 0; i < kSteps; ++i)
            for (const auto& [at, bytes] : regions) {
                const size_t from = bytes / kSteps * i & ~size_t(4095);
                const size_t to = i + 1 == kSteps ? bytes : bytes / kSteps * (i + 1) & ~size_t(4095);
                if (to > from && ::madvise(at + from, to - from, MADV_POPULATE_WRITE) != 0) return;
            }
    });
#endif
}

void World::waitForMapper() {
    if (mapper_.joinable()) mapper_.join();
}

void World::endBulk() {
    waitForMapper();
    touch();
}

void World::appendToGroup(Polygon& p, Group& g) {
    p.group = &g;
    p.prevInGroup = g.lastPolygon;
    (g.lastPolygon ? g.lastPolygon->nextInGroup : g.firstPolygon) = &p;
    g.lastPolygon = &p;
    ++g.ownPolygons;
    ++g.version;
    p.orderIndex = static_cast<uint32_t>(g.order.size());
    g.order.push_back(p.handle);
}

void World::reindexPoints(Polygon& p, uint32_t from) {
    for (uint32_t i = from; i < p.points.size(); ++i)
        slots_[p.points[i].handle].index = i;
}

PointData& World::addPoint(Polygon& p, const PointData& data, bool atHead) {
    PointData d = data;
    const uint32_t index = atHead ? 0 : static_cast<uint32_t>(p.points.size());
    d.handle = issue(Kind::Point, &p, index);
    if (atHead) {
        p.points.insert(p.points.begin(), d);
        reindexPoints(p, 1);
    } else {
        p.points.push_back(d);
    }
    ++p.version;
    touch();
    return p.points[index];
}

void World::deletePoint(Polygon& p, uint32_t index) {
    if (index >= p.points.size()) return;
    retire(p.points[index].handle);
    p.points.erase(p.points.begin() + index);
    reindexPoints(p, index);
    ++p.version;
    touch();
}

void World::replaceRing(Polygon& p, const std::vector<PointData>& ring) {
    std::vector<Handle> kept;
    kept.reserve(ring.size());
    for (const PointData& d : ring)
        if (d.handle) kept.push_back(d.handle);
    std::sort(kept.begin(), kept.end());
    for (const PointData& d : p.points)
        if (!std::binary_search(kept.begin(), kept.end(), d.handle)) retire(d.handle);
    p.points.clear();
    for (const PointData& d : ring) {
        p.points.push_back(d);
        PointData& x = p.points.back();
        const uint32_t i = static_cast<uint32_t>(p.points.size() - 1);
        if (!x.handle) x.handle = issue(Kind::Point, &p, i);
    }
    reindexPoints(p, 0);
    changed(p);
}

Camera* World::createCamera(const std::string& name) {
    Camera* c = makeNamed(camerasV_, name);
    c->handle = issue(Kind::Camera, c);
    return c;
}
Light* World::createLight(const std::string& name) {
    Light* l = makeNamed(lights_, name);
    l->handle = issue(Kind::Light, l);
    touch();
    return l;
}
Track* World::createTrack(const std::string& name) {
    Track* t = makeNamed(tracks_, name);
    t->handle = issue(Kind::Track, t);
    return t;
}
Background* World::createBackground(const std::string& name) {
    Background* b = makeNamed(backgrounds_, name);
    b->handle = issue(Kind::Background, b);
    return b;
}
Bitmap* World::createBitmap(const std::string& name) {
    Bitmap* b = makeNamed(bitmaps_, name);
    b->handle = issue(Kind::Bitmap, b);
    return b;
}
Animation* World::createAnimation(const std::string& name) {
    Animation* a = makeNamed(animations_, name);
    a->handle = issue(Kind::Animation, a);
    return a;
}

void World::setPolygonGroup(Polygon& p, Group* g) {
    if (p.group == g) return;
    if (Group* old = p.group) {
        (p.prevInGroup ? p.prevInGroup->nextInGroup : old->firstPolygon) = p.nextInGroup;
        (p.nextInGroup ? p.nextInGroup->prevInGroup : old->lastPolygon) = p.prevInGroup;
        p.prevInGroup = p.nextInGroup = nullptr;
        --old->ownPolygons;
        ++old->version;
        old->order[p.orderIndex] = 0;
        if (++old->orderHoles > 16 && old->orderHoles * 2 > old->order.size()) compactOrder(*old);
    }
    p.group = nullptr;
    if (g) appendToGroup(p, *g);
    touch();
}

void World::insertPolygons(Group& g, const std::vector<std::pair<Polygon*, Polygon*>>& polygonAndBefore) {
    bool middle = false;
    for (const auto& [p, before] : polygonAndBefore) {
        if (!p) continue;
        if (p->group) setPolygonGroup(*p, nullptr);
        if (!before || before == p || before->group != &g) {
            appendToGroup(*p, g);
            continue;
        }
        p->group = &g;
        p->nextInGroup = before;
        p->prevInGroup = before->prevInGroup;
        (before->prevInGroup ? before->prevInGroup->nextInGroup : g.firstPolygon) = p;
        before->prevInGroup = p;
        ++g.ownPolygons;
        ++g.version;
        middle = true;
    }
    // Inserts in the middle leave the order table behind the list: it is made again once.
    if (middle) compactOrder(g);
    touch();
}

void World::compactOrder(Group& g) {
    g.order.clear();
    for (Polygon* p = g.firstPolygon; p; p = p->nextInGroup) {
        p->orderIndex = static_cast<uint32_t>(g.order.size());
        g.order.push_back(p->handle);
    }
    g.orderHoles = 0;
}

void World::destroyPolygon(Polygon& p) {
    setPolygonGroup(p, nullptr);
    for (const PointData& d : p.points)
        retire(d.handle);
    (p.prevInWorld ? p.prevInWorld->nextInWorld : polygonsHead_) = p.nextInWorld;
    (p.nextInWorld ? p.nextInWorld->prevInWorld : polygonsTail_) = p.prevInWorld;
    retire(p.handle);
    --polygonCount_;
    touch();
    p.~Polygon();
    polygonPool_.give(&p);
}

void World::unlinkFromFather(Group& g) {
    Group* f = g.father;
    if (!f) return;
    (g.prevSibling ? g.prevSibling->nextSibling : f->firstChild) = g.nextSibling;
    (g.nextSibling ? g.nextSibling->prevSibling : f->lastChild) = g.prevSibling;
    g.prevSibling = g.nextSibling = nullptr;
    g.father = nullptr;
}

bool World::isIncludedIn(const Group& a, const Group& b) const {
    for (const Group* f = a.father; f; f = f->father) {
        ++upwardSteps_;
        if (f == &b) return true;
    }
    return false;
}

bool World::setFather(Group& g, Group* father) {
    // Only a group with children can have the new father below it: a fresh group (every
    // link a load or a copy makes) is checked in constant time, not by a walk to the root.
    if (father == &g || (father && g.firstChild && isIncludedIn(*father, g))) return false; // a cycle
    if (g.father) ++g.father->version;
    unlinkFromFather(g);
    if (father) {
        g.father = father;
        g.prevSibling = father->lastChild;
        (father->lastChild ? father->lastChild->nextSibling : father->firstChild) = &g;
        father->lastChild = &g;
        ++father->version;
    }
    ++g.version;
    ++treeGeneration_;
    touch();
    return true;
}

bool World::setFatherBefore(Group& g, Group* father, Group* before) {
    if (!setFather(g, father)) return false;
    if (!father || !before || before == &g || before->father != father) return true;
    // setFather appended g: move it in front of `before`.
    (g.prevSibling ? g.prevSibling->nextSibling : father->firstChild) = g.nextSibling;
    (g.nextSibling ? g.nextSibling->prevSibling : father->lastChild) = g.prevSibling;
    g.nextSibling = before;
    g.prevSibling = before->prevSibling;
    (before->prevSibling ? before->prevSibling->nextSibling : father->firstChild) = &g;
    before->prevSibling = &g;
    return true;
}

Group* World::topOf(Group* g) {
    while (g && g->father)
        g = g->father;
    return g;
}

void World::reverseRing(Polygon& p) {
    if (p.points.size() < 3) return;
    std::reverse(p.points.begin() + 1, p.points.end());
    reindexPoints(p, 1);
    changed(p);
}

Group* World::nextInSubtree(const Group* g, const Group* root) {
    if (g->firstChild) return g->firstChild;
    for (const Group* n = g; n && n != root; n = n->father)
        if (n->nextSibling) return n->nextSibling;
    return nullptr;
}

void World::destroyGroupTree(Group& root) {
    // Iterative post-order: file-made trees can be deeper than the stack.
    Group* g = &root;
    for (;;) {
        while (g->firstChild)
            g = g->firstChild;
        Group* up = (g == &root) ? nullptr : g->father;
        while (g->firstPolygon)
            destroyPolygon(*g->firstPolygon);
        unlinkFromFather(*g);
        (g->prevInWorld ? g->prevInWorld->nextInWorld : groupsHead_) = g->nextInWorld;
        (g->nextInWorld ? g->nextInWorld->prevInWorld : groupsTail_) = g->prevInWorld;
        retire(g->handle);
        --groupCount_;
        delete g;
        if (!up) break;
        g = up;
    }
    ++treeGeneration_;
    touch();
}

void World::destroyCamera(Camera& c) {
    eraseFrom(camerasV_, &c);
    retire(c.handle);
    delete &c;
}
void World::destroyLight(Light& l) {
    eraseFrom(lights_, &l);
    retire(l.handle);
    touch();
    delete &l;
}
void World::destroyTrack(Track& t) {
    eraseFrom(tracks_, &t);
    retire(t.handle);
    delete &t;
}
void World::destroyBackground(Background& b) {
    eraseFrom(backgrounds_, &b);
    retire(b.handle);
    delete &b;
}
void World::destroyBitmap(Bitmap& b) {
    eraseFrom(bitmaps_, &b);
    retire(b.handle);
    touch();
    delete &b;
}
void World::destroyBitmaps(const std::vector<Bitmap*>& doomed) {
    if (doomed.empty()) return;
    std::vector<bool> gone(bitmaps_.size(), false);
    for (Bitmap* b : doomed)
        if (b && b->listPos < bitmaps_.size() && bitmaps_[b->listPos] == b) gone[b->listPos] = true;
    size_t kept = 0;
    for (size_t i = 0; i < bitmaps_.size(); ++i) {
        Bitmap* b = bitmaps_[i];
        if (gone[i]) {
            retire(b->handle);
            delete b;
            continue;
        }
        b->listPos = static_cast<uint32_t>(kept);
        bitmaps_[kept++] = b;
    }
    bitmaps_.resize(kept);
    touch();
}
void World::destroyAnimation(Animation& a) {
    eraseFrom(animations_, &a);
    retire(a.handle);
    delete &a;
}

void World::clear() {
    waitForMapper();
    // Polygons not yet owned by a group go too.
    while (groupsHead_) {
        Group* top = groupsHead_;
        while (top->father)
            top = top->father;
        destroyGroupTree(*top);
    }
    while (polygonsHead_)
        destroyPolygon(*polygonsHead_);
    while (!camerasV_.empty())
        destroyCamera(*camerasV_.back());
    while (!lights_.empty())
        destroyLight(*lights_.back());
    while (!tracks_.empty())
        destroyTrack(*tracks_.back());
    while (!backgrounds_.empty())
        destroyBackground(*backgrounds_.back());
    while (!animations_.empty())
        destroyAnimation(*animations_.back());
    while (!bitmaps_.empty())
        destroyBitmap(*bitmaps_.back());
    bitmaps::clearMissing();
    polygonPool_.trim();
    for (auto& pool : ringPools_)
        pool->trim();
    touch();
}

bool World::empty() const {
    return !groupsHead_ && !polygonsHead_ && camerasV_.empty() && lights_.empty() && tracks_.empty() &&
           backgrounds_.empty() && bitmaps_.empty() && animations_.empty();
}

Group* World::groupByName(const std::string& name) const {
    for (Group* g = groupsHead_; g; g = g->nextInWorld)
        if (g->name == name) return g;
    return nullptr;
}

} // namespace zelmar
