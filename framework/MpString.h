// A returned-string object: the caller keeps it (on the stack or as a member) and hands it to the host,
// which fills it through IString.
#pragma once

#include <string>

#include "HostBoundary.h"
#include "gmpi/IString.h"

namespace gmpi_sdk {

class MpString final : public gmpi::IString {
public:
    int32_t queryInterface(const gmpi::MpGuid& iid, void** returnInterface) override {
        if (!returnInterface)
            return gmpi::MP_NOSUPPORT;
        *returnInterface = nullptr;
        if (gmpi::isUnknownIid(iid) || iid == gmpi::MP_IID_RETURNSTRING) {
            *returnInterface = static_cast<gmpi::IString*>(this);
            return gmpi::MP_OK;
        }
        return gmpi::MP_NOSUPPORT;
    }
    // The object is owned by whoever declared it; the counts are not kept.
    int32_t addRef() override { return 1; }
    int32_t release() override { return 1; }

    int32_t setData(const char* data, int32_t size) override {
        return kx::guarded([&] {
            if (size > 0 && data)
                text_.assign(data, static_cast<size_t>(size));
            else
                text_.clear();
            return gmpi::MP_OK;
        });
    }
    int32_t getSize() override { return static_cast<int32_t>(text_.size()); }
    const char* getData() override { return text_.data(); }

    const std::string& str() const { return text_; }

private:
    std::string text_;
};

}  // namespace gmpi_sdk
