// Context-menu entries from an enumeration list, as the widgets with a menu-items pin offer them.
#pragma once

#include <cstdint>
#include <string>

#include "gmpi/IMpUnknown.h"

namespace kx {

// Adds one entry per item of list to the host's menu sink (the item's label, its value as the entry's
// id, flags 0), at most it_enum_list::kMostListed of them; a longer list ends with an entry saying it
// was cut, whose id is -1 (the selection pins' rest value, so choosing it selects nothing). -1 when
// sink is not a context-menu sink.
int32_t addMenuItems(gmpi::IMpUnknown* sink, const std::wstring& list);

}  // namespace kx
