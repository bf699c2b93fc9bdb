// A GUI host for benchmarks that takes each transmitted value and does nothing with it, as a host whose
// pin has no wire; or, given onTransmit, hands it on as the least a host carrying a wire must do.
#pragma once

#include <benchmark/benchmark.h>

#include <functional>

#include "gmpi/IMpUserInterfaceHost2.h"

class QuietHost final : public gmpi::IMpUserInterfaceHost2 {
public:
    explicit QuietHost(int32_t pinCount) : pinCount_(pinCount) {}
    int32_t queryInterface(const gmpi::MpGuid& iid, void** out) override {
        *out = nullptr;
        if (iid == gmpi::MP_IID_UI_HOST2 || gmpi::isUnknownIid(iid)) {
            *out = this;
            return gmpi::MP_OK;
        }
        return gmpi::MP_NOSUPPORT;
    }
    int32_t addRef() override { return 1; }
    int32_t release() override { return 1; }
    int32_t pinTransmit(int32_t pin, int32_t size, const void* data, int32_t) override {
        benchmark::DoNotOptimize(data);
        benchmark::DoNotOptimize(size);
        if (onTransmit)
            onTransmit(pin, size, data);
        return gmpi::MP_OK;
    }

    std::function<void(int32_t pin, int32_t size, const void* data)> onTransmit;
    int32_t sendMessageToAudio(int32_t, int32_t, const void*) override { return gmpi::MP_OK; }
    int32_t resolveResource(const char*, const char*, gmpi::IMpUnknown*) override { return gmpi::MP_FAIL; }
    int32_t openResource(const char*, gmpi::IMpUnknown**) override { return gmpi::MP_FAIL; }
    int32_t getHandle(int32_t& h) override {
        h = 0;
        return gmpi::MP_OK;
    }
    int32_t getPinCount(int32_t& count) override {
        count = pinCount_;
        return gmpi::MP_OK;
    }
    int32_t reserved1() override { return gmpi::MP_NOSUPPORT; }
    int32_t reserved2() override { return gmpi::MP_NOSUPPORT; }

private:
    int32_t pinCount_;
};
