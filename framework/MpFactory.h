// The process-wide module factory and the registration every module file makes at its bottom:
//
//   namespace {
//   const bool registered = gmpi::Register<KX_CmpInt>::withId(L"KX_CmpInt");
//   }
#pragma once

#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "HostBoundary.h"
#include "gmpi/IMpFactory.h"

using MP_CreateFunc2 = gmpi::IMpUnknown* (*)();

class MpFactory final : public gmpi::IMpFactory2 {
public:
    int32_t queryInterface(const gmpi::MpGuid& iid, void** returnInterface) override;
    // The factory lives until unload; the counts are not kept.
    int32_t addRef() override { return 1; }
    int32_t release() override { return 1; }
    int32_t createInstance(const wchar_t* uniqueId, int32_t subType, gmpi::IMpUnknown* host,
                           void** returnInterface) override;
    int32_t getSdkInformation(int32_t& returnSdkVersion, int32_t maxChars, wchar_t* returnCompilerInformation) override;
    int32_t createInstance2(const wchar_t* uniqueId, int32_t subType, void** returnInterface) override;

    // Enters a creator under (subType, id); a second registration of the same pair is ignored.
    int32_t RegisterPlugin(const wchar_t* uniqueId, int32_t subType, MP_CreateFunc2 create);
    // Every registered (subType, id), by side, then by identifier: what tools that drive every module
    // (the fuzzer) choose from.
    std::vector<std::pair<int32_t, std::wstring>> registrations() const;

    virtual ~MpFactory() = default;

private:
    // Looks the creator up and runs it; 0, -1 (creator threw) or -2 (unknown).
    int32_t create(const wchar_t* uniqueId, int32_t subType, gmpi::IMpUnknown*& created);

    // Ordered by side, then by identifier.
    std::map<std::pair<int32_t, std::wstring>, MP_CreateFunc2> registry_;
};

// The one factory, created on first use.
MpFactory* Factory();

// Registration entry points used by module files' static initialisers. Both return 0.
int32_t RegisterPlugin(int subType, const wchar_t* uniqueId, MP_CreateFunc2 create);
// Module descriptions are not registered through code in this pack: does nothing.
int32_t RegisterPluginXml(const char* xml);

namespace gmpi {

// The creator and registration of one module class. The side comes from the class's base (GUI bases
// register side 2, DSP bases side 0); the object the factory hands out is a kx::Guarded<T>, so that
// exceptions from the module's own code stop at the boundary.
template <class T>
struct Register {
    static IMpUnknown* create() {
        auto* object = new kx::Guarded<T>();
        return static_cast<typename T::principal_interface*>(object);
    }
    static bool withId(const wchar_t* uniqueId) {
        ::RegisterPlugin(T::sub_type, uniqueId, &create);
        return true;
    }
};

}  // namespace gmpi
