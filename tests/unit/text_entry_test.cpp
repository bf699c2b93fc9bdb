#include <gtest/gtest.h>

#include "DrawnWidget.h"
#include "MpString.h"
#include "widgets/BetterTextEntry.h"

namespace T = kx::textentry;
using GmpiDrawing::Color;
using GmpiDrawing_API::MP1_RECT;

namespace {

struct TextEntry : ::testing::Test {
    // Placed away from the panel's corner: everything the module draws or asks for is in its own
    // coordinates all the same.
    kxtest::DrawnWidget<KX_BetterTextEntry> w{MP1_RECT{40, 30, 140, 54}};
    TextEntry() {
        w.gfx.makeTextEdits = true;
        w.setText(T::Style, L"normal");
        w.set(T::Editable, true);
        w.setText(T::Text, L"old");
    }
    void TearDown() override {
        w.module.reset();
        EXPECT_EQ(kxtest::Counted<gmpi_gui::IMpPlatformText>::live, 0) << "an editor was left behind";
    }
    void click(int32_t flags = 0x10) {
        w.press({5, 5}, flags);
        w.release({5, 5}, flags);
    }
    kxtest::FakeTextEdit& editor() { return *w.gfx.textEdits.back(); }
};

bool sameColour(const GmpiDrawing_API::MP1_COLOR& a, const Color& b) {
    return a.r == b.r && a.g == b.g && a.b == b.b && a.a == b.a;
}

}  // namespace

TEST_F(TextEntry, EntriesOfOneStyleAndLineModeShareOneFormat) {
    KX_BetterTextEntry other;
    other.setHost(w.gfx.unknown());
    kxtest::deliverText(other, T::Style, L"normal");
    EXPECT_EQ(other.formatKey(), "TextEntry4Gui:text:normal");
    EXPECT_EQ(other.textFormat().Get(), w.module->textFormat().Get());
    const size_t before = FontCache::instance().textFormatCount();

    kxtest::deliver(other, T::MultiLine, true);
    EXPECT_EQ(other.formatKey(), "TextEntry4Gui:text:normal:multiline");
    ASSERT_NE(other.textFormat().Get(), w.module->textFormat().Get());
    EXPECT_EQ(FontCache::instance().textFormatCount(), before + 1);
    auto* wrapping = static_cast<kxtest::FakeTextFormat*>(other.textFormat().Get());
    auto* oneLine = static_cast<kxtest::FakeTextFormat*>(w.module->textFormat().Get());
    EXPECT_EQ(wrapping->wordWrapping, GmpiDrawing_API::MP1_WORD_WRAPPING_WRAP);
    EXPECT_EQ(oneLine->wordWrapping, GmpiDrawing_API::MP1_WORD_WRAPPING_NO_WRAP);
    EXPECT_GT(w.gfx.measureRequests, 0);
}

TEST_F(TextEntry, ColoursComeFromThePinsOrTheStyleAndDimmingHalvesThem) {
    const auto frame = w.render();
    ASSERT_EQ(frame.solidFills.size(), 1u);
    EXPECT_TRUE(sameColour(frame.solidFills[0].colour, Color::FromArgb(0xFF202024)));
    EXPECT_TRUE(sameColour(frame.drawnTexts.at(0).colour, Color::FromArgb(0xFFE0E0E0)));
    // In the module's own coordinates, inset by 3.
    const MP1_RECT inset{3, 3, 97, 21};
    EXPECT_EQ(frame.solidFills[0].rect.left, inset.left);
    EXPECT_EQ(frame.solidFills[0].rect.bottom, inset.bottom);
    EXPECT_EQ(frame.drawnTexts[0].options, GmpiDrawing_API::MP1_DRAW_TEXT_OPTIONS_CLIP);

    w.setText(T::TextColour, L"FF000000");
    w.setText(T::BackgroundColour, L"80FF0000");
    w.set(T::Dimmed, true);
    const auto dimmed = w.render();
    EXPECT_TRUE(sameColour(dimmed.drawnTexts[0].colour, Color(0, 0, 0, 0.5f)));
    EXPECT_FLOAT_EQ(dimmed.solidFills[0].colour.a, 128 * 0.003921569f * 0.5f);
    EXPECT_FLOAT_EQ(dimmed.solidFills[0].colour.r, 1.0f);

    // An area 4 units high keeps half its height as inset: nothing is left to fill.
    w.module->arrange({0, 0, 100, 4});
    const auto flat = w.render();
    EXPECT_EQ(flat.solidFills[0].rect.top, 2);
    EXPECT_EQ(flat.solidFills[0].rect.bottom, 2);
}

