// Number and colour text. The first bytes choose a float, a precision and four colour channels; the rest,
// read as UTF-8 with damage marked, is a typed text.
//   - an integer is read as wcstoll reads it, and only within 32 bits;
//   - a float printed reads back, and with 9 or more significant digits as the same float;
//   - a colour text is eight lower-case hex digits, each channel clamped and truncated to a byte;
//   - the colour module's text, parsed into channels and printed again, gives the same colour.
#include <cerrno>
#include <climits>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <cwchar>
#include <limits>
#include <string>

#include "FuzzInput.h"
#include "HostedModule.h"
#include "TextCodec.h"
#include "convert/NumberText.h"

namespace {

bool isAscii(const std::wstring& text) {
    for (wchar_t c : text)
        if (c < 0 || c >= 0x80)
            return false;
    return true;
}

int channelByte(float c) {
    if (!(c > 0.0f))
        return 0;
    return c >= 1.0f ? 255 : static_cast<int>(c * 255.0f);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    kxfuzz::FuzzInput in(data, size);
    const float number = in.value<float>();
    const int precision = static_cast<int8_t>(in.byte());
    float channels[4];
    for (float& c : channels)
        c = in.value<float>();
    std::wstring typed;
    kx::fromUtf8Lenient(in.rest(), typed);

    // Integers. The prefix the parser reads is cut after 1024 characters: only shorter texts compare.
    const std::optional<int> integer = kx::parseLeadingInt(typed);
    if (isAscii(typed) && typed.size() <= 1024) {
        wchar_t* end = nullptr;
        errno = 0;
        const long long expected = std::wcstoll(typed.c_str(), &end, 10);
        const bool fits = end != typed.c_str() && errno != ERANGE && expected >= INT_MIN && expected <= INT_MAX;
        KX_FUZZ_CHECK(integer.has_value() == fits);
        KX_FUZZ_CHECK(!fits || *integer == expected);
    }

    // Floats: printed, they read back; with 9 or more digits as the same float. A text beyond the float
    // range (the largest floats rounded to fewer digits) or below its smallest normal value (subnormals)
    // is out of range for the conversion and reads as nothing.
    const std::optional<float> parsed = kx::parseLeadingFloat(typed);
    for (float v : {number, parsed.value_or(0.0f)}) {
        const std::wstring printed = kx::formatGeneral(v, precision);
        KX_FUZZ_CHECK(!printed.empty());
        const std::optional<float> back = kx::parseLeadingFloat(printed);
        const double printedValue = std::fabs(std::wcstod(printed.c_str(), nullptr));
        const bool outOfRange =
            std::isfinite(v) && (printedValue > std::numeric_limits<float>::max() ||
                                 (printedValue != 0.0 && printedValue < std::numeric_limits<float>::min()));
        KX_FUZZ_CHECK(back.has_value() || outOfRange);
        if (!back)
            continue;
        if (std::isnan(v))
            KX_FUZZ_CHECK(std::isnan(*back));
        else if (precision >= 9 || (precision < 0 && std::isinf(v)))
            KX_FUZZ_CHECK(*back == v);
    }

    // Colours.
    const std::wstring argb = kx::formatArgb(channels[0], channels[1], channels[2], channels[3]);
    KX_FUZZ_CHECK(argb.size() == 8);
    for (int k = 0; k < 4; ++k) {
        const std::wstring pair = argb.substr(static_cast<size_t>(2 * k), 2);
        KX_FUZZ_CHECK(pair.find_first_not_of(L"0123456789abcdef") == std::wstring::npos);
        KX_FUZZ_CHECK(std::wcstol(pair.c_str(), nullptr, 16) == channelByte(channels[k]));
    }

    kxtest::Hosted<KX_ARGB2Str> colour;
    colour.sendText(kx::argb2str::Text, typed);
    const uint32_t value = static_cast<uint32_t>(std::wcstoul(typed.c_str(), nullptr, 16));
    colour.send(kx::argb2str::Alpha, colour.module.alpha.value);  // prints the channels read
    wchar_t expected[9];
    std::swprintf(expected, 9, L"%08x", value);
    KX_FUZZ_CHECK(colour.module.text.getValue() == expected);
    return 0;
}
