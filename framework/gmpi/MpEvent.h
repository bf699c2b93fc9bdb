// The host's time-stamped event record, delivered to DSP halves in a list per block.
#pragma once

#include <cstdint>

namespace gmpi {

enum MpEventType : int32_t {
    EVENT_PIN_SET = 100,              // a pin's value changed
    EVENT_PIN_STREAMING_START = 101,  // an audio pin started streaming
    EVENT_PIN_STREAMING_STOP = 102,   // an audio pin stopped streaming
    EVENT_MIDI = 103,                 // MIDI bytes on a MIDI pin
    EVENT_GRAPH_START = 104,          // first event the module ever sees
};

struct MpEvent {
    int32_t timeDelta;  // sample offset in the block
    int32_t eventType;  // MpEventType
    int32_t parm1;      // pin index
    int32_t parm2;      // data size in bytes
    int32_t parm3;      // the first 4 data bytes, when the data fits in 8
    int32_t parm4;      // the next 4 data bytes
    char* extraData;    // the data, when it does not fit in 8 bytes; owned by the host
    MpEvent* next;      // next event of the block, or null
};

}  // namespace gmpi

static_assert(sizeof(gmpi::MpEvent) == 6 * 4 + 2 * sizeof(void*), "event record layout is the host's");
