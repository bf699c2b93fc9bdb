#include <gtest/gtest.h>

#include "FakeGraphicsHost.h"
#include "FontCache.h"
#include "MpGuiGfxBase.h"

using GmpiDrawing_API::IMpTextFormat;

namespace {

SkinMetadata parse(const std::string& text) {
    SkinMetadata skin;
    skin.Serialise(text);
    return skin;
}

class TextWidget : public gmpi_gui::MpGuiGfxBase, public FontCacheClient {};

// Style files are parsed once per process and path: every test serves its own folder.
struct StyleFixture : ::testing::Test {
    explicit StyleFixture()
        : host("/" + std::string(::testing::UnitTest::GetInstance()->current_test_info()->name()) + "/") {}
    kxtest::FakeSkinHost host;
    kxtest::FakeGraphicsHost gfx{host};
    void TearDown() override {
        EXPECT_EQ(FontCache::instance().textFormatCount(), 0u);
        EXPECT_EQ(kxtest::Counted<IMpTextFormat>::live, 0);
    }
};

}  // namespace

TEST(SkinMetadata, ParsesStylesInFileOrder) {
    const auto skin = parse(
        "font-size 20\n"
        "FONT_CATEGORY Normal\r\n"
        "font-family Arial Helvetica\r\n"
        "font-color #FF0000\n"
        "background-color 255\n"
        "text-align Right\n"
        "text-decoration underline\n"
        "font-style italic\n"
        "FONT_CATEGORY heading\n"
        "font-size 30\n"
        "font-weight Bold\n"
        "text-align center\n"
        "GDI_pixelHeight 33\n"
        "font-size");
    ASSERT_EQ(skin.styles().size(), 2u);
    const FontMetadata& normal = skin.styles()[0];
    EXPECT_EQ(normal.category, "normal");
    EXPECT_EQ(normal.fontSize, 12);  // the size before any category line is ignored
    EXPECT_EQ(normal.fontFamilies, (std::vector<std::string>{"Arial", "Helvetica"}));
    EXPECT_EQ(normal.textColor, 0xFF0000FFu);        // red stored in the lowest byte
    EXPECT_EQ(normal.backgroundColor, 0xFFFF0000u);  // 255 is blue
    EXPECT_EQ(normal.textArgb(), 0xFFFF0000u);
    EXPECT_EQ(normal.flags, FontMetadata::RightAligned | FontMetadata::Underlined);
    EXPECT_EQ(normal.flags2, FontMetadata::Italic);
    const FontMetadata& heading = skin.styles()[1];
    EXPECT_EQ(heading.fontSize, 30);
    EXPECT_EQ(heading.pixelHeight, 33);
    EXPECT_EQ(heading.flags, FontMetadata::Bold | FontMetadata::Centred);
    EXPECT_EQ(heading.fontFamilies, std::vector<std::string>{"Verdana"});
    EXPECT_EQ(heading.textColor, 0xFFFFFFFFu);
}

TEST(SkinMetadata, FontWeightWordsAndNumbers) {
    const std::tuple<const char*, uint8_t, uint8_t> cases[] = {
        {"300", 0, FontMetadata::Light},   {"400", 0, 0},   {"600", FontMetadata::Bold, 0},
        {"551", FontMetadata::Bold, 0},    {"550", 0, 0},   {"1", 0, FontMetadata::Light},
        {"-5", 0, FontMetadata::Light},    {"0", 0, 0},     {"Bold", FontMetadata::Bold, 0},
        {"LIGHT", 0, FontMetadata::Light}, {"normal", 0, 0}};
    for (const auto& [word, flags, flags2] : cases) {
        const auto skin = parse(std::string("FONT_CATEGORY x\nfont-weight ") + word);
        EXPECT_EQ(skin.styles()[0].flags, flags) << word;
        EXPECT_EQ(skin.styles()[0].flags2, flags2) << word;
    }
}

