// The reference count of every counted object the bundle makes (modules, and objects it hands the host
// such as completion handlers): it starts at 1 for the creator, addRef and release answer the new count,
// and release to 0 deletes the object.
#pragma once

#include <cstdint>

namespace kx {

// Derives from the object's bases, in the order given, and implements their addRef and release with one
// count. The destructor is virtual so that release deletes the whole object.
template <class... Bases>
class RefCounted : public Bases... {
public:
    RefCounted() = default;
    RefCounted(const RefCounted&) = delete;
    RefCounted& operator=(const RefCounted&) = delete;
    virtual ~RefCounted() = default;

    int32_t addRef() override { return static_cast<int32_t>(++refCount_); }
    int32_t release() override {
        const auto count = static_cast<int32_t>(--refCount_);
        if (count == 0)
            delete this;
        return count;
    }

private:
    uint32_t refCount_ = 1;
};

}  // namespace kx
