// Uses a part its row allows.
#include "gmpi/IMpUnknown.h"
#include "patch/Patch.h"
