// A running patch: the modules the bundle created for its instances, the host objects they talk to,
// the routing of every transmitted value (echo, parameters, wires), the trace, and the failures.
#pragma once

#include <filesystem>
#include <iosfwd>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "gmpi/IMpUserInterface2.h"
#include "gui/GuiHost.h"
#include "patch/Patch.h"
#include "session/Bundle.h"
#include "session/Extension.h"

namespace kxhost {

// One named instance at run time.
class Instance {
public:
    Instance(Session& session, const InstanceDecl& decl, int32_t handle);
    ~Instance();

    Session& session;
    const InstanceDecl& decl;
    const int32_t handle;                     // unique within the session, from 1
    gmpi::IMpUserInterface2B* gui = nullptr;  // the GUI half (one reference owned), or null
    gmpi::IMpUnknown* dsp = nullptr;          // the DSP half as the factory made it (one reference), or null
    bool created = false;                     // its halves exist (false before a "create" and after a "release")
    bool guiReady = false;                    // setHost and initialize done; values for it wait until then

    const std::string& name() const { return decl.name; }
    const ModuleInfo& module() const { return *decl.module; }
    // The pins of a side as this instance has them ("pins N" changes the GUI side's).
    const SideInfo* side(Side s) const { return decl.side(s); }
    // Releases both halves (the GUI half first); the number whose release left a reference (answered a
    // count above 0).
    int release();

    // Extra interfaces the GUI half's host object answers in queryInterface, beyond the GUI host faces.
    // The face must outlive the instance's modules (extensions keep them in their own state).
    // Offering an interface again replaces the earlier face.
    void offer(const gmpi::MpGuid& iid, gmpi::IMpUnknown* face) { offered_.offer(iid, face); }

    GuiHost& guiHost() { return *guiHost_; }

private:
    FaceTable offered_;
    std::unique_ptr<GuiHost> guiHost_;
};

class Session {
public:
    Session(Bundle& bundle, const Patch& patch, std::ostream& out, std::ostream& err);
    ~Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    // Creates every instance, hands it its host, initialises it, delivers the default and initial
    // values. Throws HostError (naming the patch line) when the bundle cannot create an instance.
    void start();
    // Runs the scenario. Returns true when no expectation failed and no loop was cut.
    bool runScenario();
    // start() and runScenario(), then a summary line.
    bool run();
    // Tells the extensions the session is finishing and releases every module, last created first (the
    // destructor does so too). The number of module halves whose release left a reference.
    int close();

    // ---- for steps
    // A value from outside (the scenario): into the pin, or, when the pin is bound to a parameter,
    // into the parameter (and so into every pin bound to it). A DSP pin gets it as an event offset
    // samples into the next run.
    void set(const PinRef& pin, const Value& value, int64_t offset = 0);
    void setParam(const ParamDecl& param, const Value& value);
    // A name another part declared (Patch::namedValues), set and read as a host would.
    void setNamed(const std::string& name, const Value& value);
    Value namedValue(const std::string& name);
    // What the host last delivered into or received from the pin (its description default, or the
    // datatype's zero, before that).
    const Value& value(const PinRef& pin) const;
    const Value& paramValue(const ParamDecl& param) const;
    // Transmissions from the pin since the last step that was not an observing one (or since the start).
    int sentCount(const PinRef& pin) const;
    // Where in its run a DSP pin last transmitted (samples from the start of that run); nullopt for a pin
    // that has not transmitted from a run.
    std::optional<int64_t> sentAt(const PinRef& pin) const;

    // What modules sent since the last step that was not an observing one, in order: transmissions and
    // messages between the halves. Kept only when a step of the patch reads it (Patch::keepsTraffic).
    struct Traffic {
        bool message = false;
        PinRef pin;  // a transmission: the pin, its value and, from a run, its place
        Value value;
        std::optional<int64_t> at;
        std::string instance;  // a message: its instance, direction, id and bytes
        bool toDsp = false;
        int32_t id = 0;
        Bytes bytes;
    };
    const std::vector<Traffic>& traffic() const { return traffic_; }

    // Records a failure; the run ends non-zero.
    void fail(const Location& where, const std::string& what);
    void warn(const std::string& what);
    int failures() const { return failures_; }
    std::ostream& out() { return out_; }
    bool tracing() const { return patch_.options.trace != Trace::Off; }
    // Prints a trace line indented to the current nesting depth.
    void trace(const std::string& line);

