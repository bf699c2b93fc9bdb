#include <gtest/gtest.h>

#include <clocale>
#include <cmath>
#include <limits>
#include <string>

#include "HostedModule.h"
#include "convert/NumberText.h"

using kxtest::Hosted;

namespace {

std::wstring floatText(float value, int decimals) {
    namespace P = kx::float2txt;
    Hosted<KX_Float2TxtC> h;
    h.send(P::Minimum, -1e30f);
    h.send(P::Maximum, 1e30f);
    h.send(P::Decimals, decimals);
    h.send(P::Value, value);
    return h.module.text.value;
}

template <class M>
Hosted<M>* withLimits(Hosted<M>& h, int minPin, int maxPin, auto lo, auto hi) {
    h.send(minPin, lo);
    h.send(maxPin, hi);
    h.host.sent.clear();
    return &h;
}

}  // namespace

// General notation with d + 1 significant digits: exactly d decimals only between 1 and 10.
TEST(Float2TxtC, FormatsInGeneralNotationWithOneMoreSignificantDigit) {
    EXPECT_EQ(floatText(1.2345f, 2), L"1.23");
    EXPECT_EQ(floatText(12.345f, 2), L"12.3");
    EXPECT_EQ(floatText(123.45f, 2), L"123");
    EXPECT_EQ(floatText(1234.5f, 2), L"1.23e+03");
    EXPECT_EQ(floatText(0.5f, 2), L"0.5");
    EXPECT_EQ(floatText(0.00001234f, 2), L"1.23e-05");
    EXPECT_EQ(floatText(-2.5f, 2), L"-2.5");
    EXPECT_EQ(floatText(3.7f, 0), L"4");
    EXPECT_EQ(floatText(37.0f, 0), L"4e+01");
    EXPECT_EQ(floatText(0.1f, 3), L"0.1");
    EXPECT_EQ(floatText(2.0f, 3), L"2");
    EXPECT_EQ(floatText(3.14159265f, -1), L"3.14159");  // negative precision: the default 6
    EXPECT_EQ(floatText(0.1f, 20), L"0.100000001490116119385");
    EXPECT_EQ(floatText(0.1f, 0x7fffffff), L"0.100000001490116119384765625");
}

TEST(Float2TxtC, ValueIsClampedForTheTextOnlyAndDecimalsReformat) {
    namespace P = kx::float2txt;
    Hosted<KX_Float2TxtC> h;
    withLimits(h, P::Minimum, P::Maximum, 0.0f, 10.0f);
    h.send(P::Decimals, 2);
    h.send(P::Value, 42.0f);
    EXPECT_EQ(h.module.text.value, L"10");
    EXPECT_TRUE(h.host.on(P::Value).empty());
    h.send(P::Value, 1.23456f);
    h.send(P::Decimals, 3);
    EXPECT_EQ(h.module.text.value, L"1.235");
}

TEST(Float2TxtC, TextOutsideTheLimitsIsReplacedByTheLimitAndGarbageWritesNothing) {
    namespace P = kx::float2txt;
    Hosted<KX_Float2TxtC> h;
    withLimits(h, P::Minimum, P::Maximum, 0.0f, 10.0f);
    h.send(P::Decimals, 2);
    h.host.sent.clear();
    h.sendText(P::Text, L"15.5");
    EXPECT_FLOAT_EQ(h.module.value.value, 10.0f);
    EXPECT_EQ(h.module.text.value, L"10");
    h.sendText(P::Text, L"99");  // the value already holds the maximum: only the text is rewritten
    EXPECT_EQ(h.host.on(P::Value).size(), 1u);
    EXPECT_EQ(h.host.on(P::Text).size(), 2u);

    h.host.sent.clear();
    h.sendText(P::Text, L"  2.5kg");
    EXPECT_FLOAT_EQ(h.module.value.value, 2.5f);
    EXPECT_EQ(h.module.text.value, L"  2.5kg");  // left as typed
    EXPECT_TRUE(h.host.on(P::Text).empty());

    h.host.sent.clear();
    for (const wchar_t* bad : {L"", L"abc", L"-", L"+-1", L"1e39", L"#5"})
        EXPECT_EQ(kxtest::deliverText(h.module, P::Text, bad), 0) << bad;
    EXPECT_TRUE(h.host.sent.empty());
    EXPECT_FLOAT_EQ(h.module.value.value, 2.5f);

    h.sendText(P::Text, L"nan");  // passes both limit tests
    EXPECT_TRUE(std::isnan(h.module.value.value));
    h.sendText(P::Text, L"+1e-1");
    EXPECT_FLOAT_EQ(h.module.value.value, 0.1f);
}

