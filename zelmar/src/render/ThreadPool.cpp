#include "render/ThreadPool.h"

#include <atomic>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

namespace zelmar::render {
namespace {

class Pool {
  public:
    ~Pool() {
        {
            std::lock_guard<std::mutex> lock(m_);
            quit_ = true;
        }
        cv_.notify_all();
        for (auto& t : workers_)
            t.join();
    }

    void run(int threads, int count, const std::function<void(int)>& fn) {
        const int helpers = std::min(threads, count) - 1;
        if (helpers <= 0) {
            for (int i = 0; i < count; ++i)
                fn(i);
            return;
        }
        while (static_cast<int>(workers_.size()) < helpers)
            workers_.emplace_back([this, id = static_cast<int>(workers_.size())] { loop(id); });
        {
            std::lock_guard<std::mutex> lock(m_);
            fn_ = &fn;
            count_ = count;
            next_.store(0);
            active_ = helpers;
            pending_ = helpers;
            ++job_;
        }
        cv_.notify_all();
        work();
        std::unique_lock<std::mutex> lock(m_);
        done_.wait(lock, [this] { return pending_ == 0; });
        fn_ = nullptr;
    }

  private:
    void work() {
        for (;;) {
            const int i = next_.fetch_add(1);
            if (i >= count_) break;
            (*fn_)(i);
        }
    }

    void loop(int id) {
        uint64_t seen = 0;
        for (;;) {
            {
                std::unique_lock<std::mutex> lock(m_);
                cv_.wait(lock, [&] { return quit_ || (job_ != seen && id < active_); });
                if (quit_) return;
                seen = job_;
            }
            work();
            {
                std::lock_guard<std::mutex> lock(m_);
                if (--pending_ == 0) done_.notify_one();
            }
        }
    }

    std::vector<std::thread> workers_;
    std::mutex m_;
    std::condition_variable cv_, done_;
    const std::function<void(int)>* fn_ = nullptr;
    std::atomic<int> next_{0};
    int count_ = 0, active_ = 0, pending_ = 0;
    uint64_t job_ = 0;
    bool quit_ = false;
};

Pool& pool() {
    static Pool p;
    return p;
}

} // namespace

void parallelFor(int threads, int count, const std::function<void(int)>& fn) {
    pool().run(threads, count, fn);
}

} // namespace zelmar::render
