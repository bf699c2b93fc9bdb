// KX_RadioButtons: ties a selection number to a row of on/off button pins so that one button (or, when
// counting from one, at most one) is on. KX_ToggleSwitch: flips two boolean pins on every press.
#pragma once

#include "MpGuiBase2.h"
#include "TimerManager.h"

namespace kx::radio {
// PinCount counts the pins the module binds; every further pin the host reports, from FirstButton on, is
// a button, float 1.0 on / 0.0 off.
enum Pin : int {
    Selection,
    OneBased,  // false: buttons count from 0; true: from 1, and 0 selects none
    PinCount,
    FirstButton = PinCount
};
}  // namespace kx::radio
namespace kx::toggleswitch {
enum Pin : int { StateA, StateB, PointerDown, PinCount };
}

class KX_RadioButtons : public SeGuiInvisibleBase, public TimerClient {
public:
    KX_RadioButtons();

    int32_t initialize() override;
    // Button pins are not bound: a host update of one changes the selection here, and a timer tick later
    // every button is rewritten so that the others turn off.
    int32_t setPin(int32_t pinId, int32_t voice, int32_t size, const void* data) override;
    // A button update was handled by setPin already: its announcement succeeds with nothing more to do.
    int32_t notifyPin(int32_t pinId, int32_t voice) override;
    void onSetValue();
    bool OnTimer() override;

    int buttonCount() const { return buttonCount_; }

private:
    void onSetButton(int button, int32_t size, const void* data);

    MpGuiPin<int> selection_;
    MpGuiPin<bool> oneBased_;
    const int firstButtonPin_ = kx::radio::FirstButton;
    // Known from initialize on: the host's pin count less the fixed pins.
    int buttonCount_ = 0;
};

class KX_ToggleSwitch : public SeGuiInvisibleBase {
public:
    KX_ToggleSwitch();
    // Every update carrying true toggles both states; there is no edge detection.
    void onSetMouseDown();

private:
    MpGuiPin<bool> stateA_;
    MpGuiPin<bool> stateB_;
    MpGuiPin<bool> pointerDown_;
};
