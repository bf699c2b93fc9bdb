#include "TextHelpers.h"

#include <climits>

namespace {

bool isSpace(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\v' || c == '\f' || c == '\r'; }

}  // namespace

int StringToInt(const std::string& text) {
    size_t i = 0;
    while (i < text.size() && isSpace(text[i]))
        ++i;
    bool negative = false;
    if (i < text.size() && (text[i] == '+' || text[i] == '-'))
        negative = text[i++] == '-';
    long long value = 0;
    for (; i < text.size() && text[i] >= '0' && text[i] <= '9'; ++i) {
        value = value * 10 + (text[i] - '0');
        if (value > static_cast<long long>(INT_MAX) + 1)
            value = static_cast<long long>(INT_MAX) + 1;  // saturate; the sign decides the final clamp
    }
    if (negative)
        value = -value;
    if (value > INT_MAX)
        return INT_MAX;
    return static_cast<int>(value);
}

void SplitString(const char* text, std::vector<std::string>& out) {
    if (!text)
        return;
    const char* p = text;
    for (;;) {
        while (isSpace(*p))
            ++p;
        if (*p == '\0')
            return;
        if (*p == '"' || *p == '\'') {
            const char quote = *p++;
            const char* start = p;
            while (*p != '\0' && *p != quote)
                ++p;
            out.emplace_back(start, p);
            if (*p == quote)
                ++p;  // the closing quote belongs to the token
        } else {
            const char* start = p++;  // the first character belongs to the token whatever it is
            while (*p != '\0' && !isSpace(*p) && *p != ',' && *p != '\'' && *p != '"')
                ++p;
            out.emplace_back(start, p);
        }
        // What follows the token: a run of spaces with at most one comma, or one comma, is a separator;
        // a quote or the end is left for the next round.
        if (isSpace(*p)) {
            while (isSpace(*p))
                ++p;
            if (*p == ',')
                ++p;
        } else if (*p == ',') {
            ++p;
        }
    }
}