TEST_F(TextEntry, TheEditorOpensOnTheReleaseOfACapturedFirstButtonPress) {
    w.press({5, 5});
    EXPECT_TRUE(w.gfx.textEdits.empty()) << "the press opens nothing";
    EXPECT_EQ(w.release({5, 5}), gmpi::MP_OK);
    ASSERT_EQ(w.gfx.textEdits.size(), 1u);
    EXPECT_TRUE(editor().shown());
    EXPECT_EQ(editor().rect.left, 0);  // over the module's own area, not its place on the panel
    EXPECT_EQ(editor().rect.right, 100);
    EXPECT_EQ(editor().rect.bottom, 24);
    EXPECT_EQ(editor().text, "old");
    EXPECT_EQ(editor().textSize, 12);
    EXPECT_EQ(editor().alignment, 0);
    const auto down = w.sent(T::PointerDown);
    ASSERT_EQ(down.size(), 2u);
    EXPECT_TRUE(down[0].asBool());
    EXPECT_FALSE(down[1].asBool());
    editor().complete(nullptr);

    // Another button, a release nobody pressed for, or a field that is not editable: no editor.
    click(0x20);
    EXPECT_EQ(w.release(), gmpi::MP_FAIL);
    w.set(T::Editable, false);
    click();
    EXPECT_EQ(w.gfx.textEdits.size(), 1u);

    // Right-aligned multi-line text asks for the same of the editor.
    w.set(T::Editable, true);
    w.setText(T::Style, L"right");
    w.set(T::MultiLine, true);
    click();
    EXPECT_EQ(editor().alignment, 1 | gmpi_gui::MP_PLATFORM_TEXT_MULTILINE);
    editor().complete(nullptr);
}

TEST_F(TextEntry, AConfirmedTextIsSentOnceAndACancelledOneChangesNothing) {
    click();
    w.host.sent.clear();
    editor().complete(nullptr);
    EXPECT_TRUE(w.sent(T::Text).empty());
    EXPECT_FALSE(w.module->editorOpen());

    click();
    editor().complete("new \xC3\xA9");
    ASSERT_EQ(w.sent(T::Text).size(), 1u);
    EXPECT_EQ(w.sent(T::Text)[0].asText(), L"new \u00e9");

    // Bytes that are not UTF-8 are refused: the text stays.
    click();
    editor().complete("bad \xFF");
    EXPECT_EQ(w.sent(T::Text).size(), 1u);
    EXPECT_FALSE(w.module->editorOpen());

    // A second click replaces an open editor: only the newer one's answer counts.
    click();
    click();
    ASSERT_EQ(w.gfx.textEdits.size(), 5u);
    w.gfx.textEdits[3]->complete("stale");
    EXPECT_EQ(w.sent(T::Text).size(), 1u);
    w.gfx.textEdits[4]->complete("fresh");
    EXPECT_EQ(w.sent(T::Text).back().asText(), L"fresh");

    // An answer after the module has gone reaches nothing.
    click();
    kxtest::FakeTextEdit& late = editor();
    late.addRef();
    w.module.reset();
    late.complete("late");
    late.release();
}

TEST_F(TextEntry, MenuChoicesArriveAsAPulseAndTheToolTipIsThePinsText) {
    kxtest::FakeGuiHost sink;  // not a menu sink
    EXPECT_EQ(w.module->populateContextMenu(0, 0, sink.unknown()), gmpi::MP_FAIL);
    w.module->onContextMenu(3);
    const auto choice = w.sent(T::MenuChoice);
    ASSERT_EQ(choice.size(), 2u);
    EXPECT_EQ(choice[0].asInt(), 3);
    EXPECT_EQ(choice[1].asInt(), -1);

    w.setText(T::ToolTip, std::wstring(L"tip ") + static_cast<wchar_t>(0xD800));
    gmpi_sdk::MpString tip;
    EXPECT_EQ(w.module->getToolTip({1, 1}, &tip), gmpi::MP_OK);
    EXPECT_EQ(tip.str(), "tip \xEF\xBF\xBD");  // a value that is no character shows as U+FFFD
}

TEST_F(TextEntry, TextLongerThanTheBoxIsCutBeforeItIsLaidOut) {
    std::wstring huge(1 << 20, L'a');
    huge.back() = L'z';
    w.setText(T::Text, huge);
    auto frame = w.render();
    ASSERT_EQ(frame.texts.size(), 1u);
    EXPECT_LE(frame.texts[0].size(), 94u + 16u);
    EXPECT_EQ(frame.texts[0].front(), 'a');
    // A right-aligned line keeps its end in view.
    w.setText(T::Style, L"right");
    EXPECT_EQ(w.render().texts[0].back(), 'z');
}
