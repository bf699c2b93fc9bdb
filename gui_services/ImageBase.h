// The common base of the skinned image widgets: a graphic module that shows one frame of a skin image
// chosen by an animation position, with a hint for its tool tip and a context menu fed from a pin.
//
// The pins every image widget has are members here; each widget binds them in its own pin order, e.g.
//   initializePin(pinAnimationPosition, &ImageBase::calcDrawAt);
//   initializeImagePins();  // file name, hint, menu items, menu selection, mouse down
//   initializePin(pinHold);
#pragma once

#include <cmath>
#include <string>

#include "MpGuiGfxBase.h"
#include "SkinBitmap.h"

class ImageBase : public gmpi_gui::MpGuiGfxBase, public skinBitmap {
public:
    // The position 0..1 the frame is chosen from.
    virtual float getAnimationPos() = 0;
    virtual void setAnimationPos(float position) = 0;
    // Called after an image was loaded (successfully or not) by onSetFilename.
    virtual void onLoaded() = 0;
    // The tool-tip text.
    virtual std::wstring getHint() = 0;
    // The metadata's pointer response, -1 (none) without an image.
    virtual int32_t getMouseResponse() { return metadata_ ? metadata_->mouseResponse : -1; }

    // One menu entry per item of the menu-items pin's enumeration list.
    int32_t populateContextMenu(float x, float y, gmpi::IMpUnknown* contextMenuItemsSink) override;
    // The selection reaches the menu-selection pin as a pulse: the selection, then -1.
    int32_t onContextMenu(int32_t selection) override;
    int32_t getToolTip(float x, float y, gmpi::IMpUnknown* returnString) override;
    int32_t getToolTip(GmpiDrawing_API::MP1_POINT point, gmpi::IString* returnString) override;
    // Draws the current frame.
    int32_t OnRender(GmpiDrawing_API::IMpDeviceContext* drawingContext) override;
    // Ends a captured press: releases the capture and clears the mouse-down pin; -1 without the capture.
    int32_t onPointerUp(int32_t flags, GmpiDrawing_API::MP1_POINT point) override;

    // Pin handlers. calcDrawAt follows getAnimationPos and repaints when the frame changed.
    void calcDrawAt();
    // Loads the file the filename pin names, tells onLoaded, recomputes the frame and asks to be measured
    // again (the size follows the image).
    void onSetFilename();
    // Repaints unconditionally.
    void reDraw() { invalidateRect(); }

protected:
    // Binds, in this order, the pins all image widgets have in a row: file name (loads the image), hint,
    // menu items, menu selection, mouse down.
    void initializeImagePins() {
        initializePin(pinFilename, &ImageBase::onSetFilename);
        initializePin(pinHint);
        initializePin(pinMenuItems);
        initializePin(pinMenuSelection);
        initializePin(pinMouseDown);
    }
    // The size of the rectangle the host arranged the widget in. Only the size counts: a widget draws and
    // receives points in its own coordinates, (0, 0) at its top-left corner, wherever the panel puts it.
    GmpiDrawing::Size layoutSize() const { return {rect_.right - rect_.left, rect_.bottom - rect_.top}; }

    StringGuiPin pinFilename;
    StringGuiPin pinHint;
    StringGuiPin pinMenuItems;
    MpGuiPin<int> pinMenuSelection;
    MpGuiPin<bool> pinMouseDown;
    // Keeps a click control down after the pointer is released (a latching button).
    MpGuiPin<bool> pinHold;
};
