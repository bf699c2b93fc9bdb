#include "MpGuiBase2.h"

#include <algorithm>

// ---- GuiPinOwner

void GuiPinOwner::addPin(int index, MpGuiPinBase& pin) {
    // Room for a typical module's pins at once, instead of growing one pin at a time.
    if (slots_.empty())
        slots_.reserve(8);
    auto it = std::lower_bound(slots_.begin(), slots_.end(), index, [](const Slot& s, int i) { return s.index < i; });
    if (it != slots_.end() && it->index == index)
        return;
    slots_.insert(it, Slot{index, &pin});
}

int GuiPinOwner::nextPinIndex() const { return slots_.empty() ? 0 : slots_.back().index + 1; }

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
