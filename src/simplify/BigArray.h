// The allocator of the model's large arrays. A block of 2 MiB or more is mapped on its own,
// aligned on 2 MiB and advised for transparent huge pages: the model (about 47 MB for 70,000
// triangles) is read at random during contraction, and in 4 KiB pages those reads miss the TLB
// and every page costs a fault when it is first written. Smaller blocks come from operator new.
// Nothing else changes: contents, growth and order are those of std::vector.
#pragma once
#include <cstddef>
#include <mutex>
#include <new>
#include <vector>

#include <sys/mman.h>

namespace simplify {

namespace bigarray {
inline constexpr std::size_t kPage = std::size_t(2) << 20; // a huge page
inline constexpr std::size_t kBig = kPage;                 // from here on, blocks are mapped

// Mapped in whole small pages: the kernel puts a huge page only where a whole aligned 2 MiB lies
// inside the mapping, so the tail past the last one takes small pages and no room is wasted.
inline std::size_t mappedBytes(std::size_t bytes) { return (bytes + 4095) & ~std::size_t(4095); }

// Blocks let go while a model is alive are kept (up to 64 MiB, the oldest given back first) for
// the next request of the same size: the renumbering replaces each array by one of the same
// size, and the copy for restarting follows it, so those pages are mapped and cleared once.
// Everything kept goes back to the system when the copy is made and when the last model is gone.
class Cache {
public:
    static Cache& instance() {
        static Cache* c = new Cache; // never destroyed: arrays of static objects may go after it
        return *c;
    }
    void addUser() {
        std::lock_guard<std::mutex> lock(m_);
        ++users_;
    }
    void dropUser() {
        std::lock_guard<std::mutex> lock(m_);
        --users_;
        trim();
    }
    void* take(std::size_t len) {
        std::lock_guard<std::mutex> lock(m_);
        for (std::size_t i = kept_.size(); i-- > 0;) // the most recent first
            if (kept_[i].len == len) {
                void* at = kept_[i].at;
                bytes_ -= len;
                kept_.erase(kept_.begin() + static_cast<std::ptrdiff_t>(i));
                return at;
            }
        return nullptr;
    }
    // Gives every kept block back (a model calls it once its copy for restarting is made: no
    // request of those sizes follows).
    void giveBack() {
        std::lock_guard<std::mutex> lock(m_);
        for (const Block& b : kept_) ::munmap(b.at, b.len);
        kept_.clear();
        bytes_ = 0;
    }
    std::size_t keptBytes() {
        std::lock_guard<std::mutex> lock(m_);
        return bytes_;
    }
    bool keep(void* at, std::size_t len) {
        std::lock_guard<std::mutex> lock(m_);
        if (len > cap()) return false;
        kept_.push_back(Block{at, len});
        bytes_ += len;
        trim();
        return true;
    }

private:
    struct Block {
        void* at;
        std::size_t len;
    };
    // At most 64 MiB kept while a model lives; nothing once the last one is gone.
    std::size_t cap() const { return users_ > 0 ? std::size_t(64) << 20 : 0; }
    // The oldest go back to the system first.
    void trim() {
        std::size_t drop = 0;
        while (drop < kept_.size() && bytes_ > cap()) {
            ::munmap(kept_[drop].at, kept_[drop].len);
            bytes_ -= kept_[drop].len;
            ++drop;
        }
        kept_.erase(kept_.begin(), kept_.begin() + static_cast<std::ptrdiff_t>(drop));
    }
    std::mutex m_;
    int users_ = 0;
    std::size_t bytes_ = 0;
    std::vector<Block> kept_;
};

// A member of each model (declared before its arrays, so that it is destroyed after them).
struct CacheUser {
    CacheUser() { Cache::instance().addUser(); }
    ~CacheUser() { Cache::instance().dropUser(); }
    CacheUser(const CacheUser&) = delete;
    CacheUser& operator=(const CacheUser&) = delete;
};

inline void* allocate(std::size_t bytes, std::size_t align) {
    if (bytes < kBig) return ::operator new(bytes, std::align_val_t(align));
    const std::size_t len = mappedBytes(bytes);
    if (void* kept = Cache::instance().take(len)) return kept;
    void* raw = ::mmap(nullptr, len + kPage, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (raw == MAP_FAILED) throw std::bad_alloc();
    const std::size_t a = reinterpret_cast<std::size_t>(raw);
    const std::size_t at = (a + kPage - 1) & ~(kPage - 1);
    if (at > a) ::munmap(raw, at - a);
    if (const std::size_t tail = a + kPage - at) ::munmap(reinterpret_cast<void*>(at + len), tail);
#ifdef MADV_HUGEPAGE
    ::madvise(reinterpret_cast<void*>(at), len, MADV_HUGEPAGE);
#endif
    return reinterpret_cast<void*>(at);
}

inline void release(void* p, std::size_t bytes, std::size_t align) noexcept {
    if (bytes < kBig) {
        ::operator delete(p, std::align_val_t(align));
        return;
    }
    const std::size_t len = mappedBytes(bytes);
    if (!Cache::instance().keep(p, len)) ::munmap(p, len);
}
} // namespace bigarray

template <class T>
struct BigAlloc {
    using value_type = T;
    BigAlloc() = default;
    template <class U> BigAlloc(const BigAlloc<U>&) noexcept {}
    T* allocate(std::size_t n) {
        return static_cast<T*>(bigarray::allocate(n * sizeof(T), alignof(T)));
    }
    void deallocate(T* p, std::size_t n) noexcept { bigarray::release(p, n * sizeof(T), alignof(T)); }
    template <class U> bool operator==(const BigAlloc<U>&) const noexcept { return true; }
};

template <class T> using BigVector = std::vector<T, BigAlloc<T>>;

} // namespace simplify
