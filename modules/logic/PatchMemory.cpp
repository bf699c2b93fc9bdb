// KX_PM_INT_NAC, KX_PM_FLOAT_NAC, KX_PM_BOOL_NAC, KX_PM_TEXT_NAC, KX_PM_BLOB_NAC, KX_PM_LIST_NAC and
// their _VOL identifiers: patch memory of six value types.
#include "logic/PatchMemory.h"

#include "MpFactory.h"
#include "logic/ValuePins.h"

using kx::copyWhenDifferent;

// ---- DSP half

template <class T, int datatype>
KX_PM_DSP<T, datatype>::KX_PM_DSP() {
    initializePin(pinValueIn);
    initializePin(pinValueOut);
}

template <class T, int datatype>
void KX_PM_DSP<T, datatype>::onSetPins() {
    if constexpr (datatype == MP_DT_TEXT)
        pinValueOut = pinValueIn.getValue();
    else
        copyWhenDifferent(pinValueIn, pinValueOut);
}

// ---- GUI halves

void PatchMemoryGui::onSetParName() { pinName = pinParName.getValue(); }

void PatchMemoryGui::onSetName() { pinParName = pinName.getValue(); }

// ---- GUI half: int, float, bool

template <class T>
KX_PM_ScalarGUI<T>::KX_PM_ScalarGUI() {
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

template <class T>
void KX_PM_ScalarGUI<T>::onSetParIO() {
    copyWhenDifferent(pinParValue, pinValue);
}

template <class T>
void KX_PM_ScalarGUI<T>::onSetValue() {
    copyWhenDifferent(pinValue, pinParValue);
}

template <class T>
void KX_PM_ScalarGUI<T>::onSetParNorm() {
    position.fromParameter(pinParNorm, pinAnimPos);
}

template <class T>
void KX_PM_ScalarGUI<T>::onSetAnimPos() {
    position.toParameter(pinAnimPos, pinParNorm);
}

template <class T>
void KX_PM_ScalarGUI<T>::onSetParMenuItems() {
    pinMenuItems = pinParMenuItems.getValue();
}

template <class T>
void KX_PM_ScalarGUI<T>::onSetMenuSel() {
    copyWhenDifferent(pinMenuSel, pinParMenuSel);
}

template <class T>
void KX_PM_ScalarGUI<T>::onSetMouseDown() {
    copyWhenDifferent(pinMouseDown, pinParGrab);
}

// ---- GUI half: text, blob

template <class Pin>
KX_PM_ValueGUI<Pin>::KX_PM_ValueGUI() {
    initializePin(pinParName, &KX_PM_ValueGUI::onSetParName);
    initializePin(pinParValue, &KX_PM_ValueGUI::onSetParIO);
    initializePin(pinName, &KX_PM_ValueGUI::onSetName);
    initializePin(pinValue, &KX_PM_ValueGUI::onSetValue);
}

template <class Pin>
void KX_PM_ValueGUI<Pin>::onSetParIO() {
    value.fromParameter(pinParValue, pinValue);
}

template <class Pin>
void KX_PM_ValueGUI<Pin>::onSetValue() {
    value.toParameter(pinValue, pinParValue);
}

// ---- GUI half: list

KX_PM_LIST_GUI::KX_PM_LIST_GUI() {
    initializePin(pinParName, &KX_PM_LIST_GUI::onSetParName);
    initializePin(pinParValue, &KX_PM_LIST_GUI::onSetParIO);
    initializePin(pinParMenuItems);
    initializePin(pinItemListIn, &KX_PM_LIST_GUI::onSetItemListIn);
    initializePin(pinName, &KX_PM_LIST_GUI::onSetName);
    initializePin(pinChoice, &KX_PM_LIST_GUI::onSetChoice);
    initializePin(pinItemListOut);
}

void KX_PM_LIST_GUI::onSetParIO() { copyWhenDifferent(pinParValue, pinChoice); }

void KX_PM_LIST_GUI::onSetChoice() { copyWhenDifferent(pinChoice, pinParValue); }

void KX_PM_LIST_GUI::onSetItemListIn() {
    pinParMenuItems = pinItemListIn.getValue();
    pinItemListOut = pinParMenuItems.getValue();
}

template class KX_PM_DSP<int, MP_DT_INT>;
template class KX_PM_DSP<float, MP_DT_FLOAT>;
template class KX_PM_DSP<bool, MP_DT_BOOL>;
template class KX_PM_DSP<std::wstring, MP_DT_TEXT>;
template class KX_PM_DSP<MpBlob, MP_DT_BLOB>;
template class KX_PM_DSP<int, MP_DT_ENUM>;
template class KX_PM_ScalarGUI<int>;
template class KX_PM_ScalarGUI<float>;
template class KX_PM_ScalarGUI<bool>;
template class KX_PM_ValueGUI<StringGuiPin>;
template class KX_PM_ValueGUI<MpGuiPin<MpBlob>>;

namespace {
template <class Dsp, class Gui>
bool registerType(const wchar_t* nac, const wchar_t* nacVol) {
    return gmpi::Register<Dsp>::withId(nac) && gmpi::Register<Gui>::withId(nac) &&
           gmpi::Register<Dsp>::withId(nacVol) && gmpi::Register<Gui>::withId(nacVol);
}

const bool registered = registerType<KX_PM_INT_DSP, KX_PM_INT_GUI>(L"KX_PM_INT_NAC", L"KX_PM_INT_NAC_VOL") &&
                        registerType<KX_PM_FLOAT_DSP, KX_PM_FLOAT_GUI>(L"KX_PM_FLOAT_NAC", L"KX_PM_FLOAT_NAC_VOL") &&
                        registerType<KX_PM_BOOL_DSP, KX_PM_BOOL_GUI>(L"KX_PM_BOOL_NAC", L"KX_PM_BOOL_NAC_VOL") &&
                        registerType<KX_PM_TEXT_DSP, KX_PM_TEXT_GUI>(L"KX_PM_TEXT_NAC", L"KX_PM_TEXT_NAC_VOL") &&
                        registerType<KX_PM_BLOB_DSP, KX_PM_BLOB_GUI>(L"KX_PM_BLOB_NAC", L"KX_PM_BLOB_NAC_VOL") &&
                        registerType<KX_PM_LIST_DSP, KX_PM_LIST_GUI>(L"KX_PM_LIST_NAC", L"KX_PM_LIST_NAC_VOL");
}  // namespace
