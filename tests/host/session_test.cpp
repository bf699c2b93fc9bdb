// The session's routing and records, through patches run against the test bundle.
#include <gtest/gtest.h>

#include "HostTestSupport.h"

using kxhost::Side;
using kxhost::Value;
using kxhosttest::PatchRun;

TEST(Session, TheEchoSkipsPinsWhoseDescriptionForbidsIt) {
    PatchRun r(
        "instance with T_EchoCounter\ninstance without T_NoEchoCounter\nscenario\n"
        "set with.Value 3\nset without.Value 3\n");
    ASSERT_TRUE(r.passed) << r.err.str();
    EXPECT_EQ(r.value("with", 2), Value::ofInt(1)) << "the echo of Out ran Out's handler";
    EXPECT_EQ(r.value("without", 2), Value::ofInt(0));
    EXPECT_EQ(r.value("without", 1), Value::ofInt(3)) << "the host still knows what the module sent";
}

TEST(Session, TrafficIsKeptInOrderOnlyWhenAStepReadsIt) {
    const std::string chain = "instance a T_AddOne\ninstance b T_AddOne\nwire a.Out -> b.In\nscenario\nset a.In 1\n";
    PatchRun plain(chain);
    ASSERT_TRUE(plain.passed) << plain.err.str();
    EXPECT_TRUE(plain.session->traffic().empty());

    PatchRun read(chain + "expect-order a.Out 2 then b.Out 3\n");
    ASSERT_TRUE(read.passed) << read.err.str();
    const auto& traffic = read.session->traffic();
    ASSERT_EQ(traffic.size(), 2u);
    EXPECT_EQ(traffic[0].pin, (kxhost::PinRef{"a", Side::Gui, 1}));
    EXPECT_EQ(traffic[1].value, Value::ofInt(3));
}

TEST(Session, AReleasedInstanceGetsNothingAndStartsAfreshWhenMadeAgain) {
    PatchRun r(
        "instance src T_AddOne\ninstance dst T_EchoCounter later\nwire src.Out -> dst.Value\nscenario\n"
        "set src.In 1\ncreate dst\nset src.In 4\nrelease dst\nset src.In 8\n");
    ASSERT_TRUE(r.passed) << r.err.str();
    EXPECT_EQ(r.value("dst", 1), Value::ofInt(5)) << "the last value it got, before its release";
    kxhost::Instance& dst = *r.session->instance("dst");
    EXPECT_FALSE(dst.created);
    r.session->create(dst);
    EXPECT_EQ(r.session->value({"dst", Side::Gui, 1}), Value::ofInt(0)) << "the host's idea starts afresh";
    EXPECT_EQ(r.session->failures(), 0);
}
