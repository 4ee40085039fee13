#include "rays/OcclusionScene.h"

#include "rays/Device.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace zelmar::rays {

struct OcclusionScene::Impl {
    RTCScene scene = nullptr;
    std::vector<float> points; // shared with the kernel: padded so that it may read 16 bytes at the last point
    std::vector<uint32_t> corners;
    std::vector<int32_t> owner;
    double extent = 0;

    void release() {
        if (scene) rtcReleaseScene(scene);
        scene = nullptr;
        points.clear();
        corners.clear();
        owner.clear();
        extent = 0;
    }
};

namespace {

// The intersect context with what the filter needs after it (the kernel hands the filter
// the pointer it was given).
struct Context {
    RTCIntersectContext base;
    int32_t ignore;
};

void passOwnPolygon(const RTCFilterFunctionNArguments* a) {
    const auto* owner = static_cast<const int32_t*>(a->geometryUserPtr);
    const int32_t ignore = reinterpret_cast<const Context*>(a->context)->ignore;
    for (unsigned i = 0; i < a->N; ++i)
        if (a->valid[i] == -1 && owner[RTCHitN_primID(a->hit, a->N, i)] == ignore) a->valid[i] = 0;
}

} // namespace

OcclusionScene::OcclusionScene() : impl_(std::make_unique<Impl>()) {}

OcclusionScene::~OcclusionScene() {
    impl_->release();
}

void OcclusionScene::clear() {
    impl_->release();
}

size_t OcclusionScene::triangleCount() const {
    return impl_->owner.size();
}

double OcclusionScene::extent() const {
    return impl_->extent;
}

const std::vector<float>& OcclusionScene::points() const {
    return impl_->points;
}

const std::vector<uint32_t>& OcclusionScene::corners() const {
    return impl_->corners;
}

const std::vector<int32_t>& OcclusionScene::owners() const {
    return impl_->owner;
}

void OcclusionScene::build(const Triangles& t) {
    Impl& m = *impl_;
    m.release();
    const size_t pointCount = t.xyz.size() / 3;
    double lo[3] = {INFINITY, INFINITY, INFINITY}, hi[3] = {-INFINITY, -INFINITY, -INFINITY};
    for (size_t i = 0; i < pointCount; ++i)
        for (int k = 0; k < 3; ++k) {
            lo[k] = std::min(lo[k], t.xyz[i * 3 + k]);
            hi[k] = std::max(hi[k], t.xyz[i * 3 + k]);
        }
    for (int k = 0; k < 3; ++k) {
        centre_[k] = pointCount ? 0.5 * (lo[k] + hi[k]) : 0.0;
        if (pointCount) m.extent = std::max(m.extent, 0.5 * (hi[k] - lo[k]));
    }
    const size_t triCount = std::min(t.corners.size() / 3, t.owner.size());
    m.corners.reserve(triCount * 3);
    m.owner.reserve(triCount);
    for (size_t i = 0; i < triCount; ++i) {
        const uint32_t* c = &t.corners[i * 3];
        if (c[0] >= pointCount || c[1] >= pointCount || c[2] >= pointCount) continue;
        m.corners.insert(m.corners.end(), c, c + 3);
        m.owner.push_back(t.owner[i]);
    }
    RTCDevice dev = device();
    if (!dev || m.owner.empty()) return;
    m.points.resize(pointCount * 3 + 1);
    for (size_t i = 0; i < pointCount * 3; ++i)
        m.points[i] = narrow(t.xyz[i] - centre_[i % 3]);

    m.scene = rtcNewScene(dev);
    // Robust: no rays slip through the shared edge of two triangles.
    rtcSetSceneFlags(m.scene, RTC_SCENE_FLAG_ROBUST);
    rtcSetSceneBuildQuality(m.scene, RTC_BUILD_QUALITY_MEDIUM);
    RTCGeometry g = rtcNewGeometry(dev, RTC_GEOMETRY_TYPE_TRIANGLE);
    rtcSetSharedGeometryBuffer(g, RTC_BUFFER_TYPE_VERTEX, 0, RTC_FORMAT_FLOAT3, m.points.data(), 0,
                               3 * sizeof(float), pointCount);
    rtcSetSharedGeometryBuffer(g, RTC_BUFFER_TYPE_INDEX, 0, RTC_FORMAT_UINT3, m.corners.data(), 0,
                               3 * sizeof(uint32_t), m.owner.size());
    rtcSetGeometryUserData(g, m.owner.data());
    rtcSetGeometryOccludedFilterFunction(g, passOwnPolygon);
    rtcCommitGeometry(g);
    rtcAttachGeometry(m.scene, g);
    rtcReleaseGeometry(g);
    rtcCommitScene(m.scene);
}

