// Context menus and tool tips, asked of a GUI half as a host asks when the user right-clicks or hovers.
// Points are in the instance's own coordinates (its top-left corner is 0,0).
//
//   menu INSTANCE X Y                 asks for the menu at the point (populateContextMenu); the trace
//                                     lists the items the module added to the host's sink
//   expect-menu "ITEM" ...            the last menu asked for holds exactly these items, in this order
//                                     (no items: it is empty)
//   menu-pick INSTANCE "ITEM" | N     the user chooses an item of the last menu asked of the instance, by
//                                     its text or its place (from 0): onContextMenu with the item's id
//   menu-pick INSTANCE id N           onContextMenu(N) whatever the menu held
//   tooltip INSTANCE X Y              asks for the tool tip at the point
//   expect-tooltip "TEXT" | none      the last tool tip asked for is the text, or there was none
#include <cmath>
#include <map>
#include <memory>
#include <sstream>

#include "gmpi/IMpGraphics.h"
#include "gui/HostObject.h"
#include "patch/Registry.h"
#include "session/Session.h"

namespace kxhost {

namespace {

struct Menu {
    std::string instance;
    std::vector<MenuSink::Item> items;
};

// What the scenario last asked for.
class MenuState final : public Extension {
public:
    std::map<std::string, Menu> menus;  // by instance
    std::optional<Menu> lastMenu;
    std::optional<std::optional<std::string>> lastTip;  // asked, and the text or none
};

std::string point(float x, float y) {
    std::ostringstream s;
    s << x << "," << y;
    return s.str();
}

std::string listed(const std::vector<MenuSink::Item>& items) {
    if (items.empty())
        return "(empty)";
    std::string out;
    for (const auto& item : items) {
        out += (out.empty() ? "" : ", ") + kxhost::quoted(item.text) + " (id " + std::to_string(item.id);
        out += item.flags ? ", flags " + std::to_string(item.flags) + ")" : ")";
    }
    return out;
}

float coordinate(Parser& p, const Line& line, const Token& t) {
    const Value v = p.value(line, t, Datatype::Float);
    if (!std::isfinite(v.asFloat()))
        p.fail(line, t.raw + " is not a point coordinate");
    return v.asFloat();
}

std::string guiInstance(Parser& p, const Line& line, const Token& t) {
    const InstanceDecl* decl = p.patch.instance(t.raw);
    if (!decl)
        p.fail(line, "no instance named '" + t.raw + "'");
    if (!decl->gui)
        p.fail(line, t.raw + " has no gui side to ask");
    return t.raw;
}

// The instance's GUI half now, or null (after a failure naming the step).
gmpi::IMpUserInterface2B* guiOf(Session& s, const std::string& name, const Location& where, const char* step) {
    Instance* inst = s.instance(name);
    if (!inst || !inst->gui) {
        s.fail(where, std::string(step) + ": " + name + " does not exist now");
        return nullptr;
    }
    return inst->gui;
}

// "STEP INSTANCE X Y": what the menu and tool-tip steps ask, and of whom.
struct Asked {
    std::string step;
    std::string name;
    float x, y;
    Location where;

