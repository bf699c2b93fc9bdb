#include "logic/Splitters.h"

#include <cstdint>

#include "ModuleSupport.h"
#include "MpFactory.h"

template <class T>
KX_Splitter<T>::KX_Splitter() {
    initializePin(mode);
    initializePin(crossFeed);
    initializePin(common);
}

template <class T>
int32_t KX_Splitter<T>::setPin(int32_t pinId, int32_t voice, int32_t size, const void* data) {
    using namespace kx::splitter;
    const bool wellFormed = size >= 0 && (size == 0 || data);
    if (pinId >= Common && wellFormed) {
        // Unsigned, so that every mode value has defined bits (INT_MAX + 1 included).
        const unsigned flow = static_cast<unsigned>(mode.value) + 1u;
        if (pinId >= FirstExtra && pinId - FirstExtra + 1 > extraCount)
            extraCount = pinId - FirstExtra + 1;

        if (pinId >= FirstExtra) {
            if (!busy) {
                if (flow & 1u)
                    pinTransmit(Common, size, data, 0);
                if (crossFeed.value) {
                    kx::ReentryFlag sending(busy);
                    sendToExtras(pinId, size, data);
                }
            }
        } else if (flow & 2u) {
            kx::ReentryFlag sending(busy);
            sendToExtras(-1, size, data);
        }
    }
    return SeGuiInvisibleBase::setPin(pinId, voice, size, data);
}

template <class T>
void KX_Splitter<T>::sendToExtras(int32_t skip, int32_t size, const void* data) {
    // 64-bit, so that an extra pin at the top of the index range does not overflow the loop.
    const int64_t end = int64_t{kx::splitter::FirstExtra} + extraCount;
    for (int64_t pin = kx::splitter::FirstExtra; pin < end; ++pin)
        if (pin != skip)
            pinTransmit(static_cast<int>(pin), size, data, 0);
}

template class KX_Splitter<int>;
template class KX_Splitter<float>;
template class KX_Splitter<std::wstring>;
template class KX_Splitter<bool>;
template class KX_Splitter<MpBlob>;

namespace {
const bool registered = gmpi::Register<KX_SplitterInt>::withId(L"KX_SplitterInt") &&
                        gmpi::Register<KX_SplitterFloat>::withId(L"KX_SplitterFloat") &&
                        gmpi::Register<KX_SplitterText>::withId(L"KX_SplitterText") &&
                        gmpi::Register<KX_SplitterBool>::withId(L"KX_SplitterBool") &&
                        gmpi::Register<KX_SplitterBlob>::withId(L"KX_SplitterBlob");
}
