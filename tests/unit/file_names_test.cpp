#include <gtest/gtest.h>

#include "HostedModule.h"
#include "convert/FileNames.h"

using kxtest::Hosted;

namespace {

std::pair<std::wstring, std::wstring> split(const std::wstring& path) {
    Hosted<KX_SplitFName> h;
    h.module.folder = L"?";  // so that an empty result is visible as a change
    h.module.fileName = L"?";
    h.sendText(kx::splitfname::Path, path);
    return {h.module.folder.value, h.module.fileName.value};
}

std::wstring append(const std::wstring& folder, const std::wstring& name) {
    Hosted<KX_AppendFName> h;
    h.module.path = L"?";
    h.sendText(kx::appendfname::Folder, folder);
    h.sendText(kx::appendfname::FileName, name);
    return h.module.path.value;
}

using Split = std::pair<std::wstring, std::wstring>;

}  // namespace

TEST(SplitFName, FollowsPosixPathRules) {
    EXPECT_EQ(split(L"/a/b/c.wav"), Split(L"/a/b", L"c.wav"));
    EXPECT_EQ(split(L"c.wav"), Split(L"", L"c.wav"));
    EXPECT_EQ(split(L"/a/b/"), Split(L"/a/b", L""));
    EXPECT_EQ(split(L"/"), Split(L"/", L""));
    EXPECT_EQ(split(L"C:\\x\\y.wav"), Split(L"", L"C:\\x\\y.wav"));
    EXPECT_EQ(split(L"/M\u00FCsik/\U0001F3B5.wav"), Split(L"/M\u00FCsik", L"\U0001F3B5.wav"));
}

TEST(SplitFName, FolderIsWrittenBeforeTheFileName) {
    Hosted<KX_SplitFName> h;
    h.sendText(kx::splitfname::Path, L"/a/b.txt");
    ASSERT_EQ(h.host.sent.size(), 2u);
    EXPECT_EQ(h.host.sent[0].pin, kx::splitfname::Folder);
    EXPECT_EQ(h.host.sent[1].pin, kx::splitfname::FileName);
}

TEST(AppendFName, JoinsWithOneSlashAndAbsoluteNamesReplaceTheFolder) {
    EXPECT_EQ(append(L"/a/b", L"c.wav"), L"/a/b/c.wav");
    EXPECT_EQ(append(L"/a/b/", L"c.wav"), L"/a/b/c.wav");
    EXPECT_EQ(append(L"/a", L"/x/y"), L"/x/y");
    EXPECT_EQ(append(L"", L"c.wav"), L"c.wav");
    EXPECT_EQ(append(L"/a/b", L""), L"/a/b");
    EXPECT_EQ(append(L"", L""), L"");
}

TEST(FileNames, SplitThenAppendLosesOnlyATrailingSlash) {
    for (const std::wstring& path : {std::wstring(L"/a/b/c.wav"), std::wstring(L"/a/b/")}) {
        const auto [folder, name] = split(path);
        EXPECT_EQ(append(folder, name), path == L"/a/b/" ? L"/a/b" : path);
    }
}

TEST(FileNames, TextThatIsNotUnicodeWritesNothing) {
    const std::wstring broken(1, static_cast<wchar_t>(0xD800));
    Hosted<KX_SplitFName> s;
    EXPECT_EQ(s.module.notifyPin(kx::splitfname::Path, 0), 0);
    s.sendText(kx::splitfname::Path, L"/a/" + broken);
    EXPECT_TRUE(s.host.sent.empty());

    Hosted<KX_AppendFName> a;
    a.sendText(kx::appendfname::Folder, L"/a");
    a.host.sent.clear();
    a.sendText(kx::appendfname::FileName, broken);
    EXPECT_TRUE(a.host.sent.empty());
}
