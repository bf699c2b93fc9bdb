#include "session/Bundle.h"

#include <dlfcn.h>

#include "gmpi/IMpGraphics.h"
#include "patch/Error.h"
#include "patch/Text.h"

#ifndef KX_DEFAULT_BUNDLE
#define KX_DEFAULT_BUNDLE ""
#endif

namespace kxhost {

Bundle::Bundle(const std::filesystem::path& path) : path_(path) {
    std::error_code ec;
    if (!std::filesystem::is_regular_file(path, ec))
        throw HostError("bundle " + path.string() + " does not exist");
    handle_ = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!handle_) {
        const char* why = dlerror();
        throw HostError("bundle " + path.string() + " cannot be loaded: " + (why ? why : "unknown reason"));
    }
    auto entry = reinterpret_cast<MP_GetFactoryFunc>(dlsym(handle_, "MP_GetFactory"));
    void* unknown = nullptr;
    if (!entry) {
        dlclose(handle_);
        throw HostError("bundle " + path.string() + " does not export MP_GetFactory");
    }
    if (entry(&unknown) != gmpi::MP_OK || !unknown) {
        dlclose(handle_);
        throw HostError("bundle " + path.string() + ": MP_GetFactory gave no factory");
    }
    void* factory = nullptr;
    auto* root = static_cast<gmpi::IMpUnknown*>(unknown);
    if (root->queryInterface(gmpi::MP_IID_FACTORY2, &factory) != gmpi::MP_OK || !factory) {
        root->release();
        dlclose(handle_);
        throw HostError("bundle " + path.string() + ": its factory does not offer createInstance2");
    }
    root->release();
    factory_ = static_cast<gmpi::IMpFactory2*>(factory);
}

Bundle::~Bundle() {
    if (factory_)
        factory_->release();
    if (handle_)
        dlclose(handle_);
}

int32_t Bundle::create(const std::string& id, Side side, gmpi::IMpUnknown*& object) {
    void* out = nullptr;
    const std::wstring wide = widen(id);
    const int32_t rc = factory_->createInstance2(wide.c_str(), subType(side), &out);
    object = rc == gmpi::MP_OK ? static_cast<gmpi::IMpUnknown*>(out) : nullptr;
    // A factory that reports failure yet hands out an object: the object is ours to release.
    if (rc != gmpi::MP_OK && out)
        static_cast<gmpi::IMpUnknown*>(out)->release();
    return rc;
}

int32_t Bundle::createWithHost(const std::string& id, Side side, gmpi::IMpUnknown* host, gmpi::IMpUnknown*& object) {
    void* out = nullptr;
    const std::wstring wide = widen(id);
    const int32_t rc = factory_->createInstance(wide.c_str(), subType(side), host, &out);
    object = rc == gmpi::MP_OK ? static_cast<gmpi::IMpUnknown*>(out) : nullptr;
    if (rc != gmpi::MP_OK && out)
        static_cast<gmpi::IMpUnknown*>(out)->release();
    return rc;
}

bool Bundle::creates(const std::string& id, Side side) {
    gmpi::IMpUnknown* object = nullptr;
    if (create(id, side, object) != gmpi::MP_OK || !object)
        return false;
    object->release();
    return true;
}

bool Bundle::isGraphic(const std::string& id) {
    gmpi::IMpUnknown* object = nullptr;
    if (create(id, Side::Gui, object) != gmpi::MP_OK || !object)
        return false;
    bool graphic = false;
    for (const auto& iid : {gmpi_gui_api::SE_IID_GRAPHICS_MPGUI2, gmpi_gui_api::SE_IID_GRAPHICS_MPGUI}) {
        void* face = nullptr;
        if (object->queryInterface(iid, &face) == gmpi::MP_OK && face) {
            static_cast<gmpi::IMpUnknown*>(face)->release();
            graphic = true;
            break;
        }
    }
    object->release();
    return graphic;
}

std::filesystem::path defaultBundlePath() {
    std::error_code ec;
    const auto exe = std::filesystem::read_symlink("/proc/self/exe", ec);
    const std::filesystem::path built = KX_DEFAULT_BUNDLE;
    if (!ec) {
        const auto beside =
            exe.parent_path() / (built.empty() ? std::filesystem::path("KXModules.so") : built.filename());
        if (std::filesystem::exists(beside, ec))
            return beside;
    }
    return built;
}

}  // namespace kxhost
