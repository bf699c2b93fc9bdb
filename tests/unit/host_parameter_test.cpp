#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>

#include "audio/HostParameter.h"

using kxhost::HostParameter;
using kxhost::ParamRole;
using kxhost::ParamType;

namespace {
template <class T>
T as(const std::string& bytes) {
    T v{};
    std::memcpy(&v, bytes.data(), std::min(bytes.size(), sizeof v));
    return v;
}
template <class T>
std::vector<ParamRole> write(HostParameter& p, ParamRole role, T value) {
    return p.set(role, &value, sizeof value);
}
}  // namespace

TEST(HostParameter, ValueAndNormalisedPositionFollowEachOtherAcrossTheRange) {
    HostParameter p("gain", ParamType::Float, -10.0, 10.0);
    EXPECT_EQ(write(p, ParamRole::Normalized, 0.75f), (std::vector{ParamRole::Value, ParamRole::Normalized}));
    EXPECT_FLOAT_EQ(as<float>(p.bytes(ParamRole::Value)), 5.0f);
    write(p, ParamRole::Value, -10.0f);
    EXPECT_FLOAT_EQ(as<float>(p.bytes(ParamRole::Normalized)), 0.0f);
    write(p, ParamRole::Value, 40.0f);
    EXPECT_FLOAT_EQ(as<float>(p.bytes(ParamRole::Normalized)), 1.0f) << "outside the range: clamped position";

    const char half[2] = {0, 0};
    EXPECT_TRUE(p.set(ParamRole::Value, half, 2).empty());
    EXPECT_TRUE(write(p, ParamRole::Normalized, std::nanf("")).empty());
    EXPECT_FLOAT_EQ(p.numeric(), 40.0);
}

TEST(HostParameter, MenuSelectionChoosesTheItemsValueAndFollowsIt) {
    HostParameter p("mode", ParamType::List, 0, 10, L"Off,Low=5,High");
    EXPECT_EQ(as<int32_t>(p.bytes(ParamRole::MenuSelection)), 0);
    auto changed = write(p, ParamRole::MenuSelection, 1);
    EXPECT_EQ(as<int32_t>(p.bytes(ParamRole::Value)), 5);
    EXPECT_NE(std::find(changed.begin(), changed.end(), ParamRole::Value), changed.end());
    write(p, ParamRole::Value, 6);
    EXPECT_EQ(p.menuSelection(), 2);
    write(p, ParamRole::Value, 3);
    EXPECT_EQ(p.menuSelection(), -1) << "a value no item has selects nothing";
}

TEST(HostParameter, TextNameAndGrabAreStoredAndEchoed) {
    HostParameter p("title", ParamType::Text);
    const std::wstring text = L"abc";
    EXPECT_EQ(p.set(ParamRole::Value, text.data(), 13), std::vector{ParamRole::Value});
    EXPECT_EQ(p.bytes(ParamRole::Value).size(), 12u) << "a partial character is dropped";
    EXPECT_EQ(p.set(ParamRole::Name, text.data(), 12), std::vector{ParamRole::Name});
    EXPECT_EQ(p.name(), L"abc");
    EXPECT_EQ(write(p, ParamRole::Grab, true), std::vector{ParamRole::Grab});
    EXPECT_TRUE(p.grabbed());
    EXPECT_TRUE(write(p, ParamRole::Normalized, 0.5f).empty()) << "text has no position";
}
