// UTF-8 <-> wide text (32-bit code points). Strict: invalid input raises std::range_error with the
// texts "wstring_convert: to_bytes error" / "wstring_convert: from_bytes error".
#pragma once

#include <string>
#include <string_view>

namespace kx {

// Code points above 0x10FFFF and surrogates (0xD800-0xDFFF) cannot be encoded and throw.
std::string toUtf8(std::wstring_view text);
// As toUtf8, but each value that is no code point becomes U+FFFD: for text that is shown (drawn, a tool
// tip, a menu entry), where a damaged character should not hide the rest.
std::string toUtf8Lenient(std::wstring_view text);
// Overlong forms, surrogates, values above 0x10FFFF, stray or missing continuation bytes throw.
std::wstring fromUtf8(std::string_view text);
// As fromUtf8, but each byte that does not start a valid sequence becomes U+FFFD and decoding goes on;
// used where losing the rest of a text would be worse than marking the damage. Appends to out.
void fromUtf8Lenient(std::string_view text, std::wstring& out);

}  // namespace kx
