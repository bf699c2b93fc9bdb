// Validation of DSP halves: an audio host that checks what the module sets, the legacy initialisation
// (setHost), open, a sample buffer for every audio pin, the description's defaults with the graph start,
// then hostile blocks: random lengths, up to eight time-stamped events each (values, wrong sizes,
// undeclared pins, MIDI bytes, streaming changes), hostile samples, and messages from the GUI half.
#include <algorithm>
#include <cstring>
#include <memory>

#include "gmpi/IMpAudioHost.h"
#include "gmpi/IMpLegacyInitialization.h"
#include "gmpi/IMpPlugin.h"
#include "validate/Validate.h"

namespace kxhost::validate {

namespace {

constexpr int32_t blockSize = 64;

std::string pinLabel(const PinInfo& pin) {
    return "pin " + std::to_string(pin.index) + " " + pinNameForPatch(pin.name) + " (" + datatypeName(pin.type) + ")";
}

class ValidationAudioHost final : public gmpi::IMpAudioHost, public gmpi::IMpProcessorHost {
public:
    explicit ValidationAudioHost(Subject& s) : s_(s) {}

    gmpi::IMpUnknown* unknown() { return static_cast<gmpi::IMpAudioHost*>(this); }

    int32_t queryInterface(const gmpi::MpGuid& iid, void** out) override {
        if (!out)
            return gmpi::MP_NOSUPPORT;
        *out = nullptr;
        if (iid == gmpi::MP_IID_HOST || gmpi::isUnknownIid(iid))
            *out = static_cast<gmpi::IMpAudioHost*>(this);
        else if (iid == gmpi::MP_IID_PROCESSOR_HOST)
            *out = static_cast<gmpi::IMpProcessorHost*>(this);
        else if (gmpi::IMpUnknown* face = s_.faces.find(iid)) {
            s_.refs.queried(iid);
            face->addRef();
            *out = face;
            return gmpi::MP_OK;
        } else
            return gmpi::MP_NOSUPPORT;
        s_.refs.queried(iid);
        s_.refs.addRef();
        return gmpi::MP_OK;
    }
    int32_t addRef() override { return s_.refs.addRef(); }
    int32_t release() override { return s_.refs.release(); }

    int32_t setPin(int32_t /*timestamp*/, int32_t pinId, int32_t size, const void* data) override {
        ++s_.tally.transmissions;
        const PinInfo* info = s_.pinAt(pinId);
        if (!info) {
            s_.fail("set pin " + std::to_string(pinId) + ", which its description does not declare");
            return gmpi::MP_FAIL;
        }
        if (size < 0 || (size > 0 && !data)) {
            s_.fail("set " + std::to_string(size) + " bytes from " + (data ? "data" : "a null pointer") + " on " +
                    pinLabel(*info));
            return gmpi::MP_FAIL;
        }
        // Copied at once, as the host promises: a size beyond the data is a read out of bounds here.
        Bytes bytes(static_cast<size_t>(size));
        if (size > 0)
            std::memcpy(bytes.data(), data, bytes.size());
        if (!Value::decode(info->type, size, bytes.data())) {
            ++s_.tally.malformedSent;
            return gmpi::MP_FAIL;
        }
        return gmpi::MP_OK;
    }
    int32_t setPinStreaming(int32_t, int32_t pinId, int32_t) override {
        if (!s_.pinAt(pinId)) {
            s_.fail("set streaming on pin " + std::to_string(pinId) + ", which its description does not declare");
            return gmpi::MP_FAIL;
        }
        return gmpi::MP_OK;
    }
    int32_t sleep() override { return gmpi::MP_OK; }
    int32_t sendMessageToGui(int32_t, int32_t size, const void* data) override {
        if (size < 0 || (size > 0 && !data))
            return gmpi::MP_FAIL;
        std::vector<uint8_t> copy(static_cast<size_t>(size));
        if (size > 0)
            std::memcpy(copy.data(), data, copy.size());
        return gmpi::MP_OK;
    }
    int32_t resetSleepCounter(int32_t* sleepCount) override {
        if (sleepCount)
            *sleepCount = blockSize;
        return gmpi::MP_OK;
    }
    int32_t getSampleRate(float& rate) override {
        rate = 44100.0f;
        return gmpi::MP_OK;
    }
    int32_t getBlockSize(int32_t& size) override {
        size = blockSize;
        return gmpi::MP_OK;
    }
    int32_t getBlockStart(int32_t& clock) override {
        clock = clock_;
        return gmpi::MP_OK;
    }

