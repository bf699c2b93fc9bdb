// The patch language's keywords: directives and scenario steps. Each table is filled by static
// registrations at the bottom of the file that implements the keyword, like module registration:
//
//   namespace {
//   const bool registered = kxhost::Steps::add("wait", compileWait);
//   }
//
// The parts that register are linked whole, so a new file needs no edit elsewhere.
#pragma once

#include <functional>
#include <string>

#include "patch/Parser.h"

namespace kxhost {

// A top-level patch directive (before "scenario"): parses its line into the patch.
using DirectiveHandler = std::function<void(Parser&, const Line&)>;

struct Directives {
    static bool add(const std::string& keyword, DirectiveHandler handler);
    static const DirectiveHandler* find(const std::string& keyword);
};

// A scenario step: compiles its line (resolving pins and values, so errors name the line before
// anything runs) into an action.
using StepCompiler = std::function<Action(Parser&, const Line&)>;

struct StepKind {
    StepCompiler compile;
    bool observes = false;
};

struct Steps {
    static bool add(const std::string& keyword, StepCompiler compile, bool observes = false);
    static const StepKind* find(const std::string& keyword);
};

}  // namespace kxhost
