// What graphic modules answer for tool tips and context menus from their pins: the entries of an
// enumeration-list pin become the menu, the chosen entry reaches an output pin as a pulse, and a text pin
// becomes the tool tip.
#pragma once

#include <cstdint>
#include <string>

#include "MpGuiGfxBase.h"
#include "MpGuiPin.h"
#include "gmpi/IMpUnknown.h"
#include "gmpi/IString.h"

namespace kx {

// One menu entry per item of the enumeration list: the item's text, with its value as the entry's
// identifier, flags 0. At most it_enum_list::kMostListed of them; a longer list ends with an entry saying
// it was cut, whose identifier is -1 (the choice pins' rest value, so choosing it chooses nothing). -1
// when the object is not a context-menu sink.
int32_t addMenuItems(gmpi::IMpUnknown* contextMenuItemsSink, const std::wstring& items);

// The selection, then -1: a receiver sees every choice, also the same entry chosen twice.
void pulseMenuSelection(MpGuiPin<int>& pin, int32_t selection);

// Writes text (UTF-8; values that are no code point as U+FFFD) into the host's string. -1 without one.
int32_t writeHostString(gmpi::IString* returnString, const std::wstring& text);
// The same for a host object that answers the string interface.
int32_t writeHostString(gmpi::IMpUnknown* returnString, const std::wstring& text);

}  // namespace kx

// A graphic module whose tool tip is a text pin and whose context menu lists an enumeration-list pin,
// the choice going out as a pulse on an int pin. It owns the three pins; each module binds them in its
// own pin order:
//   initializePin(toolTip_); initializePin(menuItems_); initializePin(menuChoice_);
class PinMenuGfxBase : public gmpi_gui::MpGuiGfxBase {
public:
    // The tool-tip pin's text (empty included).
    int32_t getToolTip(GmpiDrawing_API::MP1_POINT point, gmpi::IString* returnString) override;
    int32_t getToolTip(float x, float y, gmpi::IMpUnknown* returnString) override;
    int32_t populateContextMenu(float x, float y, gmpi::IMpUnknown* contextMenuItemsSink) override;
    int32_t onContextMenu(int32_t selection) override;

protected:
    StringGuiPin toolTip_;
    StringGuiPin menuItems_;
    MpGuiPin<int> menuChoice_;
};
