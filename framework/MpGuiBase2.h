// The GUI half of a module: the host-facing face (setHost, setPin/notifyPin, ...) over the pin table.
#pragma once

#include <type_traits>

#include "HostBoundary.h"
#include "MpGuiPin.h"
#include "RefCounted.h"
#include "gmpi/IMpUserInterface.h"
#include "gmpi/IMpUserInterface2.h"
#include "gmpi/IMpUserInterfaceHost.h"
#include "gmpi/IMpUserInterfaceHost2.h"

class MpGuiBase2 : public gmpi::IMpUserInterface2B, public GuiPinOwner {
public:
    // What the factory needs to know to create a class derived from this one.
    static constexpr int32_t sub_type = gmpi::MP_SUB_TYPE_GUI2;
    using principal_interface = gmpi::IMpUserInterface2B;

    MpGuiBase2() = default;
    ~MpGuiBase2() override = default;

    int32_t queryInterface(const gmpi::MpGuid& iid, void** returnInterface) override;
    int32_t setHost(gmpi::IMpUnknown* host) override;
    int32_t initialize() override { return gmpi::MP_OK; }
    int32_t setPin(int32_t pinId, int32_t voice, int32_t size, const void* data) override {
        return GuiPinOwner::setPin(pinId, voice, size, data);
    }
    int32_t receiveMessageFromAudio(int32_t, int32_t, const void*) override { return gmpi::MP_FAIL; }
    int32_t populateContextMenu(float, float, gmpi::IMpUnknown*) override { return gmpi::MP_FAIL; }
    int32_t onContextMenu(int32_t) override { return gmpi::MP_FAIL; }
    int32_t getToolTip(float, float, gmpi::IMpUnknown*) override { return gmpi::MP_FAIL; }
    int32_t notifyPin(int32_t pinId, int32_t voice) override { return GuiPinOwner::notifyPin(pinId, voice); }

    gmpi::IMpUserInterfaceHost2* getHost() const { return host; }

protected:
    using Handler = GuiPinHandler::Plain;
    using IndexedHandler = GuiPinHandler::Indexed;

    // Binding, from the constructor only. The index-less forms take the next index, so the order of the
    // calls is the pin order.
    void initializePin(int index, MpGuiPinBase& pin, Handler handler = nullptr);
    void initializePin(int index, MpGuiPinBase& pin, IndexedHandler handler);
    void initializePin(MpGuiPinBase& pin, Handler handler = nullptr) { initializePin(nextPinIndex(), pin, handler); }
    void initializePin(MpGuiPinBase& pin, IndexedHandler handler) { initializePin(nextPinIndex(), pin, handler); }
    // Handlers may be given as members of the module class itself.
    template <class M, std::enable_if_t<std::is_base_of_v<gmpi::IMpUserInterface2, M>, int> = 0>
    void initializePin(MpGuiPinBase& pin, void (M::*handler)()) {
        initializePin(nextPinIndex(), pin, static_cast<Handler>(handler));
    }
    template <class M, std::enable_if_t<std::is_base_of_v<gmpi::IMpUserInterface2, M>, int> = 0>
    void initializePin(MpGuiPinBase& pin, void (M::*handler)(int)) {
        initializePin(nextPinIndex(), pin, static_cast<IndexedHandler>(handler));
    }
    template <class M, std::enable_if_t<std::is_base_of_v<gmpi::IMpUserInterface2, M>, int> = 0>
    void initializePin(int index, MpGuiPinBase& pin, void (M::*handler)()) {
        initializePin(index, pin, static_cast<Handler>(handler));
    }
};

// Base of GUI modules without graphics: adds the reference count.
class SeGuiInvisibleBase : public kx::RefCounted<MpGuiBase2> {};
