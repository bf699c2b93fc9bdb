#include "audio/AudioEngine.h"

#include <algorithm>
#include <cstring>

namespace kxhost {

namespace {

// A value or signal change waiting for a slot's block: at is the absolute sample time it was sent for.
// An event whose time has passed when its receiver runs (it ran earlier in the block the event was
// sent in) comes at the start of the receiver's next block.
struct Pending {
    int64_t at;
    int32_t type;
    int32_t pin;
    std::string bytes;
};

const std::string kNoValue;

}  // namespace

// The audio host a DSP half sees. One per slot; owned by the engine, so the counts are not kept.
class AudioHostObject final : public gmpi::IMpAudioHost, public gmpi::IMpProcessorHost {
public:
    AudioHostObject(AudioEngine& engine, AudioEngine::Slot& slot) : engine_(engine), slot_(slot) {}

    int32_t queryInterface(const gmpi::MpGuid& iid, void** out) override {
        if (!out)
            return gmpi::MP_NOSUPPORT;
        *out = nullptr;
        if (iid == gmpi::MP_IID_HOST || gmpi::isUnknownIid(iid))
            *out = static_cast<gmpi::IMpAudioHost*>(this);
        else if (iid == gmpi::MP_IID_PROCESSOR_HOST)
            *out = static_cast<gmpi::IMpProcessorHost*>(this);
        else
            return gmpi::MP_NOSUPPORT;
        return gmpi::MP_OK;
    }
    int32_t addRef() override { return 1; }
    int32_t release() override { return 1; }

    int32_t setPin(int32_t timestamp, int32_t pinId, int32_t size, const void* data) override;
    int32_t setPinStreaming(int32_t timestamp, int32_t pinId, int32_t isStreaming) override;
    int32_t sleep() override;
    int32_t sendMessageToGui(int32_t id, int32_t size, const void* data) override;
    int32_t resetSleepCounter(int32_t* sleepCount) override {
        if (sleepCount)
            *sleepCount = engine_.blockSize();
        return gmpi::MP_OK;
    }
    int32_t getSampleRate(float& rate) override {
        rate = engine_.sampleRate();
        return gmpi::MP_OK;
    }
    int32_t getBlockSize(int32_t& size) override {
        size = engine_.blockSize();
        return gmpi::MP_OK;
    }
    int32_t getBlockStart(int32_t& clock) override {
        clock = static_cast<int32_t>(engine_.sampleClock() & 0x7fffffff);
        return gmpi::MP_OK;
    }

private:
    AudioEngine& engine_;
    AudioEngine::Slot& slot_;
};

struct AudioEngine::Slot {
    Slot(AudioEngine& engine, int index, std::vector<DspPinSpec> pinSpecs)
        : index(index), host(engine, *this), pins(std::move(pinSpecs)) {
        pending.reserve(32);
        current.reserve(32);
        events.reserve(32);
    }

    const DspPinSpec* pin(int id) const {
        for (const auto& p : pins)
            if (p.index == id)
                return &p;
        return nullptr;
    }

