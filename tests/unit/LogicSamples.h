// Two distinct sample values per pin value type, and their raw pin bytes, for typed tests of the logic
// module templates.
#pragma once

#include <cstring>
#include <string>
#include <vector>

#include "FakeGuiHost.h"
#include "MpBlob.h"

namespace kxtest {

using Bytes = std::vector<unsigned char>;

template <class T>
struct Sample;
template <>
struct Sample<int> {
    static int first() { return 7; }
    static int second() { return -8; }
};
template <>
struct Sample<float> {
    static float first() { return 1.5f; }
    static float second() { return -2.25f; }
};
template <>
struct Sample<bool> {
    // Pins start false, so the first sample must differ from that.
    static bool first() { return true; }
    static bool second() { return false; }
};
template <>
struct Sample<std::wstring> {
    static std::wstring first() { return L"abc"; }
    static std::wstring second() { return L"h\u00e9llo \U0001F600"; }
};
template <>
struct Sample<MpBlob> {
    static MpBlob first() { return MpBlob(3, "\x01\x02\x03"); }
    static MpBlob second() { return MpBlob(1, "\x09"); }
};

inline Bytes raw(int v) {
    return Bytes(reinterpret_cast<unsigned char*>(&v), reinterpret_cast<unsigned char*>(&v) + 4);
}
inline Bytes raw(float v) {
    return Bytes(reinterpret_cast<unsigned char*>(&v), reinterpret_cast<unsigned char*>(&v) + 4);
}
inline Bytes raw(bool v) { return Bytes{static_cast<unsigned char>(v ? 1 : 0)}; }
inline Bytes raw(const std::wstring& v) {
    const auto* p = reinterpret_cast<const unsigned char*>(v.data());
    return Bytes(p, p + v.size() * sizeof(wchar_t));
}
inline Bytes raw(const MpBlob& v) {
    const auto* p = reinterpret_cast<const unsigned char*>(v.getData());
    return Bytes(p, p + v.getSize());
}

// Stores raw bytes on a pin, like the host's setPin, without announcing them.
template <class M>
void store(M& module, int pin, const Bytes& bytes) {
    module.setPin(pin, 0, static_cast<int32_t>(bytes.size()), bytes.data());
}
// setPin then notifyPin, with raw bytes.
template <class M>
void send(M& module, int pin, const Bytes& bytes) {
    store(module, pin, bytes);
    module.notifyPin(pin, 0);
}

// The (pin, bytes) pairs the host received, in order.
inline std::vector<std::pair<int, Bytes>> traffic(const FakeGuiHost& host) {
    std::vector<std::pair<int, Bytes>> r;
    for (const auto& t : host.sent)
        r.emplace_back(t.pin, t.bytes);
    return r;
}

// Makes the host deliver every value a module transmits back into the same pin (setPin, then
// notifyPin), as a host does for a pin that is also a parameter. The bytes are copied first: the
// module's own storage may change during the echo.
template <class M>
void echoInto(FakeGuiHost& host, M& module) {
    host.onTransmit = [&module](int pin, int size, const void* data) {
        const auto* p = static_cast<const unsigned char*>(data);
        const Bytes copy(p, p + (size > 0 ? size : 0));
        module.setPin(pin, 0, static_cast<int32_t>(copy.size()), copy.data());
        module.notifyPin(pin, 0);
    };
}

}  // namespace kxtest
