// The smallest bundle: one GUI module that does nothing, registered and created through the same
// framework entry point and factory as the pack. The load benchmark's baseline.
#include "MpFactory.h"
#include "MpGuiBase2.h"

class KX_Empty : public SeGuiInvisibleBase {};

namespace {
const bool registered = gmpi::Register<KX_Empty>::withId(L"KX_Empty");
}
