#include "show/Show.h"

#include <gtk/gtk.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <ostream>
#include <sstream>

#include "gmpi/IMpGraphics.h"
#include "gui/Graphics.h"
#include "gui/HostObject.h"
#include "gui/RunLoop.h"
#include "patch/Error.h"
#include "session/PanelSide.h"
#include "session/Session.h"
#include "show/Input.h"
#include "show/Requests.h"

namespace kxhost {

namespace {

std::string point(double x, double y) {
    std::ostringstream s;
    s << x << "," << y;
    return s.str();
}

// The window: the panel drawn by the panel's own renderer (so it shows the pixels a snapshot holds),
// real pointer events routed as the scripted ones are, and the host's dialogs and text fields for real.
class LiveWindow {
public:
    LiveWindow(Session& session, Panel& panel, const std::string& title) : session_(session), panel_(panel) {
        window_ = GTK_WINDOW(gtk_window_new());
        gtk_window_set_title(window_, title.c_str());
        gtk_window_set_resizable(window_, FALSE);
        overlay_ = GTK_OVERLAY(gtk_overlay_new());
        area_ = gtk_drawing_area_new();
        const auto size = panel_.size();
        resize(size.width, size.height);
        gtk_drawing_area_set_draw_func(GTK_DRAWING_AREA(area_), draw, this, nullptr);
        gtk_overlay_set_child(overlay_, area_);
        gtk_window_set_child(window_, GTK_WIDGET(overlay_));

        GtkEventController* pointer = gtk_event_controller_legacy_new();
        g_signal_connect(pointer, "event", G_CALLBACK(onPointer), this);
        gtk_widget_add_controller(area_, pointer);
        GtkEventController* keys = gtk_event_controller_key_new();
        g_signal_connect(keys, "key-pressed", G_CALLBACK(onKey), this);
        gtk_widget_add_controller(GTK_WIDGET(window_), keys);
        g_signal_connect(window_, "close-request", G_CALLBACK(onCloseRequest), this);

        requests_ = std::make_unique<GtkRequests>(panel_, window_, overlay_);
        // Redrawn only when a module asks for it (or the window system does). A panel sized by its
        // placements follows their sizes, looked at once the module's call is over.
        panel_.repaintNeeded = [this] {
            gtk_widget_queue_draw(area_);
            if (!sizeCheck_)
                sizeCheck_ = g_idle_add(checkSize, this);
        };
    }

    ~LiveWindow() {
        panel_.repaintNeeded = nullptr;
        if (sizeCheck_)
            g_source_remove(sizeCheck_);
        requests_.reset();
        gtk_window_destroy(window_);
    }

    GtkWindow* window() { return window_; }
    bool closed() const { return closed_; }
    void hide() { gtk_widget_set_visible(GTK_WIDGET(window_), FALSE); }
    // Closes whatever dialogs and text fields are open, without answering them.
    void dropRequests() { requests_.reset(); }

private:
    void resize(float width, float height) {
        const int w = std::max(1, static_cast<int>(std::ceil(width)));
        const int h = std::max(1, static_cast<int>(std::ceil(height)));
        if (w == width_ && h == height_)
            return;
        width_ = w;
        height_ = h;
        gtk_drawing_area_set_content_width(GTK_DRAWING_AREA(area_), width_);
        gtk_drawing_area_set_content_height(GTK_DRAWING_AREA(area_), height_);
    }

    static void draw(GtkDrawingArea*, cairo_t* cr, int, int, gpointer data) {
        auto* self = static_cast<LiveWindow*>(data);
        cairo_surface_t* image = self->panel_.render();
        cairo_set_source_surface(cr, image, 0, 0);
        cairo_set_operator(cr, CAIRO_OPERATOR_SOURCE);
        cairo_paint(cr);
        cairo_surface_destroy(image);
    }

    static gboolean checkSize(gpointer data) {
        auto* self = static_cast<LiveWindow*>(data);
        self->sizeCheck_ = 0;
        const auto size = self->panel_.size();
        self->resize(size.width, size.height);
        return G_SOURCE_REMOVE;
    }

    static gboolean onPointer(GtkEventControllerLegacy*, GdkEvent* event, gpointer data) {
        auto* self = static_cast<LiveWindow*>(data);
        const GdkEventType type = gdk_event_get_event_type(event);
        Panel::Pointer kind;
        unsigned button = 0;
        if (type == GDK_BUTTON_PRESS)
            kind = Panel::Pointer::Down;
        else if (type == GDK_BUTTON_RELEASE)
            kind = Panel::Pointer::Up;
        else if (type == GDK_MOTION_NOTIFY)
            kind = Panel::Pointer::Move;
        else
            return FALSE;
        if (kind != Panel::Pointer::Move)
            button = gdk_button_event_get_button(event);
        if (kind == Panel::Pointer::Down)
            self->requests_->confirmTextFields();
        const auto at = self->panelPoint(event);
        const int32_t flags = pointerFlags(gdk_event_get_modifier_state(event), button);
        const std::string taker =
            self->panel_.pointer(kind, flags, {static_cast<float>(at.x), static_cast<float>(at.y)});
        // Presses and releases are traced as the scripted ones are; moves would flood the terminal.
        if (kind != Panel::Pointer::Move) {
            std::ostringstream line;
            line << "pointer " << (kind == Panel::Pointer::Down ? "down " : "up ") << point(at.x, at.y);
            // Written only when more than the first button is held, in the scripted steps' FLAGS form.
            if (flags != gmpi_gui_api::GG_POINTER_FLAG_FIRSTBUTTON)
                line << " flags 0x" << std::hex << flags;
            line << " -> " << (taker.empty() ? "(nothing)" : taker);
            self->session_.trace(line.str());
        }
        self->panel_.runCompletions();
        return TRUE;
    }

