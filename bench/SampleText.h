// The 64 MB text the text-file benchmarks load: whole lines of mostly ASCII, with two-, three- and
// four-byte sequences on every line.
#pragma once

#include <cstddef>
#include <string>

inline constexpr size_t kSampleTextBytes = 64u << 20;

inline std::string sampleText() {
    const std::string line =
        "The quick brown fox jumps over the lazy dog; caf\xC3\xA9 \xE2\x82\xAC 12.50 \xF0\x9F\x8E\xB5\n";
    std::string text;
    text.reserve(kSampleTextBytes + line.size());
    while (text.size() < kSampleTextBytes)
        text += line;
    text.resize(kSampleTextBytes - (kSampleTextBytes % line.size()));  // whole lines only
    return text;
}
