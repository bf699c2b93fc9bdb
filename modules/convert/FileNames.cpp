// File-name text: KX_SplitFName, KX_AppendFName.
#include "convert/FileNames.h"

#include <filesystem>
#include <optional>

#include "MpFactory.h"
#include "convert/FilePaths.h"

namespace fs = std::filesystem;

// ---- KX_SplitFName

KX_SplitFName::KX_SplitFName() {
    initializePin(path, &KX_SplitFName::onSetIn);
    initializePin(folder);
    initializePin(fileName);
}

void KX_SplitFName::onSetIn() {
    const std::optional<std::string> bytes = kx::pathBytes(path.getValue());
    if (!bytes)
        return;
    const fs::path p(*bytes);
    folder = kx::pathText(p.parent_path().native());
    fileName = kx::pathText(p.filename().native());
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
    const std::optional<std::string> dirBytes = kx::pathBytes(dir);
    const std::optional<std::string> nameBytes = kx::pathBytes(name);
    if (!dirBytes || !nameBytes)
        return;
    path = kx::pathText((fs::path(*dirBytes) / *nameBytes).native());
}

namespace {
const bool registered = gmpi::Register<KX_SplitFName>::withId(L"KX_SplitFName") &&
                        gmpi::Register<KX_AppendFName>::withId(L"KX_AppendFName");
}  // namespace
