#include "gui/Graphics.h"

#include <algorithm>
#include <cmath>
#include <sstream>
#include <utility>

#include "gmpi/IMpCompletionHandler.h"
#include "gmpi/IString.h"
#include "gui/HostObject.h"

namespace kxhost {

using GmpiDrawing_API::MP1_POINT;
using GmpiDrawing_API::MP1_RECT;
using GmpiDrawing_API::MP1_SIZE;

namespace {

bool writeString(gmpi::IMpUnknown* target, const std::string& text) {
    void* s = nullptr;
    if (!target || target->queryInterface(gmpi::MP_IID_RETURNSTRING, &s) != gmpi::MP_OK || !s)
        return false;
    auto* str = static_cast<gmpi::IString*>(s);
    str->setData(text.data(), static_cast<int32_t>(text.size()));
    str->release();
    return true;
}

gmpi_gui::IMpCompletionHandler* completionHandler(gmpi::IMpUnknown* object) {
    void* h = nullptr;
    if (!object || object->queryInterface(gmpi_gui::SE_IID_COMPLETION_HANDLER, &h) != gmpi::MP_OK)
        return nullptr;
    return static_cast<gmpi_gui::IMpCompletionHandler*>(h);  // one reference, ours
}

// What a shown request needs: the object it belongs to (kept alive) and the module's handler.
template <class Object>
class Request final : public PendingRequest {
public:
    Request(Object* object, gmpi_gui::IMpCompletionHandler* handler) : object_(object), handler_(handler) {
        object_->addRef();
    }
    ~Request() override {
        handler_->release();
        object_->release();
    }
    void complete(const ScriptedAnswer& answer) override {
        object_->answered(answer);
        handler_->OnComplete(answer ? gmpi::MP_OK : gmpi::MP_FAIL);
    }
    std::string describe() const override { return object_->describe() + " of " + object_->owner(); }
    const std::string& owner() const override { return object_->owner(); }
    std::variant<FileDialogRequest, TextEditRequest> details() const override { return object_->request(); }

private:
    Object* object_;
    gmpi_gui::IMpCompletionHandler* handler_;
};

class FileDialog final : public CountedObject<gmpi_gui::IMpPlatformFileDialog> {
public:
    FileDialog(Panel& panel, int32_t type, std::string owner)
        : CountedObject(gmpi_gui::SE_IID_GRAPHICS_PLATFORM_FILE_DIALOG), panel_(panel), owner_(std::move(owner)) {
        request_.save = type == gmpi_gui::MP_PLATFORM_FILE_SAVE;
    }
    int32_t AddExtension(const char* extension, const char* description) override {
        request_.filters.push_back({extension ? extension : "", description ? description : ""});
        return gmpi::MP_OK;
    }
    int32_t SetInitialFilename(const char* text) override {
        request_.initialName = text ? text : "";
        return gmpi::MP_OK;
    }
    int32_t setInitialDirectory(const char* text) override {
        request_.initialFolder = text ? text : "";
        return gmpi::MP_OK;
    }
    int32_t ShowAsync(gmpi::IMpUnknown* handler) override {
        auto* h = completionHandler(handler);
        if (!h)
            return gmpi::MP_FAIL;
        panel_.shown(true, std::make_shared<Request<FileDialog>>(this, h));
        return gmpi::MP_OK;
    }
    int32_t GetSelectedFilename(gmpi::IMpUnknown* returnString) override {
        return writeString(returnString, selected_) ? gmpi::MP_OK : gmpi::MP_FAIL;
    }

    void answered(const ScriptedAnswer& a) { selected_ = a.value_or(""); }
    const std::string& owner() const { return owner_; }
    const FileDialogRequest& request() const { return request_; }
    std::string describe() const {
        std::string exts;
        for (const auto& f : request_.filters)
            exts += (exts.empty() ? "" : ",") + f.extension;
        return std::string(request_.save ? "save" : "open") + " dialog [" + exts + "] initial '" +
               request_.initialName + "' in '" + request_.initialFolder + "'";
    }

private:
    Panel& panel_;
    std::string owner_;
    FileDialogRequest request_;
    std::string selected_;
};

class TextEdit final : public CountedObject<gmpi_gui::IMpPlatformText> {
public:
    TextEdit(Panel& panel, MP1_RECT rect, std::string owner)
        : CountedObject(gmpi_gui::SE_IID_GRAPHICS_PLATFORM_TEXT), panel_(panel), owner_(std::move(owner)) {
        request_.rect = rect;
    }
    int32_t SetText(const char* text) override {
        request_.text = text ? text : "";
        return gmpi::MP_OK;
    }
    int32_t GetText(gmpi::IMpUnknown* returnString) override {
        return writeString(returnString, request_.text) ? gmpi::MP_OK : gmpi::MP_FAIL;
    }
    int32_t ShowAsync(gmpi::IMpUnknown* handler) override {
        auto* h = completionHandler(handler);
        if (!h)
            return gmpi::MP_FAIL;
        panel_.shown(false, std::make_shared<Request<TextEdit>>(this, h));
        return gmpi::MP_OK;
    }
    int32_t SetAlignment(int32_t alignment) override {
        request_.alignment = alignment;
        return gmpi::MP_OK;
    }
    int32_t SetTextSize(float height) override {
        request_.textSize = height;
        return gmpi::MP_OK;
    }

