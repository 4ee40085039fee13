// Indexed 4-ary min-heap of edges ordered by (cost, index): the production's replacement for
// the linear scan of NextCheapestEdge. The order is the one the scan gives: strictly smaller
// cost first, the lower index on equal costs (-0.0 and 0.0 are equal, as for the scan's `<`).
// The index that breaks ties is the edge's index in the design (its order key, setOrder); the
// heap itself is addressed by the model's own record numbers.
// Only edges whose cost can ever be chosen are held (valid, cost >= -1e21, cost < 1e32; a NaN
// cost fails both tests). A held key may be below the edge's cost when the cost rose since it
// was set (see visitInOrder); never above it.
#pragma once
#include <algorithm>
#include <cstdint>
#include <limits>
#include <vector>

#include "simplify/BigArray.h"

namespace simplify {

class EdgeHeap {
public:
    struct Entry {
        double cost;
        int edge;
        int order = 0; // the tie-break: the edge's index in the design
    };

    // The order key of each edge (indexed by edge; an edge beyond it is its own key).
    void setOrder(const std::vector<std::int32_t>* order) { order_ = order; }
    int orderOf(int edge) const {
        return order_ && static_cast<std::size_t>(edge) < order_->size() ? (*order_)[static_cast<std::size_t>(edge)] : edge;
    }

    void clear() {
        heap_.clear();
        pos_.clear();
    }
    // Builds the heap from all entries at once (positions array sized for edges 0..maxEdge).
    void build(std::vector<Entry> entries, int maxEdge) {
        heap_ = std::move(entries);
        pos_.assign(static_cast<std::size_t>(maxEdge) + 1, -1);
        for (std::size_t i = 0; i < heap_.size(); ++i) {
            pos_[static_cast<std::size_t>(heap_[i].edge)] = static_cast<int>(i);
            heap_[i].order = orderOf(heap_[i].edge);
        }
        if (heap_.size() > 1)
            for (std::size_t i = (heap_.size() - 2) / kArity + 1; i-- > 0;) down(i);
    }
    bool empty() const { return heap_.empty(); }
    std::size_t size() const { return heap_.size(); }
    const Entry& top() const { return heap_.front(); }
    bool contains(int edge) const {
        return edge >= 0 && static_cast<std::size_t>(edge) < pos_.size() && pos_[static_cast<std::size_t>(edge)] >= 0;
    }
    // Asks the memory for the edge's slot ahead of a set or remove.
    void prefetch(int edge) const {
        if (static_cast<std::size_t>(edge) >= pos_.size()) return;
        const int p = pos_[static_cast<std::size_t>(edge)];
        if (p >= 0) __builtin_prefetch(&heap_[static_cast<std::size_t>(p)]);
    }
    // Inserts or moves an edge to its new cost.
    void set(int edge, double cost) {
        if (static_cast<std::size_t>(edge) >= pos_.size()) pos_.resize(static_cast<std::size_t>(edge) + 1, -1);
        int& p = pos_[static_cast<std::size_t>(edge)];
        if (p < 0) {
            p = static_cast<int>(heap_.size());
            heap_.push_back({cost, edge, orderOf(edge)});
            up(heap_.size() - 1);
            return;
        }
        const std::size_t i = static_cast<std::size_t>(p);
        const Entry old = heap_[i];
        heap_[i].cost = cost;
        if (less(heap_[i], old)) up(i);
        else down(i);
    }
    void remove(int edge) {
        if (!contains(edge)) return;
        const std::size_t i = static_cast<std::size_t>(pos_[static_cast<std::size_t>(edge)]);
        pos_[static_cast<std::size_t>(edge)] = -1;
        const Entry last = heap_.back();
        heap_.pop_back();
        if (i == heap_.size()) return;
        heap_[i] = last;
        pos_[static_cast<std::size_t>(last.edge)] = static_cast<int>(i);
        up(i);
        down(static_cast<std::size_t>(pos_[static_cast<std::size_t>(last.edge)]));
    }
    Entry pop() {
        const Entry e = heap_.front();
        remove(e.edge);
        return e;
    }
    // Visits the entries in (cost, index) order without changing the heap, until visit answers
    // true; answers that entry's edge, -1 when every entry was visited, or kLimitReached when the
    // next entry in order costs limit or more (it is not visited).
    //
    // An entry's key may be below its edge's true cost (trueCost(edge)): a rise in cost is left
    // in the heap until the entry comes up (keys are lower bounds, so the heap order still bounds
    // every subtree). Such an entry is visited at its true cost, in its place in the order, and
    // its edge is added to `stale`, for the caller to set to its true cost afterwards.
    static constexpr int kLimitReached = -2;
    template <class TrueCost, class Visit>
    int visitInOrder(TrueCost trueCost, Visit visit, std::vector<int>& stale, double limit = kNoLimit) {
        if (heap_.empty()) return -1;
        frontier_.clear();
        auto after = [](const Node& a, const Node& b) { return less(Entry{b.key, b.edge, b.order}, Entry{a.key, a.edge, a.order}); };
        auto push = [&](const Node& n) {
            frontier_.push_back(n);
            std::push_heap(frontier_.begin(), frontier_.end(), after);
        };
        push(Node{heap_[0].cost, heap_[0].edge, 0, heap_[0].order});
        while (!frontier_.empty()) {
            std::pop_heap(frontier_.begin(), frontier_.end(), after);
            const Node n = frontier_.back();
            if (!(n.key < limit)) return kLimitReached; // this and all that follow cost limit or more
            frontier_.pop_back();
            if (n.pos >= 0) {
                const std::size_t i = static_cast<std::size_t>(n.pos);
                for (std::size_t c = kArity * i + 1; c <= kArity * i + kArity && c < heap_.size(); ++c)
                    push(Node{heap_[c].cost, heap_[c].edge, static_cast<int>(c), heap_[c].order});
                const double cost = trueCost(n.edge);
                if (less(Entry{n.key, n.edge, n.order}, Entry{cost, n.edge, n.order})) { // risen: visit it at its true cost
                    stale.push_back(n.edge);
                    push(Node{cost, n.edge, -1, n.order});
                    continue;
                }
            }
            if (visit(Entry{n.key, n.edge, n.order})) return n.edge;
        }
        return -1;
    }

