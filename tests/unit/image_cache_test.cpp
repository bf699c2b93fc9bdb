#include <gtest/gtest.h>

#include "FakeGraphicsHost.h"
#include "ImageCache.h"
#include "ImageMetadata.h"
#include "SkinBitmap.h"

using GmpiDrawing_API::IMpBitmap;

namespace {

ImageMetadata parse(const std::string& text) {
    ImageMetadata m;
    m.Serialise(text);
    return m;
}

// A skin folder served by fake hosts: images are (width, height, fill) entries, metadata files text.
struct SkinFixture : ::testing::Test {
    kxtest::FakeSkinHost host;
    kxtest::FakeGraphicsHost gfx{host};

    void addImage(const std::string& name, uint32_t w, uint32_t h, const std::string& meta, uint32_t fill = 0) {
        gfx.factory.images["/skin/" + name] = {w, h, fill};
        if (!meta.empty())
            host.files[ImageMetadata::metadataFileName("/skin/" + name)] = meta;
    }
    static kxtest::FakeBitmap& pixels(const skinBitmap& s) {
        return *static_cast<kxtest::FakeBitmap*>(s.getDrawBitmap().Get());
    }
    void TearDown() override {
        // Every test's clients are gone: the cache must hold nothing and every bitmap is released.
        EXPECT_EQ(ImageCache::instance().entryCount(), 0u);
        EXPECT_EQ(kxtest::Counted<IMpBitmap>::live, 0);
    }
};

}  // namespace

TEST(ImageMetadata, SharedKeysAndLaterLinesOverride) {
    const auto m = parse(
        "type knob\ntype slider\nframe_size 40\nframe_size 40 30\nhandle_range 5 6\nsegment 7 9\n"
        "mouse_response reverse\ntiled true\nsegment_count 3\nline_end_length 8\nunknown 1 2 3\n\n");
    EXPECT_EQ(m.mode, ImageMetadata::Slider);
    EXPECT_EQ(m.frameWidth, 40);
    EXPECT_EQ(m.frameHeight, 30);
    EXPECT_EQ(m.rangeStart, 7);
    EXPECT_EQ(m.rangeEnd, 9);
    EXPECT_EQ(m.mouseResponse, 0);  // "tiled" after "mouse_response" wins
    EXPECT_EQ(m.segmentCount, 8.0f);
    EXPECT_EQ(parse("type gauge").mode, ImageMetadata::Animated);  // unknown words leave the mode
    EXPECT_EQ(parse("frame_size 40").frameWidth, 10);              // too few values: ignored
}

TEST(ImageMetadata, MouseResponseFromTheValuesFirstLetters) {
    const std::pair<const char*, int> cases[] = {{"false", 1}, {"true", 0}, {"horizontal", 1}, {"vertical", 0},
                                                 {"click", 2}, {"step", 4}, {"reverse", 5},    {"rotary", 3},
                                                 {"r", 3},     {"x", -1},   {"Horizontal", -1}};
    for (const auto& [word, expected] : cases) {
        EXPECT_EQ(parse(std::string("orientation ") + word).mouseResponse, expected) << word;
        EXPECT_EQ(parse(std::string("mouse_response ") + word).mouseResponse, expected) << word;
    }
}

TEST(ImageMetadata, PaddingIsReadTopBottomLeftRight) {
    const auto m = parse("padding 1 2 3 4");
    EXPECT_EQ(m.paddingTop, 1.0f);
    EXPECT_EQ(m.paddingBottom, 2.0f);
    EXPECT_EQ(m.paddingLeft, 3.0f);
    EXPECT_EQ(m.paddingRight, 4.0f);
    const auto partial = parse("padding 1 2 3");
    EXPECT_EQ(partial.paddingTop, 10.0f);
    EXPECT_EQ(partial.paddingBottom, 10.0f);
    EXPECT_EQ(partial.paddingLeft, 0.0f);
}

TEST(ImageMetadata, MissingAndMalformedNumbersReadAsZeroOrTheirLeadingDigits) {
    const auto m = parse("handle_range 5\ntransparent_pixel 3\nhandle_rect 1 2.7 x -4\nsegment_count 12.9");
    EXPECT_EQ(m.rangeStart, 5);
    EXPECT_EQ(m.rangeEnd, 0);
    EXPECT_EQ(m.transparentPixelX, 3);
    EXPECT_EQ(m.transparentPixelY, 0);
    EXPECT_EQ(m.handleTop, 2.0f);
    EXPECT_EQ(m.handleRight, 0.0f);
    EXPECT_EQ(m.handleBottom, -4.0f);
    EXPECT_EQ(m.segmentCount, 12.0f);
}

