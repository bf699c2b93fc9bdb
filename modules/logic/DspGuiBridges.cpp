// KX_IntDspGuiBridge, KX_FloatDspGuiBridge, KX_BoolDspGuiBridge, KX_TextDspGuiBridge,
// KX_BlobDspGuiBridge and their "2" identifiers: one value carried between the audio and GUI graphs.
// The classes live in DspGuiBridges.h; each pair of classes serves both identifiers of its type.
#include "DspGuiBridges.h"

#include "MpFactory.h"

namespace {
template <class T>
bool registerBridge(const wchar_t* id) {
    return gmpi::Register<KX_DspGuiBridge<T>>::withId(id) && gmpi::Register<KX_DspGuiBridgeGUI<T>>::withId(id);
}

const bool registered =
    registerBridge<int>(L"KX_IntDspGuiBridge") && registerBridge<float>(L"KX_FloatDspGuiBridge") &&
    registerBridge<bool>(L"KX_BoolDspGuiBridge") && registerBridge<std::wstring>(L"KX_TextDspGuiBridge") &&
    registerBridge<MpBlob>(L"KX_BlobDspGuiBridge") && registerBridge<int>(L"KX_IntDspGuiBridge2") &&
    registerBridge<float>(L"KX_FloatDspGuiBridge2") && registerBridge<bool>(L"KX_BoolDspGuiBridge2") &&
    registerBridge<std::wstring>(L"KX_TextDspGuiBridge2") && registerBridge<MpBlob>(L"KX_BlobDspGuiBridge2");
}  // namespace