    // The instance's GUI half now, or null (after a failure naming the step).
    gmpi::IMpUserInterface2B* gui(Session& s) const { return guiOf(s, name, where, step.c_str()); }
};

// Compiles "STEP INSTANCE X Y" into an action that runs ask with the instance's GUI half, when it exists.
template <class Ask>
Action compileAsk(Parser& p, const Line& line, Ask ask) {
    const std::string step = line.tokens[0].raw;
    p.arity(line, 4, 4, (step + " INSTANCE X Y").c_str());
    const Asked a{step, guiInstance(p, line, line.tokens[1]), coordinate(p, line, line.tokens[2]),
                  coordinate(p, line, line.tokens[3]), line.where};
    return [a, ask](Session& s) {
        if (auto* gui = a.gui(s))
            ask(s, *gui, a.name, a.x, a.y);
    };
}

// menu INSTANCE X Y
Action compileMenu(Parser& p, const Line& line) {
    return compileAsk(
        p, line, [](Session& s, gmpi::IMpUserInterface2B& gui, const std::string& name, float x, float y) {
            auto* sink = new MenuSink;
            const int32_t rc = gui.populateContextMenu(x, y, sink);
            Menu menu{name, rc == gmpi::MP_OK ? sink->items() : std::vector<MenuSink::Item>{}};
            sink->release();
            s.trace("menu " + name + " at " + point(x, y) + ": " + (rc == gmpi::MP_OK ? listed(menu.items) : "(none)"));
            auto* state = s.extension<MenuState>();
            state->menus[name] = menu;
            state->lastMenu = std::move(menu);
        });
}

// expect-menu ["ITEM" ...]
Action compileExpectMenu(Parser& p, const Line& line) {
    std::vector<std::string> expected;
    for (size_t i = 1; i < line.tokens.size(); ++i) {
        if (!line.tokens[i].quoted)
            p.fail(line, "menu items are quoted text: expect-menu \"First\" \"Second\"");
        expected.push_back(line.tokens[i].text);
    }
    const Location where = line.where;
    return [expected, where](Session& s) {
        const auto& last = s.extension<MenuState>()->lastMenu;
        if (!last) {
            s.fail(where, "expect-menu: no menu was asked for");
            return;
        }
        std::vector<std::string> got;
        for (const auto& item : last->items)
            got.push_back(item.text);
        if (got != expected)
            s.fail(where, "expectation failed: the menu of " + last->instance + " is " + listed(last->items));
        else
            s.trace("ok menu of " + last->instance + ": " + std::to_string(got.size()) + " item(s)");
    };
}

// menu-pick INSTANCE "ITEM" | menu-pick INSTANCE N | menu-pick INSTANCE id N
Action compileMenuPick(Parser& p, const Line& line) {
    p.arity(line, 3, 4, "menu-pick INSTANCE \"ITEM\" | menu-pick INSTANCE N | menu-pick INSTANCE id N");
    const std::string name = guiInstance(p, line, line.tokens[1]);
    std::optional<std::string> text;
    std::optional<int> place, id;
    if (line.tokens.size() == 4) {
        if (line.tokens[2].raw != "id")
            p.fail(line, "usage: menu-pick INSTANCE id N");
        id = p.integer(line, line.tokens[3]);
    } else if (line.tokens[2].quoted) {
        text = line.tokens[2].text;
    } else {
        place = p.integer(line, line.tokens[2]);
        if (*place < 0)
            p.fail(line, "an item's place counts from 0");
    }
    const Location where = line.where;
    return [=](Session& s) {
        auto* gui = guiOf(s, name, where, "menu-pick");
        if (!gui)
            return;
        int32_t chosen = id.value_or(0);
        std::string what = "id " + std::to_string(chosen);
        if (!id) {
            const auto& menus = s.extension<MenuState>()->menus;
            const auto menu = menus.find(name);
            if (menu == menus.end()) {
                s.fail(where, "menu-pick: no menu was asked of " + name);
                return;
            }
            const auto& items = menu->second.items;
            const MenuSink::Item* item = nullptr;
            for (size_t i = 0; i < items.size() && !item; ++i)
                if (text ? items[i].text == *text : static_cast<int>(i) == *place)
                    item = &items[i];
            if (!item) {
                s.fail(where, "menu-pick: the menu of " + name + " has no item " +
                                  (text ? kxhost::quoted(*text) : std::to_string(*place)) + "; it is " + listed(items));
                return;
            }
            chosen = item->id;
            what = kxhost::quoted(item->text) + " (id " + std::to_string(chosen) + ")";
        }
        s.trace("menu-pick " + name + " " + what);
        if (const int32_t rc = gui->onContextMenu(chosen); rc != gmpi::MP_OK)
            s.trace(name + " did not handle the choice (" + std::to_string(rc) + ")");
    };
}

// tooltip INSTANCE X Y: the graphics face's tool tip when the module has the second version of it, else
// the GUI half's own.
Action compileTooltip(Parser& p, const Line& line) {
    return compileAsk(
        p, line, [](Session& s, gmpi::IMpUserInterface2B& gui, const std::string& name, float x, float y) {
            auto* text = new ReturnString;
            int32_t rc = gmpi::MP_FAIL;
            void* face = nullptr;
            if (gui.queryInterface(gmpi_gui_api::SE_IID_GRAPHICS_MPGUI2, &face) == gmpi::MP_OK && face) {
                auto* graphics = static_cast<gmpi_gui_api::IMpGraphics2*>(face);
                rc = graphics->getToolTip({x, y}, text);
                graphics->release();
            } else {
                rc = gui.getToolTip(x, y, static_cast<gmpi::IString*>(text));
            }
            std::optional<std::string> tip;
            if (rc == gmpi::MP_OK)
                tip = text->text();
            text->release();
            s.trace("tooltip " + name + " at " + point(x, y) + ": " + (tip ? kxhost::quoted(*tip) : "(none)"));
            s.extension<MenuState>()->lastTip = tip;
        });
}

// expect-tooltip "TEXT" | expect-tooltip none
Action compileExpectTooltip(Parser& p, const Line& line) {
    p.arity(line, 2, 2, "expect-tooltip \"TEXT\" | expect-tooltip none");
    if (!line.tokens[1].quoted && line.tokens[1].raw != "none")
        p.fail(line, "usage: expect-tooltip \"TEXT\" | expect-tooltip none");
    const std::optional<std::string> expected =
        line.tokens[1].quoted ? std::optional<std::string>(line.tokens[1].text) : std::nullopt;
    const Location where = line.where;
    return [expected, where](Session& s) {
        const auto& last = s.extension<MenuState>()->lastTip;
        if (!last) {
            s.fail(where, "expect-tooltip: no tool tip was asked for");
            return;
        }
        auto show = [](const std::optional<std::string>& t) { return t ? kxhost::quoted(*t) : std::string("none"); };
        if (*last != expected)
            s.fail(where, "expectation failed: the tool tip is " + show(*last) + ", expected " + show(expected));
        else
            s.trace("ok tool tip " + show(expected));
    };
}

const bool registered = Extensions::add([] { return std::make_unique<MenuState>(); }) &&
                        Steps::add("menu", compileMenu) && Steps::add("expect-menu", compileExpectMenu, true) &&
                        Steps::add("menu-pick", compileMenuPick) && Steps::add("tooltip", compileTooltip) &&
                        Steps::add("expect-tooltip", compileExpectTooltip, true);

}  // namespace

}  // namespace kxhost
