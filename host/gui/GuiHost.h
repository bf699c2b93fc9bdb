// The GUI host object both the session and the validator hand to GUI halves, and how it finds and opens
// resources.
#pragma once

#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "gmpi/IMpUserInterfaceHost.h"
#include "gmpi/IMpUserInterfaceHost2.h"

namespace kxhost {

// Faces a host object answers beyond its own interfaces (a graphics host, a drawing factory), offered
// by whoever owns them before the module gets its host. Not owned.
class FaceTable {
public:
    // Offering an interface again replaces the earlier face.
    void offer(const gmpi::MpGuid& iid, gmpi::IMpUnknown* face);
    gmpi::IMpUnknown* find(const gmpi::MpGuid& iid) const;

private:
    std::vector<std::pair<gmpi::MpGuid, gmpi::IMpUnknown*>> faces_;
};

// The host object a GUI half receives in setHost, with both GUI host generations (they declare
// pinTransmit, getPinCount and sendMessageToAudio with the same signatures, so one override serves
// both faces) and the extra faces of its table. The session gives one to each instance and the
// validator one to each half it checks: they differ in where transmissions and messages go, in the
// handle, pin count and resource folders they answer, and in whether references are counted, which is
// what a derived class supplies.
class GuiHost : public gmpi::IMpUserInterfaceHost2, public gmpi::IMpUserInterfaceHost {
public:
    explicit GuiHost(const FaceTable& extra) : extra_(extra) {}
    virtual ~GuiHost() = default;
    GuiHost(const GuiHost&) = delete;
    GuiHost& operator=(const GuiHost&) = delete;

    // The face a module's setHost receives.
    gmpi::IMpUnknown* unknown() { return static_cast<gmpi::IMpUserInterfaceHost2*>(this); }

    int32_t queryInterface(const gmpi::MpGuid& iid, void** returnInterface) final;
    // One count for both faces; whether references are counted at all is the derived class's choice.
    int32_t addRef() override = 0;
    int32_t release() override = 0;
    int32_t sendMessageToAudio(int32_t id, int32_t size, const void* data) final;
    int32_t resolveResource(const char* resourceName, const char* resourceType, gmpi::IMpUnknown* returnFullPath) final;
    int32_t openResource(const char* fullPath, gmpi::IMpUnknown** returnStream) final;
    int32_t reserved1() final { return gmpi::MP_NOSUPPORT; }
    int32_t reserved2() final { return gmpi::MP_NOSUPPORT; }
    int32_t resolveFilename(const wchar_t* shortFilename, int32_t maxChars, wchar_t* returnFullFilename) final;

protected:
    // A message for the DSP half; size and data are already checked.
    virtual int32_t messageToAudio(int32_t id, int32_t size, const void* data) = 0;
    // Where resources are looked up, in order; never empty.
    virtual std::vector<std::filesystem::path> resourceFolders() const = 0;
    // queryInterface handed out a face (its reference already added).
    virtual void handedOut(const gmpi::MpGuid& /*iid*/) {}

private:
    const FaceTable& extra_;
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
