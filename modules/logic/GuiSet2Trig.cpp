#include "logic/GuiSet2Trig.h"

#include <initializer_list>

#include "MpFactory.h"

// ---- GUI half

KX_GUISet2TrigGUI::KX_GUISet2TrigGUI() {
    for (MpGuiPinBase* pin :
         std::initializer_list<MpGuiPinBase*>{&pinFloat1, &pinInt1, &pinText1, &pinBool1, &pinBlob1, &pinFloat2,
                                              &pinInt2, &pinText2, &pinBool2, &pinBlob2})
        initializePin(*pin, &KX_GUISet2TrigGUI::onSetPins);
    initializePin(pinToggle);
}

void KX_GUISet2TrigGUI::onSetPins() {
    if (notifications < warmUpNotifications) {
        ++notifications;
        return;
    }
    pinToggle = toggle;
    toggle = !toggle;
}

// ---- DSP half

KX_GUISet2Trig::KX_GUISet2Trig() {
    initializePin(pinTrigger);
    initializePin(pinIgnoreFirst);
    initializePin(pinPulseLength);
    initializePin(pinInvert);
    initializePin(pinSignal);
    setSubProcess(&KX_GUISet2Trig::subProcess);
    setSleep(true);
}

void KX_GUISet2Trig::onSetPins() {
    if (pinIgnoreFirst.isUpdated())
        ignoreFirst = pinIgnoreFirst.getValue();
    if (pinPulseLength.isUpdated())
        pulseLength = pinPulseLength.getValue() < 1 ? 1 : pinPulseLength.getValue();
    if (pinInvert.isUpdated())
        invert = pinInvert.getValue();
    if (!pinTrigger.isUpdated())
        return;
    // Only a swallowed trigger clears the first-trigger flag, so ignore-first turned on later still
    // swallows the next trigger.
    if (ignoreFirst && firstTrigger) {
        firstTrigger = false;
        return;
    }
    samplesRemaining = pulseLength;  // a retrigger restarts the full length
    setSleep(false);
    pinSignal.setStreaming(true);
}

void KX_GUISet2Trig::subProcess(int sampleFrames) {
    float* out = pinSignal.getBuffer();
    const float pulseLevel = invert ? 0.0f : 1.0f;
    const float idleLevel = invert ? 1.0f : 0.0f;
    int i = 0;
    for (; i < sampleFrames && samplesRemaining > 0; ++i, --samplesRemaining)
        if (out)
            out[i] = pulseLevel;
    if (samplesRemaining > 0)
        return;
    // A pulse that fills the run to its end stops at the start of the next run: a time stamp is an
    // offset inside the block, and the end of this run may be the end of the block. Staying awake until
    // then lets the next block carry the stop.
    if (i == sampleFrames && pinSignal.isStreaming())
        return;
    if (pinSignal.isStreaming())
        pinSignal.setStreaming(false, blockPosition + i);
    setSleep(true);
    if (out)
        for (; i < sampleFrames; ++i)
            out[i] = idleLevel;
}

namespace {
const bool registered = gmpi::Register<KX_GUISet2Trig>::withId(L"KX_GUISet2Trig") &&
                        gmpi::Register<KX_GUISet2TrigGUI>::withId(L"KX_GUISet2Trig");
}  // namespace
