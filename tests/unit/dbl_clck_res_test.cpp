#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>

#include "FakeGuiHost.h"
#include "widgets/DblClckRes.h"

using kxtest::deliver;

namespace {

class DblClckRes : public ::testing::Test {
protected:
    kxtest::FakeGuiHost host;
    KX_DblClckRes module;
    std::int64_t nowMs = 1'000'000;  // far from the clock's epoch

    void SetUp() override {
        module.setClock([this] { return nowMs * 1'000'000; });
        module.setHost(host.unknown());
        deliver(module, kx::dblclckres::Value, 0.7f);
        deliver(module, kx::dblclckres::ResetValue, 0.25f);
        deliver(module, kx::dblclckres::TimeLimitMs, 300.0f);
    }
    void click(std::int64_t atMs) {
        nowMs = atMs;
        deliver(module, kx::dblclckres::PointerDown, true);
        deliver(module, kx::dblclckres::PointerDown, false);
    }
    int resets() const { return static_cast<int>(host.on(kx::dblclckres::Value).size()); }
};

}  // namespace

TEST_F(DblClckRes, FirstPressNeverResets) {
    nowMs = 100;  // even right after the clock's epoch
    deliver(module, kx::dblclckres::PointerDown, true);
    EXPECT_EQ(resets(), 0);
}

TEST_F(DblClckRes, PressesWithinTheLimitWithAReleaseBetweenReset) {
    click(nowMs);
    click(nowMs + 250);
    ASSERT_EQ(resets(), 1);
    EXPECT_FLOAT_EQ(host.on(kx::dblclckres::Value)[0].asFloat(), 0.25f);
}

TEST_F(DblClckRes, TheLimitItselfStillCountsAndBeyondItDoesNot) {
    click(nowMs);
    click(nowMs + 350);
    EXPECT_EQ(resets(), 0);
    click(nowMs + 300);  // measured from the previous press
    EXPECT_EQ(resets(), 1);
}

TEST_F(DblClckRes, PressesWithoutAReleaseBetweenDoNothing) {
    deliver(module, kx::dblclckres::PointerDown, true);
    nowMs += 100;
    deliver(module, kx::dblclckres::PointerDown, true);
    EXPECT_EQ(resets(), 0);
}

TEST_F(DblClckRes, NothingIsSentWhenTheValueIsAlreadyTheResetValue) {
    deliver(module, kx::dblclckres::Value, 0.25f);
    click(nowMs);
    click(nowMs + 10);
    EXPECT_EQ(resets(), 0);
}

TEST_F(DblClckRes, UnrepresentableLimitsAreSafe) {
    deliver(module, kx::dblclckres::TimeLimitMs, std::numeric_limits<float>::quiet_NaN());
    click(nowMs);
    click(nowMs + 1);
    EXPECT_EQ(resets(), 0);
    deliver(module, kx::dblclckres::TimeLimitMs, std::numeric_limits<float>::infinity());
    click(nowMs + 1'000'000);
    EXPECT_EQ(resets(), 1);
}

TEST(DblClckResClock, DefaultClockIsMonotonic) {
    kxtest::FakeGuiHost host;
    KX_DblClckRes module;
    module.setHost(host.unknown());
    deliver(module, kx::dblclckres::ResetValue, 1.0f);
    deliver(module, kx::dblclckres::TimeLimitMs, 60'000.0f);
    for (bool down : {true, false, true})
        deliver(module, kx::dblclckres::PointerDown, down);
    EXPECT_EQ(host.on(kx::dblclckres::Value).size(), 1u);
}
