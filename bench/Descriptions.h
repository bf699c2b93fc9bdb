// The module descriptions beside the module sources, which say every identifier's sides and pins.
#pragma once

#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>

namespace kxbench {

// Calls onModule with every module's description object ("id", and "gui" and "dsp" with their "pins").
template <class OnModule>
void forEachDescribedModule(OnModule&& onModule) {
    for (const auto& family : std::filesystem::directory_iterator(KX_SOURCE_DIR "/modules"))
        if (family.is_directory())
            for (const auto& file : std::filesystem::directory_iterator(family.path()))
                if (file.path().extension() == ".json") {
                    const auto described = nlohmann::json::parse(std::ifstream(file.path()));
                    for (const auto& module : described["modules"])
                        onModule(module);
                }
}

}  // namespace kxbench
