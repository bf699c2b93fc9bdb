// KX_GUITimer: turns a boolean trigger into a timed boolean on the GUI thread — delay on, delay off, a
// delayed pulse after a rising or a falling trigger, a toggle, or an oscillator — for panel logic that
// must not wait for the audio engine.
#pragma once

#include "MpGuiBase2.h"
#include "TimerManager.h"

enum GuiTimerPins {
    kGuiTimerTriggerR,  // dropped until mode and both times are known
    kGuiTimerTriggerL,  // remembered until mode and both times are known
    kGuiTimerMode,
    kGuiTimerTime1,
    kGuiTimerTime2,
    kGuiTimerOutMirror,
    kGuiTimerOut,
    kGuiTimerPinCount
};

class KX_GUITimer : public SeGuiInvisibleBase, public TimerClient {
public:
    enum Mode { kDelayOn, kDelayOff, kPulseAfterRise, kPulseAfterFall, kToggle, kOscillator };

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
