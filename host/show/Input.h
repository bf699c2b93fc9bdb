// What a real pointer means to the panel's modules.
#pragma once

#include <gdk/gdk.h>

#include <cstdint>

namespace kxhost {

// The pointer flags for an event in GDK's modifier state. button is the one pressed or released (GDK's
// numbering: 1 left, 2 middle, 3 right), 0 for a move; a release still counts its button, as a scripted
// `pointer up` does. Ctrl is the fine-adjustment modifier.
int32_t pointerFlags(GdkModifierType state, unsigned button);

}  // namespace kxhost
