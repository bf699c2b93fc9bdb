#include "logic/Triggers.h"

#include "MpFactory.h"

template <class T>
KX_Trigger<T>::KX_Trigger() {
    initializePin(output);
    initializePin(input);
    initializePin(triggerL, &KX_Trigger::onSetTrgL);
    initializePin(triggerR, &KX_Trigger::onSetTrgR);
}

template <class T>
void KX_Trigger<T>::onSetTrgL() {
    pass(triggerL);
}

template <class T>
void KX_Trigger<T>::onSetTrgR() {
    pass(triggerR);
}

template <class T>
void KX_Trigger<T>::pass(const MpGuiPin<bool>& trigger) {
    if (trigger.value)
        output = input.value;
}

template <class T>
KX_Trigger2<T>::KX_Trigger2() {
    initializePin(input);
    initializePin(output);
    initializePin(triggerL, &KX_Trigger2::onSetTrgL);
    initializePin(triggerR, &KX_Trigger2::onSetTrgR);
    initializePin(held);
}

template <class T>
void KX_Trigger2<T>::onSetTrgL() {
    pass(triggerL);
}

template <class T>
void KX_Trigger2<T>::onSetTrgR() {
    pass(triggerR);
}

template <class T>
void KX_Trigger2<T>::pass(const MpGuiPin<bool>& trigger) {
    if (!trigger.value)
        return;
    held = input.value;
    output = held.value;
}

template class KX_Trigger<int>;
template class KX_Trigger<float>;
template class KX_Trigger<std::wstring>;
template class KX_Trigger<bool>;
template class KX_Trigger<MpBlob>;
template class KX_Trigger2<int>;
template class KX_Trigger2<float>;
template class KX_Trigger2<std::wstring>;
template class KX_Trigger2<bool>;
template class KX_Trigger2<MpBlob>;

namespace {
const bool registered = gmpi::Register<KX_TriggerInt>::withId(L"KX_TriggerInt") &&
                        gmpi::Register<KX_TriggerFloat>::withId(L"KX_TriggerFloat") &&
                        gmpi::Register<KX_TriggerString>::withId(L"KX_TriggerString") &&
                        gmpi::Register<KX_TriggerBool>::withId(L"KX_TriggerBool") &&
                        gmpi::Register<KX_TriggerBlob>::withId(L"KX_TriggerBlob") &&
                        gmpi::Register<KX_TriggerInt2>::withId(L"KX_TriggerInt2") &&
                        gmpi::Register<KX_TriggerFloat2>::withId(L"KX_TriggerFloat2") &&
                        gmpi::Register<KX_TriggerString2>::withId(L"KX_TriggerString2") &&
                        gmpi::Register<KX_TriggerBool2>::withId(L"KX_TriggerBool2") &&
                        gmpi::Register<KX_TriggerBlob2>::withId(L"KX_TriggerBlob2");
}
