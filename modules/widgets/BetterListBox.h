// KX_BetterListBox: a drawn list for panels without skin images. It shows the entries of an enumeration
// list one per row in a text style, highlights the entry whose value is the choice, chooses an entry on
// a click, and scrolls with a narrow bar along its right edge that is dragged a row at a time.
#pragma once

#include <string>
#include <vector>

#include "FontCache.h"
#include "GmpiDrawing.h"
#include "MpGuiGfxBase.h"

namespace kx::listbox {
enum Pin : int {
    Choice,           // the value of the chosen entry (read and written)
    Items,            // the entries, an enumeration list
    PointerDown,      // true while the pointer is down on an entry
    Style,            // text style; an empty name becomes "normal"
    TextColour,       // hexadecimal AARRGGBB; empty or alpha 0: the style's
    TopColour,        // background gradient
    BottomColour,     //
    HighlightColour,  // behind the chosen entry
    ThumbColour,      // the narrow bar
    TrackColour,      //
    HideScrollBar,    // no bar while every entry fits
    PinCount
};
}  // namespace kx::listbox

// The rows of an enumeration list: its entries without the separators, which are neither shown nor
// chosen. A range is not expanded: row i of "range LOW,HIGH" is LOW + i, so a range of every integer
// costs no more than one of ten.
class ListRows {
public:
    void assign(const std::wstring& list);

    int count() const { return count_; }
    // Row must be in 0..count()-1.
    int valueAt(int row) const;
    std::wstring textAt(int row) const;

private:
    struct Entry {
        int value;
        std::wstring text;
    };
    std::vector<Entry> entries_;  // list mode
    bool range_ = false;
    int first_ = 0;  // range mode: the value of row 0
    int count_ = 0;
};

class KX_BetterListBox : public gmpi_gui::MpGuiGfxBase, public FontCacheClient {
public:
    // The narrow bar's width, and the shortest its thumb gets.
    static constexpr float kBarWidth = 12.0f;
    static constexpr float kMinThumb = 12.0f;

    KX_BetterListBox();

    // At least 4 x 4: the bar and one row need room.
    int32_t measure(GmpiDrawing_API::MP1_SIZE available, GmpiDrawing_API::MP1_SIZE* desired) override;
    // Also recounts the rows that fit, whether or not the rectangle changed.
    int32_t arrange(GmpiDrawing_API::MP1_RECT finalRect) override;
    int32_t OnRender(GmpiDrawing_API::IMpDeviceContext* drawingContext) override;
    // A first-button press on a row chooses it; on the bar it starts a drag.
    int32_t onPointerDown(int32_t flags, GmpiDrawing_API::MP1_POINT point) override;
    // A bar drag scrolls one row for each row height the pointer travels, at most one per move.
    int32_t onPointerMove(int32_t flags, GmpiDrawing_API::MP1_POINT point) override;
    int32_t onPointerUp(int32_t flags, GmpiDrawing_API::MP1_POINT point) override;

    void onSetItemList();
    void onSetStyle();
    void onSetColors();
    void onSetChoice() { invalidateRect(); }

    int scrollPosition() const { return scroll_; }
    int visibleRows() const { return visibleRows_; }
    float rowHeight() const { return rowHeight_; }
    const ListRows& rows() const { return rows_; }

private:
    void calcScrollBars();
    void clampScroll();
    // Moves the first row shown, within the rows there are, and repaints.
    void scrollBy(int rows);
    bool barShown() const;
    std::string styleName() const;

    MpGuiPin<int> choice_;
    StringGuiPin items_;
    MpGuiPin<bool> pointerDown_;
    StringGuiPin style_;
    StringGuiPin colourPins_[6];
    MpGuiPin<bool> hideScrollBar_;

    // Text (alpha 0: the style's), gradient top and bottom, highlight, thumb, track.
    enum Colour { Text, Top, Bottom, Highlight, Thumb, Track, ColourCount };
    GmpiDrawing::Color colours_[ColourCount];

    ListRows rows_;
    float rowHeight_ = 1.0f;
    int scroll_ = 0;  // the first row shown
    int visibleRows_ = 0;
    bool draggingBar_ = false;
    float dragY_ = 0;  // the drag's anchor: moves a row height with every row scrolled
};
