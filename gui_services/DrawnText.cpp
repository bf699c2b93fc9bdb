#include "DrawnText.h"

#include <cmath>

#include "FontCache.h"
#include "TextCodec.h"

namespace kx {

namespace {
// Room beyond the width for glyphs narrower than a unit (thin spaces, marks that join the one before).
constexpr double kSpareChars = 16;
// No box shows more legible characters than this (a screen full of small text holds fewer); it bounds
// the cut for boxes of absurd size.
constexpr double kMostChars = 1 << 15;
}  // namespace

TextAnchor anchorOf(const FontMetadata* style) {
    if (!style)
        return TextAnchor::Start;
    if (style->flags & FontMetadata::Centred)
        return TextAnchor::Centre;
    if (style->flags & FontMetadata::RightAligned)
        return TextAnchor::End;
    return TextAnchor::Start;
}

size_t charsThatFit(float width, float height, float lineHeight, bool wraps) {
    // Written so that NaN falls to the smallest answer and infinity to the largest.
    const double perLine = width > 0 ? std::fmin(std::ceil(width) + kSpareChars, kMostChars) : kSpareChars;
    double lines = 1;
    if (wraps && height > 0)
        lines = std::fmin(std::ceil(height / (lineHeight >= 1 ? lineHeight : 1.0f)) + 1, kMostChars);
    return static_cast<size_t>(std::fmin(perLine * lines, kMostChars));
}

std::string shownUtf8(std::wstring_view text, size_t maxChars, TextAnchor anchor) {
    if (text.size() > maxChars) {
        switch (anchor) {
            case TextAnchor::Start:
                text = text.substr(0, maxChars);
                break;
            case TextAnchor::Centre:
                text = text.substr((text.size() - maxChars) / 2, maxChars);
                break;
            case TextAnchor::End:
                text = text.substr(text.size() - maxChars);
                break;
        }
    }
    return toUtf8Lenient(text);
}

}  // namespace kx
