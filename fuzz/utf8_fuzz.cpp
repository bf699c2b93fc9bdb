// The UTF-8 codec, strict and lenient. The bytes are tried both as UTF-8 and as 32-bit wide text:
//   - strict decoding succeeds exactly on valid UTF-8, and then encoding gives the bytes back;
//   - lenient decoding agrees with strict where strict succeeds, marks damage with U+FFFD otherwise,
//     appends after what the string held, and always yields text that encodes and decodes back;
//   - wide text encodes unless it holds a surrogate or a value above 0x10FFFF, and then round-trips.
#include <cstdint>
#include <cstring>
#include <stdexcept>
#include <string>

#include "FuzzInput.h"
#include "TextCodec.h"

namespace {

bool isCodePoint(wchar_t c) {
    const auto v = static_cast<uint32_t>(c);
    return v <= 0x10FFFF && (v < 0xD800 || v > 0xDFFF);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string bytes(reinterpret_cast<const char*>(data), size);

    bool valid = true;
    std::wstring strict;
    try {
        strict = kx::fromUtf8(bytes);
    } catch (const std::range_error& e) {
        KX_FUZZ_CHECK(std::strcmp(e.what(), "wstring_convert: from_bytes error") == 0);
        valid = false;
    }

    std::wstring lenient = L"kept";
    kx::fromUtf8Lenient(bytes, lenient);
    KX_FUZZ_CHECK(lenient.compare(0, 4, L"kept") == 0);
    lenient.erase(0, 4);
    KX_FUZZ_CHECK(lenient.size() <= bytes.size());
    if (valid) {
        KX_FUZZ_CHECK(kx::toUtf8(strict) == bytes);
        KX_FUZZ_CHECK(lenient == strict);
    } else {
        KX_FUZZ_CHECK(lenient.find(L'\xFFFD') != std::wstring::npos);
    }
    for (wchar_t c : lenient)
        KX_FUZZ_CHECK(isCodePoint(c));
    KX_FUZZ_CHECK(kx::fromUtf8(kx::toUtf8(lenient)) == lenient);

    std::wstring wide(size / sizeof(wchar_t), L'\0');
    std::memcpy(wide.data(), data, wide.size() * sizeof(wchar_t));
    bool encodable = true;
    for (wchar_t c : wide)
        encodable = encodable && isCodePoint(c);
    try {
        const std::string encoded = kx::toUtf8(wide);
        KX_FUZZ_CHECK(encodable);
        KX_FUZZ_CHECK(kx::fromUtf8(encoded) == wide);
    } catch (const std::range_error& e) {
        KX_FUZZ_CHECK(!encodable);
        KX_FUZZ_CHECK(std::strcmp(e.what(), "wstring_convert: to_bytes error") == 0);
    }
    return 0;
}
