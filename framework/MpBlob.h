// The binary value carried on blob pins: an owning byte array with its size.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

class MpBlob {
public:
    MpBlob() = default;
    MpBlob(size_t size, const void* data) { setValueRaw(size, data); }
    MpBlob(const MpBlob& other) { *this = other; }
    MpBlob(MpBlob&& other) noexcept : size_(other.size_), data_(std::move(other.data_)) { other.size_ = 0; }
    MpBlob& operator=(const MpBlob& other);
    MpBlob& operator=(MpBlob&& other) noexcept;

    // Replaces the contents with size bytes from data (reallocating only when the size changes).
    void setValueRaw(size_t size, const void* data);
    // Sets the size; growing reallocates and loses the contents, shrinking keeps the leading bytes.
    void resize(int size);

    int32_t getSize() const { return static_cast<int32_t>(size_); }
    // Never null: an empty blob points at a shared empty array, so a size-0 value handed to a host or a
    // message always comes with valid data. Nothing may be written through it while the size is 0.
    char* getData() const { return data_ ? data_.get() : emptyData(); }

    bool operator==(const MpBlob& other) const { return compare(other.data_.get(), static_cast<int>(other.size_)); }
    bool operator!=(const MpBlob& other) const { return !(*this == other); }
    // True when this blob holds exactly size bytes equal to data.
    bool compare(const char* data, int size) const;

private:
    static char* emptyData() {
        static char empty[1] = {};
        return empty;
    }

    uint64_t size_ = 0;
    size_t capacity_ = 0;  // bytes owned, >= size_ after a shrink
    std::unique_ptr<char[]> data_;
};
