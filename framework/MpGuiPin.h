// GUI-side pins: typed values bound by index to a module, with an optional handler run when the host
// announces a change, and outbound transmission when module code assigns a different value.
#pragma once

#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "MpBlob.h"
#include "MpPinDatatype.h"
#include "PinTable.h"
#include "TextCodec.h"
#include "gmpi/IMpUserInterface.h"
#include "gmpi/IMpUserInterface2.h"

class IGuiPinCallbackImpl {
public:
    virtual ~IGuiPinCallbackImpl() = default;
    virtual void operator()(int voice) = 0;
};

// Calls a module member function without arguments.
template <class I>
class IGuiPinCallback final : public IGuiPinCallbackImpl {
public:
    using Handler = void (I::*)();
    IGuiPinCallback(I* module, Handler handler) : module_(module), handler_(handler) {}
    void operator()(int) override { (module_->*handler_)(); }

private:
    I* module_;
    Handler handler_;
};

// Calls a module member function with the voice of the change.
template <class I>
class IGuiPinCallbackIndexed final : public IGuiPinCallbackImpl {
public:
    using Handler = void (I::*)(int voice);
    IGuiPinCallbackIndexed(I* module, Handler handler) : module_(module), handler_(handler) {}
    void operator()(int voice) override { (module_->*handler_)(voice); }

private:
    I* module_;
    Handler handler_;
};

class MpGuiPinBase;

// The pin table a module keeps: index -> the module's own pin member (not owned).
class GuiPinOwner {
public:
    virtual ~GuiPinOwner() = default;

    // Inserts the pin unless the index is taken (the first pin bound to an index keeps it).
    void addPin(int index, MpGuiPinBase& pin);
    MpGuiPinBase* getPin(int index) const { return slots_.find(index); }
    // Stores a value without running the handler. 0, or -1 for an unbound index.
    inline int32_t setPin(int index, int voice, int size, const void* data);
    // Runs the pin's handler, if it has one. 0, or -1 for an unbound index.
    inline int32_t notifyPin(int index, int voice);
    // Sends a pin value to the host.
    virtual int32_t pinTransmit(int index, int size, const void* data, int voice) = 0;
    // One more than the highest bound index, or 0.
    int nextPinIndex() const;

private:
    kx::PinTable<MpGuiPinBase> slots_;
};

class MpGuiPinBase {
public:
    MpGuiPinBase() = default;
    MpGuiPinBase(const MpGuiPinBase&) = delete;
    MpGuiPinBase& operator=(const MpGuiPinBase&) = delete;
    virtual ~MpGuiPinBase() = default;

    // Stores a value sent by the host; returns whether it changed. Never reads or writes past the
    // value: size bytes beyond what the type holds are ignored, a negative size or a null pointer with a
    // positive size is ignored (returns false).
    virtual bool set(int voice, int size, const void* data) = 0;
    virtual int getDatatype() const = 0;
    virtual int rawSize() const = 0;
    virtual const void* rawData() const = 0;
    // GUI pins have no default handler.
    virtual void (gmpi::IMpUserInterface2::*getDefaultEventHandler())() { return nullptr; }

    int getId() const { return id_; }
    GuiPinOwner* getOwner() const { return owner_; }
    IGuiPinCallbackImpl* getCallback() const { return callback_.get(); }

    // Binding, done by the owning module's initializePin.
    void bind(int id, GuiPinOwner* owner, std::unique_ptr<IGuiPinCallbackImpl> callback) {
        id_ = id;
        owner_ = owner;
        callback_ = std::move(callback);
    }

protected:
    // Sends the current value to the owner's host (voice 0). Nothing when unbound.
    void transmit() { transmit(rawSize(), rawData()); }
    // The same for a pin class that knows its own rawSize() and rawData() without asking.
    void transmit(int size, const void* data) {
        if (owner_)
            owner_->pinTransmit(id_, size, data, 0);
    }

private:
    int id_ = -1;
    GuiPinOwner* owner_ = nullptr;
    std::unique_ptr<IGuiPinCallbackImpl> callback_;
};

inline int32_t GuiPinOwner::setPin(int index, int voice, int size, const void* data) {
    MpGuiPinBase* pin = getPin(index);
    if (!pin)
        return gmpi::MP_FAIL;
    pin->set(voice, size, data);
    return gmpi::MP_OK;
}

inline int32_t GuiPinOwner::notifyPin(int index, int voice) {
    MpGuiPinBase* pin = getPin(index);
    if (!pin)
        return gmpi::MP_FAIL;
    if (IGuiPinCallbackImpl* callback = pin->getCallback())
        (*callback)(voice);
    return gmpi::MP_OK;
}

namespace kx::detail {

// The int and float pins share one rule: unchanged only when exactly 4 bytes arrive and their bit
// pattern equals the stored one (so -0.0 differs from 0.0 and a NaN with the same bits is unchanged).
// Fewer than 4 bytes overwrite the leading bytes; more than 4 copy only 4.
template <class T>
bool setFourByteValue(T& value, int size, const void* data) {
    static_assert(sizeof(T) == 4);
    if (size < 0 || (size > 0 && !data))
        return false;
    if (size == 4 && std::memcmp(&value, data, 4) == 0)
        return false;
    // Size 0 may come with a null pointer, which memcpy may not be given even for nothing.
    if (size > 0)
        std::memcpy(&value, data, size < 4 ? static_cast<size_t>(size) : 4u);
    return true;
}

}  // namespace kx::detail

