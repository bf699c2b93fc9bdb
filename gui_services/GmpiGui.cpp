#include "GmpiGui.h"

#include "HostBoundary.h"
#include "MpString.h"
#include "TextCodec.h"
#include "it_enum_list.h"

namespace gmpi_gui {

int32_t MpCompletionHandler::queryInterface(const gmpi::MpGuid& iid, void** returnInterface) {
    if (!returnInterface)
        return gmpi::MP_NOSUPPORT;
    *returnInterface = nullptr;
    if (gmpi::isUnknownIid(iid) || iid == SE_IID_COMPLETION_HANDLER) {
        *returnInterface = static_cast<IMpCompletionHandler*>(this);
        addRef();
        return gmpi::MP_OK;
    }
    return gmpi::MP_NOSUPPORT;
}

void MpCompletionHandler::OnComplete(int32_t result) {
    // The callback may release the object that owns this handler: keep it alive for the call.
    addRef();
    kx::guarded([&] {
        if (callback_)
            callback_(result);
    });
    release();
}

std::function<void(int32_t)> PendingCompletion::bind(std::function<void(int32_t)> onResult) {
    const uint32_t serial = ++*serial_;
    return [current = std::weak_ptr<uint32_t>(serial_), serial, onResult = std::move(onResult)](int32_t result) {
        const auto live = current.lock();
        if (live && *live == serial && onResult)
            onResult(result);
    };
}

}  // namespace gmpi_gui

namespace GmpiGui {
namespace {

// Hands a completion handler to an object's ShowAsync; the wrapper's reference goes after the call, so
// the host's own reference keeps the handler alive until it completes.
template <class I>
void showWithHandler(I* object, std::function<void(int32_t)> callback) {
    if (!object)
        return;
    auto* handler = new gmpi_gui::MpCompletionHandler(std::move(callback));
    object->ShowAsync(static_cast<gmpi_gui::IMpCompletionHandler*>(handler));
    handler->release();
}

size_t lastSeparator(const std::string& path) {
    const size_t backslash = path.find_last_of('\\');
    return backslash != std::string::npos ? backslash : path.find_last_of('/');
}

}  // namespace

std::string StripPath(const std::string& path) {
    const size_t p = lastSeparator(path);
    return p == std::string::npos ? path : path.substr(p + 1);
}

FileDialog::FileDialog(gmpi::IMpUnknown* ownedDialog) {
    dialog_ =
        gmpi_sdk::queryAs<gmpi_gui::IMpPlatformFileDialog>(ownedDialog, gmpi_gui::SE_IID_GRAPHICS_PLATFORM_FILE_DIALOG);
    if (ownedDialog)
        ownedDialog->release();
}

void FileDialog::AddExtension(const std::string& extension, const std::string& description) {
    if (dialog_)
        dialog_->AddExtension(extension.c_str(), description.c_str());
}

void FileDialog::AddExtensionList(const std::wstring& list) {
    it_enum_list it(list);
    if (it.size() == 0) {
        AddExtension("*");
        return;
    }
    // A dialog cannot say that its list of types was cut; the first ones are offered.
    it.ForEachListed([this](const it_enum_list& item) { AddExtension(kx::toUtf8(item.text)); });
}

void FileDialog::SetInitialFilename(const std::string& name) {
    if (dialog_)
        dialog_->SetInitialFilename(name.c_str());
}

void FileDialog::SetInitialDirectory(const std::string& folder) {
    if (dialog_)
        dialog_->setInitialDirectory(folder.c_str());
}

void FileDialog::SetInitialFullPath(const std::string& path) {
    SetInitialFilename(StripPath(path));
    const size_t p = lastSeparator(path);
    SetInitialDirectory(p == std::string::npos ? path : path.substr(0, p));
}

void FileDialog::ShowAsync(std::function<void(int32_t)> callback) {
    showWithHandler(dialog_.get(), std::move(callback));
}

std::string FileDialog::GetSelectedFilename() const {
    gmpi_sdk::MpString name;
    if (dialog_)
        dialog_->GetSelectedFilename(&name);
    return name.str();
}

TextEdit::TextEdit(gmpi::IMpUnknown* ownedEditor) {
    editor_ = gmpi_sdk::queryAs<gmpi_gui::IMpPlatformText>(ownedEditor, gmpi_gui::SE_IID_GRAPHICS_PLATFORM_TEXT);
    if (ownedEditor)
        ownedEditor->release();
}

void TextEdit::SetText(const std::string& utf8) {
    if (editor_)
        editor_->SetText(utf8.c_str());
}

std::string TextEdit::GetText() const {
    gmpi_sdk::MpString text;
    if (editor_)
        editor_->GetText(&text);
    return text.str();
}

void TextEdit::SetAlignment(int32_t alignment) {
    if (editor_)
        editor_->SetAlignment(alignment);
}

void TextEdit::SetTextSize(float size) {
    if (editor_)
        editor_->SetTextSize(size);
}

void TextEdit::ShowAsync(std::function<void(int32_t)> callback) { showWithHandler(editor_.get(), std::move(callback)); }

}  // namespace GmpiGui
