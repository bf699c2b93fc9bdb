// File-name text: take a path apart into folder and file name, or join a folder and a file name. Paths
// follow the POSIX rules on every platform: the slash is the only separator and a backslash is an
// ordinary character, so C:\x\y.wav is one file name with no folder.
#pragma once

#include "MpGuiBase2.h"

namespace kx::splitfname {
enum Pin : int { Path, Folder, FileName, PinCount };
}
namespace kx::appendfname {
enum Pin : int { Folder, FileName, Path, PinCount };
}

// /a/b/c.wav gives /a/b and c.wav; c.wav gives an empty folder; /a/b/ gives /a/b and an empty name (the
// trailing slash leaves an empty last component); / gives / and an empty name. The folder is written
// before the file name.
class KX_SplitFName : public SeGuiInvisibleBase {
public:
    KX_SplitFName();
    // A text holding values that are not Unicode code points writes nothing.
    void onSetIn();

    StringGuiPin path;
    StringGuiPin folder;
    StringGuiPin fileName;
};

// Joins with a slash unless the folder already ends with one; a file name that is itself absolute
// replaces the folder. With only one input non-empty, that input is passed through unchanged.
class KX_AppendFName : public SeGuiInvisibleBase {
public:
    KX_AppendFName();
    // A text holding values that are not Unicode code points writes nothing.
    void onSetEither();

    StringGuiPin folder;
    StringGuiPin fileName;
    StringGuiPin path;
};
