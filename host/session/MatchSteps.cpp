// The expect-match step: a text pin's value matched against a regular expression, for values that
// depend on the machine (absolute paths, the order a folder lists in) where an exact expect cannot be
// written.
#include <regex>

#include "patch/Registry.h"
#include "patch/Text.h"
#include "session/Session.h"

namespace kxhost {

namespace {

// expect-match instance.Pin "REGEX": the pin's text (as UTF-8) contains a match of the ECMAScript
// expression; anchor it with ^ and $ to match the whole text.
Action compileExpectMatch(Parser& p, const Line& line) {
    p.arity(line, 3, 3, "expect-match instance.Pin \"REGEX\"");
    const PinRef pin = p.pin(line, line.tokens[1]);
    if (p.patch.pin(pin)->type != Datatype::Text)
        p.fail(line, "expect-match reads text pins only");
    const std::string pattern = line.tokens[2].quoted ? line.tokens[2].text : line.tokens[2].raw;
    std::regex expression;
    try {
        expression = std::regex(pattern, std::regex::ECMAScript);
    } catch (const std::regex_error& e) {
        p.fail(line, "not a regular expression: " + pattern + " (" + e.what() + ")");
    }
    const std::string label = p.patch.label(pin);
    const Location where = line.where;
    return [=](Session& s) {
        const std::string text = narrow(s.value(pin).text());
        if (std::regex_search(text, expression))
            s.trace("ok " + label + " matches " + pattern);
        else
            s.fail(where, "expectation failed: " + label + " is \"" + text + "\", which does not match " + pattern);
    };
}

const bool registered = Steps::add("expect-match", compileExpectMatch, true);

}  // namespace

}  // namespace kxhost
