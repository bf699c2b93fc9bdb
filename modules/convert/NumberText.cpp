// Number and colour text: KX_Int2TxtC, KX_Float2TxtC, KX_ARGB2Str.
#include "convert/NumberText.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cwchar>

#include "ModuleSupport.h"
#include "MpFactory.h"

namespace kx {
namespace {

bool isSpace(wchar_t c) { return c == L' ' || c == L'\t' || c == L'\n' || c == L'\v' || c == L'\f' || c == L'\r'; }

bool isNumberChar(wchar_t c) {
    return (c >= L'0' && c <= L'9') || (c >= L'a' && c <= L'z') || (c >= L'A' && c <= L'Z') || c == L'.' || c == L'+' ||
           c == L'-' || c == L'(' || c == L')' || c == L'_';
}

// The characters a number could be made of, after leading white space, as narrow text, with a leading
// '+' removed (from_chars takes only '-'). Empty when a '+' is followed by another sign, which the
// standard conversions refuse. Longer texts are cut: no number the modules accept needs more.
std::string numberPrefix(std::wstring_view text) {
    constexpr size_t kLongestNumber = 1024;
    size_t i = 0;
    while (i < text.size() && isSpace(text[i]))
        ++i;
    if (i < text.size() && text[i] == L'+') {
        ++i;
        if (i < text.size() && (text[i] == L'+' || text[i] == L'-'))
            return {};
    }
    std::string out;
    for (; i < text.size() && out.size() < kLongestNumber && isNumberChar(text[i]); ++i)
        out.push_back(static_cast<char>(text[i]));
    return out;
}

// Beyond this many significant digits a double prints the same: its exact decimal expansion is shorter.
constexpr int kMostSignificantDigits = 767;

}  // namespace

std::optional<int> parseLeadingInt(std::wstring_view text) {
    const std::string digits = numberPrefix(text);
    long long n = 0;
    const auto [end, ec] = std::from_chars(digits.data(), digits.data() + digits.size(), n, 10);
    if (ec != std::errc() || n < INT32_MIN || n > INT32_MAX)
        return std::nullopt;
    return static_cast<int>(n);
}

std::optional<float> parseLeadingFloat(std::wstring_view text) {
    const std::string number = numberPrefix(text);
    float f = 0.0f;
    const auto [end, ec] = std::from_chars(number.data(), number.data() + number.size(), f, std::chars_format::general);
    if (ec != std::errc())
        return std::nullopt;
    return f;
}

std::wstring formatGeneral(float value, int precision) {
    if (precision < 0)
        precision = 6;
    precision = std::min(precision, kMostSignificantDigits);
    char buffer[kMostSignificantDigits + 32];
    const auto [end, ec] = std::to_chars(buffer, buffer + sizeof buffer, static_cast<double>(value),
                                         std::chars_format::general, precision);
    if (ec != std::errc())
        return {};
    return std::wstring(buffer, end);
}

std::wstring formatArgb(float alpha, float red, float green, float blue) {
    static constexpr wchar_t kHex[] = L"0123456789abcdef";
    std::wstring out;
    out.reserve(8);
    for (float channel : {alpha, red, green, blue}) {
        float c = channel;
        if (c < 0.0f)
            c = 0.0f;
        else if (c > 1.0f)
            c = 1.0f;
        else if (std::isnan(c))
            c = 0.0f;
        const auto byte = static_cast<int64_t>(c * 255.0f);  // truncates: 0.5 gives 127
        out.push_back(kHex[(byte >> 4) & 0xF]);
        out.push_back(kHex[byte & 0xF]);
    }
    return out;
}

}  // namespace kx

// ---- the integer and float modules

template <class Derived, class T>
void LimitedNumberText<Derived, T>::onSetVal() {
    // While the module writes the value from the text, the host's echo of it would reformat the text
    // the user typed.
    if (reentering_)
        return;
    T clamped = value;
    if (clamped < minimum)
        clamped = minimum;
    else if (maximum < clamped)
        clamped = maximum;
    text = static_cast<Derived&>(*this).format(clamped);
}

template <class Derived, class T>
void LimitedNumberText<Derived, T>::onSetTxt() {
    const std::optional<T> typed = Derived::parse(text.getValue());
    if (!typed)
        return;
    kx::ReentryFlag hold(reentering_);
    if (*typed < minimum) {
        value = minimum.value;
        text = static_cast<Derived&>(*this).format(minimum.value);
    } else if (maximum < *typed) {
        value = maximum.value;
        text = static_cast<Derived&>(*this).format(maximum.value);
    } else {
        value = *typed;
    }
}

template class LimitedNumberText<KX_Int2TxtC, int>;
template class LimitedNumberText<KX_Float2TxtC, float>;

KX_Int2TxtC::KX_Int2TxtC() {
    initializePin(value, &KX_Int2TxtC::onSetVal);
    initializePin(minimum);
    initializePin(maximum);
    initializePin(text, &KX_Int2TxtC::onSetTxt);
}

KX_Float2TxtC::KX_Float2TxtC() {
    initializePin(value, &KX_Float2TxtC::onSetVal);
    initializePin(minimum);
    initializePin(maximum);
    initializePin(decimals, &KX_Float2TxtC::onSetVal);
    initializePin(text, &KX_Float2TxtC::onSetTxt);
}

std::wstring KX_Float2TxtC::format(float v) const {
    const int d = decimals;
    return kx::formatGeneral(v, d > 0 ? (d == INT32_MAX ? d : d + 1) : d);
}

// ---- KX_ARGB2Str

KX_ARGB2Str::KX_ARGB2Str() {
    initializePin(alpha, &KX_ARGB2Str::onSetARGB);
    initializePin(red, &KX_ARGB2Str::onSetARGB);
    initializePin(green, &KX_ARGB2Str::onSetARGB);
    initializePin(blue, &KX_ARGB2Str::onSetARGB);
    initializePin(text, &KX_ARGB2Str::onSetString);
}

void KX_ARGB2Str::onSetARGB() { text = kx::formatArgb(alpha, red, green, blue); }

void KX_ARGB2Str::onSetString() {
    // One hexadecimal number, as the standard unsigned conversion reads it; bits above 31 are ignored.
    const unsigned long argb = std::wcstoul(text.getValue().c_str(), nullptr, 16);
    constexpr float kByteToUnit = 0.003921569f;  // 1/255
    alpha = static_cast<float>((argb >> 24) & 0xFF) * kByteToUnit;
    red = static_cast<float>((argb >> 16) & 0xFF) * kByteToUnit;
    green = static_cast<float>((argb >> 8) & 0xFF) * kByteToUnit;
    blue = static_cast<float>(argb & 0xFF) * kByteToUnit;
}

namespace {
const bool registered = gmpi::Register<KX_Int2TxtC>::withId(L"KX_Int2TxtC") &&
                        gmpi::Register<KX_Float2TxtC>::withId(L"KX_Float2TxtC") &&
                        gmpi::Register<KX_ARGB2Str>::withId(L"KX_ARGB2Str");
}  // namespace
