#include "TextCodec.h"

#include <cstdint>
#include <cstring>
#include <stdexcept>

namespace kx {
namespace {

const char* const kToBytesError = "wstring_convert: to_bytes error";
const char* const kFromBytesError = "wstring_convert: from_bytes error";

// Decodes one sequence starting at text[i]; returns the code point and advances i, or returns -1
// (leaving i unchanged) when the bytes there are not a valid UTF-8 sequence.
inline long decodeOne(std::string_view text, size_t& i) {
    const size_t n = text.size();
    const auto b0 = static_cast<unsigned char>(text[i]);
    if (b0 < 0x80) {
        ++i;
        return b0;
    }
    int len;
    unsigned long cp;
    unsigned long min;
    if ((b0 & 0xE0) == 0xC0) {
        len = 2, cp = b0 & 0x1F, min = 0x80;
    } else if ((b0 & 0xF0) == 0xE0) {
        len = 3, cp = b0 & 0x0F, min = 0x800;
    } else if ((b0 & 0xF8) == 0xF0) {
        len = 4, cp = b0 & 0x07, min = 0x10000;
    } else {
        return -1;
    }
    if (n - i < static_cast<size_t>(len))
        return -1;
    for (int k = 1; k < len; ++k) {
        const auto b = static_cast<unsigned char>(text[i + k]);
        if ((b & 0xC0) != 0x80)
            return -1;
        cp = (cp << 6) | (b & 0x3F);
    }
    if (cp < min || cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF))
        return -1;
    i += len;
    return static_cast<long>(cp);
}

// Appends the UTF-8 form of text. A value that is no code point (a surrogate, above 0x10FFFF) throws when
// Strict, else becomes U+FFFD.
template <bool Strict>
void encode(std::wstring_view text, std::string& out) {
    out.reserve(out.size() + text.size());
    for (wchar_t wc : text) {
        auto cp = static_cast<uint32_t>(wc);
        if (cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF)) {
            if constexpr (Strict)
                throw std::range_error(kToBytesError);
            cp = 0xFFFD;
        }
        if (cp < 0x80) {
            out.push_back(static_cast<char>(cp));
        } else if (cp < 0x800) {
            out.push_back(static_cast<char>(0xC0 | (cp >> 6)));
            out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
        } else if (cp < 0x10000) {
            out.push_back(static_cast<char>(0xE0 | (cp >> 12)));
            out.push_back(static_cast<char>(0x80 | ((cp >> 6) & 0x3F)));
            out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
        } else {
            out.push_back(static_cast<char>(0xF0 | (cp >> 18)));
            out.push_back(static_cast<char>(0x80 | ((cp >> 12) & 0x3F)));
            out.push_back(static_cast<char>(0x80 | ((cp >> 6) & 0x3F)));
            out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
        }
    }
}

}  // namespace

std::string toUtf8(std::wstring_view text) {
    std::string out;
    encode<true>(text, out);
    return out;
}

std::string toUtf8Lenient(std::wstring_view text) {
    std::string out;
    encode<false>(text, out);
    return out;
}

std::wstring fromUtf8(std::string_view text) {
    std::wstring out;
    out.reserve(text.size());
    size_t i = 0;
    while (i < text.size()) {
        const long cp = decodeOne(text, i);
        if (cp < 0)
            throw std::range_error(kFromBytesError);
        out.push_back(static_cast<wchar_t>(cp));
    }
    return out;
}

void fromUtf8Lenient(std::string_view text, std::wstring& out) {
    // Writes through a pointer into room for one character per byte (the most there can be), then trims:
    // a character at a time through push_back costs a capacity check and a terminator per character,
    // which dominates the decoding of large files.
    const size_t start = out.size();
    out.resize(start + text.size());
    wchar_t* dst = out.data() + start;
    const size_t n = text.size();
    const auto* bytes = reinterpret_cast<const unsigned char*>(text.data());
    size_t i = 0;
    while (i < n) {
        // Runs of ASCII are the common case: eight bytes at a time while none has its top bit set.
        while (n - i >= 8) {
            uint64_t word;
            std::memcpy(&word, bytes + i, 8);
            if (word & 0x8080808080808080ull)
                break;
            for (int k = 0; k < 8; ++k)
                dst[k] = static_cast<wchar_t>(bytes[i + k]);
            dst += 8;
            i += 8;
        }
        if (i == n)
            break;
        if (bytes[i] < 0x80) {
            *dst++ = static_cast<wchar_t>(bytes[i++]);
            continue;
        }
        const long cp = decodeOne(text, i);
        if (cp < 0) {
            *dst++ = static_cast<wchar_t>(0xFFFD);
            ++i;
        } else {
            *dst++ = static_cast<wchar_t>(cp);
        }
    }
    out.resize(static_cast<size_t>(dst - out.data()));
}

}  // namespace kx