// Alignment and weight words are read in either case; decoration and style words only in lower case.
TEST(SkinMetadata, DecorationAndStyleWordsAreLowerCaseOnly) {
    const auto upper = parse("FONT_CATEGORY x\ntext-decoration Underline\nfont-style Italic\ntext-align Right");
    EXPECT_EQ(upper.styles()[0].flags, FontMetadata::RightAligned);
    EXPECT_EQ(upper.styles()[0].flags2, 0);
    const auto lower = parse("FONT_CATEGORY x\ntext-decoration underline\nfont-style italic");
    EXPECT_EQ(lower.styles()[0].flags, FontMetadata::Underlined);
    EXPECT_EQ(lower.styles()[0].flags2, FontMetadata::Italic);
}

TEST(SkinMetadata, UnknownOrMissingStyleGivesTheBuiltInDefault) {
    const auto skin = parse("FONT_CATEGORY Normal\nfont-size 14\nFONT_CATEGORY normal\nfont-size 99\n");
    EXPECT_EQ(skin.getFont("NORMAL")->fontSize, 14);  // the first of two equal names
    const FontMetadata* fallback = skin.getFont("title");
    EXPECT_EQ(fallback->category, "default");
    EXPECT_EQ(fallback->fontFamilies, std::vector<std::string>{"Arial"});
    EXPECT_EQ(fallback->textColor, 0xFF000000u);
    EXPECT_EQ(parse("font-size 9").getFont("normal")->category, "default");
}

TEST(FontMetadata, LegacyVerticalOffsetByFamily) {
    FontMetadata m;
    m.verticalOffset = 3;
    m.fontFamilies = {"Arial"};
    m.pixelHeight = 19;
    EXPECT_EQ(m.getLegacyVerticalOffset(), 3);
    m.pixelHeight = 40;
    EXPECT_EQ(m.getLegacyVerticalOffset(), 1);
    m.fontFamilies = {"MS Sans Serif", "Arial"};
    m.pixelHeight = 14;
    EXPECT_EQ(m.getLegacyVerticalOffset(), 1);
    m.fontFamilies = {"Verdana", "Arial"};
    EXPECT_EQ(m.getLegacyVerticalOffset(), 3);
    m.fontFamilies.clear();
    EXPECT_EQ(m.getLegacyVerticalOffset(), 3);
    // A style file can give both numbers any int value: the sum is clamped, not overflowed.
    m.fontFamilies = {"Arial"};
    m.pixelHeight = 40;
    m.verticalOffset = INT32_MIN;
    EXPECT_EQ(m.getLegacyVerticalOffset(), INT32_MIN);
    m.pixelHeight = -40;
    m.verticalOffset = INT32_MAX;
    EXPECT_EQ(m.getLegacyVerticalOffset(), INT32_MAX);
}

TEST_F(StyleFixture, WidgetsShareOneFormatPerStyleAndTheFileIsReadOnce) {
    host.files[host.folder + "global"] =
        "FONT_CATEGORY normal\nfont-family Nope DejaVu\nfont-size 15\nfont-weight bold\ntext-align c";
    {
        TextWidget a, b;
        a.setHost(gfx.unknown());
        b.setHost(gfx.unknown());
        auto fa = a.GetTextFormat("normal");
        auto fb = b.GetTextFormat("Normal");
        auto fc = b.GetTextFormat("normal");
        ASSERT_TRUE(fa);
        EXPECT_EQ(fa.Get(), fc.Get());
        EXPECT_NE(fa.Get(), fb.Get());  // keyed by the name as asked, sharing the style
        EXPECT_EQ(host.opens, 1);
        EXPECT_EQ(host.resolved.front(), "global|ImageMeta");
        auto* made = static_cast<kxtest::FakeTextFormat*>(fa.Get());
        EXPECT_EQ(made->families, (std::vector<std::string>{"Nope", "DejaVu"}));
        EXPECT_EQ(made->size, 15.0f);
        EXPECT_EQ(made->weight, GmpiDrawing_API::MP1_FONT_WEIGHT_BOLD);
        EXPECT_EQ(made->textAlignment, GmpiDrawing_API::MP1_TEXT_ALIGNMENT_CENTER);
        EXPECT_EQ(a.GetFontMetatdata("NORMAL")->fontSize, 15);
        EXPECT_EQ(a.GetFontMetatdata("missing")->category, "default");
        EXPECT_EQ(FontCache::instance().textFormatCount(), 2u);
    }
    // Formats went with the last client; the parsed file stays.
    TextWidget c;
    c.setHost(gfx.unknown());
    EXPECT_TRUE(c.GetTextFormat("normal"));
    EXPECT_EQ(host.opens, 1);
}

