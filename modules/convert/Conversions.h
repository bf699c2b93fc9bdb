// Level and pitch conversions: two pins that hold one quantity in two units; a change on either pin
// rewrites the other, so the module can sit between two controls that edit the same value. Each
// identifier of a mirrored pair is the same converter with its pins in the other order.
//
// Units follow the host's control-voltage conventions: 10 V is 0 dB; pitch voltage 5 is 440 Hz and MIDI
// note 69; one unit of pitch voltage is one octave. Nothing is clamped: 0 V gives -inf dB, negative
// volts or hertz give NaN, notes are not limited to 0..127; such values are sent as they are.
#pragma once

#include "ModuleSupport.h"
#include "MpGuiBase2.h"

namespace kx::v2db {
enum Pin : int { Volts, Decibels, PinCount };
}
namespace kx::db2v {
enum Pin : int { Decibels, Volts, PinCount };
}
namespace kx::oct2hz {
enum Pin : int { Pitch, Hertz, PinCount };
}
namespace kx::hz2oct {
enum Pin : int { Hertz, Pitch, PinCount };
}
namespace kx::midi2pitch {
enum Pin : int { Midi, Pitch, PinCount };
}
namespace kx::pitch2midi {
enum Pin : int { Pitch, Midi, PinCount };
}

namespace kx {

// Single precision, with the single-precision library functions.
float voltsToDb(float volts);
float dbToVolts(float db);
float pitchToHz(float pitch);
float hzToPitch(float hz);
// In double precision, narrowed at the end.
float midiToPitch(int note);
// Truncated toward zero, not rounded: a pitch a hair below a semitone gives the semitone below. NaN and
// results outside the 32-bit range give INT_MIN.
int pitchToMidi(float pitch);

}  // namespace kx

// Volts and decibels. The two conversions are inverse up to float precision, so the host's echo of a
// written value converts back to (nearly) the value that caused it and the equality test stops it.
template <int VoltsPin>
class LevelConverter : public SeGuiInvisibleBase {
public:
    LevelConverter() {
        if constexpr (VoltsPin == 0) {
            initializePin(volts, &LevelConverter::onSetV);
            initializePin(decibels, &LevelConverter::onSetdB);
        } else {
            initializePin(decibels, &LevelConverter::onSetdB);
            initializePin(volts, &LevelConverter::onSetV);
        }
    }
    void onSetV() { decibels = kx::voltsToDb(volts); }
    void onSetdB() { volts = kx::dbToVolts(decibels); }

    MpGuiPin<float> volts;
    MpGuiPin<float> decibels;
};

// Pitch voltage and hertz; as the level converter, no echo guard is needed.
template <int PitchPin>
class OctaveConverter : public SeGuiInvisibleBase {
public:
    OctaveConverter() {
        if constexpr (PitchPin == 0) {
            initializePin(pitch, &OctaveConverter::onSetOct);
            initializePin(hertz, &OctaveConverter::onSetHz);
        } else {
            initializePin(hertz, &OctaveConverter::onSetHz);
            initializePin(pitch, &OctaveConverter::onSetOct);
        }
    }
    void onSetOct() { hertz = kx::pitchToHz(pitch); }
    void onSetHz() { pitch = kx::hzToPitch(hertz); }

    MpGuiPin<float> pitch;
    MpGuiPin<float> hertz;
};

// MIDI note and pitch voltage. The note conversion quantises to semitones, so an echoed value must not
// be converted back. The guard follows the pin order, not the direction: the handler of pin 1 holds the
// flag while it writes pin 0, and pin 0's handler does nothing while the flag is held. A change arriving
// on pin 0 from elsewhere still converts into pin 1.
template <int MidiPin>
class MidiPitchConverter : public SeGuiInvisibleBase {
public:
    MidiPitchConverter() {
        if constexpr (MidiPin == 0) {
            initializePin(midi, &MidiPitchConverter::onSetMIDI);
            initializePin(pitch, &MidiPitchConverter::onSetPitch);
        } else {
            initializePin(pitch, &MidiPitchConverter::onSetPitch);
            initializePin(midi, &MidiPitchConverter::onSetMIDI);
        }
    }
    void onSetMIDI() {
        convertFrom(MidiPin, [this] { pitch = kx::midiToPitch(midi); });
    }
    void onSetPitch() {
        convertFrom(1 - MidiPin, [this] { midi = kx::pitchToMidi(pitch); });
    }

    MpGuiPin<int> midi;
    MpGuiPin<float> pitch;

private:
    template <class Write>
    void convertFrom(int changedPin, Write write) {
        if (changedPin == 1) {
            kx::ReentryFlag hold(reentering_);
            write();
        } else if (!reentering_) {
            write();
        }
    }

    bool reentering_ = false;
};

class KX_V2dB : public LevelConverter<kx::v2db::Volts> {};
class KX_dB2V : public LevelConverter<kx::db2v::Volts> {};
class KX_Oct2Hz : public OctaveConverter<kx::oct2hz::Pitch> {};
class KX_Hz2Oct : public OctaveConverter<kx::hz2oct::Pitch> {};
class KX_GUI_MIDI2Pitch : public MidiPitchConverter<kx::midi2pitch::Midi> {};
class KX_GUI_Pitch2MIDI : public MidiPitchConverter<kx::pitch2midi::Midi> {};
