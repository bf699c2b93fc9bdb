// A small counted smart pointer for host and drawing interfaces: holds one reference, adds one on copy,
// releases on destruction.
#pragma once

#include <utility>

#include "gmpi/IMpUnknown.h"

namespace gmpi_sdk {

template <class T>
class mp_shared_ptr {
public:
    mp_shared_ptr() = default;
    // Shares a borrowed pointer: adds a reference.
    explicit mp_shared_ptr(T* borrowed) : p_(borrowed) {
        if (p_)
            p_->addRef();
    }
    mp_shared_ptr(const mp_shared_ptr& other) : mp_shared_ptr(other.p_) {}
    mp_shared_ptr(mp_shared_ptr&& other) noexcept : p_(std::exchange(other.p_, nullptr)) {}
    mp_shared_ptr& operator=(mp_shared_ptr other) noexcept {
        std::swap(p_, other.p_);
        return *this;
    }
    ~mp_shared_ptr() { reset(); }

    // Takes over a pointer whose reference the caller already owns (an out-parameter's result).
    static mp_shared_ptr adopt(T* owned) {
        mp_shared_ptr r;
        r.p_ = owned;
        return r;
    }

    void reset() {
        if (p_)
            std::exchange(p_, nullptr)->release();
    }
    // Releases what is held and gives the address an out-parameter fills with an owned reference.
    T** put() {
        reset();
        return &p_;
    }

    T* get() const { return p_; }
    T* operator->() const { return p_; }
    explicit operator bool() const { return p_ != nullptr; }
    bool operator==(const mp_shared_ptr& other) const { return p_ == other.p_; }

private:
    T* p_ = nullptr;
};

// Asks an object for interface iid and holds the answer (null when it is not offered).
template <class I>
mp_shared_ptr<I> queryAs(gmpi::IMpUnknown* object, const gmpi::MpGuid& iid) {
    void* found = nullptr;
    if (object && object->queryInterface(iid, &found) == gmpi::MP_OK && found)
        return mp_shared_ptr<I>::adopt(static_cast<I*>(found));
    return {};
}

}  // namespace gmpi_sdk
