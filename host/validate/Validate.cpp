#include "validate/Validate.h"

#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <iomanip>
#include <map>
#include <ostream>
#include <sstream>

#include "gui/RunLoop.h"
#include "patch/Error.h"

#if defined(__has_feature)
#if __has_feature(address_sanitizer)
#define KX_VALIDATE_LSAN 1
#endif
#endif
#if defined(__SANITIZE_ADDRESS__)
#define KX_VALIDATE_LSAN 1
#endif
#if KX_VALIDATE_LSAN
#include <sanitizer/lsan_interface.h>
#endif

namespace kxhost::validate {

// ---- registries

namespace {

std::map<Side, Drivers::Maker>& drivers() {
    static std::map<Side, Drivers::Maker> all;
    return all;
}

std::vector<Aspects::Maker>& aspects() {
    static std::vector<Aspects::Maker> all;
    return all;
}

}  // namespace

bool Drivers::add(Side side, Maker maker) {
    drivers()[side] = std::move(maker);
    return true;
}

std::unique_ptr<SideDriver> Drivers::make(Side side) {
    auto it = drivers().find(side);
    return it == drivers().end() ? nullptr : it->second();
}

bool Aspects::add(Maker maker) {
    aspects().push_back(std::move(maker));
    return true;
}

std::vector<std::unique_ptr<Aspect>> Aspects::makeAll() {
    std::vector<std::unique_ptr<Aspect>> all;
    for (const auto& make : aspects())
        all.push_back(make());
    return all;
}

// ---- Subject

namespace {

// A side whose last pin the host duplicates is validated with three copies of it.
SideInfo withDuplicates(const SideInfo& described) {
    const bool open = !described.pins.empty() && described.pins.back().autoDuplicate;
    return open ? *resizedSide(described, static_cast<int>(described.pins.size()) + 3) : described;
}

}  // namespace

Subject::Subject(const ModuleInfo& m, Side sd, const char* how, HostRefs& r, Inputs& in, std::mt19937_64& random)
    : module(m), side(sd), pins(withDuplicates(*m.side(sd))), via(how), refs(r), inputs(in), rng(random) {}

const PinInfo* Subject::pinAt(int32_t index) const {
    if (const PinInfo* pin = pins.byIndex(index))
        return pin;
    return openEnded() && index > pins.pins.back().index ? &pins.pins.back() : nullptr;
}

std::string Subject::label() const { return module.id + " " + sideName(side) + " (" + via + ")"; }

int32_t Subject::call(const std::string& step, const std::function<int32_t()>& f) {
    std::string where = round >= 0 ? "round " + std::to_string(round) + ": " + step
                                   : (round == -1 ? "setting up: " : "releasing: ") + step;
    // Nested calls (a transmission echoed back into the module) restore the outer step afterwards.
    std::string outer = std::move(lastStep_);
    lastStep_ = std::move(where);
    trail::step(lastStep_);
    ++tally.calls;
    int32_t rc = gmpi::MP_FAIL;
    try {
        rc = f();
        if (rc != gmpi::MP_OK)
            ++tally.refused;
    } catch (const std::exception& e) {
        fail(std::string("an exception reached the host: ") + e.what());
    } catch (...) {
        fail("an exception reached the host");
    }
    lastStep_ = std::move(outer);
    if (!lastStep_.empty())
        trail::step(lastStep_);
    return rc;
}

void Subject::fail(const std::string& what) {
    failures.push_back((lastStep_.empty() ? std::string() : lastStep_ + ": ") + what);
    stopped = true;
}

// ---- the run

namespace {

struct ModuleResult {
    std::string id;
    Side side;
    Tally tally;
    std::vector<std::string> failures;  // each prefixed with the creation path
};

class TempFolder {
public:
    TempFolder() {
        std::string pattern = (std::filesystem::temp_directory_path() / "kxvalidate-XXXXXX").string();
        if (!mkdtemp(pattern.data()))
            throw HostError("validate: cannot make a temporary folder");
        path_ = pattern;
        trail::scratch(path_);
    }
    ~TempFolder() {
        trail::scratch({});
        std::error_code ec;
        std::filesystem::remove_all(path_, ec);
    }
    const std::filesystem::path& path() const { return path_; }

private:
    std::filesystem::path path_;
};

// Modules that write files write relative to the working folder: keep that inside the temporary one.
class WorkingFolder {
public:
    explicit WorkingFolder(const std::filesystem::path& to) {
        std::error_code ec;
        previous_ = std::filesystem::current_path(ec);
        std::filesystem::current_path(to, ec);
    }
    ~WorkingFolder() {
        std::error_code ec;
        std::filesystem::current_path(previous_, ec);
    }

private:
    std::filesystem::path previous_;
};

bool leaksFound() {
#if KX_VALIDATE_LSAN
    return __lsan_do_recoverable_leak_check() != 0;
#else
    return false;
#endif
}

class Runner {
public:
    Runner(Bundle& bundle, const Options& options, std::ostream& err)
        : bundle_(bundle), options_(options), err_(err), inputs_(options.seed) {}

