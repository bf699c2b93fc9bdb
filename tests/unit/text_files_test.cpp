#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <set>

#include "HostedModule.h"
#include "TempFolder.h"
#include "convert/TextFiles.h"

using kxtest::Hosted;
using kxtest::TempFolder;
namespace P = kx::textfile;

namespace {

std::wstring wide(const std::filesystem::path& p) { return kx::fromUtf8(p.string()); }

std::set<std::string> namesIn(const TempFolder& dir) {
    std::set<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(dir.path()))
        names.insert(entry.path().filename().string());
    return names;
}

// The host answers a failure but leaves a name in the buffer all the same.
struct FailingResolver : kxtest::FakeGuiHost {
    int32_t resolveFilename(const wchar_t* name, int32_t maxChars, wchar_t* out) override {
        FakeGuiHost::resolveFilename(name, maxChars, out);
        return gmpi::MP_FAIL;
    }
};

void trigger(Hosted<KX_StringLoader>& h) {
    h.send(P::Trigger, true);
    h.send(P::Trigger, false);
}
void trigger(Hosted<KX_StringSaver>& h) {
    h.send(P::Trigger, true);
    h.send(P::Trigger, false);
}

}  // namespace

TEST(StringLoader, LoadsTheWholeFileOnTheRisingTrigger) {
    TempFolder dir;
    dir.write("abc.txt", "abc\n");
    Hosted<KX_StringLoader> h;
    h.host.offerFirstGeneration = false;  // names are taken as given
    h.sendText(P::FileNameL, wide(dir / "abc.txt"));
    EXPECT_TRUE(h.host.sent.empty());  // not automatic: the name alone loads nothing
    h.send(P::Trigger, true);
    ASSERT_EQ(h.host.on(P::Text).size(), 1u);
    EXPECT_EQ(h.host.on(P::Text)[0].asText(), L"abc\n");

    dir.write("abc.txt", "changed");
    h.send(P::Trigger, false);  // the fall does nothing
    EXPECT_EQ(h.module.text.value, L"abc\n");
}

TEST(StringLoader, EmptyNameMissingFileOrFolderLeaveTheTextAlone) {
    TempFolder dir;
    Hosted<KX_StringLoader> h;
    h.host.offerFirstGeneration = false;
    trigger(h);  // no file name yet
    h.module.text = L"before";
    h.host.sent.clear();
    h.sendText(P::FileNameL, wide(dir / "missing.txt"));
    trigger(h);
    h.sendText(P::FileNameL, wide(dir.path()));
    trigger(h);
    EXPECT_TRUE(h.host.sent.empty());
    EXPECT_EQ(h.module.text.value, L"before");

    dir.write("empty.txt", "");
    h.sendText(P::FileNameL, wide(dir / "empty.txt"));
    trigger(h);
    EXPECT_EQ(h.module.text.value, L"");  // an empty file is an empty text
}

TEST(StringLoader, InvalidUtf8BytesBecomeReplacementCharactersAndTheRestLoads) {
    TempFolder dir;
    dir.write("mixed.txt", "caf\xE9 ok \xC3\xA9\xE2\x82\xAC\xF0\x9F\x8E\xB5\r\nend\xE2\x82");
    Hosted<KX_StringLoader> h;
    h.host.offerFirstGeneration = false;
    h.sendText(P::FileNameL, wide(dir / "mixed.txt"));
    trigger(h);
    EXPECT_EQ(h.module.text.value, L"caf\uFFFD ok \u00E9\u20AC\U0001F3B5\r\nend\uFFFD\uFFFD");
}

TEST(StringLoader, NamesAreResolvedThroughTheHostsResourceFolder) {
    TempFolder dir;
    dir.write("notes.txt", "from resources");
    Hosted<KX_StringLoader> h;
    h.host.resourceFolder = wide(dir.path()) + L"/";
    h.sendText(P::FileNameR, L"notes.txt");
    EXPECT_EQ(h.module.currentFileName(), wide(dir / "notes.txt"));
    trigger(h);
    EXPECT_EQ(h.module.text.value, L"from resources");
}

TEST(StringLoader, TheNameInTheHostsBufferIsTakenEvenWhenTheHostReportsAFailure) {
    TempFolder dir;
    dir.write("notes.txt", "resolved");
    FailingResolver host;
    host.resourceFolder = wide(dir.path()) + L"/";
    KX_StringLoader loader;
    loader.setHost(host.unknown());
    kxtest::deliverText(loader, P::FileNameL, L"notes.txt");
    EXPECT_EQ(loader.currentFileName(), wide(dir / "notes.txt"));
}

TEST(StringLoader, AutomaticModeLoadsWhicheverNamePinChangedLast) {
    TempFolder dir;
    dir.write("left.txt", "L");
    dir.write("right.txt", "R");
    Hosted<KX_StringLoader> h;
    h.host.offerFirstGeneration = false;
    h.send(P::Automatic, true);
    h.sendText(P::FileNameL, wide(dir / "left.txt"));
    EXPECT_EQ(h.module.text.value, L"L");
    h.sendText(P::FileNameR, wide(dir / "right.txt"));
    EXPECT_EQ(h.module.text.value, L"R");
    dir.write("left.txt", "L2");
    h.sendText(P::FileNameL, wide(dir / "left.txt"));  // the same text again still re-reads
    EXPECT_EQ(h.module.text.value, L"L2");
}

