#include "patch/Registry.h"

#include <map>

namespace kxhost {

namespace {
// Function-local statics: registrations run during static initialisation, in any file order.
std::map<std::string, DirectiveHandler>& directives() {
    static std::map<std::string, DirectiveHandler> table;
    return table;
}
std::map<std::string, StepKind>& steps() {
    static std::map<std::string, StepKind> table;
    return table;
}
}  // namespace

bool Directives::add(const std::string& keyword, DirectiveHandler handler) {
    return directives().emplace(keyword, std::move(handler)).second;
}

const DirectiveHandler* Directives::find(const std::string& keyword) {
    auto it = directives().find(keyword);
    return it == directives().end() ? nullptr : &it->second;
}

bool Steps::add(const std::string& keyword, StepCompiler compile, bool observes) {
    return steps().emplace(keyword, StepKind{std::move(compile), observes}).second;
}

const StepKind* Steps::find(const std::string& keyword) {
    auto it = steps().find(keyword);
    return it == steps().end() ? nullptr : &it->second;
}

}  // namespace kxhost
