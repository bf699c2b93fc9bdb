// The host's pin datatype codes, the same on the GUI and the DSP side.
#pragma once

#include <cstdint>
#include <string>
#include <type_traits>

class MpBlob;

enum MpPinDatatype : int32_t {
    MP_DT_ENUM = 0,
    MP_DT_TEXT = 1,
    MP_DT_MIDI = 2,
    MP_DT_BOOL = 4,
    MP_DT_AUDIO = 5,
    MP_DT_FLOAT = 6,
    MP_DT_INT = 8,
    MP_DT_BLOB = 10,
};

namespace kx {

// The datatype code of the pins that carry a value of type T (int, float, bool, wide text, blob), so a
// template over the value type names its pins' code once.
template <class T>
struct DatatypeOf;
template <>
struct DatatypeOf<int> : std::integral_constant<int32_t, MP_DT_INT> {};
template <>
struct DatatypeOf<float> : std::integral_constant<int32_t, MP_DT_FLOAT> {};
template <>
struct DatatypeOf<bool> : std::integral_constant<int32_t, MP_DT_BOOL> {};
template <>
struct DatatypeOf<std::wstring> : std::integral_constant<int32_t, MP_DT_TEXT> {};
template <>
struct DatatypeOf<MpBlob> : std::integral_constant<int32_t, MP_DT_BLOB> {};

template <class T>
inline constexpr int32_t datatypeOf = DatatypeOf<T>::value;

}  // namespace kx
