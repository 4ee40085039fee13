#include "rays/PickScene.h"

#include "rays/Device.h"
#include "rays/Narrow.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <limits>
#include <mutex>
#include <numeric>

namespace zelmar::rays {

namespace {

struct MemberData {
    RTCScene scene = nullptr;
    std::vector<float> points; // shared with the kernel, padded by one float
    std::vector<uint32_t> triangles; // corners a, b, c and the caller's word
    double origin[3] = {0, 0, 0};
    double local[6] = {0, 0, 0, 0, 0, 0}; // box of the points relative to the origin
    bool live = false;
    uint32_t leaf = 0; // its node in the hierarchy, while live
};

// The hierarchy of the members' boxes: a node is a leaf when count > 0.
struct Node {
    double box[6];
    uint32_t left = 0, right = 0; // inner nodes: children
    uint32_t member = 0, count = 0;
    uint32_t parent = 0;
};

struct Context {
    RTCIntersectContext base;
    PickScene::Accept accept;
    void* user;
    PickScene::Member member;
    PickScene::Hit best;
    bool found;
};

void filter(const RTCFilterFunctionNArguments* a) {
    Context* c = reinterpret_cast<Context*>(a->context);
    for (unsigned i = 0; i < a->N; ++i) {
        if (a->valid[i] != -1) continue;
        const uint32_t tri = RTCHitN_primID(a->hit, a->N, i);
        double t = 0;
        if (c->accept(c->user, c->member, tri, t) && t < c->best.t) {
            c->best = {c->member, tri, t};
            c->found = true;
        } else {
            a->valid[i] = 0;
        }
    }
}

// Entry and exit of the ray in the box, within [t0, t1]; false when it misses. Inlined into
// the traversal and free of unpredictable branches: a click tests dozens of boxes.
inline bool slab(const double org[3], const double inv[3], const double box[6], double& t0, double& t1) {
    for (int k = 0; k < 3; ++k) {
        const double a = (box[k] - org[k]) * inv[k], b = (box[k + 3] - org[k]) * inv[k];
        if (a != a || b != b) [[unlikely]] { // parallel to the slab with the origin on a face
            if (org[k] < box[k] || org[k] > box[k + 3]) return false;
            continue;
        }
        const bool swap = a > b; // selects rather than branches
        t0 = std::max(t0, swap ? b : a);
        t1 = std::min(t1, swap ? a : b);
    }
    return t0 <= t1;
}

} // namespace

// What the traversal reads of a member it enters, copied out of MemberData at each commit
// into one array: a click enters a few members and would otherwise miss the cache on each.
struct Entered {
    RTCScene scene = nullptr;
    double origin[3] = {0, 0, 0};
};

struct PickScene::Impl {
    std::vector<std::unique_ptr<MemberData>> members;
    std::vector<Entered> entered; // by member, valid for live members after a commit
    std::vector<Member> freeIds;
    std::vector<Node> nodes;
    // Changes since the last commit: members whose box moved, and whether members came,
    // went, or gained or lost their last triangle (then the hierarchy is built anew).
    std::mutex changesMutex;
    std::vector<Member> moved;
    bool rebuild = false;
    size_t refitsSinceBuild = 0;

    void changed(Member m, bool structure) {
        std::lock_guard<std::mutex> lock(changesMutex);
        moved.push_back(m);
        rebuild = rebuild || structure;
    }

