// kxhost list and describe: what the descriptions say of each identifier, beside what the bundle does
// with it, for people (aligned text) and for tools (JSON).
#pragma once

#include <ostream>
#include <string>

#include "patch/Catalogue.h"
#include "session/Bundle.h"

namespace kxhost {

// Every described identifier: whether the bundle creates each side, its category and summary. Returns 1
// when the bundle lacks a described side (reported on err), else 0.
int listModules(Bundle& bundle, const Catalogue& catalogue, bool asJson, std::ostream& out, std::ostream& err);

// One identifier's description and pins. Throws HostError when the identifier is not described.
int describeModule(Bundle& bundle, const Catalogue& catalogue, const std::string& id, bool asJson, std::ostream& out);

}  // namespace kxhost
