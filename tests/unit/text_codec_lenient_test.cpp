#include <gtest/gtest.h>

#include <string>

#include "TextCodec.h"

// The decoder copies ASCII eight bytes at a time; a bad or multi-byte sequence at any offset within or
// across those blocks must come out the same as decoding byte by byte would.
TEST(TextCodecLenient, DamageAtEveryOffsetAroundTheAsciiBlocks) {
    const std::string ascii = "abcdefghijklmnopqrstu";
    for (size_t at = 0; at <= ascii.size(); ++at) {
        for (const auto& [bytes, chars] : {std::pair<std::string, std::wstring>{"\xFF", L"\uFFFD"},
                                           {"\xC3\xA9", L"\u00E9"},
                                           {"\xE2\x82", L"\uFFFD\uFFFD"},
                                           {"\xF0\x9F\x8E\xB5", L"\U0001F3B5"}}) {
            const std::string in = ascii.substr(0, at) + bytes + ascii.substr(at);
            const std::wstring expected =
                std::wstring(ascii.begin(), ascii.begin() + at) + chars + std::wstring(ascii.begin() + at, ascii.end());
            std::wstring out = L">";
            kx::fromUtf8Lenient(in, out);
            EXPECT_EQ(out, L">" + expected) << "offset " << at;
        }
    }
}
