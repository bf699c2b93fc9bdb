#include <gtest/gtest.h>

#include <climits>

#include "DrawnWidget.h"
#include "widgets/BetterListBox.h"

namespace L = kx::listbox;
using GmpiDrawing_API::MP1_COLOR;
using GmpiDrawing_API::MP1_RECT;

namespace {

// 64 units high: rows of 15 units, four of them fit.
struct ListBox : ::testing::Test {
    kxtest::DrawnWidget<KX_BetterListBox> w{MP1_RECT{0, 0, 100, 64}};
    ListBox() { w.setText(L::Style, L"normal"); }

    void items(const std::wstring& list) { w.setText(L::Items, list); }
    std::wstring numbered(int n) {
        std::wstring list;
        for (int i = 0; i < n; ++i)
            list += (i ? L"," : L"") + std::to_wstring(i);
        return list;
    }
    // The narrow bar's thumb: the fill of the thumb's colour.
    MP1_RECT thumb(const kxtest::FakeDeviceContext& dc) {
        for (const auto& f : dc.solidFills)
            if (f.rect.left == 90 && f.rect.right == 98)
                return f.rect;
        ADD_FAILURE() << "no thumb drawn";
        return {};
    }
    // Drags the bar down (or up) by dy per move, from the top of the bar.
    void dragBar(std::initializer_list<float> moves) {
        w.press({95, 0});
        float y = 0;
        for (float dy : moves)
            w.move({95, y += dy});
        w.release();
    }
};

}  // namespace

TEST_F(ListBox, SeparatorsAreNeitherRowsNorChoicesAndCommasAlwaysEndAnItem) {
    w.host.sent.clear();
    w.setText(L::Style, L"");
    ASSERT_EQ(w.sent(L::Style).size(), 1u);
    EXPECT_EQ(w.sent(L::Style)[0].asText(), L"normal");

    items(L"Apple=3, ----, Pear");
    EXPECT_EQ(w.module->rows().count(), 2);
    EXPECT_EQ(w.module->rowHeight(), 15.0f);
    EXPECT_EQ(w.render().texts, (std::vector<std::string>{"Apple", "Pear"}));

    // The second row is Pear, whose value counts on from the separator's.
    w.host.sent.clear();
    EXPECT_EQ(w.press({10, 17}), gmpi::MP_OK);
    ASSERT_EQ(w.sent(L::Choice).size(), 1u);
    EXPECT_EQ(w.sent(L::Choice)[0].asInt(), 5);
    EXPECT_TRUE(w.sent(L::PointerDown).at(0).asBool());
    w.release();
    EXPECT_FALSE(w.sent(L::PointerDown).at(1).asBool());
    EXPECT_FALSE(w.gfx.captured);

    // Below the last row, and with another button, nothing is chosen.
    w.host.sent.clear();
    w.press({10, 32});
    w.release();
    w.press({10, 2}, 0x20);
    EXPECT_TRUE(w.sent(L::Choice).empty());
    EXPECT_EQ(w.sent(L::PointerDown).size(), 0u);

    // There is no escape: a backslash before a comma is part of the item before it.
    items(L"a\\,b");
    EXPECT_EQ(w.render().texts, (std::vector<std::string>{"a\\", "b"}));
}

TEST_F(ListBox, ThumbShowsTheVisibleShareAndTheBarScrollsARowPerRowHeight) {
    items(numbered(10));
    EXPECT_EQ(w.module->visibleRows(), 4);
    MP1_RECT t = thumb(w.render());
    EXPECT_EQ(t.top, 2);
    EXPECT_EQ(t.bottom - t.top, 0.4f * 60 + 1);

    // Two and a half row heights in one move scroll one row; a press on the bar chooses nothing.
    w.host.sent.clear();
    dragBar({37.5f});
    EXPECT_EQ(w.module->scrollPosition(), 1);
    EXPECT_TRUE(w.sent(L::Choice).empty());
    // A row height or less does not scroll; the anchor follows each row scrolled.
    dragBar({15, 15, 16, 16, 16, 16, 16, 16, 16, 16});
    EXPECT_EQ(w.module->scrollPosition(), 6);  // the last start: 10 rows, 4 shown
    t = thumb(w.render());
    EXPECT_EQ(t.bottom, 63);  // ends at the bottom, one unit clear
    EXPECT_EQ(w.render().texts.front(), "6");
    dragBar({-16, -14});
    EXPECT_EQ(w.module->scrollPosition(), 5);

    // A new list starts at the top.
    items(numbered(12));
    EXPECT_EQ(w.module->scrollPosition(), 0);
}

