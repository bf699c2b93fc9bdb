// The scenario steps every patch may use: set, expect, print. (set also gives initial values before the
// scenario line.)
#include <algorithm>
#include <cmath>
#include <ostream>
#include <variant>

#include "patch/Registry.h"
#include "session/Session.h"

namespace kxhost {

namespace {

// A pin (instance.Pin), a parameter of "param", or a name another part declared (the host parameters of
// "parameter").
struct Target {
    std::optional<PinRef> pin;
    const ParamDecl* param = nullptr;
    std::string named;
    Datatype type = Datatype::Int;
    std::string label;
};

Target target(Parser& p, const Line& line, const Token& token) {
    Target t;
    if (token.raw.find('.') == std::string::npos) {
        t.param = p.patch.param(token.raw);
        if (t.param) {
            t.type = t.param->type;
        } else if (auto it = p.patch.namedValues.find(token.raw); it != p.patch.namedValues.end()) {
            t.named = it->first;
            t.type = it->second;
        } else {
            p.fail(line, "no parameter named '" + token.raw + "' (pins are written instance.Pin)");
        }
        t.label = token.raw;
    } else {
        t.pin = p.pin(line, token);
        t.type = p.patch.pin(*t.pin)->type;
        t.label = p.patch.label(*t.pin);
    }
    return t;
}

Value current(Session& s, const Target& t) {
    if (t.pin)
        return s.value(*t.pin);
    return t.param ? s.paramValue(*t.param) : s.namedValue(t.named);
}

// "at N" after a value: a place in samples, for a DSP pin. Returns -1 when the line has no "at".
int64_t position(Parser& p, const Line& line, size_t index, const Target& t, const char* what) {
    if (line.tokens.size() <= index)
        return -1;
    if (line.tokens[index].raw != "at" || line.tokens.size() != index + 2)
        p.fail(line, std::string("usage: ") + what);
    if (!t.pin || t.pin->side != Side::Dsp)
        p.fail(line, "'at' places a value in samples: it is for dsp pins, and " + t.label + " is not one");
    const int n = p.integer(line, line.tokens[index + 1]);
    if (n < 0)
        p.fail(line, "'at' takes a sample offset of 0 or more, not " + std::to_string(n));
    return n;
}

// set TARGET VALUE [at N]
Action compileSet(Parser& p, const Line& line) {
    const char* usage = "set instance.Pin VALUE [at SAMPLE] | set PARAMETER VALUE";
    p.arity(line, 3, 5, usage);
    const Target t = target(p, line, line.tokens[1]);
    const Value v = p.value(line, line.tokens[2], t.type);
    const int64_t at = position(p, line, 3, t, usage);
    if (t.pin) {
        if (!p.inScenario && p.patch.instance(t.pin->instance)->later)
            p.fail(line, t.pin->instance + " is created later, by the scenario: set its pins after its create step");
        if (at >= 0 && (p.patch.pin(*t.pin)->output || p.patch.paramOf(*t.pin)))
            p.fail(line, "'at' delivers into a dsp input; " + t.label + " is an output or bound to a parameter");
    }
    return [t, v, at](Session& s) {
        if (t.pin)
            s.set(*t.pin, v, std::max<int64_t>(at, 0));
        else if (t.param)
            s.setParam(*t.param, v);
        else
            s.setNamed(t.named, v);
    };
}

// expect TARGET VALUE [at N] | expect TARGET VALUE within TOLERANCE (floats) | expect instance.Pin sent N
Action compileExpect(Parser& p, const Line& line) {
    p.arity(line, 3, 5, "expect TARGET VALUE [within TOLERANCE | at SAMPLE] | expect instance.Pin sent N");
    const Target t = target(p, line, line.tokens[1]);
    const Location where = line.where;
    if (line.tokens[2].raw == "sent") {
        p.arity(line, 4, 4, "expect instance.Pin sent N");
        if (!t.pin)
            p.fail(line, "'sent' counts the transmissions of a pin, not of a parameter");
        const int n = p.integer(line, line.tokens[3]);
        return [t, n, where](Session& s) {
            const int sent = s.sentCount(*t.pin);
            if (sent != n)
                s.fail(where, "expectation failed: " + t.label + " sent " + std::to_string(sent) +
                                  " time(s), expected " + std::to_string(n));
            else
                s.trace("ok " + t.label + " sent " + std::to_string(n));
        };
    }
    const Value v = p.value(line, line.tokens[2], t.type);
    float tolerance = 0.0f;
    int64_t at = -1;
    if (line.tokens.size() > 3 && line.tokens[3].raw == "at") {
        at = position(p, line, 3, t, "expect instance.Pin VALUE at SAMPLE");
    } else if (line.tokens.size() > 3) {
        p.arity(line, 5, 5, "expect TARGET VALUE within TOLERANCE");
        if (line.tokens[3].raw != "within" || (t.type != Datatype::Float && t.type != Datatype::Audio))
            p.fail(line, "usage: expect TARGET VALUE within TOLERANCE (for float pins)");
        tolerance = p.value(line, line.tokens[4], Datatype::Float).asFloat();
        if (!(tolerance >= 0.0f))
            p.fail(line, "the tolerance is a float of at least 0");
    }
    const std::string expected = v.format() + (tolerance > 0.0f ? " within " + line.tokens[4].raw : "") +
                                 (at >= 0 ? " at " + std::to_string(at) : "");
    return [t, v, tolerance, at, expected, where](Session& s) {
        const Value now = current(s, t);
        // -1: the pin has not transmitted from a run.
        const int64_t sentAt = t.pin ? s.sentAt(*t.pin).value_or(-1) : -1;
        const bool held = (tolerance > 0.0f ? std::fabs(now.asFloat() - v.asFloat()) <= tolerance : now == v) &&
                          (at < 0 || sentAt == at);
        const std::string is = now.format() + (at >= 0 && sentAt >= 0 ? " at " + std::to_string(sentAt) : "");
        if (!held)
            s.fail(where, "expectation failed: " + t.label + " is " + is +
                              (at >= 0 && sentAt < 0 ? " (not sent from a run)" : "") + ", expected " + expected);
        else
            s.trace("ok " + t.label + " = " + is);
    };
}

// print ITEM [ITEM ...]: each item is quoted text, printed as it is, or a target, printed as
// label = value; the items share one line.
Action compilePrint(Parser& p, const Line& line) {
    p.arity(line, 2, -1, "print \"TEXT\" | print TARGET [TARGET ...]");
    std::vector<std::variant<std::string, Target>> items;
    for (size_t i = 1; i < line.tokens.size(); ++i) {
        if (line.tokens[i].quoted)
            items.emplace_back(line.tokens[i].text);
        else
            items.emplace_back(target(p, line, line.tokens[i]));
    }
    return [items](Session& s) {
        std::string text;
        for (const auto& item : items) {
            if (!text.empty())
                text += ' ';
            if (const auto* t = std::get_if<Target>(&item))
                text += t->label + " = " + current(s, *t).format();
            else
                text += std::get<std::string>(item);
        }
        s.out() << text << "\n";
    };
}

const bool registered = Steps::add("set", compileSet) && Steps::add("expect", compileExpect, true) &&
                        Steps::add("print", compilePrint, true);

}  // namespace

}  // namespace kxhost