TEST(Int2TxtC, TypedTextWithinLimitsIsKeptAndOutsideIsReplaced) {
    namespace P = kx::int2txt;
    Hosted<KX_Int2TxtC> h;
    withLimits(h, P::Minimum, P::Maximum, 0, 10);
    h.sendText(P::Text, L"007");
    EXPECT_EQ(h.module.value.value, 7);
    EXPECT_TRUE(h.host.on(P::Text).empty());
    h.sendText(P::Text, L" 5");
    EXPECT_EQ(h.module.value.value, 5);
    EXPECT_EQ(h.module.text.value, L" 5");
    h.sendText(P::Text, L"8abc");
    EXPECT_EQ(h.module.value.value, 8);

    h.sendText(P::Text, L"15");
    EXPECT_EQ(h.module.value.value, 10);
    EXPECT_EQ(h.module.text.value, L"10");
    h.sendText(P::Text, L"-3");
    EXPECT_EQ(h.module.value.value, 0);
    EXPECT_EQ(h.module.text.value, L"0");
}

TEST(Int2TxtC, NonNumbersAndOverflowReachNoPin) {
    namespace P = kx::int2txt;
    Hosted<KX_Int2TxtC> h;
    withLimits(h, P::Minimum, P::Maximum, -100, 100);
    h.sendText(P::Text, L"42");
    h.host.sent.clear();
    for (const wchar_t* bad : {L"", L"abc", L" - 5", L"99999999999", L"2147483648", L"0x10"}) {
        EXPECT_EQ(kxtest::deliverText(h.module, P::Text, bad), 0) << bad;
    }
    // "0x10" reads as 0 (digits stop at the x), the only one that is a number.
    EXPECT_EQ(h.module.value.value, 0);
    ASSERT_EQ(h.host.on(P::Value).size(), 1u);
    EXPECT_TRUE(h.host.on(P::Text).empty());
}

TEST(Int2TxtC, ValueBeyondTheLimitsShowsTheLimitButKeepsTheValue) {
    namespace P = kx::int2txt;
    Hosted<KX_Int2TxtC> h;
    withLimits(h, P::Minimum, P::Maximum, 0, 10);
    h.send(P::Value, 42);
    EXPECT_EQ(h.module.text.value, L"10");
    EXPECT_EQ(h.module.value.value, 42);
    EXPECT_TRUE(h.host.on(P::Value).empty());
    h.send(P::Value, -2147483647 - 1);
    EXPECT_EQ(h.module.text.value, L"0");
}

TEST(ARGB2Str, ChannelsTruncateToEightHexDigits) {
    namespace P = kx::argb2str;
    Hosted<KX_ARGB2Str> h;
    h.send(P::Alpha, 1.0f);
    h.send(P::Green, 0.5f);
    h.send(P::Blue, 1.0f);
    EXPECT_EQ(h.module.text.value, L"ff007fff");
    h.send(P::Alpha, 0.5f);
    h.send(P::Green, 0.0f);
    h.send(P::Blue, 0.0f);
    EXPECT_EQ(h.module.text.value, L"7f000000");
    h.send(P::Alpha, 7.0f);
    h.send(P::Red, -3.0f);
    h.send(P::Blue, std::numeric_limits<float>::quiet_NaN());
    EXPECT_EQ(h.module.text.value, L"ff000000");
}

TEST(ARGB2Str, TextIsOneHexNumberWithoutSpecialCases) {
    namespace P = kx::argb2str;
    Hosted<KX_ARGB2Str> h;
    h.sendText(P::Text, L"0xff007fff");
    EXPECT_FLOAT_EQ(h.module.alpha.value, 1.0f);
    EXPECT_FLOAT_EQ(h.module.red.value, 0.0f);
    EXPECT_FLOAT_EQ(h.module.green.value, 0.4980392f);
    EXPECT_FLOAT_EQ(h.module.blue.value, 1.0f);
    EXPECT_TRUE(h.host.on(P::Text).empty());  // not rewritten

    h.sendText(P::Text, L"ff8000");  // six digits: no alpha byte, so alpha 0
    EXPECT_FLOAT_EQ(h.module.alpha.value, 0.0f);
    EXPECT_FLOAT_EQ(h.module.red.value, 1.0f);
    EXPECT_FLOAT_EQ(h.module.green.value, 128 * 0.003921569f);
    EXPECT_FLOAT_EQ(h.module.blue.value, 0.0f);

    h.sendText(P::Text, L"#ffffffff");  // '#' stops the parse at once
    EXPECT_FLOAT_EQ(h.module.red.value, 0.0f);
    EXPECT_FLOAT_EQ(h.module.green.value, 0.0f);

    h.sendText(P::Text, L"1ff000000");  // bits above the alpha byte are ignored
    EXPECT_FLOAT_EQ(h.module.alpha.value, 1.0f);
    h.host.sent.clear();
    for (const wchar_t* zero : {L"", L"zz", L"0x"}) {
        h.sendText(P::Text, L"ffffffff");
        h.sendText(P::Text, zero);
        EXPECT_FLOAT_EQ(h.module.alpha.value + h.module.red.value + h.module.green.value + h.module.blue.value, 0.0f)
            << zero;
    }
}

