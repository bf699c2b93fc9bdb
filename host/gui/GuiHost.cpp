#include "gui/GuiHost.h"

#include <algorithm>
#include <cwchar>
#include <fstream>

#include "gmpi/IString.h"
#include "gui/HostObject.h"
#include "patch/Text.h"

namespace kxhost {

namespace {

// A file opened for reading, handed to the module, which owns it.
class ResourceStream final : public CountedObject<gmpi::IMpResourceStream> {
public:
    ResourceStream(std::ifstream file, int64_t size)
        : CountedObject(gmpi::MP_IID_RESOURCE_STREAM), file_(std::move(file)), size_(size) {}
    int32_t getSize(int64_t& returnSize) override {
        returnSize = size_;
        return gmpi::MP_OK;
    }
    int32_t read(void* buffer, int32_t size) override {
        if (size < 0 || (size > 0 && !buffer))
            return gmpi::MP_FAIL;
        file_.read(static_cast<char*>(buffer), size);
        return static_cast<int32_t>(file_.gcount());
    }

private:
    std::ifstream file_;
    int64_t size_;
};

std::vector<std::string> typeExtensions(const std::string& type) {
    if (type == "Image")
        return {".png", ".bmp", ".jpg"};
    if (type == "ImageMeta")
        return {".txt"};
    return {};
}

}  // namespace

int32_t ReturnString::setData(const char* data, int32_t size) {
    if (size <= 0 || !data)
        text_.clear();
    else
        text_.assign(data, static_cast<size_t>(size));
    return gmpi::MP_OK;
}

int32_t MenuSink::AddItem(const char* text, int32_t id, int32_t flags) {
    // The copy reads the whole zero-terminated text: a module handing an unterminated buffer shows here.
    items_.push_back({text ? text : "", id, flags});
    return gmpi::MP_OK;
}

std::filesystem::path findResource(const std::vector<std::filesystem::path>& folders, const std::string& name,
                                   const std::string& type, bool& found) {
    std::error_code ec;
    const std::filesystem::path given = name;
    std::vector<std::filesystem::path> candidates;
    if (given.is_absolute()) {
        candidates.push_back(given);
    } else {
        for (const auto& folder : folders)
            candidates.push_back(folder / given);
    }
    for (const auto& c : candidates) {
        if (std::filesystem::is_regular_file(c, ec)) {
            found = true;
            return c;
        }
        if (!c.has_extension())
            for (const auto& ext : typeExtensions(type)) {
                auto withExt = c;
                withExt += ext;
                if (std::filesystem::is_regular_file(withExt, ec)) {
                    found = true;
                    return withExt;
                }
            }
    }
    found = false;
    return candidates.empty() ? given : candidates.front();
}

void FaceTable::offer(const gmpi::MpGuid& iid, gmpi::IMpUnknown* face) {
    for (auto& [id, known] : faces_)
        if (id == iid) {
            known = face;
            return;
        }
    faces_.emplace_back(iid, face);
}

gmpi::IMpUnknown* FaceTable::find(const gmpi::MpGuid& iid) const {
    for (const auto& [id, face] : faces_)
        if (id == iid)
            return face;
    return nullptr;
}

int32_t GuiHost::queryInterface(const gmpi::MpGuid& iid, void** returnInterface) {
    if (!returnInterface)
        return gmpi::MP_NOSUPPORT;
    *returnInterface = nullptr;
    if (iid == gmpi::MP_IID_UI_HOST2 || gmpi::isUnknownIid(iid)) {
        *returnInterface = static_cast<gmpi::IMpUserInterfaceHost2*>(this);
        addRef();
    } else if (iid == gmpi::MP_IID_UI_HOST) {
        *returnInterface = static_cast<gmpi::IMpUserInterfaceHost*>(this);
        addRef();
    } else if (gmpi::IMpUnknown* face = extra_.find(iid)) {
        *returnInterface = face;
        face->addRef();
    } else {
        return gmpi::MP_NOSUPPORT;
    }
    handedOut(iid);
    return gmpi::MP_OK;
}

int32_t GuiHost::sendMessageToAudio(int32_t id, int32_t size, const void* data) {
    if (size < 0 || (size > 0 && !data))
        return gmpi::MP_FAIL;
    return messageToAudio(id, size, data);
}

int32_t GuiHost::resolveResource(const char* resourceName, const char* resourceType, gmpi::IMpUnknown* returnFullPath) {
    void* face = nullptr;
    if (!resourceName || !returnFullPath ||
        returnFullPath->queryInterface(gmpi::MP_IID_RETURNSTRING, &face) != gmpi::MP_OK || !face)
        return gmpi::MP_FAIL;
    auto* text = static_cast<gmpi::IString*>(face);
    bool found = false;
    const std::string path =
        findResource(resourceFolders(), resourceName, resourceType ? resourceType : "", found).string();
    text->setData(path.data(), static_cast<int32_t>(path.size()));
    text->release();
    return found ? gmpi::MP_OK : gmpi::MP_FAIL;
}

int32_t openResourceStream(const char* fullPath, gmpi::IMpUnknown** returnStream) {
    if (!returnStream)
        return gmpi::MP_FAIL;
    *returnStream = nullptr;
    std::error_code ec;
    if (!fullPath || !std::filesystem::is_regular_file(fullPath, ec))
        return gmpi::MP_FAIL;
    const auto size = std::filesystem::file_size(fullPath, ec);
    std::ifstream file(fullPath, std::ios::binary);
    if (ec || !file)
        return gmpi::MP_FAIL;
    *returnStream = new ResourceStream(std::move(file), static_cast<int64_t>(size));
    return gmpi::MP_OK;
}

int32_t GuiHost::openResource(const char* fullPath, gmpi::IMpUnknown** returnStream) {
    return openResourceStream(fullPath, returnStream);
}

int32_t GuiHost::resolveFilename(const wchar_t* shortFilename, int32_t maxChars, wchar_t* returnFullFilename) {
    if (maxChars < 1 || !returnFullFilename)
        return gmpi::MP_FAIL;
    const auto folders = resourceFolders();
    const std::string name = shortFilename ? narrow(shortFilename) : std::string();
    std::wstring full;
    if (name.empty()) {
        // The resource folder itself, with its separator, so a name can be appended.
        full = widen((folders.front() / "").string());
    } else {
        bool found = false;
        full = widen(findResource(folders, name, "", found).string());
    }
    const size_t n = std::min(full.size(), static_cast<size_t>(maxChars) - 1);
    std::wmemcpy(returnFullFilename, full.data(), n);
    returnFullFilename[n] = L'\0';
    return gmpi::MP_OK;
}

}  // namespace kxhost
