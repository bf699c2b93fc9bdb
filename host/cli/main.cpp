// kxhost: runs patches against the module bundle, shows their panels live, and lists what the bundle and
// its descriptions offer.
#include <CLI/CLI.hpp>

#include <cstdio>
#include <iostream>
#include <limits>
#include <stdexcept>
#include <string>

#include "cli/Listing.h"
#include "patch/Catalogue.h"
#include "patch/Error.h"
#include "session/Bundle.h"
#include "session/Session.h"
#include "show/Show.h"
#include "validate/Validate.h"

namespace {

using namespace kxhost;

// A command line kxhost cannot run: a one-line message and exit status 2, like an error in a patch.
class UsageError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// Exit statuses, as docs/patch-format.md states them.
constexpr int kPassed = 0;
constexpr int kUsageOrPatchError = 2;
constexpr int kInternalError = 3;

// A whole number within [low, high], with a message that says so.
CLI::Validator countBetween(long long low, long long high) {
    return CLI::Validator(
        [low, high](std::string& text) -> std::string {
            long long v = 0;
            size_t used = 0;
            try {
                v = std::stoll(text, &used);
            } catch (const std::exception&) {
                used = 0;
            }
            if (used == 0 || used != text.size() || v < low || v > high)
                return "takes a whole number from " + std::to_string(low) + " to " + std::to_string(high) + ", not " +
                       text;
            return {};
        },
        "");
}

// CLI11's messages may span lines; kxhost prints one.
std::string oneLine(std::string text) {
    for (char& c : text)
        if (c == '\n')
            c = ' ';
    while (!text.empty() && text.back() == ' ')
        text.pop_back();
    return text;
}

struct Paths {
    std::string bundle;
    std::string descriptions;

    // The bundle given, else the one beside kxhost, else the one the build made. Throws HostError naming
    // it when it is not there: the descriptions are looked for beside it, so that comes first.
    std::filesystem::path bundlePath() const {
        const std::filesystem::path path = bundle.empty() ? defaultBundlePath() : std::filesystem::path(bundle);
        std::error_code ec;
        if (path.empty())
            throw HostError("no module bundle beside kxhost; give one with --bundle PATH");
        if (!std::filesystem::is_regular_file(path, ec))
            throw HostError("bundle " + path.string() + " does not exist" +
                            (bundle.empty() ? " (give one with --bundle PATH)" : ""));
        return path;
    }
    // The descriptions travel with the bundle: by default the folder beside it.
    std::filesystem::path descriptionsPath() const {
        return descriptions.empty() ? bundlePath().parent_path() / "descriptions" : std::filesystem::path(descriptions);
    }
};

int showLive(const Paths& paths, const std::string& patchFile, const ShowOptions& options) {
    std::error_code ec;
    if (std::filesystem::is_directory(patchFile, ec))
        throw UsageError(patchFile + " is a folder; kxhost show takes a patch file (.kxp)");
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
        throw UsageError("cannot make the output folder " + output);
}

int run(const Paths& paths, const std::string& patchFile, const std::string& output) {
    std::error_code ec;
    if (std::filesystem::is_directory(patchFile, ec))
        throw UsageError(patchFile + " is a folder; kxhost run takes a patch file (.kxp)");
    const std::filesystem::path bundlePath = paths.bundlePath();
    const Catalogue catalogue = Catalogue::load(paths.descriptionsPath());
    const Patch patch = parsePatchFile(patchFile, catalogue);
    if (patch.instances.empty() && patch.setup.empty() && patch.scenario.empty())
        std::cerr << "kxhost: " << patchFile << " is empty: no instance and no step to run\n";
    Bundle bundle(bundlePath);
    Session session(bundle, patch, std::cout, std::cerr);
    if (!output.empty())
        session.setOutputDir(output);
    return session.run() ? 0 : 1;
}

int list(const Paths& paths, bool asJson) {
    const Catalogue catalogue = Catalogue::load(paths.descriptionsPath());
    Bundle bundle(paths.bundlePath());
    if (!asJson)
        std::cout << "bundle:       " << bundle.path().string() << "\n"
                  << "descriptions: " << paths.descriptionsPath().string() << "\n\n";
    return listModules(bundle, catalogue, asJson, std::cout, std::cerr);
}

int describe(const Paths& paths, const std::string& id, bool asJson) {
    const Catalogue catalogue = Catalogue::load(paths.descriptionsPath());
    Bundle bundle(paths.bundlePath());
    return describeModule(bundle, catalogue, id, asJson, std::cout);
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
                       "folder the run writes its files (snapshot PNGs) into, made if missing; without it, "
                       "snapshots are rendered but not written");
    ShowOptions showOptions;
    auto* showCmd = app.add_subcommand(
        "show",
        "open a patch's panel in a window, live: its widgets take the pointer, its timers run, its pin "
        "traffic is printed; closing the window checks that every module and host object is released");
    showCmd->add_option("PATCH", patchFile, "the patch file")->required();
    showCmd->add_flag("--play", showOptions.play,
                      "play the patch's scenario once the window is up (default: only its set-up runs)");
    showCmd->add_option("--out,--output", output, "folder a played scenario writes its snapshots into");
    bool asJson = false;
    auto* listCmd = app.add_subcommand(
        "list", "list the described identifiers: whether the bundle creates each side, category and summary");
    listCmd->add_flag("--json", asJson, "the same as JSON, with every pin, for tools");
    std::string describeId;
    auto* describeCmd =
        app.add_subcommand("describe", "print one identifier's description: its pins and what each is for");
    describeCmd->add_option("ID", describeId, "the module identifier (KX_Image)")->required();
    describeCmd->add_flag("--json", asJson, "as JSON, the form list --json gives each identifier");
    validate::Options validateOptions;
    auto* validateCmd = app.add_subcommand(
        "validate",
        "create every described identifier and side through the bundle, feed it hostile input, release "
        "it and check that nothing is left behind");
    validateCmd->add_option("--seed", validateOptions.seed, "seed of the hostile input (default 1)")
        ->check(countBetween(0, std::numeric_limits<long long>::max()));
    validateCmd->add_option("--rounds", validateOptions.rounds, "hostile actions per created half (default 150)")
        ->check(countBetween(0, 1'000'000));
    validateCmd->add_option("--module", validateOptions.only, "validate only this identifier (repeatable)");
    validateCmd->add_option("--log", validateOptions.log, "append every step to this file as it happens");
    validateCmd->add_flag("--quiet", validateOptions.quiet, "no per-module summary lines");
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& e) {
        // Help and version requests are "errors" with status 0: they print what was asked for.
        if (e.get_exit_code() == static_cast<int>(CLI::ExitCodes::Success))
            return app.exit(e);
        std::cerr << "kxhost: " << oneLine(e.what()) << " (kxhost --help lists the commands)\n";
        return kUsageOrPatchError;
    }

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
            return list(paths, asJson);
        if (*describeCmd)
            return describe(paths, describeId, asJson);
        if (*validateCmd)
            return validateAll(paths, validateOptions);
    } catch (const HostError& e) {
        std::cout.flush();
        std::cerr << "kxhost: " << e.what() << "\n";
        return kUsageOrPatchError;
    } catch (const UsageError& e) {
        std::cout.flush();
        std::cerr << "kxhost: " << e.what() << "\n";
        return kUsageOrPatchError;
    } catch (const std::exception& e) {
        std::cout.flush();
        std::cerr << "kxhost: internal error: " << e.what() << "\n";
        return kInternalError;
    }
    return kPassed;
}
