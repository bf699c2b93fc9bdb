// KX_GUISampleRate: the engine's sample rate brought into the GUI graph, for panel logic that shows or
// computes with it.
#pragma once

#include "MpBase2.h"
#include "MpGuiBase2.h"

// The DSP half binds no pins.
namespace kx::samplerate::gui {
enum Pin : int { Default, SampleRate, PinCount };
}

// DSP half: asks the engine for its rate when opened and tells the GUI half.
class KX_GUISampleRate : public MpBase2 {
public:
    int32_t open() override;

    float sampleRate = 0.0f;
};

// GUI half: shows the default rate until the engine has reported its own, and the engine's from then on.
class KX_GUISampleRateGUI : public SeGuiInvisibleBase {
public:
    KX_GUISampleRateGUI();
    int32_t receiveMessageFromAudio(int32_t id, int32_t size, const void* data) override;
    void onSetDefault();

    MpGuiPin<float> pinDefault;
    MpGuiPin<float> pinSampleRate;

private:
    bool received = false;
};
