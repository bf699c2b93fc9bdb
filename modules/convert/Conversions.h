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

// Pin orders of the six identifiers.
struct V2dBPin { enum : int { Volts, Decibels, Count }; };
struct DB2VPin { enum : int { Decibels, Volts, Count }; };
struct Oct2HzPin { enum : int { Pitch, Hertz, Count }; };
struct Hz2OctPin { enum : int { Hertz, Pitch, Count }; };
struct Midi2PitchPin { enum : int { Midi, Pitch, Count }; };
struct Pitch2MidiPin { enum : int { Pitch, Midi, Count }; };

// Volts and decibels. The two conversions are inverse up to float precision, so the host's echo of a
// written value converts back to (nearly) the value that caused it and the equality test stops it.
template <int VoltsPin>
class LevelConverter : public SeGuiInvisibleBase {
public:
    LevelConverter() {
        if constexpr (VoltsPin == 0) {
            initializePin(0, volts, &LevelConverter::onSetV);
            initializePin(1, decibels, &LevelConverter::onSetdB);
        } else {
            initializePin(0, decibels, &LevelConverter::onSetdB);
            initializePin(1, volts, &LevelConverter::onSetV);
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
            initializePin(0, pitch, &OctaveConverter::onSetOct);
            initializePin(1, hertz, &OctaveConverter::onSetHz);
        } else {
            initializePin(0, hertz, &OctaveConverter::onSetHz);
            initializePin(1, pitch, &OctaveConverter::onSetOct);
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
            initializePin(0, midi, &MidiPitchConverter::onSetMIDI);
            initializePin(1, pitch, &MidiPitchConverter::onSetPitch);
        } else {
            initializePin(0, pitch, &MidiPitchConverter::onSetPitch);
            initializePin(1, midi, &MidiPitchConverter::onSetMIDI);
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

class KX_V2dB : public LevelConverter<V2dBPin::Volts> {};
class KX_dB2V : public LevelConverter<DB2VPin::Volts> {};
class KX_Oct2Hz : public OctaveConverter<Oct2HzPin::Pitch> {};
class KX_Hz2Oct : public OctaveConverter<Hz2OctPin::Pitch> {};
class KX_GUI_MIDI2Pitch : public MidiPitchConverter<Midi2PitchPin::Midi> {};
class KX_GUI_Pitch2MIDI : public MidiPitchConverter<Pitch2MidiPin::Midi> {};
