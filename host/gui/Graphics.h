// The host's panel: graphic instances laid out on it, each with a graphics host of its own
// (invalidation, pointer capture, file dialog and text editor), pointer events routed by hit testing,
// and rendering into images (which the session writes as PNG). File dialogs and text editors answer from a
// script, or from a user when a presenter (the live window) shows them.
#pragma once

#include <cairo.h>

#include <deque>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "gmpi/IMpGraphics.h"
#include "gmpi/IMpGraphicsHost.h"
#include "gmpi/IMpPlatformFileDialog.h"
#include "gmpi/IMpPlatformText.h"
#include "render/Drawing.h"

namespace kxhost {

class Panel;

// One placement from the patch: "place NAME X Y [W H]".
struct Placement {
    std::string instance;
    float x = 0, y = 0;
    std::optional<GmpiDrawing_API::MP1_SIZE> size;  // the available size given to measure
};

// What the patch says about the panel.
struct PanelDecl {
    std::vector<Placement> placements;
    std::optional<GmpiDrawing_API::MP1_SIZE> size;  // "panel W H"; else the placements' bounding box
    uint32_t background = 0xFF202020;               // 0xAARRGGBB
};

// An answer for the next host dialog or editor: a text (path or edited text), or nullopt to cancel.
using ScriptedAnswer = std::optional<std::string>;

// The graphics host of one instance.
class GraphicsHost final : public gmpi_gui::IMpGraphicsHost {
public:
    GraphicsHost(Panel& panel, std::string name) : panel_(panel), name_(std::move(name)) {}

    int32_t queryInterface(const gmpi::MpGuid& iid, void** returnInterface) override;
    // The panel owns the graphics hosts and outlives the modules: no counting.
    int32_t addRef() override { return 1; }
    int32_t release() override { return 1; }
    int32_t getDrawingScale(float& returnScale) override;
    int32_t getLayoutRect(GmpiDrawing_API::MP1_RECT& returnRect) override;
    void invalidateRect(const GmpiDrawing_API::MP1_RECT* invalidRect) override;
    void invalidateMeasure() override;
    int32_t setCapture() override;
    int32_t getCapture(int32_t& returnValue) override;
    int32_t releaseCapture() override;
    int32_t createFileDialog(int32_t dialogType, gmpi::IMpUnknown** returnFileDialog) override;
    int32_t createPlatformTextEdit(const GmpiDrawing_API::MP1_RECT* rect, gmpi::IMpUnknown** returnTextEdit) override;
    void GetDrawingFactory(GmpiDrawing_API::IMpFactory** returnFactory) override;

    const std::string& name() const { return name_; }

    // Set by the panel.
    std::optional<GmpiDrawing_API::MP1_RECT> rect;  // in panel coordinates, once arranged
    gmpi_gui_api::IMpGraphics* graphics = nullptr;  // the module's graphics face (one reference), or null
    bool hasHitTest = false;                        // the face is the second version
    int invalidations = 0;                          // since the panel last counted

private:
    Panel& panel_;
    std::string name_;
};

// What a module asked a file dialog to show.
struct FileDialogRequest {
    bool save = false;
    struct Filter {
        std::string extension, description;
    };
    std::vector<Filter> filters;
    std::string initialName, initialFolder;
};

// What a module asked a text editor to show; the rectangle is in panel coordinates.
struct TextEditRequest {
    std::string text;
    GmpiDrawing_API::MP1_RECT rect{0, 0, 0, 0};
    float textSize = 0;
    int32_t alignment = 0;
};

// A request shown to the user and not yet completed.
class PendingRequest {
public:
    virtual ~PendingRequest() = default;
    // Completes with the answer (nullopt: cancelled).
    virtual void complete(const ScriptedAnswer& answer) = 0;
    virtual std::string describe() const = 0;
    // The instance whose graphics host made the dialog or editor.
    virtual const std::string& owner() const = 0;
    virtual std::variant<FileDialogRequest, TextEditRequest> details() const = 0;
};

// Shows open requests to a user. The panel keeps every open request; the presenter answers one through
// Panel::complete, and is told to withdraw one that was answered otherwise (a scripted step) or dropped.
class RequestPresenter {
public:
    virtual ~RequestPresenter() = default;
    virtual void present(const std::shared_ptr<PendingRequest>& request) = 0;
    virtual void withdraw(const PendingRequest& request) = 0;
};

class Panel {
public:
    Panel(const PanelDecl& decl, std::function<void(const std::string&)> trace);
    ~Panel();

