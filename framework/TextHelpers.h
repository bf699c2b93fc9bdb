// Tokenising and number parsing of narrow text (C-locale white space, no locale dependence).
#pragma once

#include <string>
#include <string_view>
#include <vector>

// The leading decimal integer of text (leading white space and a sign allowed), clamped to the int
// range; 0 when there is none.
int StringToInt(const std::string& text);

// Appends the tokens of text to out: white space or a comma separates tokens, a single- or double-quoted
// token runs to its closing quote (or the end). A second adjacent comma starts the next token, so
// "a,,b" gives "a" and ",b". A null text appends nothing.
void SplitString(const char* text, std::vector<std::string>& out);

// Calls onLine(words) for every line of text, words being the line's tokens as SplitString gives them
// (empty for a blank line). Lines end at a line feed; a carriage return that ends a line is dropped, on
// the last line as well, so CRLF text reads exactly as LF text (an unclosed quote included).
template <class OnLine>
void forEachLineWords(std::string_view text, OnLine&& onLine) {
    std::vector<std::string> words;
    std::string line;
    for (size_t start = 0; start <= text.size();) {
        const size_t lf = text.find('\n', start);
        const size_t end = lf == std::string_view::npos ? text.size() : lf;
        line.assign(text.substr(start, end - start));
        if (!line.empty() && line.back() == '\r')
            line.pop_back();
        words.clear();
        SplitString(line.c_str(), words);
        onLine(static_cast<const std::vector<std::string>&>(words));
        if (lf == std::string_view::npos)
            break;
        start = lf + 1;
    }
}