TEST(StringSaver, WritesTheTextAsUtf8WithNothingAdded) {
    TempFolder dir;
    Hosted<KX_StringSaver> h;
    h.sendText(P::Text, L"h\u00E9llo \U0001F3B5\r\n");
    h.sendText(P::FileNameL, wide(dir / "out.txt"));
    EXPECT_FALSE(std::filesystem::exists(dir / "out.txt"));
    trigger(h);
    EXPECT_EQ(dir.read("out.txt"), "h\xC3\xA9llo \xF0\x9F\x8E\xB5\r\n");

    // Round trip through the loader.
    Hosted<KX_StringLoader> loader;
    loader.host.offerFirstGeneration = false;
    loader.sendText(P::FileNameL, wide(dir / "out.txt"));
    trigger(loader);
    EXPECT_EQ(loader.module.text.value, L"h\u00E9llo \U0001F3B5\r\n");
}

TEST(StringSaver, EmptyOrUnencodableTextNeverTouchesTheFile) {
    TempFolder dir;
    dir.write("keep.txt", "keep");
    Hosted<KX_StringSaver> h;
    h.sendText(P::FileNameL, wide(dir / "keep.txt"));
    h.sendText(P::Text, L"x");
    h.sendText(P::Text, L"");
    trigger(h);
    EXPECT_EQ(dir.read("keep.txt"), "keep");
    h.sendText(P::Text, std::wstring(L"a") + static_cast<wchar_t>(0xDC00));
    trigger(h);
    EXPECT_EQ(dir.read("keep.txt"), "keep");
}

TEST(StringSaver, AutomaticModeSavesOnNameOrSwitchButNotOnText) {
    TempFolder dir;
    Hosted<KX_StringSaver> h;
    h.sendText(P::FileNameL, wide(dir / "a.txt"));
    h.send(P::Automatic, true);  // switched on with a name but no text: nothing to write
    EXPECT_FALSE(std::filesystem::exists(dir / "a.txt"));
    h.sendText(P::Text, L"one");
    EXPECT_FALSE(std::filesystem::exists(dir / "a.txt"));  // a new text does not save
    h.sendText(P::FileNameR, wide(dir / "b.txt"));
    EXPECT_EQ(dir.read("b.txt"), "one");
    h.sendText(P::Text, L"two");
    h.send(P::Automatic, false);
    h.send(P::Automatic, true);  // switching on saves
    EXPECT_EQ(dir.read("b.txt"), "two");
    EXPECT_FALSE(std::filesystem::exists(dir / "a.txt"));
}

TEST(StringSaver, RelativeNamesAreRelativeToTheWorkingFolderNotResolved) {
    TempFolder dir;
    const auto previous = std::filesystem::current_path();
    std::filesystem::current_path(dir.path());
    Hosted<KX_StringSaver> h;
    h.host.resourceFolder = L"/nonexistent/";
    h.sendText(P::Text, L"here");
    h.sendText(P::FileNameL, L"rel.txt");
    trigger(h);
    std::filesystem::current_path(previous);
    EXPECT_EQ(dir.read("rel.txt"), "here");
}

// A write that stops part way (disk full, quota, file-size limit, I/O error) must cost nothing: the old
// file stays byte for byte and nothing is left beside it. The file-size limit of a child process forces
// the failure here, as the limit of a user's shell would.
TEST(StringSaver, AWriteThatFailsPartWayLeavesTheOldFileAsItWas) {
    TempFolder dir;
    const std::string old(900, 'o');
    dir.write("keep.txt", old);
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        std::signal(SIGXFSZ, SIG_IGN);
        const rlimit limit{2048, 2048};
        ::setrlimit(RLIMIT_FSIZE, &limit);
        Hosted<KX_StringSaver> h;
        h.sendText(P::Text, std::wstring(5000, L'n'));
        h.sendText(P::FileNameL, wide(dir / "keep.txt"));
        trigger(h);
        ::_exit(0);
    }
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << "the module reports nothing, it does not fail";
    EXPECT_EQ(dir.read("keep.txt"), old);
    EXPECT_EQ(namesIn(dir), std::set<std::string>{"keep.txt"});
}

TEST(StringSaver, ReplacingAFileKeepsItsPermissionsAndLeavesNothingBeside) {
    TempFolder dir;
    dir.write("script.sh", "old");
    std::filesystem::permissions(dir / "script.sh", std::filesystem::perms(0750));
    Hosted<KX_StringSaver> h;
    h.sendText(P::Text, L"new text");
    h.sendText(P::FileNameL, wide(dir / "script.sh"));
    trigger(h);
    EXPECT_EQ(dir.read("script.sh"), "new text");
    EXPECT_EQ(std::filesystem::status(dir / "script.sh").permissions(), std::filesystem::perms(0750));
    EXPECT_EQ(namesIn(dir), std::set<std::string>{"script.sh"});

    // Saving through a link writes the file it points to and keeps the link.
    std::filesystem::create_symlink("script.sh", dir / "link.sh");
    h.sendText(P::Text, L"through the link");
    h.sendText(P::FileNameL, wide(dir / "link.sh"));
    trigger(h);
    EXPECT_TRUE(std::filesystem::is_symlink(dir / "link.sh"));
    EXPECT_EQ(dir.read("script.sh"), "through the link");
    std::filesystem::remove(dir / "link.sh");

    // A folder in the file's place stays a folder.
    std::filesystem::create_directory(dir / "sub");
    h.sendText(P::FileNameL, wide(dir / "sub"));
    trigger(h);
    EXPECT_TRUE(std::filesystem::is_directory(dir / "sub"));
    EXPECT_EQ(namesIn(dir), (std::set<std::string>{"script.sh", "sub"}));
}
