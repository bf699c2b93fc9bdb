// Host objects for validation that keep count of what modules hold of them.
//
// Two kinds of accounting, both checked after a module's last release:
//   - HostRefs: the references a half holds on its host's faces. A module may keep each face it asked
//     for once, for its life (the host outlives it, so keeping without releasing is allowed); more
//     references than faces asked for is a leak per call, fewer than none an over-release.
//   - Counted: objects the host hands over for a call or with ownership (return strings, menu sinks,
//     resource streams, dialogs): every one must be gone. Drawing objects are not among them, since
//     modules may keep those in caches that outlive any one module.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "gui/GuiHost.h"
#include "gui/HostObject.h"

namespace kxhost::validate {

using kxhost::Counted;
using kxhost::CountedObject;
using kxhost::MenuSink;
using kxhost::ReturnString;

class HostRefs {
public:
    // A face handed out by queryInterface (which also adds the reference).
    void queried(const gmpi::MpGuid& iid);
    int32_t addRef() { return ++outstanding_; }
    int32_t release() { return --outstanding_; }
    // References the module holds now, and the distinct faces it ever asked for.
    int outstanding() const { return outstanding_; }
    int faces() const { return static_cast<int>(faces_.size()); }

private:
    int outstanding_ = 0;
    std::vector<gmpi::MpGuid> faces_;
};

// The GUI host a half under validation talks to: resources from one folder, the faces aspects offered,
// and every reference the half takes counted in refs. Transmissions go to onTransmit (the validator
// checks and echoes them).
class ValidationGuiHost final : public GuiHost {
public:
    ValidationGuiHost(HostRefs& refs, const FaceTable& extra, std::filesystem::path folder, int32_t pinCount)
        : GuiHost(extra), refs_(refs), folder_(std::move(folder)), pinCount_(pinCount) {}

    std::function<int32_t(int32_t pin, int32_t size, const void* data, int32_t voice)> onTransmit;
    std::function<int32_t(int32_t id, int32_t size, const void* data)> onMessageToAudio;

    int32_t addRef() override { return refs_.addRef(); }
    int32_t release() override { return refs_.release(); }
    int32_t pinTransmit(int32_t pinId, int32_t size, const void* data, int32_t voice) override {
        return onTransmit ? onTransmit(pinId, size, data, voice) : gmpi::MP_FAIL;
    }
    int32_t getHandle(int32_t& returnHandle) override {
        returnHandle = 1;
        return gmpi::MP_OK;
    }
    int32_t getPinCount(int32_t& returnCount) override {
        returnCount = pinCount_;
        return gmpi::MP_OK;
    }

protected:
    int32_t messageToAudio(int32_t id, int32_t size, const void* data) override {
        return onMessageToAudio ? onMessageToAudio(id, size, data) : gmpi::MP_FAIL;
    }
    std::vector<std::filesystem::path> resourceFolders() const override { return {folder_}; }
    void handedOut(const gmpi::MpGuid& iid) override { refs_.queried(iid); }

private:
    HostRefs& refs_;
    std::filesystem::path folder_;
    int32_t pinCount_;
};

}  // namespace kxhost::validate
