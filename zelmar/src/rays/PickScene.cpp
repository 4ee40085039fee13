#include "rays/PickScene.h"

#include "rays/Device.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

namespace zelmar::rays {

namespace {

struct MemberData {
    RTCScene scene = nullptr;
    RTCGeometry instance = nullptr;
    unsigned triangles = RTC_INVALID_GEOMETRY_ID; // id of the triangle geometry in `scene`
    std::vector<float> points;                    // shared with the kernel, padded by one float
    std::vector<uint32_t> corners;
    double origin[3] = {0, 0, 0};
    bool dirty = false;
};

struct Context {
    RTCIntersectContext base;
    PickScene::Accept accept;
    void* user;
};

void filter(const RTCFilterFunctionNArguments* a) {
    const Context* c = reinterpret_cast<const Context*>(a->context);
    for (unsigned i = 0; i < a->N; ++i) {
        if (a->valid[i] != -1) continue;
        const unsigned member = RTCHitN_instID(a->hit, a->N, i, 0);
        if (!c->accept(c->user, member, RTCHitN_primID(a->hit, a->N, i))) a->valid[i] = 0;
    }
}

} // namespace

struct PickScene::Impl {
    RTCScene top = nullptr;
    std::vector<std::unique_ptr<MemberData>> members; // by instance id in the top scene
    bool topDirty = false;