    // Validates one side of one identifier, both creation paths.
    ModuleResult validate(const ModuleInfo& m, Side side, uint64_t seed) {
        ModuleResult result{m.id, side, {}, {}};
        for (const char* via : {"createInstance", "createInstance2"}) {
            std::mt19937_64 rng(seed);
            HostRefs refs;
            Subject s(m, side, via, refs, inputs_, rng);
            s.folder = folder_.path();
            trail::module(s.label() + ", seed " + std::to_string(options_.seed));
            once(s);
            result.tally.calls += s.tally.calls;
            result.tally.refused += s.tally.refused;
            result.tally.transmissions += s.tally.transmissions;
            result.tally.feedbackCuts += s.tally.feedbackCuts;
            result.tally.malformedSent += s.tally.malformedSent;
            for (auto& f : s.failures)
                result.failures.push_back(std::string(via) + ", " + f);
            for (const auto& f : s.failures)
                err_ << "kxhost validate: FAILED " << s.label() << ", " << f << "\n";
            err_.flush();
        }
        trail::clear();
        return result;
    }

private:
    void once(Subject& s) {
        auto driver = Drivers::make(s.side);
        if (!driver) {
            s.fail(std::string("this host has no validation driver for the ") + sideName(s.side) + " side");
            return;
        }
        auto all = Aspects::makeAll();
        for (auto& a : all)
            a->offer(s, s.faces);
        driver->makeHost(s);
        const int aliveBefore = Counted::alive();

        s.round = -1;
        const int32_t rc = s.call("create", [&] {
            return s.via[std::char_traits<char>::length(s.via) - 1] == '2'
                       ? bundle_.create(s.module.id, s.side, s.object)
                       : bundle_.createWithHost(s.module.id, s.side, s.hostFace, s.object);
        });
        if (rc != gmpi::MP_OK || !s.object) {
            s.fail("the bundle does not create it (result " + std::to_string(rc) + ")");
            driver->dropHost(s);
            return;
        }

        std::vector<Aspect*> attached;
        if (driver->start(s) && !s.stopped) {
            for (auto& a : all)
                if (a->attach(s))
                    attached.push_back(a.get());
            for (s.round = 0; s.round < options_.rounds && !s.stopped; ++s.round) {
                if (!attached.empty() && s.chance(30))
                    attached[static_cast<size_t>(s.pick(static_cast<int>(attached.size())))]->round(s);
                else
                    driver->round(s);
            }
        }
        s.round = -2;
        for (Aspect* a : attached)
            a->detach(s);
        driver->finish(s);

        gmpi::IMpUnknown* object = std::exchange(s.object, nullptr);
        const int32_t left = s.call("release", [&] { return object->release(); });
        // The call counts a non-zero result as refused; here it is the remaining count.
        if (left != 0) {
            s.fail("release left the reference count at " + std::to_string(left) + ", not 0");
            return;  // the module lives on: what it holds is not left behind yet
        }
        checkNothingLeft(s, aliveBefore);
        driver->dropHost(s);
        if (leaksFound())
            s.fail("memory leaked (the leak report above names the allocations)");
    }

