#include <cstdio>
#include <cstdlib>

#include "FuzzInput.h"

namespace kxfuzz {

void failed(const char* what, const char* file, int line) {
    std::fprintf(stderr, "%s:%d: property failed: %s\n", file, line, what);
    std::abort();
}

}  // namespace kxfuzz
