#include <gtest/gtest.h>

#include <vector>

#include "FakeGuiHost.h"
#include "ManualTimerBackend.h"
#include "widgets/RadioButtons.h"

using kxtest::deliver;

namespace {

class RadioButtons : public ::testing::Test {
protected:
    kx::ManualTimerBackend loop;
    kxtest::FakeGuiHost host;
    KX_RadioButtons radio;

    void start(int buttons, bool oneBased, int selection) {
        host.pinCount = kx::radio::PinCount + buttons;
        radio.setHost(host.unknown());
        deliver(radio, kx::radio::OneBased, oneBased);
        deliver(radio, kx::radio::Selection, selection);
        radio.initialize();
        host.sent.clear();
    }
    // The float last sent on every button pin, -1 where none was sent.
    std::vector<float> buttons(int count) const {
        std::vector<float> v(count, -1.0f);
        for (const auto& t : host.sent)
            if (t.pin >= kx::radio::FirstButton && t.pin < kx::radio::FirstButton + count)
                v[t.pin - kx::radio::FirstButton] = t.asFloat();
        return v;
    }
    void press(int button, float value) {
        radio.setPin(kx::radio::FirstButton + button, 0, sizeof(value), &value);
        radio.notifyPin(kx::radio::FirstButton + button, 0);
    }
    std::vector<int> selectionsSent() const {
        std::vector<int> v;
        for (const auto& t : host.on(kx::radio::Selection))
            v.push_back(t.asInt());
        return v;
    }
};

}  // namespace

TEST_F(RadioButtons, ZeroBasedSelectionIsClampedToTheButtons) {
    start(4, false, 7);
    deliver(radio, kx::radio::Selection, 7);
    EXPECT_EQ(buttons(4), (std::vector<float>{0, 0, 0, 1}));
    deliver(radio, kx::radio::Selection, -2);
    EXPECT_EQ(buttons(4), (std::vector<float>{1, 0, 0, 0}));
}

TEST_F(RadioButtons, OneBasedZeroSelectsNoneAndTooLargeTheLast) {
    start(4, true, 0);
    deliver(radio, kx::radio::Selection, 0);
    EXPECT_EQ(buttons(4), (std::vector<float>{0, 0, 0, 0}));
    deliver(radio, kx::radio::Selection, 9);
    EXPECT_EQ(buttons(4), (std::vector<float>{0, 0, 0, 1}));
}

TEST_F(RadioButtons, InitializeAssertsTheGroupFromTheHostsPinCount) {
    host.pinCount = kx::radio::PinCount + 3;
    radio.setHost(host.unknown());
    deliver(radio, kx::radio::Selection, 1);
    EXPECT_TRUE(host.sent.empty());  // the count is unknown before initialize
    radio.initialize();
    EXPECT_EQ(radio.buttonCount(), 3);
    EXPECT_EQ(buttons(3), (std::vector<float>{0, 1, 0}));
}

TEST_F(RadioButtons, ZeroBasedButtonTurnedOffIsSelectedAndReassertedATickLater) {
    start(4, false, 0);
    const float off = 0.0f;
    EXPECT_EQ(radio.setPin(kx::radio::FirstButton + 2, 0, sizeof(off), &off), gmpi::MP_OK);
    EXPECT_EQ(radio.notifyPin(kx::radio::FirstButton + 2, 0), gmpi::MP_OK);
    EXPECT_EQ(selectionsSent(), (std::vector<int>{2}));
    EXPECT_EQ(buttons(4), (std::vector<float>{-1, -1, -1, -1}));
    loop.advance(9);
    EXPECT_EQ(buttons(4), (std::vector<float>{-1, -1, -1, -1}));
    loop.advance(1);
    EXPECT_EQ(buttons(4), (std::vector<float>{0, 0, 1, 0}));
    // One re-assertion per change.
    host.sent.clear();
    loop.advance(100);
    EXPECT_TRUE(host.sent.empty());
    EXPECT_FALSE(TimerManager::Instance().isRegistered(&radio));
}

TEST_F(RadioButtons, ZeroBasedUpdateOfTheSelectedButtonOnlyReasserts) {
    start(4, false, 1);
    press(1, 1.0f);
    EXPECT_TRUE(selectionsSent().empty());
    loop.advance(10);
    EXPECT_EQ(buttons(4), (std::vector<float>{0, 1, 0, 0}));
}

TEST_F(RadioButtons, OneBasedButtonsSelectWhenOnAndClearWhenTheSelectedOneTurnsOff) {
    start(4, true, 2);
    press(1, 0.0f);  // button 2 turned off by the user: nothing selected
    EXPECT_EQ(selectionsSent(), (std::vector<int>{0}));
    loop.advance(10);
    EXPECT_EQ(buttons(4), (std::vector<float>{0, 0, 0, 0}));

    host.sent.clear();
    press(3, 0.0f);  // not the selected one: only re-asserted
    press(2, 1.0f);
    EXPECT_EQ(selectionsSent(), (std::vector<int>{3}));
    press(0, 0.5f);  // only exactly 1.0 selects
    loop.advance(10);
    EXPECT_EQ(buttons(4), (std::vector<float>{0, 0, 1, 0}));
    EXPECT_EQ(selectionsSent(), (std::vector<int>{3}));
}

TEST_F(RadioButtons, MalformedButtonUpdatesAreIgnored) {
    start(4, true, 1);
    const unsigned char half[2] = {0, 0};
    radio.setPin(kx::radio::FirstButton, 0, 2, half);  // shorter than a float
    radio.setPin(kx::radio::FirstButton, 0, 4, nullptr);
    radio.setPin(kx::radio::FirstButton, 0, 0, half);
    EXPECT_FALSE(TimerManager::Instance().isRegistered(&radio));
    EXPECT_TRUE(host.sent.empty());
}

TEST_F(RadioButtons, WithoutButtonPinsNothingIsSent) {
    start(0, false, 3);
    deliver(radio, kx::radio::Selection, 1);
    press(0, 1.0f);  // a stray index beyond the host's pins moves the selection only
    loop.advance(10);
    EXPECT_EQ(buttons(8), std::vector<float>(8, -1.0f));
}

TEST_F(RadioButtons, ConstructionMakesTenMillisecondsTheProcessDefault) {
    TimerManager::Instance().SetInterval(50);
    KX_RadioButtons another;
    EXPECT_EQ(TimerManager::Instance().defaultInterval(), 10);
}

TEST(ToggleSwitch, EveryTruePressFlipsBothStates) {
    kxtest::FakeGuiHost host;
    KX_ToggleSwitch toggle;
    toggle.setHost(host.unknown());
    deliver(toggle, kx::toggleswitch::StateB, true);
    deliver(toggle, kx::toggleswitch::PointerDown, true);
    deliver(toggle, kx::toggleswitch::PointerDown, false);
    deliver(toggle, kx::toggleswitch::PointerDown, true);
    ASSERT_EQ(host.sent.size(), 4u);
    EXPECT_EQ(host.sent[0].pin, kx::toggleswitch::StateA);
    EXPECT_TRUE(host.sent[0].asBool());
    EXPECT_EQ(host.sent[1].pin, kx::toggleswitch::StateB);
    EXPECT_FALSE(host.sent[1].asBool());
    EXPECT_FALSE(host.sent[2].asBool());
    EXPECT_TRUE(host.sent[3].asBool());
}
