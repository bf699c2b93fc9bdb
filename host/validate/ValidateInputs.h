// Hostile pin values and messages: what a careless or malicious host could hand a module. Each input
// carries a label, so a failure or a crash names exactly what was sent.
#pragma once

#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "patch/Value.h"

namespace kxhost::validate {

struct Input {
    std::vector<uint8_t> bytes;       // owned data, unless shared is set
    const uint8_t* shared = nullptr;  // the shared 1 MiB buffer instead
    bool null = false;                // a null data pointer (with size 0)
    std::string label;                // "int -2147483648", "text 5 bytes", "1 MiB", ...

    int32_t size() const;
    const void* data() const;
};

class Inputs {
public:
    static constexpr int32_t bigSize = 1 << 20;

    explicit Inputs(uint64_t seed);

    // A value the datatype can hold, chosen to provoke: extremes, NaN, infinities, invalid code points,
    // unpaired surrogates, text that almost parses, enumeration lists huge and malformed, texts of 1 MiB.
    Input value(Datatype type, std::mt19937_64& rng) const;
    // A size the datatype cannot hold (0, 1, 3, 5, 1 MiB, ... whichever are wrong for it), random bytes.
    Input wrongSize(Datatype type, std::mt19937_64& rng) const;
    // A message body of any size, sometimes null or 1 MiB.
    Input message(std::mt19937_64& rng) const;
    // A pin index the description does not declare. For an open-ended side (the host duplicates its last
    // pin at any index above) only negative indexes are undeclared.
    static int32_t unknownPin(int pinCount, bool openEnded, std::mt19937_64& rng);
    // A voice: mostly 0, sometimes anything.
    static int32_t voice(std::mt19937_64& rng);
    // Coordinates for pointer and tool-tip calls: ordinary, negative, huge, NaN, infinite.
    static float coordinate(std::mt19937_64& rng);

    const uint8_t* big() const { return big_.data(); }

private:
    std::vector<uint8_t> big_;
    std::vector<std::wstring> longTexts_;
};

}  // namespace kxhost::validate
