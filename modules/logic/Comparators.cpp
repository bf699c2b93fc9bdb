#include "logic/Comparators.h"

#include "MpFactory.h"

template <class T>
KX_Cmp<T>::KX_Cmp() {
    initializePin(valueA, &KX_Cmp::onSetVal);
    initializePin(valueB, &KX_Cmp::onSetCmp);
    initializePin(mode, &KX_Cmp::onSetMode);
    initializePin(result);
}

template <class T>
void KX_Cmp<T>::onSetVal() {
    seenA = true;
    setResult();
}

template <class T>
void KX_Cmp<T>::onSetCmp() {
    seenB = true;
    setResult();
}

template <class T>
void KX_Cmp<T>::onSetMode() {
    seenMode = true;
    setResult();
}

template <class T>
void KX_Cmp<T>::setResult() {
    // A partly wired comparator must not announce anything derived from default operands.
    if (!(seenA && seenB && seenMode))
        return;
    bool computed = false;
    if (compare(computed))
        result = computed;
}

template <class T>
bool KX_Cmp<T>::compare(bool& out) const {
    const T& a = valueA.value;
    const T& b = valueB.value;
    if constexpr (std::is_same_v<T, std::wstring>) {
        out = mode.value == 0 ? a == b : a != b;
        return true;
    } else {
        // Plain IEEE comparisons for floats: with a NaN operand only "not equal" holds, and -0.0 equals 0.0.
        switch (static_cast<unsigned>(mode.value)) {
            case 0:
                out = a > b;
                return true;
            case 1:
                out = a >= b;
                return true;
            case 2:
                out = a == b;
                return true;
            case 3:
                out = a != b;
                return true;
            case 4:
                out = a <= b;
                return true;
            case 5:
                out = a < b;
                return true;
            default:
                return false;
        }
    }
}

template class KX_Cmp<int>;
template class KX_Cmp<float>;
template class KX_Cmp<std::wstring>;

namespace {
const bool registered = gmpi::Register<KX_CmpInt>::withId(L"KX_CmpInt") &&
                        gmpi::Register<KX_CmpFloat>::withId(L"KX_CmpFloat") &&
                        gmpi::Register<KX_CmpString>::withId(L"KX_CmpString");
}
