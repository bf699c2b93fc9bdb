// The host's audio side: runs DSP halves in blocks with time-stamped event lists, gives each its audio
// host object (pin values and streaming out, sleep, messages to the GUI side, the sample rate), carries
// values and signals along DSP wires, queues what the GUI side sends for the next block, collects what
// the DSP halves send to the GUI side, and captures audio outputs. Written against gmpi/ only.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "gmpi/IMpAudioHost.h"
#include "gmpi/IMpPlugin.h"
#include "gmpi/MpEvent.h"

namespace kxhost {

// What the engine must know of a DSP pin: audio pins get sample buffers, the rest carry values.
enum class DspPinKind { Value, Audio, Midi };

struct DspPinSpec {
    int index = 0;
    DspPinKind kind = DspPinKind::Value;
    bool output = false;
};

// A value a DSP half set on an output pin, at an absolute sample time.
struct DspValueOut {
    int slot;
    int pin;
    int64_t time;
    std::string bytes;
    uint64_t sequence;  // the order of everything the DSP halves sent, values and messages together
};

// A message a DSP half sent to its GUI half.
struct DspMessageOut {
    int slot;
    int id;
    std::string bytes;
    uint64_t sequence;
};

class AudioEngine {
public:
    explicit AudioEngine(float sampleRate = 44100.0f, int blockSize = 64);
    ~AudioEngine();
    AudioEngine(const AudioEngine&) = delete;
    AudioEngine& operator=(const AudioEngine&) = delete;

    float sampleRate() const { return sampleRate_; }
    int blockSize() const { return blockSize_; }
    // Samples processed since start.
    int64_t sampleClock() const { return clock_; }

    // Adds a DSP half with its pins; returns its slot. The slot's host object is what the module's
    // setHost (or the factory's createInstance) must be given.
    int add(std::vector<DspPinSpec> pins);
    gmpi::IMpUnknown* hostObject(int slot);
    // Hands the engine the module (it takes its own reference to the processing face, released with
    // the engine or by detach) and gives every audio pin its buffer. A module attached after start is
    // opened at once and gets the graph start in its first block. False when the object is not a DSP
    // half.
    bool attach(int slot, gmpi::IMpUnknown* module);
    // Lets the slot's module go (its reference released): what waits for it is dropped, its signals
    // fall silent, and nothing is called until a module is attached again.
    void detach(int slot);

    // A wire between DSP pins: an audio output feeds the input's buffer and its streaming changes; a value
    // output's updates become events of the input at the same sample (or at the start of the next block
    // when the receiver has already run in this one). Slots run in the order they were added.
    void connect(int fromSlot, int fromPin, int toSlot, int toPin);

    // A value for an input pin from outside the audio graph: an event offset samples after the start of
    // the next block (in a later block when the offset reaches past this one).
    void queueValue(int slot, int pin, const void* data, int32_t size, int64_t offset = 0);
    // A message from the GUI half: delivered before the next block.
    void queueMessage(int slot, int id, const void* data, int32_t size);

    // Opens every module; the first block carries the queued values and then the graph start.
    void start();
    // Runs this many samples in blocks of the block size (the last one shorter). afterBlock, if set, runs
    // after each block (the GUI side takes what the DSP halves sent).
    void run(int64_t samples);
    std::function<void()> afterBlock;

    // Captures an audio output from now on; captured() returns its samples since then.
    void capture(int slot, int pin);
    const std::vector<float>& captured(int slot, int pin) const;

    // What the DSP halves sent since the last take, in order.
    std::vector<DspValueOut> takeValues();
    std::vector<DspMessageOut> takeMessages();

    bool asleep(int slot) const;
    // The last value a DSP output pin set (empty when none).
    const std::string& lastValue(int slot, int pin) const;

    struct Slot;

private:
    friend class AudioHostObject;
    void processSlot(Slot& slot, int32_t count);
    void route(Slot& from, int32_t timestamp, int32_t pin, int32_t eventType, const void* data, int32_t size);
    void deliverMessages(Slot& slot);

    float sampleRate_;
    int blockSize_;
    int64_t clock_ = 0;
    int64_t blockStart_ = 0;
    bool started_ = false;
    bool inBlock_ = false;
    std::vector<std::unique_ptr<Slot>> slots_;
    std::vector<DspValueOut> values_;
    std::vector<DspMessageOut> messages_;
    uint64_t sent_ = 0;
    std::vector<float> silence_;
};

}  // namespace kxhost
