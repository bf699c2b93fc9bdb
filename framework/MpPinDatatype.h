// The host's pin datatype codes, the same on the GUI and the DSP side.
#pragma once

#include <cstdint>

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
