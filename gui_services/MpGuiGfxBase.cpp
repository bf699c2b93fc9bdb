#include "MpGuiGfxBase.h"

#include <cmath>

namespace gmpi_gui {

int32_t MpGuiGfxBase::queryInterface(const gmpi::MpGuid& iid, void** returnInterface) {
    if (!returnInterface)
        return gmpi::MP_NOSUPPORT;
    if (iid == gmpi_gui_api::SE_IID_GRAPHICS_MPGUI || iid == gmpi_gui_api::SE_IID_GRAPHICS_MPGUI2) {
        *returnInterface = static_cast<gmpi_gui_api::IMpGraphics2*>(&graphicsFace_);
        addRef();
        return gmpi::MP_OK;
    }
    return MpGuiBase2::queryInterface(iid, returnInterface);
}

int32_t MpGuiGfxBase::setHost(gmpi::IMpUnknown* hostObject) {
    graphicsHost_ = gmpi_sdk::queryAs<IMpGraphicsHost>(hostObject, SE_IID_GRAPHICS_HOST);
    return MpGuiBase2::setHost(hostObject);
}

int32_t MpGuiGfxBase::desiredAtLeast(GmpiDrawing_API::MP1_SIZE available, GmpiDrawing_API::MP1_SIZE* desired,
                                     float minimum) {
    if (!desired)
        return gmpi::MP_FAIL;
    // Written as "greater than" so that a NaN falls to the minimum.
    desired->width = available.width > minimum ? available.width : minimum;
    desired->height = available.height > minimum ? available.height : minimum;
    return gmpi::MP_OK;
}

int32_t MpGuiGfxBase::measure(GmpiDrawing_API::MP1_SIZE availableSize, GmpiDrawing_API::MP1_SIZE* returnDesiredSize) {
    return desiredAtLeast(availableSize, returnDesiredSize, 1.0f);
}

int32_t MpGuiGfxBase::arrange(GmpiDrawing_API::MP1_RECT finalRect) {
    // Exact comparison: a NaN coordinate never equals, so it always counts as a change.
    const bool same = finalRect.left == rect_.left && finalRect.top == rect_.top && finalRect.right == rect_.right &&
                      finalRect.bottom == rect_.bottom;
    if (!same) {
        rect_ = finalRect;
        invalidateRect();
    }
    return gmpi::MP_OK;
}

}  // namespace gmpi_gui
