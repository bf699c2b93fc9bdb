#include "widgets/MouseAreas.h"

#include <cmath>

#include "ModuleSupport.h"
#include "MpFactory.h"

// ---- KX_MouseBox

KX_MouseBox::KX_MouseBox() {
    initializePin(flip_);
    initializePin(toolTip_);
    initializePin(menuItems_);
    initializePin(menuChoice_);
    initializePin(pointerDown_);
    initializePin(widthPin_);
    initializePin(heightPin_);
    initializePin(xPin_);
    initializePin(yPin_);
    initializePin(fractionXPin_);
    initializePin(fractionYPin_);
    initializePin(anglePin_);
    initializePin(moveXPin_);
    initializePin(moveYPin_);
    initializePin(moveFractionXPin_);
    initializePin(moveFractionYPin_);
    initializePin(angleChangePin_);
}

int32_t KX_MouseBox::arrange(GmpiDrawing_API::MP1_RECT finalRect) {
    MpGuiGfxBase::arrange(finalRect);
    width_ = finalRect.right - finalRect.left;
    height_ = finalRect.bottom - finalRect.top;
    widthPin_ = kx::truncToInt32(width_);
    heightPin_ = kx::truncToInt32(height_);
    return gmpi::MP_OK;
}

void KX_MouseBox::map(GmpiDrawing_API::MP1_POINT point) {
    x_ = point.x;
    y_ = point.y;
    if (flip_ & kx::mousebox::FlipVertical)
        y_ = (height_ - 1) - point.y;
    if (flip_ & kx::mousebox::FlipHorizontal)
        x_ = (width_ - 1) - point.x;
    fractionX_ = x_ / width_;
    fractionY_ = y_ / height_;
    // 0.5 at the centre and straight below it, 0.25 to the right, 0.75 to the left, 0 and 1 above.
    angle_ = std::atan2(width_ * 0.5f - x_, y_ - height_ * 0.5f) * 0.15915494f + 0.5f;
}

void KX_MouseBox::updatePins() {
    xPin_ = kx::truncToInt32(x_);
    yPin_ = kx::truncToInt32(y_);
    fractionXPin_ = fractionX_;
    fractionYPin_ = fractionY_;
    anglePin_ = angle_;

    moveYPin_ = 0;
    moveXPin_ = moveYPin_.getValue();
    moveXPin_ = kx::truncToInt32(x_ - startX_);
    moveYPin_ = kx::truncToInt32(y_ - startY_);

    moveFractionYPin_ = 0.0f;
    moveFractionXPin_ = moveFractionYPin_.getValue();
    moveFractionXPin_ = fractionX_ - startFractionX_;
    moveFractionYPin_ = fractionY_ - startFractionY_;

    // Across the seam at the top the short way round: 0.95 to 0.05 is +0.1.
    float change = angle_ - startAngle_;
    if (change > 0.5f)
        change -= 1.0f;
    else if (change < -0.5f)
        change += 1.0f;
    angleChangePin_ = 0.0f;
    angleChangePin_ = change;
}

int32_t KX_MouseBox::onPointerDown(int32_t, GmpiDrawing_API::MP1_POINT point) {
    setCapture();
    map(point);
    startX_ = x_;
    startY_ = y_;
    startFractionX_ = fractionX_;
    startFractionY_ = fractionY_;
    startAngle_ = angle_;
    pointerDown_ = true;
    updatePins();
    return gmpi::MP_OK;
}

int32_t KX_MouseBox::onPointerMove(int32_t, GmpiDrawing_API::MP1_POINT point) {
    if (!getCapture())
        return gmpi::MP_FAIL;
    map(point);
    updatePins();
    return gmpi::MP_OK;
}

int32_t KX_MouseBox::onPointerUp(int32_t, GmpiDrawing_API::MP1_POINT) {
    pointerDown_ = false;
    moveYPin_ = 0;
    moveXPin_ = moveYPin_.getValue();
    angleChangePin_ = 0.0f;
    moveFractionYPin_ = angleChangePin_.getValue();
    moveFractionXPin_ = moveFractionYPin_.getValue();
    releaseCapture();
    return gmpi::MP_OK;
}

// ---- KX_HoverBox

KX_HoverBox::KX_HoverBox() {
    initializePin(normalised_);
    initializePin(xPin_);
    initializePin(yPin_);
    initializePin(moved_);
    initializePin(widthPin_);
    initializePin(heightPin_);
}

int32_t KX_HoverBox::arrange(GmpiDrawing_API::MP1_RECT finalRect) {
    const float width = finalRect.right - finalRect.left, height = finalRect.bottom - finalRect.top;
    widthPin_ = kx::truncToInt32(width);
    heightPin_ = kx::truncToInt32(height);
    // The last column and row map to 1. An area one unit across divides by zero: its fraction is
    // infinite (or NaN at 0), and is sent as it is.
    xScale_ = 1.0f / (width - 1);
    yScale_ = 1.0f / (height - 1);
    return gmpi::MP_OK;
}

int32_t KX_HoverBox::hitTest(GmpiDrawing_API::MP1_POINT point) {
    const bool normalised = normalised_;
    xPin_ = normalised ? point.x * xScale_ : point.x;
    yPin_ = normalised ? point.y * yScale_ : point.y;
    moved_ = true;
    moved_ = false;
    return gmpi::MP_FAIL;
}

namespace {
const bool registered =
    gmpi::Register<KX_MouseBox>::withId(L"KX_MouseBox") && gmpi::Register<KX_HoverBox>::withId(L"KX_HoverBox");
}