TEST_F(StyleFixture, MissingStyleFileLeavesOnlyTheBuiltInStyle) {
    TextWidget w;
    w.setHost(gfx.unknown());
    FontMetadata* style = nullptr;
    auto format = FontCache::instance().GetTextFormat(&host, &gfx, "normal", &style);
    ASSERT_NE(style, nullptr);
    EXPECT_EQ(style->category, "default");
    EXPECT_EQ(static_cast<kxtest::FakeTextFormat*>(format.Get())->families, std::vector<std::string>{"Arial"});
}

TEST_F(StyleFixture, CustomFormatsAreMadeOnceUnderTheirKey) {
    host.files[host.folder + "global"] = "FONT_CATEGORY normal\nfont-size 11";
    TextWidget w;
    w.setHost(gfx.unknown());
    int customised = 0;
    auto widen = [&](FontMetadata& m) {
        ++customised;
        m.fontSize = 22;
    };
    FontMetadata* meta = nullptr;
    EXPECT_FALSE(FontCache::instance().TextFormatExists(&host, &gfx, "big", &meta));
    auto first = FontCache::instance().GetCustomTextFormat(&host, &gfx, "big", "normal", widen, &meta);
    ASSERT_TRUE(first);
    EXPECT_EQ(meta->fontSize, 22);
    auto second = FontCache::instance().GetCustomTextFormat(&host, &gfx, "big", "normal", widen);
    EXPECT_EQ(first.Get(), second.Get());
    EXPECT_EQ(customised, 1);
    meta = nullptr;
    EXPECT_EQ(FontCache::instance().TextFormatExists(&host, &gfx, "big", &meta).Get(), first.Get());
    EXPECT_EQ(meta->fontSize, 22);
    // The base style is untouched.
    EXPECT_EQ(w.GetFontMetatdata("normal")->fontSize, 11);
}

// Remaking a custom format, or failing to make one (here: no drawing factory), must not pile up copies of
// its style: the text entry asks again at every draw until a format exists.
TEST_F(StyleFixture, CustomStylesDoNotGrowWhenRemadeOrWhenMakingFails) {
    host.files[host.folder + "global"] = "FONT_CATEGORY normal";
    TextWidget w;
    w.setHost(gfx.unknown());
    FontCache& cache = FontCache::instance();
    const size_t before = cache.customStyleCount();
    const auto resize = [](int size) { return [size](FontMetadata& m) { m.fontSize = size; }; };
    for (int i = 0; i < 10; ++i)
        EXPECT_FALSE(cache.GetCustomTextFormat(&host, nullptr, "orphan", "normal", resize(20)));
    EXPECT_EQ(cache.customStyleCount(), before + 1);

    FontMetadata style;
    for (int size = 10; size < 20; ++size) {
        style.fontSize = size;
        ASSERT_TRUE(cache.AddCustomTextFormat(&host, &gfx, "remade", &style));
    }
    EXPECT_EQ(cache.customStyleCount(), before + 2);
    FontMetadata* meta = nullptr;
    cache.TextFormatExists(&host, &gfx, "remade", &meta);
    ASSERT_NE(meta, nullptr);
    EXPECT_EQ(meta->fontSize, 19) << "the latest style stands";
}
