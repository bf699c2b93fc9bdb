// Host parameters with the properties patch memory uses: a value with a range and its normalised
// position, a name, menu items and selection, a grab state. Pins bind to a parameter by role; a pin that
// transmits updates the parameter, which delivers every changed property into every pin bound to it (the
// sender's own pin included, as the host's echo). DSP pins receive the value as an event of the next block.
// The scenario moves a parameter as a host does (automation, a preset): "set NAME VALUE" sets its value,
// "set PIN VALUE" on a bound pin sets the parameter through the pin's role; "expect NAME VALUE" reads it.
//
//   parameter NAME int|float|bool|text|blob|list [MIN MAX] [menu "ITEMS"]
//   bind NAME value|normalized|name|menu-items|menu-selection|grab PIN [PIN ...]
#include <algorithm>
#include <any>
#include <map>
#include <memory>
#include <set>
#include <unordered_map>

#include "audio/HostParameter.h"
#include "patch/Registry.h"
#include "patch/Text.h"
#include "session/Session.h"

namespace kxhost {

namespace {

struct ParameterSpec {
    std::string name;
    ParamType type = ParamType::Float;
    double minimum = 0.0;
    double maximum = 1.0;
    std::wstring menu;
    std::map<ParamRole, std::vector<PinRef>> pins;
};
using ParameterSpecs = std::vector<ParameterSpec>;

const std::map<std::string, ParamType> kTypes = {{"int", ParamType::Int},   {"float", ParamType::Float},
                                                 {"bool", ParamType::Bool}, {"text", ParamType::Text},
                                                 {"blob", ParamType::Blob}, {"list", ParamType::List}};
const std::map<std::string, ParamRole> kRoles = {
    {"value", ParamRole::Value},          {"normalized", ParamRole::Normalized},        {"name", ParamRole::Name},
    {"menu-items", ParamRole::MenuItems}, {"menu-selection", ParamRole::MenuSelection}, {"grab", ParamRole::Grab}};

Datatype valueDatatype(ParamType type) {
    switch (type) {
        case ParamType::Int:
        case ParamType::List:
            return Datatype::Int;
        case ParamType::Float:
            return Datatype::Float;
        case ParamType::Bool:
            return Datatype::Bool;
        case ParamType::Text:
            return Datatype::Text;
        case ParamType::Blob:
            return Datatype::Blob;
    }
    return Datatype::Int;
}

Datatype roleDatatype(ParamRole role, ParamType type) {
    switch (role) {
        case ParamRole::Value:
            return valueDatatype(type);
        case ParamRole::Normalized:
            return Datatype::Float;
        case ParamRole::Name:
        case ParamRole::MenuItems:
            return Datatype::Text;
        case ParamRole::MenuSelection:
            return Datatype::Int;
        case ParamRole::Grab:
            return Datatype::Bool;
    }
    return Datatype::Int;
}

ParameterSpecs& specs(Patch& patch) {
    auto& slot = patch.extensions["parameters"];
    if (!slot.has_value())
        slot = ParameterSpecs{};
    return std::any_cast<ParameterSpecs&>(slot);
}

// What the directives look up while parsing, so that a patch with many parameters parses in linear time:
// the parameters' positions by name and every pin bound so far.
struct SpecIndex {
    std::unordered_map<std::string, size_t> byName;
    std::set<PinRef> bound;
};

SpecIndex& specIndex(Patch& patch) {
    auto& slot = patch.extensions["parameters.index"];
    if (!slot.has_value())
        slot = SpecIndex{};
    return std::any_cast<SpecIndex&>(slot);
}

ParameterSpec* findSpec(Patch& patch, const std::string& name) {
    const auto& byName = specIndex(patch).byName;
    const auto it = byName.find(name);
    return it == byName.end() ? nullptr : &specs(patch)[it->second];
}

bool boundAnywhere(Patch& patch, const PinRef& pin) { return specIndex(patch).bound.count(pin) != 0; }

// parameter NAME TYPE [MIN MAX] [menu "ITEMS"]
void parameterDirective(Parser& p, const Line& line) {
    p.arity(line, 3, 7, "parameter NAME int|float|bool|text|blob|list [MIN MAX] [menu \"ITEMS\"]");
    ParameterSpec spec;
    spec.name = line.tokens[1].raw;
    if (p.patch.param(spec.name) || p.patch.instance(spec.name) || p.patch.namedValues.count(spec.name))
        p.fail(line, "the name '" + spec.name + "' is already used");
    const auto type = kTypes.find(line.tokens[2].raw);
    if (type == kTypes.end())
        p.fail(line, "a parameter is int, float, bool, text, blob or list, not '" + line.tokens[2].raw + "'");
    spec.type = type->second;
    size_t next = 3;
    if (line.tokens.size() > next + 1 && line.tokens[next].raw != "menu") {
        spec.minimum = p.value(line, line.tokens[next], Datatype::Float).asFloat();
        spec.maximum = p.value(line, line.tokens[next + 1], Datatype::Float).asFloat();
        next += 2;
    }
    if (line.tokens.size() > next) {
        if (line.tokens[next].raw != "menu" || line.tokens.size() != next + 2)
            p.fail(line, "usage: parameter NAME TYPE [MIN MAX] [menu \"ITEMS\"]");
        spec.menu = p.value(line, line.tokens[next + 1], Datatype::Text).text();
    }
    specIndex(p.patch).byName.emplace(spec.name, specs(p.patch).size());
    p.patch.namedValues[spec.name] = valueDatatype(spec.type);
    specs(p.patch).push_back(std::move(spec));
}

// bind NAME ROLE PIN [PIN ...]
void bindDirective(Parser& p, const Line& line) {
    p.arity(line, 4, -1, "bind PARAMETER value|normalized|name|menu-items|menu-selection|grab PIN [PIN ...]");
    ParameterSpec* spec = findSpec(p.patch, line.tokens[1].raw);
    if (!spec)
        p.fail(line, "no parameter named '" + line.tokens[1].raw + "' (declare it with 'parameter' first)");
    const auto role = kRoles.find(line.tokens[2].raw);
    if (role == kRoles.end())
        p.fail(line, "unknown role '" + line.tokens[2].raw + "'");
    const Datatype wanted = roleDatatype(role->second, spec->type);
    for (size_t i = 3; i < line.tokens.size(); ++i) {
        const PinRef pin = p.pin(line, line.tokens[i]);
        Datatype type = p.patch.pin(pin)->type;
        if (type == Datatype::Enum)
            type = Datatype::Int;
        if (type != wanted)
            p.fail(line, p.patch.label(pin) + " is " + datatypeName(type) + ", the role needs " + datatypeName(wanted));
        if (p.patch.paramOf(pin) || boundAnywhere(p.patch, pin))
            p.fail(line, p.patch.label(pin) + " is already bound to a parameter");
        spec->pins[role->second].push_back(pin);
        specIndex(p.patch).bound.insert(pin);
    }
}

class ParameterSide final : public Extension {
public:
    void started(Session& s) override {
        const auto it = s.patch().extensions.find("parameters");
        if (it == s.patch().extensions.end())
            return;
        specs_ = std::any_cast<ParameterSpecs>(it->second);
        for (size_t i = 0; i < specs_.size(); ++i) {
            const ParameterSpec& spec = specs_[i];
            params_.emplace_back(spec.name, spec.type, spec.minimum, spec.maximum, spec.menu);
            const std::wstring name = widen(spec.name);
            params_.back().set(ParamRole::Name, name.data(), static_cast<int32_t>(name.size() * sizeof(wchar_t)));
            for (const auto& [role, pins] : spec.pins)
                for (const auto& pin : pins)
                    bound_[pin] = {i, role};
        }
        for (size_t i = 0; i < specs_.size(); ++i)
            for (const auto& [role, pins] : specs_[i].pins)
                deliverRole(s, i, role);
    }

