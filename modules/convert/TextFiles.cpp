// Text files: KX_StringSaver, KX_StringLoader.
#include "convert/TextFiles.h"

#include <sys/stat.h>

#include <array>
#include <cstdio>
#include <memory>
#include <utility>

#include "ModuleSupport.h"
#include "MpFactory.h"
#include "TextCodec.h"
#include "convert/FilePaths.h"

namespace kx {
namespace {

struct FileCloser {
    void operator()(std::FILE* f) const { std::fclose(f); }
};
using File = std::unique_ptr<std::FILE, FileCloser>;

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
    const std::string bytes = toUtf8(text);
    File file(std::fopen(path.c_str(), "wb"));
    if (!file)
        return false;
    const bool written = std::fwrite(bytes.data(), 1, bytes.size(), file.get()) == bytes.size();
    return std::fclose(file.release()) == 0 && written;
}

}  // namespace kx

// ---- KX_StringLoader

// Without a host that resolves names, or when it fails, the name is kept as given.
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
