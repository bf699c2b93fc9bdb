// Bridges: carry one value between the audio graph and the GUI graph, both ways, through the host's
// message channel between the two halves of one module (message id 0). Each value type has two
// identifiers (KX_IntDspGuiBridge and KX_IntDspGuiBridge2, ...) served by the same pair of classes.
#pragma once

#include <string>
#include <type_traits>

#include "MpBase2.h"
#include "MpGuiBase2.h"
#include "logic/ValuePins.h"

namespace kx::bridge {

namespace dsp {
enum Pin : int { In, Out, Enable, PinCount };
}
namespace gui {
enum Pin : int { Value, PinCount };
}

}  // namespace kx::bridge

// DSP half: passes the audio-graph input to the output and reports it to the GUI half while enabled;
// a value from the GUI half goes to the output whatever the enable pin says.
template <class T>
class KX_DspGuiBridge : public MpBase2 {
public:
    static constexpr int datatype = kx::datatypeOf<T>;

    KX_DspGuiBridge();

    void onSetPins() override;
    // A message that is not well formed for T is refused with -1.
    int32_t onGuiMessage(int32_t id, int32_t size, const void* data) override;

    MpControlPin<T, MP_IN, datatype> pinIn;
    MpControlPin<T, MP_OUT, datatype> pinOut;
    BoolInPin pinEnable;
};

// GUI half: a value arriving in the GUI graph goes to the DSP half; a value from the DSP half is handed
// to the host as the pin's new value, which the host then feeds back into the pin.
template <class T>
class KX_DspGuiBridgeGUI : public SeGuiInvisibleBase {
public:
    KX_DspGuiBridgeGUI();

    void onSetValueIO();
    int32_t receiveMessageFromAudio(int32_t id, int32_t size, const void* data) override;

    kx::ValuePin<T> pinValue;

private:
    // Set while a value from the DSP half is handed to the host, whose feedback of it must not be sent
    // back there.
    bool receiving = false;
};

using KX_IntDspGuiBridge = KX_DspGuiBridge<int>;
using KX_FloatDspGuiBridge = KX_DspGuiBridge<float>;
using KX_BoolDspGuiBridge = KX_DspGuiBridge<bool>;
using KX_TextDspGuiBridge = KX_DspGuiBridge<std::wstring>;
using KX_BlobDspGuiBridge = KX_DspGuiBridge<MpBlob>;
using KX_IntDspGuiBridgeGUI = KX_DspGuiBridgeGUI<int>;
using KX_FloatDspGuiBridgeGUI = KX_DspGuiBridgeGUI<float>;
using KX_BoolDspGuiBridgeGUI = KX_DspGuiBridgeGUI<bool>;
using KX_TextDspGuiBridgeGUI = KX_DspGuiBridgeGUI<std::wstring>;
using KX_BlobDspGuiBridgeGUI = KX_DspGuiBridgeGUI<MpBlob>;
