#include "patch/Parser.h"

#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <sstream>

#include "patch/Registry.h"
#include "patch/Text.h"

namespace kxhost {

// ---- tokens

namespace {

int hexDigit(char c) {
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    if (c >= 'A' && c <= 'F')
        return c - 'A' + 10;
    return -1;
}

void appendUtf8(std::string& out, char32_t c) { out += narrow(std::wstring(1, static_cast<wchar_t>(c))); }

// Reads a quoted string starting at s[i] == '"'; leaves i after the closing quote.
std::string readQuoted(const std::string& s, size_t& i, const Location& where) {
    std::string out;
    for (++i; i < s.size(); ++i) {
        const char c = s[i];
        if (c == '"') {
            ++i;
            return out;
        }
        if (c != '\\') {
            out += c;
            continue;
        }
        if (++i == s.size())
            break;
        switch (s[i]) {
            case 'n':
                out += '\n';
                break;
            case 't':
                out += '\t';
                break;
            case 'r':
                out += '\r';
                break;
            case '0':
                out += '\0';
                break;
            case '"':
                out += '"';
                break;
            case '\\':
                out += '\\';
                break;
            case 'u': {
                // \u{1F600}
                const size_t close = s.find('}', i);
                if (i + 1 >= s.size() || s[i + 1] != '{' || close == std::string::npos || close == i + 2 ||
                    close > i + 8)
                    throw errorAt(where, "\\u needs a code point in braces, like \\u{e9}");
                char32_t c32 = 0;
                for (size_t k = i + 2; k < close; ++k) {
                    const int d = hexDigit(s[k]);
                    if (d < 0)
                        throw errorAt(where, "\\u needs a code point in braces, like \\u{e9}");
                    c32 = c32 * 16 + static_cast<char32_t>(d);
                }
                if (c32 > 0x10FFFF || (c32 >= 0xD800 && c32 <= 0xDFFF))
                    throw errorAt(where, "\\u{" + s.substr(i + 2, close - i - 2) + "} is not a code point");
                appendUtf8(out, c32);
                i = close;
                break;
            }
            default:
                throw errorAt(where, std::string("unknown escape \\") + s[i] + " in quoted text");
        }
    }
    throw errorAt(where, "quoted text is not closed");
}

// "#RRGGBB" or "#AARRGGBB" standing alone is a colour, not a comment: a panel line reads as people write
// it. Any other '#' outside quotes starts a comment.
bool isColourWord(const std::string& s, size_t at) {
    size_t end = at + 1;
    while (end < s.size() && std::isxdigit(static_cast<unsigned char>(s[end])))
        ++end;
    const size_t digits = end - at - 1;
    return (digits == 6 || digits == 8) && (end == s.size() || std::isspace(static_cast<unsigned char>(s[end])));
}

}  // namespace

std::vector<Token> tokenize(const std::string& s, const Location& where) {
    std::vector<Token> tokens;
    size_t i = 0;
    while (i < s.size()) {
        if (std::isspace(static_cast<unsigned char>(s[i]))) {
            ++i;
            continue;
        }
        if (s[i] == '#' && !isColourWord(s, i))
            break;
        Token t;
        const size_t start = i;
        int quotedParts = 0;
        while (i < s.size() && !std::isspace(static_cast<unsigned char>(s[i]))) {
            if (s[i] == '"') {
                t.text = readQuoted(s, i, where);
                ++quotedParts;
            } else if (s[i] == '[') {
                const size_t close = s.find(']', i);
                if (close == std::string::npos)
                    throw errorAt(where, "'[' is not closed");
                i = close + 1;
            } else {
                ++i;
            }
        }
        t.raw = s.substr(start, i - start);
        t.quoted = quotedParts == 1 && t.raw.front() == '"' && t.raw.back() == '"';
        if (!t.quoted)
            t.text = t.raw;
        tokens.push_back(std::move(t));
    }
    return tokens;
}

// ---- the patch

void Patch::add(InstanceDecl decl) {
    instanceAt_.emplace(decl.name, instances.size());
    instances.push_back(std::move(decl));
}

void Patch::add(ParamDecl decl) {
    paramAt_.emplace(decl.name, params.size());
    for (const auto& pin : decl.pins)
        paramOfPin_.emplace(pin, params.size());
    params.push_back(std::move(decl));
}

void Patch::add(WireDecl wire) {
    wireAt_.emplace(std::make_pair(wire.from, wire.to), wires.size());
    wires.push_back(std::move(wire));
}

const InstanceDecl* Patch::instance(const std::string& name) const {
    const auto it = instanceAt_.find(name);
    return it == instanceAt_.end() ? nullptr : &instances[it->second];
}

const ParamDecl* Patch::param(const std::string& name) const {
    const auto it = paramAt_.find(name);
    return it == paramAt_.end() ? nullptr : &params[it->second];
}

const ParamDecl* Patch::paramOf(const PinRef& pin) const {
    const auto it = paramOfPin_.find(pin);
    return it == paramOfPin_.end() ? nullptr : &params[it->second];
}

const WireDecl* Patch::wire(const PinRef& from, const PinRef& to) const {
    const auto it = wireAt_.find({from, to});
    return it == wireAt_.end() ? nullptr : &wires[it->second];
}

const PinInfo* Patch::pin(const PinRef& ref) const {
    const InstanceDecl* decl = instance(ref.instance);
    const SideInfo* side = decl ? decl->side(ref.side) : nullptr;
    return side ? side->byIndex(ref.index) : nullptr;
}

std::string Patch::label(const PinRef& ref) const {
    std::string s = ref.instance + ".";
    const InstanceDecl* decl = instance(ref.instance);
    if (decl && decl->gui && decl->dsp)
        s += std::string(sideName(ref.side)) + ".";
    const PinInfo* info = pin(ref);
    return s + (info ? pinNameForPatch(info->name) : std::to_string(ref.index));
}

// ---- the parser's helpers

PinRef Parser::pin(const Line& line, const Token& token) const {
    const std::string& raw = token.raw;
    const size_t dot = raw.find('.');
    const size_t quote = raw.find('"');
    if (dot == std::string::npos || dot == 0 || (quote != std::string::npos && quote < dot))
        fail(line, "'" + raw + "' is not a pin: write instance.Pin, instance.\"Pin name\" or instance.3");
    PinRef ref;
    ref.instance = raw.substr(0, dot);
    const InstanceDecl* decl = patch.instance(ref.instance);
    if (!decl)
        fail(line, "no instance named '" + ref.instance + "'");
    std::string rest = raw.substr(dot + 1);
    ref.side = decl->gui ? Side::Gui : Side::Dsp;
    if (decl->gui && decl->dsp && (rest.rfind("gui.", 0) == 0 || rest.rfind("dsp.", 0) == 0)) {
        ref.side = rest[0] == 'g' ? Side::Gui : Side::Dsp;
        rest = rest.substr(4);
    }
    const SideInfo& side = *decl->side(ref.side);
    const std::string owner = decl->module->id + " (" + sideName(ref.side) + ")";
    if (rest.empty())
        fail(line, "'" + raw + "' names no pin");
    if (rest.front() == '"') {
        size_t i = 0;
        const std::string name = readQuoted(rest, i, line.where);
        if (i != rest.size())
            fail(line, "unexpected text after the pin name in '" + raw + "'");
        const PinInfo* info = side.byName(name);
        if (!info)
            fail(line, owner + " has no pin named \"" + name + "\"");
        ref.index = info->index;
    } else if (std::all_of(rest.begin(), rest.end(),
                           [](char c) { return std::isdigit(static_cast<unsigned char>(c)); })) {
        int index = -1;
        std::from_chars(rest.data(), rest.data() + rest.size(), index);
        if (!side.byIndex(index))
            fail(line, owner + " has no pin " + rest);
        ref.index = index;
    } else {
        const PinInfo* info = side.byName(rest);
        if (!info)
            fail(line, owner + " has no pin named \"" + rest + "\"");
        ref.index = info->index;
    }
    return ref;
}

namespace {

std::optional<int64_t> parseInteger(const std::string& s) {
    const bool negative = !s.empty() && s[0] == '-';
    std::string digits = negative || (!s.empty() && s[0] == '+') ? s.substr(1) : s;
    int base = 10;
    if (digits.size() > 2 && digits[0] == '0' && (digits[1] == 'x' || digits[1] == 'X')) {
        base = 16;
        digits = digits.substr(2);
    }
    if (digits.empty())
        return std::nullopt;
    int64_t v = 0;
    auto r = std::from_chars(digits.data(), digits.data() + digits.size(), v, base);
    if (r.ec != std::errc() || r.ptr != digits.data() + digits.size())
        return std::nullopt;
    return negative ? -v : v;
}

std::optional<float> parseFloat(const std::string& s) {
    if (s == "nan")
        return std::nanf("");
    if (s == "inf" || s == "+inf")
        return HUGE_VALF;
    if (s == "-inf")
        return -HUGE_VALF;
    if (s.empty() || s.find_first_not_of("0123456789+-.eE") != std::string::npos)
        return std::nullopt;
    char* end = nullptr;
    errno = 0;
    const float v = std::strtof(s.c_str(), &end);
    if (end != s.c_str() + s.size() || errno == ERANGE)
        return std::nullopt;
    return v;
}

std::optional<Bytes> parseBlob(const std::string& s) {
    if (s.size() < 2 || s.front() != '[' || s.back() != ']')
        return std::nullopt;
    std::string hex;
    for (char c : s.substr(1, s.size() - 2))
        if (!std::isspace(static_cast<unsigned char>(c)))
            hex += c;
    if (hex.size() % 2)
        return std::nullopt;
    Bytes b;
    for (size_t i = 0; i < hex.size(); i += 2) {
        const int hi = hexDigit(hex[i]), lo = hexDigit(hex[i + 1]);
        if (hi < 0 || lo < 0)
            return std::nullopt;
        b.push_back(static_cast<uint8_t>(hi * 16 + lo));
    }
    return b;
}

}  // namespace

Value Parser::value(const Line& line, const Token& token, Datatype type) const {
    const std::string& s = token.raw;
    auto wrong = [&](const char* hint) { return errorAt(line.where, s + " is not " + hint); };
    switch (type) {
        case Datatype::Text:
            if (!token.quoted)
                throw wrong("text (text values are quoted: \"like this\")");
            return Value::ofText(widen(token.text));
        case Datatype::Bool:
            if (s == "true" || s == "false")
                return Value::ofBool(s == "true");
            throw wrong("a bool (true or false)");
        case Datatype::Int:
        case Datatype::Enum: {
            const auto v = token.quoted ? std::nullopt : parseInteger(s);
            if (!v)
                throw wrong(type == Datatype::Int ? "an int" : "an enum value (an int)");
            if (*v < INT32_MIN || *v > UINT32_MAX)
                fail(line, s + " does not fit in 32 bits");
            return Value::ofInt(static_cast<int32_t>(static_cast<uint32_t>(*v)), type);
        }
        case Datatype::Float:
        case Datatype::Audio: {
            const auto v = token.quoted ? std::nullopt : parseFloat(s);
            if (!v)
                throw wrong("a float");
            return Value::ofFloat(*v, type);
        }
        case Datatype::Blob:
        case Datatype::Midi: {
            const auto v = token.quoted ? std::nullopt : parseBlob(s);
            if (!v)
                throw wrong("a blob (hex bytes in brackets: [00 ff 10])");
            return Value::ofBlob(*v, type);
        }
    }
    throw wrong("a value");
}

int Parser::integer(const Line& line, const Token& token) const {
    const auto v = parseInteger(token.raw);
    if (!v || *v < INT32_MIN || *v > INT32_MAX)
        fail(line, token.raw + " is not an integer");
    return static_cast<int>(*v);
}

void Parser::arity(const Line& line, size_t min, long max, const char* usage) const {
    const size_t n = line.tokens.size();
    if (n < min || (max >= 0 && n > static_cast<size_t>(max)))
        fail(line, std::string("usage: ") + usage);
}

// ---- the file

Patch parsePatchText(const std::string& text, const std::filesystem::path& file, const Catalogue& catalogue) {
    Patch patch;
    patch.file = file;
    Parser parser(catalogue, patch);
    // A byte-order mark some editors write is not part of the first statement.
    std::istringstream in(text.rfind("\xEF\xBB\xBF", 0) == 0 ? text.substr(3) : text);
    std::string source;
    int number = 0;
    while (std::getline(in, source)) {
        ++number;
        Line line;
        line.where = {file.string(), number};
        line.tokens = tokenize(source, line.where);
        if (line.tokens.empty())
            continue;
        const size_t first = source.find_first_not_of(" \t");
        const size_t last = source.find_last_not_of(" \t\r");
        line.text = source.substr(first, last - first + 1);
        const std::string& keyword = line.tokens[0].raw;
        if (keyword == "scenario") {
            parser.arity(line, 1, 1, "scenario");
            if (parser.inScenario)
                parser.fail(line, "a second 'scenario' line");
            parser.inScenario = true;
            continue;
        }
        const StepKind* step = Steps::find(keyword);
        const DirectiveHandler* directive = Directives::find(keyword);
        if (parser.inScenario) {
            if (!step)
                parser.fail(line, directive ? "'" + keyword + "' belongs before the 'scenario' line"
                                            : "unknown step '" + keyword + "'");
        } else if (directive) {
            (*directive)(parser, line);
            continue;
        } else if (keyword != "set") {
            parser.fail(line, step ? "'" + keyword + "' is a step: it belongs after a 'scenario' line"
                                   : "unknown directive '" + keyword + "'");
        }
        if (!step)
            parser.fail(line, "unknown step '" + keyword + "'");
        Step compiled{keyword, line.text, line.where, step->compile(parser, line), step->observes};
        (parser.inScenario ? patch.scenario : patch.setup).push_back(std::move(compiled));
    }
    return patch;
}

Patch parsePatchFile(const std::filesystem::path& file, const Catalogue& catalogue) {
    std::ifstream in(file, std::ios::binary);
    if (!in)
        throw HostError("patch " + file.string() + " cannot be read");
    std::ostringstream text;
    text << in.rdbuf();
    return parsePatchText(text.str(), file, catalogue);
}

}  // namespace kxhost
