#include <gtest/gtest.h>

#include "HostedModule.h"
#include "convert/NoteNames.h"

using kxtest::Hosted;
namespace P = kx::notename;

namespace {

template <class M, class Note>
std::pair<int, int> split(Note note) {
    Hosted<M> h;
    h.send(P::Note, note);
    return {h.module.key.value, h.module.octave.value};
}

}  // namespace

TEST(NoteNames, MidiNotesSplitWithOctavesCountedFromA) {
    EXPECT_EQ(split<KX_MIDI2Note>(69), std::make_pair(0, 5));
    EXPECT_EQ(split<KX_MIDI2Note>(68), std::make_pair(11, 4));
    EXPECT_EQ(split<KX_MIDI2Note>(60), std::make_pair(3, 4));
    EXPECT_EQ(split<KX_MIDI2Note>(21), std::make_pair(0, 1));
    EXPECT_EQ(split<KX_MIDI2Note>(9), std::make_pair(0, 0));
}

TEST(NoteNames, NotesBelowTheFirstAGiveNegativeKeysNotWrapped) {
    EXPECT_EQ(split<KX_MIDI2Note>(8), std::make_pair(-1, 0));
    EXPECT_EQ(split<KX_MIDI2Note>(0), std::make_pair(-9, 0));
    EXPECT_EQ(split<KX_MIDI2Note>(-20), std::make_pair(-5, -2));
    EXPECT_EQ(split<KX_Pitch2Note>(-0.5f), std::make_pair(-6, 0));
}

TEST(NoteNames, PitchKeysComeFromTruncatedSemitones) {
    EXPECT_EQ(split<KX_Pitch2Note>(5.0f), std::make_pair(0, 5));
    EXPECT_EQ(split<KX_Pitch2Note>(5.25f), std::make_pair(3, 5));
    EXPECT_EQ(split<KX_Pitch2Note>(4.99f), std::make_pair(11, 4));
    EXPECT_EQ(split<KX_Pitch2Note>(6.0f), std::make_pair(0, 6));
}

TEST(NoteNames, KeyAndOctaveJoinIntoANoteOnceAndOnlyWhenItChanges) {
    Hosted<KX_MIDI2Note> m;
    m.send(P::Key, 3);
    m.send(P::Octave, 4);
    ASSERT_FALSE(m.host.on(P::Note).empty());
    EXPECT_EQ(m.host.on(P::Note).back().asInt(), 60);
    m.send(P::Key, 15);  // out-of-range keys are applied as they are: 15 + 48 + 9 = 72
    EXPECT_EQ(m.host.on(P::Note).back().asInt(), 72);
    m.send(P::Octave, 3);  // 15 + 36 + 9 = 60
    EXPECT_EQ(m.host.on(P::Note).back().asInt(), 60);

    Hosted<KX_Pitch2Note> p;
    p.send(P::Octave, 6);
    ASSERT_EQ(p.host.on(P::Note).size(), 1u);
    EXPECT_FLOAT_EQ(p.host.on(P::Note)[0].asFloat(), 6.0f);
    p.send(P::Key, 0);  // the same note: nothing
    EXPECT_EQ(p.host.on(P::Note).size(), 1u);
}

// Without the guard, the echo of the note would overwrite the key and octave the user chose with the
// normalised pair (key 12 in octave 4 would become key 0 in octave 5).
TEST(NoteNames, EchoOfTheJoinedNoteLeavesKeyAndOctaveAlone) {
    Hosted<KX_MIDI2Note> h;
    h.echoTransmissions();
    h.send(P::Octave, 4);
    h.send(P::Key, 12);
    EXPECT_EQ(h.module.note.value, 69);
    EXPECT_EQ(h.module.key.value, 12);
    EXPECT_EQ(h.module.octave.value, 4);
    EXPECT_TRUE(h.host.on(P::Key).empty());
    EXPECT_TRUE(h.host.on(P::Octave).empty());

    // A new note splits again; the echo of the new key must not join it with the old octave 4 and
    // overwrite the note with 58.
    h.send(P::Note, 70);
    EXPECT_EQ(h.module.key.value, 1);
    EXPECT_EQ(h.module.octave.value, 5);
    EXPECT_EQ(h.module.note.value, 70);
    EXPECT_TRUE(h.host.on(P::Note).size() == 2u);  // 57 and 69, both from onSetKey
}

TEST(NoteNames, ItemListsArePublishedAtInitialize) {
    Hosted<KX_Pitch2Note> h;
    EXPECT_TRUE(h.host.sent.empty());
    EXPECT_EQ(h.module.initialize(), 0);
    ASSERT_EQ(h.host.on(P::KeyList).size(), 1u);
    EXPECT_EQ(h.host.on(P::KeyList)[0].asText(), L"A,A#,B,C,C#,D,D#,E,F,F#,G,G#");
    ASSERT_EQ(h.host.on(P::OctaveList).size(), 1u);
    EXPECT_EQ(h.host.on(P::OctaveList)[0].asText(), L"range 0,9");
}
