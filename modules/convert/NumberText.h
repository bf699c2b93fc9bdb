// Number and colour text: a numeric value and its text form joined in both directions, so that a text
// entry and a numeric control can edit the same value. Writing the number rewrites the text; writing the
// text parses it and writes the number. A change of a limit alone recomputes nothing; limits take effect
// at the next change of the value or the text.
//
// Text typed within the limits is left as typed. A host that echoes the value written from the text
// back into the value pin would have it reformatted at once, so the integer and float modules ignore
// that echo while they write the value.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "MpGuiBase2.h"

namespace kx::int2txt {
enum Pin : int { Value, Minimum, Maximum, Text, PinCount };
}
namespace kx::float2txt {
enum Pin : int { Value, Minimum, Maximum, Decimals, Text, PinCount };
}
namespace kx::argb2str {
enum Pin : int { Alpha, Red, Green, Blue, Text, PinCount };
}

namespace kx {

// Both read a text as the standard string-to-number conversions read it in the C locale, whatever locale
// the process has: leading white space, a sign, then the number, of any length; trailing characters are
// ignored. Nothing, and no exception, when the text does not begin with a number or its value is out of
// range.
//
// The leading base-10 integer ("12abc" is 12, "0x1A" is 0); out of range beyond 32 bits.
std::optional<int> parseLeadingInt(std::wstring_view text);
// The leading floating point number: decimal or exponent notation, hexadecimal ("0x1A" is 26, "0x1p-2"
// 0.25), infinity and NaN spellings in any case ("inf", "Infinity", "nan(123)"); the point is always '.'.
// Out of range when the conversion reports it: beyond the float range, and an underflow ("1e-40").
std::optional<float> parseLeadingFloat(std::wstring_view text);
// General notation as a stream prints it with the given precision (significant digits; trailing zeros
// and point dropped; exponent form when the exponent is below -4 or at least the precision). Precision 0
// counts as 1, a negative one as 6. Independent of the process locale.
std::wstring formatGeneral(float value, int precision);
// Eight lower-case hex digits, alpha, red, green, blue; each channel clamped to 0..1 and scaled by 255
// truncating (0.5 gives 7f).
std::wstring formatArgb(float alpha, float red, float green, float blue);

}  // namespace kx

// What the integer and float modules share: a value with limits and its text. Text the user typed that
// lies within the limits is left as typed ("007" stays while the value becomes 7); out-of-limit text is
// replaced by the limit, in the value and in the text. Derived supplies parse (the number a text begins
// with) and format (the text of a value).
template <class Derived, class T>
class LimitedNumberText : public SeGuiInvisibleBase {
public:
    // Writes the text of the clamped value; the value pin itself keeps what it was given.
    void onSetVal();
    // Text that does not begin with a number writes nothing.
    void onSetTxt();

    MpGuiPin<T> value;
    MpGuiPin<T> minimum;
    MpGuiPin<T> maximum;
    StringGuiPin text;

private:
    bool reentering_ = false;
};

// An integer with limits and its decimal text.
class KX_Int2TxtC : public LimitedNumberText<KX_Int2TxtC, int> {
public:
    KX_Int2TxtC();

    static std::optional<int> parse(std::wstring_view typed) { return kx::parseLeadingInt(typed); }
    static std::wstring format(int v) { return std::to_wstring(v); }
};

// A float with limits and its text with a precision. The decimals pin d sets the precision to d + 1
// significant digits in general notation, which gives exactly d digits after the point only for
// magnitudes from 1 to just under 10 (with d = 2: 1.2345 -> 1.23, 12.345 -> 12.3, 1234.5 -> 1.23e+03).
// That is the module's behaviour, relied on by existing patches; it is not fixed notation. A change of
// the decimals rewrites the text as a change of the value does. A NaN text passes the limits and reaches
// the value.
class KX_Float2TxtC : public LimitedNumberText<KX_Float2TxtC, float> {
public:
    KX_Float2TxtC();

    static std::optional<float> parse(std::wstring_view typed) { return kx::parseLeadingFloat(typed); }
    std::wstring format(float v) const;

    MpGuiPin<int> decimals;
};

// Four colour channels (0 to 1) and the hexadecimal ARGB colour text that colour pins carry.
// Parsing is deliberately literal: the text is one hexadecimal number (an optional 0x is accepted), so a
// six-digit text such as ff8000 has alpha 0, a leading '#' stops the parse at once and gives all four
// channels 0, and text without hex digits gives 0. A NaN channel counts as 0.
class KX_ARGB2Str : public SeGuiInvisibleBase {
public:
    KX_ARGB2Str();
    void onSetARGB();
    // Writes the channels that changed; the text is not rewritten.
    void onSetString();

    MpGuiPin<float> alpha;
    MpGuiPin<float> red;
    MpGuiPin<float> green;
    MpGuiPin<float> blue;
    StringGuiPin text;
};