    // A cancelled edit leaves the text as it was set.
    void answered(const ScriptedAnswer& a) {
        if (a)
            request_.text = *a;
    }
    const std::string& owner() const { return owner_; }
    const TextEditRequest& request() const { return request_; }
    std::string describe() const {
        const MP1_RECT& r = request_.rect;
        std::ostringstream s;
        s << "text editor '" << request_.text << "' at (" << r.left << "," << r.top << "," << r.right << "," << r.bottom
          << ") size " << request_.textSize << " alignment 0x" << std::hex << request_.alignment;
        return s.str();
    }

private:
    Panel& panel_;
    std::string owner_;
    TextEditRequest request_;
};

}  // namespace

// ---- GraphicsHost

int32_t GraphicsHost::queryInterface(const gmpi::MpGuid& iid, void** returnInterface) {
    if (!returnInterface)
        return gmpi::MP_NOSUPPORT;
    *returnInterface = nullptr;
    if (!gmpi::isUnknownIid(iid) && !gmpi_gui::isGraphicsHostIid(iid))
        return gmpi::MP_NOSUPPORT;
    *returnInterface = static_cast<gmpi_gui::IMpGraphicsHost*>(this);
    return gmpi::MP_OK;
}

int32_t GraphicsHost::getDrawingScale(float& returnScale) {
    returnScale = 1.0f;
    return gmpi::MP_OK;
}

int32_t GraphicsHost::getLayoutRect(MP1_RECT& returnRect) {
    if (!rect)
        return gmpi::MP_FAIL;
    returnRect = *rect;
    return gmpi::MP_OK;
}

void GraphicsHost::invalidateRect(const MP1_RECT*) {
    ++invalidations;
    if (panel_.repaintNeeded)
        panel_.repaintNeeded();
}

void GraphicsHost::invalidateMeasure() {
    panel_.requestLayout();
    if (panel_.repaintNeeded)
        panel_.repaintNeeded();
}

int32_t GraphicsHost::setCapture() {
    panel_.capture = this;
    return gmpi::MP_OK;
}

int32_t GraphicsHost::getCapture(int32_t& returnValue) {
    returnValue = panel_.capture == this ? 1 : 0;
    return gmpi::MP_OK;
}

int32_t GraphicsHost::releaseCapture() {
    if (panel_.capture == this)
        panel_.capture = nullptr;
    return gmpi::MP_OK;
}

int32_t GraphicsHost::createFileDialog(int32_t dialogType, gmpi::IMpUnknown** returnFileDialog) {
    if (!returnFileDialog)
        return gmpi::MP_FAIL;
    *returnFileDialog = new FileDialog(panel_, dialogType, name_);
    return gmpi::MP_OK;
}

int32_t GraphicsHost::createPlatformTextEdit(const MP1_RECT* r, gmpi::IMpUnknown** returnTextEdit) {
    if (!returnTextEdit)
        return gmpi::MP_FAIL;
    // The module gives a rectangle of its own area; the editor lies over it on the panel.
    MP1_RECT onPanel = r ? *r : MP1_RECT{0, 0, 0, 0};
    if (rect) {
        onPanel.left += rect->left;
        onPanel.right += rect->left;
        onPanel.top += rect->top;
        onPanel.bottom += rect->top;
    }
    *returnTextEdit = new TextEdit(panel_, onPanel, name_);
    return gmpi::MP_OK;
}

void GraphicsHost::GetDrawingFactory(GmpiDrawing_API::IMpFactory** returnFactory) {
    if (returnFactory)
        *returnFactory = &panel_.factory;
}

// ---- Panel

Panel::Panel(const PanelDecl& decl, std::function<void(const std::string&)> trace)
    : decl_(decl), trace_(std::move(trace)) {}

Panel::~Panel() { releaseModules(); }

void Panel::releaseModules() {
    // Requests still open hold module objects; they go without a call back.
    for (auto* open : {&openFile_, &openText_})
        withdraw(std::exchange(*open, nullptr));
    due_.clear();
    capture = nullptr;
    for (auto& h : hosts_) {
        if (h->graphics)
            h->graphics->release();
        h->graphics = nullptr;
    }
}

void Panel::releaseInstance(const std::string& name) {
    for (auto* open : {&openFile_, &openText_})
        if (*open && (*open)->owner() == name)
            withdraw(std::exchange(*open, nullptr));
    std::erase_if(due_, [&](const auto& d) { return d.first->owner() == name; });
    GraphicsHost* h = host(name);
    if (!h)
        return;
    if (capture == h)
        capture = nullptr;
    if (h->graphics)
        h->graphics->release();
    h->graphics = nullptr;
    h->hasHitTest = false;
    h->rect.reset();
    requestLayout();
}

GraphicsHost& Panel::addInstance(const std::string& name) {
    // An instance created again keeps its graphics host.
    if (GraphicsHost* known = host(name))
        return *known;
    hosts_.push_back(std::make_unique<GraphicsHost>(*this, name));
    requestLayout();
    return *hosts_.back();
}

GraphicsHost* Panel::host(const std::string& name) {
    for (auto& h : hosts_)
        if (h->name() == name)
            return h.get();
    return nullptr;
}

void Panel::layout(bool force) {
    if (!layoutDirty_ && !force)
        return;
    layoutDirty_ = false;
    for (const auto& place : decl_.placements) {
        GraphicsHost* h = host(place.instance);
        if (!h || !h->graphics)
            continue;
        MP1_SIZE available{100, 100};
        if (place.size)
            available = *place.size;
        else if (decl_.size)
            available = {std::max(1.0f, decl_.size->width - place.x), std::max(1.0f, decl_.size->height - place.y)};
        MP1_SIZE desired = available;
        h->graphics->measure(available, &desired);
        if (!std::isfinite(desired.width) || desired.width < 0)
            desired.width = 0;
        if (!std::isfinite(desired.height) || desired.height < 0)
            desired.height = 0;
        const MP1_RECT r{place.x, place.y, place.x + desired.width, place.y + desired.height};
        h->rect = r;
        h->graphics->arrange(r);
    }
}

MP1_SIZE Panel::size() {
    layout();
    if (decl_.size)
        return *decl_.size;
    MP1_SIZE size{1, 1};
    for (auto& h : hosts_)
        if (h->rect && h->graphics)
            size = {std::max(size.width, h->rect->right), std::max(size.height, h->rect->bottom)};
    return size;
}

cairo_surface_t* Panel::render(const std::string& instance) {
    layout();
    auto paint = [&](cairo_t* cr, GraphicsHost& h, double originX, double originY) {
        const MP1_RECT& r = *h.rect;
        cairo_save(cr);
        cairo_translate(cr, r.left - originX, r.top - originY);
        cairo_rectangle(cr, 0, 0, r.right - r.left, r.bottom - r.top);
        cairo_clip(cr);
        auto* dc = new draw::DeviceContext(&factory, cr);
        try {
            h.graphics->OnRender(dc);
        } catch (...) {
            trace("OnRender of " + h.name() + " threw");
        }
        dc->release();
        cairo_restore(cr);
    };

    if (!instance.empty()) {
        GraphicsHost* h = host(instance);
        if (!h || !h->graphics || !h->rect)
            return nullptr;
        const int w = std::max(1, static_cast<int>(std::ceil(h->rect->right - h->rect->left)));
        const int hgt = std::max(1, static_cast<int>(std::ceil(h->rect->bottom - h->rect->top)));
        cairo_surface_t* s = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, w, hgt);
        cairo_t* cr = cairo_create(s);
        paint(cr, *h, h->rect->left, h->rect->top);
        cairo_destroy(cr);
        return s;
    }

