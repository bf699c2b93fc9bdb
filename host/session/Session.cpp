#include "session/Session.h"

#include <ostream>
#include <stdexcept>
#include <string>
#include <utility>

namespace kxhost {

// ---- Instance

namespace {

// The GUI host of one instance: what the half transmits and sends to its DSP half goes to the session.
// The session owns the host objects and outlives the modules: no counting.
class InstanceHost final : public GuiHost {
public:
    InstanceHost(Instance& instance, const FaceTable& offered) : GuiHost(offered), instance_(instance) {}

    int32_t addRef() override { return 1; }
    int32_t release() override { return 1; }

    int32_t pinTransmit(int32_t pinId, int32_t size, const void* data, int32_t /*voice*/) override {
        try {
            return instance_.session.transmit(instance_, Side::Gui, pinId, size, data);
        } catch (const std::exception& e) {
            // Nothing may unwind through a module's frames.
            instance_.session.fail(instance_.session.current(),
                                   std::string("host error during pinTransmit: ") + e.what());
            return gmpi::MP_FAIL;
        }
    }

    int32_t getHandle(int32_t& returnHandle) override {
        returnHandle = instance_.handle;
        return gmpi::MP_OK;
    }

    int32_t getPinCount(int32_t& returnCount) override {
        const SideInfo* gui = instance_.module().side(Side::Gui);
        returnCount = gui ? static_cast<int32_t>(gui->pins.size()) : 0;
        return gmpi::MP_OK;
    }

protected:
    int32_t messageToAudio(int32_t id, int32_t size, const void* data) override {
        try {
            return instance_.session.messageToAudio(instance_, id, size, data);
        } catch (const std::exception& e) {
            instance_.session.fail(instance_.session.current(),
                                   std::string("host error during sendMessageToAudio: ") + e.what());
            return gmpi::MP_FAIL;
        }
    }

