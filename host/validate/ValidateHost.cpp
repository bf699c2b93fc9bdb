#include "validate/ValidateHost.h"

#include <algorithm>
#include <cstring>
#include <cwchar>

#include "gui/GuiHost.h"
#include "patch/Text.h"

namespace kxhost::validate {

void HostRefs::queried(const gmpi::MpGuid& iid) {
    if (std::none_of(faces_.begin(), faces_.end(), [&](const gmpi::MpGuid& f) { return f == iid; }))
        faces_.push_back(iid);
}

gmpi::IMpUnknown* FaceTable::find(const gmpi::MpGuid& iid) const {
    for (const auto& [id, face] : faces_)
        if (id == iid)
            return face;
    return nullptr;
}

int32_t ReturnString::setData(const char* data, int32_t size) {
    if (size <= 0 || !data)
        text_.clear();
    else
        text_.assign(data, static_cast<size_t>(size));
    return gmpi::MP_OK;
}

int32_t MenuSink::AddItem(const char* text, int32_t id, int32_t /*flags*/) {
    // The copy reads the whole zero-terminated text: a module handing an unterminated buffer shows here.
    std::string copy = text ? text : "";
    ids_.push_back(id);
    return gmpi::MP_OK;
}

ValidationGuiHost::ValidationGuiHost(HostRefs& refs, const FaceTable& extra, std::filesystem::path folder,
                                     int32_t pinCount)
    : refs_(refs), extra_(extra), folder_(std::move(folder)), pinCount_(pinCount) {}

int32_t ValidationGuiHost::queryInterface(const gmpi::MpGuid& iid, void** returnInterface) {
    if (!returnInterface)
        return gmpi::MP_NOSUPPORT;
    *returnInterface = nullptr;
    if (iid == gmpi::MP_IID_UI_HOST2 || gmpi::isUnknownIid(iid)) {
        *returnInterface = static_cast<gmpi::IMpUserInterfaceHost2*>(this);
    } else if (iid == gmpi::MP_IID_UI_HOST) {
        *returnInterface = static_cast<gmpi::IMpUserInterfaceHost*>(this);
    } else if (gmpi::IMpUnknown* face = extra_.find(iid)) {
        refs_.queried(iid);
        face->addRef();
        *returnInterface = face;
        return gmpi::MP_OK;
    } else {
        return gmpi::MP_NOSUPPORT;
    }
    refs_.queried(iid);
    addRef();
    return gmpi::MP_OK;
}

int32_t ValidationGuiHost::pinTransmit(int32_t pinId, int32_t size, const void* data, int32_t voice) {
    return onTransmit ? onTransmit(pinId, size, data, voice) : gmpi::MP_FAIL;
}

int32_t ValidationGuiHost::getHandle(int32_t& returnHandle) {
    returnHandle = 1;
    return gmpi::MP_OK;
}

int32_t ValidationGuiHost::getPinCount(int32_t& returnCount) {
    returnCount = pinCount_;
    return gmpi::MP_OK;
}

int32_t ValidationGuiHost::sendMessageToAudio(int32_t id, int32_t size, const void* data) {
    if (size < 0 || (size > 0 && !data))
        return gmpi::MP_FAIL;
    return onMessageToAudio ? onMessageToAudio(id, size, data) : gmpi::MP_FAIL;
}

int32_t ValidationGuiHost::resolveResource(const char* resourceName, const char* /*resourceType*/,
                                           gmpi::IMpUnknown* returnFullPath) {
    void* face = nullptr;
    if (!resourceName || !returnFullPath ||
        returnFullPath->queryInterface(gmpi::MP_IID_RETURNSTRING, &face) != gmpi::MP_OK || !face)
        return gmpi::MP_FAIL;
    auto* text = static_cast<gmpi::IString*>(face);
    std::error_code ec;
    const std::filesystem::path full = folder_ / resourceName;
    const std::string path = full.string();
    text->setData(path.data(), static_cast<int32_t>(path.size()));
    text->release();
    return std::filesystem::is_regular_file(full, ec) ? gmpi::MP_OK : gmpi::MP_FAIL;
}

int32_t ValidationGuiHost::openResource(const char* fullPath, gmpi::IMpUnknown** returnStream) {
    return openResourceStream(fullPath, returnStream);
}

int32_t ValidationGuiHost::resolveFilename(const wchar_t* shortFilename, int32_t maxChars,
                                           wchar_t* returnFullFilename) {
    if (maxChars < 1 || !returnFullFilename)
        return gmpi::MP_FAIL;
    const std::string name = shortFilename ? narrow(shortFilename) : std::string();
    const std::wstring full = widen((name.empty() ? folder_ / "" : folder_ / name).string());
    const size_t n = std::min(full.size(), static_cast<size_t>(maxChars) - 1);
    std::wmemcpy(returnFullFilename, full.data(), n);
    returnFullFilename[n] = L'\0';
    return gmpi::MP_OK;
}

}  // namespace kxhost::validate
