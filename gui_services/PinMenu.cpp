#include "PinMenu.h"

#include "MpCountedPtr.h"
#include "TextCodec.h"
#include "gmpi/IMpContextItemSink.h"
#include "it_enum_list.h"

namespace kx {

int32_t addMenuItems(gmpi::IMpUnknown* contextMenuItemsSink, const std::wstring& items) {
    auto sink = gmpi_sdk::queryAs<gmpi::IMpContextItemSink>(contextMenuItemsSink, gmpi::MP_IID_CONTEXT_ITEMS_SINK);
    if (!sink)
        return gmpi::MP_FAIL;
    it_enum_list it(items);
    const bool whole = it.ForEachListed(
        [&](const it_enum_list& item) { sink->AddItem(toUtf8Lenient(item.text).c_str(), item.id, 0); });
    if (!whole) {
        const std::string note = "(list cut: the first " + std::to_string(it_enum_list::kMostListed) + " items shown)";
        sink->AddItem(note.c_str(), -1, 0);
    }
    return gmpi::MP_OK;
}

void pulseMenuSelection(MpGuiPin<int>& pin, int32_t selection) {
    pin = selection;
    pin = -1;
}

int32_t writeHostString(gmpi::IString* returnString, const std::wstring& text) {
    if (!returnString)
        return gmpi::MP_FAIL;
    const std::string utf8 = toUtf8Lenient(text);
    returnString->setData(utf8.data(), static_cast<int32_t>(utf8.size()));
    return gmpi::MP_OK;
}

int32_t writeHostString(gmpi::IMpUnknown* returnString, const std::wstring& text) {
    auto s = gmpi_sdk::queryAs<gmpi::IString>(returnString, gmpi::MP_IID_RETURNSTRING);
    return writeHostString(s.get(), text);
}

}  // namespace kx

int32_t PinMenuGfxBase::getToolTip(GmpiDrawing_API::MP1_POINT, gmpi::IString* returnString) {
    return kx::writeHostString(returnString, toolTip_.getValue());
}

int32_t PinMenuGfxBase::getToolTip(float, float, gmpi::IMpUnknown* returnString) {
    return kx::writeHostString(returnString, toolTip_.getValue());
}

int32_t PinMenuGfxBase::populateContextMenu(float, float, gmpi::IMpUnknown* contextMenuItemsSink) {
    return kx::addMenuItems(contextMenuItemsSink, menuItems_.getValue());
}

int32_t PinMenuGfxBase::onContextMenu(int32_t selection) {
    kx::pulseMenuSelection(menuChoice_, selection);
    return gmpi::MP_OK;
}
