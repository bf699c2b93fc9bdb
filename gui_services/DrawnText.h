// Text as text-drawing widgets hand it to the host: only the part a box can show. A text pin may hold a
// whole file; laying all of it out to show one row would cost the panel a frame's time for every row.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

struct FontMetadata;

namespace kx {

// Which part of a text stays when it is cut: the part an aligned line shows first.
enum class TextAnchor { Start, Centre, End };

// The anchor of a style's horizontal alignment (left when there is no style).
TextAnchor anchorOf(const FontMetadata* style);

// How many characters a box could show at the narrowest one unit per character: one line of width,
// or, when the text wraps, as many such lines as the height holds at the line height. Never 0 for a box
// of any size, and bounded for boxes of any size (NaN and infinite ones included).
size_t charsThatFit(float width, float height, float lineHeight, bool wraps);

// The text as UTF-8 ready to draw, cut to at most maxChars characters around its anchor when it is
// longer; values that are no code point show as U+FFFD.
std::string shownUtf8(std::wstring_view text, size_t maxChars, TextAnchor anchor);

}  // namespace kx
