#include "ImageBase.h"

#include "PinMenu.h"
#include "TextCodec.h"

int32_t ImageBase::populateContextMenu(float, float, gmpi::IMpUnknown* contextMenuItemsSink) {
    return kx::addMenuItems(contextMenuItemsSink, pinMenuItems.getValue());
}

int32_t ImageBase::onContextMenu(int32_t selection) {
    kx::pulseMenuSelection(pinMenuSelection, selection);
    return gmpi::MP_OK;
}

int32_t ImageBase::getToolTip(float, float, gmpi::IMpUnknown* returnString) {
    const std::wstring hint = getHint();
    return hint.empty() ? gmpi::MP_FAIL : kx::writeHostString(returnString, hint);
}

int32_t ImageBase::getToolTip(GmpiDrawing_API::MP1_POINT, gmpi::IString* returnString) {
    const std::wstring hint = getHint();
    return hint.empty() ? gmpi::MP_FAIL : kx::writeHostString(returnString, hint);
}

int32_t ImageBase::OnRender(GmpiDrawing_API::IMpDeviceContext* drawingContext) {
    GmpiDrawing::Graphics g(drawingContext);
    renderBitmap(g, {0, 0});
    return gmpi::MP_OK;
}

int32_t ImageBase::onPointerUp(int32_t, GmpiDrawing_API::MP1_POINT) {
    if (!getCapture())
        return gmpi::MP_FAIL;
    releaseCapture();
    pinMouseDown = false;
    return gmpi::MP_OK;
}

void ImageBase::calcDrawAt() {
    if (skinBitmap::calcDrawAt(getAnimationPos()))
        invalidateRect();
}

void ImageBase::onSetFilename() {
    Load(getHost(), getGuiHost(), kx::toUtf8(pinFilename.getValue()).c_str());
    onLoaded();
    skinBitmap::calcDrawAt(getAnimationPos());
    invalidateMeasure();
    invalidateRect();
}
