// Reaches up into the session, and into the framework through angle brackets.
#include "session/Session.h"
#include <framework/MpBase2.h>
