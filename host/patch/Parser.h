// The patch parser's pieces that directive and step handlers use: tokens, lines, and the context that
// resolves pins and values against the descriptions.
#pragma once

#include <string>
#include <vector>

#include "patch/Patch.h"

namespace kxhost {

// A whitespace-separated word. Quotes ("...", with escapes) and brackets ([00 ff]) may hold spaces.
struct Token {
    std::string raw;      // as written
    std::string text;     // the unescaped content when the whole token is one quoted string
    bool quoted = false;  // the whole token is one quoted string
};

struct Line {
    Location where;
    std::string text;  // trimmed source line
    std::vector<Token> tokens;
};

// Splits one line into tokens; '#' outside quotes starts a comment. Throws HostError at where.
std::vector<Token> tokenize(const std::string& text, const Location& where);

class Parser {
public:
    Parser(const Catalogue& catalogue, Patch& patch) : catalogue(catalogue), patch(patch) {}

    const Catalogue& catalogue;
    Patch& patch;
    bool inScenario = false;

    // instance.Pin, instance."Pin name", instance.3, and instance.dsp.Pin / instance.gui.Pin for
    // instances with both halves.
    PinRef pin(const Line& line, const Token& token) const;
    // A literal of the given datatype: 5, -3, 0x1f, 1.5, nan, true, "text", [00 ff].
    Value value(const Line& line, const Token& token, Datatype type) const;
    // An integer argument (counts, limits).
    int integer(const Line& line, const Token& token) const;
    // Checks that the line has between min and max tokens (max < 0: no upper bound).
    void arity(const Line& line, size_t min, long max, const char* usage) const;
    [[noreturn]] void fail(const Line& line, const std::string& what) const { throw errorAt(line.where, what); }
};

}  // namespace kxhost
