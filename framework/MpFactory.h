// The process-wide module factory and the registration every module file makes at its bottom:
//
//   namespace {
//   const bool registered = gmpi::Register<KX_CmpInt>::withId(L"KX_CmpInt");
//   }
#pragma once

#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "HostBoundary.h"
#include "gmpi/IMpFactory.h"

using MP_CreateFunc2 = gmpi::IMpUnknown* (*)();
// Hands an object made by the creator registered beside it its host, running the module's own setHost
// outside the guard; true when that threw.
using MP_SetHostFunc = bool (*)(gmpi::IMpUnknown* object, gmpi::IMpUnknown* host);

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
    // createInstance hands the new object its host through setHost when given, else through the
    // object's legacy initialisation face.
    int32_t RegisterPlugin(const wchar_t* uniqueId, int32_t subType, MP_CreateFunc2 create,
                           MP_SetHostFunc setHost = nullptr);

    // Every registered (side, identifier) pair, ordered by side, then by identifier: what the pack holds.
    std::vector<std::pair<int32_t, std::wstring>> registrations() const;

    virtual ~MpFactory() = default;

private:
    struct Creator {
        MP_CreateFunc2 create;
        MP_SetHostFunc setHost;
    };

    // Looks the creator up and runs it; 0, -1 (creator threw) or -2 (unknown).
    int32_t create(const wchar_t* uniqueId, int32_t subType, gmpi::IMpUnknown*& created,
                   MP_SetHostFunc* setHost = nullptr);

    // Orders (side, identifier) keys by side, then by identifier, and compares a key with a (side, view)
    // pair, so that a look-up copies no identifier.
    struct KeyOrder {
        using is_transparent = void;
        template <class A, class B>
        bool operator()(const A& a, const B& b) const {
            return a.first != b.first ? a.first < b.first : std::wstring_view(a.second) < std::wstring_view(b.second);
        }
    };
    std::map<std::pair<int32_t, std::wstring>, Creator, KeyOrder> registry_;
};

// The one factory, created on first use.
MpFactory* Factory();

// Registration entry points used by module files' static initialisers. Both return 0.
int32_t RegisterPlugin(int subType, const wchar_t* uniqueId, MP_CreateFunc2 create, MP_SetHostFunc setHost = nullptr);
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
    // For createInstance, which fails only when setHost throws: the guarded slot answers -1 both for a
    // throw and for a failure the module answers itself (a host without an interface it wants), and the
    // second still hands the object out. So the factory runs T's own setHost and sees the throw.
    static bool setHost(IMpUnknown* object, IMpUnknown* host) {
        auto* module = static_cast<kx::Guarded<T>*>(static_cast<typename T::principal_interface*>(object));
        return kx::throwsAtBoundary([&] { module->T::setHost(host); });
    }
    static bool withId(const wchar_t* uniqueId) {
        ::RegisterPlugin(T::sub_type, uniqueId, &create, &setHost);
        return true;
    }
};

}  // namespace gmpi
