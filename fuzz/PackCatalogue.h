// The pack's own module descriptions (modules/*/*.json in the source tree), read once.
#pragma once

#include "patch/Catalogue.h"

namespace kxfuzz {

const kxhost::Catalogue& packCatalogue();

}  // namespace kxfuzz
