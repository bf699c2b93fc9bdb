// kxhost: runs patches against the module bundle and lists what the bundle and its descriptions offer.
#include <CLI/CLI.hpp>

#include <cstdio>
#include <iomanip>
#include <iostream>

#include "Bundle.h"
#include "Catalogue.h"
#include "Error.h"
#include "Graphics.h"
#include "Session.h"

namespace {

using namespace kxhost;

struct Paths {
    std::string bundle;
    std::string descriptions;

    std::filesystem::path bundlePath() const {
        return bundle.empty() ? defaultBundlePath() : std::filesystem::path(bundle);
    }
    // The descriptions travel with the bundle: by default the folder beside it.
    std::filesystem::path descriptionsPath() const {
        return descriptions.empty() ? bundlePath().parent_path() / "descriptions" : std::filesystem::path(descriptions);
    }
};

int run(const Paths& paths, const std::string& patchFile) {
    const Catalogue catalogue = Catalogue::load(paths.descriptionsPath());
    const Patch patch = parsePatchFile(patchFile, catalogue);
    Bundle bundle(paths.bundlePath());
    Session session(bundle, patch, std::cout, std::cerr);
    return session.run() ? 0 : 1;
}

std::string sideStatus(Bundle& bundle, const ModuleInfo& m, Side side, bool& missing) {
    const bool described = m.side(side) != nullptr;
    const bool created = bundle.creates(m.id, side);
    if (described && !created)
        missing = true;
    return described ? (created ? "yes" : "MISSING") : (created ? "undescribed" : "-");
}

int list(const Paths& paths) {
    const Catalogue catalogue = Catalogue::load(paths.descriptionsPath());
    Bundle bundle(paths.bundlePath());
    std::cout << "bundle:       " << bundle.path().string() << "\n"
              << "descriptions: " << paths.descriptionsPath().string() << "\n\n";
    std::cout << std::left << std::setw(26) << "identifier" << std::setw(12) << "gui" << std::setw(12) << "dsp"
              << "name\n";
    bool missing = false;
    for (const auto& [id, m] : catalogue.modules()) {
        const std::string gui = sideStatus(bundle, m, Side::Gui, missing);
        const std::string dsp = sideStatus(bundle, m, Side::Dsp, missing);
        std::cout << std::left << std::setw(26) << id << std::setw(12) << gui << std::setw(12) << dsp << m.name << "\n";
    }
    std::cout << "\n" << catalogue.modules().size() << " identifiers described\n";
    if (missing)
        std::cerr << "kxhost: the bundle does not create every described side (MISSING above)\n";
    return missing ? 1 : 0;
}

}  // namespace

int main(int argc, char** argv) {
    CLI::App app{"kxhost: the reference host of the KX module bundle"};
    app.require_subcommand(1);
    // --bundle and --descriptions may also follow the command.
    app.fallthrough();
    Paths paths;
    app.add_option("--bundle", paths.bundle, "the module bundle to load (default: the one beside kxhost)");
    app.add_option("--descriptions", paths.descriptions,
                   "folder of module description files (default: descriptions/ beside the bundle)");
    std::string patchFile;
    auto* runCmd = app.add_subcommand("run", "run a patch and its scenario, printing every pin transmission");
    runCmd->add_option("PATCH", patchFile, "the patch file")->required();
    std::string outFolder;
    runCmd->add_option("--out", outFolder, "folder the snapshot steps write their PNG images into (made if missing)");
    auto* listCmd =
        app.add_subcommand("list", "list the described identifiers and whether the bundle creates each side");
    CLI11_PARSE(app, argc, argv);

    try {
        if (*runCmd) {
            if (!outFolder.empty()) {
                std::error_code ec;
                std::filesystem::create_directories(outFolder, ec);
                if (!std::filesystem::is_directory(outFolder))
                    throw HostError("cannot make the output folder " + outFolder);
                snapshotFolder() = outFolder;
            }
            return run(paths, patchFile);
        }
        if (*listCmd)
            return list(paths);
    } catch (const HostError& e) {
        std::cout.flush();
        std::cerr << "kxhost: " << e.what() << "\n";
        return 2;
    } catch (const std::exception& e) {
        std::cout.flush();
        std::cerr << "kxhost: internal error: " << e.what() << "\n";
        return 3;
    }
    return 0;
}
