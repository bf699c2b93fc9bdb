// Tokenising and integer parsing of narrow and wide text. The narrow parser must agree with strtol
// clamped to the int range; the wide one, on ASCII text, with wcstol in the base the first byte picks.
// Tokens are pieces of the text in order, and a text of N line feeds has N + 1 lines.
#include <cerrno>
#include <climits>
#include <cstdint>
#include <cstdlib>
#include <cwchar>
#include <string>
#include <vector>

#include "FuzzInput.h"
#include "TextHelpers.h"
#include "it_enum_list.h"

namespace {

int clampToInt(long long v) { return v > INT_MAX ? INT_MAX : v < INT_MIN ? INT_MIN : static_cast<int>(v); }

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    kxfuzz::FuzzInput in(data, size);
    const int base = in.byte() % 40;  // includes bases the parser replaces by 10
    const std::string text(in.rest());

    // Narrow: the leading decimal integer, clamped. strtol stops at the first NUL as the parser does.
    errno = 0;
    const long long expected = std::strtoll(text.c_str(), nullptr, 10);
    KX_FUZZ_CHECK(StringToInt(text) == clampToInt(expected));

    // Wide, on ASCII text: every character a byte.
    bool ascii = true;
    std::wstring wide;
    for (unsigned char c : text) {
        ascii = ascii && c < 0x80;
        wide.push_back(static_cast<wchar_t>(c));
    }
    const int parsed = it_enum_list::StringToInt(wide, base);
    if (ascii) {
        const int effective = base < 2 || base > 36 ? 10 : base;
        KX_FUZZ_CHECK(parsed == clampToInt(std::wcstoll(wide.c_str(), nullptr, effective)));
    }

    // Tokens: non-overlapping pieces of the text up to its first NUL, in order; only a quoted token may
    // be empty, so there are no more empty ones than quotes.
    std::vector<std::string> tokens;
    SplitString(text.c_str(), tokens);
    const std::string_view upToNul(text.c_str());
    size_t at = 0;
    size_t empty = 0;
    for (const std::string& token : tokens) {
        const size_t found = upToNul.find(token, at);
        KX_FUZZ_CHECK(found != std::string_view::npos);
        at = found + token.size();
        empty += token.empty();
    }
    size_t quotes = 0;
    for (char c : upToNul)
        quotes += c == '"' || c == '\'';
    KX_FUZZ_CHECK(empty <= quotes);
    const size_t before = tokens.size();
    SplitString(nullptr, tokens);
    KX_FUZZ_CHECK(tokens.size() == before);

    size_t lines = 0;
    size_t words = 0;
    forEachLineWords(text, [&](const std::vector<std::string>& w) {
        ++lines;
        words += w.size();
    });
    size_t feeds = 0;
    for (char c : text)
        feeds += c == '\n';
    KX_FUZZ_CHECK(lines == feeds + 1);
    KX_FUZZ_CHECK(words <= text.size());
    return 0;
}
