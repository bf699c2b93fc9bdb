// KX_BetterTextEntry: a drawn text field. It paints its text on a background in a text style and, when
// clicked, opens the host's own text editor over its area; a confirmed edit becomes the new text. It also
// offers a tool tip and a context menu fed from pins.
#pragma once

#include <string>

#include "FontCache.h"
#include "GmpiDrawing.h"
#include "GmpiGui.h"
#include "MpGuiGfxBase.h"
#include "PinMenu.h"

namespace kx::textentry {
enum Pin : int {
    Text,              // shown and edited (read and written)
    Style,             // text style
    TextColour,        // hexadecimal AARRGGBB; empty: the style's
    BackgroundColour,  // hexadecimal AARRGGBB; empty: the style's
    MultiLine,         // wraps, and the editor takes several lines
    Editable,          // a click opens the editor
    Dimmed,            // both colours at half their opacity
    ToolTip,
    MenuItems,   // context-menu entries, an enumeration list
    MenuChoice,  // the chosen entry's value, then -1
    PointerDown,
    PinCount
};
}  // namespace kx::textentry

class KX_BetterTextEntry : public PinMenuGfxBase, public FontCacheClient {
public:
    // The background's inset from the area's edges (less in an area too small for it).
    static constexpr float kInset = 3.0f;

    KX_BetterTextEntry();

    int32_t OnRender(GmpiDrawing_API::IMpDeviceContext* drawingContext) override;
    // A first-button press takes the pointer; nothing opens yet.
    int32_t onPointerDown(int32_t flags, GmpiDrawing_API::MP1_POINT point) override;
    // The release of a press this module took opens the editor (when editable); -1 for any other.
    int32_t onPointerUp(int32_t flags, GmpiDrawing_API::MP1_POINT point) override;

    void onSetStyle();
    void onSetColors();
    void repaint() { invalidateRect(); }
    // The editor's answer: 0 confirms its text; anything else leaves the text as it was.
    void OnTextEnteredComplete(int32_t result);

    // The name under which every text entry of one style and line mode shares one text format.
    std::string formatKey() const;
    const GmpiDrawing::TextFormat& textFormat() const { return format_; }
    bool editorOpen() const { return !editor_.isNull(); }

private:
    // Finds (or makes once per process) the style's format for this line mode.
    void resolveStyle();

    StringGuiPin text_;
    StringGuiPin style_;
    StringGuiPin textColourPin_;
    StringGuiPin backgroundPin_;
    MpGuiPin<bool> multiLine_;
    MpGuiPin<bool> editable_;
    MpGuiPin<bool> dimmed_;
    MpGuiPin<bool> pointerDown_;

    GmpiDrawing::TextFormat format_;
    const FontMetadata* styleData_ = nullptr;  // the font cache's; not owned
    // Alpha -1 means unset: the style's colour is used.
    GmpiDrawing::Color textColour_{0, 0, 0, -1};
    GmpiDrawing::Color background_{0, 0, 0, -1};
    GmpiGui::TextEdit editor_;
    gmpi_gui::PendingCompletion editorDone_;
};
