// GUI-side pins: typed values bound by index to a module, with an optional handler run when the host
// announces a change, and outbound transmission when module code assigns a different value.
#pragma once

#include <cstring>
#include <string>
#include <vector>

#include "MpBlob.h"
#include "MpPinDatatype.h"
#include "PinTable.h"
#include "TextCodec.h"
#include "gmpi/IMpUserInterface.h"
#include "gmpi/IMpUserInterface2.h"
#include "gmpi/IMpUserInterfaceHost2.h"

// A pin's handler: a member function of the module, called with or without the voice of the change. Kept
// in the pin itself, so that a notification is one call through a member pointer.
class GuiPinHandler {
public:
    using Plain = void (gmpi::IMpUserInterface2::*)();
    using Indexed = void (gmpi::IMpUserInterface2::*)(int voice);

    GuiPinHandler() = default;
    GuiPinHandler(gmpi::IMpUserInterface2* module, Plain handler) : module_(handler ? module : nullptr) {
        handler_.plain = handler;
    }
    GuiPinHandler(gmpi::IMpUserInterface2* module, Indexed handler)
        : module_(handler ? module : nullptr), indexed_(true) {
        handler_.indexed = handler;
    }

    void operator()(int voice) const {
        if (!module_)
            return;
        if (indexed_)
            (module_->*handler_.indexed)(voice);
        else
            (module_->*handler_.plain)();
    }

private:
    gmpi::IMpUserInterface2* module_ = nullptr;
    union {
        Plain plain = nullptr;
        Indexed indexed;
    } handler_;
    bool indexed_ = false;
};

class MpGuiPinBase;

// The pin table a module keeps (index -> the module's own pin member, not owned) and the host its pins
// send to.
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
    // Sends a pin value to the host unchanged; -1 when the module has no host.
    int32_t pinTransmit(int index, int size, const void* data, int voice) {
        return host ? host->pinTransmit(index, size, data, voice) : gmpi::MP_FAIL;
    }
    // One more than the highest bound index, or 0.
    int nextPinIndex() const;

protected:
    // The host's GUI interface, kept for the module's life and not released: the host outlives its modules.
    gmpi::IMpUserInterfaceHost2* host = nullptr;

private:
    kx::PinTable<MpGuiPinBase> slots_;
};

namespace kx::detail {

// The int and float pins share one rule: unchanged only when exactly 4 bytes arrive and their bit
// pattern equals the stored one (so -0.0 differs from 0.0 and a NaN with the same bits is unchanged).
// Fewer than 4 bytes overwrite the leading bytes; more than 4 copy only 4.
inline bool setFourBytes(void* value, int size, const void* data) {
    if (size < 0 || (size > 0 && !data))
        return false;
    if (size == 4 && std::memcmp(value, data, 4) == 0)
        return false;
    if (size >= 4)
        std::memcpy(value, data, 4);
    else if (size > 0)  // size 0 may come with a null pointer, which memcpy may not be given
        std::memcpy(value, data, static_cast<size_t>(size));
    return true;
}

}  // namespace kx::detail

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

    // What the host's setPin does: set(), without a virtual call for the four-byte pins.
    bool store(int voice, int size, const void* data) {
        return fourBytes_ ? kx::detail::setFourBytes(fourBytes_, size, data) : set(voice, size, data);
    }
    // Runs the handler, if there is one.
    void notify(int voice) const { handler_(voice); }

    int getId() const { return id_; }
    GuiPinOwner* getOwner() const { return owner_; }

    // Binding, done by the owning module's initializePin.
    void bind(int id, GuiPinOwner* owner, GuiPinHandler handler) {
        id_ = id;
        owner_ = owner;
        handler_ = handler;
    }

protected:
    // For a pin whose value is four bytes compared and stored bit for bit, as setFourBytes does: its
    // set() must do exactly that, since store() does it in its place.
    explicit MpGuiPinBase(void* fourBytes) : fourBytes_(fourBytes) {}

    // Sends the current value to the owner's host (voice 0). Nothing when unbound.
    void transmit() { transmit(rawSize(), rawData()); }
    // The same for a pin class that knows its own rawSize() and rawData() without asking.
    void transmit(int size, const void* data) {
        if (owner_)
            owner_->pinTransmit(id_, size, data, 0);
    }

private:
    GuiPinOwner* owner_ = nullptr;
    GuiPinHandler handler_;
    void* fourBytes_ = nullptr;
    int id_ = -1;  // last, so that a four-byte value can share its eight bytes
};

inline int32_t GuiPinOwner::setPin(int index, int voice, int size, const void* data) {
    MpGuiPinBase* pin = getPin(index);
    if (!pin)
        return gmpi::MP_FAIL;
    pin->store(voice, size, data);
    return gmpi::MP_OK;
}

inline int32_t GuiPinOwner::notifyPin(int index, int voice) {
    MpGuiPinBase* pin = getPin(index);
    if (!pin)
        return gmpi::MP_FAIL;
    pin->notify(voice);
    return gmpi::MP_OK;
}

template <class T>
class MpGuiPin : public MpGuiPinBase {
public:
    static_assert(sizeof(T) == 4, "the general pin carries four-byte values");

    MpGuiPin() : MpGuiPinBase(&value) {}
    bool set(int, int size, const void* data) final { return kx::detail::setFourBytes(&value, size, data); }
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
