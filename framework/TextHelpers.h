// Tokenising and number parsing of narrow text (C-locale white space, no locale dependence).
#pragma once

#include <string>
#include <vector>

// The leading decimal integer of text (leading white space and a sign allowed), clamped to the int
// range; 0 when there is none.
int StringToInt(const std::string& text);

// Appends the tokens of text to out: white space or a comma separates tokens, a single- or double-quoted
// token runs to its closing quote (or the end). A second adjacent comma starts the next token, so
// "a,,b" gives "a" and ",b". A null text appends nothing.
void SplitString(const char* text, std::vector<std::string>& out);
