// Picking files from a panel: a browser that lists a folder for a list control, and a requester that
// asks the host's file dialog. Both work on the GUI thread through the host; neither reads a file.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "GmpiGui.h"
#include "MpGuiBase2.h"
#include "TimerManager.h"

namespace kx::filebrowser {
enum Pin : int { Folder, Extension, HideExtensions, Rescan, Parent, Choice, ItemList, ChosenFile, PinCount };
}
namespace kx::filereq {
enum Pin : int { FileName, Extensions, SaveMode, Open, FileChosen, PinCount };
}

// Lists a folder as a comma-separated item list (folders end in "/"), steps into a chosen folder or up
// to the parent, filters files by one extension and reports the chosen file's full path. Feeding a
// list box: item list to its items, its choice back to the choice pin.
//
// The list is in the order the system hands out the entries, unsorted. A comma is written before an
// entry is looked at, so a listing that ends with files the filter rejects ends with one comma; list
// boxes show that as no extra item. Every "," in a name is listed as "_" so the list keeps its shape.
//
// An empty folder text means the host's resource folder; a folder text that names nothing is tried
// again inside the resource folder; a folder text that names a file chooses that file and lists the
// folder it lies in. Paths are compared and joined as bytes: names that are not valid UTF-8 show with
// U+FFFD in the list and cannot be chosen by writing their path.
class KX_FileBrowser : public SeGuiInvisibleBase, public TimerClient {
public:
    KX_FileBrowser();

    void onSetPath();
    // Takes effect at the next listing.
    void onSetExt();
    void onSetRescan();
    void onSetParent();
    void onSetChoice();
    void onSetFNameOut();
    // Clears the choice; the browser starts no timer of its own.
    bool OnTimer() override;

    StringGuiPin folder;
    StringGuiPin extension;
    MpGuiPin<bool> hideExtensions;
    MpGuiPin<bool> rescan;
    MpGuiPin<bool> parent;
    MpGuiPin<int> choice;
    StringGuiPin itemList;
    StringGuiPin chosenFile;

private:
    // Lists the current folder into the entries and the item list pin. A folder that cannot be opened
    // lists nothing; an error part way ends the listing with what was found before it.
    void scan();
    // The host's resource folder (its answer for the empty name), or empty without a host.
    std::filesystem::path resourceFolder() const;
    void showFolder(const std::filesystem::path& path);
    void clearChoice();

    // One listed item: its full path as the folder iterator gave it, and whether it is a folder
    // (following symbolic links), as found when it was listed.
    struct Entry {
        std::string path;
        bool folder;
    };

    std::filesystem::path currentPath_;
    std::vector<Entry> entries_;
    int32_t entryCount_ = 0;
    std::wstring filter_;  // empty, or "." and the extension
    // The filter as the bytes a file name ends with; nullopt when the filter text has values that are
    // not code points, which no file name ends with.
    std::optional<std::string> filterBytes_ = std::string();
};

// Opens the host's file dialog when its button is released (not on the press) and writes the chosen
// file's path, then pulses "file chosen". A file of a resource kind (sound fonts, images, audio, MIDI)
// that lies where the host looks for that kind is written as its bare name, so a patch keeps working
// when its resources move with it. A cancelled dialog writes nothing.
//
// One dialog at a time: a new one replaces one still open, whose answer is then ignored.
class KX_FileReq : public SeGuiInvisibleBase {
public:
    KX_FileReq();

    void onSetOpen();
    void OnFileDialogComplete(int32_t result);

    StringGuiPin fileName;
    StringGuiPin extensions;
    MpGuiPin<bool> saveMode;
    MpGuiPin<bool> open;
    MpGuiPin<bool> fileChosen;

private:
    bool previousOpen_ = false;
    GmpiGui::FileDialog dialog_;
    // Only the newest dialog's answer reaches the module, and none once it is gone.
    gmpi_gui::PendingCompletion dialogDone_;
};

// The resource kind the host files a chosen file under, by its extension (exact, case-sensitive):
// "Instrument", "Image", "Audio", "MIDI", or null for any other. The extension is what follows the last
// "." of the last path component; a name without one has none.
const char* fileResourceCategory(const std::string& path);
