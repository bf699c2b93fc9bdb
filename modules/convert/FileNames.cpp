// File-name text: KX_SplitFName, KX_AppendFName.
#include "convert/FileNames.h"

#include <filesystem>

#include "ModuleSupport.h"
#include "MpFactory.h"

namespace fs = std::filesystem;

namespace {

// std::filesystem on POSIX keeps paths as bytes; the bytes are the UTF-8 of the pin text.
fs::path toPath(const std::wstring& text) { return fs::path(kx::toUtf8(text)); }

std::wstring toText(const fs::path& path) { return kx::fromUtf8(path.native()); }

}  // namespace

// ---- KX_SplitFName

KX_SplitFName::KX_SplitFName() {
    initializePin(path, &KX_SplitFName::onSetIn);
    initializePin(folder);
    initializePin(fileName);
}

void KX_SplitFName::onSetIn() {
    if (!kx::isCodePointText(path.getValue()))
        return;
    const fs::path p = toPath(path);
    folder = toText(p.parent_path());
    fileName = toText(p.filename());
}

// ---- KX_AppendFName

KX_AppendFName::KX_AppendFName() {
    initializePin(folder, &KX_AppendFName::onSetEither);
    initializePin(fileName, &KX_AppendFName::onSetEither);
    initializePin(path);
}

void KX_AppendFName::onSetEither() {
    const std::wstring& dir = folder.getValue();
    const std::wstring& name = fileName.getValue();
    if (dir.empty() || name.empty()) {
        path = dir.empty() ? name : dir;
        return;
    }
    if (!kx::isCodePointText(dir) || !kx::isCodePointText(name))
        return;
    path = toText(toPath(dir) / toPath(name));
}

namespace {
const bool registered = gmpi::Register<KX_SplitFName>::withId(L"KX_SplitFName") &&
                        gmpi::Register<KX_AppendFName>::withId(L"KX_AppendFName");
}  // namespace
