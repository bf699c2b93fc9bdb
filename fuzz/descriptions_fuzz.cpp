// Module description files as kxhost reads them. Anything malformed must be the loader's own error
// (which names the file); any other exception escaping is a finding. What loads is consistent: pins in
// rising index order with unique names, and every module has a side.
#include <cstdint>
#include <set>
#include <string>

#include "FuzzInput.h"
#include "patch/Catalogue.h"
#include "patch/Error.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    kxhost::Catalogue catalogue;
    try {
        catalogue.addText(text, "fuzz.json");
    } catch (const kxhost::HostError& e) {
        KX_FUZZ_CHECK(std::string(e.what()).rfind("fuzz.json: ", 0) == 0);
        return 0;
    }
    for (const auto& [id, module] : catalogue.modules()) {
        KX_FUZZ_CHECK(id == module.id && !id.empty());
        KX_FUZZ_CHECK(module.gui || module.dsp);
        for (const kxhost::SideInfo* side : {module.side(kxhost::Side::Gui), module.side(kxhost::Side::Dsp)}) {
            if (!side)
                continue;
            std::set<std::string> names;
            int previous = -1;
            for (const auto& pin : side->pins) {
                KX_FUZZ_CHECK(pin.index > previous);
                previous = pin.index;
                KX_FUZZ_CHECK(names.insert(pin.name).second);
                KX_FUZZ_CHECK(side->byIndex(pin.index) == &pin && side->byName(pin.name) == &pin);
                if (pin.defaultValue)
                    pin.defaultValue->format();
            }
        }
    }
    return 0;
}
