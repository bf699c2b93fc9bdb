#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <climits>
#include <limits>

#include "FakeGuiHost.h"
#include "logic/Comparators.h"

using kxtest::deliver;
using kxtest::deliverText;
using kxtest::FakeGuiHost;
namespace pin = kx::cmp;

namespace {

template <class M>
struct Wired {
    FakeGuiHost host;
    M module;
    Wired() { module.setHost(host.unknown()); }
};

// Delivers A, B and the mode to a fresh comparator and returns its result pin.
bool compareFloat(float a, float b, int mode) {
    Wired<KX_CmpFloat> w;
    deliver(w.module, pin::ValueA, a);
    deliver(w.module, pin::ValueB, b);
    deliver(w.module, pin::Mode, mode);
    return w.module.result.value;
}

}  // namespace

TEST(CmpInt, WithholdsResultUntilAllInputsArriveInAnyOrder) {
    std::array<int, 3> order = {pin::ValueA, pin::ValueB, pin::Mode};
    const int values[] = {5, 3, 0};  // A > B, mode "greater than"
    do {
        Wired<KX_CmpInt> w;
        deliver(w.module, order[0], values[order[0]]);
        deliver(w.module, order[1], values[order[1]]);
        EXPECT_TRUE(w.host.sent.empty());
        deliver(w.module, order[2], values[order[2]]);
        ASSERT_EQ(w.host.sent.size(), 1u);
        EXPECT_EQ(w.host.sent[0].pin, pin::Result);
        EXPECT_EQ(w.host.sent[0].bytes.size(), 1u);
        EXPECT_TRUE(w.host.sent[0].asBool());
        EXPECT_EQ(w.host.sent[0].voice, 0);
    } while (std::next_permutation(order.begin(), order.end()));
}

TEST(CmpInt, FirstFalseResultIsNeverSentButLaterChangesAre) {
    Wired<KX_CmpInt> w;
    deliver(w.module, pin::ValueA, 1);
    deliver(w.module, pin::ValueB, 3);
    deliver(w.module, pin::Mode, 0);
    deliver(w.module, pin::ValueA, 2);  // still false
    EXPECT_TRUE(w.host.sent.empty());

    deliver(w.module, pin::Mode, 5);  // A < B
    deliver(w.module, pin::Mode, 0);
    const auto results = w.host.on(pin::Result);
    ASSERT_EQ(results.size(), 2u);
    EXPECT_TRUE(results[0].asBool());
    EXPECT_FALSE(results[1].asBool());
}

TEST(CmpInt, OutOfRangeModeIsSilentAndKeepsLastResult) {
    Wired<KX_CmpInt> w;
    deliver(w.module, pin::ValueA, 5);
    deliver(w.module, pin::ValueB, 3);
    deliver(w.module, pin::Mode, 0);
    ASSERT_EQ(w.host.sent.size(), 1u);

    for (int mode : {6, -1, INT_MIN, INT_MAX}) {
        deliver(w.module, pin::Mode, mode);
        deliver(w.module, pin::ValueA, 1);  // would make mode 0 false
        deliver(w.module, pin::ValueA, 5);
    }
    EXPECT_EQ(w.host.sent.size(), 1u);
    EXPECT_TRUE(w.module.result.value);

    deliver(w.module, pin::ValueA, 1);
    deliver(w.module, pin::Mode, 0);  // back in range: recomputes
    ASSERT_EQ(w.host.sent.size(), 2u);
    EXPECT_FALSE(w.host.sent[1].asBool());
}

TEST(CmpInt, ModesCompareSigned) {
    // Each row: A, B, expected result for modes 0..5 (>, >=, ==, !=, <=, <).
    struct Row {
        int a, b;
        std::array<bool, 6> expected;
    };
    const Row rows[] = {
        {-1, 1, {false, false, false, true, true, true}},
        {INT_MIN, INT_MAX, {false, false, false, true, true, true}},
        {4, 4, {false, true, true, false, true, false}},
    };
    for (const Row& row : rows)
        for (int mode = 0; mode < 6; ++mode) {
            Wired<KX_CmpInt> w;
            deliver(w.module, pin::ValueA, row.a);
            deliver(w.module, pin::ValueB, row.b);
            deliver(w.module, pin::Mode, mode);
            EXPECT_EQ(w.module.result.value, row.expected[mode]) << row.a << " vs " << row.b << " mode " << mode;
        }
}

TEST(CmpFloat, SignedZeroIsEqualAndNaNIsOnlyUnequal) {
    EXPECT_TRUE(compareFloat(0.0f, -0.0f, 2));
    EXPECT_TRUE(compareFloat(-0.0f, 0.0f, 1));
    EXPECT_FALSE(compareFloat(-0.0f, 0.0f, 5));

    const float nan = std::numeric_limits<float>::quiet_NaN();
    for (int mode : {0, 1, 2, 4, 5}) {
        EXPECT_FALSE(compareFloat(nan, nan, mode)) << mode;
        EXPECT_FALSE(compareFloat(nan, 1.0f, mode)) << mode;
        EXPECT_FALSE(compareFloat(1.0f, nan, mode)) << mode;
    }
    EXPECT_TRUE(compareFloat(nan, nan, 3));
    EXPECT_TRUE(compareFloat(1.0f, nan, 3));
}

TEST(CmpString, EqualityIsExactAndOtherModesMeanUnequal) {
    Wired<KX_CmpString> w;
    deliverText(w.module, pin::ValueA, L"abc");
    deliverText(w.module, pin::ValueB, L"ABC");
    deliver(w.module, pin::Mode, 0);
    EXPECT_TRUE(w.host.sent.empty());  // case-sensitive: false, never sent

    deliver(w.module, pin::Mode, 7);
    ASSERT_EQ(w.host.sent.size(), 1u);
    EXPECT_TRUE(w.host.sent[0].asBool());

    deliverText(w.module, pin::ValueB, L"abc");  // equal now: any mode but 0 says false
    EXPECT_FALSE(w.module.result.value);
    deliver(w.module, pin::Mode, -3);
    EXPECT_FALSE(w.module.result.value);

    deliver(w.module, pin::Mode, 0);
    EXPECT_TRUE(w.module.result.value);
    for (const wchar_t* other : {L"abc ", L"ab", L" abc", L"abc\u0301"}) {
        deliverText(w.module, pin::ValueB, other);
        EXPECT_FALSE(w.module.result.value) << "A equals B despite: " << kx::toUtf8(other);
    }
}
