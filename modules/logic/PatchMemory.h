// Patch memory: one host parameter of a value type joined to the patch. The DSP half hands the
// parameter's value into the audio graph; the GUI half mirrors the parameter's value, name, normalised
// position, menu and grab state between the parameter-bound pins and the module's own pins.
#pragma once

#include <string>

#include "MpBase2.h"
#include "MpGuiBase2.h"

// DSP half, all six types: the parameter's value (pin 0) is handed on (pin 1) when it changes. Text is
// handed on after every change batch, unchanged or not.
template <class T, int datatype>
class KX_PM_DSP : public MpBase2 {
public:
    enum Pins { pinValueInIndex, pinValueOutIndex, pinCount };

    KX_PM_DSP() {
        initializePin(pinValueIn);
        initializePin(pinValueOut);
    }

    void onSetPins() override {
        if constexpr (datatype != MP_DT_TEXT)
            if (pinValueOut.getValue() == pinValueIn.getValue())
                return;
        pinValueOut = pinValueIn.getValue();
    }

    MpControlPin<T, MP_IN, datatype> pinValueIn;
    MpControlPin<T, MP_OUT, datatype> pinValueOut;
};

using KX_PM_INT_DSP = KX_PM_DSP<int, MP_DT_INT>;
using KX_PM_FLOAT_DSP = KX_PM_DSP<float, MP_DT_FLOAT>;
using KX_PM_BOOL_DSP = KX_PM_DSP<bool, MP_DT_BOOL>;
using KX_PM_TEXT_DSP = KX_PM_DSP<std::wstring, MP_DT_TEXT>;
using KX_PM_BLOB_DSP = KX_PM_DSP<MpBlob, MP_DT_BLOB>;
using KX_PM_LIST_DSP = KX_PM_DSP<int, MP_DT_ENUM>;

namespace kx::pm {
// Copies one pin's value to another unless they are equal already (floats: IEEE, so a NaN is always
// copied).
template <class From, class To>
void copyWhenDifferent(const From& from, To& to) {
    if (!(from.getValue() == to.getValue()))
        to = from.getValue();
}
}  // namespace kx::pm

// GUI half for int, float and bool. Name, value and normalised position travel both ways; menu items
// only from the parameter to the patch; menu selection and mouse-down only from the patch to the
// parameter.
template <class T>
class KX_PM_ScalarGUI : public SeGuiInvisibleBase {
public:
    enum Pins {
        pinParNameIndex,
        pinParValueIndex,
        pinParNormIndex,
        pinParMenuItemsIndex,
        pinParMenuSelIndex,
        pinParGrabIndex,
        pinNameIndex,
        pinValueIndex,
        pinAnimPosIndex,
        pinMenuItemsIndex,
        pinMenuSelIndex,
        pinMouseDownIndex,
        pinCount
    };

    KX_PM_ScalarGUI() {
        initializePin(pinParName, &KX_PM_ScalarGUI::onSetParName);
        initializePin(pinParValue, &KX_PM_ScalarGUI::onSetParIO);
        initializePin(pinParNorm, &KX_PM_ScalarGUI::onSetParNorm);
        initializePin(pinParMenuItems, &KX_PM_ScalarGUI::onSetParMenuItems);
        initializePin(pinParMenuSel);
        initializePin(pinParGrab);
        initializePin(pinName, &KX_PM_ScalarGUI::onSetName);
        initializePin(pinValue, &KX_PM_ScalarGUI::onSetValue);
        initializePin(pinAnimPos, &KX_PM_ScalarGUI::onSetAnimPos);
        initializePin(pinMenuItems);
        initializePin(pinMenuSel, &KX_PM_ScalarGUI::onSetMenuSel);
        initializePin(pinMouseDown, &KX_PM_ScalarGUI::onSetMouseDown);
    }

    void onSetParName() { pinName = pinParName.getValue(); }
    void onSetName() { pinParName = pinName.getValue(); }
    void onSetParIO() { kx::pm::copyWhenDifferent(pinParValue, pinValue); }
    void onSetValue() { kx::pm::copyWhenDifferent(pinValue, pinParValue); }
    // The host echoes a write to the normalised pin back into it; the flag keeps that echo from being
    // written to the animation position a second time.
    void onSetParNorm() {
        if (!writingPosition)
            kx::pm::copyWhenDifferent(pinParNorm, pinAnimPos);
    }
    void onSetAnimPos() {
        struct Writing {
            bool& flag;
            explicit Writing(bool& f) : flag(f) { flag = true; }
            ~Writing() { flag = false; }
        } guard(writingPosition);
        kx::pm::copyWhenDifferent(pinAnimPos, pinParNorm);
    }
    void onSetParMenuItems() { pinMenuItems = pinParMenuItems.getValue(); }
    void onSetMenuSel() { kx::pm::copyWhenDifferent(pinMenuSel, pinParMenuSel); }
    void onSetMouseDown() { kx::pm::copyWhenDifferent(pinMouseDown, pinParGrab); }