    // The event's position in panel units (the drawing area's own coordinates).
    graphene_point_t panelPoint(GdkEvent* event) {
        double x = 0, y = 0;
        gdk_event_get_position(event, &x, &y);  // in the window's surface
        GtkNative* native = gtk_widget_get_native(area_);
        double sx = 0, sy = 0;
        gtk_native_get_surface_transform(native, &sx, &sy);
        const graphene_point_t inNative = GRAPHENE_POINT_INIT(static_cast<float>(x - sx), static_cast<float>(y - sy));
        graphene_point_t inArea = inNative;
        if (!gtk_widget_compute_point(GTK_WIDGET(native), area_, &inNative, &inArea))
            inArea = inNative;
        return inArea;
    }

    static gboolean onKey(GtkEventControllerKey*, guint keyval, guint, GdkModifierType state, gpointer data) {
        auto* self = static_cast<LiveWindow*>(data);
        if ((state & GDK_CONTROL_MASK) && (keyval == GDK_KEY_q || keyval == GDK_KEY_w)) {
            self->closed_ = true;
            return TRUE;
        }
        return FALSE;
    }

    static gboolean onCloseRequest(GtkWindow*, gpointer data) {
        static_cast<LiveWindow*>(data)->closed_ = true;
        return TRUE;  // destroyed by its owner, once the modules are released
    }

    Session& session_;
    Panel& panel_;
    GtkWindow* window_ = nullptr;
    GtkOverlay* overlay_ = nullptr;
    GtkWidget* area_ = nullptr;
    std::unique_ptr<GtkRequests> requests_;
    int width_ = 0, height_ = 0;
    guint sizeCheck_ = 0;
    bool closed_ = false;
};

// Plays the scenario once, as soon as the window is on screen.
struct Player {
    Session& session;
    guint idle = 0;
    bool started = false;

    ~Player() {
        if (idle)
            g_source_remove(idle);
    }
    static void mapped(gpointer data) {
        auto* self = static_cast<Player*>(data);
        if (!self->started && !self->idle)
            self->idle = g_idle_add(play, self);
    }
    static gboolean play(gpointer data) {
        auto* self = static_cast<Player*>(data);
        self->idle = 0;
        self->started = true;
        const bool passed = self->session.runScenario();
        self->session.out() << (passed ? "-- passed\n"
                                       : "-- FAILED: " + std::to_string(self->session.failures()) + " failure(s)\n");
        return G_SOURCE_REMOVE;
    }
};

}  // namespace

int show(Bundle& bundle, const Patch& patch, const ShowOptions& options, std::ostream& out, std::ostream& err) {
    if (!hasPanel(patch))
        throw HostError(patch.file.string() + ": nothing to show: the patch has no panel (panel W H, place NAME X Y)");
    if (!gtk_init_check())
        throw HostError("show needs a display, and none can be opened (is DISPLAY set?)");
    const int aliveBefore = Counted::alive();
    // The traffic is for a person watching, or a program reading, as it happens.
    out << std::unitbuf;
    int kept = 0;
    bool passed = true;
    {
        Session session(bundle, patch, out, err);
        session.setOutputDir(options.output);
        session.start();
        Panel* panel = findPanel(session);
        if (!panel)
            throw HostError(patch.file.string() + ": nothing to show: the patch has no instance");

        out << "-- live: " << (options.play ? "the scenario plays once the window is up; " : "")
            << "close the window (or Ctrl+Q) to end\n";
        Player player{session};  // outlives the window, which calls it when mapped
        LiveWindow window(session, *panel, "kxhost: " + patch.file.filename().string());
        if (options.play)
            g_signal_connect_swapped(window.window(), "map", G_CALLBACK(Player::mapped), &player);
        gtk_window_present(window.window());
        while (!window.closed())
            g_main_context_iteration(nullptr, TRUE);

        window.hide();
        window.dropRequests();
        passed = session.failures() == 0;
        kept = session.close();
    }
    // The window and what GTK has left to do go after the modules.
    while (g_main_context_pending(nullptr))
        g_main_context_iteration(nullptr, FALSE);

    const int heldObjects = Counted::alive() - aliveBefore;
    // What GTK has left to do runs out on its own (a file chooser saves its recent files a moment after it
    // closes); a timer a module left registered repeats for ever.
    bool timerLeft = false;
    if (runloop::canCount()) {
        const auto until = std::chrono::steady_clock::now() + std::chrono::seconds(2);
        for (int next; (next = runloop::dispatchDue()) != -1;) {
            const auto wait =
                std::chrono::duration_cast<std::chrono::milliseconds>(until - std::chrono::steady_clock::now()).count();
            if ((timerLeft = wait <= 0))
                break;
            runloop::wait(static_cast<int>(std::clamp<long long>(next, 1, wait)));
        }
    }
    std::ostringstream left;
    if (kept > 0)
        left << "; " << kept << " module half(s) kept a reference after their release";
    if (heldObjects != 0)
        left << "; " << heldObjects << " host object(s) handed to modules are still held";
    if (timerLeft)
        left << "; a timeout source still fires on the run loop 2 s later (a timer left registered)";
    if (left.str().empty())
        out << "-- closed: every module and host object released\n";
    else
        out << "-- closed: LEFT BEHIND" << left.str() << "\n";
    out << std::nounitbuf;
    out.flush();
    return passed && left.str().empty() ? 0 : 1;
}

}  // namespace kxhost