    MemberData* get(Member m) const { return m < members.size() ? members[m].get() : nullptr; }
};

PickScene::PickScene() : impl_(std::make_unique<Impl>()) {
    if (RTCDevice dev = device()) {
        impl_->top = rtcNewScene(dev);
        rtcSetSceneFlags(impl_->top, RTC_SCENE_FLAG_DYNAMIC | RTC_SCENE_FLAG_ROBUST);
        rtcSetSceneBuildQuality(impl_->top, RTC_BUILD_QUALITY_LOW);
        rtcCommitScene(impl_->top);
    }
}

PickScene::~PickScene() {
    for (auto& m : impl_->members)
        if (m) {
            rtcReleaseGeometry(m->instance);
            rtcReleaseScene(m->scene);
        }
    if (impl_->top) rtcReleaseScene(impl_->top);
}

PickScene::Member PickScene::add() {
    Impl& s = *impl_;
    if (!s.top) return std::numeric_limits<Member>::max();
    auto m = std::make_unique<MemberData>();
    RTCDevice dev = device();
    m->scene = rtcNewScene(dev);
    rtcSetSceneFlags(m->scene, RTC_SCENE_FLAG_ROBUST);
    rtcCommitScene(m->scene);
    m->instance = rtcNewGeometry(dev, RTC_GEOMETRY_TYPE_INSTANCE);
    rtcSetGeometryInstancedScene(m->instance, m->scene);
    m->dirty = true;
    const unsigned id = rtcAttachGeometry(s.top, m->instance);
    if (id >= s.members.size()) s.members.resize(id + 1);
    s.members[id] = std::move(m);
    s.topDirty = true;
    return id;
}

void PickScene::remove(Member id) {
    Impl& s = *impl_;
    MemberData* m = s.get(id);
    if (!m) return;
    rtcDetachGeometry(s.top, id);
    rtcReleaseGeometry(m->instance);
    rtcReleaseScene(m->scene);
    s.members[id].reset();
    s.topDirty = true;
}

void PickScene::setTriangles(Member id, std::vector<float>&& points, std::vector<uint32_t>&& corners,
                             const double origin[3]) {
    MemberData* m = impl_->get(id);
    if (!m) return;
    if (m->triangles != RTC_INVALID_GEOMETRY_ID) {
        rtcDetachGeometry(m->scene, m->triangles);
        m->triangles = RTC_INVALID_GEOMETRY_ID;
    }
    m->points = std::move(points);
    m->corners = std::move(corners);
    const size_t pointCount = m->points.size() / 3;
    m->points.push_back(0.0f);
    if (!m->corners.empty()) {
        RTCGeometry g = rtcNewGeometry(device(), RTC_GEOMETRY_TYPE_TRIANGLE);
        rtcSetSharedGeometryBuffer(g, RTC_BUFFER_TYPE_VERTEX, 0, RTC_FORMAT_FLOAT3, m->points.data(), 0,
                                   3 * sizeof(float), pointCount);
        rtcSetSharedGeometryBuffer(g, RTC_BUFFER_TYPE_INDEX, 0, RTC_FORMAT_UINT3, m->corners.data(), 0,
                                   3 * sizeof(uint32_t), m->corners.size() / 3);
        rtcSetGeometryIntersectFilterFunction(g, filter);
        rtcCommitGeometry(g);
        m->triangles = rtcAttachGeometry(m->scene, g);
        rtcReleaseGeometry(g);
    }
    rtcCommitScene(m->scene);
    for (int k = 0; k < 3; ++k)
        m->origin[k] = origin[k];
    m->dirty = true;
}

bool PickScene::holds(Member id, const std::vector<float>& points, const std::vector<uint32_t>& corners) const {
    const MemberData* m = impl_->get(id);
    return m && m->points.size() == points.size() + 1 && m->corners == corners &&
           std::memcmp(m->points.data(), points.data(), points.size() * sizeof(float)) == 0;
}

void PickScene::setOrigin(Member id, const double origin[3]) {
    MemberData* m = impl_->get(id);
    if (!m) return;
    for (int k = 0; k < 3; ++k)
        m->origin[k] = origin[k];
    m->dirty = true;
}

const uint32_t* PickScene::corners(Member id) const {
    const MemberData* m = impl_->get(id);
    return m ? m->corners.data() : nullptr;
}

size_t PickScene::triangleCount(Member id) const {
    const MemberData* m = impl_->get(id);
    return m ? m->corners.size() / 3 : 0;
}

void PickScene::commit() {
    Impl& s = *impl_;
    for (auto& m : s.members) {
        if (!m || !m->dirty) continue;
        // Column-major 3 x 4: identity, then the translation.
        const float xfm[12] = {1, 0, 0, 0, 1, 0, 0, 0, 1, static_cast<float>(m->origin[0]),
                               static_cast<float>(m->origin[1]), static_cast<float>(m->origin[2])};
        rtcSetGeometryTransform(m->instance, 0, RTC_FORMAT_FLOAT3X4_COLUMN_MAJOR, xfm);
        rtcCommitGeometry(m->instance);
        m->dirty = false;
        s.topDirty = true;
    }
    if (s.topDirty && s.top) rtcCommitScene(s.top);
    s.topDirty = false;
}

bool PickScene::bounds(double box[6]) const {
    if (!impl_->top) return false;
    RTCBounds b;
    rtcGetSceneBounds(impl_->top, &b);
    if (!(b.lower_x <= b.upper_x)) return false;
    const float v[6] = {b.lower_x, b.lower_y, b.lower_z, b.upper_x, b.upper_y, b.upper_z};
    for (int k = 0; k < 6; ++k)
        box[k] = v[k];
    return true;
}

bool PickScene::nearest(const double org[3], const double dir[3], double tNear, double tFar, Accept accept,
                        void* user, Hit& out) const {
    double box[6];
    if (!bounds(box)) return false;
    // Start the ray where it enters the (slightly enlarged) box of everything: the origin
    // then needs no more precision than the scene itself, however far away the eye is.
    double size = 0;
    for (int k = 0; k < 3; ++k)
        size = std::max(size, box[k + 3] - box[k]);
    const double margin = 1e-3 * size + 1e-6 * (std::fabs(box[0]) + std::fabs(box[1]) + std::fabs(box[2])) + 1e-6;
    double t0 = tNear, t1 = tFar;
    for (int k = 0; k < 3; ++k) {
        const double lo = box[k] - margin, hi = box[k + 3] + margin;
        if (dir[k] == 0) {
            if (org[k] < lo || org[k] > hi) return false;
            continue;
        }
        double a = (lo - org[k]) / dir[k], b = (hi - org[k]) / dir[k];
        if (a > b) std::swap(a, b);
        t0 = std::max(t0, a);
        t1 = std::min(t1, b);
    }
    if (!(t0 <= t1)) return false;
    // A little before, so that a hit at the near end is left to the caller's exact test.
    const double shift = t0 - (1e-5 * size + 1e-7 * std::fabs(t0));

    Context c;
    rtcInitIntersectContext(&c.base);
    c.accept = accept;
    c.user = user;
    RTCRayHit rh;
    rh.ray.org_x = static_cast<float>(org[0] + shift * dir[0]);
    rh.ray.org_y = static_cast<float>(org[1] + shift * dir[1]);
    rh.ray.org_z = static_cast<float>(org[2] + shift * dir[2]);
    rh.ray.dir_x = static_cast<float>(dir[0]);
    rh.ray.dir_y = static_cast<float>(dir[1]);
    rh.ray.dir_z = static_cast<float>(dir[2]);
    rh.ray.tnear = 0;
    rh.ray.tfar = static_cast<float>(t1 - shift);
    rh.ray.time = 0;
    rh.ray.mask = 0xFFFFFFFFu;
    rh.ray.id = 0;
    rh.ray.flags = 0;
    rh.hit.geomID = RTC_INVALID_GEOMETRY_ID;
    rh.hit.primID = RTC_INVALID_GEOMETRY_ID;
    rh.hit.instID[0] = RTC_INVALID_GEOMETRY_ID;
    rtcIntersect1(impl_->top, &c.base, &rh);
    if (rh.hit.geomID == RTC_INVALID_GEOMETRY_ID || rh.hit.instID[0] == RTC_INVALID_GEOMETRY_ID) return false;
    out.member = rh.hit.instID[0];
    out.triangle = rh.hit.primID;
    return true;
}

} // namespace zelmar::rays