    draw::Factory factory;

    GraphicsHost& addInstance(const std::string& name);
    GraphicsHost* host(const std::string& name);

    // Measures and arranges the placed instances when something asked for it (or always with force).
    void layout(bool force = false);
    // The panel's size: the declared one, else the bounding box of the arranged placements (at least 1 x 1).
    GmpiDrawing_API::MP1_SIZE size();
    // Renders the panel, or one instance on a transparent background of its own size. Null when the
    // instance is not placed and arranged.
    cairo_surface_t* render(const std::string& instance = {});

    // Pointer events in panel coordinates: to the capturing instance, else to the topmost placed instance
    // under the point that hit-tests and takes the event. The name of the instance that took it, or empty.
    enum class Pointer { Down, Move, Up };
    std::string pointer(Pointer kind, int32_t flags, GmpiDrawing_API::MP1_POINT point);

    // Scripted answers for the file dialog or the text editor of an instance (empty: whichever shows
    // one): completing the open one when it is that instance's, else queued for its next request.
    // One of each kind is open at a time, as on a real host: a newer one replaces (cancels) the older.
    void answerFileDialog(const std::string& instance, const ScriptedAnswer& answer);
    void answerTextEdit(const std::string& instance, const ScriptedAnswer& answer);
    // Completions that were scheduled while a module's call was running.
    void runCompletions();
    // Drops the references to the modules' graphics faces and any open request (before the modules go).
    void releaseModules();
    // The same for one instance about to be released: its requests go without a call back.
    void releaseInstance(const std::string& name);

    // A user answers requests through the presenter (not owned; null: only the script answers). Scripted
    // answers still come first: one queued before a request is shown takes it without showing it.
    void setPresenter(RequestPresenter* presenter) { presenter_ = presenter; }
    // The presenter's answer to an open request; ignored when the request was answered meanwhile.
    void complete(const PendingRequest& request, const ScriptedAnswer& answer);
    // Called whenever an instance asks for a repaint or a new layout (the live window queues a redraw).
    std::function<void()> repaintNeeded;

    // Called by graphics hosts and host objects.
    void requestLayout() { layoutDirty_ = true; }
    GraphicsHost* capture = nullptr;
    void shown(bool fileDialog, std::shared_ptr<PendingRequest> request);
    void trace(const std::string& line) { trace_(line); }

private:
    struct QueuedAnswer {
        std::string instance;  // empty: for whichever instance shows one next
        ScriptedAnswer answer;
    };
    void answer(bool fileDialog, const std::string& instance, const ScriptedAnswer& answer);
    // Tells the presenter that an open request is no longer open (null: nothing).
    void withdraw(const std::shared_ptr<PendingRequest>& request);

    const PanelDecl& decl_;
    std::function<void(const std::string&)> trace_;
    std::vector<std::unique_ptr<GraphicsHost>> hosts_;
    bool layoutDirty_ = true;
    std::deque<QueuedAnswer> fileAnswers_, textAnswers_;
    std::shared_ptr<PendingRequest> openFile_, openText_;
    std::vector<std::pair<std::shared_ptr<PendingRequest>, ScriptedAnswer>> due_;
    RequestPresenter* presenter_ = nullptr;
};

}  // namespace kxhost