    int index;
    AudioHostObject host;
    std::vector<DspPinSpec> pins;
    gmpi::IMpPlugin2* plugin = nullptr;
    std::map<int, std::vector<float>> outBuffers;
    std::map<int, float*> inBuffers;
    std::map<int, std::vector<std::pair<Slot*, int>>> wires;  // output pin -> inputs
    std::map<int, std::string> last;
    std::map<int, std::vector<float>> captures;
    std::vector<Pending> pending, current;
    std::vector<gmpi::MpEvent> events;
    std::vector<std::pair<int, std::string>> messagesIn;
    bool graphStart = false;
    bool asleep = false;
    bool sleepCalled = false;
    int lastCount = 0;
};

// ---- the host object

int32_t AudioHostObject::setPin(int32_t timestamp, int32_t pinId, int32_t size, const void* data) {
    const DspPinSpec* spec = slot_.pin(pinId);
    if (!spec || !spec->output || size < 0 || (size > 0 && !data))
        return gmpi::MP_FAIL;
    engine_.route(slot_, timestamp, pinId, spec->kind == DspPinKind::Midi ? gmpi::EVENT_MIDI : gmpi::EVENT_PIN_SET,
                  data, size);
    return gmpi::MP_OK;
}

int32_t AudioHostObject::setPinStreaming(int32_t timestamp, int32_t pinId, int32_t isStreaming) {
    const DspPinSpec* spec = slot_.pin(pinId);
    if (!spec || !spec->output)
        return gmpi::MP_FAIL;
    engine_.route(slot_, timestamp, pinId,
                  isStreaming ? gmpi::EVENT_PIN_STREAMING_START : gmpi::EVENT_PIN_STREAMING_STOP, nullptr, 0);
    return gmpi::MP_OK;
}

int32_t AudioHostObject::sleep() {
    slot_.sleepCalled = true;
    return gmpi::MP_OK;
}

int32_t AudioHostObject::sendMessageToGui(int32_t id, int32_t size, const void* data) {
    if (size < 0 || (size > 0 && !data))
        return gmpi::MP_FAIL;
    engine_.messages_.push_back(
        {slot_.index, id, std::string(static_cast<const char*>(data), static_cast<size_t>(size)), engine_.sent_++});
    return gmpi::MP_OK;
}

// ---- the engine

AudioEngine::AudioEngine(float sampleRate, int blockSize)
    : sampleRate_(sampleRate), blockSize_(blockSize > 0 ? blockSize : 1), silence_(static_cast<size_t>(blockSize_)) {}

AudioEngine::~AudioEngine() {
    for (auto& slot : slots_)
        if (slot->plugin)
            slot->plugin->release();
}

int AudioEngine::add(std::vector<DspPinSpec> pins) {
    const int index = static_cast<int>(slots_.size());
    auto slot = std::make_unique<Slot>(*this, index, std::move(pins));
    for (const auto& p : slot->pins) {
        if (p.kind != DspPinKind::Audio)
            continue;
        if (p.output)
            slot->outBuffers[p.index].assign(static_cast<size_t>(blockSize_), 0.0f);
        else
            slot->inBuffers[p.index] = silence_.data();
    }
    slots_.push_back(std::move(slot));
    return index;
}

gmpi::IMpUnknown* AudioEngine::hostObject(int slot) {
    return static_cast<gmpi::IMpAudioHost*>(&slots_.at(static_cast<size_t>(slot))->host);
}

bool AudioEngine::attach(int index, gmpi::IMpUnknown* module) {
    Slot& slot = *slots_.at(static_cast<size_t>(index));
    void* face = nullptr;
    if (!module || module->queryInterface(gmpi::MP_IID_PLUGIN2, &face) != gmpi::MP_OK || !face)
        return false;
    if (slot.plugin)
        slot.plugin->release();
    slot.plugin = static_cast<gmpi::IMpPlugin2*>(face);
    for (auto& [pin, buffer] : slot.outBuffers)
        slot.plugin->setBuffer(pin, buffer.data());
    for (auto& [pin, buffer] : slot.inBuffers)
        slot.plugin->setBuffer(pin, buffer);
    if (started_) {
        slot.plugin->open();
        slot.graphStart = true;
    }
    return true;
}

void AudioEngine::detach(int index) {
    Slot& slot = *slots_.at(static_cast<size_t>(index));
    if (slot.plugin)
        slot.plugin->release();
    slot.plugin = nullptr;
    slot.pending.clear();
    slot.messagesIn.clear();
    slot.graphStart = false;
    slot.asleep = false;
    slot.lastCount = 0;
    for (auto& [pin, buffer] : slot.outBuffers)
        std::fill(buffer.begin(), buffer.end(), 0.0f);
}

void AudioEngine::connect(int fromSlot, int fromPin, int toSlot, int toPin) {
    Slot& from = *slots_.at(static_cast<size_t>(fromSlot));
    Slot& to = *slots_.at(static_cast<size_t>(toSlot));
    from.wires[fromPin].push_back({&to, toPin});
    const auto out = from.outBuffers.find(fromPin);
    if (out != from.outBuffers.end() && to.inBuffers.count(toPin)) {
        to.inBuffers[toPin] = out->second.data();
        if (to.plugin)
            to.plugin->setBuffer(toPin, out->second.data());
    }
}

void AudioEngine::queueValue(int slot, int pin, const void* data, int32_t size, int64_t offset) {
    if (size < 0 || (size > 0 && !data))
        return;
    Slot& s = *slots_.at(static_cast<size_t>(slot));
    s.pending.push_back({clock_ + std::max<int64_t>(offset, 0), gmpi::EVENT_PIN_SET, pin,
                         std::string(static_cast<const char*>(data), static_cast<size_t>(size))});
}

void AudioEngine::queueMessage(int slot, int id, const void* data, int32_t size) {
    if (size < 0 || (size > 0 && !data))
        return;
    slots_.at(static_cast<size_t>(slot))
        ->messagesIn.push_back({id, std::string(static_cast<const char*>(data), static_cast<size_t>(size))});
}

void AudioEngine::start() {
    if (started_)
        return;
    started_ = true;
    for (auto& slot : slots_) {
        if (slot->plugin)
            slot->plugin->open();
        slot->graphStart = true;
    }
}

void AudioEngine::route(Slot& from, int32_t timestamp, int32_t pin, int32_t eventType, const void* data, int32_t size) {
    // Between blocks (a message being handled) a time stamp refers to the next block.
    const int64_t block = inBlock_ ? blockStart_ : clock_;
    const int32_t stamp = std::clamp(timestamp, 0, blockSize_ - 1);
    std::string bytes(static_cast<const char*>(data), data ? static_cast<size_t>(size) : 0);
    if (eventType == gmpi::EVENT_PIN_SET || eventType == gmpi::EVENT_MIDI) {
        from.last[pin] = bytes;
        values_.push_back({from.index, pin, block + stamp, bytes, sent_++});
    }
    const auto wires = from.wires.find(pin);
    if (wires == from.wires.end())
        return;
    for (auto& [to, toPin] : wires->second)
        to->pending.push_back({block + stamp, eventType, toPin, bytes});
}

void AudioEngine::deliverMessages(Slot& slot) {
    if (!slot.plugin || slot.messagesIn.empty())
        return;
    // Taken first: a module's answer may queue further messages, which wait for the next block.
    auto messages = std::move(slot.messagesIn);
    slot.messagesIn.clear();
    for (auto& [id, bytes] : messages)
        slot.plugin->receiveMessageFromGui(id, static_cast<int32_t>(bytes.size()), bytes.data());
}

void AudioEngine::processSlot(Slot& slot, int32_t count) {
    // Events due in this block are taken (in the order they were sent); later ones keep waiting.
    // Done in place, without allocating in the audio loop.
    const int64_t blockEnd = blockStart_ + count;
    slot.current.clear();
    size_t kept = 0;
    for (size_t i = 0; i < slot.pending.size(); ++i) {
        if (slot.pending[i].at < blockEnd)
            slot.current.push_back(std::move(slot.pending[i]));
        else if (kept++ != i)
            slot.pending[kept - 1] = std::move(slot.pending[i]);
    }
    slot.pending.resize(kept);
    if (!slot.plugin) {
        slot.current.clear();
        return;
    }
    if (slot.asleep && slot.current.empty() && !slot.graphStart) {
        // A sleeping module's signals hold their last sample.
        for (auto& [pin, buffer] : slot.outBuffers)
            std::fill(buffer.begin(), buffer.begin() + count, slot.lastCount ? buffer[slot.lastCount - 1] : 0.0f);
        slot.lastCount = count;
        return;
    }
    slot.asleep = false;
    slot.sleepCalled = false;

    slot.events.clear();
    for (const Pending& p : slot.current) {
        gmpi::MpEvent e{};
        e.timeDelta = static_cast<int32_t>(std::clamp<int64_t>(p.at - blockStart_, 0, count - 1));
        e.eventType = p.type;
        e.parm1 = p.pin;
        e.parm2 = static_cast<int32_t>(p.bytes.size());
        if (p.bytes.size() <= 8) {
            char inline8[8] = {};
            std::memcpy(inline8, p.bytes.data(), p.bytes.size());
            std::memcpy(&e.parm3, inline8, 4);
            std::memcpy(&e.parm4, inline8 + 4, 4);
        } else {
            e.extraData = const_cast<char*>(p.bytes.data());
        }
        slot.events.push_back(e);
    }
    if (slot.graphStart) {
        gmpi::MpEvent e{};
        e.eventType = gmpi::EVENT_GRAPH_START;
        slot.events.push_back(e);
        slot.graphStart = false;
    }
    // Stable by time: events of one time stamp keep the order they were sent in.
    for (size_t i = 1; i < slot.events.size(); ++i)
        for (size_t j = i; j > 0 && slot.events[j - 1].timeDelta > slot.events[j].timeDelta; --j)
            std::swap(slot.events[j - 1], slot.events[j]);
    for (size_t i = 0; i < slot.events.size(); ++i)
        slot.events[i].next = i + 1 < slot.events.size() ? &slot.events[i + 1] : nullptr;

    slot.plugin->process(count, slot.events.empty() ? nullptr : slot.events.data());
    slot.current.clear();
    slot.lastCount = count;
    if (slot.sleepCalled)
        slot.asleep = true;
}

void AudioEngine::run(int64_t samples) {
    if (!started_)
        start();
    while (samples > 0) {
        const auto count = static_cast<int32_t>(std::min<int64_t>(samples, blockSize_));
        for (auto& slot : slots_)
            deliverMessages(*slot);
        blockStart_ = clock_;
        inBlock_ = true;
        for (auto& slot : slots_)
            processSlot(*slot, count);
        inBlock_ = false;
        for (auto& slot : slots_)
            for (auto& [pin, samplesSoFar] : slot->captures) {
                const auto& buffer = slot->outBuffers[pin];
                samplesSoFar.insert(samplesSoFar.end(), buffer.begin(), buffer.begin() + count);
            }
        clock_ += count;
        samples -= count;
        if (afterBlock)
            afterBlock();
    }
}

void AudioEngine::capture(int slot, int pin) {
    Slot& s = *slots_.at(static_cast<size_t>(slot));
    if (s.outBuffers.count(pin))
        s.captures[pin];
}

const std::vector<float>& AudioEngine::captured(int slot, int pin) const {
    static const std::vector<float> none;
    const Slot& s = *slots_.at(static_cast<size_t>(slot));
    const auto it = s.captures.find(pin);
    return it == s.captures.end() ? none : it->second;
}

std::vector<DspValueOut> AudioEngine::takeValues() { return std::exchange(values_, {}); }
std::vector<DspMessageOut> AudioEngine::takeMessages() { return std::exchange(messages_, {}); }

bool AudioEngine::asleep(int slot) const { return slots_.at(static_cast<size_t>(slot))->asleep; }

const std::string& AudioEngine::lastValue(int slot, int pin) const {
    const Slot& s = *slots_.at(static_cast<size_t>(slot));
    const auto it = s.last.find(pin);
    return it == s.last.end() ? kNoValue : it->second;
}

}  // namespace kxhost
