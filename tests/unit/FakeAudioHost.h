// A recording audio host for unit tests of DSP halves, and a builder for time-stamped event lists.
// Recording does not allocate while values fit the reserved space, so allocation-counting tests can use it.
#pragma once

#include <cstring>
#include <deque>
#include <string>
#include <vector>

#include "gmpi/IMpAudioHost.h"
#include "gmpi/MpEvent.h"

namespace kxtest {

struct PinUpdate {
    int timestamp;
    int pin;
    std::string bytes;  // short values stay in the string's own storage

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
    bool asBool() const { return bytes.find_first_not_of('\0') != std::string::npos; }
    std::wstring asText() const {
        std::wstring s(bytes.size() / 4, L'\0');
        std::memcpy(s.data(), bytes.data(), s.size() * 4);
        return s;
    }
};

struct Streaming {
    int timestamp;
    int pin;
    bool on;
};

class FakeAudioHost : public gmpi::IMpAudioHost, public gmpi::IMpProcessorHost {
public:
    FakeAudioHost() {
        updates.reserve(256);
        messages.reserve(64);
        streaming.reserve(64);
    }

    std::vector<PinUpdate> updates;
    std::vector<PinUpdate> messages;  // timestamp = message id
    std::vector<Streaming> streaming;
    int sleeps = 0;
    float sampleRate = 48000.0f;
    int tailLength = 0;  // what resetSleepCounter answers
    int refs = 0;        // references the module holds

    int32_t queryInterface(const gmpi::MpGuid& iid, void** out) override {
        *out = nullptr;
        if (iid == gmpi::MP_IID_HOST || gmpi::isUnknownIid(iid)) {
            *out = static_cast<gmpi::IMpAudioHost*>(this);
            ++refs;
            return gmpi::MP_OK;
        }
        if (iid == gmpi::MP_IID_PROCESSOR_HOST) {
            *out = static_cast<gmpi::IMpProcessorHost*>(this);
            return gmpi::MP_OK;
        }
        return gmpi::MP_NOSUPPORT;
    }
    int32_t addRef() override { return ++refs; }
    int32_t release() override { return --refs; }
    gmpi::IMpUnknown* unknown() { return static_cast<gmpi::IMpAudioHost*>(this); }

    int32_t setPin(int32_t timestamp, int32_t pinId, int32_t size, const void* data) override {
        updates.push_back({timestamp, pinId, std::string(static_cast<const char*>(data), size > 0 ? size : 0)});
        return gmpi::MP_OK;
    }
    int32_t setPinStreaming(int32_t timestamp, int32_t pinId, int32_t on) override {
        streaming.push_back({timestamp, pinId, on != 0});
        return gmpi::MP_OK;
    }
    int32_t sleep() override {
        ++sleeps;
        return gmpi::MP_OK;
    }
    int32_t sendMessageToGui(int32_t id, int32_t size, const void* data) override {
        messages.push_back({id, 0, std::string(static_cast<const char*>(data), size > 0 ? size : 0)});
        return gmpi::MP_OK;
    }
    int32_t resetSleepCounter(int32_t* count) override {
        *count = tailLength;
        return gmpi::MP_OK;
    }
    int32_t getSampleRate(float& rate) override {
        rate = sampleRate;
        return gmpi::MP_OK;
    }
    int32_t getBlockSize(int32_t& size) override {
        size = 64;
        return gmpi::MP_OK;
    }
    int32_t getBlockStart(int32_t& clock) override {
        clock = 0;
        return gmpi::MP_OK;
    }

    std::vector<PinUpdate> on(int pin) const {
        std::vector<PinUpdate> r;
        for (const auto& u : updates)
            if (u.pin == pin)
                r.push_back(u);
        return r;
    }
};

// Builds one block's event list; the events live as long as the builder (addresses are stable).
class Events {
public:
    template <class V>
    Events& set(int time, int pin, const V& value) {
        return raw(time, gmpi::EVENT_PIN_SET, pin, &value, sizeof(V));
    }
    Events& text(int time, int pin, const std::wstring& value) {
        return raw(time, gmpi::EVENT_PIN_SET, pin, value.data(), value.size() * sizeof(wchar_t));
    }
    Events& bytes(int time, int pin, const std::string& value) {
        return raw(time, gmpi::EVENT_PIN_SET, pin, value.data(), value.size());
    }
    Events& type(int time, int eventType, int pin = 0) { return raw(time, eventType, pin, nullptr, 0); }
    Events& graphStart() { return type(0, gmpi::EVENT_GRAPH_START); }

    Events& raw(int time, int eventType, int pin, const void* data, size_t size) {
        gmpi::MpEvent e{};
        e.timeDelta = time;
        e.eventType = eventType;
        e.parm1 = pin;
        e.parm2 = static_cast<int32_t>(size);
        if (size <= 8) {
            char inline8[8] = {};
            if (data)
                std::memcpy(inline8, data, size);
            std::memcpy(&e.parm3, inline8, 4);
            std::memcpy(&e.parm4, inline8 + 4, 4);
        } else {
            payloads_.emplace_back(static_cast<const char*>(data), size);
            e.extraData = payloads_.back().data();
        }
        events_.push_back(e);
        link();
        return *this;
    }
    const gmpi::MpEvent* list() const { return events_.empty() ? nullptr : &events_.front(); }

private:
    void link() {
        for (size_t i = 0; i + 1 < events_.size(); ++i)
            events_[i].next = &events_[i + 1];
    }
    std::deque<gmpi::MpEvent> events_;
    std::deque<std::string> payloads_;
};

}  // namespace kxtest
