// A module under test with its recording host already attached, and the host's echo: a host parameter
// wired to a pin sends a transmitted value straight back into the same pin (setPin, then notifyPin).
#pragma once

#include "FakeGuiHost.h"

namespace kxtest {

template <class M>
struct Hosted {
    M module;
    FakeGuiHost host;

    Hosted() { module.setHost(host.unknown()); }

    void echoTransmissions() {
        host.onTransmit = [this](int pin, int size, const void* data) {
            module.setPin(pin, 0, size, data);
            module.notifyPin(pin, 0);
        };
    }
    template <class V>
    void send(int pin, const V& value) {
        deliver(module, pin, value);
    }
    void sendText(int pin, const std::wstring& value) { deliverText(module, pin, value); }
};

}  // namespace kxtest