    StringGuiPin pinParName;
    MpGuiPin<T> pinParValue;
    MpGuiPin<float> pinParNorm;
    StringGuiPin pinParMenuItems;
    MpGuiPin<int> pinParMenuSel;
    MpGuiPin<bool> pinParGrab;
    StringGuiPin pinName;
    MpGuiPin<T> pinValue;
    MpGuiPin<float> pinAnimPos;
    StringGuiPin pinMenuItems;
    MpGuiPin<int> pinMenuSel;
    MpGuiPin<bool> pinMouseDown;

private:
    bool writingPosition = false;
};

// GUI half for text and blob: name and value travel both ways.
template <class Pin>
class KX_PM_ValueGUI : public SeGuiInvisibleBase {
public:
    enum Pins { pinParNameIndex, pinParValueIndex, pinNameIndex, pinValueIndex, pinCount };

    KX_PM_ValueGUI() {
        initializePin(pinParName, &KX_PM_ValueGUI::onSetParName);
        initializePin(pinParValue, &KX_PM_ValueGUI::onSetParIO);
        initializePin(pinName, &KX_PM_ValueGUI::onSetName);
        initializePin(pinValue, &KX_PM_ValueGUI::onSetValue);
    }

    void onSetParName() { pinName = pinParName.getValue(); }
    void onSetName() { pinParName = pinName.getValue(); }
    // The host echoes a write to the parameter's value pin back into it; the flag keeps that echo from
    // being written to the module's value a second time.
    void onSetParIO() {
        if (!writingValue)
            kx::pm::copyWhenDifferent(pinParValue, pinValue);
    }
    void onSetValue() {
        struct Writing {
            bool& flag;
            explicit Writing(bool& f) : flag(f) { flag = true; }
            ~Writing() { flag = false; }
        } guard(writingValue);
        kx::pm::copyWhenDifferent(pinValue, pinParValue);
    }

    StringGuiPin pinParName;
    Pin pinParValue;
    StringGuiPin pinName;
    Pin pinValue;

private:
    bool writingValue = false;
};

// GUI half for the list type: the choice travels both ways; a new item list refreshes both the
// parameter's menu and the module's item-list output.
class KX_PM_LIST_GUI : public SeGuiInvisibleBase {
public:
    enum Pins {
        pinParNameIndex,
        pinParValueIndex,
        pinParMenuItemsIndex,
        pinItemListInIndex,
        pinNameIndex,
        pinChoiceIndex,
        pinItemListOutIndex,
        pinCount
    };

    KX_PM_LIST_GUI() {
        initializePin(pinParName, &KX_PM_LIST_GUI::onSetParName);
        initializePin(pinParValue, &KX_PM_LIST_GUI::onSetParIO);
        initializePin(pinParMenuItems);
        initializePin(pinItemListIn, &KX_PM_LIST_GUI::onSetItemListIn);
        initializePin(pinName, &KX_PM_LIST_GUI::onSetName);
        initializePin(pinChoice, &KX_PM_LIST_GUI::onSetChoice);
        initializePin(pinItemListOut);
    }

    void onSetParName() { pinName = pinParName.getValue(); }
    void onSetName() { pinParName = pinName.getValue(); }
    void onSetParIO() { kx::pm::copyWhenDifferent(pinParValue, pinChoice); }
    void onSetChoice() { kx::pm::copyWhenDifferent(pinChoice, pinParValue); }
    void onSetItemListIn() {
        pinParMenuItems = pinItemListIn.getValue();
        pinItemListOut = pinParMenuItems.getValue();
    }

    StringGuiPin pinParName;
    MpGuiPin<int> pinParValue;
    StringGuiPin pinParMenuItems;
    StringGuiPin pinItemListIn;
    StringGuiPin pinName;
    MpGuiPin<int> pinChoice;
    StringGuiPin pinItemListOut;
};

using KX_PM_INT_GUI = KX_PM_ScalarGUI<int>;
using KX_PM_FLOAT_GUI = KX_PM_ScalarGUI<float>;
using KX_PM_BOOL_GUI = KX_PM_ScalarGUI<bool>;
using KX_PM_TEXT_GUI = KX_PM_ValueGUI<StringGuiPin>;
using KX_PM_BLOB_GUI = KX_PM_ValueGUI<MpGuiPin<MpBlob>>;