TEST(ImageMetadata, CrlfParsesLikeLf) {
    const std::string lf = "type button\nframe_size 20 30\npadding 1 2 3 4\nmouse_response click\ntype slider";
    std::string crlf;
    for (char c : lf)
        crlf += c == '\n' ? std::string("\r\n") : std::string(1, c);
    crlf += "\r";  // a carriage return left on the last line
    const auto a = parse(lf), b = parse(crlf);
    EXPECT_EQ(b.mode, ImageMetadata::Slider);
    EXPECT_EQ(a.mode, b.mode);
    EXPECT_EQ(a.frameHeight, b.frameHeight);
    EXPECT_EQ(a.paddingRight, b.paddingRight);
    EXPECT_EQ(a.mouseResponse, b.mouseResponse);
}

TEST(ImageMetadata, MetadataFileNameIgnoresDotsInFolders) {
    EXPECT_EQ(ImageMetadata::metadataFileName("/a.b/knob.png"), "/a.b/knob.txt");
    EXPECT_EQ(ImageMetadata::metadataFileName("/a.b/knob"), "/a.b/knob.txt");
    EXPECT_EQ(ImageMetadata::metadataFileName("C:\\x.y\\k"), "C:\\x.y\\k.txt");
    EXPECT_EQ(ImageMetadata::metadataFileName("k.strip.bmp"), "k.strip.txt");
}

TEST_F(SkinFixture, KnobFrameFromValueRoundsAndClamps) {
    addImage("knob.png", 40, 2000, "frame_size 40 40");
    skinBitmap skin;
    ASSERT_EQ(skin.Load(&host, &gfx, "knob.png"), gmpi::MP_OK);
    EXPECT_EQ(skin.getLastFrame(), 49);
    EXPECT_EQ(skin.frameCount(), 50);
    EXPECT_TRUE(skin.calcDrawAt(0.5f));  // trunc(24.5 + 0.5) = frame 25
    EXPECT_EQ(skin.getDrawAt(), 1000);
    EXPECT_FALSE(skin.calcDrawAt(0.5f));
    skin.calcDrawAt(7.0f);
    EXPECT_EQ(skin.getDrawAt(), 49 * 40);
    skin.calcDrawAt(-1.0f);
    EXPECT_EQ(skin.getDrawAt(), 0);
}

TEST_F(SkinFixture, SliderTravelDirectionFollowsMouseResponse) {
    addImage("h.png", 10, 10, "type slider");
    addImage("v.png", 10, 10, "type slider\norientation vertical");
    skinBitmap h, v;
    ASSERT_EQ(h.Load(&host, &gfx, "h.png"), gmpi::MP_OK);
    ASSERT_EQ(v.Load(&host, &gfx, "v.png"), gmpi::MP_OK);
    h.calcDrawAt(1.0f);
    v.calcDrawAt(1.0f);
    EXPECT_EQ(h.getDrawAt(), 50);
    EXPECT_EQ(v.getDrawAt(), 0);
    h.calcDrawAt(0.0f);
    v.calcDrawAt(0.0f);
    EXPECT_EQ(h.getDrawAt(), 0);
    EXPECT_EQ(v.getDrawAt(), 50);
}

TEST_F(SkinFixture, BarGraphOffsetsBySegments) {
    addImage("bar.png", 10, 100, "type bargraph\nsegment 3 10\nsegment_count 4");
    skinBitmap bar;
    ASSERT_EQ(bar.Load(&host, &gfx, "bar.png"), gmpi::MP_OK);
    bar.calcDrawAt(0.5f);  // trunc(0.5 x 5) = 2 segments: 2 x 10 + 3 - 1
    EXPECT_EQ(bar.getDrawAt(), 22);
    bar.calcDrawAt(0.0f);
    EXPECT_EQ(bar.getDrawAt(), 2);
}

