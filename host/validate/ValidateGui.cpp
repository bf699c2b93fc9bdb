// Validation of GUI halves: the GUI host of both generations, setHost, initialize, the description's
// defaults, then hostile pin values, sizes, pins, voices, messages from the DSP half, tool tips and
// context menus, with the module's own transmissions checked and echoed back as a host does.
#include <cstring>
#include <memory>

#include "gmpi/IMpUserInterface2.h"
#include "gui/RunLoop.h"
#include "validate/Validate.h"

namespace kxhost::validate {

namespace {

// Echoes nest as deep as this before the host stops a cascade (a module answering its own echo).
constexpr int maxEchoDepth = 8;

std::string pinLabel(const PinInfo& pin) {
    return "pin " + std::to_string(pin.index) + " " + pinNameForPatch(pin.name) + " (" + datatypeName(pin.type) + ")";
}

// A value for a step label: long text and blobs by their size only.
std::string brief(const Value& v, int32_t size) {
    return size > 96 ? std::string(datatypeName(v.type())) + " of " + std::to_string(size) + " bytes" : v.format();
}

class GuiDriver final : public SideDriver {
public:
    void makeHost(Subject& s) override {
        host_ =
            std::make_unique<ValidationGuiHost>(s.refs, s.faces, s.folder, static_cast<int32_t>(s.pins.pins.size()));
        host_->onTransmit = [this, &s](int32_t pin, int32_t size, const void* data, int32_t voice) {
            return transmitted(s, pin, size, data, voice);
        };
        // There is no DSP half here: the host answers as for a module without one.
        host_->onMessageToAudio = [](int32_t, int32_t size, const void* data) {
            // Read the whole message, as a host copying it would: a size larger than the data shows here.
            std::vector<uint8_t> copy(static_cast<size_t>(size));
            if (size > 0)
                std::memcpy(copy.data(), data, copy.size());
            return gmpi::MP_FAIL;
        };
        s.hostFace = host_->unknown();
    }

    bool start(Subject& s) override {
        void* face = nullptr;
        s.call("queryInterface(GUI plug-in 2)",
               [&] { return s.object->queryInterface(gmpi::MP_IID_GUI_PLUGIN2B, &face); });
        if (!face) {
            s.fail("the GUI half does not answer the GUI plug-in interface");
            return false;
        }
        gui_ = static_cast<gmpi::IMpUserInterface2B*>(face);
        if (const int32_t rc = s.call("setHost", [&] { return gui_->setHost(s.hostFace); }); rc != gmpi::MP_OK) {
            s.fail("setHost answered " + std::to_string(rc));
            return false;
        }
        s.call("initialize", [&] { return gui_->initialize(); });
        for (const PinInfo& pin : s.pins.pins) {
            const Value v = pin.defaultValue.value_or(Value(pin.type));
            const Bytes bytes = v.bytes();
            deliver(s, pin.index, 0, static_cast<int32_t>(bytes.size()), bytes.data(),
                    pinLabel(pin) + " default " + v.format(), true);
        }
        return !s.stopped;
    }

