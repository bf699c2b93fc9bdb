// A parsed patch: instances of (identifier, side), wires, host parameters, resource folders, options,
// the initial values delivered at start and the scenario run after them. Everything is checked
// against the module descriptions while parsing, so a patch that parses can only fail at run time
// through what the modules do.
#pragma once

#include <any>
#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "patch/Catalogue.h"
#include "patch/Error.h"
#include "patch/Value.h"

namespace kxhost {

class Session;

// One pin of one half of a named instance.
struct PinRef {
    std::string instance;
    Side side = Side::Gui;
    int index = 0;

    friend auto operator<=>(const PinRef&, const PinRef&) = default;
};

struct InstanceDecl {
    std::string name;
    const ModuleInfo* module = nullptr;
    bool gui = false;
    bool dsp = false;
    Location where;
    bool later = false;               // created by a "create" step, not at start
    std::optional<SideInfo> guiPins;  // "pins N": the GUI side's pins, when not the description's

    // The pins of a side of this instance (null for a side the module lacks).
    const SideInfo* side(Side s) const { return s == Side::Gui && guiPins ? &*guiPins : module->side(s); }
};

// One wire: patch lines that fan out to several targets become several wires, in line order.
struct WireDecl {
    PinRef from;
    PinRef to;
    Location where;
};

// A host parameter: every bound pin that transmits updates it, and it is delivered into every bound pin.
struct ParamDecl {
    std::string name;
    Datatype type = Datatype::Int;
    std::vector<PinRef> pins;
    Location where;
};

enum class Trace { Off, Transmissions, Deliveries };
enum class Clock { Real, Virtual };

struct Options {
    bool echo = true;      // deliver a transmitted value back into the sender's own pin
    bool defaults = true;  // deliver the descriptions' default values at start
    int depth = 64;        // transmissions nested deeper than this are a feedback loop
    Trace trace = Trace::Transmissions;
    Clock clock = Clock::Real;  // what "wait" runs the GUI run loop on
};

// A compiled step: runs against the session; reports failures through Session::fail.
using Action = std::function<void(Session&)>;

struct Step {
    std::string name;
    std::string text;  // the source line, for the trace
    Location where;
    Action run;
    bool observes = false;  // observing steps (expect, print) do not start a new count of transmissions
};

struct Patch {
    std::filesystem::path file;
    // Declarations are added through add(), which keeps the indexes the look-ups below use.
    std::vector<InstanceDecl> instances;
    std::vector<WireDecl> wires;
    std::vector<ParamDecl> params;
    std::vector<std::filesystem::path> resources;  // absolute, in search order
    bool tempFolder = false;  // "temp-folder": a fresh folder for the run, first in the search order
    Options options;
    std::vector<Step> setup;     // initial values, in file order
    std::vector<Step> scenario;  // after the "scenario" line
    // What extension directives parsed, under keys of their own choosing.
    std::map<std::string, std::any> extensions;
    // Names other parts declare that steps may set, expect and print like a parameter (the host
    // parameters of "parameter"), with the datatype of their value.
    std::map<std::string, Datatype> namedValues;
    // A step reads the traffic of a step (expect-order, expect-message): the session keeps it.
    bool keepsTraffic = false;

    void add(InstanceDecl decl);
    void add(ParamDecl decl);
    void add(WireDecl wire);

    const InstanceDecl* instance(const std::string& name) const;
    const ParamDecl* param(const std::string& name) const;
    const ParamDecl* paramOf(const PinRef& pin) const;
    // The wire from one pin to another, if there is one.
    const WireDecl* wire(const PinRef& from, const PinRef& to) const;
    const PinInfo* pin(const PinRef& ref) const;
    // How a trace names a pin: cmp."Value A", br.dsp.Value.
    std::string label(const PinRef& ref) const;

private:
    // Positions in the vectors above: names and pins are looked up in constant time, so that a patch
    // parses in time linear in its size.
    std::unordered_map<std::string, size_t> instanceAt_;
    std::unordered_map<std::string, size_t> paramAt_;
    std::map<PinRef, size_t> paramOfPin_;
    std::map<std::pair<PinRef, PinRef>, size_t> wireAt_;
};

// Reads a patch file. Throws HostError "file:line: ..." on the first syntax or semantic error.
Patch parsePatchFile(const std::filesystem::path& file, const Catalogue& catalogue);
Patch parsePatchText(const std::string& text, const std::filesystem::path& file, const Catalogue& catalogue);

}  // namespace kxhost
