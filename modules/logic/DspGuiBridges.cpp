// KX_IntDspGuiBridge, KX_FloatDspGuiBridge, KX_BoolDspGuiBridge, KX_TextDspGuiBridge,
// KX_BlobDspGuiBridge and their "2" identifiers: one value carried between the audio and GUI graphs.
#include "logic/DspGuiBridges.h"

#include <cstdint>
#include <optional>

#include "ModuleSupport.h"
#include "MpFactory.h"

namespace {

// The bytes a well-formed message stands for.
struct Bytes {
    int32_t size;
    const void* data;
};

// Message payloads by value type: how a value is sent, and which messages are well formed (anything
// else is ignored by the receiver).
template <class T>
struct Message {
    static_assert(sizeof(T) == 4);
    template <class Send>
    static int32_t send(const T& value, Send&& sendMessage) {
        return sendMessage(4, &value);
    }
    static std::optional<Bytes> view(int32_t size, const void* data) {
        if (size != 4 || !data)
            return std::nullopt;
        return Bytes{size, data};
    }
};

template <>
struct Message<bool> {
    // Sent as a 32-bit value; one byte is accepted as well.
    template <class Send>
    static int32_t send(bool value, Send&& sendMessage) {
        const int32_t wide = value ? 1 : 0;
        return sendMessage(4, &wide);
    }
    static std::optional<Bytes> view(int32_t size, const void* data) {
        if ((size != 4 && size != 1) || !data)
            return std::nullopt;
        return Bytes{size, data};
    }
};

template <>
struct Message<std::wstring> {
    // The characters as 32-bit units, no terminator; a trailing partial character is dropped.
    template <class Send>
    static int32_t send(const std::wstring& value, Send&& sendMessage) {
        return sendMessage(static_cast<int32_t>(value.size() * sizeof(wchar_t)), value.data());
    }
    static std::optional<Bytes> view(int32_t size, const void* data) {
        if (size < 0 || (size > 0 && !data))
            return std::nullopt;
        return Bytes{size - size % static_cast<int32_t>(sizeof(wchar_t)), data};
    }
};

template <>
struct Message<MpBlob> {
    // The blob's bytes themselves: the host copies a message before its send returns, so the receiver
    // never depends on the sender's memory, and no message can make it read anywhere else.
    template <class Send>
    static int32_t send(const MpBlob& value, Send&& sendMessage) {
        return sendMessage(value.getSize(), value.getData());
    }
    static std::optional<Bytes> view(int32_t size, const void* data) {
        if (size < 0 || (size > 0 && !data))
            return std::nullopt;
        return Bytes{size, data};
    }
};

}  // namespace

// ---- DSP half

template <class T>
KX_DspGuiBridge<T>::KX_DspGuiBridge() {
    initializePin(pinIn);
    initializePin(pinOut);
    initializePin(pinEnable);
}

template <class T>
void KX_DspGuiBridge<T>::onSetPins() {
    if (!pinEnable.getValue())
        return;
    kx::copyWhenDifferent(pinIn, pinOut);
    // Reported every time, changed or not: the GUI graph may have moved on since.
    Message<T>::send(pinIn.getValue(), [this](int32_t size, const void* data) {
        return host ? host->sendMessageToGui(0, size, data) : gmpi::MP_FAIL;
    });
}

template <class T>
int32_t KX_DspGuiBridge<T>::onGuiMessage(int32_t, int32_t size, const void* data) {
    const auto bytes = Message<T>::view(size, data);
    if (!bytes)
        return gmpi::MP_FAIL;
    pinOut.setValueRaw(static_cast<size_t>(bytes->size), bytes->data);
    pinOut.sendPinUpdate();
    return gmpi::MP_OK;
}

// ---- GUI half

template <class T>
KX_DspGuiBridgeGUI<T>::KX_DspGuiBridgeGUI() {
    initializePin(pinValue, &KX_DspGuiBridgeGUI::onSetValueIO);
}

template <class T>
void KX_DspGuiBridgeGUI<T>::onSetValueIO() {
    if (receiving || !host)
        return;
    Message<T>::send(pinValue.getValue(),
                     [this](int32_t size, const void* data) { return host->sendMessageToAudio(0, size, data); });
}

template <class T>
int32_t KX_DspGuiBridgeGUI<T>::receiveMessageFromAudio(int32_t, int32_t size, const void* data) {
    const auto bytes = Message<T>::view(size, data);
    if (!bytes)
        return gmpi::MP_FAIL;
    kx::ReentryFlag hold(receiving);
    pinTransmit(kx::bridge::gui::Value, bytes->size, bytes->data, 0);
    return gmpi::MP_OK;
}

template class KX_DspGuiBridge<int>;
template class KX_DspGuiBridge<float>;
template class KX_DspGuiBridge<bool>;
template class KX_DspGuiBridge<std::wstring>;
template class KX_DspGuiBridge<MpBlob>;
template class KX_DspGuiBridgeGUI<int>;
template class KX_DspGuiBridgeGUI<float>;
template class KX_DspGuiBridgeGUI<bool>;
template class KX_DspGuiBridgeGUI<std::wstring>;
template class KX_DspGuiBridgeGUI<MpBlob>;

namespace {
template <class T>
bool registerBridge(const wchar_t* id) {
    return gmpi::Register<KX_DspGuiBridge<T>>::withId(id) && gmpi::Register<KX_DspGuiBridgeGUI<T>>::withId(id);
}

const bool registered =
    registerBridge<int>(L"KX_IntDspGuiBridge") && registerBridge<float>(L"KX_FloatDspGuiBridge") &&
    registerBridge<bool>(L"KX_BoolDspGuiBridge") && registerBridge<std::wstring>(L"KX_TextDspGuiBridge") &&
    registerBridge<MpBlob>(L"KX_BlobDspGuiBridge") && registerBridge<int>(L"KX_IntDspGuiBridge2") &&
    registerBridge<float>(L"KX_FloatDspGuiBridge2") && registerBridge<bool>(L"KX_BoolDspGuiBridge2") &&
    registerBridge<std::wstring>(L"KX_TextDspGuiBridge2") && registerBridge<MpBlob>(L"KX_BlobDspGuiBridge2");
}  // namespace
