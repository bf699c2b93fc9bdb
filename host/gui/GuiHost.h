// The host object a GUI half receives in setHost: one per instance, offering the second-generation GUI
// host, the first-generation one, and whatever faces extensions offered for the instance.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "gmpi/IMpUserInterfaceHost.h"
#include "gmpi/IMpUserInterfaceHost2.h"

namespace kxhost {

class Instance;

// Both GUI host interfaces declare pinTransmit, getPinCount and sendMessageToAudio with the same
// signatures, so one override serves both faces.
class GuiHost final : public gmpi::IMpUserInterfaceHost2, public gmpi::IMpUserInterfaceHost {
public:
    explicit GuiHost(Instance& instance) : instance_(instance) {}

    // The face a module's setHost receives.
    gmpi::IMpUnknown* unknown() { return static_cast<gmpi::IMpUserInterfaceHost2*>(this); }

    int32_t queryInterface(const gmpi::MpGuid& iid, void** returnInterface) override;
    // The session owns the host objects and outlives the modules: no counting.
    int32_t addRef() override { return 1; }
    int32_t release() override { return 1; }

    int32_t pinTransmit(int32_t pinId, int32_t size, const void* data, int32_t voice) override;
    int32_t getHandle(int32_t& returnHandle) override;
    int32_t getPinCount(int32_t& returnCount) override;
    int32_t sendMessageToAudio(int32_t id, int32_t size, const void* data) override;
    int32_t resolveResource(const char* resourceName, const char* resourceType,
                            gmpi::IMpUnknown* returnFullPath) override;
    int32_t openResource(const char* fullPath, gmpi::IMpUnknown** returnStream) override;
    int32_t reserved1() override { return gmpi::MP_NOSUPPORT; }
    int32_t reserved2() override { return gmpi::MP_NOSUPPORT; }
    int32_t resolveFilename(const wchar_t* shortFilename, int32_t maxChars, wchar_t* returnFullFilename) override;

private:
    Instance& instance_;
};

// Looks a resource up in the folders, in order: the name as given, then, when it has no extension, with
// the usual extensions of its type ("Image": .png .bmp .jpg; "ImageMeta": .txt). An absolute name is
// taken as it is. found says whether a file exists; when none does, the result is where the first
// folder would hold it.
std::filesystem::path findResource(const std::vector<std::filesystem::path>& folders, const std::string& name,
                                   const std::string& type, bool& found);

// Opens a file for reading as a resource stream the caller owns. 0, or -1 with null.
int32_t openResourceStream(const char* fullPath, gmpi::IMpUnknown** returnStream);

}  // namespace kxhost
