// The session's extension point: a part of the host that follows a session's life (the panel, the audio
// side, host parameters). Registered like steps and directives, by a static registration in the file
// that implements it.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "patch/Patch.h"

namespace kxhost {

class Instance;
class Session;

// A part of the host that follows a session's life. One object per session, made by its registered
// maker; reach it with Session::extension<T>().
class Extension {
public:
    virtual ~Extension() = default;
    // An instance's halves are created (at start, or by a "create" step); the GUI half has not been
    // given its host yet. The place to offer extra host faces (Instance::offer) or to take over the DSP
    // half.
    virtual void instanceCreated(Session&, Instance&) {}
    // Every instance is set up and initialised; the initial values have not been delivered yet.
    virtual void started(Session&) {}
    // An instance a "create" step made is set up and initialised, before its defaults.
    virtual void instanceStarted(Session&, Instance&) {}
    // An instance's halves are about to be released by a "release" step: drop what refers to them.
    virtual void instanceReleasing(Session&, Instance&) {}
    // A step has run (and the module calls it made have returned).
    virtual void stepDone(Session&) {}
    // A value for a pin of a DSP half, offset samples into the next run. True when this extension
    // delivered it.
    virtual bool deliverToDsp(Session&, Instance&, int /*pin*/, const Value&, int64_t /*offset*/) { return false; }
    // The GUI half sent a message to its DSP half: the result to answer, or nullopt when not handled.
    virtual std::optional<int32_t> messageToAudio(Session&, Instance&, int32_t /*id*/, int32_t /*size*/,
                                                  const void* /*data*/) {
        return std::nullopt;
    }
    // A pin transmitted a value the host accepted. True when this extension routed it in place of the
    // host's echo and parameters; the pin's wires carry it either way.
    virtual bool transmitted(Session&, Instance&, const PinRef&, const Value&) { return false; }
    // The scenario sets a pin ("set PIN VALUE"). True when this extension took it (a pin bound to
    // something the extension owns); otherwise the value is delivered into the pin.
    virtual bool setByHost(Session&, const PinRef&, const Value&) { return false; }
    // A name the extension declared in Patch::namedValues, set by the scenario and read by expectations.
    virtual bool setNamed(Session&, const std::string& /*name*/, const Value&) { return false; }
    virtual std::optional<Value> namedValue(Session&, const std::string& /*name*/) { return std::nullopt; }
    // Before the modules are released.
    virtual void finishing(Session&) {}
};

using ExtensionMaker = std::function<std::unique_ptr<Extension>()>;

struct Extensions {
    static bool add(ExtensionMaker maker);
    static const std::vector<ExtensionMaker>& all();
};

}  // namespace kxhost
