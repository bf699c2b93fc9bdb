// Runs patch text against the test bundle and keeps what the session printed.
#pragma once

#include <filesystem>
#include <memory>
#include <sstream>
#include <string>

#include "patch/Catalogue.h"
#include "session/Bundle.h"
#include "session/Session.h"

namespace kxhost {
// Test failures show values as a patch writes them.
inline void PrintTo(const Value& v, std::ostream* os) { *os << v.format(); }
}  // namespace kxhost

namespace kxhosttest {

inline std::filesystem::path testBundle() { return KX_TEST_BUNDLE; }

inline const kxhost::Catalogue& testCatalogue() {
    static const kxhost::Catalogue catalogue = kxhost::Catalogue::load(testBundle().parent_path() / "descriptions");
    return catalogue;
}

inline kxhost::Bundle& bundle() {
    static kxhost::Bundle b(testBundle());
    return b;
}

// A patch parsed from text (as if from file "test.kxp" in dir), started, scenario run.
struct PatchRun {
    explicit PatchRun(const std::string& text,
                      const std::filesystem::path& dir = std::filesystem::temp_directory_path())
        : patch(kxhost::parsePatchText(text, dir / "test.kxp", testCatalogue())),
          session(std::make_unique<kxhost::Session>(bundle(), patch, out, err)) {
        passed = session->run();
    }
    kxhost::PinRef pin(const std::string& instance, int index) const { return {instance, kxhost::Side::Gui, index}; }
    const kxhost::Value& value(const std::string& instance, int index) const {
        return session->value(pin(instance, index));
    }

    kxhost::Patch patch;
    std::ostringstream out, err;
    std::unique_ptr<kxhost::Session> session;
    bool passed = false;
};

}  // namespace kxhosttest
