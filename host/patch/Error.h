// The one error the host reports to its user: a message that already names where the problem is
// (a file and line, a bundle path, a description file). kxhost prints it and exits non-zero.
#pragma once

#include <stdexcept>
#include <string>

namespace kxhost {

class HostError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// A place in a patch file, as "file:line".
struct Location {
    std::string file;
    int line = 0;

    std::string str() const { return file + ":" + std::to_string(line); }
};

inline HostError errorAt(const Location& where, const std::string& what) {
    return HostError(where.str() + ": " + what);
}

}  // namespace kxhost
