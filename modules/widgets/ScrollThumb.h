// The thumb of a scroll bar, shared by the drawn scroll bar and the list box's narrow bar: its length
// shows what part of the whole is visible, and its place where that part lies.
#pragma once

#include <algorithm>

namespace kx {

struct ThumbSpan {
    float start = 0;   // from the track's start
    float length = 0;  // along the track
};

// The thumb of a window of `visible` items at `position` over `total` items, along a track of `track`
// units. Its length is the visible share of the track but never below minLength (so it stays big enough
// to grab) nor beyond the track; it travels the track less its length, so the last position puts its end
// at the track's end. When everything is visible the thumb fills the track. Defined for every input:
// NaN, negative and infinite values give a thumb within the track.
inline ThumbSpan thumbSpan(float track, double total, double visible, double position, float minLength) {
    if (!(track > 0) || track > 1e9f)
        return {};
    if (!(total > visible) || !(visible == visible))
        return {0, track};
    const double shown = visible > 0 ? track * (visible / total) : 0.0;
    const float length = static_cast<float>(
        std::clamp(shown, static_cast<double>(std::min(minLength, track)), static_cast<double>(track)));
    const double travel = track - length;
    double start = position * travel / (total - visible);
    start = start > 0 ? std::min(start, travel) : 0.0;  // NaN falls to 0
    return {static_cast<float>(start), length};
}

}  // namespace kx
