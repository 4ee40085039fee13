// Light-map bakes: shadow rays per second per core inside the bake, next to the ray kernel
// alone on the same rays in the same run, with 1 and 2 threads; and the bake of the sample
// world at the light-map dialog's default settings.
//   lightmap_bench [--scene bunny|boxes|terrain|sample|all] [--repeat N] [--threads 1,2] [--whole 0|1]
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
    // Answers how many rays were blocked. Packets: eight at a time, as the bake groups them
    // (consecutive rays of one polygon); else one by one.
    size_t cast(const std::vector<rays::ShadowRay>& rs, int threads, bool packets) const {
        std::atomic<size_t> blocked{0};
        auto run = [&](size_t begin, size_t end) {
            RawContext c;
            rtcInitIntersectContext(&c.base);
            size_t n = 0;
            if (!packets) {
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
            } else {
                c.base.flags = RTC_INTERSECT_CONTEXT_FLAG_COHERENT;
                for (size_t i = begin; i < end;) {
                    size_t count = 1;
                    while (count < 8 && i + count < end && rs[i + count].ignore == rs[i].ignore)
                        ++count;
                    c.ignore = rs[i].ignore;
                    alignas(32) int valid[8];
                    alignas(32) RTCRay8 r;
                    for (size_t k = 0; k < 8; ++k) {
                        const rays::ShadowRay& s = rs[i + std::min(k, count - 1)];
                        valid[k] = k < count ? -1 : 0;
                        r.org_x[k] = s.org[0], r.org_y[k] = s.org[1], r.org_z[k] = s.org[2];
                        r.dir_x[k] = s.dir[0], r.dir_y[k] = s.dir[1], r.dir_z[k] = s.dir[2];
                        r.tnear[k] = s.tNear, r.tfar[k] = s.tFar, r.time[k] = 0, r.mask[k] = 0xFFFFFFFFu;
                        r.id[k] = 0, r.flags[k] = 0;
                    }
                    rtcOccluded8(valid, scene, &c.base, &r);
                    for (size_t k = 0; k < count; ++k)
                        n += r.tfar[k] < 0;
                    i += count;
                }
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

struct Timed {
    double wallMs = 0, cpuMs = 0;
};

template <class F> Timed timed(F&& f) {
    const double w0 = bench::wallMs(), c0 = bench::processCpuMs();
    f();
    return {bench::wallMs() - w0, bench::processCpuMs() - c0};
}

// Medians of the runs' wall and processor times.
Timed medianOf(const std::vector<Timed>& runs) {
    std::vector<double> w, c;
    for (const Timed& t : runs)
        w.push_back(t.wallMs), c.push_back(t.cpuMs);
    return {bench::median(w), bench::median(c)};
}

// Rays per second per core: by processor time (what the work costs, whatever else runs on
// the machine) and by wall time over the threads.
void printRates(const char* what, int threads, uint64_t rays, const Timed& t) {
    std::printf("  %-22s %d thread%s: %8.1f ms wall, %8.1f ms cpu; per core %6.2f M rays/s (cpu), %6.2f M rays/s (wall)\n",
                what, threads, threads == 1 ? " " : "s", t.wallMs, t.cpuMs, rays / (t.cpuMs / 1000) / 1e6,
                rays / (t.wallMs / 1000) / threads / 1e6);
}

LightMapParams paramsOf(const bench::BakeScene& s) {
    LightMapParams p;
    p.maxSize = s.maxSize;
    p.minSize = s.minSize;
    p.samplingRate = s.samplingRate;
    p.rayTracing = true;
    p.mode = 1;
    return p;
}

bool g_whole = true; // --whole 0 skips the bake of every polygon

void rayScene(const bench::BakeScene& s, int repeat, const std::vector<int>& threadCounts) {
    if (s.name.empty()) {
        std::printf("(scene missing)\n");
        return;
    }
    const LightMapParams params = paramsOf(s);
    const double t0 = bench::wallMs();
    const rays::OcclusionScene& occ = worldOccluders();
    std::printf("\n%s: %ld triangles; shadow casters built in %.0f ms\n", s.name.c_str(), s.triangles,
                bench::wallMs() - t0);

    std::vector<rays::ShadowRay> recorded;
    BakeOptions rec;
    rec.threads = 2;
    rec.record = &recorded;
    bakeLightMaps(s.receivers, params, rec);
    const Raw raw(occ);
    std::printf("receivers: %zu polygons, %zu shadow rays per bake (each bake and the kernel alone, alternating, "
                "median of %d)\n",
                s.receivers.size(), recorded.size(), repeat);
    uint64_t firstSum = 0;
    for (const int threads : threadCounts) {
        std::vector<Timed> bakes, kernel, kernel8;
        uint64_t rays = 0, sum = 0;
        for (int r = 0; r < repeat; ++r) {
            BakeOptions o;
            o.threads = threads;
            bakes.push_back(timed([&] { rays = bakeLightMaps(s.receivers, params, o).shadowRays; }));
            sum = checksum(s.receivers);
            kernel.push_back(timed([&] { raw.cast(recorded, threads, false); }));
            kernel8.push_back(timed([&] { raw.cast(recorded, threads, true); }));
        }
        if (!firstSum) firstSum = sum;
        const Timed b = medianOf(bakes), k = medianOf(kernel), k8 = medianOf(kernel8);
        printRates("bake", threads, rays, b);
        printRates("kernel, one by one", threads, recorded.size(), k);
        printRates("kernel, eight at once", threads, recorded.size(), k8);
        const double n = static_cast<double>(recorded.size());
        std::printf("  ratio bake / kernel: %.2f (cpu), %.2f (wall) against one by one; %.2f (cpu), %.2f (wall) "
                    "against eight at once; light maps %s\n",
                    (rays / b.cpuMs) / (n / k.cpuMs), (rays / b.wallMs) / (n / k.wallMs), (rays / b.cpuMs) / (n / k8.cpuMs),
                    (rays / b.wallMs) / (n / k8.wallMs),
                    sum == firstSum ? "the same as with the first thread count" : "DIFFERENT");
    }
    if (!g_whole || s.polygons.size() == s.receivers.size()) return;
    std::printf("every polygon: %zu polygons\n", s.polygons.size());
    for (const int threads : threadCounts) {
        std::vector<Timed> bakes;
        uint64_t rays = 0;
        for (int r = 0; r < repeat; ++r) {
            BakeOptions o;
            o.threads = threads;
            bakes.push_back(timed([&] { rays = bakeLightMaps(s.polygons, params, o).shadowRays; }));
        }
        printRates("whole bake", threads, rays, medianOf(bakes));
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
        else if (a == "--whole")
            g_whole = std::atoi(argv[i + 1]) != 0;
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
