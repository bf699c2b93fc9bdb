// Number and colour text: KX_Int2TxtC, KX_Float2TxtC, KX_ARGB2Str.
#include "convert/NumberText.h"

#include <locale.h>
#include <stdlib.h>
#if defined(__APPLE__)
#include <xlocale.h>
#endif

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cwchar>

#include "ModuleSupport.h"
#include "MpFactory.h"

namespace kx {
namespace {

bool isSpace(wchar_t c) { return c == L' ' || c == L'\t' || c == L'\n' || c == L'\v' || c == L'\f' || c == L'\r'; }

// The "C" locale, made once. Typed numbers are read with the point and the C-locale classes whatever
// locale the host process has set: a host may well set LC_NUMERIC for its own user interface, and a
// patch must read "2.5" alike everywhere.
locale_t cLocale() {
    static const locale_t c = newlocale(LC_ALL_MASK, "C", static_cast<locale_t>(0));
    return c;
}

// The text from its first character that is not white space, as narrow text, up to its first character
// outside ASCII: no number is written with one in the C locale, so the standard conversions stop there
// too. Nothing is cut for length: 2,000 zeros and a 5 are a 5.
std::string numberText(std::wstring_view text) {
    size_t i = 0;
    while (i < text.size() && isSpace(text[i]))
        ++i;
    std::string out;
    for (; i < text.size() && text[i] > 0 && text[i] < 0x80; ++i)
        out.push_back(static_cast<char>(text[i]));
    return out;
}

// Runs a standard conversion in the C locale. Nothing when it reads no number or reports the value out
// of range; errno is left as it was.
template <class Convert>
auto convertInC(const std::string& text, Convert convert) -> std::optional<decltype(convert("", nullptr, locale_t{}))> {
    const locale_t c = cLocale();
    if (!c)
        return std::nullopt;
    const int saved = errno;
    errno = 0;
    char* end = nullptr;
    const auto value = convert(text.c_str(), &end, c);
    const bool outOfRange = errno == ERANGE;
    errno = saved;
    if (end == text.c_str() || outOfRange)
        return std::nullopt;
    return value;
}

// Beyond this many significant digits a double prints the same: its exact decimal expansion is shorter.
constexpr int kMostSignificantDigits = 767;

}  // namespace

std::optional<int> parseLeadingInt(std::wstring_view text) {
    const auto n =
        convertInC(numberText(text), [](const char* s, char** end, locale_t c) { return strtoll_l(s, end, 10, c); });
    if (!n || *n < INT32_MIN || *n > INT32_MAX)
        return std::nullopt;
    return static_cast<int>(*n);
}

std::optional<float> parseLeadingFloat(std::wstring_view text) {
    return convertInC(numberText(text), [](const char* s, char** end, locale_t c) { return strtof_l(s, end, c); });
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
