// The session's audio side: every DSP half runs in an AudioEngine. Values for DSP pins become events of
// the next block; what DSP halves send (pin values, messages to their GUI half) reaches the GUI side after
// each block; audio wires share buffers inside the engine and every audio output is captured.
//
//   audio RATE BLOCK                           sample rate and block size (default 44100 64)
//   run SAMPLES                                runs the audio side (the first run opens the modules)
//   expect-audio inst.Pin AT VALUE [AT VALUE]  AT is a sample offset (N) or a range (A..B, B excluded)
//                                              counted from the start of the last run
//
// "set inst.dsp.Pin VALUE at N" places a value N samples into the next run; a DSP half's transmissions
// reach the session with their place in the run that sent them.
#include <any>
#include <cmath>
#include <map>
#include <memory>
#include <ostream>
#include <set>
#include <sstream>

#include "audio/AudioEngine.h"
#include "gmpi/IMpLegacyInitialization.h"
#include "patch/Registry.h"
#include "session/Session.h"

namespace kxhost {

namespace {

struct AudioOptions {
    float sampleRate = 44100.0f;
    int blockSize = 64;
};

DspPinKind kindOf(Datatype type) {
    switch (type) {
        case Datatype::Audio:
            return DspPinKind::Audio;
        case Datatype::Midi:
            return DspPinKind::Midi;
        default:
            return DspPinKind::Value;
    }
}

class AudioSide final : public Extension {
public:
    void instanceCreated(Session& s, Instance& inst) override {
        if (!inst.dsp)
            return;
        if (!engine_) {
            AudioOptions options;
            if (auto it = s.patch().extensions.find("audio"); it != s.patch().extensions.end())
                options = std::any_cast<AudioOptions>(it->second);
            engine_ = std::make_unique<AudioEngine>(options.sampleRate, options.blockSize);
        }
        // An instance created again keeps its slot: its wires and captures stay.
        auto known = slots_.find(&inst);
        if (known == slots_.end()) {
            std::vector<DspPinSpec> pins;
            for (const auto& pin : inst.side(Side::Dsp)->pins)
                pins.push_back({pin.index, kindOf(pin.type), pin.output});
            const int slot = engine_->add(std::move(pins));
            known = slots_.emplace(&inst, slot).first;
            bySlot_.push_back(&inst);
            for (const auto& pin : inst.side(Side::Dsp)->pins)
                if (pin.type == Datatype::Audio && pin.output)
                    engine_->capture(slot, pin.index);
        }
        const int slot = known->second;

        void* face = nullptr;
        if (inst.dsp->queryInterface(gmpi::MP_IID_LEGACY_INITIALIZATION, &face) == gmpi::MP_OK && face) {
            auto* init = static_cast<gmpi::IMpLegacyInitialization*>(face);
            if (const int32_t rc = init->setHost(engine_->hostObject(slot)); rc != gmpi::MP_OK)
                s.warn(inst.name() + ": the dsp side's setHost returned " + std::to_string(rc));
            init->release();
        } else {
            s.warn(inst.name() + ": the dsp side takes no host");
        }
        if (!engine_->attach(slot, inst.dsp))
            s.warn(inst.name() + ": the dsp side offers no processing interface; it will not run");
    }

    void started(Session& s) override {
        if (!engine_)
            return;
        connectWires(s);
        engine_->afterBlock = [this, &s] { flush(s); };
    }

    void instanceStarted(Session& s, Instance&) override {
        if (engine_) {
            connectWires(s);
            if (!engine_->afterBlock)
                engine_->afterBlock = [this, &s] { flush(s); };
        }
    }

    void instanceReleasing(Session&, Instance& inst) override {
        if (const auto it = slots_.find(&inst); it != slots_.end())
            engine_->detach(it->second);
    }

    bool deliverToDsp(Session&, Instance& inst, int pin, const Value& value, int64_t offset) override {
        const auto it = slots_.find(&inst);
        if (it == slots_.end())
            return false;
        // The host's echo of a DSP output, or a value for a signal pin, is not an event for the module.
        const PinInfo* info = inst.side(Side::Dsp)->byIndex(pin);
        if (!info || info->output || info->type == Datatype::Audio)
            return true;
        engine_->queueValue(it->second, pin, value.data(), value.size(), offset);
        return true;
    }

    std::optional<int32_t> messageToAudio(Session&, Instance& inst, int32_t id, int32_t size,
                                          const void* data) override {
        const auto it = slots_.find(&inst);
        if (it == slots_.end() || !inst.dsp)
            return std::nullopt;
        engine_->queueMessage(it->second, id, data, size);
        return gmpi::MP_OK;
    }

    void finishing(Session&) override {
        if (engine_)
            engine_->afterBlock = nullptr;
    }

    // ---- for the steps
    void run(Session& s, int64_t samples) {
        if (!engine_) {
            s.warn("run: the patch has no dsp side");
            return;
        }
        if (!opened_) {
            opened_ = true;
            engine_->start();
            flush(s);
        }
        runStart_ = engine_->sampleClock();
        engine_->run(samples);
    }

    // The captured samples of an audio output from the start of the last run on, or null.
    const float* signal(Session& s, const PinRef& pin, size_t& count) const {
        if (!engine_)
            return nullptr;
        const auto& all = engine_->captured(slot(s, pin.instance), pin.index);
        const auto skip = static_cast<size_t>(runStart_);
        count = all.size() > skip ? all.size() - skip : 0;
        return all.data() + std::min(skip, all.size());
    }

private:
    int slot(Session& s, const std::string& instance) const { return slots_.at(s.instance(instance)); }

