#include "widgets/RadioButtons.h"

#include <algorithm>
#include <cstring>

#include "MpCountedPtr.h"
#include "MpFactory.h"

KX_RadioButtons::KX_RadioButtons() {
    initializePin(selection_, &KX_RadioButtons::onSetValue);
    initializePin(oneBased_, &KX_RadioButtons::onSetValue);
    // The re-assertion should follow a click closely; this sets the default of the whole process.
    SetTimerIntervalMs(10);
}

int32_t KX_RadioButtons::initialize() {
    const int32_t result = SeGuiInvisibleBase::initialize();
    if (auto firstGeneration = gmpi_sdk::queryAs<gmpi::IMpUserInterfaceHost>(host, gmpi::MP_IID_UI_HOST)) {
        int32_t pinCount = 0;
        if (firstGeneration->getPinCount(pinCount) == gmpi::MP_OK)
            buttonCount_ = std::max(pinCount, int32_t{kx::radio::PinCount}) - kx::radio::PinCount;
    }
    onSetValue();
    return result;
}

void KX_RadioButtons::onSetValue() {
    if (buttonCount_ <= 0)
        return;
    const int selected = oneBased_ ? std::clamp(selection_.getValue(), 0, buttonCount_) - 1
                                   : std::clamp(selection_.getValue(), 0, buttonCount_ - 1);
    for (int i = 0; i < buttonCount_; ++i) {
        const float value = i == selected ? 1.0f : 0.0f;
        pinTransmit(firstButtonPin_ + i, sizeof(value), &value, 0);
    }
}

int32_t KX_RadioButtons::setPin(int32_t pinId, int32_t voice, int32_t size, const void* data) {
    const int32_t result = SeGuiInvisibleBase::setPin(pinId, voice, size, data);
    if (!data || size <= 0 || pinId < firstButtonPin_)
        return result;
    onSetButton(pinId - firstButtonPin_, size, data);
    return gmpi::MP_OK;
}

int32_t KX_RadioButtons::notifyPin(int32_t pinId, int32_t voice) {
    if (pinId >= firstButtonPin_)
        return gmpi::MP_OK;
    return SeGuiInvisibleBase::notifyPin(pinId, voice);
}

void KX_RadioButtons::onSetButton(int button, int32_t size, const void* data) {
    if (!oneBased_) {
        // Any update of a button selects it, even one turning it off: the tick turns it back on.
        if (button != selection_)
            selection_ = button;
        StartTimer();
        return;
    }
    // Counting from one the value matters, and a value shorter than a float is not one.
    if (size < static_cast<int32_t>(sizeof(float)))
        return;
    float value;
    std::memcpy(&value, data, sizeof(value));
    const int number = button + 1;
    if (value == 1.0f) {
        if (number != selection_)
            selection_ = number;
    } else if (number == selection_ && selection_ != 0) {
        // The selected button turned off by the user stays off: nothing is selected.
        selection_ = 0;
    }
    StartTimer();
}

bool KX_RadioButtons::OnTimer() {
    onSetValue();
    return false;
}

KX_ToggleSwitch::KX_ToggleSwitch() {
    initializePin(stateA_);
    initializePin(stateB_);
    initializePin(pointerDown_, &KX_ToggleSwitch::onSetMouseDown);
}

void KX_ToggleSwitch::onSetMouseDown() {
    if (!pointerDown_)
        return;
    stateA_ = !stateA_;
    stateB_ = !stateB_;
}

namespace {
const bool registered = gmpi::Register<KX_RadioButtons>::withId(L"KX_RadioButtons") &&
                        gmpi::Register<KX_ToggleSwitch>::withId(L"KX_ToggleSwitch");
}
