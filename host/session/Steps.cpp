// The scenario steps every patch may use: set, expect, print. (set also gives initial values before the
// scenario line.)
#include <cmath>
#include <ostream>
#include <variant>

#include "patch/Registry.h"
#include "session/Session.h"

namespace kxhost {

namespace {

// A pin (instance.Pin) or a host parameter (a bare name).
struct Target {
    std::optional<PinRef> pin;
    const ParamDecl* param = nullptr;
    Datatype type = Datatype::Int;
    std::string label;
};

Target target(Parser& p, const Line& line, const Token& token) {
    Target t;
    if (token.raw.find('.') == std::string::npos) {
        t.param = p.patch.param(token.raw);
        if (!t.param)
            p.fail(line, "no parameter named '" + token.raw + "' (pins are written instance.Pin)");
        t.type = t.param->type;
        t.label = t.param->name;
    } else {
        t.pin = p.pin(line, token);
        t.type = p.patch.pin(*t.pin)->type;
        t.label = p.patch.label(*t.pin);
    }
    return t;
}

const Value& current(Session& s, const Target& t) { return t.pin ? s.value(*t.pin) : s.paramValue(*t.param); }

// set TARGET VALUE
Action compileSet(Parser& p, const Line& line) {
    p.arity(line, 3, 3, "set instance.Pin VALUE | set PARAMETER VALUE");
    const Target t = target(p, line, line.tokens[1]);
    const Value v = p.value(line, line.tokens[2], t.type);
    return [t, v](Session& s) {
        if (t.pin)
            s.set(*t.pin, v);
        else
            s.setParam(*t.param, v);
    };
}

// expect TARGET VALUE | expect TARGET VALUE within TOLERANCE (floats) | expect instance.Pin sent N
Action compileExpect(Parser& p, const Line& line) {
    p.arity(line, 3, 5, "expect TARGET VALUE [within TOLERANCE] | expect instance.Pin sent N");
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
    if (line.tokens.size() > 3) {
        p.arity(line, 5, 5, "expect TARGET VALUE within TOLERANCE");
        if (line.tokens[3].raw != "within" || (t.type != Datatype::Float && t.type != Datatype::Audio))
            p.fail(line, "usage: expect TARGET VALUE within TOLERANCE (for float pins)");
        tolerance = p.value(line, line.tokens[4], Datatype::Float).asFloat();
        if (!(tolerance >= 0.0f))
            p.fail(line, "the tolerance is a float of at least 0");
    }
    const std::string expected = v.format() + (tolerance > 0.0f ? " within " + line.tokens[4].raw : "");
    return [t, v, tolerance, expected, where](Session& s) {
        const Value& now = current(s, t);
        const bool held = tolerance > 0.0f ? std::fabs(now.asFloat() - v.asFloat()) <= tolerance : now == v;
        if (!held)
            s.fail(where, "expectation failed: " + t.label + " is " + now.format() + ", expected " + expected);
        else
            s.trace("ok " + t.label + " = " + now.format());
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
