// Bridges: carry one value between the audio graph and the GUI graph, both ways, through the host's
// message channel between the two halves of one module (message id 0).
#pragma once

#include <array>
#include <cstdint>
#include <cstring>
#include <optional>
#include <string>

#include "MpBase2.h"
#include "MpGuiBase2.h"

namespace kx::bridge {

template <class T>
struct Datatype;
template <>
struct Datatype<int> : std::integral_constant<int, MP_DT_INT> {};
template <>
struct Datatype<float> : std::integral_constant<int, MP_DT_FLOAT> {};
template <>
struct Datatype<bool> : std::integral_constant<int, MP_DT_BOOL> {};
template <>
struct Datatype<std::wstring> : std::integral_constant<int, MP_DT_TEXT> {};
template <>
struct Datatype<MpBlob> : std::integral_constant<int, MP_DT_BLOB> {};

// The bytes a well-formed message stands for.
struct Bytes {
    int32_t size;
    const void* data;
};

// Message payloads by value type: how a value is sent, and which messages are well formed (anything
// else is ignored by the receiver).
template <class T>
struct Channel {
    static_assert(sizeof(T) == 4);
    template <class Send>
    int32_t send(const T& value, Send&& sendMessage) {
        return sendMessage(4, &value);
    }
    static std::optional<Bytes> view(int32_t size, const void* data) {
        if (size != 4 || !data)
            return std::nullopt;
        return Bytes{size, data};
    }
};

template <>
struct Channel<bool> {
    // Sent as a 32-bit value; one byte is accepted as well.
    template <class Send>
    int32_t send(bool value, Send&& sendMessage) {
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
struct Channel<std::wstring> {
    // The characters as 32-bit units, no terminator; a trailing partial character is dropped.
    template <class Send>
    int32_t send(const std::wstring& value, Send&& sendMessage) {
        return sendMessage(static_cast<int32_t>(value.size() * sizeof(wchar_t)), value.data());
    }
    static std::optional<Bytes> view(int32_t size, const void* data) {
        if (size < 0 || (size > 0 && !data))
            return std::nullopt;
        return Bytes{size - size % static_cast<int32_t>(sizeof(wchar_t)), data};
    }
};

template <>
struct Channel<MpBlob> {
    // The blob's bytes themselves: the host copies a message before its send returns, so the receiver
    // never depends on the sender's memory, and no message can make it read anywhere else.
    template <class Send>
    int32_t send(const MpBlob& value, Send&& sendMessage) {
        return sendMessage(value.getSize(), value.getData());
    }
    static std::optional<Bytes> view(int32_t size, const void* data) {
        if (size < 0 || (size > 0 && !data))
            return std::nullopt;
        return Bytes{size, data};
    }
};

}  // namespace kx::bridge

// DSP half: passes the audio-graph input to the output and reports it to the GUI half while enabled;
// a value from the GUI half goes to the output whatever the enable pin says.
template <class T>
class KX_DspGuiBridge : public MpBase2 {
public:
    static constexpr int datatype = kx::bridge::Datatype<T>::value;
    enum Pins { pinInIndex, pinOutIndex, pinEnableIndex, pinCount };

    KX_DspGuiBridge() {
        initializePin(pinIn);
        initializePin(pinOut);
        initializePin(pinEnable);
    }

    void onSetPins() override {
        if (!pinEnable.getValue())
            return;
        if (!(pinOut.getValue() == pinIn.getValue()))
            pinOut = pinIn.getValue();
        // Reported every time, changed or not: the GUI graph may have moved on since.
        channel.send(pinIn.getValue(), [this](int32_t size, const void* data) {
            return host ? host->sendMessageToGui(0, size, data) : gmpi::MP_FAIL;
        });
    }

    int32_t onGuiMessage(int32_t, int32_t size, const void* data) override {
        const auto bytes = kx::bridge::Channel<T>::view(size, data);
        if (!bytes)
            return gmpi::MP_FAIL;
        pinOut.setValueRaw(static_cast<size_t>(bytes->size), bytes->data);
        pinOut.sendPinUpdate();
        return gmpi::MP_OK;
    }

    MpControlPin<T, MP_IN, datatype> pinIn;
    MpControlPin<T, MP_OUT, datatype> pinOut;
    BoolInPin pinEnable;

private:
    kx::bridge::Channel<T> channel;
};

// The GUI pin class that carries each bridge type.
template <class T>
struct BridgeGuiPin {
    using type = MpGuiPin<T>;
};
template <>
struct BridgeGuiPin<std::wstring> {
    using type = StringGuiPin;
};

// GUI half: a value arriving in the GUI graph goes to the DSP half; a value from the DSP half is handed
// to the host as the pin's new value, which the host then feeds back into the pin.
template <class T>
class KX_DspGuiBridgeGUI : public SeGuiInvisibleBase {
public:
    enum Pins { pinValueIndex, pinCount };

    KX_DspGuiBridgeGUI() { initializePin(pinValue, &KX_DspGuiBridgeGUI::onSetValueIO); }

    void onSetValueIO() {
        // The host's feedback of a value that came from the DSP half must not be sent back there.
        if (receiving || !host)
            return;
        channel.send(pinValue.getValue(),
                     [this](int32_t size, const void* data) { return host->sendMessageToAudio(0, size, data); });
    }

    int32_t receiveMessageFromAudio(int32_t, int32_t size, const void* data) override {
        const auto bytes = kx::bridge::Channel<T>::view(size, data);
        if (!bytes)
            return gmpi::MP_FAIL;
        struct Receiving {
            bool& flag;
            explicit Receiving(bool& f) : flag(f) { flag = true; }
            ~Receiving() { flag = false; }
        } guard(receiving);
        pinTransmit(pinValueIndex, bytes->size, bytes->data, 0);
        return gmpi::MP_OK;
    }

    typename BridgeGuiPin<T>::type pinValue;

private:
    bool receiving = false;
    kx::bridge::Channel<T> channel;
};

using KX_IntDspGuiBridge = KX_DspGuiBridge<int>;
using KX_FloatDspGuiBridge = KX_DspGuiBridge<float>;
using KX_BoolDspGuiBridge = KX_DspGuiBridge<bool>;
using KX_TextDspGuiBridge = KX_DspGuiBridge<std::wstring>;
using KX_BlobDspGuiBridge = KX_DspGuiBridge<MpBlob>;
using KX_IntDspGuiBridgeGUI = KX_DspGuiBridgeGUI<int>;
using KX_FloatDspGuiBridgeGUI = KX_DspGuiBridgeGUI<float>;
using KX_BoolDspGuiBridgeGUI = KX_DspGuiBridgeGUI<bool>;
using KX_TextDspGuiBridgeGUI = KX_DspGuiBridgeGUI<std::wstring>;
using KX_BlobDspGuiBridgeGUI = KX_DspGuiBridgeGUI<MpBlob>;
