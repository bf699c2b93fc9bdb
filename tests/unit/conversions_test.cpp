#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <limits>

#include "HostedModule.h"
#include "convert/Conversions.h"

using kxtest::Hosted;

namespace {

template <class M, class In>
float convertFloat(int inPin, In in, int outPin) {
    Hosted<M> h;
    h.send(inPin, in);
    const auto out = h.host.on(outPin);
    EXPECT_EQ(out.size(), 1u) << "input " << in;
    return out.empty() ? -12345.0f : out.back().asFloat();
}

template <class M, class In>
int convertToInt(int inPin, In in, int outPin) {
    Hosted<M> h;
    h.send(inPin, in);
    const auto out = h.host.on(outPin);
    EXPECT_EQ(out.size(), 1u) << "input " << in;
    return out.empty() ? -12345 : out.back().asInt();
}

}  // namespace

TEST(LevelPitch, MirroredPairsConvertBothWaysWithTheirPinsSwapped) {
    EXPECT_FLOAT_EQ((convertFloat<KX_V2dB>(kx::v2db::Volts, 1.0f, kx::v2db::Decibels)), -20.0f);
    EXPECT_FLOAT_EQ((convertFloat<KX_dB2V>(kx::db2v::Decibels, 0.0f, kx::db2v::Volts)), 10.0f);
    EXPECT_FLOAT_EQ((convertFloat<KX_dB2V>(kx::db2v::Decibels, -20.0f, kx::db2v::Volts)), 1.0f);
    EXPECT_FLOAT_EQ((convertFloat<KX_dB2V>(kx::db2v::Volts, 1.0f, kx::db2v::Decibels)), -20.0f);

    EXPECT_FLOAT_EQ((convertFloat<KX_Oct2Hz>(kx::oct2hz::Pitch, 5.0f, kx::oct2hz::Hertz)), 440.0f);
    EXPECT_FLOAT_EQ((convertFloat<KX_Oct2Hz>(kx::oct2hz::Pitch, 6.0f, kx::oct2hz::Hertz)), 880.0f);
    EXPECT_FLOAT_EQ((convertFloat<KX_Oct2Hz>(kx::oct2hz::Pitch, 0.0f, kx::oct2hz::Hertz)), 13.75f);
    EXPECT_FLOAT_EQ((convertFloat<KX_Hz2Oct>(kx::hz2oct::Hertz, 440.0f, kx::hz2oct::Pitch)), 5.0f);
    EXPECT_FLOAT_EQ((convertFloat<KX_Hz2Oct>(kx::hz2oct::Pitch, 4.0f, kx::hz2oct::Hertz)), 220.0f);
}

TEST(LevelPitch, OutOfDomainInputsAreSentAsInfinityOrNaN) {
    EXPECT_EQ((convertFloat<KX_V2dB>(kx::v2db::Volts, 0.0f, kx::v2db::Decibels)),
              -std::numeric_limits<float>::infinity());
    EXPECT_TRUE(std::isnan(convertFloat<KX_V2dB>(kx::v2db::Volts, -1.0f, kx::v2db::Decibels)));
    EXPECT_EQ((convertFloat<KX_Hz2Oct>(kx::hz2oct::Hertz, 0.0f, kx::hz2oct::Pitch)),
              -std::numeric_limits<float>::infinity());
    EXPECT_TRUE(std::isnan(convertFloat<KX_Oct2Hz>(kx::oct2hz::Hertz, -5.0f, kx::oct2hz::Pitch)));
}

TEST(LevelPitch, UnchangedResultAndEchoSendNothingMore) {
    Hosted<KX_V2dB> h;
    h.echoTransmissions();
    h.send(kx::v2db::Volts, 10.0f);  // 0 dB: equal to the pin's initial 0, nothing to send
    EXPECT_TRUE(h.host.sent.empty());
    h.send(kx::v2db::Volts, 1.0f);
    h.send(kx::v2db::Volts, 1.0f);
    EXPECT_EQ(h.host.on(kx::v2db::Decibels).size(), 1u);
    EXPECT_EQ(h.host.on(kx::v2db::Volts).size(), 0u);  // the echoed dB converted back to the same volts
}