    void checkNothingLeft(Subject& s, int aliveBefore) {
        if (Counted::alive() != aliveBefore)
            s.fail(std::to_string(Counted::alive() - aliveBefore) +
                   " host object(s) handed to the module are still held after its release");
        if (s.refs.outstanding() < 0)
            s.fail("released its host " + std::to_string(-s.refs.outstanding()) + " time(s) more than it took it");
        else if (s.refs.outstanding() > s.refs.faces())
            s.fail("still holds " + std::to_string(s.refs.outstanding()) + " references to its host, for " +
                   std::to_string(s.refs.faces()) + " face(s) it asked for");
        // Timers: a released module may leave nothing on the run loop. Running what is due also calls
        // any callback left behind, which under the sanitizers shows a call into freed memory.
        if (runloop::canCount() && !timersUnreliable_) {
            const int next = runloop::dispatchDue();
            if (next != -1) {
                s.fail("a timeout source is still on the run loop after release (a timer left registered)");
                runloop::runFor(std::min(next + 5, 250));
                // What it left stays: later modules cannot be checked for timers in this run.
                timersUnreliable_ = true;
            }
        }
    }

    Bundle& bundle_;
    const Options& options_;
    std::ostream& err_;
    Inputs inputs_;
    TempFolder folder_;
    WorkingFolder cwd_{folder_.path()};
    bool timersUnreliable_ = false;
};

uint64_t mix(uint64_t seed, const std::string& id, Side side) {
    // Each half gets its own stream, so adding a module does not change what the others receive.
    uint64_t h = seed ^ 0xCBF29CE484222325ull;
    for (unsigned char c : id)
        h = (h ^ c) * 0x100000001B3ull;
    return h ^ (side == Side::Dsp ? 0x5bd1e995ull : 0);
}

}  // namespace

int run(Bundle& bundle, const Catalogue& catalogue, const Options& options, std::ostream& out, std::ostream& err) {
    for (const auto& id : options.only)
        if (!catalogue.find(id))
            throw HostError("validate: no description of " + id);
    trail::install(options.log);
    // Timeouts that were there before any module ran are the host's own; the check needs a quiet loop.
    runloop::runFor(0);
    Runner runner(bundle, options, err);
    std::vector<ModuleResult> results;
    for (const auto& [id, m] : catalogue.modules()) {
        if (!options.only.empty() && std::find(options.only.begin(), options.only.end(), id) == options.only.end())
            continue;
        for (Side side : {Side::Gui, Side::Dsp}) {
            if (!m.side(side))
                continue;
            results.push_back(runner.validate(m, side, mix(options.seed, id, side)));
            const ModuleResult& r = results.back();
            if (!options.quiet)
                out << (r.failures.empty() ? "  ok    " : "  FAIL  ") << std::left << std::setw(26) << id
                    << std::setw(5) << sideName(side) << "calls " << std::setw(7) << r.tally.calls << "refused "
                    << std::setw(6) << r.tally.refused << "sent " << std::setw(6) << r.tally.transmissions
                    << "refused sends " << std::setw(5) << r.tally.malformedSent << "echo cuts " << r.tally.feedbackCuts
                    << std::endl;
        }
    }
    const auto failed =
        std::count_if(results.begin(), results.end(), [](const auto& r) { return !r.failures.empty(); });
    out << "\nvalidated " << results.size() << " half(s), " << options.rounds << " rounds per creation path, seed "
        << options.seed << ": " << (failed ? std::to_string(failed) + " failed" : "all passed") << std::endl;
    if (failed) {
        err << "kxhost validate: failing halves:\n";
        for (const auto& r : results)
            for (const auto& f : r.failures)
                err << "  " << r.id << " " << sideName(r.side) << ": " << f << "\n";
        err << "rerun one with: kxhost validate --seed " << options.seed << " --module IDENTIFIER\n";
    }
    return failed ? 1 : 0;
}

}  // namespace kxhost::validate
