#include "logic/GuiSampleRate.h"

#include "MpFactory.h"

// The GUI half waits for this one message, so it goes out even when the host cannot tell its rate: the
// GUI then shows what the host left in the field (0 when it wrote nothing).
int32_t KX_GUISampleRate::open() {
    if (host) {
        host->getSampleRate(sampleRate);
        host->sendMessageToGui(0, sizeof sampleRate, &sampleRate);
    }
    return MpBase2::open();
}

KX_GUISampleRateGUI::KX_GUISampleRateGUI() {
    initializePin(pinDefault, &KX_GUISampleRateGUI::onSetDefault);
    initializePin(pinSampleRate);
}

int32_t KX_GUISampleRateGUI::receiveMessageFromAudio(int32_t, int32_t size, const void* data) {
    if (size != static_cast<int32_t>(sizeof(float)) || !data)
        return gmpi::MP_FAIL;
    pinTransmit(kx::samplerate::gui::SampleRate, size, data, 0);
    received = true;
    return gmpi::MP_OK;
}

void KX_GUISampleRateGUI::onSetDefault() {
    // Once the engine has reported, its rate stands.
    if (!received)
        pinSampleRate = pinDefault.getValue();
}

namespace {
const bool registered = gmpi::Register<KX_GUISampleRate>::withId(L"KX_GUISampleRate") &&
                        gmpi::Register<KX_GUISampleRateGUI>::withId(L"KX_GUISampleRate");
}  // namespace
