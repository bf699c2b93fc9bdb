// Module-side helpers for the host's asynchronous services: the completion handler that carries a
// result back to a callback, and wrappers of the host's file dialog and text editor.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "MpCountedPtr.h"
#include "RefCounted.h"
#include "gmpi/IMpCompletionHandler.h"
#include "gmpi/IMpPlatformFileDialog.h"
#include "gmpi/IMpPlatformText.h"

namespace gmpi_gui {

// A counted host object (count starts at 1) that calls a callback when the host completes. Exceptions
// from the callback stop here: the host calls OnComplete.
class MpCompletionHandler final : public kx::RefCounted<IMpCompletionHandler> {
public:
    explicit MpCompletionHandler(std::function<void(int32_t)> callback) : callback_(std::move(callback)) {}

    int32_t queryInterface(const gmpi::MpGuid& iid, void** returnInterface) override;
    void OnComplete(int32_t result) override;

private:
    ~MpCompletionHandler() override = default;
    std::function<void(int32_t)> callback_;
};

// What a module's answer from a host dialog or editor reaches it through. The host may complete after
// the module is gone, or after the module replaced the request by a newer one; both answers are dropped
// instead of reaching a dangling or outdated callback. A module keeps one of these as a member.
class PendingCompletion {
public:
    PendingCompletion() = default;
    PendingCompletion(const PendingCompletion&) = delete;
    PendingCompletion& operator=(const PendingCompletion&) = delete;

    // A callback for a new request: it calls onResult only while this object lives and no later call of
    // bind was made. Earlier callbacks fall silent.
    std::function<void(int32_t)> bind(std::function<void(int32_t)> onResult);

private:
    // The number of the newest request; the callbacks hold it weakly.
    std::shared_ptr<uint32_t> serial_ = std::make_shared<uint32_t>(0);
};

}  // namespace gmpi_gui

namespace GmpiGui {

// The text after the last backslash, else after the last "/", else the whole text.
std::string StripPath(const std::string& path);

class FileDialog {
public:
    FileDialog() = default;
    // Takes over a dialog the graphics host made (an owned reference).
    explicit FileDialog(gmpi::IMpUnknown* ownedDialog);

    bool isNull() const { return !dialog_; }
    void release() { dialog_.reset(); }

    void AddExtension(const std::string& extension, const std::string& description = {});
    // One extension per item of an enumeration list (at most it_enum_list::kMostListed), empty
    // descriptions; "*" when the list has no item.
    void AddExtensionList(const std::wstring& list);
    void SetInitialFilename(const std::string& name);
    void SetInitialDirectory(const std::string& folder);
    // The file name part (StripPath) and the folder: the text before the last backslash, else before the
    // last "/", else the whole text.
    void SetInitialFullPath(const std::string& path);
    void ShowAsync(std::function<void(int32_t)> callback);
    std::string GetSelectedFilename() const;

private:
    gmpi_sdk::mp_shared_ptr<gmpi_gui::IMpPlatformFileDialog> dialog_;
};

class TextEdit {
public:
    TextEdit() = default;
    // Takes over an editor the graphics host made (an owned reference).
    explicit TextEdit(gmpi::IMpUnknown* ownedEditor);

    bool isNull() const { return !editor_; }
    void release() { editor_.reset(); }

    void SetText(const std::string& utf8);
    std::string GetText() const;
    void SetAlignment(int32_t alignment);
    void SetTextSize(float size);
    void ShowAsync(std::function<void(int32_t)> callback);

private:
    gmpi_sdk::mp_shared_ptr<gmpi_gui::IMpPlatformText> editor_;
};

}  // namespace GmpiGui
