#include "session/Extension.h"

namespace kxhost {

namespace {
// A function-local static: registrations run during static initialisation, in any file order.
std::vector<ExtensionMaker>& extensions() {
    static std::vector<ExtensionMaker> list;
    return list;
}
}  // namespace

bool Extensions::add(ExtensionMaker maker) {
    extensions().push_back(std::move(maker));
    return true;
}

const std::vector<ExtensionMaker>& Extensions::all() { return extensions(); }

}  // namespace kxhost
