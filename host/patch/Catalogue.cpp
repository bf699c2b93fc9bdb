#include "patch/Catalogue.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <fstream>
#include <limits>
#include <sstream>
#include <unordered_set>

#include <nlohmann/json.hpp>

#include "patch/Error.h"
#include "patch/Text.h"

namespace kxhost {

using nlohmann::json;

const PinInfo* SideInfo::byIndex(int index) const {
    for (const auto& p : pins)
        if (p.index == index)
            return &p;
    return nullptr;
}

const PinInfo* SideInfo::byName(const std::string& name) const {
    for (const auto& p : pins)
        if (p.name == name)
            return &p;
    return nullptr;
}

std::optional<SideInfo> resizedSide(const SideInfo& described, int count) {
    const auto have = static_cast<int>(described.pins.size());
    const bool open = have > 0 && described.pins.back().autoDuplicate;
    if (count < 0 || (count > have && !open))
        return std::nullopt;
    SideInfo side;
    side.pins.assign(described.pins.begin(), described.pins.begin() + std::min(count, have));
    for (int copy = 1; have + copy <= count; ++copy) {
        PinInfo pin = described.pins.back();
        pin.index += copy;
        pin.name.append(1, ' ').append(std::to_string(copy + 1));
        side.pins.push_back(std::move(pin));
    }
    return side;
}

std::string pinNameForPatch(const std::string& name) {
    const bool plain = !name.empty() && !std::isdigit(static_cast<unsigned char>(name[0])) &&
                       std::all_of(name.begin(), name.end(), [](char c) {
                           return std::isalnum(static_cast<unsigned char>(c)) || c == '_' || c == '-';
                       });
    return plain ? name : kxhost::quoted(name);
}

namespace {

// A JSON integer (signed or unsigned) within [low, high].
std::optional<int64_t> integerIn(const json& j, int64_t low, int64_t high) {
    if (j.is_number_unsigned()) {
        const auto v = j.get<uint64_t>();
        if (v > static_cast<uint64_t>(high))
            return std::nullopt;
        return static_cast<int64_t>(v);
    }
    if (!j.is_number_integer())
        return std::nullopt;
    const auto v = j.get<int64_t>();
    if (v < low || v > high)
        return std::nullopt;
    return v;
}

std::optional<Value> defaultFromJson(Datatype type, const json& j) {
    switch (type) {
        case Datatype::Int:
        case Datatype::Enum:
            if (const auto v = integerIn(j, INT32_MIN, INT32_MAX))
                return Value::ofInt(static_cast<int32_t>(*v), type);
            break;
        case Datatype::Float:
        case Datatype::Audio:
            // A number beyond the float range would be narrowed to infinity: the description is wrong.
            if (j.is_number()) {
                const auto v = j.get<double>();
                if (std::isfinite(v) && std::fabs(v) <= std::numeric_limits<float>::max())
                    return Value::ofFloat(static_cast<float>(v), type);
            }
            break;
        case Datatype::Bool:
            if (j.is_boolean())
                return Value::ofBool(j.get<bool>());
            break;
        case Datatype::Text:
            if (j.is_string())
                return Value::ofText(widen(j.get<std::string>()));
            break;
        case Datatype::Blob:
        case Datatype::Midi:
            if (j.is_string()) {
                const std::string hex = j.get<std::string>();
                if (hex.size() % 2 != 0 || hex.find_first_not_of("0123456789abcdefABCDEF") != std::string::npos)
                    return std::nullopt;
                Bytes b;
                for (size_t i = 0; i < hex.size(); i += 2)
                    b.push_back(static_cast<uint8_t>(std::stoi(hex.substr(i, 2), nullptr, 16)));
                return Value::ofBlob(std::move(b), type);
            }
            break;
    }
    return std::nullopt;
}

// An optional text field: "" when absent; anything but a string is an error.
std::string optionalText(const json& j, const char* key, const std::string& where) {
    if (!j.contains(key))
        return {};
    if (!j[key].is_string())
        throw HostError(where + ": \"" + key + "\" must be a string");
    return j[key].get<std::string>();
}

using Purposes = std::map<std::string, std::string>;

SideInfo readSide(const json& j, const std::string& where, const Purposes& purposes) {
    if (!j.is_object() || !j.contains("pins") || !j["pins"].is_array())
        throw HostError(where + ": needs a \"pins\" array");
    SideInfo side;
    std::unordered_set<std::string> names;
    for (const auto& p : j["pins"]) {
        const std::string at = where + " pin " + std::to_string(side.pins.size());
        if (!p.is_object())
            throw HostError(at + ": is not an object");
        PinInfo pin;
        const auto index = p.contains("index") ? integerIn(p["index"], 0, INT32_MAX) : std::nullopt;
        if (!index)
            throw HostError(at + ": needs a non-negative integer \"index\"");
        pin.index = static_cast<int>(*index);
        if (!side.pins.empty() && pin.index <= side.pins.back().index)
            throw HostError(at + ": index " + std::to_string(pin.index) + " is not above the previous one");
        if (!p.contains("name") || !p["name"].is_string() || p["name"].get<std::string>().empty())
            throw HostError(at + ": needs a \"name\"");
        pin.name = p["name"].get<std::string>();
        if (!names.insert(pin.name).second)
            throw HostError(at + ": the name \"" + pin.name + "\" is used twice");
        const auto type = p.contains("datatype") && p["datatype"].is_string()
                              ? datatypeFromName(p["datatype"].get<std::string>())
                              : std::nullopt;
        if (!type)
            throw HostError(at + " (" + pin.name +
                            "): \"datatype\" must be one of text, bool, float, int, blob, enum, audio, midi");
        pin.type = *type;
        const std::string direction =
            p.contains("direction") && p["direction"].is_string() ? p["direction"].get<std::string>() : "";
        if (direction != "in" && direction != "out")
            throw HostError(at + " (" + pin.name + "): \"direction\" must be \"in\" or \"out\"");
        pin.output = direction == "out";
        if (p.contains("default")) {
            pin.defaultValue = defaultFromJson(pin.type, p["default"]);
            if (!pin.defaultValue)
                throw HostError(at + " (" + pin.name + "): \"default\" " + p["default"].dump() + " is not a " +
                                datatypeName(pin.type) + " value");
        }
        if (p.contains("autoDuplicate")) {
            if (!p["autoDuplicate"].is_boolean())
                throw HostError(at + " (" + pin.name + "): \"autoDuplicate\" must be true or false");
            pin.autoDuplicate = p["autoDuplicate"].get<bool>();
        }
        if (p.contains("echo")) {
            if (!p["echo"].is_boolean())
                throw HostError(at + " (" + pin.name + "): \"echo\" must be true or false");
            pin.echo = p["echo"].get<bool>();
        }
        pin.purpose = optionalText(p, "purpose", at + " (" + pin.name + ")");
        if (pin.purpose.empty())
            if (auto it = purposes.find(pin.name); it != purposes.end())
                pin.purpose = it->second;
        side.pins.push_back(std::move(pin));
    }
    for (size_t i = 0; i + 1 < side.pins.size(); ++i)
        if (side.pins[i].autoDuplicate)
            throw HostError(where + " (" + side.pins[i].name + "): only the last pin may be \"autoDuplicate\"");
    return side;
}

// The library's message without its "[json.exception.KIND.N] " prefix (a parse error's names the line
// and column).
std::string libraryMessage(const json::exception& e) {
    std::string what = e.what();
    if (const auto close = what.find("] "); what.rfind("[json.exception.", 0) == 0 && close != std::string::npos)
        what = what.substr(close + 2);
    if (what.rfind("parse error ", 0) == 0)
        what = what.substr(12);
    return what;
}

}  // namespace

void Catalogue::addText(const std::string& text, const std::filesystem::path& file) {
    const std::string name = file.string();
    json doc;
    try {
        doc = json::parse(text);
    } catch (const json::exception& e) {
        // Syntax errors, and numbers beyond the double range.
        throw HostError(name + ": malformed JSON: " + libraryMessage(e));
    }
    if (!doc.is_object() || !doc.contains("modules") || !doc["modules"].is_array())
        throw HostError(name + ": needs a top-level object with a \"modules\" array");
    // The family's shared pin purposes, by side and pin name.
    std::map<std::string, Purposes> purposes;
    if (doc.contains("purposes")) {
        const json& all = doc["purposes"];
        if (!all.is_object())
            throw HostError(name + ": \"purposes\" must map \"gui\" and \"dsp\" to objects of texts");
        for (const auto& [side, texts] : all.items()) {
            if ((side != "gui" && side != "dsp") || !texts.is_object())
                throw HostError(name + ": \"purposes\" must map \"gui\" and \"dsp\" to objects of texts");
            for (const auto& [pin, text] : texts.items()) {
                if (!text.is_string())
                    throw HostError(name + ": the purpose of " + side + " pin \"" + pin + "\" must be a string");
                purposes[side][pin] = text.get<std::string>();
            }
        }
    }
    for (const auto& m : doc["modules"]) {
        if (!m.is_object() || !m.contains("id") || !m["id"].is_string() || m["id"].get<std::string>().empty())
            throw HostError(name + ": every module needs an \"id\"");
        ModuleInfo info;
        info.id = m["id"].get<std::string>();
        info.file = file;
        const std::string where = name + ": " + info.id;
        info.name = m.contains("name") ? optionalText(m, "name", where) : info.id;
        info.category = optionalText(m, "category", where);
        info.summary = optionalText(m, "summary", where);
        info.guide = optionalText(m, "guide", where);
        if (m.contains("gui"))
            info.gui = readSide(m["gui"], where + " gui", purposes["gui"]);
        if (m.contains("dsp"))
            info.dsp = readSide(m["dsp"], where + " dsp", purposes["dsp"]);
        if (!info.gui && !info.dsp)
            throw HostError(where + ": describes neither a \"gui\" nor a \"dsp\" side");
        if (auto it = modules_.find(info.id); it != modules_.end())
            throw HostError(where + ": already described in " + it->second.file.string());
        modules_.emplace(info.id, std::move(info));
    }
}

void Catalogue::addFile(const std::filesystem::path& file) {
    std::ifstream in(file, std::ios::binary);
    if (!in)
        throw HostError(file.string() + ": cannot be read");
    std::ostringstream text;
    text << in.rdbuf();
    addText(text.str(), file);
}

Catalogue Catalogue::load(const std::filesystem::path& dir) {
    std::error_code ec;
    if (!std::filesystem::is_directory(dir, ec))
        throw HostError("descriptions folder " + dir.string() + " does not exist");
    std::vector<std::filesystem::path> files;
    for (const auto& entry : std::filesystem::directory_iterator(dir, ec))
        if (entry.path().extension() == ".json")
            files.push_back(entry.path());
    std::sort(files.begin(), files.end());
    Catalogue catalogue;
    for (const auto& f : files)
        catalogue.addFile(f);
    return catalogue;
}

const ModuleInfo* Catalogue::find(const std::string& id) const {
    auto it = modules_.find(id);
    return it == modules_.end() ? nullptr : &it->second;
}

}  // namespace kxhost
