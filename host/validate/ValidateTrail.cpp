// The step record that survives a crash. Before each call into a module the validator writes what it is
// about to do into fixed buffers; when the process dies (a signal, an abort, a sanitizer report) a
// handler prints them, so the report names the module and the input. With --log every step is also
// appended to a file and flushed, which survives even a kill.
#include <fcntl.h>
#include <ftw.h>
#include <unistd.h>

#include <csignal>
#include <cstring>

#include "validate/Validate.h"

#if defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(undefined_behavior_sanitizer)
#define KX_VALIDATE_SANITIZED 1
#endif
#endif
#if defined(__SANITIZE_ADDRESS__)
#define KX_VALIDATE_SANITIZED 1
#endif
#if KX_VALIDATE_SANITIZED
#include <sanitizer/common_interface_defs.h>
#endif

#if KX_VALIDATE_SANITIZED
// The undefined-behaviour sanitizer ends the process through its own runtime, which does not run the
// death callback; an abort does reach the handler below. Options given in the environment still win.
extern "C" const char* __ubsan_default_options() { return "abort_on_error=1"; }
#endif

namespace kxhost::validate::trail {

namespace {

char moduleText[512];
char stepText[1024];
char scratchFolder[4096];
int logFd = -1;
volatile sig_atomic_t reported = 0;

void copyInto(char* to, size_t capacity, const std::string& from) {
    const size_t n = std::min(from.size(), capacity - 1);
    std::memcpy(to, from.data(), n);
    to[n] = '\0';
}

void writeAll(int fd, const char* text) {
    size_t left = std::strlen(text);
    while (left > 0) {
        const ssize_t n = ::write(fd, text, left);
        if (n <= 0)
            return;
        text += n;
        left -= static_cast<size_t>(n);
    }
}

int removeEntry(const char* path, const struct stat*, int, struct FTW*) { return ::remove(path); }

// It runs from signal handlers and sanitizer death callbacks: the report uses only async-signal-safe
// calls; removing the temporary folder afterwards does not, which a process on its way out can afford.
void report() {
    if (reported)
        return;
    reported = 1;
    if (moduleText[0] != '\0') {
        writeAll(2, "\nkxhost validate: CRASHED in ");
        writeAll(2, moduleText);
        writeAll(2, "\nkxhost validate: at ");
        writeAll(2, stepText[0] ? stepText : "(no step recorded)");
        writeAll(2, "\n");
    }
    if (scratchFolder[0] != '\0')
        nftw(scratchFolder, removeEntry, 16, FTW_DEPTH | FTW_PHYS);
}

void onSignal(int sig) {
    report();
    std::signal(sig, SIG_DFL);
    std::raise(sig);
}

}  // namespace

void install(const std::filesystem::path& log) {
    if (!log.empty())
        logFd = ::open(log.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_APPEND, 0644);
#if KX_VALIDATE_SANITIZED
    // The sanitizers report and then end the process through their own path; this runs on it.
    __sanitizer_set_death_callback(report);
    // SIGSEGV and friends are the address sanitizer's to report; an abort (std::terminate) is not.
    std::signal(SIGABRT, onSignal);
#else
    for (int sig : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT})
        std::signal(sig, onSignal);
#endif
}

void scratch(const std::filesystem::path& folder) { copyInto(scratchFolder, sizeof scratchFolder, folder.string()); }

void module(const std::string& label) {
    copyInto(moduleText, sizeof moduleText, label);
    stepText[0] = '\0';
    if (logFd >= 0) {
        const std::string line = "== " + label + "\n";
        writeAll(logFd, line.c_str());
    }
}

void step(const std::string& what) {
    copyInto(stepText, sizeof stepText, what);
    if (logFd >= 0) {
        const std::string line = what + "\n";
        writeAll(logFd, line.c_str());
    }
}

void clear() {
    moduleText[0] = '\0';
    stepText[0] = '\0';
}

}  // namespace kxhost::validate::trail
