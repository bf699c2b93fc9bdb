#include "logic/CheckValves.h"

#include "ModuleSupport.h"
#include "MpFactory.h"

template <class T>
KX_CheckValve<T>::KX_CheckValve() {
    initializePin(mode);
    initializePin(in, &KX_CheckValve::onSetIn);
    initializePin(out, &KX_CheckValve::onSetOut);
}

template <class T>
void KX_CheckValve<T>::onSetIn() {
    if (busy || mode.value != kx::checkvalve::Forward)
        return;
    out = in.value;
}

template <class T>
void KX_CheckValve<T>::onSetOut() {
    if (mode.value != kx::checkvalve::Backward)
        return;
    kx::ReentryFlag sending(busy);
    in = out.value;
}

template class KX_CheckValve<int>;
template class KX_CheckValve<float>;
template class KX_CheckValve<std::wstring>;
template class KX_CheckValve<bool>;
template class KX_CheckValve<MpBlob>;

namespace {
const bool registered = gmpi::Register<KX_CheckValveInt>::withId(L"KX_CheckValveInt") &&
                        gmpi::Register<KX_CheckValveFloat>::withId(L"KX_CheckValveFloat") &&
                        gmpi::Register<KX_CheckValveText>::withId(L"KX_CheckValveText") &&
                        gmpi::Register<KX_CheckValveBool>::withId(L"KX_CheckValveBool") &&
                        gmpi::Register<KX_CheckValveBlob>::withId(L"KX_CheckValveBlob");
}
