// The bake of a list of polygons: texels on worker threads, light maps put on the polygons
// in list order on the calling thread (which computes too while it waits).
#include "render/ThreadPool.h"
#include "scene/LightMap.h"
#include "scene/LightMapJob.h"
#include "scene/Occluders.h"
#include "scene/World.h"

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <thread>

namespace zelmar {

namespace {
bool& running() {
    static bool r = false;
    return r;
}

struct RunningGuard {
    RunningGuard() { running() = true; }
    ~RunningGuard() { running() = false; }
};
} // namespace

BakeStats bakeLightMaps(const std::vector<Handle>& polygons, const LightMapParams& params,
                        const BakeOptions& options) {
    using namespace lightmap;
    BakeStats stats;
    if (running()) {
        stats.error = "a light-map bake is already running";
        return stats;
    }
    RunningGuard guard;
    World& w = world();
    const int total = static_cast<int>(polygons.size());
    const Bake bake = makeBake(params, options.record != nullptr);
    const int threads = std::clamp(options.threads, 1, std::max(total, 1));

    // Everything read from the world is read here, before any change.
    std::vector<Job> jobs(polygons.size());
    render::parallelFor(threads, total, [&](int i) {
        if (const Polygon* p = w.polygon(polygons[static_cast<size_t>(i)])) prepare(bake, *p, jobs[static_cast<size_t>(i)]);
    });
    BitmapUses& uses = BitmapUses::forBake();
    std::vector<Bitmap*> doomed; // replaced light maps, destroyed together at the end

    std::vector<Result> results(polygons.size());
    std::unique_ptr<std::atomic<bool>[]> ready(new std::atomic<bool>[polygons.size() + 1]);
    for (size_t i = 0; i < polygons.size(); ++i)
        ready[i].store(false);
    std::atomic<int> next{0};
    std::atomic<bool> stop{false};
    std::mutex m;
    std::condition_variable cv;
    // Takes the next polygon not yet taken and computes it; false when none is left.
    auto work = [&]() {
        if (stop.load()) return false;
        const int i = next.fetch_add(1);
        if (i >= total) return false;
        const Job& job = jobs[static_cast<size_t>(i)];
        if (job.valid) compute(bake, job, results[static_cast<size_t>(i)]);
        {
            std::lock_guard<std::mutex> lock(m);
            ready[i].store(true);
        }
        cv.notify_one();
        return true;
    };
    std::vector<std::thread> workers;
    for (int t = 1; t < threads; ++t)
        workers.emplace_back([&] {
            while (work()) {
            }
        });

    for (int done = 0; done < total; ++done) {
        // Help while the next polygon in order is not ready; wait when nothing is left to take.
        while (!ready[done].load()) {
            if (!work()) {
                std::unique_lock<std::mutex> lock(m);
                cv.wait(lock, [&] { return ready[done].load(); });
            }
        }
        const Job& job = jobs[static_cast<size_t>(done)];
        Result& r = results[static_cast<size_t>(done)];
        stats.shadowRays += r.rays;
        if (options.record) options.record->insert(options.record->end(), r.recorded.begin(), r.recorded.end());
        // The polygon is looked up again: the progress callback may have deleted it.
        if (Polygon* p = w.polygon(job.polygon); p && job.valid) {
            stats.lastBitmap = apply(*p, job, std::move(r), uses, doomed);
            ++stats.made;
        }
        r = Result{};
        stats.finished = done + 1;
        if (options.progress && !options.progress(done + 1, total)) {
            stats.aborted = done + 1 < total;
            break;
        }
    }
    stop.store(true);
    for (std::thread& t : workers)
        t.join();
    w.destroyBitmaps(doomed);
    BitmapUses::stillValid();
    // Light maps change no geometry: the shadow casters stay right for the next bake.
    if (bake.occluders) occludersStillValid();
    return stats;
}

Handle createLightMap(Polygon& p, const LightMapParams& params) {
    const BakeStats s = bakeLightMaps({p.handle}, params, BakeOptions{});
    return s.made ? s.lastBitmap : 0;
}

} // namespace zelmar
