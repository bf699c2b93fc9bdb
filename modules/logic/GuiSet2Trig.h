// KX_GUISet2Trig: GUI-side changes turned into a pulse on an audio signal, so that an edit on the panel
// can start something in the audio graph.
#pragma once

#include "MpBase2.h"
#include "MpGuiBase2.h"

namespace kx::set2trig {
namespace gui {
// Ten watched pins (float, int, text, bool, blob, twice), then the toggling output.
enum Pin : int { FirstWatched, LastWatched = FirstWatched + 9, Toggle, PinCount };
}  // namespace gui
namespace dsp {
enum Pin : int { Trigger, IgnoreFirst, PulseLength, Invert, Signal, PinCount };
}
}  // namespace kx::set2trig

// GUI half: its output toggles once per change of any watched pin, so that the DSP half, wired to it,
// sees one pin update per change.
class KX_GUISet2TrigGUI : public SeGuiInvisibleBase {
public:
    // The host's delivery of initial values: this many notifications never trigger, whatever the number
    // of pins wired.
    static constexpr int warmUpNotifications = 5;

    KX_GUISet2TrigGUI();
    void onSetPins();

    MpGuiPin<float> pinFloat1;
    MpGuiPin<int> pinInt1;
    StringGuiPin pinText1;
    MpGuiPin<bool> pinBool1;
    MpGuiPin<MpBlob> pinBlob1;
    MpGuiPin<float> pinFloat2;
    MpGuiPin<int> pinInt2;
    StringGuiPin pinText2;
    MpGuiPin<bool> pinBool2;
    MpGuiPin<MpBlob> pinBlob2;
    MpGuiPin<bool> pinToggle;

private:
    bool toggle = true;
    int notifications = 0;
};

// DSP half: every update of the trigger pin, whatever its value, starts a pulse of the set length on the
// audio output (optionally inverted); the first trigger may be ignored, which swallows the update caused
// by the GUI half's first value.
class KX_GUISet2Trig : public MpBase2 {
public:
    KX_GUISet2Trig();
    void onSetPins() override;
    void subProcess(int sampleFrames);

    BoolInPin pinTrigger;
    BoolInPin pinIgnoreFirst;
    IntInPin pinPulseLength;
    BoolInPin pinInvert;
    AudioOutPin pinSignal;

private:
    int32_t pulseLength = 1000;
    int32_t samplesRemaining = 0;
    bool firstTrigger = true;
    bool invert = false;
    bool ignoreFirst = false;
};