    const MP1_SIZE size = this->size();
    cairo_surface_t* s =
        cairo_image_surface_create(CAIRO_FORMAT_ARGB32, std::max(1, static_cast<int>(std::ceil(size.width))),
                                   std::max(1, static_cast<int>(std::ceil(size.height))));
    cairo_t* cr = cairo_create(s);
    const uint32_t bg = decl_.background;
    cairo_set_source_rgba(cr, ((bg >> 16) & 0xFF) / 255.0, ((bg >> 8) & 0xFF) / 255.0, (bg & 0xFF) / 255.0,
                          (bg >> 24) / 255.0);
    cairo_paint(cr);
    for (const auto& place : decl_.placements)
        if (GraphicsHost* h = host(place.instance); h && h->graphics && h->rect)
            paint(cr, *h, 0, 0);
    cairo_destroy(cr);
    return s;
}

std::string Panel::pointer(Pointer kind, int32_t flags, MP1_POINT point) {
    layout();
    auto send = [&](GraphicsHost& h) {
        const MP1_POINT local{point.x - h.rect->left, point.y - h.rect->top};
        switch (kind) {
            case Pointer::Down:
                return h.graphics->onPointerDown(flags, local);
            case Pointer::Move:
                return h.graphics->onPointerMove(flags, local);
            case Pointer::Up:
                return h.graphics->onPointerUp(flags, local);
        }
        return gmpi::MP_FAIL;
    };
    if (capture && capture->graphics && capture->rect) {
        GraphicsHost& h = *capture;
        send(h);
        return h.name();
    }
    // Topmost first: the last placement is drawn last, over the others.
    for (auto it = decl_.placements.rbegin(); it != decl_.placements.rend(); ++it) {
        GraphicsHost* h = host(it->instance);
        if (!h || !h->graphics || !h->rect)
            continue;
        const MP1_RECT& r = *h->rect;
        if (!(r.left <= point.x && point.x < r.right && r.top <= point.y && point.y < r.bottom))
            continue;
        const MP1_POINT local{point.x - r.left, point.y - r.top};
        if (h->hasHitTest && static_cast<gmpi_gui_api::IMpGraphics2*>(h->graphics)->hitTest(local) != gmpi::MP_OK)
            continue;
        // Liberal in what it accepts: some modules answer a press they take with 1, and one that took the
        // capture has taken the press whatever it answered.
        if (send(*h) >= gmpi::MP_OK || capture == h)
            return h->name();
    }
    return {};
}