    std::vector<std::filesystem::path> resourceFolders() const override { return instance_.session.resourceFolders(); }

private:
    Instance& instance_;
};

}  // namespace

Instance::Instance(Session& s, const InstanceDecl& d, int32_t h)
    : session(s), decl(d), handle(h), guiHost_(std::make_unique<InstanceHost>(*this, offered_)) {}

Instance::~Instance() { release(); }

int Instance::release() {
    int kept = 0;
    for (gmpi::IMpUnknown* half :
         {static_cast<gmpi::IMpUnknown*>(std::exchange(gui, nullptr)), std::exchange(dsp, nullptr)})
        if (half && half->release() != 0)
            ++kept;
    return kept;
}

// ---- Session

Session::Session(Bundle& bundle, const Patch& patch, std::ostream& out, std::ostream& err)
    : bundle_(bundle), patch_(patch), out_(out), err_(err), current_{patch.file.string(), 0} {
    for (const auto& make : Extensions::all())
        extensions_.push_back(make());
}

Session::~Session() { close(); }

int Session::close() {
    if (!closing_) {
        closing_ = true;
        for (auto& e : extensions_)
            e->finishing(*this);
    }
    // Modules go first (in reverse creation order), while the host objects they hold still exist.
    int kept = 0;
    while (!instances_.empty()) {
        kept += instances_.back()->release();
        instances_.pop_back();
    }
    return kept;
}

Instance* Session::instance(const std::string& name) {
    for (auto& i : instances_)
        if (i->name() == name)
            return i.get();
    return nullptr;
}

std::vector<std::filesystem::path> Session::resourceFolders() const {
    if (!patch_.resources.empty())
        return patch_.resources;
    return {std::filesystem::absolute(patch_.file).parent_path()};
}

namespace {

// Creates one half; the factory's failures become errors naming the instance line.
gmpi::IMpUnknown* createHalf(Bundle& bundle, const InstanceDecl& decl, Side side) {
    gmpi::IMpUnknown* object = nullptr;
    const int32_t rc = bundle.create(decl.module->id, side, object);
    if (rc != gmpi::MP_OK || !object)
        throw errorAt(decl.where, "the bundle does not create the " + std::string(sideName(side)) + " side of " +
                                      decl.module->id + " (createInstance2 returned " + std::to_string(rc) + ")");
    return object;
}

}  // namespace

void Session::start() {
    if (patch_.options.trace != Trace::Off)
        out_ << "-- start\n";
    int32_t handle = 0;
    for (const auto& decl : patch_.instances) {
        current_ = decl.where;
        auto inst = std::make_unique<Instance>(*this, decl, ++handle);
        if (decl.gui) {
            gmpi::IMpUnknown* object = createHalf(bundle_, decl, Side::Gui);
            void* face = nullptr;
            const int32_t rc = object->queryInterface(gmpi::MP_IID_GUI_PLUGIN2, &face);
            object->release();
            if (rc != gmpi::MP_OK || !face)
                throw errorAt(decl.where, decl.module->id + ": its gui side does not offer the GUI plug-in interface");
            inst->gui = static_cast<gmpi::IMpUserInterface2B*>(face);
        }
        if (decl.dsp)
            inst->dsp = createHalf(bundle_, decl, Side::Dsp);
        instances_.push_back(std::move(inst));
        for (auto& e : extensions_)
            e->instanceCreated(*this, *instances_.back());
    }

    // The host's idea of every pin starts at the description's default, else the datatype's zero.
    for (const auto& inst : instances_)
        for (Side side : {Side::Gui, Side::Dsp})
            if (const SideInfo* info = inst->module().side(side))
                for (const auto& pin : info->pins)
                    pins_[PinRef{inst->name(), side, pin.index}].value = pin.defaultValue.value_or(Value(pin.type));
    for (const auto& param : patch_.params)
        params_[param.name] = pins_[param.pins.front()].value;

    for (auto& inst : instances_) {
        if (!inst->gui)
            continue;
        current_ = inst->decl.where;
        const int32_t rc = inst->gui->setHost(inst->guiHost().unknown());
        if (rc != gmpi::MP_OK)
            throw errorAt(inst->decl.where, inst->module().id + ": setHost returned " + std::to_string(rc));
        if (const int32_t init = inst->gui->initialize(); init != gmpi::MP_OK)
            warn(inst->name() + ": initialize returned " + std::to_string(init));
        inst->guiReady = true;
    }
    for (auto& e : extensions_)
        e->started(*this);
    // A module that transmitted from initialize reached modules not yet initialised: deliver now.
    for (const auto& p : std::exchange(pending_, {}))
        deliver(p.pin, p.value, p.why);

    if (patch_.options.defaults) {
        for (auto& inst : instances_) {
            current_ = inst->decl.where;
            for (Side side : {Side::Gui, Side::Dsp}) {
                const SideInfo* info = inst->module().side(side);
                if (!info || (side == Side::Gui ? !inst->decl.gui : !inst->decl.dsp))
                    continue;
                for (const auto& pin : info->pins)
                    if (pin.defaultValue)
                        deliver(PinRef{inst->name(), side, pin.index}, *pin.defaultValue, "default");
            }
        }
    }
    // The start-up is one phase: its initial values share one count of transmissions.
    for (const auto& step : patch_.setup)
        runStep(step, false);
}

bool Session::runScenario() {
    if (!patch_.scenario.empty() && patch_.options.trace != Trace::Off)
        out_ << "-- scenario\n";
    for (const auto& step : patch_.scenario)
        runStep(step, !step.observes);
    return failures_ == 0;
}

bool Session::run() {
    start();
    runScenario();
    out_ << (failures_ == 0 ? "-- passed\n" : "-- FAILED: " + std::to_string(failures_) + " failure(s)\n");
    out_.flush();
    return failures_ == 0;
}

void Session::runStep(const Step& step, bool newCount) {
    current_ = step.where;
    if (newCount)
        for (auto& [ref, state] : pins_)
            state.sent = 0;
    // Observing steps speak for themselves (a check mark, a printed line); actions are echoed.
    if (patch_.options.trace != Trace::Off && !step.observes)
        out_ << "> " << step.text << "\n";
    step.run(*this);
}

Session::PinState& Session::state(const PinRef& pin) { return pins_[pin]; }

const Value& Session::value(const PinRef& pin) const {
    static const Value none;
    auto it = pins_.find(pin);
    return it == pins_.end() ? none : it->second.value;
}

const Value& Session::paramValue(const ParamDecl& param) const {
    static const Value none;
    auto it = params_.find(param.name);
    return it == params_.end() ? none : it->second;
}

int Session::sentCount(const PinRef& pin) const {
    auto it = pins_.find(pin);
    return it == pins_.end() ? 0 : it->second.sent;
}

void Session::fail(const Location& where, const std::string& what) {
    ++failures_;
    out_.flush();
    err_ << where.str() << ": " << what << std::endl;
}

void Session::warn(const std::string& what) {
    out_.flush();
    err_ << current_.str() << ": warning: " << what << std::endl;
}

void Session::trace(const std::string& line) {
    if (patch_.options.trace != Trace::Off)
        out_ << std::string(2 * static_cast<size_t>(depth_ + 1), ' ') << line << "\n";
}

void Session::set(const PinRef& pin, const Value& value) {
    if (const ParamDecl* param = patch_.paramOf(pin))
        setParam(*param, value);
    else
        deliver(pin, value, "set");
}

void Session::setParam(const ParamDecl& param, const Value& value) {
    params_[param.name] = value;
    if (patch_.options.trace == Trace::Deliveries)
        trace("=> parameter " + param.name + " = " + value.format());
    for (const auto& pin : param.pins)
        deliver(pin, value, "parameter");
}

void Session::deliver(const PinRef& pin, const Value& value, const char* why) {
    Instance* inst = instance(pin.instance);
    if (!inst)
        return;
    state(pin).value = value;
    if (patch_.options.trace == Trace::Deliveries)
        trace("=> " + patch_.label(pin) + " = " + value.format() + " (" + why + ")");
    if (pin.side == Side::Dsp) {
        for (auto& e : extensions_)
            if (e->deliverToDsp(*this, *inst, pin.index, value))
                return;
        if (!warnedDsp_)
            warn("this host does not run DSP halves: values for " + patch_.label(pin) +
                 " and other DSP pins are dropped");
        warnedDsp_ = true;
        return;
    }
    if (!inst->gui)
        return;
    if (!inst->guiReady) {
        pending_.push_back({pin, value, why});
        return;
    }
    // The module may change the pin from inside notifyPin; the bytes stay ours until both calls return.
    const Bytes bytes = value.bytes();
    const int32_t size = static_cast<int32_t>(bytes.size());
    if (const int32_t rc = inst->gui->setPin(pin.index, 0, size, bytes.data()); rc != gmpi::MP_OK)
        warn(patch_.label(pin) + ": setPin returned " + std::to_string(rc));
    else if (const int32_t rc2 = inst->gui->notifyPin(pin.index, 0); rc2 != gmpi::MP_OK)
        warn(patch_.label(pin) + ": notifyPin returned " + std::to_string(rc2));
}

int32_t Session::transmit(Instance& from, Side side, int32_t pinId, int32_t size, const void* data) {
    const PinRef ref{from.name(), side, pinId};
    const PinInfo* info = patch_.pin(ref);
    if (!info) {
        warn(from.name() + " (" + from.module().id + ") transmitted on " + sideName(side) + " pin " +
             std::to_string(pinId) + ", which its description lacks; refused");
        return gmpi::MP_FAIL;
    }
    const auto value = Value::decode(info->type, size, data);
    if (!value) {
        warn(patch_.label(ref) + " transmitted " + std::to_string(size) + " bytes" +
             (data ? "" : " from a null address") + ", which is no " + datatypeName(info->type) + " value; refused");
        return gmpi::MP_FAIL;
    }
    if (cutting_ || closing_)
        return gmpi::MP_FAIL;
    if (depth_ >= patch_.options.depth) {
        cutting_ = true;
        fail(current_, "feedback loop: transmissions nested deeper than " + std::to_string(patch_.options.depth) +
                           "; cut at " + patch_.label(ref) + " -> " + value->format());
        return gmpi::MP_FAIL;
    }
    trace(patch_.label(ref) + " -> " + value->format());
    ++depth_;
    PinState& st = state(ref);
    st.value = *value;
    ++st.sent;
    bool routed = false;
    for (auto& e : extensions_)
        if ((routed = e->transmitted(*this, from, ref, *value)))
            break;
    if (!routed) {
        if (const ParamDecl* param = patch_.paramOf(ref))
            setParam(*param, *value);  // the writer is one of the bound pins: it gets the value back too
        else if (patch_.options.echo)
            deliver(ref, *value, "echo");
    }
    for (const auto& wire : patch_.wires) {
        if (wire.from != ref)
            continue;
        if (const ParamDecl* param = patch_.paramOf(wire.to))
            setParam(*param, *value);
        else
            deliver(wire.to, *value, "wire");
    }
    if (--depth_ == 0)
        cutting_ = false;
    return gmpi::MP_OK;
}

int32_t Session::messageToAudio(Instance& from, int32_t id, int32_t size, const void* data) {
    for (auto& e : extensions_)
        if (auto rc = e->messageToAudio(*this, from, id, size, data))
            return *rc;
    return gmpi::MP_FAIL;
}

}  // namespace kxhost