    bool transmitted(Session& s, Instance&, const PinRef& pin, const Value& value) override {
        return setByHost(s, pin, value);
    }

    bool setByHost(Session& s, const PinRef& pin, const Value& value) override {
        const auto it = bound_.find(pin);
        if (it == bound_.end())
            return false;
        const auto [index, role] = it->second;
        set(s, index, role, value);
        return true;
    }

    bool setNamed(Session& s, const std::string& name, const Value& value) override {
        const auto index = indexOf(name);
        if (!index)
            return false;
        if (s.patch().options.trace == Trace::Deliveries)
            s.trace("=> parameter " + name + " = " + value.format());
        set(s, *index, ParamRole::Value, value);
        return true;
    }

    std::optional<Value> namedValue(Session&, const std::string& name) override {
        const auto index = indexOf(name);
        if (!index)
            return std::nullopt;
        const std::string bytes = params_[*index].bytes(ParamRole::Value);
        return Value::decode(valueDatatype(specs_[*index].type), static_cast<int32_t>(bytes.size()), bytes.data());
    }

private:
    std::optional<size_t> indexOf(const std::string& name) const {
        for (size_t i = 0; i < specs_.size(); ++i)
            if (specs_[i].name == name)
                return i;
        return std::nullopt;
    }

    // Every property the write changed reaches every pin bound to it.
    void set(Session& s, size_t index, ParamRole role, const Value& value) {
        for (ParamRole changed : params_[index].set(role, value.data(), value.size()))
            deliverRole(s, index, changed);
    }

    void deliverRole(Session& s, size_t index, ParamRole role) {
        const auto pins = specs_[index].pins.find(role);
        if (pins == specs_[index].pins.end())
            return;
        const std::string bytes = params_[index].bytes(role);
        for (const auto& pin : pins->second) {
            const PinInfo* info = s.patch().pin(pin);
            if (!info)
                continue;
            if (auto value = Value::decode(info->type, static_cast<int32_t>(bytes.size()), bytes.data()))
                s.deliver(pin, *value, "parameter");
        }
    }

    ParameterSpecs specs_;
    std::vector<HostParameter> params_;
    std::map<PinRef, std::pair<size_t, ParamRole>> bound_;
};

const bool registered = Extensions::add([] { return std::make_unique<ParameterSide>(); }) &&
                        Directives::add("parameter", parameterDirective) && Directives::add("bind", bindDirective);

}  // namespace

}  // namespace kxhost
