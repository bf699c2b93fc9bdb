// Text files: KX_StringSaver, KX_StringLoader.
#include "convert/TextFiles.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>
#include <utility>

#include "ModuleSupport.h"
#include "MpFactory.h"
#include "TextCodec.h"
#include "convert/FilePaths.h"

namespace kx {
namespace {

namespace fs = std::filesystem;

struct FileCloser {
    void operator()(std::FILE* f) const { std::fclose(f); }
};
using File = std::unique_ptr<std::FILE, FileCloser>;

bool writeAll(int fd, const std::string& bytes) {
    size_t done = 0;
    while (done < bytes.size()) {
        const ssize_t n = ::write(fd, bytes.data() + done, bytes.size() - done);
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0)
            return false;
        done += static_cast<size_t>(n);
    }
    return true;
}

// Until the bytes are on the disk, not just handed to the system.
bool syncToDisk(int fd) {
#ifdef F_FULLFSYNC
    if (::fcntl(fd, F_FULLFSYNC) == 0)
        return true;
#endif
    return ::fsync(fd) == 0;
}

// The folder's entry for the renamed file, so that the replacement itself survives a power cut. Best
// effort: the file is complete either way.
void syncFolder(const fs::path& folder) {
    const int fd = ::open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd < 0)
        return;
    ::fsync(fd);
    ::close(fd);
}

// A new file beside target, under a name no other save uses ("." + name + ".kxsave-" + pid + count),
// made with the permissions a new file gets. -1 when the folder does not let one be made.
int createTemporary(const fs::path& target, std::string& temporary) {
    static unsigned counter = 0;
    std::string prefix(1, '.');
    prefix += target.filename().string();
    prefix += ".kxsave-";
    prefix += std::to_string(::getpid());
    prefix += '-';
    for (int attempt = 0; attempt < 100; ++attempt) {
        temporary = (target.parent_path() / (prefix + std::to_string(counter++))).string();
        const int fd = ::open(temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        if (fd >= 0 || errno != EEXIST)
            return fd;
    }
    return -1;
}

// A link is followed to the file it names, so that saving through it keeps the link a link.
fs::path followLink(const std::string& path) {
    std::error_code ec;
    if (fs::is_symlink(path, ec)) {
        fs::path real = fs::canonical(path, ec);
        if (!ec)
            return real;
    }
    return path;
}

// Replaces the file at path with bytes, or leaves it exactly as it was. The bytes go to a new file in
// the same folder, which takes the old one's place only when all of them are on the disk: a failure part
// way (disk full, quota, file-size limit, I/O error) costs the new file only. The old file's permission
// bits and, where the system allows, its owner pass to the new one.
bool replaceFile(const std::string& path, const std::string& bytes) {
    const fs::path target = followLink(path);
    struct stat old {};
    const bool exists = ::stat(target.c_str(), &old) == 0;
    // Only regular files are replaced. One the user may not write stays as it is, although its folder
    // would let a new file take its place.
    if (exists && (!S_ISREG(old.st_mode) || ::access(target.c_str(), W_OK) != 0))
        return false;

    std::string temporary;
    const int fd = createTemporary(target, temporary);
    if (fd < 0)
        return false;
    bool ok = writeAll(fd, bytes);
    if (ok && exists) {
        ok = ::fchmod(fd, old.st_mode & 0777) == 0;
        [[maybe_unused]] const int owned = ::fchown(fd, old.st_uid, old.st_gid);  // only where allowed
    }
    ok = ok && syncToDisk(fd);
    ok = ::close(fd) == 0 && ok;
    ok = ok && ::rename(temporary.c_str(), target.c_str()) == 0;
    if (!ok) {
        ::unlink(temporary.c_str());
        return false;
    }
    syncFolder(target.parent_path());
    return true;
}

}  // namespace

bool readTextFile(const std::string& path, std::wstring& text) {
    File file(std::fopen(path.c_str(), "rb"));
    if (!file)
        return false;
    struct stat info {};
    const bool sized = ::fstat(::fileno(file.get()), &info) == 0;
    if (sized && S_ISDIR(info.st_mode))
        return false;

    // One read of the size the file reports; then whatever follows (a file that grew, or one whose size
    // the system does not know, such as a pipe) in blocks.
    std::string bytes;
    if (sized && S_ISREG(info.st_mode) && info.st_size > 0) {
        bytes.resize(static_cast<size_t>(info.st_size));
        bytes.resize(std::fread(bytes.data(), 1, bytes.size(), file.get()));
    }
    std::array<char, 1 << 16> block;
    while (!std::ferror(file.get()) && !std::feof(file.get())) {
        const size_t got = std::fread(block.data(), 1, block.size(), file.get());
        bytes.append(block.data(), got);
    }
    file.reset();

    text.clear();
    fromUtf8Lenient(bytes, text);
    return true;
}

bool writeTextFile(const std::string& path, std::wstring_view text) {
    if (!isCodePointText(text))
        return false;
    return replaceFile(path, toUtf8(text));
}

}  // namespace kx

// ---- KX_StringLoader

// Without a host that resolves names the name is kept as given; with one, its answer is the name even
// when it reports a failure.
std::wstring KX_StringLoader::fileNameFrom(const std::wstring& name) const {
    return kx::resolveFileName(host, name).value_or(name);
}

void KX_StringLoader::transfer() {
    if (fileName_.empty() || !kx::isCodePointText(fileName_))
        return;
    std::wstring content;
    if (kx::readTextFile(kx::toUtf8(fileName_), content))
        text = std::move(content);
}

// ---- KX_StringSaver

void KX_StringSaver::transfer() {
    if (fileName_.empty() || toSave_.empty() || !kx::isCodePointText(fileName_))
        return;
    kx::writeTextFile(kx::toUtf8(fileName_), toSave_);
}

namespace {
const bool registered = gmpi::Register<KX_StringSaver>::withId(L"KX_StringSaver") &&
                        gmpi::Register<KX_StringLoader>::withId(L"KX_StringLoader");
}  // namespace
