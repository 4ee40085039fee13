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
    double centre[3] = {0, 0, 0};
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
        m.centre[k] = pointCount ? 0.5 * (lo[k] + hi[k]) : 0.0;
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
        m.points[i] = static_cast<float>(t.xyz[i] - m.centre[i % 3]);

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

ShadowRay OcclusionScene::makeRay(const double org[3], const double dir[3], double tNear, double tFar,
                                  int32_t ignore) const {
    ShadowRay r;
    r.ignore = ignore;
    for (int k = 0; k < 3; ++k) {
        r.org[k] = static_cast<float>(org[k] - impl_->centre[k]);
        r.dir[k] = static_cast<float>(dir[k]);
    }
    r.tNear = static_cast<float>(tNear);
    r.tFar = std::isfinite(tFar) ? static_cast<float>(tFar) : std::numeric_limits<float>::infinity();
    return r;
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

} // namespace zelmar::rays
