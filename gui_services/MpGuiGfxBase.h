// The base of every GUI module that draws itself: the host measures, arranges and paints it, sends it
// pointer events and asks it for hit tests and tool tips through its graphics face; the module asks the
// graphics host for repaints and pointer capture.
#pragma once

#include "MpCountedPtr.h"
#include "MpGuiBase2.h"
#include "gmpi/IMpGraphics.h"
#include "gmpi/IMpGraphicsHost.h"

namespace gmpi_gui {

class MpGuiGfxBase : public kx::RefCounted<MpGuiBase2> {
public:
    MpGuiGfxBase() = default;
    MpGuiGfxBase(const MpGuiGfxBase&) = delete;
    MpGuiGfxBase& operator=(const MpGuiGfxBase&) = delete;
    ~MpGuiGfxBase() override = default;

    // Both faces share the module's one reference count.
    int32_t queryInterface(const gmpi::MpGuid& iid, void** returnInterface) override;
    // Looks up the graphics host before the base's host lookup; a host without one leaves it null.
    int32_t setHost(gmpi::IMpUnknown* host) override;

    // Graphics operations; the graphics face forwards each to these.
    // Desired size = the available size, each dimension at least 1 (NaN counts as less).
    virtual int32_t measure(GmpiDrawing_API::MP1_SIZE availableSize, GmpiDrawing_API::MP1_SIZE* returnDesiredSize);
    // Stores the rectangle and repaints, only when a coordinate changed.
    virtual int32_t arrange(GmpiDrawing_API::MP1_RECT finalRect);
    virtual int32_t OnRender(GmpiDrawing_API::IMpDeviceContext*) { return gmpi::MP_OK; }
    // The pointer answers follow hitTest, so a module that only overrides hitTest answers consistently.
    virtual int32_t onPointerDown(int32_t, GmpiDrawing_API::MP1_POINT point) { return hitTest(point); }
    virtual int32_t onPointerMove(int32_t, GmpiDrawing_API::MP1_POINT point) { return hitTest(point); }
    virtual int32_t onPointerUp(int32_t, GmpiDrawing_API::MP1_POINT point) { return hitTest(point); }
    virtual int32_t hitTest(GmpiDrawing_API::MP1_POINT) { return gmpi::MP_OK; }
    virtual int32_t getToolTip(GmpiDrawing_API::MP1_POINT, gmpi::IString*) { return gmpi::MP_FAIL; }
    using MpGuiBase2::getToolTip;

    IMpGraphicsHost* getGuiHost() const { return graphicsHost_.get(); }

    // The available size with each dimension raised to at least minimum (NaN counts as less): what a
    // module that takes the room it is given answers to measure.
    static int32_t desiredAtLeast(GmpiDrawing_API::MP1_SIZE available, GmpiDrawing_API::MP1_SIZE* desired,
                                  float minimum);
    const GmpiDrawing_API::MP1_RECT& getRect() const { return rect_; }

protected:
    // Repaints the whole module; nothing without a graphics host.
    void invalidateRect() {
        if (graphicsHost_)
            graphicsHost_->invalidateRect(nullptr);
    }
    void invalidateMeasure() {
        if (graphicsHost_)
            graphicsHost_->invalidateMeasure();
    }
    void setCapture() {
        if (graphicsHost_)
            graphicsHost_->setCapture();
    }
    bool getCapture() const {
        int32_t captured = 0;
        if (graphicsHost_)
            graphicsHost_->getCapture(captured);
        return captured != 0;
    }
    void releaseCapture() {
        if (graphicsHost_)
            graphicsHost_->releaseCapture();
    }

    gmpi_sdk::mp_shared_ptr<IMpGraphicsHost> graphicsHost_;
    GmpiDrawing_API::MP1_RECT rect_{0, 0, 0, 0};

private:
    // The graphics face the host holds. It implements the interface itself, so a slot added to the
    // interface fails the build until it is forwarded here; every entry runs the module's own virtual of
    // the same name inside kx::guarded, the graphics side's share of the host boundary (HostBoundary.h).
    class GraphicsFace final : public gmpi_gui_api::IMpGraphics2 {
    public:
        explicit GraphicsFace(MpGuiGfxBase& module) : module_(module) {}
        int32_t queryInterface(const gmpi::MpGuid& iid, void** out) override {
            return kx::guarded([&] { return module_.queryInterface(iid, out); });
        }
        int32_t addRef() override {
            return kx::guarded([&] { return module_.addRef(); });
        }
        int32_t release() override {
            return kx::guarded([&] { return module_.release(); });
        }
        int32_t measure(GmpiDrawing_API::MP1_SIZE available, GmpiDrawing_API::MP1_SIZE* desired) override {
            return kx::guarded([&] { return module_.measure(available, desired); });
        }
        int32_t arrange(GmpiDrawing_API::MP1_RECT r) override {
            return kx::guarded([&] { return module_.arrange(r); });
        }
        int32_t OnRender(GmpiDrawing_API::IMpDeviceContext* dc) override {
            return kx::guarded([&] { return module_.OnRender(dc); });
        }
        int32_t onPointerDown(int32_t flags, GmpiDrawing_API::MP1_POINT p) override {
            return kx::guarded([&] { return module_.onPointerDown(flags, p); });
        }
        int32_t onPointerMove(int32_t flags, GmpiDrawing_API::MP1_POINT p) override {
            return kx::guarded([&] { return module_.onPointerMove(flags, p); });
        }
        int32_t onPointerUp(int32_t flags, GmpiDrawing_API::MP1_POINT p) override {
            return kx::guarded([&] { return module_.onPointerUp(flags, p); });
        }
        int32_t hitTest(GmpiDrawing_API::MP1_POINT p) override {
            return kx::guarded([&] { return module_.hitTest(p); });
        }
        int32_t getToolTip(GmpiDrawing_API::MP1_POINT p, gmpi::IString* s) override {
            return kx::guarded([&] { return module_.getToolTip(p, s); });
        }

    private:
        MpGuiGfxBase& module_;
    };

    GraphicsFace graphicsFace_{*this};
};

}  // namespace gmpi_gui
