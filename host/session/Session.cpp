#include "session/Session.h"

#include <stdlib.h>

#include <algorithm>
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
        if (!instance_.created)
            return gmpi::MP_FAIL;
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
        const SideInfo* gui = instance_.side(Side::Gui);
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
    created = false;
    guiReady = false;
    int kept = 0;
    for (gmpi::IMpUnknown* half :
         {static_cast<gmpi::IMpUnknown*>(std::exchange(gui, nullptr)), std::exchange(dsp, nullptr)})
        if (half && half->release() != 0)
            ++kept;
    return kept;
}

// ---- Session

Session::Session(Bundle& bundle, const Patch& patch, std::ostream& out, std::ostream& err)
    : bundle_(bundle),
      patch_(patch),
      out_(out),
      err_(err),
      current_{patch.file.string(), 0},
      patchFolder_(std::filesystem::absolute(patch.file).parent_path()) {
    if (patch.tempFolder) {
        std::string pattern = (std::filesystem::temp_directory_path() / "kxhost-XXXXXX").string();
        if (!mkdtemp(pattern.data()))
            throw HostError("cannot make a temporary folder for the run");
        tempFolder_ = pattern;
    }
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
    // The modules are gone: nothing writes into the temporary folder any more.
    if (!tempFolder_.empty()) {
        std::error_code ec;
        if (!previousFolder_.empty())
            std::filesystem::current_path(previousFolder_, ec);
        std::filesystem::remove_all(tempFolder_, ec);
        tempFolder_.clear();
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
    std::vector<std::filesystem::path> folders;
    if (!tempFolder_.empty())
        folders.push_back(tempFolder_);
    if (!patch_.resources.empty())
        folders.insert(folders.end(), patch_.resources.begin(), patch_.resources.end());
    else
        folders.push_back(patchFolder_);
    return folders;
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

void Session::makeHalves(Instance& inst) {
    const InstanceDecl& decl = inst.decl;
    if (decl.gui) {
        gmpi::IMpUnknown* object = createHalf(bundle_, decl, Side::Gui);
        void* face = nullptr;
        const int32_t rc = object->queryInterface(gmpi::MP_IID_GUI_PLUGIN2, &face);
        object->release();
        if (rc != gmpi::MP_OK || !face)
            throw errorAt(decl.where, decl.module->id + ": its gui side does not offer the GUI plug-in interface");
        inst.gui = static_cast<gmpi::IMpUserInterface2B*>(face);
    }
    if (decl.dsp) {
        try {
            inst.dsp = createHalf(bundle_, decl, Side::Dsp);
        } catch (...) {
            inst.release();
            throw;
        }
    }
    inst.created = true;
    for (auto& e : extensions_)
        e->instanceCreated(*this, inst);
}

void Session::setUp(Instance& inst) {
    if (!inst.gui)
        return;
    const int32_t rc = inst.gui->setHost(inst.guiHost().unknown());
    if (rc != gmpi::MP_OK)
        throw errorAt(inst.decl.where, inst.module().id + ": setHost returned " + std::to_string(rc));
    if (const int32_t init = inst.gui->initialize(); init != gmpi::MP_OK)
        warn(inst.name() + ": initialize returned " + std::to_string(init));
    inst.guiReady = true;
}

void Session::resetPins(const Instance& inst) {
    // The host's idea of every pin starts at the description's default, else the datatype's zero.
    for (Side side : {Side::Gui, Side::Dsp})
        if (const SideInfo* info = inst.side(side))
            for (const auto& pin : info->pins)
                pins_[PinRef{inst.name(), side, pin.index}] = {pin.defaultValue.value_or(Value(pin.type)), 0, {}};
}

void Session::deliverDefaults(const Instance& inst) {
    if (!patch_.options.defaults)
        return;
    for (Side side : {Side::Gui, Side::Dsp}) {
        const SideInfo* info = inst.side(side);
        if (!info || (side == Side::Gui ? !inst.decl.gui : !inst.decl.dsp))
            continue;
        for (const auto& pin : info->pins)
            if (pin.defaultValue)
                deliver(PinRef{inst.name(), side, pin.index}, *pin.defaultValue, "default");
    }
}

void Session::deliverPending() {
    // A module that transmitted from initialize reached modules not yet initialised: deliver now.
    for (const auto& p : std::exchange(pending_, {}))
        deliver(p.pin, p.value, p.why);
}

void Session::start() {
    if (tracing())
        out_ << "-- start\n";
    if (!tempFolder_.empty()) {
        std::error_code ec;
        previousFolder_ = std::filesystem::current_path(ec);
        std::filesystem::current_path(tempFolder_, ec);
        if (tracing())
            out_ << "-- temporary folder " << tempFolder_.string() << " (also the working folder)\n";
    }
    int32_t handle = 0;
    for (const auto& decl : patch_.instances) {
        instances_.push_back(std::make_unique<Instance>(*this, decl, ++handle));
        current_ = decl.where;
        if (!decl.later)
            makeHalves(*instances_.back());
    }
    for (const auto& inst : instances_)
        resetPins(*inst);
    for (const auto& param : patch_.params)
        params_[param.name] = pins_[param.pins.front()].value;

    for (auto& inst : instances_) {
        current_ = inst->decl.where;
        setUp(*inst);
    }
    for (auto& e : extensions_)
        e->started(*this);
    deliverPending();
    for (auto& inst : instances_) {
        current_ = inst->decl.where;
        if (inst->created)
            deliverDefaults(*inst);
    }
    // The start-up is one phase: its initial values share one count of transmissions.
    for (const auto& step : patch_.setup)
        runStep(step, false);
}

void Session::create(Instance& inst) {
    if (inst.created)
        return;
    try {
        makeHalves(inst);
        resetPins(inst);
        setUp(inst);
    } catch (const HostError& e) {
        fail(current_, e.what());
        return;
    }
    for (auto& e : extensions_)
        e->instanceStarted(*this, inst);
    deliverPending();
    deliverDefaults(inst);
}

void Session::release(Instance& inst) {
    if (!inst.created)
        return;
    for (auto& e : extensions_)
        e->instanceReleasing(*this, inst);
    std::erase_if(pending_, [&](const Pending& p) { return p.pin.instance == inst.name(); });
    inst.release();
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
    if (newCount) {
        for (auto& [ref, state] : pins_)
            state.sent = 0;
        traffic_.clear();
    }
    // Observing steps speak for themselves (a check mark, a printed line); actions are echoed.
    if (tracing() && !step.observes)
        out_ << "> " << step.text << "\n";
    step.run(*this);
    for (auto& e : extensions_)
        e->stepDone(*this);
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

std::optional<int64_t> Session::sentAt(const PinRef& pin) const {
    auto it = pins_.find(pin);
    return it == pins_.end() ? std::nullopt : it->second.at;
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
    if (tracing())
        out_ << std::string(2 * static_cast<size_t>(depth_ + 1), ' ') << line << "\n";
}

void Session::set(const PinRef& pin, const Value& value, int64_t offset) {
    if (const ParamDecl* param = patch_.paramOf(pin)) {
        setParam(*param, value);
        return;
    }
    for (auto& e : extensions_)
        if (e->setByHost(*this, pin, value))
            return;
    deliver(pin, value, "set", offset);
}

void Session::setNamed(const std::string& name, const Value& value) {
    for (auto& e : extensions_)
        if (e->setNamed(*this, name, value))
            return;
    warn("nothing answers to the name " + name);
}

Value Session::namedValue(const std::string& name) {
    for (auto& e : extensions_)
        if (auto v = e->namedValue(*this, name))
            return *v;
    const auto it = patch_.namedValues.find(name);
    return Value(it == patch_.namedValues.end() ? Datatype::Int : it->second);
}

void Session::setParam(const ParamDecl& param, const Value& value) {
    params_[param.name] = value;
    if (patch_.options.trace == Trace::Deliveries)
        trace("=> parameter " + param.name + " = " + value.format());
    for (const auto& pin : param.pins)
        deliver(pin, value, "parameter");
}

void Session::deliver(const PinRef& pin, const Value& value, const char* why, int64_t offset) {
    Instance* inst = instance(pin.instance);
    if (!inst || !inst->created)
        return;
    state(pin).value = value;
    if (patch_.options.trace == Trace::Deliveries)
        trace("=> " + patch_.label(pin) + " = " + value.format() + " (" + why + ")");
    if (pin.side == Side::Dsp) {
        for (auto& e : extensions_)
            if (e->deliverToDsp(*this, *inst, pin.index, value, offset))
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
    // The value (shared, not copied) stays alive until both calls return, whatever the module does to
    // the pin from inside notifyPin. Pins the host adds (autoDuplicate) have no pin object in the
    // module, which may rightly refuse them.
    const Value keep = value;
    const PinInfo* info = patch_.pin(pin);
    const bool added = info && info->autoDuplicate;
    if (const int32_t rc = inst->gui->setPin(pin.index, 0, keep.size(), keep.data()); rc != gmpi::MP_OK) {
        if (!added)
            warn(patch_.label(pin) + ": setPin returned " + std::to_string(rc));
    } else if (const int32_t rc2 = inst->gui->notifyPin(pin.index, 0); rc2 != gmpi::MP_OK && !added) {
        warn(patch_.label(pin) + ": notifyPin returned " + std::to_string(rc2));
    }
}

int32_t Session::transmit(Instance& from, Side side, int32_t pinId, int32_t size, const void* data,
                          std::optional<int64_t> at) {
    const PinRef ref{from.name(), side, pinId};
    const PinInfo* info = patch_.pin(ref);
    if (!info) {
        warn(from.name() + " (" + from.module().id + ") transmitted on " + sideName(side) + " pin " +
             std::to_string(pinId) + ", which its description lacks; refused");
        return gmpi::MP_FAIL;
    }
    if (cutting_ || closing_)
        return gmpi::MP_FAIL;
    if (!Value::decodable(info->type, size, data)) {
        warn(patch_.label(ref) + " transmitted " + std::to_string(size) + " bytes" +
             (data ? "" : " from a null address") + ", which is no " + datatypeName(info->type) + " value; refused");
        return gmpi::MP_FAIL;
    }
    if (depth_ >= patch_.options.depth) {
        cutting_ = true;
        fail(current_, "feedback loop: transmissions nested deeper than " + std::to_string(patch_.options.depth) +
                           "; cut at " + patch_.label(ref) + " -> " + Value::decode(info->type, size, data)->format());
        return gmpi::MP_FAIL;
    }
    // The one copy the host makes: echo, parameters, wires and the record all share it. The pin's old
    // value makes room for it when nothing else holds it, so a large text is neither held twice nor
    // written into fresh memory every time.
    PinState& st = state(ref);
    const auto value = Value::decode(info->type, size, data, std::exchange(st.value, Value(info->type)));
    if (tracing())
        trace(patch_.label(ref) + " -> " + value->format() + (at ? " at " + std::to_string(*at) : ""));
    ++depth_;
    st.value = *value;
    ++st.sent;
    if (at)
        st.at = at;
    if (patch_.keepsTraffic) {
        Traffic t;
        t.pin = ref;
        t.value = *value;
        t.at = at;
        traffic_.push_back(std::move(t));
    }
    bool routed = false;
    for (auto& e : extensions_)
        if ((routed = e->transmitted(*this, from, ref, *value)))
            break;
    if (!routed) {
        if (const ParamDecl* param = patch_.paramOf(ref))
            setParam(*param, *value);  // the writer is one of the bound pins: it gets the value back too
        else if (patch_.options.echo && info->echo)
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

std::string Session::describeMessage(int32_t id, int32_t size, const void* data) {
    static const char hex[] = "0123456789abcdef";
    std::string s = "id " + std::to_string(id) + ", " + std::to_string(size) + " byte" + (size == 1 ? "" : "s");
    if (size <= 0 || !data)
        return s;
    const auto* p = static_cast<const uint8_t*>(data);
    const int32_t shown = std::min<int32_t>(size, 16);
    s += " [";
    for (int32_t i = 0; i < shown; ++i) {
        if (i)
            s += ' ';
        s += hex[p[i] >> 4];
        s += hex[p[i] & 15];
    }
    return s + (shown < size ? " ...]" : "]");
}

namespace {

Session::Traffic messageRecord(const Instance& inst, bool toDsp, int32_t id, int32_t size, const void* data) {
    Session::Traffic t;
    t.message = true;
    t.instance = inst.name();
    t.toDsp = toDsp;
    t.id = id;
    if (size > 0 && data)
        t.bytes.assign(static_cast<const uint8_t*>(data), static_cast<const uint8_t*>(data) + size);
    return t;
}

}  // namespace

int32_t Session::messageToAudio(Instance& from, int32_t id, int32_t size, const void* data) {
    if (tracing())
        trace(from.name() + ": message to dsp, " + describeMessage(id, size, data));
    if (patch_.keepsTraffic)
        traffic_.push_back(messageRecord(from, true, id, size, data));
    for (auto& e : extensions_)
        if (auto rc = e->messageToAudio(*this, from, id, size, data))
            return *rc;
    return gmpi::MP_FAIL;
}

int32_t Session::messageToGui(Instance& to, int32_t id, int32_t size, const void* data) {
    if (tracing())
        trace(to.name() + ": message to gui, " + describeMessage(id, size, data));
    if (patch_.keepsTraffic)
        traffic_.push_back(messageRecord(to, false, id, size, data));
    if (!to.gui || !to.guiReady)
        return gmpi::MP_FAIL;
    ++depth_;
    const int32_t rc = to.gui->receiveMessageFromAudio(id, size, data);
    if (--depth_ == 0)
        cutting_ = false;
    return rc;
}

}  // namespace kxhost
