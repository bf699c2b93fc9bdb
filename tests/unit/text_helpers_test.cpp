#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <stdexcept>

#include "MpBlob.h"
#include "MpString.h"
#include "TextCodec.h"
#include "TextHelpers.h"
#include "gmpi/IMpFactory.h"
#include "it_enum_list.h"

namespace {

std::vector<std::string> split(const char* text) {
    std::vector<std::string> out;
    SplitString(text, out);
    return out;
}

struct Item {
    int index, id;
    std::wstring text;
    bool operator==(const Item&) const = default;
};

std::vector<Item> items(const std::wstring& list) {
    std::vector<Item> r;
    it_enum_list it(list);
    for (it.First(); !it.IsDone(); it.Next())
        r.push_back({it.index, it.id, it.text});
    return r;
}

}  // namespace

TEST(TextCodec, RoundTripsEveryPlane) {
    const std::wstring text = {L'a', 0xE9, 0x20AC, 0x1F600, 0x10FFFF, 0};
    EXPECT_EQ(kx::toUtf8(text), std::string("a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80\xF4\x8F\xBF\xBF\0", 15));
    EXPECT_EQ(kx::fromUtf8(kx::toUtf8(text)), text);
}

TEST(TextCodec, RejectsWhatIsNotUtf8WithTheSystemTexts) {
    for (const char* bad :
         {"\xC0\xAF", "\xE0\x80\x80", "\xED\xA0\x80", "\xF4\x90\x80\x80", "\x80", "abc\xE2\x82", "\xFF", "\xC3("}) {
        try {
            kx::fromUtf8(bad);
            ADD_FAILURE() << "accepted " << bad;
        } catch (const std::range_error& e) {
            EXPECT_STREQ(e.what(), "wstring_convert: from_bytes error");
        }
    }
    for (wchar_t bad : {static_cast<wchar_t>(0xD800), static_cast<wchar_t>(0xDFFF), static_cast<wchar_t>(0x110000),
                        static_cast<wchar_t>(-1)}) {
        try {
            kx::toUtf8(std::wstring(1, bad));
            ADD_FAILURE() << "accepted " << static_cast<long>(bad);
        } catch (const std::range_error& e) {
            EXPECT_STREQ(e.what(), "wstring_convert: to_bytes error");
        }
    }
}

TEST(TextCodec, LenientDecodingKeepsTheRest) {
    std::wstring out;
    kx::fromUtf8Lenient("ok\xFF\xC3\xA9 \xE2\x82", out);
    EXPECT_EQ(out, (std::wstring{L'o', L'k', 0xFFFD, 0xE9, L' ', 0xFFFD, 0xFFFD}));
}

TEST(SplitString, SeparatorsQuotesAndTheDeliberateCommaRule) {
    EXPECT_EQ(split("a,b"), (std::vector<std::string>{"a", "b"}));
    EXPECT_EQ(split("  a   b  "), (std::vector<std::string>{"a", "b"}));
    EXPECT_EQ(split("'x y',z"), (std::vector<std::string>{"x y", "z"}));
    EXPECT_EQ(split("a,,b"), (std::vector<std::string>{"a", ",b"}));
    EXPECT_EQ(split("a , b"), (std::vector<std::string>{"a", "b"}));
    EXPECT_EQ(split("\"\" 'open"), (std::vector<std::string>{"", "open"}));
    EXPECT_EQ(split("ab\"c d\""), (std::vector<std::string>{"ab", "c d"}));
    EXPECT_TRUE(split("").empty());
    EXPECT_TRUE(split(nullptr).empty());
}

TEST(LineWords, CrlfReadsExactlyAsLf) {
    auto lines = [](std::string_view text) {
        std::vector<std::vector<std::string>> r;
        forEachLineWords(text, [&](const std::vector<std::string>& words) { r.push_back(words); });
        return r;
    };
    using Lines = std::vector<std::vector<std::string>>;
    // A carriage return on the last line, even inside an unclosed quote, never reaches a word.
    EXPECT_EQ(lines("type knob\r\n\r\nlabel \"open\r"), lines("type knob\n\nlabel \"open"));
    EXPECT_EQ(lines("type knob\n\nlabel \"open"), (Lines{{"type", "knob"}, {}, {"label", "open"}}));
    // Only the line feed ends a line; a text ending in one has an empty last line.
    EXPECT_EQ(lines("a\rb\n"), (Lines{{"a", "b"}, {}}));
    EXPECT_EQ(lines(""), (Lines{{}}));
}

