#include <gtest/gtest.h>

#include <cmath>

#include "DrawnWidget.h"
#include "widgets/VectorJoystick.h"

namespace V = kx::vecjs;

namespace {

// The host's echo of every transmission into the sender's own pin, as kxhost and real hosts do.
struct EchoedPad : kxtest::DrawnWidget<KX_VecJS> {
    explicit EchoedPad(GmpiDrawing_API::MP1_RECT rect = {0, 0, 200, 100}) : DrawnWidget(rect) {
        host.onTransmit = [this](int pin, int size, const void* data) {
            module->setPin(pin, 0, size, data);
            module->notifyPin(pin, 0);
        };
    }
    std::vector<float> levels(int pin) const {
        std::vector<float> v;
        for (const auto& t : sent(pin))
            v.push_back(t.asFloat());
        return v;
    }
    float last(int pin) const { return sent(pin).empty() ? -1.0f : sent(pin).back().asFloat(); }
};

void expectLevels(float x, float y, std::array<float, 4> want) {
    const auto got = V::mix(x, y);
    for (size_t i = 0; i < 4; ++i)
        EXPECT_NEAR(got[i], want[i], 1e-6f) << "level "
                                            << "ABCD"[i] << " at " << x << ", " << y;
}

}  // namespace

TEST(VectorJoystick, EachPointIsOneSourceTheCentreAllFourAndTheLevelsSumToOne) {
    expectLevels(0.0f, 0.5f, {1, 0, 0, 0});
    expectLevels(0.5f, 1.0f, {0, 1, 0, 0});
    expectLevels(1.0f, 0.5f, {0, 0, 1, 0});
    expectLevels(0.5f, 0.0f, {0, 0, 0, 1});
    expectLevels(0.5f, 0.5f, {0.25f, 0.25f, 0.25f, 0.25f});
    expectLevels(0.25f, 0.75f, {0.5f, 0.5f, 0, 0});  // halfway along the edge from A to B
    // The corners lie outside the diamond: each is the middle of its nearest edge.
    expectLevels(0.0f, 1.0f, {0.5f, 0.5f, 0, 0});
    expectLevels(1.0f, 0.0f, {0, 0, 0.5f, 0.5f});
    for (float x = -0.5f; x <= 1.5f; x += 0.0625f)
        for (float y = -0.5f; y <= 1.5f; y += 0.0625f) {
            const auto l = V::mix(x, y);
            for (float level : l)
                EXPECT_TRUE(level >= 0 && level <= 1);
            EXPECT_NEAR(l[0] + l[1] + l[2] + l[3], 1.0f, 1e-6f) << x << ", " << y;
        }
}

TEST(VectorJoystick, PointerPlacesTheHandleOverTheWholeAreaAndSendsLevelsOnce) {
    EchoedPad w;
    ASSERT_EQ(w.press({100, 0}), gmpi::MP_OK);  // the top point: B alone
    EXPECT_TRUE(w.gfx.captured);
    EXPECT_EQ(w.last(V::X), 0.5f);
    EXPECT_EQ(w.last(V::Y), 1.0f);
    EXPECT_EQ(w.levels(V::LevelB), (std::vector<float>{1.0f}));
    // X then Y reach the host one by one; the echo of X alone must not send the levels of (0, 1).
    w.move({0, 50});
    EXPECT_EQ(w.levels(V::LevelA), (std::vector<float>{1.0f}));
    EXPECT_EQ(w.levels(V::LevelB), (std::vector<float>{1.0f, 0.0f}));
    // Fine: a tenth of each move's own travel, then following again.
    w.move({20, 50}, 0x10 | 0x20000);
    EXPECT_NEAR(w.last(V::X), 0.01f, 1e-6f);
    w.move({40, 40}, 0x10 | 0x20000);
    EXPECT_NEAR(w.last(V::X), 0.02f, 1e-6f);
    EXPECT_NEAR(w.last(V::Y), 0.51f, 1e-6f);
    w.move({400, 200});
    EXPECT_EQ(w.last(V::X), 1.0f);
    EXPECT_EQ(w.last(V::Y), 0.0f);
    EXPECT_NEAR(w.last(V::LevelC), 0.5f, 1e-6f);
    EXPECT_NEAR(w.last(V::LevelD), 0.5f, 1e-6f);
    ASSERT_EQ(w.release(), gmpi::MP_OK);
    EXPECT_FALSE(w.gfx.captured);
    EXPECT_EQ(w.sent(V::PointerDown).size(), 2u);
    EXPECT_EQ(w.move({0, 0}), gmpi::MP_FAIL);
    EXPECT_EQ(w.release(), gmpi::MP_FAIL);

    // The host moves the handle too, and the levels follow.
    w.set(V::X, 0.5f);
    w.set(V::Y, 0.5f);
    for (int pin : {V::LevelA, V::LevelB, V::LevelC, V::LevelD})
        EXPECT_EQ(w.last(pin), 0.25f);
}

TEST(VectorJoystick, DrawsTheDiamondLabelsAndTheHandleWhereThePinsSay) {
    EchoedPad w({0, 0, 200, 100});
    w.set(V::X, 0.25f);
    w.set(V::Y, 0.75f);
    {
        const auto dc = w.render();
        ASSERT_EQ(dc.lines.size(), 6u);  // four edges and two diagonals
        EXPECT_EQ(dc.lines[0].from.x, 0.5f);
        EXPECT_EQ(dc.lines[0].from.y, 50.5f);
        EXPECT_EQ(dc.lines[0].to.x, 100.5f);
        EXPECT_EQ(dc.lines[0].to.y, 0.5f);
        ASSERT_EQ(dc.filledEllipses.size(), 1u);
        const auto& handle = dc.filledEllipses[0];
        EXPECT_EQ(handle.ellipse.point.x, 50.0f);
        EXPECT_EQ(handle.ellipse.point.y, 25.0f);
        EXPECT_EQ(handle.ellipse.radiusX, 5.0f);  // a twentieth of the shorter side
        EXPECT_EQ(handle.colour.a, 1.0f);
        EXPECT_EQ(dc.texts, (std::vector<std::string>{"A", "B", "C", "D"}));
        // A at the left, B at the top, C at the right, D at the bottom, each on a patch of background.
        EXPECT_LT(dc.drawnTexts[0].rect.left, 10.0f);
        EXPECT_LT(dc.drawnTexts[1].rect.top, 10.0f);
        EXPECT_GT(dc.drawnTexts[2].rect.right, 190.0f);
        EXPECT_GT(dc.drawnTexts[3].rect.bottom, 90.0f);
        EXPECT_EQ(dc.solidFills.size(), 5u);
    }

    // Fewer labels leave points bare; a transparent background paints nothing; a small pad keeps a
    // handle of 3; out-of-range pins are drawn clamped.
    w.setText(V::Labels, L"Saw,Square");
    w.setText(V::BackgroundColour, L"00000000");
    w.setText(V::HandleColour, L"FF00FF00");
    w.module->arrange({0, 0, 40, 40});
    w.set(V::X, -3.0f);
    const auto dc = w.render();
    EXPECT_EQ(dc.texts, (std::vector<std::string>{"Saw", "Square"}));
    EXPECT_TRUE(dc.solidFills.empty());
    ASSERT_EQ(dc.filledEllipses.size(), 1u);
    EXPECT_EQ(dc.filledEllipses[0].ellipse.point.x, 0.0f);
    EXPECT_EQ(dc.filledEllipses[0].ellipse.radiusX, 3.0f);
    EXPECT_EQ(dc.filledEllipses[0].colour.g, GmpiDrawing::Color::FromArgb(0xFF00FF00).g);
}