TEST_F(SkinFixture, AnimationStepsMapThroughScaleAndOffsetAndWrap) {
    addImage("anim.png", 10, 100, "frame_size 10 10");  // frames 0..9
    skinBitmap skin;
    ASSERT_EQ(skin.Load(&host, &gfx, "anim.png"), gmpi::MP_OK);
    skin.stepCount = 4;
    skin.frameScale = 1.0f;
    skin.frameOffset = 0.5f;
    skin.calcDrawAt(0.0f);  // p = 0.5: frame 5
    EXPECT_EQ(skin.getDrawAt(), 50);
    skin.calcDrawAt(0.5f);  // step 1: p = 1/3 + 0.5, frame trunc(8.33 + 0.5) = 8
    EXPECT_EQ(skin.getCurrentStep(), 1);
    EXPECT_EQ(skin.getDrawAt(), 80);
    skin.calcDrawAt(1.0f);  // step 3: p = 1.5 - 1 = 0.5
    EXPECT_EQ(skin.getCurrentStep(), 3);
    EXPECT_EQ(skin.getDrawAt(), 50);
    skin.frameOffset = 0.0f;
    skin.calcDrawAt(1.0f);  // p = 1: frame 10 is past the last and wraps to 0
    EXPECT_EQ(skin.getDrawAt(), 0);
}

TEST_F(SkinFixture, ZeroFrameHeightLeavesLastFrameZero) {
    addImage("flat.png", 10, 40, "frame_size 10 0");
    skinBitmap skin;
    ASSERT_EQ(skin.Load(&host, &gfx, "flat.png"), gmpi::MP_OK);
    EXPECT_EQ(skin.getLastFrame(), 0);
    skin.calcDrawAt(1.0f);
    EXPECT_EQ(skin.getDrawAt(), 0);
}

TEST_F(SkinFixture, HitTestReadsThePixelOfTheCurrentFrame) {
    addImage("k.png", 20, 40, "frame_size 20 20\npadding 10 0 5 0");
    skinBitmap skin;
    ASSERT_EQ(skin.Load(&host, &gfx, "k.png"), gmpi::MP_OK);
    pixels(skin).pixels[25 * 20 + 5] = 0x01000000;  // frame 1, (5, 5): alpha 1
    pixels(skin).pixels[5 * 20 + 6] = 0x00FFFFFF;   // frame 0, (6, 5): colour without alpha
    skin.calcDrawAt(1.0f);
    EXPECT_TRUE(skin.bitmapHitTestLocal({10, 15}));  // padding moves the frame by (5, 10)
    EXPECT_FALSE(skin.bitmapHitTestLocal({11, 15}));
    skin.calcDrawAt(0.0f);
    EXPECT_FALSE(skin.bitmapHitTestLocal({11, 15}));
    skin.hitTestByPixel = false;
    EXPECT_TRUE(skin.bitmapHitTestLocal({11, 15}));
    EXPECT_FALSE(skin.bitmapHitTestLocal({26, 15}));  // past the frame width
    EXPECT_FALSE(skin.bitmapHitTestLocal({10, 5}));   // above the padded frame
}

TEST_F(SkinFixture, SliderHitTestFollowsTheMovedHandle) {
    addImage("s.png", 60, 10, "type slider\nframe_size 60 10\nhandle_rect 0 0 10 10\norientation horizontal");
    skinBitmap skin;
    ASSERT_EQ(skin.Load(&host, &gfx, "s.png"), gmpi::MP_OK);
    pixels(skin).pixels[5 * 60 + 5] = 0xFF000000;
    skin.calcDrawAt(0.5f);  // handle moved by 25
    EXPECT_TRUE(skin.bitmapHitTestLocal({30, 5}));
    EXPECT_FALSE(skin.bitmapHitTestLocal({5, 5}));
    EXPECT_FALSE(skin.bitmapHitTestLocal({31, 5}));  // in the handle, transparent pixel
    skin.hitTestByPixel = false;
    EXPECT_TRUE(skin.bitmapHitTestLocal({5, 5}));
    EXPECT_FALSE(skin.bitmapHitTestLocal({61, 5}));
}