void Panel::shown(bool fileDialog, std::shared_ptr<PendingRequest> request) {
    auto& open = fileDialog ? openFile_ : openText_;
    if (open) {
        // As on a real host: the newer replaces the older, which is cancelled.
        trace("closed by a newer one: " + open->describe());
        withdraw(open);
        due_.emplace_back(std::exchange(open, nullptr), std::nullopt);
    }
    auto& answers = fileDialog ? fileAnswers_ : textAnswers_;
    const auto it = std::find_if(answers.begin(), answers.end(), [&](const QueuedAnswer& a) {
        return a.instance.empty() || a.instance == request->owner();
    });
    if (it != answers.end()) {
        trace("shown: " + request->describe());
        // Completed once the module's own call has returned, as a real dialog would.
        due_.emplace_back(std::move(request), it->answer);
        answers.erase(it);
        return;
    }
    trace("shown, waiting for an answer: " + request->describe());
    open = request;
    if (presenter_)
        presenter_->present(request);
}

void Panel::answer(bool fileDialog, const std::string& instance, const ScriptedAnswer& a) {
    auto& open = fileDialog ? openFile_ : openText_;
    if (!open || (!instance.empty() && open->owner() != instance)) {
        (fileDialog ? fileAnswers_ : textAnswers_).push_back({instance, a});
        return;
    }
    withdraw(open);
    due_.emplace_back(std::exchange(open, nullptr), a);
    runCompletions();
}

void Panel::complete(const PendingRequest& request, const ScriptedAnswer& a) {
    for (auto* open : {&openFile_, &openText_}) {
        if (open->get() != &request)
            continue;
        due_.emplace_back(std::exchange(*open, nullptr), a);
        runCompletions();
        return;
    }
}

void Panel::withdraw(const std::shared_ptr<PendingRequest>& request) {
    if (request && presenter_)
        presenter_->withdraw(*request);
}

void Panel::answerFileDialog(const std::string& instance, const ScriptedAnswer& a) { answer(true, instance, a); }
void Panel::answerTextEdit(const std::string& instance, const ScriptedAnswer& a) { answer(false, instance, a); }

void Panel::runCompletions() {
    while (!due_.empty()) {
        auto [request, a] = due_.front();
        due_.erase(due_.begin());
        trace(a ? "answered '" + *a + "'" : std::string("cancelled"));
        request->complete(a);
    }
}

}  // namespace kxhost
