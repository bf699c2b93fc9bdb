// Level and pitch conversions: volts <-> dB, pitch voltage <-> Hz, MIDI note <-> pitch voltage.
#include "convert/Conversions.h"

#include <cmath>
#include <cstdint>

#include "MpFactory.h"

namespace kx {

float voltsToDb(float volts) { return 20.0f * std::log10(volts * 0.1f); }

float dbToVolts(float db) { return std::pow(10.0f, db * 0.05f) * 10.0f; }

float pitchToHz(float pitch) { return std::exp2(pitch - 5.0f) * 440.0f; }

float hzToPitch(float hz) { return std::log2(hz / 440.0f) + 5.0f; }

float midiToPitch(int note) {
    // The offset is taken in 64 bits so that notes near the int limits cannot overflow; for every note
    // the host can send this equals the 32-bit difference.
    const auto semitones = static_cast<int64_t>(note) - 69;
    return static_cast<float>(static_cast<double>(semitones) / 12.0 + 5.0);
}

int pitchToMidi(float pitch) { return truncToInt32((static_cast<double>(pitch) - 5.0) * 12.0 + 69.0); }

}  // namespace kx

namespace {
const bool registered = gmpi::Register<KX_Oct2Hz>::withId(L"KX_Oct2Hz") &&
                        gmpi::Register<KX_Hz2Oct>::withId(L"KX_Hz2Oct") &&
                        gmpi::Register<KX_V2dB>::withId(L"KX_V2dB") &&
                        gmpi::Register<KX_dB2V>::withId(L"KX_dB2V") &&
                        gmpi::Register<KX_GUI_MIDI2Pitch>::withId(L"KX_GUI_MIDI2Pitch") &&
                        gmpi::Register<KX_GUI_Pitch2MIDI>::withId(L"KX_GUI_Pitch2MIDI");
}  // namespace