    MemberData* get(Member m) const { return m < members.size() ? members[m].get() : nullptr; }
    void worldBox(const MemberData& m, double box[6]) const {
        // Widened a little: the points are single precision.
        double size = 0;
        for (int k = 0; k < 3; ++k)
            size = std::max(size, m.local[k + 3] - m.local[k]);
        for (int k = 0; k < 3; ++k) {
            const double pad = 1e-6 * (size + std::fabs(m.local[k]) + std::fabs(m.local[k + 3])) + 1e-9 * std::fabs(m.origin[k]);
            box[k] = m.origin[k] + m.local[k] - pad;
            box[k + 3] = m.origin[k] + m.local[k + 3] + pad;
        }
    }
    void build();
    void refit();
    void enter(Member id) {
        const MemberData& m = *members[id];
        if (entered.size() < members.size()) entered.resize(members.size());
        entered[id].scene = m.scene;
        std::copy(m.origin, m.origin + 3, entered[id].origin);
    }
};

void PickScene::Impl::build() {
    nodes.clear();
    std::vector<Member> ids;
    std::vector<std::array<double, 6>> boxes(members.size());
    std::vector<std::array<double, 3>> centres(members.size());
    for (Member i = 0; i < members.size(); ++i) {
        const MemberData* m = members[i].get();
        if (!m || !m->live) continue;
        ids.push_back(i);
        worldBox(*m, boxes[i].data());
        for (int k = 0; k < 3; ++k)
            centres[i][k] = 0.5 * (boxes[i][k] + boxes[i][k + 3]);
    }
    if (ids.empty()) return;
    nodes.reserve(2 * ids.size());
    struct Task {
        uint32_t node, begin, end;
    };
    std::vector<Task> stack{{0, 0, static_cast<uint32_t>(ids.size())}};
    nodes.emplace_back();
    while (!stack.empty()) {
        const Task t = stack.back();
        stack.pop_back();
        double box[6] = {INFINITY, INFINITY, INFINITY, -INFINITY, -INFINITY, -INFINITY};
        double clo[3] = {INFINITY, INFINITY, INFINITY}, chi[3] = {-INFINITY, -INFINITY, -INFINITY};
        for (uint32_t i = t.begin; i < t.end; ++i)
            for (int k = 0; k < 3; ++k) {
                box[k] = std::min(box[k], boxes[ids[i]][k]);
                box[k + 3] = std::max(box[k + 3], boxes[ids[i]][k + 3]);
                clo[k] = std::min(clo[k], centres[ids[i]][k]);
                chi[k] = std::max(chi[k], centres[ids[i]][k]);
            }
        std::copy(box, box + 6, nodes[t.node].box);
        if (t.end - t.begin == 1) {
            nodes[t.node].member = ids[t.begin];
            nodes[t.node].count = 1;
            members[ids[t.begin]]->leaf = t.node;
            enter(ids[t.begin]);
            continue;
        }
        int axis = 0;
        for (int k = 1; k < 3; ++k)
            if (chi[k] - clo[k] > chi[axis] - clo[axis]) axis = k;
        const uint32_t mid = t.begin + (t.end - t.begin) / 2;
        std::nth_element(ids.begin() + t.begin, ids.begin() + mid, ids.begin() + t.end,
                         [&](Member a, Member b) { return centres[a][axis] < centres[b][axis]; });
        const uint32_t left = static_cast<uint32_t>(nodes.size());
        nodes.emplace_back();
        nodes.emplace_back();
        nodes[t.node].left = left;
        nodes[t.node].right = left + 1;
        nodes[left].parent = nodes[left + 1].parent = t.node;
        stack.push_back({left, t.begin, mid});
        stack.push_back({left + 1, mid, t.end});
    }
}

void PickScene::Impl::refit() {
    for (const Member id : moved) {
        const MemberData* m = get(id);
        if (!m || !m->live) continue;
        uint32_t n = m->leaf;
        worldBox(*m, nodes[n].box);
        enter(id);
        while (n != 0) {
            n = nodes[n].parent;
            const double* a = nodes[nodes[n].left].box;
            const double* b = nodes[nodes[n].right].box;
            for (int k = 0; k < 3; ++k) {
                nodes[n].box[k] = std::min(a[k], b[k]);
                nodes[n].box[k + 3] = std::max(a[k + 3], b[k + 3]);
            }
        }
    }
}

PickScene::PickScene() : impl_(std::make_unique<Impl>()) {}

PickScene::~PickScene() {
    for (auto& m : impl_->members)
        if (m && m->scene) rtcReleaseScene(m->scene);
}

PickScene::Member PickScene::add() {
    Impl& s = *impl_;
    RTCDevice dev = device();
    if (!dev) return std::numeric_limits<Member>::max();
    auto m = std::make_unique<MemberData>();
    m->scene = rtcNewScene(dev);
    // Robust: no ray slips through the shared edge of two triangles.
    rtcSetSceneFlags(m->scene, RTC_SCENE_FLAG_ROBUST);
    rtcCommitScene(m->scene);
    Member id;
    if (!s.freeIds.empty()) {
        id = s.freeIds.back();
        s.freeIds.pop_back();
    } else {
        id = static_cast<Member>(s.members.size());
        s.members.emplace_back();
    }
    s.members[id] = std::move(m);
    return id;
}

void PickScene::remove(Member id) {
    Impl& s = *impl_;
    MemberData* m = s.get(id);
    if (!m) return;
    rtcReleaseScene(m->scene);
    s.members[id].reset();
    s.freeIds.push_back(id);
    s.rebuild = true;
}

void PickScene::setTriangles(Member id, std::vector<float>&& points, std::vector<uint32_t>&& triangles,
                             const double origin[3]) {
    MemberData* m = impl_->get(id);
    if (!m) return;
    rtcReleaseScene(m->scene);
    m->scene = rtcNewScene(device());
    rtcSetSceneFlags(m->scene, RTC_SCENE_FLAG_ROBUST);
    m->points = std::move(points);
    m->triangles = std::move(triangles);
    const size_t pointCount = m->points.size() / 3;
    m->points.push_back(0.0f);
    for (int k = 0; k < 3; ++k) {
        m->origin[k] = origin[k];
        m->local[k] = INFINITY;
        m->local[k + 3] = -INFINITY;
    }
    for (size_t i = 0; i < m->triangles.size(); ++i) {
        if (i % 4 == 3) continue; // the caller's word
        const uint32_t c = m->triangles[i];
        for (int k = 0; k < 3; ++k) {
            m->local[k] = std::min(m->local[k], static_cast<double>(m->points[c * 3 + k]));
            m->local[k + 3] = std::max(m->local[k + 3], static_cast<double>(m->points[c * 3 + k]));
        }
    }
    const bool wasLive = m->live;
    m->live = m->triangles.size() >= 4;
    impl_->changed(id, m->live != wasLive);
    if (m->live) {
        RTCGeometry g = rtcNewGeometry(device(), RTC_GEOMETRY_TYPE_TRIANGLE);
        rtcSetSharedGeometryBuffer(g, RTC_BUFFER_TYPE_VERTEX, 0, RTC_FORMAT_FLOAT3, m->points.data(), 0,
                                   3 * sizeof(float), pointCount);
        rtcSetSharedGeometryBuffer(g, RTC_BUFFER_TYPE_INDEX, 0, RTC_FORMAT_UINT3, m->triangles.data(), 0,
                                   4 * sizeof(uint32_t), m->triangles.size() / 4);
        rtcSetGeometryIntersectFilterFunction(g, filter);
        rtcCommitGeometry(g);
        rtcAttachGeometry(m->scene, g);
        rtcReleaseGeometry(g);
    }
    rtcCommitScene(m->scene);
}

bool PickScene::holds(Member id, const std::vector<float>& points, const std::vector<uint32_t>& triangles) const {
    const MemberData* m = impl_->get(id);
    return m && m->points.size() == points.size() + 1 && m->triangles == triangles &&
           std::memcmp(m->points.data(), points.data(), points.size() * sizeof(float)) == 0;
}

void PickScene::setOrigin(Member id, const double origin[3]) {
    MemberData* m = impl_->get(id);
    if (!m) return;
    for (int k = 0; k < 3; ++k)
        m->origin[k] = origin[k];
    impl_->changed(id, false);
}

const uint32_t* PickScene::triangles(Member id) const {
    const MemberData* m = impl_->get(id);
    return m ? m->triangles.data() : nullptr;
}

size_t PickScene::triangleWords(Member id) const {
    const MemberData* m = impl_->get(id);
    return m ? m->triangles.size() : 0;
}

const float* PickScene::points(Member id) const {
    const MemberData* m = impl_->get(id);
    return m ? m->points.data() : nullptr;
}

size_t PickScene::pointFloats(Member id) const {
    const MemberData* m = impl_->get(id);
    return m && !m->points.empty() ? m->points.size() - 1 : 0; // less the padding
}

void PickScene::commit() {
    // Boxes that moved are refitted; the hierarchy is built anew when members came or went,
    // or when refits may have spoilt it (a quarter of the members moved since the build).
    Impl& s = *impl_;
    s.refitsSinceBuild += s.moved.size();
    if (s.rebuild || s.refitsSinceBuild > s.members.size() / 4) {
        s.build();
        s.refitsSinceBuild = 0;
    } else {
        s.refit();
    }
    s.moved.clear();
    s.rebuild = false;
}

bool PickScene::nearest(const double org[3], const double dir[3], double tNear, double tFar, Accept accept,
                        void* user, Hit& out) const {
    const Impl& s = *impl_;
    if (s.nodes.empty()) return false;
    double inv[3];
    for (int k = 0; k < 3; ++k)
        inv[k] = 1.0 / dir[k];
    Context c;
    rtcInitIntersectContext(&c.base);
    c.accept = accept;
    c.user = user;
    c.best = {0, 0, tFar};
    c.found = false;
    struct Item {
        uint32_t node;
        double t0, t1;
    };
    Item stack[128];
    int top = 0;
    double t0 = tNear, t1 = tFar;
    if (!slab(org, inv, s.nodes[0].box, t0, t1)) return false;
    stack[top++] = {0, t0, t1};
    while (top > 0) {
        const Item it = stack[--top];
        if (it.t0 > c.best.t) continue;
        const Node& n = s.nodes[it.node];
        if (n.count) {
            const Entered& m = s.entered[n.member];
            // Start where the ray enters the member's box (a little before), relative to its
            // origin: single precision then suffices however far away the eye is.
            const double span = it.t1 - it.t0;
            const double shift = it.t0 - (1e-6 * span + 1e-9 * std::fabs(it.t0));
            RTCRayHit rh;
            rh.ray.org_x = narrow(org[0] + shift * dir[0] - m.origin[0]);
            rh.ray.org_y = narrow(org[1] + shift * dir[1] - m.origin[1]);
            rh.ray.org_z = narrow(org[2] + shift * dir[2] - m.origin[2]);
            rh.ray.dir_x = narrow(dir[0]);
            rh.ray.dir_y = narrow(dir[1]);
            rh.ray.dir_z = narrow(dir[2]);
            rh.ray.tnear = 0;
            const double far = std::min(it.t1, c.best.t) - shift;
            rh.ray.tfar = std::isinf(far) ? static_cast<float>(far) : narrow(far * (1 + 1e-6) + 1e-6 * span);
            rh.ray.time = 0;
            rh.ray.mask = 0xFFFFFFFFu;
            rh.ray.id = 0;
            rh.ray.flags = 0;
            rh.hit.geomID = RTC_INVALID_GEOMETRY_ID;
            rh.hit.instID[0] = RTC_INVALID_GEOMETRY_ID;
            c.member = n.member;
            rtcIntersect1(m.scene, &c.base, &rh);
            continue;
        }
        Item kids[2];
        int count = 0;
        for (const uint32_t k : {n.left, n.right}) {
            double a = tNear, b = std::min(tFar, c.best.t);
            if (slab(org, inv, s.nodes[k].box, a, b)) kids[count++] = {k, a, b};
        }
        if (count == 2 && kids[0].t0 < kids[1].t0) std::swap(kids[0], kids[1]); // nearer one on top
        for (int k = 0; k < count && top < 128; ++k)
            stack[top++] = kids[k];
    }
    if (!c.found) return false;
    out = c.best;
    return true;
}

} // namespace zelmar::rays
