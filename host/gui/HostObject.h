// Objects the host hands to modules (return strings, menu sinks, resource streams, dialogs): one face,
// their own reference count, deleted when it reaches 0. Every living one is counted, so a check after a
// module's last release can tell whether it kept anything.
#pragma once

#include <cstdint>

#include "gmpi/IMpUnknown.h"

namespace kxhost {

class Counted {
public:
    Counted() { ++alive_; }
    Counted(const Counted&) = delete;
    Counted& operator=(const Counted&) = delete;
    virtual ~Counted() { --alive_; }
    // Host objects alive in this process.
    static int alive() { return alive_; }

private:
    static inline int alive_ = 0;
};

// Identity and counting for a host object with the one face I, known by iid.
template <class I>
class CountedObject : public I, public Counted {
public:
    explicit CountedObject(const gmpi::MpGuid& iid) : iid_(iid) {}
    int32_t queryInterface(const gmpi::MpGuid& iid, void** out) override {
        if (!out)
            return gmpi::MP_NOSUPPORT;
        *out = nullptr;
        if (!gmpi::isUnknownIid(iid) && !(iid == iid_))
            return gmpi::MP_NOSUPPORT;
        *out = static_cast<I*>(this);
        addRef();
        return gmpi::MP_OK;
    }
    int32_t addRef() override { return ++count_; }
    int32_t release() override {
        const int32_t c = --count_;
        if (c == 0)
            delete this;
        return c;
    }

private:
    gmpi::MpGuid iid_;
    int32_t count_ = 1;
};

}  // namespace kxhost