TEST_F(ListBox, TheThumbNeverGetsTooSmallToGrab) {
    items(numbered(10000));
    MP1_RECT t = thumb(w.render());
    EXPECT_EQ(t.bottom - t.top, KX_BetterListBox::kMinThumb + 1);
    w.press({95, 0});
    for (int i = 1; i <= 10000; ++i)
        w.move({95, 16.0f * i});
    w.release();
    EXPECT_EQ(w.module->scrollPosition(), 9996);
    t = thumb(w.render());
    EXPECT_EQ(t.bottom, 63);
    EXPECT_EQ(t.bottom - t.top, KX_BetterListBox::kMinThumb + 1);
}

TEST_F(ListBox, HiddenBarGivesRowsTheFullWidthOnlyWhileEverythingFits) {
    items(L"a,b,c");
    auto barFills = [](const kxtest::FakeDeviceContext& dc) {
        int n = 0;
        for (const auto& f : dc.solidFills)
            n += f.rect.left >= 88;
        return n;
    };
    const auto shown = w.render();
    EXPECT_EQ(barFills(shown), 2);  // track and thumb: the bar shows unless hidden
    EXPECT_EQ(shown.drawnTexts[0].rect.right, 100 - 12 - 4);
    EXPECT_EQ(shown.clips.size(), 0u);  // pushed and popped

    w.set(L::HideScrollBar, true);
    const auto hidden = w.render();
    EXPECT_EQ(barFills(hidden), 0);
    EXPECT_EQ(hidden.drawnTexts[0].rect.right, 100 - 4);
    // Nothing is on the right edge to drag: the click chooses the row.
    w.press({97, 17});
    ASSERT_EQ(w.sent(L::Choice).size(), 1u);
    EXPECT_EQ(w.sent(L::Choice)[0].asInt(), 1);
    w.release();

    items(L"a,b,c,d,e");
    EXPECT_EQ(barFills(w.render()), 2);
}

TEST_F(ListBox, OnlyTheChosenRowIsHighlightedAndAChoiceInNoRowHighlightsNone) {
    items(L"a=1,b=2,c=3");
    const MP1_COLOR white = GmpiDrawing::Color::FromBytes(255, 255, 255);
    auto highlighted = [&] {
        std::vector<float> tops;
        for (const auto& f : w.render().solidFills)
            if (f.colour.r == white.r && f.colour.a == 1 && f.rect.left == 0)
                tops.push_back(f.rect.top);
        return tops;
    };
    w.set(L::Choice, 2);
    EXPECT_EQ(highlighted(), std::vector<float>{15});
    w.set(L::Choice, 7);
    EXPECT_TRUE(highlighted().empty());
}

TEST_F(ListBox, HugeListsCostOnlyTheirVisibleRows) {
    // Every integer: rows are computed, not listed.
    items(L"range -2147483648,2147483647");
    EXPECT_EQ(w.module->rows().count(), INT_MAX);
    EXPECT_EQ(w.render().texts, (std::vector<std::string>{"-2147483648", "-2147483647", "-2147483646", "-2147483645"}));
    w.press({10, 31});
    ASSERT_FALSE(w.sent(L::Choice).empty());
    EXPECT_EQ(w.sent(L::Choice).back().asInt(), -2147483646);
    w.release();
    // An inverted range has no rows, whatever its size says.
    items(L"range 4,1");
    EXPECT_EQ(w.module->rows().count(), 0);
    EXPECT_TRUE(w.render().texts.empty());

    // A repaint of part of the box draws the rows that reach into that part only.
    items(numbered(10000));
    kxtest::FakeDeviceContext dc(w.gfx.factory);
    dc.bounds = {0, 20, 100, 40};
    w.module->OnRender(&dc);
    EXPECT_EQ(dc.texts, (std::vector<std::string>{"1", "2"}));

    // A row holding a megabyte of text is cut to what a row can show before it is drawn.
    items(std::wstring(1 << 20, L'x'));
    const auto texts = w.render().texts;
    ASSERT_EQ(texts.size(), 1u);
    EXPECT_LT(texts[0].size(), 200u);
}
