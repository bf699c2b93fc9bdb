#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

#include "HostedModule.h"
#include "logic/Increments.h"

using kxtest::Hosted;

namespace {

// Sends delta 1 (or the given delta) n times and returns the integer values the pin held after each.
std::vector<int> walk(Hosted<KX_IntInc>& h, int n, float delta = 1.0f) {
    std::vector<int> values;
    for (int i = 0; i < n; ++i) {
        h.send(kx::inc::Delta, delta);
        values.push_back(h.module.value.value);
    }
    return values;
}

void setUp(Hosted<KX_IntInc>& h, int value, int lo, int hi, float step) {
    h.send(kx::inc::Minimum, lo);
    h.send(kx::inc::Maximum, hi);
    h.send(kx::inc::Step, step);
    h.send(kx::inc::Value, value);
}

}  // namespace

TEST(IntInc, FractionalStepsAccumulate) {
    Hosted<KX_IntInc> h;
    setUp(h, 3, 0, 10, 0.4f);
    EXPECT_EQ(walk(h, 3), (std::vector<int>{3, 3, 4}));
    EXPECT_EQ(h.host.on(kx::inc::Value).size(), 1u);
}

// The host echoes the written value back into pin 0. If the echo reset the accumulator, 4.2 would become
// 4.0 and the next two steps of 0.4 would stay at 4 instead of reaching 5.
TEST(IntInc, EchoOfItsOwnWriteKeepsTheFraction) {
    Hosted<KX_IntInc> h;
    setUp(h, 3, 0, 10, 0.4f);
    h.echoTransmissions();
    EXPECT_EQ(walk(h, 5), (std::vector<int>{3, 3, 4, 4, 5}));
}

TEST(IntInc, AValueFromElsewhereRestartsTheAccumulator) {
    Hosted<KX_IntInc> h;
    setUp(h, 3, 0, 10, 0.4f);
    walk(h, 2);  // accumulator 3.8
    h.send(kx::inc::Value, 7);
    EXPECT_EQ(walk(h, 3), (std::vector<int>{7, 7, 8}));
}

TEST(IntInc, LimitsClampTheAccumulatorAndValuesTruncateTowardZero) {
    Hosted<KX_IntInc> h;
    setUp(h, 9, 0, 10, 1.0f);
    EXPECT_EQ(walk(h, 3), (std::vector<int>{10, 10, 10}));
    EXPECT_EQ(walk(h, 1, -1.0f), (std::vector<int>{9}));  // back from the limit at once

    Hosted<KX_IntInc> neg;
    setUp(neg, 0, -5, 5, 0.25f);
    EXPECT_EQ(walk(neg, 4, -1.0f), (std::vector<int>{0, 0, 0, -1}));
}

TEST(IntInc, ZeroDeltaDoesNothingButNaNIsProcessed) {
    Hosted<KX_IntInc> h;
    setUp(h, 3, 0, 10, 0.4f);
    walk(h, 1);         // 3.4
    walk(h, 5, 0.0f);   // nothing, the fraction stays
    walk(h, 1, -0.0f);  // equal to 0 as well
    EXPECT_EQ(walk(h, 2), (std::vector<int>{3, 4}));
    EXPECT_TRUE(h.host.on(kx::inc::Value).size() == 1u);
    walk(h, 1, std::numeric_limits<float>::quiet_NaN());
    EXPECT_EQ(h.module.value.value, std::numeric_limits<int>::min());
}

TEST(FloatInc, ClampsAtTheMaximumAndThenSendsNothing) {
    namespace P = kx::inc;
    Hosted<KX_FloatInc> h;
    h.send(P::Maximum, 1.0f);
    h.send(P::Step, 0.2f);
    h.send(P::Value, 0.9f);
    h.send(P::Delta, 1.0f);
    EXPECT_FLOAT_EQ(h.module.value.value, 1.0f);
    h.send(P::Delta, 1.0f);
    EXPECT_EQ(h.host.on(P::Value).size(), 1u);
    h.send(P::Delta, -2.0f);
    EXPECT_FLOAT_EQ(h.module.value.value, 0.6f);

    h.send(P::Minimum, 5.0f);  // minimum above maximum: the minimum wins
    h.send(P::Delta, 1.0f);
    EXPECT_FLOAT_EQ(h.module.value.value, 5.0f);
}

TEST(PMInc, StaysWithinZeroAndOne) {
    namespace P = kx::pminc;
    Hosted<KX_PMInc> h;
    h.send(P::Step, 0.1f);
    h.send(P::Value, 0.05f);
    h.send(P::Delta, -1.0f);
    EXPECT_FLOAT_EQ(h.module.value.value, 0.0f);
    h.send(P::Delta, 25.0f);
    EXPECT_FLOAT_EQ(h.module.value.value, 1.0f);
    h.send(P::Delta, 0.0f);
    EXPECT_EQ(h.host.on(P::Value).size(), 2u);
}

// delta * step + value is a product and a sum, each rounded to single precision. A build that fuses them
// into one multiply-add gives other values on machines that have the instruction, so one bundle would
// count differently on its two architectures. Step 0.2 and delta 0.3 tell the two apart within fifty moves.
TEST(Increments, ProductAndSumAreRoundedSeparately) {
    const float step = 0.2f, delta = 0.3f;
    std::vector<float> separate;
    float fused = 0.0f, sum = 0.0f;
    for (int i = 0; i < 50; ++i) {
        volatile float product = delta * step;  // stored, so the compiler cannot fuse it into the sum
        sum = product + sum;
        separate.push_back(sum);
        fused = std::fma(delta, step, fused);
    }
    ASSERT_NE(static_cast<int>(fused), static_cast<int>(sum)) << "inputs that cannot tell fused from separate";

    Hosted<KX_IntInc> counter;
    setUp(counter, 0, 0, 100, step);
    EXPECT_EQ(walk(counter, 50, delta).back(), static_cast<int>(sum));

    namespace P = kx::inc;
    Hosted<KX_FloatInc> value;
    value.send(P::Maximum, 100.0f);
    value.send(P::Step, step);
    for (int i = 0; i < 50; ++i) {
        value.send(P::Delta, delta);
        ASSERT_EQ(value.module.value.value, separate[static_cast<size_t>(i)]) << "move " << i;
    }
}