    int32_t clock_ = 0;

private:
    Subject& s_;
};

// One event the host owns for the length of a process call.
struct OwnedEvent {
    gmpi::MpEvent event{};
    std::vector<char> extra;
    std::string label;
};

class DspDriver final : public SideDriver {
public:
    void makeHost(Subject& s) override {
        host_ = std::make_unique<ValidationAudioHost>(s);
        s.hostFace = host_->unknown();
    }

    bool start(Subject& s) override {
        // createInstance already handed the host over through the legacy initialisation face.
        if (std::strcmp(s.via, "createInstance2") == 0) {
            void* face = nullptr;
            s.call("queryInterface(legacy initialisation)",
                   [&] { return s.object->queryInterface(gmpi::MP_IID_LEGACY_INITIALIZATION, &face); });
            if (!face) {
                s.fail("the DSP half does not take its host through the legacy initialisation face");
                return false;
            }
            auto* init = static_cast<gmpi::IMpLegacyInitialization*>(face);
            const int32_t rc = s.call("setHost", [&] { return init->setHost(s.hostFace); });
            s.call("release of the initialisation face", [&] { return init->release(); });
            if (rc != gmpi::MP_OK) {
                s.fail("setHost answered " + std::to_string(rc));
                return false;
            }
        }
        void* face = nullptr;
        s.call("queryInterface(plug-in 2)", [&] { return s.object->queryInterface(gmpi::MP_IID_PLUGIN2, &face); });
        if (!face) {
            s.fail("the DSP half does not answer the plug-in interface");
            return false;
        }
        plugin_ = static_cast<gmpi::IMpPlugin2*>(face);
        s.call("open", [&] { return plugin_->open(); });
        for (const PinInfo& pin : s.pins.pins)
            if (pin.type == Datatype::Audio) {
                buffers_.emplace_back(pin.index, std::vector<float>(blockSize, 0.0f));
                auto& samples = buffers_.back().second;
                s.call("setBuffer " + pinLabel(pin), [&] { return plugin_->setBuffer(pin.index, samples.data()); });
            }
        // The first block: every control pin's default, then the graph start.
        std::vector<OwnedEvent> events;
        for (const PinInfo& pin : s.pins.pins) {
            if (pin.type == Datatype::Audio || pin.type == Datatype::Midi)
                continue;
            const Value v = pin.defaultValue.value_or(Value(pin.type));
            const Bytes bytes = v.bytes();
            events.push_back(pinEvent(pin.index, gmpi::EVENT_PIN_SET, bytes.size(), bytes.data(),
                                      pinLabel(pin) + " default " + v.format()));
        }
        OwnedEvent graphStart;
        graphStart.event.eventType = gmpi::EVENT_GRAPH_START;
        graphStart.label = "graph start";
        events.push_back(std::move(graphStart));
        process(s, blockSize, events);
        return !s.stopped;
    }