    // Audio wires share buffers once both ends have a slot (instances created later join then).
    void connectWires(Session& s) {
        const auto& wires = s.patch().wires;
        for (size_t i = 0; i < wires.size(); ++i) {
            const WireDecl& wire = wires[i];
            if (wire.from.side != Side::Dsp || wire.to.side != Side::Dsp || connected_.count(i))
                continue;
            const PinInfo* info = s.patch().pin(wire.from);
            const auto from = slots_.find(s.instance(wire.from.instance));
            const auto to = slots_.find(s.instance(wire.to.instance));
            if (!info || info->type != Datatype::Audio || from == slots_.end() || to == slots_.end())
                continue;
            engine_->connect(from->second, wire.from.index, to->second, wire.to.index);
            connected_.insert(i);
        }
    }

    // What the DSP halves sent during the block reaches the GUI side in the order it was sent: pin values
    // through the host's routing (wires, parameters) with their place in the run, messages into the GUI
    // half of the same instance.
    void flush(Session& s) {
        const auto values = engine_->takeValues();
        const auto messages = engine_->takeMessages();
        auto v = values.begin();
        auto m = messages.begin();
        while (v != values.end() || m != messages.end()) {
            if (m == messages.end() || (v != values.end() && v->sequence < m->sequence)) {
                s.transmit(*bySlot_[static_cast<size_t>(v->slot)], Side::Dsp, v->pin,
                           static_cast<int32_t>(v->bytes.size()), v->bytes.data(), v->time - runStart_);
                ++v;
            } else {
                s.messageToGui(*bySlot_[static_cast<size_t>(m->slot)], m->id, static_cast<int32_t>(m->bytes.size()),
                               m->bytes.data());
                ++m;
            }
        }
    }

    std::unique_ptr<AudioEngine> engine_;
    std::map<const Instance*, int> slots_;
    std::vector<Instance*> bySlot_;
    std::set<size_t> connected_;  // indexes of the patch's audio wires already joined
    bool opened_ = false;
    int64_t runStart_ = 0;
};

// audio RATE BLOCK
void audioDirective(Parser& p, const Line& line) {
    p.arity(line, 3, 3, "audio SAMPLE_RATE BLOCK_SIZE");
    AudioOptions options;
    const Value rate = p.value(line, line.tokens[1], Datatype::Float);
    options.sampleRate = rate.asFloat();
    options.blockSize = p.integer(line, line.tokens[2]);
    if (!(options.sampleRate > 0.0f) || options.blockSize < 1 || options.blockSize > 65536)
        p.fail(line, "the sample rate must be positive and the block size between 1 and 65536");
    p.patch.extensions["audio"] = options;
}

// run SAMPLES
Action compileRun(Parser& p, const Line& line) {
    p.arity(line, 2, 2, "run SAMPLES");
    const int samples = p.integer(line, line.tokens[1]);
    if (samples < 0)
        p.fail(line, "run takes a number of samples, not " + std::to_string(samples));
    return [samples](Session& s) {
        if (auto* audio = s.extension<AudioSide>())
            audio->run(s, samples);
    };
}

struct Expected {
    size_t from;
    size_t to;  // excluded
    float value;
};

// expect-audio inst.Pin AT VALUE [AT VALUE ...]
Action compileExpectAudio(Parser& p, const Line& line) {
    p.arity(line, 4, -1, "expect-audio instance.Pin OFFSET VALUE [OFFSET VALUE ...]");
    if (line.tokens.size() % 2 != 0)
        p.fail(line, "expect-audio takes pairs of OFFSET (N or A..B) and VALUE");
    const PinRef pin = p.pin(line, line.tokens[1]);
    const PinInfo* info = p.patch.pin(pin);
    if (info->type != Datatype::Audio || !info->output)
        p.fail(line, p.patch.label(pin) + " is not an audio output");
    std::vector<Expected> checks;
    for (size_t i = 2; i < line.tokens.size(); i += 2) {
        const std::string& at = line.tokens[i].raw;
        const size_t dots = at.find("..");
        Token first{at.substr(0, dots), "", false};
        const int a = p.integer(line, first);
        int b = a + 1;
        if (dots != std::string::npos) {
            Token second{at.substr(dots + 2), "", false};
            b = p.integer(line, second);
        }
        if (a < 0 || b <= a)
            p.fail(line, "'" + at + "' is no sample offset or range");
        const Value v = p.value(line, line.tokens[i + 1], Datatype::Float);
        checks.push_back({static_cast<size_t>(a), static_cast<size_t>(b), v.asFloat()});
    }
    const std::string label = p.patch.label(pin);
    const Location where = line.where;
    return [pin, checks, label, where](Session& s) {
        auto* audio = s.extension<AudioSide>();
        size_t count = 0;
        const float* samples = audio ? audio->signal(s, pin, count) : nullptr;
        for (const auto& c : checks) {
            if (!samples || c.to > count) {
                s.fail(where, "expectation failed: " + label + " has " + std::to_string(count) +
                                  " samples since the last run, fewer than " + std::to_string(c.to));
                return;
            }
            for (size_t i = c.from; i < c.to; ++i) {
                if (samples[i] == c.value || (std::isnan(samples[i]) && std::isnan(c.value)))
                    continue;
                std::ostringstream what;
                what << "expectation failed: " << label << " is " << samples[i] << " at sample " << i << ", expected "
                     << c.value;
                s.fail(where, what.str());
                break;
            }
        }
    };
}

const bool registered = Extensions::add([] { return std::make_unique<AudioSide>(); }) &&
                        Directives::add("audio", audioDirective) && Steps::add("run", compileRun) &&
                        Steps::add("expect-audio", compileExpectAudio, true);

}  // namespace

}  // namespace kxhost
