#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <vector>

#include "HostedModule.h"
#include "logic/RandomValues.h"

using kxtest::Hosted;
namespace P = kx::rnd;

namespace {

template <class M>
void up(Hosted<M>& h) {
    h.send(P::HistoryUp, true);
    h.send(P::HistoryUp, false);
}
template <class M>
void down(Hosted<M>& h) {
    h.send(P::HistoryDown, true);
    h.send(P::HistoryDown, false);
}

// The next n raw numbers the module's generator will produce.
std::vector<uint32_t> upcoming(uint32_t state, int n) {
    std::vector<uint32_t> xs;
    for (int i = 0; i < n; ++i)
        xs.push_back(kx::xorshift32(state));
    return xs;
}

}  // namespace

TEST(RandomValues, HistoryWalksBackAndReplaysBeforeGeneratingMore) {
    Hosted<KX_RndInt> h;
    h.send(P::Maximum, 1000000);
    const auto xs = upcoming(h.module.state, 3);
    const int v1 = static_cast<int>(xs[0] % 1000001), v2 = static_cast<int>(xs[1] % 1000001),
              v3 = static_cast<int>(xs[2] % 1000001);

    down(h);  // nothing produced yet: nothing happens
    EXPECT_TRUE(h.host.on(P::Output).empty());
    up(h);
    up(h);
    down(h);
    h.send(P::Maximum, 5);  // the range applies only to new values
    up(h);
    h.send(P::Maximum, 1000000);
    up(h);
    std::vector<int> shown;
    for (const auto& t : h.host.on(P::Output))
        shown.push_back(t.asInt());
    EXPECT_EQ(shown, (std::vector<int>{v1, v2, v1, v2, v3}));

    down(h);
    down(h);
    down(h);
    down(h);  // stays at the oldest, sending it once
    EXPECT_EQ(h.host.on(P::Output).size(), 7u);
    EXPECT_EQ(h.module.output.value, v1);
}

TEST(RandomValues, IntRangeEdges) {
    auto first = [](int lo, int hi) {
        Hosted<KX_RndInt> h;
        h.send(P::Minimum, lo);
        h.send(P::Maximum, hi);
        const uint32_t x = upcoming(h.module.state, 1)[0];
        up(h);
        return std::make_pair(h.module.output.value, x);
    };
    EXPECT_EQ(first(5, 5).first, 5);
    EXPECT_EQ(first(7, 3).first, 3);  // an empty range gives the maximum
    const auto [bit, x] = first(0, 1);
    EXPECT_EQ(bit, static_cast<int>(x & 1u));
    const auto [whole, y] = first(INT_MIN, INT_MAX);  // the range size wraps to 0: the raw number is used
    EXPECT_EQ(whole, static_cast<int>(y + 0x80000000u));
    const auto [wide, z] = first(-2, INT_MAX);
    EXPECT_EQ(wide, static_cast<int>(z % 0x80000002u + 0xFFFFFFFEu));
}

TEST(RandomValues, FloatsStayWithinTheRangeEitherWayRound) {
    Hosted<KX_RndFloat> h;
    h.send(P::Minimum, 2.0f);
    h.send(P::Maximum, 4.0f);
    for (int i = 0; i < 200; ++i) {
        up(h);
        ASSERT_GE(h.module.output.value, 2.0f);
        ASSERT_LE(h.module.output.value, 4.0f);
    }
    h.send(P::Minimum, 10.0f);
    h.send(P::Maximum, -10.0f);
    for (int i = 0; i < 200; ++i) {
        up(h);
        ASSERT_LE(h.module.output.value, 10.0f);
        ASSERT_GE(h.module.output.value, -10.0f);
    }
}

TEST(RandomValues, InstancesDrawDifferentSequences) {
    Hosted<KX_RndInt> a, b;
    EXPECT_NE(a.module.state, b.module.state);
}

// (maximum - minimum) * r + minimum is rounded after the product and after the sum; fused into one
// multiply-add it would give 0.5 here instead of 0.49999997.
TEST(RandomValues, FloatValuesRoundProductAndSumSeparately) {
    const uint32_t x = 2863311531u;  // r = 0.6666667
    const float r = static_cast<float>(static_cast<double>(x) * (1.0 / 4294967296.0));
    volatile float scaled = (0.7f - 0.1f) * r;
    const float separate = scaled + 0.1f;
    ASSERT_NE(separate, std::fma(0.7f - 0.1f, r, 0.1f)) << "inputs that cannot tell fused from separate";

    Hosted<KX_RndFloat> h;
    h.send(P::Minimum, 0.1f);
    h.send(P::Maximum, 0.7f);
    EXPECT_EQ(h.module.makeValue(x), separate);
}
