// kxhost validate: every described identifier and side, created through the real bundle, set up as a
// host sets it up, then fed many rounds of hostile input, then released and checked for what it left
// behind (its own reference count, host objects it still holds, timers on the run loop, leaks).
//
// The work is split so that a new kind of module is a small addition of its own:
//   - a SideDriver per side (Side::Gui in ValidateGui.cpp; Side::Dsp gets one beside the audio engine),
//     registered with Drivers::add: it sets the half up and knows the hostile actions of that side;
//   - Aspects (Aspects::add): behaviour a half has when it answers an interface (graphics: measure,
//     arrange, render, pointer input). An aspect offers host faces before setHost, attaches when the
//     module answers, and adds its own actions to the rounds.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <iosfwd>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "patch/Catalogue.h"
#include "session/Bundle.h"
#include "validate/ValidateHost.h"
#include "validate/ValidateInputs.h"

namespace kxhost::validate {

struct Options {
    uint64_t seed = 1;
    int rounds = 150;               // hostile actions per created half
    std::vector<std::string> only;  // identifiers to validate; empty: all described
    std::filesystem::path log;      // every step appended here, flushed, when not empty
    bool quiet = false;             // no per-module summary lines
};

// Runs the validation; prints the per-module summary to out and failures to err. Returns 0 when every
// half passed, 1 otherwise (a crash or sanitizer finding ends the process instead, naming the step).
int run(Bundle& bundle, const Catalogue& catalogue, const Options& options, std::ostream& out, std::ostream& err);

// What one created half did during its validation.
struct Tally {
    int calls = 0;          // calls into the module
    int refused = 0;        // calls the module answered with a failure code (fine: hostile input)
    int transmissions = 0;  // values it transmitted
    int feedbackCuts = 0;   // echo cascades the host stopped
    int malformedSent = 0;  // transmissions of a size the pin's datatype cannot hold (refused)
};

// One created half under validation.
class Subject {
public:
    Subject(const ModuleInfo& module, Side side, const char* via, HostRefs& refs, Inputs& inputs, std::mt19937_64& rng);

    const ModuleInfo& module;
    const Side side;
    // The description's pins, and for a last pin the host duplicates, three copies after it.
    const SideInfo pins;
    const char* const via;               // "createInstance" or "createInstance2"
    gmpi::IMpUnknown* object = nullptr;  // the created object (one reference, ours)
    HostRefs& refs;
    Inputs& inputs;
    std::mt19937_64& rng;
    Tally tally;
    std::vector<std::string> failures;
    bool stopped = false;  // a failure ends the rounds of this half
    int round = 0;         // current round; -1 while setting up, -2 while releasing

    // Calls into the module with the step recorded first (a crash names it) and catches anything
    // thrown through the boundary: that is a failure of the module. Returns the module's result, or
    // MP_FAIL after a failure.
    int32_t call(const std::string& step, const std::function<int32_t()>& f);
    // Records a failure at the current step.
    void fail(const std::string& what);
    // The pin at an index: a described one, or for a side whose last pin the host duplicates, that pin
    // for every index above it. Null for an index the description does not declare.
    const PinInfo* pinAt(int32_t index) const;
    // Whether every index above the last pin is a pin (the host duplicates the last one).
    bool openEnded() const { return !pins.pins.empty() && pins.pins.back().autoDuplicate; }
    // Random helpers.
    int pick(int n) { return static_cast<int>(rng() % static_cast<uint64_t>(n)); }
    bool chance(int percent) { return pick(100) < percent; }
    // A describing label for the step log: "KX_CmpInt gui (createInstance2)".
    std::string label() const;
    const std::string& lastStep() const { return lastStep_; }

    // The host's face for setHost and the factory's createInstance (set by the driver's makeHost).
    gmpi::IMpUnknown* hostFace = nullptr;
    // Faces aspects offer beyond the side's own host interfaces.
    FaceTable faces;
    // A folder of the validation's own for resources and files modules write.
    std::filesystem::path folder;

private:
    std::string lastStep_;
};

// Per side: sets a half up and supplies its hostile actions.
class SideDriver {
public:
    virtual ~SideDriver() = default;
    // The host object for the half, made before creation (createInstance hands it to the factory).
    virtual void makeHost(Subject& s) = 0;
    // setHost, initialise, the description's defaults. False when the half cannot be validated further
    // (the failure is recorded).
    virtual bool start(Subject& s) = 0;
    // One hostile action.
    virtual void round(Subject& s) = 0;
    // After the rounds, before release: let pending work run (timers), drop faces the driver holds.
    virtual void finish(Subject& s) = 0;
    // After the module's last release: the host objects go.
    virtual void dropHost(Subject& s) = 0;
};

// An optional behaviour of a half (graphics). One object per subject.
class Aspect {
public:
    virtual ~Aspect() = default;
    // Before setHost: faces to offer on the host (e.g. a graphics host). Sides it does not serve: nothing.
    virtual void offer(Subject&, FaceTable&) {}
    // After start: whether the half has this behaviour (queries the module). False: no rounds.
    virtual bool attach(Subject&) { return false; }
    // One hostile action of this aspect.
    virtual void round(Subject&) {}
    // Before release: drop what the aspect holds of the module.
    virtual void detach(Subject&) {}
};

struct Drivers {
    using Maker = std::function<std::unique_ptr<SideDriver>()>;
    static bool add(Side side, Maker maker);
    static std::unique_ptr<SideDriver> make(Side side);
};

struct Aspects {
    using Maker = std::function<std::unique_ptr<Aspect>()>;
    static bool add(Maker maker);
    static std::vector<std::unique_ptr<Aspect>> makeAll();
};

// The step record that survives a crash: what was being called when the process died.
namespace trail {
void install(const std::filesystem::path& log);
// The run's temporary folder: a crash removes it on its way out, as a clean end does.
void scratch(const std::filesystem::path& folder);
void module(const std::string& label);
void step(const std::string& what);
// Ends the record (a clean end prints nothing on exit).
void clear();
}  // namespace trail

}  // namespace kxhost::validate
