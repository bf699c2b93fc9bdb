// kxhost: runs patches against the module bundle, shows their panels live, and lists what the bundle and
// its descriptions offer.
#include <CLI/CLI.hpp>

#include <cstdio>
#include <iomanip>
#include <iostream>

#include "patch/Catalogue.h"
#include "patch/Error.h"
#include "session/Bundle.h"
#include "session/Session.h"
#include "show/Show.h"
#include "validate/Validate.h"

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

int showLive(const Paths& paths, const std::string& patchFile, const ShowOptions& options) {
    const Catalogue catalogue = Catalogue::load(paths.descriptionsPath());
    const Patch patch = parsePatchFile(patchFile, catalogue);
    Bundle bundle(paths.bundlePath());
    return show(bundle, patch, options, std::cout, std::cerr);
}

void makeOutputFolder(const std::string& output) {
    if (output.empty())
        return;
    std::error_code ec;
    std::filesystem::create_directories(output, ec);
    if (!std::filesystem::is_directory(output))
        throw HostError("cannot make the output folder " + output);
}

int run(const Paths& paths, const std::string& patchFile, const std::string& output) {
    const Catalogue catalogue = Catalogue::load(paths.descriptionsPath());
    const Patch patch = parsePatchFile(patchFile, catalogue);
    Bundle bundle(paths.bundlePath());
    Session session(bundle, patch, std::cout, std::cerr);
    if (!output.empty())
        session.setOutputDir(output);
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

int validateAll(const Paths& paths, const validate::Options& options) {
    const Catalogue catalogue = Catalogue::load(paths.descriptionsPath());
    Bundle bundle(paths.bundlePath());
    std::cout << "bundle:       " << bundle.path().string() << "\n"
              << "descriptions: " << paths.descriptionsPath().string() << "\n\n";
    return validate::run(bundle, catalogue, options, std::cout, std::cerr);
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
    std::string output;
    runCmd->add_option("--out,--output", output,
                       "folder the run writes its files (snapshot PNGs) into, made if missing (default: the current "
                       "folder)");
    ShowOptions showOptions;
    auto* showCmd = app.add_subcommand(
        "show",
        "open a patch's panel in a window, live: its widgets take the pointer, its timers run, its pin "
        "traffic is printed; closing the window checks that every module and host object is released");
    showCmd->add_option("PATCH", patchFile, "the patch file")->required();
    showCmd->add_flag("--play", showOptions.play,
                      "play the patch's scenario once the window is up (default: only its set-up runs)");
    showCmd->add_option("--out,--output", output, "folder a played scenario writes its snapshots into");
    auto* listCmd =
        app.add_subcommand("list", "list the described identifiers and whether the bundle creates each side");
    validate::Options validateOptions;
    auto* validateCmd = app.add_subcommand(
        "validate",
        "create every described identifier and side through the bundle, feed it hostile input, release "
        "it and check that nothing is left behind");
    validateCmd->add_option("--seed", validateOptions.seed, "seed of the hostile input (default 1)");
    validateCmd->add_option("--rounds", validateOptions.rounds, "hostile actions per created half (default 150)")
        ->check(CLI::NonNegativeNumber);
    validateCmd->add_option("--module", validateOptions.only, "validate only this identifier (repeatable)");
    validateCmd->add_option("--log", validateOptions.log, "append every step to this file as it happens");
    validateCmd->add_flag("--quiet", validateOptions.quiet, "no per-module summary lines");
    CLI11_PARSE(app, argc, argv);

    try {
        if (*runCmd) {
            makeOutputFolder(output);
            return run(paths, patchFile, output);
        }
        if (*showCmd) {
            makeOutputFolder(output);
            showOptions.output = output;
            return showLive(paths, patchFile, showOptions);
        }
        if (*listCmd)
            return list(paths);
        if (*validateCmd)
            return validateAll(paths, validateOptions);
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