    std::size_t memoryBytes() const { return heap_.capacity() * sizeof(Entry) + pos_.capacity() * sizeof(int); }

    static constexpr double kNoLimit = std::numeric_limits<double>::infinity();
    static bool less(const Entry& a, const Entry& b) {
        return a.cost < b.cost || (!(b.cost < a.cost) && a.order < b.order);
    }

private:
    static constexpr std::size_t kArity = 4;
    void place(std::size_t i, const Entry& e) {
        heap_[i] = e;
        pos_[static_cast<std::size_t>(e.edge)] = static_cast<int>(i);
    }
    void up(std::size_t i) {
        const Entry e = heap_[i];
        while (i > 0) {
            const std::size_t parent = (i - 1) / kArity;
            if (!less(e, heap_[parent])) break;
            place(i, heap_[parent]);
            i = parent;
        }
        place(i, e);
    }
    void down(std::size_t i) {
        const Entry e = heap_[i];
        const std::size_t n = heap_.size();
        for (;;) {
            const std::size_t first = kArity * i + 1;
            if (first >= n) break;
            std::size_t child = first;
            const std::size_t last = std::min(first + kArity, n);
            for (std::size_t c = first + 1; c < last; ++c)
                if (less(heap_[c], heap_[child])) child = c;
            if (!less(heap_[child], e)) break;
            place(i, heap_[child]);
            i = child;
        }
        place(i, e);
    }

    struct Node {
        double key;
        int edge;
        int pos; // -1: an edge visited at its risen cost, not a heap slot
        int order;
    };
    std::vector<Entry> heap_;
    BigVector<int> pos_;
    std::vector<Node> frontier_;
    const std::vector<std::int32_t>* order_ = nullptr;
};

} // namespace simplify
