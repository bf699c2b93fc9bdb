#include "MpFactory.h"

#include <algorithm>
#include <sstream>

#include "gmpi/IMpLegacyInitialization.h"

namespace {

MpFactory*& factoryPointer() {
    static MpFactory* factory = nullptr;
    return factory;
}

// Destroys the factory and its registry when the bundle is unloaded.
struct factory_deleter_helper {
    ~factory_deleter_helper() {
        delete factoryPointer();
        factoryPointer() = nullptr;  // anything that runs later gets a fresh, empty factory, not a dangling one
    }
} factoryDeleter;

}  // namespace

MpFactory* Factory() {
    MpFactory*& factory = factoryPointer();
    if (!factory)
        factory = new MpFactory();
    return factory;
}

int32_t RegisterPlugin(int subType, const wchar_t* uniqueId, MP_CreateFunc2 create, MP_SetHostFunc setHost) {
    return Factory()->RegisterPlugin(uniqueId, subType, create, setHost);
}

int32_t RegisterPluginXml(const char*) { return gmpi::MP_OK; }

std::vector<std::pair<int32_t, std::wstring>> MpFactory::registrations() const {
    std::vector<std::pair<int32_t, std::wstring>> keys;
    keys.reserve(registry_.size());
    for (const auto& entry : registry_)
        keys.push_back(entry.first);
    return keys;
}

int32_t MpFactory::RegisterPlugin(const wchar_t* uniqueId, int32_t subType, MP_CreateFunc2 create,
                                  MP_SetHostFunc setHost) {
    if (uniqueId)
        registry_.emplace(std::make_pair(subType, std::wstring(uniqueId)), Creator{create, setHost});
    return gmpi::MP_OK;
}

int32_t MpFactory::queryInterface(const gmpi::MpGuid& iid, void** returnInterface) {
    if (!returnInterface)
        return gmpi::MP_NOSUPPORT;
    if (gmpi::isUnknownIid(iid) || iid == gmpi::MP_IID_FACTORY || iid == gmpi::MP_IID_FACTORY2) {
        *returnInterface = static_cast<gmpi::IMpFactory2*>(this);
        addRef();
        return gmpi::MP_OK;
    }
    *returnInterface = nullptr;
    return gmpi::MP_NOSUPPORT;
}

int32_t MpFactory::create(const wchar_t* uniqueId, int32_t subType, gmpi::IMpUnknown*& created,
                          MP_SetHostFunc* setHost) {
    created = nullptr;
    if (!uniqueId)
        return gmpi::MP_NOSUPPORT;
    return kx::guarded([&] {
        const auto it = registry_.find(std::make_pair(subType, std::wstring_view(uniqueId)));
        if (it == registry_.end() || !it->second.create)
            return gmpi::MP_NOSUPPORT;
        created = it->second.create();
        if (setHost)
            *setHost = it->second.setHost;
        return gmpi::MP_OK;
    });
}

int32_t MpFactory::createInstance(const wchar_t* uniqueId, int32_t subType, gmpi::IMpUnknown* host,
                                  void** returnInterface) {
    if (!returnInterface)
        return gmpi::MP_FAIL;
    *returnInterface = nullptr;
    gmpi::IMpUnknown* object = nullptr;
    MP_SetHostFunc setHost = nullptr;
    const int32_t result = create(uniqueId, subType, object, &setHost);
    if (result != gmpi::MP_OK)
        return result;
    *returnInterface = object;
    if (!object)
        return gmpi::MP_OK;
    // The legacy initialisation face is found by a type query, not queryInterface. Only a throw from
    // setHost fails the creation; what it answers is the module's business. Either way the object stays
    // with the caller, who owns it.
    if (auto* legacy = dynamic_cast<gmpi::IMpLegacyInitialization*>(object)) {
        const bool threw = setHost ? setHost(object, host) : kx::throwsAtBoundary([&] { legacy->setHost(host); });
        if (threw)
            return gmpi::MP_FAIL;
    }
    return gmpi::MP_OK;
}

int32_t MpFactory::createInstance2(const wchar_t* uniqueId, int32_t subType, void** returnInterface) {
    if (!returnInterface)
        return gmpi::MP_FAIL;
    *returnInterface = nullptr;
    gmpi::IMpUnknown* object = nullptr;
    const int32_t result = create(uniqueId, subType, object);
    if (result == gmpi::MP_OK)
        *returnInterface = object;
    return result;
}

int32_t MpFactory::getSdkInformation(int32_t& returnSdkVersion, int32_t maxChars, wchar_t* returnCompilerInformation) {
    returnSdkVersion = 30800;
    kx::guarded([&] {
        std::wostringstream text;
        text << L"GCC Compiler V" << 1002 << L" (Release)";
        const std::wstring info = text.str();
        // Copy only what the caller's buffer holds, always terminated.
        if (returnCompilerInformation && maxChars > 0) {
            const size_t n = std::min(info.size(), static_cast<size_t>(maxChars) - 1);
            std::copy_n(info.data(), n, returnCompilerInformation);
            returnCompilerInformation[n] = L'\0';
        }
    });
    return gmpi::MP_OK;
}

extern "C" __attribute__((visibility("default"))) int32_t MP_GetFactory(void** returnInterface) {
    const int32_t result =
        kx::guarded([&] { return Factory()->queryInterface(gmpi::MP_IID_UNKNOWN, returnInterface); });
    if (result == gmpi::MP_FAIL && returnInterface)
        *returnInterface = nullptr;
    return result;
}
