// Picking files: KX_FileBrowser, KX_FileReq.
#include "convert/FilePick.h"

#include <string_view>

#include "HostResources.h"
#include "ModuleSupport.h"
#include "MpCountedPtr.h"
#include "MpFactory.h"
#include "TextCodec.h"
#include "convert/FilePaths.h"
#include "gmpi/IMpGraphicsHost.h"

namespace fs = std::filesystem;

namespace {

bool somethingAt(const fs::path& path) {
    std::error_code ec;
    return fs::exists(path, ec);
}

}  // namespace

// ---- KX_FileBrowser

KX_FileBrowser::KX_FileBrowser() {
    initializePin(folder, &KX_FileBrowser::onSetPath);
    initializePin(extension, &KX_FileBrowser::onSetExt);
    initializePin(hideExtensions);
    initializePin(rescan, &KX_FileBrowser::onSetRescan);
    initializePin(parent, &KX_FileBrowser::onSetParent);
    initializePin(choice, &KX_FileBrowser::onSetChoice);
    initializePin(itemList);
    initializePin(chosenFile, &KX_FileBrowser::onSetFNameOut);
    // Process-wide: every later StartTimer() of any client runs at 10 ms.
    SetTimerIntervalMs(10);
}

fs::path KX_FileBrowser::resourceFolder() const {
    const std::optional<std::wstring> folder = kx::resolveFileName(host, L"");
    if (!folder)
        return {};
    return fs::path(kx::pathBytes(*folder).value_or(std::string()));
}

void KX_FileBrowser::clearChoice() {
    if (choice != -1)
        choice = -1;
}

void KX_FileBrowser::showFolder(const fs::path& path) {
    currentPath_ = path;
    folder = kx::pathText(currentPath_.native());
}

void KX_FileBrowser::onSetPath() {
    const std::optional<std::string> text = kx::pathBytes(folder.getValue());
    if (!text)
        return;
    currentPath_ = text->empty() ? resourceFolder() : fs::path(*text);
    if (!somethingAt(currentPath_)) {
        currentPath_ = resourceFolder() / fs::path(*text).relative_path();
        if (!somethingAt(currentPath_)) {
            entries_.clear();
            entryCount_ = 0;
            itemList = std::wstring();
            return;
        }
    }
    std::error_code ec;
    if (!fs::is_directory(currentPath_, ec)) {
        // A file: choose it and list the folder it lies in.
        const fs::path file = currentPath_;
        chosenFile = kx::pathText(file.native());
        showFolder(file.parent_path());
    }
    clearChoice();
    scan();
}

void KX_FileBrowser::onSetExt() {
    const std::wstring& text = extension.getValue();
    filter_ = text.empty() ? std::wstring() : L"." + text;
    filterBytes_ = kx::pathBytes(filter_);
}

void KX_FileBrowser::onSetRescan() {
    if (rescan)
        scan();
}

void KX_FileBrowser::onSetParent() {
    if (!parent)
        return;
    // The parent of /a/b/ is /a/b (its last component is empty), and a root is its own parent.
    showFolder(currentPath_.parent_path());
    clearChoice();
    scan();
}

void KX_FileBrowser::onSetChoice() {
    const int index = choice;
    if (index < 0 || index >= entryCount_)
        return;
    // A copy: writing a pin lets the host call back into this module, which may list anew.
    const Entry entry = entries_[static_cast<size_t>(index)];
    if (entry.folder) {
        showFolder(entry.path);
        scan();
    } else {
        chosenFile = kx::pathText(entry.path);
    }
}

void KX_FileBrowser::onSetFNameOut() {
    const std::wstring& text = chosenFile.getValue();
    if (text.empty() || entryCount_ == 0)
        return;
    const std::optional<std::string> path = kx::pathBytes(text);
    if (!path)
        return;
    for (size_t i = 0; i < entries_.size(); ++i) {
        if (entries_[i].path == *path && choice != static_cast<int>(i))
            choice = static_cast<int>(i);
    }
}