// A host echoes the value written from the text back into the value pin; that echo must not reformat
// the text the user typed.
TEST(NumberText, EchoOfTheValueLeavesTypedTextAsTyped) {
    Hosted<KX_Int2TxtC> i;
    withLimits(i, kx::int2txt::Minimum, kx::int2txt::Maximum, 0, 10);
    i.echoTransmissions();
    i.sendText(kx::int2txt::Text, L"007");
    EXPECT_EQ(i.module.value.value, 7);
    EXPECT_EQ(i.module.text.value, L"007");
    i.sendText(kx::int2txt::Text, L"12");
    EXPECT_EQ(i.module.text.value, L"10");
    i.send(kx::int2txt::Value, 3);  // the value from elsewhere still rewrites the text
    EXPECT_EQ(i.module.text.value, L"3");

    Hosted<KX_Float2TxtC> f;
    withLimits(f, kx::float2txt::Minimum, kx::float2txt::Maximum, 0.0f, 1000.0f);
    f.echoTransmissions();
    f.sendText(kx::float2txt::Text, L"0440.0");
    EXPECT_FLOAT_EQ(f.module.value.value, 440.0f);
    EXPECT_EQ(f.module.text.value, L"0440.0");
}

// Typed text is read as the standard string-to-number conversions read it: hexadecimal floats, any
// leading white space, the infinity and NaN spellings, numbers of any length; a value out of the type's
// range (an underflow included) is no number at all.
TEST(Float2TxtC, TextIsReadAsTheStandardConversionReadsIt) {
    namespace P = kx::float2txt;
    const float inf = std::numeric_limits<float>::infinity();
    Hosted<KX_Float2TxtC> h;
    withLimits(h, P::Minimum, P::Maximum, -inf, inf);
    const std::wstring longNumber = std::wstring(2000, L'0') + L"5";
    const std::pair<std::wstring, float> numbers[] = {
        {L"0x1A", 26.0f},     {L"0x1.8p1", 3.0f},  {L" \t\n\v\f\r2.5", 2.5f}, {L"INF", inf},
        {L"-Infinity", -inf}, {L"+infinite", inf}, {longNumber, 5.0f},        {L"1.2e-38", 1.2e-38f}};
    for (const auto& [typed, number] : numbers) {
        h.sendText(P::Text, typed);
        EXPECT_EQ(h.module.value.value, number) << std::string(typed.begin(), typed.end());
    }
    h.sendText(P::Text, L"NaN(123)");
    EXPECT_TRUE(std::isnan(h.module.value.value));

    h.sendText(P::Text, L"1");
    h.host.sent.clear();
    for (const wchar_t* outOfRange : {L"1e-40", L"-1e-45", L"1e39", L"0x1p200"})
        EXPECT_EQ(kxtest::deliverText(h.module, P::Text, outOfRange), 0) << outOfRange;
    EXPECT_TRUE(h.host.sent.empty());
    EXPECT_EQ(h.module.value.value, 1.0f);
}

TEST(Int2TxtC, NumbersOfAnyLengthAndAnyLeadingWhiteSpaceAreRead) {
    namespace P = kx::int2txt;
    Hosted<KX_Int2TxtC> h;
    withLimits(h, P::Minimum, P::Maximum, -100, 100);
    h.sendText(P::Text, L"-" + std::wstring(2000, L'0') + L"5");
    EXPECT_EQ(h.module.value.value, -5);
    h.sendText(P::Text, L"\v\f\r\n\t +12");
    EXPECT_EQ(h.module.value.value, 12);
}

// The process's locale may use a comma for the point (a host sets it for its own user interface); typed
// numbers are read with the point whatever it says.
TEST(Float2TxtC, ThePointIsAPointWhateverTheProcessLocale) {
    const std::string previous = std::setlocale(LC_NUMERIC, nullptr);
    const char* commaLocale = nullptr;
    for (const char* name : {"de_DE.UTF-8", "fr_FR.UTF-8", "de_DE", "fr_FR"})
        if (std::setlocale(LC_NUMERIC, name)) {
            commaLocale = name;
            break;
        }
    if (!commaLocale)
        GTEST_SKIP() << "no locale with a decimal comma is installed";
    namespace P = kx::float2txt;
    Hosted<KX_Float2TxtC> h;
    withLimits(h, P::Minimum, P::Maximum, -10.0f, 10.0f);
    h.sendText(P::Text, L"2.5");
    const float point = h.module.value.value;
    h.sendText(P::Text, L"3,5");
    const float comma = h.module.value.value;
    h.send(P::Decimals, 2);
    h.send(P::Value, 1.25f);
    const std::wstring shown = h.module.text.value;
    std::setlocale(LC_NUMERIC, previous.c_str());
    EXPECT_EQ(point, 2.5f);
    EXPECT_EQ(comma, 3.0f);
    EXPECT_EQ(shown, L"1.25");
}
