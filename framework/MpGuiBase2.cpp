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

int32_t MpGuiBase2::pinTransmit(int pinId, int size, const void* data, int voice) {
    return host ? host->pinTransmit(pinId, size, data, voice) : gmpi::MP_FAIL;
}

void MpGuiBase2::initializePin(int index, MpGuiPinBase& pin, Handler handler) {
    std::unique_ptr<IGuiPinCallbackImpl> callback;
    if (handler)
        callback = std::make_unique<IGuiPinCallback<gmpi::IMpUserInterface2>>(this, handler);
    pin.bind(index, this, std::move(callback));
    addPin(index, pin);
}

void MpGuiBase2::initializePin(int index, MpGuiPinBase& pin, IndexedHandler handler) {
    pin.bind(index, this, std::make_unique<IGuiPinCallbackIndexed<gmpi::IMpUserInterface2>>(this, handler));
    addPin(index, pin);
}
