// Light-map bakes: shadow rays per second per core inside the bake, next to the ray kernel
// alone on the same rays in the same run, with 1 and 2 threads; and the bake of the sample
// world at the light-map dialog's default settings.
//   lightmap_bench [--scene bunny|boxes|terrain|sample|all] [--repeat N] [--threads 1,2]
// Every bake's light maps are checked to be the same for each thread count.
#include "BakeScenes.h"
#include "BenchClock.h"

#include "scene/LightMap.h"
#include "scene/Occluders.h"
#include "scene/World.h"
#include <embree3/rtcore.h>
#include <zelmar/zelmar.h>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

using namespace zelmar;

namespace {

// The light maps of the baked polygons, for comparing runs.
uint64_t checksum(const std::vector<int>& polygons) {
    uint64_t h = 1469598103934665603ull;
    Handle first = 0; // handles are compared relative to the bake's first bitmap
    for (const int p : polygons)
        if (const Polygon* q = world().polygon(p); q && q->fill.secondBitmap && !first) first = q->fill.secondBitmap;
    for (const int p : polygons) {
        const Polygon* q = world().polygon(p);
        const Bitmap* b = q ? world().bitmap(q->fill.secondBitmap) : nullptr;
        if (!b) continue;
        for (const uint8_t c : b->rgba)
            h = (h ^ c) * 1099511628211ull;
        h = (h ^ static_cast<uint64_t>(b->handle - first)) * 1099511628211ull;
    }
    return h;
}

// The kernel alone: the occluders' triangles in a scene of its own with the engine's flags
// and the same query (a ray passes through the triangles of its own polygon), and the
// recorded rays cast by `threads` threads.
struct RawContext {
    RTCIntersectContext base;
    int32_t ignore;
};

void passOwn(const RTCFilterFunctionNArguments* a) {
    const auto* owner = static_cast<const int32_t*>(a->geometryUserPtr);
    const int32_t ignore = reinterpret_cast<const RawContext*>(a->context)->ignore;
    for (unsigned i = 0; i < a->N; ++i)
        if (a->valid[i] == -1 && owner[RTCHitN_primID(a->hit, a->N, i)] == ignore) a->valid[i] = 0;
}

struct Raw {
    RTCDevice device = nullptr;
    RTCScene scene = nullptr;
    explicit Raw(const rays::OcclusionScene& occ) {
        device = rtcNewDevice("verbose=0");
        scene = rtcNewScene(device);
        rtcSetSceneFlags(scene, RTC_SCENE_FLAG_ROBUST);
        rtcSetSceneBuildQuality(scene, RTC_BUILD_QUALITY_MEDIUM);
        RTCGeometry g = rtcNewGeometry(device, RTC_GEOMETRY_TYPE_TRIANGLE);
        rtcSetSharedGeometryBuffer(g, RTC_BUFFER_TYPE_VERTEX, 0, RTC_FORMAT_FLOAT3, occ.points().data(), 0,
                                   3 * sizeof(float), (occ.points().size() - 1) / 3);
        rtcSetSharedGeometryBuffer(g, RTC_BUFFER_TYPE_INDEX, 0, RTC_FORMAT_UINT3, occ.corners().data(), 0,
                                   3 * sizeof(uint32_t), occ.corners().size() / 3);
        rtcSetGeometryUserData(g, const_cast<int32_t*>(occ.owners().data()));
        rtcSetGeometryOccludedFilterFunction(g, passOwn);
        rtcCommitGeometry(g);
        rtcAttachGeometry(scene, g);
        rtcReleaseGeometry(g);
        rtcCommitScene(scene);
    }
    ~Raw() {
        rtcReleaseScene(scene);
        rtcReleaseDevice(device);
    }
    // Answers how many rays were blocked.
    size_t cast(const std::vector<rays::ShadowRay>& rs, int threads) const {
        std::atomic<size_t> blocked{0};
        auto run = [&](size_t begin, size_t end) {
            RawContext c;
            rtcInitIntersectContext(&c.base);
            size_t n = 0;
            for (size_t i = begin; i < end; ++i) {
                const rays::ShadowRay& s = rs[i];
                c.ignore = s.ignore;
                RTCRay r;
                r.org_x = s.org[0], r.org_y = s.org[1], r.org_z = s.org[2];
                r.dir_x = s.dir[0], r.dir_y = s.dir[1], r.dir_z = s.dir[2];
                r.tnear = s.tNear, r.tfar = s.tFar, r.time = 0, r.mask = 0xFFFFFFFFu, r.id = 0, r.flags = 0;
                rtcOccluded1(scene, &c.base, &r);
                n += r.tfar < 0;
            }
            blocked += n;
        };
        std::vector<std::thread> pool;
        const size_t chunk = (rs.size() + threads - 1) / threads;
        for (int t = 1; t < threads; ++t)
            pool.emplace_back(run, std::min(rs.size(), t * chunk), std::min(rs.size(), (t + 1) * chunk));
        run(0, std::min(rs.size(), chunk));
        for (auto& t : pool)
            t.join();
        return blocked;
    }
};

std::vector<int> parseThreads(const std::string& s) {
    std::vector<int> out;
    size_t at = 0;
    while (at < s.size()) {
        out.push_back(std::max(1, std::atoi(s.c_str() + at)));
        at = s.find(',', at);
        if (at == std::string::npos) break;
        ++at;
    }
    return out;
}

void rayScene(const bench::BakeScene& s, int repeat, const std::vector<int>& threadCounts) {
    if (s.name.empty()) {
        std::printf("(scene missing)\n");
        return;
    }
    LightMapParams params;
    params.maxSize = s.maxSize;
    params.minSize = s.minSize;
    params.samplingRate = s.samplingRate;
    params.rayTracing = true;
    params.mode = 1;
    double t0 = bench::wallMs();
    const rays::OcclusionScene& occ = worldOccluders();
    const double buildMs = bench::wallMs() - t0;
    std::printf("\n%s: %ld triangles, %zu polygons baked; occluders built in %.0f ms\n", s.name.c_str(), s.triangles,
                s.polygons.size(), buildMs);

    std::vector<rays::ShadowRay> recorded;
    BakeOptions rec;
    rec.threads = 2;
    rec.record = &recorded;
    bakeLightMaps(s.polygons, params, rec);
    const Raw raw(occ);
    std::printf("%zu shadow rays per bake\n", recorded.size());
    std::printf("threads | bake ms | bake rays/s/core | kernel alone ms | kernel rays/s/core | ratio | maps\n");
    uint64_t firstSum = 0;
    for (const int threads : threadCounts) {
        std::vector<double> bakeMs, rawMs;
        uint64_t rays = 0, sum = 0;
        for (int r = 0; r < repeat; ++r) {
            BakeOptions o;
            o.threads = threads;
            t0 = bench::wallMs();
            const BakeStats st = bakeLightMaps(s.polygons, params, o);
            bakeMs.push_back(bench::wallMs() - t0);
            rays = st.shadowRays;
            sum = checksum(s.polygons);
            t0 = bench::wallMs();
            raw.cast(recorded, threads);
            rawMs.push_back(bench::wallMs() - t0);
        }
        if (!firstSum) firstSum = sum;
        const double b = bench::median(bakeMs), k = bench::median(rawMs);
        const double bakeRate = rays / (b / 1000) / threads, rawRate = recorded.size() / (k / 1000) / threads;
        std::printf("%7d | %7.1f | %16.3g | %15.1f | %18.3g | %5.2f | %s\n", threads, b, bakeRate, k, rawRate,
                    bakeRate / rawRate, sum == firstSum ? "same" : "DIFFERENT");
    }
}

void sampleWorld(int repeat, const std::vector<int>& threadCounts) {
    const std::string file = std::string(VEXIL_SOURCE_DIR) + "/data/samples/Sample.wld";
    if (ZELMAR_engine_load_world(file.c_str(), "", "", 4) != 1) {
        std::printf("\nsample world: cannot load %s: %s\n", file.c_str(), ZELMAR_engine_get_last_error());
        return;
    }
    std::vector<int> polygons;
    for (const Polygon* p = world().firstPolygon(); p; p = p->nextInWorld)
        polygons.push_back(p->handle);
    // The light-map dialog's defaults.
    const int maxSize = 128, minSize = 2, rayTracing = 1, mode = 2;
    const double rate = 4.0;
    std::printf("\nsample world: %zu polygons, %zu lights; dialog defaults max %d, min %d, sampling rate %.0f, "
                "ray tracing %d, mode %d\n",
                polygons.size(), world().list<Light>().size(), maxSize, minSize, rate, rayTracing, mode);
    std::printf("threads | whole bake ms (first, shadow casters included) | again ms (median) | maps\n");
    uint64_t firstSum = 0;
    for (const int threads : threadCounts) {
        ZELMAR_engine_set_render_threads(threads);
        std::vector<double> ms;
        double first = 0;
        for (int r = 0; r <= repeat; ++r) {
            if (r == 0) world().touch(); // the first bake builds the shadow casters
            const double t0 = bench::wallMs();
            ZELMAR_polygons_create_lightmaps(polygons.data(), static_cast<int>(polygons.size()), maxSize, minSize,
                                             rate, rayTracing, mode, nullptr, nullptr);
            const double t = bench::wallMs() - t0;
            if (r == 0)
                first = t;
            else
                ms.push_back(t);
        }
        const uint64_t sum = checksum(polygons);
        if (!firstSum) firstSum = sum;
        std::printf("%7d | %46.1f | %17.1f | %s\n", threads, first, bench::median(ms),
                    sum == firstSum ? "same" : "DIFFERENT");
    }
    ZELMAR_engine_set_render_threads(0);
}

} // namespace

int main(int argc, char** argv) {
    std::string scene = "all";
    int repeat = 3;
    std::vector<int> threads = {1, 2};
    for (int i = 1; i + 1 < argc; i += 2) {
        const std::string a = argv[i];
        if (a == "--scene")
            scene = argv[i + 1];
        else if (a == "--repeat")
            repeat = std::max(1, std::atoi(argv[i + 1]));
        else if (a == "--threads")
            threads = parseThreads(argv[i + 1]);
    }
    if (scene == "all" || scene == "bunny") {
        ZELMAR_engine_close();
        rayScene(bench::bunnyOnGround("/usr/share/glmark2/models/bunny.obj"), repeat, threads);
    }
    if (scene == "all" || scene == "boxes") {
        ZELMAR_engine_close();
        rayScene(bench::boxesOnGround(), repeat, threads);
    }
    if (scene == "all" || scene == "terrain") {
        ZELMAR_engine_close();
        rayScene(bench::terrain(), repeat, threads);
    }
    if (scene == "all" || scene == "sample") {
        ZELMAR_engine_close();
        sampleWorld(repeat, threads);
    }
    ZELMAR_engine_close();
    return 0;
}
