#include "validate/ValidateHost.h"

#include <algorithm>

namespace kxhost::validate {

void HostRefs::queried(const gmpi::MpGuid& iid) {
    if (std::none_of(faces_.begin(), faces_.end(), [&](const gmpi::MpGuid& f) { return f == iid; }))
        faces_.push_back(iid);
}

}  // namespace kxhost::validate
