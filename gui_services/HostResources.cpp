#include "HostResources.h"

#include "MpCountedPtr.h"
#include "MpString.h"

namespace kx {

std::string resolveResource(gmpi::IMpUserInterfaceHost2* host, const std::string& name, const char* type) {
    if (!host)
        return {};
    gmpi_sdk::MpString path;
    host->resolveResource(name.c_str(), type, &path);
    return path.str();
}

bool readResource(gmpi::IMpUserInterfaceHost2* host, const std::string& fullPath, std::string& bytes) {
    bytes.clear();
    if (!host)
        return false;
    gmpi::IMpUnknown* object = nullptr;
    if (host->openResource(fullPath.c_str(), &object) != gmpi::MP_OK || !object)
        return false;
    auto stream = gmpi_sdk::queryAs<gmpi::IMpResourceStream>(object, gmpi::MP_IID_RESOURCE_STREAM);
    object->release();
    if (!stream)
        return false;
    char buffer[4096];
    for (;;) {
        const int32_t n = stream->read(buffer, sizeof buffer);
        if (n <= 0)
            break;
        bytes.append(buffer, static_cast<size_t>(n < static_cast<int32_t>(sizeof buffer) ? n : sizeof buffer));
    }
    return true;
}

}  // namespace kx