TEST(StringToInt, LeadingIntegerOrZeroAndClamped) {
    EXPECT_EQ(StringToInt("  -42abc"), -42);
    EXPECT_EQ(StringToInt("+7"), 7);
    EXPECT_EQ(StringToInt("x1"), 0);
    EXPECT_EQ(StringToInt(""), 0);
    EXPECT_EQ(StringToInt("99999999999999999999"), 2147483647);
    EXPECT_EQ(StringToInt("-99999999999999999999"), -2147483647 - 1);
    EXPECT_EQ(it_enum_list::StringToInt(L"ff", 16), 255);
    EXPECT_EQ(it_enum_list::StringToInt(L" 12z", 10), 12);
}

TEST(EnumList, ValuesCountOnFromTheLastExplicitOne) {
    EXPECT_EQ(items(L"a=5,b,c=-2,d"), (std::vector<Item>{{0, 5, L"a"}, {1, 6, L"b"}, {2, -2, L"c"}, {3, -1, L"d"}}));
    EXPECT_EQ(it_enum_list(L"a=5,b,c=-2,d").size(), 4);
    EXPECT_EQ(items(L" one , two "), (std::vector<Item>{{0, 0, L"one"}, {1, 1, L"two"}}));
    EXPECT_EQ(items(L"a,,b"), (std::vector<Item>{{0, 0, L"a"}, {1, 1, L""}, {2, 2, L"b"}}));
    EXPECT_EQ(items(L"x=junk"), (std::vector<Item>{{0, 0, L"x"}}));
}

TEST(EnumList, SizeQuirksOfTrailingCommasAndReversedRanges) {
    EXPECT_EQ(items(L"x,").size(), 1u);
    EXPECT_EQ(it_enum_list(L"x,").size(), 2);
    EXPECT_EQ(it_enum_list(L"").size(), 0);
    EXPECT_TRUE(items(L"").empty());
    EXPECT_EQ(items(L"range 1,4"), (std::vector<Item>{{0, 1, L"1"}, {1, 2, L"2"}, {2, 3, L"3"}, {3, 4, L"4"}}));
    EXPECT_EQ(it_enum_list(L"range 1,4").size(), 4);
    EXPECT_TRUE(items(L"range 4,1").empty());
    EXPECT_EQ(it_enum_list(L"range 4,1").size(), 4);
    EXPECT_EQ(items(L"range 5"), (std::vector<Item>{{0, 5, L"5"}}));
    EXPECT_EQ(items(L"Range 1,2").size(), 2u);  // case matters: a two-item list, not a range
    EXPECT_EQ(items(L"range 2147483646,2147483647").size(), 2u);
    // The range's ends are both items, at the extremes too.
    EXPECT_EQ(items(L"range -2147483648,-2147483647"),
              (std::vector<Item>{{0, INT_MIN, L"-2147483648"}, {1, INT_MIN + 1, L"-2147483647"}}));
}

// Callers that read id and text after the loop see the step past the end: the value after the last one,
// or, for a reversed range, the first value.
TEST(EnumList, ARangeEndsOneStepPastItsLastValue) {
    const auto end = [](const std::wstring& list) {
        it_enum_list it(list);
        for (it.First(); !it.IsDone(); it.Next()) {
        }
        return Item{it.index, it.id, it.text};
    };
    EXPECT_EQ(end(L"range 1,4"), (Item{-1, 5, L"5"}));
    EXPECT_EQ(end(L"range 4,1"), (Item{-1, 4, L"4"}));
    EXPECT_EQ(end(L"range -2147483648,-2147483647"), (Item{-1, -2147483646, L"-2147483646"}));
    EXPECT_EQ(items(L"range -2147483648,-2147483647").front().id, -2147483647 - 1);
    EXPECT_EQ(end(L"range 2147483647,2147483647"), (Item{-1, 2147483647, L"2147483647"}))
        << "the last int ends without wrapping round";
}

TEST(EnumList, ARangeFromTheSmallestIntStartsThere) {
    EXPECT_EQ(items(L"range -2147483648"), (std::vector<Item>{{0, INT_MIN, L"-2147483648"}}));
    EXPECT_EQ(items(L"range -2147483648,-2147483647"),
              (std::vector<Item>{{0, INT_MIN, L"-2147483648"}, {1, INT_MIN + 1, L"-2147483647"}}));
    EXPECT_EQ(it_enum_list::ForceValidValue(L"range -2147483648,0", 5), INT_MIN);
}

