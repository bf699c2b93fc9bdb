// The initialisation faces through which a factory hands the host to a new module at creation.
#pragma once

#include "IMpUnknown.h"

namespace gmpi {

// {1C5F701E-F247-4CF1-9706-EFE15960B87E}
inline constexpr MpGuid MP_IID_LEGACY_INITIALIZATION = {
    0x1C5F701E, 0xF247, 0x4CF1, {0x97, 0x06, 0xEF, 0xE1, 0x59, 0x60, 0xB8, 0x7E}};

class IMpLegacyInitialization : public IMpUnknown {
public:
    // [loading thread] Hands the module its host object; the module queries what it needs and keeps it.
    // Returns 0, or -2 when the host lacks an interface the module requires.
    virtual int32_t setHost(IMpUnknown* host) = 0;

protected:
    ~IMpLegacyInitialization() = default;
};

}  // namespace gmpi

// The oldest initialisation face: the same single operation, without identity or counting.
class IoldSchoolInitialisation {
public:
    // [loading thread] As IMpLegacyInitialization::setHost.
    virtual int32_t setHost(gmpi::IMpUnknown* host) = 0;

protected:
    ~IoldSchoolInitialisation() = default;
};
