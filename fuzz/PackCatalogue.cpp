#include "PackCatalogue.h"

#include <filesystem>

namespace kxfuzz {

const kxhost::Catalogue& packCatalogue() {
    static const kxhost::Catalogue all = [] {
        kxhost::Catalogue c;
        for (const auto& family : std::filesystem::directory_iterator(KX_SOURCE_DIR "/modules"))
            if (family.is_directory())
                for (const auto& file : std::filesystem::directory_iterator(family.path()))
                    if (file.path().extension() == ".json")
                        c.addFile(file.path());
        return c;
    }();
    return all;
}

}  // namespace kxfuzz
