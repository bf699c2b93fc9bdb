// The host's extension points. Each registry is filled by static registrations at the bottom of the
// file that implements the entry, like module registration:
//
//   namespace {
//   const bool registered = kxhost::Steps::add("wait", compileWait);
//   }
//
// kxhost links the host library whole, so a new file needs no edit elsewhere.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "gmpi/IMpUnknown.h"
#include "patch/Parser.h"

namespace kxhost {

class Instance;
class Session;

// A top-level patch directive (before "scenario"): parses its line into the patch.
using DirectiveHandler = std::function<void(Parser&, const Line&)>;

struct Directives {
    static bool add(const std::string& keyword, DirectiveHandler handler);
    static const DirectiveHandler* find(const std::string& keyword);
};

// A scenario step: compiles its line (resolving pins and values, so errors name the line before
// anything runs) into an action.
using StepCompiler = std::function<Action(Parser&, const Line&)>;

struct StepKind {
    StepCompiler compile;
    bool observes = false;
};

struct Steps {
    static bool add(const std::string& keyword, StepCompiler compile, bool observes = false);
    static const StepKind* find(const std::string& keyword);
};

// A part of the host that follows a session's life. One object per session, made by its registered
// maker; reach it with Session::extension<T>().
class Extension {
public:
    virtual ~Extension() = default;
    // An instance's halves are created; the GUI half has not been given its host yet. The place to
    // offer extra host faces (Instance::offer) or to take over the DSP half.
    virtual void instanceCreated(Session&, Instance&) {}
    // Every instance is set up and initialised; the initial values have not been delivered yet.
    virtual void started(Session&) {}
    // A value for a pin of a DSP half. True when this extension delivered it.
    virtual bool deliverToDsp(Session&, Instance&, int /*pin*/, const Value&) { return false; }
    // The GUI half sent a message to its DSP half: the result to answer, or nullopt when not handled.
    virtual std::optional<int32_t> messageToAudio(Session&, Instance&, int32_t /*id*/, int32_t /*size*/,
                                                  const void* /*data*/) {
        return std::nullopt;
    }
    // A pin transmitted a value the host accepted. True when this extension routed it in place of the
    // host's echo and parameters; the pin's wires carry it either way.
    virtual bool transmitted(Session&, Instance&, const PinRef&, const Value&) { return false; }
    // Before the modules are released.
    virtual void finishing(Session&) {}
};

using ExtensionMaker = std::function<std::unique_ptr<Extension>()>;

struct Extensions {
    static bool add(ExtensionMaker maker);
    static const std::vector<ExtensionMaker>& all();
};

}  // namespace kxhost
