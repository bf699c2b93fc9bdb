// The module bundle, loaded the way any host loads it: dlopen, then MP_GetFactory, then the factory.
#pragma once

#include <filesystem>
#include <string>

#include "gmpi/IMpFactory.h"
#include "patch/Catalogue.h"

namespace kxhost {

class Bundle {
public:
    // Throws HostError naming the path when the file is missing, cannot be loaded, lacks MP_GetFactory
    // or hands out no factory.
    explicit Bundle(const std::filesystem::path& path);
    ~Bundle();
    Bundle(const Bundle&) = delete;
    Bundle& operator=(const Bundle&) = delete;

    // createInstance2 for an identifier and side: the factory's result code, and the new object (the
    // caller owns one reference) or null.
    int32_t create(const std::string& id, Side side, gmpi::IMpUnknown*& object);
    // createInstance: the same, with the host handed to the factory (which gives it to modules that take
    // their host at creation).
    int32_t createWithHost(const std::string& id, Side side, gmpi::IMpUnknown* host, gmpi::IMpUnknown*& object);
    // Whether the bundle creates this side of the identifier (creates it and releases it again).
    bool creates(const std::string& id, Side side);
    // Whether the GUI side the bundle creates for this identifier is a graphic module: one that offers a
    // graphics face, so a panel can place it (it may still draw nothing, as pointer areas do).
    bool isGraphic(const std::string& id);

    const std::filesystem::path& path() const { return path_; }

private:
    std::filesystem::path path_;
    void* handle_ = nullptr;
    gmpi::IMpFactory2* factory_ = nullptr;
};

// Where the bundle is by default: beside the running kxhost, else where the build put it.
std::filesystem::path defaultBundlePath();

}  // namespace kxhost