// Twenty-nine characters name four billion values: finding one must not walk the values before it.
TEST(EnumList, RangeLookUpsDoNotWalkTheRange) {
    const std::wstring everything = L"range -2147483648,2147483647";
    it_enum_list list(everything);
    ASSERT_TRUE(list.FindValue(INT_MAX - 1));
    EXPECT_EQ(list.id, INT_MAX - 1);
    EXPECT_EQ(list.text, L"2147483646");
    EXPECT_EQ(list.index, INT_MAX);  // positions past the last an int holds read as the last
    ASSERT_TRUE(list.FindIndex(INT_MAX));
    EXPECT_EQ(list.id, -1);
    EXPECT_EQ(list.text, L"-1");
    EXPECT_FALSE(list.FindIndex(-1));
    EXPECT_TRUE(list.IsDone());
    EXPECT_TRUE(it_enum_list::IsValidValue(everything, INT_MAX));
    EXPECT_EQ(it_enum_list::ForceValidValue(everything, 7), 7);
    EXPECT_EQ(it_enum_list::ForceValidValue(L"range 10,2000000000", 9), 10);
    EXPECT_FALSE(it_enum_list::IsValidValue(L"range 10,2000000000", 2000000001));
    EXPECT_FALSE(it_enum_list::IsValidValue(L"range 2000000000,10", 20));  // reversed: no items
    EXPECT_EQ(it_enum_list::ForceValidValue(L"range 2000000000,10", 20), 0);
    // Iteration goes on from what a look-up found.
    ASSERT_TRUE(list.FindValue(5));
    list.Next();
    EXPECT_EQ(list.id, 6);
    EXPECT_EQ(list.text, L"6");
}

TEST(EnumList, SeparatorsAreIteratedButNeverFound) {
    it_enum_list list(L"----,a");
    EXPECT_FALSE(list.FindIndex(0));
    EXPECT_TRUE(list.FindIndex(1));
    EXPECT_EQ(list.text, L"a");
    EXPECT_EQ(items(L"----,a").size(), 2u);
    EXPECT_EQ(it_enum_list::ForceValidValue(L"----,a", 7), 0);
    EXPECT_EQ(it_enum_list::ForceValidValue(L"a=3,b", 4), 4);
    EXPECT_EQ(it_enum_list::ForceValidValue(L"", 4), 0);
    EXPECT_FALSE(it_enum_list::IsValidValue(L"a,|||| x,b", 1));
    EXPECT_TRUE(it_enum_list::IsValidValue(L"a,--- x,b", 1));  // three dashes are an ordinary label
}

TEST(MpBlob, ResizeGrowLosesShrinkKeeps) {
    MpBlob blob(4, "abcd");
    blob.resize(2);
    EXPECT_EQ(blob.getSize(), 2);
    EXPECT_TRUE(blob.compare("ab", 2));
    blob.resize(4);  // within what it already owns: the leading bytes are still there
    EXPECT_EQ(blob.getSize(), 4);
    MpBlob grown(4, "abcd");
    grown.resize(8);
    EXPECT_EQ(grown.getSize(), 8);
    grown.resize(0);
    EXPECT_EQ(grown.getSize(), 0);
}

// A size-0 blob still hands out a valid pointer, so a pin or message carrying it never passes null.
TEST(MpBlob, EmptyBlobsHaveValidData) {
    MpBlob fresh;
    MpBlob emptied(3, "abc");
    emptied.resize(0);
    MpBlob moved(2, "xy");
    MpBlob taker(std::move(moved));
    MpBlob set(3, "abc");
    set.setValueRaw(0, nullptr);
    for (const MpBlob* blob : {&fresh, &emptied, &moved, &set}) {
        EXPECT_NE(blob->getData(), nullptr);
        EXPECT_EQ(blob->getSize(), 0);
    }
}

TEST(MpBlob, EqualityIsSizeAndBytes) {
    EXPECT_EQ(MpBlob(), MpBlob());
    EXPECT_EQ(MpBlob(3, "abc"), MpBlob(3, "abc"));
    EXPECT_NE(MpBlob(3, "abc"), MpBlob(3, "abd"));
    EXPECT_NE(MpBlob(3, "abc"), MpBlob(2, "ab"));
    MpBlob a(3, "xyz");
    a = MpBlob();
    EXPECT_EQ(a.getSize(), 0);
    EXPECT_FALSE(a.compare("x", -1));
}

TEST(MpString, NonPositiveSizesEmptyAndOnlyTwoInterfacesAnswer) {
    gmpi_sdk::MpString s;
    s.setData("hello", 5);
    EXPECT_EQ(s.str(), "hello");
    s.setData("hello", -3);
    EXPECT_EQ(s.getSize(), 0);
    void* out = &s;
    EXPECT_EQ(s.queryInterface(gmpi::MP_IID_RETURNSTRING, &out), 0);
    EXPECT_EQ(out, static_cast<gmpi::IString*>(&s));
    EXPECT_EQ(s.queryInterface(gmpi::MP_IID_FACTORY, &out), -2);
    EXPECT_EQ(out, nullptr);
}
