// Host objects for validation that keep count of what modules hold of them.
//
// Two kinds of accounting, both checked after a module's last release:
//   - HostRefs: the references a half holds on its host's faces. A module may keep each face it asked
//     for once, for its life (the host outlives it, so keeping without releasing is allowed); more
//     references than faces asked for is a leak per call, fewer than none an over-release.
//   - Counted: objects the host hands over for a call or with ownership (return strings, menu sinks,
//     resource streams, and later bitmaps, brushes, text formats): every one must be gone.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "gmpi/IMpContextItemSink.h"
#include "gmpi/IMpUserInterfaceHost.h"
#include "gmpi/IMpUserInterfaceHost2.h"
#include "gmpi/IString.h"
#include "gui/HostObject.h"

namespace kxhost::validate {

using kxhost::Counted;
using kxhost::CountedObject;

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

// Faces beyond a side's own host interfaces, offered by aspects (a graphics host, a drawing factory).
// Not owned.
class FaceTable {
public:
    void offer(const gmpi::MpGuid& iid, gmpi::IMpUnknown* face) { faces_.emplace_back(iid, face); }
    gmpi::IMpUnknown* find(const gmpi::MpGuid& iid) const;

private:
    std::vector<std::pair<gmpi::MpGuid, gmpi::IMpUnknown*>> faces_;
};

// A text the module fills (tool tips, resource paths).
class ReturnString final : public CountedObject<gmpi::IString> {
public:
    ReturnString() : CountedObject(gmpi::MP_IID_RETURNSTRING) {}
    int32_t setData(const char* data, int32_t size) override;
    int32_t getSize() override { return static_cast<int32_t>(text_.size()); }
    const char* getData() override { return text_.data(); }

private:
    std::string text_;
};

// Collects context-menu entries; copies each text as the interface promises.
class MenuSink final : public CountedObject<gmpi::IMpContextItemSink> {
public:
    MenuSink() : CountedObject(gmpi::MP_IID_CONTEXT_ITEMS_SINK) {}
    int32_t AddItem(const char* text, int32_t id, int32_t flags) override;
    const std::vector<int32_t>& ids() const { return ids_; }

private:
    std::vector<int32_t> ids_;
};

// The GUI host a half under validation talks to: both generations, resources from one folder, and
// the faces aspects offered. Transmissions go to onTransmit (the validator checks and echoes them).
class ValidationGuiHost final : public gmpi::IMpUserInterfaceHost2, public gmpi::IMpUserInterfaceHost {
public:
    ValidationGuiHost(HostRefs& refs, const FaceTable& extra, std::filesystem::path folder, int32_t pinCount);

    gmpi::IMpUnknown* unknown() { return static_cast<gmpi::IMpUserInterfaceHost2*>(this); }

    std::function<int32_t(int32_t pin, int32_t size, const void* data, int32_t voice)> onTransmit;
    std::function<int32_t(int32_t id, int32_t size, const void* data)> onMessageToAudio;

    int32_t queryInterface(const gmpi::MpGuid& iid, void** returnInterface) override;
    int32_t addRef() override { return refs_.addRef(); }
    int32_t release() override { return refs_.release(); }

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
    HostRefs& refs_;
    const FaceTable& extra_;
    std::filesystem::path folder_;
    int32_t pinCount_;
};

}  // namespace kxhost::validate