    void round(Subject& s) override {
        const int pinCount = static_cast<int>(s.pins.pins.size());
        const int kind = s.pick(100);
        if (pinCount > 0 && kind < 40) {
            const PinInfo& pin = s.pins.pins[static_cast<size_t>(s.pick(pinCount))];
            const Input in = s.inputs.value(pin.type, s.rng);
            deliver(s, pin.index, Inputs::voice(s.rng), in.size(), in.data(), pinLabel(pin) + " " + in.label, true);
        } else if (pinCount > 0 && kind < 55) {
            const PinInfo& pin = s.pins.pins[static_cast<size_t>(s.pick(pinCount))];
            const Input in = s.inputs.wrongSize(pin.type, s.rng);
            deliver(s, pin.index, Inputs::voice(s.rng), in.size(), in.data(), pinLabel(pin) + " " + in.label, true);
        } else if (pinCount > 0 && kind < 62) {
            // setPin without notifyPin, or a notifyPin nothing was set for.
            const PinInfo& pin = s.pins.pins[static_cast<size_t>(s.pick(pinCount))];
            if (s.chance(50)) {
                const Input in = s.inputs.value(pin.type, s.rng);
                deliver(s, pin.index, 0, in.size(), in.data(), pinLabel(pin) + " " + in.label + ", not notified",
                        false);
            } else {
                s.call("notifyPin " + pinLabel(pin) + " alone", [&] { return gui_->notifyPin(pin.index, 0); });
            }
        } else if (kind < 70) {
            const int32_t pin = Inputs::unknownPin(pinCount, s.openEnded(), s.rng);
            const Input in = s.inputs.value(s.chance(50) ? Datatype::Int : Datatype::Text, s.rng);
            deliver(s, pin, 0, in.size(), in.data(), "undeclared pin " + std::to_string(pin) + ", " + in.label, true);
        } else if (kind < 80) {
            const Input in = s.inputs.message(s.rng);
            const int32_t id = s.chance(70) ? s.pick(4) : static_cast<int32_t>(s.rng());
            s.call("receiveMessageFromAudio id " + std::to_string(id) + ", " + in.label,
                   [&] { return gui_->receiveMessageFromAudio(id, in.size(), in.data()); });
        } else if (kind < 86) {
            const float x = Inputs::coordinate(s.rng), y = Inputs::coordinate(s.rng);
            if (s.chance(20)) {
                s.call("getToolTip with no string", [&] { return gui_->getToolTip(x, y, nullptr); });
            } else {
                auto* text = new ReturnString;
                s.call("getToolTip", [&] { return gui_->getToolTip(x, y, text); });
                text->release();
            }
        } else if (kind < 94) {
            const float x = Inputs::coordinate(s.rng), y = Inputs::coordinate(s.rng);
            int32_t selection = static_cast<int32_t>(s.rng());
            if (s.chance(20)) {
                s.call("populateContextMenu with no sink", [&] { return gui_->populateContextMenu(x, y, nullptr); });
            } else {
                auto* sink = new MenuSink;
                s.call("populateContextMenu", [&] { return gui_->populateContextMenu(x, y, sink); });
                const auto& items = sink->items();
                if (!items.empty() && s.chance(80))
                    selection = items[static_cast<size_t>(s.pick(static_cast<int>(items.size())))].id;
                sink->release();
            }
            s.call("onContextMenu " + std::to_string(selection), [&] { return gui_->onContextMenu(selection); });
        } else {
            // Timers the module started run between host calls, as on a real GUI thread.
            s.call("run loop (due timers)", [] {
                runloop::dispatchDue();
                return gmpi::MP_OK;
            });
        }
    }

    void finish(Subject& s) override {
        // Let a timer the module runs fire at least once against the state the rounds left.
        s.call("run loop (timers, up to 120 ms)", [] {
            runloop::runFor(120);
            return gmpi::MP_OK;
        });
        if (gui_)
            s.call("release of the GUI face", [&] { return gui_->release(); });
        gui_ = nullptr;
    }

    void dropHost(Subject&) override { host_.reset(); }

private:
    // setPin, then (when notify) notifyPin: what a host does for one value.
    void deliver(Subject& s, int32_t pin, int32_t voice, int32_t size, const void* data, const std::string& what,
                 bool notify) {
        const std::string v = voice ? ", voice " + std::to_string(voice) : std::string();
        s.call("setPin " + what + v, [&] { return gui_->setPin(pin, voice, size, data); });
        if (notify && !s.stopped)
            s.call("notifyPin " + what + v, [&] { return gui_->notifyPin(pin, voice); });
    }

    int32_t transmitted(Subject& s, int32_t pin, int32_t size, const void* data, int32_t /*voice*/) {
        ++s.tally.transmissions;
        const PinInfo* info = s.pinAt(pin);
        if (!info) {
            s.fail("transmitted on pin " + std::to_string(pin) + ", which its description does not declare");
            return gmpi::MP_FAIL;
        }
        // Copy first, as a host does: a size larger than the data is a read out of bounds right here.
        if (size < 0 || (size > 0 && !data)) {
            s.fail("transmitted " + std::to_string(size) + " bytes from " + (data ? "data" : "a null pointer") +
                   " on " + pinLabel(*info));
            return gmpi::MP_FAIL;
        }
        Bytes bytes(static_cast<size_t>(size));
        if (size > 0)
            std::memcpy(bytes.data(), data, bytes.size());
        const auto value = Value::decode(info->type, size, bytes.data());
        if (!value) {
            // Refused, as a host refuses it. Not a failure: modules that copy raw bytes (splitters) pass
            // on what they were given, as they are meant to.
            ++s.tally.malformedSent;
            return gmpi::MP_FAIL;
        }
        // The host's echo into the sender's own pin, which modules' re-entry guards exist for; never on a
        // pin whose description forbids it.
        if (!info->echo)
            return gmpi::MP_OK;
        if (depth_ >= maxEchoDepth) {
            ++s.tally.feedbackCuts;
            return gmpi::MP_OK;
        }
        if (s.chance(50) && !s.stopped) {
            ++depth_;
            deliver(s, pin, 0, size, bytes.data(), pinLabel(*info) + " echo of " + brief(*value, size), true);
            --depth_;
        }
        return gmpi::MP_OK;
    }

    std::unique_ptr<ValidationGuiHost> host_;
    gmpi::IMpUserInterface2B* gui_ = nullptr;
    int depth_ = 0;
};

const bool registered = Drivers::add(Side::Gui, [] { return std::make_unique<GuiDriver>(); });

}  // namespace

}  // namespace kxhost::validate
