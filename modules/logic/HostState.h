// Host-state modules: the engine's sample rate brought into the GUI graph, and GUI-side changes turned
// into a pulse on an audio signal.
#pragma once

#include <string>

#include "MpBase2.h"
#include "MpGuiBase2.h"

// DSP half of the sample-rate pair: asks the engine for its rate when opened and tells the GUI half.
class KX_GUISampleRate : public MpBase2 {
public:
    int32_t open() override;

    float sampleRate = 0.0f;
};

// GUI half: shows the default rate until the engine has reported its own, and the engine's from then on.
class KX_GUISampleRateGUI : public SeGuiInvisibleBase {
public:
    enum Pins { pinDefaultIndex, pinSampleRateIndex, pinCount };

    KX_GUISampleRateGUI();
    int32_t receiveMessageFromAudio(int32_t id, int32_t size, const void* data) override;
    void onSetDefault();

    MpGuiPin<float> pinDefault;
    MpGuiPin<float> pinSampleRate;

private:
    bool received = false;
};

// GUI half of set-to-trigger: its output toggles once per change of any watched pin, so that the DSP
// half, wired to it, sees one pin update per change.
class KX_GUISet2TrigGUI : public SeGuiInvisibleBase {
public:
    enum Pins { pinWatched0, pinWatchedLast = 9, pinToggleIndex, pinCount };
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

// DSP half of set-to-trigger: every update of the trigger pin, whatever its value, starts a pulse of
// the set length on the audio output (optionally inverted); the first trigger may be ignored, which
// swallows the update caused by the GUI half's first value.
class KX_GUISet2Trig : public MpBase2 {
public:
    enum Pins { pinTriggerIndex, pinIgnoreFirstIndex, pinPulseLengthIndex, pinInvertIndex, pinSignalIndex, pinCount };

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
