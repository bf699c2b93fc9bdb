// Patch memory: one host parameter of a value type joined to the patch. The DSP half hands the
// parameter's value into the audio graph; the GUI half mirrors the parameter's value, name, normalised
// position, menu and grab state between the parameter-bound pins and the module's own pins. Each value
// type has two identifiers (KX_PM_INT_NAC and KX_PM_INT_NAC_VOL, ...) that create the same classes; only
// the descriptions the host holds differ.
#pragma once

#include <string>

#include "ModuleSupport.h"
#include "MpBase2.h"
#include "MpGuiBase2.h"
#include "logic/ValuePins.h"

namespace kx::pm {
// The DSP half of every type.
namespace dsp {
enum Pin : int { ValueIn, ValueOut, PinCount };
}
// The GUI half of int, float and bool.
namespace scalar_gui {
enum Pin : int {
    ParName,
    ParValue,
    ParNorm,
    ParMenuItems,
    ParMenuSel,
    ParGrab,
    Name,
    Value,
    AnimPos,
    MenuItems,
    MenuSel,
    MouseDown,
    PinCount
};
}
// The GUI half of text and blob.
namespace value_gui {
enum Pin : int { ParName, ParValue, Name, Value, PinCount };
}
// The GUI half of the list type.
namespace list_gui {
enum Pin : int { ParName, ParValue, ParMenuItems, ItemListIn, Name, Choice, ItemListOut, PinCount };
}

// A parameter pin and a module pin mirrored both ways. The host echoes the module's write to the
// parameter back into the parameter pin; the echo must not be copied to the module's pin a second time.
class EchoGuardedMirror {
public:
    template <class ParameterPin, class ModulePin>
    void fromParameter(const ParameterPin& parameter, ModulePin& own) {
        if (!writing_)
            kx::copyWhenDifferent(parameter, own);
    }
    template <class ModulePin, class ParameterPin>
    void toParameter(const ModulePin& own, ParameterPin& parameter) {
        kx::ReentryFlag hold(writing_);
        kx::copyWhenDifferent(own, parameter);
    }

private:
    bool writing_ = false;
};
}  // namespace kx::pm

// DSP half, all six types: the parameter's value is handed on when it changes. Text is handed on after
// every change batch, unchanged or not.
template <class T, int datatype>
class KX_PM_DSP : public MpBase2 {
public:
    KX_PM_DSP();
    void onSetPins() override;

    MpControlPin<T, MP_IN, datatype> pinValueIn;
    MpControlPin<T, MP_OUT, datatype> pinValueOut;
};

// What every GUI half shares: the parameter's name and the module's name, mirrored both ways.
class PatchMemoryGui : public SeGuiInvisibleBase {
public:
    void onSetParName();
    void onSetName();

    StringGuiPin pinParName;
    StringGuiPin pinName;
};

// GUI half for int, float and bool. Name, value and normalised position travel both ways; menu items
// only from the parameter to the patch; menu selection and mouse-down only from the patch to the
// parameter.
template <class T>
class KX_PM_ScalarGUI : public PatchMemoryGui {
public:
    KX_PM_ScalarGUI();

    void onSetParIO();
    void onSetValue();
    void onSetParNorm();
    void onSetAnimPos();
    void onSetParMenuItems();
    void onSetMenuSel();
    void onSetMouseDown();

    MpGuiPin<T> pinParValue;
    MpGuiPin<float> pinParNorm;
    StringGuiPin pinParMenuItems;
    MpGuiPin<int> pinParMenuSel;
    MpGuiPin<bool> pinParGrab;
    MpGuiPin<T> pinValue;
    MpGuiPin<float> pinAnimPos;
    StringGuiPin pinMenuItems;
    MpGuiPin<int> pinMenuSel;
    MpGuiPin<bool> pinMouseDown;

private:
    // The normalised position: the parameter's pin and the animation position.
    kx::pm::EchoGuardedMirror position;
};

// GUI half for text and blob: name and value travel both ways.
template <class Pin>
class KX_PM_ValueGUI : public PatchMemoryGui {
public:
    KX_PM_ValueGUI();

    void onSetParIO();
    void onSetValue();

    Pin pinParValue;
    Pin pinValue;

private:
    kx::pm::EchoGuardedMirror value;
};

// GUI half for the list type: the choice travels both ways; a new item list refreshes both the
// parameter's menu and the module's item-list output.
class KX_PM_LIST_GUI : public PatchMemoryGui {
public:
    KX_PM_LIST_GUI();

    void onSetParIO();
    void onSetChoice();
    void onSetItemListIn();

    MpGuiPin<int> pinParValue;
    StringGuiPin pinParMenuItems;
    StringGuiPin pinItemListIn;
    MpGuiPin<int> pinChoice;
    StringGuiPin pinItemListOut;
};

using KX_PM_INT_DSP = KX_PM_DSP<int, MP_DT_INT>;
using KX_PM_FLOAT_DSP = KX_PM_DSP<float, MP_DT_FLOAT>;
using KX_PM_BOOL_DSP = KX_PM_DSP<bool, MP_DT_BOOL>;
using KX_PM_TEXT_DSP = KX_PM_DSP<std::wstring, MP_DT_TEXT>;
using KX_PM_BLOB_DSP = KX_PM_DSP<MpBlob, MP_DT_BLOB>;
using KX_PM_LIST_DSP = KX_PM_DSP<int, MP_DT_ENUM>;
using KX_PM_INT_GUI = KX_PM_ScalarGUI<int>;
using KX_PM_FLOAT_GUI = KX_PM_ScalarGUI<float>;
using KX_PM_BOOL_GUI = KX_PM_ScalarGUI<bool>;
using KX_PM_TEXT_GUI = KX_PM_ValueGUI<StringGuiPin>;
using KX_PM_BLOB_GUI = KX_PM_ValueGUI<MpGuiPin<MpBlob>>;
