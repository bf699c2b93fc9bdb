#include <gtest/gtest.h>

#include "FakeGuiHost.h"
#include "LogicSamples.h"
#include "logic/FixedValues.h"

using kxtest::deliver;
using kxtest::deliverText;
using kxtest::FakeGuiHost;
namespace pin = kx::fixed;

namespace {

struct FixedInt : ::testing::Test {
    FakeGuiHost host;
    KX_Fixed_Int module;
    void SetUp() override { module.setHost(host.unknown()); }
};

}  // namespace

TEST_F(FixedInt, NewValueReachesRightOutputThenLeft) {
    deliver(module, pin::Value, 4);
    ASSERT_EQ(host.sent.size(), 2u);
    EXPECT_EQ(host.sent[0].pin, pin::Right);
    EXPECT_EQ(host.sent[0].asInt(), 4);
    EXPECT_EQ(host.sent[1].pin, pin::Left);
    EXPECT_EQ(host.sent[1].asInt(), 4);
}

TEST_F(FixedInt, HoldUndoesOutsideChangesAtOnce) {
    deliver(module, pin::Hold, 1);
    deliver(module, pin::Value, 4);
    host.sent.clear();
    kxtest::echoInto(host, module);  // the restored value comes back into the output and stops there

    deliver(module, pin::Left, 9);
    deliver(module, pin::Right, -2);
    ASSERT_EQ(host.sent.size(), 2u);
    EXPECT_EQ(host.sent[0].pin, pin::Left);
    EXPECT_EQ(host.sent[0].asInt(), 4);
    EXPECT_EQ(host.sent[1].pin, pin::Right);
    EXPECT_EQ(host.sent[1].asInt(), 4);
}

TEST_F(FixedInt, WithoutHoldOutsideChangesStayUntilANewValue) {
    deliver(module, pin::Value, 4);
    host.sent.clear();
    deliver(module, pin::Left, 9);
    EXPECT_TRUE(host.sent.empty());

    deliver(module, pin::Hold, 1);  // turning hold on restores nothing by itself
    EXPECT_TRUE(host.sent.empty());
    EXPECT_EQ(module.left.value, 9);

    deliver(module, pin::Value, 5);  // but a new value reaches both outputs, hold or not
    ASSERT_EQ(host.sent.size(), 2u);
    EXPECT_EQ(host.on(pin::Left)[0].asInt(), 5);
    EXPECT_EQ(host.on(pin::Right)[0].asInt(), 5);
}

TEST(FixedString, HoldRestoresTextExactly) {
    FakeGuiHost host;
    KX_Fixed_String m;
    m.setHost(host.unknown());
    deliver(m, pin::Hold, 1);
    deliverText(m, pin::Value, L"Gain");
    host.sent.clear();

    deliverText(m, pin::Right, L"gain");
    ASSERT_EQ(host.sent.size(), 1u);
    EXPECT_EQ(host.sent[0].asText(), L"Gain");
    deliverText(m, pin::Right, L"Gain");  // the same text from outside: nothing to undo
    EXPECT_EQ(host.sent.size(), 1u);
}
