// Modules broken on purpose, each in one way the validator must catch and name. Built into a bundle of
// their own; never part of the pack.
#include <glib.h>

#include <cstring>
#include <stdexcept>

#include "MpFactory.h"
#include "MpGuiBase2.h"

// Copies whatever size the host gives into a 4-byte value: any size above 4 writes past it.
class V_UnboundedCopy : public SeGuiInvisibleBase {
public:
    int32_t setPin(int32_t pinId, int32_t, int32_t size, const void* data) override {
        if (pinId != 0)
            return gmpi::MP_FAIL;
        if (size > 0 && data)
            std::memcpy(&value_, data, static_cast<size_t>(size));
        return gmpi::MP_OK;
    }

private:
    int32_t value_ = 0;
};

// Not wrapped in the framework's guard, so what its handler throws reaches the host.
class V_ThrowsThrough : public SeGuiInvisibleBase {
public:
    V_ThrowsThrough() { initializePin(in_); }
    int32_t notifyPin(int32_t pinId, int32_t voice) override {
        if (pinId == 0 && in_ < 0)
            throw std::runtime_error("negative input");
        return SeGuiInvisibleBase::notifyPin(pinId, voice);
    }

private:
    MpGuiPin<int> in_;
};

// Starts a run-loop timer and never removes it: after release the loop still holds its source.
class V_LeavesTimer : public SeGuiInvisibleBase {
public:
    V_LeavesTimer() { initializePin(in_); }
    int32_t initialize() override {
        g_timeout_add(
            60000, [](gpointer) -> gboolean { return G_SOURCE_CONTINUE; }, nullptr);
        return gmpi::MP_OK;
    }

private:
    MpGuiPin<int> in_;
};

// Keeps the tool-tip text object it was handed, and takes its host again on every notification.
class V_Hoarder : public SeGuiInvisibleBase {
public:
    V_Hoarder() { initializePin(in_); }
    int32_t getToolTip(float, float, gmpi::IMpUnknown* returnString) override {
        if (returnString && !kept_) {
            returnString->addRef();
            kept_ = returnString;
        }
        return gmpi::MP_FAIL;
    }
    int32_t notifyPin(int32_t pinId, int32_t voice) override {
        void* again = nullptr;
        host->queryInterface(gmpi::MP_IID_UI_HOST2, &again);
        return SeGuiInvisibleBase::notifyPin(pinId, voice);
    }

private:
    MpGuiPin<int> in_;
    gmpi::IMpUnknown* kept_ = nullptr;
};

namespace {
gmpi::IMpUnknown* createUnguarded() { return static_cast<gmpi::IMpUserInterface2B*>(new V_ThrowsThrough); }

const bool registered = gmpi::Register<V_UnboundedCopy>::withId(L"V_UnboundedCopy") &&
                        RegisterPlugin(gmpi::MP_SUB_TYPE_GUI2, L"V_ThrowsThrough", &createUnguarded) == 0 &&
                        gmpi::Register<V_LeavesTimer>::withId(L"V_LeavesTimer") &&
                        gmpi::Register<V_Hoarder>::withId(L"V_Hoarder");
}  // namespace
