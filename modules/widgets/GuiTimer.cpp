#include "widgets/GuiTimer.h"

#include "MpFactory.h"

KX_GUITimer::KX_GUITimer() {
    initializePin(triggerR_, &KX_GUITimer::onSetTriggerR);
    initializePin(triggerL_, &KX_GUITimer::onSetTriggerL);
    initializePin(modePin_, &KX_GUITimer::onSetMode);
    initializePin(time1_, &KX_GUITimer::onSetT1);
    initializePin(time2_, &KX_GUITimer::onSetT2);
    initializePin(outMirror_);
    initializePin(out_);
}

void KX_GUITimer::setOutput(bool value) {
    out_ = value;
    outMirror_ = out_.getValue();
    state_ = outMirror_;
}

void KX_GUITimer::onSetTriggerR() {
    if (configured())
        onSetTrigger(triggerR_);
}

void KX_GUITimer::onSetTriggerL() {
    if (configured())
        onSetTrigger(triggerL_);
    else
        pending_ = true;
}

// Whichever of mode, time 1 and time 2 arrives last replays a trigger L that came too early, with the
// value pin L holds by then.
void KX_GUITimer::replayPending() {
    if (!configured() || !pending_)
        return;
    pending_ = false;
    onSetTrigger(triggerL_);
}

void KX_GUITimer::onSetMode() {
    mode_ = modePin_;
    StopTimer();
    setOutput(false);
    // A mode pin carrying -1 counts as not received: the pending trigger stays pending.
    replayPending();
}

void KX_GUITimer::onSetT1() {
    t1_ = time1_ < 0 ? 0 : time1_.getValue();
    replayPending();
}

void KX_GUITimer::onSetT2() {
    t2_ = time2_ < 0 ? 0 : time2_.getValue();
    replayPending();
}

// Delay on and the rising-edge pulse start with the time-1 pin as it stands, not the clamped t1: a
// negative time reaches the timer service unchanged, as patches built on this module expect.
void KX_GUITimer::onSetTrigger(bool trigger) {
    switch (mode_) {
        case kx::guitimer::DelayOn:
            if (trigger) {
                StartTimer(time1_);
            } else {
                StopTimer();
                setOutput(false);
            }
            break;
        case kx::guitimer::DelayOff:
            if (trigger) {
                setOutput(true);
                StopTimer();
            } else {
                StartTimer(t1_);
            }
            break;
        case kx::guitimer::PulseAfterRise:
            if (trigger)
                StartTimer(time1_);
            break;
        case kx::guitimer::PulseAfterFall:
            if (!trigger)
                StartTimer(t1_);
            break;
        case kx::guitimer::Toggle:
            if (trigger)
                setOutput(!state_);
            break;
        case kx::guitimer::Oscillator:
            if (trigger) {
                StartTimer(t1_);
                setOutput(true);
            } else {
                StopTimer();
                setOutput(false);
            }
            break;
        default:
            break;
    }
}

bool KX_GUITimer::OnTimer() {
    switch (mode_) {
        case kx::guitimer::DelayOn:
            setOutput(true);
            return false;
        case kx::guitimer::DelayOff:
            setOutput(false);
            return false;
        case kx::guitimer::PulseAfterRise:
        case kx::guitimer::PulseAfterFall:
            if (!state_) {
                // The pulse begins and lasts t2.
                StopTimer();
                StartTimer(t2_);
                setOutput(true);
                return true;
            }
            setOutput(false);
            return false;
        case kx::guitimer::Oscillator: {
            // True for t1, false for t2: each phase re-registers under the next phase's interval.
            const bool wasOn = state_;
            StopTimer();
            if (wasOn) {
                StartTimer(t2_);
                state_ = false;
                setOutput(false);
            } else {
                StartTimer(t1_);
                state_ = true;
                setOutput(true);
            }
            return true;
        }
        default:
            return false;
    }
}

namespace {
const bool registered = gmpi::Register<KX_GUITimer>::withId(L"KX_GUITimer");
}