    // Creates an instance declared "later" or released before, as at start: its halves, their hosts,
    // initialize, its defaults. Fails the run (naming the step) when the bundle cannot create it.
    void create(Instance& inst);
    // Releases an instance's halves; its pins keep their last values for expectations.
    void release(Instance& inst);

    // ---- for host objects and extensions
    // Setting a pin: setPin then notifyPin on the GUI half, or handed to the extensions for a DSP half
    // (offset: samples into the next run).
    void deliver(const PinRef& pin, const Value& value, const char* why, int64_t offset = 0);
    // A module transmitted a pin value: echo, parameter, wires. at: where in the current run a DSP half
    // sent it. Returns 0, or -1 when refused.
    int32_t transmit(Instance& from, Side side, int32_t pin, int32_t size, const void* data,
                     std::optional<int64_t> at = std::nullopt);
    // A message between the halves of an instance: traced and recorded, then handed on (to the
    // extensions for the DSP half, to receiveMessageFromAudio for the GUI half).
    int32_t messageToAudio(Instance& from, int32_t id, int32_t size, const void* data);
    int32_t messageToGui(Instance& to, int32_t id, int32_t size, const void* data);
    // "id 3, 4 bytes [05 00 00 00]": a message as the trace shows it (at most 16 bytes in hex).
    static std::string describeMessage(int32_t id, int32_t size, const void* data);

    Bundle& bundle() { return bundle_; }
    const Patch& patch() const { return patch_; }
    Instance* instance(const std::string& name);
    const std::vector<std::unique_ptr<Instance>>& instances() const { return instances_; }
    // Resource folders in search order: the run's temporary folder ("temp-folder"), then the patch's, or
    // else the patch file's own folder.
    std::vector<std::filesystem::path> resourceFolders() const;
    // The run's temporary folder, also its working folder from start() on (so files modules write under
    // relative names land there too); empty without "temp-folder".
    const std::filesystem::path& tempFolder() const { return tempFolder_; }
    // Where files a run writes (snapshots) go: kxhost's --out folder; empty without one, and then
    // snapshots are rendered but not written.
    const std::filesystem::path& outputDir() const { return outputDir_; }
    void setOutputDir(const std::filesystem::path& dir) {
        outputDir_ = dir.empty() ? dir : std::filesystem::absolute(dir);
    }
    // Where the step or start-up phase being run comes from.
    const Location& current() const { return current_; }

    template <class T>
    T* extension() {
        for (auto& e : extensions_)
            if (auto* t = dynamic_cast<T*>(e.get()))
                return t;
        return nullptr;
    }

private:
    struct PinState {
        Value value;
        int sent = 0;
        std::optional<int64_t> at;
    };
    PinState& state(const PinRef& pin);
    // newCount: the step starts a new count of transmissions (see sentCount).
    void runStep(const Step& step, bool newCount);
    // The halves from the factory, handed to the extensions (instanceCreated).
    void makeHalves(Instance& inst);
    // setHost and initialize on the GUI half.
    void setUp(Instance& inst);
    // The host's idea of the instance's pins back to the defaults; its defaults delivered.
    void resetPins(const Instance& inst);
    void deliverDefaults(const Instance& inst);
    void deliverPending();

    Bundle& bundle_;
    const Patch& patch_;
    std::ostream& out_;
    std::ostream& err_;
    std::vector<std::unique_ptr<Extension>> extensions_;
    std::vector<std::unique_ptr<Instance>> instances_;
    std::map<PinRef, PinState> pins_;
    std::map<std::string, Value> params_;
    std::vector<Traffic> traffic_;
    struct Pending {
        PinRef pin;
        Value value;
        const char* why;
    };
    std::vector<Pending> pending_;  // values sent to GUI halves not yet initialised
    Location current_;
    std::filesystem::path outputDir_;
    std::filesystem::path tempFolder_;
    std::filesystem::path patchFolder_;     // absolute, taken before the working folder changes
    std::filesystem::path previousFolder_;  // the working folder before a temporary one
    int depth_ = 0;
    bool cutting_ = false;  // a loop was cut: drop every transmission until the cascade unwinds
    bool closing_ = false;  // modules are being released: nothing they transmit is routed any more
    int failures_ = 0;
    bool warnedDsp_ = false;
};

}  // namespace kxhost