TEST_F(SkinFixture, NoImageIsNeverHitAndBarGraphsAlwaysAre) {
    addImage("bar.png", 10, 20, "type bargraph");
    skinBitmap none, bar;
    EXPECT_EQ(none.Load(&host, &gfx, "missing.png"), gmpi::MP_FAIL);
    EXPECT_EQ(none.Load(&host, &gfx, ""), gmpi::MP_FAIL);
    EXPECT_EQ(none.Load(&host, &gfx, nullptr), gmpi::MP_FAIL);
    EXPECT_FALSE(none.bitmapHitTestLocal({1, 1}));
    EXPECT_FALSE(none.calcDrawAt(1.0f));
    EXPECT_EQ(none.desiredSize().width, 10.0f);
    ASSERT_EQ(bar.Load(&host, &gfx, "bar.png"), gmpi::MP_OK);
    EXPECT_TRUE(bar.bitmapHitTestLocal({-100, 1000}));
}

TEST_F(SkinFixture, MissingMetadataFileLeavesDefaults) {
    addImage("plain.png", 10, 30, "");
    skinBitmap skin;
    ASSERT_EQ(skin.Load(&host, &gfx, "plain.png"), gmpi::MP_OK);
    EXPECT_EQ(skin.getMetadata()->mode, ImageMetadata::Animated);
    EXPECT_EQ(skin.getMetadata()->frameWidth, 10);
    EXPECT_EQ(skin.getLastFrame(), 2);
    EXPECT_EQ(skin.desiredSize().height, 30.0f);  // frame 10 + default top and bottom padding 10 each
}

TEST_F(SkinFixture, OneLoadPerFactoryAndNameSharedUntilTheLastClientGoes) {
    addImage("knob.png", 10, 20, "frame_size 10 10");
    {
        skinBitmap a;
        ASSERT_EQ(a.Load(&host, &gfx, "knob.png"), gmpi::MP_OK);
        {
            skinBitmap b;
            ASSERT_EQ(b.Load(&host, &gfx, "knob.png"), gmpi::MP_OK);
            EXPECT_EQ(a.getDrawBitmap().Get(), b.getDrawBitmap().Get());
            EXPECT_EQ(a.getMetadata(), b.getMetadata());
        }
        EXPECT_EQ(gfx.factory.loads.size(), 1u);
        EXPECT_EQ(host.opens, 1);
        EXPECT_EQ(ImageCache::instance().entryCount(), 1u);  // b went, a keeps the entry

        // The same file through another factory is another entry.
        kxtest::FakeGraphicsHost other(host);
        other.factory.images = gfx.factory.images;
        skinBitmap c;
        ASSERT_EQ(c.Load(&host, &other, "knob.png"), gmpi::MP_OK);
        EXPECT_NE(c.getDrawBitmap().Get(), a.getDrawBitmap().Get());
        EXPECT_EQ(ImageCache::instance().entryCount(), 2u);
    }
    EXPECT_EQ(ImageCache::instance().clientCount(), 0);
    // Emptied: the next widget loads again.
    skinBitmap again;
    ASSERT_EQ(again.Load(&host, &gfx, "knob.png"), gmpi::MP_OK);
    EXPECT_EQ(gfx.factory.loads.size(), 2u);
}

TEST_F(SkinFixture, BmpImagesAskForTheirMask) {
    addImage("k.bmp", 10, 10, "");
    addImage("k.png", 10, 10, "");
    skinBitmap bmp, png;
    ASSERT_EQ(bmp.Load(&host, &gfx, "k.bmp"), gmpi::MP_OK);
    ASSERT_EQ(png.Load(&host, &gfx, "k.png"), gmpi::MP_OK);
    ASSERT_EQ(gfx.factory.maskLoads.size(), 1u);
    EXPECT_EQ(gfx.factory.maskLoads[0], "/skin/k_mask.bmp");
}

TEST_F(SkinFixture, CustomImagesAreFoundByFactoryAndName) {
    ImageCacheClient client;
    GmpiDrawing::Factory factory(&gfx.factory);
    ImageCache::instance().RegisterCustomImage("glow", factory.CreateImage(4, 4));
    EXPECT_TRUE(ImageCache::instance().GetCustomImage(&gfx.factory, "glow"));
    EXPECT_FALSE(ImageCache::instance().GetCustomImage(&gfx.factory, "other"));
    kxtest::FakeFactory otherFactory;
    EXPECT_FALSE(ImageCache::instance().GetCustomImage(&otherFactory, "glow"));
}
