// Reference counting and identity for the objects the host hands to modules (drawing objects here;
// dialogs, resource streams and return strings build on it too): one interface chain I, answered for
// IMpUnknown and the identifiers the object is made with. The creator holds the first reference; the
// object deletes itself when the last one is released.
#pragma once

#include <cstdint>
#include <utility>
#include <vector>

#include "gmpi/IMpUnknown.h"

namespace kxhost {

template <class I>
class RefCounted : public I {
public:
    explicit RefCounted(std::vector<gmpi::MpGuid> iids) : iids_(std::move(iids)) {}
    RefCounted(const RefCounted&) = delete;
    RefCounted& operator=(const RefCounted&) = delete;
    virtual ~RefCounted() = default;

    int32_t queryInterface(const gmpi::MpGuid& iid, void** out) override {
        if (!out)
            return gmpi::MP_NOSUPPORT;
        *out = face(iid);
        if (!*out)
            return gmpi::MP_NOSUPPORT;
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

protected:
    // What queryInterface answers for iid (a reference is added to it), or null.
    virtual void* face(const gmpi::MpGuid& iid) {
        if (gmpi::isUnknownIid(iid))
            return static_cast<I*>(this);
        for (const auto& g : iids_)
            if (g == iid)
                return static_cast<I*>(this);
        return nullptr;
    }

private:
    std::vector<gmpi::MpGuid> iids_;
    int32_t count_ = 1;
};

}  // namespace kxhost
