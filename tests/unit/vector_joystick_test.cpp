#include <gtest/gtest.h>

#include "DrawnWidget.h"
#include "widgets/VectorJoystick.h"

namespace V = kx::vecjs;

namespace {

// A 200 x 100 pad on a host that echoes every transmission into the sender's own pin, as kxhost and
// real hosts do.
struct Pad : kxtest::DrawnWidget<KX_VecJS> {
    Pad() : DrawnWidget({0, 0, 200, 100}) {
        host.onTransmit = [this](int pin, int size, const void* data) {
            module->setPin(pin, 0, size, data);
            module->notifyPin(pin, 0);
        };
    }
    // The values sent on a pin, in order.
    std::vector<float> values(int pin) const {
        std::vector<float> v;
        for (const auto& t : sent(pin))
            v.push_back(t.asFloat());
        return v;
    }
};

}  // namespace

TEST(VectorJoystick, EachPointIsOneSourceTheCentreAllFourAndTheLevelsSumToOne) {
    const struct {
        float x, y;
        std::array<float, 4> levels;
    } cases[] = {
        {0.0f, 0.5f, {1, 0, 0, 0}},
        {0.5f, 1.0f, {0, 1, 0, 0}},
        {1.0f, 0.5f, {0, 0, 1, 0}},
        {0.5f, 0.0f, {0, 0, 0, 1}},
        {0.5f, 0.5f, {0.25f, 0.25f, 0.25f, 0.25f}},
        {0.0f, 1.0f, {0.5f, 0.5f, 0, 0}},  // corners lie outside: the middle of the nearest edge
        {1.0f, 0.0f, {0, 0, 0.5f, 0.5f}},
    };
    for (const auto& c : cases)
        for (size_t i = 0; i < 4; ++i)
            EXPECT_NEAR(V::mix(c.x, c.y)[i], c.levels[i], 1e-6f) << "ABCD"[i] << " at " << c.x << ", " << c.y;
    for (float x = -0.5f; x <= 1.5f; x += 0.0625f)
        for (float y = -0.5f; y <= 1.5f; y += 0.0625f) {
            const auto l = V::mix(x, y);
            EXPECT_NEAR(l[0] + l[1] + l[2] + l[3], 1.0f, 1e-6f) << x << ", " << y;
        }
}

TEST(VectorJoystick, PointerPlacesTheHandleOverTheWholeAreaAndSendsLevelsOnce) {
    Pad w;
    ASSERT_EQ(w.press({100, 0}), gmpi::MP_OK);  // the top point: B alone
    EXPECT_EQ(w.values(V::LevelB), (std::vector<float>{1.0f}));
    // X then Y reach the host one by one; the echo of X alone must not send the levels of (0, 1).
    w.move({0, 50});
    EXPECT_EQ(w.values(V::LevelA), (std::vector<float>{1.0f}));
    EXPECT_EQ(w.values(V::LevelB), (std::vector<float>{1.0f, 0.0f}));
    ASSERT_EQ(w.release(), gmpi::MP_OK);
    EXPECT_EQ(w.move({0, 0}), gmpi::MP_FAIL);
    EXPECT_EQ(w.release(), gmpi::MP_FAIL);
}

TEST(VectorJoystick, DrawsTheDiamondLabelsAndTheHandleWhereThePinsSay) {
    Pad w;
    w.set(V::X, 0.25f);
    w.set(V::Y, 0.75f);
    {
        const auto dc = w.render();
        ASSERT_EQ(dc.lines.size(), 6u);  // four edges and two diagonals
        EXPECT_EQ(dc.lines[0].from.y, 50.5f);
        EXPECT_EQ(dc.lines[0].to.x, 100.5f);
        ASSERT_EQ(dc.filledEllipses.size(), 1u);
        EXPECT_EQ(dc.filledEllipses[0].ellipse.point.x, 50.0f);
        EXPECT_EQ(dc.filledEllipses[0].ellipse.point.y, 25.0f);
        EXPECT_EQ(dc.filledEllipses[0].ellipse.radiusX, 5.0f);  // a twentieth of the shorter side
        EXPECT_EQ(dc.texts, (std::vector<std::string>{"A", "B", "C", "D"}));
        EXPECT_GT(dc.drawnTexts[2].rect.right, 190.0f);  // C at the right
        EXPECT_EQ(dc.solidFills.size(), 5u);             // the background, and a patch behind each label
    }

    // Fewer labels leave points bare; a small pad keeps a handle of 3; out-of-range pins are drawn clamped.
    w.setText(V::Labels, L"Saw,Square");
    w.module->arrange({0, 0, 40, 40});
    w.set(V::X, -3.0f);
    const auto dc = w.render();
    EXPECT_EQ(dc.texts, (std::vector<std::string>{"Saw", "Square"}));
    EXPECT_EQ(dc.filledEllipses[0].ellipse.point.x, 0.0f);
    EXPECT_EQ(dc.filledEllipses[0].ellipse.radiusX, 3.0f);
}
