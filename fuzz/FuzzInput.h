// Reads a fuzzer's bytes as a sequence of choices and values. Past the end every read gives zeros (and
// empty byte runs), so a short input is simply a short sequence.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace kxfuzz {

class FuzzInput {
public:
    FuzzInput(const uint8_t* data, size_t size) : data_(data), size_(size) {}

    bool empty() const { return pos_ >= size_; }
    size_t remaining() const { return size_ - pos_; }

    uint8_t byte() { return empty() ? 0 : data_[pos_++]; }
    // A choice among n (n > 0).
    int pick(int n) { return byte() % n; }
    // True with roughly the given chance in 256.
    bool chance(int in256) { return byte() < in256; }

    template <class T>
    T value() {
        T v{};
        const size_t n = std::min(sizeof(T), remaining());
        if (n > 0)
            std::memcpy(&v, data_ + pos_, n);
        pos_ += n;
        return v;
    }

    // Up to n bytes, fewer at the end.
    std::string_view bytes(size_t n) {
        n = std::min(n, remaining());
        const std::string_view out(reinterpret_cast<const char*>(data_ + pos_), n);
        pos_ += n;
        return out;
    }
    std::string_view rest() { return bytes(remaining()); }

private:
    const uint8_t* data_;
    size_t size_;
    size_t pos_ = 0;
};

// Stops the run when a property fails, with a line saying which: the fuzzer keeps the input as a finding,
// the replay test fails.
[[noreturn]] void failed(const char* what, const char* file, int line);

}  // namespace kxfuzz

#define KX_FUZZ_CHECK(condition)                              \
    do {                                                      \
        if (!(condition))                                     \
            ::kxfuzz::failed(#condition, __FILE__, __LINE__); \
    } while (false)
