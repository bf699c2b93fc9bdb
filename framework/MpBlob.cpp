#include "MpBlob.h"

#include <cstring>

MpBlob& MpBlob::operator=(const MpBlob& other) {
    if (this != &other)
        setValueRaw(static_cast<size_t>(other.size_), other.data_.get());
    return *this;
}

MpBlob& MpBlob::operator=(MpBlob&& other) noexcept {
    if (this != &other) {
        size_ = other.size_;
        capacity_ = other.capacity_;
        data_ = std::move(other.data_);
        other.size_ = 0;
        other.capacity_ = 0;
    }
    return *this;
}

void MpBlob::setValueRaw(size_t size, const void* data) {
    if (size != size_) {
        // Allocate before freeing, so an allocation failure leaves the old value intact.
        std::unique_ptr<char[]> fresh(size ? new char[size] : nullptr);
        data_ = std::move(fresh);
        size_ = size;
        capacity_ = size;
    }
    if (size && data)
        std::memcpy(data_.get(), data, size);
}

void MpBlob::resize(int size) {
    const size_t wanted = size > 0 ? static_cast<size_t>(size) : 0;
    if (wanted > capacity_) {
        data_.reset(new char[wanted]);
        capacity_ = wanted;
    } else if (wanted == 0) {
        data_.reset();
        capacity_ = 0;
    }
    size_ = wanted;
}

bool MpBlob::compare(const char* data, int size) const {
    if (size < 0 || static_cast<uint64_t>(size) != size_)
        return false;
    return size == 0 || (data && std::memcmp(data_.get(), data, static_cast<size_t>(size)) == 0);
}
