// Patch files as kxhost reads them, against the pack's own module descriptions: a malformed patch is the
// parser's own error naming the file and line; any other exception escaping is a finding. Parsing runs
// no module, so nothing here depends on the bundle.
#include <cstdint>
#include <filesystem>
#include <string>

#include "FuzzInput.h"
#include "PackCatalogue.h"
#include "patch/Error.h"
#include "patch/Patch.h"

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    kxfuzz::packCatalogue();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    // A folder that exists, so that "resources ." and its relatives can be checked.
    const std::filesystem::path file = std::filesystem::path(KX_SOURCE_DIR) / "examples" / "patches" / "fuzz.kxp";
    try {
        const kxhost::Patch patch = kxhost::parsePatchText(text, file, kxfuzz::packCatalogue());
        for (const auto& wire : patch.wires) {
            KX_FUZZ_CHECK(patch.pin(wire.from) && patch.pin(wire.to));
            KX_FUZZ_CHECK(patch.wire(wire.from, wire.to) == &wire);
            patch.label(wire.from);
        }
        for (const auto& decl : patch.instances)
            KX_FUZZ_CHECK(patch.instance(decl.name) == &decl && !patch.param(decl.name));
        for (const auto& param : patch.params)
            for (const auto& pin : param.pins)
                KX_FUZZ_CHECK(patch.paramOf(pin) == &param);
    } catch (const kxhost::HostError& e) {
        KX_FUZZ_CHECK(std::string(e.what()).rfind(file.string(), 0) == 0);
    }
    return 0;
}
