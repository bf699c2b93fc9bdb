#include "logic/FixedValues.h"

#include "MpFactory.h"

template <class T>
KX_Fixed<T>::KX_Fixed() {
    initializePin(value, &KX_Fixed::onSetVal);
    initializePin(hold);
    initializePin(left, &KX_Fixed::onSetL);
    initializePin(right, &KX_Fixed::onSetR);
}

template <class T>
void KX_Fixed<T>::onSetVal() {
    right = value.value;
    left = right.value;
}

template <class T>
void KX_Fixed<T>::onSetL() {
    restore(left);
}

template <class T>
void KX_Fixed<T>::onSetR() {
    restore(right);
}

template <class T>
void KX_Fixed<T>::restore(MpGuiPin<T>& output) {
    if (hold.value)
        output = value.value;
}

template class KX_Fixed<int>;
template class KX_Fixed<float>;
template class KX_Fixed<std::wstring>;
template class KX_Fixed<bool>;

namespace {
const bool registered = gmpi::Register<KX_Fixed_Int>::withId(L"KX_Fixed_Int") &&
                        gmpi::Register<KX_Fixed_Float>::withId(L"KX_Fixed_Float") &&
                        gmpi::Register<KX_Fixed_String>::withId(L"KX_Fixed_String") &&
                        gmpi::Register<KX_Fixed_Bool>::withId(L"KX_Fixed_Bool");
}
