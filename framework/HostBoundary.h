// The exception guard at the host boundary. Every object the factory hands to a host is a
// kx::Guarded<T>: the module class T with each slot a host can call through T's interfaces overridden to
// run T's own version inside kx::guarded, so a throw becomes -1 (or, for process, which answers nothing,
// a return) and never unwinds into the host.
//
// The slots are listed once per side below; the guard is generated from that list, and a class built
// from the same list must implement every pure slot of the side's interfaces. A slot added to an
// interface and not to its list therefore fails the build here instead of leaving a path unguarded.
// Graphics entries are not listed: the graphics face (MpGuiGfxBase.h) implements its interface itself and
// runs each entry through kx::guarded.
#pragma once

#include <type_traits>

#include "gmpi/IMpLegacyInitialization.h"
#include "gmpi/IMpPlugin.h"
#include "gmpi/IMpUserInterface2.h"

namespace kx {

// Runs f and turns any exception into the boundary's failure code (nothing, for a void f).
template <class F>
auto guarded(F&& f) noexcept {
    using Result = decltype(f());
    try {
        return f();
    } catch (...) {
        if constexpr (std::is_void_v<Result>)
            return;
        else
            return Result{gmpi::MP_FAIL};
    }
}

// Runs f and tells whether it threw, for a caller that must tell a throw from a failure answered.
template <class F>
bool throwsAtBoundary(F&& f) noexcept {
    try {
        f();
        return false;
    } catch (...) {
        return true;
    }
}

}  // namespace kx

// X(result, name, (parameters), (arguments)) for every slot of IMpUserInterface2B.
#define KX_GUI_HOST_SLOTS(X)                                                                                       \
    X(int32_t, queryInterface, (const gmpi::MpGuid& iid, void** returnInterface), (iid, returnInterface))          \
    X(int32_t, addRef, (), ())                                                                                     \
    X(int32_t, release, (), ())                                                                                    \
    X(int32_t, setHost, (gmpi::IMpUnknown * host), (host))                                                         \
    X(int32_t, initialize, (), ())                                                                                 \
    X(int32_t, setPin, (int32_t pinId, int32_t voice, int32_t size, const void* data), (pinId, voice, size, data)) \
    X(int32_t, receiveMessageFromAudio, (int32_t id, int32_t size, const void* data), (id, size, data))            \
    X(int32_t, populateContextMenu, (float x, float y, gmpi::IMpUnknown* sink), (x, y, sink))                      \
    X(int32_t, onContextMenu, (int32_t selection), (selection))                                                    \
    X(int32_t, getToolTip, (float x, float y, gmpi::IMpUnknown* returnString), (x, y, returnString))               \
    X(int32_t, notifyPin, (int32_t pinId, int32_t voice), (pinId, voice))

// The same for the DSP side's faces: IMpPlugin, IMpPlugin2 and the two initialisation faces. Slots of
// one name and signature in several faces are one override.
#define KX_DSP_HOST_SLOTS(X)                                                                              \
    X(int32_t, queryInterface, (const gmpi::MpGuid& iid, void** returnInterface), (iid, returnInterface)) \
    X(int32_t, addRef, (), ())                                                                            \
    X(int32_t, release, (), ())                                                                           \
    X(int32_t, setHost, (gmpi::IMpUnknown * host), (host))                                                \
    X(int32_t, open, (), ())                                                                              \
    X(int32_t, setBuffer, (int32_t pinId, float* buffer), (pinId, buffer))                                \
    X(void, process, (int32_t count, gmpi::MpEvent * events), (count, events))                            \
    X(void, process, (int32_t count, const gmpi::MpEvent* events), (count, events))                       \
    X(int32_t, receiveMessageFromGui, (int32_t id, int32_t size, void* data), (id, size, data))           \
    X(int32_t, receiveMessageFromGui, (int32_t id, int32_t size, const void* data), (id, size, data))

#define KX_GUARDED_SLOT(result, name, parameters, arguments)   \
    result name parameters override {                          \
        return kx::guarded([&] { return T::name arguments; }); \
    }
#define KX_DECLARED_SLOT(result, name, parameters, arguments) result name parameters override;

namespace kx {

namespace detail {
// Never constructed: each exists only to be abstract when a pure slot is missing from its list.
struct GuiSlotList final : gmpi::IMpUserInterface2B {
    KX_GUI_HOST_SLOTS(KX_DECLARED_SLOT)
};
struct DspSlotList final : gmpi::IMpPlugin, gmpi::IMpPlugin2, gmpi::IMpLegacyInitialization, IoldSchoolInitialisation {
    KX_DSP_HOST_SLOTS(KX_DECLARED_SLOT)
};
static_assert(!std::is_abstract_v<GuiSlotList>, "a slot of the GUI interfaces is missing from KX_GUI_HOST_SLOTS");
static_assert(!std::is_abstract_v<DspSlotList>, "a slot of the DSP interfaces is missing from KX_DSP_HOST_SLOTS");
}  // namespace detail

// The object the factory makes for module class T; T's side (T::sub_type) picks the slot list. Final, so
// that no class can override a slot again outside the guard.
template <class T, int32_t side = T::sub_type>
class Guarded;

template <class T>
class Guarded<T, gmpi::MP_SUB_TYPE_GUI2> final : public T {
public:
    KX_GUI_HOST_SLOTS(KX_GUARDED_SLOT)
    // Graphic modules' own getToolTip stays visible beside the overridden one.
    using T::getToolTip;
};

template <class T>
class Guarded<T, gmpi::MP_SUB_TYPE_AUDIO> final : public T {
public:
    KX_DSP_HOST_SLOTS(KX_GUARDED_SLOT)
};

}  // namespace kx

#undef KX_GUARDED_SLOT
#undef KX_DECLARED_SLOT
