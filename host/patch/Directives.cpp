// The patch directives every patch may use: instance, wire, param, resources, option.
#include <algorithm>
#include <set>

#include "patch/Registry.h"

namespace kxhost {

namespace {

bool isName(const std::string& s) {
    return !s.empty() && !std::isdigit(static_cast<unsigned char>(s[0])) && std::all_of(s.begin(), s.end(), [](char c) {
        return std::isalnum(static_cast<unsigned char>(c)) || c == '_' || c == '-';
    });
}

void checkNewName(Parser& p, const Line& line, const std::string& name) {
    if (!isName(name))
        p.fail(line, "'" + name + "' is not a name (letters, digits, '_' and '-', not starting with a digit)");
    if (p.patch.instance(name) || p.patch.param(name) || p.patch.namedValues.count(name))
        p.fail(line, "the name '" + name + "' is already used");
}

// int and enum pins carry the same 4 bytes; every other pair of datatypes is a patching mistake.
bool compatible(Datatype a, Datatype b) {
    auto norm = [](Datatype t) { return t == Datatype::Enum ? Datatype::Int : t; };
    return norm(a) == norm(b);
}

// instance NAME IDENTIFIER [gui|dsp|both] [pins N] [later]
void instanceDirective(Parser& p, const Line& line) {
    const char* usage = "instance NAME IDENTIFIER [gui|dsp|both] [pins N] [later]";
    p.arity(line, 3, 7, usage);
    InstanceDecl decl;
    decl.name = line.tokens[1].raw;
    decl.where = line.where;
    checkNewName(p, line, decl.name);
    const std::string& id = line.tokens[2].raw;
    decl.module = p.catalogue.find(id);
    if (!decl.module)
        p.fail(line, "unknown identifier '" + id + "': no module description names it");
    decl.gui = decl.module->gui.has_value();
    decl.dsp = decl.module->dsp.has_value();
    std::optional<int> pinCount;
    for (size_t i = 3; i < line.tokens.size(); ++i) {
        const std::string& word = line.tokens[i].raw;
        if (word == "gui" || word == "dsp" || word == "both") {
            if (i != 3)
                p.fail(line, "usage: " + std::string(usage));
            decl.gui = word != "dsp";
            decl.dsp = word != "gui";
            if ((decl.gui && !decl.module->gui) || (decl.dsp && !decl.module->dsp))
                p.fail(line, id + " has no " + (decl.module->gui ? "dsp" : "gui") + " side in its description");
        } else if (word == "pins" && i + 1 < line.tokens.size() && !pinCount) {
            pinCount = p.integer(line, line.tokens[++i]);
        } else if (word == "later" && !decl.later) {
            decl.later = true;
        } else if (i == 3 && word != "pins") {
            p.fail(line, "the side must be gui, dsp or both, not '" + word + "'");
        } else {
            p.fail(line, "usage: " + std::string(usage));
        }
    }
    if (pinCount) {
        if (!decl.gui)
            p.fail(line, "pins N sets the number of a gui side's pins; " + decl.name + " has none");
        decl.guiPins = resizedSide(*decl.module->gui, *pinCount);
        if (!decl.guiPins) {
            const SideInfo& described = *decl.module->gui;
            const bool open = !described.pins.empty() && described.pins.back().autoDuplicate;
            p.fail(line, id + " takes " + (open ? "0 or more" : "0 to " + std::to_string(described.pins.size())) +
                             " gui pins, not " + std::to_string(*pinCount));
        }
    }
    p.patch.add(std::move(decl));
}

// wire FROM -> TO [TO ...]
void wireDirective(Parser& p, const Line& line) {
    p.arity(line, 4, -1, "wire FROM -> TO [TO ...]");
    if (line.tokens[2].raw != "->")
        p.fail(line, "usage: wire FROM -> TO [TO ...]");
    const PinRef from = p.pin(line, line.tokens[1]);
    const PinInfo& source = *p.patch.pin(from);
    // A GUI half writes its inputs too (the descriptions mark such two-way pins "in"), so a GUI input may
    // feed a wire; a DSP input never sends anything.
    if (from.side == Side::Dsp && !source.output)
        p.fail(line, "cannot wire from " + p.patch.label(from) + ": it is a dsp input, which never sends");
    for (size_t i = 3; i < line.tokens.size(); ++i) {
        const PinRef to = p.pin(line, line.tokens[i]);
        const PinInfo& target = *p.patch.pin(to);
        if (to == from)
            p.fail(line, "a wire from " + p.patch.label(from) + " to itself");
        if (target.output)
            p.fail(line, "cannot wire into " + p.patch.label(to) + ": it is an output (a wire runs into an input)");
        if (!compatible(source.type, target.type))
            p.fail(line, "cannot wire " + p.patch.label(from) + " (" + datatypeName(source.type) + ") to " +
                             p.patch.label(to) + " (" + datatypeName(target.type) + ")");
        if (const WireDecl* w = p.patch.wire(from, to))
            p.fail(line, p.patch.label(from) + " is already wired to " + p.patch.label(to) + " at line " +
                             std::to_string(w->where.line));
        p.patch.add(WireDecl{from, to, line.where});
    }
}

// param NAME PIN [PIN ...]
void paramDirective(Parser& p, const Line& line) {
    p.arity(line, 3, -1, "param NAME PIN [PIN ...]");
    ParamDecl decl;
    decl.name = line.tokens[1].raw;
    decl.where = line.where;
    checkNewName(p, line, decl.name);
    std::set<PinRef> named;
    for (size_t i = 2; i < line.tokens.size(); ++i) {
        const PinRef pin = p.pin(line, line.tokens[i]);
        const PinInfo& info = *p.patch.pin(pin);
        if (const ParamDecl* other = p.patch.paramOf(pin))
            p.fail(line, p.patch.label(pin) + " is already bound to parameter '" + other->name + "'");
        if (!named.insert(pin).second)
            p.fail(line, p.patch.label(pin) + " is named twice");
        if (decl.pins.empty())
            decl.type = info.type;
        else if (!compatible(decl.type, info.type))
            p.fail(line, "parameter '" + decl.name + "' is " + datatypeName(decl.type) + " but " + p.patch.label(pin) +
                             " is " + datatypeName(info.type));
        decl.pins.push_back(pin);
    }
    p.patch.add(std::move(decl));
}

// resources DIR (relative to the patch file's folder)
void resourcesDirective(Parser& p, const Line& line) {
    p.arity(line, 2, 2, "resources FOLDER");
    const Token& t = line.tokens[1];
    std::filesystem::path dir = t.quoted ? t.text : t.raw;
    if (dir.is_relative())
        dir = p.patch.file.parent_path() / dir;
    std::error_code ec;
    if (!std::filesystem::is_directory(dir, ec))
        p.fail(line, "resource folder " + dir.string() + " does not exist");
    p.patch.resources.push_back(std::filesystem::absolute(dir).lexically_normal());
}

// temp-folder: the run gets a folder of its own, made when it starts, removed when it ends, and searched
// first for resources, so that files modules write under relative names land there.
void tempFolderDirective(Parser& p, const Line& line) {
    p.arity(line, 1, 1, "temp-folder");
    if (p.patch.tempFolder)
        p.fail(line, "a second 'temp-folder' line");
    p.patch.tempFolder = true;
}

bool onOff(Parser& p, const Line& line) {
    const std::string& v = line.tokens[2].raw;
    if (v != "on" && v != "off")
        p.fail(line, "option " + line.tokens[1].raw + " is on or off, not '" + v + "'");
    return v == "on";
}

// option echo on|off, option defaults on|off, option depth N, option trace off|on|deliveries,
// option clock real|virtual
void optionDirective(Parser& p, const Line& line) {
    p.arity(line, 3, 3, "option NAME VALUE");
    const std::string& name = line.tokens[1].raw;
    Options& o = p.patch.options;
    if (name == "echo") {
        o.echo = onOff(p, line);
    } else if (name == "defaults") {
        o.defaults = onOff(p, line);
    } else if (name == "depth") {
        o.depth = p.integer(line, line.tokens[2]);
        if (o.depth < 1 || o.depth > 1000)
            p.fail(line, "option depth is between 1 and 1000");
    } else if (name == "trace") {
        const std::string& v = line.tokens[2].raw;
        if (v == "off")
            o.trace = Trace::Off;
        else if (v == "on")
            o.trace = Trace::Transmissions;
        else if (v == "deliveries")
            o.trace = Trace::Deliveries;
        else
            p.fail(line, "option trace is off, on or deliveries, not '" + v + "'");
    } else if (name == "clock") {
        const std::string& v = line.tokens[2].raw;
        if (v != "real" && v != "virtual")
            p.fail(line, "option clock is real or virtual, not '" + v + "'");
        o.clock = v == "virtual" ? Clock::Virtual : Clock::Real;
    } else {
        p.fail(line, "unknown option '" + name + "' (echo, defaults, depth, trace, clock)");
    }
}

const bool registered = Directives::add("instance", instanceDirective) && Directives::add("wire", wireDirective) &&
                        Directives::add("param", paramDirective) && Directives::add("resources", resourcesDirective) &&
                        Directives::add("temp-folder", tempFolderDirective) &&
                        Directives::add("option", optionDirective);

}  // namespace

}  // namespace kxhost
