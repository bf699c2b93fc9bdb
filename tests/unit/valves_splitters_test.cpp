#include <gtest/gtest.h>

#include <climits>
#include <stdexcept>

#include "FakeGuiHost.h"
#include "LogicSamples.h"
#include "logic/CheckValves.h"
#include "logic/Splitters.h"

using kxtest::Bytes;
using kxtest::deliver;
using kxtest::FakeGuiHost;
using kxtest::raw;
using kxtest::Sample;
using kxtest::send;
using kxtest::traffic;
using Traffic = std::vector<std::pair<int, Bytes>>;

namespace {

template <class T>
class CheckValve : public ::testing::Test {
protected:
    FakeGuiHost host;
    KX_CheckValve<T> module;
    void SetUp() override { module.setHost(host.unknown()); }
};

template <class T>
class Splitter : public ::testing::Test {
protected:
    FakeGuiHost host;
    KX_Splitter<T> module;
    void SetUp() override { module.setHost(host.unknown()); }
    // Makes extra pins 3..last known to the module, then forgets the traffic that caused.
    void learnExtras(int last) {
        send(module, last, raw(Sample<T>::second()));
        host.sent.clear();
    }
};

using ValueTypes = ::testing::Types<int, float, std::wstring, bool, MpBlob>;
TYPED_TEST_SUITE(CheckValve, ValueTypes);
TYPED_TEST_SUITE(Splitter, ValueTypes);

}  // namespace

// ---- check valves

TYPED_TEST(CheckValve, ForwardModeFlowsInToOutOnly) {
    namespace pin = kx::checkvalve;
    const auto a = raw(Sample<TypeParam>::first());
    send(this->module, pin::In, a);
    send(this->module, pin::In, a);  // already equal on the other side
    EXPECT_EQ(traffic(this->host), (Traffic{{pin::Out, a}}));

    send(this->module, pin::Out, raw(Sample<TypeParam>::second()));
    EXPECT_EQ(this->host.sent.size(), 1u);
}

TYPED_TEST(CheckValve, BackwardModeFlowsOutToInOnly) {
    namespace pin = kx::checkvalve;
    deliver(this->module, pin::Mode, int{pin::Backward});
    const auto a = raw(Sample<TypeParam>::first());
    send(this->module, pin::In, raw(Sample<TypeParam>::second()));
    EXPECT_TRUE(this->host.sent.empty());
    send(this->module, pin::Out, a);
    EXPECT_EQ(traffic(this->host), (Traffic{{pin::In, a}}));
}

TEST(CheckValveInt, ClosedModesPassNothing) {
    namespace pin = kx::checkvalve;
    for (int mode : {2, -1, 1000}) {
        FakeGuiHost host;
        KX_CheckValveInt m;
        m.setHost(host.unknown());
        deliver(m, pin::Mode, mode);
        deliver(m, pin::In, 5);
        deliver(m, pin::Out, 6);
        EXPECT_TRUE(host.sent.empty()) << mode;
    }
}

TEST(CheckValveInt, BackwardSendIsNotEchoedForward) {
    namespace pin = kx::checkvalve;
    FakeGuiHost host;
    KX_CheckValveInt m;
    m.setHost(host.unknown());
    deliver(m, pin::Mode, 1);
    // While the backward send is in progress the host delivers into "In" a value of its own (a parameter
    // it has limited to 4), and in the same wave of traffic the mode switches to forward: that delivery
    // must still not flow back out.
    host.onTransmit = [&](int sentPin, int, const void*) {
        if (sentPin != pin::In)
            return;
        deliver(m, pin::Mode, 0);
        deliver(m, pin::In, 4);
    };
    deliver(m, pin::Out, 5);
    ASSERT_EQ(host.sent.size(), 1u);
    EXPECT_EQ(host.sent[0].pin, pin::In);
    EXPECT_EQ(host.sent[0].asInt(), 5);

    // The guard is over once the send returns: forward flow works again.
    host.onTransmit = nullptr;
    deliver(m, pin::In, 6);
    ASSERT_EQ(host.sent.size(), 2u);
    EXPECT_EQ(host.sent[1].pin, pin::Out);
}

