// kxhost show: a patch's panel in a window, live.
#pragma once

#include <filesystem>
#include <iosfwd>

#include "patch/Patch.h"
#include "session/Bundle.h"

namespace kxhost {

struct ShowOptions {
    bool play = false;             // play the scenario once the window is up; else only the set-up runs
    std::filesystem::path output;  // where a played scenario writes its snapshots (empty: not written)
};

// Sets the patch up, shows its panel in a window and runs until the window is closed; then releases every
// module and checks that nothing is left behind. Prints the trace to out, as `run` does. Answers the exit
// status: 0, or 1 when a played expectation failed or something was left behind. Throws HostError when
// no display can be opened or the patch places nothing.
int show(Bundle& bundle, const Patch& patch, const ShowOptions& options, std::ostream& out, std::ostream& err);

}  // namespace kxhost
