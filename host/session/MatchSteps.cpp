// The expect-match step: a text pin's value matched against a regular expression, for values that
// depend on the machine (absolute paths, the order a folder lists in) where an exact expect cannot be
// written.
#include <cctype>
#include <regex>
#include <string>

#include "patch/Registry.h"
#include "patch/Text.h"
#include "session/Session.h"

namespace kxhost {

namespace {

// The largest repetition count ({n,m}) and group number (\N) an expression may hold. The standard
// library's compiler reads these numbers without checking for overflow, so larger ones are refused
// before it sees them; no test needs them.
constexpr int kLargestCount = 1000;

// The first number in pattern larger than kLargestCount in a place the compiler reads as one (after a
// "{" or a backslash, outside brackets), or "" when there is none.
std::string oversizedCount(const std::string& pattern) {
    bool inBrackets = false;
    for (size_t i = 0; i < pattern.size(); ++i) {
        const char c = pattern[i];
        size_t digits = i + 1;
        if (c == '\\' && i + 1 < pattern.size() && !std::isdigit(static_cast<unsigned char>(pattern[i + 1]))) {
            ++i;  // an escaped character
            continue;
        }
        if (c == '[' && !inBrackets)
            inBrackets = true;
        else if (c == ']' && inBrackets)
            inBrackets = false;
        if (inBrackets || (c != '{' && c != '\\'))
            continue;
        for (;;) {
            size_t end = digits;
            while (end < pattern.size() && std::isdigit(static_cast<unsigned char>(pattern[end])))
                ++end;
            const std::string number = pattern.substr(digits, end - digits);
            if (number.size() > 4 || (!number.empty() && std::stoi(number) > kLargestCount))
                return number;
            if (c != '{' || end >= pattern.size() || pattern[end] != ',')
                break;
            digits = end + 1;  // the upper bound of {n,m}
        }
    }
    return "";
}

// expect-match instance.Pin "REGEX": the pin's text (as UTF-8) contains a match of the ECMAScript
// expression; anchor it with ^ and $ to match the whole text.
Action compileExpectMatch(Parser& p, const Line& line) {
    p.arity(line, 3, 3, "expect-match instance.Pin \"REGEX\"");
    const PinRef pin = p.pin(line, line.tokens[1]);
    if (p.patch.pin(pin)->type != Datatype::Text)
        p.fail(line, "expect-match reads text pins only");
    const std::string pattern = line.tokens[2].quoted ? line.tokens[2].text : line.tokens[2].raw;
    if (const std::string count = oversizedCount(pattern); !count.empty())
        p.fail(line, "not a regular expression this host takes: " + pattern + " (" + count +
                         " is above the largest repetition count or group number, " + std::to_string(kLargestCount) +
                         ")");
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
