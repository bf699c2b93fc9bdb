// What the XY pads (KX_BetterJoystickImg, KX_VecJS) share: the rectangle a handle's centre travels over
// and the position 0..1 on it (x to the right, y up), and the drag that moves a position with the pointer.
#pragma once

#include <cmath>

#include "GmpiDrawing.h"
#include "gmpi/IMpGraphics.h"

namespace kx {

// A handle of handleWidth x handleHeight inside an area of areaWidth x areaHeight: its centre reaches
// half the handle in from every edge. On an axis where the area is no larger than the handle there is no
// travel, and the handle sits in the middle of it.
struct PadTravel {
    float left = 0, top = 0;      // the centre's place at position (0, 1)
    float width = 0, height = 0;  // how far the centre travels, never negative

    static PadTravel of(float areaWidth, float areaHeight, float handleWidth = 0, float handleHeight = 0) {
        PadTravel t;
        t.width = span(areaWidth, handleWidth);
        t.height = span(areaHeight, handleHeight);
        t.left = (areaWidth - t.width) / 2;
        t.top = (areaHeight - t.height) / 2;
        return t;
    }

    // The handle's centre for a position.
    GmpiDrawing::Point centreAt(GmpiDrawing::Point position) const {
        return {left + position.x * width, top + (1 - position.y) * height};
    }
    // The position whose centre is the point; an axis without travel gives a NaN or an infinity there.
    GmpiDrawing::Point positionAt(GmpiDrawing_API::MP1_POINT point) const {
        return {(point.x - left) / width, 1 - (point.y - top) / height};
    }

private:
    // A NaN or infinite area has no travel either.
    static float span(float area, float handle) {
        const float s = area - handle;
        return std::isfinite(s) && s > 0 ? s : 0.0f;
    }
};

// One drag over a pad. A plain move puts the position under the pointer (absolute) or adds the move's
// travel to it (relative); with the fine modifier held any move adds a tenth of its own travel, so the
// modifier can be pressed and let go in the middle of a drag without a jump.
class PadDrag {
public:
    static constexpr float kFineFactor = 0.1f;

    // Starts a drag at point and answers the position under it (an absolute press puts the handle
    // there; a relative one ignores it).
    GmpiDrawing::Point press(const PadTravel& travel, GmpiDrawing::Point position, GmpiDrawing_API::MP1_POINT point) {
        last_ = point;
        return keepUnknown(position, travel.positionAt(point));
    }

    // The position after a move to point from position.
    GmpiDrawing::Point move(const PadTravel& travel, GmpiDrawing::Point position, GmpiDrawing_API::MP1_POINT point,
                            int32_t flags, bool relative) {
        const bool fine = (flags & gmpi_gui_api::GG_POINTER_KEY_CONTROL) != 0;
        GmpiDrawing::Point next = travel.positionAt(point);
        if (fine || relative) {
            const float k = fine ? kFineFactor : 1.0f;
            next = {position.x + k * (point.x - last_.x) / travel.width,
                    position.y - k * (point.y - last_.y) / travel.height};
        }
        // A point that is no number is not measured from: the next real one is, from the last real one.
        if (std::isfinite(point.x) && std::isfinite(point.y))
            last_ = point;
        return keepUnknown(position, next);
    }

private:
    // An axis the pointer cannot say anything about (a point that is no number, an axis without travel)
    // keeps its value.
    static GmpiDrawing::Point keepUnknown(GmpiDrawing::Point position, GmpiDrawing::Point next) {
        return {std::isfinite(next.x) ? next.x : position.x, std::isfinite(next.y) ? next.y : position.y};
    }

    GmpiDrawing_API::MP1_POINT last_{0, 0};
};

}  // namespace kx