bool OcclusionScene::occluded(const ShadowRay& s) const {
    if (!impl_->scene) return false;
    Context c;
    rtcInitIntersectContext(&c.base);
    c.ignore = s.ignore;
    RTCRay r;
    r.org_x = s.org[0], r.org_y = s.org[1], r.org_z = s.org[2];
    r.dir_x = s.dir[0], r.dir_y = s.dir[1], r.dir_z = s.dir[2];
    r.tnear = s.tNear;
    r.tfar = s.tFar;
    r.time = 0;
    r.mask = 0xFFFFFFFFu;
    r.id = 0;
    r.flags = 0;
    rtcOccluded1(impl_->scene, &c.base, &r);
    return r.tfar < 0; // the kernel sets -inf on a hit
}

void OcclusionScene::occluded(const ShadowRay* rs, size_t n, uint8_t* blocked) const {
    if (!impl_->scene || n == 0) {
        std::fill(blocked, blocked + n, 0);
        return;
    }
    Context c;
    rtcInitIntersectContext(&c.base);
    c.base.flags = RTC_INTERSECT_CONTEXT_FLAG_COHERENT;
    c.ignore = rs[0].ignore;
    for (size_t at = 0; at < n; at += 8) {
        const size_t count = std::min<size_t>(8, n - at);
        if (count == 1) {
            blocked[at] = occluded(rs[at]) ? 1 : 0;
            continue;
        }
        alignas(32) int valid[8];
        alignas(32) RTCRay8 r;
        for (size_t i = 0; i < 8; ++i) {
            const ShadowRay& s = rs[at + std::min(i, count - 1)];
            valid[i] = i < count ? -1 : 0;
            r.org_x[i] = s.org[0], r.org_y[i] = s.org[1], r.org_z[i] = s.org[2];
            r.dir_x[i] = s.dir[0], r.dir_y[i] = s.dir[1], r.dir_z[i] = s.dir[2];
            r.tnear[i] = s.tNear, r.tfar[i] = s.tFar;
            r.time[i] = 0, r.mask[i] = 0xFFFFFFFFu, r.id[i] = 0, r.flags[i] = 0;
        }
        rtcOccluded8(valid, impl_->scene, &c.base, &r);
        for (size_t i = 0; i < count; ++i)
            blocked[at + i] = r.tfar[i] < 0 ? 1 : 0;
    }
}

void OcclusionScene::occluded(const GridRays& g, uint8_t* blocked, std::vector<ShadowRay>* record) const {
    const size_t n = static_cast<size_t>(g.width) * static_cast<size_t>(std::max(g.height, 0));
    if (!impl_->scene || g.width <= 0) {
        std::fill(blocked, blocked + n, 0);
        return;
    }
    Context c;
    rtcInitIntersectContext(&c.base);
    c.base.flags = RTC_INTERSECT_CONTEXT_FLAG_COHERENT;
    c.ignore = g.ignore;
    const float dir[3] = {narrow(g.dir[0]), narrow(g.dir[1]), narrow(g.dir[2])};
    const float inf = std::numeric_limits<float>::infinity();
    alignas(32) int valid[8];
    alignas(32) RTCRay8 r;
    for (int i = 0; i < 8; ++i) {
        r.dir_x[i] = dir[0], r.dir_y[i] = dir[1], r.dir_z[i] = dir[2];
        r.time[i] = 0, r.mask[i] = 0xFFFFFFFFu, r.id[i] = 0, r.flags[i] = 0;
    }
    for (int j = 0; j < g.height; ++j) {
        double row[3];
        for (int k = 0; k < 3; ++k)
            row[k] = g.corner[k] - centre_[k] + g.across[k] * j;
        for (int i0 = 0; i0 < g.width; i0 += 8) {
            const int count = std::min(8, g.width - i0);
            for (int l = 0; l < 8; ++l) {
                const int i = i0 + std::min(l, count - 1);
                valid[l] = l < count ? -1 : 0;
                r.org_x[l] = narrow(row[0] + g.along[0] * i);
                r.org_y[l] = narrow(row[1] + g.along[1] * i);
                r.org_z[l] = narrow(row[2] + g.along[2] * i);
                r.tnear[l] = 0;
                r.tfar[l] = inf;
            }
            if (record)
                for (int l = 0; l < count; ++l)
                    record->push_back({{r.org_x[l], r.org_y[l], r.org_z[l]}, {dir[0], dir[1], dir[2]}, 0, inf, g.ignore});
            rtcOccluded8(valid, impl_->scene, &c.base, &r);
            uint8_t* out = blocked + static_cast<size_t>(j) * g.width + i0;
            for (int l = 0; l < count; ++l)
                out[l] = r.tfar[l] < 0 ? 1 : 0;
        }
    }
}

} // namespace zelmar::rays
