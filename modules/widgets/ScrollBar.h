// KX_ScrollBar: a drawn scroll bar for a panel. Its thumb shows a window of Visible items at Position
// over Total items; a click beside the thumb pages, dragging the thumb moves the window (finely with the
// fine-adjustment modifier), and two button pins step it, repeating while held.
#pragma once

#include "GmpiDrawing.h"
#include "MpGuiGfxBase.h"
#include "TimerManager.h"
#include "widgets/ScrollThumb.h"

namespace kx::scrollbar {
enum Pin : int {
    Position,     // the first visible item (read and written)
    Visible,      // items in the window
    Total,        // items in all
    ThumbHeld,    // true while the thumb is dragged
    StepBack,     // a button: one item back, repeating while held
    StepForward,  // a button: one item forward, repeating while held
    TrackColour,  // hexadecimal AARRGGBB; empty: the default
    ThumbColour,  //
    EdgeColour,   // the groove and grip lines are shades of it
    Unused,
    PinCount
};
}  // namespace kx::scrollbar

class KX_ScrollBar : public gmpi_gui::MpGuiGfxBase, public TimerClient {
public:
    // Ticks of the timer service between a button's first step and its repeats.
    static constexpr int kRepeatDelayTicks = 15;
    // The thumb is never shorter than this, nor than the bar is thick (unless the track is).
    static constexpr float kMinThumb = 12.0f;

    KX_ScrollBar();

    int32_t OnRender(GmpiDrawing_API::IMpDeviceContext* drawingContext) override;
    // Beside the thumb: pages (0). On it: takes the thumb and the pointer (1).
    int32_t onPointerDown(int32_t flags, GmpiDrawing_API::MP1_POINT point) override;
    // While the thumb is held: moves the window with the pointer (1); otherwise 0.
    int32_t onPointerMove(int32_t flags, GmpiDrawing_API::MP1_POINT point) override;
    int32_t onPointerUp(int32_t flags, GmpiDrawing_API::MP1_POINT point) override;
    bool OnTimer() override;

    void onSetOffset();
    void onSetVisible();
    void onSetTotal();
    void onSetDec();
    void onSetInc();
    void onSetColors();

    // Where the thumb lies along the track, in whole units: its first and last unit.
    struct Geometry {
        bool vertical;
        float track;  // length along the bar
        float thumbStart, thumbEnd, thumbLength;
    };
    Geometry geometry() const;
    float position() const { return position_; }

private:
    // Steps the window by one item when a button asks and there is room; sends the new position.
    void step(int direction);
    // Sends the position's whole part (a drag's own write is kept from coming back as an outside one).
    void sendPosition();
    float lastStart() const { return total_ - visible_; }

    MpGuiPin<int> positionPin_;
    MpGuiPin<int> visiblePin_;
    MpGuiPin<int> totalPin_;
    MpGuiPin<bool> thumbHeld_;
    MpGuiPin<bool> stepBack_;
    MpGuiPin<bool> stepForward_;
    StringGuiPin colourPins_[3];
    MpGuiPin<bool> unused_;

    // Kept as floats so that slow drags add up; only the whole part is sent.
    float position_ = 0, visible_ = 0, total_ = 0;
    float dragFrom_ = 0;  // the pointer's last coordinate along the track
    int sentDuringDrag_ = 0;
    int ticks_ = 0;
    bool writing_ = false;  // set while the widget sends its own position
    bool dragging_ = false;
    // Track, thumb, edge; and the light and dark shades of the edge colour.
    GmpiDrawing::Color colours_[3];
    GmpiDrawing::Color light_, dark_;
};
