// Text files: move a whole text between a text pin and a file, on a trigger or automatically when the
// file name changes. The file holds the text as it is, in UTF-8 on every platform: no byte-order mark,
// no header, no line-ending translation.
//
// Bytes that are not valid UTF-8 do not cost the rest of the file: the loader turns each byte that does
// not start a valid sequence into U+FFFD and goes on, so a file with one stray Latin-1 byte loads with
// one replacement character in its place. A byte-order mark at the start of a file is kept as U+FEFF.
#pragma once

#include <string>
#include <string_view>

#include "MpGuiBase2.h"

// KX_StringLoader and KX_StringSaver.
namespace kx::textfile {
enum Pin : int { Text, Trigger, Automatic, FileNameL, FileNameR, PinCount };
}

namespace kx {

// Reads the whole file at a UTF-8 path in one go and decodes it leniently (above) into text. False,
// leaving text alone, when the file cannot be opened or is a folder. A read that stops early still
// yields what was read.
bool readTextFile(const std::string& path, std::wstring& text);
// Replaces the file at a UTF-8 path with the text's UTF-8, whole or not at all: the text is written to a
// new file in the same folder, synced to the disk, and only then put in the old file's place, keeping its
// permission bits. A link is followed and stays a link. False, with the old file exactly as it was and
// nothing left beside it, when the text holds values that are not Unicode code points, when the name is
// not a regular file or not writable, when the folder does not let a new file be made, or when any write
// fails part way (disk full, quota, file-size limit, I/O error).
bool writeTextFile(const std::string& path, std::wstring_view text);

}  // namespace kx

// What the loader and the saver share: a trigger, an automatic switch and two equivalent file-name pins,
// of which the one that changed last supplies the current file name, so two controls can feed one
// module. Derived supplies fileNameFrom (what a pin's text becomes as the current file name) and
// transfer (the load or the save). Every failure is silent.
template <class Derived>
class TextFileModule : public SeGuiInvisibleBase {
public:
    // Only the rising value acts; the return to false does nothing.
    void onSetTrig() {
        if (trigger)
            self().transfer();
    }
    void onSetFNameL() { takeFileName(fileNameL); }
    void onSetFNameR() { takeFileName(fileNameR); }

    const std::wstring& currentFileName() const { return fileName_; }

    StringGuiPin text;
    MpGuiPin<bool> trigger;
    MpGuiPin<bool> automatic;
    StringGuiPin fileNameL;
    StringGuiPin fileNameR;

protected:
    template <class TextHandler, class AutomaticHandler>
    void bindPins(TextHandler onSetText, AutomaticHandler onSetAutomatic) {
        initializePin(text, onSetText);
        initializePin(trigger, &TextFileModule::onSetTrig);
        initializePin(automatic, onSetAutomatic);
        initializePin(fileNameL, &TextFileModule::onSetFNameL);
        initializePin(fileNameR, &TextFileModule::onSetFNameR);
    }

    std::wstring fileName_;

private:
    Derived& self() { return static_cast<Derived&>(*this); }
    void takeFileName(const StringGuiPin& pin) {
        fileName_ = self().fileNameFrom(pin.getValue());
        if (automatic)
            self().transfer();
    }
};

// Reads a file into its text output. File names are resolved through the host (against its resource
// folders), so a patch can name a file relative to its skin or project. A missing or unreadable file
// leaves the output as it was; an empty file gives an empty text.
class KX_StringLoader : public TextFileModule<KX_StringLoader> {
public:
    KX_StringLoader() { bindPins(Handler{}, Handler{}); }

    std::wstring fileNameFrom(const std::wstring& name) const;
    void transfer();
};

// Writes its text input into a file. A new text alone never saves, even in automatic mode: saving
// happens on the trigger, on a new file name in automatic mode, and when automatic mode is switched on
// with a file name present. An empty text is never written, so a file cannot be emptied through this
// module. File names are used as they are (a relative name is relative to the process's working
// folder), deliberately unlike the loader.
class KX_StringSaver : public TextFileModule<KX_StringSaver> {
public:
    KX_StringSaver() { bindPins(&KX_StringSaver::onSetString, &KX_StringSaver::onSetAutoTrig); }

    void onSetString() { toSave_ = text.getValue(); }
    void onSetAutoTrig() {
        if (automatic && !fileName_.empty())
            transfer();
    }

    std::wstring fileNameFrom(const std::wstring& name) const { return name; }
    void transfer();

private:
    std::wstring toSave_;
};
