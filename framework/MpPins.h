// DSP-side pins: control pins that take their values from the host's time-stamped events and send
// output values back at a block position, audio pins over host-owned sample buffers, and MIDI pins.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string>
#include <type_traits>

#include "MpBlob.h"
#include "MpPinDatatype.h"
#include "gmpi/MpEvent.h"

class MpPluginBase;

// A pin's event handler: a member function of the module, called with the event that set the pin.
using MpBaseMemberPtr = void (MpPluginBase::*)(const gmpi::MpEvent*);

// Pin directions.
inline constexpr int MP_IN = 0;
inline constexpr int MP_OUT = 1;

namespace kx::detail {

// The bytes an event carries: extraData when present, else the 8 bytes of parm3/parm4. The size is
// clamped to what is really there, so a malformed event can never make a pin read past its data.
struct EventBytes {
    const void* data;
    size_t size;
};
inline EventBytes eventBytes(const gmpi::MpEvent* e) {
    if (!e || e->parm2 <= 0)
        return {nullptr, 0};
    if (e->extraData)
        return {e->extraData, static_cast<size_t>(e->parm2)};
    return {&e->parm3, std::min<size_t>(static_cast<size_t>(e->parm2), 8)};
}

// How each value type is unpacked from host bytes and packed for sending. Unpacking never reads past
// the bytes given; int, float and bool never allocate.
template <class T>
struct DspValue;

// Fewer than 4 bytes overwrite the leading bytes; more than 4 copy only 4.
inline void unpackFourBytes(void* value, const void* data, size_t size) {
    if (!data)
        return;
    if (size >= 4)
        std::memcpy(value, data, 4);
    else if (size)
        std::memcpy(value, data, size);
}

template <class T>
struct FourByteValue {
    static void unpack(T& value, const void* data, size_t size) { unpackFourBytes(&value, data, size); }
    static int32_t size(const T&) { return 4; }
    static const void* data(const T& value) { return &value; }
};
template <>
struct DspValue<int> : FourByteValue<int> {};
template <>
struct DspValue<float> : FourByteValue<float> {};

template <>
struct DspValue<bool> {
    // A host sends a bool as one byte or as a 32-bit value: true when any of its bytes is set.
    static void unpack(bool& value, const void* data, size_t size) {
        if (!data || !size)
            return;
        const auto* bytes = static_cast<const unsigned char*>(data);
        const size_t n = std::min<size_t>(size, 4);
        value = std::any_of(bytes, bytes + n, [](unsigned char b) { return b != 0; });
    }
    static int32_t size(const bool&) { return 1; }
    static const void* data(const bool& value) { return &value; }
};

template <>
struct DspValue<std::wstring> {
    // 32-bit characters without terminator; a trailing partial character is dropped.
    static void unpack(std::wstring& value, const void* data, size_t size) {
        const size_t chars = data ? size / sizeof(wchar_t) : 0;
        value.assign(static_cast<const wchar_t*>(data), chars);
    }
    static int32_t size(const std::wstring& value) { return static_cast<int32_t>(value.size() * sizeof(wchar_t)); }
    static const void* data(const std::wstring& value) { return value.data(); }
};

template <>
struct DspValue<MpBlob> {
    static void unpack(MpBlob& value, const void* data, size_t size) { value.setValueRaw(data ? size : 0, data); }
    static int32_t size(const MpBlob& value) { return value.getSize(); }
    static const void* data(const MpBlob& value) { return value.getData(); }
};

}  // namespace kx::detail

class MpPinBase {
public:
    MpPinBase() = default;
    MpPinBase(const MpPinBase&) = delete;
    MpPinBase& operator=(const MpPinBase&) = delete;
    virtual ~MpPinBase() = default;

