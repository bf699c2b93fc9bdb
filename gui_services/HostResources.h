// Resolving and reading skin files through the module's GUI host (the host decides where resources
// live; modules never open files themselves).
#pragma once

#include <string>

#include "gmpi/IMpUserInterfaceHost2.h"

namespace kx {

// The full path the host gives a resource name of a type ("Image", "ImageMeta", ...). When the host
// finds nothing it still names the path the resource would have, and that is returned; empty only
// without a host.
std::string resolveResource(gmpi::IMpUserInterfaceHost2* host, const std::string& name, const char* type);

// Reads a whole resource (a path resolveResource gave) into bytes. False when it cannot be opened; a
// read error keeps what was read before it.
bool readResource(gmpi::IMpUserInterfaceHost2* host, const std::string& fullPath, std::string& bytes);

}  // namespace kx
