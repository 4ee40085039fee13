// Little-endian byte output and bounds-checked input for the binary world format.
// A Cursor never reads past its end: every read checks first and throws ReadError with
// the byte offset, which the reader turns into the error text.
#pragma once
#include <bit>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

static_assert(std::endian::native == std::endian::little, "the binary world format is written as in memory");

namespace zelmar::io {

struct ReadError {
    std::string message;
    uint64_t where = 0;
};

// Where bytes go: a file, memory or a compressor. Called per block, never per value.
class Sink {
  public:
    virtual ~Sink() = default;
    virtual bool write(const void* data, size_t size) = 0;
};

class VectorSink : public Sink {
  public:
    std::vector<uint8_t> bytes;
    bool write(const void* data, size_t size) override {
        const auto* p = static_cast<const uint8_t*>(data);
        bytes.insert(bytes.end(), p, p + size);
        return true;
    }
};

class Out {
  public:
    void raw(const void* p, size_t n) {
        if (n == 0) return; // p may be the null data() of an empty vector
        if (n_ + n > buf_.size()) grow(n);
        std::memcpy(buf_.data() + n_, p, n);
        n_ += n;
    }
    void u8(uint8_t v) { raw(&v, 1); }
    void u32(uint32_t v) { raw(&v, 4); }
    void i32(int32_t v) { raw(&v, 4); }
    void u64(uint64_t v) { raw(&v, 8); }
    void f64(double v) { raw(&v, 8); }
    void str(const std::string& s) {
        u32(static_cast<uint32_t>(s.size()));
        raw(s.data(), s.size());
    }
    uint8_t* data() { return buf_.data(); }
    size_t size() const { return n_; }
    void clear() { n_ = 0; }
    void reserve(size_t n) {
        if (buf_.size() < n) buf_.resize(n);
    }

  private:
    void grow(size_t n) {
        size_t cap = buf_.size() ? buf_.size() * 2 : 4096;
        while (cap < n_ + n)
            cap *= 2;
        buf_.resize(cap);
    }
    std::vector<uint8_t> buf_;
    size_t n_ = 0;
};

// A double is finite unless its exponent bits are all ones.
inline bool finiteBits(uint64_t bits) {
    return ((bits >> 52) & 0x7FF) != 0x7FF;
}

class Cursor {
  public:
    Cursor(const uint8_t* data, size_t size, uint64_t base)
        : p_(data), begin_(data), end_(data + size), base_(base) {}

    uint64_t offset() const { return base_ + static_cast<uint64_t>(p_ - begin_); }
    size_t remaining() const { return static_cast<size_t>(end_ - p_); }
    bool atEnd() const { return p_ == end_; }
    const uint8_t* here() const { return p_; }

    [[noreturn]] void fail(const std::string& what) const { throw ReadError{what, offset()}; }
    void need(uint64_t n) const {
        if (n > remaining())
            fail("truncated: " + std::to_string(n) + " bytes needed, " + std::to_string(remaining()) +
                 " left");
    }
    const uint8_t* take(uint64_t n) {
        need(n);
        const uint8_t* p = p_;
        p_ += n;
        return p;
    }
    uint8_t u8() { return *take(1); }
    uint32_t u32() {
        uint32_t v;
        std::memcpy(&v, take(4), 4);
        return v;
    }
    int32_t i32() {
        int32_t v;
        std::memcpy(&v, take(4), 4);
        return v;
    }
    uint64_t u64() {
        uint64_t v;
        std::memcpy(&v, take(8), 8);
        return v;
    }
    double f64() {
        uint64_t bits = u64();
        if (!finiteBits(bits)) {
            p_ -= 8;
            fail("a value is not a finite number");
        }
        double v;
        std::memcpy(&v, &bits, 8);
        return v;
    }
    std::string str() {
        const uint32_t n = u32();
        const uint8_t* p = take(n);
        return std::string(reinterpret_cast<const char*>(p), n);
    }
    // A count of records each at least `minBytes` (> 0) long: refuses counts the data cannot
    // hold. Divided, not multiplied, so that no product can wrap.
    uint32_t count(uint64_t minBytes) {
        const uint32_t n = u32();
        if (n != 0 && (minBytes == 0 || n > remaining() / minBytes))
            fail("count " + std::to_string(n) + " exceeds what the data can hold");
        return n;
    }

  private:
    const uint8_t* p_;
    const uint8_t* begin_;
    const uint8_t* end_;
    uint64_t base_;
};

} // namespace zelmar::io
