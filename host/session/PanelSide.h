// The session's panel, for what shows it outside the scenario (the live window).
#pragma once

#include "gui/Graphics.h"

#include "patch/Patch.h"

namespace kxhost {

class Session;

// The panel of a started session, or null before the first instance is created.
Panel* findPanel(Session& s);
// Whether the patch declares a panel (`panel`) or places an instance on one (`place`).
bool hasPanel(const Patch& patch);

}  // namespace kxhost
