#include "MpGuiBase2.h"

#include <algorithm>

// ---- GuiPinOwner

void GuiPinOwner::addPin(int index, MpGuiPinBase& pin) { slots_.add(index, pin); }

int GuiPinOwner::nextPinIndex() const { return slots_.nextIndex(); }

// ---- MpGuiBase2

int32_t MpGuiBase2::queryInterface(const gmpi::MpGuid& iid, void** returnInterface) {
    if (!returnInterface)
        return gmpi::MP_NOSUPPORT;
    *returnInterface = nullptr;
    if (gmpi::isUnknownIid(iid) || iid == gmpi::MP_IID_GUI_PLUGIN2 || gmpi::isGuiPluginIid(iid)) {
        *returnInterface = static_cast<gmpi::IMpUserInterface2B*>(this);
        addRef();
        return gmpi::MP_OK;
    }
    return gmpi::MP_NOSUPPORT;
}

int32_t MpGuiBase2::setHost(gmpi::IMpUnknown* hostObject) {
    void* found = nullptr;
    if (hostObject && hostObject->queryInterface(gmpi::MP_IID_UI_HOST2, &found) == gmpi::MP_OK && found) {
        host = static_cast<gmpi::IMpUserInterfaceHost2*>(found);
        return gmpi::MP_OK;
    }
    return gmpi::MP_NOSUPPORT;
}

void MpGuiBase2::initializePin(int index, MpGuiPinBase& pin, Handler handler) {
    pin.bind(index, this, GuiPinHandler(this, handler));
    addPin(index, pin);
}

void MpGuiBase2::initializePin(int index, MpGuiPinBase& pin, IndexedHandler handler) {
    pin.bind(index, this, GuiPinHandler(this, handler));
    addPin(index, pin);
}
