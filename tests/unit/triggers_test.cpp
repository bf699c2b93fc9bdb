#include <gtest/gtest.h>

#include <limits>

#include "FakeGuiHost.h"
#include "LogicSamples.h"
#include "logic/Triggers.h"

using kxtest::FakeGuiHost;
using kxtest::raw;
using kxtest::Sample;
using kxtest::send;
using kxtest::traffic;

namespace {

const kxtest::Bytes on = raw(true);
const kxtest::Bytes off = raw(false);

template <class T>
class Trigger : public ::testing::Test {
protected:
    FakeGuiHost host;
    KX_Trigger<T> module;
    void SetUp() override { module.setHost(host.unknown()); }
};

template <class T>
class Trigger2 : public ::testing::Test {
protected:
    FakeGuiHost host;
    KX_Trigger2<T> module;
    void SetUp() override { module.setHost(host.unknown()); }
};

using ValueTypes = ::testing::Types<int, float, std::wstring, bool, MpBlob>;
TYPED_TEST_SUITE(Trigger, ValueTypes);
TYPED_TEST_SUITE(Trigger2, ValueTypes);

}  // namespace

TYPED_TEST(Trigger, PassesInputOnlyWhenATriggerIsNotifiedTrue) {
    namespace pin = kx::trigger;
    const auto a = raw(Sample<TypeParam>::first());
    const auto b = raw(Sample<TypeParam>::second());

    send(this->module, pin::Input, a);
    EXPECT_TRUE(this->host.sent.empty());  // the input alone passes nothing

    send(this->module, pin::TriggerL, on);
    send(this->module, pin::TriggerR, on);  // same value again: nothing new
    EXPECT_EQ(traffic(this->host), (std::vector<std::pair<int, kxtest::Bytes>>{{pin::Output, a}}));

    send(this->module, pin::Input, b);  // triggers still true, but not notified again
    send(this->module, pin::TriggerL, off);
    EXPECT_EQ(this->host.sent.size(), 1u);

    send(this->module, pin::TriggerR, on);
    ASSERT_EQ(this->host.sent.size(), 2u);
    EXPECT_EQ(this->host.sent[1].pin, pin::Output);
    EXPECT_EQ(this->host.sent[1].bytes, b);
}

TYPED_TEST(Trigger2, InputAndOutputSwapAndTheHeldValueLeads) {
    namespace pin = kx::trigger2;
    const auto a = raw(Sample<TypeParam>::first());
    send(this->module, pin::Input, a);
    send(this->module, pin::TriggerL, on);
    EXPECT_EQ(traffic(this->host), (std::vector<std::pair<int, kxtest::Bytes>>{{pin::Held, a}, {pin::Output, a}}));
}

TYPED_TEST(Trigger2, HeldValueRestoredByHostStillReachesTheOutput) {
    namespace pin = kx::trigger2;
    const auto a = raw(Sample<TypeParam>::first());
    send(this->module, pin::Held, a);  // the host restores the held value
    send(this->module, pin::Input, a);
    EXPECT_TRUE(this->host.sent.empty());

    send(this->module, pin::TriggerR, on);
    EXPECT_EQ(traffic(this->host), (std::vector<std::pair<int, kxtest::Bytes>>{{pin::Output, a}}));
}

TEST(TriggerFloat, NaNIsAlwaysPassedAndNegativeZeroDoesNotReplaceZero) {
    namespace pin = kx::trigger;
    FakeGuiHost host;
    KX_TriggerFloat m;
    m.setHost(host.unknown());
    kxtest::deliver(m, pin::Input, -0.0f);
    kxtest::deliver(m, pin::TriggerL, 1);
    EXPECT_TRUE(host.sent.empty());

    kxtest::deliver(m, pin::Input, std::numeric_limits<float>::quiet_NaN());
    kxtest::deliver(m, pin::TriggerL, 1);
    kxtest::deliver(m, pin::TriggerL, 1);
    EXPECT_EQ(host.sent.size(), 2u);
}
