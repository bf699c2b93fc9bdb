// The panel in patches: the "panel" and "place" directives, the pointer, snapshot, image and dialog
// steps, and the extension that gives every GUI half a graphics host.
//
//   panel 200 120 #303030
//   place knob 10 10            # measured with the panel's remaining size
//   place label 60 10 120 24    # measured with 120 x 24 available
//   scenario
//   drag 30 60 30 20            # down, moves, up (panel coordinates)
//   snapshot after-drag         # <out>/after-drag.png with "run --out DIR"
//   expect-image reference.png  # compared with a PNG beside the patch
#include <cairo.h>

#include <cmath>
#include <cstdlib>
#include <set>
#include <sstream>

#include "gui/Graphics.h"
#include "patch/Registry.h"
#include "render/Png.h"
#include "session/PanelSide.h"
#include "session/Session.h"

namespace kxhost {

namespace {

const char* const kPanelKey = "graphics.panel";

PanelDecl& panelDecl(Patch& patch) {
    auto& slot = patch.extensions[kPanelKey];
    if (!slot.has_value())
        slot = PanelDecl{};
    return std::any_cast<PanelDecl&>(slot);
}

const PanelDecl& panelDecl(const Patch& patch) {
    static const PanelDecl none;
    auto it = patch.extensions.find(kPanelKey);
    return it == patch.extensions.end() ? none : std::any_cast<const PanelDecl&>(it->second);
}

float number(Parser& p, const Line& line, const Token& t) {
    char* end = nullptr;
    const float v = std::strtof(t.raw.c_str(), &end);
    if (t.raw.empty() || *end != '\0' || !std::isfinite(v))
        p.fail(line, t.raw + " is not a number");
    return v;
}

std::string text(const Token& t) { return t.quoted ? t.text : t.raw; }

std::string point(float x, float y) {
    std::ostringstream s;
    s << x << "," << y;
    return s.str();
}

class GraphicsExtension final : public Extension {
public:
    void instanceCreated(Session& s, Instance& inst) override {
        make(s);
        if (!inst.gui)
            return;
        GraphicsHost& host = panel->addInstance(inst.name());
        inst.offer(gmpi_gui::SE_IID_GRAPHICS_HOST, &host);
        inst.offer(gmpi_gui::SE_IID_GRAPHICS_HOST_BASE, &host);
        void* face = nullptr;
        if (inst.gui->queryInterface(gmpi_gui_api::SE_IID_GRAPHICS_MPGUI2, &face) == gmpi::MP_OK && face) {
            host.graphics = static_cast<gmpi_gui_api::IMpGraphics2*>(face);
            host.hasHitTest = true;
        } else if (inst.gui->queryInterface(gmpi_gui_api::SE_IID_GRAPHICS_MPGUI, &face) == gmpi::MP_OK && face) {
            host.graphics = static_cast<gmpi_gui_api::IMpGraphics*>(face);
        }
    }
    void started(Session& s) override {
        make(s);
        for (const auto& place : panelDecl(s.patch()).placements) {
            if (s.patch().instance(place.instance)->later)
                continue;
            GraphicsHost* h = panel->host(place.instance);
            if (!h || !h->graphics)
                s.warn("place " + place.instance + ": not a graphic module, not drawn");
        }
    }
    void instanceReleasing(Session&, Instance& inst) override {
        if (panel)
            panel->releaseInstance(inst.name());
    }
    // Dialogs answered while a module's call was running complete once the step's calls have returned.
    void stepDone(Session&) override {
        if (panel)
            panel->runCompletions();
    }
    void finishing(Session&) override {
        if (panel)
            panel->releaseModules();
    }