TEST(CheckValveInt, GuardIsReleasedWhenTheHostThrowsDuringTheSend) {
    namespace pin = kx::checkvalve;
    FakeGuiHost host;
    kx::Guarded<KX_CheckValveInt> m;  // the boundary wrapper the factory uses
    m.setHost(host.unknown());
    deliver(m, pin::Mode, 1);
    host.onTransmit = [](int, int, const void*) { throw std::runtime_error("host failed"); };
    EXPECT_EQ(deliver(m, pin::Out, 5), gmpi::MP_FAIL);

    host.onTransmit = nullptr;
    deliver(m, pin::Mode, 0);
    deliver(m, pin::In, 7);
    EXPECT_EQ(host.on(pin::Out).size(), 1u);
}

// ---- splitters

TYPED_TEST(Splitter, LearnsItsExtraPinsFromTheHost) {
    namespace pin = kx::splitter;
    deliver(this->module, pin::Mode, int{pin::CommonToExtras});
    const auto a = raw(Sample<TypeParam>::first());
    send(this->module, pin::Common, a);
    EXPECT_TRUE(this->host.sent.empty());  // no extra pin known yet

    this->learnExtras(6);  // the first value on pin 6 makes pins 3 to 6 known
    EXPECT_EQ(this->module.extraPinCount(), 4);
    send(this->module, pin::Common, a);
    EXPECT_EQ(traffic(this->host), (Traffic{{3, a}, {4, a}, {5, a}, {6, a}}));

    this->host.sent.clear();
    send(this->module, 4, a);            // a lower pin does not shrink the count
    send(this->module, pin::Common, a);  // forwarded again, without comparing
    EXPECT_EQ(this->host.sent.size(), 4u);
}

TYPED_TEST(Splitter, CrossFeedReachesOtherExtrasButNotTheSender) {
    namespace pin = kx::splitter;
    deliver(this->module, pin::CrossFeed, 1);
    this->learnExtras(5);
    kxtest::echoInto(this->host, this->module);  // every send comes back into its pin

    const auto a = raw(Sample<TypeParam>::first());
    send(this->module, 4, a);
    EXPECT_EQ(traffic(this->host), (Traffic{{pin::Common, a}, {3, a}, {5, a}}));
}

TYPED_TEST(Splitter, BothWaysWithHostEchoTerminates) {
    namespace pin = kx::splitter;
    deliver(this->module, pin::Mode, int{pin::BothWays});
    this->learnExtras(4);
    kxtest::echoInto(this->host, this->module);

    const auto a = raw(Sample<TypeParam>::first());
    send(this->module, 3, a);
    // To the common pin; its echo feeds every extra pin once, and their echoes stop there.
    EXPECT_EQ(traffic(this->host), (Traffic{{pin::Common, a}, {3, a}, {4, a}}));
    EXPECT_EQ(raw(this->module.common.getValue()), a);
}

TEST(SplitterInt, ModeBitsDecideTheFlow) {
    namespace pin = kx::splitter;
    struct Case {
        int mode;
        bool extrasFeedCommon, commonFeedsExtras;
    };
    for (const Case& c : {Case{0, true, false}, Case{1, false, true}, Case{2, true, true}, Case{-1, false, false},
                          Case{3, false, false}, Case{4, true, false}, Case{INT_MAX, false, false}}) {
        FakeGuiHost host;
        KX_SplitterInt m;
        m.setHost(host.unknown());
        deliver(m, pin::Mode, c.mode);
        deliver(m, 3, 1);
        EXPECT_EQ(host.on(pin::Common).size(), c.extrasFeedCommon ? 1u : 0u) << c.mode;
        deliver(m, pin::Common, 2);
        EXPECT_EQ(host.on(3).size(), c.commonFeedsExtras ? 1u : 0u) << c.mode;
    }
}

TEST(SplitterInt, MalformedValuesAreNotForwarded) {
    namespace pin = kx::splitter;
    FakeGuiHost host;
    KX_SplitterInt m;
    m.setHost(host.unknown());
    deliver(m, pin::Mode, 2);
    deliver(m, 3, 1);
    host.sent.clear();

    m.setPin(pin::Common, 0, -4, nullptr);
    m.setPin(3, 0, 4, nullptr);
    m.setPin(9, 0, -1, "abcd");
    EXPECT_TRUE(host.sent.empty());
    EXPECT_EQ(m.extraPinCount(), 1);  // a malformed call teaches nothing either
}
