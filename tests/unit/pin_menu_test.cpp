#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "FakeGuiHost.h"
#include "PinMenu.h"
#include "it_enum_list.h"

using kxtest::RecordingMenuSink;
using Entry = RecordingMenuSink::Entry;

TEST(PinMenu, OneEntryPerItemWithItsValue) {
    RecordingMenuSink sink;
    EXPECT_EQ(kx::addMenuItems(&sink, L"Copy=3,----,Paste"), gmpi::MP_OK);
    EXPECT_EQ(sink.entries, (std::vector<Entry>{{"Copy", 3}, {"----", 4}, {"Paste", 5}}));
    EXPECT_EQ(kx::addMenuItems(nullptr, L"a"), gmpi::MP_FAIL);
}

// A range names billions of values in a few characters: the menu stops at the cap and its last entry
// says so; choosing that entry selects nothing (-1 is the selection pin's rest value).
TEST(PinMenu, AListBeyondTheCapIsCutAndSaysSo) {
    RecordingMenuSink sink;
    kx::addMenuItems(&sink, L"range -2147483648,2147483647");
    ASSERT_EQ(sink.entries.size(), static_cast<size_t>(it_enum_list::kMostListed) + 1);
    EXPECT_EQ(sink.entries.front(), (Entry{"-2147483648", INT32_MIN}));
    EXPECT_EQ(sink.entries[it_enum_list::kMostListed - 1].id, INT32_MIN + it_enum_list::kMostListed - 1);
    EXPECT_EQ(sink.entries.back().id, -1);
    EXPECT_NE(sink.entries.back().text.find("cut"), std::string::npos);

    RecordingMenuSink exact;
    kx::addMenuItems(&exact, L"range 1," + std::to_wstring(it_enum_list::kMostListed));
    EXPECT_EQ(exact.entries.size(), static_cast<size_t>(it_enum_list::kMostListed));
    EXPECT_EQ(exact.entries.back().text, std::to_string(it_enum_list::kMostListed));
}
