// UTF-8 and wide text for the host. The host talks to modules in 32-bit code points and to people and
// files in UTF-8; it has its own small converter because it may use nothing of the module framework.
#pragma once

#include <string>
#include <string_view>

namespace kxhost {

// Decodes UTF-8; malformed sequences become U+FFFD, so text from files and modules never stops a run.
std::wstring widen(std::string_view utf8);
// Encodes code points; values that are not code points (surrogates, above 0x10FFFF) become U+FFFD.
std::string narrow(std::wstring_view wide);

}  // namespace kxhost
