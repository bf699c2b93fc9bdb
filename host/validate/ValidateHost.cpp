#include "validate/ValidateHost.h"

#include <algorithm>

namespace kxhost::validate {

void HostRefs::queried(const gmpi::MpGuid& iid) {
    if (std::none_of(faces_.begin(), faces_.end(), [&](const gmpi::MpGuid& f) { return f == iid; }))
        faces_.push_back(iid);
}

int32_t ReturnString::setData(const char* data, int32_t size) {
    if (size <= 0 || !data)
        text_.clear();
    else
        text_.assign(data, static_cast<size_t>(size));
    return gmpi::MP_OK;
}

int32_t MenuSink::AddItem(const char* text, int32_t id, int32_t /*flags*/) {
    // The copy reads the whole zero-terminated text: a module handing an unterminated buffer shows here.
    std::string copy = text ? text : "";
    ids_.push_back(id);
    return gmpi::MP_OK;
}

}  // namespace kxhost::validate
