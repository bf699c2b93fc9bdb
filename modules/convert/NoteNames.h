// Note names: split a note into a key within the octave and an octave number, and join them again, so a
// patch can offer two list selectors for one note. The modules also publish the two item lists for those
// selectors. Octaves count from A, not C: the key list starts at A and the octave number goes up between
// G# and A, so MIDI note 9 and pitch voltage 0 are both A in octave 0.
//
// A host echoes what a module writes straight back into the same pin. One flag, held by both handlers
// while they write, keeps each echo from running the other handler: the echo of a joined note would
// otherwise rewrite the key and octave the user chose (key 12 in octave 4 would become key 0 in octave
// 5), and the echo of a split key would join it with the octave not yet written and overwrite the note.
//
// Negative notes (below MIDI note 9 or pitch 0) are not wrapped: the key comes out negative (MIDI note 0
// is key -9 in octave 0). Keys and octaves arriving out of range are not checked either: key 12 in
// octave 4 is the same note as key 0 in octave 5.
#pragma once

#include "ModuleSupport.h"
#include "MpGuiBase2.h"

// KX_MIDI2Note and KX_Pitch2Note.
namespace kx::notename {
enum Pin : int { Note, Key, KeyList, Octave, OctaveList, PinCount };
}

namespace kx {
inline constexpr const wchar_t* kKeyItemList = L"A,A#,B,C,C#,D,D#,E,F,F#,G,G#";
inline constexpr const wchar_t* kOctaveItemList = L"range 0,9";
}  // namespace kx

// The shape both modules share; Note is the note pin's value type (MIDI note or pitch voltage) and
// Derived supplies the two conversions.
template <class Derived, class Note>
class NoteNameSplitter : public SeGuiInvisibleBase {
public:
    int32_t initialize() override {
        keyList = kx::kKeyItemList;
        octaveList = kx::kOctaveItemList;
        return SeGuiInvisibleBase::initialize();
    }

    // The note pin changed: key first, then octave, each sent only when it changed.
    void onSetNote() {
        if (reentering_)
            return;
        kx::ReentryFlag hold(reentering_);
        key = Derived::keyOf(note);
        octave = Derived::octaveOf(note);
    }
    // Key or octave changed: the note they make, sent only when it changed.
    void onSetKey() {
        if (reentering_)
            return;
        kx::ReentryFlag hold(reentering_);
        note = Derived::noteOf(key, octave);
    }

    MpGuiPin<Note> note;
    MpGuiPin<int> key;
    StringGuiPin keyList;
    MpGuiPin<int> octave;
    StringGuiPin octaveList;

protected:
    template <class NoteHandler>
    void bindPins(NoteHandler onSetNoteHandler) {
        initializePin(note, onSetNoteHandler);
        initializePin(key, &NoteNameSplitter::onSetKey);
        initializePin(keyList);
        initializePin(octave, &NoteNameSplitter::onSetKey);
        initializePin(octaveList);
    }

private:
    bool reentering_ = false;
};

// Works on MIDI note numbers, in 32-bit integer arithmetic.
class KX_MIDI2Note : public NoteNameSplitter<KX_MIDI2Note, int> {
public:
    KX_MIDI2Note() { bindPins(&KX_MIDI2Note::onSetMIDI); }
    void onSetMIDI() { onSetNote(); }

    static int keyOf(int note);
    static int octaveOf(int note);
    static int noteOf(int key, int octave);
};

// Works on pitch voltages: the key from the semitones truncated toward zero, the octave from the whole
// part of the pitch.
class KX_Pitch2Note : public NoteNameSplitter<KX_Pitch2Note, float> {
public:
    KX_Pitch2Note() { bindPins(&KX_Pitch2Note::onSetPitch); }
    void onSetPitch() { onSetNote(); }

    static int keyOf(float pitch);
    static int octaveOf(float pitch);
    static float noteOf(int key, int octave);
};