TEST(MidiPitch, NoteNumbersAreTruncatedTowardZero) {
    namespace P = kx::pitch2midi;
    EXPECT_EQ((convertToInt<KX_GUI_Pitch2MIDI>(P::Pitch, 4.25f, P::Midi)), 60);
    EXPECT_EQ((convertToInt<KX_GUI_Pitch2MIDI>(P::Pitch, 4.2499f, P::Midi)), 59);
    EXPECT_EQ((convertToInt<KX_GUI_Pitch2MIDI>(P::Pitch, 4.9999f, P::Midi)), 68);
    EXPECT_EQ((convertToInt<KX_GUI_Pitch2MIDI>(P::Pitch, -1.0f, P::Midi)), -3);
    EXPECT_EQ((convertToInt<KX_GUI_Pitch2MIDI>(P::Pitch, 1e10f, P::Midi)), INT_MIN);
    EXPECT_EQ((convertToInt<KX_GUI_Pitch2MIDI>(P::Pitch, std::numeric_limits<float>::quiet_NaN(), P::Midi)), INT_MIN);
    Hosted<KX_GUI_Pitch2MIDI> h;
    h.send(P::Pitch, 4.0f);   // note 57
    h.send(P::Pitch, -0.8f);  // -0.6 goes to 0, not -1
    ASSERT_EQ(h.host.on(P::Midi).size(), 2u);
    EXPECT_EQ(h.host.on(P::Midi)[1].asInt(), 0);

    EXPECT_FLOAT_EQ((convertFloat<KX_GUI_MIDI2Pitch>(kx::midi2pitch::Midi, 60, kx::midi2pitch::Pitch)), 4.25f);
    EXPECT_FLOAT_EQ((convertFloat<KX_GUI_MIDI2Pitch>(kx::midi2pitch::Midi, 0, kx::midi2pitch::Pitch)), -0.75f);
    EXPECT_FLOAT_EQ((convertFloat<KX_GUI_MIDI2Pitch>(kx::midi2pitch::Midi, INT_MIN, kx::midi2pitch::Pitch)),
                    static_cast<float>((static_cast<double>(INT_MIN) - 69) / 12.0 + 5.0));
}

// The note conversion quantises, so a note written into pin 0 must not come back converted into pin 1.
TEST(MidiPitch, ReentryGuardFollowsPinOrderNotDirection) {
    {
        Hosted<KX_GUI_MIDI2Pitch> h;  // pin 0 note, pin 1 pitch
        h.echoTransmissions();
        h.send(kx::midi2pitch::Pitch, 4.2499f);
        ASSERT_EQ(h.host.on(kx::midi2pitch::Midi).size(), 1u);
        EXPECT_EQ(h.host.on(kx::midi2pitch::Midi)[0].asInt(), 59);
        EXPECT_TRUE(h.host.on(kx::midi2pitch::Pitch).empty());  // the echoed 59 was not turned into 4.1667
        EXPECT_FLOAT_EQ(h.module.pitch.value, 4.2499f);

        h.send(kx::midi2pitch::Midi, 61);  // a change of pin 0 from elsewhere still converts
        ASSERT_EQ(h.host.on(kx::midi2pitch::Pitch).size(), 1u);
    }
    {
        Hosted<KX_GUI_Pitch2MIDI> h;  // pin 0 pitch, pin 1 note
        h.echoTransmissions();
        h.send(kx::pitch2midi::Midi, 60);
        ASSERT_EQ(h.host.on(kx::pitch2midi::Pitch).size(), 1u);
        EXPECT_FLOAT_EQ(h.host.on(kx::pitch2midi::Pitch)[0].asFloat(), 4.25f);
        EXPECT_TRUE(h.host.on(kx::pitch2midi::Midi).empty());

        h.send(kx::pitch2midi::Pitch, 4.2499f);  // pin 0 is not guarded: it converts into pin 1
        ASSERT_EQ(h.host.on(kx::pitch2midi::Midi).size(), 1u);
        EXPECT_EQ(h.host.on(kx::pitch2midi::Midi)[0].asInt(), 59);
    }
}
