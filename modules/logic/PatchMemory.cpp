// KX_PM_INT_NAC, KX_PM_FLOAT_NAC, KX_PM_BOOL_NAC, KX_PM_TEXT_NAC, KX_PM_BLOB_NAC, KX_PM_LIST_NAC and
// their _VOL identifiers: patch memory of six value types. The two identifiers of a type create the
// same classes (declared in PatchMemory.h); only the descriptions the host holds differ.
#include "PatchMemory.h"

#include "MpFactory.h"

namespace {
template <class Dsp, class Gui>
bool registerType(const wchar_t* nac, const wchar_t* nacVol) {
    return gmpi::Register<Dsp>::withId(nac) && gmpi::Register<Gui>::withId(nac) &&
           gmpi::Register<Dsp>::withId(nacVol) && gmpi::Register<Gui>::withId(nacVol);
}

const bool registered = registerType<KX_PM_INT_DSP, KX_PM_INT_GUI>(L"KX_PM_INT_NAC", L"KX_PM_INT_NAC_VOL") &&
                        registerType<KX_PM_FLOAT_DSP, KX_PM_FLOAT_GUI>(L"KX_PM_FLOAT_NAC", L"KX_PM_FLOAT_NAC_VOL") &&
                        registerType<KX_PM_BOOL_DSP, KX_PM_BOOL_GUI>(L"KX_PM_BOOL_NAC", L"KX_PM_BOOL_NAC_VOL") &&
                        registerType<KX_PM_TEXT_DSP, KX_PM_TEXT_GUI>(L"KX_PM_TEXT_NAC", L"KX_PM_TEXT_NAC_VOL") &&
                        registerType<KX_PM_BLOB_DSP, KX_PM_BLOB_GUI>(L"KX_PM_BLOB_NAC", L"KX_PM_BLOB_NAC_VOL") &&
                        registerType<KX_PM_LIST_DSP, KX_PM_LIST_GUI>(L"KX_PM_LIST_NAC", L"KX_PM_LIST_NAC_VOL");
}  // namespace
