// File names on pins, shared by the file modules: pin text is code points and a path is bytes (POSIX
// rules on every platform), written as UTF-8; and names resolved by the host against its resource
// folders.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "ModuleSupport.h"
#include "MpCountedPtr.h"
#include "TextCodec.h"
#include "gmpi/IMpUserInterfaceHost.h"

namespace kx {

// The bytes of a path given as pin text; nullopt when the text holds values that are not code points,
// which no path has.
inline std::optional<std::string> pathBytes(std::wstring_view text) {
    if (!isCodePointText(text))
        return std::nullopt;
    return toUtf8(text);
}

// A path as pin text. Names on disk need not be UTF-8: each byte that does not start a valid sequence
// shows as U+FFFD, so a listing or a chosen name never fails on one odd file.
inline std::wstring pathText(std::string_view bytes) {
    std::wstring text;
    fromUtf8Lenient(bytes, text);
    return text;
}

// The full path the host's first-generation GUI interface gives a file name (an empty name gives its
// resource folder); nullopt without a host or without that interface. Whatever the host leaves in the
// buffer is the answer, whatever result it reports (hosts differ in what they return); a host that
// writes nothing gives an empty text. The answer is cut at 499 characters: a host that fills the whole
// buffer still leaves a terminated text.
inline std::optional<std::wstring> resolveFileName(gmpi::IMpUnknown* host, const std::wstring& name) {
    auto firstGeneration = gmpi_sdk::queryAs<gmpi::IMpUserInterfaceHost>(host, gmpi::MP_IID_UI_HOST);
    if (!firstGeneration)
        return std::nullopt;
    std::array<wchar_t, 500> full{};
    firstGeneration->resolveFilename(name.c_str(), static_cast<int32_t>(full.size()), full.data());
    full.back() = L'\0';
    return std::wstring(full.data());
}

}  // namespace kx
