// The module factory the bundle hands out through MP_GetFactory.
#pragma once

#include "IMpUnknown.h"

namespace gmpi {

// {9A7904B7-7F7F-4D61-B558-C1A6695BB638}
inline constexpr MpGuid MP_IID_FACTORY = {0x9A7904B7, 0x7F7F, 0x4D61, {0xB5, 0x58, 0xC1, 0xA6, 0x69, 0x5B, 0xB6, 0x38}};
// {91C3D2EE-C701-4F35-91A6-094DC7E05976}
inline constexpr MpGuid MP_IID_FACTORY2 = {
    0x91C3D2EE, 0xC701, 0x4F35, {0x91, 0xA6, 0x09, 0x4D, 0xC7, 0xE0, 0x59, 0x76}};

class IMpFactory : public IMpUnknown {
public:
    // [loading thread] Creates a module by identifier and side (0 DSP, 2 GUI) and, for modules with the
    // legacy initialisation face, hands it the host. *returnInterface gets the new object (caller owns one
    // reference) or null. Returns 0; -1 when construction or setHost threw; -2 for an unknown
    // identifier or side.
    virtual int32_t createInstance(const wchar_t* uniqueId, int32_t subType, IMpUnknown* host,
                                   void** returnInterface) = 0;
    // [loading thread] Writes the framework version (30800) and a zero-terminated compiler text of at most
    // maxChars characters into the caller's buffer. Returns 0.
    virtual int32_t getSdkInformation(int32_t& returnSdkVersion, int32_t maxChars,
                                      wchar_t* returnCompilerInformation) = 0;

protected:
    ~IMpFactory() = default;
};

class IMpFactory2 : public IMpFactory {
public:
    // [loading thread] As createInstance without the host: the host calls setHost itself afterwards.
    virtual int32_t createInstance2(const wchar_t* uniqueId, int32_t subType, void** returnInterface) = 0;

protected:
    ~IMpFactory2() = default;
};

}  // namespace gmpi

// The bundle's one exported entry point: stores the factory's IMpUnknown face in *returnInterface.
extern "C" int32_t MP_GetFactory(void** returnInterface);
using MP_GetFactoryFunc = int32_t (*)(void** returnInterface);
