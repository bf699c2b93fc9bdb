// Module descriptions: what the host knows of each identifier's pins (the bundle's code knows pins only
// by index). Read from JSON files, one per module family:
//   {"purposes": {"gui": {"Value A": "the first operand", ...}, "dsp": {...}},
//    "modules": [{"id": "KX_CmpInt", "name": "Compare Int", "category": "Logic",
//                 "summary": "one line", "guide": "logic.md",
//                 "gui": {"pins": [{"index": 0, "name": "Value A", "datatype": "int",
//                                   "direction": "in", "default": 0, "purpose": "..."}, ...]},
//                 (optional per pin: "autoDuplicate": true on the last pin, "echo": false)
//                 "dsp": {"pins": [...]}}]}
// The texts (category, summary, guide, purposes) are for people and tools and are all optional. A pin's
// purpose is its own "purpose", else the file's "purposes" entry for its side and name: pins of one
// name on one side of a family mean the same thing.
#pragma once

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "patch/Value.h"

namespace kxhost {

enum class Side { Gui, Dsp };

inline const char* sideName(Side side) { return side == Side::Gui ? "gui" : "dsp"; }
// The factory's sub-type for a side.
inline int32_t subType(Side side) { return side == Side::Gui ? 2 : 0; }

struct PinInfo {
    int index = 0;
    std::string name;
    Datatype type = Datatype::Int;
    bool output = false;
    std::optional<Value> defaultValue;
    // The host adds copies of this pin (the last one) at the following indexes as the user asks.
    bool autoDuplicate = false;
    // False ("echo": false) for a pin that reads every update as news from outside: the host must not
    // deliver the module's own transmissions on it back into it.
    bool echo = true;
    std::string purpose;
};

struct SideInfo {
    std::vector<PinInfo> pins;  // in index order

    const PinInfo* byIndex(int index) const;
    const PinInfo* byName(const std::string& name) const;
};

struct ModuleInfo {
    std::string id;
    std::string name;
    std::string category;
    std::string summary;
    std::string guide;           // a page about the module's family, relative to the module pages
    std::filesystem::path file;  // the description it came from
    std::optional<SideInfo> gui;
    std::optional<SideInfo> dsp;

    const SideInfo* side(Side s) const { return s == Side::Gui ? (gui ? &*gui : nullptr) : (dsp ? &*dsp : nullptr); }
};

class Catalogue {
public:
    // Reads every *.json in dir, in name order. Throws HostError naming the file (and, for malformed
    // JSON, the line) on anything it cannot use.
    static Catalogue load(const std::filesystem::path& dir);
    // Adds the modules of one description file; same errors.
    void addFile(const std::filesystem::path& file);
    // Parses description text as if read from file (used by addFile and by tests).
    void addText(const std::string& text, const std::filesystem::path& file);

    const ModuleInfo* find(const std::string& id) const;
    const std::map<std::string, ModuleInfo>& modules() const { return modules_; }

private:
    std::map<std::string, ModuleInfo> modules_;
};

// The side with count pins: the first ones of the description and, beyond them, copies of its last pin
// when that one is autoDuplicate (named after it: "Extra 2", "Extra 3", ...). Nullopt for a negative
// count or more pins than the description allows.
std::optional<SideInfo> resizedSide(const SideInfo& described, int count);

// A pin's name as a patch file and a trace write it: bare when it is a plain word, quoted otherwise.
std::string pinNameForPatch(const std::string& name);

}  // namespace kxhost
