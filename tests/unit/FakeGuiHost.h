// A recording GUI host for unit tests: remembers every pinTransmit and message, answers resources from
// a map, and can echo transmitted values back into the sender like a host parameter does; and a
// recording context-menu sink.
#pragma once

#include <cstring>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "gmpi/IMpContextItemSink.h"
#include "gmpi/IMpUserInterfaceHost.h"
#include "gmpi/IMpUserInterfaceHost2.h"
#include "gmpi/IString.h"

namespace kxtest {

struct Transmission {
    int pin;
    std::vector<unsigned char> bytes;
    int voice;

    int asInt() const {
        int v = 0;
        std::memcpy(&v, bytes.data(), bytes.size() < 4 ? bytes.size() : 4);
        return v;
    }
    float asFloat() const {
        float v = 0;
        std::memcpy(&v, bytes.data(), bytes.size() < 4 ? bytes.size() : 4);
        return v;
    }
    bool asBool() const { return !bytes.empty() && bytes[0] != 0; }
    std::wstring asText() const {
        std::wstring s(bytes.size() / 4, L'\0');
        std::memcpy(s.data(), bytes.data(), s.size() * 4);
        return s;
    }
};

class FakeGuiHost : public gmpi::IMpUserInterfaceHost2, public gmpi::IMpUserInterfaceHost {
public:
    std::vector<Transmission> sent;
    std::vector<Transmission> messages;
    int pinCount = 0;
    std::map<std::string, std::string> resources;  // "name|type" -> path
    std::wstring resourceFolder = L"/res/";
    bool offerFirstGeneration = true;
    // Called after recording each pinTransmit (for echo tests).
    std::function<void(int pin, int size, const void* data)> onTransmit;

    int32_t queryInterface(const gmpi::MpGuid& iid, void** out) override {
        *out = nullptr;
        if (iid == gmpi::MP_IID_UI_HOST2 || gmpi::isUnknownIid(iid)) {
            *out = static_cast<gmpi::IMpUserInterfaceHost2*>(this);
            return gmpi::MP_OK;
        }
        if (iid == gmpi::MP_IID_UI_HOST && offerFirstGeneration) {
            *out = static_cast<gmpi::IMpUserInterfaceHost*>(this);
            return gmpi::MP_OK;
        }
        return gmpi::MP_NOSUPPORT;
    }
    int32_t addRef() override { return 1; }
    int32_t release() override { return 1; }
    // The host object a module's setHost receives.
    gmpi::IMpUnknown* unknown() { return static_cast<gmpi::IMpUserInterfaceHost2*>(this); }

    int32_t pinTransmit(int32_t pinId, int32_t size, const void* data, int32_t voice) override {
        const auto* p = static_cast<const unsigned char*>(data);
        sent.push_back({pinId, std::vector<unsigned char>(p, p + (size > 0 ? size : 0)), voice});
        if (onTransmit)
            onTransmit(pinId, size, data);
        return gmpi::MP_OK;
    }
    int32_t getHandle(int32_t& h) override {
        h = 1;
        return gmpi::MP_OK;
    }
    int32_t getPinCount(int32_t& count) override {
        count = pinCount;
        return gmpi::MP_OK;
    }
    int32_t sendMessageToAudio(int32_t id, int32_t size, const void* data) override {
        const auto* p = static_cast<const unsigned char*>(data);
        messages.push_back({id, std::vector<unsigned char>(p, p + (size > 0 ? size : 0)), 0});
        return gmpi::MP_OK;
    }
    int32_t resolveResource(const char* name, const char* type, gmpi::IMpUnknown* returnString) override {
        void* s = nullptr;
        if (!returnString || returnString->queryInterface(gmpi::MP_IID_RETURNSTRING, &s) != gmpi::MP_OK)
            return gmpi::MP_FAIL;
        auto it = resources.find(std::string(name) + "|" + type);
        const std::string path = it != resources.end() ? it->second : std::string("/res/") + name;
        static_cast<gmpi::IString*>(s)->setData(path.data(), static_cast<int32_t>(path.size()));
        return it != resources.end() ? gmpi::MP_OK : gmpi::MP_FAIL;
    }
    int32_t openResource(const char*, gmpi::IMpUnknown** stream) override {
        *stream = nullptr;
        return gmpi::MP_FAIL;
    }
    int32_t reserved1() override { return gmpi::MP_NOSUPPORT; }
    int32_t reserved2() override { return gmpi::MP_NOSUPPORT; }

    // First generation.
    int32_t resolveFilename(const wchar_t* name, int32_t maxChars, wchar_t* out) override {
        if (maxChars < 1)
            return gmpi::MP_FAIL;
        std::wstring full = resourceFolder + name;
        full.resize(std::min<size_t>(full.size(), static_cast<size_t>(maxChars) - 1));
        std::wmemcpy(out, full.c_str(), full.size() + 1);
        return gmpi::MP_OK;
    }

    // The values sent on one pin, in order.
    std::vector<Transmission> on(int pin) const {
        std::vector<Transmission> r;
        for (const auto& t : sent)
            if (t.pin == pin)
                r.push_back(t);
        return r;
    }
};

// The host's context-menu sink: records every entry (its text copied, as the host promises).
class RecordingMenuSink final : public gmpi::IMpContextItemSink {
public:
    struct Entry {
        std::string text;
        int32_t id;
        bool operator==(const Entry&) const = default;
    };
    std::vector<Entry> entries;

    int32_t queryInterface(const gmpi::MpGuid& iid, void** out) override {
        *out = nullptr;
        if (!gmpi::isUnknownIid(iid) && !(iid == gmpi::MP_IID_CONTEXT_ITEMS_SINK))
            return gmpi::MP_NOSUPPORT;
        *out = this;
        return gmpi::MP_OK;
    }
    int32_t addRef() override { return 1; }
    int32_t release() override { return 1; }
    int32_t AddItem(const char* text, int32_t id, int32_t) override {
        entries.push_back({text, id});
        return gmpi::MP_OK;
    }
};

// Delivers a value to a module the way a host does: setPin, then notifyPin.
template <class M, class V>
int32_t deliver(M& module, int pin, const V& value) {
    module.setPin(pin, 0, sizeof(V), &value);
    return module.notifyPin(pin, 0);
}
template <class M>
int32_t deliverText(M& module, int pin, const std::wstring& value) {
    module.setPin(pin, 0, static_cast<int32_t>(value.size() * sizeof(wchar_t)), value.data());
    return module.notifyPin(pin, 0);
}

}  // namespace kxtest
