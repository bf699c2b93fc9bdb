#include "ContextMenu.h"

#include "MpCountedPtr.h"
#include "TextCodec.h"
#include "gmpi/IMpContextItemSink.h"
#include "it_enum_list.h"

namespace kx {

int32_t addMenuItems(gmpi::IMpUnknown* sink, const std::wstring& list) {
    auto menu = gmpi_sdk::queryAs<gmpi::IMpContextItemSink>(sink, gmpi::MP_IID_CONTEXT_ITEMS_SINK);
    if (!menu)
        return gmpi::MP_FAIL;
    it_enum_list items(list);
    const bool whole =
        items.ForEachListed([&](const it_enum_list& item) { menu->AddItem(toUtf8(item.text).c_str(), item.id, 0); });
    if (!whole) {
        const std::string note = "(list cut: the first " + std::to_string(it_enum_list::kMostListed) + " items shown)";
        menu->AddItem(note.c_str(), -1, 0);
    }
    return gmpi::MP_OK;
}

}  // namespace kx
