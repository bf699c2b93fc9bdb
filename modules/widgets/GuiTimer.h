// KX_GUITimer: turns a boolean trigger into a timed boolean on the GUI thread — delay on, delay off, a
// delayed pulse after a rising or a falling trigger, a toggle, or an oscillator — for panel logic that
// must not wait for the audio engine.
#pragma once

#include "MpGuiBase2.h"
#include "TimerManager.h"

namespace kx::guitimer {
enum Pin : int {
    TriggerR,  // dropped until mode and both times are known
    TriggerL,  // remembered until mode and both times are known
    Mode,
    Time1,
    Time2,
    OutMirror,
    Out,
    PinCount
};
// What the mode pin selects; any other value makes triggers and ticks do nothing.
enum TimerMode : int { DelayOn, DelayOff, PulseAfterRise, PulseAfterFall, Toggle, Oscillator };
}  // namespace kx::guitimer

class KX_GUITimer : public SeGuiInvisibleBase, public TimerClient {
public:
    KX_GUITimer();

    void onSetTriggerR();
    void onSetTriggerL();
    void onSetMode();
    void onSetT1();
    void onSetT2();
    bool OnTimer() override;

private:
    void onSetTrigger(bool trigger);
    // Both outputs always carry one value; the primary is sent first and nothing is sent unchanged.
    void setOutput(bool value);
    bool configured() const { return mode_ != -1 && t1_ != -1 && t2_ != -1; }
    void replayPending();

    MpGuiPin<bool> triggerR_;
    MpGuiPin<bool> triggerL_;
    MpGuiPin<int> modePin_;
    MpGuiPin<int> time1_;
    MpGuiPin<int> time2_;
    MpGuiPin<bool> outMirror_;
    MpGuiPin<bool> out_;

    // -1 until received; received times below 0 are kept as 0.
    int t1_ = -1;
    int t2_ = -1;
    int mode_ = -1;
    bool pending_ = false;
    bool state_ = false;
};