void KX_FileBrowser::scan() {
    entries_.clear();
    entryCount_ = 0;
    const std::optional<std::string> chosen = kx::pathBytes(chosenFile.getValue());
    std::wstring list;
    if (!somethingAt(currentPath_)) {
        itemList = std::move(list);
        return;
    }

    std::error_code ec;
    fs::directory_iterator it(currentPath_, fs::directory_options::skip_permission_denied, ec);
    bool separator = false;
    for (; !ec && it != fs::directory_iterator(); it.increment(ec)) {
        // Before the entry is looked at: a rejected file after an accepted entry leaves this comma.
        if (separator)
            list += L',';
        const fs::directory_entry& entry = *it;
        std::error_code typeError;
        const bool isFolder = entry.is_directory(typeError);
        // The iterator's paths are the folder joined with the bare name.
        const std::string& fullPath = entry.path().native();
        std::string_view name = fullPath;
        if (const size_t slash = name.rfind('/'); slash != std::string_view::npos)
            name.remove_prefix(slash + 1);
        const size_t dot = name.rfind('.');
        if (!isFolder && !filter_.empty()) {
            const std::string_view ext = dot == std::string_view::npos ? std::string_view() : name.substr(dot);
            if (!filterBytes_ || ext != *filterBytes_) {
                separator = false;
                continue;
            }
        }
        if (hideExtensions && dot != std::string_view::npos)
            name = name.substr(0, dot);
        const size_t itemStart = list.size();
        kx::fromUtf8Lenient(name, list);
        for (size_t i = itemStart; i < list.size(); ++i) {
            if (list[i] == L',')
                list[i] = L'_';
        }
        if (isFolder)
            list += L'/';

        entries_.push_back({fullPath, isFolder});
        ++entryCount_;
        separator = true;
        if (chosen && !chosen->empty() && fullPath == *chosen && choice != entryCount_ - 1)
            choice = entryCount_ - 1;
    }
    itemList = std::move(list);
}

bool KX_FileBrowser::OnTimer() {
    clearChoice();
    return false;
}

// ---- KX_FileReq

const char* fileResourceCategory(const std::string& path) {
    const size_t cut = path.find_last_of(".\\/");
    if (cut == std::string::npos || path[cut] != '.')
        return nullptr;
    const std::string_view ext = std::string_view(path).substr(cut + 1);
    if (ext == "sf2" || ext == "sfz")
        return "Instrument";
    if (ext == "png" || ext == "bmp" || ext == "jpg")
        return "Image";
    if (ext == "wav")
        return "Audio";
    if (ext == "mid")
        return "MIDI";
    return nullptr;
}

KX_FileReq::KX_FileReq() {
    initializePin(fileName);
    initializePin(extensions);
    initializePin(saveMode);
    initializePin(open, &KX_FileReq::onSetOpen);
    initializePin(fileChosen);
}

void KX_FileReq::onSetOpen() {
    if (open) {
        previousOpen_ = true;
        return;
    }
    if (!previousOpen_)
        return;
    previousOpen_ = false;

    // The dialog opens on the release of the button.
    if (!host || !kx::isCodePointText(fileName.getValue()) || !kx::isCodePointText(extensions.getValue()))
        return;
    auto graphics = gmpi_sdk::queryAs<gmpi_gui::IMpGraphicsHost>(host, gmpi_gui::SE_IID_GRAPHICS_HOST);
    if (!graphics)
        return;
    gmpi::IMpUnknown* made = nullptr;
    const int32_t type = saveMode ? gmpi_gui::MP_PLATFORM_FILE_SAVE : gmpi_gui::MP_PLATFORM_FILE_OPEN;
    if (graphics->createFileDialog(type, &made) != gmpi::MP_OK && made) {
        made->release();
        made = nullptr;
    }
    GmpiGui::FileDialog dialog(made);
    if (dialog.isNull())
        return;
    dialog.AddExtensionList(extensions.getValue());
    dialog.SetInitialFullPath(kx::toUtf8(fileName.getValue()));

    dialog_ = std::move(dialog);
    dialog_.ShowAsync(dialogDone_.bind([this](int32_t result) { OnFileDialogComplete(result); }));
}

void KX_FileReq::OnFileDialogComplete(int32_t result) {
    // Taken out of the member first: writing the pins below may open the next dialog.
    GmpiGui::FileDialog dialog = std::move(dialog_);
    if (result != gmpi::MP_OK || dialog.isNull())
        return;

    std::string name = dialog.GetSelectedFilename();
    if (const char* category = fileResourceCategory(name)) {
        // Where the host would look for the bare name is where the file is: keep only the name.
        const std::string bare = GmpiGui::StripPath(name);
        if (kx::resolveResource(host, bare, category) == name)
            name = bare;
    }
    fileName = kx::pathText(name);
    fileChosen = true;
    fileChosen = false;
}

namespace {
const bool registered =
    gmpi::Register<KX_FileBrowser>::withId(L"KX_FileBrowser") && gmpi::Register<KX_FileReq>::withId(L"KX_FileReq");
}  // namespace
