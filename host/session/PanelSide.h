// The session's panel, for what shows it outside the scenario (the live window).
#pragma once

#include "gui/Graphics.h"

namespace kxhost {

class Session;

// The panel of a started session, or null before the first instance is created.
Panel* findPanel(Session& s);

}  // namespace kxhost