    void round(Subject& s) override {
        if (s.chance(12)) {
            const Input in = s.inputs.message(s.rng);
            const int32_t id = s.chance(70) ? s.pick(4) : static_cast<int32_t>(s.rng());
            s.call("receiveMessageFromGui id " + std::to_string(id) + ", " + in.label,
                   [&] { return plugin_->receiveMessageFromGui(id, in.size(), in.data()); });
            return;
        }
        if (!buffers_.empty() && s.chance(20)) {
            auto& samples = buffers_[static_cast<size_t>(s.pick(static_cast<int>(buffers_.size())))].second;
            for (float& x : samples) {
                const Input in = s.inputs.value(Datatype::Audio, s.rng);
                std::memcpy(&x, in.bytes.data(), 4);
            }
        }
        const int32_t count = s.chance(10) ? 1 + s.pick(3) : blockSize - s.pick(8);
        std::vector<OwnedEvent> events;
        const int n = s.pick(9);
        const int pinCount = static_cast<int>(s.pins.pins.size());
        for (int i = 0; i < n; ++i) {
            const int kind = s.pick(100);
            if (pinCount > 0 && kind < 85) {
                const PinInfo& pin = s.pins.pins[static_cast<size_t>(s.pick(pinCount))];
                if (pin.type == Datatype::Audio) {
                    events.push_back(pinEvent(
                        pin.index, s.chance(50) ? gmpi::EVENT_PIN_STREAMING_START : gmpi::EVENT_PIN_STREAMING_STOP, 0,
                        nullptr, pinLabel(pin) + " streaming change"));
                    continue;
                }
                const Input in = kind < 60 ? s.inputs.value(pin.type, s.rng) : s.inputs.wrongSize(pin.type, s.rng);
                const int32_t type = pin.type == Datatype::Midi ? gmpi::EVENT_MIDI : gmpi::EVENT_PIN_SET;
                events.push_back(pinEvent(pin.index, type, static_cast<size_t>(in.size()),
                                          static_cast<const uint8_t*>(in.data()), pinLabel(pin) + " " + in.label));
            } else {
                const int32_t pin = Inputs::unknownPin(pinCount, s.openEnded(), s.rng);
                const Input in = s.inputs.value(Datatype::Int, s.rng);
                events.push_back(pinEvent(pin, gmpi::EVENT_PIN_SET, 4, in.bytes.data(),
                                          "undeclared pin " + std::to_string(pin) + ", " + in.label));
            }
        }
        // Time-ordered within the block, as the host promises.
        for (auto& e : events)
            e.event.timeDelta = s.pick(count);
        std::stable_sort(events.begin(), events.end(), [](const OwnedEvent& a, const OwnedEvent& b) {
            return a.event.timeDelta < b.event.timeDelta;
        });
        process(s, count, events);
    }

    void finish(Subject& s) override {
        if (plugin_)
            s.call("release of the plug-in face", [&] { return plugin_->release(); });
        plugin_ = nullptr;
    }

    void dropHost(Subject&) override { host_.reset(); }

private:
    static OwnedEvent pinEvent(int32_t pin, int32_t type, size_t size, const uint8_t* data, std::string label) {
        OwnedEvent e;
        e.event.eventType = type;
        e.event.parm1 = pin;
        e.event.parm2 = static_cast<int32_t>(size);
        if (size <= 8) {
            char inline8[8] = {};
            if (size > 0 && data)
                std::memcpy(inline8, data, size);
            std::memcpy(&e.event.parm3, inline8, 4);
            std::memcpy(&e.event.parm4, inline8 + 4, 4);
        } else {
            e.extra.assign(reinterpret_cast<const char*>(data), reinterpret_cast<const char*>(data) + size);
        }
        e.label = std::move(label);
        return e;
    }

    void process(Subject& s, int32_t count, std::vector<OwnedEvent>& events) {
        std::string what = "process " + std::to_string(count) + " samples";
        for (size_t i = 0; i < events.size(); ++i) {
            auto& e = events[i].event;
            e.extraData = events[i].extra.empty() ? nullptr : events[i].extra.data();
            e.next = i + 1 < events.size() ? &events[i + 1].event : nullptr;
            what +=
                (i ? "; " : ", events: ") + std::string("at ") + std::to_string(e.timeDelta) + " " + events[i].label;
        }
        const gmpi::MpEvent* first = events.empty() ? nullptr : &events.front().event;
        s.call(what, [&] {
            plugin_->process(count, first);
            return gmpi::MP_OK;
        });
        host_->clock_ += count;
    }

    std::unique_ptr<ValidationAudioHost> host_;
    gmpi::IMpPlugin2* plugin_ = nullptr;
    std::vector<std::pair<int, std::vector<float>>> buffers_;
};

const bool registered = Drivers::add(Side::Dsp, [] { return std::make_unique<DspDriver>(); });

}  // namespace

}  // namespace kxhost::validate
