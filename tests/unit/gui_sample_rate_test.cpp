#include <gtest/gtest.h>

#include "FakeAudioHost.h"
#include "FakeGuiHost.h"
#include "logic/GuiSampleRate.h"

using kxtest::FakeAudioHost;
using kxtest::FakeGuiHost;

TEST(GUISampleRate, DefaultUntilTheEngineReportsThenTheEnginesRate) {
    FakeGuiHost gui;
    auto* g = new kx::Guarded<KX_GUISampleRateGUI>();
    g->setHost(gui.unknown());
    kxtest::deliver(*g, 0, 44100.0f);
    ASSERT_EQ(gui.on(1).size(), 1u);
    EXPECT_FLOAT_EQ(gui.on(1)[0].asFloat(), 44100.0f);

    FakeAudioHost audio;
    audio.sampleRate = 48000.0f;
    auto* d = new kx::Guarded<KX_GUISampleRate>();
    d->setHost(audio.unknown());
    EXPECT_EQ(d->open(), gmpi::MP_OK);
    ASSERT_EQ(audio.messages.size(), 1u);
    const std::string& message = audio.messages[0].bytes;
    EXPECT_EQ(g->receiveMessageFromAudio(0, static_cast<int32_t>(message.size()), message.data()), gmpi::MP_OK);
    EXPECT_FLOAT_EQ(gui.on(1).back().asFloat(), 48000.0f);

    kxtest::deliver(*g, 0, 22050.0f);
    EXPECT_EQ(gui.on(1).size(), 2u) << "later defaults are ignored";
    EXPECT_EQ(g->receiveMessageFromAudio(0, 2, message.data()), gmpi::MP_FAIL);
    d->release();
    g->release();
}

// The GUI half waits for this message; a host that cannot tell its rate still sends it, with what the
// module holds.
TEST(GUISampleRate, TheMessageGoesOutEvenWhenTheHostCannotTellItsRate) {
    struct NoRate : FakeAudioHost {
        int32_t getSampleRate(float&) override { return gmpi::MP_FAIL; }
    } audio;
    auto* d = new kx::Guarded<KX_GUISampleRate>();
    d->setHost(audio.unknown());
    EXPECT_EQ(d->open(), gmpi::MP_OK);
    ASSERT_EQ(audio.messages.size(), 1u);
    EXPECT_EQ(audio.messages[0].bytes.size(), sizeof(float));
    d->release();
}