    // Audio pins take the host's sample buffer; other pins refuse (-1).
    virtual int32_t setBuffer(float*) { return -1; }
    // First pass over an event of the pin: store what it carries.
    virtual void preProcessEvent(const gmpi::MpEvent*) {}
    // Second pass: run the pin's handler.
    virtual void processEvent(const gmpi::MpEvent* e);
    // Last pass: forget that this event happened.
    virtual void postProcessEvent(const gmpi::MpEvent*) {}
    virtual int getDatatype() const = 0;
    virtual int getDirection() const = 0;
    // The handler used when the module binds an input without one.
    virtual MpBaseMemberPtr getDefaultEventHandler() { return nullptr; }
    // At graph start an output tells the host its initial state.
    virtual void sendFirstUpdate() {}
    virtual void setValueRaw(int size, const void* data) {
        setValueRaw(static_cast<size_t>(size > 0 ? size : 0), data);
    }
    virtual void setValueRaw(size_t, const void*) {}
    virtual int rawSize() const { return 0; }
    virtual const void* rawData() const { return nullptr; }

    // What process() does in its three passes: preProcessEvent, processEvent and postProcessEvent, without
    // a virtual call for the control pins of four-byte values.
    void storeEvent(const gmpi::MpEvent* e) {
        if (!fourBytes_) {
            preProcessEvent(e);
        } else if (e->eventType == gmpi::EVENT_PIN_SET) {
            const auto bytes = kx::detail::eventBytes(e);
            kx::detail::unpackFourBytes(fourBytes_, bytes.data, bytes.size);
            updated_ = true;
        }
    }
    void handleEvent(const gmpi::MpEvent* e) {
        if (!fourBytes_)
            processEvent(e);
        else if (eventHandler_)
            MpPinBase::processEvent(e);
    }
    void clearEvent(const gmpi::MpEvent* e) {
        if (fourBytes_)
            updated_ = false;
        else
            postProcessEvent(e);
    }

    int getId() const { return id_; }
    MpPluginBase* getPlugin() const { return plugin_; }
    // Binding, done by the module's initializePin.
    void bind(int id, MpPluginBase* plugin, MpBaseMemberPtr handler) {
        id_ = id;
        plugin_ = plugin;
        eventHandler_ = handler;
    }

protected:
    // For a control pin of a four-byte value: its three event passes must be exactly the ones storeEvent,
    // handleEvent and clearEvent make in their place.
    explicit MpPinBase(void* fourBytes) : fourBytes_(fourBytes) {}

    // The owner's current block position (0 when unbound).
    int blockPosition() const;
    // Sends rawSize()/rawData() to the host at a block position (-1: the owner's current one).
    void sendPinUpdate(int position = -1) { sendPinUpdate(position, rawSize(), rawData()); }
    // The same for a pin class that knows its value's bytes without asking.
    void sendPinUpdate(int position, int size, const void* data);

    int id_ = -1;
    // Set while the event batch that set this pin is being handled.
    bool updated_ = false;
    MpPluginBase* plugin_ = nullptr;
    MpBaseMemberPtr eventHandler_ = nullptr;

private:
    void* fourBytes_ = nullptr;
};

template <class T, int datatype>
class MpControlPinBase : public MpPinBase {
    static constexpr bool fourByteValue = std::is_base_of_v<kx::detail::FourByteValue<T>, kx::detail::DspValue<T>>;

public:
    MpControlPinBase() : MpPinBase(fourByteValue ? static_cast<void*>(&value) : nullptr) {}

    void preProcessEvent(const gmpi::MpEvent* e) final {
        if (e->eventType != gmpi::EVENT_PIN_SET)
            return;
        const auto bytes = kx::detail::eventBytes(e);
        kx::detail::DspValue<T>::unpack(value, bytes.data, bytes.size);
        updated_ = true;
    }
    void processEvent(const gmpi::MpEvent* e) final { MpPinBase::processEvent(e); }
    void postProcessEvent(const gmpi::MpEvent*) final { updated_ = false; }
    int getDatatype() const override { return datatype; }
    using MpPinBase::setValueRaw;
    void setValueRaw(size_t size, const void* data) override { kx::detail::DspValue<T>::unpack(value, data, size); }
    int rawSize() const override { return kx::detail::DspValue<T>::size(value); }
    const void* rawData() const override { return kx::detail::DspValue<T>::data(value); }

    const T& getValue() const { return value; }
    operator const T&() const { return value; }
    // True while the event batch that set this pin is being handled (onSetPins included).
    bool isUpdated() const { return updated_; }

    T value{};
};

