#include "validate/ValidateInputs.h"

#include <cmath>
#include <cstring>
#include <limits>

#include "patch/Text.h"

namespace kxhost::validate {

namespace {

template <class T>
const T& any(const std::vector<T>& items, std::mt19937_64& rng) {
    return items[rng() % items.size()];
}

int below(int n, std::mt19937_64& rng) { return static_cast<int>(rng() % static_cast<uint64_t>(n)); }

template <class T>
Input raw(const T& v, std::string label) {
    Input in;
    in.bytes.resize(sizeof v);
    std::memcpy(in.bytes.data(), &v, sizeof v);
    in.label = std::move(label);
    return in;
}

std::string describe(float f) {
    if (std::isnan(f))
        return "nan";
    if (std::isinf(f))
        return f < 0 ? "-inf" : "inf";
    return std::to_string(f);
}

// Text that nearly means something to some module: numbers, note names, colours, file names, enum
// lists. Never a path leaving the working folder ("..", a leading "/"), since some modules write files.
const std::vector<std::wstring> plausible = {
    L"",
    L"0",
    L"12",
    L"-3.5",
    L"1e40",
    L"-1e-40",
    L"nan",
    L"inf",
    L"-inf",
    L"0x1F",
    L" 7 ",
    L"+",
    L"-",
    L".",
    L"99999999999999999999",
    L"C4",
    L"A#-1",
    L"G9",
    L"c#5",
    L"Bb3",
    L"a.txt",
    L"sub/b.txt",
    L"file name.txt",
    L"*.txt",
    L"x.",
    L"FF00FF00",
    L"#fff",
    L"zz",
    L"a,b,c",
    L"range 0,10",
    L"range -5",
    L"range -2147483648,2147483647",
    L"range 2147483647,-2147483648",
    L"range",
    L"x=3,y=-1",
    L"a=2147483647,b,c",
    L"----,<<<<,>>>>,||||",
    L"----,a=-2147483648,||||,b",
    L"=",
    L",,,",
    L"\u00e9t\u00e9",
    L"\U0001F600",
    L"\t\n\r",
};

std::wstring randomText(std::mt19937_64& rng, size_t length) {
    static const std::vector<uint32_t> odd = {0,      0xD800,   0xDBFF,     0xDC00,     0xDFFF,     0xFFFE,
                                              0xFFFF, 0x110000, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFF, 0x10FFFF};
    std::wstring text;
    for (size_t i = 0; i < length; ++i) {
        switch (below(5, rng)) {
            case 0:
                text += static_cast<wchar_t>(any(odd, rng));
                break;
            case 1:
                text += static_cast<wchar_t>(0x80 + below(0xD800 - 0x80, rng));
                break;
            case 2:
                text += static_cast<wchar_t>(0x10000 + below(0x100000, rng));
                break;
            default:
                // Printable ASCII without '/' and '.', so no path can climb out of the folder.
                wchar_t c = static_cast<wchar_t>(0x20 + below(0x5F, rng));
                text += (c == L'/' || c == L'.') ? L'_' : c;
        }
    }
    return text;
}

// Long texts of 1 MiB on the pin (262,144 code points), made once: an enumeration list of some 30,000
// items (values, separators, a range-like head), and words with accents and wide characters. What
// lists, draws or parses a whole text meets its worst case here.
std::vector<std::wstring> makeLongTexts() {
    constexpr size_t units = (1u << 20) / sizeof(wchar_t);
    std::wstring list, words;
    for (int i = 0; list.size() < units; ++i) {
        if (!list.empty())
            list += L',';
        list += i % 97 == 0 ? L"----" : L"item " + std::to_wstring(i);
        if (i % 13 == 0)
            list += L"=" + std::to_wstring(i * 7919 - 1000000);
    }
    list.resize(units);
    static const wchar_t* const pieces[] = {
        L"word ", L"\u00e9t\u00e9 ", L"\U0001F600 ", L"\t", L"long-word-without-a-break ", L"\n"};
    for (int i = 0; words.size() < units; ++i)
        words += pieces[(i * 7) % 6];
    words.resize(units);
    return {std::move(list), std::move(words)};
}

Input text(std::wstring t, std::string label) {
    Input in;
    in.bytes.resize(t.size() * sizeof(wchar_t));
    if (!t.empty())
        std::memcpy(in.bytes.data(), t.data(), in.bytes.size());
    in.label = std::move(label);
    return in;
}

}  // namespace

int32_t Input::size() const { return shared ? Inputs::bigSize : static_cast<int32_t>(bytes.size()); }

const void* Input::data() const {
    static const uint8_t none = 0;
    if (null)
        return nullptr;
    if (shared)
        return shared;
    // An empty value still comes with a valid pointer unless null is asked for.
    return bytes.empty() ? &none : bytes.data();
}

Inputs::Inputs(uint64_t seed) : big_(bigSize), longTexts_(makeLongTexts()) {
    std::mt19937_64 rng(seed ^ 0x9E3779B97F4A7C15ull);
    for (auto& b : big_)
        b = static_cast<uint8_t>(rng());
}

Input Inputs::value(Datatype type, std::mt19937_64& rng) const {
    switch (type) {
        case Datatype::Int:
        case Datatype::Enum: {
            static const std::vector<int32_t> ints = {0,
                                                      1,
                                                      -1,
                                                      2,
                                                      7,
                                                      100,
                                                      std::numeric_limits<int32_t>::min(),
                                                      std::numeric_limits<int32_t>::max(),
                                                      std::numeric_limits<int32_t>::min() + 1,
                                                      255,
                                                      256,
                                                      65536};
            int32_t v;
            switch (below(3, rng)) {
                case 0:
                    v = any(ints, rng);
                    break;
                case 1:
                    v = static_cast<int32_t>(rng());
                    break;
                default:
                    v = below(26, rng) - 5;
            }
            return raw(v, std::string(datatypeName(type)) + " " + std::to_string(v));
        }
        case Datatype::Float:
        case Datatype::Audio: {
            static const std::vector<float> floats = {0.0f,
                                                      -0.0f,
                                                      1.0f,
                                                      -1.0f,
                                                      0.5f,
                                                      std::numeric_limits<float>::quiet_NaN(),
                                                      -std::numeric_limits<float>::quiet_NaN(),
                                                      std::numeric_limits<float>::infinity(),
                                                      -std::numeric_limits<float>::infinity(),
                                                      std::numeric_limits<float>::max(),
                                                      -std::numeric_limits<float>::max(),
                                                      std::numeric_limits<float>::min(),
                                                      std::numeric_limits<float>::denorm_min(),
                                                      1e30f,
                                                      -1e30f,
                                                      2147483648.0f,
                                                      -2147483904.0f};
            float v;
            switch (below(4, rng)) {
                case 0:
                case 1:
                    v = any(floats, rng);
                    break;
                case 2:
                    v = static_cast<float>(below(2000001, rng) - 1000000) / 100.0f;
                    break;
                default: {
                    const auto bits = static_cast<uint32_t>(rng());
                    std::memcpy(&v, &bits, 4);
                }
            }
            return raw(v, std::string(datatypeName(type)) + " " + describe(v));
        }
        case Datatype::Bool: {
            static const std::vector<uint8_t> bools = {0, 1, 2, 255};
            if (below(8, rng) == 0) {
                const int32_t v = below(2, rng) ? 1 : static_cast<int32_t>(rng());
                return raw(v, "bool as 4 bytes " + std::to_string(v));
            }
            const uint8_t v = any(bools, rng);
            return raw(v, "bool byte " + std::to_string(v));
        }
        case Datatype::Text: {
            switch (below(9, rng)) {
                case 0:
                case 1:
                case 2:
                case 3: {
                    const std::wstring& t = any(plausible, rng);
                    return text(t, "text " + quoted(narrow(t)));
                }
                case 4:
                case 5: {
                    std::wstring t = randomText(rng, static_cast<size_t>(below(40, rng)));
                    const std::string label = "text of " + std::to_string(t.size()) + " random code points";
                    return text(std::move(t), label);
                }
                case 6: {
                    const size_t which = static_cast<size_t>(below(static_cast<int>(longTexts_.size()), rng));
                    return text(longTexts_[which],
                                which == 0 ? "text: an enumeration list of 1 MiB" : "text: 1 MiB of words");
                }
                default: {
                    // Plausible text spoiled by an invalid code point or an unpaired surrogate.
                    std::wstring t = any(plausible, rng);
                    static const std::vector<wchar_t> bad = {static_cast<wchar_t>(0xD800), static_cast<wchar_t>(0xDC00),
                                                             static_cast<wchar_t>(0x110000),
                                                             static_cast<wchar_t>(0xFFFFFFFF), L'\0'};
                    const wchar_t b = any(bad, rng);
                    t.insert(t.begin() + below(static_cast<int>(t.size()) + 1, rng), b);
                    const std::string label = "text " + quoted(narrow(t)) + " with code unit 0x" + [&] {
                        char hex[16];
                        std::snprintf(hex, sizeof hex, "%X", static_cast<unsigned>(b));
                        return std::string(hex);
                    }();
                    return text(std::move(t), label);
                }
            }
        }
        case Datatype::Blob:
        case Datatype::Midi: {
            Input in;
            const int n = below(8, rng) == 0 ? 4096 : below(65, rng);
            in.bytes.resize(static_cast<size_t>(n));
            for (auto& b : in.bytes)
                b = static_cast<uint8_t>(rng());
            in.label = std::string(datatypeName(type)) + " of " + std::to_string(n) + " bytes";
            return in;
        }
    }
    return Input{};
}

Input Inputs::wrongSize(Datatype type, std::mt19937_64& rng) const {
    std::vector<int32_t> sizes;
    switch (type) {
        case Datatype::Int:
        case Datatype::Enum:
        case Datatype::Float:
        case Datatype::Audio:
            sizes = {0, 1, 2, 3, 5, 8, bigSize};
            break;
        case Datatype::Bool:
            sizes = {0, 2, 3, 5, 8, bigSize};
            break;
        // Any multiple of 4 is valid text; 1 MiB of random units is the long, invalid kind.
        case Datatype::Text:
            sizes = {1, 2, 3, 5, 6, 7, bigSize};
            break;
        case Datatype::Blob:
        case Datatype::Midi:
            sizes = {0, 1, 3, 5, bigSize};
            break;
    }
    const int32_t size = any(sizes, rng);
    Input in;
    if (size == bigSize) {
        in.shared = big_.data();
        in.label = std::string(datatypeName(type)) + " pin given 1 MiB";
        return in;
    }
    in.bytes.resize(static_cast<size_t>(size));
    for (auto& b : in.bytes)
        b = static_cast<uint8_t>(rng());
    // Size 0 comes both with a null pointer and with a valid one.
    in.null = size == 0 && below(2, rng) == 0;
    in.label = std::string(datatypeName(type)) + " pin given " + std::to_string(size) + " bytes" +
               (in.null ? " (null data)" : "");
    return in;
}

Input Inputs::message(std::mt19937_64& rng) const {
    static const std::vector<int32_t> sizes = {0, 1, 3, 4, 5, 8, 12, 16, 64, bigSize};
    const int32_t size = any(sizes, rng);
    Input in;
    if (size == bigSize) {
        in.shared = big_.data();
        in.label = "message of 1 MiB";
        return in;
    }
    in.bytes.resize(static_cast<size_t>(size));
    for (auto& b : in.bytes)
        b = static_cast<uint8_t>(rng());
    in.null = size == 0 && below(2, rng) == 0;
    in.label = "message of " + std::to_string(size) + " bytes" + (in.null ? " (null data)" : "");
    return in;
}

int32_t Inputs::unknownPin(int pinCount, bool openEnded, std::mt19937_64& rng) {
    if (openEnded)
        return below(2, rng) ? -1 : std::numeric_limits<int32_t>::min();
    const std::vector<int32_t> pins = {
        -1, pinCount, pinCount + 1, 1000, std::numeric_limits<int32_t>::max(), std::numeric_limits<int32_t>::min()};
    return any(pins, rng);
}

int32_t Inputs::voice(std::mt19937_64& rng) {
    static const std::vector<int32_t> voices = {1, 127, 128, -1, std::numeric_limits<int32_t>::max()};
    return below(10, rng) == 0 ? any(voices, rng) : 0;
}

float Inputs::coordinate(std::mt19937_64& rng) {
    static const std::vector<float> odd = {
        -1.0f, -1e9f, 1e9f, std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::infinity(), 0.5f};
    return below(6, rng) == 0 ? any(odd, rng) : static_cast<float>(below(200, rng));
}

}  // namespace kxhost::validate