    std::unique_ptr<Panel> panel;

private:
    void make(Session& s) {
        if (!panel)
            panel = std::make_unique<Panel>(panelDecl(s.patch()), [&s](const std::string& line) { s.trace(line); });
    }
};

Panel& panelOf(Session& s) {
    Panel* panel = findPanel(s);
    if (!panel)
        throw HostError("the panel is not set up");  // made at start at the latest, which steps never precede
    return *panel;
}

// panel W H [#RRGGBB | #AARRGGBB]
void panelDirective(Parser& p, const Line& line) {
    p.arity(line, 3, 4, "panel WIDTH HEIGHT [#RRGGBB]");
    PanelDecl& decl = panelDecl(p.patch);
    decl.size = GmpiDrawing_API::MP1_SIZE{number(p, line, line.tokens[1]), number(p, line, line.tokens[2])};
    if (decl.size->width < 1 || decl.size->height < 1 || decl.size->width > 8192 || decl.size->height > 8192)
        p.fail(line, "the panel must be between 1 and 8192 units each way");
    if (line.tokens.size() > 3) {
        const std::string c = text(line.tokens[3]);
        char* end = nullptr;
        const unsigned long v = c.size() > 1 && c[0] == '#' ? std::strtoul(c.c_str() + 1, &end, 16) : 0;
        if (!end || *end != '\0' || (c.size() != 7 && c.size() != 9))
            p.fail(line, "colours are written #RRGGBB or #AARRGGBB");
        decl.background = static_cast<uint32_t>(c.size() == 7 ? 0xFF000000ul | v : v);
    }
}

// place NAME X Y [W H]
void placeDirective(Parser& p, const Line& line) {
    p.arity(line, 4, 6, "place INSTANCE X Y [WIDTH HEIGHT]");
    if (line.tokens.size() == 5)
        p.fail(line, "give both WIDTH and HEIGHT, or neither");
    Placement place;
    place.instance = line.tokens[1].raw;
    const InstanceDecl* inst = p.patch.instance(place.instance);
    if (!inst)
        p.fail(line, "no instance named '" + place.instance + "' (declare it before placing it)");
    if (!inst->gui)
        p.fail(line, place.instance + " has no gui side to draw");
    PanelDecl& decl = panelDecl(p.patch);
    // The names placed so far, beside the declaration: checking each line against every earlier one
    // would make parsing quadratic.
    auto& placed = p.patch.extensions["panel.placed"];
    if (!placed.has_value())
        placed = std::set<std::string>{};
    if (!std::any_cast<std::set<std::string>&>(placed).insert(place.instance).second)
        p.fail(line, place.instance + " is placed twice");
    place.x = number(p, line, line.tokens[2]);
    place.y = number(p, line, line.tokens[3]);
    if (line.tokens.size() == 6)
        place.size = GmpiDrawing_API::MP1_SIZE{number(p, line, line.tokens[4]), number(p, line, line.tokens[5])};
    decl.placements.push_back(place);
}

// An instance named by the token at index, or empty when the line is shorter.
std::string optionalInstance(Parser& p, const Line& line, size_t index) {
    const std::string instance = line.tokens.size() > index ? line.tokens[index].raw : "";
    if (!instance.empty() && !p.patch.instance(instance))
        p.fail(line, "no instance named '" + instance + "'");
    return instance;
}

int32_t defaultFlags() { return gmpi_gui_api::GG_POINTER_FLAG_FIRSTBUTTON; }

void tracePointer(Session& s, const char* what, float x, float y, const std::string& taker) {
    s.trace(std::string("pointer ") + what + " " + point(x, y) + " -> " + (taker.empty() ? "(nothing)" : taker));
}

// pointer down|move|up X Y [FLAGS]
Action compilePointer(Parser& p, const Line& line) {
    p.arity(line, 4, 5, "pointer down|move|up X Y [FLAGS]");
    const std::string& kind = line.tokens[1].raw;
    Panel::Pointer k;
    if (kind == "down")
        k = Panel::Pointer::Down;
    else if (kind == "move")
        k = Panel::Pointer::Move;
    else if (kind == "up")
        k = Panel::Pointer::Up;
    else
        p.fail(line, "pointer events are down, move or up");
    const float x = number(p, line, line.tokens[2]), y = number(p, line, line.tokens[3]);
    const int32_t flags = line.tokens.size() > 4 ? p.integer(line, line.tokens[4]) : defaultFlags();
    return [k, x, y, flags, kind](Session& s) {
        Panel& panel = panelOf(s);
        tracePointer(s, kind.c_str(), x, y, panel.pointer(k, flags, {x, y}));
        panel.runCompletions();
    };
}

// drag X1 Y1 X2 Y2 [STEPS] [FLAGS]: a press, STEPS moves (default 4) along the line, a release.
Action compileDrag(Parser& p, const Line& line) {
    p.arity(line, 5, 7, "drag X1 Y1 X2 Y2 [STEPS] [FLAGS]");
    const float x1 = number(p, line, line.tokens[1]), y1 = number(p, line, line.tokens[2]);
    const float x2 = number(p, line, line.tokens[3]), y2 = number(p, line, line.tokens[4]);
    const int steps = line.tokens.size() > 5 ? p.integer(line, line.tokens[5]) : 4;
    if (steps < 1 || steps > 1000)
        p.fail(line, "a drag has 1 to 1000 moves");
    const int32_t flags = line.tokens.size() > 6 ? p.integer(line, line.tokens[6]) : defaultFlags();
    return [=](Session& s) {
        Panel& panel = panelOf(s);
        tracePointer(s, "down", x1, y1, panel.pointer(Panel::Pointer::Down, flags, {x1, y1}));
        for (int i = 1; i <= steps; ++i) {
            const float t = static_cast<float>(i) / static_cast<float>(steps);
            const float x = x1 + (x2 - x1) * t, y = y1 + (y2 - y1) * t;
            panel.pointer(Panel::Pointer::Move, flags, {x, y});
        }
        tracePointer(s, "up", x2, y2, panel.pointer(Panel::Pointer::Up, flags, {x2, y2}));
        panel.runCompletions();
    };
}

// snapshot NAME [INSTANCE]: NAME.png in the output folder, of the panel or of one instance.
Action compileSnapshot(Parser& p, const Line& line) {
    p.arity(line, 2, 3, "snapshot NAME [INSTANCE]");
    const std::string name = text(line.tokens[1]);
    if (name.empty() || name.find('/') != std::string::npos || name.find('\\') != std::string::npos)
        p.fail(line, "a snapshot name is a plain file name without folders");
    const std::string instance = optionalInstance(p, line, 2);
    const Location where = line.where;
    return [=](Session& s) {
        cairo_surface_t* image = panelOf(s).render(instance);
        if (!image) {
            s.fail(where, "snapshot: " + instance + " is not placed on the panel");
            return;
        }
        const std::filesystem::path& folder = s.outputDir();
        if (folder.empty()) {
            s.trace("snapshot " + name + " rendered (not written: no --out folder)");
        } else {
            const std::filesystem::path file = folder / (name + ".png");
            if (cairo_surface_write_to_png(image, file.string().c_str()) != CAIRO_STATUS_SUCCESS)
                s.fail(where, "snapshot: cannot write " + file.string());
            else
                s.trace("snapshot " + file.string());
        }
        cairo_surface_destroy(image);
    };
}

// expect-image REFERENCE.png [INSTANCE]: the rendering matches a reference PNG (beside the patch) with
// a small tolerance: a channel may differ by up to 24 in 255, and up to 1 pixel in 1000 may differ more.
Action compileExpectImage(Parser& p, const Line& line) {
    p.arity(line, 2, 3, "expect-image REFERENCE.png [INSTANCE]");
    std::filesystem::path reference = text(line.tokens[1]);
    if (reference.is_relative())
        reference = std::filesystem::absolute(p.patch.file).parent_path() / reference;
    const std::string instance = optionalInstance(p, line, 2);
    const Location where = line.where;
    return [=](Session& s) {
        cairo_surface_t* image = panelOf(s).render(instance);
        cairo_surface_t* expected = cairo_image_surface_create_from_png(reference.string().c_str());
        const long differing = differingPixels(image, expected, 24);
        const long total =
            image ? static_cast<long>(cairo_image_surface_get_width(image)) * cairo_image_surface_get_height(image) : 0;
        if (differing < 0 || differing * 1000 > total) {
            std::string why = differing < 0
                                  ? "cannot be compared (missing, unreadable or another size)"
                                  : std::to_string(differing) + " of " + std::to_string(total) + " pixels differ";
            if (image && !s.outputDir().empty()) {
                const auto actual = s.outputDir() / (reference.stem().string() + ".actual.png");
                cairo_surface_write_to_png(image, actual.string().c_str());
                why += "; the rendering is in " + actual.string();
            }
            s.fail(where, "image " + reference.filename().string() + ": " + why);
        } else {
            s.trace("image matches " + reference.filename().string() + " (" + std::to_string(differing) +
                    " pixels differ)");
        }
        if (image)
            cairo_surface_destroy(image);
        cairo_surface_destroy(expected);
    };
}

// file-dialog [INSTANCE] answer PATH | file-dialog [INSTANCE] cancel, and the same for text-edit
Action compileAnswer(Parser& p, const Line& line, bool fileDialog) {
    const std::string usage = fileDialog ? "file-dialog [INSTANCE] answer PATH | file-dialog [INSTANCE] cancel"
                                         : "text-edit [INSTANCE] answer TEXT | text-edit [INSTANCE] cancel";
    p.arity(line, 2, 4, usage.c_str());
    size_t next = 1;
    std::string instance;
    if (line.tokens[1].raw != "answer" && line.tokens[1].raw != "cancel") {
        instance = optionalInstance(p, line, 1);
        if (!p.patch.instance(instance)->gui)
            p.fail(line, instance + " has no gui side to show a dialog");
        next = 2;
    }
    ScriptedAnswer answer;
    const size_t rest = line.tokens.size() - next;
    if (rest == 2 && line.tokens[next].raw == "answer")
        answer = text(line.tokens[next + 1]);
    else if (!(rest == 1 && line.tokens[next].raw == "cancel"))
        p.fail(line, "usage: " + usage);
    return [instance, answer, fileDialog](Session& s) {
        Panel& panel = panelOf(s);
        if (fileDialog)
            panel.answerFileDialog(instance, answer);
        else
            panel.answerTextEdit(instance, answer);
    };
}

// expect-invalidated INSTANCE N: repaints the instance asked for since the previous expect-invalidated of
// it (or the start).
Action compileExpectInvalidated(Parser& p, const Line& line) {
    p.arity(line, 3, 3, "expect-invalidated INSTANCE N");
    const std::string instance = line.tokens[1].raw;
    if (!p.patch.instance(instance))
        p.fail(line, "no instance named '" + instance + "'");
    const int n = p.integer(line, line.tokens[2]);
    const Location where = line.where;
    return [=](Session& s) {
        GraphicsHost* h = panelOf(s).host(instance);
        const int got = h ? h->invalidations : 0;
        if (h)
            h->invalidations = 0;
        if (got != n)
            s.fail(where, "expectation failed: " + instance + " asked for " + std::to_string(got) +
                              " repaint(s), expected " + std::to_string(n));
    };
}

Action compileFileAnswer(Parser& p, const Line& line) { return compileAnswer(p, line, true); }
Action compileTextAnswer(Parser& p, const Line& line) { return compileAnswer(p, line, false); }

}  // namespace

Panel* findPanel(Session& s) {
    auto* e = s.extension<GraphicsExtension>();
    return e ? e->panel.get() : nullptr;
}

bool hasPanel(const Patch& patch) {
    const PanelDecl& decl = panelDecl(patch);
    return decl.size || !decl.placements.empty();
}

namespace {

const bool registered =
    Extensions::add([] { return std::make_unique<GraphicsExtension>(); }) && Directives::add("panel", panelDirective) &&
    Directives::add("place", placeDirective) && Steps::add("pointer", compilePointer) &&
    Steps::add("drag", compileDrag) && Steps::add("snapshot", compileSnapshot, true) &&
    Steps::add("expect-image", compileExpectImage, true) && Steps::add("file-dialog", compileFileAnswer) &&
    Steps::add("text-edit", compileTextAnswer) && Steps::add("expect-invalidated", compileExpectInvalidated, true);

}  // namespace

}  // namespace kxhost
