#include "patch/Text.h"

namespace kxhost {

namespace {
constexpr char32_t replacement = 0xFFFD;

bool isCodePoint(char32_t c) { return c <= 0x10FFFF && (c < 0xD800 || c > 0xDFFF); }
}  // namespace

std::wstring widen(std::string_view in) {
    std::wstring out;
    out.reserve(in.size());
    size_t i = 0;
    while (i < in.size()) {
        const auto lead = static_cast<unsigned char>(in[i]);
        int extra = lead < 0x80 ? 0 : (lead >> 5) == 0x6 ? 1 : (lead >> 4) == 0xE ? 2 : (lead >> 3) == 0x1E ? 3 : -1;
        if (extra < 0) {
            out += static_cast<wchar_t>(replacement);
            ++i;
            continue;
        }
        char32_t c = extra == 0 ? lead : lead & (0x3F >> extra);
        size_t j = 1;
        for (; j <= static_cast<size_t>(extra); ++j) {
            if (i + j >= in.size() || (static_cast<unsigned char>(in[i + j]) & 0xC0) != 0x80)
                break;
            c = (c << 6) | (static_cast<unsigned char>(in[i + j]) & 0x3F);
        }
        static constexpr char32_t smallest[] = {0, 0x80, 0x800, 0x10000};
        if (j <= static_cast<size_t>(extra) || c < smallest[extra] || !isCodePoint(c)) {
            out += static_cast<wchar_t>(replacement);
            i += j;
            continue;
        }
        out += static_cast<wchar_t>(c);
        i += j;
    }
    return out;
}

std::string narrow(std::wstring_view in) {
    std::string out;
    out.reserve(in.size());
    for (wchar_t w : in) {
        auto c = static_cast<char32_t>(w);
        if (!isCodePoint(c))
            c = replacement;
        if (c < 0x80) {
            out += static_cast<char>(c);
        } else if (c < 0x800) {
            out += static_cast<char>(0xC0 | (c >> 6));
            out += static_cast<char>(0x80 | (c & 0x3F));
        } else if (c < 0x10000) {
            out += static_cast<char>(0xE0 | (c >> 12));
            out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
            out += static_cast<char>(0x80 | (c & 0x3F));
        } else {
            out += static_cast<char>(0xF0 | (c >> 18));
            out += static_cast<char>(0x80 | ((c >> 12) & 0x3F));
            out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
            out += static_cast<char>(0x80 | (c & 0x3F));
        }
    }
    return out;
}

}  // namespace kxhost