template <class T, int direction, int datatype>
class MpControlPin : public MpControlPinBase<T, datatype> {
public:
    int getDirection() const override { return direction; }
    void sendFirstUpdate() override {
        if constexpr (direction == MP_OUT)
            send(-1);
    }

    // Output pins: store and send to the host at the current block position (every time; modules
    // compare first where a repeat must not be sent).
    MpControlPin& operator=(const T& newValue) {
        static_assert(direction == MP_OUT, "only output pins are written by the module");
        this->value = newValue;
        send(-1);
        return *this;
    }
    // As assignment, at a given block position.
    void setValue(const T& newValue, int blockPosition) {
        static_assert(direction == MP_OUT, "only output pins are written by the module");
        this->value = newValue;
        send(blockPosition);
    }
    using MpPinBase::sendPinUpdate;

private:
    void send(int position) {
        using Value = kx::detail::DspValue<T>;
        this->sendPinUpdate(position, Value::size(this->value), Value::data(this->value));
    }
};

using IntInPin = MpControlPin<int, MP_IN, MP_DT_INT>;
using IntOutPin = MpControlPin<int, MP_OUT, MP_DT_INT>;
using FloatInPin = MpControlPin<float, MP_IN, MP_DT_FLOAT>;
using FloatOutPin = MpControlPin<float, MP_OUT, MP_DT_FLOAT>;
using BoolInPin = MpControlPin<bool, MP_IN, MP_DT_BOOL>;
using BoolOutPin = MpControlPin<bool, MP_OUT, MP_DT_BOOL>;
using StringInPin = MpControlPin<std::wstring, MP_IN, MP_DT_TEXT>;
using StringOutPin = MpControlPin<std::wstring, MP_OUT, MP_DT_TEXT>;
using BlobInPin = MpControlPin<MpBlob, MP_IN, MP_DT_BLOB>;
using BlobOutPin = MpControlPin<MpBlob, MP_OUT, MP_DT_BLOB>;
using ListInPin = MpControlPin<int, MP_IN, MP_DT_ENUM>;
using ListOutPin = MpControlPin<int, MP_OUT, MP_DT_ENUM>;

class MpAudioPinBase : public MpPinBase {
public:
    int32_t setBuffer(float* buffer) override {
        buffer_ = buffer;
        return 0;
    }
    void postProcessEvent(const gmpi::MpEvent*) override { eventPending_ = false; }
    int getDatatype() const override { return MP_DT_AUDIO; }
    // The samples from the current block position on.
    float* getBuffer() const { return buffer_ ? buffer_ + blockPosition() : nullptr; }
    bool isStreaming() const { return isStreaming_; }
    // True while the streaming change this pin received is being handled.
    bool isUpdated() const { return eventPending_; }

protected:
    float* buffer_ = nullptr;
    bool isStreaming_ = false;
    bool eventPending_ = false;
};

class AudioInPin : public MpAudioPinBase {
public:
    int getDirection() const override { return MP_IN; }
    // Records a streaming start or stop and tells the module (a stop also keeps it awake one more sample).
    void preProcessEvent(const gmpi::MpEvent* e) override;
    // The sample at an offset from the current block position.
    float getValue(int offset = 0) const { return buffer_ ? buffer_[blockPosition() + offset] : 0.0f; }
};

class AudioOutPin : public MpAudioPinBase {
public:
    int getDirection() const override { return MP_OUT; }
    void sendFirstUpdate() override;
    // On a change tells the module; when the signal stops, asks the host to restart the module's sleep
    // count; then tells the host the streaming state at the block position (-1: the current one).
    void setStreaming(bool isStreaming, int blockPosition = -1);
};

class MidiInPin : public MpPinBase {
public:
    int getDatatype() const override { return MP_DT_MIDI; }
    int getDirection() const override { return MP_IN; }
    // Without a handler of its own the pin hands MIDI bytes to the module's onMidiMessage.
    void processEvent(const gmpi::MpEvent* e) override;
};

class MidiOutPin : public MidiInPin {
public:
    int getDirection() const override { return MP_OUT; }
    void processEvent(const gmpi::MpEvent*) override {}
    // Sends MIDI bytes to the host at a block position (-1: the current one).
    void send(const unsigned char* data, int size, int blockPosition = -1);
};
