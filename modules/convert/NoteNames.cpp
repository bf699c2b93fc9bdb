// Note names for MIDI notes and pitch voltages.
#include "convert/NoteNames.h"

#include <cstdint>

#include "MpFactory.h"

namespace {

// Wraps like 32-bit processor arithmetic instead of overflowing into undefined behaviour; only notes
// within 9 of the int limits, or absurd octave numbers, ever reach the wrap.
int32_t wrapToInt32(int64_t value) { return static_cast<int32_t>(static_cast<uint32_t>(static_cast<uint64_t>(value))); }

int32_t semitonesAboveA0(int note) { return wrapToInt32(static_cast<int64_t>(note) - 9); }

}  // namespace

// Division truncates toward zero and the remainder keeps the sign of the dividend.
int KX_MIDI2Note::keyOf(int note) { return semitonesAboveA0(note) % 12; }

int KX_MIDI2Note::octaveOf(int note) { return semitonesAboveA0(note) / 12; }

int KX_MIDI2Note::noteOf(int key, int octave) {
    return wrapToInt32(static_cast<int64_t>(key) + 12 * static_cast<int64_t>(octave) + 9);
}

int KX_Pitch2Note::keyOf(float pitch) { return kx::truncToInt32(pitch * 12.0f) % 12; }

int KX_Pitch2Note::octaveOf(float pitch) { return kx::truncToInt32(pitch); }

float KX_Pitch2Note::noteOf(int key, int octave) {
    return static_cast<float>(key) / 12.0f + static_cast<float>(octave);
}

namespace {
const bool registered = gmpi::Register<KX_MIDI2Note>::withId(L"KX_MIDI2Note") &&
                        gmpi::Register<KX_Pitch2Note>::withId(L"KX_Pitch2Note");
}  // namespace
