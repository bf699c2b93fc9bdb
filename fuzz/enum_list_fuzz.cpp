// Enumeration lists (menus, list boxes, file types): the bytes, read as UTF-8 with damage marked, are a
// list text. Iteration, size and the look-ups must agree with each other, and nothing may take time
// that grows with the numbers in the list rather than with its text.
#include <climits>
#include <cstdint>
#include <string>
#include <vector>

#include "FuzzInput.h"
#include "TextCodec.h"
#include "it_enum_list.h"

namespace {

struct Item {
    int index;
    int id;
    std::wstring text;
    bool separator;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    std::wstring text;
    kx::fromUtf8Lenient(std::string_view(reinterpret_cast<const char*>(data), size), text);
    const bool range = text.compare(0, 5, L"range") == 0;

    it_enum_list list(text);
    std::vector<Item> items;
    const bool whole = list.ForEachListed([&](const it_enum_list& it) {
        items.push_back({it.index, it.id, it.text, it.IsSeparator()});
    });
    KX_FUZZ_CHECK(items.size() <= static_cast<size_t>(it_enum_list::kMostListed));
    KX_FUZZ_CHECK(whole || items.size() == static_cast<size_t>(it_enum_list::kMostListed));

    const int count = list.size();
    KX_FUZZ_CHECK(count >= 0);
    if (!range) {
        // Commas + 1, and a trailing comma yields no item: at most one fewer item than size says.
        KX_FUZZ_CHECK(!whole || items.size() == static_cast<size_t>(count) ||
                      items.size() + 1 == static_cast<size_t>(count));
    } else if (!items.empty()) {
        // A range's items count up by one from its first value; size is the span + 1.
        for (size_t k = 0; k < items.size(); ++k) {
            KX_FUZZ_CHECK(items[k].index == static_cast<int>(k));
            KX_FUZZ_CHECK(static_cast<long long>(items[k].id) == items[0].id + static_cast<long long>(k));
            KX_FUZZ_CHECK(items[k].text == std::to_wstring(items[k].id));
        }
        KX_FUZZ_CHECK(!whole || static_cast<int>(items.size()) == count);
        if (count < INT_MAX) {
            const long long last = static_cast<long long>(items[0].id) + count - 1;
            KX_FUZZ_CHECK(list.FindValue(static_cast<int>(last)) && list.id == last);
            KX_FUZZ_CHECK(last == INT_MAX || !list.FindValue(static_cast<int>(last + 1)));
            KX_FUZZ_CHECK(list.FindIndex(count - 1) && list.id == last);
            KX_FUZZ_CHECK(!list.FindIndex(count));
        }
    }

    // Every item listed is found again by its position, unless it is a separator.
    for (const Item& item : items) {
        const bool found = list.FindIndex(item.index);
        KX_FUZZ_CHECK(found == !item.separator);
        if (found)
            KX_FUZZ_CHECK(list.index == item.index && list.id == item.id && list.text == item.text);
    }

    // By value: the first item with that value that is not a separator, as far as the items listed show.
    std::vector<int> probes = {INT_MIN, INT_MIN + 1, -1, 0, 1, INT_MAX - 1, INT_MAX};
    for (const Item& item : items)
        probes.push_back(item.id);
    for (int value : probes) {
        const Item* first = nullptr;
        for (const Item& item : items)
            if (item.id == value && !item.separator) {
                first = &item;
                break;
            }
        const bool found = list.FindValue(value);
        KX_FUZZ_CHECK(it_enum_list::IsValidValue(text, value) == found);
        if (found)
            KX_FUZZ_CHECK(list.id == value && !list.IsSeparator());
        if (whole)
            KX_FUZZ_CHECK(found == (first != nullptr));
        if (first && (whole || !range))
            KX_FUZZ_CHECK(found && list.index == first->index && list.text == first->text);
        const int forced = it_enum_list::ForceValidValue(text, value);
        KX_FUZZ_CHECK(forced == (found ? value : items.empty() ? 0 : items[0].id));
    }

    // Iteration goes on from a look-up as from First().
    if (items.size() > 1 && list.FindIndex(0)) {
        list.Next();
        KX_FUZZ_CHECK(list.index == 1 && list.id == items[1].id && list.text == items[1].text);
    }
    return 0;
}
