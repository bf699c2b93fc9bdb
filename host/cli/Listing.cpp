#include "cli/Listing.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <iomanip>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "patch/Error.h"
#include "patch/Text.h"

namespace kxhost {

namespace {

using nlohmann::ordered_json;

// What a described side looks like from the bundle: "yes", "MISSING" (described, not created),
// "undescribed" (created, not described) or "-".
struct SideState {
    bool described = false;
    bool created = false;

    const char* word() const { return described ? (created ? "yes" : "MISSING") : (created ? "undescribed" : "-"); }
    bool missing() const { return described && !created; }
};

SideState sideState(Bundle& bundle, const ModuleInfo& m, Side side) {
    return {m.side(side) != nullptr, bundle.creates(m.id, side)};
}

// A default as the description would write it. A float goes through its shortest decimal form, so that
// 0.01 is written 0.01 and not as the double nearest the float.
ordered_json defaultJson(const Value& v) {
    switch (v.type()) {
        case Datatype::Int:
        case Datatype::Enum:
            return v.asInt();
        case Datatype::Float:
        case Datatype::Audio: {
            if (!std::isfinite(v.asFloat()))
                return v.format();
            char buf[32];
            const auto r = std::to_chars(buf, buf + sizeof buf, v.asFloat());
            return std::stod(std::string(buf, r.ptr));
        }
        case Datatype::Bool:
            return v.asBool();
        case Datatype::Text:
            return narrow(v.text());
        case Datatype::Blob:
        case Datatype::Midi: {
            static const char digits[] = "0123456789abcdef";
            std::string hex;
            for (uint8_t b : v.blob()) {
                hex += digits[b >> 4];
                hex += digits[b & 15];
            }
            return hex;
        }
    }
    return nullptr;
}

ordered_json pinsJson(const SideInfo& side) {
    ordered_json pins = ordered_json::array();
    for (const auto& p : side.pins) {
        ordered_json pin = {{"index", p.index},
                            {"name", p.name},
                            {"datatype", datatypeName(p.type)},
                            {"direction", p.output ? "out" : "in"}};
        if (p.defaultValue)
            pin["default"] = defaultJson(*p.defaultValue);
        if (p.autoDuplicate)
            pin["autoDuplicate"] = true;
        if (!p.echo)
            pin["echo"] = false;
        pin["purpose"] = p.purpose;
        pins.push_back(std::move(pin));
    }
    return pins;
}

ordered_json moduleJson(Bundle& bundle, const ModuleInfo& m) {
    const SideState gui = sideState(bundle, m, Side::Gui);
    const SideState dsp = sideState(bundle, m, Side::Dsp);
    ordered_json j = {{"id", m.id},
                      {"name", m.name},
                      {"category", m.category},
                      {"summary", m.summary},
                      {"guide", m.guide},
                      {"description", m.file.filename().string()},
                      {"graphic", gui.created && bundle.isGraphic(m.id)},
                      {"created", {{"gui", gui.created}, {"dsp", dsp.created}}}};
    if (m.gui)
        j["gui"] = {{"pins", pinsJson(*m.gui)}};
    if (m.dsp)
        j["dsp"] = {{"pins", pinsJson(*m.dsp)}};
    return j;
}

// Rows of cells printed as columns, each as wide as its widest cell; the last column is not padded.
void printColumns(std::ostream& out, const std::vector<std::vector<std::string>>& rows, const std::string& indent) {
    std::vector<size_t> widths;
    for (const auto& row : rows)
        for (size_t i = 0; i < row.size(); ++i) {
            widths.resize(std::max(widths.size(), row.size()));
            widths[i] = std::max(widths[i], row[i].size());
        }
    for (const auto& row : rows) {
        std::string line = indent;
        for (size_t i = 0; i < row.size(); ++i) {
            line += row[i];
            if (i + 1 < row.size())
                line += std::string(widths[i] - row[i].size() + 2, ' ');
        }
        while (!line.empty() && line.back() == ' ')
            line.pop_back();
        out << line << "\n";
    }
}

std::string defaultText(const PinInfo& p) { return p.defaultValue ? p.defaultValue->format() : ""; }

void printPins(std::ostream& out, const char* title, const SideInfo& side, const SideState& state) {
    out << "\n"
        << title << " pins (" << (state.created ? "the bundle creates this side" : "MISSING from the bundle") << ")\n";
    std::vector<std::vector<std::string>> rows = {{"#", "name", "type", "dir", "default", "purpose"}};
    for (const auto& p : side.pins) {
        std::string purpose = p.purpose;
        if (p.autoDuplicate)
            purpose += " (repeated on demand)";
        if (!p.echo)
            purpose += " (never echoed)";
        rows.push_back(
            {std::to_string(p.index), p.name, datatypeName(p.type), p.output ? "out" : "in", defaultText(p), purpose});
    }
    printColumns(out, rows, "  ");
}

}  // namespace

int listModules(Bundle& bundle, const Catalogue& catalogue, bool asJson, std::ostream& out, std::ostream& err) {
    bool missing = false;
    if (asJson) {
        ordered_json modules = ordered_json::array();
        for (const auto& [id, m] : catalogue.modules()) {
            missing = missing || sideState(bundle, m, Side::Gui).missing() || sideState(bundle, m, Side::Dsp).missing();
            modules.push_back(moduleJson(bundle, m));
        }
        out << ordered_json{{"modules", modules}}.dump(1) << "\n";
    } else {
        std::vector<std::vector<std::string>> rows = {{"identifier", "gui", "dsp", "category", "summary"}};
        for (const auto& [id, m] : catalogue.modules()) {
            const SideState gui = sideState(bundle, m, Side::Gui);
            const SideState dsp = sideState(bundle, m, Side::Dsp);
            missing = missing || gui.missing() || dsp.missing();
            rows.push_back({id, gui.word(), dsp.word(), m.category.empty() ? "-" : m.category,
                            m.summary.empty() ? m.name : m.summary});
        }
        printColumns(out, rows, "");
        out << "\n" << catalogue.modules().size() << " identifiers described\n";
    }
    if (missing)
        err << "kxhost: the bundle does not create every described side (MISSING)\n";
    return missing ? 1 : 0;
}

int describeModule(Bundle& bundle, const Catalogue& catalogue, const std::string& id, bool asJson, std::ostream& out) {
    const ModuleInfo* m = catalogue.find(id);
    if (!m)
        throw HostError("no description of " + id + " (kxhost list shows the described identifiers)");
    if (asJson) {
        out << moduleJson(bundle, *m).dump(1) << "\n";
        return 0;
    }
    const SideState gui = sideState(bundle, *m, Side::Gui);
    const SideState dsp = sideState(bundle, *m, Side::Dsp);
    out << m->id << " (" << m->name << ")\n";
    std::vector<std::vector<std::string>> facts;
    if (!m->category.empty())
        facts.push_back({"category", m->category});
    if (!m->summary.empty())
        facts.push_back({"summary", m->summary});
    facts.push_back({"graphic", gui.created && bundle.isGraphic(m->id) ? "yes: a panel can place it" : "no"});
    facts.push_back({"description", m->file.string()});
    printColumns(out, facts, "  ");
    if (m->gui)
        printPins(out, "gui", *m->gui, gui);
    if (m->dsp)
        printPins(out, "dsp", *m->dsp, dsp);
    if (gui.word() == std::string("undescribed") || dsp.word() == std::string("undescribed"))
        out << "\nthe bundle also creates a side the description does not declare\n";
    return gui.missing() || dsp.missing() ? 1 : 0;
}

}  // namespace kxhost