template <class T>
class MpGuiPin : public MpGuiPinBase {
public:
    bool set(int, int size, const void* data) override { return kx::detail::setFourByteValue(value, size, data); }
    int getDatatype() const override { return kx::datatypeOf<T>; }
    int rawSize() const override { return 4; }
    const void* rawData() const override { return &value; }

    // Assigning a value that differs (ordinary equality: for floats IEEE, so a NaN always counts as new and
    // -0.0 equals 0.0) stores it and sends it to the host at once.
    MpGuiPin& operator=(T newValue) {
        if (!(newValue == value)) {
            value = newValue;
            transmit(4, &value);
        }
        return *this;
    }
    operator T() const { return value; }
    T getValue() const { return value; }

    T value{};
};

template <>
class MpGuiPin<bool> : public MpGuiPinBase {
public:
    // 4 bytes (the host's usual form) always count as a change; one byte counts when it differs.
    bool set(int, int size, const void* data) override {
        if (size < 1 || !data)
            return false;
        if (size == 4) {
            int32_t raw;
            std::memcpy(&raw, data, 4);
            value = raw != 0;
            return true;
        }
        const auto byte = *static_cast<const unsigned char*>(data);
        if (byte == static_cast<unsigned char>(value))
            return false;
        value = byte != 0;
        return true;
    }
    int getDatatype() const override { return MP_DT_BOOL; }
    int rawSize() const override { return 1; }
    const void* rawData() const override { return &value; }

    MpGuiPin& operator=(bool newValue) {
        if (newValue != value) {
            value = newValue;
            transmit(1, &value);
        }
        return *this;
    }
    operator bool() const { return value; }
    bool getValue() const { return value; }

    bool value = false;
};

template <>
class MpGuiPin<std::wstring> : public MpGuiPinBase {
public:
    // The data is the text as 32-bit characters without terminator; a trailing partial character is
    // dropped.
    bool set(int, int size, const void* data) override {
        if (size < 0 || (size > 0 && !data))
            return false;
        const size_t chars = static_cast<size_t>(size) / sizeof(wchar_t);
        if (chars == value.size() && (chars == 0 || std::memcmp(value.data(), data, chars * sizeof(wchar_t)) == 0))
            return false;
        std::wstring fresh(chars, L'\0');
        if (chars)
            std::memcpy(fresh.data(), data, chars * sizeof(wchar_t));
        value.swap(fresh);
        return true;
    }
    int getDatatype() const override { return MP_DT_TEXT; }
    int rawSize() const override { return static_cast<int>(value.size() * sizeof(wchar_t)); }
    const void* rawData() const override { return value.data(); }

    MpGuiPin& operator=(const std::wstring& newValue) {
        if (newValue != value) {
            value = newValue;
            transmit();
        }
        return *this;
    }
    // Takes the text over instead of copying it: whole files travel on text pins.
    MpGuiPin& operator=(std::wstring&& newValue) {
        if (newValue != value) {
            value = std::move(newValue);
            transmit();
        }
        return *this;
    }
    MpGuiPin& operator=(const wchar_t* newValue) { return *this = std::wstring(newValue ? newValue : L""); }
    operator std::wstring() const { return value; }
    const std::wstring& getValue() const { return value; }

    std::wstring value;
};

template <>
class MpGuiPin<MpBlob> : public MpGuiPinBase {
public:
    bool set(int, int size, const void* data) override {
        if (size < 0 || (size > 0 && !data))
            return false;
        if (value.compare(static_cast<const char*>(data), size))
            return false;
        value.setValueRaw(static_cast<size_t>(size), data);
        return true;
    }
    int getDatatype() const override { return MP_DT_BLOB; }
    int rawSize() const override { return value.getSize(); }
    const void* rawData() const override { return value.getData(); }

    MpGuiPin& operator=(const MpBlob& newValue) {
        if (newValue != value) {
            value = newValue;
            transmit();
        }
        return *this;
    }
    operator const MpBlob&() const { return value; }
    const MpBlob& getValue() const { return value; }

    MpBlob value;
};

// A text pin that also reads and writes UTF-8.
class StringGuiPin : public MpGuiPin<std::wstring> {
public:
    using MpGuiPin<std::wstring>::operator=;
    // Throws std::range_error for text that is not valid UTF-8 (the value is left as it was).
    StringGuiPin& operator=(const std::string& utf8) {
        MpGuiPin<std::wstring>::operator=(kx::fromUtf8(utf8));
        return *this;
    }
    StringGuiPin& operator=(const char* utf8) { return *this = std::string(utf8 ? utf8 : ""); }
    // Throws std::range_error when the text holds values that are not code points.
    operator std::string() const { return kx::toUtf8(value); }
};

using IntGuiPin = MpGuiPin<int>;
using FloatGuiPin = MpGuiPin<float>;
using BoolGuiPin = MpGuiPin<bool>;
using BlobGuiPin = MpGuiPin<MpBlob>;
